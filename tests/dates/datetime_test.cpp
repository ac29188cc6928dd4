// The calendar core: cracking, making, ranges.
#include <climits>
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "slow_calendar.h"
#include "test_scale.h"

using namespace zrvtest;

namespace {

constexpr CS_INT rubbish = 0x5A5A5A5A;

CS_DATEREC rubbish_fields() {
  CS_DATEREC fields;
  std::memset(&fields, 0x5A, sizeof fields);
  return fields;
}

CS_DATEREC crack(CS_INT days, CS_INT ticks = 0) {
  CS_DATETIME value{days, ticks};
  CS_DATEREC fields{};
  com__datecrack(&value, &fields);
  com__timecrack(&value, &fields);
  return fields;
}

CS_DATEREC crack_big(CS_UBIGINT value) {
  CS_DATEREC fields{};
  com__bigdatecrack(&value, &fields);
  com__bigtimecrack(&value, &fields);
  return fields;
}

struct Made {
  int status;
  CS_INT value;
  bool operator==(const Made &) const = default;
};

void PrintTo(const Made &made, std::ostream *out) {
  *out << "status " << made.status << ", value " << made.value;
}

constexpr CS_INT before = -1234567;

Made make_days(const CS_DATEREC &from) {
  CS_DATEREC fields = from;
  CS_DATETIME value{before, before};
  const int status = com__datemake(&value, &fields);
  EXPECT_EQ(value.dttime, before);
  return {status, value.dtdays};
}

Made make_ticks(const CS_DATEREC &from) {
  CS_DATEREC fields = from;
  CS_DATETIME value{before, before};
  const int status = com__timemake(&value, &fields);
  EXPECT_EQ(value.dtdays, before);
  return {status, value.dttime};
}

CS_DATEREC clock(CS_INT hour, CS_INT minute, CS_INT second, CS_INT millisecond = 0) {
  return make_fields(1, 1, 1, hour, minute, second, millisecond);
}

CS_DATEREC micro_clock(CS_INT hour, CS_INT minute, CS_INT second, CS_INT microsecond) {
  CS_DATEREC fields = clock(hour, minute, second);
  fields.datesecfrac = microsecond;
  fields.datesecprec = 1000000;
  return fields;
}

} // namespace

TEST(CalendarTables, Months) {
  const short lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const short sums[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  for (size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(monthdays[i].daysinmonth, lengths[i]);
    EXPECT_EQ(monthdays[i].daysum, sums[i]);
    EXPECT_EQ(lmonthdays[i].daysinmonth, i == 1 ? 29 : lengths[i]);
    EXPECT_EQ(lmonthdays[i].daysum, sums[i] + (i > 1));
  }
}

TEST(Calendar, LeapYearTakesTheYearsGoneBy) {
  EXPECT_EQ(leapyear(1999), 1); // the year 2000
  EXPECT_EQ(leapyear(2000), 0);
  EXPECT_EQ(leapyear(1899), 0);
  EXPECT_EQ(leapyear(1903), 1);
  EXPECT_EQ(leapyear(3), 1);
  EXPECT_EQ(leapyear(-1), 1);
  EXPECT_EQ(leapyear(-2), 0);
  EXPECT_EQ(leapyear(INT_MAX), 1); // 2147483648 is divisible by 4, and not by 100
  EXPECT_EQ(leapyear(INT_MIN), 0);
  for (int year = 1; year <= 9999; ++year)
    ASSERT_EQ(leapyear(year - 1), slow_is_leap(year)) << year;
}

TEST(Calendar, LeapDayCount) {
  EXPECT_EQ(com__leapcnt(0), 0);
  EXPECT_EQ(com__leapcnt(3), 0);
  EXPECT_EQ(com__leapcnt(4), 1);
  EXPECT_EQ(com__leapcnt(1899), 460);
  EXPECT_EQ(com__leapcnt(-1), 0);
  EXPECT_EQ(com__leapcnt(-400), 0);
  EXPECT_EQ(com__leapcnt(INT_MIN), 0);
  EXPECT_EQ(com__leapcnt(INT_MAX), 520764784); // 536870911 - 21474836 + 5368709
  int count = 0;
  for (int year = 1; year <= 9999; ++year) {
    count += slow_is_leap(year);
    ASSERT_EQ(com__leapcnt(year), count) << year;
  }
}

TEST(Calendar, RecordCopy) {
  CS_DATEREC source{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (const CS_INT type : {12, 13, 27, 28, 34, 37, 0, -1}) {
    CS_DATEREC target = rubbish_fields();
    EXPECT_EQ(com__dtrec_cp(&source, &target, type), 1);
    EXPECT_EQ(std::memcmp(&target, &source, 40), 0);
    EXPECT_EQ(target.datesecfrac, rubbish) << type;
    EXPECT_EQ(target.datesecprec, rubbish) << type;
  }
  for (const CS_INT type : {35, 36}) {
    CS_DATEREC target = rubbish_fields();
    EXPECT_EQ(com__dtrec_cp(&source, &target, type), 1);
    EXPECT_EQ(std::memcmp(&target, &source, sizeof source), 0);
  }
  EXPECT_EQ(com__dtrec_cp(&source, &source, 35), 1);
  EXPECT_EQ(com__dtrec_cp(nullptr, &source, 12), 0);
  EXPECT_EQ(com__dtrec_cp(&source, nullptr, 12), 0);
}

TEST(Crack, KnownDays) {
  CS_DATEREC fields = crack(0);
  EXPECT_EQ(fields.dateyear, 1900);
  EXPECT_EQ(fields.datemonth, 0);
  EXPECT_EQ(fields.datedmonth, 1);
  EXPECT_EQ(fields.datedyear, 1);
  EXPECT_EQ(fields.datedweek, 1);
  fields = crack(-53690);
  EXPECT_EQ(fields.dateyear, 1753);
  EXPECT_EQ(fields.datemonth, 0);
  EXPECT_EQ(fields.datedmonth, 1);
  fields = crack(-53691);
  EXPECT_EQ(fields.dateyear, 1752);
  EXPECT_EQ(fields.datemonth, 11);
  EXPECT_EQ(fields.datedmonth, 31);
  EXPECT_EQ(fields.datedyear, 366);
  fields = crack(2958463);
  EXPECT_EQ(fields.dateyear, 9999);
  EXPECT_EQ(fields.datemonth, 11);
  EXPECT_EQ(fields.datedmonth, 31);
  fields = crack(65535);
  EXPECT_EQ(fields.dateyear, 2079);
  EXPECT_EQ(fields.datemonth, 5);
  EXPECT_EQ(fields.datedmonth, 6);
}

// The inner functions write only the fields of their half.
TEST(Crack, OtherFieldsStay) {
  CS_DATETIME value{0, 25919999};
  CS_DATEREC fields = rubbish_fields();
  com__datecrack(&value, &fields);
  EXPECT_EQ(fields.dateyear, 1900);
  for (const CS_INT field :
       {fields.datehour, fields.dateminute, fields.datesecond, fields.datemsecond, fields.datetzone,
        fields.datesecfrac, fields.datesecprec})
    EXPECT_EQ(field, rubbish);
  fields = rubbish_fields();
  com__timecrack(&value, &fields);
  EXPECT_EQ(fields.datehour, 23);
  EXPECT_EQ(fields.datesecprec, 300);
  EXPECT_EQ(fields.datesecfrac, 0);
  for (const CS_INT field : {fields.dateyear, fields.datemonth, fields.datedmonth, fields.datedyear,
                             fields.datedweek, fields.datetzone})
    EXPECT_EQ(field, rubbish);
  CS_BIGDATETIME big = year_one + 86399999999;
  fields = rubbish_fields();
  com__bigdatecrack(&big, &fields);
  EXPECT_EQ(fields.dateyear, 1);
  for (const CS_INT field : {fields.datehour, fields.datetzone, fields.datesecfrac,
                             fields.datesecprec, fields.datemsecond})
    EXPECT_EQ(field, rubbish);
  fields = rubbish_fields();
  com__bigtimecrack(&big, &fields);
  EXPECT_EQ(fields.datehour, 23);
  EXPECT_EQ(fields.datemsecond, 0);
  EXPECT_EQ(fields.datesecfrac, 999999);
  EXPECT_EQ(fields.datesecprec, 1000000);
  for (const CS_INT field : {fields.dateyear, fields.datedweek, fields.datetzone})
    EXPECT_EQ(field, rubbish);
}

TEST(Crack, EveryDay) {
  int count = 0;
  for (SlowCalendar day; !day.done(); day.next(), ++count) {
    CS_DATETIME value{day.days, 0};
    CS_DATEREC fields;
    com__datecrack(&value, &fields);
    const bool right = fields.dateyear == day.year && fields.datemonth == day.month &&
                       fields.datedmonth == day.day && fields.datedyear == day.day_of_year &&
                       fields.datedweek == day.weekday;
    CS_BIGDATETIME big = year_one + micros_per_day * static_cast<CS_UBIGINT>(count) + 86399999999;
    CS_DATEREC big_fields;
    com__bigdatecrack(&big, &big_fields);
    const bool big_right = std::memcmp(&fields, &big_fields, 5 * sizeof(CS_INT)) == 0;

    // Only year, month and day of the month count.
    fields.datedyear = fields.datedweek = rubbish;
    CS_DATETIME made{rubbish, 0};
    CS_BIGDATETIME big_made;
    const bool remade = com__datemake(&made, &fields) == 0 && made.dtdays == day.days &&
                        com__bigdatemake(&big_made, &fields) == 0 && big_made == big - 86399999999;
    if (!right || !big_right || !remade)
      FAIL() << "day " << day.days << ", " << day.year << "-" << day.month + 1 << "-" << day.day;
  }
  EXPECT_EQ(count, 3652059);
}

TEST(Crack, EveryTick) {
  const CS_INT step = sanitized ? 13 : 1;
  for (CS_INT tick = 0; tick < 25920000; tick += step) {
    CS_DATETIME value{0, tick};
    CS_DATEREC fields;
    com__timecrack(&value, &fields);
    const CS_INT second = tick / 300;
    // 300 ticks are 1000 milliseconds: the last whole one that is not behind the tick.
    const bool right =
        fields.datehour * 3600 + fields.dateminute * 60 + fields.datesecond == second &&
        fields.dateminute < 60 && fields.datesecond < 60 &&
        fields.datemsecond * 3 <= tick % 300 * 10 && (fields.datemsecond + 1) * 3 > tick % 300 * 10;
    CS_DATETIME made{};
    if (!right || com__timemake(&made, &fields) != 0 || made.dttime != tick)
      FAIL() << "tick " << tick << ", made " << made.dttime;
  }
}

TEST(Crack, EverySecondOfABigTime) {
  CS_INT fraction = 0;
  for (CS_INT second = 0; second < 86400; ++second) {
    fraction = (fraction + 7919 * 11) % 1000000;
    for (const CS_INT micros : {0, 999999, fraction}) {
      CS_BIGTIME value = static_cast<CS_UBIGINT>(second) * 1000000 + static_cast<CS_UINT>(micros);
      CS_DATEREC fields;
      com__bigtimecrack(&value, &fields);
      ASSERT_EQ(fields.datehour * 3600 + fields.dateminute * 60 + fields.datesecond, second);
      ASSERT_TRUE(fields.dateminute < 60 && fields.datesecond < 60);
      ASSERT_EQ(fields.datesecfrac, micros);
      CS_BIGTIME made;
      ASSERT_EQ(com__bigtimemake(&made, &fields), 0);
      ASSERT_EQ(made, value);
    }
  }
}

TEST(Crack, KnownTimes) {
  CS_DATEREC fields = crack(0, 25919999);
  EXPECT_EQ(fields.datehour, 23);
  EXPECT_EQ(fields.dateminute, 59);
  EXPECT_EQ(fields.datesecond, 59);
  EXPECT_EQ(fields.datemsecond, 996);
  EXPECT_EQ(crack(0, 1).datemsecond, 3);
  EXPECT_EQ(crack(0, 2).datemsecond, 6);
  fields = crack_big(year_one);
  EXPECT_EQ(fields.dateyear, 1);
  EXPECT_EQ(fields.datemonth, 0);
  EXPECT_EQ(fields.datedmonth, 1);
  EXPECT_EQ(fields.datehour, 0);
  EXPECT_EQ(fields.datesecfrac, 0);
  fields = crack_big(315569519999999999);
  EXPECT_EQ(fields.dateyear, 9999);
  EXPECT_EQ(fields.datedyear, 365);
  EXPECT_EQ(fields.datesecfrac, 999999);
}

// Only the low 25 bits of a tick count are looked at.
TEST(Crack, HighBitsOfTheTimeAreIgnored) {
  const CS_DATEREC fields = crack(0, 5 * 1080000 + 7);
  for (const CS_INT high : {1 << 25, 1 << 30, INT_MIN, INT_MIN | 1 << 27}) {
    const CS_DATEREC same = crack(0, high | (5 * 1080000 + 7));
    EXPECT_EQ(std::memcmp(&fields, &same, sizeof fields), 0);
  }
  // The largest time of 25 bits, 33554431 ticks, is past midnight.
  const CS_DATEREC largest = crack(0, -1);
  EXPECT_EQ(largest.datehour, 31);
  EXPECT_EQ(largest.dateminute, 4);
  EXPECT_EQ(largest.datesecond, 8);
  EXPECT_EQ(largest.datemsecond, 103);
}

// No valid value reaches beyond the years 1 to 9999, but the arithmetic goes on there.
TEST(Crack, DaysOutsideTheCalendar) {
  CS_DATEREC fields = crack(2958464);
  EXPECT_EQ(fields.dateyear, 10000);
  EXPECT_EQ(fields.datedyear, 1);
  // Before year 1 no leap days are counted; the months of year 0 are those of a leap year.
  fields = crack(-693596);
  EXPECT_EQ(fields.dateyear, 0);
  EXPECT_EQ(fields.datemonth, 11);
  EXPECT_EQ(fields.datedmonth, 30);
  EXPECT_EQ(fields.datedyear, 365);
  EXPECT_EQ(fields.datedweek, 0);
  fields = crack(-693595 - 365);
  EXPECT_EQ(fields.dateyear, 0);
  EXPECT_EQ(fields.datedyear, 1);
  fields = crack(-693595 - 366);
  EXPECT_EQ(fields.dateyear, -1);
  EXPECT_EQ(fields.datemonth, 11);
  EXPECT_EQ(fields.datedmonth, 31);

  // Against the stepwise rule: a close estimate of the years, then back until the rest is positive.
  const auto reference = [](CS_INT days) {
    const int64_t day = int64_t{days} + 693595;
    int64_t years = day / 365;
    int64_t rest;
    for (;; --years) {
      rest = day - 365 * years - (years < 0 ? 0 : years / 4 - years / 100 + years / 400);
      if (rest >= 0)
        return std::pair{static_cast<CS_INT>(years + 1), static_cast<CS_INT>(rest + 1)};
    }
  };
  uint32_t state = 2024;
  for (int i = 0; i < 2000; ++i) {
    state = state * 1664525 + 1013904223;
    CS_INT days = static_cast<CS_INT>(state);
    if (i < 20)
      days = i % 2 == 0 ? INT_MIN + i : INT_MAX - i;
    else if (i < 40)
      days = (INT_MAX >> 1) - 693595 - 10 + (i - 20); // where 32 bits stop to do
    else if (sanitized && i > 400)
      break;
    const auto [year, day_of_year] = reference(days);
    fields = crack(days);
    ASSERT_EQ(fields.dateyear, year) << days;
    ASSERT_EQ(fields.datedyear, day_of_year) << days;
    int rest = day_of_year;
    int month = 0;
    while (rest > slow_month_length(year, month))
      rest -= slow_month_length(year, month++);
    ASSERT_EQ(fields.datemonth, month) << days;
    ASSERT_EQ(fields.datedmonth, rest) << days;
    ASSERT_TRUE(fields.datedweek >= 0 && fields.datedweek <= 6) << days;
  }
}

// A big value below 0001-01-01 wraps round, as unsigned numbers do; the time of day stays right.
TEST(Crack, BigValuesOutsideTheCalendar) {
  for (const CS_UBIGINT value : {CS_UBIGINT{0}, year_one - 1, CS_UBIGINT{5}}) {
    const CS_DATEREC fields = crack_big(value);
    EXPECT_GT(fields.dateyear, 9999);
    EXPECT_EQ(fields.datesecfrac, static_cast<CS_INT>(value % 1000000));
  }
  const CS_DATEREC last = crack_big(UINT64_MAX);
  EXPECT_EQ(last.dateyear, 584554);
  EXPECT_EQ(last.datesecfrac, 551615);
}

TEST(Make, DateStatuses) {
  EXPECT_EQ(make_days(make_fields(2000, 2, 29)), (Made{0, 36583}));
  EXPECT_EQ(make_days(make_fields(1753, 1, 1)), (Made{0, -53690}));
  EXPECT_EQ(make_days(make_fields(1, 1, 1)), (Made{0, -693595}));
  EXPECT_EQ(make_days(make_fields(9999, 12, 31)), (Made{0, 2958463}));
  // What had been added up by then stays in the value: nothing, whole years, whole months.
  for (const CS_INT year : {0, -1, 10000, INT_MIN, INT_MAX})
    EXPECT_EQ(make_days(make_fields(year, 13, 32)), (Made{1, 0})) << year;
  for (const CS_INT month : {-1, 12, INT_MIN, INT_MAX}) {
    CS_DATEREC fields = make_fields(1900, 1, 32);
    fields.datemonth = month;
    EXPECT_EQ(make_days(fields), (Made{2, 693595})) << month;
  }
  for (const CS_INT day : {0, -1, 29, 30, 31, INT_MIN, INT_MAX})
    EXPECT_EQ(make_days(make_fields(1900, 2, day)), (Made{3, 693595 + 31})) << day;
  EXPECT_EQ(make_days(make_fields(2001, 4, 31)).status, 3);
  EXPECT_EQ(make_days(make_fields(2001, 4, 30)).status, 0);
}

TEST(Make, BigDateStatuses) {
  const auto make = [](CS_INT year, CS_INT month, CS_INT day) {
    CS_DATEREC fields = make_fields(year, month, day);
    CS_BIGDATETIME value = 77;
    const int status = com__bigdatemake(&value, &fields);
    return std::pair<int, CS_UBIGINT>{status, value};
  };
  EXPECT_EQ(make(1, 1, 1), (std::pair<int, CS_UBIGINT>{0, 31622400000000}));
  EXPECT_EQ(make(9999, 12, 31), (std::pair<int, CS_UBIGINT>{0, 315569433600000000}));
  EXPECT_EQ(make(0, 1, 1), (std::pair<int, CS_UBIGINT>{1, 0}));
  EXPECT_EQ(make(10000, 1, 1), (std::pair<int, CS_UBIGINT>{1, 0}));
  EXPECT_EQ(make(2, 13, 1), (std::pair<int, CS_UBIGINT>{2, 365}));
  EXPECT_EQ(make(2, 3, 32), (std::pair<int, CS_UBIGINT>{3, 365 + 59}));
}

TEST(Make, TimeStatuses) {
  EXPECT_EQ(make_ticks(clock(23, 59, 59, 996)), (Made{0, 25919999}));
  EXPECT_EQ(make_ticks(clock(0, 0, 0)), (Made{0, 0}));
  // The first field at fault decides, and what had been added up by then stays.
  EXPECT_EQ(make_ticks(clock(24, 60, 60, 1000)), (Made{4, before}));
  EXPECT_EQ(make_ticks(clock(INT_MAX, 0, 0)), (Made{4, before}));
  EXPECT_EQ(make_ticks(clock(23, 60, 60, 1000)), (Made{5, 23 * 1080000}));
  EXPECT_EQ(make_ticks(clock(23, 59, 60, 1000)), (Made{6, 23 * 1080000 + 59 * 18000}));
  EXPECT_EQ(make_ticks(clock(23, 59, 59, 1000)), (Made{7, 25919700}));
  EXPECT_EQ(make_ticks(micro_clock(1, 0, 0, 1000000)), (Made{7, 1080000}));
  EXPECT_EQ(make_ticks(micro_clock(1, 0, 0, 999999)), (Made{0, 1080000 + 299}));
  // The fraction counts in microseconds only with the precision of the big types.
  CS_DATEREC fields = clock(0, 0, 0, 10);
  fields.datesecfrac = 1000000;
  fields.datesecprec = 300;
  EXPECT_EQ(make_ticks(fields), (Made{0, 3}));
}

// Only upper bounds are checked; that negative fields pass is deliberate.
TEST(Make, NegativeTimeFields) {
  EXPECT_EQ(make_ticks(clock(-1, 0, 0)), (Made{0, -1080000}));
  EXPECT_EQ(make_ticks(clock(1, -1, -1)), (Made{0, 1080000 - 18000 - 300}));
  EXPECT_EQ(make_ticks(clock(0, 0, 0, -1)), (Made{0, 0}));  // (-3 - 5) / 10
  EXPECT_EQ(make_ticks(clock(0, 0, 0, -2)), (Made{0, -1})); // (-6 - 5) / 10
  EXPECT_EQ(make_ticks(micro_clock(0, 0, 0, -1999)), (Made{0, 0}));
  EXPECT_EQ(make_ticks(clock(-1988, 0, 0)), (Made{0, -2147040000}));
  // A sum that 32 bits do not hold is refused at the field that brings it there.
  EXPECT_EQ(make_ticks(clock(-1989, 0, 0)), (Made{4, before}));
  EXPECT_EQ(make_ticks(clock(INT_MIN, 0, 0)), (Made{4, before}));
  EXPECT_EQ(make_ticks(clock(0, INT_MIN, 0)), (Made{5, 0}));
  EXPECT_EQ(make_ticks(clock(0, 0, INT_MIN)), (Made{6, 0}));
  EXPECT_EQ(make_ticks(clock(-1988, -24, 0)), (Made{0, -2147472000}));
  EXPECT_EQ(make_ticks(clock(-1988, -24, -39)), (Made{6, -2147472000}));
  EXPECT_EQ(make_ticks(clock(0, 0, 0, INT_MIN)), (Made{0, -644245094}));
  EXPECT_EQ(make_ticks(clock(-1500, 0, 0, INT_MIN)), (Made{7, -1620000000}));
  CS_DATEREC fields = make_fields(1, 1, 1, INT_MIN, INT_MIN, INT_MIN, INT_MIN);
  CS_BIGTIME value = 0;
  EXPECT_EQ(com__bigtimemake(&value, &fields), 0);
  EXPECT_EQ(static_cast<CS_BIGINT>(value),
            -2147483648LL * (3600000000 + 60000000 + 1000000 + 1000));
}

TEST(Make, EveryMillisecond) {
  for (CS_INT millisecond = 0; millisecond < 1000; ++millisecond) {
    const Made made = make_ticks(clock(0, 0, 0, millisecond));
    ASSERT_EQ(made.status, 0);
    // The tick nearest to three tenths of it; half a tick goes up.
    const CS_INT distance = 3 * millisecond - 10 * made.value;
    if (millisecond == 999)
      EXPECT_EQ(made.value, 299); // not 300, the next second
    else
      EXPECT_TRUE(distance >= -5 && distance < 5) << millisecond;
    EXPECT_EQ(make_ticks(micro_clock(0, 0, 0, millisecond * 1000)), made);
    EXPECT_EQ(make_ticks(micro_clock(0, 0, 0, millisecond * 1000 + 999)), made);
  }
  EXPECT_EQ(make_ticks(clock(0, 0, 0, 996)).value, 299);
  EXPECT_EQ(make_ticks(clock(0, 0, 0, 997)).value, 299);
  EXPECT_EQ(make_ticks(clock(0, 0, 0, 998)).value, 299);
  EXPECT_EQ(make_ticks(clock(0, 0, 0, 5)).value, 2);
  EXPECT_EQ(make_ticks(clock(0, 0, 0, 1)).value, 0);
}

// The fraction is datesecfrac with the precision 1000000 alone; with any other it is datemsecond.
TEST(Make, OtherPrecisionsHaveMilliseconds) {
  for (const CS_INT precision :
       {0, 1, 300, 1000, 100000, 999999, 1000001, 10000000, -1000000, INT_MIN, INT_MAX})
    for (const CS_INT fraction : {654321, INT_MAX, INT_MIN}) {
      CS_DATEREC fields = make_fields(2001, 1, 1, 1, 2, 3, 500);
      fields.datesecprec = precision;
      fields.datesecfrac = fraction;
      EXPECT_EQ(make_ticks(fields), (Made{0, 1080000 + 2 * 18000 + 3 * 300 + 150})) << precision;
      CS_BIGTIME time = 77;
      EXPECT_EQ(com__bigtimemake(&time, &fields), 0) << precision;
      EXPECT_EQ(time, 3723500000U) << precision;
      CS_BIGDATETIME both = 77;
      EXPECT_EQ(com_bigdatetimemake(&both, &fields), 0) << precision;
      EXPECT_EQ(both, make_big(2001, 1, 1, 1, 2, 3, 500000)) << precision;
      fields.datemsecond = 1000;
      EXPECT_EQ(make_ticks(fields), (Made{7, 1080000 + 2 * 18000 + 3 * 300})) << precision;
      EXPECT_EQ(com__bigtimemake(&time, &fields), 7) << precision;
    }
  CS_DATEREC fields = micro_clock(1, 2, 3, 654321);
  fields.datemsecond = INT_MAX;
  EXPECT_EQ(make_ticks(fields), (Made{0, 1080000 + 2 * 18000 + 3 * 300 + 196}));
  CS_BIGTIME time = 77;
  EXPECT_EQ(com__bigtimemake(&time, &fields), 0);
  EXPECT_EQ(time, 3723654321U);
}

TEST(Make, BigTimeStatuses) {
  const auto make = [](const CS_DATEREC &from) {
    CS_DATEREC fields = from;
    CS_BIGTIME value = 77;
    const int status = com__bigtimemake(&value, &fields);
    return std::pair<int, CS_UBIGINT>{status, value};
  };
  using Result = std::pair<int, CS_UBIGINT>;
  EXPECT_EQ(make(micro_clock(23, 59, 59, 999999)), (Result{0, 86399999999}));
  EXPECT_EQ(make(clock(23, 59, 59, 999)), (Result{0, 86399999000}));
  EXPECT_EQ(make(micro_clock(24, 60, 60, 1000000)), (Result{4, 0}));
  EXPECT_EQ(make(micro_clock(1, 60, 60, 1000000)), (Result{5, 3600000000}));
  EXPECT_EQ(make(micro_clock(1, 1, 60, 1000000)), (Result{6, 3660000000}));
  EXPECT_EQ(make(micro_clock(1, 1, 1, 1000000)), (Result{7, 3661000000}));
  EXPECT_EQ(make(clock(1, 1, 1, 1000)), (Result{7, 3661000000}));
  EXPECT_EQ(make(clock(1, 1, 1, INT_MAX)), (Result{7, 3661000000}));
}

TEST(Ranges, BothSidesOfEachLimit) {
  const auto datetime = [](CS_INT days) {
    CS_DATETIME value{days, 0};
    return com__datetime_check_range(&value);
  };
  EXPECT_EQ(datetime(-53690), 0);
  EXPECT_EQ(datetime(-53691), 1);
  EXPECT_EQ(datetime(INT_MIN), 1);
  EXPECT_EQ(datetime(INT_MAX), 0); // deliberate: no upper limit here
  const auto date = [](CS_DATE value) { return com__datea_check_range(&value); };
  EXPECT_EQ(date(-693595), 0);
  EXPECT_EQ(date(-693596), 1);
  EXPECT_EQ(date(2958463), 0);
  EXPECT_EQ(date(2958464), 1);
  const auto time = [](CS_TIME value) { return com__timea_check_range(&value); };
  EXPECT_EQ(time(0), 0);
  EXPECT_EQ(time(-1), 1);
  EXPECT_EQ(time(25919999), 0);
  EXPECT_EQ(time(25920000), 1);
  const auto big = [](CS_BIGDATETIME value) { return com__bigdatetime_check_range(&value); };
  EXPECT_EQ(big(31622400000000), 0);
  EXPECT_EQ(big(31622399999999), 1);
  EXPECT_EQ(big(315569519999999999), 0);
  EXPECT_EQ(big(315569520000000000), 1);
  EXPECT_EQ(big(UINT64_MAX), 1);
  const auto bigtime = [](CS_BIGTIME value) { return com__bigtime_check_range(&value); };
  EXPECT_EQ(bigtime(0), 0);
  EXPECT_EQ(bigtime(86399999999), 0);
  EXPECT_EQ(bigtime(86400000000), 1);
}

TEST(Checks, NullPointers) {
  CS_DATETIME value{1, 2};
  CS_BIGDATETIME big = 3;
  CS_DATEREC fields = make_fields(2000, 1, 1);
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__datemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__datemake(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__bigdatemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__bigdatemake(&big, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com__timemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com__timemake(&value, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com__bigtimemake(nullptr, &fields));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 4, com__bigtimemake(&big, nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__datetime_check_range(nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__bigdatetime_check_range(nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__datea_check_range(nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__timea_check_range(nullptr));
  EXPECT_NULL_POINTER_CHECK("datetime.cpp", 1, com__bigtime_check_range(nullptr));
  EXPECT_EQ(value.dtdays, 1);
  EXPECT_EQ(value.dttime, 2);
  EXPECT_EQ(big, 3U);
  const auto traps = [](auto call) {
    return is_null_pointer_report(catch_check(call), "datetime.cpp");
  };
  EXPECT_TRUE(traps([&] { com__datecrack(nullptr, &fields); }));
  EXPECT_TRUE(traps([&] { com__datecrack(&value, nullptr); }));
  EXPECT_TRUE(traps([&] { com__timecrack(nullptr, &fields); }));
  EXPECT_TRUE(traps([&] { com__timecrack(&value, nullptr); }));
  EXPECT_TRUE(traps([&] { com__bigdatecrack(nullptr, &fields); }));
  EXPECT_TRUE(traps([&] { com__bigdatecrack(&big, nullptr); }));
  EXPECT_TRUE(traps([&] { com__bigtimecrack(nullptr, &fields); }));
  EXPECT_TRUE(traps([&] { com__bigtimecrack(&big, nullptr); }));
  EXPECT_EQ(fields.dateyear, 2000);
}
