/*
 * zrvintl.h - the interface of libzrvintl: memory, environment, home directory, bounded strings.
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

/* Failures of the functions below. */
#define ZRVINTL_EINVAL (-1)  /* a null argument or a size below 1 */
#define ZRVINTL_ESIZE (-2)   /* the result and its terminator do not fit */
#define ZRVINTL_ENOHOME (-3) /* no home directory can be found */

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
 * empty; ZRVINTL_ESIZE when the value does not fit (it is never cut); ZRVINTL_EINVAL.
 */
ZRV_API int intlgetenv(char *buffer, int size, const char *name) ZRVINTL_NOEXCEPT;

/*
 * Finds the installation's home directory: the variable ZARVEK if it is set, else the home
 * directory of the user zarvek, else the tree that was installed with this library. Whether the
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

#ifdef __cplusplus
}
#endif

#endif
