// The transcoders between UTF-8 and UTF-16, against a slow reading of their rules.
#include <initializer_list>
#include <random>

#include "guarded_buffer.h"
#include "utf_reference.h"
#include "zrvcomn/comfou.h"

namespace {

using namespace zrvtest;

using Transcoder = int (*)(CS_VOID *, int, CS_VOID *, int, int *, int *, CS_USHORT *, CS_BOOL);
using Reference = Transcoded (*)(const Octets &, size_t, bool);

struct Direction {
  Transcoder function;
  Reference reference;
  size_t fill_size; // bytes of one unit of fill
};

const Direction to_utf16 = {com__fou_utf8_to_utf16, utf8_to_utf16, 2};
const Direction copy16 = {com__fou_utf16_to_utf16, utf16_to_utf16, 2};
const Direction to_utf8 = {com__fou_utf16_to_utf8, utf16_to_utf8, 1};

Transcoded run(const Direction &direction, const Octets &text, size_t room, bool check,
               size_t misalignment = 0) {
  GuardedBuffer source(text.size(), misalignment), destination(room, misalignment);
  std::copy(text.begin(), text.end(), source.data());
  int sused = -1, dused = -1;
  const int result =
      direction.function(source.data(), static_cast<int>(text.size()), destination.data(),
                         static_cast<int>(room), &sused, &dused, nullptr, check ? 1 : 0);
  EXPECT_TRUE(destination.is_untouched(static_cast<size_t>(dused)));
  return {result, static_cast<size_t>(sused),
          Octets(destination.data(), destination.data() + dused)};
}

// Room from none to enough, and one more byte.
void compare(const Direction &direction, const Octets &text, size_t misalignment = 0) {
  for (const bool check : {false, true}) {
    const size_t enough = direction.reference(text, SIZE_MAX / 2, check).text.size();
    for (size_t room = 0; room <= enough + 1; ++room)
      ASSERT_EQ(run(direction, text, room, check, misalignment),
                direction.reference(text, room, check))
          << testing::PrintToString(text) << " room " << room << " check " << check;
  }
}

Octets units(std::initializer_list<unsigned> values) {
  Octets text;
  for (const unsigned value : values)
    append_unit(text, value);
  return text;
}

TEST(FouUnicode, LiteralCharacters) {
  const struct {
    Octets utf8, utf16;
  } rows[] = {
      {{}, {}},
      {{'A'}, units({0x41})},
      {{0x7F, 0xC2, 0x80}, units({0x7F, 0x80})},
      {{0xDF, 0xBF, 0xE0, 0xA0, 0x80}, units({0x7FF, 0x800})},
      {{0xE2, 0x82, 0xAC}, units({0x20AC})},
      {{0xED, 0x9F, 0xBF, 0xEE, 0x80, 0x80}, units({0xD7FF, 0xE000})},
      {{0xEF, 0xBF, 0xBD}, units({0xFFFD})},
      {{0xF0, 0x90, 0x80, 0x80}, units({0xD800, 0xDC00})},
      {{0xF0, 0x9F, 0x98, 0x80}, units({0xD83D, 0xDE00})},
      {{0xF4, 0x8F, 0xBF, 0xBF}, units({0xDBFF, 0xDFFF})},
  };
  for (const auto &row : rows)
    for (const bool check : {false, true}) {
      EXPECT_EQ(run(to_utf16, row.utf8, row.utf16.size(), check),
                (Transcoded{0, row.utf8.size(), row.utf16}));
      EXPECT_EQ(run(to_utf8, row.utf16, row.utf8.size(), check),
                (Transcoded{0, row.utf16.size(), row.utf8}));
      EXPECT_EQ(run(copy16, row.utf16, row.utf16.size(), check),
                (Transcoded{0, row.utf16.size(), row.utf16}));
    }
}

// What a strict reader would refuse passes.
TEST(FouUnicode, LaxCharacters) {
  // Overlong forms and encoded surrogates.
  EXPECT_EQ(run(to_utf16, {0xC1, 0x81, 0xE0, 0x81, 0x81, 0xF0, 0x80, 0x81, 0x81}, 6, true),
            (Transcoded{0, 9, units({0x41, 0x41, 0x41})}));
  EXPECT_EQ(run(to_utf16, {0xED, 0xA0, 0x80, 0xED, 0xBF, 0xBF}, 4, true),
            (Transcoded{0, 6, units({0xD800, 0xDFFF})}));
  // Lone surrogates; a high one at the end, and before another high one.
  EXPECT_EQ(run(to_utf8, units({0xDC00, 0xD800}), 6, true),
            (Transcoded{0, 4, {0xED, 0xB0, 0x80, 0xED, 0xA0, 0x80}}));
  EXPECT_EQ(run(to_utf8, units({0xD800, 0xDBFF, 0xDC00}), 7, true),
            (Transcoded{0, 6, {0xED, 0xA0, 0x80, 0xF4, 0x8F, 0xB0, 0x80}}));
  // The second half of a pair may be anything above 0xDBFF; what stands below makes no pair.
  EXPECT_EQ(run(to_utf8, units({0xD800, 0xE000}), 4, true),
            (Transcoded{0, 4, {0xF0, 0x90, 0x90, 0x80}}));
  EXPECT_EQ(run(to_utf8, units({0xDBFF, 0xFFFF}), 4, true),
            (Transcoded{0, 4, {0xF4, 0x91, 0xBF, 0xBF}}));
  EXPECT_EQ(run(to_utf8, units({0xD800, 0x41}), 4, true),
            (Transcoded{0, 4, {0xED, 0xA0, 0x80, 0x41}}));
  EXPECT_EQ(run(copy16, units({0xDC00, 0xD800, 0xFFFF}), 6, true),
            (Transcoded{0, 6, units({0xDC00, 0xD800, 0xFFFF})}));
}

TEST(FouUnicode, InvalidCharacters) {
  const Octets texts[] = {
      {0x80},
      {0xBF},
      {0xC2},
      {0xC2, 0x41},
      {0xC2, 0xC2},
      {0xE2, 0x82},
      {0xE2, 0x82, 0x41},
      {0xF8, 0x88, 0x80, 0x80, 0x80},
      {0xFF},
      {0xF4, 0x90, 0x80, 0x80}, // above 0x10FFFF
      {0xF7, 0xBF, 0xBF, 0xBF},
      {0xF0, 0x9F, 0x98},
  };
  for (const Octets &text : texts) {
    Octets behind = {'a'};
    behind.insert(behind.end(), text.begin(), text.end());
    EXPECT_EQ(run(to_utf16, behind, 16, false), (Transcoded{4, 1, units({'a'})}));
    // An invalid character wins over a full destination.
    EXPECT_EQ(run(to_utf16, behind, 2, false), (Transcoded{4, 1, units({'a'})}));
  }
  // The two values that no text may have, also in an overlong form, pass without the check.
  for (const Octets &text : {Octets{0xEF, 0xBF, 0xBE},
                             {0xEF, 0xBF, 0xBF},
                             {0xF0, 0x8F, 0xBF, 0xBE},
                             {0xF0, 0x8F, 0xBF, 0xBF}}) {
    EXPECT_EQ(run(to_utf16, text, 2, true), (Transcoded{4, 0, {}}));
    EXPECT_EQ(run(to_utf16, text, 2, false).result, 0);
  }
  EXPECT_EQ(run(to_utf8, units({'a', 0xFFFE}), 8, true), (Transcoded{4, 2, {'a'}}));
  EXPECT_EQ(run(to_utf8, units({'a', 0xFFFF}), 1, true), (Transcoded{4, 2, {'a'}}));
  EXPECT_EQ(run(to_utf8, units({0xFFFE}), 8, false), (Transcoded{0, 2, {0xEF, 0xBF, 0xBE}}));
  // An odd byte at the end.
  EXPECT_EQ(run(to_utf8, {'a', 0, 'b'}, 8, false), (Transcoded{4, 2, {'a'}}));
  EXPECT_EQ(run(to_utf8, {'a', 0, 'b'}, 1, false), (Transcoded{4, 2, {'a'}}));
  EXPECT_EQ(run(copy16, {'a', 0, 'b'}, 8, false), (Transcoded{4, 2, {'a', 0}}));
  EXPECT_EQ(run(copy16, {'a', 0, 'b'}, 2, false), (Transcoded{4, 2, {'a', 0}}));
  EXPECT_EQ(run(copy16, {'a', 0, 'b'}, 1, false), (Transcoded{2, 0, {}}));
}

TEST(FouUnicode, EveryLeadAndContinuation) {
  const unsigned nexts[] = {0x00, 0x41, 0x7F, 0x80, 0x81, 0x8F, 0x90,
                            0x9F, 0xA0, 0xBE, 0xBF, 0xC0, 0xE0, 0xFF};
  const auto octet = [](unsigned value) { return static_cast<unsigned char>(value); };
  for (unsigned lead = 0; lead < 256; ++lead) {
    compare(to_utf16, {octet(lead)});
    for (unsigned second = 0; second < 256; ++second)
      compare(to_utf16, {octet(lead), octet(second)});
    if (lead < 0xE0)
      continue;
    for (const unsigned second : nexts)
      for (const unsigned third : nexts) {
        compare(to_utf16, {octet(lead), octet(second), octet(third)});
        if (lead < 0xF0)
          continue;
        for (const unsigned fourth : nexts)
          compare(to_utf16, {octet(lead), octet(second), octet(third), octet(fourth)});
      }
  }
}

TEST(FouUnicode, EveryUnitAndEveryPairOfClasses) {
  for (unsigned unit = 0; unit < 0x10000; ++unit)
    for (const bool check : {false, true}) {
      const Octets text = units({unit});
      ASSERT_EQ(run(to_utf8, text, 3, check), utf16_to_utf8(text, 3, check)) << unit;
    }
  const unsigned classes[] = {0x0000, 0x007F, 0x0080, 0x07FF, 0x0800, 0xD7FF, 0xD800, 0xDABC,
                              0xDBFF, 0xDC00, 0xDEAD, 0xDFFF, 0xE000, 0xFFFD, 0xFFFE, 0xFFFF};
  for (const unsigned first : classes)
    for (const unsigned second : classes) {
      Octets text = units({first, second});
      compare(to_utf8, text);
      compare(copy16, text);
      text.pop_back(); // within the second
      compare(to_utf8, text);
      compare(copy16, text);
    }
}

// Every scalar value there and back.
TEST(FouUnicode, EveryCharacterRoundTrips) {
  for (std::uint32_t value = 0; value <= 0x10FFFF; value += value < 0xFFFF ? 1 : 7) {
    if (value >= 0xD800 && value <= 0xDFFF)
      continue;
    unsigned short text[2];
    unsigned char utf8[4];
    unsigned short again[2] = {};
    int length = 2;
    text[0] = static_cast<unsigned short>(value);
    if (value > 0xFFFF) {
      text[0] = static_cast<unsigned short>(0xD800 + ((value - 0x10000) >> 10));
      text[1] = static_cast<unsigned short>(0xDC00 + ((value - 0x10000) & 0x3FF));
      length = 4;
    }
    int bytes = 0, back = 0;
    ASSERT_EQ(com__fou_utf16_to_utf8(text, length, utf8, 4, nullptr, &bytes, nullptr, 0), 0);
    ASSERT_EQ(com__fou_utf8_to_utf16(utf8, bytes, again, 4, nullptr, &back, nullptr, 0), 0);
    ASSERT_EQ(back, length);
    ASSERT_EQ(std::memcmp(text, again, static_cast<size_t>(length)), 0) << value;
  }
}

// Runs of ASCII of every length before, between and behind other characters, at every address.
TEST(FouUnicode, RunsOfAscii) {
  for (size_t before = 0; before < 40; ++before)
    for (const size_t behind : {0, 1, 15, 16, 17, 33}) {
      Octets text(before, 'a');
      for (const unsigned char byte : Octets{0xE2, 0x82, 0xAC})
        text.push_back(byte);
      text.insert(text.end(), behind, 'b');
      compare(to_utf16, text, before % 17);
      compare(to_utf8, utf8_to_utf16(text, 1000, false).text, before % 17);
      compare(copy16, utf8_to_utf16(text, 1000, false).text, before % 17);
    }
  // One byte above ASCII at each position of a block, and one unit whose low byte alone looks like it.
  for (size_t position = 0; position < 33; ++position) {
    Octets text(33, 'a');
    text[position] = 0x80;
    EXPECT_EQ(run(to_utf16, text, 66, false), utf8_to_utf16(text, 66, false));
    Octets wide;
    for (size_t i = 0; i < 33; ++i)
      append_unit(wide, i == position ? 0x141 : 'a');
    EXPECT_EQ(run(to_utf8, wide, 66, false), utf16_to_utf8(wide, 66, false));
    wide[2 * position] = 0x80;
    wide[2 * position + 1] = 0;
    EXPECT_EQ(run(to_utf8, wide, 66, false), utf16_to_utf8(wide, 66, false));
  }
}

TEST(FouUnicode, RandomTexts) {
  std::mt19937 random(20);
  const std::uint32_t limits[] = {0x7F, 0x7F, 0xFF, 0x7FF, 0xFFFF, 0x10FFFF};
  for (int round = 0; round < 300; ++round) {
    Octets wide;
    const size_t characters = random() % 60;
    for (size_t i = 0; i < characters; ++i) {
      const std::uint32_t value = static_cast<std::uint32_t>(random() % limits[random() % 6]);
      if (value > 0xFFFF) {
        append_unit(wide, 0xD800 + ((value - 0x10000) >> 10));
        append_unit(wide, 0xDC00 + ((value - 0x10000) & 0x3FF));
      } else {
        append_unit(wide, value);
      }
    }
    compare(to_utf8, wide);
    compare(to_utf16, utf16_to_utf8(wide, 1000, false).text);
  }
}

// The rest of the room is filled whatever the result; the fill counts.
TEST(FouUnicode, FillsTheRest) {
  CS_USHORT pad = 0x2041; // stored low byte first
  const struct {
    const Direction &direction;
    Octets text;
    size_t room;
    int result;
    Octets expected; // the bytes that count
  } rows[] = {
      {to_utf16, {'a'}, 6, 0, {'a', 0, 0x41, 0x20, 0x41, 0x20}},
      {to_utf16, {'a'}, 5, 0, {'a', 0, 0x41, 0x20}}, // the odd byte stays
      {to_utf16, {'a', 0x80}, 6, 4, {'a', 0, 0x41, 0x20, 0x41, 0x20}},
      {to_utf16, {0xF0, 0x9F, 0x98, 0x80}, 2, 2, {0x41, 0x20}},
      {to_utf16, {}, 0, 0, {}},
      {to_utf16, {}, 1, 0, {}},
      {copy16, {'a', 0, 'b'}, 4, 4, {'a', 0, 0x41, 0x20}},
      {to_utf8, {'a', 0}, 4, 0, {'a', 0x41, 0x41, 0x41}},
      {to_utf8, {0xAC, 0x20}, 2, 2, {0x41, 0x41}},
  };
  for (const auto &row : rows) {
    GuardedBuffer destination(row.room);
    Octets text = row.text;
    int sused = -1, dused = -1;
    EXPECT_EQ(row.direction.function(text.data(), static_cast<int>(text.size()), destination.data(),
                                     static_cast<int>(row.room), &sused, &dused, &pad, 0),
              row.result);
    EXPECT_EQ(Octets(destination.data(), destination.data() + dused), row.expected);
    EXPECT_TRUE(destination.is_untouched(static_cast<size_t>(dused)));
    // Neither count is needed.
    EXPECT_EQ(row.direction.function(text.data(), static_cast<int>(text.size()), destination.data(),
                                     static_cast<int>(row.room), nullptr, nullptr, &pad, 0),
              row.result);
  }
}

} // namespace
