/*
 * zrvunic.h - the interface of libzrvunic: converters between character sets and Unicode text in
 * UTF-16, and between UTF-8 and UTF-16.
 *
 * libzrvcomn calls nothing else of this library, so any library with this interface can stand in
 * its place.
 *
 * Unicode text is an array of 16-bit units in the byte order of the machine that ends at a unit 0.
 * Text in a set ends at a NUL byte; see uniconv_unistrFromS for the two sets whose characters hold
 * NUL bytes of their own.
 */
#ifndef ZRV_ZRVUNIC_H
#define ZRV_ZRVUNIC_H

#include <stdint.h>

#ifndef ZRV_API
#define ZRV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#define ZRVUNIC_NOEXCEPT noexcept
#else
#define ZRVUNIC_NOEXCEPT
#endif

/* A byte of text, and a unit of Unicode text. */
typedef unsigned char UChar8;
typedef uint16_t UChar16;

/* Names a set; docs/files.md lists the sets with their numbers. */
typedef int UNICONV_CID;

/* The sets whose numbers are below 0 need no table file, and neither do 0 (ASCII) and 1 (ISO 8859-1).
 */
#define UNICONV_CID_UTF16 (-1) /* 16-bit units in the byte order of the machine */
#define UNICONV_CID_NONE (-3)  /* no converter: never found */
#define UNICONV_CID_UTF8 (-4)
#define UNICONV_CID_RCSU (-5) /* the standard compression scheme for Unicode */

/* A converter: a set, and what is to stand for characters that the set lacks. Conversions do not change
 * it, so threads may share one. */
typedef struct uniconv_converter *CVTH;

/* Results of the converters. */
#define UNICONV_SUCCEED 1           /* done */
#define UNICONV_SUBSTITUTED (-1328) /* done, and something had no counterpart and was replaced */
#define UNICONV_PARTIAL (-1333)     /* only a part of the source was read */
#define UNICONV_FULL (-1327)        /* the room is filled, and more was to come */
#define UNICONV_NOFIT (-1342)       /* the next character is longer than what is left of the room */
#define UNICONV_EINVAL (-1)         /* a null argument or a size without room for the terminator */
#define UNICONV_ENOCONV (-2)        /* no such set */
#define UNICONV_ENOTABLE (-3)       /* the set's table cannot be opened or read */
#define UNICONV_EDAMAGED (-4)       /* the set's table is not as it was written */
#define UNICONV_ENOMEM (-5)         /* no memory */

/* Results of the functions for UTF-8. */
#define UNIUTF8_EINVAL (-1)  /* a null argument or a size without room for the terminator */
#define UNIUTF8_FULL (-2)    /* the room ran out */
#define UNIUTF8_ILLEGAL (-3) /* the source is malformed */

/* Where a handle's table comes from (`useCurrentDir`). */
#define I18NUNI_DIR_HOME 0    /* charsets/unicode below the home directory */
#define I18NUNI_DIR_CURRENT 1 /* the current directory */
#define I18NUNI_DIR_PATH 2    /* the directory that the caller names */

/* How a handle is wanted. Tables are small, so they are read whole and shared whatever the first two
 * say. */
typedef struct i18nuni_request {
  int cacheInMemory;  /* the table may be shared; 1 by default */
  int cacheIndexOnly; /* less than the whole table may be held; 0 by default */
  int useCurrentDir;  /* an I18NUNI_DIR_ value; I18NUNI_DIR_HOME by default */
} I18NUNI_REQUEST;

/* Fills a request record with the defaults; null is allowed and ignored. */
ZRV_API void i18nuni_RequestSetDefaults(I18NUNI_REQUEST *request) ZRVUNIC_NOEXCEPT;

/*
 * Makes a converter for a set, with its table from the home directory.
 *
 * cid     in   the set
 * handle  out  the converter; null after a failure
 *
 * Returns UNICONV_SUCCEED, UNICONV_ENOCONV, UNICONV_ENOTABLE (also when there is no home directory),
 * UNICONV_EDAMAGED, UNICONV_ENOMEM, or UNICONV_EINVAL for a null `handle`. To be released with
 * uniconv_HandleFree. A table is read by the first converter that needs it, shared by all converters of
 * the process, and released with the last; while one lives nothing looks at the file again.
 */
ZRV_API int uniconv_HandleGet(UNICONV_CID cid, CVTH *handle) ZRVUNIC_NOEXCEPT;

/*
 * The same, with the table from a directory of the caller's choice.
 *
 * request   in   says which directory; null stands for the defaults
 * path      in   the directory as Unicode text for I18NUNI_DIR_PATH, with or without a slash at its
 *                end; not looked at otherwise. A path with U+FFFD in it, which is what a converter makes
 *                of bytes that it does not know, cannot be found again: the home directory is used.
 * reserved  in   0
 *
 * UNICONV_EINVAL also for a null path that is needed, an unknown `useCurrentDir` and a `reserved` that
 * is not 0; UNICONV_ENOTABLE also for a path of more than 4,000 bytes or of none. Tables of different
 * directories are not shared; one of the home directory is, whichever function asks for it.
 */
ZRV_API int uniconv_HandleGetU(UNICONV_CID cid, const I18NUNI_REQUEST *request, const UChar16 *path,
                               int reserved, CVTH *handle) ZRVUNIC_NOEXCEPT;

/* Releases a converter; null is allowed. Returns UNICONV_SUCCEED. */
ZRV_API int uniconv_HandleFree(CVTH handle) ZRVUNIC_NOEXCEPT;

/*
 * Sets what uniconv_unistrToS writes for a character that the set lacks.
 *
 * A set of one-byte characters always takes the first. A set that has longer ones takes the first for
 * characters up to U+00FF and the second for all others; one with shift states writes each of the two in
 * the state that it belongs to. A new converter has a question mark of its set, and two of them (0xFEFE
 * in the sets with shift states). The value is written as it is, whether the set has such a character or
 * not; UTF-8, UTF-16 and rcsu take the first as the number of a character. NUL, or a high byte of NUL,
 * gives UNICONV_EINVAL.
 *
 * handle  in/out  the converter
 * value   in      one byte; two bytes, the first of them in the high bits
 *
 * Returns UNICONV_SUCCEED or UNICONV_EINVAL.
 */
ZRV_API int uniconv_SetSubstituteChar(CVTH handle, UChar8 value) ZRVUNIC_NOEXCEPT;
ZRV_API int uniconv_SetDBCSSubstituteChar(CVTH handle, UChar16 value) ZRVUNIC_NOEXCEPT;

/*
 * Turns text of the converter's set into Unicode.
 *
 * Bytes that are no character of the set become U+FFFD, one for each maximal run that could have begun a
 * character.
 *
 * handle  in   the converter
 * dest    out  the text, always terminated
 * size    in   the room in units, with the terminator
 * source  in   NUL-terminated text. Characters of UTF-16 and of rcsu hold NUL bytes of their own: UTF-16
 *              ends at a unit 0, rcsu at a NUL byte that begins a character or a command, and to end
 *              text of unknown shape safely **three** NUL bytes must stand behind it.
 * length  out  the units written, with the terminator; 0 after UNICONV_EINVAL; may be null
 *
 * Returns UNICONV_SUCCEED; UNICONV_SUBSTITUTED; UNICONV_PARTIAL when the source ends within a character,
 * which is left out, or when the room ran out, and then `dest` holds whole characters; UNICONV_EINVAL,
 * and then nothing is written. As many units as the text has bytes are enough for every set but rcsu,
 * which needs twice as many, each plus the terminator.
 */
ZRV_API int uniconv_unistrFromS(CVTH handle, UChar16 *dest, int size, const UChar8 *source,
                                int *length) ZRVUNIC_NOEXCEPT;

/*
 * Turns Unicode text into the converter's set.
 *
 * A character that the set lacks, and an unpaired surrogate, is replaced by a substitute
 * (uniconv_SetSubstituteChar). Text of a set with shift states begins and ends in the state of one-byte
 * characters, also when the room ran out.
 *
 * handle  in   the converter
 * dest    out  the text, whole characters only, always terminated by one NUL byte
 * size    in   the room in bytes, with the terminator
 * source  in   Unicode text
 * length  out  the bytes written, with the terminator; 0 after UNICONV_EINVAL; may be null
 *
 * Returns UNICONV_SUCCEED; UNICONV_SUBSTITUTED; UNICONV_FULL when the room, less the terminator, is
 * filled to the last byte before the end of the text; UNICONV_NOFIT when bytes are left that the next
 * character does not fit: they are cleared; UNICONV_EINVAL, and then nothing is written. The last two
 * tell nothing of substitutes.
 */
ZRV_API int uniconv_unistrToS(CVTH handle, UChar8 *dest, int size, const UChar16 *source,
                              int *length) ZRVUNIC_NOEXCEPT;

/*
 * How much longer text can become on its way from one set to another: bytes in `to` for one byte in
 * `from`, at the worst and rounded up.
 *
 * from, to   in   the sets
 * expansion  out  the factor, 1 or more; unchanged after a failure
 *
 * Returns UNICONV_SUCCEED, UNICONV_ENOCONV or UNICONV_EINVAL. Reads no table.
 */
ZRV_API int uniconv_GetExpansion(UNICONV_CID from, UNICONV_CID to, int *expansion) ZRVUNIC_NOEXCEPT;

/* The bytes that one Unicode unit can become in the converter's set, at the worst, shifts included.
 * Returns UNICONV_SUCCEED or UNICONV_EINVAL. */
ZRV_API int uniconv_GetExpansionFactor(CVTH handle, int *factor) ZRVUNIC_NOEXCEPT;

/*
 * Turns UTF-8 into Unicode text, and back. Overlong forms, surrogates, values above U+10FFFF and cut
 * characters are malformed UTF-8, unpaired surrogates malformed UTF-16.
 *
 * dest    out  the text, whole characters only, always terminated unless the result is UNIUTF8_EINVAL
 * size    in   the room in units, respectively bytes, with the terminator; so many units as the source
 *              has bytes, and three times as many bytes as it has units, are enough, each plus one
 * source  in   terminated text
 * used    out  how many bytes, respectively units, of the source were read: all of them, or those before
 *              the character that did not fit or is malformed; may be null
 *
 * Returns the units or bytes written, without the terminator; UNIUTF8_FULL, and then what is left of
 * the room is cleared; UNIUTF8_ILLEGAL; UNIUTF8_EINVAL.
 */
ZRV_API int uniutf8_unistrFromUTF8(UChar16 *dest, int size, const UChar8 *source,
                                   int *used) ZRVUNIC_NOEXCEPT;
ZRV_API int uniutf8_unistrToUTF8(UChar8 *dest, int size, const UChar16 *source,
                                 int *used) ZRVUNIC_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
