// Where objects take their memory from.
#ifndef VELCRYPTO_MEMORY_H
#define VELCRYPTO_MEMORY_H

#include <cstddef>

namespace velcrypto {

struct Memory {
  void *(*allocate)(size_t);
  void *(*allocate_cleared)(size_t, size_t);
  void *(*resize)(void *, size_t);
  void (*release)(void *);
};

// The functions in use: the C library's until others are given.
extern Memory memory;

} // namespace velcrypto

#endif
