// Conversions from CS_BIGINT.
#include "integer.h"

COMN_INTEGER_UNIT(i8)
