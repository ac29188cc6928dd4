// Text of floating-point numbers: the standard library's conversions, which know no locale.
#include "float_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <limits>

#include "leading_integer.h"

CS_INT comn::print_double(CS_CHAR (&text)[longest_double + 1], CS_FLOAT value) noexcept {
  constexpr int significant = std::numeric_limits<CS_FLOAT>::max_digits10;
  static_assert(significant == 17);
  CS_CHAR *const end =
      std::to_chars(text, text + longest_double, value, std::chars_format::general, significant)
          .ptr;
  *end = '\0';
  return static_cast<CS_INT>(end - text);
}

namespace {

using Text = const CS_CHAR *;
constexpr CS_FLOAT infinity = std::numeric_limits<CS_FLOAT>::infinity();

CS_CHAR lower(CS_CHAR c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<CS_CHAR>(c | 0x20) : c;
}

// Moves past a word in any case.
bool skip_word(Text &at, Text end, const char *word) noexcept {
  Text place = at;
  for (; *word != '\0'; ++word, ++place)
    if (place == end || lower(*place) != *word)
      return false;
  at = place;
  return true;
}

int digit_value(CS_CHAR c) noexcept {
  c = lower(c);
  if (c >= '0' && c <= '9')
    return c - '0';
  return c >= 'a' && c <= 'z' ? c - 'a' + 10 : -1;
}

// A number that is none, with what stands in parentheses behind it: letters, digits and lines. An
// integer there, of base 8, 10 or 16 as C writes it, becomes the low bits.
CS_FLOAT read_nan(Text &at, Text end) noexcept {
  constexpr uint64_t quiet = 0x7FF8000000000000, payload_mask = 0x0007FFFFFFFFFFFF;
  if (at == end || *at != '(')
    return std::bit_cast<CS_FLOAT>(quiet);
  Text close = at + 1;
  while (close < end && (digit_value(*close) >= 0 || *close == '_'))
    ++close;
  if (close == end || *close != ')')
    return std::bit_cast<CS_FLOAT>(quiet);
  Text digits = at + 1;
  at = close + 1;
  int base = 10;
  if (close - digits > 2 && digits[0] == '0' && lower(digits[1]) == 'x') {
    base = 16;
    digits += 2;
  } else if (*digits == '0') {
    base = 8;
  }
  constexpr uint64_t largest = ~uint64_t{0};
  uint64_t payload = 0;
  for (; digits < close; ++digits) {
    const int digit = digit_value(*digits);
    if (digit < 0 || digit >= base)
      return std::bit_cast<CS_FLOAT>(quiet);
    const auto added = static_cast<unsigned>(digit), factor = static_cast<unsigned>(base);
    payload = payload > (largest - added) / factor ? largest : payload * factor + added;
  }
  return std::bit_cast<CS_FLOAT>(quiet | (payload & payload_mask));
}

// True when a number from `begin` to `end` that has no place among doubles is too large for them,
// false when it is too small. Its exponent, counted from the first digit that is not 0, tells.
bool is_too_large(Text begin, Text end, bool hexadecimal) noexcept {
  const CS_CHAR exponent_letter = hexadecimal ? 'p' : 'e';
  int64_t places = 0; // of the first digit that is not 0: above 0 left of the point
  bool past_point = false, found = false;
  Text at = begin;
  for (; at < end && lower(*at) != exponent_letter; ++at) {
    if (*at == '.') {
      past_point = true;
      continue;
    }
    found = found || *at != '0';
    if (found && !past_point)
      ++places;
    if (!found && past_point)
      --places;
  }
  if (hexadecimal)
    places *= 4;
  int64_t exponent = 0;
  if (at < end) {
    ++at;
    const bool negative = *at == '-';
    if (*at == '-' || *at == '+')
      ++at;
    if (std::from_chars(at, end, exponent).ec == std::errc::result_out_of_range)
      return !negative;
    if (negative)
      exponent = -exponent;
  }
  // Neither of the two comes near the limits of their type: one counts characters.
  return exponent > -places;
}

bool has_digit_above_zero(Text begin, Text end, CS_CHAR exponent_letter) noexcept {
  return std::any_of(
      begin, std::find_if(begin, end, [=](CS_CHAR c) { return lower(c) == exponent_letter; }),
      [](CS_CHAR c) { return c != '0' && c != '.'; });
}

} // namespace

comn::ParsedDouble comn::parse_double(const CS_CHAR *text, CS_INT length) noexcept {
  const Text end = text + length;
  Text at = std::find_if_not(text, end, is_space);
  bool negative = false;
  if (at < end && (*at == '-' || *at == '+'))
    negative = *at++ == '-';
  const auto signed_value = [negative](CS_FLOAT value) { return negative ? -value : value; };
  if (at == end)
    return {0.0, false, text};

  if (lower(*at) == 'i' && skip_word(at, end, "inf")) {
    skip_word(at, end, "inity");
    return {signed_value(infinity), false, at};
  }
  if (lower(*at) == 'n' && skip_word(at, end, "nan"))
    return {signed_value(read_nan(at, end)), false, at};
  // The sign has been read, and a second one is none of the number.
  if (*at != '.' && digit_value(*at) < 0)
    return {0.0, false, text};

  CS_FLOAT value = 0.0;
  // The standard library would take a sign behind the prefix, and words.
  bool hexadecimal = end - at > 2 && at[0] == '0' && lower(at[1]) == 'x' &&
                     (at[2] == '.' || (digit_value(at[2]) >= 0 && digit_value(at[2]) < 16));
  std::from_chars_result read{};
  if (hexadecimal) {
    read = std::from_chars(at + 2, end, value, std::chars_format::hex);
    hexadecimal = read.ec != std::errc::invalid_argument;
    if (hexadecimal)
      at += 2;
  }
  if (!hexadecimal)
    read = std::from_chars(at, end, value, std::chars_format::general);
  if (read.ec == std::errc::invalid_argument)
    return {0.0, false, text};
  bool out_of_range = read.ec == std::errc::result_out_of_range;
  if (!out_of_range && value == 0.0)
    out_of_range = has_digit_above_zero(at, read.ptr, hexadecimal ? 'p' : 'e');
  if (out_of_range)
    value = is_too_large(at, read.ptr, hexadecimal) ? infinity : 0.0;
  return {signed_value(value), out_of_range, read.ptr};
}
