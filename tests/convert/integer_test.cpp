// Integers to integers and to bit.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "integer_family.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::integer_member;
using zrvtest::integer_members;
using zrvtest::IntegerMember;
using zrvtest::parse_bits;
using zrvtest::value_bytes;

namespace {

// Every pair at every boundary. "v" converts to itself with CS_SUCCEED; "v>r O" stores r and is
// CS_CONV_OVERFLOW, "v>r U" is CS_CONV_UNDERFLOW.
//
// The statuses are not uniform, deliberately: a negative value is an overflow of i1 from i2 and i4
// but an underflow from i8, and i8 below i2 is an underflow but below i4 an overflow.
struct Pair {
  const char *source, *destination, *values;
};
// clang-format off
const Pair pairs[] = {
    {"i1", "i1", "0, 1, 127, 128, 255"},
    {"i1", "i2", "0, 1, 127, 128, 255"},
    {"i1", "i4", "0, 1, 127, 128, 255"},
    {"i1", "i8", "0, 1, 127, 128, 255"},
    {"i1", "ui2", "0, 1, 127, 128, 255"},
    {"i1", "ui4", "0, 1, 127, 128, 255"},
    {"i1", "ui8", "0, 1, 127, 128, 255"},

    {"i2", "i1", "-32768>0 O, -256>0 O, -1>0 O, 0, 1, 255, 256>255 O, 300>255 O, 32767>255 O"},
    {"i2", "i2", "-32768, -1, 0, 1, 32767"},
    {"i2", "i4", "-32768, -1, 0, 1, 32767"},
    {"i2", "i8", "-32768, -1, 0, 1, 32767"},
    {"i2", "ui2", "-32768>0 U, -1>0 U, 0, 1, 32767"},
    {"i2", "ui4", "-32768>0 U, -1>0 U, 0, 1, 32767"},
    {"i2", "ui8", "-32768>0 U, -1>0 U, 0, 1, 32767"},

    {"i4", "i1", "-2147483648>0 O, -256>0 O, -1>0 O, 0, 255, 256>255 O, 65536>255 O, 2147483647>255 O"},
    {"i4", "i2", "-2147483648>-32768 O, -65536>-32768 O, -32769>-32768 O, -32768, -1, 0, 32767, 32768>32767 O, 65536>32767 O, 2147483647>32767 O"},
    {"i4", "i4", "-2147483648, -1, 0, 1, 2147483647"},
    {"i4", "i8", "-2147483648, -1, 0, 1, 2147483647"},
    {"i4", "ui2", "-2147483648>0 U, -1>0 U, 0, 32768, 65535, 65536>65535 O, 2147483647>65535 O"},
    {"i4", "ui4", "-2147483648>0 U, -1>0 U, 0, 2147483647"},
    {"i4", "ui8", "-2147483648>0 U, -1>0 U, 0, 2147483647"},

    {"i8", "i1", "-9223372036854775808>0 U, -4294967296>0 U, -256>0 U, -1>0 U, 0, 255, 256>255 O, 4294967296>255 O, 9223372036854775807>255 O"},
    {"i8", "i2", "-9223372036854775808>-32768 U, -4294967296>-32768 U, -32769>-32768 U, -32768, -1, 0, 32767, 32768>32767 O, 4294967296>32767 O, 9223372036854775807>32767 O"},
    {"i8", "i4", "-9223372036854775808>-2147483648 O, -4294967296>-2147483648 O, -2147483649>-2147483648 O, -2147483648, -1, 0, 2147483647, 2147483648>2147483647 O, 4294967296>2147483647 O, 9223372036854775807>2147483647 O"},
    {"i8", "i8", "-9223372036854775808, -1, 0, 1, 9223372036854775807"},
    {"i8", "ui2", "-9223372036854775808>0 U, -4294967296>0 U, -1>0 U, 0, 65535, 65536>65535 O, 4294967296>65535 O, 9223372036854775807>65535 O"},
    {"i8", "ui4", "-9223372036854775808>0 U, -4294967296>0 U, -1>0 U, 0, 2147483648, 4294967295, 4294967296>4294967295 O, 9223372036854775807>4294967295 O"},
    {"i8", "ui8", "-9223372036854775808>0 U, -4294967296>0 U, -1>0 U, 0, 9223372036854775807"},

    {"ui2", "i1", "0, 255, 256>255 O, 32768>255 O, 65535>255 O"},
    {"ui2", "i2", "0, 32767, 32768>32767 O, 65535>32767 O"},
    {"ui2", "i4", "0, 32768, 65535"},
    {"ui2", "i8", "0, 32768, 65535"},
    {"ui2", "ui2", "0, 32768, 65535"},
    {"ui2", "ui4", "0, 32768, 65535"},
    {"ui2", "ui8", "0, 32768, 65535"},

    {"ui4", "i1", "0, 255, 256>255 O, 65536>255 O, 2147483648>255 O, 4294967295>255 O"},
    {"ui4", "i2", "0, 32767, 32768>32767 O, 65536>32767 O, 2147483648>32767 O, 4294967295>32767 O"},
    {"ui4", "i4", "0, 2147483647, 2147483648>2147483647 O, 4294967295>2147483647 O"},
    {"ui4", "i8", "0, 2147483648, 4294967295"},
    {"ui4", "ui2", "0, 65535, 65536>65535 O, 2147483648>65535 O, 4294967295>65535 O"},
    {"ui4", "ui4", "0, 2147483648, 4294967295"},
    {"ui4", "ui8", "0, 2147483648, 4294967295"},

    {"ui8", "i1", "0, 255, 256>255 O, 4294967296>255 O, 9223372036854775808>255 O, 18446744073709551615>255 O"},
    {"ui8", "i2", "0, 32767, 32768>32767 O, 4294967296>32767 O, 9223372036854775808>32767 O, 18446744073709551615>32767 O"},
    {"ui8", "i4", "0, 2147483647, 2147483648>2147483647 O, 4294967296>2147483647 O, 9223372036854775808>2147483647 O, 18446744073709551615>2147483647 O"},
    {"ui8", "i8", "0, 9223372036854775807, 9223372036854775808>9223372036854775807 O, 18446744073709551615>9223372036854775807 O"},
    {"ui8", "ui2", "0, 65535, 65536>65535 O, 4294967296>65535 O, 9223372036854775808>65535 O, 18446744073709551615>65535 O"},
    {"ui8", "ui4", "0, 4294967295, 4294967296>4294967295 O, 9223372036854775808>4294967295 O, 18446744073709551615>4294967295 O"},
    {"ui8", "ui8", "0, 9223372036854775807, 9223372036854775808, 18446744073709551615"},

    // to bit: any value but zero, whichever half of it is set
    {"i1", "bit", "0, 1, 2>1, 128>1, 255>1"},
    {"i2", "bit", "0, 1, -1>1, 256>1, -32768>1, 32767>1"},
    {"i4", "bit", "0, 1, -1>1, 256>1, 65536>1, -2147483648>1"},
    {"i8", "bit", "0, 1, -1>1, 256>1, 2147483648>1, 4294967296>1, -9223372036854775808>1"},
    {"ui2", "bit", "0, 1, 256>1, 65535>1"},
    {"ui4", "bit", "0, 1, 65536>1, 2147483648>1, 4294967295>1"},
    {"ui8", "bit", "0, 1, 2147483648>1, 4294967296>1, 9223372036854775808>1, 18446744073709551615>1"},
};
// clang-format on

int destination_width(const IntegerMember &member) {
  return member.destination_code == CS_TYPE_BIT ? 1
                                                : zrvtest::integer_type(member.destination).width;
}

// Long-hand, for sources of 16 bits and less: what is stored, and the status.
struct Stored {
  int64_t value;
  CS_RETCODE status;
};
Stored reference(const std::string &source, const std::string &destination, int value) {
  if (destination == "bit")
    return {value != 0 ? 1 : 0, CS_SUCCEED};
  if (destination == "i1") {
    if (value < 0)
      return {0, CS_CONV_OVERFLOW}; // from i2, the only signed source here
    if (value > 255)
      return {255, CS_CONV_OVERFLOW};
  }
  if (destination == "i2" && source == "ui2" && value > 32767)
    return {32767, CS_CONV_OVERFLOW};
  if ((destination == "ui2" || destination == "ui4" || destination == "ui8") && value < 0)
    return {0, CS_CONV_UNDERFLOW};
  return {value, CS_SUCCEED};
}

} // namespace

TEST(IntegerToInteger, EveryPairAtEveryBoundary) {
  size_t rows = 0;
  for (const Pair &pair : pairs) {
    const IntegerMember &member = integer_member(pair.source, pair.destination);
    const int width = destination_width(member);
    ++rows;
    std::istringstream values(pair.values);
    for (std::string item; std::getline(values >> std::ws, item, ',');) {
      const size_t arrow = item.find('>');
      const std::string value = item.substr(0, arrow);
      std::string result = value, status_mark;
      if (arrow != std::string::npos)
        std::istringstream(item.substr(arrow + 1)) >> result >> status_mark;
      const CS_RETCODE status = status_mark == "O"   ? CS_CONV_OVERFLOW
                                : status_mark == "U" ? CS_CONV_UNDERFLOW
                                                     : CS_SUCCEED;
      // At every alignment of the source and of the destination.
      for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
        SCOPED_TRACE(testing::Message() << member << " of " << item);
        GuardedBuffer source(static_cast<size_t>(member.source->width), misalignment);
        const std::string bytes = value_bytes(parse_bits(value), member.source->width);
        std::memcpy(source.data(), bytes.data(), bytes.size());
        GuardedBuffer dest(static_cast<size_t>(width), 7 - misalignment);
        Conversion convert = make_conversion(member);
        EXPECT_EQ(convert(source.data(), dest.data()), status);
        EXPECT_EQ(convert.destlen, width); // also after a failure
        EXPECT_EQ(dest.contents(), value_bytes(parse_bits(result), width));
        EXPECT_EQ(source.contents(), bytes);
      }
    }
  }
  EXPECT_EQ(rows, 7U * 8U);
}

// All values of the 8- and 16-bit sources into every destination.
TEST(IntegerToInteger, EveryValueOfTheSmallSources) {
  for (const IntegerMember &member : integer_members) {
    const int source_width = member.source->width;
    const std::string destination = member.destination;
    const bool is_integer =
        member.destination_code == CS_TYPE_BIT || (destination[0] == 'i' || destination[0] == 'u');
    if (source_width > 2 || !is_integer)
      continue;
    const int width = destination_width(member);
    const int first = member.source->is_signed ? -32768 : 0;
    const int last = member.source->is_signed ? 32767 : source_width == 1 ? 255 : 65535;
    Conversion convert = make_conversion(member);
    for (int value = first; value <= last; ++value) {
      uint64_t source = static_cast<uint64_t>(value); // little-endian: the low bytes come first
      uint64_t dest = 0xA5A5A5A5A5A5A5A5U;
      const Stored expected = reference(member.source->name, destination, value);
      ASSERT_EQ(convert(&source, &dest), expected.status) << member << " of " << value;
      ASSERT_EQ(convert.destlen, width);
      const uint64_t mask = width == 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * width)) - 1;
      ASSERT_EQ(dest,
                (static_cast<uint64_t>(expected.value) & mask) | (0xA5A5A5A5A5A5A5A5U & ~mask))
          << member << " of " << value;
    }
  }
}

// A value may be converted where it stands.
TEST(IntegerToInteger, InPlace) {
  unsigned char value[8] = {0xFE, 0xFF, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5};
  Conversion convert = make_conversion(integer_member("i2", "i8"));
  EXPECT_EQ(convert(value, value), CS_SUCCEED);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(value), 8), value_bytes(parse_bits("-2"), 8));
}
