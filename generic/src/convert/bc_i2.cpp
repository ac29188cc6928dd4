// Cast-context conversions from CS_SMALLINT.
#include "bridge.h"

COMNB_UNIT(i2, FromInteger<comn::integer::i2>)
