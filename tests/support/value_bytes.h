// The bytes of values as they lie in memory, one value after the other.
#ifndef ZRVTEST_VALUE_BYTES_H
#define ZRVTEST_VALUE_BYTES_H

#include <string>

namespace zrvtest {

template <class... Values>
std::string bytes_of(const Values &...values) {
  std::string bytes;
  (bytes.append(reinterpret_cast<const char *>(&values), sizeof values), ...);
  return bytes;
}

} // namespace zrvtest

#endif
