// Steps through text that conversions share: reduction to ASCII, cuts at a character, doubled quotes.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "comnlib.h"
#include "reduce.h"
#include "text.h"

using comn::Within;

CS_INT com__conv2ascii(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen,
                       CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(src, 0);
  COMN_CHECK_PTR(dest, 0);
  return comn::text::reduce(src, srclen, dest, destlen, comn::charset_or_builtin(chatr)).length;
}

CS_INT comnb_truncate_chars(CHAR_ATTRIB *attrib, CS_BYTE *source, CS_INT srclen,
                            CS_INT colen) noexcept {
  if (srclen < colen || srclen <= 0)
    return srclen;
  COMN_CHECK_PTR(source, 0);
  const CHAR_ATTRIB &set = comn::charset_or_builtin(attrib);
  const CS_BYTE *const end = source + srclen;
  CS_INT kept = 0;
  while (kept < colen) {
    const CS_INT length = comn::char_length(set, Within{source + kept, end});
    if (length > colen - kept)
      break;
    kept += length;
  }
  return kept;
}

namespace {

CS_RETCODE double_quotes(CS_CHAR *src, CS_DATAFMT *srcfmt, CS_CHAR *dest, CS_DATAFMT *destfmt,
                         CS_INT *destlen, CS_ATTRIB *ca, CS_INT escape) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(srcfmt, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  COMN_CHECK_PTR(destfmt, CS_FAIL);
  COMN_CHECK_PTR(destlen, CS_FAIL);
  const CHAR_ATTRIB &set = comn::charset_or_builtin(ca);
  const bool ends_at_nul = (destfmt->format & CS_DFMT_NULLTERM) != 0;
  const auto *at = reinterpret_cast<const CS_BYTE *>(src);
  const CS_BYTE *const end = at + std::max<CS_INT>(srcfmt->maxlength, 0);
  CS_INT used = 0;
  CS_RETCODE status = CS_SUCCEED;
  while (at < end && !(ends_at_nul && *at == 0)) {
    const Within place{at, end};
    const auto length = static_cast<size_t>(comn::length_inside(set, place));
    const size_t copies = comn::to_ascii(set, place) == escape ? 2 : 1;
    if (copies * length > static_cast<size_t>(std::max(destfmt->maxlength - used, 0))) {
      status = CS_CONV_TRUNCATED;
      break;
    }
    for (size_t copy = 0; copy < copies; ++copy) {
      std::memcpy(dest + used, at, length);
      used += static_cast<CS_INT>(length);
    }
    at += length;
  }
  *destlen = used;
  return status;
}

} // namespace

CS_RETCODE comn__escchar(CS_CHAR *src, CS_DATAFMT *srcfmt, CS_CHAR *dest, CS_DATAFMT *destfmt,
                         CS_INT *destlen, CS_ATTRIB *ca, CS_INT escape) noexcept {
  return COMN_TRACE(double_quotes(src, srcfmt, dest, destfmt, destlen, ca, escape));
}
