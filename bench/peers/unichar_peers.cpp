#include "unichar_peers.h"

#ifdef ZRVBENCH_WITH_ICU
#include <unicode/ustring.h>

namespace {

bool is_call(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_INT from, CS_VOID *src,
             CS_DATAFMT *destfmt, CS_INT to, CS_VOID *dest, CS_INT *destlen) {
  return context != nullptr && srcfmt != nullptr && src != nullptr && destfmt != nullptr &&
         dest != nullptr && destlen != nullptr && srcfmt->datatype == from &&
         destfmt->datatype == to;
}

} // namespace

CS_RETCODE peer_from_utf8(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) {
  if (!is_call(context, srcfmt, CS_TYPE_CHAR, src, destfmt, CS_TYPE_UNICHAR, dest, destlen))
    return CS_FAIL;
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = 0;
  u_strFromUTF8(static_cast<UChar *>(dest), destfmt->maxlength / 2, &written,
                static_cast<const char *>(src), srcfmt->maxlength, &error);
  *destlen = 2 * written;
  return U_SUCCESS(error) ? CS_SUCCEED : CS_CONV_BADCHAR;
}

CS_RETCODE peer_to_utf8(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                        CS_VOID *dest, CS_INT *destlen) {
  if (!is_call(context, srcfmt, CS_TYPE_UNICHAR, src, destfmt, CS_TYPE_CHAR, dest, destlen))
    return CS_FAIL;
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = 0;
  u_strToUTF8(static_cast<char *>(dest), destfmt->maxlength, &written,
              static_cast<const UChar *>(src), srcfmt->maxlength / 2, &error);
  *destlen = written;
  return U_SUCCESS(error) ? CS_SUCCEED : CS_CONV_BADCHAR;
}

#endif
