// What a call prints while every return is traced, and its last line, which tells its own exit.
#ifndef ZRVTEST_TRACED_EXIT_H
#define ZRVTEST_TRACED_EXIT_H

#include <algorithm>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace zrvtest {

// Runs a call, which must return `expected`; failed checks are caught.
inline std::string trace_of(CS_INT expected, const std::function<CS_INT()> &call) {
  com_errset(3);
  const std::string text =
      capture_stdout([&] { catch_check([&] { EXPECT_EQ(call(), expected); }); });
  com_errset(1);
  return text;
}

// As "(CS_FAIL) file unit.cpp": the last line without its number.
inline std::string exit_of(CS_INT expected, const std::function<CS_INT()> &call) {
  std::string text = trace_of(expected, call);
  text.erase(std::min(text.size(), text.rfind(", line ")));
  return text.substr(text.rfind('\n') + 1);
}

} // namespace zrvtest

#endif
