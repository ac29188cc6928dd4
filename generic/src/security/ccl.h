// What the callers of the crypto provider share.
#ifndef COMN_SECURITY_CCL_H
#define COMN_SECURITY_CCL_H

#include "comncrypto.h"

namespace comn::ccl {

constexpr bool is_failure(RC result) noexcept {
  return result < 0;
}

// Gives a reference back, and tells whether all went well: any result but 0 is an inconsistency.
template <class Interface>
bool is_released(Interface *object) noexcept {
  return object->functions->release(object) == 0;
}

// Gives an object of work that failed back, if it was made: nobody is left to hear how that went.
template <class Interface>
void discard(Interface *object) noexcept {
  if (object != nullptr)
    object->functions->release(object);
}

} // namespace comn::ccl

#endif
