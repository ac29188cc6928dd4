// Benchmarks of the conversions: integers, floats, money and dates from and to text, text to text, lookup,
// hexadecimal text, raw copies, padding.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "cast_comparisons.h"
#include "comparison.h"
#include "convert_peers.h"
#include "inputs.h"
#include "legacy_members.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/datetime.h"
#include "zrvcomn/numeric.h"

namespace zrvbench {
namespace {

CS_CONTEXT context;
alignas(64) char result[4096];

CS_DATAFMT make_format(CS_INT type, CS_INT maxlength, CS_INT format = 0) {
  CS_DATAFMT made{};
  made.datatype = type;
  made.maxlength = maxlength;
  made.format = format;
  return made;
}

// A conversion with its formats, as an application holds it.
struct Conversion {
  CS_CONV_FUNC function;
  CS_DATAFMT srcfmt, destfmt;
};

// One pass of a conversion over an array of values.
template <class Value>
Pass convert_each(Conversion conversion, std::shared_ptr<std::vector<Value>> values) {
  return [conversion, values]() mutable {
    CS_INT length = 0;
    for (size_t i = 0; i < input_count; ++i) {
      const CS_RETCODE status = conversion.function(&context, &conversion.srcfmt, &(*values)[i],
                                                    &conversion.destfmt, result, &length);
      benchmark::DoNotOptimize(status);
      benchmark::ClobberMemory();
    }
  };
}

// ---- integers to text ----

template <class Value>
Pass snprintf_each(const char *format, std::shared_ptr<std::vector<Value>> values) {
  return [format, values] {
    for (size_t i = 0; i < input_count; ++i) {
      std::snprintf(result, sizeof result, format, (*values)[i]);
      benchmark::ClobberMemory();
    }
  };
}

template <class Value>
void compare_text(const char *member, CS_CONV_FUNC ours, CS_CONV_FUNC to_chars, CS_INT type,
                  const char *printf_format, int max_digits) {
  for (const Sign sign : {Sign::plus, Sign::both}) {
    const auto values = std::make_shared<std::vector<Value>>(
        random_integers<Value>(max_digits, sign, [](Value) { return true; }));
    const CS_DATAFMT srcfmt = make_format(type, sizeof(Value));
    const CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, 64);
    compare({"integer to text",
             member,
             "1 to " + std::to_string(max_digits) + " digits" +
                 (sign == Sign::both ? ", half of them negative" : ""),
             input_count,
             convert_each<Value>({ours, srcfmt, destfmt}, values),
             {{"std::to_chars, wrapped", 0.85,
               convert_each<Value>({to_chars, srcfmt, destfmt}, values)},
              {"snprintf, bare", 0.3, snprintf_each<Value>(printf_format, values)}}});
  }
}

// ---- integers to integers ----

template <class Value>
struct Integer {
  const char *name;
  CS_INT type;
};

template <class Source, class Destination>
void compare_member(const Integer<Source> &source, const Integer<Destination> &destination,
                    CS_CONV_FUNC ours) {
  const CS_DATAFMT eight_bytes = make_format(CS_TYPE_BIGINT, 8);
  const auto add = [&](const char *input, bool clamped) {
    const auto values = std::make_shared<std::vector<Source>>(random_integers<Source>(
        std::numeric_limits<Source>::digits10 + 1, Sign::both,
        [&](Source value) { return std::in_range<Destination>(value) != clamped; }));
    compare({sizeof(Source) > sizeof(Destination) || clamped ? "narrowing" : "widening",
             std::string("comn_") + source.name + "to" + destination.name,
             input,
             input_count,
             convert_each<Source>({ours, make_format(source.type, sizeof(Source)),
                                   make_format(destination.type, sizeof(Destination))},
                                  values),
             {{"copy of 8 bytes, wrapped", 1.2,
               convert_each<Source>({peer_copy_8, eight_bytes, eight_bytes}, values)}}});
  };
  using From = std::numeric_limits<Source>;
  add("in range", false);
  if (!std::in_range<Destination>(From::min()) || !std::in_range<Destination>(From::max()))
    add("clamped", true);
}

template <class Source>
void compare_family(const Integer<Source> &source) {
  // The members come from the matrix, as an application gets them.
  const auto add = [&](const auto &destination) {
    compare_member(source, destination, com_conv_func(&context, source.type, destination.type));
  };
  add(Integer<CS_TINYINT>{"i1", CS_TYPE_TINYINT});
  add(Integer<CS_SMALLINT>{"i2", CS_TYPE_SMALLINT});
  add(Integer<CS_INT>{"i4", CS_TYPE_INT});
  add(Integer<CS_BIGINT>{"i8", CS_TYPE_BIGINT});
  add(Integer<CS_USMALLINT>{"ui2", CS_TYPE_USMALLINT});
  add(Integer<CS_UINT>{"ui4", CS_TYPE_UINT});
  add(Integer<CS_UBIGINT>{"ui8", CS_TYPE_UBIGINT});
}

// ---- lookup ----

void compare_lookup() {
  Random random(22);
  auto pairs = std::make_shared<std::vector<std::pair<CS_INT, CS_INT>>>();
  for (size_t i = 0; i < input_count; ++i)
    pairs->emplace_back(static_cast<CS_INT>(random_below(random, CS_TYPE_COUNT)),
                        static_cast<CS_INT>(random_below(random, CS_TYPE_COUNT)));
  // Both go through a pointer, so that neither gains by how the linker reaches it.
  static CS_CONV_FUNC (*volatile ours)(CS_CONTEXT *, CS_INT, CS_INT) = com_conv_func;
  static CS_CONV_FUNC (*volatile bare)(const CS_CONV_FUNC *, CS_INT, CS_INT) = peer_table_load;
  compare({"lookup",
           "com_conv_func",
           "built-in pairs",
           input_count,
           [pairs, function = ours] {
             for (const auto &[source, destination] : *pairs)
               benchmark::DoNotOptimize(function(&context, source, destination));
           },
           {{"table load in another library", 1.2, [pairs, function = bare] {
               const CS_CONV_FUNC *const table = context.ctxcvttbl.cvttbl;
               for (const auto &[source, destination] : *pairs)
                 benchmark::DoNotOptimize(function(table, source, destination));
             }}}});
}

// ---- hexadecimal text ----

void compare_hexadecimal([[maybe_unused]] size_t digits) {
#ifdef ZRVBENCH_WITH_BOOST
  constexpr size_t calls = 256;
  auto text = std::make_shared<std::string>(random_hex(digits));
  compare({"hexadecimal text",
           "comn_chartobin",
           std::to_string(digits) + " digits",
           calls,
           [text, srcfmt = make_format(CS_TYPE_CHAR, static_cast<CS_INT>(digits)),
            destfmt = make_format(CS_TYPE_BINARY, sizeof result)]() mutable {
             CS_INT length = 0;
             for (size_t i = 0; i < calls; ++i) {
               benchmark::DoNotOptimize(
                   comn_chartobin(&context, &srcfmt, text->data(), &destfmt, result, &length));
               benchmark::ClobberMemory();
             }
           },
           {{"boost::algorithm::unhex", 0.3, [text] {
               for (size_t i = 0; i < calls; ++i) {
                 benchmark::DoNotOptimize(peer_unhex(text->data(), text->size(),
                                                     reinterpret_cast<unsigned char *>(result)));
                 benchmark::ClobberMemory();
               }
             }}}});
#endif
}

// ---- raw copies ----

template <class Value>
void compare_copies(CS_INT type, const char *name, CS_CONV_FUNC peer) {
  const auto values = std::make_shared<std::vector<Value>>(random_integers<Value>(
      std::numeric_limits<Value>::digits10 + 1, Sign::both, [](Value) { return true; }));
  const CS_DATAFMT srcfmt = make_format(type, sizeof(Value));
  for (const auto &[suffix, code, capacity] :
       {std::tuple{"tobin", CS_TYPE_BINARY, CS_INT{sizeof(Value)}},
        std::tuple{"tovarbin", CS_TYPE_VARBINARY, CS_INT{sizeof(CS_VARBINARY)}}})
    compare(
        {"raw copy",
         std::string("comn_") + name + suffix,
         std::to_string(sizeof(Value)) + " bytes",
         input_count,
         convert_each<Value>(
             {com_conv_func(&context, type, code), srcfmt, make_format(code, capacity)}, values),
         {{"memcpy, wrapped", 1.2, convert_each<Value>({peer, srcfmt, srcfmt}, values)}}});
}

using FixedCopy = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                                 CS_INT *, CS_INT);

// Copies whose length is known at run time only: 1 up to `longest` bytes.
void compare_long_copies(const char *member, FixedCopy ours, CS_INT type, CS_INT longest) {
  Random random(23);
  auto lengths = std::make_shared<std::vector<CS_INT>>();
  for (size_t i = 0; i < input_count; ++i)
    lengths->push_back(static_cast<CS_INT>(1 + random_below(random, static_cast<size_t>(longest))));
  static char source[256];
  compare({"raw copy",
           member,
           "1 to " + std::to_string(longest) + " bytes",
           input_count,
           [=, srcfmt = make_format(CS_TYPE_BINARY, 0),
            destfmt = make_format(type, sizeof result)]() mutable {
             CS_INT length = 0;
             for (const CS_INT bytes : *lengths) {
               benchmark::DoNotOptimize(
                   ours(&context, &srcfmt, source, &destfmt, result, &length, bytes));
               benchmark::ClobberMemory();
             }
           },
           {{"memcpy, wrapped", 1.2,
             [=, srcfmt = make_format(CS_TYPE_BINARY, 0),
              destfmt = make_format(CS_TYPE_BINARY, sizeof result)]() mutable {
               CS_INT length = 0;
               for (const CS_INT bytes : *lengths) {
                 srcfmt.maxlength = bytes;
                 benchmark::DoNotOptimize(
                     peer_memcpy(&context, &srcfmt, source, &destfmt, result, &length));
                 benchmark::ClobberMemory();
               }
             }}}});
}

// ---- padding ----

using Pad = CS_RETCODE (*)(CS_INT, CS_DATAFMT *, CS_VOID *, CS_INT *);

// Text of every length below the capacity, filled up to it.
void compare_pad(const char *member, Pad ours, CS_INT type, CS_INT format, CS_INT capacity) {
  Random random(24);
  auto lengths = std::make_shared<std::vector<CS_INT>>();
  for (size_t i = 0; i < input_count; ++i)
    lengths->push_back(
        static_cast<CS_INT>(random_below(random, static_cast<size_t>(capacity) / 2) * 2));
  compare({"padding",
           member,
           "up to " + std::to_string(capacity) + " bytes",
           input_count,
           [=, destfmt = make_format(type, capacity, format)]() mutable {
             for (const CS_INT filled : *lengths) {
               CS_INT length = filled;
               benchmark::DoNotOptimize(ours(filled, &destfmt, result, &length));
               benchmark::ClobberMemory();
             }
           },
           {{"memset, wrapped", 1.2, [=, charfmt = make_format(CS_TYPE_CHAR, capacity)]() mutable {
               for (const CS_INT filled : *lengths) {
                 CS_INT length = filled;
                 benchmark::DoNotOptimize(
                     peer_memset(&context, &charfmt, result, &charfmt, result, &length));
                 benchmark::ClobberMemory();
               }
             }}}});
}

// ---- texts ----

// A locale of the built-in set, or of one whose characters from 0xA1 on have two bytes.
struct TextLocale {
  explicit TextLocale(bool has_two_bytes) : attributes(*com_get_charattrib()) {
    for (int byte = 0; byte < 256; ++byte)
      widths[byte] = has_two_bytes && byte >= 0xA1 ? 2 : 1;
    if (has_two_bytes) {
      attributes.cs_class = attributes.cs_maxcharlen = 2;
      attributes.cs_width_map = widths;
    }
    charset.oid = &oid;
    charset.char_attrib = &attributes;
    for (int month = 0; month < 12; ++month) {
      dates.months[month] = reinterpret_cast<CS_BYTE *>(com__get_months()[month]);
      dates.shortmonths[month] = reinterpret_cast<CS_BYTE *>(com__get_shortmonths()[month]);
    }
    dates.locdateorder_id = com__get_date_order_id();
    cache.locchardesc = &charset;
    cache.locdateinfo = &dates;
    locale.ctypeptr = locale.timeptr = &cache;
  }
  TextLocale(const TextLocale &) = delete;
  TextLocale &operator=(const TextLocale &) = delete;

  CS_BYTE widths[256];
  CHAR_ATTRIB attributes;
  CsOID oid{};
  CsCharDesc charset{};
  CS_DATEINFO dates{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

using Texts = std::shared_ptr<std::vector<std::string>>;

template <class Print>
Texts make_texts(Print print) {
  auto texts = std::make_shared<std::vector<std::string>>();
  texts->reserve(input_count);
  for (size_t i = 0; i < input_count; ++i)
    texts->push_back(print());
  return texts;
}

// One pass of a conversion over texts of any length.
Pass convert_texts(Conversion conversion, Texts texts) {
  return [conversion, texts]() mutable {
    CS_INT length = 0;
    for (std::string &source : *texts) {
      conversion.srcfmt.maxlength = static_cast<CS_INT>(source.size());
      const CS_RETCODE status = conversion.function(&context, &conversion.srcfmt, source.data(),
                                                    &conversion.destfmt, result, &length);
      benchmark::DoNotOptimize(status);
      benchmark::ClobberMemory();
    }
  };
}

template <class Value>
void compare_reading(CS_INT type, CS_CONV_FUNC peer, const char *member, int max_digits) {
  const auto values = random_integers<Value>(max_digits, Sign::both, [](Value) { return true; });
  size_t next = 0;
  const Texts texts = make_texts([&] { return std::to_string(values[next++]); });
  const CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 0), destfmt = make_format(type, 8);
  compare({"text to integer",
           member,
           "1 to " + std::to_string(max_digits) + " digits, half of them negative",
           input_count,
           convert_texts({com_conv_func(&context, CS_TYPE_CHAR, type), srcfmt, destfmt}, texts),
           {{"std::from_chars, wrapped", 0.85, convert_texts({peer, srcfmt, destfmt}, texts)}}});
}

// ---- floats ----

// Doubles of all sizes.
double random_double(Random &random) {
  for (;;) {
    const uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isfinite(value))
      return value;
  }
}

void compare_floats() {
  Random random(25);
  auto values = std::make_shared<std::vector<double>>(input_count);
  for (double &value : *values)
    value = random_double(random);
  size_t next = 0;
  const auto printed = [](const char *format, double value) {
    char text[64];
    return std::string(text, static_cast<size_t>(std::snprintf(text, sizeof text, format, value)));
  };
  const Texts full = make_texts([&] { return printed("%.17g", (*values)[next++]); });
  const Texts brief = make_texts([&] {
    return printed("%.2f", static_cast<double>(random_below(random, 2'000'000)) / 100 - 10'000);
  });
  const CS_DATAFMT as_text = make_format(CS_TYPE_CHAR, 64),
                   as_float = make_format(CS_TYPE_FLOAT, 8);
  for (const auto &[input, texts] :
       {std::pair{"17 digits", full}, std::pair{"short decimals", brief}})
    compare({"text to float",
             "comn_chartoflt8",
             input,
             input_count,
             convert_texts({comn_chartoflt8, as_text, as_float}, texts),
             {{"std::from_chars, wrapped", 1.25,
               convert_texts({peer_flt8_from_chars, as_text, as_float}, texts)},
              {"strtod, wrapped", 0.4, convert_texts({peer_strtod, as_text, as_float}, texts)}}});
  compare({"float to text",
           "comn_flt8tochar",
           "17 digits",
           input_count,
           convert_each<double>({comn_flt8tochar, as_float, as_text}, values),
           {{"std::to_chars, wrapped", 1.1,
             convert_each<double>({peer_flt8_to_chars, as_float, as_text}, values)},
            {"snprintf, wrapped", 0.35,
             convert_each<double>({peer_snprintf_17, as_float, as_text}, values)}}});
}

// ---- money ----

void compare_money() {
  Random random(26);
  auto amounts = std::make_shared<std::vector<CS_MONEY>>();
  auto doubles = std::make_shared<std::vector<double>>();
  const Texts texts = make_texts([&] {
    const auto cents = random_integer<int64_t>(random, 12, Sign::both);
    const auto count = static_cast<uint64_t>(cents * 100);
    amounts->push_back({static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)});
    doubles->push_back(static_cast<double>(cents) / 100);
    char text[32];
    const auto magnitude = static_cast<long long>(cents < 0 ? -cents : cents);
    std::snprintf(text, sizeof text, "%s%lld.%02lld", cents < 0 ? "-" : "", magnitude / 100,
                  magnitude % 100);
    return std::string(text);
  });
  const CS_DATAFMT as_text = make_format(CS_TYPE_CHAR, 64),
                   as_money = make_format(CS_TYPE_MONEY, 8),
                   as_float = make_format(CS_TYPE_FLOAT, 8);
  compare({"text to money",
           "comn_chartomoney",
           "2 decimals",
           input_count,
           convert_texts({comn_chartomoney, as_text, as_money}, texts),
           {{"std::from_chars, double, wrapped", 0.95 * 1.2,
             convert_texts({peer_flt8_from_chars, as_text, as_float}, texts)}}});
  Comparison printing{"money to text",
                      "comn_moneytochar",
                      "2 decimals",
                      input_count,
                      convert_each<CS_MONEY>({comn_moneytochar, as_money, as_text}, amounts),
                      {}};
#ifdef ZRVBENCH_WITH_FMT
  printing.peers.push_back({"fmt::format_to, wrapped", 1.3 * 1.2,
                            convert_each<double>({peer_fmt_amount, as_float, as_text}, doubles)});
  compare(std::move(printing));
#endif
}

// ---- binary to text ----

void compare_binary_to_text([[maybe_unused]] size_t bytes) {
#ifdef ZRVBENCH_WITH_BOOST
  constexpr size_t calls = 256;
  Random random(27);
  auto sources = std::make_shared<std::vector<std::string>>();
  for (size_t i = 0; i < calls; ++i) {
    std::string source(bytes, '\0');
    for (char &byte : source)
      byte = static_cast<char>(random());
    sources->push_back(source);
  }
  const CS_DATAFMT srcfmt = make_format(CS_TYPE_BINARY, 0),
                   destfmt = make_format(CS_TYPE_CHAR, sizeof result);
  compare({"binary to text",
           "comn_bintochar",
           std::to_string(bytes) + " bytes",
           calls,
           convert_texts({comn_bintochar, srcfmt, destfmt}, sources),
           {{"boost::algorithm::hex_lower, wrapped", 0.3,
             convert_texts({peer_hex_lower, srcfmt, destfmt}, sources)}}});
#endif
}

// ---- text to text ----

void compare_text_to_text(TextLocale &locale, bool has_two_bytes, size_t bytes) {
  Random random(28);
  // Of the double-byte set half of the characters have two bytes.
  const Texts texts = make_texts([&] {
    std::string text;
    while (text.size() < bytes) {
      const auto letter = static_cast<char>('a' + random_below(random, 26));
      if (has_two_bytes && text.size() + 1 < bytes && random_below(random, 2) == 0)
        text += {static_cast<char>(0xA3), static_cast<char>(letter | 0x80)};
      else
        text += letter;
    }
    return text;
  });
  CS_DATAFMT format = make_format(CS_TYPE_CHAR, static_cast<CS_INT>(bytes));
  format.locale = &locale.locale;
  Comparison comparison{"text to text",
                        "comn_chartochar",
                        std::to_string(bytes) +
                            (has_two_bytes ? " bytes, double-byte set" : " bytes, same set"),
                        input_count,
                        convert_texts({comn_chartochar, format, format}, texts),
                        {}};
  if (has_two_bytes)
    comparison.peers = {{"a loop over widths, wrapped", 1.2,
                         convert_texts({peer_copy_characters, format, format}, texts)}};
  else
    comparison.peers = {
        {"memcpy, wrapped", 1.5, convert_texts({peer_copy_text, format, format}, texts)}};
  compare(std::move(comparison));
}

// ---- text to date ----

// The parser alone, on the text as it came.
CS_RETCODE parse_date(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *, CS_VOID *dest,
                      CS_INT *destlen) {
  *destlen = sizeof(CS_DATETIME);
  return com__datefromchar_mb(static_cast<CS_DATETIME *>(dest), static_cast<CS_CHAR *>(src),
                              srcfmt->maxlength, 0, com__get_date_order_id(), com__get_months(),
                              com__get_shortmonths(), com_get_charattrib(), nullptr);
}

void compare_dates() {
  Random random(29);
  const Texts texts = make_texts([&] {
    char text[64];
    const auto below = [&](int bound) {
      return static_cast<int>(random_below(random, static_cast<size_t>(bound)));
    };
    const char *const month = com__get_shortmonths()[below(12)];
    std::snprintf(text, sizeof text, "%s %d %d %02d:%02d:%02d", month, 1 + below(28),
                  1900 + below(200), below(24), below(60), below(60));
    return std::string(text);
  });
  const CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 0),
                   destfmt = make_format(CS_TYPE_DATETIME, 8);
  compare(
      {"text to date",
       "comn_chartodatetime",
       "month names, through a locale",
       input_count,
       convert_texts({comn_chartodatetime, srcfmt, destfmt}, texts),
       {{"com__datefromchar_mb alone", 1.5, convert_texts({parse_date, srcfmt, destfmt}, texts)}}});
}

// ---- callers without a context ----

// Calls of a member on one value, with what its signature takes behind the destination.
template <class... Extra>
Pass repeat_legacy(void *address, const std::string &value, CS_INT srclen, CS_INT destlen,
                   Extra... extra) {
  using Function = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT, Extra...);
  const auto function = reinterpret_cast<Function>(address);
  return [=, copy = value]() mutable {
    for (size_t i = 0; i < input_count; ++i) {
      const CS_INT length = function(reinterpret_cast<CS_BYTE *>(copy.data()), srclen,
                                     reinterpret_cast<CS_BYTE *>(result), destlen, extra...);
      benchmark::DoNotOptimize(length);
      benchmark::ClobberMemory();
    }
  };
}

constexpr CS_INT legacy_room = 40;

Pass legacy_pass(const zrvtest::LegacyMember &member, const std::string &value, CS_INT srclen) {
  void *const address = member.address();
  CS_CHAR **const names = nullptr;
  if (member.destination == "num")
    return repeat_legacy(address, value, srclen, legacy_room, CS_INT{18}, CS_INT{4});
  if (member.is_from_text() && member.is_to_date())
    return repeat_legacy(address, value, srclen, legacy_room, names, names, -1);
  if (member.is_to_text() && (member.source == "flt4" || member.source == "flt8"))
    return repeat_legacy(address, value, srclen, legacy_room, static_cast<char *>(nullptr));
  if (member.is_to_text() && member.is_from_date())
    return repeat_legacy(address, value, srclen, legacy_room, names);
  return repeat_legacy(address, value, srclen, legacy_room);
}

// The matrix's conversion of the same value into the same shape, as far as it has it.
void compare_legacy() {
  const auto bytes_of = [](auto value) {
    return std::string(reinterpret_cast<const char *>(&value), sizeof value);
  };
  const auto record_of = [&](const std::string &bytes) {
    std::string record = bytes_of(static_cast<CS_SMALLINT>(bytes.size())) + bytes;
    record.resize(sizeof(CS_VARCHAR));
    return record;
  };
  struct Type {
    CS_INT code;
    std::string value;
  };
  const std::map<std::string, Type> types = {
      {"i1", {CS_TYPE_TINYINT, bytes_of(CS_TINYINT{123})}},
      {"i2", {CS_TYPE_SMALLINT, bytes_of(CS_SMALLINT{123})}},
      {"i4", {CS_TYPE_INT, bytes_of(CS_INT{123})}},
      {"bit", {CS_TYPE_BIT, bytes_of(CS_BIT{1})}},
      {"flt4", {CS_TYPE_REAL, bytes_of(CS_REAL{123.5F})}},
      {"flt8", {CS_TYPE_FLOAT, bytes_of(CS_FLOAT{123.5})}},
      {"money", {CS_TYPE_MONEY, bytes_of(CS_MONEY{0, 1235000})}},
      {"mny4", {CS_TYPE_MONEY4, bytes_of(CS_MONEY4{1235000})}},
      {"num", {CS_TYPE_NUMERIC, {}}},
      {"char", {CS_TYPE_CHAR, "123"}},
      {"varychar", {CS_TYPE_VARCHAR, record_of("123")}},
      {"bin", {CS_TYPE_BINARY, "\1\2\3\4\5\6\7\x08"}},
      {"varybin", {CS_TYPE_VARBINARY, record_of("\1\2\3\4\5\6\7\x08")}},
      {"datetime", {CS_TYPE_DATETIME, {}}},
      {"date", {CS_TYPE_DATETIME, bytes_of(CS_DATETIME{36894, 14584537})}},
      {"date4", {CS_TYPE_DATETIME4, bytes_of(CS_DATETIME4{36894, 810})}},
      {"string", {CS_TYPE_CHAR, {}}},
      {"ntbstring", {CS_TYPE_CHAR, {}}},
      {"binary", {CS_TYPE_BINARY, {}}},
  };
  std::string number(sizeof(CS_NUMERIC), '\0');
  com_chartonum(reinterpret_cast<CS_BYTE *>(const_cast<char *>("123.5")), 5,
                reinterpret_cast<CS_BYTE *>(number.data()), 35, 18, 4);
  const std::map<std::string, CS_INT> pads = {{"char", CS_DFMT_PADBLANK},
                                              {"string", CS_DFMT_PADBLANK | CS_DFMT_NULLTERM},
                                              {"ntbstring", CS_DFMT_NULLTERM},
                                              {"binary", CS_DFMT_PADNULL},
                                              {"bin", CS_DFMT_PADNULL}};
  for (const zrvtest::LegacyMember &member : zrvtest::legacy_members()) {
    const auto source = types.find(member.source), destination = types.find(member.destination);
    if (source == types.end() || destination == types.end() || member.multi_byte || member.styled ||
        member.spelled_with_digit || member.destination == "date")
      continue;
    const CS_CONV_FUNC matrix =
        com_conv_func(&context, source->second.code, destination->second.code);
    if (matrix == nullptr)
      continue;
    std::string value = member.source == "num" ? number : source->second.value;
    if (member.is_to_date() && member.is_from_text())
      value = member.source == "char" ? "Jan 5 2001" : record_of("Jan 5 2001");
    const auto length = static_cast<CS_INT>(
        member.source == "varychar" ? (member.is_to_date() ? 10U : 3U) : value.size());
    const auto pad = pads.find(member.destination);
    CS_DATAFMT srcfmt = make_format(source->second.code, static_cast<CS_INT>(value.size()));
    CS_DATAFMT destfmt =
        make_format(destination->second.code, legacy_room, pad == pads.end() ? 0 : pad->second);
    destfmt.precision = member.destination == "num" ? 18 : 0;
    destfmt.scale = member.destination == "num" ? 4 : 0;
    compare({"without a context, to " + member.destination,
             member.name(),
             "one value",
             input_count,
             legacy_pass(member, value, length),
             {{"the matrix", 1.3, [=, copy = value]() mutable {
                 CS_INT written = 0;
                 for (size_t i = 0; i < input_count; ++i) {
                   const CS_RETCODE status =
                       matrix(&context, &srcfmt, copy.data(), &destfmt, result, &written);
                   benchmark::DoNotOptimize(status);
                   benchmark::ClobberMemory();
                 }
               }}}});
  }
}

} // namespace

void register_comparisons() {
  static TextLocale one_byte(false), two_bytes(true), utf8(false);
  static CsCtxGlobals globals;
  globals.cmg_utf8_charset = &utf8.charset;
  context.ctxglobals = &globals;
  context.ctxlocale = &one_byte.locale;
  com_conv_init(&context);
  // The double-byte set has no entries above 0x0F, so that its widths are lengths.
  peer_widths = two_bytes.widths;
  compare_text<CS_INT>("comn_i4tochar", comn_i4tochar, peer_i4_to_chars, CS_TYPE_INT, "%d", 10);
  compare_text<CS_BIGINT>("comn_i8tochar", comn_i8tochar, peer_i8_to_chars, CS_TYPE_BIGINT, "%lld",
                          19);

  compare_family(Integer<CS_TINYINT>{"i1", CS_TYPE_TINYINT});
  compare_family(Integer<CS_SMALLINT>{"i2", CS_TYPE_SMALLINT});
  compare_family(Integer<CS_INT>{"i4", CS_TYPE_INT});
  compare_family(Integer<CS_BIGINT>{"i8", CS_TYPE_BIGINT});
  compare_family(Integer<CS_USMALLINT>{"ui2", CS_TYPE_USMALLINT});
  compare_family(Integer<CS_UINT>{"ui4", CS_TYPE_UINT});
  compare_family(Integer<CS_UBIGINT>{"ui8", CS_TYPE_UBIGINT});

  compare_reading<CS_INT>(CS_TYPE_INT, peer_i4_from_chars, "comn_chartoi4", 10);
  compare_reading<CS_BIGINT>(CS_TYPE_BIGINT, peer_i8_from_chars, "comn_chartoi8", 19);
  compare_floats();
  compare_money();
  for (const size_t bytes : {16U, 1000U})
    compare_binary_to_text(bytes);
  for (const size_t bytes : {20U, 200U}) {
    compare_text_to_text(one_byte, false, bytes);
    compare_text_to_text(two_bytes, true, bytes);
  }
  compare_dates();
  compare_legacy();

  compare_lookup();

  for (const size_t digits : {32U, 100U, 330U, 1000U, 4000U})
    compare_hexadecimal(digits);

  compare_copies<CS_INT>(CS_TYPE_INT, "i4", peer_copy_4);
  compare_copies<CS_BIGINT>(CS_TYPE_BIGINT, "i8", peer_copy_8);
  compare_long_copies("comn_fixedtobin", comn_fixedtobin, CS_TYPE_BINARY, 33);
  compare_long_copies("comn_fixedtobin", comn_fixedtobin, CS_TYPE_BINARY, 255);
  compare_long_copies("comn_fixedtovarbin", comn_fixedtovarbin, CS_TYPE_VARBINARY, 33);
  compare_long_copies("comn_fixedtovarbin", comn_fixedtovarbin, CS_TYPE_VARBINARY, 255);

  for (const CS_INT capacity : {32, 256}) {
    compare_pad("comn__padchar", comn__padchar, CS_TYPE_CHAR, CS_DFMT_PADBLANK, capacity);
    compare_pad("comn__padbin", comn__padbin, CS_TYPE_BINARY, CS_DFMT_PADNULL, capacity);
    compare_pad("comn__padunichar", comn__padunichar, CS_TYPE_UNICHAR, CS_DFMT_PADBLANK, capacity);
  }

  compare_casts(&context);
}

} // namespace zrvbench
