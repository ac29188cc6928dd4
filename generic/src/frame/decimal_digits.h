// Printing an unsigned integer in decimal: two digits a step, from a table of pairs.
#ifndef COMN_FRAME_DECIMAL_DIGITS_H
#define COMN_FRAME_DECIMAL_DIGITS_H

#include <bit>
#include <cstdint>
#include <cstring>

#include "table.h"

namespace comn {

constexpr Table<uint64_t, 20> powers_of_ten = [] {
  Table<uint64_t, 20> table{};
  uint64_t power = 1;
  for (uint64_t &row : table.rows) {
    row = power;
    power *= 10;
  }
  return table;
}();

// "00" to "99".
constexpr Table<char, 200> digit_pairs = [] {
  Table<char, 200> table{};
  for (size_t i = 0; i < 100; ++i) {
    table[2 * i] = static_cast<char>('0' + i / 10);
    table[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return table;
}();

// The number of digits, 1 for zero, which counts as the odd number above it. The bit length times
// log10(2) is one too low at most.
template <class Unsigned>
int count_digits(Unsigned value) noexcept {
  const int guess = static_cast<int>(std::bit_width(value | 1)) * 1233 >> 12;
  return guess + ((value | 1) >= powers_of_ten[static_cast<size_t>(guess)]);
}

inline void write_pair(char *dest, uint32_t pair) noexcept {
  std::memcpy(dest, digit_pairs.rows + 2 * pair, 2);
}

// Writes `value` right-aligned into `digits` places, which must be as many as it has.
inline void write_digits(char *dest, uint32_t value, int digits) noexcept {
  char *end = dest + digits;
  while (value >= 100) {
    end -= 2;
    write_pair(end, value % 100);
    value /= 100;
  }
  if (value >= 10)
    write_pair(end - 2, value);
  else
    end[-1] = static_cast<char>('0' + value);
}

// Writes exactly eight digits, leading zeroes included.
inline void write_eight_digits(char *dest, uint32_t value) noexcept {
  const uint32_t high = value / 10000, low = value % 10000;
  write_pair(dest, high / 100);
  write_pair(dest + 2, high % 100);
  write_pair(dest + 4, low / 100);
  write_pair(dest + 6, low % 100);
}

inline void write_digits(char *dest, uint64_t value, int digits) noexcept {
  constexpr uint64_t eight_digits = 100000000;
  while (value > UINT32_MAX) {
    digits -= 8;
    write_eight_digits(dest + digits, static_cast<uint32_t>(value % eight_digits));
    value /= eight_digits;
  }
  write_digits(dest, static_cast<uint32_t>(value), digits);
}

} // namespace comn

#endif
