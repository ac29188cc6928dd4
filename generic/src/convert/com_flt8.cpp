// Conversions from CS_FLOAT.
#include "floating.h"

COMN_FLOATING_UNIT(flt8)
