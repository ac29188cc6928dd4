// Benchmarks of the Unicode converters, on texts of 20 and of 64,000 characters.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "unic_peers.h"
#include "zrvcomn/zrvunic.h"

namespace zrvbench {
namespace {

using Text = std::u16string;

[[noreturn]] void give_up(const char *what) {
  std::fprintf(stderr, "unic_bench: %s\n", what);
  std::exit(1);
}

const UChar8 *bytes_of(const std::string &text) {
  return reinterpret_cast<const UChar8 *>(text.c_str());
}
const UChar16 *units_of(const Text &text) {
  return reinterpret_cast<const UChar16 *>(text.c_str());
}

CVTH converter(UNICONV_CID cid) {
  CVTH handle = nullptr;
  if (uniconv_HandleGet(cid, &handle) != UNICONV_SUCCEED)
    give_up("no converter");
  return handle;
}

constexpr size_t longest = 64000;

// Room for a text in every form.
struct Room {
  std::vector<char16_t> units = std::vector<char16_t>(2 * longest + 1);
  std::vector<char> bytes = std::vector<char>(4 * longest + 1);
  UChar16 *ours_units() { return reinterpret_cast<UChar16 *>(units.data()); }
  UChar8 *ours_bytes() { return reinterpret_cast<UChar8 *>(bytes.data()); }
  int unit_size() const { return static_cast<int>(units.size()); }
  int byte_size() const { return static_cast<int>(bytes.size()); }
};

// The alphabets of texts: letters, of which each is as likely as any other.
const Text ascii = u"etaoin shrdlu cmfwyp vbgkqjxz ETAOIN 0123456789 .,;:-";
const Text western = ascii + u"äöüßéèñç";
const Text cyrillic = u"абвгдежзийклмнопрстуфхцчшщъыьэюя АБВГДЕ .";
const Text japanese =
    u"日本語の文字を変換する速さ測漢字仮名交文章東京大阪京都社会経済政治新聞会議国際学校生活"
    u"アイウエオカキクケコサシスセソさしすせそたちつてとabc123";
const Text mixed = western + cyrillic + japanese + u"\U0001F600\U0001F601\U0001F602한국어ไทย";

struct Texts {
  std::vector<Text> units;
  std::vector<std::string> utf8;
  std::vector<std::string> set; // in the set of the converter, if there is one
};

// As many texts as make some 130,000 characters.
std::shared_ptr<Texts> make_texts(const Text &alphabet, size_t length, CVTH handle = nullptr) {
  std::vector<Text> letters;
  for (size_t at = 0; at < alphabet.size();) {
    const size_t units = (alphabet[at] & 0xFC00) == 0xD800 ? 2 : 1;
    letters.push_back(alphabet.substr(at, units));
    at += units;
  }
  Random random(54);
  Room room;
  auto texts = std::make_shared<Texts>();
  for (size_t count = 2 * longest / length; count > 0; --count) {
    Text text;
    for (size_t left = length; left > 0; --left)
      text += letters[random_below(random, letters.size())];
    const int utf8 =
        uniutf8_unistrToUTF8(room.ours_bytes(), room.byte_size(), units_of(text), nullptr);
    texts->utf8.emplace_back(room.bytes.data(), static_cast<size_t>(utf8));
    if (handle != nullptr) {
      int size = 0;
      if (uniconv_unistrToS(handle, room.ours_bytes(), room.byte_size(), units_of(text), &size) !=
          UNICONV_SUCCEED)
        give_up("the set lacks a letter");
      texts->set.emplace_back(room.bytes.data(), static_cast<size_t>(size - 1));
    }
    texts->units.push_back(std::move(text));
  }
  return texts;
}

const char *told(size_t length) {
  return length == 20 ? "20 characters" : "64,000 characters";
}

void compare_utf(const char *kind, const Text &alphabet, double short_goal, double long_goal) {
  for (const size_t length : {size_t{20}, longest}) {
    const auto texts = make_texts(alphabet, length);
    const auto room = std::make_shared<Room>();
    const std::string input = std::string(kind) + ", " + told(length);
    std::vector<Peer> from;
    std::vector<Peer> to;
#ifdef ZRVBENCH_WITH_ICU
    const double goal = length == 20 ? short_goal : long_goal;
    from.push_back({"u_strFromUTF8", goal, [=] {
                      for (const std::string &text : texts->utf8)
                        benchmark::DoNotOptimize(
                            icu_from_utf8(text.c_str(), room->units.data(), room->units.size()));
                    }});
    to.push_back({"u_strToUTF8", goal, [=] {
                    for (const Text &text : texts->units)
                      benchmark::DoNotOptimize(
                          icu_to_utf8(text.c_str(), room->bytes.data(), room->bytes.size()));
                  }});
#else
    static_cast<void>(short_goal), static_cast<void>(long_goal);
#endif
    compare({"UTF-8 to UTF-16", "uniutf8_unistrFromUTF8", input, texts->utf8.size(),
             [=] {
               for (const std::string &text : texts->utf8)
                 benchmark::DoNotOptimize(uniutf8_unistrFromUTF8(
                     room->ours_units(), room->unit_size(), bytes_of(text), nullptr));
             },
             from});
    compare({"UTF-16 to UTF-8", "uniutf8_unistrToUTF8", input, texts->units.size(),
             [=] {
               for (const Text &text : texts->units)
                 benchmark::DoNotOptimize(uniutf8_unistrToUTF8(
                     room->ours_bytes(), room->byte_size(), units_of(text), nullptr));
             },
             to});
  }
}

struct Goals {
  double iconv_to_utf8;
  double iconv_from_utf8;
  double icu;
};

void compare_set(const char *kind, UNICONV_CID cid, const char *iconv_name,
                 [[maybe_unused]] const char *icu_name, const Text &alphabet, const Goals &goals) {
  const CVTH handle = converter(cid);
  void *const to = iconv_peer("UTF-8", iconv_name);
  void *const from = iconv_peer(iconv_name, "UTF-8");
  for (const size_t length : {size_t{20}, longest}) {
    const auto texts = make_texts(alphabet, length, handle);
    const auto room = std::make_shared<Room>();
    const auto between = std::make_shared<Room>();
    const std::string input = std::string(iconv_name) + ", " + told(length);
    const auto iconv_pass = [=](void *peer, const std::vector<std::string> &sources) {
      for (const std::string &text : sources)
        benchmark::DoNotOptimize(
            iconv_convert(peer, text.data(), text.size(), room->bytes.data(), room->bytes.size()));
    };
    compare({std::string(kind) + " to UTF-8",
             "uniconv_unistrFromS, uniutf8_unistrToUTF8",
             input,
             texts->set.size(),
             [=] {
               for (const std::string &text : texts->set) {
                 uniconv_unistrFromS(handle, between->ours_units(), between->unit_size(),
                                     bytes_of(text), nullptr);
                 benchmark::DoNotOptimize(uniutf8_unistrToUTF8(
                     room->ours_bytes(), room->byte_size(), between->ours_units(), nullptr));
               }
             },
             {{"iconv", goals.iconv_to_utf8, [=] { iconv_pass(to, texts->set); }}}});
    compare({"UTF-8 to " + std::string(kind),
             "uniutf8_unistrFromUTF8, uniconv_unistrToS",
             input,
             texts->utf8.size(),
             [=] {
               for (const std::string &text : texts->utf8) {
                 uniutf8_unistrFromUTF8(between->ours_units(), between->unit_size(), bytes_of(text),
                                        nullptr);
                 benchmark::DoNotOptimize(uniconv_unistrToS(handle, room->ours_bytes(),
                                                            room->byte_size(),
                                                            between->ours_units(), nullptr));
               }
             },
             {{"iconv", goals.iconv_from_utf8, [=] { iconv_pass(from, texts->utf8); }}}});
#ifdef ZRVBENCH_WITH_ICU
    void *const icu = icu_peer(icu_name);
    compare({std::string(kind) + " to Unicode",
             "uniconv_unistrFromS",
             input,
             texts->set.size(),
             [=] {
               for (const std::string &text : texts->set)
                 benchmark::DoNotOptimize(uniconv_unistrFromS(
                     handle, room->ours_units(), room->unit_size(), bytes_of(text), nullptr));
             },
             {{"ucnv_toUChars", goals.icu, [=] {
                 for (const std::string &text : texts->set)
                   benchmark::DoNotOptimize(
                       icu_to_units(icu, text.c_str(), room->units.data(), room->units.size()));
               }}}});
    compare({"Unicode to " + std::string(kind),
             "uniconv_unistrToS",
             input,
             texts->units.size(),
             [=] {
               for (const Text &text : texts->units)
                 benchmark::DoNotOptimize(uniconv_unistrToS(
                     handle, room->ours_bytes(), room->byte_size(), units_of(text), nullptr));
             },
             {{"ucnv_fromUChars", goals.icu, [=] {
                 for (const Text &text : texts->units)
                   benchmark::DoNotOptimize(
                       icu_from_units(icu, text.c_str(), room->bytes.data(), room->bytes.size()));
               }}}});
#endif
  }
}

// Handles for a set whose table another handle holds, and for one whose table is read each time.
void compare_handles() {
  static const CVTH kept = converter(50);
  static_cast<void>(kept);
  const auto get = [](UNICONV_CID cid) {
    return [cid] {
      for (int count = 0; count < 100; ++count) {
        const CVTH handle = converter(cid);
        benchmark::DoNotOptimize(handle);
        uniconv_HandleFree(handle);
      }
    };
  };
  compare({"make and release a handle", "uniconv_HandleGet", "table in memory", 100, get(50), {}});
  compare(
      {"make and release a handle", "uniconv_HandleGet", "cp1252, table read", 100, get(1252), {}});
  compare(
      {"make and release a handle", "uniconv_HandleGet", "eucjis, table read", 100, get(49), {}});
}

} // namespace

void register_comparisons() {
  compare_utf("ASCII", ascii, 0.6, 0.15);
  compare_utf("mixed scripts", mixed, 1.0, 1.0);
  compare_set("one-byte set", 1252, "CP1252", "ibm-5348_P100-1997", western, {0.4, 0.6, 0});
  compare_set("one-byte set", 1251, "CP1251", "ibm-5347_P100-1998", cyrillic, {0.4, 0.6, 0});
  compare_set("double-byte set", 50, "SHIFT_JIS", "ibm-943_P15A-2003", japanese, {0.6, 0.6, 1.0});
  compare_set("double-byte set", 949, "CP949", "windows-949-2000",
              u"한국어문자집합변환속도측정서울부산 abc", {0.6, 0.6, 1.0});
  compare_handles();
}

} // namespace zrvbench
