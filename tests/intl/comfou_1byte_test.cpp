// The single-byte conversions and their maps.
#include <string>

#include "guarded_buffer.h"
#include "zrvcomn/comfou.h"

namespace {

using zrvtest::GuardedBuffer;

struct Result {
  int bits, sused, dused;
  std::string text; // all of the room

  bool operator==(const Result &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Result &result) {
  return out << result.bits << ' ' << result.sused << ' ' << result.dused << ' '
             << testing::PrintToString(result.text);
}

Result run(CS_XLATE_FUNC function, const std::string &text, size_t room) {
  GuardedBuffer source(text.size()), destination(room);
  std::memcpy(source.data(), text.data(), text.size());
  Result result{-1, -1, -1, {}};
  result.bits = function(source.data(), static_cast<int>(text.size()), destination.data(),
                         static_cast<int>(room), &result.sused, &result.dused);
  EXPECT_EQ(source.contents(), text);
  result.text = destination.contents();
  return result;
}

struct Pair {
  const char *name;
  CS_XLATE_FUNC function;
  const CS_BYTE *map;
  int first, last;        // the bytes that the map has
  bool keeps_those_below; // from 128 on
};

#define PAIR(pair, last, keeps_those_below)                                                        \
  {                                                                                                \
#pair, com__fou_##pair, Hi_##pair, (last) + 1 - static_cast < int>(sizeof Hi_##pair), last,    \
        keeps_those_below                                                                          \
  }

const Pair pairs[] = {
    PAIR(cp437_to_cp850, 255, true),   PAIR(cp850_to_cp437, 255, true),
    PAIR(cp437_to_iso1, 255, false),   PAIR(cp437_to_roman8, 255, false),
    PAIR(cp437_to_mac, 255, false),    PAIR(cp850_to_iso1, 255, false),
    PAIR(cp850_to_roman8, 255, false), PAIR(cp850_to_mac, 255, false),
    PAIR(iso1_to_cp437, 255, false),   PAIR(iso1_to_cp850, 255, false),
    PAIR(iso1_to_roman8, 255, false),  PAIR(iso1_to_mac, 255, false),
    PAIR(roman8_to_iso1, 255, false),  PAIR(roman8_to_cp850, 255, false),
    PAIR(roman8_to_mac, 255, false),   PAIR(roman8_to_cp437, 255, false),
    PAIR(mac_to_iso1, 216, false),     PAIR(mac_to_cp850, 216, false),
    PAIR(mac_to_cp437, 216, false),    PAIR(mac_to_roman8, 216, false),
};

TEST(FouSingleByte, MapsBeginWhereTheyShould) {
  for (const Pair &pair : pairs) {
    const std::string name = pair.name;
    const int first = name == "cp437_to_cp850" || name == "cp850_to_cp437"     ? 155
                      : name == "roman8_to_cp437"                              ? 176
                      : name.starts_with("iso1") || name.starts_with("roman8") ? 160
                                                                               : 128;
    EXPECT_EQ(pair.first, first) << name;
  }
}

TEST(FouSingleByte, EveryByteOfEveryPair) {
  for (const Pair &pair : pairs)
    for (int byte = 0; byte < 256; ++byte) {
      int expected = 0;
      if (byte < 128 || (byte < pair.first && pair.keeps_those_below))
        expected = byte;
      else if (byte >= pair.first && byte <= pair.last)
        expected = pair.map[byte - pair.first];
      const bool lost = expected == 0 && byte != 0;
      const Result result = {lost ? 1 : 0, 1, 1,
                             std::string(1, lost ? '?' : static_cast<char>(expected))};
      EXPECT_EQ(run(pair.function, std::string(1, static_cast<char>(byte)), 1), result)
          << pair.name << ' ' << byte;
    }
}

// What the maps say, letter by letter.
TEST(FouSingleByte, LettersCorrespond) {
  struct Letter {
    const char *name;
    int iso1, cp850, cp437, roman8, mac; // 0 where the set does not have it
  };
  const Letter letters[] = {
      {"e acute", 0xE9, 0x82, 0x82, 0xC5, 0x8E},
      {"sharp s", 0xDF, 0xE1, 0xE1, 0xDE, 0xA7},
      {"o stroke", 0xF8, 0x9B, 0, 0xD6, 0xBF},
      {"A tilde", 0xC3, 0xC7, 0, 0xE1, 0xCC},
      {"y acute", 0xFD, 0xEC, 0, 0xB2, 0},
      {"y diaeresis", 0xFF, 0x98, 0x98, 0xEF, 0xD8},
      {"cent", 0xA2, 0xBD, 0x9B, 0xBF, 0xA2},
      {"yen", 0xA5, 0xBE, 0x9D, 0xBC, 0xB4},
      {"no-break space", 0xA0, 0xFF, 0xFF, 0xA0, 0xCA},
      {"thorn", 0xFE, 0xE7, 0, 0xF1, 0},
      {"copyright", 0xA9, 0xB8, 0, 0, 0xA9},
      {"multiplication", 0xD7, 0x9E, 0, 0, 0},
  };
  for (const Letter &letter : letters) {
    const int bytes[] = {letter.iso1, letter.cp850, letter.cp437, letter.roman8, letter.mac};
    const char *const sets[] = {"iso1", "cp850", "cp437", "roman8", "mac"};
    for (int from = 0; from < 5; ++from)
      for (int to = 0; to < 5; ++to)
        for (const Pair &pair : pairs) {
          if (bytes[from] == 0 || pair.name != std::string(sets[from]) + "_to_" + sets[to])
            continue;
          // A no-break space of roman8 lies before the map to cp437.
          const bool lost = bytes[to] == 0 || (bytes[from] < pair.first && !pair.keeps_those_below);
          const Result result = {lost ? 1 : 0, 1, 1,
                                 std::string(1, lost ? '?' : static_cast<char>(bytes[to]))};
          EXPECT_EQ(run(pair.function, std::string(1, static_cast<char>(bytes[from])), 1), result)
              << letter.name << ' ' << pair.name;
        }
  }
}

// What a map turns into another byte, the opposite map turns back, where it has that byte at all.
TEST(FouSingleByte, MapsAreInverse) {
  int compared = 0;
  for (const Pair &there : pairs)
    for (const Pair &back : pairs) {
      const std::string name = there.name;
      const size_t middle = name.find("_to_");
      if (name.substr(middle + 4) + "_to_" + name.substr(0, middle) != back.name)
        continue;
      for (int byte = there.first; byte <= there.last; ++byte) {
        const int other = there.map[byte - there.first];
        if (other >= back.first && other <= back.last) {
          EXPECT_EQ(back.map[other - back.first], byte) << name;
          ++compared;
        }
      }
    }
  EXPECT_GT(compared, 900);
}

TEST(FouSingleByte, CountsAndBits) {
  // Both bits; what does not fit is not looked at.
  EXPECT_EQ(run(com__fou_iso1_to_cp437, "a\xE9\xA9", 2), (Result{2, 2, 2, "a\x82"}));
  EXPECT_EQ(run(com__fou_iso1_to_cp437, "a\xA9\xE9", 2), (Result{3, 2, 2, "a?"}));
  EXPECT_EQ(run(com__fou_iso1_to_cp437, "a\xE9", 4), (Result{0, 2, 2, "a\x82\xA5\xA5"}));
  EXPECT_EQ(run(com__fou_iso1_to_cp437, "", 0), (Result{0, 0, 0, ""}));
  EXPECT_EQ(run(com__fou_iso1_to_cp437, "\xA9", 0), (Result{2, 0, 0, ""}));
  // A "?" of the source is no replacement.
  EXPECT_EQ(run(com__fou_mac_to_iso1, "?", 1), (Result{0, 1, 1, "?"}));
}

TEST(FouSingleByte, LongTexts) {
  std::string text, expected;
  for (int i = 0; i < 1000; ++i) {
    text += i % 3 == 0 ? '\xE9' : 'b';
    expected += i % 3 == 0 ? '\x82' : 'b';
  }
  EXPECT_EQ(run(com__fou_iso1_to_cp850, text, 1000), (Result{0, 1000, 1000, expected}));
  text[999] = '\x80';
  expected[999] = '?';
  EXPECT_EQ(run(com__fou_iso1_to_cp850, text, 1000), (Result{1, 1000, 1000, expected}));
}

TEST(FouSingleByte, AsciiOnly) {
  for (int byte = 0; byte < 256; ++byte) {
    const Result result = {byte > 127 ? 1 : 0, 1, 1,
                           std::string(1, byte > 127 ? '?' : static_cast<char>(byte))};
    EXPECT_EQ(run(com__fou_ascii8_tofrom_1byte, std::string(1, static_cast<char>(byte)), 1),
              result);
  }
  for (size_t length = 0; length < 70; ++length)
    for (size_t position = 0; position < length; ++position) {
      std::string text(length, 'x'), expected = text;
      text[position] = '\x80';
      expected[position] = '?';
      const int n = static_cast<int>(length);
      EXPECT_EQ(run(com__fou_ascii8_tofrom_1byte, text, length), (Result{1, n, n, expected}));
      // Not seen where the room ends before it.
      expected.resize(position);
      const int cut = static_cast<int>(position);
      EXPECT_EQ(run(com__fou_ascii8_tofrom_1byte, text, position), (Result{2, cut, cut, expected}));
    }
}

// Counts up to a NUL or the larger of the two lengths, and leaves the destination alone.
TEST(FouSingleByte, CaseswapOnlyCounts) {
  const std::string untouched(3, '\xA5');
  EXPECT_EQ(run(com__fou_caseswap, "aBc\xE9", 3), (Result{2, 4, 4, untouched}));
  EXPECT_EQ(run(com__fou_caseswap, "abc", 3), (Result{0, 3, 3, untouched}));
  EXPECT_EQ(run(com__fou_caseswap, std::string("a\0c", 3), 3), (Result{0, 1, 1, untouched}));
  EXPECT_EQ(run(com__fou_caseswap, "", 0), (Result{0, 0, 0, ""}));
  // The text of two bytes goes on behind them.
  GuardedBuffer source(6);
  std::memcpy(source.data(), "abcd\0f", 6);
  int sused = -1, dused = -1;
  EXPECT_EQ(com__fou_caseswap(source.data(), 2, nullptr, 6, &sused, &dused), 0);
  EXPECT_EQ(sused, 4);
  EXPECT_EQ(dused, 4);
  EXPECT_EQ(com__fou_caseswap(source.data(), 2, nullptr, 3, &sused, &dused), 0);
  EXPECT_EQ(sused, 3);
}

} // namespace
