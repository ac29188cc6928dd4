// The start of a list manager context.
#include "checks.h"
#include "lmlist.h"
#include "zrvintl.h"

using namespace comn::list;

void *lm___malloc(void *, size_t size) noexcept {
  return comn_malloc(size);
}

void lm___free(void *, void *block) noexcept {
  comn_free(block);
}

CS_RETCODE lm_initlm(CS_INT version, CS_CHAR *context_name, CS_INT length,
                     LM_CONTEXT **context_ptr) noexcept {
  return COMN_TRACE(
      lm_initlm_ex(version, context_name, length, context_ptr, lm___malloc, lm___free, nullptr));
}

CS_RETCODE lm_initlm_ex(CS_INT version, CS_CHAR *context_name, CS_INT length,
                        LM_CONTEXT **context_ptr, LM_ALLOCATOR lm_alloc, LM_RELEASER lm_free,
                        void *userctx) noexcept {
  COMN_CHECK_PTR(context_ptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_alloc, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_free, COMN_TRACE(CS_FAIL));
  COMN_CHECK(version >= LM_MIN_VERSION, COMN_TRACE(CS_FAIL));

  auto *const context = make_record<LM_CONTEXT>(lm_alloc, userctx, LM_ALLOCATED);
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  auto *const prop = make_record<LM_CXTPROP>(lm_alloc, userctx, LM_ALLOCATED);
  if (prop == nullptr) {
    release_record(context, lm_free, userctx);
    return COMN_TRACE(CS_FAIL);
  }
  if (lm__api_setdata(&context->context_name, &context->length, context_name, length) !=
      CS_SUCCEED) {
    release_record(prop, lm_free, userctx);
    release_record(context, lm_free, userctx);
    return COMN_TRACE(CS_MEM_ERROR);
  }
  prop->list_type = default_kind;
  prop->max_tablesize = default_tablesize;
  prop->max_poolsize = default_poolsize;
  prop->version = version;
  prop->state = LM_INITIALIZED;
  context->cxtprop = prop;
  context->lmmalloc = lm_alloc;
  context->lmfree = lm_free;
  context->lmuser = userctx;
  context->state = LM_INITIALIZED;
  *context_ptr = context;
  return COMN_TRACE(CS_SUCCEED);
}
