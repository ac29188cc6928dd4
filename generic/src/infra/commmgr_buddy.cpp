// The buddy strategy: power-of-two blocks inside chunks, merged only when a request cannot be met
// otherwise.
//
// A block's header names its order and its chunk, by the low bits of the chunk's address. Offsets
// are reckoned from there, so a chunk may stand at any address. They wrap at half of the largest
// chunk, which is why the blocks there carry a bit that tells the halves apart.
#include <bit>
#include <cstring>

#include "checks.h"
#include "commmgr.h"

using namespace comn::pool;

namespace {

// A buddy block of order 0 is four words: its header and two links, rounded up to a power of two.
constexpr CS_INT order_shift = static_cast<CS_INT>(std::bit_width(4 * word)) - 1;
constexpr CS_UINT smallest_request = 3 * word;
constexpr CS_INT top_order = MM_BUDDY_ORDERS - 1;

// What one unit of the identity field stands for, and how it is aligned in the header.
constexpr int identity_shift = 4;
constexpr CS_UINT identity_mask = MM_BUDDY_CHUNK >> identity_shift;

// The order of the smallest block whose payload holds a request, which is not below the smallest.
constexpr CS_INT order_for(CS_UINT size) noexcept {
  return static_cast<CS_INT>(std::bit_width(size + word - 1)) - order_shift;
}
static_assert(order_for(smallest_request) == 0 && order_for(smallest_request + 1) == 1);

constexpr CS_UINT block_bytes(CS_INT order) noexcept {
  return 1U << (order + order_shift);
}
constexpr CS_UINT block_words(CS_INT order) noexcept {
  return block_bytes(order) / word;
}

constexpr CS_INT order_of(CS_UINT header) noexcept {
  return (header & MM_BUDDY_TOPORDER) != 0 ? top_order
                                           : static_cast<CS_INT>(header & MM_BUDDY_ORDER);
}

CS_UINT address_in_words(const void *address) noexcept {
  return static_cast<CS_UINT>(reinterpret_cast<std::uintptr_t>(address) / word);
}

// The words between the start of its chunk and a block, as its header tells.
CS_UINT words_into_chunk(const MmDList *block) noexcept {
  return (address_in_words(block) - (block->size >> identity_shift)) & identity_mask;
}

// True when a block of this order can begin where this one does.
bool is_plausible(const MmDList *block, CS_INT order) noexcept {
  return (words_into_chunk(block) & (block_words(order) - 1)) == 0;
}

void push_block(MmBuddyPool &pool, CS_INT order, MmDList *block) noexcept {
  MmDList *&head = pool.free[order];
  block->next = head;
  block->prev = nullptr;
  if (head != nullptr)
    head->prev = block;
  head = block;
}

constexpr CS_UINT with_order(CS_UINT header, CS_INT order) noexcept {
  const CS_UINT cleared = header & ~(MM_BUDDY_ORDER | MM_BUDDY_TOPORDER);
  return cleared | (order == top_order ? MM_BUDDY_TOPORDER : static_cast<CS_UINT>(order));
}

// Both halves of a top-order chunk share everything but the bit that tells them apart.
constexpr CS_UINT half_mask(CS_INT order) noexcept {
  return order == top_order - 1 ? ~MM_BUDDY_UPPERHALF : ~0U;
}

// True when the block is the upper one of its pair.
bool is_upper(const MmDList *block, CS_INT order) noexcept {
  if (order == top_order - 1 && (block->size & MM_BUDDY_UPPERHALF) != 0)
    return true;
  return (words_into_chunk(block) & block_words(order)) != 0;
}

void unlink_block(MmBuddyPool &pool, CS_INT order, MmDList *block) noexcept {
  if (block->prev != nullptr)
    block->prev->next = block->next;
  else
    pool.free[order] = block->next;
  if (block->next != nullptr)
    block->next->prev = block->prev;
}

// Runs at every allocation before the first that succeeds, each time from the block size that the
// last one stored.
void set_up_orders(MM_HANDLE *mmh) noexcept {
  MmBuddyPool &pool = mmh->mmh_pool.af;
  const auto blocksize = static_cast<CS_UINT>(mmh->mmh_blocksize);
  const CS_INT order = static_cast<CS_INT>(std::bit_width(blocksize - 1)) - order_shift;
  pool.bpmax = blocksize <= 1 || order < 0 ? 0 : order > top_order ? top_order : order;
  mmh->mmh_blocksize = static_cast<CS_INT>(block_bytes(pool.bpmax) + word);
  for (CS_INT i = 0; i <= top_order; ++i)
    pool.free[i] = i <= pool.bpmax ? nullptr : reinterpret_cast<MmDList *>(std::intptr_t{-1});
}

// A block for a request beyond the largest order: one block of the heap, with a header of its own.
CS_RETCODE allocate_oversize(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  void *block = nullptr;
  const CS_RETCODE result = com___getblock(mmh, size + word, &block);
  if (result != CS_SUCCEED)
    return result;
  static_cast<MmDList *>(block)->size = size | MM_BUDDY_OVERSIZE;
  *buffer = payload_of(block);
  return CS_SUCCEED;
}

// Takes a chunk, which is one free block of the largest order.
CS_RETCODE add_top_block(MM_HANDLE *mmh) noexcept {
  MmBuddyPool &pool = mmh->mmh_pool.af;
  void *block = nullptr;
  const CS_RETCODE result = com___getblock(mmh, static_cast<CS_UINT>(mmh->mmh_blocksize), &block);
  if (result != CS_SUCCEED)
    return result;
  auto *const chunk = static_cast<MmDList *>(block);
  const CS_UINT identity = (address_in_words(chunk) & identity_mask) << identity_shift;
  chunk->size = with_order(identity | MM_BUDDY_FREE, pool.bpmax);
  push_block(pool, pool.bpmax, chunk);
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE com___buddy_malloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_BUDDY, COMN_TRACE(CS_FAIL));
  if (!is_ready(mmh))
    set_up_orders(mmh);
  if (size > largest_request)
    return COMN_TRACE(CS_MEM_ERROR);
  MmBuddyPool &pool = mmh->mmh_pool.af;
  const CS_INT order = order_for(size < smallest_request ? smallest_request : size);
  if (order > pool.bpmax)
    return COMN_TRACE(allocate_oversize(mmh, size, buffer));

  if (pool.free[order] == nullptr && com___buddy_split(mmh, order) != CS_SUCCEED &&
      com___buddy_compact(mmh, order) != CS_SUCCEED) {
    const CS_RETCODE result = add_top_block(mmh);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    if (pool.bpmax > order)
      COMN_CHECK(com___buddy_split(mmh, order) == CS_SUCCEED, COMN_TRACE(CS_FAIL));
  }
  MmDList *const block = pool.free[order];
  unlink_block(pool, order, block);
  block->size &= ~MM_BUDDY_FREE;
  *buffer = payload_of(block);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___buddy_split(MM_HANDLE *mmh, CS_INT order) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_BUDDY, COMN_TRACE(CS_FAIL));
  MmBuddyPool &pool = mmh->mmh_pool.af;
  COMN_CHECK(order >= 0 && order <= pool.bpmax && pool.free[order] == nullptr, COMN_TRACE(CS_FAIL));
  if (order == pool.bpmax)
    return COMN_TRACE(CS_FAIL);
  if (pool.free[order + 1] == nullptr && com___buddy_split(mmh, order + 1) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);

  MmDList *const lower = pool.free[order + 1];
  unlink_block(pool, order + 1, lower);
  auto *const upper = at<MmDList>(lower, static_cast<std::ptrdiff_t>(block_bytes(order)));
  lower->size = with_order(lower->size, order);
  upper->size = order == top_order - 1 ? lower->size | MM_BUDDY_UPPERHALF : lower->size;
  push_block(pool, order, upper);
  push_block(pool, order, lower);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___buddy_compact(MM_HANDLE *mmh, CS_INT order) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_BUDDY, COMN_TRACE(CS_FAIL));
  MmBuddyPool &pool = mmh->mmh_pool.af;
  COMN_CHECK(order >= 0 && order <= pool.bpmax, COMN_TRACE(CS_FAIL));
  bool merged = false;
  for (CS_INT i = 0; i < order; ++i) {
    merged = false;
    const CS_UINT same = half_mask(i);
    for (MmDList *block = pool.free[i]; block != nullptr;) {
      const auto width = static_cast<std::ptrdiff_t>(block_bytes(i));
      const bool upper = is_upper(block, i);
      auto *const buddy = at<MmDList>(block, upper ? -width : width);
      constexpr CS_UINT variable = MM_BUDDY_FREE | MM_BUDDY_ORDER | MM_BUDDY_TOPORDER;
      COMN_CHECK(((block->size ^ buddy->size) & same & ~variable) == 0, COMN_TRACE(CS_FAIL));
      COMN_CHECK(order_of(buddy->size) <= i, COMN_TRACE(CS_FAIL));
      if (((block->size ^ buddy->size) & same) != 0) {
        block = block->next;
        continue;
      }
      unlink_block(pool, i, buddy);
      MmDList *const before = block->prev;
      unlink_block(pool, i, block);
      MmDList *const lower = upper ? buddy : block;
      lower->size = with_order(lower->size, i + 1);
      push_block(pool, i + 1, lower);
      merged = true;
      block = before != nullptr ? before->next : pool.free[i];
    }
  }
  return COMN_TRACE(merged ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com___buddy_free(MM_HANDLE *mmh, CS_VOID *buf) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_ready(mmh) && mmh->mmh_type == MM_POOL_BUDDY, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_aligned(buf), COMN_TRACE(CS_FAIL));
  auto *const block = header_of<MmDList>(buf);
  if ((block->size & MM_BUDDY_OVERSIZE) != 0) {
    const Freed freed = free_chained_block(mmh, block);
    return COMN_TRACE(freed == Freed::nothing ? CS_FAIL : CS_SUCCEED);
  }

  // A double free, or no block of this pool.
  MmBuddyPool &pool = mmh->mmh_pool.af;
  const CS_INT order = order_of(block->size);
  COMN_CHECK((block->size & MM_BUDDY_FREE) == 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK(order <= pool.bpmax && is_plausible(block, order), COMN_TRACE(CS_FAIL));
  // No merging here: it waits until a request cannot be met.
  block->size |= MM_BUDDY_FREE;
  push_block(pool, order, block);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___buddy_realloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(*buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_ready(mmh) && mmh->mmh_type == MM_POOL_BUDDY, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_aligned(*buffer), COMN_TRACE(CS_FAIL));
  const CS_UINT header = header_of<MmDList>(*buffer)->size;
  CS_UINT capacity = header & ~MM_BUDDY_OVERSIZE;
  if ((header & MM_BUDDY_OVERSIZE) == 0) {
    const CS_INT order = order_of(header);
    COMN_CHECK((header & MM_BUDDY_FREE) == 0 && order <= mmh->mmh_pool.af.bpmax,
               COMN_TRACE(CS_FAIL));
    // Deliberate: the whole block counts, its header included. Callers see which sizes stay in
    // place, and a chunk has a spare word at its end, so the copy below stays inside.
    capacity = block_bytes(order);
  }
  if (capacity >= size)
    return COMN_TRACE(CS_SUCCEED);

  void *moved = nullptr;
  const CS_RETCODE result = com___buddy_malloc(mmh, size, &moved);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  std::memcpy(moved, *buffer, capacity);
  const CS_RETCODE freed = com___buddy_free(mmh, *buffer);
  if (freed == CS_SUCCEED)
    *buffer = moved;
  return COMN_TRACE(freed);
}
