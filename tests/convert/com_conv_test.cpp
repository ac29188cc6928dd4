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
#include "matrix_members.h"
#include "test_context.h"
#include "text_world.h"

using zrvtest::AllocationProbe;
using zrvtest::TestContext;

namespace {

// The name of the function that belongs into a cell, or nothing.
std::string member_name(int row, int column) {
  const std::string member = zrvtest::matrix_members[row][column];
  return member.empty() ? member : "comn_" + member;
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

// Each cell holds the function that is exported under its name, and no other cell is filled.
TEST(Matrix, FunctionOfEveryCell) {
  int filled = 0;
  for (int row = 0; row < CS_TYPE_COUNT; ++row)
    for (int column = 0; column < CS_TYPE_COUNT; ++column) {
      const std::string name = member_name(row, column);
      const CS_CONV_FUNC function = exported(name);
      EXPECT_EQ(name.empty(), function == nullptr) << name << " is not exported";
      EXPECT_EQ(Com__cnvrt_array[row][column], function)
          << row << " to " << column << " is for " << name;
      filled += function != nullptr;
    }
  EXPECT_EQ(filled, 794);
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
          // What stands in the column of long for 16-bit text refuses it.
          if (function == no_function || (to == CS_TYPE_LONG && from != CS_TYPE_VOID))
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
