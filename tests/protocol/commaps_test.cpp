// The token maps, row by row in both directions; the protocol versions; the secure-login mask.
#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_value.h"
#include "zrvcomn/commaps.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "commaps.cpp";
constexpr unsigned random_seed = 81;
constexpr CS_INT bit_end = 0x70000000;
constexpr CS_INT lowest = -2147483647 - 1;

using Rows = std::vector<std::pair<CS_INT, CS_INT>>; // library value, wire value

struct Map {
  const TDS_TOKENMAP *table;
  CS_BOOL is_unique;
  size_t size; // rows of the table, its end row included
  Rows rows;
};

Rows same_on_both_sides(CS_INT first, CS_INT last) {
  Rows rows;
  for (CS_INT value = first; value <= last; ++value)
    rows.emplace_back(value, value);
  return rows;
}

Rows options() {
  Rows rows = {{5001, 1}, {5002, 2}, {5004, 4}, {5003, 3}};
  for (CS_INT wire = 5; wire <= 47; ++wire)
    rows.emplace_back(5000 + wire, wire);
  return rows;
}

Rows cursor_declarations() {
  Rows rows = same_on_both_sides(1, 20);
  rows.emplace_back(-99999, 0);
  return rows;
}

Rows cursor_facts() {
  Rows rows;
  for (CS_INT bit = 1; bit <= 16384; bit *= 2)
    rows.emplace_back(bit, bit);
  rows.emplace_back(0, 0);
  return rows;
}

const std::vector<Map> &maps() {
  static const std::vector<Map> all = {
      {Com__tds_altop_map, 1, 6, {{5370, 77}, {5371, 79}, {5372, 75}, {5373, 81}, {5374, 82}}},
      {Com__tds_captype_map, 1, 3, {{1, 1}, {2, 2}}},
      {Com__tds_cap_req_map, 1, 108, same_on_both_sides(1, 107)},
      {Com__tds_cap_resp_map, 1, 74, same_on_both_sides(1, 73)},
      {Com__tds_colinfo_map, 0, 6, {{1, 16}, {2, 8}, {2048, 4}, {4096, 32}, {0, 0}}},
      {Com__tds_curclose_map, 1, 3, {{711, 1}, {-99999, 0}}},
      {Com__tds_curdecl_map, 1, 22, cursor_declarations()},
      {Com__tds_curinfo_map, 0, 17, cursor_facts()},
      {Com__tds_dynamic_map,
       1,
       9,
       {{717, 1}, {718, 2}, {711, 4}, {719, 8}, {720, 64}, {320, 64}, {721, 128}, {-99999, 0}}},
      {Com__tds_optcom_map, 1, 5, {{34, 1}, {35, 2}, {33, 3}, {39, 4}}},
      {Com__tds_option_map, 1, 48, options()},
      {Com__tds_optboolean_map, 1, 3, {{0, 0}, {1, 1}}},
      {Com__tds_optdatefirst_map, 1, 8, {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}}},
      {Com__tds_optdatefmt_map, 1, 7, {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}}},
      {Com__tds_optisolation_map,
       1,
       8,
       {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {11, 11}, {12, 12}, {13, 13}}},
      {Com__tds_paramstat_map,
       1,
       10,
       {{1024, 1},
        {32, 32},
        {1056, 33},
        {1024, 192},
        {1056, 224},
        {256, 0},
        {320, 0},
        {-99999, 0},
        {0, 0}}},
      {Com__tds_rpcopt_map, 1, 4, {{188, 1}, {189, 0}, {-99999, 0}}},
      {Com__tds_rpcstat_map, 1, 4, {{1024, 1}, {16384, 2}, {256, 0}}},
      {Com__tds_retval_map, 1, 5, {{1024, 1}, {256, 0}, {320, 0}, {0, 0}}},
      {Com__tds_rowfmt_map,
       0,
       11,
       {{1, 1},
        {2, 2},
        {4, 4},
        {8, 8},
        {16, 16},
        {32, 32},
        {32768, 64},
        {65536, 128},
        {1024, 192},
        {0, 0}}},
      {Com__tds_optisolationmode_map, 1, 4, {{0, 0}, {1, 1}, {2, 2}}},
  };
  return all;
}

enum Direction { to_wire = 1, to_library = 2 };

struct Mapped {
  CS_RETCODE status;
  CS_INT destination, unmapped;
  bool operator==(const Mapped &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Mapped &mapped) {
  return out << mapped.status << ", " << mapped.destination << ", " << mapped.unmapped;
}

Mapped map_token(CS_INT index, CS_INT value, CS_INT direction) {
  GuardedValue<CS_INT> destination, unmapped;
  const CS_RETCODE status =
      com_tds_maptoken(index, value, destination.address(), unmapped.address(), direction);
  return {status, destination, unmapped};
}

// A library value without a row is fatal as well.
Mapped map_missing(CS_INT index, CS_INT value) {
  Mapped mapped{};
  const CheckReport report = catch_check([&] { mapped = map_token(index, value, to_wire); });
  EXPECT_TRUE(is_assertion_report(report, unit)) << index << ", " << value << report.text;
  return mapped;
}

CS_INT from_of(const std::pair<CS_INT, CS_INT> &row, Direction direction) {
  return direction == to_wire ? row.first : row.second;
}
CS_INT to_of(const std::pair<CS_INT, CS_INT> &row, Direction direction) {
  return direction == to_wire ? row.second : row.first;
}

// ---- the tables ----

TEST(CommapsTest, Rows) {
  ASSERT_EQ(maps().size(), 21U);
  for (size_t i = 0; i < 21; ++i) {
    const Map &map = maps()[i];
    ASSERT_EQ(map.rows.size() + 1, map.size) << i;
    EXPECT_EQ(Com__tds_maparray[i].index, static_cast<CS_INT>(i));
    EXPECT_EQ(Com__tds_maparray[i].map, map.table) << i;
    EXPECT_EQ(Com__tds_maparray[i].is_uniqmap, map.is_unique) << i;
    for (size_t row = 0; row < map.rows.size(); ++row) {
      EXPECT_EQ(map.table[row].cs_tokenval, map.rows[row].first) << i << ", " << row;
      EXPECT_EQ(map.table[row].tds_tokenval, map.rows[row].second) << i << ", " << row;
    }
    const CS_INT end = map.is_unique ? -1 : bit_end;
    EXPECT_EQ(map.table[map.size - 1].cs_tokenval, end) << i;
    EXPECT_EQ(map.table[map.size - 1].tds_tokenval, end) << i;
  }
}

TEST(CommapsTest, RowCounts) {
  EXPECT_EQ(std::size(Com__tds_maparray), 21U);
  EXPECT_EQ(std::size(Com__tds_cap_req_map), 108U);
  EXPECT_EQ(std::size(Com__tds_cap_resp_map), 74U);
  EXPECT_EQ(std::size(Com__tds_option_map), 48U);
  EXPECT_EQ(std::size(Com__tds_curdecl_map), 22U);
  EXPECT_EQ(std::size(Com__tds_curinfo_map), 17U);
}

// ---- maps of unique values ----

// Every row in both directions; where a value stands in several rows, the first one counts.
TEST(CommapsTest, EveryRowOfUniqueMaps) {
  for (CS_INT index = 0; index < 21; ++index) {
    const Map &map = maps()[static_cast<size_t>(index)];
    if (!map.is_unique)
      continue;
    for (const Direction direction : {to_wire, to_library})
      for (const auto &row : map.rows) {
        const CS_INT value = from_of(row, direction);
        const auto first = std::find_if(map.rows.begin(), map.rows.end(), [&](const auto &other) {
          return from_of(other, direction) == value;
        });
        EXPECT_EQ(map_token(index, value, direction),
                  (Mapped{CS_SUCCEED, to_of(*first, direction), 0}))
            << index << ", " << value;
      }
  }
}

TEST(CommapsTest, FirstRowCounts) {
  EXPECT_EQ(map_token(15, 1024, to_wire).destination, 1); // not 192
  EXPECT_EQ(map_token(15, 1056, to_wire).destination, 33);
  EXPECT_EQ(map_token(15, 192, to_library).destination, 1024);
  EXPECT_EQ(map_token(15, 224, to_library).destination, 1056);
  EXPECT_EQ(map_token(15, 0, to_library).destination, 256);
  EXPECT_EQ(map_token(8, 64, to_library).destination, 720); // not 320
  EXPECT_EQ(map_token(16, 0, to_library).destination, 189);
  EXPECT_EQ(map_token(18, 0, to_library).destination, 256);
}

// Misses: the neighbours of every value, the ends of the range, and the values of the end rows.
TEST(CommapsTest, EveryMissOfUniqueMaps) {
  for (CS_INT index = 0; index < 21; ++index) {
    const Map &map = maps()[static_cast<size_t>(index)];
    if (!map.is_unique)
      continue;
    for (const Direction direction : {to_wire, to_library}) {
      std::vector<CS_INT> values = {lowest, 2147483647, -1, bit_end, 0, 1, -99999, 65536};
      for (const auto &row : map.rows)
        for (const CS_INT step : {-1, 1})
          values.push_back(from_of(row, direction) + step);
      std::sort(values.begin(), values.end());
      values.erase(std::unique(values.begin(), values.end()), values.end());
      for (const CS_INT value : values) {
        const bool is_there = std::any_of(map.rows.begin(), map.rows.end(), [&](const auto &row) {
          return from_of(row, direction) == value;
        });
        if (is_there)
          continue;
        const Mapped mapped =
            direction == to_wire ? map_missing(index, value) : map_token(index, value, to_library);
        EXPECT_EQ(mapped, (Mapped{CS_FAIL, 0, value})) << index << ", " << direction;
      }
    }
  }
}

// ---- bit maps ----

Mapped map_bits_by_hand(const Rows &rows, CS_INT value, Direction direction) {
  CS_INT destination = 0, left = value;
  for (const auto &row : rows)
    if ((from_of(row, direction) & value) != 0) {
      destination |= to_of(row, direction);
      left &= ~from_of(row, direction);
    }
  return {CS_SUCCEED, destination, left};
}

constexpr CS_INT bit_maps[] = {4, 7, 19};

// Every subset of a map's bits in both directions, alone and with bits that no row has.
TEST(CommapsTest, EverySubsetOfBitMaps) {
  for (const CS_INT index : bit_maps) {
    const Rows &rows = maps()[static_cast<size_t>(index)].rows;
    for (const Direction direction : {to_wire, to_library}) {
      CS_INT all = 0;
      for (const auto &row : rows)
        all |= from_of(row, direction);
      for (CS_INT bits = all; bits != 0; bits = (bits - 1) & all)
        for (const CS_INT extra : {0, 0x00800000, bit_end, lowest}) {
          const CS_INT value = bits | extra;
          const Mapped mapped = map_token(index, value, direction);
          ASSERT_EQ(mapped, map_bits_by_hand(rows, value, direction)) << index << ", " << value;
          ASSERT_EQ(mapped.unmapped, extra);
        }
    }
  }
}

TEST(CommapsTest, BitMapExamples) {
  EXPECT_EQ(map_token(4, 1 | 4096, to_wire), (Mapped{CS_SUCCEED, 48, 0}));
  EXPECT_EQ(map_token(4, 16 | 8 | 4 | 32, to_library),
            (Mapped{CS_SUCCEED, 1 | 2 | 2048 | 4096, 0}));
  EXPECT_EQ(map_token(4, 4, to_wire), (Mapped{CS_SUCCEED, 0, 4}));
  EXPECT_EQ(map_token(19, 1024, to_wire), (Mapped{CS_SUCCEED, 192, 0}));
  EXPECT_EQ(map_token(19, 32768 | 65536, to_wire), (Mapped{CS_SUCCEED, 192, 0}));
  // Deliberate: each of these wire bits is shared by two rows, and both answer.
  EXPECT_EQ(map_token(19, 64, to_library), (Mapped{CS_SUCCEED, 32768 | 1024, 0}));
  EXPECT_EQ(map_token(19, 128, to_library), (Mapped{CS_SUCCEED, 65536 | 1024, 0}));
  EXPECT_EQ(map_token(7, 3 | 32768, to_wire), (Mapped{CS_SUCCEED, 3, 32768}));
}

// The bits of the end row belong to no row; the walk stops there all the same.
TEST(CommapsTest, BitsOfTheEndRow) {
  for (const CS_INT index : bit_maps)
    for (const Direction direction : {to_wire, to_library})
      for (const CS_INT value : {bit_end, 0x10000000, 0x20000000, 0x40000000, lowest, -0x40000000})
        EXPECT_EQ(map_token(index, value, direction),
                  map_bits_by_hand(maps()[static_cast<size_t>(index)].rows, value, direction))
            << index << ", " << value;
}

TEST(CommapsTest, RandomBits) {
  std::mt19937 random(random_seed);
  for (int i = 0; i < 20000; ++i) {
    const CS_INT index = bit_maps[random() % 3];
    const Direction direction = random() % 2 == 0 ? to_wire : to_library;
    const auto value = static_cast<CS_INT>(random() & random());
    if (value == 0)
      continue;
    ASSERT_EQ(map_token(index, value, direction),
              map_bits_by_hand(maps()[static_cast<size_t>(index)].rows, value, direction))
        << index << ", " << value;
  }
}

// ---- zero ----

// Zero is looked up whole in every map: it succeeds where a row has it, else it is a miss.
TEST(CommapsTest, ZeroThroughEveryMap) {
  constexpr CS_INT none = -7;
  const struct {
    CS_INT wire, library;
  } expected[21] = {
      {none, none},   {none, none}, {none, none},   {none, none}, {0, 0},       {none, -99999},
      {none, -99999}, {0, 0},       {none, -99999}, {none, none}, {none, none}, {0, 0},
      {none, none},   {none, none}, {0, 0},         {0, 256},     {none, 189},  {none, 256},
      {0, 256},       {0, 0},       {0, 0},
  };
  for (CS_INT index = 0; index < 21; ++index) {
    const auto &e = expected[index];
    if (e.wire == none)
      EXPECT_EQ(map_missing(index, 0), (Mapped{CS_FAIL, 0, 0})) << index;
    else
      EXPECT_EQ(map_token(index, 0, to_wire), (Mapped{CS_SUCCEED, e.wire, 0})) << index;
    EXPECT_EQ(map_token(index, 0, to_library),
              e.library == none ? (Mapped{CS_FAIL, 0, 0}) : (Mapped{CS_SUCCEED, e.library, 0}))
        << index;
  }
}

// ---- com_tds_maptoken itself ----

TEST(CommapsTest, IndexWithoutAMap) {
  for (const CS_INT index : {-1, 21, 22, lowest, 2147483647})
    for (const CS_INT direction : {1, 2}) {
      GuardedValue<CS_INT> destination, unmapped;
      EXPECT_EQ(com_tds_maptoken(index, 1, destination.address(), unmapped.address(), direction),
                -107);
      EXPECT_TRUE(destination.is_untouched() && unmapped.is_untouched());
    }
}

TEST(CommapsTest, Directions) {
  CS_INT destination = 77, unmapped = 77;
  for (const CS_INT direction : {0, 3, -1, lowest, 2147483647})
    EXPECT_ASSERTION(unit, CS_FAIL, com_tds_maptoken(1, 1, &destination, &unmapped, direction));
  EXPECT_EQ(destination, 77);
  EXPECT_EQ(unmapped, 77);
}

TEST(CommapsTest, NullPointers) {
  CS_INT value = 77;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_maptoken(1, 1, nullptr, &value, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_tds_maptoken(1, 1, &value, nullptr, 1));
  using Lookup = CS_RETCODE (*)(const TDS_TOKENMAP *, CS_INT, CS_INT *, CS_INT *, CS_BOOL) noexcept;
  for (const Lookup lookup : {com__tds_cstotds_map, com__tds_tdstocs_map}) {
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(nullptr, 1, &value, &value, 1));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(Com__tds_captype_map, 1, nullptr, &value, 1));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, lookup(Com__tds_captype_map, 1, &value, nullptr, 1));
  }
  EXPECT_EQ(value, 77);
}

// ---- the two walks over maps of another's making ----

// From library to wire a bit map ends at its end row, and at a row with the end value on the
// library side alone only for values that share no bit with it.
TEST(CommapsTest, EndOfABitMapToWire) {
  const TDS_TOKENMAP map[] = {{1, 2}, {4, bit_end}, {bit_end, 8}, {16, 32}, {bit_end, bit_end}};
  CS_INT destination = 77, unmapped = 77;
  EXPECT_EQ(com__tds_cstotds_map(map, 1 | 16, &destination, &unmapped, 0), CS_SUCCEED);
  EXPECT_EQ(destination, 2);
  EXPECT_EQ(unmapped, 16);
  EXPECT_EQ(com__tds_cstotds_map(map, 4 | 0x10000000 | 16, &destination, &unmapped, 0), CS_SUCCEED);
  EXPECT_EQ(destination, bit_end | 8 | 32);
  EXPECT_EQ(unmapped, 0);
}

// The other way it ends at the first row with the end value on either side.
TEST(CommapsTest, EndOfABitMapToLibrary) {
  const TDS_TOKENMAP first[] = {{2, 1}, {8, bit_end}, {32, 16}, {bit_end, bit_end}};
  const TDS_TOKENMAP second[] = {{2, 1}, {bit_end, 8}, {32, 16}, {bit_end, bit_end}};
  for (const TDS_TOKENMAP *const map : {first, second}) {
    CS_INT destination = 77, unmapped = 77;
    EXPECT_EQ(com__tds_tdstocs_map(map, 1 | 8 | 16 | 0x10000000, &destination, &unmapped, 0),
              CS_SUCCEED);
    EXPECT_EQ(destination, 2);
    EXPECT_EQ(unmapped, 8 | 16 | 0x10000000);
  }
}

// The bit of the sign is a bit like any other.
TEST(CommapsTest, SignBitOfABitMap) {
  const TDS_TOKENMAP map[] = {{lowest, 1}, {2, lowest}, {bit_end, bit_end}};
  CS_INT destination = 77, unmapped = 77;
  EXPECT_EQ(com__tds_cstotds_map(map, lowest | 2, &destination, &unmapped, 0), CS_SUCCEED);
  EXPECT_EQ(destination, lowest | 1);
  EXPECT_EQ(unmapped, 0);
  EXPECT_EQ(com__tds_tdstocs_map(map, lowest | 1, &destination, &unmapped, 0), CS_SUCCEED);
  EXPECT_EQ(destination, lowest | 2);
  EXPECT_EQ(unmapped, 0);
}

// Zero that no row of a bit map has is a miss; what stands behind the end is not asked.
TEST(CommapsTest, ZeroThroughABitMapWithoutARowForIt) {
  const TDS_TOKENMAP map[] = {{1, 2}, {4, 8}, {bit_end, bit_end}, {0, 0}, {0, 16}, {16, 0}};
  CS_INT destination = 77, unmapped = 77;
  EXPECT_EQ(com__tds_tdstocs_map(map, 0, &destination, &unmapped, 0), CS_FAIL);
  EXPECT_EQ(destination, 0);
  EXPECT_EQ(unmapped, 0);
  destination = unmapped = 77;
  EXPECT_ASSERTION(unit, CS_FAIL, com__tds_cstotds_map(map, 0, &destination, &unmapped, 0));
  EXPECT_EQ(destination, 0);
  EXPECT_EQ(unmapped, 0);
}

// ---- protocol versions ----

TEST(CommapsTest, VersionToBytes) {
  const struct {
    CS_INT symbol;
    CS_BYTE bytes[4];
  } versions[] = {{7360, {4, 0, 0, 0}},
                  {7361, {4, 2, 0, 0}},
                  {7362, {4, 6, 0, 0}},
                  {7363, {4, 9, 5, 0}},
                  {7364, {5, 0, 0, 0}}};
  for (const auto &version : versions)
    for (const CS_INT room : {4, 5, 2147483647}) {
      GuardedBuffer bytes(4);
      GuardedValue<CS_INT> length;
      CS_INT symbol = version.symbol;
      EXPECT_EQ(com_tds_version_map(bytes.data(), room, &symbol, 1, length.address()), CS_SUCCEED);
      EXPECT_EQ(bytes.contents(), std::string(version.bytes, version.bytes + 4));
      EXPECT_EQ(length, 4);
      EXPECT_EQ(symbol, version.symbol);
      EXPECT_EQ(com_tds_version_map(bytes.data(), room, &symbol, 1, nullptr), CS_SUCCEED);
    }
}

// Deliberate: the length is told for an unknown version as well.
TEST(CommapsTest, UnknownVersions) {
  for (const CS_INT unknown : {7359, 7365, 0, -1, lowest, 2147483647}) {
    GuardedBuffer bytes(4);
    CS_INT symbol = unknown, length = 77;
    EXPECT_EQ(com_tds_version_map(bytes.data(), 4, &symbol, 1, &length), CS_FAIL);
    EXPECT_TRUE(bytes.is_untouched());
    EXPECT_EQ(length, 4);
    EXPECT_EQ(com_tds_version_map(bytes.data(), 4, &symbol, 1, nullptr), CS_FAIL);
    EXPECT_EQ(symbol, unknown);
  }
}

// Every first, second and third byte; the fourth never counts.
TEST(CommapsTest, EveryVersionByteString) {
  for (int a = 0; a < 256; ++a)
    for (int b = 0; b < 256; ++b)
      for (int c = 0; c < 256; c += (a == 4 && b == 9) || c < 6 ? 1 : 83) {
        CS_INT expected = 0;
        if (a == 5 && b == 0)
          expected = 7364;
        else if (a == 4 && b == 0)
          expected = 7360;
        else if (a == 4 && b == 2)
          expected = 7361;
        else if (a == 4 && b == 6)
          expected = 7362;
        else if (a == 4 && b == 9 && c == 5)
          expected = 7363;
        CS_BYTE bytes[4] = {static_cast<CS_BYTE>(a), static_cast<CS_BYTE>(b),
                            static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(a ^ b ^ c)};
        CS_INT symbol = 77, length = 77;
        ASSERT_EQ(com_tds_version_map(bytes, 4, &symbol, 2, &length),
                  expected != 0 ? CS_SUCCEED : CS_FAIL)
            << a << "." << b << "." << c;
        ASSERT_EQ(symbol, expected != 0 ? expected : 77) << a << "." << b << "." << c;
        ASSERT_EQ(length, 77);
      }
}

TEST(CommapsTest, VersionExamples) {
  CS_BYTE bytes[4] = {4, 9, 6, 0};
  CS_INT symbol = 77;
  EXPECT_EQ(com_tds_version_map(bytes, 4, &symbol, 2, nullptr), CS_FAIL);
  EXPECT_EQ(symbol, 77);
  CS_BYTE five[4] = {5, 0, 1, 1};
  EXPECT_EQ(com_tds_version_map(five, 4, &symbol, 2, nullptr), CS_SUCCEED);
  EXPECT_EQ(symbol, 7364);
}

TEST(CommapsTest, VersionChecks) {
  GuardedBuffer bytes(4);
  CS_INT symbol = 7364, length = 77;
  for (const CS_INT direction : {1, 2}) {
    for (const CS_INT room : {3, 0, -1, lowest})
      EXPECT_ASSERTION(unit, CS_FAIL,
                       com_tds_version_map(bytes.data(), room, &symbol, direction, &length));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                              com_tds_version_map(nullptr, 4, &symbol, direction, &length));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                              com_tds_version_map(bytes.data(), 4, nullptr, direction, &length));
  }
  for (const CS_INT direction : {0, 3, -1})
    EXPECT_ASSERTION(unit, CS_FAIL,
                     com_tds_version_map(bytes.data(), 4, &symbol, direction, &length));
  EXPECT_EQ(symbol, 7364);
  EXPECT_EQ(length, 77);
  EXPECT_TRUE(bytes.is_untouched());
}

// ---- secure login ----

// In the order of the arguments behind the mask.
constexpr int login_bits[] = {32, 1, 2, 4, 8};

struct Flags {
  CS_BOOL flag[5];
};

CS_RETCODE seclogin(CS_BYTE *mask, Flags &flags, CS_INT direction) {
  return com_tds_seclogin(mask, &flags.flag[0], &flags.flag[1], &flags.flag[2], &flags.flag[3],
                          &flags.flag[4], direction);
}

// Bits are added to what the mask holds and never taken out.
TEST(CommapsTest, EveryMaskAndEveryFlagToWire) {
  for (int before = 0; before < 256; ++before)
    for (int chosen = 0; chosen < 32; ++chosen) {
      Flags flags{};
      int expected = before;
      for (int i = 0; i < 5; ++i)
        if ((chosen >> i & 1) != 0) {
          flags.flag[i] = 1;
          expected |= login_bits[i];
        }
      GuardedValue<CS_BYTE> mask;
      *mask.address() = static_cast<CS_BYTE>(before);
      ASSERT_EQ(seclogin(mask.address(), flags, 1), CS_SUCCEED);
      ASSERT_EQ(mask, expected) << before << ", " << chosen;
      for (int i = 0; i < 5; ++i)
        ASSERT_EQ(flags.flag[i], chosen >> i & 1);
    }
}

TEST(CommapsTest, EveryMaskToLibrary) {
  for (int value = 0; value < 256; ++value) {
    auto mask = static_cast<CS_BYTE>(value);
    GuardedValue<Flags> flags;
    ASSERT_EQ(seclogin(&mask, *flags.address(), 2), CS_SUCCEED);
    ASSERT_EQ(mask, value);
    for (int i = 0; i < 5; ++i)
      ASSERT_EQ(Flags(flags).flag[i], (value & login_bits[i]) != 0) << value << ", " << i;
  }
}

TEST(CommapsTest, SecureLoginBits) {
  CS_BYTE mask = 0;
  CS_BOOL extended = 1, encrypt = 0, challenge = 0, negotiate = 0, appdefined = 0;
  com_tds_seclogin(&mask, &extended, &encrypt, &challenge, &negotiate, &appdefined, 1);
  EXPECT_EQ(mask, 32);
  encrypt = 1;
  com_tds_seclogin(&mask, &extended, &encrypt, &challenge, &negotiate, &appdefined, 1);
  EXPECT_EQ(mask, 33);
  mask = 2 | 8 | 16 | 64 | 128;
  com_tds_seclogin(&mask, &extended, &encrypt, &challenge, &negotiate, &appdefined, 2);
  EXPECT_EQ(extended, 0);
  EXPECT_EQ(encrypt, 0);
  EXPECT_EQ(challenge, 1);
  EXPECT_EQ(negotiate, 0);
  EXPECT_EQ(appdefined, 1);
}

// Another flag is fatal and changes nothing, whichever comes after it.
TEST(CommapsTest, SecureLoginChecks) {
  for (int i = 0; i < 5; ++i) {
    for (const CS_BOOL bad : {2, -1, 255, 256}) {
      Flags flags = {{1, 1, 1, 1, 1}};
      flags.flag[i] = bad;
      CS_BYTE mask = 64;
      EXPECT_ASSERTION(unit, CS_FAIL, seclogin(&mask, flags, 1));
      EXPECT_EQ(mask, 64);
      // Nobody reads the flags on the way in.
      EXPECT_EQ(seclogin(&mask, flags, 2), CS_SUCCEED);
      EXPECT_EQ(flags.flag[i], 0);
    }
    for (const CS_INT direction : {1, 2}) {
      Flags flags = {{1, 1, 1, 1, 1}};
      CS_BYTE mask = 64;
      CS_BOOL *f[5];
      for (int k = 0; k < 5; ++k)
        f[k] = k == i ? nullptr : &flags.flag[k];
      EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                                com_tds_seclogin(&mask, f[0], f[1], f[2], f[3], f[4], direction));
      EXPECT_EQ(mask, 64);
      for (const CS_BOOL flag : flags.flag)
        EXPECT_EQ(flag, 1);
    }
  }
  Flags flags = {{1, 1, 1, 1, 1}};
  CS_BYTE mask = 64;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, seclogin(nullptr, flags, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, seclogin(nullptr, flags, 2));
  for (const CS_INT direction : {0, 3, -1})
    EXPECT_ASSERTION(unit, CS_FAIL, seclogin(&mask, flags, direction));
  EXPECT_EQ(mask, 64);
}

} // namespace
