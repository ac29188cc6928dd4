// The thread stubs, the once flag and aligned memory.
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <unistd.h>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::AllocationProbe;
using zrvtest::GuardedBuffer;

namespace {

int calls;

void count_call() {
  ++calls;
}

CS_VOID *routine() {
  return reinterpret_cast<CS_VOID *>(&count_call);
}

} // namespace

// The sanitizers' allocator answers a wrong alignment and a request for too much as the C library's
// does.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}

TEST(Threads, Ids) {
  EXPECT_EQ(comn_threadid(), -99999);
  EXPECT_EQ(comn_thread_id(), getpid());
  EXPECT_EQ(comn_thread_equal(5, 5), 1);
  EXPECT_EQ(comn_thread_equal(5, 6), 0);
  EXPECT_EQ(comn_thread_equal(-99999, -99999), 1);
}

TEST(Threads, Tid) {
  GuardedBuffer buffer(6, 1);
  CS_INT outlen = 0;
  EXPECT_EQ(comn_get_tid(buffer.data(), 6, &outlen), CS_SUCCEED);
  EXPECT_EQ(buffer.value<CS_INT>(), -99999);
  EXPECT_TRUE(buffer.is_untouched(4));
  EXPECT_EQ(outlen, 4);
  GuardedBuffer exact(4);
  EXPECT_EQ(comn_get_tid(exact.data(), 4, nullptr), CS_SUCCEED);
  EXPECT_EQ(exact.value<CS_INT>(), -99999);
}

// Only what fits and what is asked for is written, and there is no failure.
TEST(Threads, TidWithoutRoom) {
  GuardedBuffer buffer(4);
  for (const CS_INT length : {3, 0, -1}) {
    CS_INT outlen = 0;
    EXPECT_EQ(comn_get_tid(buffer.data(), length, &outlen), CS_SUCCEED);
    EXPECT_TRUE(buffer.is_untouched());
    EXPECT_EQ(outlen, 4);
  }
  CS_INT outlen = 0;
  EXPECT_EQ(comn_get_tid(nullptr, 4, &outlen), CS_SUCCEED);
  EXPECT_EQ(outlen, 4);
  EXPECT_EQ(comn_get_tid(nullptr, 4, nullptr), CS_SUCCEED);
}

TEST(Threads, CreateStoresNull) {
  for (const auto create : {comn_create_mutex, comn_create_event, comn_create_sem}) {
    CS_VOID *handle = &calls;
    EXPECT_EQ(create(&handle), CS_SUCCEED);
    EXPECT_EQ(handle, nullptr);
    EXPECT_NULL_POINTER_CHECK("non_thrd.cpp", CS_FAIL, create(nullptr));
  }
}

TEST(Threads, OperationsSucceedWhateverTheHandle) {
  const auto operations = {comn_delete_mutex,  comn_take_mutex,   comn_try_mutex,
                           comn_release_mutex, comn_delete_event, comn_reset_event,
                           comn_signal_event,  comn_delete_sem,   comn_join_thread};
  for (const auto operation : operations) {
    EXPECT_EQ(operation(nullptr), CS_SUCCEED);
    EXPECT_EQ(operation(reinterpret_cast<CS_VOID *>(uintptr_t{1})), CS_SUCCEED);
  }
}

TEST(Threads, WaitsReturnAtOnce) {
  EXPECT_EQ(comn_waitfor_event(nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(comn_waitfor_event(nullptr, 2147483647), CS_SUCCEED);
  EXPECT_EQ(comn_waitfor_event(nullptr, -1), CS_SUCCEED);
  EXPECT_EQ(comn_release_sem(nullptr, 3), CS_SUCCEED);
}

TEST(Threads, RoutinesAreNeverRun) {
  calls = 0;
  CS_VOID *thread = &calls;
  EXPECT_EQ(comn_create_thread(&thread, routine(), nullptr), CS_SUCCEED);
  EXPECT_EQ(thread, nullptr);
  EXPECT_EQ(comn_create_thread_no_alloc(&calls, routine(), nullptr), CS_SUCCEED);
  EXPECT_EQ(comn_create_thread_no_alloc(nullptr, nullptr, nullptr), CS_SUCCEED);
  EXPECT_EQ(calls, 0);
  EXPECT_NULL_POINTER_CHECK("non_thrd.cpp", CS_FAIL,
                            comn_create_thread(nullptr, routine(), nullptr));
}

// No lock is behind these: who would take it twice, or give back one that nobody took, would wait
// or fail.
TEST(Threads, NothingToDo) {
  AllocationProbe probe;
  const size_t descriptors = zrvtest::open_descriptors();
  errno = 4711;
  const auto report = zrvtest::catch_check([] {
    comn_unlock_global();
    comn_lock_global();
    comn_lock_global();
    comn_unlock_global();
    comn_yield();
  });
  EXPECT_EQ(errno, 4711);
  EXPECT_EQ(report.signals, 0);
  EXPECT_EQ(report.text, "");
  EXPECT_EQ(probe.allocations(), 0U);
  EXPECT_EQ(zrvtest::open_descriptors(), descriptors);
}

TEST(ThreadKeys, CellHoldsAPointer) {
  // The cell is cleared, whatever its memory held before.
  CS_VOID *const used = comn_malloc(sizeof(CS_VOID *));
  std::memset(used, 0xA5, sizeof(CS_VOID *));
  comn_free(used);
  AllocationProbe probe;
  CS_VOID *key = nullptr;
  ASSERT_EQ(comn_create_key(&key), CS_SUCCEED);
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(probe.allocations(), 1U);
  EXPECT_EQ(probe.last_size(), sizeof(CS_VOID *));
  EXPECT_EQ(comn_get_threaduserdata(key), nullptr);
  EXPECT_EQ(comn_set_threaduserdata(key, &calls), CS_SUCCEED);
  EXPECT_EQ(comn_get_threaduserdata(key), &calls);
  EXPECT_EQ(comn_set_threaduserdata(key, nullptr), CS_SUCCEED);
  EXPECT_EQ(comn_get_threaduserdata(key), nullptr);
  EXPECT_EQ(comn_drop_key(key), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(comn_drop_key(nullptr), CS_SUCCEED);
}

// Deliberate: a failed allocation succeeds all the same.
TEST(ThreadKeys, FailedAllocationShowsInTheKeyAlone) {
  CS_VOID *key = nullptr;
  const size_t failed =
      zrvtest::fail_each_allocation([&] { key = &calls; },
                                    [&] {
                                      EXPECT_EQ(comn_create_key(&key), CS_SUCCEED);
                                      return key == nullptr;
                                    },
                                    [&] { EXPECT_EQ(comn_drop_key(key), CS_SUCCEED); });
  EXPECT_EQ(failed, 2U);
}

TEST(ThreadKeys, NullPointersAreChecked) {
  EXPECT_NULL_POINTER_CHECK("non_thrd.cpp", CS_FAIL, comn_create_key(nullptr));
  EXPECT_NULL_POINTER_CHECK("non_thrd.cpp", static_cast<CS_VOID *>(nullptr),
                            comn_get_threaduserdata(nullptr));
  EXPECT_NULL_POINTER_CHECK("non_thrd.cpp", CS_FAIL, comn_set_threaduserdata(nullptr, &calls));
}

TEST(Once, CallsOnce) {
  calls = 0;
  ncl_once_flag flag = NCL_ONCE_INIT;
  ncl_call_once(&flag, count_call);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(calls, 1);
  ncl_call_once(&flag, count_call);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(calls, 1);
}

TEST(Once, OtherValuesDoNothing) {
  calls = 0;
  for (const int value : {0, 2, -1}) {
    ncl_once_flag flag = value;
    ncl_call_once(&flag, count_call);
    ncl_call_once(&flag, nullptr);
    EXPECT_EQ(flag, value);
  }
  EXPECT_EQ(calls, 0);
}

namespace {

ncl_once_flag nested_flag;

void call_again() {
  ++calls;
  EXPECT_EQ(nested_flag, 0);
  ncl_call_once(&nested_flag, call_again);
}

} // namespace

// The flag falls before the call, so a nested call does nothing.
TEST(Once, FlagFallsFirst) {
  calls = 0;
  nested_flag = NCL_ONCE_INIT;
  ncl_call_once(&nested_flag, call_again);
  EXPECT_EQ(calls, 1);
}

TEST(Once, NullPointersAreChecked) {
  auto report = zrvtest::catch_check([] { ncl_call_once(nullptr, count_call); });
  EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "non_thrd.cpp")) << report.text;
  ncl_once_flag flag = NCL_ONCE_INIT;
  report = zrvtest::catch_check([&] { ncl_call_once(&flag, nullptr); });
  EXPECT_TRUE(zrvtest::is_null_pointer_report(report, "non_thrd.cpp")) << report.text;
  EXPECT_EQ(flag, 1);
}

TEST(AlignedMemory, IsAligned) {
  for (size_t alignment = sizeof(void *); alignment <= 65536; alignment *= 2) {
    void *block = ncl_aligned_alloc(alignment, 100);
    ASSERT_NE(block, nullptr) << alignment;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignment, 0U);
    std::memset(block, 0xAB, 100);
    ncl_aligned_free(block);
  }
}

// The C library judges the alignment.
TEST(AlignedMemory, BadAlignmentIsNull) {
  EXPECT_EQ(ncl_aligned_alloc(0, 100), nullptr);
  EXPECT_EQ(ncl_aligned_alloc(3, 100), nullptr);
  EXPECT_EQ(ncl_aligned_alloc(24, 100), nullptr);
  EXPECT_EQ(ncl_aligned_alloc(sizeof(void *) / 2, 100), nullptr);
}

TEST(AlignedMemory, MoreThanThereIsIsNull) {
  EXPECT_EQ(ncl_aligned_alloc(sizeof(void *), SIZE_MAX - 4096), nullptr);
}

TEST(AlignedMemory, NullCanBeFreed) {
  ncl_aligned_free(nullptr);
}
