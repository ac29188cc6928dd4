// The alloc-only strategy: bump allocation inside chunks, nothing returned until the drop.
#include "checks.h"
#include "commmgr.h"

using namespace comn::pool;

namespace {

// The cursor of a chunk stands where a region has its first block: bytes left, next free byte.
constexpr CS_UINT chunk_overhead = offsetof(MmHeap, buffer) + sizeof(MmList);
static_assert(sizeof(void *) != 4 || chunk_overhead == 24);

} // namespace

CS_RETCODE com___alloconly_malloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_ALLOCONLY, COMN_TRACE(CS_FAIL));
  MmAllocOnlyPool &pool = mmh->mmh_pool.a;
  CS_UINT &older_left = mmh->mmh_pool.notes.older_left;
  if (!is_ready(mmh)) {
    pool.free = nullptr;
    older_left = 0;
    mmh->mmh_pool.notes.search = {};
  }
  if (size > largest_request)
    return COMN_TRACE(CS_MEM_ERROR);
  const CS_UINT rounded = size == 0 ? 0 : round_up(size);

  // The first chunk with room, newest first. The bound on what the older ones have left spares the
  // walk over chunks that are as good as full.
  if (pool.free != nullptr) {
    if (pool.free->free->size >= rounded) {
      *buffer = advance(pool.free->free, rounded);
      return CS_SUCCEED;
    }
    if (older_left >= rounded) {
      CS_UINT most = 0;
      for (MmHeap *chunk = pool.free->next; chunk != nullptr; chunk = chunk->next) {
        if (chunk->free->size >= rounded) {
          *buffer = advance(chunk->free, rounded);
          return CS_SUCCEED;
        }
        most = chunk->free->size > most ? chunk->free->size : most;
      }
      older_left = most;
    }
  }

  const CS_UINT needed = rounded + chunk_overhead;
  const auto least = static_cast<CS_UINT>(mmh->mmh_blocksize);
  const CS_UINT chunk_size = needed > least ? needed : least;
  void *block = nullptr;
  const CS_RETCODE result = com___getblock(mmh, chunk_size, &block);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  if (pool.free != nullptr && pool.free->free->size > older_left)
    older_left = pool.free->free->size;
  auto *const chunk = static_cast<MmHeap *>(block);
  chunk->size = static_cast<CS_INT>(chunk_size);
  chunk->status = 0;
  chunk->next = pool.free;
  chunk->free = at<MmList>(block, offsetof(MmHeap, buffer));
  chunk->free->size = chunk_size - chunk_overhead;
  chunk->free->link = at<MmList>(block, chunk_overhead);
  pool.free = chunk;
  *buffer = advance(chunk->free, rounded);
  return CS_SUCCEED;
}
