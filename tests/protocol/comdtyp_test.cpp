// Datatypes of the library and of the wire: every row of the tables, and every lookup over all wire
// types and library types.
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_value.h"
#include "zrvcomn/commaps.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comdtyp.cpp";
constexpr CS_INT longest = 2147483647;
constexpr CS_INT extremes[] = {-2147483647 - 1, -99999, -2, -1, 256, 257, 1000, 2147483647};

using Rows = std::vector<TDS_DATAMAP>;

// Wire type, library type, maximum length, nullable, length prefix.
const Rows unique_rows = {
    {45, 1, 255, 0, 1},      {37, 1, 255, 1, 1},       {47, 0, 255, 1, 1},
    {39, 0, 255, 1, 1},      {48, 6, 1, 0, 0},         {52, 7, 2, 0, 0},
    {56, 8, 4, 0, 0},        {59, 9, 4, 0, 0},         {62, 10, 8, 0, 0},
    {58, 13, 4, 0, 0},       {61, 12, 8, 0, 0},        {122, 15, 4, 0, 0},
    {60, 14, 8, 0, 0},       {50, 11, 1, 0, 0},        {175, 2, longest, 0, 4},
    {225, 3, longest, 0, 4}, {35, 4, longest, 0, 4},   {34, 5, longest, 0, 4},
    {34, 5, longest, 0, 4}, // deliberate: it stands twice
    {108, 16, 33, 0, 1},     {106, 17, 33, 0, 1},      {103, 21, 255, 1, 1},
    {104, 22, 255, 1, 1},    {36, 26, -99999, 0, 0},   {31, 23, 0, 1, 1},
    {49, 27, 4, 0, 0},       {51, 28, 4, 0, 0},        {174, 29, longest, 0, 4},
    {191, 30, 8, 0, 0},      {65, 31, 2, 0, 0},        {66, 32, 4, 0, 0},
    {67, 33, 8, 0, 0},       {163, 34, longest, 0, 4}, {187, 35, 8, 1, 1},
    {188, 36, 8, 1, 1},
};

const Rows duplicate_rows = {
    {37, 1, 255, 1, 1}, {39, 0, 255, 1, 1}, {38, 6, 1, 1, 1},   {38, 7, 2, 1, 1},
    {38, 8, 4, 1, 1},   {109, 9, 4, 1, 1},  {109, 10, 8, 1, 1}, {111, 13, 4, 1, 1},
    {111, 12, 8, 1, 1}, {110, 15, 4, 1, 1}, {110, 14, 8, 1, 1}, {31, 23, 0, 1, 1},
    {123, 27, 4, 1, 1}, {147, 28, 4, 1, 1}, {38, 30, 8, 1, 1},  {68, 31, 2, 1, 1},
    {68, 32, 4, 1, 1},  {68, 33, 8, 1, 1},
};

// By library type. Deliberate: types 25, 26 and 37 to 39 are nullable in both tables.
const Rows fixed_forms = {
    {47, 0, 255, 1, 1},      {45, 1, 255, 0, 1},       {175, 2, longest, 0, 4},
    {225, 3, longest, 0, 4}, {35, 4, longest, 0, 4},   {34, 5, longest, 0, 4},
    {48, 6, 1, 0, 0},        {52, 7, 2, 0, 0},         {56, 8, 4, 0, 0},
    {59, 9, 4, 0, 0},        {62, 10, 8, 0, 0},        {50, 11, 1, 0, 0},
    {61, 12, 8, 0, 0},       {58, 13, 4, 0, 0},        {60, 14, 8, 0, 0},
    {122, 15, 4, 0, 0},      {108, 16, 33, 0, 1},      {106, 17, 33, 0, 1},
    {-1, 18, -1, 0, -1},     {-1, 19, -1, 0, -1},      {-1, 20, -1, 0, -1},
    {103, 21, 255, 1, 1},    {104, 22, 255, 1, 1},     {31, 23, 0, 1, 1},
    {-1, 24, -1, 0, -1},     {225, 25, longest, 1, 4}, {36, 26, -99999, 1, 0},
    {49, 27, 4, 0, 0},       {51, 28, 4, 0, 0},        {174, 29, longest, 0, 4},
    {191, 30, 8, 0, 0},      {65, 31, 2, 0, 0},        {66, 32, 4, 0, 0},
    {67, 33, 8, 0, 0},       {163, 34, longest, 0, 4}, {187, 35, 8, 1, 1},
    {188, 36, 8, 1, 1},      {36, 37, 0, 1, 0},        {36, 38, 0, 1, 0},
    {36, 39, 0, 1, 0},
};

// Deliberate: the types of fixed length are not flagged as nullable in this table of nullable
// forms.
const Rows nullable_forms = {
    {39, 0, 255, 1, 1},      {37, 1, 255, 1, 1},       {175, 2, longest, 0, 4},
    {225, 3, longest, 0, 4}, {35, 4, longest, 0, 4},   {34, 5, longest, 0, 4},
    {38, 6, 1, 0, 1},        {38, 7, 2, 0, 1},         {38, 8, 4, 0, 1},
    {109, 9, 4, 0, 1},       {109, 10, 8, 0, 1},       {50, 11, 1, 0, 0},
    {111, 12, 8, 0, 1},      {111, 13, 4, 0, 1},       {110, 14, 8, 0, 1},
    {110, 15, 4, 0, 1},      {108, 16, 33, 0, 1},      {106, 17, 33, 0, 1},
    {-1, 18, -1, 0, -1},     {-1, 19, -1, 0, -1},      {-1, 20, -1, 0, -1},
    {103, 21, 255, 1, 1},    {104, 22, 255, 1, 1},     {31, 23, 0, 1, 1},
    {-1, 24, -1, 0, -1},     {225, 25, longest, 1, 4}, {36, 26, -99999, 1, 0},
    {123, 27, 4, 0, 1},      {147, 28, 4, 0, 1},       {174, 29, longest, 0, 4},
    {38, 30, 8, 0, 1},       {68, 31, 2, 0, 1},        {68, 32, 4, 0, 1},
    {68, 33, 8, 0, 1},       {163, 34, longest, 0, 4}, {187, 35, 8, 1, 1},
    {188, 36, 8, 1, 1},      {36, 37, 0, 1, 0},        {36, 38, 0, 1, 0},
    {36, 39, 0, 1, 0},
};

void expect_rows(const TDS_DATAMAP *table, const Rows &expected) {
  for (size_t row = 0; row < expected.size(); ++row) {
    EXPECT_EQ(table[row].tds_datatype, expected[row].tds_datatype) << row;
    EXPECT_EQ(table[row].cs_datatype, expected[row].cs_datatype) << row;
    EXPECT_EQ(table[row].tds_datamaxlen, expected[row].tds_datamaxlen) << row;
    EXPECT_EQ(table[row].tds_nullable, expected[row].tds_nullable) << row;
    EXPECT_EQ(table[row].tds_lendatalen, expected[row].tds_lendatalen) << row;
  }
}

TEST(ComdtypTest, UniqueMap) {
  ASSERT_EQ(unique_rows.size(), 35U);
  ASSERT_EQ(std::size(Com__tds_uniq_datatype_map), 36U);
  expect_rows(Com__tds_uniq_datatype_map, unique_rows);
  EXPECT_EQ(Com__tds_uniq_datatype_map[35].cs_datatype, -1);
}

TEST(ComdtypTest, DuplicateMap) {
  ASSERT_EQ(duplicate_rows.size(), 18U);
  ASSERT_EQ(std::size(Com__tds_dup_datatype_map), 19U);
  expect_rows(Com__tds_dup_datatype_map, duplicate_rows);
  EXPECT_EQ(Com__tds_dup_datatype_map[18].cs_datatype, -1);
}

TEST(ComdtypTest, FormsByLibraryType) {
  ASSERT_EQ(fixed_forms.size(), 40U);
  ASSERT_EQ(nullable_forms.size(), 40U);
  ASSERT_EQ(std::size(Com__tds_cs_uniq), 40U);
  ASSERT_EQ(std::size(Com__tds_cs_dup), 40U);
  expect_rows(Com__tds_cs_uniq, fixed_forms);
  expect_rows(Com__tds_cs_dup, nullable_forms);
}

// ---- lookups by wire type ----

std::vector<CS_INT> wire_types() {
  std::vector<CS_INT> types(std::begin(extremes), std::end(extremes));
  for (CS_INT type = 0; type < 256; ++type)
    types.push_back(type);
  return types;
}

const TDS_DATAMAP *first_of(const Rows &rows, CS_INT wire_type) {
  for (const TDS_DATAMAP &row : rows)
    if (row.tds_datatype == wire_type)
      return &row;
  return nullptr;
}

TEST(ComdtypTest, DataInfoOfEveryWireType) {
  int found = 0;
  for (const CS_INT type : wire_types()) {
    GuardedValue<CS_INT> prefix;
    GuardedValue<CS_BOOL> nullable;
    const CS_RETCODE status = com_tds_get_tdsdatainfo(type, prefix.address(), nullable.address());
    const TDS_DATAMAP *row = first_of(unique_rows, type);
    if (row == nullptr)
      row = first_of(duplicate_rows, type);
    if (row == nullptr) {
      EXPECT_EQ(status, 67175721) << type;
      EXPECT_TRUE(prefix.is_untouched() && nullable.is_untouched()) << type;
      continue;
    }
    ++found;
    EXPECT_EQ(status, CS_SUCCEED) << type;
    EXPECT_EQ(prefix, row->tds_lendatalen) << type;
    EXPECT_EQ(nullable, row->tds_nullable) << type;
  }
  EXPECT_EQ(found, 41); // 34 in the unique map and 7 in the other alone
}

TEST(ComdtypTest, DataInfoExamples) {
  CS_INT prefix = 0;
  CS_BOOL nullable = 0;
  EXPECT_EQ(com_tds_get_tdsdatainfo(37, &prefix, &nullable), CS_SUCCEED);
  EXPECT_EQ(prefix, 1);
  EXPECT_EQ(nullable, 1);
  EXPECT_EQ(com_tds_get_tdsdatainfo(34, &prefix, &nullable), CS_SUCCEED);
  EXPECT_EQ(prefix, 4);
  EXPECT_EQ(nullable, 0);
  EXPECT_EQ(com_tds_get_tdsdatainfo(36, &prefix, &nullable), CS_SUCCEED);
  EXPECT_EQ(prefix, 0);
  EXPECT_EQ(nullable, 0);
  EXPECT_EQ(com_tds_get_tdsdatainfo(38, &prefix, &nullable), CS_SUCCEED);
  EXPECT_EQ(prefix, 1);
  EXPECT_EQ(nullable, 1);
}

TEST(ComdtypTest, FixedLengthOfEveryWireType) {
  for (const CS_INT type : wire_types()) {
    GuardedValue<CS_INT> length;
    const CS_RETCODE status = com_tds_get_tdsfixedlen(type, length.address());
    const TDS_DATAMAP *const row = first_of(unique_rows, type);
    if (row == nullptr) {
      EXPECT_EQ(status, 67175721) << type;
      EXPECT_TRUE(length.is_untouched()) << type;
      continue;
    }
    EXPECT_EQ(status, CS_SUCCEED) << type;
    EXPECT_EQ(length, row->tds_datamaxlen) << type;
  }
}

// The duplicate map does not count here.
TEST(ComdtypTest, FixedLengthExamples) {
  CS_INT length = 77;
  for (const CS_INT type : {38, 68, 109, 110, 111, 123, 147})
    EXPECT_EQ(com_tds_get_tdsfixedlen(type, &length), COM_TDS_BADTYPE) << type;
  EXPECT_EQ(length, 77);
  EXPECT_EQ(com_tds_get_tdsfixedlen(36, &length), CS_SUCCEED);
  EXPECT_EQ(length, -99999);
  EXPECT_EQ(com_tds_get_tdsfixedlen(31, &length), CS_SUCCEED);
  EXPECT_EQ(length, 0);
}

// In the unique map the length does not count, in the other it must be equal.
TEST(ComdtypTest, LibraryTypeOfEveryWireTypeAndLength) {
  std::vector<CS_INT> lengths = {-2147483647 - 1, -99999, -1, 33, 254, 255, 256, 2147483647};
  for (CS_INT length = 0; length <= 9; ++length)
    lengths.push_back(length);
  for (const CS_INT type : wire_types())
    for (const CS_INT length : lengths) {
      const TDS_DATAMAP *row = first_of(unique_rows, type);
      if (row == nullptr)
        for (const TDS_DATAMAP &candidate : duplicate_rows)
          if (candidate.tds_datatype == type && candidate.tds_datamaxlen == length)
            row = &candidate;
      GuardedValue<CS_INT> library_type;
      const CS_RETCODE status = com_tds_get_cstype(type, length, library_type.address());
      if (row == nullptr) {
        ASSERT_EQ(status, 67175721) << type << ", " << length;
        ASSERT_TRUE(library_type.is_untouched()) << type << ", " << length;
        continue;
      }
      ASSERT_EQ(status, CS_SUCCEED) << type << ", " << length;
      ASSERT_EQ(library_type, row->cs_datatype) << type << ", " << length;
    }
}

TEST(ComdtypTest, LibraryTypeExamples) {
  const struct {
    CS_INT wire, length, library; // -1: none
  } cases[] = {
      {38, 1, 6},   {38, 2, 7},   {38, 4, 8},   {38, 8, 30},  {38, 3, -1},  {38, 0, -1},
      {68, 2, 31},  {68, 4, 32},  {68, 8, 33},  {68, 1, -1},  {109, 4, 9},  {109, 8, 10},
      {110, 4, 15}, {110, 8, 14}, {111, 4, 13}, {111, 8, 12}, {123, 4, 27}, {147, 4, 28},
      {147, 8, -1}, {37, 3, 1},   {39, 3, 0},   {45, 3, 1},   {47, 3, 0},   {36, 12, 26},
  };
  for (const auto &c : cases) {
    CS_INT library = -1;
    EXPECT_EQ(com_tds_get_cstype(c.wire, c.length, &library),
              c.library < 0 ? COM_TDS_BADTYPE : CS_SUCCEED)
        << c.wire << ", " << c.length;
    EXPECT_EQ(library, c.library) << c.wire << ", " << c.length;
  }
}

// ---- lookups by library type ----

using FormLookup = CS_RETCODE (*)(CS_INT, CS_INT *, CS_INT *, CS_INT *) noexcept;

void expect_forms(FormLookup lookup, const Rows &forms) {
  for (CS_INT type = 0; type < 40; ++type) {
    const TDS_DATAMAP &form = forms[static_cast<size_t>(type)];
    GuardedValue<CS_INT> wire_type, prefix, length;
    EXPECT_EQ(lookup(type, wire_type.address(), prefix.address(), length.address()), CS_SUCCEED);
    EXPECT_EQ(wire_type, form.tds_datatype) << type;
    EXPECT_EQ(prefix, form.tds_lendatalen) << type;
    EXPECT_EQ(length, form.tds_datamaxlen) << type;
  }
  for (const CS_INT type : {-2147483647 - 1, -99999, -1, 40, 41, 2147483647}) {
    GuardedValue<CS_INT> wire_type, prefix, length;
    EXPECT_EQ(lookup(type, wire_type.address(), prefix.address(), length.address()), 67241513);
    EXPECT_TRUE(wire_type.is_untouched() && prefix.is_untouched() && length.is_untouched());
  }
}

TEST(ComdtypTest, FormsWithoutNulls) {
  expect_forms(com_tds_get_fixed_tdstype, fixed_forms);
}

TEST(ComdtypTest, FormsWithNulls) {
  expect_forms(com_tds_get_nullable_tdstype, nullable_forms);
}

// Deliberate: a type without a wire form succeeds and delivers -1 throughout.
TEST(ComdtypTest, TypesWithoutAForm) {
  for (const FormLookup lookup : {com_tds_get_fixed_tdstype, com_tds_get_nullable_tdstype})
    for (const CS_INT type : {18, 19, 20, 24}) {
      CS_INT wire_type = 0, prefix = 0, length = 0;
      EXPECT_EQ(lookup(type, &wire_type, &prefix, &length), CS_SUCCEED);
      EXPECT_EQ(wire_type, -1);
      EXPECT_EQ(prefix, -1);
      EXPECT_EQ(length, -1);
    }
}

TEST(ComdtypTest, NullPointers) {
  CS_INT a = 77, b = 77;
  CS_BOOL flag = 77;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_get_tdsdatainfo(45, nullptr, &flag));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_get_tdsdatainfo(45, &a, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_get_tdsfixedlen(45, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_get_cstype(45, 1, nullptr));
  for (const FormLookup lookup : {com_tds_get_fixed_tdstype, com_tds_get_nullable_tdstype}) {
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(8, nullptr, &a, &b));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(8, &a, nullptr, &b));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(8, &a, &b, nullptr));
  }
  EXPECT_EQ(a, 77);
  EXPECT_EQ(b, 77);
  EXPECT_EQ(flag, 77);
}

} // namespace
