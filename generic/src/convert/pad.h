// Padding: the end of every text and binary result. The rules stand at comn__padchar in csintrn.h;
// here the format and the capacity (maxlength) come one by one.
#ifndef COMN_CONVERT_PAD_H
#define COMN_CONVERT_PAD_H

#include "cspublic.h"

namespace comn {

constexpr CS_INT pad_bits = CS_DFMT_NULLTERM | CS_DFMT_PADNULL | CS_DFMT_PADBLANK;

// Hidden, so that a call needs no table of addresses.
#pragma GCC visibility push(hidden)
CS_RETCODE pad_text(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                    CS_INT *destlen) noexcept;
CS_RETCODE pad_binary(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                      CS_INT *destlen) noexcept;
CS_RETCODE pad_unitext(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                       CS_INT *destlen) noexcept;
#pragma GCC visibility pop

// True when text of `length` bytes fits with the terminator that the format asks for.
inline bool text_fits(CS_INT length, CS_INT format, CS_INT capacity) noexcept {
  return capacity > length || (capacity == length && (format & CS_DFMT_NULLTERM) == 0);
}

} // namespace comn

#endif
