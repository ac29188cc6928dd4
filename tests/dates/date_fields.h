// Records and values in one line each.
#ifndef ZRVTEST_DATE_FIELDS_H
#define ZRVTEST_DATE_FIELDS_H

#include <gtest/gtest.h>

#include "zrvcomn/datetime.h"

namespace zrvtest {

constexpr CS_INT ticks_per_day = 25920000;
constexpr CS_UBIGINT micros_per_day = 86400000000;
constexpr CS_UBIGINT year_one = 31622400000000;

// `month` counts from 1, as people write it.
inline CS_DATEREC make_fields(CS_INT year, CS_INT month, CS_INT day, CS_INT hour = 0,
                              CS_INT minute = 0, CS_INT second = 0, CS_INT millisecond = 0) {
  CS_DATEREC fields{};
  fields.dateyear = year;
  fields.datemonth = month - 1;
  fields.datedmonth = day;
  fields.datehour = hour;
  fields.dateminute = minute;
  fields.datesecond = second;
  fields.datemsecond = millisecond;
  return fields;
}

inline CS_DATETIME make_datetime(CS_INT year, CS_INT month, CS_INT day, CS_INT hour = 0,
                                 CS_INT minute = 0, CS_INT second = 0, CS_INT millisecond = 0) {
  CS_DATEREC fields = make_fields(year, month, day, hour, minute, second, millisecond);
  CS_DATETIME value{};
  EXPECT_EQ(com__datemake(&value, &fields), 0);
  EXPECT_EQ(com__timemake(&value, &fields), 0);
  return value;
}

inline CS_BIGDATETIME make_big(CS_INT year, CS_INT month, CS_INT day, CS_INT hour = 0,
                               CS_INT minute = 0, CS_INT second = 0, CS_INT microsecond = 0) {
  CS_DATEREC fields = make_fields(year, month, day, hour, minute, second);
  fields.datesecfrac = microsecond;
  fields.datesecprec = 1000000;
  CS_BIGDATETIME value{};
  EXPECT_EQ(com_bigdatetimemake(&value, &fields), 0);
  return value;
}

// The same numbers in every run; `state` starts at anything but 0.
inline uint32_t next_random(uint32_t &state) {
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return state;
}

} // namespace zrvtest

#endif
