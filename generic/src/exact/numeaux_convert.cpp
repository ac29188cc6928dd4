// Exact numerics from and to doubles, integers and money.
//
// Doubles and 64-bit integers are those that the text of a value would read as. A double is worked
// out from the integers themselves: the quotient of magnitude and power of ten to 56 bits or more,
// the remainder telling whether anything lies below them, rounded to 53 bits half to even. That is
// the closest double, as a correctly rounding reader of the text delivers it, and no locale has a
// say in it.
#include <algorithm>
#include <bit>
#include <limits>

#include "checks.h"
#include "float_text.h"
#include "number.h"

namespace exact = comn::exact;
using exact::Field;
using exact::Limb;
using exact::Number;

namespace {

constexpr int money_scale = 4;

// The field that a sign byte and `length` bytes in all make.
Field field_at(CS_BYTE *dest, CS_INT length, int digits) noexcept {
  return {dest, length - 1, digits};
}

constexpr Field longest_value{nullptr, exact::value_bytes, Field::any_digits};

// Loads a value as its text would read: false for what no valid value exceeds, and what has no room
// in the text of one. A zero is one at any scale.
bool load_printable(Number &number, const __CONSTANT &value) noexcept {
  return exact::load_number(number, value) &&
         (number.is_zero() || (value.scale <= CS_MAX_SCALE && exact::fits(number, longest_value)));
}

int bit_count(const Limb *limbs, int size) noexcept {
  return size == 0
             ? 0
             : (size - 1) * exact::limb_bits + static_cast<int>(std::bit_width(limbs[size - 1]));
}

void shift_left(Number &number, int bits) noexcept {
  const int whole = bits / exact::limb_bits;
  const Limb top =
      exact::shift_left(number.limbs, number.limbs, number.size, bits % exact::limb_bits);
  if (top != 0)
    number.limbs[number.size++] = top;
  for (int i = number.size - 1; i >= 0; --i)
    number.limbs[i + whole] = number.limbs[i];
  for (int i = 0; i < whole; ++i)
    number.limbs[i] = 0;
  number.size += whole;
}

// 64 bits from `lowest` on; bits below 0 are zeroes.
uint64_t bits_at(const Number &number, int lowest) noexcept {
  uint64_t bits = 0;
  for (int i = 0; i < number.size; ++i) {
    const int place = i * exact::limb_bits - lowest;
    const uint64_t limb = number.limbs[i];
    if (place >= 0 && place < 64)
      bits |= limb << place;
    else if (place < 0 && place > -exact::limb_bits)
      bits |= limb >> -place;
  }
  return bits;
}

bool any_bit_below(const Number &number, int bit) noexcept {
  for (int i = 0; i < number.size && i * exact::limb_bits < bit; ++i) {
    const int left = bit - i * exact::limb_bits;
    const Limb mask = left >= exact::limb_bits ? static_cast<Limb>(-1) : (Limb{1} << left) - 1;
    if ((number.limbs[i] & mask) != 0)
      return true;
  }
  return false;
}

// mantissa * 2^exponent, for exponents of normal doubles.
CS_FLOAT make_double(uint64_t mantissa, int exponent) noexcept {
  constexpr int bias = 1023, mantissa_bits = 52;
  const auto power =
      std::bit_cast<CS_FLOAT>(static_cast<uint64_t>(exponent + bias) << mantissa_bits);
  return static_cast<CS_FLOAT>(mantissa) * power;
}

// number / 10^scale, number not zero, scale 0 to 77; `number` is used up.
CS_FLOAT closest_double(Number &number, int scale) noexcept {
  constexpr int enough_bits = 56;
  const exact::Power &power = exact::power_of_ten(scale);
  const int shift = std::max(0, enough_bits + bit_count(power.limbs, power.size) -
                                    bit_count(number.limbs, number.size));
  shift_left(number, shift);
  const bool whole = exact::divide_by_power(number, scale);
  const int lowest = bit_count(number.limbs, number.size) - 64;
  const uint64_t top = bits_at(number, lowest);
  const bool more = !whole || any_bit_below(number, lowest);
  constexpr int below = 64 - std::numeric_limits<CS_FLOAT>::digits;
  constexpr uint64_t half = uint64_t{1} << (below - 1);
  uint64_t mantissa = top >> below;
  const uint64_t rest = top & (2 * half - 1);
  if (rest > half || (rest == half && (more || (mantissa & 1) != 0)))
    ++mantissa;
  return make_double(mantissa, lowest + below - shift);
}

int integer_to_numeric(uint64_t magnitude, bool negative, CS_BYTE *dest, CS_INT destlen,
                       CS_BYTE *precision, CS_BYTE *scale) noexcept {
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  COMN_CHECK_PTR(precision, NUME_OVERFLOW);
  COMN_CHECK_PTR(scale, NUME_OVERFLOW);
  if (destlen < 2 || (exact::is_automatic(*precision) && !exact::is_length(destlen)))
    return NUME_OVERFLOW;
  if (exact::is_automatic(*precision)) {
    *precision = own_Com__Nume_Len_To_Prec[destlen - 2];
    *scale = 0;
  }
  const Field field = field_at(dest, destlen, *precision);
  Number number;
  exact::set_number(number, magnitude);
  // Deliberate: a value that is too long, or cannot be shifted, is left without its sign.
  int status = exact::store_number(field.with_any_digits(), number, false);
  if (status == NUME_OK)
    status = exact::shift_number(number, *scale, field);
  return status == NUME_OK ? exact::store_number(field, number, negative) : status;
}

template <class Integer>
int signed_to_numeric(Integer value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                      CS_BYTE *scale) noexcept {
  const bool negative = value < 0;
  const auto bits = static_cast<uint64_t>(value);
  return integer_to_numeric(negative ? 0 - bits : bits, negative, dest, destlen, precision, scale);
}

// The integer part of a printable value; false when it exceeds 64 bits.
bool integer_part(Number &number, int scale, uint64_t &part) noexcept {
  if (number.size != 0)
    exact::divide_by_power(number, scale);
  part = bits_at(number, 0);
  return exact::fits(number, {nullptr, sizeof part, Field::any_digits});
}

} // namespace

int com__subexctnumetoflt8(__CONSTANT *numeval, CS_FLOAT *dest) noexcept {
  COMN_CHECK_PTR(numeval, NUME_OVERFLOW);
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  if (numeval->len == 0)
    return NUME_OK;
  Number number;
  if (!load_printable(number, *numeval))
    return NUME_OVERFLOW;
  if (number.size == 0) {
    *dest = 0.0;
    return NUME_OK;
  }
  const CS_FLOAT magnitude = closest_double(number, numeval->scale);
  *dest = exact::is_negative(*numeval) ? -magnitude : magnitude;
  return NUME_OK;
}

int com__doubletoexctnume(CS_FLOAT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                          CS_BYTE *scale) noexcept {
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  COMN_CHECK_PTR(precision, NUME_OVERFLOW);
  COMN_CHECK_PTR(scale, NUME_OVERFLOW);
  if (!exact::is_length(destlen))
    return NUME_OVERFLOW;
  if (exact::is_automatic(*precision)) {
    *precision = own_Com__Nume_Len_To_Prec[destlen - 2];
    *scale = 0;
  }
  CS_CHAR text[comn::longest_double + 1];
  const CS_INT length = comn::print_double(text, value == 0.0 ? 0.0 : value);
  return com__subchartoexctnume(text, length, &dest, &destlen, precision, scale, 1);
}

int com__longtoexctnume(CS_INT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                        CS_BYTE *scale) noexcept {
  return signed_to_numeric<CS_BIGINT>(value, dest, destlen, precision, scale);
}

int com__longlongtoexctnume(CS_BIGINT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                            CS_BYTE *scale) noexcept {
  return signed_to_numeric(value, dest, destlen, precision, scale);
}

int com__ulongtoexctnume(CS_UINT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                         CS_BYTE *scale) noexcept {
  return integer_to_numeric(value, false, dest, destlen, precision, scale);
}

int com__ulonglongtoexctnume(CS_UBIGINT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                             CS_BYTE *scale) noexcept {
  return integer_to_numeric(value, false, dest, destlen, precision, scale);
}

int com__subexctnumetolonglong(__CONSTANT *numeval, CS_BIGINT *dest) noexcept {
  COMN_CHECK_PTR(numeval, NUME_OVERFLOW);
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  using Bounds = std::numeric_limits<CS_BIGINT>;
  if (numeval->len == 0)
    return NUME_OK;
  Number number;
  if (!load_printable(number, *numeval))
    return NUME_OVERFLOW;
  const bool negative = exact::is_negative(*numeval);
  uint64_t part;
  const bool fits = integer_part(number, numeval->scale, part);
  if (!fits || part > static_cast<uint64_t>(Bounds::max()) + negative) {
    *dest = negative ? Bounds::min() : Bounds::max();
    return negative ? NUME_UNDERFLOW : NUME_OVERFLOW;
  }
  *dest = static_cast<CS_BIGINT>(negative ? 0 - part : part);
  return NUME_OK;
}

int com__subexctnumetoulonglong(__CONSTANT *numeval, CS_UBIGINT *dest) noexcept {
  COMN_CHECK_PTR(numeval, NUME_OVERFLOW);
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  if (numeval->len == 0)
    return NUME_OK;
  Number number;
  if (!load_printable(number, *numeval))
    return NUME_OVERFLOW;
  if (exact::is_negative(*numeval) && number.size != 0) {
    *dest = 0;
    return NUME_UNDERFLOW;
  }
  uint64_t part;
  if (!integer_part(number, numeval->scale, part)) {
    *dest = std::numeric_limits<CS_UBIGINT>::max();
    return NUME_OVERFLOW;
  }
  *dest = part;
  return NUME_OK;
}

int com__exctnumetomny8(__CONSTANT *numeval, CS_MONEY *dest) noexcept {
  constexpr int success = 1, overflow = 0;
  COMN_CHECK_PTR(numeval, overflow);
  COMN_CHECK_PTR(dest, overflow);
  Number number;
  if (!exact::load_number(number, *numeval))
    return overflow;
  const int shift = money_scale - numeval->scale;
  const Field field{nullptr, sizeof(CS_MONEY), Field::any_digits};
  if (shift < 0)
    exact::round_number(number, -shift);
  else if (exact::shift_number(number, shift, field) != NUME_OK)
    return overflow;
  const bool negative = exact::is_negative(*numeval) && !number.is_zero();
  uint64_t count = bits_at(number, 0);
  constexpr auto largest = static_cast<uint64_t>(std::numeric_limits<CS_BIGINT>::max());
  if (!exact::fits(number, field) || count > largest + negative)
    return overflow;
  if (negative)
    count = 0 - count;
  dest->mnyhigh = static_cast<CS_INT>(count >> 32);
  dest->mnylow = static_cast<CS_UINT>(count);
  return success;
}

int com__mny8toexctnume(CS_MONEY *mp, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                        CS_BYTE *scale, int) noexcept {
  COMN_CHECK_PTR(mp, NUME_OVERFLOW);
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  COMN_CHECK_PTR(precision, NUME_OVERFLOW);
  COMN_CHECK_PTR(scale, NUME_OVERFLOW);
  if (destlen < 2 || (exact::is_automatic(*precision) && !exact::is_length(destlen)))
    return NUME_OVERFLOW;
  if (exact::is_automatic(*precision))
    *precision = own_Com__Nume_Len_To_Prec[destlen - 2];
  if (*scale > CS_MAX_SCALE)
    *scale = 0;
  const bool negative = mp->mnyhigh < 0;
  uint64_t count = static_cast<uint64_t>(static_cast<CS_UINT>(mp->mnyhigh)) << 32 | mp->mnylow;
  if (negative)
    count = 0 - count;
  Number number;
  exact::set_number(number, count);
  const int shift = *scale - money_scale;
  // Deliberate: a shorter destination counts as nine bytes in the shift, as money has.
  constexpr CS_INT money_length = 1 + sizeof(CS_MONEY);
  const Field work = field_at(nullptr, std::max(destlen, money_length), *precision);
  if (shift < 0)
    exact::round_number(number, -shift);
  else if (exact::shift_number(number, shift, work) != NUME_OK)
    return NUME_OVERFLOW;
  return exact::store_number(field_at(dest, destlen, *precision), number, negative);
}
