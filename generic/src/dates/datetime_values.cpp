// Narrowing and widening between the value types.
#include "calendar.h"
#include "checks.h"

using namespace comn::calendar;

namespace {

// Stores a day and minutes of it, which rounding may have carried to the end of the day.
int store_date4(CS_INT day, CS_INT minutes, CS_DATETIME4 &dest) noexcept {
  if (minutes == minutes_per_day) {
    if (day == last_date4_day)
      return 1;
    ++day;
    minutes = 0;
  }
  dest = {static_cast<CS_USHORT>(day), static_cast<CS_USHORT>(minutes)};
  return 0;
}

bool is_date4_day(CS_INT day) noexcept {
  return day >= 0 && day <= last_date4_day;
}

// The tick for a time of day in microseconds. Only the last millisecond of the day would round up
// to the next day.
CS_INT ticks_of_micros(CS_UBIGINT micros) noexcept {
  constexpr CS_UBIGINT last_milli = micros_per_day / micros_per_milli - 1;
  const CS_UBIGINT millis = micros / micros_per_milli;
  return millis == last_milli ? ticks_per_day - 1
                              : static_cast<CS_INT>(ticks_of_millis(static_cast<int64_t>(millis)));
}

CS_RETCODE precision_status(CS_UBIGINT micros) noexcept {
  return micros % micros_per_milli == 0 ? CS_SUCCEED : CS_CONV_TRUNCATED;
}

// Whole milliseconds of a tick count of any sign, as microseconds.
int64_t micros_of_ticks(CS_INT ticks) noexcept {
  constexpr auto milli = static_cast<int64_t>(micros_per_milli);
  return int64_t{ticks} * 1000 / ticks_per_second * milli;
}

CS_RETCODE big_to_timea(CS_UBIGINT value, CS_TIME &dest) noexcept {
  const CS_UBIGINT micros = micros_of_day(value);
  dest = ticks_of_micros(micros);
  return precision_status(micros);
}

} // namespace

int com__dttodate4(CS_DATETIME *src, CS_DATETIME4 *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  if (!is_date4_day(src->dtdays))
    return 1;
  const CS_INT ticks = src->dttime & tick_mask;
  return store_date4(src->dtdays, (ticks + ticks_per_minute / 2) / ticks_per_minute, *dest);
}

int com__bigdttodate4(CS_BIGDATETIME *src, CS_DATETIME4 *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  const BigParts parts = split_big(*src);
  if (!is_date4_day(parts.days))
    return 1;
  const bool rounds_up = fraction_of_micros(parts.micros) >= micro_precision / 2;
  const auto seconds = static_cast<CS_INT>(seconds_of_micros(parts.micros)) + rounds_up;
  return store_date4(parts.days, (seconds + seconds_per_minute / 2) / seconds_per_minute, *dest);
}

int com__date4todt(CS_DATETIME4 *src, CS_DATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = {src->days, src->minutes * ticks_per_minute};
  return 0;
}

int com__date4tobigdatetime(CS_DATETIME4 *src, CS_BIGDATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  constexpr CS_UBIGINT epoch = first_bigdatetime + CS_UBIGINT{-first_day} * micros_per_day;
  *dest = epoch + src->days * micros_per_day + src->minutes * micros_per_minute;
  return 0;
}

int com__date4tobigtime(CS_DATETIME4 *src, CS_BIGTIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = src->minutes * micros_per_minute;
  return 0;
}

int com__datetodatea(CS_DATETIME *src, CS_DATE *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = src->dtdays;
  return 0;
}

int com__datetotimea(CS_DATETIME *src, CS_TIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = src->dttime;
  return 0;
}

int com__datetobigdatetime(CS_DATETIME *src, CS_BIGDATETIME *dest) noexcept {
  CS_DATEREC fields;
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  com__datecrack(src, &fields);
  com__timecrack(src, &fields);
  return com_bigdatetimemake(dest, &fields);
}

int com__datetobigtime(CS_DATETIME *src, CS_BIGTIME *dest) noexcept {
  CS_DATEREC fields;
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  com__timecrack(src, &fields);
  return com__bigtimemake(dest, &fields);
}

int com__bigdatetimetodatea(CS_BIGDATETIME *src, CS_DATE *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = days_of_big(*src);
  return 0;
}

int com__bigdatetimetobigtime(CS_BIGDATETIME *src, CS_BIGTIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = micros_of_day(*src);
  return 0;
}

CS_RETCODE com__bigdatetimetodate(CS_BIGDATETIME *src, CS_DATETIME *dest) noexcept {
  CS_DATEREC fields;
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  com__bigdatecrack(src, &fields);
  com__bigtimecrack(src, &fields);
  if (com__datemake(dest, &fields) != 0 || com__timemake(dest, &fields) != 0)
    return CS_CONV_OVERFLOW;
  if (!is_datetime_day(dest->dtdays))
    return CS_CONV_UNDERFLOW;
  return precision_status(static_cast<CS_UBIGINT>(fields.datesecfrac));
}

CS_RETCODE com__bigdatetimetotimea(CS_BIGDATETIME *src, CS_TIME *dest) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  return big_to_timea(*src, *dest);
}

CS_RETCODE com__bigtimetotimea(CS_BIGTIME *src, CS_TIME *dest) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  return big_to_timea(*src, *dest);
}

CS_RETCODE com__bigtimetodate(CS_BIGTIME *src, CS_DATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  dest->dtdays = 0;
  const CS_RETCODE status = big_to_timea(*src, dest->dttime);
  return is_bigtime(*src) ? status : CS_CONV_UNDERFLOW;
}

int com__dateatodate(CS_DATE *src, CS_DATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  const bool fits = is_datetime_day(*src);
  *dest = {fits ? *src : 0, 0};
  return !fits;
}

int com__dateatobigdatetime(CS_DATE *src, CS_BIGDATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  const int64_t days = int64_t{*src} - first_day;
  const CS_UBIGINT value = first_bigdatetime + static_cast<CS_UBIGINT>(days) * micros_per_day;
  const bool fits = is_date(*src);
  *dest = fits ? value : 0;
  return !fits;
}

int com__timeatodate(CS_TIME *src, CS_DATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = {0, *src};
  return !is_time(*src);
}

int com__timeatobigdatetime(CS_TIME *src, CS_BIGDATETIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = first_bigdatetime + static_cast<CS_UBIGINT>(micros_of_ticks(*src));
  return !is_time(*src);
}

int com__timeatobigtime(CS_TIME *src, CS_BIGTIME *dest) noexcept {
  COMN_CHECK_PTR(src, 1);
  COMN_CHECK_PTR(dest, 1);
  *dest = static_cast<CS_BIGTIME>(micros_of_ticks(*src));
  return !is_time(*src);
}
