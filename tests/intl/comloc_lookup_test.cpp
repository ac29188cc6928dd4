// The locale's name from the environment, and the row of locales.dat that has it.
#include "check_trap.h"
#include "guarded_buffer.h"
#include "installation.h"
#include "io_probe.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "comloc_lookup.cpp";

// ---- environment ----

class EnvironmentName : public testing::Test {
protected:
  ~EnvironmentName() override {
    for (const char *const variable : variables)
      unsetenv(variable);
    unsetenv("LANG");
  }

  std::string name(CS_INT lctype, CS_INT room = 40, CS_RETCODE expected = CS_SUCCEED) {
    GuardedBuffer buffer(static_cast<size_t>(room));
    EXPECT_EQ(com_intl_envloc(&context, lctype, buffer.text(), room), expected);
    return buffer.text();
  }

  static constexpr const char *variables[] = {"LC_COLLATE", "LC_CTYPE", "LC_MESSAGE", "LC_MONETARY",
                                              "LC_NUMERIC", "LC_TIME",  "LC_ALL"};
  const Installation installation;
  CS_CONTEXT context{};
};

TEST_F(EnvironmentName, EachCategoryHasItsVariable) {
  for (const char *const variable : variables)
    setenv(variable, variable, 1);
  setenv("LANG", "never", 1);
  for (CS_INT lctype = 1; lctype <= 7; ++lctype)
    EXPECT_EQ(name(lctype), variables[lctype - 1]);
}

// LC_ALL does not stand for the others here.
TEST_F(EnvironmentName, LangStandsForAVariableThatIsNotSet) {
  setenv("LANG", "de_DE", 1);
  setenv("LC_ALL", "fr_FR", 1);
  setenv("LC_TIME", "", 1); // counts as not set
  for (CS_INT lctype = 1; lctype <= 6; ++lctype)
    EXPECT_EQ(name(lctype), "de_DE");
  EXPECT_EQ(name(7), "fr_FR");
}

TEST_F(EnvironmentName, WithoutEitherItIsDefault) {
  for (CS_INT lctype = 1; lctype <= 7; ++lctype)
    EXPECT_EQ(name(lctype, 8), "default");
  EXPECT_EQ(context.ctxintlerr, 0);
  EXPECT_EQ(name(1, 7, COM_INTL_ERROR).size(), 6U);
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_ESIZE);
}

TEST_F(EnvironmentName, ANameMustFitWithItsNul) {
  setenv("LC_TIME", "de_DE", 1);
  EXPECT_EQ(name(6, 6), "de_DE");
  EXPECT_EQ(context.ctxintlerr, 0);
  EXPECT_EQ(name(6, 5, COM_INTL_ERROR), "");
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_ESIZE);
  context.ctxintlerr = 0;
  setenv("LANG", "en_US", 1);
  EXPECT_EQ(name(1, 5, COM_INTL_ERROR), "");
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_ESIZE);
}

TEST_F(EnvironmentName, RefusesWrongArguments) {
  char text[20] = "before";
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_envloc(nullptr, 1, text, 20));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_envloc(&context, 1, nullptr, 20));
  for (const CS_INT lctype : {-1, 0, 8})
    EXPECT_ASSERTION(unit, CS_FAIL, com_intl_envloc(&context, lctype, text, 20));
  EXPECT_ASSERTION(unit, CS_FAIL, com_intl_envloc(&context, 1, text, 0));
  EXPECT_STREQ(text, "before");
}

// ---- rows ----

class Lookup : public testing::Test {
protected:
  Lookup() { std::memset(&names, 0xDB, sizeof names); }

  CS_RETCODE find(std::string_view text, std::string_view name) {
    installation.write("locales/locales.dat", text);
    return comn__intl_lookup(&context, MutableText(name), 0, &names, nullptr, 0);
  }

  const Installation installation;
  CS_CONTEXT context{};
  CsLocNames names;
};

void expect_names(const CsLocNames &names, std::initializer_list<std::string_view> expected) {
  struct {
    const CS_CHAR *name;
    CS_INT length;
  } const fields[] = {{names.lang, names.langlen},           {names.charset, names.charsetlen},
                      {names.sortorder, names.sortorderlen}, {names.datetime, names.datetimelen},
                      {names.numeric, names.numericlen},     {names.money, names.moneylen}};
  size_t i = 0;
  for (const std::string_view name : expected) {
    EXPECT_EQ(fields[i].name, name) << i;
    EXPECT_EQ(fields[i].length, static_cast<CS_INT>(name.size())) << i;
    ++i;
  }
  for (; i < 6; ++i) {
    EXPECT_EQ(fields[i].length, 0) << i;
    EXPECT_STREQ(fields[i].name, "") << i;
  }
}

TEST_F(Lookup, AWholeRow) {
  EXPECT_EQ(find("[linux]\n"
                 "locale = x, wrong, wrong\n"
                 "locale = de, german, iso_1, dictionary, dd, nn, mm, more\n"
                 "locale = de, late, late\n",
                 "de"),
            CS_SUCCEED);
  expect_names(names, {"german", "iso_1", "dictionary", "dd", "nn", "mm"});
}

TEST_F(Lookup, ARowMayEndBehindTheCharacterSet) {
  const struct {
    const char *values;
    std::initializer_list<std::string_view> names;
  } rows[] = {
      {"german, iso_1", {"german", "iso_1", "binary"}},
      {"german, iso_1,", {"german", "iso_1", "binary"}},
      {"german, iso_1, \"\", dd", {"german", "iso_1", "binary", "dd"}},
      {"german, iso_1, order", {"german", "iso_1", "order"}},
      {"german, iso_1, order,, nn", {"german", "iso_1", "order", "", "nn"}},
      {"german, iso_1, order,,, mm", {"german", "iso_1", "order", "", "", "mm"}},
      {"german, iso_1, order, dd, nn", {"german", "iso_1", "order", "dd", "nn"}},
  };
  for (const auto &row : rows) {
    std::memset(&names, 0xDB, sizeof names);
    EXPECT_EQ(find(std::string("[linux]\nlocale = de, ") + row.values + "\n", "de"), CS_SUCCEED)
        << row.values;
    expect_names(names, row.names);
  }
}

TEST_F(Lookup, ARowNeedsLanguageAndCharacterSet) {
  for (const char *const row : {"de", "de, german", "de,", "de, , iso_1", "de, german,, order"})
    EXPECT_EQ(
        find(std::string("[linux]\nlocale = ") + row + "\nlocale = de, german, iso_1\n", "de"),
        CS_FAIL)
        << row;
  EXPECT_EQ(context.ctxintlerr, 0);
}

TEST_F(Lookup, OnlyTheSectionOfThePlatformCounts) {
  const std::string row = "locale = de, german, iso_1\n";
  EXPECT_EQ(find("[other]\n" + row, "de"), CS_FAIL);
  EXPECT_EQ(find("[Linux]\n" + row, "de"), CS_FAIL);
  EXPECT_EQ(find("", "de"), CS_FAIL);
  EXPECT_EQ(find("[other]\nkey = 1\n[linux]\n" + row, "de"), CS_SUCCEED);
  // the first one alone
  EXPECT_EQ(find("[linux]\nlocale = fr, french, iso_1\n[linux]\n" + row, "de"), CS_FAIL);
}

TEST_F(Lookup, NamesAreComparedAsTheyStand) {
  const std::string text = "[linux]\nlocale =\nlocale = , a, b\nlocale = de, german, iso_1\n";
  EXPECT_EQ(find(text, "de"), CS_SUCCEED);
  EXPECT_EQ(find(text, "DE"), CS_FAIL);
  EXPECT_EQ(find(text, "d"), CS_FAIL);
  EXPECT_EQ(find(text, "de_DE"), CS_FAIL);
  EXPECT_EQ(find(text, ""), CS_FAIL); // an empty name is no row
  EXPECT_EQ(context.ctxintlerr, 0);
}

// Whatever length comes with the name.
TEST_F(Lookup, TheNameEndsAtItsNul) {
  installation.write("locales/locales.dat", "[linux]\nlocale = de, german, iso_1\n");
  for (const CS_INT length : {-5, 0, 1, 2, 99})
    EXPECT_EQ(comn__intl_lookup(&context, MutableText("de"), length, &names, nullptr, 0),
              CS_SUCCEED);
  EXPECT_EQ(comn__intl_lookup(&context, MutableText("de_DE"), 2, &names, nullptr, 0), CS_FAIL);
}

TEST_F(Lookup, AStrangeKeyBeforeTheRowEndsIt) {
  const std::string row = "locale = de, german, iso_1\n";
  EXPECT_EQ(find("[linux]\nlocales = x\n" + row, "de"), CS_FAIL);
  EXPECT_EQ(find("[linux]\nLocale = x\n" + row, "de"), CS_FAIL);
  EXPECT_EQ(find("[linux]\n" + row + "other = x\n", "de"), CS_SUCCEED);
}

TEST_F(Lookup, TheLongestName) {
  const std::string longest(255, 'n');
  EXPECT_EQ(
      find("[linux]\nlocale = de, " + longest + ", \\\n" + longest + ", \\\n" + longest + "\n",
           "de"),
      CS_SUCCEED);
  expect_names(names, {longest, longest, longest});
  for (const char *const before : {"", "german, ", "german, iso_1, a, b, c, "}) {
    const size_t descriptors = open_descriptors();
    EXPECT_ASSERTION(unit, CS_FAIL,
                     find(std::string("[linux]\nlocale = de, ") + before + longest + "n\n", "de"));
    EXPECT_EQ(open_descriptors(), descriptors);
  }
}

TEST_F(Lookup, TellsTheFile) {
  GuardedBuffer path(200);
  EXPECT_EQ(comn__intl_lookup(&context, MutableText("default"), 7, &names, path.text(), 200),
            CS_SUCCEED);
  EXPECT_EQ(path.text(), installation.path("locales/locales.dat"));
  installation.remove("locales/locales.dat");
  GuardedBuffer again(200);
  EXPECT_EQ(comn__intl_lookup(&context, MutableText("default"), 7, &names, again.text(), 200),
            COM_LOCFILE_ERROR);
  EXPECT_EQ(again.text(), installation.path("locales/locales.dat"));
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_EOPEN);
}

TEST_F(Lookup, FailsWithTheStatusOfTheReader) {
  const std::string bad_value = "\"open\n";
  for (const std::string &text :
       {std::string("x\n"), "[linux]\nlocale = " + bad_value, "[linux]\nlocale = de, " + bad_value,
        "[linux]\nlocale = de, german, " + bad_value,
        "[linux]\nlocale = de, german, iso_1, " + bad_value,
        "[linux]\nlocale = de, german, iso_1, a, b, c, " + bad_value,
        std::string("[linux]\nlocale = x\nlocale\n")}) {
    context.ctxintlerr = 0;
    EXPECT_EQ(find(text, "de"), COM_INTL_ERROR) << text;
    EXPECT_EQ(context.ctxintlerr, ZRVINTL_ESYNTAX) << text;
  }
}

TEST_F(Lookup, FailsWithEachIoOperation) {
  EXPECT_EQ(fail_each_io([this] {
              const CS_RETCODE result =
                  comn__intl_lookup(&context, MutableText("de_DE"), 5, &names, nullptr, 0);
              EXPECT_TRUE(result == CS_SUCCEED || result == COM_INTL_ERROR ||
                          result == COM_LOCFILE_ERROR);
              return result != CS_SUCCEED;
            }),
            3U); // open, read, close
}

TEST_F(Lookup, RefusesNullPointers) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_lookup(nullptr, MutableText("de"), 2, &names, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_lookup(&context, nullptr, 2, &names, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_lookup(&context, MutableText("de"), 2, nullptr, nullptr, 0));
}

} // namespace
