// Integers as hexadecimal text and back, by their bits.
#include <limits>
#include <type_traits>

#include "bridge.h"
#include "hex_digits.h"

namespace {

template <class Integer>
CS_RETCODE to_hex(COMNB_PARAMETERS) noexcept {
  constexpr const char *digits = "0123456789ABCDEF";
  if (dest->maxlen < 2 || dest->value == nullptr)
    return CS_CONV_SYNTAX;
  auto bits = static_cast<std::make_unsigned_t<Integer>>(comn::load<Integer>(src->value));
  dest->len = dest->maxlen;
  CS_INT at = dest->maxlen - 1;
  dest->value[at] = 0;
  for (; bits != 0 && at > 0; bits >>= 4)
    dest->value[--at] = static_cast<CS_BYTE>(digits[bits & 0xF]);
  std::memset(dest->value, '0', static_cast<size_t>(at));
  return bits == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// The digits of a text: what is left of it without the white space around it and a prefix.
struct Digits {
  explicit Digits(comn::text::NumberText &text) noexcept : at(text.data()), length(text.length()) {
    if (length > 0)
      comn__hex2binbytes(&at, &length);
  }

  CS_CHAR *at;
  CS_INT length;
};

template <class Integer>
CS_RETCODE from_hex(COMNB_PARAMETERS) noexcept {
  using Bits = std::make_unsigned_t<Integer>;
  constexpr CS_INT longest = 255;
  dest->len = sizeof(Integer);
  if (src->len > longest)
    return CS_CONV_SYNTAX;
  comn::text::NumberText text(src->value, src->len, context->char_attrib);
  const Digits digits(text);
  Bits bits = 0;
  for (CS_INT i = 0; i < digits.length; ++i) {
    const int digit = comn::hex_digit_values[static_cast<CS_BYTE>(digits.at[i])];
    if (digit < 0)
      return CS_CONV_SYNTAX;
    if (bits > std::numeric_limits<Bits>::max() >> 4) {
      comn::store(dest->value, std::numeric_limits<Integer>::max());
      return CS_CONV_OVERFLOW;
    }
    bits = static_cast<Bits>(bits << 4 | static_cast<Bits>(digit));
  }
  comn::store(dest->value, bits);
  return CS_SUCCEED;
}

} // namespace

COMNB_MEMBER(i4, hex, to_hex<CS_INT>)
COMNB_MEMBER(i8, hex, to_hex<CS_BIGINT>)
COMNB_MEMBER(ui4, hex, to_hex<CS_UINT>)
COMNB_MEMBER(ui8, hex, to_hex<CS_UBIGINT>)
COMNB_MEMBER(hex, i4, from_hex<CS_INT>)
COMNB_MEMBER(hex, i8, from_hex<CS_BIGINT>)
COMNB_MEMBER(hex, ui4, from_hex<CS_UINT>)
// Deliberate: not a conversion of its own, so a text of too many bits becomes the largest i8.
COMNB_MEMBER(hex, ui8, comnb_hextoi8)
