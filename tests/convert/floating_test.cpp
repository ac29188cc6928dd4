// Conversions from floating point.
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "conversion.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "numeric_operands.h"
#include "pad_reference.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

struct Member {
  CS_INT source;
  const char *destination;
  CS_INT code;
  CS_CONV_FUNC function;
};

#define ZRVTEST_FLOATING_MEMBERS(type, source)                                                     \
  {type, "bit", CS_TYPE_BIT, comn_##source##tobit},                                                \
      {type, "i1", CS_TYPE_TINYINT, comn_##source##toi1},                                          \
      {type, "i2", CS_TYPE_SMALLINT, comn_##source##toi2},                                         \
      {type, "i4", CS_TYPE_INT, comn_##source##toi4},                                              \
      {type, "i8", CS_TYPE_BIGINT, comn_##source##toi8},                                           \
      {type, "ui2", CS_TYPE_USMALLINT, comn_##source##toui2},                                      \
      {type, "ui4", CS_TYPE_UINT, comn_##source##toui4},                                           \
      {type, "ui8", CS_TYPE_UBIGINT, comn_##source##toui8},                                        \
      {type, "flt4", CS_TYPE_REAL, comn_##source##toflt4},                                         \
      {type, "flt8", CS_TYPE_FLOAT, comn_##source##toflt8},                                        \
      {type, "num", CS_TYPE_NUMERIC, comn_##source##tonum},                                        \
      {type, "money", CS_TYPE_MONEY, comn_##source##tomoney},                                      \
      {type, "mny4", CS_TYPE_MONEY4, comn_##source##tomny4},                                       \
      {type, "char", CS_TYPE_CHAR, comn_##source##tochar},                                         \
      {type, "bin", CS_TYPE_BINARY, comn_##source##tobin},                                         \
      {type, "varchar", CS_TYPE_VARCHAR, comn_##source##tovarchar}, {                              \
    type, "varbin", CS_TYPE_VARBINARY, comn_##source##tovarbin                                     \
  }

const Member members[] = {ZRVTEST_FLOATING_MEMBERS(CS_TYPE_REAL, flt4),
                          ZRVTEST_FLOATING_MEMBERS(CS_TYPE_FLOAT, flt8)};

const Member &member(CS_INT source, const std::string &destination) {
  for (const Member &candidate : members)
    if (candidate.source == source && destination == candidate.destination)
      return candidate;
  ADD_FAILURE() << destination;
  return members[0];
}

// The bytes of a number in the source's type.
std::string source_bytes(CS_INT type, double value) {
  if (type == CS_TYPE_FLOAT)
    return {reinterpret_cast<const char *>(&value), sizeof value};
  const auto single = static_cast<float>(value);
  return {reinterpret_cast<const char *>(&single), sizeof single};
}

struct Converted {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes;
};

Converted convert(const Member &with, double value, size_t room, CS_DATAFMT destfmt,
                  size_t misalignment = 1) {
  Conversion conversion(with.function, make_format(with.source, -1), destfmt);
  const std::string source = "?" + source_bytes(with.source, value);
  GuardedBuffer dest(room, misalignment);
  const CS_RETCODE status = conversion(source.data() + 1, dest.data());
  return {status, conversion.destlen, dest.contents()};
}

const double nan_value = std::numeric_limits<double>::quiet_NaN();
const double infinite = std::numeric_limits<double>::infinity();

struct IntegerRow {
  const char *destination;
  double value;
  CS_RETCODE status;
  int64_t stored; // of ui8 the same bits
};

void check_integers(CS_INT source, const IntegerRow &row) {
  SCOPED_TRACE(testing::Message() << "type " << source << " to " << row.destination << ", "
                                  << row.value);
  const Member &with = member(source, row.destination);
  const auto width = static_cast<size_t>(row.destination[row.destination[0] == 'u' ? 2 : 1] - '0');
  const Converted result = convert(with, row.value, width, make_format(with.code, -1));
  EXPECT_EQ(result.status, row.status);
  EXPECT_EQ(result.destlen, static_cast<CS_INT>(width));
  EXPECT_EQ(result.bytes, std::string(reinterpret_cast<const char *>(&row.stored), width));
}

constexpr CS_RETCODE OK = CS_SUCCEED, OV = CS_CONV_OVERFLOW, UN = CS_CONV_UNDERFLOW;

} // namespace

TEST(FloatingToInteger, SmallTypesFromBothSources) {
  const IntegerRow rows[] = {
      // Bounds come before truncation, so a fraction beyond them is out of range.
      {"i1", 0.0, OK, 0},
      {"i1", -0.0, OK, 0},
      {"i1", 0.99, OK, 0},
      {"i1", 254.99, OK, 254},
      {"i1", 255.0, OK, 255},
      {"i1", 255.5, OV, 255},
      {"i1", 256.0, OV, 255},
      {"i1", -0.5, OV, 0}, // an overflow for tinyint, an underflow for the other unsigned types
      {"i1", -1.0, OV, 0},
      {"i1", infinite, OV, 255},
      {"i1", -infinite, OV, 0},
      {"i2", 32767.0, OK, 32767},
      {"i2", 32767.5, OV, 32767},
      {"i2", -32768.0, OK, -32768},
      {"i2", -32768.5, OV, -32768},
      {"i2", -1.9, OK, -1},
      {"i2", 1.9, OK, 1},
      {"ui2", -0.1, UN, 0},
      {"ui2", -0.0, OK, 0},
      {"ui2", 65535.0, OK, 65535},
      {"ui2", 65535.5, OV, 65535},
      {"i4", -1.9, OK, -1},
      {"i4", -2147483648.0, OK, -2147483648LL},
      {"i4", -2147483904.0, OV, -2147483648LL},
      {"i4", 2147483520.0, OK, 2147483520},
      {"ui4", 4294967040.0, OK, 4294967040LL},
      {"ui4", -1e-30, UN, 0},
      {"ui4", 4294967296.0, OV, 4294967295LL},
      {"ui8", -1e-30, UN, 0},
      {"i8", 1.5, OK, 1},
      {"i8", -1.5, OK, -1},
      {"i8", 9007199254740992.0, OK, 9007199254740992},
      {"ui8", 9007199254740992.0, OK, 9007199254740992},
      // What is not a number passes both bounds.
      {"i1", nan_value, OK, 0},
      {"i2", nan_value, OK, 0},
      {"ui2", nan_value, OK, 0},
      {"i4", nan_value, OK, INT32_MIN},
      {"ui4", nan_value, OK, 0},
      {"i8", nan_value, OK, INT64_MIN},
      {"ui8", nan_value, OK, INT64_MIN},
  };
  for (const IntegerRow &row : rows)
    for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT})
      check_integers(source, row);
}

TEST(FloatingToInteger, ThirtyTwoBitsFromDouble) {
  const IntegerRow rows[] = {
      {"i4", 2147483647.0, OK, 2147483647},     {"i4", 2147483647.5, OV, 2147483647},
      {"i4", -2147483648.5, OV, -2147483648LL}, {"ui4", 4294967295.0, OK, 4294967295LL},
      {"ui4", 4294967295.5, OV, 4294967295LL},
  };
  for (const IntegerRow &row : rows)
    check_integers(CS_TYPE_FLOAT, row);
  // The closest single to 2147483647 is 2147483648, which is beyond it.
  check_integers(CS_TYPE_REAL, {"i4", 2147483647.0, OV, 2147483647});
  check_integers(CS_TYPE_REAL, {"ui4", 4294967295.0, OV, 4294967295LL});
}

// Deliberate: the limits of the 64-bit types are decimal numbers short of the extremes, other ones
// for each source, and the clamped value is the limit.
TEST(FloatingToInteger, SixtyFourBitLimits) {
  const auto bits = [](uint64_t value) { return static_cast<int64_t>(value); };
  const IntegerRow from_double[] = {
      {"i8", 9223372036854769664.0, OK, 9223372036854769664},
      {"i8", 9223372036854770688.0, OV, 9223372036854769664},
      {"i8", 1e19, OV, 9223372036854769664},
      {"i8", infinite, OV, 9223372036854769664},
      {"i8", -9223372036854769664.0, OK, -9223372036854769664},
      {"i8", -9223372036854770688.0, OV, -9223372036854769664},
      {"i8", -9223372036854775808.0, OV, -9223372036854769664},
      {"i8", -infinite, OV, -9223372036854769664},
      {"ui8", 9223372036854774784.0, OK, 9223372036854774784},
      // From the top bit on the result is one below the exact value.
      {"ui8", 9223372036854775808.0, OK, 9223372036854775807},
      {"ui8", 9223372036854777856.0, OK, bits(9223372036854777855U)},
      {"ui8", 18446744073709500416.0, OK, bits(18446744073709500415U)},
      {"ui8", 18446744073709502464.0, OV, bits(18446744073709500416U)},
      {"ui8", 1e20, OV, bits(18446744073709500416U)},
  };
  for (const IntegerRow &row : from_double)
    check_integers(CS_TYPE_FLOAT, row);
  const IntegerRow from_single[] = {
      // 9.22337e18 is no single: the next one below it is in range, the next above is not.
      {"i8", std::bit_cast<float>(0x5EFFFFFCU), OK, 9223369837831520256},
      {"i8", std::bit_cast<float>(0x5EFFFFFDU), OV, 9223370000000000000},
      {"i8", 1e19, OV, 9223370000000000000},
      {"i8", std::bit_cast<float>(0xDEFFFFFCU), OK, -9223369837831520256},
      {"i8", std::bit_cast<float>(0xDEFFFFFDU), OV, -9223370000000000000},
      {"ui8", 9223372036854775808.0, OK, 9223372036854775807},
      {"ui8", std::bit_cast<float>(0x5F7FFFD7U), OK, bits(18446698993732812799U)},
      {"ui8", std::bit_cast<float>(0x5F7FFFD8U), OV, bits(18446700000000000000U)},
      {"ui8", infinite, OV, bits(18446700000000000000U)},
  };
  for (const IntegerRow &row : from_single)
    check_integers(CS_TYPE_REAL, row);
}

TEST(FloatingToFloat, CopiesAndWidens) {
  for (const double value : {0.0, -0.0, 0.1, -1.5, 1e30, 1.401298464324817e-45, infinite}) {
    for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT}) {
      const bool single = source == CS_TYPE_REAL;
      const Converted same = convert(member(source, single ? "flt4" : "flt8"), value,
                                     single ? 4 : 8, make_format(source, -1));
      EXPECT_EQ(same.status, CS_SUCCEED);
      EXPECT_EQ(same.destlen, single ? 4 : 8);
      EXPECT_EQ(same.bytes, source_bytes(source, value));
    }
    const Converted wide =
        convert(member(CS_TYPE_REAL, "flt8"), value, 8, make_format(CS_TYPE_FLOAT, -1));
    EXPECT_EQ(wide.status, CS_SUCCEED);
    EXPECT_EQ(wide.destlen, 8);
    EXPECT_EQ(wide.bytes, source_bytes(CS_TYPE_FLOAT, static_cast<float>(value)));
  }
}

TEST(FloatingToFloat, DoubleToSingle) {
  struct Row {
    double value;
    CS_RETCODE status;
    uint32_t bits;
  };
  const double limit = FLT_MAX;
  const Row rows[] = {
      {limit, OK, 0x7F7FFFFF},
      {-limit, OK, 0xFF7FFFFF},
      {std::nextafter(limit, infinite), OV, 0x7F7FFFFF},
      {std::nextafter(-limit, -infinite), OV, 0xFF7FFFFF},
      {1e39, OV, 0x7F7FFFFF},
      {-1e39, OV, 0xFF7FFFFF},
      {infinite, OV, 0x7F7FFFFF},
      {-infinite, OV, 0xFF7FFFFF},
      // There is no test at the small end.
      {1e-60, OK, 0},
      {-1e-60, OK, 0x80000000},
      {1.401298464324817e-45, OK, 1},
      {0.1, OK, 0x3DCCCCCD},
      {16777217.0, OK, 0x4B800000},
  };
  for (const Row &row : rows) {
    const Converted result =
        convert(member(CS_TYPE_FLOAT, "flt4"), row.value, 4, make_format(CS_TYPE_REAL, -1));
    EXPECT_EQ(result.status, row.status) << row.value;
    EXPECT_EQ(result.destlen, 4);
    EXPECT_EQ(result.bytes, std::string(reinterpret_cast<const char *>(&row.bits), 4)) << row.value;
  }
  const Converted result =
      convert(member(CS_TYPE_FLOAT, "flt4"), nan_value, 4, make_format(CS_TYPE_REAL, -1));
  float stored;
  std::memcpy(&stored, result.bytes.data(), sizeof stored);
  EXPECT_EQ(result.status, CS_SUCCEED);
  EXPECT_TRUE(std::isnan(stored));
}

TEST(FloatingToBit, AllButTheZeroes) {
  for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT})
    for (const auto &[value, bit] :
         {std::pair{0.0, '\0'}, {-0.0, '\0'}, {1e-40, '\1'}, {-2.0, '\1'}, {nan_value, '\1'}}) {
      const Converted result =
          convert(member(source, "bit"), value, 1, make_format(CS_TYPE_BIT, -1));
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.destlen, 1);
      EXPECT_EQ(result.bytes, std::string(1, bit)) << value;
    }
  EXPECT_EQ(convert(member(CS_TYPE_FLOAT, "bit"), 1e-300, 1, make_format(CS_TYPE_BIT, -1)).bytes,
            "\1");
}

namespace {

Converted to_num(CS_INT source, double value, CS_INT precision, CS_INT scale,
                 CS_INT code = CS_TYPE_NUMERIC) {
  CS_DATAFMT format = make_format(code, sizeof(CS_NUMERIC));
  format.precision = precision;
  format.scale = scale;
  return convert(member(source, "num"), value, sizeof(CS_NUMERIC), format);
}

std::string num_text(const Converted &result) {
  CS_NUMERIC value;
  std::memcpy(&value, result.bytes.data(), sizeof value);
  return zrvtest::Decimal::of(value).text();
}

} // namespace

TEST(FloatingToNum, Values) {
  const Converted half = to_num(CS_TYPE_FLOAT, 0.5, 5, 2);
  EXPECT_EQ(half.status, CS_SUCCEED);
  EXPECT_EQ(half.destlen, 35);
  EXPECT_EQ(half.bytes[0], 5);
  EXPECT_EQ(half.bytes[1], 2);
  EXPECT_EQ(num_text(half), "0.50 (5,2)");
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, -123.45, 10, 2, CS_TYPE_DECIMAL)), "-123.45 (10,2)");
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, -0.0, 5, 0)), "0 (5,0)");
  // 17 digits of the double; a single counts as the double that it widens to.
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, 0.1, 20, 18)), "0.100000000000000010 (20,18)");
  EXPECT_EQ(num_text(to_num(CS_TYPE_REAL, 0.1, 20, 18)), "0.100000001490116120 (20,18)");
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, 1e30, 31, 0)), "1000000000000000000000000000000 (31,0)");
  // The largest shape there is.
  EXPECT_EQ(to_num(CS_TYPE_FLOAT, 0.5, 77, 77).status, CS_SUCCEED);
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, 0.5, 77, 77)),
            "0.5" + std::string(76, '0') + " (77,77)");
}

TEST(FloatingToNum, Failures) {
  for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT}) {
    for (const CS_INT precision : {0, 78, -1, CS_DFMT_FROMSOURCE}) {
      const Converted result = to_num(source, 1.0, precision, 0);
      EXPECT_EQ(result.status, CS_CONV_BADPRECISION) << precision;
      EXPECT_EQ(result.destlen, 35);
      EXPECT_EQ(result.bytes, std::string(35, '\xA5'));
    }
    for (const CS_INT bad : {78, CS_DFMT_FROMSOURCE}) {
      const Converted scale = to_num(source, 1e-05, 20, bad);
      EXPECT_EQ(scale.status, CS_CONV_BADSCALE) << bad;
      EXPECT_EQ(scale.destlen, 35);
      EXPECT_EQ(scale.bytes, std::string(35, '\xA5'));
    }
    EXPECT_EQ(to_num(source, 1000.0, 3, 0).status, CS_CONV_OVERFLOW);
    EXPECT_EQ(to_num(source, 999.0, 3, 0).status, CS_SUCCEED);
    // Data must not end the process: none of these fails a check.
    for (const double value : {infinite, -infinite, nan_value})
      EXPECT_EQ(to_num(source, value, 77, 0).status, CS_CONV_OVERFLOW) << value;
  }
  EXPECT_EQ(to_num(CS_TYPE_FLOAT, 1e300, 77, 0).status, CS_CONV_OVERFLOW);
  // What is too small for the scale is zero.
  EXPECT_EQ(to_num(CS_TYPE_FLOAT, 1e-300, 77, 0).status, CS_SUCCEED);
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, -1e-300, 77, 0)), "0 (77,0)");
}

namespace {

Converted to_text(CS_INT source, double value, CS_INT maxlength, CS_INT format = 0,
                  CS_INT code = CS_TYPE_CHAR) {
  return convert(member(source, "char"), value, static_cast<size_t>(std::max(maxlength, 0)),
                 make_format(code, maxlength, format));
}

std::string text_of(CS_INT source, double value) {
  const Converted result = to_text(source, value, 64);
  EXPECT_EQ(result.status, CS_SUCCEED);
  return result.bytes.substr(0, static_cast<size_t>(result.destlen));
}

// The rules on what the C library prints.
std::string reference_text(double value) {
  char printed[64];
  std::snprintf(printed, sizeof printed, "%.*g", 17, value == 0.0 ? 0.0 : value);
  std::string text = printed;
  if (text.compare(0, 2, "0.") == 0)
    text.erase(0, 1);
  if (text.find_first_of(".e") == std::string::npos)
    text += ".0";
  return text;
}

} // namespace

TEST(FloatingToText, Examples) {
  const std::pair<double, const char *> rows[] = {
      {0.0, "0.0"},
      {-0.0, "0.0"},
      {0.5, ".5"},
      {-0.5, "-0.5"}, // a negative value keeps its zero
      {2.0, "2.0"},
      {3.0, "3.0"},
      {1e20, "1e+20"},
      {1e16, "10000000000000000.0"},
      {1e17, "1e+17"},
      {0.0001, ".0001"},
      {0.00001, "1.0000000000000001e-05"},
      {0.1, ".10000000000000001"},
      {-123.456, "-123.456"},
      {5e-324, "4.9406564584124654e-324"},
      {-1.7976931348623157e308, "-1.7976931348623157e+308"},
      {-0.00012345678901234567, "-0.00012345678901234567"},
      {infinite, "inf.0"},
      {-infinite, "-inf.0"},
      {nan_value, "nan.0"},
  };
  for (const auto &[value, text] : rows)
    EXPECT_EQ(text_of(CS_TYPE_FLOAT, value), text);
  EXPECT_EQ(text_of(CS_TYPE_REAL, 0.1), ".10000000149011612");
  EXPECT_EQ(text_of(CS_TYPE_REAL, 1.5), "1.5");
  EXPECT_EQ(text_of(CS_TYPE_REAL, 3.0), "3.0");
}

// In every room, with every pad: the number whole, or a star.
TEST(FloatingToText, EveryRoom) {
  for (const double value : {1.5, -0.5, 0.1, -1.7976931348623157e308}) {
    const std::string digits = reference_text(value);
    const auto length = static_cast<CS_INT>(digits.size());
    for (CS_INT maxlength = -1; maxlength <= length + 3; ++maxlength)
      for (CS_INT format = 0; format < 8; ++format) {
        zrvtest::Padded expected{std::string(static_cast<size_t>(std::max(maxlength, 0)), '\xA5'),
                                 std::min(maxlength, length)};
        CS_RETCODE status = CS_CONV_OVERFLOW;
        if (maxlength > length || (maxlength == length && (format & N) == 0)) {
          expected.bytes.replace(0, digits.size(), digits);
          status = zrvtest::reference_pad_text(1, length, format, maxlength, expected);
        } else if (maxlength > 1) {
          expected.bytes.replace(0, 2, "*\0"s);
          expected.length = 1;
          zrvtest::reference_pad_text(1, 1, format, maxlength, expected);
        }
        const Converted result = to_text(CS_TYPE_FLOAT, value, maxlength, format);
        EXPECT_EQ(result.status, status) << value << " in " << maxlength << ", format " << format;
        EXPECT_EQ(result.destlen, expected.length);
        EXPECT_EQ(result.bytes, expected.bytes);
      }
  }
  const Converted star = to_text(CS_TYPE_FLOAT, 1.5, 2);
  EXPECT_EQ(star.status, CS_CONV_OVERFLOW);
  EXPECT_EQ(star.destlen, 1);
  EXPECT_EQ(star.bytes, "*\0"s);
  EXPECT_EQ(to_text(CS_TYPE_FLOAT, 1.5, 8, B).bytes, "1.5     ");
  EXPECT_EQ(to_text(CS_TYPE_FLOAT, 1.5, 5, N).bytes, "1.5\0\xA5"s);
  EXPECT_EQ(to_text(CS_TYPE_FLOAT, 1.5, 5, P | B).status, CS_CONV_PADCONFLICT);
}

// Every exponent of the format, with random digits, as the C library prints it.
TEST(FloatingToText, AsTheCLibraryPrints) {
  std::mt19937_64 random(20261122);
  const int rounds = zrvtest::sanitized ? 4 : 60;
  for (uint64_t exponent = 0; exponent < 2048; ++exponent)
    for (int round = 0; round < rounds; ++round) {
      const uint64_t fraction = random() >> (round % 13 == 0 ? 63 : 12);
      const auto value = std::bit_cast<double>((random() & 1) << 63 | exponent << 52 | fraction);
      if (std::isnan(value))
        continue;
      ASSERT_EQ(text_of(CS_TYPE_FLOAT, value), reference_text(value));
      const auto single = std::bit_cast<float>(static_cast<uint32_t>(random()));
      if (!std::isnan(single)) {
        ASSERT_EQ(text_of(CS_TYPE_REAL, single), reference_text(single));
      }
    }
}

TEST(FloatingToText, NoLocaleHasASay) {
  zrvtest::ForeignLocale locale;
  EXPECT_EQ(text_of(CS_TYPE_FLOAT, 1234.5), "1234.5");
  EXPECT_EQ(num_text(to_num(CS_TYPE_FLOAT, 1234.5, 10, 2)), "1234.50 (10,2)");
}

TEST(FloatingToVarchar, WithoutTerminator) {
  for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT})
    for (const double value : {-2.5, 0.0, 1e20, infinite}) {
      const std::string text = reference_text(static_cast<float>(value));
      const Converted result = convert(member(source, "varchar"), static_cast<float>(value),
                                       sizeof(CS_VARCHAR), make_format(CS_TYPE_VARCHAR, 0));
      CS_SMALLINT length;
      std::memcpy(&length, result.bytes.data(), sizeof length);
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.destlen, 258);
      EXPECT_EQ(length, static_cast<CS_SMALLINT>(text.size()));
      EXPECT_EQ(result.bytes.substr(2), text + std::string(256 - text.size(), '\xA5'));
    }
}

TEST(FloatingToBinary, TheBytesOfTheValue) {
  for (const CS_INT source : {CS_TYPE_REAL, CS_TYPE_FLOAT}) {
    const std::string bytes = source_bytes(source, -1234.5);
    const auto width = static_cast<CS_INT>(bytes.size());
    const Converted whole =
        convert(member(source, "bin"), -1234.5, bytes.size(), make_format(CS_TYPE_BINARY, width));
    EXPECT_EQ(whole.status, CS_SUCCEED);
    EXPECT_EQ(whole.destlen, width);
    EXPECT_EQ(whole.bytes, bytes);
    const Converted cut =
        convert(member(source, "bin"), -1234.5, 3, make_format(CS_TYPE_BINARY, 3));
    EXPECT_EQ(cut.status, CS_CONV_TRUNCATED);
    EXPECT_EQ(cut.destlen, 3);
    EXPECT_EQ(cut.bytes, bytes.substr(0, 3));
    const Converted record = convert(member(source, "varbin"), -1234.5, sizeof(CS_VARBINARY),
                                     make_format(CS_TYPE_VARBINARY, 0));
    EXPECT_EQ(record.status, CS_SUCCEED);
    EXPECT_EQ(record.destlen, 258);
    EXPECT_EQ(record.bytes.substr(0, 2 + bytes.size()),
              std::string(1, static_cast<char>(width)) + "\0"s + bytes);
  }
}

TEST(FloatingChecks, PointersAndDatatypes) {
  for (const Member &with : members) {
    SCOPED_TRACE(testing::Message() << "type " << with.source << " to " << with.destination);
    const bool forwards = with.code == CS_TYPE_BINARY || with.code == CS_TYPE_VARBINARY;
    const char *unit = with.source == CS_TYPE_REAL ? "com_flt4.cpp" : "com_flt8.cpp";
    zrvtest::expect_null_checks(forwards ? "com_bin.cpp" : unit, with.function,
                                make_format(with.source, 8), make_format(with.code, 8));
    if (forwards)
      continue;
    for (CS_INT code = -1; code <= CS_TYPE_COUNT; ++code)
      for (const bool of_source : {true, false}) {
        const bool text = code == CS_TYPE_CHAR || code == CS_TYPE_LONGCHAR ||
                          code == CS_TYPE_TEXT || code == CS_TYPE_SENSITIVITY ||
                          code == CS_TYPE_BOUNDARY || code == CS_TYPE_XML;
        const bool accepted = of_source                      ? code == with.source
                              : with.code == CS_TYPE_CHAR    ? text
                              : with.code == CS_TYPE_NUMERIC ? code == 16 || code == 17
                                                             : code == with.code;
        Conversion conversion(with.function, make_format(with.source, 8),
                              make_format(with.code, 40));
        conversion.destfmt.precision = 10;
        (of_source ? conversion.srcfmt : conversion.destfmt).datatype = code;
        GuardedBuffer dest(sizeof(CS_VARCHAR));
        const double source = 0.0;
        if (accepted) {
          EXPECT_EQ(conversion(&source, dest.data()), CS_SUCCEED);
        } else {
          zrvtest::CheckTrap trap;
          EXPECT_EQ(conversion(&source, dest.data()), CS_FAIL) << code;
          EXPECT_EQ(trap.finish().signals, 1);
          EXPECT_EQ(conversion.destlen, Conversion::untouched_length);
          EXPECT_TRUE(dest.is_untouched());
        }
      }
  }
}

TEST(Floating, NothingAllocates) {
  zrvtest::AllocationProbe probe;
  for (const Member &with : members) {
    CS_DATAFMT format = make_format(with.code, 64);
    format.precision = 20;
    convert(with, 0.1, 512, format);
  }
  EXPECT_EQ(probe.allocations(), 0U);
}
