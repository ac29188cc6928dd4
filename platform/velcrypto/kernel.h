// What the objects need of the cryptographic kernel.
#ifndef VELCRYPTO_KERNEL_H
#define VELCRYPTO_KERNEL_H

#include <openssl/err.h>
#include <openssl/types.h>

#include "kernel_life.h"

namespace velcrypto::kernel {

// These are there while the kernel is open.
OSSL_LIB_CTX *context() noexcept;
const EVP_CIPHER *aes() noexcept;

// Takes what a piece of work leaves in the thread's queue of errors, and no more: the application may
// have errors of its own in it.
class ErrorQueue {
public:
  ErrorQueue() { ERR_set_mark(); }
  ~ErrorQueue() { ERR_pop_to_mark(); }
  ErrorQueue(const ErrorQueue &) = delete;
  ErrorQueue &operator=(const ErrorQueue &) = delete;
};

} // namespace velcrypto::kernel

#endif
