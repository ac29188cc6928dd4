// The shipped locales: every row loads, says what it must, and leaves nothing behind.
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "allocation_probe.h"
#include "installation.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

class ShippedLocales : public testing::Test {
protected:
  ShippedLocales() { setenv("ZARVEK", ZRVTEST_HOME, 1); }
  ~ShippedLocales() override { unsetenv("ZARVEK"); }

  // A month of a locale, and the language of its messages.
  static std::string month(Family &family, CsLocCache *cache, CS_INT number) {
    CS_LOCALE locale = Family::locale_of(cache);
    char buffer[100];
    CS_INT length = 0;
    EXPECT_EQ(comn_intl_month(&family.context, &locale, COM_DT_MONTH, number, buffer, sizeof buffer,
                              &length),
              CS_SUCCEED);
    return std::string(buffer, static_cast<size_t>(length));
  }

  const AllocationProbe probe;
};

std::vector<std::string> names() {
  INTL_LOCFILE file;
  int status;
  EXPECT_EQ(intl_open(ZRVTEST_HOME "/locales/locales.dat", &file), 0);
  EXPECT_STREQ(intl_nextsection(&file, &status), "linux");
  std::vector<std::string> all;
  while (intl_nextentry(&file, &status) != nullptr)
    all.emplace_back(intl_nextvalue(&file, &status));
  EXPECT_EQ(status, 0);
  intl_close(&file);
  return all;
}

TEST_F(ShippedLocales, AllLoadAndGo) {
  {
    Family family;
    family.start();
    const std::vector<std::string> all = names();
    EXPECT_GT(all.size(), 700U);
    for (const std::string &name : all) {
      CsLocCache *const cache = family.loaded(name);
      ASSERT_NE(cache, nullptr);
      ASSERT_NE(cache->locdateinfo, nullptr) << name; // every locale knows its dates
      EXPECT_EQ(cache->locdateinfo->id, cache->locmessage->lang_oid);
    }
    EXPECT_EQ(family.caches(), all.size());
    EXPECT_EQ(family.date_tables(), 43U); // one for each language
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(ShippedLocales, TextsComeInTheCharacterSetOfTheLocale) {
  Family family;
  family.start();
  EXPECT_EQ(month(family, family.loaded("de_DE.UTF-8"), 2), "M\xC3\xA4rz");
  EXPECT_EQ(month(family, family.loaded("de_DE"), 2), "M\xE4rz");
  EXPECT_EQ(month(family, family.loaded("fr_FR.ISO-8859-15"), 7), "ao\xFBt");
  EXPECT_EQ(month(family, family.loaded("ru_RU.KOI8-R"), 4), "\xCD\xC1\xD1");
  EXPECT_EQ(month(family, family.loaded("ja_JP.eucJP"), 0), "1\xB7\xEE");
  EXPECT_EQ(month(family, family.loaded("ja_JP.SJIS"), 0), "1\x8C\x8E");
}

// The sections and numbers of a message file.
std::vector<CS_ERRIDX> texts_of(const std::string &path) {
  std::vector<CS_ERRIDX> all;
  INTL_LOCFILE file;
  int status;
  EXPECT_EQ(intl_open(path.c_str(), &file), 0);
  while (const char *const section = intl_nextsection(&file, &status))
    for (const CS_ERRSECTION &known : Comlocsections)
      if (std::string_view(section) == known.errstr)
        while (const char *const number = intl_nextentry(&file, &status))
          all.push_back({known.errtag, std::atoi(number)});
  EXPECT_EQ(intl_close(&file), 0);
  return all;
}

// A character that the set of a locale lacks becomes a question mark, of which the texts have none.
TEST_F(ShippedLocales, EverySetHasTheLettersOfItsLanguages) {
  Family family;
  family.start();
  std::vector<CS_ERRIDX> texts = texts_of(ZRVTEST_HOME "/locales/message/us_english/comnlib.loc");
  EXPECT_GE(texts.size(), 20U);
  std::set<const CS_MESSAGE *> seen; // one for each language in each set
  for (const std::string &name : names()) {
    CsLocCache *const cache = family.loaded(name);
    ASSERT_NE(cache, nullptr);
    if (!seen.insert(cache->locmessage).second)
      continue;
    CS_LOCALE locale = Family::locale_of(cache);
    char buffer[100];
    CS_INT length = 0;
    const auto expect_legible = [&](CS_RETCODE result, CS_INT number) {
      EXPECT_EQ(result, CS_SUCCEED);
      const std::string_view text(buffer, static_cast<size_t>(length));
      EXPECT_FALSE(text.empty());
      EXPECT_EQ(text.find('?'), text.npos) << name << ", month or day " << number << ": " << text;
    };
    for (CS_INT month = 0; month < 12; ++month)
      for (const CS_INT type : {COM_DT_MONTH, COM_DT_SHORTMONTH})
        expect_legible(
            comn_intl_month(&family.context, &locale, type, month, buffer, sizeof buffer, &length),
            month);
    for (CS_INT day = 0; day < 7; ++day)
      expect_legible(comn_intl_day(&family.context, &locale, COM_DT_DAYNAME, day, buffer,
                                   sizeof buffer, &length),
                     day);

    MutableText file("comnlib.loc");
    CS_ERRHAN messages = {&locale, file};
    ASSERT_EQ(com_err_init(&family.context, &messages, const_cast<CS_ERRSECTION *>(Comlocsections),
                           4, texts.data(), static_cast<CS_INT>(texts.size())),
              CS_SUCCEED);
    for (CS_ERRIDX &index : texts) {
      CS_CHAR *text = nullptr;
      ASSERT_EQ(com_err_msg(&family.context, &messages, &index, &text), CS_SUCCEED) << name;
      EXPECT_STRNE(text, "");
      EXPECT_EQ(std::strchr(text, '?'), nullptr) << name << ": " << text;
    }
  }
  EXPECT_GT(seen.size(), 80U);
}

} // namespace
