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

// The outcome of an operation: the value counts where `has_value` says so, its precision and scale
// where `has_shape` does. Without them nothing is stored.
struct Outcome {
  CS_RETCODE code = CS_SUCCEED;
  bool has_value = false, has_shape = false;
  Decimal value;
};

Outcome reference_add(const Decimal &a, const Decimal &b, bool subtract);
Outcome reference_multiply(const Decimal &a, const Decimal &b);
Outcome reference_divide(const Decimal &a, const Decimal &b);
int reference_compare(const Decimal &a, const Decimal &b);
Outcome reference_convert(const Decimal &a, int precision, int scale);
std::string reference_text(const Decimal &a);
// The status of a decimal shift in a field of so many bytes; the number is of use for NUME_OK and
// NUME_TRUNCATED.
int reference_shift(Natural &magnitude, int places, int bytes, int precision);

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
