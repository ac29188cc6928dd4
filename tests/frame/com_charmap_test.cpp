// The plain character table, every byte of it.
#include <gtest/gtest.h>

#include "zrvcomn/comnlib.h"

namespace {

struct Range {
  int first, last, type;
};

// The settled values, among them the deliberate ones: 14 and 15 are white space, 142, 143 and the
// marks 160 to 191, 215 and 247 are upper-case letters.
constexpr Range types[] = {
    {0, 8, 0},     {9, 15, 8},     {16, 31, 0},    {32, 32, 72},   {33, 47, 96},
    {48, 57, 84},  {58, 64, 96},   {65, 70, 81},   {71, 90, 65},   {91, 96, 96},
    {97, 102, 82}, {103, 122, 66}, {123, 126, 96}, {127, 141, 0},  {142, 143, 1},
    {144, 159, 0}, {160, 223, 65}, {224, 246, 66}, {247, 247, 65}, {248, 255, 66},
};

bool is_between(int c, int first, int last) {
  return c >= first && c <= last;
}

} // namespace

TEST(Charmap, Types) {
  int next = 0;
  for (const Range &range : types) {
    ASSERT_EQ(range.first, next);
    for (int c = range.first; c <= range.last; ++c)
      EXPECT_EQ(Com_Iso1_charmap[c].char_type, range.type) << c;
    next = range.last + 1;
  }
  EXPECT_EQ(next, 256);
}

TEST(Charmap, CaseForms) {
  for (int c = 0; c < 256; ++c) {
    int upper = c;
    int lower = c;
    if (is_between(c, 65, 90) || is_between(c, 192, 214) || is_between(c, 216, 222))
      lower = c + 32;
    if (is_between(c, 97, 122) || is_between(c, 224, 246) || is_between(c, 248, 254))
      upper = c - 32;
    EXPECT_EQ(Com_Iso1_charmap[c].char_upper, upper) << c;
    EXPECT_EQ(Com_Iso1_charmap[c].char_lower, lower) << c;
  }
}

TEST(Charmap, HasNoLexicalClasses) {
  for (int c = 0; c < 256; ++c)
    EXPECT_EQ(Com_Iso1_charmap[c].char_lex, 0) << c;
}

TEST(Charmap, PointerLeadsToTheTable) {
  EXPECT_EQ(Com_charmap, Com_Iso1_charmap);
  EXPECT_EQ(sizeof Com_Iso1_charmap, 1024U);
}

// The control codes 14 and 15 count, the no-break space does not; both are deliberate.
TEST(Charmap, WhiteSpace) {
  for (int c = 0; c < 256; ++c)
    EXPECT_EQ(com_isspace(static_cast<CS_BYTE>(c)) != 0, is_between(c, 9, 15) || c == 32) << c;
}

TEST(Charmap, ClassesOfOneByte) {
  for (int c = 0; c < 256; ++c) {
    const auto byte = static_cast<CS_BYTE>(c);
    // The codes 142, 143 and the marks 160 to 191, 215 and 247 count as upper case: deliberate.
    const bool upper =
        is_between(c, 65, 90) || is_between(c, 142, 143) || is_between(c, 160, 223) || c == 247;
    const bool lower = is_between(c, 97, 122) || (is_between(c, 224, 255) && c != 247);
    const bool digit = is_between(c, 48, 57);
    EXPECT_EQ(com_isupper(byte) != 0, upper) << c;
    EXPECT_EQ(com_islower(byte) != 0, lower) << c;
    EXPECT_EQ(com_isalpha(byte) != 0, upper || lower) << c;
    EXPECT_EQ(com_isdigit(byte) != 0, digit) << c;
    EXPECT_EQ(com_isxdigit(byte) != 0, digit || is_between(c, 65, 70) || is_between(c, 97, 102))
        << c;
    EXPECT_EQ(com_isgraph(byte) != 0, is_between(c, 32, 126) || is_between(c, 160, 255)) << c;
  }
}

TEST(Charmap, CaseOfOneByte) {
  EXPECT_EQ(com_toupper('a'), 'A');
  EXPECT_EQ(com_toupper('z'), 'Z');
  EXPECT_EQ(com_toupper('{'), '{');
  EXPECT_EQ(com_toupper(224), 192);
  EXPECT_EQ(com_toupper(247), 247);
  EXPECT_EQ(com_toupper(255), 255);
  EXPECT_EQ(com_tolower('A'), 'a');
  EXPECT_EQ(com_tolower('Z'), 'z');
  EXPECT_EQ(com_tolower('@'), '@');
  EXPECT_EQ(com_tolower(222), 254);
  EXPECT_EQ(com_tolower(215), 215);
  EXPECT_EQ(com_tolower(223), 223);
}
