// What the units of the list manager share.
#ifndef COMN_INFRA_LMLIST_H
#define COMN_INFRA_LMLIST_H

#include <cstdint>
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

// The node pool. The first free node, null for none: the chain can be shorter than the count says,
// after the pool failed to grow.
inline DLinkNode *first_free(const LM_HANDLE *handle) noexcept {
  return handle->free_nodes >= 1 ? handle->free_DLN_list : nullptr;
}

inline void take_first_free(LM_HANDLE *handle) noexcept {
  handle->free_DLN_list = handle->free_DLN_list->next;
  --handle->free_nodes;
}

inline bool has_room(const LM_HANDLE *handle) noexcept {
  return handle->free_nodes < handle->hdlprop->max_poolsize;
}

inline void put_back(LM_HANDLE *handle, DLinkNode *node) noexcept {
  node->state = LM_UNINITIALIZED;
  node->next = handle->free_DLN_list;
  handle->free_DLN_list = node;
  ++handle->free_nodes;
}

// The operations are written once and compiled for each pace. As a leaf they call no function, so
// they need no frame and few registers: they do what an operation comes to as a rule, and give up
// on all that needs a call, with nothing changed that the repetition would not change again in the
// same way. That is a check that fails, a node that the pool does not have or has no room for, a
// function of the caller's, and tracing. What was given up is done in full, from the start. A
// sprint is a leaf that takes medium keys without signs alone, and gives up the others too.
enum class Pace { sprint, leaf, full };

// How a leaf says that it gave up; no return code is like it.
constexpr CS_RETCODE gave_up = INT32_MIN;

// A check that failed: the end of the operation.
template <Pace pace, class Where>
CS_RETCODE refuse([[maybe_unused]] Where where) noexcept {
  if constexpr (pace == Pace::full)
    return comn::raise_bomb(where);
  else
    return gave_up;
}

#define LM_CHECK(condition)                                                                        \
  do {                                                                                             \
    if (!(condition)) [[unlikely]]                                                                 \
      return refuse<pace>(COMN_HERE);                                                              \
  } while (0)

// A node from the pool, or a new one.
template <Pace pace>
CS_RETCODE get_node(LM_HANDLE *handle, DLinkNode *&node) noexcept {
  if constexpr (pace == Pace::full)
    return lm__get_dlinknode(handle, &node);
  node = first_free(handle);
  if (node == nullptr || node->state == LM_RELEASED) [[unlikely]]
    return gave_up;
  take_first_free(handle);
  return CS_SUCCEED;
}

// Whether put_node will take a node: asked before anything is changed.
template <Pace pace>
bool can_put_node(const LM_HANDLE *handle) noexcept {
  return pace == Pace::full || has_room(handle);
}

template <Pace pace>
void put_node(LM_HANDLE *handle, DLinkNode *node) noexcept {
  if constexpr (pace == Pace::full)
    lm__free_dlinknode(handle, node);
  else
    put_back(handle, node);
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

// The operations of the kinds, in full.
CS_RETCODE chash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept;
CS_RETCODE dhash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept;

// lm_list_op in full.
[[gnu::noinline]] CS_RETCODE list_op_in_full(LM_HANDLE *handle, CS_INT operation, CS_VOID *key,
                                             CS_INT key_size, CS_VOID *data_in,
                                             CS_VOID **data_out) noexcept;

// Does an operation at one pace, and at a slower one if that gives up.
template <auto attempt, auto slower>
CS_RETCODE attempt_or(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                      CS_VOID *data_in, CS_VOID **data_out) noexcept {
  const CS_RETCODE result = attempt(handle, operation, key, key_size, data_in, data_out);
  if (result != gave_up) [[likely]]
    return result;
  return slower(handle, operation, key, key_size, data_in, data_out);
}

// An operation of a chained table as a leaf, once the checks of lm_list_op are passed and tracing
// is off. It ends in lm_list_op in full if need be, and so takes the same arguments.
template <CS_INT operation>
CS_RETCODE chash_leaf(LM_HANDLE *handle, CS_INT, CS_VOID *key, CS_INT key_size, CS_VOID *data_in,
                      CS_VOID **data_out) noexcept;

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
