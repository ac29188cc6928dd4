// Raw copies of fixed types to binary, as the bytes stand in memory.
#ifndef COMN_CONVERT_RAW_COPY_H
#define COMN_CONVERT_RAW_COPY_H

#include <cstddef>

#include "conv_func.h"

namespace comn {

// The rules of comn_fixedtobin and comn_fixedtovarbin, without their trace. Hidden, so that a call
// needs no table of addresses.
#pragma GCC visibility push(hidden)
CS_RETCODE fixed_to_binary(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept;
CS_RETCODE fixed_to_varbinary(COMN_CONV_PARAMETERS, CS_INT tlen) noexcept;
#pragma GCC visibility pop

// For members that know the length of their type: the ordinary case in line, all else left to the
// rules.
template <CS_INT Length>
CS_RETCODE copy_to_binary(COMN_CONV_PARAMETERS) noexcept {
  if (!context || !src || !srcfmt || !dest || !destfmt || !destlen || destfmt->maxlength < Length ||
      (destfmt->format & CS_DFMT_PADNULL) != 0) [[unlikely]]
    return fixed_to_binary(COMN_CONV_ARGUMENTS, Length);
  std::memmove(dest, src, Length);
  *destlen = Length;
  return CS_SUCCEED;
}

template <CS_INT Length>
CS_RETCODE copy_to_varbinary(COMN_CONV_PARAMETERS) noexcept {
  static_assert(Length < CS_INT{sizeof(CS_VARBINARY::array)});
  if (!context || !src || !srcfmt || !dest || !destfmt || !destlen) [[unlikely]]
    return fixed_to_varbinary(COMN_CONV_ARGUMENTS, Length);
  auto *record = static_cast<CS_BYTE *>(dest);
  std::memmove(record + offsetof(CS_VARBINARY, array), src, Length);
  store(record + offsetof(CS_VARBINARY, len), CS_SMALLINT{Length});
  *destlen = sizeof(CS_VARBINARY);
  return CS_SUCCEED;
}

} // namespace comn

#endif
