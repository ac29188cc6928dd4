// Raw copies of fixed types to binary, and hexadecimal text to binary.
#include <climits>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"

using zrvtest::Conversion;
using zrvtest::expect_null_checks;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

using FixedCopy = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                                 CS_INT *, CS_INT);

// A raw copy of `tlen` bytes. The datatypes of the formats are of no interest to it.
struct Copy {
  FixedCopy function;
  CS_DATAFMT srcfmt = make_format(-1, -1);
  CS_DATAFMT destfmt;
  CS_CONTEXT context{};
  CS_INT destlen = Conversion::untouched_length;

  CS_RETCODE operator()(const void *src, void *dest, CS_INT tlen) {
    return function(&context, &srcfmt, const_cast<void *>(src), &destfmt, dest, &destlen, tlen);
  }
};

std::string counting_bytes(size_t count) {
  std::string bytes(count, '\0');
  for (size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<char>(i * 7 + 1);
  return bytes;
}

} // namespace

TEST(FixedToBin, CapacitiesAndPads) {
  const std::string source = "\x01\xFE\x03\xFC";
  struct Row {
    CS_INT maxlength, format;
    CS_RETCODE status;
    CS_INT destlen;
    std::string bytes; // '\xA5' is a byte that was not written
  };
  const Row rows[] = {
      {0, 0, CS_CONV_TRUNCATED, 0, ""},
      {1, 0, CS_CONV_TRUNCATED, 1, "\x01"},
      {2, P, CS_CONV_TRUNCATED, 2, "\x01\xFE"},
      {3, P, CS_CONV_TRUNCATED, 3, "\x01\xFE\x03"},
      {4, P, CS_SUCCEED, 4, "\x01\xFE\x03\xFC"},
      {6, 0, CS_SUCCEED, 4, "\x01\xFE\x03\xFC\xA5\xA5"},
      {6, P, CS_SUCCEED, 6, "\x01\xFE\x03\xFC\0\0"s},
      // blanks and terminators are for text
      {6, B | N, CS_SUCCEED, 4, "\x01\xFE\x03\xFC\xA5\xA5"},
      {6, P | B | N, CS_SUCCEED, 6, "\x01\xFE\x03\xFC\0\0"s},
  };
  for (const Row &row : rows)
    for (size_t misalignment = 0; misalignment < 4; ++misalignment) {
      SCOPED_TRACE(testing::Message() << "maxlength " << row.maxlength << " format " << row.format);
      Copy copy{comn_fixedtobin, {}, make_format(-1, row.maxlength, row.format)};
      GuardedBuffer buffer(static_cast<size_t>(row.maxlength), misalignment);
      EXPECT_EQ(copy(source.data(), buffer.data(), 4), row.status);
      EXPECT_EQ(copy.destlen, row.destlen);
      EXPECT_EQ(buffer.contents(), row.bytes);
    }
}

TEST(FixedToBin, Checks) {
  const char source[4] = {1, 2, 3, 4};
  GuardedBuffer buffer(4);
  Copy copy{comn_fixedtobin, {}, make_format(CS_TYPE_BINARY, -1)};
  EXPECT_ASSERTION("com_bin.cpp", CS_FAIL, copy(source, buffer.data(), 4));
  copy.destfmt.maxlength = 4;
  EXPECT_ASSERTION("com_bin.cpp", CS_FAIL, copy(source, buffer.data(), 0));
  EXPECT_ASSERTION("com_bin.cpp", CS_FAIL, copy(source, buffer.data(), -1));
  EXPECT_EQ(copy.destlen, Conversion::untouched_length);
  EXPECT_TRUE(buffer.is_untouched());
}

TEST(FixedToVarbin, Lengths) {
  const std::string source = counting_bytes(300);
  struct Row {
    CS_INT tlen, len;
    CS_RETCODE status;
  };
  const Row rows[] = {
      {0, 0, CS_SUCCEED},
      {1, 1, CS_SUCCEED},
      {8, 8, CS_SUCCEED},
      {255, 255, CS_SUCCEED},
      {256, 256, CS_SUCCEED},
      // what does not fit is left away and is an overflow
      {257, 256, CS_CONV_OVERFLOW},
      {300, 256, CS_CONV_OVERFLOW},
      {INT_MAX, 256, CS_CONV_OVERFLOW},
      // deliberate: a negative length copies all that the record holds, and that is no failure
      {-1, 256, CS_SUCCEED},
      {INT_MIN, 256, CS_SUCCEED},
  };
  for (const Row &row : rows)
    // The capacity and the format bits are of no interest: the record always has room.
    for (const CS_INT maxlength : {258, 0, -1}) {
      SCOPED_TRACE(testing::Message() << "tlen " << row.tlen);
      Copy copy{comn_fixedtovarbin, {}, make_format(-1, maxlength, P | B | N)};
      GuardedBuffer record(sizeof(CS_VARBINARY), 1);
      EXPECT_EQ(copy(source.data(), record.data(), row.tlen), row.status);
      EXPECT_EQ(copy.destlen, 258);
      EXPECT_EQ(record.value<CS_SMALLINT>(), row.len);
      const auto used = static_cast<size_t>(row.len);
      EXPECT_EQ(record.contents().substr(2, used), source.substr(0, used));
      EXPECT_TRUE(record.is_untouched(2 + used));
    }
}

// A value may be copied to where it stands, or to a place that it overlaps.
TEST(FixedCopies, InPlace) {
  const std::string bytes = counting_bytes(9);
  GuardedBuffer buffer(sizeof(CS_VARBINARY));
  for (const size_t source : {0U, 1U, 2U, 5U}) {
    SCOPED_TRACE(source);
    std::memcpy(buffer.data(), bytes.data(), bytes.size());
    Copy to_varbin{comn_fixedtovarbin, {}, make_format(CS_TYPE_VARBINARY, 258)};
    EXPECT_EQ(to_varbin(buffer.data() + source, buffer.data(), 4), CS_SUCCEED);
    EXPECT_EQ(buffer.contents(6), "\4\0"s + bytes.substr(source, 4));
    std::memcpy(buffer.data(), bytes.data(), bytes.size());
    Copy to_bin{comn_fixedtobin, {}, make_format(CS_TYPE_BINARY, 4)};
    EXPECT_EQ(to_bin(buffer.data() + source, buffer.data(), 4), CS_SUCCEED);
    EXPECT_EQ(buffer.contents(4), bytes.substr(source, 4));
  }
}

TEST(FixedCopies, NullPointers) {
  for (const FixedCopy function : {comn_fixedtobin, comn_fixedtovarbin}) {
    const auto copy = [function](auto... arguments) { return function(arguments..., 4); };
    expect_null_checks("com_bin.cpp", copy, make_format(8, 4), make_format(1, 4));
  }
}

TEST(Hex2BinBytes, TrimsAndSkipsThePrefix) {
  struct Row {
    std::string text, rest;
    size_t offset; // of the rest in the text
  };
  const Row rows[] = {
      {"AB", "AB", 0},
      {"  AB  ", "AB", 2},
      {"0xAB", "AB", 2},
      {"0XAB", "AB", 2},
      {" \t0xAB\n", "AB", 4},
      {"0x 12", " 12", 2}, // white space behind the prefix is not trimmed
      {"0x0xAB", "0xAB", 2},
      {"x12", "x12", 0},
      {"0", "0", 0},
      {"00x1", "00x1", 0},
      // nothing is left
      {"0x", "", 2},
      {" 0X ", "", 3},
      {" ", "", 0},
      {"\t \n", "", 0},
      // NUL is no white space
      {"\0A\0"s, "\0A\0"s, 0},
      // the white-space set: 9 to 15 and the blank
      {"\x09\x0A\x0B\x0C\x0D\x0E\x0F\x20"
       "1\x20\x0F\x0E\x0D\x0C\x0B\x0A\x09",
       "1", 8},
      {"\x08"
       "1",
       "\x08"
       "1",
       0},
      {"1\x10", "1\x10", 0},
      {"1\xA0", "1\xA0", 0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    std::string text = row.text;
    CS_CHAR *source = text.data();
    auto length = static_cast<CS_INT>(text.size());
    comn__hex2binbytes(&source, &length);
    EXPECT_EQ(length, static_cast<CS_INT>(row.rest.size()));
    EXPECT_EQ(source - text.data(), static_cast<ptrdiff_t>(row.offset));
    EXPECT_EQ(text, row.text); // the text itself stays as it is
  }
}

// Every byte on either side of a digit: 9 to 15 and 32 go, all others stay.
TEST(Hex2BinBytes, EveryByteAsWhiteSpace) {
  for (int c = 0; c < 256; ++c) {
    const bool space = (c >= 9 && c <= 15) || c == 32;
    char text[3] = {static_cast<char>(c), '5', static_cast<char>(c)};
    CS_CHAR *source = text;
    CS_INT length = 3;
    comn__hex2binbytes(&source, &length);
    EXPECT_EQ(source, space ? text + 1 : text) << c;
    EXPECT_EQ(length, space ? 1 : 3) << c;
  }
}

TEST(Hex2BinBytes, Checks) {
  char text[] = "12";
  CS_CHAR *source = text;
  CS_CHAR *nothing = nullptr;
  CS_INT length = 2;
  const auto null_pointer = [](CS_CHAR **src, CS_INT *srclen) {
    const auto report = zrvtest::catch_check([&] { comn__hex2binbytes(src, srclen); });
    EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "com_bin.cpp")) << report.text;
  };
  null_pointer(nullptr, &length);
  null_pointer(&source, nullptr);
  null_pointer(&nothing, &length);
  for (const CS_INT empty : {0, -1, INT_MIN}) {
    length = empty;
    const auto report = zrvtest::catch_check([&] { comn__hex2binbytes(&source, &length); });
    EXPECT_TRUE(zrvtest::is_assertion_report(report, "com_bin.cpp")) << report.text;
    EXPECT_EQ(length, empty);
    EXPECT_EQ(source, text);
  }
}

namespace {

// Hexadecimal text to a binary of `maxlength` bytes. The guarded buffer fails the test for a byte
// written outside them.
struct HexResult {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes;
};

HexResult hex(const std::string &text, CS_INT maxlength, CS_INT format = 0,
              size_t misalignment = 0) {
  Conversion convert(comn_chartobin, make_format(CS_TYPE_CHAR, static_cast<CS_INT>(text.size())),
                     make_format(CS_TYPE_BINARY, maxlength, format));
  GuardedBuffer dest(static_cast<size_t>(std::max(maxlength, 0)), misalignment);
  const CS_RETCODE status = convert(text.data(), dest.data());
  return {status, convert.destlen, dest.contents()};
}

int digit_value(int c) {
  return c >= '0' && c <= '9'   ? c - '0'
         : c >= 'a' && c <= 'f' ? c - 'a' + 10
         : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                : -1;
}

} // namespace

TEST(CharToBin, Examples) {
  struct Row {
    std::string text;
    CS_INT maxlength, format;
    CS_RETCODE status;
    CS_INT destlen;
    std::string bytes; // those that are known; '\xA5' is one that was not written
  };
  const Row rows[] = {
      {"0xABC", 2, 0, CS_SUCCEED, 2, "\x0A\xBC"},
      {"ABCDEF", 2, 0, CS_CONV_TRUNCATED, 2, "\xAB\xCD"},
      {"ABCDEF", 3, 0, CS_SUCCEED, 3, "\xAB\xCD\xEF"},
      {"abcdef", 5, 0, CS_SUCCEED, 3, "\xAB\xCD\xEF\xA5\xA5"},
      {"abcdef", 5, P, CS_SUCCEED, 5, "\xAB\xCD\xEF\0\0"s},
      {"abcdef", 5, P | B | N, CS_SUCCEED, 5, "\xAB\xCD\xEF\0\0"s},
      {"abcdef", 5, B | N, CS_SUCCEED, 3, "\xAB\xCD\xEF\xA5\xA5"},
      {" 0X1f ", 1, 0, CS_SUCCEED, 1, "\x1F"},
      {"0", 1, 0, CS_SUCCEED, 1, "\0"s},
      {"7", 3, P, CS_SUCCEED, 3, "\x07\0\0"s},
      // odd counts: the first digit is a byte of its own
      {"F", 1, 0, CS_SUCCEED, 1, "\x0F"},
      {"123", 1, 0, CS_CONV_TRUNCATED, 1, "\x01"},
      {"123", 2, 0, CS_SUCCEED, 2, "\x01\x23"},
      {"12345", 2, P, CS_CONV_TRUNCATED, 2, "\x01\x23"},
      // no room
      {"123", 0, 0, CS_CONV_OVERFLOW, 0, ""},
      {"G23", 0, 0, CS_CONV_OVERFLOW, 0, ""}, // before any digit is looked at
      {"12", 0, 0, CS_CONV_TRUNCATED, 0, ""},
      {"123", -1, P, CS_CONV_OVERFLOW, 0, ""},
      {"12", -1, P, CS_CONV_TRUNCATED, 0, ""},
      {"12", INT_MIN, P, CS_CONV_TRUNCATED, 0, ""},
      // no digits at all
      {"0x", 2, 0, CS_SUCCEED, 0, "\xA5\xA5"},
      {"0x", 2, P, CS_SUCCEED, 2, "\0\0"s},
      {"   ", 2, P, CS_SUCCEED, 2, "\0\0"s},
      {"   ", 0, P, CS_SUCCEED, 0, ""},
      // digits left over are not looked at
      {"ABCDxyz!", 2, 0, CS_CONV_TRUNCATED, 2, "\xAB\xCD"},
      {"ABCDxyz", 3, 0, CS_CONV_SYNTAX, 0, ""}, // A BC Dx
      {"ABCDxyz", 1, 0, CS_CONV_TRUNCATED, 1, "\x0A"},
      // the prefix counts once, and only in front
      {"0x0x12", 3, 0, CS_CONV_SYNTAX, 0, ""},
      {"120x", 3, 0, CS_CONV_SYNTAX, 0, ""},
      {"x12", 3, 0, CS_CONV_SYNTAX, 0, ""},
      {"1 2", 3, 0, CS_CONV_SYNTAX, 0, ""},
      {"+12", 3, 0, CS_CONV_SYNTAX, 0, ""},
      {"12\0"s, 3, 0, CS_CONV_SYNTAX, 0, ""},
      // a syntax error is not padded
      {"1G", 3, P, CS_CONV_SYNTAX, 0, ""},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(testing::Message()
                 << "'" << row.text << "' maxlength " << row.maxlength << " format " << row.format);
    const HexResult result = hex(row.text, row.maxlength, row.format);
    EXPECT_EQ(result.status, row.status);
    EXPECT_EQ(result.destlen, row.destlen);
    if (row.status != CS_CONV_SYNTAX) {
      EXPECT_EQ(result.bytes, row.bytes);
    }
  }
}

TEST(CharToBin, EveryPairOfBytes) {
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second) {
      // Two digits keep white space and prefixes away from the ends.
      const char text[] = {'1', '2', static_cast<char>(first), static_cast<char>(second), '3', '4'};
      const HexResult result = hex(std::string(text, sizeof text), 4);
      const int high = digit_value(first), low = digit_value(second);
      if (high < 0 || low < 0) {
        ASSERT_EQ(result.status, CS_CONV_SYNTAX) << first << ' ' << second;
        ASSERT_EQ(result.destlen, 0);
      } else {
        const char bytes[] = {0x12, static_cast<char>(high * 16 + low), 0x34};
        ASSERT_EQ(result.status, CS_SUCCEED) << first << ' ' << second;
        ASSERT_EQ(result.destlen, 3);
        ASSERT_EQ(result.bytes.substr(0, 3), std::string(bytes, 3));
      }
    }
}

TEST(CharToBin, EveryByteAsTheOddFirstDigit) {
  for (int c = 0; c < 256; ++c) {
    if ((c >= 9 && c <= 15) || c == 32)
      continue;
    const std::string text = {static_cast<char>(c), '2', '3'};
    const HexResult result = hex(text, 2);
    const int value = digit_value(c);
    EXPECT_EQ(result.status, value < 0 ? CS_CONV_SYNTAX : CS_SUCCEED) << c;
    EXPECT_EQ(result.destlen, value < 0 ? 0 : 2) << c;
    if (value >= 0) {
      EXPECT_EQ(result.bytes, std::string({static_cast<char>(value), 0x23})) << c;
    }
  }
}

// A bad byte in each place of texts of every length: found where it is looked at, and only there.
TEST(CharToBin, ABadByteInEveryPlace) {
  for (const char bad : {'g', 'G', '/', ':', '@', '`', '\0', '\x80', '\xFF', '-'})
    for (size_t digits = 3; digits <= 70; ++digits)
      for (size_t place = 1; place + 1 < digits; ++place) {
        std::string text(digits, '7');
        text[place] = bad;
        for (const CS_INT maxlength : {static_cast<CS_INT>((digits + 1) / 2), CS_INT{2}}) {
          const size_t read = static_cast<size_t>(maxlength) * 2 - digits % 2;
          const HexResult result = hex(text, maxlength);
          const CS_RETCODE expected = place < read    ? CS_CONV_SYNTAX
                                      : read < digits ? CS_CONV_TRUNCATED
                                                      : CS_SUCCEED;
          ASSERT_EQ(result.status, expected)
              << digits << " digits, place " << place << ", maxlength " << maxlength;
          ASSERT_EQ(result.destlen, expected == CS_CONV_SYNTAX ? 0 : maxlength);
        }
      }
}

// Lengths and capacities around one another, against the digits taken one by one.
TEST(CharToBin, LengthsAndCapacities) {
  const char *const alphabet = "0123456789abcdefABCDEF";
  for (size_t digits = 1; digits <= 140; digits += digits < 20 ? 1 : 13) {
    std::string text;
    for (size_t i = 0; i < digits; ++i)
      text += alphabet[(i * 7 + digits) % 22];
    std::string bytes;
    const std::string even = digits % 2 != 0 ? "0" + text : text;
    for (size_t i = 0; i < even.size(); i += 2)
      bytes += static_cast<char>(digit_value(even[i]) * 16 + digit_value(even[i + 1]));
    const size_t needed = bytes.size();
    for (size_t capacity = 1; capacity <= needed + 3; ++capacity)
      for (const CS_INT format : {0, P}) {
        const HexResult result = hex(text, static_cast<CS_INT>(capacity), format, capacity % 4);
        std::string expected = bytes.substr(0, capacity);
        size_t length = expected.size();
        expected.resize(capacity, format == P ? '\0' : static_cast<char>(GuardedBuffer::filler));
        if (format == P)
          length = capacity;
        ASSERT_EQ(result.status, capacity < needed ? CS_CONV_TRUNCATED : CS_SUCCEED);
        ASSERT_EQ(result.destlen, static_cast<CS_INT>(length)) << text << ' ' << capacity;
        ASSERT_EQ(result.bytes, expected) << text << ' ' << capacity;
      }
  }
}

TEST(CharToBin, InPlace) {
  for (const std::string text : {"0xABCDEF0123", "  0xFEDCB", "12345", "0a0B0c0D"}) {
    const HexResult apart = hex(text, 16);
    GuardedBuffer buffer(16);
    std::memcpy(buffer.data(), text.data(), text.size());
    Conversion convert(comn_chartobin, make_format(CS_TYPE_CHAR, static_cast<CS_INT>(text.size())),
                       make_format(CS_TYPE_BINARY, 16));
    EXPECT_EQ(convert(buffer.data(), buffer.data()), apart.status);
    EXPECT_EQ(convert.destlen, apart.destlen);
    const auto length = static_cast<size_t>(apart.destlen);
    EXPECT_EQ(buffer.contents(length), apart.bytes.substr(0, length)) << text;
  }
}

// An empty source fails the check of the reader; nothing has changed.
TEST(CharToBin, AnEmptySourceIsFatal) {
  for (const CS_INT length : {0, -1, INT_MIN}) {
    GuardedBuffer dest(4);
    Conversion convert(comn_chartobin, make_format(CS_TYPE_CHAR, length),
                       make_format(CS_TYPE_BINARY, 4, P));
    EXPECT_ASSERTION("com_bin.cpp", CS_FAIL, convert("12", dest.data()));
    EXPECT_EQ(convert.destlen, Conversion::untouched_length);
    EXPECT_TRUE(dest.is_untouched());
  }
}

TEST(CharToBin, DatatypesOfBothSides) {
  const auto text_type = [](CS_INT type) {
    return type == 0 || type == 2 || type == 4 || type == 21 || type == 22 || type == 34;
  };
  const auto binary_type = [](CS_INT type) { return type == 1 || type == 3 || type == 5; };
  for (CS_INT type = -2; type <= 42; ++type) {
    GuardedBuffer dest(2);
    Conversion from(comn_chartobin, make_format(type, 2), make_format(CS_TYPE_BINARY, 2));
    if (text_type(type))
      EXPECT_EQ(from("12", dest.data()), CS_SUCCEED) << type;
    else
      EXPECT_ASSERTION("com_char.cpp", CS_FAIL, from("12", dest.data()));
    Conversion to(comn_chartobin, make_format(CS_TYPE_CHAR, 2), make_format(type, 2));
    if (binary_type(type))
      EXPECT_EQ(to("12", dest.data()), CS_SUCCEED) << type;
    else
      EXPECT_ASSERTION("com_char.cpp", CS_FAIL, to("12", dest.data()));
  }
}

TEST(CharToBin, NullPointers) {
  expect_null_checks("com_char.cpp", comn_chartobin, make_format(0, 2), make_format(1, 4));
}

// The source ends within what would be a prefix, or within a digit.
TEST(CharToBin, ReadsNothingBehindTheSource) {
  char text[] = "0x5";
  CS_CHAR *source = text;
  CS_INT length = 1;
  comn__hex2binbytes(&source, &length);
  EXPECT_EQ(source, text);
  EXPECT_EQ(length, 1);
  Conversion convert(comn_chartobin, make_format(CS_TYPE_CHAR, 1), make_format(CS_TYPE_BINARY, 2));
  GuardedBuffer dest(2);
  EXPECT_EQ(convert(text, dest.data()), CS_SUCCEED);
  EXPECT_EQ(convert.destlen, 1);
  EXPECT_EQ(dest.contents(1), "\0"s);
}

TEST(CharToBin, PrefixBeginsWithAZero) {
  for (const char *const text : {"1x12", "axab", "xx12", "OX12"}) {
    const HexResult result = hex(text, 3);
    EXPECT_EQ(result.status, CS_CONV_SYNTAX) << text;
    EXPECT_EQ(result.destlen, 0) << text;
  }
}
