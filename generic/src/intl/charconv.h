// What the conversions between character sets share: the two sides of a call, and memory that lives as
// long as it.
#ifndef COMN_INTL_CHARCONV_H
#define COMN_INTL_CHARCONV_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "any_address.h"
#include "charset.h"
#include "comloc.h"
#include "zrvintl.h"

namespace comn {

// Bytes of a text, or room for one.
struct TextRange {
  CS_BYTE *bytes;
  CS_INT length;
};

// A CS_VARCHAR carries its length in front of its text.
inline bool has_length_in_front(const CS_DATAFMT *format) noexcept {
  return format->datatype == CS_TYPE_VARCHAR;
}

inline TextRange text_of(const CS_DATAFMT *format, CS_VOID *src) noexcept {
  auto *const bytes = static_cast<CS_BYTE *>(src);
  if (has_length_in_front(format))
    return {bytes + offsetof(CS_VARCHAR, str), load<CS_SMALLINT>(bytes)};
  return {bytes, format->maxlength};
}

inline TextRange room_of(const CS_DATAFMT *format, CS_VOID *dest) noexcept {
  auto *const bytes = static_cast<CS_BYTE *>(dest);
  if (has_length_in_front(format))
    return {bytes + offsetof(CS_VARCHAR, str), sizeof(CS_VARCHAR::str)};
  return {bytes, format->maxlength};
}

inline void store_length(const CS_DATAFMT *format, CS_VOID *dest, CS_INT length) noexcept {
  if (has_length_in_front(format))
    store(dest, static_cast<CS_SMALLINT>(length));
}

// Whether a set is the UTF-8 that all contexts share.
inline bool is_utf8(const CS_CONTEXT *context, const CsCharDesc *charset) noexcept {
  return context->ctxglobals != nullptr && context->ctxglobals->cmg_utf8_charset == charset;
}

// Memory until the end of a call.
template <class T>
class Scratch {
public:
  Scratch() = default;
  ~Scratch() { comn_free(block); }
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;

  bool allocate(std::uint64_t count) noexcept {
    if (count <= SIZE_MAX / sizeof(T))
      block = static_cast<T *>(comn_malloc(static_cast<size_t>(count) * sizeof(T)));
    return block != nullptr;
  }

  T *data() const noexcept { return block; }

private:
  T *block = nullptr;
};

} // namespace comn

#endif
