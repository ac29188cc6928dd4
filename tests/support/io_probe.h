// Counts and fails the opens, reads and closes of the libraries.
//
// The test program defines open, read and close itself, so the dynamic linker binds the libraries to
// these and not to the C library's.
#ifndef ZRVTEST_IO_PROBE_H
#define ZRVTEST_IO_PROBE_H

#include <cerrno>
#include <cstddef>
#include <functional>

#include <gtest/gtest.h>

namespace zrvtest {

class IoProbe {
public:
  // Starts to count; files that are open already are not counted.
  IoProbe();
  ~IoProbe();
  IoProbe(const IoProbe &) = delete;
  IoProbe &operator=(const IoProbe &) = delete;

  // Fails the n-th call from now (1 is the next one) with that errno. A close that fails has closed
  // the file, as the system's has.
  void fail(size_t nth, int error = EIO);
  // Reads give at most that many bytes from now on.
  void limit_reads(size_t bytes);

  size_t calls() const;    // since the start, failed ones included
  size_t reads() const;    // of them, reads
  size_t failures() const; // calls that were made to fail
  size_t open_files() const;
};

// Fails each open, read and close of `operation` in turn, until a run makes no more of them. Each
// time `operation` must report the failure by returning true, and then succeed at once (return
// false); no file may stay open. Returns the number of calls failed.
[[nodiscard]] size_t fail_each_io(const std::function<bool()> &operation);

} // namespace zrvtest

#endif
