#include "dates_peers.h"

#include <chrono>

#ifdef ZRVBENCH_WITH_FMT
#include <fmt/chrono.h>
#endif

#ifdef ZRVBENCH_WITH_PGTYPES
#include <pgtypes_timestamp.h>
#endif

using namespace std::chrono;

namespace {

using Millis = sys_time<milliseconds>;

Millis at(int64_t millis) {
  return Millis(milliseconds(millis));
}

} // namespace

void peer_chrono_crack(int64_t millis, PeerFields *fields) {
  const auto day = floor<days>(at(millis));
  const year_month_day date(day);
  const hh_mm_ss time(at(millis) - day);
  fields->year = static_cast<int>(date.year());
  fields->month = static_cast<int>(static_cast<unsigned>(date.month()));
  fields->day = static_cast<int>(static_cast<unsigned>(date.day()));
  fields->weekday = static_cast<int>(weekday(day).c_encoding());
  fields->hour = static_cast<int>(time.hours().count());
  fields->minute = static_cast<int>(time.minutes().count());
  fields->second = static_cast<int>(time.seconds().count());
  fields->millisecond = static_cast<int>(time.subseconds().count());
}

int64_t peer_chrono_make(const PeerFields *fields) {
  const sys_days day = year(fields->year) / month(static_cast<unsigned>(fields->month)) /
                       std::chrono::day(static_cast<unsigned>(fields->day));
  return (Millis(day) + hours(fields->hour) + minutes(fields->minute) + seconds(fields->second) +
          milliseconds(fields->millisecond))
      .time_since_epoch()
      .count();
}

int64_t peer_chrono_add_months(int64_t millis, int count) {
  const auto day = floor<days>(at(millis));
  year_month_day date = year_month_day(day) + months(count);
  if (!date.ok())
    date = date.year() / date.month() / last;
  return (Millis(sys_days(date)) + (at(millis) - day)).time_since_epoch().count();
}

int peer_chrono_months_between(int64_t from, int64_t to) {
  const year_month_day first(floor<days>(at(from)));
  const year_month_day second(floor<days>(at(to)));
  return static_cast<int>((second.year() / second.month() - first.year() / first.month()).count());
}

size_t peer_strftime(char *text, size_t room, const char *format, time_t time) {
  tm fields;
  gmtime_r(&time, &fields);
  return strftime(text, room, format, &fields);
}

#ifdef ZRVBENCH_WITH_FMT
size_t peer_fmt_iso_t(char *text, time_t time) {
  return static_cast<size_t>(
      fmt::format_to(text, FMT_STRING("{:%Y-%m-%dT%H:%M:%S}"), fmt::gmtime(time)) - text);
}

size_t peer_fmt_iso(char *text, time_t time) {
  return static_cast<size_t>(
      fmt::format_to(text, FMT_STRING("{:%Y-%m-%d %H:%M:%S}"), fmt::gmtime(time)) - text);
}

size_t peer_fmt_minutes(char *text, time_t time) {
  return static_cast<size_t>(
      fmt::format_to(text, FMT_STRING("{:%b %e %Y %I:%M%p}"), fmt::gmtime(time)) - text);
}

size_t peer_fmt_seconds(char *text, time_t time) {
  return static_cast<size_t>(
      fmt::format_to(text, FMT_STRING("{:%b %e %Y %I:%M:%S%p}"), fmt::gmtime(time)) - text);
}
#endif

time_t peer_strptime_iso(const char *text) {
  tm fields{};
  return strptime(text, "%Y-%m-%dT%H:%M:%S", &fields) != nullptr ? timegm(&fields) : 0;
}

#ifdef ZRVBENCH_WITH_PGTYPES
int64_t peer_pg_timestamp(char *text) {
  return PGTYPEStimestamp_from_asc(text, nullptr);
}
#endif
