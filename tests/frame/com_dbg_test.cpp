// The debug stream and its two printers.
#include <climits>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "zrvcomn/comnlib.h"

namespace {

constexpr char illegal[] = "illegal format specification\n";

// What comn_debug_vprint writes to standard output.
std::string vprint(const std::string &format, std::initializer_list<intptr_t> arguments = {}) {
  std::vector<intptr_t> words(arguments);
  return zrvtest::capture_stdout([&] {
    EXPECT_EQ(comn_debug_vprint(const_cast<CS_CHAR *>(format.c_str()), words.data()), 1);
  });
}

intptr_t word(const char *text) {
  return reinterpret_cast<intptr_t>(text);
}

// Directs debug output to a file of its own and back.
class DebugFile : public testing::Test {
protected:
  DebugFile() {
    directory = testing::TempDir() + "zrvtest_debug_XXXXXX";
    EXPECT_NE(mkdtemp(directory.data()), nullptr);
    path = directory + "/debug.log";
  }
  ~DebugFile() override {
    comn_debug_setfile(nullptr, nullptr, 0);
    for (const std::string &file : {path, path + "2"})
      unlink(file.c_str());
    rmdir(directory.c_str());
  }

  static CS_RETCODE set(const std::string &name, CS_INT length = CS_LEN_NULLTERM) {
    return comn_debug_setfile(nullptr, const_cast<CS_CHAR *>(name.c_str()), length);
  }
  static std::string contents(const std::string &name) {
    std::ifstream file(name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }

  std::string directory, path;
};

} // namespace

TEST_F(DebugFile, OpensForAppending) {
  EXPECT_EQ(Com_fp, nullptr);
  EXPECT_EQ(set(path), CS_SUCCEED);
  ASSERT_NE(Com_fp, nullptr);
  EXPECT_EQ(comn_debug_print("one %d\n", 1), 1);
  EXPECT_EQ(contents(path), "one 1\n") << "not flushed";
  EXPECT_EQ(set(path), CS_SUCCEED);
  EXPECT_EQ(comn_debug_print("two\n"), 1);
  EXPECT_EQ(comn_debug_setfile(nullptr, nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(Com_fp, nullptr);
  EXPECT_EQ(contents(path), "one 1\ntwo\n");
}

TEST_F(DebugFile, VprintGoesThereToo) {
  ASSERT_EQ(set(path), CS_SUCCEED);
  EXPECT_EQ(vprint("%d\n", {7}), "");
  EXPECT_EQ(contents(path), "7\n") << "not flushed";
}

TEST_F(DebugFile, LengthEndsTheName) {
  EXPECT_EQ(set(path + "2 and more", static_cast<CS_INT>(path.size())), CS_SUCCEED);
  EXPECT_EQ(access(path.c_str(), F_OK), 0);
  // A length beyond the terminator is no harm.
  EXPECT_EQ(set(path + "2", static_cast<CS_INT>(path.size()) + 100), CS_SUCCEED);
  EXPECT_EQ(access((path + "2").c_str(), F_OK), 0);
}

TEST_F(DebugFile, NullOrLengthZeroCloses) {
  ASSERT_EQ(set(path), CS_SUCCEED);
  EXPECT_EQ(set(path + "2", 0), CS_SUCCEED);
  EXPECT_EQ(Com_fp, nullptr);
  EXPECT_NE(access((path + "2").c_str(), F_OK), 0);
  ASSERT_EQ(set(path), CS_SUCCEED);
  EXPECT_EQ(comn_debug_setfile(nullptr, nullptr, 5), CS_SUCCEED);
  EXPECT_EQ(Com_fp, nullptr);
  EXPECT_EQ(comn_debug_setfile(nullptr, nullptr, 0), CS_SUCCEED);
}

TEST_F(DebugFile, AFileOpenedBeforeIsClosed) {
  const size_t before = zrvtest::open_descriptors();
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(set(path), CS_SUCCEED);
    EXPECT_EQ(zrvtest::open_descriptors(), before + 1);
  }
  EXPECT_EQ(set(directory), CS_FAIL);
  EXPECT_EQ(zrvtest::open_descriptors(), before + 1);
  ASSERT_EQ(comn_debug_setfile(nullptr, nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(zrvtest::open_descriptors(), before);
}

TEST_F(DebugFile, FailureLeavesTheStream) {
  EXPECT_EQ(set(directory), CS_FAIL);
  EXPECT_EQ(Com_fp, nullptr);
  ASSERT_EQ(set(path), CS_SUCCEED);
  FILE *const file = Com_fp;
  EXPECT_EQ(set(directory + "/absent/x"), CS_FAIL);
  EXPECT_EQ(set(""), CS_FAIL);
  EXPECT_EQ(set(std::string(PATH_MAX - 1, 'x')), CS_FAIL);
  EXPECT_EQ(set(std::string(PATH_MAX, 'x')), CS_FAIL);
  EXPECT_EQ(set(std::string(100000, 'x')), CS_FAIL);
  EXPECT_EQ(Com_fp, file);
}

TEST(DebugPrint, PrintsAsPrintfDoes) {
  const std::string text = zrvtest::capture_stdout([] {
    EXPECT_EQ(comn_debug_print("%s %5.2f %-3d|%%\n", "text", 2.5, 7), CS_SUCCEED);
    EXPECT_EQ(comn_debug_print("plain"), CS_SUCCEED);
  });
  EXPECT_EQ(text, "text  2.50 7  |%\nplain");
}

TEST(DebugPrint, NullFormatIsChecked) {
  const char *volatile format = nullptr;
  EXPECT_NULL_POINTER_CHECK("com_dbg.cpp", CS_FAIL, comn_debug_print(format, 0));
  EXPECT_NULL_POINTER_CHECK("com_dbg.cpp", CS_FAIL, comn_debug_vprint(nullptr, nullptr));
}

TEST(DebugVprint, PlainText) {
  EXPECT_EQ(vprint(""), "");
  EXPECT_EQ(vprint("plain\ttext\n\xE9\xFF"), "plain\ttext\n\xE9\xFF");
  EXPECT_EQ(vprint("%%"), "%");
  EXPECT_EQ(vprint("100%%%%d"), "100%%d");
}

TEST(DebugVprint, FormatWithoutArgumentsNeedsNoWords) {
  char format[] = "50%% plain";
  const std::string text =
      zrvtest::capture_stdout([&] { EXPECT_EQ(comn_debug_vprint(format, nullptr), 1); });
  EXPECT_EQ(text, "50% plain");
}

TEST(DebugVprint, MissingWordsAreIllegal) {
  char format[] = "<%d>";
  const std::string text =
      zrvtest::capture_stdout([&] { EXPECT_EQ(comn_debug_vprint(format, nullptr), 1); });
  EXPECT_EQ(text, "<illegal format specification\n>");
}

TEST(DebugVprint, Integers) {
  EXPECT_EQ(vprint("%d %d %d", {0, -1, 2147483647}), "0 -1 2147483647");
  EXPECT_EQ(vprint("%x %X", {0xbeef, 0xbeef}), "beef BEEF");
  EXPECT_EQ(vprint("%x", {-1}), "ffffffff");
  EXPECT_EQ(vprint("[%5d|%-5d|%05d|%+d|% d|%.3d]", {42, 42, 42, 42, 42, 42}),
            "[   42|42   |00042|+42| 42|042]");
  EXPECT_EQ(vprint("[%.d|%.0d|%5.2d|%-5.2d|%10d|%+-6d|%'d]", {0, 0, 7, 7, 42, 42, 1234}),
            "[||   07|07   |        42|+42   |1234]");
  EXPECT_EQ(vprint("[%0005d|%--++5d|%5-d]", {42, 42, 42}), "[00042|+42  |42   ]");
  EXPECT_EQ(vprint("%#x %8.8x", {255, 255}), "0xff 000000ff");
}

// A word is an int, of which an h takes 16 bits and two take 8; the other lengths take all of it.
TEST(DebugVprint, LengthLetters) {
  EXPECT_EQ(vprint("%hd %hx %hX %hhx", {70000, 0x1beef, 0x1beef, 0x1ef}), "4464 beef BEEF ef");
  EXPECT_EQ(vprint("%6hd|%hhd|%d", {0x1ffff, 0x180, 5}), "    -1|-128|5");
  for (const char *length : {"z", "j", "t"}) {
    SCOPED_TRACE(length);
    const std::string percent = std::string("%") + length;
    EXPECT_EQ(vprint(percent + "d " + percent + "d|", {INTPTR_MIN, -1}),
              sizeof(intptr_t) == 8 ? "-9223372036854775808 -1|" : "-2147483648 -1|");
    EXPECT_EQ(vprint(percent + "x " + percent + "X", {-1, INTPTR_MIN}),
              sizeof(intptr_t) == 8 ? "ffffffffffffffff 8000000000000000" : "ffffffff 80000000");
  }
  // Before the other letters they say nothing.
  EXPECT_EQ(vprint("%hs|%zc|%jld|%hlx|%tl", {word("text"), 'c', 70000, 0x1ffff, 70000}),
            "text|c|70000|1ffff|70000");
}

TEST(DebugVprint, Longs) {
  EXPECT_EQ(vprint("%ld %lx", {-5, 255}), "-5 ff");
  EXPECT_EQ(vprint("%8ld|%-8lx|", {42, 255}), "      42|ff      |");
}

// The word is a whole one under LP64, where %d still takes 32 bits of it.
TEST(DebugVprint, WordsAreAsWideAsPointers) {
  if (sizeof(intptr_t) == 8) {
    const auto big = static_cast<intptr_t>(0x123456789ABCDEF0LL);
    EXPECT_EQ(vprint("%lx %ld %x", {big, big, big}),
              "123456789abcdef0 1311768467463790320 9abcdef0");
    EXPECT_EQ(vprint("%ld", {INTPTR_MIN}), "-9223372036854775808");
  } else {
    EXPECT_EQ(vprint("%lx", {INTPTR_MIN}), "80000000");
    EXPECT_EQ(vprint("%ld", {INTPTR_MIN}), "-2147483648");
  }
}

// Only d and x belong to an l; other letters behind it are text.
TEST(DebugVprint, BareLong) {
  EXPECT_EQ(vprint("%l", {-7}), "-7");
  EXPECT_EQ(vprint("%l %d", {-7, 8}), "-7 8");
  EXPECT_EQ(vprint("%lX%lu", {10, 11}), "10X11u");
  EXPECT_EQ(vprint("%lld", {12}), "12ld");
}

TEST(DebugVprint, Bytes) {
  EXPECT_EQ(vprint("%c%c%c", {'a', '\n', 'z'}), "a\nz");
  EXPECT_EQ(vprint("[%3c|%-3c]", {'a', 'b'}), "[  a|b  ]");
  EXPECT_EQ(vprint("%c", {0x1241}), "A") << "one byte of the word";
  EXPECT_EQ(vprint("a%cb", {0}), std::string("a\0b", 3));
}

TEST(DebugVprint, Strings) {
  EXPECT_EQ(vprint("%s", {word("text")}), "text");
  EXPECT_EQ(vprint("%s", {word("")}), "");
  EXPECT_EQ(vprint("[%6s|%-6s|%.2s]", {word("abc"), word("abc"), word("abc")}),
            "[   abc|abc   |ab]");
  EXPECT_EQ(vprint("%s", {word("100%d")}), "100%d");
  const std::string long_text(5000, 'x');
  EXPECT_EQ(vprint("%s", {word(long_text.c_str())}), long_text);
}

TEST(DebugVprint, NullString) {
  EXPECT_EQ(vprint("%s", {0}), "(null)");
  EXPECT_EQ(vprint("<%8s> %d", {0, 5}), "<  (null)> 5");
}

TEST(DebugVprint, Mixed) {
  EXPECT_EQ(vprint("%s=%d (%lx) %c%%\n", {word("rate"), 12, 12, '!'}), "rate=12 (c) !%\n");
}

// A specification that never meets one of its letters runs to the end of the format.
TEST(DebugVprint, UnterminatedSpecificationIsIllegal) {
  EXPECT_EQ(vprint("%"), illegal);
  EXPECT_EQ(vprint("a%"), std::string("a") + illegal);
  EXPECT_EQ(vprint("%5"), illegal);
  EXPECT_EQ(vprint("%5.2f"), illegal);
  EXPECT_EQ(vprint("%u", {1}), illegal);
  EXPECT_EQ(vprint("%h", {1}), illegal);
  EXPECT_EQ(vprint("%n", {0}), illegal);
  EXPECT_EQ(vprint("% "), illegal);
  EXPECT_EQ(vprint("%" + std::string(10000, '0')), illegal);
}

// Whatever would make fprintf reach for other arguments than one word is passed over; the word of
// the specification is taken and printed all the same.
TEST(DebugVprint, ForeignLettersArePassedOver) {
  EXPECT_EQ(vprint("%*d|%d", {5, 6}), "5|6");
  EXPECT_EQ(vprint("%.*d|%d", {5, 6}), "5|6");
  EXPECT_EQ(vprint("%4$d|%d", {5, 6}), "   5|6");
  EXPECT_EQ(vprint("%qd|%Lx|%d", {5, 6, 7}), "5|6|7");
  EXPECT_EQ(vprint("%n%d|%d", {5, 6}), "5|6") << "one specification, up to the d";
  EXPECT_EQ(vprint("%4%d%d", {5, 6}), "   56");
  EXPECT_EQ(vprint("%y and no more", {5}), " 5 no more") << "the d of \"and\" ends it";
}

TEST(DebugVprint, LongSpecifications) {
  const std::string zeros(10000, '0');
  EXPECT_EQ(vprint("%" + zeros + "+5d|%d", {42, 43}), "+0042|43");
  EXPECT_EQ(vprint("%." + zeros + "5ld|", {42}), "00042|");
  EXPECT_EQ(vprint("%" + std::string(10000, '*') + "d|", {42}), "42|");
}
