// The tables of exact numerics and the operations on descriptors.
#include <random>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "descriptor.h"
#include "numeric_operands.h"

using zrvtest::Descriptor;
using zrvtest::Natural;

namespace {

std::string zeroes(int count) {
  return std::string(static_cast<size_t>(count), '0');
}

std::string power_digits(int exponent) {
  return "1" + zeroes(exponent);
}

} // namespace

TEST(NumericTables, LengthsOfPrecisions) {
  const std::pair<int, int> rows[] = {{0, 2},   {1, 2},   {2, 2},  {3, 3},  {4, 3},
                                      {5, 4},   {9, 5},   {10, 6}, {19, 9}, {20, 10},
                                      {38, 17}, {76, 33}, {77, 33}};
  for (const auto &[precision, length] : rows)
    EXPECT_EQ(Com__Nume_Prec_To_Len[precision], length) << precision;
  for (int precision = 0; precision <= 77; ++precision)
    EXPECT_EQ(Com__Nume_Prec_To_Len[precision], zrvtest::reference_length(precision));
}

TEST(NumericTables, PrecisionsOfLengths) {
  const int rows[35] = {2,  4,  7,  9,  12, 14, 16, 19, 21, 24, 26, 28, 31, 33, 36,  38,  40, 43,
                        45, 48, 50, 52, 55, 57, 60, 62, 65, 67, 69, 72, 74, 77, 255, 255, 255};
  for (int i = 0; i < 35; ++i)
    EXPECT_EQ(Com__Nume_Len_To_Prec[i], rows[i]) << i;
}

TEST(NumericTables, PowersOfTen) {
  for (int exponent = 0; exponent <= 77; ++exponent) {
    const CS_BYTE *row = Com__Nume_Byte_Power_Array[exponent];
    const Natural power = Natural::power_of_ten(exponent);
    EXPECT_TRUE(Natural::from_bytes(row + 2, row[0] - 1) == power);
    EXPECT_EQ(row[1], 0);
    EXPECT_NE(row[2], 0) << "not minimal";
    for (int i = row[0] + 1; i < 34; ++i)
      EXPECT_EQ(row[i], 0);
  }
  EXPECT_EQ(Com__Nume_Byte_Power_Array[0][0], 2);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[2][2], 0x64);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[3][0], 3);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[3][2], 0x03);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[3][3], 0xE8);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[10][0], 6);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[76][0], 33);
  EXPECT_EQ(Com__Nume_Byte_Power_Array[77][0], 33);
}

TEST(NumericTables, GetlenAndGetprecCheckTheirRange) {
  EXPECT_EQ(comn_num_getlen(1), 2);
  EXPECT_EQ(comn_num_getlen(77), 33);
  for (CS_INT precision : {0, 78, -1, INT32_MIN, INT32_MAX})
    EXPECT_ASSERTION("numeric.cpp", 0, comn_num_getlen(precision));
  EXPECT_EQ(comn_num_getprec(2), 2);
  EXPECT_EQ(comn_num_getprec(33), 77);
  for (CS_INT length : {0, 1, 34, -1, INT32_MIN, INT32_MAX})
    EXPECT_ASSERTION("numeric.cpp", 0, comn_num_getprec(length));
}

TEST(ExctnumeCmp, FlagsAndLengths) {
  Descriptor five(3, 3, 0, "5"), minus_five(9, 3, 0, "5", true), fifty(2, 3, 1, "50");
  EXPECT_EQ(com__exctnume_cmp(five.get(), minus_five.get(), 0), 0);
  EXPECT_EQ(com__exctnume_cmp(five.get(), minus_five.get(), NUME_CMP_SIGNS), 1);
  EXPECT_EQ(com__exctnume_cmp(minus_five.get(), five.get(), NUME_CMP_SIGNS), -1);
  EXPECT_EQ(com__exctnume_cmp(five.get(), fifty.get(), 0), -1);
  EXPECT_EQ(com__exctnume_cmp(five.get(), fifty.get(), NUME_CMP_SCALES), 0);
  EXPECT_EQ(com__exctnume_cmp(fifty.get(), five.get(), NUME_CMP_SIGNS), 1);
  Descriptor zero(3, 3, 0, "0"), minus_zero(5, 3, 2, "0", true);
  EXPECT_EQ(com__exctnume_cmp(zero.get(), minus_zero.get(), 3), 0);
  EXPECT_EQ(com__exctnume_cmp(minus_zero.get(), five.get(), 1), -1);
  EXPECT_EQ(com__exctnume_cmp(minus_zero.get(), minus_five.get(), 1), 1);
}

// Where the scales can be brought together only by dropping digits, different signs still decide.
TEST(ExctnumeCmp, DifferentSignsDecideBeforeDigitsAreDropped) {
  Descriptor tiny(33, 77, 77, "1"), minus_tiny(33, 77, 77, "1", true);
  Descriptor zero(2, 1, 0, "0"), minus_zero(2, 1, 0, "0", true);
  EXPECT_EQ(com__exctnume_cmp(tiny.get(), zero.get(), 3), 0);
  EXPECT_EQ(com__exctnume_cmp(minus_tiny.get(), minus_zero.get(), 3), 0);
  EXPECT_EQ(com__exctnume_cmp(minus_zero.get(), minus_tiny.get(), 3), 0);
  EXPECT_EQ(com__exctnume_cmp(tiny.get(), minus_zero.get(), 3), 1);
  EXPECT_EQ(com__exctnume_cmp(minus_zero.get(), tiny.get(), 3), -1);
  EXPECT_EQ(com__exctnume_cmp(minus_tiny.get(), zero.get(), 3), -1);
  EXPECT_EQ(com__exctnume_cmp(zero.get(), minus_tiny.get(), 3), 1);
  // Any sign byte but 0 is the same sign.
  Descriptor other(2, 1, 0, "1", true), minus_one(2, 1, 0, "1", true);
  other->value[0] = 2;
  EXPECT_EQ(com__exctnume_cmp(other.get(), minus_one.get(), NUME_CMP_SIGNS), 0);
  EXPECT_EQ(com__exctnume_cmp(minus_one.get(), other.get(), 3), 0);
  minus_zero->value[0] = 0x80;
  EXPECT_EQ(com__exctnume_cmp(minus_tiny.get(), minus_zero.get(), 3), 0);
}

// A byte outweighs all that follow, wherever it stands in whichever word.
TEST(ExctnumeCmp, EveryByteCountsByItsPlace) {
  for (CS_INT length = 2; length <= 40; ++length)
    for (CS_INT place = 1; place < length; ++place) {
      std::vector<CS_BYTE> greater(static_cast<size_t>(length), 0), smaller(greater);
      greater[static_cast<size_t>(place)] = 1;
      std::fill(smaller.begin() + place + 1, smaller.end(), CS_BYTE{255});
      __CONSTANT a{}, b{};
      a.len = b.len = length;
      a.value = greater.data();
      b.value = smaller.data();
      EXPECT_EQ(com__exctnume_cmp(&a, &b, 0), 1) << length << ", " << place;
      EXPECT_EQ(com__exctnume_cmp(&b, &a, 0), -1) << length << ", " << place;
      // Zeroes in front make no difference.
      b.len = length - place;
      b.value += place;
      EXPECT_EQ(com__exctnume_cmp(&a, &b, 0), 1) << length << ", " << place;
      EXPECT_EQ(com__exctnume_cmp(&b, &a, 0), -1) << length << ", " << place;
    }
}

TEST(ExctnumeCmp, EmptyValuesAreZero) {
  Descriptor one(3, 3, 0, "1");
  __CONSTANT empty{};
  EXPECT_EQ(com__exctnume_cmp(&empty, one.get(), 3), -1);
  EXPECT_EQ(com__exctnume_cmp(&empty, &empty, 3), 0);
}

// A length below 2 has no magnitude, however far below it is: nothing is read or written.
TEST(ExctnumeDescriptors, NegativeLengthsAreEmpty) {
  for (CS_INT length : {1, 0, -1, INT32_MIN}) {
    Descriptor one(3, 3, 0, "1");
    unsigned char sign = 0;
    __CONSTANT empty{};
    empty.len = length;
    empty.prec = 3;
    empty.value = &sign;
    EXPECT_EQ(com__exctnume_cmp(&empty, one.get(), 3), -1);
    EXPECT_EQ(com__exctnume_intcmp(&empty, 0), 1);
    EXPECT_EQ(com__exctnume_checkprecision(&empty), 0);
    EXPECT_EQ(com__exctnume_mulby10_add(&empty, 0), 0);
    EXPECT_EQ(com__exctnume_mulby10_add(&empty, 1), 1);
    EXPECT_EQ(com__exctnume_inc(&empty), 2);
    EXPECT_EQ(com__exctnume_copy(one.get(), &empty), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_scale(one.get(), &empty, 1, 0), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_intadd(one.get(), one.get(), &empty), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_intsub(one.get(), &empty, &empty), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_intmul(one.get(), one.get(), &empty), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_addorsub(one.get(), one.get(), &empty, 0), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_mul(one.get(), one.get(), &empty), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_div(one.get(), one.get(), &empty, nullptr), NUME_OVERFLOW);
    EXPECT_EQ(com__exctnume_div(one.get(), &empty, &empty, nullptr), NUME_DIVZERO);
    EXPECT_EQ(com__exctnume_div(&empty, one.get(), &empty, nullptr), NUME_OK);
    EXPECT_EQ(sign, 0);
  }
}

TEST(ExctnumeIntcmp, LooksAtTheMagnitudeOnly) {
  Descriptor value(9, 9, 2, "258", true);
  EXPECT_EQ(com__exctnume_intcmp(value.get(), 258), 1);
  EXPECT_EQ(com__exctnume_intcmp(value.get(), 2), 0);
  EXPECT_EQ(com__exctnume_intcmp(value.get(), -258), 0);
  Descriptor zero(9, 9, 2, "0"), long_value(9, 9, 0, power_digits(18));
  EXPECT_EQ(com__exctnume_intcmp(zero.get(), 0), 1);
  EXPECT_EQ(com__exctnume_intcmp(long_value.get(), 0), 0);
}

TEST(ExctnumeCopy, RightAlignedWithLostBytesReported) {
  Descriptor from(5, 9, 3, "16909060", true); // 1 2 3 4
  Descriptor longer(8, 20, 1), shorter(3, 4, 2);
  EXPECT_EQ(com__exctnume_copy(from.get(), longer.get()), NUME_OK);
  EXPECT_EQ(longer.text(), "-16909060");
  EXPECT_EQ(longer->prec, 20);
  EXPECT_EQ(longer->scale, 1);
  EXPECT_EQ(com__exctnume_copy(from.get(), shorter.get()), NUME_OVERFLOW);
  EXPECT_EQ(shorter.text(), "-772"); // 3 4
  Descriptor small(5, 9, 0, "772");
  EXPECT_EQ(com__exctnume_copy(small.get(), shorter.get()), NUME_OK);
  EXPECT_EQ(shorter.text(), "772");
  // The sign byte goes as it is, a negative zero's too.
  Descriptor minus_zero(2, 1, 0, "0", true);
  EXPECT_EQ(com__exctnume_copy(minus_zero.get(), longer.get()), NUME_OK);
  EXPECT_EQ(longer.text(), "-0");
}

TEST(ExctnumeScale, Shifts) {
  Descriptor value(4, 5, 0, "15");
  EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, -1, 0), NUME_TRUNCATED);
  EXPECT_EQ(value.text(), "1");
  EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, 4, 1), NUME_OK);
  EXPECT_EQ(value.text(), "10000");
  EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, 4, 1), NUME_OVERFLOW);
  EXPECT_EQ(value.text(), "10000");
  // A shift up looks at the length only, not at the precision.
  EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, 3, 0), NUME_OK);
  EXPECT_EQ(value.text(), "10000000");
  EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, -7, 0), NUME_OK);
  EXPECT_EQ(value.text(), "1");
  for (int shift : {78, -78, 1000, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(com__exctnume_scale(value.get(), nullptr, shift, 0), NUME_SYNTAX);
    EXPECT_EQ(value.text(), "1");
  }
}

TEST(ExctnumeScale, SignSurvivesButNotOnZero) {
  Descriptor value(4, 5, 0, "15", true), other(9, 9, 0);
  EXPECT_EQ(com__exctnume_scale(value.get(), other.get(), -1, 0), NUME_TRUNCATED);
  EXPECT_EQ(other.text(), "-1");
  EXPECT_EQ(value.text(), "-15");
  EXPECT_EQ(com__exctnume_scale(value.get(), other.get(), -2, 0), NUME_TRUNCATED);
  EXPECT_EQ(other.text(), "0");
  EXPECT_EQ(com__exctnume_scale(value.get(), other.get(), 0, 0), NUME_OK);
  EXPECT_EQ(other.text(), "-15");
}

// A shift down meets the precision of its result as well.
TEST(ExctnumeScale, ShiftDownBeyondThePrecisionIsOverflow) {
  Descriptor value(4, 3, 0, "123456"), result(4, 2, 0);
  EXPECT_EQ(com__exctnume_scale(value.get(), result.get(), -1, 0), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_scale(value.get(), result.get(), -4, 0), NUME_TRUNCATED);
  EXPECT_EQ(result.text(), "12");
}

TEST(ExctnumeScale, AllShiftsAgainstLongHand) {
  std::mt19937 random(7);
  for (int shift = -77; shift <= 77; ++shift)
    for (int i = 0; i < 50; ++i) {
      std::string digits;
      for (auto n = random() % 77 + 1; n > 0; --n)
        digits += static_cast<char>('0' + random() % 10);
      Descriptor value(33, 77, 0, digits, (random() & 1) != 0), result(33, 77, 0);
      const bool negative = value.bytes()[0] != 0;
      Natural expected = Natural::from_digits(digits);
      int status = NUME_OK;
      for (int k = 0; k < shift; ++k)
        expected.multiply_small(10, 0);
      for (int k = 0; k > shift; --k)
        if (expected.divide_small(10) != 0)
          status = NUME_TRUNCATED;
      unsigned char scratch[32];
      if (!expected.to_bytes(scratch, 32))
        status = NUME_OVERFLOW;
      ASSERT_EQ(com__exctnume_scale(value.get(), result.get(), shift, 0), status);
      if (status != NUME_OVERFLOW) {
        ASSERT_EQ(result.text(),
                  (negative && (shift == 0 || !expected.is_zero()) ? "-" : "") + expected.digits());
      }
    }
}

TEST(ExctnumeCheckprecision, ReachesThePower) {
  Descriptor value(3, 3, 0, "999");
  EXPECT_EQ(com__exctnume_checkprecision(value.get()), 0);
  value->value[2] = 0xE8; // 1000
  EXPECT_EQ(com__exctnume_checkprecision(value.get()), 1);
  value->prec = 77;
  EXPECT_EQ(com__exctnume_checkprecision(value.get()), 0);
  value->prec = 0;
  EXPECT_EQ(com__exctnume_checkprecision(value.get()), 1);
  for (int prec : {78, 255}) {
    value->prec = static_cast<CS_BYTE>(prec);
    EXPECT_EQ(com__exctnume_checkprecision(value.get()), 0);
  }
}

TEST(ExctnumeDivby10, ShrinksItsView) {
  CS_BYTE bytes[] = {0, 0x03, 0xE8}; // 1000
  CS_BYTE *view = bytes;
  CS_INT length = 3;
  EXPECT_EQ(com__exctnume_divby10(&view, &length), 0);
  EXPECT_EQ(view, bytes + 1);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(view[1], 100);
  EXPECT_EQ(com__exctnume_divby10(&view, &length), 0);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(view[1], 10);
}

// Deliberate: a view of three bytes whose last one is 255 is not shrunk.
TEST(ExctnumeDivby10, ViewOfThreeBytesThatEndIn255Stays) {
  CS_BYTE bytes[] = {0, 0x09, 0xF9}; // 2553
  CS_BYTE *view = bytes;
  CS_INT length = 3;
  EXPECT_EQ(com__exctnume_divby10(&view, &length), 3);
  EXPECT_EQ(bytes[2], 255);
  EXPECT_EQ(view, bytes);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(com__exctnume_divby10(&view, &length), 5);
  EXPECT_EQ(length, 2);
  // Four bytes that end in 255 are shrunk.
  CS_BYTE four[] = {0, 0, 0x09, 0xF9};
  view = four;
  length = 4;
  EXPECT_EQ(com__exctnume_divby10(&view, &length), 3);
  EXPECT_EQ(length, 3);
}

TEST(ExctnumeMulby10Add, CarriesOut) {
  Descriptor value(3, 5, 0, "6553");
  EXPECT_EQ(com__exctnume_mulby10_add(value.get(), 5), 0);
  EXPECT_EQ(value.text(), "65535");
  EXPECT_EQ(com__exctnume_mulby10_add(value.get(), 0), 1);
  Descriptor next(3, 5, 0, "6553");
  EXPECT_EQ(com__exctnume_mulby10_add(next.get(), 6), 1);
}

TEST(ExctnumeIncDec, StepsAcrossZero) {
  Descriptor value(3, 4, 0, "1", true);
  EXPECT_EQ(com__exctnume_inc(value.get()), 0);
  EXPECT_EQ(value.text(), "0");
  EXPECT_EQ(com__exctnume_inc(value.get()), 0);
  EXPECT_EQ(value.text(), "1");
  EXPECT_EQ(com__exctnume_dec(value.get()), 0);
  EXPECT_EQ(value.text(), "0");
  EXPECT_EQ(com__exctnume_dec(value.get()), 0);
  EXPECT_EQ(value.text(), "-1");
  EXPECT_EQ(com__exctnume_dec(value.get()), 0);
  EXPECT_EQ(value.text(), "-2");
  EXPECT_EQ(com__exctnume_inc(value.get()), 0);
  EXPECT_EQ(value.text(), "-1");
  Descriptor minus_zero(3, 4, 0, "0", true);
  EXPECT_EQ(com__exctnume_inc(minus_zero.get()), 0);
  EXPECT_EQ(minus_zero.text(), "1");
  Descriptor again(3, 4, 0, "0", true);
  EXPECT_EQ(com__exctnume_dec(again.get()), 0);
  EXPECT_EQ(again.text(), "-1");
}

TEST(ExctnumeIncDec, CarriesAndOverflow) {
  Descriptor value(3, 4, 0, "255");
  EXPECT_EQ(com__exctnume_needsbyte(value.get()), 0);
  EXPECT_EQ(com__exctnume_inc(value.get()), 0);
  EXPECT_EQ(value.text(), "256");
  EXPECT_EQ(com__exctnume_dec(value.get()), 0);
  EXPECT_EQ(value.text(), "255");
  Descriptor full(3, 4, 0, "65535");
  EXPECT_EQ(com__exctnume_needsbyte(full.get()), 1);
  EXPECT_EQ(com__exctnume_inc(full.get()), 1);
  EXPECT_EQ(full.text(), "0");
  Descriptor lowest(3, 4, 0, "65535", true);
  EXPECT_EQ(com__exctnume_dec(lowest.get()), 1);
  EXPECT_EQ(lowest.text(), "-0"); // the sign is turned back on failure too
  __CONSTANT empty{};
  EXPECT_EQ(com__exctnume_inc(&empty), 2);
  EXPECT_EQ(com__exctnume_dec(&empty), 2);
}

// The carry goes into the byte in front of the operands, and what is left of the result is cleared.
TEST(ExctnumeIntadd, BytesLeftOverAreCleared) {
  Descriptor a(3, 9, 0, "65535"), b(2, 9, 0, "1"), result(8, 9, 0);
  std::memset(result->value, 0x77, 8);
  EXPECT_EQ(com__exctnume_intadd(a.get(), b.get(), result.get()), NUME_OK);
  const std::vector<unsigned char> expected{0x77, 0, 0, 0, 0, 1, 0, 0};
  EXPECT_EQ(std::vector<unsigned char>(result.bytes(), result.bytes() + 8), expected);
  // Bytes of zero that are left in an operand do not count, others do.
  Descriptor wide(6, 9, 0, "5"), narrow(2, 9, 0);
  EXPECT_EQ(com__exctnume_intadd(wide.get(), b.get(), narrow.get()), NUME_OK);
  EXPECT_EQ(narrow->value[1], 6);
  EXPECT_EQ(com__exctnume_intadd(b.get(), wide.get(), narrow.get()), NUME_OK);
  wide->value[1] = 1;
  EXPECT_EQ(com__exctnume_intadd(wide.get(), b.get(), narrow.get()), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_intadd(b.get(), wide.get(), narrow.get()), NUME_OVERFLOW);
}

TEST(ExctnumeIntadd, AnyLengths) {
  Descriptor a(4, 9, 0, "16777215"), b(2, 9, 0, "255"), longer(6, 9, 0), same(4, 9, 0);
  longer->value[0] = 7;
  EXPECT_EQ(com__exctnume_intadd(a.get(), b.get(), longer.get()), NUME_OK);
  EXPECT_EQ(Natural::from_bytes(longer->value + 1, 5).digits(), "16777470");
  EXPECT_EQ(longer->value[0], 7); // the sign byte is the caller's
  EXPECT_EQ(com__exctnume_intadd(b.get(), a.get(), same.get()), NUME_OVERFLOW);
  Descriptor one(2, 9, 0, "1"), narrow(2, 9, 0);
  EXPECT_EQ(com__exctnume_intadd(a.get(), one.get(), narrow.get()), NUME_OVERFLOW);
}

TEST(ExctnumeIntsub, AnyLengths) {
  Descriptor a(4, 9, 0, "65536"), b(3, 9, 0, "1"), longer(9, 9, 0), narrow(2, 9, 0), fits(3, 9, 0);
  EXPECT_EQ(com__exctnume_intsub(a.get(), b.get(), longer.get()), NUME_OK);
  EXPECT_EQ(Natural::from_bytes(longer->value + 1, 8).digits(), "65535");
  EXPECT_EQ(com__exctnume_intsub(a.get(), b.get(), fits.get()), NUME_OK);
  EXPECT_EQ(com__exctnume_intsub(a.get(), b.get(), narrow.get()), NUME_OVERFLOW);
}

TEST(ExctnumeIntmul, SignsZeroAndRoom) {
  Descriptor a(3, 9, 0, "300", true), b(2, 9, 0, "7"), result(4, 9, 0), narrow(2, 9, 0);
  EXPECT_EQ(com__exctnume_intmul(a.get(), b.get(), result.get()), NUME_OK);
  EXPECT_EQ(result.text(), "-2100");
  EXPECT_EQ(com__exctnume_intmul(a.get(), a.get(), result.get()), NUME_OK);
  EXPECT_EQ(result.text(), "90000");
  Descriptor zero(5, 9, 0, "0", true), one(9, 9, 0, "1", true);
  EXPECT_EQ(com__exctnume_intmul(zero.get(), b.get(), result.get()), NUME_OK);
  EXPECT_EQ(result.text(), "0");
  EXPECT_EQ(com__exctnume_intmul(one.get(), b.get(), narrow.get()), NUME_OK);
  EXPECT_EQ(narrow.text(), "-7");
  EXPECT_EQ(com__exctnume_intmul(one.get(), a.get(), narrow.get()), NUME_OVERFLOW);
}

TEST(ExctnumeIntdiv, ViewsOfTheWorkSpace) {
  Descriptor a(4, 9, 0, "100007", true), b(3, 9, 0, "10000"), space(33, 77, 0);
  __CONSTANT quotient = *space.get(), remainder{};
  ASSERT_EQ(com__exctnume_intdiv(a.get(), b.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(Descriptor::text_of(quotient), "10");
  EXPECT_EQ(quotient.len, 2);
  EXPECT_EQ(remainder.len, 2);
  EXPECT_EQ(remainder.value[1], 7);
  EXPECT_GE(remainder.value, space.bytes());
  EXPECT_LT(remainder.value, space.bytes() + 33);
}

TEST(ExctnumeIntdiv, RemainderOfAOneByteDivisorIsOneByte) {
  Descriptor a(3, 9, 0, "1000"), b(2, 9, 0, "7"), space(33, 77, 0);
  __CONSTANT quotient = *space.get(), remainder{};
  ASSERT_EQ(com__exctnume_intdiv(a.get(), b.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(Descriptor::text_of(quotient), "142");
  EXPECT_EQ(remainder.len, 1);
  EXPECT_EQ(remainder.value[0], 6);
}

// A dividend below the divisor is the remainder itself, with the byte in front of its digits: a zero,
// or the sign byte where no zero leads.
TEST(ExctnumeIntdiv, RemainderBelowTheDivisorIsTheDividend) {
  Descriptor a(6, 9, 0, "300", true), b(4, 9, 0, "70000"), full(3, 9, 0, "300", true),
      space(33, 77, 0);
  __CONSTANT quotient = *space.get(), remainder{};
  ASSERT_EQ(com__exctnume_intdiv(a.get(), b.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(quotient.len, 0);
  EXPECT_EQ(remainder.len, 3);
  EXPECT_EQ(remainder.value, a->value + 3);
  EXPECT_EQ(remainder.value[0], 0);
  quotient = *space.get();
  ASSERT_EQ(com__exctnume_intdiv(full.get(), b.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(remainder.len, 3);
  EXPECT_EQ(remainder.value, full->value);
  EXPECT_TRUE(space.is_untouched());
}

TEST(ExctnumeIntdiv, EmptyViewsAndFailures) {
  Descriptor small(3, 9, 0, "5"), big(4, 9, 0, "70000"), zero(5, 9, 0, "0"), space(33, 77, 0);
  __CONSTANT quotient = *space.get(), remainder{};
  EXPECT_EQ(com__exctnume_intdiv(small.get(), big.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(quotient.len, 0);
  EXPECT_EQ(remainder.len, 2);
  EXPECT_EQ(remainder.value, small->value + 1);
  quotient = *space.get();
  EXPECT_EQ(com__exctnume_intdiv(zero.get(), big.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(quotient.len, 0);
  EXPECT_EQ(remainder.len, 0);
  quotient = *space.get();
  EXPECT_EQ(com__exctnume_intdiv(big.get(), zero.get(), &quotient, &remainder), NUME_DIVZERO);
  quotient.len = 3;
  EXPECT_EQ(com__exctnume_intdiv(big.get(), small.get(), &quotient, &remainder), NUME_OVERFLOW);
  EXPECT_TRUE(space.is_untouched());
  quotient.len = 4;
  EXPECT_EQ(com__exctnume_intdiv(big.get(), small.get(), &quotient, &remainder), NUME_OK);
  EXPECT_EQ(Descriptor::text_of(quotient), "14000");
  EXPECT_EQ(remainder.len, 0);
}

TEST(ExctnumeIntdiv, RandomAgainstLongHand) {
  zrvtest::RandomDecimals random(11);
  for (int i = 0; i < zrvtest::random_cases / 10; ++i) {
    const auto a = random.of(1 + random.below(77), 0), b = random.of(1 + random.below(77), 0);
    if (b.magnitude.is_zero())
      continue;
    CS_NUMERIC x = a.pack(), y = b.pack();
    __CONSTANT left{}, right{}, quotient{}, remainder{};
    CS_BYTE space[40];
    left.len = comn_num_getlen(x.precision);
    left.value = x.array;
    right.len = comn_num_getlen(y.precision);
    right.value = y.array;
    quotient.len = sizeof space;
    quotient.value = space;
    ASSERT_EQ(com__exctnume_intdiv(&left, &right, &quotient, &remainder), NUME_OK);
    Natural rest;
    const Natural expected = Natural::divide(a.magnitude, b.magnitude, rest);
    if (expected.is_zero())
      ASSERT_EQ(quotient.len, 0);
    else
      ASSERT_EQ(Natural::from_bytes(quotient.value, quotient.len).digits(), expected.digits());
    if (rest.is_zero()) {
      ASSERT_EQ(remainder.len, 0);
    } else {
      unsigned char divisor_top[32];
      const bool one_byte = b.magnitude.to_bytes(divisor_top, 1) && !expected.is_zero();
      const int front = one_byte ? 0 : 1;
      ASSERT_EQ(Natural::from_bytes(remainder.value + front, remainder.len - front).digits(),
                rest.digits());
    }
  }
}

TEST(ExctnumeAddorsub, ShiftsToTheResultScale) {
  Descriptor a(5, 9, 3, "12345"), b(5, 9, 3, "11111", true), result(5, 9, 2), wide(9, 9, 5);
  EXPECT_EQ(com__exctnume_addorsub(a.get(), b.get(), result.get(), 0), NUME_TRUNCATED);
  EXPECT_EQ(result.text(), "123");
  EXPECT_EQ(com__exctnume_addorsub(a.get(), b.get(), wide.get(), 1), NUME_OK);
  EXPECT_EQ(wide.text(), "2345600");
  // Equal magnitudes clear the result whatever its scale.
  Descriptor far(5, 9, 200);
  EXPECT_EQ(com__exctnume_addorsub(a.get(), a.get(), far.get(), 1), NUME_OK);
  EXPECT_EQ(far.text(), "0");
  EXPECT_EQ(com__exctnume_addorsub(a.get(), a.get(), far.get(), 0), NUME_SYNTAX);
}

TEST(ExctnumeAddorsub, OverflowClearsOnlyWhatDoesNotFit) {
  Descriptor a(2, 2, 0, "255"), result(2, 2, 0), wide(3, 2, 0);
  EXPECT_EQ(com__exctnume_addorsub(a.get(), a.get(), result.get(), 0), NUME_OVERFLOW);
  EXPECT_EQ(result.text(), "0");
  EXPECT_EQ(com__exctnume_addorsub(a.get(), a.get(), wide.get(), 0), NUME_OVERFLOW);
  EXPECT_EQ(wide.text(), "510");
}

// What a shift that fails leaves is the sum before it; digits that it drops are gone.
TEST(ExctnumeAddorsub, FailedShiftLeavesTheSum) {
  Descriptor a(5, 9, 3, "12345"), b(5, 9, 3, "11111"), syntax(5, 9, 81), overflow(3, 9, 7),
      cut(5, 9, 1);
  EXPECT_EQ(com__exctnume_addorsub(a.get(), b.get(), syntax.get(), 0), NUME_SYNTAX);
  EXPECT_EQ(syntax.text(), "23456");
  EXPECT_EQ(com__exctnume_addorsub(a.get(), b.get(), overflow.get(), 1), NUME_OVERFLOW);
  EXPECT_EQ(overflow.text(), "1234");
  EXPECT_EQ(com__exctnume_addorsub(b.get(), a.get(), overflow.get(), 1), NUME_OVERFLOW);
  EXPECT_EQ(overflow.text(), "-1234");
  EXPECT_EQ(com__exctnume_addorsub(b.get(), a.get(), cut.get(), 1), NUME_TRUNCATED);
  EXPECT_EQ(cut.text(), "-12");
}

// A product whose precision is below that of both operands together is made in 32 bytes, whatever the
// field has; otherwise in the field.
TEST(ExctnumeMul, IntermediateHas32Bytes) {
  const std::string power = power_digits(38); // 10^38, its square has 32 bytes
  Descriptor a(17, 39, 1, power), b(17, 39, 0, power), narrow(40, 77, 0), wide(40, 78, 0);
  EXPECT_EQ(com__exctnume_mul(a.get(), b.get(), narrow.get()), NUME_OK);
  EXPECT_EQ(narrow.text(), power_digits(75));
  Descriptor c(18, 40, 1, power_digits(39)); // 10^77 has 32 bytes, 10^78 has 33
  EXPECT_EQ(com__exctnume_mul(a.get(), c.get(), narrow.get()), NUME_OK);
  EXPECT_EQ(narrow.text(), power_digits(75));
  EXPECT_EQ(com__exctnume_mul(c.get(), c.get(), narrow.get()), NUME_OVERFLOW);
  wide->prec = 80;
  EXPECT_EQ(com__exctnume_mul(c.get(), c.get(), wide.get()), NUME_OK);
  EXPECT_EQ(wide.text(), power_digits(76));
}

TEST(ExctnumeMul, ShiftsToTheResultScale) {
  Descriptor a(3, 3, 1, "125"), b(3, 3, 1, "20", true), result(5, 9, 1), exact(5, 9, 3);
  EXPECT_EQ(com__exctnume_mul(a.get(), b.get(), result.get()), NUME_OK);
  EXPECT_EQ(result.text(), "-250");
  EXPECT_EQ(com__exctnume_mul(a.get(), a.get(), result.get()), NUME_TRUNCATED);
  EXPECT_EQ(result.text(), "1562");
  EXPECT_EQ(com__exctnume_mul(a.get(), a.get(), exact.get()), NUME_OK);
  EXPECT_EQ(exact.text(), "156250");
  Descriptor narrow(3, 2, 2);
  EXPECT_EQ(com__exctnume_mul(a.get(), a.get(), narrow.get()), NUME_OVERFLOW);
}

TEST(ExctnumeDiv, QuotientRemainderAndStatuses) {
  Descriptor a(5, 9, 0, "7", true), b(3, 3, 0, "2"), quotient(9, 18, 3), space(9, 1, 0);
  __CONSTANT remainder = *space.get();
  EXPECT_EQ(com__exctnume_div(a.get(), b.get(), quotient.get(), &remainder), NUME_OK);
  EXPECT_EQ(quotient.text(), "-3500");
  EXPECT_EQ(remainder.len, 0);
  Descriptor three(3, 3, 0, "3");
  remainder = *space.get();
  EXPECT_EQ(com__exctnume_div(a.get(), three.get(), quotient.get(), &remainder), NUME_OK);
  EXPECT_EQ(quotient.text(), "-2333");
  EXPECT_EQ(Descriptor::text_of(remainder), "1");
  // Without room of the caller's own there is nothing to point at.
  remainder.value = nullptr;
  EXPECT_EQ(com__exctnume_div(a.get(), three.get(), quotient.get(), &remainder), NUME_OK);
  EXPECT_GE(remainder.len, 1);
  EXPECT_EQ(remainder.value, nullptr);
  Descriptor zero(3, 3, 0, "0", true), narrow(2, 9, 3), precise(9, 3, 3);
  EXPECT_EQ(com__exctnume_div(a.get(), zero.get(), quotient.get(), nullptr), NUME_DIVZERO);
  EXPECT_EQ(com__exctnume_div(zero.get(), b.get(), quotient.get(), nullptr), NUME_OK);
  EXPECT_EQ(quotient.text(), "0");
  EXPECT_EQ(com__exctnume_div(a.get(), b.get(), narrow.get(), nullptr), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_div(a.get(), b.get(), precise.get(), nullptr), NUME_OVERFLOW);
}

TEST(ExctnumeDiv, ScalesMoreThan77Apart) {
  Descriptor a(2, 2, 0, "0"), b(2, 2, 0, "2"), at_limit(33, 77, 77), beyond(33, 77, 78);
  EXPECT_EQ(com__exctnume_div(a.get(), b.get(), at_limit.get(), nullptr), NUME_OK);
  EXPECT_EQ(com__exctnume_div(a.get(), b.get(), beyond.get(), nullptr), NUME_OVERFLOW);
}

// The work space is 132 bytes, whatever the values are: the scaled dividend, the quotient with one
// byte more, and the divisor's length.
TEST(ExctnumeDiv, WorkSpaceIsLimited) {
  // 10 to the 2 has 2 bytes, so the dividend becomes length + 3 bytes long.
  for (int divisor_length : {2, 3}) {
    for (int dividend_length = 40; dividend_length <= 80; ++dividend_length) {
      Descriptor a(dividend_length, 9, 0, "9"), b(divisor_length, 2, 0, "2"), q(33, 77, 2);
      const int scaled = dividend_length + 3;
      const bool enough = scaled + (scaled + 1) + divisor_length < 133;
      EXPECT_EQ(com__exctnume_div(a.get(), b.get(), q.get(), nullptr),
                enough ? NUME_OK : NUME_OVERFLOW)
          << dividend_length;
    }
  }
}

TEST(ExctnumeRound, KeepsTheScaleAndLooksAtOneDigit) {
  const struct {
    const char *digits;
    int scale, to;
    const char *expected;
  } rows[] = {
      {"12350", 4, 2, "12400"},  {"12349", 4, 2, "12300"},   {"5", 1, 0, "10"},
      {"4", 2, 1, "0"},          {"12345", 2, 2, "12345"},   {"12345", 2, 9, "12345"},
      {"12345", 2, -1, "12000"}, {"15000", 2, -2, "20000"},  {"99995", 1, 0, "100000"},
      {"12345", 0, -77, "0"},    {"98765", 0, -5, "100000"}, {"98765", 0, -6, "100000"},
  };
  for (const auto &row : rows)
    for (bool negative : {false, true}) {
      Descriptor value(5, 5, row.scale, row.digits, negative), result(6, 9, row.scale);
      com__exctnume_round(value.get(), row.to, result.get());
      const std::string expected = row.expected;
      EXPECT_EQ(result.text(), (negative && expected != "0" ? "-" : "") + expected)
          << row.digits << " to " << row.to;
      EXPECT_EQ(result->scale, row.scale);
      EXPECT_EQ(value.text(), (negative ? "-" : "") + std::string(row.digits));
    }
}

// Deliberate: to whole numbers no more digits are dropped than the precision has, so 0.005 of
// precision 1 loses one of its three.
TEST(ExctnumeRound, TargetZeroDropsNoMoreDigitsThanThePrecision) {
  const struct {
    int precision, to;
    const char *expected;
  } rows[] = {{1, 0, "10"}, {2, 0, "0"}, {3, 0, "0"}, {1, 1, "0"}, {1, 2, "10"}, {1, -4, "10"}};
  for (const auto &row : rows) {
    Descriptor value(4, row.precision, 3, "5"), result(6, 9, 3);
    com__exctnume_round(value.get(), row.to, result.get());
    EXPECT_EQ(result.text(), row.expected) << row.precision << " to " << row.to;
  }
}

TEST(ExctnumeRound, AllOnesRoundUpWithoutLosingTheCarry) {
  // 65535 at scale 1 rounds to 6554, and back at the scale to 65540.
  Descriptor value(3, 5, 1, "65535"), result(4, 9, 1);
  com__exctnume_round(value.get(), 0, result.get());
  EXPECT_EQ(result.text(), "65540");
  // All 32 bytes 255, rounded at the last digit but ten.
  const std::vector<unsigned char> ones(32, 255);
  Natural expected = Natural::from_bytes(ones.data(), 32);
  Descriptor top(33, 77, 10, expected.digits()), wide(34, 77, 10);
  com__exctnume_round(top.get(), 0, wide.get());
  for (int i = 0; i < 9; ++i)
    expected.divide_small(10);
  const bool up = expected.divide_small(10) > 4;
  expected = expected + Natural(up ? 1 : 0);
  for (int i = 0; i < 10; ++i)
    expected.multiply_small(10, 0);
  EXPECT_EQ(wide.text(), expected.digits());
}

TEST(ExctnumeCeilingfloor, Values) {
  const struct {
    const char *digits;
    int scale;
    bool negative;
    const char *ceiling, *floor;
  } rows[] = {
      {"5", 1, true, "0", "-1"},          {"5", 1, false, "1", "0"},
      {"15", 1, true, "-1", "-2"},        {"20", 1, true, "-2", "-2"},
      {"20", 1, false, "2", "2"},         {"0", 3, true, "0", "0"},
      {"1", 77, false, "1", "0"},         {"12345", 0, true, "-12345", "-12345"},
      {"99999", 2, false, "1000", "999"},
  };
  for (const auto &row : rows)
    for (int type : {1, 0}) {
      Descriptor value(4, 5, row.scale, row.digits, row.negative), result(4, 77, 9);
      result->len = 1;
      com__exctnume_ceilingfloor(value.get(), result.get(), type);
      EXPECT_EQ(result->len, 4);
      EXPECT_EQ(result->prec, 5);
      EXPECT_EQ(result->scale, 0);
      EXPECT_EQ(result.text(), type != 0 ? row.ceiling : row.floor) << row.digits;
    }
}

namespace {

// Operands and a result with their own bytes, and the outcome that the rules give.
struct RandomOperation {
  zrvtest::Decimal a, b;
  int length, precision, scale; // of the result
  Descriptor left, right, result;

  RandomOperation(zrvtest::RandomDecimals &random, bool one_scale)
      : a(random.any()), b(one_scale ? random.of(1 + random.below(77), a.scale) : random.any()),
        length(2 + random.below(random.below(2) == 0 ? 33 : 60)), precision(random.below(82)),
        scale(
            std::max(0, random.below(2) == 0 ? random.below(100) : a.scale + random.below(9) - 4)),
        left(describe(a)), right(describe(b)), result(length, precision, scale) {}

  static Descriptor describe(const zrvtest::Decimal &value) {
    return {zrvtest::reference_length(value.precision), value.precision, value.scale,
            value.magnitude.digits(), value.negative};
  }
  bool fits_bytes(const Natural &magnitude) const {
    unsigned char scratch[64];
    return magnitude.to_bytes(scratch, length - 1);
  }
  // The status that a precision check adds to one.
  int checked(int status, const Natural &magnitude) const {
    const bool exceeds = precision <= 77 && magnitude >= Natural::power_of_ten(precision);
    return status == NUME_OK && exceeds ? NUME_OVERFLOW : status;
  }
  // The result must be this, or its low bytes.
  testing::AssertionResult holds(bool negative, const Natural &magnitude) {
    std::vector<unsigned char> bytes(static_cast<size_t>(length));
    bytes[0] = negative && !magnitude.is_zero();
    magnitude.to_bytes(bytes.data() + 1, length - 1);
    if (std::memcmp(bytes.data(), result->value, bytes.size()) == 0)
      return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << a.text() << ", " << b.text() << " into " << length << " bytes, precision "
           << precision << ", scale " << scale << ": " << result.text() << " instead of "
           << magnitude.digits();
  }
};

const int random_operations = zrvtest::random_cases / 4;

} // namespace

TEST(ExctnumeAddorsub, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(12);
  for (int i = 0; i < random_operations; ++i) {
    RandomOperation x(random, true);
    const int subtract = random.below(2);
    const bool b_negative = x.b.negative != (subtract != 0);
    Natural sum;
    bool negative = x.a.negative, cancelled = false;
    if (x.a.negative == b_negative) {
      sum = x.a.magnitude + x.b.magnitude;
    } else {
      const bool a_greater = x.a.magnitude >= x.b.magnitude;
      sum = a_greater ? x.a.magnitude - x.b.magnitude : x.b.magnitude - x.a.magnitude;
      negative = a_greater ? x.a.negative : b_negative;
      cancelled = sum.is_zero();
    }
    int expected = NUME_OVERFLOW;
    if (!x.fits_bytes(sum)) {
      sum = Natural();
    } else {
      Natural shifted = sum;
      expected = cancelled ? NUME_OK
                           : zrvtest::reference_shift(shifted, x.scale - x.a.scale, x.length - 1,
                                                      x.precision);
      if (expected == NUME_OK || expected == NUME_TRUNCATED)
        sum = shifted;
      expected = x.checked(expected, sum);
    }
    ASSERT_EQ(com__exctnume_addorsub(x.left.get(), x.right.get(), x.result.get(), subtract),
              expected)
        << i;
    ASSERT_TRUE(x.holds(negative, sum)) << i;
  }
}

TEST(ExctnumeMul, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(13);
  for (int i = 0; i < random_operations; ++i) {
    RandomOperation x(random, false);
    if (random.below(2) == 0)
      x.result->scale = static_cast<CS_BYTE>(x.scale = x.a.scale + x.b.scale);
    Natural product = x.a.magnitude * x.b.magnitude;
    unsigned char scratch[64];
    const int room = x.precision >= x.a.precision + x.b.precision ? x.length - 1 : 32;
    int expected = NUME_OVERFLOW;
    if (product.to_bytes(scratch, room)) {
      Natural shifted = product;
      expected = zrvtest::reference_shift(shifted, x.scale - x.a.scale - x.b.scale, x.length - 1,
                                          x.precision);
      if (expected == NUME_OK || expected == NUME_TRUNCATED)
        product = shifted;
      if (expected == NUME_OK && !x.fits_bytes(product))
        expected = NUME_OVERFLOW;
      expected = x.checked(expected, product);
    }
    ASSERT_EQ(com__exctnume_mul(x.left.get(), x.right.get(), x.result.get()), expected) << i;
    ASSERT_TRUE(x.holds(x.a.negative != x.b.negative, product)) << i;
  }
}

TEST(ExctnumeDiv, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(14);
  for (int i = 0; i < random_operations / 4; ++i) {
    RandomOperation x(random, false);
    const int shift = x.scale + x.b.scale - x.a.scale;
    Natural dividend = x.a.magnitude, divisor = x.b.magnitude;
    int dividend_length = x.left->len, divisor_length = x.right->len, scaled = 0;
    int expected = NUME_OK;
    if (divisor.is_zero()) {
      expected = NUME_DIVZERO;
    } else if (shift > 77 || shift < -77) {
      expected = NUME_OVERFLOW;
    } else if (shift != 0) {
      Natural &operand = shift > 0 ? dividend : divisor;
      int &length = shift > 0 ? dividend_length : divisor_length;
      operand = operand * Natural::power_of_ten(std::abs(shift));
      length += zrvtest::reference_length(std::abs(shift)) + 1;
      scaled = length;
    }
    if (expected == NUME_OK && scaled + dividend_length + 1 + divisor_length > 132)
      expected = NUME_OVERFLOW;
    CS_BYTE room[64];
    __CONSTANT remainder{};
    remainder.len = sizeof room;
    remainder.value = room;
    Natural quotient, rest;
    bool divided = expected == NUME_OK;
    if (divided) {
      quotient = Natural::divide(dividend, divisor, rest);
      expected = x.fits_bytes(quotient) ? x.checked(NUME_OK, quotient) : NUME_OVERFLOW;
    }
    ASSERT_EQ(com__exctnume_div(x.left.get(), x.right.get(), x.result.get(), &remainder), expected)
        << i;
    if (!divided)
      continue;
    ASSERT_TRUE(x.holds(x.a.negative != x.b.negative, quotient)) << i;
    ASSERT_EQ(remainder.len == 0, rest.is_zero());
    if (remainder.len != 0) {
      ASSERT_EQ(remainder.value[0], 0);
      ASSERT_EQ(Natural::from_bytes(remainder.value + 1, remainder.len - 1).digits(),
                rest.digits());
    }
  }
}

TEST(ExctnumeRound, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(15);
  for (int i = 0; i < random_operations; ++i) {
    RandomOperation x(random, false);
    const int target = random.below(2) == 0 ? random.below(200) - 100 : x.a.scale - random.below(6);
    const int clamped = std::clamp(target, -77, 77);
    Natural expected = x.a.magnitude;
    if (clamped < x.a.scale) {
      int dropped = x.a.scale - clamped;
      if (clamped <= 0)
        dropped = std::min(dropped, x.a.precision);
      uint32_t last = 0;
      for (int k = 0; k < dropped; ++k)
        last = expected.divide_small(10);
      if (last > 4)
        expected = expected + Natural(1);
      for (int k = 0; k < dropped; ++k)
        expected.multiply_small(10, 0);
    }
    com__exctnume_round(x.left.get(), target, x.result.get());
    ASSERT_TRUE(x.holds(x.a.negative, expected)) << i << " to " << target;
  }
}

TEST(ExctnumeCeilingfloor, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(16);
  for (int i = 0; i < random_operations; ++i) {
    RandomOperation x(random, false);
    Descriptor result(x.left->len, 1, 1);
    for (int type : {0, 1, -1}) {
      Natural expected = x.a.magnitude;
      bool whole = true;
      for (int k = 0; k < x.a.scale; ++k)
        whole &= expected.divide_small(10) == 0;
      if (!whole && x.a.negative == (type == 0))
        expected = expected + Natural(1);
      com__exctnume_ceilingfloor(x.left.get(), result.get(), type);
      ASSERT_EQ(result.text(), (x.a.negative && !expected.is_zero() ? "-" : "") + expected.digits())
          << x.a.text() << ", type " << type;
    }
  }
}

TEST(ExctnumeCmp, RandomOperandsAgainstTheRules) {
  zrvtest::RandomDecimals random(17);
  for (int i = 0; i < random_operations; ++i) {
    RandomOperation x(random, random.below(2) == 0);
    for (int flag = 0; flag < 4; ++flag) {
      zrvtest::Decimal a = x.a, b = x.b;
      if ((flag & NUME_CMP_SIGNS) == 0)
        a.negative = b.negative = false;
      if ((flag & NUME_CMP_SCALES) == 0)
        a.scale = b.scale = 0;
      ASSERT_EQ(com__exctnume_cmp(x.left.get(), x.right.get(), flag),
                zrvtest::reference_compare(a, b))
          << x.a.text() << ", " << x.b.text() << ", flag " << flag;
    }
  }
}

// No operation takes memory.
TEST(ExctnumeOperations, AllocateNothing) {
  const zrvtest::AllocationProbe probe;
  Descriptor a(33, 77, 40, std::string(76, '7')), b(33, 77, 3, "12345", true), r(33, 77, 20);
  CS_BYTE work[132], precision = 77, scale = 20;
  __CONSTANT q = *r.get(), rest{};
  q.len = sizeof work;
  q.value = work;
  com__exctnume_addorsub(a.get(), a.get(), r.get(), 0);
  com__exctnume_mul(a.get(), b.get(), r.get());
  com__exctnume_div(a.get(), b.get(), r.get(), &rest);
  com__exctnume_round(a.get(), 5, r.get());
  com__exctnume_ceilingfloor(a.get(), r.get(), 1);
  com__exctnume_intadd(a.get(), b.get(), r.get());
  com__exctnume_intsub(a.get(), b.get(), r.get());
  com__exctnume_intmul(a.get(), b.get(), r.get());
  com__exctnume_intdiv(a.get(), b.get(), &q, &rest);
  com__exctnume_cmp(a.get(), b.get(), 3);
  com__exctnume_copy(a.get(), r.get());
  com__exctnume_scale(b.get(), r.get(), 7, 0);
  com__exctnume_inc(r.get());
  com__exctnume_dec(r.get());
  CS_NUMERIC x{77, 10, {}}, y{5, 2, {0, 0, 1, 2}}, z;
  x.array[20] = 9;
  comn_numadd(&x, &y, &z);
  comn_numsub(&x, &y, &z);
  comn_nummul(&x, &y, &z);
  comn_numdivide(&x, &y, &z);
  comn_numcmp(&x, &y);
  CS_FLOAT number;
  CS_BIGINT integer;
  CS_MONEY money{1, 2};
  char text[] = "1.5e3", printed[90];
  CS_BYTE *dest = work;
  CS_INT length = 33;
  com__subexctnumetoflt8(a.get(), &number);
  com__doubletoexctnume(1.5e20, work, 33, &precision, &scale);
  com__longlongtoexctnume(-5, work, 33, &precision, &scale);
  com__subexctnumetolonglong(a.get(), &integer);
  com__exctnumetomny8(b.get(), &money);
  com__mny8toexctnume(&money, work, 33, &precision, &scale, 0);
  com__subchartoexctnume(text, 5, &dest, &length, &precision, &scale, 1);
  com__subexctnumetochar(a.get(), printed, sizeof printed);
  EXPECT_EQ(probe.allocations(), 0U);
}

// Magnitudes longer than any value's are refused, not cut.
TEST(ExctnumeOperations, MoreThan48BytesAreOverflow) {
  Descriptor huge(60, 77, 0, power_digits(118)), one(2, 1, 0, "1"), result(60, 77, 0);
  EXPECT_EQ(com__exctnume_intmul(huge.get(), one.get(), result.get()), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_div(huge.get(), one.get(), result.get(), nullptr), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_scale(huge.get(), nullptr, -1, 0), NUME_OVERFLOW);
  EXPECT_EQ(com__exctnume_mul(huge.get(), one.get(), result.get()), NUME_OVERFLOW);
  // Sums, roundings and whole numbers leave the result cleared, whatever it held.
  for (int operation = 0; operation < 4; ++operation) {
    std::memset(result->value, 0x5C, 60);
    result->len = 60;
    if (operation < 2)
      EXPECT_EQ(com__exctnume_addorsub(operation == 0 ? huge.get() : one.get(),
                                       operation == 0 ? one.get() : huge.get(), result.get(), 0),
                NUME_OVERFLOW);
    else if (operation == 2)
      com__exctnume_round(huge.get(), -1, result.get());
    else
      com__exctnume_ceilingfloor(huge.get(), result.get(), 1);
    EXPECT_EQ(std::vector<unsigned char>(result.bytes(), result.bytes() + 60),
              std::vector<unsigned char>(60, 0))
        << operation;
  }
  // A magnitude of so many bytes cannot be brought to another scale; without that any length is
  // compared.
  Descriptor tenth(2, 1, 1, "1");
  EXPECT_EQ(com__exctnume_cmp(huge.get(), tenth.get(), 3), 0);
  EXPECT_EQ(com__exctnume_cmp(huge.get(), tenth.get(), 1), 1);
  // Comparison, copies and sums take any length.
  EXPECT_EQ(com__exctnume_cmp(huge.get(), one.get(), 1), 1);
  EXPECT_EQ(com__exctnume_copy(huge.get(), result.get()), NUME_OK);
  EXPECT_EQ(com__exctnume_intadd(huge.get(), one.get(), result.get()), NUME_OK);
  EXPECT_EQ(result.text(), "1" + zeroes(117) + "1");
}

TEST(ExctnumeOperations, NullPointers) {
  using zrvtest::expect_null_checks;
  Descriptor v(3, 3, 0, "1");
  __CONSTANT *const c = v.get();
  constexpr const char *aux = "numeaux.cpp", *convert = "numeaux_convert.cpp",
                       *text = "numeaux_text.cpp", *math = "numemath.cpp";
  expect_null_checks(aux, 0, com__exctnume_cmp, c, c, 0);
  expect_null_checks(aux, 0, com__exctnume_intcmp, c, 0);
  expect_null_checks(aux, NUME_OVERFLOW, com__exctnume_copy, c, c);
  expect_null_checks(aux, NUME_OVERFLOW, com__exctnume_scale, c, nullptr, 1, 0);
  expect_null_checks(aux, 0, com__exctnume_checkprecision, c);
  CS_BYTE array[33] = {}, *bytes = array, *none = nullptr;
  CS_INT length = 33;
  expect_null_checks(aux, 0, com__exctnume_divby10, &bytes, &length);
  EXPECT_NULL_POINTER_CHECK(aux, 0, com__exctnume_divby10(&none, &length));
  expect_null_checks(aux, NUME_OVERFLOW, com__exctnume_mulby10_add, c, 1);
  expect_null_checks(aux, NUME_OVERFLOW, com__exctnume_inc, c);
  expect_null_checks(aux, NUME_OVERFLOW, com__exctnume_dec, c);
  expect_null_checks(aux, 0, com__exctnume_needsbyte, c);

  CS_BYTE precision = 5, scale = 0;
  CS_CHAR digits[] = "1", room[80];
  CS_FLOAT number;
  CS_BIGINT bigint;
  CS_UBIGINT ubigint;
  CS_MONEY money = {};
  expect_null_checks(convert, NUME_OVERFLOW, com__longtoexctnume, 1, array, 33, &precision, &scale);
  expect_null_checks(convert, NUME_OVERFLOW, com__subexctnumetoflt8, c, &number);
  expect_null_checks(convert, NUME_OVERFLOW, com__doubletoexctnume, 1.0, array, 33, &precision,
                     &scale);
  expect_null_checks(convert, NUME_OVERFLOW, com__subexctnumetolonglong, c, &bigint);
  expect_null_checks(convert, NUME_OVERFLOW, com__subexctnumetoulonglong, c, &ubigint);
  expect_null_checks(convert, 0, com__exctnumetomny8, c, &money);
  expect_null_checks(convert, NUME_OVERFLOW, com__mny8toexctnume, &money, array, 33, &precision,
                     &scale, 0);
  expect_null_checks(text, NUME_OVERFLOW, com__subchartoexctnume, digits, 1, &bytes, &length,
                     &precision, &scale, 0);
  EXPECT_NULL_POINTER_CHECK(
      text, NUME_OVERFLOW,
      com__subchartoexctnume(digits, 1, &none, &length, &precision, &scale, 0));
  expect_null_checks(text, -1, com__subexctnumetochar, c, room, 80);

  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_intadd, c, c, c);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_intsub, c, c, c);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_intmul, c, c, c);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_intdiv, c, c, c, c);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_addorsub, c, c, c, 0);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_mul, c, c, c);
  expect_null_checks(math, NUME_OVERFLOW, com__exctnume_div, c, c, c, nullptr);
  for (const auto body :
       {+[](__CONSTANT *op, __CONSTANT *result) { com__exctnume_round(op, 0, result); },
        +[](__CONSTANT *op, __CONSTANT *result) { com__exctnume_ceilingfloor(op, result, 0); }})
    for (__CONSTANT *const op : {c, static_cast<__CONSTANT *>(nullptr)})
      EXPECT_TRUE(zrvtest::is_null_pointer_report(
          zrvtest::catch_check([&] { body(op, op != nullptr ? nullptr : c); }), math));
}
