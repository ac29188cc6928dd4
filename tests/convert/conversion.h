// One conversion function with its two formats, called as a client would.
#ifndef ZRVTEST_CONVERSION_H
#define ZRVTEST_CONVERSION_H

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

} // namespace zrvtest

#endif
