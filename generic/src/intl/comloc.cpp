// Questions to a locale: the names that its caches hold, its character set, and whether it agrees
// with another.
#include "comloc.h"

#include <cstring>

#include "charset.h"
#include "checks.h"
#include "locale_of.h"

namespace {

struct Name {
  const CS_CHAR *text;
  CS_INT length;
};

CS_CHAR *append(CS_CHAR *end, Name name) noexcept {
  if (name.length > 0)
    std::memcpy(end, name.text, static_cast<size_t>(name.length));
  return end + name.length;
}

// The objects that com_intl_loccmp compares, by `type`.
const void *object_of(const CsLocCache &cache, CS_INT type) noexcept {
  switch (type) {
  case CS_LOCSTR_CHARSET:
    return cache.locchardesc;
  case CS_LOCSTR_LANGUAGE:
    return cache.locmessage;
  default:
    return cache.locsortorder;
  }
}

CS_ATTRIB *attributes_of(const CS_LOCALE *locale) noexcept {
  const auto *const cache = static_cast<const CsLocCache *>(locale->ctypeptr);
  COMN_CHECK(cache != nullptr, nullptr);
  COMN_CHECK_PTR(cache->locchardesc, nullptr);
  COMN_CHECK_PTR(cache->locchardesc->char_attrib, nullptr);
  return cache->locchardesc->char_attrib;
}

} // namespace

CS_RETCODE com_intl_getstr(CsLocale *locale, CS_INT lctype, CS_INT type, CS_CHAR *buf,
                           CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(locale, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  COMN_CHECK(lctype >= CS_LCTYPE_COLLATE && lctype <= CS_LCTYPE_TIME, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type >= CS_LOCSTR_CHARSET && type <= CS_LOCSTR_LANG_CHARSET, COMN_TRACE(CS_FAIL));
  const CsLocCache *const cache = comn::cache_of(locale, lctype);
  COMN_CHECK_PTR(cache, COMN_TRACE(CS_FAIL));

  const Name charset = {cache->charname, cache->charnamelen};
  const Name language = {cache->langname, cache->langnamelen};
  const Name sort_order = {cache->sortname, cache->sortnamelen};
  // One, or three in a row.
  Name parts[3] = {};
  switch (type) {
  case CS_LOCSTR_CHARSET:
    parts[0] = charset;
    break;
  case CS_LOCSTR_LANGUAGE:
    parts[0] = language;
    break;
  case CS_LOCSTR_SORTORDER:
    parts[0] = sort_order;
    break;
  default:
    parts[0] = language;
    parts[1] = {".", 1};
    parts[2] = charset;
  }
  const CS_INT length = parts[0].length + parts[1].length + parts[2].length;
  if (buflen < length)
    return COMN_TRACE(CS_FAIL);
  CS_CHAR *end = buf;
  for (const Name &part : parts)
    end = append(end, part);
  *outlen = length;
  return COMN_TRACE(CS_SUCCEED);
}

CS_INT com_intl_loccmp(CS_INT lctype, CS_INT type, CsLocale *loc1, CsLocale *loc2) noexcept {
  COMN_CHECK_PTR(loc1, 1);
  COMN_CHECK_PTR(loc2, 1);
  COMN_CHECK(lctype >= CS_LCTYPE_COLLATE && lctype <= CS_LCTYPE_TIME, 1);
  COMN_CHECK(type >= CS_LOCSTR_CHARSET && type <= CS_LOCSTR_SORTORDER, 1);
  const CsLocCache *const cache1 = comn::cache_of(loc1, lctype);
  const CsLocCache *const cache2 = comn::cache_of(loc2, lctype);
  if (cache1 == cache2)
    return 0;
  COMN_CHECK_PTR(cache1, 1);
  COMN_CHECK_PTR(cache2, 1);
  return object_of(*cache1, type) == object_of(*cache2, type) ? 0 : 1;
}

CS_ATTRIB *com_intl_charattr(CS_CONTEXT *context, CS_DATAFMT *dfmt) noexcept {
  if (dfmt != nullptr && dfmt->locale != nullptr)
    return attributes_of(dfmt->locale);
  if (context == nullptr)
    return com_get_charattrib();
  COMN_CHECK_PTR(context->ctxlocale, nullptr);
  COMN_CHECK_PTR(context->ctxlocale->ctypeptr, nullptr);
  return attributes_of(context->ctxlocale);
}
