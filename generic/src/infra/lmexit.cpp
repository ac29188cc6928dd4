// The end of a list manager context.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

CS_RETCODE lm_exit(LM_CONTEXT *context, CS_INT option) noexcept {
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->cxtprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(option == LM_EXIT_NORMAL || option == LM_EXIT_FORCE, COMN_TRACE(CS_FAIL));
  if (option == LM_EXIT_NORMAL && context->cxtprop->context_load != 0)
    return COMN_TRACE(CS_FAIL);

  while (context->first_handle != nullptr) {
    const CS_RETCODE dropped = lm_list_drop(context->first_handle, LM_DROP_FORCE);
    if (dropped != CS_SUCCEED)
      return COMN_TRACE(dropped);
  }
  release_name(context->context_name, context->length);
  const LM_RELEASER free = context->lmfree;
  void *const user = context->lmuser;
  release_record(context->cxtprop, free, user);
  release_record(context, free, user);
  return COMN_TRACE(CS_SUCCEED);
}
