// Stands between the library and the dynamic linker: counts what is opened and closed, and opens
// another provider, or none, in the place of libvelcrypto.so.
#ifndef ZRVTEST_PROVIDER_PROBE_H
#define ZRVTEST_PROVIDER_PROBE_H

#include <string>

#include <gtest/gtest.h>

#include "counting_provider.h"
#include "zrvcomn/comncrypto.h"

namespace zrvtest {

class ProviderProbe {
public:
  // Opens the library at `path` from then on; the empty path cannot be opened.
  explicit ProviderProbe(const std::string &path);
  ~ProviderProbe();
  ProviderProbe(const ProviderProbe &) = delete;
  ProviderProbe &operator=(const ProviderProbe &) = delete;

  int opened() const; // providers that were opened
  int closed() const;
  int mode() const;         // of the latest opening
  std::string name() const; // what the library asked for
};

// A test with the counting provider, which must not be loaded before or afterwards, and with nothing
// of it left.
class CountingProviderTest : public testing::Test {
protected:
  CountingProviderTest();
  ~CountingProviderTest() override;

  // The control of the provider, which must be loaded.
  ProviderControl &control() const;
  // What the provider was called with since the last look.
  std::vector<std::string> take_log() const;
  // Fails the n-th call from now.
  void fail(int nth) const;

  ProviderProbe probe{COUNTING_PROVIDER};
};

} // namespace zrvtest

#endif
