// Small services that need no subsystem of their own.
#include <dlfcn.h>

#include <cctype>
#include <cstring>

#include "checks.h"
#include "zrvintl.h"

namespace {

// Longest value that com_getenv reads, with its terminator.
constexpr int env_size = 256;

constexpr CS_INT library_version = 16001;

// ASCII alone: a result must not depend on the locale of the application.
constexpr unsigned char fold_case(unsigned char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

constexpr unsigned char as_is(unsigned char c) noexcept {
  return c;
}

template <unsigned char (*Fold)(unsigned char) noexcept>
CS_INT compare_strings(const unsigned char *s1, const unsigned char *s2) noexcept {
  for (; Fold(*s1) == Fold(*s2); ++s1, ++s2)
    if (*s1 == 0)
      return 0;
  return Fold(*s1) - Fold(*s2);
}

template <unsigned char (*Fold)(unsigned char) noexcept>
CS_INT compare_bytes(const unsigned char *s1, const unsigned char *s2, int len) noexcept {
  for (int i = 0; i < len; ++i)
    if (Fold(s1[i]) != Fold(s2[i]))
      return Fold(s1[i]) - Fold(s2[i]);
  return 0;
}

} // namespace

const CS_CHAR comn__Vdate[] = "libzrvcomn/16.0.1/Linux/non-threaded";

char *comn__getVdate() noexcept {
  return const_cast<CS_CHAR *>(comn__Vdate);
}

CS_CHAR *com_getenv(char *envvar) noexcept {
  if (envvar == nullptr)
    return nullptr;
  char value[env_size];
  const int length = intlgetenv(value, env_size, envvar);
  if (length <= 0 || length >= env_size)
    return nullptr;
  const auto size = static_cast<size_t>(length) + 1;
  auto *copy = static_cast<CS_CHAR *>(comn_malloc(size));
  if (copy != nullptr)
    std::memcpy(copy, value, size);
  return copy;
}

CS_RETCODE com_setstring(CS_CHAR **destp, CS_INT *destlenp, CS_CHAR *source,
                         CS_INT sourcelen) noexcept {
  if (destp == nullptr || destlenp == nullptr || source == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_INT length =
      sourcelen == CS_LEN_NULLTERM ? static_cast<CS_INT>(std::strlen(source)) : sourcelen;
  if (length < 1)
    return COMN_TRACE(CS_FAIL);

  const auto bytes = static_cast<size_t>(length);
  // A null result goes into *destp as well and the old block is given up: callers rely on seeing
  // the failure in the string itself.
  *destp = static_cast<CS_CHAR *>(comn_realloc(*destp, bytes + 1));
  if (*destp == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  std::memcpy(*destp, source, bytes);
  (*destp)[bytes] = '\0';
  *destlenp = length;
  return COMN_TRACE(CS_SUCCEED);
}

CS_INT com_memhilo(CS_BYTE *p1, CS_INT len1, CS_BYTE *p2, CS_INT len2) noexcept {
  const CS_INT common = len1 < len2 ? len1 : len2;
  if (common > 0) {
    COMN_CHECK_PTR(p1, 0);
    COMN_CHECK_PTR(p2, 0);
    const int order = std::memcmp(p1, p2, static_cast<size_t>(common));
    if (order != 0)
      return order < 0 ? -1 : 1;
  }
  return (len1 > len2) - (len1 < len2);
}

CS_VOID *com_secure_memset(CS_VOID *s, CS_CHAR c, size_t n) noexcept {
  if (n == 0)
    return s;
  COMN_CHECK_PTR(s, nullptr);
  auto *bytes = static_cast<volatile CS_CHAR *>(s);
  for (size_t i = 0; i < n; ++i)
    bytes[i] = c;
  return s;
}

CS_INT com_unsignstrcmp(unsigned char *str1, unsigned char *str2) noexcept {
  COMN_CHECK_PTR(str1, 0);
  COMN_CHECK_PTR(str2, 0);
  return compare_strings<as_is>(str1, str2);
}

CS_INT com_unsignstrncmp(unsigned char *str1, unsigned char *str2, int len) noexcept {
  COMN_CHECK_PTR(str1, 0);
  COMN_CHECK_PTR(str2, 0);
  return compare_bytes<as_is>(str1, str2, len);
}

CS_INT com_unsignstricmp(unsigned char *str1, unsigned char *str2) noexcept {
  COMN_CHECK_PTR(str1, 0);
  COMN_CHECK_PTR(str2, 0);
  return compare_strings<fold_case>(str1, str2);
}

CS_INT com_unsignstrnicmp(unsigned char *str1, unsigned char *str2, int len) noexcept {
  COMN_CHECK_PTR(str1, 0);
  COMN_CHECK_PTR(str2, 0);
  return compare_bytes<fold_case>(str1, str2, len);
}

void com_version(CS_INT *p_version, CS_BOOL *p_is_debug) noexcept {
  COMN_CHECK_PTR(p_version);
  COMN_CHECK_PTR(p_is_debug);
  *p_version = library_version;
  *p_is_debug = 1;
}

CS_CHAR *com_get_driverversionsuffix() noexcept {
  static char suffix[] = ".16.0.1";
  return suffix;
}

CS_RETCODE comn_get_default_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  constexpr CS_INT tid = 0;
  constexpr CS_INT width = sizeof tid;
  if (buflen < width)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  std::memcpy(buffer, &tid, sizeof tid);
  if (outlen != nullptr)
    *outlen = width;
  return COMN_TRACE(CS_SUCCEED);
}

void *com_dlsym(CS_CHAR *symbol) noexcept {
  COMN_CHECK_PTR(symbol, nullptr);
  return dlsym(RTLD_DEFAULT, symbol);
}

void comn__sanitize_name(CS_INT sanitize, CS_CHAR *sname, CS_INT namesize) noexcept {
  COMN_CHECK_PTR(sname);
  if (sanitize != COM_SANITIZE_LOWER && sanitize != COM_SANITIZE_UPPER)
    return;
  // Unlike a result, a name is folded by the rules of the application's locale.
  for (CS_INT i = 0; i <= namesize && sname[i] != '\0'; ++i) {
    const auto c = static_cast<unsigned char>(sname[i]);
    sname[i] =
        static_cast<CS_CHAR>(sanitize == COM_SANITIZE_LOWER ? std::tolower(c) : std::toupper(c));
  }
}
