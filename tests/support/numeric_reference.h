// The arithmetic of exact numerics by its rules, in long hand: what the library must deliver.
#ifndef ZRVTEST_NUMERIC_REFERENCE_H
#define ZRVTEST_NUMERIC_REFERENCE_H

#include <ostream>
#include <string>

#include "longhand.h"
#include "zrvcomn/numeric.h"

namespace zrvtest {

// A value taken apart.
struct Decimal {
  int precision = 1, scale = 0;
  bool negative = false;
  Natural magnitude;

  static Decimal of(const CS_NUMERIC &value);
  // Bytes that do not count are filled with 0xA5.
  CS_NUMERIC pack() const;
  std::string text() const;
};

// The outcome of an operation: the value counts where `has_value` says so.
struct Outcome {
  CS_RETCODE code = CS_SUCCEED;
  bool has_value = false;
  Decimal value;
};

Outcome reference_add(const Decimal &a, const Decimal &b, bool subtract);
Outcome reference_multiply(const Decimal &a, const Decimal &b);
Outcome reference_divide(const Decimal &a, const Decimal &b);
int reference_compare(const Decimal &a, const Decimal &b);
Outcome reference_convert(const Decimal &a, int precision, int scale);
std::string reference_text(const Decimal &a);

// Text to numeric, character by character, with the arguments of com__subchartoexctnume.
struct ParseResult {
  int status = 0;
  int precision = 0, scale = 0, length = 0, offset = 0;
  bool negative = false;
  Natural magnitude;
};
// `text` is followed by a NUL; only `len` characters count, but for the exponent.
ParseResult reference_parse(const std::string &text, int len, int destlen, int precision, int scale,
                            int flag);

// Length of a precision, from the rule.
int reference_length(int precision);

} // namespace zrvtest

#endif
