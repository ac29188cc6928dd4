// com_uninitialize_hex_strings on any salt and text, against the cipher by hand; and back again for
// what it yields. The first byte of the input is the length of the salt, then come the salt and the
// text.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "long_hand_cipher.h"
#include "zrvcomn/netenc.h"

using zrvfuzz::require;

namespace {

using zrvtest::LongHandCipher;

// The block that a text spells, or nothing.
LongHandCipher::Bytes read_block(const std::string &text) {
  if (text.size() != 70 || text.compare(0, 4, "0x01") != 0 ||
      text.find_first_not_of("0123456789abcdefABCDEF", 4) != std::string::npos)
    return {};
  LongHandCipher::Bytes block;
  for (size_t at = 4; at < 70; at += 2)
    block.push_back(static_cast<unsigned char>(std::stoul(text.substr(at, 2), nullptr, 16)));
  return block;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const LongHandCipher cipher(Com__Enkeys);
  if (size == 0)
    return 0;
  const size_t salt_size = std::min<size_t>(data[0], size - 1);
  // Heap blocks of exactly the sizes told, for the sanitizers.
  std::vector<char> salt(data + 1, data + 1 + salt_size);
  std::vector<char> text(data + 1 + salt_size, data + size);
  salt.reserve(1);
  text.reserve(1);

  const LongHandCipher::Bytes block = read_block({text.begin(), text.end()});
  const bool is_good = salt_size == 8 && !block.empty() && block[32] <= 30;
  std::vector<char> plain(is_good ? block[32] : 30, '~');
  plain.reserve(1);
  int length = -1;
  const CS_RETCODE status =
      com_uninitialize_hex_strings(salt.data(), static_cast<int>(salt_size), text.data(),
                                   static_cast<int>(text.size()), plain.data(), &length);
  require(status == (is_good ? CS_SUCCEED : CS_FAIL));
  if (!is_good) {
    require(length == -1);
    require(plain == std::vector<char>(30, '~'));
    return 0;
  }

  LongHandCipher::Salt salt_bytes;
  std::copy_n(data + 1, 8, salt_bytes.begin());
  const LongHandCipher::Bytes expected = cipher.text_of(salt_bytes, block);
  require(length == block[32]);
  require(std::equal(expected.begin(), expected.end(), plain.begin(), plain.end(),
                     [](unsigned char a, char b) { return static_cast<char>(a) == b; }));
  if (length == 0)
    return 0;

  std::vector<char> hex(70);
  int hex_length = -1;
  require(com_initialize_hex_strings(salt.data(), 8, plain.data(), length, hex.data(),
                                     &hex_length) == CS_SUCCEED);
  require(hex_length == 70);
  require(std::string(hex.begin(), hex.end()) ==
          LongHandCipher::hexadecimal(cipher.string_block(salt_bytes, expected)));
  return 0;
}
