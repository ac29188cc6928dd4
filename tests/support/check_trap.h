// Catches what a failed check does: its text on standard error and its signal 6, after which the
// function under test goes on and returns its error.
#ifndef ZRVTEST_CHECK_TRAP_H
#define ZRVTEST_CHECK_TRAP_H

#include <cstddef>
#include <string>

namespace zrvtest {

// Keeps standard error (or another descriptor) away from the terminal and hands out what came.
class DescriptorCapture {
public:
  explicit DescriptorCapture(int descriptor);
  ~DescriptorCapture();
  DescriptorCapture(const DescriptorCapture &) = delete;
  DescriptorCapture &operator=(const DescriptorCapture &) = delete;

  // Restores the descriptor and returns the text; later calls return the same text.
  std::string finish();

private:
  int descriptor, saved, file;
  std::string text;
};

// Runs `body` and returns what it wrote to standard output through the C library.
template <class Body>
std::string capture_stdout(Body &&body);

// The number of descriptors that the process has open.
size_t open_descriptors();

// What the checks did while a body ran.
struct CheckReport {
  int signals = 0;  // times signal 6 was raised and caught
  std::string text; // standard error
};

// Arms a handler for signal 6 that lets the function go on, and captures standard error.
class CheckTrap {
public:
  CheckTrap();
  ~CheckTrap();
  CheckReport finish();

private:
  DescriptorCapture capture;
  void (*previous)(int);
  bool finished = false;
  CheckReport report;
};

template <class Body>
CheckReport catch_check(Body &&body) {
  CheckTrap trap;
  body();
  return trap.finish();
}

// The texts of the two checks, with the last part of the file and without the line.
bool is_null_pointer_report(const CheckReport &report, const std::string &file);
bool is_assertion_report(const CheckReport &report, const std::string &file);

} // namespace zrvtest

#include <cstdio>
#include <tuple>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

template <class Body>
std::string zrvtest::capture_stdout(Body &&body) {
  std::fflush(stdout);
  DescriptorCapture capture(1);
  std::forward<Body>(body)();
  std::fflush(stdout);
  return capture.finish();
}

// `expression` must run exactly one check of the kind, in `file`, and yield `result` afterwards.
#define EXPECT_NULL_POINTER_CHECK(file, result, expression)                                        \
  do {                                                                                             \
    auto zrvtest_result = result;                                                                  \
    const auto zrvtest_report = zrvtest::catch_check([&] { zrvtest_result = expression; });        \
    EXPECT_TRUE(zrvtest::is_null_pointer_report(zrvtest_report, file)) << zrvtest_report.text;     \
    EXPECT_EQ(zrvtest_result, result);                                                             \
  } while (0)
#define EXPECT_ASSERTION(file, result, expression)                                                 \
  do {                                                                                             \
    auto zrvtest_result = result;                                                                  \
    const auto zrvtest_report = zrvtest::catch_check([&] { zrvtest_result = expression; });        \
    EXPECT_TRUE(zrvtest::is_assertion_report(zrvtest_report, file)) << zrvtest_report.text;        \
    EXPECT_EQ(zrvtest_result, result);                                                             \
  } while (0)

namespace zrvtest {

// Calls a function with each of its pointers null in turn, but for those that are null here already: each
// time the null-pointer check of `file` must be the one that runs, and `result` must come back.
template <class Result, class... Parameters>
void expect_null_checks(const char *file, std::type_identity_t<Result> result,
                        Result (*function)(Parameters...),
                        std::type_identity_t<Parameters>... arguments) {
  const std::tuple<Parameters...> given(arguments...);
  size_t tried = 0;
  const auto with_null = [&]<size_t Place>(std::integral_constant<size_t, Place>) {
    if constexpr (std::is_pointer_v<std::tuple_element_t<Place, std::tuple<Parameters...>>>) {
      auto changed = given;
      if (std::get<Place>(changed) == nullptr)
        return;
      std::get<Place>(changed) = nullptr;
      SCOPED_TRACE("argument " + std::to_string(Place + 1));
      EXPECT_NULL_POINTER_CHECK(file, result, std::apply(function, changed));
      ++tried;
    }
  };
  [&]<size_t... Places>(std::index_sequence<Places...>) {
    (with_null(std::integral_constant<size_t, Places>{}), ...);
  }
  (std::index_sequence_for<Parameters...>{});
  EXPECT_GT(tried, 0U);
}

} // namespace zrvtest

#endif
