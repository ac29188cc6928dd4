// A small installation of the test's own, and families of contexts that start from it.
#ifndef ZRVTEST_INSTALLATION_H
#define ZRVTEST_INSTALLATION_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/sortordr.h"

namespace zrvtest {

inline constexpr std::string_view small_identifiers = "[charset]\n"
                                                      "1.1.0.1 = utf8, UTF-8\n"
                                                      "1.1.0.2 = set1, Set-1\n"
                                                      "1.1.0.3 = set2\n"
                                                      "1.1.0.4 = ucs2\n"
                                                      "[collate]\n"
                                                      "1.1.4.1 = binary\n"
                                                      "1.1.4.2 = other\n"
                                                      "[natlang]\n"
                                                      "1.1.5.1 = english\n"
                                                      "1.1.5.2 = german, de\n"
                                                      "[datetime]\n"
                                                      "1.1.3.1 = dates\n"
                                                      "[numeric]\n"
                                                      "1.1.1.1 = numbers\n"
                                                      "[money]\n"
                                                      "1.1.2.1 = coins\n";

inline constexpr std::string_view small_locales =
    "[linux]\n"
    "locale = default, english, utf8\n"
    "locale = de_DE, german, set1, other\n"
    "locale = formats, german, set1, binary, dates, numbers, coins\n";

inline constexpr std::string_view english_dates =
    "[datetime]\n"
    "months = January, February, March, April, May, June, July, August, September, October, "
    "November, December\n"
    "shortmonths = Jan, Feb, Mar, Apr, May, Jun, Jul, Aug, Sep, Oct, Nov, Dec\n"
    "days = Monday, Tuesday, Wednesday, Thursday, Friday, Saturday, Sunday\n"
    "firstday = 7\n"
    "dateorder = mdy\n"
    "is12hour = true\n";

inline constexpr std::string_view german_dates =
    "[datetime]\n"
    "months = Januar, Februar, M\xC3\xA4rz, April, Mai, Juni, Juli, August, September, Oktober, "
    "November, Dezember\n"
    "shortmonths = Jan, Feb, M\xC3\xA4r, Apr, Mai, Jun, Jul, Aug, Sep, Okt, Nov, Dez\n"
    "days = Montag, Dienstag, Mittwoch, Donnerstag, Freitag, Samstag, Sonntag\n"
    "firstday = 1\n"
    "dateorder = dmy\n"
    "is12hour = false\n";

inline std::string binary_sort_order(const std::string &charset, const std::string &name) {
  return "[sortorder]\nclass = \\x01\nid = \\x32\ncharset = " + charset + "\nmenuname = " + name +
         "\nname = " + name + "\ndescription = by bytes\nbinary = true\n";
}

inline std::string empty_charset(const std::string &name, int id) {
  std::string text = "[charset]\nclass = \\x01\nname = " + name + "\nid = \\x" +
                     "0123456789abcdef"[id / 16] + "0123456789abcdef"[id % 16] +
                     "\nimage_size = \\x00\\x00\\x05\\x05\n";
  for (size_t digits : {1000, 1000, 56, 514})
    text += "definition = " + std::string(digits, '0') + "\n";
  return text;
}

// A home directory with files in it. The environment points at it, and says nothing of a locale.
class Installation {
public:
  Installation() {
    if (mkdtemp(home.data()) == nullptr) {
      std::perror("home of the test");
      std::_Exit(125);
    }
    setenv("ZARVEK", home.c_str(), 1);
    for (const char *const variable : {"LC_COLLATE", "LC_CTYPE", "LC_MESSAGE", "LC_MONETARY",
                                       "LC_NUMERIC", "LC_TIME", "LC_ALL", "LANG"})
      unsetenv(variable);
    write("config/objectid.dat", small_identifiers);
    write("locales/locales.dat", small_locales);
    write("locales/message/english/common.loc", english_dates);
    write("locales/message/german/common.loc", german_dates);
    write("locales/money/coins.mon", "[any]\n");
    write("locales/numeric/numbers.num", "[any]\n");
    write("locales/datetime/dates.dt", "[any]\n");
    int id = 1;
    for (const char *const set : {"utf8", "set1", "set2"}) {
      write(charset_file(set, "charset.loc"), empty_charset(set, id++));
      for (const char *const order : {"binary", "other"})
        write(charset_file(set, std::string(order) + ".srt"), binary_sort_order(set, order));
    }
  }
  ~Installation() {
    unsetenv("ZARVEK");
    std::filesystem::remove_all(home);
  }
  Installation(const Installation &) = delete;
  Installation &operator=(const Installation &) = delete;

  static std::string charset_file(const std::string &set, const std::string &file) {
    return "charsets/" + set + "/" + file;
  }

  std::string path(const std::string &name) const { return home + "/" + name; }
  void write(const std::string &name, std::string_view text) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    std::ofstream out(path(name), std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    ASSERT_TRUE(out.good()) << name;
  }
  void remove(const std::string &name) const {
    ASSERT_TRUE(std::filesystem::remove(path(name))) << name;
  }

private:
  std::string home = "/tmp/zrvtest-XXXXXX";
};

// A text that a function wants to write to, although it does not.
class MutableText {
public:
  MutableText(std::string_view text) : bytes(text) {}
  operator CS_CHAR *() { return bytes.data(); }
  CS_INT length() const { return static_cast<CS_INT>(bytes.size()); }

private:
  std::string bytes;
};

// A context with globals of its own, started as far as a test says, and ended whole.
class Family {
public:
  Family() { context.ctxglobals = &globals; }
  ~Family() { end(); }
  Family(const Family &) = delete;
  Family &operator=(const Family &) = delete;

  CS_RETCODE load_identifiers() {
    CS_OID_TABLE *table;
    const CS_RETCODE result = comn_intl_load_globalid(&context, &table);
    globals.ctxoids = table;
    return result;
  }
  CS_RETCODE init() { return comn_intl_init(&context, nullptr, 0); }

  CS_RETCODE load(std::string_view name, CsLocCache **cache) {
    CS_VOID *found = *cache;
    const CS_RETCODE result = comn_intl_load(&context, MutableText(name),
                                             static_cast<CS_INT>(name.size()), &found, nullptr, 0);
    *cache = static_cast<CsLocCache *>(found);
    return result;
  }
  CsLocCache *loaded(std::string_view name) {
    CsLocCache *cache = nullptr;
    EXPECT_EQ(load(name, &cache), CS_SUCCEED) << name;
    return cache;
  }

  // A locale whose six categories are one cache.
  static CS_LOCALE locale_of(CsLocCache *cache) {
    return {cache, cache, cache, cache, cache, cache, nullptr, nullptr};
  }

  // Everything that the start of a client does, without messages.
  void start(std::string_view name = "default") {
    ASSERT_EQ(load_identifiers(), CS_SUCCEED);
    ASSERT_EQ(init(), CS_SUCCEED);
    default_locale = locale_of(loaded(name));
    context.ctxlocale = &default_locale;
  }

  void end() {
    EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
    EXPECT_EQ(com_intl_loccache_drop(&context), CS_SUCCEED);
    EXPECT_EQ(com_intl_chardesc_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_mon_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_num_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_lm_exit(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_drop_globalid(&context, static_cast<CS_OID_TABLE *>(globals.ctxoids)),
              CS_SUCCEED);
    globals.ctxoids = nullptr;
  }

  // The lengths of the lists.
  size_t caches() const {
    size_t count = 0;
    for (auto *cache = static_cast<CsLocCache *>(globals.cmg_lcache); cache != nullptr;
         cache = cache->locnext)
      ++count;
    return count;
  }
  size_t date_tables() const {
    size_t count = 0;
    for (auto *table = static_cast<CS_DATEINFO *>(globals.cmg_datetime); table != nullptr;
         table = table->next)
      ++count;
    return count;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_LOCALE default_locale{};
};

} // namespace zrvtest

#endif
