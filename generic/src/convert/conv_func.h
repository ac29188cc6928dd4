// What every conversion function starts with.
#ifndef COMN_CONVERT_CONV_FUNC_H
#define COMN_CONVERT_CONV_FUNC_H

#include "checks.h"
#include "types.h"

// The parameters of CS_CONV_FUNC, and the same as arguments.
#define COMN_CONV_PARAMETERS                                                                       \
  CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,       \
      CS_INT *destlen
#define COMN_CONV_ARGUMENTS context, srcfmt, src, destfmt, dest, destlen

// The six pointer checks, in the order in which all conversions make them.
#define COMN_CHECK_CONV_POINTERS(place)                                                            \
  do {                                                                                             \
    COMN_CHECK_PTR_AT(place, context, CS_FAIL);                                                    \
    COMN_CHECK_PTR_AT(place, src, CS_FAIL);                                                        \
    COMN_CHECK_PTR_AT(place, srcfmt, CS_FAIL);                                                     \
    COMN_CHECK_PTR_AT(place, dest, CS_FAIL);                                                       \
    COMN_CHECK_PTR_AT(place, destfmt, CS_FAIL);                                                    \
    COMN_CHECK_PTR_AT(place, destlen, CS_FAIL);                                                    \
  } while (0)

#endif
