// Contexts for conversions.
#ifndef ZRVTOOL_CONTEXT_H
#define ZRVTOOL_CONTEXT_H

#include "started.h"
#include "zrvcomn/comnlib.h"

namespace zrvtool {

// The matrix alone, which needs no installation.
class Matrix {
public:
  Matrix();
  ~Matrix() { com_conv_free(&context); }
  Matrix(const Matrix &) = delete;
  Matrix &operator=(const Matrix &) = delete;

  // The conversion of a pair of datatypes, or null.
  CS_CONV_FUNC conversion(CS_INT from, CS_INT to) { return com_conv_func(&context, from, to); }

private:
  CS_CONTEXT context{};
};

// Made as the layers above make theirs: with the installation's default locale, since conversions of
// text ask for one.
class Context {
public:
  // With a locale of the installation, and with a character set in place of the locale's unless that
  // is empty.
  explicit Context(const std::string &locale = "default", const std::string &charset = "");
  ~Context();
  Context(const Context &) = delete;
  Context &operator=(const Context &) = delete;

  CS_CONTEXT *get() { return started.get(); }

  // The conversion of a pair of datatypes, or null.
  CS_CONV_FUNC conversion(CS_INT from, CS_INT to) { return com_conv_func(get(), from, to); }

private:
  Started started;
};

} // namespace zrvtool

#endif
