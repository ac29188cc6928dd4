/*
 * cstypes.h - scalar types and value records.
 *
 * The widths here are part of every published interface of the library: they are the same in both
 * data models (ILP32 and LP64). Value records cross the library boundary in exactly this form.
 * Values are in host byte order (little-endian) unless a field says otherwise, and the conversion
 * functions accept them at any address, aligned or not.
 */
#ifndef ZRV_CSTYPES_H
#define ZRV_CSTYPES_H

#include <stddef.h>

/*
 * Linkage. ZRV_API marks what is exported to every client (version node ZRVCOMN_16, the contract);
 * ZRV_PRIVATE marks names that only the sibling libraries of the same release may bind to (version
 * node ZRVCOMN_PRIVATE, which changes without notice).
 */
#ifndef ZRV_API
#define ZRV_API __attribute__((visibility("default")))
#endif
#ifndef ZRV_PRIVATE
#define ZRV_PRIVATE __attribute__((visibility("default")))
#endif
#ifdef __cplusplus
#define ZRV_NOEXCEPT noexcept
#define ZRV_BEGIN_DECLS extern "C" {
#define ZRV_END_DECLS }
#else
#define ZRV_NOEXCEPT
#define ZRV_BEGIN_DECLS
#define ZRV_END_DECLS
#endif

ZRV_BEGIN_DECLS

/* Integers. */
typedef int CS_INT;                    /* 32 bits: general integer, lengths, datatype codes */
typedef int CS_LONG;                   /* 32 bits in both data models */
typedef unsigned int CS_UINT;          /* 32 bits */
typedef short CS_SMALLINT;             /* 16 bits */
typedef unsigned short CS_USMALLINT;   /* 16 bits */
typedef unsigned short CS_USHORT;      /* 16 bits */
typedef unsigned char CS_TINYINT;      /* 8 bits, 0 to 255, never negative */
typedef long long CS_BIGINT;           /* 64 bits */
typedef unsigned long long CS_UBIGINT; /* 64 bits */

/* Results and flags. */
typedef CS_INT CS_RETCODE; /* result of nearly every operation, see cserror.h */
typedef CS_INT CS_MSGNUM;  /* a composed message number */
typedef CS_INT CS_BOOL;    /* 0 false, 1 true */

/* Bytes and text. */
typedef unsigned char CS_BYTE;
typedef unsigned char CS_BINARY;
typedef unsigned char CS_LONGBINARY;
typedef unsigned char CS_IMAGE;
typedef unsigned char CS_LONGCHAR;
typedef unsigned char CS_TEXT;
typedef unsigned char CS_XML;
typedef unsigned char CS_BIT;
typedef char CS_CHAR;              /* the plain character type; compare bytes with com_unsign* */
typedef unsigned short CS_UNICHAR; /* one UTF-16 code unit */
typedef unsigned short CS_UNITEXT; /* one UTF-16 code unit */

/* Floating point. */
typedef float CS_REAL;   /* IEEE 754 single */
typedef double CS_FLOAT; /* IEEE 754 double */

/* Values that are plain integers. */
typedef CS_INT CS_VOIDDATA;
typedef CS_INT CS_BLOB;
typedef CS_INT CS_DATE; /* days from 1900-01-01 */
typedef CS_INT CS_TIME; /* 1/300 seconds since midnight */
typedef CS_INT CS_THRDID;
typedef CS_UBIGINT CS_BIGDATETIME; /* microseconds from 0000-01-01 */
typedef CS_UBIGINT CS_BIGTIME;     /* microseconds since midnight */

/* State tables. */
typedef unsigned char CS_EVENT;
typedef unsigned char CS_STATE;

/* Opaque. A CS_THRDRES is a mutex or event handle made by the caller's thread callbacks. */
typedef void CS_VOID;
typedef void CS_THRDRES;

/* A text of up to 256 bytes with its length. 258 bytes; `len` counts bytes of `str`, and there is
 * no terminator. */
typedef struct _cs_varchar {
  CS_SMALLINT len;
  CS_CHAR str[256];
} CS_VARCHAR;

/* A byte string of up to 256 bytes with its length. 258 bytes. */
typedef struct _cs_varbinary {
  CS_SMALLINT len;
  CS_BYTE array[256];
} CS_VARBINARY;

/* An exact decimal number of up to 77 digits. 35 bytes, no padding. `array[0]` is the sign (0 or 1)
 * and a big-endian base-256 magnitude follows; only the bytes that `precision` needs count. The
 * value is the magnitude divided by 10 to the power `scale`. */
typedef struct _cs_numeric {
  CS_BYTE precision; /* decimal digits in all, 1 to 77 */
  CS_BYTE scale;     /* digits right of the decimal point, 0 to 77 */
  CS_BYTE array[33];
} CS_NUMERIC;
typedef CS_NUMERIC CS_DECIMAL;

/* Money: a 64-bit count of ten-thousandths, its signed high word first in memory. 8 bytes. */
typedef struct _cs_money {
  CS_INT mnyhigh;
  CS_UINT mnylow;
} CS_MONEY;

/* Money: a 32-bit count of ten-thousandths. 4 bytes. */
typedef struct _cs_money4 {
  CS_INT mny4;
} CS_MONEY4;

/* A date with time: days from 1900-01-01 and 1/300 seconds since midnight. 8 bytes, valid from
 * 1753-01-01 to 9999-12-31. */
typedef struct _cs_datetime {
  CS_INT dtdays;
  CS_INT dttime;
} CS_DATETIME;

/* A short date with time: days from 1900-01-01 and minutes since midnight. 4 bytes, valid to
 * 2079-06-06. */
typedef struct _cs_datetime4 {
  CS_USHORT days;
  CS_USHORT minutes;
} CS_DATETIME4;

/* A date taken apart. */
typedef struct _cs_daterec {
  CS_INT dateyear;    /* 1 to 9999 */
  CS_INT datemonth;   /* 0 to 11, January is 0 */
  CS_INT datedmonth;  /* 1 to 31 */
  CS_INT datedyear;   /* 1 to 366 */
  CS_INT datedweek;   /* 0 to 6, Sunday is 0 */
  CS_INT datehour;    /* 0 to 23 */
  CS_INT dateminute;  /* 0 to 59 */
  CS_INT datesecond;  /* 0 to 59 */
  CS_INT datemsecond; /* 0 to 999 */
  CS_INT datetzone;   /* not set by the calendar code */
  CS_INT datesecfrac; /* fraction of a second, in units of 1/datesecprec second */
  CS_INT datesecprec; /* 300 or 1000000 */
} CS_DATEREC;

/* One piece of the prefetched data of a locator. */
typedef struct _csblobchunk {
  struct _csblobchunk *pnext;
  CS_INT len; /* bytes at `data` */
  CS_VOID *data;
} CsBlobChunk;

/* A token for a large object held on the server, with what part of its data came along. Owned by
 * whoever holds it; 32 bytes under ILP32. */
typedef struct _cs_locator {
  CS_INT locatortag;         /* CS_LOCATOR_TAG marks a valid record */
  CS_INT locatortype;        /* one of the three locator datatype codes */
  CS_USMALLINT locatorlen;   /* bytes at `locator` */
  CS_BYTE *locator;          /* the token, owned */
  CS_INT prefetchlen;        /* bytes of prefetched data */
  CsBlobChunk *prefetchdata; /* chain of prefetched chunks, owned */
  CS_BIGINT totalloblen;     /* bytes of the whole object */
} CS_LOCATOR;

#define CS_LOCATOR_TAG (-779)

ZRV_END_DECLS

#endif
