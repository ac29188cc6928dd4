/*
 * csintrn.h - the context, the data that contexts share, the process-wide record, and the internal
 * operations and tables of the frame and of conversion dispatch.
 *
 * The layers above allocate a context, zeroed, set ctxlocale and what else is theirs, and hand it
 * to com_conv_init and com_null_init. What is marked ZRV_PRIVATE here is for the sibling libraries
 * of the same release only.
 */
#ifndef ZRV_CSINTRN_H
#define ZRV_CSINTRN_H

#include <stdio.h>

#include "cspublic.h"

ZRV_BEGIN_DECLS

/* A context's private copy of the conversion matrix. */
typedef struct _csconverttbl {
  CS_CONV_FUNC *cvttbl; /* cvtdim * cvtdim cells, row by source, owned by the context */
  int cvtdim;           /* 40; 0 after com_conv_free */
} CsConvertTbl;

/* One user conversion. The list has two levels: `nextsrc` chains one record for each source type,
 * and `nextdest` chains from each of those the further records of the same source type. `nextsrc`
 * is meaningful only on the first record of a `nextdest` chain. */
typedef struct _csusrcvtfunc {
  CS_INT srctype;
  CS_INT desttype;
  CS_CONV_FUNC cvtfunc;
  struct _csusrcvtfunc *nextdest;
  struct _csusrcvtfunc *nextsrc;
} CsUsrCvtFunc;

/* How a default value is padded (CsDefVal.dvpadtype). */
#define COM_PAD_CHAR 1
#define COM_PAD_BIN 2
#define COM_PAD_NONE 3
#define COM_PAD_UNICHAR 4

/* One default value. */
typedef struct _csdefval {
  CS_VOID *dventity; /* the bytes; in a context an owned copy */
  CS_INT dvsize;     /* bytes that count at dventity */
  CS_INT dvpadtype;  /* COM_PAD_ */
} CsDefVal;

/* A context's private default values. */
typedef struct _csnulltbl {
  CsDefVal *nullvals; /* nulldim records, owned by the context */
  int nulldim;        /* 40; 0 after com_null_free */
} CsNullTbl;

/* The default value of one user-defined type. */
typedef struct _csusrnull {
  CS_INT dttype;
  CS_VOID *dventity; /* owned; null for a default of length 0 */
  CS_INT dvsize;     /* bytes */
  struct _csusrnull *nextnull;
} CsUsrNull;

/* A locale: one cache for each category. Two locales have the same character set when their
 * ctypeptr values are equal, or when the character sets of those caches are. */
struct _cslocale {
  CS_VOID *collateptr;
  CS_VOID *ctypeptr;
  CS_VOID *messageptr;
  CS_VOID *monetaryptr;
  CS_VOID *numericptr;
  CS_VOID *timeptr;
  CS_VOID *ctxptr;
  struct _cslocale *next;
};
typedef struct _cslocale CsLocale;

/* What all contexts share. */
typedef struct _csctxglobals {
  CS_INT cmg_count;
  CS_VOID *cmg_lcache;
  CS_VOID *cmg_chardesc;
  CS_LOCALE *cmg_locale;
  CS_THRDRES *cmg_mtx;
  CS_VOID *cmg_datetime;
  CS_VOID *cmg_money;
  CS_VOID *cmg_numeric;
  CS_VOID *cmg_utf8_charset;
  CS_VOID *cmg_utf8_ctypeptr;
  CS_VOID *cmg_message; /* heads the list of message records */
  CS_VOID *lm;
  CS_VOID *mnem_db;
  CS_INT max_mnem_strlen;
  CS_VOID *ucs2_oid;
  CS_VOID *ctxoids;
  CS_VOID *csicorep;
} CsCtxGlobals;

typedef struct _csconfig CsConfig;
typedef struct _csconfig CS_CONFIG;
typedef struct _cscfgchain CS_CFGCHAIN;

/* The context. Used by one thread at a time. Slots of the layers above are only carried here. */
struct _cscontext {
  CS_INT ctxtag;              /* the layers above */
  CS_INT ctxstatus;           /* the layers above */
  CS_INT ctxversion;          /* set by the layers above */
  CS_LOCALE *ctxlocale;       /* serves every format without a locale */
  CS_LOCALE *ctxdeflocale;    /* a locale block released with the locales */
  CsCtxGlobals *ctxglobals;   /* shared by all contexts */
  CsConvertTbl ctxcvttbl;     /* filled by com_conv_init */
  CsUsrCvtFunc *ctxusrcvttbl; /* user conversions */
  CsNullTbl ctxnulls;         /* filled by com_null_init */
  CsUsrNull *ctxusrnulls;     /* user default values */
  CS_THREAD *ctxthread;       /* thread callbacks */
  int ctxintlerr;             /* last failing reader status, goes with COM_INTL_ERROR */
  CS_VOID *ctxctctx;          /* the layers above */
  CS_VOID *ctxnetwork;        /* the layers above */
  CS_VOID *ctxdsctx;          /* the layers above */
  CS_VOID *ctxssctx;          /* the layers above */
  CS_VOID *ctxopenserver;     /* the layers above */
  CS_VOID *ctxcsctx;          /* the layers above */
  CS_THRDRES *ctxmtx;         /* context mutex */
  CS_VOID *usercharconv;      /* user character-set conversions */
  CsConfig *ctxconfig;        /* configuration */
  CS_MALLOC_FUNC ctxmalloc;   /* allocator of the layers above */
  CS_MFREE_FUNC ctxfree;      /* its release */
  CS_CTXERR_FUNC ctxerrfunc;  /* error callback */
  CS_VOID *ctxcomerrhan;      /* message handle */
  CS_VOID *ctxcsifactory;     /* the layers above */
  CS_VOID *ctxcclctx;         /* crypto context */
  CS_VOID *ctxssfsctx;        /* secure store context */
};
typedef struct _cscontext CsContext;

/* Slots of the layers above in the process-wide record; this library only clears them. */
typedef struct _csdsglobal {
  CS_VOID *slot;
} CsDsGlobal;
typedef struct _csnetglobal {
  CS_VOID *slot;
} CsNetGlobal;
typedef struct _csasyncglobal {
  CS_VOID *slot;
} CsAsyncGlobal;
typedef struct _csappctxglobal {
  CS_VOID *slot;
} CsAppCtxGlobal;
typedef struct _blksrvlibtable BlkSrvLibTable;
typedef CS_RETCODE (*CS_ACCESS_FUNC)(CS_VOID *argument);

/* The process-wide, reference-counted record. */
typedef struct _csappglobal {
  CS_INT ag_subscribers[4]; /* one counter a layer; all 0 at the final drop */
  CS_INT ag_state;
  CS_INT ag_accesscnt; /* reference count */
  CsDsGlobal ag_dsglobal;
  CsNetGlobal ag_netglobal;
  CsAsyncGlobal ag_asyncglobal;
  CS_ACCESS_FUNC ag_accessfunc;
  CS_VOID *ag_platformptr;
  CS_THREAD *ag_ctxthread; /* the thread table given at the first access */
  CS_THRDRES *ag_mtx;
  CsAppCtxGlobal ag_appctxglobal;
  CS_CFGCHAIN *ag_cfgchain; /* head of the configuration chain */
  BlkSrvLibTable *ag_blk_osfncs;
  CS_CONTEXT *ag_ctxglobal;
} CsAppGlobal;

/* The flag bit of com_appglobal_alloc and com_appglobal_drop that selects the static record. */
#define COM_APPGLOBAL_STATIC 1

/* One frame of a stack walk. */
typedef struct _comn_frame_info {
  CS_VOID *fi_address;      /* the return address */
  const CS_CHAR *fi_symbol; /* nearest symbol, null if none; belongs to the dynamic linker */
  size_t fi_offset;         /* offset from the symbol, or from the module without one, in bytes */
  const CS_CHAR *fi_module; /* the module's path, or "<unknown>" */
  CS_CHAR fi_args[128];     /* five words behind the return address, or empty */
} COMN_FRAME_INFO;

/* ---- values as descriptors ---- */

typedef struct __sqlxtype {
  CS_INT xtypeid;
  CS_SMALLINT xdbid;
  CS_SMALLINT xstatus;
} __SQLXTYPE;

/* One value: the working descriptor of the exact numerics, of date arithmetic and of the
 * cast-context conversions. What is said to be the caller's is only carried. */
typedef struct constant {
  CS_INT len;          /* bytes at `value`; on a destination the length of the result */
  CS_BYTE type;        /* protocol datatype number, the caller's */
  CS_BYTE rsrvdpad[3]; /* reserved */
  CS_INT maxlen;       /* capacity of a destination in bytes */
  CS_BYTE prec;        /* decimal digits of a numeric in all */
  CS_BYTE scale;       /* digits right of its decimal point */
  CS_BYTE newtype;     /* the caller's */
  CS_BYTE conomnistat; /* the caller's */
  CS_SMALLINT cvarno;  /* the caller's */
  CS_SMALLINT constat; /* the caller's */
  CS_BYTE constat2;    /* the caller's */
  CS_BYTE constat3;    /* the caller's */
  CS_BYTE conspare[2]; /* reserved */
  void *locale;        /* the caller's */
  CS_BYTE *value;      /* the bytes of the value, not owned */
  __SQLXTYPE xtype;    /* the caller's */
  void *jobj;          /* the caller's */
  CS_INT constat6;     /* the caller's */
  CS_INT constat7;     /* the caller's */
} __CONSTANT;

/* ---- frame ---- */

/* Variables are one object for the library and the program: one that defines an object of such a
 * name for itself takes it over (ARCHITECTURE.md, "Linkage", lists them all with what happens). */
extern ZRV_PRIVATE CS_INT Com_trace_enable;           /* trace level, 1 to 3; starts at 1 */
extern ZRV_PRIVATE int full_abort;                    /* 1 selects the hard abort */
extern ZRV_PRIVATE FILE *Com_fp;                      /* debug file; null means standard output */
extern ZRV_PRIVATE const ComErrString Com_errors[17]; /* the general codes by name */
extern ZRV_PRIVATE CsAppGlobal Application_global;    /* the static process-wide record */
extern ZRV_PRIVATE const CS_CHAR comn__Vdate[];       /* the identification line of the build */

/* Ends the process after a failed check: with full_abort 1 it closes standard error and calls
 * abort; otherwise it flushes standard error and raises signal 6, so that an application which
 * catches the signal continues behind the check. */
ZRV_PRIVATE void com__abort(void) ZRV_NOEXCEPT;

/* The name of a general return code as it stands in Com_errors, or null. Static storage. */
ZRV_PRIVATE const CS_CHAR *com__errfind(CS_RETCODE error) ZRV_NOEXCEPT;

/* The stack depth by which the trace indents its lines: always 0 in this build. */
ZRV_PRIVATE CS_INT com__get_stack_depth(void) ZRV_NOEXCEPT;

/* The identification line of the build. Static storage. */
ZRV_PRIVATE char *comn__getVdate(void) ZRV_NOEXCEPT;

/*
 * Describes the stack frame at `fp`.
 *
 * fp    in   a frame pointer; any address, memory that is not mapped is not read
 * info  out  the frame; not null
 * next  out  the saved frame pointer, the caller's frame; may be null
 *
 * Returns CS_SUCCEED; CS_FAIL when the saved frame pointer or the return address is 0, when the
 * saved frame pointer or `fp` is 4095 or below, or when the frame cannot be read.
 */
ZRV_PRIVATE CS_RETCODE comn__get_frame_info(CS_VOID *fp, COMN_FRAME_INFO *info,
                                            CS_VOID **next) ZRV_NOEXCEPT;

/* What comn__sanitize_name does to a name; any other value leaves it as it is. */
#define COM_SANITIZE_LOWER 1
#define COM_SANITIZE_UPPER 2

/* Folds the case of a name in place with the C library's tolower or toupper, up to its NUL or up to
 * and including the byte at position `namesize`: a name without a NUL has namesize + 1 bytes. */
ZRV_PRIVATE void comn__sanitize_name(CS_INT sanitize, CS_CHAR *sname, CS_INT namesize) ZRV_NOEXCEPT;

/* ---- conversion dispatch ---- */

/* The conversion matrix, row by source, column by destination; null where no conversion exists. */
extern ZRV_PRIVATE const CS_CONV_FUNC Com__cnvrt_array[CS_TYPE_COUNT][CS_TYPE_COUNT];

/* Hands out the matrix, which must not be written, and its dimension. */
ZRV_PRIVATE void com__get_ctbl(CS_CONV_FUNC **cvt_array, int *cvt_dim) ZRV_NOEXCEPT;

/* Releases all user conversions of a context and clears the list. Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE com__conv_usr_free(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* The record of a user conversion, or null. It belongs to the context. */
ZRV_PRIVATE CsUsrCvtFunc *com__conv_usr_struct(CS_CONTEXT *context, CS_INT srctype,
                                               CS_INT desttype) ZRV_NOEXCEPT;

/* The function of a user conversion, or null. */
ZRV_PRIVATE CS_CONV_FUNC com__conv_usr_func(CS_CONTEXT *context, CS_INT srctype,
                                            CS_INT desttype) ZRV_NOEXCEPT;

/* Installs a user conversion: replaces the function of an existing record or appends a new one.
 * Returns CS_SUCCEED, or CS_MEM_ERROR with the list unchanged. */
ZRV_PRIVATE CS_RETCODE com__conv_usr_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                             CS_CONV_FUNC newfunc) ZRV_NOEXCEPT;

/* com_null_get, com_null_set and com_null_reinstall for the types 40 and above, and the release of
 * all user defaults with their bytes. See comnlib.h for what they share with the public calls. */
ZRV_PRIVATE CS_RETCODE com__null_usr_get(CS_CONTEXT *context, CS_DATAFMT *destfmt, CS_VOID *dest,
                                         CS_INT destlen, CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__null_usr_set(CS_CONTEXT *context, CS_INT nulltype, CS_VOID *null,
                                         CS_INT nulllen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__null_usr_reinstall(CS_CONTEXT *context, CS_INT nulltype) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__null_usr_free(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* The built-in default values, one row a datatype code, and the entities that they point at. */
extern ZRV_PRIVATE const CsDefVal Comv_values[CS_TYPE_COUNT];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_CHAR[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_LONGCHAR[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_TEXT[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_SENSITIVITY[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_BOUNDARY[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_XML[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_BINARY[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_LONGBINARY[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_IMAGE[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_UNICHAR[1];
extern ZRV_PRIVATE const CS_BYTE Comp_CS_UNITEXT[1];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_TINYINT[1];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_BIT[1];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_SMALLINT[2];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_USHORT[2];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_USMALLINT[2];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_INT[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_REAL[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_LONG[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_VOID[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_BLOB[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_DATE[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_TIME[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_UINT[4];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_FLOAT[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_DATETIME[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_DATETIME4[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_MONEY[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_MONEY4[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_BIGINT[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_UBIGINT[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_BIGDATETIME[8];
extern ZRV_PRIVATE const CS_BYTE Comv_CS_BIGTIME[8];
extern ZRV_PRIVATE const CS_NUMERIC Comv_CS_NUMERIC;
extern ZRV_PRIVATE const CS_NUMERIC Comv_CS_DECIMAL;
extern ZRV_PRIVATE const CS_VARBINARY Comv_CS_VARBINARY;
extern ZRV_PRIVATE const CS_VARCHAR Comv_CS_VARCHAR;
extern ZRV_PRIVATE const CS_LOCATOR Comv_CS_LOCATOR;

/*
 * The pads: each ends a text or binary result. `srclen` is the length in bytes of the data that
 * should fit, `*destlen` where the data ends now; both are bytes, also for 16-bit text. A negative
 * length counts as 0. A null pointer is fatal, CS_FAIL.
 *
 * comn__padchar     obeys CS_DFMT_NULLTERM, CS_DFMT_PADNULL and CS_DFMT_PADBLANK. It writes only
 *                   from `*destlen` up to destfmt->maxlength, and counts nothing when maxlength
 *                   does not exceed `*destlen`. Returns CS_SUCCEED; CS_CONV_PADCONFLICT with both pad bits,
 *                   nothing written; CS_CONV_OVERFLOW when the data (with its terminator) has no
 *                   room: the last byte of the capacity is then NUL if a terminator was asked for,
 *                   and `*destlen` is left as it was
 * comn__padunichar  is comn__padchar in units of two bytes; an odd last byte stays untouched and is
 *                   not counted
 * comn__padbin      obeys CS_DFMT_PADNULL alone. Where maxlength exceeds `srclen` it fills from
 *                   `srclen` on, and `*destlen` becomes maxlength whatever it was. Returns
 *                   CS_SUCCEED
 */
ZRV_PRIVATE CS_RETCODE comn__padchar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest,
                                     CS_INT *destlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__padbin(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest,
                                    CS_INT *destlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__padunichar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest,
                                        CS_INT *destlen) ZRV_NOEXCEPT;

/* Trims white space (com_isspace) from the end and then from the start of a hexadecimal text, and
 * skips a leading "0x" or "0X", by moving `*src` and `*srclen` (bytes). A null pointer, or a
 * `*srclen` below 1 on entry, is fatal and changes nothing. */
ZRV_PRIVATE void comn__hex2binbytes(CS_CHAR **src, CS_INT *srclen) ZRV_NOEXCEPT;

/* ---- character tests ---- */

/* One character of a type plane. */
typedef struct char_map {
  CS_BYTE char_upper; /* the upper-case form */
  CS_BYTE char_lower; /* the lower-case form */
  CS_BYTE char_lex;
  CS_BYTE char_type; /* CS_CTYPE_ bits */
} CHAR_MAP;

#define CS_CTYPE_UPPER 1
#define CS_CTYPE_LOWER 2
#define CS_CTYPE_ALPHA 3
#define CS_CTYPE_DIGIT 4
#define CS_CTYPE_SPACE 8
#define CS_CTYPE_XDIGIT 16
#define CS_CTYPE_PUNCT 32
#define CS_CTYPE_GRAPH 64
#define CS_CTYPE_LEAD 128 /* the first byte of two, see charset.h */

/* The char_lex of a currency symbol. */
#define CS_LEX_CURRENCY 64

extern ZRV_PRIVATE const CHAR_MAP Com_Iso1_charmap[256];
extern ZRV_PRIVATE const CHAR_MAP *const Com_charmap;

ZRV_END_DECLS

#endif
