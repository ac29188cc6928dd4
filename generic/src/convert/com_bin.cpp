// Conversions from binary, raw copies of fixed types to binary, and the reader of hexadecimal text.
#include <algorithm>
#include <cstring>

#include "binary.h"
#include "hex_digits.h"
#include "hex_text.h"
#include "pad.h"
#include "raw_copy.h"

namespace {

// The longest copy into a varbinary record.
constexpr CS_INT varbinary_capacity = sizeof(CS_VARBINARY::array);

// Decodes pairs of digits. All of them are looked at; negative if any of their characters was no
// digit. The destination may be the source: a byte is stored behind the digits already read.
//
// A function of its own, since the loop needs nearly every register that ILP32 has.
[[gnu::noinline]] int decode_pairs(const CS_BYTE *in, CS_BYTE *out, CS_INT count) noexcept {
  int seen = 0;
  for (const CS_BYTE *const end = in + 2 * count; in < end; in += 2) {
    const int value = comn::hex_digit_values[in[0]] << 4 | comn::hex_digit_values[in[1]];
    seen |= value;
    *out++ = static_cast<CS_BYTE>(value);
  }
  return seen;
}

bool is_space(CS_CHAR c) noexcept {
  return com_isspace(static_cast<CS_BYTE>(c)) != 0;
}

} // namespace

// The copies are memmove: of a length within known bounds the compiler would expand memcpy in line,
// to something slower than the call.
CS_RETCODE comn::fixed_to_binary(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {
  COMN_CHECK_CONV(COMN_HERE, true, destfmt->maxlength >= 0 && tlen >= 1);
  const CS_INT capacity = destfmt->maxlength;
  *destlen = std::min(capacity, tlen);
  std::memmove(dest, src, static_cast<size_t>(*destlen));
  if (capacity < tlen)
    return CS_CONV_TRUNCATED;
  return comn::pad_binary(tlen, destfmt->format, capacity, dest, destlen);
}

CS_RETCODE comn::fixed_to_varbinary(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {
  COMN_CHECK_CONV(COMN_HERE, true, true);
  const CS_INT length = tlen < 0 || tlen > varbinary_capacity ? varbinary_capacity : tlen;
  auto *record = static_cast<CS_BYTE *>(dest);
  std::memmove(record + offsetof(CS_VARBINARY, array), src, static_cast<size_t>(length));
  comn::store(record + offsetof(CS_VARBINARY, len), static_cast<CS_SMALLINT>(length));
  *destlen = sizeof(CS_VARBINARY);
  return length < tlen ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

CS_RETCODE comn_fixedtobin(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {
  return COMN_TRACE(comn::fixed_to_binary(COMN_CONV_ARGUMENTS, tlen));
}

CS_RETCODE comn_fixedtovarbin(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {
  return COMN_TRACE(comn::fixed_to_varbinary(COMN_CONV_ARGUMENTS, tlen));
}

void comn__hex2binbytes(CS_CHAR **src, CS_INT *srclen) noexcept {
  COMN_CHECK_PTR(src);
  COMN_CHECK_PTR(srclen);
  COMN_CHECK_PTR(*src);
  COMN_CHECK(*srclen >= 1);
  const CS_CHAR *text = *src;
  CS_INT length = *srclen;
  while (length > 0 && is_space(text[length - 1]))
    --length;
  while (length > 0 && is_space(*text)) {
    ++text;
    --length;
  }
  if (length >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text += 2;
    length -= 2;
  }
  *src = const_cast<CS_CHAR *>(text);
  *srclen = length;
}

CS_RETCODE comn::hex_to_binary(CS_CHAR *text, CS_INT length, CS_BYTE *dest, CS_INT capacity,
                               CS_INT *destlen) noexcept {
  CS_INT digits = length;
  comn__hex2binbytes(&text, &digits);
  if (length < 1) // the reader's check has failed
    return CS_FAIL;
  *destlen = 0;

  const auto *in = reinterpret_cast<const CS_BYTE *>(text);
  capacity = std::max<CS_INT>(capacity, 0);
  const bool odd = digits % 2 != 0;
  if (odd && capacity == 0)
    return CS_CONV_OVERFLOW;
  const CS_INT count = std::min(digits / 2 + odd, capacity);

  int seen = 0;
  if (odd) {
    seen = comn::hex_digit_values[*in++];
    *dest++ = static_cast<CS_BYTE>(seen);
  }
  const CS_INT pairs = count - odd;
  seen |= decode_pairs(in, dest, pairs);
  if (seen < 0)
    return CS_CONV_SYNTAX;
  *destlen = count;
  return odd + 2 * pairs < digits ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

COMN_BINARY_UNIT(bin)
