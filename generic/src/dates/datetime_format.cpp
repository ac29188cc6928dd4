// Dates and times as text: two engines over one table of layouts.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "crack.h"
#include "decimal_text.h"
#include "digit_pairs.h"
#include "layouts.h"

using namespace comn::calendar;
using namespace comn::layouts;

namespace {

// Results besides the length.
constexpr CS_INT cut = 0;
constexpr CS_INT unknown_style = -1;
constexpr CS_INT no_name = -2;

// A field holds the last digits of a number, whose sign does not show.
constexpr uint32_t last_digits(CS_INT value, uint32_t modulus) noexcept {
  const auto magnitude = static_cast<uint32_t>(value);
  if (magnitude < modulus) [[likely]]
    return magnitude;
  return (value < 0 ? 0U - magnitude : magnitude) % modulus;
}

char *put_two(char *out, CS_INT value) noexcept {
  comn::write_pair(out, last_digits(value, 100));
  return out + 2;
}

char *put_two_blank(char *out, CS_INT value) noexcept {
  put_two(out, value);
  if (value > -10 && value < 10)
    *out = ' ';
  return out + 2;
}

char *put_four(char *out, CS_INT value) noexcept {
  const uint32_t digits = last_digits(value, 10000);
  comn::write_pair(out, digits / 100);
  comn::write_pair(out + 2, digits % 100);
  return out + 4;
}

char *put_three(char *out, uint32_t digits) noexcept {
  *out = static_cast<char>('0' + digits / 100);
  comn::write_pair(out + 1, digits % 100);
  return out + 3;
}

char *put_six(char *out, uint32_t digits) noexcept {
  comn::write_pair(out, digits / 10000);
  comn::write_pair(out + 2, digits / 100 % 100);
  comn::write_pair(out + 4, digits % 100);
  return out + 6;
}

CS_INT hour_of_twelve(CS_INT hour) noexcept {
  if (hour > 12)
    return hour - 12;
  return hour == 0 ? 12 : hour;
}

// Counted from 1. The number behind the largest wraps to one of the same digits.
CS_INT month_number(CS_INT month) noexcept {
  return static_cast<CS_INT>(static_cast<CS_UINT>(month) + 1);
}

// Milliseconds as a three-digit field shows them. Those of a microsecond fraction are rounded, and
// 1000 of them show as 000: no carry reaches the second.
uint32_t shown_millis(const CS_DATEREC &fields, CS_INT secprec) noexcept {
  if (secprec != micro_precision)
    return last_digits(fields.datemsecond, 1000);
  const CS_INT fraction = fields.datesecfrac;
  if (fraction < 0)
    return last_digits((fraction + 500) / 1000, 1000);
  return (static_cast<uint32_t>(fraction) + 500) / 1000 % 1000;
}

uint32_t shown_micros(const CS_DATEREC &fields, CS_INT secprec) noexcept {
  if (secprec != micro_precision)
    return last_digits(fields.datemsecond, 1000) * 1000;
  return last_digits(fields.datesecfrac, 1000000);
}

// Writes the text and returns its end. `name` is the month's, if the layout has it.
char *write_fields(char *out, const Layout &layout, const CS_DATEREC &fields, const CS_CHAR *name,
                   CS_INT secprec) noexcept {
  for (const Code *code = layout.codes, *end = code + layout.count; code != end; ++code) {
    switch (code->field) {
    case literal:
      *out++ = code->behind;
      continue;
    case month_name:
      out += com__cpchar(out, const_cast<CS_CHAR *>(name), '\0', max_name_length);
      break;
    case day:
      out = put_two(out, fields.datedmonth);
      break;
    case day_blank:
      out = put_two_blank(out, fields.datedmonth);
      break;
    case month:
      out = put_two(out, month_number(fields.datemonth));
      break;
    case year_of_century:
      out = put_two(out, fields.dateyear);
      break;
    case year:
      out = put_four(out, fields.dateyear);
      break;
    case year_blank:
      out += com__cpint(out, fields.dateyear, '\0', 4);
      break;
    case hour:
      out = put_two(out, fields.datehour);
      break;
    case hour_of_half:
      out = put_two_blank(out, hour_of_twelve(fields.datehour));
      break;
    case minute:
      out = put_two(out, fields.dateminute);
      break;
    case second:
      out = put_two(out, fields.datesecond);
      break;
    case millis:
      out = put_three(out, shown_millis(fields, secprec));
      break;
    case micros:
      out = put_six(out, shown_micros(fields, secprec));
      break;
    case half_of_day:
      std::memcpy(out, own_Com__ampm[fields.datehour > 11], 2);
      out += 2;
      break;
    }
    if (code->behind != '\0')
      *out++ = code->behind;
  }
  return out;
}

constexpr size_t text_capacity = 255;

CS_INT write_text(const Layout *layout, const CS_DATEREC &fields, CS_CHAR *buf, CS_INT len,
                  CS_CHAR **shortmths, CS_INT secprec) noexcept {
  if (layout == nullptr)
    return unknown_style;
  const CS_CHAR *name = nullptr;
  if (layout->has_name) {
    // A month that does not exist has no name either.
    if (shortmths == nullptr || static_cast<CS_UINT>(fields.datemonth) >= months_per_year)
      return no_name;
    name = shortmths[fields.datemonth];
    if (name == nullptr)
      return no_name;
  }
  if (len < 0 || len >= layout->max_length)
    return static_cast<CS_INT>(write_fields(buf, *layout, fields, name, secprec) - buf);
  char text[text_capacity];
  const auto length =
      static_cast<CS_INT>(write_fields(text, *layout, fields, name, secprec) - text);
  std::memcpy(buf, text, static_cast<size_t>(std::min(length, len)));
  return length <= len ? length : cut;
}

} // namespace

CS_INT com__cpint(CS_CHAR *cp, CS_INT value, CS_CHAR padchar, CS_INT len) noexcept {
  COMN_CHECK_PTR(cp, 0);
  const CS_CHAR fill = len < 0 ? '0' : ' ';
  const uint32_t width = len < 0 ? 0U - static_cast<uint32_t>(len) : static_cast<uint32_t>(len);
  auto digits = static_cast<uint32_t>(value);
  if (value < 0)
    digits = 0U - digits;
  for (CS_CHAR *place = cp + width; place != cp;) {
    const bool is_digit = digits != 0 || place == cp + width;
    *--place = is_digit ? static_cast<CS_CHAR>('0' + digits % 10) : fill;
    digits /= 10;
  }
  if (padchar != '\0')
    cp[width] = padchar;
  return static_cast<CS_INT>(width + (padchar != '\0'));
}

CS_INT com__cpchar(CS_CHAR *cp, CS_CHAR *str, CS_CHAR padchar, CS_INT maxlen) noexcept {
  COMN_CHECK_PTR(cp, 0);
  COMN_CHECK_PTR(str, 0);
  CS_INT length = 0;
  for (; length < maxlen && str[length] != '\0'; ++length)
    cp[length] = str[length];
  if (padchar != '\0')
    cp[length++] = padchar;
  return length;
}

CS_INT com__itochar(CS_INT val, CS_CHAR *buf, CS_INT len) noexcept {
  COMN_CHECK_PTR(buf, 0);
  const comn::PrintedInteger number(val);
  const CS_INT length = number.length();
  if (len > 0 && length > len) {
    *buf = '*';
    return 1;
  }
  number.write(buf);
  return length;
}

CS_INT com__daterectochar(CS_DATEREC *trparts, CS_CHAR *buf, CS_INT len, CS_INT style,
                          CS_CHAR **shortmths, CS_INT secprec) noexcept {
  COMN_CHECK_PTR(trparts, cut);
  COMN_CHECK_PTR(buf, cut);
  return write_text(find_layout(date_layouts, style), *trparts, buf, len, shortmths, secprec);
}

CS_INT com__timerectochar(CS_DATEREC *trparts, CS_CHAR *buf, CS_INT len, CS_INT style,
                          CS_CHAR **shortmths, CS_INT secprec) noexcept {
  COMN_CHECK_PTR(trparts, cut);
  COMN_CHECK_PTR(buf, cut);
  return write_text(find_layout(time_layouts, style), *trparts, buf, len, shortmths, secprec);
}

CS_INT com__datetochar(CS_DATETIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                       CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  COMN_CHECK_PTR(buf, cut);
  CS_DATEREC fields;
  set_shown_date_fields(fields, value->dtdays);
  set_time_fields(fields, value->dttime);
  return write_text(find_layout(date_layouts, style), fields, buf, len, shortmths, tick_precision);
}

CS_INT com__date4tochar(CS_DATETIME4 *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                        CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  CS_DATETIME wide;
  com__date4todt(value, &wide);
  return com__datetochar(&wide, buf, len, style, shortmths);
}

CS_INT com__bigdatetimetochar(CS_BIGDATETIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                              CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  COMN_CHECK_PTR(buf, cut);
  CS_DATEREC fields;
  const BigParts parts = split_big(*value);
  set_shown_date_fields(fields, parts.days);
  set_bigtime_fields(fields, parts.micros);
  return write_text(find_layout(date_layouts, style), fields, buf, len, shortmths, micro_precision);
}

CS_INT com__bigtimetochar(CS_BIGTIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                          CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  COMN_CHECK_PTR(buf, cut);
  CS_DATEREC fields{};
  fields.dateyear = 1;
  fields.datedmonth = 1;
  set_bigtime_fields(fields, micros_of_day(*value));
  return write_text(find_layout(time_layouts, style), fields, buf, len, shortmths, micro_precision);
}

CS_INT com__timeatochar(CS_TIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                        CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  COMN_CHECK_PTR(buf, cut);
  CS_DATEREC fields;
  set_shown_date_fields(fields, 0);
  set_time_fields(fields, *value);
  return write_text(find_layout(time_layouts, style), fields, buf, len, shortmths, tick_precision);
}

CS_INT com__dateatochar(CS_DATE *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                        CS_CHAR **shortmths) noexcept {
  COMN_CHECK_PTR(value, cut);
  COMN_CHECK_PTR(buf, cut);
  CS_DATEREC fields;
  set_shown_date_fields(fields, *value);
  set_time_fields(fields, 0);
  const bool is_date_only = style == 0 || style == 9;
  const Layout *layout = is_date_only ? &date_only_layout : find_layout(date_layouts, style);
  return write_text(layout, fields, buf, len, shortmths, tick_precision);
}
