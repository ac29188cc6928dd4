// The panic exit and the checked string copies.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "zrvcomn/comnlib.h"

using zrvtest::GuardedBuffer;

namespace {

char *text(const char *literal) {
  return const_cast<char *>(literal);
}

} // namespace

TEST(PanicDeathTest, ReportsAndExits) {
  EXPECT_EXIT(com_panic(text("out of cheese 100%d")), testing::ExitedWithCode(255),
              "^\nINTERNAL ERROR: unrecoverable error: out of cheese 100%d\n$");
  EXPECT_EXIT(com_panic(text("")), testing::ExitedWithCode(255),
              "^\nINTERNAL ERROR: unrecoverable error: \n$");
}

// The text does not wait for the end of the process.
TEST(PanicDeathTest, FlushesBeforeItExits) {
  EXPECT_EXIT(
      {
        static char buffer[4096];
        std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
        std::atexit([] { _exit(7); });
        com_panic(text("no more"));
      },
      testing::ExitedWithCode(7), "^\nINTERNAL ERROR: unrecoverable error: no more\n$");
}

TEST(Panic, NullMessageIsANullPointerReportAlone) {
  const auto report = zrvtest::catch_check([] { com_panic(nullptr); });
  EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "dbgfuncs.cpp")) << report.text;
}

TEST(CheckedCopy, ExactFit) {
  GuardedBuffer buffer(6);
  EXPECT_EQ(com_copstr(buffer.text(), text("hello"), 6), CS_SUCCEED);
  EXPECT_STREQ(buffer.text(), "hello");
  EXPECT_EQ(com_copstr(buffer.text(), text(""), 1), CS_SUCCEED);
  EXPECT_EQ(buffer.contents(), std::string("\0ello\0", 6));
}

TEST(CheckedCopy, WhatDoesNotFitIsAnAssertion) {
  GuardedBuffer buffer(6);
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(buffer.text(), text("hello!"), 6));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(buffer.text(), text("hello"), 5));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(buffer.text(), text(""), 0));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(buffer.text(), text(""), -1));
  // A null argument is an assertion too, not an invalid pointer.
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(nullptr, text("a"), 6));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_copstr(buffer.text(), nullptr, 6));
  EXPECT_TRUE(buffer.is_untouched());
}

TEST(CheckedAppend, ExactFit) {
  GuardedBuffer buffer(6);
  std::strcpy(buffer.text(), "he");
  EXPECT_EQ(com_catstr(buffer.text(), text("llo"), 6), CS_SUCCEED);
  EXPECT_STREQ(buffer.text(), "hello");
  EXPECT_EQ(com_catstr(buffer.text(), text(""), 6), CS_SUCCEED);
  EXPECT_STREQ(buffer.text(), "hello");
}

TEST(CheckedAppend, WhatDoesNotFitIsAnAssertion) {
  GuardedBuffer buffer(6);
  std::strcpy(buffer.text(), "he");
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), text("llo!"), 6));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), text("llo"), 5));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), text(""), 0));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), text(""), -1));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(nullptr, text("a"), 6));
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), nullptr, 6));
  EXPECT_STREQ(buffer.text(), "he");
  EXPECT_TRUE(buffer.is_untouched(3));
}

TEST(CheckedAppend, UnterminatedDestinationIsAnAssertion) {
  GuardedBuffer buffer(6);
  EXPECT_ASSERTION("dbgfuncs.cpp", CS_FAIL, com_catstr(buffer.text(), text(""), 6));
  EXPECT_TRUE(buffer.is_untouched());
}
