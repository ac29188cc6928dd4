// Cast-context conversions from CS_UBIGINT.
#include "bridge.h"

COMNB_UNIT(ui8, FromInteger<comn::integer::ui8>)
