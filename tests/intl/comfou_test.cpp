// The table of ten sets, and conversion by it.
#include <map>

#include "charset_world.h"
#include "check_trap.h"
#include "zrvcomn/comfou.h"

namespace {

using namespace zrvtest;

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

// ---- conversion by the table ----

constexpr const char *unit = "comfou.cpp";

class Xlate : public testing::Test, protected CharsetWorld {
protected:
  struct Result {
    CS_RETCODE status;
    CS_INT srcused, destused;
    std::string text; // all of the room

    bool operator==(const Result &) const = default;
    friend std::ostream &operator<<(std::ostream &out, const Result &result) {
      return out << result.status << ' ' << result.srcused << ' ' << result.destused << ' '
                 << testing::PrintToString(result.text);
    }
  };

  Result xlate(HandSet &from, HandSet &to, const std::string &text, size_t room,
               CS_INT source_type = CS_TYPE_CHAR, CS_INT destination_type = CS_TYPE_CHAR) {
    GuardedBuffer source(text.size()), destination(room);
    std::memcpy(source.data(), text.data(), text.size());
    CS_DATAFMT srcfmt = make_format(source_type, static_cast<CS_INT>(text.size()));
    CS_DATAFMT destfmt = make_format(destination_type, static_cast<CS_INT>(room));
    srcfmt.locale = &from.locale;
    destfmt.locale = &to.locale;
    Result result{-1, -1, -1, {}};
    result.status = com_intl_xlate(&context, &srcfmt, source.data(), &destfmt, destination.data(),
                                   &result.srcused, &result.destused);
    result.text = destination.contents();
    return result;
  }

  CS_INT type_of(HandSet &from, HandSet &to) {
    CS_DATAFMT srcfmt = make_format(0, 1), destfmt = make_format(0, 1);
    srcfmt.locale = &from.locale;
    destfmt.locale = &to.locale;
    CS_INT type = -1;
    EXPECT_EQ(com_intl_will_xlate(&context, &srcfmt, &destfmt, &type), CS_SUCCEED);
    CS_XLATE_FUNC function = com__fou_mac_to_iso1;
    EXPECT_EQ(com__intl_get_xlate(&context, &srcfmt, &destfmt, &function), CS_SUCCEED);
    EXPECT_EQ(function == nullptr, type == COM_FOU_NONE || type == COM_FOU_COPY);
    return type;
  }

  HandSet cp850{2}, sjis{141}, eucjis{140}, zrvchar{255};
};

TEST_F(Xlate, WillXlate) {
  EXPECT_EQ(type_of(iso_1, cp850), COM_FOU_MAP);
  EXPECT_EQ(type_of(iso_1, ascii_8), COM_FOU_ASCII);
  EXPECT_EQ(type_of(cp850, zrvchar), COM_FOU_NONE);
  EXPECT_EQ(type_of(iso_1, utf8), COM_FOU_NONE); // not in the table
  EXPECT_EQ(type_of(utf8, iso_1), COM_FOU_NONE);
  EXPECT_EQ(type_of(iso_1, iso_1), COM_FOU_COPY);
  HandSet other(1), twin(190);
  EXPECT_EQ(type_of(iso_1, other), COM_FOU_COPY); // by number
  EXPECT_EQ(type_of(utf8, twin), COM_FOU_COPY);
  for (int from = 0; from < COM_FOU_SETS; ++from)
    for (int to = 0; to < COM_FOU_SETS; ++to) {
      HandSet first(sets[from]), second(sets[to]);
      EXPECT_EQ(type_of(first, second), Com_fou_xlt_map[from].fou_funcs[to].xlate_type);
    }
  EXPECT_EQ(com__intl_get_csid(&zrvchar.locale), 255);
  EXPECT_EQ(com__intl_get_csid(&iso_1.locale), 1);
}

TEST_F(Xlate, TheSameLocaleNeedsNoSet) {
  HandSet bare(3);
  bare.cache.locchardesc = nullptr;
  EXPECT_EQ(type_of(bare, bare), COM_FOU_COPY);
}

TEST_F(Xlate, ByAFunction) {
  EXPECT_EQ(xlate(iso_1, cp850, "a\xE9z", 3), (Result{CS_SUCCEED, 3, 3, "a\x82z"}));
  EXPECT_EQ(xlate(iso_1, cp850, "a\x80z", 3), (Result{CS_CONV_BADCHAR, 3, 3, "a?z"}));
  EXPECT_EQ(xlate(iso_1, cp850, "a\xE9z", 2), (Result{CS_CONV_OVERFLOW, 2, 2, "a\x82"}));
  // What was replaced counts for more than what did not fit.
  EXPECT_EQ(xlate(iso_1, cp850, "\x80\xE9z", 2), (Result{CS_CONV_BADCHAR, 2, 2, "?\x82"}));
  EXPECT_EQ(xlate(iso_1, cp850, "a", 0), (Result{CS_CONV_OVERFLOW, 0, 0, ""}));
  EXPECT_EQ(xlate(iso_1, ascii_8, "a\xE9", 3), (Result{CS_CONV_BADCHAR, 2, 2, "a?\xA5"}));
  EXPECT_EQ(xlate(sjis, eucjis, "a\x82\xA0", 3), (Result{CS_SUCCEED, 3, 3, "a\xA4\xA2"}));
  // The character that does not fit the last byte stays unread.
  EXPECT_EQ(xlate(sjis, eucjis, "a\x82\xA0", 2), (Result{CS_CONV_OVERFLOW, 1, 1, "a\xA5"}));
  EXPECT_EQ(xlate(sjis, ascii_8, "\x82\xA0", 2), (Result{CS_CONV_BADCHAR, 2, 2, "??"}));
  EXPECT_EQ(xlate(iso_1, zrvchar, "abc", 3), (Result{CS_SUCCEED, 3, 3, "\xA5\xA5\xA5"}));
}

TEST_F(Xlate, NoConversion) {
  EXPECT_EQ(xlate(iso_1, utf8, "abc", 3), (Result{CS_CONV_NOXLATE, 0, 0, "\xA5\xA5\xA5"}));
  EXPECT_EQ(xlate(zrvchar, cp850, "abc", 3), (Result{CS_CONV_NOXLATE, 0, 0, "\xA5\xA5\xA5"}));
  EXPECT_EQ(xlate(iso_1, utf8, "", 3), (Result{CS_CONV_NOXLATE, 0, 0, "\xA5\xA5\xA5"}));
}

TEST_F(Xlate, Copies) {
  EXPECT_EQ(xlate(utf8, utf8, "a\xE9z", 4), (Result{CS_SUCCEED, 3, 3, "a\xE9z\xA5"}));
  EXPECT_EQ(xlate(utf8, utf8, "a\xE9z", 2), (Result{CS_CONV_OVERFLOW, 2, 2, "a\xE9"}));
  char text[] = "abc";
  CS_DATAFMT format = make_format(0, 3);
  CS_INT srcused = -1, destused = -1;
  EXPECT_EQ(com_intl_xlate(&context, &format, text, &format, text, &srcused, &destused),
            CS_SUCCEED);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(srcused, 3);
  EXPECT_EQ(destused, 3);
}

TEST_F(Xlate, Varchar) {
  const std::string record("\3\0a\xE9z", 5);
  EXPECT_EQ(xlate(iso_1, cp850, record, 3, CS_TYPE_VARCHAR), (Result{CS_SUCCEED, 3, 3, "a\x82z"}));
  Result result = xlate(iso_1, cp850, "a\xE9z", 258, CS_TYPE_CHAR, CS_TYPE_VARCHAR);
  EXPECT_EQ(result.text.substr(0, 6), std::string("\3\0a\x82z\xA5", 6));
  EXPECT_EQ(result.destused, 3);
  // The room is 256 whatever the format says.
  result = xlate(iso_1, cp850, std::string(300, '\xE9'), 258, CS_TYPE_CHAR, CS_TYPE_VARCHAR);
  EXPECT_EQ(result.text.substr(0, 2), std::string("\0\1", 2));
  EXPECT_EQ(result.text.substr(2), std::string(256, '\x82'));
  EXPECT_EQ(result.status, CS_CONV_OVERFLOW);
  // A copy deliberately begins with the source's length.
  EXPECT_EQ(xlate(iso_1, iso_1, record, 3, CS_TYPE_VARCHAR),
            (Result{CS_SUCCEED, 3, 3, std::string("\3\0a", 3)}));
  result = xlate(iso_1, iso_1, record, 258, CS_TYPE_VARCHAR, CS_TYPE_VARCHAR);
  EXPECT_EQ(result.text.substr(0, 6), std::string("\3\0\3\0a\xA5", 6));
}

TEST_F(Xlate, WrongCallsAreFatal) {
  char text = 'a', result = 'b';
  CS_INT used = -1;
  CS_DATAFMT source = make_format(0, 1), destination = make_format(0, 1);
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_intl_xlate(nullptr, &source, &text, &destination, &result, &used, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_intl_xlate(&context, nullptr, &text, &destination, &result, &used, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_intl_xlate(&context, &source, nullptr, &destination, &result, &used, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_intl_xlate(&context, &source, &text, nullptr, &result, &used, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_intl_xlate(&context, &source, &text, &destination, nullptr, &used, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_intl_xlate(&context, &source, &text, &destination, &result, nullptr, &used));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_intl_xlate(&context, &source, &text, &destination, &result, &used, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com__intl_get_xlate(&context, &source, &destination, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__intl_get_csid(nullptr));
  for (const CS_INT length : {0, -1}) {
    source.maxlength = length;
    EXPECT_ASSERTION(unit, CS_FAIL,
                     com_intl_xlate(&context, &source, &text, &destination, &result, &used, &used));
  }
  source.maxlength = 1;
  destination.maxlength = -1;
  EXPECT_ASSERTION(unit, CS_FAIL,
                   com_intl_xlate(&context, &source, &text, &destination, &result, &used, &used));
  HandSet empty(1);
  source.locale = &empty.locale;
  CS_INT type = -1;
  empty.charset.char_attrib = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, &type));
  empty.cache.locchardesc = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, &type));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__intl_get_csid(&empty.locale));
  empty.locale.ctypeptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, &type));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com__intl_get_csid(&empty.locale));
  destination.locale = &empty.locale; // the same on both sides
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, &type));
  context.ctxlocale = nullptr;
  source.locale = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_will_xlate(&context, &source, &destination, &type));
  EXPECT_EQ(type, -1);
}

} // namespace
