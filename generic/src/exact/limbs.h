// Natural numbers of a few machine words, least significant word ("limb") first: the arithmetic
// under the exact numerics, whose values are big-endian base-256 magnitudes.
//
// Working in base 2^64 or 2^32 in place of base 256 gives the same numbers: both are the same
// integer in positional notation, and every operation here is exact on integers, with the bounds
// (what fits how many bytes) tested on the result as a whole.
#ifndef COMN_EXACT_LIMBS_H
#define COMN_EXACT_LIMBS_H

#include <bit>
#include <cstdint>
#include <cstring>

#include "any_address.h"
#include "cspublic.h"
#include "table.h"

namespace comn::exact {

// The word of the data model, and one twice as wide for products.
#ifdef __SIZEOF_INT128__
using Limb = uint64_t;
using WideLimb = unsigned __int128;
#else
using Limb = uint32_t;
using WideLimb = uint64_t;
#endif

constexpr int limb_bytes = sizeof(Limb);
constexpr int limb_bits = limb_bytes * 8;
// Decimal digits that always fit a limb.
constexpr int limb_digits = limb_bytes == 8 ? 19 : 9;

// The magnitude of the longest value.
constexpr int value_bytes = sizeof(CS_NUMERIC::array) - 1;
constexpr int value_limbs = value_bytes / limb_bytes;

constexpr int limbs_for(int bytes) noexcept {
  return (bytes + limb_bytes - 1) / limb_bytes;
}

// ---- bytes ----

template <class Word>
constexpr Word swap_bytes(Word word) noexcept {
  if constexpr (sizeof word == 8)
    return __builtin_bswap64(word);
  else if constexpr (sizeof word == 4)
    return __builtin_bswap32(word);
  else
    return __builtin_bswap16(word);
}

template <class Word>
Word load_big_endian(const CS_BYTE *bytes) noexcept {
  return swap_bytes(load<Word>(bytes));
}

template <class Word>
void store_big_endian(CS_BYTE *bytes, Limb word) noexcept {
  store(bytes, swap_bytes(static_cast<Word>(word)));
}

// The top bytes of a magnitude, fewer than a limb has, are read and written in words of two and four
// bytes, or one of eight; where their number is odd, the sign byte in front of them belongs to the
// first word.
constexpr int width_with_sign(int bytes) noexcept {
  return bytes + (bytes & 1);
}

[[gnu::always_inline]] inline Limb load_top(const CS_BYTE *end, int bytes) noexcept {
  const int width = width_with_sign(bytes);
  end -= width;
  Limb top = 0;
  if (limb_bytes == 8 && width == 8) {
    top = load_big_endian<Limb>(end);
  } else {
    if ((width & 4) != 0) {
      top = load_big_endian<uint32_t>(end);
      end += 4;
    }
    if ((width & 2) != 0)
      top = top << 16 | load_big_endian<uint16_t>(end);
  }
  return top & ((Limb{1} << 8 * bytes) - 1);
}

[[gnu::always_inline]] inline void store_top(CS_BYTE *end, int bytes, Limb top,
                                             bool negative) noexcept {
  const int width = width_with_sign(bytes);
  const Limb sign = Limb{1} << 8 * bytes;
  top = (top & (sign - 1)) | (negative ? sign : 0);
  if (limb_bytes == 8 && width == 8) {
    store_big_endian<Limb>(end - 8, top);
    return;
  }
  if ((width & 2) != 0) {
    store_big_endian<uint16_t>(end -= 2, top);
    top >>= 16;
  }
  if ((width & 4) != 0)
    store_big_endian<uint32_t>(end - 4, top);
}

// Reads the limb that ends at `end`, of a magnitude that has `bytes` bytes up to there and a sign
// byte in front of them; zero when none is left. store_limb writes the same words, so a value that
// was just stored is read by the words that wrote it; a word across two of them would have to wait
// until both are in memory.
[[gnu::always_inline]] inline Limb load_limb(const CS_BYTE *end, int bytes) noexcept {
  return bytes >= limb_bytes ? load_big_endian<Limb>(end - limb_bytes)
         : bytes > 0         ? load_top(end, bytes)
                             : 0;
}

[[gnu::always_inline]] inline void store_limb(CS_BYTE *end, int bytes, Limb limb,
                                              bool negative) noexcept {
  if (bytes >= limb_bytes)
    store_big_endian<Limb>(end - limb_bytes, limb);
  else if (bytes > 0)
    store_top(end, bytes, limb, negative);
}

// ---- sizes and comparison ----

inline int trim(const Limb *limbs, int size) noexcept {
  while (size > 0 && limbs[size - 1] == 0)
    --size;
  return size;
}

// The bytes that a trimmed number needs, 0 for zero.
inline int byte_count(const Limb *limbs, int size) noexcept {
  if (size == 0)
    return 0;
  return (size - 1) * limb_bytes + (static_cast<int>(std::bit_width(limbs[size - 1])) + 7) / 8;
}

// Of two trimmed numbers: -1, 0 or 1.
inline int compare(const Limb *a, int a_size, const Limb *b, int b_size) noexcept {
  if (a_size != b_size)
    return a_size < b_size ? -1 : 1;
  for (int i = a_size - 1; i >= 0; --i)
    if (a[i] != b[i])
      return a[i] < b[i] ? -1 : 1;
  return 0;
}

// ---- arithmetic ----

// a + b of equal sizes; the carry out.
inline Limb add(Limb *result, const Limb *a, const Limb *b, int size) noexcept {
  WideLimb carry = 0;
#pragma GCC unroll 8
  for (int i = 0; i < size; ++i) {
    carry += static_cast<WideLimb>(a[i]) + b[i];
    result[i] = static_cast<Limb>(carry);
    carry >>= limb_bits;
  }
  return static_cast<Limb>(carry);
}

// a - b - borrow; the borrow out. A borrow is 0 or 1.
inline Limb subtract_limb(Limb &result, Limb a, Limb b, Limb borrow) noexcept {
  const bool below = __builtin_sub_overflow(a, b, &result);
  return below | __builtin_sub_overflow(result, borrow, &result);
}

// a - b of equal sizes; the borrow out.
inline Limb subtract(Limb *result, const Limb *a, const Limb *b, int size) noexcept {
  Limb borrow = 0;
#pragma GCC unroll 8
  for (int i = 0; i < size; ++i)
    borrow = subtract_limb(result[i], a[i], b[i], borrow);
  return borrow;
}

// a < b, of equal sizes.
inline bool is_below(const Limb *a, const Limb *b, int size) noexcept {
  Limb borrow = 0, difference;
#pragma GCC unroll 8
  for (int i = 0; i < size; ++i)
    borrow = subtract_limb(difference, a[i], b[i], borrow);
  return borrow != 0;
}

// Negates, modulo 2 to the bits of all limbs, where `condition` is 1, and not where it is 0; without
// a branch on it.
inline void negate_if(Limb condition, Limb *limbs, int size) noexcept {
  const Limb mask = 0 - condition;
#pragma GCC unroll 8
  for (int i = 0; i < size; ++i) {
    limbs[i] = (limbs[i] ^ mask) + condition;
    condition &= limbs[i] == 0;
  }
}

// Multiplies by a limb and adds one, in place; the limb that runs out at the top.
constexpr Limb multiply_add(Limb *limbs, int size, Limb factor, Limb addend) noexcept {
  Limb carry = addend;
  for (int i = 0; i < size; ++i) {
    const WideLimb product = static_cast<WideLimb>(limbs[i]) * factor + carry;
    limbs[i] = static_cast<Limb>(product);
    carry = static_cast<Limb>(product >> limb_bits);
  }
  return carry;
}

// a * b into a_size + b_size limbs, apart from a and b; the trimmed size.
inline int multiply(Limb *result, const Limb *a, int a_size, const Limb *b, int b_size) noexcept {
  if (a_size == 0 || b_size == 0)
    return 0;
  Limb carry = 0;
  for (int i = 0; i < a_size; ++i) {
    const WideLimb product = static_cast<WideLimb>(a[i]) * b[0] + carry;
    result[i] = static_cast<Limb>(product);
    carry = static_cast<Limb>(product >> limb_bits);
  }
  result[a_size] = carry;
  for (int j = 1; j < b_size; ++j) {
    carry = 0;
    for (int i = 0; i < a_size; ++i) {
      const WideLimb product = static_cast<WideLimb>(a[i]) * b[j] + result[i + j] + carry;
      result[i + j] = static_cast<Limb>(product);
      carry = static_cast<Limb>(product >> limb_bits);
    }
    result[j + a_size] = carry;
  }
  return trim(result, a_size + b_size);
}

// Divides a two-limb number by a divisor above its high limb.
inline Limb divide_wide(Limb high, Limb low, Limb divisor, Limb &remainder) noexcept {
#if defined(__x86_64__) || defined(__i386__)
  // The compiler would call a library routine: it cannot know that the quotient fits.
  Limb quotient;
  __asm__("div %4" : "=a"(quotient), "=d"(remainder) : "a"(low), "d"(high), "r"(divisor) : "cc");
  return quotient;
#else
  const WideLimb dividend = static_cast<WideLimb>(high) << limb_bits | low;
  remainder = static_cast<Limb>(dividend % divisor);
  return static_cast<Limb>(dividend / divisor);
#endif
}

// Divides by a limb, in place; the remainder.
inline Limb divide_limb(Limb *limbs, int size, Limb divisor) noexcept {
  Limb remainder = 0;
  for (int i = size - 1; i >= 0; --i)
    limbs[i] = divide_wide(remainder, limbs[i], divisor, remainder);
  return remainder;
}

// Shifts left by 0 to limb_bits - 1 bits into result, which may be `limbs`; the bits that run out.
inline Limb shift_left(Limb *result, const Limb *limbs, int size, int bits) noexcept {
  Limb below = 0;
  for (int i = 0; i < size; ++i) {
    const WideLimb wide = static_cast<WideLimb>(limbs[i]) << bits;
    result[i] = static_cast<Limb>(wide) | below;
    below = static_cast<Limb>(wide >> limb_bits);
  }
  return below;
}

inline void shift_right(Limb *limbs, int size, int bits) noexcept {
  if (bits == 0)
    return;
  for (int i = 0; i + 1 < size; ++i)
    limbs[i] = limbs[i] >> bits | limbs[i + 1] << (limb_bits - bits);
  if (size > 0)
    limbs[size - 1] >>= bits;
}

// Knuth's algorithm D. On entry `window` holds the dividend in `size` limbs, shifted left until the
// top bit of the divisor is set, and one limb more at the top; `divisor` is shifted likewise and
// has at least two limbs. Leaves the remainder (shifted) in the low divisor_size limbs of `window`
// and stores size - divisor_size + 1 limbs of quotient.
//
// The trial quotient from the top two limbs of the window is at most two too large, the test
// against the third limb takes all but one of that away, and the last one shows as a borrow, after
// which the divisor is added back once. That holds in any base, so the quotient and the remainder
// are those of the same division byte by byte.
inline void divide_window(Limb *quotient, Limb *window, int size, const Limb *divisor,
                          int divisor_size) noexcept {
  const Limb first = divisor[divisor_size - 1];
  const Limb second = divisor[divisor_size - 2];
  for (int j = size - divisor_size; j >= 0; --j) {
    Limb *const part = window + j;
    const Limb top = part[divisor_size], next = part[divisor_size - 1];
    Limb trial, rest;
    bool settled = false;
    if (top >= first) {
      trial = static_cast<Limb>(-1);
      rest = next + first;
      settled = rest < first;
    } else {
      trial = divide_wide(top, next, first, rest);
    }
    while (!settled && static_cast<WideLimb>(trial) * second >
                           (static_cast<WideLimb>(rest) << limb_bits | part[divisor_size - 2])) {
      --trial;
      rest += first;
      settled = rest < first;
    }
    Limb carry = 0;
    for (int i = 0; i < divisor_size; ++i) {
      const WideLimb product = static_cast<WideLimb>(trial) * divisor[i] + carry;
      const Limb low = static_cast<Limb>(product);
      carry = static_cast<Limb>(product >> limb_bits) + (part[i] < low);
      part[i] -= low;
    }
    const bool borrow = top < carry;
    part[divisor_size] = top - carry;
    if (borrow) [[unlikely]] {
      --trial;
      part[divisor_size] += add(part, part, divisor, divisor_size);
    }
    quotient[j] = trial;
  }
}

// Divides trimmed numbers, the divisor not zero. `remainder` is a work area of dividend_size + 1
// limbs and holds the remainder afterwards; `quotient` gets dividend_size limbs at most, and may be
// the dividend itself. Capacity bounds the size of the divisor.
struct Sizes {
  int quotient, remainder;
};

template <int Capacity>
Sizes divide(Limb *quotient, Limb *remainder, const Limb *dividend, int dividend_size,
             const Limb *divisor, int divisor_size) noexcept {
  if (compare(dividend, dividend_size, divisor, divisor_size) < 0) {
    for (int i = 0; i < dividend_size; ++i)
      remainder[i] = dividend[i];
    return {0, dividend_size};
  }
  if (divisor_size == 1) {
    Limb rest = 0;
    for (int i = dividend_size - 1; i >= 0; --i)
      quotient[i] = divide_wide(rest, dividend[i], divisor[0], rest);
    remainder[0] = rest;
    return {trim(quotient, dividend_size), rest != 0};
  }
  Limb shifted[Capacity];
  const int shift = std::countl_zero(divisor[divisor_size - 1]);
  shift_left(shifted, divisor, divisor_size, shift);
  remainder[dividend_size] = shift_left(remainder, dividend, dividend_size, shift);
  divide_window(quotient, remainder, dividend_size, shifted, divisor_size);
  shift_right(remainder, divisor_size, shift);
  return {trim(quotient, dividend_size - divisor_size + 1), trim(remainder, divisor_size)};
}

// ---- powers of ten ----

constexpr int max_power = CS_MAX_PREC;

struct Power {
  Limb limbs[value_limbs + 1]; // zeroes above the size
  int size;
};

constexpr Table<Power, max_power + 1> powers = [] {
  Table<Power, max_power + 1> table{};
  Power power{{1}, 1};
  for (Power &row : table.rows) {
    row = power;
    const Limb carry = multiply_add(power.limbs, power.size, 10, 0);
    if (carry != 0 && power.size < value_limbs)
      power.limbs[power.size++] = carry;
  }
  return table;
}();

constexpr const Power &power_of_ten(int exponent) noexcept {
  return powers.rows[exponent];
}

// 10^exponent as a limb, exponent 0 to limb_digits.
constexpr Limb limb_power(int exponent) noexcept {
  return power_of_ten(exponent).limbs[0];
}

} // namespace comn::exact

#endif
