// Text for callers without a context: on its own and in a record. The com_mb_ members read it in a
// character set, the others in the built-in one.
#include <cmath>

#include "calendar.h"
#include "character.h"
#include "legacy.h"

namespace {

using namespace comn::legacy;

// ---- to integers ----

template <class Integer, class Source>
CS_INT to_integer(const Source &source, CS_BYTE *dest, const CS_ATTRIB *chatr) noexcept {
  if (source.is_null())
    return nothing;
  const auto number = comn::parse_integer<Integer>(source.bytes, source.parsed_length, chatr);
  comn::store(dest, number.value);
  if (number.status == comn::parse_syntax)
    return COM_OLD_SYNTAX;
  return number.status == comn::parse_overflow ? COM_OLD_OVERFLOW : CS_INT{sizeof(Integer)};
}

// Deliberate: blanks in front of the digits are no digits, those behind them do not count.
template <class Source, class Where>
CS_INT to_bit(const Source &source, CS_BYTE *dest, Where where) noexcept {
  if (source.is_null())
    return nothing;
  if (source.parsed_length < 0) [[unlikely]] {
    comn::raise_bomb(where);
    return nothing;
  }
  const CS_BYTE *end = source.bytes + source.parsed_length;
  while (end > source.bytes && end[-1] == ' ')
    --end;
  bool value = false;
  for (; end > source.bytes; --end) {
    if (com_isdigit(end[-1]) == 0)
      return COM_OLD_SYNTAX;
    value = value || end[-1] != '0';
  }
  *dest = value;
  return sizeof(CS_BIT);
}

// ---- to floats ----

// The shape of a number, by the marks that its bytes set.
class FloatShape {
public:
  // False for a byte that may not stand here.
  bool accepts(CS_BYTE c, bool is_digit) noexcept {
    if (is_digit) {
      set(digit);
      if (has(exponent))
        set(exponent_digit);
      return !has(end);
    }
    switch (c) {
    case ' ':
    case '\t':
      set(has(digit | point | exponent) ? blank | end : blank);
      return true;
    case '+':
    case '-':
      return !has(end) && accepts_sign();
    case 'e':
    case 'E':
      return !has(end | exponent) && has(digit) && set(exponent);
    case '.':
      return !has(end | point) && set(point);
    default:
      return false;
    }
  }

  bool is_whole() const noexcept {
    return has(digit) && (!has(exponent_sign) || has(exponent_digit));
  }

private:
  enum Mark : unsigned {
    digit = 1,
    exponent = 2,
    exponent_sign = 4,
    exponent_digit = 8,
    point = 16,
    sign = 32,
    blank = 64,
    end = 128 // of the number; blanks may follow
  };

  bool has(unsigned any) const noexcept { return (marks & any) != 0; }
  bool set(unsigned mark) noexcept {
    marks |= mark;
    return true;
  }
  // Deliberate: a blank in front of the sign of the number is one thing too many.
  bool accepts_sign() noexcept {
    if (marks == 0)
      return set(sign);
    return has(exponent) && !has(exponent_digit | exponent_sign) && set(exponent_sign);
  }

  unsigned marks = 0;
};

bool is_float(const CS_BYTE *text, CS_INT length) noexcept {
  FloatShape shape;
  for (CS_INT i = 0; i < length; ++i)
    if (!shape.accepts(text[i], com_isdigit(text[i]) != 0))
      return false;
  return shape.is_whole();
}

// Deliberate: what stands behind a NUL does not count, nor what strtod leaves of a good shape, as the
// "e" of "1e".
template <class Float>
CS_INT read_float(CS_BYTE *text, CS_INT length, CS_BYTE *dest) noexcept {
  length = comn::text::trimmed_length(chars(text), length);
  CS_FLOAT value = 0.0;
  bool vanished = false;
  if (length > 0) {
    length = static_cast<CS_INT>(strnlen(chars(text), static_cast<size_t>(length)));
    if (!is_float(text, length))
      return COM_OLD_SYNTAX;
    const comn::ParsedDouble read = comn::parse_double(chars(text), length);
    if (read.end == chars(text)) // a blank behind the sign
      return COM_OLD_SYNTAX;
    value = read.value;
    // Deliberate: to strtod a subnormal number is a range error too, which the matrix lets pass.
    vanished = (read.is_out_of_range && value == 0.0) || std::fpclassify(value) == FP_SUBNORMAL;
  }
  if (std::abs(value) > CS_FLOAT{std::numeric_limits<Float>::max()}) {
    comn::store(dest, comn::text::extreme<Float>(value));
    return COM_OLD_OVERFLOW;
  }
  comn::store(dest, static_cast<Float>(value));
  return vanished ? COM_OLD_UNDERFLOW : CS_INT{sizeof(Float)};
}

template <class Float, class Source>
CS_INT to_float(const Source &source, CS_BYTE *dest, const CS_ATTRIB *chatr) noexcept {
  if (source.is_null())
    return nothing;
  const CS_INT length = std::max(source.parsed_length, 0);
  if (chatr == nullptr)
    return read_float<Float>(source.bytes, length, dest);
  CS_BYTE buffer[512];
  CS_BYTE *reduced = buffer;
  if (length > CS_INT{sizeof buffer}) {
    reduced = static_cast<CS_BYTE *>(comn_malloc(static_cast<size_t>(length)));
    if (reduced == nullptr)
      return CS_MEM_ERROR;
  }
  const CS_INT result = read_float<Float>(
      reduced, comn::reduce_to_ascii(*chatr, source.bytes, length, reduced), dest);
  if (reduced != buffer)
    comn_free(reduced);
  return result;
}

// ---- to money and dates ----

template <class Money, int (*Parse)(Money *, CS_CHAR *, CS_INT, CS_INT, CS_ATTRIB *), class Source>
CS_INT to_money(const Source &source, CS_BYTE *dest, CS_ATTRIB *chatr) noexcept {
  if (source.is_null())
    return nothing;
  switch (
      Parse(reinterpret_cast<Money *>(dest), chars(source.bytes), source.parsed_length, 0, chatr)) {
  case NUME_OK:
    return sizeof(Money);
  case NUME_SYNTAX:
    return COM_OLD_SYNTAX;
  default:
    return COM_OLD_OVERFLOW;
  }
}

template <class Date,
          int (*Parse)(Date *, CS_CHAR *, CS_INT, CS_INT, CS_INT, CS_CHAR **, CS_CHAR **,
                       CS_ATTRIB *, CS_BOOL *),
          class Source>
CS_INT to_date(const Source &source, CS_BYTE *dest, char **months, char **shortmonths,
               int dateorder_id, CS_ATTRIB *chatr) noexcept {
  if (source.is_null())
    return nothing;
  constexpr CS_INT style = 0;
  Date value;
  const int status =
      Parse(&value, chars(source.bytes), source.parsed_length, style,
            dateorder_id < 0 ? com__get_date_order_id() : dateorder_id,
            months == nullptr ? const_cast<char **>(own_Com__Months) : months,
            shortmonths == nullptr ? const_cast<char **>(own_Com__Shortmonths) : shortmonths, chatr,
            nullptr);
  if (status != 0)
    return status < 0 ? COM_OLD_SYNTAX : COM_OLD_OVERFLOW;
  comn::store(dest, value);
  return sizeof(Date);
}

// ---- to text and binary ----

template <class Shape, class Source>
CS_INT to_text(const Source &source, CS_BYTE *dest, CS_INT destlen) noexcept {
  if (source.is_null())
    return nothing;
  const Shape shape(dest, destlen);
  CS_INT length = source.length;
  if constexpr (std::is_same_v<Shape, AsNtbstring>)
    while (length > 0 && source.bytes[length - 1] == ' ')
      --length;
  const CS_INT count = std::min(length, shape.room);
  copy(shape.text, source.bytes, count);
  shape.finish(count);
  return count < length ? COM_OLD_OVERFLOW : count;
}

// Hexadecimal digits.
template <class Shape, class Source>
CS_INT to_bytes(const Shape &shape, const Source &source) noexcept {
  if (source.is_null())
    return nothing;
  CS_INT count = 0;
  CS_RETCODE status = CS_SUCCEED;
  if (source.length > 0)
    status =
        comn::hex_to_binary(chars(source.bytes), source.length, shape.bytes, shape.room, &count);
  if (status == CS_SUCCEED || std::is_same_v<Shape, AsVarybin>)
    shape.finish(count);
  return status == CS_CONV_TRUNCATED ? COM_OLD_OVERFLOW : result_of(status, count);
}

} // namespace

#define COMN_OLD_TEXT_TO(source, Source, destination, read, ...)                                   \
  COMN_OLD(com_##source##to##destination, (read<__VA_ARGS__>(Source(src, srclen), dest, nullptr))) \
  COMN_OLD(com_mb_##source##to##destination,                                                       \
           (read<__VA_ARGS__>(Source(src, srclen), dest, chatr)), CS_ATTRIB *chatr)
#define COMN_OLD_TEXT_TO_DATE(source, Source, destination, ...)                                    \
  COMN_OLD(com_##source##to##destination,                                                          \
           (to_date<__VA_ARGS__>(Source(src, srclen), dest, months, shortmonths, dateorder_id,     \
                                 nullptr)),                                                        \
           char **months, char **shortmonths, int dateorder_id)                                    \
  COMN_OLD(                                                                                        \
      com_mb_##source##to##destination,                                                            \
      (to_date<__VA_ARGS__>(Source(src, srclen), dest, months, shortmonths, dateorder_id, chatr)), \
      char **months, char **shortmonths, int dateorder_id, CS_ATTRIB *chatr)
#define COMN_OLD_TEXT_UNIT(source, Source)                                                         \
  COMN_OLD_TEXT_TO(source, Source, i1, to_integer, CS_TINYINT)                                     \
  COMN_OLD_TEXT_TO(source, Source, i2, to_integer, CS_SMALLINT)                                    \
  COMN_OLD_TEXT_TO(source, Source, i4, to_integer, CS_INT)                                         \
  COMN_OLD_TEXT_TO(source, Source, flt4, to_float, CS_REAL)                                        \
  COMN_OLD_TEXT_TO(source, Source, flt8, to_float, CS_FLOAT)                                       \
  COMN_OLD_TEXT_TO(source, Source, money, to_money, CS_MONEY, com__mnyfromchar_mb)                 \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_TEXT_TO(source, Source, mny4, to_money, CS_MONEY4, com__mny4fromchar_mb)                \
  COMN_OLD_TEXT_TO_DATE(source, Source, datetime, CS_DATETIME, com__datefromchar_mb)               \
  COMN_OLD_ALIAS(com_##source##todate, com_##source##todatetime)                                   \
  COMN_OLD_TEXT_TO_DATE(source, Source, date4, CS_DATETIME4, com__date4fromchar_mb)                \
  COMN_OLD(com_##source##tobit, (to_bit(Source(src, srclen), dest, COMN_HERE)))                    \
  COMN_OLD_TO_TEXT(source, to_text, , (Source(src, srclen), dest, destlen))                        \
  COMN_OLD_TO_BYTES(source, to_bytes, Source(src, srclen))

COMN_OLD_TEXT_UNIT(char, Plain)
COMN_OLD_TEXT_UNIT(varychar, Record)

int floatcheck(char *str, CS_TYPE_MAP *tmap) noexcept {
  constexpr int bad = 1;
  COMN_CHECK_PTR(str, bad);
  FloatShape shape;
  for (; *str != '\0'; ++str) {
    const auto c = static_cast<CS_BYTE>(*str);
    const bool is_digit =
        tmap == nullptr ? com_isdigit(c) != 0 : (tmap->chmap[c].char_type & CS_CTYPE_DIGIT) != 0;
    if (!shape.accepts(c, is_digit))
      return bad;
  }
  return shape.is_whole() ? 0 : bad;
}
