// Numbers in the hands of the exact layer: loaded from a descriptor or from a CS_NUMERIC, shifted
// by decimal digits, stored again.
#ifndef COMN_EXACT_NUMBER_H
#define COMN_EXACT_NUMBER_H

#include "limbs.h"
#include "numeric.h"

namespace comn::exact {

// The longest magnitude that an operation takes, leading zeroes not counted: half as much again as
// the longest value. A longer one is NUME_OVERFLOW.
constexpr int operand_bytes = 48;
constexpr int operand_limbs = limbs_for(operand_bytes);
// Room for the product of two operands, or of an operand and a power of ten.
constexpr int number_limbs = 2 * operand_limbs;

struct Number {
  Limb limbs[number_limbs];
  int size; // trimmed: 0 for zero
};

inline void set_number(Number &number, uint64_t value) noexcept {
  number.limbs[0] = static_cast<Limb>(value);
  number.size = 1;
  if constexpr (limb_bits < 64) {
    number.limbs[1] = static_cast<Limb>(value >> 32);
    number.size = 2;
  }
  number.size = trim(number.limbs, number.size);
}

constexpr bool is_valid(CS_INT precision, CS_INT scale) noexcept {
  return precision >= CS_MIN_PREC && precision <= CS_MAX_PREC && scale <= CS_MAX_SCALE;
}

inline bool is_valid(const CS_NUMERIC &value) noexcept {
  return is_valid(value.precision, value.scale);
}

// The magnitude bytes of a valid precision.
inline int magnitude_bytes(int precision) noexcept {
  return Com__Nume_Prec_To_Len[precision] - 1;
}

// ---- values of the published layout ----

// The three bytes in front of a magnitude: precision, scale and sign.
constexpr int header_bytes = offsetof(CS_NUMERIC, array) + 1;

// Loads a magnitude of `size` limbs, not trimmed, from a value with so many bytes of it.
//
// Limbs are read straight from the value, aligned with its end; the top one reaches into the
// header, at most, and is masked. So no byte outside the meaningful part is read, and a value that
// was stored the same way is read with the words that wrote it: building the top word byte by byte
// in a buffer would stall on its own stores for longer than an addition takes.
[[gnu::always_inline]] inline void load_limbs(Limb *limbs, int size, const CS_NUMERIC &value,
                                              int bytes) noexcept {
  static_assert(header_bytes == 3);
  const auto *end = reinterpret_cast<const CS_BYTE *>(&value) + header_bytes + bytes;
#pragma GCC unroll 8
  for (int i = 0; i < size - 1; ++i)
    limbs[i] = load_limb(end - (i + 1) * limb_bytes);
  end -= (size - 1) * limb_bytes;
  const int top = bytes - (size - 1) * limb_bytes;
  if (limb_bytes == 4 || top <= 4)
    limbs[size - 1] = load_be32(end - 4) & UINT32_MAX >> (32 - 8 * top);
  else
    limbs[size - 1] = static_cast<Limb>(load_be64(end - 8) & UINT64_MAX >> (64 - 8 * top));
}

// The same for any size, which it returns.
inline int load_value(Limb *limbs, const CS_NUMERIC &value, int bytes) noexcept {
  const int size = limbs_for(bytes);
  load_limbs(limbs, size, value, bytes);
  return size;
}

// Stores a value whose magnitude fits `bytes`; limbs_for(bytes) limbs are read.
inline void store_value(CS_NUMERIC &value, int precision, int scale, bool negative,
                        const Limb *limbs, int bytes) noexcept {
  const int size = limbs_for(bytes);
  auto *const start = reinterpret_cast<CS_BYTE *>(&value);
  value.precision = static_cast<CS_BYTE>(precision);
  value.scale = static_cast<CS_BYTE>(scale);
  value.array[0] = negative;
  const uint64_t header = static_cast<uint64_t>(value.precision) << 16 |
                          static_cast<uint64_t>(value.scale) << 8 | static_cast<uint64_t>(negative);
  CS_BYTE *end = start + header_bytes + bytes;
  for (int i = 0; i < size - 1; ++i) {
    end -= limb_bytes;
    store_limb(end, limbs[i]);
  }
  const int top = bytes - (size - 1) * limb_bytes;
  const uint64_t word = (top < 8 ? header << 8 * top : 0) | limbs[size - 1];
  if (limb_bytes == 4 || top <= 4)
    store_be32(end - 4, static_cast<uint32_t>(word));
  else
    store_be64(end - 8, word);
}

// ---- descriptors ----

inline bool is_negative(const __CONSTANT &value) noexcept {
  return value.len > 0 && value.value[0] != 0;
}

// The magnitude bytes of a value: none for any length below 2, however far below.
inline CS_INT magnitude_length(const __CONSTANT &value) noexcept {
  return value.len > 1 ? value.len - 1 : 0;
}

// Loads a magnitude of any length; false when it has more than operand_bytes.
inline bool load_number(Number &number, const __CONSTANT &from) noexcept {
  number.size = 0;
  if (from.len <= 1)
    return true;
  int bytes = from.len - 1;
  const CS_BYTE *magnitude = from.value + 1;
  for (; bytes > operand_bytes; --bytes)
    if (*magnitude++ != 0)
      return false;
  number.size = trim(number.limbs, load_bytes(number.limbs, magnitude, bytes));
  return true;
}

inline bool fits(const Number &number, int bytes) noexcept {
  return byte_count(number.limbs, number.size) <= bytes;
}

// Stores sign and magnitude, right-aligned; a zero has no sign. NUME_OVERFLOW when leading bytes
// were dropped.
inline int store_number(__CONSTANT &to, const Number &number, bool negative) noexcept {
  if (to.len > 0) {
    to.value[0] = negative && number.size != 0;
    store_bytes(to.value + 1, to.len - 1, number.limbs, number.size);
  }
  return fits(number, magnitude_length(to)) ? NUME_OK : NUME_OVERFLOW;
}

// ---- decimal shifts ----

// number * 10^exponent, exponent 0 to 77, for a number of at most operand_limbs.
inline void multiply_by_power(Number &number, int exponent) noexcept {
  const Power &power = power_of_ten(exponent);
  if (power.size == 1) {
    const Limb carry = multiply_add(number.limbs, number.size, power.limbs[0], 0);
    if (carry != 0)
      number.limbs[number.size++] = carry;
    return;
  }
  Limb copy[operand_limbs];
  for (int i = 0; i < number.size; ++i)
    copy[i] = number.limbs[i];
  number.size = multiply(number.limbs, copy, number.size, power.limbs, power.size);
}

// number / 10^exponent, exponent 0 to 77; false when digits other than 0 were dropped.
inline bool divide_by_power(Number &number, int exponent) noexcept {
  const Power &power = power_of_ten(exponent);
  if (power.size == 1) {
    const Limb remainder = divide_limb(number.limbs, number.size, power.limbs[0]);
    number.size = trim(number.limbs, number.size);
    return remainder == 0;
  }
  Limb remainder[number_limbs + 1];
  const Sizes sizes = divide<value_limbs>(number.limbs, remainder, number.limbs, number.size,
                                          power.limbs, power.size);
  number.size = sizes.quotient;
  return sizes.remainder == 0;
}

// Adds one.
inline void increment(Number &number) noexcept {
  int i = 0;
  while (i < number.size && ++number.limbs[i] == 0)
    ++i;
  if (i == number.size)
    number.limbs[number.size++] = 1;
}

// Drops `digits` digits and adds one if the first digit dropped is above 4. The others do not
// count.
inline void round_number(Number &number, int digits) noexcept {
  if (digits <= 0)
    return;
  for (--digits; digits > max_power; digits -= max_power)
    divide_by_power(number, max_power);
  divide_by_power(number, digits);
  const Limb digit = divide_limb(number.limbs, number.size, 10);
  number.size = trim(number.limbs, number.size);
  if (digit > 4)
    increment(number);
}

// Shifts a number for a field of `bytes` bytes and so many digits as `precision` says. A shift down
// must meet the precision as well, which is why a number that fits neither way is an overflow even
// if digits were dropped.
inline int shift_number(Number &number, int shift, int bytes, int precision) noexcept {
  if (shift > max_power || shift < -max_power)
    return NUME_SYNTAX;
  if (shift > 0) {
    if (number.size > operand_limbs)
      return NUME_OVERFLOW;
    multiply_by_power(number, shift);
    return fits(number, bytes) ? NUME_OK : NUME_OVERFLOW;
  }
  const bool exact = divide_by_power(number, -shift);
  if (!fits(number, bytes) || reaches_power(number.limbs, number.size, precision))
    return NUME_OVERFLOW;
  return exact ? NUME_OK : NUME_TRUNCATED;
}

} // namespace comn::exact

#endif
