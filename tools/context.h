// A context of the library, made as the layers above make theirs.
#ifndef ZRVTOOL_CONTEXT_H
#define ZRVTOOL_CONTEXT_H

#include "zrvcomn/comnlib.h"

namespace zrvtool {

class Context {
public:
  Context();
  ~Context();
  Context(const Context &) = delete;
  Context &operator=(const Context &) = delete;

  CS_CONTEXT *get() { return &context; }

  // The conversion of a pair of datatypes, or null.
  CS_CONV_FUNC conversion(CS_INT from, CS_INT to) { return com_conv_func(&context, from, to); }

private:
  CS_CONTEXT context{};
};

} // namespace zrvtool

#endif
