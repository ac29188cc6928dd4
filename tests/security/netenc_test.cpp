// The working key table, salted blocks, string blocks, and the response to a challenge.
#include <algorithm>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "cipher.h"
#include "guarded_buffer.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "netenc.cpp";
constexpr unsigned random_seed = 72;

// ---- the tables ----

TEST(NetencTest, StoredTable) {
  EXPECT_EQ(sizeof Com__Enkeys, 8192U);
  EXPECT_EQ(to_hex(Com__Enkeys[0]),
            "3588068352d41dc54ba97d5169a292744456c3f53263e073c7c913e63ba5a3cf");
}

Bytes working_row(CS_INT index) {
  const OCTET *const row = comb_get_Netkey(index);
  return Bytes(row, row + 33);
}

// The spare byte of each row stays as it was before the build: zero.
TEST(NetencTest, WorkingTable) {
  EXPECT_EQ(sizeof Com__Netkey, 8448U);
  com_init_text_mem();
  EXPECT_EQ(to_hex(working_row(0)),
            "de31af2cfb7dc66ef45226fa124b3b1dedff6c9edb0c891c7072bc8fe44e4c7800");
  EXPECT_EQ(to_hex(working_row(1)),
            "d28d618891e0c632aceafa882331a6dad7b8c89acc4584adfe397583e63dcb4100");
  EXPECT_EQ(to_hex(working_row(2)),
            "1ff8d237b68832695c1c304b633e5e8a8a9675c5bf6924ae0315a172030d1cd500");
  EXPECT_EQ(to_hex(working_row(255)),
            "d7e0fff43657619372a3e18c66a21e0a21d1b3b424ff7250c2906a8352b5a26a00");
  for (CS_INT row = 0; row < 256; ++row) {
    const Bytes ours = working_row(row);
    const auto &theirs = reference().row(static_cast<size_t>(row));
    EXPECT_TRUE(std::equal(theirs.begin(), theirs.end(), ours.begin())) << row;
    EXPECT_EQ(ours[32], 0) << row;
  }
}

TEST(NetencTest, RowAddresses) {
  EXPECT_EQ(comb_get_Netkey(0), Com__Netkey[0]);
  EXPECT_EQ(comb_get_Netkey(1), Com__Netkey[0] + 33);
  EXPECT_EQ(comb_get_Netkey(255), Com__Netkey[0] + 255 * 33);
}

// Deliberate: the index is not checked, and the address is whatever comes out.
TEST(NetencTest, RowAddressesOutOfRange) {
  const auto table = reinterpret_cast<uintptr_t>(Com__Netkey);
  for (const CS_INT index : {256, -1, 2147483647, -2147483647 - 1})
    EXPECT_EQ(reinterpret_cast<uintptr_t>(comb_get_Netkey(index)),
              table + static_cast<uintptr_t>(index) * 33);
}

// ---- salted blocks ----

Block salted(Block input, Salt salt, CS_INT j) {
  GuardedBuffer out(8);
  com__char_initialize(input.data(), salt.data(), out.data(), j);
  return out.value<Block>();
}

Block unsalted(Block input, Salt salt, CS_INT j) {
  GuardedBuffer out(8);
  com__char_uninitialize(input.data(), salt.data(), out.data(), j);
  return out.value<Block>();
}

// A block through the keys of the given rows, the first key's first.
Block through_rows(Block block, std::array<size_t, 9> rows, size_t j) {
  for (const size_t row : rows) {
    Block key;
    std::copy_n(reference().row(row).begin() + static_cast<ptrdiff_t>(8 * j), 8, key.begin());
    block = LongHandCipher::encipher(block, LongHandCipher::schedule(key));
  }
  return block;
}

// The rows are spelled out: the first is byte + 2, with 254 and 255 wrapping to 2 and 3; then
// (byte + k) * 3 modulo 254, plus 2.
TEST(NetencTest, RowsThatASaltSelects) {
  const Block block = {'r', 'o', 'w', 's', ' ', 'o', 'f', ' '};
  const struct {
    int byte;
    std::array<size_t, 9> rows;
  } cases[] = {
      {0, {2, 2, 5, 8, 11, 14, 17, 20, 23}},       {1, {3, 5, 8, 11, 14, 17, 20, 23, 26}},
      {84, {86, 254, 3, 6, 9, 12, 15, 18, 21}},    {85, {87, 3, 6, 9, 12, 15, 18, 21, 24}},
      {252, {254, 250, 253, 2, 5, 8, 11, 14, 17}}, {253, {255, 253, 2, 5, 8, 11, 14, 17, 20}},
      {254, {2, 2, 5, 8, 11, 14, 17, 20, 23}},     {255, {3, 5, 8, 11, 14, 17, 20, 23, 26}},
  };
  for (const auto &c : cases)
    for (CS_INT j = 0; j < 4; ++j)
      EXPECT_EQ(salted(block, salt_of(c.byte), j),
                through_rows(block, c.rows, static_cast<size_t>(j)))
          << c.byte << ", block " << j;
}

// 254 selects row 2 and 255 row 3, so they are twins of 0 and 1.
TEST(NetencTest, LastSaltBytesAreTwinsOfTheFirst) {
  const Block block = {1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(salted(block, salt_of(254), 0), salted(block, salt_of(0), 0));
  EXPECT_EQ(salted(block, salt_of(255), 0), salted(block, salt_of(1), 0));
  EXPECT_NE(salted(block, salt_of(253), 0), salted(block, salt_of(0), 0));
}

TEST(NetencTest, EveryByteAtEveryPlaceOfASalt) {
  Random random(random_seed);
  for (size_t place = 0; place < 8; ++place)
    for (int byte = 0; byte < 256; ++byte) {
      const Block block = random_bytes<8>(random);
      Salt salt = random_bytes<8>(random);
      salt[place] = static_cast<OCTET>(byte);
      const size_t j = static_cast<size_t>(byte) % 4;
      const Block enciphered = salted(block, salt, static_cast<CS_INT>(j));
      ASSERT_EQ(enciphered, reference().salted(block, salt, j)) << to_hex(salt);
      ASSERT_EQ(unsalted(enciphered, salt, static_cast<CS_INT>(j)), block) << to_hex(salt);
      ASSERT_EQ(unsalted(block, salt, static_cast<CS_INT>(j)), reference().unsalted(block, salt, j))
          << to_hex(salt);
    }
}

TEST(NetencTest, SaltedInverse) {
  Random random(random_seed + 1);
  for (int i = 0; i < 100000; ++i) {
    const auto block = random_bytes<8>(random), salt = random_bytes<8>(random);
    const CS_INT j = i % 4;
    const Block enciphered = salted(block, salt, j);
    ASSERT_NE(enciphered, block);
    ASSERT_EQ(unsalted(enciphered, salt, j), block) << to_hex(salt);
  }
}

TEST(NetencTest, SaltedInPlace) {
  Block block = {1, 2, 3, 4, 5, 6, 7, 8};
  Salt salt = {9, 8, 7, 6, 5, 4, 3, 2};
  com__char_initialize(block.data(), salt.data(), block.data(), 3);
  EXPECT_EQ(block, reference().salted({1, 2, 3, 4, 5, 6, 7, 8}, salt, 3));
  com__char_uninitialize(block.data(), salt.data(), block.data(), 3);
  EXPECT_EQ(block, (Block{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(NetencTest, SaltedChecks) {
  Block block{};
  Salt salt{};
  GuardedBuffer out(8);
  using Function = void (*)(OCTET *, OCTET *, OCTET *, CS_INT) noexcept;
  for (const Function function : {com__char_initialize, com__char_uninitialize}) {
    for (const int missing : {0, 1, 2}) {
      const CheckReport report = catch_check([&] {
        function(missing == 0 ? nullptr : block.data(), missing == 1 ? nullptr : salt.data(),
                 missing == 2 ? nullptr : out.data(), 0);
      });
      EXPECT_TRUE(is_null_pointer_report(report, unit)) << report.text;
    }
    for (const CS_INT j : {-1, 4, 2147483647, -2147483647 - 1}) {
      const CheckReport report =
          catch_check([&] { function(block.data(), salt.data(), out.data(), j); });
      EXPECT_TRUE(is_assertion_report(report, unit)) << report.text;
    }
  }
  EXPECT_TRUE(out.is_untouched());
}

// ---- the branch that no salt takes ----

TEST(NetencTest, LocalizationConvert) {
  OCTET input[8] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};
  GuardedBuffer out(8), back(8);
  com__localization_convert(input, out.data(), 0xF0);
  EXPECT_EQ(to_hex(out.value<Block>()), "f1f3f7ffefcf8f0f");
  com__localization_reconvert(out.data(), back.data(), 0xF0);
  EXPECT_EQ(to_hex(back.value<Block>()), "0102040810204080");
  // In place, where each byte is still needed after its result.
  com__localization_convert(input, input, 0xF0);
  EXPECT_EQ(to_hex(input), "f1f3f7ffefcf8f0f");
  com__localization_reconvert(input, input, 0xF0);
  EXPECT_EQ(to_hex(input), "0102040810204080");
}

TEST(NetencTest, LocalizationChecks) {
  OCTET input[8] = {};
  using Function = void (*)(OCTET *, OCTET *, OCTET) noexcept;
  for (const Function function : {com__localization_convert, com__localization_reconvert}) {
    EXPECT_TRUE(is_null_pointer_report(catch_check([&] { function(nullptr, input, 1); }), unit));
    EXPECT_TRUE(is_null_pointer_report(catch_check([&] { function(input, nullptr, 1); }), unit));
  }
}

// ---- padding ----

TEST(NetencTest, PadRotates) {
  Salt salt = salt_of(30);
  Bytes text = to_bytes("hello");
  GuardedBuffer padded(32), back(5);
  com__pad(salt.data(), text.data(), 5, padded.data());
  EXPECT_EQ(padded.contents(), "llo" + std::string(27, '\\') + "he");
  com__trunc(salt.data(), padded.data(), 5, back.data());
  EXPECT_EQ(back.contents(), "hello");
}

TEST(NetencTest, PadAtEveryRotationAndLength) {
  Bytes text = to_bytes("0123456789abcdefghijklmnopqrst");
  for (int byte = 0; byte < 256; ++byte)
    for (size_t length = 0; length <= 30; ++length) {
      Salt salt = salt_of(byte);
      std::string expected(32, '\\');
      for (size_t i = 0; i < length; ++i)
        expected[(static_cast<size_t>(byte) + i) % 32] = static_cast<char>(text[i]);
      GuardedBuffer padded(32), back(length);
      com__pad(salt.data(), text.data(), static_cast<CS_INT>(length), padded.data());
      ASSERT_EQ(padded.contents(), expected) << byte << ", " << length;
      com__trunc(salt.data(), padded.data(), static_cast<CS_INT>(length), back.data());
      ASSERT_EQ(back.contents(),
                std::string(text.begin(), text.begin() + static_cast<int>(length)));
    }
}

// The keys are read when the table is built: what a row holds later changes no block. As the salt of
// a response a row is read as it stands.
TEST(NetencTest, TheTableIsReadWhenItIsBuilt) {
  Salt salt = {5, 6, 7, 8, 9, 10, 11, 12};
  Block block = {1, 2, 3, 4, 5, 6, 7, 8};
  Block challenge = {7};
  const std::string before = to_hex(salted(block, salt, 0));
  const auto answer = [&] {
    GuardedBuffer response(8);
    com__uninitialize_tds_text(challenge.data(), response.data());
    return to_hex(response.value<Block>());
  };
  const std::string answer_before = answer();
  for (int row = 2; row < 256; ++row)
    Com__Netkey[row][0] ^= 0xFF;
  EXPECT_EQ(to_hex(salted(block, salt, 0)), before);
  EXPECT_NE(answer(), answer_before);
  for (int row = 2; row < 256; ++row)
    Com__Netkey[row][0] ^= 0xFF;
  EXPECT_EQ(answer(), answer_before);
}

// ---- string blocks ----

TEST(NetencTest, StringBlockLengths) {
  Salt salt = {1, 2, 3, 4, 5, 6, 7, 8};
  Bytes text(40);
  Random random(random_seed + 2);
  randomize(random, text);
  for (CS_INT length = 0; length <= 40; ++length) {
    GuardedBuffer block(33);
    CS_INT block_length = -1;
    ASSERT_EQ(
        com__string_initialize(salt.data(), 8, text.data(), length, block.data(), &block_length),
        CS_SUCCEED);
    ASSERT_EQ(block_length, 33);
    const CS_INT kept = std::min<CS_INT>(length, 30);
    ASSERT_EQ(block.data()[32], kept);
    const Bytes expected =
        reference().string_block(salt, Bytes(text.begin(), text.begin() + length));
    ASSERT_EQ(to_hex(Bytes(block.data(), block.data() + 33)), to_hex(expected));

    GuardedBuffer back(static_cast<size_t>(kept));
    CS_INT back_length = -1;
    ASSERT_EQ(com__string_uninitialize(salt.data(), 8, block.data(), 33, back.data(), &back_length),
              CS_SUCCEED);
    ASSERT_EQ(back_length, kept);
    ASSERT_TRUE(std::equal(text.begin(), text.begin() + kept, back.data()));
  }
}

TEST(NetencTest, StringBlockRefusesWrongLengths) {
  Salt salt{};
  Bytes text = to_bytes("text");
  GuardedBuffer out(33);
  CS_INT length = 77;
  for (const CS_INT saltlen : {0, 7, 9, -1, 2147483647, -2147483647 - 1})
    EXPECT_EQ(com__string_initialize(salt.data(), saltlen, text.data(), 4, out.data(), &length),
              CS_FAIL);
  for (const CS_INT textlen : {-1, -2147483647 - 1})
    EXPECT_EQ(com__string_initialize(salt.data(), 8, text.data(), textlen, out.data(), &length),
              CS_FAIL);
  Bytes block(33, 0);
  for (const CS_INT saltlen : {0, 7, 9, -1})
    EXPECT_EQ(com__string_uninitialize(salt.data(), saltlen, block.data(), 33, out.data(), &length),
              CS_FAIL);
  for (const CS_INT blocklen : {0, 32, 34, -1})
    EXPECT_EQ(com__string_uninitialize(salt.data(), 8, block.data(), blocklen, out.data(), &length),
              CS_FAIL);
  EXPECT_EQ(length, 77);
  EXPECT_TRUE(out.is_untouched());
}

// A block that names more than 30 bytes is not believed: its text would have no room to go to.
TEST(NetencTest, StringBlockThatNamesALongerText) {
  Salt salt = {5, 6, 7, 8, 9, 10, 11, 12};
  for (int named = 0; named < 256; ++named) {
    Bytes block = reference().string_block(salt, to_bytes("0123456789abcdefghijklmnopqrst"));
    block[32] = static_cast<OCTET>(named);
    GuardedBuffer text(30);
    CS_INT length = 77;
    const CS_RETCODE status =
        com__string_uninitialize(salt.data(), 8, block.data(), 33, text.data(), &length);
    if (named > 30) {
      ASSERT_EQ(status, CS_FAIL) << named;
      ASSERT_EQ(length, 77) << named;
      ASSERT_TRUE(text.is_untouched()) << named;
    } else {
      ASSERT_EQ(status, CS_SUCCEED) << named;
      ASSERT_EQ(length, named);
      ASSERT_TRUE(text.is_untouched(static_cast<size_t>(named))) << named;
    }
  }
}

// ---- challenges ----

std::string response_to(Block challenge) {
  GuardedBuffer response(8);
  com__uninitialize_tds_text(challenge.data(), response.data());
  return to_hex(response.value<Block>());
}

// The bytes of the challenge XOR to the row that is the salt: rows 0 and 1 serve as well.
TEST(NetencTest, Responses) {
  EXPECT_EQ(response_to({}), "04998dabe7fe6451");
  EXPECT_EQ(response_to({1}), "9f50041db2cc7f00");
  EXPECT_EQ(response_to({255}), "7a871559b3153b59");
  EXPECT_EQ(response_to({0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}), "903eec0cafed6dcb");
  EXPECT_EQ(response_to({'c', 'h', 'a', 'l', 'l', 'e', 'n', 'g'}), "0ba13e2ae6e38c09");
}

TEST(NetencTest, EveryRowAsTheSaltOfAResponse) {
  Random random(random_seed + 3);
  for (int row = 0; row < 256; ++row) {
    Block challenge = random_bytes<8>(random);
    OCTET sum = 0;
    for (size_t i = 0; i < 7; ++i)
      sum ^= challenge[i];
    challenge[7] = static_cast<OCTET>(sum ^ row);
    ASSERT_EQ(response_to(challenge), to_hex(reference().response(challenge))) << row;
    Salt salt;
    std::copy_n(comb_get_Netkey(row), 8, salt.begin());
    ASSERT_EQ(response_to(challenge), to_hex(salted(challenge, salt, 0))) << row;
  }
}

} // namespace
