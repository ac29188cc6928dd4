/*
 * cspublic.h - the published vocabulary: datatype codes, format descriptor, message record, thread
 * callbacks, property actions, markers.
 */
#ifndef ZRV_CSPUBLIC_H
#define ZRV_CSPUBLIC_H

#include "cserror.h"
#include "cstypes.h"

ZRV_BEGIN_DECLS

/* Datatype codes. 0 to 39 are built in and index the conversion matrix and the table of default
 * values; 40 and above are user-defined; negative codes are invalid. */
#define CS_TYPE_CHAR 0
#define CS_TYPE_BINARY 1
#define CS_TYPE_LONGCHAR 2
#define CS_TYPE_LONGBINARY 3
#define CS_TYPE_TEXT 4
#define CS_TYPE_IMAGE 5
#define CS_TYPE_TINYINT 6
#define CS_TYPE_SMALLINT 7
#define CS_TYPE_INT 8
#define CS_TYPE_REAL 9
#define CS_TYPE_FLOAT 10
#define CS_TYPE_BIT 11
#define CS_TYPE_DATETIME 12
#define CS_TYPE_DATETIME4 13
#define CS_TYPE_MONEY 14
#define CS_TYPE_MONEY4 15
#define CS_TYPE_NUMERIC 16
#define CS_TYPE_DECIMAL 17
#define CS_TYPE_VARCHAR 18
#define CS_TYPE_VARBINARY 19
#define CS_TYPE_LONG 20
#define CS_TYPE_SENSITIVITY 21
#define CS_TYPE_BOUNDARY 22
#define CS_TYPE_VOID 23
#define CS_TYPE_USHORT 24
#define CS_TYPE_UNICHAR 25
#define CS_TYPE_BLOB 26
#define CS_TYPE_DATE 27
#define CS_TYPE_TIME 28
#define CS_TYPE_UNITEXT 29
#define CS_TYPE_BIGINT 30
#define CS_TYPE_USMALLINT 31
#define CS_TYPE_UINT 32
#define CS_TYPE_UBIGINT 33
#define CS_TYPE_XML 34
#define CS_TYPE_BIGDATETIME 35
#define CS_TYPE_BIGTIME 36
#define CS_TYPE_TEXTLOCATOR 37
#define CS_TYPE_IMAGELOCATOR 38
#define CS_TYPE_UNITEXTLOCATOR 39

/* The number of built-in datatypes, and so the first user-defined code. */
#define CS_TYPE_COUNT 40

/* Bits of CS_DATAFMT.format. On the source of comn_chartonum, CS_DFMT_NULLTERM says that the text
 * ends at its terminator. */
#define CS_DFMT_NULLTERM 1  /* end text results in a NUL, which counts toward maxlength */
#define CS_DFMT_PADNULL 2   /* fill the rest of maxlength with NUL: text and binary results */
#define CS_DFMT_PADBLANK 4  /* fill the rest of maxlength with blanks: text results */
#define CS_DFMT_ESCQUOTE 32 /* text to text doubles each single quote */

/* CS_DATAFMT.precision or .scale: take the value from the source. */
#define CS_DFMT_FROMSOURCE (-2562)

/* Limits of exact numerics. */
#define CS_MIN_PREC 1
#define CS_MAX_PREC 77
#define CS_MIN_SCALE 0
#define CS_MAX_SCALE 77

/* Markers. */
#define CS_UNUSED (-99999)   /* an argument or value that is not used */
#define CS_LEN_NULLTERM (-9) /* the length of a NUL-terminated string */

/* Actions of property calls. */
#define CS_ACT_GET 33
#define CS_ACT_SET 34
#define CS_ACT_CLEAR 35

/* Locale categories. */
#define CS_LCTYPE_COLLATE 1
#define CS_LCTYPE_CTYPE 2
#define CS_LCTYPE_MESSAGE 3
#define CS_LCTYPE_MONETARY 4
#define CS_LCTYPE_NUMERIC 5
#define CS_LCTYPE_TIME 6
#define CS_LCTYPE_ALL 7

/* The context and the locale; their records stand in csintrn.h. */
typedef struct _cscontext CS_CONTEXT;
typedef struct _cslocale CS_LOCALE;

/* Describes one value on one side of a conversion. A conversion reads it and leaves it as it is, but
 * for the destination's in these: 64-bit integers to numeric leave 255 in a precision or scale of
 * CS_DFMT_FROMSOURCE, money to text makes a negative precision 0, and some members of locators change
 * it while they run (comnlib.h). */
typedef struct _cs_datafmt {
  CS_CHAR name[256]; /* not read */
  CS_INT namelen;    /* not read */
  CS_INT datatype;   /* datatype code; each conversion checks both sides */
  CS_INT format;     /* CS_DFMT_ bits, read on the destination side but for CS_DFMT_NULLTERM */
  CS_INT maxlength;  /* source: its length in bytes; destination: its capacity in bytes */
  CS_INT scale;      /* numeric destination: 0 to 77, or CS_DFMT_FROMSOURCE */
  CS_INT precision;  /* numeric destination: 1 to 77 likewise; text from money: its decimals */
  CS_INT status;     /* not read */
  CS_INT count;      /* not read */
  CS_INT usertype;   /* not read */
  CS_LOCALE *locale; /* locale of this side; null means the context's ctxlocale */
} CS_DATAFMT;

/* The message handed to the error callback of a context. */
typedef struct _cs_clientmsg {
  CS_INT severity;
  CS_MSGNUM msgnumber;
  CS_CHAR msgstring[1024];
  CS_INT msgstringlen; /* bytes */
  CS_INT osnumber;
  CS_CHAR osstring[1024];
  CS_INT osstringlen; /* bytes */
  CS_INT status;
  CS_BYTE sqlstate[8];
  CS_INT sqlstatelen; /* bytes */
} CS_CLIENTMSG;

/* Thread callbacks of the layers above. Each has the signature and the contract of the stub of the
 * same name in comnlib.h. */
typedef struct _cs_thread {
  CS_RETCODE (*create_mutex_fn)(CS_VOID **mutex);
  CS_RETCODE (*delete_mutex_fn)(CS_VOID *mutex);
  CS_RETCODE (*take_mutex_fn)(CS_VOID *mutex);
  CS_RETCODE (*release_mutex_fn)(CS_VOID *mutex);
  CS_RETCODE (*create_event_fn)(CS_VOID **event);
  CS_RETCODE (*delete_event_fn)(CS_VOID *event);
  CS_RETCODE (*signal_event_fn)(CS_VOID *event);
  CS_RETCODE (*reset_event_fn)(CS_VOID *event);
  CS_RETCODE (*waitfor_event_fn)(CS_VOID *event, CS_INT millisecs);
  CS_THRDID (*thread_id_fn)(void);
} CS_THREAD;

/*
 * The signature of every conversion.
 *
 * context   in   not null; its ctxlocale serves formats without a locale
 * srcfmt    in   type and length in bytes (maxlength) of the source; not null
 * src       in   the source value, at any address; not null
 * destfmt   in   type, capacity in bytes (maxlength), format bits, precision, scale; not null
 * dest      out  the destination, at any address, maxlength bytes; not null; owned by the caller
 * destlen   out  the length of the result in bytes; not null
 *
 * A type with a width takes its width whatever maxlength says; of a varchar or varbinary source the
 * length in the record counts, of other text and binary maxlength. Where `*destlen` exceeds what was
 * written (258 for a record, 35 for a numeric), a caller copies the record and not `*destlen` bytes.
 * A capacity below 0 is fatal or one of 0, as each family says. Text and binary without any bytes
 * convert to text, but to binary they are fatal, so a client tests for them. CS_DFMT_FROMSOURCE must
 * be set again before each call. docs/conversions.md has a table of what each status leaves behind.
 *
 * Returns CS_SUCCEED or one of the CS_CONV_ statuses, which may come with a usable result. A null
 * pointer or a datatype that the function does not serve is fatal: the check reports it and raises
 * signal 6; CS_FAIL if the application catches the signal. No conversion sends a message. Each
 * returns through the return-code trace, the conversions from integers aside.
 */
typedef CS_RETCODE (*CS_CONV_FUNC)(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* Callbacks of a context: the error callback, and the allocator of the layers above. */
typedef CS_RETCODE (*CS_CTXERR_FUNC)(CS_CONTEXT *context, CS_CLIENTMSG *message);
typedef CS_VOID *(*CS_MALLOC_FUNC)(CS_CONTEXT *context, CS_UINT size);
typedef CS_RETCODE (*CS_MFREE_FUNC)(CS_CONTEXT *context, CS_VOID *block);

ZRV_END_DECLS

#endif
