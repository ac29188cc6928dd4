// A descriptor with its own bytes, guarded on both sides.
#ifndef ZRVTEST_DESCRIPTOR_H
#define ZRVTEST_DESCRIPTOR_H

#include <cstring>
#include <string>

#include "guarded_buffer.h"
#include "longhand.h"
#include "zrvcomn/numeric.h"

namespace zrvtest {

class Descriptor {
public:
  explicit Descriptor(int length, int precision = 77, int scale = 0)
      : buffer(static_cast<size_t>(length)), record{} {
    record.len = length;
    record.prec = static_cast<CS_BYTE>(precision);
    record.scale = static_cast<CS_BYTE>(scale);
    record.value = buffer.data();
  }
  Descriptor(int length, int precision, int scale, const std::string &digits, bool negative = false)
      : Descriptor(length, precision, scale) {
    record.value[0] = negative;
    EXPECT_TRUE(Natural::from_digits(digits).to_bytes(record.value + 1, length - 1));
  }

  __CONSTANT *get() { return &record; }
  __CONSTANT *operator->() { return &record; }
  const unsigned char *bytes() const { return buffer.data(); }
  bool is_untouched() const { return buffer.is_untouched(); }

  // The sign and the digits as they stand now.
  std::string text() const { return text_of(record); }
  static std::string text_of(const __CONSTANT &value) {
    if (value.len == 0)
      return "empty";
    return (value.value[0] != 0 ? "-" : "") +
           Natural::from_bytes(value.value + 1, value.len - 1).digits();
  }

private:
  GuardedBuffer buffer;
  __CONSTANT record;
};

} // namespace zrvtest

#endif
