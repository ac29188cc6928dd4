/*
 * zrvintl.h - the interface of libzrvintl: memory, environment, home directory, bounded strings, the
 * texts of messages, the reader of the installation's files, and files read byte by byte.
 *
 * libzrvcomn calls nothing else of this library, so any library with this interface can stand in
 * its place.
 */
#ifndef ZRV_ZRVINTL_H
#define ZRV_ZRVINTL_H

#include <stddef.h>

#ifndef ZRV_API
#define ZRV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#define ZRVINTL_NOEXCEPT noexcept
#else
#define ZRVINTL_NOEXCEPT
#endif

/* The statuses of section files, for which intl_errstr has texts. */
#define ZRVINTL_EOPEN (-1)   /* the file cannot be opened, or there is no memory for its block */
#define ZRVINTL_EREAD (-2)   /* reading or closing failed */
#define ZRVINTL_ELINE (-3)   /* a line is too long */
#define ZRVINTL_ENAME (-4)   /* the name of a section or of an entry is too long */
#define ZRVINTL_EVALUE (-5)  /* a value is too long */
#define ZRVINTL_ESYNTAX (-6) /* a malformed line */
#define ZRVINTL_ECLOSED (-7) /* the file is not open */
#define ZRVINTL_EDATE (-8) /* a date section is incomplete, or one of its values is no such value */

/* Failures of the other functions below. */
#define ZRVINTL_EINVAL (-9)   /* a null argument or a size below 1 */
#define ZRVINTL_ESIZE (-10)   /* the result and its terminator do not fit */
#define ZRVINTL_ENOHOME (-11) /* no home directory can be found */

/* A program that defines the next four itself takes the memory of both libraries over. */

/* A block of `size` bytes, uninitialised, aligned for any type; null on failure. A size of 0 gives
 * a block of its own that holds nothing. Release with comn_free. */
ZRV_API void *comn_malloc(size_t size) ZRVINTL_NOEXCEPT;

/* A cleared block for `count` elements of `size` bytes; null on failure, also when the product
 * overflows. With either of them 0 it is a block of its own that holds nothing. Release with
 * comn_free. */
ZRV_API void *comn_calloc(size_t count, size_t size) ZRVINTL_NOEXCEPT;

/* Resizes a block of comn_malloc and its kin, keeping its contents up to the smaller size; a null
 * block allocates. Never releases: a size of 0 resizes to a block that holds nothing. Null on
 * failure, and the old block then lives on. */
ZRV_API void *comn_realloc(void *block, size_t size) ZRVINTL_NOEXCEPT;

/* Releases a block; null is allowed. */
ZRV_API void comn_free(void *block) ZRVINTL_NOEXCEPT;

/*
 * Reads an environment variable.
 *
 * buffer  out  the value, NUL-terminated; the empty string unless the result is positive
 * size    in   the full size of `buffer` in bytes
 * name    in   the variable
 *
 * Returns the length of the value without its terminator; 0 when the variable is not set or is
 * empty; ZRVINTL_ESIZE when the value does not fit (it is never cut), so who only asks whether a
 * variable is set takes that as set; ZRVINTL_EINVAL.
 */
ZRV_API int intlgetenv(char *buffer, int size, const char *name) ZRVINTL_NOEXCEPT;

/*
 * Finds the installation's home directory: the variable ZARVEK if it is set and not empty, else the
 * home directory of the user zarvek, else the tree that was installed with this library. Whether the
 * directory exists is not looked at for ZARVEK. Trailing slashes are dropped.
 *
 * buffer  out  the path, NUL-terminated; the empty string on failure
 * size    in   the full size of `buffer` in bytes
 *
 * Returns the length of the path without its terminator, or ZRVINTL_ESIZE, ZRVINTL_ENOHOME or
 * ZRVINTL_EINVAL.
 */
ZRV_API int intl_home(char *buffer, int size) ZRVINTL_NOEXCEPT;

/* Copies `source` to, or appends it to, the string at `dest`, whose full size is `size` bytes. The
 * two must not be null; they may overlap. The result is cut to fit and always terminated, unless
 * `size` is 0 or, for the append, `dest` has no terminator within `size`: then nothing is written.
 * Returns the length of the text that was wanted; a result of `size` or more means that it was cut.
 */
ZRV_API size_t intl_strlcpy(char *dest, const char *source, size_t size) ZRVINTL_NOEXCEPT;
ZRV_API size_t intl_strlcat(char *dest, const char *source, size_t size) ZRVINTL_NOEXCEPT;

/*
 * Builds the text of a message from its arguments.
 *
 * zero    in   0
 * buffer  out  the result, NUL-terminated; the empty string on failure
 * size    in   the full size of `buffer` in bytes
 * text    in   the message, with marks where arguments go; must not overlap `buffer`
 * format  in   the arguments behind it, in their order: "%s" for a string, "%d" for an int, "%ld"
 *              for a long; what stands between those does not matter. At most
 *              INTL_MAX_ARGUMENTS of them
 *
 * A mark of the text is "%1!" to "%9!", the argument with that number, so that a translation may
 * have another order, or "%s", "%d" or "%ld", which take the arguments one after another. The format
 * alone says what an argument is: any mark shows any argument, strings as they are, numbers in
 * decimal digits. "%%" is one percent sign. What is no mark, and a mark for which there is no
 * argument, stays as it stands; an argument without a mark is left out.
 *
 * Returns the length of the result without its terminator; ZRVINTL_ESIZE when it does not fit, as it
 * is never cut; ZRVINTL_EINVAL for a null argument, a null string among the arguments, a size below
 * 1, a first argument that is not 0, and a format with another conversion or too many.
 */
#define INTL_MAX_ARGUMENTS 9
ZRV_API int intl_strbuild(int zero, char *buffer, int size, const char *text, const char *format,
                          ...) ZRVINTL_NOEXCEPT;

/* ---- section files ----
 *
 * All text files of an installation have one syntax, which docs/files.md shows rule by rule:
 *
 *   ; a comment
 *   [section]
 *   key = value, "a value, quoted", \x41, a value that goes \
 *         on in the next line
 *
 * A caller provides an INTL_LOCFILE, opens it, asks for sections, entries and values in turn, and
 * closes it. Sections and entries come in the order of the file, and names may repeat. What a caller
 * does not ask for is passed over, and must be well formed all the same.
 *
 * The first error is final: every later call answers with its status until the file is closed, and
 * `linenum` stays at the line of the error.
 */

/* The largest texts are one byte shorter than these. */
#define INTL_LINE_SIZE 1024 /* a line as it stands in the file, without its end */
#define INTL_NAME_SIZE 64   /* the name of a section, the key of an entry */
#define INTL_VALUE_SIZE 1025

/* The state of an open file. A caller may find it filled with anything before intl_open, reads
 * `linenum` at most and changes nothing. */
typedef struct intl_locfile {
  int version;               /* of this record */
  int linenum;               /* the line that was read last, from 1; 0 before the first */
  int linelen;               /* bytes in `line` */
  int linepos;               /* the first of them that is not parsed yet */
  int end_of_list;           /* the entry has no further value */
  int end_of_section;        /* the section has no further entry */
  int eof;                   /* the file has no further line */
  char comment_char;         /* ';' */
  char leftsection;          /* '[' */
  char rightsection;         /* ']' */
  char list_sep;             /* ',' */
  char escape;               /* '\\' */
  char line[INTL_LINE_SIZE]; /* the line, without its end, NUL-terminated */
  char section[INTL_NAME_SIZE];
  char entry[INTL_NAME_SIZE];
  char value[INTL_VALUE_SIZE];
  void *file;      /* the open file; null when there is none */
  int isquoted;    /* the value stood in quotes */
  char quote_char; /* '"' */
} INTL_LOCFILE;

/*
 * Opens a file.
 *
 * path   in   the file
 * ifile  out  the state; after a failure it counts as not open
 *
 * Returns 0, or ZRVINTL_EOPEN, also for a null path, or ZRVINTL_ECLOSED for a null `ifile`. To be
 * closed with intl_close after a success. What the file holds is not looked at yet.
 */
ZRV_API int intl_open(const char *path, INTL_LOCFILE *ifile) ZRVINTL_NOEXCEPT;

/* Closes a file and releases what belongs to it, whatever the result: 0, ZRVINTL_EREAD when the
 * system reports a failure, or ZRVINTL_ECLOSED. An error of reading is not told again. */
ZRV_API int intl_close(INTL_LOCFILE *ifile) ZRVINTL_NOEXCEPT;

/*
 * Goes to the next section, past what is left of this one.
 *
 * ifile   in/out  an open file
 * status  out     0, or a negative status; may be null
 *
 * Returns the section's name, NUL-terminated, which stands in `ifile` until the next section is
 * asked for; null with status 0 at the end of the file; null with ZRVINTL_EREAD, ZRVINTL_ELINE,
 * ZRVINTL_ENAME, ZRVINTL_EVALUE, ZRVINTL_ESYNTAX or ZRVINTL_ECLOSED.
 */
ZRV_API char *intl_nextsection(INTL_LOCFILE *ifile, int *status) ZRVINTL_NOEXCEPT;

/* Goes to the next entry of the section, past what is left of this one. The same for its key; null
 * with status 0 at the end of the section, and before the first section. */
ZRV_API char *intl_nextentry(INTL_LOCFILE *ifile, int *status) ZRVINTL_NOEXCEPT;

/*
 * Reads the next value of the entry.
 *
 * ifile   in/out  an open file
 * status  out     1 when further values follow, 0 with the last one, or negative; may be null
 *
 * Returns the value, NUL-terminated, in `ifile`, where it stays until the next call on the file. It
 * may contain NULs of its own, and zeroes fill what is left of its INTL_VALUE_SIZE bytes, so that a
 * number may be read byte by byte. Null with status 0 when the entry has no further value, else as
 * above.
 */
ZRV_API char *intl_nextvalue(INTL_LOCFILE *ifile, int *status) ZRVINTL_NOEXCEPT;

/* The text of a status of this library, with either sign; never null. Static storage. */
ZRV_API const char *intl_errstr(int status) ZRVINTL_NOEXCEPT;

/* ---- the date section of a language ----
 *
 *   [datetime]
 *   months = January, February, ...       12 texts
 *   shortmonths = Jan, Feb, ...           12 texts
 *   days = Monday, Tuesday, ...           7 texts, from Monday on
 *   firstday = 7                          the day that a week begins with; 1 is Monday
 *   dateorder = mdy                       the order of month, day and year
 *   is12hour = true                       or false
 */

/* What it holds; the texts are NUL-terminated. */
typedef struct intl_dateinfo {
  char months[12][21];
  char shortmonths[12][10];
  char days[7][31]; /* from Monday on, whatever `firstday` is */
  int firstday;     /* 1 to 7 */
  char dateorder[4];
  int is12hour; /* 0 or 1 */
} intl_dateinfo;

/*
 * Reads a date section.
 *
 * ifile     in/out  an open file, whose section it is; at the end of the section afterwards
 * dateinfo  out     the section; on failure what was read so far
 *
 * Entries stand in any order, and other keys are passed over; of a key that repeats, the last counts.
 * Returns 0; ZRVINTL_EDATE when a key is missing or has fewer or more values than it must, and for a
 * first day or a clock that is none; ZRVINTL_EVALUE for a text that is too long for its place;
 * ZRVINTL_EINVAL for a null `dateinfo`; or the reader's own status.
 */
ZRV_API int intl_datetime(INTL_LOCFILE *ifile, intl_dateinfo *dateinfo) ZRVINTL_NOEXCEPT;

/* ---- files that are read byte by byte ---- */

/* An open file. */
typedef struct intl_iocs INTL_IOCS;

/* The mode of intl_iocsfopen: to read. */
#define INTL_IOCS_READ 2

/* Opens the file at `path`. `mode` is INTL_IOCS_READ; there is no other. Null for another mode or a null
 * path, when the file cannot be opened and without memory. To be closed with intl_iocsfclose. */
ZRV_API INTL_IOCS *intl_iocsfopen(const char *path, int mode) ZRVINTL_NOEXCEPT;

/*
 * Reads on.
 *
 * buffer  out  the items, one after another; what stands behind the last whole one is undefined
 * size    in   bytes of an item
 * count   in   the most items to read
 *
 * Returns the number of whole items; 0 at the end of the file and when nothing is asked for. What is
 * left of the file when it is less than an item is lost. When reading fails the whole items that were
 * read before are the result, and every later call is ZRVINTL_EREAD. ZRVINTL_EINVAL for a null pointer
 * and for more than INT_MAX bytes.
 */
ZRV_API int intl_iocsfread(void *buffer, size_t size, size_t count,
                           INTL_IOCS *iocs) ZRVINTL_NOEXCEPT;

/* Closes a file and releases it, whatever the result: 0, ZRVINTL_EREAD when the system reports a
 * failure, or ZRVINTL_ECLOSED for null. */
ZRV_API int intl_iocsfclose(INTL_IOCS *iocs) ZRVINTL_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
