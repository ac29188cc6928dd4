// The codes of the parts of a date, and the units that each is added and differenced by.
#ifndef COMN_DATES_DATE_PARTS_H
#define COMN_DATES_DATE_PARTS_H

#include "calendar.h"

namespace comn::calendar {

enum Part : int {
  part_year,
  part_quarter,
  part_month,
  part_weekday,
  part_day,
  part_day_of_year,
  part_hour,
  part_minute,
  part_second,
  part_millisecond,
  part_week,
  part_iso_year,
  part_iso_week,
  part_iso_weekday,
  part_microsecond, // big values only
  part_count,
};

constexpr bool is_big_part(int part) noexcept {
  return part >= 0 && part < part_count;
}

constexpr bool is_datetime_part(int part) noexcept {
  return part >= 0 && part < part_microsecond;
}

// The status of a sum or a difference that is too large.
constexpr int out_of_range = 1;

// What a unit counts: fields of the calendar, which have no fixed length, whole days, or the time.
enum class Counts : uint8_t { years, quarters, months, days, time };

// One unit. Its length follows from its microseconds.
struct PartUnit {
  Counts counts;
  CS_INT days;     // in it, of a unit of days
  CS_INT ticks;    // in it, of a unit of the time; 0 where they are no whole number
  int64_t per_day; // of it, of a unit of the time
  int64_t micros;  // in it; 0 for a field of the calendar

  constexpr bool is_field() const noexcept { return micros == 0; }
};

consteval PartUnit field_unit(Counts field) {
  return {field, 0, 0, 0, 0};
}

consteval PartUnit length_unit(CS_UBIGINT length) {
  constexpr auto day = static_cast<int64_t>(micros_per_day);
  const auto micros = static_cast<int64_t>(length);
  if (micros % day == 0)
    return {Counts::days, static_cast<CS_INT>(micros / day), 0, 0, micros};
  const int64_t per_day = day / micros;
  const int64_t ticks = ticks_per_day % per_day == 0 ? ticks_per_day / per_day : 0;
  return {Counts::time, 0, static_cast<CS_INT>(ticks), per_day, micros};
}

constexpr PartUnit part_units[part_count] = {
    /* year         */ field_unit(Counts::years),
    /* quarter      */ field_unit(Counts::quarters),
    /* month        */ field_unit(Counts::months),
    /* weekday      */ length_unit(micros_per_day),
    /* day          */ length_unit(micros_per_day),
    /* day of year  */ length_unit(micros_per_day),
    /* hour         */ length_unit(micros_per_hour),
    /* minute       */ length_unit(micros_per_minute),
    /* second       */ length_unit(micros_per_second),
    /* millisecond  */ length_unit(micros_per_milli),
    /* week         */ length_unit(days_per_week *micros_per_day),
    /* ISO year     */ field_unit(Counts::years),
    /* ISO week     */ length_unit(days_per_week *micros_per_day),
    /* ISO weekday  */ length_unit(micros_per_day),
    /* microsecond  */ length_unit(1),
};

// Between units of the time and ticks: 3 ticks are 10 milliseconds, which go to the nearest tick
// and come back truncated; other units are whole ticks.
constexpr int64_t ticks_of_units(const PartUnit &unit, int64_t count) noexcept {
  return unit.ticks != 0 ? count * unit.ticks : ticks_of_millis(count);
}

constexpr CS_INT units_of_ticks(const PartUnit &unit, CS_INT ticks) noexcept {
  return unit.ticks != 0 ? ticks / unit.ticks : ticks * 10 / 3;
}

// The ISO year of a day counted from 1900-01-01.
CS_INT iso_year(CS_INT days) noexcept;

} // namespace comn::calendar

#endif
