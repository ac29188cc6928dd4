// Conversions from CS_BIGTIME.
#include "date_value.h"

COMN_DATE_MEMBER(bigtime, date4)
COMN_DATE_MEMBER(bigtime, date)
COMN_DATE_MEMBER(bigtime, timea)
COMN_DATE_MEMBER(bigtime, bigdatetime)
COMN_DATE_MEMBER(bigtime, bigtime)
COMN_DATE_TO_BIN(bigtime, bigtime)
COMN_DATE_TO_VARBIN(bigtime, bigtime)
