// Sizes, offsets and constants of the public headers against literal rows, in both data models.
#include "layout_facts.h"

#include <limits>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

extern "C" size_t layout_c99_size_of_context(void);
extern "C" size_t layout_c99_size_of_appglobal(void);

namespace {

constexpr bool is_ilp32 = sizeof(void *) == 4;

TEST(Layout, Integers) {
#define ROW(type, width, signedness)                                                               \
  EXPECT_EQ(sizeof(type), size_t{width}) << #type;                                                 \
  EXPECT_EQ(std::numeric_limits<type>::is_signed, signedness != 0) << #type;
  LAYOUT_INTEGERS(ROW)
#undef ROW
}

TEST(Layout, OtherScalars) {
  EXPECT_TRUE((std::is_same_v<CS_CHAR, char>));
  EXPECT_TRUE((std::is_same_v<CS_VOID, void>));
  EXPECT_TRUE((std::is_same_v<CS_THRDRES, void>));
  EXPECT_EQ(sizeof(CS_REAL), 4U);
  EXPECT_EQ(sizeof(CS_FLOAT), 8U);
  EXPECT_EQ(std::numeric_limits<CS_REAL>::digits, 24);
  EXPECT_EQ(std::numeric_limits<CS_FLOAT>::digits, 53);
  EXPECT_TRUE(std::numeric_limits<CS_REAL>::is_iec559);
  EXPECT_TRUE(std::numeric_limits<CS_FLOAT>::is_iec559);
}

TEST(Layout, ValueRecords) {
#define ROW(record, size) EXPECT_EQ(sizeof(record), size_t{size}) << #record;
  LAYOUT_VALUE_RECORDS(ROW)
#undef ROW
#define ROW(record, field, offset, width)                                                          \
  EXPECT_EQ(offsetof(record, field), size_t{offset}) << #record "." #field;                        \
  EXPECT_EQ(sizeof(record::field), size_t{width}) << #record "." #field;
  LAYOUT_VALUE_FIELDS(ROW)
#undef ROW
}

// ILP32 sizes are exact; under LP64 the fields keep their order and nothing is smaller.
TEST(Layout, PointerRecords) {
#define ROW(record, size)                                                                          \
  if (is_ilp32)                                                                                    \
    EXPECT_EQ(sizeof(record), size_t{size}) << #record;                                            \
  else                                                                                             \
    EXPECT_GE(sizeof(record), size_t{size}) << #record;
  LAYOUT_POINTER_RECORDS(ROW)
#undef ROW
}

TEST(Layout, PointerRecordFields) {
  std::string record;
  size_t last = 0;
  const auto check = [&](const char *owner, const char *field, size_t actual, size_t told) {
    if (is_ilp32)
      EXPECT_EQ(actual, told) << owner << "." << field;
    else if (record == owner)
      EXPECT_GT(actual, last) << owner << "." << field;
    else
      EXPECT_EQ(actual, 0U) << owner << "." << field;
    record = owner;
    last = actual;
  };
#define ROW(owner, field, offset) check(#owner, #field, offsetof(owner, field), offset);
  LAYOUT_POINTER_FIELDS(ROW)
#undef ROW
}

TEST(Layout, ProcessWideRecord) {
#define ROW(field, offset) EXPECT_EQ(offsetof(CsAppGlobal, field), size_t{offset}) << #field;
  LAYOUT_APPGLOBAL_FIELDS(ROW)
#undef ROW
  size_t last = offsetof(CsAppGlobal, ag_accesscnt);
#define ROW(field)                                                                                 \
  EXPECT_GT(offsetof(CsAppGlobal, field), last) << #field;                                         \
  last = offsetof(CsAppGlobal, field);
  LAYOUT_APPGLOBAL_ORDER(ROW)
#undef ROW
}

TEST(Layout, Constants) {
#define ROW(name, value) EXPECT_EQ(name, value) << #name;
  LAYOUT_CONSTANTS(ROW)
#undef ROW
}

// A context's copy of the matrix.
TEST(Layout, Matrix) {
  EXPECT_EQ(sizeof Com__cnvrt_array, 1600 * sizeof(CS_CONV_FUNC));
  if (is_ilp32) {
    EXPECT_EQ(sizeof Com__cnvrt_array, 6400U);
  }
}

TEST(Layout, CSeesTheSameRecords) {
  EXPECT_EQ(layout_c99_size_of_context(), sizeof(CS_CONTEXT));
  EXPECT_EQ(layout_c99_size_of_appglobal(), sizeof(CsAppGlobal));
}

} // namespace
