// Operands for tests of exact numerics: boundary values of a shape, and random ones.
#ifndef ZRVTEST_NUMERIC_OPERANDS_H
#define ZRVTEST_NUMERIC_OPERANDS_H

#include <random>
#include <string>
#include <vector>

#include "numeric_reference.h"
#include "test_scale.h"

namespace zrvtest {

// Slow builds check the same properties on fewer random cases.
const int random_cases = sanitized || !optimized ? 10'000 : 200'000;

inline Decimal make_decimal(int precision, int scale, const std::string &digits,
                            bool negative = false) {
  return {precision, scale, negative, Natural::from_digits(digits)};
}

// The magnitudes at the edges of a precision: zero, one, all nines, powers of ten and of 256 with
// their neighbours, and all bytes 255, which no number of so many digits has.
inline std::vector<Natural> boundary_magnitudes(int precision) {
  const Natural one(1);
  const Natural top = Natural::power_of_ten(precision);
  const int bytes = reference_length(precision) - 1;
  const std::vector<unsigned char> ones(static_cast<size_t>(bytes), 255);
  const Natural highest = Natural::from_bytes(ones.data(), bytes);
  std::vector<Natural> result{Natural(), one, Natural(9), top - one, highest};
  auto add = [&](const Natural &value) {
    for (const Natural &candidate : {value - one, value, value + one})
      if (candidate < top)
        result.push_back(candidate);
  };
  for (int digits : {precision / 2, precision - 1})
    if (digits > 0)
      add(Natural::power_of_ten(digits));
  for (int count : {bytes / 2, bytes - 1}) {
    if (count <= 0)
      continue;
    Natural power = one;
    for (int i = 0; i < count; ++i)
      power.multiply_small(256, 0);
    add(power);
  }
  return result;
}

struct ShapeOf {
  int precision, scale;
};

constexpr ShapeOf shape_grid[] = {{1, 0},  {2, 1},   {3, 3},   {5, 2},   {9, 0},   {10, 4},
                                  {18, 6}, {20, 20}, {38, 10}, {39, 0},  {39, 38}, {57, 3},
                                  {76, 0}, {77, 0},  {77, 39}, {77, 77}, {1, 77},  {4, 40}};

class RandomDecimals {
public:
  explicit RandomDecimals(unsigned seed) : engine(seed) {}

  int below(int limit) { return static_cast<int>(engine() % static_cast<unsigned>(limit)); }

  // Any shape, scales above the precision among them, and digits of any number up to it.
  Decimal any() {
    const int precision = 1 + below(below(4) == 0 ? 77 : below(2) == 0 ? 20 : 40);
    const int scale = below(8) == 0 ? below(78) : below(precision + 1);
    return of(precision, scale);
  }

  Decimal of(int precision, int scale) {
    Decimal result;
    result.precision = precision;
    result.scale = scale;
    result.negative = below(2) == 0;
    const int digits = below(10) == 0 ? below(precision + 1) : precision;
    const int kind = below(8);
    std::string text;
    for (int i = 0; i < digits; ++i)
      text += kind == 0                     ? '9'
              : kind == 1                   ? (i == 0 ? '1' : '0')
              : kind == 2 && i > digits / 2 ? '0'
                                            : static_cast<char>('0' + below(10));
    result.magnitude = Natural::from_digits(text);
    if (below(50) == 0)
      result.magnitude = boundary_magnitudes(precision)[4]; // all bytes 255
    return result;
  }

private:
  std::mt19937 engine;
};

} // namespace zrvtest

#endif
