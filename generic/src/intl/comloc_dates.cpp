// What dates look like: questions by a format and by a locale.
#include <cstring>
#include <iterator>

#include "checks.h"
#include "date_table.h"
#include "datetime.h"
#include "locale_of.h"

namespace {

// Date orders by their number, from 1 on, and the styles of date-times as text.
constexpr struct {
  const char *text;
  CS_INT style;
} date_orders[] = {
    {"mdy", 0}, {"dmy", 3}, {"ymd", 11}, {"ydm", 13}, {"myd", 14}, {"dym", 15},
};

// A locale that is there must have date tables.
CsLocCache *complete_cache(const CS_LOCALE *locale) noexcept {
  auto *const cache = static_cast<CsLocCache *>(locale->timeptr);
  COMN_CHECK_PTR(cache, nullptr);
  COMN_CHECK_PTR(cache->locdateinfo, nullptr);
  return cache;
}

// The locale that counts, where the context may be missing too; null when there is neither.
const CS_LOCALE *any_locale(const CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return context != nullptr ? comn::locale_of(context, locale) : locale;
}

const CS_LOCALE *any_locale(const CS_CONTEXT *context, const CS_DATAFMT *format) noexcept {
  return any_locale(context, format != nullptr ? format->locale : nullptr);
}

// What a table says, null or 0 for a locale that is not complete. `get` takes it from the table.
template <class Get>
auto answer(const CsLocCache *cache, Get get) noexcept {
  return cache != nullptr ? get(*cache->locdateinfo) : decltype(get(*cache->locdateinfo)){};
}

// The same for a locale, and what is built in for none.
template <class Answer, class Get>
Answer answer_or(Answer builtin, const CS_LOCALE *locale, Get get) noexcept {
  return locale != nullptr ? answer(complete_cache(locale), get) : builtin;
}

CS_CHAR **names(CS_BYTE **texts) noexcept {
  return reinterpret_cast<CS_CHAR **>(texts);
}

constexpr auto order_id = [](CS_DATEINFO &table) { return table.locdateorder_id; };
constexpr auto is_12_hour = [](CS_DATEINFO &table) { return table.is12hour; };
constexpr auto text_style = [](CS_DATEINFO &table) { return table.convertfmt; };
constexpr auto big_text_style = [](CS_DATEINFO &table) {
  return table.bdtconvertfmt != -1 ? table.bdtconvertfmt : table.convertfmt;
};

// The styles that a date-time has as text.
bool has_text(CS_INT style) noexcept {
  constexpr struct {
    CS_INT first, last;
  } ranges[] = {{0, 23}, {36, 40}, {100, 118}, {121, 122}, {136, 141}};
  for (const auto &range : ranges)
    if (style >= range.first && style <= range.last)
      return true;
  return false;
}

} // namespace

namespace comn {

int date_order_id(const char *text) noexcept {
  int id = 1;
  for (const auto &order : date_orders) {
    if (std::strcmp(order.text, text) == 0)
      return id;
    ++id;
  }
  return COM_DATEORDER_MDY;
}

CsLocCache *date_cache(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  COMN_CHECK_PTR(context, nullptr);
  const CS_LOCALE *const used = locale_of(context, locale);
  COMN_CHECK_PTR(used, nullptr);
  return complete_cache(used);
}

} // namespace comn

CS_INT com__map_dateorder_id_to_fmt(int dateorder_id) noexcept {
  COMN_CHECK(dateorder_id >= 1 && dateorder_id <= static_cast<int>(std::size(date_orders)), 0);
  return date_orders[dateorder_id - 1].style;
}

// ---- by a format ----

CS_CHAR **com_intl_months(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_months(), any_locale(context, dfmt),
                   [](CS_DATEINFO &table) { return names(table.months); });
}

CS_CHAR **com_intl_shortmonths(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_shortmonths(), any_locale(context, dfmt),
                   [](CS_DATEINFO &table) { return names(table.shortmonths); });
}

CS_CHAR **com_intl_days(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_days(), any_locale(context, dfmt),
                   [](CS_DATEINFO &table) { return names(table.days); });
}

CS_INT com_intl_firstday(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_firstday(), any_locale(context, dfmt),
                   [](CS_DATEINFO &table) { return table.firstday; });
}

CS_CHAR *com_intl_dateorder(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_date_order(), any_locale(context, dfmt),
                   [](CS_DATEINFO &table) -> CS_CHAR * { return table.dateorder; });
}

int com_intl_dateorder_id(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(com__get_date_order_id(), any_locale(context, dfmt), order_id);
}

CS_INT com_intl_is12hour(CsContext *context, CS_DATAFMT *dfmt) noexcept {
  return answer_or(1, any_locale(context, dfmt), is_12_hour);
}

CS_INT com_intl_convt_firstday(CS_INT orig_firstday, CS_INT orig_day,
                               CS_INT dest_firstday) noexcept {
  return ((orig_firstday - 1 + orig_day) % 7 + 8 - dest_firstday) % 7;
}

// ---- by a locale ----

CS_INT comn_intl_is12hour(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer(comn::date_cache(context, locale), is_12_hour);
}

CS_INT comn_intl_get_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer(comn::date_cache(context, locale), text_style);
}

CS_INT comn_intl_get_bdtfmt(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer(comn::date_cache(context, locale), big_text_style);
}

CS_INT comn_dtloc_is12hour(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer_or(1, any_locale(context, locale), is_12_hour);
}

int comn_dtloc_format(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer_or(com__get_date_order_id(), any_locale(context, locale), order_id);
}

// Without a locale the answer is a date order, not a style, deliberately.
CS_INT comn_dtloc_format_fmt(CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return answer_or(com__get_date_order_id(), any_locale(context, locale), text_style);
}

CS_INT comn_get_datetochar_fmt(CS_CONTEXT *context, CS_DATAFMT *srcfmt,
                               CS_DATAFMT *destfmt) noexcept {
  COMN_CHECK_PTR(srcfmt, 0);
  COMN_CHECK_PTR(destfmt, 0);
  const bool is_big =
      srcfmt->datatype == CS_TYPE_BIGDATETIME || srcfmt->datatype == CS_TYPE_BIGTIME;
  const CS_INT wanted = is_big ? comn_intl_get_bdtfmt(context, destfmt->locale)
                               : comn_intl_get_dtfmt(context, destfmt->locale);
  return has_text(wanted) ? wanted : 0;
}
