// Dispatch: the matrix, a context's private copy of it, and user conversions.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "test_context.h"
#include "text_world.h"

using zrvtest::AllocationProbe;
using zrvtest::TestContext;

namespace {

// One mark a cell, row by source, column by destination:
//   #  filled
//   +  named, but its family is not there yet
//   .  empty by rule
// clang-format off
constexpr const char *golden_grid[CS_TYPE_COUNT] = {
    //          1         2         3
    //0123456789012345678901234567890123456789
    "####################.##..+.##+#######+++", // 0
    "####################.....+.##+#######...", // 1
    "####################.##..+.##+#######...", // 2
    "####################.....+.##+#######...", // 3
    "####################.##..+.##+#######...", // 4
    "####################.....+.##+#######...", // 5
    "############..######.....+...+####......", // 6
    "############..######.....+...+####......", // 7
    "############..######.....+...+####......", // 8
    "############..######.....+...+####......", // 9
    "############..######.....+...+####......", // 10
    "############....####.....+...+####......", // 11
    "#.#.#.......##....##.....+.##+.....##...", // 12
    "#.#.#.......##....##.....+.##+.....##...", // 13
    "############..######.....+...+####......", // 14
    "############..######.....+...+####......", // 15
    "############..######.....+...+####......", // 16
    "############..######.....+...+####......", // 17
    "####################.##..+.##+#######...", // 18
    "####################.....+.##+#######...", // 19
    "........................................", // 20
    "#.#.#.............#..#..................", // 21
    "#.#.#.............#...#.................", // 22
    "#####################################...", // 23
    "........................................", // 24
    "+++++++++++++++++++++....+.+++++++.++...", // 25
    "........................................", // 26
    "#.#.#.......##....##.....+.#.+.....#....", // 27
    "#.#.#.......##....##.....+..#+.....##...", // 28
    "+++++++++++++++++++++....+.+++++++.++...", // 29
    "############..######.....+...+####......", // 30
    "############..######.....+...+####......", // 31
    "############..######.....+...+####......", // 32
    "############..######.....+...+####......", // 33
    "######............##..............#.....", // 34
    "#.#.#.......##....##.....+.##+.....##...", // 35
    "#.#.#.......##....##.....+..#+.....##...", // 36
    "+...+................................+..", // 37
    "+....+................................+.", // 38
    "+........................+.............+", // 39
};
// clang-format on

// The destination short names of the value columns; the other columns have none.
constexpr const char *value_columns[CS_TYPE_COUNT] = {
    "char", "bin", "char", "bin", "char",  "bin",     "i1",  "i2",  "i4",      "flt4",
    "flt8", "bit", "",     "",    "money", "mny4",    "num", "num", "varchar", "varbin",
    "",     "",    "",     "",    "",      "unichar", "",    "",    "",        "unichar",
    "i8",   "ui2", "ui4",  "ui8", "",      "",        "",    "",    "",        "",
};

// What fills some rows: all value columns from `source`, if it is named, and then single cells as
// "columns:function", where no function empties a cell. Later rules stand over earlier ones.
struct Rule {
  std::vector<int> rows;
  const char *source;
  const char *cells;
};
const Rule rules[] = {
    {{6}, "i1", ""},
    {{7}, "i2", ""},
    {{8}, "i4", ""},
    {{30}, "i8", ""},
    {{31}, "ui2", ""},
    {{32}, "ui4", ""},
    {{33}, "ui8", ""},
    {{9}, "flt4", ""},
    {{10}, "flt8", ""},
    {{14}, "money", ""},
    {{15}, "mny4", ""},
    {{16, 17}, "num", ""},
    {{11}, "bit", "14,15:"}, // a bit does not convert to money
    {{0, 2, 4},
     "char",
     "12:chartodatetime 13:chartodate4 27:chartodatea 28:chartotimea 21,22,34:chartochar "
     "35:chartodatetime 36:chartotimea"},
    {{18},
     "varchar",
     "12:varchartodatetime 13:varchartodate4 27:varchartodatea 28:varchartotimea "
     "21,22,34:varchartochar 35:varchartodatetime 36:varchartotimea"},
    {{1, 3, 5},
     "bin",
     "12:bintodatetime 13:bintodate4 27:bintodatea 28:bintotimea 34:bintochar "
     "35:bintobigdatetime 36:bintobigtime"},
    {{19},
     "varbin",
     "12:varbintodatetime 13:varbintodate4 27:varbintodatea 28:varbintotimea 34:varbintochar "
     "35:varbintobigdatetime 36:varbintobigtime"},
    {{25, 29},
     "unichar",
     "12:unichartodatetime 13:unichartodate4 27:unichartodatea 28:unichartotimea "
     "35:unichartodatetime 36:unichartotimea 20:unichartoi8"},
    {{12},
     "",
     "0,2,4:datetochar 12:datetodate 13:datetodate4 18:datetovarchar 19:datetovarbin "
     "25,29:datetimetounichar 27:datetodatea 28:datetotimea 35:datetobigdatetime "
     "36:datetobigtime"},
    {{13},
     "",
     "0,2,4:date4tochar 12:date4todate 13:date4todate4 18:date4tovarchar 19:date4tovarbin "
     "25,29:date4tounichar 27:date4todatea 28:date4totimea 35:date4tobigdatetime "
     "36:date4tobigtime"},
    {{27},
     "",
     "0,2,4:dateatochar 12:dateatodate 13:dateatodate4 18:dateatovarchar 19:dateatovarbin "
     "25,29:dateatounichar 27:dateatodatea 35:dateatobigdatetime"},
    {{28},
     "",
     "0,2,4:timeatochar 12:timeatodate 13:timeatodate4 18:timeatovarchar 19:timeatovarbin "
     "25,29:timeatounichar 28:timeatotimea 35:timeatobigdatetime 36:timeatobigtime"},
    {{35},
     "",
     "0,2,4:datetochar 18:datetovarchar 25,29:datetimetounichar 12:bigdatetimetodate "
     "13:bigdatetimetodate4 19:bigdatetimetovarbin 27:bigdatetimetodatea "
     "28:bigdatetimetotimea 35:bigdatetimetobigdatetime 36:bigdatetimetobigtime"},
    {{36},
     "",
     "0,2,4:timeatochar 18:timeatovarchar 25,29:timeatounichar 12:bigtimetodate "
     "13:bigtimetodate4 19:bigtimetovarbin 28:bigtimetotimea 35:bigtimetobigdatetime "
     "36:bigtimetobigtime"},
    {{21}, "", "0,2,4,21:chartochar 18:chartovarchar"},
    {{22}, "", "0,2,4,22:chartochar 18:chartovarchar"},
    {{34}, "", "0,2,4,34:chartochar 1,3,5:chartobin 18:chartovarchar 19:chartovarbin"},
    {{37}, "", "0:locatortochar 4:locatortotext 37:locatortolocator"},
    {{38}, "", "0:locatortochar 5:locatortoimage 38:locatortolocator"},
    {{39}, "", "0:locatortochar 25:locatortounitext 39:locatortolocator"},
    {{23},
     "",
     "0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,24,25,26,27,28,29,30,31,32,33,34,"
     "35,36:voidtoany 23:voidtovoid"},
    // The exceptions, all deliberate: of types that share all else, one has a member of its own.
    {{0}, "", "37,38,39:chartolocator"},
    {{5}, "", "25:imagetounichar"},
    {{25}, "", "5:unichartoimage"},
};

// The name of the function that belongs into each cell, or nothing.
struct NameMatrix {
  std::string name[CS_TYPE_COUNT][CS_TYPE_COUNT];

  NameMatrix() {
    for (const Rule &rule : rules)
      for (const int row : rule.rows)
        apply(rule, name[row]);
  }

private:
  static void apply(const Rule &rule, std::string *row) {
    if (*rule.source != '\0')
      for (int column = 0; column < CS_TYPE_COUNT; ++column)
        if (*value_columns[column] != '\0')
          row[column] = std::string("comn_") + rule.source + "to" + value_columns[column];
    std::istringstream cells(rule.cells);
    for (std::string cell; cells >> cell;) {
      const size_t colon = cell.find(':');
      std::istringstream columns(cell.substr(0, colon));
      const std::string function = cell.substr(colon + 1);
      for (std::string column; std::getline(columns, column, ',');)
        row[std::stoi(column)] = function.empty() ? "" : "comn_" + function;
    }
  }
};

const NameMatrix &names() {
  static const NameMatrix matrix;
  return matrix;
}

CS_CONV_FUNC exported(const std::string &name) {
  return name.empty() ? nullptr : reinterpret_cast<CS_CONV_FUNC>(dlsym(RTLD_DEFAULT, name.c_str()));
}

CS_RETCODE first_user_conversion(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                                 CS_INT *) {
  return 1001;
}
CS_RETCODE second_user_conversion(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                                  CS_INT *) {
  return 1002;
}

const CS_CONV_FUNC no_function = nullptr;
CsUsrCvtFunc *const no_record = nullptr;

// The user list as text: the source types in their order, each with its destination types.
std::string user_list(CS_CONTEXT *context) {
  std::ostringstream text;
  for (const CsUsrCvtFunc *source = context->ctxusrcvttbl; source != nullptr;
       source = source->nextsrc) {
    text << source->srctype << ":";
    for (const CsUsrCvtFunc *record = source; record != nullptr; record = record->nextdest) {
      EXPECT_EQ(record->srctype, source->srctype);
      if (record != source) {
        EXPECT_EQ(record->nextsrc, nullptr);
      }
      text << ' ' << record->desttype;
    }
    text << "; ";
  }
  return text.str();
}

} // namespace

TEST(Matrix, GoldenGrid) {
  std::ostringstream actual;
  bool same = true;
  for (int row = 0; row < CS_TYPE_COUNT; ++row) {
    std::string marks;
    for (int column = 0; column < CS_TYPE_COUNT; ++column)
      marks += Com__cnvrt_array[row][column] != nullptr ? '#'
               : names().name[row][column].empty()      ? '.'
                                                        : '+';
    actual << "    \"" << marks << "\", // " << row << '\n';
    same = same && marks == golden_grid[row];
  }
  EXPECT_TRUE(same) << "the matrix is\n" << actual.str();
}

// A cell is filled exactly when a function of its name is exported, and with that function.
TEST(Matrix, FunctionOfEveryCell) {
  for (int row = 0; row < CS_TYPE_COUNT; ++row)
    for (int column = 0; column < CS_TYPE_COUNT; ++column)
      EXPECT_EQ(Com__cnvrt_array[row][column], exported(names().name[row][column]))
          << row << " to " << column << " is for " << names().name[row][column];
}

TEST(Matrix, SpotChecks) {
  EXPECT_EQ(Com__cnvrt_array[20][0], no_function);
  EXPECT_EQ(Com__cnvrt_array[23][8], comn_voidtoany);
  EXPECT_EQ(Com__cnvrt_array[23][23], comn_voidtovoid);
  EXPECT_EQ(Com__cnvrt_array[23][37], no_function);
  EXPECT_EQ(Com__cnvrt_array[8][7], comn_i4toi2);
  EXPECT_EQ(Com__cnvrt_array[34][3], comn_chartobin);
  EXPECT_EQ(Com__cnvrt_array[21][1], no_function);
}

TEST(Matrix, HandedOut) {
  CS_CONV_FUNC *table = nullptr;
  int dimension = 0;
  com__get_ctbl(&table, &dimension);
  EXPECT_EQ(table, &Com__cnvrt_array[0][0]);
  EXPECT_EQ(dimension, 40);
  EXPECT_TRUE(zrvtest::is_null_pointer_report(
      zrvtest::catch_check([&] { com__get_ctbl(nullptr, &dimension); }), "com_conv.cpp"));
  EXPECT_TRUE(zrvtest::is_null_pointer_report(
      zrvtest::catch_check([&] { com__get_ctbl(&table, nullptr); }), "com_conv.cpp"));
}

namespace {

// Calls every conversion of the matrix (the locators aside, whose values hold pointers) on values
// that it takes and on values that it does not, with room and without.
template <class Visit>
void for_each_conversion(CS_CONTEXT *context, Visit visit) {
  zrvtest::TextWorld world;
  context->ctxlocale = world.context.ctxlocale;
  context->ctxglobals = &world.globals;
  for (const int fill : {0x00, 0x01, 0x37, 0xFF}) {
    // Long enough for whatever length a record of these bytes tells.
    std::vector<unsigned char> bytes(70000, static_cast<unsigned char>(fill)), record = bytes;
    // Some conversions of a record without a text end the process.
    record[0] = 8;
    record[1] = 0;
    for (CS_INT from = 0; from <= CS_TYPE_BIGTIME; ++from)
      for (CS_INT to = 0; to <= CS_TYPE_BIGTIME; ++to)
        for (const CS_INT maxlength : {0, 2, 400}) {
          const CS_CONV_FUNC function = com_conv_func(context, from, to);
          if (function == no_function)
            continue;
          unsigned char dest[512];
          CS_INT length = 0;
          CS_DATAFMT srcfmt = zrvtest::make_format(from, comn_typelen(from, 8));
          CS_DATAFMT destfmt = zrvtest::make_format(to, maxlength);
          destfmt.precision = maxlength == 0 ? 0 : 10;
          std::vector<unsigned char> &source = from == CS_TYPE_VARCHAR ? record : bytes;
          visit(from, to, function(context, &srcfmt, source.data(), &destfmt, dest, &length));
        }
  }
}

int error_calls;

CS_RETCODE count_error_call(CS_CONTEXT *, CS_CLIENTMSG *) {
  ++error_calls;
  return CS_SUCCEED;
}

} // namespace

TEST(Matrix, NoConversionSendsAMessage) {
  TestContext context;
  context->ctxerrfunc = count_error_call;
  error_calls = 0;
  int successes = 0, failures = 0;
  for_each_conversion(context.get(), [&](CS_INT from, CS_INT to, CS_RETCODE status) {
    ++(status == CS_SUCCEED ? successes : failures);
    ASSERT_EQ(error_calls, 0) << from << " to " << to;
  });
  EXPECT_GT(successes, 1000);
  EXPECT_GT(failures, 200);
}

// Each conversion leaves a line, whatever its result, but those from integers.
TEST(Matrix, ConversionsButThoseFromIntegersAreTraced) {
  TestContext context;
  FILE *const lines = std::tmpfile();
  ASSERT_NE(lines, nullptr);
  Com_fp = lines;
  com_errset(3);
  long seen = 0;
  for_each_conversion(context.get(), [&](CS_INT from, CS_INT to, CS_RETCODE status) {
    const bool is_integer = (from >= CS_TYPE_TINYINT && from <= CS_TYPE_INT) ||
                            (from >= CS_TYPE_BIGINT && from <= CS_TYPE_UBIGINT);
    const long now = std::ftell(lines);
    ASSERT_EQ(now == seen, is_integer) << from << " to " << to << ", status " << status;
    seen = now;
  });
  com_errset(1);
  Com_fp = nullptr;
  std::fclose(lines);
}

TEST(ConvFunc, BuiltInPairsComeFromTheMatrix) {
  TestContext context;
  for (CS_INT row = 0; row < CS_TYPE_COUNT; ++row)
    for (CS_INT column = 0; column < CS_TYPE_COUNT; ++column)
      EXPECT_EQ(com_conv_func(context.get(), row, column), Com__cnvrt_array[row][column])
          << row << " to " << column;
}

TEST(ConvFunc, NegativeCodesGiveNull) {
  TestContext context;
  for (const CS_INT code : {-1, -40, INT_MIN})
    for (const CS_INT other : {0, 8, 39, 40, 1000, -1}) {
      // Not even a user conversion of such a pair is found.
      ASSERT_EQ(com__conv_usr_install(context.get(), code, other, first_user_conversion),
                CS_SUCCEED);
      EXPECT_EQ(com_conv_func(context.get(), code, other), no_function);
      EXPECT_EQ(com_conv_func(context.get(), other, code), no_function);
      // Nothing else is looked at: a context that is not there is no fault then.
      EXPECT_EQ(com_conv_func(nullptr, code, other), no_function);
      EXPECT_EQ(com_conv_func(nullptr, other, code), no_function);
    }
}

TEST(ConvFunc, UnknownUserPairsGiveNull) {
  TestContext context;
  for (const CS_INT type : {40, 41, INT_MAX}) {
    EXPECT_EQ(com_conv_func(context.get(), 0, type), no_function);
    EXPECT_EQ(com_conv_func(context.get(), type, 0), no_function);
    EXPECT_EQ(com_conv_func(context.get(), type, type), no_function);
  }
}

TEST(ConvInit, TakesOneBlockOfTheToldSize) {
  constexpr size_t matrix_bytes = sizeof(void *) == 4 ? 6400 : 12800;
  CS_CONTEXT context{};
  AllocationProbe probe;
  ASSERT_EQ(com_conv_init(&context), CS_SUCCEED);
  EXPECT_EQ(probe.allocations(), 1U);
  EXPECT_EQ(probe.last_size(), matrix_bytes);
  EXPECT_EQ(context.ctxcvttbl.cvtdim, 40);
  EXPECT_EQ(context.ctxusrcvttbl, nullptr);
  EXPECT_TRUE(std::equal(&Com__cnvrt_array[0][0], &Com__cnvrt_array[0][0] + 1600,
                         context.ctxcvttbl.cvttbl));

  ASSERT_EQ(com_conv_install(&context, 40, 0, first_user_conversion), CS_SUCCEED);
  EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxcvttbl.cvttbl, nullptr);
  EXPECT_EQ(context.ctxcvttbl.cvtdim, 0);
  EXPECT_EQ(context.ctxusrcvttbl, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
}

// A context may come from anywhere, so nothing that its slots held before is read or released.
TEST(ConvInit, ReadsNothingThatTheContextHeld) {
  CS_CONTEXT context;
  std::memset(&context, 0x5A, sizeof context);
  AllocationProbe probe;
  ASSERT_EQ(com_conv_init(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxusrcvttbl, nullptr);
  EXPECT_EQ(com_conv_func(&context, 40, 40), no_function);
  EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// A context whose start failed can be torn down like any other, also one that held rubbish before.
TEST(ConvInit, EachAllocationFails) {
  for (const int before : {0, 0x5A}) {
    CS_CONTEXT context;
    const size_t failed =
        zrvtest::fail_each_allocation([&] { std::memset(&context, before, sizeof context); },
                                      [&] {
                                        const CS_RETCODE status = com_conv_init(&context);
                                        if (status == CS_SUCCEED)
                                          return false;
                                        EXPECT_EQ(status, CS_MEM_ERROR);
                                        EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
                                        return true;
                                      },
                                      [&] { EXPECT_EQ(com_conv_free(&context), CS_SUCCEED); });
    EXPECT_EQ(failed, 2U); // one allocation, in two modes
  }
}

TEST(ConvInstall, ReplacesAndRestoresABuiltInCell) {
  TestContext context, other;
  EXPECT_EQ(com_conv_install(context.get(), 8, 7, first_user_conversion), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 8, 7), first_user_conversion);
  EXPECT_EQ(com_conv_install(context.get(), 8, 7, nullptr), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 8, 7), no_function);
  // A cell without a function takes one.
  EXPECT_EQ(com_conv_install(context.get(), 20, 0, second_user_conversion), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 20, 0), second_user_conversion);
  // Other contexts and the neighbours are as before.
  EXPECT_EQ(com_conv_func(other.get(), 8, 7), comn_i4toi2);
  EXPECT_EQ(com_conv_func(context.get(), 8, 6), comn_i4toi1);
  EXPECT_EQ(com_conv_func(context.get(), 8, 8), comn_i4toi4);
  EXPECT_EQ(Com__cnvrt_array[8][7], comn_i4toi2);

  EXPECT_EQ(com_conv_default(context.get(), 8, 7), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 8, 7), comn_i4toi2);
  EXPECT_EQ(com_conv_default(context.get(), 20, 0), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 20, 0), no_function);
  EXPECT_EQ(context->ctxusrcvttbl, nullptr);
}

TEST(ConvInstall, EveryCornerOfTheMatrix) {
  TestContext context;
  for (const CS_INT row : {0, 39})
    for (const CS_INT column : {0, 39}) {
      EXPECT_EQ(com_conv_install(context.get(), row, column, first_user_conversion), CS_SUCCEED);
      EXPECT_EQ(com_conv_func(context.get(), row, column), first_user_conversion);
      EXPECT_EQ(com_conv_default(context.get(), row, column), CS_SUCCEED);
      EXPECT_EQ(com_conv_func(context.get(), row, column), Com__cnvrt_array[row][column]);
    }
}

// The codes are not tested one by one: a negative one names whatever cell it comes to, as long as
// the matrix has it.
TEST(ConvInstall, NegativeCodes) {
  TestContext context;
  EXPECT_EQ(com_conv_install(context.get(), 1, -1, first_user_conversion), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 0, 39), first_user_conversion);
  EXPECT_EQ(com_conv_default(context.get(), 0, 39), CS_SUCCEED);

  const CS_INT outside[][2] = {{0, -1},       {-1, 0},       {-1, 39},          {-1, -1},
                               {INT_MIN, 39}, {39, INT_MIN}, {INT_MIN, INT_MIN}};
  for (const auto &pair : outside)
    EXPECT_ASSERTION("com_conv.cpp", CS_FAIL,
                     com_conv_install(context.get(), pair[0], pair[1], first_user_conversion));
  EXPECT_TRUE(std::equal(&Com__cnvrt_array[0][0], &Com__cnvrt_array[0][0] + 1600,
                         context->ctxcvttbl.cvttbl));
  // With a user type on the other side the pair goes to the user list.
  EXPECT_EQ(com_conv_install(context.get(), -1, 40, first_user_conversion), CS_SUCCEED);
  EXPECT_EQ(user_list(context.get()), "-1: 40; ");
}

TEST(ConvDefault, NegativeCodesAreFatal) {
  TestContext context;
  const CS_INT pairs[][2] = {{-1, 0}, {0, -1}, {-1, -1}, {-1, 40}, {40, -1}, {INT_MIN, 0}};
  for (const auto &pair : pairs)
    EXPECT_ASSERTION("com_conv.cpp", CS_FAIL, com_conv_default(context.get(), pair[0], pair[1]));
}

// The first level holds one record for each source type, the second the further ones of that
// source, both in the order of their arrival.
TEST(UserConversions, TwoLevelList) {
  TestContext context;
  const auto install = [&](CS_INT srctype, CS_INT desttype) {
    EXPECT_EQ(com_conv_install(context.get(), srctype, desttype, first_user_conversion),
              CS_SUCCEED);
  };
  install(50, 8);
  EXPECT_EQ(user_list(context.get()), "50: 8; ");
  install(0, 40); // one built-in type of the two is enough
  install(50, 60);
  install(41, 0);
  install(50, 7);
  install(0, INT_MAX);
  EXPECT_EQ(user_list(context.get()), "50: 8 60 7; 0: 40 2147483647; 41: 0; ");

  const auto record = com__conv_usr_struct(context.get(), 50, 7);
  ASSERT_NE(record, no_record);
  EXPECT_EQ(record->srctype, 50);
  EXPECT_EQ(record->desttype, 7);
  EXPECT_EQ(record->cvtfunc, first_user_conversion);
  EXPECT_EQ(record, context->ctxusrcvttbl->nextdest->nextdest);
  // Misses on either level.
  EXPECT_EQ(com__conv_usr_struct(context.get(), 51, 8), no_record);
  EXPECT_EQ(com__conv_usr_struct(context.get(), 50, 40), no_record);
  EXPECT_EQ(com__conv_usr_struct(context.get(), 41, 8), no_record);
  EXPECT_EQ(com__conv_usr_func(context.get(), 50, 60), first_user_conversion);
  EXPECT_EQ(com__conv_usr_func(context.get(), 60, 50), no_function);
  EXPECT_EQ(com_conv_func(context.get(), 0, 40), first_user_conversion);
  EXPECT_EQ(com_conv_func(context.get(), 40, 0), no_function);
}

TEST(UserConversions, AreCalledLikeAnyOther) {
  TestContext context;
  ASSERT_EQ(com_conv_install(context.get(), 40, 8, second_user_conversion), CS_SUCCEED);
  EXPECT_EQ(
      com_conv_func(context.get(), 40, 8)(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
      1002);
}

TEST(UserConversions, InstallingTwiceKeepsOneRecord) {
  TestContext context;
  ASSERT_EQ(com_conv_install(context.get(), 40, 41, first_user_conversion), CS_SUCCEED);
  CsUsrCvtFunc *const record = context->ctxusrcvttbl;
  ASSERT_EQ(com_conv_install(context.get(), 40, 41, second_user_conversion), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrcvttbl, record);
  EXPECT_EQ(user_list(context.get()), "40: 41; ");
  EXPECT_EQ(com_conv_func(context.get(), 40, 41), second_user_conversion);
}

TEST(UserConversions, DefaultLeavesARecordThatAnswersNull) {
  TestContext context;
  EXPECT_EQ(com_conv_default(context.get(), 40, 41), CS_SUCCEED); // never installed
  EXPECT_EQ(context->ctxusrcvttbl, nullptr);
  ASSERT_EQ(com_conv_install(context.get(), 40, 41, first_user_conversion), CS_SUCCEED);
  CsUsrCvtFunc *const record = context->ctxusrcvttbl;
  EXPECT_EQ(com_conv_default(context.get(), 40, 41), CS_SUCCEED);
  EXPECT_EQ(com_conv_func(context.get(), 40, 41), no_function);
  EXPECT_EQ(com__conv_usr_struct(context.get(), 40, 41), record);
  EXPECT_EQ(com_conv_install(context.get(), 40, 41, second_user_conversion), CS_SUCCEED);
  EXPECT_EQ(com__conv_usr_struct(context.get(), 40, 41), record);
  EXPECT_EQ(com_conv_func(context.get(), 40, 41), second_user_conversion);
}

// A pair of a built-in and a user type lives on the user list, on whichever side the user type is.
TEST(UserConversions, DefaultOfAMixedPair) {
  const CS_INT pairs[][2] = {{8, 40}, {40, 8}, {0, INT_MAX}, {39, 40}};
  for (const auto &pair : pairs) {
    TestContext context;
    EXPECT_EQ(com_conv_default(context.get(), pair[0], pair[1]), CS_SUCCEED); // never installed
    EXPECT_EQ(context->ctxusrcvttbl, nullptr);
    ASSERT_EQ(com_conv_install(context.get(), pair[0], pair[1], first_user_conversion), CS_SUCCEED);
    CsUsrCvtFunc *const record = context->ctxusrcvttbl;
    EXPECT_EQ(com_conv_default(context.get(), pair[0], pair[1]), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(context.get(), pair[0], pair[1]), no_function);
    EXPECT_EQ(context->ctxusrcvttbl, record);
    // The matrix keeps its own.
    EXPECT_TRUE(std::equal(&Com__cnvrt_array[0][0], &Com__cnvrt_array[0][0] + 1600,
                           context->ctxcvttbl.cvttbl));
  }
}

TEST(UserConversions, FreeReleasesBothLevels) {
  TestContext context;
  AllocationProbe probe;
  for (const CS_INT srctype : {40, 41, 42})
    for (const CS_INT desttype : {0, 1, 2})
      ASSERT_EQ(com_conv_install(context.get(), srctype, desttype, first_user_conversion),
                CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 9U);
  EXPECT_EQ(com__conv_usr_free(context.get()), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(context->ctxusrcvttbl, nullptr);
  EXPECT_EQ(com__conv_usr_free(context.get()), CS_SUCCEED);
}

TEST(UserConversions, EachAllocationFails) {
  // Into an empty list, as a new source type, and as a further destination of a known one.
  struct {
    std::vector<CS_INT> before;
    const char *list;
  } const cases[] = {{{}, ""}, {{50}, "50: 41; "}, {{50, 40}, "50: 41; 40: 41; "}};
  for (const auto &c : cases) {
    TestContext context;
    for (const CS_INT srctype : c.before)
      ASSERT_EQ(com_conv_install(context.get(), srctype, 41, first_user_conversion), CS_SUCCEED);
    for (const auto mode : {AllocationProbe::fail_once, AllocationProbe::fail_from_then_on}) {
      AllocationProbe probe;
      probe.fail(1, mode);
      EXPECT_EQ(com_conv_install(context.get(), 40, 60, first_user_conversion), CS_MEM_ERROR);
      EXPECT_EQ(user_list(context.get()), c.list);
    }
    EXPECT_EQ(com_conv_install(context.get(), 40, 60, first_user_conversion), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(context.get(), 40, 60), first_user_conversion);
  }
}

TEST(Dispatch, AFreedContextIsAFault) {
  CS_CONTEXT context{};
  ASSERT_EQ(com_conv_init(&context), CS_SUCCEED);
  ASSERT_EQ(com_conv_free(&context), CS_SUCCEED);
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", no_function, com_conv_func(&context, 8, 7));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL,
                            com_conv_install(&context, 8, 7, first_user_conversion));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL,
                            com_conv_install(&context, 40, 7, first_user_conversion));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com_conv_default(&context, 8, 7));
}

TEST(Dispatch, NullContext) {
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com_conv_init(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com_conv_free(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", no_function, com_conv_func(nullptr, 8, 7));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com_conv_install(nullptr, 8, 7, nullptr));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com_conv_default(nullptr, 8, 7));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL, com__conv_usr_free(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", no_record, com__conv_usr_struct(nullptr, 40, 7));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", no_function, com__conv_usr_func(nullptr, 40, 7));
  EXPECT_NULL_POINTER_CHECK("com_conv.cpp", CS_FAIL,
                            com__conv_usr_install(nullptr, 40, 7, nullptr));
}
