// The linked list. Its entries have no keys; where a key would be given stands the address of a
// cursor.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

CS_RETCODE comn::list::dlink_make(LM_HANDLE *handle) noexcept {
  auto *const info = make_record<DLinkInfo>(handle);
  if (info == nullptr)
    return CS_MEM_ERROR;
  handle->list_state = info;
  return CS_SUCCEED;
}

CS_INT comn::list::dlink_count(const CS_VOID *state) noexcept {
  return chain_length(static_cast<const DLinkInfo *>(state)->head);
}

void comn::list::dlink_drop(LM_HANDLE *handle, CS_VOID *state) noexcept {
  auto *const info = static_cast<DLinkInfo *>(state);
  drop_chain(handle, info->head);
  release_record(handle, info);
}

namespace {

// Where an operation starts: at the cursor of the caller's if there is one, else at the list's.
DLinkNode *cursor_of(const LM_HANDLE *handle, const CS_VOID *key) noexcept {
  DLinkNode *cursor = nullptr;
  if (key != nullptr)
    std::memcpy(&cursor, key, sizeof cursor);
  return cursor != nullptr ? cursor : static_cast<DLinkNode *>(handle->cur_ptr);
}

void store_cursor(LM_HANDLE *handle, CS_VOID *key, DLinkNode *cursor) noexcept {
  if (key != nullptr)
    std::memcpy(key, &cursor, sizeof cursor);
  else
    handle->cur_ptr = cursor;
}

// The other operations take no notice of the cursor, so that a caller can begin a walk anew with a
// variable that points at an entry which is gone, or anywhere.
bool starts_at_cursor(const DLinkInfo *info, const Request &request) noexcept {
  switch (request.operation) {
  case LM_OP_INSERT:
    return info->head != nullptr &&
           (request.key_size == LM_POS_BEFORE || request.key_size == LM_POS_AFTER);
  case LM_OP_DELETE:
  case LM_OP_REPLACE:
  case LM_OP_NEXT:
  case LM_OP_PREV:
  case LM_OP_CURRENT:
  case LM_OP_PRINT:
    return true;
  default:
    return false;
  }
}

// The entry in front of which a new one goes, null for the end of the list. False for a position
// that does not exist.
bool find_successor(const DLinkInfo *info, DLinkNode *cursor, CS_INT position,
                    DLinkNode *&successor) noexcept {
  successor = nullptr;
  if (info->head == nullptr)
    return true; // the first entry: any position will do
  switch (position) {
  case LM_OP_FIRST:
    successor = info->head;
    return true;
  case LM_OP_LAST:
    return true;
  case LM_POS_BEFORE:
    successor = cursor;
    return cursor != nullptr;
  case LM_POS_AFTER:
    successor = cursor != nullptr ? cursor->next : nullptr;
    return cursor != nullptr;
  default:
    return false;
  }
}

void link_in_front(DLinkInfo *info, DLinkNode *node, DLinkNode *successor) noexcept {
  DLinkNode *const predecessor = successor != nullptr ? successor->previous : info->tail;
  node->previous = predecessor;
  node->next = successor;
  (predecessor != nullptr ? predecessor->next : info->head) = node;
  (successor != nullptr ? successor->previous : info->tail) = node;
}

CS_RETCODE dlink_insert(LM_HANDLE *handle, DLinkInfo *info, const Request &request,
                        DLinkNode *&cursor) noexcept {
  DLinkNode *successor = nullptr;
  COMN_CHECK(find_successor(info, cursor, request.key_size, successor), CS_FAIL);
  DLinkNode *node = nullptr;
  const CS_RETCODE result = lm__get_dlinknode(handle, &node);
  if (result != CS_SUCCEED)
    return result;
  if (info->head == nullptr)
    handle->cur_ptr = node; // under a cursor of the caller's, too
  node->data = request.data_in;
  node->state = LM_INSERTED;
  link_in_front(info, node, successor);
  ++handle->hdlprop->handle_load;
  cursor = node;
  return CS_SUCCEED;
}

CS_RETCODE dlink_delete(LM_HANDLE *handle, DLinkInfo *info, DLinkNode *&cursor) noexcept {
  COMN_CHECK(cursor != nullptr && handle->hdlprop->handle_load > 0, CS_FAIL);
  DLinkNode *const node = cursor;
  DLinkNode *const predecessor = node->previous;
  DLinkNode *const successor = node->next;
  (predecessor != nullptr ? predecessor->next : info->head) = successor;
  (successor != nullptr ? successor->previous : info->tail) = predecessor;
  // At the head the successor follows, anywhere else the predecessor.
  cursor = predecessor != nullptr ? predecessor : successor;
  // The list's own cursor never points at what is gone.
  if (handle->cur_ptr == node)
    handle->cur_ptr = cursor;
  --handle->hdlprop->handle_load;
  lm__free_dlinknode(handle, node);
  return CS_SUCCEED;
}

CS_RETCODE dlink_step(DLinkNode *&cursor, DLinkNode *DLinkNode::*direction) noexcept {
  DLinkNode *const next = cursor != nullptr ? cursor->*direction : nullptr;
  if (next == nullptr)
    return CS_FAIL;
  cursor = next;
  return CS_SUCCEED;
}

CS_RETCODE dlink_walk(LM_HANDLE *handle, const DLinkInfo *info, const Request &request) noexcept {
  const CS_PRINT_FUNC function = walk_function(handle, request);
  return function != nullptr ? walk_chain(info->head, function, &DLinkNode::data) : CS_FAIL;
}

// Looks for an entry without following the pointer, which may point anywhere but is not null.
bool is_entry(const DLinkInfo *info, const DLinkNode *wanted) noexcept {
  const DLinkNode *node = info->head;
  while (node != nullptr && node != wanted)
    node = node->next;
  return node != nullptr;
}

// What an operation delivers. The cursor behind a walk over all entries is the one that nothing has
// checked: on what is gone it has no data.
CS_VOID *data_at(const DLinkInfo *info, CS_INT operation, const DLinkNode *cursor) noexcept {
  const bool is_unchecked = operation == LM_OP_PRINTALL || operation == LM_OP_APPLY;
  if (cursor == nullptr || (is_unchecked && !is_entry(info, cursor)))
    return nullptr;
  return cursor->data;
}

// `cursor` is where the operation starts, if it is one that starts there, and becomes where it ends.
CS_RETCODE dlink_act(LM_HANDLE *handle, DLinkInfo *info, const Request &request,
                     DLinkNode *&cursor) noexcept {
  switch (request.operation) {
  case LM_OP_INSERT:
    return dlink_insert(handle, info, request, cursor);
  case LM_OP_DELETE:
    return dlink_delete(handle, info, cursor);
  case LM_OP_REPLACE:
    if (cursor == nullptr)
      return CS_FAIL;
    cursor->data = request.data_in;
    return CS_SUCCEED;
  case LM_OP_NEXT:
    return dlink_step(cursor, &DLinkNode::next);
  case LM_OP_PREV:
    return dlink_step(cursor, &DLinkNode::previous);
  case LM_OP_CURRENT:
    return CS_SUCCEED;
  case LM_OP_FIRST:
    cursor = info->head;
    return CS_SUCCEED;
  case LM_OP_LAST:
    cursor = info->tail;
    return CS_SUCCEED;
  case LM_OP_PRINT:
    return cursor != nullptr ? print_entry(handle, cursor) : CS_FAIL;
  case LM_OP_PRINTALL:
  case LM_OP_APPLY: {
    const CS_RETCODE result = dlink_walk(handle, info, request);
    cursor = cursor_of(handle, request.key); // where it was, or where the caller's function left it
    return result;
  }
  default: // LM_OP_SEARCH too: there are no keys
    return comn::raise_bomb(COMN_HERE);
  }
}

} // namespace

CS_RETCODE comn::list::dlink_operate(LM_HANDLE *handle, const Request &request) noexcept {
  auto *const info = static_cast<DLinkInfo *>(handle->list_state);
  DLinkNode *cursor = nullptr;
  if (starts_at_cursor(info, request)) {
    cursor = cursor_of(handle, request.key);
    COMN_CHECK(cursor == nullptr || cursor->state == LM_INSERTED, CS_FAIL);
  }
  const CS_RETCODE result = dlink_act(handle, info, request, cursor);
  if (result != CS_SUCCEED)
    return result;
  store_cursor(handle, request.key, cursor);
  if (request.data_out != nullptr)
    *request.data_out = data_at(info, request.operation, cursor);
  return CS_SUCCEED;
}

constexpr Kind comn::list::dlink_kind = {dlink_make, dlink_count, dlink_drop, dlink_operate,
                                         nullptr};
