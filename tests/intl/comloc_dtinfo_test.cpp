// Date tables: read from common.loc, copied, compared, released.
#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"
#include "io_probe.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_dtinfo.cpp";

std::string text(const CS_BYTE *bytes) {
  return reinterpret_cast<const char *>(bytes);
}

// ---- reading ----

class ReadCommon : public testing::Test {
protected:
  ReadCommon() {
    context.ctxglobals = &globals;
    cache.locchardesc = &set;
    cache.locmessage = &message;
    cache.langname = name;
    cache.langnamelen = 6;
    message.lang_oid = &language;
  }
  ~ReadCommon() override { EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED); }

  CS_RETCODE read() { return comn__read_common(&context, &cache, nullptr, 0); }
  CS_RETCODE read(const std::string &file) {
    installation.write("locales/message/german/common.loc", file);
    return read();
  }
  static std::string with(const std::string &from, const std::string &to) {
    std::string file(german_dates);
    const size_t at = file.find(from);
    EXPECT_NE(at, std::string::npos);
    return file.replace(at, from.size(), to);
  }

  const Installation installation;
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsLocCache cache{};
  CsCharDesc set{};
  CS_MESSAGE message{};
  CsOID language{};
  char name[7] = "german";
};

TEST_F(ReadCommon, FillsATable) {
  ASSERT_EQ(read(), CS_SUCCEED);
  const CS_DATEINFO &table = *cache.locdateinfo;
  EXPECT_EQ(globals.cmg_datetime, &table);
  EXPECT_EQ(table.id, &language);
  EXPECT_EQ(table.next, nullptr);
  EXPECT_EQ(text(table.months[0]), "Januar");
  EXPECT_EQ(text(table.months[2]), "M\xC3\xA4rz");
  EXPECT_EQ(table.mon_len[2], 5);
  EXPECT_EQ(text(table.months[11]), "Dezember");
  EXPECT_EQ(table.mon_len[11], 8);
  EXPECT_EQ(text(table.shortmonths[9]), "Okt");
  EXPECT_EQ(table.shrtmon_len[9], 3);
  for (int i = 0; i < 7; ++i) {
    constexpr const char *days[] = {"Montag",  "Dienstag", "Mittwoch", "Donnerstag",
                                    "Freitag", "Samstag",  "Sonntag"};
    EXPECT_EQ(text(table.days[i]), days[i]);
    EXPECT_EQ(table.day_len[i], static_cast<CS_INT>(std::strlen(days[i])));
    EXPECT_EQ(table.shortdays[i], nullptr);
  }
  EXPECT_EQ(table.firstday, 1);
  EXPECT_EQ(table.is12hour, 0);
  EXPECT_STREQ(table.dateorder, "dmy");
  EXPECT_EQ(table.locdateorder_id, 2);
  EXPECT_EQ(table.convertfmt, 3);
  EXPECT_EQ(table.bdtconvertfmt, -1);
  EXPECT_EQ(table.secprec, 0);
  for (const CS_BYTE *const absent :
       {table.amindict, table.pmindict, table.datefmt, table.timefmt, table.longdtfmt,
        table.shrtdtfmt, table.era, table.era_t_fmt, table.era_d_fmt, table.era_dt_fmt})
    EXPECT_EQ(absent, nullptr);
}

TEST_F(ReadCommon, DaysBeginWithTheFirstDayOfTheWeek) {
  constexpr const char *days[] = {"Montag",  "Dienstag", "Mittwoch", "Donnerstag",
                                  "Freitag", "Samstag",  "Sonntag"};
  for (int first = 1; first <= 7; ++first) {
    ASSERT_EQ(read(with("firstday = 1", "firstday = " + std::to_string(first))), CS_SUCCEED);
    EXPECT_EQ(cache.locdateinfo->firstday, first);
    for (int i = 0; i < 7; ++i)
      EXPECT_EQ(text(cache.locdateinfo->days[i]), days[(first - 1 + i) % 7]);
    EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
  }
}

TEST_F(ReadCommon, EachDateOrder) {
  const struct {
    const char *text;
    int id;
    CS_INT style;
  } rows[] = {{"mdy", 1, 0},  {"dmy", 2, 3}, {"ymd", 3, 11}, {"ydm", 4, 13}, {"myd", 5, 14},
              {"dym", 6, 15}, {"DMY", 1, 0}, {"dd", 1, 0},   {"\"\"", 1, 0}, {"yyy", 1, 0}};
  for (const auto &row : rows) {
    ASSERT_EQ(read(with("dateorder = dmy", std::string("dateorder = ") + row.text)), CS_SUCCEED);
    EXPECT_EQ(cache.locdateinfo->locdateorder_id, row.id) << row.text;
    EXPECT_EQ(cache.locdateinfo->convertfmt, row.style) << row.text;
    EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
  }
}

TEST_F(ReadCommon, OtherSectionsAreSkipped) {
  EXPECT_EQ(read("[first]\nmonths = 1\n[Datetime]\n" + std::string(german_dates)), CS_SUCCEED);
  EXPECT_EQ(text(cache.locdateinfo->months[0]), "Januar");
}

TEST_F(ReadCommon, ALanguageIsReadOnce) {
  ASSERT_EQ(read(), CS_SUCCEED);
  CS_DATEINFO *const table = cache.locdateinfo;
  installation.remove("locales/message/german/common.loc");
  CsLocCache other = cache;
  other.locdateinfo = nullptr;
  GuardedBuffer path(200);
  EXPECT_EQ(comn__read_common(&context, &other, path.text(), 200), CS_SUCCEED);
  EXPECT_EQ(other.locdateinfo, table);
  EXPECT_TRUE(path.is_untouched()); // no file was opened
  CsOID another{};
  message.lang_oid = &another;
  EXPECT_EQ(comn__read_common(&context, &other, path.text(), 200), COM_LOCFILE_ERROR);
  EXPECT_EQ(path.text(), installation.path("locales/message/german/common.loc"));
  EXPECT_EQ(other.locdateinfo, table);
}

TEST_F(ReadCommon, NewTablesComeFirst) {
  ASSERT_EQ(read(), CS_SUCCEED);
  CS_DATEINFO *const first = cache.locdateinfo;
  CsOID another{};
  message.lang_oid = &another;
  ASSERT_EQ(read(), CS_SUCCEED);
  EXPECT_NE(cache.locdateinfo, first);
  EXPECT_EQ(globals.cmg_datetime, cache.locdateinfo);
  EXPECT_EQ(cache.locdateinfo->next, first);
  EXPECT_EQ(comn__scan_cache_dt(&context, &language), first);
  EXPECT_EQ(comn__scan_cache_dt(&context, &another), cache.locdateinfo);
  CsOID third{};
  EXPECT_EQ(comn__scan_cache_dt(&context, &third), nullptr);
  first->id = nullptr; // private: found by nobody
  EXPECT_EQ(comn__scan_cache_dt(&context, nullptr), nullptr);
}

TEST_F(ReadCommon, Failures) {
  const struct {
    const char *what;
    std::string file;
    CS_RETCODE result;
    int status;
  } rows[] = {
      {"no section", "[other]\n", CS_FAIL, 0},
      {"an empty file", "", CS_FAIL, 0},
      {"an incomplete section", "[datetime]\nfirstday = 1\n", COM_INTL_ERROR, ZRVINTL_EDATE},
      {"a wrong day", with("firstday = 1", "firstday = 8"), COM_INTL_ERROR, ZRVINTL_EDATE},
      {"an error before the section", "x\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"an error in the section", std::string(german_dates) + "x\n", COM_INTL_ERROR,
       ZRVINTL_ESYNTAX},
  };
  for (const auto &row : rows) {
    context.ctxintlerr = 0;
    const AllocationProbe probe;
    EXPECT_EQ(read(row.file), row.result) << row.what;
    EXPECT_EQ(context.ctxintlerr, row.status) << row.what;
    EXPECT_EQ(cache.locdateinfo, nullptr) << row.what;
    EXPECT_EQ(globals.cmg_datetime, nullptr) << row.what;
    EXPECT_EQ(probe.live_blocks(), 0U) << row.what;
  }
  installation.remove("locales/message/german/common.loc");
  EXPECT_EQ(read(), COM_LOCFILE_ERROR);
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_EOPEN);
}

TEST_F(ReadCommon, FailsWithEachAllocation) {
  const size_t descriptors = open_descriptors();
  EXPECT_EQ(fail_each_allocation([] {},
                                 [this] {
                                   const CS_RETCODE result = read();
                                   EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR ||
                                               result ==
                                                   COM_LOCFILE_ERROR) // the block of the open file
                                       << result;
                                   EXPECT_EQ(result == CS_SUCCEED, cache.locdateinfo != nullptr);
                                   return result != CS_SUCCEED;
                                 },
                                 [this] {
                                   comn_intl_dt_drop(&context);
                                   cache.locdateinfo = nullptr;
                                 }) >= 1 + 12 + 12 + 7,
            true);
  EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(ReadCommon, FailsWithEachIoOperation) {
  const size_t failed = fail_each_io([this] {
    const CS_RETCODE result = read();
    if (result == CS_SUCCEED) {
      comn_intl_dt_drop(&context);
      cache.locdateinfo = nullptr;
    }
    EXPECT_EQ(globals.cmg_datetime, nullptr);
    return result != CS_SUCCEED;
  });
  EXPECT_GE(failed, 2U);
}

TEST_F(ReadCommon, NeedsACompleteCache) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_common(nullptr, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_common(&context, nullptr, nullptr, 0));
  cache.locmessage = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, read());
  cache.locmessage = &message;
  cache.locchardesc = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, read());
}

// ---- copies ----

// A table that has everything, its texts on the heap of the library.
class WholeTable {
public:
  WholeTable() : table(static_cast<CS_DATEINFO *>(comn_calloc(1, sizeof(CS_DATEINFO)))) {
    each([](CS_BYTE *&bytes, CS_INT &length, int number) {
      length = 3 + number % 5;
      bytes = static_cast<CS_BYTE *>(comn_malloc(static_cast<size_t>(length)));
      std::memset(bytes, 'A' + number, static_cast<size_t>(length));
    });
    table->is12hour = 1;
    table->firstday = 2;
    table->secprec = 6;
    std::strcpy(table->dateorder, "dmy");
    table->convertfmt = 3;
    table->bdtconvertfmt = 40;
    table->locdateorder_id = 2;
    table->next = table;
  }
  ~WholeTable() { comn__free_dtinfo(table); }
  WholeTable(const WholeTable &) = delete;
  WholeTable &operator=(const WholeTable &) = delete;

  // Calls `visit` with each text of a table, its length and its number.
  template <class Visit>
  static void each(CS_DATEINFO &of, Visit visit) {
    int number = 0;
    for (size_t i = 0; i < 12; ++i) {
      visit(of.months[i], of.mon_len[i], number++);
      visit(of.shortmonths[i], of.shrtmon_len[i], number++);
    }
    for (size_t i = 0; i < 7; ++i) {
      visit(of.days[i], of.day_len[i], number++);
      visit(of.shortdays[i], of.shrtday_len[i], number++);
    }
    visit(of.amindict, of.amindict_len, number++);
    visit(of.pmindict, of.pmindict_len, number++);
    visit(of.datefmt, of.datefmt_len, number++);
    visit(of.timefmt, of.timefmt_len, number++);
    visit(of.longdtfmt, of.longdtfmt_len, number++);
    visit(of.shrtdtfmt, of.shrtdtfmt_len, number++);
    visit(of.era, of.era_len, number++);
    visit(of.era_t_fmt, of.eratfmt_len, number++);
    visit(of.era_d_fmt, of.eradfmt_len, number++);
    visit(of.era_dt_fmt, of.eradtfmt_len, number++);
  }
  template <class Visit>
  void each(Visit visit) {
    each(*table, visit);
  }

  CS_DATEINFO *operator->() { return table; }
  CS_DATEINFO *get() { return table; }

private:
  CS_DATEINFO *table;
};

TEST(CopyDateTable, CopiesEverythingButThePlaceInTheList) {
  const AllocationProbe probe;
  {
    WholeTable source;
    CsOID id{};
    source->id = &id;
    auto *const copy = static_cast<CS_DATEINFO *>(comn_malloc(sizeof(CS_DATEINFO)));
    std::memset(copy, 0xDB, sizeof *copy);
    ASSERT_EQ(comn__copy_dtinfo(source.get(), copy), CS_SUCCEED);
    EXPECT_EQ(copy->id, &id);
    EXPECT_EQ(copy->next, nullptr);
    EXPECT_EQ(copy->is12hour, 1);
    EXPECT_EQ(copy->firstday, 2);
    EXPECT_EQ(copy->secprec, 6);
    EXPECT_STREQ(copy->dateorder, "dmy");
    EXPECT_EQ(copy->convertfmt, 3);
    EXPECT_EQ(copy->bdtconvertfmt, 40);
    EXPECT_EQ(copy->locdateorder_id, 2);
    std::vector<const CS_BYTE *> originals;
    source.each([&](CS_BYTE *bytes, CS_INT, int) { originals.push_back(bytes); });
    WholeTable::each(*copy, [&](CS_BYTE *bytes, CS_INT length, int number) {
      EXPECT_EQ(length, 3 + number % 5);
      EXPECT_NE(bytes, originals[static_cast<size_t>(number)]);
      EXPECT_EQ(std::string(reinterpret_cast<char *>(bytes), static_cast<size_t>(length)),
                std::string(static_cast<size_t>(length), static_cast<char>('A' + number)));
      if (number < 38) { // the names
        EXPECT_EQ(bytes[length], 0);
      }
    });
    comn__free_dtinfo(copy);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(CopyDateTable, AbsentTextsStayAbsent) {
  CS_DATEINFO source{}, copy;
  std::memset(&copy, 0xDB, sizeof copy);
  const AllocationProbe probe;
  EXPECT_EQ(comn__copy_dtinfo(&source, &copy), CS_SUCCEED);
  WholeTable::each(copy, [](CS_BYTE *bytes, CS_INT length, int) {
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(length, 0);
  });
  EXPECT_EQ(probe.allocations(), 0U);
}

TEST(CopyDateTable, FailsWithEachAllocation) {
  WholeTable source;
  CS_DATEINFO *copy = nullptr;
  const size_t failed = fail_each_allocation(
      [&] { copy = static_cast<CS_DATEINFO *>(comn_calloc(1, sizeof(CS_DATEINFO))); },
      [&] {
        const CS_RETCODE result = comn__copy_dtinfo(source.get(), copy);
        if (result == CS_SUCCEED)
          return false;
        EXPECT_EQ(result, CS_MEM_ERROR);
        const CS_DATEINFO cleared{};
        EXPECT_EQ(std::memcmp(copy, &cleared, sizeof cleared), 0);
        return true;
      },
      [&] { comn__free_dtinfo(copy); });
  EXPECT_EQ(failed, 2U * 48);
}

TEST(CopyDateTable, RefusesNullPointers) {
  CS_DATEINFO table{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__copy_dtinfo(nullptr, &table));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__copy_dtinfo(&table, nullptr));
  comn__free_dtinfo(nullptr);
}

// ---- comparison ----

TEST(CompareDateTables, IdentifiersDecideWhereThereAreSome) {
  CsOID id1{}, id2{};
  CS_DATEINFO a{}, b{};
  EXPECT_TRUE(comn__cmp_dtinfo(&a, &b));
  EXPECT_TRUE(comn__cmp_dtinfo(nullptr, nullptr));
  EXPECT_FALSE(comn__cmp_dtinfo(&a, nullptr));
  EXPECT_FALSE(comn__cmp_dtinfo(nullptr, &b));
  a.id = &id1;
  EXPECT_FALSE(comn__cmp_dtinfo(&a, &b));
  EXPECT_FALSE(comn__cmp_dtinfo(&b, &a));
  b.id = &id2;
  EXPECT_FALSE(comn__cmp_dtinfo(&a, &b));
  b.id = &id1;
  b.firstday = 4; // not looked at
  EXPECT_TRUE(comn__cmp_dtinfo(&a, &b));
}

TEST(CompareDateTables, EveryTextAndNumberCounts) {
  WholeTable a, b;
  ASSERT_TRUE(comn__cmp_dtinfo(a.get(), b.get()));
  b.each([&](CS_BYTE *&bytes, CS_INT &length, int number) {
    ++bytes[length - 1];
    EXPECT_FALSE(comn__cmp_dtinfo(a.get(), b.get())) << number;
    --bytes[length - 1];
    --length;
    EXPECT_FALSE(comn__cmp_dtinfo(a.get(), b.get())) << number;
    ++length;
  });
  const auto differs = [&](auto &field) {
    ++field;
    EXPECT_FALSE(comn__cmp_dtinfo(a.get(), b.get()));
    --field;
  };
  differs(b->is12hour);
  differs(b->firstday);
  differs(b->secprec);
  for (CS_CHAR &letter : b->dateorder)
    differs(letter);
  differs(b->convertfmt);
  differs(b->bdtconvertfmt);
  differs(b->locdateorder_id);
  b->next = nullptr;
  EXPECT_TRUE(comn__cmp_dtinfo(a.get(), b.get()));
}

// ---- the list ----

TEST(DropDateTables, ReleasesTheList) {
  const AllocationProbe probe;
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  context.ctxglobals = &globals;
  EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
  for (int i = 0; i < 3; ++i) {
    auto *const table = static_cast<CS_DATEINFO *>(comn_calloc(1, sizeof(CS_DATEINFO)));
    table->era = static_cast<CS_BYTE *>(comn_malloc(1)); // released with the others
    table->next = static_cast<CS_DATEINFO *>(globals.cmg_datetime);
    globals.cmg_datetime = table;
  }
  EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_datetime, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_dt_drop(nullptr));
  context.ctxglobals = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_dt_drop(&context));
}

} // namespace
