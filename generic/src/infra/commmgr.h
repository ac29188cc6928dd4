// What the units of the memory manager share: the pool word, the addresses in raw memory, the lock.
#ifndef COMN_INFRA_COMMMGR_H
#define COMN_INFRA_COMMMGR_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "mmpriv.h"

namespace comn::pool {

// Every header is one pool word, and every length in a region a multiple of it.
constexpr CS_UINT word = sizeof(void *);

// Where the first block of a region begins, and the length of a region that has no room for it.
constexpr CS_UINT region_overhead = sizeof(MmHeap);

// A request above this is out of reach: lengths of regions are signed, and everything that is added
// to a request on its way to the break function has room above it.
constexpr CS_UINT largest_request = 0x7FFFFFFFU - 256;

static_assert(offsetof(MmList, link) == word);
static_assert(offsetof(MmHeap, buffer) + word == sizeof(MmHeap));
static_assert(offsetof(MmBlock, block) == word);
static_assert(offsetof(MmDList, next) == word);
static_assert(sizeof(MmDList) <= 4 * word);
static_assert(sizeof(void *) != 4 || (sizeof(MmHeap) == 20 && sizeof(MmPoolHead) == 48 &&
                                      sizeof(MM_HANDLE) == 108 && sizeof(MmBuddyPool) == 72));

constexpr CS_UINT round_up(CS_UINT size) noexcept {
  return ((size - 1) & ~(word - 1)) + word;
}

constexpr CS_UINT round_down(CS_UINT size) noexcept {
  return size & ~(word - 1);
}

inline char *bytes(void *address) noexcept {
  return static_cast<char *>(address);
}

// The record of type T that lies `offset` bytes from `address`.
template <class T>
T *at(void *address, std::ptrdiff_t offset) noexcept {
  return static_cast<T *>(static_cast<void *>(bytes(address) + offset));
}

// A payload begins one word behind its header.
inline void *payload_of(void *header) noexcept {
  return bytes(header) + word;
}
template <class T>
T *header_of(void *payload) noexcept {
  return at<T>(payload, -static_cast<std::ptrdiff_t>(word));
}

// How far an address lies behind the start of a region; past its size for one outside.
inline size_t offset_in(const MmHeap *heap, const void *address) noexcept {
  return reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(heap);
}

inline bool is_aligned(const void *address) noexcept {
  return reinterpret_cast<std::uintptr_t>(address) % word == 0;
}

inline CS_RETCODE lock(MM_HANDLE *mmh) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  if (head->mph_lock == nullptr || head->mph_unlock == nullptr ||
      (head->mph_status & MM_ST_DROPPING) != 0)
    return CS_SUCCEED;
  return head->mph_lock(mmh, head->mph_lockarg);
}

inline void unlock(MM_HANDLE *mmh) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  if (head->mph_lock != nullptr && head->mph_unlock != nullptr)
    head->mph_unlock(mmh, head->mph_lockarg);
}

inline bool is_ready(const MM_HANDLE *mmh) noexcept {
  return (mmh->mmh_status & MM_ST_READY) != 0;
}

// ---- the common paths of the strategies ----
//
// What most calls come to, on a handle whose strategy is set up: a pop, a push, a bump. Null or
// false means that nothing was done and the strategy itself has to look. The entry points try them
// first while nothing is locked or traced, since the functions of the strategies trace what they
// return.

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

inline CS_UINT address_in_words(const void *address) noexcept {
  return static_cast<CS_UINT>(reinterpret_cast<std::uintptr_t>(address) / word);
}

// The words between the start of its chunk and a block, as its header tells.
inline CS_UINT words_into_chunk(const MmDList *block) noexcept {
  return (address_in_words(block) - (block->size >> identity_shift)) & identity_mask;
}

// True when a block of this order can begin where this one does.
inline bool is_plausible(const MmDList *block, CS_INT order) noexcept {
  return (words_into_chunk(block) & (block_words(order) - 1)) == 0;
}

inline void push(MmBuddyPool &pool, CS_INT order, MmDList *block) noexcept {
  MmDList *&head = pool.free[order];
  block->next = head;
  block->prev = nullptr;
  if (head != nullptr)
    head->prev = block;
  head = block;
}

// Takes the first free block of an order, which must have one.
inline void *pop(MmBuddyPool &pool, CS_INT order) noexcept {
  MmDList *const block = pool.free[order];
  pool.free[order] = block->next;
  if (block->next != nullptr)
    block->next->prev = nullptr;
  block->size &= ~MM_BUDDY_FREE;
  return payload_of(block);
}

inline void *take_block(MmBuddyPool &pool, CS_UINT size) noexcept {
  if (size > largest_request)
    return nullptr;
  const CS_INT order = order_for(size < smallest_request ? smallest_request : size);
  return order <= pool.bpmax && pool.free[order] != nullptr ? pop(pool, order) : nullptr;
}

// No merging here: it waits until a request cannot be met.
inline bool put_block(MmBuddyPool &pool, void *buf) noexcept {
  auto *const block = header_of<MmDList>(buf);
  if (!is_aligned(buf) || (block->size & (MM_BUDDY_OVERSIZE | MM_BUDDY_FREE)) != 0)
    return false;
  const CS_INT order = order_of(block->size);
  if (order > pool.bpmax || !is_plausible(block, order))
    return false;
  block->size |= MM_BUDDY_FREE;
  push(pool, order, block);
  return true;
}

inline void *take_node(MmUniformPool &pool, CS_UINT size) noexcept {
  MmList *const node = pool.free;
  if (node == nullptr || size != static_cast<CS_UINT>(pool.uniform_size))
    return nullptr;
  pool.free = node->link;
  return payload_of(node);
}

inline void put_node(MmUniformPool &pool, void *buf) noexcept {
  auto *const node = header_of<MmList>(buf);
  node->link = pool.free;
  pool.free = node;
}

// Advances the cursor of a chunk past `size` bytes, a multiple of the pool word.
inline void *advance(MmList *cursor, CS_UINT size) noexcept {
  void *const next = cursor->link;
  cursor->size -= size;
  cursor->link = at<MmList>(next, static_cast<std::ptrdiff_t>(size));
  return next;
}

inline void *take_bytes(MmAllocOnlyPool &pool, CS_UINT size) noexcept {
  MmList *const cursor = pool.free->free;
  const CS_UINT rounded = round_up(size);
  // The rounding of a size out of reach wraps.
  return size <= cursor->size && rounded <= cursor->size ? advance(cursor, rounded) : nullptr;
}

// Where the free bytes of a chunk begin. Up to `status` they are cleared already, or in use.
inline CS_UINT used(const MmHeap *chunk) noexcept {
  return static_cast<CS_UINT>(chunk->size) - chunk->free->size;
}
inline bool is_cleared(const MmHeap *chunk) noexcept {
  return used(chunk) <= static_cast<CS_UINT>(chunk->status);
}

} // namespace comn::pool

#endif
