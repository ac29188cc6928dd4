// The operations on lists: which kind they go to.
#include <iterator>

#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

const Kind *comn::list::find_kind(CS_INT list_type) noexcept {
  // From LM_DLINK on. 15 and 17 are no kinds.
  static constexpr const Kind *kinds[] = {&dlink_kind, &chash_kind, nullptr,    &dhash_kind,
                                          nullptr,     &queue_kind, &stack_kind};
  static_assert(std::size(kinds) == LM_STACK - LM_DLINK + 1);
  return list_type >= LM_DLINK && list_type <= LM_STACK ? kinds[list_type - LM_DLINK] : nullptr;
}

CS_RETCODE lm_list_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                      CS_VOID *data_in, CS_VOID **data_out) noexcept {
  if (handle == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(handle->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle->hdlprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(handle->hdlprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle->list_state, COMN_TRACE(CS_FAIL));
  COMN_CHECK(!is_released(handle->list_state), COMN_TRACE(CS_FAIL));
  const Kind *const kind = find_kind(handle->hdlprop->list_type);
  COMN_CHECK(kind != nullptr, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(kind->operate(handle, {operation, key, key_size, data_in, data_out}));
}
