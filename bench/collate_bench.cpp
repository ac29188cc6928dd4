// Benchmarks of comparison under a compiled sort order, beside a plain loop over its weights and the
// collator of ICU, and of loading an order.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "collate_peers.h"
#include "comparison.h"
#include "inputs.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/sortordr.h"

namespace zrvbench {
namespace {

// An order of iso_1, loaded anew.
struct Loaded {
  explicit Loaded(std::string order) {
    CS_CONTEXT context{};
    CsLocCache cache{};
    std::string charset = "iso_1";
    cache.charname = charset.data();
    cache.sortname = order.data();
    cache.locchardesc = &set;
    if (comn__intl_load_sortorder(&context, &oid, &cache, nullptr, 0) != CS_SUCCEED) {
      std::fprintf(stderr, "collate_bench: cannot load a sort order\n");
      std::exit(1);
    }
  }
  ~Loaded() { comn__sortorder_drop(set.sort_order); }
  Loaded(const Loaded &) = delete;
  Loaded &operator=(const Loaded &) = delete;

  SO_1CLASS *table() const { return static_cast<SO_1CLASS *>(set.sort_order->char_sort_class); }

  CsCharDesc set{};
  CsOID oid{};
};

using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string random_words(Random &random, size_t length) {
  std::string text;
  while (text.size() < length)
    text += random_below(random, 7) == 0 ? ' ' : static_cast<char>('a' + random_below(random, 26));
  text.back() = 'e';
  return text;
}

char other_case(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

// What the two strings of a pair have in common.
Pairs make_pairs(const std::string &kind, size_t length) {
  Random random(7 + length);
  Pairs pairs;
  for (int i = 0; i < 256; ++i) {
    std::string first = random_words(random, length), second = first;
    if (kind == "differ at the end")
      second.back() = 'h';
    else if (kind == "differ by case alone")
      for (char &c : second)
        c = random_below(random, 2) == 0 ? other_case(c) : c;
    else if (kind == "one accent at the start")
      second[0] = first[0] = 'a', second[0] = '\xe1';
    else if (kind == "differ anywhere")
      second = random_words(random, length);
    else if (kind == "ligatures throughout")
      for (size_t at = 0; at < length; at += 5)
        first[at] = second[at] = '\xe6', second[length - 1] = 'f';
    pairs.emplace_back(first, second);
  }
  return pairs;
}

void compare_strings(const Loaded &order, const char *kind, size_t length, double loop_goal) {
  SO_1CLASS *const so = order.table();
  const auto pairs = std::make_shared<Pairs>(make_pairs(kind, length));
  const auto size = static_cast<CS_INT>(length);
  std::vector<Peer> peers = {{"plain loop over weights", loop_goal, [=] {
                                for (auto &[first, second] : *pairs)
                                  benchmark::DoNotOptimize(peer_compare_weights(
                                      so, first.data(), size, second.data(), size));
                              }}};
#ifdef ZRVBENCH_WITH_ICU
  const auto wide = std::make_shared<std::vector<std::pair<std::u16string, std::u16string>>>();
  for (const auto &[first, second] : *pairs) {
    const auto widen = [](const std::string &text) {
      std::u16string result;
      for (const char c : text)
        result += static_cast<unsigned char>(c);
      return result;
    };
    wide->emplace_back(widen(first), widen(second));
  }
  peers.push_back({"ucol_strcoll", 0.2, [=] {
                     for (const auto &[first, second] : *wide)
                       benchmark::DoNotOptimize(icu_compare(first.data(), second.data(), size));
                   }});
#endif
  compare({"compare strings", "com_ps_dl_sqlhilo", std::to_string(length) + " bytes, " + kind,
           pairs->size(),
           [=] {
             for (auto &[first, second] : *pairs)
               benchmark::DoNotOptimize(
                   com_ps_dl_sqlhilo(so, first.data(), size, second.data(), size));
           },
           std::move(peers)});
}

} // namespace

void register_comparisons() {
  static const Loaded order("nocase");
  for (const size_t length : {20U, 100U, 1000U}) {
    compare_strings(order, "equal", length, 0.4);
    for (const char *const kind :
         {"differ at the end", "differ by case alone", "one accent at the start", "differ anywhere",
          "ligatures throughout"})
      compare_strings(order, kind, length, 1.0);
  }
  for (const char *const name : {"dictionary", "spanish_traditional"})
    compare({"load a sort order",
             "comn__intl_load_sortorder",
             name,
             1,
             [name] { benchmark::DoNotOptimize(Loaded(name).table()); },
             {}});
}

} // namespace zrvbench
