// Conversions from CS_DATETIME and CS_DATE.
#include "date_value.h"

COMN_DATE_MEMBER(date, date4, in_range<com__dttodate4>)
COMN_DATE_MEMBER(date, date, copy)
COMN_DATE_MEMBER(date, datea, always<com__datetodatea>)
COMN_DATE_MEMBER(date, timea, always<com__datetotimea>)
COMN_DATE_MEMBER(date, bigdatetime, always<com__datetobigdatetime>)
COMN_DATE_MEMBER(date, bigtime, always<com__datetobigtime>)
COMN_DATE_TO_BIN(date, date)
COMN_DATE_TO_VARBIN(date, date)

COMN_DATE_MEMBER(datea, date4,
                 by_datetime<in_range<com__dateatodate, CS_DATE, CS_DATETIME>,
                             in_range<com__dttodate4, CS_DATETIME, CS_DATETIME4>>)
COMN_DATE_MEMBER(datea, date, in_range<com__dateatodate>)
COMN_DATE_MEMBER(datea, bigdatetime, in_range<com__dateatobigdatetime>)
COMN_DATE_MEMBER(datea, datea, copy)
COMN_DATE_TO_BIN(datea, datea)
COMN_DATE_TO_VARBIN(datea, datea)
