// Conversions from CS_BIGTIME.
#include "calendar.h"
#include "date_value.h"

namespace {

// Rounded to a tick, then to the minute. A code of its own comes from the first alone.
CS_RETCODE round_twice(CS_BIGTIME *source, CS_DATETIME4 *dest) noexcept {
  using namespace comn::date_value;
  CS_DATETIME between;
  const CS_RETCODE status = narrowed(com__bigtimetodate(source, &between));
  return status == CS_SUCCEED ? in_range(com__dttodate4(&between, dest)) : status;
}

// The date is 0001-01-01.
int add_first_day(CS_BIGTIME *source, CS_BIGDATETIME *dest) noexcept {
  *dest = *source + comn::calendar::first_bigdatetime;
  return 0;
}

} // namespace

COMN_DATE_MEMBER(bigtime, date4, round_twice, narrowed)
COMN_DATE_MEMBER(bigtime, date, com__bigtimetodate, narrowed)
COMN_DATE_MEMBER(bigtime, timea, com__bigtimetotimea, narrowed)
COMN_DATE_MEMBER(bigtime, bigdatetime, add_first_day, always)
COMN_DATE_MEMBER(bigtime, bigtime, copy, always)
COMN_DATE_TO_BIN(bigtime, bigtime)
COMN_DATE_TO_VARBIN(bigtime, bigtime)
