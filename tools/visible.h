// Bytes as they can be shown.
#ifndef ZRVTOOL_VISIBLE_H
#define ZRVTOOL_VISIBLE_H

#include <string>
#include <string_view>

namespace zrvtool {

// Appends text such that it stays on its line and in its column and commands no terminal: a
// backslash is doubled, tab, line feed and carriage return become \t, \n and \r, every other
// control character and every byte that is no UTF-8 becomes \xHH.
void append_visible(std::string &out, std::string_view bytes);

// The same in quotes for a message, and no more than the first 60 bytes.
std::string in_quotes(std::string_view bytes);

void append_hex(std::string &out, std::string_view bytes);

// Reads what append_hex writes, in digits of either case; false for anything else, and then some of the
// bytes may have been written. There is room for half as many as there are digits.
bool read_hex(std::string_view digits, char *bytes);

// 16-bit units in host order, each as four digits, a blank between.
void append_hex_units(std::string &out, std::string_view bytes);

// The text with blanks behind it to a width in bytes, which fills a column of ASCII.
std::string padded(std::string text, size_t width);

// The number of characters of a UTF-8 text.
size_t count_characters(std::string_view text);

} // namespace zrvtool

#endif
