// A calendar that counts day by day, to hold against the library's closed forms.
#ifndef ZRVTEST_SLOW_CALENDAR_H
#define ZRVTEST_SLOW_CALENDAR_H

namespace zrvtest {

inline bool slow_is_leap(long long year) {
  if (year % 400 == 0)
    return true;
  if (year % 100 == 0)
    return false;
  return year % 4 == 0;
}

inline int slow_month_length(int year, int month) {
  switch (month) {
  case 1:
    return slow_is_leap(year) ? 29 : 28;
  case 3:
  case 5:
  case 8:
  case 10:
    return 30;
  default:
    return 31;
  }
}

// Starts at 0001-01-01, a Monday, and moves one day at a time.
struct SlowCalendar {
  int days = -693595; // from 1900-01-01
  int year = 1;
  int month = 0;
  int day = 1;
  int day_of_year = 1;
  int weekday = 1; // Sunday is 0

  void next() {
    ++days;
    weekday = weekday == 6 ? 0 : weekday + 1;
    ++day_of_year;
    if (++day > slow_month_length(year, month)) {
      day = 1;
      if (++month == 12) {
        month = 0;
        ++year;
        day_of_year = 1;
      }
    }
  }

  bool done() const { return year == 10000; }
};

} // namespace zrvtest

#endif
