// The hash of a key.
//
// A key is a sequence of words in pairs. Each word is added to 37 times the hash so far; but a word of
// 0 cannot begin a pair: it is passed over.
#include <cstring>

#include "checks.h"
#include "lmpriv.h"

namespace {

constexpr CS_UINT multiplier = 37;
constexpr CS_UINT filler = 0x5A5A5A5A;

// The bytes of a word are signed: the lowest one with its sign set sets all bits above it.
constexpr CS_UINT extend_signs(CS_UINT word) noexcept {
  const CS_UINT signs = word & 0x80808080;
  const CS_UINT lowest = signs & (0U - signs);
  return word | (0U - lowest);
}
static_assert(extend_signs(0x00800000) == 0xFF800000 && extend_signs(0x61628380) == 0xFFFFFF80 &&
              extend_signs(0x7F7F7F7F) == 0x7F7F7F7F);

CS_UINT load_word(const CS_CHAR *bytes) noexcept {
  CS_UINT word;
  std::memcpy(&word, bytes, sizeof word);
  return __builtin_bswap32(word);
}

// The last 1 to 3 bytes of a key, filled up. They are loaded with the bytes in front of them and
// shifted into place: a loop would end where no predictor knows.
CS_UINT last_word(const CS_CHAR *key, size_t size) noexcept {
  const size_t count = size % sizeof(CS_UINT);
  CS_CHAR bytes[sizeof(CS_UINT)] = {};
  const CS_CHAR *end = key + size;
  if (size < sizeof bytes) {
    std::memcpy(bytes + sizeof bytes - size, key, size);
    end = bytes + sizeof bytes;
  }
  return extend_signs(load_word(end - sizeof bytes) << (32 - 8 * count) | filler >> 8 * count);
}

// Checks a key and hashes it.
CS_RETCODE hash_key(const CS_CHAR *key, CS_INT key_size, CS_UINT &result) noexcept {
  COMN_CHECK(key_size >= 0, CS_FAIL);
  if (key_size > 0)
    COMN_CHECK_PTR(key, CS_FAIL);
  const auto size = static_cast<size_t>(key_size);
  CS_UINT hash = 0;
  bool begins_pair = true;
  for (size_t at = 0; at + sizeof(CS_UINT) <= size; at += sizeof(CS_UINT)) {
    const CS_UINT word = extend_signs(load_word(key + at));
    if (word == 0 && begins_pair) [[unlikely]]
      continue;
    hash = hash * multiplier + word;
    begins_pair = !begins_pair;
  }
  if (size % sizeof(CS_UINT) != 0)
    hash = hash * multiplier + last_word(key, size);
  result = hash;
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size, CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(hash_key(key, key_size, *output));
}

CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range,
                               CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  *output = 0;
  CS_UINT hash = 0;
  if (range <= 0 || hash_key(key, key_size, hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash % static_cast<CS_UINT>(range);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range,
                                CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  *output = 0;
  COMN_CHECK(range != 1, COMN_TRACE(CS_FAIL));
  CS_UINT hash = 0;
  if (range <= 0 || hash_key(key, key_size, hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash * 7 % (static_cast<CS_UINT>(range) - 1) + 1;
  return COMN_TRACE(CS_SUCCEED);
}
