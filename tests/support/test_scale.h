// How far exhaustive and random loops go: sanitizers make each step about ten times as dear, and so
// does a build without optimisation.
#ifndef ZRVTEST_TEST_SCALE_H
#define ZRVTEST_TEST_SCALE_H

#include <cstddef>
#include <cstdlib>
#include <random>

extern "C" [[gnu::weak]] void __asan_init();

namespace zrvtest {

// True when the libraries are sanitized: the objects of the tests are the same either way.
const bool sanitized = &__asan_init != nullptr;

#ifdef __OPTIMIZE__
constexpr bool optimized = true;
#else
constexpr bool optimized = false;
#endif

// Where a random run starts: anywhere, or at ZRVTEST_SEED, which repeats a run.
inline unsigned long long random_seed() {
  const char *const given = std::getenv("ZRVTEST_SEED");
  return given != nullptr ? std::strtoull(given, nullptr, 0) : std::random_device{}();
}

// Steps of a long random run. ZRVTEST_STEPS overrides them, which is how a run under valgrind stays
// short.
inline std::size_t random_steps() {
  const char *const given = std::getenv("ZRVTEST_STEPS");
  return given != nullptr ? std::strtoul(given, nullptr, 0) : sanitized ? 60'000 : 1'000'000;
}

} // namespace zrvtest

#endif
