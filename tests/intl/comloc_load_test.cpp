// The start of a family of contexts; caches by name and derived ones.
#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"
#include "io_probe.h"
#include "zrvcomn/lmpublic.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_load.cpp";
constexpr const char *init_unit = "comloc_init.cpp";

std::string first_name(const CsOID *oid) {
  return oid != nullptr
             ? std::string(oid->oidlnames->string, static_cast<size_t>(oid->oidlnames->len))
             : "";
}

// ---- comn_intl_init ----

TEST(Init, PreparesTheGlobalsOnce) {
  const Installation installation;
  const AllocationProbe probe;
  {
    Family family;
    ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
    ASSERT_EQ(family.init(), CS_SUCCEED);
    const CsCtxGlobals before = family.globals;
    const auto *const set = static_cast<CsCharDesc *>(before.cmg_utf8_charset);
    EXPECT_EQ(first_name(set->oid), "utf8");
    EXPECT_EQ(set, before.cmg_chardesc);
    const auto *const cache = static_cast<CsLocCache *>(before.cmg_utf8_ctypeptr);
    EXPECT_EQ(cache->locchardesc, set);
    EXPECT_STREQ(cache->charname, "utf8");
    EXPECT_EQ(cache->charnamelen, 4);
    EXPECT_STREQ(cache->sortname, "binary");
    EXPECT_EQ(cache->sortnamelen, 6);
    ASSERT_NE(cache->locsortorder, nullptr);
    EXPECT_EQ(first_name(cache->locsortorder->oid), "binary");
    EXPECT_EQ(first_name(static_cast<CsOID *>(before.ucs2_oid)), "ucs2");
    EXPECT_EQ(family.caches(), 0U); // it stands on no list
    CS_INT version = 0, length = 0;
    EXPECT_EQ(lm_property(static_cast<LM_CONTEXT *>(before.lm), LM_ACTION_GET, LM_CXT_VERSION,
                          &version, CS_UNUSED, &length),
              CS_SUCCEED);
    EXPECT_EQ(version, 16001);
    const size_t allocations = probe.allocations();
    EXPECT_EQ(family.init(), CS_SUCCEED);
    EXPECT_EQ(probe.allocations(), allocations);
    EXPECT_EQ(std::memcmp(&family.globals, &before, sizeof before), 0);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(Init, TheListIsNotTheAllocatorOfTheLibrary) {
  const Installation installation;
  Family family;
  ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
  const AllocationProbe probe;
  ASSERT_EQ(family.init(), CS_SUCCEED);
  const size_t blocks = probe.live_blocks();
  EXPECT_EQ(com_intl_loccache_drop(&family.context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), blocks); // the record came from the system
  EXPECT_EQ(family.globals.cmg_utf8_ctypeptr, nullptr);
  EXPECT_EQ(family.globals.cmg_utf8_charset, nullptr);
  CS_VOID *const lists = family.globals.lm;
  EXPECT_EQ(family.init(), CS_SUCCEED); // and can be had again
  EXPECT_NE(family.globals.cmg_utf8_ctypeptr, nullptr);
  EXPECT_EQ(family.globals.lm, lists);
}

TEST(Init, NeedsThreeIdentifiers) {
  for (const std::string_view absent : {"utf8, ", "binary", "ucs2"}) {
    const Installation installation;
    std::string identifiers(small_identifiers);
    identifiers.replace(identifiers.find(absent), absent.size() - 1, "absent");
    installation.write("config/objectid.dat", identifiers);
    Family family;
    ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
    EXPECT_EQ(family.init(), CS_FAIL) << absent;
    EXPECT_EQ(family.globals.cmg_utf8_charset, nullptr);
    EXPECT_EQ(family.globals.cmg_utf8_ctypeptr, nullptr);
    EXPECT_EQ(family.globals.lm, nullptr);
    EXPECT_EQ(family.globals.ucs2_oid, nullptr);
  }
}

TEST(Init, FailsAsTheLoadersDo) {
  const Installation installation;
  for (const char *const file : {"charset.loc", "binary.srt"}) {
    const std::string name = Installation::charset_file("utf8", file);
    installation.remove(name);
    Family family;
    ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
    GuardedBuffer path(200);
    EXPECT_EQ(comn_intl_init(&family.context, path.text(), 200), COM_LOCFILE_ERROR);
    EXPECT_EQ(path.text(), installation.path(name));
    EXPECT_EQ(family.context.ctxintlerr, ZRVINTL_EOPEN);
    EXPECT_EQ(family.globals.cmg_utf8_charset, nullptr);
    installation.write(name, file == std::string("charset.loc")
                                 ? empty_charset("utf8", 1)
                                 : binary_sort_order("utf8", "binary"));
    EXPECT_EQ(family.init(), CS_SUCCEED);
  }
}

TEST(Init, FailsWithEachAllocation) {
  const Installation installation;
  Family family;
  ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
  const size_t failed = fail_each_allocation(
      [] {},
      [&] {
        const CS_RETCODE result = family.init();
        EXPECT_EQ(result == CS_SUCCEED, family.globals.cmg_utf8_charset != nullptr);
        return result != CS_SUCCEED;
      },
      [&] {
        com_intl_loccache_drop(&family.context);
        com_intl_chardesc_drop(&family.context);
        EXPECT_EQ(comn_lm_exit(&family.context), CS_SUCCEED);
        EXPECT_EQ(family.globals.lm, nullptr);
      });
  EXPECT_GT(failed, 10U);
}

TEST(Init, RefusesNullPointers) {
  CS_CONTEXT context{};
  EXPECT_NULL_POINTER_CHECK(init_unit, CS_FAIL, comn_intl_init(nullptr, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(init_unit, CS_FAIL, comn_intl_init(&context, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(init_unit, CS_FAIL, comn_lm_exit(nullptr));
  EXPECT_NULL_POINTER_CHECK(init_unit, CS_FAIL, comn_lm_exit(&context));
}

TEST(ListContext, StaysWhileItHasLists) {
  const Installation installation;
  Family family;
  ASSERT_EQ(family.load_identifiers(), CS_SUCCEED);
  EXPECT_EQ(comn_lm_exit(&family.context), CS_SUCCEED); // there is none yet
  ASSERT_EQ(family.init(), CS_SUCCEED);
  auto *const lists = static_cast<LM_CONTEXT *>(family.globals.lm);
  LM_HANDLE *list = nullptr;
  ASSERT_EQ(lm_list_alloc(lists, LM_QUEUE, MutableText("x"), 1, &list), CS_SUCCEED);
  EXPECT_EQ(comn_lm_exit(&family.context), CS_FAIL);
  EXPECT_EQ(family.globals.lm, lists);
  EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_SUCCEED);
}

// ---- comn_intl_load ----

class Load : public testing::Test {
protected:
  Load() {
    EXPECT_EQ(family.load_identifiers(), CS_SUCCEED);
    EXPECT_EQ(family.init(), CS_SUCCEED);
  }
  CsLocCache *derive(CS_INT type, std::string_view name, CsLocCache *old,
                     CS_RETCODE expected = CS_SUCCEED) {
    CS_VOID *cache = nullptr;
    EXPECT_EQ(comn_intl_load_zrvtypes(&family.context, type, MutableText(name),
                                      static_cast<CS_INT>(name.size()), nullptr, 0, old, &cache),
              expected)
        << name;
    return static_cast<CsLocCache *>(cache);
  }
  CsLocCache *head() const { return static_cast<CsLocCache *>(family.globals.cmg_lcache); }

  const AllocationProbe probe;
  const Installation installation;
  Family family;
};

TEST_F(Load, AWholeRow) {
  CsLocCache *const cache = family.loaded("de_DE");
  ASSERT_NE(cache, nullptr);
  EXPECT_STREQ(cache->locname, "de_DE");
  EXPECT_EQ(cache->locnamelen, 5);
  EXPECT_STREQ(cache->charname, "set1");
  EXPECT_EQ(cache->charnamelen, 4);
  EXPECT_EQ(first_name(cache->locchardesc->oid), "set1");
  EXPECT_STREQ(cache->langname, "german");
  EXPECT_EQ(cache->langnamelen, 6);
  EXPECT_EQ(first_name(cache->locmessage->lang_oid), "german");
  EXPECT_EQ(cache->locmessage->charset_oid, cache->locchardesc->oid);
  EXPECT_STREQ(cache->sortname, "other");
  EXPECT_EQ(cache->sortnamelen, 5);
  EXPECT_EQ(first_name(cache->locsortorder->oid), "other");
  EXPECT_EQ(cache->locsortorder, cache->locchardesc->sort_order);
  ASSERT_NE(cache->locdateinfo, nullptr);
  EXPECT_EQ(cache->locdateinfo->id, cache->locmessage->lang_oid);
  EXPECT_STREQ(reinterpret_cast<char *>(cache->locdateinfo->months[0]), "Januar");
  EXPECT_EQ(cache->datename, nullptr);
  EXPECT_EQ(cache->numname, nullptr);
  EXPECT_EQ(cache->monname, nullptr);
  EXPECT_EQ(cache->locnuminfo, nullptr);
  EXPECT_EQ(cache->locmoninfo, nullptr);
  EXPECT_EQ(head(), cache);
}

TEST_F(Load, ARowMayEndBehindTheCharacterSet) {
  CsLocCache *const cache = family.loaded("default");
  EXPECT_STREQ(cache->sortname, "binary");
  EXPECT_EQ(cache->sortnamelen, 6);
  EXPECT_STREQ(cache->langname, "english");
  EXPECT_EQ(cache->locchardesc, family.globals.cmg_utf8_charset);
  EXPECT_EQ(cache->locdateinfo->firstday, 7);
}

// Of the three kinds of formats only that for money is loaded, and its reader sets nothing.
TEST_F(Load, ARowWithFormats) {
  for (const char *const other : {"locales/datetime/dates.dt", "locales/numeric/numbers.num",
                                  "locales/message/german/common.loc"})
    installation.remove(other);
  CsLocCache *const cache = family.loaded("formats");
  ASSERT_NE(cache, nullptr);
  EXPECT_STREQ(cache->datename, "dates");
  EXPECT_EQ(cache->datenamelen, 5);
  EXPECT_STREQ(cache->numname, "numbers");
  EXPECT_EQ(cache->numnamelen, 7);
  EXPECT_STREQ(cache->monname, "coins");
  EXPECT_EQ(cache->monnamelen, 5);
  EXPECT_EQ(cache->locdateinfo, nullptr);
  EXPECT_EQ(cache->locnuminfo, nullptr);
  EXPECT_EQ(cache->locmoninfo, nullptr);
}

TEST_F(Load, MoneyIsReadAgainForEachCache) {
  installation.write("locales/locales.dat", "[linux]\n"
                                            "locale = a, german, set1, binary,,, coins\n"
                                            "locale = b, german, set1, binary,,, coins\n");
  EXPECT_NE(family.loaded("a"), nullptr);
  installation.remove("locales/money/coins.mon");
  CsLocCache *cache = nullptr;
  EXPECT_EQ(family.load("b", &cache), COM_LOCFILE_ERROR);
}

TEST_F(Load, ANameIsLoadedOnce) {
  CsLocCache *const cache = family.loaded("de_DE");
  family.loaded("default");
  installation.remove("locales/locales.dat");
  const size_t allocations = probe.allocations();
  EXPECT_EQ(family.loaded("de_DE"), cache);
  EXPECT_EQ(probe.allocations(), allocations);
  EXPECT_EQ(family.caches(), 2U);
}

// A cache is found by so many bytes of the name, a row by the name up to its NUL.
TEST_F(Load, TheLengthOfTheNameCountsForCaches) {
  CsLocCache *const cache = family.loaded("de_DE");
  CS_VOID *found = nullptr;
  EXPECT_EQ(comn_intl_load(&family.context, MutableText("de_DE.x"), 5, &found, nullptr, 0),
            CS_SUCCEED);
  EXPECT_EQ(found, cache);
  EXPECT_EQ(comn_intl_load(&family.context, MutableText("de_DE"), 4, &found, nullptr, 0),
            CS_SUCCEED);
  EXPECT_NE(found, cache);
  EXPECT_STREQ(static_cast<CsLocCache *>(found)->locname, "de_D");
}

TEST_F(Load, ObjectsAreShared) {
  installation.write("locales/locales.dat", "[linux]\n"
                                            "locale = a, german, set1\n"
                                            "locale = b, de, Set-1, binary\n");
  CsLocCache *const a = family.loaded("a");
  installation.remove("locales/message/german/common.loc");
  installation.remove("charsets/set1/charset.loc");
  CsLocCache *const b = family.loaded("b");
  ASSERT_NE(b, nullptr);
  EXPECT_NE(a, b);
  EXPECT_EQ(a->locchardesc, b->locchardesc);
  EXPECT_EQ(a->locmessage, b->locmessage);
  EXPECT_EQ(a->locsortorder, b->locsortorder);
  EXPECT_EQ(a->locdateinfo, b->locdateinfo);
  EXPECT_STREQ(b->charname, "Set-1"); // as the row has it
  EXPECT_EQ(head(), b);
  EXPECT_EQ(b->locnext, a);
}

TEST_F(Load, Failures) {
  const struct {
    const char *row;
    CS_RETCODE result;
  } rows[] = {
      {"y, german, set1", CS_FAIL},                  // no such row
      {"x, german", CS_FAIL},                        // refused
      {"x, german, none", CS_FAIL},                  // no identifier
      {"x, german, ucs2", COM_LOCFILE_ERROR},        // no file
      {"x, none, set1", CS_FAIL},                    //
      {"x, german, set1, none", CS_FAIL},            //
      {"x, german, set2, other", COM_LOCFILE_ERROR}, // the file is taken away below
      {"x, english, set1", COM_LOCFILE_ERROR},       // as is this one
      {"x, german, set1, binary, none", CS_FAIL},
      {"x, german, set1, binary, dates, none", CS_FAIL},
      {"x, german, set1, binary, dates, numbers, none", CS_FAIL},
      {"x, german, set1, binary, dates, numbers, coins", COM_LOCFILE_ERROR},
  };
  installation.remove("charsets/set2/other.srt");
  installation.remove("locales/message/english/common.loc");
  installation.remove("locales/money/coins.mon");
  CsLocCache *cache = family.loaded("de_DE"), *const before = cache;
  for (const auto &row : rows) {
    installation.write("locales/locales.dat", std::string("[linux]\nlocale = ") + row.row + "\n");
    EXPECT_EQ(family.load("x", &cache), row.result) << row.row;
    EXPECT_EQ(cache, before);
    EXPECT_EQ(head(), before);
  }
  installation.remove("locales/locales.dat");
  EXPECT_EQ(family.load("x", &cache), COM_LOCFILE_ERROR);
}

TEST_F(Load, TellsTheFileAtFault) {
  const struct {
    const char *locale, *file;
  } rows[] = {{"formats", "locales/money/coins.mon"},
              {"de_DE", "locales/message/german/common.loc"},
              {"de_DE", "charsets/set1/other.srt"},
              {"de_DE", "charsets/set1/charset.loc"},
              {"de_DE", "locales/locales.dat"}};
  for (const auto &row : rows) {
    com_intl_loccache_drop(&family.context);
    com_intl_chardesc_drop(&family.context);
    comn_intl_dt_drop(&family.context);
    installation.remove(row.file);
    GuardedBuffer path(200);
    CS_VOID *cache = nullptr;
    family.context.ctxintlerr = 0;
    EXPECT_EQ(comn_intl_load(&family.context, MutableText(row.locale),
                             static_cast<CS_INT>(std::strlen(row.locale)), &cache, path.text(),
                             200),
              COM_LOCFILE_ERROR)
        << row.file;
    EXPECT_EQ(path.text(), installation.path(row.file));
    EXPECT_EQ(family.context.ctxintlerr, ZRVINTL_EOPEN);
  }
}

TEST_F(Load, FailsWithEachAllocation) {
  for (const char *const name : {"de_DE", "formats"}) {
    CsLocCache *cache = nullptr;
    const size_t failed =
        fail_each_allocation([] {},
                             [&] {
                               const CS_RETCODE result = family.load(name, &cache);
                               EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR ||
                                           result == COM_LOCFILE_ERROR) // the block of an open file
                                   << result;
                               EXPECT_EQ(family.caches(), result == CS_SUCCEED ? 1U : 0U);
                               return result != CS_SUCCEED;
                             },
                             [&] {
                               comn_intl_dt_drop(&family.context);
                               comn_intl_message_drop(&family.context);
                               com_intl_loccache_drop(&family.context);
                               com_intl_chardesc_drop(&family.context);
                               cache = nullptr;
                             });
    // Twice those of the cache, of the character set and of what the language has.
    EXPECT_GE(failed, 2 * 10U);
  }
}

TEST_F(Load, FailsWithEachIoOperation) {
  CsLocCache *cache = nullptr;
  const size_t failed = fail_each_io([&] {
    const CS_RETCODE result = family.load("formats", &cache);
    EXPECT_TRUE(result == CS_SUCCEED || result == COM_LOCFILE_ERROR || result == COM_INTL_ERROR)
        << result;
    EXPECT_EQ(family.caches(), result == CS_SUCCEED ? 1U : 0U);
    com_intl_loccache_drop(&family.context);
    com_intl_chardesc_drop(&family.context);
    return result != CS_SUCCEED;
  });
  EXPECT_GE(failed, 6U);
}

TEST_F(Load, RefusesWrongArguments) {
  MutableText name("de_DE");
  CS_VOID *cache = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_load(nullptr, name, 5, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_intl_load(&family.context, nullptr, 5, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_intl_load(&family.context, name, 5, nullptr, nullptr, 0));
  EXPECT_ASSERTION(unit, CS_FAIL, comn_intl_load(&family.context, name, 0, &cache, nullptr, 0));
  EXPECT_EQ(cache, nullptr);
}

// ---- comn_intl_load_zrvtypes ----

TEST_F(Load, DerivesAnotherLanguage) {
  installation.write("locales/message/de/common.loc", german_dates);
  CsLocCache *const old = family.loaded("default");
  CsLocCache *const cache = derive(COM_LOCTYPE_LANGUAGE, "de", old);
  ASSERT_NE(cache, nullptr);
  EXPECT_NE(cache, old);
  EXPECT_EQ(head(), cache);
  EXPECT_EQ(cache->locname, nullptr);
  EXPECT_EQ(cache->locnamelen, 0);
  EXPECT_STREQ(cache->langname, "de");
  EXPECT_EQ(cache->langnamelen, 2);
  EXPECT_STREQ(cache->charname, "utf8");
  EXPECT_STREQ(cache->sortname, "binary");
  EXPECT_EQ(cache->locchardesc, old->locchardesc);
  EXPECT_EQ(cache->locsortorder, old->locsortorder);
  EXPECT_EQ(first_name(cache->locmessage->lang_oid), "german");
  EXPECT_EQ(cache->locdateinfo->firstday, 1);
}

// The directory of the messages is that of the name.
TEST_F(Load, ADerivedLanguageIsReadUnderItsNewName) {
  CsLocCache *const old = family.loaded("default");
  CS_VOID *cache = nullptr;
  GuardedBuffer path(200);
  EXPECT_EQ(comn_intl_load_zrvtypes(&family.context, COM_LOCTYPE_LANGUAGE, MutableText("de"), 2,
                                    path.text(), 200, old, &cache),
            COM_LOCFILE_ERROR);
  EXPECT_EQ(path.text(), installation.path("locales/message/de/common.loc"));
  EXPECT_EQ(cache, nullptr);
  EXPECT_EQ(head(), old);
}

TEST_F(Load, DerivesAnotherCharacterSet) {
  CsLocCache *const old = family.loaded("de_DE");
  CsLocCache *const cache = derive(COM_LOCTYPE_CHARSET, "set2", old);
  ASSERT_NE(cache, nullptr);
  EXPECT_STREQ(cache->charname, "set2");
  EXPECT_EQ(cache->charnamelen, 4);
  EXPECT_EQ(first_name(cache->locchardesc->oid), "set2");
  EXPECT_STREQ(cache->langname, "german");
  EXPECT_EQ(cache->locmessage, old->locmessage);
  EXPECT_EQ(cache->locdateinfo, old->locdateinfo);
  EXPECT_EQ(cache->locsortorder, old->locsortorder);
}

// A context with a locale wants the new set's own sort order.
TEST_F(Load, ANewCharacterSetGetsTheSortOrderOfItsOwn) {
  CsLocCache *const old = family.loaded("de_DE");
  family.default_locale = Family::locale_of(old);
  family.context.ctxlocale = &family.default_locale;
  CsLocCache *const cache = derive(COM_LOCTYPE_CHARSET, "set2", old);
  ASSERT_NE(cache, nullptr);
  EXPECT_NE(cache->locsortorder, old->locsortorder);
  EXPECT_EQ(cache->locsortorder, cache->locchardesc->sort_order);
  EXPECT_EQ(first_name(cache->locsortorder->oid), "other");
}

TEST_F(Load, ALoadedCharacterSetLeavesTheSortOrder) {
  installation.write("locales/locales.dat", "[linux]\n"
                                            "locale = a, german, set1, other\n"
                                            "locale = b, english, set2, other\n");
  CsLocCache *const old = family.loaded("a");
  CsLocCache *const other = family.loaded("b");
  family.default_locale = Family::locale_of(old);
  family.context.ctxlocale = &family.default_locale;
  CsLocCache *const cache = derive(COM_LOCTYPE_CHARSET, "set2", old);
  ASSERT_NE(cache, nullptr);
  EXPECT_EQ(cache->locchardesc, other->locchardesc);
  EXPECT_EQ(cache->locsortorder, old->locsortorder);
  EXPECT_NE(cache->locsortorder, other->locsortorder);
}

TEST_F(Load, DerivesAnotherSortOrder) {
  CsLocCache *const old = family.loaded("de_DE");
  CsLocCache *const cache = derive(COM_LOCTYPE_SORTORDER, "binary", old);
  ASSERT_NE(cache, nullptr);
  EXPECT_STREQ(cache->sortname, "binary");
  EXPECT_EQ(cache->sortnamelen, 6);
  EXPECT_EQ(first_name(cache->locsortorder->oid), "binary");
  EXPECT_EQ(cache->locchardesc, old->locchardesc);
  EXPECT_EQ(cache->locchardesc->sort_order, cache->locsortorder);
}

TEST_F(Load, ADerivedCacheHasNoFormats) {
  CsLocCache *const cache = derive(COM_LOCTYPE_SORTORDER, "other", family.loaded("formats"));
  EXPECT_EQ(cache->datename, nullptr);
  EXPECT_EQ(cache->numname, nullptr);
  EXPECT_EQ(cache->monname, nullptr);
  ASSERT_NE(cache->locdateinfo, nullptr); // those of the language
  EXPECT_EQ(cache->locdateinfo->firstday, 1);
}

TEST_F(Load, DerivingFindsWhatIsThere) {
  CsLocCache *const english = family.loaded("default");
  CsLocCache *const german = family.loaded("de_DE");
  // what is in use already
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "english", english), english);
  EXPECT_EQ(derive(COM_LOCTYPE_CHARSET, "UTF-8", english), english);
  EXPECT_EQ(derive(COM_LOCTYPE_SORTORDER, "other", german), german);
  EXPECT_EQ(family.caches(), 2U);
  // there and back again
  CsLocCache *const derived = derive(COM_LOCTYPE_LANGUAGE, "de", english);
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", english), derived);
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "english", derived), english);
  EXPECT_EQ(family.caches(), 3U);
}

TEST_F(Load, TheNewestCacheWins) {
  installation.write("locales/locales.dat", "[linux]\n"
                                            "locale = a, german, set1\n"
                                            "locale = b, german, set1\n");
  CsLocCache *const a = family.loaded("a");
  CsLocCache *const b = family.loaded("b");
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", a), b);
}

// Without a name for its sort order a cache goes with such caches alone.
TEST_F(Load, ACacheWithoutSortName) {
  CsLocCache *const old = family.loaded("de_DE");
  comn_free(old->sortname);
  old->sortname = nullptr;
  old->sortnamelen = 0;
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", old), old);
  CsLocCache *const cache = derive(COM_LOCTYPE_SORTORDER, "other", old);
  EXPECT_NE(cache, old);
  EXPECT_STREQ(cache->sortname, "other");
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", cache), cache);
}

// Caches that others have put on the list may lack what is compared.
TEST_F(Load, ACacheWithoutObjectsIsNotFound) {
  CsLocCache *const old = family.loaded("de_DE");
  CsLocCache bare{};
  bare.locnext = old;
  family.globals.cmg_lcache = &bare;
  for (const bool has_set : {false, true}) {
    bare.locchardesc = has_set ? old->locchardesc : nullptr;
    EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", old), old);
  }
  bare.locmessage = old->locmessage;
  MutableText name("other");
  bare.sortname = name;
  EXPECT_EQ(derive(COM_LOCTYPE_LANGUAGE, "german", old), old); // there is no sort order either
  family.globals.cmg_lcache = old;
}

TEST_F(Load, ANameWithoutIdentifier) {
  CsLocCache *const old = family.loaded("de_DE");
  for (const CS_INT type : {COM_LOCTYPE_LANGUAGE, COM_LOCTYPE_CHARSET, COM_LOCTYPE_SORTORDER}) {
    EXPECT_EQ(derive(type, "none", old, COM_UNKNOWN_NAME), nullptr);
    EXPECT_EQ(derive(type, "", old, COM_UNKNOWN_NAME), nullptr);
  }
  // each class has names of its own
  derive(COM_LOCTYPE_LANGUAGE, "utf8", old, COM_UNKNOWN_NAME);
  derive(COM_LOCTYPE_CHARSET, "german", old, COM_UNKNOWN_NAME);
  derive(COM_LOCTYPE_SORTORDER, "german", old, COM_UNKNOWN_NAME);
  EXPECT_EQ(head(), old);
}

TEST_F(Load, DerivingFailsWithEachAllocation) {
  installation.write("locales/message/de/common.loc", german_dates);
  CsLocCache *const english = family.loaded("default");
  const struct {
    CS_INT type;
    const char *name;
  } rows[] = {{COM_LOCTYPE_LANGUAGE, "de"},
              {COM_LOCTYPE_CHARSET, "set2"},
              {COM_LOCTYPE_SORTORDER, "other"}};
  for (const auto &row : rows) {
    const size_t caches = family.caches();
    AllocationProbe::Mode modes[] = {AllocationProbe::fail_once,
                                     AllocationProbe::fail_from_then_on};
    for (const AllocationProbe::Mode mode : modes) {
      AllocationProbe failing;
      for (size_t n = 1;; ++n) {
        failing.fail(n, mode);
        CS_VOID *cache = nullptr;
        const CS_RETCODE result = comn_intl_load_zrvtypes(
            &family.context, row.type, MutableText(row.name),
            static_cast<CS_INT>(std::strlen(row.name)), nullptr, 0, english, &cache);
        failing.succeed();
        if (result == CS_SUCCEED)
          break;
        EXPECT_EQ(cache, nullptr);
        EXPECT_EQ(family.caches(), caches);
      }
      // once more from the beginning: the derived cache is taken away again
      auto *const derived = head();
      family.globals.cmg_lcache = derived->locnext;
      comn__drop_loccache(derived);
    }
  }
}

// The name that another takes the place of goes, too, and so does a cache that does not come to be.
TEST(DerivedCaches, LeaveNothingBehind) {
  const Installation installation;
  AllocationProbe probe;
  {
    Family family;
    family.start("de_DE");
    CS_VOID *const old = family.default_locale.timeptr;
    const std::pair<CS_INT, const char *> rows[] = {{COM_LOCTYPE_LANGUAGE, "english"},
                                                    {COM_LOCTYPE_CHARSET, "set2"},
                                                    {COM_LOCTYPE_SORTORDER, "binary"}};
    for (const auto &[type, name] : rows) {
      CS_VOID *cache = nullptr;
      size_t n = 0;
      do
        probe.fail(++n);
      while (comn_intl_load_zrvtypes(&family.context, type, MutableText(name),
                                     static_cast<CS_INT>(std::strlen(name)), nullptr, 0, old,
                                     &cache) != CS_SUCCEED);
      probe.succeed();
      EXPECT_GT(n, 4U);
      EXPECT_NE(cache, old);
    }
    EXPECT_EQ(family.caches(), 4U);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(Load, DerivingRefusesWrongArguments) {
  MutableText name("german");
  CsLocCache *const old = family.loaded("de_DE");
  CS_VOID *cache = nullptr;
  const auto derive_from = [&](CS_CONTEXT *context, CS_INT type, CS_CHAR *text, CsLocCache *from,
                               CS_VOID **to) {
    return comn_intl_load_zrvtypes(context, type, text, 6, nullptr, 0, from, to);
  };
  for (const CS_INT type : {7, 11})
    EXPECT_ASSERTION(unit, CS_FAIL, derive_from(&family.context, type, name, old, &cache));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, derive_from(nullptr, 8, name, old, &cache));
  CS_CONTEXT without_globals{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, derive_from(&without_globals, 8, name, old, &cache));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, derive_from(&family.context, 8, nullptr, old, &cache));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, derive_from(&family.context, 8, name, nullptr, &cache));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, derive_from(&family.context, 8, name, old, nullptr));
  CsLocCache incomplete = *old;
  incomplete.locsortorder = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            derive_from(&family.context, 8, name, &incomplete, &cache));
  EXPECT_EQ(cache, nullptr);
}

} // namespace
