// The block cipher on machine words: 64-bit blocks, eight rounds, sixteen subkeys of 16 bits.
//
// Half a block is a 32-bit word with its first byte lowest, so that bytes come out with a shift.
// The key schedule is not the published one of this cipher: see schedule().
#ifndef COMN_SECURITY_FEAL_H
#define COMN_SECURITY_FEAL_H

#include <bit>
#include <cstdint>

#include "any_address.h"
#include "netenc.h"

namespace comn::feal {

constexpr int rounds = 8;
constexpr int key_size = 8;
constexpr int block_size = 8;
constexpr int subkeys_size = 32;

// Where the subkeys that whiten a block begin: K8 to K11 before the rounds, K12 to K15 behind them.
constexpr int first_whitening = 16;
constexpr int last_whitening = 24;

struct Halves {
  uint32_t left, right;
};

inline Halves load_block(const OCTET *bytes) noexcept {
  return {load<uint32_t>(bytes), load<uint32_t>(bytes + 4)};
}

inline void store_block(OCTET *bytes, Halves block) noexcept {
  store(bytes, block.left);
  store(bytes + 4, block.right);
}

inline uint32_t octet(uint32_t word, int index) noexcept {
  return word >> 8 * index & 0xFF;
}

inline uint32_t rotated_sum(uint32_t a, uint32_t b, uint32_t carry) noexcept {
  return std::rotl(static_cast<uint8_t>(a + b + carry), 2);
}
inline uint32_t s0(uint32_t a, uint32_t b) noexcept {
  return rotated_sum(a, b, 0);
}
inline uint32_t s1(uint32_t a, uint32_t b) noexcept {
  return rotated_sum(a, b, 1);
}

inline uint32_t join(uint32_t o0, uint32_t o1, uint32_t o2, uint32_t o3) noexcept {
  return o0 | o1 << 8 | o2 << 16 | o3 << 24;
}

// The round function, with the two bytes of its subkey.
inline uint32_t round_function(uint32_t a, uint32_t b0, uint32_t b1) noexcept {
  const uint32_t f1 = octet(a, 0) ^ octet(a, 1) ^ b0;
  const uint32_t f2 = octet(a, 2) ^ octet(a, 3) ^ b1;
  const uint32_t o1 = s1(f1, f2);
  const uint32_t o2 = s0(f2, o1);
  return join(s0(octet(a, 0), o1), o1, o2, s1(octet(a, 3), o2));
}

// The key function.
inline uint32_t key_function(uint32_t a, uint32_t b) noexcept {
  const uint32_t d1 = octet(a, 0) ^ octet(a, 1);
  const uint32_t d2 = octet(a, 2) ^ octet(a, 3);
  const uint32_t o1 = s1(d1, d2 ^ octet(b, 0));
  const uint32_t o2 = s0(d2, o1 ^ octet(b, 1));
  return join(s0(octet(a, 0), o1 ^ octet(b, 2)), o1, o2, s1(octet(a, 3), o2 ^ octet(b, 3)));
}

// Deliberate: the published schedule feeds the key function with B XOR the A of the round before;
// here it is B alone. Every stored password block and every challenge response depends on that.
inline void schedule(const OCTET *key, OCTET *subkeys) noexcept {
  auto [a, b] = load_block(key);
  for (int round = 0; round < rounds; ++round) {
    const uint32_t next = key_function(a, b);
    a = b;
    b = next;
    store(subkeys + 4 * round, b);
  }
}

inline Halves whiten(Halves block, const OCTET *subkeys) noexcept {
  const Halves key = load_block(subkeys);
  return {block.left ^ key.left, block.right ^ key.right};
}

inline Halves run_round(Halves block, const OCTET *subkey) noexcept {
  return {block.right, block.left ^ round_function(block.right, subkey[0], subkey[1])};
}

inline Halves encipher(Halves block, const OCTET *subkeys) noexcept {
  block = whiten(block, subkeys + first_whitening);
  block.right ^= block.left;
  for (int round = 0; round < rounds; ++round)
    block = run_round(block, subkeys + 2 * round);
  return whiten({block.right, block.left ^ block.right}, subkeys + last_whitening);
}

inline Halves decipher(Halves block, const OCTET *subkeys) noexcept {
  block = whiten(block, subkeys + last_whitening);
  block.right ^= block.left;
  for (int round = rounds - 1; round >= 0; --round)
    block = run_round(block, subkeys + 2 * round);
  return whiten({block.right, block.left ^ block.right}, subkeys + first_whitening);
}

} // namespace comn::feal

#endif
