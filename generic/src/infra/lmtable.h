// What the two hash tables share: how a table is made, and how an operation finds its entry, which is
// the current one then.
#ifndef COMN_INFRA_LMTABLE_H
#define COMN_INFRA_LMTABLE_H

#include <cstdint>

#include "checks.h"
#include "lmlist.h"

namespace comn::list {

// The record of a table (CHashInfo, DHashInfo) with max_tablesize null pointers.
template <class Info>
CS_RETCODE make_table(LM_HANDLE *handle, Info *&made) noexcept {
  if (handle->hdlprop->max_tablesize < 1)
    return CS_FAIL;
  const auto slots = static_cast<size_t>(handle->hdlprop->max_tablesize);
  if (slots > SIZE_MAX / sizeof(DLinkNode *))
    return CS_MEM_ERROR;
  auto *const info = make_record<Info>(handle);
  if (info == nullptr)
    return CS_MEM_ERROR;
  info->table =
      static_cast<DLinkNode **>(handle->lmhmalloc(handle->lmhuser, slots * sizeof(DLinkNode *)));
  if (info->table == nullptr) {
    release_record(handle, info);
    return CS_MEM_ERROR;
  }
  for (size_t i = 0; i < slots; ++i)
    info->table[i] = nullptr;
  info->table_size = handle->hdlprop->max_tablesize;
  info->home_addr_hfunc = lm__api_key_to_hash;
  made = info;
  return CS_SUCCEED;
}

template <class Info>
void release_table(LM_HANDLE *handle, Info *info) noexcept {
  handle->lmhfree(handle->lmhuser, info->table);
  release_record(handle, info);
}

// Whether a request says which entry it means; the current one is meant otherwise.
inline bool names_entry(const Request &request) noexcept {
  return request.key != nullptr && request.key_size != CS_UNUSED;
}

// A search key of no or negative size has no bytes: the latter gets past a hash function of the
// caller's alone.
inline bool begins_with(const DLinkNode *node, const Request &request) noexcept {
  return request.key_size <= 0 ||
         std::memcmp(node->key, request.key, static_cast<size_t>(request.key_size)) == 0;
}

inline void set_entry(DLinkNode *node, const Request &request) noexcept {
  node->key = request.key;
  node->key_size = request.key_size;
  node->data = request.data_in;
  node->state = LM_SET;
}

inline void unset_entry(DLinkNode *node) noexcept {
  node->key = nullptr;
  node->key_size = 0;
  node->data = nullptr;
  node->state = LM_UNSET;
}

inline DLinkNode *current_entry(const LM_HANDLE *handle) noexcept {
  return static_cast<DLinkNode *>(handle->cur_ptr);
}

// Table is one of the two, with the type of its record and the operations that differ. `home` is the
// bucket that a search went to, 0 without one.
template <class Table>
CS_RETCODE act_on_table(LM_HANDLE *handle, typename Table::Info *info,
                        const Request &request) noexcept {
  CS_UINT home = 0;
  switch (request.operation) {
  case LM_OP_INSERT:
    return Table::insert(handle, info, request);
  case LM_OP_CURRENT:
    return CS_SUCCEED;
  case LM_OP_PRINTALL:
  case LM_OP_APPLY: {
    const CS_PRINT_FUNC function = walk_function(handle, request);
    return function != nullptr ? Table::walk(handle, info, request.operation, function) : CS_FAIL;
  }
  case LM_OP_PRINT:
    if (handle->hdlprop->print_func == nullptr)
      return CS_FAIL;
    break;
  case LM_OP_SEARCH:
  case LM_OP_DELETE:
  case LM_OP_REPLACE:
    break;
  default:
    return comn::raise_bomb(COMN_HERE);
  }

  if (request.operation == LM_OP_SEARCH || names_entry(request)) {
    const CS_RETCODE found = Table::search(handle, info, request, home);
    if (found != CS_SUCCEED)
      return found;
  }
  DLinkNode *const node = current_entry(handle);
  switch (request.operation) {
  case LM_OP_DELETE:
    return Table::erase(handle, info, home);
  case LM_OP_PRINT:
    return node != nullptr ? print_entry(handle, node) : Table::print_nothing();
  case LM_OP_REPLACE:
    if (node == nullptr)
      return CS_FAIL;
    node->data = request.data_in;
    return CS_SUCCEED;
  default: // LM_OP_SEARCH
    return CS_SUCCEED;
  }
}

template <class Table>
CS_RETCODE operate_on_table(LM_HANDLE *handle, const Request &request) noexcept {
  auto *const info = static_cast<typename Table::Info *>(handle->list_state);
  const CS_RETCODE result = act_on_table<Table>(handle, info, request);
  if (result == CS_SUCCEED && request.data_out != nullptr)
    *request.data_out = handle->cur_ptr != nullptr ? current_entry(handle)->data : nullptr;
  return result;
}

} // namespace comn::list

#endif
