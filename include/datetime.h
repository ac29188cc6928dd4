/*
 * datetime.h - dates and times: cracking values into fields and making them from fields, ranges,
 * conversion between the value types, comparison, names, text, and arithmetic.
 *
 * The calendar is the proleptic Gregorian one for all years. The values:
 *
 *   CS_DATETIME     days from 1900-01-01 and 1/300 seconds (ticks); 1753-01-01 to 9999-12-31
 *   CS_DATETIME4    days from 1900-01-01 and minutes; 1900-01-01 to 2079-06-06
 *   CS_DATE         days from 1900-01-01; 0001-01-01 to 9999-12-31
 *   CS_TIME         ticks since midnight, below 25920000
 *   CS_BIGDATETIME  microseconds from 0000-01-01; 0001-01-01 is 31622400000000, year zero counting
 *                   as a leap year, and 10000-01-01, the first that is too large, is
 *                   315569520000000000
 *   CS_BIGTIME      microseconds since midnight, below 86400000000
 *
 * All operations are pure functions of their arguments; they allocate nothing, send no message and
 * depend on no locale of the C library. A value outside its range is no fault: it is cracked by the
 * same arithmetic, or an operation says with what status it refuses it. A null pointer is fatal
 * unless a comment allows it; if the application catches the signal, the function returns what a
 * failure returns (0 where it says nothing) and has written nothing.
 */
#ifndef ZRV_DATETIME_H
#define ZRV_DATETIME_H

#include <time.h>

#include "csintrn.h"
#include "cspublic.h"

ZRV_BEGIN_DECLS

/* ---- tables ---- */

/* One month of a year. */
struct monthcnt {
  short daysinmonth;
  short daysum; /* days of the year before this month */
};

extern ZRV_PRIVATE const struct monthcnt monthdays[12];  /* a common year */
extern ZRV_PRIVATE const struct monthcnt lmonthdays[12]; /* a leap year */

/* Days from January 1 to the Monday of the first ISO week, by the day of the week of January 1
 * (Sunday is 0): that week is the one with the first Thursday. */
extern ZRV_PRIVATE const int week_one_offset[7];

/* The English names and the date conventions that serve where no locale does. */
extern ZRV_PRIVATE CS_CHAR *const Com__Months[12];
extern ZRV_PRIVATE CS_CHAR *const Com__Shortmonths[12];
extern ZRV_PRIVATE CS_CHAR *const Com__WeekDay[7]; /* "Sunday" first */
extern ZRV_PRIVATE CS_CHAR *const Com__Days[7];    /* "Sun" first */
extern ZRV_PRIVATE CS_CHAR *const Com__ampm[2];
extern ZRV_PRIVATE const CS_INT Com__Firstday; /* 7, Sunday */
extern ZRV_PRIVATE const CS_CHAR Com__date_order[4];
extern ZRV_PRIVATE const int Com__date_order_id;

/* The tables above as callers of names take them; they must not be written. com__get_days gives the
 * short names. */
ZRV_PRIVATE CS_CHAR **com__get_months(void) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_CHAR **com__get_shortmonths(void) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_CHAR **com__get_days(void) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__get_firstday(void) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_CHAR *com__get_date_order(void) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__get_date_order_id(void) ZRV_NOEXCEPT;

/* ---- the calendar ---- */

/* 1 if the year after `year` whole years, that is, year + 1, is a leap year, else 0. */
ZRV_PRIVATE int leapyear(int year) ZRV_NOEXCEPT;

/* The leap days in the years 1 to `years`; 0 if that is negative. */
ZRV_PRIVATE CS_INT com__leapcnt(int years) ZRV_NOEXCEPT;

/* Copies the first ten fields of a record, those that older callers know, and datesecfrac and
 * datesecprec too if `datetype` is CS_TYPE_BIGDATETIME or CS_TYPE_BIGTIME. Returns 1, or 0 for a
 * null pointer. */
ZRV_PRIVATE int com__dtrec_cp(CS_DATEREC *src, CS_DATEREC *tgt, CS_INT datetype) ZRV_NOEXCEPT;

/* ---- cracking: values into fields ---- */

/*
 * com__datecrack and com__bigdatecrack set dateyear, datemonth, datedmonth, datedyear and
 * datedweek; com__timecrack and com__bigtimecrack set datehour, dateminute, datesecond,
 * datemsecond, datesecfrac and datesecprec. No other field is touched.
 *
 * Of a tick count the low 25 bits are looked at. It gives truncated milliseconds (1 tick is 3, 299
 * are 996), a datesecfrac of 0 and a datesecprec of 300; microseconds give a datemsecond of 0 and a
 * datesecprec of 1000000. com__bigtimecrack takes a CS_BIGTIME as well as a CS_BIGDATETIME.
 */
ZRV_PRIVATE void com__datecrack(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__timecrack(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__bigdatecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__bigtimecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;

/* The public forms. com_datecrack and com_timecrack neither read nor write datesecfrac and
 * datesecprec, so a record of ten fields serves them. */
ZRV_API void com_datecrack(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API void com_timecrack(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API void com_bigdatecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API void com_bigtimecrack(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;

/* ---- making: fields into values ---- */

/* The status of the make functions: the first field at fault. */
#define COM_DATE_BADYEAR 1
#define COM_DATE_BADMONTH 2
#define COM_DATE_BADDAY 3
#define COM_DATE_BADHOUR 4
#define COM_DATE_BADMINUTE 5
#define COM_DATE_BADSECOND 6
#define COM_DATE_BADFRACTION 7

/*
 * com__datemake sets dtdays from dateyear, datemonth and datedmonth, com__bigdatemake the value to
 * the start of that day. com__timemake sets dttime from the hour to the fraction, rounded to the
 * nearest tick (999 milliseconds are 299 ticks), com__bigtimemake the value to microseconds since
 * midnight. The fraction is datesecfrac if datesecprec is 1000000, otherwise datemsecond.
 *
 * Return 0, or the status of the first field at fault: the value then holds what had been added up
 * by then, which is days in com__bigdatemake. The time functions check upper bounds only: a
 * negative field is counted as it stands, and com__timemake refuses it only where the sum would
 * pass 32 bits.
 */
ZRV_PRIVATE int com__datemake(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__timemake(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatemake(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigtimemake(CS_BIGTIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;

/* The public forms. com_bigdatetimemake makes the date, then adds the time; if the time is at fault
 * the value is the start of the day. */
ZRV_API int com_datemake(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API int com_timemake(CS_DATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API int com_bigdatemake(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API int com_bigtimemake(CS_BIGTIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;
ZRV_API int com_bigdatetimemake(CS_BIGDATETIME *value, CS_DATEREC *fields) ZRV_NOEXCEPT;

/* ---- ranges ---- */

/* 0 if the value is in its range, 1 if not. com__datetime_check_range has no upper limit and does
 * not look at the time. */
ZRV_PRIVATE int com__datetime_check_range(CS_DATETIME *value) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatetime_check_range(CS_BIGDATETIME *value) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__datea_check_range(CS_DATE *value) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__timea_check_range(CS_TIME *value) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigtime_check_range(CS_BIGTIME *value) ZRV_NOEXCEPT;

/* ---- between the value types ---- */

/*
 * Each takes the source and the destination. Ticks become microseconds by way of whole
 * milliseconds: 1 tick is 3000 microseconds.
 *
 * These cannot fail and return 0.
 */
ZRV_PRIVATE int com__date4todt(CS_DATETIME4 *src, CS_DATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__date4tobigdatetime(CS_DATETIME4 *src, CS_BIGDATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__date4tobigtime(CS_DATETIME4 *src, CS_BIGTIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__datetodatea(CS_DATETIME *src, CS_DATE *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__datetotimea(CS_DATETIME *src, CS_TIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatetimetodatea(CS_BIGDATETIME *src, CS_DATE *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatetimetobigtime(CS_BIGDATETIME *src, CS_BIGTIME *dest) ZRV_NOEXCEPT;

/* Return 0, or 1 and write nothing when the day is outside 1900-01-01 to 2079-06-06. Ticks are
 * rounded to the nearest minute, half up; microseconds to the nearest second and that to the
 * nearest minute. Midnight belongs to the next day, which can be too late: 1. */
ZRV_PRIVATE int com__dttodate4(CS_DATETIME *src, CS_DATETIME4 *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdttodate4(CS_BIGDATETIME *src, CS_DATETIME4 *dest) ZRV_NOEXCEPT;

/* Crack the value and make it again; return 0, or the status of the make with what it leaves. */
ZRV_PRIVATE int com__datetobigdatetime(CS_DATETIME *src, CS_BIGDATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__datetobigtime(CS_DATETIME *src, CS_BIGTIME *dest) ZRV_NOEXCEPT;

/* Return 0, or 1 when a range check fails: that of CS_DATETIME, `*dest` then day 0 at midnight;
 * that of CS_BIGDATETIME, `*dest` then 0. */
ZRV_PRIVATE int com__dateatodate(CS_DATE *src, CS_DATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__dateatobigdatetime(CS_DATE *src, CS_BIGDATETIME *dest) ZRV_NOEXCEPT;

/* Return 0, or 1 when the source is no CS_TIME, with the result of the same arithmetic in place.
 * The date is 1900-01-01 and 0001-01-01. */
ZRV_PRIVATE int com__timeatodate(CS_TIME *src, CS_DATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__timeatobigdatetime(CS_TIME *src, CS_BIGDATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__timeatobigtime(CS_TIME *src, CS_BIGTIME *dest) ZRV_NOEXCEPT;

/*
 * From microseconds to ticks: whole milliseconds, then the nearest tick, the last millisecond of
 * the day being its last tick. These return CS_SUCCEED; CS_CONV_TRUNCATED when a fraction of a
 * millisecond was lost, the value in place; and
 *
 * com__bigdatetimetodate  CS_CONV_OVERFLOW when the date cannot be made, `*dest` partly written;
 *                         CS_CONV_UNDERFLOW before 1753-01-01, the value in place, even if a
 *                         fraction was lost too
 * com__bigtimetodate      CS_CONV_UNDERFLOW when the source is no CS_BIGTIME, the time of day in
 *                         place; the day is 0
 */
ZRV_PRIVATE CS_RETCODE com__bigdatetimetodate(CS_BIGDATETIME *src, CS_DATETIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__bigdatetimetotimea(CS_BIGDATETIME *src, CS_TIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__bigtimetotimea(CS_BIGTIME *src, CS_TIME *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__bigtimetodate(CS_BIGTIME *src, CS_DATETIME *dest) ZRV_NOEXCEPT;

/* ---- comparison ---- */

/* -1, 0 or 1. The fields of CS_DATETIME, CS_DATE and CS_TIME compare as signed numbers, as they
 * stand; those of the others as unsigned ones. */
ZRV_API CS_INT com_datecmp(CS_DATETIME *left, CS_DATETIME *right) ZRV_NOEXCEPT;
ZRV_API CS_INT com_date4cmp(CS_DATETIME4 *left, CS_DATETIME4 *right) ZRV_NOEXCEPT;
ZRV_API CS_INT com_dateacmp(CS_DATE *left, CS_DATE *right) ZRV_NOEXCEPT;
ZRV_API CS_INT com_timeacmp(CS_TIME *left, CS_TIME *right) ZRV_NOEXCEPT;
ZRV_API CS_INT com_bigdatetimecmp(CS_BIGDATETIME *left, CS_BIGDATETIME *right) ZRV_NOEXCEPT;

/* The difference of days, or of ticks on the same day, as far as a CS_INT holds it; its sign alone
 * is the answer. */
ZRV_PRIVATE CS_INT com__datecmp(CS_DATETIME *left, CS_DATETIME *right) ZRV_NOEXCEPT;

/* ---- setting ---- */

/* Clear a value: 1900-01-01 00:00. */
ZRV_API void com_datezero(CS_DATETIME *value) ZRV_NOEXCEPT;
ZRV_API void com_date4zero(CS_DATETIME4 *value) ZRV_NOEXCEPT;
/* Sets both fields, unchecked. */
ZRV_API void com_setdatetime(CS_DATETIME *value, CS_INT dtdays, CS_INT dttime) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
