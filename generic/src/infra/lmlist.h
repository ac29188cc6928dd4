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

// ---- the kinds ----

// The arguments of lm_list_op behind the handle.
struct Request {
  CS_INT operation;
  CS_VOID *key;    // to a linked list the address of a cursor
  CS_INT key_size; // to a linked list the position of an insertion
  CS_VOID *data_in;
  CS_VOID **data_out; // may be null
};

// What a kind of list does. `state` is the kind's own record, as list_state holds it.
struct Kind {
  // Makes an empty record in list_state. CS_FAIL, CS_MEM_ERROR: list_state is as it was.
  CS_RETCODE (*make)(LM_HANDLE *handle) noexcept;
  // The entries in a record.
  CS_INT (*count)(const CS_VOID *state) noexcept;
  // Releases a record and its nodes.
  void (*drop)(LM_HANDLE *handle, CS_VOID *state) noexcept;
  CS_RETCODE (*operate)(LM_HANDLE *handle, const Request &request) noexcept;
  // Inserts the entries of an older record. Null where there is no table to resize.
  CS_RETCODE (*refill)(LM_HANDLE *handle, const CS_VOID *state) noexcept;
};

// The record of every kind begins with its state.
inline bool is_released(const CS_VOID *state) noexcept {
  return *static_cast<const LM_NODE_STATE *>(state) == LM_RELEASED;
}

// Null for what is no kind.
const Kind *find_kind(CS_INT list_type) noexcept;

// The linked list, on which queue and stack are built.
CS_RETCODE dlink_make(LM_HANDLE *handle) noexcept;
CS_INT dlink_count(const CS_VOID *state) noexcept;
void dlink_drop(LM_HANDLE *handle, CS_VOID *state) noexcept;
CS_RETCODE dlink_operate(LM_HANDLE *handle, const Request &request) noexcept;

extern const Kind dlink_kind;
extern const Kind queue_kind;
extern const Kind stack_kind;
extern const Kind chash_kind;
extern const Kind dhash_kind;

// ---- records and nodes ----

// A cleared record, stamped; null on failure.
template <class Record>
Record *make_record(LM_ALLOCATOR allocate, void *user, LM_NODE_STATE state) noexcept {
  auto *const record = static_cast<Record *>(allocate(user, sizeof(Record)));
  if (record != nullptr) {
    std::memset(record, 0, sizeof *record);
    record->state = state;
  }
  return record;
}

// Clears a record, stamps it for those who still point at it, and releases it.
template <class Record>
void release_record(Record *record, LM_RELEASER free, void *user) noexcept {
  std::memset(record, 0, sizeof *record);
  record->state = LM_RELEASED;
  free(user, record);
}

// The same from the allocator of a list.
template <class Record>
Record *make_record(LM_HANDLE *handle) noexcept {
  return make_record<Record>(handle->lmhmalloc, handle->lmhuser, LM_INITIALIZED);
}

template <class Record>
void release_record(LM_HANDLE *handle, Record *record) noexcept {
  release_record(record, handle->lmhfree, handle->lmhuser);
}

// Clears the nodes of a chain and hands them to lm__free_dlinknode.
void drop_chain(LM_HANDLE *handle, DLinkNode *first) noexcept;

// The nodes of a chain, the free ones of a list for one.
CS_INT chain_length(const DLinkNode *first) noexcept;

// Clears and releases a name that lm__api_setdata made.
void release_name(CS_CHAR *name, CS_INT length) noexcept;

// ---- the caller's functions ----

// The function of a walk: the one of the list, or for LM_OP_APPLY the one stored at `data_in`.
CS_PRINT_FUNC walk_function(const LM_HANDLE *handle, const Request &request) noexcept;

// Calls the print function on the data of one entry. Anything but CS_FAIL is success.
CS_RETCODE print_entry(const LM_HANDLE *handle, const DLinkNode *node) noexcept;

// Calls a function on a member of each node of a chain; the first CS_FAIL stops and is the result.
CS_RETCODE walk_chain(const DLinkNode *first, CS_PRINT_FUNC function,
                      CS_VOID *DLinkNode::*member) noexcept;

// ---- the context ----

// Makes a list the current one of its context; null for none.
inline void make_current(LM_CXTPROP *prop, LM_HANDLE *handle) noexcept {
  prop->cur_handleaddr = handle;
  prop->cur_handlename = handle != nullptr ? handle->hdlprop->handle_name : nullptr;
}

} // namespace comn::list

#endif
