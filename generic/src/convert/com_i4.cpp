// Conversions from CS_INT.
#include "integer.h"

COMN_INTEGER_UNIT(i4)
