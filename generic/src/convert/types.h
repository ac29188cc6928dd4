// Which datatype codes a conversion serves.
#ifndef COMN_CONVERT_TYPES_H
#define COMN_CONVERT_TYPES_H

#include <cstdint>

#include "cspublic.h"

namespace comn {

constexpr CS_INT datatype_count = CS_TYPE_COUNT;

constexpr bool is_builtin(CS_INT type) noexcept {
  return static_cast<CS_UINT>(type) < static_cast<CS_UINT>(datatype_count);
}

// A set of built-in datatype codes.
class TypeSet {
public:
  template <class... Codes>
  constexpr explicit TypeSet(Codes... codes) noexcept
      : low(((codes < 32 ? uint32_t{1} << codes % 32 : 0) | ...)),
        high(((codes < 32 ? 0 : uint32_t{1} << codes % 32) | ...)) {}

  constexpr bool contains(CS_INT type) const noexcept {
    return is_builtin(type) && ((type < 32 ? low : high) >> type % 32 & 1) != 0;
  }

private:
  uint32_t low, high; // a bit for each code; two words, which every data model shifts fast
};

constexpr TypeSet text_types{CS_TYPE_CHAR,        CS_TYPE_LONGCHAR, CS_TYPE_TEXT,
                             CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY, CS_TYPE_XML};
constexpr TypeSet binary_types{CS_TYPE_BINARY, CS_TYPE_LONGBINARY, CS_TYPE_IMAGE};
constexpr TypeSet numeric_types{CS_TYPE_NUMERIC, CS_TYPE_DECIMAL};
constexpr TypeSet unitext_types{CS_TYPE_UNICHAR, CS_TYPE_UNITEXT};

} // namespace comn

#endif
