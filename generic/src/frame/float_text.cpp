// Text of floating-point numbers: the standard library's conversions, which know no locale.
#include "float_text.h"

#include <charconv>
#include <limits>

CS_INT comn::print_double(CS_CHAR (&text)[longest_double + 1], CS_FLOAT value) noexcept {
  constexpr int significant = std::numeric_limits<CS_FLOAT>::max_digits10;
  static_assert(significant == 17);
  CS_CHAR *const end =
      std::to_chars(text, text + longest_double, value, std::chars_format::general, significant)
          .ptr;
  *end = '\0';
  return static_cast<CS_INT>(end - text);
}
