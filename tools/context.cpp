// The start and the end of a context.
#include "context.h"

#include <new>

namespace zrvtool {

Context::Context() {
  if (com_conv_init(&context) == CS_SUCCEED && com_null_init(&context) == CS_SUCCEED)
    return;
  com_null_free(&context);
  com_conv_free(&context);
  throw std::bad_alloc();
}

Context::~Context() {
  com_null_free(&context);
  com_conv_free(&context);
}

} // namespace zrvtool
