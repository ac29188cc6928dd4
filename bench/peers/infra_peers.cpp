// The peers of pools and lists.
#include "infra_peers.h"

#include <cstdlib>
#include <cstring>
#include <list>
#include <memory_resource>
#include <unordered_map>

#ifdef ZRVBENCH_WITH_APR
#include <apr_pools.h>
#endif
#ifdef ZRVBENCH_WITH_BOOST
#include <boost/pool/pool.hpp>
#endif
#ifdef ZRVBENCH_WITH_GLIB
#include <glib.h>
#endif
#ifdef ZRVBENCH_WITH_MIMALLOC
#include <dlfcn.h>
#endif

namespace zrvbench {

namespace {

// What a pass computes must not be optimised away.
template <class T>
void keep(T value) {
  asm volatile("" : : "g"(value) : "memory");
}

} // namespace

#ifdef ZRVBENCH_WITH_APR
void apr_allocate_and_drop(std::span<const uint32_t> sizes) {
  static const apr_status_t started = apr_initialize();
  keep(started);
  apr_pool_t *pool = nullptr;
  apr_pool_create(&pool, nullptr);
  for (const uint32_t size : sizes)
    keep(apr_pcalloc(pool, size));
  apr_pool_destroy(pool);
}
#endif

void pmr_allocate_and_drop(std::span<const uint32_t> sizes) {
  std::pmr::monotonic_buffer_resource pool;
  for (const uint32_t size : sizes) {
    void *const block = pool.allocate(size, alignof(void *));
    keep(std::memset(block, 0, size));
  }
}

namespace {

constexpr size_t slot_count = 256;

template <class Allocate, class Free>
void churn(const std::vector<uint32_t> &slots, const std::vector<uint32_t> &sizes,
           Allocate allocate, Free release) {
  void *live[slot_count] = {};
  for (size_t i = 0; i < slots.size(); ++i) {
    void *&slot = live[slots[i]];
    if (slot != nullptr)
      release(slot);
    slot = allocate(sizes[i]);
    keep(slot);
  }
  for (void *const block : live)
    if (block != nullptr)
      release(block);
}

template <class Allocate, class Free>
void nodes(const std::vector<uint32_t> &order, Allocate allocate, Free release) {
  static std::vector<void *> live;
  live.resize(order.size());
  for (void *&node : live)
    node = allocate();
  keep(live.data());
  for (const uint32_t i : order)
    release(live[i]);
}

} // namespace

#ifdef ZRVBENCH_WITH_MIMALLOC
namespace {

// Loaded for itself alone, so that it does not replace malloc.
struct Mimalloc {
  void *const library = dlopen(ZRVBENCH_WITH_MIMALLOC, RTLD_NOW | RTLD_LOCAL);
  void *(*const zalloc)(size_t) = find<void *(*)(size_t)>("mi_zalloc");
  void (*const release)(void *) = find<void (*)(void *)>("mi_free");

private:
  template <class Function>
  Function find(const char *name) const {
    void *const symbol = library != nullptr ? dlsym(library, name) : nullptr;
    if (symbol == nullptr)
      std::abort();
    return reinterpret_cast<Function>(symbol);
  }
};

const Mimalloc &mimalloc() {
  static const Mimalloc loaded;
  return loaded;
}

} // namespace

void mimalloc_churn(const std::vector<uint32_t> &slots, const std::vector<uint32_t> &sizes) {
  churn(slots, sizes, mimalloc().zalloc, mimalloc().release);
}

void mimalloc_nodes(const std::vector<uint32_t> &order) {
  const Mimalloc &peer = mimalloc();
  nodes(
      order, [&] { return peer.zalloc(64); }, peer.release);
}
#endif

void calloc_churn(const std::vector<uint32_t> &slots, const std::vector<uint32_t> &sizes) {
  churn(
      slots, sizes, [](size_t size) { return std::calloc(1, size); }, std::free);
}

#ifdef ZRVBENCH_WITH_BOOST
void boost_pool_nodes(const std::vector<uint32_t> &order) {
  static boost::pool<> pool(64);
  nodes(
      order, [] { return std::memset(pool.malloc(), 0, 64); }, [](void *node) { pool.free(node); });
}
#endif

#ifdef ZRVBENCH_WITH_GLIB
void glib_queue(size_t count) {
  static GQueue queue = G_QUEUE_INIT;
  for (size_t i = 1; i <= count; ++i)
    g_queue_push_tail(&queue, GSIZE_TO_POINTER(i));
  for (const GList *node = g_queue_peek_head_link(&queue); node != nullptr; node = node->next)
    keep(node->data);
  for (size_t i = 0; i < count; ++i)
    keep(g_queue_pop_head(&queue));
}
#endif

void std_list(size_t count) {
  static std::list<void *> list;
  for (size_t i = 1; i <= count; ++i)
    list.push_back(reinterpret_cast<void *>(i));
  for (void *const data : list)
    keep(data);
  for (size_t i = 0; i < count; ++i) {
    keep(list.front());
    list.pop_front();
  }
}

namespace {

#ifdef ZRVBENCH_WITH_GLIB
class GlibTable : public Table {
public:
  ~GlibTable() override { g_hash_table_destroy(table); }
  void insert_all(const std::vector<std::string_view> &keys) override {
    for (const std::string_view &key : keys)
      g_hash_table_insert(table, const_cast<char *>(key.data()),
                          const_cast<std::string_view *>(&key));
  }
  size_t find_all(const std::vector<std::string_view> &keys) override {
    size_t found = 0;
    for (const std::string_view &key : keys)
      found += g_hash_table_lookup(table, key.data()) != nullptr;
    return found;
  }
  void delete_all(const std::vector<std::string_view> &keys) override {
    for (const std::string_view &key : keys)
      g_hash_table_remove(table, key.data());
  }

private:
  GHashTable *table = g_hash_table_new(g_str_hash, g_str_equal);
};
#endif

class StdTable : public Table {
public:
  explicit StdTable(size_t capacity) { table.reserve(capacity); }
  void insert_all(const std::vector<std::string_view> &keys) override {
    for (const std::string_view &key : keys)
      table.emplace(key, &key);
  }
  size_t find_all(const std::vector<std::string_view> &keys) override {
    size_t found = 0;
    for (const std::string_view &key : keys)
      if (const auto entry = table.find(key); entry != table.end())
        found += entry->second != nullptr;
    return found;
  }
  void delete_all(const std::vector<std::string_view> &keys) override {
    for (const std::string_view &key : keys)
      table.erase(key);
  }

private:
  std::unordered_map<std::string_view, const void *> table;
};

} // namespace

#ifdef ZRVBENCH_WITH_GLIB
Table *glib_hash_table() {
  return new GlibTable;
}
#endif
Table *std_unordered_map(size_t capacity) {
  return new StdTable(capacity);
}

} // namespace zrvbench
