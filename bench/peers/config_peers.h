// The peers of configuration files, in a shared object of their own.
#ifndef ZRVBENCH_CONFIG_PEERS_H
#define ZRVBENCH_CONFIG_PEERS_H

#include <cstddef>

namespace zrvbench {

#ifdef ZRVBENCH_WITH_GLIB
// A key file of GLib; null when it does not load.
void *glib_load(const char *data, std::size_t size);
// The length of a value, which is copied and released.
std::size_t glib_get(void *file, const char *group, const char *key);
void glib_drop(void *file);
#endif

} // namespace zrvbench

#endif
