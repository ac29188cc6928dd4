// Numbers in the hands of the exact layer: loaded from a CS_NUMERIC or a descriptor, shifted by
// decimal digits, stored again. Whatever is stored goes through one function, and whether it fits
// is one question (Field).
#ifndef COMN_EXACT_NUMBER_H
#define COMN_EXACT_NUMBER_H

#include <algorithm>

#include "limbs.h"
#include "numeric.h"
#include "table.h"

COMN_DECLARE_TABLE(Com__Nume_Prec_To_Len);
COMN_DECLARE_TABLE(Com__Nume_Len_To_Prec);
COMN_DECLARE_TABLE(Com__Nume_Byte_Power_Array);

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

  bool is_zero() const noexcept { return size == 0; }
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

inline void copy_number(Number &to, const Number &from) noexcept {
  std::copy_n(from.limbs, from.size, to.limbs);
  to.size = from.size;
}

inline int compare(const Number &a, const Number &b) noexcept {
  return compare(a.limbs, a.size, b.limbs, b.size);
}

inline void multiply(Number &product, const Number &a, const Number &b) noexcept {
  product.size = multiply(product.limbs, a.limbs, a.size, b.limbs, b.size);
}

// Adds one.
inline void increment(Number &number) noexcept {
  int i = 0;
  while (i < number.size && ++number.limbs[i] == 0)
    ++i;
  if (i == number.size)
    number.limbs[number.size++] = 1;
}

// ---- shapes ----

constexpr bool is_precision(CS_INT precision) noexcept {
  return precision >= CS_MIN_PREC && precision <= CS_MAX_PREC;
}

constexpr bool is_valid(CS_INT precision, CS_INT scale) noexcept {
  return is_precision(precision) && scale <= CS_MAX_SCALE;
}

inline bool is_valid(const CS_NUMERIC &value) noexcept {
  return is_valid(value.precision, value.scale);
}

// A precision that asks for one to be chosen.
constexpr bool is_automatic(CS_BYTE precision) noexcept {
  return !is_precision(precision);
}

// A length that has a precision in Com__Nume_Len_To_Prec, be it the one that is no limit.
constexpr bool is_length(CS_INT length) noexcept {
  return length >= 2 && length - 2 < static_cast<CS_INT>(sizeof own_Com__Nume_Len_To_Prec);
}

// The magnitude bytes of a valid precision.
inline int magnitude_bytes(int precision) noexcept {
  return own_Com__Nume_Prec_To_Len[precision] - 1;
}

// The magnitude bytes of a descriptor: none for any length below 2, however far below.
inline CS_INT magnitude_bytes(const __CONSTANT &value) noexcept {
  return value.len > 1 ? value.len - 1 : 0;
}

inline bool is_negative(const __CONSTANT &value) noexcept {
  return value.len > 0 && value.value[0] != 0;
}

// A limb of the magnitude, the least significant one is 0; zero above the last.
inline Limb limb_at(const __CONSTANT &value, CS_INT index) noexcept {
  const CS_INT bytes = magnitude_bytes(value) - index * limb_bytes;
  return bytes > 0 ? load_limb(value.value + 1 + bytes, bytes) : 0;
}

// A descriptor of a value of valid precision.
inline __CONSTANT describe(const CS_NUMERIC &value) noexcept {
  __CONSTANT result{};
  result.len = own_Com__Nume_Prec_To_Len[value.precision];
  result.prec = value.precision;
  result.scale = value.scale;
  result.value = const_cast<CS_BYTE *>(value.array);
  return result;
}

// ---- operands ----

// A value taken apart. Operations use up the magnitude.
struct Operand {
  Number magnitude;
  int length; // in bytes, with the sign
  int precision, scale;
  bool negative;
};

// Loads a magnitude of at most operand_bytes.
inline void load_magnitude(Number &number, const CS_BYTE *magnitude, int bytes) noexcept {
  const int size = limbs_for(bytes);
  const CS_BYTE *end = magnitude + bytes;
  for (int i = 0; i < size; ++i, end -= limb_bytes, bytes -= limb_bytes)
    number.limbs[i] = load_limb(end, bytes);
  number.size = trim(number.limbs, size);
}

inline void load_operand(Operand &operand, const CS_NUMERIC &value) noexcept {
  Number &magnitude = operand.magnitude;
  operand.length = own_Com__Nume_Prec_To_Len[value.precision];
  operand.precision = value.precision;
  operand.scale = value.scale;
  operand.negative = value.array[0] != 0;
  load_magnitude(magnitude, value.array + 1, operand.length - 1);
}

// Loads a magnitude of any length; false when it has more than operand_bytes.
inline bool load_number(Number &number, const __CONSTANT &from) noexcept {
  int bytes = magnitude_bytes(from);
  number.size = 0;
  if (bytes == 0)
    return true;
  for (; bytes > operand_bytes; --bytes)
    if (from.value[from.len - bytes] != 0)
      return false;
  load_magnitude(number, from.value + from.len - bytes, bytes);
  return true;
}

inline bool load_operand(Operand &operand, const __CONSTANT &value) noexcept {
  operand.length = std::max(value.len, 0);
  operand.precision = value.prec;
  operand.scale = value.scale;
  operand.negative = is_negative(value);
  return load_number(operand.magnitude, value);
}

// ---- fields ----

// Where a number goes, and what fits there: a number of so many bytes at most, and of so many
// digits at most. The bytes of a valid value have room for all its digits.
struct Field {
  CS_BYTE *array; // the sign byte, the magnitude behind it; null without any byte
  int bytes;      // of the magnitude
  int digits;     // above 77 they are no limit

  static constexpr int any_digits = max_power + 1;
  Field with_any_digits() const noexcept { return {array, bytes, any_digits}; }
};

inline Field field_of(CS_NUMERIC &value) noexcept {
  return {value.array, magnitude_bytes(value.precision), value.precision};
}

inline Field field_of(const __CONSTANT &value) noexcept {
  return {value.len > 0 ? value.value : nullptr, magnitude_bytes(value), value.prec};
}

inline bool fits(const Number &number, const Field &field) noexcept {
  if (byte_count(number.limbs, number.size) > field.bytes)
    return false;
  if (field.digits > max_power)
    return true;
  const Power &power = power_of_ten(field.digits);
  return compare(number.limbs, number.size, power.limbs, power.size) < 0;
}

// Stores sign and magnitude, right-aligned; a zero has no sign. NUME_OVERFLOW for a number that does
// not fit, of which the low bytes are stored.
inline int store_number(const Field &field, const Number &number, bool negative) noexcept {
  if (field.array != nullptr) {
    negative = negative && !number.is_zero();
    field.array[0] = negative;
    CS_BYTE *end = field.array + 1 + field.bytes;
    int bytes = field.bytes;
    for (int i = 0; bytes > 0; ++i, end -= limb_bytes, bytes -= limb_bytes)
      store_limb(end, bytes, i < number.size ? number.limbs[i] : 0, negative);
  }
  return fits(number, field) ? NUME_OK : NUME_OVERFLOW;
}

// ---- decimal shifts ----

// product = number * 10^exponent, exponent 0 to 77, for a number of at most operand_limbs.
inline void multiply_by_power(Number &product, const Number &number, int exponent) noexcept {
  const Power &power = power_of_ten(exponent);
  product.size = multiply(product.limbs, number.limbs, number.size, power.limbs, power.size);
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

// Drops `digits` digits and adds one if the first of them is above 4; the others do not count. All
// but that one are divided away, then it is the remainder of a division by ten.
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

// Shifts a number that goes to a field. NUME_OVERFLOW when it does not fit there, NUME_SYNTAX for 78
// digits or more: the number is as it was then. NUME_TRUNCATED when digits other than 0 were
// dropped. Deliberate: a shift down must meet the digits of the field as well, one up the bytes
// alone; so a number that fits neither way is an overflow even if digits were dropped.
inline int shift_number(Number &number, int shift, const Field &field) noexcept {
  if (shift == 0)
    return NUME_OK;
  if (shift > max_power || shift < -max_power)
    return NUME_SYNTAX;
  Number shifted;
  if (shift > 0) {
    if (number.size > operand_limbs)
      return NUME_OVERFLOW;
    multiply_by_power(shifted, number, shift);
    if (!fits(shifted, field.with_any_digits()))
      return NUME_OVERFLOW;
    copy_number(number, shifted);
    return NUME_OK;
  }
  copy_number(shifted, number);
  const bool exact = divide_by_power(shifted, -shift);
  if (!fits(shifted, field))
    return NUME_OVERFLOW;
  copy_number(number, shifted);
  return exact ? NUME_OK : NUME_TRUNCATED;
}

} // namespace comn::exact

#endif
