// The binary families: bytes on their own and bytes in a record, which differ in what they report of a
// source that was cut, and in the test of dates. Each unit instantiates all members with
// COMN_BINARY_UNIT.
//
// Bytes go to and from fixed types as they stand in memory, never as numbers; as text they are
// hexadecimal.
#ifndef COMN_CONVERT_BINARY_H
#define COMN_CONVERT_BINARY_H

#include <algorithm>
#include <array>
#include <cstddef>

#include "conv_func.h"
#include "datetime.h"
#include "numeric.h"
#include "pad.h"
#include "shape.h"

namespace comn::binary {

// Bytes on their own, of the length that the source's format gives.
struct bin {
  // Deliberate: the two families report a cut source differently, here and in every member.
  static constexpr CS_RETCODE cut = CS_CONV_TRUNCATED;
  static constexpr bool tests_dates = true;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return binary_types.contains(srcfmt->datatype);
  }
  bin(const CS_DATAFMT *srcfmt, const CS_VOID *src) noexcept
      : bytes(static_cast<const CS_BYTE *>(src)), length(srcfmt->maxlength) {}

  const CS_BYTE *bytes;
  CS_INT length;
};

// A record. No more than it holds is ever read, whatever its length says.
struct varbin {
  static constexpr CS_RETCODE cut = CS_CONV_OVERFLOW;
  static constexpr bool tests_dates = false;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return srcfmt->datatype == CS_TYPE_VARBINARY;
  }
  varbin(const CS_DATAFMT *, const CS_VOID *src) noexcept
      : bytes(static_cast<const CS_BYTE *>(src) + offsetof(CS_VARBINARY, array)),
        length(std::min<CS_INT>(
            load<CS_SMALLINT>(static_cast<const CS_BYTE *>(src) + offsetof(CS_VARBINARY, len)),
            sizeof(CS_VARBINARY::array))) {}

  const CS_BYTE *bytes;
  CS_INT length;
};

// As many bytes as there are to copy.
inline size_t count_of(CS_INT length) noexcept {
  return static_cast<size_t>(std::max<CS_INT>(length, 0));
}

// To a type of `width` bytes. What lies behind a short copy stays as it was: the value is not usable,
// and the status says so.
template <class Source>
CS_RETCODE to_fixed(const Source &source, CS_INT width, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = std::min(source.length, width);
  std::memmove(dest, source.bytes, count_of(*destlen));
  if (source.length > width)
    return Source::cut;
  return source.length < width ? CS_CONV_UNDERFLOW : CS_SUCCEED;
}

// Dates and times; only a value that came whole is tested.
template <class Source, class Value, int (*CheckRange)(Value *)>
CS_RETCODE to_date(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  const CS_RETCODE status = to_fixed(source, sizeof(Value), dest, destlen);
  if (!Source::tests_dates || status != CS_SUCCEED)
    return status;
  auto value = load<Value>(dest);
  if (CheckRange(&value) == 0)
    return CS_SUCCEED;
  *destlen = 0;
  return CS_CONV_DOMAIN;
}

template <class Source>
CS_RETCODE to_num(const Source &source, const CS_DATAFMT *destfmt, CS_VOID *dest,
                  CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  if (const CS_RETCODE refused = check_shape(destfmt->precision, destfmt->scale);
      refused != CS_SUCCEED)
    return refused;
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  CS_INT copied;
  const CS_RETCODE status = to_fixed(source, sizeof result->array, result->array, &copied);
  set_shape(*result, destfmt->precision, destfmt->scale);
  return status;
}

// The first byte decides; an empty source is not noticed.
template <class Source>
CS_RETCODE to_bit(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(CS_BIT);
  store(dest, static_cast<CS_BIT>(source.bytes[0] != 0));
  return CS_SUCCEED;
}

struct HexPair {
  CS_CHAR digits[2];
};

inline constexpr auto hex_pairs = [] {
  constexpr const char *digits = "0123456789abcdef";
  std::array<HexPair, 256> pairs{};
  for (size_t byte = 0; byte < pairs.size(); ++byte)
    pairs[byte] = {{digits[byte / 16], digits[byte % 16]}};
  return pairs;
}();

// `length` bytes as pairs of digits.
inline void write_hex(const CS_BYTE *bytes, CS_INT length, CS_CHAR *text) noexcept {
  for (CS_INT i = 0; i < length; ++i)
    store(text + 2 * i, hex_pairs[bytes[i]]);
}

template <class Source>
CS_RETCODE to_text(const Source &source, const CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen) noexcept {
  const CS_BIGINT length = CS_BIGINT{2} * std::max<CS_INT>(source.length, 0);
  const CS_INT capacity = destfmt->maxlength;
  *destlen = static_cast<CS_INT>(std::min<CS_BIGINT>(capacity, length));
  write_hex(source.bytes, *destlen / 2, static_cast<CS_CHAR *>(dest));
  // Deliberate: an odd capacity counts its last byte, which holds no digit.
  if (*destlen < length)
    return Source::cut;
  return pad_text(*destlen, destfmt->format, capacity, dest, destlen);
}

template <class Source>
CS_RETCODE to_varchar(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  constexpr CS_INT most = sizeof(CS_VARCHAR::str) / 2;
  const CS_INT count = std::clamp<CS_INT>(source.length, 0, most);
  auto *const record = static_cast<CS_CHAR *>(dest);
  write_hex(source.bytes, count, record + offsetof(CS_VARCHAR, str));
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(2 * count));
  *destlen = sizeof(CS_VARCHAR);
  return source.length > most ? Source::cut : CS_SUCCEED;
}

template <class Source>
CS_RETCODE to_binary(const Source &source, const CS_DATAFMT *destfmt, CS_VOID *dest,
                     CS_INT *destlen) noexcept {
  const CS_INT capacity = destfmt->maxlength;
  *destlen = std::min(capacity, source.length);
  std::memmove(dest, source.bytes, count_of(*destlen));
  if (capacity < source.length)
    return Source::cut;
  return pad_binary(source.length, destfmt->format, capacity, dest, destlen);
}

template <class Source>
CS_RETCODE to_varbinary(const Source &source, CS_VOID *dest, CS_INT *destlen) noexcept {
  constexpr CS_INT most = sizeof(CS_VARBINARY::array);
  const CS_INT length = std::min(source.length, most);
  auto *const record = static_cast<CS_BYTE *>(dest);
  std::memmove(record + offsetof(CS_VARBINARY, array), source.bytes, count_of(length));
  store(record + offsetof(CS_VARBINARY, len), static_cast<CS_SMALLINT>(length));
  *destlen = sizeof(CS_VARBINARY);
  return source.length > most ? Source::cut : CS_SUCCEED;
}

} // namespace comn::binary

// The members of a unit. `source` and `destination` are the short names of the types; in the last
// argument `from` is the source.
#define COMN_BINARY_MEMBER(source, destination, destfmt_condition, ...)                            \
  COMN_CHECKED_CONV(comn_##source##to##destination, comn::binary::source::accepts(srcfmt),         \
                    destfmt_condition, using namespace comn::binary;                               \
                    const comn::binary::source from(srcfmt, src); return __VA_ARGS__;)
// What only copies makes no check of the datatypes.
#define COMN_BINARY_COPY(source, destination, ...)                                                 \
  COMN_CHECKED_CONV(comn_##source##to##destination, true, true, using namespace comn::binary;      \
                    const comn::binary::source from(srcfmt, src); return __VA_ARGS__;)
#define COMN_BINARY_TO_FIXED(source, destination, type)                                            \
  COMN_BINARY_COPY(source, destination, to_fixed(from, sizeof(type), dest, destlen))
#define COMN_BINARY_TO_DATE(source, destination, type, check_range)                                \
  COMN_BINARY_COPY(source, destination,                                                            \
                   to_date<comn::binary::source, type, check_range>(from, dest, destlen))

// All members of a source. The reports of failed checks name the unit that says this.
#define COMN_BINARY_UNIT(source)                                                                   \
  static CS_RETCODE source##_to_fixed(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {                \
    COMN_CHECK_CONV(COMN_HERE, true, true);                                                        \
    return comn::binary::to_fixed(comn::binary::source(srcfmt, src), tlen, dest, destlen);         \
  }                                                                                                \
  CS_RETCODE comn_##source##tofixed(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept {                  \
    return COMN_TRACE(source##_to_fixed(COMN_CONV_ARGUMENTS, tlen));                               \
  }                                                                                                \
  COMN_BINARY_TO_FIXED(source, i1, CS_TINYINT)                                                     \
  COMN_BINARY_TO_FIXED(source, i2, CS_SMALLINT)                                                    \
  COMN_BINARY_TO_FIXED(source, i4, CS_INT)                                                         \
  COMN_BINARY_TO_FIXED(source, i8, CS_BIGINT)                                                      \
  COMN_BINARY_TO_FIXED(source, ui2, CS_USMALLINT)                                                  \
  COMN_BINARY_TO_FIXED(source, ui4, CS_UINT)                                                       \
  COMN_BINARY_TO_FIXED(source, ui8, CS_UBIGINT)                                                    \
  COMN_BINARY_TO_FIXED(source, flt4, CS_REAL)                                                      \
  COMN_BINARY_TO_FIXED(source, flt8, CS_FLOAT)                                                     \
  COMN_BINARY_TO_FIXED(source, money, CS_MONEY)                                                    \
  COMN_BINARY_TO_FIXED(source, mny4, CS_MONEY4)                                                    \
  COMN_BINARY_TO_FIXED(source, datetime, CS_DATETIME)                                              \
  COMN_BINARY_TO_FIXED(source, date4, CS_DATETIME4)                                                \
  COMN_BINARY_TO_FIXED(source, bigdatetime, CS_BIGDATETIME)                                        \
  COMN_BINARY_TO_FIXED(source, bigtime, CS_BIGTIME)                                                \
  COMN_BINARY_TO_DATE(source, datea, CS_DATE, com__datea_check_range)                              \
  COMN_BINARY_TO_DATE(source, timea, CS_TIME, com__timea_check_range)                              \
  COMN_BINARY_MEMBER(source, num, comn::numeric_types.contains(destfmt->datatype),                 \
                     to_num(from, destfmt, dest, destlen))                                         \
  COMN_BINARY_MEMBER(source, bit, destfmt->datatype == CS_TYPE_BIT, to_bit(from, dest, destlen))   \
  COMN_BINARY_MEMBER(source, char, comn::text_types.contains(destfmt->datatype),                   \
                     to_text(from, destfmt, dest, destlen))                                        \
  COMN_BINARY_MEMBER(source, varchar, destfmt->datatype == CS_TYPE_VARCHAR,                        \
                     to_varchar(from, dest, destlen))                                              \
  COMN_BINARY_MEMBER(source, bin, comn::binary_types.contains(destfmt->datatype),                  \
                     to_binary(from, destfmt, dest, destlen))                                      \
  COMN_BINARY_MEMBER(source, varbin, destfmt->datatype == CS_TYPE_VARBINARY,                       \
                     to_varbinary(from, dest, destlen))

#endif
