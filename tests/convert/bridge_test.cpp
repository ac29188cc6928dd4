// What the cast-context conversions do otherwise than the matrix, and what has no counterpart there, as
// literal values.
#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "cast_call.h"
#include "test_charset.h"
#include "zrvcomn/datetime.h"

using namespace zrvtest;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK,
                 H = CAST_DFMT_PADHEAD, Q = CS_DFMT_ESCQUOTE;
constexpr CS_RETCODE OK = CS_SUCCEED, OV = CS_CONV_OVERFLOW, UN = CS_CONV_UNDERFLOW,
                     SY = CS_CONV_SYNTAX, TR = CS_CONV_TRUNCATED, DO = CS_CONV_DOMAIN,
                     PC = CS_CONV_PADCONFLICT;

// A value of a fixed type to another one.
template <class To, class From>
void expect_value(CastFunction function, From source, CS_RETCODE status, To expected) {
  const CastResult result = cast(function, CastCall(cast_bytes(source)), sizeof(To));
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.len, static_cast<CS_INT>(sizeof(To)));
  EXPECT_EQ(result.value<To>(), expected);
}

// A text result: status, length and the bytes of the capacity, "." where nothing was written.
void expect_text(CastFunction function, const CastCall &call, size_t room, CS_RETCODE status,
                 CS_INT len, std::string bytes) {
  CastResult result = cast(function, call, room);
  for (char &c : result.bytes)
    if (c == static_cast<char>(GuardedBuffer::filler))
      c = '.';
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.len, len);
  EXPECT_EQ(result.bytes, bytes);
}

CastCall with_format(std::string source, CS_INT format) {
  CastCall call(std::move(source));
  call.context.format = format;
  return call;
}

CastCall with_shape(std::string source, int precision, int scale) {
  CastCall call(std::move(source));
  call.to = {precision, scale};
  return call;
}

CastCall numeric(std::string array, int precision, int scale) {
  CastCall call(std::move(array));
  call.from = {precision, scale};
  return call;
}

CastCall from_i4(CS_INT value, CS_INT format = 0) {
  return with_format(cast_bytes(value), format);
}

CAST_CONTEXT english() {
  CAST_CONTEXT context{};
  context.months = com__get_months();
  context.shrtmonths = com__get_shortmonths();
  context.dateorder = 1;
  return context;
}

CastCall dated(std::string source, CS_INT style = 0, CS_INT format = 0) {
  CastCall call(std::move(source));
  call.context = english();
  call.context.style = style;
  call.context.format = format;
  return call;
}

} // namespace

// ---- integers ----

TEST(CastInteger, NarrowingStoresTheNearestValue) {
  expect_value<CS_SMALLINT>(comnb_i4toi2, CS_INT{32767}, OK, 32767);
  expect_value<CS_SMALLINT>(comnb_i4toi2, CS_INT{32768}, OV, 32767);
  expect_value<CS_SMALLINT>(comnb_i4toi2, CS_INT{-32768}, OK, -32768);
  expect_value<CS_SMALLINT>(comnb_i4toi2, CS_INT{-32769}, OV, -32768);
  expect_value<CS_TINYINT>(comnb_i2toi1, CS_SMALLINT{255}, OK, 255);
  expect_value<CS_TINYINT>(comnb_i2toi1, CS_SMALLINT{256}, OV, 255);
  expect_value<CS_TINYINT>(comnb_i2toi1, CS_SMALLINT{-1}, OV, 0);
  expect_value<CS_BIGINT>(comnb_ui8toi8, CS_UBIGINT{1} << 63, OV, LLONG_MAX);
}

// Deliberate: where the matrix tells an underflow, integers overflow here.
TEST(CastInteger, NoUnderflow) {
  expect_value<CS_TINYINT>(comnb_i8toi1, CS_BIGINT{-1}, OV, 0);
  expect_value<CS_SMALLINT>(comnb_i8toi2, CS_BIGINT{-32769}, OV, -32768);
  expect_value<CS_USMALLINT>(comnb_i2toui2, CS_SMALLINT{-1}, OV, 0);
  expect_value<CS_USMALLINT>(comnb_i4toui2, CS_INT{-1}, OV, 0);
  expect_value<CS_UINT>(comnb_i4toui4, CS_INT{-1}, OV, 0);
  expect_value<CS_UBIGINT>(comnb_i8toui8, CS_BIGINT{-1}, OV, 0);
  // Other sources keep theirs.
  expect_value<CS_USMALLINT>(comnb_flt8toui2, -0.1, UN, 0);
  expect_value<CS_UINT>(comnb_flt4toui4, -1.0F, UN, 0);
  expect_value<CS_UBIGINT>(comnb_mny4toui8, CS_INT{-10000}, UN, 0);
}

TEST(CastInteger, TextIsWholeOrNothing) {
  expect_text(comnb_i4tochar, from_i4(12345), 5, OK, 5, "12345");
  expect_text(comnb_i4tochar, from_i4(12345), 7, OK, 5, "12345..");
  // Deliberate: no star, and nothing is written.
  expect_text(comnb_i4tochar, from_i4(12345), 4, OV, 4, "....");
  expect_text(comnb_i4tochar, from_i4(12345, P), 4, OV, 4, "....");
  expect_text(comnb_i4tochar, from_i4(12345), 0, OV, 0, "");
  expect_text(comnb_i4tochar, from_i4(12345, N), 5, OV, 5, ".....");
  expect_text(comnb_i4tochar, from_i4(12345, N), 6, OK, 6, "12345\0"s);
  expect_text(comnb_i4tochar, from_i4(-7, B), 4, OK, 4, "-7  ");
  expect_text(comnb_i4tochar, from_i4(-7, P), 4, OK, 4, "-7\0\0"s);
  expect_text(comnb_i4tochar, from_i4(-7, P | B), 4, PC, 2, "-7..");
  expect_text(comnb_i4tochar, from_i4(123, B | H), 5, OK, 5, "  3..");
  expect_text(comnb_i4tochar, from_i4(123, B | H | N), 5, PC, 3, "123..");
  expect_text(comnb_i1tochar, CastCall("\xC8"), 3, OK, 3, "200");
  expect_text(comnb_ui8tochar, CastCall(std::string(8, '\xFF')), 20, OK, 20,
              "18446744073709551615");
}

// Varying text has neither header nor padding.
TEST(CastInteger, VaryingText) {
  expect_text(comnb_i4tovarchar, from_i4(12345, B | N | P), 7, OK, 5, "12345..");
  expect_text(comnb_i4tovarchar, from_i4(12345, N), 5, OK, 5, "12345");
  expect_text(comnb_i4tovarchar, from_i4(12345), 4, OV, 4, "....");
}

TEST(CastInteger, ToNumeric) {
  const auto result = cast(comnb_i4tonum, with_shape(cast_bytes(CS_INT{-12345}), 8, 2), 7);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 7); // all of the capacity
  // 1234500 in the five bytes of precision 8; the capacity behind them is left alone.
  EXPECT_EQ(result.bytes, "\x01\x00\x12\xD6\x44\xA5\xA5"s);
  EXPECT_EQ(result.precision, 8);
  EXPECT_EQ(result.scale, 2);

  const auto status = [](int precision, int scale, size_t room) {
    return cast(comnb_i4tonum, with_shape(cast_bytes(CS_INT{-12345}), precision, scale), room);
  };
  for (const auto &[precision, scale, room, expected] : {std::tuple{0, 2, 33, CS_CONV_BADPRECISION},
                                                         {78, 2, 33, CS_CONV_BADPRECISION},
                                                         {255, 2, 33, CS_CONV_BADPRECISION},
                                                         {10, 78, 33, CS_CONV_BADSCALE},
                                                         {10, 255, 33, CS_CONV_BADSCALE},
                                                         // No value goes beyond the capacity.
                                                         {8, 2, 4, OV},
                                                         {77, 0, 32, OV}}) {
    const auto refused = status(precision, scale, static_cast<size_t>(room));
    EXPECT_EQ(refused.status, expected) << precision << ' ' << scale;
    EXPECT_EQ(refused.len, room);
    EXPECT_TRUE(refused.is_untouched());
  }
  EXPECT_EQ(status(1, 0, 33).status, OV); // nor beyond the precision
  EXPECT_EQ(status(77, 72, 33).status, OK);
  EXPECT_EQ(status(76, 72, 33).status, OV);
}

// ---- bits ----

TEST(CastBit, OnlyBits) {
  for (const CastMember &member : cast_members)
    if (member.source == "bit"s) {
      SCOPED_TRACE(member);
      for (const char *bad : {"\x02", "\xFF"}) {
        const CastResult result = cast(member.function, with_shape(bad, 10, 2), 40);
        EXPECT_EQ(result.status, DO);
        EXPECT_EQ(result.len, untouched_len);
        EXPECT_TRUE(result.is_untouched());
      }
    }
  expect_value<CS_BIT>(comnb_bittobit, CS_BIT{1}, OK, 1);
  expect_value<CS_INT>(comnb_bittoi4, CS_BIT{1}, OK, 1);
  expect_value<CS_FLOAT>(comnb_bittoflt8, CS_BIT{1}, OK, 1.0);
  expect_text(comnb_bittochar, CastCall("\x01"), 2, OK, 1, "1.");
  expect_text(comnb_bittochar, CastCall("\0"s), 2, OK, 1, "0.");
  expect_text(comnb_bittochar, CastCall("\x01"), 0, OV, 0, "");
  expect_text(comnb_bittovarchar, with_format("\x01", B), 2, OK, 1, "1.");
}

// The matrix has no such members.
TEST(CastBit, ToMoney) {
  expect_value<CS_INT>(comnb_bittomny4, CS_BIT{1}, OK, 10000);
  expect_value<CS_INT>(comnb_bittomny4, CS_BIT{0}, OK, 0);
  const CastResult result = cast(comnb_bittomoney, CastCall("\x01"), 8);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 8);
  EXPECT_EQ(result.value<CS_MONEY>().mnyhigh, 0);
  EXPECT_EQ(result.value<CS_MONEY>().mnylow, 10000U);
}

// ---- floats and money ----

TEST(CastFloat, Text) {
  const auto flt8 = [](double value, CS_INT format = 0) {
    return with_format(cast_bytes(value), format);
  };
  expect_text(comnb_flt8tochar, flt8(0.5), 3, OK, 2, ".5.");
  expect_text(comnb_flt8tochar, flt8(2.0), 3, OK, 3, "2.0");
  expect_text(comnb_flt8tochar, flt8(1e20), 5, OK, 5, "1e+20");
  // Deliberate: no star for floats either.
  expect_text(comnb_flt8tochar, flt8(1.5), 2, OV, 2, "..");
  expect_text(comnb_flt8tochar, flt8(1.5, N), 3, OV, 3, "...");
  expect_text(comnb_flt8tovarchar, flt8(1.5, N), 3, OK, 3, "1.5");
  expect_text(comnb_flt4tochar, CastCall(cast_bytes(0.1F)), 20, OK, 18, ".10000000149011612..");
}

TEST(CastFloat, ToNumericAndMoney) {
  const CastResult result = cast(comnb_flt8tonum, with_shape(cast_bytes(1.25), 5, 1), 4);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.bytes, "\0\0\0\x0D"s); // 1.3
  // Data, not a fault.
  for (const double value : {std::numeric_limits<double>::infinity(), std::nan(""), 1e300})
    EXPECT_EQ(cast(comnb_flt8tonum, with_shape(cast_bytes(value), 77, 0), 33).status, OV);
  expect_value<CS_INT>(comnb_flt8tomny4, 1e30, OV, 0);
}

TEST(CastMoney, TextHasTheDecimalsOfThePrecision) {
  const auto text = [](int decimals) {
    return with_shape(cast_bytes(CS_INT{-12346}), decimals, 0);
  };
  expect_text(comnb_mny4tochar, text(0), 6, OK, 5, "-1.23.");
  expect_text(comnb_mny4tochar, text(3), 6, OK, 6, "-1.235");
  expect_text(comnb_mny4tochar, text(4), 8, OK, 7, "-1.2346.");
  expect_text(comnb_mny4tochar, text(200), 8, OK, 7, "-1.2346.");
  // Deliberate: not cut, as it is in the matrix.
  expect_text(comnb_mny4tochar, text(0), 4, OV, 4, "....");
  expect_text(comnb_mny4tovarchar, text(0), 5, OK, 5, "-1.23");
  expect_text(comnb_mny4tovarchar, text(0), 4, OV, 4, "....");
}

// ---- numerics ----

TEST(CastNumeric, MalformedSourcesAreRefusedByEveryMember) {
  for (const CastMember &member : cast_members)
    if (member.source == "num"s)
      for (const CastShape shape : {CastShape{0, 0}, {78, 0}, {10, 78}}) {
        SCOPED_TRACE(member);
        CastCall call = with_shape("\0\0\0\0\0\x01"s, 10, 0);
        call.from = shape;
        const CastResult result = cast(member.function, call, 40);
        EXPECT_EQ(result.status, DO);
        EXPECT_TRUE(result.is_untouched());
      }
}

// The bytes of the precision count, or fewer.
TEST(CastNumeric, LengthOfTheSource) {
  const std::string one_and_more = "\0\0\0\x01"s + std::string(29, '\x7F');
  EXPECT_EQ(cast(comnb_numtoi4, numeric(one_and_more, 5, 0), 4).value<CS_INT>(), 1);
  EXPECT_EQ(cast(comnb_numtoi4, numeric("\0\x01"s, 77, 0), 4).value<CS_INT>(), 1);
  EXPECT_EQ(cast(comnb_numtoi4, numeric("\x01\x01"s, 77, 0), 4).value<CS_INT>(), -1);
  const CastResult nothing = cast(
      comnb_numtonum,
      [] {
        CastCall call = with_shape("", 5, 0);
        call.from = {5, 0};
        return call;
      }(),
      4);
  EXPECT_EQ(nothing.status, OK);
  EXPECT_EQ(nothing.bytes, "\0\0\0\0"s);
  expect_text(comnb_numtochar, numeric("", 5, 2), 4, OK, 4, "0.00");
}

TEST(CastNumeric, Text) {
  const CastCall value = numeric("\x01\0\0\x7D"s, 5, 2); // -1.25
  expect_text(comnb_numtochar, value, 6, OK, 5, "-1.25.");
  expect_text(comnb_numtochar, value, 5, OK, 5, "-1.25");
  // Deliberate: not cut, as it is in the matrix.
  expect_text(comnb_numtochar, value, 4, OV, 4, "....");
  expect_text(comnb_numtovarchar, value, 5, OK, 5, "-1.25");
  expect_text(comnb_numtovarchar, value, 4, OV, 4, "....");
}

TEST(CastNumeric, ToOtherShapes) {
  CastCall call = numeric("\x01\0\0\x7D"s, 5, 2);
  call.to = {5, 3};
  CastResult result = cast(comnb_numtonum, call, 5);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 5);
  EXPECT_EQ(result.bytes, "\x01\0\x04\xE2\xA5"s);

  // Digits are dropped, not rounded.
  call.to = {5, 1};
  result = cast(comnb_numtonum, call, 4);
  EXPECT_EQ(result.status, TR);
  EXPECT_EQ(result.bytes, "\x01\0\0\x0C"s);
  call.context.flags = CAST_MAY_DROP_DIGITS;
  result = cast(comnb_numtonum, call, 4);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.bytes, "\x01\0\0\x0C"s);

  call.to = {2, 2};
  EXPECT_EQ(cast(comnb_numtonum, call, 4).status, OV);
  call.to = {0, 0};
  EXPECT_EQ(cast(comnb_numtonum, call, 4).status, CS_CONV_BADPRECISION);
  call.to = {5, 78};
  EXPECT_EQ(cast(comnb_numtonum, call, 4).status, CS_CONV_BADSCALE);
  call.to = {5, 2};
  result = cast(comnb_numtonum, call, 3);
  EXPECT_EQ(result.status, OV);
  EXPECT_TRUE(result.is_untouched());
  // A zero keeps its sign byte where nothing is shifted.
  call = numeric("\x01\0\0\0"s, 5, 2);
  call.to = {5, 2};
  EXPECT_EQ(cast(comnb_numtonum, call, 4).bytes, "\x01\0\0\0"s);
  call.to = {5, 3};
  EXPECT_EQ(cast(comnb_numtonum, call, 4).bytes, "\0\0\0\0"s);
}

// ---- text ----

TEST(CastText, ToIntegers) {
  const auto i4 = [](const std::string &text) { return cast(comnb_chartoi4, CastCall(text), 4); };
  EXPECT_EQ(i4("  -  42  ").value<CS_INT>(), -42);
  EXPECT_EQ(i4("").status, OK);
  EXPECT_EQ(i4("").value<CS_INT>(), 0);
  EXPECT_EQ(i4("2147483648").status, OV);
  EXPECT_EQ(i4("-2147483648").status, OK);
  // Deliberate: the length stays the width, which the matrix empties.
  EXPECT_EQ(i4("12x").status, SY);
  EXPECT_EQ(i4("12x").len, 4);
  EXPECT_EQ(i4("12x").value<CS_INT>(), 12);
  EXPECT_EQ(cast(comnb_varchartoui4, CastCall("-0"), 4).status, SY);
  EXPECT_EQ(cast(comnb_varchartoui4, CastCall("-0"), 4).len, 4);
  const CastResult low_byte = cast(comnb_chartoi1, CastCall("300"), 1);
  EXPECT_EQ(low_byte.status, OV);
  EXPECT_EQ(low_byte.value<CS_TINYINT>(), 44);
  EXPECT_EQ(cast(comnb_chartobit, CastCall("-7"), 1).value<CS_BIT>(), 1);
  EXPECT_EQ(cast(comnb_chartobit, CastCall("0"), 1).value<CS_BIT>(), 0);
  for (const char *bad : {"x", "2147483648"}) {
    const CastResult result = cast(comnb_varchartobit, CastCall(bad), 1);
    EXPECT_EQ(result.status, *bad == 'x' ? SY : OV);
    EXPECT_EQ(result.len, 1);
    EXPECT_TRUE(result.is_untouched());
  }
}

TEST(CastText, ToFloatsAndMoney) {
  expect_value<CS_FLOAT>(comnb_chartoflt8, std::array{'1', 'e', '3'}, OK, 1000.0);
  const auto flt8 = [](const std::string &text) {
    return cast(comnb_chartoflt8, CastCall(text), 8);
  };
  EXPECT_EQ(flt8("1e999").status, OV);
  EXPECT_EQ(flt8("1e999").value<double>(), DBL_MAX);
  EXPECT_EQ(flt8("1e-999").status, UN);
  EXPECT_EQ(flt8("1x").status, SY);
  EXPECT_EQ(flt8("1x").len, 0);
  EXPECT_EQ(flt8(std::string(1023, ' ') + "1").status, SY);
  const CastResult real = cast(comnb_varchartoflt4, CastCall("1e39"), 4);
  EXPECT_EQ(real.status, OV);
  EXPECT_EQ(real.value<CS_REAL>(), FLT_MAX);

  const CastResult money = cast(comnb_chartomoney, CastCall("1.5"), 8);
  EXPECT_EQ(money.status, OK);
  EXPECT_EQ(money.value<CS_MONEY>().mnylow, 15000U);
  expect_value<CS_INT>(comnb_varchartomny4, std::array{'-', '2'}, OK, -20000);
  EXPECT_EQ(cast(comnb_chartomny4, CastCall("x"), 4).status, SY);
  EXPECT_EQ(cast(comnb_chartomny4, CastCall("x"), 4).len, 0);
}

TEST(CastText, ToNumeric) {
  const auto convert = [](CastFunction function, const std::string &text, CS_INT flags = 0,
                          size_t room = 6) {
    CastCall call = with_shape(text, 5, 2);
    call.context.flags = flags;
    return cast(function, call, room);
  };
  CastResult result = convert(comnb_chartonum, " -1.25 ");
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 6);
  EXPECT_EQ(result.bytes, "\x01\0\0\x7D\xA5\xA5"s);
  EXPECT_EQ(convert(comnb_chartonum, "1234").status, OV);
  EXPECT_EQ(convert(comnb_chartonum, "x").status, SY);
  EXPECT_EQ(convert(comnb_chartonum, "x").len, 6); // told by the capacity whatever comes
  EXPECT_EQ(convert(comnb_chartonum, std::string(1024, '0')).status, SY);
  EXPECT_EQ(convert(comnb_chartonum, "1.259").status, TR);
  result = convert(comnb_chartonum, "1.259", CAST_MAY_DROP_DIGITS);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.bytes, "\0\0\0\x7E\xA5\xA5"s); // rounded
  // Other flags say nothing.
  EXPECT_EQ(convert(comnb_chartonum, "1.259", ~CAST_MAY_DROP_DIGITS).status, TR);

  // Deliberate: whatever is wrong with varying text is an overflow, as in the matrix; but an empty one
  // is no fault.
  EXPECT_EQ(convert(comnb_varchartonum, "1.25").bytes, "\0\0\0\x7D\xA5\xA5"s);
  EXPECT_EQ(convert(comnb_varchartonum, "x").status, OV);
  EXPECT_EQ(convert(comnb_varchartonum, "1.259").status, OV);
  EXPECT_EQ(convert(comnb_varchartonum, "1.259", CAST_MAY_DROP_DIGITS).status, OK);
  EXPECT_EQ(convert(comnb_varchartonum, "").status, OK);
  EXPECT_EQ(convert(comnb_varchartonum, "").bytes, "\0\0\0\0\xA5\xA5"s);

  for (const CastFunction function : {comnb_chartonum, comnb_varchartonum}) {
    result = convert(function, "1", 0, 3);
    EXPECT_EQ(result.status, OV);
    EXPECT_TRUE(result.is_untouched());
    EXPECT_EQ(cast(function, with_shape("1", 0, 0), 33).status, CS_CONV_BADPRECISION);
    EXPECT_EQ(cast(function, with_shape("1", 1, 78), 33).status, CS_CONV_BADSCALE);
  }
}

// Digits, signs and blanks are those of the context's character set.
TEST(CastText, WideCharacters) {
  TestCharset set = TestCharset::double_byte(true);
  const auto wide = [&](const std::string &ascii) {
    CastCall call(set.spell(ascii, [] { return true; }));
    call.context.char_attrib = set.get();
    call.to = {5, 1};
    return call;
  };
  EXPECT_EQ(cast(comnb_chartoi4, wide(" -42"), 4).value<CS_INT>(), -42);
  EXPECT_EQ(cast(comnb_varchartoi8, wide("42"), 8).value<CS_BIGINT>(), 42);
  EXPECT_EQ(cast(comnb_chartoflt8, wide("2.5"), 8).value<double>(), 2.5);
  EXPECT_EQ(cast(comnb_chartonum, wide("2.5"), 4).bytes, "\0\0\0\x19"s);
  EXPECT_EQ(cast(comnb_chartomny4, wide("2.5"), 4).value<CS_INT>(), 25000);
  EXPECT_EQ(cast(comnb_hextoi4, wide("0xfF"), 4).value<CS_INT>(), 255);
  // Without the set these are bytes of no meaning.
  CastCall bytes = wide("42");
  bytes.context.char_attrib = nullptr;
  EXPECT_EQ(cast(comnb_chartoi4, bytes, 4).status, SY);

  // A cut keeps whole characters.
  const CastCall three = wide("abc");
  ASSERT_EQ(three.source.size(), 6U);
  const CastResult cut = cast(comnb_chartochar, three, 5);
  EXPECT_EQ(cut.status, TR);
  EXPECT_EQ(cut.len, 4);
  EXPECT_EQ(cut.text(), three.source.substr(0, 4));
  EXPECT_TRUE(cut.is_untouched(4));
  EXPECT_EQ(cast(comnb_varchartovarchar, three, 3).len, 2);
}

TEST(CastText, ToText) {
  const auto text = [](CastFunction function, const std::string &source, CS_INT format, size_t room,
                       CS_RETCODE status, CS_INT len, const std::string &bytes) {
    SCOPED_TRACE(source + " in " + std::to_string(room) + ", format " + std::to_string(format));
    expect_text(function, with_format(source, format), room, status, len, bytes);
  };
  text(comnb_chartochar, "abc", 0, 5, OK, 3, "abc..");
  text(comnb_chartochar, "abc", 0, 2, TR, 2, "ab");
  text(comnb_chartochar, "abc", 0, 0, TR, 0, "");
  text(comnb_chartochar, "", 0, 0, OK, 0, "");
  text(comnb_chartochar, "abc", B, 5, OK, 5, "abc  ");
  text(comnb_chartochar, "abc", P, 5, OK, 5, "abc\0\0"s);
  text(comnb_chartochar, "abc", N, 5, OK, 4, "abc\0."s);
  text(comnb_chartochar, "abc", N, 3, TR, 3, "ab\0"s);
  text(comnb_chartochar, "abc", N, 0, TR, 0, "");
  text(comnb_chartochar, "abc", P | B, 5, PC, 3, "abc..");
  text(comnb_chartochar, "abc", P | B, 2, PC, 2, "ab");
  text(comnb_chartochar, "abc", B | H, 4, OK, 4, " bc.");
  text(comnb_chartochar, "it's", Q, 6, OK, 5, "it''s.");
  text(comnb_chartochar, "it's", Q, 3, TR, 2, "it.");
  text(comnb_chartochar, "it's", Q | B, 6, OK, 6, "it''s ");
  // Varying text is neither quoted nor ended by force.
  text(comnb_varchartochar, "it's", Q, 6, OK, 4, "it's..");
  text(comnb_varchartochar, "abc", N, 3, TR, 3, "abc");
  text(comnb_varchartochar, "abc", N, 4, OK, 4, "abc\0"s);
  for (const CastFunction function : {comnb_chartovarchar, comnb_varchartovarchar}) {
    text(function, "it's", Q | B | N | P, 6, OK, 4, "it's..");
    text(function, "abc", N, 3, OK, 3, "abc");
    text(function, "abc", 0, 2, TR, 2, "ab");
    text(function, std::string(300, 'x'), 0, 300, OK, 300, std::string(300, 'x'));
  }
}

// ---- dates ----

TEST(CastDate, FromText) {
  const auto read = [](CastFunction function, const std::string &text, CS_INT style = 0) {
    return cast(function, dated(text, style), 8);
  };
  CastResult result = read(comnb_chartodatetime, "Mar 4 1995 5:06PM");
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 8);
  EXPECT_EQ(result.value<CS_DATETIME>().dtdays, 34760);
  EXPECT_EQ(result.value<CS_DATETIME>().dttime, (17 * 60 + 6) * 60 * 300);
  result = read(comnb_varchartodate4, "Mar 4 1995 5:06PM");
  EXPECT_EQ(result.len, 4);
  EXPECT_EQ(result.value<CS_DATETIME4>().days, 34760);
  EXPECT_EQ(result.value<CS_DATETIME4>().minutes, 17 * 60 + 6);
  EXPECT_EQ(read(comnb_chartodatea, "19950304").value<CS_DATE>(), 34760);
  EXPECT_EQ(read(comnb_chartotimea, "0:00:01").value<CS_TIME>(), 300);
  EXPECT_EQ(read(comnb_chartobigtime, "0:00:00.000001").value<CS_BIGTIME>(), 1U);
  EXPECT_EQ(read(comnb_chartobigdatetime, "00010101 0:00:00.000001").value<CS_BIGDATETIME>(),
            31622400000001U);

  // The order, the style and the names are those of the context.
  CastCall call = dated("3/4/1995");
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).value<CS_DATE>(), 34760);
  call.context.dateorder = 2;
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).value<CS_DATE>(), 34790);
  call.context.style = 101;
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).value<CS_DATE>(), 34760);
  call.context.style = 103;
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).value<CS_DATE>(), 34790);
  call = dated("March 4 1995");
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).value<CS_DATE>(), 34760);
  call.context.months = nullptr;
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).status, SY);
  call = dated("Mar 4 1995");
  call.context.shrtmonths = nullptr;
  EXPECT_EQ(cast(comnb_chartodatea, call, 4).status, SY);

  for (const CastFunction function :
       {comnb_chartodatetime, comnb_chartodate4, comnb_chartobigdatetime, comnb_chartodatea,
        comnb_chartotimea, comnb_chartobigtime, comnb_varchartodatetime, comnb_varchartodate4}) {
    EXPECT_EQ(read(function, "no date").status, SY);
    EXPECT_EQ(read(function, "no date").len, 0);
    EXPECT_EQ(read(function, "19951332").status, OV);
  }
  EXPECT_EQ(read(comnb_chartodate4, "19951332").len, 4);
  EXPECT_EQ(read(comnb_chartodate4, "18991231").status, OV);
}

TEST(CastDate, ToText) {
  const std::string datetime = cast_bytes(CS_DATETIME{34760, (17 * 60 + 6) * 60 * 300});
  expect_text(comnb_datetochar, dated(datetime), 20, OK, 19, "Mar  4 1995  5:06PM.");
  expect_text(comnb_datetochar, dated(datetime, 112), 10, OK, 8, "19950304..");
  expect_text(comnb_datetochar, dated(datetime, 112, B), 10, OK, 10, "19950304  ");
  expect_text(comnb_datetochar, dated(datetime, 112, B | H), 10, OK, 10, "  950304..");
  expect_text(comnb_datetochar, dated(datetime, 112, N), 10, OK, 9, "19950304\0."s);
  expect_text(comnb_datetochar, dated(datetime, 112, N), 8, OV, 8, "19950304");
  expect_text(comnb_datetochar, dated(datetime, 112, P | B), 10, PC, 8, "19950304..");
  expect_text(comnb_datetochar, dated(datetime, 112), 8, OK, 8, "19950304");
  expect_text(comnb_datetochar, dated(datetime, 112), 7, TR, 7, "1995030");
  expect_text(comnb_datetochar, dated(datetime, 112), 0, TR, 0, "");
  expect_text(comnb_datetochar, dated(datetime, 99), 5, CS_CONV_DATEBUFFER, 0, ".....");
  CastCall nameless = dated(datetime);
  nameless.context.shrtmonths = nullptr;
  expect_text(comnb_datetochar, nameless, 5, SY, 0, ".....");
  // Varying text is not padded.
  for (const CS_INT format : {0, N, B, P | B})
    expect_text(comnb_datetovarchar, dated(datetime, 112, format), 9, OK, 8, "19950304.");
  expect_text(comnb_datetovarchar, dated(datetime, 112, N), 8, OK, 8, "19950304");
  expect_text(comnb_datetovarchar, dated(datetime, 112), 7, TR, 7, "1995030");
  expect_text(comnb_datetovarchar, dated(datetime, 99), 3, CS_CONV_DATEBUFFER, 0, "...");

  expect_text(comnb_date4tochar, dated(cast_bytes(CS_DATETIME4{34760, 1026})), 19, OK, 19,
              "Mar  4 1995  5:06PM");
  expect_text(comnb_date4tovarchar, dated(cast_bytes(CS_DATETIME4{34760, 1026}), 112), 8, OK, 8,
              "19950304");
  expect_text(comnb_dateatochar, dated(cast_bytes(CS_DATE{34760})), 11, OK, 11, "Mar  4 1995");
  expect_text(comnb_timeatochar, dated(cast_bytes(CS_TIME{300}), 8), 8, OK, 8, "00:00:01");
  expect_text(comnb_bigtimetochar, dated(cast_bytes(CS_BIGTIME{1000000}), 8), 8, OK, 8, "00:00:01");
  const std::string year_one = cast_bytes(CS_BIGDATETIME{31622400000000});
  expect_text(comnb_bigdatetimetochar, dated(year_one, 112), 8, OK, 8, "00010101");
  expect_text(comnb_bigdatetimetovarchar, dated(year_one, 112, B), 9, OK, 8, "00010101.");
}

TEST(CastDate, NegativeCapacitiesHoldNothing) {
  CAST_CONTEXT context = english();
  context.style = 112;
  CS_DATETIME value{34760, 0};
  GuardedBuffer buffer(0);
  __CONSTANT src{}, dest{};
  src.value = reinterpret_cast<CS_BYTE *>(&value);
  dest.value = buffer.data();
  dest.maxlen = -1;
  EXPECT_EQ(comnb_datetochar(&context, &src, &dest), TR);
  EXPECT_EQ(comnb_datetovarchar(&context, &src, &dest), TR);
  src.len = 8;
  EXPECT_EQ(comnb_anytovar(&context, &src, &dest), TR);
  EXPECT_EQ(dest.len, 0);
  EXPECT_EQ(comnb_chartochar(&context, &src, &dest), TR);
  EXPECT_EQ(comnb_chartovarchar(&context, &src, &dest), TR);
  EXPECT_EQ(dest.len, 0);
  EXPECT_EQ(comnb_i4tochar(&context, &src, &dest), OV);
  EXPECT_EQ(comnb_i4tovarchar(&context, &src, &dest), OV);
  dest.prec = 1;
  EXPECT_EQ(comnb_i4tonum(&context, &src, &dest), OV);
  EXPECT_EQ(comnb_bintonum(&context, &src, &dest), OV);
  EXPECT_EQ(comnb_i4tohex(&context, &src, &dest), SY);
}

// ---- bytes ----

TEST(CastBytes, AnyToVar) {
  expect_text(comnb_anytovar, with_format("abc", B | P | N), 5, OK, 3, "abc..");
  expect_text(comnb_anytovar, CastCall("abc"), 3, OK, 3, "abc");
  expect_text(comnb_anytovar, CastCall("abc"), 2, TR, 2, "ab");
  expect_text(comnb_anytovar, CastCall(""), 2, OK, 0, "..");
}

TEST(CastBytes, AnyToFixed) {
  expect_text(comnb_anytofixed, CastCall("abc"), 5, OK, 3, "abc..");
  expect_text(comnb_anytofixed, with_format("abc", P), 5, OK, 5, "abc\0\0"s);
  expect_text(comnb_anytofixed, with_format("abc", B), 5, OK, 5, "abc  ");
  expect_text(comnb_anytofixed, with_format("abc", P | B), 5, OK, 5, "abc\0\0"s);
  expect_text(comnb_anytofixed, with_format("abc", N), 5, OK, 3, "abc..");
  expect_text(comnb_anytofixed, with_format("abc", B), 2, TR, 2, "ab");
}

TEST(CastBytes, FloatsMustBeFinite) {
  const auto copy = [](const std::string &bytes, int type, size_t room, CS_INT format = 0) {
    CastCall call = with_format(bytes, format);
    call.type = type;
    return cast(comnb_anytofixed, call, room);
  };
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double bad : {infinite, -infinite, std::nan("")}) {
    const CastResult wide = copy(cast_bytes(bad), CAST_TYPE_FLT8, 8);
    EXPECT_EQ(wide.status, DO);
    EXPECT_EQ(wide.len, 8);
    EXPECT_EQ(wide.bytes, cast_bytes(bad)); // in place
    const auto narrow = static_cast<float>(bad);
    EXPECT_EQ(copy(cast_bytes(narrow), CAST_TYPE_FLT4, 4).status, DO);
    EXPECT_EQ(copy(cast_bytes(narrow), CAST_TYPE_FLT4, 4).bytes, cast_bytes(narrow));
    // Only as the type that the destination says.
    EXPECT_EQ(copy(cast_bytes(bad), 61, 8).status, OK);
    EXPECT_EQ(copy(cast_bytes(bad), 0, 8).status, OK);
    EXPECT_EQ(copy(cast_bytes(narrow), CAST_TYPE_FLT8, 4).status, OK); // not a whole one
    EXPECT_EQ(copy(cast_bytes(bad), CAST_TYPE_FLT8, 7).status, TR);
  }
  EXPECT_EQ(copy(cast_bytes(DBL_MAX), CAST_TYPE_FLT8, 8).status, OK);
  EXPECT_EQ(copy(cast_bytes(FLT_MAX), CAST_TYPE_FLT4, 4).status, OK);
  // What the padding completes is tested too.
  EXPECT_EQ(copy("", CAST_TYPE_FLT8, 8, B).status, OK);
  EXPECT_EQ(copy("\xFF\xFF\xFF"s, CAST_TYPE_FLT4, 4, P).status, OK);
}

// What stood behind a short copy is no part of the value.
TEST(CastBytes, OnlyWholeFloatsAreTested) {
  GuardedBuffer buffer(8);
  std::memset(buffer.data(), 0xFF, 8);
  CS_BYTE bytes[7];
  std::memset(bytes, 0xFF, sizeof bytes);
  CAST_CONTEXT context{};
  __CONSTANT src{}, dest{};
  src.value = bytes;
  dest.value = buffer.data();
  dest.maxlen = 8;
  dest.type = CAST_TYPE_FLT8;
  src.len = 7;
  EXPECT_EQ(comnb_anytofixed(&context, &src, &dest), OK);
  EXPECT_EQ(dest.len, 7);
  dest.type = CAST_TYPE_FLT4;
  src.len = 3;
  EXPECT_EQ(comnb_anytofixed(&context, &src, &dest), OK);
  src.len = 4;
  EXPECT_EQ(comnb_anytofixed(&context, &src, &dest), DO);
}

TEST(CastBytes, BinaryAsItStands) {
  EXPECT_EQ(cast(comnb_bintobit, CastCall("\0\xFF"s), 1).value<CS_BIT>(), 0);
  EXPECT_EQ(cast(comnb_bintobit, CastCall("\x80"), 1).value<CS_BIT>(), 1);

  const std::string eight = "\x01\x02\x03\x04\x05\x06\x07\x08";
  for (const CastFunction function :
       {comnb_bintodate, comnb_bintobigdatetime, comnb_bintobigtime}) {
    expect_text(function, CastCall(eight), 8, OK, 8, eight);
    expect_text(function, CastCall(eight + "\x09"), 9, TR, 8, eight + ".");
    expect_text(function, CastCall(eight.substr(0, 7)), 8, UN, 7, eight.substr(0, 7) + ".");
  }
  expect_text(comnb_bintodatea, CastCall("\0\0\0\0"s), 4, OK, 4, "\0\0\0\0"s);
  expect_text(comnb_bintodatea, CastCall("\0\0\0\x80"s), 4, DO, 0, "\0\0\0\x80"s);
  expect_text(comnb_bintodatea, CastCall("\0\0\0"s), 4, UN, 3, "\0\0\0."s);
  expect_text(comnb_bintodatea, CastCall("\0\0\0\0\0"s), 4, TR, 4, "\0\0\0\0"s);
  expect_text(comnb_bintotimea, CastCall("\x01\0\0\0"s), 4, OK, 4, "\x01\0\0\0"s);
  expect_text(comnb_bintotimea, CastCall("\xFF\xFF\xFF\xFF"s), 4, DO, 0, "\xFF\xFF\xFF\xFF"s);
}

TEST(CastBytes, BinaryToNumeric) {
  const auto convert = [](const std::string &bytes, size_t room, int precision = 5, int scale = 2) {
    return cast(comnb_bintonum, with_shape(bytes, precision, scale), room);
  };
  const std::string whole = "\x01\0\0\x7D"s;
  CastResult result = convert(whole, 4);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.len, 4);
  EXPECT_EQ(result.bytes, whole);
  EXPECT_EQ(result.precision, 5);
  result = convert(whole, 6);
  EXPECT_EQ(result.status, UN);
  EXPECT_EQ(result.len, 6);
  EXPECT_EQ(result.bytes, whole + "\xA5\xA5");
  result = convert(whole + "\x01", 4);
  EXPECT_EQ(result.status, TR);
  EXPECT_EQ(result.bytes, whole);
  // A value has 33 bytes at most.
  EXPECT_EQ(convert(std::string(33, '\x01'), 40).status, OK);
  EXPECT_EQ(convert(std::string(34, '\x01'), 40).status, TR);
  EXPECT_TRUE(convert(std::string(34, '\x01'), 40).is_untouched(33));
  EXPECT_EQ(convert(whole, 4, 0).status, CS_CONV_BADPRECISION);
  EXPECT_EQ(convert(whole, 4, 78).status, CS_CONV_BADPRECISION);
  EXPECT_EQ(convert(whole, 4, 5, 78).status, CS_CONV_BADSCALE);
  EXPECT_EQ(convert(whole, 3).status, OV);
  EXPECT_TRUE(convert(whole, 3).is_untouched());
}

// ---- hexadecimal ----

TEST(CastHex, FromIntegers) {
  expect_text(comnb_i4tohex, from_i4(255), 5, OK, 5, "00FF\0"s);
  expect_text(comnb_i4tohex, from_i4(255), 3, OK, 3, "FF\0"s);
  expect_text(comnb_i4tohex, from_i4(0x1FF), 3, OV, 3, "FF\0"s);
  expect_text(comnb_i4tohex, from_i4(0), 2, OK, 2, "0\0"s);
  expect_text(comnb_i4tohex, from_i4(0x12ABCDEF), 9, OK, 9, "12ABCDEF\0"s);
  // The shift is logical.
  expect_text(comnb_i4tohex, from_i4(-1), 11, OK, 11, "00FFFFFFFF\0"s);
  expect_text(comnb_i4tohex, from_i4(-1), 8, OV, 8, "FFFFFFF\0"s);
  expect_text(comnb_ui4tohex, CastCall(cast_bytes(CS_UINT{0x80000001})), 9, OK, 9, "80000001\0"s);
  expect_text(comnb_i8tohex, CastCall(cast_bytes(CS_BIGINT{-2})), 17, OK, 17,
              "FFFFFFFFFFFFFFFE\0"s);
  expect_text(comnb_ui8tohex, CastCall(cast_bytes(CS_UBIGINT{0x10})), 4, OK, 4, "010\0"s);
  for (const CastFunction function :
       {comnb_i4tohex, comnb_i8tohex, comnb_ui4tohex, comnb_ui8tohex}) {
    expect_text(function, CastCall(std::string(8, '\x01')), 1, SY, untouched_len, ".");
    expect_text(function, CastCall(std::string(8, '\x01')), 0, SY, untouched_len, "");
    CAST_CONTEXT context{};
    CS_BIGINT value = 1;
    __CONSTANT src{}, dest{};
    src.value = reinterpret_cast<CS_BYTE *>(&value);
    dest.maxlen = 9;
    EXPECT_EQ(function(&context, &src, &dest), SY);
  }
}

TEST(CastHex, ToIntegers) {
  const auto read = [](CastFunction function, const std::string &text, size_t width) {
    return cast(function, CastCall(text), width);
  };
  const auto i4 = [&](const std::string &text) { return read(comnb_hextoi4, text, 4); };
  EXPECT_EQ(i4("00FF").status, OK);
  EXPECT_EQ(i4("00FF").len, 4);
  EXPECT_EQ(i4("00FF").value<CS_INT>(), 255);
  EXPECT_EQ(i4(" \t0xaBc ").value<CS_INT>(), 0xABC);
  EXPECT_EQ(i4("0X7").value<CS_INT>(), 7);
  EXPECT_EQ(i4("FFFFFFFF").value<CS_INT>(), -1);
  EXPECT_EQ(i4("0000000080000000").value<CS_INT>(), INT_MIN);
  for (const char *empty : {"", " ", "  ", "0x"}) {
    EXPECT_EQ(i4(empty).status, OK);
    EXPECT_EQ(i4(empty).value<CS_INT>(), 0);
  }
  for (const char *bad : {"G", "1 2", "0x0x1", "-1", "+1", "x1"})
    EXPECT_EQ(i4(bad).status, SY) << bad;
  EXPECT_EQ(i4("1\0"s).status, SY);
  EXPECT_TRUE(i4("G").is_untouched());
  EXPECT_EQ(i4("100000000").status, OV);
  EXPECT_EQ(i4("100000000").value<CS_INT>(), INT_MAX);
  EXPECT_EQ(i4("100000000").len, 4);
  EXPECT_EQ(i4(std::string(247, '0') + "1234ABCD").value<CS_INT>(), 0x1234ABCD);
  EXPECT_EQ(i4(std::string(256, '0')).status, SY);
  EXPECT_TRUE(i4(std::string(256, '0')).is_untouched());

  EXPECT_EQ(read(comnb_hextoui4, "FFFFFFFF", 4).value<CS_UINT>(), UINT_MAX);
  EXPECT_EQ(read(comnb_hextoui4, "100000000", 4).value<CS_UINT>(), UINT_MAX);
  EXPECT_EQ(read(comnb_hextoui4, "100000000", 4).status, OV);
  EXPECT_EQ(read(comnb_hextoi8, "FFFFFFFFFFFFFFFE", 8).value<CS_BIGINT>(), -2);
  EXPECT_EQ(read(comnb_hextoui8, "FFFFFFFFFFFFFFFE", 8).value<CS_UBIGINT>(), ULLONG_MAX - 1);
  EXPECT_EQ(read(comnb_hextoi8, "10000000000000000", 8).value<CS_BIGINT>(), LLONG_MAX);
  // Deliberate: it is comnb_hextoi8.
  EXPECT_EQ(read(comnb_hextoui8, "10000000000000000", 8).status, OV);
  EXPECT_EQ(read(comnb_hextoui8, "10000000000000000", 8).value<CS_UBIGINT>(),
            static_cast<CS_UBIGINT>(LLONG_MAX));
}
