// A text reduced to ASCII in a buffer of its own, as the parsers of numbers take it.
#ifndef COMN_CONVERT_REDUCE_H
#define COMN_CONVERT_REDUCE_H

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "text.h"

namespace comn::text {

struct Reduced {
  CS_INT length; // bytes written
  bool whole;    // nothing of the source is left over
};

// Each character becomes the byte that stands for it, or is copied whole if there is none; what does
// not fit any more ends the text.
inline Reduced reduce(const CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen,
                      const CHAR_ATTRIB &set) noexcept {
  // One look into a table for each byte, where a set has no other characters.
  if (is_plain(set)) {
    const CHAR_MAP *const plane = set.cs_type_map->chmap;
    const CS_INT count = std::clamp<CS_INT>(srclen, 0, std::max<CS_INT>(destlen, 0));
    for (CS_INT i = 0; i < count; ++i)
      dest[i] = plane[src[i]].char_lower != 0 ? plane[src[i]].char_lower : src[i];
    return {count, count >= srclen};
  }
  const CS_BYTE *const end = src + std::max<CS_INT>(srclen, 0);
  CS_BYTE *out = dest;
  while (src < end) {
    const Within place{src, end};
    const std::ptrdiff_t room = dest + destlen - out;
    const std::ptrdiff_t length = length_inside(set, place);
    if (const CS_BYTE ascii = to_ascii(set, place); ascii != 0) {
      if (room < 1)
        break;
      *out++ = ascii;
    } else {
      if (room < length)
        break;
      std::memmove(out, src, static_cast<size_t>(length));
      out += length;
    }
    src += length;
  }
  return {static_cast<CS_INT>(out - dest), src == end};
}

// A number's text, with a NUL behind it.
class NumberText {
public:
  // Without a character set the bytes are taken as they are. What exceeds the buffer is no number.
  NumberText(const CS_BYTE *text, CS_INT length, const CHAR_ATTRIB *set) noexcept {
    constexpr CS_INT room = sizeof bytes - 1;
    if (set != nullptr) {
      reduced = reduce(text, length, bytes, room, *set);
    } else {
      reduced = {std::clamp<CS_INT>(length, 0, room), length <= room};
      std::memcpy(bytes, text, static_cast<size_t>(reduced.length));
    }
    bytes[reduced.length] = 0;
  }

  bool fits() const noexcept { return reduced.whole; }
  CS_INT length() const noexcept { return reduced.length; }
  CS_CHAR *data() noexcept { return reinterpret_cast<CS_CHAR *>(bytes); }

private:
  CS_BYTE bytes[1024];
  Reduced reduced;
};

} // namespace comn::text

#endif
