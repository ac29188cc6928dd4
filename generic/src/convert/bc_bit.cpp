// Cast-context conversions from CS_BIT. Each refuses a source that is neither 0 nor 1 first.
#include "bridge.h"

COMNB_UNIT(bit, FromBit)
