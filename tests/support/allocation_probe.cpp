#include "allocation_probe.h"

#include <cstdlib>
#include <unordered_map>

#include "zrvcomn/zrvintl.h"

namespace {

struct State {
  bool counting = false;
  size_t allocations = 0;
  size_t failures = 0;
  size_t last_size = 0;
  size_t countdown = 0; // 0: nothing is to fail
  zrvtest::AllocationProbe::Mode mode = zrvtest::AllocationProbe::fail_once;
  std::unordered_map<void *, size_t> live; // with their sizes
  std::string last_released;
};

State &state() {
  static State the_state;
  return the_state;
}

// True when this allocation is to fail.
bool meter(size_t size) {
  State &s = state();
  if (!s.counting)
    return false;
  ++s.allocations;
  s.last_size = size;
  if (s.countdown == 0)
    return false;
  if (s.countdown > 1) {
    --s.countdown;
    return false;
  }
  if (s.mode == zrvtest::AllocationProbe::fail_once)
    s.countdown = 0;
  ++s.failures;
  return true;
}

void *taken(void *block, size_t size) {
  if (state().counting && block != nullptr)
    state().live[block] = size;
  return block;
}

void released(void *block) {
  const auto found = state().live.find(block);
  if (found == state().live.end())
    return;
  state().last_released.assign(static_cast<const char *>(block), found->second);
  state().live.erase(found);
}

} // namespace

void *comn_malloc(size_t size) noexcept {
  return meter(size) ? nullptr : taken(std::malloc(size == 0 ? 1 : size), size);
}

void *comn_calloc(size_t count, size_t size) noexcept {
  return meter(count * size)
             ? nullptr
             : taken(std::calloc(count == 0 ? 1 : count, size == 0 ? 1 : size), count * size);
}

void *comn_realloc(void *block, size_t size) noexcept {
  if (meter(size))
    return nullptr;
  const auto found = state().live.find(block);
  const bool was_live = found != state().live.end();
  const size_t old_size = was_live ? found->second : 0;
  released(block);
  void *const moved = std::realloc(block, size == 0 ? 1 : size);
  if (moved == nullptr && was_live)
    state().live[block] = old_size;
  return taken(moved, size);
}

void comn_free(void *block) noexcept {
  released(block);
  std::free(block);
}

namespace zrvtest {

AllocationProbe::AllocationProbe() {
  state() = State{};
  state().counting = true;
}

AllocationProbe::~AllocationProbe() {
  state() = State{};
}

void AllocationProbe::fail(size_t nth, Mode mode) {
  state().countdown = nth;
  state().mode = mode;
}

void AllocationProbe::succeed() {
  state().countdown = 0;
}
size_t AllocationProbe::allocations() const {
  return state().allocations;
}
size_t AllocationProbe::failures() const {
  return state().failures;
}
size_t AllocationProbe::live_blocks() const {
  return state().live.size();
}
size_t AllocationProbe::live_bytes() const {
  size_t bytes = 0;
  for (const auto &[block, size] : state().live)
    bytes += size;
  return bytes;
}
size_t AllocationProbe::last_size() const {
  return state().last_size;
}
std::string AllocationProbe::last_released() const {
  return state().last_released;
}

size_t fail_each_allocation(const std::function<void()> &setup,
                            const std::function<bool()> &operation,
                            const std::function<void()> &cleanup) {
  size_t failed = 0;
  for (const auto mode : {AllocationProbe::fail_once, AllocationProbe::fail_from_then_on}) {
    for (size_t nth = 1;; ++nth) {
      AllocationProbe probe;
      setup();
      probe.fail(nth, mode);
      const bool reported = operation();
      const bool injected = probe.failures() > 0;
      probe.succeed();
      EXPECT_EQ(reported, injected) << "allocation " << nth << ", mode " << mode;
      if (injected) {
        ++failed;
        EXPECT_FALSE(operation()) << "the retry after allocation " << nth << ", mode " << mode;
      }
      cleanup();
      EXPECT_EQ(probe.live_blocks(), 0U) << "allocation " << nth << ", mode " << mode;
      if (!injected)
        break;
    }
  }
  return failed;
}

} // namespace zrvtest
