// Cast-context conversions from CS_REAL.
#include "bridge.h"

COMNB_UNIT(flt4, FromFloating<comn::floating::flt4>)
