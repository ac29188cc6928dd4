// Sort orders in files of the test's own, loaded for a character set that exists for them alone.
#ifndef ZRVTEST_SORT_ORDERS_H
#define ZRVTEST_SORT_ORDERS_H

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "zrvcomn/charset.h"
#include "zrvcomn/sortordr.h"

namespace zrvtest {

// A home directory whose only file is charsets/set/order.srt. The environment points at it.
class SortOrderHome {
public:
  explicit SortOrderHome(std::string_view text = {}) {
    if (mkdtemp(home.data()) == nullptr || mkdir((home + "/charsets").c_str(), 0700) != 0 ||
        mkdir((home + "/charsets/set").c_str(), 0700) != 0)
      give_up();
    file = home + "/charsets/set/order.srt";
    setenv("ZARVEK", home.c_str(), 1);
    if (text.data() != nullptr)
      write(text);
  }
  ~SortOrderHome() {
    unsetenv("ZARVEK");
    unlink(file.c_str());
    rmdir((home + "/charsets/set").c_str());
    rmdir((home + "/charsets").c_str());
    rmdir(home.c_str());
  }
  SortOrderHome(const SortOrderHome &) = delete;
  SortOrderHome &operator=(const SortOrderHome &) = delete;

  void write(std::string_view text) const {
    std::FILE *const out = std::fopen(file.c_str(), "w");
    if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out) != text.size() ||
        std::fclose(out) != 0)
      give_up();
  }

  const std::string &path() const { return file; }

private:
  [[noreturn]] static void give_up() {
    std::perror("home of the test");
    std::_Exit(125);
  }

  std::string home = "/tmp/zrvtest-XXXXXX";
  std::string file;
};

// A character set that is loaded as far as sort orders look at it, and a cache that names it. What
// the set has at the end is released.
class SortOrderSet {
public:
  explicit SortOrderSet(const char *charset_name = "set", const char *order_name = "order")
      : charset(charset_name), order(order_name) {
    cache.locchardesc = &description;
    cache.charname = charset.data();
    cache.sortname = order.data();
  }
  ~SortOrderSet() { drop(); }
  SortOrderSet(const SortOrderSet &) = delete;
  SortOrderSet &operator=(const SortOrderSet &) = delete;

  CS_RETCODE load(CsOID *identity) {
    return comn__intl_load_sortorder(&context, identity, &cache, nullptr, 0);
  }
  CS_RETCODE load() { return load(&oid); }
  CS_RETCODE load(const SortOrderHome &home, std::string_view text) {
    home.write(text);
    return load();
  }

  // The table of the order that was loaded last.
  SO_1CLASS *table() { return static_cast<SO_1CLASS *>(cache.locsortorder->char_sort_class); }

  void drop() {
    while (CsSortDesc *const first = description.sort_order) {
      description.sort_order = first->sortnext;
      EXPECT_EQ(comn__sortorder_drop(first), CS_SUCCEED);
    }
    cache.locsortorder = nullptr;
  }

  CS_CONTEXT context{};
  CsCharDesc description{};
  CsLocCache cache{};
  CsOID oid{};

private:
  std::string charset, order;
};

} // namespace zrvtest

#endif
