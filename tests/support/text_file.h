// A file that holds given bytes while the object lives, in no directory.
#ifndef ZRVTEST_TEXT_FILE_H
#define ZRVTEST_TEXT_FILE_H

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace zrvtest {

class TextFile {
public:
  explicit TextFile(std::string_view bytes) : file(memfd_create("text", MFD_CLOEXEC)) {
    const char *next = bytes.data();
    for (size_t left = bytes.size(); left > 0;) {
      const ssize_t written = write(file, next, left);
      if (written <= 0) {
        std::perror("text file");
        std::_Exit(125);
      }
      next += written;
      left -= static_cast<size_t>(written);
    }
    name = "/proc/self/fd/" + std::to_string(file);
  }
  ~TextFile() { close(file); }
  TextFile(const TextFile &) = delete;
  TextFile &operator=(const TextFile &) = delete;

  const char *path() const { return name.c_str(); }

private:
  int file;
  std::string name;
};

} // namespace zrvtest

#endif
