// The texts of a locale in its own character set: names of months and days, the date order, the
// locale's name.
#include <cstring>

#include "checks.h"
#include "date_table.h"

namespace {

// Texts are kept as UTF-8.
CS_RETCODE convert(CS_CONTEXT *context, CS_LOCALE *locale, CsLocCache *cache, const void *text,
                   CS_INT length, CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  CS_DATAFMT format{};
  format.datatype = CS_TYPE_CHAR;
  format.maxlength = buflen;
  format.locale = locale;
  auto *const source = static_cast<CS_BYTE *>(const_cast<void *>(text));
  return comn__convt_from_utf8(context, 1, source, length, &format, cache, buffer, outlen);
}

} // namespace

CS_RETCODE comn_intl_month(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type, CS_INT month_number,
                           CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type == COM_DT_MONTH || type == COM_DT_SHORTMONTH, COMN_TRACE(CS_FAIL));
  COMN_CHECK(month_number >= 0 && month_number < 12, COMN_TRACE(CS_CONV_DOMAIN));
  CsLocCache *const cache = comn::date_cache(context, locale);
  if (cache == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_DATEINFO &table = *cache->locdateinfo;
  const bool is_full = type == COM_DT_MONTH;
  return COMN_TRACE(
      convert(context, locale, cache, (is_full ? table.months : table.shortmonths)[month_number],
              (is_full ? table.mon_len : table.shrtmon_len)[month_number], buffer, buflen, outlen));
}

CS_RETCODE comn_intl_day(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type, CS_INT day_number,
                         CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type == COM_DT_DAYNAME, COMN_TRACE(CS_FAIL));
  COMN_CHECK(day_number >= 0 && day_number < 7, COMN_TRACE(CS_CONV_DOMAIN));
  CsLocCache *const cache = comn::date_cache(context, locale);
  if (cache == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_DATEINFO &table = *cache->locdateinfo;
  return COMN_TRACE(convert(context, locale, cache, table.days[day_number],
                            table.day_len[day_number], buffer, buflen, outlen));
}

CS_RETCODE comn_intl_dateorder(CS_CONTEXT *context, CS_LOCALE *locale, CS_CHAR *buffer,
                               CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  CsLocCache *const cache = comn::date_cache(context, locale);
  if (cache == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_CHAR *const order = cache->locdateinfo->dateorder;
  return COMN_TRACE(
      convert(context, locale, cache, order,
              static_cast<CS_INT>(strnlen(order, sizeof cache->locdateinfo->dateorder)), buffer,
              buflen, outlen));
}

CS_RETCODE com_intl_get_locname(CS_CONTEXT *context, CS_VOID *loccache, CS_CHAR *buffer,
                                CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(loccache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  auto *const cache = static_cast<CsLocCache *>(loccache);
  if (cache->locnamelen == 0) {
    *outlen = 0;
    return COMN_TRACE(CS_SUCCEED);
  }
  return COMN_TRACE(
      convert(context, nullptr, cache, cache->locname, cache->locnamelen, buffer, buflen, outlen));
}
