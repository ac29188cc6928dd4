// The shipped locales: every row loads, says what it must, and leaves nothing behind.
#include <cstdlib>
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

} // namespace
