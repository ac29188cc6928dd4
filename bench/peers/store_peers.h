// The peer of the secure store, in a shared object of its own: opening and reading a file.
#ifndef ZRVBENCH_STORE_PEERS_H
#define ZRVBENCH_STORE_PEERS_H

#include <cstddef>

extern "C" {

// Reads a file of that size whole into a block of its own, and releases that; false when it cannot.
bool peer_read_file(const char *path, size_t size);
}

#endif
