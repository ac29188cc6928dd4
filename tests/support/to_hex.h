// Bytes as lower-case hexadecimal digits.
#ifndef ZRVTEST_TO_HEX_H
#define ZRVTEST_TO_HEX_H

#include <string>

namespace zrvtest {

template <class Container>
std::string to_hex(const Container &bytes) {
  std::string digits;
  for (const auto byte : bytes) {
    digits += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
    digits += "0123456789abcdef"[byte & 15];
  }
  return digits;
}

} // namespace zrvtest

#endif
