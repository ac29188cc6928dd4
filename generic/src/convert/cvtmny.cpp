// Money as text for callers without a context.
#include "numeric.h"

CS_CHAR *com_cvtmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style) noexcept {
  return com__mnytochar(mp, cp, len, style);
}

CS_CHAR *com_cvtmny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len, CS_INT style) noexcept {
  return com__mny4tochar(m4p, cp, len, style);
}

CS_CHAR *com_precmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style,
                           CS_INT prec) noexcept {
  return com__mnytochar(mp, cp, len, style | static_cast<CS_INT>(static_cast<CS_UINT>(prec) << 8));
}
