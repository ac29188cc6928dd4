// Hexadecimal text to binary.
#ifndef COMN_CONVERT_HEX_TEXT_H
#define COMN_CONVERT_HEX_TEXT_H

#include "cspublic.h"

namespace comn {

// Decodes what comn__hex2binbytes leaves of a text into at most `capacity` bytes, as comn_chartobin has
// it, but for the padding. `*destlen` is what was stored; an empty text is fatal and leaves it alone.
[[gnu::visibility("hidden")]] CS_RETCODE hex_to_binary(CS_CHAR *text, CS_INT length, CS_BYTE *dest,
                                                       CS_INT capacity, CS_INT *destlen) noexcept;

} // namespace comn

#endif
