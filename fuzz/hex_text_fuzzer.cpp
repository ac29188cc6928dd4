// comn__hex2binbytes and comn_chartobin on any text and any room, against a slow reading of the
// same rules; never a byte beyond maxlength. The first byte of the input is the room, the rest is
// the text.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "text_sets.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::make_format;
using zrvfuzz::require;

namespace {

constexpr CS_BYTE filler = 0xA5;

// The text without the white space at its ends and without a prefix.
std::string digits_of(std::string text) {
  const std::string space = "\x09\x0A\x0B\x0C\x0D\x0E\x0F\x20";
  while (!text.empty() && space.find(text.back()) != std::string::npos)
    text.pop_back();
  while (!text.empty() && space.find(text.front()) != std::string::npos)
    text.erase(0, 1);
  if (text.compare(0, 2, "0x") == 0 || text.compare(0, 2, "0X") == 0)
    text.erase(0, 2);
  return text;
}

struct Result {
  CS_RETCODE status;
  CS_INT length;
  std::vector<CS_BYTE> bytes; // all of the room
};

Result reference(std::string digits, size_t room, CS_INT format) {
  Result result{CS_SUCCEED, 0, std::vector<CS_BYTE>(room, filler)};
  if (digits.size() % 2 != 0) {
    if (room == 0)
      return {CS_CONV_OVERFLOW, 0, {}};
    digits.insert(digits.begin(), '0');
  }
  const size_t count = std::min(digits.size() / 2, room);
  for (size_t i = 0; i < count; ++i) {
    const std::string pair = digits.substr(2 * i, 2);
    if (pair.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
      return {CS_CONV_SYNTAX, 0, {}};
    result.bytes[i] = static_cast<CS_BYTE>(std::stoul(pair, nullptr, 16));
  }
  result.length = static_cast<CS_INT>(count);
  if (count < digits.size() / 2) {
    result.status = CS_CONV_TRUNCATED;
  } else if (format == CS_DFMT_PADNULL) {
    std::fill(result.bytes.begin() + result.length, result.bytes.end(), CS_BYTE{0});
    result.length = static_cast<CS_INT>(room);
  }
  return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2)
    return 0; // an empty text is fatal
  const size_t room = data[0];
  std::vector<CS_CHAR> text(data + 1, data + size);
  const std::string digits = digits_of({text.begin(), text.end()});

  CS_CHAR *rest = text.data();
  auto length = static_cast<CS_INT>(text.size());
  comn__hex2binbytes(&rest, &length);
  require(length >= 0 && std::string(rest, static_cast<size_t>(length)) == digits);

  for (const CS_INT format : {0, CS_DFMT_PADNULL}) {
    const Result expected = reference(digits, room, format);
    CS_CONTEXT context{};
    CS_DATAFMT source = make_format(CS_TYPE_CHAR, text.size());
    CS_DATAFMT destination = make_format(CS_TYPE_BINARY, room, format);
    // A heap block of exactly the room, for the sanitizers.
    std::vector<CS_BYTE> bytes(room, filler);
    CS_BYTE none = filler;
    CS_INT stored = -1;
    const CS_RETCODE status = comn_chartobin(&context, &source, text.data(), &destination,
                                             room == 0 ? &none : bytes.data(), &stored);
    require(none == filler);
    require(status == expected.status && stored == expected.length);
    // What a bad digit leaves behind is not told.
    require(status == CS_CONV_SYNTAX || bytes == expected.bytes);
  }
  return 0;
}
