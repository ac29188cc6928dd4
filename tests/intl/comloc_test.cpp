// Questions to a locale: its names, whether it agrees with another, its character set.
#include "check_trap.h"
#include "guarded_buffer.h"
#include "identifier_records.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/sortordr.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc.cpp";

// A locale whose six caches have names of their own: the category's letter and the kind.
class LocaleNames : public testing::Test {
protected:
  LocaleNames() {
    for (size_t i = 0; i < 6; ++i) {
      const std::string letter(1, "abcdef"[i]);
      texts[i][0] = letter + "_set";
      texts[i][1] = letter + "_language";
      texts[i][2] = letter + "_sort";
      caches[i].charname = texts[i][0].data();
      caches[i].charnamelen = 5;
      caches[i].langname = texts[i][1].data();
      caches[i].langnamelen = 10;
      caches[i].sortname = texts[i][2].data();
      caches[i].sortnamelen = 6;
    }
    locale.collateptr = &caches[0];
    locale.ctypeptr = &caches[1];
    locale.messageptr = &caches[2];
    locale.monetaryptr = &caches[3];
    locale.numericptr = &caches[4];
    locale.timeptr = &caches[5];
  }

  std::string texts[6][3];
  CsLocCache caches[6]{};
  CsLocale locale{};
  CS_INT length = 77;
};

TEST_F(LocaleNames, EachCategoryAndKind) {
  for (CS_INT lctype = 1; lctype <= 6; ++lctype) {
    const std::string letter(1, "abcdef"[lctype - 1]);
    const std::string expected[] = {letter + "_set", letter + "_language", letter + "_sort",
                                    letter + "_language." + letter + "_set"};
    for (CS_INT type = 1; type <= 4; ++type) {
      const std::string &name = expected[type - 1];
      GuardedBuffer buffer(20);
      EXPECT_EQ(com_intl_getstr(&locale, lctype, type, buffer.text(), 20, &length), CS_SUCCEED);
      EXPECT_EQ(length, static_cast<CS_INT>(name.size()));
      EXPECT_EQ(buffer.contents(name.size()), name);
      EXPECT_TRUE(buffer.is_untouched(name.size())); // no terminator
    }
  }
}

TEST_F(LocaleNames, ANameMustFitWhole) {
  constexpr CS_INT sizes[] = {5, 10, 6, 16};
  for (CS_INT type = 1; type <= 4; ++type) {
    const CS_INT size = sizes[type - 1];
    for (CS_INT room = -1; room <= size; ++room) {
      GuardedBuffer buffer(static_cast<size_t>(room < 0 ? 0 : room));
      length = 77;
      const CS_RETCODE result = com_intl_getstr(&locale, 1, type, buffer.text(), room, &length);
      EXPECT_EQ(result, room == size ? CS_SUCCEED : CS_FAIL);
      EXPECT_EQ(length, room == size ? size : 77);
      EXPECT_TRUE(room == size || buffer.is_untouched());
    }
  }
}

TEST_F(LocaleNames, AMissingNameIsEmpty) {
  caches[0].sortname = nullptr;
  caches[0].sortnamelen = 0;
  char byte = 'x';
  EXPECT_EQ(com_intl_getstr(&locale, 1, 3, &byte, 0, &length), CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(byte, 'x');
}

TEST_F(LocaleNames, RefusesWrongArguments) {
  char text[20];
  for (const CS_INT lctype : {-1, 0, 7, 8})
    EXPECT_ASSERTION(unit, CS_FAIL, com_intl_getstr(&locale, lctype, 1, text, 20, &length));
  for (const CS_INT type : {-1, 0, 5, CS_UNUSED})
    EXPECT_ASSERTION(unit, CS_FAIL, com_intl_getstr(&locale, 1, type, text, 20, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_getstr(nullptr, 1, 1, text, 20, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_getstr(&locale, 1, 1, nullptr, 20, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_getstr(&locale, 1, 1, text, 20, nullptr));
  locale.numericptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_getstr(&locale, 5, 1, text, 20, &length));
  EXPECT_EQ(length, 77);
}

// ---- two locales ----

class LocalePair : public testing::Test {
protected:
  LocalePair() {
    for (CsLocCache &cache : caches) {
      cache.locchardesc = &sets[0];
      cache.locmessage = &messages[0];
      cache.locsortorder = &orders[0];
    }
    a = {&caches[0], &caches[0], &caches[0], &caches[0], &caches[0], &caches[0], nullptr, nullptr};
    b = {&caches[1], &caches[1], &caches[1], &caches[1], &caches[1], &caches[1], nullptr, nullptr};
  }

  CsCharDesc sets[2]{};
  CS_MESSAGE messages[2]{};
  CsSortDesc orders[2]{};
  CsLocCache caches[2]{};
  CsLocale a{}, b{};
};

TEST_F(LocalePair, AgreeWhenTheirObjectsAreTheSame) {
  for (CS_INT lctype = 1; lctype <= 6; ++lctype)
    for (CS_INT type = 1; type <= 3; ++type)
      EXPECT_EQ(com_intl_loccmp(lctype, type, &a, &b), 0);
  CsOID id{};
  sets[0].oid = sets[1].oid = &id; // an identifier is not enough
  const auto differ = [&](CS_INT in) {
    for (CS_INT lctype = 1; lctype <= 6; ++lctype)
      for (CS_INT type = 1; type <= 3; ++type)
        EXPECT_EQ(com_intl_loccmp(lctype, type, &a, &b), type == in ? 1 : 0);
  };
  caches[1].locchardesc = &sets[1];
  differ(1);
  caches[1].locchardesc = &sets[0];
  caches[1].locmessage = &messages[1];
  differ(2);
  caches[1].locmessage = &messages[0];
  caches[1].locsortorder = &orders[1];
  differ(3);
}

TEST_F(LocalePair, EachCategoryCounts) {
  caches[1].locchardesc = &sets[1];
  CS_VOID **const pointers[] = {&b.collateptr,  &b.ctypeptr,   &b.messageptr,
                                &b.monetaryptr, &b.numericptr, &b.timeptr};
  for (CS_INT equal = 1; equal <= 6; ++equal) {
    *pointers[equal - 1] = &caches[0];
    for (CS_INT lctype = 1; lctype <= 6; ++lctype)
      EXPECT_EQ(com_intl_loccmp(lctype, 1, &a, &b), lctype == equal ? 0 : 1);
    *pointers[equal - 1] = &caches[1];
  }
}

TEST_F(LocalePair, TheSameLocaleNeedsNoCache) {
  CsLocale empty{}, other{};
  EXPECT_EQ(com_intl_loccmp(1, 1, &empty, &empty), 0);
  EXPECT_EQ(com_intl_loccmp(1, 1, &empty, &other), 0);
  EXPECT_NULL_POINTER_CHECK(unit, 1, com_intl_loccmp(1, 1, &a, &empty));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com_intl_loccmp(1, 1, nullptr, &empty));
  EXPECT_NULL_POINTER_CHECK(unit, 1, com_intl_loccmp(1, 1, &empty, nullptr));
  for (const CS_INT wrong : {0, 7})
    EXPECT_ASSERTION(unit, 1, com_intl_loccmp(wrong, 1, &a, &b));
  for (const CS_INT wrong : {0, 4})
    EXPECT_ASSERTION(unit, 1, com_intl_loccmp(1, wrong, &a, &b));
}

// ---- the character set of a format ----

TEST_F(LocalePair, TheCharacterSetOfAFormat) {
  CS_ATTRIB attributes[2]{}, *const none = nullptr;
  sets[0].char_attrib = &attributes[0];
  sets[1].char_attrib = &attributes[1];
  caches[1].locchardesc = &sets[1];
  CS_CONTEXT context{};
  CS_DATAFMT format{};
  EXPECT_EQ(com_intl_charattr(nullptr, nullptr), com_get_charattrib());
  EXPECT_EQ(com_intl_charattr(nullptr, &format), com_get_charattrib());
  EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_charattr(&context, nullptr));
  context.ctxlocale = &a;
  EXPECT_EQ(com_intl_charattr(&context, nullptr), &attributes[0]);
  EXPECT_EQ(com_intl_charattr(&context, &format), &attributes[0]);
  format.locale = &b;
  EXPECT_EQ(com_intl_charattr(&context, &format), &attributes[1]);
  EXPECT_EQ(com_intl_charattr(nullptr, &format), &attributes[1]);
  sets[1].char_attrib = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_charattr(&context, &format));
  caches[1].locchardesc = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_charattr(&context, &format));
  b.ctypeptr = nullptr;
  EXPECT_ASSERTION(unit, none, com_intl_charattr(&context, &format));
  a.ctypeptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_charattr(&context, nullptr));
}

} // namespace
