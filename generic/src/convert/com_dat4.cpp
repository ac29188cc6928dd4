// Conversions from CS_DATETIME4.
#include "date_value.h"

COMN_DATE_MEMBER(date4, date4)
COMN_DATE_MEMBER(date4, date)
COMN_DATE_MEMBER(date4, bigdatetime)
COMN_DATE_MEMBER(date4, datea)
COMN_DATE_MEMBER(date4, timea)
COMN_DATE_MEMBER(date4, bigtime)
COMN_DATE_TO_BIN(date4, date4)
COMN_DATE_TO_VARBIN(date4, date4)
