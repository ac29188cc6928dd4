// Names of return codes, and what they say about a conversion's result.
#include "zrvstatus.h"

#include <algorithm>
#include <iterator>

#include "csintrn.h"
#include "mmpublic.h"
#include "table.h"

namespace {

// What com_errtrace has no name for.
#define STATUS(code)                                                                               \
  { code, #code }
constexpr ComErrString special_codes[] = {
    STATUS(CS_CONV_OVERFLOW),   STATUS(CS_CONV_UNDERFLOW), STATUS(CS_CONV_BADPRECISION),
    STATUS(CS_CONV_BADSCALE),   STATUS(CS_CONV_SYNTAX),    STATUS(CS_CONV_PADCONFLICT),
    STATUS(CS_CONV_DOMAIN),     STATUS(CS_CONV_DIVZERO),   STATUS(CS_CONV_TRUNCATED),
    STATUS(CS_CONV_DATEBUFFER), STATUS(CS_CONV_BADCHAR),   STATUS(CS_CONV_NOXLATE),
    STATUS(CS_CONV_PARTIAL),    STATUS(COM_INTL_ERROR),    STATUS(COM_LOCFILE_ERROR),
    STATUS(COM_UNKNOWN_NAME),   STATUS(MM_BAD_PROPERTY),
};
#undef STATUS

} // namespace

const CS_CHAR *zrv_status_name(CS_RETCODE status) noexcept {
  if (const CS_CHAR *const name = com__errfind(status); name != nullptr)
    return name;
  const auto *const row =
      std::find_if(std::begin(special_codes), std::end(special_codes),
                   [status](const ComErrString &each) { return each.errcode == status; });
  return row != std::end(special_codes) ? row->errstr : nullptr;
}

CS_BOOL zrv_status_usable(CS_RETCODE status) noexcept {
  switch (status) {
  case CS_SUCCEED:
  case CS_CONV_PARTIAL:
  case CS_CONV_OVERFLOW:
  case CS_CONV_UNDERFLOW:
  case CS_CONV_TRUNCATED:
    return 1;
  default:
    return 0;
  }
}
