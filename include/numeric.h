/*
 * numeric.h - exact numerics: representation.
 */
#ifndef ZRV_NUMERIC_H
#define ZRV_NUMERIC_H

#include "cspublic.h"

ZRV_BEGIN_DECLS

/* The bytes of CS_NUMERIC.array that count for a precision of 0 to 77: the sign byte and a
 * magnitude that can hold every number of so many digits. */
extern ZRV_PRIVATE const CS_BYTE Com__Nume_Prec_To_Len[CS_MAX_PREC + 1];

ZRV_END_DECLS

#endif
