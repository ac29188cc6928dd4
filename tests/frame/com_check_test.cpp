// The two checks and how they end the process.
#include <csignal>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace {

char unit[] = "some/unit.cpp";

// Ends the process from within signal 6, with a code that tells whether standard error was open.
void report_stderr_and_exit(int) {
  _exit(fcntl(2, F_GETFD) == -1 ? 41 : 42);
}

void ignore_signal(int) {}

// Gives standard error a buffer, as an application may: what it holds is lost when the process ends
// with _exit or by a signal.
void buffer_stderr() {
  static char buffer[4096];
  std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
}

} // namespace

TEST(Checks, AssertionTextAndSignal) {
  const auto report = zrvtest::catch_check([&] { com_bomb(unit, 42); });
  EXPECT_EQ(report.signals, 1);
  EXPECT_EQ(report.text, "\n\rassertion failed, file 'some/unit.cpp' line 42\n\r");
}

// The blank before the comma is deliberate.
TEST(Checks, NullPointerTextAndSignal) {
  const auto report = zrvtest::catch_check([&] { com_raise_invalid_null_pointer(unit, 7); });
  EXPECT_EQ(report.signals, 1);
  EXPECT_EQ(report.text, "\nInvalid NULL pointer , file 'some/unit.cpp' line 7\n");
}

TEST(Checks, PathIsPrintedWhole) {
  char path[] = "/very/long/../path/x.c";
  const auto report = zrvtest::catch_check([&] { com_bomb(path, -1); });
  EXPECT_EQ(report.text, "\n\rassertion failed, file '/very/long/../path/x.c' line -1\n\r");
}

TEST(Checks, NullFileIsPrintedEmpty) {
  const auto bomb = zrvtest::catch_check([] { com_bomb(nullptr, 1); });
  EXPECT_EQ(bomb.signals, 1);
  EXPECT_EQ(bomb.text, "\n\rassertion failed, file '' line 1\n\r");
  const auto null = zrvtest::catch_check([] { com_raise_invalid_null_pointer(nullptr, 1); });
  EXPECT_EQ(null.signals, 1);
  EXPECT_EQ(null.text, "\nInvalid NULL pointer , file '' line 1\n");
}

TEST(Checks, ToggleStoresTheValue) {
  EXPECT_EQ(full_abort, 0);
  com_toggle_abort(7);
  EXPECT_EQ(full_abort, 7);
  com_toggle_abort(0);
  EXPECT_EQ(full_abort, 0);
}

// Only 1 selects the hard abort.
TEST(Checks, OtherValuesRaiseTheSignal) {
  for (const CS_INT value : {0, 2, -1}) {
    com_toggle_abort(value);
    const auto report = zrvtest::catch_check([&] { com_bomb(unit, 42); });
    EXPECT_EQ(report.signals, 1) << value;
  }
  com_toggle_abort(0);
}

TEST(ChecksDeathTest, DefaultRaisesSignalSixWithStandardErrorOpen) {
  EXPECT_EXIT(com_bomb(unit, 42), testing::KilledBySignal(SIGABRT),
              "assertion failed, file 'some/unit.cpp' line 42");
  EXPECT_EXIT(
      {
        std::signal(SIGABRT, report_stderr_and_exit);
        com_bomb(unit, 42);
      },
      testing::ExitedWithCode(42), "assertion failed");
}

TEST(ChecksDeathTest, ReportsAreFlushedBeforeTheSignal) {
  EXPECT_EXIT(
      {
        buffer_stderr();
        com_bomb(unit, 42);
      },
      testing::KilledBySignal(SIGABRT), "assertion failed, file 'some/unit.cpp' line 42");
  EXPECT_EXIT(
      {
        buffer_stderr();
        std::signal(SIGABRT, report_stderr_and_exit);
        com_raise_invalid_null_pointer(unit, 7);
      },
      testing::ExitedWithCode(42), "Invalid NULL pointer , file 'some/unit.cpp' line 7");
}

TEST(ChecksDeathTest, HardAbortClosesStandardErrorFirst) {
  EXPECT_EXIT(
      {
        std::signal(SIGABRT, report_stderr_and_exit);
        com_toggle_abort(1);
        com_bomb(unit, 42);
      },
      testing::ExitedWithCode(41), "assertion failed, file 'some/unit.cpp' line 42");
  EXPECT_EXIT(
      {
        std::signal(SIGABRT, report_stderr_and_exit);
        com_toggle_abort(1);
        com_raise_invalid_null_pointer(unit, 7);
      },
      testing::ExitedWithCode(41), "Invalid NULL pointer , file 'some/unit.cpp' line 7");
}

// An application that catches the signal cannot get past a hard abort.
TEST(ChecksDeathTest, HardAbortDoesNotReturn) {
  EXPECT_EXIT(
      {
        std::signal(SIGABRT, ignore_signal);
        com_toggle_abort(1);
        com_bomb(unit, 42);
        _exit(0);
      },
      testing::KilledBySignal(SIGABRT), "assertion failed");
}
