/*
 * datetime.h - dates and times: cracking values into fields and making them from fields, ranges,
 * conversion between the value types, comparison, names, text both ways, and arithmetic.
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

#include "charset.h"
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
 * datesecprec, so a record of ten fields serves them. A null record is fatal in all of them, as a
 * null value is; com__dtrec_cp alone takes one. */
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
 * by then, which is days in com__bigdatemake; after COM_DATE_BADHOUR com__timemake leaves it alone,
 * and com__bigtimemake stores 0. The time functions check upper bounds only: a negative field is
 * counted as it stands, and com__timemake refuses it only where the sum would pass 32 bits.
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
 * the day being its last tick; in com__bigdatetimetodate, which cracks and makes, the last of every
 * second. These return CS_SUCCEED; CS_CONV_TRUNCATED when a fraction of a millisecond was lost, the
 * value in place; and
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
 * trparts    in   the fields of a value
 * buf        out  the text, not NUL-terminated
 * len        in   capacity of `buf` in bytes; negative means unlimited (no text passes 40 bytes)
 * style      in   the style number
 * shortmths  in   12 short month names, NUL-terminated, of which 9 bytes show; may be null where
 *                 the layout shows none
 *
 * Return the length of the text, or
 *    0  when it did not fit, the first `len` bytes standing in `buf`;
 *   -1  for an unknown style, nothing written;
 *   -2  when the layout shows a month name and there is none, be it that the list or its entry is
 *       null or that the month is no month, nothing written.
 *
 * "AM" and "PM" are not localised.
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

/* Times alone. Where a layout shows a date, it is 1900-01-01 for a CS_TIME and 0001-01-01 for a
 * CS_BIGTIME. */
ZRV_PRIVATE CS_INT com__timeatochar(CS_TIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                    CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__bigtimetochar(CS_BIGTIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                      CS_CHAR **shortmths) ZRV_NOEXCEPT;

/* com__datetochar and com__date4tochar under their public names. */
ZRV_API CS_INT com_cvtdatetochar(CS_DATETIME *value, CS_CHAR *buf, CS_INT len, CS_INT style,
                                 CS_CHAR **shortmths) ZRV_NOEXCEPT;
ZRV_API CS_INT com_cvtdate4tochar(CS_DATETIME4 *value, CS_CHAR *buf, CS_INT len, CS_INT style,
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
 * Returns the length of the text, or
 *    0  for a null value, nothing written;
 *   -1  when the text did not fit, its first `destlen` bytes in `dest`;
 *   -1  when the style is unknown, nothing written;
 *   -2  when the layout shows a month name and the list has a null pointer for it, nothing written.
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

/* ---- from text ---- */

/* One token of a text. C tells the record from the function of the same name by its tag. */
struct com__datecrack {
  int dctoken;  /* DT_ */
  int dclength; /* digits of a number, 0 for others */
  /* the number; the index of a month, or of am (0) or pm; -1 for ".", 0 for others */
  CS_INT dcvalue;
};

/* Kinds of tokens. A number of 7 digits or more than 8 is DT_ERROR. */
#define DT_NUMBER 0    /* 1 to 3 digits */
#define DT_YEAR 1      /* 4 digits */
#define DT_COLON 2     /* ":" */
#define DT_AMPM 3      /* a name of Com__ampm */
#define DT_MONTH 4     /* a name of a month */
#define DT_COMMA 5     /* "," */
#define DT_SEPARATOR 6 /* "/", "-" or "." */
#define DT_END 7       /* the end of the text */
#define DT_ERROR 8     /* anything else */
#define DT_USED 9      /* used up by the interpreter */
#define DT_PACKED 10   /* 6 or 8 digits */
#define DT_ISOT 11     /* "T" or "t", whatever follows it */
#define DT_FIVE 12     /* 5 digits */

/* Results beside 0. */
#define DT_NO_DATE 99    /* no date: a time, or nothing at all */
#define DT_BAD_SYNTAX -1 /* the tokens form no date */
#define DT_LEFTOVER -2   /* a date, or none, and tokens that belong to nothing */

/*
 * A text holds a date, a time or both, in at most 20 tokens. Tokens are found by kind, not by place:
 *
 *   time    hour ":" minute, then ":" second, then ":" milliseconds as they stand or "." and a
 *           fraction of 1 to 6 or 8 digits; am or pm behind it. Or an hour and am or pm. Hours,
 *           minutes and seconds have up to three digits.
 *   "T"     only a time may follow it
 *   date    the name of a month with a year of four digits, and a day or none (the first); or with
 *           a day and a short year. Or three numbers and two separators, in the order that style and
 *           order tell. Or YYYYMMDD or YYMMDD. Or a year of four digits alone: its first day.
 *
 * A short year has up to two digits; 0 to 49 are 2000 to 2049, others 1950 to 1999. Nothing at all is
 * 1900-01-01 (0001-01-01 for a CS_BIGDATETIME), and so is a time alone. In a fraction of 8 digits, the
 * number counts as microseconds. A CS_DATETIME takes milliseconds, rounded half up; 1000 of them are
 * 999.
 *
 * dtp        out  the value; where an entry point fails it may be partly written
 * origcp     in   the text, not NUL-terminated
 * origlen    in   its length in bytes; below 1 the text is empty
 * style      in   for three numbers, as below
 * order      in   1 mdy, 2 dmy, 3 ymd, 4 ydm, 5 myd, 6 dym
 * mths       in   12 names of months, NUL-terminated, in the character set of the text; of up to
 *                 30 bytes; null, as for shortmths, when no name is known
 * shortmths  in   12 short names, likewise
 * chatr      in   the character set; null for the built-in one. Names compare as its reduction to
 *                 ASCII does, and as a whole
 * truncated  out  1 when milliseconds lost digits of the fraction, else 0; may be null
 *
 *   style                       order                                   year of four digits
 *   0, 9                        `order`; 3 if the year is the first     taken if there is one
 *                               token of the text and `order` is not 4
 *   1, 10                       1                                       not taken
 *   2, 11, 21 to 23, 40         3                                       not taken
 *   3 to 5                      2                                       not taken
 *   101, 110                    1                                       required
 *   102, 111, 121, 122, 140     3                                       required
 *   103 to 105                  2                                       required
 *   others                      DT_BAD_SYNTAX
 *
 * Results: 0; negative, DT_BAD_SYNTAX or DT_LEFTOVER, when the text is none; positive when its value
 * is out of range: 1 for a short year above 99, for a time that cannot be made, and for a value beyond
 * the range of its type; 9 for an hour that am or pm contradicts; COM_DATE_BADYEAR to
 * COM_DATE_BADDAY. com__bigtimefromchar_mb tells the field of a time that cannot be made,
 * COM_DATE_BADHOUR to COM_DATE_BADFRACTION. A null pointer that nothing allows is fatal,
 * DT_BAD_SYNTAX.
 */
ZRV_PRIVATE int com__datefromchar_mb(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen,
                                     CS_INT style, CS_INT order, CS_CHAR **mths,
                                     CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                     CS_BOOL *truncated) ZRV_NOEXCEPT;
/* Rounded to the minute, which can be too late. */
ZRV_PRIVATE int com__date4fromchar_mb(CS_DATETIME4 *dtp, CS_CHAR *origcp, CS_INT origlen,
                                      CS_INT style, CS_INT order, CS_CHAR **mths,
                                      CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                      CS_BOOL *truncated) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatetimefromchar_mb(CS_BIGDATETIME *dtp, CS_CHAR *origcp, CS_INT origlen,
                                            CS_INT style, CS_INT order, CS_CHAR **mths,
                                            CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                            CS_BOOL *truncated) ZRV_NOEXCEPT;
/* With a partonly of 1 and 2: the date or the time of a text, the other half of which must be one
 * too. */
ZRV_PRIVATE int com__dateafromchar_mb(CS_DATE *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                                      CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths,
                                      CS_ATTRIB *chatr, CS_BOOL *truncated) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__timeafromchar_mb(CS_TIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                                      CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths,
                                      CS_ATTRIB *chatr, CS_BOOL *truncated) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigtimefromchar_mb(CS_BIGTIME *dtp, CS_CHAR *origcp, CS_INT origlen,
                                        CS_INT style, CS_INT order, CS_CHAR **mths,
                                        CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                        CS_BOOL *truncated) ZRV_NOEXCEPT;
/* With a partonly of 3: order, mths and shortmths have no effect, and the day is 1900-01-01. */
ZRV_PRIVATE int com__timefromchar_mb(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen,
                                     CS_INT style, CS_INT order, CS_CHAR **mths,
                                     CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                     CS_BOOL *truncated) ZRV_NOEXCEPT;

/*
 * Beneath them: the values without their ranges, and the fields, where DT_NO_DATE is a result and
 * dateyear stays as it was without a date. The fields of a date are not judged.
 *
 * parts     out  the fields; partly written, maybe, after a failure
 * partonly  in   0 the whole value; 1 a date is wanted and 2 a time, so that with a date what is left
 *                over does not count; 3 a time and nothing else
 * dt_type   in   CS_TYPE_BIGDATETIME or CS_TYPE_BIGTIME for a fraction in microseconds, any other for
 *                milliseconds
 */
ZRV_PRIVATE int xdatefromchar(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, int partonly,
                              CS_INT style, CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths,
                              CS_ATTRIB *chatr, CS_BOOL *truncated) ZRV_NOEXCEPT;
ZRV_PRIVATE int xbigdatetimefromchar(CS_BIGDATETIME *dtp, CS_CHAR *origcp, CS_INT origlen,
                                     int partonly, CS_INT style, CS_INT order, CS_CHAR **mths,
                                     CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                     CS_BOOL *truncated) ZRV_NOEXCEPT;
ZRV_PRIVATE int xdaterecfromchar(CS_DATEREC *parts, CS_CHAR *origcp, CS_INT origlen, int partonly,
                                 CS_INT style, CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths,
                                 CS_ATTRIB *chatr, CS_INT dt_type, CS_BOOL *truncated) ZRV_NOEXCEPT;

/* Reads one token, moves *cpp and *lenp past it and returns its kind. A null pointer among the first
 * three is fatal, DT_ERROR. */
ZRV_PRIVATE int datetoken(CS_CHAR **cpp, CS_INT *lenp, struct com__datecrack *dc, CS_CHAR **mths,
                          CS_CHAR **shortmths, CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/* The index of the first token of a kind, or, for a negative `token`, of the first one of another
 * kind than -token; -1 when none stands before DT_END. A null pointer is fatal, -1. */
ZRV_PRIVATE int findtoken(struct com__datecrack *dc, int token) ZRV_NOEXCEPT;

/* The index of the first of `cnt` names that a word of `len` bytes is, or -1; words and names above
 * 30 bytes are none. A null pointer but chatr is fatal, -1. */
ZRV_PRIVATE int datelookup(CS_CHAR *cp, CS_INT len, CS_CHAR **list, int cnt,
                           CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/* Brings datehour to 24 hours. PM (pmflag not 0) adds 12 to hours below 12 and contradicts 0; AM
 * makes 12 to 0 and contradicts hours above it. 0, or 1 for a contradiction. A null pointer is fatal,
 * 1. */
ZRV_PRIVATE int com__amcheck(CS_DATEREC *pp, int pmflag) ZRV_NOEXCEPT;

/* The year of a short one, or 1 for a number outside 0 to 99. */
ZRV_PRIVATE CS_INT com__year2digit(CS_INT year) ZRV_NOEXCEPT;

/* ---- arithmetic ---- */

/*
 * Parts of a date by their code:
 *
 *   code  part          its value                 added            difference
 *   0     year          the year                  years            calendar years
 *   1     quarter       1 to 4                    3 months         calendar quarters
 *   2     month         1 to 12                   months           calendar months
 *   3     weekday       1 to 7, from `firstday`   days             whole weeks
 *   4     day           1 to 31                   days             days
 *   5     day of year   1 to 366                  days             days
 *   6     hour          0 to 23                   hours            whole hours elapsed
 *   7     minute        0 to 59                   minutes          whole minutes elapsed
 *   8     second        0 to 59                   seconds          whole seconds elapsed
 *   9     millisecond   0 to 999                  milliseconds     milliseconds
 *   10    week          1 to 54, from Sunday      7 days           Sundays crossed
 *   11    ISO year      the year of its ISO week  years            ISO years
 *   12    ISO week      1 to 53                   7 days           Sundays crossed
 *   13    ISO weekday   1 (Monday) to 7           days             whole weeks
 *   14    microsecond   0 to 999999               microseconds     microseconds
 *
 * Code 14 belongs to CS_BIGDATETIME.
 */

/* Limits datedmonth to the length of datemonth in dateyear. */
ZRV_PRIVATE void monthcheck(CS_DATEREC *fields) ZRV_NOEXCEPT;

/*
 * Adds to a value in place. After years, quarters and months the day is limited to the length of
 * the month. Milliseconds are rounded to the nearest tick: 1 adds none.
 *
 * part   in      0 to 13; anything else is fatal, 1
 * value  in      how many, of any sign
 * to     in,out  the value; only the half that changes is touched
 *
 * Returns 0, or
 *   1  nothing changed, when the sum leaves the range of CS_DATE or of the arithmetic;
 *   1  nothing changed, when a part of the time is added, be it 0 of it, to a dttime of a day or
 *      more: the whole dttime is judged, though cracking looks at its low 25 bits alone, and a
 *      negative one borrows a day;
 *   1  dtdays 0, when years, quarters or months lead to a year that com__datemake refuses.
 *
 * The range of CS_DATETIME is not looked at.
 */
ZRV_PRIVATE int com__date_add(int part, CS_INT value, CS_DATETIME *to) ZRV_NOEXCEPT;

/*
 * Adds to a microsecond value in place. The fraction of a second stays where years, quarters or
 * months are added.
 *
 * part   in      0 to 14; anything else is fatal, 1
 * value  in      how many, of any sign
 * to     in,out  the value
 * type   in      protocol datatype number: 187 keeps the sum in the range of CS_BIGDATETIME, 188 in
 *                that of CS_BIGTIME, which does not wrap round midnight
 *
 * Returns 0, or
 *   1  nothing changed, when the sum leaves that range or 64 bits;
 *   1  the value 0, when years, quarters or months lead to a year that com__bigdatemake refuses;
 *      their sum is not held against `type`.
 */
ZRV_PRIVATE int com__bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to,
                                 CS_BYTE type) ZRV_NOEXCEPT;

/*
 * Add to a copy of `src` and deliver the sum by the protocol datatype number and the capacity of
 * `result`; its `len` becomes its `maxlen`.
 *
 *   type  delivers        maxlen  from a source of
 *   49    CS_DATE         4       8 bytes, a CS_DATETIME, or 4, a CS_DATE
 *   51    CS_TIME         4       4 bytes, a CS_TIME
 *   58    CS_DATETIME4    4       8 bytes, a CS_DATETIME, or 4, a CS_DATE
 *   61    CS_DATETIME     8       8 bytes, a CS_DATETIME, or 4, a CS_DATE
 *   187   CS_BIGDATETIME  8       8 bytes, a CS_BIGDATETIME
 *   188   CS_BIGTIME      8       8 bytes, a CS_BIGTIME or CS_BIGDATETIME
 *
 * com__dateadd_both delivers the first four, com__bigdateadd_both the last two. The limit of 1753
 * belongs to 61 alone, the range of CS_DATETIME4 to 58.
 *
 * Return 0, or 1 and leave `result` as it was: another length or type, a sum out of range.
 */
ZRV_PRIVATE int com__dateadd_both(int part, CS_INT value, __CONSTANT *src,
                                  __CONSTANT *result) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdateadd_both(int part, CS_INT value, __CONSTANT *src,
                                     __CONSTANT *result) ZRV_NOEXCEPT;

/* 1 if years and minutes can be added to the value, else 0: the CS_DATETIME4 at src->value if its
 * `len` is 4, otherwise the CS_DATETIME in the 8 bytes at `cast_buf`. */
ZRV_PRIVATE int com__valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf) ZRV_NOEXCEPT;

/*
 * `to` minus `from`. Elapsed units are truncated toward zero.
 *
 * part  in   0 to 13, or 14 in com__bigdatediff; anything else returns 0 and writes nothing
 * from  in   the value to start at
 * to    in   the value to end at; of each dttime the low 25 bits are looked at
 * diff  out  the difference
 *
 * Return 0; com__datediff also 1, nothing written, when a CS_INT does not hold the difference. In
 * minutes, seconds and milliseconds it must hold the whole days alone as well, which tells where
 * the time works against the days: more than 1491308, 24855 or 24 days are too many.
 */
ZRV_PRIVATE int com__datediff(int part, CS_DATETIME *from, CS_DATETIME *to,
                              CS_INT *diff) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to,
                                 CS_BIGINT *diff) ZRV_NOEXCEPT;

/*
 * The value of a part.
 *
 * part         in  0 to 14; anything else is fatal, 0
 * value        in  the value
 * fields       in  the value, cracked
 * firstday     in  for part 3, the day that counts as 1: Monday is 1, Sunday 7 or 0; not checked
 * dayselapsed  in  the days of the value from 1900-01-01
 * odatetype    in  the type of the value: with CS_TYPE_BIGDATETIME milliseconds and microseconds
 *                  come from datesecfrac, with any other milliseconds come from datemsecond and
 *                  microseconds are 0
 */
ZRV_PRIVATE CS_INT com__datepart(int part, CS_DATETIME *value, CS_INT firstday) ZRV_NOEXCEPT;
ZRV_API CS_INT com_datepart(int part, CS_DATETIME *value, CS_INT firstday) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__bigdatepart(int part, CS_BIGDATETIME *value, CS_INT firstday) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__daterecpart(int part, CS_DATEREC *fields, CS_INT firstday,
                                    CS_INT dayselapsed, CS_INT odatetype) ZRV_NOEXCEPT;

/*
 * The name of a part: of parts 3 and 13 the day's, of part 2 the month's, of others the number.
 *
 * part    in   0 to 14; anything else gives 0, and is fatal first except in com__datenameval
 * cp      out  the text, at most 30 bytes, without a NUL; a number above
 *              4 digits, or 6 for part 14, is a "*"
 * months  in   12 names; may be null
 * days    in   7 names, Sunday first; may be null
 *
 * Return the bytes written, 0 where a name is needed and there is none.
 */
ZRV_PRIVATE CS_INT com__datename(int part, CS_DATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                                 CS_CHAR **days) ZRV_NOEXCEPT;
ZRV_API CS_INT com_datename(int part, CS_DATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                            CS_CHAR **days) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__bigdatename(int part, CS_BIGDATETIME *value, CS_CHAR *cp, CS_CHAR **months,
                                    CS_CHAR **days) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__datenameval(int part, CS_CHAR *cp, CS_CHAR **months, CS_CHAR **days,
                                    CS_INT value, CS_INT dayselapsed) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
