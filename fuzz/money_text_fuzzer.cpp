// Text to money in four character sets, against the rules followed step by step, and what was read
// back to text. Of the input, the first byte picks the set; each other one is an ASCII character, in its
// wide form where its top bit is set. The same bytes are then a text as they stand.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "money_text_reference.h"
#include "test_charset.h"
#include "zrvcomn/numeric.h"

using zrvfuzz::require;

namespace {

zrvtest::MoneyParse parse(const std::string &text, CS_ATTRIB *set) {
  const zrvfuzz::ExactText copy(text);
  CS_MONEY value;
  const int status = com__mnyfromchar_mb(&value, copy.data(), copy.size(), 0, set);
  return {status, static_cast<int64_t>(static_cast<uint64_t>(value.mnyhigh) << 32 | value.mnylow)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1 || size > 1024)
    return 0;
  zrvtest::TestCharset sets[] = {zrvtest::TestCharset::one_byte(),
                                 zrvtest::TestCharset::double_byte(),
                                 zrvtest::TestCharset::four_byte(), zrvtest::TestCharset::utf8()};
  zrvtest::TestCharset &set = sets[data[0] % 4];
  std::string ascii;
  for (size_t i = 1; i < size; ++i)
    ascii += static_cast<char>(data[i] & 0x7F);
  size_t next = 0;
  const std::string text = set.spell(ascii, [&] { return (data[++next] & 0x80) != 0; });
  const zrvtest::MoneyParse parsed = parse(text, set.get());
  require(parsed == zrvtest::slow_money_parse(ascii));

  const std::string raw(reinterpret_cast<const char *>(data) + 1, size - 1);
  const int status = parse(raw, set.get()).status;
  require(status == NUME_OK || status == NUME_OVERFLOW || status == NUME_SYNTAX);

  if (parsed.status == NUME_OK) {
    CS_MONEY value = {static_cast<CS_INT>(parsed.count >> 32), static_cast<CS_UINT>(parsed.count)};
    char printed[32];
    char *const start = com__mnytochar(&value, printed, sizeof printed, 4 << 8 | (data[0] >> 7));
    require(start != nullptr);
    require(parse(std::string(start, printed + sizeof printed), nullptr) == parsed);
  }
  return 0;
}
