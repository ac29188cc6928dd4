// The return codes that the command meets, by name.
#include "status_names.h"

namespace zrvtool {

namespace {

struct StatusName {
  CS_RETCODE code;
  const char *name;
};

#define STATUS(code)                                                                               \
  { code, #code }
constexpr StatusName names[] = {
    STATUS(CS_SUCCEED),         STATUS(CS_FAIL),           STATUS(CS_MEM_ERROR),
    STATUS(CS_CONV_OVERFLOW),   STATUS(CS_CONV_UNDERFLOW), STATUS(CS_CONV_BADPRECISION),
    STATUS(CS_CONV_BADSCALE),   STATUS(CS_CONV_SYNTAX),    STATUS(CS_CONV_PADCONFLICT),
    STATUS(CS_CONV_DOMAIN),     STATUS(CS_CONV_DIVZERO),   STATUS(CS_CONV_TRUNCATED),
    STATUS(CS_CONV_DATEBUFFER), STATUS(CS_CONV_BADCHAR),   STATUS(CS_CONV_NOXLATE),
    STATUS(CS_CONV_PARTIAL),    STATUS(COM_INTL_ERROR),    STATUS(COM_LOCFILE_ERROR),
};
#undef STATUS

} // namespace

std::string status_name(CS_RETCODE status) {
  for (const StatusName &row : names)
    if (row.code == status)
      return row.name;
  return std::to_string(status);
}

bool is_success(CS_RETCODE status) {
  return status == CS_SUCCEED || status == CS_CONV_PARTIAL;
}

} // namespace zrvtool
