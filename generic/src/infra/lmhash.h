// The hash of a key.
//
// A key is a sequence of big-endian words. Its bytes are signed, so a byte of 0x80 and above sets
// all bits above its own place in the word. What is left at the end is filled with 0x5A. Each word
// is added to 37 times the hash so far. Words are thought of in pairs, the first of which waits for
// the second; a first word of 0 does not wait and leaves no trace, which is all that the pairs
// amount to.
#ifndef COMN_INFRA_LMHASH_H
#define COMN_INFRA_LMHASH_H

#include <cstdint>
#include <cstring>

#include "lmpriv.h"

namespace comn::list {

constexpr CS_UINT hash_multiplier = 37;
constexpr CS_UINT hash_filler = 0x5A5A5A5A;

// The lowest sign among the bytes decides: every bit above it is set.
constexpr CS_UINT extend_signs(CS_UINT word) noexcept {
  const CS_UINT signs = word & 0x80808080U;
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

inline CS_UINT hash_of(const CS_CHAR *key, size_t size) noexcept {
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

} // namespace comn::list

#endif
