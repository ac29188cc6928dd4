// The open-addressed hash table. It has a node in every slot from the start, so its operations
// never allocate.
#include "checks.h"
#include "comnlib.h"
#include "lmlist.h"
#include "lmtable.h"

using namespace comn::list;

namespace {

void dhash_drop(LM_HANDLE *handle, CS_VOID *state) noexcept {
  auto *const info = static_cast<DHashInfo *>(state);
  // The slots of a table whose making failed are null from one on.
  for (CS_INT i = 0; i < info->table_size && info->table[i] != nullptr; ++i)
    release_record(handle, info->table[i]);
  release_table(handle, info);
}

CS_RETCODE dhash_make(LM_HANDLE *handle) noexcept {
  if (handle->hdlprop->max_tablesize < handle->hdlprop->handle_load)
    return CS_FAIL; // a smaller table for the entries that are there
  DHashInfo *info = nullptr;
  const CS_RETCODE result = make_table(handle, info);
  if (result != CS_SUCCEED)
    return result;
  info->incr_hfunc = lm__api_key_to_hash2;
  for (CS_INT i = 0; i < info->table_size; ++i) {
    info->table[i] = make_record<DLinkNode>(handle);
    if (info->table[i] == nullptr) {
      dhash_drop(handle, info);
      return CS_MEM_ERROR;
    }
  }
  handle->list_state = info;
  return CS_SUCCEED;
}

CS_INT dhash_count(const CS_VOID *state) noexcept {
  const auto *const info = static_cast<const DHashInfo *>(state);
  CS_INT count = 0;
  for (CS_INT i = 0; i < info->table_size; ++i)
    count += info->table[i]->state == LM_SET;
  return count;
}

// Where a probe starts. Deliberate: the second hash function shifts the start and is no stride; the
// probe goes on one slot at a time.
CS_RETCODE find_start(const DHashInfo *info, const Request &request, CS_UINT &slot) noexcept {
  auto *const key = static_cast<CS_CHAR *>(request.key);
  CS_UINT home = 0;
  CS_UINT increment = 0;
  CS_RETCODE result = info->home_addr_hfunc(key, request.key_size, info->table_size, &home);
  if (result == CS_SUCCEED)
    result = info->incr_hfunc(key, request.key_size, info->table_size, &increment);
  if (result == CS_SUCCEED)
    slot = (home + increment) % static_cast<CS_UINT>(info->table_size);
  return result;
}

CS_UINT next_slot(const DHashInfo *info, CS_UINT slot) noexcept {
  return slot + 1 == static_cast<CS_UINT>(info->table_size) ? 0 : slot + 1;
}

CS_RETCODE dhash_insert(LM_HANDLE *handle, const DHashInfo *info, const Request &request) noexcept {
  CS_UINT slot = 0;
  const CS_RETCODE result = find_start(info, request, slot);
  if (result != CS_SUCCEED)
    return result;
  CS_INT seen = 0;
  for (; seen < info->table_size && info->table[slot]->state == LM_SET; ++seen)
    slot = next_slot(info, slot);
  COMN_CHECK(seen < info->table_size, CS_FAIL); // the table is full
  DLinkNode *const node = info->table[slot];
  set_entry(node, request);
  node->previous = nullptr;
  node->next = nullptr;
  handle->cur_ptr = node;
  ++handle->hdlprop->handle_load;
  return CS_SUCCEED;
}

// Deliberate: as many bytes count as the search key has, so a prefix finds an entry. A stored key
// that is shorter cannot match, and its bytes must not be read past its end.
bool matches(const DLinkNode *node, const Request &request) noexcept {
  return node->state == LM_SET && node->key_size >= request.key_size && begins_with(node, request);
}

CS_RETCODE dhash_search(LM_HANDLE *handle, const DHashInfo *info, const Request &request,
                        CS_UINT &slot) noexcept {
  const CS_RETCODE result = find_start(info, request, slot);
  if (result != CS_SUCCEED)
    return result;
  // A slot that is not set does not end the probe: entries behind a deleted one must be found.
  for (CS_INT seen = 0; seen < info->table_size; ++seen, slot = next_slot(info, slot)) {
    if (matches(info->table[slot], request)) {
      handle->cur_ptr = info->table[slot];
      return CS_SUCCEED;
    }
  }
  return LM_NOT_FOUND;
}

CS_RETCODE dhash_delete(LM_HANDLE *handle, const DHashInfo *, CS_UINT) noexcept {
  DLinkNode *const node = current_entry(handle);
  COMN_CHECK(node != nullptr && node->state == LM_SET, CS_FAIL);
  --handle->hdlprop->handle_load;
  unset_entry(node);
  return CS_SUCCEED;
}

// Every slot is visited, those without an entry with their nulls.
CS_RETCODE walk_slots(const DHashInfo *info, CS_PRINT_FUNC function,
                      CS_VOID *DLinkNode::*member) noexcept {
  for (CS_INT i = 0; i < info->table_size; ++i)
    if (function(info->table[i]->*member) == CS_FAIL)
      return CS_FAIL;
  return CS_SUCCEED;
}

struct OpenTable {
  using Info = DHashInfo;
  static constexpr auto insert = dhash_insert;
  static constexpr auto search = dhash_search;
  static constexpr auto erase = dhash_delete;

  static CS_RETCODE walk(LM_HANDLE *, DHashInfo *info, CS_INT operation,
                         CS_PRINT_FUNC function) noexcept {
    if (operation == LM_OP_APPLY)
      return walk_slots(info, function, &DLinkNode::data);
    comn_debug_print("Keys:\n");
    const CS_RETCODE keys = walk_slots(info, function, &DLinkNode::key);
    comn_debug_print("\nData:\n");
    const CS_RETCODE data = walk_slots(info, function, &DLinkNode::data);
    comn_debug_print("\n");
    return keys == CS_SUCCEED ? data : keys;
  }

  // Unlike the chained table, this one needs an entry to print.
  static CS_RETCODE print_nothing() noexcept { return comn::raise_null(COMN_HERE); }
};

CS_RETCODE dhash_refill(LM_HANDLE *handle, const CS_VOID *state) noexcept {
  const auto *const old = static_cast<const DHashInfo *>(state);
  for (CS_INT i = 0; i < old->table_size; ++i) {
    const DLinkNode *const node = old->table[i];
    if (node->state != LM_SET)
      continue;
    const CS_RETCODE result =
        lm_list_op(handle, LM_OP_INSERT, node->key, node->key_size, node->data, nullptr);
    if (result != CS_SUCCEED)
      return result;
  }
  return CS_SUCCEED;
}

} // namespace

constexpr Kind comn::list::dhash_kind = {dhash_make, dhash_count, dhash_drop,
                                         operate_on_table<OpenTable>, dhash_refill};
