// Values that may stand at any address.
#ifndef COMN_FRAME_ANY_ADDRESS_H
#define COMN_FRAME_ANY_ADDRESS_H

#include <cstring>

namespace comn {

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
