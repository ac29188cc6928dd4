// Text to money, step by step. Slow and obvious; what the library reads is compared with it.
#ifndef ZRVTEST_MONEY_TEXT_REFERENCE_H
#define ZRVTEST_MONEY_TEXT_REFERENCE_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>

#include "longhand.h"

namespace zrvtest {

// The status, and the count; after a failure the digits up to there.
struct MoneyParse {
  int status;
  int64_t count;
};

inline bool operator==(const MoneyParse &a, const MoneyParse &b) {
  return a.status == b.status && a.count == b.count;
}
inline void PrintTo(const MoneyParse &parsed, std::ostream *out) {
  *out << "status " << parsed.status << ", count " << parsed.count;
}

// The rules step by step, on the ASCII forms of a text whose currency symbol is "$".
inline MoneyParse slow_money_parse(const std::string &text) {
  static const Natural limit = Natural(uint64_t{1} << 63);
  static const Natural last_but_eight = Natural(0x0CCCCCCCCCCCCCCC);
  Natural magnitude;
  int sign = 0, cents = -1, group = -4;
  bool dollar = false, digit = false, minmny = false, commas = false;
  auto answer = [&](int status, bool negative = false) {
    const uint64_t bits = std::strtoull(magnitude.digits().c_str(), nullptr, 10);
    return MoneyParse{status, static_cast<int64_t>(negative ? 0 - bits : bits)};
  };
  auto scale = [&](uint32_t factor, uint32_t addend) {
    Natural scaled = magnitude;
    scaled.multiply_small(factor, addend);
    if (scaled >= limit)
      return false;
    magnitude = scaled;
    return true;
  };
  size_t i = 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (!digit) {
      if (c == '+' || c == '-') {
        if (sign != 0)
          return answer(2);
        sign = c == '-' ? -1 : 1;
        continue;
      }
      if (c == ' ')
        continue;
      if (c == '$') {
        if (dollar)
          return answer(2);
        dollar = true;
        continue;
      }
      digit = true;
    }
    if (c >= '0' && c <= '9') {
      if (cents >= 4) {
        if (cents == 4) {
          if (minmny && c >= '1')
            return answer(1);
          if (c >= '5')
            magnitude = magnitude + Natural(1);
        }
        ++cents;
        continue;
      }
      ++group;
      if (cents >= 0)
        ++cents;
      if (sign < 0 && magnitude == last_but_eight && c == '8') {
        magnitude = limit;
        minmny = true;
      } else if (!scale(10, static_cast<uint32_t>(c - '0'))) {
        return answer(1);
      }
    } else if (c == '.' && cents < 0) {
      if (commas && group < 3)
        return answer(2);
      cents = 0;
    } else if (c == ',' && (group < 0 || group == 3)) {
      group = 0;
      commas = true;
    } else {
      break;
    }
  }
  if (commas && group < 3)
    return answer(2);
  for (; i < text.size(); ++i)
    if (std::strchr(" \t\n\v\f\r", text[i]) == nullptr || text[i] == '\0')
      return answer(2);
  static const uint32_t factors[] = {10000, 1000, 100, 10};
  if (cents < 4 && !scale(factors[std::max(cents, 0)], 0))
    return answer(1);
  if (magnitude < limit)
    return answer(0, sign < 0);
  return answer(sign < 0 && magnitude == limit ? 0 : 1);
}

} // namespace zrvtest

#endif
