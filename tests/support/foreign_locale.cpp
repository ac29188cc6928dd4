#include "foreign_locale.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace zrvtest {

ForeignLocale::ForeignLocale(const std::string &charset) {
  const std::string name = "de_DE." + charset;
  std::string path = (std::filesystem::temp_directory_path() / "zrvlocaleXXXXXX").string();
  if (mkdtemp(path.data()) == nullptr)
    return;
  directory = path;
  const std::string compile = "localedef --no-archive -i de_DE -f " + charset + " '" + directory +
                              "/" + name + "' >/dev/null 2>&1";
  if (std::system(compile.c_str()) != 0)
    return;
  setenv("LOCPATH", directory.c_str(), 1);
  set = std::setlocale(LC_ALL, name.c_str()) != nullptr &&
        std::strcmp(std::localeconv()->decimal_point, ",") == 0 &&
        std::strcmp(std::localeconv()->thousands_sep, ".") == 0;
}

ForeignLocale::~ForeignLocale() {
  std::setlocale(LC_ALL, "C");
  unsetenv("LOCPATH");
  if (!directory.empty())
    std::filesystem::remove_all(directory);
}

} // namespace zrvtest
