// The factory, which makes every other object.
#ifndef VELCRYPTO_FACTORY_H
#define VELCRYPTO_FACTORY_H

#include "velcrypto.h"

namespace velcrypto {

RC make_factory(CCLCryptFactory **factory) noexcept;

} // namespace velcrypto

#endif
