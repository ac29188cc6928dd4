// The cast-context conversions: the rules of the family, on the bounds, parsers and printers of the
// matrix. The units bc_* instantiate the members, a unit for a source or a few.
//
// What differs from the matrix, each a policy with its name below: integers know no underflow
// (only_overflow), a number is shown whole or not at all (write_whole), varying text has neither header
// nor padding (write_varying), a numeric fills its capacity and may be allowed to lose digits (open_field,
// digits_dropped), and the context stands in for the locale (OfConstant, read_date, write_date).
#ifndef COMN_CONVERT_BRIDGE_H
#define COMN_CONVERT_BRIDGE_H

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "castctx.h"
#include "character.h"
#include "date_value.h"
#include "floating.h"
#include "integer.h"
#include "money_family.h"
#include "numeric_family.h"
#include "shape.h"

namespace comn::bridge {

// ---- statuses ----

// Deliberate: both ends of a range are one status between integers, where the matrix tells some low ends
// apart.
constexpr CS_RETCODE only_overflow(CS_RETCODE status) noexcept {
  return status == CS_CONV_UNDERFLOW ? CS_CONV_OVERFLOW : status;
}

inline bool may_drop_digits(const CAST_CONTEXT *context) noexcept {
  return (context->flags & CAST_MAY_DROP_DIGITS) != 0;
}

inline CS_RETCODE digits_dropped(const CAST_CONTEXT *context) noexcept {
  return may_drop_digits(context) ? CS_SUCCEED : CS_CONV_TRUNCATED;
}

// What a status of the exact layers means that is none of a text.
template <class Where>
CS_RETCODE built(int status, Where where) noexcept {
  if (status == NUME_OK) [[likely]]
    return CS_SUCCEED;
  if (status != NUME_OVERFLOW) [[unlikely]]
    raise_bomb(where);
  return CS_CONV_OVERFLOW;
}

// ---- text of numbers ----

inline CS_RETCODE without_room(CS_INT length, __CONSTANT *dest) noexcept {
  dest->len = std::min(dest->maxlen, length);
  return CS_CONV_OVERFLOW;
}

// Deliberate: no star stands for a number without room, as it does in the matrix, and none is cut. In
// line, so that the text of an integer stays in registers.
template <class Text>
[[gnu::always_inline]] inline CS_RETCODE write_whole(CAST_CONTEXT *context, const Text &text,
                                                     __CONSTANT *dest) noexcept {
  const CS_INT length = text.length();
  if (!text_fits(length, context->format, dest->maxlen)) [[unlikely]]
    return without_room(length, dest);
  dest->len = length;
  text.write(reinterpret_cast<CS_CHAR *>(dest->value));
  return (context->format & pad_bits) == 0 ? CS_SUCCEED : comnb__padchar(context, dest);
}

template <class Text>
[[gnu::always_inline]] inline CS_RETCODE write_varying(const Text &text,
                                                       __CONSTANT *dest) noexcept {
  const CS_INT length = text.length();
  if (dest->maxlen < length) [[unlikely]]
    return without_room(length, dest);
  dest->len = length;
  text.write(reinterpret_cast<CS_CHAR *>(dest->value));
  return CS_SUCCEED;
}

// ---- numerics ----

// Makes the capacity the length, and tests the shape that is wanted and the room for it: no part of a
// value is written where the whole has no room.
inline CS_RETCODE open_field(__CONSTANT *dest) noexcept {
  dest->len = dest->maxlen;
  if (const CS_RETCODE status = check_shape(dest->prec, dest->scale); status != CS_SUCCEED)
    return status;
  return dest->maxlen < own_Com__Nume_Prec_To_Len[dest->prec] ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

// A numeric source as the exact layers read it: the bytes of its precision, however far its length
// goes, since members that make numerics leave their capacity there. False for a malformed one.
inline bool read_shape(const __CONSTANT *src, __CONSTANT &value) noexcept {
  if (!exact::is_valid(src->prec, src->scale)) [[unlikely]]
    return false;
  value = {};
  value.len = std::min<CS_INT>(src->len, own_Com__Nume_Prec_To_Len[src->prec]);
  value.prec = src->prec;
  value.scale = src->scale;
  value.value = src->value;
  return true;
}

// ---- destinations, as the families of the matrix name them ----

#define COMNB_INTEGER(name, type)                                                                  \
  struct name {                                                                                    \
    using Value = type;                                                                            \
    static constexpr auto integer = comn::integer::name;                                           \
    using floating = comn::floating::name;                                                         \
    using money = comn::money_family::name;                                                        \
    using numeric = comn::numeric_family::name;                                                    \
  }
COMNB_INTEGER(i1, CS_TINYINT);
COMNB_INTEGER(i2, CS_SMALLINT);
COMNB_INTEGER(i4, CS_INT);
COMNB_INTEGER(i8, CS_BIGINT);
COMNB_INTEGER(ui2, CS_USMALLINT);
COMNB_INTEGER(ui4, CS_UINT);
COMNB_INTEGER(ui8, CS_UBIGINT);
#undef COMNB_INTEGER

struct flt4 {
  using Value = CS_REAL;
  using numeric = numeric_family::flt4;
};
struct flt8 {
  using Value = CS_FLOAT;
  using numeric = numeric_family::flt8;
};
struct money {
  using Value = CS_MONEY;
  using amount = money_family::money;
  using numeric = numeric_family::money;
};
struct mny4 {
  using Value = CS_MONEY4;
  using amount = money_family::mny4;
  using numeric = numeric_family::mny4;
};

// ---- sources that are numbers ----
//
// Each has a function for a kind of destination: to_bit, to_integer, to_float, to_money, to_num, to_char,
// to_varchar. Numerics and text of a number are the same for all, given the builder and the printer.

#define COMNB_PARAMETERS                                                                           \
  [[maybe_unused]] CAST_CONTEXT *context, [[maybe_unused]] __CONSTANT *src, __CONSTANT *dest

template <class Source>
struct Number {
  template <class Where>
  static CS_RETCODE to_num(COMNB_PARAMETERS, Where where) noexcept {
    if (const CS_RETCODE status = open_field(dest); status != CS_SUCCEED) [[unlikely]]
      return status;
    return built(Source::build(src->value, dest->value, own_Com__Nume_Prec_To_Len[dest->prec],
                               &dest->prec, &dest->scale),
                 where);
  }
  static CS_RETCODE to_char(COMNB_PARAMETERS) noexcept {
    return write_whole(context, Source::text(src, dest), dest);
  }
  static CS_RETCODE to_varchar(COMNB_PARAMETERS) noexcept {
    return write_varying(Source::text(src, dest), dest);
  }
};

template <integer::Type S>
struct FromInteger : Number<FromInteger<S>> {
  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    return integer::to_bit<S>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    return only_overflow(integer::to_integer<S, D::integer>(src->value, dest->value, &dest->len));
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    return integer::to_float<S, typename D::Value>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    return integer::to_money<S, typename D::Value>(src->value, dest->value, &dest->len);
  }
  static int build(const CS_BYTE *src, CS_BYTE *array, CS_INT length, CS_BYTE *precision,
                   CS_BYTE *scale) noexcept {
    return integer::build_numeric<S>(load<integer::Value<S>>(src), array, length, precision, scale);
  }
  static auto text(const __CONSTANT *src, const __CONSTANT *) noexcept {
    return PrintedInteger(load<integer::Value<S>>(src->value));
  }
};

template <class S>
struct FromFloating : Number<FromFloating<S>> {
  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    return floating::to_bit<S>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    return floating::to_integer<S, typename D::floating>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    return floating::to_float<S, typename D::Value>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    return floating::to_money<S, typename D::Value>(src->value, dest->value, &dest->len);
  }
  // Not a number, infinite, or too far away to be shifted: data, not a fault.
  static int build(const CS_BYTE *src, CS_BYTE *array, CS_INT length, CS_BYTE *precision,
                   CS_BYTE *scale) noexcept {
    const int status =
        com__doubletoexctnume(floating::value_at<S>(src), array, length, precision, scale);
    return status == NUME_SYNTAX ? NUME_OVERFLOW : status;
  }
  static auto text(const __CONSTANT *src, const __CONSTANT *) noexcept {
    return floating::Text(floating::value_at<S>(src->value));
  }
};

template <class S>
struct FromMoney : Number<FromMoney<S>> {
  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    return money_family::to_bit<S>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    return money_family::to_integer<S, typename D::money>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    return money_family::to_float<S, typename D::Value>(src->value, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    return money_family::to_money<S, typename D::amount>(src->value, dest->value, &dest->len);
  }
  static int build(const CS_BYTE *src, CS_BYTE *array, CS_INT length, CS_BYTE *precision,
                   CS_BYTE *scale) noexcept {
    CS_MONEY value = money_family::widened<S>(src);
    return com__mny8toexctnume(&value, array, length, precision, scale, 0);
  }
  // The precision of the destination is the number of decimals.
  static auto text(const __CONSTANT *src, const __CONSTANT *dest) noexcept {
    return money_family::Text(money_family::widened<S>(src->value), dest->prec);
  }
};

// A bit that is one is a tiny integer, whose text is its digit.
struct FromBit {
  using Tinyint = FromInteger<integer::i1>;
  struct Digit {
    static constexpr CS_INT length() noexcept { return 1; }
    void write(CS_CHAR *dest) const noexcept { *dest = static_cast<CS_CHAR>('0' + bit); }
    CS_BYTE bit;
  };
  static bool is_bit(const __CONSTANT *src) noexcept { return src->value[0] <= 1; }

  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? Tinyint::to_bit(context, src, dest) : CS_CONV_DOMAIN;
  }
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? Tinyint::to_integer<D>(context, src, dest) : CS_CONV_DOMAIN;
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? Tinyint::to_float<D>(context, src, dest) : CS_CONV_DOMAIN;
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? Tinyint::to_money<D>(context, src, dest) : CS_CONV_DOMAIN;
  }
  template <class Where>
  static CS_RETCODE to_num(COMNB_PARAMETERS, Where where) noexcept {
    return is_bit(src) ? Tinyint::to_num(context, src, dest, where) : CS_CONV_DOMAIN;
  }
  static CS_RETCODE to_char(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? write_whole(context, Digit{src->value[0]}, dest) : CS_CONV_DOMAIN;
  }
  static CS_RETCODE to_varchar(COMNB_PARAMETERS) noexcept {
    return is_bit(src) ? write_varying(Digit{src->value[0]}, dest) : CS_CONV_DOMAIN;
  }
};

struct FromNumeric {
  template <class Destination>
  static CS_RETCODE to_fixed(const __CONSTANT *src, __CONSTANT *dest) noexcept {
    dest->len = sizeof(typename Destination::Value);
    __CONSTANT value;
    if (!read_shape(src, value)) [[unlikely]]
      return CS_CONV_DOMAIN;
    return Destination::convert(value, dest->value, COMN_HERE);
  }
  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    return to_fixed<numeric_family::bit>(src, dest);
  }
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    return to_fixed<typename D::numeric>(src, dest);
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    return to_fixed<typename D::numeric>(src, dest);
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    return to_fixed<typename D::numeric>(src, dest);
  }

  // A valid source has no more bytes than an operand.
  static bool load(const __CONSTANT *src, exact::Operand &operand) noexcept {
    __CONSTANT value;
    return read_shape(src, value) && exact::load_operand(operand, value);
  }
  template <class Where>
  static CS_RETCODE to_num(COMNB_PARAMETERS, Where) noexcept {
    dest->len = dest->maxlen;
    exact::Operand operand;
    if (!load(src, operand)) [[unlikely]]
      return CS_CONV_DOMAIN;
    if (const CS_RETCODE status = open_field(dest); status != CS_SUCCEED) [[unlikely]]
      return status;
    const CS_BYTE sign = operand.length > 0 ? src->value[0] : CS_BYTE{0};
    const exact::Field field{dest->value, exact::magnitude_bytes(dest->prec), dest->prec};
    const CS_RETCODE status = numeric_family::to_shape(operand, sign, dest->scale, field);
    return status == CS_CONV_TRUNCATED ? digits_dropped(context) : status;
  }
  static exact::ValueText text(exact::Operand &operand) noexcept {
    return {operand.magnitude, operand.scale, operand.negative};
  }
  static CS_RETCODE to_char(COMNB_PARAMETERS) noexcept {
    exact::Operand operand;
    return load(src, operand) ? write_whole(context, text(operand), dest) : CS_CONV_DOMAIN;
  }
  static CS_RETCODE to_varchar(COMNB_PARAMETERS) noexcept {
    exact::Operand operand;
    return load(src, operand) ? write_varying(text(operand), dest) : CS_CONV_DOMAIN;
  }
};

// ---- sources that are text ----

// Text in the set of the context. `varying` takes the rules that the matrix has for text in a record.
template <bool varying>
struct OfConstant {
  static constexpr bool is_record = varying;
  OfConstant(const CAST_CONTEXT *context, const __CONSTANT *src) noexcept
      : bytes(src->value), told_length(src->len), length(src->len), set_(context->char_attrib) {}
  CS_ATTRIB *set() const noexcept { return set_; }
  CS_CHAR *text() const noexcept { return reinterpret_cast<CS_CHAR *>(bytes); }

  CS_BYTE *bytes;
  CS_INT told_length, length;

private:
  CS_ATTRIB *set_;
};

inline CS_RETCODE integer_read(ParseStatus status) noexcept {
  switch (status) {
  case parse_overflow:
    return CS_CONV_OVERFLOW;
  case parse_syntax:
    return CS_CONV_SYNTAX;
  default:
    return CS_SUCCEED;
  }
}

// `bytes` of the text, doubled where they are quotes.
inline CS_RETCODE double_quotes(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) noexcept {
  CS_DATAFMT from{}, to{};
  from.maxlength = src->len;
  to.maxlength = dest->maxlen;
  to.format = context->format;
  return comn__escchar(reinterpret_cast<CS_CHAR *>(src->value), &from,
                       reinterpret_cast<CS_CHAR *>(dest->value), &to, &dest->len,
                       context->char_attrib, text::quote);
}

// What of the text fits, in whole characters; true when that is not all.
template <class Source>
bool copy_fitting(const Source &source, __CONSTANT *dest) noexcept {
  dest->len = std::max(text::fitting_length(source, dest->maxlen), 0);
  std::memmove(dest->value, source.bytes, static_cast<size_t>(dest->len));
  return dest->len < source.length;
}

template <bool varying>
struct FromText {
  using Source = OfConstant<varying>;

  // Deliberate: a text that is no integer leaves the length, which it empties in the matrix.
  template <class D>
  static CS_RETCODE to_integer(COMNB_PARAMETERS) noexcept {
    dest->len = sizeof(typename D::Value);
    const auto number = text::read_integer<typename D::Value>(Source(context, src));
    store(dest->value, number.value);
    return integer_read(number.status);
  }
  static CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
    dest->len = sizeof(CS_BIT);
    const auto number = text::read_integer<CS_INT>(Source(context, src));
    const CS_RETCODE status = integer_read(number.status);
    if (status == CS_SUCCEED)
      store(dest->value, static_cast<CS_BIT>(number.value != 0));
    return status;
  }
  template <class D>
  static CS_RETCODE to_float(COMNB_PARAMETERS) noexcept {
    const Source source(context, src);
    if constexpr (std::is_same_v<D, flt8>)
      return text::to_flt8(source, dest->value, &dest->len);
    else
      return text::to_flt4(source, dest->value, &dest->len);
  }
  template <class D>
  static CS_RETCODE to_money(COMNB_PARAMETERS) noexcept {
    const Source source(context, src);
    if constexpr (std::is_same_v<D, money>)
      return text::to_money<CS_MONEY, com__mnyfromchar_mb>(source, dest->value, &dest->len);
    else
      return text::to_money<CS_MONEY4, com__mny4fromchar_mb>(source, dest->value, &dest->len);
  }
  template <class Where>
  static CS_RETCODE to_num(COMNB_PARAMETERS, Where where) noexcept {
    if (const CS_RETCODE status = open_field(dest); status != CS_SUCCEED)
      return status;
    // Deliberate, as in the matrix: all that is wrong with varying text is an overflow.
    constexpr CS_RETCODE no_number = varying ? CS_CONV_OVERFLOW : CS_CONV_SYNTAX;
    const Source source(context, src);
    text::NumberText number(source.bytes, source.length, source.set());
    if (source.length < 0 || !number.fits())
      return CS_CONV_SYNTAX;
    CS_BYTE *value = dest->value;
    CS_INT length = own_Com__Nume_Prec_To_Len[dest->prec];
    switch (com__subchartoexctnume(number.data(), number.length(), &value, &length, &dest->prec,
                                   &dest->scale, may_drop_digits(context))) {
    case NUME_OK:
      return CS_SUCCEED;
    case NUME_OVERFLOW:
      return CS_CONV_OVERFLOW;
    case NUME_SYNTAX:
      return no_number;
    case NUME_TRUNCATED:
      return varying ? CS_CONV_OVERFLOW : digits_dropped(context);
    default:
      raise_bomb(where);
      return CS_CONV_OVERFLOW;
    }
  }
  static CS_RETCODE to_char(COMNB_PARAMETERS) noexcept {
    const Source source(context, src);
    bool cut = false;
    if (!varying && (context->format & CS_DFMT_ESCQUOTE) != 0) {
      if (const CS_RETCODE status = double_quotes(context, src, dest); status != CS_SUCCEED)
        return status;
    } else {
      cut = copy_fitting(source, dest);
    }
    if (!varying && dest->len == dest->maxlen && (context->format & CS_DFMT_NULLTERM) != 0) {
      if (dest->len > 0)
        dest->value[dest->len - 1] = 0;
      return CS_CONV_TRUNCATED;
    }
    const CS_RETCODE status = comnb__padchar(context, dest);
    if (status == CS_CONV_OVERFLOW || (status == CS_SUCCEED && cut))
      return CS_CONV_TRUNCATED;
    return status;
  }
  static CS_RETCODE to_varchar(COMNB_PARAMETERS) noexcept {
    return copy_fitting(Source(context, src), dest) ? CS_CONV_TRUNCATED : CS_SUCCEED;
  }
};

// ---- dates ----

template <class Value, text::DateParser<Value> Parse>
CS_RETCODE read_date(COMNB_PARAMETERS) noexcept {
  dest->len = sizeof(Value);
  auto value = load<Value>(dest->value);
  const int parsed = Parse(&value, reinterpret_cast<CS_CHAR *>(src->value), src->len,
                           context->style, context->dateorder, context->months, context->shrtmonths,
                           context->char_attrib, nullptr);
  store(dest->value, value);
  return text::date_read(parsed, &dest->len);
}

// Lays the text out in the capacity. CS_SUCCEED when that is the whole text, yet to be padded.
template <class Kind>
CS_RETCODE write_date(COMNB_PARAMETERS) noexcept {
  const CS_INT room = std::max(dest->maxlen, 0);
  const CS_INT length = Kind::write(src->value, reinterpret_cast<CS_CHAR *>(dest->value), room,
                                    context->style, context->shrtmonths);
  dest->len = length == 0 ? room : std::max(length, 0);
  if (length == 0)
    return CS_CONV_TRUNCATED;
  return length < 0 ? date_value::layout_failure(length) : CS_SUCCEED;
}

template <class Kind>
CS_RETCODE date_to_char(COMNB_PARAMETERS) noexcept {
  const CS_RETCODE status = write_date<Kind>(context, src, dest);
  return status == CS_SUCCEED ? comnb__padchar(context, dest) : status;
}

template <class Source, class Dest>
CS_RETCODE date_to_date(COMNB_PARAMETERS) noexcept {
  return date_value::convert<Source, Dest>(src->value, dest->value, &dest->len);
}

} // namespace comn::bridge

// ---- members ----

// A member by the short names of its types: the last argument is the function that does the work.
#define COMNB_MEMBER(source, destination, ...)                                                     \
  CS_RETCODE comnb_##source##to##destination(CAST_CONTEXT *context, __CONSTANT *src,               \
                                             __CONSTANT *dest) noexcept {                          \
    using namespace comn::bridge;                                                                  \
    return COMN_TRACE((__VA_ARGS__(context, src, dest)));                                          \
  }

// The members that sources of numbers and text have in common; the last argument is the source.
#define COMNB_UNIT(source, ...)                                                                    \
  COMNB_MEMBER(source, bit, __VA_ARGS__::to_bit)                                                   \
  COMNB_MEMBER(source, i1, __VA_ARGS__::to_integer<i1>)                                            \
  COMNB_MEMBER(source, i2, __VA_ARGS__::to_integer<i2>)                                            \
  COMNB_MEMBER(source, i4, __VA_ARGS__::to_integer<i4>)                                            \
  COMNB_MEMBER(source, i8, __VA_ARGS__::to_integer<i8>)                                            \
  COMNB_MEMBER(source, ui2, __VA_ARGS__::to_integer<ui2>)                                          \
  COMNB_MEMBER(source, ui4, __VA_ARGS__::to_integer<ui4>)                                          \
  COMNB_MEMBER(source, ui8, __VA_ARGS__::to_integer<ui8>)                                          \
  COMNB_MEMBER(source, flt4, __VA_ARGS__::to_float<flt4>)                                          \
  COMNB_MEMBER(source, flt8, __VA_ARGS__::to_float<flt8>)                                          \
  COMNB_MEMBER(source, mny4, __VA_ARGS__::to_money<mny4>)                                          \
  COMNB_MEMBER(source, money, __VA_ARGS__::to_money<money>)                                        \
  COMNB_MEMBER(source, char, __VA_ARGS__::to_char)                                                 \
  COMNB_MEMBER(source, varchar, __VA_ARGS__::to_varchar)                                           \
  CS_RETCODE comnb_##source##tonum(CAST_CONTEXT *context, __CONSTANT *src,                         \
                                   __CONSTANT *dest) noexcept {                                    \
    using namespace comn::bridge;                                                                  \
    return COMN_TRACE((__VA_ARGS__::to_num(context, src, dest, COMN_HERE)));                       \
  }

// Dates by the short names of their values; a member's name is its own.
#define COMNB_DATE_MEMBER(name_source, name_destination, source, destination)                      \
  COMNB_MEMBER(name_source, name_destination,                                                      \
               date_to_date<comn::date_value::source, comn::date_value::destination>)
#define COMNB_DATE(source, destination) COMNB_DATE_MEMBER(source, destination, source, destination)
#define COMNB_DATE_TO_CHAR(source)                                                                 \
  COMNB_MEMBER(source, char, date_to_char<comn::date_value::source>)
#define COMNB_DATE_TO_VARCHAR(source)                                                              \
  COMNB_MEMBER(source, varchar, write_date<comn::date_value::source>)

#endif
