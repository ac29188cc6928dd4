// Counts and fails the allocations of the library.
//
// The test program defines comn_malloc and its kin itself, so the dynamic linker binds the library
// to these and not to libzrvintl's.
#ifndef ZRVTEST_ALLOCATION_PROBE_H
#define ZRVTEST_ALLOCATION_PROBE_H

#include <cstddef>
#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace zrvtest {

class AllocationProbe {
public:
  enum Mode { fail_once, fail_from_then_on };

  // Starts to count; blocks that live already are not counted.
  AllocationProbe();
  ~AllocationProbe();
  AllocationProbe(const AllocationProbe &) = delete;
  AllocationProbe &operator=(const AllocationProbe &) = delete;

  // Fails the n-th allocation from now (1 is the next one), or that one and all later ones.
  void fail(size_t nth, Mode mode = fail_once);
  void succeed();

  size_t allocations() const; // since the start, failed ones included
  size_t failures() const;    // allocations that were made to fail
  size_t live_blocks() const; // taken since the start and not released
  size_t live_bytes() const;  // what was asked for in them
  size_t last_size() const;   // bytes of the latest request
  // What stood in the block that was released last, so that a test can see whether it was cleared.
  std::string last_released() const;
};

// Fails each allocation of `operation` in turn, once and from then on, until a run makes no more of
// them. Each time: `operation` runs on what `setup` made and must report the failure by returning
// true; then the allocator recovers and `operation` must succeed at once (return false); then
// `cleanup` runs and no block may be left. Returns the number of allocations failed.
[[nodiscard]] size_t fail_each_allocation(const std::function<void()> &setup,
                                          const std::function<bool()> &operation,
                                          const std::function<void()> &cleanup);

} // namespace zrvtest

#endif
