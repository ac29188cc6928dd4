// Cast-context conversions from varying text.
#include "bridge.h"

COMNB_UNIT(varchar, FromText<true>)
COMNB_MEMBER(varchar, date4, read_date<CS_DATETIME4, com__date4fromchar_mb>)
COMNB_MEMBER(varchar, datetime, read_date<CS_DATETIME, com__datefromchar_mb>)
