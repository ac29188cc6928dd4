// The uniform strategy: a free list of equal nodes. The first request fixes their size.
#include "commmgr_uniform.h"
#include "checks.h"

using namespace comn::pool;

namespace {

// A node holds its header and, while it is free, a link.
CS_UINT node_size_for(CS_UINT size) noexcept {
  return (size == 0 ? word : round_up(size)) + word;
}

// Runs at every allocation before the first that succeeds.
void set_up_nodes(MM_HANDLE *mmh, CS_UINT size) noexcept {
  MmUniformPool &pool = mmh->mmh_pool.u;
  const CS_UINT node_size = node_size_for(size);
  const CS_UINT nodes = static_cast<CS_UINT>(mmh->mmh_blocksize) / node_size;
  pool.uniform_size = static_cast<CS_INT>(size);
  pool.node_size = static_cast<CS_INT>(node_size);
  pool.free = nullptr;
  mmh->mmh_pool.notes.search = {};
  mmh->mmh_blocksize = static_cast<CS_INT>((nodes == 0 ? 1 : nodes) * node_size);
}

// Threads a fresh block into nodes, in address order. The size of a node decides where to stop, not
// the size that was asked for: that need not be a multiple of the pool word.
void thread_nodes(MM_HANDLE *mmh, void *block) noexcept {
  MmUniformPool &pool = mmh->mmh_pool.u;
  const auto node_size = static_cast<CS_UINT>(pool.node_size);
  const auto end = static_cast<CS_UINT>(mmh->mmh_blocksize);
  auto *node = static_cast<MmList *>(block);
  pool.free = node;
  for (CS_UINT offset = node_size;; offset += node_size) {
    node->size = node_size;
    if (offset + node_size > end)
      break;
    node->link = at<MmList>(block, static_cast<std::ptrdiff_t>(offset));
    node = node->link;
  }
  node->link = nullptr;
}

} // namespace

CS_RETCODE com___uniform_malloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK(mmh->mmh_type == MM_POOL_UNIFORM, COMN_TRACE(CS_FAIL));
  MmUniformPool &pool = mmh->mmh_pool.u;
  if (is_ready(mmh)) {
    if (size != static_cast<CS_UINT>(pool.uniform_size))
      return COMN_TRACE(CS_FAIL);
  } else {
    if (size > largest_request)
      return COMN_TRACE(CS_MEM_ERROR);
    set_up_nodes(mmh, size);
  }
  if (pool.free == nullptr) {
    void *block = nullptr;
    const CS_RETCODE result = com___getblock(mmh, static_cast<CS_UINT>(mmh->mmh_blocksize), &block);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    thread_nodes(mmh, block);
  }
  *buffer = take_node(pool, size);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com___uniform_free(MM_HANDLE *mmh, CS_VOID *buf) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_ready(mmh) && mmh->mmh_type == MM_POOL_UNIFORM, COMN_TRACE(CS_FAIL));
  put_node(mmh->mmh_pool.u, buf);
  return COMN_TRACE(CS_SUCCEED);
}
