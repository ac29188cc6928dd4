// Differences of dates and times by part code.
#include <limits>
#include <utility>

#include "checks.h"
#include "crack.h"
#include "date_parts.h"

using namespace comn::calendar;

namespace {

constexpr int overflow = 1;

// Week boundaries, which are Sundays, between two days.
int64_t weeks_crossed(CS_INT from, CS_INT to) noexcept {
  int64_t days = int64_t{to} - from;
  days += days < 0 ? -weekday(to) : weekday(from);
  return days / days_per_week;
}

// The difference of a part that looks at days only.
int64_t day_difference(int part, CS_INT from, CS_INT to) noexcept {
  const int64_t days = int64_t{to} - from;
  switch (part) {
  case part_weekday:
  case part_iso_weekday:
    return days / days_per_week;
  case part_week:
  case part_iso_week: // on Sundays too: deliberate
    return weeks_crossed(from, to);
  case part_iso_year:
    return iso_year(to) - iso_year(from);
  case part_year:
  case part_quarter:
  case part_month: {
    const Date first = crack_day(from), last = crack_day(to);
    const CS_INT years = last.year - first.year;
    if (part == part_year)
      return years;
    if (part == part_quarter)
      return last.month / 3 - first.month / 3 + 4 * years;
    return last.month - first.month + months_per_year * years;
  }
  default:
    return days;
  }
}

// How far a difference in a unit of the time may go. Between days of one sign the limit is that of
// the result; where the time works against the days, whole days alone are counted, which refuses a
// little more than it must. Callers see where that is.
struct TimeUnits {
  int64_t per_day;
  int64_t last_day;
  int64_t ticks; // of one unit; 0 for milliseconds
};

constexpr TimeUnits minutes{24 * 60, 1491308, ticks_per_minute};
constexpr TimeUnits seconds{24 * 60 * 60, 24855, ticks_per_second};
constexpr TimeUnits milliseconds{24 * 60 * 60 * 1000, 24, 0};

constexpr int64_t in_units(int64_t ticks, const TimeUnits &units) noexcept {
  return units.ticks != 0 ? ticks / units.ticks : ticks * 10 / 3;
}

// The difference of so many days and ticks; false when it is too large.
bool time_difference(int64_t days, int64_t ticks, const TimeUnits &units,
                     int64_t &result) noexcept {
  using Limits = std::numeric_limits<CS_INT>;
  const int64_t part = in_units(ticks, units);
  if (days > 0 &&
      (ticks > 0 ? (Limits::max() - part) / units.per_day < days : days > units.last_day))
    return false;
  if (days < 0 &&
      (ticks < 0 ? (Limits::min() - part) / units.per_day > days : days < -units.last_day))
    return false;
  // A unit counts when it is over: a day is borrowed where the time works against the days.
  const bool borrows = units.ticks != 0 && ((days > 0 && ticks < 0) || (days < 0 && ticks > 0));
  if (!borrows)
    result = days * units.per_day + part;
  else if (days > 0)
    result = (days - 1) * units.per_day + in_units(ticks + ticks_per_day, units);
  else
    result = (days + 1) * units.per_day + in_units(ticks - ticks_per_day, units);
  return true;
}

int64_t hour_difference(int64_t days, int64_t ticks) noexcept {
  if (days == 0)
    return ticks / ticks_per_hour;
  if (days > 0)
    return (ticks + ticks_per_day) / ticks_per_hour + (days - 1) * 24;
  return (ticks - ticks_per_day) / ticks_per_hour + (days + 1) * 24;
}

} // namespace

int com__datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff) noexcept {
  COMN_CHECK_PTR(from, overflow);
  COMN_CHECK_PTR(to, overflow);
  COMN_CHECK_PTR(diff, overflow);
  if (!is_datetime_part(part))
    return 0;
  const int64_t days = int64_t{to->dtdays} - from->dtdays;
  const int64_t ticks = (to->dttime & tick_mask) - (from->dttime & tick_mask);
  int64_t result = 0;
  bool fits = true;
  switch (part) {
  case part_hour:
    result = hour_difference(days, ticks);
    break;
  case part_minute:
    fits = time_difference(days, ticks, minutes, result);
    break;
  case part_second:
    fits = time_difference(days, ticks, seconds, result);
    break;
  case part_millisecond:
    fits = time_difference(days, ticks, milliseconds, result);
    break;
  default:
    result = day_difference(part, from->dtdays, to->dtdays);
    break;
  }
  if (!fits || !std::in_range<CS_INT>(result))
    return overflow;
  *diff = static_cast<CS_INT>(result);
  return 0;
}

int com__bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff) noexcept {
  COMN_CHECK_PTR(from, overflow);
  COMN_CHECK_PTR(to, overflow);
  COMN_CHECK_PTR(diff, overflow);
  if (!is_big_part(part))
    return 0;
  if (part_units[part].added == Unit::time)
    *diff = static_cast<CS_BIGINT>(*to - *from) / part_units[part].micros;
  else
    *diff = day_difference(part, days_of_big(*from), days_of_big(*to));
  return 0;
}
