// zrvcomn date --parse: what the library reads in a free-form text.
#ifndef ZRVTOOL_DATE_PARSE_H
#define ZRVTOOL_DATE_PARSE_H

#include <string>

#include "input.h"
#include "zrvcomn/cstypes.h"

namespace zrvtool {

struct DateParseOptions {
  Values texts;
  std::string to, order; // a type and an order by their names
  CS_INT style;
  bool json;
};

// Prints the fields of each text, or complains. Throws UsageError for a type or order that is none.
int parse_dates(const DateParseOptions &options);

} // namespace zrvtool

#endif
