// The emergency printer.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace {

namespace fs = std::filesystem;
using namespace zrvtest;

// The current directory is one of its own.
class EmergencyPrinter : public testing::Test {
protected:
  EmergencyPrinter() : before(fs::current_path()) {
    std::string pattern = testing::TempDir() + "zrvtest_print_XXXXXX";
    folder = mkdtemp(pattern.data());
    fs::current_path(folder);
  }
  ~EmergencyPrinter() override {
    fs::current_path(before);
    fs::remove_all(folder);
  }

  // What goes to standard error.
  static std::string print(const char *text) {
    std::fflush(stderr);
    DescriptorCapture capture(2);
    com_perr(const_cast<char *>(text));
    return capture.finish();
  }
  static std::string file() {
    std::ifstream stream("zrvinit.err", std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  fs::path before;
  std::string folder;
};

TEST_F(EmergencyPrinter, ToStandardErrorAndBehindTheFile) {
  EXPECT_EQ(print("first\n"), "first\n");
  EXPECT_EQ(file(), "first\n");
  EXPECT_EQ(print("second\n"), "second\n");
  EXPECT_EQ(file(), "first\nsecond\n");
  EXPECT_EQ(print(""), "");
  EXPECT_EQ(file(), "first\nsecond\n");
}

TEST_F(EmergencyPrinter, TakesNoArguments) {
  EXPECT_EQ(print("100%"), "100%");
  EXPECT_EQ(print("%s %n %d %"), "%s %n %d %");
  EXPECT_EQ(print("100%% of %%s%%"), "100% of %s%");
  EXPECT_EQ(print("%%%"), "%%");
  EXPECT_EQ(file(), "100%%s %n %d %100% of %s%%%");
}

TEST_F(EmergencyPrinter, AFileThatCannotBeOpenedIsPassedOver) {
  fs::create_directory("zrvinit.err");
  const size_t before_call = open_descriptors();
  EXPECT_EQ(print("text\n"), "text\n");
  EXPECT_EQ(open_descriptors(), before_call);
  EXPECT_TRUE(fs::is_empty("zrvinit.err"));
}

TEST_F(EmergencyPrinter, TheFileIsClosed) {
  const size_t before_call = open_descriptors();
  print("text\n");
  EXPECT_EQ(open_descriptors(), before_call);
}

TEST_F(EmergencyPrinter, NullIsFatal) {
  const CheckReport report = catch_check([] { com_perr(nullptr); });
  EXPECT_TRUE(is_null_pointer_report(report, "com_perr.cpp")) << report.text;
  EXPECT_FALSE(fs::exists("zrvinit.err"));
}

} // namespace
