// Decimal digits of magnitudes, many at a time.
#ifndef COMN_EXACT_DIGITS_H
#define COMN_EXACT_DIGITS_H

#include "decimal_digits.h"
#include "limbs.h"

namespace comn::exact {

// Writes the digits of a trimmed number, which is used up, so that they end in front of `end`;
// nothing for zero. Returns their start.
inline char *write_number(char *end, Limb *limbs, int size) noexcept {
  constexpr Limb chunk = power_of_ten(limb_digits).limbs[0];
  while (size > 1) {
    Limb rest = divide_limb(limbs, size, chunk);
    size = trim(limbs, size);
    end -= limb_digits;
    if constexpr (limb_digits == 19) {
      constexpr uint64_t eight_digits = 100000000;
      write_eight_digits(end + 11, static_cast<uint32_t>(rest % eight_digits));
      rest /= eight_digits;
      write_eight_digits(end + 3, static_cast<uint32_t>(rest % eight_digits));
      const auto top = static_cast<uint32_t>(rest / eight_digits);
      end[0] = static_cast<char>('0' + top / 100);
      write_pair(end + 1, top % 100);
    } else {
      constexpr uint32_t eight_digits = 100000000;
      write_eight_digits(end + 1, static_cast<uint32_t>(rest) % eight_digits);
      end[0] = static_cast<char>('0' + static_cast<uint32_t>(rest) / eight_digits);
    }
  }
  if (size == 1) {
    const int digits = count_digits(limbs[0]);
    end -= digits;
    write_digits(end, limbs[0], digits);
  }
  return end;
}

inline bool is_digit(char c) noexcept {
  return static_cast<unsigned char>(c - '0') < 10;
}

// The first bytes of a word that are not digits have a bit set.
inline uint64_t non_digits(uint64_t word) noexcept {
  constexpr uint64_t ones = 0x0101010101010101;
  return ((word + ones * 0x46) | (word - ones * 0x30)) & ones * 0x80;
}

// The value of eight digits, the first in the lowest byte: pairs, then fours, then eight.
inline uint32_t eight_digits_value(uint64_t word) noexcept {
  word = (word & 0x0F0F0F0F0F0F0F0F) * (1 + (10 << 8)) >> 8;
  word = (word & 0x00FF00FF00FF00FF) * (1 + (100 << 16)) >> 16;
  return static_cast<uint32_t>((word & 0x0000FFFF0000FFFF) * (1 + (uint64_t{10000} << 32)) >> 32);
}

} // namespace comn::exact

#endif
