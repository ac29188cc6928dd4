// The thread layer of the non-threaded build: stubs with fixed answers. Beside them the once flag
// and aligned memory.
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "checks.h"
#include "zrvintl.h"

CS_THRDID comn_threadid() noexcept {
  return CS_UNUSED;
}

CS_THRDID comn_thread_id() noexcept {
  return getpid();
}

CS_RETCODE comn_get_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  constexpr CS_INT tid = CS_UNUSED;
  constexpr CS_INT width = sizeof tid;
  if (buffer != nullptr && buflen >= width)
    std::memcpy(buffer, &tid, sizeof tid);
  if (outlen != nullptr)
    *outlen = width;
  return COMN_TRACE(CS_SUCCEED);
}

CS_BOOL comn_thread_equal(CS_INT tid1, CS_INT tid2) noexcept {
  return tid1 == tid2;
}

// A primitive that is made of nothing: the caller's handle becomes null.
#define COMN_STUB_CREATE(name, ...)                                                                \
  CS_RETCODE name(CS_VOID **handle __VA_OPT__(, ) __VA_ARGS__) noexcept {                          \
    COMN_CHECK_PTR(handle, COMN_TRACE(CS_FAIL));                                                   \
    *handle = nullptr;                                                                             \
    return COMN_TRACE(CS_SUCCEED);                                                                 \
  }

#define COMN_STUB_SUCCEED(name, ...)                                                               \
  CS_RETCODE name(CS_VOID *__VA_OPT__(, ) __VA_ARGS__) noexcept {                                  \
    return COMN_TRACE(CS_SUCCEED);                                                                 \
  }

COMN_STUB_CREATE(comn_create_mutex)
COMN_STUB_SUCCEED(comn_delete_mutex)
COMN_STUB_SUCCEED(comn_take_mutex)
COMN_STUB_SUCCEED(comn_try_mutex)
COMN_STUB_SUCCEED(comn_release_mutex)

COMN_STUB_CREATE(comn_create_event)
COMN_STUB_SUCCEED(comn_delete_event)
COMN_STUB_SUCCEED(comn_reset_event)
COMN_STUB_SUCCEED(comn_signal_event)
COMN_STUB_SUCCEED(comn_waitfor_event, CS_INT)

COMN_STUB_CREATE(comn_create_sem)
COMN_STUB_SUCCEED(comn_delete_sem)
COMN_STUB_SUCCEED(comn_release_sem, CS_INT)

COMN_STUB_CREATE(comn_create_thread, CS_VOID *, CS_VOID *)
COMN_STUB_SUCCEED(comn_create_thread_no_alloc, CS_VOID *, CS_VOID *)
COMN_STUB_SUCCEED(comn_join_thread)

void comn_yield() noexcept {}
void comn_lock_global() noexcept {}
void comn_unlock_global() noexcept {}

CS_RETCODE comn_create_key(CS_VOID **keyp) noexcept {
  COMN_CHECK_PTR(keyp, COMN_TRACE(CS_FAIL));
  // Deliberate: a failed allocation succeeds all the same and shows as a null key.
  *keyp = comn_calloc(1, sizeof(CS_VOID *));
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_drop_key(CS_VOID *key) noexcept {
  comn_free(key);
  return COMN_TRACE(CS_SUCCEED);
}

CS_VOID *comn_get_threaduserdata(CS_VOID *key) noexcept {
  COMN_CHECK_PTR(key, nullptr);
  return *static_cast<CS_VOID **>(key);
}

CS_RETCODE comn_set_threaduserdata(CS_VOID *key, CS_VOID *dataptr) noexcept {
  COMN_CHECK_PTR(key, COMN_TRACE(CS_FAIL));
  *static_cast<CS_VOID **>(key) = dataptr;
  return COMN_TRACE(CS_SUCCEED);
}

void ncl_call_once(ncl_once_flag *flag, void (*func)(void)) noexcept {
  COMN_CHECK_PTR(flag);
  if (*flag != NCL_ONCE_INIT)
    return;
  COMN_CHECK_PTR(func);
  *flag = 0;
  func();
}

void *ncl_aligned_alloc(size_t alignment, size_t size) noexcept {
  void *block = nullptr;
  return posix_memalign(&block, alignment, size) == 0 ? block : nullptr;
}

void ncl_aligned_free(void *block) noexcept {
  std::free(block);
}
