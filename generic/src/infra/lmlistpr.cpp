// The properties of a list, and what setting two of them does: the resizing of tables and pools.
#include "checks.h"
#include "lmlist.h"
#include "lmprop.h"

using namespace comn::list;

namespace {

CS_RETCODE resize_table(LM_HANDLE *handle, CS_INT size) noexcept {
  LM_HDLPROP *const prop = handle->hdlprop;
  const Kind *const kind = find_kind(prop->list_type);
  if (kind == nullptr || kind->refill == nullptr)
    return CS_FAIL;
  CS_VOID *const old_state = handle->list_state;
  CS_VOID *const old_cursor = handle->cur_ptr;
  const CS_INT old_size = prop->max_tablesize;
  const CS_INT load = prop->handle_load;
  prop->max_tablesize = size;
  CS_RETCODE result = kind->make(handle);
  if (result != CS_SUCCEED) {
    prop->max_tablesize = old_size;
    return result;
  }
  prop->handle_load = 0;
  handle->cur_ptr = nullptr;
  result = kind->refill(handle, old_state);
  if (result == CS_SUCCEED && prop->handle_load != load)
    result = comn::raise_bomb(COMN_HERE);
  if (result == CS_SUCCEED) {
    kind->drop(handle, old_state);
    return CS_SUCCEED;
  }
  kind->drop(handle, handle->list_state);
  handle->list_state = old_state;
  handle->cur_ptr = old_cursor;
  prop->max_tablesize = old_size;
  prop->handle_load = load;
  return result;
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

CS_RETCODE get_from_list(LM_HANDLE *handle, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                         CS_INT *outlen) noexcept {
  const LM_HDLPROP *const prop = handle->hdlprop;
  switch (property) {
  case LM_HDL_LIST_TYPE:
    return deliver_fixed(prop->list_type, buffer, buflen, outlen);
  case LM_HDL_MAX_TABLESIZE:
    return deliver_value(prop->max_tablesize, buffer, outlen);
  case LM_HDL_MAX_POOLSIZE:
    return deliver_value(prop->max_poolsize, buffer, outlen);
  case LM_HDL_HANDLE_LOAD:
    return deliver_fixed(prop->handle_load, buffer, buflen, outlen);
  case LM_HDL_CONTEXT_ADDR:
    return deliver_fixed(prop->context, buffer, buflen, outlen);
  case LM_HDL_HANDLE_NAME:
    return deliver_name(prop, buffer, buflen, outlen);
  case LM_HDL_PRINT_FUNC:
    return deliver_value(prop->print_func, buffer, outlen);
  default: // LM_HDL_COMP_FUNC
    return deliver_value(prop->comp_func, buffer, outlen);
  }
}

// Null in `buffer` clears.
CS_RETCODE change_list(LM_HANDLE *handle, CS_INT property, const CS_VOID *buffer) noexcept {
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
    return COMN_TRACE(get_from_list(handle, property, buffer, buflen, outlen));
  if (action == LM_ACTION_CLEAR)
    return COMN_TRACE(change_list(handle, property, nullptr));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(change_list(handle, property, buffer));
}
