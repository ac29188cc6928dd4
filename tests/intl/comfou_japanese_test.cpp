// The conversions from the Japanese sets.
#include <string>
#include <vector>

#include "guarded_buffer.h"
#include "zrvcomn/comfou.h"

namespace {

using zrvtest::GuardedBuffer;

using Bytes = std::basic_string<unsigned char>;

struct Result {
  int bits, used;
  Bytes text, source; // what was written, and the source afterwards

  bool operator==(const Result &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Result &result) {
  return out << result.bits << ' ' << result.used << ' ' << testing::PrintToString(result.text)
             << ' ' << testing::PrintToString(result.source);
}

Result run(CS_XLATE_FUNC function, const Bytes &text, size_t room) {
  GuardedBuffer source(text.size()), destination(room);
  std::copy(text.begin(), text.end(), source.data());
  int sused = -1, dused = -2;
  const int bits = function(source.data(), static_cast<int>(text.size()), destination.data(),
                            static_cast<int>(room), &sused, &dused);
  EXPECT_EQ(sused, dused);
  EXPECT_TRUE(destination.is_untouched(static_cast<size_t>(dused)));
  return {bits, sused, Bytes(destination.data(), static_cast<size_t>(dused)),
          Bytes(source.data(), text.size())};
}

Result run(CS_XLATE_FUNC function, const Bytes &text) {
  return run(function, text, text.size());
}

Bytes bytes(std::initializer_list<int> values) {
  Bytes result;
  for (const int value : values)
    result += static_cast<unsigned char>(value);
  return result;
}

const Bytes lost_pair = bytes({'?', '?'});

// The whole text was taken and the source left alone.
Result whole(const Bytes &source, const Bytes &text, int bits = 0) {
  return {bits, static_cast<int>(source.size()), text, source};
}

bool is_between(int value, int low, int high) {
  return value >= low && value <= high;
}

// The rules once more, by rows and cells of the standard: the row of a first byte is counted from 0xA1,
// and sjis has two rows of 94 cells in one.
Bytes jis_to_sjis(int a, int b) {
  const int row = a - 0xA1, cell = b - 0xA1;
  int first = 0x81 + row / 2;
  if (first > 0x9F)
    first += 0x40;
  int second = 0x40 + cell + (row % 2 != 0 ? 95 : 0);
  if (row % 2 == 0 && second >= 0x7F)
    ++second; // 0x7F is left out
  return bytes({first, second});
}

Bytes sjis_to_jis(int a, int b) {
  int row = 2 * (a - (a >= 0xE0 ? 0xC1 : 0x81));
  int cell = b - 0x40;
  if (b >= 0x9F) {
    ++row;
    cell = b - 0x9F;
  } else if (b >= 0x80) {
    --cell;
  }
  return bytes({0xA1 + row, 0xA1 + cell});
}

TEST(FouJapanese, LiteralCharacters) {
  // Hiragana A; the first and the last cell; the rows around the gap in sjis; odd and even rows.
  const struct {
    int a, b, s, t;
  } rows[] = {
      {0xA4, 0xA2, 0x82, 0xA0}, {0xA1, 0xA1, 0x81, 0x40}, {0xFE, 0xFE, 0xEF, 0xFC},
      {0xA1, 0xDF, 0x81, 0x7E}, {0xA1, 0xE0, 0x81, 0x80}, {0xA1, 0xFE, 0x81, 0x9E},
      {0xA2, 0xA1, 0x81, 0x9F}, {0xDE, 0xFE, 0x9F, 0xFC}, {0xDF, 0xA1, 0xE0, 0x40},
      {0xB0, 0xA1, 0x88, 0x9F},
  };
  for (const auto &row : rows) {
    const Bytes jis = bytes({row.a, row.b}), sjis = bytes({row.s, row.t});
    EXPECT_EQ(run(com__fou_deckanji_to_sjis, jis), whole(jis, sjis));
    EXPECT_EQ(run(com__fou_eucjis_to_sjis, jis), whole(jis, sjis));
    EXPECT_EQ(run(com__fou_sjis_to_eucjis_deckanj, sjis), whole(sjis, jis));
    EXPECT_EQ(run(com__fou_deckanji_to_eucjis, jis), whole(jis, jis));
    EXPECT_EQ(run(com__fou_eucjis_to_deckanji, jis), whole(jis, jis));
    EXPECT_EQ(run(com__fou_deckanji_to_ascii8, jis), whole(jis, lost_pair, 1));
    EXPECT_EQ(run(com__fou_eucjis_to_ascii8, jis), whole(jis, lost_pair, 1));
    EXPECT_EQ(run(com__fou_sjis_to_ascii8, sjis), whole(sjis, lost_pair, 1));
  }
}

// Every pair of bytes from 0x80 on, with an ASCII character behind it that shows where the pair ended.
TEST(FouJapanese, EveryPairOfBytes) {
  for (int a = 0x80; a < 256; ++a)
    for (int b = 0; b < 256; ++b) {
      const Bytes text = bytes({a, b, 'x'});
      const bool is_jis = is_between(a, 0xA1, 0xFE);
      const bool is_jis_pair = is_jis && is_between(b, 0xA1, 0xFE);
      // A single byte that is lost, and then whatever `b` is; only ASCII is simple to tell.
      const Bytes one_lost = bytes({'?', b, 'x'});
      struct Case {
        CS_XLATE_FUNC function;
        bool is_double;
        Bytes pair; // empty for none
      };
      const bool is_sjis = is_between(a, 0x81, 0x9F) || is_between(a, 0xE0, 0xFC);
      const bool is_sjis_pair = is_sjis && a < 0xF0 && is_between(b, 0x40, 0xFC) && b != 0x7F;
      const Bytes none;
      const Case cases[] = {
          {com__fou_deckanji_to_ascii8, is_jis, none},
          {com__fou_deckanji_to_eucjis, is_jis, is_jis_pair ? bytes({a, b}) : none},
          {com__fou_deckanji_to_sjis, is_jis, is_jis_pair ? jis_to_sjis(a, b) : none},
          {com__fou_eucjis_to_ascii8, is_jis || a == 0x8E, none},
          {com__fou_eucjis_to_deckanji, is_jis || a == 0x8E, is_jis_pair ? bytes({a, b}) : none},
          {com__fou_eucjis_to_sjis, is_jis || a == 0x8E, is_jis_pair ? jis_to_sjis(a, b) : none},
          {com__fou_sjis_to_ascii8, is_sjis, none},
          {com__fou_sjis_to_eucjis_deckanj, is_sjis, is_sjis_pair ? sjis_to_jis(a, b) : none},
      };
      for (const Case &c : cases) {
        const bool is_eucjis = &c >= cases + 3 && &c <= cases + 5;
        if (is_eucjis && a == 0x8F)
          continue; // three bytes
        if (c.is_double) {
          const Bytes &pair = c.pair.empty() ? lost_pair : c.pair;
          EXPECT_EQ(run(c.function, text), whole(text, pair + bytes({'x'}), c.pair.empty() ? 1 : 0))
              << &c - cases << ' ' << a << ' ' << b;
        } else if (b < 0x80) {
          EXPECT_EQ(run(c.function, text), whole(text, one_lost, 1))
              << &c - cases << ' ' << a << ' ' << b;
        }
      }
    }
}

TEST(FouJapanese, AsciiIsCopied) {
  Bytes text;
  for (int byte = 0; byte < 0x80; ++byte)
    text += static_cast<unsigned char>(byte);
  for (const CS_XLATE_FUNC function :
       {com__fou_deckanji_to_ascii8, com__fou_deckanji_to_eucjis, com__fou_deckanji_to_sjis,
        com__fou_eucjis_to_ascii8, com__fou_eucjis_to_deckanji, com__fou_eucjis_to_sjis,
        com__fou_sjis_to_ascii8, com__fou_sjis_to_eucjis_deckanj})
    EXPECT_EQ(run(function, text), whole(text, text));
}

// A character that does not fit stays unread, whether the room or the text ends within it.
TEST(FouJapanese, PartialCharactersStayUnread) {
  struct Case {
    CS_XLATE_FUNC function;
    Bytes text; // one character behind an "a"
  };
  const Case cases[] = {
      {com__fou_deckanji_to_ascii8, bytes({'a', 0xA4, 0xA2})},
      {com__fou_deckanji_to_eucjis, bytes({'a', 0xA4, 0x20})},
      {com__fou_deckanji_to_sjis, bytes({'a', 0xA4, 0xA2})},
      {com__fou_eucjis_to_ascii8, bytes({'a', 0x8E, 0xA2})},
      {com__fou_eucjis_to_ascii8, bytes({'a', 0x8F, 0xA2, 0xA2})},
      {com__fou_eucjis_to_deckanji, bytes({'a', 0x8E, 0xA2})},
      {com__fou_eucjis_to_deckanji, bytes({'a', 0x8F, 0xA2, 0xA2})},
      {com__fou_eucjis_to_sjis, bytes({'a', 0xA2, 0xA2})},
      {com__fou_eucjis_to_sjis, bytes({'a', 0x8F, 0xA2, 0xA2})},
      {com__fou_sjis_to_ascii8, bytes({'a', 0xFC, 0x20})},
      {com__fou_sjis_to_eucjis_deckanj, bytes({'a', 0x82, 0xA0})},
      {com__fou_sjis_to_eucjis_deckanj, bytes({'a', 0xF0, 0xA0})},
  };
  for (const Case &c : cases)
    for (size_t length = 0; length < c.text.size(); ++length) {
      const int used = length == 0 ? 0 : 1;
      const Bytes written = c.text.substr(0, static_cast<size_t>(used));
      // The room ends: reported. The text ends: not.
      EXPECT_EQ(run(c.function, c.text, length), (Result{2, used, written, c.text}));
      const Bytes cut = c.text.substr(0, length);
      EXPECT_EQ(run(c.function, cut, 9), (Result{0, used, written, cut}));
    }
}

// A character of three bytes is replaced by three, but two functions go on reading at its second byte,
// which they raise by 2 in the source. Deployed applications know it so.
TEST(FouJapanese, ThreeBytesAreReadOnFromTheSecond) {
  const Bytes text = bytes({0x8F, 0xA1, 0xA1, 'a', 'b', 'c'});
  const Bytes raised = bytes({0x8F, 0xA3, 0xA1, 'a', 'b', 'c'});
  EXPECT_EQ(run(com__fou_eucjis_to_deckanji, text),
            (Result{1, 6, bytes({'?', '?', '?', 0xA3, 0xA1, 'a'}), raised}));
  EXPECT_EQ(run(com__fou_eucjis_to_sjis, text),
            (Result{1, 6, bytes({'?', '?', '?', 0x82, 0x40, 'a'}), raised}));
  // To ASCII it is a character like any other.
  EXPECT_EQ(run(com__fou_eucjis_to_ascii8, text),
            whole(text, bytes({'?', '?', '?', 'a', 'b', 'c'}), 1));

  for (const CS_XLATE_FUNC function : {com__fou_eucjis_to_deckanji, com__fou_eucjis_to_sjis}) {
    // The raised byte wraps around; and it may begin a character of three bytes itself.
    EXPECT_EQ(run(function, bytes({0x8F, 0xFE, 'x', 'y'})),
              (Result{1, 4, bytes({'?', '?', '?', 0}), bytes({0x8F, 0x00, 'x', 'y'})}));
    EXPECT_EQ(run(function, bytes({0x8F, 0x8D, 0x20, 'y', 'z', '!'})),
              (Result{1, 6, bytes({'?', '?', '?', '?', '?', '?'}),
                      bytes({0x8F, 0x8F, 0x22, 'y', 'z', '!'})}));
    // The raised byte begins a pair for which only one byte is left.
    EXPECT_EQ(run(function, bytes({0x8F, 0xA1, 0xA1, 'a'})),
              (Result{1, 3, bytes({'?', '?', '?'}), bytes({0x8F, 0xA3, 0xA1, 'a'})}));
    // Nothing is raised where the character does not fit.
    const Bytes partial = bytes({0x8F, 0xA1});
    EXPECT_EQ(run(function, partial), (Result{0, 0, {}, partial}));
    EXPECT_EQ(run(function, text, 2), (Result{2, 0, {}, text}));
  }
}

} // namespace
