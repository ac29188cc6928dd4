// Questions about characters and texts: the width rule, the plane rule, the reduction to ASCII.
#include <array>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "test_scale.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comnlib.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "charset.cpp";

// A byte string of a test, as the questions take one: a buffer of exactly its size.
class Bytes {
public:
  Bytes(std::initializer_list<int> values) : buffer(values.size()) {
    CS_BYTE *out = buffer.data();
    for (const int value : values)
      *out++ = static_cast<CS_BYTE>(value);
  }
  explicit Bytes(const std::string &text) : buffer(text.size()) {
    std::memcpy(buffer.data(), text.data(), text.size());
  }
  operator CS_BYTE *() { return buffer.data(); }
  CS_BYTE *data() { return buffer.data(); }
  CS_INT size() const { return static_cast<CS_INT>(buffer.size()); }
  std::string text(CS_INT count) const { return buffer.contents(static_cast<size_t>(count)); }

private:
  GuardedBuffer buffer;
};

// A set with all four tables: 0x81 leads two-byte characters of plane 1, 0x82 of plane 2; 0x90 has
// length 3, 0x91 length 4; in `four` the second byte decides.
struct HandSet {
  explicit HandSet(bool four = false) {
    for (int c = 0; c < 256; ++c) {
      widths[c] = 0x11;
      types[0].chmap[c] = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c), 1, 0};
    }
    for (int c = 'a'; c <= 'z'; ++c) {
      types[0].chmap[c] = {static_cast<CS_BYTE>(c - 32), static_cast<CS_BYTE>(c), 1, 2};
      types[0].chmap[c - 32] = {static_cast<CS_BYTE>(c - 32), static_cast<CS_BYTE>(c), 1, 1};
    }
    for (const int lead : {0x81, 0x82}) {
      widths[lead] = 0x22;
      types[0].chmap[lead] = {static_cast<CS_BYTE>(lead - 0x80), 0, 0, 0x80};
      norms[0].norm[lead] = static_cast<CS_BYTE>(lead - 0x80);
    }
    widths[0x83] = 0x22; // no entry of its own in any map
    widths[0x90] = 0x23;
    widths[0x91] = 0x24;
    widths[0x92] = 0x30; // a length that is none
    widths[255] = four ? 0xF1 : 0x11;
    for (int c = 0x20; c < 0x7F; ++c)
      norms[0].norm[c] = static_cast<CS_BYTE>(c);
    types[1].chmap[0x41] = {0x41, 0x61, 5, 1};
    types[1].chmap[0x61] = {0x41, 0x61, 6, 2};
    types[1].chmap[0x35] = {0x35, 0x35, 7, 4 + 16};
    types[2].chmap[0x41] = {0, 0, 8, 8};
    types[2].chmap[0x42] = {0x42, 0x42, 9, 32 + 64};
    norms[1].norm[0x41] = 'A';
    norms[2].norm[0x41] = ' ';
    set.cs_class = 2;
    set.cs_maxcharlen = 4;
    set.cs_ncharsize = 1;
    set.cs_nnorm = 3;
    set.cs_ntype = 3;
    set.cs_width_map = widths;
    set.cs_norm_map = norms;
    set.cs_type_map = types;
  }
  HandSet(const HandSet &) = delete;
  HandSet &operator=(const HandSet &) = delete;

  operator CS_ATTRIB *() { return &set; }
  CS_ATTRIB *operator->() { return &set; }

  CS_ATTRIB set{};
  CS_BYTE widths[256];
  CS_NORM_MAP norms[3]{};
  CS_TYPE_MAP types[3]{};
};

struct Question {
  const char *name;
  CS_INT (*ask)(CS_ATTRIB *, CS_BYTE *) noexcept;
  int mask;
};
constexpr Question questions[] = {
    {"comn_isalpha", comn_isalpha, 3},  {"comn_isupper", comn_isupper, 1},
    {"comn_islower", comn_islower, 2},  {"comn_isdigit", comn_isdigit, 4},
    {"comn_isspace", comn_isspace, 8},  {"comn_isxdigit", comn_isxdigit, 16},
    {"comn_ispunct", comn_ispunct, 32}, {"comn_isgraph", comn_isgraph, 64},
};

// ---- one character ----

TEST(CharQuestions, NullAsksTheBuiltInSet) {
  for (int c = 0; c < 256; ++c) {
    Bytes character{c};
    const CHAR_MAP &entry = ISO_1_type_map->chmap[c];
    for (CS_ATTRIB *const set : {static_cast<CS_ATTRIB *>(nullptr), com_get_charattrib()}) {
      for (const Question &question : questions)
        EXPECT_EQ(question.ask(set, character), entry.char_type & question.mask)
            << question.name << " " << c;
      EXPECT_EQ(comn_get_lex(set, character), entry.char_lex) << c;
      EXPECT_EQ(comn_char_width(set, character), 1) << c;
      EXPECT_EQ(comn_disp_width(set, character), 1) << c;
      EXPECT_EQ(comn_to_ascii(set, character), entry.char_lower) << c;
    }
  }
}

TEST(CharQuestions, LiteralAnswersOfTheBuiltInSet) {
  Bytes a{'A'}, digit{'7'}, blank{' '}, comma{','}, umlaut{0xE4}, sharp_s{0xDF};
  EXPECT_EQ(comn_isalpha(nullptr, a), 1);
  EXPECT_EQ(comn_isupper(nullptr, a), 1);
  EXPECT_EQ(comn_islower(nullptr, a), 0);
  EXPECT_EQ(comn_isxdigit(nullptr, a), 16);
  EXPECT_EQ(comn_isgraph(nullptr, a), 0); // never in this set
  EXPECT_EQ(comn_isdigit(nullptr, digit), 4);
  EXPECT_EQ(comn_isspace(nullptr, blank), 8);
  EXPECT_EQ(comn_ispunct(nullptr, comma), 32);
  EXPECT_EQ(comn_islower(nullptr, umlaut), 2);
  EXPECT_EQ(comn_isupper(nullptr, sharp_s), 1);
  EXPECT_EQ(comn_get_lex(nullptr, digit), 2);
  EXPECT_EQ(comn_to_ascii(nullptr, a), 'a'); // lower case, deliberately
}

TEST(CharQuestions, PlaneRule) {
  HandSet set;
  struct {
    int first, second, type, lex;
  } const rows[] = {
      {0x81, 0x41, 1, 5}, {0x81, 0x61, 2, 6},  {0x81, 0x35, 20, 7}, {0x81, 0x42, 0, 0},
      {0x82, 0x41, 8, 8}, {0x82, 0x42, 96, 9}, {0x82, 0x61, 0, 0},  {'a', 0x41, 2, 1},
      {0x83, 0x41, 0, 1}, // length 2, yet described by its first byte
  };
  for (const auto &row : rows) {
    Bytes character{row.first, row.second};
    for (const Question &question : questions)
      EXPECT_EQ(question.ask(set, character), row.type & question.mask)
          << question.name << " " << row.first << " " << row.second;
    EXPECT_EQ(comn_get_lex(set, character), row.lex) << row.first << " " << row.second;
  }
}

// A byte that describes its character itself is all that is read.
TEST(CharQuestions, OneByteIsEnoughForOneByte) {
  for (const bool four : {false, true}) {
    HandSet set(four);
    Bytes character{'a'};
    EXPECT_EQ(comn_isalpha(set, character), 2);
    EXPECT_EQ(comn_char_width(set, character), 1);
    EXPECT_EQ(comn_to_ascii(set, character), 'a');
    Bytes lead{0x90};
    EXPECT_EQ(comn_char_width(set, lead), 3);
    EXPECT_EQ(comn_disp_width(set, lead), 2);
  }
}

TEST(CharQuestions, WithoutATypeMapNothingHasAClass) {
  CS_ATTRIB set{};
  for (int c = 0; c < 256; ++c) {
    Bytes character{c};
    for (const Question &question : questions)
      EXPECT_EQ(question.ask(&set, character), 0);
    EXPECT_EQ(comn_get_lex(&set, character), 0);
    EXPECT_EQ(comn_to_ascii(&set, character), c);
    CS_BYTE form = 0;
    comn_toupper(&set, character, &form);
    EXPECT_EQ(form, c);
  }
}

TEST(CharWidth, FollowsTheMap) {
  HandSet set;
  for (int first = 0; first < 256; ++first)
    for (const int second : {0x2F, 0x30, 0x35, 0x39, 0x3A, 0x41}) {
      Bytes character{first, second};
      const int told = set.widths[first] & 15;
      EXPECT_EQ(comn_char_width(set, character), told == 0 ? 1 : told) << first;
      EXPECT_EQ(comn_disp_width(set, character), set.widths[first] >> 4) << first;
    }
  set->cs_width_map = nullptr;
  for (int first = 0; first < 256; ++first) {
    Bytes character{first};
    EXPECT_EQ(comn_char_width(set, character), 1) << first;
    EXPECT_EQ(comn_disp_width(set, character), 1) << first;
  }
}

// The second byte decides for leads of length 2, in a set whose entry 255 says so, and for no other.
TEST(CharWidth, FourBytesBehindATwoByteLead) {
  HandSet four(true), two;
  for (int second = 0; second < 256; ++second) {
    Bytes character{0x81, second}, three{0x90, second}, one{'a', second};
    EXPECT_EQ(comn_char_width(four, character), second >= 0x30 && second <= 0x39 ? 4 : 2) << second;
    EXPECT_EQ(comn_char_width(two, character), 2) << second;
    EXPECT_EQ(comn_disp_width(four, character), 2) << second;
    EXPECT_EQ(comn_char_width(four, three), 3) << second;
    EXPECT_EQ(comn_char_width(four, one), 1) << second;
  }
  Bytes last{255, 0x35};
  EXPECT_EQ(comn_disp_width(four, last), 15);
  EXPECT_EQ(comn_char_width(four, last), 1);
  // 14 is no such mark.
  two.widths[255] = 0xE1;
  Bytes character{0x81, 0x35};
  EXPECT_EQ(comn_char_width(two, character), 2);
}

TEST(CharWidth, IncrementMovesByIt) {
  HandSet four(true), two;
  struct {
    int first, second;
    CS_ATTRIB *set;
    int step;
  } const rows[] = {{'a', 0, two, 1},      {0x81, 0x41, two, 2},    {0x90, 0, two, 3},
                    {0x91, 0, two, 4},     {0x92, 0, two, 1},       {0x81, 0x41, four, 2},
                    {0x81, 0x30, four, 4}, {0x81, 0x39, four, 4},   {0x81, 0x3A, four, 2},
                    {0x81, 0x2F, four, 2}, {0x81, 0x30, nullptr, 1}};
  for (const auto &row : rows) {
    Bytes character{row.first, row.second};
    CS_BYTE *p = character;
    comn_inc_char(row.set, &p);
    EXPECT_EQ(p - character.data(), row.step) << row.first << " " << row.second;
  }
}

TEST(CharWidth, TheMapItself) {
  HandSet set;
  EXPECT_EQ(comn_get_widthmap(set), set.widths);
  EXPECT_EQ(comn_get_widthmap(com_get_charattrib()), nullptr);
  EXPECT_EQ(comn_get_widthmap(nullptr), nullptr);
}

// ---- case ----

std::string forms_of(void (*change)(CS_ATTRIB *, CS_BYTE *, CS_BYTE *) noexcept, CS_ATTRIB *set,
                     Bytes &character, size_t room) {
  GuardedBuffer form(room);
  change(set, character, form.data());
  EXPECT_EQ(form.is_untouched(room - 1), true) << "one byte less was asked for";
  return form.contents(room - 1);
}

TEST(CharCase, OneByte) {
  HandSet set;
  for (int c = 1; c < 256; ++c) {
    Bytes character{c};
    EXPECT_EQ(forms_of(comn_toupper, nullptr, character, 2),
              std::string(1, static_cast<char>(ISO_1_type_map->chmap[c].char_upper)));
    EXPECT_EQ(forms_of(comn_tolower, nullptr, character, 2),
              std::string(1, static_cast<char>(ISO_1_type_map->chmap[c].char_lower)));
  }
  Bytes a{'a'}, z{'Z'};
  EXPECT_EQ(forms_of(comn_toupper, set, a, 2), "A");
  EXPECT_EQ(forms_of(comn_tolower, set, z, 2), "z");
}

// The second byte alone changes, also to 0 where the plane has no form.
TEST(CharCase, TwoBytes) {
  HandSet set;
  Bytes upper{0x81, 0x41}, lower{0x81, 0x61}, none{0x82, 0x41};
  EXPECT_EQ(forms_of(comn_toupper, set, lower, 3), "\x81\x41");
  EXPECT_EQ(forms_of(comn_toupper, set, upper, 3), "\x81\x41");
  EXPECT_EQ(forms_of(comn_tolower, set, upper, 3), "\x81\x61");
  EXPECT_EQ(forms_of(comn_tolower, set, none, 3), std::string("\x82\0", 2));
}

// The field of the operation decides, not its neighbour.
TEST(CharCase, CharactersWithoutAForm) {
  HandSet set(true);
  set.types[0].chmap[0x83] = {0, 'x', 0, 0};
  set.types[0].chmap[0x90] = {'y', 0, 0, 0};
  set.types[0].chmap[0x91] = {0, 0, 0, 0};
  Bytes two{0x83, 0x42}, four{0x83, 0x37, 0x84, 0x38}, three{0x90, 1, 2}, wide{0x91, 1, 2, 3};
  EXPECT_EQ(forms_of(comn_toupper, set, two, 3), "\x83\x42");
  EXPECT_EQ(forms_of(comn_toupper, set, four, 5), "\x83\x37\x84\x38");
  EXPECT_EQ(forms_of(comn_tolower, set, two, 2), "x");
  EXPECT_EQ(forms_of(comn_toupper, set, three, 2), "y");
  EXPECT_EQ(forms_of(comn_tolower, set, three, 4), "\x90\x01\x02");
  EXPECT_EQ(forms_of(comn_toupper, set, wide, 5), "\x91\x01\x02\x03");
  EXPECT_EQ(forms_of(comn_tolower, set, wide, 5), "\x91\x01\x02\x03");
}

TEST(CharCase, InPlace) {
  HandSet set;
  Bytes character{0x81, 0x61}, letter{'q'}, wide{0x91, 1, 2, 3};
  comn_toupper(set, character, character);
  EXPECT_EQ(character.text(2), "\x81\x41");
  comn_toupper(nullptr, letter, letter);
  EXPECT_EQ(letter.text(1), "Q");
  set.types[0].chmap[0x91] = {};
  comn_tolower(set, wide, wide);
  EXPECT_EQ(wide.text(4), "\x91\x01\x02\x03");
}

// ---- the reduction to ASCII ----

TEST(ToAscii, WithANormalisationMap) {
  HandSet set;
  struct {
    int first, second, ascii;
  } const rows[] = {
      {'A', 0, 'A'},   {'~', 0, '~'},     {0x07, 0, 0},    {0xE0, 0, 0},    {0x81, 0x41, 'A'},
      {0x81, 0x42, 0}, {0x82, 0x41, ' '}, {0x83, 0x41, 0}, {0x90, 0x41, 0},
  };
  for (const auto &row : rows) {
    Bytes character{row.first, row.second};
    EXPECT_EQ(comn_to_ascii(set, character), row.ascii) << row.first << " " << row.second;
  }
  // Without widths every character has one byte.
  set->cs_width_map = nullptr;
  Bytes lead{0x81};
  EXPECT_EQ(comn_to_ascii(set, lead), 1);
}

TEST(ToAscii, WithATypeMapAlone) {
  HandSet set;
  set->cs_norm_map = nullptr;
  Bytes upper{'Q'}, lead{0x81, 0x41};
  EXPECT_EQ(comn_to_ascii(set, upper), 'q');
  EXPECT_EQ(comn_to_ascii(set, lead), 0); // the form of the first byte, whatever it leads
}

std::string reduce(CS_ATTRIB *set, Bytes &&text) {
  GuardedBuffer result(static_cast<size_t>(text.size()));
  CS_INT length = -5;
  comn_str_to_ascii(text, text.size(), result.data(), &length, set);
  EXPECT_TRUE(length >= 0 && length <= text.size());
  EXPECT_TRUE(result.is_untouched(static_cast<size_t>(length)));
  return result.contents(static_cast<size_t>(length));
}

TEST(StrToAscii, ReducesEachCharacter) {
  HandSet set;
  EXPECT_EQ(reduce(set, Bytes{}), "");
  EXPECT_EQ(reduce(set, Bytes{'A', 0x81, 0x41, 'b'}), "AAb");
  EXPECT_EQ(reduce(set, Bytes{0x81, 0x42, 'x', 0x07}), "\x81\x42x\x07");
  EXPECT_EQ(reduce(set, Bytes{0x90, 0x41, 0x41, 'A'}), "\x90\x41\x41\x41");
  EXPECT_EQ(reduce(set, Bytes{0x82, 0x41, 0x82, 0x41}), "  ");
  EXPECT_EQ(reduce(set, Bytes{0, 'A'}), std::string("\0A", 2));
  EXPECT_EQ(reduce(nullptr, Bytes{'M', 'a', 'Y', 0xC4, 0}), std::string("may\xE4\0", 5));
  HandSet four(true);
  EXPECT_EQ(reduce(four, Bytes{0x83, 0x35, 0x83, 0x35, 'A'}), "\x83\x35\x83\x35\x41");
}

// Of a character that is cut only what is there is copied, and nothing behind it is read.
TEST(StrToAscii, EndsWithTheText) {
  HandSet set(true);
  EXPECT_EQ(reduce(set, Bytes{'A', 0x81}), "A\x81");
  EXPECT_EQ(reduce(set, Bytes{'A', 0x90, 0x41}), "A\x90\x41");
  EXPECT_EQ(reduce(set, Bytes{0x91, 1, 2}), "\x91\x01\x02");
  EXPECT_EQ(reduce(set, Bytes{0x83, 0x35, 0x83}), "\x83\x35\x83");
  set.norms[1].norm[0] = '?'; // a byte that is not there counts as NUL
  EXPECT_EQ(reduce(set, Bytes{'A', 0x81}), "A?");
  for (const CS_INT length : {0, -1, -99999}) {
    Bytes text{'A'};
    GuardedBuffer result(1);
    CS_INT written = 7;
    comn_str_to_ascii(text, length, result.data(), &written, set);
    EXPECT_EQ(written, 0);
    EXPECT_TRUE(result.is_untouched());
  }
}

TEST(StrToAscii, InPlace) {
  HandSet set;
  Bytes text{'A', 0x81, 0x41, 0x90, 1, 2, 0x82, 0x41, 'z', 0x81};
  CS_INT length = 0;
  comn_str_to_ascii(text, text.size(), text, &length, set);
  EXPECT_EQ(length, 8);
  EXPECT_EQ(text.text(8), "AA\x90\x01\x02 z\x81");
}

// ---- whole characters ----

struct Split {
  CS_INT whole, inside, behind, count;
  bool operator==(const Split &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Split &split) {
  return out << split.whole << " " << split.inside << " " << split.behind << " " << split.count;
}

Split split(CS_ATTRIB *set, Bytes &&text) {
  Split result{-1, -1, -1, -1};
  comn_whole_char(set, text, text.data() + text.size(), &result.whole, &result.inside,
                  &result.behind, &result.count);
  return result;
}

TEST(WholeChar, SplitsAtABoundary) {
  HandSet set, four(true);
  EXPECT_EQ(split(set, Bytes{}), (Split{0, 0, 0, 0}));
  EXPECT_EQ(split(set, Bytes{'a'}), (Split{1, 0, 0, 1}));
  EXPECT_EQ(split(set, Bytes{0x81}), (Split{0, 1, 1, 0}));
  EXPECT_EQ(split(set, Bytes{0x81, 0x41}), (Split{2, 0, 0, 1}));
  EXPECT_EQ(split(set, Bytes{'a', 0x81, 0x41, 0x81}), (Split{3, 1, 1, 2}));
  EXPECT_EQ(split(set, Bytes{0x90, 0x41}), (Split{0, 2, 1, 0}));
  EXPECT_EQ(split(set, Bytes{'a', 0x91}), (Split{1, 1, 3, 1}));
  EXPECT_EQ(split(set, Bytes{0x91, 1, 2, 3, 0x91, 1, 2}), (Split{4, 3, 1, 1}));
  EXPECT_EQ(split(set, Bytes{0x92, 0x92}), (Split{2, 0, 0, 2}));
  EXPECT_EQ(split(nullptr, Bytes{0x81, 0x41, 0x90}), (Split{3, 0, 0, 3}));
  EXPECT_EQ(split(four, Bytes{0x81, 0x30}), (Split{0, 2, 2, 0}));
  EXPECT_EQ(split(four, Bytes{0x81, 0x30, 0x81, 0x39}), (Split{4, 0, 0, 1}));
  EXPECT_EQ(split(four, Bytes{0x81, 0x41, 0x81, 0x39}), (Split{2, 2, 2, 1}));
}

// Which of the two lengths a lead of the range's last byte has is told by a byte that is not read.
TEST(WholeChar, ReadsNothingBehindTheRange) {
  HandSet four(true);
  EXPECT_EQ(split(four, Bytes{0x81}), (Split{0, 1, 1, 0}));
  Bytes text{0x81, 0x35, 0x81, 0x35};
  Split result{};
  comn_whole_char(four, text, text.data() + 1, &result.whole, &result.inside, &result.behind,
                  &result.count);
  EXPECT_EQ(result, (Split{0, 1, 1, 0}));
}

TEST(WholeChar, AnEndBeforeTheStartIsAnEmptyRange) {
  HandSet set;
  Bytes text{'a', 'b'};
  Split result{-1, -1, -1, -1};
  comn_whole_char(set, text.data() + 2, text, &result.whole, &result.inside, &result.behind,
                  &result.count);
  EXPECT_EQ(result, (Split{0, 0, 0, 0}));
}

// ---- search ----

std::ptrdiff_t find(CS_ATTRIB *set, Bytes &&text, int wanted) {
  const CS_BYTE *const found = comn_mb_strchr(set, text, static_cast<CS_BYTE>(wanted));
  return found != nullptr ? found - text.data() : -1;
}

TEST(MultiByteSearch, ComparesFirstBytes) {
  HandSet set, four(true);
  EXPECT_EQ(find(set, Bytes{'a', 'b', 'a', 0}, 'b'), 1);
  EXPECT_EQ(find(set, Bytes{'a', 'b', 'a', 0}, 'a'), 0);
  EXPECT_EQ(find(set, Bytes{'a', 'b', 0}, 'c'), -1);
  EXPECT_EQ(find(set, Bytes{0x81, 'b', 'b', 0}, 'b'), 2);
  EXPECT_EQ(find(nullptr, Bytes{0x81, 'b', 'b', 0}, 'b'), 1);
  EXPECT_EQ(find(set, Bytes{0x81, 'b', 0x81, 'c', 0}, 0x81), 0);
  EXPECT_EQ(find(set, Bytes{0x91, 'b', 'b', 'b', 'b', 0}, 'b'), 4);
  EXPECT_EQ(find(set, Bytes{0x92, 'b', 0}, 'b'), 1);
  EXPECT_EQ(find(four, Bytes{0x81, 0x35, 0x90, 0x36, 0x90, 'c', 'd', 0}, 0x90), 4);
  EXPECT_EQ(find(four, Bytes{0x81, 0x35, 0x90, 0x36, '6', 0}, '6'), 4);
}

// The NUL ends the text, also for a lead byte that stands before it, and is never found itself.
TEST(MultiByteSearch, NeverPassesTheEnd) {
  HandSet set, four(true);
  EXPECT_EQ(find(set, Bytes{0}, 'a'), -1);
  EXPECT_EQ(find(set, Bytes{0}, 0), -1);
  EXPECT_EQ(find(set, Bytes{'a', 0}, 0), -1);
  EXPECT_EQ(find(set, Bytes{0x81, 0}, 'a'), -1);
  EXPECT_EQ(find(set, Bytes{0x91, 1, 0}, 'a'), -1);
  EXPECT_EQ(find(set, Bytes{0x91, 0, 'a', 'a', 'a', 0}, 'a'), -1);
  EXPECT_EQ(find(four, Bytes{0x81, 0}, 'a'), -1);
  EXPECT_EQ(find(four, Bytes{0x81, 0x35, 0x81, 0}, 'a'), -1);
}

// ---- random texts against the rules told slowly ----

size_t slow_length(const HandSet &set, const std::string &text, size_t at) {
  const auto byte = [&](size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  size_t length = set.widths[byte(at)] % 16;
  if (length == 0)
    length = 1;
  if (length == 2 && set.widths[255] / 16 == 15 && std::strchr("0123456789", byte(at + 1)) &&
      byte(at + 1) != 0)
    length = 4;
  return length;
}

TEST(RandomTexts, AgreeWithTheSlowRules) {
  std::mt19937_64 random(random_seed());
  for (int run = 0; run < (sanitized ? 2'000 : 20'000); ++run) {
    HandSet set(run % 2 == 1);
    std::string text(static_cast<size_t>(random() % 20), '\0');
    for (char &c : text)
      c = "abzAZ059 \x81\x82\x83\x90\x91\x92\xFF\x41\x3A\x2F"[random() % 19];
    std::string reduced;
    Split expected{0, 0, 0, 0};
    for (size_t at = 0; at < text.size();) {
      const size_t length = slow_length(set, text, at);
      const size_t inside = std::min(length, text.size() - at);
      const auto first = static_cast<unsigned char>(text[at]);
      const auto second =
          static_cast<unsigned char>(inside > 1 || at + 1 < text.size() ? text[at + 1] : 0);
      CS_BYTE ascii = set.norms[0].norm[first];
      if (set.widths[first] % 16 != 1 && ascii != 0)
        ascii = set.norms[ascii].norm[second];
      if (ascii != 0)
        reduced += static_cast<char>(ascii);
      else
        reduced += text.substr(at, inside);
      if (length > inside) {
        expected.inside = static_cast<CS_INT>(inside);
        expected.behind = static_cast<CS_INT>(length - inside);
      } else {
        expected.whole += static_cast<CS_INT>(length);
        ++expected.count;
      }
      at += inside;
    }
    EXPECT_EQ(reduce(set, Bytes(text)), reduced);
    EXPECT_EQ(split(set, Bytes(text)), expected);
  }
}

// ---- faults ----

TEST(CharQuestions, RefuseNullPointers) {
  HandSet set;
  for (const Question &question : questions)
    EXPECT_NULL_POINTER_CHECK(unit, 0, question.ask(set, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_get_lex(set, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_char_width(set, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_disp_width(set, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, static_cast<int>(comn_to_ascii(set, nullptr)));
  EXPECT_NULL_POINTER_CHECK(unit, static_cast<CS_BYTE *>(nullptr),
                            comn_mb_strchr(set, nullptr, 'a'));
  Bytes text{'a', 'b'};
  CS_BYTE *p = nullptr;
  GuardedBuffer out(2);
  CS_INT number = 77;
  const auto refused = [&](auto &&call) {
    EXPECT_TRUE(is_null_pointer_report(catch_check(call), unit));
  };
  refused([&] { comn_inc_char(set, nullptr); });
  refused([&] { comn_inc_char(set, &p); });
  refused([&] { comn_toupper(set, nullptr, out.data()); });
  refused([&] { comn_toupper(set, text, nullptr); });
  refused([&] { comn_tolower(set, nullptr, out.data()); });
  refused([&] { comn_tolower(set, text, nullptr); });
  refused([&] { comn_str_to_ascii(nullptr, 1, out.data(), &number, set); });
  refused([&] { comn_str_to_ascii(text, 1, nullptr, &number, set); });
  refused([&] { comn_str_to_ascii(text, 1, out.data(), nullptr, set); });
  CS_BYTE *const end = text.data() + 2;
  CS_INT n = 77;
  refused([&] { comn_whole_char(set, nullptr, end, &n, &n, &n, &n); });
  refused([&] { comn_whole_char(set, text, nullptr, &n, &n, &n, &n); });
  refused([&] { comn_whole_char(set, text, end, nullptr, &n, &n, &n); });
  refused([&] { comn_whole_char(set, text, end, &n, nullptr, &n, &n); });
  refused([&] { comn_whole_char(set, text, end, &n, &n, nullptr, &n); });
  refused([&] { comn_whole_char(set, text, end, &n, &n, &n, nullptr); });
  EXPECT_EQ(n, 77);
  EXPECT_EQ(number, 77);
  EXPECT_TRUE(out.is_untouched());
}

TEST(CharQuestions, AllocateNothing) {
  const AllocationProbe probe;
  HandSet set;
  Bytes text{0x81, 0x41, 'a', 0};
  CS_INT n = 0;
  for (const Question &question : questions)
    question.ask(set, text);
  comn_str_to_ascii(text, 3, text, &n, set);
  comn_mb_strchr(set, text, 'z');
  EXPECT_EQ(probe.allocations(), 0U);
}

} // namespace
