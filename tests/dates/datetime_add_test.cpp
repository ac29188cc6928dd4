// Adding to dates and times.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "guarded_buffer.h"
#include "slow_calendar.h"

using namespace zrvtest;

namespace {

// What an addition returned and left, as text: "2001-02-28 00:00:00:000", "status 1: ...".
std::string add(int part, CS_INT value, CS_DATETIME to) {
  const int status = com__date_add(part, value, &to);
  char text[64];
  const CS_INT date = com__datetochar(&to, text, 64, 102, nullptr);
  text[date] = ' ';
  const CS_INT time = com__datetochar(&to, text + date + 1, 40, 20, nullptr);
  const std::string shown(text, static_cast<size_t>(date + 1 + time));
  return status == 0 ? shown : "status " + std::to_string(status) + ": " + shown;
}

std::string add_big(int part, CS_INT value, CS_BIGDATETIME to, CS_BYTE type = 187) {
  const int status = com__bigdate_add(part, value, &to, type);
  char text[64];
  const CS_INT length = com__bigdatetimetochar(&to, text, 64, 140, nullptr);
  const std::string shown(text, static_cast<size_t>(length));
  return status == 0 ? shown : "status " + std::to_string(status) + ": " + shown;
}

CS_DATETIME day(CS_INT year, CS_INT month, CS_INT day_of_month) {
  return make_datetime(year, month, day_of_month, 13, 30, 15, 10);
}

} // namespace

TEST(MonthCheck, LimitsTheDay) {
  for (const int year : {1900, 1999, 2000, 2004})
    for (int month = 0; month < 12; ++month)
      for (CS_INT of_month = -1; of_month <= 33; ++of_month) {
        CS_DATEREC fields = make_fields(year, month + 1, of_month);
        monthcheck(&fields);
        EXPECT_EQ(fields.datedmonth, std::min(of_month, slow_month_length(year, month)));
      }
  for (const CS_INT month : {-1, 12, INT_MIN, INT_MAX}) {
    CS_DATEREC fields = make_fields(2000, 1, 77);
    fields.datemonth = month;
    monthcheck(&fields);
    EXPECT_EQ(fields.datedmonth, 77);
  }
  EXPECT_TRUE(is_null_pointer_report(catch_check([] { monthcheck(nullptr); }), "datetime_add.cpp"));
}

TEST(DateAdd, MonthEndsAndLeapDays) {
  EXPECT_EQ(add(2, 1, day(2001, 1, 31)), "2001.02.28 13:30:15:010");
  EXPECT_EQ(add(2, 1, day(2000, 1, 31)), "2000.02.29 13:30:15:010");
  EXPECT_EQ(add(2, 1, day(1900, 1, 31)), "1900.02.28 13:30:15:010");
  EXPECT_EQ(add(2, 3, day(2001, 1, 31)), "2001.04.30 13:30:15:010");
  EXPECT_EQ(add(1, 1, day(2001, 11, 30)), "2002.02.28 13:30:15:010");
  EXPECT_EQ(add(1, -1, day(2001, 1, 31)), "2000.10.31 13:30:15:010");
  EXPECT_EQ(add(0, 1, day(2000, 2, 29)), "2001.02.28 13:30:15:010");
  EXPECT_EQ(add(11, 4, day(2000, 2, 29)), "2004.02.29 13:30:15:010");
  EXPECT_EQ(add(0, -100, day(2000, 2, 29)), "1900.02.28 13:30:15:010");
  EXPECT_EQ(add(2, -1, day(2001, 1, 15)), "2000.12.15 13:30:15:010");
  EXPECT_EQ(add(2, -12, day(2001, 1, 15)), "2000.01.15 13:30:15:010");
  EXPECT_EQ(add(2, -13, day(2001, 1, 15)), "1999.12.15 13:30:15:010");
  EXPECT_EQ(add(2, 11, day(2001, 1, 15)), "2001.12.15 13:30:15:010");
  EXPECT_EQ(add(2, 12, day(2001, 1, 15)), "2002.01.15 13:30:15:010");
  EXPECT_EQ(add(2, 0, day(2001, 1, 31)), "2001.01.31 13:30:15:010");
}

// Every sum of a month and months, against a count of months.
TEST(DateAdd, MonthsAgainstACount) {
  for (int month = 0; month < 12; ++month)
    for (CS_INT value = -40; value <= 40; ++value)
      for (const int part : {1, 2}) {
        CS_DATETIME to = make_datetime(
            2000, month + 1, 31 - (month == 1) * 2 - (slow_month_length(2000, month) == 30));
        const int count = 2000 * 12 + month + value * (part == 1 ? 3 : 1);
        const int last = slow_month_length(count / 12, count % 12);
        const CS_INT before = slow_month_length(2000, month);
        ASSERT_EQ(com__date_add(part, value, &to), 0);
        ASSERT_EQ(to.dtdays,
                  make_datetime(count / 12, count % 12 + 1, std::min(before, last)).dtdays);
      }
}

TEST(DateAdd, Days) {
  for (const int part : {3, 4, 5, 13}) {
    EXPECT_EQ(add(part, 1, day(2000, 2, 28)), "2000.02.29 13:30:15:010");
    EXPECT_EQ(add(part, -1, day(2001, 1, 1)), "2000.12.31 13:30:15:010");
  }
  for (const int part : {10, 12}) {
    EXPECT_EQ(add(part, 1, day(2000, 2, 28)), "2000.03.06 13:30:15:010");
    EXPECT_EQ(add(part, -52, day(2001, 1, 1)), "2000.01.03 13:30:15:010");
  }
  // The other half stays, high bits included.
  CS_DATETIME odd{5, INT_MIN | 7};
  EXPECT_EQ(com__date_add(4, 1, &odd), 0);
  EXPECT_EQ(odd.dtdays, 6);
  EXPECT_EQ(odd.dttime, INT_MIN | 7);
}

TEST(DateAdd, TimesCarryAndBorrow) {
  EXPECT_EQ(add(6, 25, day(2000, 12, 31)), "2001.01.01 14:30:15:010");
  EXPECT_EQ(add(6, 24, day(2000, 12, 31)), "2001.01.01 13:30:15:010");
  EXPECT_EQ(add(6, -24, day(2001, 1, 1)), "2000.12.31 13:30:15:010");
  EXPECT_EQ(add(6, 11, day(2001, 1, 1)), "2001.01.02 00:30:15:010");
  EXPECT_EQ(add(6, -14, day(2001, 1, 1)), "2000.12.31 23:30:15:010");
  EXPECT_EQ(add(7, 1440, day(2000, 2, 28)), "2000.02.29 13:30:15:010");
  EXPECT_EQ(add(7, -811, day(2000, 3, 1)), "2000.02.29 23:59:15:010");
  EXPECT_EQ(add(8, 86401, day(2000, 2, 28)), "2000.02.29 13:30:16:010");
  EXPECT_EQ(add(8, -48616, day(2000, 3, 1)), "2000.02.29 23:59:59:010");
  EXPECT_EQ(add(8, INT_MAX, day(1900, 1, 1)), "1968.01.20 16:44:22:010");
  EXPECT_EQ(add(6, INT_MIN, day(2000, 1, 1)).substr(0, 8), "status 1");
}

// A millisecond is less than half a tick: adding one adds nothing, deliberately.
TEST(DateAdd, MillisecondsGoToTheNearestTick) {
  const auto ticks = [](CS_INT value) {
    CS_DATETIME to{0, 1000};
    EXPECT_EQ(com__date_add(9, value, &to), 0);
    EXPECT_EQ(to.dtdays, 0);
    return to.dttime - 1000;
  };
  EXPECT_EQ(ticks(1), 0);
  EXPECT_EQ(ticks(2), 1);
  EXPECT_EQ(ticks(3), 1);
  EXPECT_EQ(ticks(5), 2);
  EXPECT_EQ(ticks(1000), 300);
  EXPECT_EQ(ticks(-1), 0);
  EXPECT_EQ(ticks(-2), -1);
  EXPECT_EQ(ticks(-5), -2);
  EXPECT_EQ(ticks(999), 300);
  EXPECT_EQ(add(9, 86400000, day(2000, 2, 28)), "2000.02.29 13:30:15:010");
  EXPECT_EQ(add(9, INT_MIN, day(2000, 1, 1)), "1999.12.07 16:58:51:363");
}

// Against one long count of ticks.
TEST(DateAdd, TimesAgainstALongCount) {
  constexpr int64_t unit[] = {1080000, 18000, 300};
  uint32_t state = 88172645;
  for (int i = 0; i < 100000; ++i) {
    const int part = 6 + i % 4;
    CS_DATETIME to{static_cast<CS_INT>(next_random(state) % 3652059) - 693595,
                   static_cast<CS_INT>(next_random(state) % 25920000)};
    const auto value = static_cast<CS_INT>(next_random(state)) >> (i / 4 % 32);
    const int64_t added =
        part == 9 ? (int64_t{value} * 3 + (value < 0 ? -5 : 5)) / 10 : value * unit[part - 6];
    const int64_t total = (int64_t{to.dtdays} + 693595) * ticks_per_day + to.dttime + added;
    const bool fits = total >= 0 && total < 3652059 * int64_t{ticks_per_day};
    CS_DATETIME sum = to;
    ASSERT_EQ(com__date_add(part, value, &sum), fits ? 0 : 1) << part << " " << value;
    if (fits) {
      ASSERT_EQ(sum.dtdays, total / ticks_per_day - 693595) << part << " " << value;
      ASSERT_EQ(sum.dttime, total % ticks_per_day) << part << " " << value;
    } else {
      ASSERT_EQ(std::memcmp(&sum, &to, sizeof to), 0);
    }
  }
}

TEST(DateAdd, Limits) {
  EXPECT_EQ(add(4, 1, day(9999, 12, 30)), "9999.12.31 13:30:15:010");
  EXPECT_EQ(add(4, 1, day(9999, 12, 31)), "status 1: 9999.12.31 13:30:15:010");
  EXPECT_EQ(add(6, 11, day(9999, 12, 31)), "status 1: 9999.12.31 13:30:15:010");
  EXPECT_EQ(add(6, 10, day(9999, 12, 31)), "9999.12.31 23:30:15:010");
  EXPECT_EQ(add(4, -1, day(1, 1, 1)), "status 1: 0001.01.01 13:30:15:010");
  EXPECT_EQ(add(6, -13, day(1, 1, 1)), "0001.01.01 00:30:15:010");
  EXPECT_EQ(add(6, -14, day(1, 1, 1)), "status 1: 0001.01.01 13:30:15:010");
  // Before 1753 is no matter here.
  EXPECT_EQ(add(4, -1, day(1753, 1, 1)), "1752.12.31 13:30:15:010");
  for (const int part : {3, 4, 5, 6, 7, 10, 12, 13})
    for (const CS_INT value : {INT_MIN, INT_MAX}) {
      CS_DATETIME to = day(2000, 1, 1);
      EXPECT_EQ(com__date_add(part, value, &to), part == 7 && value < 0 ? 1 : part == 7 ? 0 : 1);
    }
  for (const int part : {0, 11}) {
    CS_DATETIME to = day(9999, 1, 1);
    EXPECT_EQ(com__date_add(part, 1, &to), 1);
    EXPECT_EQ(to.dtdays, 0); // what com__datemake leaves
    EXPECT_EQ(to.dttime, day(9999, 1, 1).dttime);
  }
  for (const int part : {0, 1, 2, 11})
    for (const CS_INT value : {INT_MIN, INT_MAX, INT_MAX / 3 + 1, INT_MIN / 3 - 1}) {
      CS_DATETIME to = day(2000, 1, 1);
      EXPECT_EQ(com__date_add(part, value, &to), 1) << part << " " << value;
    }
  // Sums that leave their type change nothing.
  for (const int part : {0, 1, 2}) {
    CS_DATETIME to = day(2000, 2, 1);
    EXPECT_EQ(com__date_add(part, INT_MAX, &to), 1);
    EXPECT_EQ(to.dtdays, day(2000, 2, 1).dtdays);
  }
}

TEST(DateAdd, TimesOfADayOrMoreAreRefused) {
  for (const int part : {6, 7, 8, 9}) {
    CS_DATETIME to{0, ticks_per_day - 1};
    EXPECT_EQ(com__date_add(part, 0, &to), 0);
    EXPECT_EQ(to.dttime, ticks_per_day - 1);
    // The whole time is judged, not the low 25 bits that cracking looks at.
    for (const CS_INT time : {ticks_per_day, 1 << 25, 1 << 25 | 300, 36000000, INT_MAX}) {
      to = {0, time};
      EXPECT_EQ(com__date_add(part, 0, &to), 1);
      EXPECT_EQ(to.dttime, time);
    }
    // A negative one borrows.
    to = {5, -1};
    EXPECT_EQ(com__date_add(part, 0, &to), 0);
    EXPECT_EQ(to.dtdays, 4);
    EXPECT_EQ(to.dttime, ticks_per_day - 1);
    to = {5, INT_MIN};
    EXPECT_EQ(com__date_add(part, 0, &to), 0);
    EXPECT_EQ(to.dtdays, 4); // one day, no more
    EXPECT_EQ(to.dttime, INT_MIN + ticks_per_day);
  }
}

// Only more than a day's units are split into days, which a time below 0 shows: a day's units take
// it out of the day or leave it there, more than that borrow for it once more.
TEST(DateAdd, WhereTheSplitIntoDaysBegins) {
  const CS_INT per_day[] = {24, 1440, 86400, 86400000};
  for (int part = 6; part <= 9; ++part) {
    const auto add_days = [&](CS_INT days) {
      CS_DATETIME to{5, -5};
      EXPECT_EQ(com__date_add(part, days * per_day[part - 6], &to), 0);
      return std::pair<CS_INT, CS_INT>{to.dtdays, to.dttime};
    };
    using Sum = std::pair<CS_INT, CS_INT>;
    EXPECT_EQ(add_days(-1), (Sum{4, -5}));
    EXPECT_EQ(add_days(1), (Sum{5, 25919995}));
    EXPECT_EQ(add_days(-2), (Sum{2, 25919995}));
    EXPECT_EQ(add_days(2), (Sum{6, 25919995}));
    CS_DATETIME smallest{5, INT_MIN};
    EXPECT_EQ(com__date_add(part, per_day[part - 6], &smallest), 0);
    EXPECT_EQ(smallest.dtdays, 4);
    EXPECT_EQ(smallest.dttime, INT_MIN + 2 * ticks_per_day);
  }
}

TEST(DateAdd, UnknownPartsAreFatal) {
  CS_DATETIME to{3, 4};
  CS_BIGDATETIME big = year_one;
  for (const int part : {-1, 14, 15, INT_MIN, INT_MAX})
    EXPECT_ASSERTION("datetime_add.cpp", 1, com__date_add(part, 1, &to));
  for (const int part : {-1, 15, INT_MIN, INT_MAX})
    EXPECT_ASSERTION("datetime_add.cpp", 1, com__bigdate_add(part, 1, &big, 187));
  EXPECT_EQ(to.dtdays, 3);
  EXPECT_EQ(big, year_one);
  EXPECT_NULL_POINTER_CHECK("datetime_add.cpp", 1, com__date_add(4, 1, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime_add.cpp", 1, com__bigdate_add(4, 1, nullptr, 187));
}

TEST(BigDateAdd, CalendarUnitsKeepTheFraction) {
  const CS_BIGDATETIME value = make_big(2000, 1, 31, 13, 30, 15, 123456);
  EXPECT_EQ(add_big(2, 1, value), "2000-02-29 13:30:15.123456");
  EXPECT_EQ(add_big(1, -1, value), "1999-10-31 13:30:15.123456");
  EXPECT_EQ(add_big(0, 7999, value), "9999-01-31 13:30:15.123456");
  EXPECT_EQ(add_big(11, -1999, value), "0001-01-31 13:30:15.123456");
  CS_BIGDATETIME failed = value;
  EXPECT_EQ(com__bigdate_add(0, 8000, &failed, 187), 1);
  EXPECT_EQ(failed, 0U); // what com__bigdatemake leaves
  for (const int part : {0, 1, 2, 11})
    for (const CS_INT extreme : {INT_MIN, INT_MAX}) {
      CS_BIGDATETIME to = value;
      EXPECT_EQ(com__bigdate_add(part, extreme, &to, 187), 1);
    }
  // A time has no years.
  CS_BIGTIME time = 5;
  EXPECT_EQ(com__bigdate_add(0, 1, &time, 188), 1);
}

TEST(BigDateAdd, Units) {
  const CS_BIGDATETIME value = make_big(2000, 2, 28, 23, 59, 59, 999999);
  for (const int part : {3, 4, 5, 13})
    EXPECT_EQ(add_big(part, 2, value), "2000-03-01 23:59:59.999999");
  for (const int part : {10, 12})
    EXPECT_EQ(add_big(part, -1, value), "2000-02-21 23:59:59.999999");
  EXPECT_EQ(add_big(6, 1, value), "2000-02-29 00:59:59.999999");
  EXPECT_EQ(add_big(7, 1, value), "2000-02-29 00:00:59.999999");
  EXPECT_EQ(add_big(8, -60, value), "2000-02-28 23:58:59.999999");
  EXPECT_EQ(add_big(9, 1, value), "2000-02-29 00:00:00.000999");
  EXPECT_EQ(add_big(14, 1, value), "2000-02-29 00:00:00.000000");
  EXPECT_EQ(add_big(14, INT_MIN, value), "2000-02-28 23:24:12.516351");
}

TEST(BigDateAdd, LimitsByType) {
  const CS_BIGDATETIME last = make_big(9999, 12, 31, 23, 59, 59, 999999);
  EXPECT_EQ(add_big(14, 1, last), "status 1: 9999-12-31 23:59:59.999999");
  EXPECT_EQ(add_big(14, -1, year_one), "status 1: 0001-01-01 00:00:00.000000");
  const auto add_time = [](int part, CS_INT value, CS_BIGTIME to) {
    const int status = com__bigdate_add(part, value, &to, 188);
    return std::pair<int, CS_BIGTIME>{status, to};
  };
  using Result = std::pair<int, CS_BIGTIME>;
  EXPECT_EQ(add_time(14, 1, 86399999998), (Result{0, 86399999999}));
  EXPECT_EQ(add_time(14, 1, 86399999999), (Result{1, 86399999999})); // no wrap round midnight
  EXPECT_EQ(add_time(6, 1, 86399999999), (Result{1, 86399999999}));
  EXPECT_EQ(add_time(6, -1, 3600000000), (Result{0, 0}));
  EXPECT_EQ(add_time(6, -1, 3599999999), (Result{1, 3599999999}));
  // Of another type only 64 bits are the limit.
  CS_BIGDATETIME to = year_one;
  EXPECT_EQ(com__bigdate_add(4, -1, &to, 0), 0);
  EXPECT_EQ(to, year_one - micros_per_day);
  to = 5;
  EXPECT_EQ(com__bigdate_add(14, -5, &to, 0), 0);
  EXPECT_EQ(com__bigdate_add(14, -1, &to, 0), 1);
  EXPECT_EQ(to, 0U);
  to = UINT64_MAX;
  EXPECT_EQ(com__bigdate_add(14, 1, &to, 0), 1);
  EXPECT_EQ(to, UINT64_MAX);
  // A product that 64 bits do not hold is no sum.
  for (const int part : {3, 4, 5, 10, 12, 13})
    for (const CS_INT value : {INT_MIN, INT_MAX, 106751992, -106751992}) {
      to = make_big(2000, 1, 1);
      EXPECT_EQ(com__bigdate_add(part, value, &to, 0), 1) << part << " " << value;
      EXPECT_EQ(to, make_big(2000, 1, 1));
    }
}

namespace {

// A source and a result around guarded bytes.
struct Both {
  GuardedBuffer source{8, 1}, dest{8, 3};
  __CONSTANT src{}, result{};

  Both(CS_INT source_length, CS_BYTE type, CS_INT maxlen) {
    src.len = source_length;
    src.value = source.data();
    result.type = type;
    result.maxlen = maxlen;
    result.len = -7;
    result.value = dest.data();
  }

  void expect_failure(int status) const {
    EXPECT_EQ(status, 1);
    EXPECT_EQ(result.len, -7);
    EXPECT_TRUE(dest.is_untouched());
  }
};

} // namespace

TEST(DateAddBoth, DeliversByType) {
  Both datetime(8, 61, 8);
  datetime.source.set(day(2001, 1, 31));
  EXPECT_EQ(com__dateadd_both(2, 1, &datetime.src, &datetime.result), 0);
  EXPECT_EQ(datetime.dest.value<CS_DATETIME>().dtdays, day(2001, 2, 28).dtdays);
  EXPECT_EQ(datetime.dest.value<CS_DATETIME>().dttime, day(2001, 2, 28).dttime);
  EXPECT_EQ(datetime.result.len, 8);

  Both date(4, 49, 4);
  date.source.set(CS_DATE{-693594});
  EXPECT_EQ(com__dateadd_both(4, -1, &date.src, &date.result), 0);
  EXPECT_EQ(date.dest.value<CS_DATE>(), -693595);
  EXPECT_TRUE(date.dest.is_untouched(4));
  EXPECT_EQ(date.result.len, 4);

  Both time(4, 51, 4);
  time.source.set(CS_TIME{25919999});
  EXPECT_EQ(com__dateadd_both(8, 1, &time.src, &time.result), 0);
  EXPECT_EQ(time.dest.value<CS_TIME>(), 299); // round midnight
  EXPECT_TRUE(time.dest.is_untouched(4));
  EXPECT_EQ(time.result.len, 4);

  Both small(8, 58, 4);
  small.source.set(make_datetime(2000, 2, 29, 12));
  EXPECT_EQ(com__dateadd_both(7, 3, &small.src, &small.result), 0);
  EXPECT_EQ(small.dest.value<CS_DATETIME4>().days, 36583);
  EXPECT_EQ(small.dest.value<CS_DATETIME4>().minutes, 723);
  EXPECT_TRUE(small.dest.is_untouched(4));
  EXPECT_EQ(small.result.len, 4);

  // A CS_DATETIME4 is rounded to the minute, half up; from 4 bytes it is a date with midnight.
  const auto add_small = [](CS_DATETIME from, CS_INT length, int part, CS_INT value) {
    Both both(length, 58, 4);
    both.source.set(from);
    EXPECT_EQ(com__dateadd_both(part, value, &both.src, &both.result), 0);
    EXPECT_TRUE(both.dest.is_untouched(4));
    const auto result = both.dest.value<CS_DATETIME4>();
    return std::pair<int, int>{result.days, result.minutes};
  };
  using Small = std::pair<int, int>;
  EXPECT_EQ(add_small({0, 0}, 8, 8, 29), (Small{0, 0}));
  EXPECT_EQ(add_small({0, 0}, 8, 8, 30), (Small{0, 1}));
  EXPECT_EQ(add_small({36583, 25919999}, 8, 9, 0), (Small{36584, 0}));
  EXPECT_EQ(add_small({65534, 0}, 8, 4, 1), (Small{65535, 0}));
  EXPECT_EQ(add_small({1, 0}, 8, 4, -1), (Small{0, 0}));
  EXPECT_EQ(add_small({36582, 77}, 4, 4, 1), (Small{36583, 0}));
  EXPECT_EQ(add_small({36583, 77}, 4, 7, -1), (Small{36582, 1439}));

  // A CS_DATE takes the day of a CS_DATETIME, and all the days that there are.
  const auto add_date = [](CS_DATETIME from, CS_INT length, int part, CS_INT value) {
    Both both(length, 49, 4);
    both.source.set(from);
    EXPECT_EQ(com__dateadd_both(part, value, &both.src, &both.result), 0);
    EXPECT_TRUE(both.dest.is_untouched(4));
    EXPECT_EQ(both.result.len, 4);
    return both.dest.value<CS_DATE>();
  };
  EXPECT_EQ(add_date({36583, 25919999}, 8, 8, 1), 36584);
  EXPECT_EQ(add_date({36583, 25919999}, 8, 8, 0), 36583);
  EXPECT_EQ(add_date({36583, 25919999}, 4, 8, 1), 36583); // from midnight
  EXPECT_EQ(add_date({-53690, 5}, 8, 4, -1), -53691);
  EXPECT_EQ(add_date({-693594, 5}, 8, 4, -1), -693595);
  EXPECT_EQ(add_date({2958462, 5}, 8, 4, 1), 2958463);

  // A date of 4 bytes has midnight.
  Both widened(4, 61, 8);
  widened.source.set(CS_DATE{7});
  EXPECT_EQ(com__dateadd_both(6, 1, &widened.src, &widened.result), 0);
  EXPECT_EQ(widened.dest.value<CS_DATETIME>().dtdays, 7);
  EXPECT_EQ(widened.dest.value<CS_DATETIME>().dttime, 1080000);
}

TEST(DateAddBoth, Failures) {
  const auto run = [](CS_INT length, int type, CS_INT maxlen, CS_DATETIME from, int part,
                      CS_INT value) {
    Both both(length, static_cast<CS_BYTE>(type), maxlen);
    both.source.set(from);
    both.expect_failure(com__dateadd_both(part, value, &both.src, &both.result));
  };
  for (const CS_INT length : {0, -1, 3, 5, 7, 9, INT_MAX})
    run(length, 61, 8, day(2000, 1, 1), 4, 1);
  for (const int type : {0, 48, 50, 57, 59, 60, 62, 187, 188, 255}) {
    run(8, type, 8, day(2000, 1, 1), 4, 1);
    run(8, type, 4, day(2000, 1, 1), 4, 1);
  }
  run(8, 61, 4, day(2000, 1, 1), 4, 1);
  run(8, 49, 8, day(2000, 1, 1), 4, 1);
  run(4, 51, 8, {}, 4, 1);
  run(8, 58, 8, day(2000, 1, 1), 4, 1);
  run(8, 51, 4, day(2000, 1, 1), 4, 1); // a time has no room for 8 bytes
  run(8, 61, 8, day(9999, 12, 31), 4, 1);
  run(8, 61, 8, day(1753, 1, 1), 4, -1); // in the calendar, but before CS_DATETIME begins
  for (const CS_INT maxlen : {-4, 0, 3, 5, 9}) {
    run(8, 61, maxlen, day(2000, 1, 1), 4, 1);
    run(8, 49, maxlen, day(2000, 1, 1), 4, 1);
    run(4, 49, maxlen, day(2000, 1, 1), 4, 1);
    run(4, 51, maxlen, {}, 4, 1);
    run(8, 58, maxlen, day(2000, 1, 1), 4, 1);
    run(4, 58, maxlen, day(2000, 1, 1), 4, 1);
  }
  for (const CS_INT length : {4, 8}) {
    run(length, 49, 4, {2958463, 5}, 4, 1);
    run(length, 49, 4, {-693595, 5}, 4, -1);
    run(length, 58, 4, {65535, 5}, 4, 1);
    run(length, 58, 4, {0, 5}, 4, -1);
  }
  run(8, 49, 4, {0, 25920000}, 6, 1);
  run(8, 58, 4, {0, 25920000}, 6, 1);
  run(8, 58, 4, day(1900, 1, 1), 4, -1);
  run(8, 58, 4, make_datetime(2079, 6, 6, 23, 59, 29), 8, 1);
}

TEST(BigDateAddBoth, DeliversAndFails) {
  Both big(8, 187, 8);
  big.source.set(make_big(2000, 2, 29, 1, 2, 3, 4));
  EXPECT_EQ(com__bigdateadd_both(0, 1, &big.src, &big.result), 0);
  EXPECT_EQ(big.dest.value<CS_BIGDATETIME>(), make_big(2001, 2, 28, 1, 2, 3, 4));
  EXPECT_EQ(big.result.len, 8);
  EXPECT_EQ(big.source.value<CS_BIGDATETIME>(), make_big(2000, 2, 29, 1, 2, 3, 4));

  Both time(8, 188, 8);
  time.source.set(CS_BIGTIME{1});
  EXPECT_EQ(com__bigdateadd_both(8, 1, &time.src, &time.result), 0);
  EXPECT_EQ(time.dest.value<CS_BIGTIME>(), 1000001U);
  EXPECT_EQ(time.result.len, 8);

  // Years are not held against the type, so a date comes out as its time of day.
  Both date(8, 188, 8);
  date.source.set(make_big(2000, 1, 1, 0, 0, 0, 77));
  EXPECT_EQ(com__bigdateadd_both(0, 1, &date.src, &date.result), 0);
  EXPECT_EQ(date.dest.value<CS_BIGTIME>(), 77U);

  const auto run = [](CS_INT length, int type, CS_INT maxlen, CS_UBIGINT from, CS_INT value) {
    Both both(length, static_cast<CS_BYTE>(type), maxlen);
    both.source.set(from);
    both.expect_failure(com__bigdateadd_both(14, value, &both.src, &both.result));
  };
  for (const CS_INT length : {0, 4, 7, 9, -8})
    run(length, 187, 8, year_one, 1);
  for (const CS_INT maxlen : {0, 4, 7, 9, -8}) {
    run(8, 187, maxlen, year_one, 1);
    run(8, 188, maxlen, 1, 1);
  }
  for (const int type : {0, 49, 51, 58, 61, 186, 189})
    run(8, type, 8, year_one, 1);
  run(8, 187, 8, year_one, -1);
  run(8, 188, 8, 86399999999, 1);
}

TEST(BothChecks, NullPointers) {
  Both both(8, 61, 8);
  constexpr const char *unit = "datetime_add.cpp";
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__dateadd_both(4, 1, nullptr, &both.result));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__dateadd_both(4, 1, &both.src, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__bigdateadd_both(4, 1, nullptr, &both.result));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__bigdateadd_both(4, 1, &both.src, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__valid_datetime(nullptr, both.source.data()));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__valid_datetime(&both.src, nullptr));
  both.source.set(CS_DATETIME{1, 1});
  both.result.value = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__dateadd_both(4, 1, &both.src, &both.result));
  both.src.value = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__dateadd_both(4, 1, &both.src, &both.result));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com__bigdateadd_both(4, 1, &both.src, &both.result));
  both.src.len = 4;
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__valid_datetime(&both.src, both.source.data()));
}

// A sum that is not delivered needs no place.
TEST(BothChecks, RefusedResultsNeedNoPlace) {
  const auto refuse = [](auto function, CS_BYTE type, CS_INT maxlen, auto value) {
    Both both(8, type, maxlen);
    both.source.set(value);
    both.result.value = nullptr;
    both.expect_failure(function(4, 1, &both.src, &both.result));
  };
  refuse(com__dateadd_both, 99, 8, CS_DATETIME{1, 1});
  refuse(com__dateadd_both, 61, 4, CS_DATETIME{1, 1});
  refuse(com__dateadd_both, 61, 8, CS_DATETIME{-60000, 1});
  refuse(com__dateadd_both, 49, 8, CS_DATETIME{1, 1});
  refuse(com__dateadd_both, 58, 4, CS_DATETIME{-60000, 1});
  refuse(com__bigdateadd_both, 99, 8, CS_BIGDATETIME{year_one});
  refuse(com__bigdateadd_both, 187, 4, CS_BIGDATETIME{year_one});

  Both both(8, 187, 8);
  both.source.set(CS_BIGDATETIME{year_one});
  both.result.value = nullptr;
  EXPECT_NULL_POINTER_CHECK("datetime_add.cpp", 1,
                            com__bigdateadd_both(4, 1, &both.src, &both.result));
}

TEST(ValidDateTime, FromEitherPlace) {
  GuardedBuffer cast(8, 1);
  const auto valid = [&](CS_DATETIME value) {
    __CONSTANT src{};
    src.len = 8;
    cast.set(value);
    return com__valid_datetime(&src, cast.data());
  };
  EXPECT_EQ(valid({0, 0}), 1);
  EXPECT_EQ(valid({-693595, 25919999}), 1);
  EXPECT_EQ(valid({2958463, 25919999}), 1);
  EXPECT_EQ(valid({-693596, 0}), 0);
  EXPECT_EQ(valid({2958464, 0}), 0);
  EXPECT_EQ(valid({0, 25920000}), 0);
  EXPECT_EQ(valid({INT_MAX, 0}), 0);
  EXPECT_EQ(valid({INT_MIN, 0}), 0);
  // Of any length but 4 it is the 8 bytes that count, and the source's are not looked at.
  for (const CS_INT length : {0, 1, 3, 5, 7, 9, 16, -1, -4, INT_MIN, INT_MAX})
    for (const bool is_valid : {false, true}) {
      __CONSTANT src{};
      src.len = length;
      cast.set(CS_DATETIME{0, is_valid ? 25919999 : 25920000});
      EXPECT_EQ(com__valid_datetime(&src, cast.data()), is_valid) << length;
    }
  const auto valid4 = [](CS_DATETIME4 value) {
    GuardedBuffer bytes(4, 1);
    bytes.set(value);
    __CONSTANT src{};
    src.len = 4;
    src.value = bytes.data();
    return com__valid_datetime(&src, nullptr);
  };
  EXPECT_EQ(valid4({0, 0}), 1);
  EXPECT_EQ(valid4({65535, 1439}), 1);
  EXPECT_EQ(valid4({0, 1440}), 0);
  EXPECT_EQ(valid4({0, 65535}), 0);
}
