// The operations on lists: the dispatch on the kind, and the kinds built on the linked list.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

namespace {

// ---- the linked list ----

// Between which two entries a new one goes; false for a position that does not exist.
bool find_place(const DLinkInfo *info, DLinkNode *cursor, CS_INT position, DLinkNode *&before,
                DLinkNode *&behind) noexcept {
  before = nullptr;
  behind = nullptr;
  if (info->head == nullptr) [[unlikely]]
    return true; // the first entry: any position will do
  if (position == LM_OP_LAST) [[likely]] {
    before = info->tail;
    return true;
  }
  if (position == LM_OP_FIRST) {
    behind = info->head;
    return true;
  }
  if (cursor == nullptr)
    return false;
  if (position == LM_POS_BEFORE) {
    behind = cursor;
    before = cursor->previous;
    return true;
  }
  before = cursor;
  behind = cursor->next;
  return position == LM_POS_AFTER;
}

template <Pace pace>
CS_RETCODE insert(LM_HANDLE *handle, DLinkInfo *info, DLinkNode *&cursor, CS_INT position,
                  CS_VOID *data) noexcept {
  DLinkNode *before;
  DLinkNode *behind;
  LM_CHECK(find_place(info, cursor, position, before, behind));
  DLinkNode *node = nullptr;
  const CS_RETCODE result = get_node<pace>(handle, node);
  if (result != CS_SUCCEED)
    return result;
  if (before == nullptr && behind == nullptr)
    handle->cur_ptr = node;
  node->data = data;
  node->previous = before;
  node->next = behind;
  (before != nullptr ? before->next : info->head) = node;
  (behind != nullptr ? behind->previous : info->tail) = node;
  node->state = LM_INSERTED;
  ++handle->hdlprop->handle_load;
  cursor = node;
  return CS_SUCCEED;
}

template <Pace pace>
CS_RETCODE remove(LM_HANDLE *handle, DLinkInfo *info, DLinkNode *&cursor) noexcept {
  LM_CHECK(cursor != nullptr && handle->hdlprop->handle_load > 0);
  if (!can_put_node<pace>(handle)) [[unlikely]]
    return gave_up;
  DLinkNode *const node = cursor;
  DLinkNode *const before = node->previous;
  DLinkNode *const behind = node->next;
  (before != nullptr ? before->next : info->head) = behind;
  (behind != nullptr ? behind->previous : info->tail) = before;
  // At the head the successor follows, anywhere else the predecessor.
  cursor = before != nullptr ? before : behind;
  // The list's own cursor never points at what is gone.
  if (handle->cur_ptr == node)
    handle->cur_ptr = cursor;
  --handle->hdlprop->handle_load;
  put_node<pace>(handle, node);
  return CS_SUCCEED;
}

CS_RETCODE step(DLinkNode *&cursor, DLinkNode *DLinkNode::*direction) noexcept {
  DLinkNode *const next = cursor != nullptr ? cursor->*direction : nullptr;
  if (next == nullptr)
    return CS_FAIL;
  cursor = next;
  return CS_SUCCEED;
}

CS_RETCODE walk(LM_HANDLE *handle, const DLinkInfo *info, CS_INT operation,
                const CS_VOID *data_in) noexcept {
  const CS_PRINT_FUNC function = walk_function(handle, operation, data_in);
  if (function == nullptr)
    return CS_FAIL;
  for (const DLinkNode *node = info->head; node != nullptr;) {
    const DLinkNode *const next = node->next;
    if (function(node->data) == CS_FAIL)
      return CS_FAIL;
    node = next;
  }
  return CS_SUCCEED;
}

// What calls the caller's functions, and what is no operation.
CS_RETCODE dlink_call(LM_HANDLE *handle, CS_INT operation, const DLinkNode *cursor,
                      const CS_VOID *data_in) noexcept {
  switch (operation) {
  case LM_OP_PRINT: {
    const CS_PRINT_FUNC function = handle->hdlprop->print_func;
    if (function == nullptr || cursor == nullptr)
      return CS_FAIL;
    return function(cursor->data) == CS_FAIL ? CS_FAIL : CS_SUCCEED;
  }
  case LM_OP_PRINTALL:
  case LM_OP_APPLY:
    return walk(handle, static_cast<DLinkInfo *>(handle->list_state), operation, data_in);
  default: // LM_OP_SEARCH too: there are no keys
    return comn::raise_bomb(COMN_HERE);
  }
}

template <Pace pace>
CS_RETCODE dlink_act(LM_HANDLE *handle, CS_INT operation, DLinkNode *&cursor, CS_INT position,
                     CS_VOID *data_in) noexcept {
  auto *const info = static_cast<DLinkInfo *>(handle->list_state);
  LM_CHECK(info->state != LM_RELEASED);
  switch (operation) {
  case LM_OP_INSERT:
    return insert<pace>(handle, info, cursor, position, data_in);
  case LM_OP_DELETE:
    return remove<pace>(handle, info, cursor);
  case LM_OP_REPLACE:
    if (cursor == nullptr)
      return CS_FAIL;
    cursor->data = data_in;
    return CS_SUCCEED;
  case LM_OP_NEXT:
    return step(cursor, &DLinkNode::next);
  case LM_OP_PREV:
    return step(cursor, &DLinkNode::previous);
  case LM_OP_CURRENT:
    return CS_SUCCEED;
  case LM_OP_FIRST:
    cursor = info->head;
    return CS_SUCCEED;
  case LM_OP_LAST:
    cursor = info->tail;
    return CS_SUCCEED;
  default:
    if constexpr (pace == Pace::full)
      return dlink_call(handle, operation, cursor, data_in);
    else
      return gave_up;
  }
}

DLinkNode *load_cursor(const void *place) noexcept {
  DLinkNode *cursor;
  std::memcpy(&cursor, place, sizeof cursor);
  return cursor;
}

template <Pace pace>
CS_RETCODE dlink_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT position,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept {
  // The caller's cursor or the list's own.
  void *const place = key != nullptr ? key : static_cast<void *>(&handle->cur_ptr);
  DLinkNode *cursor = load_cursor(place);
  if (cursor == nullptr) [[unlikely]]
    cursor = load_cursor(&handle->cur_ptr);
  LM_CHECK(cursor == nullptr || cursor->state == LM_INSERTED);
  const CS_RETCODE result = dlink_act<pace>(handle, operation, cursor, position, data_in);
  if (result != CS_SUCCEED) [[unlikely]]
    return result;
  std::memcpy(place, &cursor, sizeof cursor);
  if (data_out != nullptr)
    *data_out = cursor != nullptr ? cursor->data : nullptr;
  return CS_SUCCEED;
}

// ---- queue and stack: the linked list under its own cursor ----

// Deletes the head. The data that is delivered is that of the new head.
CS_RETCODE delete_head(LM_HANDLE *handle, CS_VOID **data_out) noexcept {
  const DLinkNode *const head = static_cast<DLinkInfo *>(handle->list_state)->head;
  const DLinkNode *const successor = head != nullptr ? head->next : nullptr;
  const CS_RETCODE found = dlink_op<Pace::full>(handle, LM_OP_FIRST, nullptr, 0, nullptr, nullptr);
  if (found != CS_SUCCEED)
    return found;
  const CS_RETCODE deleted =
      dlink_op<Pace::full>(handle, LM_OP_DELETE, nullptr, 0, nullptr, data_out);
  if (deleted != CS_SUCCEED)
    return deleted;
  COMN_CHECK(handle->cur_ptr == successor, CS_FAIL);
  return CS_SUCCEED;
}

// The two differ in the end at which they insert, and in what CURRENT means.
CS_RETCODE ended_op(LM_HANDLE *handle, CS_INT operation, CS_INT insert_at, CS_INT current,
                    CS_VOID *data_in, CS_VOID **data_out) noexcept {
  switch (operation) {
  case LM_OP_INSERT:
    return dlink_op<Pace::full>(handle, LM_OP_INSERT, nullptr, insert_at, data_in, data_out);
  case LM_OP_DELETE:
    return delete_head(handle, data_out);
  case LM_OP_CURRENT:
    return dlink_op<Pace::full>(handle, current, nullptr, 0, nullptr, data_out);
  case LM_OP_PRINT:
  case LM_OP_PRINTALL:
  case LM_OP_APPLY:
    return dlink_op<Pace::full>(handle, operation, nullptr, 0, data_in, data_out);
  default:
    return comn::raise_bomb(COMN_HERE);
  }
}

// ---- the dispatch ----

CS_RETCODE kind_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                   CS_VOID *data_in, CS_VOID **data_out) noexcept {
  COMN_CHECK(handle->state != LM_RELEASED, CS_FAIL);
  COMN_CHECK_PTR(handle->hdlprop, CS_FAIL);
  COMN_CHECK(handle->hdlprop->state != LM_RELEASED, CS_FAIL);
  COMN_CHECK_PTR(handle->list_state, CS_FAIL);
  switch (handle->hdlprop->list_type) {
  case LM_DLINK:
    return dlink_op<Pace::full>(handle, operation, key, key_size, data_in, data_out);
  case LM_CHASH:
    return chash_op(handle, operation, key, key_size, data_in, data_out);
  case LM_DHASH:
    return dhash_op(handle, operation, key, key_size, data_in, data_out);
  case LM_QUEUE:
    return ended_op(handle, operation, LM_OP_LAST, LM_OP_FIRST, data_in, data_out);
  case LM_STACK:
    // Deliberate: a stack's caller passes the address of a variable that holds the address of the
    // place for the result.
    return ended_op(handle, operation, LM_OP_FIRST, LM_OP_CURRENT, data_in,
                    data_out != nullptr ? static_cast<CS_VOID **>(*data_out) : nullptr);
  default:
    return comn::raise_bomb(COMN_HERE);
  }
}

// Whether the checks of kind_op let a handle through.
bool is_usable(const LM_HANDLE *handle) noexcept {
  return handle->state != LM_RELEASED && handle->hdlprop != nullptr &&
         handle->hdlprop->state != LM_RELEASED && handle->list_state != nullptr;
}

} // namespace

CS_RETCODE comn::list::list_op_in_full(LM_HANDLE *handle, CS_INT operation, CS_VOID *key,
                                       CS_INT key_size, CS_VOID *data_in,
                                       CS_VOID **data_out) noexcept {
  return COMN_TRACE(kind_op(handle, operation, key, key_size, data_in, data_out));
}

namespace {

template <CS_INT operation>
[[gnu::flatten, gnu::noinline]] CS_RETCODE dlink_leaf(LM_HANDLE *handle, CS_INT, CS_VOID *key,
                                                      CS_INT position, CS_VOID *data_in,
                                                      CS_VOID **data_out) noexcept {
  return attempt_or<dlink_op<Pace::leaf>, list_op_in_full>(handle, operation, key, position,
                                                           data_in, data_out);
}

// Where the operations of the first two kinds begin, in the order of their codes. One jump leads
// there: an operation on a list costs hardly more than the branches that it takes.
using Operation = decltype(list_op_in_full);
constexpr CS_INT leaf_kinds = LM_CHASH - LM_DLINK + 1;
constexpr CS_INT operations = LM_OP_APPLY - LM_OP_INSERT + 1;
static_assert(leaf_kinds == 2 && operations == 12);
constexpr Operation *starts[leaf_kinds][operations] = {
    {
        dlink_leaf<LM_OP_INSERT>,
        dlink_leaf<LM_OP_DELETE>,
        list_op_in_full, // search
        dlink_leaf<LM_OP_REPLACE>,
        dlink_leaf<LM_OP_NEXT>,
        dlink_leaf<LM_OP_PREV>,
        dlink_leaf<LM_OP_CURRENT>,
        dlink_leaf<LM_OP_FIRST>,
        dlink_leaf<LM_OP_LAST>,
        list_op_in_full, // print, print all, apply
        list_op_in_full,
        list_op_in_full,
    },
    {
        chash_leaf<LM_OP_INSERT>,
        chash_leaf<LM_OP_DELETE>,
        chash_leaf<LM_OP_SEARCH>,
        chash_leaf<LM_OP_REPLACE>,
        list_op_in_full, // next, previous, current, first, last
        list_op_in_full,
        list_op_in_full,
        list_op_in_full,
        list_op_in_full,
        list_op_in_full, // print, print all, apply
        list_op_in_full,
        list_op_in_full,
    },
};

} // namespace

CS_RETCODE lm_list_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                      CS_VOID *data_in, CS_VOID **data_out) noexcept {
  if (handle == nullptr) [[unlikely]]
    return COMN_TRACE(CS_FAIL);
  if (!comn::is_tracing() && is_usable(handle)) [[likely]] {
    const auto kind = static_cast<CS_UINT>(handle->hdlprop->list_type) - LM_DLINK;
    const auto which = static_cast<CS_UINT>(operation) - LM_OP_INSERT;
    if (kind < leaf_kinds && which < operations) [[likely]]
      return starts[kind][which](handle, operation, key, key_size, data_in, data_out);
  }
  return list_op_in_full(handle, operation, key, key_size, data_in, data_out);
}
