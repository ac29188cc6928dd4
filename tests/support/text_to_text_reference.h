// Text to text of one character set, step by step. Slow and obvious; what the library does is compared
// with it.
#ifndef ZRVTEST_TEXT_TO_TEXT_REFERENCE_H
#define ZRVTEST_TEXT_TO_TEXT_REFERENCE_H

#include <algorithm>
#include <string>
#include <vector>

#include "pad_reference.h"

namespace zrvtest {

// A character as its set spells it, and what it reduces to.
struct Character {
  std::string bytes;
  char ascii;
};
using Characters = std::vector<Character>;

inline std::string spelled(const Characters &text) {
  std::string bytes;
  for (const Character &character : text)
    bytes += character.bytes;
  return bytes;
}

// The characters that fit into so many bytes.
inline std::string whole_characters(const Characters &text, size_t room) {
  std::string bytes;
  for (const Character &character : text) {
    if (bytes.size() + character.bytes.size() > room)
      break;
    bytes += character.bytes;
  }
  return bytes;
}

// What came of a conversion, with what the destination held before behind it.
struct TextResult {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes;
};

inline bool operator==(const TextResult &a, const TextResult &b) {
  return a.status == b.status && a.destlen == b.destlen && a.bytes == b.bytes;
}

// To text of its own, from text of its own or from a record.
inline TextResult slow_text_to_text(const Characters &source, bool is_record, CS_INT format,
                                    CS_INT maxlength, char filler) {
  const auto room = static_cast<size_t>(maxlength);
  const size_t length = spelled(source).size();
  Padded dest{std::string(room, filler), 0};
  const auto keep = [&](const std::string &kept) {
    dest.bytes.replace(0, kept.size(), kept);
    dest.length = static_cast<CS_INT>(kept.size());
  };
  const bool cut = length > room;
  if (std::min(length, room) > 0) {
    if (!is_record && (format & CS_DFMT_ESCQUOTE) != 0) {
      std::string quoted;
      for (const Character &character : source) {
        if ((format & CS_DFMT_NULLTERM) != 0 && character.bytes[0] == '\0')
          break;
        const std::string once = character.bytes;
        const std::string added = character.ascii == '\'' ? once + once : once;
        if (quoted.size() + added.size() > room) {
          keep(quoted);
          return {CS_CONV_TRUNCATED, dest.length, dest.bytes};
        }
        quoted += added;
      }
      keep(quoted);
    } else {
      keep(whole_characters(source, room));
    }
  }
  if (!is_record && dest.length == maxlength && (format & CS_DFMT_NULLTERM) != 0) {
    if (room > 0)
      dest.bytes.back() = '\0';
    return {CS_CONV_TRUNCATED, dest.length, dest.bytes};
  }
  const CS_RETCODE padded = reference_pad_text(1, dest.length, format, maxlength, dest);
  const bool is_cut = padded == CS_CONV_OVERFLOW || (padded == CS_SUCCEED && cut && room > 0);
  return {is_cut ? CS_CONV_TRUNCATED : padded, dest.length, dest.bytes};
}

// The record that it becomes: the status and its text.
inline TextResult slow_text_to_record(const Characters &source) {
  constexpr size_t room = sizeof(CS_VARCHAR::str);
  return {spelled(source).size() > room ? CS_CONV_TRUNCATED : CS_SUCCEED, sizeof(CS_VARCHAR),
          whole_characters(source, room)};
}

} // namespace zrvtest

#endif
