// Pools over a source of raw memory that the test watches.
#ifndef ZRVTEST_POOL_SOURCE_H
#define ZRVTEST_POOL_SOURCE_H

#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "zrvcomn/mmpriv.h"

namespace zrvtest {

// The pool word: 4 under ILP32, where every size in these tests is exact, and 8 under LP64.
inline constexpr CS_UINT W = sizeof(void *);
inline constexpr bool ilp32 = W == 4;
inline constexpr CS_UINT region_record = sizeof(MmHeap);

// Break functions that hand out guarded regions, count them and fail on demand.
class Source {
public:
  Source() = default;
  Source(const Source &) = delete;
  Source &operator=(const Source &) = delete;
  ~Source() {
    EXPECT_TRUE(regions.empty()) << "regions were not given back";
    for (auto &[address, region] : regions)
      std::free(region.raw);
  }

  static CS_VOID *sbreak(MM_HANDLE *, CS_VOID *param, CS_UINT size) {
    return static_cast<Source *>(param)->give(size);
  }
  static void unsbreak(MM_HANDLE *, CS_VOID *param, CS_VOID *buffer) {
    static_cast<Source *>(param)->take_back(buffer);
  }

  // Fails the n-th break from now; 0 fails none.
  void fail(size_t nth) { countdown = nth; }

  std::vector<CS_UINT> asked; // sizes of all breaks that succeeded
  size_t refused = 0;
  size_t returned = 0;
  size_t live() const { return regions.size(); }

  void check_guards() const {
    for (const auto &[address, region] : regions)
      for (size_t i = 0; i < guard; ++i) {
        ASSERT_EQ(region.raw[i], canary);
        ASSERT_EQ(region.raw[guard + region.size + i], canary);
      }
  }

private:
  static constexpr size_t guard = 32;
  static constexpr unsigned char canary = 0x5C;
  struct Region {
    unsigned char *raw;
    CS_UINT size;
  };

  CS_VOID *give(CS_UINT size) {
    if (countdown != 0 && --countdown == 0) {
      ++refused;
      return nullptr;
    }
    auto *const raw = static_cast<unsigned char *>(std::malloc(size + 2 * guard));
    if (raw == nullptr) {
      ++refused;
      return nullptr;
    }
    std::memset(raw, canary, guard);
    std::memset(raw + guard, 0xE7, size);
    std::memset(raw + guard + size, canary, guard);
    asked.push_back(size);
    regions[raw + guard] = {raw, size};
    return raw + guard;
  }

  void take_back(CS_VOID *buffer) {
    const auto found = regions.find(buffer);
    ASSERT_NE(found, regions.end()) << "not a region that was given";
    for (size_t i = 0; i < guard; ++i) {
      EXPECT_EQ(found->second.raw[i], canary);
      EXPECT_EQ(found->second.raw[guard + found->second.size + i], canary);
    }
    std::free(found->second.raw);
    regions.erase(found);
    ++returned;
  }

  std::map<void *, Region> regions;
  size_t countdown = 0;
};

inline CS_RETCODE set_integer(MM_HANDLE *mmh, CS_INT property, CS_INT value) {
  return comn_mmproperty(mmh, MM_ACTION_SET, property, &value, 0, nullptr);
}

template <class Function>
CS_RETCODE set_pointer(MM_HANDLE *mmh, CS_INT property, Function function) {
  return comn_mmproperty(mmh, MM_ACTION_SET, property, reinterpret_cast<CS_VOID *>(function), 0,
                         nullptr);
}

inline CS_INT get_integer(MM_HANDLE *mmh, CS_INT property) {
  CS_INT value = -1, outlen = -1;
  EXPECT_EQ(comn_mmproperty(mmh, MM_ACTION_GET, property, &value, 0, &outlen), CS_SUCCEED);
  EXPECT_EQ(outlen, 4);
  return value;
}

// A pool in storage of the test, over a source.
class Pool {
public:
  explicit Pool(Source &source, CS_INT type = MM_POOL_BUDDY) {
    handle = reinterpret_cast<MM_HANDLE *>(storage);
    EXPECT_EQ(comn_mmmanage(nullptr, 0, &handle), CS_SUCCEED);
    EXPECT_EQ(set_pointer(handle, MM_PROP_SBREAK, &Source::sbreak), CS_SUCCEED);
    EXPECT_EQ(set_pointer(handle, MM_PROP_UNSBREAK, &Source::unsbreak), CS_SUCCEED);
    EXPECT_EQ(set_pointer(handle, MM_PROP_PARAM, &source), CS_SUCCEED);
    EXPECT_EQ(set_integer(handle, MM_PROP_POOLTYPE, type), CS_SUCCEED);
  }
  ~Pool() {
    if (handle != nullptr) {
      EXPECT_EQ(comn_mmdrop(handle, MM_DROP_FORCE), CS_SUCCEED);
    }
  }
  Pool(const Pool &) = delete;
  Pool &operator=(const Pool &) = delete;

  operator MM_HANDLE *() { return handle; }
  MM_HANDLE *operator->() { return handle; }
  MmPoolHead *head() { return handle->mmh_head; }

  void *allocate(CS_UINT size, CS_RETCODE expected = CS_SUCCEED) {
    void *block = &storage;
    EXPECT_EQ(comn_mmalloc(handle, size, &block), expected) << size;
    if (expected != CS_SUCCEED) {
      EXPECT_EQ(block, &storage) << "set by a failed call";
      return nullptr;
    }
    const auto *const bytes = static_cast<const unsigned char *>(block);
    for (CS_UINT i = 0; i < size; ++i)
      if (bytes[i] != 0) {
        ADD_FAILURE() << "not cleared at " << i;
        break;
      }
    return block;
  }

  void forget() { handle = nullptr; }

private:
  alignas(void *) unsigned char storage[sizeof(MmPoolHead) + sizeof(MM_HANDLE)];
  MM_HANDLE *handle;
};

inline CS_UINT header_of(void *payload) {
  CS_UINT header;
  std::memcpy(&header, static_cast<char *>(payload) - W, sizeof header);
  return header;
}

// Fails the test unless the heap is sound: in each region the free list ascends, lies between the
// blocks, has room for every link, and no two free blocks touch. Every header is reached by
// stepping from the first block to the end.
inline void check_heap(MM_HANDLE *mmh) {
  for (MmHeap *heap = mmh->mmh_head->mph_heap; heap != nullptr; heap = heap->next) {
    char *const begin = reinterpret_cast<char *>(heap);
    char *const end = begin + (static_cast<CS_UINT>(heap->size) & ~(W - 1));
    const MmList *free = heap->free;
    bool last_was_free = false;
    for (char *at = begin + offsetof(MmHeap, buffer); at < end;) {
      const auto *const block = reinterpret_cast<MmList *>(at);
      const bool is_free = block == free;
      ASSERT_EQ(block->size % W, 0U);
      if (is_free) {
        ASSERT_FALSE(last_was_free) << "two free blocks touch";
        ASSERT_GE(block->size, W);
        free = block->link;
      } else if (block->size == 0) {
        ASSERT_FALSE(last_was_free) << "a remainder behind a free block";
      }
      last_was_free = is_free;
      at += W + block->size;
      ASSERT_LE(at, end);
    }
    ASSERT_EQ(free, nullptr) << "the free list leaves the region's blocks";
  }
}

} // namespace zrvtest

#endif
