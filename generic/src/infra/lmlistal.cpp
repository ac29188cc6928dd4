// The making of a list.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

namespace {

// The record of the kind, and a filled node pool.
CS_RETCODE make_state(LM_HANDLE *handle) noexcept {
  const Kind *const kind = find_kind(handle->hdlprop->list_type);
  CS_RETCODE result = kind->make(handle);
  if (result != CS_SUCCEED || handle->hdlprop->max_poolsize < 1)
    return result;
  result = lm__api_dlink_mpool_init(handle, 0);
  if (result != CS_SUCCEED)
    kind->drop(handle, handle->list_state);
  return result;
}

// What a list takes from its context.
void take_defaults(LM_HDLPROP *prop, LM_CONTEXT *context, CS_INT list_type) noexcept {
  prop->list_type = list_type;
  prop->max_tablesize = context->cxtprop->max_tablesize;
  prop->max_poolsize = list_type == LM_DHASH ? 0 : context->cxtprop->max_poolsize;
  prop->context = context;
}

void enter_context(LM_CONTEXT *context, LM_HANDLE *handle) noexcept {
  handle->next = context->first_handle;
  context->first_handle = handle;
  make_current(context->cxtprop, handle);
  ++context->cxtprop->context_load;
}

} // namespace

CS_RETCODE lm_list_alloc(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                         LM_HANDLE **handle_ptr) noexcept {
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(lm_list_alloc_ex(context, list_type, handle_name, length, handle_ptr,
                                     context->lmmalloc, context->lmfree, context->lmuser));
}

CS_RETCODE lm_list_alloc_ex(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name,
                            CS_INT length, LM_HANDLE **handle_ptr, LM_ALLOCATOR lm_alloc,
                            LM_RELEASER lm_free, void *userctx) noexcept {
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->cxtprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle_ptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_alloc, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_free, COMN_TRACE(CS_FAIL));
  if (context->lmchkparam == 1 && handle_name == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_INT type = list_type == CS_UNUSED ? context->cxtprop->list_type : list_type;
  if (find_kind(type) == nullptr)
    return COMN_TRACE(CS_FAIL);

  auto *const handle = make_record<LM_HANDLE>(lm_alloc, userctx, LM_ALLOCATED);
  if (handle == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  auto *const prop = make_record<LM_HDLPROP>(lm_alloc, userctx, LM_ALLOCATED);
  if (prop == nullptr) {
    release_record(handle, lm_free, userctx);
    return COMN_TRACE(CS_MEM_ERROR);
  }
  handle->hdlprop = prop;
  handle->lmhmalloc = lm_alloc;
  handle->lmhfree = lm_free;
  handle->lmhuser = userctx;
  take_defaults(prop, context, type);
  CS_RETCODE result = lm__api_setdata(&prop->handle_name, &prop->length, handle_name, length);
  if (result == CS_SUCCEED)
    result = make_state(handle);
  if (result != CS_SUCCEED) {
    release_name(prop->handle_name, prop->length);
    release_record(prop, lm_free, userctx);
    release_record(handle, lm_free, userctx);
    return COMN_TRACE(result);
  }
  prop->state = LM_INITIALIZED;
  handle->state = LM_INITIALIZED;
  enter_context(context, handle);
  *handle_ptr = handle;
  return COMN_TRACE(CS_SUCCEED);
}
