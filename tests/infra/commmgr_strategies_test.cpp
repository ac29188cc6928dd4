// The heap of a pool and the three strategies above it: sizes, addresses, headers, quirks, failed
// breaks. Sizes that are written as numbers are those of the 4-byte pool word and are checked under
// ILP32; the others are reckoned in words and hold under both data models.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "pool_source.h"

using namespace zrvtest;

namespace {

constexpr const char *heap_unit = "commmgr_heap.cpp";
constexpr const char *buddy_unit = "commmgr_buddy.cpp";
constexpr const char *uniform_unit = "commmgr_uniform.cpp";

// A buddy block of an order.
constexpr CS_UINT block_bytes(int order) {
  return (4 * W) << order;
}

class PoolTest : public testing::Test {
protected:
  Source source;
};

// ---- the heap ----

class HeapTest : public PoolTest {
protected:
  HeapTest() {
    // One region of 40 words of payload.
    EXPECT_EQ(com___addheap(pool, bytes, static_cast<CS_INT>(sizeof bytes), MM_HEAP_CALLER),
              CS_SUCCEED);
    heap = pool.head()->mph_heap;
  }
  char *get(CS_UINT size) {
    void *payload = nullptr;
    EXPECT_EQ(com___getheap(pool, size, &payload), CS_SUCCEED);
    return static_cast<char *>(payload);
  }
  void put(void *payload) {
    EXPECT_EQ(com___putheap(pool, payload), CS_SUCCEED);
    check_heap(pool);
  }
  char *base() { return reinterpret_cast<char *>(bytes) + region_record; }

  alignas(void *) unsigned char bytes[region_record + 40 * W];
  MmHeap *heap;
  Pool pool{source};
};

TEST_F(HeapTest, FirstFitInAddressOrder) {
  char *const a = get(4 * W);
  char *const b = get(4 * W - 1); // rounded up
  char *const c = get(1);
  char *const d = get(4 * W);
  EXPECT_EQ(a, base());
  EXPECT_EQ(b, a + 5 * W);
  EXPECT_EQ(c, b + 5 * W);
  EXPECT_EQ(d, c + 2 * W);
  EXPECT_EQ(header_of(b), 4 * W);
  EXPECT_EQ(header_of(c), W);
  put(c);
  put(a);
  EXPECT_EQ(get(4 * W), a); // an exact fit is taken whole
  put(a);
  EXPECT_EQ(get(2 * W), a);
  EXPECT_EQ(get(W), a + 3 * W); // what the split left
  EXPECT_EQ(get(W), c);
}

TEST_F(HeapTest, Merging) {
  char *block[6];
  for (char *&b : block)
    b = get(3 * W);
  // Alone; then with the block above; with the block below; with both.
  put(block[1]);
  EXPECT_EQ(header_of(block[1]), 3 * W);
  put(block[0]);
  EXPECT_EQ(header_of(block[0]), 7 * W);
  put(block[2]);
  EXPECT_EQ(header_of(block[0]), 11 * W);
  put(block[4]);
  EXPECT_EQ(header_of(block[4]), 3 * W);
  put(block[3]);
  EXPECT_EQ(header_of(block[0]), 19 * W);
  put(block[5]); // below and the rest of the region
  EXPECT_EQ(header_of(block[0]), 40 * W);
  EXPECT_EQ(heap->free->size, 40 * W);
  EXPECT_EQ(heap->free->link, nullptr);
}

// A split that leaves a bare header: it stays off the free list, holds no link, and comes back with
// the block in front of it.
TEST_F(HeapTest, RemainderWithoutPayload) {
  char *const a = get(5 * W);
  char *const b = get(34 * W);
  EXPECT_EQ(heap->free, nullptr);
  put(a);
  char *const c = get(4 * W); // leaves 5 - 4 - 1 = 0 words
  EXPECT_EQ(c, a);
  EXPECT_EQ(header_of(c), 4 * W);
  EXPECT_EQ(header_of(c + 5 * W), 0U);
  EXPECT_EQ(header_of(b), 34 * W) << "the next header must survive";
  EXPECT_EQ(heap->free, nullptr);
  check_heap(pool);
  put(c);
  EXPECT_EQ(header_of(c), 5 * W);
  char *const again = get(4 * W);
  put(b);
  EXPECT_EQ(heap->free->size, 34 * W);
  put(again);
  EXPECT_EQ(heap->free->size, 40 * W);
}

TEST_F(HeapTest, Misuse) {
  char *const a = get(2 * W);
  char *const b = get(2 * W);
  put(a);
  // Freed twice.
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___putheap(pool, a));
  // Outside any region; at the record.
  void *outside[4] = {};
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___putheap(pool, &outside[2]));
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___putheap(pool, bytes + W));
  // Into the middle of a free block, and over one.
  put(b);
  char *const c = get(30 * W);
  put(c);
  auto *const inner = reinterpret_cast<MmList *>(c + 4 * W);
  inner->size = W;
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___insert_block(heap, inner));
  auto *const first = reinterpret_cast<MmList *>(get(2 * W) - W);
  first->size = 5 * W;
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___insert_block(heap, first));
  // Past the end of the region.
  first->size = 41 * W;
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___insert_block(heap, first));
  first->size = 0xFFFFFFF0U;
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___insert_block(heap, first));
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___insert_block(heap, reinterpret_cast<MmList *>(heap)));
  first->size = 2 * W;
  put(&first->link);
  // A block that this handle does not hold.
  char *const d = get(4 * W);
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___putblock(pool, d + W));
}

TEST_F(HeapTest, SizesOutOfReach) {
  void *payload = &payload;
  for (const CS_UINT size : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFCU, 0xFFFFFFFFU}) {
    EXPECT_EQ(com___getheap(pool, size, &payload), CS_MEM_ERROR);
    EXPECT_EQ(com___getblock(pool, size, &payload), CS_MEM_ERROR);
  }
  EXPECT_EQ(payload, &payload);
  EXPECT_TRUE(source.asked.empty());
  // No block is without payload.
  EXPECT_EQ(get(0), base());
  EXPECT_EQ(get(0), base() + 2 * W);
}

TEST_F(PoolTest, BreakSizes) {
  Pool pool(source);
  void *payload = nullptr;
  // The request with the record of the region, or the chunk size if that is larger.
  ASSERT_EQ(com___getheap(pool, 100, &payload), CS_SUCCEED);
  ASSERT_EQ(com___getheap(pool, 9001, &payload), CS_SUCCEED);
  ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
  ASSERT_EQ(com___getheap(pool, 8000, &payload), CS_SUCCEED);
  const CS_UINT rounded = 9001 / W * W + W;
  EXPECT_EQ(source.asked,
            (std::vector<CS_UINT>{4120, rounded + region_record, 8000 + region_record}));
  EXPECT_EQ(pool.head()->mph_heap->status, 1);
  EXPECT_EQ(pool.head()->mph_totalsize,
            static_cast<CS_INT>(4120 + rounded + 8000 + 2 * region_record));
  // The last one is wholly free and goes back; the total stays.
  const CS_INT total = pool.head()->mph_totalsize;
  EXPECT_EQ(com___putheap(pool, payload), CS_SUCCEED);
  EXPECT_EQ(source.live(), 2U);
  EXPECT_EQ(pool.head()->mph_totalsize, total);
}

// Whatever length a region has, it goes back when it is wholly free.
TEST_F(PoolTest, OddChunkSizes) {
  for (CS_INT odd = 0; odd < 9; ++odd) {
    Pool pool(source);
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1000 + odd), CS_SUCCEED);
    std::vector<void *> payloads;
    for (int i = 0; i < 40; ++i) {
      void *payload = nullptr;
      ASSERT_EQ(com___getheap(pool, static_cast<CS_UINT>(1 + i * 7 % 90), &payload), CS_SUCCEED);
      check_heap(pool);
      payloads.push_back(payload);
    }
    for (void *const payload : payloads) {
      ASSERT_EQ(com___putheap(pool, payload), CS_SUCCEED);
      check_heap(pool);
    }
    EXPECT_EQ(source.live(), 0U);
  }
}

// A region that cannot go back stays, and serves on.
TEST_F(PoolTest, NoWayBack) {
  Pool pool(source);
  void *payload = nullptr;
  ASSERT_EQ(com___getheap(pool, 100, &payload), CS_SUCCEED);
  pool.head()->mph_unsbreak = nullptr;
  EXPECT_EQ(com___putheap(pool, payload), CS_FAIL);
  EXPECT_EQ(source.live(), 1U);
  EXPECT_EQ(com___unsbreak(pool, pool.head()->mph_heap), CS_FAIL);
  ASSERT_EQ(com___getheap(pool, 100, &payload), CS_SUCCEED);
  EXPECT_EQ(source.asked.size(), 1U);
  pool.head()->mph_unsbreak = &Source::unsbreak;
  EXPECT_EQ(com___putheap(pool, payload), CS_SUCCEED);
}

// A call that has freed or moved a block succeeds all the same; the layers below tell.
TEST_F(PoolTest, NoWayBackAndTheBlockIsFree) {
  Pool pool(source);
  void *const block = pool.allocate(5000);
  pool.head()->mph_unsbreak = nullptr;
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
  EXPECT_EQ(source.live(), 1U);
  EXPECT_EQ(pool->mmh_blocks, nullptr);
  check_heap(pool);
  EXPECT_ASSERTION(heap_unit, CS_FAIL, comn_mmfree(pool, block)); // freed twice
  void *moved = pool.allocate(5000);
  EXPECT_EQ(moved, block) << "the region serves on";
  std::memset(moved, 'm', 5000);
  EXPECT_EQ(comn_mmrealloc(pool, 9000, &moved), CS_SUCCEED);
  EXPECT_NE(moved, block);
  EXPECT_EQ(std::string(static_cast<char *>(moved), 5000), std::string(5000, 'm'));
  EXPECT_EQ(source.live(), 2U);
  EXPECT_EQ(pool.allocate(5000), block) << "the old place is free";
  EXPECT_EQ(com___putblock(pool, static_cast<char *>(block) - W), CS_FAIL);
  EXPECT_EQ(com___buddy_free(pool, moved), CS_SUCCEED);
  EXPECT_EQ(source.live(), 2U);
  pool.head()->mph_unsbreak = &Source::unsbreak;
  void *const again = pool.allocate(5000);
  EXPECT_EQ(comn_mmfree(pool, again), CS_SUCCEED);
  EXPECT_EQ(source.live(), 1U);
}

CS_VOID *misaligned_break(MM_HANDLE *, CS_VOID *param, CS_UINT) {
  return static_cast<char *>(param) + 1;
}

TEST_F(PoolTest, MisalignedBreak) {
  Pool pool(source);
  alignas(void *) static char bytes[8000];
  ASSERT_EQ(set_pointer(pool, MM_PROP_SBREAK, &misaligned_break), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_PARAM, bytes), CS_SUCCEED);
  EXPECT_ASSERTION(heap_unit, CS_FAIL, com___sbreak(pool, 4120));
  EXPECT_EQ(pool.head()->mph_totalsize, 0);
}

// The ceiling counts every region that was ever added, also those that have gone back.
TEST_F(PoolTest, Ceiling) {
  Pool pool(source);
  ASSERT_EQ(set_integer(pool, MM_PROP_MAXSIZE, 8000), CS_SUCCEED);
  void *const first = pool.allocate(4050); // one chunk
  const CS_INT total = pool.head()->mph_totalsize;
  pool.allocate(4050, CS_MEM_ERROR);
  EXPECT_EQ(source.asked.size(), 1U);
  EXPECT_EQ(source.refused, 0U) << "the break function was called above the ceiling";
  ASSERT_EQ(comn_mmfree(pool, first), CS_SUCCEED);
  void *const large = pool.allocate(3500); // the free block again
  ASSERT_EQ(comn_mmfree(pool, large), CS_SUCCEED);
  EXPECT_EQ(pool.head()->mph_totalsize, total);
  pool.allocate(5000, CS_MEM_ERROR);
  const CS_INT needed =
      total + 5000 + static_cast<CS_INT>(2 * W) + static_cast<CS_INT>(region_record);
  ASSERT_EQ(set_integer(pool, MM_PROP_MAXSIZE, needed - 1), CS_SUCCEED);
  pool.allocate(5000, CS_MEM_ERROR);
  ASSERT_EQ(set_integer(pool, MM_PROP_MAXSIZE, needed), CS_SUCCEED);
  void *const oversize = pool.allocate(5000); // exactly the ceiling
  ASSERT_EQ(comn_mmfree(pool, oversize), CS_SUCCEED);
  EXPECT_EQ(source.live(), 1U);
  pool.allocate(5000, CS_MEM_ERROR);
}

TEST_F(PoolTest, TotalStopsAtItsLimit) {
  Pool pool(source);
  pool.head()->mph_totalsize = 2147483647 - 100;
  pool.allocate(100);
  EXPECT_EQ(pool.head()->mph_totalsize, 2147483647);
}

// ---- buddy ----

using BuddyTest = PoolTest;

TEST_F(BuddyTest, FirstAllocation) {
  for (const CS_UINT size : {1U, 12U}) {
    Source own;
    Pool pool(own);
    void *const block = pool.allocate(size);
    const CS_UINT chunk = 4096 + W;
    EXPECT_EQ(own.asked, (std::vector<CS_UINT>{chunk + W + region_record}));
    if (ilp32) {
      EXPECT_EQ(own.asked[0], 4124U);
    }
    EXPECT_EQ(pool->mmh_blocksize, static_cast<CS_INT>(chunk));
    EXPECT_EQ(pool->mmh_pool.af.bpmax, ilp32 ? 8 : 7);
    // Header of the heap, chain, header of the block.
    EXPECT_EQ(static_cast<char *>(block),
              reinterpret_cast<char *>(pool.head()->mph_heap) + region_record + 2 * W);
    EXPECT_EQ(header_of(block) & 0xFU, 0U);
    for (int i = 0; i < 17; ++i) {
      if (i > pool->mmh_pool.af.bpmax) {
        EXPECT_EQ(pool->mmh_pool.af.free[i], reinterpret_cast<MmDList *>(intptr_t{-1}));
      }
    }
  }
}

// The header: order, the chunk's address in words, the free bit.
TEST_F(BuddyTest, HeaderWord) {
  Pool pool(source);
  auto *const block = static_cast<char *>(pool.allocate(1));
  const auto chunk = reinterpret_cast<uintptr_t>(block - W);
  const auto identity = static_cast<CS_UINT>(chunk / W % 0x20000 * 16);
  if (ilp32) {
    EXPECT_EQ(identity, static_cast<CS_UINT>((chunk & 0x7FFFC) << 2));
  }
  EXPECT_EQ(header_of(block), identity);
  char *buddy = block + block_bytes(0);
  for (CS_UINT order = 0; order < static_cast<CS_UINT>(pool->mmh_pool.af.bpmax); ++order) {
    EXPECT_EQ(header_of(buddy), identity | order | 0x40000000U);
    buddy = block + block_bytes(static_cast<int>(order) + 1);
  }
  // Halves of all orders are there, the lower ones first.
  EXPECT_EQ(pool.allocate(3 * W), block + block_bytes(0));
  EXPECT_EQ(pool.allocate(3 * W), block + block_bytes(1));
  EXPECT_EQ(pool.allocate(3 * W), block + block_bytes(1) + block_bytes(0));
}

TEST_F(BuddyTest, OrdersOfRequests) {
  Pool pool(source);
  for (int order = 0; order <= (ilp32 ? 8 : 7); ++order) {
    const CS_UINT most = block_bytes(order) - W;
    const CS_UINT least = order == 0 ? 0 : block_bytes(order - 1) - W + 1;
    for (const CS_UINT size : {least, most})
      EXPECT_EQ(header_of(pool.allocate(size)) & 0xFU, static_cast<CS_UINT>(order)) << size;
  }
  if (ilp32) {
    EXPECT_EQ(header_of(pool.allocate(4092)) & 0xFU, 8U);
    EXPECT_EQ(header_of(pool.allocate(28)) & 0xFU, 1U);
    EXPECT_EQ(header_of(pool.allocate(29)) & 0xFU, 2U);
    EXPECT_EQ(header_of(pool.allocate(60)) & 0xFU, 2U);
  }
}

TEST_F(BuddyTest, OversizeGoesBackAtOnce) {
  Pool pool(source);
  pool.allocate(1);
  const CS_UINT size = 4096 - W + 1;
  void *const block = pool.allocate(size);
  EXPECT_EQ(header_of(block), size | 0x80000000U);
  EXPECT_EQ(source.live(), 2U);
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
  EXPECT_EQ(source.live(), 1U);
  EXPECT_EQ(source.returned, 1U);
  // Its region has gone, and with it the pointer's place in the pool.
  EXPECT_ASSERTION("commmgr.cpp", CS_FAIL, comn_mmfree(pool, block));
}

TEST_F(BuddyTest, BlockSizes) {
  const struct {
    CS_INT configured;
    int exponent; // of the block size
  } rows[] = {{1, ilp32 ? 4 : 5},  {16, ilp32 ? 4 : 5}, {33, 6},    {64, 6},    {65, 7},
              {4095, 12},          {4096, 12},          {4097, 13}, {5000, 13}, {1 << 19, 19},
              {(1 << 19) + 1, 20}, {1 << 20, 20}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.configured);
    Pool pool(source);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, row.configured), CS_SUCCEED);
    pool.allocate(1);
    EXPECT_EQ(pool->mmh_blocksize, (1 << row.exponent) + static_cast<CS_INT>(W));
    EXPECT_EQ(pool->mmh_pool.af.bpmax, row.exponent - (ilp32 ? 4 : 5));
  }
  // Beyond the largest order.
  Pool pool(source);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 2147483647), CS_SUCCEED);
  pool.allocate(1);
  EXPECT_EQ(pool->mmh_pool.af.bpmax, 16);
  EXPECT_EQ(pool->mmh_blocksize, static_cast<CS_INT>(block_bytes(16) + W));
  if (ilp32) {
    EXPECT_EQ(pool->mmh_blocksize, (1 << 20) + 4);
  }
}

// Deliberate: the set-up is repeated until an allocation succeeds, each time from the block size
// that the last one stored, which is one word above a power of two.
TEST_F(BuddyTest, RepeatedSetUpDoublesTheBlockSize) {
  Pool pool(source);
  for (const CS_INT expected : {4096, 8192, 16384}) {
    source.fail(1);
    pool.allocate(1, CS_MEM_ERROR);
    EXPECT_EQ(pool->mmh_blocksize, expected + static_cast<CS_INT>(W));
    EXPECT_EQ(pool->mmh_status & MM_ST_READY, 0);
  }
  pool.allocate(1);
  EXPECT_EQ(pool->mmh_blocksize, 32768 + static_cast<CS_INT>(W));
}

// Deliberate: freed buddies stay apart until a request cannot be met without them.
TEST_F(BuddyTest, CompactionIsLazy) {
  Pool pool(source);
  std::vector<void *> blocks;
  const CS_UINT half = 2048 - W;
  void *const a = pool.allocate(half);
  void *const b = pool.allocate(half);
  EXPECT_EQ(comn_mmfree(pool, a), CS_SUCCEED);
  EXPECT_EQ(comn_mmfree(pool, b), CS_SUCCEED);
  const int top = pool->mmh_pool.af.bpmax;
  EXPECT_EQ(pool->mmh_pool.af.free[top], nullptr);
  EXPECT_NE(pool->mmh_pool.af.free[top - 1], nullptr);
  EXPECT_EQ(pool.allocate(4096 - W), a) << "both halves together";
  EXPECT_EQ(source.asked.size(), 1U);
}

TEST_F(BuddyTest, CompactionOverAllOrders) {
  Pool pool(source);
  const CS_UINT smallest = 3 * W;
  std::vector<void *> blocks;
  const CS_UINT count = 4096 / block_bytes(0);
  for (CS_UINT i = 0; i < count; ++i)
    blocks.push_back(pool.allocate(smallest));
  EXPECT_EQ(source.asked.size(), 1U);
  // Free in a mixed order; one stays.
  for (CS_UINT i = 0; i < count; ++i)
    if (i * 37 % count != 5) {
      ASSERT_EQ(comn_mmfree(pool, blocks[i * 37 % count]), CS_SUCCEED);
    }
  // Everything but the neighbourhood of block 5 merges: a half and a quarter are there.
  EXPECT_EQ(com___buddy_compact(pool, pool->mmh_pool.af.bpmax), CS_FAIL);
  pool.allocate(2048 - W);
  pool.allocate(1024 - W);
  EXPECT_EQ(source.asked.size(), 1U);
  ASSERT_EQ(comn_mmfree(pool, blocks[5]), CS_SUCCEED);
}

TEST_F(BuddyTest, CompactionMisuseAndEmptiness) {
  Pool pool(source);
  void *const block = pool.allocate(1);
  EXPECT_EQ(com___buddy_compact(pool, 0), CS_FAIL);
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_compact(pool, -1));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_compact(pool, pool->mmh_pool.af.bpmax + 1));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_split(pool, -1));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_split(pool, pool->mmh_pool.af.bpmax + 1));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_split(pool, 0)); // a list that has one
  EXPECT_EQ(com___buddy_split(pool, pool->mmh_pool.af.bpmax), CS_FAIL);
  // A buddy whose header was overwritten.
  auto *const header = reinterpret_cast<CS_UINT *>(static_cast<char *>(block) - W);
  const CS_UINT saved = *header;
  *header = saved ^ 0x00001000U;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_compact(pool, 1));
  *header = saved | 3;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_compact(pool, 1));
  *header = saved;
}

TEST_F(BuddyTest, DoubleFree) {
  Pool pool(source);
  void *const block = pool.allocate(10), *const other = pool.allocate(10);
  ASSERT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmfree(pool, block));
  void *again = block;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmrealloc(pool, 5, &again));
  EXPECT_EQ(pool.allocate(10), block);
  ASSERT_EQ(comn_mmfree(pool, other), CS_SUCCEED);
  // Not a block's address.
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmfree(pool, static_cast<char *>(block) + 1));
  // A word that cannot be the header of a block at its place.
  auto *const large = static_cast<char *>(pool.allocate(2000));
  const CS_UINT forged = header_of(large);
  std::memcpy(large + 8 * W, &forged, sizeof forged);
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmfree(pool, large + 9 * W));
}

TEST_F(BuddyTest, OrderOutOfRange) {
  Pool pool(source);
  void *const block = pool.allocate(10);
  auto *const header = reinterpret_cast<CS_UINT *>(static_cast<char *>(block) - W);
  const CS_UINT saved = *header;
  *header = saved | 0xF;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmfree(pool, block));
  *header = saved;
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
}

TEST_F(BuddyTest, ReallocationInPlaceAndMoving) {
  Pool pool(source);
  void *const block = pool.allocate(3 * W);
  pool.allocate(3 * W);
  std::memset(block, 'a', 3 * W);
  void *moved = block;
  for (const CS_UINT size : {0U, 1U, 3 * W, 4 * W}) {
    // Deliberate: the header counts as capacity, so the size of the whole block stays in place.
    ASSERT_EQ(comn_mmrealloc(pool, size, &moved), CS_SUCCEED);
    ASSERT_EQ(moved, block);
  }
  ASSERT_EQ(comn_mmrealloc(pool, 4 * W + 1, &moved), CS_SUCCEED);
  EXPECT_NE(moved, block);
  EXPECT_EQ(std::string(static_cast<char *>(moved), 3 * W), std::string(3 * W, 'a'));
  // The whole block is copied: its payload and the word behind it, here the header that follows.
  EXPECT_EQ(header_of(static_cast<char *>(moved) + 4 * W),
            header_of(static_cast<char *>(block) + 4 * W));
  EXPECT_EQ(pool.allocate(1), block) << "the old block is free";
}

TEST_F(BuddyTest, ReallocationOfOversizeBlocks) {
  Pool pool(source);
  void *const block = pool.allocate(5000);
  std::memset(block, 'b', 5000);
  void *moved = block;
  ASSERT_EQ(comn_mmrealloc(pool, 5000, &moved), CS_SUCCEED);
  ASSERT_EQ(moved, block);
  ASSERT_EQ(comn_mmrealloc(pool, 5001, &moved), CS_SUCCEED);
  ASSERT_NE(moved, block);
  EXPECT_EQ(std::string(static_cast<char *>(moved), 5000), std::string(5000, 'b'));
  EXPECT_EQ(source.live(), 1U);
  EXPECT_EQ(header_of(moved), 5001U | 0x80000000U);
}

// What is added stays as the memory was.
TEST_F(BuddyTest, ReallocationDoesNotClear) {
  Pool pool(source);
  const CS_UINT small = 16 * W - W, large = 64 * W - W; // whole blocks
  auto *const block = static_cast<char *>(pool.allocate(small - 3));
  auto *const dirty = static_cast<char *>(pool.allocate(large));
  std::memset(block, 'a', small);
  std::memset(dirty, 'z', large);
  void *moved = block;
  ASSERT_EQ(comn_mmrealloc(pool, small, &moved), CS_SUCCEED);
  ASSERT_EQ(moved, block);
  EXPECT_EQ(std::string(block, small), std::string(small, 'a'));
  ASSERT_EQ(comn_mmfree(pool, dirty), CS_SUCCEED);
  ASSERT_EQ(comn_mmrealloc(pool, large, &moved), CS_SUCCEED);
  ASSERT_EQ(moved, dirty);
  EXPECT_EQ(std::string(dirty, small), std::string(small, 'a'));
  EXPECT_EQ(std::string(dirty + small + W, large - small - W), std::string(large - small - W, 'z'));
}

// The pointer is stored when the old block has gone, not before.
TEST_F(BuddyTest, ReallocationOfABlockThatIsNone) {
  Pool pool(source);
  pool.allocate(2 * W); // where the chunk begins, which is on the chain of blocks
  void *const block = pool.allocate(2 * W);
  auto *const header = reinterpret_cast<CS_UINT *>(static_cast<char *>(block) - W);
  const CS_UINT saved = *header;
  *header = 2 * W | MM_BUDDY_OVERSIZE;
  void *moved = block;
  EXPECT_ASSERTION(heap_unit, CS_FAIL, comn_mmrealloc(pool, 100, &moved));
  EXPECT_EQ(moved, block);
  *header = saved;
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
}

TEST_F(BuddyTest, FailedReallocation) {
  Pool pool(source);
  void *const block = pool.allocate(100);
  std::memset(block, 'c', 100);
  void *moved = block;
  for (const CS_UINT size : {100'000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    source.fail(1);
    EXPECT_EQ(comn_mmrealloc(pool, size, &moved), CS_MEM_ERROR);
    source.fail(0);
    EXPECT_EQ(moved, block);
    EXPECT_EQ(std::string(static_cast<char *>(block), 100), std::string(100, 'c'));
  }
  EXPECT_EQ(comn_mmrealloc(pool, 100'000, &moved), CS_SUCCEED);
  EXPECT_EQ(std::string(static_cast<char *>(moved), 100), std::string(100, 'c'));
}

TEST_F(BuddyTest, ReallocationBeforeTheFirstAllocation) {
  alignas(void *) unsigned char bytes[200] = {};
  Pool pool(source);
  ASSERT_EQ(com___addheap(pool, bytes, 200, MM_HEAP_CALLER), CS_SUCCEED);
  void *block = bytes + 100;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmrealloc(pool, 8, &block));
}

TEST_F(BuddyTest, SizesOutOfReach) {
  Pool pool(source);
  for (const CS_UINT size : {0x7FFFFF00U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    pool.allocate(size, CS_MEM_ERROR);
  pool.allocate(0);
}

// Every order of the largest pool splits and merges, blocks of order 16 too.
TEST_F(BuddyTest, LargestOrders) {
  Pool pool(source);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, static_cast<CS_INT>(block_bytes(16))), CS_SUCCEED);
  const CS_UINT whole = block_bytes(16) - W;
  void *const all = pool.allocate(whole);
  ASSERT_EQ(source.asked.size(), 1U);
  ASSERT_EQ(comn_mmfree(pool, all), CS_SUCCEED);
  for (int order = 15; order >= 8; --order) {
    SCOPED_TRACE(order);
    std::vector<void *> blocks;
    for (int i = 0; i < 1 << (16 - order); ++i) {
      blocks.push_back(pool.allocate(block_bytes(order) - W));
      EXPECT_EQ(header_of(blocks.back()) & 0xFU, static_cast<CS_UINT>(order));
    }
    ASSERT_EQ(source.asked.size(), 1U);
    for (size_t i = 0; i < blocks.size(); ++i)
      ASSERT_EQ(comn_mmfree(pool, blocks[i * 7 % blocks.size()]), CS_SUCCEED);
    ASSERT_EQ(pool.allocate(whole), all);
    ASSERT_EQ(comn_mmfree(pool, all), CS_SUCCEED);
    EXPECT_ASSERTION(buddy_unit, CS_FAIL, comn_mmfree(pool, all));
  }
  // A second chunk beside it: the two never merge with each other.
  void *const half = pool.allocate(block_bytes(15) - W);
  void *const second = pool.allocate(whole);
  ASSERT_EQ(source.asked.size(), 2U);
  ASSERT_EQ(comn_mmfree(pool, half), CS_SUCCEED);
  ASSERT_EQ(comn_mmfree(pool, second), CS_SUCCEED);
  pool.allocate(whole);
  pool.allocate(whole);
  EXPECT_EQ(source.asked.size(), 2U);
}

// ---- uniform ----

using UniformTest = PoolTest;

TEST_F(UniformTest, NodesAndBlockSize) {
  Pool pool(source, MM_POOL_UNIFORM);
  auto *const first = static_cast<char *>(pool.allocate(10));
  const CS_UINT node = (10 + W - 1) / W * W + W;
  EXPECT_EQ(pool->mmh_pool.u.uniform_size, 10);
  EXPECT_EQ(pool->mmh_pool.u.node_size, static_cast<CS_INT>(node));
  EXPECT_EQ(pool->mmh_blocksize, static_cast<CS_INT>(4096 / node * node));
  if (ilp32) {
    EXPECT_EQ(pool->mmh_pool.u.node_size, 16);
    EXPECT_EQ(pool->mmh_blocksize, 4096);
  }
  EXPECT_EQ(header_of(first), node);
  EXPECT_EQ(pool.allocate(10), first + node);
  EXPECT_EQ(pool.allocate(10), first + 2 * node);
  pool.allocate(11, CS_FAIL);
  pool.allocate(9, CS_FAIL);
  pool.allocate(0xFFFFFFFFU, CS_FAIL);
  void *block = first;
  EXPECT_EQ(comn_mmrealloc(pool, 5, &block), CS_FAIL);
  EXPECT_EQ(block, first);
  // Last in, first out.
  EXPECT_EQ(comn_mmfree(pool, first + 2 * node), CS_SUCCEED);
  EXPECT_EQ(comn_mmfree(pool, first), CS_SUCCEED);
  EXPECT_EQ(pool.allocate(10), first);
  EXPECT_EQ(pool.allocate(10), first + 2 * node);
}

// The first block and every refill hold the same number of nodes and nothing is threaded past their
// end, whatever the size rounds to.
TEST_F(UniformTest, Refills) {
  for (const CS_UINT size : {0U, 1U, 3U, 4U, 5U, 10U, 12U, 17U, 64U, 1000U, 5000U}) {
    SCOPED_TRACE(size);
    Source own;
    Pool pool(own, MM_POOL_UNIFORM);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1024), CS_SUCCEED);
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
    pool.allocate(size);
    const auto node = static_cast<CS_UINT>(pool->mmh_pool.u.node_size);
    EXPECT_GE(node, 2 * W);
    const CS_UINT nodes = node > 1024 ? 1 : 1024 / node;
    EXPECT_EQ(pool->mmh_blocksize, static_cast<CS_INT>(nodes * node));
    for (CS_UINT i = 1; i < 4 * nodes; ++i)
      std::memset(pool.allocate(size), 0xCC, size);
    EXPECT_EQ(own.asked.size(), 4U);
    own.check_guards();
    check_heap(pool);
  }
}

// Repeated set-ups start from the block size of the last one.
TEST_F(UniformTest, RepeatedSetUp) {
  Pool pool(source, MM_POOL_UNIFORM);
  source.fail(1);
  pool.allocate(20 * W, CS_MEM_ERROR);
  const CS_INT expected = static_cast<CS_INT>(4096 / (21 * W) * (21 * W));
  EXPECT_EQ(pool->mmh_blocksize, expected);
  pool.allocate(0xFFFFFFFFU, CS_MEM_ERROR);
  EXPECT_EQ(pool->mmh_blocksize, expected);
  pool.allocate(30 * W);
  EXPECT_EQ(pool->mmh_blocksize,
            expected / static_cast<CS_INT>(31 * W) * static_cast<CS_INT>(31 * W));
}

TEST_F(UniformTest, FailedRefill) {
  Pool pool(source, MM_POOL_UNIFORM);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1), CS_SUCCEED);
  pool.allocate(4000);
  source.fail(1);
  pool.allocate(4000, CS_MEM_ERROR);
  pool.allocate(4000);
}

// A pool remembers that its regions were full. That must not hide a region that is added, room for
// less, or what is given back.
TEST_F(UniformTest, RegionsThatFilledUpAndHaveRoomAgain) {
  Pool pool(source, MM_POOL_UNIFORM);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1), CS_SUCCEED);
  ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
  for (int i = 0; i < 3; ++i)
    pool.allocate(50 * W);
  EXPECT_EQ(source.asked.size(), 3U);

  alignas(void *) unsigned char bytes[region_record + 60 * W];
  ASSERT_EQ(comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_ADDHEAP, bytes, sizeof bytes, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(pool.allocate(50 * W), bytes + region_record + 2 * W);
  EXPECT_EQ(source.asked.size(), 3U);

  // What is left of that region, too little for a node.
  void *payload = nullptr;
  ASSERT_EQ(com___getheap(pool, 2 * W, &payload), CS_SUCCEED);
  EXPECT_EQ(source.asked.size(), 3U);

  // A block that was given back in the oldest region.
  pool.allocate(50 * W);
  EXPECT_EQ(source.asked.size(), 4U);
  ASSERT_EQ(com___putheap(pool, payload), CS_SUCCEED);
  void *again = nullptr;
  ASSERT_EQ(com___getheap(pool, 2 * W, &again), CS_SUCCEED);
  EXPECT_EQ(again, payload);
  EXPECT_EQ(source.asked.size(), 4U);
}

// The search is remembered while a pool is alone, from its second allocation on, and forgotten with
// its last sub-pool.
TEST_F(PoolTest, SearchesAreRemembered) {
  for (const CS_INT type : {MM_POOL_UNIFORM, MM_POOL_ALLOCONLY}) {
    SCOPED_TRACE(type);
    Pool pool(source, type);
    const MmSearch &search = pool->mmh_pool.notes.search;
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1), CS_SUCCEED);
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
    const MmHeap *newest = nullptr; // a region for each chunk
    for (int i = 0; i < 3; ++i) {
      pool.allocate(50 * W);
      EXPECT_EQ(search.first, newest);
      newest = pool.head()->mph_heap;
    }
    EXPECT_EQ(search.size, header_of(pool->mmh_blocks));
    MM_HANDLE *sub = pool;
    ASSERT_EQ(com___subpool(pool, 1, &sub), CS_SUCCEED);
    EXPECT_EQ(search.first, newest);
    pool.allocate(50 * W);
    EXPECT_EQ(search.first, newest) << "with a sub-pool none is kept";
    ASSERT_EQ(comn_mmdrop(sub, MM_DROP_NORMAL), CS_SUCCEED);
    EXPECT_EQ(search.first, nullptr);
    EXPECT_EQ(search.size, 0U);
  }
}

// None of the inner operations takes a null pointer.
TEST_F(PoolTest, NullPointersOfTheInnerOperations) {
  Pool pool(source);
  void *block = pool.allocate(8), *none = nullptr;
  MmHeap *const heap = pool.head()->mph_heap;
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___addheap(nullptr, &block, 100, 2));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___addheap(pool, nullptr, 100, 2));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___sbreak(nullptr, 100));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___unsbreak(nullptr, heap));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___unsbreak(pool, nullptr));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___getheap(nullptr, 8, &none));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___getheap(pool, 8, nullptr));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___putheap(nullptr, block));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___putheap(pool, nullptr));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___insert_block(nullptr, heap->free));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___insert_block(heap, nullptr));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___getblock(nullptr, 8, &none));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___getblock(pool, 8, nullptr));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___putblock(nullptr, block));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, com___putblock(pool, nullptr));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_malloc(nullptr, 8, &none));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_malloc(pool, 8, nullptr));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_split(nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_compact(nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_free(nullptr, block));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_free(pool, nullptr));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_realloc(nullptr, 8, &block));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_realloc(pool, 8, nullptr));
  EXPECT_NULL_POINTER_CHECK(buddy_unit, CS_FAIL, com___buddy_realloc(pool, 8, &none));
  Pool uniform(source, MM_POOL_UNIFORM);
  EXPECT_NULL_POINTER_CHECK(uniform_unit, CS_FAIL, com___uniform_malloc(nullptr, 8, &none));
  EXPECT_NULL_POINTER_CHECK(uniform_unit, CS_FAIL, com___uniform_malloc(uniform, 8, nullptr));
  EXPECT_NULL_POINTER_CHECK(uniform_unit, CS_FAIL, com___uniform_free(nullptr, block));
  EXPECT_NULL_POINTER_CHECK(uniform_unit, CS_FAIL, com___uniform_free(uniform, nullptr));
  Pool bump(source, MM_POOL_ALLOCONLY);
  const char *const bump_unit = "commmgr_alloconly.cpp";
  EXPECT_NULL_POINTER_CHECK(bump_unit, CS_FAIL, com___alloconly_malloc(nullptr, 8, &none));
  EXPECT_NULL_POINTER_CHECK(bump_unit, CS_FAIL, com___alloconly_malloc(bump, 8, nullptr));
  EXPECT_EQ(none, nullptr);
}

TEST_F(UniformTest, Misuse) {
  Pool pool(source, MM_POOL_UNIFORM);
  EXPECT_ASSERTION(uniform_unit, CS_FAIL, com___uniform_free(pool, &source));
  void *block = nullptr;
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_malloc(pool, 1, &block));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_free(pool, &source));
  EXPECT_ASSERTION(buddy_unit, CS_FAIL, com___buddy_split(pool, 0));
  EXPECT_ASSERTION("commmgr_alloconly.cpp", CS_FAIL, com___alloconly_malloc(pool, 1, &block));
  Pool buddy(source);
  EXPECT_ASSERTION(uniform_unit, CS_FAIL, com___uniform_malloc(buddy, 1, &block));
}

// ---- alloc-only ----

using AllocOnlyTest = PoolTest;

TEST_F(AllocOnlyTest, ChunksAndCursors) {
  const CS_UINT overhead = offsetof(MmHeap, buffer) + 2 * W;
  if (ilp32) {
    EXPECT_EQ(overhead, 24U);
  }
  Pool pool(source, MM_POOL_ALLOCONLY);
  auto *const first = static_cast<char *>(pool.allocate(5));
  const MmHeap *const chunk = pool->mmh_pool.a.free;
  EXPECT_EQ(first, reinterpret_cast<const char *>(chunk) + overhead);
  EXPECT_EQ(chunk->size, 4096);
  const CS_UINT five = (5 + W - 1) / W * W;
  EXPECT_EQ(chunk->free->size, 4096 - overhead - five);
  EXPECT_EQ(reinterpret_cast<char *>(chunk->free->link), first + five);
  EXPECT_EQ(pool.allocate(W), first + five);
  EXPECT_EQ(pool.allocate(0), first + five + W);
  EXPECT_EQ(pool.allocate(1), first + five + W);
  EXPECT_EQ(source.asked, (std::vector<CS_UINT>{
                              4096 + W + region_record > 4120 ? 4096 + W + region_record : 4120}));
  // A larger request has a chunk of its own size.
  pool.allocate(8000);
  EXPECT_EQ(pool->mmh_pool.a.free->size, static_cast<CS_INT>(8000 + overhead));
  EXPECT_EQ(pool->mmh_pool.a.free->next, chunk);
  EXPECT_EQ(pool->mmh_pool.a.free->free->size, 0U);
  void *block = first;
  EXPECT_EQ(comn_mmrealloc(pool, 1, &block), CS_FAIL);
  EXPECT_EQ(comn_mmfree(pool, first), CS_FAIL);
  EXPECT_EQ(pool.allocate(W), first + five + 2 * W) << "nothing was returned";
}

// The newest chunk that has room serves, older ones too.
TEST_F(AllocOnlyTest, OlderChunksServe) {
  Pool pool(source, MM_POOL_ALLOCONLY);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1024), CS_SUCCEED);
  const CS_UINT room = 1024 - offsetof(MmHeap, buffer) - 2 * W;
  char *starts[3];
  for (CS_UINT i = 0; i < 3; ++i) // leaves 10, 20 and 30 words
    starts[i] = static_cast<char *>(pool.allocate(room - (i + 1) * 10 * W));
  const auto rest = [&](CS_UINT i) { return starts[i] + room - (i + 1) * 10 * W; };
  pool.allocate(31 * W);        // a fourth chunk
  pool.allocate(room - 31 * W); // which is full now
  EXPECT_EQ(pool.allocate(25 * W), rest(2));
  EXPECT_EQ(pool.allocate(10 * W), rest(1));
  EXPECT_EQ(pool.allocate(10 * W), rest(1) + 10 * W);
  EXPECT_EQ(pool.allocate(6 * W), rest(0));
  EXPECT_EQ(pool.allocate(5 * W), rest(2) + 25 * W);
  EXPECT_EQ(pool.allocate(4 * W), rest(0) + 6 * W);
  EXPECT_EQ(source.asked.size(), 2U) << "three chunks in a region of 4120 bytes, then one";
}

// Allocations of the other strategies are not resized, whatever they are said to be.
TEST_F(PoolTest, ReallocationIsForBuddyPoolsAlone) {
  for (const CS_INT type : {MM_POOL_UNIFORM, MM_POOL_ALLOCONLY}) {
    Pool pool(source, type);
    int outside = 0;
    for (const bool first : {true, false}) {
      for (void *const pointer : {static_cast<void *>(nullptr), static_cast<void *>(&outside),
                                  first ? nullptr : pool.allocate(8)}) {
        void *buffer = pointer;
        const auto report =
            zrvtest::catch_check([&] { EXPECT_EQ(comn_mmrealloc(pool, 8, &buffer), CS_FAIL); });
        EXPECT_EQ(report.signals, 0);
        EXPECT_EQ(buffer, pointer);
      }
    }
  }
}

// Deliberate: nothing is reserved for an empty allocation, so that one in a full chunk lies at the
// end of the region, and a release of it is one of a pointer outside the pool.
TEST_F(AllocOnlyTest, EmptyAllocationInAFullChunk) {
  Pool pool(source, MM_POOL_ALLOCONLY);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1), CS_SUCCEED);
  ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
  void *const empty = pool.allocate(0);
  const MmHeap *const region = pool.head()->mph_heap;
  EXPECT_EQ(empty, reinterpret_cast<const char *>(region) + region->size);
  EXPECT_ASSERTION("commmgr.cpp", CS_FAIL, comn_mmfree(pool, empty));
  EXPECT_EQ(pool.allocate(0), empty);
}

// Nothing is freed, so nothing but the bounds of the regions is looked at.
TEST_F(AllocOnlyTest, FreeOfAnyAddressInARegion) {
  Pool pool(source, MM_POOL_ALLOCONLY);
  auto *const block = static_cast<char *>(pool.allocate(100));
  MmHeap *const region = pool.head()->mph_heap;
  char *const begin = reinterpret_cast<char *>(region);
  for (char *const address : {begin, begin + 1, block, block + 1, begin + region->size - 1}) {
    const auto report =
        zrvtest::catch_check([&] { EXPECT_EQ(comn_mmfree(pool, address), CS_FAIL); });
    EXPECT_EQ(report.signals, 0) << address - begin;
  }
  EXPECT_ASSERTION("commmgr.cpp", CS_FAIL, comn_mmfree(pool, begin - 1));
  EXPECT_ASSERTION("commmgr.cpp", CS_FAIL, comn_mmfree(pool, begin + region->size));
  EXPECT_EQ(pool.allocate(4), block + (100 + W - 1) / W * W);
}

// Bytes come cleared whether or not a lock is set, which decides when they are cleared.
TEST_F(AllocOnlyTest, ClearedWithAndWithoutALock) {
  const MM_LOCK_FUNC locked = +[](MM_HANDLE *, CS_VOID *) -> CS_RETCODE { return CS_SUCCEED; };
  const MM_UNLOCK_FUNC unlocked = locked;
  for (const CS_UINT size : {0U, 1U, 7U, 100U, 700U, 2047U, 2048U, 2049U, 5000U}) {
    SCOPED_TRACE(size);
    Source own;
    Pool pool(own, MM_POOL_ALLOCONLY);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 20'000), CS_SUCCEED);
    std::vector<std::pair<unsigned char *, CS_UINT>> live;
    for (CS_UINT i = 0; i < 40; ++i) {
      if (i % 5 == 2) {
        ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, unlocked), CS_SUCCEED);
        ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, locked), CS_SUCCEED);
      } else if (i % 5 == 4) {
        ASSERT_EQ(comn_mmproperty(pool, MM_ACTION_CLEAR, MM_PROP_LOCK, nullptr, 0, nullptr),
                  CS_SUCCEED);
      }
      const CS_UINT length = size + i % 3;
      auto *const block = static_cast<unsigned char *>(pool.allocate(length));
      std::memset(block, static_cast<int>(i + 1), length);
      live.emplace_back(block, length);
    }
    for (CS_UINT i = 0; i < live.size(); ++i)
      for (CS_UINT at = 0; at < live[i].second; ++at)
        ASSERT_EQ(live[i].first[at], i + 1) << "cleared while in use";
    own.check_guards();
  }
}

// Without a lock up to 2 KB behind the cursor are cleared in one go, and what comes from there is
// not cleared again.
TEST_F(AllocOnlyTest, ClearingAhead) {
  constexpr unsigned char fresh = 0xE7; // what the source fills its regions with
  Pool pool(source, MM_POOL_ALLOCONLY);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 6000), CS_SUCCEED);
  const auto allocate = [&](CS_UINT size) {
    void *block = nullptr;
    EXPECT_EQ(comn_mmalloc(pool, size, &block), CS_SUCCEED);
    return static_cast<unsigned char *>(block);
  };
  unsigned char *const first = allocate(8); // takes the chunk, and clears no more than it must
  EXPECT_EQ(first[7], 0);
  EXPECT_EQ(first[8], fresh);
  unsigned char *const second = allocate(16);
  EXPECT_EQ(second, first + 8);
  unsigned char *const cursor = second + 16;
  for (int i = 0; i < 2048; ++i)
    ASSERT_EQ(cursor[i], 0) << i;
  EXPECT_EQ(cursor[2048], fresh);
  cursor[3] = 1; // as nobody should
  EXPECT_EQ(allocate(2048)[3], 1);
  EXPECT_EQ(cursor[2048], fresh);
  EXPECT_EQ(allocate(0), cursor + 2048);
  EXPECT_EQ(cursor[2048], fresh);
  EXPECT_EQ(allocate(8)[7], 0);
  EXPECT_EQ(cursor[2048 + 8 + 2047], 0);
  EXPECT_EQ(cursor[2048 + 8 + 2048], fresh);

  // Up to the end of the chunk and no further; the guards of the region watch.
  const auto left = [&] { return pool->mmh_pool.a.free->free->size; };
  allocate(left() - 104);
  unsigned char *const rest = allocate(0);
  EXPECT_EQ(rest[103], 0);
  source.check_guards();
  // While an older chunk serves nothing is cleared ahead, neither there nor in the newest one.
  unsigned char *const other = allocate(5000);
  std::memset(other, 0x55, 5000);
  allocate(left() - 8);
  unsigned char *const end = allocate(0);
  rest[103] = 1;
  end[7] = 1;
  EXPECT_EQ(allocate(56), rest);
  EXPECT_EQ(rest[103], 1);
  EXPECT_EQ(end[7], 1);
}

// With a lock nothing but the block itself is touched, when the lock is free again.
TEST_F(AllocOnlyTest, NoClearingAheadUnderALock) {
  const MM_LOCK_FUNC always = +[](MM_HANDLE *, CS_VOID *) -> CS_RETCODE { return CS_SUCCEED; };
  Pool pool(source, MM_POOL_ALLOCONLY);
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, MM_UNLOCK_FUNC{always}), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, always), CS_SUCCEED);
  for (int i = 0; i < 3; ++i) {
    const auto *const block = static_cast<unsigned char *>(pool.allocate(16));
    EXPECT_EQ(block[16], 0xE7);
  }
}

TEST_F(AllocOnlyTest, FailedChunk) {
  Pool pool(source, MM_POOL_ALLOCONLY);
  for (int i = 0; i < 3; ++i) {
    source.fail(1);
    pool.allocate(100, CS_MEM_ERROR);
  }
  pool.allocate(0xFFFFFFFFU, CS_MEM_ERROR);
  void *const block = pool.allocate(100);
  source.fail(1);
  pool.allocate(10'000, CS_MEM_ERROR);
  EXPECT_EQ(static_cast<char *>(pool.allocate(100)) - static_cast<char *>(block),
            static_cast<ptrdiff_t>((100 + W - 1) / W * W));
}

TEST_F(AllocOnlyTest, BlockSizesOfAnyLength) {
  for (CS_INT size = 1; size < 60; ++size) {
    Source own;
    Pool pool(own, MM_POOL_ALLOCONLY);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, size), CS_SUCCEED);
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 1), CS_SUCCEED);
    for (CS_UINT i = 0; i < 20; ++i)
      std::memset(pool.allocate(i), 0xEE, i);
    own.check_guards();
    check_heap(pool);
  }
}

} // namespace
