#include "texts.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace velssfs {

namespace {

// In the ASCII of keys, whatever the locale.
bool is_alphanumeric(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool begins_name(char c) noexcept {
  return is_alphanumeric(c) || c == '_';
}
bool is_in_name(char c) noexcept {
  return begins_name(c) || c == '-' || c == '.';
}

// The value of a hexadecimal digit, or a negative number.
int digit_value(char digit) noexcept {
  if (digit >= '0' && digit <= '9')
    return digit - '0';
  if (digit >= 'a' && digit <= 'f')
    return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F')
    return digit - 'A' + 10;
  return -1;
}

// What may follow a lead byte: how many bytes, and the bounds of the first of them, which keep out
// longer spellings of a character, surrogates, and what lies above U+10FFFF.
struct Lead {
  Byte first, last; // lead bytes
  unsigned more;
  Byte lowest, highest;
};
constexpr Lead leads[] = {
    {0x00, 0x7F, 0, 0x00, 0x00}, {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

} // namespace

bool is_record_key(const char *text) noexcept {
  if (text == nullptr)
    return false;
  bool at_begin = true;
  const char *at = text;
  for (; *at != '\0'; ++at) {
    if (at - text == VELSSFS_MAX_KEY)
      return false;
    if (at_begin ? !begins_name(*at) : *at != '/' && !is_in_name(*at))
      return false;
    at_begin = *at == '/';
  }
  return !at_begin;
}

bool is_key_prefix(const char *text) noexcept {
  return std::all_of(text, text + std::strlen(text),
                     [](char c) { return c == '/' || is_in_name(c); });
}

FileName file_of_key(const char *key) noexcept {
  FileName file;
  const char *const end = key + std::strlen(key);
  std::memcpy(std::replace_copy(key, end, file.text, '/', '+'), record_suffix,
              sizeof record_suffix);
  return file;
}

bool key_of_file(const char *file, char (&key)[VELSSFS_MAX_KEY + 1]) noexcept {
  const size_t length = std::strlen(file);
  if (length <= record_suffix_length || length > VELSSFS_MAX_KEY + record_suffix_length)
    return false;
  const size_t key_length = length - record_suffix_length;
  if (std::strcmp(file + key_length, record_suffix) != 0 ||
      std::memchr(file, '/', length) != nullptr)
    return false;
  *std::replace_copy(file, file + key_length, key, '+', '/') = '\0';
  return is_record_key(key);
}

bool is_utf8(const Byte *text, size_t length) noexcept {
  const Byte *const end = text + length;
  while (text < end) {
    const Byte byte = *text++;
    const Lead *const lead =
        std::find_if(std::begin(leads), std::end(leads),
                     [byte](const Lead &row) { return byte >= row.first && byte <= row.last; });
    if (lead == std::end(leads) || static_cast<size_t>(end - text) < lead->more)
      return false;
    if (lead->more > 0 && (*text < lead->lowest || *text > lead->highest))
      return false;
    if (!std::all_of(text, text + lead->more, [](Byte more) { return (more & 0xC0) == 0x80; }))
      return false;
    text += lead->more;
  }
  return true;
}

bool parse_char_key(const char *text, Byte (&bytes)[key_size]) noexcept {
  if (text == nullptr || strnlen(text, VELSSFS_CHAR_KEY + 1) != VELSSFS_CHAR_KEY)
    return false;
  for (Byte &byte : bytes) {
    const int high = digit_value(*text++);
    const int low = digit_value(*text++);
    if (high < 0 || low < 0)
      return false;
    byte = static_cast<Byte>(high << 4 | low);
  }
  return true;
}

void print_char_key(const Byte (&bytes)[key_size], char (&text)[VELSSFS_CHAR_KEY + 1]) noexcept {
  char *out = text;
  for (const Byte byte : bytes) {
    *out++ = "0123456789abcdef"[byte >> 4];
    *out++ = "0123456789abcdef"[byte & 15];
  }
  *out = '\0';
}

} // namespace velssfs
