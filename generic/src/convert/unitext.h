// 16-bit text and UTF-8: the form in which every conversion from and to 16-bit text meets those of text.
#ifndef COMN_CONVERT_UNITEXT_H
#define COMN_CONVERT_UNITEXT_H

#include "comnlib.h"

namespace comn {

// The bit of CS_DATAFMT.format that lets every unit pass.
constexpr CS_INT any_unit = 64;

// Hidden, so that a call needs no table of addresses.
#pragma GCC visibility push(hidden)
// comn__init_utf8_datafmt_and_locale without its trace and without the name of the format, and the transcoders without checks and trace.
CS_RETCODE prepare_utf8(CS_CONTEXT *context, CS_LOCALE *user_locale, CS_DATAFMT *format,
                        CS_LOCALE *locale) noexcept;
CS_RETCODE utf16_to_utf8(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT room, CS_INT *destlen,
                         bool refuses_noncharacters) noexcept;
CS_RETCODE utf8_to_utf16(CS_VOID *src, CS_INT srclen, const CS_DATAFMT *destfmt, CS_VOID *dest,
                         CS_INT *destlen, bool refuses_noncharacters) noexcept;
// Units as they are, ended as `destfmt` asks.
CS_RETCODE copy_utf16(CS_VOID *src, CS_INT srclen, const CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen) noexcept;
#pragma GCC visibility pop

// A format of UTF-8 text, with a locale of its own. It is not there when a check has failed.
class Utf8Side {
public:
  Utf8Side(CS_CONTEXT *context, CS_LOCALE *user_locale) noexcept
      : prepared(prepare_utf8(context, user_locale, &format, &locale) == CS_SUCCEED) {}
  Utf8Side(const Utf8Side &) = delete;
  Utf8Side &operator=(const Utf8Side &) = delete;
  bool is_there() const noexcept { return prepared; }

  CS_DATAFMT format;

private:
  CS_LOCALE locale;
  bool prepared;
};

// What a transcoder found wrong.
constexpr CS_RETCODE transcoded(int result) noexcept {
  constexpr int invalid = 4, overflow = 2;
  if ((result & invalid) != 0)
    return CS_CONV_BADCHAR;
  return (result & overflow) != 0 ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

} // namespace comn

#endif
