// Adding to dates and times by part code.
#include <algorithm>
#include <cstring>

#include "any_address.h"
#include "checks.h"
#include "crack.h"
#include "date_parts.h"

using namespace comn::calendar;

namespace {

constexpr int overflow = 1;

// Protocol datatype numbers.
enum ProtocolType : CS_BYTE {
  protocol_date = 49,
  protocol_time = 51,
  protocol_datetime4 = 58,
  protocol_datetime = 61,
  protocol_bigdatetime = 187,
  protocol_bigtime = 188,
};

// Moves year and month of a record and keeps its day inside the month. False, and nothing changed,
// when a field would leave its type.
bool add_calendar_units(Unit unit, CS_INT value, CS_DATEREC &fields) noexcept {
  if (unit == Unit::years) {
    if (__builtin_add_overflow(fields.dateyear, value, &fields.dateyear))
      return false;
  } else {
    CS_INT months = value;
    if (unit == Unit::quarters && __builtin_mul_overflow(value, 3, &months))
      return false;
    if (__builtin_add_overflow(fields.datemonth, months, &months))
      return false;
    CS_INT years = months / months_per_year;
    months %= months_per_year;
    if (months < 0) {
      months += months_per_year;
      --years;
    }
    if (__builtin_add_overflow(fields.dateyear, years, &years))
      return false;
    fields.dateyear = years;
    fields.datemonth = months;
  }
  monthcheck(&fields);
  return true;
}

// How a part of the time is added to ticks. A value beyond a day's units is split into days first.
struct TickUnits {
  CS_INT per_day;
  CS_INT ticks; // of one unit
};
constexpr TickUnits tick_units[] = {
    {24, ticks_per_hour},
    {24 * 60, ticks_per_minute},
    {24 * 60 * 60, ticks_per_second},
    {24 * 60 * 60 * 1000, 0}, // milliseconds go to the nearest tick
};

// Adds a part of the time to `ticks` and returns the days that it carries, or borrows.
int64_t add_ticks(int part, int64_t value, int64_t &ticks) noexcept {
  const TickUnits &units = tick_units[part - part_hour];
  int64_t days = 0;
  if (value > units.per_day || value < -units.per_day) {
    days = value / units.per_day;
    value %= units.per_day;
  }
  ticks += part == part_millisecond ? ticks_of_millis(value) : value * units.ticks;
  if (ticks < 0) {
    ticks += ticks_per_day;
    --days;
  } else if (ticks >= ticks_per_day) {
    ticks -= ticks_per_day;
    ++days;
  }
  return days;
}

} // namespace

void monthcheck(CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(fields);
  const auto month = static_cast<CS_UINT>(fields->datemonth);
  if (month >= months_per_year)
    return;
  const monthcnt &row = (is_leap(fields->dateyear) ? lmonthdays : monthdays)[month];
  fields->datedmonth = std::min<CS_INT>(fields->datedmonth, row.daysinmonth);
}

int com__date_add(int part, CS_INT value, CS_DATETIME *to) noexcept {
  COMN_CHECK(is_datetime_part(part), overflow);
  COMN_CHECK_PTR(to, overflow);
  int64_t days = value;
  int64_t ticks = to->dttime;
  switch (const Unit unit = part_units[part].added) {
  case Unit::years:
  case Unit::quarters:
  case Unit::months: {
    CS_DATEREC fields;
    set_date_fields(fields, to->dtdays);
    if (!add_calendar_units(unit, value, fields))
      return overflow;
    return com__datemake(to, &fields);
  }
  case Unit::days:
    break;
  case Unit::weeks:
    days *= days_per_week;
    break;
  case Unit::time:
    if (ticks >= ticks_per_day)
      return overflow;
    days = add_ticks(part, value, ticks);
    break;
  }
  days += to->dtdays;
  if (days < first_day || days >= end_day)
    return overflow;
  *to = {static_cast<CS_INT>(days), static_cast<CS_INT>(ticks)};
  return 0;
}

int com__bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type) noexcept {
  COMN_CHECK(is_big_part(part), overflow);
  COMN_CHECK_PTR(to, overflow);
  const PartUnits &units = part_units[part];
  if (units.micros == 0) {
    CS_DATEREC fields;
    const BigParts parts = split_big(*to);
    set_date_fields(fields, parts.days);
    set_bigtime_fields(fields, parts.micros);
    if (!add_calendar_units(units.added, value, fields))
      return overflow;
    return com_bigdatetimemake(to, &fields);
  }
  CS_BIGINT added;
  CS_BIGDATETIME sum;
  if (__builtin_mul_overflow(value, units.micros, &added) ||
      __builtin_add_overflow(*to, added, &sum))
    return overflow;
  if (type == protocol_bigdatetime && !is_bigdatetime(sum))
    return overflow;
  // A time does not wrap round midnight, as the ticks of a CS_DATETIME do.
  if (type == protocol_bigtime && !is_bigtime(sum))
    return overflow;
  *to = sum;
  return 0;
}

namespace {

// Delivers a result of one type in the capacity that it must have.
int deliver(const void *value, CS_INT size, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(result->value, overflow);
  std::memcpy(result->value, value, static_cast<size_t>(size));
  result->len = result->maxlen;
  return 0;
}

} // namespace

int com__dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(src, overflow);
  COMN_CHECK_PTR(result, overflow);
  CS_DATETIME sum{};
  if (src->len != sizeof sum && src->len != sizeof(CS_TIME))
    return overflow;
  COMN_CHECK_PTR(src->value, overflow);
  if (result->type == protocol_time) {
    // A time has no room for more.
    if (src->len != sizeof sum.dttime)
      return overflow;
    std::memcpy(&sum.dttime, src->value, sizeof sum.dttime);
  } else {
    std::memcpy(&sum, src->value, static_cast<size_t>(src->len));
  }
  if (com__date_add(part, value, &sum) != 0)
    return overflow;

  const bool is_four_bytes = result->maxlen == 4;
  switch (result->type) {
  case protocol_datetime:
    if (result->maxlen != sizeof sum || com__datetime_check_range(&sum) != 0)
      return overflow;
    return deliver(&sum, sizeof sum, result);
  case protocol_date:
    return is_four_bytes ? deliver(&sum.dtdays, sizeof sum.dtdays, result) : overflow;
  case protocol_time:
    return is_four_bytes ? deliver(&sum.dttime, sizeof sum.dttime, result) : overflow;
  case protocol_datetime4: {
    CS_DATETIME4 small;
    if (!is_four_bytes || com__dttodate4(&sum, &small) != 0)
      return overflow;
    return deliver(&small, sizeof small, result);
  }
  default:
    return overflow;
  }
}

int com__bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(src, overflow);
  COMN_CHECK_PTR(result, overflow);
  if (src->len != sizeof(CS_BIGDATETIME))
    return overflow;
  COMN_CHECK_PTR(src->value, overflow);
  auto sum = comn::load<CS_BIGDATETIME>(src->value);
  if (com__bigdate_add(part, value, &sum, result->type) != 0)
    return overflow;

  if (result->maxlen != sizeof sum)
    return overflow;
  switch (result->type) {
  case protocol_bigdatetime:
    return deliver(&sum, sizeof sum, result);
  case protocol_bigtime:
    sum = micros_of_day(sum);
    return deliver(&sum, sizeof sum, result);
  default:
    return overflow;
  }
}

int com__valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf) noexcept {
  COMN_CHECK_PTR(src, 0);
  CS_DATETIME value;
  if (src->len == sizeof(CS_DATETIME4)) {
    COMN_CHECK_PTR(src->value, 0);
    auto small = comn::load<CS_DATETIME4>(src->value);
    com__date4todt(&small, &value);
  } else {
    COMN_CHECK_PTR(cast_buf, 0);
    value = comn::load<CS_DATETIME>(cast_buf);
  }
  CS_DATETIME date = value;
  return com__date_add(part_year, 0, &date) == 0 && com__date_add(part_minute, 0, &value) == 0;
}
