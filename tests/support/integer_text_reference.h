// Text to integers: the machine of three states, a character at a time. Slow and obvious; what the
// library reads is compared with it.
#ifndef ZRVTEST_INTEGER_TEXT_REFERENCE_H
#define ZRVTEST_INTEGER_TEXT_REFERENCE_H

#include <cstdint>
#include <string>

namespace zrvtest {

// What the parser of a type returns, and what it stores.
struct IntegerParse {
  int status;
  std::string value;
};

// The types that have a machine of their own.
struct IntegerMachine {
  bool takes_minus;
  uint64_t most_before;            // what the value may be in front of another digit
  char last_digit[2];              // the most that this digit may be then, positive and negative
  const char *too_large, *too_low; // stored on overflow; null for the digits that fitted
};
constexpr IntegerMachine signed_32 = {true, 214748364, {'7', '8'}, nullptr, nullptr};
constexpr IntegerMachine unsigned_32 = {false, 429496729, {'5', '5'}, "4294967295", nullptr};
constexpr IntegerMachine signed_64 = {
    true, 922337203685477580, {'7', '8'}, "9223372036854775807", "-9223372036854775808"};
constexpr IntegerMachine unsigned_64 = {
    false, 1844674407370955161, {'5', '5'}, "18446744073709551615", nullptr};

// The ASCII forms of a text's characters, NUL for one that has none.
inline IntegerParse run_machine(const IntegerMachine &machine, const std::string &text) {
  if (text.empty())
    return {0, "0"};
  uint64_t value = 0;
  bool sign = false, negative = false;
  const auto stored = [&] { return (negative && value != 0 ? "-" : "") + std::to_string(value); };
  int state = 0;
  for (size_t i = 0; i < text.size();) {
    const char c = text[i];
    switch (state) {
    case 0:
      if (c == '-' || c == '+') {
        if (sign || (c == '-' && !machine.takes_minus))
          return {-2, "0"};
        sign = true;
        negative = c == '-';
      } else if (c != ' ') {
        state = 1;
        continue;
      }
      break;
    case 1:
      if (c < '0' || c > '9') {
        state = 2;
        continue;
      }
      if (value > machine.most_before ||
          (value == machine.most_before && c > machine.last_digit[negative ? 1 : 0])) {
        if (machine.too_large != nullptr)
          return {-1, negative ? machine.too_low : machine.too_large};
        if (value == machine.most_before)
          value *= 10;
        return {-1, stored()};
      }
      value = value * 10 + static_cast<uint64_t>(c - '0');
      break;
    default:
      if (c != ' ')
        return {-2, stored()};
    }
    ++i;
  }
  return {4, stored()};
}

// The type by its short name.
inline IntegerParse slow_integer_parse(const std::string &type, const std::string &text) {
  if (type == "i4")
    return run_machine(signed_32, text);
  if (type == "ui4")
    return run_machine(unsigned_32, text);
  if (type == "i8")
    return run_machine(signed_64, text);
  if (type == "ui8")
    return run_machine(unsigned_64, text);
  const IntegerParse wide = run_machine(type == "ui2" ? unsigned_32 : signed_32, text);
  if (wide.status != 4)
    return {wide.status, "0"};
  const int64_t number = std::stoll(wide.value);
  const int64_t count = type == "i1" ? 256 : 65536, low = type == "i2" ? -32768 : 0;
  const int64_t wrapped = ((number - low) % count + count) % count + low;
  return {wrapped == number ? 4 : -1, std::to_string(wrapped)};
}

} // namespace zrvtest

#endif
