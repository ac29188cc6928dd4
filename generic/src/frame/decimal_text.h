// Printing an integer in decimal: groups of eight digits, each made without a branch. The lengths
// of numbers cannot be foreseen, so what branches there are depend on the value itself and not on
// what is computed from it: a wrong guess is found out early.
#ifndef COMN_FRAME_DECIMAL_TEXT_H
#define COMN_FRAME_DECIMAL_TEXT_H

#include <bit>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <type_traits>

#include "table.h"

namespace comn {

// The digits of values below 10,000, one in each 32 bits of a word, leading zeroes included, as the
// bytes of the text. All are divided at once, in lanes of 32 bits and then in lanes of 16. The
// multiplications stand for divisions: x * 5243 >> 19 is x / 100 for x below 43,699, and
// x * 103 >> 10 is x / 10 for x below 179; 9,999 and 99 are the most that come here, and their
// products stay within their lanes.
template <class Word>
[[gnu::always_inline]] inline Word text_of_fours(Word values) noexcept {
  constexpr auto fill = [](uint32_t pattern) {
    return static_cast<Word>(0x100000001U * uint64_t{pattern});
  };
  const Word hundreds = values * 5243 >> 19 & fill(0x0000007F);
  const Word pairs = hundreds | (values - hundreds * 100) << 16;
  const Word tens = pairs * 103 >> 10 & fill(0x000F000F);
  return (tens | (pairs - tens * 10) << 8) + fill(0x30303030);
}

[[gnu::always_inline]] inline uint64_t text_of_eight(uint32_t value) noexcept {
  const uint32_t high = value / 10000, low = value % 10000;
  if constexpr (sizeof(uintptr_t) == 8) // as wide as registers are
    return text_of_fours(high | uint64_t{low} << 32);
  return text_of_fours(high) | uint64_t{text_of_fours(low)} << 32;
}

constexpr uint32_t group_base = 100000000;
constexpr int group_digits = 8;

// The number of digits of a group, 1 for zero. The bit length times log10(2) is one too low at
// most; 1233 / 4096 stands for that factor, which gives the same whole numbers up to 59 bits.
inline int count_group_digits(uint32_t value) noexcept {
  static constexpr Table<uint32_t, 9> powers_of_ten = {
      {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000}};
  const int guess = static_cast<int>(std::bit_width(value | 1)) * 1233 >> 12;
  return guess + ((value | 1) >= powers_of_ten[static_cast<size_t>(guess)]);
}

// An unsigned integer as it prints.
template <class Unsigned>
class DecimalDigits {
public:
  [[gnu::always_inline]] explicit DecimalDigits(Unsigned value) noexcept {
    if (value < group_base) {
      groups = 1;
      first = static_cast<uint32_t>(value);
    } else {
      const Unsigned high = value / group_base;
      last = static_cast<uint32_t>(value - high * group_base);
      if (sizeof value == 4 || high < group_base) {
        groups = 2;
        first = static_cast<uint32_t>(high);
      } else {
        groups = 3;
        first = static_cast<uint32_t>(high / group_base);
        middle = static_cast<uint32_t>(high - Unsigned{first} * group_base);
      }
    }
    first_count = count_group_digits(first);
  }

  int count() const noexcept { return first_count + (groups - 1) * group_digits; }

  // Writes the digits, and nothing behind them.
  [[gnu::always_inline]] void write(char *dest) const noexcept {
    if (groups > 1) {
      // What of this word is no digit of the first group is overwritten by the next.
      put(dest, text_of_eight(first) >> 8 * (group_digits - first_count));
      dest += first_count;
      if (groups > 2) {
        put(dest, text_of_eight(middle));
        dest += group_digits;
      }
      put(dest, text_of_eight(last));
    } else if (first >= 1000) {
      // Two words, which overlap where there are fewer than eight digits.
      const uint64_t text = text_of_eight(first);
      put(dest, static_cast<uint32_t>(text >> 8 * (group_digits - first_count)));
      put(dest + first_count - 4, static_cast<uint32_t>(text >> 32));
    } else {
      // The first, middle and last of up to three bytes, which may be one and the same.
      const uint32_t text = text_of_fours(first) >> 8 * (4 - first_count);
      for (const int i : {0, first_count / 2, first_count - 1})
        dest[i] = static_cast<char>(text >> 8 * i);
    }
  }

private:
  template <class Word>
  static void put(char *dest, Word text) noexcept {
    std::memcpy(dest, &text, sizeof text);
  }

  int groups;
  int first_count;
  uint32_t first;
  uint32_t middle = 0, last = 0; // of eight digits each
};

// An integer as it prints: its sign and its digits.
template <class Integer>
class PrintedInteger {
  // Arithmetic on small types happens in 32 bits; wider than that only where it must be.
  using Magnitude = std::conditional_t<sizeof(Integer) == 8, uint64_t, uint32_t>;

public:
  explicit PrintedInteger(Integer value) noexcept
      : negative(value < 0), digits(negative ? Magnitude{0} - static_cast<Magnitude>(value)
                                             : static_cast<Magnitude>(value)) {}

  int length() const noexcept { return digits.count() + negative; }

  [[gnu::always_inline]] void write(char *dest) const noexcept {
    // The first digit takes the place of a sign that is not wanted.
    *dest = '-';
    digits.write(dest + negative);
  }

private:
  bool negative;
  DecimalDigits<Magnitude> digits;
};

} // namespace comn

#endif
