// The crypto provider of the process: opening it, its names, its lists of functions.
#include <cstddef>
#include <cstring>
#include <dlfcn.h>

#include "ccl.h"
#include "checks.h"
#include "zrvintl.h"

using namespace comn::ccl;

CCLAPI_PROVIDER *cclp;
CS_VOID *ccl_handle;
CS_BOOL Com_fipsmode;

namespace {

// The provider, and what it is asked with.
constexpr char library_name[] = "libvelcrypto.so";
constexpr unsigned list_version = 2;
constexpr char fips_property[] = "FIPS_140_2_CRYPTO_KERNEL_ACTIVE";

struct Name {
  const char *name;
  size_t offset; // of its field
};

#define COM_CCL_NAME(type, name) {#name, offsetof(CCLAPI_PROVIDER, name)},
constexpr Name names[] = {VELCRYPTO_NAMES(COM_CCL_NAME)};
#undef COM_CCL_NAME

// Stores the address of a name where `field` is; false, nothing stored, when the library lacks it.
bool look_up(const char *name, void *field) noexcept {
  void *const address = dlsym(ccl_handle, name);
  if (address == nullptr)
    return false;
  std::memcpy(field, &address, sizeof address);
  return true;
}

bool look_up_names(CCLAPI_PROVIDER &table, VELCRYPTO_GET_LIST *&get_list) noexcept {
  for (const Name &name : names)
    if (!look_up(name.name, reinterpret_cast<char *>(&table) + name.offset))
      return false;
  return look_up("cryptolib_get_f_list", &get_list);
}

// A value of any length counts; one that is longer than the buffer is refused as too long.
bool is_fips_wanted() noexcept {
  char value[2];
  const int length = intlgetenv(value, sizeof value, "ZRVNCL_FIPS_MODE");
  return length >= 1 || length == ZRVINTL_ESIZE || comn_get_fipsmode();
}

// The provider speaks of lists as pointers to anything.
template <class List>
RC get_api(const CCLAPI_PROVIDER &table, const char *name, List *&list) noexcept {
  void *api = nullptr;
  const RC result = table.cryptolib_f_list->get_API(0, name, &api);
  if (!is_failure(result))
    list = static_cast<List *>(api);
  return result;
}

template <class List>
bool is_api_released(const CCLAPI_PROVIDER &table, List *&list) noexcept {
  void *api = list;
  const RC result = table.cryptolib_f_list->release_API(&api);
  list = static_cast<List *>(api);
  return result == 0;
}

// Everything between the names and the lists of functions.
bool set_up(CCLAPI_PROVIDER &table) noexcept {
  VELCRYPTO_GET_LIST *get_list = nullptr;
  unsigned granted = 0;
  return look_up_names(table, get_list) &&
         !is_failure(table.velcr_set_property_int(fips_property, is_fips_wanted())) &&
         !is_failure(get_list(list_version, "en_US", &table.cryptolib_f_list, &granted,
                              "NCL application", 0)) &&
         !is_failure(get_api(table, "SEC_KEYCONVERT_1", table.sec_keyconvert_functions)) &&
         !is_failure(get_api(table, "VELCCL_1", table.sec_velccl_functions));
}

} // namespace

CS_RETCODE comn_cryptolib_load(CS_VOID **retcclp) noexcept {
  COMN_CHECK_PTR(retcclp, COMN_TRACE(CS_FAIL));
  if (cclp == nullptr) {
    ccl_handle = dlopen(library_name, RTLD_NOW);
    if (ccl_handle == nullptr)
      return COMN_TRACE(CS_FAIL);
    auto *const table = static_cast<CCLAPI_PROVIDER *>(comn_calloc(1, sizeof(CCLAPI_PROVIDER)));
    if (table == nullptr) {
      dlclose(ccl_handle);
      ccl_handle = nullptr;
      return COMN_TRACE(CS_FAIL);
    }
    cclp = table;
    // A failure deliberately leaves table and handle in place: the next call finds a table, and
    // succeeds with it as it stands.
    if (!set_up(*table))
      return COMN_TRACE(CS_FAIL);
  }
  *retcclp = cclp;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_cryptolib_unload() noexcept {
  if (cclp == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  CCLAPI_PROVIDER &table = *cclp;
  if (table.cryptolib_f_list != nullptr) {
    // A load that broke off may not have had both lists.
    if (table.sec_velccl_functions != nullptr)
      COMN_CHECK(is_api_released(table, table.sec_velccl_functions), COMN_TRACE(CS_FAIL));
    if (table.sec_keyconvert_functions != nullptr)
      COMN_CHECK(is_api_released(table, table.sec_keyconvert_functions), COMN_TRACE(CS_FAIL));
    table.cryptolib_f_list->release(table.cryptolib_f_list);
  }
  comn_free(cclp);
  cclp = nullptr;
  dlclose(ccl_handle);
  ccl_handle = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}

void comn_set_fipsmode(CS_BOOL boolval) noexcept {
  Com_fipsmode = boolval;
}

CS_BOOL comn_get_fipsmode() noexcept {
  return Com_fipsmode;
}
