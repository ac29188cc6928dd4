// Text to integers and bit: the parsers, and the members over them.
#include <random>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "integer_text_reference.h"
#include "test_scale.h"
#include "text_world.h"

using zrvtest::chars;
using zrvtest::FromText;
using zrvtest::make_format;
using zrvtest::TestCharset;
using zrvtest::text_families;
using zrvtest::TextMember;
using zrvtest::TextSet;
using zrvtest::TextWorld;
using zrvtest::varchars;

namespace {

const TextMember members[] = {
    ZRVTEST_TEXT_MEMBER(i1, CS_TYPE_TINYINT, 1),    ZRVTEST_TEXT_MEMBER(i2, CS_TYPE_SMALLINT, 2),
    ZRVTEST_TEXT_MEMBER(i4, CS_TYPE_INT, 4),        ZRVTEST_TEXT_MEMBER(i8, CS_TYPE_BIGINT, 8),
    ZRVTEST_TEXT_MEMBER(ui2, CS_TYPE_USMALLINT, 2), ZRVTEST_TEXT_MEMBER(ui4, CS_TYPE_UINT, 4),
    ZRVTEST_TEXT_MEMBER(ui8, CS_TYPE_UBIGINT, 8),
};
const TextMember bit = ZRVTEST_TEXT_MEMBER(bit, CS_TYPE_BIT, 1);

const TextMember &member(const std::string &destination) {
  for (const TextMember &candidate : members)
    if (destination == candidate.destination)
      return candidate;
  ADD_FAILURE() << destination;
  return members[0];
}

// The value of a result, with its sign where the type has one.
std::string value_of(const std::string &destination, const std::string &bytes) {
  uint64_t bits = 0;
  std::memcpy(&bits, bytes.data(), bytes.size());
  const size_t spare = 64 - 8 * bytes.size();
  if (destination[0] == 'i' && destination != "i1")
    return std::to_string(static_cast<int64_t>(bits << spare) >> spare);
  return std::to_string(bits);
}

struct Row {
  const char *destination, *text;
  int parsed; // what the parser returns
  const char *value;
};

const Row rows[] = {
    {"i4", "", 0, "0"},
    {"i4", " ", 4, "0"},
    {"i4", "-", 4, "0"},
    {"i4", "  +  ", 4, "0"},
    {"i4", "0", 4, "0"},
    {"i4", "007", 4, "7"},
    {"i4", "  -  42  ", 4, "-42"},
    {"i4", "+5", 4, "5"},
    {"i4", "+-1", -2, "0"},
    {"i4", "--1", -2, "0"},
    {"i4", "- +1", -2, "0"},
    {"i4", "12x", -2, "12"},
    {"i4", "-12 3", -2, "-12"},
    {"i4", "1-", -2, "1"},
    {"i4", "x", -2, "0"},
    {"i4", "\t1", -2, "0"}, // a blank is 0x20 alone
    {"i4", "1\t", -2, "1"},
    {"i4", "1.0", -2, "1"},
    {"i4", "2147483647", 4, "2147483647"},
    {"i4", "-2147483648", 4, "-2147483648"},
    {"i4", "000000000002147483647", 4, "2147483647"},
    // On overflow the digits that fitted, times ten where the last digit alone was too much.
    {"i4", "2147483648", -1, "2147483640"},
    {"i4", "-2147483649", -1, "-2147483640"},
    {"i4", "2147483650", -1, "214748365"},
    {"i4", "-2147483650", -1, "-214748365"},
    {"i4", "99999999999", -1, "999999999"},
    {"i4", "2147483648x", -1, "2147483640"}, // what follows is not looked at
    {"i1", "255", 4, "255"},
    {"i1", "256", -1, "0"},
    {"i1", "300", -1, "44"},
    {"i1", "-1", -1, "255"},
    {"i1", "4294967296", -1, "0"},
    {"i1", "12x", -2, "0"},
    {"i1", "", 0, "0"},
    {"i2", "32767", 4, "32767"},
    {"i2", "32768", -1, "-32768"},
    {"i2", "-32768", 4, "-32768"},
    {"i2", "-32769", -1, "32767"},
    {"i2", "99999999999", -1, "0"},
    {"i2", "7 x", -2, "0"},
    {"ui2", "65535", 4, "65535"},
    {"ui2", "65536", -1, "0"},
    {"ui2", "70000", -1, "4464"},
    {"ui2", "3000000000", -1, "24064"}, // an unsigned 32-bit number, so its low bytes are stored
    {"ui2", "4294967295", -1, "65535"},
    {"ui2", "4294967296", -1, "0"},
    // Deliberate: read as an unsigned integer, so a minus is bad syntax here, and not for tinyint.
    {"ui2", "-1", -2, "0"},
    {"ui2", "-0", -2, "0"},
    {"ui2", " -", -2, "0"},
    {"ui2", "+7 ", 4, "7"},
    {"ui2", "+-7", -2, "0"},
    {"ui2", "7x", -2, "0"},
    {"ui2", "", 0, "0"},
    {"i1", "-0", 4, "0"},
    {"i1", "3000000000", -1, "0"}, // no signed 32-bit number
    {"i2", "3000000000", -1, "0"},
    {"i8", "9223372036854775807", 4, "9223372036854775807"},
    {"i8", "9223372036854775808", -1, "9223372036854775807"},
    {"i8", "9223372036854775810", -1, "9223372036854775807"},
    {"i8", "-9223372036854775808", 4, "-9223372036854775808"},
    {"i8", "-9223372036854775809", -1, "-9223372036854775808"},
    {"i8", "-99999999999999999999999", -1, "-9223372036854775808"},
    {"i8", "12 3", -2, "12"},
    {"ui4", "4294967295", 4, "4294967295"},
    {"ui4", "4294967296", -1, "4294967295"},
    {"ui4", "4294967300", -1, "4294967295"},
    {"ui4", "+4294967289", 4, "4294967289"},
    {"ui4", "++1", -2, "0"},
    {"ui4", "-0", -2, "0"},
    {"ui4", " - 1", -2, "0"},
    {"ui4", "5y", -2, "5"},
    {"ui8", "18446744073709551615", 4, "18446744073709551615"},
    {"ui8", "18446744073709551616", -1, "18446744073709551615"},
    {"ui8", "18446744073709551620", -1, "18446744073709551615"},
    {"ui8", "184467440737095516150", -1, "18446744073709551615"},
    {"ui8", "-1", -2, "0"},
    {"ui8", "+1", 4, "1"},
};

// The exported parser of a type, its value as text.
template <class Integer>
std::pair<int, std::string> parse_as(int (*parser)(char *, int, Integer *, CHAR_ATTRIB *),
                                     const std::string &destination, const std::string &text,
                                     CHAR_ATTRIB *set) {
  zrvtest::GuardedBuffer source(text.size());
  std::memcpy(source.data(), text.data(), text.size());
  Integer value;
  std::memset(&value, 0xA5, sizeof value);
  const int status = parser(source.text(), static_cast<int>(text.size()), &value, set);
  return {status,
          value_of(destination, std::string(reinterpret_cast<char *>(&value), sizeof value))};
}

std::pair<int, std::string> parse(const std::string &destination, const std::string &text,
                                  CHAR_ATTRIB *set) {
  if (destination == "i1")
    return parse_as(com__chtoi1_mb, destination, text, set);
  if (destination == "i2")
    return parse_as(com__chtoi2_mb, destination, text, set);
  if (destination == "i4")
    return parse_as(com__chtoi4_mb, destination, text, set);
  if (destination == "i8")
    return parse_as(com__chtoi8_mb, destination, text, set);
  if (destination == "ui2")
    return parse_as(com__chtoui2_mb, destination, text, set);
  if (destination == "ui4")
    return parse_as(com__chtoui4_mb, destination, text, set);
  return parse_as(com__chtoui8_mb, destination, text, set);
}

CS_RETCODE status_of(int parsed) {
  return parsed == -1 ? CS_CONV_OVERFLOW : parsed == -2 ? CS_CONV_SYNTAX : CS_SUCCEED;
}

} // namespace

TEST(IntegerParsers, EveryRowInEverySet) {
  TextWorld world;
  for (const Row &row : rows) {
    SCOPED_TRACE(testing::Message() << row.destination << " '" << row.text << "'");
    const std::pair<int, std::string> expected{row.parsed, row.value};
    EXPECT_EQ(parse(row.destination, row.text, nullptr), expected);
    EXPECT_EQ(parse(row.destination, row.text, com_get_charattrib()), expected);
    for (TextSet *set : {&world.utf8, &world.two_bytes, &world.four_bytes}) {
      EXPECT_EQ(parse(row.destination, row.text, set->tables.get()), expected);
      EXPECT_EQ(parse(row.destination, set->wide(row.text), set->tables.get()), expected);
    }
  }
}

TEST(IntegerParsers, SingleBytesAreTakenAsTheyAre) {
  // A set of one-byte characters is not asked what its characters reduce to.
  TextSet set(TestCharset::one_byte(), 1);
  std::memset(set.tables.get()->cs_norm_map, '7', 256);
  EXPECT_EQ(parse("i4", "12", set.tables.get()), (std::pair<int, std::string>{4, "12"}));
}

TEST(IntegerParsers, ACutCharacterIsNoDigit) {
  TextWorld world;
  const std::string wide = world.two_bytes.wide("12");
  ASSERT_EQ(wide.size(), 4U);
  EXPECT_EQ(parse("i4", wide.substr(0, 3), world.two_bytes.tables.get()),
            (std::pair<int, std::string>{-2, "1"}));
}

TEST(IntegerParsers, NullPointers) {
  CS_INT value = 5;
  char text[] = "1";
  EXPECT_NULL_POINTER_CHECK("com_chtoi.cpp", -2, com__chtoi4_mb(text, 1, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK("com_chtoi.cpp", -2, com__chtoi4_mb(nullptr, 1, &value, nullptr));
  EXPECT_EQ(value, 5);
  EXPECT_EQ(com__chtoi4_mb(nullptr, 0, &value, nullptr), 0);
  EXPECT_EQ(value, 0);
  value = 5;
  EXPECT_EQ(com__chtoi4_mb(text, -1, &value, nullptr), 0);
  EXPECT_EQ(value, 0);
}

// Numbers of any length, signs and blanks anywhere, in narrow and wide characters.
TEST(IntegerParsers, RandomTextsAgainstTheStates) {
  std::mt19937 random(20261122);
  TextWorld world;
  const std::string alphabet = "0123456789012345678901234567890123456789  +-x";
  const int count = zrvtest::sanitized ? 20'000 : 200'000;
  for (int round = 0; round < count; ++round) {
    std::string text;
    for (auto left = random() % 25; left > 0; --left)
      text += alphabet[random() % alphabet.size()];
    for (const TextMember &type : members) {
      const zrvtest::IntegerParse expected = zrvtest::slow_integer_parse(type.destination, text);
      ASSERT_EQ(parse(type.destination, text, nullptr), std::pair(expected.status, expected.value))
          << type.destination << " \"" << text << '"';
      if (round % 8 == 0) {
        const std::string mixed =
            world.two_bytes.tables.spell(text, [&] { return random() % 2 == 0; });
        ASSERT_EQ(parse(type.destination, mixed, world.two_bytes.tables.get()),
                  std::pair(expected.status, expected.value))
            << type.destination << " \"" << text << '"';
      }
    }
  }
}

TEST(TextToInteger, StatusesAndLengths) {
  TextWorld world;
  for (const Row &row : rows)
    for (const auto family : text_families) {
      SCOPED_TRACE(testing::Message() << row.destination << " '" << row.text << "'");
      const TextMember &to = member(row.destination);
      for (TextSet *set : {static_cast<TextSet *>(nullptr), &world.utf8, &world.two_bytes}) {
        const FromText result =
            world.to_fixed(family, to, set != nullptr ? set->wide(row.text) : row.text, set);
        EXPECT_EQ(result.status, status_of(row.parsed));
        EXPECT_EQ(result.destlen, row.parsed == -2 ? 0 : static_cast<CS_INT>(to.width));
        EXPECT_EQ(value_of(row.destination, result.bytes), row.value);
      }
    }
}

TEST(TextToBit, OnlyNumbersAreStored) {
  struct BitRow {
    const char *text;
    CS_RETCODE status;
    CS_INT destlen;
    const char *stored;
  };
  const BitRow bit_rows[] = {
      {"0", CS_SUCCEED, 1, nullptr},
      {"", CS_SUCCEED, 1, nullptr},
      {"1", CS_SUCCEED, 1, "\1"},
      {" -256 ", CS_SUCCEED, 1, "\1"},
      {"2147483648", CS_CONV_OVERFLOW, 1, "\xA5"},
      {"true", CS_CONV_SYNTAX, 0, "\xA5"},
      {"1x", CS_CONV_SYNTAX, 0, "\xA5"},
  };
  TextWorld world;
  for (const auto family : text_families)
    for (const BitRow &row : bit_rows) {
      const FromText result = world.to_fixed(family, bit, row.text);
      EXPECT_EQ(result.status, row.status) << row.text;
      EXPECT_EQ(result.destlen, row.destlen);
      EXPECT_EQ(result.bytes,
                row.stored != nullptr ? std::string(row.stored) : std::string(1, '\0'));
    }
}

// A record is read no further than it goes, whatever its length says, and not at all below nothing.
TEST(TextToInteger, LengthsOfRecords) {
  TextWorld world;
  CS_VARCHAR record;
  std::memset(record.str, '0', sizeof record.str);
  record.str[255] = '7';
  CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, 0), destfmt = make_format(CS_TYPE_INT, 4);
  for (const auto &[length, expected] :
       {std::pair{256, 7}, {300, 7}, {32767, 7}, {255, 0}, {0, 0}, {-1, 0}}) {
    record.len = static_cast<CS_SMALLINT>(length);
    zrvtest::GuardedBuffer source(sizeof record);
    std::memcpy(source.data(), &record, sizeof record);
    CS_INT value = -1, destlen = -1;
    EXPECT_EQ(comn_varchartoi4(&world.context, &srcfmt, source.data(), &destfmt, &value, &destlen),
              CS_SUCCEED);
    EXPECT_EQ(value, expected) << length;
  }
}
