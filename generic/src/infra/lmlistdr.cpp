// The end of a list.
#include "checks.h"
#include "lmlist.h"
#include "zrvintl.h"

using namespace comn::list;

namespace {

void drop_node(LM_HANDLE *handle, DLinkNode *node, Nodes nodes) noexcept {
  if (nodes == Nodes::recycle)
    lm__free_dlinknode(handle, node);
  else
    release(handle, node);
}

void drop_dlink(LM_HANDLE *handle, DLinkInfo *info) noexcept {
  for (DLinkNode *node = info->head; node != nullptr;) {
    DLinkNode *const next = node->next;
    release(handle, node);
    --handle->hdlprop->handle_load;
    node = next;
  }
  release(handle, info);
}

void drop_chash(LM_HANDLE *handle, CHashInfo *info, Nodes nodes) noexcept {
  for (CS_INT i = 0; i < info->table_size; ++i) {
    for (DLinkNode *node = info->table[i]; node != nullptr;) {
      DLinkNode *const next = node->next;
      if (node->state == LM_SET)
        --handle->hdlprop->handle_load;
      drop_node(handle, node, nodes);
      node = next;
    }
  }
  handle->lmhfree(handle->lmhuser, info->table);
  release(handle, info);
}

void drop_dhash(LM_HANDLE *handle, DHashInfo *info) noexcept {
  for (CS_INT i = 0; i < info->table_size; ++i) {
    if (info->table[i]->state == LM_SET)
      --handle->hdlprop->handle_load;
    release(handle, info->table[i]);
  }
  handle->lmhfree(handle->lmhuser, info->table);
  release(handle, info);
}

} // namespace

CS_RETCODE comn::list::drop_state(LM_HANDLE *handle, Nodes nodes) noexcept {
  void *const state = handle->list_state;
  switch (handle->hdlprop->list_type) {
  case LM_CHASH:
    drop_chash(handle, static_cast<CHashInfo *>(state), nodes);
    break;
  case LM_DHASH:
    drop_dhash(handle, static_cast<DHashInfo *>(state));
    break;
  default:
    drop_dlink(handle, static_cast<DLinkInfo *>(state));
    break;
  }
  handle->list_state = nullptr;
  COMN_CHECK(handle->hdlprop->handle_load == 0, CS_FAIL);
  return CS_SUCCEED;
}

CS_RETCODE lm_list_drop(LM_HANDLE *handle, CS_INT option) noexcept {
  if (handle == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(handle->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  LM_HDLPROP *const prop = handle->hdlprop;
  COMN_CHECK_PTR(prop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(prop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(option == LM_DROP_NORMAL || option == LM_DROP_FORCE, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_kind(prop->list_type), COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle->list_state, COMN_TRACE(CS_FAIL));
  LM_CONTEXT *const context = prop->context;
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  if (option == LM_DROP_NORMAL && prop->handle_load != 0)
    return COMN_TRACE(CS_FAIL);
  LM_HANDLE **slot = &context->first_handle;
  while (*slot != nullptr && *slot != handle)
    slot = &(*slot)->next;
  COMN_CHECK(*slot == handle, COMN_TRACE(CS_FAIL));

  const CS_RETCODE dropped = drop_state(handle, Nodes::release);
  if (dropped != CS_SUCCEED)
    return COMN_TRACE(dropped);
  lm__api_dlink_mpool_drop(handle, prop->max_poolsize);
  if (prop->handle_name != nullptr) {
    std::memset(prop->handle_name, 0, static_cast<size_t>(prop->length));
    comn_free(prop->handle_name);
  }
  release(handle, prop);
  COMN_CHECK(handle->list_state == nullptr && handle->free_DLN_list == nullptr,
             COMN_TRACE(CS_FAIL));

  *slot = handle->next;
  LM_CXTPROP *const cxtprop = context->cxtprop;
  --cxtprop->context_load;
  COMN_CHECK(cxtprop->context_load >= 0, COMN_TRACE(CS_FAIL));
  if (cxtprop->cur_handleaddr == handle)
    make_current(cxtprop, context->first_handle);
  release(handle, handle->lmhfree, handle->lmhuser);
  return COMN_TRACE(CS_SUCCEED);
}
