// The password cipher by hand: bytes, one step after another, nothing kept between two calls. What
// the library computes is compared with this; it shares no code with it, only the stored key table.
#ifndef ZRVTEST_LONG_HAND_CIPHER_H
#define ZRVTEST_LONG_HAND_CIPHER_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zrvtest {

class LongHandCipher {
public:
  using Byte = unsigned char;
  using Bytes = std::vector<Byte>;
  using Half = std::array<Byte, 4>;
  using Block = std::array<Byte, 8>;
  using Salt = std::array<Byte, 8>;
  using Subkeys = std::array<Byte, 32>;
  using Row = std::array<Byte, 32>;

  // Builds the working table from the stored one.
  explicit LongHandCipher(const Byte (*stored)[32]) {
    for (std::size_t i = 0; i < 32; ++i)
      rows[0][i] = static_cast<Byte>((stored[0][i] + 256 - 87) % 256);
    for (std::size_t j = 0; j < 4; ++j) {
      const Block plain =
          decipher(eight_bytes(stored[1], 8 * j), schedule(eight_bytes(stored[0], 8 * j)));
      std::copy(plain.begin(), plain.end(), rows[1].begin() + static_cast<std::ptrdiff_t>(8 * j));
    }
    for (std::size_t row = 2; row < 256; ++row)
      for (std::size_t i = 0; i < 32; ++i)
        rows[row][i] = stored[row][i] ^ stored[row - 1][i];
  }

  const Row &row(std::size_t index) const { return rows[index]; }

  // ---- the block cipher ----

  static Byte rotate_left_2(int byte) { return static_cast<Byte>((byte * 4) % 256 + byte / 64); }
  static Byte s0(int a, int b) { return rotate_left_2((a + b) % 256); }
  static Byte s1(int a, int b) { return rotate_left_2((a + b + 1) % 256); }

  static Half round_function(const Half &a, Byte b0, Byte b1) {
    const Byte f1 = a[0] ^ a[1] ^ b0;
    const Byte f2 = a[2] ^ a[3] ^ b1;
    Half o{};
    o[1] = s1(f1, f2);
    o[2] = s0(f2, o[1]);
    o[0] = s0(a[0], o[1]);
    o[3] = s1(a[3], o[2]);
    return o;
  }

  static Half key_function(const Half &a, const Half &b) {
    const Byte d1 = a[0] ^ a[1];
    const Byte d2 = a[2] ^ a[3];
    Half o{};
    o[1] = s1(d1, d2 ^ b[0]);
    o[2] = s0(d2, o[1] ^ b[1]);
    o[0] = s0(a[0], o[1] ^ b[2]);
    o[3] = s1(a[3], o[2] ^ b[3]);
    return o;
  }

  // The second operand of the key function is B alone, not B XOR the A of the round before.
  static Subkeys schedule(const Block &key) {
    Half a = {key[0], key[1], key[2], key[3]};
    Half b = {key[4], key[5], key[6], key[7]};
    Subkeys subkeys{};
    for (std::size_t round = 1; round <= 8; ++round) {
      const Half before = a;
      a = b;
      b = key_function(before, b);
      for (std::size_t i = 0; i < 4; ++i)
        subkeys[4 * (round - 1) + i] = b[i];
    }
    return subkeys;
  }

  static Block encipher(const Block &input, const Subkeys &k) {
    Half left{}, right{};
    for (std::size_t i = 0; i < 4; ++i) {
      left[i] = input[i] ^ k[16 + i];
      right[i] = input[4 + i] ^ k[20 + i];
    }
    for (std::size_t i = 0; i < 4; ++i)
      right[i] ^= left[i];
    for (std::size_t round = 1; round <= 8; ++round) {
      const Half f = round_function(right, k[2 * (round - 1)], k[2 * (round - 1) + 1]);
      const Half old_right = right;
      for (std::size_t i = 0; i < 4; ++i)
        right[i] = left[i] ^ f[i];
      left = old_right;
    }
    Block output{};
    for (std::size_t i = 0; i < 4; ++i) {
      output[i] = right[i] ^ k[24 + i];
      output[4 + i] = left[i] ^ right[i] ^ k[28 + i];
    }
    return output;
  }

  static Block decipher(const Block &input, const Subkeys &k) {
    Half left{}, right{};
    for (std::size_t i = 0; i < 4; ++i) {
      right[i] = input[i] ^ k[24 + i];
      left[i] = input[4 + i] ^ k[28 + i] ^ right[i];
    }
    for (std::size_t round = 8; round >= 1; --round) {
      const Half f = round_function(left, k[2 * (round - 1)], k[2 * (round - 1) + 1]);
      const Half old_left = left;
      for (std::size_t i = 0; i < 4; ++i)
        left[i] = right[i] ^ f[i];
      right = old_left;
    }
    Block output{};
    for (std::size_t i = 0; i < 4; ++i) {
      output[i] = left[i] ^ k[16 + i];
      output[4 + i] = right[i] ^ left[i] ^ k[20 + i];
    }
    return output;
  }

  // ---- salted blocks ----

  // The rows that a salt selects: the first key's, then one for each salt byte.
  static std::size_t first_row(const Salt &salt) {
    return (salt[0] >= 254 ? (salt[0] + 2U) % 256 : salt[0]) + 2;
  }
  static std::size_t chain_row(const Salt &salt, std::size_t k) {
    return (salt[k] + k) * 3 % 254 + 2;
  }

  Block salted(Block block, const Salt &salt, std::size_t j) const {
    block = encipher(block, key_at(first_row(salt), j));
    for (std::size_t k = 0; k < 8; ++k)
      block = encipher(block, key_at(chain_row(salt, k), j));
    return block;
  }

  Block unsalted(Block block, const Salt &salt, std::size_t j) const {
    for (std::size_t k = 8; k-- > 0;)
      block = decipher(block, key_at(chain_row(salt, k), j));
    return decipher(block, key_at(first_row(salt), j));
  }

  // ---- string blocks ----

  Bytes string_block(const Salt &salt, Bytes text) const {
    text.resize(std::min<std::size_t>(text.size(), 30));
    Bytes padded(32, 0x5C);
    for (std::size_t i = 0; i < text.size(); ++i)
      padded[(salt[0] + i) % 32] = text[i];
    Bytes result;
    for (std::size_t j = 0; j < 4; ++j) {
      const Block block = salted(eight_bytes(padded.data(), 8 * j), salt, j);
      result.insert(result.end(), block.begin(), block.end());
    }
    result.push_back(static_cast<Byte>(text.size()));
    return result;
  }

  Bytes text_of(const Salt &salt, const Bytes &string_block) const {
    Bytes padded;
    for (std::size_t j = 0; j < 4; ++j) {
      const Block block = unsalted(eight_bytes(string_block.data(), 8 * j), salt, j);
      padded.insert(padded.end(), block.begin(), block.end());
    }
    Bytes text;
    for (std::size_t i = 0; i < string_block[32]; ++i)
      text.push_back(padded[(salt[0] + i) % 32]);
    return text;
  }

  static std::string hexadecimal(const Bytes &string_block) {
    std::string text = "0x01";
    for (const Byte byte : string_block) {
      text += "0123456789abcdef"[byte / 16];
      text += "0123456789abcdef"[byte % 16];
    }
    return text;
  }

  Block response(const Block &challenge) const {
    Byte row_number = 0;
    for (const Byte byte : challenge)
      row_number ^= byte;
    return salted(challenge, eight_bytes(rows[row_number].data(), 0), 0);
  }

private:
  static Block eight_bytes(const Byte *bytes, std::size_t at) {
    Block block{};
    for (std::size_t i = 0; i < 8; ++i)
      block[i] = bytes[at + i];
    return block;
  }

  Subkeys key_at(std::size_t row_index, std::size_t j) const {
    return schedule(eight_bytes(rows[row_index].data(), 8 * j));
  }

  std::array<Row, 256> rows{};
};

// The memory scramble by hand, on bytes from the least significant on.
inline std::vector<unsigned char> scramble_by_hand(std::vector<unsigned char> bytes,
                                                   std::uint32_t seed) {
  std::uint32_t k = seed;
  std::uint32_t rotation = seed & 31;
  std::size_t at = 0;
  for (; at + 4 <= bytes.size(); at += 4) {
    for (std::size_t i = 0; i < 4; ++i)
      k ^= static_cast<std::uint32_t>(bytes[at + i]) << (8 * i);
    if (rotation != 0)
      k = k << rotation | k >> (32 - rotation);
    for (std::size_t i = 0; i < 4; ++i)
      bytes[at + i] = static_cast<unsigned char>(k >> (8 * i));
    rotation = k & 31;
  }
  for (; at < bytes.size(); ++at) {
    bytes[at] ^= static_cast<unsigned char>(k & 255);
    k >>= 8;
  }
  return bytes;
}

} // namespace zrvtest

#endif
