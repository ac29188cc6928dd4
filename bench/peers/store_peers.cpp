#include "store_peers.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

bool peer_read_file(const char *path, size_t size) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0)
    return false;
  void *const block = std::malloc(size);
  const bool is_read = block != nullptr && read(file, block, size) == static_cast<ssize_t>(size);
  asm volatile("" : : "r"(block) : "memory"); // or nobody would need the block
  std::free(block);
  close(file);
  return is_read;
}
