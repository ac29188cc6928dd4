// Cast-context conversions from text.
#include "bridge.h"

COMNB_UNIT(char, FromText<false>)
COMNB_MEMBER(char, date4, read_date<CS_DATETIME4, com__date4fromchar_mb>)
COMNB_MEMBER(char, datetime, read_date<CS_DATETIME, com__datefromchar_mb>)
COMNB_MEMBER(char, bigdatetime, read_date<CS_BIGDATETIME, com__bigdatetimefromchar_mb>)
COMNB_MEMBER(char, datea, read_date<CS_DATE, com__dateafromchar_mb>)
COMNB_MEMBER(char, timea, read_date<CS_TIME, com__timeafromchar_mb>)
COMNB_MEMBER(char, bigtime, read_date<CS_BIGTIME, com__bigtimefromchar_mb>)
