// The return-code trace and the table of printable names.
#include <cstdio>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace {

struct NamedCode {
  CS_RETCODE code;
  const char *name;
  bool ordinary; // not printed at level 2
};

constexpr NamedCode named_codes[] = {
    {1, "CS_SUCCEED", true},          {0, "CS_FAIL", false},
    {-1, "CS_MEM_ERROR", false},      {-2, "CS_PENDING", true},
    {-3, "CS_QUIET", false},          {-4, "CS_BUSY", false},
    {-5, "CS_INTERRUPT", true},       {-202, "CS_CANCELED", false},
    {-203, "CS_ROW_FAIL", false},     {-204, "CS_END_DATA", true},
    {-205, "CS_END_RESULTS", true},   {-206, "CS_END_ITEM", true},
    {-207, "CS_NOMSG", false},        {-208, "CS_TIMED_OUT", false},
    {-210, "CS_PASSTHRU_EOM", false}, {-211, "CS_PASSTHRU_MORE", false},
    {-213, "CS_TRYING", false},
};

class Trace : public testing::Test {
protected:
  ~Trace() override { Com_trace_enable = 1; }

  // What one trace of `code` prints to standard output; the result must be the code itself.
  static std::string trace(CS_RETCODE code, const char *file = "generic/src/unit.cpp") {
    return zrvtest::capture_stdout(
        [&] { EXPECT_EQ(com_errtrace(code, const_cast<char *>(file), 12), code); });
  }
};

} // namespace

TEST_F(Trace, StartsAtLevelOne) {
  EXPECT_EQ(Com_trace_enable, 1);
}

TEST_F(Trace, TableHoldsTheGeneralCodesInOrder) {
  ASSERT_EQ(sizeof Com_errors / sizeof Com_errors[0], 17U);
  for (size_t i = 0; i < 17; ++i) {
    EXPECT_EQ(Com_errors[i].errcode, named_codes[i].code);
    EXPECT_STREQ(Com_errors[i].errstr, named_codes[i].name);
  }
}

TEST_F(Trace, FindsTheNames) {
  for (const NamedCode &row : named_codes)
    EXPECT_STREQ(com__errfind(row.code), row.name);
  for (const CS_RETCODE code : {2, -6, -101, -117, -201, -209, -212, -214, -301, -417})
    EXPECT_EQ(com__errfind(code), nullptr) << code;
}

TEST_F(Trace, LevelOnePrintsNothing) {
  for (const NamedCode &row : named_codes)
    EXPECT_EQ(trace(row.code), "");
  EXPECT_EQ(trace(-214), "");
}

TEST_F(Trace, LevelTwoLeavesOrdinaryResultsOut) {
  com_errset(2);
  for (const NamedCode &row : named_codes)
    EXPECT_EQ(trace(row.code),
              row.ordinary ? "" : "(" + std::string(row.name) + ") file unit.cpp, line 12\n");
  EXPECT_EQ(trace(-101), "(-101) file unit.cpp, line 12\n");
}

TEST_F(Trace, LevelThreePrintsEverything) {
  com_errset(3);
  for (const NamedCode &row : named_codes)
    EXPECT_EQ(trace(row.code), "(" + std::string(row.name) + ") file unit.cpp, line 12\n");
  EXPECT_EQ(trace(-214), "(-214) file unit.cpp, line 12\n");
  EXPECT_EQ(trace(2147483647), "(2147483647) file unit.cpp, line 12\n");
  EXPECT_EQ(trace(-2147483647 - 1), "(-2147483648) file unit.cpp, line 12\n");
}

TEST_F(Trace, CutsThePathBehindItsLastSlash) {
  com_errset(3);
  EXPECT_EQ(trace(0, "unit.cpp"), "(CS_FAIL) file unit.cpp, line 12\n");
  EXPECT_EQ(trace(0, "/unit.cpp"), "(CS_FAIL) file unit.cpp, line 12\n");
  EXPECT_EQ(trace(0, "/a/b/c/unit.cpp"), "(CS_FAIL) file unit.cpp, line 12\n");
  EXPECT_EQ(trace(0, "a/b/"), "(CS_FAIL) file , line 12\n");
  EXPECT_EQ(trace(0, ""), "(CS_FAIL) file , line 12\n");
  EXPECT_EQ(trace(0, nullptr), "(CS_FAIL) file , line 12\n");
  EXPECT_EQ(trace(0, "a\\b.cpp"), "(CS_FAIL) file a\\b.cpp, line 12\n");
}

// The stack depth is always 0 here, so no dots stand before the line, however deep its call.
TEST_F(Trace, IsNotIndented) {
  com_errset(3);
  const std::function<std::string(int)> trace_below = [&](int levels) {
    EXPECT_EQ(com__get_stack_depth(), 0);
    return levels == 0 ? trace(CS_BUSY) : trace_below(levels - 1);
  };
  EXPECT_EQ(trace_below(0), "(CS_BUSY) file unit.cpp, line 12\n");
  EXPECT_EQ(trace_below(9), "(CS_BUSY) file unit.cpp, line 12\n");
  // An exported function that is called by another one is not indented either.
  CS_CONTEXT context{};
  const std::string text = zrvtest::capture_stdout([&] {
    EXPECT_EQ(com_conv_init(&context), CS_SUCCEED);
    EXPECT_EQ(com_conv_default(&context, 8, 7), CS_SUCCEED);
    EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
  });
  const std::regex lines("(\\(CS_SUCCEED\\) file com_conv.cpp, line [0-9]+\n){4}");
  EXPECT_TRUE(std::regex_match(text, lines)) << text;
}

TEST_F(Trace, GoesToTheDebugFile) {
  com_errset(3);
  FILE *file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  Com_fp = file;
  EXPECT_EQ(trace(-5), "");
  Com_fp = nullptr;
  char text[100];
  std::rewind(file);
  const size_t length = std::fread(text, 1, sizeof text, file);
  std::fclose(file);
  EXPECT_EQ(std::string(text, length), "(CS_INTERRUPT) file unit.cpp, line 12\n");
}

// An exit of an exported function passes through the trace.
TEST_F(Trace, ExportedFunctionsAreTraced) {
  com_errset(3);
  const std::string text = zrvtest::capture_stdout([] {
    EXPECT_EQ(comn_take_mutex(nullptr), CS_SUCCEED);
    EXPECT_EQ(comn_get_default_tid(nullptr, 3, nullptr), CS_FAIL);
  });
  EXPECT_EQ(text.rfind("(CS_SUCCEED) file non_thrd.cpp, line ", 0), 0U) << text;
  EXPECT_NE(text.find("\n(CS_FAIL) file com_util.cpp, line "), std::string::npos) << text;
}

// So does the error behind a failed check.
TEST_F(Trace, FailedChecksAreTraced) {
  com_errset(2);
  const std::string text = zrvtest::capture_stdout([] {
    EXPECT_NULL_POINTER_CHECK("comaglob.cpp", CS_FAIL, com_appglobal_alloc(nullptr, nullptr, 1));
  });
  EXPECT_EQ(text.rfind("(CS_FAIL) file comaglob.cpp, line ", 0), 0U) << text;
}

TEST_F(Trace, OtherLevelsAreAnAssertion) {
  for (const CS_INT level : {1, 2, 3}) {
    com_errset(level);
    EXPECT_EQ(Com_trace_enable, level);
  }
  com_errset(2);
  for (const CS_INT level : {0, 4, -1, 2147483647}) {
    const auto report = zrvtest::catch_check([&] { com_errset(level); });
    EXPECT_TRUE(zrvtest::is_assertion_report(report, "com_err.cpp")) << report.text;
    EXPECT_EQ(Com_trace_enable, 2) << level;
  }
}
