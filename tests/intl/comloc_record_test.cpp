// Locale records and their list.
#include "allocation_probe.h"
#include "check_trap.h"
#include "installation.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_record.cpp";

class Records : public testing::Test {
protected:
  Records() {
    context.ctxglobals = &globals;
    context.ctxlocale = &model;
    for (int i = 0; i < 6; ++i)
      pointer(model, i) = &caches[i];
    model.ctxptr = &caches[0];
    model.next = &model;
  }
  ~Records() override {
    context.ctxdeflocale = nullptr;
    EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
  }

  static CS_VOID *&pointer(CS_LOCALE &locale, int category) {
    CS_VOID **const pointers[] = {&locale.collateptr,  &locale.ctypeptr,   &locale.messageptr,
                                  &locale.monetaryptr, &locale.numericptr, &locale.timeptr};
    return *pointers[category];
  }
  CS_LOCALE *make() {
    CS_LOCALE *locale = nullptr;
    EXPECT_EQ(comn_loc_alloc(&context, &locale), CS_SUCCEED);
    return locale;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsLocCache caches[6]{};
  CS_LOCALE model{};
  AllocationProbe probe;
};

TEST_F(Records, ANewOneBeginsAsACopyOfTheContexts) {
  CS_LOCALE *const first = make();
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(pointer(*first, i), &caches[i]);
  EXPECT_EQ(first->ctxptr, &context);
  EXPECT_EQ(first->next, nullptr);
  EXPECT_EQ(globals.cmg_locale, first);
  CS_LOCALE *const second = make();
  EXPECT_EQ(second->next, first);
  EXPECT_EQ(globals.cmg_locale, second);
}

TEST_F(Records, NoMemory) {
  probe.fail(1);
  CS_LOCALE *locale = &model;
  EXPECT_EQ(comn_loc_alloc(&context, &locale), CS_MEM_ERROR);
  EXPECT_EQ(locale, nullptr);
  EXPECT_EQ(globals.cmg_locale, nullptr);
  EXPECT_NE(make(), nullptr);
}

TEST_F(Records, DropsFromAnyPlace) {
  CS_LOCALE *const a = make(), *const b = make(), *const c = make();
  EXPECT_EQ(comn_loc_drop(&context, b), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_locale, c);
  EXPECT_EQ(c->next, a);
  EXPECT_EQ(comn_loc_drop(&context, c), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_locale, a);
  EXPECT_EQ(comn_loc_drop(&context, a), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_locale, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(context.ctxlocale, &model);
}

TEST_F(Records, TheContextsLocaleMayBeDropped) {
  CS_LOCALE *const a = make(), *const b = make();
  context.ctxlocale = a;
  EXPECT_EQ(comn_loc_drop(&context, b), CS_SUCCEED);
  EXPECT_EQ(context.ctxlocale, a);
  EXPECT_EQ(comn_loc_drop(&context, a), CS_SUCCEED);
  EXPECT_EQ(context.ctxlocale, nullptr);
}

TEST_F(Records, OnlyWhatIsListedCanBeDropped) {
  make();
  EXPECT_EQ(comn_loc_drop(&context, &model), CS_FAIL);
  EXPECT_EQ(context.ctxlocale, &model);
  EXPECT_EQ(probe.live_blocks(), 1U);
}

TEST_F(Records, DropsAll) {
  make();
  CS_LOCALE *const locale = make();
  context.ctxlocale = locale;
  context.ctxdeflocale = static_cast<CS_LOCALE *>(comn_calloc(1, sizeof(CS_LOCALE)));
  EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_locale, nullptr);
  EXPECT_EQ(context.ctxlocale, nullptr);
  EXPECT_EQ(context.ctxdeflocale, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
}

TEST_F(Records, TheDefaultLocaleMayBeListed) {
  context.ctxdeflocale = make();
  EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// What is left of a record says nothing any more.
TEST_F(Records, RecordsAreClearedBeforeTheyGo) {
  make();
  EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
  EXPECT_EQ(probe.last_released(), std::string(sizeof(CS_LOCALE), '\0'));
}

TEST_F(Records, ValidIsWhatIsListed) {
  CS_LOCALE *const a = make(), *const b = make();
  EXPECT_EQ(comn_loc_validate(&context, a), 1);
  EXPECT_EQ(comn_loc_validate(&context, b), 1);
  EXPECT_EQ(comn_loc_validate(&context, &model), 0);
  comn_loc_drop(&context, a);
  EXPECT_EQ(comn_loc_validate(&context, reinterpret_cast<CS_LOCALE *>(8)), 0);
  EXPECT_EQ(comn_loc_validate(&context, b), 1);
}

TEST_F(Records, CopiesThePointersAlone) {
  CS_LOCALE copy{};
  copy.ctxptr = &copy;
  copy.next = &copy;
  EXPECT_EQ(comn_loc_copy(&copy, &model), CS_SUCCEED);
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(pointer(copy, i), &caches[i]);
  EXPECT_EQ(copy.ctxptr, &copy);
  EXPECT_EQ(copy.next, &copy);
  EXPECT_EQ(comn_loc_copy(&copy, &copy), CS_SUCCEED);
  EXPECT_EQ(pointer(copy, 5), &caches[5]);
}

TEST_F(Records, RefusesNullPointers) {
  CS_LOCALE *locale = &model;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_alloc(nullptr, &locale));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_alloc(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_drop(nullptr, &model));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_drop(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_drop_all(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_loc_validate(nullptr, &model));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_loc_validate(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_copy(nullptr, &model));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_copy(&model, nullptr));
  context.ctxlocale = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_alloc(&context, &locale));
  EXPECT_EQ(locale, &model);
}

} // namespace
