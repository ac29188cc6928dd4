// Cast-context conversions from CS_USMALLINT.
#include "bridge.h"

COMNB_UNIT(ui2, FromInteger<comn::integer::ui2>)
