// Cast-context conversions from exact numerics.
#include "bridge.h"

COMNB_UNIT(num, FromNumeric)
