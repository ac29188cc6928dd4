// The making of a list: its records, and the initialisers of the kinds.
#include <cstdint>

#include "checks.h"
#include "lmlist.h"
#include "zrvintl.h"

using namespace comn::list;

namespace {

// A table of null pointers; null on failure.
DLinkNode **make_table(LM_HANDLE *handle, CS_INT size) noexcept {
  const auto slots = static_cast<size_t>(size);
  if (slots > SIZE_MAX / sizeof(DLinkNode *))
    return nullptr;
  auto **const table =
      static_cast<DLinkNode **>(handle->lmhmalloc(handle->lmhuser, slots * sizeof(DLinkNode *)));
  for (size_t i = 0; table != nullptr && i < slots; ++i)
    table[i] = nullptr;
  return table;
}

template <class Info>
CS_RETCODE make_hashed(LM_HANDLE *handle, Info *&made) noexcept {
  const CS_INT size = handle->hdlprop->max_tablesize;
  if (size < 1)
    return CS_FAIL;
  auto *const info = make<Info>(handle->lmhmalloc, handle->lmhuser, LM_INITIALIZED);
  if (info == nullptr)
    return CS_MEM_ERROR;
  info->table = make_table(handle, size);
  if (info->table == nullptr) {
    release(handle, info);
    return CS_MEM_ERROR;
  }
  info->table_size = size;
  info->home_addr_hfunc = lm__api_key_to_hash;
  made = info;
  return CS_SUCCEED;
}

CS_RETCODE make_dhash(LM_HANDLE *handle) noexcept {
  DHashInfo *info = nullptr;
  const CS_RETCODE result = make_hashed(handle, info);
  if (result != CS_SUCCEED)
    return result;
  info->incr_hfunc = lm__api_key_to_hash2;
  for (CS_INT i = 0; i < info->table_size; ++i) {
    info->table[i] = make<DLinkNode>(handle->lmhmalloc, handle->lmhuser, LM_INITIALIZED);
    if (info->table[i] == nullptr) {
      while (i > 0)
        release(handle, info->table[--i]);
      handle->lmhfree(handle->lmhuser, info->table);
      release(handle, info);
      return CS_MEM_ERROR;
    }
  }
  handle->list_state = info;
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE comn::list::make_state(LM_HANDLE *handle, NodePool pool) noexcept {
  const CS_INT type = handle->hdlprop->list_type;
  if (type == LM_DHASH)
    return make_dhash(handle);
  if (type == LM_CHASH) {
    CHashInfo *info = nullptr;
    const CS_RETCODE result = make_hashed(handle, info);
    if (result != CS_SUCCEED)
      return result;
    handle->list_state = info;
  } else {
    handle->list_state = make<DLinkInfo>(handle->lmhmalloc, handle->lmhuser, LM_INITIALIZED);
    if (handle->list_state == nullptr)
      return CS_MEM_ERROR;
  }
  if (pool == NodePool::keep || handle->hdlprop->max_poolsize < 1)
    return CS_SUCCEED;
  const CS_RETCODE filled = lm__api_dlink_mpool_init(handle, 0);
  if (filled != CS_SUCCEED)
    drop_state(handle, Nodes::release);
  return filled;
}

CS_RETCODE lm_list_alloc(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                         LM_HANDLE **handle_ptr) noexcept {
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(lm_list_alloc_ex(context, list_type, handle_name, length, handle_ptr,
                                     context->lmmalloc, context->lmfree, context->lmuser));
}

CS_RETCODE lm_list_alloc_ex(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name,
                            CS_INT length, LM_HANDLE **handle_ptr, LM_ALLOCATOR lm_alloc,
                            LM_RELEASER lm_free, void *userctx) noexcept {
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->cxtprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle_ptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_alloc, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lm_free, COMN_TRACE(CS_FAIL));
  LM_CXTPROP *const defaults = context->cxtprop;
  if (context->lmchkparam == 1 && handle_name == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CS_INT type = list_type == CS_UNUSED ? defaults->list_type : list_type;
  if (!is_kind(type))
    return COMN_TRACE(CS_FAIL);

  auto *const handle = make<LM_HANDLE>(lm_alloc, userctx, LM_ALLOCATED);
  if (handle == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  auto *const prop = make<LM_HDLPROP>(lm_alloc, userctx, LM_ALLOCATED);
  if (prop == nullptr) {
    release(handle, lm_free, userctx);
    return COMN_TRACE(CS_MEM_ERROR);
  }
  handle->hdlprop = prop;
  handle->lmhmalloc = lm_alloc;
  handle->lmhfree = lm_free;
  handle->lmhuser = userctx;
  prop->list_type = type;
  prop->max_tablesize = defaults->max_tablesize;
  prop->max_poolsize = type == LM_DHASH ? 0 : defaults->max_poolsize;
  prop->context = context;
  CS_RETCODE result = lm__api_setdata(&prop->handle_name, &prop->length, handle_name, length);
  if (result == CS_SUCCEED)
    result = make_state(handle, NodePool::fill);
  if (result != CS_SUCCEED) {
    comn_free(prop->handle_name);
    release(prop, lm_free, userctx);
    release(handle, lm_free, userctx);
    return COMN_TRACE(result);
  }
  prop->state = LM_INITIALIZED;
  handle->state = LM_INITIALIZED;
  handle->next = context->first_handle;
  context->first_handle = handle;
  make_current(defaults, handle);
  ++defaults->context_load;
  *handle_ptr = handle;
  return COMN_TRACE(CS_SUCCEED);
}
