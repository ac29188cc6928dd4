// The peers of the calendar operations, in a shared object of their own.
#ifndef ZRVBENCH_DATES_PEERS_H
#define ZRVBENCH_DATES_PEERS_H

#include <cstddef>
#include <cstdint>
#include <ctime>

extern "C" {

struct PeerFields {
  int year, month, day, weekday, hour, minute, second, millisecond;
};

// std::chrono. Times count milliseconds and days from 1970-01-01.
void peer_chrono_crack(int64_t millis, PeerFields *fields);
int64_t peer_chrono_make(const PeerFields *fields);
// The day is limited to the length of the month.
int64_t peer_chrono_add_months(int64_t millis, int months);
int peer_chrono_months_between(int64_t from, int64_t to);

// strftime of gmtime_r; returns the length.
size_t peer_strftime(char *text, size_t room, const char *format, time_t time);

#ifdef ZRVBENCH_WITH_FMT
// {fmt} from a time_t, with the formats of the styles 23, 140 without its fraction, 0 and 9.
size_t peer_fmt_iso_t(char *text, time_t time);
size_t peer_fmt_iso(char *text, time_t time);
size_t peer_fmt_minutes(char *text, time_t time);
size_t peer_fmt_seconds(char *text, time_t time);
#endif

// strptime and timegm of "%Y-%m-%dT%H:%M:%S".
time_t peer_strptime_iso(const char *text);

#ifdef ZRVBENCH_WITH_PGTYPES
// The date parser of an SQL client; microseconds from 2000-01-01.
int64_t peer_pg_timestamp(char *text);
#endif
}

#endif
