// Conversions from CS_MONEY.
#include "money_family.h"

COMN_MONEY_UNIT(money)
