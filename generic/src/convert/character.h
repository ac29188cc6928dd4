// Conversions from text: bytes on their own and bytes in a record. Each unit instantiates all members
// with COMN_CHARACTER_UNIT; where the two differ, the source's type tells.
//
// Text may be in any character set of its locale: digits, signs and blanks are recognised through the
// attributes of the set, and a cut never splits a character.
#ifndef COMN_CONVERT_CHARACTER_H
#define COMN_CONVERT_CHARACTER_H

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "comloc.h"
#include "conv_func.h"
#include "datetime.h"
#include "float_text.h"
#include "hex_text.h"
#include "locale_of.h"
#include "number.h"
#include "numeric.h"
#include "pad.h"
#include "parse_integer.h"
#include "reduce.h"
#include "text_source.h"
#include "zrvintl.h"

namespace comn::text {

// ---- to integers ----

// What a parser could not read leaves no length.
inline CS_RETCODE syntax_error(CS_INT *destlen) noexcept {
  *destlen = 0;
  return CS_CONV_SYNTAX;
}

inline CS_RETCODE parsed(ParseStatus status, CS_INT *destlen) noexcept {
  if (status == parse_syntax)
    return syntax_error(destlen);
  return status == parse_overflow ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

template <class Integer, class Source>
ParsedInteger<Integer> read_integer(const Source &source) noexcept {
  return parse_integer<Integer>(source.bytes, source.length, source.set());
}

template <class Integer, class Source>
CS_RETCODE to_integer(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Integer);
  const auto number = read_integer<Integer>(source);
  store(dest, number.value);
  return parsed(number.status, destlen);
}

// Only a number is stored.
template <class Source>
CS_RETCODE to_bit(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_BIT);
  const auto number = read_integer<CS_INT>(source);
  const CS_RETCODE status = parsed(number.status, destlen);
  if (status == CS_SUCCEED)
    store(dest, static_cast<CS_BIT>(number.value != 0));
  return status;
}

// ---- to floats ----

// The text up to its last character that is no white space.
inline CS_INT trimmed_length(const CS_CHAR *text, CS_INT length) noexcept {
  while (length > 0 && com_isspace(static_cast<CS_BYTE>(text[length - 1])) != 0)
    --length;
  return length;
}

struct NumberRead {
  CS_FLOAT value;
  bool vanished;   // a number too small for a double
  bool overflowed; // a number too large for one
  bool whole;      // nothing but white space is left over
};

// False for a text too long to be a number.
template <class Source>
bool read_number(const Source &source, NumberRead &number) noexcept {
  constexpr CS_INT longest = 1023;
  if (source.told_length > longest || (!Source::is_record && source.told_length < 0))
    return false;
  NumberText text(source.bytes, source.length, source.set());
  const CS_INT length = trimmed_length(text.data(), text.length());
  const ParsedDouble read = parse_double(text.data(), length);
  errno = read.is_out_of_range ? ERANGE : 0;
  number = {read.value, read.is_out_of_range && read.value == 0.0,
            read.is_out_of_range && read.value != 0.0, read.end == text.data() + length};
  return true;
}

// The largest value of the type, with the sign of `value`.
template <class Float>
Float extreme(CS_FLOAT value) noexcept {
  return value < 0.0 ? std::numeric_limits<Float>::lowest() : std::numeric_limits<Float>::max();
}

template <class Source>
CS_RETCODE to_flt8(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  NumberRead number;
  if (!read_number(source, number))
    return syntax_error(destlen);
  *destlen = sizeof(CS_FLOAT);
  // Deliberate: a range is told before bad text behind the number.
  const bool infinite = std::isinf(number.value);
  store(dest, infinite ? extreme<CS_FLOAT>(number.value) : number.value);
  if (number.vanished)
    return CS_CONV_UNDERFLOW;
  if (infinite)
    return CS_CONV_OVERFLOW;
  return number.whole ? CS_SUCCEED : syntax_error(destlen);
}

// Deliberate: unlike above, an infinity that is spelled out, and a number beyond singles, come after
// bad text behind them.
template <class Source>
CS_RETCODE to_flt4(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  NumberRead number;
  if (!read_number(source, number))
    return syntax_error(destlen);
  *destlen = sizeof(CS_REAL);
  if (number.vanished) {
    store(dest, static_cast<CS_REAL>(number.value));
    return CS_CONV_UNDERFLOW;
  }
  if (!number.overflowed && !number.whole)
    return syntax_error(destlen);
  if (std::abs(number.value) > CS_FLOAT{std::numeric_limits<CS_REAL>::max()}) {
    store(dest, extreme<CS_REAL>(number.value));
    return CS_CONV_OVERFLOW;
  }
  store(dest, static_cast<CS_REAL>(number.value));
  return CS_SUCCEED;
}

// ---- to numeric ----

struct Shape {
  CS_BYTE precision, scale;
};

// The parser chooses what has this mark.
constexpr CS_BYTE from_text = 255;

// The shape that a format asks for.
template <class Source>
CS_RETCODE wanted_shape(const CS_DATAFMT *destfmt, Shape &shape) noexcept {
  // Deliberate: text in a record has no shape of its own, so the mark is a precision out of range.
  const auto chooses = [](CS_INT field) {
    return !Source::is_record && field == CS_DFMT_FROMSOURCE;
  };
  if (!chooses(destfmt->precision) && !exact::is_precision(destfmt->precision))
    return CS_CONV_BADPRECISION;
  if (!chooses(destfmt->scale) &&
      (destfmt->scale > CS_MAX_SCALE || destfmt->scale == CS_DFMT_FROMSOURCE))
    return CS_CONV_BADSCALE;
  shape = {chooses(destfmt->precision) ? from_text : static_cast<CS_BYTE>(destfmt->precision),
           chooses(destfmt->scale) ? from_text : static_cast<CS_BYTE>(destfmt->scale)};
  return CS_SUCCEED;
}

// Reads the text into the array of `dest`; returns the parser's status.
inline int read_numeric(NumberText &text, CS_INT length, Shape shape, CS_NUMERIC *dest) noexcept {
  dest->precision = shape.precision;
  dest->scale = shape.scale;
  CS_BYTE *value = dest->array;
  CS_INT capacity = shape.precision == from_text ? 0 : comn_num_getlen(shape.precision);
  const int status = com__subchartoexctnume(text.data(), length, &value, &capacity,
                                            &dest->precision, &dest->scale, 0);
  // A precision that the parser chose leaves the value at the end of the array.
  if (value != dest->array)
    std::memmove(dest->array, value, static_cast<size_t>(capacity));
  return status;
}

inline CS_RETCODE to_num(const CS_DATAFMT *srcfmt, const CS_DATAFMT *destfmt, CS_VOID *dest,
                         CS_INT *destlen, const of_char &source) noexcept {
  if (source.told_length < 0)
    return syntax_error(destlen);
  Shape shape;
  if (const CS_RETCODE status = wanted_shape<of_char>(destfmt, shape); status != CS_SUCCEED)
    return status;
  NumberText text(source.bytes, source.length, source.set());
  if (!text.fits())
    return syntax_error(destlen);
  CS_INT length = text.length();
  if ((srcfmt->format & CS_DFMT_NULLTERM) != 0)
    length = static_cast<CS_INT>(strnlen(text.data(), static_cast<size_t>(length)));
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  const int status = read_numeric(text, length, shape, result);
  *destlen = offsetof(CS_NUMERIC, array) + (result->precision <= CS_MAX_PREC
                                                ? own_Com__Nume_Prec_To_Len[result->precision]
                                                : CS_INT{sizeof result->array});
  switch (status) {
  case NUME_OVERFLOW:
    return CS_CONV_OVERFLOW;
  case NUME_SYNTAX:
    return syntax_error(destlen);
  case NUME_TRUNCATED:
    return CS_CONV_TRUNCATED;
  default:
    return CS_SUCCEED;
  }
}

// Deliberate: text in a record must not be empty, its length is always that of the whole record, and
// all that the parser finds wrong with it is an overflow.
template <class Where>
CS_RETCODE to_num(const CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                  const of_varchar &source, Where where) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  if (source.told_length < 1)
    return raise_bomb(where);
  if (source.told_length > 1023)
    return syntax_error(destlen);
  Shape shape;
  if (const CS_RETCODE status = wanted_shape<of_varchar>(destfmt, shape); status != CS_SUCCEED)
    return status;
  NumberText text(source.bytes, source.length, source.set());
  switch (read_numeric(text, text.length(), shape, static_cast<CS_NUMERIC *>(dest))) {
  case NUME_OK:
    return CS_SUCCEED;
  case NUME_OVERFLOW:
  case NUME_SYNTAX:
  case NUME_TRUNCATED:
    return CS_CONV_OVERFLOW;
  default:
    return raise_bomb(where);
  }
}

// ---- to money ----

template <class Money, int (*Parse)(Money *, CS_CHAR *, CS_INT, CS_INT, CS_ATTRIB *), class Source>
CS_RETCODE to_money(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Money);
  auto value = load<Money>(dest);
  const int status =
      Parse(&value, reinterpret_cast<CS_CHAR *>(source.bytes), source.length, 0, source.set());
  store(dest, value);
  if (status == NUME_SYNTAX)
    return syntax_error(destlen);
  return status == NUME_OVERFLOW ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

// ---- to dates and times ----

template <class Value>
using DateParser = int (*)(Value *, CS_CHAR *, CS_INT, CS_INT, CS_INT, CS_CHAR **, CS_CHAR **,
                           CS_ATTRIB *, CS_BOOL *);

// What the result of a parser means.
inline CS_RETCODE date_read(int parsed, CS_INT *destlen) noexcept {
  if (parsed < 0)
    return syntax_error(destlen);
  return parsed == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// The style that a text is read in: that of the locale's date-times, once the language's tables are
// not the only ones.
inline CS_INT style_of(const CS_DATEINFO *info) noexcept {
  return info != nullptr && info->next != nullptr ? info->convertfmt : 0;
}

// The tables that tell the style. Deliberate: short date-times go by the first ones of the process.
template <class Value>
const CS_DATEINFO *dateinfo_of(const CS_CONTEXT *context, const CsLocCache *cache) noexcept {
  if constexpr (std::is_same_v<Value, CS_DATETIME4>)
    return static_cast<const CS_DATEINFO *>(context->ctxglobals->cmg_datetime);
  else
    return cache->locdateinfo;
}

// Through UTF-8, which the parser reads: at most three times as long.
template <class Value, DateParser<Value> Parse, class Source, class Where>
CS_RETCODE to_date(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *dest, CS_INT *destlen,
                   const Source &source, Where where) noexcept {
  *destlen = sizeof(Value);
  const CS_LOCALE *const locale = locale_of(context, srcfmt);
  if (locale == nullptr || locale->timeptr == nullptr || context->ctxglobals == nullptr ||
      context->ctxglobals->cmg_utf8_charset == nullptr) [[unlikely]]
    return raise_null(where);
  auto *const cache = static_cast<CsLocCache *>(locale->timeptr);
  const auto *const utf8 = static_cast<const CsCharDesc *>(context->ctxglobals->cmg_utf8_charset);

  // Deliberate: the room for a record goes by its format too, not by its length.
  constexpr CS_INT longest = std::numeric_limits<CS_INT>::max() / 3;
  if (srcfmt->maxlength > longest)
    return CS_MEM_ERROR;
  const CS_INT room = 3 * std::max<CS_INT>(srcfmt->maxlength, 0);
  auto *const utf8_text = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(room)));
  if (utf8_text == nullptr)
    return CS_MEM_ERROR;
  CS_DATAFMT format = *srcfmt;
  format.datatype = CS_TYPE_CHAR; // of a record it is the text alone
  format.maxlength = source.length;
  CS_INT length = 0;
  CS_RETCODE status =
      comn__convt_to_utf8(context, 1, &format, cache, source.bytes, utf8_text, room, &length);
  if (has_converted(status)) {
    auto value = load<Value>(dest);
    CS_BOOL truncated = 0;
    const int parsed =
        Parse(&value, utf8_text, length, style_of(dateinfo_of<Value>(context, cache)),
              com_intl_dateorder_id(context, srcfmt), com_intl_months(context, srcfmt),
              com_intl_shortmonths(context, srcfmt), utf8->char_attrib, &truncated);
    store(dest, value);
    status = date_read(parsed, destlen);
  }
  comn_free(utf8_text);
  return status;
}

// ---- to text ----

inline const CsLocCache *ctype_of(const CS_LOCALE *locale) noexcept {
  return static_cast<const CsLocCache *>(locale->ctypeptr);
}

// The locales of the two sides.
struct Sides {
  const CS_LOCALE *from, *to;

  Sides(const CS_CONTEXT *context, const CS_DATAFMT *srcfmt, const CS_DATAFMT *destfmt) noexcept
      : from(locale_of(context, srcfmt)), to(locale_of(context, destfmt)) {}
  bool are_there() const noexcept { return from != nullptr && to != nullptr; }
  bool have_one_cache() const noexcept { return from->ctypeptr == to->ctypeptr; }
  bool have_one_set() const noexcept {
    if (have_one_cache())
      return true;
    return from->ctypeptr != nullptr && to->ctypeptr != nullptr &&
           ctype_of(from)->locchardesc == ctype_of(to)->locchardesc;
  }
};

// Text of the source's set as text of the destination's, at `room` bytes. Neither side is a record any
// more.
template <class Source>
CS_RETCODE convert_charset(CS_CONTEXT *context, const CS_DATAFMT *srcfmt, const Source &source,
                           const CS_DATAFMT *destfmt, CS_INT room, CS_VOID *dest,
                           CS_INT *destlen) noexcept {
  CS_DATAFMT from = *srcfmt, to = *destfmt;
  from.datatype = to.datatype = CS_TYPE_CHAR;
  from.maxlength = source.length;
  to.maxlength = room;
  return comn_charset_convert(context, CS_LCTYPE_CTYPE, &from, source.bytes, &to, dest, destlen);
}

// The longest piece of the source that fits, in whole characters.
template <class Source>
CS_INT fitting_length(const Source &source, CS_INT room) noexcept {
  CS_ATTRIB *const set = source.set();
  if (is_multi_byte(set))
    return comnb_truncate_chars(set, source.bytes, source.length, room);
  return std::min(source.length, room);
}

// What CS_DFMT_ESCQUOTE doubles.
constexpr CS_INT quote = '\'';

template <class Source, class Where>
CS_RETCODE to_text(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen, const Source &source, Where where) noexcept {
  const CS_INT room = destfmt->maxlength;
  // Deliberate: text in a record is never quoted, nor ended by force.
  const bool quotes = !Source::is_record && (destfmt->format & CS_DFMT_ESCQUOTE) != 0;
  bool cut = false;
  *destlen = std::min(source.length, room);
  if (*destlen > 0) {
    const Sides sides(context, srcfmt, destfmt);
    if (!sides.are_there()) [[unlikely]]
      return raise_null(where);
    const bool same = Source::is_record ? sides.have_one_cache() : sides.have_one_set();
    if (!same) {
      const CS_RETCODE status =
          convert_charset(context, srcfmt, source, destfmt, room, dest, destlen);
      cut = status == CS_CONV_TRUNCATED;
      if (!cut && !has_converted(status))
        return status;
    } else {
      cut = *destlen < source.length;
    }
    if (quotes) {
      // From the text as it came, in either case.
      const CS_RETCODE status =
          comn__escchar(reinterpret_cast<CS_CHAR *>(source.bytes), srcfmt,
                        static_cast<CS_CHAR *>(dest), destfmt, destlen, source.set(), quote);
      if (status != CS_SUCCEED)
        return status;
    } else if (same) {
      *destlen = fitting_length(source, room);
      if (dest != source.bytes)
        std::memmove(dest, source.bytes, static_cast<size_t>(*destlen));
    }
  }
  if (!Source::is_record && *destlen == room && (destfmt->format & CS_DFMT_NULLTERM) != 0) {
    if (room >= 1)
      static_cast<CS_CHAR *>(dest)[room - 1] = '\0';
    return CS_CONV_TRUNCATED;
  }
  const CS_RETCODE status = pad_text(*destlen, destfmt->format, room, dest, destlen);
  if (status == CS_CONV_OVERFLOW || (status == CS_SUCCEED && cut))
    return CS_CONV_TRUNCATED;
  return status;
}

template <class Source, class Where>
CS_RETCODE to_varchar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen, const Source &source, Where where) noexcept {
  constexpr CS_INT room = sizeof(CS_VARCHAR::str);
  auto *const record = static_cast<CS_BYTE *>(dest);
  CS_BYTE *const text = record + offsetof(CS_VARCHAR, str);
  *destlen = std::min(source.length, room);
  const Sides sides(context, srcfmt, destfmt);
  if (!sides.are_there()) [[unlikely]]
    return raise_null(where);
  bool cut = false;
  if (!sides.have_one_cache()) {
    const CS_RETCODE status =
        convert_charset(context, srcfmt, source, destfmt, room, text, destlen);
    if (!has_converted(status)) {
      if (status == CS_CONV_TRUNCATED)
        store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(*destlen));
      return status;
    }
  } else {
    cut = source.told_length > room;
    *destlen = std::max<CS_INT>(fitting_length(source, room), 0);
    std::memmove(text, source.bytes, static_cast<size_t>(*destlen));
  }
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(*destlen));
  *destlen = sizeof(CS_VARCHAR);
  return cut ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// ---- to binary ----

template <class Source>
CS_RETCODE to_binary(const Source &source, const CS_DATAFMT *destfmt, CS_VOID *dest,
                     CS_INT *destlen) noexcept {
  const CS_RETCODE status =
      hex_to_binary(reinterpret_cast<CS_CHAR *>(source.bytes), source.length,
                    static_cast<CS_BYTE *>(dest), destfmt->maxlength, destlen);
  if (status != CS_SUCCEED)
    return status;
  return pad_binary(*destlen, destfmt->format, destfmt->maxlength, dest, destlen);
}

template <class Source>
CS_RETCODE to_varbinary(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  auto *const record = static_cast<CS_BYTE *>(dest);
  CS_INT count = 0;
  const CS_RETCODE status =
      hex_to_binary(reinterpret_cast<CS_CHAR *>(source.bytes), source.length,
                    record + offsetof(CS_VARBINARY, array), sizeof(CS_VARBINARY::array), &count);
  if (status == CS_FAIL)
    return status;
  store(record + offsetof(CS_VARBINARY, len), static_cast<CS_SMALLINT>(count));
  *destlen = status == CS_CONV_SYNTAX ? 0 : CS_INT{sizeof(CS_VARBINARY)};
  return status;
}

} // namespace comn::text

// The members of a unit. `family` and `destination` are the short names of the types; in the last
// argument `from` is the source.
#define COMN_CHARACTER_MEMBER(family, destination, destfmt_condition, ...)                         \
  COMN_CHECKED_CONV(comn_##family##to##destination, comn::text::of_##family::accepts(srcfmt),      \
                    destfmt_condition, using namespace comn::text;                                 \
                    const of_##family from(context, srcfmt, src); return __VA_ARGS__;)
#define COMN_CHARACTER_TO_INTEGER(family, destination, code, type)                                 \
  COMN_CHARACTER_MEMBER(family, destination, destfmt->datatype == (code),                          \
                        to_integer<type>(from, dest, destlen))
#define COMN_CHARACTER_TO_MONEY(family, destination, code, type, parse)                            \
  COMN_CHARACTER_MEMBER(family, destination, destfmt->datatype == (code),                          \
                        to_money<type, parse>(from, dest, destlen))
#define COMN_CHARACTER_TO_DATE(family, destination, code, type, parse)                             \
  COMN_CHARACTER_MEMBER(family, destination, destfmt->datatype == (code),                          \
                        to_date<type, parse>(context, srcfmt, dest, destlen, from, COMN_HERE))
// A member that serves a type and its big sister.
#define COMN_CHARACTER_TO_TWO_DATES(family, destination, code, type, parse, big_code, big_type,    \
                                    big_parse)                                                     \
  COMN_CHARACTER_MEMBER(                                                                           \
      family, destination, destfmt->datatype == (code) || destfmt->datatype == (big_code),         \
      destfmt->datatype == (code)                                                                  \
          ? to_date<type, parse>(context, srcfmt, dest, destlen, from, COMN_HERE)                  \
          : to_date<big_type, big_parse>(context, srcfmt, dest, destlen, from, COMN_HERE))

// All members of a family but those to numeric. The reports of failed checks name the unit that says
// this.
#define COMN_CHARACTER_UNIT(family)                                                                \
  COMN_CHARACTER_MEMBER(family, bit, destfmt->datatype == CS_TYPE_BIT,                             \
                        to_bit(from, dest, destlen))                                               \
  COMN_CHARACTER_TO_INTEGER(family, i1, CS_TYPE_TINYINT, CS_TINYINT)                               \
  COMN_CHARACTER_TO_INTEGER(family, i2, CS_TYPE_SMALLINT, CS_SMALLINT)                             \
  COMN_CHARACTER_TO_INTEGER(family, i4, CS_TYPE_INT, CS_INT)                                       \
  COMN_CHARACTER_TO_INTEGER(family, i8, CS_TYPE_BIGINT, CS_BIGINT)                                 \
  COMN_CHARACTER_TO_INTEGER(family, ui2, CS_TYPE_USMALLINT, CS_USMALLINT)                          \
  COMN_CHARACTER_TO_INTEGER(family, ui4, CS_TYPE_UINT, CS_UINT)                                    \
  COMN_CHARACTER_TO_INTEGER(family, ui8, CS_TYPE_UBIGINT, CS_UBIGINT)                              \
  COMN_CHARACTER_MEMBER(family, flt4, destfmt->datatype == CS_TYPE_REAL,                           \
                        to_flt4(from, dest, destlen))                                              \
  COMN_CHARACTER_MEMBER(family, flt8, destfmt->datatype == CS_TYPE_FLOAT,                          \
                        to_flt8(from, dest, destlen))                                              \
  COMN_CHARACTER_TO_MONEY(family, money, CS_TYPE_MONEY, CS_MONEY, com__mnyfromchar_mb)             \
  COMN_CHARACTER_TO_MONEY(family, mny4, CS_TYPE_MONEY4, CS_MONEY4, com__mny4fromchar_mb)           \
  COMN_CHARACTER_TO_TWO_DATES(family, datetime, CS_TYPE_DATETIME, CS_DATETIME,                     \
                              com__datefromchar_mb, CS_TYPE_BIGDATETIME, CS_BIGDATETIME,           \
                              com__bigdatetimefromchar_mb)                                         \
  COMN_CHARACTER_TO_DATE(family, date4, CS_TYPE_DATETIME4, CS_DATETIME4, com__date4fromchar_mb)    \
  COMN_CHARACTER_TO_DATE(family, datea, CS_TYPE_DATE, CS_DATE, com__dateafromchar_mb)              \
  COMN_CHARACTER_TO_TWO_DATES(family, timea, CS_TYPE_TIME, CS_TIME, com__timeafromchar_mb,         \
                              CS_TYPE_BIGTIME, CS_BIGTIME, com__bigtimefromchar_mb)                \
  COMN_CHARACTER_MEMBER(family, char, comn::text_types.contains(destfmt->datatype),                \
                        to_text(context, srcfmt, destfmt, dest, destlen, from, COMN_HERE))         \
  COMN_CHARACTER_MEMBER(family, varchar, destfmt->datatype == CS_TYPE_VARCHAR,                     \
                        to_varchar(context, srcfmt, destfmt, dest, destlen, from, COMN_HERE))      \
  COMN_CHARACTER_MEMBER(family, bin, comn::binary_types.contains(destfmt->datatype),               \
                        to_binary(from, destfmt, dest, destlen))                                   \
  COMN_CHARACTER_MEMBER(family, varbin, destfmt->datatype == CS_TYPE_VARBINARY,                    \
                        to_varbinary(from, dest, destlen))
#define COMN_CHARACTER_TO_NUM(family, ...)                                                         \
  COMN_CHARACTER_MEMBER(family, num, comn::numeric_types.contains(destfmt->datatype), __VA_ARGS__)

#endif
