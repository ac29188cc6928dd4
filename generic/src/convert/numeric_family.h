// Exact numerics as the types that they are converted to: the steps behind the members of com_num and
// of the cast-context conversions. A source comes as a descriptor of a value that is valid.
//
// Integers up to 32 bits and bit go through the closest double, whose limits and truncation callers
// know; the 64-bit ones are exact. Text is written from the digits at once, with the point in its
// place.
#ifndef COMN_CONVERT_NUMERIC_FAMILY_H
#define COMN_CONVERT_NUMERIC_FAMILY_H

#include <limits>

#include "checks.h"
#include "number.h"
#include "numeric.h"
#include "value_text.h"

namespace comn::numeric_family {

inline int to_double(const __CONSTANT &value, CS_FLOAT &number) noexcept {
  return com__subexctnumetoflt8(const_cast<__CONSTANT *>(&value), &number);
}

// A destination: its type and datatype code, and how a value gets there.
template <class Type, CS_INT Code>
struct Destination {
  using Value = Type;
  static constexpr CS_INT code = Code;
};

// Integers whose limits are tested as doubles. Below the range is an overflow of the signed types
// and of tinyint, and an underflow of the other unsigned ones; callers can see the difference.
template <class Integer, CS_INT Code, CS_RETCODE Below>
struct IntegerOf : Destination<Integer, Code> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where) noexcept {
    using Bounds = std::numeric_limits<Integer>;
    CS_FLOAT number;
    if (to_double(value, number) != NUME_OK)
      return CS_CONV_OVERFLOW;
    if (number < static_cast<CS_FLOAT>(Bounds::min())) {
      store(dest, Bounds::min());
      return Below;
    }
    if (number > static_cast<CS_FLOAT>(Bounds::max())) {
      store(dest, Bounds::max());
      return CS_CONV_OVERFLOW;
    }
    store(dest, static_cast<Integer>(number));
    return CS_SUCCEED;
  }
};

template <class Integer, CS_INT Code, int (*Convert)(__CONSTANT *, Integer *)>
struct LongIntegerOf : Destination<Integer, Code> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where where) noexcept {
    Integer number = 0;
    const int status = Convert(const_cast<__CONSTANT *>(&value), &number);
    store(dest, number);
    if (status == NUME_OVERFLOW)
      return CS_CONV_OVERFLOW;
    if (status == NUME_UNDERFLOW)
      return CS_CONV_UNDERFLOW;
    if (status != NUME_OK) [[unlikely]]
      return raise_bomb(where);
    return CS_SUCCEED;
  }
};

struct i1 : IntegerOf<CS_TINYINT, CS_TYPE_TINYINT, CS_CONV_OVERFLOW> {};
struct i2 : IntegerOf<CS_SMALLINT, CS_TYPE_SMALLINT, CS_CONV_OVERFLOW> {};
struct i4 : IntegerOf<CS_INT, CS_TYPE_INT, CS_CONV_OVERFLOW> {};
struct ui2 : IntegerOf<CS_USMALLINT, CS_TYPE_USMALLINT, CS_CONV_UNDERFLOW> {};
struct ui4 : IntegerOf<CS_UINT, CS_TYPE_UINT, CS_CONV_UNDERFLOW> {};
struct i8 : LongIntegerOf<CS_BIGINT, CS_TYPE_BIGINT, com__subexctnumetolonglong> {};
struct ui8 : LongIntegerOf<CS_UBIGINT, CS_TYPE_UBIGINT, com__subexctnumetoulonglong> {};

struct bit : Destination<CS_BIT, CS_TYPE_BIT> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where) noexcept {
    CS_FLOAT number;
    if (to_double(value, number) != NUME_OK)
      return CS_CONV_OVERFLOW;
    store(dest, static_cast<CS_BIT>(number != 0.0));
    return CS_SUCCEED;
  }
};

struct flt8 : Destination<CS_FLOAT, CS_TYPE_FLOAT> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where) noexcept {
    CS_FLOAT number;
    if (to_double(value, number) != NUME_OK)
      return CS_CONV_OVERFLOW;
    store(dest, number);
    return CS_SUCCEED;
  }
};

struct flt4 : Destination<CS_REAL, CS_TYPE_REAL> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where) noexcept {
    using Bounds = std::numeric_limits<CS_REAL>;
    CS_FLOAT number;
    if (to_double(value, number) != NUME_OK)
      return CS_CONV_OVERFLOW;
    // Deliberate: the limits themselves are out of range.
    if (number >= CS_FLOAT{Bounds::max()}) {
      store(dest, Bounds::max());
      return CS_CONV_OVERFLOW;
    }
    if (number <= CS_FLOAT{Bounds::lowest()}) {
      store(dest, Bounds::lowest());
      return CS_CONV_OVERFLOW;
    }
    store(dest, static_cast<CS_REAL>(number));
    return CS_SUCCEED;
  }
};

// Rounded to four decimals. What is too large for the longer size leaves both alone; what is too large
// for the shorter one only becomes its nearest value.
template <class Money, CS_INT Code>
struct MoneyOf : Destination<Money, Code> {
  template <class Where>
  static CS_RETCODE convert(const __CONSTANT &value, CS_VOID *dest, Where) noexcept {
    constexpr int overflow = 0;
    CS_MONEY number;
    if (com__exctnumetomny8(const_cast<__CONSTANT *>(&value), &number) == overflow)
      return CS_CONV_OVERFLOW;
    if constexpr (sizeof(Money) == sizeof(CS_MONEY))
      store(dest, number);
    else if (com__mnytomny4(&number, static_cast<CS_MONEY4 *>(dest)) < 0)
      return CS_CONV_OVERFLOW;
    return CS_SUCCEED;
  }
};
struct money : MoneyOf<CS_MONEY, CS_TYPE_MONEY> {};
struct mny4 : MoneyOf<CS_MONEY4, CS_TYPE_MONEY4> {};

// To another shape. The number is used up; `sign` is its sign byte.
inline CS_RETCODE to_shape(exact::Operand &operand, CS_BYTE sign, CS_INT scale,
                           const exact::Field &field) noexcept {
  exact::Number &number = operand.magnitude;
  // Deliberate: the number is moved before it is shifted, so it must fit the new length as it stands.
  int status = exact::store_number(field.with_any_digits(), number, operand.negative);
  if (status == NUME_OK)
    status = exact::shift_number(number, scale - operand.scale, field);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  const int fit = exact::store_number(field, number, operand.negative);
  // Without a shift the sign byte goes as it is, a zero's too.
  if (scale == operand.scale)
    field.array[0] = sign;
  if (status == NUME_TRUNCATED)
    return CS_CONV_TRUNCATED;
  return fit == NUME_OK ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

} // namespace comn::numeric_family

#endif
