// Conversions from CS_TIME; the time of day, and the time of a file.

#include <ctime>

#include <sys/stat.h>

#include "calendar.h"
#include "date_value.h"

COMN_DATE_MEMBER(timea, date4)
COMN_DATE_MEMBER(timea, date)
COMN_DATE_MEMBER(timea, bigdatetime)
COMN_DATE_MEMBER(timea, bigtime)
COMN_DATE_MEMBER(timea, timea)
COMN_DATE_TO_BIN(timea, timea)
COMN_DATE_TO_VARBIN(timea, timea)

namespace {

// Day, month and year of the century in the order of a date order number.
struct DateOrder {
  CS_INT numbers[3];
};

DateOrder order_date(CS_INT format, CS_INT day, CS_INT month, CS_INT year) noexcept {
  switch (format) {
  case 2:
    return {{day, month, year}};
  case 3:
    return {{year, month, day}};
  case 4:
    return {{year, day, month}};
  case 5:
    return {{month, year, day}};
  case 6:
    return {{day, year, month}};
  default:
    return {{month, day, year}};
  }
}

constexpr CS_INT two_digits = -2; // padded with a zero
constexpr CS_INT length_of_24_hours = sizeof "dd/mm/yy hh:mm:ss";
constexpr CS_INT length_of_12_hours = sizeof "dd/mm/yy hh:mm:ss AM";

void write_time(CS_CHAR *out, CS_INT format, bool is_12_hours, const std::tm &now) noexcept {
  const DateOrder date = order_date(format, now.tm_mday, now.tm_mon + 1, now.tm_year + 1900);
  out += com__cpint(out, date.numbers[0], '/', two_digits);
  out += com__cpint(out, date.numbers[1], '/', two_digits);
  out += com__cpint(out, date.numbers[2], ' ', two_digits);
  // Midnight stays hour 0 in both.
  const CS_INT hour = is_12_hours && now.tm_hour > 12 ? now.tm_hour - 12 : now.tm_hour;
  out += com__cpint(out, hour, ':', two_digits);
  out += com__cpint(out, now.tm_min, ':', two_digits);
  out += com__cpint(out, now.tm_sec, is_12_hours ? ' ' : '\0', two_digits);
  if (is_12_hours)
    out += com__cpchar(out, own_Com__ampm[now.tm_hour >= 12], '\0', 2);
  *out = '\0';
}

} // namespace

CS_RETCODE comn_time(CS_INT format, CS_BOOL is12hour, CS_CHAR *buffer, CS_INT buflen,
                     CS_INT *outlen, CS_DATEREC *drec) noexcept {
  const std::time_t seconds = std::time(nullptr);
  std::tm now;
  if (localtime_r(&seconds, &now) == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (buffer != nullptr) {
    const bool is_12_hours = is12hour == 1;
    const CS_INT needed = is_12_hours ? length_of_12_hours : length_of_24_hours;
    if (outlen != nullptr)
      *outlen = needed;
    if (buflen < needed)
      return COMN_TRACE(CS_FAIL);
    write_time(buffer, format, is_12_hours, now);
  }
  if (drec != nullptr) {
    drec->dateyear = now.tm_year + 1900;
    drec->datemonth = now.tm_mon;
    drec->datedmonth = now.tm_mday;
    drec->datedyear = now.tm_yday + 1;
    drec->datedweek = now.tm_wday;
    drec->datehour = now.tm_hour;
    drec->dateminute = now.tm_min;
    drec->datesecond = now.tm_sec;
  }
  return COMN_TRACE(CS_SUCCEED);
}

time_t comn_file_modtime(CS_CHAR *path) noexcept {
  COMN_CHECK_PTR(path, 0);
  struct stat status;
  return stat(path, &status) == 0 ? status.st_mtime : 0;
}
