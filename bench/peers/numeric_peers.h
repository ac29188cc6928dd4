// The peers of exact numerics, in a shared object of their own: the numerics of an SQL client, long
// integers, and fixed-width long integers. Values are made beforehand; what an operation needs to
// get from the bytes of a value and back to bytes is part of it where the name says so.
#ifndef ZRVBENCH_NUMERIC_PEERS_H
#define ZRVBENCH_NUMERIC_PEERS_H

#include <cstddef>
#include <cstdint>

extern "C" {

#ifdef ZRVBENCH_WITH_PGTYPES
// A value of the SQL client's numeric type from text, never released.
void *peer_pg_make(const char *text);
int peer_pg_add(void *a, void *b, void *result);
int peer_pg_sub(void *a, void *b, void *result);
int peer_pg_mul(void *a, void *b, void *result);
int peer_pg_cmp(void *a, void *b);
#endif

#ifdef ZRVBENCH_WITH_GMP
// Sum and difference of big-endian magnitudes, written back to as many bytes (one more for a sum).
void peer_gmp_add(const unsigned char *a, const unsigned char *b, size_t bytes,
                  unsigned char *result);
void peer_gmp_sub(const unsigned char *a, const unsigned char *b, size_t bytes,
                  unsigned char *result);
// A long integer from digits, never released; its quotient, and text both ways.
void *peer_gmp_make(const char *digits);
void peer_gmp_divide(void *a, void *b, void *quotient);
int peer_gmp_set_str(void *number, const char *text);
char *peer_gmp_get_str(char *buffer, void *number);
#endif

#ifdef ZRVBENCH_WITH_BOOST
// On integers of 256 bits, from big-endian magnitudes and back; text likewise.
void peer_boost_add(const unsigned char *a, const unsigned char *b, size_t bytes,
                    unsigned char *result);
void peer_boost_mul(const unsigned char *a, const unsigned char *b, size_t bytes,
                    unsigned char *result);
void peer_boost_divide(const unsigned char *a, size_t a_bytes, const unsigned char *b,
                       size_t b_bytes, unsigned char *result);
void peer_boost_from_text(const char *text, unsigned char *result);
size_t peer_boost_to_text(const unsigned char *magnitude, size_t bytes, char *text);
#endif

// The compiler's decimal floating point, as bits: a count of ten-thousandths of up to 16 digits, and
// operations.
uint64_t peer_decimal_make(int64_t count);
void peer_decimal_add(const uint64_t *a, const uint64_t *b, uint64_t *result);
void peer_decimal_sub(const uint64_t *a, const uint64_t *b, uint64_t *result);
void peer_decimal_mul(const uint64_t *a, const uint64_t *b, uint64_t *result);
int peer_decimal_cmp(const uint64_t *a, const uint64_t *b);

// Text to double, and double to text with two decimals.
double peer_from_chars(const char *text, size_t length);
#ifdef ZRVBENCH_WITH_FMT
size_t peer_fmt_two_decimals(char *text, double value);
#endif
}

#endif
