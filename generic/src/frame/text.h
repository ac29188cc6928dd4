// Stepping through a text of any character set: the width rule, the plane rule and the reduction to
// ASCII, each once, for the parsers of numbers, money and dates and for the conversions.
//
// A rule is asked at a place. Complete knows that the character is all there; Within knows the end
// of the text, and reads every byte behind it as NUL. Only the rules that need the second byte of a
// character read it.
#ifndef COMN_FRAME_TEXT_H
#define COMN_FRAME_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "charset.h"

namespace comn {

// The built-in set, with the tables as the library reads them.
extern const CHAR_ATTRIB builtin_charset;

// Callers ask with and without a set alike, so this is a choice and no branch.
inline const CHAR_ATTRIB &charset_or_builtin(const CHAR_ATTRIB *set) noexcept {
  return __builtin_expect_with_probability(set != nullptr, 1, 0.5) ? *set : builtin_charset;
}

// A character that is known to be complete.
struct Complete {
  const CS_BYTE *at;

  CS_BYTE first() const noexcept { return at[0]; }
  CS_BYTE second() const noexcept { return at[1]; }
};

// A character of a text that ends at `end`, which lies behind `at`.
struct Within {
  const CS_BYTE *at;
  const CS_BYTE *end;

  CS_BYTE first() const noexcept { return at[0]; }
  CS_BYTE second() const noexcept { return end - at > 1 ? at[1] : CS_BYTE{0}; }
};

// The width rule: the length in bytes that a character says it has. Never 0, so that a walk goes on.
template <class Place>
CS_INT char_length(const CS_BYTE *width_map, Place place) noexcept {
  if (width_map == nullptr)
    return 1;
  const CS_INT length = width_map[place.first()] & 0x0F;
  if (length == 2 && width_map[255] >> 4 == 15) {
    const CS_BYTE second = place.second();
    return second >= 0x30 && second <= 0x39 ? 4 : 2;
  }
  return length != 0 ? length : 1;
}

template <class Place>
CS_INT char_length(const CHAR_ATTRIB &set, Place place) noexcept {
  return char_length(set.cs_width_map, place);
}

// The bytes of the character that lie inside the text: at least 1.
inline std::ptrdiff_t length_inside(const CHAR_ATTRIB &set, Within place) noexcept {
  return std::min<std::ptrdiff_t>(char_length(set, place), place.end - place.at);
}

inline constexpr CHAR_MAP no_class = {};

// The plane rule: the entry that describes a character. A set without a type map has no classes.
template <class Place>
const CHAR_MAP &char_map(const CHAR_ATTRIB &set, Place place) noexcept {
  const CS_TYPE_MAP *const planes = set.cs_type_map;
  if (planes == nullptr) [[unlikely]]
    return no_class;
  const CHAR_MAP &entry = planes->chmap[place.first()];
  if ((entry.char_type & CS_CTYPE_LEAD) != 0) [[unlikely]]
    return planes[entry.char_upper].chmap[place.second()];
  return entry;
}

// The reduction to ASCII: the byte that stands for a character, 0 if none.
template <class Place>
CS_BYTE to_ascii(const CHAR_ATTRIB &set, Place place) noexcept {
  const CS_BYTE first = place.first();
  if (const CS_NORM_MAP *const planes = set.cs_norm_map) {
    const CS_BYTE entry = planes->norm[first];
    if (entry == 0 || set.cs_width_map == nullptr || (set.cs_width_map[first] & 0x0F) == 1)
      return entry;
    return planes[entry].norm[place.second()];
  }
  // Lower-case text, deliberately.
  return set.cs_type_map != nullptr ? set.cs_type_map->chmap[first].char_lower : first;
}

// Reduces a text: the byte that stands for each character, or its bytes as they are where none does.
// The result is never longer than the text, whose place it may take; its length.
inline CS_INT reduce_to_ascii(const CHAR_ATTRIB &set, const CS_BYTE *text, CS_INT length,
                              CS_BYTE *dest) noexcept {
  const CS_BYTE *const end = text + std::max(length, 0);
  CS_BYTE *out = dest;
  while (text < end) {
    const std::ptrdiff_t inside = length_inside(set, {text, end});
    if (const CS_BYTE ascii = to_ascii(set, Within{text, end})) {
      *out++ = ascii;
    } else {
      std::memmove(out, text, static_cast<std::size_t>(inside));
      out += inside;
    }
    text += inside;
  }
  return static_cast<CS_INT>(out - dest);
}

// Steps through a text, character by character. What stands behind its end is not read; a character
// that the end cuts is the last one.
class TextCursor {
public:
  TextCursor(const CHAR_ATTRIB &text_set, const CS_BYTE *text, CS_INT length) noexcept
      : set(text_set), place{text, text + std::max(length, 0)} {}

  bool more() const noexcept { return place.at < place.end; }
  CS_BYTE ascii() const noexcept { return to_ascii(set, place); }
  CHAR_MAP map() const noexcept { return char_map(set, place); }
  const CS_BYTE *position() const noexcept { return place.at; }
  void next() noexcept { place.at += length_inside(set, place); }

private:
  const CHAR_ATTRIB &set;
  Within place;
};

// Whether every rule asks the one type plane about one byte, as in the built-in set.
inline bool is_plain(const CHAR_ATTRIB &set) noexcept {
  return set.cs_width_map == nullptr && set.cs_norm_map == nullptr && set.cs_type_map != nullptr &&
         set.cs_ntype == 1;
}

// A TextCursor for texts in plain sets.
class PlainCursor {
public:
  PlainCursor(const CHAR_ATTRIB &set, const CS_BYTE *text, CS_INT length) noexcept
      : plane(set.cs_type_map->chmap), at(text), end(text + std::max(length, 0)) {}

  bool more() const noexcept { return at < end; }
  CS_BYTE ascii() const noexcept { return plane[*at].char_lower; }
  CHAR_MAP map() const noexcept { return plane[*at]; }
  const CS_BYTE *position() const noexcept { return at; }
  void next() noexcept { ++at; }

private:
  const CHAR_MAP *plane;
  const CS_BYTE *at;
  const CS_BYTE *end;
};

// Hands a text to `read` with the fastest cursor that its set allows.
template <class Read>
int with_cursor(const CHAR_ATTRIB &set, const CS_BYTE *text, CS_INT length, Read read) noexcept {
  return is_plain(set) ? read(PlainCursor(set, text, length)) : read(TextCursor(set, text, length));
}

} // namespace comn

#endif
