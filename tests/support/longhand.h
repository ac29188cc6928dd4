// Long-hand arithmetic: natural numbers as nine-digit groups, worked on as on paper. Slow and
// obvious; what the library computes in machine words is compared with it.
#ifndef ZRVTEST_LONGHAND_H
#define ZRVTEST_LONGHAND_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace zrvtest {

class Natural {
public:
  static constexpr int group_count = 34; // 306 digits
  static constexpr uint32_t base = 1000000000;

  Natural(uint64_t value = 0) {
    for (int i = 0; value != 0; ++i, value /= base)
      set(i, static_cast<uint32_t>(value % base));
  }

  static Natural from_digits(const std::string &digits) {
    Natural result;
    for (char c : digits)
      result.multiply_small(10, static_cast<uint32_t>(c - '0'));
    return result;
  }

  // A big-endian base-256 magnitude.
  static Natural from_bytes(const unsigned char *bytes, int count) {
    Natural result;
    for (int i = 0; i < count; ++i)
      result.multiply_small(256, bytes[i]);
    return result;
  }

  static Natural power_of_ten(int exponent) {
    Natural result(1);
    while (exponent-- > 0)
      result.multiply_small(10, 0);
    return result;
  }

  // The low `count` bytes, most significant first; true when they hold all of it.
  bool to_bytes(unsigned char *bytes, int count) const {
    Natural rest = *this;
    for (int i = count - 1; i >= 0; --i)
      bytes[i] = static_cast<unsigned char>(rest.divide_small(256));
    return rest.is_zero();
  }

  std::string digits() const {
    if (is_zero())
      return "0";
    std::string text;
    for (int i = used - 1; i >= 0; --i) {
      char group[16];
      std::snprintf(group, sizeof group, i == used - 1 ? "%u" : "%09u",
                    groups[static_cast<size_t>(i)]);
      text += group;
    }
    return text;
  }

  int digit_count() const { return is_zero() ? 0 : static_cast<int>(digits().size()); }
  bool is_zero() const { return used == 0; }

  // this * factor + addend
  void multiply_small(uint32_t factor, uint32_t addend) {
    uint64_t carry = addend;
    for (int i = 0; i < used || carry != 0; ++i) {
      carry += uint64_t{at(i)} * factor;
      set(i, static_cast<uint32_t>(carry % base));
      carry /= base;
    }
    settle();
  }

  // this / divisor; the remainder.
  uint32_t divide_small(uint32_t divisor) {
    uint64_t rest = 0;
    for (int i = used - 1; i >= 0; --i) {
      rest = rest * base + at(i);
      set(i, static_cast<uint32_t>(rest / divisor));
      rest %= divisor;
    }
    settle();
    return static_cast<uint32_t>(rest);
  }

  friend int compare(const Natural &a, const Natural &b) {
    for (int i = std::max(a.used, b.used) - 1; i >= 0; --i)
      if (a.at(i) != b.at(i))
        return a.at(i) < b.at(i) ? -1 : 1;
    return 0;
  }
  friend bool operator==(const Natural &a, const Natural &b) { return compare(a, b) == 0; }
  friend bool operator<(const Natural &a, const Natural &b) { return compare(a, b) < 0; }
  friend bool operator>=(const Natural &a, const Natural &b) { return compare(a, b) >= 0; }

  friend Natural operator+(const Natural &a, const Natural &b) {
    Natural result;
    uint32_t carry = 0;
    for (int i = 0; i < a.used || i < b.used || carry != 0; ++i) {
      const uint32_t sum = a.at(i) + b.at(i) + carry;
      result.set(i, sum % base);
      carry = sum / base;
    }
    result.settle();
    return result;
  }

  // a not below b
  friend Natural operator-(const Natural &a, const Natural &b) {
    Natural result;
    int64_t borrow = 0;
    for (int i = 0; i < a.used; ++i) {
      int64_t difference = int64_t{a.at(i)} - b.at(i) - borrow;
      borrow = difference < 0;
      if (difference < 0)
        difference += base;
      result.set(i, static_cast<uint32_t>(difference));
    }
    result.settle();
    return result;
  }

  friend Natural operator*(const Natural &a, const Natural &b) {
    Natural result;
    for (int i = 0; i < a.used; ++i) {
      uint64_t carry = 0;
      for (int j = 0; j < b.used || carry != 0; ++j) {
        carry += uint64_t{a.at(i)} * b.at(j) + result.at(i + j);
        result.set(i + j, static_cast<uint32_t>(carry % base));
        carry /= base;
      }
    }
    result.settle();
    return result;
  }

  // Long division, digit by digit.
  static Natural divide(const Natural &a, const Natural &b, Natural &remainder) {
    Natural quotient;
    remainder = Natural();
    for (char c : a.digits()) {
      remainder.multiply_small(10, static_cast<uint32_t>(c - '0'));
      uint32_t digit = 0;
      while (remainder >= b) {
        remainder = remainder - b;
        ++digit;
      }
      quotient.multiply_small(10, digit);
    }
    return quotient;
  }

private:
  uint32_t at(int i) const { return i < used ? groups[static_cast<size_t>(i)] : 0; }
  void set(int i, uint32_t value) {
    if (i >= group_count)
      std::abort();
    for (; used <= i; ++used)
      groups[static_cast<size_t>(used)] = 0;
    groups[static_cast<size_t>(i)] = value;
  }
  void settle() {
    while (used > 0 && groups[static_cast<size_t>(used - 1)] == 0)
      --used;
  }

  std::array<uint32_t, group_count> groups{};
  int used = 0;
};

} // namespace zrvtest

#endif
