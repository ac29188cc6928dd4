// Dates and times as text.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_fields.h"
#include "guarded_buffer.h"

using namespace zrvtest;
using namespace std::string_literals;

namespace {

// Wednesday 1997-03-05 16:07:09, as each engine shows it in each style that exists. The fraction is
// .123 in milliseconds and .123456 in microseconds.
struct Sample {
  CS_INT style;
  const char *date;
  const char *time; // "" where nothing but a date would show
};

constexpr Sample samples[] = {
    {0, "Mar  5 1997  4:07PM", " 4:07PM"},
    {1, "03/05/97", ""},
    {2, "97.03.05", ""},
    {3, "05/03/97", ""},
    {4, "05.03.97", ""},
    {5, "05-03-97", ""},
    {6, "05 Mar 97", ""},
    {7, "Mar 05, 97", ""},
    {8, "16:07:09", "16:07:09"},
    {9, "Mar  5 1997  4:07:09:123PM", " 4:07:09:123PM"},
    {10, "03-05-97", ""},
    {11, "97/03/05", ""},
    {12, "970305", ""},
    {13, "97/05/03", ""},
    {14, "03/97/05", ""},
    {15, "05/97/03", ""},
    {16, "Mar  5 1997 16:07:09", "Mar  5 1997 16:07:09"},
    {17, " 4:07PM", " 4:07PM"},
    {18, "16:07", "16:07"},
    {19, " 4:07:09:123PM", " 4:07:09:123PM"},
    {20, "16:07:09:123", "16:07:09:123"},
    {21, "97/03/05 16:07:09", "97/05/03 16:07:09"}, // day and month change places: deliberate
    {22, "97/03/05  4:07PM", "97/05/03  4:07PM"},
    {23, "1997-03-05T16:07:09", "1997-03-05T16:07:09"},
    {36, " 4:07:09.123456PM", " 4:07:09.123456PM"},
    {37, "16:07:09.123456", "16:07:09.123456"},
    {38, "Mar  5 97  4:07:09.123456PM", "Mar  5 97  4:07:09.123456PM"},
    {39, "Mar  5 97 16:07:09.123456", "Mar  5 97 16:07:09.123456"},
    {40, "97-03-05 16:07:09.123456", "97-03-05 16:07:09.123456"},
    {100, "Mar  5 1997  4:07PM", "Mar  5 1997  4:07PM"},
    {101, "03/05/1997", ""},
    {102, "1997.03.05", ""},
    {103, "05/03/1997", ""},
    {104, "05.03.1997", ""},
    {105, "05-03-1997", ""},
    {106, "05 Mar 1997", ""},
    {107, "Mar 05, 1997", ""},
    {108, "16:07:09", "16:07:09"},
    {109, "Mar  5 1997  4:07:09:123PM", "Mar  5 1997  4:07:09:123PM"},
    {110, "03-05-1997", ""},
    {111, "1997/03/05", ""},
    {112, "19970305", ""},
    {113, "1997/05/03", ""},
    {114, "03/1997/05", ""},
    {115, "05/1997/03", ""},
    {116, "Mar  5 1997 16:07:09", "Mar  5 1997 16:07:09"},
    {117, " 4:07PM", " 4:07PM"},
    {118, "16:07", "16:07"},
    {121, "1997/03/05 16:07:09", "1997/05/03 16:07:09"},
    {122, "1997/03/05  4:07PM", "1997/05/03  4:07PM"},
    {136, " 4:07:09.123456PM", " 4:07:09.123456PM"},
    {137, "16:07:09.123456", "16:07:09.123456"},
    {138, "Mar  5 1997  4:07:09.123456PM", "Mar  5 1997  4:07:09.123456PM"},
    {139, "Mar  5 1997 16:07:09.123456", "Mar  5 1997 16:07:09.123456"},
    {140, "1997-03-05 16:07:09.123456", "1997-03-05 16:07:09.123456"},
    {141, "Mar  5 1997  4:07:09.123456PM", " 4:07:09.123456PM"},
};

// The text of a sample: a time without anything to show is one NUL byte.
std::string text_of(const char *sample) {
  return *sample != '\0' ? sample : "\0"s;
}

CS_DATEREC sample_fields() {
  CS_DATEREC fields = make_fields(1997, 3, 5, 16, 7, 9, 123);
  fields.datesecfrac = 123456;
  return fields;
}

// The last digits of a number, whose sign does not show, in so many places; filled with zeroes, or
// with blanks before the number begins.
std::string last_digits(int64_t value, size_t places, char fill = '0') {
  std::string digits = std::to_string(value < 0 ? -value : value);
  if (digits.size() < places)
    digits.insert(0, places - digits.size(), fill);
  return digits.substr(digits.size() - places);
}

// What a sample would be with other fields in the place of its own, which no two of its numbers
// share. `is_year_blank` where the year is filled with blanks.
std::string long_hand_text(std::string sample, const CS_DATEREC &fields, CS_INT secprec,
                           bool is_year_blank = false) {
  const int64_t hour = fields.datehour;
  const int64_t hour_of_half = hour > 12 ? hour - 12 : hour == 0 ? 12 : hour;
  const bool is_micros = secprec == 1000000;
  const int64_t micros = is_micros ? fields.datesecfrac : int64_t{fields.datemsecond} * 1000;
  const int64_t millis =
      is_micros ? (int64_t{fields.datesecfrac} + 500) / 1000 : int64_t{fields.datemsecond};
  const bool has_name = fields.datemonth >= 0 && fields.datemonth < 12;
  const std::pair<std::string, std::string> replacements[] = {
      {"1997", last_digits(fields.dateyear, 4, is_year_blank ? ' ' : '0')},
      {"97", last_digits(fields.dateyear, 2)},
      {"Mar", has_name ? Com__Shortmonths[fields.datemonth] : "none"},
      {"03", last_digits(int64_t{fields.datemonth} + 1, 2)},
      {"05", last_digits(fields.datedmonth, 2)},
      {" 5", last_digits(fields.datedmonth, 2, ' ')},
      {"16", last_digits(hour, 2)},
      {" 4", last_digits(hour_of_half, 2, ' ')},
      {"07", last_digits(fields.dateminute, 2)},
      {"09", last_digits(fields.datesecond, 2)},
      {"123456", last_digits(micros, 6)},
      {"123", last_digits(millis, 3)},
      {"PM", hour > 11 ? "PM" : "AM"},
  };
  if (sample.find("Mar") != std::string::npos && !has_name)
    return "result -2";
  std::string text;
  while (!sample.empty()) {
    const auto found =
        std::find_if(std::begin(replacements), std::end(replacements),
                     [&](const auto &entry) { return sample.rfind(entry.first, 0) == 0; });
    const bool is_field = found != std::end(replacements);
    text += is_field ? found->second : sample.substr(0, 1);
    sample.erase(0, is_field ? found->first.size() : 1);
  }
  return text;
}

std::string long_hand_date(const Sample &sample, const CS_DATEREC &fields, CS_INT secprec) {
  return long_hand_text(sample.date, fields, secprec);
}

// The time engine fills the year with blanks in two styles: deliberate.
std::string long_hand_time(const Sample &sample, const CS_DATEREC &fields, CS_INT secprec) {
  const bool is_year_blank = sample.style == 100 || sample.style == 109;
  return long_hand_text(text_of(sample.time), fields, secprec, is_year_blank);
}

using Engine = decltype(&com__daterectochar);

std::string run_engine(Engine engine, CS_DATEREC fields, CS_INT style, CS_INT secprec,
                       CS_CHAR **names = com__get_shortmonths()) {
  GuardedBuffer buffer(64);
  const CS_INT length = engine(&fields, buffer.text(), 64, style, names, secprec);
  if (length <= 0)
    return "result " + std::to_string(length);
  EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
  return buffer.contents(static_cast<size_t>(length));
}

std::string show_date(const CS_DATEREC &fields, CS_INT style, CS_INT secprec = 300) {
  return run_engine(com__daterectochar, fields, style, secprec);
}

std::string show_time(const CS_DATEREC &fields, CS_INT style, CS_INT secprec = 300) {
  return run_engine(com__timerectochar, fields, style, secprec);
}

// The text of a value through its own formatter, in a buffer of exactly the length it needs.
template <class Value>
std::string show(CS_INT (*formatter)(Value *, CS_CHAR *, CS_INT, CS_INT, CS_CHAR **) noexcept,
                 Value value, CS_INT style, CS_CHAR **names = com__get_shortmonths()) {
  char wide[80];
  const CS_INT length = formatter(&value, wide, -1, style, names);
  if (length <= 0)
    return "result " + std::to_string(length);
  GuardedBuffer buffer(static_cast<size_t>(length));
  EXPECT_EQ(formatter(&value, buffer.text(), length, style, names), length);
  EXPECT_EQ(buffer.contents(), std::string(wide, static_cast<size_t>(length)));
  return buffer.contents();
}

// Every style of both engines, with the fraction in microseconds and as any other precision has it.
void expect_every_style(const CS_DATEREC &fields) {
  for (const Sample &sample : samples)
    for (const CS_INT secprec : {1000000, 300, 0, 1000, 999999, 1000001, -1000000}) {
      SCOPED_TRACE(testing::Message() << "style " << sample.style << ", precision " << secprec);
      EXPECT_EQ(show_date(fields, sample.style, secprec), long_hand_date(sample, fields, secprec));
      EXPECT_EQ(show_time(fields, sample.style, secprec), long_hand_time(sample, fields, secprec));
    }
}

const CS_DATETIME afternoon = make_datetime(2001, 1, 5, 13, 30, 15, 123);

} // namespace

TEST(Format, EveryStyleInBothEngines) {
  const CS_DATEREC fields = sample_fields();
  const Sample *next = samples;
  for (CS_INT style = -1; style <= 200; ++style) {
    if (next == std::end(samples) || next->style != style) {
      EXPECT_EQ(show_date(fields, style), "result -1") << style;
      EXPECT_EQ(show_time(fields, style), "result -1") << style;
      continue;
    }
    EXPECT_EQ(show_date(fields, style, 1000000), next->date) << style;
    EXPECT_EQ(show_time(fields, style, 1000000), text_of(next->time)) << style;
    // With any other precision the fraction is milliseconds.
    const auto in_millis = [](std::string text) {
      const size_t fraction = text.find("123456");
      return fraction != std::string::npos ? text.replace(fraction, 6, "123000") : text;
    };
    EXPECT_EQ(show_date(fields, style), in_millis(next->date)) << style;
    EXPECT_EQ(show_time(fields, style), in_millis(text_of(next->time))) << style;
    ++next;
  }
  EXPECT_EQ(next, std::end(samples));
  for (const CS_INT style : {INT_MIN, INT_MAX, 256, -100}) {
    EXPECT_EQ(show_date(fields, style), "result -1");
    EXPECT_EQ(show_time(fields, style), "result -1");
  }
}

TEST(Format, YearsBelowAThousand) {
  for (const CS_INT year : {0, 1, 9, 10, 45, 99, 100, 345, 999, 1000, 1005}) {
    CS_DATEREC fields = sample_fields();
    fields.dateyear = year;
    SCOPED_TRACE(testing::Message() << "year " << year);
    expect_every_style(fields);
  }
  CS_DATEREC fields = sample_fields();
  fields.dateyear = 45;
  EXPECT_EQ(show_date(fields, 100), "Mar  5 0045  4:07PM");
  EXPECT_EQ(show_time(fields, 100), "Mar  5   45  4:07PM"); // blanks: deliberate
  EXPECT_EQ(show_date(fields, 109), "Mar  5 0045  4:07:09:123PM");
  EXPECT_EQ(show_time(fields, 109), "Mar  5   45  4:07:09:123PM");
  EXPECT_EQ(show_time(fields, 116), "Mar  5 0045 16:07:09");
  EXPECT_EQ(show_date(fields, 23), "0045-03-05T16:07:09");
  EXPECT_EQ(show_date(fields, 1), "03/05/45");
  fields.dateyear = 5;
  EXPECT_EQ(show_date(fields, 1), "03/05/05");
  EXPECT_EQ(show_date(fields, 112), "00050305");
}

TEST(Format, CutAtEveryLength) {
  for (const Sample &sample : samples)
    for (const bool is_time : {false, true}) {
      const Engine engine = is_time ? com__timerectochar : com__daterectochar;
      const std::string text = text_of(is_time ? sample.time : sample.date);
      const auto full = static_cast<CS_INT>(text.size());
      CS_DATEREC fields = sample_fields();
      for (CS_INT len = 0; len <= full + 12; ++len) {
        GuardedBuffer buffer(static_cast<size_t>(len));
        const CS_INT result =
            engine(&fields, buffer.text(), len, sample.style, com__get_shortmonths(), 1000000);
        const auto shown = static_cast<size_t>(std::min(len, full));
        ASSERT_EQ(result, len < full ? 0 : full) << sample.style << " in " << len;
        ASSERT_EQ(buffer.contents(shown), text.substr(0, shown)) << sample.style << " in " << len;
        ASSERT_TRUE(buffer.is_untouched(shown));
      }
      for (const CS_INT len : {-1, INT_MIN}) {
        GuardedBuffer buffer(text.size());
        ASSERT_EQ(
            engine(&fields, buffer.text(), len, sample.style, com__get_shortmonths(), 1000000),
            full);
        ASSERT_EQ(buffer.contents(), text);
      }
    }
}

// A list of names is needed only where the layout of that engine shows one.
TEST(Format, NullMonthList) {
  for (const Sample &sample : samples)
    for (const bool is_time : {false, true}) {
      const Engine engine = is_time ? com__timerectochar : com__daterectochar;
      const std::string text = text_of(is_time ? sample.time : sample.date);
      const bool has_name = text.find("Mar") != std::string::npos;
      EXPECT_EQ(run_engine(engine, sample_fields(), sample.style, 1000000, nullptr),
                has_name ? "result -2" : text)
          << sample.style;
    }
  CS_DATEREC fields = sample_fields();
  GuardedBuffer buffer(64);
  EXPECT_EQ(com__daterectochar(&fields, buffer.text(), 64, 0, nullptr, 300), -2);
  EXPECT_EQ(com__daterectochar(&fields, buffer.text(), 64, 24, nullptr, 300), -1);
  EXPECT_TRUE(buffer.is_untouched());
}

TEST(Format, MonthsOutsideTheYearHaveNoName) {
  CS_DATEREC fields = sample_fields();
  for (const CS_INT month : {-1, 12, INT_MIN, INT_MAX}) {
    fields.datemonth = month;
    EXPECT_EQ(show_date(fields, 0), "result -2");
    EXPECT_EQ(show_time(fields, 100), "result -2");
    EXPECT_EQ(show_time(fields, 0), " 4:07PM");
  }
  fields.datemonth = 2;
  CS_CHAR *holes[12] = {};
  EXPECT_EQ(run_engine(com__daterectochar, fields, 0, 300, holes), "result -2");
}

TEST(Format, NamesShowNineBytes) {
  CS_CHAR none[] = "", one[] = "m", nine[] = "Septembre", ten[] = "Septembre.", dutch[] = "mrt";
  CS_CHAR *names[] = {none, one, nine, ten, dutch, one, one, one, one, one, one, one};
  CS_DATEREC fields = make_fields(1999, 1, 31, 0, 0, 0);
  const auto show_month = [&](CS_INT month, CS_INT style) {
    fields.datemonth = month - 1;
    return run_engine(com__daterectochar, fields, style, 300, names);
  };
  EXPECT_EQ(show_month(1, 0), " 31 1999 12:00AM");
  EXPECT_EQ(show_month(2, 0), "m 31 1999 12:00AM");
  EXPECT_EQ(show_month(3, 0), "Septembre 31 1999 12:00AM");
  EXPECT_EQ(show_month(4, 0), "Septembre 31 1999 12:00AM");
  EXPECT_EQ(show_month(5, 6), "31 mrt 99");
  EXPECT_EQ(show_month(4, 107), "Septembre 31, 1999");
  // The longest text there is.
  fields.datemonth = 3;
  GuardedBuffer buffer(35);
  EXPECT_EQ(com__daterectochar(&fields, buffer.text(), 35, 138, names, 1000000), 35);
  EXPECT_EQ(buffer.contents(), "Septembre 31 1999 12:00:00.000000AM");
}

TEST(Format, TwelveHourClock) {
  const char *expected[] = {"12:00AM", " 1:00AM", " 2:00AM", " 3:00AM", " 4:00AM", " 5:00AM",
                            " 6:00AM", " 7:00AM", " 8:00AM", " 9:00AM", "10:00AM", "11:00AM",
                            "12:00PM", " 1:00PM", " 2:00PM", " 3:00PM", " 4:00PM", " 5:00PM",
                            " 6:00PM", " 7:00PM", " 8:00PM", " 9:00PM", "10:00PM", "11:00PM"};
  for (CS_INT hour = 0; hour < 24; ++hour) {
    EXPECT_EQ(show_date(make_fields(2000, 1, 1, hour), 17), expected[hour]);
    EXPECT_EQ(show_time(make_fields(2000, 1, 1, hour), 0), expected[hour]);
  }
}

TEST(Format, Fractions) {
  CS_DATEREC fields = make_fields(2000, 1, 1, 0, 0, 59, 7);
  const auto show_micros = [&](CS_INT micros, CS_INT style) {
    fields.datesecfrac = micros;
    return show_date(fields, style, 1000000);
  };
  EXPECT_EQ(show_micros(499, 20), "00:00:59:000");
  EXPECT_EQ(show_micros(500, 20), "00:00:59:001");
  EXPECT_EQ(show_micros(999499, 20), "00:00:59:999");
  // Rounded up to 1000, which shows as 000 and leaves the second alone: deliberate.
  EXPECT_EQ(show_micros(999500, 20), "00:00:59:000");
  EXPECT_EQ(show_micros(999700, 9), "Jan  1 2000 12:00:59:000AM");
  EXPECT_EQ(show_micros(999700, 37), "00:00:59.999700");
  EXPECT_EQ(show_micros(1, 137), "00:00:59.000001");
  EXPECT_EQ(show_date(fields, 20), "00:00:59:007");
  EXPECT_EQ(show_date(fields, 37), "00:00:59.007000");
  EXPECT_EQ(show_date(fields, 37, 0), "00:00:59.007000");
  for (CS_INT millisecond = 0; millisecond < 1000; ++millisecond) {
    char text[32];
    std::snprintf(text, sizeof text, "00:00:59:%03d", millisecond);
    fields.datemsecond = millisecond;
    EXPECT_EQ(show_date(fields, 20), text);
  }
}

// A field shows its last digits, whatever it holds.
TEST(Format, FieldsOutsideTheirRange) {
  CS_DATEREC fields = make_fields(12345, 112, 105, 123, 160, 199, 1234);
  EXPECT_EQ(show_date(fields, 140), "2345-12-05 23:60:99.234000");
  EXPECT_EQ(show_date(fields, 19), "11:60:99:234PM"); // 123 loses 12: 111
  fields = make_fields(-5, -3, -7, -8, -9, -10, -11);
  fields.datesecfrac = -1600;
  EXPECT_EQ(show_date(fields, 40), "05-03-07 08:09:10.011000");
  EXPECT_EQ(show_date(fields, 20, 1000000), "08:09:10:001");
  EXPECT_EQ(show_date(fields, 17), " 8:09AM");
  for (const CS_INT extreme : {INT_MIN, INT_MAX})
    for (const bool has_month : {false, true}) {
      fields = make_fields(extreme, 12, extreme, extreme, extreme, extreme, extreme);
      fields.datesecfrac = extreme;
      if (!has_month)
        fields.datemonth = extreme;
      SCOPED_TRACE(testing::Message() << "fields of " << extreme);
      expect_every_style(fields);
    }
  uint32_t state = 777;
  for (int i = 0; i < 40; ++i) {
    const auto any = [&] { return static_cast<CS_INT>(next_random(state)) >> (i % 32); };
    CS_DATEREC random{any(), any(), any(), any(), any(), any(),
                      any(), any(), any(), any(), any(), any()};
    if (i % 2 == 0)
      random.datemonth = i % 12;
    SCOPED_TRACE(testing::Message() << "random fields " << i);
    expect_every_style(random);
  }
  fields = make_fields(INT_MAX, 12, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX);
  fields.datemonth = fields.datesecfrac = INT_MAX;
  EXPECT_EQ(show_date(fields, 140, 1000000), "3647-48-47 47:47:47.483647");
  EXPECT_EQ(show_date(fields, 20, 1000000), "47:47:47:484");
}

TEST(FormatValue, DateTime) {
  EXPECT_EQ(show(com__datetochar, afternoon, 0), "Jan  5 2001  1:30PM");
  EXPECT_EQ(show(com__datetochar, afternoon, 9), "Jan  5 2001  1:30:15:123PM");
  EXPECT_EQ(show(com__datetochar, afternoon, 1), "01/05/01");
  EXPECT_EQ(show(com__datetochar, afternoon, 101), "01/05/2001");
  EXPECT_EQ(show(com__datetochar, afternoon, 23), "2001-01-05T13:30:15");
  EXPECT_EQ(show(com__datetochar, afternoon, 12), "010105");
  EXPECT_EQ(show(com__datetochar, afternoon, 112), "20010105");
  EXPECT_EQ(show(com__datetochar, afternoon, 37), "13:30:15.123000");
  EXPECT_EQ(show(com__datetochar, make_datetime(2001, 1, 5), 0), "Jan  5 2001 12:00AM");
  EXPECT_EQ(show(com__datetochar, make_datetime(2001, 1, 5, 12), 0), "Jan  5 2001 12:00PM");
  EXPECT_EQ(show(com__datetochar, CS_DATETIME{0, 25919999}, 9), "Jan  1 1900 11:59:59:996PM");
  EXPECT_EQ(show(com__datetochar, afternoon, 24), "result -1");
  EXPECT_EQ(show(com__datetochar, afternoon, 0, nullptr), "result -2");
  // Values outside the calendar show as they crack.
  EXPECT_EQ(show(com__datetochar, CS_DATETIME{2958464, -1}, 140), "0000-01-01 31:04:08.103000");
  EXPECT_EQ(show(com__datetochar, CS_DATETIME{INT_MIN, INT_MIN}, 18), "00:00");
}

TEST(FormatValue, Date4) {
  EXPECT_EQ(show(com__date4tochar, CS_DATETIME4{65535, 1439}, 121), "2079/06/06 23:59:00");
  EXPECT_EQ(show(com__date4tochar, CS_DATETIME4{0, 0}, 9), "Jan  1 1900 12:00:00:000AM");
}

TEST(FormatValue, BigDateTime) {
  const CS_BIGDATETIME value = make_big(2001, 1, 5, 13, 30, 15, 999700);
  EXPECT_EQ(show(com__bigdatetimetochar, value, 9), "Jan  5 2001  1:30:15:000PM");
  EXPECT_EQ(show(com__bigdatetimetochar, value, 140), "2001-01-05 13:30:15.999700");
  EXPECT_EQ(show(com__bigdatetimetochar, make_big(1, 1, 1), 23), "0001-01-01T00:00:00");
  EXPECT_EQ(show(com__bigdatetimetochar, make_big(9999, 12, 31, 23, 59, 59, 999999), 141),
            "Dec 31 9999 11:59:59.999999PM");
  EXPECT_EQ(show(com__bigdatetimetochar, value, 141, nullptr), "result -2");
}

TEST(FormatValue, TimesAlone) {
  const CS_BIGTIME big = 48615123456; // 13:30:15.123456
  EXPECT_EQ(show(com__bigtimetochar, big, 0), " 1:30PM");
  EXPECT_EQ(show(com__bigtimetochar, big, 9), " 1:30:15:123PM");
  EXPECT_EQ(show(com__bigtimetochar, big, 100), "Jan  1    1  1:30PM"); // a blank-padded year
  EXPECT_EQ(show(com__bigtimetochar, big, 109), "Jan  1    1  1:30:15:123PM");
  EXPECT_EQ(show(com__bigtimetochar, big, 16), "Jan  1 0001 13:30:15");
  EXPECT_EQ(show(com__bigtimetochar, big, 141), " 1:30:15.123456PM");
  EXPECT_EQ(show(com__bigtimetochar, big, 1), "\0"s);
  EXPECT_EQ(show(com__bigtimetochar, big, 141, nullptr), " 1:30:15.123456PM");
  const CS_TIME time = afternoon.dttime;
  EXPECT_EQ(show(com__timeatochar, time, 0), " 1:30PM");
  EXPECT_EQ(show(com__timeatochar, time, 100), "Jan  1 1900  1:30PM");
  EXPECT_EQ(show(com__timeatochar, time, 137), "13:30:15.123000");
  EXPECT_EQ(show(com__timeatochar, time, 1), "\0"s);
  EXPECT_EQ(show(com__timeatochar, time, 0, nullptr), " 1:30PM");
  EXPECT_EQ(show(com__timeatochar, time, 16, nullptr), "result -2");
}

TEST(FormatValue, EmptyTextOfATimeWithoutRoom) {
  CS_TIME time = 0;
  GuardedBuffer buffer(0);
  EXPECT_EQ(com__timeatochar(&time, buffer.text(), 0, 1, nullptr), 0);
}

TEST(FormatValue, DateAlone) {
  const CS_DATE value = afternoon.dtdays;
  EXPECT_EQ(show(com__dateatochar, value, 0), "Jan  5 2001");
  EXPECT_EQ(show(com__dateatochar, value, 9), "Jan  5 2001");
  EXPECT_EQ(show(com__dateatochar, value, 100), "Jan  5 2001 12:00AM");
  EXPECT_EQ(show(com__dateatochar, value, 121), "2001/01/05 00:00:00");
  EXPECT_EQ(show(com__dateatochar, value, 19), "12:00:00:000AM");
  EXPECT_EQ(show(com__dateatochar, value, 20), "00:00:00:000");
  EXPECT_EQ(show(com__dateatochar, value, 37), "00:00:00.000000");
  EXPECT_EQ(show(com__dateatochar, value, 109), "Jan  5 2001 12:00:00:000AM");
  EXPECT_EQ(show(com__dateatochar, value, 140), "2001-01-05 00:00:00.000000");
  EXPECT_EQ(show(com__dateatochar, CS_DATE{-693595}, 23), "0001-01-01T00:00:00");
  EXPECT_EQ(show(com__dateatochar, value, 0, nullptr), "result -2");
  EXPECT_EQ(show(com__dateatochar, value, 99), "result -1");
  for (CS_INT len = 0; len < 14; ++len) {
    GuardedBuffer buffer(static_cast<size_t>(len));
    CS_DATE date = value;
    EXPECT_EQ(com__dateatochar(&date, buffer.text(), len, 9, com__get_shortmonths()),
              len < 11 ? 0 : 11);
    const auto shown = static_cast<size_t>(std::min(len, 11));
    EXPECT_EQ(buffer.contents(shown), std::string("Jan  5 2001").substr(0, shown));
  }
}

// The values show as their fields do, in every style; a date has midnight.
TEST(FormatValue, EveryStyle) {
  const CS_DATEREC fields = make_fields(2001, 1, 5, 13, 30, 15, 123);
  CS_DATEREC micro_fields = fields;
  micro_fields.datesecfrac = 123456;
  const CS_DATEREC midnight = make_fields(2001, 1, 5);
  const CS_DATEREC minutes = make_fields(2001, 1, 5, 13, 30);
  const CS_DATEREC time = make_fields(1900, 1, 1, 13, 30, 15, 123);
  CS_DATEREC bigtime = make_fields(1, 1, 1, 13, 30, 15);
  bigtime.datesecfrac = 123456;
  const CS_BIGDATETIME big = make_big(2001, 1, 5, 13, 30, 15, 123456);
  const auto days = static_cast<CS_USHORT>(afternoon.dtdays);
  for (const Sample &sample : samples) {
    SCOPED_TRACE(testing::Message() << "style " << sample.style);
    const CS_INT style = sample.style;
    EXPECT_EQ(show(com__datetochar, afternoon, style), long_hand_date(sample, fields, 300));
    EXPECT_EQ(show(com__bigdatetimetochar, big, style),
              long_hand_date(sample, micro_fields, 1000000));
    EXPECT_EQ(show(com__date4tochar, CS_DATETIME4{days, 810}, style),
              long_hand_date(sample, minutes, 300));
    EXPECT_EQ(show(com__timeatochar, afternoon.dttime, style), long_hand_time(sample, time, 300));
    EXPECT_EQ(show(com__bigtimetochar, big % micros_per_day, style),
              long_hand_time(sample, bigtime, 1000000));
    const bool is_date_only = style == 0 || style == 9;
    EXPECT_EQ(show(com__dateatochar, afternoon.dtdays, style),
              is_date_only ? "Jan  5 2001" : long_hand_date(sample, midnight, 300));
  }
}

TEST(LegacyText, FillsWithBlanks) {
  GuardedBuffer source(8, 3);
  source.set(afternoon);
  GuardedBuffer dest(30);
  EXPECT_EQ(com_date2char(source.data(), 8, dest.data(), 30, nullptr), 26);
  EXPECT_EQ(dest.contents(), "Jan  5 2001  1:30:15:123PM    ");
  EXPECT_EQ(com_date2char_ex(source.data(), 8, dest.data(), 30, nullptr, 23), 19);
  EXPECT_EQ(dest.contents(), "2001-01-05T13:30:15           ");
  CS_CHAR name[] = "janv";
  CS_CHAR *names[12] = {name};
  EXPECT_EQ(com_date2char(source.data(), 8, dest.data(), 30, names), 27);
  EXPECT_EQ(dest.contents(), "janv  5 2001  1:30:15:123PM   ");
}

TEST(LegacyText, RoomAndNullValues) {
  GuardedBuffer source(8);
  source.set(afternoon);
  for (CS_INT room = 0; room <= 27; ++room) {
    GuardedBuffer dest(static_cast<size_t>(room));
    EXPECT_EQ(com_date2char(source.data(), 8, dest.data(), room, nullptr), room < 26 ? -1 : 26);
    EXPECT_EQ(dest.contents(), std::string("Jan  5 2001  1:30:15:123PM ").substr(0, dest.size()));
  }
  GuardedBuffer dest(26);
  EXPECT_EQ(com_date2char(nullptr, 8, dest.data(), 26, nullptr), 0);
  EXPECT_EQ(com_date2char(source.data(), 0, dest.data(), 26, nullptr), 0);
  // An unknown style writes nothing, blanks neither.
  for (const CS_INT style : {30, -1, 142, INT_MIN, INT_MAX})
    for (const CS_INT room : {26, 0, -1})
      EXPECT_EQ(com_date2char_ex(source.data(), 8, dest.data(), room, nullptr, style), -1);
  // Nor does a list without the name.
  CS_CHAR *holes[12] = {};
  EXPECT_EQ(com_date2char(source.data(), 8, dest.data(), 26, holes), -2);
  EXPECT_TRUE(dest.is_untouched());
  // A negative capacity has no limit, and nothing is filled.
  EXPECT_EQ(com_date2char(source.data(), 8, dest.data(), -1, nullptr), 26);
  EXPECT_EQ(dest.contents(), "Jan  5 2001  1:30:15:123PM");
}

TEST(Writers, Number) {
  const auto write = [](CS_INT value, CS_CHAR pad, CS_INT len) {
    GuardedBuffer buffer(16);
    const CS_INT length = com__cpint(buffer.text(), value, pad, len);
    EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
    return buffer.contents(static_cast<size_t>(length));
  };
  EXPECT_EQ(write(5, 0, 2), " 5");
  EXPECT_EQ(write(5, ':', 2), " 5:");
  EXPECT_EQ(write(5, ':', -2), "05:");
  EXPECT_EQ(write(2001, '/', 2), "01/");
  EXPECT_EQ(write(2001, 0, -2), "01");
  EXPECT_EQ(write(0, 0, 3), "  0");
  EXPECT_EQ(write(0, 0, -3), "000");
  EXPECT_EQ(write(7, 0, 0), "");
  EXPECT_EQ(write(7, 'x', 0), "x");
  EXPECT_EQ(write(105, 0, 2), "05");
  EXPECT_EQ(write(-42, 0, 4), "  42");
  EXPECT_EQ(write(INT_MIN, 0, 12), "  2147483648");
  EXPECT_EQ(write(INT_MAX, ' ', -12), "002147483647 ");
}

TEST(Writers, Name) {
  const auto write = [](const char *name, CS_CHAR pad, CS_INT maxlen) {
    GuardedBuffer buffer(16);
    const CS_INT length = com__cpchar(buffer.text(), const_cast<char *>(name), pad, maxlen);
    EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
    return buffer.contents(static_cast<size_t>(length));
  };
  EXPECT_EQ(write("March", ' ', 9), "March ");
  EXPECT_EQ(write("March", 0, 9), "March");
  EXPECT_EQ(write("March", ' ', 5), "March ");
  EXPECT_EQ(write("March", ' ', 3), "Mar ");
  EXPECT_EQ(write("March", 0, 0), "");
  EXPECT_EQ(write("March", 0, -1), "");
  EXPECT_EQ(write("", ',', 9), ",");
}

TEST(Writers, PlainNumber) {
  const auto write = [](CS_INT value, CS_INT len) {
    GuardedBuffer buffer(12);
    const CS_INT length = com__itochar(value, buffer.text(), len);
    EXPECT_TRUE(buffer.is_untouched(static_cast<size_t>(length)));
    return buffer.contents(static_cast<size_t>(length));
  };
  EXPECT_EQ(write(0, 1), "0");
  EXPECT_EQ(write(9999, 4), "9999");
  EXPECT_EQ(write(10000, 4), "*");
  EXPECT_EQ(write(-999, 4), "-999");
  EXPECT_EQ(write(-1000, 4), "*");
  EXPECT_EQ(write(-1000, 0), "-1000");
  EXPECT_EQ(write(INT_MIN, 0), "-2147483648");
  EXPECT_EQ(write(INT_MIN, 11), "-2147483648");
  EXPECT_EQ(write(INT_MIN, 10), "*");
  EXPECT_EQ(write(INT_MAX, -1), "2147483647");
}

TEST(FormatChecks, NullPointers) {
  CS_DATEREC fields = sample_fields();
  CS_DATETIME value = afternoon;
  CS_DATETIME4 small{};
  CS_INT number = 0;
  CS_UBIGINT big = 0;
  char text[64];
  constexpr const char *unit = "datetime_format.cpp";
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__daterectochar(nullptr, text, 64, 0, nullptr, 300));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__daterectochar(&fields, nullptr, 64, 0, nullptr, 300));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__timerectochar(nullptr, text, 64, 0, nullptr, 300));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__timerectochar(&fields, nullptr, 64, 0, nullptr, 300));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datetochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__datetochar(&value, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__date4tochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__date4tochar(&small, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigdatetimetochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigdatetimetochar(&big, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigtimetochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__bigtimetochar(&big, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__timeatochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__timeatochar(&number, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__dateatochar(nullptr, text, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__dateatochar(&number, nullptr, 64, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__cpint(nullptr, 1, 0, 2));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__cpchar(nullptr, text, 0, 2));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__cpchar(text, nullptr, 0, 2));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__itochar(1, nullptr, 2));
}
