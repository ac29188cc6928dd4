// Conversions from CS_DATETIME and CS_DATE.
#include "date_value.h"

COMN_DATE_MEMBER(date, date4)
COMN_DATE_MEMBER(date, date)
COMN_DATE_MEMBER(date, datea)
COMN_DATE_MEMBER(date, timea)
COMN_DATE_MEMBER(date, bigdatetime)
COMN_DATE_MEMBER(date, bigtime)
COMN_DATE_TO_BIN(date, date)
COMN_DATE_TO_VARBIN(date, date)

COMN_DATE_MEMBER(datea, date4)
COMN_DATE_MEMBER(datea, date)
COMN_DATE_MEMBER(datea, bigdatetime)
COMN_DATE_MEMBER(datea, datea)
COMN_DATE_TO_BIN(datea, datea)
COMN_DATE_TO_VARBIN(datea, datea)
