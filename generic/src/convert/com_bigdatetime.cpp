// Conversions from CS_BIGDATETIME.
#include "date_value.h"

COMN_DATE_MEMBER(bigdatetime, date4)
COMN_DATE_MEMBER(bigdatetime, date)
COMN_DATE_MEMBER(bigdatetime, datea)
COMN_DATE_MEMBER(bigdatetime, timea)
COMN_DATE_MEMBER(bigdatetime, bigdatetime)
COMN_DATE_MEMBER(bigdatetime, bigtime)
COMN_DATE_TO_BIN(bigdate, bigdatetime)
COMN_DATE_TO_VARBIN(bigdatetime, bigdatetime)
