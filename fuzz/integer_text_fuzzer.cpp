// Text to integers of every type in four character sets, against the machine of three states. Of the
// input, the first byte picks the set; each other one is an ASCII character, in its wide form where its
// top bit is set. The same bytes are then a text as they stand.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "integer_text_reference.h"
#include "test_charset.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::require;

namespace {

template <class Integer>
zrvtest::IntegerParse parse(int (*parser)(char *, int, Integer *, CHAR_ATTRIB *),
                            const std::string &text, CS_ATTRIB *set) {
  const zrvfuzz::ExactText copy(text);
  Integer value;
  const int status = parser(copy.data(), copy.size(), &value, set);
  return {status, std::to_string(value)};
}

template <class Integer>
void check(const char *type, int (*parser)(char *, int, Integer *, CHAR_ATTRIB *),
           const std::string &ascii, const std::string &text, const std::string &raw,
           CS_ATTRIB *set) {
  const zrvtest::IntegerParse expected = zrvtest::slow_integer_parse(type, ascii);
  const zrvtest::IntegerParse parsed = parse(parser, text, set);
  require(parsed.status == expected.status && parsed.value == expected.value);
  // A set of single bytes is not asked.
  const zrvtest::IntegerParse plain = parse(parser, raw, nullptr);
  const zrvtest::IntegerParse as_it_stands = zrvtest::slow_integer_parse(type, raw);
  require(plain.status == as_it_stands.status && plain.value == as_it_stands.value);
  const int status = parse(parser, raw, set).status;
  require(status == 4 || status == -1 || status == -2 || (status == 0 && raw.empty()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1 || size > 256)
    return 0;
  static zrvtest::TestCharset sets[] = {
      zrvtest::TestCharset::one_byte(), zrvtest::TestCharset::double_byte(),
      zrvtest::TestCharset::four_byte(), zrvtest::TestCharset::utf8()};
  zrvtest::TestCharset &set = sets[data[0] % 4];
  std::string ascii;
  for (size_t i = 1; i < size; ++i)
    ascii += static_cast<char>(data[i] & 0x7F);
  size_t next = 0;
  const std::string text = set.spell(ascii, [&] { return (data[++next] & 0x80) != 0; });
  const std::string raw(reinterpret_cast<const char *>(data) + 1, size - 1);
  check("i1", com__chtoi1_mb, ascii, text, raw, set.get());
  check("i2", com__chtoi2_mb, ascii, text, raw, set.get());
  check("i4", com__chtoi4_mb, ascii, text, raw, set.get());
  check("i8", com__chtoi8_mb, ascii, text, raw, set.get());
  check("ui2", com__chtoui2_mb, ascii, text, raw, set.get());
  check("ui4", com__chtoui4_mb, ascii, text, raw, set.get());
  check("ui8", com__chtoui8_mb, ascii, text, raw, set.get());
  return 0;
}
