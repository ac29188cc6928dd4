// Arithmetic on descriptors: add, subtract, multiply, divide, round, ceiling and floor.
//
// Why whole-number arithmetic in machine words gives the result of the same operations carried out
// byte by byte: sum, difference, product, quotient and remainder of integers do not depend on the
// base in which they are worked out. What a byte-wise loop reports on its way - a carry out of the
// last byte, a product byte beyond the result, a quotient longer than its field - is the one fact
// that the number needs more bytes than the field has, which is tested once at the end. The
// rounding functions divide by ten digit by digit and keep the last remainder only; that is the
// digit just below the cut, so one division by the power of ten and a comparison of its remainder
// with half the power tell the same: the digit is above 4 exactly when the remainder is at least 5
// followed by zeroes.
#include "numemath.h"

#include "checks.h"

namespace exact = comn::exact;
using exact::Limb;
using exact::Number;

namespace comn::exact {

int compare_scaled(const View &a, const View &b) noexcept {
  const bool a_deep = a.scale > b.scale;
  const View &deep = a_deep ? a : b;
  const View &shallow = a_deep ? b : a;
  const int shift = deep.scale - shallow.scale;
  Number number;
  int order;
  if (shallow.precision + deep.scale <= max_power) {
    number.size = shallow.size;
    std::copy_n(shallow.limbs, shallow.size, number.limbs);
    multiply_by_power(number, shift);
    order = compare(deep.limbs, deep.size, number.limbs, number.size);
  } else {
    // Deliberate: the digits beyond the smaller scale are dropped.
    number.size = 0;
    if (shift <= max_power) {
      number.size = deep.size;
      std::copy_n(deep.limbs, deep.size, number.limbs);
      divide_by_power(number, shift);
    }
    order = compare(number.limbs, number.size, shallow.limbs, shallow.size);
  }
  order = (order > 0) - (order < 0);
  return a_deep ? order : -order;
}

int divide_scaled(Number &quotient, Number &remainder, const View &a, int a_len, const View &b,
                  int b_len, int quotient_scale) noexcept {
  constexpr int work_space = 132;
  if (b.size == 0)
    return NUME_DIVZERO;
  const int shift = quotient_scale + b.scale - a.scale;
  if (shift > max_power || shift < -max_power)
    return NUME_OVERFLOW;
  Number scaled;
  const View &operand = shift > 0 ? a : b;
  int dividend_len = a_len, divisor_len = b_len, scratch = 0;
  if (shift != 0) {
    scaled.size = operand.size;
    std::copy_n(operand.limbs, operand.size, scaled.limbs);
    multiply_by_power(scaled, shift > 0 ? shift : -shift);
    int &len = shift > 0 ? dividend_len : divisor_len;
    len += Com__Nume_Prec_To_Len[shift > 0 ? shift : -shift] + 1;
    scratch = len;
  }
  if (scratch + dividend_len + 1 + divisor_len > work_space)
    return NUME_OVERFLOW;
  const bool scaled_dividend = shift > 0, scaled_divisor = shift < 0;
  const Sizes sizes = divide<number_limbs>(
      quotient.limbs, remainder.limbs, scaled_dividend ? scaled.limbs : a.limbs,
      scaled_dividend ? scaled.size : a.size, scaled_divisor ? scaled.limbs : b.limbs,
      scaled_divisor ? scaled.size : b.size);
  quotient.size = sizes.quotient;
  remainder.size = sizes.remainder;
  return NUME_OK;
}

} // namespace comn::exact

namespace {

exact::View view_of(const Number &number, const __CONSTANT &value) noexcept {
  return {number.limbs, number.size, value.prec, value.scale, exact::is_negative(value)};
}

int check_precision(const Number &number, int precision) noexcept {
  return exact::reaches_power(number.limbs, number.size, precision) ? NUME_OVERFLOW : NUME_OK;
}

void clear(__CONSTANT &value) noexcept {
  if (value.len > 0)
    std::memset(value.value, 0, static_cast<size_t>(value.len));
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

} // namespace

// The lengths may be any, so these two work on the bytes in place.
int com__exctnume_intadd(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) noexcept {
  COMN_CHECK_PTR(a, NUME_OVERFLOW);
  COMN_CHECK_PTR(b, NUME_OVERFLOW);
  COMN_CHECK_PTR(r, NUME_OVERFLOW);
  ByteReader left(*a), right(*b);
  unsigned carry = 0;
  for (CS_INT i = exact::magnitude_length(*r); i >= 1; --i) {
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
  for (CS_INT i = exact::magnitude_length(*r); i >= 1; --i) {
    carry += left.next() - right.next() + 255;
    r->value[i] = static_cast<CS_BYTE>(carry);
    carry >>= 8;
  }
  // What the difference still holds above the result.
  unsigned above = 0;
  const CS_INT longest = std::max(exact::magnitude_length(*a), exact::magnitude_length(*b));
  for (CS_INT i = longest - exact::magnitude_length(*r); i > 0; --i) {
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
  product.size = exact::multiply(product.limbs, left.limbs, left.size, right.limbs, right.size);
  return exact::store_number(*r, product, negative);
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
  if (exact::compare(dividend.limbs, dividend.size, divisor.limbs, divisor.size) < 0) {
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
  exact::store_bytes(space + front, quotient_bytes, quotient.limbs, sizes.quotient);
  exact::store_bytes(space + front + quotient_bytes, divisor_bytes, remainder.limbs,
                     sizes.remainder);

  const int significant = exact::byte_count(quotient.limbs, sizes.quotient);
  const int kept = std::min(significant + 1, front + quotient_bytes);
  q->value = space + front + quotient_bytes - kept;
  q->len = kept;
  const int rest = exact::byte_count(remainder.limbs, sizes.remainder);
  // In front of a remainder as long as the divisor stands the last byte of the quotient.
  r->len = rest == 0 ? 0 : rest + (divisor_bytes > 1);
  r->value = space + front + used - r->len;
  return NUME_OK;
}

int com__exctnume_addorsub(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *result, int opn) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(result, NUME_OVERFLOW);
  Number left, right;
  bool negative = exact::is_negative(*op1);
  const bool other_negative = exact::is_negative(*op2) != (opn != 0);
  const int scale = op1->scale;
  if (!exact::load_number(left, *op1) || !exact::load_number(right, *op2)) {
    clear(*result);
    return NUME_OVERFLOW;
  }
  const int size = std::max(left.size, right.size);
  std::fill(left.limbs + left.size, left.limbs + size, Limb{0});
  std::fill(right.limbs + right.size, right.limbs + size, Limb{0});
  Number sum;
  if (negative == other_negative) {
    sum.limbs[size] = exact::add(sum.limbs, left.limbs, right.limbs, size);
    sum.size = exact::trim(sum.limbs, size + 1);
  } else {
    const int order = exact::compare(left.limbs, left.size, right.limbs, right.size);
    if (order == 0) {
      clear(*result);
      return NUME_OK;
    }
    if (order < 0)
      negative = other_negative;
    exact::subtract(sum.limbs, order < 0 ? right.limbs : left.limbs,
                    order < 0 ? left.limbs : right.limbs, size);
    sum.size = exact::trim(sum.limbs, size);
  }
  const int shift = result->scale - scale;
  if (!exact::fits(sum, exact::magnitude_length(*result))) {
    clear(*result);
    return NUME_OVERFLOW;
  }
  int status = NUME_OK;
  if (shift != 0) {
    Number shifted = sum;
    status = exact::shift_number(shifted, shift, exact::magnitude_length(*result), result->prec);
    if (status == NUME_OK || status == NUME_TRUNCATED)
      sum = shifted;
  }
  exact::store_number(*result, sum, negative);
  return status != NUME_OK ? status : check_precision(sum, result->prec);
}

int com__exctnume_mul(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *res) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(res, NUME_OVERFLOW);
  Number left, right, product;
  if (!exact::load_number(left, *op1) || !exact::load_number(right, *op2))
    return NUME_OVERFLOW;
  const bool negative = exact::is_negative(*op1) != exact::is_negative(*op2);
  // Full width, or as wide as the longest value.
  const int room =
      res->prec >= op1->prec + op2->prec ? exact::magnitude_length(*res) : exact::value_bytes;
  const int shift = res->scale - op1->scale - op2->scale;
  product.size = exact::multiply(product.limbs, left.limbs, left.size, right.limbs, right.size);
  int status = exact::fits(product, room) ? NUME_OK : NUME_OVERFLOW;
  if (status == NUME_OK && shift != 0) {
    Number shifted = product;
    status = exact::shift_number(shifted, shift, exact::magnitude_length(*res), res->prec);
    if (status == NUME_OK || status == NUME_TRUNCATED)
      product = shifted;
  }
  if (exact::store_number(*res, product, negative) != NUME_OK && status == NUME_OK)
    status = NUME_OVERFLOW;
  return status != NUME_OK ? status : check_precision(product, res->prec);
}

int com__exctnume_div(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *quot,
                      __CONSTANT *remdr) noexcept {
  COMN_CHECK_PTR(op1, NUME_OVERFLOW);
  COMN_CHECK_PTR(op2, NUME_OVERFLOW);
  COMN_CHECK_PTR(quot, NUME_OVERFLOW);
  Number left, right, quotient, remainder;
  if (!exact::load_number(left, *op1) || !exact::load_number(right, *op2))
    return NUME_OVERFLOW;
  const bool negative = exact::is_negative(*op1) != exact::is_negative(*op2);
  const int status =
      exact::divide_scaled(quotient, remainder, view_of(left, *op1), std::max(op1->len, 0),
                           view_of(right, *op2), std::max(op2->len, 0), quot->scale);
  if (status != NUME_OK)
    return status;
  if (remdr != nullptr) {
    // The work space ends with this call, so a view of it is of no use to the caller.
    const int bytes = exact::byte_count(remainder.limbs, remainder.size);
    const int needed = bytes == 0 ? 0 : bytes + 1;
    if (remdr->value != nullptr && remdr->len >= needed) {
      remdr->value[0] = 0;
      exact::store_bytes(remdr->value + 1, bytes, remainder.limbs, remainder.size);
    } else {
      remdr->value = nullptr;
    }
    remdr->len = needed;
  }
  if (exact::store_number(*quot, quotient, negative) != NUME_OK)
    return NUME_OVERFLOW;
  return check_precision(quotient, quot->prec);
}

void com__exctnume_round(__CONSTANT *op, CS_INT scale, __CONSTANT *result) noexcept {
  COMN_CHECK_PTR(op);
  COMN_CHECK_PTR(result);
  Number number;
  if (!exact::load_number(number, *op))
    return;
  const bool negative = exact::is_negative(*op);
  scale = std::clamp(scale, -exact::max_power, exact::max_power);
  if (scale < op->scale) {
    int dropped = op->scale - scale;
    if (scale <= 0)
      dropped = std::min<int>(dropped, op->prec);
    exact::round_number(number, dropped);
    if (dropped > exact::max_power)
      number.size = 0;
    else
      exact::multiply_by_power(number, dropped);
  }
  exact::store_number(*result, number, negative);
}

void com__exctnume_ceilingfloor(__CONSTANT *op, __CONSTANT *result, int type) noexcept {
  COMN_CHECK_PTR(op);
  COMN_CHECK_PTR(result);
  Number number;
  if (!exact::load_number(number, *op))
    return;
  const bool negative = exact::is_negative(*op);
  bool whole = true;
  for (int left = op->scale; left > 0; left -= exact::max_power)
    whole &= exact::divide_by_power(number, std::min(left, exact::max_power));
  result->len = op->len;
  result->prec = op->prec;
  result->scale = 0;
  if (!whole && negative == (type == 0))
    exact::increment(number);
  exact::store_number(*result, number, negative);
}
