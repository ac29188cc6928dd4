// Numbers of two digits, as dates and times are made of.
#ifndef COMN_DATES_DIGIT_PAIRS_H
#define COMN_DATES_DIGIT_PAIRS_H

#include <cstdint>
#include <cstring>

#include "table.h"

namespace comn {

// "00" to "99".
constexpr Table<char, 200> digit_pairs = [] {
  Table<char, 200> table{};
  for (size_t i = 0; i < 100; ++i) {
    table[2 * i] = static_cast<char>('0' + i / 10);
    table[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return table;
}();

inline void write_pair(char *dest, uint32_t pair) noexcept {
  std::memcpy(dest, digit_pairs.rows + 2 * pair, 2);
}

} // namespace comn

#endif
