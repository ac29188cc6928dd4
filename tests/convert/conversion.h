// One conversion function with its two formats, called as a client would.
#ifndef ZRVTEST_CONVERSION_H
#define ZRVTEST_CONVERSION_H

#include "check_trap.h"
#include "guarded_buffer.h"
#include "test_context.h"

namespace zrvtest {

struct Conversion {
  // What *destlen holds before each call, to see whether it was written.
  static constexpr CS_INT untouched_length = -4711;

  CS_CONV_FUNC function;
  CS_DATAFMT srcfmt;
  CS_DATAFMT destfmt;
  CS_CONTEXT context{};
  CS_INT destlen = untouched_length;

  Conversion(CS_CONV_FUNC conversion, const CS_DATAFMT &source, const CS_DATAFMT &destination)
      : function(conversion), srcfmt(source), destfmt(destination) {}

  CS_RETCODE operator()(const void *src, void *dest) {
    destlen = untouched_length;
    return function(&context, &srcfmt, const_cast<void *>(src), &destfmt, dest, &destlen);
  }
};

// Calls a conversion without each of its six pointers in turn, which its unit must refuse with
// nothing written.
template <class Function>
void expect_null_checks(const char *unit, Function function, CS_DATAFMT srcfmt,
                        CS_DATAFMT destfmt) {
  CS_CONTEXT context{};
  unsigned char src[sizeof(CS_VARCHAR)] = {1};
  GuardedBuffer dest(sizeof(CS_VARCHAR));
  CS_INT destlen = Conversion::untouched_length;
  for (int missing = 0; missing < 6; ++missing) {
    SCOPED_TRACE(testing::Message() << "without pointer " << missing);
    EXPECT_NULL_POINTER_CHECK(
        unit, CS_FAIL,
        function(missing == 0 ? nullptr : &context, missing == 1 ? nullptr : &srcfmt,
                 missing == 2 ? nullptr : src, missing == 3 ? nullptr : &destfmt,
                 missing == 4 ? nullptr : dest.data(), missing == 5 ? nullptr : &destlen));
    EXPECT_EQ(destlen, Conversion::untouched_length);
    EXPECT_TRUE(dest.is_untouched());
  }
}

} // namespace zrvtest

#endif
