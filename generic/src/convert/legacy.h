// The conversions for callers without a context: the rules of the family, on the bounds, parsers and
// printers of the matrix. The units old* instantiate the members.
//
// What differs from the matrix: results are lengths or small negative numbers, a null value is no
// failure, formats are in the name (the shapes below), and the rules that say so.
#ifndef COMN_CONVERT_LEGACY_H
#define COMN_CONVERT_LEGACY_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "any_address.h"
#include "checks.h"
#include "decimal_text.h"
#include "oldconv.h"

namespace comn::legacy {

// ---- results ----

constexpr CS_INT nothing = 0;

// What a status of the matrix is here, or the length of a success. Deliberate: codes that this family
// never had come out unchanged.
inline CS_INT result_of(CS_RETCODE status, CS_INT length) noexcept {
  switch (status) {
  case CS_SUCCEED:
    return length;
  case CS_CONV_OVERFLOW:
    return COM_OLD_OVERFLOW;
  case CS_CONV_UNDERFLOW:
    return COM_OLD_UNDERFLOW;
  case CS_CONV_SYNTAX:
    return COM_OLD_SYNTAX;
  case CS_CONV_DOMAIN:
    return COM_OLD_DOMAIN;
  case CS_CONV_BADPRECISION:
    return COM_OLD_BADPRECISION;
  case CS_CONV_BADSCALE:
    return COM_OLD_BADSCALE;
  default:
    return status;
  }
}

// ---- sources ----

// Text or bytes on their own.
struct Plain {
  Plain(CS_BYTE *src, CS_INT srclen) noexcept
      : bytes(src), length(std::max(srclen, 0)), parsed_length(srclen) {}
  static constexpr bool is_null() noexcept { return false; }

  CS_BYTE *bytes;
  CS_INT length;
  CS_INT parsed_length;
};

// A header with the length, and the bytes behind it. Deliberate: a text that is parsed has the length
// that the caller says, not the header's.
struct Record {
  Record(CS_BYTE *src, CS_INT srclen) noexcept
      : bytes(src + sizeof(CS_SMALLINT)), length(load<CS_SMALLINT>(src)), parsed_length(srclen) {}
  bool is_null() const noexcept { return length <= 0; }

  CS_BYTE *bytes;
  CS_INT length;
  CS_INT parsed_length;
};

// ---- text destinations ----

constexpr CS_INT unlimited = std::numeric_limits<CS_INT>::max();
constexpr CS_INT longest_record = std::numeric_limits<CS_SMALLINT>::max();

// Each shape says where the text goes, how much has room, and how the text ends.
struct AsChar {
  AsChar(CS_BYTE *dest, CS_INT destlen) noexcept
      : text(dest), room(destlen == -1 ? unlimited : std::max(destlen, 0)), capacity(destlen) {}
  void finish(CS_INT length) const noexcept { com__padchar(text, capacity, length); }

  CS_BYTE *text;
  CS_INT room, capacity;
};

struct AsString {
  AsString(CS_BYTE *dest, CS_INT destlen) noexcept
      : text(dest), room(destlen < 1 ? unlimited : destlen - 1), capacity(destlen) {}
  void finish(CS_INT length) const noexcept { com__padstring(text, capacity, length); }

  CS_BYTE *text;
  CS_INT room, capacity;
};

struct AsNtbstring {
  AsNtbstring(CS_BYTE *dest, CS_INT destlen) noexcept
      : text(dest), room(destlen < 1 ? unlimited : destlen - 1) {}
  void finish(CS_INT length) const noexcept { text[length] = 0; }

  CS_BYTE *text;
  CS_INT room;
};

struct AsVarychar {
  AsVarychar(CS_BYTE *dest, CS_INT destlen) noexcept
      : text(dest + sizeof(CS_SMALLINT)),
        room(destlen == -1 ? longest_record : std::clamp(destlen, 0, longest_record)) {}
  void finish(CS_INT length) const noexcept {
    store(text - sizeof(CS_SMALLINT), static_cast<CS_SMALLINT>(length));
  }

  CS_BYTE *text;
  CS_INT room;
};

inline CS_CHAR *chars(CS_BYTE *bytes) noexcept {
  return reinterpret_cast<CS_CHAR *>(bytes);
}

inline void copy(CS_BYTE *dest, const void *bytes, CS_INT length) noexcept {
  std::memmove(dest, bytes, static_cast<size_t>(length));
}

// What stands for a number without room. Where not even the star has any, only what ends the text is
// written.
template <class Shape>
[[gnu::cold]] CS_INT write_star(const Shape &shape) noexcept {
  const CS_INT star = std::min(shape.room, 1);
  if (star != 0)
    *shape.text = '*';
  shape.finish(star);
  return COM_OLD_OVERFLOW;
}

// A number, whole or as a star: `write` writes its `length` bytes.
template <class Shape, class Write>
CS_INT write_number(const Shape &shape, CS_INT length, Write write) noexcept {
  if (length > shape.room) [[unlikely]]
    return write_star(shape);
  write(chars(shape.text));
  shape.finish(length);
  return length;
}

template <class Shape>
CS_INT write_number(const Shape &shape, const CS_CHAR *text, CS_INT length) noexcept {
  return write_number(shape, length,
                      [=](CS_CHAR *dest) { std::memcpy(dest, text, static_cast<size_t>(length)); });
}

template <class Shape, class Integer>
CS_INT integer_text(Integer value, CS_BYTE *dest, CS_INT destlen) noexcept {
  const PrintedInteger number(value);
  return write_number(Shape(dest, destlen), number.length(),
                      [&](CS_CHAR *text) { number.write(text); });
}

// ---- binary destinations ----

inline void clear(CS_BYTE *dest, CS_INT from, CS_INT to) noexcept {
  if (from < to)
    std::memset(dest + from, 0, static_cast<size_t>(to - from));
}

// Bytes that end in zeroes. Deliberate: a capacity of 0 is none.
struct AsBinary {
  AsBinary(CS_BYTE *dest, CS_INT destlen) noexcept
      : bytes(dest), room(destlen > 0 ? destlen : unlimited), capacity(destlen) {}
  void finish(CS_INT length) const noexcept { clear(bytes, length, capacity); }

  CS_BYTE *bytes;
  CS_INT room, capacity;
};

struct AsVarybin {
  AsVarybin(CS_BYTE *dest, CS_INT destlen) noexcept : record(dest, destlen), bytes(record.text) {}
  void finish(CS_INT length) const noexcept { record.finish(length); }

  AsVarychar record;
  CS_BYTE *bytes;
  CS_INT room = record.room;
};

template <class Shape>
CS_INT copy_bytes(const Shape &shape, const CS_BYTE *bytes, CS_INT length) noexcept {
  const CS_INT count = std::min(length, shape.room);
  copy(shape.bytes, bytes, count);
  shape.finish(count);
  return count < length ? COM_OLD_OVERFLOW : count;
}

// The same for so many bytes as a type has.
template <CS_INT Width, class Shape>
CS_INT copy_value(const Shape &shape, const CS_BYTE *value) noexcept {
  if (Width > shape.room) [[unlikely]]
    return copy_bytes(shape, value, Width);
  std::memmove(shape.bytes, value, Width);
  shape.finish(Width);
  return Width;
}

// ---- types of one width ----

// A conversion of the matrix between two of them, without its checks.
template <auto Convert>
CS_INT convert_fixed(CS_BYTE *src, CS_BYTE *dest) noexcept {
  CS_INT length = 0;
  const CS_RETCODE status = Convert(src, dest, &length);
  return result_of(status, length);
}

} // namespace comn::legacy

// ---- members ----

// A member: its name, its body in parentheses, and the parameters behind `destlen`. The bodies see
// COMN_OLD_PARAMETERS.
#define COMN_OLD_PARAMETERS                                                                        \
  CS_BYTE *src, [[maybe_unused]] CS_INT srclen, CS_BYTE *dest, [[maybe_unused]] CS_INT destlen
#define COMN_OLD(name, body, ...)                                                                  \
  CS_INT name(COMN_OLD_PARAMETERS __VA_OPT__(, ) __VA_ARGS__) noexcept {                           \
    using namespace comn::legacy;                                                                  \
    if (src == nullptr || srclen == 0)                                                             \
      return nothing;                                                                              \
    COMN_CHECK_PTR(dest, nothing);                                                                 \
    return body;                                                                                   \
  }
// A second spelling of a member.
#define COMN_OLD_ALIAS(spelling, name) decltype(name) spelling __attribute__((alias(#name)));
#define COMN_OLD_TO_FIXED(source, destination, ...)                                                \
  COMN_OLD(com_##source##to##destination, (convert_fixed<__VA_ARGS__>(src, dest)))
// The members to text, for a function of the shape, and those to binary, for one of the bytes.
#define COMN_OLD_TO_TEXT(source, write, suffix, arguments, ...)                                    \
  COMN_OLD(com_##source##tochar##suffix, (write<AsChar> arguments), __VA_ARGS__)                   \
  COMN_OLD(com_##source##tostring##suffix, (write<AsString> arguments), __VA_ARGS__)               \
  COMN_OLD(com_##source##tontbstring##suffix, (write<AsNtbstring> arguments), __VA_ARGS__)         \
  COMN_OLD(com_##source##tovarychar##suffix, (write<AsVarychar> arguments), __VA_ARGS__)
#define COMN_OLD_TO_BYTES(source, write, ...)                                                      \
  COMN_OLD(com_##source##tobinary, (write(AsBinary(dest, destlen), __VA_ARGS__)))                  \
  COMN_OLD_ALIAS(com_##source##tobin, com_##source##tobinary)                                      \
  COMN_OLD(com_##source##tovarybin, (write(AsVarybin(dest, destlen), __VA_ARGS__)))

#endif
