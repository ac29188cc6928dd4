// The public forms of the password cipher: string blocks, their hexadecimal form, the response to a
// challenge; and that no working copy of a text outlives a call.
#include <algorithm>
#include <cstring>
#include <functional>

#include <gtest/gtest.h>
#include <ucontext.h>

#include "check_trap.h"
#include "cipher.h"
#include "guarded_buffer.h"
#include "test_scale.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_enc.cpp";
constexpr unsigned random_seed = 73;
const std::string thirty = "0123456789abcdefghijklmnopqrst";

char *chars(Salt &salt) {
  return reinterpret_cast<char *>(salt.data());
}

// ---- string blocks ----

struct StringBlock {
  CS_RETCODE status;
  CS_INT length;
  std::string hex; // of the 33 bytes, empty when they are untouched
};

StringBlock string_block(Salt salt, CS_INT saltlen, Bytes text, CS_INT textlen) {
  GuardedBuffer out(33);
  StringBlock result{};
  result.length = 77;
  result.status = com_initialize_tds_strings(nullptr, text.data(), textlen, salt.data(), saltlen,
                                             out.data(), &result.length);
  if (!out.is_untouched())
    result.hex = to_hex(Bytes(out.data(), out.data() + 33));
  return result;
}

TEST(ComEncTest, StringBlocks) {
  const struct {
    Salt salt;
    std::string text, expected;
  } cases[] = {
      {{1, 2, 3, 4, 5, 6, 7, 8},
       "a",
       "6a5407e226743cb320f480a2ab11f64fb8dbf833bab79bb0da2799db2df63ec501"},
      {{1, 2, 3, 4, 5, 6, 7, 8},
       "secret",
       "02793154c7ec100920f480a2ab11f64fb8dbf833bab79bb0da2799db2df63ec506"},
      {{30}, "hello", "25ae70c1853076967393ac441c87f4151564010dcbe3fb457142d61960acbea705"},
      {salt_of(253), thirty, "37480138794fc1d64a9aff75ff71e02b2525d81693222202d33c8318fdda08171e"},
      {salt_of(254), thirty, "05b08d542111cc888ff6302bd35147413ce9240d2ecd60616cc4bd5d42ce85801e"},
      {salt_of(255), thirty, "8ce58021b6484a1c051b20f974885f73330c9b59d15b1fae4b5adc4b2059aed51e"},
  };
  for (const auto &c : cases) {
    const StringBlock block =
        string_block(c.salt, 8, to_bytes(c.text), static_cast<CS_INT>(c.text.size()));
    EXPECT_EQ(block.status, CS_SUCCEED);
    EXPECT_EQ(block.length, 33);
    EXPECT_EQ(block.hex, c.expected) << c.text;
  }
}

// An empty text gives a block of padding; its pointer may be null.
TEST(ComEncTest, EmptyText) {
  const std::string padding_only =
      "7c747e307f6a48db201987ed2d21f4ac62b17538ff87d1e5bccbf7a1c49090a700";
  EXPECT_EQ(string_block({}, 8, to_bytes("x"), 0).hex, padding_only);
  GuardedBuffer out(33);
  Salt salt{};
  CS_INT length = 77;
  EXPECT_EQ(com_initialize_tds_strings(nullptr, nullptr, 0, salt.data(), 8, out.data(), &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 33);
  EXPECT_EQ(to_hex(Bytes(out.data(), out.data() + 33)), padding_only);
}

TEST(ComEncTest, LongTextIsCut) {
  const StringBlock whole = string_block(salt_of(9), 8, to_bytes(thirty), 30);
  for (const CS_INT length : {31, 32, 33, 40}) {
    const StringBlock cut = string_block(salt_of(9), 8, to_bytes(thirty + "uvwxyzABCD"), length);
    EXPECT_EQ(cut.status, CS_SUCCEED);
    EXPECT_EQ(cut.length, 33);
    EXPECT_EQ(cut.hex, whole.hex);
  }
}

// Deliberate: a refused salt or text succeeds with an empty block.
TEST(ComEncTest, RefusedStringBlockSucceedsEmpty) {
  for (const CS_INT saltlen : {0, 7, 9, -8}) {
    const StringBlock block = string_block({}, saltlen, to_bytes("text"), 4);
    EXPECT_EQ(block.status, CS_SUCCEED);
    EXPECT_EQ(block.length, 0);
    EXPECT_EQ(block.hex, "");
  }
  const StringBlock block = string_block({}, 8, to_bytes("text"), -1);
  EXPECT_EQ(block.status, CS_SUCCEED);
  EXPECT_EQ(block.length, 0);
  EXPECT_EQ(block.hex, "");
}

TEST(ComEncTest, StringBlockChecks) {
  Salt salt{};
  Bytes text = to_bytes("text");
  GuardedBuffer out(33);
  CS_INT length = 77;
  for (const CS_INT textlen : {1, 31, -1})
    EXPECT_ASSERTION(
        unit, CS_FAIL,
        com_initialize_tds_strings(nullptr, nullptr, textlen, salt.data(), 8, out.data(), &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_initialize_tds_strings(nullptr, text.data(), 4, nullptr, 8, out.data(), &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_initialize_tds_strings(nullptr, text.data(), 4, salt.data(), 8, nullptr, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_initialize_tds_strings(nullptr, text.data(), 4, salt.data(), 8, out.data(), nullptr));
  EXPECT_EQ(length, 77);
  EXPECT_TRUE(out.is_untouched());
}

// ---- the hexadecimal form ----

struct HexText {
  CS_RETCODE status;
  int length;
  std::string text; // empty when untouched
};

HexText encode(Salt salt, int saltlen, std::string plain, int plainlen) {
  GuardedBuffer out(70);
  HexText result{};
  result.length = 77;
  result.status = com_initialize_hex_strings(chars(salt), saltlen, plain.data(), plainlen,
                                             out.text(), &result.length);
  if (!out.is_untouched())
    result.text = out.contents();
  return result;
}

HexText decode(Salt salt, int saltlen, std::string hex, int hexlen, size_t room = 30) {
  GuardedBuffer out(room);
  HexText result{};
  result.length = 77;
  result.status = com_uninitialize_hex_strings(chars(salt), saltlen, hex.data(), hexlen, out.text(),
                                               &result.length);
  if (result.status == CS_SUCCEED || !out.is_untouched())
    result.text = out.contents(static_cast<size_t>(std::clamp(result.length, 0, 30)));
  return result;
}

const Salt counting = {1, 2, 3, 4, 5, 6, 7, 8};
const std::string secret_hex =
    "0x0102793154c7ec100920f480a2ab11f64fb8dbf833bab79bb0da2799db2df63ec506";

TEST(ComEncTest, Hexadecimal) {
  const HexText text = encode(counting, 8, "secret", 6);
  EXPECT_EQ(text.status, CS_SUCCEED);
  EXPECT_EQ(text.length, 70);
  EXPECT_EQ(text.text, secret_hex);
  const HexText back = decode(counting, 8, secret_hex, 70);
  EXPECT_EQ(back.status, CS_SUCCEED);
  EXPECT_EQ(back.length, 6);
  EXPECT_EQ(back.text, "secret");
}

TEST(ComEncTest, EncodeRefuses) {
  const std::string plain = thirty + "uvwxyz";
  for (const int plainlen : {0, 31, 36, -1, 2147483647, -2147483647 - 1}) {
    const HexText text = encode(counting, 8, plain, plainlen);
    EXPECT_EQ(text.status, CS_FAIL) << plainlen;
    EXPECT_EQ(text.length, 77) << plainlen;
    EXPECT_EQ(text.text, "") << plainlen;
  }
  for (const int saltlen : {0, 7, 9, -1}) {
    const HexText text = encode(counting, saltlen, plain, 4);
    EXPECT_EQ(text.status, CS_FAIL) << saltlen;
    EXPECT_EQ(text.length, 77) << saltlen;
    EXPECT_EQ(text.text, "") << saltlen;
  }
}

void expect_refused(const HexText &text, const std::string &what) {
  EXPECT_EQ(text.status, CS_FAIL) << what;
  EXPECT_EQ(text.length, 77) << what;
  EXPECT_EQ(text.text, "") << what;
}

TEST(ComEncTest, DecodeRefusesSizes) {
  for (const int hexlen : {0, 4, 68, 69, 71, -1, 2147483647, -2147483647 - 1})
    expect_refused(decode(counting, 8, secret_hex + "0000", hexlen), std::to_string(hexlen));
  for (const int saltlen : {0, 7, 9, -1})
    expect_refused(decode(counting, saltlen, secret_hex, 70), std::to_string(saltlen));
}

// Nothing but "0x01": neither another case nor another version.
TEST(ComEncTest, DecodeRefusesPrefixes) {
  for (const char *const prefix : {"0X01", "0x02", "0x00", "0x10", "1x01", "x001", "  01", "0x0a"})
    expect_refused(decode(counting, 8, prefix + secret_hex.substr(4), 70), prefix);
  for (size_t i = 0; i < 4; ++i)
    for (int byte = 0; byte < 256; ++byte) {
      std::string hex = secret_hex;
      hex[i] = static_cast<char>(byte);
      if (hex != secret_hex)
        expect_refused(decode(counting, 8, hex, 70), hex.substr(0, 4));
    }
}

// Every character at every place: the 22 digits are taken, in either case, all else is refused.
TEST(ComEncTest, DecodeDigits) {
  const std::string digits = "0123456789abcdefABCDEF";
  for (size_t i = 4; i < 70; ++i)
    for (int byte = 0; byte < 256; ++byte) {
      std::string hex = secret_hex;
      hex[i] = static_cast<char>(byte);
      const HexText text = decode(counting, 8, hex, 70);
      const bool is_digit = digits.find(static_cast<char>(byte)) != std::string::npos;
      const bool is_too_long = is_digit && std::stoi(hex.substr(68, 2), nullptr, 16) > 30;
      ASSERT_EQ(text.status, is_digit && !is_too_long ? CS_SUCCEED : CS_FAIL) << i << ", " << byte;
      if (text.status == CS_FAIL)
        expect_refused(text, hex);
    }
}

TEST(ComEncTest, DecodeEitherCase) {
  std::string upper = secret_hex;
  std::transform(upper.begin() + 4, upper.end(), upper.begin() + 4,
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  EXPECT_NE(upper, secret_hex);
  EXPECT_EQ(decode(counting, 8, upper, 70).text, "secret");
  std::string mixed = upper.substr(0, 35) + secret_hex.substr(35);
  EXPECT_EQ(decode(counting, 8, mixed, 70).text, "secret");
}

// A wrong salt is not noticed: the text is wrong, of the length that the block names.
TEST(ComEncTest, DecodeWithAnotherSalt) {
  const HexText text = decode(salt_of(200), 8, secret_hex, 70);
  EXPECT_EQ(text.status, CS_SUCCEED);
  EXPECT_EQ(text.length, 6);
  EXPECT_NE(text.text, "secret");
}

// Only as many bytes are written as the text has; a block of padding decodes to nothing.
TEST(ComEncTest, DecodeWritesNoMoreThanTheText) {
  EXPECT_EQ(decode(counting, 8, secret_hex, 70, 6).text, "secret");
  const HexText none = decode(
      {}, 8, "0x017c747e307f6a48db201987ed2d21f4ac62b17538ff87d1e5bccbf7a1c49090a700", 70, 0);
  EXPECT_EQ(none.status, CS_SUCCEED);
  EXPECT_EQ(none.length, 0);
}

TEST(ComEncTest, DecodeRefusesABlockThatNamesALongerText) {
  for (const char *const named : {"1f", "20", "21", "80", "ff"})
    expect_refused(decode(counting, 8, secret_hex.substr(0, 68) + named, 70), named);
  EXPECT_EQ(decode(counting, 8, secret_hex.substr(0, 68) + "1e", 70).length, 30);
}

// Every length, first salt byte and so every rotation, against the reference and back.
TEST(ComEncTest, RoundTrips) {
  Random random(random_seed);
  for (int first = 0; first < 256; ++first)
    for (size_t size = 1; size <= 30; ++size) {
      Salt salt = random_bytes<8>(random);
      salt[0] = static_cast<OCTET>(first);
      const Bytes plain = random_text(random, size);
      const std::string text(plain.begin(), plain.end());
      const HexText hex = encode(salt, 8, text, static_cast<int>(size));
      ASSERT_EQ(hex.text, LongHandCipher::hexadecimal(reference().string_block(salt, plain)))
          << first << ", " << size;
      const HexText back = decode(salt, 8, hex.text, 70, size);
      ASSERT_EQ(back.status, CS_SUCCEED);
      ASSERT_EQ(back.text, text) << first << ", " << size;
    }
}

// Lengths and pointers: what is refused for its length is not a fault, whatever the pointers.
TEST(ComEncTest, HexadecimalChecks) {
  Salt salt = counting;
  std::string plain = "text", hex = secret_hex;
  GuardedBuffer out(70);
  int length = 77;
  for (int missing = 0; missing < 4; ++missing) {
    char *const s = missing == 0 ? nullptr : chars(salt);
    char *const o = missing == 2 ? nullptr : out.text();
    int *const l = missing == 3 ? nullptr : &length;
    EXPECT_NULL_POINTER_CHECK(
        unit, CS_FAIL,
        com_initialize_hex_strings(s, 8, missing == 1 ? nullptr : plain.data(), 4, o, l));
    EXPECT_NULL_POINTER_CHECK(
        unit, CS_FAIL,
        com_uninitialize_hex_strings(s, 8, missing == 1 ? nullptr : hex.data(), 70, o, l));
  }
  EXPECT_EQ(com_initialize_hex_strings(chars(salt), 8, nullptr, 0, out.text(), &length), CS_FAIL);
  EXPECT_EQ(com_uninitialize_hex_strings(chars(salt), 8, nullptr, 0, out.text(), &length), CS_FAIL);
  EXPECT_EQ(length, 77);
  EXPECT_TRUE(out.is_untouched());
}

// ---- challenges ----

TEST(ComEncTest, Challenge) {
  for (const CS_INT challenge_len : {8, 0, 3, -1}) { // deliberate: the length is not read
    Bytes challenge = to_bytes("challeng");
    GuardedBuffer response(8);
    CS_INT length = 77;
    EXPECT_EQ(com_uninitialize_tds_text(nullptr, challenge.data(), challenge_len, response.data(),
                                        &length),
              CS_SUCCEED);
    EXPECT_EQ(length, 8);
    EXPECT_EQ(to_hex(response.value<Block>()), "0ba13e2ae6e38c09");
  }
}

TEST(ComEncTest, ChallengeChecks) {
  Block challenge{};
  GuardedBuffer response(8);
  CS_INT length = 77;
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_uninitialize_tds_text(nullptr, nullptr, 8, response.data(), &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_uninitialize_tds_text(nullptr, challenge.data(), 8, nullptr, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_uninitialize_tds_text(nullptr, challenge.data(), 8, response.data(), nullptr));
  EXPECT_EQ(length, 77);
  EXPECT_TRUE(response.is_untouched());
}

// ---- what is left behind ----

// Runs a function on a stack of its own, which can be searched afterwards.
class SearchableStack {
public:
  void run(std::function<void()> function) {
    body = std::move(function);
    current = this;
    getcontext(&inner);
    inner.uc_stack.ss_sp = memory.data();
    inner.uc_stack.ss_size = memory.size();
    inner.uc_link = &outer;
    makecontext(&inner, enter, 0);
    swapcontext(&outer, &inner);
  }

  bool holds(const std::string &bytes) const {
    return std::search(memory.begin(), memory.end(), bytes.begin(), bytes.end()) != memory.end();
  }

  // Any run of `size` bytes of the text.
  bool holds_part_of(const std::string &text, size_t size) const {
    for (size_t at = 0; at + size <= text.size(); ++at)
      if (holds(text.substr(at, size)))
        return true;
    return false;
  }

private:
  static void enter() { current->body(); }
  static inline SearchableStack *current;

  std::vector<char> memory = std::vector<char>(256 * 1024, '\xA5');
  ucontext_t inner{}, outer{};
  std::function<void()> body;
};

const std::string secret_text = "Tr0ub4dor&3~Zq!vXm#9@Lp^7wKd%Y";

// The search finds what a function leaves on its stack.
TEST(ComEncTest, SearchFindsACopyThatIsLeft) {
  SearchableStack stack;
  stack.run([] {
    char copy[64];
    std::memcpy(copy, secret_text.data(), secret_text.size());
    asm volatile("" : : "r"(copy) : "memory"); // or the copy would not be made
  });
  EXPECT_TRUE(stack.holds(secret_text));
}

// The working copy of 32 bytes is there, wiped with 42, and no word of the text is left beside it. What
// that needs is a stack as the release has it: without optimisation a later call puts its frame over the
// copy, and the halves of a block, which the release keeps in registers, are variables in memory, with
// the sanitizers too. (A program that is bound lazily saves the register of a memcpy beside them.)
void expect_wiped_copy(const SearchableStack &stack) {
  if (!zrvtest::optimized)
    return;
  EXPECT_TRUE(stack.holds(std::string(32, '*')));
  if (!zrvtest::sanitized) {
    EXPECT_FALSE(stack.holds_part_of(secret_text, 4));
  }
}

TEST(ComEncTest, WorkingCopyIsWiped) {
  static Salt salt;
  static std::string text, hex(70, ' '), back(30, ' ');
  for (const int rotation : {0, 1, 7, 31}) {
    salt = counting;
    salt[0] = static_cast<OCTET>(rotation);
    text = secret_text;
    static int hexlen, length;
    static CS_RETCODE status;
    com_init_text_mem();

    SearchableStack enciphering;
    enciphering.run([] {
      status = com_initialize_hex_strings(chars(salt), 8, text.data(), 30, hex.data(), &hexlen);
    });
    ASSERT_EQ(status, CS_SUCCEED);
    expect_wiped_copy(enciphering);

    SearchableStack deciphering;
    deciphering.run([] {
      status = com_uninitialize_hex_strings(chars(salt), 8, hex.data(), 70, back.data(), &length);
    });
    ASSERT_EQ(status, CS_SUCCEED);
    ASSERT_EQ(back, secret_text);
    expect_wiped_copy(deciphering);
  }
}

TEST(ComEncTest, WorkingCopyOfAStringBlockIsWiped) {
  static Salt salt = counting;
  static Bytes text = to_bytes(secret_text), block(33);
  static CS_INT length;
  SearchableStack stack;
  stack.run([] {
    com_initialize_tds_strings(nullptr, text.data(), 30, salt.data(), 8, block.data(), &length);
  });
  ASSERT_EQ(length, 33);
  expect_wiped_copy(stack);
}

} // namespace
