// 16-bit text and UTF-8: the transcoders of conversions, and the format that makes members for text
// take UTF-8.
#include "unitext.h"

#include <cstddef>
#include <cstring>
#include <limits>

#include "any_address.h"
#include "checks.h"
#include "comfou.h"
#include "comloc.h"
#include "locale_of.h"
#include "pad.h"

namespace {

// The end of every way to 16-bit text. A text that was cut asks the pad for more room than there can
// be, so that it is ended like one whose terminator has no room.
CS_RETCODE end_units(int result, CS_INT length, const CS_DATAFMT *destfmt, CS_VOID *dest,
                     CS_INT *destlen) noexcept {
  const CS_RETCODE status = comn::transcoded(result);
  if (status == CS_CONV_BADCHAR)
    return status;
  const CS_INT needed = status == CS_CONV_TRUNCATED ? std::numeric_limits<CS_INT>::max() : length;
  const CS_RETCODE padded =
      comn::pad_unitext(needed, destfmt->format, destfmt->maxlength, dest, destlen);
  return padded == CS_CONV_OVERFLOW ? CS_CONV_TRUNCATED : padded;
}

} // namespace

CS_RETCODE comn::utf16_to_utf8(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT room,
                               CS_INT *destlen, bool refuses_noncharacters) noexcept {
  return transcoded(com__fou_utf16_to_utf8(src, srclen, dest, room, nullptr, destlen, nullptr,
                                           refuses_noncharacters));
}

CS_RETCODE comn::utf8_to_utf16(CS_VOID *src, CS_INT srclen, const CS_DATAFMT *destfmt,
                               CS_VOID *dest, CS_INT *destlen,
                               bool refuses_noncharacters) noexcept {
  const int result = com__fou_utf8_to_utf16(src, srclen, dest, destfmt->maxlength, nullptr, destlen,
                                            nullptr, refuses_noncharacters);
  return end_units(result, *destlen, destfmt, dest, destlen);
}

CS_RETCODE comn::copy_utf16(CS_VOID *src, CS_INT srclen, const CS_DATAFMT *destfmt, CS_VOID *dest,
                            CS_INT *destlen) noexcept {
  const int result =
      com__fou_utf16_to_utf16(src, srclen, dest, destfmt->maxlength, nullptr, destlen, nullptr, 0);
  return end_units(result, srclen, destfmt, dest, destlen);
}

CS_INT comn_unistrlen(CS_UNICHAR *s) noexcept {
  COMN_CHECK_PTR(s, 0);
  const auto *at = reinterpret_cast<const CS_BYTE *>(s);
  CS_INT length = 0;
  while (comn::load<CS_UNICHAR>(at + length) != 0)
    length += CS_INT{sizeof(CS_UNICHAR)};
  return length;
}

CS_RETCODE comn::prepare_utf8(CS_CONTEXT *context, CS_LOCALE *user_locale, CS_DATAFMT *format,
                              CS_LOCALE *locale) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(context->ctxglobals, CS_FAIL);
  const CS_LOCALE *const user = comn::locale_of(context, user_locale);
  COMN_CHECK_PTR(user, CS_FAIL);
  *locale = *user;
  locale->ctypeptr = context->ctxglobals->cmg_utf8_ctypeptr;
  // All but the name, which is most of the record and which no conversion reads.
  constexpr size_t described = offsetof(CS_DATAFMT, namelen);
  std::memset(reinterpret_cast<CS_BYTE *>(format) + described, 0, sizeof *format - described);
  format->datatype = CS_TYPE_CHAR;
  format->locale = locale;
  return CS_SUCCEED;
}

CS_RETCODE comn__init_utf8_datafmt_and_locale(CS_CONTEXT *context, CS_LOCALE *user_loc,
                                              CS_DATAFMT *utf8_datafmt,
                                              CS_LOCALE *utf8_locale) noexcept {
  COMN_CHECK_PTR(utf8_datafmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(utf8_locale, COMN_TRACE(CS_FAIL));
  *utf8_datafmt = {};
  return COMN_TRACE(comn::prepare_utf8(context, user_loc, utf8_datafmt, utf8_locale));
}

CS_BOOL charset_in_datafmt_equals_utf8(CS_CONTEXT *context, CS_DATAFMT *datafmt) noexcept {
  COMN_CHECK_PTR(context, 0);
  COMN_CHECK_PTR(datafmt, 0);
  COMN_CHECK_PTR(context->ctxglobals, 0);
  const CS_LOCALE *const locale = comn::locale_of(context, datafmt);
  COMN_CHECK_PTR(locale, 0);
  COMN_CHECK_PTR(locale->ctypeptr, 0);
  return static_cast<const CsLocCache *>(locale->ctypeptr)->locchardesc ==
         context->ctxglobals->cmg_utf8_charset;
}

CS_RETCODE comn__convert_from_utf16_to_utf8(CS_VOID *src, CS_INT srclen, CS_VOID *dest,
                                            CS_INT dest_size, CS_INT *destlen,
                                            CS_BOOL validity_check) noexcept {
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destlen, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(
      comn::utf16_to_utf8(src, srclen, dest, dest_size, destlen, validity_check != 0));
}

CS_RETCODE comn__convert_from_utf8_to_utf16(CS_VOID *src, CS_INT srclen, CS_DATAFMT *destfmt,
                                            CS_VOID *dest, CS_INT *destlen,
                                            CS_BOOL validity_check) noexcept {
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destfmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destlen, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(comn::utf8_to_utf16(src, srclen, destfmt, dest, destlen, validity_check != 0));
}
