// The shape of the numeric that a conversion makes: which one is refused, and where it goes.
#ifndef COMN_CONVERT_SHAPE_H
#define COMN_CONVERT_SHAPE_H

#include "cspublic.h"
#include "number.h"

namespace comn {

// Deliberate: a negative scale is not refused; its low byte is the scale. Members that differ say so.
inline CS_RETCODE check_shape(CS_INT precision, CS_INT scale) noexcept {
  if (!exact::is_precision(precision))
    return CS_CONV_BADPRECISION;
  return scale > CS_MAX_SCALE ? CS_CONV_BADSCALE : CS_SUCCEED;
}

inline void set_shape(CS_NUMERIC &value, CS_INT precision, CS_INT scale) noexcept {
  value.precision = static_cast<CS_BYTE>(precision);
  value.scale = static_cast<CS_BYTE>(scale);
}

} // namespace comn

#endif
