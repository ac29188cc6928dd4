// The two money families: the same members, which differ in the size of the count. Each unit
// instantiates all of them with COMN_MONEY_UNIT.
//
// Numbers without decimals are rounded, half away from zero, where floats are truncated.
#ifndef COMN_CONVERT_MONEY_FAMILY_H
#define COMN_CONVERT_MONEY_FAMILY_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "conv_func.h"
#include "money.h"
#include "pad.h"
#include "raw_copy.h"
#include "shape.h"
#include "whole_text.h"

namespace comn::money_family {

struct money {
  using Value = CS_MONEY;
  static constexpr CS_INT code = CS_TYPE_MONEY;
};
struct mny4 {
  using Value = CS_MONEY4;
  static constexpr CS_INT code = CS_TYPE_MONEY4;
};

// An integer destination and the status below its range. Deliberate: that is an underflow of the
// unsigned 64-bit type alone, an overflow of all others.
template <class Integer, CS_INT Code, CS_RETCODE Below = CS_CONV_OVERFLOW>
struct IntegerOf {
  using Value = Integer;
  static constexpr CS_INT code = Code;
  static constexpr CS_RETCODE below = Below;
  // Deliberate: the unsigned types take nothing below zero, not even what rounds to it. Tinyint does.
  static constexpr bool tests_sign =
      !std::numeric_limits<Integer>::is_signed && sizeof(Integer) > 1;
};
struct i1 : IntegerOf<CS_TINYINT, CS_TYPE_TINYINT> {};
struct i2 : IntegerOf<CS_SMALLINT, CS_TYPE_SMALLINT> {};
struct i4 : IntegerOf<CS_INT, CS_TYPE_INT> {};
struct i8 : IntegerOf<CS_BIGINT, CS_TYPE_BIGINT> {};
struct ui2 : IntegerOf<CS_USMALLINT, CS_TYPE_USMALLINT> {};
struct ui4 : IntegerOf<CS_UINT, CS_TYPE_UINT> {};
struct ui8 : IntegerOf<CS_UBIGINT, CS_TYPE_UBIGINT, CS_CONV_UNDERFLOW> {};

template <class Source>
auto count_at(const CS_VOID *src) noexcept {
  return exact::load_count(static_cast<const typename Source::Value *>(src));
}

// The source in the longer form, where no address matters.
template <class Source>
CS_MONEY widened(const CS_VOID *src) noexcept {
  CS_MONEY value;
  exact::store_count(&value, int64_t{count_at<Source>(src)});
  return value;
}

// Out of range the nearest value is stored.
template <class Source, class Destination>
CS_RETCODE to_integer(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  using Integer = typename Destination::Value;
  using Limits = std::numeric_limits<Integer>;
  *destlen = sizeof(Integer);
  CS_MONEY value = widened<Source>(src);
  CS_BIGINT whole;
  com__mnytoint8(&value, &whole);
  if (Destination::tests_sign ? value.mnyhigh < 0 : std::cmp_less(whole, Limits::min())) {
    store(dest, Limits::min());
    return Destination::below;
  }
  if (std::cmp_greater(whole, Limits::max())) {
    store(dest, Limits::max());
    return CS_CONV_OVERFLOW;
  }
  store(dest, static_cast<Integer>(whole));
  return CS_SUCCEED;
}

template <class Source>
CS_RETCODE to_bit(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_BIT);
  store(dest, static_cast<CS_BIT>(count_at<Source>(src) != 0));
  return CS_SUCCEED;
}

// Deliberate: the shorter form is one quotient, the longer one a sum of its words, and so their
// results for the same amount may differ in the last bit.
template <class Source>
CS_FLOAT to_double(CS_VOID *src) noexcept {
  CS_FLOAT number;
  if constexpr (std::is_same_v<Source, mny4>)
    com__mny4toflt8(src, &number);
  else
    com__mnytoflt8(src, sizeof(CS_MONEY), &number, sizeof number, 0);
  return number;
}

template <class Source, class Float>
CS_RETCODE to_float(CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Float);
  store(dest, static_cast<Float>(to_double<Source>(src)));
  return CS_SUCCEED;
}

template <class Source, class Where>
CS_RETCODE to_num(const CS_VOID *src, const CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                  Where where) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  if (const CS_RETCODE status = check_shape(destfmt->precision, destfmt->scale);
      status != CS_SUCCEED)
    return status;
  CS_MONEY value = widened<Source>(src);
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  // A low byte above the limit becomes the scale 0 in the builder.
  set_shape(*result, destfmt->precision, destfmt->scale);
  const int status = com__mny8toexctnume(&value, result->array, comn_num_getlen(destfmt->precision),
                                         &result->precision, &result->scale, 0);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  if (status != NUME_OK) [[unlikely]]
    return raise_bomb(where);
  return CS_SUCCEED;
}

// To the same size, to the longer or to the shorter one, where what does not fit becomes the nearest
// value.
template <class Source, class Destination>
CS_RETCODE to_money(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  using Value = typename Destination::Value;
  *destlen = sizeof(Value);
  auto *const result = static_cast<Value *>(dest);
  if constexpr (sizeof(Value) < sizeof(typename Source::Value)) {
    int32_t narrowed;
    const bool fits = exact::narrow(count_at<Source>(src), narrowed);
    exact::store_count(result, narrowed);
    return fits ? CS_SUCCEED : CS_CONV_OVERFLOW;
  } else {
    exact::store_count(result, count_at<Source>(src));
    return CS_SUCCEED;
  }
}

// The text of a value, with as many decimals as a precision says: two for 0, four at most.
class Text {
public:
  Text(CS_MONEY value, CS_INT precision) noexcept {
    const CS_INT decimals = std::min(precision, exact::money_decimals);
    start = com__mnytochar(&value, room, sizeof room, decimals << 8);
  }
  Text(const Text &) = delete;
  Text &operator=(const Text &) = delete;

  const CS_CHAR *data() const noexcept { return start; }
  CS_INT length() const noexcept { return static_cast<CS_INT>(room + sizeof room - start); }
  void write(CS_CHAR *dest) const noexcept {
    std::memcpy(dest, start, static_cast<size_t>(length()));
  }

private:
  CS_CHAR room[24]; // the longest text has 21
  const CS_CHAR *start;
};

// Deliberate: a negative precision is mended in the caller's record.
inline CS_INT mended_precision(CS_DATAFMT *destfmt) noexcept {
  return destfmt->precision = std::max(destfmt->precision, 0);
}

template <class Source>
CS_RETCODE to_text(const CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen) noexcept {
  const Text text(widened<Source>(src), mended_precision(destfmt));
  // Deliberate: a text without room is cut, where other numbers become a star.
  *destlen = std::clamp(destfmt->maxlength, 0, text.length());
  std::memcpy(dest, text.data(), static_cast<size_t>(*destlen));
  return pad_text(text.length(), destfmt->format, destfmt->maxlength, dest, destlen);
}

template <class Source>
CS_RETCODE to_varchar(const CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen) noexcept {
  const Text text(widened<Source>(src), mended_precision(destfmt));
  return record_text(text.data(), text.length(), dest, destlen);
}

} // namespace comn::money_family

// The members of a unit. `source` and `destination` are the short names of the types.
#define COMN_MONEY_MEMBER(source, destination, destfmt_condition, ...)                             \
  COMN_CHECKED_CONV(comn_##source##to##destination,                                                \
                    srcfmt->datatype == comn::money_family::source::code, destfmt_condition,       \
                    using namespace comn::money_family;                                            \
                    return __VA_ARGS__;)
#define COMN_MONEY_TO_INTEGER(source, destination)                                                 \
  COMN_MONEY_MEMBER(source, destination,                                                           \
                    destfmt->datatype == comn::money_family::destination::code,                    \
                    to_integer<source, destination>(src, dest, destlen))
#define COMN_MONEY_TO_MONEY(source, destination)                                                   \
  COMN_MONEY_MEMBER(source, destination,                                                           \
                    destfmt->datatype == comn::money_family::destination::code,                    \
                    to_money<source, destination>(src, dest, destlen))

// All members of a source. The reports of failed checks name the unit that says this.
#define COMN_MONEY_UNIT(source)                                                                    \
  COMN_MONEY_MEMBER(source, bit, destfmt->datatype == CS_TYPE_BIT,                                 \
                    to_bit<source>(src, dest, destlen))                                            \
  COMN_MONEY_TO_INTEGER(source, i1)                                                                \
  COMN_MONEY_TO_INTEGER(source, i2)                                                                \
  COMN_MONEY_TO_INTEGER(source, i4)                                                                \
  COMN_MONEY_TO_INTEGER(source, i8)                                                                \
  COMN_MONEY_TO_INTEGER(source, ui2)                                                               \
  COMN_MONEY_TO_INTEGER(source, ui4)                                                               \
  COMN_MONEY_TO_INTEGER(source, ui8)                                                               \
  COMN_MONEY_MEMBER(source, flt4, destfmt->datatype == CS_TYPE_REAL,                               \
                    to_float<source, CS_REAL>(src, dest, destlen))                                 \
  COMN_MONEY_MEMBER(source, flt8, destfmt->datatype == CS_TYPE_FLOAT,                              \
                    to_float<source, CS_FLOAT>(src, dest, destlen))                                \
  COMN_MONEY_MEMBER(source, num, comn::numeric_types.contains(destfmt->datatype),                  \
                    to_num<source>(src, destfmt, dest, destlen, COMN_HERE))                        \
  COMN_MONEY_TO_MONEY(source, money)                                                               \
  COMN_MONEY_TO_MONEY(source, mny4)                                                                \
  COMN_MONEY_MEMBER(source, char, comn::text_types.contains(destfmt->datatype),                    \
                    to_text<source>(src, destfmt, dest, destlen))                                  \
  COMN_MONEY_MEMBER(source, varchar, destfmt->datatype == CS_TYPE_VARCHAR,                         \
                    to_varchar<source>(src, destfmt, dest, destlen))                               \
  COMN_MONEY_MEMBER(source, bin, comn::binary_types.contains(destfmt->datatype),                   \
                    comn::copy_to_binary<sizeof(source::Value)>(COMN_CONV_ARGUMENTS))              \
  COMN_MONEY_MEMBER(source, varbin, destfmt->datatype == CS_TYPE_VARBINARY,                        \
                    comn::copy_to_varbinary<sizeof(source::Value)>(COMN_CONV_ARGUMENTS))

#endif
