// Checks how shipped sort orders put short strings against ranks on standard input.
//
//   order SET NAME       the order that what follows is about
//   HEX RANK             a string, and its rank: equal for strings that are equal
//
// All pairs are compared through the library. Prints each pair that comes out otherwise, and ends with
// 1 if there is one, or an order that does not load.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "zrvcomn/charset.h"
#include "zrvcomn/sortordr.h"

namespace {

struct Ranked {
  std::string bytes, hex;
  int rank;
};

int sign(int value) {
  return (value > 0) - (value < 0);
}

bool check(std::string charset, std::string name, std::vector<Ranked> &strings) {
  CS_CONTEXT context{};
  CsCharDesc description{};
  CsLocCache cache{};
  CsOID oid{};
  cache.locchardesc = &description;
  cache.charname = charset.data();
  cache.sortname = name.data();
  const CS_RETCODE result = comn__intl_load_sortorder(&context, &oid, &cache, nullptr, 0);
  if (result != CS_SUCCEED) {
    std::printf("%s %s does not load: %d\n", charset.c_str(), name.c_str(), result);
    return false;
  }
  CS_VOID *const table = cache.locsortorder->char_sort_class;
  bool holds = (table == nullptr) == strings.empty();
  for (Ranked &first : strings)
    for (Ranked &second : strings) {
      const int order =
          com_ps_dl_sqlhilo(table, first.bytes.data(), static_cast<CS_INT>(first.bytes.size()),
                            second.bytes.data(), static_cast<CS_INT>(second.bytes.size()));
      if (order == sign(first.rank - second.rank))
        continue;
      std::printf("%s %s: %s to %s is %d\n", charset.c_str(), name.c_str(), first.hex.c_str(),
                  second.hex.c_str(), order);
      holds = false;
    }
  comn__sortorder_drop(cache.locsortorder);
  return holds;
}

std::string bytes_of(const std::string &hex) {
  std::string bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

} // namespace

int main() {
  bool holds = true;
  size_t orders = 0;
  std::string charset, name;
  std::vector<Ranked> strings;
  const auto finish = [&] {
    if (!charset.empty()) {
      holds = check(charset, name, strings) && holds;
      ++orders;
    }
    strings.clear();
  };
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string first, second;
    words >> first >> second;
    if (first == "order") {
      finish();
      charset = second;
      words >> name;
    } else {
      strings.push_back({bytes_of(first), first, std::stoi(second)});
    }
  }
  finish();
  std::printf("%zu orders\n", orders);
  return holds ? 0 : 1;
}
