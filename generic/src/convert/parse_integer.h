// Integers out of text: one machine for every width, sign and kind of text.
//
// In front of the digits stand blanks and one sign, behind them blanks; a text of blanks, or of a sign
// alone, is 0. What a failure leaves is part of the contract and stands in comnlib.h.
#ifndef COMN_CONVERT_PARSE_INTEGER_H
#define COMN_CONVERT_PARSE_INTEGER_H

#include <limits>
#include <type_traits>

#include "text.h"
#include "text_source.h"

namespace comn {

// The results of the exported parsers.
enum ParseStatus : int { parse_empty = 0, parse_done = 4, parse_overflow = -1, parse_syntax = -2 };

template <class Integer>
struct ParsedInteger {
  Integer value;
  ParseStatus status;
};

// A text whose characters are single bytes, taken as they are.
class ByteText {
public:
  ByteText(const CS_BYTE *text, CS_INT length) noexcept : at(text), end(text + length) {}
  bool is_over() const noexcept { return at == end; }
  CS_BYTE current() const noexcept { return *at; }
  void advance() noexcept { ++at; }

private:
  const CS_BYTE *at, *end;
};

// A text of longer characters, each reduced to ASCII.
class WideText {
public:
  WideText(const CHAR_ATTRIB &charset, const CS_BYTE *text, CS_INT length) noexcept
      : set(charset), at(text), end(text + length) {}
  bool is_over() const noexcept { return at == end; }
  CS_BYTE current() const noexcept { return to_ascii(set, Within{at, end}); }
  void advance() noexcept { at += length_inside(set, Within{at, end}); }

private:
  const CHAR_ATTRIB &set;
  const CS_BYTE *at, *end;
};

// What an overflow stores. Deliberate: the 32-bit signed parser leaves the digits that fitted, with
// a zero behind them where only the last digit was too much; the others leave the extreme.
template <class Integer>
constexpr bool overflow_keeps_digits = std::is_same_v<Integer, CS_INT>;

template <class Integer, class Text>
ParsedInteger<Integer> parse_integer(Text text) noexcept {
  using Bounds = std::numeric_limits<Integer>;
  using Magnitude = std::make_unsigned_t<Integer>;
  bool has_sign = false, negative = false;
  for (;; text.advance()) {
    if (text.is_over())
      return {0, parse_done};
    const CS_BYTE c = text.current();
    if (c == ' ')
      continue;
    if (c != '-' && c != '+')
      break;
    if (has_sign || (c == '-' && !Bounds::is_signed))
      return {0, parse_syntax};
    has_sign = true;
    negative = c == '-';
  }

  const auto signed_value = [negative](Magnitude magnitude) {
    return static_cast<Integer>(negative ? Magnitude{0} - magnitude : magnitude);
  };
  const auto digit_at = [](const Text &place) {
    return static_cast<CS_UINT>(place.current()) - CS_UINT{'0'}; // above 9 for all but digits
  };
  Magnitude magnitude = 0;
  // So many digits fit whatever they are.
  for (int safe = Bounds::digits10; safe > 0 && !text.is_over(); --safe, text.advance()) {
    const CS_UINT digit = digit_at(text);
    if (digit > 9)
      break;
    magnitude = magnitude * 10 + digit;
  }
  const Magnitude limit = Magnitude{Bounds::max()} + (negative ? 1 : 0);
  for (; !text.is_over(); text.advance()) {
    const CS_UINT digit = digit_at(text);
    if (digit > 9)
      break;
    const bool has_room = magnitude <= limit / 10;
    if (!has_room || digit > limit - magnitude * 10) {
      if (overflow_keeps_digits<Integer>)
        return {signed_value(has_room ? magnitude * 10 : magnitude), parse_overflow};
      return {signed_value(limit), parse_overflow};
    }
    magnitude = magnitude * 10 + digit;
  }

  for (; !text.is_over(); text.advance())
    if (text.current() != ' ')
      return {signed_value(magnitude), parse_syntax};
  return {signed_value(magnitude), parse_done};
}

// Integers of 8 and 16 bits are read as 32-bit ones. A number out of their range leaves its low bytes;
// what is no 32-bit number leaves 0. Deliberate: the unsigned 16-bit type is read as an unsigned integer,
// to which a minus is bad syntax; tinyint is read as a signed one, and takes "-0".
template <class Integer, class Text>
ParsedInteger<Integer> parse_narrow_integer(Text text) noexcept {
  using Wide = std::conditional_t<std::is_same_v<Integer, CS_USMALLINT>, CS_UINT, CS_INT>;
  const ParsedInteger<Wide> wide = parse_integer<Wide>(text);
  if (wide.status != parse_done)
    return {0, wide.status};
  const auto value = static_cast<Integer>(wide.value);
  return {value, value == wide.value ? parse_done : parse_overflow};
}

template <class Integer>
ParsedInteger<Integer> parse_integer(const CS_BYTE *text, CS_INT length,
                                     const CS_ATTRIB *set) noexcept {
  if (length <= 0)
    return {0, parse_empty};
  const auto parse = [](auto source) {
    if constexpr (sizeof(Integer) < sizeof(CS_INT))
      return parse_narrow_integer<Integer>(source);
    else
      return parse_integer<Integer>(source);
  };
  return text::is_multi_byte(set) ? parse(WideText(*set, text, length))
                                  : parse(ByteText(text, length));
}

} // namespace comn

#endif
