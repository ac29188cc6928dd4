// Dates and times from free-form text, compared with a second interpreter that follows the rules step
// by step.
#include <array>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "date_text_reference.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "test_charset.h"
#include "test_scale.h"
#include "zrvcomn/datetime.h"

using zrvtest::GuardedBuffer;
using zrvtest::TestCharset;

namespace {

using Token = struct com__datecrack;
using SlowResult = zrvtest::DateParse;
using zrvtest::untouched_year;

// ---- the library ----

struct Setting {
  int partonly = 0, style = 0, order = 1;
  CS_INT type = CS_TYPE_DATETIME;
  bool has_names = true;
  CS_ATTRIB *set = nullptr;
};

SlowResult parse(const std::string &text, const Setting &setting = {}) {
  GuardedBuffer buffer(text.size());
  std::memcpy(buffer.data(), text.data(), text.size());
  CS_DATEREC record;
  std::memset(&record, 0x5C, sizeof record);
  record.dateyear = untouched_year;
  CS_BOOL truncated = 77;
  SlowResult result;
  CS_CHAR **const names = setting.has_names ? com__get_months() : nullptr;
  CS_CHAR **const short_names = setting.has_names ? com__get_shortmonths() : nullptr;
  result.status = xdaterecfromchar(&record, buffer.text(), static_cast<CS_INT>(text.size()),
                                   setting.partonly, setting.style, setting.order, names,
                                   short_names, setting.set, setting.type, &truncated);
  result.fields = {record.dateyear,    record.datemonth,   record.datedmonth,
                   record.datehour,    record.dateminute,  record.datesecond,
                   record.datemsecond, record.datesecfrac, record.datesecprec};
  EXPECT_TRUE(truncated == 0 || truncated == 1);
  result.truncated = truncated == 1;
  EXPECT_EQ(record.datedyear, 0x5C5C5C5C);
  EXPECT_EQ(record.datedweek, 0x5C5C5C5C);
  EXPECT_EQ(record.datetzone, 0x5C5C5C5C);
  return result;
}

int status_of(const std::string &text, const Setting &setting = {}) {
  return parse(text, setting).status;
}

// A value as YYYY-MM-DD hh:mm:ss.fff, or its result.
std::string datetime(std::string text, int style = 0, int order = 1, CS_ATTRIB *set = nullptr) {
  CS_DATETIME value = {77, 77};
  CS_BOOL truncated = 77;
  const int status =
      com__datefromchar_mb(&value, text.data(), static_cast<CS_INT>(text.size()), style, order,
                           com__get_months(), com__get_shortmonths(), set, &truncated);
  if (status != 0)
    return "result " + std::to_string(status);
  CS_DATEREC fields;
  com_datecrack(&value, &fields);
  com_timecrack(&value, &fields);
  char shown[64];
  std::snprintf(shown, sizeof shown, "%04d-%02d-%02d %02d:%02d:%02d.%03d%s", fields.dateyear,
                fields.datemonth + 1, fields.datedmonth, fields.datehour, fields.dateminute,
                fields.datesecond, fields.datemsecond, truncated == 1 ? "+" : "");
  return shown;
}

std::string bigdatetime(std::string text, int order = 1, int style = 0) {
  CS_BIGDATETIME value = 77;
  CS_BOOL truncated = 77;
  const int status = com__bigdatetimefromchar_mb(
      &value, text.data(), static_cast<CS_INT>(text.size()), style, order, com__get_months(),
      com__get_shortmonths(), nullptr, &truncated);
  EXPECT_NE(truncated, 77);
  EXPECT_NE(truncated, 1);
  if (status != 0)
    return "result " + std::to_string(status);
  char shown[64];
  const CS_INT length =
      com__bigdatetimetochar(&value, shown, sizeof shown, 140, com__get_shortmonths());
  return std::string(shown, static_cast<size_t>(length));
}

// The value of one of the entry points for parts, or its result.
template <class Value, class Entry>
std::string part(Entry entry, std::string text, int order = 1, int style = 0) {
  Value value = 77;
  const int status = entry(&value, text.data(), static_cast<CS_INT>(text.size()), style, order,
                           com__get_months(), com__get_shortmonths(), nullptr, nullptr);
  return status != 0 ? "result " + std::to_string(status) : std::to_string(value);
}

std::string read_token(const std::string &text, bool has_names = true, CS_ATTRIB *set = nullptr,
                       size_t *left = nullptr) {
  GuardedBuffer buffer(text.size());
  std::memcpy(buffer.data(), text.data(), text.size());
  CS_CHAR *at = buffer.text();
  auto length = static_cast<CS_INT>(text.size());
  Token token{-7, -7, -7};
  const int kind = datetoken(&at, &length, &token, has_names ? com__get_months() : nullptr,
                             has_names ? com__get_shortmonths() : nullptr, set);
  EXPECT_EQ(kind, token.dctoken);
  EXPECT_EQ(at + length, buffer.text() + text.size());
  if (left != nullptr)
    *left = static_cast<size_t>(length);
  return std::to_string(kind) + "/" + std::to_string(token.dclength) + "/" +
         std::to_string(token.dcvalue);
}

} // namespace

TEST(DateTokens, Kinds) {
  EXPECT_EQ(read_token(""), "7/0/0");
  EXPECT_EQ(read_token("    "), "7/0/0");
  EXPECT_EQ(read_token("/"), "6/0/0");
  EXPECT_EQ(read_token("-"), "6/0/0");
  EXPECT_EQ(read_token("."), "6/0/-1");
  EXPECT_EQ(read_token(","), "5/0/0");
  EXPECT_EQ(read_token(":"), "2/0/0");
  EXPECT_EQ(read_token("T"), "11/0/0");
  EXPECT_EQ(read_token("t"), "11/0/0");
  EXPECT_EQ(read_token("7"), "0/1/7");
  EXPECT_EQ(read_token("07"), "0/2/7");
  EXPECT_EQ(read_token("999"), "0/3/999");
  EXPECT_EQ(read_token("0001"), "1/4/1");
  EXPECT_EQ(read_token("12345"), "12/5/12345");
  EXPECT_EQ(read_token("123456"), "10/6/123456");
  EXPECT_EQ(read_token("1234567"), "8/7/1234567");
  EXPECT_EQ(read_token("99999999"), "10/8/99999999");
  EXPECT_EQ(read_token("am"), "3/0/0");
  EXPECT_EQ(read_token("PM"), "3/0/1");
  EXPECT_EQ(read_token("pM"), "3/0/1");
  EXPECT_EQ(read_token("January"), "4/0/0");
  EXPECT_EQ(read_token("DEC"), "4/0/11");
  EXPECT_EQ(read_token("may"), "4/0/4");
  for (const char *text : {"123456789", "1234567890123456789012345", "Janu", "Januaryx", "A", "pmx",
                           "xpm", "\t", "+", "(", "\xE9", "ten"}) {
    const std::string token = read_token(text);
    EXPECT_EQ(token.substr(0, token.find('/')), text[0] == 't' ? "11" : "8") << text;
  }
}

TEST(DateTokens, MoveThroughTheText) {
  size_t left = 0;
  read_token("  12:30", true, nullptr, &left);
  EXPECT_EQ(left, 3U);
  read_token("Tuesday", true, nullptr, &left);
  EXPECT_EQ(left, 6U); // one character
  read_token("Jan5", true, nullptr, &left);
  EXPECT_EQ(left, 1U);
  read_token("5Jan", true, nullptr, &left);
  EXPECT_EQ(left, 3U);
}

TEST(DateTokens, WithoutNamesNoMonth) {
  EXPECT_EQ(read_token("Jan", false), "8/0/0");
  EXPECT_EQ(read_token("pm", false), "3/0/1");
  Token token;
  CS_CHAR text[] = "Jan", *at = text;
  CS_INT length = 3;
  EXPECT_EQ(datetoken(&at, &length, &token, com__get_months(), nullptr, nullptr), DT_ERROR);
  at = text, length = 3;
  EXPECT_EQ(datetoken(&at, &length, &token, nullptr, com__get_shortmonths(), nullptr), DT_ERROR);
  at = text, length = -3;
  EXPECT_EQ(datetoken(&at, &length, &token, nullptr, nullptr, nullptr), DT_END);
}

// Characters of the digit class that stand for no digit make no number, however many they are.
TEST(DateTokens, DigitsWithoutAForm) {
  CS_TYPE_MAP types = *com_get_typemap();
  types.chmap[size_t{'#'}].char_type = CS_CTYPE_DIGIT;
  CS_ATTRIB set = *com_get_charattrib();
  set.cs_type_map = &types;
  for (const char *text : {"#", "1#", "########", "9999999#", "#########"}) {
    const std::string token = read_token(text, true, &set);
    EXPECT_EQ(token.substr(0, 4), "8/" + std::to_string(std::strlen(text)) + "/") << text;
  }
}

TEST(DateTokens, Found) {
  Token tokens[] = {{DT_USED, 0, 0},   {DT_NUMBER, 1, 5}, {DT_COLON, 0, 0},
                    {DT_NUMBER, 1, 6}, {DT_END, 0, 0},    {DT_ISOT, 0, 0}};
  EXPECT_EQ(findtoken(tokens, DT_NUMBER), 1);
  EXPECT_EQ(findtoken(tokens, DT_COLON), 2);
  EXPECT_EQ(findtoken(tokens, DT_USED), 0);
  EXPECT_EQ(findtoken(tokens, DT_ISOT), -1); // behind the end
  EXPECT_EQ(findtoken(tokens, DT_END), -1);
  EXPECT_EQ(findtoken(tokens, -DT_USED), 1);
  EXPECT_EQ(findtoken(tokens + 1, -DT_COLON), 0);
  Token used[] = {{DT_USED, 0, 0}, {DT_END, 0, 0}};
  EXPECT_EQ(findtoken(used, -DT_USED), -1);
}

TEST(DateNames, WholeNamesOnly) {
  auto look = [](std::string word, std::vector<std::string> names, CS_ATTRIB *set = nullptr) {
    std::vector<CS_CHAR *> list;
    for (std::string &name : names)
      list.push_back(name.data());
    return datelookup(word.data(), static_cast<CS_INT>(word.size()), list.data(),
                      static_cast<int>(list.size()), set);
  };
  EXPECT_EQ(look("may", {"April", "May", "MAY"}), 1); // the first match
  EXPECT_EQ(look("ma", {"April", "May"}), -1);
  EXPECT_EQ(look("mays", {"April", "May"}), -1);
  EXPECT_EQ(look("", {"x", ""}), 1);
  const std::string thirty(30, 'x'), more(31, 'x');
  EXPECT_EQ(look(thirty, {"x", thirty}), 1);
  EXPECT_EQ(look(more, {more}), -1);
  EXPECT_EQ(look(thirty, {more}), -1);
  // As blind to case as the reduction is: a set that keeps case tells them apart.
  TestCharset wide = TestCharset::double_byte(true), utf8 = TestCharset::utf8();
  EXPECT_EQ(look("MAY", {"May"}, wide.get()), -1);
  EXPECT_EQ(look("May", {"May"}, wide.get()), 0);
  EXPECT_EQ(look(wide.wide('M') + "a" + wide.wide('y'), {"x", "May"}, wide.get()), 1);
  EXPECT_EQ(look("May", {wide.wide('M') + wide.wide('a') + wide.wide('y')}, wide.get()), 0);
  // Letters with a reduction, and one without, which stays as it is.
  EXPECT_EQ(look("F\xC3\xA9vr", {"f\xC3\x89VR"}, utf8.get()), 0);
  EXPECT_EQ(look("fevr", {"f\xC3\x89VR"}, utf8.get()), 0);
  EXPECT_EQ(look("M\xC3\xA4rz", {"m\xC3\xA4rz"}, utf8.get()), 0);
  EXPECT_EQ(look("M\xC3\x84rz", {"m\xC3\xA4rz"}, utf8.get()), -1);
  EXPECT_EQ(
      datelookup(const_cast<CS_CHAR *>("PM"), 2, const_cast<CS_CHAR **>(Com__ampm), 2, nullptr), 1);
}

TEST(DateHours, AmAndPm) {
  auto check = [](CS_INT hour, int pm) {
    CS_DATEREC fields;
    fields.datehour = hour;
    return com__amcheck(&fields, pm) == 0 ? std::to_string(fields.datehour) : "conflict";
  };
  EXPECT_EQ(check(0, 1), "conflict");
  EXPECT_EQ(check(1, 1), "13");
  EXPECT_EQ(check(11, 1), "23");
  EXPECT_EQ(check(12, 1), "12");
  EXPECT_EQ(check(13, 1), "13");
  EXPECT_EQ(check(99, 1), "99");
  EXPECT_EQ(check(0, 0), "0");
  EXPECT_EQ(check(11, 0), "11");
  EXPECT_EQ(check(12, 0), "0");
  EXPECT_EQ(check(13, 0), "conflict");
}

TEST(DateYears, OfTwoDigits) {
  EXPECT_EQ(com__year2digit(0), 2000);
  EXPECT_EQ(com__year2digit(49), 2049);
  EXPECT_EQ(com__year2digit(50), 1950);
  EXPECT_EQ(com__year2digit(99), 1999);
  EXPECT_EQ(com__year2digit(100), 1);
  EXPECT_EQ(com__year2digit(-1), 1);
}

TEST(TextToDatetime, Shapes) {
  const struct {
    const char *text, *result;
  } rows[] = {
      {"", "1900-01-01 00:00:00.000"},
      {"     ", "1900-01-01 00:00:00.000"},
      {"12:30", "1900-01-01 12:30:00.000"},
      {"5pm", "1900-01-01 17:00:00.000"},
      {"12 PM", "1900-01-01 12:00:00.000"},
      {"12 AM", "1900-01-01 00:00:00.000"},
      {"13:00 PM", "1900-01-01 13:00:00.000"},
      {"Jan 5 2001", "2001-01-05 00:00:00.000"},
      {"5 January 2001", "2001-01-05 00:00:00.000"},
      {"2001 Jan", "2001-01-01 00:00:00.000"},
      {"Jan2001", "2001-01-01 00:00:00.000"},
      {"5-Jan-01", "2001-01-05 00:00:00.000"},
      {"5/Jan,01", "2001-01-05 00:00:00.000"},
      {"Jan 5, 01", "2001-01-05 00:00:00.000"},
      {"Jan, 5, 2001", "2001-01-05 00:00:00.000"},
      {"Jan 5, 2001 10:30:15.5 PM", "2001-01-05 22:30:15.500"},
      {"12/31/99", "1999-12-31 00:00:00.000"},
      {"1999/12/31", "1999-12-31 00:00:00.000"},
      {"12/1999/31", "1999-12-31 00:00:00.000"},
      {"1-2/03", "2003-01-02 00:00:00.000"},
      {"1/2.03", "2003-01-02 00:00:00.000"},
      {"1 2 03 / -", "2003-01-02 00:00:00.000"}, // where the separators stand does not count
      {"19991231", "1999-12-31 00:00:00.000"},
      {"991231", "1999-12-31 00:00:00.000"},
      {"491231", "2049-12-31 00:00:00.000"},
      {"1999", "1999-01-01 00:00:00.000"},
      {"2001-02-03T04:05:06", "2001-02-03 04:05:06.000"},
      {"2001-02-03 t 04:05", "2001-02-03 04:05:00.000"},
      {"20010203T4pm", "2001-02-03 16:00:00.000"},
      {"2001-02-03T", "2001-02-03 00:00:00.000"},
      {"T12:30", "1900-01-01 12:30:00.000"},
      {"12:30 1/2/2001", "2001-01-02 12:30:00.000"},
      {"1/2/2001 12:30", "2001-01-02 12:30:00.000"},
      {"12:30:15:5", "1900-01-01 12:30:15.006"}, // 5 milliseconds, two ticks
      {"12:30:15:999", "1900-01-01 12:30:15.996"},
      {"12:30.5", "1900-01-01 12:30:00.500"},
      {"12:30:15.9996", "1900-01-01 12:30:15.996+"}, // 999 milliseconds, not the next second
      {"31.12.1999", "result 2"},
      {"2/30/2001", "result 3"},
      {"0/1/2001", "result 2"},
      {"1/0/2001", "result 3"},
      {"1/1/0000", "result 1"},
      {"1/1/1752", "result 1"}, // before the first CS_DATETIME
      {"12/31/1752", "result 1"},
      {"1/1/1753", "1753-01-01 00:00:00.000"},
      {"12/31/9999 23:59:59.999", "9999-12-31 23:59:59.996"},
      {"24:00", "result 1"},
      {"12:60", "result 1"},
      {"12:30:60", "result 1"},
      {"24:00 1/40/2001", "result 1"}, // the time is made first
      {"0 PM", "result 9"},
      {"13 AM", "result 9"},
      {"0:30 PM", "result 9"},
      {"1/2/100", "result 1"},
      {"Jan 5 100", "result 1"},
      {"Jan", "result -1"},
      {"Jan 5", "result -1"},
      {"12-31", "result -1"},
      {"2001/1", "result -1"},
      {"2001/1/", "result -1"},
      {"1234567", "result -1"},
      {"Tuesday", "result -1"},
      {"Janu 5 2001", "result -1"},
      {"2001-02-03T04:05 5", "result -1"},
      {"T2001-02-03", "result -1"},
      {"2001:30", "result -1"},
      {"12:2001", "result -1"},
      {"12:", "result -1"},
      {"12:30:", "result -1"},
      {"12:30:15:", "result -1"},
      {"12:30:15.", "result -1"},
      {"12:30:15.Jan", "result -1"},
      {"12:30:15.99999999", "result -1"}, // more than 999 milliseconds
      {"2001 pm", "result -1"},
      {":30", "result -2"},
      {"PM 12:30", "result -2"},
      {"pm", "result -2"},
      {".5", "result -2"},
      {"5", "result -2"},
      {"12345", "result -2"},
      {",", "result -2"},
      {"1/2/3/", "result -2"},
      {"1/2/3 4", "result -2"},
      {"1999 1999", "result -2"},
      {"Jan 5 2001 2002", "result -2"},
      {"Jan Jan 5 2001", "result -2"},
      {"12:30 :15", "1900-01-01 12:30:15.000"},
      {"12:30 5 pm", "result -2"},
      {"1:30 12:30", "result -2"},
  };
  for (const auto &row : rows)
    EXPECT_EQ(datetime(row.text), row.result) << row.text;
}

TEST(TextToDatetime, Orders) {
  const char *const results[] = {nullptr,      "2003-01-02", "2003-02-01", "2001-02-03",
                                 "2001-03-02", "2002-01-03", "2002-03-01"};
  for (int order = 1; order <= 6; ++order)
    EXPECT_EQ(datetime("1/2/3", 0, order), results[order] + std::string(" 00:00:00.000")) << order;
  for (int order : {0, 7, -1, 2147483647})
    EXPECT_EQ(datetime("1/2/3", 0, order), "result -1") << order;
  // A year of four digits that leads wins over the order, but not over the fourth.
  EXPECT_EQ(datetime("1999/12/31", 0, 2), "1999-12-31 00:00:00.000");
  EXPECT_EQ(datetime("1999/12/31", 0, 0), "1999-12-31 00:00:00.000");
  EXPECT_EQ(datetime("1999/31/12", 0, 4), "1999-12-31 00:00:00.000");
  EXPECT_EQ(datetime("1999/12/31", 0, 4), "result 2");
  EXPECT_EQ(datetime("12:30 1999/12/31", 0, 2), "result 2"); // it does not lead
  EXPECT_EQ(datetime("31/12/1999", 9, 2), "1999-12-31 00:00:00.000");
}

TEST(TextToDatetime, Styles) {
  // By style: the order, and what becomes of years of two and of four digits.
  const struct {
    std::vector<int> styles;
    const char *two, *four;
  } rows[] = {
      {{1, 10}, "2003-01-02", "-1"},
      {{2, 11, 21, 22, 23, 40}, "2001-02-03", "-1"},
      {{3, 4, 5}, "2003-02-01", "-1"},
      {{101, 110}, "-1", "2005-01-02"},
      {{102, 111, 121, 122, 140}, "-1", "2005-01-02"},
      {{103, 104, 105}, "-1", "2005-02-01"},
      {{0, 9}, "2003-01-02", "2005-01-02"},
  };
  std::vector<bool> known(256);
  auto shown = [](const std::string &text, int style) {
    const std::string result = datetime(text, style);
    return result.substr(0, 10) == "result -1" ? "-1" : result.substr(0, 10);
  };
  for (const auto &row : rows)
    for (int style : row.styles) {
      known[static_cast<size_t>(style)] = true;
      EXPECT_EQ(shown("1/2/3", style), row.two) << style;
      EXPECT_EQ(shown("1/2/2005", style), row.four) << style;
    }
  for (int style = -1; style < 256; ++style)
    if (style < 0 || !known[static_cast<size_t>(style)]) {
      EXPECT_EQ(datetime("1/2/2005", style), "result -1") << style;
      EXPECT_EQ(datetime("Jan 2 2005", style), "2005-01-02 00:00:00.000") << style;
      EXPECT_EQ(datetime("20050102", style), "2005-01-02 00:00:00.000") << style;
    }
}

TEST(TextToDatetime, FractionsOfEveryLength) {
  const struct {
    const char *digits;
    const char *milli, *micro;
  } rows[] = {
      {"1", "100", "100000"},         {"12", "120", "120000"},
      {"123", "123", "123000"},       {"1234", "123+", "123400"},
      {"1235", "124+", "123500"},     {"12345", "123+", "123450"},
      {"123456", "123+", "123456"},   {"123500", "124+", "123500"},
      {"9994", "999+", "999400"},     {"9995", "999+", "999500"},
      {"999999", "999+", "999999"},   {"0", "0", "0"},
      {"000000", "0", "0"},           {"0004", "0+", "400"},
      {"0005", "1+", "500"},          {"1234567", "-1", "-1"},
      {"00012345", "12+", "12345"}, // eight digits as they stand
      {"00999499", "999+", "999499"}, {"01000499", "999+", "1000499"},
      {"01000500", "-1", "1000500"},  {"123456789", "-1", "-1"},
  };
  for (const auto &row : rows)
    for (CS_INT type : {CS_TYPE_DATETIME, CS_TYPE_DATETIME4, CS_TYPE_DATE, CS_TYPE_TIME,
                        CS_TYPE_BIGDATETIME, CS_TYPE_BIGTIME}) {
      Setting setting;
      setting.type = type;
      const SlowResult result = parse(std::string("1:2:3.") + row.digits, setting);
      const bool micro = type == CS_TYPE_BIGDATETIME || type == CS_TYPE_BIGTIME;
      const int value = micro ? result.fields.fraction : result.fields.millis;
      EXPECT_EQ(result.status == DT_NO_DATE ? std::to_string(value) + (result.truncated ? "+" : "")
                                            : std::to_string(result.status),
                micro ? row.micro : row.milli)
          << row.digits << " " << type;
      if (result.status == DT_NO_DATE) {
        EXPECT_EQ(result.fields.precision, micro ? 1000000 : 0);
      }
    }
}

// 20 tokens, the end not counted, and no more.
TEST(TextToDatetime, TwentyTokens) {
  std::string commas(20, ',');
  EXPECT_EQ(status_of(commas), DT_LEFTOVER);
  EXPECT_EQ(status_of(commas + ","), DT_BAD_SYNTAX);
  EXPECT_EQ(status_of(commas + "   "), DT_LEFTOVER);
  EXPECT_EQ(status_of(commas + "x"), DT_BAD_SYNTAX);
  // With one kind of token in each place, each kind at the last place.
  for (const char *last : {"1", "1999", ":", "am", "Jan", ",", "/", "991231", "T", "12345"})
    for (int count : {19, 20, 21}) {
      std::string text;
      for (int i = 1; i < count; ++i)
        text += ",";
      text += last;
      const SlowResult expected = zrvtest::slow_date_parse(text, 0, 0, 1, true, false);
      EXPECT_EQ(status_of(text), expected.status) << count << " " << last;
      if (count == 21) {
        EXPECT_EQ(expected.status, -1);
      }
    }
}

TEST(TextToBigdatetime, Values) {
  EXPECT_EQ(bigdatetime(""), "0001-01-01 00:00:00.000000");
  EXPECT_EQ(bigdatetime("12:30"), "0001-01-01 12:30:00.000000");
  EXPECT_EQ(bigdatetime("12:30:15.9996"), "0001-01-01 12:30:15.999600");
  EXPECT_EQ(bigdatetime("Jan 5 2001 12:30:15.123456"), "2001-01-05 12:30:15.123456");
  EXPECT_EQ(bigdatetime("12:30:15:5 1/2/2003"), "2003-01-02 12:30:15.005000");
  EXPECT_EQ(bigdatetime("00010101"), "0001-01-01 00:00:00.000000");
  EXPECT_EQ(bigdatetime("99991231 23:59:59.999999"), "9999-12-31 23:59:59.999999");
  EXPECT_EQ(bigdatetime("12:30:15.01000000"), "result 1"); // a second in microseconds
  EXPECT_EQ(bigdatetime("24:00"), "result 1");
  EXPECT_EQ(bigdatetime("13/1/2001"), "result 2");
  EXPECT_EQ(bigdatetime("2/29/2001"), "result 3");
  EXPECT_EQ(bigdatetime("00000101"), "result 1");
  EXPECT_EQ(bigdatetime("Jan"), "result -1");
  EXPECT_EQ(bigdatetime("5"), "result -2");
  EXPECT_EQ(bigdatetime("1999/31/12", 4), "1999-12-31 00:00:00.000000");
}

TEST(TextToDatetime4, RoundsToTheMinute) {
  auto read = [](std::string text) {
    CS_DATETIME4 value = {7, 7};
    const int status =
        com__date4fromchar_mb(&value, text.data(), static_cast<CS_INT>(text.size()), 0, 1,
                              com__get_months(), com__get_shortmonths(), nullptr, nullptr);
    return std::to_string(status) + " " + std::to_string(value.days) + " " +
           std::to_string(value.minutes);
  };
  EXPECT_EQ(read("1/2/1900 0:30"), "0 1 30");
  EXPECT_EQ(read("1/2/1900 0:30:29.99"), "0 1 30");
  EXPECT_EQ(read("1/2/1900 0:30:30"), "0 1 31");
  EXPECT_EQ(read("6/6/2079 23:59"), "0 65535 1439");
  EXPECT_EQ(read("6/6/2079 23:59:30"), "1 7 7");
  EXPECT_EQ(read("6/7/2079"), "1 7 7");
  EXPECT_EQ(read("12/31/1899"), "1 7 7");
  EXPECT_EQ(read("x"), "-1 7 7");
  EXPECT_EQ(read("2/30/1900"), "3 7 7");
}

TEST(TextToPart, DatesAndTimes) {
  auto date = [](const char *text) { return part<CS_DATE>(com__dateafromchar_mb, text); };
  auto time = [](const char *text) { return part<CS_TIME>(com__timeafromchar_mb, text); };
  auto bigtime = [](const char *text) { return part<CS_BIGTIME>(com__bigtimefromchar_mb, text); };
  EXPECT_EQ(date("1/2/1900"), "1");
  EXPECT_EQ(date("1/2/1900 12:30"), "1");
  EXPECT_EQ(date("00010101"), "-693595"); // no lower limit but the calendar's
  EXPECT_EQ(date("12:30"), "0");
  EXPECT_EQ(date("1/2/1900/"), "1"); // leftovers do not count
  EXPECT_EQ(date("1/2/1900 5 6"), "1");
  EXPECT_EQ(date("5"), "result -2"); // but without a date they do
  EXPECT_EQ(date("1/2/1900 25:00"), "result 1");
  EXPECT_EQ(date("13/2/1900"), "result 2");
  EXPECT_EQ(time("0:01"), "18000");
  EXPECT_EQ(time("1/2/1900/ 0:01"), "18000");
  EXPECT_EQ(time("1/40/1900 0:01"), "result 3");
  EXPECT_EQ(time("0:01 5"), "result -2");
  EXPECT_EQ(time("23:59:59.999"), "25919999");
  EXPECT_EQ(bigtime("0:01"), "60000000");
  EXPECT_EQ(bigtime("1/2/1900/ 0:00:01.123456"), "1123456");
  EXPECT_EQ(bigtime("1/40/1900 0:01"), "result 3");
  EXPECT_EQ(bigtime("1/40/1900 25:01"), "result 3"); // the date is looked at first
  // Deliberate: the others answer 1 for a time that cannot be made, this one the field at fault.
  EXPECT_EQ(bigtime("1/4/1900 25:01"), "result 4");
  EXPECT_EQ(bigtime("25:01"), "result 4");
  EXPECT_EQ(bigtime("12:60"), "result 5");
  EXPECT_EQ(bigtime("12:30:60"), "result 6");
  EXPECT_EQ(bigtime("12:30:15.01000000"), "result 7");
  EXPECT_EQ(bigtime("12:30:15.00999999"), "45015999999");
  EXPECT_EQ(time("25:01"), "result 1");
  EXPECT_EQ(bigtime(""), "0");
  EXPECT_EQ(bigtime("0:01 x"), "result -1");
}

// Style 103 reads the day first, style 101 the month.
TEST(TextToDatetime, StyleOfEveryEntryPoint) {
  for (const int style : {103, 101}) {
    const bool is_day_first = style == 103;
    EXPECT_EQ(bigdatetime("1/2/2005", 1, style),
              is_day_first ? "2005-02-01 00:00:00.000000" : "2005-01-02 00:00:00.000000");
    EXPECT_EQ(part<CS_DATE>(com__dateafromchar_mb, "1/2/2005", 1, style),
              is_day_first ? "38382" : "38352");
    // A time on its own has no order, but what stands in front of it has.
    EXPECT_EQ(part<CS_TIME>(com__timeafromchar_mb, "31/12/2005 0:01", 1, style),
              is_day_first ? "18000" : "result 2");
    EXPECT_EQ(part<CS_BIGTIME>(com__bigtimefromchar_mb, "31/12/2005 0:01", 1, style),
              is_day_first ? "60000000" : "result 2");
    CS_CHAR text[] = "1/2/2005";
    CS_DATETIME4 value = {7, 7};
    EXPECT_EQ(com__date4fromchar_mb(&value, text, 8, style, 1, com__get_months(),
                                    com__get_shortmonths(), nullptr, nullptr),
              0);
    EXPECT_EQ(value.days, is_day_first ? 38382 : 38352);
  }
}

TEST(TextToTime, NothingElse) {
  auto read = [](std::string text) {
    CS_DATETIME value = {7, 7};
    const int status =
        com__timefromchar_mb(&value, text.data(), static_cast<CS_INT>(text.size()), 0, 3,
                             com__get_months(), com__get_shortmonths(), nullptr, nullptr);
    return status != 0 ? "result " + std::to_string(status)
                       : std::to_string(value.dtdays) + " " + std::to_string(value.dttime);
  };
  EXPECT_EQ(read("0:01"), "0 18000");
  EXPECT_EQ(read(""), "0 0");
  EXPECT_EQ(read("12am"), "0 0");
  EXPECT_EQ(read("24:00"), "result 1");
  EXPECT_EQ(read("1/2/2001 0:01"), "result -2");
  EXPECT_EQ(read("2001"), "result -2");
  EXPECT_EQ(read("T0:01"), "result -2");
  EXPECT_EQ(read("Jan"), "result -1"); // no name is known
}

// What the library prints in a style that tells the whole value, it reads again.
TEST(TextToDatetime, ReadsWhatItPrints) {
  std::mt19937_64 random(17);
  for (int i = 0; i < (zrvtest::sanitized ? 300 : 5000); ++i)
    for (CS_INT style : {9, 16, 109, 111, 116, 121, 122, 140}) {
      CS_DATETIME value = {static_cast<CS_INT>(random() % 3012154) - 53690,
                           static_cast<CS_INT>(random() % 86400) * 300},
                  back = {77, 77};
      char text[64];
      const CS_INT length =
          com__datetochar(&value, text, sizeof text, style, com__get_shortmonths());
      ASSERT_GT(length, 0);
      const bool has_time = style != 111;
      const CS_INT read_style = style == 109 || style == 116 ? 0 : style;
      ASSERT_EQ(com__datefromchar_mb(&back, text, length, read_style, 1, com__get_months(),
                                     com__get_shortmonths(), nullptr, nullptr),
                0)
          << std::string(text, static_cast<size_t>(length)) << " in style " << style;
      ASSERT_EQ(back.dtdays, value.dtdays) << std::string(text, static_cast<size_t>(length));
      if (has_time && style != 122) {
        ASSERT_EQ(back.dttime, value.dttime) << std::string(text, static_cast<size_t>(length));
      }
    }
}

TEST(TextToDatetime, RandomTextsAgainstTheSecondInterpreter) {
  const char *const pieces[] = {"1",
                                "2",
                                "5",
                                "12",
                                "13",
                                "31",
                                "99",
                                "100",
                                "0",
                                "007",
                                "1999",
                                "2001",
                                "0000",
                                "9999",
                                "12345",
                                "991231",
                                "19991231",
                                "123456",
                                "00012345",
                                ":",
                                ":",
                                ":",
                                "/",
                                "/",
                                "-",
                                "-",
                                ".",
                                ".",
                                ",",
                                "am",
                                "PM",
                                "Am",
                                "T",
                                "t",
                                "Jan",
                                "December",
                                "may",
                                "AUGUST",
                                "12:30",
                                "12:30:15",
                                ":15.5",
                                "10:30:15.123456",
                                "1/2/2003",
                                "31.12.99",
                                "5-Jan-01",
                                "Jan 5, 2001",
                                "2001-02-03T04:05:06",
                                "5pm",
                                "12 am",
                                " ",
                                "  ",
                                "x",
                                "1234567",
                                "Janu",
                                "Tue"};
  std::vector<TestCharset> sets = {TestCharset::one_byte(), TestCharset::double_byte(),
                                   TestCharset::four_byte(), TestCharset::utf8()};
  const int styles[] = {0,   0,   0,   0,   9,   1,   10,  2,   11,  21,  22, 23, 40,  3,  4,  5,
                        101, 110, 102, 111, 121, 122, 140, 103, 104, 105, 6,  7,  100, -1, 255};
  const auto seed = zrvtest::random_seed();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  size_t dates = 0, times = 0;
  for (size_t i = 0; i < zrvtest::random_steps(); ++i) {
    std::string text;
    const size_t most = random() % 50 == 0 ? 30 : 9;
    for (auto n = static_cast<size_t>(random() % most); n > 0; --n) {
      text += pieces[random() % (std::size(pieces) - (random() % 8 != 0 ? 4 : 0))];
      if (random() % 3 == 0)
        text += " ";
    }
    Setting setting;
    setting.partonly = static_cast<int>(random() % 8 < 5 ? 0 : random() % 4);
    setting.style = styles[random() % std::size(styles)];
    setting.order = static_cast<int>(random() % 16 == 0 ? random() % 9 : random() % 6 + 1);
    setting.type = random() % 2 == 0 ? CS_TYPE_DATETIME : CS_TYPE_BIGDATETIME;
    setting.has_names = random() % 8 != 0;
    const SlowResult expected =
        zrvtest::slow_date_parse(text, setting.partonly, setting.style, setting.order,
                                 setting.has_names, setting.type == CS_TYPE_BIGDATETIME);
    dates += expected.status == 0;
    times += expected.status == 99;
    auto agrees = [&](const SlowResult &got) {
      // A failure may leave fields in any state.
      return got.status == expected.status &&
             ((got.status != 0 && got.status != 99) ||
              (got.fields == expected.fields && got.truncated == expected.truncated));
    };
    const SlowResult got = parse(text, setting);
    ASSERT_TRUE(agrees(got)) << "'" << text << "' style " << setting.style << " order "
                             << setting.order << " partonly " << setting.partonly << " type "
                             << setting.type << ": " << got.status << " "
                             << testing::PrintToString(got.fields) << " instead of "
                             << expected.status << " " << testing::PrintToString(expected.fields);
    // The same text with some of its characters wide.
    const size_t which = i % sets.size();
    setting.set = sets[which].get();
    const std::string spelled = sets[which].spell(text, [&] { return random() % 3 == 0; });
    const SlowResult wide = parse(spelled, setting);
    ASSERT_TRUE(agrees(wide)) << "'" << text << "' in set " << which << ": " << wide.status << " "
                              << testing::PrintToString(wide.fields) << " instead of "
                              << expected.status << " " << testing::PrintToString(expected.fields);
  }
  EXPECT_GT(dates, zrvtest::random_steps() / 50);
  EXPECT_GT(times, zrvtest::random_steps() / 50);
}

// The built-in set has a way of its own through a text. One that is called wider goes the general
// way and reads the same.
TEST(TextToDatetime, BothWaysAlike) {
  CS_ATTRIB general = *com_get_charattrib();
  general.cs_ntype = 2;
  std::mt19937_64 random(23);
  const char *const pieces[] = {"12", "1999", "/",    "-", ".", ":",
                                "am", "Jan",  "july", "T", " ", ","};
  for (int i = 0; i < (zrvtest::sanitized ? 2000 : 50000); ++i) {
    std::string text;
    for (auto n = random() % 8; n > 0; --n)
      text += random() % 16 == 0 ? std::string(1, static_cast<char>(random()))
                                 : pieces[random() % std::size(pieces)];
    ASSERT_EQ(datetime(text), datetime(text, 0, 1, &general)) << text;
    ASSERT_EQ(read_token(text), read_token(text, true, &general)) << text;
  }
  for (const char *name : {"", "May", "mAY", "Mayx", "Ma"}) {
    CS_CHAR *list[] = {const_cast<CS_CHAR *>(name)};
    for (const std::string &word : {std::string(), std::string("may"), std::string("may\0", 4),
                                    std::string("\0", 1), std::string("ma")})
      EXPECT_EQ(datelookup(const_cast<CS_CHAR *>(word.data()), static_cast<CS_INT>(word.size()),
                           list, 1, nullptr),
                datelookup(const_cast<CS_CHAR *>(word.data()), static_cast<CS_INT>(word.size()),
                           list, 1, &general))
          << name << " " << word;
  }
}

TEST(TextToDatetime, WideCharacters) {
  TestCharset wide = TestCharset::double_byte(), utf8 = TestCharset::utf8();
  const std::string text = wide.spell("Jan 5, 2001 10:30 PM", [] { return true; });
  EXPECT_EQ(text.size(), 40U);
  EXPECT_EQ(datetime(text, 0, 1, wide.get()), "2001-01-05 22:30:00.000");
  EXPECT_EQ(datetime("\xD9\xA2\xD9\xA0\xD9\xA0\xD9\xA1\xC2\xA0Jan", 0, 1, utf8.get()),
            "2001-01-01 00:00:00.000");
  EXPECT_EQ(datetime(text), "result -1"); // the same bytes in a set of one-byte characters
}

// Names in another language, with characters of several bytes.
TEST(TextToDatetime, NamesOfAnotherLanguage) {
  TestCharset utf8 = TestCharset::utf8();
  std::string names[12], short_names[12];
  CS_CHAR *list[12], *short_list[12];
  for (int i = 0; i < 12; ++i) {
    names[i] = "m" + std::string(1, static_cast<char>('a' + i));
    short_names[i] = "s" + std::string(1, static_cast<char>('a' + i));
  }
  names[1] = "f\xC3\xA9vrier";
  names[2] = "M\xC3\xA4rz";
  names[3] = "am"; // am/pm come first
  for (int i = 0; i < 12; ++i)
    list[i] = names[i].data(), short_list[i] = short_names[i].data();
  auto read = [&](std::string text) {
    CS_DATETIME value;
    const int status = com__datefromchar_mb(&value, text.data(), static_cast<CS_INT>(text.size()),
                                            0, 2, list, short_list, utf8.get(), nullptr);
    return status == 0 ? value.dtdays : status - 1000000;
  };
  EXPECT_EQ(read("2 F\xC3\x89VRIER 1900"), 32);
  EXPECT_EQ(read("2 fevrier 1900"), 32);
  EXPECT_EQ(read("1 m\xC3\xA4rz 1900"), 59);
  EXPECT_EQ(read("1 m\xC3\x84rz 1900"), -1000001);
  EXPECT_EQ(read("1 sc 1900"), 59);
  EXPECT_EQ(read("1 January 1900"), -1000001);   // not in the list
  EXPECT_EQ(read("1 am 1900"), 364877 - 364877); // the year alone, at one o'clock
}

TEST(TextToDatetime, NoLocaleHasASay) {
  const zrvtest::ForeignLocale locale;
  EXPECT_EQ(datetime("Jan 5 2001 1:30:15.5 PM"), "2001-01-05 13:30:15.500");
}

TEST(TextToDatetime, ClearsTheValueFirst) {
  CS_DATETIME value = {77, 77};
  CS_CHAR text[] = "x";
  CS_BOOL truncated = 77;
  EXPECT_EQ(com__datefromchar_mb(&value, text, 1, 0, 1, nullptr, nullptr, nullptr, &truncated), -1);
  EXPECT_EQ(value.dtdays, 0);
  EXPECT_EQ(value.dttime, 0);
  EXPECT_EQ(truncated, 0);
  CS_BIGDATETIME big = 77;
  EXPECT_EQ(com__bigdatetimefromchar_mb(&big, text, 1, 0, 1, nullptr, nullptr, nullptr, nullptr),
            -1);
  EXPECT_EQ(big, 0U);
}

TEST(DateParseChecks, NullPointers) {
  CS_CHAR text[] = "1", *at = text;
  CS_INT length = 1;
  Token token;
  auto null = [](int expected, auto call) {
    const zrvtest::CheckReport report = zrvtest::catch_check([&] { EXPECT_EQ(call(), expected); });
    EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "datetime_parse.cpp")) << report.text;
  };
  auto entry = [&](auto function, auto value) {
    null(-1, [&] { return function(nullptr, text, 1, 0, 1, nullptr, nullptr, nullptr, nullptr); });
    null(-1,
         [&] { return function(&value, nullptr, 1, 0, 1, nullptr, nullptr, nullptr, nullptr); });
  };
  entry(com__datefromchar_mb, CS_DATETIME{});
  entry(com__date4fromchar_mb, CS_DATETIME4{});
  entry(com__bigdatetimefromchar_mb, CS_BIGDATETIME{});
  entry(com__dateafromchar_mb, CS_DATE{});
  entry(com__timeafromchar_mb, CS_TIME{});
  entry(com__bigtimefromchar_mb, CS_BIGTIME{});
  entry(com__timefromchar_mb, CS_DATETIME{});
  null(-1, [&] {
    return xdaterecfromchar(nullptr, text, 1, 0, 0, 1, nullptr, nullptr, nullptr, 12, nullptr);
  });
  null(DT_ERROR, [&] { return datetoken(nullptr, &length, &token, nullptr, nullptr, nullptr); });
  null(DT_ERROR, [&] { return datetoken(&at, nullptr, &token, nullptr, nullptr, nullptr); });
  null(DT_ERROR, [&] { return datetoken(&at, &length, nullptr, nullptr, nullptr, nullptr); });
  null(-1, [&] { return findtoken(nullptr, 0); });
  null(-1, [&] { return datelookup(nullptr, 1, com__get_months(), 12, nullptr); });
  null(-1, [&] { return datelookup(text, 1, nullptr, 12, nullptr); });
  null(1, [] { return com__amcheck(nullptr, 1); });
}
