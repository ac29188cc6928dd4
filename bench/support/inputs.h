// Inputs of benchmarks: random, reproducible, and many enough that no branch predictor learns them.
#ifndef ZRVBENCH_INPUTS_H
#define ZRVBENCH_INPUTS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace zrvbench {

constexpr std::size_t input_count = 1 << 15;

using Random = std::mt19937_64;

inline std::size_t random_below(Random &random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

enum class Sign { plus, both };

// An integer of 1 up to `max_digits` digits, each count as likely as any other.
template <class Integer>
Integer random_integer(Random &random, int max_digits, Sign sign) {
  using Limits = std::numeric_limits<Integer>;
  for (;;) {
    uint64_t low = 1;
    for (std::size_t digits = random_below(random, static_cast<std::size_t>(max_digits));
         digits > 0; --digits)
      low *= 10;
    const bool last = low > UINT64_MAX / 10;
    const uint64_t high = last ? UINT64_MAX : low * 10 - 1;
    const uint64_t value =
        std::uniform_int_distribution<uint64_t>(low == 1 ? 0 : low, high)(random);
    if (std::is_signed_v<Integer> && sign == Sign::both && random_below(random, 2) == 0) {
      if (value <= static_cast<uint64_t>(Limits::max()) + 1)
        return static_cast<Integer>(0 - value);
    } else if (value <= static_cast<uint64_t>(Limits::max())) {
      return static_cast<Integer>(value);
    }
  }
}

// As many of them as a pass has inputs, those that `wanted` takes. Eight bytes can be read from the
// address of each.
template <class Integer, class Wanted>
std::vector<Integer> random_integers(int max_digits, Sign sign, Wanted wanted) {
  Random random(20);
  std::vector<Integer> values;
  values.reserve(input_count + sizeof(uint64_t));
  while (values.size() < input_count) {
    const auto value = random_integer<Integer>(random, max_digits, sign);
    if (wanted(value))
      values.push_back(value);
  }
  values.resize(input_count + sizeof(uint64_t));
  return values;
}

inline std::string random_hex(std::size_t digits) {
  Random random(21);
  std::string text(digits, '0');
  for (char &digit : text)
    digit = "0123456789abcdefABCDEF"[random_below(random, 22)];
  return text;
}

} // namespace zrvbench

#endif
