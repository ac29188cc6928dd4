// Cast-context conversions from CS_FLOAT.
#include "bridge.h"

COMNB_UNIT(flt8, FromFloating<comn::floating::flt8>)
