// Raw copies of fixed types to binary, for the members that know the length of their type. What is
// not the ordinary case is left to comn_fixedtobin and comn_fixedtovarbin.
#ifndef COMN_CONVERT_RAW_COPY_H
#define COMN_CONVERT_RAW_COPY_H

#include <cstddef>

#include "conv_func.h"

namespace comn {

template <CS_INT Length>
[[gnu::cold, gnu::noinline]] CS_RETCODE fixed_to_binary(COMN_CONV_PARAMETERS) noexcept {
  return comn_fixedtobin(COMN_CONV_ARGUMENTS, Length);
}

template <CS_INT Length>
[[gnu::cold, gnu::noinline]] CS_RETCODE fixed_to_varbinary(COMN_CONV_PARAMETERS) noexcept {
  return comn_fixedtovarbin(COMN_CONV_ARGUMENTS, Length);
}

template <CS_INT Length>
CS_RETCODE copy_to_binary(COMN_CONV_PARAMETERS) noexcept {
  if (!context || !src || !srcfmt || !dest || !destfmt || !destlen || destfmt->maxlength < Length ||
      (destfmt->format & CS_DFMT_PADNULL) != 0) [[unlikely]]
    return fixed_to_binary<Length>(COMN_CONV_ARGUMENTS);
  std::memmove(dest, src, Length);
  *destlen = Length;
  return CS_SUCCEED;
}

template <CS_INT Length>
CS_RETCODE copy_to_varbinary(COMN_CONV_PARAMETERS) noexcept {
  static_assert(Length < CS_INT{sizeof(CS_VARBINARY::array)});
  if (!context || !src || !srcfmt || !dest || !destfmt || !destlen) [[unlikely]]
    return fixed_to_varbinary<Length>(COMN_CONV_ARGUMENTS);
  auto *record = static_cast<CS_BYTE *>(dest);
  std::memmove(record + offsetof(CS_VARBINARY, array), src, Length);
  store(record + offsetof(CS_VARBINARY, len), CS_SMALLINT{Length});
  *destlen = sizeof(CS_VARBINARY);
  return CS_SUCCEED;
}

} // namespace comn

#endif
