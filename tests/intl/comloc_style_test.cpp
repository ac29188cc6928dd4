// A date style of a locale's own.
#include "allocation_probe.h"
#include "check_trap.h"
#include "installation.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_style.cpp";

class Style : public testing::Test {
protected:
  Style() {
    family.start("de_DE");
    cache = static_cast<CsLocCache *>(family.default_locale.timeptr);
    locale = other = family.default_locale;
  }
  CS_RETCODE set(CS_LOCALE *of, CS_INT style) {
    return comn_intl_set_dtfmt(&family.context, of, &style);
  }
  CS_RETCODE set_big(CS_LOCALE *of, CS_INT style) {
    return comn_intl_set_bdtfmt(&family.context, of, &style);
  }
  CS_INT get(CS_LOCALE *of) { return comn_intl_get_dtfmt(&family.context, of); }
  CS_INT get_big(CS_LOCALE *of) { return comn_intl_get_bdtfmt(&family.context, of); }

  const Installation installation;
  Family family;
  CsLocCache *cache;
  CS_LOCALE locale, other; // two of the same cache
};

TEST_F(Style, BelongsToOneLocale) {
  EXPECT_EQ(get(&locale), 3);
  EXPECT_EQ(get_big(&locale), 3);
  ASSERT_EQ(set(&locale, 101), CS_SUCCEED);
  EXPECT_EQ(get(&locale), 101);
  EXPECT_EQ(get_big(&locale), 101);
  EXPECT_EQ(get(&other), 3);
  EXPECT_EQ(get(nullptr), 3);
  EXPECT_EQ(cache->locdateinfo->convertfmt, 3);
  ASSERT_EQ(set_big(&locale, 140), CS_SUCCEED);
  EXPECT_EQ(get(&locale), 101);
  EXPECT_EQ(get_big(&locale), 140);
  ASSERT_EQ(set(nullptr, 23), CS_SUCCEED); // of the context
  EXPECT_EQ(get(nullptr), 23);
  EXPECT_EQ(get(&locale), 101);
  EXPECT_EQ(get(&other), 3);
}

TEST_F(Style, ANewCacheServesAllCategories) {
  ASSERT_EQ(set(&locale, 5), CS_SUCCEED);
  auto *const own = static_cast<CsLocCache *>(locale.timeptr);
  EXPECT_NE(own, cache);
  for (const CS_VOID *const pointer : {locale.collateptr, locale.ctypeptr, locale.messageptr,
                                       locale.monetaryptr, locale.numericptr})
    EXPECT_EQ(pointer, own);
  EXPECT_EQ(family.globals.cmg_lcache, own);
  EXPECT_EQ(family.globals.cmg_datetime, own->locdateinfo);
  EXPECT_EQ(own->locname, nullptr);
  EXPECT_EQ(own->locnamelen, 0);
  EXPECT_STREQ(own->charname, "set1");
  EXPECT_STREQ(own->langname, "german");
  EXPECT_STREQ(own->sortname, "other");
  EXPECT_EQ(own->locchardesc, cache->locchardesc);
  EXPECT_EQ(own->locsortorder, cache->locsortorder);
  EXPECT_EQ(own->locmessage, cache->locmessage);
  EXPECT_EQ(own->locnuminfo, nullptr);
  EXPECT_EQ(own->locmoninfo, nullptr);
  EXPECT_EQ(own->locdateinfo->id, nullptr);
  EXPECT_EQ(own->locdateinfo->firstday, 1);
  EXPECT_STREQ(reinterpret_cast<char *>(own->locdateinfo->months[11]), "Dezember");
  EXPECT_NE(own->locdateinfo->months[11], cache->locdateinfo->months[11]);
  EXPECT_EQ(family.loaded("de_DE"), cache); // the name finds the old one
}

// The categories of a locale need not have been one cache before.
TEST_F(Style, CategoriesMeetInTheNewCache) {
  locale.messageptr = locale.numericptr = family.loaded("default");
  ASSERT_EQ(set(&locale, 5), CS_SUCCEED);
  EXPECT_EQ(locale.messageptr, locale.timeptr);
  EXPECT_STREQ(static_cast<CsLocCache *>(locale.messageptr)->langname, "german");
}

TEST_F(Style, TheSameStyleTwiceAddsNothing) {
  ASSERT_EQ(set(&locale, 5), CS_SUCCEED);
  CS_VOID *const own = locale.timeptr;
  const AllocationProbe probe;
  ASSERT_EQ(set(&locale, 5), CS_SUCCEED);
  EXPECT_EQ(locale.timeptr, own);
  EXPECT_EQ(family.caches(), 2U);
  EXPECT_EQ(family.date_tables(), 2U);
  EXPECT_EQ(probe.live_blocks(), 0U);
  ASSERT_EQ(set_big(&locale, 40), CS_SUCCEED);
  ASSERT_EQ(set_big(&locale, 40), CS_SUCCEED);
  EXPECT_EQ(family.caches(), 3U);
  EXPECT_EQ(family.date_tables(), 3U);
}

TEST_F(Style, EqualLocalesShareACache) {
  ASSERT_EQ(set(&locale, 5), CS_SUCCEED);
  ASSERT_EQ(set(&locale, 6), CS_SUCCEED);
  ASSERT_EQ(set(&other, 5), CS_SUCCEED);
  EXPECT_EQ(family.caches(), 3U);
  EXPECT_EQ(family.globals.cmg_lcache, other.timeptr); // moved to the head
  EXPECT_EQ(family.globals.cmg_datetime, static_cast<CsLocCache *>(other.timeptr)->locdateinfo);
  ASSERT_EQ(set(&other, 6), CS_SUCCEED);
  EXPECT_EQ(other.timeptr, locale.timeptr);
  EXPECT_EQ(family.caches(), 3U);
  EXPECT_EQ(family.date_tables(), 3U);
}

// The style of the language is no exception: the tables of the language are not private.
TEST_F(Style, TheStyleThatItHasAlready) {
  ASSERT_EQ(set(&locale, 3), CS_SUCCEED);
  EXPECT_NE(locale.timeptr, cache);
  EXPECT_EQ(get(&locale), 3);
}

TEST_F(Style, AnyNumberIsAStyle) {
  for (const CS_INT style : {-99999, -1, 2147483647}) {
    ASSERT_EQ(set(&locale, style), CS_SUCCEED);
    EXPECT_EQ(get(&locale), style);
  }
  ASSERT_EQ(set_big(&locale, -1), CS_SUCCEED); // the same as the other
  EXPECT_EQ(get_big(&locale), 2147483647);
}

TEST_F(Style, TheNumberMayStandAtAnyAddress) {
  alignas(8) char bytes[9] = {};
  const CS_INT style = 110;
  std::memcpy(bytes + 1, &style, sizeof style);
  ASSERT_EQ(comn_intl_set_dtfmt(&family.context, &locale, bytes + 1), CS_SUCCEED);
  EXPECT_EQ(get(&locale), 110);
}

TEST_F(Style, FailsWithEachAllocation) {
  ASSERT_EQ(set(&other, 5), CS_SUCCEED); // an equal cache that waits
  for (const CS_INT style : {5, 6}) {
    AllocationProbe probe;
    const CsCtxGlobals before = family.globals;
    const CS_LOCALE unchanged = locale;
    for (size_t n = 1;; ++n) {
      probe.fail(n);
      const CS_RETCODE result = set(&locale, style);
      probe.succeed();
      if (result == CS_SUCCEED)
        break;
      EXPECT_EQ(result, CS_MEM_ERROR);
      EXPECT_EQ(std::memcmp(&locale, &unchanged, sizeof locale), 0);
      EXPECT_EQ(std::memcmp(&family.globals, &before, sizeof before), 0);
      EXPECT_EQ(probe.live_blocks(), 0U);
    }
    EXPECT_EQ(get(&locale), style);
    locale = unchanged;
  }
}

// An equal cache whose tables are lost cannot be taken.
TEST_F(Style, FailsWhenTheListsDoNotAgree) {
  ASSERT_EQ(set(&other, 5), CS_SUCCEED);
  auto *const table = static_cast<CS_DATEINFO *>(family.globals.cmg_datetime);
  family.globals.cmg_datetime = table->next;
  const AllocationProbe probe;
  const CS_LOCALE unchanged = locale;
  EXPECT_EQ(set(&locale, 5), CS_FAIL);
  EXPECT_EQ(std::memcmp(&locale, &unchanged, sizeof locale), 0);
  EXPECT_EQ(probe.live_blocks(), 0U);
  family.globals.cmg_datetime = table;
}

TEST_F(Style, RefusesWrongArguments) {
  CS_INT style = 5;
  CS_CONTEXT *const context = &family.context;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_set_dtfmt(nullptr, &locale, &style));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_set_bdtfmt(context, &locale, nullptr));
  for (const CS_INT type : {7344, 7347})
    EXPECT_ASSERTION(unit, CS_FAIL, comn__intl_set_dtfmt(context, &locale, type, &style));
  CsLocCache incomplete = *cache;
  incomplete.locdateinfo = nullptr;
  locale.timeptr = &incomplete;
  EXPECT_NULL_POINTER_CHECK("comloc_dates.cpp", CS_FAIL,
                            comn_intl_set_dtfmt(context, &locale, &style));
  EXPECT_EQ(family.caches(), 1U);
}

} // namespace
