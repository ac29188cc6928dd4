// The cryptographic kernel over OpenSSL.
#include "kernel.h"

#include <atomic>

#include <openssl/conf.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

namespace velcrypto::kernel {

namespace {

struct Kernel {
  OSSL_LIB_CTX *context;
  OSSL_PROVIDER *algorithms;
  OSSL_PROVIDER *encodings; // of the FIPS kernel, which has none of its own
  EVP_CIPHER *aes;
};

bool wants_fips = false;
Kernel current;
std::atomic<unsigned> users = 0;

void close(Kernel &kernel) noexcept {
  EVP_CIPHER_free(kernel.aes);
  if (kernel.encodings != nullptr)
    OSSL_PROVIDER_unload(kernel.encodings);
  if (kernel.algorithms != nullptr)
    OSSL_PROVIDER_unload(kernel.algorithms);
  OSSL_LIB_CTX_free(kernel.context);
  kernel = {};
}

// The checksum of the FIPS provider and the like stand in OpenSSL's configuration file.
void read_configuration(OSSL_LIB_CTX *context) noexcept {
  char *const file = CONF_get1_default_config_file();
  if (file != nullptr)
    OSSL_LIB_CTX_load_config(context, file);
  OPENSSL_free(file);
}

bool fill(Kernel &kernel, bool fips) noexcept {
  kernel.context = OSSL_LIB_CTX_new();
  if (kernel.context == nullptr)
    return false;
  if (fips) {
    read_configuration(kernel.context);
    kernel.algorithms = OSSL_PROVIDER_load(kernel.context, "fips");
    kernel.encodings = OSSL_PROVIDER_load(kernel.context, "base");
    if (kernel.algorithms == nullptr || kernel.encodings == nullptr ||
        EVP_default_properties_enable_fips(kernel.context, 1) != 1)
      return false;
  } else {
    kernel.algorithms = OSSL_PROVIDER_load(kernel.context, "default");
    if (kernel.algorithms == nullptr)
      return false;
  }
  kernel.aes = EVP_CIPHER_fetch(kernel.context, "AES-256-CBC", nullptr);
  return kernel.aes != nullptr;
}

RC open(Kernel &kernel, bool fips) noexcept {
  const ErrorQueue errors;
  if (fill(kernel, fips))
    return VELCRYPTO_OK;
  close(kernel);
  return VELCRYPTO_EKERNEL;
}

} // namespace

RC select(bool fips) noexcept {
  if (fips == wants_fips)
    return VELCRYPTO_OK;
  if (users != 0)
    return VELCRYPTO_EBUSY;
  if (fips) {
    // Asking for what cannot be had must not wait for its first use.
    Kernel trial{};
    if (const RC result = open(trial, true); result < 0)
      return result;
    close(trial);
  }
  wants_fips = fips;
  return VELCRYPTO_OK;
}

RC open() noexcept {
  if (users == 0) {
    if (const RC result = open(current, wants_fips); result < 0)
      return result;
  }
  ++users;
  return VELCRYPTO_OK;
}

void use() noexcept {
  ++users;
}

void leave() noexcept {
  if (--users == 0)
    close(current);
}

const char *version() noexcept {
  return OpenSSL_version(OPENSSL_VERSION);
}

OSSL_LIB_CTX *context() noexcept {
  return current.context;
}

const EVP_CIPHER *aes() noexcept {
  return current.aes;
}

} // namespace velcrypto::kernel
