// Sort orders in files of the test's own, loaded for a character set that exists for them alone.
#ifndef ZRVTEST_SORT_ORDERS_H
#define ZRVTEST_SORT_ORDERS_H

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "home_file.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/sortordr.h"

namespace zrvtest {

// A home directory whose only file is charsets/set/order.srt. The environment points at it.
class SortOrderHome : public HomeFile {
public:
  explicit SortOrderHome(std::string_view text = {}) : HomeFile("charsets/set/order.srt") {
    if (text.data() != nullptr)
      write(text);
  }
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
