// Reading memory that may not be there.
#ifndef COMN_FRAME_STACK_MEMORY_H
#define COMN_FRAME_STACK_MEMORY_H

#include <cstddef>
#include <cstdint>

namespace comn {

// Copies `size` bytes from `address`; false, and nothing faults, when any of them cannot be read.
bool read_stack_memory(uintptr_t address, void *buffer, size_t size) noexcept;

} // namespace comn

#endif
