/*
 * comloc.h - localisation: the identity of everything that is loaded, and the locales that bind it
 * together.
 *
 * An object identifier is a dotted string of decimal arcs, its BER encoding, and the local names
 * under which the installation knows it. The file objectid.dat lists them; a program loads it once
 * and stores the table in ctxoids of the data that its contexts share. From then on two objects are
 * the same exactly when they have the same CsOID record. Names are compared as exact bytes, without
 * case folding. The table is not changed once it is loaded, so look-ups need no lock.
 *
 * A null pointer where none is allowed, and an argument that a comment calls fatal, is a
 * programmer's fault, as in comnlib.h: the function then returns CS_FAIL (null or 0) and has changed
 * nothing. Unless a comment says otherwise the context must not be null, and where a function
 * searches, neither must its ctxglobals nor their ctxoids.
 */
#ifndef ZRV_COMLOC_H
#define ZRV_COMLOC_H

#include "csintrn.h"
#include "zrvunic.h"

ZRV_BEGIN_DECLS

struct intl_locfile; /* an open section file, see zrvintl.h */

/* ---- identifiers ---- */

/* A local name. */
typedef struct _csstringlist {
  CS_CHAR *string; /* owned, not NUL-terminated; null for an empty name */
  CS_INT len;      /* bytes */
  struct _csstringlist *next;
} CS_STRING_LIST;

/* The bytes allocated for each encoding, and so the most that one can have. */
#define COM_OID_BER_SIZE 255

/* One object identifier. */
typedef struct _csoid {
  CS_CHAR *oidstring;        /* the dotted text, owned, not NUL-terminated */
  CS_INT oidnamelen;         /* its length in bytes */
  CS_BYTE *oidber;           /* the encoding, owned: COM_OID_BER_SIZE bytes, cleared behind it */
  CS_INT oidberlen;          /* its length in bytes, tag and length octets included */
  CS_STRING_LIST *oidlnames; /* the local names in the order of the file, the canonical one first */
  CS_INT oidnumlnames;       /* their number */
  struct _csoid *oidnext;    /* the next identifier of the class */
} CsOID;

/* The classes of identifiers, and the sections of objectid.dat that list them. */
#define COM_OID_CHARSET 0
#define COM_OID_NUMERIC 1
#define COM_OID_MONEY 2
#define COM_OID_DATETIME 3
#define COM_OID_COLLATE 4
#define COM_OID_NATLANG 5
#define COM_OID_INTEGER2 6
#define COM_OID_INTEGER4 7
#define COM_OID_INTEGER8 8
#define COM_OID_FLOAT4 9
#define COM_OID_FLOAT8 10
#define COM_OID_SECMECH 11
#define COM_OID_CLASS_COUNT 12

/* All identifiers: a list for each class. Every record that a look-up hands out belongs to the table
 * and lives until comn_intl_drop_globalid. */
typedef struct _csoidtable {
  CsOID *ot_oid[COM_OID_CLASS_COUNT];
} CS_OID_TABLE;

/* A row of a table of keys and texts. The last row has the key CS_UNUSED and no text. */
typedef struct _csstrings {
  CS_INT key;
  const char *string;
} CS_STRINGS;

/* The classes by name: what tells them to readers, and the same once more, which the loader uses. */
extern ZRV_PRIVATE const CS_STRINGS Com__classmap[COM_OID_CLASS_COUNT + 1];
extern ZRV_PRIVATE const CS_STRINGS Com__dup_classmap[COM_OID_CLASS_COUNT + 1];

/* The format codes of the capability exchange, by the local names that objectid.dat has for them. */
extern ZRV_PRIVATE const CS_STRINGS Com__tds_lclname_map[15];

/*
 * Loads objectid.dat of the installation.
 *
 * context     in   its ctxintlerr receives the status of a reader that failed; its globals are not
 *                  looked at
 * oidtablep   out  the table, to be stored in ctxoids and released with comn_intl_drop_globalid;
 *                  null on failure
 *
 * Sections that name no class are skipped. An identifier that stands more than once in a class keeps
 * one record, with the names in the order of the file. Returns CS_SUCCEED; CS_MEM_ERROR; CS_FAIL for
 * an identifier that cannot be encoded (see comn__encode_oid) and for a path that does not fit;
 * COM_LOCFILE_ERROR when the file cannot be opened; COM_INTL_ERROR when the reader or the search for
 * the home directory failed. The file is closed on every path.
 */
ZRV_API CS_RETCODE comn_intl_load_globalid(CS_CONTEXT *context,
                                           CS_OID_TABLE **oidtablep) ZRV_NOEXCEPT;

/* Releases a table and all its records; null is allowed. The context is not looked at. Returns
 * CS_SUCCEED. */
ZRV_API CS_RETCODE comn_intl_drop_globalid(CS_CONTEXT *context,
                                           CS_OID_TABLE *oidtablep) ZRV_NOEXCEPT;

/* The directions of comn_globalid. */
#define COM_OID_TO_NAME 1
#define COM_NAME_TO_OID 2

/*
 * Looks an identifier up by its encoding, or by one of its names.
 *
 * COM_OID_TO_NAME: the first record of the twelve classes, in ascending order, with the encoding of
 * `*gidp`.
 *   gidp       in   a record, of which only oidber and oidberlen are read
 *   classp     out  the class that was found; it is no filter
 *   nameid     in   the position of the wanted name, from 1; CS_UNUSED without `localnp`
 *   localnp    out  the name, not NUL-terminated; null asks for class and count alone
 *   len        in   bytes at `localnp`; CS_UNUSED without it
 *   numnamesp  out  the number of names of the record; may be null
 *   outlen     out  the length of the name, also when it does not fit; may be null, must be without
 *                   `localnp`
 * Returns CS_SUCCEED; CS_FAIL when there is no such record (no output is set), when it has fewer
 * names (`*classp` and `*numnamesp` are set), and when the name is longer than `len` (all but the
 * name is set). Fatal: a `nameid` below 1, a negative `len`, and what the list above excludes.
 *
 * COM_NAME_TO_OID: the first record that has a name. A name matches also when `len` counts a NUL at
 * its end.
 *   gidp       out  the record, unchanged without a match
 *   classp     in   the class to search; null or CS_UNUSED in it searches all in ascending order
 *   nameid     in   CS_UNUSED
 *   localnp    in   the name
 *   len        in   its length, or CS_LEN_NULLTERM
 *   numnamesp, outlen   null
 * Returns CS_SUCCEED; CS_FAIL without a match and for a length below 1. Fatal: a class outside the
 * twelve, and what the list above excludes.
 *
 * Any other `type` is fatal.
 */
ZRV_API CS_RETCODE comn_globalid(CS_CONTEXT *context, CS_INT type, CsOID **gidp, CS_INT *classp,
                                 CS_INT nameid, CS_CHAR *localnp, CS_INT len, CS_INT *numnamesp,
                                 CS_INT *outlen) ZRV_NOEXCEPT;

/*
 * Finds the record with an encoding, as it arrives from a peer.
 *
 * oidclass  in   the class to search, or CS_UNUSED for all in ascending order
 * gid       in   the encoding, tag and length octets included; may be null
 * gidlen    in   its length in bytes
 * oidp      out  the record; null when `gid` is null or `gidlen` 0, which is a success without a
 *                search; unchanged without a match
 *
 * Returns CS_SUCCEED, or CS_FAIL without a match. A class outside the twelve is fatal.
 */
ZRV_API CS_RETCODE comn_gid_to_oid(CS_CONTEXT *context, CS_INT oidclass, CS_BYTE *gid,
                                   CS_INT gidlen, CsOID **oidp) ZRV_NOEXCEPT;

/* True when two records have the same encoding. A null record is the same as one without an
 * encoding. The context is not looked at. */
ZRV_API CS_BOOL comn_oid_cmp(CS_CONTEXT *context, CsOID *oid1, CsOID *oid2) ZRV_NOEXCEPT;

/* The record of a format code of the capability exchange, in one class. CS_SUCCEED; CS_FAIL, `*oidp`
 * unchanged, for a code that Com__tds_lclname_map does not have and for a name that the class does
 * not have. A class outside the twelve is fatal. */
ZRV_API CS_RETCODE comn_tds_to_oid(CS_CONTEXT *context, CS_INT oidclass, CS_INT tdsval,
                                   CsOID **oidp) ZRV_NOEXCEPT;

/* The format code of a record, by the first of its names. CS_SUCCEED; CS_FAIL, `*tdsval` CS_UNUSED,
 * for a record without names, a name of more than 254 bytes and one that Com__tds_lclname_map does
 * not have. The table of identifiers is not looked at, nor is the context. */
ZRV_API CS_RETCODE comn_oid_to_tds(CS_CONTEXT *context, CsOID *oid, CS_INT *tdsval) ZRV_NOEXCEPT;

/* The record of a locale's character set (CS_LOCSTR_CHARSET, the name in its ctypeptr) or language
 * (CS_LOCSTR_LANGUAGE, the name in its messageptr). CS_SUCCEED; CS_FAIL, `*oidp` unchanged, when the
 * class does not have the name or the name has more than 255 bytes. Any other `type` is fatal. */
ZRV_API CS_RETCODE comn_locale_to_oid(CS_CONTEXT *context, CS_LOCALE *lp, CS_INT type,
                                      CsOID **oidp) ZRV_NOEXCEPT;

/* The key of a text in a table: CS_SUCCEED, or CS_FAIL with `*idp` CS_UNUSED. And the text of a key:
 * CS_SUCCEED with the table's own text, or CS_FAIL with `*strp` null. The first row that matches
 * counts. The context is not looked at. */
ZRV_API CS_RETCODE comn_string_to_id(CS_CONTEXT *context, const CS_STRINGS *map, CS_CHAR *str,
                                     CS_INT *idp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_id_to_string(CS_CONTEXT *context, const CS_STRINGS *map, CS_INT id,
                                     CS_CHAR **strp) ZRV_NOEXCEPT;

/*
 * Encodes a dotted text as a BER OBJECT IDENTIFIER.
 *
 * objectid  in   decimal arcs with points between; several points count as one
 * idlen     in   its length in bytes; a NUL ends it before. A negative length is fatal
 * lcl_oid   out  oidber, a new block from comn_malloc, and oidberlen; what stood there before is
 *                overwritten, never freed; unchanged on failure
 *
 * An arc is what strtoul makes of it, within 32 bits: 0 for a text that is no number, 4294967295 for
 * anything above it. The first byte of the content is 40 times the first arc plus the second, kept
 * to eight bits. The length takes one octet up to 123 further bytes of content and two from 124 on,
 * the most being 251. Returns CS_SUCCEED; CS_FAIL for fewer than two arcs and for more content;
 * CS_MEM_ERROR. The context is not looked at.
 */
ZRV_PRIVATE CS_RETCODE comn__encode_oid(CS_CONTEXT *context, CS_CHAR *objectid, CS_INT idlen,
                                        CsOID *lcl_oid) ZRV_NOEXCEPT;

/* The loader's steps: the whole file into a table; one section, which `file` has just begun, into
 * its class; the values of one entry behind the names of a record. Each returns as
 * comn_intl_load_globalid and leaves in its output what it has read so far. */
ZRV_PRIVATE CS_RETCODE comn__read_oidfile(CS_CONTEXT *context, CS_OID_TABLE *oidtable) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__read_oidsection(CS_CONTEXT *context, struct intl_locfile *file,
                                             CS_OID_TABLE *oidtable, CS_INT oidclass) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__read_localnames(CS_CONTEXT *context, struct intl_locfile *file,
                                             CsOID *oid) ZRV_NOEXCEPT;

/* A new record with a copy of a NUL-terminated dotted text and its encoding, without names. CS_SUCCEED,
 * CS_MEM_ERROR, or CS_FAIL as comn__encode_oid; `*oidp` is null on failure. */
ZRV_PRIVATE CS_RETCODE comn__new_oid(CS_CONTEXT *context, CS_CHAR *oidstring,
                                     CsOID **oidp) ZRV_NOEXCEPT;

/* A new element with a copy of a name of `len` bytes; a null name or a length below 1 gives an empty
 * element. CS_SUCCEED, or CS_MEM_ERROR with `*elementp` null. */
ZRV_PRIVATE CS_RETCODE comn__newstring(CS_CONTEXT *context, CS_CHAR *string, CS_INT len,
                                       CS_STRING_LIST **elementp) ZRV_NOEXCEPT;

/* Gives a record to the table: as the last of its class, or, when the class has its encoding
 * already, its names to the record that is there and itself to the allocator. Returns CS_SUCCEED. A
 * class outside the twelve is fatal. */
ZRV_PRIVATE CS_RETCODE comn__add_oid(CS_CONTEXT *context, CS_OID_TABLE *oidtable, CS_INT oidclass,
                                     CsOID *oid) ZRV_NOEXCEPT;

/* Moves the names of `from` behind those of `to`. Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE comn__cat_localnames(CS_CONTEXT *context, CsOID *to,
                                            CsOID *from) ZRV_NOEXCEPT;

/* True when a record has a name, as the name look-up of comn_globalid compares them: `len` is the
 * length of the probe. */
ZRV_PRIVATE CS_BOOL comn__find_lclname(CsOID *oid, CS_CHAR *localnp, CS_INT len) ZRV_NOEXCEPT;

/* The two directions of comn_globalid. */
ZRV_PRIVATE CS_RETCODE comn__oidtoname(CS_CONTEXT *context, CsOID **gidp, CS_INT *classp,
                                       CS_INT nameid, CS_CHAR *localnp, CS_INT len,
                                       CS_INT *numnamesp, CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__nametooid(CS_CONTEXT *context, CsOID **gidp, CS_INT *classp,
                                       CS_INT nameid, CS_CHAR *localnp, CS_INT len,
                                       CS_INT *numnamesp, CS_INT *outlen) ZRV_NOEXCEPT;

/* ---- conversion acknowledgements ---- */

/* What two peers have agreed on, each format by its record, borrowed from the table; null where
 * nothing was agreed. */
typedef struct _csconvack {
  CsOID *ca_int2;
  CsOID *ca_int4;
  CsOID *ca_int8;
  CsOID *ca_flt4;
  CsOID *ca_flt8;
  CsOID *ca_char;
  CsOID *ca_lang;
  CsOID *ca_sort;
  CsOID *ca_datetime;
  CsOID *ca_money;
  CsOID *ca_numeric;
} CS_CONVACK;

/* The functions that turn each datatype into the agreed wire format and back; of the layers above. */
typedef struct _csdatafuncs {
  CS_CONV_FUNC df_xdrsend[CS_TYPE_COUNT];
  CS_CONV_FUNC df_xdrrecv[CS_TYPE_COUNT];
} CS_DATAFUNCS;

/*
 * Builds an acknowledgement.
 *
 * convack               out  all null on failure
 * int2type .. flt8type  in   format codes, as comn_tds_to_oid takes them; int8type is not looked at
 *                            and ca_int8 stays null
 * charset .. numlen     in   local names with their lengths in bytes; a length below 1 leaves the
 *                            field null, whatever the name
 *
 * The fields are filled in the order int2, int4, flt4, flt8, character set, language, sort order,
 * date, money, numeric. Returns CS_SUCCEED, or what the first failing look-up returns.
 */
ZRV_API CS_RETCODE comn_init_convack(CS_CONTEXT *context, CS_CONVACK *convack, CS_INT int2type,
                                     CS_INT int4type, CS_INT int8type, CS_INT flt4type,
                                     CS_INT flt8type, CS_CHAR *charset, CS_INT charlen,
                                     CS_CHAR *lang, CS_INT langlen, CS_CHAR *sort, CS_INT sortlen,
                                     CS_CHAR *datetime, CS_INT datelen, CS_CHAR *money,
                                     CS_INT mnylen, CS_CHAR *numeric, CS_INT numlen) ZRV_NOEXCEPT;

/* Copies the eleven pointers of `from` to `to`; the records stay those of the table. The context is
 * not looked at. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_copy_convack(CS_CONTEXT *context, CS_CONVACK *from,
                                     CS_CONVACK *to) ZRV_NOEXCEPT;

/* True when two acknowledgements agree on the integers, the floats and the character set, by
 * comn_oid_cmp; the other five fields take no part. The context is not looked at. */
ZRV_API CS_BOOL comn_cmp_convack(CS_CONTEXT *context, CS_CONVACK *convack1,
                                 CS_CONVACK *convack2) ZRV_NOEXCEPT;

/* Print a record through comn_debug_print; the record may be null. The context is not looked at.
 * They return CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE comn_dbg_print_oid(CS_CONTEXT *context, CsOID *oid) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn_dbg_print_oidtable(CS_CONTEXT *context,
                                               CS_OID_TABLE *oidtable) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn_dbg_print_convack(CS_CONTEXT *context,
                                              CS_CONVACK *convack) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn_dbg_print_datafuncs(CS_CONTEXT *context,
                                                CS_DATAFUNCS *datafuncs) ZRV_NOEXCEPT;

/* ---- locales ---- */

/* What a locale name stands for: the record behind each category pointer of a CS_LOCALE. The names
 * are owned, NUL-terminated copies, their lengths without the terminator; the loaded objects are
 * borrowed from the lists that the contexts share. */
typedef struct _csloccache {
  CS_CHAR *locname; /* null in a cache that was derived from another */
  CS_INT locnamelen;
  CS_CHAR *charname; /* character set */
  CS_INT charnamelen;
  struct _cschardesc *locchardesc;
  CS_CHAR *sortname; /* sort order */
  CS_INT sortnamelen;
  struct _cssortdesc *locsortorder;
  CS_CHAR *langname; /* language */
  CS_INT langnamelen;
  struct _csmessage *locmessage;
  CS_CHAR *datename; /* date format, may be null */
  CS_INT datenamelen;
  struct _csdateinfo *locdateinfo;
  CS_CHAR *numname; /* number format, may be null */
  CS_INT numnamelen;
  struct _csnuminfo *locnuminfo;
  CS_CHAR *monname; /* money format, may be null */
  CS_INT monnamelen;
  struct _csmoninfo *locmoninfo;
  struct _csloccache *locnext; /* the next cache of the list */
} CsLocCache;

/* The names that a location cache has. */
#define CS_LOCSTR_CHARSET 1
#define CS_LOCSTR_LANGUAGE 2
#define CS_LOCSTR_SORTORDER 3
#define CS_LOCSTR_LANG_CHARSET 4 /* language, ".", character set */

/*
 * Copies a name out of the cache of a category.
 *
 * lctype  in   the category, CS_LCTYPE_COLLATE to CS_LCTYPE_TIME; its pointer must not be null
 * type    in   which name, CS_LOCSTR_
 * buf     out  the name, not NUL-terminated
 * buflen  in   bytes at `buf`
 * outlen  out  the length of the name
 *
 * Returns CS_SUCCEED, or CS_FAIL with nothing set when `buflen` is smaller than the name. Any other
 * `lctype` or `type` is fatal.
 */
ZRV_API CS_RETCODE com_intl_getstr(CsLocale *locale, CS_INT lctype, CS_INT type, CS_CHAR *buf,
                                   CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;

/* ---- conversion between character sets ----
 *
 * Text goes from any set into any other through Unicode, by the converters of libzrvunic (zrvunic.h).
 * Text that is pure ASCII is copied without one. A pair of sets can have an algorithm of the user's
 * instead. What has no counterpart becomes "?" and is not reported; text that does not fit is cut at a
 * character. Conversions send no message. Two sets are the same when their records (CsCharDesc) are.
 */

/* A character set by number and by name, and its converter. */
typedef struct csid_csname {
  int csid;               /* the number, as cs_id of CHAR_ATTRIB has it */
  CS_BYTE *csname;        /* NUL-terminated; a constant */
  int len;                /* bytes of the name */
  UNICONV_CID unilib_cid; /* UNICONV_CID_NONE without a converter */
} CSID_CSNAME;

/* All sets. Look-ups scan from the start. */
extern ZRV_PRIVATE const CSID_CSNAME csid_name[172];

/* The converter of a set, by the number of the set and by its exact name, NUL-terminated. Return
 * CS_SUCCEED; CS_FAIL, nothing stored, for a set that csid_name does not have. `cuid` is the address of
 * a UNICONV_CID. */
ZRV_PRIVATE CS_RETCODE comn__get_unilib_cid(int csid, UNICONV_CID *cid) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE com_get_csid(CS_CHAR *charname, CS_VOID *cuid) ZRV_NOEXCEPT;

/* An algorithm of the user's for a pair of sets, of the list usercharconv of a context. */
typedef struct _cs_user_algo {
  CS_CHAR from_charname[256]; /* the names as they were given, not terminated */
  CS_INT from_charnamelen;
  CS_CHAR to_charname[256];
  CS_INT to_charnamelen;
  CsOID *from_oid; /* the sets, borrowed from the table of identifiers */
  CsOID *to_oid;
  CS_CONV_FUNC user_conv_func;
  CS_INT conv_multiplier; /* worst-case growth of the length */
  struct _cs_user_algo *next;
} CsUserAlgo;

/* A character with no counterpart anywhere and the text that stands for it: the data of the list
 * mnem_db of the data that contexts share. */
typedef struct _unicode_mnem_string {
  CS_USHORT unicode;
  CS_CHAR *string;   /* owned */
  CS_INT string_len; /* bytes */
} UNICODE_MNEM_STRING;

/* The converter that comn__convt_to_utf8 and comn__convt_from_utf8 use whatever the set, where it is not
 * null; one of the application's for the set that it works with, which spares making one for each
 * call. Not locked: to be set once, before there are threads. The application releases it. */
extern ZRV_PRIVATE CVTH comn__persistent_handle;

/* Sets it, and reads it. Setting returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_set_persistent_handle(CVTH handle) ZRV_NOEXCEPT;
ZRV_PRIVATE CVTH comn__get_persistent_handle(void) ZRV_NOEXCEPT;

/*
 * Converts text from the set of one format's locale into that of another's. A format without a locale
 * has ctxlocale.
 *
 * type       in   the category whose sets are meant, CS_LCTYPE_CTYPE to CS_LCTYPE_TIME
 * srcfmt     in   the length of the text in maxlength; with the datatype CS_TYPE_VARCHAR `src` is a
 *                 CS_VARCHAR, whose own length counts
 * src        in   the text. A NUL in it ends it, unless it is ASCII or the sets are the same
 * destfmt    in   the room in maxlength; with CS_TYPE_VARCHAR `dest` is a CS_VARCHAR
 * dest       out  the converted text, not terminated
 * resultlen  out  its length in bytes; 0 after a failure
 *
 * Negative lengths count as 0. Returns CS_SUCCEED, also when something was replaced; CS_CONV_TRUNCATED
 * when the room ran out or the text ends within a character; CS_FAIL for a set without a converter, one
 * whose table cannot be read, and text that cannot be read; CS_MEM_ERROR; what an algorithm of the user's
 * returns, which gets the call's own arguments. Between the same sets a cut text is CS_SUCCEED.
 *
 * Towards the UTF-8 that all contexts share the call is passed to comn__convt_to_utf8 as it came in:
 * `src` then counts as maxlength bytes and `dest` is written from its first byte, CS_VARCHAR or not.
 *
 * Fatal are another `type`, and a locale, a cache or a character set that is not there.
 */
ZRV_API CS_RETCODE comn_charset_convert(CS_CONTEXT *context, CS_INT type, CS_DATAFMT *srcfmt,
                                        CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                                        CS_INT *resultlen) ZRV_NOEXCEPT;

/*
 * Convert to UTF-8 and from it.
 *
 * match_mode  in   carried, not examined
 * srcfmt      in   the length of the source in maxlength; its locale and datatype are not looked at
 * src_lcache  in   the cache whose character set the source has
 * destlen     in   the room in bytes
 * srclen      in   the length of the source
 * destfmt     in   the room in maxlength
 * dest_lcache in   the cache whose character set is wanted
 *
 * What is not told here is as in comn_charset_convert; but between the same sets too a cut text is
 * CS_CONV_TRUNCATED, and text that ends within a character, malformed UTF-8 and a source of 0x3FFFFFFF
 * bytes or more are CS_FAIL. From UTF-8 ASCII is converted like any other text, and a failing
 * com_path_charfile gives its code.
 */
ZRV_PRIVATE CS_RETCODE comn__convt_to_utf8(CS_CONTEXT *context, CS_INT match_mode,
                                           CS_DATAFMT *srcfmt, CsLocCache *src_lcache, CS_VOID *src,
                                           CS_VOID *dest, CS_INT destlen,
                                           CS_INT *resultlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__convt_from_utf8(CS_CONTEXT *context, CS_INT match_mode, CS_BYTE *src,
                                             CS_INT srclen, CS_DATAFMT *destfmt,
                                             CsLocCache *dest_lcache, CS_VOID *dest,
                                             CS_INT *resultlen) ZRV_NOEXCEPT;

/* Copies ASCII, at most `destlen` bytes. CS_SUCCEED; CS_CONV_TRUNCATED, `*resultlen` the room, when
 * only a part fits, which is ASCII; CS_CONV_NOXLATE, `*resultlen` 0 and `dest` partly written, when there
 * is a byte above 127 in what fits. The two may be the same text. */
ZRV_PRIVATE CS_RETCODE comn__copy_ascii_only(UChar8 *dest, CS_INT destlen, UChar8 *src,
                                             CS_INT srclen, CS_INT *resultlen) ZRV_NOEXCEPT;

/*
 * The worst-case growth in bytes of text that goes from the set of one locale to that of another; null
 * stands for ctxlocale. 1 between the same sets, the multiplier of an algorithm of the user's, else that
 * of the converters.
 *
 * type        in   the category whose sets are meant: CS_LCTYPE_MESSAGE to CS_LCTYPE_TIME; any other
 *                  value means CS_LCTYPE_CTYPE
 * multiplier  out  unchanged after a failure
 *
 * Returns CS_SUCCEED, or CS_FAIL for a set without a converter. The second function is the same for two
 * caches with different sets.
 */
ZRV_API CS_RETCODE comn_convert_max_multiplier(CS_CONTEXT *context, CS_INT type, CS_LOCALE *srcloc,
                                               CS_LOCALE *destloc, CS_INT *multiplier) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__convert_get_max_multiplier(CS_CONTEXT *context, CsLocCache *src_lcache,
                                                        CsLocCache *dest_lcache,
                                                        CS_INT *multiplier) ZRV_NOEXCEPT;

/*
 * Sets, reads or removes the algorithm of the user's for a pair of sets.
 *
 * action      in      CS_ACT_SET, CS_ACT_GET or CS_ACT_CLEAR; another one is fatal
 * srccharset, in      the names of the sets, each with its length in bytes or CS_LEN_NULLTERM
 * destcharset
 * multiplier  in/out  worst-case growth; null sets 1, and asks for none
 * func        in/out  the function; null from reading when there is none. Not looked at by removing,
 *                     must not be null otherwise
 *
 * Setting again replaces function and multiplier. Removing the newest algorithm of all removes all of
 * them, and does not release the others: remove the oldest first, or use comn_drop_user_charconv_list.
 *
 * Returns CS_SUCCEED; COM_UNKNOWN_NAME, before anything else is looked at, for a name that the class
 * of character sets does not have; for a new algorithm CS_CONV_SYNTAX with a name of more than 256 bytes
 * or of no explicit length, and CS_MEM_ERROR.
 */
ZRV_API CS_RETCODE comn_set_user_charset_convert(CS_CONTEXT *context, CS_INT action,
                                                 CS_CHAR *srccharset, CS_INT srccharset_len,
                                                 CS_CHAR *destcharset, CS_INT destcharset_len,
                                                 CS_INT *multiplier,
                                                 CS_CONV_FUNC *func) ZRV_NOEXCEPT;

/* Releases the algorithms of a context and clears their list. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_drop_user_charconv_list(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* The algorithm for a pair of sets, by the records of their identifiers: CS_SUCCEED, or CS_FAIL with
 * null. It belongs to the context. */
ZRV_PRIVATE CS_RETCODE comn__get_user_charconv(CS_CONTEXT *context, CsOID *from_oid, CsOID *to_oid,
                                               CsUserAlgo **useralgop) ZRV_NOEXCEPT;

/* Releases the strings of the list mnem_db, then the list, and clears mnem_db; does nothing without a
 * list. The records themselves belong to who made them. Returns CS_SUCCEED, or what the list manager
 * returns. */
ZRV_API CS_RETCODE comn_intl_drop_mnemdb(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* Releases the string of one record and clears it; null is allowed. Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE comn__drop_mnem_string(CS_VOID *item) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
