// All members of the cast-context conversions: which there are, what each reports of values around every
// bound, and that each computes what its counterpart in the matrix does.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cast_call.h"
#include "cast_pad_reference.h"
#include "conversion.h"
#include "text_world.h"
#include "zrvcomn/datetime.h"
#include "zrvcomn/numeric.h"

using namespace zrvtest;
using namespace std::string_literals;

namespace {

constexpr CS_RETCODE OK = CS_SUCCEED, OV = CS_CONV_OVERFLOW, UN = CS_CONV_UNDERFLOW,
                     SY = CS_CONV_SYNTAX, TR = CS_CONV_TRUNCATED, DO = CS_CONV_DOMAIN;

// ---- values ----

// A numeric of a shape, from its text.
std::string numeric_of(const std::string &text, CastShape shape) {
  CS_BYTE array[33];
  CS_BYTE *at = array;
  CS_INT length = comn_num_getlen(shape.precision);
  auto precision = static_cast<CS_BYTE>(shape.precision);
  auto scale = static_cast<CS_BYTE>(shape.scale);
  std::string copy = text;
  EXPECT_EQ(com__subchartoexctnume(copy.data(), static_cast<CS_INT>(copy.size()), &at, &length,
                                   &precision, &scale, 0),
            NUME_OK)
      << text;
  return {reinterpret_cast<const char *>(at), static_cast<size_t>(length)};
}

constexpr CastShape source_shape = {25, 3};

std::string money_of(int64_t count) {
  CS_MONEY value;
  value.mnyhigh = static_cast<CS_INT>(count >> 32);
  value.mnylow = static_cast<CS_UINT>(count);
  return cast_bytes(value);
}

CAST_CONTEXT english(CS_INT style = 0) {
  CAST_CONTEXT context{};
  context.months = com__get_months();
  context.shrtmonths = com__get_shortmonths();
  context.dateorder = com__get_date_order_id();
  context.style = style;
  return context;
}

// ---- the golden grid ----

const char *const columns[] = {
    "bit",      "i1",    "i2",    "i4",          "i8",      "ui2",     "ui4",   "ui8",   "flt4",
    "flt8",     "num",   "mny4",  "money",       "char",    "varchar", "date4", "time4", "date",
    "datetime", "datea", "timea", "bigdatetime", "bigdate", "bigtime", "hex",   "fixed", "var"};

// A mark for each status, and a point where there is no member.
char mark_of(CS_RETCODE status) {
  switch (status) {
  case CS_SUCCEED:
    return '+';
  case CS_CONV_OVERFLOW:
    return 'O';
  case CS_CONV_UNDERFLOW:
    return 'U';
  case CS_CONV_SYNTAX:
    return 'S';
  case CS_CONV_TRUNCATED:
    return 'T';
  case CS_CONV_DOMAIN:
    return 'D';
  default:
    return '?';
  }
}

struct Input {
  const char *source, *label;
  std::string bytes;
  const char *marks; // a group for numbers, text, dates, others
};

template <class T>
Input input(const char *source, const char *label, T value, const char *marks) {
  return {source, label, cast_bytes(value), marks};
}

Input text(const char *source, const char *value, const char *marks) {
  return {source, value, value, marks};
}

Input numeric(const char *value, const char *marks) {
  return {"num", value, numeric_of(value, source_shape), marks};
}

Input money(const char *label, int64_t count, const char *marks) {
  return {"money", label, money_of(count), marks};
}

std::vector<Input> golden_grid() {
  const double nan = std::nan("");
  return {
      input("i1", "0", CS_TINYINT{0}, "+++++++++++++ ++ ......... ..."),
      input("i1", "255", CS_TINYINT{255}, "+++++++++++++ ++ ......... ..."),
      input("i2", "-32768", CS_SMALLINT{-32768}, "+O+++OOO+++++ ++ ......... ..."),
      input("i2", "-1", CS_SMALLINT{-1}, "+O+++OOO+++++ ++ ......... ..."),
      input("i2", "128", CS_SMALLINT{128}, "+++++++++++++ ++ ......... ..."),
      input("i2", "256", CS_SMALLINT{256}, "+O+++++++++++ ++ ......... ..."),
      input("i4", "-2147483647", CS_INT{-2147483647}, "+OO++OOO++OO+ ++ ......... +.."),
      input("i4", "-32769", CS_INT{-32769}, "+OO++OOO+++++ ++ ......... +.."),
      input("i4", "-32768", CS_INT{-32768}, "+O+++OOO+++++ ++ ......... +.."),
      input("i4", "-1", CS_INT{-1}, "+O+++OOO+++++ ++ ......... +.."),
      input("i4", "32768", CS_INT{32768}, "+OO++++++++++ ++ ......... +.."),
      input("i4", "65536", CS_INT{65536}, "+OO++O+++++++ ++ ......... +.."),
      input("i4", "214749", CS_INT{214749}, "+OO++O+++++O+ ++ ......... +.."),
      input("i4", "2147483647", CS_INT{2147483647}, "+OO++O++++OO+ ++ ......... +.."),
      input("i8", "-9223372036854775807", CS_BIGINT{-9223372036854775807},
            "+OOO+OOO++OOO ++ ......... +.."),
      input("i8", "-2147483649", CS_BIGINT{-2147483649}, "+OOO+OOO++OO+ ++ ......... +.."),
      input("i8", "-32769", CS_BIGINT{-32769}, "+OO++OOO+++++ ++ ......... +.."),
      input("i8", "-1", CS_BIGINT{-1}, "+O+++OOO+++++ ++ ......... +.."),
      input("i8", "256", CS_BIGINT{256}, "+O+++++++++++ ++ ......... +.."),
      input("i8", "2147483648", CS_BIGINT{2147483648}, "+OOO+O++++OO+ ++ ......... +.."),
      input("i8", "4294967296", CS_BIGINT{4294967296}, "+OOO+OO+++OO+ ++ ......... +.."),
      input("i8", "9223372036854775807", CS_BIGINT{9223372036854775807},
            "+OOO+OO+++OOO ++ ......... +.."),
      input("ui2", "255", CS_USMALLINT{255}, "+++++++++++++ ++ ......... ..."),
      input("ui2", "256", CS_USMALLINT{256}, "+O+++++++++++ ++ ......... ..."),
      input("ui2", "32768", CS_USMALLINT{32768}, "+OO++++++++++ ++ ......... ..."),
      input("ui2", "65535", CS_USMALLINT{65535}, "+OO++++++++++ ++ ......... ..."),
      input("ui4", "32768", CS_UINT{32768}, "+OO++++++++++ ++ ......... +.."),
      input("ui4", "65536", CS_UINT{65536}, "+OO++O+++++++ ++ ......... +.."),
      input("ui4", "2147483648", CS_UINT{2147483648}, "+OOO+O++++OO+ ++ ......... +.."),
      input("ui4", "4294967295", CS_UINT{4294967295}, "+OOO+O++++OO+ ++ ......... +.."),
      input("ui8", "256", CS_UBIGINT{256}, "+O+++++++++++ ++ ......... +.."),
      input("ui8", "4294967296", CS_UBIGINT{4294967296}, "+OOO+OO+++OO+ ++ ......... +.."),
      input("ui8", "922337203685478", CS_UBIGINT{922337203685478},
            "+OOO+OO+++OOO ++ ......... +.."),
      input("ui8", "9223372036854775808U", CS_UBIGINT{9223372036854775808U},
            "+OOOOOO+++OOO ++ ......... +.."),
      input("flt4", "-1e30", static_cast<CS_REAL>(-1e30), "+OOOOUUU++OOO OO ......... ..."),
      input("flt4", "-0.5", static_cast<CS_REAL>(-0.5), "+O+++UUU+++++ ++ ......... ..."),
      input("flt4", "1.5", static_cast<CS_REAL>(1.5), "+++++++++++++ ++ ......... ..."),
      input("flt4", "255.5", static_cast<CS_REAL>(255.5), "+O+++++++++++ ++ ......... ..."),
      input("flt4", "40000", static_cast<CS_REAL>(40000), "+OO++++++++++ ++ ......... ..."),
      input("flt4", "1e10", static_cast<CS_REAL>(1e10), "+OOO+OO+++OO+ ++ ......... ..."),
      input("flt4", "1e19", static_cast<CS_REAL>(1e19), "+OOOOOO+++OOO OO ......... ..."),
      input("flt4", "2e19", static_cast<CS_REAL>(2e19), "+OOOOOOO++OOO OO ......... ..."),
      input("flt4", "1e38", static_cast<CS_REAL>(1e38), "+OOOOOOO++OOO OO ......... ..."),
      input("flt4", "nan", static_cast<CS_REAL>(nan), "++++++++++OOO ++ ......... ..."),
      input("flt8", "-1e30", static_cast<CS_FLOAT>(-1e30), "+OOOOUUU++OOO ++ ......... ..."),
      input("flt8", "-0.5", static_cast<CS_FLOAT>(-0.5), "+O+++UUU+++++ ++ ......... ..."),
      input("flt8", "1.5", static_cast<CS_FLOAT>(1.5), "+++++++++++++ ++ ......... ..."),
      input("flt8", "255.5", static_cast<CS_FLOAT>(255.5), "+O+++++++++++ ++ ......... ..."),
      input("flt8", "40000", static_cast<CS_FLOAT>(40000), "+OO++++++++++ ++ ......... ..."),
      input("flt8", "1e10", static_cast<CS_FLOAT>(1e10), "+OOO+OO+++OO+ ++ ......... ..."),
      input("flt8", "1e19", static_cast<CS_FLOAT>(1e19), "+OOOOOO+++OOO ++ ......... ..."),
      input("flt8", "2e19", static_cast<CS_FLOAT>(2e19), "+OOOOOOO++OOO ++ ......... ..."),
      input("flt8", "1e38", static_cast<CS_FLOAT>(1e38), "+OOOOOOO++OOO OO ......... ..."),
      input("flt8", "nan", static_cast<CS_FLOAT>(nan), "++++++++++OOO ++ ......... ..."),
      input("flt8", "1e39", 1e39, "+OOOOOOOO+OOO OO ......... ..."),
      input("bit", "0", CS_BIT{0}, "+++++++++++++ ++ ......... ..."),
      input("bit", "1", CS_BIT{1}, "+++++++++++++ ++ ......... ..."),
      input("bit", "2", CS_BIT{2}, "DDDDDDDDDDDDD DD ......... ..."),
      input("mny4", "-1", CS_INT{-10000}, "+O+++OOU+++++ ++ ......... ..."),
      input("mny4", "-0.4", CS_INT{-4000}, "+++++OOU+++++ ++ ......... ..."),
      input("mny4", "255.4999", CS_INT{2554999}, "+++++++++++++ ++ ......... ..."),
      input("mny4", "255.5", CS_INT{2555000}, "+O+++++++++++ ++ ......... ..."),
      input("mny4", "65535.5", CS_INT{655355000}, "+OO++O+++++++ ++ ......... ..."),
      money("-1", -10000, "+O+++OOU+++++ ++ ......... ..."),
      money("-0.4", -4000, "+++++OOU+++++ ++ ......... ..."),
      money("255.5", 2555000, "+O+++++++++++ ++ ......... ..."),
      money("214748.3648", 2147483648, "+OO++O+++++O+ ++ ......... ..."),
      money("2147483647.5", 21474836475000, "+OOO+O++++OO+ ++ ......... ..."),
      money("largest", std::numeric_limits<int64_t>::max(), "+OOO+OO+++OO+ ++ ......... ..."),
      money("smallest", std::numeric_limits<int64_t>::min(), "+OOO+OOU++OO+ OO ......... ..."),
      numeric("-1", "+O+++UUU+++++ ++ ......... ..."),
      numeric("-0.5", "+O+++UUU+++++ ++ ......... ..."),
      numeric("1.259", "++++++++++T++ ++ ......... ..."),
      numeric("255.5", "+O+++++++++++ ++ ......... ..."),
      numeric("65536", "+OO++O+++++++ ++ ......... ..."),
      numeric("3000000000", "+OOO+O++++OO+ ++ ......... ..."),
      numeric("99999999.995", "+OO++O++++TO+ ++ ......... ..."),
      numeric("9999999999999999999", "+OOOOOO+++OOO OO ......... ..."),
      numeric("1e21", "+OOOOOOO++OOO OO ......... ..."),
      text("char", "", "+++++++++++++ ++ +..++++.+ ..."),
      text("char", "12", "+++++++++++++ ++ S..SSSS.S ..."),
      text("char", "-1", "+O+++SSS+++++ ++ S..SSSS.S ..."),
      text("char", "300", "+O+++++++++++ ++ S..SSSS.S ..."),
      text("char", "70000", "+OO++O+++++++ ++ S..SSSS.S ..."),
      text("char", "3000000000", "OOOO+O++++OO+ ++ S..SSSS.S ..."),
      text("char", "99999999999999999999", "OOOOOOOO++TOO ++ S..SSSS.S ..."),
      text("char", "1.5", "SSSSSSSS+++++ ++ S..SSSS.S ..."),
      text("char", "1.259", "SSSSSSSS++T++ ++ S..SSSS.S ..."),
      text("char", "1e400", "SSSSSSSSOOSSS ++ S..SSSS.S ..."),
      text("char", "1e-400", "SSSSSSSSUUTSS ++ S..SSSS.S ..."),
      text("char", "x", "SSSSSSSSSSSSS ++ S..SSSS.S ..."),
      text("char", "2001-02-29", "SSSSSSSSSSSSS ++ O..OOOO.O ..."),
      text("char", "19010203", "+OO++O+++++O+ ++ +..++++.+ ..."),
      text("char", "17530101 1:02", "SSSSSSSSSSSSS ++ O..++++.+ ..."),
      text("char", "12:30:45.123456", "SSSSSSSSSSSSS ++ +..++++.+ ..."),
      text("char", "a text of more than 20", "SSSSSSSSSSSSS TT S..SSSS.S ..."),
      text("varchar", "", "+++++++++++++ ++ +..+..... ..."),
      text("varchar", "12", "+++++++++++++ ++ S..S..... ..."),
      text("varchar", "-1", "+O+++SSS+++++ ++ S..S..... ..."),
      text("varchar", "300", "+O+++++++++++ ++ S..S..... ..."),
      text("varchar", "70000", "+OO++O+++++++ ++ S..S..... ..."),
      text("varchar", "3000000000", "OOOO+O++++OO+ ++ S..S..... ..."),
      text("varchar", "99999999999999999999", "OOOOOOOO++OOO ++ S..S..... ..."),
      text("varchar", "1.5", "SSSSSSSS+++++ ++ S..S..... ..."),
      text("varchar", "1.259", "SSSSSSSS++O++ ++ S..S..... ..."),
      text("varchar", "1e400", "SSSSSSSSOOOSS ++ S..S..... ..."),
      text("varchar", "1e-400", "SSSSSSSSUUOSS ++ S..S..... ..."),
      text("varchar", "x", "SSSSSSSSSSOSS ++ S..S..... ..."),
      text("varchar", "2001-02-29", "SSSSSSSSSSOSS ++ O..O..... ..."),
      text("varchar", "19010203", "+OO++O+++++O+ ++ +..+..... ..."),
      text("varchar", "17530101 1:02", "SSSSSSSSSSOSS ++ O..+..... ..."),
      text("varchar", "12:30:45.123456", "SSSSSSSSSSOSS ++ +..+..... ..."),
      text("varchar", "a text of more than 20", "SSSSSSSSSSOSS TT S..S..... ..."),
      input("date", "1753-01-01", CS_DATETIME{-53690, 0}, "............. ++ O.+.+++.+ ..."),
      input("date", "2001-02-03", CS_DATETIME{36923, 300}, "............. ++ +.+.+++.+ ..."),
      input("date", "2079-06-07", CS_DATETIME{65536, 0}, "............. ++ O.+.+++.+ ..."),
      input("date4", "2001-02-03", CS_DATETIME4{36923, 60}, "............. ++ +.+.+++.+ ..."),
      input("datea", "0001-01-01", CS_DATE{-693595}, "............. +. O.O.+.+.. ..."),
      input("datea", "1752-12-31", CS_DATE{-53691}, "............. +. O.O.+.+.. ..."),
      input("datea", "2001-02-03", CS_DATE{36923}, "............. +. +.+.+.+.. ..."),
      input("datea", "no date", CS_DATE{3000000}, "............. +. O.+.+.O.. ..."),
      input("timea", "00:00:01", CS_TIME{300}, "............. +. +.+..++.+ ..."),
      input("timea", "no time", CS_TIME{-1}, "............. +. O.+..++.+ ..."),
      input("bigdatetime", "0001-01-01", CS_BIGDATETIME{31622400000000},
            "............. ++ ......... ..."),
      input("bigdatetime", "2001-02-03",
            CS_BIGDATETIME{31622400000000 + (693595 + 36923) * 86400000000 + 1},
            "............. ++ ......... ..."),
      input("bigdatetime", "too early", CS_BIGDATETIME{0}, "............. ++ ......... ..."),
      input("bigdate", "0001-01-01", CS_BIGDATETIME{31622400000000},
            "............. .. .OU.++.++ ..."),
      input("bigdate", "2001-02-03",
            CS_BIGDATETIME{31622400000000 + (693595 + 36923) * 86400000000 + 1},
            "............. .. .++.++.++ ..."),
      input("bigdate", "too early", CS_BIGDATETIME{0}, "............. .. .OO.++.++ ..."),
      input("bigtime", "00:00:01", CS_BIGTIME{1000001}, "............. +. +.+..++.+ ..."),
      input("bigtime", "a day", CS_BIGTIME{86400000000}, "............. +. U.U..++.+ ..."),
      text("hex", "0", "...++.++..... .. ......... ..."),
      text("hex", "FF", "...++.++..... .. ......... ..."),
      text("hex", "100000000", "...O+.O+..... .. ......... ..."),
      text("hex", "8000000000000000", "...O+.O+..... .. ......... ..."),
      text("hex", "10000000000000000", "...OO.OO..... .. ......... ..."),
      text("hex", "x", "...SS.SS..... .. ......... ..."),
      text("any", "bytes", "............. .. ......... .++"),
      text("any", "a value of more than 20", "............. .. ......... .TT"),
      Input{"bin", "1 byte", "\x01", "+.........U.. .. ..U.UUU.U ..."},
      Input{"bin", "4 bytes", "\1\0\0\0"s, "+.........U.. .. ..U.++U.U ..."},
      Input{"bin", "4 bytes out of range", "\1\0\0\x80"s, "+.........U.. .. ..U.DDU.U ..."},
      Input{"bin", "8 bytes", "\1\0\0\0\0\0\0\0"s, "+.........U.. .. ..+.TT+.+ ..."},
      Input{"bin", "20 bytes", std::string(20, 1), "+.........+.. .. ..T.TTT.T ..."},
      Input{"bin", "21 bytes", std::string(21, 1), "+.........T.. .. ..T.TTT.T ..."},
  };
}

// The statuses of all members of a source for one value: numerics go to precision 10 and scale 2, all
// results to 20 bytes.
std::string marks_of(const Input &row) {
  std::string marks;
  for (const char *column : columns) {
    if (column == "char"s || column == "date4"s || column == "hex"s)
      marks += ' ';
    const CastMember *const member = find_cast_member(row.source, column);
    if (member == nullptr) {
      marks += '.';
      continue;
    }
    CastCall call(row.bytes);
    call.context = english();
    call.from = source_shape;
    call.to = {10, 2};
    marks += mark_of(cast(member->function, call, 20).status);
  }
  return marks;
}

} // namespace

TEST(CastMembers, GoldenGrid) {
  std::set<std::string> sources;
  for (const Input &row : golden_grid()) {
    sources.insert(row.source);
    EXPECT_EQ(marks_of(row), row.marks) << row.source << ' ' << row.label;
  }
  // Every source and every destination stands in the grid.
  for (const CastMember &member : cast_members) {
    EXPECT_TRUE(sources.count(member.source) == 1) << member;
    EXPECT_TRUE(std::find(std::begin(columns), std::end(columns), member.destination + ""s) !=
                std::end(columns))
        << member;
  }
}

// ---- counterparts ----

namespace {

const std::map<std::string, CS_INT> type_codes = {
    {"bit", CS_TYPE_BIT},
    {"i1", CS_TYPE_TINYINT},
    {"i2", CS_TYPE_SMALLINT},
    {"i4", CS_TYPE_INT},
    {"i8", CS_TYPE_BIGINT},
    {"ui2", CS_TYPE_USMALLINT},
    {"ui4", CS_TYPE_UINT},
    {"ui8", CS_TYPE_UBIGINT},
    {"flt4", CS_TYPE_REAL},
    {"flt8", CS_TYPE_FLOAT},
    {"num", CS_TYPE_NUMERIC},
    {"mny4", CS_TYPE_MONEY4},
    {"money", CS_TYPE_MONEY},
    {"char", CS_TYPE_CHAR},
    {"varchar", CS_TYPE_VARCHAR},
    {"bin", CS_TYPE_BINARY},
    {"date", CS_TYPE_DATETIME},
    {"date4", CS_TYPE_DATETIME4},
    {"time4", CS_TYPE_DATETIME4},
    {"datea", CS_TYPE_DATE},
    {"timea", CS_TYPE_TIME},
    {"bigdatetime", CS_TYPE_BIGDATETIME},
    {"bigdate", CS_TYPE_BIGDATETIME},
    {"bigtime", CS_TYPE_BIGTIME},
};
const std::set<std::string> integers = {"i1", "i2", "i4", "i8", "ui2", "ui4", "ui8"};
const std::set<std::string> numbers = {"bit", "i1",   "i2",   "i4",  "i8",   "ui2",  "ui4",
                                       "ui8", "flt4", "flt8", "num", "mny4", "money"};
const std::set<std::string> dates = {"date",        "date4",   "datea",  "timea",
                                     "bigdatetime", "bigdate", "bigtime"};

// Numbers around every bound of every type, as far as a double tells them.
std::vector<double> doubles_around_bounds() {
  std::vector<double> values = {0, 0.4, 0.5, 1.5, 2.5, 1e-60, 1e15, 1e38, 1e39, 1e300};
  for (const double bound : {255.0,
                             256.0,
                             32767.0,
                             32768.0,
                             65535.0,
                             65536.0,
                             214748.3647,
                             214748.3648,
                             2147483647.0,
                             2147483648.0,
                             4294967295.0,
                             4294967296.0,
                             922337203685477.5,
                             922337203685478.0,
                             9.22337e18,
                             9.22337203685477e18,
                             9.2233720368547758e18,
                             1.84467e19,
                             1.84467440737095e19,
                             1.8446744073709552e19,
                             double{std::numeric_limits<float>::max()}})
    for (const double near : {bound, std::nextafter(bound, 0.0), std::nextafter(bound, 1e308),
                              bound - 0.5, bound + 0.5, bound + 1})
      values.push_back(near);
  const size_t count = values.size();
  for (size_t i = 0; i < count; ++i)
    values.push_back(-values[i]);
  for (const double special : {std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), std::nan("")})
    values.push_back(special);
  return values;
}

// Bit patterns around every bound of every integer type.
std::vector<uint64_t> patterns_around_bounds() {
  std::vector<uint64_t> values;
  for (const int bits : {0, 7, 8, 15, 16, 31, 32, 63})
    for (uint64_t delta = 0; delta < 3; ++delta)
      for (const uint64_t bound : {uint64_t{1} << bits, -(uint64_t{1} << bits)})
        values.push_back(bound - 1 + delta);
  // Where floats saturate, and where money ends.
  for (const uint64_t bound :
       {9223370000000000000U, 9223372036854769664U, 18446700000000000000U, 18446744073709500416U})
    for (uint64_t delta = 0; delta < 3; ++delta)
      values.push_back(bound - 1 + delta);
  for (const int64_t bound : {214748LL, 922337203685477LL})
    for (const int64_t near : {bound, bound + 1, -bound, -bound - 1})
      values.push_back(static_cast<uint64_t>(near));
  return values;
}

// The values that a source is tried with.
std::vector<std::string> values_of(const std::string &source) {
  std::vector<std::string> values;
  if (source == "bit")
    return {"\0"s, "\1"s, "\2"s};
  if (integers.count(source) != 0) {
    const auto width = static_cast<size_t>(comn_typelen(type_codes.at(source), 0));
    for (const uint64_t pattern : patterns_around_bounds())
      values.push_back(cast_bytes(pattern).substr(0, width));
  } else if (source == "flt8") {
    for (const double value : doubles_around_bounds())
      values.push_back(cast_bytes(value));
  } else if (source == "flt4") {
    for (const double value : doubles_around_bounds())
      if (!(std::abs(value) > double{std::numeric_limits<float>::max()}) || std::isinf(value))
        values.push_back(cast_bytes(static_cast<float>(value)));
  } else if (source == "mny4" || source == "money") {
    for (const double value : doubles_around_bounds())
      for (const int64_t delta : {-1, 0, 1})
        if (std::abs(value) < (source == "mny4" ? 214748.0 : 9e14)) {
          const int64_t count = std::llround(value * 10000) + delta;
          values.push_back(source == "mny4" ? cast_bytes(static_cast<CS_INT>(count))
                                            : money_of(count));
        }
    for (const int64_t limit : {int64_t{INT32_MAX}, int64_t{INT32_MIN}})
      values.push_back(source == "mny4" ? cast_bytes(static_cast<CS_INT>(limit)) : money_of(limit));
    if (source == "money")
      for (const int64_t limit : {INT64_MAX, INT64_MIN})
        values.push_back(money_of(limit));
  } else if (source == "num") {
    for (const double value : doubles_around_bounds())
      if (std::abs(value) < 1e21) {
        char digits[64];
        std::snprintf(digits, sizeof digits, "%.3f", value);
        values.push_back(numeric_of(digits, source_shape));
      }
  } else if (source == "char" || source == "varchar") {
    for (const double value : doubles_around_bounds())
      for (const char *format : {"%.0f", " %+.2f ", "%.17g", "%.1fx"}) {
        char digits[400];
        const int length = std::snprintf(digits, sizeof digits, format, value);
        if (length <= 256)
          values.push_back(digits);
      }
    for (const char *other :
         {" ", "-", "+-1", "- 7", "12x", ".5", "1e5", "$1,234.5", "1.2.3", "0x10"})
      values.push_back(other);
    if (source == "char") // an empty record is fatal to the numeric member of the matrix
      values.push_back("");
  } else if (source == "date") {
    for (const CS_INT day : {-53691, -53690, -1, 0, 1, 36923, 65535, 65536, 2958463, 2958464})
      for (const CS_INT tick : {0, 1, 17999, 18000, 25919999})
        values.push_back(cast_bytes(CS_DATETIME{day, tick}));
  } else if (source == "date4") {
    for (const int day : {0, 1, 36923, 65535})
      for (const int minute : {0, 1, 1439})
        values.push_back(
            cast_bytes(CS_DATETIME4{static_cast<CS_USHORT>(day), static_cast<CS_USHORT>(minute)}));
  } else if (source == "datea") {
    for (const CS_DATE day :
         {-693596, -693595, -53691, -53690, -1, 0, 36923, 65535, 65536, 2958463, 2958464})
      values.push_back(cast_bytes(day));
  } else if (source == "timea") {
    for (const CS_TIME tick : {-1, 0, 1, 8999, 9000, 25919999, 25920000})
      values.push_back(cast_bytes(tick));
  } else if (source == "bigdatetime" || source == "bigdate") {
    constexpr CS_UBIGINT first = 31622400000000, day = 86400000000;
    for (const CS_UBIGINT days : {0, 639904, 639905, 693595, 759130, 759131, 3652058, 3652059})
      for (const CS_UBIGINT micros : {0, 1, 999, 1000, 29999999, 30000000})
        values.push_back(cast_bytes(CS_BIGDATETIME{first + days * day + micros}));
    values.push_back(cast_bytes(CS_BIGDATETIME{first - 1}));
  } else if (source == "bigtime") {
    for (const CS_UBIGINT micros : {0, 1, 999, 1000, 59999999, 60000000})
      values.push_back(cast_bytes(CS_BIGTIME{micros}));
    for (const CS_UBIGINT micros : {86399999999U, 86400000000U})
      values.push_back(cast_bytes(CS_BIGTIME{micros}));
  } else if (source == "bin") {
    for (size_t length = 1; length <= 9; ++length)
      for (const char byte : {'\0', '\1', '\xFF'})
        values.push_back(std::string(length, byte));
  }
  return values;
}

// What the member of the matrix makes of a value, in the terms of the family: a numeric without its
// shape, a record without its header.
CastResult counterpart(CS_CONV_FUNC function, const CastMember &member, const CastCall &call,
                       size_t capacity, CS_LOCALE *locale) {
  std::string source = call.source;
  if (member.source == "num"s) {
    source.resize(33, '\0');
    source.insert(0, {static_cast<char>(call.from.precision), static_cast<char>(call.from.scale)});
  } else if (member.source == "varchar"s) {
    source.resize(256, '.');
    source.insert(0, cast_bytes(static_cast<CS_SMALLINT>(call.source.size())));
  }
  CS_DATAFMT srcfmt = make_format(type_codes.at(member.source), static_cast<CS_INT>(source.size()));
  CS_DATAFMT destfmt =
      make_format(type_codes.at(member.destination), static_cast<CS_INT>(capacity));
  srcfmt.locale = destfmt.locale = locale;
  destfmt.precision = call.to.precision;
  destfmt.scale = call.to.scale;
  CS_CONTEXT context{};
  const bool is_numeric = member.destination == "num"s;
  std::string bytes(capacity + (is_numeric ? 2 : 0), static_cast<char>(GuardedBuffer::filler));
  CS_INT length = untouched_len;
  const CS_RETCODE status =
      function(&context, &srcfmt, source.data(), &destfmt, bytes.data(), &length);
  return {status, length, is_numeric ? bytes.substr(2) : bytes, 0, 0};
}

} // namespace

// To fixed types, to numeric and between dates: the same status, but for the underflow of integers, and
// the same bytes.
TEST(CastMembers, ComputeWhatTheirCounterpartsDo) {
  TextSet builtin;
  TestContext matrix;
  size_t compared = 0;
  for (const CastMember &member : cast_members) {
    const std::string source = member.source, destination = member.destination;
    const auto from = type_codes.find(source), to = type_codes.find(destination);
    if (from == type_codes.end() || to == type_codes.end() || destination == "char" ||
        destination == "varchar" || (source == "bin" && destination == "num") ||
        (source == "bit" && (destination == "money" || destination == "mny4")) ||
        ((source == "char" || source == "varchar") && dates.count(destination) != 0))
      continue;
    const CS_CONV_FUNC function = com_conv_func(matrix.get(), from->second, to->second);
    ASSERT_NE(function, nullptr) << member;
    const bool is_numeric = destination == "num";
    const size_t width = is_numeric ? 33 : static_cast<size_t>(comn_typelen(to->second, 0));
    for (const std::string &value : values_of(source))
      for (const CastShape shape : {CastShape{77, 3}, {10, 2}, {3, 0}}) {
        CastCall call(value);
        call.from = source_shape;
        call.to = shape;
        const CastResult result = cast(member.function, call, width);
        CastResult expected = counterpart(function, member, call, width, &builtin.locale);
        if (integers.count(source) != 0 && integers.count(destination) != 0 &&
            expected.status == UN)
          expected.status = OV;
        EXPECT_EQ(result.status, expected.status) << member << ' ' << testing::PrintToString(value);
        ++compared;
        if (!is_numeric) {
          EXPECT_EQ(result.bytes, expected.bytes) << member << ' ' << testing::PrintToString(value);
          const bool emptied =
              expected.status == SY && (integers.count(destination) != 0 || destination == "bit");
          EXPECT_EQ(result.len, emptied ? static_cast<CS_INT>(width) : expected.len) << member;
          break; // the shape says nothing
        }
        if (expected.status != DO) {
          EXPECT_EQ(result.len, 33) << member;
        }
        if (expected.status == OK) {
          const auto length = static_cast<size_t>(comn_num_getlen(shape.precision));
          EXPECT_EQ(result.bytes.substr(0, length), expected.bytes.substr(0, length))
              << member << ' ' << testing::PrintToString(value);
          EXPECT_TRUE(result.is_untouched(length)) << member;
        }
      }
  }
  EXPECT_GT(compared, 20000U);
}

// Numbers as text: the text of the counterpart where it has room.
TEST(CastMembers, PrintWhatTheirCounterpartsPrint) {
  TextSet builtin;
  TestContext matrix;
  for (const CastMember &member : cast_members) {
    const std::string source = member.source, destination = member.destination;
    if (numbers.count(source) == 0 || (destination != "char" && destination != "varchar"))
      continue;
    const CS_CONV_FUNC function = com_conv_func(matrix.get(), type_codes.at(source), CS_TYPE_CHAR);
    const CastMember to_char{member.source, "char", nullptr};
    for (const std::string &value : values_of(source)) {
      CastCall call(value);
      call.from = source_shape;
      const CastResult result = cast(member.function, call, 100);
      const CastResult expected = counterpart(function, to_char, call, 100, &builtin.locale);
      EXPECT_EQ(result, expected) << member << ' ' << testing::PrintToString(value);
    }
  }
}

// Dates as text in every style: what the layouts write.
TEST(CastMembers, WriteDatesInEveryStyle) {
  const std::map<std::string, std::function<CS_INT(const std::string &, CS_CHAR *, CS_INT)>>
      layouts = {
#define ZRVTEST_LAYOUT(source, type, function)                                                     \
  {                                                                                                \
    source, [](const std::string &bytes, CS_CHAR *text, CS_INT style) {                            \
      type value;                                                                                  \
      std::memcpy(&value, bytes.data(), sizeof value);                                             \
      return function(&value, text, 100, style, com__get_shortmonths());                           \
    }                                                                                              \
  }
          ZRVTEST_LAYOUT("date", CS_DATETIME, com__datetochar),
          ZRVTEST_LAYOUT("date4", CS_DATETIME4, com__date4tochar),
          ZRVTEST_LAYOUT("datea", CS_DATE, com__dateatochar),
          ZRVTEST_LAYOUT("timea", CS_TIME, com__timeatochar),
          ZRVTEST_LAYOUT("bigdatetime", CS_BIGDATETIME, com__bigdatetimetochar),
          ZRVTEST_LAYOUT("bigtime", CS_BIGTIME, com__bigtimetochar),
#undef ZRVTEST_LAYOUT
      };
  for (const CastMember &member : cast_members) {
    const auto layout = layouts.find(member.source);
    if (layout == layouts.end() ||
        (member.destination != "char"s && member.destination != "varchar"s))
      continue;
    for (const std::string &value : values_of(member.source))
      for (CS_INT style = 0; style < 145; ++style) {
        CS_CHAR expected[100];
        const CS_INT length = layout->second(value, expected, style);
        CastCall call(value);
        call.context = english(style);
        const CastResult result = cast(member.function, call, 100);
        EXPECT_EQ(result.status, length > 0     ? OK
                                 : length == -1 ? CS_CONV_DATEBUFFER
                                                : SY)
            << member << ' ' << style;
        EXPECT_EQ(result.text(), std::string(expected, static_cast<size_t>(std::max(length, 0))));
      }
  }
}

// ---- room ----

namespace {

// What a member makes of a value whose text is known, in any room and format: the rules of text in one
// place, told apart by kind of source and destination.
CastPadded text_in_room(const CastMember &member, const std::string &text, CS_INT format,
                        CS_INT room) {
  const bool terminated = (format & CS_DFMT_NULLTERM) != 0;
  const auto length = static_cast<CS_INT>(text.size());
  const CS_INT kept = std::min(length, room);
  const bool pads = member.destination == "char"s;
  CastPadded result{OK, kept, text.substr(0, static_cast<size_t>(kept))};
  result.bytes.resize(static_cast<size_t>(room), '.');
  if (numbers.count(member.source) != 0) {
    if (room < length || (pads && terminated && room == length))
      return {OV, kept, std::string(static_cast<size_t>(room), '.')};
    return pads ? reference_cast_pad(text, format, room) : result;
  }
  if (room < length)
    result.status = TR;
  if (!pads)
    return result;
  const bool is_date = dates.count(member.source) != 0;
  if (is_date)
    return room < length ? result : reference_cast_pad(text, format, room);
  if (member.source == "char"s && terminated && kept == room) {
    if (room > 0)
      result.bytes.back() = '\0';
    result.status = TR;
    return result;
  }
  CastPadded padded = reference_cast_pad(text.substr(0, static_cast<size_t>(kept)), format, room);
  if (padded.status == OV || (padded.status == OK && room < length))
    padded.status = TR;
  return padded;
}

} // namespace

// Room from nothing to more than enough, in every format, with a byte behind the capacity that must stay.
TEST(CastMembers, TextInEveryRoomAndFormat) {
  size_t members = 0;
  for (const CastMember &member : cast_members) {
    const std::string destination = member.destination;
    if (destination != "char" && destination != "varchar")
      continue;
    ++members;
    const std::vector<std::string> values = values_of(member.source);
    for (const std::string &value : {values[1], values[values.size() / 2]}) {
      CastCall call(value);
      call.context = english(9);
      call.from = source_shape;
      const CastResult whole = cast(member.function, call, 100);
      ASSERT_EQ(whole.status, OK) << member;
      const std::string text = whole.text();
      for (CS_INT room = 0; room <= static_cast<CS_INT>(text.size()) + 3; ++room)
        for (CS_INT format = 0; format < 16; ++format) {
          call.context.format = format;
          const CastResult result = cast(member.function, call, static_cast<size_t>(room));
          CastPadded padded{result.status, result.len, result.bytes};
          std::replace(padded.bytes.begin(), padded.bytes.end(),
                       static_cast<char>(GuardedBuffer::filler), '.');
          // A point of the text is one that nobody wrote as well.
          EXPECT_EQ(padded, text_in_room(member, text, format, room))
              << member << " \"" << text << "\", room " << room << ", format " << format;
        }
    }
  }
  EXPECT_EQ(members, 2U * 15 + 2 + 2 + 1 + 1 + 2 + 1);
}

// Numerics in every room: all of the value or nothing.
TEST(CastMembers, NumericsInEveryRoom) {
  for (const CastMember &member : cast_members) {
    if (member.destination != "num"s || member.source == "bin"s)
      continue;
    const std::string value = values_of(member.source)[0];
    for (const int precision : {1, 2, 9, 10, 38, 77})
      for (size_t room = 0; room <= 34; ++room) {
        CastCall call(value);
        call.from = source_shape;
        call.to = {precision, 0};
        const CastResult result = cast(member.function, call, room);
        EXPECT_EQ(result.len, static_cast<CS_INT>(room)) << member;
        if (room < static_cast<size_t>(comn_num_getlen(precision))) {
          EXPECT_EQ(result.status, OV) << member;
          EXPECT_TRUE(result.is_untouched()) << member;
        } else {
          EXPECT_EQ(result.is_untouched(static_cast<size_t>(comn_num_getlen(precision))), true);
          EXPECT_EQ(result.status, cast(member.function, call, 34).status) << member;
        }
      }
  }
}
