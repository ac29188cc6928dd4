// The floating-point family: two units of the same members, which differ in the width of the source
// and in the limits of the 64-bit destinations. Each unit instantiates all of them with
// COMN_FLOATING_UNIT.
//
// Bounds are tested before the fraction goes, so 255.5 is above the range of a tinyint and -0.5 below
// it; what passes is truncated, never rounded.
#ifndef COMN_CONVERT_FLOATING_H
#define COMN_CONVERT_FLOATING_H

#include <cmath>
#include <limits>
#include <type_traits>

#include "conv_func.h"
#include "float_text.h"
#include "numeric.h"
#include "raw_copy.h"
#include "shape.h"
#include "whole_text.h"

namespace comn::floating {

struct flt4 {
  using Value = CS_REAL;
  static constexpr CS_INT code = CS_TYPE_REAL;
  // Deliberate: the 64-bit limits are these decimal numbers, not the extremes of the types, and
  // applications know the clamped values that follow from them.
  static constexpr CS_FLOAT bigint_limit = 9.22337e18, ubigint_limit = 1.84467e19;
};
struct flt8 {
  using Value = CS_FLOAT;
  static constexpr CS_INT code = CS_TYPE_FLOAT;
  // Deliberate, as above; and so they differ between the two sources.
  static constexpr CS_FLOAT bigint_limit = 9.22337203685477e18, ubigint_limit = 1.84467440737095e19;
};

// An integer destination: the bounds that a source is tested against, which are also what a clamped
// source becomes, and the status below them. Below is an overflow of the signed types and of tinyint,
// and an underflow of the other unsigned ones; callers can see the difference.
template <class Integer, CS_INT Code, CS_RETCODE Below>
struct IntegerOf {
  using Value = Integer;
  static constexpr CS_INT code = Code;
  static constexpr CS_RETCODE below = Below;
  template <class Source>
  static constexpr CS_FLOAT high = static_cast<CS_FLOAT>(std::numeric_limits<Integer>::max());
  template <class Source>
  static constexpr CS_FLOAT low = static_cast<CS_FLOAT>(std::numeric_limits<Integer>::min());
};
struct i1 : IntegerOf<CS_TINYINT, CS_TYPE_TINYINT, CS_CONV_OVERFLOW> {};
struct i2 : IntegerOf<CS_SMALLINT, CS_TYPE_SMALLINT, CS_CONV_OVERFLOW> {};
struct i4 : IntegerOf<CS_INT, CS_TYPE_INT, CS_CONV_OVERFLOW> {};
struct ui2 : IntegerOf<CS_USMALLINT, CS_TYPE_USMALLINT, CS_CONV_UNDERFLOW> {};
struct ui4 : IntegerOf<CS_UINT, CS_TYPE_UINT, CS_CONV_UNDERFLOW> {};
struct i8 : IntegerOf<CS_BIGINT, CS_TYPE_BIGINT, CS_CONV_OVERFLOW> {
  template <class Source>
  static constexpr CS_FLOAT high = Source::bigint_limit;
  template <class Source>
  static constexpr CS_FLOAT low = -Source::bigint_limit;
};
struct ui8 : IntegerOf<CS_UBIGINT, CS_TYPE_UBIGINT, CS_CONV_UNDERFLOW> {
  template <class Source>
  static constexpr CS_FLOAT high = Source::ubigint_limit;
};

// Truncated toward zero; the value is within the bounds of the type. What is not a number becomes
// what the processor's conversions make of it in a signed type that holds the destination, its
// lowest value, and of that the low bytes.
template <class Integer>
Integer truncate(CS_FLOAT value) noexcept {
  constexpr bool fits_int = sizeof(Integer) < sizeof(CS_INT) || std::is_same_v<Integer, CS_INT>;
  using Signed = std::conditional_t<fits_int, CS_INT, CS_BIGINT>;
  if (std::isnan(value)) [[unlikely]]
    return static_cast<Integer>(std::numeric_limits<Signed>::min());
  if constexpr (std::is_same_v<Integer, CS_UBIGINT>) {
    // Deliberate: 9223372036854775808 is taken off and 9223372036854775807 put back, one less than the
    // exact value. Integers to floats have the same difference the other way.
    constexpr CS_FLOAT top_bit = 9223372036854775808.0;
    if (value >= top_bit)
      return Integer{9223372036854775807} +
             static_cast<Integer>(static_cast<Signed>(value - top_bit));
  }
  return static_cast<Integer>(static_cast<Signed>(value));
}

template <class Source>
CS_FLOAT value_at(const CS_VOID *src) noexcept {
  return load<typename Source::Value>(src);
}

template <class Source, class Destination>
CS_RETCODE to_integer(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  using Integer = typename Destination::Value;
  constexpr CS_FLOAT low = Destination::template low<Source>;
  constexpr CS_FLOAT high = Destination::template high<Source>;
  *destlen = sizeof(Integer);
  const CS_FLOAT value = value_at<Source>(src);
  if (value < low) {
    store(dest, static_cast<Integer>(low));
    return Destination::below;
  }
  if (value > high) {
    store(dest, static_cast<Integer>(high));
    return CS_CONV_OVERFLOW;
  }
  store(dest, truncate<Integer>(value));
  return CS_SUCCEED;
}

// What is not a number counts as set.
template <class Source>
CS_RETCODE to_bit(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_BIT);
  store(dest, static_cast<CS_BIT>(value_at<Source>(src) != 0.0));
  return CS_SUCCEED;
}

// To the same or to a wider type. The bytes are copied where the width stays, whatever they hold.
template <class Source, class Float>
CS_RETCODE to_float(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Float);
  if constexpr (sizeof(typename Source::Value) == sizeof(Float)) {
    std::memmove(dest, src, sizeof(Float));
  } else if constexpr (sizeof(typename Source::Value) < sizeof(Float)) {
    store(dest, value_at<Source>(src));
  } else {
    constexpr CS_FLOAT limit = std::numeric_limits<Float>::max();
    const CS_FLOAT value = value_at<Source>(src);
    if (std::abs(value) > limit) {
      store(dest, std::copysign(std::numeric_limits<Float>::max(), static_cast<Float>(value)));
      return CS_CONV_OVERFLOW;
    }
    // There is no test at the small end.
    store(dest, static_cast<Float>(value));
  }
  return CS_SUCCEED;
}

template <class Source, class Where>
CS_RETCODE to_num(const CS_VOID *src, const CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                  Where where) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  if (const CS_RETCODE status = check_shape(destfmt->precision, destfmt->scale);
      status != CS_SUCCEED)
    return status;
  // The one negative scale that is refused: its low byte would let the digits choose.
  if (destfmt->scale == CS_DFMT_FROMSOURCE)
    return CS_CONV_BADSCALE;
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  const CS_FLOAT value = value_at<Source>(src);
  set_shape(*result, destfmt->precision, destfmt->scale);
  switch (com__doubletoexctnume(value, result->array, comn_num_getlen(destfmt->precision),
                                &result->precision, &result->scale)) {
  case NUME_OK:
    return CS_SUCCEED;
  case NUME_OVERFLOW:
  case NUME_SYNTAX: // not a number, infinite, or too far away to be shifted: data, not a fault
    return CS_CONV_OVERFLOW;
  default:
    return raise_bomb(where);
  }
}

// Deliberate: what does not fit, and what is not a number, is stored as zero, in the shorter size too,
// where all other ways to it leave the nearest value.
template <class Source, class Money>
CS_RETCODE to_money(CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  constexpr CS_INT width = sizeof(typename Source::Value);
  constexpr bool is_long = sizeof(Money) == sizeof(CS_MONEY);
  *destlen = sizeof(Money);
  CS_INT stored;
  if constexpr (std::is_same_v<Source, flt8>)
    stored =
        is_long ? com__flt8tomny(src, width, dest, 0, 0) : com__flt8tomny4(src, width, dest, 0);
  else
    stored =
        is_long ? com__flt4tomny(src, width, dest, 0, 0) : com__flt4tomny4(src, width, dest, 0);
  if (stored < 0) {
    store(dest, Money{});
    return CS_CONV_OVERFLOW;
  }
  return CS_SUCCEED;
}

// The text of a number: no sign on zero unless it is wanted, no zero before a point that comes first,
// and always a point or an exponent.
class Text {
public:
  explicit Text(CS_FLOAT value, bool signs_zero = false) noexcept {
    CS_CHAR printed[longest_double + 1];
    const CS_CHAR *from = printed;
    CS_INT count = print_double(printed, value == 0.0 && !signs_zero ? 0.0 : value);
    // Deliberate: a negative number keeps its zero.
    if (printed[0] == '0' && printed[1] == '.') {
      ++from;
      --count;
    }
    std::memcpy(text, from, static_cast<size_t>(count));
    if (std::none_of(text, text + count, [](CS_CHAR c) { return c == '.' || c == 'e'; })) {
      // An infinity and what is not a number get it too.
      text[count++] = '.';
      text[count++] = '0';
    }
    length_ = count;
  }

  const CS_CHAR *data() const noexcept { return text; }
  CS_INT length() const noexcept { return length_; }
  void write(CS_CHAR *dest) const noexcept {
    std::memcpy(dest, text, static_cast<size_t>(length_));
  }

private:
  CS_CHAR text[longest_double + 2]; // with ".0"
  CS_INT length_;
};

template <class Source>
CS_RETCODE to_text(const CS_VOID *src, const CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen) noexcept {
  const Text text(value_at<Source>(src));
  return whole_text(text.data(), text.length(), destfmt, dest, destlen);
}

template <class Source>
CS_RETCODE to_varchar(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  const Text text(value_at<Source>(src));
  return record_text(text.data(), text.length(), dest, destlen);
}

} // namespace comn::floating

// The members of a unit. `source` and `destination` are the short names of the types.
#define COMN_FLOATING_MEMBER(source, destination, destfmt_condition, ...)                          \
  COMN_CHECKED_CONV(comn_##source##to##destination,                                                \
                    srcfmt->datatype == comn::floating::source::code, destfmt_condition,           \
                    using namespace comn::floating;                                                \
                    return __VA_ARGS__;)
#define COMN_FLOATING_TO_INTEGER(source, destination)                                              \
  COMN_FLOATING_MEMBER(source, destination,                                                        \
                       destfmt->datatype == comn::floating::destination::code,                     \
                       to_integer<source, destination>(src, dest, destlen))
// The binary members only copy: they make no check of the datatypes.
#define COMN_FLOATING_TO_BINARY(source, destination, copy)                                         \
  CS_RETCODE comn_##source##to##destination(COMN_CONV_PARAMETERS) noexcept {                       \
    return COMN_TRACE(comn::copy<sizeof(comn::floating::source::Value)>(COMN_CONV_ARGUMENTS));     \
  }

// All members of a source. The reports of failed checks name the unit that says this.
#define COMN_FLOATING_UNIT(source)                                                                 \
  COMN_FLOATING_MEMBER(source, bit, destfmt->datatype == CS_TYPE_BIT,                              \
                       to_bit<source>(src, dest, destlen))                                         \
  COMN_FLOATING_TO_INTEGER(source, i1)                                                             \
  COMN_FLOATING_TO_INTEGER(source, i2)                                                             \
  COMN_FLOATING_TO_INTEGER(source, i4)                                                             \
  COMN_FLOATING_TO_INTEGER(source, i8)                                                             \
  COMN_FLOATING_TO_INTEGER(source, ui2)                                                            \
  COMN_FLOATING_TO_INTEGER(source, ui4)                                                            \
  COMN_FLOATING_TO_INTEGER(source, ui8)                                                            \
  COMN_FLOATING_MEMBER(source, flt4, destfmt->datatype == CS_TYPE_REAL,                            \
                       to_float<source, CS_REAL>(src, dest, destlen))                              \
  COMN_FLOATING_MEMBER(source, flt8, destfmt->datatype == CS_TYPE_FLOAT,                           \
                       to_float<source, CS_FLOAT>(src, dest, destlen))                             \
  COMN_FLOATING_MEMBER(source, num, comn::numeric_types.contains(destfmt->datatype),               \
                       to_num<source>(src, destfmt, dest, destlen, COMN_HERE))                     \
  COMN_FLOATING_MEMBER(source, money, destfmt->datatype == CS_TYPE_MONEY,                          \
                       to_money<source, CS_MONEY>(src, dest, destlen))                             \
  COMN_FLOATING_MEMBER(source, mny4, destfmt->datatype == CS_TYPE_MONEY4,                          \
                       to_money<source, CS_MONEY4>(src, dest, destlen))                            \
  COMN_FLOATING_MEMBER(source, char, comn::text_types.contains(destfmt->datatype),                 \
                       to_text<source>(src, destfmt, dest, destlen))                               \
  COMN_FLOATING_MEMBER(source, varchar, destfmt->datatype == CS_TYPE_VARCHAR,                      \
                       to_varchar<source>(src, dest, destlen))                                     \
  COMN_FLOATING_TO_BINARY(source, bin, copy_to_binary)                                             \
  COMN_FLOATING_TO_BINARY(source, varbin, copy_to_varbinary)

#endif
