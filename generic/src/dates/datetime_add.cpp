// Adding to dates and times by part code.
#include <algorithm>
#include <cstring>

#include "any_address.h"
#include "checks.h"
#include "crack.h"
#include "date_parts.h"

using namespace comn::calendar;

namespace {

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
bool add_to_fields(Counts counts, CS_INT value, CS_DATEREC &fields) noexcept {
  CS_INT years = value, month = fields.datemonth;
  if (counts != Counts::years) {
    CS_INT months = value;
    if (counts == Counts::quarters && __builtin_mul_overflow(value, 3, &months))
      return false;
    if (__builtin_add_overflow(month, months, &months))
      return false;
    years = months / months_per_year;
    month = months % months_per_year;
    if (month < 0) {
      month += months_per_year;
      --years;
    }
  }
  if (__builtin_add_overflow(fields.dateyear, years, &years))
    return false;
  fields.dateyear = years;
  fields.datemonth = month;
  monthcheck(&fields);
  return true;
}

// Adds units of the time to `ticks` and returns the days that it carries, or borrows. A value
// beyond a day's units is split into days first; the sum then carries a single day.
int64_t add_to_ticks(const PartUnit &unit, CS_INT value, int64_t &ticks) noexcept {
  int64_t days = 0;
  int64_t rest = value;
  if (rest > unit.per_day || rest < -unit.per_day) {
    days = rest / unit.per_day;
    rest %= unit.per_day;
  }
  ticks += ticks_of_units(unit, rest);
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
  const monthcnt &row = (is_leap(fields->dateyear) ? own_lmonthdays : own_monthdays)[month];
  fields->datedmonth = std::min<CS_INT>(fields->datedmonth, row.daysinmonth);
}

int com__date_add(int part, CS_INT value, CS_DATETIME *to) noexcept {
  COMN_CHECK(is_datetime_part(part), out_of_range);
  COMN_CHECK_PTR(to, out_of_range);
  const PartUnit &unit = part_units[part];
  if (unit.is_field()) {
    CS_DATEREC fields;
    set_date_fields(fields, to->dtdays);
    if (!add_to_fields(unit.counts, value, fields))
      return out_of_range;
    return com__datemake(to, &fields);
  }
  int64_t days = int64_t{value} * unit.days;
  int64_t ticks = to->dttime;
  if (unit.counts == Counts::time) {
    // The whole of dttime is judged, its high bits too: deliberate.
    if (ticks >= ticks_per_day)
      return out_of_range;
    days = add_to_ticks(unit, value, ticks);
  }
  days += to->dtdays;
  if (days < first_day || days >= end_day)
    return out_of_range;
  *to = {static_cast<CS_INT>(days), static_cast<CS_INT>(ticks)};
  return 0;
}

int com__bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type) noexcept {
  COMN_CHECK(is_big_part(part), out_of_range);
  COMN_CHECK_PTR(to, out_of_range);
  const PartUnit &unit = part_units[part];
  if (unit.is_field()) {
    CS_DATEREC fields;
    const BigParts parts = split_big(*to);
    set_date_fields(fields, parts.days);
    set_bigtime_fields(fields, parts.micros);
    if (!add_to_fields(unit.counts, value, fields))
      return out_of_range;
    return com_bigdatetimemake(to, &fields);
  }
  CS_BIGINT added;
  CS_BIGDATETIME sum;
  if (__builtin_mul_overflow(value, unit.micros, &added) ||
      __builtin_add_overflow(*to, added, &sum))
    return out_of_range;
  if (type == protocol_bigdatetime && !is_bigdatetime(sum))
    return out_of_range;
  // A time does not wrap round midnight, as the ticks of a CS_DATETIME do.
  if (type == protocol_bigtime && !is_bigtime(sum))
    return out_of_range;
  *to = sum;
  return 0;
}

namespace {

// Delivers a sum of one type in the capacity that it must have.
int deliver_sum(const void *value, CS_INT size, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(result->value, out_of_range);
  std::memcpy(result->value, value, static_cast<size_t>(size));
  result->len = result->maxlen;
  return 0;
}

} // namespace

int com__dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(src, out_of_range);
  COMN_CHECK_PTR(result, out_of_range);
  CS_DATETIME sum{};
  if (src->len != sizeof sum && src->len != sizeof(CS_TIME))
    return out_of_range;
  COMN_CHECK_PTR(src->value, out_of_range);
  if (result->type == protocol_time) {
    // A time has no room for more.
    if (src->len != sizeof sum.dttime)
      return out_of_range;
    std::memcpy(&sum.dttime, src->value, sizeof sum.dttime);
  } else {
    std::memcpy(&sum, src->value, static_cast<size_t>(src->len));
  }
  if (com__date_add(part, value, &sum) != 0)
    return out_of_range;

  const bool is_four_bytes = result->maxlen == 4;
  switch (result->type) {
  case protocol_datetime:
    if (result->maxlen != sizeof sum || com__datetime_check_range(&sum) != 0)
      return out_of_range;
    return deliver_sum(&sum, sizeof sum, result);
  case protocol_date:
    return is_four_bytes ? deliver_sum(&sum.dtdays, sizeof sum.dtdays, result) : out_of_range;
  case protocol_time:
    return is_four_bytes ? deliver_sum(&sum.dttime, sizeof sum.dttime, result) : out_of_range;
  case protocol_datetime4: {
    CS_DATETIME4 small;
    if (!is_four_bytes || com__dttodate4(&sum, &small) != 0)
      return out_of_range;
    return deliver_sum(&small, sizeof small, result);
  }
  default:
    return out_of_range;
  }
}

int com__bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(src, out_of_range);
  COMN_CHECK_PTR(result, out_of_range);
  if (src->len != sizeof(CS_BIGDATETIME))
    return out_of_range;
  COMN_CHECK_PTR(src->value, out_of_range);
  auto sum = comn::load<CS_BIGDATETIME>(src->value);
  if (com__bigdate_add(part, value, &sum, result->type) != 0)
    return out_of_range;

  if (result->maxlen != sizeof sum)
    return out_of_range;
  switch (result->type) {
  case protocol_bigdatetime:
    return deliver_sum(&sum, sizeof sum, result);
  case protocol_bigtime:
    sum = micros_of_day(sum);
    return deliver_sum(&sum, sizeof sum, result);
  default:
    return out_of_range;
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
