// The plain character table and the tests on one byte that read it.
//
// The table is a coarse reading of ISO 8859-1, kept as deployed applications know it: the control
// codes 14 and 15 are white space; 142, 143 and the marks 160 to 191, 215 and 247 are upper-case
// letters.
#include "charmap.h"
#include "comnlib.h"

namespace {

using CharMapTable = comn::Table<CHAR_MAP, 256>;

struct CodeRange {
  int first, last;
  CS_BYTE type;
};

// All other codes have no class.
constexpr CodeRange code_ranges[] = {
    {9, 15, CS_CTYPE_SPACE},
    {32, 32, CS_CTYPE_SPACE | CS_CTYPE_GRAPH},
    {33, 47, CS_CTYPE_PUNCT | CS_CTYPE_GRAPH},
    {48, 57, CS_CTYPE_DIGIT | CS_CTYPE_XDIGIT | CS_CTYPE_GRAPH},
    {58, 64, CS_CTYPE_PUNCT | CS_CTYPE_GRAPH},
    {65, 70, CS_CTYPE_UPPER | CS_CTYPE_XDIGIT | CS_CTYPE_GRAPH},
    {71, 90, CS_CTYPE_UPPER | CS_CTYPE_GRAPH},
    {91, 96, CS_CTYPE_PUNCT | CS_CTYPE_GRAPH},
    {97, 102, CS_CTYPE_LOWER | CS_CTYPE_XDIGIT | CS_CTYPE_GRAPH},
    {103, 122, CS_CTYPE_LOWER | CS_CTYPE_GRAPH},
    {123, 126, CS_CTYPE_PUNCT | CS_CTYPE_GRAPH},
    {142, 143, CS_CTYPE_UPPER},
    {160, 223, CS_CTYPE_UPPER | CS_CTYPE_GRAPH},
    {224, 246, CS_CTYPE_LOWER | CS_CTYPE_GRAPH},
    {247, 247, CS_CTYPE_UPPER | CS_CTYPE_GRAPH},
    {248, 255, CS_CTYPE_LOWER | CS_CTYPE_GRAPH},
};

constexpr int case_distance = 32;

constexpr bool has_lower_form(int c) {
  return (c >= 65 && c <= 90) || (c >= 192 && c <= 222 && c != 215);
}

consteval CharMapTable build() {
  CharMapTable table{};
  for (int c = 0; c < 256; ++c) {
    const bool upper = has_lower_form(c);
    const bool lower = c >= case_distance && has_lower_form(c - case_distance);
    table[static_cast<size_t>(c)] = {static_cast<CS_BYTE>(lower ? c - case_distance : c),
                                     static_cast<CS_BYTE>(upper ? c + case_distance : c), 0, 0};
  }
  for (const CodeRange &range : code_ranges)
    for (int c = range.first; c <= range.last; ++c)
      table[static_cast<size_t>(c)].char_type = range.type;
  return table;
}

} // namespace

COMN_PUBLISH_TABLE(CharMapTable, CHAR_MAP, Com_Iso1_charmap, [256], build());

const CHAR_MAP *const Com_charmap = Com_Iso1_charmap;

#define COMN_PLAIN_TEST(name, mask)                                                                \
  CS_INT name(CS_BYTE c) noexcept {                                                                \
    return own_Com_Iso1_charmap[c].char_type & (mask);                                             \
  }

COMN_PLAIN_TEST(com_isalpha, CS_CTYPE_ALPHA)
COMN_PLAIN_TEST(com_isupper, CS_CTYPE_UPPER)
COMN_PLAIN_TEST(com_islower, CS_CTYPE_LOWER)
COMN_PLAIN_TEST(com_isdigit, CS_CTYPE_DIGIT)
COMN_PLAIN_TEST(com_isxdigit, CS_CTYPE_XDIGIT)
COMN_PLAIN_TEST(com_isspace, CS_CTYPE_SPACE)
COMN_PLAIN_TEST(com_isgraph, CS_CTYPE_GRAPH)

CS_BYTE com_toupper(CS_BYTE c) noexcept {
  return own_Com_Iso1_charmap[c].char_upper;
}

CS_BYTE com_tolower(CS_BYTE c) noexcept {
  return own_Com_Iso1_charmap[c].char_lower;
}
