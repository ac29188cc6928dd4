// Integers to text, varchar, binary and varbinary.
#include <algorithm>
#include <climits>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "integer_family.h"
#include "pad_reference.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::integer_member;
using zrvtest::integer_types;
using zrvtest::IntegerMember;
using zrvtest::IntegerType;
using zrvtest::value_bytes;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

// What a member delivers into `maxlength` bytes.
struct Text {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes; // '\xA5' is a byte that was not written
};

Text to_text(const IntegerType &type, const std::string &value, CS_INT maxlength, CS_INT format,
             CS_INT code = CS_TYPE_CHAR, size_t misalignment = 0) {
  Conversion convert = make_conversion(integer_member(type.name, "char"), maxlength, format);
  convert.destfmt.datatype = code;
  const std::string bytes =
      std::string(misalignment, '?') + value_bytes(zrvtest::parse_bits(value), type.width);
  GuardedBuffer dest(static_cast<size_t>(std::max(maxlength, 0)), misalignment);
  const CS_RETCODE status = convert(bytes.data() + misalignment, dest.data());
  return {status, convert.destlen, dest.contents()};
}

// The same, long-hand: the digits whole or a star, then the pads.
Text reference(const std::string &digits, CS_INT maxlength, CS_INT format) {
  const auto length = static_cast<CS_INT>(digits.size());
  const std::string untouched(static_cast<size_t>(std::max(maxlength, 0)),
                              static_cast<char>(GuardedBuffer::filler));
  zrvtest::Padded dest{untouched, std::min(maxlength, length)};
  if (maxlength > length || (maxlength == length && (format & N) == 0)) {
    dest.bytes.replace(0, digits.size(), digits);
    const CS_RETCODE status = zrvtest::reference_pad_text(1, length, format, maxlength, dest);
    return {status, dest.length, dest.bytes};
  }
  if (maxlength > 1) {
    dest.bytes.replace(0, 2, "*\0"s);
    dest.length = 1;
    zrvtest::reference_pad_text(1, 1, format, maxlength, dest);
  }
  return {CS_CONV_OVERFLOW, dest.length, dest.bytes};
}

// Each length that a type prints to, with the ends of its range.
std::vector<std::string> values_of_every_length(const IntegerType &type) {
  std::vector<std::string> values = {"0"};
  const uint64_t top = ~uint64_t{0} >> (64 - 8 * type.width + (type.is_signed ? 1 : 0));
  uint64_t power = 1;
  for (int digits = 1; power <= top; ++digits) {
    values.push_back(std::to_string(power));
    if (power > 1)
      values.push_back(std::to_string(power - 1));
    values.push_back(std::string("1234567890123456789").substr(0, static_cast<size_t>(digits)));
    if (zrvtest::parse_bits(values.back()) > top || digits > 19)
      values.pop_back();
    if (power > top / 10)
      break;
    power *= 10;
  }
  values.push_back(std::to_string(top));
  if (type.is_signed) {
    for (size_t i = values.size(); i-- > 1;)
      values.push_back("-" + values[i]);
    values.push_back(std::to_string(-static_cast<int64_t>(top) - 1));
  }
  return values;
}

} // namespace

TEST(IntegerToText, Examples) {
  struct Row {
    const char *source, *value;
    CS_INT maxlength, format;
    CS_RETCODE status;
    CS_INT destlen;
    std::string bytes;
  };
  const Row rows[] = {
      {"i4", "12345", 5, 0, CS_SUCCEED, 5, "12345"},
      {"i4", "12345", 7, 0, CS_SUCCEED, 5, "12345\xA5\xA5"},
      {"i4", "-7", 2, 0, CS_SUCCEED, 2, "-7"},
      {"i4", "0", 1, 0, CS_SUCCEED, 1, "0"},
      {"i1", "200", 3, 0, CS_SUCCEED, 3, "200"}, // i1 is unsigned
      {"i2", "-32768", 6, 0, CS_SUCCEED, 6, "-32768"},
      {"i4", "-2147483648", 11, 0, CS_SUCCEED, 11, "-2147483648"},
      {"i8", "-9223372036854775808", 20, 0, CS_SUCCEED, 20, "-9223372036854775808"},
      {"ui2", "65535", 5, 0, CS_SUCCEED, 5, "65535"},
      {"ui4", "4294967295", 10, 0, CS_SUCCEED, 10, "4294967295"},
      {"ui8", "18446744073709551615", 20, 0, CS_SUCCEED, 20, "18446744073709551615"},
      // the pads
      {"i4", "12345", 6, N, CS_SUCCEED, 6, "12345\0"s},
      {"i4", "12345", 8, N, CS_SUCCEED, 6, "12345\0\xA5\xA5"s},
      {"i4", "12345", 8, B, CS_SUCCEED, 8, "12345   "},
      {"i4", "12345", 8, B | N, CS_SUCCEED, 8, "12345  \0"s},
      {"i4", "12345", 8, P, CS_SUCCEED, 8, "12345\0\0\0"s},
      {"i4", "12345", 8, P | B, CS_CONV_PADCONFLICT, 5, "12345\xA5\xA5\xA5"},
      {"i4", "12345", 5, P | B, CS_CONV_PADCONFLICT, 5, "12345"},
      // no room: a star and a NUL, never a part of the number
      {"i4", "12345", 5, N, CS_CONV_OVERFLOW, 2, "*\0\xA5\xA5\xA5"s},
      {"i4", "12345", 4, 0, CS_CONV_OVERFLOW, 1, "*\0\xA5\xA5"s},
      {"i4", "12345", 2, 0, CS_CONV_OVERFLOW, 1, "*\0"s},
      {"i4", "12345", 4, B, CS_CONV_OVERFLOW, 4, "*   "},
      {"i4", "12345", 4, B | N, CS_CONV_OVERFLOW, 4, "*  \0"s},
      {"i4", "12345", 4, P, CS_CONV_OVERFLOW, 4, "*\0\0\0"s},
      {"i4", "12345", 4, P | B, CS_CONV_OVERFLOW, 1, "*\0\xA5\xA5"s},
      // with one byte or none nothing is written, and the length is that of the room
      {"i4", "12345", 1, N, CS_CONV_OVERFLOW, 1, "\xA5"},
      {"i4", "12345", 1, P, CS_CONV_OVERFLOW, 1, "\xA5"},
      {"i4", "5", 1, N, CS_CONV_OVERFLOW, 1, "\xA5"},
      {"i4", "12345", 0, N, CS_CONV_OVERFLOW, 0, ""},
      // a negative capacity is no room
      {"i4", "12345", -1, N | P, CS_CONV_OVERFLOW, -1, ""},
      {"i4", "12345", INT_MIN, 0, CS_CONV_OVERFLOW, INT_MIN, ""},
      // other bits have no say
      {"i4", "12345", 6, CS_DFMT_ESCQUOTE | 64, CS_SUCCEED, 5, "12345\xA5"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(testing::Message() << row.source << ' ' << row.value << " maxlength "
                                    << row.maxlength << " format " << row.format);
    const Text text =
        to_text(zrvtest::integer_type(row.source), row.value, row.maxlength, row.format);
    EXPECT_EQ(text.status, row.status);
    EXPECT_EQ(text.destlen, row.destlen);
    EXPECT_EQ(text.bytes, row.bytes);
  }
}

// Numbers of every length into every room, with every combination of bits, to every text type.
TEST(IntegerToText, EveryLengthIntoEveryRoom) {
  constexpr CS_INT text_types[] = {CS_TYPE_CHAR,        CS_TYPE_LONGCHAR, CS_TYPE_TEXT,
                                   CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY, CS_TYPE_XML};
  size_t turn = 0;
  for (const IntegerType &type : integer_types)
    for (const std::string &value : values_of_every_length(type))
      for (CS_INT format = 0; format < 8; ++format)
        for (CS_INT maxlength = -1; maxlength <= 24; ++maxlength, ++turn) {
          const CS_INT code = text_types[turn % 6];
          const Text text = to_text(type, value, maxlength, format, code, turn % 8);
          const Text expected = reference(value, maxlength, format);
          ASSERT_EQ(text.status, expected.status)
              << type.name << ' ' << value << " maxlength " << maxlength << " format " << format;
          ASSERT_EQ(text.destlen, expected.destlen)
              << type.name << ' ' << value << " maxlength " << maxlength << " format " << format;
          ASSERT_EQ(text.bytes, expected.bytes)
              << type.name << ' ' << value << " maxlength " << maxlength << " format " << format;
        }
}

TEST(IntegerToText, EveryValueOfTheSmallSources) {
  for (const IntegerType &type : integer_types) {
    if (type.width > 2)
      continue;
    const int first = type.is_signed ? -32768 : 0;
    const int last = type.is_signed ? 32767 : type.width == 1 ? 255 : 65535;
    Conversion convert = make_conversion(integer_member(type.name, "char"), 8);
    for (int value = first; value <= last; ++value) {
      char text[8];
      ASSERT_EQ(convert(&value, text), CS_SUCCEED);
      ASSERT_EQ(std::string(text, static_cast<size_t>(convert.destlen)), std::to_string(value));
    }
  }
}

// The record always has room: neither maxlength nor the format bits are looked at.
TEST(IntegerToVarchar, TheNumberAndANul) {
  for (const IntegerType &type : integer_types)
    for (const std::string &value : values_of_every_length(type))
      for (const CS_INT maxlength : {258, 1, 0, -1}) {
        SCOPED_TRACE(testing::Message() << type.name << ' ' << value);
        Conversion convert =
            make_conversion(integer_member(type.name, "varchar"), maxlength, P | B | N);
        const std::string bytes = value_bytes(zrvtest::parse_bits(value), type.width);
        GuardedBuffer record(sizeof(CS_VARCHAR), 1);
        EXPECT_EQ(convert(bytes.data(), record.data()), CS_SUCCEED);
        EXPECT_EQ(convert.destlen, 258);
        EXPECT_EQ(record.value<CS_SMALLINT>(), static_cast<CS_SMALLINT>(value.size()));
        EXPECT_EQ(record.contents().substr(2, value.size() + 1), value + "\0"s);
        EXPECT_TRUE(record.is_untouched(2 + value.size() + 1));
      }
}

// The bytes of the value as they stand in memory.
TEST(IntegerToBinary, EveryCapacity) {
  const std::string value = "\x81\x02\x83\x04\x85\x06\x87\x08";
  for (const IntegerType &type : integer_types)
    for (CS_INT maxlength = 0; maxlength <= 10; ++maxlength)
      for (CS_INT format = 0; format < 8; ++format) {
        SCOPED_TRACE(testing::Message()
                     << type.name << " maxlength " << maxlength << " format " << format);
        Conversion convert = make_conversion(integer_member(type.name, "bin"), maxlength, format);
        GuardedBuffer dest(static_cast<size_t>(maxlength), static_cast<size_t>(format));
        const CS_RETCODE status = convert(value.data(), dest.data());
        EXPECT_EQ(status, maxlength < type.width ? CS_CONV_TRUNCATED : CS_SUCCEED);
        const bool filled = maxlength > type.width && (format & P) != 0;
        std::string expected =
            value.substr(0, static_cast<size_t>(std::min(maxlength, type.width)));
        EXPECT_EQ(convert.destlen, filled ? maxlength : static_cast<CS_INT>(expected.size()));
        expected.resize(static_cast<size_t>(maxlength),
                        filled ? '\0' : static_cast<char>(GuardedBuffer::filler));
        EXPECT_EQ(dest.contents(), expected);
      }
}

TEST(IntegerToBinary, ANegativeCapacityIsFatal) {
  for (const IntegerType &type : integer_types) {
    Conversion convert = make_conversion(integer_member(type.name, "bin"), -1, P);
    const uint64_t value = 1;
    GuardedBuffer dest(8);
    EXPECT_ASSERTION("com_bin.cpp", CS_FAIL, convert(&value, dest.data()));
    EXPECT_EQ(convert.destlen, Conversion::untouched_length);
    EXPECT_TRUE(dest.is_untouched());
  }
}

TEST(IntegerToVarbinary, TheBytesOfTheValue) {
  const std::string value = "\x81\x02\x83\x04\x85\x06\x87\x08";
  for (const IntegerType &type : integer_types)
    for (const CS_INT maxlength : {258, 1, 0, -1}) {
      Conversion convert =
          make_conversion(integer_member(type.name, "varbin"), maxlength, P | B | N);
      GuardedBuffer record(sizeof(CS_VARBINARY), 1);
      const auto width = static_cast<size_t>(type.width);
      EXPECT_EQ(convert(value.data(), record.data()), CS_SUCCEED);
      EXPECT_EQ(convert.destlen, 258);
      EXPECT_EQ(record.value<CS_SMALLINT>(), type.width);
      EXPECT_EQ(record.contents().substr(2, width), value.substr(0, width));
      EXPECT_TRUE(record.is_untouched(2 + width));
    }
}

// Digits are not grouped, whatever the host's locale would do.
TEST(IntegerToText, IndependentOfTheLocale) {
  const zrvtest::ForeignLocale locale;
  if (!locale.is_set())
    GTEST_SKIP() << "no locale can be compiled here";
  const Text text = to_text(zrvtest::integer_type("i8"), "-1234567890123", 14, 0);
  EXPECT_EQ(text.status, CS_SUCCEED);
  EXPECT_EQ(text.bytes, "-1234567890123");
}
