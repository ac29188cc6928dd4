// What dates look like, by a format and by a locale.
#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"
#include "zrvcomn/datetime.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_dates.cpp";
constexpr const char *text_unit = "comloc_text.cpp";

// A locale whose timeptr has tables of its own; the other categories are not looked at.
struct DateLocale {
  DateLocale() {
    for (size_t i = 0; i < 12; ++i) {
      table.months[i] = full[i];
      table.shortmonths[i] = brief[i];
      table.mon_len[i] = static_cast<CS_INT>(std::sprintf(text(full[i]), "month%zu", i));
      table.shrtmon_len[i] = static_cast<CS_INT>(std::sprintf(text(brief[i]), "m%zu", i));
    }
    for (size_t i = 0; i < 7; ++i) {
      table.days[i] = day[i];
      table.day_len[i] = static_cast<CS_INT>(std::sprintf(text(day[i]), "day%zu", i));
    }
    table.firstday = 3;
    std::strcpy(table.dateorder, "ymd");
    table.locdateorder_id = 3;
    table.convertfmt = 11;
    table.bdtconvertfmt = -1;
    set.char_attrib = com_get_charattrib();
    cache.locchardesc = &set;
    cache.locdateinfo = &table;
    locale.timeptr = &cache;
  }

  static char *text(CS_BYTE *bytes) { return reinterpret_cast<char *>(bytes); }

  CS_BYTE full[12][10], brief[12][10], day[7][10];
  CS_DATEINFO table{};
  CsCharDesc set{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

class Dates : public testing::Test {
protected:
  Dates() {
    of_context.table.firstday = 5;
    context.ctxglobals = &globals;
    globals.cmg_utf8_charset = &of_format.set; // texts stand as they are
    format.locale = &of_format.locale;
  }

  DateLocale of_format, of_context;
  CS_DATAFMT format{}, bare{};
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
};

// ---- by a format ----

TEST_F(Dates, WithoutALocaleTheAnswerIsBuiltIn) {
  for (CsContext *const user : {static_cast<CsContext *>(nullptr), &context})
    for (CS_DATAFMT *const some : {static_cast<CS_DATAFMT *>(nullptr), &bare}) {
      EXPECT_EQ(com_intl_months(user, some), com__get_months());
      EXPECT_STREQ(com_intl_months(user, some)[11], "December");
      EXPECT_EQ(com_intl_shortmonths(user, some), com__get_shortmonths());
      EXPECT_STREQ(com_intl_shortmonths(user, some)[0], "Jan");
      EXPECT_EQ(com_intl_days(user, some), com__get_days());
      EXPECT_STREQ(com_intl_days(user, some)[0], "Sun");
      EXPECT_EQ(com_intl_firstday(user, some), 7);
      EXPECT_STREQ(com_intl_dateorder(user, some), "mdy");
      EXPECT_EQ(com_intl_dateorder_id(user, some), 1);
      EXPECT_EQ(com_intl_is12hour(user, some), 1);
    }
}

TEST_F(Dates, TheLocaleOfTheFormatComesFirst) {
  context.ctxlocale = &of_context.locale;
  EXPECT_EQ(com_intl_firstday(&context, &format), 3);
  EXPECT_EQ(com_intl_firstday(nullptr, &format), 3);
  EXPECT_EQ(com_intl_firstday(&context, &bare), 5);
  EXPECT_EQ(com_intl_firstday(&context, nullptr), 5);
}

TEST_F(Dates, AnswersComeFromTheTables) {
  EXPECT_STREQ(com_intl_months(nullptr, &format)[11], "month11");
  EXPECT_STREQ(com_intl_shortmonths(nullptr, &format)[3], "m3");
  EXPECT_STREQ(com_intl_days(nullptr, &format)[6], "day6");
  EXPECT_STREQ(com_intl_dateorder(nullptr, &format), "ymd");
  EXPECT_EQ(com_intl_dateorder_id(nullptr, &format), 3);
  EXPECT_EQ(com_intl_is12hour(nullptr, &format), 0);
  of_format.table.is12hour = 1;
  EXPECT_EQ(com_intl_is12hour(nullptr, &format), 1);
}

TEST_F(Dates, ALocaleMustBeComplete) {
  CS_CHAR **const none = nullptr;
  for (const bool has_cache : {false, true}) {
    of_format.locale.timeptr = has_cache ? &of_format.cache : nullptr;
    of_format.cache.locdateinfo = nullptr;
    EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_months(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_shortmonths(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, none, com_intl_days(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, 0, com_intl_firstday(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, static_cast<CS_CHAR *>(nullptr),
                              com_intl_dateorder(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, 0, com_intl_dateorder_id(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, 0, com_intl_is12hour(nullptr, &format));
    EXPECT_NULL_POINTER_CHECK(unit, 0, comn_dtloc_format(nullptr, &of_format.locale));
    EXPECT_NULL_POINTER_CHECK(unit, 0, comn_dtloc_is12hour(nullptr, &of_format.locale));
    EXPECT_NULL_POINTER_CHECK(unit, 0, comn_intl_get_dtfmt(&context, &of_format.locale));
  }
}

TEST(FirstDay, MovesTheNumbersOfDays) {
  // Days from Monday, and from Sunday: Monday is 0 and 1.
  EXPECT_EQ(com_intl_convt_firstday(1, 0, 7), 1);
  EXPECT_EQ(com_intl_convt_firstday(1, 6, 7), 0);
  EXPECT_EQ(com_intl_convt_firstday(7, 0, 1), 6);
  EXPECT_EQ(com_intl_convt_firstday(7, 1, 1), 0);
  EXPECT_EQ(com_intl_convt_firstday(3, 2, 5), 0);
  for (CS_INT first = 1; first <= 7; ++first)
    for (CS_INT day = 0; day < 7; ++day) {
      EXPECT_EQ(com_intl_convt_firstday(first, day, first), day);
      for (CS_INT other = 1; other <= 7; ++other)
        EXPECT_EQ((com_intl_convt_firstday(first, day, other) + other) % 7, (day + first) % 7);
    }
}

// ---- by a locale ----

TEST_F(Dates, AContextWithoutLocale) {
  EXPECT_EQ(comn_dtloc_is12hour(nullptr, nullptr), 1);
  EXPECT_EQ(comn_dtloc_is12hour(&context, nullptr), 1);
  EXPECT_EQ(comn_dtloc_format(nullptr, nullptr), 1);
  EXPECT_EQ(comn_dtloc_format(&context, nullptr), 1);
  EXPECT_EQ(comn_dtloc_format_fmt(nullptr, nullptr), 1); // an order, not a style, deliberately
  EXPECT_EQ(comn_dtloc_format_fmt(&context, nullptr), 1);
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_intl_is12hour(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_intl_is12hour(nullptr, &of_format.locale));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_intl_get_bdtfmt(&context, nullptr));
}

TEST_F(Dates, TheLocaleThatIsGivenComesFirst) {
  context.ctxlocale = &of_context.locale;
  of_context.table.is12hour = 1;
  of_context.table.locdateorder_id = 2;
  of_context.table.convertfmt = 3;
  for (CS_LOCALE *const locale : {&of_format.locale, static_cast<CS_LOCALE *>(nullptr)}) {
    const bool given = locale != nullptr;
    EXPECT_EQ(comn_intl_is12hour(&context, locale), given ? 0 : 1);
    EXPECT_EQ(comn_dtloc_is12hour(&context, locale), given ? 0 : 1);
    EXPECT_EQ(comn_dtloc_format(&context, locale), given ? 3 : 2);
    EXPECT_EQ(comn_dtloc_format_fmt(&context, locale), given ? 11 : 3);
    EXPECT_EQ(comn_intl_get_dtfmt(&context, locale), given ? 11 : 3);
  }
  EXPECT_EQ(comn_dtloc_is12hour(nullptr, &of_format.locale), 0);
  EXPECT_EQ(comn_dtloc_format(nullptr, &of_format.locale), 3);
  EXPECT_EQ(comn_dtloc_format_fmt(nullptr, &of_format.locale), 11);
}

TEST_F(Dates, ABigDateTimeHasTheSameStyleUntilItHasItsOwn) {
  EXPECT_EQ(comn_intl_get_bdtfmt(&context, &of_format.locale), 11);
  for (const CS_INT own : {0, -2, 40}) {
    of_format.table.bdtconvertfmt = own;
    EXPECT_EQ(comn_intl_get_bdtfmt(&context, &of_format.locale), own);
    EXPECT_EQ(comn_intl_get_dtfmt(&context, &of_format.locale), 11);
  }
}

TEST_F(Dates, Names) {
  for (CS_INT i = 0; i < 12; ++i)
    for (const CS_INT type : {COM_DT_MONTH, COM_DT_SHORTMONTH}) {
      const std::string name = (type == COM_DT_MONTH ? "month" : "m") + std::to_string(i);
      GuardedBuffer buffer(name.size());
      CS_INT length = -7;
      EXPECT_EQ(comn_intl_month(&context, &of_format.locale, type, i, buffer.text(),
                                static_cast<CS_INT>(name.size()), &length),
                CS_SUCCEED);
      EXPECT_EQ(length, static_cast<CS_INT>(name.size()));
      EXPECT_EQ(buffer.contents(), name);
    }
  context.ctxlocale = &of_format.locale;
  for (CS_INT i = 0; i < 7; ++i) {
    GuardedBuffer buffer(10);
    CS_INT length = -7;
    EXPECT_EQ(comn_intl_day(&context, nullptr, COM_DT_DAYNAME, i, buffer.text(), 10, &length),
              CS_SUCCEED);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(buffer.contents(4), "day" + std::to_string(i));
    EXPECT_TRUE(buffer.is_untouched(4));
  }
  GuardedBuffer buffer(10);
  CS_INT length = -7;
  EXPECT_EQ(comn_intl_dateorder(&context, nullptr, buffer.text(), 10, &length), CS_SUCCEED);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(buffer.contents(3), "ymd");
}

TEST_F(Dates, ANameThatDoesNotFitIsCut) {
  GuardedBuffer buffer(4);
  CS_INT length = -7;
  EXPECT_EQ(
      comn_intl_month(&context, &of_format.locale, COM_DT_MONTH, 0, buffer.text(), 4, &length),
      CS_CONV_TRUNCATED);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(buffer.contents(), "mont");
}

TEST_F(Dates, NamesHaveNumbersAndTypes) {
  char text[20];
  CS_INT length = -7;
  CS_LOCALE *const locale = &of_format.locale;
  for (const CS_INT number : {-1, 12, 2147483647})
    EXPECT_ASSERTION(text_unit, CS_CONV_DOMAIN,
                     comn_intl_month(&context, locale, 7340, number, text, 20, &length));
  for (const CS_INT number : {-1, 7})
    EXPECT_ASSERTION(text_unit, CS_CONV_DOMAIN,
                     comn_intl_day(&context, locale, 7342, number, text, 20, &length));
  for (const CS_INT type : {7339, 7342})
    EXPECT_ASSERTION(text_unit, CS_FAIL,
                     comn_intl_month(&context, locale, type, 0, text, 20, &length));
  for (const CS_INT type : {7341, 7343})
    EXPECT_ASSERTION(text_unit, CS_FAIL,
                     comn_intl_day(&context, locale, type, 0, text, 20, &length));
  EXPECT_NULL_POINTER_CHECK(text_unit, CS_FAIL,
                            comn_intl_month(nullptr, locale, 7340, 0, text, 20, &length));
  EXPECT_NULL_POINTER_CHECK(text_unit, CS_FAIL,
                            comn_intl_month(&context, locale, 7340, 0, nullptr, 20, &length));
  EXPECT_NULL_POINTER_CHECK(text_unit, CS_FAIL,
                            comn_intl_day(&context, locale, 7342, 0, text, 20, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_intl_dateorder(&context, nullptr, text, 20, &length));
  EXPECT_EQ(length, -7);
}

TEST_F(Dates, TheNameOfALocale) {
  MutableText name("de_DE");
  GuardedBuffer buffer(5);
  CS_INT length = -7;
  EXPECT_EQ(com_intl_get_locname(&context, &of_format.cache, buffer.text(), 5, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_TRUE(buffer.is_untouched());
  of_format.cache.locname = name;
  of_format.cache.locnamelen = 5;
  EXPECT_EQ(com_intl_get_locname(&context, &of_format.cache, buffer.text(), 5, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 5);
  EXPECT_EQ(buffer.contents(), "de_DE");
  EXPECT_NULL_POINTER_CHECK(text_unit, CS_FAIL,
                            com_intl_get_locname(&context, nullptr, buffer.text(), 5, &length));
  EXPECT_NULL_POINTER_CHECK(text_unit, CS_FAIL,
                            com_intl_get_locname(&context, &of_format.cache, nullptr, 5, &length));
}

// ---- styles ----

TEST_F(Dates, TheStyleOfAConversionToText) {
  CS_DATAFMT source{};
  of_format.table.convertfmt = 5;
  of_format.table.bdtconvertfmt = 140;
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type) {
    source.datatype = type;
    EXPECT_EQ(comn_get_datetochar_fmt(&context, &source, &format),
              type == 35 || type == 36 ? 140 : 5);
  }
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_get_datetochar_fmt(&context, nullptr, &format));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_get_datetochar_fmt(&context, &source, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_get_datetochar_fmt(nullptr, &source, &format));
}

TEST_F(Dates, AStyleThatTextDoesNotHaveIsZero) {
  CS_DATAFMT source{};
  const auto is_style = [](CS_INT style) {
    return (style >= 0 && style <= 23) || (style >= 36 && style <= 40) ||
           (style >= 100 && style <= 118) || style == 121 || style == 122 ||
           (style >= 136 && style <= 141);
  };
  for (CS_INT style = -200; style <= 300; ++style) {
    of_format.table.convertfmt = style;
    EXPECT_EQ(comn_get_datetochar_fmt(&context, &source, &format), is_style(style) ? style : 0);
  }
}

TEST(DateOrder, EachHasItsStyle) {
  constexpr CS_INT styles[] = {0, 3, 11, 13, 14, 15};
  for (int id = 1; id <= 6; ++id)
    EXPECT_EQ(com__map_dateorder_id_to_fmt(id), styles[id - 1]);
  for (const int id : {-1, 0, 7})
    EXPECT_ASSERTION(unit, 0, com__map_dateorder_id_to_fmt(id));
}

} // namespace
