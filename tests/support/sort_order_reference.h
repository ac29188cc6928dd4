// Sort orders once more, slowly: what a file compiles to, worked out from its whole list at once,
// and strings compared by spelling all their weights out first.
#ifndef ZRVTEST_SORT_ORDER_REFERENCE_H
#define ZRVTEST_SORT_ORDER_REFERENCE_H

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrvcomn/sortordr.h"

namespace zrvtest {

struct SlowWeight {
  int p, s, t;
  bool operator==(const SlowWeight &) const = default;
};

struct SlowOrder {
  CS_RETCODE result; // what loading the file returns
  int reader_status; // with COM_INTL_ERROR
  S_DESCRIPT header; // as far as it was read
  SO_1CLASS table;   // of a success that is no binary order
  // The same as the list has it, by one byte or two.
  std::map<std::string, SlowWeight> characters;
  std::map<char, std::pair<SlowWeight, SlowWeight>> ligatures;
};

SlowOrder compile_slowly(std::string_view file);

// The signed difference that com__ps_dl_sqlhilo and com__spec_tord return.
int compare_slowly(const SlowOrder &order, std::string_view str1, std::string_view str2);
int compare_ties_slowly(const SlowOrder &order, std::string_view str1, std::string_view str2);

// The file of an order with double characters, ligatures, ties and accents, now and then with a
// mistake. `pick(n)` chooses a number below n.
std::string make_sort_order(const std::function<size_t(size_t)> &pick);

// A header that is complete, without and with the section before it.
extern const char *const sort_order_entries;
extern const char *const sort_order_header;

// A byte as a file spells it.
std::string spell(char byte);

// A value that stands for these bytes, and the values of the bytes of a range, one each.
std::string spell(std::string_view bytes);
std::string entries_of_bytes(int first, int last);

} // namespace zrvtest

#endif
