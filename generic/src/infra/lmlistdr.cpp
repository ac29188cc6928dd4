// The end of a list.
#include "checks.h"
#include "lmlist.h"

using namespace comn::list;

namespace {

// The link of the context's chain that leads to a list; a null one if none does.
LM_HANDLE **find_link(LM_CONTEXT *context, const LM_HANDLE *handle) noexcept {
  LM_HANDLE **link = &context->first_handle;
  while (*link != nullptr && *link != handle)
    link = &(*link)->next;
  return link;
}

void leave_context(LM_CONTEXT *context, LM_HANDLE *handle) noexcept {
  *find_link(context, handle) = handle->next;
  --context->cxtprop->context_load;
  if (context->cxtprop->cur_handleaddr == handle)
    make_current(context->cxtprop, context->first_handle);
}

} // namespace

// Nothing is released before everything is checked, so a drop never stops half way.
CS_RETCODE lm_list_drop(LM_HANDLE *handle, CS_INT option) noexcept {
  if (handle == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(handle->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  LM_HDLPROP *const prop = handle->hdlprop;
  COMN_CHECK_PTR(prop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(prop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(option == LM_DROP_NORMAL || option == LM_DROP_FORCE, COMN_TRACE(CS_FAIL));
  const Kind *const kind = find_kind(prop->list_type);
  COMN_CHECK(kind != nullptr, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(handle->list_state, COMN_TRACE(CS_FAIL));
  COMN_CHECK(!is_released(handle->list_state), COMN_TRACE(CS_FAIL));
  LM_CONTEXT *const context = prop->context;
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->cxtprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->context_load > 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK(*find_link(context, handle) == handle, COMN_TRACE(CS_FAIL));
  if (option == LM_DROP_NORMAL && prop->handle_load != 0)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(kind->count(handle->list_state) == prop->handle_load, COMN_TRACE(CS_FAIL));
  COMN_CHECK(chain_length(handle->free_DLN_list) <= prop->max_poolsize, COMN_TRACE(CS_FAIL));

  kind->drop(handle, handle->list_state);
  lm__api_dlink_mpool_drop(handle, prop->max_poolsize);
  leave_context(context, handle);
  release_name(prop->handle_name, prop->length);
  release_record(handle, prop);
  release_record(handle, handle);
  return COMN_TRACE(CS_SUCCEED);
}
