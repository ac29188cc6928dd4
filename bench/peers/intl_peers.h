// The peers of installation files, in a shared object of their own.
#ifndef ZRVBENCH_INTL_PEERS_H
#define ZRVBENCH_INTL_PEERS_H

namespace zrvbench {

#ifdef ZRVBENCH_WITH_GLIB
// Loads a key file and releases it; ends the program when it cannot.
void glib_load_key_file(const char *path);
#endif

} // namespace zrvbench

#endif
