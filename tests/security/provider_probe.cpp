#include "provider_probe.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <optional>
#include <utility>

#include "test_scale.h"

namespace {

struct State {
  std::optional<std::string> path;
  int opened = 0, closed = 0, mode = 0;
  std::string name;
  void *handle = nullptr;
};

State &state() {
  static State the_state;
  return the_state;
}

} // namespace

void *dlopen(const char *file, int mode) noexcept {
  static const auto real =
      reinterpret_cast<void *(*)(const char *, int)>(dlsym(RTLD_NEXT, "dlopen"));
  const bool is_provider = file != nullptr && std::strcmp(file, "libvelcrypto.so") == 0;
  // The sanitizers open libraries in the library's name, and look where theirs are.
  if (is_provider && !state().path && zrvtest::sanitized)
    return real(VELCRYPTO, mode);
  if (!is_provider || !state().path)
    return real(file, mode);
  state().name = file;
  state().mode = mode;
  if (state().path->empty())
    return nullptr;
  void *const handle = real(state().path->c_str(), mode);
  EXPECT_NE(handle, nullptr) << dlerror();
  ++state().opened;
  state().handle = handle;
  return handle;
}

int dlclose(void *handle) noexcept {
  static const auto real = reinterpret_cast<int (*)(void *)>(dlsym(RTLD_NEXT, "dlclose"));
  EXPECT_NE(handle, nullptr);
  if (handle == state().handle) {
    ++state().closed;
    state().handle = nullptr;
  }
  return real(handle);
}

namespace zrvtest {

ProviderProbe::ProviderProbe(const std::string &path) {
  state() = {};
  state().path = path;
}

ProviderProbe::~ProviderProbe() {
  state() = {};
}

int ProviderProbe::opened() const {
  return state().opened;
}
int ProviderProbe::closed() const {
  return state().closed;
}
int ProviderProbe::mode() const {
  return state().mode;
}
std::string ProviderProbe::name() const {
  return state().name;
}

CountingProviderTest::CountingProviderTest() {
  EXPECT_EQ(cclp, nullptr);
  unsetenv("ZRVNCL_FIPS_MODE");
}

CountingProviderTest::~CountingProviderTest() {
  if (cclp != nullptr) {
    // Kept until its counts were looked at.
    void *const library = dlopen(COUNTING_PROVIDER, RTLD_NOW | RTLD_NOLOAD);
    EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
    if (library != nullptr) {
      const auto provider =
          reinterpret_cast<decltype(&counting_provider)>(dlsym(library, "counting_provider"));
      EXPECT_EQ(provider()->live_objects, 0);
      EXPECT_EQ(provider()->live_apis, 0);
      EXPECT_EQ(provider()->live_lists, 0);
      dlclose(library);
    }
  }
  EXPECT_EQ(cclp, nullptr);
  EXPECT_EQ(ccl_handle, nullptr);
  EXPECT_EQ(probe.opened(), probe.closed());
}

ProviderControl &CountingProviderTest::control() const {
  return *reinterpret_cast<decltype(&counting_provider)>(dlsym(ccl_handle, "counting_provider"))();
}

std::vector<std::string> CountingProviderTest::take_log() const {
  return std::exchange(control().log, {});
}

void CountingProviderTest::fail(int nth) const {
  control().calls = 0;
  control().fail_at = nth;
}

} // namespace zrvtest
