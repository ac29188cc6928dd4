#include "numeric_peers.h"

#include <charconv>
#include <cstring>
#include <string>

#ifdef ZRVBENCH_WITH_FMT
#include <fmt/format.h>
#endif

#ifdef ZRVBENCH_WITH_PGTYPES
#include <pgtypes_numeric.h>

void *peer_pg_make(const char *text) {
  return PGTYPESnumeric_from_asc(const_cast<char *>(text), nullptr);
}
int peer_pg_add(void *a, void *b, void *result) {
  return PGTYPESnumeric_add(static_cast<numeric *>(a), static_cast<numeric *>(b),
                            static_cast<numeric *>(result));
}
int peer_pg_sub(void *a, void *b, void *result) {
  return PGTYPESnumeric_sub(static_cast<numeric *>(a), static_cast<numeric *>(b),
                            static_cast<numeric *>(result));
}
int peer_pg_mul(void *a, void *b, void *result) {
  return PGTYPESnumeric_mul(static_cast<numeric *>(a), static_cast<numeric *>(b),
                            static_cast<numeric *>(result));
}
int peer_pg_cmp(void *a, void *b) {
  return PGTYPESnumeric_cmp(static_cast<numeric *>(a), static_cast<numeric *>(b));
}
#endif

#ifdef ZRVBENCH_WITH_GMP
#include <gmp.h>

namespace {

struct Numbers {
  mpz_t a, b, result;
  Numbers() {
    mpz_init2(a, 512);
    mpz_init2(b, 512);
    mpz_init2(result, 512);
  }
};
Numbers numbers;

void read(mpz_t number, const unsigned char *magnitude, size_t bytes) {
  mpz_import(number, bytes, 1, 1, 1, 0, magnitude);
}

void write(unsigned char *magnitude, const mpz_t number) {
  size_t count;
  mpz_export(magnitude, &count, 1, 1, 1, 0, number);
}

} // namespace

void peer_gmp_add(const unsigned char *a, const unsigned char *b, size_t bytes,
                  unsigned char *result) {
  read(numbers.a, a, bytes);
  read(numbers.b, b, bytes);
  mpz_add(numbers.result, numbers.a, numbers.b);
  write(result, numbers.result);
}
void peer_gmp_sub(const unsigned char *a, const unsigned char *b, size_t bytes,
                  unsigned char *result) {
  read(numbers.a, a, bytes);
  read(numbers.b, b, bytes);
  mpz_sub(numbers.result, numbers.a, numbers.b);
  write(result, numbers.result);
}
void *peer_gmp_make(const char *digits) {
  auto *number = new mpz_t[1];
  mpz_init2(*number, 512);
  mpz_set_str(*number, digits, 10);
  return number;
}
void peer_gmp_divide(void *a, void *b, void *quotient) {
  mpz_tdiv_q(*static_cast<mpz_t *>(quotient), *static_cast<mpz_t *>(a), *static_cast<mpz_t *>(b));
}
int peer_gmp_set_str(void *number, const char *text) {
  return mpz_set_str(*static_cast<mpz_t *>(number), text, 10);
}
char *peer_gmp_get_str(char *buffer, void *number) {
  return mpz_get_str(buffer, 10, *static_cast<mpz_t *>(number));
}
#endif

#ifdef ZRVBENCH_WITH_BOOST
#include <boost/multiprecision/cpp_int.hpp>

namespace {

using Integer = boost::multiprecision::uint256_t;

Integer read_integer(const unsigned char *magnitude, size_t bytes) {
  Integer number;
  boost::multiprecision::import_bits(number, magnitude, magnitude + bytes, 8, true);
  return number;
}

void write_integer(unsigned char *magnitude, const Integer &number) {
  boost::multiprecision::export_bits(number, magnitude, 8, true);
}

} // namespace

void peer_boost_add(const unsigned char *a, const unsigned char *b, size_t bytes,
                    unsigned char *result) {
  write_integer(result, read_integer(a, bytes) + read_integer(b, bytes));
}
void peer_boost_mul(const unsigned char *a, const unsigned char *b, size_t bytes,
                    unsigned char *result) {
  write_integer(result, read_integer(a, bytes) * read_integer(b, bytes));
}
void peer_boost_divide(const unsigned char *a, size_t a_bytes, const unsigned char *b,
                       size_t b_bytes, unsigned char *result) {
  write_integer(result, read_integer(a, a_bytes) / read_integer(b, b_bytes));
}
void peer_boost_from_text(const char *text, unsigned char *result) {
  write_integer(result, Integer(text));
}
size_t peer_boost_to_text(const unsigned char *magnitude, size_t bytes, char *text) {
  const std::string digits = read_integer(magnitude, bytes).str();
  std::memcpy(text, digits.data(), digits.size());
  return digits.size();
}
#endif

namespace {

typedef float Decimal [[gnu::mode(DD)]];

Decimal from_bits(uint64_t bits) {
  Decimal value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

uint64_t bits_of(Decimal value) {
  uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

} // namespace

uint64_t peer_decimal_make(int64_t count) {
  return bits_of(static_cast<Decimal>(count) / static_cast<Decimal>(10000));
}
void peer_decimal_add(const uint64_t *a, const uint64_t *b, uint64_t *result) {
  *result = bits_of(from_bits(*a) + from_bits(*b));
}
void peer_decimal_sub(const uint64_t *a, const uint64_t *b, uint64_t *result) {
  *result = bits_of(from_bits(*a) - from_bits(*b));
}
void peer_decimal_mul(const uint64_t *a, const uint64_t *b, uint64_t *result) {
  *result = bits_of(from_bits(*a) * from_bits(*b));
}
int peer_decimal_cmp(const uint64_t *a, const uint64_t *b) {
  const Decimal x = from_bits(*a), y = from_bits(*b);
  return x < y ? -1 : x > y;
}

double peer_from_chars(const char *text, size_t length) {
  double value = 0;
  std::from_chars(text, text + length, value);
  return value;
}

#ifdef ZRVBENCH_WITH_FMT
size_t peer_fmt_two_decimals(char *text, double value) {
  return static_cast<size_t>(fmt::format_to(text, "{:.2f}", value) - text);
}
#endif
