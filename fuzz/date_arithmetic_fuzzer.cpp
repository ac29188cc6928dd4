// Additions, differences, parts and names of any values by any part, and their text in any style.
// No input may be undefined; what is added comes back as the difference, a difference the other way
// round has the other sign, and the forms that take a value agree with those that take its fields.
// A part that does not exist is a failed check, or nothing, and leaves everything as it was.
#include <csignal>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz_input.h"
#include "zrvcomn/datetime.h"

using zrvfuzz::require;

namespace {

struct Input {
  std::uint8_t part, type;
  std::uint16_t style;
  CS_INT value, firstday;
  CS_DATETIME from, to;
  CS_BIGDATETIME big_from, big_to;
};

bool is_same(const CS_DATETIME &left, const CS_DATETIME &right) {
  return left.dtdays == right.dtdays && left.dttime == right.dttime;
}

// Two ways to the same text, which has 1 to 40 bytes, or to the answer for an unknown style.
template <class First, class Second>
void require_same_text(First first, Second second) {
  char text[64], same[64];
  const CS_INT length = first(text);
  require(length == -1 || (length >= 1 && length <= 40));
  require(second(same) == length);
  require(length <= 0 || std::memcmp(text, same, static_cast<size_t>(length)) == 0);
}

std::sig_atomic_t failed_checks;

void count_failed_check(int) {
  failed_checks = failed_checks + 1;
}

// A call that must fail one check and return this; its report on standard error is thrown away.
template <class Result, class Call>
void require_failed_check(Result expected, Call call) {
  const int saved = dup(2), nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, 2);
  failed_checks = 0;
  const auto previous = std::signal(SIGABRT, count_failed_check);
  const Result result = call();
  std::signal(SIGABRT, previous);
  dup2(saved, 2);
  close(saved);
  close(nowhere);
  require(failed_checks == 1 && result == expected);
}

// A part that no CS_DATETIME has.
void check_unknown_part(const Input &input, int part) {
  CS_DATETIME from = input.from, to = input.to;
  CS_INT difference = input.value;
  require(com__datediff(part, &from, &to, &difference) == 0 && difference == input.value);
  require_failed_check(1, [&] { return com__date_add(part, input.value, &from); });
  require(is_same(from, input.from));
}

// A part that no value has.
void check_unknown_big_part(const Input &input, int part) {
  char text[64];
  CS_DATETIME from = input.from;
  CS_BIGDATETIME big = input.big_from, big_to = input.big_to;
  CS_CHAR **const months = com__get_months(), **const days = com__get_days();
  CS_DATEREC fields{};
  CS_BIGINT difference = input.value;
  require(com__bigdatediff(part, &big, &big_to, &difference) == 0 && difference == input.value);
  require(com__datenameval(part, text, months, days, input.value, input.firstday) == 0);
  require_failed_check(1, [&] { return com__bigdate_add(part, input.value, &big, input.type); });
  require_failed_check(0, [&] { return com__daterecpart(part, &fields, input.firstday, 0, 35); });
  require_failed_check(0, [&] { return com__datepart(part, &from, input.firstday); });
  require_failed_check(0, [&] { return com__bigdatepart(part, &big, input.firstday); });
  require_failed_check(0, [&] { return com__datename(part, &from, text, months, days); });
  require_failed_check(0, [&] { return com__bigdatename(part, &big, text, months, days); });
  require(is_same(from, input.from) && big == input.big_from);
}

void check_ticks_part(const Input &input, int part) {
  CS_DATETIME from = input.from, to = input.to;
  CS_DATEREC fields{};
  com__datecrack(&from, &fields);
  com__timecrack(&from, &fields);
  require(com__datepart(part, &from, input.firstday) ==
          com__daterecpart(part, &fields, input.firstday, from.dtdays, CS_TYPE_DATETIME));
  const CS_INT number = com__datepart(part, &from, 0);
  CS_CHAR **const months = com__get_months(), **const days = com__get_days();
  require_same_text(
      [&](char *text) { return com__datename(part, &from, text, months, days); },
      [&](char *text) { return com__datenameval(part, text, months, days, number, from.dtdays); });
  CS_INT forth = 0, back = 0;
  if (com__datediff(part, &from, &to, &forth) == 0 && com__datediff(part, &to, &from, &back) == 0)
    require(std::int64_t{forth} + back == 0);
}

void check_ticks_sum(const Input &input, int part) {
  CS_DATETIME from = input.from;
  const bool is_valid =
      com__datea_check_range(&from.dtdays) == 0 && com__timea_check_range(&from.dttime) == 0;
  CS_DATETIME sum = from;
  if (com__date_add(part, input.value, &sum) != 0 || !is_valid)
    return;
  require(com__datea_check_range(&sum.dtdays) == 0 && com__timea_check_range(&sum.dttime) == 0);
  const bool is_exact = part == 4 || part == 5 || part == 6 || part == 2 || part == 0;
  CS_INT difference = 0;
  if (is_exact)
    require(com__datediff(part, &from, &sum, &difference) == 0 && difference == input.value);
}

// The sum as com__dateadd_both delivers it, whatever it is asked for.
void check_delivered_sum(const Input &input, int part) {
  CS_DATETIME from = input.from, sum = from;
  const bool is_sum = com__date_add(part, input.value, &sum) == 0;
  CS_BYTE delivered[8];
  __CONSTANT src{}, result{};
  src.value = reinterpret_cast<CS_BYTE *>(&from);
  src.len = sizeof from;
  result.value = delivered;
  const auto add = [&](int type, CS_INT maxlen) {
    result.type = static_cast<CS_BYTE>(type);
    result.maxlen = maxlen;
    result.len = -7;
    const bool is_delivered = com__dateadd_both(part, input.value, &src, &result) == 0;
    require(result.len == (is_delivered ? maxlen : -7));
    return is_delivered;
  };
  const auto holds = [&](const void *value, size_t size) {
    return std::memcmp(delivered, value, size) == 0;
  };
  require(add(61, 8) == (is_sum && com__datetime_check_range(&sum) == 0));
  require(result.len < 0 || holds(&sum, sizeof sum));
  require(add(49, 4) == is_sum);
  require(!is_sum || holds(&sum.dtdays, sizeof sum.dtdays));
  CS_DATETIME4 small;
  const bool is_small = is_sum && com__dttodate4(&sum, &small) == 0;
  require(add(58, 4) == is_small);
  require(!is_small || holds(&small, sizeof small));
  src.len = input.value % 12;
  add(input.type, input.style % 12);

  CS_DATETIME same_day = from, same_time = from;
  src.len = sizeof from;
  require(com__valid_datetime(&src, src.value) ==
          (com__date_add(0, 0, &same_day) == 0 && com__date_add(7, 0, &same_time) == 0));
  src.len = sizeof(CS_DATETIME4);
  CS_USHORT minutes;
  std::memcpy(&minutes, src.value + 2, sizeof minutes);
  require(com__valid_datetime(&src, nullptr) == (minutes < 1440));
}

void check_ticks_text(const Input &input) {
  CS_DATETIME value = input.from;
  CS_CHAR **const names = com__get_shortmonths();
  const CS_INT style = input.style % 160;
  CS_DATEREC fields{};
  com__datecrack(&value, &fields);
  com__timecrack(&value, &fields);
  require_same_text(
      [&](char *text) { return com__datetochar(&value, text, 64, style, names); },
      [&](char *text) { return com__daterectochar(&fields, text, 64, style, names, 300); });
  // The legacy form fills with blanks.
  CS_BYTE filled[64];
  const CS_INT length =
      com_date2char_ex(reinterpret_cast<CS_BYTE *>(&value), 8, filled, 64, nullptr, style);
  char text[64];
  require(com__datetochar(&value, text, 64, style, names) == length);
  for (CS_INT i = 0; length > 0 && i < 64; ++i)
    require(filled[i] == static_cast<CS_BYTE>(i < length ? text[i] : ' '));

  CS_DATEREC time = fields;
  time.dateyear = 1900;
  time.datemonth = 0;
  time.datedmonth = 1;
  require_same_text(
      [&](char *out) { return com__timeatochar(&value.dttime, out, 64, style, names); },
      [&](char *out) { return com__timerectochar(&time, out, 64, style, names, 300); });
  CS_DATEREC midnight = fields;
  midnight.datehour = midnight.dateminute = midnight.datesecond = midnight.datemsecond = 0;
  const bool is_date_only = style == 0 || style == 9;
  require_same_text(
      [&](char *out) { return com__dateatochar(&value.dtdays, out, 64, style, names); },
      [&](char *out) {
        const CS_INT whole = com__daterectochar(&midnight, out, 64, style, names, 300);
        return is_date_only ? 11 : whole; // "Jan  1 1900"
      });
  CS_DATETIME4 small;
  if (com__dttodate4(&value, &small) == 0) {
    CS_DATETIME wide;
    com__date4todt(&small, &wide);
    require_same_text([&](char *out) { return com__date4tochar(&small, out, 64, style, names); },
                      [&](char *out) { return com__datetochar(&wide, out, 64, style, names); });
  }
}

void check_big_part(const Input &input, int part) {
  CS_BIGDATETIME from = input.big_from, to = input.big_to;
  CS_DATEREC fields{};
  com__bigdatecrack(&from, &fields);
  com__bigtimecrack(&from, &fields);
  CS_DATE day;
  com__bigdatetimetodatea(&from, &day);
  require(com__bigdatepart(part, &from, input.firstday) ==
          com__daterecpart(part, &fields, input.firstday, day, CS_TYPE_BIGDATETIME));
  const CS_INT number = com__bigdatepart(part, &from, 0);
  CS_CHAR **const months = com__get_months(), **const days = com__get_days();
  require_same_text(
      [&](char *text) { return com__bigdatename(part, &from, text, months, days); },
      [&](char *text) { return com__datenameval(part, text, months, days, number, day); });
  CS_BIGINT forth = 0, back = 0;
  require(com__bigdatediff(part, &from, &to, &forth) == 0);
  require(com__bigdatediff(part, &to, &from, &back) == 0);
  const bool has_opposite = to - from != CS_UBIGINT{1} << 63;
  require(!has_opposite || forth == -back);
}

void check_big_sum(const Input &input, int part) {
  CS_BIGDATETIME from = input.big_from, sum = from, any = from;
  com__bigdate_add(part, input.value, &any, input.type);
  const bool is_sum = com__bigdate_add(part, input.value, &sum, 187) == 0;
  CS_BYTE delivered[8];
  __CONSTANT src{}, result{};
  src.value = reinterpret_cast<CS_BYTE *>(&from);
  src.len = result.maxlen = sizeof from;
  result.value = delivered;
  result.type = 187;
  require((com__bigdateadd_both(part, input.value, &src, &result) == 0) == is_sum);
  require(from == input.big_from && (!is_sum || std::memcmp(delivered, &sum, sizeof sum) == 0));
  if (!is_sum || com__bigdatetime_check_range(&from) != 0)
    return;
  require(com__bigdatetime_check_range(&sum) == 0);
  const bool is_exact = part == 14 || (part >= 4 && part <= 9) || part == 2 || part == 0;
  CS_BIGINT difference = 0;
  if (is_exact)
    require(com__bigdatediff(part, &from, &sum, &difference) == 0 && difference == input.value);
}

void check_big_text(const Input &input) {
  CS_BIGDATETIME value = input.big_from;
  CS_CHAR **const names = com__get_shortmonths();
  const CS_INT style = input.style % 160;
  CS_DATEREC fields{};
  com__bigdatecrack(&value, &fields);
  com__bigtimecrack(&value, &fields);
  require_same_text(
      [&](char *text) { return com__bigdatetimetochar(&value, text, 64, style, names); },
      [&](char *text) { return com__daterectochar(&fields, text, 64, style, names, 1000000); });
  fields.dateyear = fields.datedmonth = 1;
  fields.datemonth = 0;
  require_same_text(
      [&](char *text) { return com__bigtimetochar(&value, text, 64, style, names); },
      [&](char *text) { return com__timerectochar(&fields, text, 64, style, names, 1000000); });
}

// Between the value types: what a wider one holds comes back.
void check_values(const Input &input) {
  CS_DATETIME datetime = input.from, back;
  CS_BIGDATETIME big = input.big_from, wide;
  if (com__datetobigdatetime(&datetime, &wide) == 0 && com__datetime_check_range(&datetime) == 0) {
    require(com__bigdatetimetodate(&wide, &back) == CS_SUCCEED && back.dtdays == datetime.dtdays);
    require(back.dttime == (datetime.dttime & 0x1FFFFFF));
  }
  if (com__bigdatetime_check_range(&big) == 0) {
    CS_DATE day;
    CS_BIGTIME time;
    com__bigdatetimetodatea(&big, &day);
    com__bigdatetimetobigtime(&big, &time);
    require(com__dateatobigdatetime(&day, &wide) == 0 && wide + time == big);
  }
  CS_DATETIME4 small;
  if (com__bigdttodate4(&big, &small) == 0) {
    com__date4tobigdatetime(&small, &wide);
    const auto distance = static_cast<CS_BIGINT>(big - wide);
    require(distance >= -30500000 && distance < 30000000);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input{};
  std::memcpy(&input, data, size < sizeof input ? size : sizeof input);
  constexpr int parts = 15, unknown_parts[] = {parts, -1};
  int part = input.part % (parts + 2);
  if (part >= parts) {
    part = unknown_parts[part - parts];
    check_unknown_big_part(input, part);
  } else {
    check_ticks_part(input, part);
    check_big_part(input, part);
    check_big_sum(input, part);
  }
  if (part < 0 || part >= 14) {
    check_unknown_part(input, part);
  } else {
    check_ticks_sum(input, part);
    check_delivered_sum(input, part);
  }
  check_ticks_text(input);
  check_big_text(input);
  check_values(input);
  return 0;
}
