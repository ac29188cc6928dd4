// Which engine converts which pair of character sets.
#ifndef ZRVTOOL_CHARSET_MATRIX_H
#define ZRVTOOL_CHARSET_MATRIX_H

#include <string>

#include "listing.h"

namespace zrvtool {

// All pairs as a grid, or those from one set; `only` is empty or one of its names.
void append_charset_matrix(std::string &out, const std::string &only, const Listing &listing);

} // namespace zrvtool

#endif
