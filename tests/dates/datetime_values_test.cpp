// Narrowing and widening between the value types.
#include <climits>
#include <cstdint>
#include <utility>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "test_scale.h"

using namespace zrvtest;

namespace {

template <class Source, class Dest>
struct Outcome {
  CS_INT status;
  Dest value;
};

// Calls an operator with a destination that holds `before`.
template <class Source, class Dest, class Status>
Outcome<Source, Dest> run(Status (*function)(Source *, Dest *) noexcept, Source source,
                          Dest before) {
  const CS_INT status = function(&source, &before);
  return {status, before};
}

constexpr CS_INT half_minute = 9000;
constexpr CS_DATETIME4 old4{11, 22};
constexpr CS_DATETIME old{33, 44};

} // namespace

#define EXPECT_DATE4(expected_status, expected_days, expected_minutes, ...)                        \
  do {                                                                                             \
    const auto outcome = run(__VA_ARGS__, old4);                                                   \
    EXPECT_EQ(outcome.status, expected_status);                                                    \
    EXPECT_EQ(outcome.value.days, expected_days);                                                  \
    EXPECT_EQ(outcome.value.minutes, expected_minutes);                                            \
  } while (0)
#define EXPECT_DATETIME(expected_status, expected_days, expected_time, ...)                        \
  do {                                                                                             \
    const auto outcome = run(__VA_ARGS__, old);                                                    \
    EXPECT_EQ(outcome.status, expected_status);                                                    \
    EXPECT_EQ(outcome.value.dtdays, expected_days);                                                \
    EXPECT_EQ(outcome.value.dttime, expected_time);                                                \
  } while (0)
#define EXPECT_NUMBER(expected_status, expected_value, before, ...)                                \
  do {                                                                                             \
    const auto outcome = run(__VA_ARGS__, before);                                                 \
    EXPECT_EQ(outcome.status, expected_status);                                                    \
    EXPECT_EQ(outcome.value, expected_value);                                                      \
  } while (0)

TEST(Narrow, DateTimeToDate4) {
  EXPECT_DATE4(0, 0, 0, com__dttodate4, CS_DATETIME{0, 0});
  EXPECT_DATE4(0, 5, 0, com__dttodate4, CS_DATETIME{5, half_minute - 1});
  EXPECT_DATE4(0, 5, 1, com__dttodate4, CS_DATETIME{5, half_minute});
  EXPECT_DATE4(0, 5, 1, com__dttodate4, CS_DATETIME{5, 3 * half_minute - 1});
  // 23:59:30 belongs to the next day, which the last day does not have.
  EXPECT_DATE4(0, 5, 1439, com__dttodate4, CS_DATETIME{5, 25919999 - half_minute});
  EXPECT_DATE4(0, 6, 0, com__dttodate4, CS_DATETIME{5, 25920000 - half_minute});
  EXPECT_DATE4(0, 65535, 0, com__dttodate4, CS_DATETIME{65534, 25919999});
  EXPECT_DATE4(0, 65535, 1439, com__dttodate4, CS_DATETIME{65535, 25919999 - half_minute});
  EXPECT_DATE4(1, 11, 22, com__dttodate4, CS_DATETIME{65535, 25920000 - half_minute});
  EXPECT_DATE4(1, 11, 22, com__dttodate4, CS_DATETIME{-1, 0});
  EXPECT_DATE4(1, 11, 22, com__dttodate4, CS_DATETIME{65536, 0});
  EXPECT_DATE4(1, 11, 22, com__dttodate4, CS_DATETIME{INT_MIN, 0});
  // The high bits of the time do not count.
  EXPECT_DATE4(0, 5, 1, com__dttodate4, CS_DATETIME{5, INT_MIN | half_minute});
}

TEST(Narrow, BigDateTimeToDate4) {
  const auto to_date4 = com__bigdttodate4;
  EXPECT_DATE4(0, 0, 0, to_date4, make_big(1900, 1, 1));
  EXPECT_DATE4(1, 11, 22, to_date4, make_big(1899, 12, 31, 23, 59, 59, 999999));
  EXPECT_DATE4(0, 65535, 1439, to_date4, make_big(2079, 6, 6, 23, 59, 29, 499999));
  EXPECT_DATE4(1, 11, 22, to_date4, make_big(2079, 6, 6, 23, 59, 29, 500000));
  EXPECT_DATE4(1, 11, 22, to_date4, make_big(2079, 6, 7));
  EXPECT_DATE4(0, 0, 750, to_date4, make_big(1900, 1, 1, 12, 30, 29, 499999));
  // The seconds are rounded first: 29.5 is 30, which is a minute more.
  EXPECT_DATE4(0, 0, 751, to_date4, make_big(1900, 1, 1, 12, 30, 29, 500000));
  EXPECT_DATE4(0, 0, 751, to_date4, make_big(1900, 1, 1, 12, 30, 30, 0));
  EXPECT_DATE4(0, 0, 751, to_date4, make_big(1900, 1, 1, 12, 30, 59, 999999));
  EXPECT_DATE4(0, 1, 0, to_date4, make_big(1900, 1, 1, 23, 59, 59, 999999));
  EXPECT_DATE4(1, 11, 22, to_date4, CS_BIGDATETIME{0});
  EXPECT_DATE4(1, 11, 22, to_date4, CS_BIGDATETIME{UINT64_MAX});
}

TEST(Widen, Date4) {
  EXPECT_DATETIME(0, 0, 0, com__date4todt, CS_DATETIME4{0, 0});
  EXPECT_DATETIME(0, 65535, 1439 * 18000, com__date4todt, CS_DATETIME4{65535, 1439});
  EXPECT_DATETIME(0, 1, 65535 * 18000, com__date4todt, CS_DATETIME4{1, 65535});
  EXPECT_NUMBER(0, make_big(2079, 6, 6, 23, 59), CS_BIGDATETIME{1}, com__date4tobigdatetime,
                CS_DATETIME4{65535, 1439});
  EXPECT_NUMBER(0, make_big(1900, 1, 1), CS_BIGDATETIME{1}, com__date4tobigdatetime,
                CS_DATETIME4{0, 0});
  EXPECT_NUMBER(0, 86340000000U, CS_BIGTIME{1}, com__date4tobigtime, CS_DATETIME4{9, 1439});
  EXPECT_NUMBER(0, 3932100000000U, CS_BIGTIME{1}, com__date4tobigtime, CS_DATETIME4{9, 65535});
}

TEST(Widen, DateTimeHalves) {
  EXPECT_NUMBER(0, -53690, CS_DATE{1}, com__datetodatea, CS_DATETIME{-53690, 7});
  // Both are taken as they stand, high bits of the time included.
  EXPECT_NUMBER(0, INT_MIN, CS_DATE{1}, com__datetodatea, CS_DATETIME{INT_MIN, 7});
  EXPECT_NUMBER(0, -1, CS_TIME{1}, com__datetotimea, CS_DATETIME{3, -1});
  EXPECT_NUMBER(0, 25919999, CS_TIME{1}, com__datetotimea, CS_DATETIME{3, 25919999});
}

TEST(Widen, DateTimeToBig) {
  const auto to_big = com__datetobigdatetime;
  EXPECT_NUMBER(0, make_big(1900, 1, 1) + 3000, CS_BIGDATETIME{1}, to_big, CS_DATETIME{0, 1});
  EXPECT_NUMBER(0, make_big(9999, 12, 31, 23, 59, 59, 996000), CS_BIGDATETIME{1}, to_big,
                CS_DATETIME{2958463, 25919999});
  EXPECT_NUMBER(0, year_one, CS_BIGDATETIME{1}, to_big, CS_DATETIME{-693595, 0});
  // Past the calendar, and past the day: the status of the make, with what it leaves.
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATETIME{2958464, 0});
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATETIME{INT_MIN, 0});
  EXPECT_NUMBER(4, make_big(1900, 1, 1), CS_BIGDATETIME{1}, to_big, CS_DATETIME{0, 25920000});
  const auto to_time = com__datetobigtime;
  EXPECT_NUMBER(0, 6000U, CS_BIGTIME{1}, to_time, CS_DATETIME{INT_MAX, 2});
  EXPECT_NUMBER(0, 86399996000U, CS_BIGTIME{1}, to_time, CS_DATETIME{0, 25919999});
  EXPECT_NUMBER(4, 0U, CS_BIGTIME{1}, to_time, CS_DATETIME{0, 25920000});
}

TEST(Narrow, BigDateTimeHalves) {
  EXPECT_NUMBER(0, -693595, CS_DATE{1}, com__bigdatetimetodatea, CS_BIGDATETIME{year_one});
  EXPECT_NUMBER(0, 2958463, CS_DATE{1}, com__bigdatetimetodatea,
                CS_BIGDATETIME{315569519999999999});
  EXPECT_NUMBER(0, -1, CS_DATE{1}, com__bigdatetimetodatea, make_big(1899, 12, 31, 23, 59, 59, 1));
  EXPECT_NUMBER(0, 86399999999U, CS_BIGTIME{1}, com__bigdatetimetobigtime,
                CS_BIGDATETIME{year_one + 86399999999});
  EXPECT_NUMBER(0, 0U, CS_BIGTIME{1}, com__bigdatetimetobigtime,
                CS_BIGDATETIME{year_one + micros_per_day});
}

TEST(Narrow, BigDateTimeToDateTime) {
  const auto to_datetime = com__bigdatetimetodate;
  EXPECT_DATETIME(1, -53690, 0, to_datetime, make_big(1753, 1, 1));
  EXPECT_DATETIME(1, 2958463, 25919999, to_datetime, make_big(9999, 12, 31, 23, 59, 59, 999000));
  EXPECT_DATETIME(-113, 2958463, 25919999, to_datetime, make_big(9999, 12, 31, 23, 59, 59, 999999));
  EXPECT_DATETIME(-113, 0, 37, to_datetime, make_big(1900, 1, 1, 0, 0, 0, 123456));
  EXPECT_DATETIME(1, 0, 37, to_datetime, make_big(1900, 1, 1, 0, 0, 0, 123000));
  EXPECT_DATETIME(-102, -53691, 25919700, to_datetime, make_big(1752, 12, 31, 23, 59, 59, 0));
  // Too early decides over a lost fraction.
  EXPECT_DATETIME(-102, -53691, 0, to_datetime, make_big(1752, 12, 31, 0, 0, 0, 1));
  const auto status = [](CS_BIGDATETIME value) {
    CS_DATETIME result{};
    return com__bigdatetimetodate(&value, &result);
  };
  EXPECT_EQ(status(315569520000000000), -101);
  EXPECT_EQ(status(year_one - 1), -101);
  EXPECT_EQ(status(0), -101);
  EXPECT_EQ(status(UINT64_MAX), -101);
}

// Deliberate: it stays in its second where a date-time is made of fields; elsewhere it rounds up into the
// next one, unless it ends the day.
TEST(Narrow, TheLastMillisecondOfASecond) {
  EXPECT_DATETIME(1, 0, 299, com__bigdatetimetodate, make_big(1900, 1, 1, 0, 0, 0, 999000));
  EXPECT_DATETIME(1, 0, 300, com__bigtimetodate, CS_BIGTIME{999000});
  for (const auto to_time : {com__bigdatetimetotimea, com__bigtimetotimea})
    EXPECT_NUMBER(1, 300, CS_TIME{9}, to_time, CS_UBIGINT{999000});
}

TEST(Narrow, BigToTime) {
  for (const auto to_time : {com__bigdatetimetotimea, com__bigtimetotimea}) {
    EXPECT_NUMBER(1, 0, CS_TIME{9}, to_time, CS_UBIGINT{0});
    EXPECT_NUMBER(-113, 25919999, CS_TIME{9}, to_time, CS_UBIGINT{86399999999});
    EXPECT_NUMBER(1, 25919999, CS_TIME{9}, to_time, CS_UBIGINT{86399999000});
    EXPECT_NUMBER(1, 25919999, CS_TIME{9}, to_time, CS_UBIGINT{86399998000});
    EXPECT_NUMBER(-113, 0, CS_TIME{9}, to_time, CS_UBIGINT{1});
    EXPECT_NUMBER(1, 1, CS_TIME{9}, to_time, CS_UBIGINT{2000});
    // The time of day.
    EXPECT_NUMBER(1, 300, CS_TIME{9}, to_time, CS_UBIGINT{micros_per_day + 1000000});
  }
  EXPECT_NUMBER(1, 25919999, CS_TIME{9}, com__bigdatetimetotimea,
                make_big(2000, 1, 1, 23, 59, 59, 999000));
}

TEST(Narrow, EveryMillisecondOfABigTime) {
  const CS_UBIGINT step = sanitized ? 97 : 7;
  for (CS_UBIGINT milli = 0; milli < 86399999; milli += step) {
    CS_BIGTIME value = milli * 1000;
    CS_TIME ticks = -1;
    ASSERT_EQ(com__bigtimetotimea(&value, &ticks), 1);
    const CS_BIGINT distance = 3 * static_cast<CS_BIGINT>(milli) - 10 * CS_BIGINT{ticks};
    ASSERT_TRUE(distance >= -5 && distance < 5) << milli;
  }
}

TEST(Narrow, BigTimeToDateTime) {
  EXPECT_DATETIME(1, 0, 300, com__bigtimetodate, CS_BIGTIME{1000000});
  EXPECT_DATETIME(-113, 0, 300, com__bigtimetodate, CS_BIGTIME{1000001});
  EXPECT_DATETIME(-113, 0, 25919999, com__bigtimetodate, CS_BIGTIME{86399999999});
  EXPECT_DATETIME(-102, 0, 0, com__bigtimetodate, CS_BIGTIME{86400000000});
  // Too large decides over a lost fraction; the time of day is in place, days or not.
  EXPECT_DATETIME(-102, 0, 300, com__bigtimetodate, CS_BIGTIME{86401000001});
  EXPECT_DATETIME(-102, 0, 12960001, com__bigtimetodate, CS_BIGTIME{302400002000});
  EXPECT_DATETIME(-102, 0, 25919999, com__bigtimetodate, CS_BIGTIME{172799999000});
}

TEST(Widen, Date) {
  EXPECT_DATETIME(0, -53690, 0, com__dateatodate, CS_DATE{-53690});
  EXPECT_DATETIME(0, 2958463, 0, com__dateatodate, CS_DATE{2958463});
  EXPECT_DATETIME(1, 0, 0, com__dateatodate, CS_DATE{-53691});
  EXPECT_DATETIME(1, 0, 0, com__dateatodate, CS_DATE{-693595});
  // The check of CS_DATETIME has no upper limit.
  EXPECT_DATETIME(0, INT_MAX, 0, com__dateatodate, CS_DATE{INT_MAX});
  const auto to_big = com__dateatobigdatetime;
  EXPECT_NUMBER(0, year_one, CS_BIGDATETIME{1}, to_big, CS_DATE{-693595});
  EXPECT_NUMBER(0, make_big(9999, 12, 31), CS_BIGDATETIME{1}, to_big, CS_DATE{2958463});
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATE{-693596});
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATE{2958464});
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATE{INT_MIN});
  EXPECT_NUMBER(1, 0U, CS_BIGDATETIME{1}, to_big, CS_DATE{INT_MAX});
}

TEST(Widen, Time) {
  EXPECT_DATETIME(0, 0, 25919999, com__timeatodate, CS_TIME{25919999});
  EXPECT_DATETIME(1, 0, 25920000, com__timeatodate, CS_TIME{25920000});
  EXPECT_DATETIME(1, 0, -1, com__timeatodate, CS_TIME{-1});
  const auto to_big = com__timeatobigdatetime;
  EXPECT_NUMBER(0, year_one + 3000, CS_BIGDATETIME{1}, to_big, CS_TIME{1});
  EXPECT_NUMBER(0, year_one + 6000, CS_BIGDATETIME{1}, to_big, CS_TIME{2});
  EXPECT_NUMBER(0, year_one + 10000, CS_BIGDATETIME{1}, to_big, CS_TIME{3});
  EXPECT_NUMBER(0, year_one + 86399996000, CS_BIGDATETIME{1}, to_big, CS_TIME{25919999});
  EXPECT_NUMBER(1, year_one + 86400000000, CS_BIGDATETIME{1}, to_big, CS_TIME{25920000});
  EXPECT_NUMBER(1, year_one - 3000, CS_BIGDATETIME{1}, to_big, CS_TIME{-1});
  const auto to_time = com__timeatobigtime;
  EXPECT_NUMBER(0, 3000U, CS_BIGTIME{1}, to_time, CS_TIME{1});
  EXPECT_NUMBER(0, 86399996000U, CS_BIGTIME{1}, to_time, CS_TIME{25919999});
  EXPECT_NUMBER(1, 86400000000U, CS_BIGTIME{1}, to_time, CS_TIME{25920000});
  EXPECT_NUMBER(1, UINT64_MAX - 2999, CS_BIGTIME{1}, to_time, CS_TIME{-1});
  EXPECT_NUMBER(1, UINT64_MAX - 7158278825999, CS_BIGTIME{1}, to_time, CS_TIME{INT_MIN});
}

TEST(ValueChecks, NullPointers) {
  CS_DATETIME datetime{};
  CS_DATETIME4 date4{};
  CS_INT number{};
  CS_UBIGINT big{};
  const auto check = [](auto function, auto &source, auto &dest, CS_INT result) {
    CS_INT status = result;
    auto report = catch_check([&] { status = function(nullptr, &dest); });
    EXPECT_TRUE(is_null_pointer_report(report, "datetime_values.cpp"));
    EXPECT_EQ(status, result);
    report = catch_check([&] { status = function(&source, nullptr); });
    EXPECT_TRUE(is_null_pointer_report(report, "datetime_values.cpp"));
    EXPECT_EQ(status, result);
  };
  check(com__dttodate4, datetime, date4, 1);
  check(com__bigdttodate4, big, date4, 1);
  check(com__date4todt, date4, datetime, 1);
  check(com__date4tobigdatetime, date4, big, 1);
  check(com__date4tobigtime, date4, big, 1);
  check(com__datetodatea, datetime, number, 1);
  check(com__datetotimea, datetime, number, 1);
  check(com__datetobigdatetime, datetime, big, 1);
  check(com__datetobigtime, datetime, big, 1);
  check(com__bigdatetimetodatea, big, number, 1);
  check(com__bigdatetimetobigtime, big, big, 1);
  check(com__bigdatetimetodate, big, datetime, 0);
  check(com__bigdatetimetotimea, big, number, 0);
  check(com__bigtimetotimea, big, number, 0);
  check(com__bigtimetodate, big, datetime, 0);
  check(com__dateatodate, number, datetime, 1);
  check(com__dateatobigdatetime, number, big, 1);
  check(com__timeatodate, number, datetime, 1);
  check(com__timeatobigdatetime, number, big, 1);
  check(com__timeatobigtime, number, big, 1);
}
