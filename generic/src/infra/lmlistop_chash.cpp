// The chained hash table. New entries head their chains.
#include "checks.h"
#include "comnlib.h"
#include "lmlist.h"
#include "lmtable.h"

using namespace comn::list;

namespace {

CS_RETCODE chash_make(LM_HANDLE *handle) noexcept {
  CHashInfo *info = nullptr;
  const CS_RETCODE result = make_table(handle, info);
  if (result == CS_SUCCEED)
    handle->list_state = info;
  return result;
}

// The first entry of a chain. Heads that were deleted without their keys may still stand in front
// of it, unset; see chash_delete().
DLinkNode *first_entry(DLinkNode *head) noexcept {
  while (head != nullptr && head->state != LM_SET)
    head = head->next;
  return head;
}

CS_INT chash_count(const CS_VOID *state) noexcept {
  const auto *const info = static_cast<const CHashInfo *>(state);
  CS_INT count = 0;
  for (CS_INT i = 0; i < info->table_size; ++i)
    count += chain_length(first_entry(info->table[i]));
  return count;
}

void chash_drop(LM_HANDLE *handle, CS_VOID *state) noexcept {
  auto *const info = static_cast<CHashInfo *>(state);
  for (CS_INT i = 0; i < info->table_size; ++i)
    drop_chain(handle, info->table[i]);
  release_table(handle, info);
}

// The chain of a bucket that is used again: what is unset in front of it goes.
DLinkNode *clean_chain(LM_HANDLE *handle, CHashInfo *info, CS_UINT home) noexcept {
  DLinkNode *head = info->table[home];
  while (head != nullptr && head->state != LM_SET) {
    info->table[home] = head->next;
    lm__free_dlinknode(handle, head);
    head = info->table[home];
  }
  return head;
}

CS_RETCODE find_home(const CHashInfo *info, const Request &request, CS_UINT &home) noexcept {
  return info->home_addr_hfunc(static_cast<CS_CHAR *>(request.key), request.key_size,
                               info->table_size, &home);
}

CS_RETCODE chash_insert(LM_HANDLE *handle, CHashInfo *info, const Request &request) noexcept {
  CS_UINT home = 0;
  CS_RETCODE result = find_home(info, request, home);
  if (result != CS_SUCCEED)
    return result;
  DLinkNode *const head = clean_chain(handle, info, home);
  DLinkNode *node = nullptr;
  result = lm__get_dlinknode(handle, &node);
  if (result != CS_SUCCEED)
    return result;
  set_entry(node, request);
  node->previous = nullptr;
  node->next = head;
  if (head != nullptr)
    head->previous = node;
  info->table[home] = node;
  handle->cur_ptr = node;
  ++handle->hdlprop->handle_load;
  return CS_SUCCEED;
}

// Whether the last bytes are the same, which those of names with a common beginning seldom are.
bool ends_alike(const DLinkNode *node, const Request &request) noexcept {
  const CS_INT size = request.key_size;
  return size <= 0 || static_cast<const char *>(node->key)[size - 1] ==
                          static_cast<const char *>(request.key)[size - 1];
}

CS_RETCODE chash_search(LM_HANDLE *handle, CHashInfo *info, const Request &request,
                        CS_UINT &home) noexcept {
  const CS_RETCODE result = find_home(info, request, home);
  if (result != CS_SUCCEED)
    return result;
  for (DLinkNode *node = clean_chain(handle, info, home); node != nullptr; node = node->next) {
    if (node->key_size == request.key_size && ends_alike(node, request) &&
        begins_with(node, request)) {
      handle->cur_ptr = node;
      return CS_SUCCEED;
    }
  }
  return LM_NOT_FOUND;
}

// Deletes the current entry. `home` is the bucket that a search went to, 0 without one.
CS_RETCODE chash_delete(LM_HANDLE *handle, CHashInfo *info, CS_UINT home) noexcept {
  DLinkNode *const node = current_entry(handle);
  COMN_CHECK(handle->hdlprop->handle_load > 0, CS_FAIL);
  COMN_CHECK(node != nullptr && node->state == LM_SET, CS_FAIL);
  DLinkNode *const predecessor = node->previous;
  DLinkNode *const successor = node->next;
  if (predecessor != nullptr)
    predecessor->next = successor;
  if (successor != nullptr)
    successor->previous = predecessor;
  handle->cur_ptr = predecessor != nullptr ? predecessor : successor;
  --handle->hdlprop->handle_load;
  if (info->table[home] == node) {
    info->table[home] = successor;
  } else if (predecessor == nullptr) {
    // Deliberate: without a key only bucket 0 is looked at, and the head of any other bucket stays
    // in the table. So it cannot be released before the bucket is used again.
    unset_entry(node);
    return CS_SUCCEED;
  }
  lm__free_dlinknode(handle, node);
  return CS_SUCCEED;
}

CS_RETCODE print_chain(const DLinkNode *first, CS_PRINT_FUNC function) noexcept {
  if (first == nullptr) {
    comn_debug_print("\n***Chain empty***\n");
    return CS_SUCCEED;
  }
  comn_debug_print("\nKeys:\n");
  if (walk_chain(first, function, &DLinkNode::key) == CS_FAIL)
    return CS_FAIL;
  comn_debug_print("\nData:\n");
  if (walk_chain(first, function, &DLinkNode::data) == CS_FAIL)
    return CS_FAIL;
  comn_debug_print("\n");
  return CS_SUCCEED;
}

struct ChainedTable {
  using Info = CHashInfo;
  static constexpr auto insert = chash_insert;
  static constexpr auto search = chash_search;
  static constexpr auto erase = chash_delete;

  static CS_RETCODE walk(LM_HANDLE *handle, CHashInfo *info, CS_INT operation,
                         CS_PRINT_FUNC function) noexcept {
    for (CS_INT i = 0; i < info->table_size; ++i) {
      const DLinkNode *const first = clean_chain(handle, info, static_cast<CS_UINT>(i));
      const CS_RETCODE result = operation == LM_OP_PRINTALL
                                    ? print_chain(first, function)
                                    : walk_chain(first, function, &DLinkNode::data);
      if (result == CS_FAIL)
        return CS_FAIL;
    }
    return CS_SUCCEED;
  }

  static CS_RETCODE print_nothing() noexcept {
    comn_debug_print("\nNULL\n");
    return CS_SUCCEED;
  }
};

CS_RETCODE chash_refill(LM_HANDLE *handle, const CS_VOID *state) noexcept {
  const auto *const old = static_cast<const CHashInfo *>(state);
  for (CS_INT i = 0; i < old->table_size; ++i) {
    const DLinkNode *const head = first_entry(old->table[i]);
    // Deliberate: a chain comes out as copies of its head, and its other entries are lost.
    for (const DLinkNode *node = head; node != nullptr; node = node->next) {
      const CS_RETCODE result =
          lm_list_op(handle, LM_OP_INSERT, head->key, head->key_size, head->data, nullptr);
      if (result != CS_SUCCEED)
        return result;
    }
  }
  return CS_SUCCEED;
}

} // namespace

constexpr Kind comn::list::chash_kind = {chash_make, chash_count, chash_drop,
                                         operate_on_table<ChainedTable>, chash_refill};
