// Text of floating-point numbers, whatever locale the application has set.
#ifndef COMN_FLOAT_TEXT_H
#define COMN_FLOAT_TEXT_H

#include "cstypes.h"

namespace comn {

// A sign, 17 digits and the point between them, an exponent of three digits; or the zeroes after the
// point of a number from 1e-4 on, which take less.
constexpr CS_INT longest_double = 24;

// Writes the number as "%.17g" prints it in the C locale, with its NUL; returns its length.
[[gnu::visibility("hidden")]] CS_INT print_double(CS_CHAR (&text)[longest_double + 1],
                                                  CS_FLOAT value) noexcept;

} // namespace comn

#endif
