// Message records: one for each language in each character set, with the texts that were loaded for
// it.
#include "charset.h"
#include "checks.h"
#include "comerr.h"
#include "zrvintl.h"

namespace {

void drop_section(CsErrSecCache *section) noexcept {
  for (CsErrorCache *entry = section->errcache; entry != nullptr;) {
    COMN_CHECK(entry->errseccache == section);
    CsErrorCache *const next = entry->next;
    comn_free(entry->errmsg);
    comn_free(entry);
    entry = next;
  }
  comn_free(section->errstr);
  comn_free(section);
}

} // namespace

CS_RETCODE com__errfile_cache_drop(CsErrFileCache *files) noexcept {
  while (files != nullptr) {
    CsErrFileCache *const next = files->next;
    for (CsErrSecCache *section = files->errsecs; section != nullptr;) {
      CsErrSecCache *const next_section = section->next;
      drop_section(section);
      section = next_section;
    }
    comn_free(files->errfilename);
    comn_free(files);
    files = next;
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__intl_load_message(CsContext *context, CsOID *oid, CsLocCache *lcache) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache->locchardesc, COMN_TRACE(CS_FAIL));
  CsOID *const charset = lcache->locchardesc->oid;
  auto *const head = static_cast<CS_MESSAGE *>(context->ctxglobals->cmg_message);
  CS_MESSAGE *message = head;
  while (message != nullptr && (message->lang_oid != oid || message->charset_oid != charset))
    message = message->messagenext;
  if (message == nullptr) {
    message = static_cast<CS_MESSAGE *>(comn_calloc(1, sizeof(CS_MESSAGE)));
    if (message == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    message->lang_oid = oid;
    message->charset_oid = charset;
    message->messagenext = head;
    context->ctxglobals->cmg_message = message;
  }
  lcache->locmessage = message;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__message_drop(CsContext *, CS_MESSAGE *message) noexcept {
  COMN_CHECK_PTR(message, COMN_TRACE(CS_FAIL));
  const CS_RETCODE result = com__errfile_cache_drop(message->locfilecache);
  comn_free(message);
  return COMN_TRACE(result);
}

CS_RETCODE comn_intl_message_drop(CsContext *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  auto *message = static_cast<CS_MESSAGE *>(context->ctxglobals->cmg_message);
  while (message != nullptr) {
    CS_MESSAGE *const next = message->messagenext;
    comn__message_drop(context, message);
    message = next;
  }
  context->ctxglobals->cmg_message = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}
