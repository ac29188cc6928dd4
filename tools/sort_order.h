// Sort orders of the installation, and what is wrong with the file of one.
#ifndef ZRVTOOL_SORT_ORDER_H
#define ZRVTOOL_SORT_ORDER_H

#include <string>
#include <string_view>
#include <vector>

#include "zrvcomn/charset.h"
#include "zrvcomn/sortordr.h"

namespace zrvtool {

// A sort order that compares texts as the library does.
class SortOrder {
public:
  // Throws UsageError when the installation has no such order, StreamError when it does not load.
  SortOrder(const std::string &charset, const std::string &name);
  ~SortOrder();
  SortOrder(const SortOrder &) = delete;
  SortOrder &operator=(const SortOrder &) = delete;

  // Negative, 0 or positive: the order, then the order among equals.
  int compare(std::string_view first, std::string_view second) const;

private:
  CsCharDesc charset_record{};
  CsOID identity{};
  CS_VOID *table = nullptr;
};

// One line or record, and the text by which it is sorted.
struct SortItem {
  std::string_view key, text;
};

// Sorts; what is equal stays as it came, or with `only_unique` leaves the first of it alone.
void sort_items(const SortOrder &order, std::vector<SortItem> &items, bool is_reverse,
                bool only_unique);

struct SortOrderReport {
  bool is_good;
  std::string text; // what the file holds, or the line and what is wrong there
};

// Compiles the file at a path. Throws UsageError when it cannot be opened.
SortOrderReport check_sort_order(const std::string &path);

} // namespace zrvtool

#endif
