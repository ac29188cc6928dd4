// The algorithms of users, the growth of text, the numbers and names of the sets, and the mnemonics.
#include <set>
#include <string>
#include <string_view>

#include "allocation_probe.h"
#include "charset_world.h"
#include "check_trap.h"
#include "identifier_records.h"
#include "zrvcomn/lmpublic.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "charconv_user.cpp";

CS_RETCODE first_function(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                          CS_INT *) {
  return 11;
}

CS_RETCODE second_function(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                           CS_INT *) {
  return 12;
}

class UserCharConv : public testing::Test {
protected:
  UserCharConv() {
    for (const char *name : {"one", "two", "three"})
      oids[count++] = hand.add(0, {6, 1, static_cast<CS_BYTE>(count)}, {name});
    oids[count] = hand.add(0, {6, 1, 9}, {std::string(256, 'x')});
    hand.add(0, {6, 1, 10}, {std::string(257, 'x')});
    hand.add(5, {6, 1, 11}, {"language"});
  }

  ~UserCharConv() override { EXPECT_EQ(comn_drop_user_charconv_list(context), CS_SUCCEED); }

  CS_RETCODE call(CS_INT action, const std::string &from, const std::string &to, CS_INT *multiplier,
                  CS_CONV_FUNC *function) {
    return comn_set_user_charset_convert(context, action, Text(from),
                                         static_cast<CS_INT>(from.size()), Text(to),
                                         static_cast<CS_INT>(to.size()), multiplier, function);
  }

  CS_RETCODE set(const std::string &from, const std::string &to, CS_INT multiplier = 2) {
    CS_CONV_FUNC function = first_function;
    return call(CS_ACT_SET, from, to, &multiplier, &function);
  }

  CsUserAlgo *head() { return static_cast<CsUserAlgo *>(context->usercharconv); }

  size_t records() {
    size_t number = 0;
    for (const CsUserAlgo *record = head(); record != nullptr; record = record->next)
      ++number;
    return number;
  }

  HandTable hand;
  CS_CONTEXT *context = &hand.context;
  CsOID *oids[4];
  size_t count = 0;
};

TEST_F(UserCharConv, SettingAddsAtTheHead) {
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
  EXPECT_EQ(set("two", "one", 3), CS_SUCCEED);
  ASSERT_EQ(records(), 2U);
  const CsUserAlgo &newest = *head();
  EXPECT_EQ(std::string(newest.from_charname, 3), "two");
  EXPECT_EQ(newest.from_charnamelen, 3);
  EXPECT_EQ(std::string(newest.to_charname, 3), "one");
  EXPECT_EQ(newest.to_charnamelen, 3);
  EXPECT_EQ(newest.from_oid, oids[1]);
  EXPECT_EQ(newest.to_oid, oids[0]);
  EXPECT_EQ(newest.user_conv_func, first_function);
  EXPECT_EQ(newest.conv_multiplier, 3);
  EXPECT_EQ(newest.next->from_oid, oids[0]);
  CsUserAlgo *found = nullptr;
  EXPECT_EQ(comn__get_user_charconv(context, oids[0], oids[1], &found), CS_SUCCEED);
  EXPECT_EQ(found, newest.next);
  EXPECT_EQ(comn__get_user_charconv(context, oids[0], oids[0], &found), CS_FAIL);
  EXPECT_EQ(found, nullptr);
}

TEST_F(UserCharConv, SettingAgainReplaces) {
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
  CsUserAlgo *const record = head();
  CS_CONV_FUNC function = second_function;
  EXPECT_EQ(call(CS_ACT_SET, "one", "two", nullptr, &function), CS_SUCCEED);
  EXPECT_EQ(records(), 1U);
  EXPECT_EQ(head(), record);
  EXPECT_EQ(record->user_conv_func, second_function);
  EXPECT_EQ(record->conv_multiplier, 1); // none given
}

TEST_F(UserCharConv, Reading) {
  CS_CONV_FUNC function = second_function;
  CS_INT multiplier = -5;
  EXPECT_EQ(call(CS_ACT_GET, "one", "two", &multiplier, &function), CS_SUCCEED);
  EXPECT_EQ(function, nullptr);
  EXPECT_EQ(multiplier, -5);
  EXPECT_EQ(set("one", "two", 7), CS_SUCCEED);
  EXPECT_EQ(call(CS_ACT_GET, "one", "two", &multiplier, &function), CS_SUCCEED);
  EXPECT_EQ(function, first_function);
  EXPECT_EQ(multiplier, 7);
  EXPECT_EQ(call(CS_ACT_GET, "one", "two", nullptr, &function), CS_SUCCEED);
  EXPECT_EQ(call(CS_ACT_GET, "two", "one", nullptr, &function), CS_SUCCEED);
  EXPECT_EQ(function, nullptr);
}

TEST_F(UserCharConv, RemovingInsideTheList) {
  AllocationProbe probe;
  for (const char *to : {"one", "two", "three"})
    EXPECT_EQ(set("one", to), CS_SUCCEED);
  EXPECT_EQ(call(CS_ACT_CLEAR, "one", "two", nullptr, nullptr), CS_SUCCEED);
  ASSERT_EQ(records(), 2U);
  EXPECT_EQ(head()->to_oid, oids[2]);
  EXPECT_EQ(head()->next->to_oid, oids[0]);
  EXPECT_EQ(probe.live_blocks(), 2U);
  EXPECT_EQ(call(CS_ACT_CLEAR, "one", "one", nullptr, nullptr), CS_SUCCEED); // the last
  EXPECT_EQ(records(), 1U);
  EXPECT_EQ(probe.live_blocks(), 1U);
  // One that is not there.
  EXPECT_EQ(call(CS_ACT_CLEAR, "one", "one", nullptr, nullptr), CS_SUCCEED);
  EXPECT_EQ(records(), 1U);
}

// Removing the newest of several empties the list and releases that one alone. Deployed applications
// know it so.
TEST_F(UserCharConv, RemovingTheHeadDropsTheRest) {
  AllocationProbe probe;
  EXPECT_EQ(set("one", "one"), CS_SUCCEED);
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
  EXPECT_EQ(set("one", "three"), CS_SUCCEED);
  CsUserAlgo *const second = head()->next, *const third = second->next;
  EXPECT_EQ(call(CS_ACT_CLEAR, "one", "three", nullptr, nullptr), CS_SUCCEED);
  EXPECT_EQ(context->usercharconv, nullptr);
  EXPECT_EQ(probe.live_blocks(), 2U);
  comn_free(second);
  comn_free(third);
}

TEST_F(UserCharConv, DroppingReleasesAll) {
  AllocationProbe probe;
  EXPECT_EQ(set("one", "one"), CS_SUCCEED);
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
  EXPECT_EQ(comn_drop_user_charconv_list(context), CS_SUCCEED);
  EXPECT_EQ(context->usercharconv, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(comn_drop_user_charconv_list(context), CS_SUCCEED);
}

TEST_F(UserCharConv, NamesAreResolvedFirst) {
  CS_CONV_FUNC function = first_function;
  // Before the action and the function are looked at.
  EXPECT_EQ(call(99, "four", "one", nullptr, nullptr), COM_UNKNOWN_NAME);
  EXPECT_EQ(call(99, "one", "four", nullptr, nullptr), COM_UNKNOWN_NAME);
  EXPECT_EQ(call(CS_ACT_SET, "one", "language", nullptr, &function), COM_UNKNOWN_NAME);
  EXPECT_EQ(call(CS_ACT_SET, "", "one", nullptr, &function), COM_UNKNOWN_NAME);
  EXPECT_EQ(records(), 0U);
  EXPECT_ASSERTION(unit, CS_FAIL, call(99, "one", "two", nullptr, &function));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, call(CS_ACT_SET, "one", "two", nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, call(CS_ACT_GET, "one", "two", nullptr, nullptr));
  EXPECT_EQ(records(), 0U);
}

TEST_F(UserCharConv, LongNames) {
  const std::string longest(256, 'x');
  EXPECT_EQ(set(longest, longest), CS_SUCCEED);
  EXPECT_EQ(std::string(head()->from_charname, 256), longest);
  EXPECT_EQ(std::string(head()->to_charname, 256), longest);
  EXPECT_EQ(set(longest + 'x', "one"), CS_CONV_SYNTAX);
  EXPECT_EQ(set("one", longest + 'x'), CS_CONV_SYNTAX);
  // The length of a terminated name is negative: it finds a record, but makes none.
  CS_CONV_FUNC function = second_function;
  CS_CHAR one[] = "one", two[] = "two";
  EXPECT_EQ(comn_set_user_charset_convert(context, CS_ACT_SET, one, CS_LEN_NULLTERM, two, 3,
                                          nullptr, &function),
            CS_CONV_SYNTAX);
  EXPECT_EQ(comn_set_user_charset_convert(context, CS_ACT_SET, one, 3, two, CS_LEN_NULLTERM,
                                          nullptr, &function),
            CS_CONV_SYNTAX);
  EXPECT_EQ(records(), 1U);
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
  EXPECT_EQ(comn_set_user_charset_convert(context, CS_ACT_SET, one, CS_LEN_NULLTERM, two,
                                          CS_LEN_NULLTERM, nullptr, &function),
            CS_SUCCEED);
  EXPECT_EQ(head()->user_conv_func, second_function);
}

TEST_F(UserCharConv, AFailingAllocationChangesNothing) {
  EXPECT_EQ(set("one", "one"), CS_SUCCEED);
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(set("one", "two"), CS_MEM_ERROR);
  EXPECT_EQ(records(), 1U);
  EXPECT_EQ(set("one", "two"), CS_SUCCEED);
}

// ---- growth ----

class Growth : public testing::Test, protected CharsetWorld {
protected:
  CS_RETCODE grow(CS_LOCALE *from, CS_LOCALE *to, CS_INT type = CS_LCTYPE_CTYPE) {
    multiplier = -1;
    return comn_convert_max_multiplier(&context, type, from, to, &multiplier);
  }
  CS_INT multiplier = -1;
};

TEST_F(Growth, OneBetweenTheSameSets) {
  // No set needs to be there, let alone a converter.
  HandSet bare(6);
  bare.locale.ctypeptr = nullptr;
  EXPECT_EQ(grow(&bare.locale, &bare.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 1);
  EXPECT_EQ(grow(nullptr, &iso_1.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 1);
  HandSet twin(6);
  twin.cache.locchardesc = &decmcs.charset;
  EXPECT_EQ(grow(&decmcs.locale, &twin.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 1);
  twin.locale.ctypeptr = &decmcs.cache;
  EXPECT_EQ(grow(&decmcs.locale, &twin.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 1);
}

TEST_F(Growth, ThatOfTheConverters) {
  for (const auto &[from, to] :
       {std::pair{&iso_1, &utf8}, {&utf8, &iso_1}, {&iso_1, &utf16}, {&ascii_8, &iso_1}}) {
    UNICONV_CID from_cid = 0, to_cid = 0;
    int expected = 0;
    ASSERT_EQ(comn__get_unilib_cid(from->attributes.cs_id, &from_cid), 1);
    ASSERT_EQ(comn__get_unilib_cid(to->attributes.cs_id, &to_cid), 1);
    ASSERT_EQ(uniconv_GetExpansion(from_cid, to_cid, &expected), 1);
    EXPECT_EQ(grow(&from->locale, &to->locale), CS_SUCCEED);
    EXPECT_EQ(multiplier, expected);
    EXPECT_EQ(comn__convert_get_max_multiplier(&context, &from->cache, &to->cache, &multiplier),
              CS_SUCCEED);
    EXPECT_EQ(multiplier, expected);
  }
  EXPECT_EQ(grow(&iso_1.locale, &utf16.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 2);
  for (HandSet *none : {&decmcs, &unknown}) {
    EXPECT_EQ(grow(&none->locale, &iso_1.locale), CS_FAIL);
    EXPECT_EQ(grow(&iso_1.locale, &none->locale), CS_FAIL);
    EXPECT_EQ(multiplier, -1);
  }
}

TEST_F(Growth, ThatOfTheUser) {
  CsUserAlgo algorithm{};
  algorithm.from_oid = &decmcs.oid;
  algorithm.to_oid = &unknown.oid;
  algorithm.conv_multiplier = 9;
  context.usercharconv = &algorithm;
  EXPECT_EQ(grow(&decmcs.locale, &unknown.locale), CS_SUCCEED);
  EXPECT_EQ(multiplier, 9);
  EXPECT_EQ(grow(&unknown.locale, &decmcs.locale), CS_FAIL);
}

TEST_F(Growth, EachCategoryHasItsSet) {
  CS_VOID *CsLocale::*const categories[] = {&CsLocale::ctypeptr, &CsLocale::messageptr,
                                            &CsLocale::monetaryptr, &CsLocale::numericptr,
                                            &CsLocale::timeptr};
  for (size_t i = 0; i < 5; ++i) {
    HandSet to(0);
    to.cache.locchardesc = &iso_1.charset;
    to.locale.*categories[i] = &utf16.cache;
    for (CS_INT type = -1; type < 9; ++type) {
      const bool is_other = type < CS_LCTYPE_MESSAGE || type > CS_LCTYPE_TIME;
      EXPECT_EQ(grow(nullptr, &to.locale, type), CS_SUCCEED);
      EXPECT_EQ(multiplier, (is_other ? 0 : type - 2) == static_cast<CS_INT>(i) ? 2 : 1)
          << i << type;
    }
  }
}

TEST_F(Growth, WrongCallsAreFatal) {
  CS_INT number = 0;
  HandSet empty(1);
  empty.locale.ctypeptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn_convert_max_multiplier(nullptr, 2, &iso_1.locale, &utf8.locale, &number));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn_convert_max_multiplier(&context, 2, &iso_1.locale, &utf8.locale, nullptr));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn_convert_max_multiplier(&context, 2, &iso_1.locale, &empty.locale, &number));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn_convert_max_multiplier(&context, 2, &empty.locale, &iso_1.locale, &number));
  context.ctxlocale = nullptr;
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn_convert_max_multiplier(&context, 2, nullptr, &iso_1.locale, &number));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn_convert_max_multiplier(&context, 2, &iso_1.locale, nullptr, &number));
}

// ---- numbers and names ----

// Number, name and converter of each row, in the order of look-ups; -3: without a converter.
constexpr std::string_view all_rows =
    "0 ascii_8 0; 1 iso_1 1; 2 cp850 2; 3 cp437 3; 4 roman8 4; 5 mac 5; 6 decmcs -3; "
    "7 ebcdic -3; 8 iso646 0; 9 cp860 860; 10 cp863 863; 11 ascii_7 0; 12 teletex -3; "
    "13 cp1252 1252; 14 iso15 21; 15 cp861 861; 16 iso6937 -3; 20 iso88592 12; 21 cp852 852; "
    "22 cp1250 1250; 23 mac_ee 27; 24 mac_croat -3; 25 mac_ice -3; 26 mac_rom -3; 27 mac_ukr -3; "
    "29 cp273 273; 30 cp1257 1257; 31 iso13 42; 32 cp280 280; 33 cp284 284; 34 cp285 285; "
    "35 cp297 297; 36 cp277 277; 37 cp775 775; 38 cp870 870; 39 cp871 -3; 40 iso88593 19; "
    "41 iso88594 20; 42 iso10 18; 43 cp865 865; 44 cp1122 -3; 45 cp278 278; 46 cp921 921; "
    "47 cp922 -3; 48 cp1123 -3; 49 cp1124 -3; 50 iso88595 13; 51 cp855 855; 52 cp866 866; "
    "53 cp1251 1251; 54 cp880 -3; 55 koi8 32; 56 mac_cyr 26; 57 cp1025 -3; 58 cp1112 -3; "
    "59 mac_farsi -3; 60 iso88596 14; 61 arabic8 -3; 62 cp1256 1256; 63 mac_arab -3; "
    "64 ibm420 -3; 65 ibm918 -3; 66 cp864 864; 67 cp868 -3; 68 cp1097 -3; 69 cp1098 -3; "
    "70 iso88597 15; 71 greek8 30; 72 cp869 869; 73 cp1253 1253; 74 macgrk2 -3; 75 macgreek 28; "
    "76 cp737 737; 77 cp875 875; 80 iso88598 16; 81 cp1255 1255; 82 mac_hebr -3; 83 hebrew8 -3; "
    "84 cp856 856; 85 cp424 424; 86 cp862 862; 90 iso88599 17; 91 turkish8 31; 92 cp1254 1254; "
    "93 cp857 857; 94 macturk 29; 95 cp1026 1026; 100 tis620 33; 101 cp874 874; 102 macthai 41; "
    "103 cp838 -3; 104 ibm874 -3; 110 cp037 37; 111 cp500 500; 112 cp1047 1047; 120 cp1258 1258; "
    "125 cp942 -3; 126 cp290 290; 128 cp930 930; 129 cp930yen 3000; 130 cp1006 1006; "
    "131 cp5026 5026; 132 cp5026yen 3002; 133 cp939 939; 134 cp939yen 3001; 136 cp5035 5035; "
    "137 cp5035yen 3003; 138 cp954 954; 139 cp33722 -3; 140 eucjis 49; 141 sjis 50; "
    "142 deckanji 8; 143 jis -3; 144 cp932 932; 145 cp932ms 11; 150 eucksc 36; 151 kscpack -3; "
    "152 cp934 -3; 153 korea15 -3; 154 cp949 949; 155 cp933 933; 160 euccns 9; 161 big5 34; "
    "168 big5hk 47; 162 cp938 -3; 163 roc15 -3; 164 cns -3; 165 cp950 950; 166 cp964 -3; "
    "167 cp937 937; 170 eucgb 10; 171 cp936 936; 172 gb80 -3; 173 gb18030 48; 175 cp935 935; "
    "176 cp1381 -3; 177 cp1383 -3; 180 iso5426 -3; 181 blecs -3; 182 alacs -3; 183 iso5427 -3; "
    "184 iso5428 -3; 185 iso6438 -3; 190 utf8 -4; 191 ucs2 -3; 192 utf16 -1; 193 opoce -3; "
    "194 ucs4 -3; 195 mac_sym -3; 196 mac_ding -3; 199 cp1046 -3; 200 iso14 43; 201 cp1140 1140; "
    "202 cp1141 1141; 203 cp1142 1142; 204 cp1143 1143; 205 cp1144 1144; 206 cp1145 1145; "
    "207 cp1146 1146; 208 cp1147 1147; 209 cp1148 1148; 210 cp1149 1149; 211 cp420 420; "
    "197 cp858 858; 213 cp871v1 871; 214 cp874ibm 46; 215 cp923 923; 216 mac_euro 45; "
    "217 rcsu -5; 218 roman9 44; 87 kz1048 54; 255 zrvchar -3";

TEST(CsidName, RowsAsTheyStand) {
  std::string rows;
  for (const CSID_CSNAME &row : csid_name)
    rows += (rows.empty() ? "" : "; ") + std::to_string(row.csid) + ' ' +
            std::string(reinterpret_cast<const char *>(row.csname)) + ' ' +
            std::to_string(row.unilib_cid);
  EXPECT_EQ(rows, all_rows);
}

TEST(CsidName, NumbersAndNamesAreUnique) {
  std::set<int> numbers;
  std::set<std::string> names;
  int converters = 0;
  for (const CSID_CSNAME &row : csid_name) {
    numbers.insert(row.csid);
    names.insert(std::string(reinterpret_cast<const char *>(row.csname)));
    converters += row.unilib_cid != -3 ? 1 : 0;
    EXPECT_EQ(std::strlen(reinterpret_cast<const char *>(row.csname)),
              static_cast<size_t>(row.len));
  }
  EXPECT_EQ(numbers.size(), 172U);
  EXPECT_EQ(names.size(), 172U);
  EXPECT_EQ(converters, 117);
}

TEST(CsidName, LookUps) {
  for (const CSID_CSNAME &row : csid_name) {
    UNICONV_CID cid = 12345;
    EXPECT_EQ(comn__get_unilib_cid(row.csid, &cid), 1);
    EXPECT_EQ(cid, row.unilib_cid);
    cid = 12345;
    EXPECT_EQ(com_get_csid(reinterpret_cast<CS_CHAR *>(row.csname), &cid), 1);
    EXPECT_EQ(cid, row.unilib_cid);
  }
  UNICONV_CID cid = 12345;
  for (const int csid : {19, -1, 256, 17, 212})
    EXPECT_EQ(comn__get_unilib_cid(csid, &cid), 0) << csid;
  for (const char *name : {"", "iso_", "iso_11", "ISO_1", "utf-8"})
    EXPECT_EQ(com_get_csid(const_cast<CS_CHAR *>(name), &cid), 0) << name;
  EXPECT_EQ(cid, 12345);
  CS_CHAR name[] = "iso_1";
  EXPECT_NULL_POINTER_CHECK("csid_name.cpp", CS_FAIL, comn__get_unilib_cid(1, nullptr));
  EXPECT_NULL_POINTER_CHECK("csid_name.cpp", CS_FAIL, com_get_csid(nullptr, &cid));
  EXPECT_NULL_POINTER_CHECK("csid_name.cpp", CS_FAIL, com_get_csid(name, nullptr));
}

// ---- mnemonics ----

TEST(MnemonicTexts, AreReleasedWithTheirList) {
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  context.ctxglobals = &globals;
  EXPECT_EQ(comn_intl_drop_mnemdb(&context), CS_SUCCEED); // without a list
  LM_CONTEXT *lists = nullptr;
  ASSERT_EQ(lm_initlm(1100, nullptr, 0, &lists), CS_SUCCEED);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE})
    for (const size_t number : {0, 1, 3}) {
      AllocationProbe probe;
      UNICODE_MNEM_STRING mnemonics[3] = {};
      LM_HANDLE *list = nullptr;
      ASSERT_EQ(lm_list_alloc(lists, kind, nullptr, 0, &list), CS_SUCCEED);
      for (size_t i = 0; i < number; ++i) {
        UNICODE_MNEM_STRING &mnemonic = mnemonics[i];
        mnemonic.unicode = static_cast<CS_USHORT>(0x20AC + i);
        mnemonic.string = static_cast<CS_CHAR *>(comn_malloc(4));
        mnemonic.string_len = 4;
        CS_VOID *const key = kind == LM_DLINK ? nullptr : &mnemonic.unicode;
        ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, key, kind == LM_DLINK ? LM_OP_LAST : 2, &mnemonic,
                             nullptr),
                  CS_SUCCEED);
      }
      globals.mnem_db = list;
      EXPECT_EQ(comn_intl_drop_mnemdb(&context), CS_SUCCEED);
      EXPECT_EQ(globals.mnem_db, nullptr);
      for (size_t i = 0; i < number; ++i) {
        EXPECT_EQ(mnemonics[i].string, nullptr);
        EXPECT_EQ(mnemonics[i].string_len, 0);
      }
      EXPECT_EQ(probe.live_blocks(), 0U) << kind << ' ' << number;
      EXPECT_EQ(comn_intl_drop_mnemdb(&context), CS_SUCCEED); // a second time
    }
  EXPECT_EQ(lm_exit(lists, LM_EXIT_NORMAL), CS_SUCCEED);
  EXPECT_EQ(comn__drop_mnem_string(nullptr), CS_SUCCEED);
  EXPECT_NULL_POINTER_CHECK("charconv_mnem.cpp", CS_FAIL, comn_intl_drop_mnemdb(nullptr));
}

} // namespace
