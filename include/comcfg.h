/*
 * comcfg.h - configuration files: named sections of entries with values.
 *
 * A handle answers what values an entry of a section has. What sets these files apart from others of
 * their kind:
 *
 *   - A section may name earlier ones, "include = name": what it lacks is looked for in those.
 *   - The section COM_CFG_DEFAULT answers for every section that the file does not have.
 *   - An entry that is there more than once has several values, which a cursor walks.
 *
 * docs/files.md has the syntax, rule by rule. A section with an error is left out as a whole, and a
 * message says where the error is; the sections around it stand.
 *
 * Messages go to the error callback of the context of the handle at hand, while a file is loaded to
 * that of its newest handle, with the numbers COM_CFGERR_.
 *
 * A null pointer where none is allowed, and an argument that a comment calls fatal, is a programmer's
 * fault, as in comnlib.h: the function then returns CS_FAIL and has changed nothing.
 *
 * Nothing here takes a lock: callers serialise what touches one file, and comn_init_cfg and
 * comn_drop_cfg altogether.
 */
#ifndef ZRV_COMCFG_H
#define ZRV_COMCFG_H

#include "csintrn.h"
#include "cspublic.h"

ZRV_BEGIN_DECLS

struct char_attrib;
struct intl_iocs;

/* The first context version with configuration files. */
#define COM_CFG_MIN_CTXVERSION 114

/* The longest name of a file, in bytes. */
#define COM_CFG_MAXNAME 512

/* The section that answers for those that do not exist. */
#define COM_CFG_DEFAULT "NAMED_APP_DEFAULT"

/* Options of comn_drop_cfg. */
#define COM_CFG_DROP_NORMAL CS_UNUSED
#define COM_CFG_DROP_FORCE 300

/* Numbers of messages, and the parameters behind the name of the function. */
#define COM_CFGERR_INCLUDE 17039367 /* an include of an unknown section or of itself: its name */
#define COM_CFGERR_SYNTAX                                                                          \
  17039368 /* the file's name comes first; then line and text of the token */
#define COM_CFGERR_FORCED 17039369 /* a forced drop, and other handles were open */
#define COM_CFGERR_LIST 17040897   /* a list operation failed unexpectedly */
#define COM_CFGERR_MEMORY 17040898 /* out of memory */
#define COM_CFGERR_OPEN 17040899 /* the file cannot be opened or not be read to its end: its name */
#define COM_CFGERR_HANDLE 17040900  /* the drop of a handle without a file */
#define COM_CFGERR_NAME 17040901    /* a file name longer than COM_CFG_MAXNAME: the name */
#define COM_CFGERR_CHAR 17040902    /* the file ends within a character; only the file's name */
#define COM_CFGERR_SECTION 17040903 /* no such section, and no COM_CFG_DEFAULT: its name */

/* ---- files ---- */

/*
 * Opens a configuration file.
 *
 * ctx             in   a context of version COM_CFG_MIN_CTXVERSION or later, else fatal. The handle
 *                      comes from ctxmalloc, which must not be null, and goes through comn_free, so the
 *                      two must agree; the rest comes from comn_malloc
 * configname      in   the path; not looked at for the default file and for a length that is too short
 * confignamelen   in   its length in bytes; CS_LEN_NULLTERM for a NUL-terminated one; CS_UNUSED for the
 *                      default file, "config/ncl.cfg" below the directory that ZARVEK names, which
 *                      must be set to less than 256 bytes, else fatal; so is no memory for a copy of it
 * cfg             out  the handle, set on success only
 *
 * A file that is on the chain of the process-wide record under the very same name is shared, not read
 * again. Do not count on it: the call subscribes to that record for good, and every subscription but
 * the first of the process clears the chain. So as a rule each handle has a copy of the file's
 * contents to itself.
 *
 * Returns CS_SUCCEED, also for a file in which sections had to be left out; CS_FAIL when the name is
 * too short or too long, the file cannot be opened, read or parsed to its end, and without memory.
 * Nothing is left then but the subscription.
 */
ZRV_API CS_RETCODE comn_init_cfg(CS_CONTEXT *ctx, CS_CHAR *configname, CS_INT confignamelen,
                                 CS_CONFIG **cfg) ZRV_NOEXCEPT;

/*
 * Closes a handle, and releases the file with its last one.
 *
 * option  in  COM_CFG_DROP_NORMAL; COM_CFG_DROP_FORCE: the file goes even when other handles are open,
 *             which a message tells. Those have no file from then on. Another one is fatal
 *
 * Returns CS_SUCCEED; CS_FAIL, with a message, for a handle without a file, which is released all the
 * same.
 */
ZRV_API CS_RETCODE comn_drop_cfg(CS_CONFIG *cfg, CS_INT option) ZRV_NOEXCEPT;

/* Releases the files of a chain, whatever handles are open on them: those have no file from then on.
 * The end of the process-wide record, com_appglobal_drop, calls it. Null is no chain. Returns
 * CS_SUCCEED. */
ZRV_API CS_RETCODE comn_globdrop_cfg(CS_VOID *cfgchain) ZRV_NOEXCEPT;

/* ---- values ---- */

/*
 * Looks a value up.
 *
 * section     in      the name of the section; null only with the length 0
 * sectionlen  in      its length in bytes, or CS_LEN_NULLTERM
 * entry       in      the name of the entry; null only with the length 0
 * entrylen    in      its length in bytes, or CS_LEN_NULLTERM
 * next        in,out  null for the first value alone. Else the address of a cursor, in which null
 *                     begins a walk over all values; after CS_SUCCEED and CS_CONV_TRUNCATED it stands
 *                     at the value, and the next call, with the same section and entry, goes on. In all
 *                     other cases it is null again. Release one that is not walked to its end with
 *                     comn_nextdrop_cfg
 * value       out     the value, and a NUL where there is room
 * valuelen    in      bytes at `value`; a negative one counts as 0
 * outlen      out     the length of the value, also when it is cut; may be null
 *
 * A walk gives the values of the section's own entry first, then those of each section that it
 * includes, in their order and each with its own includes. When it comes out of sections that are
 * included in others it goes on with the next include of the outermost one, and what the sections in
 * between include besides is passed over: such a walk does not see every value, and its cursors for the
 * sections in between stay in memory until the file is released.
 *
 * Returns CS_SUCCEED; CS_CONV_TRUNCATED: `valuelen` bytes of a longer value were stored; CS_END_DATA:
 * no value, or none left; CS_FAIL: a handle without a file, no such section, which a message tells
 * unless its length is 0, no memory, or sections that include one another (an earlier section of the
 * same name makes that possible). `value` and `outlen` are unchanged but for the first two.
 */
ZRV_API CS_RETCODE comn_get_cfg(CS_CONFIG *cfg, CS_CHAR *section, CS_INT sectionlen, CS_CHAR *entry,
                                CS_INT entrylen, CS_VOID **next, CS_CHAR *value, CS_INT valuelen,
                                CS_INT *outlen) ZRV_NOEXCEPT;

/* Releases a cursor of comn_get_cfg; null is allowed. Returns CS_SUCCEED; CS_FAIL for a handle without
 * a file, whose cursors went with it. */
ZRV_API CS_RETCODE comn_nextdrop_cfg(CS_CONFIG *cfg, CS_VOID *next) ZRV_NOEXCEPT;

/* ---- records ---- */

/* A client's handle. */
struct _csconfig {
  struct _csconfig *next; /* ring of all handles of the file */
  struct _csconfig *prev;
  CS_CONTEXT *cfg_ctx;
  CS_CFGCHAIN *cfg_chain; /* null: the file was released under the handle */
};

/* A file that is open. */
struct _cscfgchain {
  struct _cscfgchain *next; /* the chain of ag_cfgchain, newest first */
  struct _cscfgchain *prev;
  CS_INT cfgc_refcount;   /* open handles */
  CsConfig *cfgc_handles; /* the newest one */
  CS_VOID *cfgc_data;     /* the CfgData */
  CS_THRDRES *cfgc_mtx;   /* null */
};

typedef struct _cfgparse CfgParseInfo;

/* What was read from a file. All below is in the pool, but for the lists. */
typedef struct _cfgdata {
  CS_CHAR *cfgname; /* NUL-terminated */
  CS_INT cfgnamelen;
  CS_VOID *lmctx;          /* the context of all lists */
  CS_VOID *sections;       /* LM_CHASH of CfgSection by name */
  CS_VOID *mpool;          /* the pool */
  CS_VOID *mpoolhead;      /* the storage of its records */
  CS_THRDRES *mm_mtx;      /* null */
  CfgParseInfo *parseinfo; /* while the file is parsed */
} CfgData;

/* Names and values are not NUL-terminated. */
typedef struct _cfgsection {
  CS_CHAR *sectname;
  CS_INT sectnamelen;
  CS_VOID *includes; /* LM_DLINK of CfgInclude, in the order of the file */
  CS_VOID *entries;  /* LM_CHASH of CfgEntry by name */
} CfgSection;

typedef struct _cfginclude {
  CS_CHAR *sectname;
  CS_INT sectnamelen;
} CfgInclude;

typedef struct _cfgentry {
  CS_CHAR *entryname;
  CS_INT entrynamelen;
  CS_VOID *values; /* LM_DLINK of CfgValue, in the order of the file */
} CfgEntry;

typedef struct _cfgvalue {
  CS_CHAR *value;
  CS_INT valuelen;
} CfgValue;

/* The cursor of a walk: one for the section that was asked for and one for each include on the way. */
typedef struct _cfgnext {
  CfgSection *section;
  CfgEntry *entry; /* null: the section has no such entry */
  CfgValue *value;
  CfgInclude *include;     /* null until the values are at their end */
  CS_VOID *key;            /* the place in the list of values, then in that of includes */
  struct _cfgnext *parent; /* where the walk goes on behind this section */
  struct _cfgnext *child;
} CfgNext;

/* ---- parsing ---- */

/* Tokens. */
#define CFG_END 0
#define CFG_INCLUDE 257
#define CFG_LINE_CONT 258
#define CFG_EQUALS 259
#define CFG_ESC_QUOTE 260
#define CFG_IDENT 261
#define CFG_LBRACKET 262
#define CFG_NEWLINE 263
#define CFG_RBRACKET 264
#define CFG_STRING_VALUE 265
#define CFG_STRING_END 266
#define CFG_STRING_START 267
#define CFG_UNKNOWN 268
#define CFG_VALUE 269
#define CFG_BLANK 270

/* A token: bytes of the file as they are. */
typedef struct _cfgtoken {
  CS_INT buflen;            /* bytes */
  struct _cfgtoken *next;   /* the token that was made before it */
  struct _cfgtoken *catted; /* the token that is joined to it */
  CS_INT offset;            /* in `buffer` */
} CfgTok;

/* The state of scanner and parser. A character that was delivered last is pending: its bytes stand in
 * the buffer behind `buflen`. Up to two characters that were delivered may lie behind the last token. */
struct _cfgparse {
  CS_INT line;            /* from 1 */
  struct intl_iocs *iocs; /* the open file */
  CS_INT
  last_char[2]; /* the characters delivered last, as the scanner sees them: pending, previous */
  CS_INT last_char_len[2]; /* their bytes in the file */
  CS_CHAR *buffer;         /* bytes of the file since the last compaction */
  CS_INT buflen;
  CS_INT maxbuflen;
  CS_INT tokenstart;        /* where the next token begins in `buffer` */
  CS_INT ascii_count;       /* characters delivered and not part of a token yet */
  struct char_attrib *attr; /* the character set */
  CfgTok *lasttok;          /* the newest token */
  CfgSection *cursect;      /* the section that is read */
  CS_BOOL section_ok;       /* 0: it has had an error */
  CfgTok *sparetoks;        /* tokens to be used again */
  CS_INT lastcode;          /* the code of the newest token, CFG_END before the first */
  CS_BOOL in_string;        /* the scanner is in a string */
  CS_BOOL ended;            /* the end of the input was delivered */
  CS_BOOL damaged;          /* the input ended before the file did */
  CS_BYTE shown[256];       /* of each byte that is a character of its own; 0 where not known yet */
  CS_BIGINT dropped;        /* bytes of the file in front of `buffer` */
};

/*
 * Loads a file into a new CfgData of the handle's chain record, which has none yet.
 *
 * cfg      in  the newest handle of the file
 * name     in  the path, not NUL-terminated
 * namelen  in  its length in bytes
 *
 * Returns CS_SUCCEED, or CS_FAIL, with a message, and cfgc_data is null then.
 */
ZRV_PRIVATE CS_RETCODE cfg___load_config(CS_CONFIG *cfg, CS_CHAR *name,
                                         CS_INT namelen) ZRV_NOEXCEPT;

/* Releases a CfgData with all that it has; parts may be missing. Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE cfg___drop_data(CfgData *data) ZRV_NOEXCEPT;

/* Opens the file of a CfgData and sets `parseinfo` up. CS_SUCCEED, or CS_FAIL with a message. What it
 * made goes with cfg__clean_parse. */
ZRV_PRIVATE CS_RETCODE cfg__init_parse(CS_CONFIG *cfg) ZRV_NOEXCEPT;

/* Closes the file and releases `parseinfo`. */
ZRV_PRIVATE void cfg__clean_parse(CS_CONFIG *cfg) ZRV_NOEXCEPT;

/* Parses the file of `parseinfo` to its end. CS_SUCCEED; CS_FAIL, with a message, when the parser could
 * not recover from an error, and without memory. */
ZRV_PRIVATE CS_RETCODE cfg__parse(CS_CONFIG *cfg) ZRV_NOEXCEPT;

/* The next character as the scanner sees it: 1 to 255, or CFG_END at the end of the input. */
ZRV_PRIVATE CS_INT cfg__getc(CS_CONFIG *cfg) ZRV_NOEXCEPT;

/* Reads the next token, which becomes `lasttok`, and its code. CS_SUCCEED, or CS_FAIL with a message
 * without memory. */
ZRV_PRIVATE CS_RETCODE cfg__nexttok(CS_CONFIG *cfg, CS_INT *code) ZRV_NOEXCEPT;

/* Makes a token of the next `count` characters of those that `ascii_count` counts. As cfg__nexttok. */
ZRV_PRIVATE CS_RETCODE cfg__marktok(CS_CONFIG *cfg, CS_INT count) ZRV_NOEXCEPT;

/* Releases all tokens but the newest, and cfg__clearbuf: drops the bytes in front of it. */
ZRV_PRIVATE void cfg__clearparse(CS_CONFIG *cfg) ZRV_NOEXCEPT;
ZRV_PRIVATE void cfg__clearbuf(CfgParseInfo *info) ZRV_NOEXCEPT;

/*
 * What the parser does with what it has read. A text is a token with those that are joined to it; null
 * is an empty one.
 *
 * cfg__add_section    begins a section, which hides an earlier one of the same name
 * cfg__add_entry      adds a value to an entry of the section
 * cfg__add_include    adds an include. One that is refused makes section_ok 0, with a message
 * cfg__check_section  ends the section: without section_ok it is removed
 *
 * All return CS_SUCCEED, or CS_FAIL with a message when a list or the pool fails.
 */
ZRV_PRIVATE CS_RETCODE cfg__add_section(CS_CONFIG *cfg, const CfgTok *name) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE cfg__add_entry(CS_CONFIG *cfg, const CfgTok *name,
                                      const CfgTok *value) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE cfg__add_include(CS_CONFIG *cfg, const CfgTok *name) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE cfg__check_section(CS_CONFIG *cfg) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
