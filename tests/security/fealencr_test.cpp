// The block cipher: its functions one by one, its key schedule, blocks both ways.
#include <bit>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "cipher.h"
#include "guarded_buffer.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "fealencr.cpp";
constexpr unsigned random_seed = 71;
constexpr int random_blocks = 100000;

std::string round_of(Half a, std::array<OCTET, 2> b) {
  GuardedBuffer out(4);
  com__charbuf_alloc(a.data(), b.data(), out.data());
  return to_hex(Bytes(out.data(), out.data() + 4));
}

std::string key_function_of(Half a, Half b) {
  GuardedBuffer out(4);
  com__charbuf_clean(a.data(), b.data(), out.data());
  return to_hex(Bytes(out.data(), out.data() + 4));
}

Subkeys schedule_of(Block key) {
  GuardedBuffer out(32);
  com__charbuf_activate(key.data(), out.data());
  return out.value<Subkeys>();
}

Block encipher(Block input, Subkeys subkeys) {
  GuardedBuffer out(8);
  com__charbuf_initialize(input.data(), out.data(), subkeys.data());
  return out.value<Block>();
}

Block decipher(Block input, Subkeys subkeys) {
  GuardedBuffer out(8);
  com__charbuf_uninitialize(input.data(), out.data(), subkeys.data());
  return out.value<Block>();
}

constexpr Block counting_key = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr Block falling_block = {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};

// All zero: o1 = S1(0, 0) = 1 << 2 = 04, o2 = S0(0, 04) = 10, o0 = S0(0, 04) = 10,
// o3 = S1(0, 10) = 11 << 2 = 44.
TEST(FealencrTest, RoundFunction) {
  EXPECT_EQ(round_of({0, 0, 0, 0}, {0, 0}), "10041044");
  EXPECT_EQ(round_of({0xFF, 0xFF, 0xFF, 0xFF}, {0xFF, 0xFF}), "fbfffbef");
  EXPECT_EQ(round_of({0x01, 0x23, 0x45, 0x67}, {0x89, 0xAB}), "57d47577");
}

TEST(FealencrTest, KeyFunction) {
  EXPECT_EQ(key_function_of({0, 0, 0, 0}, {0, 0, 0, 0}), "10041044");
  EXPECT_EQ(key_function_of({0x01, 0x23, 0x45, 0x67}, {0x89, 0xAB, 0xCD, 0xEF}), "df3bca36");
}

// Every pair of bytes goes through the sums with and without carry and through the rotation.
TEST(FealencrTest, EveryPairOfBytes) {
  for (int a = 0; a < 256; ++a)
    for (int b = 0; b < 256; ++b) {
      const auto x = static_cast<OCTET>(a), y = static_cast<OCTET>(b);
      ASSERT_EQ(round_of({x, 0, 0, y}, {y, x}),
                to_hex(LongHandCipher::round_function({x, 0, 0, y}, y, x)))
          << a << ", " << b;
      ASSERT_EQ(key_function_of({x, 0, 0, y}, {y, x, x, y}),
                to_hex(LongHandCipher::key_function({x, 0, 0, y}, {y, x, x, y})))
          << a << ", " << b;
    }
}

TEST(FealencrTest, RoundAndKeyFunctionAgainstReference) {
  Random random(random_seed);
  for (int i = 0; i < random_blocks; ++i) {
    const auto a = random_bytes<4>(random), b = random_bytes<4>(random);
    ASSERT_EQ(round_of(a, {b[0], b[1]}), to_hex(LongHandCipher::round_function(a, b[0], b[1])));
    ASSERT_EQ(key_function_of(a, b), to_hex(LongHandCipher::key_function(a, b)));
  }
}

// The outputs may be the inputs.
TEST(FealencrTest, InPlace) {
  Half a = {0x01, 0x23, 0x45, 0x67};
  std::array<OCTET, 2> b = {0x89, 0xAB};
  com__charbuf_alloc(a.data(), b.data(), a.data());
  EXPECT_EQ(to_hex(a), "57d47577");

  Subkeys subkeys = schedule_of(counting_key);
  Block block = falling_block;
  com__charbuf_initialize(block.data(), block.data(), subkeys.data());
  EXPECT_EQ(to_hex(block), "18749ec8121913c2");
  com__charbuf_uninitialize(block.data(), block.data(), subkeys.data());
  EXPECT_EQ(block, falling_block);
}

// Deliberate: each round feeds the key function with B alone. With the published schedule the words
// from the second on would differ.
TEST(FealencrTest, KeySchedule) {
  EXPECT_EQ(to_hex(schedule_of({})),
            "1004104451440119e56802817e4cf02e0f2e97ec1410702f154647553a3d6bb9");
  EXPECT_EQ(to_hex(schedule_of(counting_key)),
            "df3bca364f8077c4d3627bdb28c0554d42e82329590df7b039fb006ba24fefd4");
}

TEST(FealencrTest, KeyScheduleIsNotThePublishedOne) {
  Half a = {0x01, 0x23, 0x45, 0x67}, b = {0x89, 0xAB, 0xCD, 0xEF}, d = {};
  Bytes published;
  for (int round = 0; round < 8; ++round) {
    Half operand = b;
    for (size_t i = 0; i < 4; ++i)
      operand[i] ^= d[i];
    d = a;
    const Half next = LongHandCipher::key_function(a, operand);
    a = b;
    b = next;
    published.insert(published.end(), next.begin(), next.end());
  }
  const Subkeys ours = schedule_of(counting_key);
  // The operand of the first round is zero in both.
  EXPECT_TRUE(std::equal(ours.begin(), ours.begin() + 4, published.begin()));
  for (size_t word = 4; word < 32; word += 4)
    EXPECT_NE(to_hex(Bytes(&ours[word], &ours[word] + 4)),
              to_hex(Bytes(&published[word], &published[word] + 4)))
        << word;
}

TEST(FealencrTest, Blocks) {
  EXPECT_EQ(to_hex(encipher({}, schedule_of({}))), "1e2c58b7e300ddb4");
  EXPECT_EQ(to_hex(encipher({}, schedule_of(counting_key))), "7f5bd642206cb280");
  EXPECT_EQ(to_hex(encipher(falling_block, schedule_of(counting_key))), "18749ec8121913c2");
  EXPECT_EQ(decipher({0x1E, 0x2C, 0x58, 0xB7, 0xE3, 0x00, 0xDD, 0xB4}, schedule_of({})), Block{});
  EXPECT_EQ(decipher({0x18, 0x74, 0x9E, 0xC8, 0x12, 0x19, 0x13, 0xC2}, schedule_of(counting_key)),
            falling_block);
}

TEST(FealencrTest, RandomBlocksAgainstReferenceAndInverse) {
  Random random(random_seed + 1);
  for (int i = 0; i < random_blocks; ++i) {
    const auto key = random_bytes<8>(random), block = random_bytes<8>(random);
    const Subkeys subkeys = LongHandCipher::schedule(key);
    ASSERT_EQ(schedule_of(key), subkeys) << to_hex(key);
    const Block enciphered = encipher(block, subkeys);
    ASSERT_EQ(enciphered, LongHandCipher::encipher(block, subkeys)) << to_hex(key);
    ASSERT_EQ(decipher(enciphered, subkeys), block) << to_hex(key);
    ASSERT_EQ(encipher(decipher(block, subkeys), subkeys), block) << to_hex(key);
    ASSERT_EQ(decipher(block, subkeys), LongHandCipher::decipher(block, subkeys)) << to_hex(key);
  }
}

// Each bit of the block and of the key changes about half of the result: over the whole run every
// output bit flips in 49 to 51 of 100 cases.
template <class Flip>
void expect_avalanche(unsigned seed_of_run, Flip enciphered_with_flip) {
  Random random(seed_of_run);
  long flips[64] = {};
  for (int i = 0; i < random_blocks; ++i) {
    const auto key = random_bytes<8>(random), block = random_bytes<8>(random);
    const unsigned bit = static_cast<unsigned>(i) % 64;
    Block mask{};
    mask[bit / 8] = static_cast<OCTET>(1 << bit % 8);
    const Block before = encipher(block, schedule_of(key));
    const Block after = enciphered_with_flip(key, block, mask);
    int changed = 0;
    for (size_t out = 0; out < 64; ++out) {
      const bool flipped = ((before[out / 8] ^ after[out / 8]) >> out % 8 & 1) != 0;
      flips[out] += flipped;
      changed += flipped;
    }
    ASSERT_NE(changed, 0) << to_hex(key);
  }
  for (const long count : flips) {
    EXPECT_GT(count, random_blocks * 49 / 100);
    EXPECT_LT(count, random_blocks * 51 / 100);
  }
}

Block flipped(Block bytes, const Block &mask) {
  for (size_t i = 0; i < bytes.size(); ++i)
    bytes[i] ^= mask[i];
  return bytes;
}

TEST(FealencrTest, AvalancheOfTheBlock) {
  expect_avalanche(random_seed + 2, [](Block key, Block block, Block mask) {
    return encipher(flipped(block, mask), schedule_of(key));
  });
}

TEST(FealencrTest, AvalancheOfTheKey) {
  expect_avalanche(random_seed + 3, [](Block key, Block block, Block mask) {
    return encipher(block, schedule_of(flipped(key, mask)));
  });
}

TEST(FealencrTest, Null4) {
  EXPECT_EQ(to_hex(Com__Null4), "00000000");
}

// A null pointer is reported, and nothing is written.
template <class Call>
void expect_null_check(Call call) {
  const CheckReport report = catch_check(call);
  EXPECT_TRUE(is_null_pointer_report(report, unit)) << report.text;
}

TEST(FealencrTest, NullPointers) {
  OCTET in[32] = {}, more[32] = {};
  GuardedBuffer out(32);
  using ThreePointers = void (*)(OCTET *, OCTET *, OCTET *) noexcept;
  for (const ThreePointers function : {com__charbuf_alloc, com__charbuf_clean}) {
    expect_null_check([&] { function(nullptr, more, out.data()); });
    expect_null_check([&] { function(in, nullptr, out.data()); });
    expect_null_check([&] { function(in, more, nullptr); });
  }
  for (const ThreePointers function : {com__charbuf_initialize, com__charbuf_uninitialize}) {
    expect_null_check([&] { function(nullptr, out.data(), more); });
    expect_null_check([&] { function(in, nullptr, more); });
    expect_null_check([&] { function(in, out.data(), nullptr); });
  }
  expect_null_check([&] { com__charbuf_activate(nullptr, out.data()); });
  expect_null_check([&] { com__charbuf_activate(in, nullptr); });
  EXPECT_TRUE(out.is_untouched());
}

} // namespace
