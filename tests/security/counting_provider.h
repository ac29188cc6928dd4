// A provider of the tests: it counts its calls and its references, fails the call that a test asks it
// to, and writes down what it was called with. Its cryptography is an exclusive or.
//
// It is a shared object that the tests have opened in the place of libvelcrypto.so.
#ifndef ZRVTEST_COUNTING_PROVIDER_H
#define ZRVTEST_COUNTING_PROVIDER_H

#include <string>
#include <vector>

#include "zrvcomn/velcrypto.h"

namespace zrvtest {

struct ProviderControl {
  int calls = 0;     // that can fail, since reset
  int fail_at = 0;   // which of them fails, from 1; 0 is none
  int property = -1; // the value that was set last
  int live_objects = 0;
  int live_lists = 0;      // lists of functions
  int live_apis = 0;       // API lists
  RC released = 0;         // what releases return, which release all the same
  std::string released_by; // the kind of object that returns it; empty: every kind, and the APIs
  size_t excess = 0;       // by which a length that is returned exceeds the capacity; 0: the truth
  size_t first_capacity = 0; // what stood in the length of the latest transformation beforehand
  std::vector<std::string> log;
  void *(*allocate)(size_t) = nullptr;
  void *(*allocate_cleared)(size_t, size_t) = nullptr;
  void *(*resize)(void *, size_t) = nullptr;
  void (*release)(void *) = nullptr;
};

} // namespace zrvtest

// The state of the provider, which starts anew whenever the library is opened.
extern "C" __attribute__((visibility("default"))) zrvtest::ProviderControl *counting_provider();

#endif
