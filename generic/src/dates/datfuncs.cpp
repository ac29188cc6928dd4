// The public forms of the calendar operations, comparison and setting.
#include <algorithm>
#include <cstdint>
#include <limits>

#include "checks.h"
#include "crack.h"

using namespace comn::calendar;

void com_datecrack(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  com__datecrack(value, fields);
}

// Not by way of com__timecrack: an older caller's record ends before datesecfrac.
void com_timecrack(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value);
  COMN_CHECK_PTR(fields);
  set_time_fields(*fields, value->dttime);
}

void com_bigdatecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  com__bigdatecrack(value, fields);
}

void com_bigtimecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  com__bigtimecrack(value, fields);
}

int com_datemake(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  return com__datemake(value, fields);
}

int com_timemake(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  return com__timemake(value, fields);
}

int com_bigdatemake(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  return com__bigdatemake(value, fields);
}

int com_bigtimemake(CS_BIGTIME *value, CS_DATEREC *fields) noexcept {
  return com__bigtimemake(value, fields);
}

int com_bigdatetimemake(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  if (const int status = com__bigdatemake(value, fields); status != 0)
    return status;
  CS_BIGTIME time;
  if (const int status = com__bigtimemake(&time, fields); status != 0)
    return status;
  *value += time;
  return 0;
}

namespace {

template <class Number>
CS_INT compare(Number left, Number right) noexcept {
  return (left > right) - (left < right);
}

} // namespace

CS_INT com_datecmp(CS_DATETIME *left, CS_DATETIME *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  const CS_INT days = compare(left->dtdays, right->dtdays);
  return days != 0 ? days : compare(left->dttime, right->dttime);
}

CS_INT com_date4cmp(CS_DATETIME4 *left, CS_DATETIME4 *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  const CS_INT days = compare(left->days, right->days);
  return days != 0 ? days : compare(left->minutes, right->minutes);
}

CS_INT com_dateacmp(CS_DATE *left, CS_DATE *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  return compare(*left, *right);
}

CS_INT com_timeacmp(CS_TIME *left, CS_TIME *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  return compare(*left, *right);
}

CS_INT com_bigdatetimecmp(CS_BIGDATETIME *left, CS_BIGDATETIME *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  return compare(*left, *right);
}

CS_INT com__datecmp(CS_DATETIME *left, CS_DATETIME *right) noexcept {
  COMN_CHECK_PTR(left, 0);
  COMN_CHECK_PTR(right, 0);
  using Limits = std::numeric_limits<CS_INT>;
  int64_t difference = int64_t{left->dtdays} - right->dtdays;
  if (difference == 0)
    difference = int64_t{left->dttime} - right->dttime;
  return static_cast<CS_INT>(std::clamp<int64_t>(difference, Limits::min(), Limits::max()));
}

void com_datezero(CS_DATETIME *value) noexcept {
  COMN_CHECK_PTR(value);
  *value = {};
}

void com_date4zero(CS_DATETIME4 *value) noexcept {
  COMN_CHECK_PTR(value);
  *value = {};
}

void com_setdatetime(CS_DATETIME *value, CS_INT dtdays, CS_INT dttime) noexcept {
  COMN_CHECK_PTR(value);
  *value = {dtdays, dttime};
}
