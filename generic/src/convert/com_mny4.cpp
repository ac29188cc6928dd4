// Conversions from CS_MONEY4.
#include "money_family.h"

COMN_MONEY_UNIT(mny4)
