// Integers to floats.
#include <cstring>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "integer_family.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::integer_member;
using zrvtest::value_bytes;

namespace {

struct Row {
  const char *source, *destination, *value;
  uint64_t bits;
};

const Row rows[] = {
    {"i1", "flt4", "0", 0},
    {"i1", "flt4", "255", 0x437F0000},
    {"i1", "flt8", "255", 0x406FE00000000000},
    {"i2", "flt4", "-32768", 0xC7000000},
    {"i2", "flt8", "-1", 0xBFF0000000000000},
    {"i2", "flt8", "32767", 0x40DFFFC000000000},
    {"ui2", "flt4", "65535", 0x477FFF00},
    {"ui2", "flt8", "65535", 0x40EFFFE000000000},
    // rounded to the nearest, ties to even
    {"i4", "flt4", "16777216", 0x4B800000},
    {"i4", "flt4", "16777217", 0x4B800000},
    {"i4", "flt4", "16777219", 0x4B800002},
    {"i4", "flt4", "2147483647", 0x4F000000},
    {"i4", "flt4", "-2147483648", 0xCF000000},
    {"i4", "flt8", "2147483647", 0x41DFFFFFFFC00000},
    {"i4", "flt8", "-2147483648", 0xC1E0000000000000},
    {"ui4", "flt4", "2147483648", 0x4F000000},
    {"ui4", "flt4", "4294967295", 0x4F800000},
    {"ui4", "flt8", "4294967295", 0x41EFFFFFFFE00000},

    {"i8", "flt4", "0", 0},
    {"i8", "flt4", "-1", 0xBF800000},
    {"i8", "flt8", "-1", 0xBFF0000000000000},
    {"i8", "flt8", "9007199254740993", 0x4340000000000000},
    {"i8", "flt8", "9007199254740995", 0x4340000000000002},
    // there is no lower limit
    {"i8", "flt4", "-9223372036854775808", 0xDF000000},
    {"i8", "flt8", "-9223372036854775808", 0xC3E0000000000000},
    {"i8", "flt4", "-9223370000000000000", 0xDEFFFFFC},
    {"i8", "flt4", "-9223370200000000000", 0xDEFFFFFD},
    // below the limit the nearest float, from the limit on the same one for all
    {"i8", "flt4", "9223369000000000000", 0x5EFFFFFA},
    {"i8", "flt4", "9223369999999999999", 0x5EFFFFFC},
    {"i8", "flt4", "9223370000000000000", 0x5EFFFFFC},
    {"i8", "flt4", "9223370112709427201", 0x5EFFFFFC}, // the first whose nearest is 5EFFFFFD
    {"i8", "flt4", "9223370200000000000", 0x5EFFFFFC},
    {"i8", "flt4", "9223372036854775807", 0x5EFFFFFC}, // the nearest would be 5F000000
    {"i8", "flt8", "9223372036854769151", 0x43DFFFFFFFFFFFF9},
    {"i8", "flt8", "9223372036854769152", 0x43DFFFFFFFFFFFFA},
    {"i8", "flt8", "9223372036854769663", 0x43DFFFFFFFFFFFFA},
    {"i8", "flt8", "9223372036854769664", 0x43DFFFFFFFFFFFFA},
    {"i8", "flt8", "9223372036854770177", 0x43DFFFFFFFFFFFFA}, // the first whose nearest is ...B
    {"i8", "flt8", "9223372036854770700", 0x43DFFFFFFFFFFFFA},
    {"i8", "flt8", "9223372036854775807", 0x43DFFFFFFFFFFFFA}, // not 43E0000000000000

    {"ui8", "flt4", "0", 0},
    {"ui8", "flt8", "9007199254740993", 0x4340000000000000},
    // with the top bit clear the nearest float, without a limit
    {"ui8", "flt4", "9223372036854775807", 0x5F000000},
    {"ui8", "flt8", "9223372036854775807", 0x43E0000000000000},
    // Deliberate: with the top bit set the value is summed as 9223372036854775808 and one more than
    // the rest, each rounded on its own, so some results are not the nearest float.
    {"ui8", "flt4", "9223372036854775808", 0x5F000000},
    {"ui8", "flt4", "9223372586610589697", 0x5F000000}, // the nearest would be 5F000001
    {"ui8", "flt4", "9223372586610622464", 0x5F000001}, // without the one more it were 5F000000
    {"ui8", "flt8", "9223372036854775808", 0x43E0000000000000},
    {"ui8", "flt8", "9223372036854776831", 0x43E0000000000000},
    {"ui8", "flt8", "9223372036854776832", 0x43E0000000000001},  // the nearest would be ...0000
    {"ui8", "flt8", "18446744073709499393", 0x43EFFFFFFFFFFFE6}, // the nearest would be ...E7
    // the limits
    {"ui8", "flt4", "18446690000000000000", 0x5F7FFFCF},
    {"ui8", "flt4", "18446699268610719743", 0x5F7FFFD7}, // the last that is not 5F7FFFD8
    {"ui8", "flt4", "18446699999999999999", 0x5F7FFFD8},
    {"ui8", "flt4", "18446700000000000000", 0x5F7FFFD8},
    {"ui8", "flt4", "18446700917878161407", 0x5F7FFFD8}, // the nearest would be 5F7FFFD9
    {"ui8", "flt4", "18446744073709551615", 0x5F7FFFD8}, // the nearest would be 5F800000
    {"ui8", "flt8", "18446744073709490176", 0x43EFFFFFFFFFFFE2},
    {"ui8", "flt8", "18446744073709499902", 0x43EFFFFFFFFFFFE6}, // the last that is not ...E7
    {"ui8", "flt8", "18446744073709500415", 0x43EFFFFFFFFFFFE7},
    {"ui8", "flt8", "18446744073709500416", 0x43EFFFFFFFFFFFE7},
    {"ui8", "flt8", "18446744073709500928", 0x43EFFFFFFFFFFFE7}, // the sum would give ...E8
    {"ui8", "flt8", "18446744073709551615", 0x43EFFFFFFFFFFFE7}, // not 43F0000000000000
};

template <class Float>
void expect_every_value(const char *source, const char *destination, int first, int last) {
  const zrvtest::IntegerMember &member = integer_member(source, destination);
  Conversion convert = make_conversion(member);
  for (int value = first; value <= last; ++value) {
    Float result = -1;
    ASSERT_EQ(convert(&value, &result), CS_SUCCEED) << member << " of " << value;
    ASSERT_EQ(convert.destlen, static_cast<CS_INT>(sizeof result));
    ASSERT_EQ(result, static_cast<Float>(value)) << member << " of " << value;
  }
}

} // namespace

TEST(IntegerToFloat, LiteralBits) {
  for (const Row &row : rows) {
    const zrvtest::IntegerMember &member = integer_member(row.source, row.destination);
    SCOPED_TRACE(testing::Message() << member << " of " << row.value);
    const int width = member.destination_code == CS_TYPE_REAL ? 4 : 8;
    for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
      GuardedBuffer source(static_cast<size_t>(member.source->width), misalignment);
      const std::string bytes = value_bytes(zrvtest::parse_bits(row.value), member.source->width);
      std::memcpy(source.data(), bytes.data(), bytes.size());
      GuardedBuffer dest(static_cast<size_t>(width), 7 - misalignment);
      Conversion convert = make_conversion(member);
      // Saturated or not, it is a success.
      EXPECT_EQ(convert(source.data(), dest.data()), CS_SUCCEED);
      EXPECT_EQ(convert.destlen, width);
      uint64_t bits = 0;
      std::memcpy(&bits, dest.data(), dest.size());
      EXPECT_EQ(bits, row.bits) << std::hex << bits;
    }
  }
}

TEST(IntegerToFloat, EveryValueOfTheSmallSources) {
  expect_every_value<CS_REAL>("i1", "flt4", 0, 255);
  expect_every_value<CS_FLOAT>("i1", "flt8", 0, 255);
  expect_every_value<CS_REAL>("i2", "flt4", -32768, 32767);
  expect_every_value<CS_FLOAT>("i2", "flt8", -32768, 32767);
  expect_every_value<CS_REAL>("ui2", "flt4", 0, 65535);
  expect_every_value<CS_FLOAT>("ui2", "flt8", 0, 65535);
}
