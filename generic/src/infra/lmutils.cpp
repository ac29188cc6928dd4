// The node pool of a list, chains of nodes, walks, and the copies of names and bytes.
#include <cstring>

#include "checks.h"
#include "lmlist.h"
#include "zrvintl.h"

using namespace comn::list;

CS_INT comn::list::chain_length(const DLinkNode *first) noexcept {
  CS_INT length = 0;
  for (const DLinkNode *node = first; node != nullptr; node = node->next)
    ++length;
  return length;
}

void comn::list::drop_chain(LM_HANDLE *handle, DLinkNode *first) noexcept {
  for (DLinkNode *node = first; node != nullptr;) {
    DLinkNode *const next = node->next;
    std::memset(node, 0, sizeof *node);
    lm__free_dlinknode(handle, node);
    node = next;
  }
}

CS_RETCODE comn::list::walk_chain(const DLinkNode *first, CS_PRINT_FUNC function,
                                  CS_VOID *DLinkNode::*member) noexcept {
  for (const DLinkNode *node = first; node != nullptr;) {
    const DLinkNode *const next = node->next; // the function may delete the entry
    if (function(node->*member) == CS_FAIL)
      return CS_FAIL;
    node = next;
  }
  return CS_SUCCEED;
}

CS_PRINT_FUNC comn::list::walk_function(const LM_HANDLE *handle, const Request &request) noexcept {
  if (request.operation != LM_OP_APPLY)
    return handle->hdlprop->print_func;
  CS_PRINT_FUNC function = nullptr;
  if (request.data_in != nullptr)
    std::memcpy(&function, request.data_in, sizeof function);
  return function;
}

CS_RETCODE comn::list::print_entry(const LM_HANDLE *handle, const DLinkNode *node) noexcept {
  const CS_PRINT_FUNC function = handle->hdlprop->print_func;
  return function == nullptr || function(node->data) == CS_FAIL ? CS_FAIL : CS_SUCCEED;
}

void comn::list::release_name(CS_CHAR *name, CS_INT length) noexcept {
  if (name != nullptr)
    std::memset(name, 0, static_cast<size_t>(length));
  comn_free(name);
}

namespace {

// Releases free nodes, at most `count` of them; the number that went.
CS_INT release_free_nodes(LM_HANDLE *handle, CS_INT count) noexcept {
  CS_INT released = 0;
  while (released < count && handle->free_DLN_list != nullptr) {
    DLinkNode *const node = handle->free_DLN_list;
    handle->free_DLN_list = node->next;
    release_record(handle, node);
    ++released;
  }
  return released;
}

} // namespace

CS_RETCODE lm__get_dlinknode(LM_HANDLE *handle, DLinkNode **node) noexcept {
  COMN_CHECK_PTR(handle, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(node, COMN_TRACE(CS_FAIL));
  // The chain can be shorter than the count says, after the pool failed to grow.
  DLinkNode *const pooled = handle->free_nodes >= 1 ? handle->free_DLN_list : nullptr;
  if (pooled == nullptr) {
    auto *const made = make_record<DLinkNode>(handle->lmhmalloc, handle->lmhuser, LM_ALLOCATED);
    if (made == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    *node = made;
    return COMN_TRACE(CS_SUCCEED);
  }
  COMN_CHECK(pooled->state != LM_RELEASED, COMN_TRACE(CS_FAIL));
  handle->free_DLN_list = pooled->next;
  --handle->free_nodes;
  *node = pooled;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__free_dlinknode(LM_HANDLE *handle, DLinkNode *node) noexcept {
  COMN_CHECK_PTR(handle, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(node, COMN_TRACE(CS_FAIL));
  if (handle->free_nodes < handle->hdlprop->max_poolsize) {
    node->state = LM_UNINITIALIZED;
    node->next = handle->free_DLN_list;
    handle->free_DLN_list = node;
    ++handle->free_nodes;
  } else {
    node->state = LM_RELEASED;
    handle->lmhfree(handle->lmhuser, node);
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_dlink_mpool_init(LM_HANDLE *handle, CS_INT oldsize) noexcept {
  COMN_CHECK_PTR(handle, COMN_TRACE(CS_FAIL));
  const CS_INT count = handle->hdlprop->max_poolsize - oldsize;
  COMN_CHECK(count >= 1, COMN_TRACE(CS_FAIL));
  for (CS_INT i = 0; i < count; ++i) {
    auto *const node = make_record<DLinkNode>(handle);
    if (node == nullptr) {
      // Deliberate: all free nodes go, also the older ones, and the count stays as it was.
      release_free_nodes(handle, chain_length(handle->free_DLN_list));
      return COMN_TRACE(CS_MEM_ERROR);
    }
    node->next = handle->free_DLN_list;
    handle->free_DLN_list = node;
  }
  handle->free_nodes += count;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_dlink_mpool_drop(LM_HANDLE *handle, CS_INT oldsize) noexcept {
  COMN_CHECK_PTR(handle, COMN_TRACE(CS_FAIL));
  const CS_INT bound = handle->hdlprop->max_poolsize;
  handle->free_nodes -= release_free_nodes(handle, oldsize == bound ? bound : oldsize - bound);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_cp_bytes(CS_VOID *source, CS_INT srclen, CS_BOOL terminate, CS_VOID *buffer,
                            CS_INT buflen, CS_INT *outlen) noexcept {
  size_t length = 0;
  if (source != nullptr && srclen == CS_LEN_NULLTERM)
    length = std::strlen(static_cast<const char *>(source));
  else if (source != nullptr && srclen > 0)
    length = static_cast<size_t>(srclen);
  const size_t needed = terminate != 0 ? length + 1 : length;
  if (outlen != nullptr)
    *outlen = static_cast<CS_INT>(needed);
  if (buflen < 0 || needed > static_cast<size_t>(buflen) || needed == 0)
    return COMN_TRACE(CS_SUCCEED);
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  if (length > 0)
    std::memcpy(buffer, source, length);
  if (terminate != 0)
    static_cast<char *>(buffer)[length] = '\0';
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_prop_cpbytes(CS_VOID *source, CS_INT srclen, CS_BOOL terminate, CS_VOID *buffer,
                                CS_INT buflen, CS_INT *outlen) noexcept {
  return COMN_TRACE(lm__api_cp_bytes(source, srclen, terminate, buffer, buflen, outlen));
}

CS_RETCODE lm__api_setdata(CS_CHAR **dest, CS_INT *destlen, CS_CHAR *source,
                           CS_INT length) noexcept {
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destlen, COMN_TRACE(CS_FAIL));
  *dest = nullptr;
  *destlen = 0;
  if (source == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  const CS_INT bytes =
      length == CS_LEN_NULLTERM ? static_cast<CS_INT>(std::strlen(source) + 1) : length;
  if (bytes <= 0)
    return COMN_TRACE(CS_SUCCEED);
  auto *const copy = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(bytes)));
  if (copy == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  std::memcpy(copy, source, static_cast<size_t>(bytes));
  *dest = copy;
  *destlen = bytes;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_prop_setdata(CS_CHAR **dest, CS_INT *destlen, CS_CHAR *source,
                                CS_INT length) noexcept {
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  comn_free(*dest);
  lm__api_setdata(dest, destlen, source, length);
  return COMN_TRACE(CS_SUCCEED);
}
