// What every conversion function starts with.
#ifndef COMN_CONVERT_CONV_FUNC_H
#define COMN_CONVERT_CONV_FUNC_H

#include "any_address.h"
#include "checks.h"
#include "types.h"

// The parameters of CS_CONV_FUNC, and the same as arguments.
#define COMN_CONV_PARAMETERS                                                                       \
  CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,       \
      CS_INT *destlen
#define COMN_CONV_ARGUMENTS context, srcfmt, src, destfmt, dest, destlen

// The checks that a conversion makes first: its six pointers, then its formats; the two conditions
// are on srcfmt and on destfmt. `where` is a COMN_HERE.
#define COMN_CHECK_CONV(where, srcfmt_condition, destfmt_condition)                                \
  do {                                                                                             \
    if (!context || !src || !srcfmt || !dest || !destfmt || !destlen) [[unlikely]]                 \
      return comn::raise_null(where);                                                              \
    if (!(srcfmt_condition) || !(destfmt_condition)) [[unlikely]]                                  \
      return comn::raise_bomb(where);                                                              \
  } while (0)

// A conversion that passes through the trace, as all but those from integers do: `body` makes the
// checks and returns the status.
#define COMN_CONV(name, ...)                                                                       \
  CS_RETCODE name(COMN_CONV_PARAMETERS) noexcept {                                                 \
    return COMN_TRACE(__VA_ARGS__(COMN_CONV_ARGUMENTS));                                           \
  }

namespace comn {

// Between character sets, a text whose characters were not all there counts as converted.
inline bool has_converted(CS_RETCODE status) noexcept {
  return status == CS_SUCCEED || status == CS_CONV_PARTIAL;
}

} // namespace comn

// The same with its checks: what follows the two conditions is the body.
#define COMN_CHECKED_CONV(name, srcfmt_condition, destfmt_condition, ...)                          \
  static CS_RETCODE name##_checked(COMN_CONV_PARAMETERS) noexcept {                                \
    COMN_CHECK_CONV(COMN_HERE, srcfmt_condition, destfmt_condition);                               \
    __VA_ARGS__                                                                                    \
  }                                                                                                \
  COMN_CONV(name, name##_checked)

#endif
