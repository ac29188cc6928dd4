// The life of the cryptographic kernel: a library context of OpenSSL that belongs to this library, with
// the algorithms that the FIPS property selects. It exists while somebody uses it.
#ifndef VELCRYPTO_KERNEL_LIFE_H
#define VELCRYPTO_KERNEL_LIFE_H

#include "velcrypto.h"

namespace velcrypto::kernel {

// Chooses between the FIPS kernel and the ordinary one.
RC select(bool fips) noexcept;

// Opens the kernel for its first user, or counts one more.
RC open() noexcept;
// Counts one more user of a kernel that is open.
void use() noexcept;
// Closes it behind the last one.
void leave() noexcept;

// The version of OpenSSL, as text.
const char *version() noexcept;

} // namespace velcrypto::kernel

#endif
