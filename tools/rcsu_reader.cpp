#include "rcsu_reader.h"

#include <algorithm>

namespace zrvtool {

namespace {

// Commands among bytes for characters. Those with a window add its number.
constexpr uint8_t quote = 0x01;
constexpr uint8_t define_extended = 0x0B;
constexpr uint8_t reserved = 0x0C;
constexpr uint8_t quote_unit = 0x0E;
constexpr uint8_t to_units = 0x0F;
constexpr uint8_t change = 0x10;
constexpr uint8_t define = 0x18;
// The same among units, where they lead back to bytes.
constexpr uint8_t unit_change = 0xE0;
constexpr uint8_t unit_quote_unit = 0xF0;
constexpr uint8_t unit_define_extended = 0xF1;
constexpr uint8_t unit_reserved = 0xF2;

constexpr char32_t window_size = 0x80;
constexpr char32_t static_windows[] = {0x0000, 0x0080, 0x0100, 0x0300,
                                       0x2000, 0x2080, 0x2100, 0x3000};

// Where a window begins that a command moves; 0 for a reserved number.
char32_t window_of(uint8_t number) {
  constexpr char32_t special[] = {0x00C0, 0x0250, 0x0370, 0x0530, 0x3040, 0x30A0, 0xFF60};
  constexpr uint8_t first_special = 0xF9;
  constexpr char32_t ideographs = 0x3400, behind_surrogates = 0xE000;
  if (number >= first_special)
    return special[number - first_special];
  const char32_t start = number * window_size;
  if (start < ideographs)
    return start;
  return number < 0xA8 ? start + (behind_surrogates - ideographs) : 0;
}

bool is_command(uint8_t byte) {
  return byte < 0x20 && byte != '\0' && byte != '\t' && byte != '\n' && byte != '\r';
}

bool is_unit_command(uint8_t byte) {
  return byte >= unit_change && byte <= unit_reserved;
}

// The command among bytes that does the same as one among units.
uint8_t among_bytes(uint8_t unit_command) {
  switch (unit_command) {
  case unit_quote_unit:
    return quote_unit;
  case unit_define_extended:
    return define_extended;
  case unit_reserved:
    return reserved;
  default:
    return static_cast<uint8_t>(unit_command - unit_change + change);
  }
}

std::u16string text_of(char32_t character) {
  if (character <= 0xFFFF)
    return {static_cast<char16_t>(character)};
  return {static_cast<char16_t>(0xD7C0 + (character >> 10)),
          static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
}

char16_t unit_at(std::string_view bytes) {
  return static_cast<char16_t>(static_cast<uint8_t>(bytes[0]) << 8 |
                               static_cast<uint8_t>(bytes[1]));
}

} // namespace

const std::string &RcsuReader::reset() {
  static const std::string commands =
      "\x18\x01\x19\xF9\x1A\x08\x1B\x0C\x1C\x12\x1D\xFD\x1E\xFE\x1F\xA6\x10";
  return commands;
}

bool RcsuReader::has_commands(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(),
                     [](char byte) { return is_command(static_cast<uint8_t>(byte)); });
}

// Of a command with what belongs to it, or of a character.
size_t RcsuReader::length_of(uint8_t byte) const {
  if (is_in_units && !is_unit_command(byte))
    return 2;
  const uint8_t command = is_in_units ? among_bytes(byte) : byte;
  if (!is_command(command))
    return 1;
  if (command == define_extended || command == quote_unit)
    return 3;
  return command < define_extended || command >= define ? 2 : 1;
}

// A unit at the end of the first `length` bytes, with the second of its pair behind it.
RcsuReader::Element RcsuReader::read_unit(std::string_view bytes, size_t length,
                                          bool is_end) const {
  const char16_t unit = unit_at(bytes.substr(length - 2));
  if (unit >> 11 != 0xD800 >> 11)
    return {length, {unit}, false};
  if (unit >> 10 != 0xD800 >> 10)
    return {length, {}, true};
  const std::string_view rest = bytes.substr(length);
  const auto next = static_cast<uint8_t>(rest.empty() ? 0 : rest[0]);
  const bool is_unit = is_in_units ? !is_unit_command(next) || next == unit_quote_unit
                                   : next == quote_unit || rest.empty();
  const size_t more = length_of(next);
  if (is_unit && rest.size() < more)
    return {is_end ? bytes.size() : 0, {}, true};
  const char16_t second = is_unit ? unit_at(rest.substr(more - 2)) : u'\0';
  if (second >> 10 != 0xDC00 >> 10)
    return {length, {}, true};
  return {length + more, {unit, second}, false};
}

RcsuReader::Element RcsuReader::read(std::string_view bytes, bool is_end) {
  const auto byte = [&](size_t at) { return static_cast<uint8_t>(bytes[at]); };
  const size_t length = length_of(byte(0));
  if (length > bytes.size())
    return {is_end ? bytes.size() : 0, {}, true};
  const bool is_unit = is_in_units && !is_unit_command(byte(0));
  const uint8_t command = is_in_units && !is_unit ? among_bytes(byte(0)) : byte(0);
  if (is_unit || command == quote_unit)
    return read_unit(bytes, length, is_end);
  if (command == reserved)
    return {length, {}, true};
  if (!is_command(command)) {
    const char32_t start = command < window_size ? 0 : windows[active] - window_size;
    return {length, text_of(start + command), false};
  }
  if (command < define_extended) {
    const size_t window = command - quote;
    const char32_t start =
        byte(1) < window_size ? static_windows[window] : windows[window] - window_size;
    return {length, text_of(start + byte(1)), false};
  }
  is_in_units = command == to_units;
  if (command == define_extended) {
    active = byte(1) >> 5;
    windows[active] = 0x10000 + ((byte(1) & 0x1Fu) << 8 | byte(2)) * window_size;
  } else if (command >= change) {
    active = command % window_count;
    if (command >= define) {
      const char32_t start = window_of(byte(1));
      if (start == 0)
        return {length, {}, true};
      windows[active] = start;
    }
  }
  return {length, {}, false};
}

} // namespace zrvtool
