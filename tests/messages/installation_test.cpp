// The shipped message files: every text of every language, and the names of its months and days.
#include <cctype>
#include <set>

#include "message_fixture.h"
#include "zrvcomn/commaps.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

// What the library raises: the number, and how many parameters its text has.
struct Raised {
  CS_MSGNUM number;
  int parameters;
  const char *state;
};

constexpr Raised raised[] = {
    {17039367, 1, "HY000"},       {17039368, 2, "42000"}, {17039369, 0, "01000"},
    {17040897, 0, "HY000"},       {17040898, 0, "HY001"}, {17040899, 1, "HY000"},
    {17040900, 0, "HY010"},       {17040901, 1, "HY090"}, {17040902, 0, "22021"},
    {17040903, 1, "HY000"},       {17040906, 0, "HY000"}, {COM_TDS_BADTYPE, 0, "HY004"},
    {COM_CS_BADTYPE, 0, "HY004"},
};

class ShippedMessages : public Messages {
protected:
  ShippedMessages() {
    setenv("ZARVEK", ZRVTEST_HOME, 1);
    for (const auto &entry : std::filesystem::directory_iterator(folder_of_languages()))
      languages.insert(entry.path().filename());
  }
  ~ShippedMessages() override { setenv("ZARVEK", home.c_str(), 1); }

  static std::string folder_of_languages() { return ZRVTEST_HOME "/locales/message"; }

  // Turns the locale to another language.
  void speak(const std::string &language) {
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    name = language;
    cache.langname = name.data();
    ASSERT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
    ASSERT_EQ(com_errinit(&context), CS_SUCCEED) << language;
  }

  std::set<std::string> languages;
  std::string name;
};

std::string show(CS_MSGNUM number) {
  return std::to_string(number);
}

TEST_F(ShippedMessages, EveryTextOfEveryLanguage) {
  ASSERT_EQ(languages.size(), 43U);
  CS_INT row = 12;
  for (const std::string &language : languages) {
    speak(language);
    for (CS_MSGNUM number = 1; number <= 4; ++number)
      EXPECT_NE(get(COM_ERRSEC_DEFAULTS, number), "");
    for (const Raised &message : raised) {
      CsErrParams ep;
      if (message.parameters == 2)
        com_ep_sds(&ep, text("api"), &row, text("Parameter"));
      else if (message.parameters == 1)
        com_ep_ss(&ep, text("api"), text("Parameter"));
      else
        com_ep_s(&ep, text("api"));
      const std::string found = line(message.number, ep);
      // All parts come from the file, and every parameter has a place.
      for (CS_MSGNUM number = 2; number <= 4; ++number)
        EXPECT_EQ(found.find(get(COM_ERRSEC_DEFAULTS, number)), std::string::npos) << found;
      EXPECT_EQ(found.find('%'), std::string::npos) << found;
      EXPECT_EQ(found.find("Parameter") != std::string::npos, message.parameters > 0) << found;
      EXPECT_EQ(found.find("12") != std::string::npos && message.number != 17040901,
                message.parameters == 2)
          << found;
      char state[8];
      CS_INT length = 0;
      EXPECT_EQ(com_err_sqlstate(&context, handle(), message.number & 255, COM_ERRSEC_API, state, 8,
                                 &length),
                CS_SUCCEED);
      EXPECT_STREQ(state, message.state) << show(message.number);
    }
    EXPECT_NE(get(COM_ERRSEC_ORIGIN, COM_ERRORIGIN_INTL), "status 0");
  }
}

TEST_F(ShippedMessages, SomeLinesAsTheyLook) {
  CsErrParams ep;
  com_ep_ss(&ep, text("comn_init_cfg"), text("a.cfg"));
  speak("us_english");
  EXPECT_EQ(line(17040899, ep),
            "comn_init_cfg: common library: configuration: The file \"a.cfg\" cannot be opened.");
  speak("german");
  EXPECT_EQ(line(17040899, ep), "comn_init_cfg: gemeinsame Bibliothek: Konfiguration: Die Datei "
                                "\"a.cfg\" kann nicht geöffnet werden.");
  speak("japanese");
  EXPECT_EQ(line(17040899, ep),
            "comn_init_cfg: 共通ライブラリ: 構成: ファイル \"a.cfg\" を開けません。");
}

// The section "datetime" of a language's common.loc.
int read_dates(const std::string &path, intl_dateinfo &info) {
  INTL_LOCFILE file;
  int status = intl_open(path.c_str(), &file);
  if (status != 0)
    return status;
  const char *const section = intl_nextsection(&file, &status);
  EXPECT_STREQ(section, "datetime");
  status = intl_datetime(&file, &info);
  EXPECT_EQ(intl_close(&file), 0);
  return status;
}

TEST_F(ShippedMessages, NamesOfMonthsAndDays) {
  const std::set<std::string> orders = {"mdy", "dmy", "ymd"};
  for (const std::string &language : languages) {
    intl_dateinfo info;
    ASSERT_EQ(read_dates(folder_of_languages() + "/" + language + "/common.loc", info), 0)
        << language;
    std::set<std::string> months, short_months, days;
    for (int i = 0; i < 12; ++i) {
      months.insert(info.months[i]);
      short_months.insert(info.shortmonths[i]);
      EXPECT_STRNE(info.shortmonths[i], "");
    }
    days.insert(std::begin(info.days), std::end(info.days));
    EXPECT_EQ(months.size(), 12U) << language;
    EXPECT_EQ(short_months.size(), 12U) << language;
    EXPECT_EQ(days.size(), 7U) << language;
    EXPECT_EQ(orders.count(info.dateorder), 1U) << language;
  }
}

TEST_F(ShippedMessages, SomeNamesAsTheyAre) {
  intl_dateinfo info;
  ASSERT_EQ(read_dates(folder_of_languages() + "/us_english/common.loc", info), 0);
  EXPECT_STREQ(info.months[0], "January");
  EXPECT_STREQ(info.shortmonths[11], "Dec");
  EXPECT_STREQ(info.days[0], "Monday");
  EXPECT_EQ(info.firstday, 7);
  EXPECT_STREQ(info.dateorder, "mdy");
  EXPECT_EQ(info.is12hour, 1);
  ASSERT_EQ(read_dates(folder_of_languages() + "/german/common.loc", info), 0);
  EXPECT_STREQ(info.months[2], "März");
  EXPECT_STREQ(info.days[6], "Sonntag");
  EXPECT_EQ(info.firstday, 1);
  EXPECT_STREQ(info.dateorder, "dmy");
  EXPECT_EQ(info.is12hour, 0);
}

} // namespace
