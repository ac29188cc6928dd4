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
  const exact::Power &power = exact::power_of_ten(common.scale - value.scale);
  if (power.size == 1 && operand.size < value_limbs) {
    const Limb carry = exact::multiply_add(operand.limbs, operand.size, power.limbs[0], 0);
    if (carry != 0)
      operand.limbs[operand.size++] = carry;
  } else {
    Limb product[2 * value_limbs];
    const int size = exact::multiply(product, operand.limbs, operand.size, power.limbs, power.size);
    if (size > value_limbs)
      return false;
    std::copy_n(product, size, operand.limbs);
    operand.size = size;
  }
  return !exact::reaches_power(operand.limbs, operand.size, common.precision);
}

// What both ways to a sum end with: its shape, and the status of a magnitude that does not fit it.
// One that is too long for its field, and not only for its precision, leaves no digits.
[[gnu::noinline]] int store_overflow(CS_NUMERIC &result, const Shape &shape, bool negative,
                                     Limb *limbs, int size) noexcept {
  size = exact::trim(limbs, size);
  if (exact::byte_count(limbs, size) > exact::magnitude_bytes(shape.precision))
    size = 0;
  store(result, shape, negative, limbs, size);
  return NUME_OVERFLOW;
}

// Stores the sum or difference of two magnitudes of `Size` limbs, whose signs say which. Nothing
// here branches on the digits: a difference below zero is negated by its borrow, and the precision
// is compared by a subtraction.
template <int Size>
int store_sum(CS_NUMERIC &result, const Shape &shape, const Limb *a, const Limb *b, bool a_negative,
              bool b_negative) noexcept {
  Limb sum[Size + 1];
  bool negative = a_negative;
  Limb any = 0;
  if (a_negative == b_negative) {
    sum[Size] = exact::add(sum, a, b, Size);
    any = sum[Size];
  } else {
    Limb carry = exact::subtract(sum, a, b, Size);
    negative = a_negative != (carry != 0);
    const Limb mask = 0 - carry;
#pragma GCC unroll 8
    for (int i = 0; i < Size; ++i) {
      sum[i] = (sum[i] ^ mask) + carry;
      carry &= sum[i] == 0;
    }
    sum[Size] = 0;
  }
#pragma GCC unroll 8
  for (int i = 0; i < Size; ++i)
    any |= sum[i];
  negative = negative && any != 0;
  constexpr int compared = std::min(Size + 1, value_limbs);
  const bool fits = exact::is_below(sum, exact::power_of_ten(shape.precision).limbs, compared) &&
                    (Size < value_limbs || sum[Size] == 0);
  if (!fits) [[unlikely]]
    return store_overflow(result, shape, negative, sum, Size + 1);
  exact::store_value(result, shape.precision, shape.scale, negative, sum,
                     exact::magnitude_bytes(shape.precision));
  return NUME_OK;
}

// Dispatches to the size of the operands.
template <int Size = 1>
int store_sum(int size, CS_NUMERIC &result, const Shape &shape, const Limb *a, const Limb *b,
              bool a_negative, bool b_negative) noexcept {
  if constexpr (Size < value_limbs)
    if (size != Size)
      return store_sum<Size + 1>(size, result, shape, a, b, a_negative, b_negative);
  return store_sum<Size>(result, shape, a, b, a_negative, b_negative);
}

// The same for an operand of one limb and a precision that one limb holds.
bool align_limb(Limb &limb, const CS_NUMERIC &value, const Shape &common) noexcept {
  if (value.precision >= common.precision && value.scale >= common.scale)
    return true;
  return !__builtin_mul_overflow(limb, exact::limb_power(common.scale - value.scale), &limb) &&
         limb < exact::limb_power(common.precision);
}

int refuse_sum(CS_NUMERIC &result, const Shape &shape) noexcept {
  result.precision = static_cast<CS_BYTE>(shape.precision);
  result.scale = static_cast<CS_BYTE>(shape.scale);
  return NUME_OVERFLOW;
}

int add_aligned(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
                bool subtracting) noexcept {
  const int integers = std::max(left.precision - left.scale, right.precision - right.scale);
  Shape shape;
  shape.scale = std::max(left.scale, right.scale);
  shape.precision = std::min(integers + shape.scale, max_power);
  const Shape sum_shape{std::min(shape.precision + 1, max_power), shape.scale};
  const bool a_negative = left.array[0] != 0, b_negative = (right.array[0] != 0) != subtracting;
  if (shape.precision <= exact::limb_digits) {
    Limb a, b;
    exact::load_limbs(&a, 1, left, exact::magnitude_bytes(left.precision));
    exact::load_limbs(&b, 1, right, exact::magnitude_bytes(right.precision));
    if (!align_limb(a, left, shape) || !align_limb(b, right, shape))
      return refuse_sum(result, sum_shape);
    return store_sum<1>(result, sum_shape, &a, &b, a_negative, b_negative);
  }
  Operand a, b;
  a.load(left);
  b.load(right);
  if (!align(a, left, shape) || !align(b, right, shape))
    return refuse_sum(result, sum_shape);
  const int size = exact::limbs_for(exact::magnitude_bytes(shape.precision));
  a.extend(size);
  b.extend(size);
  return store_sum(size, result, sum_shape, a.limbs, b.limbs, a_negative, b_negative);
}

// Operands of one shape, whose magnitudes have `Size` limbs.
template <int Size = 1>
int add_alike(int size, const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
              bool subtracting) noexcept {
  if constexpr (Size < value_limbs)
    if (size != Size)
      return add_alike<Size + 1>(size, left, right, result, subtracting);
  const Shape shape{std::min(left.precision + 1, max_power), left.scale};
  const int bytes = exact::magnitude_bytes(left.precision);
  Limb a[Size], b[Size];
  exact::load_limbs(a, Size, left, bytes);
  exact::load_limbs(b, Size, right, bytes);
  return store_sum<Size>(result, shape, a, b, left.array[0] != 0,
                         (right.array[0] != 0) != subtracting);
}

int add_or_subtract(const CS_NUMERIC &left, const CS_NUMERIC &right, CS_NUMERIC &result,
                    bool subtracting) noexcept {
  if (left.precision != right.precision || left.scale != right.scale)
    return add_aligned(left, right, result, subtracting);
  return add_alike(exact::limbs_for(exact::magnitude_bytes(left.precision)), left, right, result,
                   subtracting);
}

CS_RETCODE checked_sum(CS_NUMERIC &left, CS_NUMERIC &right, CS_NUMERIC &result,
                       bool subtracting) noexcept {
  if (!exact::is_valid(left) || !exact::is_valid(right)) [[unlikely]]
    return CS_CONV_DOMAIN;
  return result_code(add_or_subtract(left, right, result, subtracting));
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
  return COMN_TRACE(checked_sum(*oper1, *oper2, *result, operation == 1));
}

CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump) noexcept {
  COMN_CHECK_PTR(add1p, CS_FAIL);
  COMN_CHECK_PTR(add2p, CS_FAIL);
  COMN_CHECK_PTR(sump, CS_FAIL);
  return COMN_TRACE(checked_sum(*add1p, *add2p, *sump, false));
}

CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp) noexcept {
  COMN_CHECK_PTR(minp, CS_FAIL);
  COMN_CHECK_PTR(subp, CS_FAIL);
  COMN_CHECK_PTR(diffp, CS_FAIL);
  return COMN_TRACE(checked_sum(*minp, *subp, *diffp, true));
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
