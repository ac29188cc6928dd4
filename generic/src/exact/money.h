// Money as one count of ten-thousandths: read from and written to its words at any address, and the
// operations that both sizes share.
#ifndef COMN_EXACT_MONEY_H
#define COMN_EXACT_MONEY_H

#include <limits>

#include "any_address.h"
#include "checks.h"
#include "number.h"
#include "status.h"
#include "table.h"

namespace comn::exact {

constexpr int64_t money_unit = 10000;
constexpr int money_decimals = 4;
// The magnitude of the smallest value, which no other value reaches.
constexpr uint64_t money_limit = uint64_t{1} << 63;

// By the number of decimals: what makes ten-thousandths of a number.
using ScaleTable = Table<CS_INT, money_decimals + 1>;
constexpr ScaleTable scales{{10000, 1000, 100, 10, 1}};

// The count of a size of money: the high word of CS_MONEY comes first, so its two words are no
// 64-bit integer of this machine.
inline int64_t load_count(const CS_MONEY *money) noexcept {
  const auto words = load<CS_MONEY>(money);
  return static_cast<int64_t>(words.mnyhigh) << 32 | words.mnylow;
}

inline int32_t load_count(const CS_MONEY4 *money) noexcept {
  return load<CS_MONEY4>(money).mny4;
}

inline void store_count(CS_MONEY *money, int64_t count) noexcept {
  store(money, CS_MONEY{static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)});
}

inline void store_count(CS_MONEY4 *money, int32_t count) noexcept {
  store(money, CS_MONEY4{count});
}

inline uint64_t magnitude_of(int64_t count) noexcept {
  const auto bits = static_cast<uint64_t>(count);
  return count < 0 ? 0 - bits : bits;
}

// A magnitude of at most money_limit, which stands for the smallest value whatever the sign.
inline int64_t count_of(uint64_t magnitude, bool negative) noexcept {
  return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

// ---- operations on counts ----

struct CountResult {
  int64_t count; // 0 unless the status is NUME_OK
  int status;
};

// A magnitude as a count, if there is one.
inline CountResult limited_count(const Limb *limbs, int size, bool negative) noexcept {
  uint64_t magnitude = 0;
  for (int i = trim(limbs, size); i > 0; --i) {
    if (i * limb_bits > 64)
      return {0, NUME_OVERFLOW};
    magnitude |= static_cast<uint64_t>(limbs[i - 1]) << (i - 1) * limb_bits;
  }
  if (magnitude >= money_limit + negative)
    return {0, NUME_OVERFLOW};
  return {count_of(magnitude, negative), NUME_OK};
}

// Limbs of a count, of a product of two and of one multiplied by the unit.
constexpr int count_limbs = limbs_for(sizeof(CS_MONEY));

struct CountLimbs {
  explicit CountLimbs(uint64_t magnitude) noexcept {
    for (int i = 0; i < count_limbs; ++i)
      limbs[i] = static_cast<Limb>(magnitude >> i * limb_bits);
  }
  Limb limbs[count_limbs];
};

// The product, rounded to the fourth decimal, half away from zero: 8 decimals lose 4.
inline CountResult multiply(int64_t a, int64_t b) noexcept {
  constexpr Limb half = money_unit / 2;
  const CountLimbs left(magnitude_of(a)), right(magnitude_of(b));
  Limb product[2 * count_limbs] = {};
  multiply(product, left.limbs, count_limbs, right.limbs, count_limbs);
  // Both magnitudes are at most 2 to the 63, so the half does not carry out of the top.
  multiply_add(product, 2 * count_limbs, 1, half);
  divide_limb(product, 2 * count_limbs, money_unit);
  return limited_count(product, 2 * count_limbs, (a < 0) != (b < 0));
}

// The quotient, truncated toward zero at the fourth decimal. Deliberate: only products round.
inline CountResult divide(int64_t a, int64_t b) noexcept {
  if (b == 0)
    return {0, NUME_DIVZERO};
  constexpr int size = count_limbs + 1;
  const CountLimbs left(magnitude_of(a)), right(magnitude_of(b));
  Limb dividend[size], quotient[size] = {}, remainder[size + 1];
  std::copy_n(left.limbs, count_limbs, dividend);
  dividend[count_limbs] = multiply_add(dividend, count_limbs, money_unit, 0);
  const Sizes sizes = divide<size>(quotient, remainder, dividend, trim(dividend, size), right.limbs,
                                   trim(right.limbs, count_limbs));
  return limited_count(quotient, sizes.quotient, (a < 0) != (b < 0));
}

// ---- operations on values ----

// Deliberate: a sum that does not fit is zero, where increments wrap and narrowing saturates.
template <class Money>
int add(const Money *a, const Money *b, Money *sum) noexcept {
  decltype(load_count(sum)) count;
  const bool overflows = __builtin_add_overflow(load_count(a), load_count(b), &count);
  store_count(sum, overflows ? 0 : count);
  return overflows ? NUME_OVERFLOW : NUME_OK;
}

template <class Money>
int subtract(const Money *a, const Money *b, Money *difference) noexcept {
  decltype(load_count(difference)) count;
  const bool overflows = __builtin_sub_overflow(load_count(a), load_count(b), &count);
  store_count(difference, overflows ? 0 : count);
  return overflows ? NUME_OVERFLOW : NUME_OK;
}

template <class Money>
int compare(const Money *a, const Money *b) noexcept {
  const auto left = load_count(a), right = load_count(b);
  return (left > right) - (left < right);
}

// Stores a result in a size of money; what does not fit becomes zero.
template <class Money>
int store_result(Money *money, const CountResult &result) noexcept {
  const auto count = static_cast<decltype(load_count(money))>(result.count);
  const bool fits = count == result.count;
  store_count(money, fits ? count : 0);
  return fits ? result.status : NUME_OVERFLOW;
}

template <class Money>
int multiply_values(const Money *a, const Money *b, Money *product) noexcept {
  return store_result(product, multiply(load_count(a), load_count(b)));
}

template <class Money>
int divide_values(const Money *a, const Money *b, Money *quotient) noexcept {
  return store_result(quotient, divide(load_count(a), load_count(b)));
}

// Of a CS_MONEY to the size of a CS_MONEY4: false when the count does not fit, and the nearest one
// then.
inline bool narrow(int64_t count, int32_t &narrowed) noexcept {
  using Limits = std::numeric_limits<int32_t>;
  narrowed = static_cast<int32_t>(std::clamp<int64_t>(count, Limits::min(), Limits::max()));
  return narrowed == count;
}

// ---- interfaces ----

// Run an operation whose pointers must not be null: the internal one with its status, and the
// public one with the code of it.
template <auto Operation, class Where, class... Values>
int run_internal(Where where, Values *...values) noexcept {
  if ((!values || ...)) [[unlikely]] {
    raise_null(where);
    return NUME_OVERFLOW;
  }
  return Operation(values...);
}

template <auto Operation, class Where, class... Values>
CS_RETCODE run_public(Where where, Values *...values) noexcept {
  if ((!values || ...)) [[unlikely]]
    return raise_null(where);
  return result_code(Operation(values...));
}

} // namespace comn::exact

#endif
