// Character sets by the names that the installation knows.
#ifndef ZRVTOOL_CHARSET_NAMES_H
#define ZRVTOOL_CHARSET_NAMES_H

#include <string>
#include <vector>

namespace zrvtool {

struct CharsetName {
  std::string name; // the canonical one
  int number;       // of the set; -1 when it is not known
  int converter;    // its UNICONV_CID
  std::vector<std::string> names;
};

// Those that objectid.dat lists and that this library knows, in its order. Throws StreamError.
std::vector<CharsetName> charset_names();

// The one that has a name, its canonical one or another. Throws UsageError.
CharsetName find_charset(const std::string &name);

} // namespace zrvtool

#endif
