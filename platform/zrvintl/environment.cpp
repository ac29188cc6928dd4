// The environment, and where the installation lives.
#include <dlfcn.h>
#include <pwd.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "zrvintl.h"

namespace {

constexpr char home_variable[] = "ZARVEK";
constexpr char home_user[] = "zarvek";

// Copies a text that must fit whole, and returns its length.
int deliver(char *buffer, int size, const char *text, size_t length) noexcept {
  if (length >= static_cast<size_t>(size))
    return ZRVINTL_ESIZE;
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
  return static_cast<int>(length);
}

int deliver_path(char *buffer, int size, const char *path) noexcept {
  size_t length = std::strlen(path);
  while (length > 1 && path[length - 1] == '/')
    --length;
  return deliver(buffer, size, path, length);
}

// The home directory of the installation's user; 0 if there is no such user.
int user_home(char *buffer, int size) noexcept {
  char text[4096];
  passwd entry;
  passwd *found = nullptr;
  if (getpwnam_r(home_user, &entry, text, sizeof text, &found) != 0 || found == nullptr ||
      found->pw_dir == nullptr || found->pw_dir[0] == '\0')
    return 0;
  return deliver_path(buffer, size, found->pw_dir);
}

// The tree that was installed together with this library, found from the library's own path.
int installed_home(char *buffer, int size) noexcept {
  Dl_info self;
  char library[PATH_MAX];
  if (dladdr(home_variable, &self) == 0 || self.dli_fname == nullptr ||
      realpath(self.dli_fname, library) == nullptr)
    return ZRVINTL_ENOHOME;
  char *const slash = std::strrchr(library, '/');
  slash[1] = '\0';
  if (intl_strlcat(library, ZRVINTL_HOME_FROM_LIBRARY, sizeof library) >= sizeof library)
    return ZRVINTL_ENOHOME;
  char home[PATH_MAX];
  if (realpath(library, home) == nullptr)
    return ZRVINTL_ENOHOME;
  return deliver_path(buffer, size, home);
}

} // namespace

int intlgetenv(char *buffer, int size, const char *name) noexcept {
  if (buffer == nullptr || size < 1)
    return ZRVINTL_EINVAL;
  buffer[0] = '\0';
  if (name == nullptr)
    return ZRVINTL_EINVAL;
  const char *value = std::getenv(name);
  return value != nullptr ? deliver(buffer, size, value, std::strlen(value)) : 0;
}

int intl_home(char *buffer, int size) noexcept {
  if (buffer == nullptr || size < 1)
    return ZRVINTL_EINVAL;
  buffer[0] = '\0';
  const char *value = std::getenv(home_variable);
  if (value != nullptr && value[0] != '\0')
    return deliver_path(buffer, size, value);
  const int length = user_home(buffer, size);
  return length != 0 ? length : installed_home(buffer, size);
}
