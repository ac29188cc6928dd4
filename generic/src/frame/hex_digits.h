// The values of hexadecimal digits.
#ifndef COMN_FRAME_HEX_DIGITS_H
#define COMN_FRAME_HEX_DIGITS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace comn {

// Of every character that is no digit, a negative one.
constexpr std::int8_t not_a_hex_digit = -1;

consteval std::array<std::int8_t, 256> build_hex_digits() {
  std::array<std::int8_t, 256> digits{};
  digits.fill(not_a_hex_digit);
  for (std::size_t value = 0; value < 10; ++value)
    digits['0' + value] = static_cast<std::int8_t>(value);
  for (std::size_t value = 10; value < 16; ++value) {
    digits['a' + value - 10] = static_cast<std::int8_t>(value);
    digits['A' + value - 10] = static_cast<std::int8_t>(value);
  }
  return digits;
}

inline constexpr std::array<std::int8_t, 256> hex_digit_values = build_hex_digits();

} // namespace comn

#endif
