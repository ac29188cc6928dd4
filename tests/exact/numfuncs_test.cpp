// Arithmetic on CS_NUMERIC, compared with the rules worked out in long hand.
#include <cstring>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "numeric_operands.h"
#include "value_bytes.h"

using zrvtest::Decimal;
using zrvtest::make_decimal;
using zrvtest::Natural;
using zrvtest::Outcome;

namespace {

using Operation = CS_RETCODE (*)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *);
using Reference = Outcome (*)(const Decimal &, const Decimal &);

struct Case {
  const char *name;
  Operation operation;
  Reference reference;
};

const Case add_case{"add", comn_numadd, [](const Decimal &a, const Decimal &b) {
                      return zrvtest::reference_add(a, b, false);
                    }};
const Case subtract_case{"subtract", comn_numsub, [](const Decimal &a, const Decimal &b) {
                           return zrvtest::reference_add(a, b, true);
                         }};
const Case multiply_case{"multiply", comn_nummul, zrvtest::reference_multiply};
const Case divide_case{"divide", comn_numdivide, zrvtest::reference_divide};
const Case *const all_cases[] = {&add_case, &subtract_case, &multiply_case, &divide_case};

// The operation's result must be the reference's: code, shape, sign and magnitude; no byte behind
// the meaningful ones is written, and the operands stay.
testing::AssertionResult agrees(const Case &test, const Decimal &a, const Decimal &b) {
  CS_NUMERIC left = a.pack(), right = b.pack();
  const CS_NUMERIC left_before = left, right_before = right;
  struct {
    CS_BYTE front[8];
    CS_NUMERIC value;
    CS_BYTE back[8];
  } room;
  std::memset(&room, 0x5C, sizeof room);
  const CS_RETCODE code = test.operation(&left, &right, &room.value);
  const Outcome expected = test.reference(a, b);
  auto failure = testing::AssertionFailure()
                 << test.name << " " << a.text() << ", " << b.text() << ": ";
  if (code != expected.code)
    return failure << "returned " << code << " instead of " << expected.code;
  for (size_t i = 0; i < sizeof room.front; ++i)
    if (room.front[i] != 0x5C || room.back[i] != 0x5C)
      return failure << "wrote outside the result";
  if (std::memcmp(&left, &left_before, sizeof left) != 0 ||
      std::memcmp(&right, &right_before, sizeof right) != 0)
    return failure << "changed an operand";
  if (!expected.has_shape) {
    if (zrvtest::bytes_of(room.value) != std::string(sizeof room.value, '\x5C'))
      return failure << "wrote to the result";
    return testing::AssertionSuccess();
  }
  if (room.value.precision != expected.value.precision || room.value.scale != expected.value.scale)
    return failure << "left the shape (" << int{room.value.precision} << ","
                   << int{room.value.scale} << ")";
  if (!expected.has_value)
    return testing::AssertionSuccess();
  const Decimal result = Decimal::of(room.value);
  if (result.negative != expected.value.negative || room.value.array[0] > 1 ||
      !(result.magnitude == expected.value.magnitude))
    return failure << "gave " << result.text() << " instead of " << expected.value.text();
  for (size_t i = Com__Nume_Prec_To_Len[result.precision]; i < sizeof room.value.array; ++i)
    if (room.value.array[i] != 0x5C)
      return failure << "wrote behind the meaningful bytes";
  return testing::AssertionSuccess();
}

CS_NUMERIC number(int precision, int scale, const std::string &digits, bool negative = false) {
  return make_decimal(precision, scale, digits, negative).pack();
}

std::string nines(int count) {
  return std::string(static_cast<size_t>(count), '9');
}

struct Result {
  CS_RETCODE code;
  CS_NUMERIC value;
  std::string text() const { return Decimal::of(value).text(); }
};

Result run(Operation operation, CS_NUMERIC a, CS_NUMERIC b) {
  Result result{};
  result.code = operation(&a, &b, &result.value);
  return result;
}

} // namespace

TEST(NumAdd, ShapeHasOneDigitMore) {
  const Result result = run(comn_numadd, number(5, 2, "12345"), number(5, 2, "1"));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "123.46 (6,2)");
}

TEST(NumAdd, DifferentScalesTakeTheGreater) {
  const Result result = run(comn_numadd, number(5, 2, "12345"), number(7, 3, "99999", true));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "23.451 (8,3)");
}

TEST(NumAdd, CarryOutOf77DigitsIsOverflow) {
  const Result result = run(comn_numadd, number(77, 0, nines(77)), number(77, 0, "1"));
  EXPECT_EQ(result.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(result.value.precision, 77);
  EXPECT_EQ(result.value.scale, 0);
  EXPECT_EQ(run(comn_numadd, number(77, 0, nines(76)), number(77, 0, "1")).text(),
            "1" + std::string(76, '0') + " (77,0)");
}

// A sum that does not even fit the bytes is cleared.
TEST(NumAdd, OverflowOfTheBytesClearsTheResult) {
  const Result result = run(comn_numadd, number(77, 0, nines(77)), number(77, 0, nines(77)));
  EXPECT_EQ(result.code, CS_CONV_OVERFLOW);
  for (CS_BYTE byte : result.value.array)
    EXPECT_EQ(byte, 0);
}

TEST(NumAdd, OperandThatCannotBeAlignedIsOverflow) {
  const Result result = run(comn_numadd, number(77, 0, nines(77)), number(77, 77, "1"));
  EXPECT_EQ(result.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(result.value.precision, 77);
  EXPECT_EQ(result.value.scale, 77);
}

TEST(NumAdd, ScaleMayExceedPrecision) {
  const Result result = run(comn_numadd, number(1, 5, "7"), number(2, 6, "31"));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "0.000101 (3,6)");
}

TEST(NumSub, EqualOperandsGiveAnAllZeroArray) {
  const Result result = run(comn_numsub, number(9, 2, "123", true), number(9, 2, "123", true));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "0.00 (10,2)");
  for (int i = 0; i < Com__Nume_Prec_To_Len[10]; ++i)
    EXPECT_EQ(result.value.array[i], 0);
}

TEST(NumSub, ZeroesOfAnySignGiveAPlainZero) {
  for (bool left : {false, true})
    for (bool right : {false, true})
      for (Operation operation : {comn_numadd, comn_numsub}) {
        const Result result = run(operation, number(3, 0, "0", left), number(3, 0, "0", right));
        EXPECT_EQ(result.code, CS_SUCCEED);
        EXPECT_EQ(result.value.array[0], 0);
      }
}

TEST(NumAdd, AnySignByteButZeroIsNegative) {
  CS_NUMERIC a = number(3, 0, "5"), b = number(3, 0, "7");
  a.array[0] = 0x80;
  EXPECT_EQ(run(comn_numadd, a, b).text(), "2 (4,0)");
  EXPECT_EQ(run(comn_numsub, a, b).text(), "-12 (4,0)");
}

TEST(NumMul, Shape) {
  const Result result = run(comn_nummul, number(3, 1, "125"), number(4, 2, "250", true));
  EXPECT_EQ(result.code, CS_SUCCEED);
  EXPECT_EQ(result.text(), "-31.250 (8,3)");
}

TEST(NumMul, ZeroHasNoSign) {
  EXPECT_EQ(run(comn_nummul, number(3, 1, "0", true), number(4, 2, "250")).value.array[0], 0);
}

// Deliberate: digits lost where the scale gives way are an overflow here, with the truncated value
// in place.
TEST(NumMul, LostDigitsAreOverflowWithTheTruncatedValue) {
  const Result lost = run(comn_nummul, number(39, 1, "15"), number(38, 0, "3"));
  EXPECT_EQ(lost.code, CS_CONV_OVERFLOW);
  EXPECT_EQ(lost.text(), "4 (77,0)");
  const Result kept = run(comn_nummul, number(39, 1, "20"), number(38, 0, "3"));
  EXPECT_EQ(kept.code, CS_SUCCEED);
  EXPECT_EQ(kept.text(), "6 (77,0)");
}

// Deliberate: a product whose scale would have to fall by 78 digits or more is a syntax error.
TEST(NumMul, ShiftOf78DigitsIsSyntax) {
  // 77 + 77 digits of scale against 77, and integer digits 1: the scale falls to 76 by 78 digits.
  const Result result = run(comn_nummul, number(77, 77, "0"), number(77, 77, "1"));
  EXPECT_EQ(result.value.scale, 76);
  EXPECT_EQ(result.code, CS_CONV_SYNTAX);
  const Result one_less = run(comn_nummul, number(77, 77, "0"), number(77, 76, "1"));
  EXPECT_EQ(one_less.value.scale, 75);
  EXPECT_EQ(one_less.code, CS_CONV_SYNTAX);
  EXPECT_EQ(run(comn_nummul, number(77, 76, "0"), number(77, 76, "1")).code, CS_CONV_SYNTAX);
}

TEST(NumMul, PrecisionBelowOneIsOverflow) {
  CS_NUMERIC a = number(1, 77, "1"), b = number(1, 77, "1"), result;
  std::memset(&result, 0x5C, sizeof result);
  const CS_NUMERIC before = result;
  EXPECT_EQ(comn_nummul(&a, &b, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
}

TEST(NumDivide, ShapeAndTruncation) {
  const Result third = run(comn_numdivide, number(5, 0, "1"), number(3, 0, "3"));
  EXPECT_EQ(third.code, CS_SUCCEED);
  EXPECT_EQ(third.text(), "0.333333 (11,6)");
  const Result two_thirds = run(comn_numdivide, number(5, 0, "2"), number(3, 0, "3", true));
  EXPECT_EQ(two_thirds.code, CS_SUCCEED);
  EXPECT_EQ(two_thirds.text(), "-0.666666 (11,6)");
}

TEST(NumDivide, ScaleIsSixForShortOperandsAndOneMoreThanTheirDigitsElse) {
  EXPECT_EQ(run(comn_numdivide, number(1, 0, "1"), number(9, 4, "20000")).value.scale, 6);
  EXPECT_EQ(run(comn_numdivide, number(1, 0, "1"), number(9, 5, "200000")).value.scale, 7);
}

// The shape is stored before the divisor is looked at; the array stays.
TEST(NumDivide, ZeroDivisorLeavesTheShape) {
  const CS_NUMERIC zero = number(3, 0, "0");
  for (const CS_NUMERIC &dividend : {number(5, 2, "100"), number(5, 2, "0")}) {
    CS_NUMERIC a = dividend, b = zero, result;
    std::memset(&result, 0x5C, sizeof result);
    EXPECT_EQ(comn_numdivide(&a, &b, &result), CS_CONV_DIVZERO);
    EXPECT_EQ(result.precision, 9);
    EXPECT_EQ(result.scale, 6);
    for (const CS_BYTE byte : result.array)
      EXPECT_EQ(byte, 0x5C);
  }
}

// There is nothing to store where the rule gives a precision below 1, and a zero divisor comes first
// there as well.
TEST(NumDivide, PrecisionBelowOneLeavesTheResult) {
  CS_NUMERIC result;
  std::memset(&result, 0x5C, sizeof result);
  const CS_NUMERIC before = result;
  CS_NUMERIC zero = number(3, 0, "0"), one = number(1, 77, "1"), seven = number(3, 0, "7");
  EXPECT_EQ(comn_numdivide(&one, &zero, &result), CS_CONV_DIVZERO);
  EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
  EXPECT_EQ(comn_numdivide(&one, &seven, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
}

TEST(NumCmp, ScalesAndSigns) {
  auto compare = [](CS_NUMERIC a, CS_NUMERIC b) { return comn_numcmp(&a, &b); };
  EXPECT_EQ(compare(number(3, 2, "150"), number(2, 1, "15")), 0);
  EXPECT_EQ(compare(number(3, 2, "151"), number(2, 1, "15")), 1);
  EXPECT_EQ(compare(number(2, 1, "15"), number(3, 2, "151")), -1);
  EXPECT_EQ(compare(number(3, 2, "151", true), number(2, 1, "15", true)), -1);
  EXPECT_EQ(compare(number(3, 0, "1", true), number(3, 0, "0")), -1);
  EXPECT_EQ(compare(number(3, 0, "0", true), number(5, 1, "0")), 0);
  EXPECT_EQ(compare(number(3, 0, "0", true), number(3, 0, "5")), -1);
  EXPECT_EQ(compare(number(3, 0, "5"), number(3, 0, "0", true)), 1);
}

// Deliberate: where precision and scale together exceed 77, digits beyond the smaller scale do not
// count.
TEST(NumCmp, DigitsBeyondTheLimitDoNotCount) {
  CS_NUMERIC shallow = number(40, 0, "1"), deep = number(77, 38, "1" + std::string(37, '0') + "1");
  EXPECT_EQ(comn_numcmp(&shallow, &deep), 0);
  EXPECT_EQ(comn_numcmp(&deep, &shallow), 0);
  CS_NUMERIC narrow = number(39, 0, "1");
  EXPECT_EQ(comn_numcmp(&narrow, &deep), -1);
}

// Different signs decide before digits are dropped, a zero's sign too.
TEST(NumCmp, DroppedDigitsCountBesideAnotherSign) {
  CS_NUMERIC tiny = number(77, 77, "1"), minus_tiny = number(77, 77, "1", true);
  CS_NUMERIC zero = number(1, 0, "0"), minus_zero = number(1, 0, "0", true);
  EXPECT_EQ(comn_numcmp(&tiny, &zero), 0);
  EXPECT_EQ(comn_numcmp(&minus_zero, &minus_tiny), 0);
  EXPECT_EQ(comn_numcmp(&tiny, &minus_zero), 1);
  EXPECT_EQ(comn_numcmp(&minus_zero, &tiny), -1);
  EXPECT_EQ(comn_numcmp(&minus_tiny, &zero), -1);
  EXPECT_EQ(comn_numcmp(&zero, &minus_tiny), 1);
}

TEST(NumCmp, BadPrecisionRunsTheCheckOfGetlen) {
  CS_NUMERIC good = number(3, 0, "1"), bad = good;
  for (int precision : {0, 78, 255}) {
    bad.precision = static_cast<CS_BYTE>(precision);
    EXPECT_ASSERTION("numeric.cpp", 0, comn_numcmp(&good, &bad));
    EXPECT_ASSERTION("numeric.cpp", 0, comn_numcmp(&bad, &good));
  }
}

// A scale that no value has is compared all the same, and nothing outside the values is read.
TEST(NumCmp, BadScaleIsHarmless) {
  CS_NUMERIC good = number(3, 0, "1"), bad = number(77, 0, nines(77));
  bad.scale = 255;
  EXPECT_EQ(comn_numcmp(&good, &bad), 1);
  EXPECT_EQ(comn_numcmp(&bad, &good), -1);
}

TEST(NumArithmetic, MalformedOperandsAreRefused) {
  const CS_NUMERIC good = number(5, 2, "100");
  for (const Case *test : all_cases)
    for (int field = 0; field < 2; ++field)
      for (int value : {field == 0 ? 0 : 78, 78, 255})
        for (int side = 0; side < 2; ++side) {
          CS_NUMERIC operands[] = {good, good}, result;
          (field == 0 ? operands[side].precision : operands[side].scale) =
              static_cast<CS_BYTE>(value);
          std::memset(&result, 0x5C, sizeof result);
          const CS_NUMERIC before = result;
          EXPECT_EQ(test->operation(&operands[0], &operands[1], &result), CS_CONV_DOMAIN);
          EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
        }
}

TEST(NumArithmetic, NullPointersAndUnknownOperations) {
  CS_NUMERIC a = number(5, 2, "100"), b = a, r = a;
  for (const Case *test : all_cases) {
    EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", CS_FAIL, test->operation(nullptr, &b, &r));
    EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", CS_FAIL, test->operation(&a, nullptr, &r));
    EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", CS_FAIL, test->operation(&a, &b, nullptr));
  }
  EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", 0, comn_numcmp(nullptr, &b));
  EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", 0, comn_numcmp(&a, nullptr));
  for (CS_INT operation : {-1, 2})
    EXPECT_ASSERTION("numfuncs.cpp", CS_FAIL, comn_num_addorsub(&a, &b, &r, operation));
  for (CS_INT operation : {0, 1})
    EXPECT_NULL_POINTER_CHECK("numfuncs.cpp", CS_FAIL,
                              comn_num_addorsub(&a, nullptr, &r, operation));
}

TEST(NumAddorsub, ZeroAddsAndOneSubtracts) {
  CS_NUMERIC a = number(3, 0, "5"), b = number(3, 0, "7"), result;
  EXPECT_EQ(comn_num_addorsub(&a, &b, &result, 0), CS_SUCCEED);
  EXPECT_EQ(Decimal::of(result).text(), "12 (4,0)");
  EXPECT_EQ(comn_num_addorsub(&a, &b, &result, 1), CS_SUCCEED);
  EXPECT_EQ(Decimal::of(result).text(), "-2 (4,0)");
}

TEST(NumArithmetic, ResultMayBeAnOperand) {
  for (const Case *test : all_cases) {
    CS_NUMERIC a = number(7, 2, "1234567"), b = number(9, 4, "20000"), apart;
    EXPECT_EQ(test->operation(&a, &b, &apart), CS_SUCCEED);
    CS_NUMERIC left = a, right = b;
    EXPECT_EQ(test->operation(&left, &b, &left), CS_SUCCEED);
    EXPECT_EQ(test->operation(&a, &right, &right), CS_SUCCEED);
    EXPECT_EQ(Decimal::of(left).text(), Decimal::of(apart).text()) << test->name;
    EXPECT_EQ(Decimal::of(right).text(), Decimal::of(apart).text()) << test->name;
  }
}

TEST(NumArithmetic, BoundaryOperandsOfAllShapesInPairs) {
  unsigned signs = 0;
  for (const auto &left : zrvtest::shape_grid)
    for (const auto &right : zrvtest::shape_grid) {
      const auto left_values = zrvtest::boundary_magnitudes(left.precision);
      const auto right_values = zrvtest::boundary_magnitudes(right.precision);
      for (const Natural &a : left_values)
        for (const Natural &b : right_values) {
          ++signs;
          const Decimal x{left.precision, left.scale, (signs & 1) != 0, a};
          const Decimal y{right.precision, right.scale, (signs & 2) != 0, b};
          for (const Case *test : all_cases)
            ASSERT_TRUE(agrees(*test, x, y));
          CS_NUMERIC packed_x = x.pack(), packed_y = y.pack();
          ASSERT_EQ(comn_numcmp(&packed_x, &packed_y), zrvtest::reference_compare(x, y))
              << x.text() << ", " << y.text();
        }
    }
}

// All values up to 999 with scales 0 to 3, against integer arithmetic.
// Each magnitude with each other one, every such pair at half of the scales, which takes half the
// time.
TEST(NumArithmetic, AllSmallValuesInPairs) {
  constexpr int precision = 3;
  const int step = zrvtest::random_cases < 100000 ? 37 : 1;
  CS_NUMERIC values[4][1000];
  for (int scale = 0; scale <= 3; ++scale)
    for (int i = 0; i < 1000; ++i)
      values[scale][i] = {precision,
                          static_cast<CS_BYTE>(scale),
                          {0, static_cast<CS_BYTE>(i >> 8), static_cast<CS_BYTE>(i)}};
  int64_t power[11] = {1};
  for (int i = 1; i <= 10; ++i)
    power[i] = 10 * power[i - 1];
  // No result has more than seven bytes.
  auto value_of = [](const CS_NUMERIC &number) {
    uint64_t bytes;
    std::memcpy(&bytes, number.array + 1, sizeof bytes);
    const int unused = 64 - 8 * (Com__Nume_Prec_To_Len[number.precision] - 1);
    const auto magnitude = static_cast<int64_t>(__builtin_bswap64(bytes) >> unused);
    return number.array[0] != 0 ? -magnitude : magnitude;
  };
  CS_NUMERIC result{};
  int64_t failures = 0;
  for (int s1 = 0; s1 <= 3; ++s1)
    for (int s2 = 0; s2 <= 3; ++s2) {
      const int scale = std::max(s1, s2);
      // Quotients: 3 + s2 digits are below 6 only for s2 up to 2.
      const int quotient_scale = 3 + s2 < 6 ? 6 : 3 + s2 + 1;
      for (int i = 0; i < 1000; i += step)
        for (int j = (i + s1 + s2) % 2; j < 1000; j += 2 * step) {
          CS_NUMERIC &a = values[s1][i], &b = values[s2][j];
          const int64_t left = i * power[scale - s1], right = j * power[scale - s2];
          failures += comn_numadd(&a, &b, &result) != CS_SUCCEED || result.scale != scale ||
                      value_of(result) != left + right;
          failures += comn_numsub(&a, &b, &result) != CS_SUCCEED || result.scale != scale ||
                      value_of(result) != left - right;
          failures += comn_nummul(&a, &b, &result) != CS_SUCCEED || result.scale != s1 + s2 ||
                      result.precision != 7 || value_of(result) != int64_t{i} * j;
          const CS_RETCODE code = comn_numdivide(&a, &b, &result);
          if (j == 0)
            failures += code != CS_CONV_DIVZERO;
          else
            failures += code != CS_SUCCEED || result.scale != quotient_scale ||
                        value_of(result) != int64_t{i} * power[quotient_scale + s2 - s1] / j;
          failures += comn_numcmp(&a, &b) != (left > right) - (left < right);
        }
    }
  EXPECT_EQ(failures, 0);
}

namespace {

void compare_random(const Case &test, unsigned seed) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  zrvtest::RandomDecimals random(seed);
  for (int i = 0; i < zrvtest::random_cases; ++i) {
    const Decimal a = random.any();
    const Decimal b = random.below(3) == 0 ? random.of(a.precision, a.scale) : random.any();
    ASSERT_TRUE(agrees(test, a, b)) << "case " << i;
  }
}

} // namespace

TEST(NumAdd, RandomOperands) {
  compare_random(add_case, 1);
}

TEST(NumSub, RandomOperands) {
  compare_random(subtract_case, 2);
}

TEST(NumMul, RandomOperands) {
  compare_random(multiply_case, 3);
}

TEST(NumDivide, RandomOperands) {
  compare_random(divide_case, 4);
}

TEST(NumCmp, RandomOperands) {
  zrvtest::RandomDecimals random(5);
  for (int i = 0; i < zrvtest::random_cases; ++i) {
    const Decimal a = random.any();
    Decimal b = random.any();
    if (random.below(4) == 0) {
      // The same number at another scale.
      b = a;
      if (a.scale < 77 && a.magnitude.digit_count() < 77) {
        b.magnitude.multiply_small(10, 0);
        b.scale = a.scale + 1;
        b.precision = std::max(b.precision, std::min(77, b.magnitude.digit_count()));
      }
      if (zrvtest::reference_length(b.precision) - 1 < (b.magnitude.digit_count() * 5 + 11) / 12)
        b.precision = 77;
    }
    CS_NUMERIC left = a.pack(), right = b.pack();
    ASSERT_EQ(comn_numcmp(&left, &right),
              zrvtest::reference_compare(Decimal::of(left), Decimal::of(right)))
        << a.text() << ", " << b.text();
  }
}
