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

ZRV_END_DECLS

#endif
