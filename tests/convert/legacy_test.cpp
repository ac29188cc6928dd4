// The conversions for callers without a context as a family: what exists, what every member does with
// null values and null pointers, and the results of all of them side by side.
#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "legacy_members.h"
#include "value_bytes.h"

using zrvtest::bytes_of;
using zrvtest::GuardedBuffer;
using zrvtest::LegacyMember;
using zrvtest::LegacyOptions;
using namespace std::string_literals;

namespace {

const std::vector<LegacyMember> members = zrvtest::legacy_members();

// A record of a length and bytes.
std::string record(const std::string &bytes) {
  const auto length = static_cast<CS_SMALLINT>(bytes.size());
  return std::string(reinterpret_cast<const char *>(&length), sizeof length) + bytes;
}

std::string money(long long count) {
  return bytes_of(CS_MONEY{static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)});
}

std::string numeric(const std::string &text, CS_INT precision, CS_INT scale) {
  std::string value(35, '\0');
  LegacyOptions options;
  options.precision = precision;
  options.scale = scale;
  EXPECT_GT(zrvtest::legacy_member("char", "num")(text.data(), static_cast<CS_INT>(text.size()),
                                                  value.data(), 35, options),
            0)
      << text;
  return value;
}

// A value that every member of a source converts, and its unit.
const std::map<std::string, std::pair<std::string, std::string>> samples = {
    {"i1", {"\1", "oldint.cpp"}},
    {"i2", {"\1\0"s, "oldint.cpp"}},
    {"i4", {"\1\0\0\0"s, "oldint.cpp"}},
    {"bit", {"\1", "oldbit.cpp"}},
    {"flt4", {bytes_of(1.0F), "oldflt.cpp"}},
    {"flt8", {bytes_of(1.0), "oldflt.cpp"}},
    {"money", {money(10000), "oldmny.cpp"}},
    {"mny4", {bytes_of(CS_MONEY4{10000}), "oldmny.cpp"}},
    {"num", {"\x12\4\0\0\0\0\0\0\0\x27\x10"s + std::string(24, '\0'), "oldnum.cpp"}},
    {"char", {"1", "oldchar.cpp"}},
    {"varychar", {record("1"), "oldchar.cpp"}},
    {"bin", {"\1", "oldbin.cpp"}},
    {"varybin", {record("\1"), "oldbin.cpp"}},
    {"any", {"\1", "oldbin.cpp"}},
    {"date", {bytes_of(CS_DATETIME{}), "olddate.cpp"}},
    {"date4", {bytes_of(CS_DATETIME4{}), "olddate.cpp"}},
};

std::string unit_of(const LegacyMember &member) {
  return member.destination == "num" ? "oldnum.cpp" : samples.at(member.source).second;
}

} // namespace

// What the export list has of the form of a member is what sources and destinations give.
TEST(Legacy, ExportsAreTheProductOfSourcesAndDestinations) {
  std::ifstream map(ZRVTEST_MAP);
  std::stringstream text;
  text << map.rdbuf();
  const std::string all = text.str();
  const std::regex form(
      "com_(mb_)?(i1|i2|i4|bit|flt4|flt8|money|mny4|num|char|varychar|bin|varybin|"
      "date|date4|any)(to|2)\\w+");
  const std::regex name("\\w+(?=;)");
  std::set<std::string> exported, expected;
  for (auto at = std::sregex_iterator(all.begin(), all.end(), name); at != std::sregex_iterator();
       ++at)
    if (std::regex_match(at->str(), form))
      exported.insert(at->str());
  for (const LegacyMember &member : members)
    expected.insert(member.name());
  EXPECT_EQ(exported, expected);
  EXPECT_EQ(expected.size(), members.size());
  // Without the second spellings: 8 sources of 15, a bit of 13, 4 of 17, 2 dates of 8, 2 of any, 20 in
  // character sets and 4 of a style.
  const auto is_second = [](const LegacyMember &member) {
    return member.spelled_with_digit || member.destination == "mny" ||
           member.destination == "bin" || member.destination == "date";
  };
  EXPECT_EQ(std::count_if(members.begin(), members.end(), std::not_fn(is_second)), 243);
}

TEST(Legacy, SecondSpellingsAreTheSameFunctions) {
  const std::map<std::string, std::string> firsts = {
      {"mny", "money"}, {"bin", "binary"}, {"date", "datetime"}};
  int count = 0;
  for (const LegacyMember &member : members)
    if (const auto first = firsts.find(member.destination); first != firsts.end()) {
      EXPECT_EQ(member.address(), zrvtest::legacy_member(member.source, first->second).address())
          << member.name();
      ++count;
    } else if (member.spelled_with_digit) {
      LegacyMember with_to = member;
      with_to.spelled_with_digit = false;
      EXPECT_EQ(member.address(), with_to.address()) << member.name();
      ++count;
    }
  EXPECT_EQ(count, 12 + 15 + 6 + 2);
}

TEST(Legacy, NullValuesWriteNothing) {
  for (const LegacyMember &member : members) {
    SCOPED_TRACE(member.name());
    ASSERT_NE(member.address(), nullptr);
    GuardedBuffer dest(64);
    EXPECT_EQ(member(nullptr, 4, dest.data(), 64), 0);
    EXPECT_EQ(member(samples.at(member.source).first.data(), 0, dest.data(), 64), 0);
    // Without a value the destination is not looked at either.
    EXPECT_EQ(member(nullptr, 4, nullptr, 64), 0);
    EXPECT_TRUE(dest.is_untouched());
  }
}

TEST(Legacy, EmptyRecordsAreNullValues) {
  for (const LegacyMember &member : members)
    if (member.is_from_record())
      for (const CS_SMALLINT length : {CS_SMALLINT{0}, CS_SMALLINT{-1}, CS_SMALLINT{-32768}}) {
        SCOPED_TRACE(member.name() + " " + std::to_string(length));
        GuardedBuffer dest(64), source(2, 1);
        source.set(length);
        EXPECT_EQ(member(source.data(), 2, dest.data(), 64), 0);
        EXPECT_TRUE(dest.is_untouched());
      }
}

TEST(Legacy, NullDestinationsAreFatal) {
  for (const LegacyMember &member : members) {
    SCOPED_TRACE(member.name());
    const std::string &value = samples.at(member.source).first;
    EXPECT_NULL_POINTER_CHECK(unit_of(member), 0,
                              member(value.data(), static_cast<CS_INT>(value.size()), nullptr, 64));
  }
}

// Types of one width have it whatever the capacity says, and nothing behind it is written.
TEST(Legacy, WidthsDoNotDependOnTheCapacity) {
  for (const LegacyMember &member : members) {
    if (member.width() == 0)
      continue;
    for (const CS_INT destlen : {-1, 0, 1, 64}) {
      SCOPED_TRACE(member.name());
      std::string value = samples.at(member.source).first;
      if (member.is_to_date() && member.is_from_text())
        value = member.source == "char" ? "1/1/99" : record("1/1/99");
      if (member.destination == "num" && member.is_from_binary()) // has to be all there
        value = member.source == "bin" ? std::string(33, '\0') : record(std::string(33, '\0'));
      const auto length = static_cast<CS_INT>(value.size() - (member.source == "varychar" ? 2 : 0));
      GuardedBuffer source(value.size(), 1), dest(static_cast<size_t>(member.width()), 1);
      std::copy(value.begin(), value.end(), source.text());
      const CS_INT result = member(source.data(), length, dest.data(), destlen);
      // A numeric has the length of its precision; 9 is that of 18 digits, behind two bytes.
      const bool is_measured =
          member.destination == "num" && (member.source == "char" || member.source == "num");
      EXPECT_EQ(result, is_measured ? 11 : member.width());
    }
  }
}

// ---- the grid ----

namespace {

const char *const columns[] = {"i1",       "i2",     "i4",      "bit",      "flt4",   "flt8",
                               "money",    "mny4",   "num",     "char",     "string", "ntbstring",
                               "varychar", "binary", "varybin", "datetime", "date4"};

struct Row {
  const char *source;
  const char *label;
  std::string value;
  const char *marks; // one for each column
};

char mark_of(const LegacyMember &member, const std::string &value) {
  if (member.address() == nullptr)
    return ' ';
  GuardedBuffer source(value.size(), 1), dest(64, 1);
  std::copy(value.begin(), value.end(), source.text());
  LegacyOptions options;
  options.precision = 5;
  options.scale = 2;
  const auto length = static_cast<CS_INT>(value.size() - (member.source == "varychar" ? 2 : 0));
  const CS_INT result = member(source.data(), length, dest.data(), 4, options);
  switch (result) {
  case COM_OLD_OVERFLOW:
    return 'O';
  case COM_OLD_UNDERFLOW:
    return 'U';
  case COM_OLD_SYNTAX:
    return 'S';
  case COM_OLD_DOMAIN:
    return 'D';
  case CS_CONV_TRUNCATED:
    return 'T';
  default:
    return result > 0 ? '+' : '?';
  }
}

} // namespace

// By member, into numerics of 5 digits with 2 decimals and into text and binary of 4 bytes.
// + converted, O overflow, U underflow, S syntax, D domain, T the matrix's CS_CONV_TRUNCATED.
TEST(Legacy, GridOfResults) {
  const Row rows[] = {
      // clang-format off
      //                                                               i  i  i  b  f  f  m  m  n  c  s  n  v  b  v  d  d
      //                                                               1  2  4  i  l  l  n  n  u  h  t  t  a  i  a  t  a
      //                                                                        t  4  8  y  y  m  a  r  b  r  n  r     t
      //                                                                                    4                         4
      {"i1", "0", "\0"s,                                              "+  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i1", "255", "\xFF",                                           "+  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i2", "-1", bytes_of(CS_SMALLINT{-1}),                         "O  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i2", "256", bytes_of(CS_SMALLINT{256}),                       "O  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i2", "-32768", bytes_of(CS_SMALLINT{-32768}),                 "O  +  +  +  +  +  +  +  O  O  O  O  O  +  +      "},
      {"i4", "-1", bytes_of(-1),                                      "O  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i4", "999", bytes_of(999),                                    "O  +  +  +  +  +  +  +  +  +  +  +  +  +  +      "},
      {"i4", "1000", bytes_of(1000),                                  "O  +  +  +  +  +  +  +  O  +  O  O  +  +  +      "},
      {"i4", "32768", bytes_of(32768),                                "O  O  +  +  +  +  +  +  O  O  O  O  O  +  +      "},
      {"i4", "-32769", bytes_of(-32769),                              "O  U  +  +  +  +  +  +  O  O  O  O  O  +  +      "},
      {"i4", "214749", bytes_of(214749),                              "O  O  +  +  +  +  +  O  O  O  O  O  O  +  +      "},
      {"bit", "1", "\1",                                              "+  +  +  +  +  +        +  +  +  +  +  +  +      "},
      {"bit", "2", "\2",                                              "D  D  D  D  D  D        D  D  D  D  D  D  D      "},
      {"flt4", "-0.5", bytes_of(-0.5F),                               "O  +  +  +  +  +  +  +  +  +  O  O  +  +  +      "},
      {"flt4", "256", bytes_of(256.0F),                               "O  +  +  +  +  +  +  +  +  O  O  O  O  +  +      "},
      {"flt4", "3e9", bytes_of(3e9F),                                 "O  O  O  +  +  +  +  O  O  O  O  O  O  +  +      "},
      {"flt8", "1", bytes_of(1.0),                                    "+  +  +  +  +  +  +  +  +  +  +  +  +  O  O      "},
      {"flt8", "-40000", bytes_of(-40000.0),                          "O  O  +  +  +  +  +  +  O  O  O  O  O  O  O      "},
      {"flt8", "1e300", bytes_of(1e300),                              "O  O  O  +  O  +  O  O  O  O  O  O  O  O  O      "},
      {"money", "1", money(10000),                                    "+  +  +  +  +  +  +  +  +  +  O  O  +  O  O      "},
      {"money", "-1", money(-10000),                                  "O  +  +  +  +  +  +  +  +  O  O  O  O  O  O      "},
      {"money", "3e9", money(30000000000000),                         "O  O  O  +  +  +  +  O  O  O  O  O  O  O  O      "},
      {"mny4", "1", bytes_of(CS_MONEY4{10000}),                       "+  +  +  +  +  +  +  +  +  +  O  O  +  +  +      "},
      {"mny4", "-40000", bytes_of(CS_MONEY4{-400000000}),             "O  O  +  +  +  +  +  +  O  O  O  O  O  +  +      "},
      {"num", "1", numeric("1", 10, 0),                               "+  +  +  +  +  +  +  +  +  +  +  +  +  T  O      "},
      {"num", "-1.125", numeric("-1.125", 10, 3),                     "O  +  +  +  +  +  +  +  T  O  O  O  O  T  O      "},
      {"num", "1e20", numeric("100000000000000000000", 30, 0),        "O  O  O  +  +  +  O  O  O  O  O  O  O  T  O      "},
      {"num", "precision 78", "\x4E"s + std::string(34, '\0'),        "D  D  D  D  D  D  D  D  D  D  D  D  D  D  D      "},
      {"char", "12", "12",                                            "+  +  +  +  +  +  +  +  +  +  +  +  +  +  +  S  S"},
      {"char", "-1", "-1",                                            "O  +  +  S  +  +  +  +  +  +  +  +  +  S  S  S  S"},
      {"char", "2020", "2020",                                        "O  +  +  +  +  +  +  +  O  +  O  O  +  +  +  +  +"},
      {"char", "1/2/1800", "1/2/1800",                                "S  S  S  S  S  S  S  S  S  O  O  O  O  S  S  +  O"},
      {"char", "1e999", "1e999",                                      "S  S  S  S  O  O  S  S  S  O  O  O  O  +  +  S  S"},
      {"char", "1e-999", "1e-999",                                    "S  S  S  S  U  U  S  S  T  O  O  O  O  S  S  S  S"},
      {"char", "1.234", "1.234",                                      "S  S  S  S  +  +  +  +  T  O  O  O  O  S  S  S  S"},
      {"char", "99999999999999999999", "99999999999999999999",        "O  O  O  +  +  +  O  O  T  O  O  O  O  O  O  S  S"},
      {"varychar", "12", record("12"),                                "+  +  +  +  +  +  +  +  +  +  +  +  +  +  +  S  S"},
      {"varychar", "x", record("x"),                                  "S  S  S  S  S  S  S  S  O  +  +  +  +  S  S  S  S"},
      {"bin", "1 byte", "\1",                                         "+  +  +  +  +  +  +  +  U  +  +  +  +  +  +  +  +"},
      {"bin", "5 bytes", "\1\2\3\4\5",                                "+  +  +  +  +  +  +  +  U  O  O  O  O  O  O  +  +"},
      {"bin", "34 bytes", std::string(34, '\0'),                      "+  +  +  +  +  +  +  +  T  O  O  O  O  O  O  +  +"},
      {"varybin", "2 bytes", record("\1\2"),                          "+  +  +  +  +  +  +  +  U  +  O  O  +  +  +  +  +"},
      {"varybin", "34 bytes", record(std::string(34, '\0')),          "+  +  +  +  +  +  +  +  O  O  O  O  O  O  O  +  +"},
      {"date", "1753", bytes_of(CS_DATETIME{-53690, 0}),              "                           O  O  O  O  O  O  +  O"},
      {"date", "2079-06-06 23:59:30", bytes_of(CS_DATETIME{65535, 25911000}), "                           O  O  O  O  O  O  +  O"},
      {"date4", "1900", bytes_of(CS_DATETIME4{}),                     "                           O  O  O  O  +  +  +  +"},
      // clang-format on
  };
  for (const Row &row : rows) {
    std::string marks;
    for (const char *column : columns)
      marks += (marks.empty() ? "" : "  ") +
               std::string(1, mark_of(zrvtest::legacy_member(row.source, column), row.value));
    EXPECT_EQ(marks, row.marks) << row.source << " " << row.label;
  }
}
