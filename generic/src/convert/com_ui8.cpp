// Conversions from CS_UBIGINT.
#include "integer.h"

COMN_INTEGER_UNIT(ui8)
