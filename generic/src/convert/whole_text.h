// Numbers as text: whole or as a star, never cut.
#ifndef COMN_CONVERT_WHOLE_TEXT_H
#define COMN_CONVERT_WHOLE_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "any_address.h"
#include "pad.h"

namespace comn {

// What stands for a number without room.
[[gnu::cold, gnu::noinline]] inline CS_RETCODE show_star(CS_INT format, CS_INT capacity,
                                                         CS_VOID *dest, CS_INT *destlen) noexcept {
  if (capacity > 1) {
    std::memcpy(dest, "*", 2);
    *destlen = 1;
    pad_text(1, format, capacity, dest, destlen);
  }
  return CS_CONV_OVERFLOW;
}

// A number that is printed already.
inline CS_RETCODE whole_text(const CS_CHAR *text, CS_INT length, const CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen) noexcept {
  const CS_INT capacity = destfmt->maxlength;
  *destlen = std::min(capacity, length);
  if (!text_fits(length, destfmt->format, capacity)) [[unlikely]]
    return show_star(destfmt->format, capacity, dest, destlen);
  std::memcpy(dest, text, static_cast<size_t>(length));
  return pad_text(length, destfmt->format, capacity, dest, destlen);
}

// The same in a record, which has room for every number; nothing ends it.
inline CS_RETCODE record_text(const CS_CHAR *text, CS_INT length, CS_VOID *dest,
                              CS_INT *destlen) noexcept {
  auto *const record = static_cast<CS_CHAR *>(dest);
  *destlen = sizeof(CS_VARCHAR);
  std::memcpy(record + offsetof(CS_VARCHAR, str), text, static_cast<size_t>(length));
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(length));
  return CS_SUCCEED;
}

} // namespace comn

#endif
