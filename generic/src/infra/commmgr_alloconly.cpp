// The alloc-only strategy: bump allocation inside chunks, nothing returned until the drop.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "commmgr_alloconly.h"

using namespace comn::pool;

namespace {

// The cursor of a chunk stands where a region has its first block: bytes left, next free byte.
constexpr CS_UINT chunk_overhead = offsetof(MmHeap, buffer) + sizeof(MmList);
static_assert(sizeof(void *) != 4 || chunk_overhead == 24);

// Runs at every allocation before the first that succeeds.
void set_up_chunks(MmPoolNotes &notes) noexcept {
  notes.pool.a.free = nullptr;
  notes.older_left = 0;
  notes.search = {};
}

// Takes `size` bytes from the first chunk with room, newest first; null when there is none.
void *take_from_chunks(MmPoolNotes &notes, CS_UINT size) noexcept {
  MmHeap *const newest = notes.pool.a.free;
  if (newest == nullptr)
    return nullptr;
  void *block = take_bytes(newest, size);
  if (block != nullptr || size > notes.older_left)
    return block;
  CS_UINT most = 0;
  for (MmHeap *chunk = newest->next; chunk != nullptr; chunk = chunk->next) {
    block = take_bytes(chunk, size);
    if (block != nullptr)
      return block;
    most = std::max(most, chunk->free->size);
  }
  notes.older_left = most;
  return nullptr;
}

// Adds a chunk with room for `size` bytes.
CS_RETCODE add_chunk(MM_HANDLE *mmh, CS_UINT size) noexcept {
  const CS_UINT chunk_size =
      std::max(size + chunk_overhead, static_cast<CS_UINT>(mmh->mmh_blocksize));
  void *block = nullptr;
  const CS_RETCODE result = com___getblock(mmh, chunk_size, &block);
  if (result != CS_SUCCEED)
    return result;
  MmPoolNotes &notes = mmh->mmh_pool.notes;
  MmHeap *const last = notes.pool.a.free;
  auto *const chunk = static_cast<MmHeap *>(block);
  chunk->size = static_cast<CS_INT>(chunk_size);
  chunk->next = last;
  chunk->free = at<MmList>(block, offsetof(MmHeap, buffer));
  chunk->free->size = chunk_size - chunk_overhead;
  chunk->free->link = at<MmList>(block, chunk_overhead);
  notes.pool.a.free = chunk;
  notes.cleared = bytes(block);
  if (last != nullptr)
    notes.older_left = std::max(notes.older_left, last->free->size);
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE com___alloconly_malloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_ALLOCONLY, COMN_TRACE(CS_FAIL));
  MmPoolNotes &notes = mmh->mmh_pool.notes;
  if (!is_ready(mmh))
    set_up_chunks(notes);
  if (size > largest_request)
    return COMN_TRACE(CS_MEM_ERROR);
  const CS_UINT rounded = round_up(size);
  void *block = take_from_chunks(notes, rounded);
  if (block == nullptr) {
    const CS_RETCODE result = add_chunk(mmh, rounded);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    block = take_bytes(notes.pool.a.free, rounded);
  }
  *buffer = block;
  // Deliberate: the one return of the memory manager that is not traced.
  return CS_SUCCEED;
}

void comn::pool::clear_ahead(MmPoolNotes &notes, void *block) noexcept {
  constexpr CS_UINT most = 2048;
  const MmList *const cursor = notes.pool.a.free->free;
  notes.cleared = bytes(cursor->link) + std::min(cursor->size, most);
  std::memset(block, 0, static_cast<size_t>(bytes(notes.cleared) - bytes(block)));
}
