// Cast-context conversions from CS_MONEY4.
#include "bridge.h"

COMNB_UNIT(mny4, FromMoney<comn::money_family::mny4>)
