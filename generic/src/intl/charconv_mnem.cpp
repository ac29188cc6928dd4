// The texts that stand for characters without a counterpart: their release.
#include "checks.h"
#include "comloc.h"
#include "lmpublic.h"
#include "zrvintl.h"

CS_RETCODE comn__drop_mnem_string(CS_VOID *item) noexcept {
  auto *const mnemonic = static_cast<UNICODE_MNEM_STRING *>(item);
  if (mnemonic != nullptr) {
    comn_free(mnemonic->string);
    mnemonic->string = nullptr;
    mnemonic->string_len = 0;
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_intl_drop_mnemdb(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  CsCtxGlobals *const globals = context->ctxglobals;
  COMN_CHECK_PTR(globals, COMN_TRACE(CS_FAIL));
  auto *const list = static_cast<LM_HANDLE *>(globals->mnem_db);
  if (list == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  CS_PRINT_FUNC release = comn__drop_mnem_string;
  lm_list_op(list, LM_OP_APPLY, nullptr, CS_UNUSED, &release, nullptr);
  globals->mnem_db = nullptr;
  return COMN_TRACE(lm_list_drop(list, LM_DROP_FORCE));
}
