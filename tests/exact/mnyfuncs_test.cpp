// Arithmetic on both sizes of money, compared with wider integers.
#include <cstring>
#include <optional>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "longhand.h"
#include "money_values.h"
#include "test_scale.h"
#include "traced_exit.h"
#include "zrvcomn/numeric.h"

using zrvtest::count_of;
using zrvtest::largest_money;
using zrvtest::magnitude_of;
using zrvtest::money;
using zrvtest::Natural;
using zrvtest::smallest_money;

namespace {

constexpr CS_INT largest4 = std::numeric_limits<CS_INT>::max();
constexpr CS_INT smallest4 = std::numeric_limits<CS_INT>::min();

// What an operation should give: a count, or a status with zero.
struct Outcome {
  int status;
  int64_t count;
};

// A magnitude and its sign as a count of either size, or an overflow.
Outcome limited(const Natural &magnitude, bool negative, uint64_t largest) {
  const Natural limit = Natural(largest) + Natural(negative ? 1 : 0);
  if (limit < magnitude)
    return {NUME_OVERFLOW, 0};
  const uint64_t bits = std::strtoull(magnitude.digits().c_str(), nullptr, 10);
  return {NUME_OK, static_cast<int64_t>(negative ? 0 - bits : bits)};
}

constexpr auto money_limit = static_cast<uint64_t>(largest_money);
constexpr auto money4_limit = static_cast<uint64_t>(largest4);

Outcome expected_sum(int64_t a, int64_t b, uint64_t limit) {
  const Natural x(magnitude_of(a)), y(magnitude_of(b));
  if ((a < 0) == (b < 0))
    return limited(x + y, a < 0, limit);
  return x < y ? limited(y - x, b < 0, limit) : limited(x - y, a < 0, limit);
}

Outcome expected_difference(int64_t a, int64_t b, uint64_t limit) {
  const Natural x(magnitude_of(a)), y(magnitude_of(b));
  if ((a < 0) != (b < 0))
    return limited(x + y, a < 0, limit);
  return x < y ? limited(y - x, a >= 0, limit) : limited(x - y, a < 0, limit);
}

Outcome expected_product(int64_t a, int64_t b, uint64_t limit) {
  Natural product = Natural(magnitude_of(a)) * Natural(magnitude_of(b));
  const bool rounds_up = product.divide_small(10000) >= 5000;
  return limited(rounds_up ? product + Natural(1) : product, (a < 0) != (b < 0), limit);
}

Outcome expected_quotient(int64_t a, int64_t b, uint64_t limit) {
  if (b == 0)
    return {NUME_DIVZERO, 0};
  Natural remainder;
  const Natural scaled = Natural(magnitude_of(a)) * Natural(10000);
  return limited(Natural::divide(scaled, Natural(magnitude_of(b)), remainder), (a < 0) != (b < 0),
                 limit);
}

CS_RETCODE code_of(int status) {
  return status == NUME_OK         ? CS_SUCCEED
         : status == NUME_OVERFLOW ? CS_CONV_OVERFLOW
                                   : CS_CONV_DIVZERO;
}

// An operation on both sizes, internal and public.
struct Operation {
  const char *name;
  int (*internal)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
  CS_RETCODE (*published)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
  int (*internal4)(CS_MONEY4 *, CS_MONEY4 *, CS_MONEY4 *);
  CS_RETCODE (*published4)(CS_MONEY4 *, CS_MONEY4 *, CS_MONEY4 *);
  Outcome (*expected)(int64_t, int64_t, uint64_t);
};

const Operation operations[] = {
    {"add", com__mnyadd, comn_mnyadd, com__mnyadd4, comn_mny4add, expected_sum},
    {"sub", com__mnysub, comn_mnysub, com__mnysub4, comn_mny4sub, expected_difference},
    {"mul", com__mnymul, comn_mnymul, com__mnymul4, comn_mny4mul, expected_product},
    {"div", com__mnydiv, comn_mnydivide, com__mnydiv4, comn_mny4divide, expected_quotient},
};

// Runs an operation internally and in public, the results in front of which and behind which
// nothing may change.
template <class Money, class Internal, class Published>
testing::AssertionResult agrees(const Operation &operation, Internal internal, Published published,
                                const Money &left, const Money &right, const Outcome &expected,
                                const Money &result) {
  struct {
    unsigned char front[4];
    Money value;
    unsigned char back[4];
  } room, untouched;
  Money a = left, b = right;
  auto same = [](const Money &x, const Money &y) { return std::memcmp(&x, &y, sizeof x) == 0; };
  for (bool is_public : {false, true}) {
    std::memset(&room, 0x5C, sizeof room);
    std::memset(&untouched, 0x5C, sizeof untouched);
    const int got = is_public ? published(&a, &b, &room.value) : internal(&a, &b, &room.value);
    const int wanted = is_public ? code_of(expected.status) : expected.status;
    if (got != wanted)
      return testing::AssertionFailure()
             << operation.name << " returned " << got << " instead of " << wanted;
    if (!same(room.value, result))
      return testing::AssertionFailure() << operation.name << ": wrong result";
    if (!same(a, left) || !same(b, right))
      return testing::AssertionFailure() << operation.name << " changed an operand";
    if (std::memcmp(room.front, untouched.front, 4) != 0 ||
        std::memcmp(room.back, untouched.back, 4) != 0)
      return testing::AssertionFailure() << operation.name << " wrote outside the result";
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult agrees(const Operation &operation, int64_t a, int64_t b) {
  const Outcome expected = operation.expected(a, b, money_limit);
  return agrees(operation, operation.internal, operation.published, money(a), money(b), expected,
                money(expected.count))
         << " for " << a << " and " << b;
}

testing::AssertionResult agrees4(const Operation &operation, CS_INT a, CS_INT b) {
  const Outcome expected = operation.expected(a, b, money4_limit);
  return agrees(operation, operation.internal4, operation.published4, CS_MONEY4{a}, CS_MONEY4{b},
                expected, CS_MONEY4{static_cast<CS_INT>(expected.count)})
         << " for " << a << " and " << b << " (four bytes)";
}

template <class Function>
int64_t changed(int64_t count, int expected, Function function) {
  CS_MONEY value = money(count);
  EXPECT_EQ(function(&value), expected) << count;
  return count_of(value);
}

} // namespace

TEST(MoneyArithmetic, BoundariesPairedWithOneAnother) {
  const std::vector<int64_t> counts = zrvtest::boundary_counts();
  const size_t step = zrvtest::sanitized ? 61 : 13; // long hand takes its time
  for (size_t i = 0; i < counts.size(); ++i)
    for (size_t j = i % step; j < counts.size(); j += step)
      for (const Operation &operation : operations)
        ASSERT_TRUE(agrees(operation, counts[i], counts[j]));
}

TEST(MoneyArithmetic, RandomCounts) {
  const auto seed = zrvtest::random_seed();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  for (size_t i = 0; i < zrvtest::random_steps() / 50; ++i) {
    const int64_t a = zrvtest::random_count(random), b = zrvtest::random_count(random);
    for (const Operation &operation : operations)
      ASSERT_TRUE(agrees(operation, a, b));
  }
}

TEST(Money4Arithmetic, BoundariesAndRandomCounts) {
  std::vector<CS_INT> counts;
  for (int64_t count : zrvtest::boundary_counts())
    if (count >= smallest4 && count <= largest4)
      counts.push_back(static_cast<CS_INT>(count));
  counts.push_back(smallest4);
  const size_t step = zrvtest::sanitized ? 17 : 3;
  for (size_t i = 0; i < counts.size(); ++i)
    for (size_t j = i % step; j < counts.size(); j += step)
      for (const Operation &operation : operations)
        ASSERT_TRUE(agrees4(operation, counts[i], counts[j]));
  const auto seed = zrvtest::random_seed();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  for (size_t i = 0; i < zrvtest::random_steps() / 50; ++i) {
    const auto a = static_cast<CS_INT>(zrvtest::random_count(random)),
               b = static_cast<CS_INT>(zrvtest::random_count(random));
    for (const Operation &operation : operations)
      ASSERT_TRUE(agrees4(operation, a, b));
  }
}

#ifdef __SIZEOF_INT128__
// All pairs of boundaries and many random ones against integers of 128 bits.
TEST(MoneyArithmetic, IntegersOf128Bits) {
  __extension__ using Wide = __int128;
  auto check = [](int status, const CS_MONEY &result, Wide wide) {
    const bool fits = wide >= smallest_money && wide <= largest_money;
    return status == (fits ? NUME_OK : NUME_OVERFLOW) &&
           count_of(result) == (fits ? static_cast<int64_t>(wide) : 0);
  };
  auto agrees = [&](int64_t a, int64_t b) {
    CS_MONEY x = money(a), y = money(b), r;
    const Wide product = Wide{a} * b;
    return check(com__mnyadd(&x, &y, &r), r, Wide{a} + b) &&
           check(com__mnysub(&x, &y, &r), r, Wide{a} - b) &&
           check(com__mnymul(&x, &y, &r), r, (product + (product < 0 ? -5000 : 5000)) / 10000) &&
           (b == 0 || check(com__mnydiv(&x, &y, &r), r, Wide{a} * 10000 / b));
  };
  const std::vector<int64_t> counts = zrvtest::boundary_counts();
  for (int64_t a : counts)
    for (int64_t b : counts)
      ASSERT_TRUE(agrees(a, b)) << a << " " << b;
  const auto seed = zrvtest::random_seed();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  for (size_t i = 0; i < zrvtest::random_steps(); ++i) {
    const int64_t a = zrvtest::random_count(random), b = zrvtest::random_count(random);
    ASSERT_TRUE(agrees(a, b)) << a << " " << b;
  }
}
#endif

TEST(MoneyArithmetic, ProductsRoundAndQuotientsTruncate) {
  CS_MONEY tick = money(1), half = money(5000), two = money(20000), result;
  EXPECT_EQ(comn_mnymul(&tick, &half, &result), CS_SUCCEED);
  EXPECT_EQ(count_of(result), 1); // 0.00005 to 0.0001
  EXPECT_EQ(comn_mnydivide(&tick, &two, &result), CS_SUCCEED);
  EXPECT_EQ(count_of(result), 0); // 0.00005 to 0
  CS_MONEY minus = money(-1);
  comn_mnymul(&minus, &half, &result);
  EXPECT_EQ(count_of(result), -1);
  comn_mnydivide(&minus, &two, &result);
  EXPECT_EQ(count_of(result), 0);
  CS_MONEY below = money(4999);
  comn_mnymul(&tick, &below, &result);
  EXPECT_EQ(count_of(result), 0);
}

// The smallest value is a result like any other, and no operand is too small.
TEST(MoneyArithmetic, TheSmallestValueIsAResult) {
  CS_MONEY smallest = money(smallest_money), one = money(10000), minus = money(-10000), result;
  EXPECT_EQ(comn_mnymul(&smallest, &one, &result), CS_SUCCEED);
  EXPECT_EQ(count_of(result), smallest_money);
  EXPECT_EQ(comn_mnydivide(&smallest, &one, &result), CS_SUCCEED);
  EXPECT_EQ(count_of(result), smallest_money);
  EXPECT_EQ(comn_mnymul(&smallest, &minus, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(count_of(result), 0);
  EXPECT_EQ(comn_mnydivide(&smallest, &minus, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(count_of(result), 0);
  EXPECT_EQ(comn_mnydivide(&smallest, &smallest, &result), CS_SUCCEED);
  EXPECT_EQ(count_of(result), 10000);
}

TEST(Money4Arithmetic, OverflowIsZeroAndNotSaturated) {
  CS_MONEY4 a{2147483640}, two{20000}, result{-1};
  EXPECT_EQ(comn_mny4mul(&a, &two, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(result.mny4, 0);
  CS_MONEY4 zero{0};
  result.mny4 = 7;
  EXPECT_EQ(comn_mny4divide(&a, &zero, &result), CS_CONV_DIVZERO);
  EXPECT_EQ(result.mny4, 0);
  // 214748.3647 over 0.0001 needs eight bytes
  CS_MONEY4 tick{1};
  result.mny4 = 7;
  EXPECT_EQ(comn_mny4divide(&a, &tick, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(result.mny4, 0);
}

TEST(MoneyArithmetic, ResultsMayBeOperands) {
  for (const Operation &operation : operations) {
    CS_MONEY a = money(70000), b = money(30000);
    const Outcome expected = operation.expected(70000, 30000, money_limit);
    EXPECT_EQ(operation.published(&a, &b, &a), CS_SUCCEED);
    EXPECT_EQ(count_of(a), expected.count) << operation.name;
    a = money(70000);
    EXPECT_EQ(operation.published(&a, &b, &b), CS_SUCCEED);
    EXPECT_EQ(count_of(b), expected.count) << operation.name;
    CS_MONEY4 c{70000};
    EXPECT_EQ(operation.published4(&c, &c, &c), CS_SUCCEED);
    EXPECT_EQ(c.mny4, operation.expected(70000, 70000, money4_limit).count) << operation.name;
  }
}

// Values stand at any address.
TEST(MoneyArithmetic, AnyAddress) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    zrvtest::GuardedBuffer a(8, misalignment), b(8, misalignment), sum(8, misalignment);
    a.set(money(3)), b.set(money(4));
    EXPECT_EQ(comn_mnyadd(reinterpret_cast<CS_MONEY *>(a.data()),
                          reinterpret_cast<CS_MONEY *>(b.data()),
                          reinterpret_cast<CS_MONEY *>(sum.data())),
              CS_SUCCEED);
    EXPECT_EQ(count_of(sum.value<CS_MONEY>()), 7);
  }
}

TEST(MoneyArithmetic, WordsStandHighFirst) {
  CS_MONEY result, a = {0, 0xFFFFFFFF}, b = {0, 1};
  EXPECT_EQ(comn_mnyadd(&a, &b, &result), CS_SUCCEED);
  EXPECT_EQ(result.mnyhigh, 1);
  EXPECT_EQ(result.mnylow, 0U);
  EXPECT_EQ(comn_mnysub(&b, &a, &result), CS_SUCCEED);
  EXPECT_EQ(result.mnyhigh, -1);
  EXPECT_EQ(result.mnylow, 2U);
}

TEST(MoneyNegation, SmallestValue) {
  for (int64_t count : zrvtest::boundary_counts()) {
    if (count == smallest_money)
      continue;
    CS_MONEY value = money(count), result;
    EXPECT_EQ(com__mnyminus(&value, &result), NUME_OK);
    EXPECT_EQ(comn_mnyminus(&value, &result), CS_SUCCEED);
    EXPECT_EQ(count_of(result), -count);
  }
  CS_MONEY smallest = money(smallest_money), result = money(1);
  EXPECT_EQ(com__mnyminus(&smallest, &result), NUME_OVERFLOW);
  EXPECT_EQ(count_of(result), smallest_money);
  result = money(1);
  EXPECT_EQ(comn_mnyminus(&smallest, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(count_of(result), smallest_money);
}

// Deliberate: unlike the longer form.
TEST(Money4Negation, SmallestValueWritesNothing) {
  CS_MONEY4 value{smallest4}, result{77};
  EXPECT_EQ(com__mnyminus4(&value, &result), NUME_OVERFLOW);
  EXPECT_EQ(comn_mny4minus(&value, &result), CS_CONV_OVERFLOW);
  EXPECT_EQ(result.mny4, 77);
  for (CS_INT count : {0, 1, -1, largest4, -largest4}) {
    value.mny4 = count;
    EXPECT_EQ(com__mnyminus4(&value, &result), NUME_OK);
    EXPECT_EQ(result.mny4, -count);
    EXPECT_EQ(comn_mny4minus(&value, &result), CS_SUCCEED);
    EXPECT_EQ(result.mny4, -count);
  }
}

TEST(MoneyStep, IncrementWraps) {
  EXPECT_EQ(changed(0, NUME_OK, com__mnyinc), 1);
  EXPECT_EQ(changed(-1, NUME_OK, com__mnyinc), 0);
  EXPECT_EQ(changed(0xFFFFFFFF, NUME_OK, com__mnyinc), 0x100000000);
  EXPECT_EQ(changed(largest_money - 1, NUME_OK, com__mnyinc), largest_money);
  EXPECT_EQ(changed(largest_money, NUME_OVERFLOW, com__mnyinc), smallest_money);
  EXPECT_EQ(changed(7, CS_SUCCEED, comn_mnyinc), 8);
  EXPECT_EQ(changed(largest_money, CS_CONV_OVERFLOW, comn_mnyinc), smallest_money);
}

// Deliberate: where the low word is 0, the step is 2 to the 32 units.
TEST(MoneyStep, DecrementIsNoMirror) {
  EXPECT_EQ(changed(1, NUME_OK, com__mnydec), 0);
  EXPECT_EQ(changed(-1, NUME_OK, com__mnydec), -2);
  EXPECT_EQ(changed(0, NUME_OK, com__mnydec), -0x100000000);
  EXPECT_EQ(changed(0x100000000, NUME_OK, com__mnydec), 0);
  EXPECT_EQ(changed(0x100000001, NUME_OK, com__mnydec), 0x100000000);
  EXPECT_EQ(changed(smallest_money + 1, NUME_OK, com__mnydec), smallest_money);
  EXPECT_EQ(changed(smallest_money, NUME_OVERFLOW, com__mnydec), 0x7FFFFFFF00000000);
  EXPECT_EQ(changed(smallest_money + 0x100000000, NUME_OK, com__mnydec), smallest_money);
  EXPECT_EQ(changed(0, CS_SUCCEED, comn_mnydec), -0x100000000);
  EXPECT_EQ(changed(smallest_money, CS_CONV_OVERFLOW, comn_mnydec), 0x7FFFFFFF00000000);
}

TEST(MoneyScale, MagnitudeTimesPlus) {
  const struct {
    int64_t count;
    CS_UINT factor;
    CS_INT addend;
    int status;
    int64_t result;
  } rows[] = {
      {12, 10, 3, NUME_OK, 123},
      {-12, 10, 3, NUME_OK, -123}, // the addend goes to the magnitude
      {12, 10, -3, NUME_OK, 117},
      {-12, 10, -3, NUME_OK, -117},
      {12, 0, 3, NUME_OK, 3},
      {-12, 0, 3, NUME_OK, 3}, // no factor, no sign
      {12, 0, -3, NUME_OK, -3},
      {smallest_money, 0, -1, NUME_OK, -1},
      {3, 0xFFFFFFFF, 0, NUME_OK, 3 * int64_t{0xFFFFFFFF}}, // a factor of 32 bits
      {-3, 0x80000000, 1, NUME_OK, -(3 * int64_t{0x80000000} + 1)},
      {largest_money, 1, 0, NUME_OK, largest_money},
      {-largest_money, 1, 0, NUME_OK, -largest_money},
      {largest_money, 1, 1, NUME_OVERFLOW, largest_money},
      {largest_money, 1, -1, NUME_OK, largest_money - 1},
      {largest_money - 1, 1, 1, NUME_OK, largest_money},
      {922337203685477580, 10, 7, NUME_OK, largest_money},
      {922337203685477580, 10, 8, NUME_OVERFLOW, 922337203685477580},
      {-922337203685477580, 10, 8, NUME_OVERFLOW, -922337203685477580},
      {922337203685477581, 10, -9, NUME_OVERFLOW, 922337203685477581}, // the product is too large
      {int64_t{1} << 62, 2, -1, NUME_OVERFLOW, int64_t{1} << 62},
      {int64_t{1} << 62, 4, 0, NUME_OVERFLOW, int64_t{1} << 62}, // 2 to the 64
      {largest_money, 0xFFFFFFFF, 0, NUME_OVERFLOW, largest_money},
      {smallest_money, 1, 0, NUME_OVERFLOW, smallest_money},
      {0, 10, -1, NUME_OVERFLOW, 0}, // no magnitude is below zero
      {1, 1, -1, NUME_OK, 0},
      {0, 5, 0x7FFFFFFF, NUME_OK, 0x7FFFFFFF},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.count << " " << row.factor << " " << row.addend);
    EXPECT_EQ(changed(row.count, row.status,
                      [&](CS_MONEY *m) { return com__mnyscale(m, row.factor, row.addend); }),
              row.result);
    EXPECT_EQ(changed(row.count, code_of(row.status),
                      [&](CS_MONEY *m) { return comn_mnyscale(m, row.factor, row.addend); }),
              row.result);
  }
}

TEST(MoneyScale, TableOfMultipliers) {
  EXPECT_EQ(scalebuf[0], 10000);
  EXPECT_EQ(scalebuf[1], 1000);
  EXPECT_EQ(scalebuf[2], 100);
  EXPECT_EQ(scalebuf[3], 10);
  EXPECT_EQ(scalebuf[4], 1);
}

TEST(MoneyDown, RemaindersOfTheMagnitude) {
  const struct {
    int64_t count;
    CS_INT divisor;
    int remainder;
    int64_t quotient;
  } rows[] = {
      {127, 10, 7, 12},
      {-127, 10, 7, -12}, // the quotient keeps the sign, the remainder has none
      {-7, 10, 7, 0},
      {7, 0, 0, 7},
      {-7, 0x10000, 0, -7}, // only 16 bits count
      {127, 0x1000A, 7, 12},
      {127, -65526, 7, 12}, // the low half of it is 10
      {65535, 65535, 0, 1},
      {-1, 65535, 1, 0},
      {largest_money, 65535, static_cast<int>(largest_money % 65535), largest_money / 65535},
      {smallest_money, 1, 0, smallest_money},
      {smallest_money, 10, 8, -922337203685477580},
      {smallest_money, 0, 0, smallest_money},
  };
  for (const auto &row : rows)
    for (auto function : {com__mnydown, comn_mnydown})
      EXPECT_EQ(
          changed(row.count, row.remainder, [&](CS_MONEY *m) { return function(m, row.divisor); }),
          row.quotient)
          << row.count << " / " << row.divisor;
}

namespace {

// A value digit by digit, the last one first.
std::string digits_of(int64_t count, int trim) {
  CS_MONEY value = money(count), twin = value;
  std::string digits = com__mnyinit(&value, trim) < 0 ? "-" : "";
  comn_mnyinit(&twin, trim);
  char digit;
  int more;
  do {
    char same;
    more = com__mnyndigit(&value, &digit);
    EXPECT_EQ(comn_mnyndigit(&twin, &same), more);
    EXPECT_EQ(same, digit);
    digits += digit;
  } while (more == 1);
  EXPECT_EQ(more, 0);
  return digits;
}

} // namespace

TEST(MoneyDigits, OneByOne) {
  EXPECT_EQ(digits_of(0, 0), "0");
  EXPECT_EQ(digits_of(5, 0), "5");
  EXPECT_EQ(digits_of(1230, 0), "0321");
  EXPECT_EQ(digits_of(-1234, 0), "-4321");
  EXPECT_EQ(digits_of(12349, 2), "321"); // the last digit dropped is 4
  EXPECT_EQ(digits_of(12350, 2), "421");
  EXPECT_EQ(digits_of(-12350, 2), "-421");
  EXPECT_EQ(digits_of(95, 1), "01");
  EXPECT_EQ(digits_of(655355, 1), "63556"); // every byte of the quotient is 255
  EXPECT_EQ(digits_of(167772155, 1), "61277761");
  EXPECT_EQ(digits_of(4, 1), "0");
  EXPECT_EQ(digits_of(5, 1), "1");
  EXPECT_EQ(digits_of(5, 2), "0"); // the digit before it is 0
  EXPECT_EQ(digits_of(1234, -1), "4321");
  EXPECT_EQ(digits_of(largest_money, 0), "7085774586302733229");
  EXPECT_EQ(digits_of(largest_money, 19), "1"); // 9 is dropped last
  EXPECT_EQ(digits_of(largest_money, 20), "0");
  EXPECT_EQ(digits_of(largest_money, 2000000000), "0");
  EXPECT_EQ(digits_of(smallest_money, 1), "-185774586302733229");
}

// Deliberate: its magnitude is no value, so it stays, and its digits are those of 2 to the 63.
TEST(MoneyDigits, TheSmallestValueStays) {
  EXPECT_EQ(changed(smallest_money, -1, [](CS_MONEY *m) { return com__mnyinit(m, 0); }),
            smallest_money);
  EXPECT_EQ(digits_of(smallest_money, 0), "-8085774586302733229");
}

TEST(MoneyLimits, Set) {
  CS_MONEY value = money(0);
  for (auto function : {com__maxposmny, comn_mnymaxpos}) {
    value = money(0);
    function(&value);
    EXPECT_EQ(value.mnyhigh, 0x7FFFFFFF);
    EXPECT_EQ(value.mnylow, 0xFFFFFFFF);
  }
  for (auto function : {com__maxnegmny, comn_mnymaxneg}) {
    value = money(0);
    function(&value);
    EXPECT_EQ(value.mnyhigh, smallest4);
    EXPECT_EQ(value.mnylow, 0U);
  }
  EXPECT_EQ(comn_mnyzero(&value), CS_SUCCEED);
  EXPECT_EQ(count_of(value), 0);
  CS_MONEY4 small{5};
  EXPECT_EQ(comn_mny4zero(&small), CS_SUCCEED);
  EXPECT_EQ(small.mny4, 0);
}

TEST(MoneyCopy, BothSizes) {
  CS_MONEY from = money(-123456789012345), to = money(0);
  EXPECT_EQ(com__mnycopy(&from, &to), NUME_OK);
  EXPECT_EQ(count_of(to), -123456789012345);
  to = money(0);
  EXPECT_EQ(comn_mnycopy(&from, &to), CS_SUCCEED);
  EXPECT_EQ(count_of(to), -123456789012345);
  CS_MONEY4 from4{-5}, to4{0};
  EXPECT_EQ(comn_mny4copy(&from4, &to4), CS_SUCCEED);
  EXPECT_EQ(to4.mny4, -5);
}

TEST(MoneyComparison, HighSignedLowUnsigned) {
  const CS_MONEY ascending[] = {
      {smallest4, 0},        {smallest4, 0xFFFFFFFF}, {-1, 0}, {-1, 0x7FFFFFFF},
      {-1, 0x80000000},      {-1, 0xFFFFFFFF},        {0, 0},  {0, 0x7FFFFFFF},
      {0, 0x80000000},       {0, 0xFFFFFFFF},         {1, 0},  {largest4, 0},
      {largest4, 0xFFFFFFFF}};
  for (size_t i = 0; i < std::size(ascending); ++i)
    for (size_t j = 0; j < std::size(ascending); ++j) {
      CS_MONEY a = ascending[i], b = ascending[j];
      EXPECT_EQ(comn_mnycmp(&a, &b), i < j ? -1 : i > j);
    }
  const CS_INT counts[] = {smallest4, -1, 0, 1, largest4};
  for (CS_INT a : counts)
    for (CS_INT b : counts) {
      CS_MONEY4 x{a}, y{b};
      EXPECT_EQ(comn_mny4cmp(&x, &y), a < b ? -1 : a > b);
    }
}

// Deliberate: remainders are not supported.
TEST(MoneyRemainder, Fails) {
  CS_MONEY a = money(7), b = money(2), result = money(99);
  EXPECT_EQ(com__mnyrem(&a, &b, &result), 1);
  EXPECT_EQ(count_of(result), 99);
  CS_MONEY4 c{7}, d{2}, small{99};
  EXPECT_EQ(com__mnyrem4(&c, &d, &small), 1);
  EXPECT_EQ(small.mny4, 99);
}

// Deliberate: the shift is by the number of bits of the argument, not by the argument.
TEST(MoneyShift, BySignificantBits) {
  auto shifted = [](int64_t count, CS_INT value) {
    return changed(count, NUME_OK, [&](CS_MONEY *m) { return com__mnyshift(m, value); });
  };
  EXPECT_EQ(shifted(1024, 0), 1024);
  EXPECT_EQ(shifted(1024, 1), 512);
  EXPECT_EQ(shifted(1024, 2), 256);
  EXPECT_EQ(shifted(1024, 3), 256);
  EXPECT_EQ(shifted(1024, 4), 128);
  EXPECT_EQ(shifted(1024, 5), 128);
  EXPECT_EQ(shifted(1024, 7), 128);
  EXPECT_EQ(shifted(1024, 8), 64);
  EXPECT_EQ(shifted(0x100000000, 1), 0x80000000); // across the words
  EXPECT_EQ(shifted(-3, 1), -2);
  EXPECT_EQ(shifted(largest_money, largest4), largest_money >> 31);
  EXPECT_EQ(shifted(1024, -5), 128);
  EXPECT_EQ(shifted(largest_money, smallest4), largest_money >> 32);
}

TEST(MoneyWordDivision, ByTheLowWord) {
  auto divided = [](int64_t count, const CS_MONEY &divisor) {
    CS_MONEY num = money(count), den = divisor, res = money(99);
    comn_mnyxdiv(&num, &den, &res);
    EXPECT_EQ(count_of(num), count);
    return count_of(res);
  };
  EXPECT_EQ(divided(1000, {0, 7}), 142);
  EXPECT_EQ(divided(1000, {-9, 7}), 142); // the high word has no effect
  EXPECT_EQ(divided(-1000, {0, 7}), -142);
  EXPECT_EQ(divided(1000, {5, 0}), 0); // a divisor of zero goes unreported
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const int64_t count = zrvtest::random_count(random);
    const auto divisor = static_cast<CS_UINT>(random() >> (32 + random() % 32));
    if (divisor == 0)
      continue;
    const auto quotient = magnitude_of(count) / divisor;
    ASSERT_EQ(divided(count, {0, divisor}),
              static_cast<int64_t>(count < 0 ? 0 - quotient : quotient));
    const auto small = static_cast<uint16_t>(divisor);
    if (small == 0)
      continue;
    CS_MONEY num = money(count), res;
    comn__mny16div(&num, small, &res);
    ASSERT_EQ(magnitude_of(count_of(res)), magnitude_of(count) / small);
  }
}

TEST(MoneyChecks, NullPointers) {
  CS_MONEY m = money(5);
  CS_MONEY4 m4{5};
  CS_CHAR digit = 'x';
  // A call with a null pointer reports it and returns what is expected.
  auto null = [](int expected, const char *file, auto call) {
    const zrvtest::CheckReport report =
        zrvtest::catch_check([&] { EXPECT_EQ(call(), expected) << file; });
    EXPECT_TRUE(zrvtest::is_null_pointer_report(report, file)) << report.text;
  };
  for (const Operation &operation : operations) {
    for (int missing = 0; missing < 3; ++missing) {
      CS_MONEY *p[3] = {&m, &m, &m};
      CS_MONEY4 *q[3] = {&m4, &m4, &m4};
      p[missing] = nullptr, q[missing] = nullptr;
      null(NUME_OVERFLOW, "mnyfuncs.cpp", [&] { return operation.internal(p[0], p[1], p[2]); });
      null(CS_FAIL, "mnyfuncs.cpp", [&] { return operation.published(p[0], p[1], p[2]); });
      null(NUME_OVERFLOW, "mny4func.cpp", [&] { return operation.internal4(q[0], q[1], q[2]); });
      null(CS_FAIL, "mny4func.cpp", [&] { return operation.published4(q[0], q[1], q[2]); });
    }
  }
  for (auto function : {com__mnycopy, com__mnyminus}) {
    null(NUME_OVERFLOW, "mnyfuncs.cpp", [&] { return function(nullptr, &m); });
    null(NUME_OVERFLOW, "mnyfuncs.cpp", [&] { return function(&m, nullptr); });
  }
  for (auto function : {comn_mnycopy, comn_mnyminus}) {
    null(CS_FAIL, "mnyfuncs.cpp", [&] { return function(nullptr, &m); });
    null(CS_FAIL, "mnyfuncs.cpp", [&] { return function(&m, nullptr); });
  }
  for (auto function : {comn_mny4copy, comn_mny4minus}) {
    null(CS_FAIL, "mny4func.cpp", [&] { return function(nullptr, &m4); });
    null(CS_FAIL, "mny4func.cpp", [&] { return function(&m4, nullptr); });
  }
  for (auto function : {com__mnyinc, com__mnydec})
    null(NUME_OVERFLOW, "mnyfuncs.cpp", [&] { return function(nullptr); });
  for (auto function : {comn_mnyinc, comn_mnydec, comn_mnyzero})
    null(CS_FAIL, "mnyfuncs.cpp", [&] { return function(nullptr); });
  null(CS_FAIL, "mny4func.cpp", [] { return comn_mny4zero(nullptr); });
  null(NUME_OVERFLOW, "mny4func.cpp", [&] { return com__mnyminus4(&m4, nullptr); });
  null(NUME_OVERFLOW, "mnyfuncs.cpp", [] { return com__mnyscale(nullptr, 1, 1); });
  null(CS_FAIL, "mnyfuncs.cpp", [] { return comn_mnyscale(nullptr, 1, 1); });
  null(NUME_OVERFLOW, "mnyfuncs.cpp", [] { return com__mnyshift(nullptr, 1); });
  for (auto function : {com__mnydown, comn_mnydown, com__mnyinit, comn_mnyinit})
    null(0, "mnyfuncs.cpp", [&] { return function(nullptr, 1); });
  for (auto function : {com__mnyndigit, comn_mnyndigit}) {
    null(0, "mnyfuncs.cpp", [&] { return function(nullptr, &digit); });
    null(0, "mnyfuncs.cpp", [&] { return function(&m, nullptr); });
  }
  null(0, "mnyfuncs.cpp", [&] { return comn_mnycmp(nullptr, &m); });
  null(0, "mnyfuncs.cpp", [&] { return comn_mnycmp(&m, nullptr); });
  null(0, "mny4func.cpp", [&] { return comn_mny4cmp(nullptr, &m4); });
  null(0, "mny4func.cpp", [&] { return comn_mny4cmp(&m4, nullptr); });
  for (auto function : {com__maxposmny, com__maxnegmny, comn_mnymaxpos, comn_mnymaxneg})
    null(0, "mnyfuncs.cpp", [&] { return function(nullptr), 0; });
  for (int missing = 0; missing < 3; ++missing) {
    CS_MONEY *p[3] = {&m, &m, &m};
    p[missing] = nullptr;
    null(0, "mnyfuncs.cpp", [&] { return comn_mnyxdiv(p[0], p[1], p[2]), 0; });
  }
  null(0, "mnyfuncs.cpp", [&] { return comn__mny16div(nullptr, 2, &m), 0; });
  null(0, "mnyfuncs.cpp", [&] { return comn__mny16div(&m, 2, nullptr), 0; });
  EXPECT_EQ(count_of(m), 5);
  EXPECT_EQ(m4.mny4, 5);
  EXPECT_EQ(digit, 'x');
}

TEST(MoneyTrace, ExitsAreTraced) {
  CS_MONEY a = money(1), zero = money(0);
  EXPECT_EQ(zrvtest::exit_of(CS_CONV_DIVZERO, [&] { return comn_mnydivide(&a, &zero, &a); }),
            "(-108) file mnyfuncs.cpp");
}
