// Cast-context conversions from CS_BIGINT.
#include "bridge.h"

COMNB_UNIT(i8, FromInteger<comn::integer::i8>)
