// Conversions from CS_USMALLINT.
#include "integer.h"

COMN_INTEGER_UNIT(ui2)
