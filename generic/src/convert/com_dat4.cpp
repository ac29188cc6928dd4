// Conversions from CS_DATETIME4.
#include "date_value.h"

COMN_DATE_MEMBER(date4, date4, copy)
COMN_DATE_MEMBER(date4, date, always<com__date4todt>)
COMN_DATE_MEMBER(date4, bigdatetime, always<com__date4tobigdatetime>)
COMN_DATE_MEMBER(date4, datea,
                 by_datetime<always<com__date4todt, CS_DATETIME4, CS_DATETIME>,
                             always<com__datetodatea, CS_DATETIME, CS_DATE>>)
COMN_DATE_MEMBER(date4, timea,
                 by_datetime<always<com__date4todt, CS_DATETIME4, CS_DATETIME>,
                             always<com__datetotimea, CS_DATETIME, CS_TIME>>)
COMN_DATE_MEMBER(date4, bigtime,
                 by_datetime<always<com__date4todt, CS_DATETIME4, CS_DATETIME>,
                             always<com__datetobigtime, CS_DATETIME, CS_BIGTIME>>)
COMN_DATE_TO_BIN(date4, date4)
COMN_DATE_TO_VARBIN(date4, date4)
