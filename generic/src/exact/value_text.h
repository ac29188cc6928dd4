// A value as it prints: sign, integer digits, point and all digits of the scale.
#ifndef COMN_EXACT_VALUE_TEXT_H
#define COMN_EXACT_VALUE_TEXT_H

#include <algorithm>

#include "digits.h"
#include "number.h"

namespace comn::exact {

// The longest text of a valid value: a sign, a zero, a point and 77 digits.
constexpr int longest_text = CS_MAX_SCALE + 3;

class ValueText {
public:
  // Uses up the number.
  ValueText(Number &number, int value_scale, bool value_negative) noexcept
      : scale(value_scale), negative(value_negative && !number.is_zero()) {
    first = write_number(digits + sizeof digits, number.limbs, number.size);
  }
  ValueText(const ValueText &) = delete;
  ValueText &operator=(const ValueText &) = delete;

  int length() const noexcept {
    const int whole = std::max(count() - scale, 1);
    return negative + whole + (scale > 0 ? 1 + scale : 0);
  }

  void write(char *dest) const noexcept {
    if (negative)
      *dest++ = '-';
    const int whole = count() - scale;
    const char *rest = first;
    if (whole > 0) {
      std::memcpy(dest, rest, static_cast<size_t>(whole));
      dest += whole;
      rest += whole;
    } else {
      *dest++ = '0';
    }
    if (scale == 0)
      return;
    *dest++ = '.';
    if (whole < 0) {
      std::memset(dest, '0', static_cast<size_t>(-whole));
      dest -= whole;
    }
    std::memcpy(dest, rest, static_cast<size_t>(digits + sizeof digits - rest));
  }

private:
  int count() const noexcept { return static_cast<int>(digits + sizeof digits - first); }

  // All digits of a number of operand_bytes: fewer than five for two bytes.
  char digits[operand_bytes * 5 / 2];
  const char *first;
  int scale;
  bool negative;
};

} // namespace comn::exact

#endif
