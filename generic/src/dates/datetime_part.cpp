// Parts of dates: their values and their names.
#include "checks.h"
#include "crack.h"
#include "date_parts.h"

using namespace comn::calendar;

namespace {

// The first day of the first ISO week of the year that begins on a day.
int64_t first_iso_day(int64_t january_1) noexcept {
  return january_1 + own_week_one_offset[weekday(january_1)];
}

CS_INT year_length(int64_t year) noexcept {
  return is_leap(year) ? 366 : 365;
}

// The ISO week that a day belongs to: of its own year, or of one beside it.
struct IsoWeek {
  int64_t year;
  int64_t week;
};

IsoWeek iso_week(int64_t year, int64_t day_of_year, int64_t days) noexcept {
  const int64_t january_1 = days - day_of_year + 1;
  const int64_t into_year = days - first_iso_day(january_1);
  if (into_year < 0) {
    const int64_t last_january_1 = january_1 - year_length(year - 1);
    return {year - 1, (days - first_iso_day(last_january_1)) / days_per_week + 1};
  }
  const int64_t week = into_year / days_per_week + 1;
  if (week >= 52 && days >= first_iso_day(january_1 + year_length(year)))
    return {year + 1, 1};
  return {year, week};
}

// Days of the week by the day that counts as the first, Sunday being 0 or 7.
CS_INT weekday_from(CS_INT first_day_of_week, int64_t days) noexcept {
  const int64_t number = int64_t{weekday(days)} + 1 - first_day_of_week;
  return static_cast<CS_INT>(number < 1 ? number + days_per_week : number);
}

} // namespace

CS_INT comn::calendar::iso_year(CS_INT days) noexcept {
  const Date date = crack_day(days);
  return static_cast<CS_INT>(iso_week(date.year, date.day_of_year, days).year);
}

CS_INT com__daterecpart(int part, CS_DATEREC *fields, CS_INT firstday, CS_INT dayselapsed,
                        CS_INT odatetype) noexcept {
  COMN_CHECK(is_big_part(part), 0);
  COMN_CHECK_PTR(fields, 0);
  const bool is_big = odatetype == CS_TYPE_BIGDATETIME;
  switch (static_cast<Part>(part)) {
  case part_year:
    return fields->dateyear;
  case part_quarter:
    return fields->datemonth / 3 + 1;
  case part_month:
    return static_cast<CS_INT>(int64_t{fields->datemonth} + 1);
  case part_weekday:
    return weekday_from(firstday, dayselapsed);
  case part_day:
    return fields->datedmonth;
  case part_day_of_year:
    return fields->datedyear;
  case part_hour:
    return fields->datehour;
  case part_minute:
    return fields->dateminute;
  case part_second:
    return fields->datesecond;
  case part_millisecond:
    return is_big ? fields->datesecfrac / 1000 : fields->datemsecond;
  case part_week: {
    // Weeks start on Sunday, and the one with January 1 is the first.
    const int64_t day = fields->datedyear;
    const CS_INT january_1 = weekday(dayselapsed - day + 1);
    return static_cast<CS_INT>((day + january_1 + days_per_week - 1) / days_per_week);
  }
  case part_iso_year:
    return static_cast<CS_INT>(iso_week(fields->dateyear, fields->datedyear, dayselapsed).year);
  case part_iso_week:
    return static_cast<CS_INT>(iso_week(fields->dateyear, fields->datedyear, dayselapsed).week);
  case part_iso_weekday:
    return weekday_from(1, dayselapsed);
  case part_microsecond:
    return is_big ? fields->datesecfrac : 0;
  case part_count:
    break;
  }
  return 0;
}

CS_INT com__datepart(int part, CS_DATETIME *value, CS_INT firstday) noexcept {
  COMN_CHECK(is_big_part(part), 0);
  COMN_CHECK_PTR(value, 0);
  CS_DATEREC fields;
  set_date_fields(fields, value->dtdays);
  set_time_fields(fields, value->dttime);
  return com__daterecpart(part, &fields, firstday, value->dtdays, CS_TYPE_DATETIME);
}

CS_INT com_datepart(int part, CS_DATETIME *value, CS_INT firstday) noexcept {
  return com__datepart(part, value, firstday);
}

CS_INT com__bigdatepart(int part, CS_BIGDATETIME *value, CS_INT firstday) noexcept {
  COMN_CHECK(is_big_part(part), 0);
  COMN_CHECK_PTR(value, 0);
  const BigParts parts = split_big(*value);
  CS_DATEREC fields;
  set_date_fields(fields, parts.days);
  set_bigtime_fields(fields, parts.micros);
  return com__daterecpart(part, &fields, firstday, parts.days, CS_TYPE_BIGDATETIME);
}

namespace {

constexpr CS_INT max_name = 30;
constexpr CS_INT max_digits = 4;
constexpr CS_INT max_microsecond_digits = 6;

CS_INT write_name(CS_CHAR *cp, CS_CHAR **names, CS_UINT index, CS_UINT count) noexcept {
  if (names == nullptr || index >= count || names[index] == nullptr)
    return 0;
  return com__cpchar(cp, names[index], '\0', max_name);
}

} // namespace

CS_INT com__datenameval(int part, CS_CHAR *cp, CS_CHAR **months, CS_CHAR **days, CS_INT value,
                        CS_INT dayselapsed) noexcept {
  COMN_CHECK_PTR(cp, 0);
  switch (part) {
  case part_month:
    return write_name(cp, months, static_cast<CS_UINT>(value) - 1, months_per_year);
  case part_weekday:
  case part_iso_weekday:
    return write_name(cp, days, static_cast<CS_UINT>(weekday(dayselapsed)), days_per_week);
  case part_microsecond:
    return com__itochar(value, cp, max_microsecond_digits);
  default:
    return is_datetime_part(part) ? com__itochar(value, cp, max_digits) : 0;
  }
}

CS_INT com__datename(int part, CS_DATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                     CS_CHAR **days) noexcept {
  COMN_CHECK(is_big_part(part), 0);
  COMN_CHECK_PTR(value, 0);
  const bool is_day = part == part_weekday || part == part_iso_weekday;
  const CS_INT number = is_day ? 0 : com__datepart(part, value, 0);
  return com__datenameval(part, cp, months, days, number, value->dtdays);
}

CS_INT com_datename(int part, CS_DATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                    CS_CHAR **days) noexcept {
  return com__datename(part, value, cp, months, days);
}

CS_INT com__bigdatename(int part, CS_BIGDATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                        CS_CHAR **days) noexcept {
  COMN_CHECK(is_big_part(part), 0);
  COMN_CHECK_PTR(value, 0);
  const bool is_day = part == part_weekday || part == part_iso_weekday;
  const CS_INT number = is_day ? 0 : com__bigdatepart(part, value, 0);
  return com__datenameval(part, cp, months, days, number, days_of_big(*value));
}
