// The built-in character set, iso_1: a coarse reading of ISO 8859-1, kept as deployed applications
// know it. No character is graphic; 14, 15, 142, 143, 160 and the soft hyphen are white space; 223 is
// an upper-case letter without another case, 255 a lower-case one.
#include "table.h"
#include "text.h"

namespace {

using TypeMap = comn::Table<CS_TYPE_MAP, 1>;
using SoundMap = comn::Table<CS_SOUNDEX, 1>;

// Lexical classes.
enum Lex : CS_BYTE {
  name = 1,
  digit = 2,
  control = 8,
  quote = 16,
  operation = 32,
  currency = CS_LEX_CURRENCY
};

constexpr CS_BYTE upper_xdigit = CS_CTYPE_UPPER | CS_CTYPE_XDIGIT;
constexpr CS_BYTE lower_xdigit = CS_CTYPE_LOWER | CS_CTYPE_XDIGIT;
constexpr CS_BYTE decimal_digit = CS_CTYPE_DIGIT | CS_CTYPE_XDIGIT;

struct CodeRange {
  int first, last;
  CS_BYTE type;
  CS_BYTE lex;
  int lower_distance = 0; // to the lower-case form
  int upper_distance = 0; // to the upper-case form
};

constexpr CodeRange code_ranges[] = {
    {0, 8, 0, control},
    {9, 15, CS_CTYPE_SPACE, control},
    {16, 31, 0, control},
    {32, 32, CS_CTYPE_SPACE, control},
    {33, 33, CS_CTYPE_PUNCT, operation},
    {34, 34, CS_CTYPE_PUNCT, quote},
    {35, 35, CS_CTYPE_PUNCT, name},
    {36, 36, CS_CTYPE_PUNCT, currency},
    {37, 38, CS_CTYPE_PUNCT, operation},
    {39, 39, CS_CTYPE_PUNCT, quote},
    {40, 47, CS_CTYPE_PUNCT, operation},
    {48, 57, decimal_digit, digit},
    {58, 63, CS_CTYPE_PUNCT, operation},
    {64, 64, CS_CTYPE_PUNCT, name},
    {65, 70, upper_xdigit, name, 32},
    {71, 90, CS_CTYPE_UPPER, name, 32},
    {91, 94, CS_CTYPE_PUNCT, operation},
    {95, 95, CS_CTYPE_PUNCT, name},
    {96, 96, CS_CTYPE_PUNCT, operation},
    {97, 102, lower_xdigit, name, 0, -32},
    {103, 122, CS_CTYPE_LOWER, name, 0, -32},
    {123, 126, CS_CTYPE_PUNCT, operation},
    {127, 127, 0, operation},
    {128, 141, 0, name},
    {142, 143, CS_CTYPE_SPACE, name},
    {144, 159, 0, name},
    {160, 160, CS_CTYPE_SPACE, name},
    {161, 162, CS_CTYPE_PUNCT, name},
    {163, 165, CS_CTYPE_PUNCT, currency},
    {166, 172, CS_CTYPE_PUNCT, name},
    {173, 173, CS_CTYPE_SPACE, name},
    {174, 191, CS_CTYPE_PUNCT, name},
    {192, 214, CS_CTYPE_UPPER, name, 32},
    {215, 215, CS_CTYPE_PUNCT, name},
    {216, 222, CS_CTYPE_UPPER, name, 32},
    {223, 223, CS_CTYPE_UPPER, name},
    {224, 246, CS_CTYPE_LOWER, name, 0, -32},
    {247, 247, CS_CTYPE_PUNCT, name},
    {248, 254, CS_CTYPE_LOWER, name, 0, -32},
    {255, 255, CS_CTYPE_LOWER, name},
};

consteval TypeMap build_types() {
  TypeMap map{};
  for (const CodeRange &range : code_ranges)
    for (int c = range.first; c <= range.last; ++c)
      map[0].chmap[c] = {static_cast<CS_BYTE>(c + range.upper_distance),
                         static_cast<CS_BYTE>(c + range.lower_distance), range.lex, range.type};
  return map;
}

// The American Soundex classes of the letters from A to Z, with a class of its own for R.
constexpr char letter_sounds[] = "01230120022455012623010202";

// Letters with marks, and 223, sound as nothing; 215 and 247 are no letters.
consteval SoundMap build_sounds() {
  SoundMap map{};
  for (int i = 0; i < 26; ++i) {
    const auto sound = static_cast<CS_BYTE>(letter_sounds[i]);
    map[0].sound['A' + i] = sound;
    map[0].sound['a' + i] = sound;
  }
  for (int c = 192; c < 256; ++c)
    if (c != 215 && c != 247)
      map[0].sound[c] = '0';
  return map;
}

} // namespace

COMN_PUBLISH_TABLE(TypeMap, CS_TYPE_MAP, ISO_1_type_map, [1], build_types());
COMN_PUBLISH_TABLE(SoundMap, CS_SOUNDEX, ISO_1_soundex, [1], build_sounds());

namespace {

// A record has pointers to tables that may be written; these are constants all the same.
consteval CHAR_ATTRIB describe(const CS_TYPE_MAP *types, const CS_SOUNDEX *sounds) {
  return {
      .cs_status = 0,
      .cs_class = 1,
      .cs_id = 1,
      .cs_namelen = 5,
      .cs_name = "iso_1",
      .cs_maxcharlen = 1,
      .cs_ncharsize = 1,
      .cs_nnorm = 0,
      .cs_ntype = 1,
      .cs_nsoundex = 1,
      .spare = {},
      .cs_width_map = nullptr,
      .cs_norm_map = nullptr,
      .cs_type_map = const_cast<CS_TYPE_MAP *>(types),
      .cs_soundex = const_cast<CS_SOUNDEX *>(sounds),
  };
}

// What a caller sees has the tables that the caller sees.
constinit const CHAR_ATTRIB handed_out = describe(ISO_1_type_map, ISO_1_soundex);

} // namespace

constinit const CHAR_ATTRIB comn::builtin_charset = describe(own_ISO_1_type_map, own_ISO_1_soundex);

CS_ATTRIB *com_get_charattrib(void) noexcept {
  return const_cast<CS_ATTRIB *>(&handed_out);
}

CS_TYPE_MAP *com_get_typemap(void) noexcept {
  return handed_out.cs_type_map;
}
