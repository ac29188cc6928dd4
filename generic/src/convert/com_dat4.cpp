// Conversions from CS_DATETIME4.
#include "date_value.h"

namespace {

CS_DATETIME widen(CS_DATETIME4 *source) noexcept {
  CS_DATETIME wide;
  com__date4todt(source, &wide);
  return wide;
}

int widen_and_take_date(CS_DATETIME4 *source, CS_DATE *dest) noexcept {
  CS_DATETIME wide = widen(source);
  return com__datetodatea(&wide, dest);
}

int widen_and_take_time(CS_DATETIME4 *source, CS_TIME *dest) noexcept {
  CS_DATETIME wide = widen(source);
  return com__datetotimea(&wide, dest);
}

int widen_and_take_bigtime(CS_DATETIME4 *source, CS_BIGTIME *dest) noexcept {
  CS_DATETIME wide = widen(source);
  return com__datetobigtime(&wide, dest);
}

} // namespace

COMN_DATE_MEMBER(date4, date4, copy, always)
COMN_DATE_MEMBER(date4, date, com__date4todt, always)
COMN_DATE_MEMBER(date4, bigdatetime, com__date4tobigdatetime, always)
COMN_DATE_MEMBER(date4, datea, widen_and_take_date, always)
COMN_DATE_MEMBER(date4, timea, widen_and_take_time, always)
COMN_DATE_MEMBER(date4, bigtime, widen_and_take_bigtime, always)
COMN_DATE_TO_BIN(date4, date4)
COMN_DATE_TO_VARBIN(date4, date4)
