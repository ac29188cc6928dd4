// What the units of the list manager share.
#ifndef COMN_INFRA_LMLIST_H
#define COMN_INFRA_LMLIST_H

#include <cstring>

#include "checks.h"
#include "lmpriv.h"

namespace comn::list {

// The defaults of a context, for its new lists.
constexpr CS_INT default_kind = LM_DLINK;
constexpr CS_INT default_tablesize = 10;
constexpr CS_INT default_poolsize = 0;

// The kinds that exist; everything else is no list.
constexpr bool is_linked(CS_INT type) noexcept {
  return type == LM_DLINK || type == LM_QUEUE || type == LM_STACK;
}
constexpr bool is_hashed(CS_INT type) noexcept {
  return type == LM_CHASH || type == LM_DHASH;
}
constexpr bool is_kind(CS_INT type) noexcept {
  return is_linked(type) || is_hashed(type);
}

// A cleared record, stamped; null on failure.
template <class Record>
Record *make(LM_ALLOCATOR allocate, void *user, LM_NODE_STATE state) noexcept {
  auto *const record = static_cast<Record *>(allocate(user, sizeof(Record)));
  if (record != nullptr) {
    std::memset(record, 0, sizeof *record);
    record->state = state;
  }
  return record;
}

// Clears a record, stamps it for those who still point at it, and releases it.
template <class Record>
void release(Record *record, LM_RELEASER free, void *user) noexcept {
  std::memset(record, 0, sizeof *record);
  record->state = LM_RELEASED;
  free(user, record);
}

template <class Record>
void release(LM_HANDLE *handle, Record *record) noexcept {
  release(record, handle->lmhfree, handle->lmhuser);
}

// A node from the pool, or a new one; and back. The common case is a pop or a push.
inline CS_RETCODE get_node(LM_HANDLE *handle, DLinkNode *&node) noexcept {
  DLinkNode *const popped = handle->free_DLN_list;
  if (popped == nullptr || handle->free_nodes < 1 || popped->state == LM_RELEASED ||
      comn::is_tracing()) [[unlikely]]
    return lm__get_dlinknode(handle, &node);
  handle->free_DLN_list = popped->next;
  --handle->free_nodes;
  node = popped;
  return CS_SUCCEED;
}

inline void put_node(LM_HANDLE *handle, DLinkNode *node) noexcept {
  if (handle->free_nodes >= handle->hdlprop->max_poolsize || comn::is_tracing()) [[unlikely]] {
    lm__free_dlinknode(handle, node);
    return;
  }
  node->state = LM_UNINITIALIZED;
  node->next = handle->free_DLN_list;
  handle->free_DLN_list = node;
  ++handle->free_nodes;
}

// Whether the initialiser of a kind fills the node pool: not when a table is made anew.
enum class NodePool { fill, keep };

// Makes an empty record of the kind in list_state. CS_SUCCEED; CS_MEM_ERROR or CS_FAIL, nothing
// left behind.
CS_RETCODE make_state(LM_HANDLE *handle, NodePool pool) noexcept;

// What becomes of the nodes when a kind's record goes.
enum class Nodes { release, recycle };

// Releases the kind's record and its nodes; the load counts down. CS_FAIL if it does not end at 0.
CS_RETCODE drop_state(LM_HANDLE *handle, Nodes nodes) noexcept;

// The operations of each kind.
CS_RETCODE dlink_op(LM_HANDLE *handle, CS_INT operation, DLinkNode **cursor, CS_INT position,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept;
CS_RETCODE chash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept;
CS_RETCODE dhash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept;

// The function of a walk: the one of the list, or for LM_OP_APPLY the one stored at `data_in`.
inline CS_PRINT_FUNC walk_function(const LM_HANDLE *handle, CS_INT operation,
                                   const CS_VOID *data_in) noexcept {
  if (operation != LM_OP_APPLY)
    return handle->hdlprop->print_func;
  CS_PRINT_FUNC function = nullptr;
  if (data_in != nullptr)
    std::memcpy(&function, data_in, sizeof function);
  return function;
}

// Makes a list the current one of its context; null for none.
inline void make_current(LM_CXTPROP *prop, LM_HANDLE *handle) noexcept {
  prop->cur_handleaddr = handle;
  prop->cur_handlename = handle != nullptr ? handle->hdlprop->handle_name : nullptr;
}

} // namespace comn::list

#endif
