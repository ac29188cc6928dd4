// A home directory of the test's own with a single file, at which the environment points.
#ifndef ZRVTEST_HOME_FILE_H
#define ZRVTEST_HOME_FILE_H

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace zrvtest {

class HomeFile {
public:
  // The directories of the file are made, the file itself by write().
  explicit HomeFile(const char *name) {
    if (mkdtemp(home.data()) == nullptr)
      give_up();
    file = home + "/" + name;
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(file).parent_path(), error);
    if (error)
      give_up();
    setenv("ZARVEK", home.c_str(), 1);
  }
  ~HomeFile() {
    unsetenv("ZARVEK");
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
  }
  HomeFile(const HomeFile &) = delete;
  HomeFile &operator=(const HomeFile &) = delete;

  void write(std::string_view text) const {
    std::FILE *const out = std::fopen(file.c_str(), "w");
    if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out) != text.size() ||
        std::fclose(out) != 0)
      give_up();
  }

  const std::string &path() const { return file; }

private:
  [[noreturn]] static void give_up() {
    std::perror("home of the test");
    std::_Exit(125);
  }

  std::string home = "/tmp/zrvtest-XXXXXX";
  std::string file;
};

} // namespace zrvtest

#endif
