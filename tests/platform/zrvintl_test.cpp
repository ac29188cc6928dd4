// The platform library: memory, environment, home directory, bounded strings.
#include <dlfcn.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::GuardedBuffer;

namespace {

constexpr char variable[] = "ZRVTEST_VARIABLE";

// The user zarvek as the platform library sees him. His home may be null, as the system may say.
struct User {
  bool exists = false;
  int error = 0;
  const char *home = nullptr;
} user;

} // namespace

// The sanitizers' allocator answers a request for too much as the C library's does.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}

// Stands in for the C library's function.
extern "C" int getpwnam_r(const char *name, passwd *entry, char *, size_t size, passwd **found) {
  EXPECT_STREQ(name, "zarvek");
  EXPECT_GE(size, 1024U);
  *found = nullptr;
  if (user.error == 0 && user.exists) {
    *entry = passwd{};
    entry->pw_dir = const_cast<char *>(user.home);
    *found = entry;
  }
  return user.error;
}

namespace {

// Sets variables and brings the old values back.
class Environment : public testing::Test {
protected:
  Environment() {
    user = User{};
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

TEST_F(Home, OfTheUser) {
  unsetenv("ZARVEK");
  user.exists = true;
  user.home = "/home/zarvek/";
  GuardedBuffer buffer(13);
  EXPECT_EQ(intl_home(buffer.text(), 13), 12);
  EXPECT_STREQ(buffer.text(), "/home/zarvek");
  GuardedBuffer small(12);
  EXPECT_EQ(intl_home(small.text(), 12), ZRVINTL_ESIZE) << "no other home is looked for";
  EXPECT_STREQ(small.text(), "");
  setenv("ZARVEK", "", 1);
  EXPECT_EQ(intl_home(buffer.text(), 13), 12) << "an empty variable is none";
  setenv("ZARVEK", "/opt/z", 1);
  EXPECT_EQ(intl_home(buffer.text(), 13), 6);
  EXPECT_STREQ(buffer.text(), "/opt/z");
}

TEST_F(Home, UserWithoutAHomeIsNone) {
  unsetenv("ZARVEK");
  char installed[4096];
  const int length = intl_home(installed, sizeof installed);
  ASSERT_GT(length, 0);
  for (const User &without :
       {User{true, 0, nullptr}, User{true, 0, ""}, User{true, ERANGE, "/x"}}) {
    user = without;
    char home[4096];
    EXPECT_EQ(intl_home(home, sizeof home), length);
    EXPECT_STREQ(home, installed);
  }
}

// A library that stands alone has no home tree beside it.
TEST_F(Home, NoneIsFound) {
  namespace fs = std::filesystem;
  unsetenv("ZARVEK");
  std::string pattern = testing::TempDir() + "zrvtest_home_XXXXXX";
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const fs::path directory = fs::path(pattern) / "lib";
  fs::create_directory(directory);
  fs::copy_file(ZRVTEST_LIBRARY, directory / "libcopy.so");
  void *library = dlopen((directory / "libcopy.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto copied_home = reinterpret_cast<int (*)(char *, int)>(dlsym(library, "intl_home"));
  ASSERT_NE(copied_home, nullptr);
  ASSERT_NE(copied_home, &intl_home);
  GuardedBuffer buffer(64);
  EXPECT_EQ(copied_home(buffer.text(), 64), ZRVINTL_ENOHOME);
  EXPECT_STREQ(buffer.text(), "");
  dlclose(library);
  fs::remove_all(pattern);
}

// Without the variable, and with an empty one, the library works out of the box.
TEST_F(Home, InstalledTree) {
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

// The source may be a part of the destination, or all of it.
TEST(BoundedCopy, OfItself) {
  GuardedBuffer buffer(8);
  std::strcpy(buffer.text(), "abcdef");
  EXPECT_EQ(intl_strlcpy(buffer.text(), buffer.text(), 8), 6U);
  EXPECT_STREQ(buffer.text(), "abcdef");
  EXPECT_EQ(intl_strlcpy(buffer.text(), buffer.text() + 2, 8), 4U);
  EXPECT_STREQ(buffer.text(), "cdef");
  EXPECT_EQ(intl_strlcpy(buffer.text() + 1, buffer.text(), 7), 4U);
  EXPECT_STREQ(buffer.text(), "ccdef");
}

TEST(BoundedAppend, OfItself) {
  GuardedBuffer buffer(8);
  std::strcpy(buffer.text(), "abc");
  EXPECT_EQ(intl_strlcat(buffer.text(), buffer.text(), 8), 6U);
  EXPECT_STREQ(buffer.text(), "abcabc");
  EXPECT_EQ(intl_strlcat(buffer.text(), buffer.text() + 3, 8), 9U);
  EXPECT_STREQ(buffer.text(), "abcabca");
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
