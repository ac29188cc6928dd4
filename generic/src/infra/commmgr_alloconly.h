// The step of the alloc-only strategy that touches nothing but its newest chunk.
#ifndef COMN_INFRA_COMMMGR_ALLOCONLY_H
#define COMN_INFRA_COMMMGR_ALLOCONLY_H

#include "commmgr.h"

namespace comn::pool {

// Takes `size` bytes, a multiple of the pool word, at the cursor of a chunk; null without room.
inline void *take_bytes(MmHeap *chunk, CS_UINT size) noexcept {
  MmList *const cursor = chunk->free;
  if (size > cursor->size)
    return nullptr;
  void *const next = cursor->link;
  cursor->size -= size;
  cursor->link = at<MmList>(next, static_cast<std::ptrdiff_t>(size));
  return next;
}

// Clears from a block, the newest of the newest chunk, to well behind the cursor.
void clear_ahead(MmPoolNotes &notes, void *block) noexcept;

// Takes `size` bytes from the newest chunk and clears them; null without room. Not for a pool with a
// lock: what is cleared ahead is nobody's yet.
inline void *take_cleared_bytes(MmPoolNotes &notes, CS_UINT size) noexcept {
  if (size > largest_request)
    return nullptr;
  void *const block = take_bytes(notes.pool.a.free, round_up(size));
  if (block != nullptr && bytes(block) + size > notes.cleared)
    clear_ahead(notes, block);
  return block;
}

} // namespace comn::pool

#endif
