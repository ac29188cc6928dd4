/*
 * comnlib.h - the exported functions that have no header of their own: the small services, checks
 * and trace, the process-wide record, the thread stubs, diagnostics, conversion dispatch, default
 * values, and the conversions.
 *
 * Lengths are bytes. A null pointer where none is allowed, and an argument that a comment calls
 * fatal, is a programmer's fault: the check writes file and line to standard error and raises
 * signal 6 (see com_toggle_abort). If the application catches the signal, the function returns
 * CS_FAIL (null, 0 or nothing, by its result type) and has changed nothing unless a comment says
 * otherwise.
 */
#ifndef ZRV_COMNLIB_H
#define ZRV_COMNLIB_H

#include <stddef.h>
#include <time.h>

#include "csintrn.h"
#include "cspublic.h"
#include "oldconv.h"

struct intl_locfile;

ZRV_BEGIN_DECLS

/* ---- small services ---- */

/* The value of an environment variable as a new string, to be released with comn_free. Null for a
 * null name, a variable that is unset or empty or has 256 bytes or more, and a failed allocation.
 */
ZRV_API CS_CHAR *com_getenv(char *envvar) ZRV_NOEXCEPT;

/*
 * Replaces an owned string.
 *
 * destp      in,out  the string, from comn_malloc, or null; resized with comn_realloc
 * destlenp   out     the length without the terminator
 * source     in      the new text, which must not lie in the old one; may hold NUL bytes when a
 *                    length is given
 * sourcelen  in      its length, or CS_LEN_NULLTERM for a NUL-terminated text
 *
 * Returns CS_SUCCEED; CS_FAIL, nothing changed, for a null argument or a length below 1;
 * CS_MEM_ERROR with `*destp` null, the old block given up to the caller's own copy of its pointer.
 */
ZRV_API CS_RETCODE com_setstring(CS_CHAR **destp, CS_INT *destlenp, CS_CHAR *source,
                                 CS_INT sourcelen) ZRV_NOEXCEPT;

/* Compares two byte strings: -1 or 1 at the first difference of unsigned bytes; on an equal prefix
 * the shorter one is the lower; 0 when equal. */
ZRV_API CS_INT com_memhilo(CS_BYTE *p1, CS_INT len1, CS_BYTE *p2, CS_INT len2) ZRV_NOEXCEPT;

/* Stores `c` into `n` bytes, one at a time, and returns `s`, which may be null when `n` is 0. The
 * stores survive optimisation: use it to wipe keys and passwords. */
ZRV_API CS_VOID *com_secure_memset(CS_VOID *s, CS_CHAR c, size_t n) ZRV_NOEXCEPT;

/* Compare text as unsigned bytes and return the first difference, 0 when equal. com_unsignstrcmp
 * and com_unsignstricmp stop at the end of the strings. com_unsignstrncmp and com_unsignstrnicmp
 * compare exactly `len` bytes and do not stop at a NUL: both buffers must hold `len` bytes. The `i`
 * forms fold A to Z to lower case, ASCII alone and whatever the locale of the application. */
ZRV_API CS_INT com_unsignstrcmp(unsigned char *str1, unsigned char *str2) ZRV_NOEXCEPT;
ZRV_API CS_INT com_unsignstrncmp(unsigned char *str1, unsigned char *str2, int len) ZRV_NOEXCEPT;
ZRV_API CS_INT com_unsignstricmp(unsigned char *str1, unsigned char *str2) ZRV_NOEXCEPT;
ZRV_API CS_INT com_unsignstrnicmp(unsigned char *str1, unsigned char *str2, int len) ZRV_NOEXCEPT;

/* Stores the version of the library, 16001, and 1. */
ZRV_API void com_version(CS_INT *p_version, CS_BOOL *p_is_debug) ZRV_NOEXCEPT;

/* A constant dotted version suffix that starts with a point. Static storage. */
ZRV_API CS_CHAR *com_get_driverversionsuffix(void) ZRV_NOEXCEPT;

/* Stores a 32-bit zero at `buffer` and 4 through `outlen` unless that is null. CS_SUCCEED; CS_FAIL,
 * nothing written, when `buflen` is below 4. */
ZRV_API CS_RETCODE comn_get_default_tid(CS_VOID *buffer, CS_INT buflen,
                                        CS_INT *outlen) ZRV_NOEXCEPT;

/* The address of a symbol in the default search order of the process, or null. */
ZRV_API void *com_dlsym(CS_CHAR *symbol) ZRV_NOEXCEPT;

/* ---- checks and trace ---- */

/* Prints a text to standard error and behind the file zrvinit.err of the current directory, for when
 * there are no messages yet. It counts as a format without arguments: "%%" is one sign, and anything
 * else is printed as it stands. A file that cannot be opened is passed over. */
ZRV_API void com_perr(CS_CHAR *err_string) ZRV_NOEXCEPT;

/* Sets the level of the return-code trace: 1 nothing, 2 what is not an ordinary result, 3
 * everything. Any other level is fatal and changes nothing. */
ZRV_API void com_errset(CS_INT level) ZRV_NOEXCEPT;

/* Returns `error`, after a line on the debug stream if the level asks for one: the code's name or
 * number, the last part of `file`, and `line`. */
ZRV_API CS_RETCODE com_errtrace(CS_RETCODE error, char *file, int line) ZRV_NOEXCEPT;

/* Reports a failed assertion on standard error, then ends the process (com_toggle_abort). */
ZRV_API void com_bomb(char *file, int line) ZRV_NOEXCEPT;

/* Reports a null pointer on standard error, then ends the process (com_toggle_abort). */
ZRV_API void com_raise_invalid_null_pointer(char *file, int line) ZRV_NOEXCEPT;

/* How a failed check ends the process: 1 closes standard error and calls abort; any other value,
 * the default, raises signal 6, which an application may catch. */
ZRV_API void com_toggle_abort(CS_INT value) ZRV_NOEXCEPT;

/* ---- the process-wide record ---- */

/*
 * Takes a reference to a process-wide record.
 *
 * appglobal  out  the record
 * thread     in   thread callbacks, kept by the first reference; may be null
 * flags      in   COM_APPGLOBAL_STATIC selects the one static record; without it a new record is
 *                 allocated
 *
 * Every reference but the first clears ag_cfgchain and ignores `thread`. Returns CS_SUCCEED, or
 * CS_MEM_ERROR with `*appglobal` unchanged. A negative reference count is fatal.
 */
ZRV_API CS_RETCODE com_appglobal_alloc(CsAppGlobal **appglobal, CS_THREAD *thread,
                                       CS_INT flags) ZRV_NOEXCEPT;

/* Gives a reference back. The last one releases the configuration chain and clears the record, and
 * frees it when `flags` lacks COM_APPGLOBAL_STATIC (never the static one). Returns CS_SUCCEED.
 * Fatal, CS_FAIL: more drops than references, COM_APPGLOBAL_STATIC with another record than the
 * static one, a subscriber that is left at the last drop (the record then keeps its contents). The
 * count has fallen in each case.
 */
ZRV_API CS_RETCODE com_appglobal_drop(CsAppGlobal *appglobal, CS_INT flags) ZRV_NOEXCEPT;

/* ---- once flag and aligned memory ---- */

/* A flag for ncl_call_once: initialise it to NCL_ONCE_INIT. A plain integer, for one thread. */
typedef int ncl_once_flag;
#define NCL_ONCE_INIT 1

/* Calls `func` if `*flag` is 1, and sets the flag to 0 first. Any other value does nothing, and
 * `func` may then be null. */
ZRV_API void ncl_call_once(ncl_once_flag *flag, void (*func)(void)) ZRV_NOEXCEPT;

/* `size` bytes aligned to `alignment`, a power of two and a multiple of the pointer size; null on
 * failure. Release with ncl_aligned_free. */
ZRV_API void *ncl_aligned_alloc(size_t alignment, size_t size) ZRV_NOEXCEPT;
ZRV_API void ncl_aligned_free(void *block) ZRV_NOEXCEPT;

/*
 * ---- thread stubs ----
 *
 * This library is the non-threaded variant: every thread primitive is a stub with a fixed answer,
 * so that code above can call mutexes and events whatever the build.
 */

/* Always CS_UNUSED (-99999). */
ZRV_API CS_THRDID comn_threadid(void) ZRV_NOEXCEPT;
/* The process id. */
ZRV_API CS_THRDID comn_thread_id(void) ZRV_NOEXCEPT;
/* Stores CS_UNUSED at `buffer` if it is not null and `buflen` is at least 4, and 4 through `outlen`
 * unless that is null. CS_SUCCEED. */
ZRV_API CS_RETCODE comn_get_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;
/* 1 if the two ids are equal, else 0. */
ZRV_API CS_BOOL comn_thread_equal(CS_INT tid1, CS_INT tid2) ZRV_NOEXCEPT;

/* Store null and return CS_SUCCEED. */
ZRV_API CS_RETCODE comn_create_mutex(CS_VOID **mutex) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_create_event(CS_VOID **event) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_create_sem(CS_VOID **sem) ZRV_NOEXCEPT;

/* Return CS_SUCCEED at once; the argument is not looked at. */
ZRV_API CS_RETCODE comn_delete_mutex(CS_VOID *mutex) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_take_mutex(CS_VOID *mutex) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_try_mutex(CS_VOID *mutex) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_release_mutex(CS_VOID *mutex) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_delete_event(CS_VOID *cond) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_reset_event(CS_VOID *cond) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_signal_event(CS_VOID *cond) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_waitfor_event(CS_VOID *cond, CS_INT millisecs) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_delete_sem(CS_VOID *sem) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_release_sem(CS_VOID *sem, CS_INT number) ZRV_NOEXCEPT;

/* Store null (the first only) and return CS_SUCCEED. The routine is never run. */
ZRV_API CS_RETCODE comn_create_thread(CS_VOID **thread, CS_VOID *startRoutine,
                                      CS_VOID *arg) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_create_thread_no_alloc(CS_VOID *thread, CS_VOID *startRoutine,
                                               CS_VOID *arg) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_join_thread(CS_VOID *threadp) ZRV_NOEXCEPT;

/* Do nothing. */
ZRV_API void comn_yield(void) ZRV_NOEXCEPT;
ZRV_API void comn_lock_global(void) ZRV_NOEXCEPT;
ZRV_API void comn_unlock_global(void) ZRV_NOEXCEPT;

/* Allocates a cell that holds one pointer, cleared. CS_SUCCEED, also when the allocation failed and
 * `*keyp` is null. */
ZRV_API CS_RETCODE comn_create_key(CS_VOID **keyp) ZRV_NOEXCEPT;
/* Releases the cell; null is allowed. CS_SUCCEED. */
ZRV_API CS_RETCODE comn_drop_key(CS_VOID *key) ZRV_NOEXCEPT;
/* The pointer in the cell. */
ZRV_API CS_VOID *comn_get_threaduserdata(CS_VOID *key) ZRV_NOEXCEPT;
/* Stores a pointer, which is not owned, in the cell. CS_SUCCEED. */
ZRV_API CS_RETCODE comn_set_threaduserdata(CS_VOID *key, CS_VOID *dataptr) ZRV_NOEXCEPT;

/* ---- diagnostics ---- */

/* Writes `msg` to standard error as an internal error and calls exit(-1). Null is a null-pointer
 * report; nothing else happens if the application catches its signal. */
ZRV_API void com_panic(char *msg) ZRV_NOEXCEPT;

/* Checked copy and append. `size` is the full size of `dest`, terminator included. Null arguments
 * (an assertion report, not that of a null pointer), a size below 1 and a result that does not fit
 * are fatal, CS_FAIL, `dest` unchanged; else CS_SUCCEED. */
ZRV_API CS_RETCODE com_copstr(char *dest, char *src, int size) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE com_catstr(char *dest, char *src, int size) ZRV_NOEXCEPT;

/*
 * Directs debug output to a file, or back to standard output.
 *
 * context   in  not read
 * filename  in  the file, opened for appending; null closes the debug file
 * filenlen  in  its length in bytes; negative (CS_LEN_NULLTERM) for a NUL-terminated name; 0 closes
 *               the debug file
 *
 * Returns CS_SUCCEED, or CS_FAIL when the file cannot be opened or its name is too long: the debug
 * stream is then left as it was. A file opened before is closed.
 */
ZRV_API CS_RETCODE comn_debug_setfile(CS_CONTEXT *context, CS_CHAR *filename,
                                      CS_INT filenlen) ZRV_NOEXCEPT;

/* Prints to the debug stream as printf does, flushes it, and returns 1. */
ZRV_API CS_RETCODE comn_debug_print(const char *fmtstr, ...) ZRV_NOEXCEPT
    __attribute__((format(printf, 1, 2)));

/*
 * Prints to the debug stream with a small format language of its own, flushes it, and returns 1.
 *
 * fmtstr  in  the format; not null
 * ap      in  the arguments, an array of intptr_t words; may be null for a format without any
 *
 * %d, %x and %X print the next word as an int, %ld and %lx (and a bare %l) as a long, %c as one
 * byte, %s as a string ("(null)" for null); %% is a percent sign. A specification runs up to one of
 * the letters c, d, l, s, x, X and consumes one word. What printf knows counts in it: the flags
 * (with the apostrophe), width and precision, and the lengths h, hh, z, j and t before d, x and X;
 * all else (an asterisk, a dollar sign, an n, any other letter) is passed over.
 * A specification that ends without its letter, and one without a word because `ap` is null, prints
 * "illegal format specification" and a line feed.
 */
ZRV_API CS_RETCODE comn_debug_vprint(CS_CHAR *fmtstr, CS_VOID *ap) ZRV_NOEXCEPT;

/* Receives one line of a stack print, `len` bytes without a line feed. Returning 0 ends the walk.
 */
typedef CS_RETCODE (*COMN_STACK_FUNC)(CS_CHAR *text, CS_INT len);

/*
 * Prints a stack: a line with the frame pointer, then a line for each frame.
 *
 * tid    in  not read
 * fp     in  the frame pointer to start from; null means the caller's
 * depth  in  the most frames to print; 0 prints nothing at all
 * funcp  in  takes each line; null means a writer to standard error
 *
 * Frames that cannot be read end the walk; unmapped memory is never touched. Always CS_SUCCEED.
 */
ZRV_API CS_RETCODE comn_dbg_stack(CS_VOID *tid, CS_VOID *fp, CS_INT depth,
                                  COMN_STACK_FUNC funcp) ZRV_NOEXCEPT;

/*
 * ---- installation paths ----
 *
 * The builders make the path of an installation file under the home directory (intl_home) and look
 * at nothing in the file system. `pathname` is a buffer of `pathsize` bytes; parts are joined with
 * "/". All return
 *
 *   CS_SUCCEED      the path is in the buffer, NUL-terminated
 *   CS_FAIL         it does not fit; so for an environment variable that cannot be read whole
 *   COM_INTL_ERROR  the home directory cannot be had or does not fit; its negative status is in
 *                   ctxintlerr if there is a context
 *
 * and leave the buffer undefined unless they succeed. A null `pathname` is fatal, and so is a home
 * directory that is longer than the buffer it was given. Where "within" the size is allowed, a path
 * of exactly `pathsize` bytes succeeds and has lost its last character to the NUL; "below" means
 * that the path and its NUL fit. A null context is allowed.
 */

/* Home, the value of ZARVEK_NCL (below 512 bytes) if `ncl` is 1 and it is set, `directory` and
 * `filename` where they are not null; each below the size. The home directory may take the size
 * less one, its NUL counted in: one byte less than the other functions leave it. The buffer is
 * cleared first. */
ZRV_API CS_RETCODE com_path_anyfile(CS_CHAR *pathname, CS_INT pathsize, CS_CHAR *directory,
                                    CS_CHAR *filename, CS_INT ncl) ZRV_NOEXCEPT;

/* The value of ZRVNCL_IFILE if it is set, else home and "interfaces", within the size. */
ZRV_API CS_RETCODE com_path_ifile(CS_CONTEXT *context, CS_CHAR *pathname,
                                  CS_INT pathsize) ZRV_NOEXCEPT;

/* Home, the value of ZARVEK_NCL (below 513 bytes) if `ncl` is not 0 and it is set, "config",
 * `cfgfile` (null is fatal); within the size. */
ZRV_API CS_RETCODE com_path_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile, CS_CHAR *pathname,
                                    CS_INT pathsize, CS_INT ncl) ZRV_NOEXCEPT;

/* Home, "locales", `lang` if it is not null, `charset` if neither is null, `locfile` (null is
 * fatal); within the size. */
ZRV_PRIVATE CS_RETCODE com__path_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset,
                                         CS_CHAR *locfile, CS_CHAR *pathname,
                                         CS_INT pathsize) ZRV_NOEXCEPT;

/* Home, "locales", "message", `lang`, within the size, and `msgfile`, below it. Both names are
 * NUL-terminated (null is fatal): `langlen` is not read, and `msgfilelen` stands for the length of
 * `msgfile` in the last test alone, so a path can come out cut if it is too small. The buffer is
 * cleared first. */
ZRV_API CS_RETCODE com_path_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen,
                                    CS_CHAR *msgfile, CS_INT msgfilelen, CS_CHAR *pathname,
                                    CS_INT pathsize) ZRV_NOEXCEPT;

/* Home, "charsets", `charset` if it is not null, `filename`, below the size, then "." and `fileext`
 * if that is not null, within it. With a null `filename` the directory is the result. */
ZRV_API CS_RETCODE com_path_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename,
                                     CS_CHAR *fileext, CS_CHAR *pathname,
                                     CS_INT pathsize) ZRV_NOEXCEPT;

/* The types of comn__path_locdata. */
#define COM_LOCDATA_MONEY 4
#define COM_LOCDATA_NUMERIC 5
#define COM_LOCDATA_DATETIME 6

/* Home, "locales", then by type "money", "numeric" or "datetime", `filename` (null is fatal), "."
 * and "mon", "num" or "dt"; below the size. Any other type is fatal. */
ZRV_PRIVATE CS_RETCODE comn__path_locdata(CS_CONTEXT *context, CS_INT type, CS_CHAR *filename,
                                          CS_CHAR *pathname, CS_INT pathsize) ZRV_NOEXCEPT;

/* The process-wide override of the driver configuration file; empty means none. Written by
 * com_set_tclcfg, without a lock: a writer and a reader must not overlap. A program with an object
 * of this name has it written and read instead. */
#define COM_TCLCFG_SIZE 513
extern ZRV_PRIVATE CS_CHAR tclcfgpath[COM_TCLCFG_SIZE];

/* Sets the override to a copy of `path`, or clears it if that is null or empty. CS_SUCCEED; CS_FAIL,
 * the old one kept, for a path of 512 bytes or more. */
ZRV_API CS_RETCODE com_set_tclcfg(CS_CHAR *path) ZRV_NOEXCEPT;

/* Delivers the path of the driver configuration file: the override, else ZRVNCL_TCL_CFG, else
 * ZARVEK_TCL_CFG, else com_path_cfgfile of "libtcl.cfg" with the product directory. Returns its
 * length in bytes, without the NUL; 0 when the first of these that is there does not fit in the
 * `buflen` bytes at `buf` (not null). */
ZRV_API CS_INT com_get_tclcfg(CS_CHAR *buf, CS_INT buflen) ZRV_NOEXCEPT;

/* Bytes at the outputs of the next two. */
#define COM_LDAPVERSION_SIZE 256

/*
 * Delivers the version suffix of the LDAP client library.
 *
 * versionsuffix  out  COM_LDAPVERSION_SIZE bytes; unchanged on failure
 * latest         in   1 asks for the newest library that is installed; anything else for the
 *                     built-in suffix, without a look at the file system
 *
 * A newer library comes out as its whole file name, not as a suffix. Returns CS_SUCCEED, or CS_FAIL
 * when the directory cannot be read.
 */
ZRV_API CS_RETCODE com_get_ldapversionsuffix(CS_CHAR *versionsuffix, CS_INT latest) ZRV_NOEXCEPT;

/*
 * Searches "devlib3p" below the product directory for LDAP client libraries that compare higher,
 * byte by byte and not as version numbers, than the built-in one.
 *
 * version      out  the file name of the highest, COM_LDAPVERSION_SIZE bytes; unchanged without one
 * updatefound  out  1 if there is one, else 0
 *
 * Returns CS_SUCCEED, or CS_FAIL when the path does not fit in 512 bytes or the directory cannot be
 * read.
 */
ZRV_PRIVATE CS_RETCODE com__find_latest_ldapversion(CS_CHAR *version,
                                                    CS_INT *updatefound) ZRV_NOEXCEPT;

/*
 * Names the application after its executable.
 *
 * context   in   not read
 * appname   out  the last part of the executable's path, cut to fit, NUL-terminated; empty when the
 *                path cannot be had
 * size      in   bytes at `appname`
 * sanitize  in   see comn__sanitize_name
 *
 * Returns CS_SUCCEED, or CS_FAIL, nothing written, for a size below 1 or an empty path.
 */
ZRV_PRIVATE CS_RETCODE comn__genappname_from_exec(CS_CONTEXT *context, CS_CHAR *appname,
                                                  CS_INT size, CS_INT sanitize) ZRV_NOEXCEPT;

/* ---- installation files ----
 *
 * Each opener builds a path by the rule of its builder above, in 1025 bytes, and opens the section
 * file there (zrvintl.h has the reader).
 *
 * ifile        out  the file, open after a success, to be closed with intl_close
 * locfilename  out  the path, once it is built: NUL-terminated and cut to `filenamelen` - 1 bytes,
 *                   also when the file cannot be opened; may be null
 * filenamelen  in   the size of `locfilename`, at least 1 if it is not null
 *
 * Returns CS_SUCCEED; COM_LOCFILE_ERROR when intl_open refuses the file, its status in ctxintlerr;
 * what the builder returns, with `ifile` and `locfilename` as they were. Fatal are a null context or
 * `ifile`, a `filenamelen` below 1, and what the builder says.
 */

/* The path of com__path_locfile. */
ZRV_PRIVATE CS_RETCODE com__open_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset,
                                         CS_CHAR *locfile, struct intl_locfile *ifile,
                                         CS_CHAR *locfilename, CS_INT filenamelen) ZRV_NOEXCEPT;

/* The path of com_path_charfile. */
ZRV_PRIVATE CS_RETCODE com__open_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename,
                                          CS_CHAR *fileext, struct intl_locfile *ifile,
                                          CS_CHAR *locfilename, CS_INT filenamelen) ZRV_NOEXCEPT;

/* The path of com_path_msgfile; `path` and `pathlen` are its `locfilename` and `filenamelen`. */
ZRV_PRIVATE CS_RETCODE comn__open_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen,
                                          CS_CHAR *msgfile, CS_INT msgfilelen,
                                          struct intl_locfile *ifile, CS_CHAR *path,
                                          CS_INT pathlen) ZRV_NOEXCEPT;

/* The path of com_path_cfgfile, which is not told. */
ZRV_PRIVATE CS_RETCODE com__open_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile,
                                         struct intl_locfile *ifile, CS_INT ncl) ZRV_NOEXCEPT;

/* ---- conversion dispatch ---- */

/* The width in bytes of a datatype, or `len` for a type without a fixed size. */
ZRV_API CS_INT comn_typelen(CS_INT type, CS_INT len) ZRV_NOEXCEPT;

/* Gives a context its private copy of the conversion matrix, 1600 cells, and an empty list of user
 * conversions. Once per context, before the first lookup. CS_SUCCEED or CS_MEM_ERROR. */
ZRV_API CS_RETCODE com_conv_init(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* Releases the copy and the user conversions. A second call is harmless. CS_SUCCEED. */
ZRV_API CS_RETCODE com_conv_free(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* The function that converts from one datatype to another, or null where there is none. A pair with
 * a code of 40 or above comes from the user list; a negative code gives null before anything else
 * is looked at. */
ZRV_API CS_CONV_FUNC com_conv_func(CS_CONTEXT *context, CS_INT srctype,
                                   CS_INT desttype) ZRV_NOEXCEPT;

/*
 * Installs a conversion in this context alone; null removes a built-in one. A pair with a code of
 * 40 or above goes to the user list. Returns CS_SUCCEED, or CS_MEM_ERROR with nothing changed.
 *
 * The codes are not tested for their sign one by one: only a pair whose cell lies outside the
 * matrix is fatal.
 */
ZRV_API CS_RETCODE com_conv_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                    CS_CONV_FUNC newfunc) ZRV_NOEXCEPT;

/* Brings back the built-in conversion of a pair; a user conversion answers null from then on.
 * CS_SUCCEED, also for a user pair that was never installed. Negative codes are fatal. */
ZRV_API CS_RETCODE com_conv_default(CS_CONTEXT *context, CS_INT srctype,
                                    CS_INT desttype) ZRV_NOEXCEPT;

/* ---- default values ---- */

/* Gives a context its private default values, one for each built-in type. Once per context, whose
 * slots may hold anything before: they are not read. On CS_MEM_ERROR what was made so far stays for
 * com_null_free to release; a second com_null_init before that would build anew and lose it.
 * Otherwise CS_SUCCEED. */
ZRV_API CS_RETCODE com_null_init(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* Releases all default values of a context. A second call is harmless. CS_SUCCEED. */
ZRV_API CS_RETCODE com_null_free(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Delivers the default value of destfmt->datatype.
 *
 * destfmt  in   datatype, format bits and, for numerics, precision and scale of the result
 * dest     out  the destination, of destfmt->maxlength bytes and no fewer than destlen
 * destlen  in   the most bytes of the value to copy. It does not bound the pads, which fill up to
 *               destfmt->maxlength
 * outlen   out  the length of the result
 *
 * The precision and scale of a numeric are stored where `destlen` has room for them.
 * A user default is followed by a NUL, which counts in `*outlen` and is written even when the value
 * filled `destlen`: the destination must have room for that one more byte. A user type without a
 * default gives length 0. Returns CS_SUCCEED, or the status of the pad. A negative type, a context
 * without default values, and a built-in default that was set to length 0 are fatal.
 */
ZRV_API CS_RETCODE com_null_get(CS_CONTEXT *context, CS_DATAFMT *destfmt, CS_VOID *dest,
                                CS_INT destlen, CS_INT *outlen) ZRV_NOEXCEPT;

/* Sets the default value of a type to a copy of `nulllen` bytes at `null`. A built-in type set to
 * length 0 has no default any more: the next com_null_get or com_null_reinstall of it is fatal.
 * CS_SUCCEED, or CS_MEM_ERROR with the old value kept. A negative type or length is fatal. */
ZRV_API CS_RETCODE com_null_set(CS_CONTEXT *context, CS_INT nulltype, CS_VOID *null,
                                CS_INT nulllen) ZRV_NOEXCEPT;

/* Brings back the built-in default value of a type; the default of a user type is removed, and a
 * miss is no failure. CS_SUCCEED, or CS_MEM_ERROR with the value kept. A negative type is fatal. */
ZRV_API CS_RETCODE com_null_reinstall(CS_CONTEXT *context, CS_INT nulltype) ZRV_NOEXCEPT;

/* ---- raw copies ---- */

/* Copy `tlen` bytes of a fixed type to binary, or to a varbinary record. The datatypes of the
 * formats are not looked at. comn_fixedtobin returns CS_SUCCEED, or CS_CONV_TRUNCATED when
 * maxlength is below `tlen`: the bytes that fit are copied; a negative maxlength or a `tlen` below
 * 1 is fatal. comn_fixedtovarbin copies 256 bytes when `tlen` is negative or above 255, and returns
 * CS_SUCCEED, or CS_CONV_OVERFLOW when `tlen` exceeds 256; `*destlen` becomes 258. */
ZRV_API CS_RETCODE comn_fixedtobin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                                   CS_INT tlen) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_fixedtovarbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                      CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                                      CS_INT tlen) ZRV_NOEXCEPT;

/*
 * ---- plain character tests, on one byte ----
 *
 * They read the built-in table (Com_charmap), which is a coarse reading of ISO 8859-1, and never
 * the locale. A test returns the bits of its class that the byte has: 0, or not 0 when it is in it.
 */
ZRV_API CS_INT com_isalpha(CS_BYTE c) ZRV_NOEXCEPT;  /* com_isupper or com_islower */
ZRV_API CS_INT com_isupper(CS_BYTE c) ZRV_NOEXCEPT;  /* A to Z; also 142, 143, 160 to 223, 247 */
ZRV_API CS_INT com_islower(CS_BYTE c) ZRV_NOEXCEPT;  /* a to z; also 224 to 246, 248 to 255 */
ZRV_API CS_INT com_isdigit(CS_BYTE c) ZRV_NOEXCEPT;  /* 0 to 9 */
ZRV_API CS_INT com_isxdigit(CS_BYTE c) ZRV_NOEXCEPT; /* 0 to 9, A to F, a to f */
ZRV_API CS_INT com_isspace(CS_BYTE c) ZRV_NOEXCEPT;  /* the codes 9 to 15 and the blank */
ZRV_API CS_INT com_isgraph(CS_BYTE c) ZRV_NOEXCEPT;  /* 32 to 126 and 160 to 255 */

/* The other case of a letter of ISO 8859-1 (A to Z, 192 to 222 but 215, and 32 above), the byte
 * itself for any other. */
ZRV_API CS_BYTE com_toupper(CS_BYTE c) ZRV_NOEXCEPT;
ZRV_API CS_BYTE com_tolower(CS_BYTE c) ZRV_NOEXCEPT;

/*
 * ---- conversions ----
 *
 * Each has the signature and the contract of CS_CONV_FUNC (cspublic.h); what a family adds stands
 * before its list.
 */
#define ZRV_CONV(name)                                                                             \
  ZRV_API CS_RETCODE name(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,                   \
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) ZRV_NOEXCEPT

/* From void: comn_voidtoany delivers the default value of the destination type (com_null_get) and
 * looks neither at the source nor at its format; comn_voidtovoid does nothing. */
ZRV_CONV(comn_voidtoany);
ZRV_CONV(comn_voidtovoid);

/*
 * From text: char is bytes of srcfmt->maxlength, varchar a CS_VARCHAR, of which no more is read than it
 * holds. Text is in the character set of the format's locale, else of ctxlocale (com_intl_charattr, which
 * tells what is fatal): digits, signs and blanks are known by what the characters reduce to, so wide
 * digits read like ASCII. CS_CONV_SYNTAX: the text is none of the kind; `*destlen` is 0.
 *
 * to integers   blanks (0x20), one sign, blanks, digits, blanks; a text without digits is 0. A number out
 *               of range is CS_CONV_OVERFLOW. Stored then: the nearest bound for i8, ui4 and ui8; the
 *               digits that fitted for i4; the low bytes of the number for i1, i2 and ui2, or 0 if it has
 *               no place in 32 bits, signed ones for i1 and i2, unsigned ones for ui2. A minus is bad
 *               syntax for ui2, ui4 and ui8, in "-0" too. After CS_CONV_SYNTAX the number before the fault is stored, 0 for i1, i2 and ui2.
 * to bit        reads an i4; 1 unless it is 0. A failure leaves `dest` alone.
 * to floats     what strtod reads in the C locale, white space behind it aside; nothing is 0. Beyond the
 *               range the extreme is stored, CS_CONV_OVERFLOW, an infinity that is spelled out too;
 *               CS_CONV_UNDERFLOW stores a zero. A text of more than 1,023 bytes is CS_CONV_SYNTAX. To
 *               flt8 a range is reported before bad text behind the number, to flt4 only what is beyond
 *               doubles. `errno` is cleared, and ERANGE beyond the range of doubles.
 * to numeric    destfmt->precision and scale are the shape. CS_DFMT_FROMSOURCE in either (from char alone)
 *               takes it from the text. `*destlen` is the length of the precision plus 2. With
 *               CS_DFMT_NULLTERM in srcfmt a NUL ends the text. CS_CONV_BADPRECISION, CS_CONV_BADSCALE,
 *               CS_CONV_OVERFLOW; CS_CONV_TRUNCATED when fraction digits would be lost, and dest is not to
 *               be used. A text that is more than 1,023 bytes when it is reduced is CS_CONV_SYNTAX. From
 *               varchar an empty text is fatal, `*destlen` is 35, a length above 1,023 is CS_CONV_SYNTAX,
 *               and text that does not parse or would lose digits is CS_CONV_OVERFLOW.
 * to money      com__mnyfromchar_mb, com__mny4fromchar_mb: CS_CONV_OVERFLOW, CS_CONV_SYNTAX.
 * to dates      date is for 12 and 35, timea for 28 and 36. The text goes through UTF-8 and is read with the
 *               names, the order and the style of the locale's dates (com__datefromchar_mb).
 *               CS_CONV_OVERFLOW for a value out of range; CS_MEM_ERROR; what the conversion to UTF-8
 *               returns. The room for it goes by srcfmt->maxlength, which for a varchar must be at least
 *               its length.
 * to text       converted between the character sets if they differ. What does not fit is cut at a
 *               character: CS_CONV_TRUNCATED. From char: with CS_DFMT_ESCQUOTE each single quote is doubled,
 *               of the text as it came; text that fills `dest` while CS_DFMT_NULLTERM is set loses its
 *               last byte to the NUL, CS_CONV_TRUNCATED. Then padding: CS_CONV_PADCONFLICT. `dest` may be
 *               the source between equal sets.
 * to varchar    256 bytes at most, CS_CONV_TRUNCATED beyond; `*destlen` is 258. What a conversion of the
 *               set returns is returned; for want of room the record and `*destlen` have the length that was
 *               converted, after another failure the length of the record is unwritten.
 * to binary     hexadecimal digits, after comn__hex2binbytes. The first digit of an odd count is a byte of
 *               its own. CS_CONV_TRUNCATED: maxlength bytes were stored and digits are left over,
 *               unexamined. CS_CONV_OVERFLOW: an odd count and no room at all. CS_CONV_SYNTAX: not a
 *               digit. An empty text is fatal. The source may be converted in place.
 * to varbinary  the same into `array`; `*destlen` is 258, but 0 after CS_CONV_SYNTAX, as `len` is.
 */
#define ZRV_TEXT_CONVS(source)                                                                     \
  ZRV_CONV(comn_##source##tobit);                                                                  \
  ZRV_CONV(comn_##source##toi1);                                                                   \
  ZRV_CONV(comn_##source##toi2);                                                                   \
  ZRV_CONV(comn_##source##toi4);                                                                   \
  ZRV_CONV(comn_##source##toi8);                                                                   \
  ZRV_CONV(comn_##source##toui2);                                                                  \
  ZRV_CONV(comn_##source##toui4);                                                                  \
  ZRV_CONV(comn_##source##toui8);                                                                  \
  ZRV_CONV(comn_##source##toflt4);                                                                 \
  ZRV_CONV(comn_##source##toflt8);                                                                 \
  ZRV_CONV(comn_##source##tonum);                                                                  \
  ZRV_CONV(comn_##source##tomoney);                                                                \
  ZRV_CONV(comn_##source##tomny4);                                                                 \
  ZRV_CONV(comn_##source##todatetime);                                                             \
  ZRV_CONV(comn_##source##todate4);                                                                \
  ZRV_CONV(comn_##source##todatea);                                                                \
  ZRV_CONV(comn_##source##totimea);                                                                \
  ZRV_CONV(comn_##source##tochar);                                                                 \
  ZRV_CONV(comn_##source##tovarchar);                                                              \
  ZRV_CONV(comn_##source##tobin);                                                                  \
  ZRV_CONV(comn_##source##tovarbin)

ZRV_TEXT_CONVS(char);
ZRV_TEXT_CONVS(varchar);

/*
 * The parsers of integers beneath them.
 *
 * cp     in   the text
 * len    in   its length in bytes; below 1 the value is 0
 * valp   out  the value, also after a failure, as told above
 * chatr  in   its character set; null, or a set without characters of several bytes, takes the bytes as
 *             they are
 *
 * Returns 0 for a len below 1, 4 for a number, -1 for one out of range, -2 for another text. A null `valp`,
 * and a null `cp` of a text that is not empty, are fatal, -2.
 */
struct char_attrib;
ZRV_PRIVATE int com__chtoi1_mb(char *cp, int len, CS_TINYINT *valp,
                               struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoi2_mb(char *cp, int len, CS_SMALLINT *valp,
                               struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoi4_mb(char *cp, int len, CS_INT *valp,
                               struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoi8_mb(char *cp, int len, CS_BIGINT *valp,
                               struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoui2_mb(char *cp, int len, CS_USMALLINT *valp,
                                struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoui4_mb(char *cp, int len, CS_UINT *valp,
                                struct char_attrib *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__chtoui8_mb(char *cp, int len, CS_UBIGINT *valp,
                                struct char_attrib *chatr) ZRV_NOEXCEPT;

/* Reduces a text to ASCII as comn_str_to_ascii does, but not beyond `destlen` bytes: the bytes written. A
 * null `chatr` is the built-in set; another null pointer is fatal, 0. */
ZRV_PRIVATE CS_INT com__conv2ascii(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen,
                                   struct char_attrib *chatr) ZRV_NOEXCEPT;

/* The length of the longest piece of whole characters that fits into `colen` bytes; a source shorter than
 * that is its own length, whatever it ends with. A null `attrib` is the built-in set. */
ZRV_API CS_INT comnb_truncate_chars(struct char_attrib *attrib, CS_BYTE *source, CS_INT srclen,
                                    CS_INT colen) ZRV_NOEXCEPT;

/*
 * Copies a text and doubles each character that reduces to a given byte.
 *
 * src      in   srcfmt->maxlength bytes, in the set `ca` (null for the built-in one); with
 *               CS_DFMT_NULLTERM in destfmt->format a NUL ends it
 * dest     out  destfmt->maxlength bytes; not the source
 * destlen  out  the bytes written
 * escape   in   the byte
 *
 * CS_SUCCEED, or CS_CONV_TRUNCATED before the first character that does not fit, both copies together. A
 * null pointer other than `ca` is fatal, CS_FAIL.
 */
ZRV_PRIVATE CS_RETCODE comn__escchar(CS_CHAR *src, CS_DATAFMT *srcfmt, CS_CHAR *dest,
                                     CS_DATAFMT *destfmt, CS_INT *destlen, struct char_attrib *ca,
                                     CS_INT escape) ZRV_NOEXCEPT;

/* What all numbers convert to; 16-bit text stands with its own family. */
#define ZRV_NUMBER_CONVS(source)                                                                   \
  ZRV_CONV(comn_##source##tobit);                                                                  \
  ZRV_CONV(comn_##source##toi1);                                                                   \
  ZRV_CONV(comn_##source##toi2);                                                                   \
  ZRV_CONV(comn_##source##toi4);                                                                   \
  ZRV_CONV(comn_##source##toi8);                                                                   \
  ZRV_CONV(comn_##source##toui2);                                                                  \
  ZRV_CONV(comn_##source##toui4);                                                                  \
  ZRV_CONV(comn_##source##toui8);                                                                  \
  ZRV_CONV(comn_##source##toflt4);                                                                 \
  ZRV_CONV(comn_##source##toflt8);                                                                 \
  ZRV_CONV(comn_##source##tonum);                                                                  \
  ZRV_CONV(comn_##source##tomoney);                                                                \
  ZRV_CONV(comn_##source##tomny4);                                                                 \
  ZRV_CONV(comn_##source##tochar);                                                                 \
  ZRV_CONV(comn_##source##tobin);                                                                  \
  ZRV_CONV(comn_##source##tovarchar);                                                              \
  ZRV_CONV(comn_##source##tovarbin)

/*
 * From integers: i1 is the unsigned CS_TINYINT. `*destlen` is the width of the destination type
 * whatever the result.
 *
 * to integers   in range: CS_SUCCEED. Out of range the nearest value is stored and the status is
 *               CS_CONV_OVERFLOW, but CS_CONV_UNDERFLOW below the range of the unsigned types of 16
 *               bits and more, and for i8 below the range of i1 and i2.
 * to bit        1 for any source but 0.
 * to floats     cannot fail; 64-bit sources near the top of their range saturate.
 * to numeric    destfmt->precision and scale are the shape; `*destlen` is 35. CS_CONV_BADPRECISION
 *               (not 1 to 77) and CS_CONV_BADSCALE (above 77) leave `dest` alone. CS_CONV_OVERFLOW:
 *               the number does not fit, dest has the shape and is not to be used. i8 and ui8 take
 *               CS_DFMT_FROMSOURCE in either field, which is replaced by 255 in `destfmt` and not
 *               restored; in the precision it gives numeric(21,0), in the scale alone it is fatal,
 *               as is a negative scale whose low byte is above 77.
 * to money      CS_CONV_OVERFLOW when the number does not fit: in mny4 the nearest value is stored
 *               then, in money the number itself (at most 2 to the 63, less one) as a count.
 * to text       the whole number, then the padding that `format` asks for: CS_SUCCEED or
 *               CS_CONV_PADCONFLICT. Without room for it: "*" and a NUL if maxlength is above 1,
 *               nothing otherwise; CS_CONV_OVERFLOW.
 * to varchar    the number and a NUL in `str`; maxlength is not looked at, `*destlen` is 258.
 * to binary     the bytes of the value as they stand in memory: comn_fixedtobin,
 *               comn_fixedtovarbin. These two look at no datatype.
 */
ZRV_NUMBER_CONVS(i1);
ZRV_NUMBER_CONVS(i2);
ZRV_NUMBER_CONVS(i4);
ZRV_NUMBER_CONVS(i8);
ZRV_NUMBER_CONVS(ui2);
ZRV_NUMBER_CONVS(ui4);
ZRV_NUMBER_CONVS(ui8);

/*
 * From numerics (16 and 17 alike). CS_CONV_DOMAIN: the source has a precision outside 1 to 77 or a
 * scale above 77; nothing is stored, but `*destlen` for fixed destinations.
 *
 * to integers   truncated toward zero. Outside the range the nearest value is stored, with
 *               CS_CONV_OVERFLOW, but CS_CONV_UNDERFLOW below ui2, ui4, ui8 and i8. The types up to
 *               32 bits test the closest double, fraction included: 255.5 is above i1, and -0.5 is
 *               below every unsigned type.
 * to bit        1 for any source but zero.
 * to floats     the closest double, and for flt4 its closest single; at the largest single and
 *               beyond, that one, and CS_CONV_OVERFLOW.
 * to numeric    destfmt->precision and scale are the shape, CS_DFMT_FROMSOURCE keeps that of the
 *               source. Digits are dropped without rounding: CS_CONV_TRUNCATED, the rest is stored.
 *               CS_CONV_OVERFLOW beyond the precision, and where the digits of the source before
 *               the change of scale do not fit the new length; dest has the shape then and is not to
 *               be used. CS_CONV_BADPRECISION; CS_CONV_BADSCALE outside 0 to 77, a negative scale too.
 *               `*destlen` is the length of the precision plus 2. `dest` may be the source.
 * to money      rounded to four decimals. CS_CONV_OVERFLOW: beyond money nothing is stored, beyond
 *               mny4 alone its nearest value.
 * to text       all digits of the scale, and a zero before a point that would come first; 80 bytes
 *               hold every value. Text that does not fit is cut: CS_CONV_OVERFLOW. Padding as
 *               `format` asks.
 * to varchar    the same text, no terminator; `*destlen` is 258.
 * to binary     the 33 bytes of the array, without the shape (comn_fixedtobin, comn_fixedtovarbin).
 */
ZRV_NUMBER_CONVS(num);

/*
 * From money: money is CS_MONEY, mny4 CS_MONEY4. `*destlen` is the width of a fixed destination whatever
 * the result.
 *
 * to integers   rounded, half away from zero. Out of range the nearest value is stored, with
 *               CS_CONV_OVERFLOW, but CS_CONV_UNDERFLOW below ui8. For ui2, ui4 and ui8 every negative
 *               amount is out of range, for i1 only what rounds to a negative number.
 * to bit        1 for any source but 0.
 * to floats     cannot fail.
 * to numeric    rounded to destfmt->scale. CS_CONV_BADPRECISION (not 1 to 77; CS_DFMT_FROMSOURCE is
 *               refused) and CS_CONV_BADSCALE (above 77) leave `dest` alone; of a negative scale the low
 *               byte counts, as 0 when that is above 77. CS_CONV_OVERFLOW: the amount does not fit,
 *               dest has the shape and is not to be used. `*destlen` is 35.
 * to money      beyond mny4 its nearest value, and CS_CONV_OVERFLOW.
 * to text       destfmt->precision decimals, but two for 0 and four for more, rounded by the last digit
 *               dropped alone (com__mnytochar); no commas, no currency. A negative precision is replaced
 *               by 0 in `destfmt`. 21 bytes hold every value. Text that does not fit is cut:
 *               CS_CONV_OVERFLOW. Padding as `format` asks.
 * to varchar    the same text, no terminator; maxlength is not looked at, `*destlen` is 258.
 * to binary     the bytes of the value as they stand in memory: comn_fixedtobin, comn_fixedtovarbin.
 */
ZRV_NUMBER_CONVS(money);
ZRV_NUMBER_CONVS(mny4);

/*
 * From floating point: flt4 is CS_REAL, flt8 CS_FLOAT. `*destlen` is the width of the destination type
 * whatever the result.
 *
 * to integers   tested against the bounds of the type, then truncated toward zero: 255.5 is above i1.
 *               Out of range the bound is stored with CS_CONV_OVERFLOW, but CS_CONV_UNDERFLOW below
 *               ui2, ui4 and ui8. The bounds of the 64-bit types are plus and minus 9.22337e18 and
 *               1.84467e19 from flt4, 9.22337203685477e18 and 1.84467440737095e19 from flt8, and
 *               these are what is stored. ui8 from 9223372036854775808 on is one below the exact
 *               value. Not a number: CS_SUCCEED, the lowest i4 or i8, the top bit of ui8, 0 else.
 * to bit        1 for any source but the two zeroes, what is not a number too.
 * to floats     flt8 beyond the largest single, infinities too, is that single with its sign and
 *               CS_CONV_OVERFLOW; what is too small becomes a denormal or zero with CS_SUCCEED.
 * to numeric    the 17 significant digits of the double, rounded to destfmt->scale. Statuses as from
 *               integers, but CS_DFMT_FROMSOURCE is refused; of another negative scale the low byte
 *               counts, and one above 77 lets the text of the double choose (com__subchartoexctnume).
 *               CS_CONV_OVERFLOW also for infinities and for what is not a number.
 * to money      rounded to four decimals. CS_CONV_OVERFLOW, with zero stored, for what does not fit
 *               and for what is not a number.
 * to text       "%.17g" of the double with a point whatever the locale; no zero before a point that
 *               comes first (".5", but "-0.5"), ".0" behind a number that has neither point nor
 *               exponent ("3.0", "inf.0"), no sign on a zero. Without room a star as from integers.
 * to varchar    the same text, no terminator; `*destlen` is 258.
 * to binary     the bytes of the value as they stand in memory: comn_fixedtobin,
 *               comn_fixedtovarbin. These two look at no datatype.
 */
ZRV_NUMBER_CONVS(flt4);
ZRV_NUMBER_CONVS(flt8);

/*
 * From binary: bin is bytes of srcfmt->maxlength, varbin a CS_VARBINARY. A source that had to be cut is
 * CS_CONV_TRUNCATED from bin and CS_CONV_OVERFLOW from varbin, in every member ("cut" below).
 *
 * to fixed types  the bytes as they stand, never a number. `*destlen` is the count that was copied. A
 *                 source longer than the type is cut; a shorter one is CS_CONV_UNDERFLOW and leaves
 *                 the bytes behind it as they were. bin to datea and timea tests a value that came
 *                 whole: CS_CONV_DOMAIN out of range, stored, `*destlen` 0. These members and the two
 *                 next look at no datatype.
 * comn_bintofixed, comn_varbintofixed
 *                 the same for a type of `tlen` bytes.
 * to numeric      the shape from destfmt, the source into the 33 bytes of the array as above; `*destlen`
 *                 is 35 whatever the result. CS_CONV_BADPRECISION (not 1 to 77) and CS_CONV_BADSCALE
 *                 (above 77) leave `dest` alone.
 * to bit          1 if the first byte is not 0; it is read even of an empty source.
 * to text         two lower-case hexadecimal digits a byte. Text without room is cut after the last
 *                 pair that fits; `*destlen` counts the byte left over in an odd maxlength too, which
 *                 is not written. Padding as `format` asks.
 * to varchar      at most 128 bytes as digits; `*destlen` is 258.
 * to binary       the bytes, cut or padded as `format` asks (comn__padbin).
 * to varbinary    at most 256 bytes; `*destlen` is 258.
 */
#define ZRV_BINARY_CONVS(source)                                                                   \
  ZRV_API CS_RETCODE comn_##source##tofixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,   \
                                            CS_INT tlen) ZRV_NOEXCEPT;                             \
  ZRV_CONV(comn_##source##toi1);                                                                   \
  ZRV_CONV(comn_##source##toi2);                                                                   \
  ZRV_CONV(comn_##source##toi4);                                                                   \
  ZRV_CONV(comn_##source##toi8);                                                                   \
  ZRV_CONV(comn_##source##toui2);                                                                  \
  ZRV_CONV(comn_##source##toui4);                                                                  \
  ZRV_CONV(comn_##source##toui8);                                                                  \
  ZRV_CONV(comn_##source##toflt4);                                                                 \
  ZRV_CONV(comn_##source##toflt8);                                                                 \
  ZRV_CONV(comn_##source##tomoney);                                                                \
  ZRV_CONV(comn_##source##tomny4);                                                                 \
  ZRV_CONV(comn_##source##todatetime);                                                             \
  ZRV_CONV(comn_##source##todate4);                                                                \
  ZRV_CONV(comn_##source##tobigdatetime);                                                          \
  ZRV_CONV(comn_##source##tobigtime);                                                              \
  ZRV_CONV(comn_##source##todatea);                                                                \
  ZRV_CONV(comn_##source##totimea);                                                                \
  ZRV_CONV(comn_##source##tonum);                                                                  \
  ZRV_CONV(comn_##source##tobit);                                                                  \
  ZRV_CONV(comn_##source##tochar);                                                                 \
  ZRV_CONV(comn_##source##tovarchar);                                                              \
  ZRV_CONV(comn_##source##tobin);                                                                  \
  ZRV_CONV(comn_##source##tovarbin)

ZRV_BINARY_CONVS(bin);
ZRV_BINARY_CONVS(varbin);

/*
 * From bit. A source other than 0 and 1 is CS_CONV_DOMAIN, with nothing written, `*destlen` neither.
 *
 * to fixed types  0 or 1 in the destination's type
 * to numeric      as from integers, without CS_DFMT_FROMSOURCE
 * to text         "1" or "0", to binary the byte 1 or 0, if maxlength is above 0; then the padding that
 *                 `format` asks for (comn__padchar, comn__padbin), whose status is the result
 * to varchar and to varbinary
 *                 the character "1" or "0" in both; `*destlen` is 258
 * There is no member to money.
 */
ZRV_CONV(comn_bittobit);
ZRV_CONV(comn_bittoi1);
ZRV_CONV(comn_bittoi2);
ZRV_CONV(comn_bittoi4);
ZRV_CONV(comn_bittoi8);
ZRV_CONV(comn_bittoui2);
ZRV_CONV(comn_bittoui4);
ZRV_CONV(comn_bittoui8);
ZRV_CONV(comn_bittoflt4);
ZRV_CONV(comn_bittoflt8);
ZRV_CONV(comn_bittonum);
ZRV_CONV(comn_bittochar);
ZRV_CONV(comn_bittobin);
ZRV_CONV(comn_bittovarchar);
ZRV_CONV(comn_bittovarbin);

/*
 * From dates and times: date is CS_DATETIME, datea CS_DATE, timea CS_TIME. `*destlen` is the width
 * of the destination type whatever the result, and CS_SUCCEED the result unless something else
 * stands here. Microseconds are lost silently.
 *
 * to date4   CS_CONV_OVERFLOW outside 1900-01-01 to 2079-06-06, the destination left as it was
 * to date    from datea CS_CONV_OVERFLOW before 1753-01-01, the destination cleared; from
 *            bigdatetime CS_CONV_OVERFLOW outside the calendar, partly written, and
 *            CS_CONV_UNDERFLOW before 1753-01-01, the value in place
 * from bigtime to date and date4
 *            CS_CONV_UNDERFLOW for a day or more
 * to bigdatetime
 *            from datea CS_CONV_OVERFLOW outside the calendar, the destination cleared. A time has
 *            the date 0001-01-01
 * to binary  the bytes of the value as they stand in memory: comn_fixedtobin, comn_fixedtovarbin. A
 *            negative maxlength is fatal.
 * to text    date serves CS_BIGDATETIME too, timea CS_BIGTIME; another source type is CS_CONV_SYNTAX. In
 *            the style of comn_get_datetochar_fmt and the short month names of the destination's locale,
 *            in its character set, padded as `format` asks. CS_CONV_TRUNCATED: the text was cut.
 *            CS_CONV_DATEBUFFER: an unknown style; CS_CONV_SYNTAX: a name is missing; CS_MEM_ERROR; what
 *            the conversion from UTF-8 returns. A negative maxlength is fatal. `*destlen` is 0 when no text
 *            came to be.
 * to varchar the same text, 256 bytes at most and CS_CONV_OVERFLOW beyond; maxlength is not looked at,
 *            `*destlen` is 258.
 */
ZRV_CONV(comn_datetodate4);
ZRV_CONV(comn_datetodate);
ZRV_CONV(comn_datetodatea);
ZRV_CONV(comn_datetotimea);
ZRV_CONV(comn_datetobigdatetime);
ZRV_CONV(comn_datetobigtime);
ZRV_CONV(comn_datetobin);
ZRV_CONV(comn_datetovarbin);
ZRV_CONV(comn_datetochar);
ZRV_CONV(comn_datetovarchar);
ZRV_CONV(comn_date4todate4);
ZRV_CONV(comn_date4todate);
ZRV_CONV(comn_date4tobigdatetime);
ZRV_CONV(comn_date4todatea);
ZRV_CONV(comn_date4totimea);
ZRV_CONV(comn_date4tobigtime);
ZRV_CONV(comn_date4tobin);
ZRV_CONV(comn_date4tovarbin);
ZRV_CONV(comn_date4tochar);
ZRV_CONV(comn_date4tovarchar);
ZRV_CONV(comn_dateatodate4);
ZRV_CONV(comn_dateatodate);
ZRV_CONV(comn_dateatobigdatetime);
ZRV_CONV(comn_dateatodatea);
ZRV_CONV(comn_dateatobin);
ZRV_CONV(comn_dateatovarbin);
ZRV_CONV(comn_dateatochar);
ZRV_CONV(comn_dateatovarchar);
ZRV_CONV(comn_timeatodate4);
ZRV_CONV(comn_timeatodate);
ZRV_CONV(comn_timeatobigdatetime);
ZRV_CONV(comn_timeatobigtime);
ZRV_CONV(comn_timeatotimea);
ZRV_CONV(comn_timeatobin);
ZRV_CONV(comn_timeatovarbin);
ZRV_CONV(comn_timeatochar);
ZRV_CONV(comn_timeatovarchar);
ZRV_CONV(comn_bigdatetimetodate4);
ZRV_CONV(comn_bigdatetimetodate);
ZRV_CONV(comn_bigdatetimetodatea);
ZRV_CONV(comn_bigdatetimetotimea);
ZRV_CONV(comn_bigdatetimetobigdatetime);
ZRV_CONV(comn_bigdatetimetobigtime);
ZRV_CONV(comn_bigdatetobin);
ZRV_CONV(comn_bigdatetimetovarbin);
ZRV_CONV(comn_bigtimetodate4);
ZRV_CONV(comn_bigtimetodate);
ZRV_CONV(comn_bigtimetotimea);
ZRV_CONV(comn_bigtimetobigdatetime);
ZRV_CONV(comn_bigtimetobigtime);
ZRV_CONV(comn_bigtimetobin);
ZRV_CONV(comn_bigtimetovarbin);

/*
 * ---- 16-bit text ----
 *
 * unichar serves 25 and 29: UTF-16 in host order, at any address, all lengths in bytes. Every member goes
 * through UTF-8: a format of its own, whose locale is a copy of the caller's with the fixed UTF-8
 * character set in the place of its own (comn__init_utf8_datafmt_and_locale), stands on one side of the
 * member for text. What is converted must not overlap `dest`.
 *
 * CS_CONV_BADCHAR      the 16-bit text is invalid: an odd count of bytes, or 0xFFFE or 0xFFFF; what stands
 *                      before it was converted where the member has text on both sides, else nothing
 *                      is written and `*destlen` is 0
 * CS_CONV_TRUNCATED    the text does not fit `dest` (what fits is there) or the area between the two
 *                      (nothing is there, and `*destlen` is 0)
 *
 * Towards 16-bit text `format` works as told at comn__padunichar, in units: with CS_DFMT_NULLTERM and no
 * room for the terminator the last whole unit of maxlength is 0 and the result CS_CONV_TRUNCATED.
 * CS_CONV_PADCONFLICT.
 *
 * from 16-bit text to a value
 *     An empty source is fatal. The text goes through an area: 64 bytes for integers, 1,024 for floats,
 *     79 for numerics, 24 for money, 2,048 for dates; for a bit the area is allocated: CS_MEM_ERROR. So
 *     70 digits are CS_CONV_TRUNCATED, no overflow. The rest is as told at the member from char, with
 *     srcfmt->locale for all but the character set. datetime is for 12 and 35, timea for 28 and 36.
 *     unichartoi8 stands for type 20 in the matrix as well, but serves 30 alone: 20 is fatal.
 * from a value to 16-bit text
 *     What the member to char makes of so many bytes (384 for a bit); its failures are the result and
 *     leave `dest` alone, `*destlen` 0. The precision and scale of destfmt are not looked at: money has two
 *     decimals.
 * unichar to char
 *     Converted to the character set of destfmt; CS_CONV_TRUNCATED, cut at a character. Into UTF-8 without
 *     CS_DFMT_ESCQUOTE directly: a text that was cut loses its last byte to the NUL of CS_DFMT_NULLTERM,
 *     even if that splits a character, and one that fits without its terminator is CS_CONV_OVERFLOW. Else
 *     through an allocated area (CS_MEM_ERROR) and comn_chartochar. Bit 64 of destfmt->format lets
 *     0xFFFE and 0xFFFF pass.
 * char to unichar
 *     From UTF-8 directly, else through comn_chartochar and an allocated area: CS_MEM_ERROR.
 * unichar to unichar, bin to unichar, image to unichar
 *     Copied; of the units none is refused. image is for 5 alone.
 * unichar to bin
 *     Copied in whole units, then padded by comn__padbin.
 * unichar to image
 *     Copied with no look at maxlength: `dest` must have room for the whole source, also for an odd one.
 * unichar to varchar and to varbin
 *     As to char and to bin, into the record with a room of 256 bytes; `*destlen` is 258 whatever the
 *     result, the length in the record that of the text.
 * varchar to unichar
 *     Through an area of the larger of the two maxlength, CS_MEM_ERROR. No more of the record than
 *     srcfmt->maxlength bytes comes along: CS_CONV_TRUNCATED.
 * varbin to unichar
 *     As from bin.
 */
#define ZRV_UNICHAR_CONVS(value)                                                                   \
  ZRV_CONV(comn_unicharto##value);                                                                 \
  ZRV_CONV(comn_##value##tounichar)

ZRV_UNICHAR_CONVS(i1);
ZRV_UNICHAR_CONVS(i2);
ZRV_UNICHAR_CONVS(i4);
ZRV_UNICHAR_CONVS(i8);
ZRV_UNICHAR_CONVS(ui2);
ZRV_UNICHAR_CONVS(ui4);
ZRV_UNICHAR_CONVS(ui8);
ZRV_UNICHAR_CONVS(flt4);
ZRV_UNICHAR_CONVS(flt8);
ZRV_UNICHAR_CONVS(num);
ZRV_UNICHAR_CONVS(mny4);
ZRV_UNICHAR_CONVS(money);
ZRV_UNICHAR_CONVS(date4);
ZRV_UNICHAR_CONVS(datetime);
ZRV_UNICHAR_CONVS(datea);
ZRV_UNICHAR_CONVS(timea);
ZRV_UNICHAR_CONVS(bit);
ZRV_UNICHAR_CONVS(char);
ZRV_UNICHAR_CONVS(varchar);
ZRV_UNICHAR_CONVS(bin);
ZRV_UNICHAR_CONVS(varbin);
ZRV_UNICHAR_CONVS(image);
ZRV_CONV(comn_unichartounichar);

/* The length in bytes, not in units, of 16-bit text up to its zero unit. Null is fatal, 0. */
ZRV_API CS_INT comn_unistrlen(CS_UNICHAR *s) ZRV_NOEXCEPT;

/*
 * Makes a format of UTF-8 text that has all other conventions of a locale.
 *
 * user_loc       in   the locale, or null for ctxlocale
 * utf8_datafmt   out  all zero but for the datatype, CS_TYPE_CHAR, and the locale, `utf8_locale`
 * utf8_locale    out  a copy of the locale whose ctypeptr is cmg_utf8_ctypeptr; `utf8_datafmt` borrows it
 *
 * Returns CS_SUCCEED. Another null pointer, no locale and no ctxglobals are fatal, CS_FAIL.
 */
ZRV_PRIVATE CS_RETCODE comn__init_utf8_datafmt_and_locale(CS_CONTEXT *context, CS_LOCALE *user_loc,
                                                          CS_DATAFMT *utf8_datafmt,
                                                          CS_LOCALE *utf8_locale) ZRV_NOEXCEPT;

/* True when text of a format is UTF-8: the character set of its locale, else of ctxlocale, is
 * cmg_utf8_charset. A null argument, no locale, one without ctypeptr and no ctxglobals are fatal, 0. */
ZRV_PRIVATE CS_BOOL charset_in_datafmt_equals_utf8(CS_CONTEXT *context,
                                                   CS_DATAFMT *datafmt) ZRV_NOEXCEPT;

/*
 * The transcoders beneath the members; their text stands at any address.
 *
 * src             in   the text, `srclen` bytes; a negative length counts as 0
 * dest            out  the text in the other form, `dest_size` or destfmt->maxlength bytes; must not
 *                      overlap the source
 * destfmt         in   what ends 16-bit text
 * destlen         out  the bytes written, whatever the result
 * validity_check  in   true refuses 0xFFFE and 0xFFFF
 *
 * Return CS_SUCCEED; CS_CONV_BADCHAR and CS_CONV_TRUNCATED as told for the members, and
 * CS_CONV_PADCONFLICT from comn__convert_from_utf8_to_utf16, which ends its text as they do. UTF-8 is
 * neither terminated nor padded. Null is fatal, CS_FAIL.
 */
ZRV_PRIVATE CS_RETCODE comn__convert_from_utf16_to_utf8(CS_VOID *src, CS_INT srclen, CS_VOID *dest,
                                                        CS_INT dest_size, CS_INT *destlen,
                                                        CS_BOOL validity_check) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comn__convert_from_utf8_to_utf16(CS_VOID *src, CS_INT srclen,
                                                        CS_DATAFMT *destfmt, CS_VOID *dest,
                                                        CS_INT *destlen,
                                                        CS_BOOL validity_check) ZRV_NOEXCEPT;

/*
 * ---- locators ----
 *
 * A record is valid by its tag: a default value (com_null_get, Comv_CS_LOCATOR) or what one of these
 * functions has written. It owns its blocks, all of them of comn_calloc, and who attaches chunks of his own
 * allocates them so too:
 *
 *     CS_LOCATOR                    CsBlobChunk          CsBlobChunk
 *     locator ------> token         pnext -------------> pnext ------> null
 *     locatorlen      of so many    len  of so many      len
 *     prefetchdata ---------------> data ------> bytes   data ------> bytes
 *
 * A chunk may be empty, its `data` then null. Who holds a record gives its blocks back with
 * comn__locator_clean; a copy of its bytes is no second owner.
 *
 * comn_locatortochar     the token as hexadecimal text, as comn_bintochar makes it
 * comn_chartolocator     the token from hexadecimal text (comn_chartobin), half as many bytes as there are
 *                        digits, rounded up. `dest` is emptied first: CS_FAIL without a valid record, also
 *                        for null, which is no failed check here. Its type is destfmt->datatype, and
 *                        `*destlen` and locatorlen are the decoded length. CS_CONV_OVERFLOW above 65,535
 *                        bytes; CS_MEM_ERROR; what comn_chartobin returns: the record then keeps an empty
 *                        token in a block, and destfmt is left as CS_TYPE_BINARY of the token's length
 * comn_locatortolocator  a copy with blocks of its own. `dest` is emptied first: CS_FAIL without a valid
 *                        record, null included, and between different datatypes. `*destlen` is the length
 *                        of the token. CS_MEM_ERROR: `dest` is empty, or without the prefetched data. A
 *                        record onto itself stays as it is
 *
 * The prefetched data; without any, `*destlen` is 0 and the result CS_SUCCEED:
 *
 * comn_locatortotext     chunk behind chunk through comn_chartochar, up to the first that fails, whose
 *                        result is returned. The bits of `format` act on the last chunk alone, so a text
 *                        cut before it has no terminator. A chunk that finds no room is CS_CONV_TRUNCATED.
 *                        Without data the first byte is 0
 * comn_locatortoimage    the bytes, but every chunk at the start of `dest`: several lie over one another, and
 *                        `*destlen` is the sum of their lengths. CS_CONV_TRUNCATED at the chunk that
 *                        exceeds what of maxlength the sum has left. CS_DFMT_PADNULL fills behind the sum
 * comn_locatortounitext  as to text, the first chunk through comn_unichartounichar. A second one is fatal,
 *                        the check of comn_chartochar. Without data the first unit is 0
 *
 * destfmt is changed while comn_chartolocator, comn_locatortotext and comn_locatortounitext run.
 */
ZRV_CONV(comn_locatortochar);
ZRV_CONV(comn_chartolocator);
ZRV_CONV(comn_locatortolocator);
ZRV_CONV(comn_locatortotext);
ZRV_CONV(comn_locatortoimage);
ZRV_CONV(comn_locatortounitext);

/* Empties a record: releases its token, its chunks and their data. Only the tag stays. Returns 1, or 0 for
 * null and for a record without the tag, which is left as it is. */
ZRV_PRIVATE CS_INT comn__locator_clean(CS_LOCATOR *locator) ZRV_NOEXCEPT;

/* ---- the time of day ---- */

/*
 * The current local time, as text and as fields.
 *
 * format    in   the order of the date: 2 day month year, 3 year month day,
 *                4 year day month, 5 month year day, 6 day year month,
 *                anything else month day year
 * is12hour  in   1 for hours up to 12 with "AM" or "PM"; midnight is hour 0
 * buffer    out  the text with its NUL, "mm/dd/yy hh:mm:ss" or
 *                "mm/dd/yy hh:mm:ss PM"; may be null
 * buflen    in   its capacity in bytes
 * outlen    out  the bytes that the text needs, its NUL included; may be null,
 *                and is left alone without a buffer
 * drec      out  the fields from the year to the second; may be null
 *
 * Returns CS_SUCCEED; CS_FAIL when the buffer is too small or the system has no time, the buffer
 * and `drec` untouched.
 */
ZRV_API CS_RETCODE comn_time(CS_INT format, CS_BOOL is12hour, CS_CHAR *buffer, CS_INT buflen,
                             CS_INT *outlen, CS_DATEREC *drec) ZRV_NOEXCEPT;

/*
 * The time at which a file was modified, in seconds since 1970, or 0 if it cannot be had. A null
 * path is fatal.
 */
ZRV_API time_t comn_file_modtime(CS_CHAR *path) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
