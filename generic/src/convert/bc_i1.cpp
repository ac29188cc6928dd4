// Cast-context conversions from CS_TINYINT.
#include "bridge.h"

COMNB_UNIT(i1, FromInteger<comn::integer::i1>)
