// The panic exit and the checked string copies.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "checks.h"
#include "zrvintl.h"

void com_panic(char *msg) noexcept {
  COMN_CHECK_PTR(msg);
  std::fprintf(stderr, "\nINTERNAL ERROR: unrecoverable error: %s\n", msg);
  std::fflush(stderr);
  std::exit(-1);
}

CS_RETCODE com_copstr(char *dest, char *src, int size) noexcept {
  COMN_CHECK(dest != nullptr && src != nullptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK(size >= 1, COMN_TRACE(CS_FAIL));
  const auto room = static_cast<size_t>(size);
  COMN_CHECK(std::strlen(src) < room, COMN_TRACE(CS_FAIL));
  intl_strlcpy(dest, src, room);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_catstr(char *dest, char *src, int size) noexcept {
  COMN_CHECK(dest != nullptr && src != nullptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK(size >= 1, COMN_TRACE(CS_FAIL));
  const auto room = static_cast<size_t>(size);
  COMN_CHECK(strnlen(dest, room) + std::strlen(src) < room, COMN_TRACE(CS_FAIL));
  intl_strlcat(dest, src, room);
  return COMN_TRACE(CS_SUCCEED);
}
