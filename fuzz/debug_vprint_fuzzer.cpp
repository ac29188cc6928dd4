// comn_debug_vprint with any format and enough words: every specification is printed or refused,
// and never reaches for more than one word. The input is the format, up to its first NUL.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zrvcomn/comnlib.h"

namespace {

// A width or precision of this many digits makes fprintf write megabytes, which finds nothing.
constexpr size_t longest_number = 4;

bool has_long_number(const std::string &format) {
  size_t digits = 0;
  for (const char c : format) {
    // What is no part of a specification stands between its digits without ending their number.
    if (c == '%' || c == '.')
      digits = 0;
    else if (c >= '0' && c <= '9' && ++digits > longest_number)
      return true;
  }
  return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  std::string format(reinterpret_cast<const char *>(data), size);
  format.resize(std::strlen(format.c_str()));
  if (has_long_number(format))
    return 0;
  if (Com_fp == nullptr)
    Com_fp = std::fopen("/dev/null", "w");

  // A word that is good for every specification, as many as there can be and no more.
  static const char text[] = "a string";
  std::vector<intptr_t> words;
  for (const char c : format)
    if (c == '%')
      words.push_back(reinterpret_cast<intptr_t>(text));
  // A heap block of exactly the text, for the sanitizers.
  std::vector<CS_CHAR> copy(format.begin(), format.end());
  copy.push_back('\0');
  if (comn_debug_vprint(copy.data(), words.data()) != CS_SUCCEED)
    std::abort();
  return 0;
}
