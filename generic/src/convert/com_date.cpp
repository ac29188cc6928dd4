// Conversions from CS_DATETIME and CS_DATE.
#include "date_value.h"

COMN_DATE_MEMBER(date, date4, com__dttodate4, in_range)
COMN_DATE_MEMBER(date, date, copy, always)
COMN_DATE_MEMBER(date, datea, com__datetodatea, always)
COMN_DATE_MEMBER(date, timea, com__datetotimea, always)
COMN_DATE_MEMBER(date, bigdatetime, com__datetobigdatetime, always)
COMN_DATE_MEMBER(date, bigtime, com__datetobigtime, always)
COMN_DATE_TO_BIN(date, date)
COMN_DATE_TO_VARBIN(date, date)

namespace {

int widen_and_round(CS_DATE *source, CS_DATETIME4 *dest) noexcept {
  CS_DATETIME wide;
  return com__dateatodate(source, &wide) != 0 || com__dttodate4(&wide, dest) != 0;
}

} // namespace

COMN_DATE_MEMBER(datea, date4, widen_and_round, in_range)
COMN_DATE_MEMBER(datea, date, com__dateatodate, in_range)
COMN_DATE_MEMBER(datea, bigdatetime, com__dateatobigdatetime, in_range)
COMN_DATE_MEMBER(datea, datea, copy, always)
COMN_DATE_TO_BIN(datea, datea)
COMN_DATE_TO_VARBIN(datea, datea)
