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

// Without a sign and without a word of 0 the hash is a polynomial in 37 whose coefficients are the
// words. A key of 8 to 24 bytes has up to four words in front of the last two: by their number,
// this is what each of them is worth. One that the key has not is worth nothing.
constexpr size_t polynomial_least = 8;
constexpr size_t polynomial_most = 24;
struct Weights {
  CS_UINT front[4] = {};
  CS_UINT before = hash_multiplier * hash_multiplier; // of the hash of what comes before
};
constexpr auto polynomial_weights = [] {
  std::array<Weights, 5> rows{};
  for (size_t words = 1; words < rows.size(); ++words) {
    for (size_t i = 0; i < words; ++i)
      rows[words].front[i] = rows[words - 1 - i].before;
    rows[words].before = rows[words - 1].before * hash_multiplier;
  }
  return rows;
}();
static_assert(polynomial_weights[1].front[0] == 37 * 37 && polynomial_weights[1].front[1] == 0);
static_assert(polynomial_weights[4].front[0] == 37 * 37 * 37 * 37 * 37 &&
              polynomial_weights[4].before == 37U * 37 * 37 * 37 * 37 * 37);

// The polynomial without a branch on the size, which no predictor knows: all loads are made, inside
// the key, and the weights pick the words that count. False if a byte has its sign set or a word is
// 0 that might have to be passed over, and for keys that are too short.
inline bool hash_as_polynomial(const CS_CHAR *key, size_t size, CS_UINT &hash) noexcept {
  if (size < polynomial_least)
    return false;
  CS_UINT seen = 0;
  CS_UINT before = 0;
  for (; size > polynomial_most; size -= 8, key += 8) {
    const CS_UINT first = load_word(key);
    const CS_UINT second = load_word(key + 4);
    if (first == 0) [[unlikely]]
      return false;
    seen |= first | second;
    before = (before * hash_multiplier + first) * hash_multiplier + second;
  }
  const Weights &weights = polynomial_weights[(size + 3) / 4 - 2];
  CS_UINT sum = before * weights.before;
  const auto add = [&seen, &sum](CS_UINT word, CS_UINT weight) {
    seen |= word;
    sum += word * weight;
    return word != 0;
  };
  const CS_CHAR *const middle = key + (size < 16 ? size - 8 : 8);
  if (!add(load_word(key), weights.front[0])) [[unlikely]]
    return false;
  add(load_word(key + 4), weights.front[1]);
  if (!add(load_word(middle), weights.front[2])) [[unlikely]]
    return false;
  add(load_word(middle + 4), weights.front[3]);
  // The last 4 + 1 to 4 + 4 bytes as two words, the second of them filled up.
  const auto missing = static_cast<unsigned>(-size % 4 * 8);
  std::uint64_t last;
  std::memcpy(&last, key + size - 8, sizeof last);
  last = __builtin_bswap64(last) << missing;
  if (!add(static_cast<CS_UINT>(last >> 32), hash_multiplier)) [[unlikely]]
    return false;
  if (!add(static_cast<CS_UINT>(last) | (hash_filler & ~(~0U << missing)), 1)) [[unlikely]]
    return false;
  hash = sum;
  return (seen & sign_bits) == 0;
}

inline CS_UINT hash_of(const CS_CHAR *key, size_t size) noexcept {
  CS_UINT hash;
  return hash_as_polynomial(key, size, hash) ? hash : hash_in_steps(key, size);
}

} // namespace comn::list

#endif
