// Dates as text for callers without a context.
#include "datetime.h"

CS_INT com_cvtdatetochar(CS_DATETIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                         CS_CHAR **shortmths) noexcept {
  return com__datetochar(value, buf, len, style, shortmths);
}

CS_INT com_cvtdate4tochar(CS_DATETIME4 *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                          CS_CHAR **shortmths) noexcept {
  return com__date4tochar(value, buf, len, style, shortmths);
}
