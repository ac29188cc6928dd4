/*
 * charset.h - character sets: the record that describes one, questions about characters, loading.
 *
 * One record, CHAR_ATTRIB, describes a character set to the whole library: a small header and up to
 * four tables. Two rules make the tables tell about characters of more than one byte.
 *
 * The plane rule. A type map is a row of planes of 256 entries. The first byte of a character picks
 * an entry of plane 0. Where that entry has CS_CTYPE_LEAD it describes no character: its char_upper
 * is the number of the plane in which the second byte picks the entry that counts.
 *
 * The width rule. Without a width map every character has one byte. Otherwise the low four bits of
 * the entry of its first byte are its length in bytes. In a set whose entry 255 has 15 in the high
 * four bits, an entry of length 2 means 4 when the second byte is 0x30 to 0x39. An entry of length 0
 * counts as 1, so that whoever steps through a text moves on.
 *
 * A character is told by a pointer to its first byte; the bytes that the two rules ask for must be
 * there. What takes a length, an end or a NUL-terminated text reads nothing behind it: where a byte
 * behind it decides, the byte counts as 0.
 */
#ifndef ZRV_CHARSET_H
#define ZRV_CHARSET_H

#include "comloc.h"
#include "csintrn.h"

ZRV_BEGIN_DECLS

/* ---- records ---- */

/* A plane of a map that reduces characters to ASCII; 0 where a character has no such form. */
typedef struct cs_norm_map {
  CS_BYTE norm[256];
} CS_NORM_MAP;

/* A plane of sound classes. */
typedef struct cs_soundex {
  CS_BYTE sound[256];
} CS_SOUNDEX;

/* A plane of character types. */
typedef struct cs_type_map {
  CHAR_MAP chmap[256];
} CS_TYPE_MAP;

/* A character set. 60 bytes under ILP32. */
typedef struct char_attrib {
  CS_SMALLINT cs_status;
  CS_BYTE cs_class; /* 1 single-byte, 2 capable of several bytes */
  CS_BYTE cs_id;
  CS_SMALLINT cs_namelen;
  CS_CHAR cs_name[30];   /* NUL-terminated */
  CS_BYTE cs_maxcharlen; /* longest character in bytes */
  CS_BYTE cs_ncharsize;  /* character size in bytes; 1 for class 1 */
  CS_BYTE cs_nnorm;      /* planes of each map */
  CS_BYTE cs_ntype;
  CS_BYTE cs_nsoundex;
  CS_BYTE spare[3];
  CS_BYTE *cs_width_map;    /* 256 bytes; null when every character has one byte */
  CS_NORM_MAP *cs_norm_map; /* null if absent; else the first byte of a longer character picks in
                                plane 0 the plane in which its second byte picks */
  CS_TYPE_MAP *cs_type_map; /* without one no character has a class */
  CS_SOUNDEX *cs_soundex;
} CHAR_ATTRIB;
typedef CHAR_ATTRIB CS_ATTRIB;

/* The image of a class 1 set: its type map and its sound map, each with a spare entry. 1,285 bytes. */
typedef struct cs_1class {
  CHAR_MAP char_map[257];
  CS_BYTE sounds[257];
} cs_1class;

/* The header of the image of a class 2 set; its numbers stand high byte first. 44 bytes. */
typedef struct cs_2class {
  CS_SMALLINT cs_status;
  CS_BYTE cs_class;
  CS_BYTE cs_maxcharlen;
  CS_BYTE cs_ncharsize;
  CS_BYTE cs_ntype;
  CS_BYTE cs_nnorm;
  CS_BYTE cs_nsoundex;
  CS_BYTE machine_type; /* not read */
  CS_BYTE padding[3];
  CS_INT off_width; /* where each table stands in the image, and its size in bytes */
  CS_INT size_width;
  CS_INT off_norm;
  CS_INT size_norm;
  CS_INT off_type;
  CS_INT size_type;
  CS_INT off_soundex;
  CS_INT size_soundex;
} cs_2class;

typedef struct _csconvconfig CsConvConfig;

/* A loaded character set, of the list cmg_chardesc of the data that contexts share. */
typedef struct _cschardesc {
  CsOID *oid;                     /* its identity, borrowed from the table of identifiers */
  CHAR_ATTRIB *char_attrib;       /* owned, with its tables */
  struct _cssortdesc *sort_order; /* the sort orders of this set, owned */
  CsConvConfig *conv_config;
  struct _cschardesc *charnext;
} CsCharDesc;

/* ---- the built-in set, iso_1 ---- */

/* Its tables, as deployed applications know them: no character is graphic, and 223 is an upper-case
 * letter. */
extern ZRV_PRIVATE const CS_TYPE_MAP ISO_1_type_map[1];
extern ZRV_PRIVATE const CS_SOUNDEX ISO_1_soundex[1];

/* The built-in record and its type map. Constants: they must not be written. */
ZRV_API CS_ATTRIB *com_get_charattrib(void) ZRV_NOEXCEPT;
ZRV_API CS_TYPE_MAP *com_get_typemap(void) ZRV_NOEXCEPT;

/* ---- questions about a character ----
 *
 * ca  in  the character set; null for the built-in one
 * p   in  the first byte of the character; a null pointer is fatal, and the answer then 0
 */

/* What bits of char_type the character has: not 0 for yes. */
ZRV_API CS_INT comn_isalpha(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_isupper(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_islower(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_isdigit(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_isxdigit(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_isspace(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_ispunct(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;
ZRV_API CS_INT comn_isgraph(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT; /* never in the built-in set */

/* The lexical class, char_lex. */
ZRV_API CS_INT comn_get_lex(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;

/* The length of the character in bytes, by the width rule. */
ZRV_API CS_INT comn_char_width(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;

/* Its width in columns: the high four bits of the width entry of the first byte, whatever the
 * second; 1 without a width map. */
ZRV_API CS_INT comn_disp_width(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;

/* Moves `*p` past the character. A null pointer, also at `p`, is fatal. */
ZRV_API void comn_inc_char(CS_ATTRIB *ca, CS_BYTE **p) ZRV_NOEXCEPT;

/*
 * Write the other case of the character, without a terminator.
 *
 * srcp   in   the first byte of the character
 * destp  out  its other form: two bytes where the type entry of the first byte has CS_CTYPE_LEAD;
 *             the whole character unchanged, by the width rule, where it has no such form; else one
 *             byte. May be `srcp`
 *
 * A null pointer is fatal, and nothing is written.
 */
ZRV_API void comn_toupper(CS_ATTRIB *ca, CS_BYTE *srcp, CS_BYTE *destp) ZRV_NOEXCEPT;
ZRV_API void comn_tolower(CS_ATTRIB *ca, CS_BYTE *srcp, CS_BYTE *destp) ZRV_NOEXCEPT;

/* The byte that stands for the character in ASCII, 0 if none: from the normalisation map, else the
 * lower-case form of the first byte, so that "A" of the built-in set becomes "a"; else, without
 * either map, the first byte. */
ZRV_API CS_BYTE comn_to_ascii(CS_ATTRIB *ca, CS_BYTE *p) ZRV_NOEXCEPT;

/* ---- questions about a text ---- */

/*
 * Reduces a text to ASCII: a character that comn_to_ascii has a byte for becomes that byte, all
 * others are copied.
 *
 * cp_src    in   the text
 * src_len   in   its length in bytes; below 1 for an empty one. Of a last character that is cut
 *                only what lies inside is copied
 * cp_dest   out  `src_len` bytes at most; may be `cp_src`
 * dest_len  out  the bytes written
 * chatr     in   the character set; null for the built-in one
 *
 * A null `cp_src`, `cp_dest` or `dest_len` is fatal, and nothing is written.
 */
ZRV_API void comn_str_to_ascii(CS_BYTE *cp_src, CS_INT src_len, CS_BYTE *cp_dest, CS_INT *dest_len,
                               CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/*
 * Splits a range at a character boundary.
 *
 * startp, endp  in   the range, `endp` behind its last byte; an empty one has no characters
 * wcbytes       out  bytes of the whole characters
 * pc_part1      out  bytes of a last, partial character inside the range; 0 if there is none
 * pc_part2      out  bytes of it behind the range
 * nchars        out  whole characters
 *
 * A null pointer other than `ca` is fatal, and nothing is written.
 */
ZRV_API void comn_whole_char(CS_ATTRIB *ca, CS_BYTE *startp, CS_BYTE *endp, CS_INT *wcbytes,
                             CS_INT *pc_part1, CS_INT *pc_part2, CS_INT *nchars) ZRV_NOEXCEPT;

/* Finds a byte among the first bytes of the characters of a NUL-terminated text: its place, or null.
 * The NUL is never found. A null `buf` is fatal, null. */
ZRV_API CS_BYTE *comn_mb_strchr(CS_ATTRIB *ca, CS_BYTE *buf, CS_BYTE srch_char) ZRV_NOEXCEPT;

/* cs_width_map of a record, of the built-in one for null: null when every character has one byte. */
ZRV_API CS_BYTE *comn_get_widthmap(CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/* ---- records in memory ---- */

/* A new record, not cleared, or null without memory; and its release, CS_SUCCEED, which leaves the
 * tables alone. Null is allowed. */
ZRV_API CS_ATTRIB *com_alloc_char_attrib(void) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE com_free_char_attrib(CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/* The images of com_build_char_attrib. */
#define COM_CHARSET_IMAGE1 1001
#define COM_CHARSET_IMAGE2 1002

/*
 * Describes a character set whose image the caller holds in memory.
 *
 * type   in      COM_CHARSET_IMAGE1, a cs_1class; COM_CHARSET_IMAGE2, a cs_2class with its tables
 * id     in      becomes cs_id
 * cname  in      the name, NUL-terminated; cut to fit, while cs_namelen is its whole length
 * imptr  in/out  the image, which must stay as long as the record is used: the tables are pointers
 *                into it. What it says of offsets and planes is believed. The eight numbers of a
 *                class 2 header are rewritten in the host's order, so such an image serves once
 * chatr  out     the record
 *
 * Returns CS_SUCCEED; CS_FAIL, nothing changed, for a null pointer and for any other `type`.
 */
ZRV_API CS_RETCODE com_build_char_attrib(CS_INT type, CS_INT id, CS_CHAR *cname, CS_VOID *imptr,
                                         CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/* ---- loading ----
 *
 * A character set is loaded from the file charset.loc in its directory (docs/files.md has its form)
 * and kept on the list cmg_chardesc, where it is found by its identifier. What is loaded is
 * read-only. The callers see to it that one thread at a time loads or drops.
 */

/*
 * Gives a cache its character set, from the list or by loading it.
 *
 * context      in   its ctxglobals have the list; ctxintlerr receives the status of a reader that
 *                   failed
 * oid          in   the identity of the set
 * lcache       out  locchardesc, null on failure. Its charname names the directory. If it has a
 *                   sortname and the context a ctxlocale, a set that is loaded gets that sort order
 *                   and the cache its locsortorder; a set from the list does not
 * locfilename  out  the path of the file that was read last; may be null
 * filenamelen  in   its size in bytes, at least 1 if it is not null
 *
 * Returns CS_SUCCEED; CS_MEM_ERROR; COM_LOCFILE_ERROR when the file cannot be opened; COM_INTL_ERROR
 * when the reader fails; CS_FAIL for what is wrong in the file, and for a path that does not fit; and
 * what the look-up and the loading of the sort order return. After a failure nothing is left loaded.
 * A null pointer other than `locfilename`, also for charname and ctxglobals, is fatal.
 */
ZRV_PRIVATE CS_RETCODE comn__intl_load_charset(CsContext *context, CsOID *oid, CsLocCache *lcache,
                                               CS_CHAR *locfilename,
                                               CS_INT filenamelen) ZRV_NOEXCEPT;

/* Releases all loaded character sets with their sort orders and clears the list; caches that point at
 * them must be gone. Returns CS_SUCCEED. A null context, or one without ctxglobals, is fatal. */
ZRV_API CS_RETCODE com_intl_chardesc_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* Releases one character set, which must stand in no list, with its tables and sort orders. */
ZRV_PRIVATE CS_RETCODE comn__chardesc_drop(CsCharDesc *chardesc) ZRV_NOEXCEPT;

/*
 * The steps of the loader. They return as comn__intl_load_charset; after a failure what they fill is
 * partly filled, and is released with the set. An image must be told of by the entries "class" and
 * "image_size" before it.
 *
 * comn__get_charset    the file of `lcache` into the new record char_attrib of `chardesc`
 * comn__load_charset1  the images of a class 1 set of `imagesize` bytes, of which the first entry has
 *                      just been reached
 * comn__load_charset2  the same for class 2. A width map of more than 256 bytes, and a normalisation
 *                      map of more than 256 planes, are refused
 * comn__get_image      `imagelen` bytes, spelled as hexadecimal digits over the values of entries
 *                      "definition"; with `athand` the first of them is the entry at hand
 */
ZRV_PRIVATE CS_RETCODE comn__get_charset(CsContext *context, CsLocCache *lcache,
                                         CsCharDesc *chardesc, CS_CHAR *locfilename,
                                         CS_INT filenamelen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__load_charset1(CsContext *context, struct intl_locfile *ifile,
                                           CS_UINT imagesize, CHAR_ATTRIB *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__load_charset2(CsContext *context, struct intl_locfile *ifile,
                                           CS_UINT imagesize, CHAR_ATTRIB *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__get_image(CsContext *context, struct intl_locfile *ifile,
                                       CS_BOOL athand, CS_BYTE *image,
                                       CS_INT imagelen) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
