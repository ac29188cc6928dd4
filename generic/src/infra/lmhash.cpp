// The hash of a key.
//
// A key is a sequence of big-endian words. Its bytes are signed, so a byte of 0x80 and above sets
// all bits above its own place in the word. Words are taken in pairs: one waits until the next one
// comes, and a word of 0 does not wait. What is left at the end is filled with 0x5A.
#include <cstdint>
#include <cstring>

#include "checks.h"
#include "lmpriv.h"

namespace {

constexpr CS_UINT multiplier = 37;
constexpr CS_UINT filler = 0x5A5A5A5A;

// The lowest sign among the bytes decides: every bit above it is set.
constexpr CS_UINT extend_signs(CS_UINT word) noexcept {
  const CS_UINT signs = word & 0x80808080U;
  return word | (0U - (signs & (0U - signs)));
}
static_assert(extend_signs(0x00800000) == 0xFF800000 && extend_signs(0x61628380) == 0xFFFFFF80);

CS_UINT load_word(const CS_CHAR *key) noexcept {
  CS_UINT word;
  std::memcpy(&word, key, sizeof word);
  return __builtin_bswap32(word);
}

// The last 1 to 3 bytes from the high byte down.
CS_UINT load_tail(const CS_CHAR *tail, size_t count, bool has_word_before) noexcept {
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
  return word | filler >> bits;
}

CS_UINT hash_of(const CS_CHAR *key, size_t size) noexcept {
  CS_UINT hash = 0;
  CS_UINT pending = 0;
  const CS_CHAR *at = key;
  for (size_t words = size / sizeof(CS_UINT); words > 0; --words, at += sizeof(CS_UINT)) {
    const CS_UINT word = extend_signs(load_word(at));
    if (pending == 0) {
      pending = word;
    } else {
      hash = (hash != 0 ? hash * multiplier + pending : pending) * multiplier + word;
      pending = 0;
    }
  }
  const size_t rest = size % sizeof(CS_UINT);
  if (rest == 0)
    return pending != 0 ? hash * multiplier + pending : hash;
  if (pending != 0)
    hash = hash != 0 ? hash * multiplier + pending : pending;
  return hash * multiplier + extend_signs(load_tail(at, rest, at != key));
}

} // namespace

CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size, CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  COMN_CHECK(key_size >= 0, COMN_TRACE(CS_FAIL));
  if (key_size > 0)
    COMN_CHECK_PTR(key, COMN_TRACE(CS_FAIL));
  *output = hash_of(key, static_cast<size_t>(key_size));
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range,
                               CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  if (range <= 0) {
    *output = 0;
    return COMN_TRACE(CS_FAIL);
  }
  CS_UINT hash = 0;
  if (lm___api_key_to_uint(key, key_size, &hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash % static_cast<CS_UINT>(range);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range,
                                CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  if (range <= 0) {
    *output = 0;
    return COMN_TRACE(CS_FAIL);
  }
  COMN_CHECK(range != 1, COMN_TRACE(CS_FAIL));
  CS_UINT hash = 0;
  if (lm___api_key_to_uint(key, key_size, &hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash * 7 % (static_cast<CS_UINT>(range) - 1) + 1;
  return COMN_TRACE(CS_SUCCEED);
}
