// Cast-context conversions from CS_INT.
#include "bridge.h"

COMNB_UNIT(i4, FromInteger<comn::integer::i4>)
