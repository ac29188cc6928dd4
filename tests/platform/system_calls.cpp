#include "system_calls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <map>
#include <set>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct State {
  bool counting = false;
  size_t calls = 0, failures = 0;
  size_t countdown = 0; // 0: nothing is to fail
  bool kills = false;
  int error = 0;
  std::string all;
  std::string last_failed;
  size_t most = SIZE_MAX;
  std::map<std::string, size_t> by_name;
  std::set<int> written;
};

State &state() {
  static State the_state;
  return the_state;
}

[[noreturn]] void die() {
  kill(getpid(), SIGKILL);
  for (;;)
    pause();
}

// True when this call is to be the last, or to fail; errno is then set.
bool meter(const char *name) {
  State &s = state();
  if (!s.counting)
    return false;
  ++s.calls;
  ++s.by_name[name];
  if (s.all != name && (s.countdown == 0 || --s.countdown > 0))
    return false;
  ++s.failures;
  s.last_failed = name;
  errno = s.error;
  return true;
}

// The same where nothing is to be done before the process ends.
bool fails(const char *name) {
  if (!meter(name))
    return false;
  if (state().kills)
    die();
  return true;
}

// With files of any size the functions of a 32-bit program have names of their own.
template <class Function>
Function *real(const char *name, const char *wide_name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, sizeof(long) == 4 ? wide_name : name));
}

} // namespace

#define REAL(name, wide, ...)                                                                      \
  static auto *const next = real<__VA_ARGS__>(#name, #wide);                                       \
  if (fails(#name))                                                                                \
  return

extern "C" int openat(int directory, const char *path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list more;
    va_start(more, flags);
    mode = static_cast<mode_t>(va_arg(more, unsigned));
    va_end(more);
  }
  REAL(openat, openat64, int(int, const char *, int, ...)) - 1;
  return next(directory, path, flags, mode);
}

extern "C" ssize_t read(int file, void *buffer, size_t size) {
  REAL(read, read, ssize_t(int, void *, size_t)) - 1;
  return next(file, buffer, std::min(size, state().most));
}

extern "C" ssize_t write(int file, const void *buffer, size_t size) {
  static auto *const next = real<ssize_t(int, const void *, size_t)>("write", "write");
  if (state().counting)
    state().written.insert(file);
  if (!meter("write"))
    return next(file, buffer, std::min(size, state().most));
  if (!state().kills)
    return -1;
  (void)!next(file, buffer, size / 2);
  die();
}

extern "C" int fsync(int file) {
  REAL(fsync, fsync, int(int)) - 1;
  return next(file);
}

extern "C" int fchmod(int file, mode_t mode) noexcept {
  REAL(fchmod, fchmod, int(int, mode_t)) - 1;
  return next(file, mode);
}

extern "C" int fstat(int file, struct stat *status) noexcept {
  REAL(fstat, fstat64, int(int, struct stat *)) - 1;
  return next(file, status);
}

extern "C" int flock(int file, int operation) noexcept {
  REAL(flock, flock, int(int, int)) - 1;
  return next(file, operation);
}

extern "C" int renameat(int from, const char *old_name, int to, const char *new_name) noexcept {
  REAL(renameat, renameat, int(int, const char *, int, const char *)) - 1;
  return next(from, old_name, to, new_name);
}

extern "C" int unlinkat(int directory, const char *name, int flags) noexcept {
  REAL(unlinkat, unlinkat, int(int, const char *, int)) - 1;
  return next(directory, name, flags);
}

extern "C" int mkdir(const char *path, mode_t mode) noexcept {
  REAL(mkdir, mkdir, int(const char *, mode_t)) - 1;
  return next(path, mode);
}

extern "C" DIR *fdopendir(int file) {
  REAL(fdopendir, fdopendir, DIR * (int)) nullptr;
  return next(file);
}

extern "C" dirent *readdir(DIR *stream) {
  REAL(readdir, readdir64, dirent * (DIR *)) nullptr;
  return next(stream);
}

extern "C" int close(int file) {
  static auto *const next = real<int(int)>("close", "close");
  const bool was_written = state().counting && state().written.erase(file) != 0;
  const bool has_failed = fails(was_written ? "close of what was written" : "close");
  const int error = errno;
  const int result = next(file);
  if (!has_failed)
    return result;
  errno = error;
  return -1;
}

namespace zrvtest {

SystemCalls::SystemCalls() {
  state() = State{};
  state().counting = true;
}
SystemCalls::~SystemCalls() {
  state() = State{};
}
void SystemCalls::fail(size_t nth, int error) {
  state().countdown = nth;
  state().error = error;
}
void SystemCalls::fail_all(const std::string &name, int error) {
  state().all = name;
  state().error = error;
}
void SystemCalls::kill(size_t nth) {
  state().countdown = nth;
  state().kills = true;
}
void SystemCalls::limit(size_t bytes) {
  state().most = bytes;
}
size_t SystemCalls::calls() const {
  return state().calls;
}
size_t SystemCalls::calls(const std::string &name) const {
  const auto found = state().by_name.find(name);
  return found == state().by_name.end() ? 0 : found->second;
}
size_t SystemCalls::failures() const {
  return state().failures;
}
std::string SystemCalls::last_failed() const {
  return state().last_failed;
}

} // namespace zrvtest
