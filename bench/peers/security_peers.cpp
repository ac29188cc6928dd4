#include "security_peers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "long_hand_cipher.h"
#include "zrvcomn/netenc.h"

namespace {

using zrvtest::LongHandCipher;

const LongHandCipher &cipher() {
  static const LongHandCipher the_cipher(Com__Enkeys);
  return the_cipher;
}

LongHandCipher::Block eight_bytes(const unsigned char *bytes) {
  LongHandCipher::Block block;
  std::copy_n(bytes, block.size(), block.begin());
  return block;
}

} // namespace

void peer_string_block(const unsigned char *salt, const unsigned char *text, size_t length,
                       unsigned char *block) {
  const LongHandCipher::Bytes made =
      cipher().string_block(eight_bytes(salt), LongHandCipher::Bytes(text, text + length));
  std::copy(made.begin(), made.end(), block);
}

void peer_response(const unsigned char *challenge, unsigned char *response) {
  const LongHandCipher::Block made = cipher().response(eight_bytes(challenge));
  std::copy(made.begin(), made.end(), response);
}

void peer_scramble(unsigned char *bytes, size_t length, unsigned key) {
  void *const copy = std::aligned_alloc(64, (length + 63) / 64 * 64);
  if (copy == nullptr)
    return;
  const std::vector<unsigned char> made =
      zrvtest::scramble_by_hand(std::vector<unsigned char>(bytes, bytes + length), key);
  std::memcpy(copy, made.data(), length);
  std::memcpy(bytes, copy, length);
  std::memset(copy, 42, length);
  asm volatile("" : : "r"(copy) : "memory"); // or the block would not be wiped
  std::free(copy);
}
