// Differences, parts and names of dates.
#include <climits>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "guarded_buffer.h"
#include "slow_calendar.h"

using namespace zrvtest;

namespace {

// Nothing stands for a difference that is too large; the value is then untouched.
std::optional<CS_INT> diff(int part, CS_DATETIME from, CS_DATETIME to) {
  CS_INT result = 0x5A5A5A5A;
  const int status = com__datediff(part, &from, &to, &result);
  if (status == 0)
    return result;
  EXPECT_EQ(status, 1);
  EXPECT_EQ(result, 0x5A5A5A5A);
  return std::nullopt;
}

CS_BIGINT big_diff(int part, CS_BIGDATETIME from, CS_BIGDATETIME to) {
  CS_BIGINT result = 0x5A5A5A5A;
  EXPECT_EQ(com__bigdatediff(part, &from, &to, &result), 0);
  return result;
}

CS_DATETIME at(CS_INT year, CS_INT month, CS_INT day, CS_INT hour = 0, CS_INT minute = 0) {
  return make_datetime(year, month, day, hour, minute);
}

CS_INT part_of(int part, CS_DATETIME value, CS_INT firstday = 7) {
  const CS_INT result = com_datepart(part, &value, firstday);
  EXPECT_EQ(com__datepart(part, &value, firstday), result);
  return result;
}

CS_INT big_part_of(int part, CS_BIGDATETIME value, CS_INT firstday = 7) {
  return com__bigdatepart(part, &value, firstday);
}

} // namespace

TEST(DateDiff, CalendarBoundaries) {
  EXPECT_EQ(diff(0, at(2000, 12, 31), at(2001, 1, 1)), 1);
  EXPECT_EQ(diff(0, at(2001, 1, 1), at(2000, 12, 31)), -1);
  EXPECT_EQ(diff(0, at(2000, 1, 1), at(2000, 12, 31)), 0);
  EXPECT_EQ(diff(1, at(2000, 3, 31), at(2000, 4, 1)), 1);
  EXPECT_EQ(diff(1, at(2000, 12, 31), at(2001, 1, 1)), 1);
  EXPECT_EQ(diff(1, at(2001, 1, 1), at(1999, 9, 30)), -6);
  EXPECT_EQ(diff(2, at(2000, 1, 31), at(2000, 2, 1)), 1);
  EXPECT_EQ(diff(2, at(2000, 2, 1), at(2000, 1, 31)), -1);
  EXPECT_EQ(diff(2, at(1, 1, 1), at(9999, 12, 31)), 119987);
  EXPECT_EQ(diff(4, at(1, 1, 1), at(9999, 12, 31)), 3652058);
  EXPECT_EQ(diff(5, at(2000, 3, 1), at(2000, 2, 28)), -2);
  EXPECT_EQ(diff(3, at(2000, 1, 1), at(2000, 1, 14)), 1);
  EXPECT_EQ(diff(13, at(2000, 1, 15), at(2000, 1, 1)), -2);
  EXPECT_EQ(diff(13, at(2000, 1, 14), at(2000, 1, 1)), -1);
  // 2005-01-01 still belongs to 2004.
  EXPECT_EQ(diff(11, at(2004, 12, 31), at(2005, 1, 1)), 0);
  EXPECT_EQ(diff(11, at(2005, 1, 2), at(2005, 1, 3)), 1);
  EXPECT_EQ(diff(11, at(2008, 12, 29), at(2008, 12, 28)), -1);
}

TEST(DateDiff, Weeks) {
  // 2001-01-06 was a Saturday. The ISO week counts Sundays too, deliberately.
  for (const int part : {10, 12}) {
    EXPECT_EQ(diff(part, at(2001, 1, 6), at(2001, 1, 7)), 1);
    EXPECT_EQ(diff(part, at(2001, 1, 7), at(2001, 1, 8)), 0);
    EXPECT_EQ(diff(part, at(2001, 1, 7), at(2001, 1, 13)), 0);
    EXPECT_EQ(diff(part, at(2001, 1, 7), at(2001, 1, 14)), 1);
    EXPECT_EQ(diff(part, at(2001, 1, 13), at(2001, 1, 7)), 0);
    EXPECT_EQ(diff(part, at(2001, 1, 14), at(2001, 1, 7)), -1);
    EXPECT_EQ(diff(part, at(2001, 1, 8), at(2001, 1, 7)), 0);
    EXPECT_EQ(diff(part, at(2001, 1, 8), at(2001, 1, 6)), -1);
  }
  // Against a count of the Sundays between two days.
  for (CS_INT from = 0; from < 15; ++from)
    for (CS_INT to = from; to < 40; ++to) {
      CS_INT sundays = 0;
      for (CS_INT day = from + 1; day <= to; ++day)
        sundays += (day + 1) % 7 == 0; // day 0 was a Monday
      EXPECT_EQ(diff(10, {from, 0}, {to, 0}), sundays);
    }
}

TEST(DateDiff, ElapsedTimes) {
  EXPECT_EQ(diff(6, at(2000, 1, 1, 23), at(2000, 1, 2, 1)), 2);
  EXPECT_EQ(diff(6, at(2000, 1, 1, 23, 30), at(2000, 1, 2, 0, 29)), 0);
  EXPECT_EQ(diff(4, at(2000, 1, 1, 23), at(2000, 1, 2, 1)), 1);
  EXPECT_EQ(diff(4, at(2000, 1, 1, 23, 30), at(2000, 1, 2, 0, 29)), 1);
  EXPECT_EQ(diff(6, at(2000, 1, 2, 1), at(2000, 1, 1, 23)), -2);
  EXPECT_EQ(diff(6, at(2000, 1, 2, 0, 29), at(2000, 1, 1, 23, 30)), 0);
  EXPECT_EQ(diff(6, at(2000, 1, 2), at(2000, 1, 1)), -24);
  EXPECT_EQ(diff(7, at(2000, 1, 1, 23, 30), at(2000, 1, 2, 0, 29)), 59);
  EXPECT_EQ(diff(8, at(2000, 1, 1, 0, 1), at(2000, 1, 1)), -60);
  EXPECT_EQ(diff(9, {0, 0}, {0, 1}), 3);
  EXPECT_EQ(diff(9, {0, 1}, {0, 0}), -3);
  EXPECT_EQ(diff(9, {0, 25919999}, {1, 0}), 4); // 86400000 - 86399996
}

// Of each time only the low 25 bits are looked at, whatever stands above them in the other.
TEST(DateDiff, HighBitsOfTheTimesAreIgnored) {
  constexpr CS_INT hour = 1080000;
  constexpr CS_INT highs[] = {0, 1 << 25, 1 << 30, INT_MIN, INT_MIN | 3 << 26};
  for (const CS_INT high : highs)
    for (const CS_INT other : highs) {
      const CS_DATETIME early{0, high | hour}, late{0, other | 3 * hour};
      EXPECT_EQ(diff(6, early, late), 2) << high << " " << other;
      EXPECT_EQ(diff(7, early, late), 120) << high << " " << other;
      EXPECT_EQ(diff(8, early, late), 7200) << high << " " << other;
      EXPECT_EQ(diff(9, early, late), 7200000) << high << " " << other;
      EXPECT_EQ(diff(6, late, early), -2) << high << " " << other;
    }
}

// Against one long count of ticks, wherever a CS_INT holds the result well.
TEST(DateDiff, TimesAgainstALongCount) {
  constexpr int64_t unit[] = {1080000, 18000, 300};
  uint32_t state = 2463534242;
  for (int i = 0; i < 200000; ++i) {
    const int part = 6 + i % 4;
    const int shift = i / 4 % 22;
    const auto random_day = [&] {
      return static_cast<CS_INT>(next_random(state) % (3652059U >> shift)) - 693595;
    };
    const CS_DATETIME from{random_day(), static_cast<CS_INT>(next_random(state) % 25920000)};
    const CS_DATETIME to{random_day(), static_cast<CS_INT>(next_random(state) % 25920000)};
    const int64_t days = to.dtdays - from.dtdays;
    const int64_t ticks = int64_t{to.dttime} - from.dttime;
    const int64_t expected = part == 9 ? days * 86400000 + ticks * 10 / 3
                                       : (days * ticks_per_day + ticks) / unit[part - 6];
    const auto result = diff(part, from, to);
    if (expected > INT_MAX || expected < INT_MIN) {
      ASSERT_EQ(result, std::nullopt);
    } else if (expected < INT_MAX - 86400000 && expected > INT_MIN + 86400000) {
      ASSERT_EQ(result, expected) << part << ": " << days << " days " << ticks << " ticks";
    }
  }
}

TEST(DateDiff, WhereTheLimitsAre) {
  constexpr CS_DATETIME zero{0, 0};
  const auto from_ticks = [](CS_INT ticks) { return CS_DATETIME{0, ticks}; };
  // Minutes: 1491308 days are 2147483520 of them.
  EXPECT_EQ(diff(7, zero, {1491308, 0}), 2147483520);
  EXPECT_EQ(diff(7, zero, {1491308, 127 * 18000 + 17999}), INT_MAX);
  EXPECT_EQ(diff(7, zero, {1491308, 128 * 18000}), std::nullopt);
  EXPECT_EQ(diff(7, zero, {1491309, 0}), std::nullopt);
  // Whole days decide where the time works against them, though this one would fit: deliberate.
  EXPECT_EQ(diff(7, from_ticks(25919999), {1491309, 0}), std::nullopt);
  EXPECT_EQ(diff(7, from_ticks(18000), {1491308, 0}), 2147483519);
  EXPECT_EQ(diff(7, from_ticks(25919999), {1491308, 0}), 2147482080);
  EXPECT_EQ(diff(7, zero, {-1491308, 0}), -2147483520);
  EXPECT_EQ(diff(7, from_ticks(128 * 18000), {-1491308, 0}), INT_MIN);
  EXPECT_EQ(diff(7, from_ticks(129 * 18000), {-1491308, 0}), std::nullopt);
  EXPECT_EQ(diff(7, zero, {-1491309, 25919999}), std::nullopt);
  EXPECT_EQ(diff(7, zero, {-1491308, 18000}), -2147483519);
  EXPECT_EQ(diff(7, zero, {-1491308, 25919999}), -2147482080);
  // Seconds: 24855 days are 2147472000.
  EXPECT_EQ(diff(8, zero, {24855, 11647 * 300 + 299}), INT_MAX);
  EXPECT_EQ(diff(8, zero, {24855, 11648 * 300}), std::nullopt);
  EXPECT_EQ(diff(8, zero, {24855, 0}), 2147472000);
  EXPECT_EQ(diff(8, zero, {24856, 0}), std::nullopt);
  EXPECT_EQ(diff(8, from_ticks(300), {24855, 0}), 2147471999);
  EXPECT_EQ(diff(8, from_ticks(25919999), {24855, 0}), 2147385600);
  EXPECT_EQ(diff(8, from_ticks(25919999), {24856, 0}), std::nullopt); // 2147472000 would fit
  EXPECT_EQ(diff(8, from_ticks(11648 * 300), {-24855, 0}), INT_MIN);
  EXPECT_EQ(diff(8, from_ticks(11649 * 300), {-24855, 0}), std::nullopt);
  EXPECT_EQ(diff(8, zero, {-24855, 0}), -2147472000);
  EXPECT_EQ(diff(8, zero, {-24855, 300}), -2147471999);
  EXPECT_EQ(diff(8, zero, {-24855, 25919999}), -2147385600);
  EXPECT_EQ(diff(8, zero, {-24856, 300}), std::nullopt);
  EXPECT_EQ(diff(8, zero, {-24856, 25919999}), std::nullopt); // -2147472000 would fit
  // Milliseconds: 24 days are 2073600000.
  EXPECT_EQ(diff(9, zero, {24, 22165094}), 2147483646);
  EXPECT_EQ(diff(9, zero, {24, 22165095}), std::nullopt);
  EXPECT_EQ(diff(9, zero, {25, 0}), std::nullopt);
  EXPECT_EQ(diff(9, from_ticks(25919999), {25, 0}), std::nullopt);
  EXPECT_EQ(diff(9, from_ticks(25919999), {24, 0}), 2073600000 - 86399996);
  EXPECT_EQ(diff(9, from_ticks(22165094), {-24, 0}), -2147483646);
  EXPECT_EQ(diff(9, from_ticks(22165095), {-24, 0}), std::nullopt);
  EXPECT_EQ(diff(9, zero, {-25, 1}), std::nullopt);
  EXPECT_EQ(diff(9, zero, {-25, 25919999}), std::nullopt); // -2073600004 would fit
  EXPECT_EQ(diff(9, zero, {-24, 25919999}), -2073600000 + 86399996);
  EXPECT_EQ(diff(9, zero, {-24, 3}), -2073599990); // no day is borrowed
  // Days that no date has.
  EXPECT_EQ(diff(4, {INT_MIN, 0}, {INT_MAX, 0}), std::nullopt);
  EXPECT_EQ(diff(4, {INT_MIN, 0}, {-1, 0}), INT_MAX);
  EXPECT_EQ(diff(6, {INT_MIN, 0}, {INT_MAX, 0}), std::nullopt);
  // Whole days do not decide about hours.
  EXPECT_EQ(diff(6, zero, {89478485, 7 * 1080000}), INT_MAX);
  EXPECT_EQ(diff(6, zero, {89478485, 8 * 1080000}), std::nullopt);
  EXPECT_EQ(diff(6, from_ticks(17 * 1080000), {89478486, 0}), INT_MAX);
  EXPECT_EQ(diff(6, from_ticks(16 * 1080000), {89478486, 0}), std::nullopt);
  EXPECT_EQ(diff(6, zero, {-89478486, 16 * 1080000}), INT_MIN);
  EXPECT_EQ(diff(6, zero, {-89478486, 15 * 1080000}), std::nullopt);
  EXPECT_EQ(diff(3, {INT_MIN, 0}, {INT_MAX, 0}), 613566756);
}

TEST(DateDiff, UnknownPartsWriteNothing) {
  CS_DATETIME from{}, to{5, 5};
  CS_BIGDATETIME big_from = 1, big_to = 99;
  for (const int part : {-1, 14, 15, INT_MIN, INT_MAX}) {
    CS_INT result = 77;
    EXPECT_EQ(com__datediff(part, &from, &to, &result), 0);
    EXPECT_EQ(result, 77);
    CS_BIGINT big = 77;
    EXPECT_EQ(com__bigdatediff(part, &big_from, &big_to, &big), 0);
    EXPECT_EQ(big, part == 14 ? 98 : 77);
  }
}

TEST(BigDateDiff, Parts) {
  const CS_BIGDATETIME from = make_big(2000, 12, 31, 23, 59, 59, 999999);
  const CS_BIGDATETIME to = make_big(2001, 1, 1, 1, 0, 0, 0);
  EXPECT_EQ(big_diff(0, from, to), 1);
  EXPECT_EQ(big_diff(1, from, to), 1);
  EXPECT_EQ(big_diff(2, from, to), 1);
  EXPECT_EQ(big_diff(3, from, to), 0);
  EXPECT_EQ(big_diff(4, from, to), 1);
  EXPECT_EQ(big_diff(5, from, to), 1);
  EXPECT_EQ(big_diff(6, from, to), 1);
  EXPECT_EQ(big_diff(7, from, to), 60);
  EXPECT_EQ(big_diff(8, from, to), 3600);
  EXPECT_EQ(big_diff(9, from, to), 3600000);
  EXPECT_EQ(big_diff(10, from, to), 0); // Sunday to Monday
  EXPECT_EQ(big_diff(11, from, to), 1);
  EXPECT_EQ(big_diff(12, from, to), 0);
  EXPECT_EQ(big_diff(13, from, to), 0);
  EXPECT_EQ(big_diff(14, from, to), 3600000001);
  EXPECT_EQ(big_diff(8, to, from), -3600);
  EXPECT_EQ(big_diff(6, to, from), -1);
  EXPECT_EQ(big_diff(14, make_big(1, 1, 1), make_big(9999, 12, 31)), 315537811200000000);
  EXPECT_EQ(big_diff(9, make_big(9999, 12, 31), make_big(1, 1, 1)), -315537811200000);
  EXPECT_EQ(big_diff(14, 0, UINT64_MAX), -1);
}

// Days and weeks of the big difference come from whole days: the time of day does not count.
TEST(BigDateDiff, DaysAndWeeks) {
  const CS_BIGDATETIME saturday = make_big(2001, 1, 6, 23, 59, 59, 999999);
  const CS_BIGDATETIME sunday = make_big(2001, 1, 21); // 15 days and 3 Sundays later
  for (const int part : {3, 13}) {
    EXPECT_EQ(big_diff(part, saturday, sunday), 2);
    EXPECT_EQ(big_diff(part, sunday, saturday), -2);
    EXPECT_EQ(big_diff(part, saturday, make_big(2001, 1, 13)), 1);
    EXPECT_EQ(big_diff(part, saturday, make_big(2001, 1, 12, 23, 59, 59, 999999)), 0);
  }
  for (const int part : {10, 12}) {
    EXPECT_EQ(big_diff(part, saturday, sunday), 3);
    EXPECT_EQ(big_diff(part, sunday, saturday), -3);
    EXPECT_EQ(big_diff(part, saturday, make_big(2001, 1, 7)), 1);
    EXPECT_EQ(big_diff(part, make_big(2001, 1, 7), sunday), 2);
  }
  for (const int part : {4, 5}) {
    EXPECT_EQ(big_diff(part, saturday, sunday), 15);
    EXPECT_EQ(big_diff(part, sunday, saturday), -15);
  }
  EXPECT_EQ(big_diff(11, make_big(2005, 1, 2), make_big(2008, 12, 29)), 5);
  EXPECT_EQ(big_diff(11, make_big(2008, 12, 29), make_big(2005, 1, 2)), -5);
}

TEST(DatePart, EveryPart) {
  const CS_DATETIME value = make_datetime(2001, 8, 5, 13, 14, 15, 163); // a Sunday
  const CS_INT expected[] = {2001, 3, 8, 1, 5, 217, 13, 14, 15, 163, 32, 2001, 31, 7, 0};
  for (int part = 0; part <= 14; ++part)
    EXPECT_EQ(part_of(part, value), expected[part]) << part;
  const CS_BIGDATETIME big = make_big(2001, 8, 5, 13, 14, 15, 163456);
  for (int part = 0; part <= 13; ++part)
    EXPECT_EQ(big_part_of(part, big), expected[part]) << part;
  EXPECT_EQ(big_part_of(14, big), 163456);
}

TEST(DatePart, Weekdays) {
  for (CS_INT offset = 0; offset < 7; ++offset) {
    const CS_DATETIME value{offset, 0}; // Monday first
    const CS_INT iso = offset + 1;
    EXPECT_EQ(part_of(13, value), iso);
    EXPECT_EQ(part_of(3, value, 1), iso);
    for (CS_INT firstday = 1; firstday <= 7; ++firstday)
      EXPECT_EQ(part_of(3, value, firstday), (iso - firstday + 7) % 7 + 1);
    EXPECT_EQ(part_of(3, value, 0), part_of(3, value, 7));
  }
  const CS_DATETIME monday = at(2001, 1, 1);
  EXPECT_EQ(part_of(3, monday, 1), 1);
  EXPECT_EQ(part_of(3, monday, 0), 2);
  // Nothing enforces the range of the first day.
  EXPECT_EQ(part_of(3, monday, 20), -11);
  EXPECT_EQ(part_of(3, monday, -5), 7);
  EXPECT_EQ(part_of(3, monday, INT_MIN), -2147483646); // 2 + 2147483648, in 32 bits
  EXPECT_EQ(part_of(3, monday, INT_MAX), -2147483638); // 2 - 2147483647, and 7 as it is below 1
}

namespace {

// A day at the end of a month, of February or of a year, or behind one: its parts in the order of
// `end_parts`, and its names. Weekdays count from Sunday in part 3.
constexpr int end_parts[] = {0, 1, 2, 3, 4, 5, 10, 11, 12, 13};

struct End {
  CS_INT year, month, day;
  CS_INT parts[10];
  const char *month_name, *day_name;
};

constexpr End ends[] = {
    {1, 1, 1, {1, 1, 1, 2, 1, 1, 1, 1, 1, 1}, "January", "Monday"},
    {1900, 2, 28, {1900, 1, 2, 4, 28, 59, 9, 1900, 9, 3}, "February", "Wednesday"},
    {1900, 3, 1, {1900, 1, 3, 5, 1, 60, 9, 1900, 9, 4}, "March", "Thursday"},
    {1999, 12, 31, {1999, 4, 12, 6, 31, 365, 53, 1999, 52, 5}, "December", "Friday"},
    {2000, 1, 1, {2000, 1, 1, 7, 1, 1, 1, 1999, 52, 6}, "January", "Saturday"},
    {2000, 1, 31, {2000, 1, 1, 2, 31, 31, 6, 2000, 5, 1}, "January", "Monday"},
    {2000, 2, 28, {2000, 1, 2, 2, 28, 59, 10, 2000, 9, 1}, "February", "Monday"},
    {2000, 2, 29, {2000, 1, 2, 3, 29, 60, 10, 2000, 9, 2}, "February", "Tuesday"},
    {2000, 3, 1, {2000, 1, 3, 4, 1, 61, 10, 2000, 9, 3}, "March", "Wednesday"},
    {2000, 12, 31, {2000, 4, 12, 1, 31, 366, 54, 2000, 52, 7}, "December", "Sunday"},
    {2001, 1, 1, {2001, 1, 1, 2, 1, 1, 1, 2001, 1, 1}, "January", "Monday"},
    {2001, 2, 28, {2001, 1, 2, 4, 28, 59, 9, 2001, 9, 3}, "February", "Wednesday"},
    {2001, 3, 1, {2001, 1, 3, 5, 1, 60, 9, 2001, 9, 4}, "March", "Thursday"},
    {2001, 4, 30, {2001, 2, 4, 2, 30, 120, 18, 2001, 18, 1}, "April", "Monday"},
    {2001, 9, 30, {2001, 3, 9, 1, 30, 273, 40, 2001, 39, 7}, "September", "Sunday"},
    {2001, 10, 1, {2001, 4, 10, 2, 1, 274, 40, 2001, 40, 1}, "October", "Monday"},
    {2004, 12, 31, {2004, 4, 12, 6, 31, 366, 53, 2004, 53, 5}, "December", "Friday"},
    {2005, 1, 1, {2005, 1, 1, 7, 1, 1, 1, 2004, 53, 6}, "January", "Saturday"},
    {2005, 1, 3, {2005, 1, 1, 2, 3, 3, 2, 2005, 1, 1}, "January", "Monday"},
    {2008, 12, 29, {2008, 4, 12, 2, 29, 364, 53, 2009, 1, 1}, "December", "Monday"},
    {9999, 12, 31, {9999, 4, 12, 6, 31, 365, 53, 9999, 52, 5}, "December", "Friday"},
};

} // namespace

// From the first to the last moment of the day.
TEST(DatePart, MonthLeapDayAndYearEnds) {
  for (const End &end : ends)
    for (size_t i = 0; i < std::size(end_parts); ++i) {
      const int part = end_parts[i];
      SCOPED_TRACE(testing::Message()
                   << "part " << part << " of " << end.year << "-" << end.month << "-" << end.day);
      EXPECT_EQ(part_of(part, at(end.year, end.month, end.day)), end.parts[i]);
      EXPECT_EQ(part_of(part, make_datetime(end.year, end.month, end.day, 23, 59, 59, 996)),
                end.parts[i]);
      EXPECT_EQ(big_part_of(part, make_big(end.year, end.month, end.day)), end.parts[i]);
      EXPECT_EQ(big_part_of(part, make_big(end.year, end.month, end.day, 23, 59, 59, 999999)),
                end.parts[i]);
    }
  const CS_INT last[] = {23, 59, 59, 996};
  for (int part = 6; part <= 9; ++part) {
    EXPECT_EQ(part_of(part, make_datetime(2000, 2, 29, 23, 59, 59, 996)), last[part - 6]);
    EXPECT_EQ(part_of(part, at(2000, 3, 1)), 0);
    EXPECT_EQ(big_part_of(part, make_big(2000, 2, 29, 23, 59, 59, 996999)), last[part - 6]);
    EXPECT_EQ(big_part_of(part, make_big(2000, 3, 1)), 0);
  }
  EXPECT_EQ(big_part_of(14, make_big(2000, 2, 29, 23, 59, 59, 999999)), 999999);
}

// ISO weeks and years, and the weeks from Sunday, of every day of four centuries.
TEST(DatePart, WeeksOfFourCenturies) {
  std::vector<SlowCalendar> days;
  SlowCalendar day;
  for (; day.year < 1999; day.next()) {
  }
  for (; day.year < 2402; day.next())
    days.push_back(day);
  CS_INT week = 0;
  for (size_t i = 7; i + 7 < days.size(); ++i) {
    const SlowCalendar &today = days[i];
    // A week has the year of its Thursday, and its number counts that year's Thursdays.
    const size_t since_monday = static_cast<size_t>((today.weekday + 6) % 7);
    const SlowCalendar &thursday = days[i - since_monday + 3];
    const CS_DATETIME value{today.days, 12345};
    CS_DATEREC fields{};
    fields.dateyear = today.year;
    fields.datedyear = today.day_of_year;
    ASSERT_EQ(com__daterecpart(11, &fields, 0, today.days, 12), thursday.year) << today.days;
    ASSERT_EQ(com__daterecpart(12, &fields, 0, today.days, 12), (thursday.day_of_year + 6) / 7)
        << today.days;
    if (today.day_of_year == 1)
      week = 1;
    else if (today.weekday == 0 && week != 0)
      ++week;
    if (week != 0) { // from the first whole year on
      ASSERT_EQ(com__daterecpart(10, &fields, 0, today.days, 12), week) << today.days;
    }
    if (i % 97 == 0) {
      ASSERT_EQ(part_of(11, value), thursday.year);
      ASSERT_EQ(part_of(12, value), (thursday.day_of_year + 6) / 7);
    }
  }
}

TEST(DatePart, IsoWeeksAtYearEnds) {
  EXPECT_EQ(part_of(11, at(2005, 1, 1)), 2004);
  EXPECT_EQ(part_of(12, at(2005, 1, 1)), 53);
  EXPECT_EQ(part_of(11, at(2008, 12, 29)), 2009);
  EXPECT_EQ(part_of(12, at(2008, 12, 29)), 1);
  EXPECT_EQ(part_of(11, at(2008, 12, 28)), 2008);
  EXPECT_EQ(part_of(12, at(2008, 12, 28)), 52);
  EXPECT_EQ(part_of(11, at(1, 1, 1)), 1);
  EXPECT_EQ(part_of(12, at(1, 1, 1)), 1);
  EXPECT_EQ(part_of(11, at(9999, 12, 31)), 9999);
  EXPECT_EQ(part_of(12, at(9999, 12, 31)), 52);
  EXPECT_EQ(week_one_offset[0], 1);
  const int offsets[] = {1, 0, -1, -2, -3, 3, 2};
  for (size_t i = 0; i < 7; ++i)
    EXPECT_EQ(week_one_offset[i], offsets[i]);
}

namespace {

// The value of a part by the rules, in numbers that have room for them.
int64_t long_hand_part(int part, const CS_DATEREC &fields, int64_t firstday, int64_t days,
                       bool is_big) {
  const auto weekday_of = [](int64_t day) { return ((day + 693596) % 7 + 7) % 7; };
  const auto first_iso_day = [&](int64_t january_1) {
    const int64_t offsets[] = {1, 0, -1, -2, -3, 3, 2};
    return january_1 + offsets[weekday_of(january_1)];
  };
  const auto year_length = [](int64_t year) { return slow_is_leap(year) ? 366 : 365; };
  const int64_t january_1 = days - fields.datedyear + 1;
  const int64_t next_january_1 = january_1 + year_length(fields.dateyear);
  const int64_t last_january_1 = january_1 - year_length(int64_t{fields.dateyear} - 1);
  const int64_t into_year = days - first_iso_day(january_1);
  const bool is_next_year = into_year / 7 + 1 > 51 && days >= first_iso_day(next_january_1);
  switch (part) {
  case 0:
    return fields.dateyear;
  case 1:
    return fields.datemonth / 3 + 1;
  case 2:
    return int64_t{fields.datemonth} + 1;
  case 3: {
    const int64_t number = weekday_of(days) + 1 - firstday;
    return number < 1 ? number + 7 : number;
  }
  case 4:
    return fields.datedmonth;
  case 5:
    return fields.datedyear;
  case 6:
    return fields.datehour;
  case 7:
    return fields.dateminute;
  case 8:
    return fields.datesecond;
  case 9:
    return is_big ? fields.datesecfrac / 1000 : fields.datemsecond;
  case 10:
    return (fields.datedyear + weekday_of(january_1) + 6) / 7;
  case 11:
    if (into_year < 0)
      return int64_t{fields.dateyear} - 1;
    return int64_t{fields.dateyear} + is_next_year;
  case 12:
    if (into_year < 0)
      return (days - first_iso_day(last_january_1)) / 7 + 1;
    return is_next_year ? 1 : into_year / 7 + 1;
  case 13:
    return weekday_of(days) == 0 ? 7 : weekday_of(days);
  default:
    return is_big ? fields.datesecfrac : 0;
  }
}

} // namespace

// Fields and days need not belong together, nor to any date: the arithmetic is the same, and what
// leaves 32 bits is cut to them.
TEST(DatePart, FieldsThatNoDateHas) {
  const auto expect_parts = [](CS_DATEREC fields, CS_INT firstday, CS_INT days) {
    for (int part = 0; part <= 14; ++part)
      for (const CS_INT type : {12, 35}) {
        const int64_t expected = long_hand_part(part, fields, firstday, days, type == 35);
        ASSERT_EQ(com__daterecpart(part, &fields, firstday, days, type),
                  static_cast<CS_INT>(expected))
            << "part " << part << " of day " << days << " of a value of type " << type;
      }
  };
  for (const CS_INT extreme : {INT_MIN, INT_MAX}) {
    CS_DATEREC fields = make_fields(extreme, 1, extreme, extreme, extreme, extreme, extreme);
    fields.datemonth = fields.datedyear = fields.datesecfrac = extreme;
    for (const CS_INT days : {INT_MIN, 0, INT_MAX})
      expect_parts(fields, extreme, days);
  }
  uint32_t state = 5489;
  for (int i = 0; i < 20000; ++i) {
    const auto any = [&] { return static_cast<CS_INT>(next_random(state)) >> (i % 32); };
    CS_DATEREC random{any(), any(), any(), any(), any(), any(),
                      any(), any(), any(), any(), any(), any()};
    expect_parts(random, any(), any());
    random.datedyear = static_cast<CS_INT>(next_random(state) % 366) + 1;
    expect_parts(random, any() % 8, any() % 3652059);
  }
  CS_DATEREC fields{};
  fields.datemsecond = 7;
  fields.datesecfrac = 123456;
  EXPECT_EQ(com__daterecpart(9, &fields, 0, 0, 12), 7);
  EXPECT_EQ(com__daterecpart(9, &fields, 0, 0, 35), 123);
  EXPECT_EQ(com__daterecpart(14, &fields, 0, 0, 12), 0);
  EXPECT_EQ(com__daterecpart(14, &fields, 0, 0, 35), 123456);
  EXPECT_EQ(com__daterecpart(14, &fields, 0, 0, 36), 0); // only of a CS_BIGDATETIME
}

TEST(DatePart, UnknownPartsAreFatal) {
  CS_DATETIME value{};
  CS_BIGDATETIME big = year_one;
  CS_DATEREC fields{};
  char text[32];
  constexpr const char *unit = "datetime_part.cpp";
  for (const int part : {-1, 15, INT_MIN, INT_MAX}) {
    EXPECT_ASSERTION(unit, 0, com__daterecpart(part, &fields, 0, 0, 12));
    EXPECT_ASSERTION(unit, 0, com__datepart(part, &value, 0));
    EXPECT_ASSERTION(unit, 0, com_datepart(part, &value, 0));
    EXPECT_ASSERTION(unit, 0, com__bigdatepart(part, &big, 0));
    EXPECT_ASSERTION(unit, 0, com__datename(part, &value, text, nullptr, nullptr));
    EXPECT_ASSERTION(unit, 0, com_datename(part, &value, text, nullptr, nullptr));
    EXPECT_ASSERTION(unit, 0, com__bigdatename(part, &big, text, nullptr, nullptr));
    EXPECT_EQ(com__datenameval(part, text, nullptr, nullptr, 1, 1), 0);
  }
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__daterecpart(0, nullptr, 0, 0, 12));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datepart(0, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigdatepart(0, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datename(0, nullptr, text, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datename(0, &value, nullptr, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigdatename(0, nullptr, text, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigdatename(0, &big, nullptr, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datenameval(0, nullptr, nullptr, nullptr, 0, 0));
  CS_INT result = 5;
  CS_BIGINT big_result = 5;
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1, com__datediff(0, nullptr, &value, &result));
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1, com__datediff(0, &value, nullptr, &result));
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1, com__datediff(0, &value, &value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1,
                            com__bigdatediff(0, nullptr, &big, &big_result));
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1,
                            com__bigdatediff(0, &big, nullptr, &big_result));
  EXPECT_NULL_POINTER_CHECK("datetime_diff.cpp", 1, com__bigdatediff(0, &big, &big, nullptr));
}

namespace {

std::string name(int part, CS_DATETIME value, CS_CHAR **months, CS_CHAR **days) {
  GuardedBuffer buffer(30);
  const CS_INT length = com_datename(part, &value, buffer.text(), months, days);
  EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
  GuardedBuffer same(30);
  EXPECT_EQ(com__datename(part, &value, same.text(), months, days), length);
  EXPECT_EQ(same.contents(), buffer.contents());
  return buffer.contents(static_cast<size_t>(length));
}

std::string big_name(int part, CS_BIGDATETIME value) {
  GuardedBuffer buffer(30);
  const CS_INT length = com__bigdatename(part, &value, buffer.text(), com__get_months(),
                                         const_cast<CS_CHAR **>(Com__WeekDay));
  EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
  return buffer.contents(static_cast<size_t>(length));
}

} // namespace

TEST(DateName, EveryPart) {
  const CS_DATETIME value = make_datetime(2001, 8, 5, 13, 14, 15, 163);
  const char *expected[] = {"2001", "3",   "August", "Sunday", "5",  "217",    "13", "14",
                            "15",   "163", "32",     "2001",   "31", "Sunday", "0"};
  for (int part = 0; part <= 14; ++part) {
    EXPECT_EQ(name(part, value, com__get_months(), const_cast<CS_CHAR **>(Com__WeekDay)),
              expected[part])
        << part;
    if (part != 14) {
      EXPECT_EQ(big_name(part, make_big(2001, 8, 5, 13, 14, 15, 163456)), expected[part]) << part;
    }
  }
  EXPECT_EQ(big_name(14, make_big(2001, 8, 5, 13, 14, 15, 163456)), "163456");
  EXPECT_EQ(name(3, value, com__get_months(), com__get_days()), "Sun");
  for (CS_INT offset = 0; offset < 7; ++offset)
    EXPECT_EQ(name(13, {offset, 0}, nullptr, com__get_days()),
              com__get_days()[static_cast<size_t>(offset + 1) % 7]);
}

TEST(DateName, MonthLeapDayAndYearEnds) {
  CS_CHAR **const days = const_cast<CS_CHAR **>(Com__WeekDay);
  for (const End &end : ends)
    for (size_t i = 0; i < std::size(end_parts); ++i) {
      const int part = end_parts[i];
      const std::string expected = part == 2                 ? end.month_name
                                   : part == 3 || part == 13 ? end.day_name
                                                             : std::to_string(end.parts[i]);
      SCOPED_TRACE(testing::Message()
                   << "part " << part << " of " << end.year << "-" << end.month << "-" << end.day);
      EXPECT_EQ(name(part, at(end.year, end.month, end.day), com__get_months(), days), expected);
      EXPECT_EQ(name(part, make_datetime(end.year, end.month, end.day, 23, 59, 59, 996),
                     com__get_months(), days),
                expected);
      EXPECT_EQ(big_name(part, make_big(end.year, end.month, end.day)), expected);
      EXPECT_EQ(big_name(part, make_big(end.year, end.month, end.day, 23, 59, 59, 999999)),
                expected);
    }
}

// Every day of a common and of a leap year, and the days beside them.
TEST(DateName, EveryDayOfTwoYears) {
  CS_CHAR **const days = const_cast<CS_CHAR **>(Com__WeekDay);
  SlowCalendar today;
  while (today.year < 1999 || today.day_of_year < 365)
    today.next();
  for (; today.year < 2002 || today.day_of_year < 2; today.next()) {
    const CS_DATETIME value{today.days, ticks_per_day - 1};
    ASSERT_EQ(name(2, value, com__get_months(), days), Com__Months[today.month]) << today.days;
    ASSERT_EQ(name(3, value, com__get_months(), days), days[today.weekday]) << today.days;
    ASSERT_EQ(name(4, value, nullptr, nullptr), std::to_string(today.day)) << today.days;
    ASSERT_EQ(name(5, value, nullptr, nullptr), std::to_string(today.day_of_year)) << today.days;
    ASSERT_EQ(name(13, value, com__get_months(), days), days[today.weekday]) << today.days;
  }
}

TEST(DateName, Lists) {
  const CS_DATETIME value = at(2001, 8, 5);
  EXPECT_EQ(name(2, value, nullptr, com__get_days()), "");
  EXPECT_EQ(name(3, value, com__get_months(), nullptr), "");
  EXPECT_EQ(name(13, value, com__get_months(), nullptr), "");
  CS_CHAR long_name[] = "abcdefghijklmnopqrstuvwxyz012345";
  CS_CHAR *names[12] = {nullptr, nullptr,   nullptr, nullptr, nullptr, nullptr,
                        nullptr, long_name, nullptr, nullptr, nullptr, nullptr};
  EXPECT_EQ(name(2, value, names, names), "abcdefghijklmnopqrstuvwxyz0123");
  EXPECT_EQ(name(2, at(2001, 9, 5), names, names), "");
}

TEST(DateName, NumbersThatDoNotFit) {
  const auto write = [](int part, CS_INT value) {
    GuardedBuffer buffer(6);
    const CS_INT length =
        com__datenameval(part, buffer.text(), com__get_months(), com__get_days(), value, 0);
    return buffer.contents(static_cast<size_t>(length));
  };
  for (const int part : {0, 1, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    EXPECT_EQ(write(part, 9999), "9999");
    EXPECT_EQ(write(part, 10000), "*");
    EXPECT_EQ(write(part, -999), "-999");
    EXPECT_EQ(write(part, INT_MIN), "*");
  }
  EXPECT_EQ(write(14, 999999), "999999");
  EXPECT_EQ(write(14, 1000000), "*");
  for (const CS_INT month : {0, 13, -1, INT_MIN, INT_MAX})
    EXPECT_EQ(write(2, month), "");
  EXPECT_EQ(name(0, {2958464, 0}, nullptr, nullptr), "*"); // the year 10000
}
