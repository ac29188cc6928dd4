// The properties of a list manager context.
#include "lmprop.h"

#include "checks.h"

using namespace comn::list;

namespace {

CS_RETCODE get_from_context(const LM_CXTPROP *prop, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                            CS_INT *outlen) noexcept {
  const LM_HANDLE *const current = prop->cur_handleaddr;
  switch (property) {
  case LM_CXT_LIST_TYPE:
    return deliver_value(prop->list_type, buffer, outlen);
  case LM_CXT_MAX_TABLESIZE:
    return deliver_value(prop->max_tablesize, buffer, outlen);
  case LM_CXT_MAX_POOLSIZE:
    return deliver_value(prop->max_poolsize, buffer, outlen);
  case LM_CXT_VERSION:
    return deliver_fixed(prop->version, buffer, buflen, outlen);
  case LM_CXT_CONTEXT_LOAD:
    return deliver_fixed(prop->context_load, buffer, buflen, outlen);
  case LM_CXT_CURRENT_HANDLENAME:
    return deliver_name(current != nullptr ? current->hdlprop : nullptr, buffer, buflen, outlen);
  default: // LM_CXT_CURRENT_HANDLEADDR
    return deliver_fixed(prop->cur_handleaddr, buffer, buflen, outlen);
  }
}

// Makes the first list current whose name begins with the bytes.
CS_RETCODE choose_by_name(LM_CONTEXT *context, const CS_VOID *bytes, CS_INT buflen) noexcept {
  const CS_INT length = buflen == CS_LEN_NULLTERM
                            ? static_cast<CS_INT>(std::strlen(static_cast<const char *>(bytes)))
                            : buflen;
  for (LM_HANDLE *handle = context->first_handle; handle != nullptr; handle = handle->next) {
    const LM_HDLPROP *const prop = handle->hdlprop;
    if (length < 0 || prop->length < length)
      continue;
    if (length == 0 || std::memcmp(prop->handle_name, bytes, static_cast<size_t>(length)) == 0) {
      make_current(context->cxtprop, handle);
      return CS_SUCCEED;
    }
  }
  comn::raise_bomb(COMN_HERE);
  return CS_FAIL;
}

// Null in `buffer` clears.
CS_RETCODE change_context(LM_CONTEXT *context, CS_INT property, const CS_VOID *buffer,
                          CS_INT buflen) noexcept {
  LM_CXTPROP *const prop = context->cxtprop;
  switch (property) {
  case LM_CXT_LIST_TYPE:
    prop->list_type = value_or(buffer, default_kind);
    return CS_SUCCEED;
  case LM_CXT_MAX_TABLESIZE:
    prop->max_tablesize = value_or(buffer, default_tablesize);
    return CS_SUCCEED;
  case LM_CXT_MAX_POOLSIZE:
    prop->max_poolsize = value_or(buffer, default_poolsize);
    return CS_SUCCEED;
  case LM_CXT_CURRENT_HANDLENAME:
    if (buffer != nullptr)
      return choose_by_name(context, buffer, buflen);
    make_current(prop, context->first_handle);
    return CS_SUCCEED;
  default: // get only
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }
}

} // namespace

CS_RETCODE lm_property(LM_CONTEXT *context, CS_INT action, CS_INT property, CS_VOID *buffer,
                       CS_INT buflen, CS_INT *outlen) noexcept {
  if (outlen != nullptr)
    *outlen = 0;
  if (context == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(context->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->cxtprop, COMN_TRACE(CS_FAIL));
  COMN_CHECK(context->cxtprop->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  COMN_CHECK(property >= LM_CXT_LIST_TYPE && property <= LM_CXT_CURRENT_HANDLEADDR,
             COMN_TRACE(CS_FAIL));
  COMN_CHECK(action >= LM_ACTION_GET && action <= LM_ACTION_CLEAR, COMN_TRACE(CS_FAIL));
  if (action == LM_ACTION_GET)
    return COMN_TRACE(get_from_context(context->cxtprop, property, buffer, buflen, outlen));
  if (action == LM_ACTION_CLEAR)
    return COMN_TRACE(change_context(context, property, nullptr, buflen));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(change_context(context, property, buffer, buflen));
}
