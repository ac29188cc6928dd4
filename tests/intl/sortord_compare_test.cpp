// Comparison under compiled orders: rules one by one, with literal results, and tables made by hand.
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "check_trap.h"
#include "sort_order_reference.h"
#include "sort_orders.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "sortord_compare.cpp";

// a=A, then ä as an accent of it; b, c, the double character ch between c and d; ae as a ligature
// that sorts after, oe as one that sorts equal; s and a ligature of it.
std::string sample() {
  std::string entries = "lig = \\xf6,equal oe\n"
                        "lig = \\xe6=\\xc6,after ae\n"
                        "char = \\x20\n"
                        "char = a=A, \\xe4=\\xc4\n"
                        "char = b=B\nchar = c=C\nchar = ch=cH\nchar = d=D\nchar = e=E, \\xe9\n"
                        "char = h=H\nchar = o=O\nchar = ";
  const std::string named = "\xe6\xc6\xf6 aA\xe4\xc4"
                            "bBcCdDeE\xe9hHoO";
  bool is_first = true;
  for (int code = 1; code < 256; ++code)
    if (named.find(static_cast<char>(code)) == std::string::npos) {
      entries += (is_first         ? ""
                  : code % 40 == 0 ? "\nchar = "
                                   : ",") +
                 spell(static_cast<char>(code));
      is_first = false;
    }
  return sort_order_header + entries + "\n";
}

class Comparison : public testing::Test {
protected:
  void SetUp() override { ASSERT_EQ(set.load(), CS_SUCCEED); }

  // Copies of exactly their length, so that the sanitizers see a byte read behind them.
  template <class Compare>
  static int compare(Compare function, SO_1CLASS *so, std::string_view first,
                     std::string_view second) {
    std::vector<char> str1(first.begin(), first.end()), str2(second.begin(), second.end());
    return function(so, str1.data(), static_cast<CS_INT>(str1.size()), str2.data(),
                    static_cast<CS_INT>(str2.size()));
  }

  int difference(std::string_view first, std::string_view second) {
    const int result = compare(com__ps_dl_sqlhilo, set.table(), first, second);
    EXPECT_EQ(compare(com_ps_dl_sqlhilo, set.table(), first, second), (result > 0) - (result < 0));
    return result;
  }

  int ties(std::string_view first, std::string_view second) {
    const int result = compare(com__spec_tord, set.table(), first, second);
    EXPECT_EQ(compare(com_spec_tord, set.table(), first, second), (result > 0) - (result < 0));
    return result;
  }

  SortOrderHome home{sample()};
  SortOrderSet set;
};

TEST_F(Comparison, PrimaryDifferencesAsTheyStand) {
  EXPECT_EQ(difference("a", "a"), 0);
  EXPECT_EQ(difference("a", "b"), -1);
  EXPECT_EQ(difference("d", "a"), 4);
  EXPECT_EQ(difference("bbbbbbbbbbbbbbbbbbbbba", "bbbbbbbbbbbbbbbbbbbbbh"), -6);
  EXPECT_EQ(difference("A", "a"), 0);
}

TEST_F(Comparison, EmptyStrings) {
  EXPECT_EQ(difference("", ""), 0);
  EXPECT_EQ(difference("", "a"), -1);
  EXPECT_EQ(difference("a", ""), 1);
  EXPECT_EQ(difference("", "  "), 0);
  EXPECT_EQ(difference("  ", ""), 0);
  EXPECT_EQ(com_ps_dl_sqlhilo(set.table(), nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(com_spec_tord(set.table(), nullptr, 0, nullptr, 0), 0);
  char text[] = "a";
  EXPECT_EQ(com_ps_dl_sqlhilo(set.table(), text, 1, nullptr, 0), 1);
  EXPECT_EQ(com_ps_dl_sqlhilo(set.table(), text, -1, text, 0), 0); // no text either
}

TEST_F(Comparison, TrailingBlanksDoNotCount) {
  EXPECT_EQ(difference("ab", "ab  "), 0);
  EXPECT_EQ(difference("ab  ", "ab"), 0);
  EXPECT_EQ(difference("ab", "ab b"), -1);
  EXPECT_EQ(difference("ab b", "ab"), 1);
  EXPECT_EQ(difference("ab", "ab a"), -1);
  EXPECT_EQ(difference("a b", "a  "), 2);
  EXPECT_EQ(difference("ab", std::string("ab\0", 3)), -1); // byte 0 is no blank
  EXPECT_EQ(difference("ab\t", "ab"), 1);
  EXPECT_EQ(difference("\xe4  ", "a"), 2); // the accent still does
  EXPECT_EQ(difference("a", "\xe4  "), -2);
  EXPECT_EQ(difference("abcdefghabcdefgh        ", "abcdefghabcdefgh"), 0);
}

TEST_F(Comparison, SecondaryDifferences) {
  EXPECT_EQ(difference("\xe4", "a"), 2); // room for the ligature between them
  EXPECT_EQ(difference("a", "\xe4"), -2);
  EXPECT_EQ(difference("\xe4"
                       "b",
                       "ac"),
            -1); // a later primary difference
  EXPECT_EQ(difference("\xe4"
                       "bc",
                       "abd"),
            -2);
  EXPECT_EQ(difference("\xe4"
                       "e",
                       "a\xe9"),
            2); // the first of two
  EXPECT_EQ(difference("a\xe4", "\xe4"
                                "a"),
            -2);
}

TEST_F(Comparison, DoubleCharacters) {
  EXPECT_EQ(difference("ch", "c"), 1);
  EXPECT_EQ(difference("ch", "cz") < 0, false);
  EXPECT_EQ(difference("ch", "ca"), 1);
  EXPECT_EQ(difference("ch", "d"), -1);
  EXPECT_EQ(difference("Ch", "ch"), -1); // no double character is listed for it
  EXPECT_EQ(difference("cH", "ch"), 0);
  EXPECT_EQ(ties("cH", "ch"), 1);
  EXPECT_EQ(difference("cch", "ccch"), 1);
  // A string that ends after the first byte of one.
  EXPECT_EQ(compare(com__ps_dl_sqlhilo, set.table(), std::string_view("chx", 1), "c"), 0);
  EXPECT_EQ(difference("aaaaaaac", "aaaaaaach"), -1);
  EXPECT_EQ(difference("aaaaaaacaaaaaaaa", "aaaaaaachaaaaaaa"), -1); // c or ch at the eighth byte
  EXPECT_EQ(difference("cccccccccccccccch", "cccccccccccccccc"), 1);
  EXPECT_EQ(difference("cccccccccccccccch", "ccccccccccccccccb"), 1);
}

TEST_F(Comparison, LigaturesThatSortEqual) {
  EXPECT_EQ(difference("\xf6", "oe"), 0);
  EXPECT_EQ(difference("oe", "\xf6"), 0);
  EXPECT_EQ(difference("\xf6", "o"), 1);
  EXPECT_EQ(difference("o", "\xf6"), -1);
  EXPECT_EQ(difference("x\xf6y", "xoey"), 0);
  EXPECT_EQ(difference("\xf6", "o\xe9"), -2);
  EXPECT_EQ(difference("\xf6\xf6", "oeoe"), 0);
  EXPECT_EQ(difference("\xf6 ", "oe"), 0);
}

TEST_F(Comparison, LigaturesThatSortAfter) {
  EXPECT_EQ(difference("\xe6", "ae"), 1);
  EXPECT_EQ(difference("ae", "\xe6"), -1);
  EXPECT_EQ(difference("\xe6", "\xe4"
                               "e"),
            -1);
  EXPECT_EQ(difference("\xe6"
                       "b",
                       "aec"),
            -1);
  EXPECT_EQ(difference("\xe6", "\xc6"), 0);
  EXPECT_EQ(ties("\xc6", "\xe6"), 1);
}

// The second weight of a ligature at the end of the first string meets the end of the second: what
// is examined for blanks begins with the byte of the ligature, which is none.
TEST_F(Comparison, HeldWeightsAtTheEnds) {
  EXPECT_EQ(difference("\xe6", "a"), 1);
  EXPECT_EQ(difference("a", "\xe6"), -1);
  EXPECT_EQ(difference("\xe6  ", "a"), 1);
  EXPECT_EQ(difference("\xe6", "a  "), 6); // a blank is a character while there is a weight to meet
  EXPECT_EQ(difference("a  ", "\xe6"), -6);
  EXPECT_EQ(difference("aaaaaaa\xe6", "aaaaaaaa"), 1);
  EXPECT_EQ(difference("aaaaaaaa", "aaaaaaa\xe6"), -1);
}

TEST_F(Comparison, TiesInStep) {
  EXPECT_EQ(ties("a", "A"), -1);
  EXPECT_EQ(ties("Aa", "aA"), 1); // the first difference
  EXPECT_EQ(ties("abc", "abcD"), 0);
  EXPECT_EQ(ties("abcD", "abc"), 0);
  EXPECT_EQ(ties("", "A"), 0);
  EXPECT_EQ(ties("a  ", "a"), 0);
  EXPECT_EQ(ties("ad", "bD"), -1); // other weights play no part
  EXPECT_EQ(ties("\xe6", "AE"), -1);
  EXPECT_EQ(ties("\xc6", "aE"), 1);
  EXPECT_EQ(ties("aaaaaaaaaaaaaaaaaaaaaaB", "aaaaaaaaaaaaaaaaaaaaaab"), 1);
}

// Every pair of one-byte and two-byte strings, against weights that are spelled out.
TEST_F(Comparison, ShortStringsAsTheSlowComparisonDoes) {
  const SlowOrder slow = compile_slowly(sample());
  const std::string bytes = " acChHeo\xe4\xe6\xf6\xc6z";
  std::vector<std::string> texts = {""};
  for (size_t from = 0, length = 1; length <= 3; ++length) {
    const size_t to = texts.size();
    for (; from < to; ++from)
      for (const char byte : bytes.substr(0, length == 3 ? 8 : bytes.size()))
        texts.push_back(texts[from] + byte);
  }
  for (size_t i = 0; i < texts.size(); i += 3)
    for (size_t j = i % 7; j < texts.size(); j += 7) {
      ASSERT_EQ(difference(texts[i], texts[j]), compare_slowly(slow, texts[i], texts[j]))
          << testing::PrintToString(texts[i]) << testing::PrintToString(texts[j]);
      ASSERT_EQ(ties(texts[i], texts[j]), compare_ties_slowly(slow, texts[i], texts[j]));
    }
}

// ---- tables made by hand ----

class HandMade : public testing::Test {
protected:
  HandMade() {
    for (int code = 0; code < 256; ++code) {
      so.lscs[code].pst.p = static_cast<CS_BYTE>(code);
      so.lscs[code].pst.t = 1;
    }
    for (SMEL &element : so.smels)
      element.next_smel = SMEL_NONE;
    so.lscs['x'].pst.t = 0; // other weights of it do not count
    so.lscs['x'].pst.smelist = 0;
  }

  int difference(const char *first, const char *second) {
    std::string str1 = first, str2 = second;
    return com__ps_dl_sqlhilo(&so, str1.data(), static_cast<int>(str1.size()), str2.data(),
                              static_cast<int>(str2.size()));
  }

  SO_1CLASS so{};
};

TEST_F(HandMade, AByteByItselfAloneInItsList) {
  so.smels[0].type_smel = SMEL_BYTE;
  so.smels[0].smel_types.sm_0type.lsc1 = so.lscs['b'];
  EXPECT_EQ(difference("x", "b"), 0);
  EXPECT_EQ(difference("xx", "bc"), -1);
}

TEST_F(HandMade, ResolvesEachType) {
  so.smels[0].type_smel = SMEL_DOUBLE;
  so.smels[0].smel_types.sm_1type.xtraw = 'y';
  so.smels[0].smel_types.sm_1type.lsc1.lsclong = 0x11223344;
  so.smels[0].next_smel = 63;
  so.smels[63].type_smel = SMEL_LIGATURE;
  so.smels[63].smel_types.sm_3type.lsc1.lsclong = 0x55667788;
  so.smels[63].smel_types.sm_3type.lsc2.lsclong = 0x99aabbcc;
  char text[] = "yz";
  LSC weights, hold;
  char *position = text;
  com__smel_lsc(so.smels, 0, &position, text + 2, &weights, &hold);
  EXPECT_EQ(position, text + 1);
  EXPECT_EQ(weights.lsclong, 0x11223344U);
  EXPECT_EQ(hold.lsclong, 0U);
  position = text; // the text has no end
  com__smel_lsc(so.smels, 0, &position, nullptr, &weights, &hold);
  EXPECT_EQ(position, text + 1);
  position = text; // or ends here
  com__smel_lsc(so.smels, 0, &position, text, &weights, &hold);
  EXPECT_EQ(position, text);
  EXPECT_EQ(weights.lsclong, 0x55667788U);
  EXPECT_EQ(hold.lsclong, 0x99aabbccU);
  position = text + 1;
  com__smel_lsc(so.smels, 0, &position, text + 2, &weights, &hold);
  EXPECT_EQ(position, text + 1);
  EXPECT_EQ(weights.lsclong, 0x55667788U);
}

TEST_F(HandMade, ListsThatEndNowhereAreFatal) {
  char text[] = "q";
  LSC weights, hold;
  const auto resolve = [&](int first) {
    char *position = text;
    weights.lsclong = hold.lsclong = 7;
    return catch_check(
        [&] { com__smel_lsc(so.smels, first, &position, text + 1, &weights, &hold); });
  };
  EXPECT_TRUE(is_assertion_report(resolve(255), unit));
  EXPECT_TRUE(is_assertion_report(resolve(64), unit));
  EXPECT_TRUE(is_assertion_report(resolve(-1), unit));
  EXPECT_EQ(weights.lsclong | hold.lsclong, 0U);
  so.smels[0].type_smel = SMEL_DOUBLE;
  so.smels[0].smel_types.sm_1type.xtraw = 'z';
  EXPECT_TRUE(is_assertion_report(resolve(0), unit)); // the last one does not match
  for (const int type : {2, 4, 5, 6, 7, 255}) {
    so.smels[0].type_smel = static_cast<CS_BYTE>(type);
    EXPECT_TRUE(is_assertion_report(resolve(0), unit)) << type;
    EXPECT_EQ(weights.lsclong | hold.lsclong, 0U);
  }
}

} // namespace
