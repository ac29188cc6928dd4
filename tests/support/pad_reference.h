// The pads, long-hand: one byte at a time, straight from their rules. A negative
// length counts as 0.
#ifndef ZRVTEST_PAD_REFERENCE_H
#define ZRVTEST_PAD_REFERENCE_H

#include <string>

#include "zrvcomn/cserror.h"
#include "zrvcomn/cspublic.h"

namespace zrvtest {

// A destination: its bytes (at least maxlength of them) and where its data ends.
struct Padded {
  std::string bytes;
  CS_INT length;
};

// `unit` is 1 for text and 2 for 16-bit text.
inline CS_RETCODE reference_pad_text(CS_INT unit, CS_INT srclen, CS_INT format, CS_INT maxlength,
                                     Padded &dest) {
  if (srclen < 0)
    srclen = 0;
  const bool terminated = (format & CS_DFMT_NULLTERM) != 0;
  const auto put = [&](CS_INT position, char first) {
    for (CS_INT i = 0; i < unit; ++i)
      dest.bytes.at(static_cast<size_t>(position + i)) = i == 0 ? first : '\0';
  };
  bool room = maxlength >= srclen;
  if (terminated && maxlength < srclen + unit)
    room = false;
  if (!room) {
    CS_INT whole = maxlength;
    while (whole % unit != 0)
      --whole;
    if (terminated && whole > 0)
      put(whole - unit, '\0');
    return CS_CONV_OVERFLOW;
  }
  if ((format & CS_DFMT_PADNULL) != 0 && (format & CS_DFMT_PADBLANK) != 0)
    return CS_CONV_PADCONFLICT;
  CS_INT end = dest.length < 0 ? 0 : dest.length;
  if ((format & (CS_DFMT_PADNULL | CS_DFMT_PADBLANK)) != 0) {
    for (; end + unit <= maxlength; end += unit) {
      put(end, (format & CS_DFMT_PADNULL) != 0 ? '\0' : ' ');
      dest.length = end + unit;
      if (terminated && dest.length + unit > maxlength)
        put(end, '\0');
    }
  } else if (terminated && end + unit <= maxlength) {
    put(end, '\0');
    dest.length = end + unit;
  }
  return CS_SUCCEED;
}

inline CS_RETCODE reference_pad_binary(CS_INT srclen, CS_INT format, CS_INT maxlength,
                                       Padded &dest) {
  if (srclen < 0)
    srclen = 0;
  if ((format & CS_DFMT_PADNULL) != 0 && maxlength > srclen) {
    for (CS_INT i = srclen; i < maxlength; ++i)
      dest.bytes.at(static_cast<size_t>(i)) = '\0';
    dest.length = maxlength;
  }
  return CS_SUCCEED;
}

} // namespace zrvtest

#endif
