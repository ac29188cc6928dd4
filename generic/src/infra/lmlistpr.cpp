// The properties of a list, and what setting two of them does: the resizing of tables and pools.
#include "checks.h"
#include "lmlist.h"
#include "lmprop.h"

using namespace comn::list;

namespace {

// Inserts the entries of an old table into the handle's new one.
CS_RETCODE reinsert(LM_HANDLE *handle, const DHashInfo *old) noexcept {
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

CS_RETCODE reinsert(LM_HANDLE *handle, const CHashInfo *old) noexcept {
  for (CS_INT i = 0; i < old->table_size; ++i) {
    const DLinkNode *head = old->table[i];
    // Heads that were deleted without their keys may still stand there.
    while (head != nullptr && head->state != LM_SET)
      head = head->next;
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

CS_RETCODE resize_table(LM_HANDLE *handle, CS_INT size) noexcept {
  LM_HDLPROP *const prop = handle->hdlprop;
  const bool chained = prop->list_type == LM_CHASH;
  if (!chained && prop->list_type != LM_DHASH)
    return CS_FAIL;
  if (!chained && prop->handle_load > size)
    return CS_FAIL;

  void *const old_state = handle->list_state;
  void *const old_cursor = handle->cur_ptr;
  const CS_INT old_size = prop->max_tablesize;
  const CS_INT load = prop->handle_load;
  prop->max_tablesize = size;
  const CS_RETCODE made = make_state(handle, NodePool::keep);
  if (made != CS_SUCCEED) {
    prop->max_tablesize = old_size;
    handle->list_state = old_state;
    return made;
  }
  prop->handle_load = 0;
  handle->cur_ptr = nullptr;
  const CS_RETCODE moved = chained ? reinsert(handle, static_cast<CHashInfo *>(old_state))
                                   : reinsert(handle, static_cast<DHashInfo *>(old_state));
  if (moved != CS_SUCCEED) {
    drop_state(handle, Nodes::recycle);
    prop->max_tablesize = old_size;
    prop->handle_load = load;
    handle->list_state = old_state;
    handle->cur_ptr = old_cursor;
    return moved;
  }
  COMN_CHECK(prop->handle_load == load, CS_FAIL);

  void *const new_state = handle->list_state;
  handle->list_state = old_state;
  const CS_RETCODE dropped = drop_state(handle, Nodes::recycle);
  handle->list_state = new_state;
  prop->handle_load = load;
  return dropped;
}

CS_RETCODE resize_pool(LM_HANDLE *handle, CS_INT size) noexcept {
  if (size < 0)
    return CS_FAIL;
  LM_HDLPROP *const prop = handle->hdlprop;
  const CS_INT old_size = prop->max_poolsize;
  if (size == old_size)
    return CS_SUCCEED;
  prop->max_poolsize = size;
  const CS_RETCODE result = size > old_size ? lm__api_dlink_mpool_init(handle, old_size)
                                            : lm__api_dlink_mpool_drop(handle, old_size);
  if (result != CS_SUCCEED)
    prop->max_poolsize = old_size;
  return result;
}

CS_RETCODE get(LM_HANDLE *handle, CS_INT property, CS_VOID *buffer, CS_INT buflen,
               CS_INT *outlen) noexcept {
  const LM_HDLPROP *const prop = handle->hdlprop;
  switch (property) {
  case LM_HDL_LIST_TYPE:
    return deliver_unsized(prop->list_type, buffer, buflen, outlen);
  case LM_HDL_MAX_TABLESIZE:
    return deliver(prop->max_tablesize, buffer, outlen);
  case LM_HDL_MAX_POOLSIZE:
    return deliver(prop->max_poolsize, buffer, outlen);
  case LM_HDL_HANDLE_LOAD:
    return deliver_unsized(prop->handle_load, buffer, buflen, outlen);
  case LM_HDL_CONTEXT_ADDR:
    return deliver_unsized(prop->context, buffer, buflen, outlen);
  case LM_HDL_HANDLE_NAME:
    return deliver_name(prop, buffer, buflen, outlen);
  case LM_HDL_PRINT_FUNC:
    return deliver(prop->print_func, buffer, outlen);
  default: // LM_HDL_COMP_FUNC
    return deliver(prop->comp_func, buffer, outlen);
  }
}

// Null in `buffer` clears.
CS_RETCODE change(LM_HANDLE *handle, CS_INT property, const CS_VOID *buffer) noexcept {
  LM_HDLPROP *const prop = handle->hdlprop;
  const LM_CXTPROP *const defaults = prop->context->cxtprop;
  switch (property) {
  case LM_HDL_MAX_TABLESIZE:
    return resize_table(handle, value_or(buffer, defaults->max_tablesize));
  case LM_HDL_MAX_POOLSIZE:
    return resize_pool(handle, value_or(buffer, defaults->max_poolsize));
  case LM_HDL_PRINT_FUNC:
    prop->print_func = value_or(buffer, CS_PRINT_FUNC{});
    return CS_SUCCEED;
  case LM_HDL_COMP_FUNC:
    prop->comp_func = value_or(buffer, CS_COMPARE_FUNC{});
    return CS_SUCCEED;
  default: // get only
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }
}

constexpr bool is_property(CS_INT property) noexcept {
  return (property >= LM_HDL_LIST_TYPE && property <= LM_HDL_MAX_POOLSIZE) ||
         (property >= LM_HDL_HANDLE_LOAD && property <= LM_HDL_COMP_FUNC);
}

} // namespace

CS_RETCODE lm_list_prop(LM_HANDLE *handle, CS_INT action, CS_INT property, CS_VOID *buffer,
                        CS_INT buflen, CS_INT *outlen) noexcept {
  if (outlen != nullptr)
    *outlen = 0;
  if (handle == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(handle->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle->hdlprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(handle->hdlprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_property(property), COMN_TRACE(CS_FAIL));
  COMN_CHECK(action >= LM_ACTION_GET && action <= LM_ACTION_CLEAR, COMN_TRACE(CS_FAIL));
  if (action == LM_ACTION_GET)
    return COMN_TRACE(get(handle, property, buffer, buflen, outlen));
  if (action == LM_ACTION_CLEAR)
    return COMN_TRACE(change(handle, property, nullptr));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(change(handle, property, buffer));
}
