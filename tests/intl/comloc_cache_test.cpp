// Location caches: made, copied, compared, found among the others, released.
#include "allocation_probe.h"
#include "check_trap.h"
#include "installation.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_cache.cpp";

// A cache that names everything, and objects with identifiers.
struct WholeCache {
  WholeCache() {
    cache.locname = names[0];
    cache.charname = names[1];
    cache.sortname = names[2];
    cache.langname = names[3];
    cache.datename = names[4];
    cache.numname = names[5];
    cache.monname = names[6];
    for (CS_INT *const length :
         {&cache.locnamelen, &cache.charnamelen, &cache.sortnamelen, &cache.langnamelen,
          &cache.datenamelen, &cache.numnamelen, &cache.monnamelen})
      *length = 2;
    cache.locchardesc = &set;
    cache.locsortorder = &order;
    cache.locmessage = &message;
    cache.locdateinfo = &dates;
    cache.locnuminfo = &numbers;
    cache.locmoninfo = &money;
  }
  // Gives another cache the same identifiers, in objects of its own.
  void identify_as(const WholeCache &other) {
    set.oid = other.set.oid;
    order.oid = other.order.oid;
    message.lang_oid = other.message.lang_oid;
    dates.id = other.dates.id;
    numbers.id = other.numbers.id;
    money.id = other.money.id;
  }

  char names[7][3] = {"aa", "bb", "cc", "dd", "ee", "ff", "gg"};
  CsCharDesc set{};
  CsSortDesc order{};
  CS_MESSAGE message{};
  CS_DATEINFO dates{};
  CS_NUMINFO numbers{};
  CS_MONINFO money{};
  CsLocCache cache{};
};

class Compare : public testing::Test {
protected:
  Compare() {
    a.set.oid = &ids[0];
    a.order.oid = &ids[1];
    a.message.lang_oid = &ids[2];
    a.dates.id = &ids[3];
    a.numbers.id = &ids[4];
    a.money.id = &ids[5];
    b.identify_as(a);
  }
  bool equal() {
    const CS_BOOL result = comn__cmp_loccache(&a.cache, &b.cache);
    EXPECT_EQ(comn__cmp_loccache(&b.cache, &a.cache), result);
    return result != 0;
  }

  CsOID ids[7]{};
  WholeCache a, b;
};

TEST_F(Compare, EqualNamesAndIdentifiers) {
  EXPECT_TRUE(equal());
  a.cache.locnext = &b.cache;
  EXPECT_TRUE(equal());
}

TEST_F(Compare, EachNameCountsWithItsLength) {
  CsLocCache &cache = b.cache;
  const struct {
    CS_CHAR **name;
    CS_INT *length;
  } fields[] = {{&cache.locname, &cache.locnamelen},   {&cache.charname, &cache.charnamelen},
                {&cache.sortname, &cache.sortnamelen}, {&cache.langname, &cache.langnamelen},
                {&cache.datename, &cache.datenamelen}, {&cache.numname, &cache.numnamelen},
                {&cache.monname, &cache.monnamelen}};
  for (const auto &field : fields) {
    CS_CHAR *const name = *field.name;
    ++name[1];
    EXPECT_FALSE(equal());
    --name[1];
    *field.length = 1;
    EXPECT_FALSE(equal());
    *field.length = 0;
    *field.name = nullptr;
    EXPECT_FALSE(equal());
    *field.name = name;
    *field.length = 2;
    EXPECT_TRUE(equal());
  }
}

TEST_F(Compare, EachIdentifierCounts) {
  for (CsOID **const oid :
       {&b.set.oid, &b.order.oid, &b.message.lang_oid, &b.dates.id, &b.numbers.id, &b.money.id}) {
    CsOID *const id = *oid;
    *oid = &ids[6];
    EXPECT_FALSE(equal());
    *oid = id;
  }
  b.message.charset_oid = &ids[6]; // not looked at
  EXPECT_TRUE(equal());
}

TEST_F(Compare, ObjectsAreThereInBothOrInNeither) {
  b.cache.locnuminfo = nullptr;
  EXPECT_FALSE(equal());
  a.cache.locnuminfo = nullptr;
  EXPECT_TRUE(equal());
  b.cache.locmoninfo = nullptr;
  EXPECT_FALSE(equal());
  a.cache.locmoninfo = nullptr;
  EXPECT_TRUE(equal());
  b.cache.locdateinfo = nullptr;
  EXPECT_FALSE(equal());
  a.cache.locdateinfo = nullptr;
  EXPECT_TRUE(equal());
  const CsLocCache whole = b.cache;
  b.cache.locchardesc = nullptr;
  EXPECT_FALSE(equal());
  b.cache = whole;
  b.cache.locsortorder = nullptr;
  EXPECT_FALSE(equal());
  b.cache = whole;
  b.cache.locmessage = nullptr;
  EXPECT_FALSE(equal());
}

TEST_F(Compare, PrivateDateTablesAreEqualByWhatTheyHold) {
  a.dates.id = b.dates.id = nullptr;
  EXPECT_TRUE(equal());
  b.dates.convertfmt = 1;
  EXPECT_FALSE(equal());
}

TEST_F(Compare, RefusesNullPointers) {
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn__cmp_loccache(nullptr, &b.cache));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn__cmp_loccache(&a.cache, nullptr));
}

// ---- the scan ----

class Scan : public Compare {
protected:
  Scan() {
    context.ctxglobals = &globals;
    a.dates.id = b.dates.id = nullptr;
    // Two others around the cache that equals, in both lists.
    CsLocCache *const caches[] = {&first.cache, &a.cache, &last.cache};
    CS_DATEINFO *const tables[] = {&last.dates, &first.dates, &a.dates};
    first.names[0][0] = 'x';
    last.names[0][0] = 'y';
    for (int i = 0; i < 3; ++i) {
      caches[i]->locnext = i < 2 ? caches[i + 1] : nullptr;
      tables[i]->next = i < 2 ? tables[i + 1] : nullptr;
    }
    globals.cmg_lcache = &first.cache;
    globals.cmg_datetime = &last.dates;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  WholeCache first, last;
  CsLocCache *found = &first.cache;
};

TEST_F(Scan, TakesTheEqualCacheOffBothLists) {
  ASSERT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_SUCCEED);
  EXPECT_EQ(found, &a.cache);
  EXPECT_EQ(globals.cmg_lcache, &first.cache);
  EXPECT_EQ(first.cache.locnext, &last.cache);
  EXPECT_EQ(last.cache.locnext, nullptr);
  EXPECT_EQ(globals.cmg_datetime, &last.dates);
  EXPECT_EQ(last.dates.next, &first.dates);
  EXPECT_EQ(first.dates.next, nullptr);
  EXPECT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_SUCCEED);
  EXPECT_EQ(found, nullptr);
}

TEST_F(Scan, TakesTheHeadsOfTheLists) {
  globals.cmg_lcache = &a.cache;
  globals.cmg_datetime = &a.dates;
  ASSERT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_SUCCEED);
  EXPECT_EQ(found, &a.cache);
  EXPECT_EQ(globals.cmg_lcache, &last.cache);
  EXPECT_EQ(globals.cmg_datetime, nullptr);
}

TEST_F(Scan, FailsWhenTheDateTablesAreNotListed) {
  first.dates.next = nullptr;
  EXPECT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_FAIL);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(first.cache.locnext, &a.cache);
  globals.cmg_datetime = nullptr;
  EXPECT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_FAIL);
  a.cache.locdateinfo = b.cache.locdateinfo = nullptr;
  EXPECT_EQ(comn__scan_lcache(&context, &b.cache, &found), CS_FAIL);
  EXPECT_EQ(first.cache.locnext, &a.cache);
}

TEST_F(Scan, RefusesNullPointers) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__scan_lcache(nullptr, &b.cache, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__scan_lcache(&context, nullptr, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__scan_lcache(&context, &b.cache, nullptr));
}

// ---- copies ----

TEST(CopyCache, TakesNamesAndSharesObjects) {
  const AllocationProbe probe;
  WholeCache source;
  CsLocCache *copy;
  ASSERT_EQ(comn__create_loccache(nullptr, &copy), CS_SUCCEED);
  ASSERT_EQ(comn__copy_loccache(&source.cache, copy), CS_SUCCEED);
  const struct {
    CS_CHAR *name;
    CS_INT length;
    CS_CHAR *original;
  } fields[] = {{copy->locname, copy->locnamelen, source.names[0]},
                {copy->charname, copy->charnamelen, source.names[1]},
                {copy->sortname, copy->sortnamelen, source.names[2]},
                {copy->langname, copy->langnamelen, source.names[3]}};
  for (const auto &field : fields) {
    EXPECT_STREQ(field.name, field.original);
    EXPECT_NE(field.name, field.original);
    EXPECT_EQ(field.length, 2);
  }
  EXPECT_EQ(copy->locchardesc, &source.set);
  EXPECT_EQ(copy->locsortorder, &source.order);
  EXPECT_EQ(copy->locmessage, &source.message);
  for (const void *const absent :
       {static_cast<void *>(copy->datename), static_cast<void *>(copy->locdateinfo),
        static_cast<void *>(copy->numname), static_cast<void *>(copy->locnuminfo),
        static_cast<void *>(copy->monname), static_cast<void *>(copy->locmoninfo),
        static_cast<void *>(copy->locnext)})
    EXPECT_EQ(absent, nullptr);
  comn__drop_loccache(copy);
  comn__drop_loccache(nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(CopyCache, AbsentNamesStayAbsent) {
  CsLocCache source{}, copy{};
  const AllocationProbe probe;
  EXPECT_EQ(comn__copy_loccache(&source, &copy), CS_SUCCEED);
  EXPECT_EQ(copy.locname, nullptr);
  EXPECT_EQ(probe.allocations(), 0U);
}

TEST(CopyCache, FailsWithEachAllocation) {
  WholeCache source;
  CsLocCache *copy = nullptr;
  EXPECT_EQ(fail_each_allocation([] {},
                                 [&] {
                                   CS_RETCODE result = comn__create_loccache(nullptr, &copy);
                                   if (result == CS_SUCCEED) {
                                     result = comn__copy_loccache(&source.cache, copy);
                                     if (result != CS_SUCCEED)
                                       comn__drop_loccache(copy);
                                   } else {
                                     EXPECT_EQ(copy, nullptr);
                                   }
                                   EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR);
                                   return result != CS_SUCCEED;
                                 },
                                 [&] { comn__drop_loccache(copy); }),
            2U * 5);
}

TEST(DropCaches, RefusesNullPointers) {
  CS_CONTEXT context{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_loccache_drop(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_loccache_drop(&context));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__create_loccache(&context, nullptr));
}

} // namespace
