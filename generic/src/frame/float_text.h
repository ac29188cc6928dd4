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

struct ParsedDouble {
  CS_FLOAT value;       // an infinity beyond the range, a zero below it
  bool is_out_of_range; // and the text was a number, not the word of an infinity
  const CS_CHAR *end;   // what follows the number; the begin of the text if there is none
};

// Reads a number as strtod does in the C locale, but for errno: white space, a sign, decimal and
// hexadecimal numbers, infinities, and what is not a number, with its payload.
[[gnu::visibility("hidden")]] ParsedDouble parse_double(const CS_CHAR *text,
                                                        CS_INT length) noexcept;

} // namespace comn

#endif
