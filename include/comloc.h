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

/* One row of locales.dat, behind the locale's name: each name NUL-terminated, with its length. */
#define COM_LOCNAME_SIZE 256
typedef struct _cslocnames {
  CS_CHAR charset[COM_LOCNAME_SIZE];
  CS_INT charsetlen;
  CS_CHAR lang[COM_LOCNAME_SIZE];
  CS_INT langlen;
  CS_CHAR sortorder[COM_LOCNAME_SIZE];
  CS_INT sortorderlen;
  CS_CHAR datetime[COM_LOCNAME_SIZE];
  CS_INT datetimelen;
  CS_CHAR numeric[COM_LOCNAME_SIZE];
  CS_INT numericlen;
  CS_CHAR money[COM_LOCNAME_SIZE];
  CS_INT moneylen;
} CsLocNames;

/* An element of a format. */
typedef struct _parse_struct {
  CS_INT type;
  CS_BYTE *data;
  CS_INT datalen; /* bytes */
  struct _parse_struct *next;
} ParseStruct;

/* ---- the start of a family of contexts, and its end ----
 *
 * The contexts of a family share their globals. The order of a start: comn_intl_load_globalid, its
 * table in ctxoids; comn_intl_init; com_intl_envloc, and comn_intl_load of the name that it gives;
 * the cache in the six pointers of the default locale; ctxlocale. The order of the end:
 * comn_loc_drop_all, com_intl_loccache_drop, com_intl_chardesc_drop, comn_intl_dt_drop,
 * comn_intl_mon_drop, comn_intl_num_drop, comn_intl_message_drop, comn_intl_drop_mnemdb,
 * comn_lm_exit, comn_intl_drop_globalid. Nothing here takes a lock: the callers let one thread at a
 * time start, load and end.
 *
 * What reads files has the parameters `locfilename` and `filenamelen` of the openers in comnlib.h:
 * a buffer, or null, that receives the path of each file as it is opened, and so names the one that
 * was at fault.
 */

/*
 * Prepares the globals of a family: the character set "utf8", the sort order "binary", the identifier
 * of "ucs2" and the context of the lists. Once that is done a further call has no effect.
 *
 * Returns CS_SUCCEED; CS_FAIL when "utf8", "ucs2" or "binary" has no identifier; CS_MEM_ERROR; else
 * what the loader of the character set, of the sort order or lm_initlm returns. After a failure the
 * globals are as they were, but that a character set which was loaded stays on its list.
 */
ZRV_API CS_RETCODE comn_intl_init(CS_CONTEXT *context, CS_CHAR *locfilename,
                                  CS_INT filenamelen) ZRV_NOEXCEPT;

/* Releases the context of the lists. Returns what lm_exit returns, CS_FAIL while there are lists, and
 * CS_SUCCEED without effect when there is no context. */
ZRV_API CS_RETCODE comn_lm_exit(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Finds the locale's name in the environment: in the variable of the category, else in LANG, else it
 * is "default". A variable that is empty counts as not set.
 *
 * lctype   in   CS_LCTYPE_COLLATE to CS_LCTYPE_ALL, else fatal
 * name     out  the name, NUL-terminated
 * namelen  in   bytes at `name`, at least 1, else fatal
 *
 * Returns CS_SUCCEED, or COM_INTL_ERROR when the name does not fit with its NUL; the status is then
 * in ctxintlerr.
 */
ZRV_API CS_RETCODE com_intl_envloc(CS_CONTEXT *context, CS_INT lctype, CS_CHAR *name,
                                   CS_INT namelen) ZRV_NOEXCEPT;

/*
 * Finds the cache of a locale's name, or reads the row of locales.dat and builds one.
 *
 * name, namelen  in   the name, NUL-terminated, and its length, at least 1, else fatal. A cache is
 *                     found by `namelen` bytes, a row by the text up to the NUL
 * loccache_p     out  the cache, which belongs to the list cmg_lcache; unchanged on failure
 *
 * Of the formats that a row may name, the one for money is loaded. A row that names a date format
 * gives a cache without date tables, one that does not has those of the language. A name of more than
 * 255 bytes in the row is fatal, although it is the file's fault and not the caller's.
 *
 * Returns CS_SUCCEED; CS_FAIL when the file has no such row, a row without language or character set,
 * or a strange entry before it, and when a name has no identifier; CS_MEM_ERROR; COM_LOCFILE_ERROR
 * and COM_INTL_ERROR, with the status in ctxintlerr, for a file that cannot be opened or read; else
 * what the loaders return. After a failure the list is as it was, and what was loaded on the way
 * stays on lists of its own.
 */
ZRV_API CS_RETCODE comn_intl_load(CS_CONTEXT *context, CS_CHAR *name, CS_INT namelen,
                                  CS_VOID **loccache_p, CS_CHAR *locfilename,
                                  CS_INT filenamelen) ZRV_NOEXCEPT;

/* What comn_intl_load_zrvtypes replaces. */
#define COM_LOCTYPE_LANGUAGE 8
#define COM_LOCTYPE_CHARSET 9
#define COM_LOCTYPE_SORTORDER 10

/*
 * Finds or builds the cache that differs from another in its language, character set or sort order,
 * as a connection has it that changes but one of them.
 *
 * type               in   COM_LOCTYPE_, else fatal
 * zrv_name, namelen  in   the new name, any of those of its identifier
 * old_loccache       in   a cache with character set, sort order and messages
 * new_loccache_p     out  the cache, of the list cmg_lcache; unchanged on failure
 *
 * An existing cache serves when its character set, its language and, if one of the two has a name
 * for it, its sort order have the wanted identifiers. A new one has no locale name, so no name finds
 * it, and no formats for numbers and money; its dates are those of the language.
 *
 * A new cache that differs in its character set shares the messages of the old one, and each text stays
 * in the set of that cache of the two through which it was loaded first. Its sort order is the one of that name in the new
 * set when this call loads the set and the context has a ctxlocale. Otherwise, and so when the set was
 * loaded before, it is the very order of the old cache, made for the characters of the old set.
 *
 * Returns CS_SUCCEED; COM_UNKNOWN_NAME for a name without an identifier; CS_MEM_ERROR; else as
 * comn_intl_load.
 */
ZRV_API CS_RETCODE comn_intl_load_zrvtypes(CS_CONTEXT *context, CS_INT type, CS_CHAR *zrv_name,
                                           CS_INT namelen, CS_CHAR *locfilename, CS_INT filenamelen,
                                           CS_VOID *old_loccache,
                                           CS_VOID **new_loccache_p) ZRV_NOEXCEPT;

/* Releases all caches, that of "utf8" with them; what they borrow stays. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE com_intl_loccache_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* ---- questions to a locale ---- */

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

/* Compares two locales in a category, CS_LCTYPE_COLLATE to CS_LCTYPE_TIME: 0 when they have the same
 * character set (`type` CS_LOCSTR_CHARSET), messages (CS_LOCSTR_LANGUAGE) or sort order
 * (CS_LOCSTR_SORTORDER), 1 when not. Objects are the same by their address alone. The locales and,
 * unless they are equal, their pointers of the category must not be null; any other `lctype` or
 * `type` is fatal, 1. */
ZRV_API CS_INT com_intl_loccmp(CS_INT lctype, CS_INT type, CsLocale *loc1,
                               CsLocale *loc2) ZRV_NOEXCEPT;

/*
 * The locale's name of a cache, in the character set of the cache.
 *
 * loccache  in   a CsLocCache
 * buffer    out  the name, not NUL-terminated
 * buflen    in   bytes at `buffer`
 * outlen    out  the length of the name, as `resultlen` of comn_charset_convert; 0 for a cache without
 *                a name
 *
 * Returns what the conversion from UTF-8 returns.
 */
ZRV_API CS_RETCODE com_intl_get_locname(CS_CONTEXT *context, CS_VOID *loccache, CS_CHAR *buffer,
                                        CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;

/* The character set (a CS_ATTRIB) that a text has by its format: that of the format's locale, else
 * of ctxlocale, else, when the context is null as well, the built-in one. Both arguments may be
 * null; a context without ctxlocale and a locale that is not complete are fatal, null. */
ZRV_API struct char_attrib *com_intl_charattr(CS_CONTEXT *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;

/* ---- locale records ---- */

/* A new record with the pointers of ctxlocale, on the list cmg_locale. CS_SUCCEED, or CS_MEM_ERROR
 * with `*locptr` null. A context without ctxlocale is fatal. */
ZRV_API CS_RETCODE comn_loc_alloc(CS_CONTEXT *context, CS_LOCALE **locptr) ZRV_NOEXCEPT;

/* Takes a record off the list and releases it; ctxlocale becomes null if it was this one. CS_SUCCEED,
 * or CS_FAIL, nothing changed, for a record that is not on the list. */
ZRV_API CS_RETCODE comn_loc_drop(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* Clears and releases all records and ctxdeflocale; ctxlocale becomes null. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_loc_drop_all(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* True when a record is on the list; it is not looked at, so it may be any pointer. */
ZRV_API CS_BOOL comn_loc_validate(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* Copies the six pointers; the destination keeps its context and its place in the list. Returns
 * CS_SUCCEED. */
ZRV_API CS_RETCODE comn_loc_copy(CS_LOCALE *dest_locale, CS_LOCALE *src_locale) ZRV_NOEXCEPT;

/* ---- why nothing loads ---- */

/* Prints through com_perr which files of the installation are missing, for a program that could not
 * start a context. Only the environment and the files are looked at. CS_SUCCEED when nothing was
 * missing, else CS_FAIL. Two of the files are not this library's, and it starts without them: cslib.loc,
 * the messages of the layer above, and the .cfg of the character set. A name of more than 255 bytes in
 * the row of the locale is fatal, as in comn_intl_load; where the check returns, the report ends with
 * the line that the row does not exist. */
ZRV_API CS_RETCODE com_intl_verify_ctxloc(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* com__verify_msgfile for the language of a locale's messageptr. */
ZRV_API CS_RETCODE com_intl_verify_a_msgfile(CS_CONTEXT *context, CS_LOCALE *locale,
                                             CS_CHAR *filename, CS_CHAR *buffer,
                                             CS_INT buflen) ZRV_NOEXCEPT;

/*
 * Find a file of a language, or of a character set, and ask whether it can be read.
 *
 * buffer  out  the path, or "*" when there is none
 * buflen  in   bytes at `buffer`, at least 1, else fatal
 *
 * Return true (CS_SUCCEED) or false (CS_FAIL), or what the builder of the path returned.
 */
ZRV_PRIVATE CS_RETCODE com__verify_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen,
                                           CS_CHAR *filename, CS_CHAR *buffer,
                                           CS_INT buflen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__verify_charfile(CS_CONTEXT *context, CS_CHAR *charset,
                                            CS_CHAR *filename, CS_CHAR *fileext, CS_CHAR *buffer,
                                            CS_INT buflen) ZRV_NOEXCEPT;

/* ---- the steps of loading ---- */

/*
 * Reads the row of a locale from the section "linux" of locales.dat.
 *
 * name   in   the name, NUL-terminated; `namelen` is not looked at
 * names  out  the row; the names that it does not have are empty, but the sort order is "binary".
 *             After a failure it holds what had been read
 *
 * Returns CS_SUCCEED; CS_FAIL without the section or the row, for a row without language or character
 * set, and when a key other than "locale" stands before the row; COM_LOCFILE_ERROR; COM_INTL_ERROR. A
 * name of more than 255 bytes is fatal.
 */
ZRV_PRIVATE CS_RETCODE comn__intl_lookup(CS_CONTEXT *context, CS_CHAR *name, CS_INT namelen,
                                         CsLocNames *names, CS_CHAR *locfilename,
                                         CS_INT filenamelen) ZRV_NOEXCEPT;

/* A new, empty cache that is on no list yet: CS_SUCCEED, or CS_MEM_ERROR with `*lcachep` null. */
ZRV_PRIVATE CS_RETCODE comn__create_loccache(CS_CONTEXT *context,
                                             CsLocCache **lcachep) ZRV_NOEXCEPT;

/* Releases a cache that is on no list, with its names. Null is allowed. */
ZRV_PRIVATE void comn__drop_loccache(CsLocCache *lcache) ZRV_NOEXCEPT;

/* Gives an empty cache what another has of locale name, character set, language, messages and sort
 * order; dates, numbers and money stay empty. CS_SUCCEED, or CS_MEM_ERROR with some of it copied. */
ZRV_PRIVATE CS_RETCODE comn__copy_loccache(CsLocCache *src, CsLocCache *dest) ZRV_NOEXCEPT;

/* True when two caches have the same names, and objects with the same identifiers, and date tables
 * that comn__cmp_dtinfo calls equal. */
ZRV_PRIVATE CS_BOOL comn__cmp_loccache(CsLocCache *lcache1, CsLocCache *lcache2) ZRV_NOEXCEPT;

/* True when two date tables are equal: by their identifiers where one has any, else by all that they
 * hold. Null is equal to null alone. */
ZRV_PRIVATE CS_BOOL comn__cmp_dtinfo(struct _csdateinfo *dt1, struct _csdateinfo *dt2) ZRV_NOEXCEPT;

/* Looks for a cache that equals another, and takes it and its date tables off their lists. CS_SUCCEED
 * with the cache, or with null when there is none; CS_FAIL with null, nothing changed, when its date
 * tables are not on their list. */
ZRV_PRIVATE CS_RETCODE comn__scan_lcache(CS_CONTEXT *context, CsLocCache *lcache,
                                         CsLocCache **dup_loccache) ZRV_NOEXCEPT;

/* Loads the format that a cache names, from the list of its kind or from its file. `type` is
 * CS_LCTYPE_MONETARY, CS_LCTYPE_NUMERIC or CS_LCTYPE_TIME, else CS_FAIL; `oid` the identifier of the
 * name. CS_SUCCEED; COM_LOCFILE_ERROR or COM_INTL_ERROR with the status in ctxintlerr; else what
 * comn__path_locdata or the reader returns. */
ZRV_PRIVATE CS_RETCODE comn__load_locdata(CS_CONTEXT *context, CS_INT type, CsOID *oid,
                                          CsLocCache *lcache, CS_CHAR *locfilename,
                                          CS_INT filenamelen) ZRV_NOEXCEPT;

/* CS_SUCCEED when a list of format elements, which may be empty, has none of a type; else true only
 * when there is an `eptr`. */
ZRV_PRIVATE CS_RETCODE comn__chk_format(CS_INT type, ParseStruct *pptr, CS_VOID *eptr) ZRV_NOEXCEPT;

/*
 * Reads sizes of digit groups from the values of the current entry.
 *
 * charattrib  in   the character set of the file; null for the built-in one
 * grpptr      out  a new array, to be released with comn_free; null on failure
 * cntptr      out  its length; 0 on failure
 *
 * A first size of -1, no groups at all, is a complete list; a size beyond CS_INT is the nearest one.
 * CS_SUCCEED; CS_FAIL for an entry without values and for a first size of 0 or below -1; CS_MEM_ERROR;
 * COM_INTL_ERROR when the reader failed.
 */
ZRV_PRIVATE CS_RETCODE comn__read_grp(struct intl_locfile *ifile, struct char_attrib *charattrib,
                                      CS_INT **grpptr, CS_INT *cntptr) ZRV_NOEXCEPT;

/* ---- date, number and money tables ---- */

/* Date conventions: of a language, shared by all its caches, or a private copy with a style of its
 * own. Texts are UTF-8. What a comment does not speak of is not filled by anything that loads. */
typedef struct _csdateinfo {
  CsOID *id; /* the language's; null for a private copy */
  CS_INT is12hour;
  CS_BYTE *amindict;
  CS_INT amindict_len;
  CS_BYTE *pmindict;
  CS_INT pmindict_len;
  CS_BYTE *months[12]; /* full names, NUL-terminated */
  CS_INT mon_len[12];  /* without the NUL */
  CS_BYTE *shortmonths[12];
  CS_INT shrtmon_len[12];
  CS_BYTE *days[7]; /* names, the first day of the week first */
  CS_INT day_len[7];
  CS_BYTE *shortdays[7];
  CS_INT shrtday_len[7];
  CS_INT firstday; /* 1 is Monday, 7 Sunday */
  CS_BYTE *datefmt;
  CS_INT datefmt_len;
  CS_BYTE *timefmt;
  CS_INT timefmt_len;
  CS_BYTE *longdtfmt;
  CS_INT longdtfmt_len;
  CS_BYTE *shrtdtfmt;
  CS_INT shrtdtfmt_len;
  CS_BYTE *era;
  CS_INT era_len;
  CS_BYTE *era_t_fmt;
  CS_INT eratfmt_len;
  CS_BYTE *era_d_fmt;
  CS_INT eradfmt_len;
  CS_BYTE *era_dt_fmt;
  CS_INT eradtfmt_len;
  CS_INT secprec;
  CS_CHAR dateorder[4]; /* day, month and year: "mdy" and so on */
  CS_INT convertfmt;    /* style of date-times as text */
  CS_INT bdtconvertfmt; /* the same of big date-times; -1 for the same */
  int locdateorder_id;  /* `dateorder` as a number, COM_DATEORDER_ */
  struct _csdateinfo *next;
} CS_DATEINFO;

/* Number conventions. Nothing fills them. */
typedef struct _csnuminfo {
  CsOID *id;
  CS_BYTE *decpt; /* decimal point */
  CS_INT decpt_len;
  CS_BYTE *gpsep; /* group separator */
  CS_INT gpsep_len;
  CS_INT *grouping;
  CS_INT group_cnt;
  CS_BYTE *possign;
  CS_INT possign_len;
  CS_BYTE *negsign;
  CS_INT negsign_len;
  CS_BYTE *posfmt;
  CS_INT posfmt_len;
  CS_BYTE *negfmt;
  CS_INT negfmt_len;
  struct _csnuminfo *next;
} CS_NUMINFO;

/* Money conventions. Nothing fills them. */
typedef struct _csmoninfo {
  CsOID *id;
  CS_BYTE *intlcurrsym; /* international currency symbol */
  CS_INT intlsym_len;
  CS_BYTE *loccurrsym; /* local one */
  CS_INT locsym_len;
  CS_BYTE *decpt;
  CS_INT decpt_len;
  CS_BYTE *gpsep;
  CS_INT gpsep_len;
  CS_INT *grouping;
  CS_INT group_cnt;
  CS_BYTE *possign;
  CS_INT possign_len;
  CS_BYTE *negsign;
  CS_INT negsign_len;
  CS_INT intlfracdig; /* digits behind the point */
  CS_INT locfracdig;
  CS_BYTE *intlposfmt;
  CS_INT intlposfmt_len;
  CS_BYTE *intlnegfmt;
  CS_INT intlnegfmt_len;
  CS_BYTE *locposfmt;
  CS_INT locposfmt_len;
  CS_BYTE *locnegfmt;
  CS_INT locnegfmt_len;
  struct _csmoninfo *next;
} CS_MONINFO;

/* Date orders by number. */
#define COM_DATEORDER_MDY 1
#define COM_DATEORDER_DMY 2
#define COM_DATEORDER_YMD 3
#define COM_DATEORDER_YDM 4
#define COM_DATEORDER_MYD 5
#define COM_DATEORDER_DYM 6

/* ---- what dates look like, by a format ----
 *
 * The conventions are those of the format's locale, else of ctxlocale. Without either, and both
 * arguments may be null, the answer is built in. What is handed out belongs to the tables and must
 * not be written. A locale that is not complete is fatal, null or 0.
 */

/* The names of the 12 months, whole and short, from January on, and of the 7 days, the first day of the
 * week first: each NUL-terminated and in UTF-8, whatever the character set of the locale. Built in are
 * the English names, those of days short and from Sunday on. */
ZRV_API CS_CHAR **com_intl_months(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;
ZRV_API CS_CHAR **com_intl_shortmonths(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;
ZRV_API CS_CHAR **com_intl_days(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;

/* The first day of the week, from 1, Monday, to 7, Sunday, which is built in. */
ZRV_API CS_INT com_intl_firstday(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;

/* The date order, as text and as COM_DATEORDER_; "mdy" is built in. */
ZRV_API CS_CHAR *com_intl_dateorder(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;
ZRV_API int com_intl_dateorder_id(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;

/* True for a 12-hour clock, which is built in. */
ZRV_API CS_INT com_intl_is12hour(CsContext *context, CS_DATAFMT *dfmt) ZRV_NOEXCEPT;

/*
 * Moves the number of a day from one convention for the first day of the week to another.
 *
 * orig_firstday  in  the first day of the week by which the day is counted, 1 (Monday) to 7 (Sunday)
 * orig_day       in  the day, 0 to 6 from that first day on
 * dest_firstday  in  the first day of the other convention
 *
 * Returns the same day, 0 to 6 from the other first day on. Nothing is checked.
 */
ZRV_API CS_INT com_intl_convt_firstday(CS_INT orig_firstday, CS_INT orig_day,
                                       CS_INT dest_firstday) ZRV_NOEXCEPT;

/* ---- what dates look like, by a locale ----
 *
 * A null `locale` means ctxlocale. A locale, its timeptr and the date tables of that cache must be
 * there, else the call is fatal.
 */

/* The kinds of names. */
#define COM_DT_MONTH 7340
#define COM_DT_SHORTMONTH 7341
#define COM_DT_DAYNAME 7342

/*
 * The name of a month, 0 to 11, or of a day, 0 to 6 from the first day of the week; the date order.
 *
 * type    in   COM_DT_MONTH or COM_DT_SHORTMONTH for months, COM_DT_DAYNAME for days, else fatal
 * buffer  out  the text in the character set of the locale, not NUL-terminated
 * buflen  in   bytes at `buffer`
 * outlen  out  its length, as `resultlen` of comn_charset_convert
 *
 * Return what the conversion from UTF-8 returns. A number out of range is fatal, CS_CONV_DOMAIN.
 */
ZRV_API CS_RETCODE comn_intl_month(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type,
                                   CS_INT month_number, CS_CHAR *buffer, CS_INT buflen,
                                   CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_intl_day(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type,
                                 CS_INT day_number, CS_CHAR *buffer, CS_INT buflen,
                                 CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_intl_dateorder(CS_CONTEXT *context, CS_LOCALE *locale, CS_CHAR *buffer,
                                       CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;

/* True for a 12-hour clock. */
ZRV_API CS_INT comn_intl_is12hour(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* The style of date-times, and of big date-times, as text. */
ZRV_API CS_INT comn_intl_get_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_intl_get_bdtfmt(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* What comn__intl_set_dtfmt sets. */
#define COM_DT_CONVERTFMT 7345
#define COM_DT_BDTCONVERTFMT 7346

/*
 * Give a locale a style of its own. Caches are shared, so the locale gets another one, with private
 * date tables, which from then on serves all six categories; it has no name, and no formats for
 * numbers and money. A cache that is equal already serves again.
 *
 * buffer  in  the style, a CS_INT; any number
 *
 * Return CS_SUCCEED, or CS_MEM_ERROR with nothing changed.
 */
ZRV_API CS_RETCODE comn_intl_set_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale,
                                       CS_VOID *buffer) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_intl_set_bdtfmt(CS_CONTEXT *context, CS_LOCALE *locale,
                                        CS_VOID *buffer) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__intl_set_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale, CS_INT type,
                                            CS_VOID *buffer) ZRV_NOEXCEPT;

/* comn_intl_is12hour, but for a context that may be null: without a locale and a ctxlocale it is 1. */
ZRV_API CS_INT comn_dtloc_is12hour(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* The number of the date order, and the style of date-times as text, of a locale, else of ctxlocale,
 * else, when there is neither, the built-in date order from both. */
ZRV_API int comn_dtloc_format(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_dtloc_format_fmt(CS_CONTEXT *context, CS_LOCALE *locale) ZRV_NOEXCEPT;

/* The style of a conversion from `srcfmt`, of which the datatype counts, to text with the locale of
 * `destfmt`. A style that text does not have is replaced by 0. */
ZRV_API CS_INT comn_get_datetochar_fmt(CS_CONTEXT *context, CS_DATAFMT *srcfmt,
                                       CS_DATAFMT *destfmt) ZRV_NOEXCEPT;

/* The style of a date order, COM_DATEORDER_; any other number is fatal, 0. */
ZRV_PRIVATE CS_INT com__map_dateorder_id_to_fmt(int dateorder_id) ZRV_NOEXCEPT;

/* ---- the life of the tables ---- */

/* Release the tables of all locales. They return CS_SUCCEED. */
ZRV_API CS_RETCODE comn_intl_dt_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_intl_mon_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_intl_num_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Gives a cache the date tables of its language: those that are loaded already, else from the section
 * "datetime" of the language's common.loc. The cache must have its character set, its messages and
 * the name of its language.
 *
 * Returns CS_SUCCEED; CS_FAIL without the section; CS_MEM_ERROR; COM_LOCFILE_ERROR or COM_INTL_ERROR
 * with the status in ctxintlerr; else what the builder of the path returns. Nothing is changed on
 * failure.
 */
ZRV_PRIVATE CS_RETCODE comn__read_common(CS_CONTEXT *context, CsLocCache *lcache,
                                         CS_CHAR *locfilename, CS_INT filenamelen) ZRV_NOEXCEPT;

/* The tables with an identifier, or null. Those of money and numbers are never found, also when
 * there are some, so each load opens their file again. */
ZRV_PRIVATE CS_DATEINFO *comn__scan_cache_dt(CS_CONTEXT *context, CsOID *id) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_MONINFO *comn__scan_cache_mon(CS_CONTEXT *context, CsOID *id) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_NUMINFO *comn__scan_cache_num(CS_CONTEXT *context, CsOID *id) ZRV_NOEXCEPT;

/* The readers of format files, which accept an open file as it is and set nothing. */
ZRV_PRIVATE CS_RETCODE comn__read_dtfile(CS_CONTEXT *context, struct intl_locfile *ifile, CsOID *id,
                                         CS_DATEINFO **dateinfop) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__read_monfile(CS_CONTEXT *context, struct intl_locfile *ifile,
                                          CsOID *id, CS_MONINFO **moninfop) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__read_numfile(CS_CONTEXT *context, struct intl_locfile *ifile,
                                          CsOID *id, CS_NUMINFO **numinfop) ZRV_NOEXCEPT;

/* Copies all of a table but its place in the list. The texts are new blocks; the names have a
 * terminator. CS_SUCCEED, or CS_MEM_ERROR with `dest` cleared. */
ZRV_PRIVATE CS_RETCODE comn__copy_dtinfo(CS_DATEINFO *src, CS_DATEINFO *dest) ZRV_NOEXCEPT;

/* Release a table that is on no list, with its texts; null is allowed. Those of money and numbers do
 * nothing. */
ZRV_PRIVATE void comn__free_dtinfo(CS_DATEINFO *dtinfo) ZRV_NOEXCEPT;
ZRV_PRIVATE void comn__free_moninfo(CS_MONINFO *moninfo) ZRV_NOEXCEPT;
ZRV_PRIVATE void comn__free_numinfo(CS_NUMINFO *numinfo) ZRV_NOEXCEPT;

/* ---- conversion between character sets ----
 *
 * Text goes from any set into any other through Unicode, by the converters of libzrvunic (zrvunic.h).
 * Text of bytes below 128 alone is copied without one, whatever the sets. A pair of sets can have an
 * algorithm of the user's instead. What has no counterpart becomes "?" and is not reported; text that
 * does not fit is cut at a character, between the same sets at any byte. Conversions send no message. Two
 * sets are the same when their records (CsCharDesc) are.
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
 * resultlen  out  its length in bytes; when the room ran out the whole room, where NUL bytes stand
 *                 behind the last whole character; 0 after a failure
 *
 * Negative lengths count as 0. Returns CS_SUCCEED, also when something was replaced; CS_CONV_TRUNCATED
 * when the room ran out or the text ends within a character; CS_FAIL for a set without a converter, one
 * whose table cannot be read, and text that cannot be read; CS_MEM_ERROR; what an algorithm of the user's
 * returns, which gets the call's own arguments. Between the same sets a cut text is CS_SUCCEED.
 *
 * Text of bytes below 128 alone that fits is taken for ASCII and comes out as it is, also from and to a
 * set in which those bytes are something else: EBCDIC text stays EBCDIC, UTF-16 gets one byte for each
 * character. Text with any other byte in it is converted whole.
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
 * only a part fits, which is ASCII; CS_CONV_NOXLATE, `*resultlen` 0 and `dest` untouched, when there is
 * a byte above 127 in what fits. The two may be the same text. */
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
 *                     must not be null otherwise; a null function there leaves converting to the
 *                     library
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
