// Conversions from CS_UINT.
#include "integer.h"

COMN_INTEGER_UNIT(ui4)
