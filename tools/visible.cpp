// Escapes, hexadecimal digits, and the steps of UTF-8.
#include "visible.h"

#include <algorithm>

namespace zrvtool {

namespace {

constexpr char hex_digits[] = "0123456789abcdef";

// The length of the character at the front of `bytes`, or 0 where it is no well-formed UTF-8.
size_t character_length(std::string_view bytes) {
  const auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
  const size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (length == 0 || lead > 0xF4 || length > bytes.size())
    return 0;
  for (size_t i = 1; i < length; ++i)
    if ((at(i) & 0xC0) != 0x80)
      return 0;
  if (length > 2) {
    // Overlong forms, surrogates, and what lies beyond the last code point.
    const unsigned char second = at(1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
      return 0;
  }
  return length;
}

bool is_plain(char c) {
  return c >= ' ' && c <= '~' && c != '\\';
}

void append_escape(std::string &out, char c) {
  out += '\\';
  switch (c) {
  case '\\':
    out += '\\';
    return;
  case '\t':
    out += 't';
    return;
  case '\n':
    out += 'n';
    return;
  case '\r':
    out += 'r';
    return;
  default:
    out += 'x';
    append_hex(out, {&c, 1});
  }
}

// The value of a hexadecimal digit, or a negative number.
int digit_value(char digit) {
  return digit >= '0' && digit <= '9'   ? digit - '0'
         : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10
         : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
                                        : -1;
}

} // namespace

void append_hex(std::string &out, std::string_view bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    out += hex_digits[byte >> 4];
    out += hex_digits[byte & 15];
  }
}

bool read_hex(std::string_view digits, char *bytes) {
  if (digits.size() % 2 != 0)
    return false;
  for (size_t at = 0; at < digits.size(); at += 2) {
    const int high = digit_value(digits[at]), low = digit_value(digits[at + 1]);
    if (high < 0 || low < 0)
      return false;
    *bytes++ = static_cast<char>(high * 16 + low);
  }
  return true;
}

void append_hex_units(std::string &out, std::string_view bytes) {
  for (size_t i = 0; i < bytes.size(); i += 2) {
    if (i > 0)
      out += ' ';
    if (i + 1 < bytes.size())
      append_hex(out, {&bytes[i + 1], 1});
    append_hex(out, {&bytes[i], 1});
  }
}

void append_visible(std::string &out, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto plain =
        static_cast<size_t>(std::find_if_not(bytes.begin(), bytes.end(), is_plain) - bytes.begin());
    out += bytes.substr(0, plain);
    bytes.remove_prefix(plain);
    if (bytes.empty())
      return;
    // U+0080 to U+009F are control characters as well.
    const size_t length = character_length(bytes);
    const bool is_control =
        length == 2 && bytes[0] == '\xC2' && static_cast<unsigned char>(bytes[1]) < 0xA0;
    if (length > 1 && !is_control) {
      out += bytes.substr(0, length);
      bytes.remove_prefix(length);
    } else {
      append_escape(out, bytes[0]);
      bytes.remove_prefix(1);
    }
  }
}

std::string in_quotes(std::string_view bytes) {
  constexpr size_t longest = 60;
  std::string text = "'";
  append_visible(text, bytes.substr(0, longest));
  return text + (bytes.size() > longest ? "...'" : "'");
}

std::string padded(std::string text, size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

size_t count_characters(std::string_view text) {
  return static_cast<size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace zrvtool
