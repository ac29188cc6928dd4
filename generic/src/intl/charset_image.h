// The header of a class 2 image in the host's order.
#ifndef COMN_INTL_CHARSET_IMAGE_H
#define COMN_INTL_CHARSET_IMAGE_H

#include "charset.h"

namespace comn {

// The eight numbers stand high byte first in an image. The status word is left as it is.
inline cs_2class in_host_order(cs_2class header) noexcept {
  constexpr CS_INT cs_2class::*numbers[] = {
      &cs_2class::off_width,   &cs_2class::size_width,   &cs_2class::off_norm,
      &cs_2class::size_norm,   &cs_2class::off_type,     &cs_2class::size_type,
      &cs_2class::off_soundex, &cs_2class::size_soundex,
  };
  for (CS_INT cs_2class::*const number : numbers)
    header.*number = static_cast<CS_INT>(__builtin_bswap32(static_cast<CS_UINT>(header.*number)));
  return header;
}

} // namespace comn

#endif
