// Benchmarks of pools and lists. A pass of the pools makes and drops what its peer makes and drops;
// the cost of finding a pointer's region is measured by itself.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <numeric>
#include <span>
#include <string>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "infra_peers.h"
#include "inputs.h"
#include "zrvcomn/lmpublic.h"
#include "zrvcomn/mmpublic.h"

namespace zrvbench {
namespace {

// ---- pools ----

// Regions come from malloc and are kept for the next pool, as the peers keep theirs: what is
// measured is the pool and not how the C library gives memory back to the system.
std::map<CS_UINT, std::vector<void *>> &spare_regions() {
  // Never released: pools that live to the end still give regions back.
  static auto *const regions = new std::map<CS_UINT, std::vector<void *>>;
  return *regions;
}

constexpr size_t region_prefix = 16; // keeps the size of a region

CS_VOID *take_region(MM_HANDLE *, CS_VOID *, CS_UINT size) {
  std::vector<void *> &spare = spare_regions()[size];
  if (!spare.empty()) {
    void *const region = spare.back();
    spare.pop_back();
    return region;
  }
  auto *const block = static_cast<char *>(std::malloc(size + region_prefix));
  std::memcpy(block, &size, sizeof size);
  return block + region_prefix;
}

void return_region(MM_HANDLE *, CS_VOID *, CS_VOID *region) {
  CS_UINT size;
  std::memcpy(&size, static_cast<char *>(region) - region_prefix, sizeof size);
  spare_regions()[size].push_back(region);
}

// A pool over malloc, as a client sets it up.
class Pool {
public:
  Pool(CS_INT type, CS_INT blocksize, CS_INT chunksize) {
    CS_INT needed = 0;
    comn_mmproperty(nullptr, MM_ACTION_GET, MM_PROP_OVERHEAD, &needed, 0, nullptr);
    if (static_cast<size_t>(needed) > sizeof storage)
      std::abort();
    handle = reinterpret_cast<MM_HANDLE *>(storage);
    comn_mmmanage(nullptr, 0, &handle);
    set(MM_PROP_SBREAK, reinterpret_cast<CS_VOID *>(take_region));
    set(MM_PROP_UNSBREAK, reinterpret_cast<CS_VOID *>(return_region));
    set(MM_PROP_POOLTYPE, &type);
    if (blocksize > 0)
      set(MM_PROP_BLOCKSIZE, &blocksize);
    if (chunksize > 0)
      set(MM_PROP_CHUNKSIZE, &chunksize);
  }
  ~Pool() { comn_mmdrop(handle, MM_DROP_FORCE); }
  Pool(const Pool &) = delete;
  Pool &operator=(const Pool &) = delete;

  void *allocate(CS_UINT size) {
    CS_VOID *block = nullptr;
    if (comn_mmalloc(handle, size, &block) != CS_SUCCEED)
      std::abort();
    benchmark::DoNotOptimize(block);
    return block;
  }
  void release(void *block) {
    if (comn_mmfree(handle, block) != CS_SUCCEED)
      std::abort();
  }

private:
  void set(CS_INT property, CS_VOID *value) {
    comn_mmproperty(handle, MM_ACTION_SET, property, value, 0, nullptr);
  }

  alignas(16) unsigned char storage[512];
  MM_HANDLE *handle;
};

using Sizes = std::shared_ptr<std::vector<uint32_t>>;

Sizes random_sizes(size_t count, uint32_t least, uint32_t most) {
  Random random(30);
  auto sizes = std::make_shared<std::vector<uint32_t>>(count);
  for (uint32_t &size : *sizes)
    size = least + static_cast<uint32_t>(random_below(random, most - least + 1));
  return sizes;
}

// Random sizes, other ones in each pass, so that the branch predictor cannot learn them.
class Passes {
public:
  Passes(size_t a_count, uint32_t least, uint32_t most)
      : sizes(random_sizes(std::max<size_t>(32768, a_count), least, most)), count(a_count) {}
  std::span<const uint32_t> next() {
    if (at + count > sizes->size())
      at = 0;
    at += count;
    return std::span(*sizes).subspan(at - count, count);
  }

private:
  Sizes sizes;
  size_t count, at = 0;
};

void compare_alloc_only() {
  const struct {
    const char *text;
    CS_INT blocksize, chunksize;
  } settings[] = {{"default chunks", 0, 0}, {"chunks of 64 KB", 65536, 0}};
  for (const size_t count : {1000U, 10000U})
    for (const auto &setting : settings) {
      const auto passes = [count] { return std::make_shared<Passes>(count, 8, 127); };
      std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_APR
      peers.push_back({"apr_pcalloc", 1.8, [p = passes()] { apr_allocate_and_drop(p->next()); }});
#endif
      peers.push_back(
          {"monotonic_buffer_resource", 1.0, [p = passes()] { pmr_allocate_and_drop(p->next()); }});
      compare({"alloc-only pool", "alloc-only pool",
               std::to_string(count) + " of 8 to 127 bytes, " + setting.text, count,
               [p = passes(), setting] {
                 Pool pool(MM_POOL_ALLOCONLY, setting.blocksize, setting.chunksize);
                 for (const uint32_t size : p->next())
                   pool.allocate(size);
               },
               peers});
    }
}

void compare_uniform() {
  const struct {
    const char *text;
    CS_INT blocksize;
  } settings[] = {{"default chunks", 0}, {"chunks of 128 KB", 131072}};
  for (const auto &setting : settings) {
    constexpr size_t count = 1000;
    auto order = std::make_shared<std::vector<uint32_t>>(count);
    std::iota(order->begin(), order->end(), 0U);
    Random random(31);
    std::shuffle(order->begin(), order->end(), random);
    std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_BOOST
    peers.push_back({"boost::pool", 1.8, [order] { boost_pool_nodes(*order); }});
#endif
#ifdef ZRVBENCH_WITH_MIMALLOC
    peers.push_back({"mi_zalloc", 1.2, [order] { mimalloc_nodes(*order); }});
#endif
    const auto pool = std::make_shared<Pool>(MM_POOL_UNIFORM, setting.blocksize, 0);
    const auto live = std::make_shared<std::vector<void *>>(count);
    compare({"uniform pool", "uniform pool",
             std::string("1000 nodes of 64 bytes, random order, ") + setting.text, count,
             [order, pool, live] {
               for (void *&node : *live)
                 node = pool->allocate(64);
               for (const uint32_t i : *order)
                 pool->release((*live)[i]);
             },
             peers});
  }
}

void compare_buddy() {
  const struct {
    const char *text;
    CS_INT blocksize, chunksize;
  } settings[] = {{"default chunks", 0, 0}, {"chunks of 1 MB", 1 << 20, 0}};
  for (const auto &setting : settings) {
    constexpr size_t count = 20000;
    const Sizes sizes = random_sizes(count, 16, 4096);
    const Sizes slots = random_sizes(count, 0, 255);
    std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_MIMALLOC
    peers.push_back({"mi_zalloc", 2.0, [=] { mimalloc_churn(*slots, *sizes); }});
#endif
    peers.push_back({"calloc", 0.5, [=] { calloc_churn(*slots, *sizes); }});
    const auto pool = std::make_shared<Pool>(MM_POOL_BUDDY, setting.blocksize, setting.chunksize);
    compare({"buddy pool", "buddy pool", std::string("16 bytes to 4 KB, 256 live, ") + setting.text,
             count,
             [=] {
               void *live[256] = {};
               for (size_t i = 0; i < count; ++i) {
                 void *&slot = live[(*slots)[i]];
                 if (slot != nullptr)
                   pool->release(slot);
                 slot = pool->allocate((*sizes)[i]);
               }
               for (void *const block : live)
                 if (block != nullptr)
                   pool->release(block);
             },
             peers});
  }
}

// How the search for a pointer's region grows: one allocation a region, released in random order
// and taken again.
void compare_regions() {
  for (const size_t regions : {1U, 100U, 10000U}) {
    const auto pool = std::make_shared<Pool>(MM_POOL_UNIFORM, 1, 1);
    const auto live = std::make_shared<std::vector<void *>>();
    for (size_t i = 0; i < regions; ++i)
      live->push_back(pool->allocate(1000));
    Random random(32);
    std::shuffle(live->begin(), live->end(), random);
    constexpr size_t count = 1000;
    const auto pass = [pool, live](size_t which) {
      pool->release((*live)[which]);
      (*live)[which] = pool->allocate(1000);
    };
    const auto everywhere = [=] {
      for (size_t i = 0; i < count; ++i)
        pass(i * 7919 % live->size());
    };
    // The newest region, which is the common case.
    const auto newest = std::make_shared<void *>(pool->allocate(1000));
    const auto in_newest = [=] {
      for (size_t i = 0; i < count; ++i) {
        pool->release(*newest);
        *newest = pool->allocate(1000);
      }
    };
    compare({"region of a pointer",
             "comn_mmfree",
             std::to_string(regions) + " regions, any",
             count,
             everywhere,
             {{"the newest region", 0.0, in_newest}}});
  }
}

// ---- lists ----

class List {
public:
  List(CS_INT kind, CS_INT tablesize, CS_INT poolsize) {
    if (lm_initlm(1100, nullptr, 0, &context) != CS_SUCCEED)
      std::abort();
    lm_property(context, LM_ACTION_SET, LM_CXT_MAX_TABLESIZE, &tablesize, 0, nullptr);
    lm_property(context, LM_ACTION_SET, LM_CXT_MAX_POOLSIZE, &poolsize, 0, nullptr);
    if (lm_list_alloc(context, kind, nullptr, 0, &handle) != CS_SUCCEED)
      std::abort();
  }
  ~List() { lm_exit(context, LM_EXIT_FORCE); }
  List(const List &) = delete;
  List &operator=(const List &) = delete;

  LM_HANDLE *get() const { return handle; }

private:
  LM_CONTEXT *context = nullptr;
  LM_HANDLE *handle = nullptr;
};

void compare_linked() {
  constexpr size_t count = 1000;
  const auto list = std::make_shared<List>(LM_DLINK, 10, static_cast<CS_INT>(count));
  std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_GLIB
  peers.push_back({"GQueue", 1.5, [] { glib_queue(count); }});
#endif
  peers.push_back({"std::list", 0.0, [] { std_list(count); }});
  compare({"linked list", "linked list", "1000 entries: append, walk, delete at the head",
           3 * count,
           [list] {
             LM_HANDLE *const handle = list->get();
             CS_VOID *out = nullptr;
             for (size_t i = 1; i <= count; ++i)
               lm_list_op(handle, LM_OP_INSERT, nullptr, LM_OP_LAST, reinterpret_cast<CS_VOID *>(i),
                          nullptr);
             lm_list_op(handle, LM_OP_FIRST, nullptr, 0, nullptr, &out);
             do
               benchmark::DoNotOptimize(out);
             while (lm_list_op(handle, LM_OP_NEXT, nullptr, 0, nullptr, &out) == CS_SUCCEED);
             lm_list_op(handle, LM_OP_FIRST, nullptr, 0, nullptr, &out);
             for (size_t i = 0; i < count; ++i) {
               benchmark::DoNotOptimize(out);
               lm_list_op(handle, LM_OP_DELETE, nullptr, 0, nullptr, &out);
             }
           },
           peers});
}

// Texts of 6 to 24 bytes, NUL-terminated, all different.
struct Keys {
  std::vector<std::string> texts;
  std::vector<std::string_view> views, shuffled;
};

std::shared_ptr<Keys> make_keys(size_t count, char first) {
  Random random(33);
  auto keys = std::make_shared<Keys>();
  for (size_t i = 0; i < count; ++i) {
    std::string text = first + std::to_string(10000 + i);
    text.resize(6 + random_below(random, 19), 'x');
    for (size_t at = 6; at < text.size(); ++at)
      text[at] = static_cast<char>('a' + random_below(random, 26));
    keys->texts.push_back(text);
  }
  for (const std::string &text : keys->texts)
    keys->views.push_back(text);
  keys->shuffled = keys->views;
  std::shuffle(keys->shuffled.begin(), keys->shuffled.end(), random);
  return keys;
}

CS_VOID *bytes_of(const std::string_view &key) {
  return const_cast<char *>(key.data());
}

CS_VOID *data_of(const std::string_view &key) {
  return const_cast<std::string_view *>(&key);
}

// Each entry's data is its view of the key, so that a table which keeps the data apart from the
// keys has to keep it.
void insert_all(LM_HANDLE *handle, const std::vector<std::string_view> &keys) {
  for (const std::string_view &key : keys)
    lm_list_op(handle, LM_OP_INSERT, bytes_of(key), static_cast<CS_INT>(key.size()), data_of(key),
               nullptr);
}

size_t find_all(LM_HANDLE *handle, const std::vector<std::string_view> &keys) {
  size_t found = 0;
  CS_VOID *out = nullptr;
  for (const std::string_view &key : keys)
    if (lm_list_op(handle, LM_OP_SEARCH, bytes_of(key), static_cast<CS_INT>(key.size()), nullptr,
                   &out) == CS_SUCCEED)
      found += out != nullptr;
  return found;
}

void delete_all(LM_HANDLE *handle, const std::vector<std::string_view> &keys) {
  for (const std::string_view &key : keys)
    lm_list_op(handle, LM_OP_DELETE, bytes_of(key), static_cast<CS_INT>(key.size()), nullptr,
               nullptr);
}

void compare_chained() {
  // The tables are sized to their load: the next prime, because the hash of texts is a sum whose
  // low bits vary little.
  const struct {
    size_t count;
    CS_INT buckets;
    double find_goal, change_goal;
  } settings[] = {{512, 521, 1.3, 0.8}, {65536, 65537, 0.0, 0.0}};
  for (const auto &setting : settings) {
    const size_t count = setting.count;
    const auto present = make_keys(count, 'k'), absent = make_keys(count, 'm');
    const auto size = static_cast<CS_INT>(count);
    const CS_INT table_size = setting.buckets;
    const auto add = [&](const char *operation, double goal, auto act, size_t calls) {
      std::vector<Peer> peers;
      const auto peer = [&](const char *name, Table *made) {
        const std::shared_ptr<Table> table(made);
        if (calls == count)
          table->insert_all(present->views);
        peers.push_back({name, goal, [=] { act.peer(*table); }});
      };
#ifdef ZRVBENCH_WITH_GLIB
      peer("GHashTable", glib_hash_table());
#endif
      peer("std::unordered_map", std_unordered_map(count));
      const auto list = std::make_shared<List>(LM_CHASH, table_size, size);
      if (calls == count)
        insert_all(list->get(), present->views);
      compare({operation, operation, std::to_string(count) + " entries", calls,
               [=] { act.ours(list->get()); }, peers});
    };
    struct Finds {
      std::shared_ptr<Keys> keys;
      void peer(Table &table) const { benchmark::DoNotOptimize(table.find_all(keys->shuffled)); }
      void ours(LM_HANDLE *handle) const {
        benchmark::DoNotOptimize(find_all(handle, keys->shuffled));
      }
    };
    struct Changes {
      std::shared_ptr<Keys> keys;
      void peer(Table &table) const {
        table.insert_all(keys->views);
        table.delete_all(keys->shuffled);
      }
      void ours(LM_HANDLE *handle) const {
        insert_all(handle, keys->views);
        delete_all(handle, keys->shuffled);
      }
    };
    add("chained table: find a hit", setting.find_goal, Finds{present}, count);
    add("chained table: find a miss", setting.find_goal, Finds{absent}, count);
    add("chained table: insert and delete", setting.change_goal, Changes{present}, 2 * count);
  }
}

} // namespace

void register_comparisons() {
  compare_alloc_only();
  compare_uniform();
  compare_buddy();
  compare_regions();
  compare_linked();
  compare_chained();
}

} // namespace zrvbench
