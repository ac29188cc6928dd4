// Contexts and formats as the layers above would make them.
#ifndef ZRVTEST_TEST_CONTEXT_H
#define ZRVTEST_TEST_CONTEXT_H

#include <cstring>

#include <gtest/gtest.h>

#include "zrvcomn/comnlib.h"

namespace zrvtest {

// A zeroed context with its matrix and its default values.
class TestContext {
public:
  TestContext() : context{} {
    EXPECT_EQ(com_conv_init(&context), CS_SUCCEED);
    EXPECT_EQ(com_null_init(&context), CS_SUCCEED);
  }
  ~TestContext() {
    EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
    EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
  }
  TestContext(const TestContext &) = delete;
  TestContext &operator=(const TestContext &) = delete;

  CS_CONTEXT *get() { return &context; }
  CS_CONTEXT *operator->() { return &context; }

private:
  CS_CONTEXT context;
};

// One side of a conversion. Fields that conversions do not read hold rubbish.
inline CS_DATAFMT make_format(CS_INT type, CS_INT maxlength, CS_INT format = 0) {
  CS_DATAFMT result;
  std::memset(&result, 0xDB, sizeof result);
  result.datatype = type;
  result.maxlength = maxlength;
  result.format = format;
  result.precision = 0;
  result.scale = 0;
  result.locale = nullptr;
  return result;
}

} // namespace zrvtest

#endif
