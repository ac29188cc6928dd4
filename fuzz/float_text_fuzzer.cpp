// Text to floats in four character sets, against the C library's reader and the rules about its ranges;
// and the number back to text, against the C library's printer. Of the input, the first byte picks the
// set; each other one is an ASCII character, in its wide form where its top bit is set. The same bytes
// are then a text as they stand.
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz_input.h"
#include "text_sets.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::require;

namespace {

template <class Float>
struct FloatParse {
  CS_RETCODE status;
  CS_INT length;
  Float value;
};

template <class Float>
FloatParse<Float> convert(CS_CONV_FUNC function, CS_INT type, zrvfuzz::TextSets &sets,
                          zrvfuzz::TextSet &set, const std::string &text) {
  const zrvfuzz::ExactText copy(text);
  CS_DATAFMT srcfmt = zrvfuzz::make_format(CS_TYPE_CHAR, text.size(), 0, &set);
  CS_DATAFMT destfmt = zrvfuzz::make_format(type, sizeof(Float), 0, &set);
  FloatParse<Float> result{0, -1, 0};
  result.status =
      function(&sets.context, &srcfmt, copy.data(), &destfmt, &result.value, &result.length);
  return result;
}

// What the C library reads of the text without the white space behind it.
struct Read {
  double value;
  bool out_of_range, whole;
};

Read read(std::string text) {
  text.resize(text.find_last_not_of("\x09\x0A\x0B\x0C\x0D\x0E\x0F ") + 1);
  char *end;
  errno = 0;
  const double value = std::strtod(text.c_str(), &end);
  return {value, errno == ERANGE, end == text.c_str() + text.size()};
}

void check_double(const FloatParse<CS_FLOAT> &parsed, const Read &expected) {
  if (expected.out_of_range && expected.value == 0.0) {
    require(parsed.status == CS_CONV_UNDERFLOW && parsed.length == 8 && parsed.value == 0.0);
  } else if (std::isinf(expected.value)) {
    require(parsed.status == CS_CONV_OVERFLOW && parsed.length == 8);
    require(parsed.value == (expected.value > 0 ? DBL_MAX : -DBL_MAX));
  } else {
    require(parsed.status == (expected.whole ? CS_SUCCEED : CS_CONV_SYNTAX));
    require(parsed.length == (expected.whole ? 8 : 0));
    require(std::memcmp(&parsed.value, &expected.value, sizeof expected.value) == 0);
  }
}

void check_single(const FloatParse<CS_REAL> &parsed, const Read &expected) {
  const double largest = FLT_MAX;
  const bool beyond_doubles = expected.out_of_range && std::isinf(expected.value);
  if (expected.out_of_range && expected.value == 0.0) {
    require(parsed.status == CS_CONV_UNDERFLOW && parsed.length == 4 && parsed.value == 0.0F);
  } else if (!beyond_doubles && !expected.whole) {
    require(parsed.status == CS_CONV_SYNTAX && parsed.length == 0 && parsed.value == 0.0F);
  } else if (expected.value > largest || expected.value < -largest) {
    require(parsed.status == CS_CONV_OVERFLOW && parsed.length == 4);
    require(parsed.value == (expected.value > 0 ? FLT_MAX : -FLT_MAX));
  } else {
    require(parsed.status == CS_SUCCEED && parsed.length == 4);
    require(std::isnan(expected.value) ? std::isnan(parsed.value)
                                       : parsed.value == static_cast<CS_REAL>(expected.value));
  }
}

// As "%.17g" has it, but for a zero in front of the point, the sign of a zero, and a point for all.
void check_text(zrvfuzz::TextSets &sets, CS_FLOAT value) {
  char printed[64];
  std::snprintf(printed, sizeof printed, "%.17g", value == 0.0 ? 0.0 : value);
  std::string expected = printed;
  if (expected.compare(0, 2, "0.") == 0)
    expected.erase(0, 1);
  if (expected.find_first_of(".e") == std::string::npos)
    expected += ".0";
  CS_DATAFMT srcfmt = zrvfuzz::make_format(CS_TYPE_FLOAT, 8, 0, &sets.one_byte);
  CS_DATAFMT destfmt = zrvfuzz::make_format(CS_TYPE_CHAR, sizeof printed, 0, &sets.one_byte);
  CS_INT length = -1;
  require(comn_flt8tochar(&sets.context, &srcfmt, &value, &destfmt, printed, &length) ==
          CS_SUCCEED);
  require(std::string(printed, static_cast<size_t>(length)) == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1 || size > 1024)
    return 0;
  static zrvfuzz::TextSets sets;
  zrvfuzz::TextSet &set = sets[data[0]];
  std::string ascii;
  for (size_t i = 1; i < size; ++i)
    // The set of single bytes reduces to upper case, which reads the same but in a payload.
    ascii += static_cast<char>(data[i] & 0x7F);
  size_t next = 0;
  const std::string text = set.tables.spell(ascii, [&] { return (data[++next] & 0x80) != 0; });
  if (text.size() <= 1023) {
    const Read expected = read(ascii);
    check_double(convert<CS_FLOAT>(comn_chartoflt8, CS_TYPE_FLOAT, sets, set, text), expected);
    check_single(convert<CS_REAL>(comn_chartoflt4, CS_TYPE_REAL, sets, set, text), expected);
  }
  const std::string raw(reinterpret_cast<const char *>(data) + 1, size - 1);
  const FloatParse<CS_FLOAT> parsed =
      convert<CS_FLOAT>(comn_chartoflt8, CS_TYPE_FLOAT, sets, set, raw);
  require(raw.size() <= 1023 || (parsed.status == CS_CONV_SYNTAX && parsed.length == 0));
  check_text(sets, parsed.value);
  CS_FLOAT bits;
  if (raw.size() >= sizeof bits) {
    std::memcpy(&bits, raw.data(), sizeof bits);
    check_text(sets, bits);
  }
  return 0;
}
