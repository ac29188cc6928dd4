// Reading the integer with which a text begins, whatever locale the application has set.
#ifndef COMN_FRAME_LEADING_INTEGER_H
#define COMN_FRAME_LEADING_INTEGER_H

#include <algorithm>
#include <cstring>
#include <limits>

#include "cstypes.h"

namespace comn {

// White space as in the C locale.
constexpr bool is_space(CS_CHAR c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

struct LeadingInteger {
  bool is_negative;
  CS_UBIGINT magnitude; // exact up to 32 bits; beyond them some value beyond them

  // The nearest value that a CS_INT has.
  constexpr CS_INT saturated() const noexcept {
    constexpr CS_UBIGINT largest = std::numeric_limits<CS_INT>::max();
    const auto limited =
        static_cast<CS_BIGINT>(std::min(magnitude, is_negative ? largest + 1 : largest));
    return static_cast<CS_INT>(is_negative ? -limited : limited);
  }
};

// White space, a sign and digits; what follows them does not count, and without digits it is 0.
constexpr LeadingInteger leading_integer(const CS_CHAR *at, const CS_CHAR *end) noexcept {
  LeadingInteger result = {};
  while (at < end && is_space(*at))
    ++at;
  if (at < end && (*at == '-' || *at == '+'))
    result.is_negative = *at++ == '-';
  for (; at < end && *at >= '0' && *at <= '9'; ++at)
    if (result.magnitude <= std::numeric_limits<CS_UINT>::max())
      result.magnitude = result.magnitude * 10 + static_cast<CS_UBIGINT>(*at - '0');
  return result;
}

// The same of a NUL-terminated text.
inline CS_INT leading_int(const CS_CHAR *text) noexcept {
  return leading_integer(text, text + std::strlen(text)).saturated();
}

} // namespace comn

#endif
