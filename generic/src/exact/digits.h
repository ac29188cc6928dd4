// Decimal digits of magnitudes, many at a time.
#ifndef COMN_EXACT_DIGITS_H
#define COMN_EXACT_DIGITS_H

#include "decimal_text.h"
#include "limbs.h"

namespace comn::exact {

inline void write_eight(char *dest, uint32_t value) noexcept {
  const uint64_t text = text_of_eight(value);
  std::memcpy(dest, &text, sizeof text);
}

// Writes the digits of a trimmed number, which is used up, so that they end in front of `end`;
// nothing for zero. Returns their start.
inline char *write_number(char *end, Limb *limbs, int size) noexcept {
  constexpr Limb chunk = power_of_ten(limb_digits).limbs[0];
  while (size > 1) {
    Limb rest = divide_limb(limbs, size, chunk);
    size = trim(limbs, size);
    char *const start = end - limb_digits;
    for (end -= group_digits; end > start; end -= group_digits, rest /= group_base)
      write_eight(end, static_cast<uint32_t>(rest % group_base));
    char leading[group_digits];
    write_eight(leading, static_cast<uint32_t>(rest));
    const auto places = static_cast<size_t>(end + group_digits - start);
    std::memcpy(start, leading + group_digits - places, places);
    end = start;
  }
  if (size == 1) {
    const DecimalDigits digits(limbs[0]);
    end -= digits.count();
    digits.write(end);
  }
  return end;
}

inline bool is_digit(char c) noexcept {
  return static_cast<unsigned char>(c - '0') < 10;
}

constexpr uint64_t zero_digits = 0x3030303030303030;

// The first bytes of a word that are not digits have a bit set.
inline uint64_t non_digits(uint64_t word) noexcept {
  constexpr uint64_t ones = 0x0101010101010101;
  return ((word + ones * 0x46) | (word - zero_digits)) & ones * 0x80;
}

// The value of eight digits, the first in the lowest byte: pairs, then fours, then eight.
inline uint32_t eight_digits_value(uint64_t word) noexcept {
  word = (word & 0x0F0F0F0F0F0F0F0F) * (1 + (10 << 8)) >> 8;
  word = (word & 0x00FF00FF00FF00FF) * (1 + (100 << 16)) >> 16;
  return static_cast<uint32_t>((word & 0x0000FFFF0000FFFF) * (1 + (uint64_t{10000} << 32)) >> 32);
}

} // namespace comn::exact

#endif
