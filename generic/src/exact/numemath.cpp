// Arithmetic on descriptors: add, subtract, multiply, divide, round, ceiling and floor.
//
// Why whole-number arithmetic in machine words gives the result of the same operations carried out
// byte by byte: sum, difference, product, quotient and remainder of integers do not depend on the
// base in which they are worked out. What a byte-wise loop reports on its way - a carry out of the
// last byte, a product byte beyond the result, a quotient longer than its field - is the one fact
// that the number needs more bytes than the field has, which is tested once at the end.
//
// Rounding by n digits is told as n divisions by ten, of which the last remainder counts. Dividing by
// ten n - 1 times and dropping the remainders is one division by 10^(n-1), since floor(floor(x / a) /
// b) is floor(x / ab) for whole a and b; the n-th division by ten has the same dividend then, and so
// the same remainder. That is what round_number does.
#include "numemath.h"

#include "checks.h"

namespace exact = comn::exact;
using exact::Field;
using exact::Limb;
using exact::Number;
using exact::Operand;

namespace comn::exact {

bool add(Number &sum, Operand &a, Operand &b) noexcept {
  const int size = std::max(a.magnitude.size, b.magnitude.size);
  for (Number *magnitude : {&a.magnitude, &b.magnitude})
    std::fill(magnitude->limbs + magnitude->size, magnitude->limbs + size, Limb{0});
  if (a.negative == b.negative) {
    sum.limbs[size] = add(sum.limbs, a.magnitude.limbs, b.magnitude.limbs, size);
    sum.size = trim(sum.limbs, size + 1);
    return a.negative;
  }
  // The difference of magnitudes, negated where the second one is the greater.
  const Limb borrow = subtract(sum.limbs, a.magnitude.limbs, b.magnitude.limbs, size);
  negate_if(borrow, sum.limbs, size);
  sum.size = trim(sum.limbs, size);
  return a.negative != (borrow != 0);
}

int multiply(Number &product, const Operand &a, const Operand &b, const Field &field,
             int scale) noexcept {
  multiply(product, a.magnitude, b.magnitude);
  const int shift = scale - a.scale - b.scale;
  const bool full_width = field.digits >= a.precision + b.precision;
  // What does not fit the field will show when it is stored.
  if (full_width && shift == 0)
    return NUME_OK;
  const Field room{nullptr, full_width ? field.bytes : value_bytes, Field::any_digits};
  return fits(product, room) ? shift_number(product, shift, field) : NUME_OVERFLOW;
}

int divide(Number &quotient, Number &remainder, Operand &a, Operand &b, int scale) noexcept {
  constexpr int work_space = 132;
  if (b.magnitude.is_zero())
    return NUME_DIVZERO;
  const int shift = scale + b.scale - a.scale;
  if (shift > max_power || shift < -max_power)
    return NUME_OVERFLOW;
  int scratch = 0;
  Number scaled;
  const Number *dividend = &a.magnitude, *divisor = &b.magnitude;
  if (shift != 0) {
    Operand &operand = shift > 0 ? a : b;
    multiply_by_power(scaled, operand.magnitude, std::abs(shift));
    (shift > 0 ? dividend : divisor) = &scaled;
    operand.length += own_Com__Nume_Prec_To_Len[std::abs(shift)] + 1;
    scratch = operand.length;
  }
  if (scratch + a.length + 1 + b.length > work_space)
    return NUME_OVERFLOW;
  const Sizes sizes = divide<number_limbs>(quotient.limbs, remainder.limbs, dividend->limbs,
                                           dividend->size, divisor->limbs, divisor->size);
  quotient.size = sizes.quotient;
  remainder.size = sizes.remainder;
  return NUME_OK;
}

} // namespace comn::exact

namespace {

void clear(const Field &field) noexcept {
  if (field.array != nullptr)
    std::memset(field.array, 0, 1 + static_cast<size_t>(field.bytes));
}

// Stores what an operation left, also after it failed: its own status comes first.
int store_outcome(int status, const Field &field, const Number &number, bool negative) noexcept {
  const int fit = exact::store_number(field, number, negative);
  return status != NUME_OK ? status : fit;
}

// A magnitude that is read byte by byte from its least significant end, with endless zeroes in
// front.
class ByteReader {
public:
  explicit ByteReader(const __CONSTANT &from) noexcept : value(from.value), at(from.len) {}
  unsigned next() noexcept { return at > 1 ? value[--at] : 0U; }
  bool has_more_bits() noexcept {
    while (at > 1)
      if (value[--at] != 0)
        return true;
    return false;
  }

private:
  const CS_BYTE *value;
  CS_INT at;
};

// Stores a magnitude without a sign byte in the bytes in front of `end`.
void store_magnitude(CS_BYTE *end, int bytes, const Number &number) noexcept {
  for (int i = 0; i < bytes; ++i) {
    const int limb = i / exact::limb_bytes, shift = i % exact::limb_bytes * 8;
    *--end = static_cast<CS_BYTE>(limb < number.size ? number.limbs[limb] >> shift : 0);
  }
}

// Stores a remainder with a byte in front, where the caller has room for it; the work space of the
// division, which a view would point at, ends with the call.
void hand_out_remainder(__CONSTANT &to, const Number &remainder) noexcept {
  const int bytes = exact::byte_count(remainder.limbs, remainder.size);
  const int length = bytes == 0 ? 0 : bytes + 1;
  if (to.len < length)
    to.value = nullptr;
  to.len = length;
  if (to.value != nullptr)
    exact::store_number(exact::field_of(to), remainder, false);
}

} // namespace

// The lengths may be any, so these two work on the bytes in place.
int com__exctnume_intadd(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) noexcept {
  COMN_CHECK_PTR(a, NUME_OVERFLOW);
  COMN_CHECK_PTR(b, NUME_OVERFLOW);
  COMN_CHECK_PTR(r, NUME_OVERFLOW);
  ByteReader left(*a), right(*b);
  unsigned carry = 0;
  for (CS_INT i = exact::magnitude_bytes(*r); i >= 1; --i) {
    carry += left.next() + right.next();
    r->value[i] = static_cast<CS_BYTE>(carry);
    carry >>= 8;
  }
  return carry != 0 || left.has_more_bits() || right.has_more_bits() ? NUME_OVERFLOW : NUME_OK;
}

int com__exctnume_intsub(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) noexcept {
  COMN_CHECK_PTR(a, NUME_OVERFLOW);
  COMN_CHECK_PTR(b, NUME_OVERFLOW);
  COMN_CHECK_PTR(r, NUME_OVERFLOW);
  ByteReader left(*a), right(*b);
  // The inverted borrow: 1 while nothing was borrowed.
  unsigned carry = 1;
  for (CS_INT i = exact::magnitude_bytes(*r); i >= 1; --i) {
    carry += left.next() - right.next() + 255;
    r->value[i] = static_cast<CS_BYTE>(carry);
    carry >>= 8;
  }
  // What the difference still holds above the result.
  unsigned above = 0;
  const CS_INT longest = std::max(exact::magnitude_bytes(*a), exact::magnitude_bytes(*b));
  for (CS_INT i = longest - exact::magnitude_bytes(*r); i > 0; --i) {
    carry += left.next() - right.next() + 255;
    above |= carry & 255;
    carry >>= 8;
  }
  return above != 0 ? NUME_OVERFLOW : NUME_OK;
}

int com__exctnume_intmul(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) noexcept {
  COMN_CHECK_PTR(a, NUME_OVERFLOW);
  COMN_CHECK_PTR(b, NUME_OVERFLOW);
  COMN_CHECK_PTR(r, NUME_OVERFLOW);
  Number left, right, product;
  if (!exact::load_number(left, *a) || !exact::load_number(right, *b))
    return NUME_OVERFLOW;
  const bool negative = exact::is_negative(*a) != exact::is_negative(*b);
  exact::multiply(product, left, right);
  return exact::store_number(exact::field_of(*r).with_any_digits(), product, negative);
}

int com__exctnume_intdiv(__CONSTANT *a, __CONSTANT *b, __CONSTANT *q, __CONSTANT *r) noexcept {
  COMN_CHECK_PTR(a, NUME_OVERFLOW);
  COMN_CHECK_PTR(b, NUME_OVERFLOW);
  COMN_CHECK_PTR(q, NUME_OVERFLOW);
  COMN_CHECK_PTR(r, NUME_OVERFLOW);
  Number dividend, divisor, quotient;
  if (!exact::load_number(dividend, *a) || !exact::load_number(divisor, *b))
    return NUME_OVERFLOW;
  if (divisor.size == 0)
    return NUME_DIVZERO;
  if (exact::compare(dividend, divisor) < 0) {
    const int bytes = exact::byte_count(dividend.limbs, dividend.size);
    q->len = 0;
    r->len = bytes == 0 ? 0 : bytes + 1;
    r->value = bytes == 0 ? a->value : a->value + a->len - r->len;
    return NUME_OK;
  }
  // Quotient and remainder share the space: as many bytes as the dividend has, and one more, with
  // one in front for the sign where there is room.
  const int divisor_bytes = exact::byte_count(divisor.limbs, divisor.size);
  const int used = exact::byte_count(dividend.limbs, dividend.size) + 1;
  if (used > q->len)
    return NUME_OVERFLOW;
  Number remainder;
  const exact::Sizes sizes = exact::divide<exact::operand_limbs>(
      quotient.limbs, remainder.limbs, dividend.limbs, dividend.size, divisor.limbs, divisor.size);
  CS_BYTE *const space = q->value;
  const int front = q->len > used;
  const int quotient_bytes = used - divisor_bytes;
  std::memset(space, 0, static_cast<size_t>(front));
  CS_BYTE *const quotient_end = space + front + quotient_bytes;
  quotient.size = sizes.quotient;
  remainder.size = sizes.remainder;
  store_magnitude(quotient_end, quotient_bytes, quotient);
  store_magnitude(quotient_end + divisor_bytes, divisor_bytes, remainder);

  const int significant = exact::byte_count(quotient.limbs, sizes.quotient);
  const int kept = std::min(significant + 1, front + quotient_bytes);
  q->value = quotient_end - kept;
  q->len = kept;
  const int rest = exact::byte_count(remainder.limbs, sizes.remainder);
  // In front of a remainder as long as the divisor stands the last byte of the quotient.
  r->len = rest == 0 ? 0 : rest + (divisor_bytes > 1);
  r->value = quotient_end + divisor_bytes - r->len;
  return NUME_OK;
}

int com__exctnume_addorsub(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *result, int opn) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(result, NUME_OVERFLOW);
  const Field field = exact::field_of(*result);
  const int scale = result->scale;
  Operand left, right;
  if (!exact::load_operand(left, *op1) || !exact::load_operand(right, *op2)) {
    clear(field);
    return NUME_OVERFLOW;
  }
  right.negative ^= opn != 0;
  Number sum;
  const bool negative = exact::add(sum, left, right);
  if (!exact::fits(sum, field.with_any_digits())) {
    clear(field);
    return NUME_OVERFLOW;
  }
  // Deliberate: magnitudes that cancel out are zero at any scale, without a shift.
  const bool cancelled = sum.is_zero() && left.negative != right.negative;
  const int status = cancelled ? NUME_OK : exact::shift_number(sum, scale - left.scale, field);
  return store_outcome(status, field, sum, negative);
}

int com__exctnume_mul(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *res) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(res, NUME_OVERFLOW);
  Operand left, right;
  if (!exact::load_operand(left, *op1) || !exact::load_operand(right, *op2))
    return NUME_OVERFLOW;
  const Field field = exact::field_of(*res);
  Number product;
  const int status = exact::multiply(product, left, right, field, res->scale);
  return store_outcome(status, field, product, left.negative != right.negative);
}

int com__exctnume_div(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *quot,
                      __CONSTANT *remdr) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(quot, NUME_OVERFLOW);
  Operand left, right;
  if (!exact::load_operand(left, *op1) || !exact::load_operand(right, *op2))
    return NUME_OVERFLOW;
  Number quotient, remainder;
  const int status = exact::divide(quotient, remainder, left, right, quot->scale);
  if (status != NUME_OK)
    return status;
  if (remdr != nullptr)
    hand_out_remainder(*remdr, remainder);
  return exact::store_number(exact::field_of(*quot), quotient, left.negative != right.negative);
}

void com__exctnume_round(__CONSTANT *op, CS_INT scale, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(op);
  COMN_CHECK_PTR(result);
  const Field field = exact::field_of(*result);
  Number number;
  if (!exact::load_number(number, *op)) {
    clear(field);
    return;
  }
  const bool negative = exact::is_negative(*op);
  scale = std::clamp(scale, -exact::max_power, exact::max_power);
  if (scale < op->scale) {
    int dropped = op->scale - scale;
    // Deliberate: to round integer digits away, no more digits than the precision has.
    if (scale <= 0)
      dropped = std::min<int>(dropped, op->prec);
    exact::round_number(number, dropped);
    Number restored;
    restored.size = 0;
    if (dropped <= exact::max_power)
      exact::multiply_by_power(restored, number, dropped);
    exact::store_number(field, restored, negative);
    return;
  }
  exact::store_number(field, number, negative);
}

void com__exctnume_ceilingfloor(__CONSTANT *op, __CONSTANT *result, int type) noexcept {
  COMN_CHECK_PTR(op);
  COMN_CHECK_PTR(result);
  const bool negative = exact::is_negative(*op);
  Number number;
  const bool loaded = exact::load_number(number, *op);
  const int scale = op->scale;
  result->len = op->len;
  result->prec = op->prec;
  result->scale = 0;
  const Field field = exact::field_of(*result);
  if (!loaded) {
    clear(field);
    return;
  }
  bool whole = true;
  for (int left = scale; left > 0; left -= exact::max_power)
    whole &= exact::divide_by_power(number, std::min(left, exact::max_power));
  if (!whole && negative == (type == 0))
    exact::increment(number);
  exact::store_number(field, number, negative);
}
