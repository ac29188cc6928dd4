// Cast-context conversions from CS_MONEY.
#include "bridge.h"

COMNB_UNIT(money, FromMoney<comn::money_family::money>)
