// Calendar arithmetic in closed form: days to years, months and days and back, ticks and
// microseconds to hours, minutes and seconds.
//
// Days count from 0001-01-01 of the proleptic Gregorian calendar. With n such days, 4n + 3 divided
// by the 146097 days of 400 years gives the century, and the same step inside the century the year:
// both work because a year that begins in January of year 1 has its leap day in the fourth year,
// and a century its 36525th day in the fourth century, that is, the long ones come last. Inside a
// year, the months become a straight line of a slope just above 30 once February is taken to have
// 30 days, so the month and its day come from one multiplication.
#ifndef COMN_DATES_CALENDAR_H
#define COMN_DATES_CALENDAR_H

#include <cstdint>

#include "datetime.h"
#include "table.h"

COMN_DECLARE_TABLE(monthdays);
COMN_DECLARE_TABLE(lmonthdays);
COMN_DECLARE_TABLE(week_one_offset);
COMN_DECLARE_TABLE(Com__Months);
COMN_DECLARE_TABLE(Com__Shortmonths);
COMN_DECLARE_TABLE(Com__ampm);

namespace comn::calendar {

constexpr CS_INT months_per_year = 12;
constexpr CS_INT days_per_week = 7;

// Days from 1900-01-01, which the day fields hold.
constexpr CS_INT first_day = -693595;         // 0001-01-01
constexpr CS_INT first_datetime_day = -53690; // 1753-01-01
constexpr CS_INT end_day = 2958464;           // 10000-01-01
constexpr CS_INT last_date4_day = 65535;      // 2079-06-06

constexpr CS_INT last_year = 9999;

// The units of the time of day, each once; then all of them by what counts them: ticks, which are
// 1/300 seconds, and microseconds.
constexpr CS_INT seconds_per_minute = 60;
constexpr CS_INT seconds_per_hour = 60 * seconds_per_minute;
constexpr CS_INT seconds_per_day = 24 * seconds_per_hour;
constexpr CS_INT minutes_per_day = seconds_per_day / seconds_per_minute;

constexpr CS_INT ticks_per_second = 300;
constexpr CS_INT ticks_per_minute = seconds_per_minute * ticks_per_second;
constexpr CS_INT ticks_per_day = seconds_per_day * ticks_per_second;

constexpr CS_UBIGINT micros_per_milli = 1000;
constexpr CS_UBIGINT micros_per_second = 1000000;
constexpr CS_UBIGINT micros_per_minute = seconds_per_minute * micros_per_second;
constexpr CS_UBIGINT micros_per_hour = seconds_per_hour * micros_per_second;
constexpr CS_UBIGINT micros_per_day = seconds_per_day * micros_per_second;

// The bits of a time that cracking looks at.
constexpr CS_INT tick_mask = 0x1FFFFFF;

// Microseconds from 0000-01-01; year zero counts as a leap year.
constexpr CS_UBIGINT first_bigdatetime = 366 * micros_per_day;
constexpr CS_UBIGINT end_bigdatetime = first_bigdatetime + 3652059 * micros_per_day;
static_assert(first_bigdatetime == 31622400000000 && end_bigdatetime == 315569520000000000);

// The precision of a fraction of a second (CS_DATEREC.datesecprec).
constexpr CS_INT tick_precision = 300;
constexpr CS_INT micro_precision = 1000000;

template <class Integer>
constexpr bool is_leap(Integer year) noexcept {
  return (year % 100 == 0 ? year % 16 : year % 4) == 0;
}

// Leap days in the years 1 to `years`.
constexpr CS_INT leap_days(CS_INT years) noexcept {
  return years < 0 ? 0 : years / 4 - years / 100 + years / 400;
}

struct Date {
  CS_INT year;
  CS_INT month;       // 0 to 11
  CS_INT day;         // 1 to 31
  CS_INT day_of_year; // 1 to 366
};

// Whole years gone by since 0001-01-01, the days gone by in the year that follows, and whether that
// one is a leap year.
struct YearAndDay {
  CS_INT years;
  CS_INT day;
  bool leap;
};

template <class Unsigned>
constexpr YearAndDay split_years(Unsigned day) noexcept {
  constexpr uint32_t days_of_four_centuries = 146097;
  const Unsigned quarter_days = 4 * day + 3;
  const auto century = static_cast<uint32_t>(quarter_days / days_of_four_centuries);
  // Four times the day of the century, plus 3.
  const auto in_century = static_cast<uint32_t>(quarter_days % days_of_four_centuries) | 3;
  // Divided by the 1461 days of four years: 1461 times 2939745 is 2 to the 32 and 149 more. So the
  // product of 1461 * year + rest is 2^32 * year + (2939745 * rest + 149 * year), and as the year is
  // below 100, what stands behind the plus is below 2^32, and 149 * year below 2939745: the upper
  // half is the year, and the lower one through 2939745 the rest.
  const uint64_t product = uint64_t{2939745} * in_century;
  const auto year = static_cast<uint32_t>(product >> 32);
  const uint32_t in_year = static_cast<uint32_t>(product) / 2939745 / 4;
  const bool leap = ((year == 99 ? century : year) & 3) == 3;
  return {static_cast<CS_INT>(100 * century + year), static_cast<CS_INT>(in_year), leap};
}

// Before 0001-01-01 no leap days are counted: each year has 365 days, though the months of a leap
// year are those of a leap year. No valid value reaches so far.
constexpr YearAndDay split_years_before_one(int64_t day) noexcept {
  const int64_t years = (day - 364) / 365;
  return {static_cast<CS_INT>(years), static_cast<CS_INT>(day - 365 * years), is_leap(years + 1)};
}

// The month and the day of it, both from 0, of a day of a year whose February has 30 days: of 0 to
// 366. A line that climbs 65536 in a month stands for a division by lengths that differ.
struct MonthAndDay {
  uint32_t month, day;
};

constexpr MonthAndDay split_months(uint32_t day) noexcept {
  constexpr uint32_t slope = 2142, start = 1230;
  const uint32_t line = slope * day + start;
  return {line >> 16, (line & 0xFFFF) / slope};
}

consteval bool are_months_split() {
  constexpr uint32_t lengths[] = {31, 30, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  uint32_t day = 0, month = 0;
  for (const uint32_t length : lengths) {
    for (uint32_t i = 0; i < length; ++i, ++day)
      if (split_months(day).month != month || split_months(day).day != i)
        return false;
    ++month;
  }
  return day == 367;
}
static_assert(are_months_split());

constexpr Date date_in_year(YearAndDay when) noexcept {
  constexpr CS_INT january_and_february = 59;
  const CS_INT february_gap = when.leap ? 1 : 2;
  const bool past_february = when.day + february_gap >= january_and_february + 2;
  const CS_INT day = when.day + (past_february ? february_gap : 0);
  const MonthAndDay split = split_months(static_cast<uint32_t>(day));
  return {when.years + 1, static_cast<CS_INT>(split.month), static_cast<CS_INT>(split.day) + 1,
          when.day + 1};
}

// The date of a day counted from 1900-01-01; any day.
constexpr Date crack_day(CS_INT days) noexcept {
  constexpr CS_INT last_of_32_bits = (INT32_MAX >> 1) + first_day;
  if (days >= first_day && days <= last_of_32_bits) [[likely]]
    return date_in_year(split_years(static_cast<uint32_t>(days - first_day)));
  const int64_t day = int64_t{days} - first_day;
  if (day < 0)
    return date_in_year(split_years_before_one(day));
  return date_in_year(split_years(static_cast<uint64_t>(day)));
}

// The day of the week, Sunday is 0. Any day.
constexpr CS_INT weekday(int64_t days) noexcept {
  // 1900-01-01 was a Monday.
  if (days >= first_day && days < end_day) [[likely]]
    return static_cast<CS_INT>(static_cast<uint32_t>(days - first_day + 1) % days_per_week);
  const int64_t day = (days - first_day + 1) % days_per_week;
  return static_cast<CS_INT>(day < 0 ? day + days_per_week : day);
}

// Days from 0001-01-01 to the first of January that follows `years` whole years.
constexpr CS_INT days_of_years(CS_INT years) noexcept {
  return 365 * years + leap_days(years);
}

struct Time {
  CS_INT hour, minute, second;
};

constexpr Time crack_seconds(uint32_t seconds) noexcept {
  const uint32_t minutes = seconds / seconds_per_minute;
  return {static_cast<CS_INT>(minutes / 60), static_cast<CS_INT>(minutes % 60),
          static_cast<CS_INT>(seconds % seconds_per_minute)};
}

constexpr uint32_t seconds_of_ticks(CS_INT dttime) noexcept {
  return static_cast<uint32_t>(dttime & tick_mask) / ticks_per_second;
}

// The milliseconds of the second in which a tick lies, truncated.
constexpr CS_INT millis_of_ticks(CS_INT dttime) noexcept {
  return static_cast<CS_INT>(static_cast<uint32_t>(dttime & tick_mask) % ticks_per_second * 10 / 3);
}

// A big value taken apart: days from 1900-01-01, and the microseconds of the day, which a time has
// as well. A value before 0001-01-01 wraps round to a day that no date has.
struct BigParts {
  CS_INT days;
  CS_UBIGINT micros;
};

constexpr CS_UBIGINT micros_of_day(CS_UBIGINT value) noexcept {
  return value % micros_per_day;
}

constexpr CS_INT days_of_big(CS_UBIGINT value) noexcept {
  return static_cast<CS_INT>((value - first_bigdatetime) / micros_per_day) + first_day;
}

constexpr BigParts split_big(CS_UBIGINT value) noexcept {
  if (value < first_bigdatetime) [[unlikely]]
    return {days_of_big(value), micros_of_day(value)};
  // One long division serves both.
  const CS_UBIGINT since_year_one = value - first_bigdatetime;
  const CS_UBIGINT days = since_year_one / micros_per_day;
  return {static_cast<CS_INT>(days) + first_day, since_year_one - days * micros_per_day};
}

// Whole seconds of a day's microseconds. Halved six times, they and the divisor fit 32 bits.
constexpr uint32_t seconds_of_micros(CS_UBIGINT micros) noexcept {
  return static_cast<uint32_t>(micros >> 6) / static_cast<uint32_t>(micros_per_second >> 6);
}

constexpr CS_INT fraction_of_micros(CS_UBIGINT micros) noexcept {
  return static_cast<CS_INT>(static_cast<uint32_t>(micros) -
                             seconds_of_micros(micros) * static_cast<uint32_t>(micros_per_second));
}

// The tick nearest to so many milliseconds of any sign: (3 * millis + 5) / 10 in steps that stay
// inside the type.
template <class Integer>
constexpr Integer ticks_of_millis(Integer millis) noexcept {
  return millis / 10 * 3 + (millis % 10 * 3 + (millis < 0 ? -5 : 5)) / 10;
}

constexpr bool is_datetime_day(CS_INT days) noexcept {
  return days >= first_datetime_day;
}
constexpr bool is_date(CS_INT days) noexcept {
  return days >= first_day && days < end_day;
}
constexpr bool is_time(CS_INT ticks) noexcept {
  return ticks >= 0 && ticks < ticks_per_day;
}
constexpr bool is_bigtime(CS_UBIGINT value) noexcept {
  return value < micros_per_day;
}
constexpr bool is_bigdatetime(CS_UBIGINT value) noexcept {
  return value >= first_bigdatetime && value < end_bigdatetime;
}

} // namespace comn::calendar

#endif
