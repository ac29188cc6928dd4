// The statuses of the exact layer as the codes of its public functions.
#ifndef COMN_EXACT_STATUS_H
#define COMN_EXACT_STATUS_H

#include "numeric.h"

namespace comn::exact {

inline CS_RETCODE result_code(int status) noexcept {
  switch (status) {
  case NUME_OVERFLOW:
  case NUME_TRUNCATED: // deliberate: only comn_numtonum tells this from an overflow
    return CS_CONV_OVERFLOW;
  case NUME_SYNTAX:
    return CS_CONV_SYNTAX;
  case NUME_DIVZERO:
    return CS_CONV_DIVZERO;
  default:
    return CS_SUCCEED;
  }
}

} // namespace comn::exact

#endif
