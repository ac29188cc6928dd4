// The calendar core: cracking values into fields, making them from fields, and their ranges.
#include <cstring>

#include "calendar.h"
#include "checks.h"
#include "crack.h"
#include "table.h"

using namespace comn::calendar;

namespace {

using MonthTable = comn::Table<monthcnt, months_per_year>;

consteval MonthTable build_months(short february) {
  const short lengths[] = {31, february, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  MonthTable table{};
  short sum = 0;
  for (size_t month = 0; month < months_per_year; ++month) {
    table[month] = {lengths[month], sum};
    sum = static_cast<short>(sum + lengths[month]);
  }
  return table;
}

} // namespace

COMN_PUBLISH_TABLE(MonthTable, monthcnt, monthdays, [months_per_year], build_months(28));
COMN_PUBLISH_TABLE(MonthTable, monthcnt, lmonthdays, [months_per_year], build_months(29));

COMN_DEFINE_TABLE(week_one_offset) = {1, 0, -1, -2, -3, 3, 2};

int leapyear(int year) noexcept {
  return is_leap(int64_t{year} + 1);
}

CS_INT com__leapcnt(int years) noexcept {
  return leap_days(years);
}

int com__dtrec_cp(CS_DATEREC *src, CS_DATEREC *tgt, CS_INT datetype) noexcept {
  if (src == nullptr || tgt == nullptr)
    return 0;
  const bool has_fraction = datetype == CS_TYPE_BIGDATETIME || datetype == CS_TYPE_BIGTIME;
  std::memmove(tgt, src, has_fraction ? sizeof *src : offsetof(CS_DATEREC, datesecfrac));
  return 1;
}

void com__datecrack(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value);
  COMN_CHECK_PTR(fields);
  set_date_fields(*fields, value->dtdays);
}

void com__timecrack(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value);
  COMN_CHECK_PTR(fields);
  set_time_fields(*fields, value->dttime);
  fields->datesecfrac = 0;
  fields->datesecprec = tick_precision;
}

void com__bigdatecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value);
  COMN_CHECK_PTR(fields);
  set_date_fields(*fields, days_of_big(*value));
}

void com__bigtimecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value);
  COMN_CHECK_PTR(fields);
  set_bigtime_fields(*fields, micros_of_day(*value));
}

namespace {

// The days from 0001-01-01 to the date of a record, added up as far as its fields are right.
struct MadeDate {
  int status;
  CS_INT days;
};

[[gnu::always_inline]] inline MadeDate make_date(const CS_DATEREC &fields) noexcept {
  if (fields.dateyear < 1 || fields.dateyear > last_year) [[unlikely]]
    return {COM_DATE_BADYEAR, 0};
  CS_INT days = days_of_years(fields.dateyear - 1);
  const auto month = static_cast<CS_UINT>(fields.datemonth);
  if (month >= months_per_year) [[unlikely]]
    return {COM_DATE_BADMONTH, days};
  const monthcnt &row = (is_leap(fields.dateyear) ? own_lmonthdays : own_monthdays)[month];
  days += row.daysum;
  if (fields.datedmonth < 1 || fields.datedmonth > row.daysinmonth) [[unlikely]]
    return {COM_DATE_BADDAY, days};
  return {0, days + fields.datedmonth - 1};
}

// The clock fields of a record: how far each may go, its seconds, and its status.
struct ClockField {
  CS_INT CS_DATEREC::*member;
  CS_INT last;
  CS_INT seconds;
  int status;
};

constexpr ClockField clock_fields[] = {
    {&CS_DATEREC::datehour, 23, seconds_per_hour, COM_DATE_BADHOUR},
    {&CS_DATEREC::dateminute, 59, seconds_per_minute, COM_DATE_BADMINUTE},
    {&CS_DATEREC::datesecond, 59, 1, COM_DATE_BADSECOND},
};

// Adds hours, minutes and seconds to `sum`, in units of which a second has so many, as far as the
// fields are right. Only upper bounds count: a negative field is at fault where the sum would pass
// its type.
template <class Units, Units units_per_second>
int add_clock(const CS_DATEREC &fields, Units &sum) noexcept {
#pragma GCC unroll 3
  for (const ClockField &field : clock_fields) {
    const CS_INT value = fields.*field.member;
    if (value > field.last) [[unlikely]]
      return field.status;
    Units units;
    if (__builtin_mul_overflow(value, field.seconds * units_per_second, &units) ||
        __builtin_add_overflow(sum, units, &units)) [[unlikely]]
      return field.status;
    sum = units;
  }
  return 0;
}

constexpr CS_INT last_milli = 999;
// The nearest tick would be the first of the next second.
constexpr CS_INT ticks_of_last_milli = ticks_per_second - 1;

} // namespace

int com__datemake(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value, COM_DATE_BADYEAR);
  COMN_CHECK_PTR(fields, COM_DATE_BADYEAR);
  const MadeDate date = make_date(*fields);
  value->dtdays = date.status == 0 ? date.days + first_day : date.days;
  return date.status;
}

int com__bigdatemake(CS_BIGDATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value, COM_DATE_BADYEAR);
  COMN_CHECK_PTR(fields, COM_DATE_BADYEAR);
  const MadeDate date = make_date(*fields);
  const auto days = static_cast<CS_UBIGINT>(date.days);
  *value = date.status == 0 ? first_bigdatetime + days * micros_per_day : days;
  return date.status;
}

int com__timemake(CS_DATETIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value, COM_DATE_BADHOUR);
  COMN_CHECK_PTR(fields, COM_DATE_BADHOUR);
  CS_INT ticks = 0;
  const int status = add_clock<CS_INT, ticks_per_second>(*fields, ticks);
  // Nothing is stored for an hour at fault.
  if (status != COM_DATE_BADHOUR)
    value->dttime = ticks;
  if (status != 0) [[unlikely]]
    return status;
  const CS_INT millis =
      fields->datesecprec == micro_precision ? fields->datesecfrac / 1000 : fields->datemsecond;
  if (millis > last_milli) [[unlikely]]
    return COM_DATE_BADFRACTION;
  const CS_INT fraction = millis == last_milli ? ticks_of_last_milli : ticks_of_millis(millis);
  if (__builtin_add_overflow(ticks, fraction, &ticks)) [[unlikely]]
    return COM_DATE_BADFRACTION;
  value->dttime = ticks;
  return 0;
}

int com__bigtimemake(CS_BIGTIME *value, CS_DATEREC *fields) noexcept {
  COMN_CHECK_PTR(value, COM_DATE_BADHOUR);
  COMN_CHECK_PTR(fields, COM_DATE_BADHOUR);
  constexpr auto second = static_cast<int64_t>(micros_per_second);
  int64_t micros = 0;
  const int status = add_clock<int64_t, second>(*fields, micros);
  *value = static_cast<CS_BIGTIME>(micros);
  if (status != 0) [[unlikely]]
    return status;
  const int64_t fraction = fields->datesecprec == micro_precision
                               ? fields->datesecfrac
                               : int64_t{fields->datemsecond} * 1000;
  if (fraction >= second) [[unlikely]]
    return COM_DATE_BADFRACTION;
  *value = static_cast<CS_BIGTIME>(micros + fraction);
  return 0;
}

int com__datetime_check_range(CS_DATETIME *value) noexcept {
  COMN_CHECK_PTR(value, 1);
  return !is_datetime_day(value->dtdays);
}

int com__bigdatetime_check_range(CS_BIGDATETIME *value) noexcept {
  COMN_CHECK_PTR(value, 1);
  return !is_bigdatetime(*value);
}

int com__datea_check_range(CS_DATE *value) noexcept {
  COMN_CHECK_PTR(value, 1);
  return !is_date(*value);
}

int com__timea_check_range(CS_TIME *value) noexcept {
  COMN_CHECK_PTR(value, 1);
  return !is_time(*value);
}

int com__bigtime_check_range(CS_BIGTIME *value) noexcept {
  COMN_CHECK_PTR(value, 1);
  return !is_bigtime(*value);
}
