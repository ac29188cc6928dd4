// What the units of the memory manager share: the pool word, addresses in raw memory, the lock, and
// how blocks go back to the heap.
#ifndef COMN_INFRA_COMMMGR_H
#define COMN_INFRA_COMMMGR_H

#include <cstddef>
#include <cstdint>

#include "mmpriv.h"

namespace comn::pool {

// Every header is one pool word, and every length in a region a multiple of it.
constexpr CS_UINT word = sizeof(void *);

// What a pool takes of the memory that its user brings: its head and its handle.
constexpr CS_INT pool_overhead = sizeof(MmPoolHead) + sizeof(MM_HANDLE);
static_assert(sizeof(void *) != 4 || pool_overhead == 156);

// Where the first block of a region begins, and the length of a region that has no room for it.
constexpr CS_UINT region_overhead = sizeof(MmHeap);

// A request above this is out of reach: lengths of regions are signed, and everything that is added
// to a request on its way to the break function has room above it.
constexpr CS_UINT largest_request = 0x7FFFFFFFU - 256;

// The records are laid over raw memory: what each of them begins with is one pool word.
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
static_assert(round_up(0) == 0 && round_up(1) == word && round_up(word) == word);

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

inline bool is_ready(const MM_HANDLE *mmh) noexcept {
  return (mmh->mmh_status & MM_ST_READY) != 0;
}

inline bool has_lock(const MmPoolHead *head) noexcept {
  return head->mph_lock != nullptr && head->mph_unlock != nullptr;
}

inline CS_RETCODE lock(MM_HANDLE *mmh) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  if (!has_lock(head) || (head->mph_status & MM_ST_DROPPING) != 0)
    return CS_SUCCEED;
  return head->mph_lock(mmh, head->mph_lockarg);
}

inline void unlock(MM_HANDLE *mmh) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  if (has_lock(head))
    head->mph_unlock(mmh, head->mph_lockarg);
}

// What became of a block on its way back to the heap. A region that is wholly free and has no way
// back to the break function stays with the pool and serves on; the block is free all the same.
enum class Freed { nothing, block_alone, all };

// com___putheap and com___putblock, which tell no more than whether it was all.
Freed free_payload(MM_HANDLE *mmh, void *payload) noexcept;
Freed free_chained_block(MM_HANDLE *mmh, void *block) noexcept;

} // namespace comn::pool

#endif
