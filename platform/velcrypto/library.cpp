// The library as a whole: memory, the FIPS property, the lists of functions. The kernel is reached
// through declarations of its own, because OpenSSL's headers have some of the names that are exported
// here.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

#include "factory.h"
#include "kernel_life.h"
#include "memory.h"
#include "velcrypto_exports.h"

namespace velcrypto {

constinit Memory memory{std::malloc, std::calloc, std::realloc, std::free};

namespace {

constexpr unsigned list_version = 2;

std::atomic<unsigned> list_references = 0;

void copy_text(char *buffer, size_t size, const char *text) noexcept {
  std::snprintf(buffer, size, "%s", text);
}

// ---- what this library lacks ----

RC no_allocator_on_blob(CCLMemoryAllocator **, void *, size_t) noexcept {
  return VELCRYPTO_EUNSUPPORTED;
}
RC no_allocator(CCLMemoryAllocator **, unsigned) noexcept {
  return VELCRYPTO_EUNSUPPORTED;
}
RC no_default_factory(CCLCryptFactory *) noexcept {
  return VELCRYPTO_EUNSUPPORTED;
}
RC no_pki_factory(CCLPkiFactory **, unsigned, unsigned) noexcept {
  return VELCRYPTO_EUNSUPPORTED;
}

// ---- API lists ----

// A factory comes from a list that somebody holds, so the kernel is open.
RC create_crypt_factory(CCLCryptFactory **factory, unsigned zero, unsigned other_zero) noexcept {
  if (factory == nullptr || zero != 0 || other_zero != 0)
    return VELCRYPTO_EINVAL;
  return list_references == 0 ? VELCRYPTO_ESTATE : make_factory(factory);
}

constexpr SEC_VELCCL_FUNCTIONS factories{{"VELCCL_1", 1},    no_allocator_on_blob,
                                         no_allocator,       create_crypt_factory,
                                         no_default_factory, no_pki_factory};
constexpr SEC_KEYCONVERT_FUNCTIONS key_conversions{{"SEC_KEYCONVERT_1", 1}};

// The lists live as long as the library does, so nobody counts them.
RC get_api(unsigned zero, const char *name, void **api) noexcept {
  if (zero != 0 || name == nullptr || api == nullptr)
    return VELCRYPTO_EINVAL;
  if (std::strcmp(name, factories.common.name) == 0)
    *api = const_cast<SEC_VELCCL_FUNCTIONS *>(&factories);
  else if (std::strcmp(name, key_conversions.common.name) == 0)
    *api = const_cast<SEC_KEYCONVERT_FUNCTIONS *>(&key_conversions);
  else
    return VELCRYPTO_EUNSUPPORTED;
  return VELCRYPTO_OK;
}

RC release_api(void **api) noexcept {
  if (api == nullptr || (*api != &factories && *api != &key_conversions))
    return VELCRYPTO_EINVAL;
  *api = nullptr;
  return VELCRYPTO_OK;
}

// ---- the list of functions ----

RC release_list(CRYPTOLIB_F_LIST *list) noexcept;

RC get_version(char *buffer, size_t size) noexcept {
  if (buffer == nullptr || size == 0)
    return VELCRYPTO_EINVAL;
  copy_text(buffer, size, kernel::version());
  return VELCRYPTO_OK;
}

RC get_dll(char *buffer, size_t size) noexcept {
  Dl_info info;
  if (buffer == nullptr || size == 0 || dladdr(&factories, &info) == 0)
    return VELCRYPTO_EINVAL;
  if (std::strlen(info.dli_fname) >= size)
    return VELCRYPTO_ESPACE;
  copy_text(buffer, size, info.dli_fname);
  return VELCRYPTO_OK;
}

const char *get_error_text(RC result) noexcept {
  switch (result) {
  case VELCRYPTO_EINVAL:
    return "an argument is missing or cannot be";
  case VELCRYPTO_EMEMORY:
    return "no memory";
  case VELCRYPTO_EUNSUPPORTED:
    return "this library has no such algorithm, interface or layer";
  case VELCRYPTO_EKERNEL:
    return "this machine lacks the cryptographic kernel that was asked for";
  case VELCRYPTO_EBUSY:
    return "objects of the other cryptographic kernel are in use";
  case VELCRYPTO_ESPACE:
    return "the result does not fit";
  case VELCRYPTO_ESTATE:
    return "a key or an initialisation vector has not been set";
  case VELCRYPTO_EDATA:
    return "malformed or damaged data, or a wrong key";
  default:
    return result < 0 ? "unknown error" : "success";
  }
}

void *sec_malloc(size_t size) noexcept {
  return memory.allocate(size);
}
void *sec_calloc(size_t count, size_t size) noexcept {
  return memory.allocate_cleared(count, size);
}
void *sec_realloc(void *block, size_t size) noexcept {
  return memory.resize(block, size);
}
void sec_free(void *block) noexcept {
  memory.release(block);
}

constexpr CRYPTOLIB_F_LIST list_of_functions{release_list,   get_version, get_api,    release_api,
                                             get_error_text, get_dll,     sec_malloc, sec_calloc,
                                             sec_realloc,    sec_free};

RC release_list(CRYPTOLIB_F_LIST *list) noexcept {
  if (list != &list_of_functions || list_references == 0)
    return VELCRYPTO_EINVAL;
  --list_references;
  kernel::leave();
  return VELCRYPTO_OK;
}

} // namespace

} // namespace velcrypto

using namespace velcrypto;

RC velcr_init() {
  return VELCRYPTO_OK;
}

RC velcr_done() {
  return VELCRYPTO_OK;
}

void cryptolib_set_memory_callback(void *(*allocate)(size_t),
                                   void *(*allocate_cleared)(size_t, size_t),
                                   void *(*resize)(void *, size_t), void (*release)(void *)) {
  if (allocate != nullptr && allocate_cleared != nullptr && resize != nullptr && release != nullptr)
    velcrypto::memory = {allocate, allocate_cleared, resize, release};
}

RC velcr_set_property_int(const char *name, int value) {
  if (name == nullptr)
    return VELCRYPTO_EINVAL;
  if (std::strcmp(name, "FIPS_140_2_CRYPTO_KERNEL_ACTIVE") != 0)
    return VELCRYPTO_EUNSUPPORTED;
  if (value != 0 && value != 1)
    return VELCRYPTO_EINVAL;
  return kernel::select(value == 1);
}

RC cryptolib_get_f_list(unsigned version, const char *, CRYPTOLIB_F_LIST **list, unsigned *granted,
                        const char *, unsigned flags) {
  if (list == nullptr || flags != 0)
    return VELCRYPTO_EINVAL;
  if (version != list_version)
    return VELCRYPTO_EUNSUPPORTED;
  if (const RC result = kernel::open(); result < 0)
    return result;
  ++list_references;
  *list = const_cast<CRYPTOLIB_F_LIST *>(&list_of_functions);
  if (granted != nullptr)
    *granted = list_version;
  return VELCRYPTO_OK;
}
