// The checks that open functions, and the trace that ends them.
//
// A failed check reports and raises signal 6; an application may catch that signal, so each check
// names what the function returns then.
#ifndef COMN_FRAME_CHECKS_H
#define COMN_FRAME_CHECKS_H

#include "comnlib.h"
#include "csintrn.h"

namespace comn {

// Where a check stands. A template that serves many functions is handed the place of the one that
// its caller sees.
struct Place {
  const char *file;
  int line;
};

[[gnu::cold, gnu::noinline]] inline void raise_null(Place place) noexcept {
  com_raise_invalid_null_pointer(const_cast<char *>(place.file), place.line);
}

[[gnu::cold, gnu::noinline]] inline void raise_bomb(Place place) noexcept {
  com_bomb(const_cast<char *>(place.file), place.line);
}

inline CS_RETCODE trace(CS_RETCODE code, Place place) noexcept {
  if (Com_trace_enable != 1) [[unlikely]]
    return com_errtrace(code, const_cast<char *>(place.file), place.line);
  return code;
}

} // namespace comn

#define COMN_HERE (comn::Place{__FILE__, __LINE__})

// Reports a null pointer, then returns what follows the pointer (nothing in a void function).
#define COMN_CHECK_PTR(pointer, ...) COMN_CHECK_PTR_AT(COMN_HERE, pointer, __VA_ARGS__)
#define COMN_CHECK_PTR_AT(place, pointer, ...)                                                     \
  do {                                                                                             \
    if ((pointer) == nullptr) [[unlikely]] {                                                       \
      comn::raise_null(place);                                                                     \
      return __VA_ARGS__;                                                                          \
    }                                                                                              \
  } while (0)

// Reports a condition that does not hold, then returns what follows it.
#define COMN_CHECK(condition, ...) COMN_CHECK_AT(COMN_HERE, condition, __VA_ARGS__)
#define COMN_CHECK_AT(place, condition, ...)                                                       \
  do {                                                                                             \
    if (!(condition)) [[unlikely]] {                                                               \
      comn::raise_bomb(place);                                                                     \
      return __VA_ARGS__;                                                                          \
    }                                                                                              \
  } while (0)

// The way out of every exported function that returns a CS_RETCODE, the conversions aside: one load
// and one compare while tracing is off.
#define COMN_TRACE(code) comn::trace((code), COMN_HERE)

#endif
