// Cast-context conversions from CS_UINT.
#include "bridge.h"

COMNB_UNIT(ui4, FromInteger<comn::integer::ui4>)
