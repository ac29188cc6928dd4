/*
 * sortordr.h - sort orders: their records, their loader, and comparison.
 *
 * A sort order lists the characters of one character set from lowest to highest, in a file of the
 * extension "srt" (docs/files.md has its form). Loading compiles the list into a table of 256
 * weights of four bytes, with a small overflow area, so that two strings are compared in one pass.
 *
 * A character has three weights. The primary one is the number of its entry in the list; the
 * secondary one tells the values of one entry apart, as accents do; the tertiary one the characters
 * that one value ties with "=", as upper and lower case. Two further things need more than a weight
 * for each byte: double characters, two bytes that sort as one, and ligatures, one byte that sorts
 * as two.
 *
 * A null pointer where none is allowed, and an argument that a comment calls fatal, is a
 * programmer's fault, as in comnlib.h. The comparisons alone check nothing.
 */
#ifndef ZRV_SORTORDR_H
#define ZRV_SORTORDR_H

#include "comloc.h"

ZRV_BEGIN_DECLS

/* ---- the compiled table ---- */

/* The weights of a character, in four views of the same four bytes. */
typedef union lsc {
  CS_UINT lsclong;
  CS_USHORT ps; /* primary and secondary weight together */
  struct {
    CS_BYTE p;       /* primary weight */
    CS_BYTE s;       /* secondary weight */
    CS_BYTE t;       /* tertiary weight; 0 when the byte's weights stand in the list `smelist` */
    CS_BYTE smelist; /* t is 0: index of the first element of the list, 255 for none. Else, in a
                        finished table: the first byte of the next primary weight, 0 for none */
  } pst;
  struct {
    CS_BYTE p1;
    CS_BYTE p2;
    CS_BYTE s;
    CS_BYTE smelist;
  } p1p2s; /* reserved for class 2 */
} LSC;

/* The records of an overflow element, by its type. */
struct sm_0type { /* a byte by itself, at the end of a list of double characters */
  LSC lsc1;
};
struct sm_1type { /* a double character: the first byte with the second byte `xtraw` */
  CS_BYTE xtraw;
  CS_BYTE pad[3];
  LSC lsc1;
};
struct sm_2type { /* no content; none are made */
  CS_BYTE dummy;
};
struct sm_3type { /* a ligature: one byte with the weights of two characters */
  LSC lsc1;
  LSC lsc2;
};
struct sm_4type { /* this and the following are reserved for class 2 */
  LSC lsc_low;
  LSC lsc_high;
};
struct sm_5type {
  LSC lsc1;
};
struct sm_6type {
  LSC lsc1;
};
struct sm_7type {
  CS_UINT offset;
};

/* One overflow element, 12 bytes. */
typedef struct smel {
  CS_BYTE next_smel; /* index of the next element of the list, SMEL_NONE at its end */
  CS_BYTE type_smel; /* SMEL_BYTE, SMEL_DOUBLE or SMEL_LIGATURE */
  CS_BYTE noxtraw;   /* 1 for a double character, else 0 */
  CS_BYTE pad;
  union {
    struct sm_0type sm_0type;
    struct sm_1type sm_1type;
    struct sm_2type sm_2type;
    struct sm_3type sm_3type;
    struct sm_4type sm_4type;
    struct sm_5type sm_5type;
    struct sm_6type sm_6type;
    struct sm_7type sm_7type;
  } smel_types;
} SMEL;

#define SMEL_BYTE 0
#define SMEL_DOUBLE 1
#define SMEL_LIGATURE 3
#define SMEL_NONE 255
#define SMEL_COUNT 64 /* elements of a table */

/* The compiled table of class 1, 1796 bytes. Read-only once it is loaded. */
typedef struct so_1class {
  CS_BYTE stat1;     /* properties of the order, SO_ below */
  CS_BYTE stat2;     /* 0 */
  CS_BYTE last_char; /* the last first byte that the last entry of characters has */
  CS_BYTE nsmels;    /* elements in use */
  LSC lscs[256];     /* one for each byte value */
  SMEL smels[SMEL_COUNT];
} SO_1CLASS;

#define SO_PRIMARY 1    /* primary differences only */
#define SO_SECONDARY 2  /* a secondary weight above 1 occurred */
#define SO_PREFERENCE 4 /* a tertiary weight of 2 or more occurred in an order with preference */
#define SO_TIES 8       /* "=" occurred */
#define SO_EXPANDS 16   /* a double character or a ligature occurred */
#define SO_LIGATURES 32 /* a ligature occurred */
#define SO_WEIGHTS 255  /* the most primary weights that an order has */

/* ---- loaded sort orders ---- */

/* The longest name of a sort order or of its character set, with the terminator, and the longest
 * description. */
#define SO_NAME_SIZE 31
#define SO_DESCRIPT_SIZE 256

/* The header of the file. */
typedef struct s_descript {
  int class_; /* 1 or 2. C++ keeps the plain word for itself */
  int id;     /* not 0 */
  char name[SO_NAME_SIZE];
  char charset[SO_NAME_SIZE];
  int preference; /* tertiary differences count as preference; true unless the file says otherwise */
  char descript[SO_DESCRIPT_SIZE];
  int isbin; /* true for an order by bytes; false unless the file says otherwise */
} S_DESCRIPT;

/* One loaded sort order, identified by its oid within its character set, which owns it. */
typedef struct _cssortdesc {
  CsOID *oid; /* borrowed */
  S_DESCRIPT *char_sort_descript;
  CS_VOID *char_sort_class; /* an SO_1CLASS, null for a binary order */
  struct _cssortdesc *sortnext;
} CsSortDesc;

/*
 * Makes a sort order available: from the chain of its character set, or from its file.
 *
 * oid          in      the identity of the order
 * lcache       in/out  `locchardesc` is the character set, `charname` and `sortname` tell the file;
 *                      `locsortorder` receives the order. It stays the character set's own
 * locfilename  out     the path of the file, as com__open_charfile tells it; may be null
 * filenamelen  in      the size of `locfilename`
 *
 * Returns CS_SUCCEED; CS_FAIL for a file that is wrong, has no section "sortorder" or is of class
 * 2; CS_MEM_ERROR; COM_INTL_ERROR when the reader fails, its status in ctxintlerr; what
 * com__open_charfile returns. After a failure the character set and the cache are as they were.
 */
ZRV_PRIVATE CS_RETCODE comn__intl_load_sortorder(CsContext *context, CsOID *oid, CsLocCache *lcache,
                                                 CS_CHAR *locfilename,
                                                 CS_INT filenamelen) ZRV_NOEXCEPT;

/* Releases one sort order with its header and its table; it must stand in no chain any more. Always
 * CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE comn__sortorder_drop(CsSortDesc *sortdesc) ZRV_NOEXCEPT;

/*
 * Hands out the compiled sort order of a locale.
 *
 * sortorder  out  the table of `locsortorder` in the cache `collateptr`, borrowed; null for a binary
 *                 order. Untouched after a failure
 *
 * Returns CS_SUCCEED, or CS_FAIL when the locale has no `collateptr`, that has no character set, or
 * the character set or the cache has no sort order.
 */
ZRV_API CS_RETCODE com_intl_sortorder(CsLocale *locale, CS_VOID **sortorder) ZRV_NOEXCEPT;

/* ---- comparison ----
 *
 * Compare two byte strings under a compiled table; lengths are bytes, and a string of length 0 may
 * be null. The table is only read, and nothing is kept between calls, so any number of threads may
 * compare at once. Nothing is checked: `so` is never null, a caller with a binary order compares
 * bytes.
 */

/* The order of two strings: -1, 0 or 1. A primary difference anywhere beats a secondary one; of the
 * secondary ones the first counts. Trailing bytes 0x20 do not count. */
ZRV_API CS_INT com_ps_dl_sqlhilo(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2,
                                 CS_INT len2) ZRV_NOEXCEPT;

/* The order by tertiary weight alone of two strings that com_ps_dl_sqlhilo found equal: -1, 0 or 1,
 * by their first difference. Strings that agree as far as the shorter one goes are equal. */
ZRV_API CS_INT com_spec_tord(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2,
                             CS_INT len2) ZRV_NOEXCEPT;

/* The same, with the difference of the weights as it stands; -1 or 1 where one string goes on. */
ZRV_PRIVATE CS_INT com__ps_dl_sqlhilo(SO_1CLASS *so, char *str1, int len1, char *str2,
                                      int len2) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__spec_tord(SO_1CLASS *so, char *str1, int len1, char *str2,
                                  int len2) ZRV_NOEXCEPT;

/*
 * Resolves a byte whose weights stand in a list.
 *
 * smels     in      the elements
 * smel_1st  in      index of the first of the list
 * raw_cur   in/out  what follows the byte; passes the second byte of a double character
 * raw_end   in      the end of the text, null for one without an end
 * lsc       out     the weights
 * hold      out     the weights that follow them, of a ligature; else all bits 0
 *
 * A list that does not end in a byte or a ligature is fatal; `lsc` and `hold` are all bits 0 then.
 */
ZRV_PRIVATE CS_VOID com__smel_lsc(SMEL *smels, int smel_1st, char **raw_cur, char *raw_end,
                                  LSC *lsc, LSC *hold) ZRV_NOEXCEPT;

/* ---- the compiler ----
 *
 * The steps of comn__intl_load_sortorder. `key` is the entry that stands next in the file. Unless a
 * comment says otherwise they return CS_SUCCEED, CS_FAIL for what is wrong in the file, or
 * COM_INTL_ERROR with the reader's status in ctxintlerr; after a failure what they fill is partly
 * filled.
 */

/* The bytes that sort as two characters, while a file is compiled. */
typedef struct ligstruct {
  CS_BYTE lig[11]; /* up to ten bytes that share the ligature, NUL-terminated */
  CS_BYTE first;
  CS_BYTE second;
  CS_BYTE type; /* LIG_AFTER or LIG_EQUAL */
} LIGSTRUCT;

#define LIG_AFTER 1 /* sorts after its two characters */
#define LIG_EQUAL 2 /* sorts as they do */
#define LIG_BYTES 10
#define LIG_COUNT 50 /* ligatures of an order */

/* Fills `descript` from the entries of the section up to the first that is not of the header, which
 * `*key` then tells; null when the section ends there, as that of a binary order may. */
ZRV_PRIVATE CS_RETCODE comn__get_sort_description(CsContext *context, struct intl_locfile *ifile,
                                                  S_DESCRIPT *descript, CS_CHAR **key) ZRV_NOEXCEPT;

/* Compiles the body of the section into a new table at `char_sort_class`, which stays there after a
 * failure. The table of a binary order is null. Also returns CS_MEM_ERROR. */
ZRV_PRIVATE CS_RETCODE comn__build_class1(CsContext *context, struct intl_locfile *ifile,
                                          CS_CHAR *key, CsSortDesc *sortdesc) ZRV_NOEXCEPT;

/* Reads the values of an entry "lig" into the slots behind the first `*count`, and counts them. */
ZRV_PRIVATE CS_RETCODE comn__get_lig(CsContext *context, struct intl_locfile *ifile,
                                     LIGSTRUCT *ligs, CS_INT *count) ZRV_NOEXCEPT;

/* Reads the values of an entry "char" of the primary weight `primary`. `nextchar` is the table that
 * gives for each primary weight the first character of the next one. */
ZRV_PRIVATE CS_RETCODE comn__get_char(CsContext *context, struct intl_locfile *ifile,
                                      CS_INT preference, LIGSTRUCT *ligs, CS_INT count,
                                      CS_INT primary, CS_BYTE *nextchar,
                                      SO_1CLASS *so) ZRV_NOEXCEPT;

/* Records the weights of a character of `length` bytes, 1 or 2. Only CS_SUCCEED or CS_FAIL. */
ZRV_PRIVATE CS_RETCODE comn__add_smel(SO_1CLASS *so, CS_BYTE *character, CS_INT length,
                                      LSC *weights) ZRV_NOEXCEPT;

/* Gives the bytes of the ligatures their weights. Only CS_SUCCEED or CS_FAIL. */
ZRV_PRIVATE CS_RETCODE comn__do_ligs(SO_1CLASS *so, LIGSTRUCT *ligs, CS_INT count) ZRV_NOEXCEPT;

/* Sees that every byte has weights, and finishes the lists. Only CS_SUCCEED or CS_FAIL. */
ZRV_PRIVATE CS_RETCODE comn__check_sort(SO_1CLASS *so, CS_BYTE *nextchar) ZRV_NOEXCEPT;

/* ---- values of installation files ----
 *
 * Each reads one value of the entry at hand. They return CS_SUCCEED; CS_FAIL at the end of the entry
 * and for a value that is refused; COM_INTL_ERROR when the reader fails, its status in ctxintlerr.
 * Unless a comment says otherwise the output is untouched after a failure.
 */

/* The first byte of the value. */
ZRV_PRIVATE CS_RETCODE comn__get_byteval(CsContext *context, struct intl_locfile *ifile,
                                         CS_BYTE *byteval) ZRV_NOEXCEPT;

/* The first two bytes, the first one high. */
ZRV_PRIVATE CS_RETCODE comn__get_shortval(CsContext *context, struct intl_locfile *ifile,
                                          CS_USHORT *shortval) ZRV_NOEXCEPT;

/* The first four bytes, the first one highest. */
ZRV_PRIVATE CS_RETCODE comn__get_longval(CsContext *context, struct intl_locfile *ifile,
                                         CS_UINT *longval) ZRV_NOEXCEPT;

/* "true" is 1 and "false" is 0; exactly these texts. */
ZRV_PRIVATE CS_RETCODE comn__get_boolval(CsContext *context, struct intl_locfile *ifile,
                                         CS_BOOL *boolval) ZRV_NOEXCEPT;

/*
 * A text of less than `maxlen` bytes, NUL-terminated.
 *
 * string    out  the text, `maxlen` bytes; null only passes the value
 * is_alnum  in   1: the text must begin with a letter (com_isalpha) and go on in letters, digits
 *                (com_isdigit) and "_". 0: any text. Anything else is fatal
 */
ZRV_PRIVATE CS_RETCODE comn__get_string(CsContext *context, struct intl_locfile *ifile,
                                        CS_CHAR *string, CS_BOOL is_alnum,
                                        CS_INT maxlen) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
