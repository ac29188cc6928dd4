// The built-in character set: every byte of its tables, and its record.
#include <gtest/gtest.h>

#include "zrvcomn/charset.h"

namespace {

struct Range {
  int first, last, type, lex;
};

// The settled values, among them the deliberate ones: 14, 15, 142, 143, 160 and 173 are white space,
// 223 is upper case, no character is graphic.
constexpr Range ranges[] = {
    {0, 8, 0, 8},     {9, 15, 8, 8},      {16, 31, 0, 8},    {32, 32, 8, 8},     {33, 33, 32, 32},
    {34, 34, 32, 16}, {35, 35, 32, 1},    {36, 36, 32, 64},  {37, 38, 32, 32},   {39, 39, 32, 16},
    {40, 47, 32, 32}, {48, 57, 20, 2},    {58, 63, 32, 32},  {64, 64, 32, 1},    {65, 70, 17, 1},
    {71, 90, 1, 1},   {91, 94, 32, 32},   {95, 95, 32, 1},   {96, 96, 32, 32},   {97, 102, 18, 1},
    {103, 122, 2, 1}, {123, 126, 32, 32}, {127, 127, 0, 32}, {128, 141, 0, 1},   {142, 143, 8, 1},
    {144, 159, 0, 1}, {160, 160, 8, 1},   {161, 162, 32, 1}, {163, 165, 32, 64}, {166, 172, 32, 1},
    {173, 173, 8, 1}, {174, 191, 32, 1},  {192, 214, 1, 1},  {215, 215, 32, 1},  {216, 222, 1, 1},
    {223, 223, 1, 1}, {224, 246, 2, 1},   {247, 247, 32, 1}, {248, 254, 2, 1},   {255, 255, 2, 1},
};

bool is_between(int c, int first, int last) {
  return c >= first && c <= last;
}

TEST(BuiltInCharset, TypesAndLexicalClasses) {
  int next = 0;
  for (const Range &range : ranges) {
    ASSERT_EQ(range.first, next);
    for (int c = range.first; c <= range.last; ++c) {
      EXPECT_EQ(ISO_1_type_map->chmap[c].char_type, range.type) << c;
      EXPECT_EQ(ISO_1_type_map->chmap[c].char_lex, range.lex) << c;
    }
    next = range.last + 1;
  }
  EXPECT_EQ(next, 256);
}

TEST(BuiltInCharset, CaseForms) {
  for (int c = 0; c < 256; ++c) {
    const bool has_lower =
        is_between(c, 65, 90) || is_between(c, 192, 214) || is_between(c, 216, 222);
    const bool has_upper =
        is_between(c, 97, 122) || is_between(c, 224, 246) || is_between(c, 248, 254);
    EXPECT_EQ(ISO_1_type_map->chmap[c].char_lower, has_lower ? c + 32 : c) << c;
    EXPECT_EQ(ISO_1_type_map->chmap[c].char_upper, has_upper ? c - 32 : c) << c;
  }
}

TEST(BuiltInCharset, Sounds) {
  constexpr char letters[] = "01230120022455012623010202";
  for (int c = 0; c < 256; ++c) {
    int sound = 0;
    if (is_between(c, 65, 90))
      sound = letters[c - 65];
    else if (is_between(c, 97, 122))
      sound = letters[c - 97];
    else if (is_between(c, 192, 214) || is_between(c, 216, 246) || is_between(c, 248, 255))
      sound = '0';
    EXPECT_EQ(ISO_1_soundex->sound[c], sound) << c;
  }
}

TEST(BuiltInCharset, Record) {
  const CS_ATTRIB *const set = com_get_charattrib();
  ASSERT_NE(set, nullptr);
  EXPECT_EQ(com_get_charattrib(), set);
  EXPECT_EQ(set->cs_status, 0);
  EXPECT_EQ(set->cs_class, 1);
  EXPECT_EQ(set->cs_id, 1);
  EXPECT_STREQ(set->cs_name, "iso_1");
  EXPECT_EQ(set->cs_namelen, 5);
  EXPECT_EQ(set->cs_maxcharlen, 1);
  EXPECT_EQ(set->cs_ncharsize, 1);
  EXPECT_EQ(set->cs_nnorm, 0);
  EXPECT_EQ(set->cs_ntype, 1);
  EXPECT_EQ(set->cs_nsoundex, 1);
  EXPECT_EQ(set->cs_width_map, nullptr);
  EXPECT_EQ(set->cs_norm_map, nullptr);
  EXPECT_EQ(set->cs_type_map, ISO_1_type_map);
  EXPECT_EQ(set->cs_soundex, ISO_1_soundex);
  EXPECT_EQ(com_get_typemap(), ISO_1_type_map);
}

} // namespace
