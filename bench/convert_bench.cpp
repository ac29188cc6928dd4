// Benchmarks of the conversions: integers, lookup, hexadecimal text, raw copies, padding.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "convert_peers.h"
#include "inputs.h"

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

} // namespace

void register_comparisons() {
  com_conv_init(&context);
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
}

} // namespace zrvbench
