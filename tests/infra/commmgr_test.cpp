// Pools: making, properties, locking, sub-pools, dropping, misuse.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "pool_source.h"
#include "traced_exit.h"

using namespace zrvtest;

namespace {

constexpr const char *unit = "commmgr.cpp";
constexpr const char *prop_unit = "commmgr_prop.cpp";
constexpr const char *heap_unit = "commmgr_heap.cpp";
constexpr size_t overhead = sizeof(MmPoolHead) + sizeof(MM_HANDLE);

// ---- a context with an allocator and thread callbacks that the test watches ----

struct World {
  std::vector<void *> live;
  int allocations = 0, fail_at = 0, frees = 0, foreign_frees = 0;
  std::vector<std::string> calls; // of the thread callbacks
  void *mutex = nullptr, *deleted = &live;
  CS_RETCODE create_result = CS_SUCCEED, take_result = CS_SUCCEED;
  int held = 0;
} * world;

CS_VOID *world_malloc(CS_CONTEXT *, CS_UINT size) {
  if (++world->allocations == world->fail_at)
    return nullptr;
  void *const block = std::malloc(size);
  world->live.push_back(block);
  return block;
}

CS_RETCODE world_free(CS_CONTEXT *, CS_VOID *block) {
  ++world->frees;
  const auto found = std::find(world->live.begin(), world->live.end(), block);
  if (found == world->live.end()) {
    ++world->foreign_frees;
    return CS_FAIL;
  }
  world->live.erase(found);
  std::free(block);
  return CS_SUCCEED;
}

CS_RETCODE create_mutex(CS_VOID **mutex) {
  world->calls.push_back("create");
  if (world->create_result == CS_SUCCEED)
    *mutex = world->mutex = &world->held;
  return world->create_result;
}
CS_RETCODE delete_mutex(CS_VOID *mutex) {
  world->calls.push_back("delete");
  world->deleted = mutex;
  return CS_SUCCEED;
}
CS_RETCODE take_mutex(CS_VOID *mutex) {
  world->calls.push_back("take");
  EXPECT_EQ(mutex, world->mutex);
  if (world->take_result == CS_SUCCEED)
    ++world->held;
  return world->take_result;
}
CS_RETCODE release_mutex(CS_VOID *mutex) {
  world->calls.push_back("release");
  EXPECT_EQ(mutex, world->mutex);
  --world->held;
  return CS_SUCCEED;
}

class ContextPool : public testing::Test {
protected:
  ContextPool() : context{}, thread{} {
    world = &the_world;
    context.ctxversion = 114;
    context.ctxmalloc = world_malloc;
    context.ctxfree = world_free;
    thread.create_mutex_fn = create_mutex;
    thread.delete_mutex_fn = delete_mutex;
    thread.take_mutex_fn = take_mutex;
    thread.release_mutex_fn = release_mutex;
  }
  ~ContextPool() override {
    for (void *const block : the_world.live)
      std::free(block);
    EXPECT_EQ(the_world.foreign_frees, 0);
  }
  using Calls = std::vector<std::string>;

  World the_world;
  CS_CONTEXT context;
  CS_THREAD thread;
  MM_HANDLE *mmh = nullptr;
};

TEST_F(ContextPool, RecordsFromTheContext) {
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  ASSERT_EQ(the_world.live.size(), 2U);
  const MmPoolHead *const head = mmh->mmh_head;
  EXPECT_EQ(static_cast<const void *>(head), the_world.live[0]);
  EXPECT_EQ(static_cast<const void *>(mmh), the_world.live[1]);
  EXPECT_EQ(mmh->mmh_status, MM_ST_OWNED);
  EXPECT_EQ(head->mph_status, MM_ST_OWNED);
  EXPECT_EQ(mmh->mmh_type, MM_POOL_BUDDY);
  EXPECT_EQ(mmh->mmh_blocksize, 4096);
  EXPECT_EQ(mmh->mmh_tagid, 0);
  EXPECT_EQ(mmh->mmh_blocks, nullptr);
  EXPECT_EQ(mmh->mmh_parent, nullptr);
  EXPECT_EQ(mmh->mmh_child, nullptr);
  EXPECT_EQ(mmh->mmh_sibling, nullptr);
  EXPECT_NE(head->mph_sbreak, nullptr);
  EXPECT_NE(head->mph_unsbreak, nullptr);
  EXPECT_EQ(head->mph_param, &context);
  EXPECT_EQ(head->mph_ctx, &context);
  EXPECT_EQ(head->mph_lock, nullptr);
  EXPECT_EQ(head->mph_unlock, nullptr);
  EXPECT_EQ(head->mph_lockarg, nullptr);
  EXPECT_EQ(head->mph_chunksize, 4120);
  EXPECT_EQ(head->mph_totalsize, 0);
  EXPECT_EQ(head->mph_maxsize, -9999);
  EXPECT_EQ(head->mph_heap, nullptr);

  void *block = nullptr;
  ASSERT_EQ(comn_mmalloc(mmh, 100, &block), CS_SUCCEED);
  EXPECT_EQ(the_world.live.size(), 3U);
  ASSERT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_TRUE(the_world.live.empty());
  EXPECT_TRUE(the_world.calls.empty());
}

TEST_F(ContextPool, RecordsInCallerStorage) {
  alignas(void *) unsigned char bytes[overhead + 8];
  std::memset(bytes, 0xA5, sizeof bytes);
  mmh = reinterpret_cast<MM_HANDLE *>(bytes);
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  EXPECT_EQ(static_cast<void *>(mmh), bytes + sizeof(MmPoolHead));
  EXPECT_EQ(static_cast<void *>(mmh->mmh_head), bytes);
  EXPECT_EQ(mmh->mmh_status, MM_ST_CALLER);
  EXPECT_EQ(mmh->mmh_head->mph_status, MM_ST_CALLER);
  for (size_t i = overhead; i < sizeof bytes; ++i)
    EXPECT_EQ(bytes[i], 0xA5);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(the_world.allocations, 0);
  EXPECT_EQ(the_world.frees, 0);
}

TEST_F(ContextPool, OldContextsAreRefused) {
  context.ctxversion = 113;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mminit(&context, &mmh));
  EXPECT_EQ(mmh, nullptr);
}

TEST_F(ContextPool, FailedRecords) {
  for (const int nth : {1, 2}) {
    the_world.allocations = 0;
    the_world.fail_at = nth;
    EXPECT_EQ(comn_mminit(&context, &mmh), CS_FAIL);
    EXPECT_EQ(mmh, nullptr);
    EXPECT_TRUE(the_world.live.empty());
  }
}

TEST_F(ContextPool, MutexGuardsEveryCall) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  EXPECT_EQ(mmh->mmh_head->mph_lockarg, the_world.mutex);
  EXPECT_EQ(mmh->mmh_head->mph_status, MM_ST_OWNED | MM_ST_OWNMUTEX);
  EXPECT_EQ(the_world.calls, Calls({"create"}));
  the_world.calls.clear();
  void *block = nullptr;
  EXPECT_EQ(comn_mmalloc(mmh, 8, &block), CS_SUCCEED);
  EXPECT_EQ(comn_mmrealloc(mmh, 8, &block), CS_SUCCEED);
  EXPECT_EQ(get_integer(mmh, MM_PROP_CHUNKSIZE), 4120);
  EXPECT_EQ(comn_mmfree(mmh, block), CS_SUCCEED);
  EXPECT_EQ(the_world.calls,
            Calls({"take", "release", "take", "release", "take", "release", "take", "release"}));
  the_world.calls.clear();
  // The overhead needs neither lock nor pool.
  EXPECT_EQ(get_integer(mmh, MM_PROP_OVERHEAD), static_cast<CS_INT>(overhead));
  EXPECT_TRUE(the_world.calls.empty());
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(the_world.calls, Calls({"take", "release", "delete"}));
  EXPECT_EQ(the_world.deleted, the_world.mutex);
  EXPECT_EQ(the_world.held, 0);
  EXPECT_TRUE(the_world.live.empty());
}

TEST_F(ContextPool, ThreadTableWithoutFunctions) {
  thread = CS_THREAD{};
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  EXPECT_EQ(mmh->mmh_head->mph_lockarg, nullptr);
  EXPECT_EQ(mmh->mmh_head->mph_status, MM_ST_OWNED);
  EXPECT_NE(mmh->mmh_head->mph_lock, nullptr);
  EXPECT_NE(mmh->mmh_head->mph_unlock, nullptr);
  void *block = nullptr;
  EXPECT_EQ(comn_mmalloc(mmh, 8, &block), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_TRUE(the_world.live.empty());
}

// Deliberate: when the mutex cannot be made, the handle is released and the head is not.
TEST_F(ContextPool, FailedMutexLosesTheHead) {
  context.ctxthread = &thread;
  the_world.create_result = -77;
  EXPECT_EQ(comn_mminit(&context, &mmh), -77);
  EXPECT_EQ(mmh, nullptr);
  EXPECT_EQ(the_world.frees, 1);
  EXPECT_EQ(the_world.live.size(), 1U);
}

TEST_F(ContextPool, FailedLock) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  void *block = nullptr, *other = &mmh;
  ASSERT_EQ(comn_mmalloc(mmh, 8, &block), CS_SUCCEED);
  the_world.take_result = -55;
  the_world.calls.clear();
  CS_INT value = 1;
  EXPECT_EQ(comn_mmalloc(mmh, 8, &other), -55);
  EXPECT_EQ(other, &mmh);
  EXPECT_EQ(comn_mmrealloc(mmh, 9999, &block), -55);
  EXPECT_EQ(comn_mmproperty(mmh, MM_ACTION_GET, MM_PROP_MAXSIZE, &value, 0, nullptr), -55);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_FORCE), -55);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(mmh, block));
  EXPECT_EQ(std::count(the_world.calls.begin(), the_world.calls.end(), "release"), 0);
  the_world.take_result = CS_SUCCEED;
  EXPECT_EQ(comn_mmfree(mmh, block), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_FORCE), CS_SUCCEED);
}

// The context's lock functions need the context.
TEST_F(ContextPool, LockWithoutContext) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  MmPoolHead *const head = mmh->mmh_head;
  head->mph_ctx = nullptr;
  the_world.calls.clear();
  void *block = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmalloc(mmh, 8, &block));
  EXPECT_ASSERTION(unit, CS_FAIL, head->mph_lock(mmh, head->mph_lockarg));
  EXPECT_ASSERTION(unit, CS_FAIL, head->mph_unlock(mmh, head->mph_lockarg));
  EXPECT_TRUE(the_world.calls.empty());
  head->mph_ctx = &context;
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_FORCE), CS_SUCCEED);
}

TEST_F(ContextPool, NoFunctionThatDeletesTheMutex) {
  context.ctxthread = &thread;
  thread.delete_mutex_fn = nullptr;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(the_world.calls, Calls({"create", "take", "release"}));
  EXPECT_TRUE(the_world.live.empty());
}

// A thread table that has gone by then does not hold up the drop.
TEST_F(ContextPool, NoThreadTableAtTheDrop) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  context.ctxthread = nullptr;
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(the_world.calls, Calls({"create"}));
  EXPECT_TRUE(the_world.live.empty());
}

// Deliberate: clearing takes the bit from the handle, which does not have it, so the drop still
// deletes a mutex, by now null.
TEST_F(ContextPool, ClearedLockStillDeletesANullMutex) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  mmh->mmh_status |= MM_ST_OWNMUTEX;
  the_world.calls.clear();
  EXPECT_EQ(comn_mmproperty(mmh, MM_ACTION_CLEAR, MM_PROP_UNLOCK, nullptr, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(the_world.calls, Calls({"take", "release"}));
  EXPECT_EQ(mmh->mmh_status & MM_ST_OWNMUTEX, 0);
  EXPECT_EQ(mmh->mmh_head->mph_status, MM_ST_OWNED | MM_ST_OWNMUTEX);
  EXPECT_EQ(mmh->mmh_head->mph_lock, nullptr);
  EXPECT_EQ(mmh->mmh_head->mph_unlock, nullptr);
  EXPECT_EQ(mmh->mmh_head->mph_lockarg, nullptr);
  the_world.calls.clear();
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(the_world.calls, Calls({"delete"}));
  EXPECT_EQ(the_world.deleted, nullptr);
}

// ---- comn_mmmanage ----

TEST(ManagedPool, CarvesItsRecordsOutOfTheBuffer) {
  alignas(16) unsigned char bytes[2048];
  MM_HANDLE *mmh = nullptr;
  ASSERT_EQ(comn_mmmanage(bytes, sizeof bytes, &mmh), CS_SUCCEED);
  EXPECT_EQ(static_cast<void *>(mmh->mmh_head), bytes);
  EXPECT_EQ(static_cast<void *>(mmh), bytes + sizeof(MmPoolHead));
  EXPECT_EQ(mmh->mmh_status, MM_ST_OWNED);
  EXPECT_EQ(mmh->mmh_head->mph_status, MM_ST_OWNED);
  EXPECT_EQ(mmh->mmh_head->mph_ctx, nullptr);
  const MmHeap *const heap = mmh->mmh_head->mph_heap;
  ASSERT_EQ(static_cast<const void *>(heap), bytes + overhead);
  EXPECT_EQ(heap->size, static_cast<CS_INT>(sizeof bytes - overhead));
  EXPECT_EQ(heap->status, 2);
  EXPECT_EQ(heap->next, nullptr);
  EXPECT_EQ(mmh->mmh_head->mph_totalsize, static_cast<CS_INT>(sizeof bytes - overhead));
  ASSERT_NE(heap->free, nullptr);
  EXPECT_EQ(heap->free->size, sizeof bytes - overhead - region_record);
  ASSERT_EQ(set_integer(mmh, MM_PROP_BLOCKSIZE, 512), CS_SUCCEED);
  void *block = nullptr;
  EXPECT_EQ(comn_mmalloc(mmh, 100, &block), CS_SUCCEED);
  // It cannot grow.
  EXPECT_EQ(comn_mmalloc(mmh, 2000, &block), CS_MEM_ERROR);
  // Nobody can release such records.
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmdrop(mmh, MM_DROP_FORCE));
}

TEST(ManagedPool, BufferSizes) {
  for (CS_UINT size = 0; size <= overhead + region_record + 8; ++size) {
    SCOPED_TRACE(size);
    GuardedBuffer buffer(size);
    MM_HANDLE *mmh = nullptr;
    if (size < sizeof(MM_HANDLE)) {
      EXPECT_EQ(comn_mmmanage(buffer.data(), size, &mmh), CS_FAIL);
    } else if (size < overhead) {
      EXPECT_ASSERTION(unit, CS_FAIL, comn_mmmanage(buffer.data(), size, &mmh));
    } else if (size > overhead && size < overhead + 9) {
      EXPECT_ASSERTION(heap_unit, CS_FAIL, comn_mmmanage(buffer.data(), size, &mmh));
    } else {
      EXPECT_EQ(comn_mmmanage(buffer.data(), size, &mmh), CS_SUCCEED);
      ASSERT_NE(mmh, nullptr);
      const auto rest = static_cast<CS_UINT>(size - overhead);
      EXPECT_EQ(mmh->mmh_head->mph_totalsize, static_cast<CS_INT>(rest));
      // A region shorter than its record counts and serves nothing.
      EXPECT_EQ(mmh->mmh_head->mph_heap != nullptr, rest >= region_record);
      void *payload = nullptr;
      EXPECT_EQ(com___getheap(mmh, 1, &payload),
                rest >= region_record + W ? CS_SUCCEED : CS_MEM_ERROR);
    }
    if (size < overhead) {
      EXPECT_EQ(mmh, nullptr);
      EXPECT_TRUE(buffer.is_untouched());
    }
  }
  // A length above the signed range.
  alignas(void *) unsigned char bytes[8];
  MM_HANDLE *mmh = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmmanage(bytes, 0x80000000U, &mmh));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmmanage(nullptr, 4096, &mmh));
}

TEST(ManagedPool, BufferBesideCallerStorage) {
  alignas(void *) unsigned char storage[overhead];
  alignas(void *) unsigned char bytes[1000];
  auto *mmh = reinterpret_cast<MM_HANDLE *>(storage);
  ASSERT_EQ(comn_mmmanage(bytes, sizeof bytes, &mmh), CS_SUCCEED);
  EXPECT_EQ(static_cast<void *>(mmh->mmh_head->mph_heap), bytes);
  EXPECT_EQ(mmh->mmh_status, MM_ST_CALLER);
  EXPECT_EQ(mmh->mmh_head->mph_sbreak, nullptr);
  EXPECT_EQ(mmh->mmh_head->mph_lock, nullptr);
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  auto *other = reinterpret_cast<MM_HANDLE *>(storage);
  EXPECT_ASSERTION(heap_unit, CS_FAIL, comn_mmmanage(bytes, 8, &other));
  EXPECT_NULL_POINTER_CHECK(heap_unit, CS_FAIL, comn_mmmanage(nullptr, 100, &other));
}

// A buffer may stand at any address.
TEST(ManagedPool, MisalignedRegion) {
  Source source;
  for (size_t off = 1; off < W; ++off) {
    GuardedBuffer buffer(400, off);
    Pool pool(source, MM_POOL_ALLOCONLY);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 64), CS_SUCCEED);
    ASSERT_EQ(comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_ADDHEAP, buffer.data(), 400, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(pool.head()->mph_totalsize, 400);
    void *const block = pool.allocate(20);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % W, 0U);
    check_heap(pool);
    EXPECT_TRUE(source.asked.empty());
  }
}

// ---- properties ----

class Properties : public testing::Test {
protected:
  CS_RETCODE get(CS_INT property, CS_VOID *buffer, CS_INT buflen = 0) {
    outlen = -1;
    return comn_mmproperty(pool, MM_ACTION_GET, property, buffer, buflen, &outlen);
  }
  CS_RETCODE clear(CS_INT property) {
    outlen = -1;
    return comn_mmproperty(pool, MM_ACTION_CLEAR, property, nullptr, 0, &outlen);
  }

  Source source;
  alignas(void *) unsigned char bytes[600]; // for regions, which outlive the pool
  Pool pool{source};
  CS_INT outlen = -1;
};

int locks, unlocks;
CS_RETCODE lock_result = CS_SUCCEED, unlock_result = CS_SUCCEED;
void *lock_argument;

CS_RETCODE count_lock(MM_HANDLE *, CS_VOID *argument) {
  ++locks;
  lock_argument = argument;
  return lock_result;
}
CS_RETCODE count_unlock(MM_HANDLE *, CS_VOID *argument) {
  ++unlocks;
  lock_argument = argument;
  return unlock_result;
}

TEST_F(Properties, UnknownActionsAndProperties) {
  CS_INT value = 5;
  for (const CS_INT action : {0, 32, 36, -1}) {
    EXPECT_ASSERTION(prop_unit, CS_FAIL,
                     comn_mmproperty(pool, action, MM_PROP_MAXSIZE, &value, 0, nullptr));
  }
  for (const CS_INT property : {0, 1234, 1248, -1})
    for (const CS_INT action : {MM_ACTION_GET, MM_ACTION_SET, MM_ACTION_CLEAR}) {
      EXPECT_ASSERTION(prop_unit, MM_BAD_PROPERTY,
                       comn_mmproperty(pool, action, property, &value, 0, nullptr));
    }
  EXPECT_EQ(value, 5);
}

TEST_F(Properties, PoolType) {
  for (const CS_INT type : {MM_POOL_NONE, MM_POOL_ALLOCONLY, MM_POOL_UNIFORM, MM_POOL_BUDDY}) {
    EXPECT_EQ(set_integer(pool, MM_PROP_POOLTYPE, type), CS_SUCCEED);
    EXPECT_EQ(get_integer(pool, MM_PROP_POOLTYPE), type);
  }
  for (const CS_INT type : {2234, 2239, 0}) {
    EXPECT_ASSERTION(prop_unit, MM_BAD_PROPERTY, set_integer(pool, MM_PROP_POOLTYPE, type));
  }
  pool.allocate(1);
  EXPECT_EQ(set_integer(pool, MM_PROP_POOLTYPE, MM_POOL_UNIFORM), CS_FAIL);
  EXPECT_EQ(get_integer(pool, MM_PROP_POOLTYPE), MM_POOL_BUDDY);
}

TEST_F(Properties, TypeWithoutStrategy) {
  ASSERT_EQ(set_integer(pool, MM_PROP_POOLTYPE, MM_POOL_NONE), CS_SUCCEED);
  void *block = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmalloc(pool, 8, &block));
  EXPECT_EQ(block, nullptr);
  block = &block;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmrealloc(pool, 8, &block));
}

TEST_F(Properties, BlockSize) {
  EXPECT_EQ(get_integer(pool, MM_PROP_BLOCKSIZE), 4096);
  EXPECT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1), CS_SUCCEED);
  EXPECT_EQ(get_integer(pool, MM_PROP_BLOCKSIZE), 1);
  EXPECT_ASSERTION(prop_unit, CS_FAIL, set_integer(pool, MM_PROP_BLOCKSIZE, 0));
  EXPECT_ASSERTION(prop_unit, CS_FAIL, set_integer(pool, MM_PROP_BLOCKSIZE, -5));
  pool.allocate(1);
  EXPECT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 4096), CS_FAIL);
  // The chunk size may change at any time.
  EXPECT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, 9000), CS_SUCCEED);
  EXPECT_EQ(get_integer(pool, MM_PROP_CHUNKSIZE), 9000);
}

TEST_F(Properties, ChunkSizeAndCeiling) {
  for (const CS_INT property : {MM_PROP_CHUNKSIZE, MM_PROP_MAXSIZE}) {
    EXPECT_EQ(get_integer(pool, property), property == MM_PROP_CHUNKSIZE ? 4120 : -9999);
    EXPECT_EQ(set_integer(pool, property, 1), CS_SUCCEED);
    EXPECT_EQ(get_integer(pool, property), 1);
    EXPECT_ASSERTION(prop_unit, CS_FAIL, set_integer(pool, property, 0));
    EXPECT_ASSERTION(prop_unit, CS_FAIL, set_integer(pool, property, -9999));
    EXPECT_EQ(get_integer(pool, property), 1);
  }
}

TEST_F(Properties, BreakFunctions) {
  MM_SBREAK_FUNC sbreak = nullptr;
  MM_UNSBREAK_FUNC unsbreak = nullptr;
  EXPECT_EQ(get(MM_PROP_SBREAK, &sbreak), CS_SUCCEED);
  EXPECT_EQ(sbreak, &Source::sbreak);
  EXPECT_EQ(outlen, 4);
  EXPECT_EQ(get(MM_PROP_UNSBREAK, &unsbreak), CS_SUCCEED);
  EXPECT_EQ(unsbreak, &Source::unsbreak);
  EXPECT_ASSERTION(prop_unit, CS_FAIL, set_pointer(pool, MM_PROP_SBREAK, MM_SBREAK_FUNC{}));
  EXPECT_ASSERTION(prop_unit, CS_FAIL, set_pointer(pool, MM_PROP_UNSBREAK, MM_UNSBREAK_FUNC{}));
  EXPECT_EQ(pool.head()->mph_sbreak, &Source::sbreak);
}

// Deliberate: these two can be set and not read back. The get succeeds, and the caller's buffer
// stays as it was.
TEST_F(Properties, ParametersCannotBeReadBack) {
  for (const CS_INT property : {MM_PROP_PARAM, MM_PROP_LOCKARG}) {
    void *value = &outlen;
    EXPECT_EQ(get(property, &value), CS_SUCCEED);
    EXPECT_EQ(outlen, 4);
    EXPECT_EQ(value, &outlen);
    EXPECT_EQ(get(property, nullptr), CS_SUCCEED);
  }
  EXPECT_EQ(set_pointer(pool, MM_PROP_LOCKARG, &outlen), CS_SUCCEED);
  EXPECT_EQ(pool.head()->mph_lockarg, &outlen);
  EXPECT_EQ(set_pointer(pool, MM_PROP_LOCKARG, static_cast<void *>(nullptr)), CS_SUCCEED);
  EXPECT_EQ(pool.head()->mph_lockarg, nullptr);
}

TEST_F(Properties, AddHeap) {
  const auto add = [&](CS_INT length) {
    return comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_ADDHEAP, bytes, length, nullptr);
  };
  EXPECT_ASSERTION(heap_unit, CS_FAIL, add(8));
  EXPECT_ASSERTION(heap_unit, CS_FAIL, add(-1));
  EXPECT_EQ(pool.head()->mph_totalsize, 0);
  EXPECT_EQ(add(9), CS_SUCCEED);
  EXPECT_EQ(pool.head()->mph_totalsize, 9);
  EXPECT_EQ(pool.head()->mph_heap, nullptr);
  EXPECT_EQ(add(600), CS_SUCCEED);
  EXPECT_EQ(pool.head()->mph_totalsize, 609);
  EXPECT_EQ(pool.head()->mph_heap->status, 2);
  void *buffer = nullptr;
  EXPECT_ASSERTION(prop_unit, MM_BAD_PROPERTY, get(MM_PROP_ADDHEAP, &buffer));
  EXPECT_EQ(outlen, -1);
  EXPECT_NULL_POINTER_CHECK(
      heap_unit, CS_FAIL,
      comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_ADDHEAP, nullptr, 100, nullptr));
}

TEST_F(Properties, OverheadNeedsNoPool) {
  CS_INT value = 0, length = 0;
  EXPECT_EQ(comn_mmproperty(nullptr, MM_ACTION_GET, MM_PROP_OVERHEAD, &value, 0, &length),
            CS_SUCCEED);
  EXPECT_EQ(value, static_cast<CS_INT>(overhead));
  if (ilp32) {
    EXPECT_EQ(value, 156);
  }
  EXPECT_EQ(length, 4);
  EXPECT_EQ(comn_mmproperty(nullptr, MM_ACTION_SET, MM_PROP_OVERHEAD, &value, 0, nullptr), CS_FAIL);
  EXPECT_ASSERTION(prop_unit, MM_BAD_PROPERTY,
                   comn_mmproperty(nullptr, MM_ACTION_CLEAR, MM_PROP_OVERHEAD, &value, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(
      prop_unit, CS_FAIL,
      comn_mmproperty(nullptr, MM_ACTION_GET, MM_PROP_MAXSIZE, &value, 0, nullptr));
}

TEST_F(Properties, NullBuffers) {
  for (const CS_INT property :
       {MM_PROP_POOLTYPE, MM_PROP_SBREAK, MM_PROP_UNSBREAK, MM_PROP_LOCK, MM_PROP_UNLOCK,
        MM_PROP_CHUNKSIZE, MM_PROP_MAXSIZE, MM_PROP_SUBPOOL, MM_PROP_BLOCKSIZE}) {
    EXPECT_NULL_POINTER_CHECK(prop_unit, CS_FAIL, get(property, nullptr));
    EXPECT_EQ(outlen, -1);
  }
  for (const CS_INT property :
       {MM_PROP_POOLTYPE, MM_PROP_CHUNKSIZE, MM_PROP_MAXSIZE, MM_PROP_BLOCKSIZE}) {
    EXPECT_NULL_POINTER_CHECK(prop_unit, CS_FAIL,
                              comn_mmproperty(pool, MM_ACTION_SET, property, nullptr, 0, nullptr));
  }
}

// Deliberate: an unsuccessful search leaves the slot null, and the making of a sub-pool insists on
// a slot that is not. So a request for a new one always ends in the report.
TEST_F(Properties, SubpoolIsFoundAndNeverMade) {
  MM_HANDLE *sub = pool;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, get(MM_PROP_SUBPOOL, &sub, 7));
  EXPECT_EQ(sub, nullptr);
  EXPECT_EQ(outlen, -1);
  EXPECT_EQ(pool->mmh_child, nullptr);

  MM_HANDLE *made[3];
  for (CS_INT i = 0; i < 3; ++i) {
    made[i] = pool;
    ASSERT_EQ(com___subpool(pool, 10 + i, &made[i]), CS_SUCCEED);
  }
  for (CS_INT i = 0; i < 3; ++i) {
    EXPECT_EQ(get(MM_PROP_SUBPOOL, &sub, 10 + i), CS_SUCCEED);
    EXPECT_EQ(sub, made[i]);
    EXPECT_EQ(outlen, 4);
  }
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, get(MM_PROP_SUBPOOL, &sub, 13));
  EXPECT_EQ(comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_SUBPOOL, &sub, 10, nullptr), CS_FAIL);
}

TEST_F(Properties, ClearIsForTheLockAlone) {
  for (CS_INT property = MM_PROP_POOLTYPE; property <= MM_PROP_BLOCKSIZE; ++property) {
    SCOPED_TRACE(property);
    if (property == MM_PROP_LOCK || property == MM_PROP_LOCKARG || property == MM_PROP_UNLOCK) {
      EXPECT_EQ(clear(property), CS_SUCCEED);
    } else {
      EXPECT_ASSERTION(prop_unit, MM_BAD_PROPERTY, clear(property));
    }
    EXPECT_EQ(outlen, -1);
  }
}

class Locking : public Properties {
protected:
  Locking() {
    locks = unlocks = 0;
    lock_result = unlock_result = CS_SUCCEED;
  }
  ~Locking() override { lock_result = unlock_result = CS_SUCCEED; }
  void install() {
    ASSERT_EQ(set_pointer(pool, MM_PROP_LOCKARG, &outlen), CS_SUCCEED);
    ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, &count_unlock), CS_SUCCEED);
    ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, &count_lock), CS_SUCCEED);
  }
};

// Setting the lock function came in without a lock and so does not unlock.
TEST_F(Locking, SettingTheLockLastTakesNothing) {
  install();
  EXPECT_EQ(locks, 0);
  EXPECT_EQ(unlocks, 0);
  pool.allocate(5);
  EXPECT_EQ(locks, 1);
  EXPECT_EQ(unlocks, 1);
  EXPECT_EQ(lock_argument, &outlen);
}

// The memory is the caller's by then: it is cleared after the unlock.
TEST_F(Locking, ClearingComesAfterTheUnlock) {
  struct Watch {
    const char *last;
    char seen;
  };
  constexpr CS_UINT size = 100;
  auto *const block = static_cast<char *>(pool.allocate(size));
  std::memset(block, 'x', size);
  ASSERT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
  Watch watch = {block + size - 1, '?'};
  const MM_UNLOCK_FUNC look = [](MM_HANDLE *, CS_VOID *argument) -> CS_RETCODE {
    auto *const at = static_cast<Watch *>(argument);
    at->seen = *at->last;
    return CS_SUCCEED;
  };
  ASSERT_EQ(set_pointer(pool, MM_PROP_LOCKARG, &watch), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, look), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, &count_lock), CS_SUCCEED);
  ASSERT_EQ(pool.allocate(size), block);
  EXPECT_EQ(watch.seen, 'x');
  EXPECT_EQ(block[size - 1], 0);
  // The drop unlocks as well, when neither the block nor the watch is there any more.
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, &count_unlock), CS_SUCCEED);
}

// The other order: the call that makes the pair complete ends with an unlock.
TEST_F(Locking, SettingTheUnlockLastUnlocks) {
  ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, &count_lock), CS_SUCCEED);
  pool.allocate(5);
  EXPECT_EQ(locks, 0);
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, &count_unlock), CS_SUCCEED);
  EXPECT_EQ(locks, 0);
  EXPECT_EQ(unlocks, 1);
}

// The functions of the lock can be read back, and null is not one.
TEST_F(Locking, LockFunctionsAreReadAndNeverNull) {
  MM_LOCK_FUNC function = &count_lock;
  for (const CS_INT property : {MM_PROP_LOCK, MM_PROP_UNLOCK}) {
    EXPECT_EQ(get(property, &function), CS_SUCCEED);
    EXPECT_EQ(function, nullptr);
    EXPECT_EQ(outlen, 4);
    EXPECT_ASSERTION(prop_unit, CS_FAIL, set_pointer(pool, property, MM_LOCK_FUNC{}));
    EXPECT_EQ(pool.head()->mph_lock, nullptr);
    EXPECT_EQ(pool.head()->mph_unlock, nullptr);
  }
  install();
  EXPECT_EQ(get(MM_PROP_LOCK, &function), CS_SUCCEED);
  EXPECT_EQ(function, &count_lock);
  EXPECT_EQ(get(MM_PROP_UNLOCK, &function), CS_SUCCEED);
  EXPECT_EQ(function, &count_unlock);
  for (const CS_INT property : {MM_PROP_LOCK, MM_PROP_UNLOCK}) {
    EXPECT_ASSERTION(prop_unit, CS_FAIL, set_pointer(pool, property, MM_LOCK_FUNC{}));
    EXPECT_EQ(pool.head()->mph_lock, &count_lock);
    EXPECT_EQ(pool.head()->mph_unlock, &count_unlock);
  }
  EXPECT_EQ(set_pointer(pool, MM_PROP_LOCK, &count_unlock), CS_FAIL);
  EXPECT_EQ(pool.head()->mph_lock, &count_lock);
}

// Whatever a call comes to, it takes the lock once and lets it go once.
TEST_F(Locking, EveryPathOfAPropertyReleases) {
  install();
  CS_VOID *value = nullptr, *block = nullptr;
  MM_HANDLE *sub = pool;
  ASSERT_EQ(com___subpool(pool, 3, &sub), CS_SUCCEED);
  const auto calls = [&](CS_RETCODE result, int signals, auto call) {
    locks = unlocks = 0;
    const auto report = catch_check([&] { EXPECT_EQ(call(), result); });
    EXPECT_EQ(report.signals, signals);
    EXPECT_EQ(locks, 1);
    EXPECT_EQ(unlocks, 1);
  };
  const auto gets = [&](CS_RETCODE result, int signals, CS_INT property, CS_VOID *to, CS_INT tag) {
    SCOPED_TRACE(testing::Message() << "get " << property);
    calls(result, signals, [&] { return get(property, to, tag); });
  };
  const auto sets = [&](CS_RETCODE result, int signals, CS_INT property, CS_VOID *from) {
    SCOPED_TRACE(testing::Message() << "set " << property);
    calls(result, signals,
          [&] { return comn_mmproperty(pool, MM_ACTION_SET, property, from, 0, nullptr); });
  };
  for (CS_INT property = MM_PROP_POOLTYPE; property <= MM_PROP_BLOCKSIZE; ++property) {
    if (property == MM_PROP_OVERHEAD)
      continue;
    const bool is_there = property != MM_PROP_ADDHEAP;
    const bool is_delivered = is_there && property != MM_PROP_PARAM && property != MM_PROP_LOCKARG;
    gets(is_there ? CS_SUCCEED : MM_BAD_PROPERTY, is_there ? 0 : 1, property, &value, 3);
    if (is_delivered)
      gets(CS_FAIL, 1, property, nullptr, 3);
  }
  gets(CS_FAIL, 1, MM_PROP_SUBPOOL, &value, 4);

  CS_INT one = 1, none = 0, type = MM_POOL_BUDDY;
  for (const CS_INT property : {MM_PROP_CHUNKSIZE, MM_PROP_MAXSIZE, MM_PROP_BLOCKSIZE}) {
    sets(CS_FAIL, 1, property, &none);
    sets(CS_FAIL, 1, property, nullptr);
  }
  sets(CS_SUCCEED, 0, MM_PROP_CHUNKSIZE, &one);
  sets(CS_SUCCEED, 0, MM_PROP_BLOCKSIZE, &one);
  sets(CS_SUCCEED, 0, MM_PROP_POOLTYPE, &type);
  sets(MM_BAD_PROPERTY, 1, MM_PROP_POOLTYPE, &none);
  sets(CS_FAIL, 1, MM_PROP_POOLTYPE, nullptr);
  for (const CS_INT property : {MM_PROP_SBREAK, MM_PROP_UNSBREAK, MM_PROP_LOCK, MM_PROP_UNLOCK})
    sets(CS_FAIL, 1, property, nullptr);
  sets(CS_FAIL, 0, MM_PROP_LOCK, reinterpret_cast<CS_VOID *>(&count_lock));
  sets(CS_SUCCEED, 0, MM_PROP_UNLOCK, reinterpret_cast<CS_VOID *>(&count_unlock));
  sets(CS_SUCCEED, 0, MM_PROP_LOCKARG, &outlen);
  sets(CS_SUCCEED, 0, MM_PROP_PARAM, &source);
  sets(CS_FAIL, 1, MM_PROP_ADDHEAP, bytes);
  sets(CS_FAIL, 0, MM_PROP_SUBPOOL, &value);
  calls(MM_BAD_PROPERTY, 1, [&] { return clear(MM_PROP_MAXSIZE); });

  calls(CS_MEM_ERROR, 0, [&] { return comn_mmalloc(pool, 0xFFFFFFFFU, &block); });
  calls(CS_SUCCEED, 0, [&] { return comn_mmalloc(pool, 8, &block); });
  sets(CS_FAIL, 0, MM_PROP_BLOCKSIZE, &one);
  sets(CS_FAIL, 0, MM_PROP_POOLTYPE, &type);
  calls(CS_SUCCEED, 0, [&] { return comn_mmrealloc(pool, 100, &block); });
  calls(CS_FAIL, 1, [&] { return comn_mmrealloc(pool, 100, &value); });
  calls(CS_FAIL, 1, [&] { return comn_mmfree(pool, &block); });
  calls(CS_SUCCEED, 0, [&] { return comn_mmfree(pool, block); });
}

// The drop lets the lock go on each of its ways; a sub-pool, which is gone by then, through its
// parent.
TEST_F(Locking, EveryWayOfTheDropReleases) {
  static std::vector<MM_HANDLE *> lockers, unlockers;
  lockers.clear();
  unlockers.clear();
  const MM_LOCK_FUNC note_lock = [](MM_HANDLE *mmh, CS_VOID *) -> CS_RETCODE {
    lockers.push_back(mmh);
    return CS_SUCCEED;
  };
  const MM_UNLOCK_FUNC note_unlock = [](MM_HANDLE *mmh, CS_VOID *) -> CS_RETCODE {
    unlockers.push_back(mmh);
    return CS_SUCCEED;
  };
  MM_HANDLE *const root = pool;
  MM_HANDLE *sub = root;
  ASSERT_EQ(com___subpool(root, 1, &sub), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, note_unlock), CS_SUCCEED);
  ASSERT_EQ(set_pointer(pool, MM_PROP_LOCK, note_lock), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(root, MM_DROP_NORMAL), CS_BUSY);
  EXPECT_EQ(lockers, (std::vector{root}));
  EXPECT_EQ(unlockers, (std::vector{root}));
  EXPECT_EQ(comn_mmdrop(sub, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(lockers, (std::vector{root, sub}));
  EXPECT_EQ(unlockers, (std::vector{root, root}));
  EXPECT_EQ(comn_mmdrop(root, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(lockers, (std::vector{root, sub, root}));
  EXPECT_EQ(unlockers, (std::vector{root, root, root}));
  pool.forget();
}

// Each of the three clears all of them, after one call of the unlock function with the argument
// still in place; its code is the result.
TEST_F(Locking, Clearing) {
  for (const CS_INT property : {MM_PROP_LOCK, MM_PROP_LOCKARG, MM_PROP_UNLOCK}) {
    install();
    locks = unlocks = 0;
    lock_argument = nullptr;
    unlock_result = -33;
    EXPECT_EQ(clear(property), -33);
    unlock_result = CS_SUCCEED;
    EXPECT_EQ(locks, 1);
    EXPECT_EQ(unlocks, 1);
    EXPECT_EQ(lock_argument, &outlen);
    EXPECT_EQ(pool.head()->mph_lock, nullptr);
    EXPECT_EQ(pool.head()->mph_unlock, nullptr);
    EXPECT_EQ(pool.head()->mph_lockarg, nullptr);
  }
  // With the unlock function alone nothing was taken, and it is called all the same.
  ASSERT_EQ(set_pointer(pool, MM_PROP_UNLOCK, &count_unlock), CS_SUCCEED);
  locks = unlocks = 0;
  EXPECT_EQ(clear(MM_PROP_LOCK), CS_SUCCEED);
  EXPECT_EQ(locks, 0);
  EXPECT_EQ(unlocks, 1);
}

// While a pool is on its way out its entry points take no lock, and still release.
TEST_F(Locking, Dropping) {
  install();
  pool.head()->mph_status |= MM_ST_DROPPING;
  pool.allocate(8);
  EXPECT_EQ(locks, 0);
  EXPECT_EQ(unlocks, 1);
  pool.head()->mph_status &= ~MM_ST_DROPPING;
}

// ---- sub-pools and the drop ----

class Subpools : public Properties {
protected:
  MM_HANDLE *make(MM_HANDLE *parent, CS_INT tag) {
    MM_HANDLE *sub = parent;
    EXPECT_EQ(com___subpool(parent, tag, &sub), CS_SUCCEED);
    return sub;
  }
};

TEST_F(Subpools, InheritTypeAndBlockSizeAlone) {
  ASSERT_EQ(set_integer(pool, MM_PROP_POOLTYPE, MM_POOL_UNIFORM), CS_SUCCEED);
  ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, 1000), CS_SUCCEED);
  MM_HANDLE *const first = make(pool, 1);
  MM_HANDLE *const second = make(pool, 2);
  EXPECT_EQ(pool->mmh_child, second);
  EXPECT_EQ(second->mmh_sibling, first);
  EXPECT_EQ(first->mmh_sibling, nullptr);
  EXPECT_EQ(first->mmh_parent, static_cast<MM_HANDLE *>(pool));
  EXPECT_EQ(first->mmh_head, pool.head());
  EXPECT_EQ(first->mmh_type, MM_POOL_UNIFORM);
  EXPECT_EQ(first->mmh_blocksize, 1000);
  EXPECT_EQ(first->mmh_status, MM_ST_OWNED);
  EXPECT_EQ(first->mmh_tagid, 1);
  EXPECT_EQ(first->mmh_blocks, nullptr);
  EXPECT_EQ(first->mmh_child, nullptr);
  // Each has its own state.
  void *block = nullptr;
  EXPECT_EQ(comn_mmalloc(first, 10, &block), CS_SUCCEED);
  EXPECT_EQ(comn_mmalloc(second, 20, &block), CS_SUCCEED);
  EXPECT_EQ(pool->mmh_status & MM_ST_READY, 0);
  EXPECT_EQ(set_integer(second, MM_PROP_POOLTYPE, MM_POOL_BUDDY), CS_FAIL);
  EXPECT_EQ(set_integer(pool, MM_PROP_POOLTYPE, MM_POOL_BUDDY), CS_SUCCEED);
}

TEST_F(Subpools, NormalDropOfAPoolWithChildrenIsBusy) {
  MM_HANDLE *const sub = make(pool, 1);
  MM_HANDLE *const inner = make(sub, 2);
  void *block = nullptr;
  ASSERT_EQ(comn_mmalloc(inner, 10, &block), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(pool, MM_DROP_NORMAL), CS_BUSY);
  EXPECT_EQ(comn_mmdrop(sub, MM_DROP_NORMAL), CS_BUSY);
  std::memset(block, 1, 10);
  EXPECT_EQ(comn_mmdrop(inner, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(sub->mmh_child, nullptr);
  EXPECT_EQ(comn_mmdrop(sub, MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(pool->mmh_child, nullptr);
  // All of it went back to the heap, and with it the regions.
  EXPECT_EQ(source.live(), 0U);
}

TEST_F(Subpools, DropOfAMiddleSibling) {
  MM_HANDLE *subs[3];
  for (CS_INT i = 0; i < 3; ++i) {
    subs[i] = make(pool, i);
    void *block = nullptr;
    for (int n = 0; n < 20; ++n)
      ASSERT_EQ(comn_mmalloc(subs[i], 1000, &block), CS_SUCCEED);
  }
  EXPECT_EQ(comn_mmdrop(subs[1], MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(pool->mmh_child, subs[2]);
  EXPECT_EQ(subs[2]->mmh_sibling, subs[0]);
  check_heap(pool);
  EXPECT_EQ(comn_mmdrop(subs[2], MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(subs[0], MM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(source.live(), 0U);
}

TEST_F(Subpools, BrokenTree) {
  MM_HANDLE *const sub = make(pool, 1);
  MM_HANDLE *const child = pool->mmh_child;
  pool->mmh_child = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmdrop(sub, MM_DROP_NORMAL));
  pool->mmh_child = child;
  MM_HANDLE *const other = make(pool, 2);
  pool->mmh_child = other;
  other->mmh_sibling = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmdrop(sub, MM_DROP_NORMAL));
  other->mmh_sibling = sub;
}

// A forced drop of a sub-pool removes the root as well.
TEST_F(Subpools, ForcedDropRemovesTheWholePool) {
  MM_HANDLE *const sub = make(pool, 1);
  MM_HANDLE *const inner = make(sub, 2);
  pool.allocate(10);
  void *block = nullptr;
  ASSERT_EQ(comn_mmalloc(inner, 5000, &block), CS_SUCCEED);
  locks = unlocks = 0;
  EXPECT_EQ(comn_mmdrop(inner, MM_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(source.live(), 0U);
  EXPECT_NE(pool.head()->mph_status & MM_ST_DROPPING, 0);
  pool.forget();
}

TEST_F(ContextPool, ForcedDropThroughASubpoolReleasesTheRootsRecords) {
  context.ctxthread = &thread;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  MM_HANDLE *sub = mmh;
  ASSERT_EQ(com___subpool(mmh, 3, &sub), CS_SUCCEED);
  EXPECT_EQ(comn_mmdrop(sub, MM_DROP_FORCE), CS_SUCCEED);
  EXPECT_TRUE(the_world.live.empty());
  EXPECT_EQ(the_world.held, 0);
}

TEST_F(Subpools, FailedAllocationOfTheHandle) {
  source.fail(1);
  MM_HANDLE *sub = pool;
  EXPECT_EQ(com___subpool(pool, 1, &sub), CS_MEM_ERROR);
  EXPECT_EQ(sub, static_cast<MM_HANDLE *>(pool));
  EXPECT_EQ(pool->mmh_child, nullptr);
  EXPECT_EQ(com___subpool(pool, 1, &sub), CS_SUCCEED);
}

TEST_F(Properties, DropOptionsAndHandles) {
  for (const CS_INT option : {0, 1, 299, 301, -99998}) {
    EXPECT_ASSERTION(unit, CS_FAIL, comn_mmdrop(pool, option));
  }
  const CS_INT status = pool->mmh_status;
  pool->mmh_status = MM_ST_READY;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmdrop(pool, MM_DROP_FORCE));
  pool->mmh_status = status;
}

// Regions stay with a pool that has no way to give them back.
TEST_F(Properties, DropWithoutAWayBack) {
  pool.allocate(5000);
  pool.head()->mph_unsbreak = nullptr;
  EXPECT_EQ(source.live(), 1U);
  MmHeap *const heap = pool.head()->mph_heap;
  EXPECT_EQ(comn_mmdrop(pool, MM_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(source.live(), 1U);
  Source::unsbreak(nullptr, &source, heap);
  pool.forget();
}

TEST_F(Properties, DiagnosisIsNotThere) {
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmdiag(pool));
}

TEST_F(Properties, NullHandlesAndOutputs) {
  void *block = nullptr;
  MM_HANDLE *none = nullptr;
  CS_CONTEXT context{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmalloc(nullptr, 1, &block));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmalloc(pool, 1, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmrealloc(nullptr, 1, &block));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmrealloc(pool, 1, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmrealloc(pool, 1, &block));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmfree(nullptr, &block));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmfree(pool, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmdrop(nullptr, MM_DROP_FORCE));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mminit(nullptr, &none));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mminit(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_mmmanage(&block, 4, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com___subpool(pool, 1, nullptr));
}

TEST_F(Properties, FreeBeforeTheFirstAllocation) {
  ASSERT_EQ(comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_ADDHEAP, bytes, 200, nullptr), CS_SUCCEED);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(pool, bytes + 100));
  // A failed allocation is none.
  source.fail(1);
  pool.allocate(5000, CS_MEM_ERROR);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(pool, bytes + 100));
}

TEST_F(Properties, PointerOutsideThePool) {
  int outside = 0;
  void *block = pool.allocate(20);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(pool, &outside));
  MmHeap *const heap = pool.head()->mph_heap;
  auto *const begin = reinterpret_cast<char *>(heap);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(pool, begin + heap->size));
  void *wrong = &outside;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_mmrealloc(pool, 100, &wrong));
  EXPECT_EQ(wrong, &outside);
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);
}

// Deliberate: the first bytes of a region, its record and one word more, are no block's, and a
// pointer to them is refused before anything behind it is looked at.
TEST_F(Properties, PointerAmongTheFirstBytesOfARegion) {
  void *const block = pool.allocate(20);
  auto *const begin = reinterpret_cast<char *>(pool.head()->mph_heap);
  const CS_UINT first_bytes = region_record + W;
  if (ilp32) {
    EXPECT_EQ(first_bytes, 24U);
  }
  for (CS_UINT offset = 0; offset < first_bytes; ++offset) {
    EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(pool, begin + offset));
    void *wrong = begin + offset;
    EXPECT_ASSERTION(unit, CS_FAIL, comn_mmrealloc(pool, 100, &wrong));
  }
  // What comes next is left to the strategy, which here sees a header that says free.
  auto *const chain = reinterpret_cast<CS_UINT *>(begin + region_record);
  const CS_UINT saved = *chain;
  *chain = MM_BUDDY_FREE;
  EXPECT_ASSERTION("commmgr_buddy.cpp", CS_FAIL, comn_mmfree(pool, begin + first_bytes));
  *chain = saved;
  EXPECT_EQ(comn_mmfree(pool, block), CS_SUCCEED);

  Pool uniform(source, MM_POOL_UNIFORM);
  auto *const node = static_cast<char *>(uniform.allocate(20));
  auto *const region = reinterpret_cast<char *>(uniform.head()->mph_heap);
  for (CS_UINT offset = 0; offset < first_bytes; ++offset)
    EXPECT_ASSERTION(unit, CS_FAIL, comn_mmfree(uniform, region + offset));
  EXPECT_EQ(node, region + first_bytes + W);
  EXPECT_EQ(comn_mmfree(uniform, node), CS_SUCCEED);
}

// ---- the trace ----

using TracedPools = Properties;

TEST_F(TracedPools, EveryExitOfTheEntryPoints) {
  const std::string succeed = "(CS_SUCCEED) file commmgr.cpp", fail = "(CS_FAIL) file commmgr.cpp",
                    mem_error = "(CS_MEM_ERROR) file commmgr.cpp",
                    busy = "(CS_BUSY) file commmgr.cpp";
  CS_VOID *block = nullptr;
  for (const CS_INT type : {MM_POOL_BUDDY, MM_POOL_UNIFORM, MM_POOL_ALLOCONLY}) {
    SCOPED_TRACE(type);
    const bool alloc_only = type == MM_POOL_ALLOCONLY;
    Pool own(source, type);
    const auto allocate = [&] { return comn_mmalloc(own, 8, &block); };
    const auto release = [&] { return comn_mmfree(own, block); };
    EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmfree(own, &block); }), fail);
    source.fail(1);
    EXPECT_EQ(exit_of(CS_MEM_ERROR, allocate), mem_error);
    source.fail(0);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(exit_of(CS_SUCCEED, allocate), succeed);
    EXPECT_EQ(exit_of(alloc_only ? CS_FAIL : CS_SUCCEED, release), alloc_only ? fail : succeed);
    EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmfree(own, &block); }), fail);
    block = own.allocate(8);
    const bool can_resize = type == MM_POOL_BUDDY;
    EXPECT_EQ(
        exit_of(can_resize ? CS_SUCCEED : CS_FAIL, [&] { return comn_mmrealloc(own, 90, &block); }),
        can_resize ? succeed : fail);
  }
  for (const CS_RETCODE locked : {CS_FAIL, CS_BUSY}) {
    Pool own(source);
    ASSERT_EQ(set_pointer(own, MM_PROP_UNLOCK, &count_unlock), CS_SUCCEED);
    ASSERT_EQ(set_pointer(own, MM_PROP_LOCK, &count_lock), CS_SUCCEED);
    lock_result = locked;
    const std::string &exit = locked == CS_FAIL ? fail : busy;
    EXPECT_EQ(exit_of(locked, [&] { return comn_mmalloc(own, 8, &block); }), exit);
    EXPECT_EQ(exit_of(locked, [&] { return comn_mmrealloc(own, 8, &block); }), exit);
    EXPECT_EQ(exit_of(locked, [&] { return comn_mmdrop(own, MM_DROP_FORCE); }), exit);
    EXPECT_EQ(
        exit_of(locked,
                [&] {
                  CS_INT value = 0;
                  return comn_mmproperty(own, MM_ACTION_GET, MM_PROP_MAXSIZE, &value, 0, nullptr);
                }),
        (locked == CS_FAIL ? "(CS_FAIL)" : "(CS_BUSY)") + std::string(" file commmgr_prop.cpp"));
    lock_result = CS_SUCCEED;
  }
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmalloc(nullptr, 8, &block); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmalloc(pool, 8, nullptr); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmrealloc(nullptr, 8, &block); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmrealloc(pool, 8, nullptr); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmfree(nullptr, &block); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmfree(pool, nullptr); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmdiag(pool); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmdrop(nullptr, MM_DROP_FORCE); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmdrop(pool, 0); }), fail);
  MM_HANDLE *sub = pool, *made = nullptr;
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return com___subpool(pool, 1, &sub); }), succeed);
  EXPECT_EQ(exit_of(CS_BUSY, [&] { return comn_mmdrop(pool, MM_DROP_NORMAL); }), busy);
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return comn_mmdrop(sub, MM_DROP_NORMAL); }), succeed);
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return comn_mmdrop(pool, MM_DROP_NORMAL); }), succeed);
  pool.forget();

  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mminit(nullptr, &made); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmmanage(bytes, 0, nullptr); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmmanage(bytes, 8, &made); }), fail);
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return comn_mmmanage(bytes, overhead + 8, &made); }), fail);
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return comn_mmmanage(bytes, sizeof bytes, &made); }),
            succeed);
}

TEST_F(TracedPools, EveryExitOfAProperty) {
  CS_INT value = 0;
  const auto property = [&](CS_INT action, CS_INT which) {
    return [=, this, &value] { return comn_mmproperty(pool, action, which, &value, 0, nullptr); };
  };
  const std::string file = " file commmgr_prop.cpp";
  EXPECT_EQ(exit_of(CS_SUCCEED, property(MM_ACTION_GET, MM_PROP_MAXSIZE)), "(CS_SUCCEED)" + file);
  EXPECT_EQ(exit_of(CS_SUCCEED, property(MM_ACTION_GET, MM_PROP_OVERHEAD)), "(CS_SUCCEED)" + file);
  EXPECT_EQ(exit_of(CS_FAIL, property(MM_ACTION_SET, MM_PROP_OVERHEAD)), "(CS_FAIL)" + file);
  EXPECT_EQ(exit_of(CS_FAIL, property(0, MM_PROP_MAXSIZE)), "(CS_FAIL)" + file);
  EXPECT_EQ(exit_of(MM_BAD_PROPERTY, property(MM_ACTION_GET, 0)), "(-214)" + file);
  EXPECT_EQ(exit_of(MM_BAD_PROPERTY, property(MM_ACTION_GET, MM_PROP_ADDHEAP)), "(-214)" + file);
  EXPECT_EQ(exit_of(CS_FAIL,
                    [&] {
                      return comn_mmproperty(nullptr, MM_ACTION_GET, MM_PROP_MAXSIZE, &value, 0,
                                             nullptr);
                    }),
            "(CS_FAIL)" + file);
}

TEST_F(ContextPool, EveryExitOfTheMakingIsTraced) {
  const auto make = [&] {
    mmh = nullptr;
    return comn_mminit(&context, &mmh);
  };
  context.ctxthread = &thread;
  EXPECT_EQ(exit_of(CS_SUCCEED, make), "(CS_SUCCEED) file commmgr.cpp");
  EXPECT_EQ(comn_mmdrop(mmh, MM_DROP_NORMAL), CS_SUCCEED);
  the_world.create_result = -77;
  EXPECT_EQ(exit_of(-77, make), "(-77) file commmgr.cpp");
  for (const int nth : {1, 2}) {
    the_world.allocations = 0;
    the_world.fail_at = nth;
    EXPECT_EQ(exit_of(CS_FAIL, make), "(CS_FAIL) file commmgr.cpp");
  }
}

// Deliberate: the success of the alloc-only strategy is the one return that leaves no line.
TEST_F(ContextPool, ADropIsTracedOnce) {
  const auto own_lines = [](MM_HANDLE *handle) {
    const std::string text =
        trace_of(CS_SUCCEED, [&] { return comn_mmdrop(handle, MM_DROP_NORMAL); });
    int count = 0;
    for (size_t at = 0; (at = text.find(" file commmgr.cpp,", at)) != std::string::npos; ++at)
      ++count;
    return count;
  };
  mmh = nullptr;
  ASSERT_EQ(comn_mminit(&context, &mmh), CS_SUCCEED);
  MM_HANDLE *child = mmh; // the slot must not be empty
  ASSERT_EQ(com___subpool(mmh, 1, &child), CS_SUCCEED);
  EXPECT_EQ(own_lines(child), 1);
  EXPECT_EQ(own_lines(mmh), 1);
}

TEST_F(TracedPools, SuccessOfTheAllocOnlyStrategyLeavesNoLine) {
  const char *const file = "commmgr_alloconly.cpp";
  ASSERT_EQ(set_integer(pool, MM_PROP_POOLTYPE, MM_POOL_ALLOCONLY), CS_SUCCEED);
  CS_VOID *block = nullptr;
  const auto allocate = [&] { return com___alloconly_malloc(pool, 8, &block); };
  source.fail(1);
  EXPECT_NE(trace_of(CS_MEM_ERROR, allocate).find(file), std::string::npos);
  source.fail(0);
  const std::string first = trace_of(CS_SUCCEED, allocate); // takes a chunk from the heap
  EXPECT_NE(first.find("commmgr_heap.cpp"), std::string::npos);
  EXPECT_EQ(first.find(file), std::string::npos);
  pool->mmh_status |= MM_ST_READY;
  EXPECT_EQ(trace_of(CS_SUCCEED, allocate), "");
  EXPECT_NE(trace_of(CS_FAIL, [&] { return com___alloconly_malloc(pool, 8, nullptr); }).find(file),
            std::string::npos);
  // The entry point's own exit is traced as any other.
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return comn_mmalloc(pool, 8, &block); }),
            "(CS_SUCCEED) file commmgr.cpp");
}

} // namespace
