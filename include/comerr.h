/*
 * comerr.h - messages: from a number and a few parameters to the line that reaches an application.
 *
 * A message number has four bytes, from the top: layer, origin, severity, number. Their texts stand
 * in the file comnlib.loc of each language and are read when they are first needed, into a cache of
 * COM_ERR_CACHE_SIZE texts for each pair of language and character set. A line has four parts, with
 * ": " between them: what the first parameter says, the texts of layer and origin, the text of the
 * number with the further parameters in it. Where a file or a text is missing the line comes out all
 * the same, with a text that says so.
 *
 * Who has message files of its own works as this library does: a CS_ERRHAN with the locale and the
 * name of the file, com_err_init, and then com_err_msg, com_notrunc_errmsg and the like.
 *
 * A null pointer where none is allowed, and an argument that a comment calls fatal, is a
 * programmer's fault, as in comnlib.h: the function then returns CS_FAIL and has changed nothing.
 *
 * Nothing here takes a lock: who shares a locale between threads serialises the calls.
 */
#ifndef ZRV_COMERR_H
#define ZRV_COMERR_H

#include "charset.h"
#include "comloc.h"

ZRV_BEGIN_DECLS

/* ---- sections and default messages ---- */

/* The sections of a message file, and their names in comnlib.loc. */
#define COM_ERRSEC_DEFAULTS 1 /* "comdefaults": what stands for a text that is missing */
#define COM_ERRSEC_LAYER 2    /* "comlayer" */
#define COM_ERRSEC_ORIGIN 3   /* "comorigin" */
#define COM_ERRSEC_API 4      /* "comapierror": the texts of numbers */

/* A section: its number and its name in the file. */
typedef struct _cserrsection {
  CS_INT errtag;
  const CS_CHAR *errstr;
} CS_ERRSECTION;

/* Where a text stands: section and number. */
typedef struct _cserridx {
  CS_INT errtag;
  CS_MSGNUM errnum;
} CS_ERRIDX;

/* The sections of comnlib.loc, the texts that com_errinit loads, and the last resort where even those
 * cannot be had: the texts of the numbers 1 to 4 of COM_ERRSEC_DEFAULTS, and a row that ends them. */
extern ZRV_PRIVATE const CS_ERRSECTION Comlocsections[4];
extern ZRV_PRIVATE const CS_ERRIDX Comdeferrs[4];
extern ZRV_PRIVATE const CS_STRINGS Msgfailures[5];

/* The origin whose texts are those of intl_errstr: the number is a negated status of the reader. */
#define COM_ERRORIGIN_INTL 5

/* A library that is opened at run time cannot be had; the parameter is the function that failed. */
#define COM_ERR_LOADLIB 17040906

/* ---- records ---- */

/* A message file in use: what ctxcomerrhan points at for comnlib.loc. */
typedef struct _cserrhan {
  CS_LOCALE *err_locale; /* its messageptr says language and character set */
  CS_CHAR *err_file;     /* the name of the file, owned */
} CS_ERRHAN;

/* The texts that are loaded at most for a language and a character set. */
#define COM_ERR_CACHE_SIZE 100

/* A text in the cache, in the character set of the locale. */
typedef struct _cserrorcache {
  CS_CHAR errcode[8]; /* the SQL state, NUL-terminated */
  CS_MSGNUM errnum;
  CS_CHAR *errmsg;                    /* owned, NUL-terminated */
  struct _cserrseccache *errseccache; /* the section that it belongs to */
  struct _cserrorcache *histnext;     /* the text that was loaded before it */
  struct _cserrorcache *next;         /* the next text of the section */
} CsErrorCache;

/* A section of a file that was loaded. */
typedef struct _cserrseccache {
  CS_INT errtag;
  CS_CHAR *errstr; /* its name, owned */
  CsErrorCache *errcache;
  struct _cserrseccache *next;
} CsErrSecCache;

/* A message file that was loaded. */
typedef struct _cserrfilecache {
  CS_CHAR *errfilename; /* owned */
  CsErrSecCache *errsecs;
  struct _cserrfilecache *next;
} CsErrFileCache;

/* The messages of a language in a character set. All contexts share them. */
typedef struct _csmessage {
  CsOID *lang_oid;
  CsOID *charset_oid;
  CsErrFileCache *locfilecache;
  CsErrorCache *locerrhist; /* the texts of all files, the newest first */
  CS_INT locerrcnt;         /* their number */
  CS_THRDRES *msgmtx;       /* not used here */
  struct _csmessage *messagenext;
} CS_MESSAGE;

/* ---- parameters ---- */

/* What a parameter is. */
#define COM_EP_STRING 0 /* a NUL-terminated string */
#define COM_EP_INT 8    /* it points at a CS_INT */

/* The parameters of a message: the first, always a string, begins the line; the others go into its
 * text. Nothing is copied: what they point at must live until the line is built. */
typedef struct _cserrparams {
  CS_INT ep_numparams;      /* 1 to 3 */
  const CS_CHAR *ep_format; /* the second and the third, as intl_strbuild takes them */
  CS_INT ep_type1;
  CS_VOID *ep_param1;
  CS_INT ep_type2;
  CS_VOID *ep_param2;
  CS_INT ep_type3;
  CS_VOID *ep_param3;
} CsErrParams;

/* Fill the record for so many strings (s) and integers (d), which are the parameters in that order.
 * The whole record is cleared first. A null pointer is fatal. */
ZRV_API void com_ep_s(CsErrParams *ep, CS_CHAR *str1) ZRV_NOEXCEPT;
ZRV_API void com_ep_sd(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1) ZRV_NOEXCEPT;
ZRV_API void com_ep_ss(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2) ZRV_NOEXCEPT;
ZRV_API void com_ep_sss(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2, CS_CHAR *str3) ZRV_NOEXCEPT;
ZRV_API void com_ep_sds(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1, CS_CHAR *str2) ZRV_NOEXCEPT;
ZRV_API void com_ep_sdd(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1, CS_INT *int2) ZRV_NOEXCEPT;
ZRV_API void com_ep_ssd(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2, CS_INT *int1) ZRV_NOEXCEPT;

/* The parts of a line, each with its length in bytes. */
typedef struct _cserrstrings {
  CS_CHAR *es_api;
  CS_INT es_apilen;
  CS_CHAR *es_layer;
  CS_INT es_layerlen;
  CS_CHAR *es_origin;
  CS_INT es_origlen;
  CS_CHAR *es_err;
  CS_INT es_errlen;
  CS_BOOL es_err_alloc; /* es_err is to be released */
  CS_CHAR *es_oserr;    /* these two are not used */
  CS_INT es_oserrlen;
} CsErrStrings;

/* ---- setting up ---- */

/*
 * Sets ctxcomerrhan up for comnlib.loc in the language of ctxlocale, which must not be null, and
 * loads the default texts. A handle that is there is only moved to ctxlocale.
 *
 * Returns CS_MEM_ERROR without memory for the handle; otherwise as com_err_init, and the handle then
 * stands and is of use, whatever the result: com_errdrop releases it.
 */
ZRV_API CS_RETCODE com_errinit(CsContext *context) ZRV_NOEXCEPT;

/* Releases ctxcomerrhan, if there is one, and clears it. The texts stay with the locale. Returns
 * CS_SUCCEED. */
ZRV_API CS_RETCODE com_errdrop(CsContext *context) ZRV_NOEXCEPT;

/*
 * Opens a message file for look-ups and loads texts of it.
 *
 * errhan       in   locale and file; the locale's messageptr must not be null, nor its locmessage
 *                   and langname
 * sections     in   the sections that the file must have
 * numsections  in   their number
 * deferrors    in   the texts to load, those of all sections together; null for none
 * numerrors    in   their number, up to 100; below 1 for none
 *
 * A text that is loaded already is not loaded again, one that the file does not have is no failure.
 * Sections are counted as they come: one that stands in the file twice counts twice, and the file may
 * then lack another one.
 *
 * Returns CS_SUCCEED; CS_FAIL for a null argument but `deferrors`, for more than 100 texts, when the
 * file has fewer sections than wanted and when an entry that is wanted has no value; CS_MEM_ERROR;
 * what comn__open_msgfile returns when it fails; COM_INTL_ERROR for a failure of the reader, whose
 * status is in ctxintlerr; and what comn__convt_from_utf8 returns when it fails. On a failure all
 * caches are as they were.
 */
ZRV_API CS_RETCODE com_err_init(CsContext *context, CS_ERRHAN *errhan, CS_ERRSECTION *sections,
                                CS_INT numsections, CS_ERRIDX *deferrors,
                                CS_INT numerrors) ZRV_NOEXCEPT;

/* ---- texts ---- */

/*
 * Gets a text, from the cache or else from the file.
 *
 * errhan  in   a file that com_err_init has loaded
 * erridx  in   section and number
 * errstr  out  the text, NUL-terminated. It stands in the cache: the next call that loads a text can
 *              release it. Unchanged on failure
 *
 * Returns CS_SUCCEED; CS_FAIL for a null argument, when file or section are not loaded and when the
 * text cannot be loaded; when the file cannot be opened again, what comn__open_msgfile returns;
 * COM_INTL_ERROR when closing it failed.
 */
ZRV_API CS_RETCODE com_err_msg(CsContext *context, CS_ERRHAN *errhan, CS_ERRIDX *erridx,
                               CS_CHAR **errstr) ZRV_NOEXCEPT;

/*
 * Gets the SQL state of a text.
 *
 * errnum, errsection  in   number and section
 * buffer              out  the state, NULs behind it up to `buflen`
 * buflen              in   bytes at `buffer`
 * outlen              out  the length of the state, also when it does not fit
 *
 * Returns CS_SUCCEED, CS_FAIL when the state is longer than `buflen`, or as com_err_msg. The outputs
 * are unchanged but for what is told.
 */
ZRV_API CS_RETCODE com_err_sqlstate(CsContext *context, CS_ERRHAN *errhan, CS_MSGNUM errnum,
                                    CS_INT errsection, CS_CHAR *buffer, CS_INT buflen,
                                    CS_INT *outlen) ZRV_NOEXCEPT;

/* ---- lines ---- */

/*
 * Builds the line of a message.
 *
 * errhan      in   where its texts are; null gives a line with the texts of Msgfailures
 * errnum      in   the message number
 * ep          in   its parameters: 1 to 3, the first a string and not null, else fatal
 * errstr      in   a text to take instead of that of the number, as it stands; null for none
 * errlen      in   its length in bytes
 * errsection  in   the section of the number's text
 * truncate    in   1: a line that does not fit is cut; 0: it is refused; any other value is fatal
 * buf         out  the line, without a terminator
 * maxlen      in   bytes at `buf`
 * buflen      out  the bytes written, or the length of a line that was refused
 *
 * The text of a number gets the parameters behind the first one as intl_strbuild puts them. Without
 * memory for that, and when they take more than 511 bytes beyond the text, it is shown as it stands.
 * With the origin COM_ERRORIGIN_INTL only one parameter is allowed, else fatal.
 *
 * Returns CS_SUCCEED, or CS_FAIL, `buf` unchanged, for a line that was refused.
 */
ZRV_API CS_RETCODE com_notrunc_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum,
                                      CsErrParams *ep, CS_CHAR *errstr, CS_INT errlen,
                                      CS_INT errsection, CS_BOOL truncate, CS_CHAR *buf,
                                      CS_INT maxlen, CS_INT *buflen) ZRV_NOEXCEPT;

/* com_notrunc_errmsg with `truncate` 1. */
ZRV_API void com_build_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                              CS_CHAR *errstr, CS_INT errlen, CS_INT errsection, CS_CHAR *buf,
                              CS_INT maxlen, CS_INT *buflen) ZRV_NOEXCEPT;

/*
 * Reports a message to the context's error callback.
 *
 * errnum  in  the message number; its text is that of COM_ERRSEC_API
 * ep      in  as com_notrunc_errmsg has it
 *
 * The callback gets a CS_CLIENTMSG, which lives until it returns: the line, cut to 1,023 bytes; the
 * severity; the SQL state, "ZZZZZ" where there is none; operating-system fields that are empty, a
 * status of 0. Returns what the callback returns; CS_FAIL, nothing built, when ctxerrfunc is null.
 */
ZRV_PRIVATE CS_RETCODE com__error(CsContext *ctx, CS_MSGNUM errnum, CsErrParams *ep) ZRV_NOEXCEPT;

/* ---- the life of message records ---- */

/* Sets locmessage of a cache, whose locchardesc must be set, to the record for a language and the
 * cache's character set: the one of cmg_message, or a new one. CS_SUCCEED, or CS_MEM_ERROR with the
 * cache unchanged. */
ZRV_PRIVATE CS_RETCODE comn__intl_load_message(CsContext *context, CsOID *oid,
                                               CsLocCache *lcache) ZRV_NOEXCEPT;

/* Releases a record, which must be on no list, with all its texts. The context is not looked at.
 * Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE comn__message_drop(CsContext *context, CS_MESSAGE *message) ZRV_NOEXCEPT;

/* Releases all records of cmg_message and clears it. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_intl_message_drop(CsContext *context) ZRV_NOEXCEPT;

/* Releases a list of files with their sections and texts. A text that names another section than the
 * one that it hangs under is fatal. Returns CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE com__errfile_cache_drop(CsErrFileCache *files) ZRV_NOEXCEPT;

/* ---- steps of the above ---- */

/* Reads the wanted sections of a file that has just been opened into its record, and their texts with
 * them. As com_err_init, but for what is undone. */
ZRV_PRIVATE CS_RETCODE com__err_load_sections(CsContext *context, CS_ERRHAN *errhan,
                                              struct intl_locfile *ifile, CsErrFileCache *file,
                                              CS_ERRSECTION *sections, CS_INT numsections,
                                              CS_ERRIDX *deferrors, CS_INT numerrors) ZRV_NOEXCEPT;

/* Reads the wanted texts of the section that `ifile` has just begun. CS_FAIL, too, when `numerrors`
 * is outside 1 to 100. */
ZRV_PRIVATE CS_RETCODE com__err_load_errors(CsContext *context, CS_ERRHAN *errhan,
                                            struct intl_locfile *ifile, CsErrSecCache *section,
                                            CS_ERRIDX *errors, CS_INT numerrors) ZRV_NOEXCEPT;

/* Adds a text, in UTF-8, to a section, past the oldest one when the cache is full. CS_SUCCEED,
 * CS_MEM_ERROR, or what comn__convt_from_utf8 returns. */
ZRV_PRIVATE CS_RETCODE com__update_cache(CsContext *context, CS_ERRHAN *errhan,
                                         CsErrSecCache *section, CS_MSGNUM errnum, CS_CHAR *state,
                                         CS_INT statelen, CS_CHAR *text,
                                         CS_INT textlen) ZRV_NOEXCEPT;

/* The text of a number in a section, or null. */
ZRV_PRIVATE CsErrorCache *com__scan_cache(CsErrSecCache *section, CS_MSGNUM errnum) ZRV_NOEXCEPT;

/* com_err_msg for the whole entry. */
ZRV_PRIVATE CS_RETCODE com__err_getcache(CsContext *context, CS_ERRHAN *errhan, CS_INT errsection,
                                         CS_MSGNUM errnum, CsErrorCache **entry) ZRV_NOEXCEPT;

/* Resolves the escapes of a text, NUL-terminated, into `dest`, which has room for as many bytes and
 * may be `src`: backslash with n, r, t, b, f is the control character, with a double quote the
 * quote, and with anything else, also at the end, one backslash: what stands behind it is lost.
 * Returns the length of the result, which is NUL-terminated. */
ZRV_PRIVATE CS_INT com__err_filterescape(const CS_CHAR *src, CS_CHAR *dest) ZRV_NOEXCEPT;

/* A text with its length: that of a number in a section, or of `fallback` in COM_ERRSEC_DEFAULTS, or
 * of Msgfailures. A fallback that Msgfailures does not have is fatal. */
ZRV_PRIVATE CS_RETCODE com__get_errstr(CsContext *context, CS_ERRHAN *errhan, CS_INT errsection,
                                       CS_MSGNUM errnum, CS_MSGNUM fallback, CS_CHAR **errstr,
                                       CS_INT *errlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__get_failerr(CsContext *context, CS_ERRHAN *errhan, CS_MSGNUM fallback,
                                        CS_CHAR **errstr) ZRV_NOEXCEPT;

/* The text of a number with its parameters, into es_err, es_errlen and es_err_alloc. */
ZRV_PRIVATE CS_RETCODE com__get_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum,
                                       CsErrParams *ep, CS_INT errsection,
                                       CsErrStrings *strings) ZRV_NOEXCEPT;

/* Puts parameters into the text at es_err: a new block, or the text as it stands when that fails. */
ZRV_PRIVATE CS_RETCODE com__call_strbuild(CsErrParams *ep, CsErrStrings *strings) ZRV_NOEXCEPT;

/* Joins the parts of a line in `buf`, cut to `maxlen` bytes. Returns the bytes written. */
ZRV_PRIVATE CS_INT com__fill_climsg(const CsErrStrings *strings, CS_CHAR *buf,
                                    CS_INT maxlen) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
