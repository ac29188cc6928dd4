// Text in the standard compression scheme for Unicode, from a stream. A converter of the library begins
// anew with each text, which ends at a NUL; a stream is cut anywhere, and what its commands have set stays.
#ifndef ZRVTOOL_RCSU_READER_H
#define ZRVTOOL_RCSU_READER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace zrvtool {

class RcsuReader {
public:
  struct Element {
    size_t bytes;        // 0 when more are needed
    std::u16string text; // empty for a command
    bool is_invalid;
  };

  // The command or character at the head of the bytes, of which there are some. What is cut is invalid
  // at the end of all.
  Element read(std::string_view bytes, bool is_end);

  // Commands that bring a reader back to where it begins, from among bytes for characters.
  static const std::string &reset();
  // Whether text that a reader begins with has commands.
  static bool has_commands(std::string_view bytes);

private:
  static constexpr size_t window_count = 8;

  size_t length_of(uint8_t byte) const;
  Element read_unit(std::string_view bytes, size_t length, bool is_end) const;

  char32_t windows[window_count] = {0x0080, 0x00C0, 0x0400, 0x0600, 0x0900, 0x3040, 0x30A0, 0xFF00};
  size_t active = 0;
  bool is_in_units = false; // else among bytes for characters
};

} // namespace zrvtool

#endif
