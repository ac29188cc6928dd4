// Bits for callers without a context. A source that is neither 0 nor 1 is refused with nothing written.
#include "integer.h"
#include "legacy.h"

namespace {

using comn::integer::i1;

// A bit that is one converts as the tiny integer does.
template <auto Convert>
CS_RETCODE checked(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  return comn::load<CS_BIT>(src) > 1 ? CS_CONV_DOMAIN : Convert(src, dest, destlen);
}

template <class Shape>
CS_INT bit_text(CS_BIT value, CS_BYTE *dest, CS_INT destlen) noexcept {
  if (value > 1)
    return COM_OLD_DOMAIN;
  return comn::legacy::write_number(
      Shape(dest, destlen), 1, [=](CS_CHAR *text) { *text = static_cast<CS_CHAR>('0' + value); });
}

template <class Shape>
CS_INT bit_bytes(const Shape &shape, const CS_BYTE *src) noexcept {
  return *src > 1 ? COM_OLD_DOMAIN : comn::legacy::copy_value<sizeof(CS_BIT)>(shape, src);
}

} // namespace

COMN_OLD_TO_FIXED(bit, bit, checked<comn::integer::to_bit<i1>>)
COMN_OLD_TO_FIXED(bit, i1, checked<comn::integer::to_integer<i1, i1>>)
COMN_OLD_TO_FIXED(bit, i2, checked<comn::integer::to_integer<i1, comn::integer::i2>>)
COMN_OLD_TO_FIXED(bit, i4, checked<comn::integer::to_integer<i1, comn::integer::i4>>)
COMN_OLD_TO_FIXED(bit, flt4, checked<comn::integer::to_float<i1, CS_REAL>>)
COMN_OLD_TO_FIXED(bit, flt8, checked<comn::integer::to_float<i1, CS_FLOAT>>)
COMN_OLD_TO_TEXT(bit, bit_text, , (*src, dest, destlen))
COMN_OLD_TO_BYTES(bit, bit_bytes, src)
