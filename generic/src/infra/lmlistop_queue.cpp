// Queue and stack: the linked list under its own cursor. They differ in the end at which they
// insert, in what CURRENT means, and in how the place for a result is given.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

namespace {

CS_RETCODE forward(LM_HANDLE *handle, CS_INT operation, CS_INT position, CS_VOID *data_in,
                   CS_VOID **data_out) noexcept {
  return dlink_operate(handle, {operation, nullptr, position, data_in, data_out});
}

// The data that is delivered is that of the new head.
CS_RETCODE delete_head(LM_HANDLE *handle, CS_VOID **data_out) noexcept {
  const DLinkNode *const head = static_cast<DLinkInfo *>(handle->list_state)->head;
  const DLinkNode *const successor = head != nullptr ? head->next : nullptr;
  const CS_RETCODE found = forward(handle, LM_OP_FIRST, 0, nullptr, nullptr);
  if (found != CS_SUCCEED)
    return found;
  const CS_RETCODE deleted = forward(handle, LM_OP_DELETE, 0, nullptr, data_out);
  if (deleted != CS_SUCCEED)
    return deleted;
  COMN_CHECK(handle->cur_ptr == successor, CS_FAIL);
  return CS_SUCCEED;
}

// `insert_at` is a position, `current` the operation that CURRENT comes to.
CS_RETCODE ended_operate(LM_HANDLE *handle, const Request &request, CS_INT insert_at,
                         CS_INT current, CS_VOID **data_out) noexcept {
  switch (request.operation) {
  case LM_OP_INSERT:
    return forward(handle, LM_OP_INSERT, insert_at, request.data_in, data_out);
  case LM_OP_DELETE:
    return delete_head(handle, data_out);
  case LM_OP_CURRENT:
    return forward(handle, current, 0, nullptr, data_out);
  case LM_OP_PRINT:
  case LM_OP_PRINTALL:
  case LM_OP_APPLY:
    return forward(handle, request.operation, 0, request.data_in, data_out);
  default:
    return comn::raise_bomb(COMN_HERE);
  }
}

CS_RETCODE queue_operate(LM_HANDLE *handle, const Request &request) noexcept {
  return ended_operate(handle, request, LM_OP_LAST, LM_OP_FIRST, request.data_out);
}

CS_RETCODE stack_operate(LM_HANDLE *handle, const Request &request) noexcept {
  // Deliberate: a stack's caller passes the address of a variable that holds the address of the
  // place for the result.
  auto **const place =
      request.data_out != nullptr ? static_cast<CS_VOID **>(*request.data_out) : nullptr;
  return ended_operate(handle, request, LM_OP_FIRST, LM_OP_CURRENT, place);
}

} // namespace

constexpr Kind comn::list::queue_kind = {dlink_make, dlink_count, dlink_drop, queue_operate,
                                         nullptr};
constexpr Kind comn::list::stack_kind = {dlink_make, dlink_count, dlink_drop, stack_operate,
                                         nullptr};
