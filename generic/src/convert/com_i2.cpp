// Conversions from CS_SMALLINT.
#include "integer.h"

COMN_INTEGER_UNIT(i2)
