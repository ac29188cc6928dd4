// Arithmetic on CS_NUMERIC: the shapes of results, and the operations themselves, which work on the
// limbs of the values directly (numemath.cpp says why that gives the same results as descriptors
// worked on byte by byte).
//
// Addition brings both operands to one precision p and scale s first. From there on the result has
// the scale s as well: its integer digits are p - s, and p + 1 digits (or 77) leave room for all s
// fraction digits. So a sum is never shifted, and all that can fail is the alignment, which is a
// multiplication by a power of ten within p digits, and the carry out of 77 digits.
#include "checks.h"
#include "numemath.h"

namespace exact = comn::exact;
using exact::Limb;
using exact::max_power;
using exact::Number;
using exact::value_limbs;

namespace {

struct Shape {
  int precision, scale;
};

// A loaded value: the limbs that its precision takes, and zeroes above them where that is said.
struct Operand {
  Limb limbs[value_limbs + 1];
  int size;
  bool negative;

  void load(const CS_NUMERIC &value) noexcept {
    size = exact::load_value(limbs, value, exact::magnitude_bytes(value.precision));
    negative = value.array[0] != 0;
  }
  void trim() noexcept { size = exact::trim(limbs, size); }
  void extend(int limb_count) noexcept {
    while (size < limb_count)
      limbs[size++] = 0;
  }
};

exact::View view_of(const Operand &operand, const CS_NUMERIC &value) noexcept {
  return {operand.limbs, operand.size, value.precision, value.scale, operand.negative};
}

// What the shapes of products and quotients have in common: the integer digits have precedence at
// the limit of 77.
Shape limited_shape(int integers, int scale) noexcept {
  integers = std::min(integers, max_power);
  const int precision = std::min(scale + integers, max_power);
  return {precision, std::min(scale, precision - integers)};
}

// Stores what of a trimmed magnitude fits the shape; the status of the fit.
int store(CS_NUMERIC &result, const Shape &shape, bool negative, Limb *limbs, int size) noexcept {
  const int bytes = exact::magnitude_bytes(shape.precision);
  const int needed = exact::limbs_for(bytes);
  const bool fits = !exact::reaches_power(limbs, size, shape.precision);
  negative = negative && size != 0;
  for (; size < needed; ++size)
    limbs[size] = 0;
  // A top limb may hold more than its bytes only when the value does not fit.
  if (!fits && bytes % exact::limb_bytes != 0)
    limbs[needed - 1] &= (Limb{1} << bytes % exact::limb_bytes * 8) - 1;
  exact::store_value(result, shape.precision, shape.scale, negative, limbs, bytes);
  return fits ? NUME_OK : NUME_OVERFLOW;
}

CS_RETCODE result_code(int status) noexcept {
  switch (status) {
  case NUME_OVERFLOW:
  case NUME_TRUNCATED: // deliberate: only comn_numtonum tells this from an overflow
    return CS_CONV_OVERFLOW;
  case NUME_SYNTAX:
    return CS_CONV_SYNTAX;
  case NUME_DIVZERO:
    return CS_CONV_DIVZERO;
  default:
    return CS_SUCCEED;
  }
}

// Brings an operand to the common shape; false when it has more digits than that.
bool align(Operand &operand, const CS_NUMERIC &value, const Shape &common) noexcept {
  if (value.precision >= common.precision && value.scale >= common.scale)
    return true;
  operand.trim();
  Number number;
  number.size = operand.size;
  std::copy_n(operand.limbs, operand.size, number.limbs);
  exact::multiply_by_power(number, common.scale - value.scale);
  if (exact::reaches_power(number.limbs, number.size, common.precision))
    return false;
  operand.size = number.size;
  std::copy_n(number.limbs, number.size, operand.limbs);
  return true;
}

int add_or_subtract(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
                    bool subtracting) noexcept {
  Shape shape{left.precision, left.scale};
  Operand a, b;
  a.load(left);
  b.load(right);
  bool aligned = true;
  if (left.precision != right.precision || left.scale != right.scale) {
    const int integers = std::max(left.precision - left.scale, right.precision - right.scale);
    shape.scale = std::max(left.scale, right.scale);
    shape.precision = std::min(integers + shape.scale, max_power);
    aligned = align(a, left, shape) && align(b, right, shape);
    const int size = exact::limbs_for(exact::magnitude_bytes(shape.precision));
    a.extend(size);
    b.extend(size);
  }
  const int size = a.size;
  shape.precision = std::min(shape.precision + 1, max_power);
  bool negative = a.negative;
  const bool other_negative = b.negative != subtracting;
  Limb sum[value_limbs + 1];
  int sum_size = size;
  if (!aligned) {
    result.precision = static_cast<CS_BYTE>(shape.precision);
    result.scale = static_cast<CS_BYTE>(shape.scale);
    return NUME_OVERFLOW;
  }
  if (negative == other_negative) {
    sum[size] = exact::add(sum, a.limbs, b.limbs, size);
    sum_size = exact::trim(sum, size + 1);
    // A sum that is too long for its field, and not only for its precision, leaves no digits.
    if (exact::byte_count(sum, sum_size) > exact::magnitude_bytes(shape.precision)) {
      store(result, shape, false, sum, 0);
      return NUME_OVERFLOW;
    }
  } else {
    const int order = exact::compare(a.limbs, size, b.limbs, size);
    if (order < 0)
      negative = other_negative;
    exact::subtract(sum, order < 0 ? b.limbs : a.limbs, order < 0 ? a.limbs : b.limbs, size);
    sum_size = exact::trim(sum, size);
  }
  return store(result, shape, negative, sum, sum_size);
}

int multiply(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result) noexcept {
  const int scale = left.scale + right.scale;
  const Shape shape =
      limited_shape(left.precision + right.precision - scale + 1, std::min(scale, max_power));
  if (shape.precision < CS_MIN_PREC)
    return NUME_OVERFLOW;
  Operand a, b;
  a.load(left);
  b.load(right);
  a.trim();
  b.trim();
  const bool negative = a.negative != b.negative;
  Number product;
  product.size = exact::multiply(product.limbs, a.limbs, a.size, b.limbs, b.size);
  const bool full_width = shape.precision >= left.precision + right.precision;
  const int room = full_width ? exact::magnitude_bytes(shape.precision) : exact::value_bytes;
  int status = NUME_OK;
  if (!exact::fits(product, room))
    status = NUME_OVERFLOW;
  else if (shape.scale != scale)
    status = exact::shift_number(product, shape.scale - scale,
                                 exact::magnitude_bytes(shape.precision), shape.precision);
  const int fit = store(result, shape, negative, product.limbs, product.size);
  return status != NUME_OK ? status : fit;
}

int divide(const CS_NUMERIC &dividend, const CS_NUMERIC &divisor, CS_NUMERIC &quot) noexcept {
  constexpr int least_scale = 6;
  Operand a, b;
  b.load(divisor);
  b.trim();
  if (b.size == 0)
    return NUME_DIVZERO;
  const int digits = dividend.precision + divisor.scale;
  const Shape shape =
      limited_shape(digits - dividend.scale,
                    digits < least_scale ? least_scale : std::min(digits + 1, max_power));
  if (shape.precision < CS_MIN_PREC)
    return NUME_OVERFLOW;
  a.load(dividend);
  a.trim();
  Number quotient, remainder;
  const int status = exact::divide_scaled(
      quotient, remainder, view_of(a, dividend), Com__Nume_Prec_To_Len[dividend.precision],
      view_of(b, divisor), Com__Nume_Prec_To_Len[divisor.precision], shape.scale);
  const bool negative = a.negative != b.negative;
  if (status != NUME_OK) {
    quot.precision = static_cast<CS_BYTE>(shape.precision);
    quot.scale = static_cast<CS_BYTE>(shape.scale);
    return status;
  }
  return store(quot, shape, negative, quotient.limbs, quotient.size);
}

} // namespace

CS_RETCODE comn_num_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                             CS_INT operation) noexcept {
  COMN_CHECK_PTR(oper1, CS_FAIL);
  COMN_CHECK_PTR(oper2, CS_FAIL);
  COMN_CHECK_PTR(result, CS_FAIL);
  COMN_CHECK(operation == 0 || operation == 1, CS_FAIL);
  if (!exact::is_valid(*oper1) || !exact::is_valid(*oper2)) [[unlikely]]
    return COMN_TRACE(CS_CONV_DOMAIN);
  return COMN_TRACE(result_code(add_or_subtract(*oper1, *oper2, *result, operation == 1)));
}

CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump) noexcept {
  return COMN_TRACE(comn_num_addorsub(add1p, add2p, sump, 0));
}

CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp) noexcept {
  return COMN_TRACE(comn_num_addorsub(minp, subp, diffp, 1));
}

CS_RETCODE comn_nummul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result) noexcept {
  COMN_CHECK_PTR(m1, CS_FAIL);
  COMN_CHECK_PTR(m2, CS_FAIL);
  COMN_CHECK_PTR(result, CS_FAIL);
  if (!exact::is_valid(*m1) || !exact::is_valid(*m2)) [[unlikely]]
    return COMN_TRACE(CS_CONV_DOMAIN);
  return COMN_TRACE(result_code(multiply(*m1, *m2, *result)));
}

CS_RETCODE comn_numdivide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot) noexcept {
  COMN_CHECK_PTR(dividend, CS_FAIL);
  COMN_CHECK_PTR(divisor, CS_FAIL);
  COMN_CHECK_PTR(quot, CS_FAIL);
  if (!exact::is_valid(*dividend) || !exact::is_valid(*divisor)) [[unlikely]]
    return COMN_TRACE(CS_CONV_DOMAIN);
  return COMN_TRACE(result_code(divide(*dividend, *divisor, *quot)));
}

int comn_numcmp(CS_NUMERIC *n1, CS_NUMERIC *n2) noexcept {
  COMN_CHECK_PTR(n1, 0);
  COMN_CHECK_PTR(n2, 0);
  if (comn_num_getlen(n1->precision) == 0 || comn_num_getlen(n2->precision) == 0) [[unlikely]]
    return 0;
  Operand a, b;
  a.load(*n1);
  b.load(*n2);
  a.trim();
  b.trim();
  return exact::compare_signed(view_of(a, *n1), view_of(b, *n2), true);
}
