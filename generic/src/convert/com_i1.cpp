// Conversions from CS_TINYINT, the unsigned one-byte integer.
#include "integer.h"

COMN_INTEGER_UNIT(i1)
