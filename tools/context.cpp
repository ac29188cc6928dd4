// The start and the end of a context.
#include "context.h"

#include <new>

namespace zrvtool {

Matrix::Matrix() {
  if (com_conv_init(&context) != CS_SUCCEED)
    throw std::bad_alloc();
}

Context::Context(const std::string &locale, const std::string &charset) : started(locale) {
  if (!charset.empty())
    started.use_charset(charset);
  if (com_conv_init(get()) == CS_SUCCEED && com_null_init(get()) == CS_SUCCEED)
    return;
  com_null_free(get());
  com_conv_free(get());
  throw std::bad_alloc();
}

Context::~Context() {
  com_null_free(get());
  com_conv_free(get());
}

} // namespace zrvtool
