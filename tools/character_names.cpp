// Reads UnicodeData.txt when the first name is asked for.
#include "character_names.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unordered_map>

namespace zrvtool {

namespace {

constexpr const char *database = "/usr/share/unicode/UnicodeData.txt";

std::unordered_map<char32_t, std::string> read_names() {
  std::unordered_map<char32_t, std::string> names;
  std::ifstream file(database);
  std::string line;
  while (std::getline(file, line)) {
    const size_t first = line.find(';');
    const size_t second = line.find(';', first + 1);
    if (second == std::string::npos)
      continue;
    std::string name = line.substr(first + 1, second - first - 1);
    // Ranges and control characters have no names of their own.
    if (name[0] != '<')
      names[static_cast<char32_t>(std::strtoul(line.c_str(), nullptr, 16))] = std::move(name);
  }
  return names;
}

} // namespace

std::string character_name(char32_t character) {
  static const std::unordered_map<char32_t, std::string> names = read_names();
  if ((character >= 0x4E00 && character <= 0x9FFF) ||
      (character >= 0x3400 && character <= 0x4DBF) ||
      (character >= 0x20000 && character <= 0x323AF)) {
    char text[40];
    std::snprintf(text, sizeof text, "CJK UNIFIED IDEOGRAPH-%04X",
                  static_cast<unsigned>(character));
    return text;
  }
  const auto found = names.find(character);
  return found != names.end() ? found->second : std::string();
}

} // namespace zrvtool
