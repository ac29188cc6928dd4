#include "io_probe.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <unordered_set>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct State {
  bool counting = false;
  size_t calls = 0;
  size_t reads = 0;
  size_t failures = 0;
  size_t countdown = 0; // 0: nothing is to fail
  int error = 0;
  size_t most = SIZE_MAX; // bytes that a read gives
  std::unordered_set<int> files;
};

State &state() {
  static State the_state;
  return the_state;
}

// True when this call is to fail; errno is then set.
bool meter() {
  State &s = state();
  if (!s.counting)
    return false;
  ++s.calls;
  if (s.countdown == 0 || --s.countdown > 0)
    return false;
  ++s.failures;
  errno = s.error;
  return true;
}

} // namespace

// With files of any size this is open64 in a 32-bit program, in the libraries as well as here.
extern "C" int open(const char *path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list more;
    va_start(more, flags);
    mode = va_arg(more, mode_t);
    va_end(more);
  }
  if (meter())
    return -1;
  const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
  if (state().counting && file >= 0)
    state().files.insert(file);
  return file;
}

extern "C" ssize_t read(int file, void *buffer, size_t size) {
  if (state().counting)
    ++state().reads;
  if (meter())
    return -1;
  return syscall(SYS_read, file, buffer, std::min(size, state().most));
}

extern "C" int close(int file) {
  const bool fails = meter();
  const int error = errno;
  state().files.erase(file);
  const auto result = static_cast<int>(syscall(SYS_close, file));
  if (!fails)
    return result;
  errno = error;
  return -1;
}

namespace zrvtest {

IoProbe::IoProbe() {
  state() = State{};
  state().counting = true;
}

IoProbe::~IoProbe() {
  state() = State{};
}

void IoProbe::fail(size_t nth, int error) {
  state().countdown = nth;
  state().error = error;
}

void IoProbe::limit_reads(size_t bytes) {
  state().most = bytes;
}
size_t IoProbe::calls() const {
  return state().calls;
}
size_t IoProbe::reads() const {
  return state().reads;
}
size_t IoProbe::failures() const {
  return state().failures;
}
size_t IoProbe::open_files() const {
  return state().files.size();
}

size_t fail_each_io(const std::function<bool()> &operation) {
  for (size_t nth = 1;; ++nth) {
    IoProbe probe;
    probe.fail(nth);
    const bool reported = operation();
    const bool injected = probe.failures() > 0;
    EXPECT_EQ(reported, injected) << "call " << nth;
    EXPECT_EQ(probe.open_files(), 0U) << "call " << nth;
    if (!injected)
      return nth - 1;
    EXPECT_FALSE(operation()) << "the retry after call " << nth;
    EXPECT_EQ(probe.open_files(), 0U) << "the retry after call " << nth;
  }
}

} // namespace zrvtest
