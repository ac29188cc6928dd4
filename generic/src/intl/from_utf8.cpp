// Text from UTF-8 into the character set of a cache: UTF-8 itself, until the conversion engine
// defines this function for all sets. The definition here is weak, so that it gives way then.
#include "from_utf8.h"

#include <algorithm>
#include <cstring>

#include "checks.h"

[[gnu::weak]] CS_RETCODE comn__convt_from_utf8(CS_CONTEXT *context, CS_INT, CS_BYTE *src,
                                               CS_INT srclen, CS_DATAFMT *destfmt,
                                               CsLocCache *dest_lcache, CS_VOID *dest,
                                               CS_INT *resultlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  if (dest_lcache->locchardesc != context->ctxglobals->cmg_utf8_charset)
    return COMN_TRACE(CS_FAIL);
  *resultlen = std::min(srclen, destfmt->maxlength);
  if (*resultlen > 0)
    std::memcpy(dest, src, static_cast<size_t>(*resultlen));
  return COMN_TRACE(srclen > destfmt->maxlength ? CS_CONV_TRUNCATED : CS_SUCCEED);
}
