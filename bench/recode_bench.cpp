// Benchmarks of conversions between character sets, on short and on long texts. A converter is kept on
// either side.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "recode_peers.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comfou.h"
#include "zrvcomn/comloc.h"

namespace zrvbench {
namespace {

[[noreturn]] void give_up(const char *what) {
  std::fprintf(stderr, "recode_bench: %s\n", what);
  std::exit(1);
}

constexpr size_t short_text = 20, long_text = 64000;

size_t repeats_of(size_t characters) {
  return characters > 1000 ? 1 : 1000;
}

std::string size_name(size_t characters) {
  return characters > 1000 ? "64,000 characters" : std::to_string(characters) + " characters";
}

// So many characters of a sample, over and over.
std::u16string repeated(const std::u16string &sample, size_t characters) {
  std::u16string text;
  while (text.size() < characters)
    text += sample.substr(0, characters - text.size());
  return text;
}

const std::u16string english = u"The quick brown fox jumps over the lazy dog. ";
const std::u16string mixed = u"Ελλάδα, Україна, España, 日本 and भारत; ";
const std::u16string french = u"Été à Noël, où le cœur s'étonne; garçon. ";
const std::u16string japanese = u"東京都は日本の首都です。ひらがなとカタカナ。";

std::string utf8_of(const std::u16string &text) {
  std::string result(3 * text.size(), '\0');
  int written = 0;
  if (com__fou_utf16_to_utf8(const_cast<char16_t *>(text.data()), static_cast<int>(2 * text.size()),
                             result.data(), static_cast<int>(result.size()), nullptr, &written,
                             nullptr, 0) != 0)
    give_up("a sample is no UTF-16");
  result.resize(static_cast<size_t>(written));
  return result;
}

template <class Call>
Pass repeat(size_t repeats, Call call) {
  return [repeats, call] {
    for (size_t i = 0; i < repeats; ++i)
      call();
  };
}

#ifdef ZRVBENCH_WITH_ICU
void compare_transcoders(const char *input, const std::u16string &sample, size_t characters,
                         double goal) {
  const auto wide = std::make_shared<std::u16string>(repeated(sample, characters));
  const auto narrow = std::make_shared<std::string>(utf8_of(*wide));
  const auto wide_room = std::make_shared<std::u16string>(wide->size(), u'\0');
  const auto narrow_room = std::make_shared<std::string>(narrow->size(), '\0');
  const size_t repeats = repeats_of(characters);
  const std::string name = std::string(input) + ", " + size_name(characters);
  compare({"UTF-8 to UTF-16",
           "com__fou_utf8_to_utf16",
           name,
           repeats,
           repeat(repeats,
                  [=] {
                    int written;
                    benchmark::DoNotOptimize(com__fou_utf8_to_utf16(
                        narrow->data(), static_cast<int>(narrow->size()), wide_room->data(),
                        static_cast<int>(2 * wide_room->size()), nullptr, &written, nullptr, 0));
                  }),
           {{"u_strFromUTF8", goal, repeat(repeats, [=] {
               benchmark::DoNotOptimize(
                   peers::icu_from_utf8(wide_room->data(), static_cast<int>(wide_room->size()),
                                        narrow->data(), static_cast<int>(narrow->size())));
             })}}});
  compare({"UTF-16 to UTF-8",
           "com__fou_utf16_to_utf8",
           name,
           repeats,
           repeat(repeats,
                  [=] {
                    int written;
                    benchmark::DoNotOptimize(com__fou_utf16_to_utf8(
                        wide->data(), static_cast<int>(2 * wide->size()), narrow_room->data(),
                        static_cast<int>(narrow_room->size()), nullptr, &written, nullptr, 0));
                  }),
           {{"u_strToUTF8", goal, repeat(repeats, [=] {
               benchmark::DoNotOptimize(
                   peers::icu_to_utf8(narrow_room->data(), static_cast<int>(narrow_room->size()),
                                      wide->data(), static_cast<int>(wide->size())));
             })}}});
}
#endif

// A set of the library, by number, with the converter that an application keeps.
struct Set {
  Set(int number, UNICONV_CID cid) {
    attributes.cs_id = static_cast<CS_BYTE>(number);
    charset.oid = &oid;
    charset.char_attrib = &attributes;
    cache.locchardesc = &charset;
    locale.ctypeptr = &cache;
    context.ctxlocale = &locale;
    context.ctxglobals = &globals;
    if (uniconv_HandleGet(cid, &handle) != UNICONV_SUCCEED)
      give_up("a converter is missing");
  }
  ~Set() { uniconv_HandleFree(handle); }
  Set(const Set &) = delete;
  Set &operator=(const Set &) = delete;

  CsOID oid{};
  CHAR_ATTRIB attributes{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
  CVTH handle = nullptr;
};

void compare_engine(const char *operation, const char *iconv_name, int number, UNICONV_CID cid,
                    const std::u16string &sample, size_t characters, double goal_there,
                    double goal_back) {
  const auto set = std::make_shared<Set>(number, cid);
  const auto utf8 = std::make_shared<std::string>(utf8_of(repeated(sample, characters)));
  const auto text = std::make_shared<std::string>(4 * utf8->size(), '\0');
  const auto room = std::make_shared<std::string>(4 * utf8->size(), '\0');
  const std::shared_ptr<void> there(peers::iconv_keep("UTF-8", iconv_name), peers::iconv_release);
  const std::shared_ptr<void> back(peers::iconv_keep(iconv_name, "UTF-8"), peers::iconv_release);
  const long length =
      peers::iconv_run(back.get(), text->data(), text->size(), utf8->data(), utf8->size());
  if (length < 0)
    give_up("a sample is not in its set");
  text->resize(static_cast<size_t>(length));
  const size_t repeats = repeats_of(characters);
  const std::string name = std::string(operation) + ", " + size_name(characters);
  std::vector<Peer> peers_there = {
      {"iconv", goal_there, repeat(repeats, [=] {
         benchmark::DoNotOptimize(
             peers::iconv_run(there.get(), room->data(), room->size(), text->data(), text->size()));
       })}};
  compare({std::string(operation) + " to UTF-8", "comn__convt_to_utf8", name, repeats,
           repeat(repeats,
                  [=] {
                    CS_DATAFMT srcfmt;
                    srcfmt.maxlength = static_cast<CS_INT>(text->size());
                    CS_INT written;
                    comn_set_persistent_handle(set->handle);
                    benchmark::DoNotOptimize(comn__convt_to_utf8(
                        &set->context, 0, &srcfmt, &set->cache, text->data(), room->data(),
                        static_cast<CS_INT>(utf8->size()), &written));
                  }),
           peers_there});
  compare({"UTF-8 to " + std::string(operation),
           "comn__convt_from_utf8",
           name,
           repeats,
           repeat(repeats,
                  [=] {
                    CS_DATAFMT destfmt;
                    destfmt.maxlength = static_cast<CS_INT>(text->size());
                    CS_INT written;
                    comn_set_persistent_handle(set->handle);
                    benchmark::DoNotOptimize(comn__convt_from_utf8(
                        &set->context, 0, reinterpret_cast<CS_BYTE *>(utf8->data()),
                        static_cast<CS_INT>(utf8->size()), &destfmt, &set->cache, room->data(),
                        &written));
                  }),
           {{"iconv", goal_back, repeat(repeats, [=] {
               benchmark::DoNotOptimize(peers::iconv_run(back.get(), room->data(), room->size(),
                                                         utf8->data(), utf8->size()));
             })}}});
}

#ifdef ZRVBENCH_WITH_ICU
void compare_double_byte_decoding(size_t characters) {
  const auto set = std::make_shared<Set>(141, 50);
  const std::string utf8 = utf8_of(repeated(japanese, characters));
  const auto text = std::make_shared<std::string>(utf8.size() + 1, '\0');
  const std::shared_ptr<void> back(peers::iconv_keep("SHIFT_JIS", "UTF-8"), peers::iconv_release);
  const long length =
      peers::iconv_run(back.get(), text->data(), text->size(), utf8.data(), utf8.size());
  if (length < 0)
    give_up("a sample is not in its set");
  text->resize(static_cast<size_t>(length));
  const auto room = std::make_shared<std::u16string>(2 * text->size() + 1, u'\0');
  const std::shared_ptr<void> icu(peers::icu_open("shift_jis"), peers::icu_close);
  const size_t repeats = repeats_of(characters);
  compare({"double-byte set to UTF-16",
           "uniconv_unistrFromS",
           size_name(characters),
           repeats,
           repeat(repeats,
                  [=] {
                    int written;
                    benchmark::DoNotOptimize(uniconv_unistrFromS(
                        set->handle, reinterpret_cast<UChar16 *>(room->data()),
                        static_cast<int>(room->size()),
                        reinterpret_cast<const UChar8 *>(text->c_str()), &written));
                  }),
           {{"ucnv_toUChars", 1.0, repeat(repeats, [=] {
               benchmark::DoNotOptimize(
                   peers::icu_decode(icu.get(), room->data(), static_cast<int>(room->size()),
                                     text->data(), static_cast<int>(text->size())));
             })}}});
}
#endif

void compare_table_loop() {
  std::string sample;
  for (const char16_t unit : repeated(french, long_text))
    sample += unit < 256 ? static_cast<char>(unit) : 'x';
  const auto text = std::make_shared<std::string>(sample);
  const auto room = std::make_shared<std::string>(text->size(), '\0');
  const auto table = std::make_shared<std::string>(256, '?');
  for (int byte = 0; byte < 256; ++byte)
    (*table)[static_cast<size_t>(byte)] =
        byte < 160 ? static_cast<char>(byte) : static_cast<char>(Hi_iso1_to_cp850[byte - 160]);
  compare({"one-byte function",
           "com__fou_iso1_to_cp850",
           "64,000 characters",
           1,
           [=] {
             int sused, dused;
             benchmark::DoNotOptimize(com__fou_iso1_to_cp850(
                 reinterpret_cast<CS_BYTE *>(text->data()), static_cast<int>(text->size()),
                 reinterpret_cast<CS_BYTE *>(room->data()), static_cast<int>(room->size()), &sused,
                 &dused));
           },
           {{"a bare table loop", 1.0, [=] {
               peers::table_loop(reinterpret_cast<unsigned char *>(room->data()),
                                 reinterpret_cast<const unsigned char *>(text->data()),
                                 text->size(),
                                 reinterpret_cast<const unsigned char *>(table->data()));
               benchmark::ClobberMemory();
             }}}});
}

void compare_ascii(size_t bytes) {
  const auto from = std::make_shared<Set>(1, 1);
  const auto to = std::make_shared<Set>(2, 1);
  const auto text = std::make_shared<std::string>(bytes, 'x');
  const auto room = std::make_shared<std::string>(bytes, '\0');
  const auto pass = [=](auto convert) {
    return repeat(1000, [=] {
      CS_DATAFMT srcfmt, destfmt;
      srcfmt.datatype = destfmt.datatype = CS_TYPE_CHAR;
      srcfmt.maxlength = destfmt.maxlength = static_cast<CS_INT>(text->size());
      srcfmt.locale = &from->locale;
      destfmt.locale = &to->locale;
      CS_INT written;
      benchmark::DoNotOptimize(
          convert(&from->context, &srcfmt, text->data(), &destfmt, room->data(), &written));
      benchmark::ClobberMemory();
    });
  };
  compare({"ASCII between two sets",
           "comn_charset_convert",
           std::to_string(bytes) + " bytes",
           1000,
           pass([](CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                   CS_VOID *dest, CS_INT *written) {
             return comn_charset_convert(context, CS_LCTYPE_CTYPE, srcfmt, src, destfmt, dest,
                                         written);
           }),
           {{"memcpy, wrapped", 1.5, pass(peers::copy_text)}}});
}

} // namespace

void register_comparisons() {
#ifdef ZRVBENCH_WITH_ICU
  compare_transcoders("ASCII", english, short_text, 0.6);
  compare_transcoders("ASCII", english, long_text, 0.15);
  compare_transcoders("mixed scripts", mixed, short_text, 1.0);
  compare_transcoders("mixed scripts", mixed, long_text, 1.0);
  for (const size_t characters : {short_text, long_text})
    compare_double_byte_decoding(characters);
#endif
  for (const size_t characters : {short_text, long_text}) {
    compare_engine("one-byte set", "CP1252", 13, 1252, french, characters, 0.4, 0.6);
    compare_engine("double-byte set", "SHIFT_JIS", 141, 50, japanese, characters, 0.6, 0.6);
  }
  compare_table_loop();
  compare_ascii(20);
  compare_ascii(255);
}

} // namespace zrvbench
