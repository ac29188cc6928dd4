// Conversions from numerics, and from integers to them.
#include <cfloat>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "numeric_operands.h"
#include "test_context.h"

using zrvtest::Decimal;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::Natural;

namespace {

CS_NUMERIC number(int precision, int scale, const std::string &digits, bool negative = false) {
  return Decimal{precision, scale, negative, Natural::from_digits(digits)}.pack();
}

// One call: what came back, and the destination.
struct Converted {
  CS_RETCODE code;
  CS_INT length;
  std::string bytes; // the whole destination
  CS_DATAFMT destination;

  template <class T>
  T value() const {
    T result;
    std::memcpy(&result, bytes.data(), sizeof result);
    return result;
  }
  std::string text() const { return bytes.substr(0, static_cast<size_t>(length)); }
  bool is_untouched() const { return bytes.find_first_not_of('\xA5') == std::string::npos; }
};

constexpr CS_INT unwritten = -12345;

Converted run(CS_CONV_FUNC function, const void *source, CS_INT source_type, CS_INT type,
              size_t room, CS_DATAFMT destination) {
  CS_CONTEXT context{};
  CS_DATAFMT from = make_format(source_type, 35);
  GuardedBuffer buffer(room, 1);
  destination.datatype = type;
  Converted result{0, unwritten, {}, {}};
  result.code = function(&context, &from, const_cast<void *>(source), &destination, buffer.data(),
                         &result.length);
  result.bytes = buffer.contents();
  result.destination = destination;
  return result;
}

// A numeric to a fixed type.
template <class T>
Converted to_fixed(CS_CONV_FUNC function, CS_NUMERIC value, CS_INT type) {
  return run(function, &value, CS_TYPE_NUMERIC, type, sizeof(T), make_format(type, sizeof(T)));
}

Converted to_text(CS_NUMERIC value, CS_INT room, CS_INT format = 0) {
  return run(comn_numtochar, &value, CS_TYPE_DECIMAL, CS_TYPE_CHAR,
             static_cast<size_t>(std::max(room, 0)), make_format(CS_TYPE_CHAR, room, format));
}

Converted to_num(CS_CONV_FUNC function, const void *source, CS_INT source_type, CS_INT precision,
                 CS_INT scale, size_t room = sizeof(CS_NUMERIC)) {
  CS_DATAFMT format = make_format(CS_TYPE_NUMERIC, sizeof(CS_NUMERIC));
  format.precision = precision;
  format.scale = scale;
  return run(function, source, source_type, CS_TYPE_NUMERIC, room, format);
}

std::string value_text(const Converted &result) {
  return Decimal::of(result.value<CS_NUMERIC>()).text();
}

struct Member {
  const char *name;
  CS_CONV_FUNC function;
  CS_INT type;
  CS_INT size; // what *destlen says before the source is looked at; 0 where it stays
};
const Member members[] = {
    {"bit", comn_numtobit, CS_TYPE_BIT, 1},
    {"i1", comn_numtoi1, CS_TYPE_TINYINT, 1},
    {"i2", comn_numtoi2, CS_TYPE_SMALLINT, 2},
    {"i4", comn_numtoi4, CS_TYPE_INT, 4},
    {"i8", comn_numtoi8, CS_TYPE_BIGINT, 8},
    {"ui2", comn_numtoui2, CS_TYPE_USMALLINT, 2},
    {"ui4", comn_numtoui4, CS_TYPE_UINT, 4},
    {"ui8", comn_numtoui8, CS_TYPE_UBIGINT, 8},
    {"flt4", comn_numtoflt4, CS_TYPE_REAL, 4},
    {"flt8", comn_numtoflt8, CS_TYPE_FLOAT, 8},
    {"num", comn_numtonum, CS_TYPE_NUMERIC, 0},
    {"money", comn_numtomoney, CS_TYPE_MONEY, 8},
    {"mny4", comn_numtomny4, CS_TYPE_MONEY4, 4},
    {"char", comn_numtochar, CS_TYPE_CHAR, 0},
    {"bin", comn_numtobin, CS_TYPE_BINARY, 0},
    {"varchar", comn_numtovarchar, CS_TYPE_VARCHAR, 258},
    {"varbin", comn_numtovarbin, CS_TYPE_VARBINARY, 258},
};

} // namespace

TEST(NumConversions, ChecksOfEveryMember) {
  CS_CONTEXT context{};
  CS_NUMERIC value = number(5, 0, "1");
  char dest[300];
  CS_INT length;
  for (const Member &member : members) {
    SCOPED_TRACE(member.name);
    CS_DATAFMT from = make_format(CS_TYPE_NUMERIC, 35), to = make_format(member.type, 258);
    to.precision = 5;
    CS_CONV_FUNC f = member.function;
    zrvtest::expect_null_checks("com_num.cpp", f, from, to);
    from.datatype = CS_TYPE_INT;
    EXPECT_ASSERTION("com_num.cpp", CS_FAIL, f(&context, &from, &value, &to, dest, &length));
    from.datatype = CS_TYPE_DECIMAL;
    to.datatype = CS_TYPE_VOID;
    EXPECT_ASSERTION("com_num.cpp", CS_FAIL, f(&context, &from, &value, &to, dest, &length));
    // The other 64-bit code is not served.
    to.datatype = CS_TYPE_LONG;
    EXPECT_ASSERTION("com_num.cpp", CS_FAIL, f(&context, &from, &value, &to, dest, &length));
  }
}

TEST(NumConversions, MalformedSourcesAreRefusedByEveryMember) {
  for (const Member &member : members)
    for (auto [precision, scale] : {std::pair{0, 0}, {78, 0}, {255, 0}, {5, 78}, {5, 255}}) {
      CS_NUMERIC value = number(5, 0, "1");
      value.precision = static_cast<CS_BYTE>(precision);
      value.scale = static_cast<CS_BYTE>(scale);
      CS_DATAFMT format = make_format(member.type, 258);
      format.precision = 5;
      const Converted result =
          run(member.function, &value, CS_TYPE_NUMERIC, member.type, 258, format);
      EXPECT_EQ(result.code, CS_CONV_DOMAIN) << member.name;
      EXPECT_TRUE(result.is_untouched()) << member.name;
      EXPECT_EQ(result.length, member.size != 0 ? member.size : unwritten) << member.name;
    }
}

// Nor when they fail: 10^39 overflows what is shorter than it.
TEST(NumConversions, AllocateNothing) {
  CS_CONTEXT context{};
  CS_NUMERIC values[] = {number(77, 40, std::string(77, '7'), true),
                         number(40, 0, "1"),
                         number(40, 0, "1" + std::string(39, '0')),
                         {}};
  char dest[300];
  CS_INT length;
  const zrvtest::AllocationProbe probe;
  for (const Member &member : members)
    for (CS_INT room : {258, 2}) {
      CS_DATAFMT from = make_format(CS_TYPE_NUMERIC, 35), to = make_format(member.type, room);
      to.precision = 5;
      for (CS_NUMERIC &value : values)
        member.function(&context, &from, &value, &to, dest, &length);
      EXPECT_EQ(probe.allocations(), 0U) << member.name;
    }
}

TEST(NumToInteger, TruncatesAndClamps) {
  auto i1 = [](CS_NUMERIC v) { return to_fixed<CS_TINYINT>(comn_numtoi1, v, CS_TYPE_TINYINT); };
  EXPECT_EQ(i1(number(5, 1, "2549")).value<CS_TINYINT>(), 254);
  EXPECT_EQ(i1(number(5, 1, "2550")).code, CS_SUCCEED);
  // The fraction counts in the test of the limits.
  EXPECT_EQ(i1(number(5, 1, "2551")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i1(number(5, 1, "2551")).value<CS_TINYINT>(), 255);
  EXPECT_EQ(i1(number(5, 1, "5", true)).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i1(number(5, 1, "5", true)).value<CS_TINYINT>(), 0);
  EXPECT_EQ(i1(number(5, 1, "5", true)).length, 1);
  EXPECT_EQ(i1(number(5, 1, "0", true)).code, CS_SUCCEED);

  auto i2 = [](CS_NUMERIC v) { return to_fixed<CS_SMALLINT>(comn_numtoi2, v, CS_TYPE_SMALLINT); };
  EXPECT_EQ(i2(number(6, 1, "19", true)).value<CS_SMALLINT>(), -1);
  EXPECT_EQ(i2(number(6, 0, "32768", true)).value<CS_SMALLINT>(), -32768);
  EXPECT_EQ(i2(number(6, 0, "32768", true)).code, CS_SUCCEED);
  EXPECT_EQ(i2(number(6, 0, "32769", true)).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i2(number(6, 0, "32769", true)).value<CS_SMALLINT>(), -32768);
  EXPECT_EQ(i2(number(6, 0, "32768")).value<CS_SMALLINT>(), 32767);
  EXPECT_EQ(i2(number(6, 0, "32768")).code, CS_CONV_OVERFLOW);

  auto i4 = [](CS_NUMERIC v) { return to_fixed<CS_INT>(comn_numtoi4, v, CS_TYPE_INT); };
  EXPECT_EQ(i4(number(10, 0, "2147483647")).code, CS_SUCCEED);
  EXPECT_EQ(i4(number(10, 0, "2147483648")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i4(number(10, 0, "2147483648")).value<CS_INT>(), INT32_MAX);
  EXPECT_EQ(i4(number(10, 0, "2147483648", true)).code, CS_SUCCEED);
  EXPECT_EQ(i4(number(10, 0, "2147483649", true)).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i4(number(10, 0, "2147483649", true)).value<CS_INT>(), INT32_MIN);
  // A fraction that the closest double does not have is not there.
  EXPECT_EQ(i4(number(30, 15, "2147483647000000000000001")).code, CS_SUCCEED);

  // Below the unsigned types it is an underflow, unlike tinyint.
  auto ui2 = [](CS_NUMERIC v) {
    return to_fixed<CS_USMALLINT>(comn_numtoui2, v, CS_TYPE_USMALLINT);
  };
  EXPECT_EQ(ui2(number(5, 0, "65535")).value<CS_USMALLINT>(), 65535);
  EXPECT_EQ(ui2(number(5, 0, "65536")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(ui2(number(5, 1, "1", true)).code, CS_CONV_UNDERFLOW);
  EXPECT_EQ(ui2(number(5, 1, "1", true)).value<CS_USMALLINT>(), 0);
  auto ui4 = [](CS_NUMERIC v) { return to_fixed<CS_UINT>(comn_numtoui4, v, CS_TYPE_UINT); };
  EXPECT_EQ(ui4(number(10, 0, "4294967295")).value<CS_UINT>(), UINT32_MAX);
  EXPECT_EQ(ui4(number(10, 0, "4294967296")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(ui4(number(10, 0, "4294967296")).value<CS_UINT>(), UINT32_MAX);
  EXPECT_EQ(ui4(number(10, 0, "1", true)).code, CS_CONV_UNDERFLOW);
}

TEST(NumToInteger, SixtyFourBitsAreExact) {
  auto i8 = [](CS_NUMERIC v) { return to_fixed<CS_BIGINT>(comn_numtoi8, v, CS_TYPE_BIGINT); };
  EXPECT_EQ(i8(number(20, 1, "92233720368547758079")).value<CS_BIGINT>(), INT64_MAX);
  EXPECT_EQ(i8(number(20, 1, "92233720368547758079")).code, CS_SUCCEED);
  EXPECT_EQ(i8(number(20, 0, "9223372036854775808")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(i8(number(20, 0, "9223372036854775808")).value<CS_BIGINT>(), INT64_MAX);
  EXPECT_EQ(i8(number(20, 0, "9223372036854775809", true)).code, CS_CONV_UNDERFLOW);
  EXPECT_EQ(i8(number(20, 0, "9223372036854775809", true)).value<CS_BIGINT>(), INT64_MIN);
  auto ui8 = [](CS_NUMERIC v) { return to_fixed<CS_UBIGINT>(comn_numtoui8, v, CS_TYPE_UBIGINT); };
  EXPECT_EQ(ui8(number(20, 0, "18446744073709551615")).value<CS_UBIGINT>(), UINT64_MAX);
  EXPECT_EQ(ui8(number(20, 0, "18446744073709551616")).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(ui8(number(20, 0, "1", true)).code, CS_CONV_UNDERFLOW);
  EXPECT_EQ(ui8(number(20, 0, "1", true)).value<CS_UBIGINT>(), 0U);
}

TEST(NumToInteger, LengthIsTheSizeWhateverHappens) {
  const CS_NUMERIC large = number(40, 0, "1" + std::string(39, '0'));
  const CS_NUMERIC small = number(40, 0, "1" + std::string(39, '0'), true);
  for (const Member &member : members)
    if (member.size == 0 || member.size > 8)
      continue;
    else
      for (const CS_NUMERIC &value : {large, small, number(3, 0, "1")}) {
        const Converted result = run(member.function, &value, CS_TYPE_NUMERIC, member.type, 8,
                                     make_format(member.type, 8));
        EXPECT_EQ(result.length, member.size) << member.name;
      }
}

TEST(NumToBit, AnythingButZero) {
  auto bit = [](CS_NUMERIC v) { return to_fixed<CS_BIT>(comn_numtobit, v, CS_TYPE_BIT); };
  EXPECT_EQ(bit(number(77, 77, "1", true)).value<CS_BIT>(), 1);
  EXPECT_EQ(bit(number(77, 77, "0", true)).value<CS_BIT>(), 0);
  EXPECT_EQ(bit(number(77, 77, "0")).length, 1);
}

TEST(NumToFloat, ClosestAndSaturated) {
  auto flt8 = [](CS_NUMERIC v) { return to_fixed<CS_FLOAT>(comn_numtoflt8, v, CS_TYPE_FLOAT); };
  EXPECT_EQ(flt8(number(5, 4, "1")).value<CS_FLOAT>(), 0.0001);
  EXPECT_EQ(flt8(number(5, 4, "1")).length, 8);
  auto flt4 = [](CS_NUMERIC v) { return to_fixed<CS_REAL>(comn_numtoflt4, v, CS_TYPE_REAL); };
  EXPECT_EQ(flt4(number(5, 1, "1")).value<CS_REAL>(), 0.1F);
  const std::string largest = "340282346638528859811704183484516925440";
  EXPECT_EQ(flt4(number(39, 0, largest)).code, CS_CONV_OVERFLOW); // the limit is out of range
  EXPECT_EQ(flt4(number(39, 0, largest)).value<CS_REAL>(), FLT_MAX);
  EXPECT_EQ(flt4(number(39, 0, largest, true)).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(flt4(number(39, 0, largest, true)).value<CS_REAL>(), -FLT_MAX);
  EXPECT_EQ(flt4(number(77, 77, "1")).value<CS_REAL>(), 0.0F);
  EXPECT_EQ(flt4(number(77, 77, "1")).code, CS_SUCCEED);
}

TEST(NumToNum, ShapesAndStatuses) {
  auto convert = [](CS_NUMERIC v, CS_INT precision, CS_INT scale) {
    return to_num(comn_numtonum, &v, CS_TYPE_NUMERIC, precision, scale);
  };
  const Converted cut = convert(number(3, 2, "125"), 3, 1);
  EXPECT_EQ(cut.code, CS_CONV_TRUNCATED);
  EXPECT_EQ(value_text(cut), "1.2 (3,1)"); // not rounded
  EXPECT_EQ(cut.length, 5);
  EXPECT_EQ(value_text(convert(number(3, 2, "120", true), 3, 1)), "-1.2 (3,1)");
  EXPECT_EQ(convert(number(3, 2, "120"), 3, 1).code, CS_SUCCEED);
  EXPECT_EQ(value_text(convert(number(3, 2, "120"), 20, 10)), "1.2000000000 (20,10)");
  EXPECT_EQ(convert(number(3, 2, "120"), 20, 10).length, 12);
  EXPECT_EQ(convert(number(3, 0, "999"), 4, 2).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(convert(number(3, 0, "999"), 2, 0).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(convert(number(3, 0, "99"), 2, 0).code, CS_SUCCEED);
  // Deliberate: the digits must fit the new length before they are shifted, although 123 would fit.
  EXPECT_EQ(convert(number(5, 3, "12345"), 3, 0).code, CS_CONV_TRUNCATED);
  EXPECT_EQ(convert(number(5, 3, "12345"), 2, 0).code, CS_CONV_OVERFLOW);
}

// The shape of the result is stored before its digits, and the length with it.
TEST(NumToNum, ShapeAndLengthOfEveryOutcome) {
  const struct {
    const char *digits;
    int scale, to_precision, to_scale;
    CS_RETCODE code;
  } rows[] = {{"12345", 3, 2, 0, CS_CONV_OVERFLOW}, // too long as it stands
              {"99999", 0, 5, 3, CS_CONV_OVERFLOW}, // too long when shifted
              {"99999", 0, 4, 0, CS_CONV_OVERFLOW}, // one digit too many
              {"12345", 3, 3, 0, CS_CONV_TRUNCATED},
              {"12345", 3, 9, 5, CS_SUCCEED}};
  for (const auto &row : rows)
    for (CS_INT type : {CS_TYPE_NUMERIC, CS_TYPE_DECIMAL}) {
      CS_NUMERIC value = number(5, row.scale, row.digits);
      CS_DATAFMT format = make_format(type, sizeof(CS_NUMERIC));
      format.precision = row.to_precision;
      format.scale = row.to_scale;
      const Converted result =
          run(comn_numtonum, &value, CS_TYPE_DECIMAL, type, sizeof(CS_NUMERIC), format);
      EXPECT_EQ(result.code, row.code) << row.digits;
      EXPECT_EQ(result.value<CS_NUMERIC>().precision, row.to_precision);
      EXPECT_EQ(result.value<CS_NUMERIC>().scale, row.to_scale);
      EXPECT_EQ(result.length, Com__Nume_Prec_To_Len[row.to_precision] + 2) << row.digits;
    }
}

TEST(NumToNum, RandomValuesAgainstTheRules) {
  zrvtest::RandomDecimals random(31);
  CS_CONTEXT context{};
  CS_DATAFMT from = make_format(CS_TYPE_NUMERIC, 35), to = from;
  for (int i = 0; i < 5 * zrvtest::random_cases; ++i) {
    const Decimal value = random.any();
    to.precision = 1 + random.below(77);
    to.scale = random.below(random.below(2) == 0 ? 78 : to.precision + 1);
    CS_NUMERIC source = value.pack(), result;
    CS_INT length = unwritten;
    const CS_RETCODE code = comn_numtonum(&context, &from, &source, &to, &result, &length);
    const zrvtest::Outcome expected = zrvtest::reference_convert(value, to.precision, to.scale);
    ASSERT_EQ(code, expected.code) << value.text() << " to " << to.precision << "," << to.scale;
    ASSERT_EQ(length, zrvtest::reference_length(to.precision) + 2);
    ASSERT_EQ(result.precision, to.precision);
    ASSERT_EQ(result.scale, to.scale);
    if (!expected.has_value)
      continue;
    const Decimal got = Decimal::of(result);
    ASSERT_TRUE(got.magnitude == expected.value.magnitude)
        << value.text() << " to " << got.text() << ", not " << expected.value.text();
    // A copy at one scale keeps the sign byte of a zero.
    if (value.scale == to.scale || !got.magnitude.is_zero())
      ASSERT_EQ(got.negative, value.negative);
    else
      ASSERT_FALSE(got.negative);
  }
}

TEST(NumToNum, BadShapes) {
  CS_NUMERIC value = number(5, 2, "12345");
  for (CS_INT precision : {0, -1, 78, 255, INT32_MIN, INT32_MAX}) {
    const Converted result = to_num(comn_numtonum, &value, CS_TYPE_NUMERIC, precision, 0);
    EXPECT_EQ(result.code, CS_CONV_BADPRECISION);
    EXPECT_EQ(result.length, unwritten);
    EXPECT_TRUE(result.is_untouched());
  }
  for (CS_INT scale : {78, 255, -1, INT32_MIN, INT32_MAX}) {
    const Converted result = to_num(comn_numtonum, &value, CS_TYPE_NUMERIC, 5, scale);
    EXPECT_EQ(result.code, CS_CONV_BADSCALE);
    EXPECT_EQ(result.length, unwritten);
    EXPECT_TRUE(result.is_untouched());
  }
}

TEST(NumToNum, ShapeOfTheSource) {
  CS_NUMERIC value = number(5, 2, "12345", true);
  const Converted copy =
      to_num(comn_numtonum, &value, CS_TYPE_NUMERIC, CS_DFMT_FROMSOURCE, CS_DFMT_FROMSOURCE, 6);
  EXPECT_EQ(copy.code, CS_SUCCEED);
  EXPECT_EQ(copy.length, 6);
  EXPECT_EQ(std::memcmp(copy.bytes.data(), &value, 6), 0);
  EXPECT_EQ(copy.destination.precision, CS_DFMT_FROMSOURCE);
  EXPECT_EQ(copy.destination.scale, CS_DFMT_FROMSOURCE);
  EXPECT_EQ(value_text(to_num(comn_numtonum, &value, CS_TYPE_NUMERIC, 7, CS_DFMT_FROMSOURCE)),
            "-123.45 (7,2)");
  EXPECT_EQ(value_text(to_num(comn_numtonum, &value, CS_TYPE_NUMERIC, CS_DFMT_FROMSOURCE, 2)),
            "-123.45 (5,2)");
}

TEST(NumToNum, InPlace) {
  CS_CONTEXT context{};
  CS_NUMERIC value = number(5, 2, "12345");
  CS_DATAFMT from = make_format(CS_TYPE_NUMERIC, 35), to = from;
  to.precision = 30;
  to.scale = 12;
  CS_INT length;
  EXPECT_EQ(comn_numtonum(&context, &from, &value, &to, &value, &length), CS_SUCCEED);
  EXPECT_EQ(Decimal::of(value).text(), "123.450000000000 (30,12)");
}

TEST(NumToChar, WholeCutAndPadded) {
  const CS_NUMERIC value = number(5, 2, "25", true);
  EXPECT_EQ(to_text(value, 5).text(), "-0.25");
  EXPECT_EQ(to_text(value, 5).code, CS_SUCCEED);
  EXPECT_EQ(to_text(value, 4).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(value, 4).bytes, "-0.2");
  EXPECT_EQ(to_text(value, 4).length, 4);
  EXPECT_EQ(to_text(value, 0).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(value, 0).length, 0);
  EXPECT_EQ(to_text(value, -5).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(value, -5).length, 0);
  EXPECT_EQ(to_text(value, 8, CS_DFMT_PADBLANK).text(), "-0.25   ");
  EXPECT_EQ(to_text(value, 8, CS_DFMT_PADNULL).text(), std::string("-0.25\0\0\0", 8));
  EXPECT_EQ(to_text(value, 8, CS_DFMT_NULLTERM).text(), std::string("-0.25\0", 6));
  EXPECT_EQ(to_text(value, 8, CS_DFMT_PADNULL | CS_DFMT_PADBLANK).code, CS_CONV_PADCONFLICT);
  // A terminator without room takes the last place.
  EXPECT_EQ(to_text(value, 5, CS_DFMT_NULLTERM).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(value, 5, CS_DFMT_NULLTERM).bytes, std::string("-0.2\0", 5));
}

TEST(NumToChar, CutTextWithATerminator) {
  const CS_NUMERIC value = number(5, 2, "25", true);
  const Converted cut = to_text(value, 3, CS_DFMT_NULLTERM);
  EXPECT_EQ(cut.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(cut.bytes, std::string("-0\0", 3));
  EXPECT_EQ(cut.length, 3);
  const Converted blanks = to_text(value, 4, CS_DFMT_NULLTERM | CS_DFMT_PADBLANK);
  EXPECT_EQ(blanks.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(blanks.bytes, std::string("-0.\0", 4));
}

TEST(NumToChar, EveryTextType) {
  CS_NUMERIC value = number(5, 2, "1250");
  for (CS_INT type : {CS_TYPE_CHAR, CS_TYPE_LONGCHAR, CS_TYPE_TEXT, 21, 22, 34}) {
    const Converted result =
        run(comn_numtochar, &value, CS_TYPE_NUMERIC, type, 10, make_format(type, 10));
    EXPECT_EQ(result.code, CS_SUCCEED) << type;
    EXPECT_EQ(result.text(), "12.50") << type;
  }
}

TEST(NumToChar, LongestTextRunsNoCheck) {
  const std::string nines(77, '9');
  const Converted result = to_text(number(77, 77, nines, true), 80);
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "-0." + nines);
  EXPECT_EQ(to_text(number(77, 77, nines, true), 79).code, CS_CONV_OVERFLOW);
  CS_NUMERIC ones = number(77, 77, "0");
  std::memset(ones.array, 255, sizeof ones.array); // 78 digits
  EXPECT_EQ(to_text(ones, 80).length, 80);
  EXPECT_EQ(to_text(ones, 80).code, CS_SUCCEED);
}

TEST(NumToVarchar, WithoutATerminator) {
  CS_NUMERIC value = number(5, 2, "1250");
  const Converted result = run(comn_numtovarchar, &value, CS_TYPE_NUMERIC, CS_TYPE_VARCHAR,
                               sizeof(CS_VARCHAR), make_format(CS_TYPE_VARCHAR, 1));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.length, 258);
  EXPECT_EQ(result.value<CS_SMALLINT>(), 5);
  EXPECT_EQ(result.bytes.substr(2, 6), "12.50\xA5");
}

TEST(NumToBinary, TheArrayWithoutTheShape) {
  CS_NUMERIC value = number(77, 2, "1250", true);
  const auto *array = reinterpret_cast<const char *>(value.array);
  const Converted whole = run(comn_numtobin, &value, CS_TYPE_NUMERIC, CS_TYPE_BINARY, 40,
                              make_format(CS_TYPE_BINARY, 40));
  EXPECT_EQ(whole.code, CS_SUCCEED);
  EXPECT_EQ(whole.length, 33);
  EXPECT_EQ(whole.text(), std::string(array, 33));
  const Converted cut = run(comn_numtobin, &value, CS_TYPE_NUMERIC, CS_TYPE_IMAGE, 10,
                            make_format(CS_TYPE_IMAGE, 10));
  EXPECT_EQ(cut.code, CS_CONV_TRUNCATED);
  EXPECT_EQ(cut.bytes, std::string(array, 10));
  const Converted record = run(comn_numtovarbin, &value, CS_TYPE_NUMERIC, CS_TYPE_VARBINARY,
                               sizeof(CS_VARBINARY), make_format(CS_TYPE_VARBINARY, 0));
  EXPECT_EQ(record.code, CS_SUCCEED);
  EXPECT_EQ(record.length, 258);
  EXPECT_EQ(record.value<CS_SMALLINT>(), 33);
  EXPECT_EQ(record.bytes.substr(2, 33), std::string(array, 33));
}

namespace {

template <class Integer>
Converted from_integer(CS_CONV_FUNC function, CS_INT type, Integer value, CS_INT precision,
                       CS_INT scale) {
  return to_num(function, &value, type, precision, scale);
}

} // namespace

TEST(IntegerToNum, EveryTypeAtItsLimits) {
  EXPECT_EQ(value_text(from_integer<CS_TINYINT>(comn_i1tonum, CS_TYPE_TINYINT, 255, 3, 0)),
            "255 (3,0)");
  EXPECT_EQ(value_text(from_integer<CS_SMALLINT>(comn_i2tonum, CS_TYPE_SMALLINT, -32768, 7, 2)),
            "-32768.00 (7,2)");
  EXPECT_EQ(value_text(from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, INT32_MIN, 10, 0)),
            "-2147483648 (10,0)");
  EXPECT_EQ(value_text(from_integer<CS_BIGINT>(comn_i8tonum, CS_TYPE_BIGINT, INT64_MIN, 19, 0)),
            "-9223372036854775808 (19,0)");
  EXPECT_EQ(value_text(from_integer<CS_USMALLINT>(comn_ui2tonum, CS_TYPE_USMALLINT, 65535, 5, 0)),
            "65535 (5,0)");
  EXPECT_EQ(value_text(from_integer<CS_UINT>(comn_ui4tonum, CS_TYPE_UINT, UINT32_MAX, 10, 0)),
            "4294967295 (10,0)");
  EXPECT_EQ(
      value_text(from_integer<CS_UBIGINT>(comn_ui8tonum, CS_TYPE_UBIGINT, UINT64_MAX, 77, 57)),
      "18446744073709551615." + std::string(57, '0') + " (77,57)");
  EXPECT_EQ(from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 1000, 3, 0).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 10, 3, 2).code, CS_CONV_OVERFLOW);
  EXPECT_EQ(from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 9, 3, 2).code, CS_SUCCEED);
}

TEST(IntegerToNum, ShapeAndValueAfterAnOverflow) {
  const Converted digits = from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, -1000, 3, 0);
  EXPECT_EQ(digits.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(digits.length, 35);
  EXPECT_EQ(value_text(digits), "-1000 (3,0)");
  const Converted bytes = from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, -70000, 4, 2);
  EXPECT_EQ(bytes.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(bytes.length, 35);
  EXPECT_EQ(value_text(bytes), "44.64 (4,2)"); // the low bytes, without a sign
}

TEST(IntegerToNum, DecimalIsNumericToo) {
  CS_INT value = -7;
  CS_DATAFMT format = make_format(CS_TYPE_DECIMAL, sizeof(CS_NUMERIC));
  format.precision = 5;
  format.scale = 2;
  const Converted result =
      run(comn_i4tonum, &value, CS_TYPE_INT, CS_TYPE_DECIMAL, sizeof(CS_NUMERIC), format);
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(value_text(result), "-7.00 (5,2)");
}

TEST(IntegerToNum, BadShapesLeaveTheDestination) {
  for (CS_INT precision : {0, -1, 78, 255, INT32_MIN}) {
    const Converted result = from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 1, precision, 0);
    EXPECT_EQ(result.code, CS_CONV_BADPRECISION);
    EXPECT_EQ(result.length, 35);
    EXPECT_TRUE(result.is_untouched());
  }
  for (CS_INT scale : {78, 255, INT32_MAX}) {
    const Converted result = from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 1, 5, scale);
    EXPECT_EQ(result.code, CS_CONV_BADSCALE);
    EXPECT_EQ(result.length, 35);
    EXPECT_TRUE(result.is_untouched());
  }
  // Only the 64-bit sources choose a shape.
  EXPECT_EQ(from_integer<CS_INT>(comn_i4tonum, CS_TYPE_INT, 1, CS_DFMT_FROMSOURCE, 0).code,
            CS_CONV_BADPRECISION);
}

// Deliberate: the fields of the format hold 255 afterwards.
TEST(IntegerToNum, SixtyFourBitSourcesChooseTheShape) {
  const Converted both = from_integer<CS_BIGINT>(comn_i8tonum, CS_TYPE_BIGINT, INT64_MIN,
                                                 CS_DFMT_FROMSOURCE, CS_DFMT_FROMSOURCE);
  EXPECT_EQ(both.code, CS_SUCCEED);
  EXPECT_EQ(value_text(both), "-9223372036854775808 (21,0)");
  EXPECT_EQ(both.length, 35);
  EXPECT_EQ(both.destination.precision, 255);
  EXPECT_EQ(both.destination.scale, 255);
  // A scale of the caller's own is not kept with a chosen precision.
  const Converted precision =
      from_integer<CS_UBIGINT>(comn_ui8tonum, CS_TYPE_UBIGINT, UINT64_MAX, CS_DFMT_FROMSOURCE, 5);
  EXPECT_EQ(value_text(precision), "18446744073709551615 (21,0)");
  EXPECT_EQ(precision.destination.precision, 255);
  EXPECT_EQ(precision.destination.scale, 5);
  // The mark itself is no precision.
  EXPECT_EQ(from_integer<CS_BIGINT>(comn_i8tonum, CS_TYPE_BIGINT, 1, 255, 0).code,
            CS_CONV_BADPRECISION);
}

// Deliberate: a scale of 78 and more that is not refused fails the check of the builder's status.
TEST(IntegerToNum, ScaleThatTheBuilderRefusesIsFatal) {
  CS_CONTEXT context{};
  CS_BIGINT value = 1;
  CS_NUMERIC dest;
  CS_INT length;
  CS_DATAFMT from = make_format(CS_TYPE_BIGINT, 8), to = make_format(CS_TYPE_NUMERIC, 35);
  to.precision = 5;
  to.scale = CS_DFMT_FROMSOURCE;
  EXPECT_ASSERTION("com_i8.cpp", CS_FAIL,
                   comn_i8tonum(&context, &from, &value, &to, &dest, &length));
  CS_INT narrow = 1;
  from.datatype = CS_TYPE_INT;
  to.scale = -1;
  EXPECT_ASSERTION("com_i4.cpp", CS_FAIL,
                   comn_i4tonum(&context, &from, &narrow, &to, &dest, &length));
  // The low byte of a negative scale is taken where it is one.
  to.scale = 2 - 256;
  EXPECT_EQ(comn_i4tonum(&context, &from, &narrow, &to, &dest, &length), CS_SUCCEED);
  EXPECT_EQ(Decimal::of(dest).text(), "1.00 (5,2)");
}

TEST(IntegerToNum, ChecksOfTypes) {
  CS_CONTEXT context{};
  CS_INT value = 1, length;
  CS_NUMERIC dest;
  CS_DATAFMT from = make_format(CS_TYPE_BIGINT, 8), to = make_format(CS_TYPE_NUMERIC, 35);
  to.precision = 5;
  EXPECT_ASSERTION("com_i4.cpp", CS_FAIL,
                   comn_i4tonum(&context, &from, &value, &to, &dest, &length));
  from.datatype = CS_TYPE_INT;
  to.datatype = CS_TYPE_MONEY;
  EXPECT_ASSERTION("com_i4.cpp", CS_FAIL,
                   comn_i4tonum(&context, &from, &value, &to, &dest, &length));
  EXPECT_NULL_POINTER_CHECK("com_i4.cpp", CS_FAIL,
                            comn_i4tonum(&context, &from, nullptr, &to, &dest, &length));
}
