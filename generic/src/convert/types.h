// Which datatype codes a conversion serves, and values at any address.
#ifndef COMN_CONVERT_TYPES_H
#define COMN_CONVERT_TYPES_H

#include <cstdint>
#include <cstring>

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
  constexpr explicit TypeSet(Codes... codes) noexcept : bits(((uint64_t{1} << codes) | ...)) {}

  constexpr bool contains(CS_INT type) const noexcept {
    return is_builtin(type) && (bits >> type & 1) != 0;
  }

private:
  uint64_t bits;
};

constexpr TypeSet text_types{CS_TYPE_CHAR,        CS_TYPE_LONGCHAR, CS_TYPE_TEXT,
                             CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY, CS_TYPE_XML};
constexpr TypeSet binary_types{CS_TYPE_BINARY, CS_TYPE_LONGBINARY, CS_TYPE_IMAGE};

// Values of conversions may stand at any address.
template <class T>
T load(const void *address) noexcept {
  T value;
  std::memcpy(&value, address, sizeof value);
  return value;
}

template <class T>
void store(void *address, T value) noexcept {
  std::memcpy(address, &value, sizeof value);
}

} // namespace comn

#endif
