#include "config_peers.h"

#ifdef ZRVBENCH_WITH_GLIB
#include <cstring>

#include <glib.h>

namespace zrvbench {

void *glib_load(const char *data, std::size_t size) {
  GKeyFile *const file = g_key_file_new();
  if (g_key_file_load_from_data(file, data, size, G_KEY_FILE_NONE, nullptr) != 0)
    return file;
  g_key_file_free(file);
  return nullptr;
}

std::size_t glib_get(void *file, const char *group, const char *key) {
  char *const value = g_key_file_get_string(static_cast<GKeyFile *>(file), group, key, nullptr);
  const std::size_t length = value != nullptr ? std::strlen(value) : 0;
  g_free(value);
  return length;
}

void glib_drop(void *file) {
  g_key_file_free(static_cast<GKeyFile *>(file));
}

} // namespace zrvbench
#endif
