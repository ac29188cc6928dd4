// What the tests of the password cipher share: the reference over the stored table, and blocks of
// bytes.
#ifndef ZRVTEST_SECURITY_CIPHER_H
#define ZRVTEST_SECURITY_CIPHER_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "long_hand_cipher.h"
#include "to_hex.h"
#include "zrvcomn/netenc.h"

namespace zrvtest {

using Bytes = LongHandCipher::Bytes;
using Block = LongHandCipher::Block;
using Half = LongHandCipher::Half;
using Salt = LongHandCipher::Salt;
using Subkeys = LongHandCipher::Subkeys;

inline const LongHandCipher &reference() {
  static const LongHandCipher cipher(Com__Enkeys);
  return cipher;
}

// The bytes of a literal like "0123abff".
inline Bytes from_hex(const std::string &digits) {
  Bytes bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes.push_back(static_cast<OCTET>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  return bytes;
}

inline Bytes to_bytes(const std::string &text) {
  return Bytes(text.begin(), text.end());
}

// A salt of one repeated byte.
inline Salt salt_of(int byte) {
  Salt salt;
  salt.fill(static_cast<OCTET>(byte));
  return salt;
}

using Random = std::mt19937;

template <class Container>
void randomize(Random &random, Container &bytes) {
  for (auto &byte : bytes)
    byte = static_cast<OCTET>(random());
}

template <size_t Size>
std::array<OCTET, Size> random_bytes(Random &random) {
  std::array<OCTET, Size> bytes;
  randomize(random, bytes);
  return bytes;
}

inline Bytes random_text(Random &random, size_t size) {
  Bytes text(size);
  randomize(random, text);
  return text;
}

} // namespace zrvtest

#endif
