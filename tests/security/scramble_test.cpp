// The memory scramble: every length and alignment, its seed, and what another process can do with
// it.
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <dlfcn.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "cipher.h"
#include "guarded_buffer.h"

namespace {

// What the stand-in below does; by default it passes the call on.
struct Shim {
  bool fails = false;
  int calls = 0;
  size_t alignment = 0, size = 0;
  uintptr_t block = 0; // the latest one, released or not
} shim;

} // namespace

// The dynamic linker binds the library to this.
extern "C" int posix_memalign(void **block, size_t alignment, size_t size) noexcept {
  ++shim.calls;
  shim.alignment = alignment;
  shim.size = size;
  if (shim.fails)
    return ENOMEM;
  static const auto real =
      reinterpret_cast<int (*)(void **, size_t, size_t)>(dlsym(RTLD_NEXT, "posix_memalign"));
  const int status = real(block, alignment, size);
  shim.block = reinterpret_cast<uintptr_t>(*block);
  return status;
}

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_enc.cpp";
constexpr unsigned random_seed = 74;

class ScrambleTest : public testing::Test {
protected:
  ScrambleTest() { shim = Shim{}; }
  ~ScrambleTest() override { shim = Shim{}; }

  static Bytes scramble(const Bytes &bytes, int key, size_t misalignment = 0) {
    GuardedBuffer buffer(bytes.size(), misalignment);
    std::copy(bytes.begin(), bytes.end(), buffer.data());
    com__encrypt_bytes(static_cast<CS_INT>(bytes.size()), buffer.text(), key);
    return Bytes(buffer.data(), buffer.data() + bytes.size());
  }
  static Bytes unscramble(const Bytes &bytes, int key, size_t misalignment = 0) {
    GuardedBuffer buffer(bytes.size(), misalignment);
    std::copy(bytes.begin(), bytes.end(), buffer.data());
    com__decrypt_bytes(static_cast<CS_INT>(bytes.size()), buffer.text(), key);
    return Bytes(buffer.data(), buffer.data() + bytes.size());
  }
};

// Seed 0x345678: rot 24; the first word, 20656854, XORed and rotated, is the next k.
TEST_F(ScrambleTest, Literals) {
  const Bytes text = to_bytes("The secret of 7.");
  const auto first = [&](long count) { return Bytes(text.begin(), text.begin() + count); };
  EXPECT_EQ(to_hex(scramble(first(1), 0)), "54"); // a seed of 0 leaves a text below a word
  EXPECT_EQ(to_hex(scramble(first(4), 0)), "54686520");
  EXPECT_EQ(to_hex(scramble(first(7), 0)), "54686520270d06");
  EXPECT_EQ(to_hex(scramble(first(16), 0)), "54686520602075d2055455bd728c4e6c");
  EXPECT_EQ(to_hex(scramble(first(1), 0x345678)), "2c");
  EXPECT_EQ(to_hex(scramble(first(3), 0x345678)), "2c3e51");
  EXPECT_EQ(to_hex(scramble(first(4), 0x345678)), "3e51202c");
  EXPECT_EQ(to_hex(scramble(first(7), 0x345678)), "3e51202c4d3443");
  EXPECT_EQ(to_hex(scramble(first(16), 0x345678)), "3e51202c13cd905785c5b1cb7cbcdcb0");
  EXPECT_EQ(to_hex(scramble(first(16), 0x7FFFFF)), "d54b0d90c54ddcd41734877f0ad8a838");
}

TEST_F(ScrambleTest, EveryLength) {
  Random random(random_seed);
  for (const int key : {0, 1, 31, 32, 0x345678, 0x7FFFFF, -1, -2147483647 - 1})
    for (size_t size = 0; size <= 300; ++size) {
      const Bytes text = random_text(random, size);
      const Bytes scrambled = scramble(text, key);
      ASSERT_EQ(to_hex(scrambled), to_hex(scramble_by_hand(text, static_cast<uint32_t>(key))))
          << size << ", seed " << key;
      ASSERT_EQ(unscramble(scrambled, key), text) << size << ", seed " << key;
    }
}

TEST_F(ScrambleTest, EveryAlignment) {
  Random random(random_seed + 1);
  for (size_t misalignment = 0; misalignment < 64; ++misalignment)
    for (const size_t size : {1U, 3U, 4U, 5U, 31U, 64U, 65U}) {
      const Bytes text = random_text(random, size);
      const Bytes expected = scramble_by_hand(text, 0x123456);
      ASSERT_EQ(scramble(text, 0x123456, misalignment), expected);
      ASSERT_EQ(unscramble(expected, 0x123456, misalignment), text);
    }
}

// Every rotation, set by the low bits of the seed and of each word.
TEST_F(ScrambleTest, EveryRotation) {
  for (int key = 0; key < 32; ++key)
    for (uint32_t word = 0; word < 32; ++word) {
      Bytes text(12, 0);
      text[0] = static_cast<OCTET>(word);
      text[4] = 0x80;
      text[11] = 1;
      const Bytes scrambled = scramble(text, key);
      ASSERT_EQ(to_hex(scrambled), to_hex(scramble_by_hand(text, static_cast<uint32_t>(key))));
      ASSERT_EQ(unscramble(scrambled, key), text);
    }
}

TEST_F(ScrambleTest, NoEffectBelowOne) {
  GuardedBuffer buffer(8);
  for (const CS_INT length : {0, -1, -2147483647 - 1}) {
    com_encrypt_bytes(buffer.text(), length);
    com_decrypt_bytes(buffer.text(), length);
    com_encrypt_bytes(nullptr, length);
    com_decrypt_bytes(nullptr, length);
    com__encrypt_bytes(length, buffer.text(), 5);
    com__decrypt_bytes(length, buffer.text(), 5);
  }
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(shim.calls, 0);
}

TEST_F(ScrambleTest, RoundTripOfTheProcess) {
  Random random(random_seed + 2);
  for (size_t size = 1; size <= 300; ++size) {
    const Bytes text = random_text(random, size);
    GuardedBuffer buffer(size, size % 8);
    std::copy(text.begin(), text.end(), buffer.data());
    com_encrypt_bytes(buffer.text(), static_cast<CS_INT>(size));
    ASSERT_EQ(Bytes(buffer.data(), buffer.data() + size),
              scramble_by_hand(text, static_cast<uint32_t>(seed)));
    com_decrypt_bytes(buffer.text(), static_cast<CS_INT>(size));
    ASSERT_EQ(Bytes(buffer.data(), buffer.data() + size), text);
  }
}

// Works on the buffer itself when there is no memory for a copy.
TEST_F(ScrambleTest, WithoutMemoryForTheCopy) {
  Random random(random_seed + 3);
  shim.fails = true;
  for (size_t size = 0; size <= 70; ++size) {
    const Bytes text = random_text(random, size);
    const Bytes expected = scramble_by_hand(text, 99);
    ASSERT_EQ(scramble(text, 99, size % 4), expected);
    ASSERT_EQ(unscramble(expected, 99, size % 4), text);
  }
  EXPECT_EQ(shim.calls, 140);
}

// Reads memory that may have been released.
__attribute__((no_sanitize("address", "undefined"), noinline)) std::string
look_at(uintptr_t address, size_t size) {
  std::string bytes(size, ' ');
  for (size_t i = 0; i < size; ++i)
    bytes[i] = *reinterpret_cast<volatile char *>(address + i);
  return bytes;
}

// The copy stands at 64 bytes and is wiped with 42 before it is released. The allocator keeps notes
// in the first bytes of a released block; behind them all is as it was left.
TEST_F(ScrambleTest, CopyIsAlignedAndWiped) {
  constexpr size_t size = 160, notes = 32;
  std::string text(size, 'S');
  com__encrypt_bytes(size, text.data(), 1234);
  EXPECT_EQ(shim.calls, 1);
  EXPECT_EQ(shim.alignment, 64U);
  EXPECT_EQ(shim.size, size);
  EXPECT_EQ(shim.block % 64, 0U);
  EXPECT_EQ(look_at(shim.block + notes, size - notes), std::string(size - notes, '*'));
  com__decrypt_bytes(size, text.data(), 1234);
  EXPECT_EQ(look_at(shim.block + notes, size - notes), std::string(size - notes, '*'));
  EXPECT_EQ(text, std::string(size, 'S'));
}

// Measured on the heap, from which blocks of this size come; the sanitizers count leaks themselves.
TEST_F(ScrambleTest, CopyIsReleased) {
  std::string text(64 * 1024, 'S');
  const size_t in_use = mallinfo2().uordblks;
  com__encrypt_bytes(static_cast<CS_INT>(text.size()), text.data(), 1234);
  com__decrypt_bytes(static_cast<CS_INT>(text.size()), text.data(), 1234);
  EXPECT_EQ(shim.calls, 2);
  EXPECT_LT(mallinfo2().uordblks, in_use + text.size());
}

TEST_F(ScrambleTest, NullPointers) {
  for (void (*const function)(CS_CHAR *, CS_INT) noexcept :
       {com_encrypt_bytes, com_decrypt_bytes}) {
    const CheckReport report = catch_check([&] { function(nullptr, 1); });
    EXPECT_TRUE(is_null_pointer_report(report, unit)) << report.text;
  }
}

// ---- other processes ----

// Runs scramble_process on some bytes, in a process whose clock stands at `clock`.
class ScrambleProcessTest : public testing::Test {
protected:
  ScrambleProcessTest() {
    std::string pattern = testing::TempDir() + "scramble-XXXXXX";
    folder = mkdtemp(pattern.data());
  }
  ~ScrambleProcessTest() override { std::filesystem::remove_all(folder); }

  std::string run(const std::string &mode, long clock, const std::string &input = "") {
    std::ofstream(folder / "in", std::ios::binary) << input;
    const std::string command = "ZRVTEST_CLOCK=" + std::to_string(clock) +
                                " " SCRAMBLE_PROCESS " " + mode + " <" + (folder / "in").string() +
                                " >" + (folder / "out").string();
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::stringstream output;
    output << std::ifstream(folder / "out", std::ios::binary).rdbuf();
    return output.str();
  }

  std::filesystem::path folder;
};

// What srand and rand give for a clock.
uint32_t seed_of(long clock) {
  std::srand(static_cast<unsigned>(clock));
  return static_cast<uint32_t>(std::rand() >> 8);
}

// Each line: the flag of the key table, the flag of the seed, and the seed.
TEST_F(ScrambleProcessTest, OnceFlagsAndSeed) {
  const std::string set = std::to_string(seed_of(1000));
  EXPECT_EQ(run("state", 1000), "at the start 1 1 0\n"
                                "after comb_get_Netkey 1 1 0\n"
                                "after com_decrypt_bytes 1 1 0\n"
                                "after com_encrypt_bytes of nothing 1 1 0\n"
                                "after com_encrypt_bytes 1 0 " +
                                    set +
                                    "\n"
                                    "after com_encrypt_bytes at another time 1 0 " +
                                    set +
                                    "\n"
                                    "after a refused block 1 0 " +
                                    set +
                                    "\n"
                                    "after a block 0 0 " +
                                    set + "\n");
}

// The table is built by whichever function comes first, and not again.
TEST_F(ScrambleProcessTest, TableIsBuiltOnceByAnyFirstUse) {
  for (const char *const first : {"encipher", "decipher", "challenge"})
    EXPECT_EQ(run(std::string("build ") + first, 1), "unbuilt built kept\n") << first;
}

TEST_F(ScrambleProcessTest, SeedComesFromTheClock) {
  const std::string text = "a secret that is longer than one word";
  const Bytes expected = scramble_by_hand(to_bytes(text), seed_of(1000));
  EXPECT_EQ(run("scramble", 1000, text), std::string(expected.begin(), expected.end()));
}

// A scramble is of no use in another process; only one that began in the same second has its seed.
TEST_F(ScrambleProcessTest, OtherProcessesCannotUndo) {
  const std::string text = "a secret that is longer than one word";
  const std::string scrambled = run("scramble", 1000, text);
  EXPECT_EQ(scrambled.size(), text.size());
  EXPECT_NE(scrambled, text);
  EXPECT_NE(run("undo", 1000, scrambled), text); // never seeded
  EXPECT_NE(run("seed-and-undo", 1001, scrambled), text);
  EXPECT_EQ(run("seed-and-undo", 1000, scrambled), text);
}

} // namespace
