// Long random runs over the heap and each strategy against a model: contents, addresses, guards,
// and the soundness of the heap. The seed is printed with every failure; ZRVTEST_SEED repeats a
// run.
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "pool_source.h"
#include "test_scale.h"

using namespace zrvtest;

namespace {

class RandomPools : public testing::Test {
protected:
  CS_UINT upto(CS_UINT most) { return static_cast<CS_UINT>(random() % (most + 1)); }
  bool chance(CS_UINT one_in) { return random() % one_in == 0; }

  // Mostly small.
  CS_UINT size() {
    const CS_UINT limit = 1U << upto(13);
    return upto(limit);
  }

  const size_t steps = random_steps() / 3;
  const unsigned long long seed = random_seed();
  std::mt19937_64 random{seed};
};

// A live allocation and the pattern that fills it.
struct Live {
  unsigned char *at;
  CS_UINT size; // bytes that the pattern fills
  unsigned char pattern;
};

void fill(const Live &live) {
  for (CS_UINT i = 0; i < live.size; ++i)
    live.at[i] = static_cast<unsigned char>(live.pattern + i);
}

bool is_filled(const Live &live, CS_UINT size) {
  for (CS_UINT i = 0; i < size; ++i)
    if (live.at[i] != static_cast<unsigned char>(live.pattern + i))
      return false;
  return true;
}

bool is_cleared(const void *block, CS_UINT size) {
  const auto *const bytes = static_cast<const unsigned char *>(block);
  for (CS_UINT i = 0; i < size; ++i)
    if (bytes[i] != 0)
      return false;
  return true;
}

TEST_F(RandomPools, Buddy) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Source source;
  size_t step = 0;
  while (step < steps) {
    Pool pool(source);
    const CS_INT blocksizes[] = {4096, 1, 100, 5000, 65536, 1 << 21};
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, blocksizes[upto(5)]), CS_SUCCEED);
    if (chance(2)) {
      ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, static_cast<CS_INT>(1 + upto(100'000))),
                CS_SUCCEED);
    }
    const size_t most = 1 + upto(300);
    std::vector<Live> live;
    for (const size_t end = step + 1 + steps / 20; step < end && step < steps; ++step) {
      const CS_UINT what = upto(9);
      if (live.empty() || (what < 5 && live.size() < most)) {
        const CS_UINT wanted = size();
        const bool failing = chance(40);
        const size_t refused = source.refused;
        if (failing)
          source.fail(1);
        void *block = nullptr;
        const CS_RETCODE result = comn_mmalloc(pool, wanted, &block);
        source.fail(0);
        if (source.refused != refused) {
          ASSERT_EQ(result, CS_MEM_ERROR);
          continue;
        }
        ASSERT_EQ(result, CS_SUCCEED);
        ASSERT_EQ(reinterpret_cast<uintptr_t>(block) % W, 0U);
        ASSERT_TRUE(is_cleared(block, wanted));
        live.push_back(
            {static_cast<unsigned char *>(block), wanted, static_cast<unsigned char>(random())});
        fill(live.back());
        continue;
      }
      const size_t which = upto(static_cast<CS_UINT>(live.size() - 1));
      Live &chosen = live[which];
      ASSERT_TRUE(is_filled(chosen, chosen.size)) << "step " << step;
      if (what < 8) {
        ASSERT_EQ(comn_mmfree(pool, chosen.at), CS_SUCCEED);
        chosen = live.back();
        live.pop_back();
      } else {
        const CS_UINT wanted = size();
        void *block = chosen.at;
        const CS_RETCODE result = comn_mmrealloc(pool, wanted, &block);
        ASSERT_EQ(result, CS_SUCCEED);
        const Live before = chosen;
        chosen.at = static_cast<unsigned char *>(block);
        ASSERT_TRUE(is_filled(chosen, std::min(before.size, wanted)));
        // A size that the header's word was counted in for is not all the caller's.
        const CS_UINT header = header_of(block);
        const bool oversize = (header & MM_BUDDY_OVERSIZE) != 0;
        const CS_UINT order = (header & MM_BUDDY_TOPORDER) != 0 ? 16 : header & MM_BUDDY_ORDER;
        const CS_UINT room = oversize ? header & ~MM_BUDDY_OVERSIZE : ((4 * W) << order) - W;
        ASSERT_LE(wanted, room + (oversize ? 0 : W));
        chosen.size = std::min(wanted, room);
        fill(chosen);
      }
      if (step % 1000 == 0) {
        check_heap(pool);
        source.check_guards();
      }
    }
    for (const Live &one : live) {
      ASSERT_TRUE(is_filled(one, one.size));
      ASSERT_EQ(comn_mmfree(pool, one.at), CS_SUCCEED);
    }
    check_heap(pool);
  }
}

TEST_F(RandomPools, Uniform) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Source source;
  size_t step = 0;
  while (step < steps) {
    Pool pool(source, MM_POOL_UNIFORM);
    const CS_UINT node = upto(300);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, static_cast<CS_INT>(1 + upto(8192))),
              CS_SUCCEED);
    std::vector<Live> live;
    const size_t most = 1 + upto(400);
    for (const size_t end = step + 1 + steps / 20; step < end && step < steps; ++step) {
      if (live.empty() || (chance(2) && live.size() < most)) {
        if (chance(50))
          source.fail(1);
        const size_t refused = source.refused;
        void *block = nullptr;
        const CS_RETCODE result = comn_mmalloc(pool, node, &block);
        source.fail(0);
        if (source.refused != refused) {
          ASSERT_EQ(result, CS_MEM_ERROR);
          continue;
        }
        ASSERT_EQ(result, CS_SUCCEED);
        ASSERT_TRUE(is_cleared(block, node));
        live.push_back(
            {static_cast<unsigned char *>(block), node, static_cast<unsigned char>(random())});
        fill(live.back());
      } else {
        Live &chosen = live[upto(static_cast<CS_UINT>(live.size() - 1))];
        ASSERT_TRUE(is_filled(chosen, node));
        ASSERT_EQ(comn_mmfree(pool, chosen.at), CS_SUCCEED);
        chosen = live.back();
        live.pop_back();
      }
    }
    check_heap(pool);
    source.check_guards();
    for (const Live &one : live)
      ASSERT_TRUE(is_filled(one, node));
  }
}

TEST_F(RandomPools, AllocOnly) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  // The rule that the bound on older chunks must not change: the newest chunk with room serves.
  Source source;
  size_t step = 0;
  while (step < steps) {
    Pool pool(source, MM_POOL_ALLOCONLY);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, static_cast<CS_INT>(1 + upto(8192))),
              CS_SUCCEED);
    std::vector<Live> live;
    const CS_UINT largest = 1 + upto(500);
    for (const size_t end = step + 3000; step < end && step < steps; ++step) {
      const CS_UINT wanted = upto(largest);
      const CS_UINT rounded = (wanted + W - 1) / W * W;
      const unsigned char *expected = nullptr;
      if ((pool->mmh_status & MM_ST_READY) != 0)
        for (const MmHeap *chunk = pool->mmh_pool.a.free; chunk != nullptr && expected == nullptr;
             chunk = chunk->next)
          if (chunk->free->size >= rounded)
            expected = reinterpret_cast<unsigned char *>(chunk->free->link);
      if (chance(50))
        source.fail(1);
      const size_t refused = source.refused;
      void *block = nullptr;
      const CS_RETCODE result = comn_mmalloc(pool, wanted, &block);
      source.fail(0);
      if (source.refused != refused) {
        ASSERT_EQ(result, CS_MEM_ERROR);
        ASSERT_EQ(expected, nullptr);
        continue;
      }
      ASSERT_EQ(result, CS_SUCCEED);
      if (expected != nullptr) {
        ASSERT_EQ(block, expected);
      }
      ASSERT_TRUE(is_cleared(block, wanted));
      live.push_back(
          {static_cast<unsigned char *>(block), wanted, static_cast<unsigned char>(random())});
      fill(live.back());
    }
    for (const Live &one : live)
      ASSERT_TRUE(is_filled(one, one.size));
    check_heap(pool);
    source.check_guards();
  }
}

// The heap as a list of regions, newest first, each a list of allocated blocks in address order.
// Between two blocks lies one free block, unless the gap is a bare header, which belongs to the
// block in front of it.
class HeapModel {
public:
  struct Region {
    char *first; // header of the first block
    CS_UINT words;
    CS_UINT total;                     // whole length in bytes
    std::map<CS_UINT, CS_UINT> blocks; // word offset of the header, words with the header
  };

  void add(MmHeap *heap) {
    const auto total = static_cast<CS_UINT>(heap->size);
    regions.insert(regions.begin(), {reinterpret_cast<char *>(heap) + offsetof(MmHeap, buffer),
                                     total / W - static_cast<CS_UINT>(offsetof(MmHeap, buffer)) / W,
                                     total,
                                     {}});
  }

  // The payload that first fit gives; null when nothing fits.
  char *get(CS_UINT size) {
    const CS_UINT rounded = size == 0 ? W : (size + W - 1) / W * W;
    const CS_UINT need = rounded / W + 1;
    for (Region &region : regions) {
      if (region.total < rounded)
        continue;
      CS_UINT at = 0;
      for (auto next = region.blocks.begin();; ++next) {
        const CS_UINT limit = next == region.blocks.end() ? region.words : next->first;
        const CS_UINT gap = limit - at;
        if (gap >= need) {
          region.blocks[at] = gap == need + 1 ? gap : need;
          return region.first + at * W + W;
        }
        if (next == region.blocks.end())
          break;
        at = next->first + next->second;
      }
    }
    return nullptr;
  }

  void put(char *payload) {
    for (auto region = regions.begin(); region != regions.end(); ++region) {
      const auto offset = static_cast<uintptr_t>(payload - W - region->first) / W;
      if (payload < region->first || offset >= region->words)
        continue;
      region->blocks.erase(static_cast<CS_UINT>(offset));
      if (region->blocks.empty())
        regions.erase(region);
      return;
    }
  }

  std::vector<Region> regions;
};

TEST_F(RandomPools, HeapAddresses) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Source source;
  size_t step = 0;
  while (step < steps) {
    // Every other handle is one that remembers its searches.
    Pool pool(source, chance(2) ? MM_POOL_UNIFORM : MM_POOL_BUDDY);
    pool->mmh_status |= MM_ST_READY;
    HeapModel model;
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, static_cast<CS_INT>(1 + upto(3000))),
              CS_SUCCEED);
    const CS_UINT largest = 1 + upto(400);
    const size_t most = 1 + upto(60);
    const CS_UINT get_odds = 1 + upto(3);
    std::vector<char *> live;
    for (const size_t end = step + 4000; step < end && step < steps; ++step) {
      if (live.empty() || (!chance(1 + get_odds) && live.size() < most)) {
        const CS_UINT wanted = upto(largest);
        char *expected = model.get(wanted);
        void *payload = nullptr;
        const size_t breaks = source.asked.size();
        ASSERT_EQ(com___getheap(pool, wanted, &payload), CS_SUCCEED);
        ASSERT_EQ(source.asked.size() - breaks, expected == nullptr ? 1U : 0U);
        if (expected == nullptr) {
          model.add(pool.head()->mph_heap);
          expected = model.get(wanted);
        }
        ASSERT_EQ(payload, expected) << "step " << step;
        std::memset(payload, 0xFF, (wanted + W - 1) / W * W);
        live.push_back(expected);
      } else {
        char *&chosen = live[upto(static_cast<CS_UINT>(live.size() - 1))];
        ASSERT_EQ(com___putheap(pool, chosen), CS_SUCCEED);
        model.put(chosen);
        ASSERT_EQ(source.live(), model.regions.size());
        chosen = live.back();
        live.pop_back();
      }
      if (step % 64 == 0)
        check_heap(pool);
    }
    for (char *const payload : live)
      ASSERT_EQ(com___putheap(pool, payload), CS_SUCCEED);
    ASSERT_EQ(source.live(), 0U);
  }
}

// A root with sub-pools, all of any type, beside a model of the heap that they share: every block
// that one of them takes from the heap must lie where first fit puts it, whatever the root remembers
// of its searches.
class PoolTree {
public:
  PoolTree(Source &a_source, MM_HANDLE *root) : source(a_source) { members.push_back({root}); }

  size_t size() const { return members.size(); }

  void make_subpool(size_t which, CS_INT type, CS_INT blocksize) {
    MM_HANDLE *const parent = members[which].handle;
    const size_t breaks = source.asked.size();
    MM_HANDLE *sub = parent;
    ASSERT_EQ(com___subpool(parent, 1, &sub), CS_SUCCEED);
    expect_at(sub, sizeof(MM_HANDLE), source.asked.size() - breaks);
    ASSERT_EQ(set_integer(sub, MM_PROP_POOLTYPE, type), CS_SUCCEED);
    ASSERT_EQ(set_integer(sub, MM_PROP_BLOCKSIZE, blocksize), CS_SUCCEED);
    members.push_back({sub});
  }

  // A uniform pool is asked for the size that it had first.
  void allocate(size_t which, CS_UINT wanted, bool failing) {
    Member &member = members[which];
    MM_HANDLE *const pool = member.handle;
    if (pool->mmh_type == MM_POOL_UNIFORM && (pool->mmh_status & MM_ST_READY) != 0)
      wanted = static_cast<CS_UINT>(pool->mmh_pool.u.uniform_size);
    const MmBlock *const newest = pool->mmh_blocks;
    const size_t breaks = source.asked.size(), refused = source.refused;
    source.fail(failing ? 1 : 0);
    void *block = nullptr;
    const CS_RETCODE result = comn_mmalloc(pool, wanted, &block);
    source.fail(0);
    ASSERT_EQ(result, source.refused != refused ? CS_MEM_ERROR : CS_SUCCEED);
    if (result != CS_SUCCEED)
      return;
    std::memset(block, 0xFF, wanted);
    const bool oversize =
        pool->mmh_type == MM_POOL_BUDDY && (header_of(block) & MM_BUDDY_OVERSIZE) != 0;
    if (oversize)
      member.oversize.push_back(block);
    if (pool->mmh_blocks == newest) {
      ASSERT_EQ(source.asked.size(), breaks);
      return;
    }
    const auto chunk = static_cast<CS_UINT>(
        pool->mmh_type == MM_POOL_ALLOCONLY ? pool->mmh_pool.a.free->size : pool->mmh_blocksize);
    expect_at(pool->mmh_blocks, W + (oversize ? W + wanted : chunk), source.asked.size() - breaks);
  }

  // Gives the oldest large allocation of a buddy pool back.
  void release(size_t which) {
    Member &member = members[which];
    if (member.oversize.empty())
      return;
    char *const block = static_cast<char *>(member.oversize.front());
    member.oversize.erase(member.oversize.begin());
    ASSERT_EQ(comn_mmfree(member.handle, block), CS_SUCCEED);
    model.put(block - 2 * W);
    ASSERT_EQ(source.live(), model.regions.size());
  }

  void drop(size_t which) {
    MM_HANDLE *const pool = members[which].handle;
    if (which == 0 || pool->mmh_child != nullptr)
      return;
    std::vector<void *> payloads;
    for (MmBlock *block = pool->mmh_blocks; block != nullptr; block = block->next)
      payloads.push_back(block);
    payloads.push_back(pool);
    ASSERT_EQ(comn_mmdrop(pool, MM_DROP_NORMAL), CS_SUCCEED);
    for (void *const payload : payloads)
      model.put(static_cast<char *>(payload));
    ASSERT_EQ(source.live(), model.regions.size());
    members.erase(members.begin() + static_cast<std::ptrdiff_t>(which));
  }

private:
  struct Member {
    MM_HANDLE *handle;
    std::vector<void *> oversize = {};
  };

  void expect_at(void *payload, CS_UINT size, size_t breaks) {
    char *expected = model.get(size);
    ASSERT_EQ(breaks, expected == nullptr ? 1U : 0U);
    if (expected == nullptr) {
      model.add(members[0].handle->mmh_head->mph_heap);
      expected = model.get(size);
    }
    ASSERT_EQ(payload, expected);
  }

  Source &source;
  HeapModel model;
  std::vector<Member> members;
};

TEST_F(RandomPools, AddressesUnderSubpools) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  constexpr CS_INT types[] = {MM_POOL_BUDDY, MM_POOL_UNIFORM, MM_POOL_ALLOCONLY};
  Source source;
  for (size_t step = 0, round = 0; step < steps; ++round) {
    Pool pool(source, types[round % 3]);
    ASSERT_EQ(set_integer(pool, MM_PROP_BLOCKSIZE, static_cast<CS_INT>(1 + upto(600))), CS_SUCCEED);
    ASSERT_EQ(set_integer(pool, MM_PROP_CHUNKSIZE, static_cast<CS_INT>(1 + upto(3000))),
              CS_SUCCEED);
    PoolTree tree(source, pool);
    for (const size_t end = step + 300; step < end && !HasFailure(); ++step) {
      // The root is alone for some time, and again.
      const bool grows = step / 50 % 2 == 1;
      const size_t which = upto(static_cast<CS_UINT>(tree.size() - 1));
      const CS_UINT what = upto(9);
      if (what == 0 && grows && tree.size() < 6)
        tree.make_subpool(which, types[upto(2)], static_cast<CS_INT>(1 + upto(600)));
      else if (what < (grows ? 2 : 4))
        tree.drop(tree.size() - 1 - which);
      else if (what < 5)
        tree.release(which);
      else
        tree.allocate(which, upto(chance(4) ? 1200 : 100), chance(30));
    }
    ASSERT_FALSE(HasFailure()) << "step " << step;
    check_heap(pool);
  }
}

} // namespace
