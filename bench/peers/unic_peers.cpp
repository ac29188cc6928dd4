// The peers of the Unicode converters.
#include "unic_peers.h"

#include <cstdio>
#include <cstdlib>

#include <iconv.h>
#ifdef ZRVBENCH_WITH_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

namespace {

[[noreturn]] void give_up(const char *what) {
  std::fprintf(stderr, "unic_peers: %s\n", what);
  std::exit(1);
}

} // namespace

void *zrvbench::iconv_peer(const char *to, const char *from) {
  const iconv_t descriptor = iconv_open(to, from);
  if (descriptor == reinterpret_cast<iconv_t>(-1))
    give_up(from);
  return descriptor;
}

std::size_t zrvbench::iconv_convert(void *peer, const char *source, std::size_t length, char *dest,
                                    std::size_t room) {
  char *in = const_cast<char *>(source);
  char *out = dest;
  if (iconv(peer, &in, &length, &out, &room) != 0)
    give_up("iconv failed");
  return static_cast<std::size_t>(out - dest);
}

#ifdef ZRVBENCH_WITH_ICU
namespace {

std::size_t checked(int32_t length, UErrorCode status) {
  if (U_FAILURE(status))
    give_up(u_errorName(status));
  return static_cast<std::size_t>(length);
}

} // namespace

void *zrvbench::icu_peer(const char *set) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter *const converter = ucnv_open(set, &status);
  if (U_FAILURE(status))
    give_up(set);
  return converter;
}

std::size_t zrvbench::icu_to_units(void *peer, const char *source, char16_t *dest,
                                   std::size_t room) {
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = ucnv_toUChars(static_cast<UConverter *>(peer), dest,
                                       static_cast<int32_t>(room), source, -1, &status);
  return checked(length, status);
}

std::size_t zrvbench::icu_from_units(void *peer, const char16_t *source, char *dest,
                                     std::size_t room) {
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = ucnv_fromUChars(static_cast<UConverter *>(peer), dest,
                                         static_cast<int32_t>(room), source, -1, &status);
  return checked(length, status);
}

std::size_t zrvbench::icu_from_utf8(const char *source, char16_t *dest, std::size_t room) {
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  u_strFromUTF8(dest, static_cast<int32_t>(room), &length, source, -1, &status);
  return checked(length, status);
}

std::size_t zrvbench::icu_to_utf8(const char16_t *source, char *dest, std::size_t room) {
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  u_strToUTF8(dest, static_cast<int32_t>(room), &length, source, -1, &status);
  return checked(length, status);
}
#endif
