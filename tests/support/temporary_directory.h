// A directory of its own, which goes with everything in it.
#ifndef ZRVTEST_TEMPORARY_DIRECTORY_H
#define ZRVTEST_TEMPORARY_DIRECTORY_H

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace zrvtest {

class TemporaryDirectory {
public:
  TemporaryDirectory() {
    // Tests that write each file down to the disk would wait for the disk most of their time.
    const bool has_memory = access("/dev/shm", W_OK) == 0;
    std::string pattern = (has_memory ? "/dev/shm/" : testing::TempDir()) + "zrvtest_XXXXXX";
    path = mkdtemp(pattern.data());
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory &) = delete;
  TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

  std::filesystem::path path;
};

} // namespace zrvtest

#endif
