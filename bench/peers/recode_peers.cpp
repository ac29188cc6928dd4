#include "recode_peers.h"

#include <cstring>

#include <iconv.h>

#ifdef ZRVBENCH_WITH_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

namespace zrvbench::peers {

#ifdef ZRVBENCH_WITH_ICU

long icu_from_utf8(char16_t *to, int room, const char *from, int length) {
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = -1;
  u_strFromUTF8(to, room, &written, from, length, &error);
  return written;
}

long icu_to_utf8(char *to, int room, const char16_t *from, int length) {
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = -1;
  u_strToUTF8(to, room, &written, from, length, &error);
  return written;
}

void *icu_open(const char *set) {
  UErrorCode error = U_ZERO_ERROR;
  return ucnv_open(set, &error);
}

void icu_close(void *converter) {
  ucnv_close(static_cast<UConverter *>(converter));
}

long icu_decode(void *converter, char16_t *to, int room, const char *from, int length) {
  UErrorCode error = U_ZERO_ERROR;
  return ucnv_toUChars(static_cast<UConverter *>(converter), to, room, from, length, &error);
}

#endif

void *iconv_keep(const char *to, const char *from) {
  return iconv_open(to, from);
}

void iconv_release(void *descriptor) {
  iconv_close(descriptor);
}

long iconv_run(void *descriptor, char *to, size_t room, const char *from, size_t length) {
  char *in = const_cast<char *>(from);
  const size_t whole = room;
  if (iconv(descriptor, &in, &length, &to, &room) == static_cast<size_t>(-1))
    return -1;
  return static_cast<long>(whole - room);
}

void table_loop(unsigned char *to, const unsigned char *from, size_t length,
                const unsigned char *table) {
  for (size_t i = 0; i < length; ++i)
    to[i] = table[from[i]];
}

CS_RETCODE copy_text(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                     CS_VOID *dest, CS_INT *destlen) {
  if (!context || !src || !srcfmt || !dest || !destfmt || !destlen ||
      srcfmt->datatype != CS_TYPE_CHAR || destfmt->datatype != CS_TYPE_CHAR)
    return CS_FAIL;
  std::memcpy(dest, src, static_cast<size_t>(srcfmt->maxlength));
  *destlen = srcfmt->maxlength;
  return CS_SUCCEED;
}

} // namespace zrvbench::peers
