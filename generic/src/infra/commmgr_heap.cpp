// The general heap of a pool: regions, first fit over address-ordered free lists, and the chain of
// blocks that each handle holds.
//
// A split may leave a remainder of no payload. It has no room for a link and stays off the free
// list; its header says 0, which no allocated block does, so the block in front of it takes it up
// again when it is freed.
#include <climits>

#include "checks.h"
#include "commmgr.h"

using namespace comn::pool;

namespace {

// The bytes of a region up to which blocks are laid.
CS_UINT usable(const MmHeap *heap) noexcept {
  return round_down(static_cast<CS_UINT>(heap->size));
}

MmList *end_of(MmList *block) noexcept {
  return at<MmList>(block, static_cast<std::ptrdiff_t>(word + block->size));
}

bool is_wholly_free(const MmHeap *heap) noexcept {
  return heap->free != nullptr && heap->free->size + region_overhead == usable(heap);
}

// Takes `size` bytes from the first block of a region that has them; null if none has.
void *take_first_fit(MmHeap *heap, CS_UINT size) noexcept {
  for (MmList **slot = &heap->free; *slot != nullptr; slot = &(*slot)->link) {
    MmList *const block = *slot;
    if (block->size < size)
      continue;
    MmList *behind = block->link;
    if (block->size > size) {
      const CS_UINT rest = block->size - size - word;
      block->size = size;
      MmList *const remainder = end_of(block);
      remainder->size = rest;
      if (rest != 0) {
        remainder->link = behind;
        behind = remainder;
      }
    }
    *slot = behind;
    return payload_of(block);
  }
  return nullptr;
}

// The search that a handle may rely on; null unless it fulfils the four conditions of MmSearch.
MmSearch *remembered_search(MM_HANDLE *mmh) noexcept {
  const bool gives_nothing_back =
      mmh->mmh_type == MM_POOL_UNIFORM || mmh->mmh_type == MM_POOL_ALLOCONLY;
  const bool is_alone = mmh->mmh_parent == nullptr && mmh->mmh_child == nullptr;
  return is_ready(mmh) && gives_nothing_back && is_alone ? &mmh->mmh_pool.notes.search : nullptr;
}

} // namespace

CS_RETCODE com___addheap(MM_HANDLE *mmh, CS_VOID *region, CS_INT length, CS_INT status) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(region, COMN_TRACE(CS_FAIL));
  COMN_CHECK(length >= MM_MIN_REGION, COMN_TRACE(CS_FAIL));
  MmPoolHead *const head = mmh->mmh_head;
  const auto total = static_cast<CS_UINT>(head->mph_totalsize) + static_cast<CS_UINT>(length);
  head->mph_totalsize = total > INT_MAX ? INT_MAX : static_cast<CS_INT>(total);

  const auto skipped = static_cast<CS_UINT>(-reinterpret_cast<std::uintptr_t>(region)) & (word - 1);
  const CS_UINT rest = static_cast<CS_UINT>(length) - skipped;
  if (rest < region_overhead)
    return COMN_TRACE(CS_SUCCEED);
  auto *const heap = at<MmHeap>(region, static_cast<std::ptrdiff_t>(skipped));
  heap->size = static_cast<CS_INT>(rest);
  heap->status = status;
  heap->free = nullptr;
  heap->next = head->mph_heap;
  head->mph_heap = heap;
  auto *const first = at<MmList>(heap, offsetof(MmHeap, buffer));
  first->size = usable(heap) - region_overhead;
  return COMN_TRACE(com___insert_block(heap, first));
}

CS_RETCODE com___sbreak(MM_HANDLE *mmh, CS_UINT size) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  MmPoolHead *const head = mmh->mmh_head;
  if (head->mph_sbreak == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (head->mph_maxsize != MM_NO_MAXSIZE &&
      static_cast<long long>(head->mph_totalsize) + size > head->mph_maxsize)
    return COMN_TRACE(CS_FAIL);
  void *const region = head->mph_sbreak(mmh, head->mph_param, size);
  if (region == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(is_aligned(region), COMN_TRACE(CS_FAIL));
  return COMN_TRACE(com___addheap(mmh, region, static_cast<CS_INT>(size), MM_HEAP_BREAK));
}

CS_RETCODE com___unsbreak(MM_HANDLE *mmh, MmHeap *heap) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(heap, COMN_TRACE(CS_FAIL));
  MmPoolHead *const head = mmh->mmh_head;
  if (head->mph_unsbreak == nullptr)
    return COMN_TRACE(CS_FAIL);
  head->mph_unsbreak(mmh, head->mph_param, heap);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___getheap(MM_HANDLE *mmh, CS_UINT size, CS_VOID **payload) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(payload, COMN_TRACE(CS_FAIL));
  if (size > largest_request)
    return COMN_TRACE(CS_MEM_ERROR);
  // No block is without payload: that is the mark of a remainder.
  const CS_UINT rounded = size == 0 ? word : round_up(size);
  MmPoolHead *const head = mmh->mmh_head;
  MmSearch *const last = remembered_search(mmh);
  for (;;) {
    const MmHeap *const end = last != nullptr && rounded >= last->size ? last->first : nullptr;
    for (MmHeap *heap = head->mph_heap; heap != end; heap = heap->next) {
      if (static_cast<CS_UINT>(heap->size) < rounded)
        continue;
      if (void *const found = take_first_fit(heap, rounded)) {
        *payload = found;
        return COMN_TRACE(CS_SUCCEED);
      }
    }
    if (last != nullptr)
      *last = {head->mph_heap, rounded};
    const CS_UINT needed = rounded + region_overhead;
    const auto chunk = static_cast<CS_UINT>(head->mph_chunksize);
    if (com___sbreak(mmh, needed > chunk ? needed : chunk) != CS_SUCCEED)
      return COMN_TRACE(CS_MEM_ERROR);
  }
}

Freed comn::pool::free_payload(MM_HANDLE *mmh, void *payload) noexcept {
  auto *const block = header_of<MmList>(payload);
  MmPoolHead *const head = mmh->mmh_head;
  if (MmSearch *const last = remembered_search(mmh))
    *last = {};
  for (MmHeap **slot = &head->mph_heap; *slot != nullptr; slot = &(*slot)->next) {
    MmHeap *const heap = *slot;
    const size_t offset = offset_in(heap, block);
    if (offset == 0 || offset >= static_cast<CS_UINT>(heap->size))
      continue;
    if (com___insert_block(heap, block) != CS_SUCCEED)
      return Freed::nothing;
    if (heap->status == MM_HEAP_BREAK && is_wholly_free(heap)) {
      MmHeap *const next = heap->next;
      if (com___unsbreak(mmh, heap) != CS_SUCCEED)
        return Freed::block_alone;
      *slot = next;
    }
    return Freed::all;
  }
  comn::raise_bomb(COMN_HERE);
  return Freed::nothing;
}

CS_RETCODE com___putheap(MM_HANDLE *mmh, CS_VOID *payload) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(payload, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(free_payload(mmh, payload) == Freed::all ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com___insert_block(MmHeap *heap, MmList *block) noexcept {
  COMN_CHECK_PTR(heap, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(block, COMN_TRACE(CS_FAIL));
  COMN_CHECK(bytes(block) > bytes(heap), COMN_TRACE(CS_FAIL));
  const CS_UINT limit = usable(heap);
  const size_t offset = offset_in(heap, block);
  COMN_CHECK(offset <= limit - word && block->size <= limit - offset - word, COMN_TRACE(CS_FAIL));

  MmList **slot = &heap->free;
  MmList *before = nullptr;
  for (; *slot != nullptr && *slot <= block; slot = &before->link) {
    before = *slot;
    COMN_CHECK(before != block && end_of(before) <= block, COMN_TRACE(CS_FAIL));
  }
  MmList *const behind = *slot;
  COMN_CHECK(behind == nullptr || end_of(block) <= behind, COMN_TRACE(CS_FAIL));

  // A remainder of no payload behind the block comes back with it.
  if (offset_in(heap, end_of(block)) < limit && end_of(block)->size == 0)
    block->size += word;
  if (block->size == 0)
    return COMN_TRACE(CS_SUCCEED);

  MmList *merged = block;
  if (before != nullptr && end_of(before) == block) {
    before->size += block->size + word;
    merged = before;
  } else {
    block->link = behind;
    *slot = block;
  }
  if (behind != nullptr && end_of(merged) == behind) {
    merged->link = behind->link;
    merged->size += behind->size + word;
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___getblock(MM_HANDLE *mmh, CS_UINT size, CS_VOID **block) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(block, COMN_TRACE(CS_FAIL));
  if (size > largest_request)
    return COMN_TRACE(CS_MEM_ERROR);
  void *payload = nullptr;
  const CS_RETCODE result = com___getheap(mmh, size + word, &payload);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  auto *const record = static_cast<MmBlock *>(payload);
  record->next = mmh->mmh_blocks;
  mmh->mmh_blocks = record;
  *block = &record->block;
  return COMN_TRACE(CS_SUCCEED);
}

Freed comn::pool::free_chained_block(MM_HANDLE *mmh, void *block) noexcept {
  for (MmBlock **slot = &mmh->mmh_blocks; *slot != nullptr; slot = &(*slot)->next) {
    MmBlock *const record = *slot;
    if (&record->block != block)
      continue;
    *slot = record->next;
    return free_payload(mmh, record);
  }
  comn::raise_bomb(COMN_HERE);
  return Freed::nothing;
}

CS_RETCODE com___putblock(MM_HANDLE *mmh, CS_VOID *block) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(block, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(free_chained_block(mmh, block) == Freed::all ? CS_SUCCEED : CS_FAIL);
}
