// What the units of this library share: sets, tables, and the converters of each form.
#ifndef ZRVUNIC_SETS_H
#define ZRVUNIC_SETS_H

#include <cstddef>
#include <cstdint>

#include "zrvunic.h"

namespace zrvunic {

// How the characters of a set are written.
enum class Form : uint8_t {
  one_byte,   // a byte each
  multi_byte, // one to four bytes, told by those before
  shifted,    // one byte or two, with bytes between that shift to the other
  gb18030,    // one, two or four bytes, all of Unicode
  utf8,
  utf16,
  rcsu,
};

struct Set {
  UNICONV_CID cid;
  Form form;
  uint8_t unit_bytes; // that one Unicode unit can become, with what it needs around it
  bool ebcdic;
  const char *file; // of the table, without its extension; null for a set that needs none
};

// Null when there is no such set.
const Set *find_set(UNICONV_CID cid) noexcept;

// What a converter writes for a character that its set lacks.
struct Substitutes {
  uint8_t single;
  uint16_t pair;
};

// The text that was written, without a terminator, and a result. A converter to a set answers
// UNICONV_FULL whenever the room ran out.
struct Outcome {
  size_t length;
  int code;
};

// The head of a table, whose record depends on the set's form.
struct Table {
  const Set *set = nullptr;  // null for a table that is built in
  Table *next = nullptr;     // in the list of those in use
  size_t users = 0;          // handles
  char *directory = nullptr; // that it was read from
  bool is_home = false;      // which was that of the home directory
  bool ascii = false;        // bytes below 0x80 are ASCII and nothing else is
};

// The sets that need no table. Each turns text that ends at a NUL into at most `room` units, and `count`
// units into at most `room` bytes.
Outcome decode_utf8(UChar16 *dest, size_t room, const UChar8 *source) noexcept;
Outcome encode_utf8(const Substitutes &substitutes, UChar8 *dest, size_t room,
                    const UChar16 *source, size_t count) noexcept;
Outcome decode_utf16(UChar16 *dest, size_t room, const UChar8 *source) noexcept;
Outcome encode_utf16(const Substitutes &substitutes, UChar8 *dest, size_t room,
                     const UChar16 *source, size_t count) noexcept;
Outcome decode_rcsu(UChar16 *dest, size_t room, const UChar8 *source) noexcept;
Outcome encode_rcsu(const Substitutes &substitutes, UChar8 *dest, size_t room,
                    const UChar16 *source, size_t count) noexcept;

constexpr UChar16 replacement = 0xFFFD;
constexpr uint32_t last_character = 0x10FFFF;

// Of units and of characters: U+1D800 is none.
constexpr bool is_surrogate(uint32_t character) noexcept {
  return character - 0xD800 < 0x800;
}
constexpr bool is_high(uint32_t character) noexcept {
  return character - 0xD800 < 0x400;
}
constexpr bool is_low(uint32_t character) noexcept {
  return character - 0xDC00 < 0x400;
}
constexpr uint32_t join(uint32_t high, uint32_t low) noexcept {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// The units that a character takes, and the character written to as many.
constexpr size_t unit_size(uint32_t character) noexcept {
  return character > 0xFFFF ? 2 : 1;
}
inline UChar16 *put(UChar16 *dest, uint32_t character) noexcept {
  if (character > 0xFFFF) {
    *dest++ = static_cast<UChar16>(0xD7C0 + (character >> 10));
    character = 0xDC00 + (character & 0x3FF);
  }
  *dest++ = static_cast<UChar16>(character);
  return dest;
}

// The character at `source`, of which `count` units are left, and how many of them it takes; an
// unpaired surrogate stands for itself.
inline uint32_t take(const UChar16 *source, size_t count, size_t &units) noexcept {
  units = 1;
  if (!is_high(source[0]) || count < 2 || !is_low(source[1]))
    return source[0];
  units = 2;
  return join(source[0], source[1]);
}

// Units before the terminator.
size_t unit_count(const UChar16 *text) noexcept;

// Copies ASCII from the head of the one to the other form, at most `count` characters, and tells how
// many; what is left to the caller may begin with some ASCII still.
size_t widen_ascii(UChar16 *dest, const UChar8 *source, size_t count) noexcept;
// So much of it in a row makes a call worth it.
constexpr int ascii_run = 8;
size_t narrow_ascii(UChar8 *dest, const UChar16 *source, size_t count) noexcept;

} // namespace zrvunic

#endif
