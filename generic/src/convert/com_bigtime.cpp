// Conversions from CS_BIGTIME.
#include "calendar.h"
#include "date_value.h"

namespace {

// The date is 0001-01-01.
CS_RETCODE add_first_day(CS_BIGTIME &source, CS_BIGDATETIME &dest) noexcept {
  dest = source + comn::calendar::first_bigdatetime;
  return CS_SUCCEED;
}

} // namespace

COMN_DATE_MEMBER(bigtime, date4,
                 by_datetime<narrowed<com__bigtimetodate, CS_BIGTIME, CS_DATETIME>,
                             in_range<com__dttodate4, CS_DATETIME, CS_DATETIME4>>)
COMN_DATE_MEMBER(bigtime, date, narrowed<com__bigtimetodate>)
COMN_DATE_MEMBER(bigtime, timea, narrowed<com__bigtimetotimea>)
COMN_DATE_MEMBER(bigtime, bigdatetime, add_first_day)
COMN_DATE_MEMBER(bigtime, bigtime, copy)
COMN_DATE_TO_BIN(bigtime, bigtime)
COMN_DATE_TO_VARBIN(bigtime, bigtime)
