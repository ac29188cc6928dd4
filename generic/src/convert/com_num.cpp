// Conversions from CS_NUMERIC.
//
// Integers up to 32 bits and bit go through the closest double, whose limits and truncation callers
// know; the 64-bit ones are exact. Text is written from the digits at once, with the point in its
// place.
#include <algorithm>
#include <limits>

#include "conv_func.h"
#include "number.h"
#include "pad.h"
#include "raw_copy.h"
#include "value_text.h"

namespace exact = comn::exact;
using comn::store;

namespace {

constexpr comn::TypeSet numeric_types{CS_TYPE_NUMERIC, CS_TYPE_DECIMAL};

bool is_numeric(const CS_DATAFMT *format) noexcept {
  return numeric_types.contains(format->datatype);
}

const CS_NUMERIC &value_at(const CS_VOID *src) noexcept {
  static_assert(alignof(CS_NUMERIC) == 1);
  return *static_cast<const CS_NUMERIC *>(src);
}

int to_double(const CS_NUMERIC &value, CS_FLOAT &result) noexcept {
  __CONSTANT descriptor = exact::describe(value);
  return com__subexctnumetoflt8(&descriptor, &result);
}

exact::ValueText text_of(const CS_NUMERIC &value) noexcept {
  exact::Operand operand;
  exact::load_operand(operand, value);
  return {operand.magnitude, operand.scale, operand.negative};
}

// Integers whose limits are tested as doubles. Below the range is an overflow of the signed types
// and of tinyint, and an underflow of the other unsigned ones; callers can see the difference.
template <class Integer, CS_INT Code, CS_RETCODE Below, class Where>
CS_RETCODE to_integer(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == Code);
  using Bounds = std::numeric_limits<Integer>;
  *destlen = sizeof(Integer);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
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

template <class Integer, CS_INT Code, int (*Convert)(__CONSTANT *, Integer *), class Where>
CS_RETCODE to_long_integer(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == Code);
  *destlen = sizeof(Integer);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  __CONSTANT descriptor = exact::describe(value);
  Integer number = 0;
  const int status = Convert(&descriptor, &number);
  store(dest, number);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  if (status == NUME_UNDERFLOW)
    return CS_CONV_UNDERFLOW;
  if (status != NUME_OK) [[unlikely]]
    return comn::raise_bomb(where);
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_bit(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_BIT);
  *destlen = sizeof(CS_BIT);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  CS_FLOAT number;
  if (to_double(value, number) != NUME_OK)
    return CS_CONV_OVERFLOW;
  store(dest, static_cast<CS_BIT>(number != 0.0));
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_float(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_FLOAT);
  *destlen = sizeof(CS_FLOAT);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  CS_FLOAT number;
  if (to_double(value, number) != NUME_OK)
    return CS_CONV_OVERFLOW;
  store(dest, number);
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_real(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_REAL);
  using Bounds = std::numeric_limits<CS_REAL>;
  *destlen = sizeof(CS_REAL);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
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

template <class Where>
CS_RETCODE to_numeric(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), is_numeric(destfmt));
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const CS_INT precision =
      destfmt->precision == CS_DFMT_FROMSOURCE ? value.precision : destfmt->precision;
  if (precision < CS_MIN_PREC || precision > CS_MAX_PREC)
    return CS_CONV_BADPRECISION;
  const CS_INT scale = destfmt->scale == CS_DFMT_FROMSOURCE ? value.scale : destfmt->scale;
  if (scale < CS_MIN_SCALE || scale > CS_MAX_SCALE)
    return CS_CONV_BADSCALE;

  exact::Operand operand;
  exact::load_operand(operand, value);
  exact::Number &number = operand.magnitude;
  const CS_BYTE sign = value.array[0];
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  result->precision = static_cast<CS_BYTE>(precision);
  result->scale = static_cast<CS_BYTE>(scale);
  const exact::Field field = exact::field_of(*result);
  *destlen = static_cast<CS_INT>(offsetof(CS_NUMERIC, array)) + 1 + field.bytes;

  // Deliberate: the number is moved before it is shifted, so it must fit the new length as it stands.
  int status = exact::store_number(field.with_any_digits(), number, operand.negative);
  if (status == NUME_OK)
    status = exact::shift_number(number, scale - operand.scale, field);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  const int fit = exact::store_number(field, number, operand.negative);
  // Without a shift the sign byte goes as it is, a zero's too.
  if (scale == operand.scale)
    result->array[0] = sign;
  if (status == NUME_TRUNCATED)
    return CS_CONV_TRUNCATED;
  return fit == NUME_OK ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// Rounded to four decimals. What is too large for the longer size leaves both alone; what is too large
// for the shorter one only becomes its nearest value.
template <class Money, CS_INT Code, class Where>
CS_RETCODE to_money(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == Code);
  *destlen = sizeof(Money);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  constexpr int overflow = 0;
  __CONSTANT descriptor = exact::describe(value);
  CS_MONEY number;
  if (com__exctnumetomny8(&descriptor, &number) == overflow)
    return CS_CONV_OVERFLOW;
  if constexpr (sizeof(Money) == sizeof(CS_MONEY))
    store(dest, number);
  else if (com__mnytomny4(&number, static_cast<CS_MONEY4 *>(dest)) < 0)
    return CS_CONV_OVERFLOW;
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_text(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), comn::text_types.contains(destfmt->datatype));
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const exact::ValueText text = text_of(value);
  const CS_INT length = text.length();
  const CS_INT capacity = destfmt->maxlength;
  const CS_INT format = destfmt->format;
  if (capacity >= length) [[likely]] {
    text.write(static_cast<CS_CHAR *>(dest));
    *destlen = length;
    if ((format & comn::pad_bits) == 0)
      return CS_SUCCEED;
  } else {
    CS_CHAR whole[exact::longest_text];
    text.write(whole);
    *destlen = std::max(capacity, 0);
    std::memcpy(dest, whole, static_cast<size_t>(*destlen));
  }
  return comn::pad_text(length, format, capacity, dest, destlen);
}

template <class Where>
CS_RETCODE to_varchar(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_VARCHAR);
  *destlen = sizeof(CS_VARCHAR);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const exact::ValueText text = text_of(value);
  auto *const record = static_cast<CS_CHAR *>(dest);
  text.write(record + offsetof(CS_VARCHAR, str));
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(text.length()));
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_binary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), comn::binary_types.contains(destfmt->datatype));
  if (!exact::is_valid(value_at(src))) [[unlikely]]
    return CS_CONV_DOMAIN;
  src = static_cast<CS_BYTE *>(src) + offsetof(CS_NUMERIC, array);
  return comn::fixed_to_binary(COMN_CONV_ARGUMENTS, sizeof(CS_NUMERIC::array));
}

template <class Where>
CS_RETCODE to_varbinary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_VARBINARY);
  *destlen = sizeof(CS_VARBINARY);
  if (!exact::is_valid(value_at(src))) [[unlikely]]
    return CS_CONV_DOMAIN;
  src = static_cast<CS_BYTE *>(src) + offsetof(CS_NUMERIC, array);
  return comn::fixed_to_varbinary(COMN_CONV_ARGUMENTS, sizeof(CS_NUMERIC::array));
}

} // namespace

#define COMN_NUMERIC_MEMBER(destination, ...)                                                      \
  CS_RETCODE comn_numto##destination(COMN_CONV_PARAMETERS) noexcept {                              \
    return COMN_TRACE((__VA_ARGS__(COMN_CONV_ARGUMENTS, COMN_HERE)));                              \
  }

COMN_NUMERIC_MEMBER(i1, to_integer<CS_TINYINT, CS_TYPE_TINYINT, CS_CONV_OVERFLOW>)
COMN_NUMERIC_MEMBER(i2, to_integer<CS_SMALLINT, CS_TYPE_SMALLINT, CS_CONV_OVERFLOW>)
COMN_NUMERIC_MEMBER(i4, to_integer<CS_INT, CS_TYPE_INT, CS_CONV_OVERFLOW>)
COMN_NUMERIC_MEMBER(ui2, to_integer<CS_USMALLINT, CS_TYPE_USMALLINT, CS_CONV_UNDERFLOW>)
COMN_NUMERIC_MEMBER(ui4, to_integer<CS_UINT, CS_TYPE_UINT, CS_CONV_UNDERFLOW>)
COMN_NUMERIC_MEMBER(i8, to_long_integer<CS_BIGINT, CS_TYPE_BIGINT, com__subexctnumetolonglong>)
COMN_NUMERIC_MEMBER(ui8, to_long_integer<CS_UBIGINT, CS_TYPE_UBIGINT, com__subexctnumetoulonglong>)
COMN_NUMERIC_MEMBER(bit, to_bit)
COMN_NUMERIC_MEMBER(flt8, to_float)
COMN_NUMERIC_MEMBER(flt4, to_real)
COMN_NUMERIC_MEMBER(num, to_numeric)
COMN_NUMERIC_MEMBER(money, to_money<CS_MONEY, CS_TYPE_MONEY>)
COMN_NUMERIC_MEMBER(mny4, to_money<CS_MONEY4, CS_TYPE_MONEY4>)
COMN_NUMERIC_MEMBER(char, to_text)
COMN_NUMERIC_MEMBER(varchar, to_varchar)
COMN_NUMERIC_MEMBER(bin, to_binary)
COMN_NUMERIC_MEMBER(varbin, to_varbinary)
