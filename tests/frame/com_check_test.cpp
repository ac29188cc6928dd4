// The two checks and how they end the process.
#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

TEST(Checks, AssertionTextAndSignal) {
  char file[] = "some/unit.cpp";
  const auto report = zrvtest::catch_check([&] { com_bomb(file, 42); });
  EXPECT_EQ(report.signals, 1);
  EXPECT_EQ(report.text, "\n\rassertion failed, file 'some/unit.cpp' line 42\n\r");
}

// The blank before the comma is deliberate.
TEST(Checks, NullPointerTextAndSignal) {
  char file[] = "some/unit.cpp";
  const auto report = zrvtest::catch_check([&] { com_raise_invalid_null_pointer(file, 7); });
  EXPECT_EQ(report.signals, 1);
  EXPECT_EQ(report.text, "\nInvalid NULL pointer , file 'some/unit.cpp' line 7\n");
}
