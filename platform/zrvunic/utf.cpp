// UTF-8 and UTF-16.
#include <algorithm>
#include <cstring>

#include "sets.h"

namespace zrvunic {

namespace {

// How a byte of UTF-8 that begins a character goes on: how many bytes follow, the bits of the character
// that it holds, and between what the first of those bytes must lie, which shuts out overlong forms,
// surrogates and what is above U+10FFFF.
struct Lead {
  uint8_t more;
  uint8_t bits;
  uint8_t first;
  uint8_t last;
};

constexpr Lead lead_of(UChar8 byte) noexcept {
  if (byte < 0xC2 || byte > 0xF4)
    return {0, 0, 0, 0};
  if (byte < 0xE0)
    return {1, static_cast<uint8_t>(byte & 0x1F), 0x80, 0xBF};
  if (byte < 0xF0)
    return {2, static_cast<uint8_t>(byte & 0xF), static_cast<uint8_t>(byte == 0xE0 ? 0xA0 : 0x80),
            static_cast<uint8_t>(byte == 0xED ? 0x9F : 0xBF)};
  return {3, static_cast<uint8_t>(byte & 7), static_cast<uint8_t>(byte == 0xF0 ? 0x90 : 0x80),
          static_cast<uint8_t>(byte == 0xF4 ? 0x8F : 0xBF)};
}

constexpr bool is_tail(UChar8 byte) noexcept {
  return (byte & 0xC0) == 0x80;
}

// What stands at `source`, which ends at a NUL: the character, or how the source fails
// to be one, and the bytes that it takes.
struct Piece {
  enum Kind { whole, malformed, cut } kind;
  uint32_t character;
  size_t length;
};

inline Piece read(const UChar8 *source) noexcept {
  if (source[0] < 0x80)
    return {Piece::whole, source[0], 1};
  const Lead lead = lead_of(source[0]);
  uint32_t character = lead.bits;
  uint8_t first = lead.first;
  uint8_t last = lead.last;
  size_t length = 1;
  for (; length <= lead.more; ++length) {
    const UChar8 next = source[length];
    if (next < first || next > last)
      return {next == 0 ? Piece::cut : Piece::malformed, 0, length};
    character = character << 6 | (next & 0x3F);
    first = 0x80;
    last = 0xBF;
  }
  return {lead.more == 0 ? Piece::malformed : Piece::whole, character, length};
}

struct Progress {
  size_t written;
  size_t read;
  enum { done, full, malformed, cut } end;
};

// Goes on behind what is malformed when `lost` is not null, and tells it there.
Progress from_utf8(UChar16 *dest, size_t room, const UChar8 *source, bool *lost) noexcept {
  const UChar8 *const start = source;
  const UChar8 *const end = source + std::strlen(reinterpret_cast<const char *>(source));
  UChar16 *const dest_start = dest;
  UChar16 *const limit = dest + room;
  auto result = Progress::done;
  while (source < end) {
    const size_t run =
        widen_ascii(dest, source,
                    std::min(static_cast<size_t>(end - source), static_cast<size_t>(limit - dest)));
    source += run;
    dest += run;
    // Other characters one by one, until some ASCII ones stand together; first those that most texts
    // are made of.
    for (int ascii = 0; source < end && dest < limit && ascii < ascii_run;) {
      if (*source < 0x80) {
        *dest++ = *source++;
        ++ascii;
        continue;
      }
      ascii = 0;
      if (*source >= 0xC2 && *source < 0xE0 && is_tail(source[1])) {
        *dest++ = static_cast<UChar16>((source[0] & 0x1F) << 6 | (source[1] & 0x3F));
        source += 2;
      } else if (*source >= 0xE0 && *source < 0xF0 && is_tail(source[1]) && is_tail(source[2])) {
        const auto unit = static_cast<UChar16>((source[0] & 0xF) << 12 | (source[1] & 0x3F) << 6 |
                                               (source[2] & 0x3F));
        if (unit < 0x800 || is_surrogate(unit))
          break;
        *dest++ = unit;
        source += 3;
      } else {
        break;
      }
    }
    if (source == end)
      break;
    const Piece piece = read(source);
    const bool is_whole = piece.kind == Piece::whole;
    if (!is_whole && (piece.kind == Piece::cut || lost == nullptr)) {
      result = piece.kind == Piece::cut ? Progress::cut : Progress::malformed;
      break;
    }
    const uint32_t character = is_whole ? piece.character : replacement;
    if (unit_size(character) > static_cast<size_t>(limit - dest)) {
      result = Progress::full;
      break;
    }
    if (!is_whole)
      *lost = true;
    dest = put(dest, character);
    source += piece.length;
  }
  return {static_cast<size_t>(dest - dest_start), static_cast<size_t>(source - start), result};
}

inline size_t utf8_size(uint32_t character) noexcept {
  return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

inline UChar8 *write(UChar8 *dest, uint32_t character) noexcept {
  const auto tail = [&](unsigned shift) {
    return static_cast<UChar8>(0x80 | (character >> shift & 0x3F));
  };
  if (character < 0x80) {
    *dest++ = static_cast<UChar8>(character);
    return dest;
  }
  if (character < 0x800) {
    *dest++ = static_cast<UChar8>(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    *dest++ = static_cast<UChar8>(0xE0 | character >> 12);
    *dest++ = tail(6);
  } else {
    *dest++ = static_cast<UChar8>(0xF0 | character >> 18);
    *dest++ = tail(12);
    *dest++ = tail(6);
  }
  *dest++ = tail(0);
  return dest;
}

// Writes `substitute` for an unpaired surrogate, unless it is 0, and tells it in `*lost`.
Progress to_utf8(UChar8 *dest, size_t room, const UChar16 *source, size_t count, UChar8 substitute,
                 bool *lost) noexcept {
  const UChar16 *const start = source;
  const UChar16 *const end = source + count;
  UChar8 *const dest_start = dest;
  UChar8 *const limit = dest + room;
  auto result = Progress::done;
  while (source < end) {
    const size_t run = narrow_ascii(
        dest, source,
        std::min(static_cast<size_t>(end - source), static_cast<size_t>(limit - dest)));
    source += run;
    dest += run;
    // As above.
    for (int ascii = 0; source < end && limit - dest >= 3 && ascii < ascii_run; ++source) {
      const UChar16 unit = *source;
      if (unit < 0x80) {
        *dest++ = static_cast<UChar8>(unit);
        ++ascii;
        continue;
      }
      ascii = 0;
      if (unit < 0x800) {
        dest[0] = static_cast<UChar8>(0xC0 | unit >> 6);
        dest[1] = static_cast<UChar8>(0x80 | (unit & 0x3F));
        dest += 2;
      } else if (!is_surrogate(unit)) {
        dest[0] = static_cast<UChar8>(0xE0 | unit >> 12);
        dest[1] = static_cast<UChar8>(0x80 | (unit >> 6 & 0x3F));
        dest[2] = static_cast<UChar8>(0x80 | (unit & 0x3F));
        dest += 3;
      } else {
        break;
      }
    }
    if (source == end)
      break;
    size_t units = 0;
    uint32_t character = take(source, static_cast<size_t>(end - source), units);
    const bool lacks = is_surrogate(character);
    if (lacks && substitute == 0) {
      result = Progress::malformed;
      break;
    }
    if (lacks)
      character = substitute;
    if (utf8_size(character) > static_cast<size_t>(limit - dest)) {
      result = Progress::full;
      break;
    }
    if (lacks)
      *lost = true;
    dest = write(dest, character);
    source += units;
  }
  return {static_cast<size_t>(dest - dest_start), static_cast<size_t>(source - start), result};
}

} // namespace

Outcome decode_utf8(UChar16 *dest, size_t room, const UChar8 *source) noexcept {
  bool lost = false;
  const Progress progress = from_utf8(dest, room, source, &lost);
  return {progress.written, progress.end != Progress::done ? UNICONV_PARTIAL
                            : lost                         ? UNICONV_SUBSTITUTED
                                                           : UNICONV_SUCCEED};
}

Outcome encode_utf8(const Substitutes &substitutes, UChar8 *dest, size_t room,
                    const UChar16 *source, size_t count) noexcept {
  bool lost = false;
  const Progress progress = to_utf8(dest, room, source, count, substitutes.single, &lost);
  return {progress.written, progress.end != Progress::done ? UNICONV_FULL
                            : lost                         ? UNICONV_SUBSTITUTED
                                                           : UNICONV_SUCCEED};
}

Outcome decode_utf16(UChar16 *dest, size_t room, const UChar8 *source) noexcept {
  const auto unit_at = [source](size_t index) {
    UChar16 unit;
    std::memcpy(&unit, source + 2 * index, sizeof unit);
    return unit;
  };
  bool lost = false;
  size_t done = 0;
  for (UChar16 unit; (unit = unit_at(done)) != 0; ++done) {
    if (done == room)
      return {done, UNICONV_PARTIAL};
    dest[done] = unit;
    if (!is_surrogate(unit))
      continue;
    const UChar16 next = unit_at(done + 1);
    if (is_high(unit) && is_low(next)) {
      if (room - done < 2)
        return {done, UNICONV_PARTIAL};
      dest[++done] = next;
    } else if (is_high(unit) && next == 0) {
      return {done, UNICONV_PARTIAL};
    } else {
      dest[done] = replacement;
      lost = true;
    }
  }
  return {done, lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

Outcome encode_utf16(const Substitutes &substitutes, UChar8 *dest, size_t room,
                     const UChar16 *source, size_t count) noexcept {
  bool lost = false;
  size_t done = 0;
  for (size_t units = 0; done < count; done += units) {
    const uint32_t character = take(source + done, count - done, units);
    if (room / 2 - done < units)
      return {2 * done, UNICONV_FULL};
    if (is_surrogate(character)) {
      const UChar16 unit = substitutes.single;
      std::memcpy(dest + 2 * done, &unit, sizeof unit);
      lost = true;
    } else {
      std::memcpy(dest + 2 * done, source + done, 2 * units);
    }
  }
  return {2 * done, lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

} // namespace zrvunic

using zrvunic::Progress;

int uniutf8_unistrFromUTF8(UChar16 *dest, int size, const UChar8 *source, int *used) noexcept {
  if (dest == nullptr || size < 1 || source == nullptr)
    return UNIUTF8_EINVAL;
  const size_t room = static_cast<size_t>(size) - 1;
  const Progress progress = zrvunic::from_utf8(dest, room, source, nullptr);
  dest[progress.written] = 0;
  if (used != nullptr)
    *used = static_cast<int>(progress.read);
  if (progress.end == Progress::full) {
    std::fill(dest + progress.written, dest + size, UChar16{0});
    return UNIUTF8_FULL;
  }
  return progress.end == Progress::done ? static_cast<int>(progress.written) : UNIUTF8_ILLEGAL;
}

int uniutf8_unistrToUTF8(UChar8 *dest, int size, const UChar16 *source, int *used) noexcept {
  if (dest == nullptr || size < 1 || source == nullptr)
    return UNIUTF8_EINVAL;
  const size_t room = static_cast<size_t>(size) - 1;
  const Progress progress =
      zrvunic::to_utf8(dest, room, source, zrvunic::unit_count(source), 0, nullptr);
  dest[progress.written] = 0;
  if (used != nullptr)
    *used = static_cast<int>(progress.read);
  if (progress.end == Progress::full) {
    std::fill(dest + progress.written, dest + size, UChar8{0});
    return UNIUTF8_FULL;
  }
  return progress.end == Progress::done ? static_cast<int>(progress.written) : UNIUTF8_ILLEGAL;
}
