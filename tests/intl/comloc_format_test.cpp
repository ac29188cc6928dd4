// The formats that a row of locales.dat names.
#include <climits>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"
#include "io_probe.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_format.cpp";

class Formats : public testing::Test {
protected:
  Formats() {
    context.ctxglobals = &globals;
    cache.monname = coins;
    cache.numname = numbers;
    cache.datename = dates;
  }
  CS_RETCODE load(CS_INT type) {
    return comn__load_locdata(&context, type, &oid, &cache, nullptr, 0);
  }

  const Installation installation;
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsOID oid{};
  CsLocCache cache{};
  char coins[6] = "coins", numbers[8] = "numbers", dates[6] = "dates";
};

constexpr const char *files[] = {"locales/money/coins.mon", "locales/numeric/numbers.num",
                                 "locales/datetime/dates.dt"};

TEST_F(Formats, EachKindHasItsFile) {
  for (CS_INT type = 4; type <= 6; ++type) {
    GuardedBuffer path(200);
    EXPECT_EQ(comn__load_locdata(&context, type, &oid, &cache, path.text(), 200), CS_SUCCEED);
    EXPECT_EQ(path.text(), installation.path(files[type - 4]));
    installation.remove(files[type - 4]);
    context.ctxintlerr = 0;
    EXPECT_EQ(load(type), COM_LOCFILE_ERROR);
    EXPECT_EQ(context.ctxintlerr, ZRVINTL_EOPEN);
  }
  EXPECT_EQ(cache.locmoninfo, nullptr); // the readers set nothing
  EXPECT_EQ(cache.locnuminfo, nullptr);
  EXPECT_EQ(cache.locdateinfo, nullptr);
}

TEST_F(Formats, WhatIsInAFileDoesNotMatter) {
  for (CS_INT type = 4; type <= 6; ++type)
    for (const char *const text : {"", "no section file"}) {
      installation.write(files[type - 4], text);
      EXPECT_EQ(load(type), CS_SUCCEED);
    }
}

TEST_F(Formats, LoadedDatesAreFound) {
  CS_DATEINFO table{};
  table.id = &oid;
  globals.cmg_datetime = &table;
  installation.remove(files[2]);
  EXPECT_EQ(load(6), CS_SUCCEED);
  EXPECT_EQ(cache.locdateinfo, &table);
}

// Money and numbers never are, deliberately.
TEST_F(Formats, LoadedMoneyAndNumbersAreNotFound) {
  CS_MONINFO money{};
  CS_NUMINFO number{};
  money.id = number.id = &oid;
  globals.cmg_money = &money;
  globals.cmg_numeric = &number;
  EXPECT_EQ(comn__scan_cache_mon(&context, &oid), nullptr);
  EXPECT_EQ(comn__scan_cache_num(&context, &oid), nullptr);
  installation.remove(files[0]);
  installation.remove(files[1]);
  EXPECT_EQ(load(4), COM_LOCFILE_ERROR);
  EXPECT_EQ(load(5), COM_LOCFILE_ERROR);
}

TEST_F(Formats, FailsWithEachIoOperation) {
  EXPECT_EQ(fail_each_io([this] {
              const CS_RETCODE result = load(4);
              EXPECT_TRUE(result == CS_SUCCEED || result == COM_LOCFILE_ERROR ||
                          (result == COM_INTL_ERROR && context.ctxintlerr == ZRVINTL_EREAD));
              return result != CS_SUCCEED;
            }),
            2U); // open and close
}

TEST_F(Formats, RefusesWrongArguments) {
  for (const CS_INT type : {0, 3, 7})
    EXPECT_EQ(load(type), CS_FAIL);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__load_locdata(nullptr, 4, &oid, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__load_locdata(&context, 4, &oid, nullptr, nullptr, 0));
}

TEST_F(Formats, DropsEmptyTheLists) {
  CS_MONINFO money[2]{};
  CS_NUMINFO number[2]{};
  money[0].next = &money[1];
  number[0].next = &number[1];
  globals.cmg_money = money;
  globals.cmg_numeric = number;
  EXPECT_EQ(comn_intl_mon_drop(&context), CS_SUCCEED);
  EXPECT_EQ(comn_intl_num_drop(&context), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_money, nullptr);
  EXPECT_EQ(globals.cmg_numeric, nullptr);
  EXPECT_EQ(comn_intl_mon_drop(&context), CS_SUCCEED);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_mon_drop(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_num_drop(nullptr));
  comn__free_moninfo(money);
  comn__free_numinfo(number);
}

// ---- elements of formats ----

TEST(CheckFormat, AnElementMayBeMissing) {
  ParseStruct last{3, nullptr, 0, nullptr}, first{1, nullptr, 0, &last};
  int there;
  EXPECT_EQ(comn__chk_format(1, nullptr, nullptr), CS_SUCCEED);
  EXPECT_EQ(comn__chk_format(2, &first, nullptr), CS_SUCCEED);
  for (const CS_INT type : {1, 3}) {
    EXPECT_EQ(comn__chk_format(type, &first, nullptr), CS_FAIL);
    EXPECT_EQ(comn__chk_format(type, &first, &there), CS_SUCCEED);
  }
}

// ---- sizes of groups ----

class Groups : public testing::Test {
protected:
  // Reads the values of an entry.
  CS_RETCODE read(const std::string &values, CS_ATTRIB *set = nullptr) {
    const TextFile text("[s]\ngroups = " + values + "\n");
    INTL_LOCFILE file;
    int status;
    EXPECT_EQ(intl_open(text.path(), &file), 0);
    EXPECT_NE(intl_nextsection(&file, &status), nullptr);
    EXPECT_NE(intl_nextentry(&file, &status), nullptr);
    CS_INT *sizes = &count;
    count = -7;
    const CS_RETCODE result = comn__read_grp(&file, set, &sizes, &count);
    EXPECT_EQ(sizes != nullptr, result == CS_SUCCEED);
    read_sizes.assign(sizes, sizes + count);
    comn_free(sizes);
    intl_close(&file);
    return result;
  }

  CS_INT count;
  std::vector<CS_INT> read_sizes;
  const AllocationProbe probe;
};

using Sizes = std::vector<CS_INT>;

TEST_F(Groups, AList) {
  EXPECT_EQ(read("3"), CS_SUCCEED);
  EXPECT_EQ(read_sizes, Sizes{3});
  EXPECT_EQ(read("3, 2, 0, -1, 5x, x"), CS_SUCCEED); // only the first is looked at
  EXPECT_EQ(read_sizes, (Sizes{3, 2, 0, -1, 5, 0}));
}

TEST_F(Groups, SizesBeyondIntAreTheNearest) {
  EXPECT_EQ(read("2147483647, 2147483648, 4294967299, 99999999999999999999, -2147483649"),
            CS_SUCCEED);
  EXPECT_EQ(read_sizes, (Sizes{INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MIN}));
  EXPECT_EQ(read("-4294967297"), CS_FAIL); // not -1
}

TEST_F(Groups, NoGroupsAtAll) {
  EXPECT_EQ(read("-1"), CS_SUCCEED);
  EXPECT_EQ(read_sizes, Sizes{-1});
  EXPECT_EQ(read("-1, 3"), CS_SUCCEED);
  EXPECT_EQ(read_sizes, Sizes{-1});
}

TEST_F(Groups, AFirstSizeThatIsNone) {
  for (const char *const values : {"", "0", "-2", "x", "\"\"", "0, 3"}) {
    EXPECT_EQ(read(values), CS_FAIL) << values;
    EXPECT_EQ(count, 0);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(Groups, TheReaderFails) {
  EXPECT_EQ(read("3, \"2"), COM_INTL_ERROR);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// Digits are those of the character set.
TEST_F(Groups, TheCharacterSetTellsTheDigits) {
  CS_NORM_MAP digits{};
  digits.norm['a'] = '3';
  digits.norm['b'] = '4';
  CS_ATTRIB set = *com_get_charattrib();
  set.cs_norm_map = &digits;
  EXPECT_EQ(read("ab, a", &set), CS_SUCCEED);
  EXPECT_EQ(read_sizes, (Sizes{34, 3}));
}

TEST_F(Groups, TheLongestValue) {
  EXPECT_EQ(read(std::string(900, '0') + "\\\n" + std::string(123, '0') + "7"), CS_SUCCEED);
  EXPECT_EQ(read_sizes, Sizes{7});
}

TEST_F(Groups, FailsWithEachAllocation) {
  for (size_t n = 1; n <= 3; ++n) {
    const TextFile text("[s]\ngroups = 3, 2, 1\n");
    INTL_LOCFILE file;
    int status;
    intl_open(text.path(), &file);
    intl_nextsection(&file, &status);
    intl_nextentry(&file, &status);
    AllocationProbe failing;
    failing.fail(n);
    CS_INT *sizes = &count;
    EXPECT_EQ(comn__read_grp(&file, nullptr, &sizes, &count), CS_MEM_ERROR);
    EXPECT_EQ(sizes, nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(failing.live_blocks(), 0U);
    failing.succeed();
    intl_close(&file);
  }
}

TEST_F(Groups, RefusesNullPointers) {
  INTL_LOCFILE file{};
  CS_INT *sizes = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_grp(nullptr, nullptr, &sizes, &count));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_grp(&file, nullptr, nullptr, &count));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_grp(&file, nullptr, &sizes, nullptr));
}

} // namespace
