// The two sources of text: bytes on their own and bytes in a record. Every conversion from text is
// written for both. A source knows its character set too.
#ifndef COMN_CONVERT_TEXT_SOURCE_H
#define COMN_CONVERT_TEXT_SOURCE_H

#include <algorithm>
#include <cstddef>

#include "any_address.h"
#include "charset.h"
#include "comloc.h"
#include "csintrn.h"
#include "types.h"

namespace comn::text {

// The character set of a format's text, looked up when it is asked for.
class FormatSet {
public:
  FormatSet(CS_CONTEXT *context, CS_DATAFMT *format) noexcept
      : context_(context), format_(format) {}
  CS_ATTRIB *set() const noexcept { return com_intl_charattr(context_, format_); }

private:
  CS_CONTEXT *context_;
  CS_DATAFMT *format_;
};

// Bytes on their own, of the length that the source's format gives.
struct of_char : FormatSet {
  static constexpr bool is_record = false;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return text_types.contains(srcfmt->datatype);
  }
  of_char(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src) noexcept
      : FormatSet(context, srcfmt), bytes(static_cast<CS_BYTE *>(src)),
        told_length(srcfmt->maxlength), length(told_length) {}

  CS_BYTE *bytes;
  CS_INT told_length; // what the caller says
  CS_INT length;      // what may be read
};

// A record. No more than it holds is ever read, whatever its length says.
struct of_varchar : FormatSet {
  static constexpr bool is_record = true;
  static bool accepts(const CS_DATAFMT *srcfmt) noexcept {
    return srcfmt->datatype == CS_TYPE_VARCHAR;
  }
  of_varchar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src) noexcept
      : FormatSet(context, srcfmt), bytes(static_cast<CS_BYTE *>(src) + offsetof(CS_VARCHAR, str)),
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
