// The names of characters, from the character database of the system.
#ifndef ZRVTOOL_CHARACTER_NAMES_H
#define ZRVTOOL_CHARACTER_NAMES_H

#include <string>

namespace zrvtool {

// The name of a character, or an empty text when the database does not have it or is not installed.
std::string character_name(char32_t character);

} // namespace zrvtool

#endif
