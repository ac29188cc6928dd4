// The names of return codes.
#ifndef ZRVTOOL_STATUS_NAMES_H
#define ZRVTOOL_STATUS_NAMES_H

#include <string>

#include "zrvcomn/cserror.h"

namespace zrvtool {

// "CS_CONV_OVERFLOW", or the number of a code without a name.
std::string status_name(CS_RETCODE status);

// True when all of the result that the caller asked for is there.
bool is_success(CS_RETCODE status);

} // namespace zrvtool

#endif
