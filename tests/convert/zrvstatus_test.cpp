// Names of return codes, and which of them leave something usable.
#include <gtest/gtest.h>

#include "zrvcomn/zrvstatus.h"

namespace {

struct Code {
  CS_RETCODE status;
  const char *name;
  bool usable;
};

constexpr Code codes[] = {
    {1, "CS_SUCCEED", true},
    {0, "CS_FAIL", false},
    {-1, "CS_MEM_ERROR", false},
    {-2, "CS_PENDING", false},
    {-3, "CS_QUIET", false},
    {-4, "CS_BUSY", false},
    {-5, "CS_INTERRUPT", false},
    {-101, "CS_CONV_OVERFLOW", true},
    {-102, "CS_CONV_UNDERFLOW", true},
    {-103, "CS_CONV_BADPRECISION", false},
    {-104, "CS_CONV_BADSCALE", false},
    {-105, "CS_CONV_SYNTAX", false},
    {-106, "CS_CONV_PADCONFLICT", false},
    {-107, "CS_CONV_DOMAIN", false},
    {-108, "CS_CONV_DIVZERO", false},
    {-113, "CS_CONV_TRUNCATED", true},
    {-114, "CS_CONV_DATEBUFFER", false},
    {-115, "CS_CONV_BADCHAR", false},
    {-116, "CS_CONV_NOXLATE", false},
    {-117, "CS_CONV_PARTIAL", true},
    {-202, "CS_CANCELED", false},
    {-203, "CS_ROW_FAIL", false},
    {-204, "CS_END_DATA", false},
    {-205, "CS_END_RESULTS", false},
    {-206, "CS_END_ITEM", false},
    {-207, "CS_NOMSG", false},
    {-208, "CS_TIMED_OUT", false},
    {-210, "CS_PASSTHRU_EOM", false},
    {-211, "CS_PASSTHRU_MORE", false},
    {-213, "CS_TRYING", false},
    {-214, "MM_BAD_PROPERTY", false},
    {-301, "COM_INTL_ERROR", false},
    {-414, "COM_LOCFILE_ERROR", false},
    {-417, "COM_UNKNOWN_NAME", false},
};

const Code *find(CS_RETCODE status) {
  for (const Code &code : codes)
    if (code.status == status)
      return &code;
  return nullptr;
}

} // namespace

TEST(Status, EveryNumberHasItsNameOrNone) {
  for (CS_RETCODE status = -2000; status <= 10; ++status) {
    const Code *const code = find(status);
    EXPECT_STREQ(zrv_status_name(status), code != nullptr ? code->name : nullptr) << status;
  }
  EXPECT_EQ(zrv_status_name(INT32_MIN), nullptr);
  EXPECT_EQ(zrv_status_name(INT32_MAX), nullptr);
}

TEST(Status, UsableIsWhatTheContractsCallSo) {
  for (CS_RETCODE status = -2000; status <= 10; ++status) {
    const Code *const code = find(status);
    EXPECT_EQ(zrv_status_usable(status), code != nullptr && code->usable ? 1 : 0) << status;
  }
}
