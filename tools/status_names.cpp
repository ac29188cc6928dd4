// What the command says of return codes.
#include "status_names.h"

#include "zrvcomn/zrvstatus.h"

namespace zrvtool {

std::string status_name(CS_RETCODE status) {
  const CS_CHAR *const name = zrv_status_name(status);
  return name != nullptr ? name : std::to_string(status);
}

bool is_success(CS_RETCODE status) {
  return status == CS_SUCCEED || status == CS_CONV_PARTIAL;
}

} // namespace zrvtool
