// Pools: how they are made, serve and go. The strategies and the heap below them stand in units of
// their own.
#include <cstring>

#include "checks.h"
#include "commmgr_alloconly.h"
#include "commmgr_uniform.h"

using namespace comn::pool;

namespace {

constexpr CS_INT default_chunksize = 4120;
constexpr CS_INT default_blocksize = 4096;

// ---- the functions that serve the pool of a context ----

CS_VOID *context_sbreak(MM_HANDLE *, CS_VOID *param, CS_UINT size) {
  auto *const ctx = static_cast<CS_CONTEXT *>(param);
  COMN_CHECK_PTR(ctx, nullptr);
  COMN_CHECK_PTR(ctx->ctxmalloc, nullptr);
  return ctx->ctxmalloc(ctx, size);
}

void context_unsbreak(MM_HANDLE *, CS_VOID *param, CS_VOID *buffer) {
  auto *const ctx = static_cast<CS_CONTEXT *>(param);
  COMN_CHECK_PTR(ctx);
  COMN_CHECK_PTR(ctx->ctxfree);
  ctx->ctxfree(ctx, buffer);
}

CS_RETCODE context_lock(MM_HANDLE *mmh, CS_VOID *lockarg) {
  const CS_CONTEXT *const ctx = mmh->mmh_head->mph_ctx;
  COMN_CHECK(ctx != nullptr, COMN_TRACE(CS_FAIL));
  const CS_THREAD *const thread = ctx->ctxthread;
  return COMN_TRACE(thread != nullptr && thread->take_mutex_fn != nullptr
                        ? thread->take_mutex_fn(lockarg)
                        : CS_SUCCEED);
}

CS_RETCODE context_unlock(MM_HANDLE *mmh, CS_VOID *lockarg) {
  const CS_CONTEXT *const ctx = mmh->mmh_head->mph_ctx;
  COMN_CHECK(ctx != nullptr, COMN_TRACE(CS_FAIL));
  const CS_THREAD *const thread = ctx->ctxthread;
  return COMN_TRACE(thread != nullptr && thread->release_mutex_fn != nullptr
                        ? thread->release_mutex_fn(lockarg)
                        : CS_SUCCEED);
}

// ---- making and removing ----

// The head lies at the start of the caller's storage, the handle behind it.
MM_HANDLE *handle_behind(MmPoolHead *head) noexcept {
  return at<MM_HANDLE>(head, sizeof(MmPoolHead));
}

void initialise(MmPoolHead *head, MM_HANDLE *handle, CS_INT status) noexcept {
  std::memset(head, 0, sizeof *head);
  std::memset(handle, 0, sizeof *handle);
  head->mph_chunksize = default_chunksize;
  head->mph_maxsize = MM_NO_MAXSIZE;
  head->mph_status = status;
  handle->mmh_head = head;
  handle->mmh_type = MM_POOL_BUDDY;
  handle->mmh_blocksize = default_blocksize;
  handle->mmh_status = status;
}

// Removes one sub-pool: what it holds goes back to the general heap, and so does its handle.
CS_RETCODE drop_subpool(MM_HANDLE *mmh) noexcept {
  MM_HANDLE *const parent = mmh->mmh_parent;
  COMN_CHECK(mmh->mmh_child == nullptr && parent->mmh_child != nullptr, CS_FAIL);
  MM_HANDLE **slot = &parent->mmh_child;
  while (*slot != nullptr && *slot != mmh)
    slot = &(*slot)->mmh_sibling;
  COMN_CHECK(*slot == mmh, CS_FAIL);
  *slot = mmh->mmh_sibling;
  while (mmh->mmh_blocks != nullptr) {
    MmBlock *const block = mmh->mmh_blocks;
    mmh->mmh_blocks = block->next;
    com___putheap(parent, block);
  }
  com___putheap(parent, mmh);
  return CS_SUCCEED;
}

// Removes a pool with all its sub-pools, whose handles lie in the regions that go.
CS_RETCODE drop_pool(MM_HANDLE *root) noexcept {
  MmPoolHead *const head = root->mmh_head;
  head->mph_status |= MM_ST_DROPPING;
  for (MmHeap *heap = head->mph_heap; heap != nullptr;) {
    MmHeap *const next = heap->next;
    if (heap->status == MM_HEAP_BREAK)
      com___unsbreak(root, heap);
    heap = next;
  }
  head->mph_heap = nullptr;
  unlock(root);

  CS_CONTEXT *const ctx = head->mph_ctx;
  const bool owns_records = ((head->mph_status | root->mmh_status) & MM_ST_OWNED) != 0;
  if ((head->mph_status & MM_ST_OWNMUTEX) == 0 && !owns_records)
    return CS_SUCCEED;
  // Records that comn_mmmanage carved out of a buffer have no one to release them.
  COMN_CHECK_PTR(ctx, CS_FAIL);
  if ((head->mph_status & MM_ST_OWNMUTEX) != 0 && ctx->ctxthread != nullptr &&
      ctx->ctxthread->delete_mutex_fn != nullptr)
    ctx->ctxthread->delete_mutex_fn(head->mph_lockarg);
  if (owns_records)
    COMN_CHECK_PTR(ctx->ctxfree, CS_FAIL);
  const bool owns_head = (head->mph_status & MM_ST_OWNED) != 0;
  if ((root->mmh_status & MM_ST_OWNED) != 0)
    ctx->ctxfree(ctx, root);
  if (owns_head)
    ctx->ctxfree(ctx, head);
  return CS_SUCCEED;
}

// ---- the entry points below the lock ----

// True when the pointer lies in a region, newest first, and not among its first bytes.
bool is_inside(const MM_HANDLE *mmh, void *buf, CS_UINT first_bytes) noexcept {
  for (const MmHeap *heap = mmh->mmh_head->mph_heap; heap != nullptr; heap = heap->next) {
    const size_t offset = offset_in(heap, buf);
    if (offset < static_cast<CS_UINT>(heap->size))
      return offset >= first_bytes;
  }
  return false;
}

// Where the first block that a strategy can have handed out may begin.
constexpr CS_UINT before_blocks = region_overhead + word;

// ---- the work of the entry points, under the lock ----

CS_RETCODE allocate_by_type(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  switch (mmh->mmh_type) {
  case MM_POOL_BUDDY:
    return com___buddy_malloc(mmh, size, buffer);
  case MM_POOL_ALLOCONLY:
    return com___alloconly_malloc(mmh, size, buffer);
  case MM_POOL_UNIFORM:
    return com___uniform_malloc(mmh, size, buffer);
  default:
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }
}

CS_RETCODE free_by_type(MM_HANDLE *mmh, CS_VOID *buf) noexcept {
  // An alloc-only pool touches nothing: any address in its regions will do.
  COMN_CHECK(is_inside(mmh, buf, mmh->mmh_type == MM_POOL_ALLOCONLY ? 0 : before_blocks), CS_FAIL);
  switch (mmh->mmh_type) {
  case MM_POOL_BUDDY:
    return com___buddy_free(mmh, buf);
  case MM_POOL_ALLOCONLY:
    return CS_FAIL;
  case MM_POOL_UNIFORM:
    return com___uniform_free(mmh, buf);
  default:
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }
}

CS_RETCODE reallocate_by_type(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  switch (mmh->mmh_type) {
  case MM_POOL_BUDDY:
    COMN_CHECK_PTR(*buffer, CS_FAIL);
    COMN_CHECK(is_inside(mmh, *buffer, before_blocks), CS_FAIL);
    return com___buddy_realloc(mmh, size, buffer);
  case MM_POOL_ALLOCONLY:
  case MM_POOL_UNIFORM:
    return CS_FAIL;
  default:
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }
}

// ---- the short way ----
//
// In a uniform or alloc-only pool without a lock nearly every call is a pop, a push or a bump, which
// costs less than the checks and the dispatch around it. comn_mmalloc and comn_mmfree try
// that first. When it is not to be had nothing has been done, and the call goes the whole way.

// With a lock, nothing but the lock functions is looked at before it is held.
bool is_short_way_open(const MM_HANDLE *mmh) noexcept {
  return mmh->mmh_head->mph_lock == nullptr && is_ready(mmh);
}

// A cleared block; null for the whole way.
void *allocate_shortly(MM_HANDLE *mmh, CS_UINT size) noexcept {
  if (mmh->mmh_type == MM_POOL_ALLOCONLY)
    return take_cleared_bytes(mmh->mmh_pool.notes, size);
  void *const node = mmh->mmh_type == MM_POOL_UNIFORM ? take_node(mmh->mmh_pool.u, size) : nullptr;
  return node != nullptr ? std::memset(node, 0, size) : nullptr;
}

// False for the whole way.
bool free_shortly(MM_HANDLE *mmh, void *buf) noexcept {
  if (mmh->mmh_type != MM_POOL_UNIFORM || !is_inside(mmh, buf, before_blocks))
    return false;
  put_node(mmh->mmh_pool.u, buf);
  return true;
}

// ---- the whole way; out of line, so that the short one needs no frame ----

[[gnu::noinline]] CS_RETCODE allocate_wholly(MM_HANDLE *mmh, CS_UINT size,
                                             CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  const CS_RETCODE locked = lock(mmh);
  if (locked != CS_SUCCEED)
    return COMN_TRACE(locked);
  void *block = nullptr;
  const CS_RETCODE result = allocate_by_type(mmh, size, &block);
  // Once only: comn_mmfree looks at it before it takes the lock.
  if (result == CS_SUCCEED && !is_ready(mmh))
    mmh->mmh_status |= MM_ST_READY;
  unlock(mmh);
  // The memory is the caller's by now: no need to hold the lock.
  if (result == CS_SUCCEED)
    *buffer = std::memset(block, 0, size);
  return COMN_TRACE(result);
}

[[gnu::noinline]] CS_RETCODE free_wholly(MM_HANDLE *mmh, CS_VOID *buf) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_ready(mmh), COMN_TRACE(CS_FAIL));
  COMN_CHECK(lock(mmh) == CS_SUCCEED, COMN_TRACE(CS_FAIL));
  const CS_RETCODE result = free_by_type(mmh, buf);
  unlock(mmh);
  return COMN_TRACE(result);
}

} // namespace

CS_RETCODE comn_mminit(CS_CONTEXT *ctx, MM_HANDLE **mmh) noexcept {
  COMN_CHECK_PTR(ctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK(ctx->ctxversion >= MM_MIN_CTXVERSION, COMN_TRACE(CS_FAIL));

  const bool owned = *mmh == nullptr;
  MmPoolHead *head = nullptr;
  MM_HANDLE *handle = nullptr;
  if (owned) {
    COMN_CHECK_PTR(ctx->ctxmalloc, COMN_TRACE(CS_FAIL));
    COMN_CHECK_PTR(ctx->ctxfree, COMN_TRACE(CS_FAIL));
    head = static_cast<MmPoolHead *>(ctx->ctxmalloc(ctx, sizeof *head));
    if (head == nullptr)
      return COMN_TRACE(CS_FAIL);
    handle = static_cast<MM_HANDLE *>(ctx->ctxmalloc(ctx, sizeof *handle));
    if (handle == nullptr) {
      ctx->ctxfree(ctx, head);
      return COMN_TRACE(CS_FAIL);
    }
  } else {
    head = at<MmPoolHead>(*mmh, 0);
    handle = handle_behind(head);
  }
  initialise(head, handle, owned ? MM_ST_OWNED : MM_ST_CALLER);
  head->mph_sbreak = context_sbreak;
  head->mph_unsbreak = context_unsbreak;
  head->mph_param = ctx;
  head->mph_ctx = ctx;

  if (const CS_THREAD *const thread = ctx->ctxthread) {
    if (thread->create_mutex_fn != nullptr) {
      const CS_RETCODE created = thread->create_mutex_fn(&head->mph_lockarg);
      if (created != CS_SUCCEED) {
        // Deliberate: the head is not released.
        if (owned)
          ctx->ctxfree(ctx, handle);
        return COMN_TRACE(created);
      }
      head->mph_status |= MM_ST_OWNMUTEX;
    }
    head->mph_lock = context_lock;
    head->mph_unlock = context_unlock;
  }
  *mmh = handle;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_mmmanage(CS_VOID *buffer, CS_UINT buflen, MM_HANDLE **mmh) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  constexpr auto handle_size = static_cast<CS_INT>(sizeof(MM_HANDLE));
  const bool owned = *mmh == nullptr;
  auto length = static_cast<CS_INT>(buflen);
  if (owned) {
    COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
    if (length >= 0 && length < handle_size)
      return COMN_TRACE(CS_FAIL);
    COMN_CHECK(length >= pool_overhead, COMN_TRACE(CS_FAIL));
    length -= pool_overhead;
  }
  auto *const head = at<MmPoolHead>(owned ? buffer : *mmh, 0);
  MM_HANDLE *const handle = handle_behind(head);
  initialise(head, handle, owned ? MM_ST_OWNED : MM_ST_CALLER);
  if (length != 0) {
    void *const region = owned ? bytes(buffer) + pool_overhead : buffer;
    const CS_RETCODE added = com___addheap(handle, region, length, MM_HEAP_CALLER);
    if (added != CS_SUCCEED)
      return COMN_TRACE(added);
  }
  *mmh = handle;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_mmalloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  if (mmh != nullptr && buffer != nullptr && is_short_way_open(mmh))
    if (void *const block = allocate_shortly(mmh, size)) {
      *buffer = block;
      return COMN_TRACE(CS_SUCCEED);
    }
  return allocate_wholly(mmh, size, buffer);
}

CS_RETCODE comn_mmrealloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  const CS_RETCODE locked = lock(mmh);
  if (locked != CS_SUCCEED)
    return COMN_TRACE(locked);
  const CS_RETCODE result = reallocate_by_type(mmh, size, buffer);
  unlock(mmh);
  return COMN_TRACE(result);
}

CS_RETCODE comn_mmfree(MM_HANDLE *mmh, CS_VOID *buf) noexcept {
  if (mmh != nullptr && buf != nullptr && is_short_way_open(mmh) && free_shortly(mmh, buf))
    return COMN_TRACE(CS_SUCCEED);
  return free_wholly(mmh, buf);
}

CS_RETCODE comn_mmdiag(MM_HANDLE *) noexcept {
  comn::raise_bomb(COMN_HERE);
  return COMN_TRACE(CS_FAIL);
}

CS_RETCODE comn_mmdrop(MM_HANDLE *mmh, CS_INT option) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK(option == MM_DROP_NORMAL || option == MM_DROP_FORCE, COMN_TRACE(CS_FAIL));
  COMN_CHECK((mmh->mmh_status & (MM_ST_OWNED | MM_ST_CALLER)) != 0, COMN_TRACE(CS_FAIL));
  const CS_RETCODE locked = lock(mmh);
  if (locked != CS_SUCCEED)
    return COMN_TRACE(locked);
  if (option == MM_DROP_NORMAL && mmh->mmh_child != nullptr) {
    unlock(mmh);
    return COMN_TRACE(CS_BUSY);
  }
  MM_HANDLE *const parent = mmh->mmh_parent;
  if (option == MM_DROP_NORMAL && parent != nullptr) {
    const CS_RETCODE result = drop_subpool(mmh);
    unlock(parent);
    return COMN_TRACE(result);
  }
  MM_HANDLE *root = mmh;
  while (root->mmh_parent != nullptr)
    root = root->mmh_parent;
  return COMN_TRACE(drop_pool(root));
}

CS_RETCODE com___subpool(MM_HANDLE *mmh, CS_INT tagid, MM_HANDLE **subpool) noexcept {
  COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(subpool, COMN_TRACE(CS_FAIL));
  // Deliberate: the slot must not be empty, although it is only written.
  COMN_CHECK_PTR(*subpool, COMN_TRACE(CS_FAIL));
  void *payload = nullptr;
  const CS_RETCODE result = com___getheap(mmh, sizeof(MM_HANDLE), &payload);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  auto *const handle = static_cast<MM_HANDLE *>(payload);
  std::memset(handle, 0, sizeof *handle);
  handle->mmh_head = mmh->mmh_head;
  handle->mmh_type = mmh->mmh_type;
  handle->mmh_blocksize = mmh->mmh_blocksize;
  handle->mmh_status = MM_ST_OWNED;
  handle->mmh_tagid = tagid;
  handle->mmh_parent = mmh;
  handle->mmh_sibling = mmh->mmh_child;
  mmh->mmh_child = handle;
  *subpool = handle;
  return COMN_TRACE(CS_SUCCEED);
}
