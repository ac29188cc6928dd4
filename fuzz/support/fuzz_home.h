// A home directory of this process with one file, which holds the input.
#ifndef ZRVFUZZ_FUZZ_HOME_H
#define ZRVFUZZ_FUZZ_HOME_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zrvfuzz {

class Home {
public:
  // The path of the file below the home directory.
  explicit Home(const std::string &relative) {
    check(mkdtemp(path.data()) != nullptr);
    directories.push_back(path);
    for (std::size_t slash = 0; (slash = relative.find('/', slash)) != std::string::npos; ++slash) {
      directories.push_back(path + "/" + relative.substr(0, slash));
      check(mkdir(directories.back().c_str(), 0700) == 0);
    }
    setenv("ZARVEK", path.c_str(), 1);
    name = path + "/" + relative;
    file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    check(file >= 0);
  }
  ~Home() {
    close(file);
    unlink(name.c_str());
    for (; !directories.empty(); directories.pop_back())
      rmdir(directories.back().c_str());
  }
  Home(const Home &) = delete;
  Home &operator=(const Home &) = delete;

  void write(const std::uint8_t *data, std::size_t size) const {
    check(pwrite(file, data, size, 0) == static_cast<ssize_t>(size) &&
          ftruncate(file, static_cast<off_t>(size)) == 0);
  }

private:
  static void check(bool holds) {
    if (!holds) {
      std::perror("home of the fuzzer");
      std::_Exit(1);
    }
  }

  std::string path = "/tmp/zrvfuzz-XXXXXX";
  std::string name;
  std::vector<std::string> directories;
  int file = -1;
};

} // namespace zrvfuzz

#endif
