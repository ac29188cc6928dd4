// Locale records: the list of those that contexts hand out.
#include "checks.h"
#include "zrvintl.h"

#include "comloc.h"

namespace {

// Where the list, or a record of it, points at a record; null when none does.
CS_LOCALE **link_to(CsCtxGlobals *globals, const CS_LOCALE *locale) noexcept {
  CS_LOCALE **link = &globals->cmg_locale;
  while (*link != nullptr && *link != locale)
    link = &(*link)->next;
  return *link != nullptr ? link : nullptr;
}

} // namespace

CS_RETCODE comn_loc_alloc(CS_CONTEXT *context, CS_LOCALE **locptr) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxlocale, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(locptr, COMN_TRACE(CS_FAIL));
  auto *const locale = static_cast<CS_LOCALE *>(comn_calloc(1, sizeof(CS_LOCALE)));
  *locptr = locale;
  if (locale == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  comn_loc_copy(locale, context->ctxlocale);
  locale->ctxptr = context;
  locale->next = context->ctxglobals->cmg_locale;
  context->ctxglobals->cmg_locale = locale;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_loc_drop(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(locale, COMN_TRACE(CS_FAIL));
  CS_LOCALE **const link = link_to(context->ctxglobals, locale);
  if (link == nullptr)
    return COMN_TRACE(CS_FAIL);
  *link = locale->next;
  if (context->ctxlocale == locale)
    context->ctxlocale = nullptr;
  comn_free(locale);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_loc_drop_all(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  // The default locale may stand on the list or beside it.
  CS_LOCALE *const default_locale = context->ctxdeflocale;
  const bool is_listed =
      default_locale != nullptr && link_to(context->ctxglobals, default_locale) != nullptr;
  while (CS_LOCALE *const locale = context->ctxglobals->cmg_locale) {
    context->ctxglobals->cmg_locale = locale->next;
    *locale = {};
    comn_free(locale);
  }
  if (!is_listed)
    comn_free(default_locale);
  context->ctxdeflocale = nullptr;
  context->ctxlocale = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}

CS_BOOL comn_loc_validate(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  COMN_CHECK_PTR(context, 0);
  COMN_CHECK_PTR(context->ctxglobals, 0);
  COMN_CHECK_PTR(locale, 0);
  return link_to(context->ctxglobals, locale) != nullptr;
}

CS_RETCODE comn_loc_copy(CS_LOCALE *dest_locale, CS_LOCALE *src_locale) noexcept {
  COMN_CHECK_PTR(dest_locale, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src_locale, COMN_TRACE(CS_FAIL));
  CS_VOID *const owner = dest_locale->ctxptr;
  CS_LOCALE *const next = dest_locale->next;
  *dest_locale = *src_locale;
  dest_locale->ctxptr = owner;
  dest_locale->next = next;
  return COMN_TRACE(CS_SUCCEED);
}
