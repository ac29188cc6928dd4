// Conversions from CS_BIGDATETIME.
#include "date_value.h"

COMN_DATE_MEMBER(bigdatetime, date4, in_range<com__bigdttodate4>)
COMN_DATE_MEMBER(bigdatetime, date, narrowed<com__bigdatetimetodate>)
COMN_DATE_MEMBER(bigdatetime, datea, always<com__bigdatetimetodatea>)
COMN_DATE_MEMBER(bigdatetime, timea, narrowed<com__bigdatetimetotimea>)
COMN_DATE_MEMBER(bigdatetime, bigdatetime, copy)
COMN_DATE_MEMBER(bigdatetime, bigtime, always<com__bigdatetimetobigtime>)
COMN_DATE_TO_BIN(bigdate, bigdatetime)
COMN_DATE_TO_VARBIN(bigdatetime, bigdatetime)
