// Counts the system calls on files that the libraries make, fails the n-th, or ends the process there.
//
// The test program defines these calls itself, so the dynamic linker binds the libraries to them and
// not to the C library's.
#ifndef ZRVTEST_SYSTEM_CALLS_H
#define ZRVTEST_SYSTEM_CALLS_H

#include <cstddef>
#include <string>

namespace zrvtest {

class SystemCalls {
public:
  // Starts to count.
  SystemCalls();
  ~SystemCalls();
  SystemCalls(const SystemCalls &) = delete;
  SystemCalls &operator=(const SystemCalls &) = delete;

  // Fails the n-th call from now (1 is the next one) with that errno. A close that fails has closed.
  void fail(size_t nth, int error);
  // Fails every call of a name, as "write".
  void fail_all(const std::string &name, int error);
  // Kills the process before the n-th call from now; a write has written half of its bytes.
  void kill(size_t nth);
  // Reads and writes take at most that many bytes.
  void limit(size_t bytes);

  size_t calls() const;
  size_t calls(const std::string &name) const;
  size_t failures() const;
  // The name of the call; that of a file that was written to is "close of what was written".
  std::string last_failed() const;
};

} // namespace zrvtest

#endif
