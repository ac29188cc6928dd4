// Operations on descriptors beneath the arithmetic: comparison, copying, decimal shifts, and the
// small steps on bytes.
#include "checks.h"
#include "number.h"

namespace exact = comn::exact;
using exact::Field;
using exact::Limb;
using exact::Number;
using exact::Operand;

namespace {

// The magnitude bytes of a value, without the leading zeroes.
struct Significant {
  const CS_BYTE *bytes;
  CS_INT count;

  explicit Significant(const __CONSTANT &from) noexcept {
    // A value without magnitude may have no bytes at all.
    static constexpr CS_BYTE nothing = 0;
    bytes = from.len > 1 ? from.value + 1 : &nothing;
    count = exact::magnitude_bytes(from);
    while (count > 0 && *bytes == 0) {
      ++bytes;
      --count;
    }
  }
};

// Of magnitudes of any length, a limb at a time from the top of the longer one.
int compare_magnitudes(const __CONSTANT &a, const __CONSTANT &b) noexcept {
  const CS_INT longest = std::max(exact::magnitude_bytes(a), exact::magnitude_bytes(b));
  for (CS_INT i = exact::limbs_for(longest) - 1; i >= 0; --i) {
    const Limb left = exact::limb_at(a, i), right = exact::limb_at(b, i);
    if (left != right)
      return left < right ? -1 : 1;
  }
  return 0;
}

// Compares the magnitudes at one scale: where the precision of the operand with the smaller scale
// and the greater scale are at most 77 together, that operand is multiplied.
int compare_scaled(Operand &a, Operand &b) noexcept {
  if (a.scale < b.scale)
    return -compare_scaled(b, a);
  const int shift = a.scale - b.scale;
  if (b.precision + a.scale <= exact::max_power) {
    Number scaled;
    exact::multiply_by_power(scaled, b.magnitude, shift);
    return exact::compare(a.magnitude, scaled);
  }
  // Deliberate: the digits beyond the smaller scale are dropped.
  if (shift <= exact::max_power)
    exact::divide_by_power(a.magnitude, shift);
  else
    a.magnitude.size = 0;
  return exact::compare(a.magnitude, b.magnitude);
}

// Nothing is known of a magnitude that is too long to be brought to another scale.
int compare_at_one_scale(const __CONSTANT &a, const __CONSTANT &b) noexcept {
  Operand left, right;
  if (!exact::load_operand(left, a) || !exact::load_operand(right, b))
    return 0;
  return compare_scaled(left, right);
}

// Adds or takes away one from the magnitude; true when it runs out at the top.
bool step(__CONSTANT &value, bool up) noexcept {
  for (CS_INT i = value.len - 1; i >= 1; --i) {
    value.value[i] = static_cast<CS_BYTE>(value.value[i] + (up ? 1 : -1));
    if (value.value[i] != (up ? 0 : 255))
      return false;
  }
  return true;
}

bool is_zero(const __CONSTANT &value) noexcept {
  return Significant(value).count == 0;
}

// The value minus one, towards zero where it is positive. False when there is no byte for it.
void decrement_positive(__CONSTANT &value) noexcept {
  if (!step(value, false))
    return;
  // The borrow ran off the top of a zero: minus one.
  std::memset(value.value + 1, 0, static_cast<size_t>(value.len - 1));
  value.value[value.len - 1] = 1;
  value.value[0] = 1;
}

} // namespace

int com__exctnume_cmp(__CONSTANT *op1, __CONSTANT *op2, int flag) noexcept {
  COMN_CHECK_PTR(op1, 0);
  COMN_CHECK_PTR(op2, 0);
  const bool with_signs = (flag & NUME_CMP_SIGNS) != 0;
  const bool with_scales = (flag & NUME_CMP_SCALES) != 0;
  const bool negative1 = exact::is_negative(*op1), negative2 = exact::is_negative(*op2);
  // Different signs decide before the scales are brought together, so digits that this would drop
  // count there, also next to a zero with a sign.
  if (with_signs && negative1 != negative2)
    return is_zero(*op1) && is_zero(*op2) ? 0 : negative1 ? -1 : 1;
  const int order = with_scales && op1->scale != op2->scale ? compare_at_one_scale(*op1, *op2)
                                                            : compare_magnitudes(*op1, *op2);
  return with_signs && negative1 ? -order : order;
}

int com__exctnume_intcmp(__CONSTANT *val, int i) noexcept {
  COMN_CHECK_PTR(val, 0);
  const Significant magnitude(*val);
  if (i < 0 || magnitude.count > static_cast<CS_INT>(sizeof i))
    return 0;
  uint32_t number = 0;
  for (CS_INT k = 0; k < magnitude.count; ++k)
    number = number << 8 | magnitude.bytes[k];
  return number == static_cast<uint32_t>(i);
}

int com__exctnume_copy(__CONSTANT *inval, __CONSTANT *outval) noexcept {
  COMN_CHECK_PTR(inval, NUME_OVERFLOW);
  COMN_CHECK_PTR(outval, NUME_OVERFLOW);
  const Significant magnitude(*inval);
  if (outval->len <= 0)
    return magnitude.count > 0 ? NUME_OVERFLOW : NUME_OK;
  const CS_INT room = outval->len - 1;
  const CS_INT copied = std::min(magnitude.count, room);
  const CS_BYTE sign = inval->len > 0 ? inval->value[0] : CS_BYTE{0};
  CS_BYTE *const end = outval->value + outval->len;
  std::memmove(end - copied, magnitude.bytes + magnitude.count - copied,
               static_cast<size_t>(copied));
  std::memset(outval->value + 1, 0, static_cast<size_t>(room - copied));
  outval->value[0] = sign;
  return magnitude.count > room ? NUME_OVERFLOW : NUME_OK;
}

int com__exctnume_scale(__CONSTANT *inval, __CONSTANT *outval, int scale, int) noexcept {
  COMN_CHECK_PTR(inval, NUME_OVERFLOW);
  if (scale == 0)
    return outval != nullptr ? com__exctnume_copy(inval, outval) : NUME_OK;
  const Field field = exact::field_of(outval != nullptr ? *outval : *inval);
  Number number;
  if (!exact::load_number(number, *inval))
    return NUME_OVERFLOW;
  const int status = exact::shift_number(number, scale, field);
  if (status == NUME_OK || status == NUME_TRUNCATED)
    exact::store_number(field, number, exact::is_negative(*inval));
  return status;
}

int com__exctnume_checkprecision(__CONSTANT *val) noexcept {
  COMN_CHECK_PTR(val, 0);
  if (val->prec > exact::max_power)
    return 0;
  const CS_BYTE *row = own_Com__Nume_Byte_Power_Array[val->prec];
  __CONSTANT power = {};
  power.len = row[0];
  power.value = const_cast<CS_BYTE *>(row + 1);
  return compare_magnitudes(power, *val) <= 0;
}

int com__exctnume_divby10(CS_BYTE **bufpp, CS_INT *lenptr) noexcept {
  COMN_CHECK_PTR(bufpp, 0);
  COMN_CHECK_PTR(lenptr, 0);
  COMN_CHECK_PTR(*bufpp, 0);
  CS_BYTE *const buffer = *bufpp;
  const CS_INT length = *lenptr;
  unsigned remainder = 0;
  for (CS_INT i = 0; i < length; ++i) {
    const unsigned part = remainder << 8 | buffer[i];
    buffer[i] = static_cast<CS_BYTE>(part / 10);
    remainder = part % 10;
  }
  // Deliberate: three bytes that end in 255 keep their view.
  if (length >= 3 && buffer[1] == 0 && !(length == 3 && buffer[2] == 255)) {
    ++*bufpp;
    --*lenptr;
  }
  return static_cast<int>(remainder);
}

int com__exctnume_mulby10_add(__CONSTANT *numeval, short digit) noexcept {
  COMN_CHECK_PTR(numeval, NUME_OVERFLOW);
  int carry = digit;
  for (CS_INT i = exact::magnitude_bytes(*numeval); i >= 1; --i) {
    carry += numeval->value[i] * 10;
    numeval->value[i] = static_cast<CS_BYTE>(carry);
    carry >>= 8;
  }
  return carry != 0;
}

int com__exctnume_inc(__CONSTANT *numeptr) noexcept {
  COMN_CHECK_PTR(numeptr, NUME_OVERFLOW);
  constexpr int no_bytes = 2;
  if (numeptr->len < 2)
    return no_bytes;
  if (numeptr->value[0] == 0)
    return step(*numeptr, true) ? NUME_OVERFLOW : NUME_OK;
  // The sign is turned over, and back again unless nothing is left.
  numeptr->value[0] = 0;
  decrement_positive(*numeptr);
  if (!is_zero(*numeptr))
    numeptr->value[0] = numeptr->value[0] == 0;
  return NUME_OK;
}

int com__exctnume_dec(__CONSTANT *numeptr) noexcept {
  COMN_CHECK_PTR(numeptr, NUME_OVERFLOW);
  constexpr int no_bytes = 2;
  if (numeptr->len < 2)
    return no_bytes;
  if (numeptr->value[0] == 0) {
    decrement_positive(*numeptr);
    return NUME_OK;
  }
  const bool overflow = step(*numeptr, true);
  numeptr->value[0] = 1;
  return overflow ? NUME_OVERFLOW : NUME_OK;
}

int com__exctnume_needsbyte(__CONSTANT *numeptr) noexcept {
  COMN_CHECK_PTR(numeptr, 0);
  for (CS_INT i = 1; i < numeptr->len; ++i)
    if (numeptr->value[i] != 255)
      return 0;
  return 1;
}
