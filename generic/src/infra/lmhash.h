// The hash of a key.
//
// A key is a sequence of big-endian words. Its bytes are signed, so a byte of 0x80 and above sets
// all bits above its own place in the word. What is left at the end is filled with 0x5A. Each word
// is added to 37 times the hash so far. Words are thought of in pairs, the first of which waits for
// the second; a first word of 0 does not wait and leaves no trace, which is all that the pairs
// amount to.
#ifndef COMN_INFRA_LMHASH_H
#define COMN_INFRA_LMHASH_H

#include <array>
#include <cstdint>
#include <cstring>

#include "lmpriv.h"

namespace comn::list {

constexpr CS_UINT hash_multiplier = 37;
constexpr CS_UINT hash_filler = 0x5A5A5A5A;
constexpr CS_UINT sign_bits = 0x80808080;

// The lowest sign among the bytes decides: every bit above it is set.
constexpr CS_UINT extend_signs(CS_UINT word) noexcept {
  const CS_UINT signs = word & sign_bits;
  return word | (0U - (signs & (0U - signs)));
}
static_assert(extend_signs(0x00800000) == 0xFF800000 && extend_signs(0x61628380) == 0xFFFFFF80);

inline CS_UINT load_word(const CS_CHAR *key) noexcept {
  CS_UINT word;
  std::memcpy(&word, key, sizeof word);
  return __builtin_bswap32(word);
}

// The last 1 to 3 bytes from the high byte down.
inline CS_UINT load_tail(const CS_CHAR *tail, size_t count, bool has_word_before) noexcept {
  const auto bits = static_cast<unsigned>(8 * count);
  CS_UINT word;
  if (has_word_before) {
    word = load_word(tail + count - sizeof word) << (32 - bits);
  } else {
    unsigned char bytes[sizeof word] = {};
    std::memcpy(bytes, tail, count);
    std::memcpy(&word, bytes, sizeof word);
    word = __builtin_bswap32(word);
  }
  return word | hash_filler >> bits;
}

// Word for word, for any key.
inline CS_UINT hash_in_steps(const CS_CHAR *key, size_t size) noexcept {
  CS_UINT hash = 0;
  bool is_waiting = false;
  const CS_CHAR *at = key;
  for (size_t words = size / sizeof(CS_UINT); words > 0; --words, at += sizeof(CS_UINT)) {
    const CS_UINT word = extend_signs(load_word(at));
    if (word == 0 && !is_waiting) [[unlikely]]
      continue;
    hash = hash * hash_multiplier + word;
    is_waiting = !is_waiting;
  }
  const size_t rest = size % sizeof(CS_UINT);
  return rest == 0 ? hash : hash * hash_multiplier + extend_signs(load_tail(at, rest, at != key));
}

// Most keys are of 8 to 24 bytes. What can be known of one from its size alone, so that neither its
// hash nor its comparison branches on it: no predictor knows the size of the next key.
constexpr size_t medium_least = 8;
constexpr size_t medium_most = 24;
struct alignas(32) MediumKey {
  // Up to four words in front of the last two: what each is worth in the hash. One that the key has
  // not is worth nothing.
  CS_UINT weight[4] = {};
  CS_UINT filler = 0;       // of the last word
  std::uint8_t missing = 0; // its bits
  std::uint8_t middle = 0;  // where 8 bytes begin behind the first 8, or as far behind as may be
};
constexpr auto medium_keys = [] {
  std::array<MediumKey, medium_most - medium_least + 1> keys{};
  for (size_t size = medium_least; size <= medium_most; ++size) {
    MediumKey &key = keys[size - medium_least];
    const size_t words = (size + 3) / 4;
    for (size_t i = 0; i + 2 < words; ++i) {
      key.weight[i] = 1;
      for (size_t behind = i + 1; behind < words; ++behind)
        key.weight[i] *= hash_multiplier;
    }
    key.missing = static_cast<std::uint8_t>((words * 4 - size) * 8);
    key.filler = size % 4 != 0 ? hash_filler >> (32 - key.missing) : 0;
    key.middle = static_cast<std::uint8_t>(size < 16 ? size - 8 : 8);
  }
  return keys;
}();
static_assert(medium_keys[0].weight[0] == 0 && medium_keys[0].filler == 0);
static_assert(medium_keys[1].weight[0] == 37 * 37 && medium_keys[1].weight[1] == 0 &&
              medium_keys[1].filler == 0x5A5A5A && medium_keys[1].missing == 24);
static_assert(medium_keys[16].weight[0] == 37 * 37 * 37 * 37 * 37 &&
              medium_keys[16].weight[3] == 37 * 37 && medium_keys[16].middle == 8);

constexpr bool is_medium(size_t size) noexcept {
  return size - medium_least <= medium_most - medium_least;
}

// Without a sign and without a word of 0 the hash is a polynomial in 37 whose coefficients are the
// words. All of them are loaded from inside the key, and the weights pick those that count. False
// if a byte has its sign set or a word is 0 that might have to be passed over.
inline bool hash_as_polynomial(const CS_CHAR *key, size_t size, CS_UINT &hash) noexcept {
  const MediumKey &medium = medium_keys[size - medium_least];
  CS_UINT sum = 0;
  CS_UINT signs = 0;
  CS_UINT zeros = 0; // its highest bit: one of the words that matter is 0
  const auto add = [&](CS_UINT word, CS_UINT weight, bool may_wait) {
    sum += word * weight;
    signs |= word;
    zeros |= may_wait ? word - 1 : 0;
  };
  add(load_word(key), medium.weight[0], true);
  add(load_word(key + 4), medium.weight[1], false);
  add(load_word(key + medium.middle), medium.weight[2], true);
  add(load_word(key + medium.middle + 4), medium.weight[3], false);
  // The last 4 + 1 to 4 + 4 bytes as two words, the second of them filled up.
  std::uint64_t last;
  std::memcpy(&last, key + size - 8, sizeof last);
  last = __builtin_bswap64(last) << medium.missing;
  add(static_cast<CS_UINT>(last >> 32), hash_multiplier, true);
  add(static_cast<CS_UINT>(last) | medium.filler, 1, true);
  hash = sum;
  return ((signs & sign_bits) | zeros >> 31) == 0;
}

inline CS_UINT hash_of(const CS_CHAR *key, size_t size) noexcept {
  CS_UINT hash;
  return is_medium(size) && hash_as_polynomial(key, size, hash) ? hash : hash_in_steps(key, size);
}

} // namespace comn::list

#endif
