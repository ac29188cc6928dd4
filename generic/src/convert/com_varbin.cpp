// Conversions from CS_VARBINARY.
#include "binary.h"

COMN_BINARY_UNIT(varbin)
