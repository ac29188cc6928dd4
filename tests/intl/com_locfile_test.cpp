// The openers of section files: which file each of them opens, what it reports, how it fails.
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace {

namespace fs = std::filesystem;
using zrvtest::GuardedBuffer;

constexpr const char *unit = "com_locfile.cpp";

// The openers want pointers to what they do not change.
CS_CHAR *text(const char *constant) {
  return const_cast<CS_CHAR *>(constant);
}

// One opener with names of its own, and where its file is below the home directory.
struct Opener {
  const char *name;
  const char *place;
  bool reports;
  std::function<CS_RETCODE(CS_CONTEXT *, INTL_LOCFILE *, CS_CHAR *, CS_INT)> open;
};

const std::vector<Opener> openers = {
    {"com__open_locfile", "locales/us_english/iso_1/f.loc", true,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *path, CS_INT size) {
       return com__open_locfile(context, text("us_english"), text("iso_1"), text("f.loc"), file,
                                path, size);
     }},
    {"com__open_locfile without names", "locales/locales.dat", true,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *path, CS_INT size) {
       return com__open_locfile(context, nullptr, nullptr, text("locales.dat"), file, path, size);
     }},
    {"com__open_charfile", "charsets/iso_1/nocase.srt", true,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *path, CS_INT size) {
       return com__open_charfile(context, text("iso_1"), text("nocase"), text("srt"), file, path,
                                 size);
     }},
    {"com__open_charfile without an extension", "charsets/iso_1/charset.loc", true,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *path, CS_INT size) {
       return com__open_charfile(context, text("iso_1"), text("charset.loc"), nullptr, file, path,
                                 size);
     }},
    {"comn__open_msgfile", "locales/message/french/common.loc", true,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *path, CS_INT size) {
       return comn__open_msgfile(context, text("french"), 6, text("common.loc"), 10, file, path,
                                 size);
     }},
    {"com__open_cfgfile", "config/objectid.dat", false,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *, CS_INT) {
       return com__open_cfgfile(context, text("objectid.dat"), file, 0);
     }},
    {"com__open_cfgfile of the product", "NCL-1/config/ncl.cfg", false,
     [](CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *, CS_INT) {
       return com__open_cfgfile(context, text("ncl.cfg"), file, 1);
     }},
};

// A home directory of its own, and a context without anything but its status.
class OpenerTest : public testing::Test {
protected:
  OpenerTest() {
    std::string pattern = testing::TempDir() + "zrvtest_home_XXXXXX";
    home = mkdtemp(pattern.data());
    setenv("ZARVEK", home.c_str(), 1);
    setenv("ZARVEK_NCL", "NCL-1", 1);
    context.ctxintlerr = 77;
    std::memset(&file, 0xA5, sizeof file);
  }
  ~OpenerTest() override {
    unsetenv("ZARVEK");
    unsetenv("ZARVEK_NCL");
    fs::remove_all(home);
  }

  std::string path_of(const Opener &opener) { return home + "/" + opener.place; }

  // Files whose one section is the name of their opener.
  void write_files() {
    for (const Opener &opener : openers) {
      fs::create_directories(fs::path(path_of(opener)).parent_path());
      std::ofstream(path_of(opener)) << "[" << opener.name << "]\n";
    }
  }

  // The section of the open file, which is closed.
  std::string read_and_close() {
    int status = 77;
    const char *const section = intl_nextsection(&file, &status);
    const std::string name = section != nullptr ? section : "none";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(intl_close(&file), 0);
    return name;
  }

  bool is_untouched() {
    INTL_LOCFILE before;
    std::memset(&before, 0xA5, sizeof before);
    return std::memcmp(&file, &before, sizeof file) == 0;
  }

  std::string home;
  CS_CONTEXT context{};
  INTL_LOCFILE file;
};

TEST_F(OpenerTest, EachOpensItsFile) {
  write_files();
  for (const Opener &opener : openers) {
    CS_CHAR path[1025] = {};
    ASSERT_EQ(opener.open(&context, &file, path, sizeof path), CS_SUCCEED) << opener.name;
    EXPECT_EQ(path, opener.reports ? path_of(opener) : "");
    EXPECT_EQ(read_and_close(), opener.name);
    EXPECT_EQ(context.ctxintlerr, 77);
  }
}

TEST_F(OpenerTest, NobodyNeedsToAskForThePath) {
  write_files();
  for (const Opener &opener : openers) {
    for (const CS_INT size : {0, -1, 10}) {
      ASSERT_EQ(opener.open(&context, &file, nullptr, size), CS_SUCCEED) << opener.name;
      EXPECT_EQ(read_and_close(), opener.name);
    }
  }
}

TEST_F(OpenerTest, ThePathIsToldWhenTheOpenFails) {
  const zrvtest::AllocationProbe allocations;
  for (const Opener &opener : openers) {
    const std::string path = path_of(opener);
    GuardedBuffer told(path.size() + 1);
    context.ctxintlerr = 77;
    EXPECT_EQ(opener.open(&context, &file, told.text(), static_cast<CS_INT>(told.size())),
              COM_LOCFILE_ERROR)
        << opener.name;
    EXPECT_EQ(context.ctxintlerr, -1);
    EXPECT_EQ(intl_close(&file), ZRVINTL_ECLOSED);
    if (opener.reports)
      EXPECT_STREQ(told.text(), path.c_str());
    else
      EXPECT_TRUE(told.is_untouched());
  }
  EXPECT_EQ(allocations.live_blocks(), 0U);
}

// The path is cut for the report and not for the open.
TEST_F(OpenerTest, ThePathIsCutToItsBuffer) {
  write_files();
  for (const Opener &opener : openers) {
    if (!opener.reports)
      continue;
    const std::string path = path_of(opener);
    for (const size_t size :
         {size_t{1}, size_t{2}, path.size() - 1, path.size(), path.size() + 1, path.size() + 2}) {
      GuardedBuffer told(size);
      ASSERT_EQ(opener.open(&context, &file, told.text(), static_cast<CS_INT>(size)), CS_SUCCEED);
      EXPECT_EQ(told.text(), path.substr(0, size - 1));
      EXPECT_EQ(read_and_close(), opener.name);
    }
  }
}

// A home directory of the same place and any length.
std::string longer_home(std::string home, size_t length) {
  while (home.size() + 2 <= length)
    home += "/.";
  if (home.size() < length)
    home.insert(home.rfind('/'), "/");
  EXPECT_EQ(home.size(), length);
  return home;
}

// The last path that its builder lets through opens the file; a longer one is the builder's failure,
// and nothing is told.
TEST_F(OpenerTest, PathsOfEveryLength) {
  write_files();
  for (const Opener &opener : openers) {
    const size_t tail = std::strlen(opener.place) + 1;
    setenv("ZARVEK", longer_home(home, 1024 - tail).c_str(), 1);
    EXPECT_EQ(opener.open(&context, &file, nullptr, 0), CS_SUCCEED) << opener.name;
    EXPECT_EQ(read_and_close(), opener.name);

    setenv("ZARVEK", longer_home(home, 1026 - tail).c_str(), 1);
    std::memset(&file, 0xA5, sizeof file);
    GuardedBuffer told(1025);
    EXPECT_EQ(opener.open(&context, &file, told.text(), 1025), CS_FAIL) << opener.name;
    EXPECT_TRUE(told.is_untouched());
    EXPECT_TRUE(is_untouched());
    EXPECT_EQ(context.ctxintlerr, 77);
  }
}

TEST_F(OpenerTest, HomeThatDoesNotFit) {
  setenv("ZARVEK", longer_home(home, 1025).c_str(), 1);
  for (const Opener &opener : openers) {
    GuardedBuffer told(1025);
    context.ctxintlerr = 77;
    EXPECT_EQ(opener.open(&context, &file, told.text(), 1025), COM_INTL_ERROR) << opener.name;
    EXPECT_EQ(context.ctxintlerr, ZRVINTL_ESIZE);
    EXPECT_TRUE(told.is_untouched());
    EXPECT_TRUE(is_untouched());
  }
}

// The caller's length of the file's name decides whether the path fits, as in the builder.
TEST_F(OpenerTest, LengthOfAMessageFile) {
  write_files();
  const auto open = [&](CS_INT langlen, CS_INT msgfilelen) {
    return comn__open_msgfile(&context, text("french"), langlen, text("common.loc"), msgfilelen,
                              &file, nullptr, 0);
  };
  const auto room =
      static_cast<CS_INT>(1024 - home.size() - std::strlen("/locales/message/french/"));
  for (const CS_INT langlen : {-9, 0, 6, 5000}) {
    EXPECT_EQ(open(langlen, room), CS_SUCCEED);
    EXPECT_EQ(read_and_close(), "comn__open_msgfile");
    EXPECT_EQ(open(langlen, room + 1), CS_FAIL);
  }
}

TEST_F(OpenerTest, ProductDirectory) {
  write_files();
  EXPECT_EQ(com__open_cfgfile(&context, text("objectid.dat"), &file, 1), COM_LOCFILE_ERROR);
  unsetenv("ZARVEK_NCL");
  EXPECT_EQ(com__open_cfgfile(&context, text("objectid.dat"), &file, 1), CS_SUCCEED);
  EXPECT_EQ(read_and_close(), "com__open_cfgfile");
}

TEST_F(OpenerTest, FatalArguments) {
  write_files();
  for (const Opener &opener : openers) {
    CS_CHAR path[1025];
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, opener.open(nullptr, &file, path, sizeof path));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, opener.open(&context, nullptr, path, sizeof path));
    if (!opener.reports)
      continue;
    for (const CS_INT size : {0, -1}) {
      GuardedBuffer told(1);
      const zrvtest::IoProbe probe;
      EXPECT_ASSERTION(unit, CS_FAIL, opener.open(&context, &file, told.text(), size));
      EXPECT_TRUE(told.is_untouched());
      EXPECT_EQ(probe.open_files(), 0U);
    }
  }
  // What the builders need is theirs to check.
  constexpr const char *builder = "com_path.cpp";
  EXPECT_NULL_POINTER_CHECK(
      builder, CS_FAIL, com__open_locfile(&context, nullptr, nullptr, nullptr, &file, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(
      builder, CS_FAIL, comn__open_msgfile(&context, nullptr, 0, text("f"), 1, &file, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(builder, CS_FAIL, com__open_cfgfile(&context, nullptr, &file, 0));
  EXPECT_TRUE(is_untouched());
}

// A directory opens, and its first read fails.
TEST_F(OpenerTest, CharacterSetDirectory) {
  write_files();
  CS_CHAR path[1025];
  ASSERT_EQ(
      com__open_charfile(&context, text("iso_1"), nullptr, text("srt"), &file, path, sizeof path),
      CS_SUCCEED);
  EXPECT_EQ(path, home + "/charsets/iso_1");
  int status = 0;
  EXPECT_EQ(intl_nextsection(&file, &status), nullptr);
  EXPECT_EQ(status, ZRVINTL_EREAD);
  EXPECT_EQ(intl_close(&file), 0);
}

TEST_F(OpenerTest, EachCallOfTheSystemFails) {
  write_files();
  for (const Opener &opener : openers) {
    const auto fails = [&] {
      if (opener.open(&context, &file, nullptr, 0) != CS_SUCCEED)
        return true;
      int status;
      intl_nextsection(&file, &status);
      const bool closed = intl_close(&file) == 0;
      return !closed || status < 0;
    };
    EXPECT_EQ(zrvtest::fail_each_io(fails), 3U) << opener.name;
    EXPECT_GT(zrvtest::fail_each_allocation([] {}, fails, [] {}), 0U) << opener.name;
  }
}

} // namespace
