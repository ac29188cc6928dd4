// Conversions from CS_REAL.
#include "floating.h"

COMN_FLOATING_UNIT(flt4)
