// Arithmetic on CS_NUMERIC: the shapes of results. The operations themselves are those of
// numemath.h, which descriptors go through as well.
//
// Addition brings both operands to one precision p and scale s first. From there on the result has
// the scale s as well: its integer digits are p - s, and p + 1 digits (or 77) leave room for all s
// fraction digits. So a sum is never shifted, and all that can fail is the alignment, which is a
// multiplication by a power of ten within p digits, and the carry out of 77 digits.
#include "checks.h"
#include "numemath.h"
#include "status.h"

namespace exact = comn::exact;
using exact::Field;
using exact::Limb;
using exact::max_power;
using exact::Number;
using exact::Operand;
using exact::value_limbs;

namespace {

struct Shape {
  int precision, scale;
};

// What the shapes of products and quotients have in common: the integer digits have precedence at
// the limit of 77.
Shape limited_shape(int integers, int scale) noexcept {
  integers = std::min(integers, max_power);
  const int precision = std::min(scale + integers, max_power);
  return {precision, std::min(scale, precision - integers)};
}

// Gives the result its shape; the field that is its array.
Field set_shape(CS_NUMERIC &result, const Shape &shape) noexcept {
  result.precision = static_cast<CS_BYTE>(shape.precision);
  result.scale = static_cast<CS_BYTE>(shape.scale);
  return exact::field_of(result);
}

// Loads and stores magnitudes of a known number of limbs. No value has more than value_limbs.
template <int Size>
[[gnu::always_inline]] inline void load(Limb (&limbs)[Size], const CS_NUMERIC &value) noexcept {
  int bytes = exact::magnitude_bytes(value.precision);
  const CS_BYTE *end = value.array + 1 + bytes;
#pragma GCC unroll 8
  for (int i = 0; i < Size; ++i, end -= exact::limb_bytes, bytes -= exact::limb_bytes)
    limbs[i] = exact::load_limb(end, bytes);
}

template <int Size>
[[gnu::always_inline]] inline void store(const Field &field, const Limb (&limbs)[Size],
                                         bool negative) noexcept {
  constexpr int stored = std::min(Size, value_limbs);
  field.array[0] = negative;
  CS_BYTE *end = field.array + 1 + field.bytes;
  int bytes = field.bytes;
#pragma GCC unroll 8
  for (int i = 0; i < stored && bytes > 0;
       ++i, end -= exact::limb_bytes, bytes -= exact::limb_bytes)
    exact::store_limb(end, bytes, limbs[i], negative);
}

// Multiplies by a power of ten of several limbs; false when the product has more than `size` limbs.
[[gnu::noinline]] bool multiply_far(Limb *limbs, int size, const exact::Power &power) noexcept {
  Limb product[2 * value_limbs];
  const int length =
      exact::multiply(product, limbs, exact::trim(limbs, size), power.limbs, power.size);
  std::fill(product + length, product + 2 * value_limbs, Limb{0});
  std::copy_n(product, size, limbs);
  return length <= size;
}

// Brings the magnitude of a value to the common shape; false when it has more digits than that.
template <int Size>
[[gnu::always_inline]] inline bool align(Limb (&limbs)[Size], const CS_NUMERIC &value,
                                         Shape common) noexcept {
  if (value.precision >= common.precision && value.scale >= common.scale)
    return true;
  const exact::Power &power = exact::power_of_ten(common.scale - value.scale);
  if (power.size == 1) {
    if (exact::multiply_add(limbs, Size, power.limbs[0], 0) != 0)
      return false;
  } else {
    // What a call gets by its address cannot stay in registers.
    Limb copy[Size];
    std::copy_n(limbs, Size, copy);
    if (!multiply_far(copy, Size, power))
      return false;
    std::copy_n(copy, Size, limbs);
  }
  return exact::is_below(limbs, exact::power_of_ten(common.precision).limbs, Size);
}

// A sum that is too long for its field, and not only for its precision, leaves no digits.
[[gnu::cold, gnu::noinline]] int store_overflow(const Field &field, bool negative,
                                                const Limb *limbs, int size) noexcept {
  Number sum;
  sum.size = exact::trim(limbs, size);
  std::copy_n(limbs, sum.size, sum.limbs);
  if (!exact::fits(sum, field.with_any_digits()))
    sum.size = 0;
  exact::store_number(field, sum, negative);
  return NUME_OVERFLOW;
}

// Adds values whose common shape takes `Size` limbs: so the limbs stay in registers. Nothing here
// branches on the digits: a difference below zero is negated by its borrow, and the precision is
// compared by a subtraction.
template <int Size>
[[gnu::noinline]] int add_sized(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
                                Shape common, bool subtracting) noexcept {
  const bool a_negative = left.array[0] != 0, b_negative = (right.array[0] != 0) != subtracting;
  Limb a[Size], b[Size], sum[Size + 1];
  load(a, left);
  load(b, right);
  const bool are_aligned = align(a, left, common) && align(b, right, common);
  const Field field = set_shape(result, {std::min(common.precision + 1, max_power), common.scale});
  if (!are_aligned)
    return NUME_OVERFLOW;
  bool negative = a_negative;
  if (a_negative == b_negative) {
    sum[Size] = exact::add(sum, a, b, Size);
  } else {
    const Limb borrow = exact::subtract(sum, a, b, Size);
    exact::negate_if(borrow, sum, Size);
    sum[Size] = 0;
    negative = a_negative != (borrow != 0);
  }
  Limb any = 0;
#pragma GCC unroll 8
  for (const Limb limb : sum)
    any |= limb;
  if (!exact::is_below(sum, exact::power_of_ten(field.digits).limbs, Size + 1)) [[unlikely]]
    return store_overflow(field, negative, sum, Size + 1);
  store(field, sum, negative && any != 0);
  return NUME_OK;
}

// Dispatches to the size of the common shape.
template <int Size = 1>
int add_values(int size, const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
               Shape common, bool subtracting) noexcept {
  if constexpr (Size < value_limbs)
    if (size != Size)
      return add_values<Size + 1>(size, left, right, result, common, subtracting);
  return add_sized<Size>(left, right, result, common, subtracting);
}

int add_or_subtract(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
                    bool subtracting) noexcept {
  const int integers = std::max(left.precision - left.scale, right.precision - right.scale);
  const int scale = std::max(left.scale, right.scale);
  const Shape common{std::min(integers + scale, max_power), scale};
  const int size = exact::limbs_for(exact::magnitude_bytes(common.precision));
  return add_values(size, left, right, result, common, subtracting);
}

int multiply(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result) noexcept {
  Operand a, b;
  exact::load_operand(a, left);
  exact::load_operand(b, right);
  const int scale = a.scale + b.scale;
  const Shape shape =
      limited_shape(a.precision + b.precision - scale + 1, std::min(scale, max_power));
  if (shape.precision < CS_MIN_PREC)
    return NUME_OVERFLOW;
  const Field field = set_shape(result, shape);
  Number product;
  const int status = exact::multiply(product, a, b, field, shape.scale);
  const int fit = exact::store_number(field, product, a.negative != b.negative);
  return status != NUME_OK ? status : fit;
}

int divide(const CS_NUMERIC &dividend, const CS_NUMERIC &divisor, CS_NUMERIC &quot) noexcept {
  constexpr int least_scale = 6;
  Operand a, b;
  exact::load_operand(a, dividend);
  exact::load_operand(b, divisor);
  const int digits = a.precision + b.scale;
  const Shape shape = limited_shape(
      digits - a.scale, digits < least_scale ? least_scale : std::min(digits + 1, max_power));
  if (shape.precision < CS_MIN_PREC)
    return b.magnitude.is_zero() ? NUME_DIVZERO : NUME_OVERFLOW;
  const Field field = set_shape(quot, shape);
  Number quotient, remainder;
  const int status = exact::divide(quotient, remainder, a, b, shape.scale);
  return status != NUME_OK ? status
                           : exact::store_number(field, quotient, a.negative != b.negative);
}

int add(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result) noexcept {
  return add_or_subtract(left, right, result, false);
}

int subtract(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result) noexcept {
  return add_or_subtract(left, right, result, true);
}

// The checks that every operation makes, and its code.
template <auto Operation, class Where>
CS_RETCODE run(const CS_NUMERIC *left, const CS_NUMERIC *right, CS_NUMERIC *result,
               Where where) noexcept {
  if (left == nullptr || right == nullptr || result == nullptr) [[unlikely]]
    return comn::raise_null(where);
  if (!exact::is_valid(*left) || !exact::is_valid(*right)) [[unlikely]]
    return CS_CONV_DOMAIN;
  return exact::result_code(Operation(*left, *right, *result));
}

} // namespace

CS_RETCODE comn_num_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                             CS_INT operation) noexcept {
  COMN_CHECK(operation == 0 || operation == 1, COMN_TRACE(CS_FAIL));
  if (operation == 0)
    return COMN_TRACE(run<add>(oper1, oper2, result, COMN_HERE));
  return COMN_TRACE(run<subtract>(oper1, oper2, result, COMN_HERE));
}

CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump) noexcept {
  return COMN_TRACE(run<add>(add1p, add2p, sump, COMN_HERE));
}

CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp) noexcept {
  return COMN_TRACE(run<subtract>(minp, subp, diffp, COMN_HERE));
}

CS_RETCODE comn_nummul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result) noexcept {
  return COMN_TRACE(run<multiply>(m1, m2, result, COMN_HERE));
}

CS_RETCODE comn_numdivide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot) noexcept {
  return COMN_TRACE(run<divide>(dividend, divisor, quot, COMN_HERE));
}

int comn_numcmp(CS_NUMERIC *n1, CS_NUMERIC *n2) noexcept {
  COMN_CHECK_PTR(n1, 0);
  COMN_CHECK_PTR(n2, 0);
  if (comn_num_getlen(n1->precision) == 0 || comn_num_getlen(n2->precision) == 0) [[unlikely]]
    return 0;
  __CONSTANT left = exact::describe(*n1), right = exact::describe(*n2);
  return com__exctnume_cmp(&left, &right, NUME_CMP_SIGNS | NUME_CMP_SCALES);
}
