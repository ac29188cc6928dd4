// The hash of a key, against the rule and in known values.
#include "list_fixture.h"

namespace {

using namespace zrvtest;

CS_UINT hash_of(const std::string &key) {
  CS_UINT hash = 0xBAD;
  EXPECT_EQ(lm___api_key_to_uint(chars(key.data()), static_cast<CS_INT>(key.size()), &hash),
            CS_SUCCEED);
  return hash;
}

// The rule once more, byte by byte.
CS_UINT slow_hash(const std::string &key) {
  const auto word_at = [&](size_t at, size_t count) {
    CS_UINT word = 0;
    for (size_t i = 0; i < 4; ++i) {
      const int byte = i < count ? static_cast<signed char>(key[at + i]) : 0x5A;
      word |= static_cast<CS_UINT>(byte) << (24 - 8 * i);
    }
    return word;
  };
  CS_UINT h = 0, pending = 0;
  size_t at = 0;
  for (; at + 4 <= key.size(); at += 4) {
    const CS_UINT w = word_at(at, 4);
    if (pending == 0) {
      pending = w;
      continue;
    }
    const CS_UINT t = h != 0 ? h * 37 + pending : pending;
    h = t * 37 + w;
    pending = 0;
  }
  if (at == key.size())
    return pending != 0 ? h * 37 + pending : h;
  if (pending != 0)
    h = h != 0 ? h * 37 + pending : pending;
  return h * 37 + word_at(at, key.size() - at);
}

TEST(KeyHash, KnownValues) {
  EXPECT_EQ(hash_of(""), 0U);
  EXPECT_EQ(hash_of("abcd"), 0x61626364U);
  EXPECT_EQ(hash_of("abcde"), 0x61626364U * 37 + 0x655A5A5AU);
  EXPECT_EQ(hash_of("abcdefgh"), 0x61626364U * 37 + 0x65666768U);
  EXPECT_EQ(hash_of("abcdefghi"), (0x61626364U * 37 + 0x65666768U) * 37 + 0x695A5A5AU);
  EXPECT_EQ(hash_of("a"), 0x615A5A5AU);
  EXPECT_EQ(hash_of("ab"), 0x61625A5AU);
  EXPECT_EQ(hash_of("abc"), 0x6162635AU);
  // A byte of 0x80 and above sets every bit above its place.
  EXPECT_EQ(hash_of("\x80"), 0x805A5A5AU);
  EXPECT_EQ(hash_of("a\x80"), 0xFF805A5AU);
  EXPECT_EQ(hash_of("ab\xE9"), 0xFFFFE95AU);
  EXPECT_EQ(hash_of("abc\xFF"), 0xFFFFFFFFU);
  EXPECT_EQ(hash_of("\x80xyz"), 0x8078797AU);
  // A word of 0 does not wait for another one.
  EXPECT_EQ(hash_of(std::string(4, '\0')), 0U);
  EXPECT_EQ(hash_of(std::string("\0\0\0\0abcd", 8)), 0x61626364U);
  EXPECT_EQ(hash_of(std::string("abcd\0\0\0\0", 8)), 0x61626364U * 37);
}

TEST(KeyHash, AgainstTheRule) {
  unsigned seed = 12345;
  const auto random = [&] { return (seed = seed * 1103515245 + 12345) >> 16; };
  for (int round = 0; round < 200'000; ++round) {
    std::string key(random() % 30, '\0');
    const unsigned kind = random() % 4;
    for (char &c : key)
      c = static_cast<char>(kind == 0   ? random()
                            : kind == 1 ? random() % 2 * 0x80
                            : kind == 2 ? 'a' + random() % 26
                                        : random() % 3 - 1);
    ASSERT_EQ(hash_of(key), slow_hash(key));
  }
  for (unsigned pair = 0; pair < 65536; ++pair) {
    const std::string key{static_cast<char>(pair), static_cast<char>(pair >> 8)};
    ASSERT_EQ(hash_of(key), slow_hash(key));
    ASSERT_EQ(hash_of("wxyz" + key), slow_hash("wxyz" + key));
  }
}

// One byte or one word that is not like the others, at every place of keys of every size.
TEST(KeyHash, EveryPlaceOfEverySize) {
  for (size_t size = 0; size <= 60; ++size) {
    std::string plain(size, '\0');
    for (size_t i = 0; i < size; ++i)
      plain[i] = static_cast<char>('a' + i % 26);
    ASSERT_EQ(hash_of(plain), slow_hash(plain)) << size;
    for (size_t at = 0; at < size; ++at) {
      for (const char odd : {'\0', '\x01', '\x7F', '\x80', '\xFF'}) {
        std::string key = plain;
        key[at] = odd;
        ASSERT_EQ(hash_of(key), slow_hash(key)) << size << " bytes, at " << at;
      }
      // A word of 0 is passed over where it would be the first of a pair, and only there.
      for (size_t words = 1; words <= 3; ++words) {
        std::string key = plain;
        for (size_t i = at; i < at + 4 * words && i < size; ++i)
          key[i] = '\0';
        ASSERT_EQ(hash_of(key), slow_hash(key)) << size << " bytes, at " << at;
      }
    }
  }
}

// Reads not one byte outside the key.
TEST(KeyHash, KeysAtTheirEdges) {
  for (size_t size = 0; size < 60; ++size) {
    std::vector<char> heap(size, 'k');
    CS_UINT hash = 0;
    EXPECT_EQ(lm___api_key_to_uint(heap.data(), static_cast<CS_INT>(size), &hash), CS_SUCCEED);
    EXPECT_EQ(hash, slow_hash(std::string(size, 'k')));
  }
}

TEST(KeyHash, Ranges) {
  CS_UINT hash = 9;
  for (const CS_INT range : {0, -1}) {
    hash = 9;
    EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, range, &hash), CS_FAIL);
    EXPECT_EQ(hash, 0U);
    hash = 9;
    EXPECT_EQ(lm__api_key_to_hash2(chars("abcd"), 4, range, &hash), CS_FAIL);
    EXPECT_EQ(hash, 0U);
  }
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL,
                            lm__api_key_to_hash(chars("abcd"), 4, 10, nullptr));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL,
                            lm__api_key_to_hash2(chars("abcd"), 4, 10, nullptr));
  EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, 10, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0x61626364U % 10);
  EXPECT_EQ(lm__api_key_to_hash2(chars("abcd"), 4, 10, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, static_cast<CS_UINT>(0x61626364U * 7ULL) % 9 + 1);
  EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, 1, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0U);
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL, lm__api_key_to_hash2(chars("abcd"), 4, 1, &hash));
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(chars("abcd"), -1, &hash));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(nullptr, 1, &hash));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(chars("a"), 1, nullptr));
  EXPECT_EQ(lm___api_key_to_uint(nullptr, 0, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0U);
}

} // namespace
