// Money by its count of ten-thousandths, as its two words stand, and counts worth a test.
#ifndef ZRVTEST_MONEY_VALUES_H
#define ZRVTEST_MONEY_VALUES_H

#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

#include "zrvcomn/cstypes.h"

inline void PrintTo(const CS_MONEY &money, std::ostream *out) {
  *out << "{" << money.mnyhigh << ", " << money.mnylow << "u}";
}

namespace zrvtest {

constexpr int64_t largest_money = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest_money = std::numeric_limits<int64_t>::min();

inline CS_MONEY money(int64_t count) {
  const auto bits = static_cast<uint64_t>(count);
  return {static_cast<CS_INT>(bits >> 32), static_cast<CS_UINT>(bits)};
}

inline int64_t count_of(const CS_MONEY &value) {
  return static_cast<int64_t>(static_cast<uint64_t>(static_cast<CS_UINT>(value.mnyhigh)) << 32 |
                              value.mnylow);
}

inline uint64_t magnitude_of(int64_t count) {
  return count < 0 ? 0 - static_cast<uint64_t>(count) : static_cast<uint64_t>(count);
}

// Zero, the limits, and both neighbours of all powers of two and ten and of their fractions of the
// limits, of both signs.
inline std::vector<int64_t> boundary_counts() {
  std::vector<int64_t> counts = {0, largest_money, smallest_money, smallest_money + 1};
  auto add = [&](uint64_t magnitude) {
    for (uint64_t near : {magnitude - 1, magnitude, magnitude + 1})
      if (near <= static_cast<uint64_t>(largest_money)) {
        counts.push_back(static_cast<int64_t>(near));
        counts.push_back(-static_cast<int64_t>(near));
      }
  };
  for (int bit = 0; bit < 64; ++bit)
    add(uint64_t{1} << bit);
  for (uint64_t power = 1; power <= 1000000000000000000; power *= 10) {
    add(power);
    add(5 * power);
    add(static_cast<uint64_t>(largest_money) / power);
  }
  add(2147483647);
  add(4294967295);
  return counts;
}

// A count of any number of bits, small ones as often as large ones.
template <class Random>
int64_t random_count(Random &random) {
  const uint64_t bits = random();
  return static_cast<int64_t>(bits) >> (random() % 64);
}

} // namespace zrvtest

#endif
