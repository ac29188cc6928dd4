// The report of what is missing of an installation.
#include <sys/stat.h>
#include <unistd.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_verify.cpp";

class Verify : public testing::Test {
protected:
  Verify() : directory(std::filesystem::current_path()) {
    // The printer also writes to a file in the current directory.
    std::filesystem::current_path(installation.path(""));
    installation.write("locales/message/english/cslib.loc", "");
    installation.write("charsets/utf8/utf8.cfg", "");
  }
  ~Verify() override { std::filesystem::current_path(directory); }

  std::string report(CS_RETCODE expected) {
    DescriptorCapture capture(2);
    EXPECT_EQ(com_intl_verify_ctxloc(&context), expected);
    return capture.finish();
  }
  std::string intro() const {
    return "\n\nThe context allocation routine failed when it tried to load localization files!!\n"
           "One or more following problems may caused the failure\n\n"
           "Your zarvek home directory is " +
           installation.path("").substr(0, installation.path("").size() - 1) +
           ". Check the environment variable ZARVEK if it is not the one you want!\n";
  }

  const std::filesystem::path directory;
  const Installation installation;
  CS_CONTEXT context{};
};

TEST_F(Verify, NothingIsMissing) {
  EXPECT_EQ(report(CS_SUCCEED), intro() + "Using default locale name: \"default\"\n");
  std::ifstream file("zrvinit.err");
  const std::string written((std::istreambuf_iterator<char>(file)), {});
  EXPECT_EQ(written, intro() + "Using default locale name: \"default\"\n");
}

TEST_F(Verify, NoHome) {
  setenv("ZARVEK", std::string(1024, 'h').c_str(), 1);
  EXPECT_EQ(report(CS_FAIL),
            intro().substr(0, intro().find("Your")) +
                "Cannot access the zarvek home directory, please check environment variable ZARVEK "
                "or ~zarvek\n");
}

TEST_F(Verify, NoIdentifiersOrLocales) {
  for (const char *const name : {"locales/locales.dat", "config/objectid.dat"}) {
    installation.remove(name);
    EXPECT_EQ(report(CS_FAIL), intro() + "Cannot access file " + installation.path(name) + "\n");
  }
}

TEST_F(Verify, NoPath) {
  const std::string home = "/" + std::string(1010, 'h');
  setenv("ZARVEK", home.c_str(), 1);
  const std::string text = report(CS_FAIL);
  // Each line is cut to 1,023 bytes.
  EXPECT_EQ(text.substr(text.find("Your")),
            ("Your zarvek home directory is " + home).substr(0, 1023) +
                "Check the environment variable ZARVEK if it is not the one you want!\n"
                "Cannot access file objectid.dat\n");
}

TEST_F(Verify, TheLocaleOfTheEnvironment) {
  setenv("LANG", "formats", 1);
  installation.write("locales/message/german/cslib.loc", "");
  installation.write("charsets/set1/set1.cfg", "");
  EXPECT_EQ(report(CS_SUCCEED),
            intro() + "Using locale name \"formats\" defined in environment variable LANG\n");
  setenv("LC_ALL", "default", 1);
  EXPECT_EQ(report(CS_SUCCEED),
            intro() + "Using locale name \"default\" defined in environment variable LC_ALL\n");
  setenv("LC_ALL", std::string(255, 'n').c_str(), 1);
  EXPECT_EQ(report(CS_FAIL), intro() + "Using locale name \"" + std::string(255, 'n') +
                                 "\" defined in environment variable LC_ALL\nLocale name \"" +
                                 std::string(255, 'n') + "\" doesn't exist in your " +
                                 installation.path("locales/locales.dat") + " file\n");
  setenv("LC_ALL", std::string(256, 'n').c_str(), 1);
  EXPECT_EQ(report(CS_FAIL), intro() + "An intl library error occurs when trying to get locale "
                                       "name from environment variable LC_ALL\n");
}

TEST_F(Verify, TheRow) {
  setenv("LANG", "nowhere", 1);
  EXPECT_EQ(report(CS_FAIL),
            intro() +
                "Using locale name \"nowhere\" defined in environment variable LANG\n"
                "Locale name \"nowhere\" doesn't exist in your " +
                installation.path("locales/locales.dat") + " file\n");
}

TEST_F(Verify, EveryFileOfTheRowIsTried) {
  const char *const names[] = {"locales/message/english/common.loc",
                               "locales/message/english/cslib.loc", "charsets/utf8/binary.srt",
                               "charsets/utf8/charset.loc", "charsets/utf8/utf8.cfg"};
  std::string expected = intro() + "Using default locale name: \"default\"\n";
  for (const char *const name : names) {
    installation.remove(name);
    expected += "Cannot access " + installation.path(name) + " file\n";
    EXPECT_EQ(report(CS_FAIL), expected);
  }
}

// The tables of the language are not needed by a row with a date format.
TEST_F(Verify, ARowWithADateFormat) {
  setenv("LANG", "formats", 1);
  installation.remove("locales/message/german/common.loc");
  const std::string text = report(CS_FAIL);
  EXPECT_EQ(text.find("common.loc"), std::string::npos);
  EXPECT_NE(text.find("Cannot access " + installation.path("locales/message/german/cslib.loc") +
                      " file\n"),
            std::string::npos);
}

// What the reader could not finish is gone on with.
TEST_F(Verify, ABrokenRow) {
  installation.write("locales/locales.dat", "[linux]\nlocale = default, english, utf8, \"x\n");
  EXPECT_EQ(report(CS_FAIL), intro() + "Using default locale name: \"default\"\nCannot access " +
                                 installation.path("charsets/utf8/.srt") + " file\n");
}

// What this library ships is whole; two files come with the layers above.
TEST_F(Verify, TheShippedInstallation) {
  setenv("ZARVEK", ZRVTEST_HOME, 1);
  const std::string text = report(CS_FAIL);
  EXPECT_EQ(text.substr(text.find("Using")),
            "Using default locale name: \"default\"\n"
            "Cannot access " ZRVTEST_HOME "/locales/message/us_english/cslib.loc file\n"
            "Cannot access " ZRVTEST_HOME "/charsets/utf8/utf8.cfg file\n");
}

// ---- single files ----

TEST_F(Verify, AFileOfALanguage) {
  CsLocCache cache{};
  MutableText language("english");
  cache.langname = language;
  cache.langnamelen = 7;
  CS_LOCALE locale{};
  locale.messageptr = &cache;
  GuardedBuffer buffer(200);
  EXPECT_EQ(
      com_intl_verify_a_msgfile(&context, &locale, MutableText("common.loc"), buffer.text(), 200),
      CS_SUCCEED);
  EXPECT_EQ(buffer.text(), installation.path("locales/message/english/common.loc"));
  EXPECT_EQ(
      com_intl_verify_a_msgfile(&context, &locale, MutableText("other.loc"), buffer.text(), 200),
      CS_FAIL);
  EXPECT_EQ(buffer.text(), installation.path("locales/message/english/other.loc"));
  for (const CS_INT room : {1, 2, 10}) {
    GuardedBuffer small(static_cast<size_t>(room));
    const CS_RETCODE result =
        com_intl_verify_a_msgfile(&context, &locale, MutableText("common.loc"), small.text(), room);
    EXPECT_TRUE(result == CS_FAIL || result == COM_INTL_ERROR);
    EXPECT_STREQ(small.text(), room == 1 ? "" : "*");
  }
  EXPECT_ASSERTION(
      unit, CS_FAIL,
      com_intl_verify_a_msgfile(&context, &locale, MutableText("common.loc"), buffer.text(), 0));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_intl_verify_a_msgfile(&context, nullptr, MutableText("x"), buffer.text(), 200));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_intl_verify_a_msgfile(&context, &locale, MutableText("x"), nullptr, 200));
}

TEST_F(Verify, AFileOfACharacterSet) {
  GuardedBuffer buffer(200);
  EXPECT_EQ(com__verify_charfile(&context, MutableText("set1"), MutableText("other"),
                                 MutableText("srt"), buffer.text(), 200),
            CS_SUCCEED);
  EXPECT_EQ(buffer.text(), installation.path("charsets/set1/other.srt"));
  EXPECT_EQ(com__verify_charfile(&context, MutableText("set1"), MutableText("charset.loc"), nullptr,
                                 buffer.text(), 200),
            CS_SUCCEED);
  EXPECT_EQ(com__verify_charfile(&context, MutableText("set9"), MutableText("charset.loc"), nullptr,
                                 buffer.text(), 200),
            CS_FAIL);
  EXPECT_EQ(buffer.text(), installation.path("charsets/set9/charset.loc"));
  EXPECT_ASSERTION(unit, CS_FAIL,
                   com__verify_charfile(&context, MutableText("set1"), MutableText("other"),
                                        MutableText("srt"), buffer.text(), -1));
}

} // namespace
