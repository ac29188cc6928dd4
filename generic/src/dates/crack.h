// Filling the fields of a record, for the crack functions and for whoever needs fields at once.
#ifndef COMN_DATES_CRACK_H
#define COMN_DATES_CRACK_H

#include "calendar.h"

namespace comn::calendar {

// The fields that a text can show.
inline Date set_shown_date_fields(CS_DATEREC &fields, CS_INT days) noexcept {
  const Date date = crack_day(days);
  fields.dateyear = date.year;
  fields.datemonth = date.month;
  fields.datedmonth = date.day;
  return date;
}

inline void set_date_fields(CS_DATEREC &fields, CS_INT days) noexcept {
  const Date date = set_shown_date_fields(fields, days);
  fields.datedyear = date.day_of_year;
  fields.datedweek = weekday(days);
}

inline void set_clock_fields(CS_DATEREC &fields, uint32_t seconds) noexcept {
  const Time time = crack_seconds(seconds);
  fields.datehour = time.hour;
  fields.dateminute = time.minute;
  fields.datesecond = time.second;
}

// The time fields that a record of ten fields has.
inline void set_time_fields(CS_DATEREC &fields, CS_INT dttime) noexcept {
  set_clock_fields(fields, seconds_of_ticks(dttime));
  fields.datemsecond = millis_of_ticks(dttime);
}

inline void set_bigtime_fields(CS_DATEREC &fields, CS_UBIGINT micros) noexcept {
  set_clock_fields(fields, seconds_of_micros(micros));
  fields.datemsecond = 0;
  fields.datesecfrac = fraction_of_micros(micros);
  fields.datesecprec = micro_precision;
}

} // namespace comn::calendar

#endif
