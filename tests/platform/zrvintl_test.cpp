// The platform library: memory, environment, home directory, bounded strings.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::GuardedBuffer;

namespace {

constexpr char variable[] = "ZRVTEST_VARIABLE";

// Sets variables and brings the old values back.
class Environment : public testing::Test {
protected:
  Environment() {
    if (const char *home = std::getenv("ZARVEK"))
      old_home = home, had_home = true;
  }
  ~Environment() override {
    unsetenv(variable);
    if (had_home)
      setenv("ZARVEK", old_home.c_str(), 1);
    else
      unsetenv("ZARVEK");
  }

private:
  std::string old_home;
  bool had_home = false;
};

using Home = Environment;

// The home directory for a value of ZARVEK, or the status.
std::string home_for(const char *value) {
  setenv("ZARVEK", value, 1);
  GuardedBuffer buffer(64);
  const int length = intl_home(buffer.text(), 64);
  if (length < 0)
    return std::to_string(length);
  EXPECT_EQ(std::strlen(buffer.text()), static_cast<size_t>(length));
  return buffer.text();
}

} // namespace

TEST(Memory, BlocksAreAlignedForAnyType) {
  for (const size_t size : {1U, 7U, 8U, 100U, 100000U}) {
    void *block = comn_malloc(size);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0U);
    std::memset(block, 0xA5, size);
    comn_free(block);
  }
}

TEST(Memory, NothingIsABlockOfItsOwn) {
  void *blocks[] = {comn_malloc(0),           comn_malloc(0),          comn_calloc(0, 0),
                    comn_calloc(0, 8),        comn_calloc(8, 0),       comn_realloc(nullptr, 0),
                    comn_calloc(0, SIZE_MAX), comn_calloc(SIZE_MAX, 0)};
  for (size_t i = 0; i < std::size(blocks); ++i) {
    EXPECT_NE(blocks[i], nullptr) << i;
    for (size_t k = 0; k < i; ++k)
      EXPECT_NE(blocks[i], blocks[k]);
  }
  for (void *block : blocks)
    comn_free(block);
  comn_free(nullptr);
}

TEST(Memory, CallocClears) {
  // Rubbish first, so that the same memory may come back.
  void *rubbish = comn_malloc(400);
  std::memset(rubbish, 0xA5, 400);
  comn_free(rubbish);
  auto *block = static_cast<unsigned char *>(comn_calloc(100, 4));
  ASSERT_NE(block, nullptr);
  for (size_t i = 0; i < 400; ++i)
    EXPECT_EQ(block[i], 0) << i;
  comn_free(block);
}

TEST(Memory, ReallocKeepsTheContents) {
  auto *block = static_cast<char *>(comn_realloc(nullptr, 8));
  ASSERT_NE(block, nullptr);
  std::memcpy(block, "abcdefg", 8);
  block = static_cast<char *>(comn_realloc(block, 100000));
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block, "abcdefg");
  block = static_cast<char *>(comn_realloc(block, 3));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(std::memcmp(block, "abc", 3), 0);
  // A size of 0 does not release.
  block = static_cast<char *>(comn_realloc(block, 0));
  ASSERT_NE(block, nullptr);
  block = static_cast<char *>(comn_realloc(block, 10));
  ASSERT_NE(block, nullptr);
  comn_free(block);
}

#if !defined(__SANITIZE_ADDRESS__)
TEST(Memory, TooMuchIsNull) {
  const volatile size_t huge = SIZE_MAX - 64;
  EXPECT_EQ(comn_malloc(huge), nullptr);
  EXPECT_EQ(comn_calloc(huge, 2), nullptr) << "the product overflows";
  EXPECT_EQ(comn_calloc(2, huge), nullptr);
  EXPECT_EQ(comn_calloc(SIZE_MAX / 16 + 2, 16), nullptr) << "to 16 bytes, if it wrapped";
  auto *block = static_cast<char *>(comn_malloc(8));
  std::memcpy(block, "abcdefg", 8);
  EXPECT_EQ(comn_realloc(block, huge), nullptr);
  EXPECT_STREQ(block, "abcdefg") << "the old block lives on";
  comn_free(block);
}
#endif

TEST_F(Environment, Found) {
  setenv(variable, "value", 1);
  GuardedBuffer buffer(6);
  EXPECT_EQ(intlgetenv(buffer.text(), 6, variable), 5);
  EXPECT_STREQ(buffer.text(), "value");
}

TEST_F(Environment, UnsetAndEmptyAreZero) {
  GuardedBuffer buffer(6);
  EXPECT_EQ(intlgetenv(buffer.text(), 6, variable), 0);
  EXPECT_STREQ(buffer.text(), "");
  setenv(variable, "", 1);
  buffer.text()[0] = 'x';
  EXPECT_EQ(intlgetenv(buffer.text(), 6, variable), 0);
  EXPECT_STREQ(buffer.text(), "");
  EXPECT_EQ(intlgetenv(buffer.text(), 6, ""), 0);
  EXPECT_EQ(intlgetenv(buffer.text(), 1, variable), 0);
}

// Never cut.
TEST_F(Environment, ValueThatDoesNotFit) {
  setenv(variable, "value", 1);
  for (const int size : {5, 1}) {
    GuardedBuffer buffer(static_cast<size_t>(size));
    EXPECT_EQ(intlgetenv(buffer.text(), size, variable), ZRVINTL_ESIZE);
    EXPECT_STREQ(buffer.text(), "");
    EXPECT_TRUE(buffer.is_untouched(1));
  }
}

TEST_F(Environment, BadArguments) {
  setenv(variable, "value", 1);
  GuardedBuffer buffer(6);
  EXPECT_EQ(intlgetenv(nullptr, 6, variable), ZRVINTL_EINVAL);
  EXPECT_EQ(intlgetenv(buffer.text(), 0, variable), ZRVINTL_EINVAL);
  EXPECT_EQ(intlgetenv(buffer.text(), -1, variable), ZRVINTL_EINVAL);
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(intlgetenv(buffer.text(), 6, nullptr), ZRVINTL_EINVAL);
  EXPECT_STREQ(buffer.text(), "");
}

TEST_F(Home, FromTheVariable) {
  EXPECT_EQ(home_for("/opt/z"), "/opt/z");
  EXPECT_EQ(home_for("relative/dir"), "relative/dir");
}

TEST_F(Home, TrailingSlashesAreDropped) {
  EXPECT_EQ(home_for("/opt/z/"), "/opt/z");
  EXPECT_EQ(home_for("/opt/z///"), "/opt/z");
  EXPECT_EQ(home_for("/"), "/");
  EXPECT_EQ(home_for("///"), "/");
  EXPECT_EQ(home_for("//opt//z"), "//opt//z");
}

TEST_F(Home, BufferSizes) {
  setenv("ZARVEK", "/opt/z/", 1);
  GuardedBuffer exact(7);
  EXPECT_EQ(intl_home(exact.text(), 7), 6) << "the slash does not count";
  EXPECT_STREQ(exact.text(), "/opt/z");
  for (const int size : {6, 1}) {
    GuardedBuffer small(static_cast<size_t>(size));
    EXPECT_EQ(intl_home(small.text(), size), ZRVINTL_ESIZE);
    EXPECT_STREQ(small.text(), "");
    EXPECT_TRUE(small.is_untouched(1));
  }
}

TEST_F(Home, BadArguments) {
  GuardedBuffer buffer(6);
  EXPECT_EQ(intl_home(nullptr, 6), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_home(buffer.text(), 0), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_home(buffer.text(), -1), ZRVINTL_EINVAL);
  EXPECT_TRUE(buffer.is_untouched());
}

// Without the variable, and with an empty one, the library works out of the box.
TEST_F(Home, InstalledTree) {
  if (getpwnam("zarvek") != nullptr)
    GTEST_SKIP() << "the user zarvek has a home of its own";
  unsetenv("ZARVEK");
  for (int pass = 0; pass < 2; ++pass) {
    char home[4096];
    const int length = intl_home(home, sizeof home);
    ASSERT_GT(length, 0);
    EXPECT_EQ(std::strlen(home), static_cast<size_t>(length));
    EXPECT_EQ(home[0], '/');
    struct stat found {};
    EXPECT_EQ(stat(home, &found), 0) << home;
    EXPECT_TRUE(S_ISDIR(found.st_mode)) << home;
    struct stat expected {};
    ASSERT_EQ(stat(ZRVTEST_HOME, &expected), 0);
    EXPECT_EQ(found.st_ino, expected.st_ino) << home;
    EXPECT_EQ(found.st_dev, expected.st_dev) << home;

    GuardedBuffer small(static_cast<size_t>(length));
    EXPECT_EQ(intl_home(small.text(), length), ZRVINTL_ESIZE);
    EXPECT_STREQ(small.text(), "");
    setenv("ZARVEK", "", 1);
  }
}

TEST(BoundedCopy, FitsOrIsCut) {
  GuardedBuffer buffer(6);
  EXPECT_EQ(intl_strlcpy(buffer.text(), "hello", 6), 5U);
  EXPECT_STREQ(buffer.text(), "hello");
  EXPECT_EQ(intl_strlcpy(buffer.text(), "world!", 6), 6U);
  EXPECT_STREQ(buffer.text(), "world");
  EXPECT_EQ(intl_strlcpy(buffer.text(), "a much longer text", 6), 18U);
  EXPECT_STREQ(buffer.text(), "a muc");
  EXPECT_EQ(intl_strlcpy(buffer.text(), "", 6), 0U);
  EXPECT_EQ(buffer.contents(), std::string("\0 muc\0", 6));
}

TEST(BoundedCopy, SmallestSizes) {
  GuardedBuffer buffer(4);
  EXPECT_EQ(intl_strlcpy(buffer.text(), "text", 0), 4U);
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(intl_strlcpy(buffer.text(), "text", 1), 4U);
  EXPECT_STREQ(buffer.text(), "");
  EXPECT_TRUE(buffer.is_untouched(1));
}

TEST(BoundedAppend, FitsOrIsCut) {
  GuardedBuffer buffer(8);
  buffer.text()[0] = '\0';
  EXPECT_EQ(intl_strlcat(buffer.text(), "abc", 8), 3U);
  EXPECT_STREQ(buffer.text(), "abc");
  EXPECT_TRUE(buffer.is_untouched(4));
  EXPECT_EQ(intl_strlcat(buffer.text(), "", 8), 3U);
  EXPECT_EQ(intl_strlcat(buffer.text(), "defg", 8), 7U);
  EXPECT_STREQ(buffer.text(), "abcdefg");
  EXPECT_EQ(intl_strlcat(buffer.text(), "hi", 8), 9U);
  EXPECT_STREQ(buffer.text(), "abcdefg");
  std::strcpy(buffer.text(), "abc");
  EXPECT_EQ(intl_strlcat(buffer.text(), "defgh", 8), 8U);
  EXPECT_STREQ(buffer.text(), "abcdefg");
}

TEST(BoundedAppend, UnterminatedDestinationIsLeftAlone) {
  GuardedBuffer buffer(4);
  EXPECT_EQ(intl_strlcat(buffer.text(), "abc", 4), 7U);
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(intl_strlcat(buffer.text(), "abc", 0), 3U);
  EXPECT_TRUE(buffer.is_untouched());
}
