// The peers of installation files.
#include "intl_peers.h"

#ifdef ZRVBENCH_WITH_GLIB
#include <cstdio>
#include <cstdlib>

#include <glib.h>

void zrvbench::glib_load_key_file(const char *path) {
  GKeyFile *const file = g_key_file_new();
  GError *error = nullptr;
  if (g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, &error) == FALSE) {
    std::fprintf(stderr, "%s: %s\n", path, error->message);
    std::exit(1);
  }
  g_key_file_free(file);
}
#endif
