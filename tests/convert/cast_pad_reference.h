// The pad of text in cast-context conversions by its rules, one byte at a time.
#ifndef ZRVTEST_CAST_PAD_REFERENCE_H
#define ZRVTEST_CAST_PAD_REFERENCE_H

#include <ostream>
#include <string>

#include "zrvcomn/castctx.h"

namespace zrvtest {

// A result; in the bytes of the capacity "." stands for what was not written.
struct CastPadded {
  CS_RETCODE status;
  CS_INT len;
  std::string bytes;
};

inline bool operator==(const CastPadded &a, const CastPadded &b) {
  return a.status == b.status && a.len == b.len && a.bytes == b.bytes;
}

inline std::ostream &operator<<(std::ostream &out, const CastPadded &padded) {
  return out << padded.status << ' ' << padded.len << " \"" << padded.bytes << '"';
}

// A text that stands in a capacity of `room`, no less than its length.
inline CastPadded reference_cast_pad(const std::string &text, CS_INT format, CS_INT room) {
  constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK,
                   H = CAST_DFMT_PADHEAD;
  const auto len = static_cast<CS_INT>(text.size());
  const auto has = [format](CS_INT bit) { return (format & bit) != 0; };
  CastPadded result{CS_SUCCEED, len, text};
  result.bytes.resize(static_cast<size_t>(room), '.');
  if (room < len || (has(N) && room == len)) {
    result.status = CS_CONV_OVERFLOW;
    return result;
  }
  if (has(P) && has(B)) {
    result.status = CS_CONV_PADCONFLICT;
  } else if (has(P)) {
    for (CS_INT i = len; i < room; ++i)
      result.bytes[static_cast<size_t>(i)] = '\0';
    result.len = room;
  } else if (has(B) && has(H) && has(N)) {
    result.status = CS_CONV_PADCONFLICT;
  } else if (has(B)) {
    const CS_INT first = has(H) ? 0 : len;
    for (CS_INT i = 0; i < room - len; ++i)
      result.bytes[static_cast<size_t>(first + i)] = ' ';
    if (has(N))
      result.bytes[static_cast<size_t>(room - 1)] = '\0';
    result.len = room;
  } else if (has(N)) {
    result.bytes[static_cast<size_t>(len)] = '\0';
    result.len = len + 1;
  }
  return result;
}

} // namespace zrvtest

#endif
