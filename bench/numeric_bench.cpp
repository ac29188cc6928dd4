// Benchmarks of exact numerics: arithmetic, comparison and text, on operands of 5, 18, 38 and 77
// digits; and of money.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "numeric_peers.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/numeric.h"

namespace zrvbench {
namespace {

constexpr size_t value_count = 4096;
constexpr int widths[] = {5, 18, 38, 77};
constexpr int width_count = 4;

struct Goals {
  double by_width[width_count];
};

// One operand in all its forms.
struct Value {
  std::string digits; // without the point
  std::string text;   // with it
  CS_NUMERIC numeric;
  void *pg = nullptr;
  void *gmp = nullptr;

  const CS_BYTE *magnitude() const { return numeric.array + 1; }
  size_t bytes() const { return size_t{Com__Nume_Prec_To_Len[numeric.precision]} - 1; }
};
using Values = std::shared_ptr<std::vector<Value>>;

std::string random_digits(Random &random, int count, char highest) {
  std::string digits(
      1, static_cast<char>('1' + random_below(random, static_cast<size_t>(highest - '0'))));
  while (static_cast<int>(digits.size()) < count)
    digits += static_cast<char>('0' + random_below(random, 10));
  return digits;
}

Value make_value(const std::string &digits, int precision, int scale) {
  Value value;
  value.digits = digits;
  value.text = digits;
  if (scale > 0)
    value.text.insert(digits.size() - static_cast<size_t>(scale), ".");
  value.numeric = {};
  value.numeric.precision = static_cast<CS_BYTE>(precision);
  value.numeric.scale = static_cast<CS_BYTE>(scale);
  CS_BYTE *dest = value.numeric.array;
  CS_INT length = Com__Nume_Prec_To_Len[precision];
  com__subchartoexctnume(value.text.data(), static_cast<CS_INT>(value.text.size()), &dest, &length,
                         &value.numeric.precision, &value.numeric.scale, 0);
#ifdef ZRVBENCH_WITH_PGTYPES
  value.pg = peer_pg_make(value.text.c_str());
#endif
#ifdef ZRVBENCH_WITH_GMP
  value.gmp = peer_gmp_make(digits.c_str());
#endif
  return value;
}

// Values of exactly so many digits. Those of 77 stay below half of what they can hold, so that
// their sums fit.
Values make_values(unsigned seed, int digits, int scale) {
  Random random(seed);
  auto values = std::make_shared<std::vector<Value>>();
  values->reserve(value_count);
  for (size_t i = 0; i < value_count; ++i)
    values->push_back(
        make_value(random_digits(random, digits, digits == 77 ? '4' : '9'), digits, scale));
  return values;
}

alignas(64) CS_BYTE result_bytes[256];
CS_NUMERIC result_value;

template <class Body>
Pass each(Values a, Values b, Body body) {
  return [a, b, body] {
    for (size_t i = 0; i < value_count; ++i) {
      body((*a)[i], (*b)[i]);
      benchmark::ClobberMemory();
    }
  };
}

using Operation = CS_RETCODE (*)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *);

Pass ours_each(Operation operation, Values a, Values b) {
  return each(a, b, [operation](Value &x, Value &y) {
    benchmark::DoNotOptimize(operation(&x.numeric, &y.numeric, &result_value));
  });
}

#ifdef ZRVBENCH_WITH_PGTYPES
Peer pg_peer(double goal, int (*operation)(void *, void *, void *), Values a, Values b) {
  void *const result = peer_pg_make("0");
  return {"pgtypes", goal, each(a, b, [operation, result](Value &x, Value &y) {
            benchmark::DoNotOptimize(operation(x.pg, y.pg, result));
          })};
}
#endif

std::string input_name(int digits, const char *what = "") {
  return std::to_string(digits) + " digits" + what;
}

void compare_sums(int width, int digits) {
  const int scale = digits / 4;
  const Values a = make_values(31, digits, scale), b = make_values(32, digits, scale);
  for (bool subtract : {false, true}) {
    Comparison row{"add, subtract",
                   subtract ? "comn_numsub" : "comn_numadd",
                   input_name(digits, ", equal shapes"),
                   value_count,
                   ours_each(subtract ? comn_numsub : comn_numadd, a, b),
                   {}};
    const Goals pg{{0.5, 0.2, 0.1, 0.07}}, gmp{{0.4, 0.3, 0.2, 0.15}};
#ifdef ZRVBENCH_WITH_PGTYPES
    row.peers.push_back(pg_peer(pg.by_width[width], subtract ? peer_pg_sub : peer_pg_add, a, b));
#endif
#ifdef ZRVBENCH_WITH_GMP
    row.peers.push_back(
        {"GMP, bytes", gmp.by_width[width], each(a, b, [subtract](Value &x, Value &y) {
           (subtract ? peer_gmp_sub : peer_gmp_add)(x.magnitude(), y.magnitude(), x.bytes(),
                                                    result_bytes);
         })});
#endif
#ifdef ZRVBENCH_WITH_BOOST
    if (sizeof(void *) == 4 && !subtract)
      row.peers.push_back({"Boost, bytes", 0.3, each(a, b, [](Value &x, Value &y) {
                             peer_boost_add(x.magnitude(), y.magnitude(), x.bytes(), result_bytes);
                           })});
#endif
    static_cast<void>(pg);
    static_cast<void>(gmp);
    static_cast<void>(width);
    if (!row.peers.empty())
      compare(row);
  }
#ifdef ZRVBENCH_WITH_PGTYPES
  // The second operand has fewer digits by the difference of the scales, so that the sum fits.
  const int difference = digits / 5;
  const Values c =
      make_values(33, digits - difference, scale > difference ? scale - difference : 0);
  for (bool subtract : {false, true}) {
    Comparison row{"add, subtract",
                   subtract ? "comn_numsub" : "comn_numadd",
                   input_name(digits, ", differing scales"),
                   value_count,
                   ours_each(subtract ? comn_numsub : comn_numadd, a, c),
                   {}};
    row.peers.push_back(pg_peer(0.3, subtract ? peer_pg_sub : peer_pg_add, a, c));
    compare(row);
  }
  const Values close = make_values(34, digits, scale);
  Comparison row{"compare",
                 "comn_numcmp",
                 input_name(digits),
                 value_count,
                 each(a, close,
                      [](Value &x, Value &y) {
                        benchmark::DoNotOptimize(comn_numcmp(&x.numeric, &y.numeric));
                      }),
                 {}};
  row.peers.push_back({"pgtypes", 2.5, each(a, close, [](Value &x, Value &y) {
                         benchmark::DoNotOptimize(peer_pg_cmp(x.pg, y.pg));
                       })});
  compare(row);
#endif
}

void compare_products(int width, int digits) {
  const int half = (digits + 1) / 2, scale = half / 4;
  const Values a = make_values(41, std::min(half, 38), scale),
               b = make_values(42, std::min(half, 38), scale);
  Comparison row{"multiply",
                 "comn_nummul",
                 input_name(digits, ", operands of half"),
                 value_count,
                 ours_each(comn_nummul, a, b),
                 {}};
  const Goals pg{{0.45, 0.18, 0.05, 0.02}};
#ifdef ZRVBENCH_WITH_PGTYPES
  row.peers.push_back(pg_peer(pg.by_width[width], peer_pg_mul, a, b));
#endif
#ifdef ZRVBENCH_WITH_BOOST
  if (sizeof(void *) == 4)
    row.peers.push_back({"Boost, bytes", 0.3, each(a, b, [](Value &x, Value &y) {
                           peer_boost_mul(x.magnitude(), y.magnitude(), x.bytes(), result_bytes);
                         })});
#endif
  static_cast<void>(pg);
  static_cast<void>(width);
  if (!row.peers.empty())
    compare(row);
}

void compare_quotients(int digits) {
  const Values a = make_values(51, digits, 0), b = make_values(52, digits, 0);
  Comparison row{
      "divide", "comn_numdivide", input_name(digits), value_count, ours_each(comn_numdivide, a, b),
      {}};
  // The peers get the dividend with its zeroes, and long enough in bytes for both.
  CS_NUMERIC quotient;
  comn_numdivide(&(*a)[0].numeric, &(*b)[0].numeric, &quotient);
  const int zeroes = quotient.scale;
  auto scaled = std::make_shared<std::vector<Value>>(*a);
  for (Value &value : *scaled) {
    const std::string padded = value.digits + std::string(static_cast<size_t>(zeroes), '0');
    value = make_value(padded, std::min(static_cast<int>(padded.size()), 77), 0);
  }
#ifdef ZRVBENCH_WITH_GMP
  void *const room = peer_gmp_make("0");
  row.peers.push_back(
      {"GMP, scaled", digits == 77 ? 3 : 2.5,
       each(scaled, b, [room](Value &x, Value &y) { peer_gmp_divide(x.gmp, y.gmp, room); })});
#endif
#ifdef ZRVBENCH_WITH_BOOST
  if (sizeof(void *) == 4)
    row.peers.push_back({"Boost, bytes", 0.75, each(scaled, b, [](Value &x, Value &y) {
                           peer_boost_divide(x.magnitude(), x.bytes(), y.magnitude(), y.bytes(),
                                             result_bytes);
                         })});
#endif
  if (!row.peers.empty())
    compare(row);
}

void compare_text(int width, int digits) {
  const Values a = make_values(61, digits, 0);
  Comparison parse{"text to numeric",
                   "com__subchartoexctnume",
                   input_name(digits),
                   value_count,
                   each(a, a,
                        [](Value &x, Value &) {
                          CS_BYTE *dest = result_value.array;
                          CS_INT length = Com__Nume_Prec_To_Len[x.numeric.precision];
                          CS_BYTE precision = x.numeric.precision, scale = 0;
                          benchmark::DoNotOptimize(com__subchartoexctnume(
                              x.text.data(), static_cast<CS_INT>(x.text.size()), &dest, &length,
                              &precision, &scale, 0));
                        }),
                   {}};
  Comparison print{"numeric to text",
                   "comn_numtochar",
                   input_name(digits),
                   value_count,
                   each(a, a,
                        [](Value &x, Value &) {
                          static CS_CONTEXT context;
                          static CS_DATAFMT from, to;
                          from.datatype = CS_TYPE_NUMERIC;
                          to.datatype = CS_TYPE_CHAR;
                          to.maxlength = sizeof result_bytes;
                          CS_INT length;
                          benchmark::DoNotOptimize(comn_numtochar(&context, &from, &x.numeric, &to,
                                                                  result_bytes, &length));
                        }),
                   {}};
  const Goals parse_goals{{0.85, 0.65, 0.55, 0.55}}, print_goals{{0.9, 0.7, 1.0, 1.0}};
#ifdef ZRVBENCH_WITH_GMP
  void *const room = peer_gmp_make("0");
  parse.peers.push_back(
      {"mpz_set_str", parse_goals.by_width[width], each(a, a, [room](Value &x, Value &) {
         benchmark::DoNotOptimize(peer_gmp_set_str(room, x.text.c_str()));
       })});
  print.peers.push_back(
      {"mpz_get_str", print_goals.by_width[width], each(a, a, [](Value &x, Value &) {
         benchmark::DoNotOptimize(peer_gmp_get_str(reinterpret_cast<char *>(result_bytes), x.gmp));
       })});
#endif
#ifdef ZRVBENCH_WITH_BOOST
  if (sizeof(void *) == 4) {
    parse.peers.push_back({"Boost, bytes", 0.75, each(a, a, [](Value &x, Value &) {
                             peer_boost_from_text(x.text.c_str(), result_bytes);
                           })});
    print.peers.push_back({"Boost, bytes", 0.75, each(a, a, [](Value &x, Value &) {
                             benchmark::DoNotOptimize(peer_boost_to_text(
                                 x.magnitude(), x.bytes(), reinterpret_cast<char *>(result_bytes)));
                           })});
  }
#endif
  static_cast<void>(parse_goals);
  static_cast<void>(print_goals);
  static_cast<void>(width);
  if (!parse.peers.empty())
    compare(parse);
  if (!print.peers.empty())
    compare(print);
}

// ---- money ----

// An amount in all its forms.
struct Amount {
  CS_MONEY money;
  uint64_t decimal;
  double real;
  std::string text; // with two decimals
};
using Amounts = std::shared_ptr<std::vector<Amount>>;

// Amounts of up to so many digits, cents included, of both signs.
Amounts make_amounts(unsigned seed, int digits) {
  Random random(seed);
  auto amounts = std::make_shared<std::vector<Amount>>();
  amounts->reserve(value_count);
  for (size_t i = 0; i < value_count; ++i) {
    const auto cents = random_integer<int64_t>(random, digits, Sign::both);
    char text[32];
    std::snprintf(text, sizeof text, "%s%lld.%02lld", cents < 0 ? "-" : "",
                  std::abs(static_cast<long long>(cents)) / 100,
                  std::abs(static_cast<long long>(cents)) % 100);
    const int64_t count = cents * 100;
    amounts->push_back({{static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)},
                        peer_decimal_make(count),
                        static_cast<double>(cents) / 100,
                        text});
  }
  return amounts;
}

template <class Body>
Pass each_amount(Amounts a, Amounts b, Body body) {
  return [a, b, body] {
    for (size_t i = 0; i < value_count; ++i) {
      body((*a)[i], (*b)[i]);
      benchmark::ClobberMemory();
    }
  };
}

void compare_money() {
  static CS_MONEY money_result;
  static uint64_t decimal_result;
  static char room[64];
  const auto arithmetic = [](const char *operation, const char *member,
                             CS_RETCODE (*ours)(CS_MONEY *, CS_MONEY *, CS_MONEY *),
                             void (*peer)(const uint64_t *, const uint64_t *, uint64_t *),
                             double goal, Amounts a, Amounts b) {
    compare({operation,
             member,
             "money",
             value_count,
             each_amount(a, b,
                         [ours](Amount &x, Amount &y) {
                           benchmark::DoNotOptimize(ours(&x.money, &y.money, &money_result));
                         }),
             {{"_Decimal64", goal, each_amount(a, b, [peer](Amount &x, Amount &y) {
                 peer(&x.decimal, &y.decimal, &decimal_result);
               })}}});
  };
  const Amounts a = make_amounts(61, 12), b = make_amounts(62, 12), factors = make_amounts(63, 4);
  arithmetic("add, subtract", "comn_mnyadd", comn_mnyadd, peer_decimal_add, 1.0, a, b);
  arithmetic("add, subtract", "comn_mnysub", comn_mnysub, peer_decimal_sub, 1.0, a, b);
  arithmetic("multiply", "comn_mnymul", comn_mnymul, peer_decimal_mul, 1.2, a, factors);
  compare({"compare",
           "comn_mnycmp",
           "money",
           value_count,
           each_amount(a, b,
                       [](Amount &x, Amount &y) {
                         benchmark::DoNotOptimize(comn_mnycmp(&x.money, &y.money));
                       }),
           {{"_Decimal64", 1.0, each_amount(a, b, [](Amount &x, Amount &y) {
               benchmark::DoNotOptimize(peer_decimal_cmp(&x.decimal, &y.decimal));
             })}}});
  compare({"from text",
           "com__mnyfromchar_mb",
           "money, 2 decimals",
           value_count,
           each_amount(a, b,
                       [](Amount &x, Amount &) {
                         benchmark::DoNotOptimize(com__mnyfromchar_mb(
                             &money_result, x.text.data(), static_cast<CS_INT>(x.text.size()), 0,
                             com_get_charattrib()));
                       }),
           {{"from_chars, double", 0.95, each_amount(a, b, [](Amount &x, Amount &) {
               benchmark::DoNotOptimize(peer_from_chars(x.text.data(), x.text.size()));
             })}}});
  Comparison printing{"to text",
                      "com__mnytochar",
                      "money, 2 decimals",
                      value_count,
                      each_amount(a, b,
                                  [](Amount &x, Amount &) {
                                    benchmark::DoNotOptimize(
                                        com__mnytochar(&x.money, room, sizeof room, 0));
                                  }),
                      {}};
#ifdef ZRVBENCH_WITH_FMT
  printing.peers.push_back({"fmt::format_to", 1.3, each_amount(a, b, [](Amount &x, Amount &) {
                              benchmark::DoNotOptimize(peer_fmt_two_decimals(room, x.real));
                            })});
#endif
  compare(std::move(printing));
}

} // namespace

void register_comparisons() {
  for (int width = 0; width < width_count; ++width) {
    compare_sums(width, widths[width]);
    compare_products(width, widths[width]);
    compare_quotients(widths[width]);
    compare_text(width, widths[width]);
  }
  compare_money();
}

} // namespace zrvbench
