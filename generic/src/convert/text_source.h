// The two sources of text: bytes on their own and bytes in a record. Every conversion from text is
// written for both.
#ifndef COMN_CONVERT_TEXT_SOURCE_H
#define COMN_CONVERT_TEXT_SOURCE_H

#include <algorithm>
#include <cstddef>

#include "any_address.h"
#include "charset.h"
#include "csintrn.h"
#include "types.h"

namespace comn::text {

// Bytes on their own, of the length that the source's format gives.
struct of_char {
  static constexpr bool is_record = false;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return text_types.contains(srcfmt->datatype);
  }
  of_char(const CS_DATAFMT *srcfmt, CS_VOID *src) noexcept
      : bytes(static_cast<CS_BYTE *>(src)), told_length(srcfmt->maxlength), length(told_length) {}

  CS_BYTE *bytes;
  CS_INT told_length; // what the caller says
  CS_INT length;      // what may be read
};

// A record. No more than it holds is ever read, whatever its length says.
struct of_varchar {
  static constexpr bool is_record = true;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return srcfmt->datatype == CS_TYPE_VARCHAR;
  }
  of_varchar(const CS_DATAFMT *, CS_VOID *src) noexcept
      : bytes(static_cast<CS_BYTE *>(src) + offsetof(CS_VARCHAR, str)),
        told_length(load<CS_SMALLINT>(static_cast<CS_BYTE *>(src) + offsetof(CS_VARCHAR, len))),
        length(std::min<CS_INT>(told_length, sizeof(CS_VARCHAR::str))) {}

  CS_BYTE *bytes;
  CS_INT told_length;
  CS_INT length;
};

inline bool is_multi_byte(const CS_ATTRIB *set) noexcept {
  return set != nullptr && set->cs_maxcharlen > 1;
}

} // namespace comn::text

#endif
