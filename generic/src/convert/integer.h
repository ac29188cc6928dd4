// The integer family: seven units of the same members, which differ in the bounds of their types
// and in the statuses below. Each unit instantiates all of them with COMN_INTEGER_UNIT.
//
// The character of the family is that nothing is silent: a narrowing conversion stores the nearest
// value that the destination can take and then returns a failure.
#ifndef COMN_CONVERT_INTEGER_H
#define COMN_CONVERT_INTEGER_H

#include <bit>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

#include "conv_func.h"
#include "decimal_text.h"
#include "numeric.h"
#include "raw_copy.h"
#include "shape.h"
#include "whole_text.h"

namespace comn::integer {

enum Type { i1, i2, i4, i8, ui2, ui4, ui8, type_count };

template <Type>
struct Traits;
template <class Integer, CS_INT Code>
struct TraitsOf {
  using Value = Integer;
  static constexpr CS_INT code = Code;
};
template <>
struct Traits<i1> : TraitsOf<CS_TINYINT, CS_TYPE_TINYINT> {};
template <>
struct Traits<i2> : TraitsOf<CS_SMALLINT, CS_TYPE_SMALLINT> {};
template <>
struct Traits<i4> : TraitsOf<CS_INT, CS_TYPE_INT> {};
template <>
struct Traits<i8> : TraitsOf<CS_BIGINT, CS_TYPE_BIGINT> {};
template <>
struct Traits<ui2> : TraitsOf<CS_USMALLINT, CS_TYPE_USMALLINT> {};
template <>
struct Traits<ui4> : TraitsOf<CS_UINT, CS_TYPE_UINT> {};
template <>
struct Traits<ui8> : TraitsOf<CS_UBIGINT, CS_TYPE_UBIGINT> {};

template <Type T>
using Value = typename Traits<T>::Value;

// What a conversion returns for a source below and above the range of the destination; `no` where
// the source type does not reach so far. The statuses are not uniform and must not be made so:
// a negative value is an overflow of i1 from i2 and i4 but an underflow from i8, and i8 below i2 is
// an underflow but below i4 an overflow. Callers can see the difference.
struct OutOfRange {
  CS_RETCODE below, above;
};

namespace statuses {
constexpr CS_RETCODE no = CS_SUCCEED;
constexpr CS_RETCODE OV = CS_CONV_OVERFLOW;
constexpr CS_RETCODE UN = CS_CONV_UNDERFLOW;
// clang-format off
constexpr OutOfRange table[type_count][type_count] = {
    // to     i1        i2        i4        i8        ui2       ui4       ui8
    /* i1  */ {{no, no}, {no, no}, {no, no}, {no, no}, {no, no}, {no, no}, {no, no}},
    /* i2  */ {{OV, OV}, {no, no}, {no, no}, {no, no}, {UN, no}, {UN, no}, {UN, no}},
    /* i4  */ {{OV, OV}, {OV, OV}, {no, no}, {no, no}, {UN, OV}, {UN, no}, {UN, no}},
    /* i8  */ {{UN, OV}, {UN, OV}, {OV, OV}, {no, no}, {UN, OV}, {UN, OV}, {UN, no}},
    /* ui2 */ {{no, OV}, {no, OV}, {no, no}, {no, no}, {no, no}, {no, no}, {no, no}},
    /* ui4 */ {{no, OV}, {no, OV}, {no, OV}, {no, no}, {no, OV}, {no, no}, {no, no}},
    /* ui8 */ {{no, OV}, {no, OV}, {no, OV}, {no, OV}, {no, OV}, {no, OV}, {no, no}},
};
// clang-format on
} // namespace statuses

// Integer destinations, with bit as a type of its own.
template <Type S, Type D>
CS_RETCODE to_integer(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  using Bounds = std::numeric_limits<Value<D>>;
  constexpr OutOfRange status = statuses::table[S][D];
  constexpr bool has_below = std::cmp_less(std::numeric_limits<Value<S>>::min(), Bounds::min());
  constexpr bool has_above = std::cmp_greater(std::numeric_limits<Value<S>>::max(), Bounds::max());
  static_assert((status.below != CS_SUCCEED) == has_below);
  static_assert((status.above != CS_SUCCEED) == has_above);

  *destlen = sizeof(Value<D>);
  const auto value = load<Value<S>>(src);
  if constexpr (has_below || has_above)
    if (!std::in_range<Value<D>>(value)) {
      // One past the highest value is the lowest, so neither needs a branch: on which side a value
      // lies out of range cannot be foreseen.
      const bool below = value < 0;
      using Unsigned = std::make_unsigned_t<Value<D>>;
      store(dest, static_cast<Unsigned>(Unsigned{Bounds::max()} + below));
      return below ? status.below : status.above;
    }
  store(dest, static_cast<Value<D>>(value));
  return CS_SUCCEED;
}

template <Type S>
CS_RETCODE to_bit(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_BIT);
  store(dest, static_cast<CS_BIT>(load<Value<S>>(src) != 0));
  return CS_SUCCEED;
}

// Where a 64-bit source saturates as a float: from `limit` on, `result` is stored, and the
// conversion still succeeds.
template <Type S, class Float>
struct Saturation;
template <>
struct Saturation<i8, CS_REAL> {
  static constexpr CS_BIGINT limit = 9223370000000000000;
  static constexpr CS_REAL result = std::bit_cast<CS_REAL>(0x5EFFFFFCU);
};
template <>
struct Saturation<i8, CS_FLOAT> {
  static constexpr CS_BIGINT limit = 9223372036854769664;
  static constexpr CS_FLOAT result = 9.22337203685477e18;
};
template <>
struct Saturation<ui8, CS_REAL> {
  static constexpr CS_UBIGINT limit = 18446700000000000000U;
  static constexpr CS_REAL result = std::bit_cast<CS_REAL>(0x5F7FFFD8U);
};
template <>
struct Saturation<ui8, CS_FLOAT> {
  static constexpr CS_UBIGINT limit = 18446744073709500416U;
  static constexpr CS_FLOAT result = 1.84467440737095e19;
};

template <Type S, class Float>
Float to_float_value(Value<S> value) noexcept {
  if constexpr (sizeof value == 8) {
    using Top = Saturation<S, Float>;
    if (value >= Top::limit)
      return Top::result;
    if constexpr (S == ui8) {
      // Deliberate: 9223372036854775807 is taken off and 9223372036854775808 put back, which is one
      // more than the exact sum. Applications know the results of this form.
      constexpr CS_UBIGINT top_bit = 9223372036854775808U;
      if (value >= top_bit)
        return static_cast<Float>(top_bit) +
               static_cast<Float>(static_cast<CS_BIGINT>(value - (top_bit - 1)));
      return static_cast<Float>(static_cast<CS_BIGINT>(value));
    }
  }
  return static_cast<Float>(value);
}

template <Type S, class Float>
CS_RETCODE to_float(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Float);
  store(dest, to_float_value<S, Float>(load<Value<S>>(src)));
  return CS_SUCCEED;
}

// Calls the builder of exact numerics that the source type takes.
template <Type S>
int build_numeric(Value<S> value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                  CS_BYTE *scale) noexcept {
  if constexpr (S == i8)
    return com__longlongtoexctnume(value, dest, destlen, precision, scale);
  else if constexpr (S == ui8)
    return com__ulonglongtoexctnume(value, dest, destlen, precision, scale);
  else if constexpr (S == ui2 || S == ui4)
    return com__ulongtoexctnume(value, dest, destlen, precision, scale);
  else
    return com__longtoexctnume(value, dest, destlen, precision, scale);
}

template <Type S, class Where>
CS_RETCODE to_num(const CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                  Where where) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  // Only the 64-bit sources choose a shape of their own. Deliberate: the mark for that replaces the
  // field in the caller's format and stays there.
  constexpr bool chooses_shape = sizeof(Value<S>) == 8;
  // The mark asks the builder for the longest precision of so many bytes, at scale 0.
  constexpr CS_INT builder_chooses = 255, length_for_builder = 10;
  const Value<S> value = load<Value<S>>(src);
  if (chooses_shape && destfmt->precision == CS_DFMT_FROMSOURCE)
    destfmt->precision = builder_chooses;
  else if (!exact::is_precision(destfmt->precision))
    return CS_CONV_BADPRECISION;
  // Deliberate: a negative scale is not refused here; its low byte is the scale.
  if (chooses_shape && destfmt->scale == CS_DFMT_FROMSOURCE)
    destfmt->scale = builder_chooses;
  else if (destfmt->scale > CS_MAX_SCALE)
    return CS_CONV_BADSCALE;
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  set_shape(*result, destfmt->precision, destfmt->scale);
  const CS_INT length = destfmt->precision == builder_chooses ? length_for_builder
                                                              : comn_num_getlen(destfmt->precision);
  const int status =
      build_numeric<S>(value, result->array, length, &result->precision, &result->scale);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  if (status != NUME_OK) [[unlikely]]
    return raise_bomb(where);
  return CS_SUCCEED;
}

// To either size of money. The builder that the source type takes works on the number widened to that
// builder's own type. What does not fit is what the builder leaves: the nearest value in the shorter
// size, and in the longer one the number as a count, without decimals.
template <Type S, class Money>
CS_RETCODE to_money(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  constexpr bool is_long = sizeof(Money) == sizeof(CS_MONEY);
  *destlen = sizeof(Money);
  const auto build = [&](auto number, auto long_builder, auto short_builder) noexcept {
    auto *const result = static_cast<Money *>(dest);
    if constexpr (is_long)
      return long_builder(result, &number);
    else
      return short_builder(result, &number);
  };
  const Value<S> value = load<Value<S>>(src);
  int status;
  if constexpr (S == i8)
    status = build(CS_BIGINT{value}, com__int8tomny, com__int8tomny4);
  else if constexpr (S == ui8)
    status = build(CS_UBIGINT{value}, com__uint8tomny, com__uint8tomny4);
  else if constexpr (S == ui2 || S == ui4)
    status = build(CS_UINT{value}, com__uinttomny, com__uinttomny4);
  else
    status = build(CS_INT{value}, com__inttomny, com__inttomny4);
  return status == NUME_OVERFLOW ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

template <Type S>
CS_RETCODE to_text(const CS_VOID *src, const CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen) noexcept {
  const PrintedInteger number(load<Value<S>>(src));
  const CS_INT length = number.length();
  const CS_INT capacity = destfmt->maxlength;
  const CS_INT format = destfmt->format;
  auto *text = static_cast<CS_CHAR *>(dest);
  *destlen = capacity < length ? capacity : length;
  if (text_fits(length, format, capacity)) [[likely]] {
    number.write(text);
    if ((format & pad_bits) == 0)
      return CS_SUCCEED;
    return pad_text(length, format, capacity, dest, destlen);
  }
  return show_star(format, capacity, dest, destlen);
}

template <Type S>
CS_RETCODE to_varchar(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  const PrintedInteger number(load<Value<S>>(src));
  const CS_INT length = number.length();
  auto *record = static_cast<CS_CHAR *>(dest);
  CS_CHAR *const text = record + offsetof(CS_VARCHAR, str);
  *destlen = sizeof(CS_VARCHAR);
  number.write(text);
  text[length] = '\0';
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(length));
  return CS_SUCCEED;
}

} // namespace comn::integer

// The members of a unit. `source` and `destination` are the short names of the types. The checks
// stand in the member itself, not in a template that it calls: so the compiler keeps no argument in
// a register on their account.
#define COMN_INTEGER_MEMBER(source, destination, destfmt_condition, ...)                           \
  CS_RETCODE comn_##source##to##destination(COMN_CONV_PARAMETERS) noexcept {                       \
    using namespace comn::integer;                                                                 \
    COMN_CHECK_CONV(COMN_HERE, srcfmt->datatype == Traits<source>::code, destfmt_condition);       \
    return __VA_ARGS__;                                                                            \
  }
#define COMN_INTEGER_TO_BIT(source)                                                                \
  COMN_INTEGER_MEMBER(source, bit, destfmt->datatype == CS_TYPE_BIT,                               \
                      to_bit<source>(src, dest, destlen))
#define COMN_INTEGER_TO_INTEGER(source, destination)                                               \
  COMN_INTEGER_MEMBER(source, destination, destfmt->datatype == Traits<destination>::code,         \
                      to_integer<source, destination>(src, dest, destlen))
#define COMN_INTEGER_TO_FLT4(source)                                                               \
  COMN_INTEGER_MEMBER(source, flt4, destfmt->datatype == CS_TYPE_REAL,                             \
                      to_float<source, CS_REAL>(src, dest, destlen))
#define COMN_INTEGER_TO_FLT8(source)                                                               \
  COMN_INTEGER_MEMBER(source, flt8, destfmt->datatype == CS_TYPE_FLOAT,                            \
                      to_float<source, CS_FLOAT>(src, dest, destlen))
#define COMN_INTEGER_TO_NUM(source)                                                                \
  COMN_INTEGER_MEMBER(source, num, comn::numeric_types.contains(destfmt->datatype),                \
                      to_num<source>(src, destfmt, dest, destlen, COMN_HERE))
#define COMN_INTEGER_TO_MONEY(source)                                                              \
  COMN_INTEGER_MEMBER(source, money, destfmt->datatype == CS_TYPE_MONEY,                           \
                      to_money<source, CS_MONEY>(src, dest, destlen))                              \
  COMN_INTEGER_MEMBER(source, mny4, destfmt->datatype == CS_TYPE_MONEY4,                           \
                      to_money<source, CS_MONEY4>(src, dest, destlen))
#define COMN_INTEGER_TO_CHAR(source)                                                               \
  COMN_INTEGER_MEMBER(source, char, comn::text_types.contains(destfmt->datatype),                  \
                      to_text<source>(src, destfmt, dest, destlen))
#define COMN_INTEGER_TO_VARCHAR(source)                                                            \
  COMN_INTEGER_MEMBER(source, varchar, destfmt->datatype == CS_TYPE_VARCHAR,                       \
                      to_varchar<source>(src, dest, destlen))

// The binary members only copy: they make no check of the datatypes.
#define COMN_INTEGER_TO_BIN(source)                                                                \
  CS_RETCODE comn_##source##tobin(COMN_CONV_PARAMETERS) noexcept {                                 \
    return comn::copy_to_binary<sizeof(comn::integer::Value<comn::integer::source>)>(              \
        COMN_CONV_ARGUMENTS);                                                                      \
  }
#define COMN_INTEGER_TO_VARBIN(source)                                                             \
  CS_RETCODE comn_##source##tovarbin(COMN_CONV_PARAMETERS) noexcept {                              \
    return comn::copy_to_varbinary<sizeof(comn::integer::Value<comn::integer::source>)>(           \
        COMN_CONV_ARGUMENTS);                                                                      \
  }

// All members of a source. The reports of failed checks name the unit that says this.
#define COMN_INTEGER_UNIT(source)                                                                  \
  COMN_INTEGER_TO_BIT(source)                                                                      \
  COMN_INTEGER_TO_INTEGER(source, i1)                                                              \
  COMN_INTEGER_TO_INTEGER(source, i2)                                                              \
  COMN_INTEGER_TO_INTEGER(source, i4)                                                              \
  COMN_INTEGER_TO_INTEGER(source, i8)                                                              \
  COMN_INTEGER_TO_INTEGER(source, ui2)                                                             \
  COMN_INTEGER_TO_INTEGER(source, ui4)                                                             \
  COMN_INTEGER_TO_INTEGER(source, ui8)                                                             \
  COMN_INTEGER_TO_FLT4(source)                                                                     \
  COMN_INTEGER_TO_FLT8(source)                                                                     \
  COMN_INTEGER_TO_NUM(source)                                                                      \
  COMN_INTEGER_TO_MONEY(source)                                                                    \
  COMN_INTEGER_TO_CHAR(source)                                                                     \
  COMN_INTEGER_TO_VARCHAR(source)                                                                  \
  COMN_INTEGER_TO_BIN(source)                                                                      \
  COMN_INTEGER_TO_VARBIN(source)

#endif
