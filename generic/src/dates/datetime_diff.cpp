// Differences of dates and times by part code.
#include <utility>

#include "checks.h"
#include "crack.h"
#include "date_parts.h"

using namespace comn::calendar;

namespace {

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

// The units of the time in so many days and ticks. A unit counts when it is over, so a day is taken
// as ticks: days and ticks then have one sign, and the division truncates as it should.
// Milliseconds go without: deliberate, it can show in the last of them.
int64_t time_difference(int64_t days, CS_INT ticks, const PartUnit &unit) noexcept {
  if (unit.ticks != 0 && days != 0) {
    const CS_INT one_day = days > 0 ? 1 : -1;
    days -= one_day;
    ticks += one_day * ticks_per_day;
  }
  return days * unit.per_day + units_of_ticks(unit, ticks);
}

// Whether a CS_INT holds the whole days alone. Where the ticks work against the days that refuses a
// little more than it must, and callers see where it is; hours are not held against it.
bool whole_days_fit(int part, int64_t days) noexcept {
  return part == part_hour || std::in_range<CS_INT>(days * part_units[part].per_day);
}

} // namespace

int com__datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff) noexcept {
  COMN_CHECK_PTR(from, out_of_range);
  COMN_CHECK_PTR(to, out_of_range);
  COMN_CHECK_PTR(diff, out_of_range);
  if (!is_datetime_part(part))
    return 0;
  const PartUnit &unit = part_units[part];
  int64_t result;
  if (unit.counts == Counts::time) {
    const int64_t days = int64_t{to->dtdays} - from->dtdays;
    const CS_INT ticks = (to->dttime & tick_mask) - (from->dttime & tick_mask);
    if (!whole_days_fit(part, days))
      return out_of_range;
    result = time_difference(days, ticks, unit);
  } else {
    result = day_difference(part, from->dtdays, to->dtdays);
  }
  if (!std::in_range<CS_INT>(result))
    return out_of_range;
  *diff = static_cast<CS_INT>(result);
  return 0;
}

int com__bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff) noexcept {
  COMN_CHECK_PTR(from, out_of_range);
  COMN_CHECK_PTR(to, out_of_range);
  COMN_CHECK_PTR(diff, out_of_range);
  if (!is_big_part(part))
    return 0;
  const PartUnit &unit = part_units[part];
  if (unit.counts == Counts::time)
    *diff = static_cast<CS_BIGINT>(*to - *from) / unit.micros;
  else
    *diff = day_difference(part, days_of_big(*from), days_of_big(*to));
  return 0;
}
