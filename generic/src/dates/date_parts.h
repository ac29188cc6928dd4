// The codes of the parts of a date, and what each is added and differenced by.
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

// What an addition works in.
enum class Unit : uint8_t { years, quarters, months, days, weeks, time };

struct PartUnits {
  Unit added;
  CS_BIGINT micros; // of a unit that is added to a big value as it is
};

constexpr PartUnits part_units[part_count] = {
    /* year         */ {Unit::years, 0},
    /* quarter      */ {Unit::quarters, 0},
    /* month        */ {Unit::months, 0},
    /* weekday      */ {Unit::days, micros_per_day},
    /* day          */ {Unit::days, micros_per_day},
    /* day of year  */ {Unit::days, micros_per_day},
    /* hour         */ {Unit::time, micros_per_hour},
    /* minute       */ {Unit::time, micros_per_minute},
    /* second       */ {Unit::time, micros_per_second},
    /* millisecond  */ {Unit::time, micros_per_milli},
    /* week         */ {Unit::weeks, days_per_week *micros_per_day},
    /* ISO year     */ {Unit::years, 0},
    /* ISO week     */ {Unit::weeks, days_per_week *micros_per_day},
    /* ISO weekday  */ {Unit::days, micros_per_day},
    /* microsecond  */ {Unit::time, 1},
};

// The ISO year of a day counted from 1900-01-01.
CS_INT iso_year(CS_INT days) noexcept;

} // namespace comn::calendar

#endif
