// The pointers that may not be null, one after another: each null one is a failed check of its own.
#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"

namespace {

using zrvtest::expect_null_checks;

class NullPointers : public testing::Test {
protected:
  NullPointers() {
    context.ctxglobals = &globals;
    charset.oid = &oid;
    charset.char_attrib = &attributes;
    cache.locchardesc = &charset;
    locale.ctypeptr = locale.timeptr = locale.messageptr = &cache;
  }

  // The record of a context without what its contexts share.
  CS_CONTEXT alone{};
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsOID oid{}, other_oid{};
  CHAR_ATTRIB attributes{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CS_DATAFMT format{};
  CS_CHAR text[80] = "text";
  CS_BYTE bytes[80] = {0xE9};
  CS_INT length = 0;
};

TEST_F(NullPointers, Conversion) {
  constexpr const char *unit = "charconv.cpp";
  expect_null_checks(unit, CS_FAIL, comn__convt_to_utf8, &context, 0, &format, &cache, text, bytes,
                     80, &length);
  expect_null_checks(unit, CS_FAIL, comn__convt_from_utf8, &context, 0, bytes, 1, &format, &cache,
                     text, &length);
  expect_null_checks(unit, CS_FAIL, comn__copy_ascii_only, bytes, 80, bytes, 1, &length);
  // A set without attributes.
  charset.char_attrib = nullptr;
  format.maxlength = 1;
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn__convt_to_utf8(&context, 0, &format, &cache, bytes, text, 80, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn__convt_from_utf8(&context, 0, bytes, 1, &format, &cache, text, &length));
}

TEST_F(NullPointers, ConversionsOfUsers) {
  constexpr const char *unit = "charconv_user.cpp";
  expect_null_checks(unit, CS_FAIL, comn_set_user_charset_convert, &context, CS_ACT_GET, text, 4,
                     text, 4, nullptr, nullptr);
  expect_null_checks(unit, CS_FAIL, comn_drop_user_charconv_list, &context);
  CsUserAlgo *algorithm;
  expect_null_checks(unit, CS_FAIL, comn__get_user_charconv, &context, nullptr, nullptr,
                     &algorithm);
  expect_null_checks(unit, CS_FAIL, comn__convert_get_max_multiplier, &context, &cache, &cache,
                     &length);
  CsLocCache empty{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__convert_get_max_multiplier(&context, &empty, &cache, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__convert_get_max_multiplier(&context, &cache, &empty, &length));
  CsCharDesc bare{};
  bare.oid = &other_oid;
  empty.locchardesc = &bare;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__convert_get_max_multiplier(&context, &empty, &cache, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__convert_get_max_multiplier(&context, &cache, &empty, &length));
}

TEST_F(NullPointers, TextsOfLocales) {
  constexpr const char *unit = "comloc_text.cpp";
  expect_null_checks(unit, CS_FAIL, comn_intl_month, &context, nullptr, COM_DT_MONTH, 0, text, 80,
                     &length);
  expect_null_checks(unit, CS_FAIL, comn_intl_day, &context, nullptr, COM_DT_DAYNAME, 0, text, 80,
                     &length);
  expect_null_checks(unit, CS_FAIL, comn_intl_dateorder, &context, nullptr, text, 80, &length);
  expect_null_checks(unit, CS_FAIL, com_intl_get_locname, &context, &cache, text, 80, &length);
}

TEST_F(NullPointers, RecordsOfLocales) {
  constexpr const char *unit = "comloc_record.cpp";
  context.ctxlocale = alone.ctxlocale = &locale;
  CS_LOCALE *record;
  expect_null_checks(unit, CS_FAIL, comn_loc_alloc, &context, &record);
  expect_null_checks(unit, CS_FAIL, comn_loc_drop, &context, &locale);
  expect_null_checks(unit, CS_FAIL, comn_loc_drop_all, &context);
  expect_null_checks(unit, 0, comn_loc_validate, &context, &locale);
  expect_null_checks(unit, CS_FAIL, comn_loc_copy, &locale, &locale);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_alloc(&alone, &record));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_drop(&alone, &locale));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_loc_drop_all(&alone));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_loc_validate(&alone, &locale));
}

TEST_F(NullPointers, Caches) {
  constexpr const char *unit = "comloc_cache.cpp";
  CsLocCache *found;
  expect_null_checks(unit, CS_FAIL, comn__copy_loccache, &cache, &cache);
  expect_null_checks(unit, 0, comn__cmp_loccache, &cache, &cache);
  expect_null_checks(unit, CS_FAIL, comn__scan_lcache, &context, &cache, &found);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__scan_lcache(&alone, &cache, &found));
  EXPECT_NULL_POINTER_CHECK("comloc_format.cpp", CS_FAIL, comn_intl_mon_drop(&alone));
  EXPECT_NULL_POINTER_CHECK("comloc_format.cpp", CS_FAIL, comn_intl_num_drop(&alone));
  CS_VOID *loaded;
  EXPECT_NULL_POINTER_CHECK("comloc_load.cpp", CS_FAIL,
                            comn_intl_load(&alone, text, 4, &loaded, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK("charconv_mnem.cpp", CS_FAIL, comn_intl_drop_mnemdb(&alone));
}

TEST_F(NullPointers, Reports) {
  constexpr const char *unit = "comloc_verify.cpp";
  expect_null_checks(unit, CS_FAIL, com_intl_verify_ctxloc, &context);
  expect_null_checks(unit, CS_FAIL, com_intl_verify_a_msgfile, &context, &locale, nullptr, nullptr,
                     80);
  CS_LOCALE empty{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_intl_verify_a_msgfile(&context, &empty, text, text, 80));
  expect_null_checks(unit, CS_FAIL, com__verify_msgfile, &context, nullptr, 0, text, text, 80);
  expect_null_checks(unit, CS_FAIL, com__verify_charfile, &context, nullptr, nullptr, nullptr, text,
                     80);
}

} // namespace
