// Sets of one-byte characters.
#include <algorithm>
#include <cstring>

#include "tables.h"

namespace zrvunic {

namespace {

// The characters of the first rows of Unicode under their own numbers, up to `last`.
struct Identity : OneByteTable {
  uint8_t page[2][256]{};

  constexpr explicit Identity(unsigned last) {
    ascii = true;
    page_of[0] = 1;
    for (unsigned byte = 0; byte < 256; ++byte) {
      to_unicode[byte] = byte <= last ? static_cast<UChar16>(byte) : replacement;
      page[1][byte] = byte <= last ? static_cast<uint8_t>(byte) : 0;
    }
    pages = page;
  }
};

constinit Identity ascii_table{0x7F};
constinit Identity latin_1_table{0xFF};

} // namespace

OneByteTable *built_in(UNICONV_CID cid) noexcept {
  return cid == 0 ? &ascii_table : cid == 1 ? &latin_1_table : nullptr;
}

Outcome decode_one_byte(const OneByteTable &table, UChar16 *dest, size_t room,
                        const UChar8 *source) noexcept {
  const size_t length = std::strlen(reinterpret_cast<const char *>(source));
  const size_t count = std::min(length, room);
  bool lost = false;
  for (size_t done = 0; done < count;) {
    if (table.ascii) {
      done += widen_ascii(dest + done, source + done, count - done);
      if (done == count)
        break;
    }
    // A stretch without looking for ASCII: where there is other text, more of it follows.
    const size_t end = std::min(count, done + 32);
    for (; done < end; ++done) {
      const UChar16 unit = table.to_unicode[source[done]];
      dest[done] = unit;
      lost |= unit == replacement;
    }
  }
  return {count, count < length ? UNICONV_PARTIAL : lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

Outcome encode_one_byte(const OneByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                        size_t room, const UChar16 *source, size_t count) noexcept {
  const UChar16 *const end = source + count;
  UChar8 *const start = dest;
  UChar8 *const limit = dest + room;
  bool lost = false;
  while (source < end && dest < limit) {
    size_t left = std::min(static_cast<size_t>(end - source), static_cast<size_t>(limit - dest));
    if (table.ascii) {
      const size_t done = narrow_ascii(dest, source, left);
      source += done;
      dest += done;
      left -= done;
    }
    // Never more bytes than units, so the room holds.
    for (const UChar16 *const stretch = source + std::min<size_t>(left, 32); source < stretch;) {
      UChar8 byte = table.pages[table.page_of[*source >> 8]][*source & 0xFF];
      size_t units = 1;
      if (byte == 0) [[unlikely]] {
        take(source, static_cast<size_t>(end - source), units);
        byte = substitutes.single;
        lost = true;
      }
      *dest++ = byte;
      source += units;
    }
  }
  return {static_cast<size_t>(dest - start), source < end ? UNICONV_FULL
                                             : lost       ? UNICONV_SUBSTITUTED
                                                          : UNICONV_SUCCEED};
}

} // namespace zrvunic
