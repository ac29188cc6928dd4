// A slow reader of configuration files: the scanner's rules tried one by one, and a parser whose tables
// are worked out from the rows of the grammar.
#ifndef ZRVTEST_CONFIG_REFERENCE_H
#define ZRVTEST_CONFIG_REFERENCE_H

#include <string>
#include <utility>
#include <vector>

#include "zrvcomn/charset.h"

namespace zrvtest {

struct ConfigSection {
  std::string name;
  std::vector<std::pair<std::string, std::vector<std::string>>> entries; // by name
  std::vector<std::string> includes;

  auto operator<=>(const ConfigSection &) const = default;
};

struct ConfigMessage {
  CS_MSGNUM number;
  CS_INT line;      // of a syntax error, else 0
  std::string text; // of the token, the name of the included section

  bool operator==(const ConfigMessage &) const = default;
};

struct ConfigFile {
  bool loaded = false;
  std::vector<ConfigSection> sections; // in the order of the file; empty unless loaded
  std::vector<ConfigMessage> messages;
};

// A token: its code and its bytes.
struct ConfigToken {
  CS_INT code;
  size_t offset, length;
  size_t first_length; // of its first character
  CS_INT line;         // where the scanner stands behind it

  auto operator<=>(const ConfigToken &) const = default;
};

std::vector<ConfigToken> scan_config(const std::string &bytes, CS_ATTRIB *set);
ConfigFile read_config(const std::string &bytes, CS_ATTRIB *set);

} // namespace zrvtest

#endif
