// The small services.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::AllocationProbe;
using zrvtest::GuardedBuffer;

namespace {

char variable[] = "ZRVTEST_VARIABLE";

class Getenv : public testing::Test {
protected:
  ~Getenv() override { unsetenv(variable); }
  static void set(const std::string &value) { setenv(variable, value.c_str(), 1); }

  // The value as com_getenv gives it, or "<null>".
  static std::string get() {
    CS_CHAR *value = com_getenv(variable);
    const std::string result = value != nullptr ? value : "<null>";
    comn_free(value);
    return result;
  }
};

// A string that com_setstring owns.
class SetString : public testing::Test {
protected:
  ~SetString() override { comn_free(string); }
  CS_RETCODE set(const char *source, CS_INT length) {
    return com_setstring(&string, &stringlen, const_cast<CS_CHAR *>(source), length);
  }

  CS_CHAR *string = nullptr;
  CS_INT stringlen = -77;
};

CS_BYTE *bytes(const char *text) {
  return reinterpret_cast<CS_BYTE *>(const_cast<char *>(text));
}

CS_INT memhilo(const std::string &a, const std::string &b) {
  return com_memhilo(bytes(a.data()), static_cast<CS_INT>(a.size()), bytes(b.data()),
                     static_cast<CS_INT>(b.size()));
}

} // namespace

TEST_F(Getenv, GivesANewCopy) {
  set("/opt/z");
  AllocationProbe probe;
  CS_CHAR *value = com_getenv(variable);
  ASSERT_NE(value, nullptr);
  EXPECT_STREQ(value, "/opt/z");
  EXPECT_NE(value, std::getenv(variable));
  EXPECT_EQ(probe.live_blocks(), 1U);
  EXPECT_EQ(probe.last_size(), 7U);
  comn_free(value);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(Getenv, UnsetEmptyAndNullAreNull) {
  EXPECT_EQ(get(), "<null>");
  set("");
  EXPECT_EQ(get(), "<null>");
  EXPECT_EQ(com_getenv(nullptr), nullptr);
  char empty[] = "";
  EXPECT_EQ(com_getenv(empty), nullptr);
}

// A value that does not fit the buffer of 256 bytes is not cut.
TEST_F(Getenv, LongestValue) {
  for (const size_t length : {1U, 254U, 255U}) {
    set(std::string(length, 'v'));
    EXPECT_EQ(get(), std::string(length, 'v'));
  }
  for (const size_t length : {256U, 257U, 10000U}) {
    set(std::string(length, 'v'));
    EXPECT_EQ(get(), "<null>") << length;
  }
}

TEST_F(Getenv, FailedAllocation) {
  set("value");
  CS_CHAR *value = nullptr;
  const size_t failed = zrvtest::fail_each_allocation([&] { value = nullptr; },
                                                      [&] {
                                                        value = com_getenv(variable);
                                                        return value == nullptr;
                                                      },
                                                      [&] { comn_free(value); });
  EXPECT_EQ(failed, 2U);
}

TEST_F(SetString, ReplacesTheString) {
  EXPECT_EQ(set("first", CS_LEN_NULLTERM), CS_SUCCEED);
  EXPECT_STREQ(string, "first");
  EXPECT_EQ(stringlen, 5);
  EXPECT_EQ(set("a much longer second text", CS_LEN_NULLTERM), CS_SUCCEED);
  EXPECT_STREQ(string, "a much longer second text");
  EXPECT_EQ(stringlen, 25);
  EXPECT_EQ(set("x", -9), CS_SUCCEED);
  EXPECT_STREQ(string, "x");
  EXPECT_EQ(stringlen, 1);
}

TEST_F(SetString, TakesALength) {
  EXPECT_EQ(set("abcdef", 3), CS_SUCCEED);
  EXPECT_STREQ(string, "abc");
  EXPECT_EQ(stringlen, 3);
  EXPECT_EQ(set("a\0b", 3), CS_SUCCEED);
  EXPECT_EQ(std::memcmp(string, "a\0b\0", 4), 0);
  EXPECT_EQ(stringlen, 3);
}

TEST_F(SetString, AsksForTheTextAndItsTerminator) {
  AllocationProbe probe;
  EXPECT_EQ(set("abcdef", 3), CS_SUCCEED);
  EXPECT_EQ(probe.allocations(), 1U);
  EXPECT_EQ(probe.last_size(), 4U);
  comn_free(string);
  string = nullptr;
}

TEST_F(SetString, LengthsBelowOneChangeNothing) {
  EXPECT_EQ(set("", CS_LEN_NULLTERM), CS_FAIL);
  EXPECT_EQ(string, nullptr);
  EXPECT_EQ(stringlen, -77);
  ASSERT_EQ(set("kept", CS_LEN_NULLTERM), CS_SUCCEED);
  CS_CHAR *const old = string;
  AllocationProbe probe;
  EXPECT_EQ(set("text", 0), CS_FAIL);
  EXPECT_EQ(set("", CS_LEN_NULLTERM), CS_FAIL);
  EXPECT_EQ(set("text", -1), CS_FAIL);
  EXPECT_EQ(set("text", -8), CS_FAIL);
  EXPECT_EQ(set("text", -10), CS_FAIL);
  EXPECT_EQ(set("text", CS_UNUSED), CS_FAIL);
  EXPECT_EQ(probe.allocations(), 0U);
  EXPECT_EQ(string, old);
  EXPECT_STREQ(string, "kept");
  EXPECT_EQ(stringlen, 4);
}

// Null arguments are an ordinary failure here, not a check.
TEST_F(SetString, NullArgumentsFail) {
  ASSERT_EQ(set("kept", CS_LEN_NULLTERM), CS_SUCCEED);
  char source[] = "text";
  const auto report = zrvtest::catch_check([&] {
    EXPECT_EQ(com_setstring(nullptr, &stringlen, source, 4), CS_FAIL);
    EXPECT_EQ(com_setstring(&string, nullptr, source, 4), CS_FAIL);
    EXPECT_EQ(com_setstring(&string, &stringlen, nullptr, 4), CS_FAIL);
    EXPECT_EQ(com_setstring(&string, &stringlen, nullptr, CS_LEN_NULLTERM), CS_FAIL);
  });
  EXPECT_EQ(report.signals, 0);
  EXPECT_STREQ(string, "kept");
  EXPECT_EQ(stringlen, 4);
}

// Deliberate: the failure shows in the string itself, and the old block is given up to whoever has
// another pointer to it.
TEST_F(SetString, FailedAllocationNullsTheString) {
  AllocationProbe probe;
  ASSERT_EQ(set("old", CS_LEN_NULLTERM), CS_SUCCEED);
  CS_CHAR *const old = string;
  probe.fail(1);
  EXPECT_EQ(set("new text", CS_LEN_NULLTERM), CS_MEM_ERROR);
  EXPECT_EQ(string, nullptr);
  EXPECT_EQ(stringlen, 3);
  EXPECT_STREQ(old, "old");
  comn_free(old);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(set("new text", CS_LEN_NULLTERM), CS_SUCCEED);
  EXPECT_STREQ(string, "new text");
}

TEST_F(SetString, EachAllocationFails) {
  const size_t failed =
      zrvtest::fail_each_allocation([&] { string = nullptr; },
                                    [&] {
                                      const CS_RETCODE result = set("text", CS_LEN_NULLTERM);
                                      EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR)
                                          << result;
                                      return result != CS_SUCCEED;
                                    },
                                    [&] {
                                      comn_free(string);
                                      string = nullptr;
                                    });
  EXPECT_EQ(failed, 2U);
}

TEST(Memhilo, Orders) {
  EXPECT_EQ(memhilo("ab", "abc"), -1);
  EXPECT_EQ(memhilo("abc", "ab"), 1);
  EXPECT_EQ(memhilo("abc", "abc"), 0);
  EXPECT_EQ(memhilo("", ""), 0);
  EXPECT_EQ(memhilo("", "a"), -1);
  EXPECT_EQ(memhilo("a", ""), 1);
  EXPECT_EQ(memhilo("b", "abc"), 1);
  EXPECT_EQ(memhilo("\xFF", "\x01"), 1);
  EXPECT_EQ(memhilo("\x7F", "\x80"), -1);
  EXPECT_EQ(memhilo(std::string("a\0b", 3), std::string("a\0c", 3)), -1);
  EXPECT_EQ(memhilo("a", std::string("a\0", 2)), -1);
}

TEST(Memhilo, EmptySidesMayBeNull) {
  EXPECT_EQ(com_memhilo(nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(com_memhilo(nullptr, 0, bytes("a"), 1), -1);
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_memhilo(nullptr, 1, bytes("a"), 1));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_memhilo(bytes("a"), 1, nullptr, 1));
}

TEST(SecureMemset, FillsExactly) {
  GuardedBuffer buffer(9, 3);
  EXPECT_EQ(com_secure_memset(buffer.data(), 'x', 8), buffer.data());
  EXPECT_EQ(buffer.contents(8), "xxxxxxxx");
  EXPECT_TRUE(buffer.is_untouched(8));
  EXPECT_EQ(com_secure_memset(buffer.data(), '\xFF', 9), buffer.data());
  EXPECT_EQ(buffer.contents(), std::string(9, '\xFF'));
}

TEST(SecureMemset, NothingToFill) {
  GuardedBuffer buffer(4);
  EXPECT_EQ(com_secure_memset(buffer.data(), 'x', 0), buffer.data());
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(com_secure_memset(nullptr, 'x', 0), nullptr);
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", static_cast<CS_VOID *>(nullptr),
                            com_secure_memset(nullptr, 'x', 1));
}

TEST(Unsigned, ComparesStrings) {
  EXPECT_EQ(com_unsignstrcmp(bytes("\xE9"), bytes("\x41")), 0xE9 - 0x41);
  EXPECT_EQ(com_unsignstrcmp(bytes("\x41"), bytes("\xE9")), 0x41 - 0xE9);
  EXPECT_EQ(com_unsignstrcmp(bytes("abc"), bytes("abc")), 0);
  EXPECT_EQ(com_unsignstrcmp(bytes(""), bytes("")), 0);
  EXPECT_EQ(com_unsignstrcmp(bytes("abc"), bytes("ab")), 'c');
  EXPECT_EQ(com_unsignstrcmp(bytes("ab"), bytes("abc")), -'c');
  EXPECT_EQ(com_unsignstrcmp(bytes("ab\xFF"), bytes("ab")), 255);
  EXPECT_EQ(com_unsignstrcmp(bytes("a"), bytes("B")), 'a' - 'B');
}

// All `len` bytes count, those behind a NUL too: the contract is another than the standard one.
TEST(Unsigned, ComparesBytesBehindANul) {
  EXPECT_EQ(com_unsignstrncmp(bytes("a\0b"), bytes("a\0c"), 3), 'b' - 'c');
  EXPECT_EQ(com_unsignstrncmp(bytes("a\0b"), bytes("a\0c"), 2), 0);
  EXPECT_EQ(com_unsignstrncmp(bytes("abc"), bytes("abd"), 2), 0);
  EXPECT_EQ(com_unsignstrncmp(bytes("\xFF"), bytes("\x01"), 1), 254);
  EXPECT_EQ(com_unsignstrncmp(bytes("a"), bytes("b"), 0), 0);
  EXPECT_EQ(com_unsignstrncmp(bytes("a"), bytes("b"), -1), 0);
  EXPECT_EQ(com_unsignstrnicmp(bytes("A\0B"), bytes("a\0c"), 3), 'b' - 'c');
  EXPECT_EQ(com_unsignstrnicmp(bytes("A\0B"), bytes("a\0b"), 3), 0);
}

TEST(Unsigned, FoldsCase) {
  EXPECT_EQ(com_unsignstricmp(bytes("HeLLo"), bytes("hEllO")), 0);
  EXPECT_EQ(com_unsignstricmp(bytes("AZ@["), bytes("az@[")), 0);
  EXPECT_EQ(com_unsignstricmp(bytes("@"), bytes("`")), '@' - '`');
  EXPECT_EQ(com_unsignstricmp(bytes("["), bytes("{")), '[' - '{');
  EXPECT_EQ(com_unsignstricmp(bytes("B"), bytes("_")), 'b' - '_');
  EXPECT_EQ(com_unsignstricmp(bytes("ABC"), bytes("ab")), 'c');
  EXPECT_EQ(com_unsignstrnicmp(bytes("ABC"), bytes("abD"), 3), 'c' - 'd');
  EXPECT_EQ(com_unsignstrnicmp(bytes("ABC"), bytes("abD"), 2), 0);
}

// In the locale of the application 0xC9 and 0xE9 may be one letter; here they are two bytes.
TEST(Unsigned, IgnoresTheLocaleOfTheApplication) {
  const zrvtest::ForeignLocale locale("ISO-8859-1");
  if (!locale.is_set())
    GTEST_SKIP() << "no locale that folds accented bytes can be had";
  ASSERT_EQ(std::tolower(0xC9), 0xE9);
  EXPECT_EQ(com_unsignstricmp(bytes("\xC9"), bytes("\xE9")), 0xC9 - 0xE9);
  EXPECT_EQ(com_unsignstricmp(bytes("I"), bytes("i")), 0);
}

TEST(Unsigned, NullPointersAreChecked) {
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrcmp(nullptr, bytes("a")));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrcmp(bytes("a"), nullptr));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrncmp(nullptr, bytes("a"), 1));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrncmp(bytes("a"), nullptr, 1));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstricmp(nullptr, bytes("a")));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstricmp(bytes("a"), nullptr));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrnicmp(nullptr, bytes("a"), 1));
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", 0, com_unsignstrnicmp(bytes("a"), nullptr, 1));
}

TEST(Version, Numbers) {
  CS_INT version = 0;
  CS_BOOL is_debug = 0;
  com_version(&version, &is_debug);
  EXPECT_EQ(version, 16001);
  EXPECT_EQ(is_debug, 1);
}

TEST(Version, NullPointersAreChecked) {
  CS_INT version = 5;
  CS_BOOL is_debug = 5;
  auto report = zrvtest::catch_check([&] { com_version(nullptr, &is_debug); });
  EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "com_util.cpp")) << report.text;
  report = zrvtest::catch_check([&] { com_version(&version, nullptr); });
  EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "com_util.cpp")) << report.text;
  EXPECT_EQ(version, 5);
  EXPECT_EQ(is_debug, 5);
}

TEST(Version, SuffixIsDottedAndStartsWithAPoint) {
  const std::string suffix = com_get_driverversionsuffix();
  ASSERT_GT(suffix.size(), 1U);
  EXPECT_EQ(suffix[0], '.');
  EXPECT_EQ(suffix.find_first_not_of(".0123456789"), std::string::npos) << suffix;
  EXPECT_NE(suffix.find('.', 1), std::string::npos) << suffix;
  EXPECT_EQ(com_get_driverversionsuffix(), com_get_driverversionsuffix());
}

TEST(Version, IdentificationLine) {
  EXPECT_EQ(comn__getVdate(), comn__Vdate);
  EXPECT_EQ(std::strncmp(comn__Vdate, "libzrvcomn/", 11), 0) << comn__Vdate;
  EXPECT_EQ(std::strchr(comn__Vdate, '\n'), nullptr);
}

TEST(DefaultTid, StoresAZero) {
  GuardedBuffer buffer(8, 1);
  CS_INT outlen = -1;
  EXPECT_EQ(comn_get_default_tid(buffer.data(), 8, &outlen), CS_SUCCEED);
  EXPECT_EQ(buffer.contents(4), std::string(4, '\0'));
  EXPECT_TRUE(buffer.is_untouched(4));
  EXPECT_EQ(outlen, 4);
}

TEST(DefaultTid, BufferOfFourAndNoLength) {
  GuardedBuffer buffer(4);
  EXPECT_EQ(comn_get_default_tid(buffer.data(), 4, nullptr), CS_SUCCEED);
  EXPECT_EQ(buffer.value<CS_INT>(), 0);
}

TEST(DefaultTid, SmallBufferIsLeftAlone) {
  GuardedBuffer buffer(4);
  CS_INT outlen = -1;
  for (const CS_INT length : {3, 0, -1}) {
    EXPECT_EQ(comn_get_default_tid(buffer.data(), length, &outlen), CS_FAIL);
    EXPECT_TRUE(buffer.is_untouched());
    EXPECT_EQ(outlen, -1);
  }
  EXPECT_EQ(comn_get_default_tid(nullptr, 3, nullptr), CS_FAIL);
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", CS_FAIL, comn_get_default_tid(nullptr, 4, &outlen));
  EXPECT_EQ(outlen, -1);
}

TEST(Dlsym, SearchesTheProcess) {
  char own[] = "com_version";
  EXPECT_EQ(com_dlsym(own), reinterpret_cast<void *>(&com_version));
  char libc[] = "qsort";
  EXPECT_EQ(com_dlsym(libc), reinterpret_cast<void *>(&qsort));
  char absent[] = "zrvtest_no_such_symbol";
  EXPECT_EQ(com_dlsym(absent), nullptr);
  EXPECT_NULL_POINTER_CHECK("com_util.cpp", static_cast<void *>(nullptr), com_dlsym(nullptr));
}

TEST(SanitizeName, FoldsUpToAndIncludingThePosition) {
  const struct {
    CS_INT sanitize, size;
    const char *result;
  } rows[] = {{1, 2, "abcDeF"},  {1, 20, "abcdef"}, {2, 0, "AbCDeF"},  {2, 5, "ABCDEF"},
              {1, -1, "AbCDeF"}, {0, 20, "AbCDeF"}, {3, 20, "AbCDeF"}, {-1, 20, "AbCDeF"}};
  for (const auto &row : rows) {
    char name[] = "AbCDeF";
    comn__sanitize_name(row.sanitize, name, row.size);
    EXPECT_STREQ(name, row.result) << row.sanitize << ' ' << row.size;
  }
  char first[] = "ab";
  comn__sanitize_name(2, first, 0);
  EXPECT_STREQ(first, "Ab");
}

TEST(SanitizeName, EndsAtANul) {
  char name[] = "AB\0CD";
  comn__sanitize_name(1, name, 4);
  EXPECT_EQ(std::string(name, 5), std::string("ab\0CD", 5));
}

TEST(SanitizeName, NullPointerIsChecked) {
  for (const CS_INT sanitize : {0, 1}) {
    const auto report = zrvtest::catch_check([=] { comn__sanitize_name(sanitize, nullptr, 4); });
    EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "com_util.cpp")) << report.text;
  }
}

// Deliberate: other than a result, a name follows the locale of the application.
TEST(SanitizeName, FollowsTheLocaleOfTheApplication) {
  char plain[] = "\xC9\xE9";
  comn__sanitize_name(1, plain, 2);
  EXPECT_STREQ(plain, "\xC9\xE9");
  const zrvtest::ForeignLocale locale("ISO-8859-1");
  if (!locale.is_set())
    GTEST_SKIP() << "no locale that folds accented bytes can be had";
  char name[] = "\xC9\xE9";
  comn__sanitize_name(1, name, 2);
  EXPECT_STREQ(name, "\xE9\xE9");
  comn__sanitize_name(2, name, 2);
  EXPECT_STREQ(name, "\xC9\xC9");
}
