// The peers of pools and lists, in a shared object of their own: each function is one pass, so that
// a peer is used as its own users write it, inlined where its headers inline it.
#ifndef ZRVBENCH_INFRA_PEERS_H
#define ZRVBENCH_INFRA_PEERS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace zrvbench {

// Allocates cleared memory of all sizes, then drops it at once.
#ifdef ZRVBENCH_WITH_APR
void apr_allocate_and_drop(std::span<const uint32_t> sizes);
#endif
void pmr_allocate_and_drop(std::span<const uint32_t> sizes);

// A churn of cleared memory: step i releases slot slots[i] and fills it with sizes[i] bytes.
#ifdef ZRVBENCH_WITH_MIMALLOC
void mimalloc_churn(const std::vector<uint32_t> &slots, const std::vector<uint32_t> &sizes);
#endif
void calloc_churn(const std::vector<uint32_t> &slots, const std::vector<uint32_t> &sizes);

// Takes order.size() cleared nodes of 64 bytes, then releases them in the given order.
#ifdef ZRVBENCH_WITH_BOOST
void boost_pool_nodes(const std::vector<uint32_t> &order);
#endif
#ifdef ZRVBENCH_WITH_MIMALLOC
void mimalloc_nodes(const std::vector<uint32_t> &order);
#endif

// Appends `count` entries, walks them and deletes them at the head.
#ifdef ZRVBENCH_WITH_GLIB
void glib_queue(size_t count);
#endif
void std_list(size_t count);

// A hash table of texts, as large as its keys.
class Table {
public:
  virtual ~Table() = default;
  virtual void insert_all(const std::vector<std::string_view> &keys) = 0;
  virtual size_t find_all(const std::vector<std::string_view> &keys) = 0; // how many are there
  virtual void delete_all(const std::vector<std::string_view> &keys) = 0;
};
#ifdef ZRVBENCH_WITH_GLIB
Table *glib_hash_table(); // keys must be NUL-terminated
#endif
Table *std_unordered_map(size_t capacity);

} // namespace zrvbench

#endif
