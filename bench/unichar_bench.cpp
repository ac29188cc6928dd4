// Benchmarks of 16-bit text: values beside the same members of 8-bit text, and text beside ICU.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "test_charset.h"
#include "unichar_peers.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"

namespace zrvbench {
namespace {

// A context whose locale is UTF-8, as that of most users is.
struct World {
  World() {
    charset.oid = &oid;
    charset.char_attrib = tables.get();
    cache.locchardesc = &charset;
    cache.locdateinfo = &dates;
    for (int month = 0; month < 12; ++month) {
      dates.months[month] = reinterpret_cast<CS_BYTE *>(com__get_months()[month]);
      dates.shortmonths[month] = reinterpret_cast<CS_BYTE *>(com__get_shortmonths()[month]);
    }
    dates.locdateorder_id = com__get_date_order_id();
    locale.ctypeptr = locale.timeptr = &cache;
    globals.cmg_utf8_charset = &charset;
    globals.cmg_utf8_ctypeptr = &cache;
    context.ctxglobals = &globals;
    context.ctxlocale = &locale;
  }

  zrvtest::TestCharset tables = zrvtest::TestCharset::utf8();
  CsOID oid{};
  CsCharDesc charset{};
  CS_DATEINFO dates{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
};

World &world() {
  static World the_world;
  return the_world;
}

using Texts = std::shared_ptr<std::vector<std::string>>;

template <class Make>
Texts make_texts(Make make) {
  auto texts = std::make_shared<std::vector<std::string>>();
  texts->reserve(input_count);
  for (size_t i = 0; i < input_count; ++i)
    texts->push_back(make());
  return texts;
}

// The same texts in 16-bit units.
Texts widened(const Texts &texts) {
  size_t next = 0;
  return make_texts([&] {
    char bytes[256];
    CS_INT length = 0;
    CS_DATAFMT destfmt{};
    destfmt.maxlength = sizeof bytes;
    std::string source = (*texts)[next++];
    comn__convert_from_utf8_to_utf16(source.data(), static_cast<CS_INT>(source.size()), &destfmt,
                                     bytes, &length, 1);
    return std::string(bytes, static_cast<size_t>(length));
  });
}

Pass convert_each(CS_CONV_FUNC function, CS_INT from, CS_INT to, const Texts &sources) {
  CS_DATAFMT srcfmt{}, destfmt{};
  srcfmt.datatype = from;
  destfmt.datatype = to;
  destfmt.maxlength = 256;
  return [=]() mutable {
    alignas(64) char result[256];
    CS_INT length = 0;
    for (std::string &source : *sources) {
      srcfmt.maxlength = static_cast<CS_INT>(source.size());
      const CS_RETCODE status =
          function(&world().context, &srcfmt, source.data(), &destfmt, result, &length);
      benchmark::DoNotOptimize(status);
      benchmark::ClobberMemory();
    }
  };
}

struct Value {
  CS_INT type;
  CS_CONV_FUNC from_units, to_units, from_text, to_text;
  const char *from_name, *to_name, *input;
};

void compare_value(const Value &value, const Texts &texts, const Texts &values) {
  constexpr double goal = 2.0;
  compare({"16-bit text to value",
           value.from_name,
           value.input,
           input_count,
           convert_each(value.from_units, CS_TYPE_UNICHAR, value.type, widened(texts)),
           {{"the member from char", goal,
             convert_each(value.from_text, CS_TYPE_CHAR, value.type, texts)}}});
  compare({"value to 16-bit text",
           value.to_name,
           value.input,
           input_count,
           convert_each(value.to_units, value.type, CS_TYPE_UNICHAR, values),
           {{"the member to char", goal,
             convert_each(value.to_text, value.type, CS_TYPE_CHAR, values)}}});
}

template <class T>
std::string bytes_of(T value) {
  return {reinterpret_cast<const char *>(&value), sizeof value};
}

void compare_integers() {
  const auto values = random_integers<CS_INT>(10, Sign::both, [](CS_INT) { return true; });
  size_t next = 0;
  const Texts texts = make_texts([&] { return std::to_string(values[next++]); });
  next = 0;
  compare_value({CS_TYPE_INT, comn_unichartoi4, comn_i4tounichar, comn_chartoi4, comn_i4tochar,
                 "comn_unichartoi4", "comn_i4tounichar", "1 to 10 digits"},
                texts, make_texts([&] { return bytes_of(values[next++]); }));
}

void compare_dates() {
  Random random(16);
  const Texts values = make_texts([&] {
    return bytes_of(CS_DATETIME{static_cast<CS_INT>(random_below(random, 70000)),
                                static_cast<CS_INT>(random_below(random, 25920000))});
  });
  size_t next = 0;
  const Texts texts = make_texts([&] {
    CS_DATETIME value;
    std::memcpy(&value, (*values)[next++].data(), sizeof value);
    char text[64];
    const CS_INT length = com__datetochar(&value, text, sizeof text, 0, com__get_shortmonths());
    return std::string(text, static_cast<size_t>(length));
  });
  compare_value({CS_TYPE_DATETIME, comn_unichartodatetime, comn_datetimetounichar,
                 comn_chartodatetime, comn_datetochar, "comn_unichartodatetime",
                 "comn_datetimetounichar", "style 0"},
                texts, values);
}

// Twenty characters, one in `rare` of two bytes.
void compare_text([[maybe_unused]] size_t rare, [[maybe_unused]] const char *input) {
#ifdef ZRVBENCH_WITH_ICU
  Random random(17);
  const Texts texts = make_texts([&] {
    std::string text;
    for (int i = 0; i < 20; ++i)
      if (rare > 0 && random_below(random, rare) == 0)
        text += {'\xC3', static_cast<char>(0x80 + random_below(random, 64))};
      else
        text += static_cast<char>('a' + random_below(random, 26));
    return text;
  });
  constexpr double goal = 1.3;
  compare({"text to 16-bit text",
           "comn_chartounichar",
           input,
           input_count,
           convert_each(comn_chartounichar, CS_TYPE_CHAR, CS_TYPE_UNICHAR, texts),
           {{"ICU u_strFromUTF8, wrapped", goal,
             convert_each(peer_from_utf8, CS_TYPE_CHAR, CS_TYPE_UNICHAR, texts)}}});
  const Texts units = widened(texts);
  compare({"16-bit text to text",
           "comn_unichartochar",
           input,
           input_count,
           convert_each(comn_unichartochar, CS_TYPE_UNICHAR, CS_TYPE_CHAR, units),
           {{"ICU u_strToUTF8, wrapped", 0,
             convert_each(peer_to_utf8, CS_TYPE_UNICHAR, CS_TYPE_CHAR, units)}}});
#endif
}

} // namespace

void register_comparisons() {
  compare_integers();
  compare_dates();
  compare_text(0, "20 characters of ASCII");
  compare_text(5, "20 characters, one in five accented");
}

} // namespace zrvbench
