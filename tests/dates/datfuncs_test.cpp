// The public forms of the calendar operations, comparison, setting, and the built-in names.
#include <climits>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "guarded_buffer.h"

using namespace zrvtest;

// A record of ten fields, as older callers have it, is enough.
TEST(PublicCrack, KeepsTheOtherFieldsAndServesShortRecords) {
  GuardedBuffer record(10 * sizeof(CS_INT));
  auto *fields = reinterpret_cast<CS_DATEREC *>(record.data());
  constexpr CS_INT untouched = static_cast<CS_INT>(0xA5A5A5A5);
  CS_DATETIME value{36891, 14599};
  com_datecrack(&value, fields);
  EXPECT_EQ(record.value<CS_INT>(), 2001);
  EXPECT_EQ(fields->datedweek, 2);
  EXPECT_EQ(fields->datehour, untouched);
  EXPECT_EQ(fields->datetzone, untouched);
  com_timecrack(&value, fields);
  EXPECT_EQ(fields->datehour, 0);
  EXPECT_EQ(fields->datesecond, 48);
  EXPECT_EQ(fields->datemsecond, 663);
  EXPECT_EQ(fields->datetzone, untouched);
}

TEST(PublicCrack, FractionOfTheCallerStays) {
  CS_DATEREC fields{};
  fields.datesecfrac = 17;
  fields.datesecprec = 19;
  CS_DATETIME value{0, 1};
  com_datecrack(&value, &fields);
  com_timecrack(&value, &fields);
  EXPECT_EQ(fields.datemsecond, 3);
  EXPECT_EQ(fields.datesecfrac, 17);
  EXPECT_EQ(fields.datesecprec, 19);
}

TEST(PublicCrack, BigForms) {
  CS_DATEREC fields{};
  fields.datetzone = 5;
  CS_BIGDATETIME value = make_big(2024, 2, 29, 12, 34, 56, 789012);
  com_bigdatecrack(&value, &fields);
  EXPECT_EQ(fields.dateyear, 2024);
  EXPECT_EQ(fields.datedyear, 60);
  EXPECT_EQ(fields.datedweek, 4);
  EXPECT_EQ(fields.datehour, 0);
  com_bigtimecrack(&value, &fields);
  EXPECT_EQ(fields.datehour, 12);
  EXPECT_EQ(fields.datesecfrac, 789012);
  EXPECT_EQ(fields.datesecprec, 1000000);
  EXPECT_EQ(fields.datetzone, 5);
}

TEST(PublicMake, SameAsTheInnerForms) {
  CS_DATEREC fields = make_fields(2001, 1, 2, 3, 4, 5, 6);
  CS_DATETIME value{};
  EXPECT_EQ(com_datemake(&value, &fields), 0);
  EXPECT_EQ(com_timemake(&value, &fields), 0);
  EXPECT_EQ(value.dtdays, 36891);
  EXPECT_EQ(value.dttime, 3 * 1080000 + 4 * 18000 + 5 * 300 + 2);
  CS_BIGDATETIME big = 0;
  CS_BIGTIME time = 0;
  EXPECT_EQ(com_bigdatemake(&big, &fields), 0);
  EXPECT_EQ(com_bigtimemake(&time, &fields), 0);
  EXPECT_EQ(big, year_one + (36891 + 693595) * micros_per_day);
  EXPECT_EQ(time, 11045006000U);
  fields.datemonth = 12;
  fields.dateminute = 60;
  EXPECT_EQ(com_datemake(&value, &fields), 2);
  EXPECT_EQ(com_timemake(&value, &fields), 5);
  EXPECT_EQ(com_bigdatemake(&big, &fields), 2);
  EXPECT_EQ(com_bigtimemake(&time, &fields), 5);
}

TEST(PublicMake, BigDateTime) {
  CS_DATEREC fields = make_fields(1, 1, 1, 23, 59, 59);
  fields.datesecfrac = 999999;
  fields.datesecprec = 1000000;
  CS_BIGDATETIME value = 0;
  EXPECT_EQ(com_bigdatetimemake(&value, &fields), 0);
  EXPECT_EQ(value, year_one + 86399999999);
  fields.datesecond = 60;
  EXPECT_EQ(com_bigdatetimemake(&value, &fields), 6);
  EXPECT_EQ(value, year_one);
  fields.datedmonth = 32;
  EXPECT_EQ(com_bigdatetimemake(&value, &fields), 3); // before the second
  EXPECT_EQ(value, 0U);
}

TEST(Compare, DateTimeAsSigned) {
  const auto compare = [](CS_DATETIME left, CS_DATETIME right) {
    return com_datecmp(&left, &right);
  };
  EXPECT_EQ(compare({1, 2}, {1, 2}), 0);
  EXPECT_EQ(compare({-1, 2}, {1, 1}), -1);
  EXPECT_EQ(compare({1, 1}, {-1, 2}), 1);
  EXPECT_EQ(compare({1, 1}, {1, 2}), -1);
  EXPECT_EQ(compare({1, 2}, {1, 1}), 1);
  EXPECT_EQ(compare({1, -1}, {1, 1}), -1);
  EXPECT_EQ(compare({INT_MIN, 0}, {INT_MAX, 0}), -1);
  EXPECT_EQ(compare({0, INT_MAX}, {0, INT_MIN}), 1);
}

TEST(Compare, TheOthers) {
  const auto date4 = [](CS_DATETIME4 left, CS_DATETIME4 right) {
    return com_date4cmp(&left, &right);
  };
  EXPECT_EQ(date4({65535, 0}, {1, 9}), 1);
  EXPECT_EQ(date4({1, 65535}, {1, 9}), 1);
  EXPECT_EQ(date4({1, 9}, {1, 65535}), -1);
  EXPECT_EQ(date4({1, 9}, {2, 0}), -1);
  EXPECT_EQ(date4({7, 7}, {7, 7}), 0);
  const auto date = [](CS_DATE left, CS_DATE right) { return com_dateacmp(&left, &right); };
  EXPECT_EQ(date(-1, 1), -1);
  EXPECT_EQ(date(1, -1), 1);
  EXPECT_EQ(date(INT_MIN, INT_MAX), -1);
  EXPECT_EQ(date(3, 3), 0);
  const auto time = [](CS_TIME left, CS_TIME right) { return com_timeacmp(&left, &right); };
  EXPECT_EQ(time(-1, 1), -1);
  EXPECT_EQ(time(2, 1), 1);
  EXPECT_EQ(time(3, 3), 0);
  const auto big = [](CS_BIGDATETIME left, CS_BIGDATETIME right) {
    return com_bigdatetimecmp(&left, &right);
  };
  EXPECT_EQ(big(UINT64_MAX, 1), 1);
  EXPECT_EQ(big(1, UINT64_MAX), -1);
  EXPECT_EQ(big(5, 5), 0);
}

TEST(Compare, DifferenceHasTheRightSign) {
  const auto compare = [](CS_DATETIME left, CS_DATETIME right) {
    return com__datecmp(&left, &right);
  };
  EXPECT_EQ(compare({5, 9}, {3, 1}), 2);
  EXPECT_EQ(compare({5, 1}, {5, 9}), -8);
  EXPECT_EQ(compare({5, 1}, {5, 1}), 0);
  EXPECT_GT(compare({INT_MAX, 0}, {INT_MIN, 0}), 0);
  EXPECT_LT(compare({INT_MIN, 0}, {INT_MAX, 0}), 0);
  EXPECT_LT(compare({0, INT_MIN}, {0, INT_MAX}), 0);
}

TEST(Setting, ZeroAndFields) {
  CS_DATETIME value{1, 2};
  com_datezero(&value);
  EXPECT_EQ(value.dtdays, 0);
  EXPECT_EQ(value.dttime, 0);
  com_setdatetime(&value, INT_MIN, -1);
  EXPECT_EQ(value.dtdays, INT_MIN);
  EXPECT_EQ(value.dttime, -1);
  CS_DATETIME4 small{1, 2};
  com_date4zero(&small);
  EXPECT_EQ(small.days, 0);
  EXPECT_EQ(small.minutes, 0);
}

TEST(Names, Tables) {
  const char *months[] = {"January", "February", "March",     "April",   "May",      "June",
                          "July",    "August",   "September", "October", "November", "December"};
  const char *days[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                        "Thursday", "Friday", "Saturday"};
  for (size_t i = 0; i < 12; ++i) {
    EXPECT_STREQ(Com__Months[i], months[i]);
    EXPECT_EQ(Com__Shortmonths[i], std::string(months[i], 3));
    EXPECT_STREQ(com__get_months()[i], months[i]);
    EXPECT_EQ(com__get_shortmonths()[i], std::string(months[i], 3));
  }
  for (size_t i = 0; i < 7; ++i) {
    EXPECT_STREQ(Com__WeekDay[i], days[i]);
    EXPECT_EQ(Com__Days[i], std::string(days[i], 3));
    EXPECT_EQ(com__get_days()[i], std::string(days[i], 3));
  }
  EXPECT_STREQ(Com__ampm[0], "AM");
  EXPECT_STREQ(Com__ampm[1], "PM");
  EXPECT_EQ(Com__Firstday, 7);
  EXPECT_EQ(com__get_firstday(), 7);
  EXPECT_STREQ(Com__date_order, "mdy");
  EXPECT_STREQ(com__get_date_order(), "mdy");
  EXPECT_EQ(Com__date_order_id, 1);
  EXPECT_EQ(com__get_date_order_id(), 1);
}

TEST(PublicChecks, NullPointers) {
  CS_DATETIME value{1, 2};
  CS_DATETIME4 small{1, 2};
  CS_INT number = 1;
  CS_BIGDATETIME big = 1;
  CS_DATEREC fields = make_fields(2000, 1, 1);
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_datecmp(nullptr, &value));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_datecmp(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com__datecmp(nullptr, &value));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com__datecmp(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_date4cmp(nullptr, &small));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_date4cmp(&small, nullptr));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_dateacmp(nullptr, &number));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_dateacmp(&number, nullptr));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_timeacmp(nullptr, &number));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_timeacmp(&number, nullptr));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_bigdatetimecmp(nullptr, &big));
  EXPECT_NULL_POINTER_CHECK("datfuncs.cpp", 0, com_bigdatetimecmp(&big, nullptr));
  const auto traps = [](auto call) {
    return is_null_pointer_report(catch_check(call), "datfuncs.cpp");
  };
  EXPECT_TRUE(traps([&] { com_timecrack(nullptr, &fields); }));
  EXPECT_TRUE(traps([&] { com_timecrack(&value, nullptr); }));
  // A null record is as fatal as a null value; the forms that forward report from the calendar.
  const auto forwards_trap = [](auto call) {
    return is_null_pointer_report(catch_check(call), "datetime.cpp");
  };
  EXPECT_TRUE(forwards_trap([&] { com_datecrack(nullptr, &fields); }));
  EXPECT_TRUE(forwards_trap([&] { com_datecrack(&value, nullptr); }));
  EXPECT_TRUE(forwards_trap([&] { com_bigdatecrack(nullptr, &fields); }));
  EXPECT_TRUE(forwards_trap([&] { com_bigdatecrack(&big, nullptr); }));
  EXPECT_TRUE(forwards_trap([&] { com_bigtimecrack(nullptr, &fields); }));
  EXPECT_TRUE(forwards_trap([&] { com_bigtimecrack(&big, nullptr); }));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_datemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_datemake(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com_timemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com_timemake(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_bigdatemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_bigdatemake(&big, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com_bigtimemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com_bigtimemake(&big, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_bigdatetimemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com_bigdatetimemake(&big, nullptr));
  EXPECT_EQ(value.dtdays, 1);
  EXPECT_EQ(value.dttime, 2);
  EXPECT_EQ(big, 1U);
  EXPECT_TRUE(traps([&] { com_datezero(nullptr); }));
  EXPECT_TRUE(traps([&] { com_date4zero(nullptr); }));
  EXPECT_TRUE(traps([&] { com_setdatetime(nullptr, 1, 2); }));
}
