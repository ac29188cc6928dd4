// Bytes for callers without a context: on their own and in a record.
#include "binary.h"
#include "legacy.h"

namespace {

using namespace comn::legacy;

// The first bytes as they are, and zeroes up to the width of the type.
template <class Source>
CS_INT to_fixed(const Source &source, CS_BYTE *dest, CS_INT width) noexcept {
  if (source.is_null())
    return nothing;
  const CS_INT count = std::min(source.length, width);
  copy(dest, source.bytes, count);
  clear(dest, count, width);
  return width;
}

template <class Shape, class Source>
CS_INT to_bytes(const Shape &shape, const Source &source) noexcept {
  return source.is_null() ? nothing : copy_bytes(shape, source.bytes, source.length);
}

// Pairs of digits while both have room; the count, or an overflow when bytes are left over.
CS_INT write_digits(const CS_BYTE *bytes, CS_INT length, CS_BYTE *dest, CS_INT room) noexcept {
  const CS_INT pairs = std::min(length, room / 2);
  comn::binary::write_hex(bytes, pairs, chars(dest));
  return pairs < length ? COM_OLD_OVERFLOW : 2 * pairs;
}

template <class Shape, class Source>
CS_INT hex_text(const Source &source, CS_BYTE *dest, CS_INT destlen) noexcept {
  if (source.is_null())
    return nothing;
  const Shape shape(dest, destlen == 0 ? -1 : destlen);
  const CS_INT length = write_digits(source.bytes, source.length, shape.text, shape.room);
  // Deliberate: digits that were cut have no padding and no terminator, but a header that says so.
  if (length >= 0 || std::is_same_v<Shape, AsVarychar>)
    shape.finish(length);
  return length;
}

} // namespace

#define COMN_OLD_BINARY_TO_FIXED(source, Source, destination, type)                                \
  COMN_OLD(com_##source##to##destination, (to_fixed(Source(src, srclen), dest, sizeof(type))))
#define COMN_OLD_BINARY_UNIT(source, Source)                                                       \
  COMN_OLD_BINARY_TO_FIXED(source, Source, i1, CS_TINYINT)                                         \
  COMN_OLD_BINARY_TO_FIXED(source, Source, i2, CS_SMALLINT)                                        \
  COMN_OLD_BINARY_TO_FIXED(source, Source, i4, CS_INT)                                             \
  COMN_OLD_BINARY_TO_FIXED(source, Source, flt4, CS_REAL)                                          \
  COMN_OLD_BINARY_TO_FIXED(source, Source, flt8, CS_FLOAT)                                         \
  COMN_OLD_BINARY_TO_FIXED(source, Source, money, CS_MONEY)                                        \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_BINARY_TO_FIXED(source, Source, mny4, CS_MONEY4)                                        \
  COMN_OLD_BINARY_TO_FIXED(source, Source, datetime, CS_DATETIME)                                  \
  COMN_OLD_ALIAS(com_##source##todate, com_##source##todatetime)                                   \
  COMN_OLD_BINARY_TO_FIXED(source, Source, date4, CS_DATETIME4)                                    \
  COMN_OLD_BINARY_TO_FIXED(source, Source, bit, CS_BIT)                                            \
  COMN_OLD_TO_TEXT(source, hex_text, , (Source(src, srclen), dest, destlen))                       \
  COMN_OLD_TO_BYTES(source, to_bytes, Source(src, srclen))

COMN_OLD_BINARY_UNIT(bin, Plain)
COMN_OLD_BINARY_UNIT(varybin, Record)

// ---- any type to binary ----

COMN_OLD(com_anytobinary, (to_bytes(AsBinary(dest, destlen), Plain(src, srclen))))
COMN_OLD(com_anytovarybin, (to_bytes(AsVarybin(dest, destlen), Plain(src, srclen))))

// ---- hexadecimal digits ----

void com_prhex(CS_BYTE *nptr, CS_BYTE *hptr) noexcept {
  COMN_CHECK_PTR(nptr);
  COMN_CHECK_PTR(hptr);
  comn::binary::write_hex(nptr, 1, chars(hptr));
}

CS_INT com__bin2hex(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen) noexcept {
  if (srclen <= 0)
    return nothing;
  COMN_CHECK_PTR(src, nothing);
  COMN_CHECK_PTR(dest, nothing);
  return write_digits(src, srclen, dest, destlen > 0 ? destlen : unlimited);
}

void com__hex2binbytes(CS_CHAR **src, CS_INT *srclen) noexcept {
  COMN_CHECK_PTR(srclen);
  if (*srclen >= 1)
    comn__hex2binbytes(src, srclen);
}

void com__shift1(CS_BYTE *cp, CS_INT length) noexcept {
  if (length <= 0)
    return;
  COMN_CHECK_PTR(cp);
  for (CS_INT i = length - 1; i > 0; --i)
    cp[i] = static_cast<CS_BYTE>(cp[i - 1] << 4 | cp[i] >> 4);
  *cp >>= 4;
}
