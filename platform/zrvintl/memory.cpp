// Memory: the C library's allocator with the few points that its standard leaves open settled.
#include <cstdlib>

#include "zrvintl.h"

namespace {

// The C library may answer a size of 0 with null, which callers here take for a failure.
size_t at_least_one(size_t size) noexcept {
  return size == 0 ? 1 : size;
}

} // namespace

void *comn_malloc(size_t size) noexcept {
  return std::malloc(at_least_one(size));
}

void *comn_calloc(size_t count, size_t size) noexcept {
  // No elements of any size are nothing, and nothing is one byte.
  return count == 0 || size == 0 ? std::calloc(1, 1) : std::calloc(count, size);
}

void *comn_realloc(void *block, size_t size) noexcept {
  return std::realloc(block, at_least_one(size));
}

void comn_free(void *block) noexcept {
  std::free(block);
}
