// The process-wide record and its reference counting.
#include <cstring>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "zrvcomn/comcfg.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::AllocationProbe;

namespace {

constexpr CS_INT is_static = 1;
constexpr CS_INT is_private = 0;

bool is_cleared(const CsAppGlobal &record) {
  CsAppGlobal empty;
  std::memset(static_cast<void *>(&empty), 0, sizeof empty);
  return std::memcmp(&record, &empty, sizeof empty) == 0;
}

class AppGlobal : public testing::Test {
protected:
  AppGlobal() { clear(); }
  ~AppGlobal() override { clear(); }
  static void clear() {
    std::memset(static_cast<void *>(&Application_global), 0, sizeof Application_global);
  }

  // A configuration file that the process-wide record can release.
  static CS_CFGCHAIN *new_file(CS_CFGCHAIN *older = nullptr) {
    auto *const chain = static_cast<CS_CFGCHAIN *>(comn_calloc(1, sizeof(CS_CFGCHAIN)));
    chain->next = older;
    if (older != nullptr)
      older->prev = chain;
    return chain;
  }

  static CsAppGlobal *access(CS_INT flags, CS_THREAD *thread = nullptr) {
    CsAppGlobal *record = nullptr;
    EXPECT_EQ(com_appglobal_alloc(&record, thread, flags), CS_SUCCEED);
    return record;
  }

  CS_THREAD threads{}, other_threads{};
  CS_CFGCHAIN file{};
  CS_CFGCHAIN *const chain = &file;
};

} // namespace

TEST_F(AppGlobal, StaticRecordIsCounted) {
  EXPECT_EQ(access(is_static, &threads), &Application_global);
  EXPECT_EQ(Application_global.ag_accesscnt, 1);
  EXPECT_EQ(access(is_static, &other_threads), &Application_global);
  EXPECT_EQ(Application_global.ag_accesscnt, 2);
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
  EXPECT_EQ(Application_global.ag_accesscnt, 1);
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
  EXPECT_EQ(Application_global.ag_accesscnt, 0);
}

TEST_F(AppGlobal, FirstAccessKeepsItsThreadTable) {
  access(is_static, &threads);
  EXPECT_EQ(Application_global.ag_ctxthread, &threads);
  access(is_static, &other_threads);
  EXPECT_EQ(Application_global.ag_ctxthread, &threads);
  com_appglobal_drop(&Application_global, is_static);
  com_appglobal_drop(&Application_global, is_static);
  access(is_static, &other_threads);
  EXPECT_EQ(Application_global.ag_ctxthread, &other_threads);
}

TEST_F(AppGlobal, FirstAccessKeepsTheChain) {
  Application_global.ag_cfgchain = chain;
  access(is_static);
  EXPECT_EQ(Application_global.ag_cfgchain, chain);
}

// Deliberate: the configuration reader relies on finding the chain gone.
TEST_F(AppGlobal, EveryAccessButTheFirstLosesTheChain) {
  access(is_static);
  for (int again = 0; again < 2; ++again) {
    Application_global.ag_cfgchain = chain;
    access(is_static);
    EXPECT_EQ(Application_global.ag_cfgchain, nullptr);
  }
}

TEST_F(AppGlobal, OnlyBitOneOfTheFlagsCounts) {
  EXPECT_EQ(access(-1), &Application_global);
  EXPECT_EQ(access(3), &Application_global);
  EXPECT_EQ(com_appglobal_drop(&Application_global, 5), CS_SUCCEED);
  CsAppGlobal *record = access(~1);
  EXPECT_NE(record, &Application_global);
  EXPECT_EQ(com_appglobal_drop(record, 2), CS_SUCCEED);
}

TEST_F(AppGlobal, LastDropClearsTheRecord) {
  AllocationProbe probe;
  access(is_static, &threads);
  access(is_static);
  Application_global.ag_cfgchain = new_file(new_file());
  Application_global.ag_state = 5;
  Application_global.ag_mtx = &threads;
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
  EXPECT_EQ(Application_global.ag_state, 5);
  EXPECT_EQ(probe.live_blocks(), 2U);
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
  EXPECT_TRUE(is_cleared(Application_global));
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(AppGlobal, PrivateRecordsAreClearedBlocksOfTheirOwn) {
  AllocationProbe probe;
  CsAppGlobal *first = access(is_private, &threads);
  CsAppGlobal *second = access(is_private);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(probe.last_size(), sizeof(CsAppGlobal));
  EXPECT_EQ(first->ag_accesscnt, 1);
  EXPECT_EQ(first->ag_ctxthread, &threads);
  EXPECT_EQ(Application_global.ag_accesscnt, 0);
  first->ag_accesscnt = 0;
  first->ag_ctxthread = nullptr;
  EXPECT_TRUE(is_cleared(*first));
  first->ag_accesscnt = 1;
  first->ag_cfgchain = new_file();
  EXPECT_EQ(com_appglobal_drop(first, is_private), CS_SUCCEED);
  EXPECT_EQ(com_appglobal_drop(second, is_private), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(AppGlobal, StaticRecordIsNeverFreed) {
  access(is_static);
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_private), CS_SUCCEED);
  EXPECT_TRUE(is_cleared(Application_global));
}

TEST_F(AppGlobal, FailedAllocation) {
  CsAppGlobal untouched;
  CsAppGlobal *record = nullptr;
  const size_t failed = zrvtest::fail_each_allocation(
      [&] { record = &untouched; },
      [&] {
        const CS_RETCODE result = com_appglobal_alloc(&record, &threads, is_private);
        if (result == CS_SUCCEED)
          return false;
        EXPECT_EQ(result, CS_MEM_ERROR);
        EXPECT_EQ(record, &untouched);
        return true;
      },
      [&] { EXPECT_EQ(com_appglobal_drop(record, is_private), CS_SUCCEED); });
  EXPECT_EQ(failed, 2U);
}

TEST_F(AppGlobal, StaticRecordTakesNoMemory) {
  AllocationProbe probe;
  access(is_static);
  EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
  EXPECT_EQ(probe.allocations(), 0U);
}

TEST_F(AppGlobal, NullPointersAreChecked) {
  EXPECT_NULL_POINTER_CHECK("comaglob.cpp", CS_FAIL,
                            com_appglobal_alloc(nullptr, &threads, is_static));
  EXPECT_NULL_POINTER_CHECK("comaglob.cpp", CS_FAIL, com_appglobal_drop(nullptr, is_static));
  EXPECT_TRUE(is_cleared(Application_global));
}

TEST_F(AppGlobal, NegativeCountIsAnAssertion) {
  Application_global.ag_accesscnt = -1;
  CsAppGlobal *record = nullptr;
  EXPECT_ASSERTION("comaglob.cpp", CS_FAIL, com_appglobal_alloc(&record, &threads, is_static));
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(Application_global.ag_accesscnt, -1);
  EXPECT_EQ(Application_global.ag_ctxthread, nullptr);
}

TEST_F(AppGlobal, OneDropTooManyIsAnAssertion) {
  Application_global.ag_cfgchain = chain;
  EXPECT_ASSERTION("comaglob.cpp", CS_FAIL, com_appglobal_drop(&Application_global, is_static));
  EXPECT_EQ(Application_global.ag_accesscnt, -1);
  EXPECT_EQ(Application_global.ag_cfgchain, chain);
}

TEST_F(AppGlobal, StaticDropOfAPrivateRecordIsAnAssertion) {
  AllocationProbe probe;
  CsAppGlobal *record = access(is_private);
  EXPECT_ASSERTION("comaglob.cpp", CS_FAIL, com_appglobal_drop(record, is_static));
  EXPECT_EQ(probe.live_blocks(), 1U);
  EXPECT_EQ(record->ag_accesscnt, 0);
  comn_free(record);
}

TEST_F(AppGlobal, SubscriberAtTheLastDropIsAnAssertion) {
  for (int layer = 0; layer < 4; ++layer)
    for (const CS_INT subscribers : {1, -1}) {
      clear();
      access(is_static, &threads);
      access(is_static);
      Application_global.ag_subscribers[layer] = subscribers;
      Application_global.ag_cfgchain = chain;
      EXPECT_EQ(com_appglobal_drop(&Application_global, is_static), CS_SUCCEED);
      EXPECT_ASSERTION("comaglob.cpp", CS_FAIL, com_appglobal_drop(&Application_global, is_static));
      EXPECT_EQ(Application_global.ag_accesscnt, 0);
      EXPECT_EQ(Application_global.ag_subscribers[layer], subscribers);
      EXPECT_EQ(Application_global.ag_ctxthread, &threads);
      EXPECT_EQ(Application_global.ag_cfgchain, chain);
    }
}
