// Conversions from CS_BIGDATETIME.
#include "date_value.h"

COMN_DATE_MEMBER(bigdatetime, date4, com__bigdttodate4, in_range)
COMN_DATE_MEMBER(bigdatetime, date, com__bigdatetimetodate, narrowed)
COMN_DATE_MEMBER(bigdatetime, datea, com__bigdatetimetodatea, always)
COMN_DATE_MEMBER(bigdatetime, timea, com__bigdatetimetotimea, narrowed)
COMN_DATE_MEMBER(bigdatetime, bigdatetime, copy, always)
COMN_DATE_MEMBER(bigdatetime, bigtime, com__bigdatetimetobigtime, always)
COMN_DATE_TO_BIN(bigdate, bigdatetime)
COMN_DATE_TO_VARBIN(bigdatetime, bigdatetime)
