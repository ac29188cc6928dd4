// Two strings under an order that the input makes up: the library and the slow comparison of the tests
// agree. The last bytes are the strings, those before them choose the order.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "sort_order_reference.h"

namespace {

using zrvfuzz::require;

int sign(int value) {
  return (value > 0) - (value < 0);
}

void check(const zrvtest::SlowOrder &slow, const std::string &first, const std::string &second) {
  auto *const so = const_cast<SO_1CLASS *>(&slow.table);
  std::vector<char> str1(first.begin(), first.end()), str2(second.begin(), second.end());
  const auto len1 = static_cast<int>(str1.size()), len2 = static_cast<int>(str2.size());
  const int order = zrvtest::compare_slowly(slow, first, second);
  const int ties = zrvtest::compare_ties_slowly(slow, first, second);
  require(com__ps_dl_sqlhilo(so, str1.data(), len1, str2.data(), len2) == order);
  require(com__spec_tord(so, str1.data(), len1, str2.data(), len2) == ties);
  require(com_ps_dl_sqlhilo(so, str1.data(), len1, str2.data(), len2) == sign(order));
  require(com_spec_tord(so, str1.data(), len1, str2.data(), len2) == sign(ties));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 2)
    return 0;
  // Two lengths, the strings, the choices.
  const size_t length1 = data[0], length2 = data[1];
  if (size < 2 + length1 + length2)
    return 0;
  const char *const text = reinterpret_cast<const char *>(data) + 2;
  const std::string first(text, length1), second(text + length1, length2);
  zrvfuzz::Input choices(data + 2 + length1 + length2, size - 2 - length1 - length2);
  const zrvtest::SlowOrder slow = zrvtest::compile_slowly(
      zrvtest::make_sort_order([&](size_t n) { return n < 2 ? 0 : choices.word() % n; }));
  if (slow.result != CS_SUCCEED || slow.header.isbin != 0)
    return 0;
  check(slow, first, second);
  check(slow, second, first);
  check(slow, first, first);
  return 0;
}
