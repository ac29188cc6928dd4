// A date style of a locale's own: another cache, with private date tables.
#include "checks.h"
#include "date_table.h"
#include "loc_cache.h"
#include "locale_of.h"

namespace {

// A copy of a cache that no name finds.
CS_RETCODE copy_nameless(CS_CONTEXT *context, CsLocCache *cache, CsLocCache **copyp) noexcept {
  CS_RETCODE result = comn__create_loccache(context, copyp);
  if (result != CS_SUCCEED)
    return result;
  result = comn__copy_loccache(cache, *copyp);
  if (result != CS_SUCCEED) {
    comn__drop_loccache(*copyp);
    return result;
  }
  comn::clear_locname(**copyp);
  return CS_SUCCEED;
}

// A private copy of date tables.
CS_RETCODE copy_private(CS_DATEINFO *table, CS_DATEINFO **copyp) noexcept {
  auto *const copy = static_cast<CS_DATEINFO *>(comn_calloc(1, sizeof(CS_DATEINFO)));
  if (copy == nullptr)
    return CS_MEM_ERROR;
  const CS_RETCODE result = comn__copy_dtinfo(table, copy);
  if (result != CS_SUCCEED) {
    comn_free(copy);
    return result;
  }
  copy->id = nullptr;
  *copyp = copy;
  return CS_SUCCEED;
}

void drop_both(CsLocCache *cache) noexcept {
  comn__free_dtinfo(cache->locdateinfo);
  comn__drop_loccache(cache);
}

void serve_all_categories(CS_LOCALE *locale, CsLocCache *cache) noexcept {
  for (const auto category : comn::categories)
    locale->*category = cache;
}

} // namespace

CS_RETCODE comn__intl_set_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type,
                                CS_VOID *buffer) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(context->ctxglobals, CS_FAIL);
  COMN_CHECK_PTR(buffer, CS_FAIL);
  COMN_CHECK(type == COM_DT_CONVERTFMT || type == COM_DT_BDTCONVERTFMT, CS_FAIL);
  CsLocCache *const old = comn::date_cache(context, locale);
  if (old == nullptr)
    return CS_FAIL;

  CsLocCache *cache;
  CS_RETCODE result = copy_nameless(context, old, &cache);
  if (result != CS_SUCCEED)
    return result;
  result = copy_private(old->locdateinfo, &cache->locdateinfo);
  if (result != CS_SUCCEED) {
    comn__drop_loccache(cache);
    return result;
  }
  CS_DATEINFO &table = *cache->locdateinfo;
  std::memcpy(type == COM_DT_CONVERTFMT ? &table.convertfmt : &table.bdtconvertfmt, buffer,
              sizeof(CS_INT));

  CsLocCache *equal;
  result = comn__scan_lcache(context, cache, &equal);
  if (result != CS_SUCCEED || equal != nullptr)
    drop_both(cache);
  if (result != CS_SUCCEED)
    return result;
  if (equal != nullptr)
    cache = equal;
  comn::link_cache(context->ctxglobals, cache);
  comn::link_date_table(context->ctxglobals, cache->locdateinfo);
  serve_all_categories(comn::locale_of(context, locale), cache);
  return CS_SUCCEED;
}

CS_RETCODE comn_intl_set_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale, CS_VOID *buffer) noexcept {
  return COMN_TRACE(comn__intl_set_dtfmt(context, locale, COM_DT_CONVERTFMT, buffer));
}

CS_RETCODE comn_intl_set_bdtfmt(CS_CONTEXT *context, CS_LOCALE *locale, CS_VOID *buffer) noexcept {
  return COMN_TRACE(comn__intl_set_dtfmt(context, locale, COM_DT_BDTCONVERTFMT, buffer));
}
