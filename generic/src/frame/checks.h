// The checks that open functions, and the trace that ends them.
//
// A failed check reports and raises signal 6; an application may catch that signal, so each check
// names what the function returns then.
#ifndef COMN_FRAME_CHECKS_H
#define COMN_FRAME_CHECKS_H

#include "comnlib.h"
#include "csintrn.h"

namespace comn {

// Where a check stands. A check is handed a function that tells it (COMN_HERE), so that the way
// past the check carries neither the file nor the line, and a template that serves many functions
// can report the one that its caller sees.
struct Place {
  const char *file;
  int line;
};

// Report a failed check, out of the way of what succeeds. They return CS_FAIL, so that a function
// that ends with it can end with this very call.
template <class Where>
[[gnu::cold, gnu::noinline]] CS_RETCODE raise_null(Where where) noexcept {
  com_raise_invalid_null_pointer(const_cast<char *>(where().file), where().line);
  return CS_FAIL;
}

template <class Where>
[[gnu::cold, gnu::noinline]] CS_RETCODE raise_bomb(Where where) noexcept {
  com_bomb(const_cast<char *>(where().file), where().line);
  return CS_FAIL;
}

inline bool is_tracing() noexcept {
  return Com_trace_enable != 1;
}

template <class Where>
CS_RETCODE trace(CS_RETCODE code, Where where) noexcept {
  if (is_tracing()) [[unlikely]]
    return com_errtrace(code, const_cast<char *>(where().file), where().line);
  return code;
}

} // namespace comn

#define COMN_HERE [] { return comn::Place{__FILE__, __LINE__}; }

// Reports a null pointer, then returns what follows the pointer (nothing in a void function).
#define COMN_CHECK_PTR(pointer, ...)                                                               \
  do {                                                                                             \
    if ((pointer) == nullptr) [[unlikely]] {                                                       \
      comn::raise_null(COMN_HERE);                                                                 \
      return __VA_ARGS__;                                                                          \
    }                                                                                              \
  } while (0)

// Reports a condition that does not hold, then returns what follows it.
#define COMN_CHECK(condition, ...)                                                                 \
  do {                                                                                             \
    if (!(condition)) [[unlikely]] {                                                               \
      comn::raise_bomb(COMN_HERE);                                                                 \
      return __VA_ARGS__;                                                                          \
    }                                                                                              \
  } while (0)

// The way out of every exported function that returns a CS_RETCODE, the conversions from integers
// and the quick allocation of a pool that only allocates aside: one load and one compare while
// tracing is off. Every exit has it, those of failed checks too. The declared type decides: what
// returns a length, a count, an order or a status of its own kind (CS_INT, int) is no code and does
// not pass through the trace. A test reads the sources for both.
#define COMN_TRACE(code) comn::trace((code), COMN_HERE)

#endif
