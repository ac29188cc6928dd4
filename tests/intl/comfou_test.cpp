// The table of ten sets.
#include <map>

#include <gtest/gtest.h>

#include "zrvcomn/comfou.h"

namespace {

// One mark a cell: . none, = copy, a ASCII only, c counts only, M a mapping of its own.
constexpr const char *grid[COM_FOU_SETS] = {
    "=aaaaaaaac", // ascii_8
    "a=MMMMaaac", // iso_1
    "aM=MMMaaa.", // cp850
    "aMM=MMaaa.", // cp437
    "aMMM=Maaa.", // roman8
    "aMMMM=aaa.", // mac
    "aaaaaa=MM.", // eucjis
    "aaaaaaM=M.", // sjis
    "aaaaaaMM=.", // deckanji
    "aa.......=", // zrvchar
};

constexpr CS_INT sets[COM_FOU_SETS] = {0, 1, 2, 3, 4, 5, 140, 141, 142, 255};

TEST(FouTable, EveryCell) {
  const std::map<std::pair<int, int>, CS_XLATE_FUNC> mappings = {
      {{1, 2}, com__fou_iso1_to_cp850},
      {{1, 3}, com__fou_iso1_to_cp437},
      {{1, 4}, com__fou_iso1_to_roman8},
      {{1, 5}, com__fou_iso1_to_mac},
      {{2, 1}, com__fou_cp850_to_iso1},
      {{2, 3}, com__fou_cp850_to_cp437},
      {{2, 4}, com__fou_cp850_to_roman8},
      {{2, 5}, com__fou_cp850_to_mac},
      {{3, 1}, com__fou_cp437_to_iso1},
      {{3, 2}, com__fou_cp437_to_cp850},
      {{3, 4}, com__fou_cp437_to_roman8},
      {{3, 5}, com__fou_cp437_to_mac},
      {{4, 1}, com__fou_roman8_to_iso1},
      {{4, 2}, com__fou_roman8_to_cp850},
      {{4, 3}, com__fou_roman8_to_cp437},
      {{4, 5}, com__fou_roman8_to_mac},
      {{5, 1}, com__fou_mac_to_iso1},
      {{5, 2}, com__fou_mac_to_cp850},
      {{5, 3}, com__fou_mac_to_cp437},
      {{5, 4}, com__fou_mac_to_roman8},
      {{6, 7}, com__fou_eucjis_to_sjis},
      {{6, 8}, com__fou_eucjis_to_deckanji},
      {{7, 6}, com__fou_sjis_to_eucjis_deckanj},
      {{7, 8}, com__fou_sjis_to_eucjis_deckanj},
      {{8, 6}, com__fou_deckanji_to_eucjis},
      {{8, 7}, com__fou_deckanji_to_sjis},
  };
  size_t found = 0;
  for (int from = 0; from < COM_FOU_SETS; ++from) {
    EXPECT_EQ(Com_fou_xlt_map[from].csid, sets[from]);
    for (int to = 0; to < COM_FOU_SETS; ++to) {
      const CS_FOU_FUNCS &cell = Com_fou_xlt_map[from].fou_funcs[to];
      EXPECT_EQ(cell.csid, sets[to]);
      CS_INT type = 0;
      CS_XLATE_FUNC function = nullptr;
      switch (grid[from][to]) {
      case '=':
        type = 1;
        break;
      case 'a':
        type = 2;
        function = com__fou_ascii8_tofrom_1byte;
        break;
      case 'c':
        type = 3;
        function = com__fou_caseswap;
        break;
      case 'M':
        type = 3;
        function = mappings.at({from, to});
        ++found;
        break;
      default:
        break;
      }
      EXPECT_EQ(cell.xlate_type, type) << from << ' ' << to;
      EXPECT_EQ(cell.xlate_func, function) << from << ' ' << to;
    }
  }
  EXPECT_EQ(found, mappings.size());
}

} // namespace
