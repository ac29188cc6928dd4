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

/* ---- text ---- */

/*
 * A style number picks a layout: 0 to 23 and 36 to 40 with a year of two digits (0, 9, 16 and 23
 * with four), 100 to 118, 121, 122 and 136 to 141 with four. The engine of times alone lays a few
 * of them out otherwise: a style that shows nothing but a date is a text of one NUL byte there.
 *
 * value      in   the value
 * buf        out  the text, not NUL-terminated
 * len        in   capacity of `buf` in bytes; negative means unlimited (no text passes 40 bytes)
 * style      in   the style number
 * shortmths  in   12 short month names, NUL-terminated, of which 9 bytes show; may be null where
 * the layout shows none
 *
 * Return the length of the text; 0 when it did not fit, the first `len` bytes standing in `buf`; -1
 * for an unknown style; -2 when the layout shows a month name and there is none, be it that the
 * list is null or that the month is no month. Nothing is written then. "AM" and "PM" are not
 * localised.
 */

/* The engines: any fields give a text. Fields show their last digits without a sign. With `secprec`
 * 1000000 the fraction is datesecfrac, rounded to milliseconds without a carry into the second;
 * with any other it is datemsecond. */
ZRV_PRIVATE CS_INT com__daterectochar(CS_DATEREC *trparts, CS_CHAR *buf, CS_INT len, CS_INT style,
                                      CS_CHAR **shortmths, CS_INT secprec) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__timerectochar(CS_DATEREC *trparts, CS_CHAR *buf, CS_INT len, CS_INT style,
                                      CS_CHAR **shortmths, CS_INT secprec) ZRV_NOEXCEPT;

/* Values with a date. com__dateatochar shows the date alone in the styles 0 and 9, and midnight
 * where another style shows a time. */
ZRV_PRIVATE CS_INT com__datetochar(CS_DATETIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                   CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__date4tochar(CS_DATETIME4 *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                    CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__bigdatetimetochar(CS_BIGDATETIME *value, CS_CHAR *buf, CS_INT len,
                                          CS_INT style, CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__dateatochar(CS_DATE *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                    CS_CHAR **shortmths) ZRV_NOEXCEPT;

/* Times alone. Where a layout shows a date, a CS_TIME has 1900-01-01 and a CS_BIGTIME 0001-01-01.
 */
ZRV_PRIVATE CS_INT com__timeatochar(CS_TIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                    CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__bigtimetochar(CS_BIGTIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                      CS_CHAR **shortmths) ZRV_NOEXCEPT;

/*
 * A CS_DATETIME as text filled up with blanks; com_date2char has style 9.
 *
 * src          in   the value, 8 bytes at any address; may be null
 * srclen       in   0 for a null value; otherwise not looked at
 * dest         out  the text; bytes behind it up to `destlen` become blanks
 * destlen      in   capacity in bytes; negative means unlimited, and nothing is filled
 * shortmonths  in   12 short month names; null means the English ones
 *
 * Returns the length of the text; 0 for a null value; -1 when the text did not fit, its first
 * `destlen` bytes in `dest`, or when the style is unknown, nothing written.
 */
ZRV_API CS_INT com_date2char(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen,
                             CS_CHAR **shortmonths) ZRV_NOEXCEPT;
ZRV_API CS_INT com_date2char_ex(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen,
                                CS_CHAR **shortmonths, CS_INT style) ZRV_NOEXCEPT;

/* Writes a number right-aligned into a field of |len| characters, filled with "0" if `len` is
 * negative, else with blanks, and then `padchar` unless it is 0. Digits that do not fit are dropped
 * on the left, and a sign does not show. Returns the bytes written. */
ZRV_PRIVATE CS_INT com__cpint(CS_CHAR *cp, CS_INT value, CS_CHAR padchar, CS_INT len) ZRV_NOEXCEPT;

/* Writes at most `maxlen` bytes of a NUL-terminated string, and then `padchar` unless it is 0.
 * Returns the bytes written. */
ZRV_PRIVATE CS_INT com__cpchar(CS_CHAR *cp, CS_CHAR *str, CS_CHAR padchar,
                               CS_INT maxlen) ZRV_NOEXCEPT;

/* Writes a number in decimal, without a NUL, and returns the bytes written. Above `len` bytes, if
 * that is above 0, it writes a single "*" and returns 1. */
ZRV_PRIVATE CS_INT com__itochar(CS_INT val, CS_CHAR *buf, CS_INT len) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
