// Both sizes of money from and to text, integers and doubles.
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "longhand.h"
#include "money_text_reference.h"
#include "money_values.h"
#include "test_charset.h"
#include "test_scale.h"
#include "zrvcomn/numeric.h"

using zrvtest::count_of;
using zrvtest::GuardedBuffer;
using zrvtest::largest_money;
using zrvtest::magnitude_of;
using zrvtest::money;
using zrvtest::Natural;
using zrvtest::smallest_money;
using zrvtest::TestCharset;

namespace {

constexpr CS_INT largest4 = std::numeric_limits<CS_INT>::max();
constexpr CS_INT smallest4 = std::numeric_limits<CS_INT>::min();

// ---- text to money ----

using Parsed = zrvtest::MoneyParse;

// The text ends where its buffer does.
Parsed parse(const std::string &text, CS_ATTRIB *set = nullptr) {
  GuardedBuffer buffer(text.size());
  std::memcpy(buffer.data(), text.data(), text.size());
  CS_MONEY value = money(-77);
  const int status = com__mnyfromchar_mb(&value, buffer.text(), static_cast<CS_INT>(text.size()),
                                         static_cast<CS_INT>(text.size() % 3), set);
  return {status, count_of(value)};
}

// The count of a good text.
int64_t parsed(const std::string &text, CS_ATTRIB *set = nullptr) {
  const Parsed result = parse(text, set);
  EXPECT_EQ(result.status, NUME_OK) << text;
  return result.count;
}

int status_of(const std::string &text, CS_ATTRIB *set = nullptr) {
  return parse(text, set).status;
}

// Every set that the parsers are tested in.
struct NamedSet {
  const char *name;
  TestCharset set;
};

std::vector<NamedSet> all_sets() {
  return {{"one byte", TestCharset::one_byte()},
          {"double byte", TestCharset::double_byte()},
          {"four byte", TestCharset::four_byte()},
          {"UTF-8", TestCharset::utf8()}};
}

} // namespace

TEST(TextToMoney, Numbers) {
  EXPECT_EQ(parsed("1.5"), 15000);
  EXPECT_EQ(parsed("12"), 120000);
  EXPECT_EQ(parsed("12."), 120000);
  EXPECT_EQ(parsed(".5"), 5000);
  EXPECT_EQ(parsed("."), 0);
  EXPECT_EQ(parsed("0.0001"), 1);
  EXPECT_EQ(parsed("-0"), 0);
  EXPECT_EQ(parsed("000000000000000000000000000000007"), 70000);
  EXPECT_EQ(parsed("1234567.8901"), 12345678901);
}

TEST(TextToMoney, NothingIsZero) {
  for (const char *text : {"", " ", "    ", "-", "+", "$", " - $ ", "\t", " \t\n"})
    EXPECT_EQ(parsed(text), 0) << text;
  CS_MONEY value = money(5);
  CS_CHAR text[] = "1";
  EXPECT_EQ(com__mnyfromchar_mb(&value, text, -1, 0, nullptr), NUME_OK);
  EXPECT_EQ(count_of(value), 0);
}

TEST(TextToMoney, FrontInAnyOrder) {
  for (const char *text : {"$ -1,234.50", "-$1234.5", "- $1234.5", "$-1234.5", "  -  $  1234.5",
                           "-\xA3"
                           "1234.5"})
    EXPECT_EQ(parsed(text), -12345000) << text;
  EXPECT_EQ(parsed("+1"), 10000);
  EXPECT_EQ(parsed("+$1"), 10000);
  for (const char *text : {"$$1",
                           "--1",
                           "+-1",
                           "-+1",
                           "- -1",
                           "$1$",
                           "1$",
                           "1-",
                           "1.5-",
                           "1.5+",
                           "$ \xA5"
                           "1",
                           "\t1",
                           "1 2",
                           "1 .",
                           "1. 5",
                           "x",
                           "1x",
                           "1:", // the neighbours of the digits
                           "1/",
                           "1:2",
                           "1.:",
                           "x1",
                           "1e5",
                           "1..2",
                           "1.2.3"})
    EXPECT_EQ(status_of(text), NUME_SYNTAX) << text;
}

TEST(TextToMoney, WhiteSpaceBehind) {
  EXPECT_EQ(parsed("1   "), 10000);
  EXPECT_EQ(parsed("1\t\n\v\f\r "), 10000);
  EXPECT_EQ(status_of("1 x"), NUME_SYNTAX);
  EXPECT_EQ(status_of(std::string("1\0", 2)), NUME_SYNTAX);
}

TEST(TextToMoney, FifthDecimalRoundsAlone) {
  EXPECT_EQ(parsed("1.23456"), 12346);
  EXPECT_EQ(parsed("1.23455"), 12346);
  EXPECT_EQ(parsed("1.23454"), 12345);
  EXPECT_EQ(parsed("1.234549"), 12345); // deliberate: 9 has no effect
  EXPECT_EQ(parsed("-1.23455"), -12346);
  EXPECT_EQ(parsed("0.99995"), 10000);
  EXPECT_EQ(parsed("1.2345" + std::string(1000, '9')), 12346);
}

TEST(TextToMoney, Commas) {
  EXPECT_EQ(parsed("1,234"), 12340000);
  EXPECT_EQ(parsed("12,345,678"), 123456780000);
  EXPECT_EQ(parsed("123,456"), 1234560000);
  EXPECT_EQ(parsed(",123"), 1230000); // the first one needs no digit before it
  EXPECT_EQ(parsed("1,234.5"), 12345000);
  EXPECT_EQ(parsed("1,2345"), 123450000);           // only too few digits are refused
  EXPECT_EQ(parsed("1234567,890"), 12345678900000); // deliberate: three by the count of digits
  EXPECT_EQ(parsed("12.3,456"), 123456);            // deliberate: in the fraction too
  for (const char *text :
       {"1,23", "1,2", "1,", ",", ",1", "1,23.5", "1,.5", "1234,567", "12345,678", "123456,789",
        "1,234,5", "1,234,", "1,,234", "1,2345,678", "1.234,5", "12.3,45"})
    EXPECT_EQ(status_of(text), NUME_SYNTAX) << text;
}

TEST(TextToMoney, Limits) {
  EXPECT_EQ(parsed("922337203685477.5807"), largest_money);
  EXPECT_EQ(parsed("-922337203685477.5807"), -largest_money);
  EXPECT_EQ(parsed("-922337203685477.5808"), smallest_money);
  EXPECT_EQ(parsed("-922337203685477.58080"), smallest_money);
  EXPECT_EQ(parsed("-922,337,203,685,477.58080999"),
            smallest_money); // 0 at the fifth, the rest has no effect
  EXPECT_EQ(parsed("-922337203685477.58075"), smallest_money);
  EXPECT_EQ(parsed("922337203685477.58074"), largest_money);
  for (const char *text :
       {"922337203685477.5808", "+922337203685477.5808", "922337203685477.58075",
        "-922337203685477.5809", "-922337203685477.58081", "-922337203685477.58085",
        "922337203685477.581", "-922337203685477.581", "922337203685477.59", "922337203685477.6",
        "922337203685478", "-922337203685478", "9223372036854775808", "99999999999999999999999",
        "-9223372036854775808", "-92233720368547758080", "-922337203685477.58099"})
    EXPECT_EQ(status_of(text), NUME_OVERFLOW) << text;
}

// At each decimal, the count next to the limits on both sides.
TEST(TextToMoney, CountsNearTheLimitsAtEachDecimal) {
  const std::string limit = "9223372036854775807";
  for (int decimals = 0; decimals <= 6; ++decimals)
    for (int64_t step = -12; step <= 12; ++step) {
      // The limit cut to its digits at this decimal, and a few units around it.
      Natural number = Natural::from_digits(limit);
      for (int i = decimals; i < 4; ++i)
        number.divide_small(10);
      for (int i = 4; i < decimals; ++i)
        number.multiply_small(10, 0);
      number = step < 0 ? number - Natural(static_cast<uint64_t>(-step))
                        : number + Natural(static_cast<uint64_t>(step));
      std::string text = number.digits();
      if (decimals > 0)
        text.insert(text.size() - static_cast<size_t>(decimals), ".");
      for (const char *sign : {"", "-"})
        ASSERT_EQ(parse(sign + text), zrvtest::slow_money_parse(sign + text)) << sign << text;
    }
}

// After a failure the digits up to there are left.
TEST(TextToMoney, WhatAFailureLeaves) {
  EXPECT_EQ(parse("-123x"), (Parsed{NUME_SYNTAX, 123}));
  EXPECT_EQ(parse("x"), (Parsed{NUME_SYNTAX, 0}));
  EXPECT_EQ(parse("922337203685478"), (Parsed{NUME_OVERFLOW, 922337203685478}));
  EXPECT_EQ(parse("92233720368547758070"), (Parsed{NUME_OVERFLOW, largest_money}));
  EXPECT_EQ(parse("-922337203685477.58081"), (Parsed{NUME_OVERFLOW, smallest_money}));
}

TEST(TextToMoney, RandomTextsAgainstTheSlowParser) {
  std::vector<NamedSet> sets = all_sets();
  const char *const pieces[] = {
      "0",    "1",   "5",  "8",    "9",        "12",      "123",
      "4567", "000", ".",  ",",    ".",        ",",       "-",
      "+",    "$",   " ",  "\t",   "x",        "-$",      ",234",
      ".5",   " $",  "58", "5808", "92233720", "3685477", "922337203685477"};
  const auto seed = zrvtest::random_seed();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  size_t good = 0;
  for (size_t i = 0; i < zrvtest::random_steps(); ++i) {
    std::string text;
    if (random() % 4 != 0)
      text = random() % 2 == 0 ? "-" : "";
    for (size_t n = random() % 8; n > 0; --n)
      text += pieces[random() % std::size(pieces)];
    const Parsed expected = zrvtest::slow_money_parse(text);
    good += expected.status == NUME_OK;
    ASSERT_EQ(parse(text), expected) << text;
    NamedSet &set = sets[i % sets.size()];
    const std::string spelled = set.set.spell(text, [&] { return random() % 3 == 0; });
    ASSERT_EQ(parse(spelled, set.set.get()), expected) << text << " in " << set.name;
  }
  EXPECT_GT(good, zrvtest::random_steps() / 10);
}

// The built-in set has a way of its own through a text. One that is called wider goes the general
// way and reads the same.
TEST(TextToMoney, BothWaysAlike) {
  CS_ATTRIB general = *com_get_charattrib();
  general.cs_ntype = 2;
  std::mt19937_64 random(29);
  const std::string common = "0123456789,,..-+$ \t\xA3";
  for (int i = 0; i < (zrvtest::sanitized ? 5000 : 100000); ++i) {
    std::string text;
    for (auto n = random() % 12; n > 0; --n)
      text += random() % 16 == 0 ? static_cast<char>(random())
                                 : common[static_cast<size_t>(random() % common.size())];
    ASSERT_EQ(parse(text), parse(text, &general)) << text;
  }
}

TEST(TextToMoney, WideCharacters) {
  TestCharset wide = TestCharset::double_byte(), utf8 = TestCharset::utf8();
  const std::string text = wide.spell("  -$1,234.5 ", [] { return true; });
  EXPECT_EQ(text.size(), 24U);
  EXPECT_EQ(parsed(text, wide.get()), -12345000);
  EXPECT_EQ(parsed("\xC2\xA0-\xC2\xA3\xD9\xA1\xD9\xA2.\xD9\xA5\xC2\xA0", utf8.get()), -125000);
  EXPECT_EQ(status_of("\xC2\xA3\xC2\xA5\xD9\xA1", utf8.get()), NUME_SYNTAX); // two currencies
  EXPECT_EQ(status_of("1\xE3\x80\x80", utf8.get()), NUME_SYNTAX); // a character without a class
  // In a one-byte set the same bytes are something else.
  EXPECT_EQ(status_of(text), NUME_SYNTAX);
}

// A character that the end of the text cuts is read up to there and has no digit's form.
TEST(TextToMoney, CutCharacters) {
  TestCharset wide = TestCharset::double_byte(), utf8 = TestCharset::utf8(),
              four = TestCharset::four_byte();
  EXPECT_EQ(status_of("12\xA3", wide.get()), NUME_SYNTAX);
  EXPECT_EQ(status_of("12\xD9", utf8.get()), NUME_SYNTAX);
  EXPECT_EQ(status_of("12\xF0\x9F", utf8.get()), NUME_SYNTAX);
  EXPECT_EQ(status_of("12\xA3\x31\x81", four.get()), NUME_SYNTAX);
  EXPECT_EQ(status_of("\xA3", four.get()), NUME_SYNTAX);
}

TEST(TextToMoney4, NarrowsAndSaturates) {
  auto parse4 = [](std::string text, CS_INT before = 77) {
    CS_MONEY4 value{before};
    const int status =
        com__mny4fromchar_mb(&value, text.data(), static_cast<CS_INT>(text.size()), 0, nullptr);
    return std::make_pair(status, value.mny4);
  };
  EXPECT_EQ(parse4("-1.5"), std::make_pair(0, -15000));
  EXPECT_EQ(parse4("214748.3647"), std::make_pair(0, largest4));
  EXPECT_EQ(parse4("-214748.3648"), std::make_pair(0, smallest4));
  EXPECT_EQ(parse4("214748.3648"), std::make_pair(1, largest4));
  EXPECT_EQ(parse4("214748.36475"), std::make_pair(1, largest4));
  EXPECT_EQ(parse4("-214748.3649"), std::make_pair(1, smallest4));
  EXPECT_EQ(parse4("-999999999"), std::make_pair(1, smallest4));
  EXPECT_EQ(parse4("99999999999999999999"), std::make_pair(1, 77)); // no CS_MONEY either
  EXPECT_EQ(parse4("1x"), std::make_pair(2, 77));
  EXPECT_EQ(parse4(""), std::make_pair(0, 0));
}

// ---- money to text ----

namespace {

// The text of a value, in a buffer of `room` bytes whose front stays as it was.
std::string print(int64_t count, int style, int room = 30) {
  GuardedBuffer buffer(static_cast<size_t>(std::max(room, 0)));
  CS_MONEY value = money(count);
  char *const start = com__mnytochar(&value, buffer.text(), room, style);
  EXPECT_EQ(count_of(value), count);
  if (start == nullptr) {
    EXPECT_TRUE(buffer.is_untouched());
    return "no room";
  }
  const std::string text(start, buffer.text() + room);
  const size_t front = static_cast<size_t>(start - buffer.text());
  for (size_t i = 0; i + 1 < front; ++i)
    EXPECT_EQ(buffer.data()[i], GuardedBuffer::filler);
  if (front > 0 && buffer.data()[front - 1] != GuardedBuffer::filler)
    return "_" + text; // a blank in place of a comma
  return text;
}

constexpr int style_of(int decimals, int format = 0) {
  return decimals << 8 | format;
}

// Long division on the digits: the value rounded by its last dropped digit.
std::string slow_print(int64_t count, int decimals, bool groups) {
  std::string digits = Natural(magnitude_of(count)).digits();
  digits.insert(0, std::string(digits.size() < 5 ? 5 - digits.size() : 0, '0'));
  const size_t dropped = static_cast<size_t>(4 - decimals);
  const bool up = dropped > 0 && digits[digits.size() - dropped] >= '5';
  digits.resize(digits.size() - dropped);
  digits = (Natural::from_digits(digits) + Natural(up ? 1 : 0)).digits();
  const auto least = static_cast<size_t>(decimals) + 1;
  digits.insert(0, std::string(digits.size() < least ? least - digits.size() : 0, '0'));
  digits.insert(digits.size() - static_cast<size_t>(decimals), ".");
  if (groups)
    for (size_t i = digits.find('.'); i > 3; i -= 3)
      digits.insert(i - 3, ",");
  return (count < 0 ? "-" : "") + digits;
}

} // namespace

TEST(MoneyToText, Styles) {
  EXPECT_EQ(print(0, 0), "0.00");
  EXPECT_EQ(print(smallest_money, 0), "-922337203685477.58");
  EXPECT_EQ(print(largest_money, style_of(4)), "922337203685477.5807");
  EXPECT_EQ(print(smallest_money, style_of(4, 1)), "-922,337,203,685,477.5808");
  EXPECT_EQ(print(12345678910, 1), "1,234,567.89");
  EXPECT_EQ(print(12345678910, 2), "1234567.89"); // only format 1 has commas
  EXPECT_EQ(print(12345678910, 0xFF), "1234567.89");
  EXPECT_EQ(print(12345678915, style_of(1)), "1234567.9");
  EXPECT_EQ(print(12345678915, style_of(3)), "1234567.892");
  EXPECT_EQ(print(12345, style_of(4)), "1.2345");
  EXPECT_EQ(print(12345, style_of(5)), "1.2345");
  EXPECT_EQ(print(12345, style_of(255)), "1.2345");
  EXPECT_EQ(print(12345, -256), "1.2345"); // the bits above the low byte have no sign
}

// Deliberate: the last digit dropped rounds, whatever stood behind it.
TEST(MoneyToText, LastDroppedDigitRoundsAlone) {
  EXPECT_EQ(print(12349, 0), "1.23");
  EXPECT_EQ(print(12350, 0), "1.24");
  EXPECT_EQ(print(-12350, 0), "-1.24");
  EXPECT_EQ(print(14499, style_of(1)), "1.4");
  EXPECT_EQ(print(14500, style_of(1)), "1.5");
  EXPECT_EQ(print(99950, 0), "10.00");
  EXPECT_EQ(print(9999999, 1), "1,000.00");
}

// Deliberate: the sign stays when nothing else does.
TEST(MoneyToText, NegativeNothing) {
  EXPECT_EQ(print(-1, 0), "-0.00");
  EXPECT_EQ(print(-49, 0), "-0.00");
  EXPECT_EQ(print(-50, 0), "-0.01");
}

// Deliberate: where a comma would lead, it becomes a blank in front of the text, if there is room.
TEST(MoneyToText, NoLeadingComma) {
  EXPECT_EQ(print(1234500, 1), "_123.45");
  EXPECT_EQ(print(1234500, 1, 6), "123.45");
  EXPECT_EQ(print(-1234500, 1), "-123.45");
  EXPECT_EQ(print(-1234500, 1, 7), "-123.45");
  EXPECT_EQ(print(-1234500, 1, 6), "no room");
  EXPECT_EQ(print(1234567890, 1), "_123,456.79");
  EXPECT_EQ(print(1234567890, 1, 10), "123,456.79");
  EXPECT_EQ(print(1234567890, 1, 9), "no room");
}

TEST(MoneyToText, AllFormatsAndDecimalsAtEveryRoom) {
  std::vector<int64_t> counts = zrvtest::boundary_counts();
  std::mt19937_64 random(5);
  for (int i = 0; i < (zrvtest::sanitized ? 100 : 2000); ++i)
    counts.push_back(zrvtest::random_count(random));
  for (int64_t count : counts)
    for (int decimals = 1; decimals <= 4; ++decimals)
      for (int format : {0, 1}) {
        const std::string expected = slow_print(count, decimals, format == 1);
        const int length = static_cast<int>(expected.size());
        std::string text = print(count, style_of(decimals, format), length);
        ASSERT_EQ(text, expected);
        text = print(count, style_of(decimals, format), 40);
        ASSERT_TRUE(text == expected || text == "_" + expected) << text << " " << expected;
        for (int room = std::max(length - 3, -1); room < length; ++room)
          ASSERT_EQ(print(count, style_of(decimals, format), room), "no room") << expected;
        // What was printed is read again, to within the decimals that went.
        const Parsed back = parse(expected);
        int64_t lost = 1;
        for (int i = decimals; i < 4; ++i)
          lost *= 10;
        if (back.status == NUME_OK) {
          ASSERT_LE(std::abs(back.count - count), decimals == 4 ? 0 : lost / 2 + lost / 10);
        } else {
          ASSERT_GE(magnitude_of(count), static_cast<uint64_t>(largest_money - lost));
          ASSERT_LT(decimals, 4);
        }
      }
}

TEST(MoneyToText, EveryRoomDownToNothing) {
  for (int room = -2; room <= 24; ++room)
    EXPECT_EQ(print(smallest_money, style_of(4, 1), room), "no room") << room;
  EXPECT_EQ(print(0, 0, 4), "0.00");
  EXPECT_EQ(print(0, 0, 3), "no room");
  EXPECT_EQ(print(-1, 0, 4), "no room");
}

TEST(Money4ToText, ThroughTheLongerForm) {
  GuardedBuffer buffer(20);
  CS_MONEY4 value{smallest4};
  char *start = com__mny4tochar(&value, buffer.text(), 20, style_of(4, 1));
  EXPECT_EQ(std::string(start, buffer.text() + 20), "-214,748.3648");
  EXPECT_EQ(com__mny4tochar(&value, buffer.text(), 12, style_of(4, 1)), nullptr);
}

TEST(MoneyText, NoLocaleHasASay) {
  const zrvtest::ForeignLocale locale;
  EXPECT_EQ(print(12345, 0), "1.23");
  EXPECT_EQ(parsed("1.5"), 15000);
}

// ---- the two sizes ----

TEST(MoneySizes, WidenAndNarrow) {
  for (CS_INT count : {0, 1, -1, largest4, smallest4}) {
    CS_MONEY4 small{count}, back{77};
    CS_MONEY wide = money(77);
    com__mny4tomny(&small, &wide);
    EXPECT_EQ(count_of(wide), count);
    EXPECT_EQ(com__mnytomny4(&wide, &back), 4);
    EXPECT_EQ(back.mny4, count);
  }
  const struct {
    int64_t count;
    CS_INT result;
  } rows[] = {{int64_t{largest4} + 1, largest4},
              {int64_t{smallest4} - 1, smallest4},
              {0xFFFFFFFF, largest4},
              {0x100000000, largest4},
              {-0x100000000, smallest4},
              {-int64_t{0xFFFFFFFF}, smallest4},
              {largest_money, largest4},
              {smallest_money, smallest4}};
  for (const auto &row : rows) {
    CS_MONEY wide = money(row.count);
    CS_MONEY4 small{77};
    EXPECT_EQ(com__mnytomny4(&wide, &small), -1) << row.count;
    EXPECT_EQ(small.mny4, row.result) << row.count;
  }
}

// ---- integers ----

namespace {

// What a conversion to an integer stores, or nothing.
template <class Money, class Integer>
std::pair<int, std::string> to_integer(int (*convert)(Money *, Integer *), Money value) {
  GuardedBuffer buffer(sizeof(Integer), 1); // at any address
  const int status = convert(&value, reinterpret_cast<Integer *>(buffer.data()));
  return {status, buffer.is_untouched() ? "nothing" : std::to_string(buffer.value<Integer>())};
}

std::pair<int, std::string> result(int status, const std::string &text) {
  return {status, text};
}

} // namespace

TEST(MoneyToInteger, RoundsHalfAwayFromZero) {
  const struct {
    int64_t count;
    const char *text;
  } rows[] = {{0, "0"},     {4999, "0"},   {5000, "1"},    {14999, "1"},  {15000, "2"},
              {-4999, "0"}, {-5000, "-1"}, {-15000, "-2"}, {-14999, "-1"}};
  for (const auto &row : rows) {
    EXPECT_EQ(to_integer(com__mnytoint, money(row.count)), result(0, row.text));
    EXPECT_EQ(to_integer(com__mnytoint8, money(row.count)), result(0, row.text));
    const CS_MONEY4 small{static_cast<CS_INT>(row.count)};
    EXPECT_EQ(to_integer(com__mny4toint, small), result(0, row.text));
    EXPECT_EQ(to_integer(com__mny4toint8, small), result(0, row.text));
    const bool negative = row.count < 0;
    const auto expected = negative ? result(1, "nothing") : result(0, row.text);
    EXPECT_EQ(to_integer(com__mnytouint, money(row.count)), expected);
    EXPECT_EQ(to_integer(com__mnytouint8, money(row.count)), expected);
    EXPECT_EQ(to_integer(com__mny4touint, small), expected);
    EXPECT_EQ(to_integer(com__mny4touint8, small), expected);
  }
}

TEST(MoneyToInteger, Limits) {
  EXPECT_EQ(to_integer(com__mnytoint, money(21474836474999)), result(0, "2147483647"));
  EXPECT_EQ(to_integer(com__mnytoint, money(21474836475000)), result(1, "2147483647"));
  EXPECT_EQ(to_integer(com__mnytoint, money(-21474836484999)), result(0, "-2147483648"));
  EXPECT_EQ(to_integer(com__mnytoint, money(-21474836485000)), result(1, "-2147483648"));
  EXPECT_EQ(to_integer(com__mnytoint, money(largest_money)), result(1, "2147483647"));
  EXPECT_EQ(to_integer(com__mnytoint, money(smallest_money)), result(1, "-2147483648"));
  EXPECT_EQ(to_integer(com__mnytouint, money(42949672954999)), result(0, "4294967295"));
  EXPECT_EQ(to_integer(com__mnytouint, money(42949672955000)), result(1, "4294967295"));
  EXPECT_EQ(to_integer(com__mnytouint, money(largest_money)), result(1, "4294967295"));
  EXPECT_EQ(to_integer(com__mnytouint, money(-1)), result(1, "nothing"));
  EXPECT_EQ(to_integer(com__mnytoint8, money(largest_money)), result(0, "922337203685478"));
  EXPECT_EQ(to_integer(com__mnytoint8, money(smallest_money)), result(0, "-922337203685478"));
  EXPECT_EQ(to_integer(com__mnytouint8, money(largest_money)), result(0, "922337203685478"));
  EXPECT_EQ(to_integer(com__mnytouint8, money(smallest_money)), result(1, "nothing"));
  EXPECT_EQ(to_integer(com__mny4toint, CS_MONEY4{smallest4}), result(0, "-214748"));
  EXPECT_EQ(to_integer(com__mny4touint, CS_MONEY4{largest4}), result(0, "214748"));
}

TEST(IntegerToMoney, ScalesOrOverflows) {
  auto from = [](auto convert, auto value) {
    CS_MONEY result = money(77);
    const int status = convert(&result, &value);
    return std::make_pair(status, count_of(result));
  };
  using Pair = std::pair<int, int64_t>;
  EXPECT_EQ(from(com__inttomny, CS_INT{-7}), Pair(0, -70000));
  EXPECT_EQ(from(com__inttomny, smallest4), Pair(0, int64_t{smallest4} * 10000));
  EXPECT_EQ(from(com__inttomny, largest4), Pair(0, int64_t{largest4} * 10000));
  EXPECT_EQ(from(com__uinttomny, CS_UINT{0xFFFFFFFF}), Pair(0, int64_t{0xFFFFFFFF} * 10000));
  EXPECT_EQ(from(com__int8tomny, CS_BIGINT{922337203685477}), Pair(0, 9223372036854770000));
  EXPECT_EQ(from(com__int8tomny, CS_BIGINT{-922337203685477}), Pair(0, -9223372036854770000));
  // Too large: the integer is left as the count.
  EXPECT_EQ(from(com__int8tomny, CS_BIGINT{922337203685478}), Pair(1, 922337203685478));
  EXPECT_EQ(from(com__int8tomny, CS_BIGINT{-922337203685478}), Pair(1, -922337203685478));
  EXPECT_EQ(from(com__int8tomny, CS_BIGINT{smallest_money}), Pair(1, smallest_money));
  EXPECT_EQ(from(com__uint8tomny, CS_UBIGINT{922337203685477}), Pair(0, 9223372036854770000));
  EXPECT_EQ(from(com__uint8tomny, CS_UBIGINT{922337203685478}), Pair(1, 922337203685478));
  EXPECT_EQ(from(com__uint8tomny, CS_UBIGINT{1} << 63), Pair(1, largest_money));
  EXPECT_EQ(from(com__uint8tomny, ~CS_UBIGINT{0}), Pair(1, largest_money));
}

TEST(IntegerToMoney4, ScalesOrSaturates) {
  auto from = [](auto convert, auto value) {
    CS_MONEY4 result{77};
    const int status = convert(&result, &value);
    return std::make_pair(status, result.mny4);
  };
  using Pair = std::pair<int, CS_INT>;
  EXPECT_EQ(from(com__inttomny4, CS_INT{-7}), Pair(0, -70000));
  EXPECT_EQ(from(com__inttomny4, CS_INT{214748}), Pair(0, 2147480000));
  EXPECT_EQ(from(com__inttomny4, CS_INT{214749}), Pair(1, largest4));
  EXPECT_EQ(from(com__inttomny4, CS_INT{-214749}), Pair(1, smallest4));
  EXPECT_EQ(from(com__uinttomny4, CS_UINT{214748}), Pair(0, 2147480000));
  EXPECT_EQ(from(com__uinttomny4, CS_UINT{0xFFFFFFFF}), Pair(1, largest4));
  EXPECT_EQ(from(com__int8tomny4, CS_BIGINT{-214748}), Pair(0, -2147480000));
  EXPECT_EQ(from(com__int8tomny4, CS_BIGINT{largest_money}), Pair(1, largest4));
  EXPECT_EQ(from(com__int8tomny4, CS_BIGINT{smallest_money}), Pair(1, smallest4));
  EXPECT_EQ(from(com__uint8tomny4, CS_UBIGINT{5}), Pair(0, 50000));
  EXPECT_EQ(from(com__uint8tomny4, ~CS_UBIGINT{0}), Pair(1, largest4));
}

// ---- doubles ----

namespace {

std::pair<int, int64_t> from_double(double value) {
  GuardedBuffer source(8, 3), dest(8, 5); // at any address
  source.set(value);
  const int length = com__flt8tomny(source.data(), 8, dest.data(), 8, 0);
  return {length, count_of(dest.value<CS_MONEY>())};
}

double to_double(int64_t count) {
  GuardedBuffer source(8, 3), dest(8, 5);
  source.set(money(count));
  EXPECT_EQ(com__mnytoflt8(source.data(), 8, dest.data(), 8, 0), 8);
  return dest.value<double>();
}

} // namespace

TEST(DoubleToMoney, RoundsAndLimits) {
  using Pair = std::pair<int, int64_t>;
  EXPECT_EQ(from_double(0), Pair(8, 0));
  EXPECT_EQ(from_double(1.5), Pair(8, 15000));
  EXPECT_EQ(from_double(-1.5), Pair(8, -15000));
  EXPECT_EQ(from_double(0.00004), Pair(8, 0));
  EXPECT_EQ(from_double(0.00006), Pair(8, 1));
  EXPECT_EQ(from_double(-0.00006), Pair(8, -1));
  EXPECT_EQ(from_double(214748.3648), Pair(8, 2147483648)); // the top bit of the low word
  EXPECT_EQ(from_double(429496.7295), Pair(8, 4294967295));
  EXPECT_EQ(from_double(429496.7296), Pair(8, 4294967296));
  EXPECT_EQ(from_double(-429496.7296), Pair(8, -4294967296));
  // 922337203685477.6 is the double 922337203685477.625, and the ones below it are an eighth apart.
  // Deliberate: the high word takes 922337203255980.8512, the nearest double 0.0238 more than that.
  EXPECT_EQ(from_double(922337203685477.5), Pair(8, 9223372036854774762));
  EXPECT_EQ(from_double(922337203685477.6), Pair(8, largest_money));
  EXPECT_EQ(from_double(-922337203685477.6), Pair(8, -largest_money));
  EXPECT_EQ(from_double(922337203685477.75), Pair(-1, 0));
  EXPECT_EQ(from_double(-922337203685477.75), Pair(-1, 0));
  EXPECT_EQ(from_double(1e300), Pair(-1, 0));
  EXPECT_EQ(from_double(-INFINITY), Pair(-1, 0));
  EXPECT_EQ(from_double(std::nan("")), Pair(-1, 0));
}

// Multiples of what the high word counts, and doubles next to them, where the division rounds up to
// the next one.
TEST(DoubleToMoney, MultiplesOfTheHighWord) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 200000; ++i) {
    const auto high = static_cast<double>(random() >> (33 + random() % 31));
    double value = high * 429496.7296;
    for (auto steps = random() % 3; steps > 0; --steps)
      value = std::nextafter(value, random() % 2 == 0 ? 0 : INFINITY);
    if (value >= 922337203685477.5)
      continue;
    const auto [length, count] = from_double(value);
    ASSERT_EQ(length, 8);
    // A few units of the last place of the double, and the rounding to a ten-thousandth.
    const double error = std::abs(static_cast<double>(count) / 10000 - value);
    ASSERT_LE(error, std::max(0.000051, 4 * value * 2.3e-16)) << value;
  }
}

TEST(DoubleToMoney, NothingIsZero) {
  CS_MONEY value = money(7);
  double one = 1;
  EXPECT_EQ(com__flt8tomny(nullptr, 8, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  value = money(7);
  EXPECT_EQ(com__flt8tomny(&one, 0, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  float single = 1;
  value = money(7);
  EXPECT_EQ(com__flt4tomny(&single, 0, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  value = money(7);
  EXPECT_EQ(com__flt4tomny(nullptr, 4, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  CS_MONEY4 small{7};
  EXPECT_EQ(com__flt8tomny4(nullptr, 8, &small, 0), 4);
  EXPECT_EQ(small.mny4, 0);
  small.mny4 = 7;
  EXPECT_EQ(com__flt4tomny4(&single, 0, &small, 0), 4);
  EXPECT_EQ(small.mny4, 0);
}

// A source of no length is not looked at.
TEST(FloatToMoney, NothingIsRead) {
  GuardedBuffer nowhere(0);
  CS_MONEY value = money(7);
  EXPECT_EQ(com__flt8tomny(nowhere.data(), 0, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  value = money(7);
  EXPECT_EQ(com__flt4tomny(nowhere.data(), 0, &value, 8, 0), 8);
  EXPECT_EQ(count_of(value), 0);
  CS_MONEY4 small{7};
  EXPECT_EQ(com__flt4tomny4(nowhere.data(), 0, &small, 0), 4);
  EXPECT_EQ(small.mny4, 0);
}

TEST(FloatToMoney, WidensFirst) {
  float value = 0.1F;
  CS_MONEY result;
  EXPECT_EQ(com__flt4tomny(&value, 4, &result, 8, 0), 8);
  EXPECT_EQ(count_of(result), 1000);
  value = 1e30F;
  EXPECT_EQ(com__flt4tomny(&value, 4, &result, 8, 0), -1);
  EXPECT_EQ(count_of(result), 0);
}

// The nearest value for what is a CS_MONEY at least, and zero beyond.
TEST(DoubleToMoney4, NarrowsAndSaturates) {
  auto from = [](double value) {
    CS_MONEY4 result{77};
    const int length = com__flt8tomny4(&value, 8, &result, 0);
    return std::make_pair(length, result.mny4);
  };
  EXPECT_EQ(from(-1.5), std::make_pair(4, -15000));
  EXPECT_EQ(from(214748.3647), std::make_pair(4, largest4));
  EXPECT_EQ(from(214748.3648), std::make_pair(-1, largest4));
  EXPECT_EQ(from(-214748.3648), std::make_pair(4, smallest4));
  EXPECT_EQ(from(-214748.3649), std::make_pair(-1, smallest4));
  EXPECT_EQ(from(922337203685477.6), std::make_pair(-1, largest4));
  EXPECT_EQ(from(-1e20), std::make_pair(-1, 0));
  EXPECT_EQ(from(1e20), std::make_pair(-1, 0));
  float single = 2.5F;
  CS_MONEY4 result{77};
  EXPECT_EQ(com__flt4tomny4(&single, 4, &result, 0), 4);
  EXPECT_EQ(result.mny4, 25000);
  single = -1e6F;
  EXPECT_EQ(com__flt4tomny4(&single, 4, &result, 0), -1);
  EXPECT_EQ(result.mny4, smallest4);
  single = 1e30F;
  EXPECT_EQ(com__flt4tomny4(&single, 4, &result, 0), -1);
  EXPECT_EQ(result.mny4, 0);
}

TEST(MoneyToDouble, WordsApart) {
  EXPECT_EQ(to_double(0), 0);
  EXPECT_EQ(to_double(15000), 1.5);
  EXPECT_EQ(to_double(-1), 4294967295 / 10000.0 - 429496.7296);
  EXPECT_EQ(to_double(0x100000000), 429496.7296);
  EXPECT_EQ(to_double(smallest_money), -2147483648.0 * 429496.7296);
  EXPECT_EQ(to_double(largest_money), 4294967295 / 10000.0 + 2147483647.0 * 429496.7296);
  CS_MONEY value = money(-15001);
  float single;
  EXPECT_EQ(com__mnytoflt4(&value, 8, &single, 4, 0), 4);
  EXPECT_EQ(single, static_cast<float>(to_double(-15001)));
  // The shorter form is not widened.
  CS_MONEY4 small{-1};
  double wide;
  EXPECT_EQ(com__mny4toflt8(&small, &wide), 8);
  EXPECT_EQ(wide, -1 / 10000.0);
  EXPECT_NE(wide, to_double(-1));
  EXPECT_EQ(com__mny4toflt4(&small, &single), 4);
  EXPECT_EQ(single, static_cast<float>(-1 / 10000.0));
}

TEST(MoneyConversionChecks, NullPointers) {
  CS_MONEY m = money(5);
  CS_MONEY4 m4{5};
  CS_CHAR text[32] = "1";
  double number = 1;
  auto null = [](int expected, const char *file, auto call) {
    const zrvtest::CheckReport report =
        zrvtest::catch_check([&] { EXPECT_EQ(call(), expected) << file; });
    EXPECT_TRUE(zrvtest::is_null_pointer_report(report, file)) << report.text;
  };
  const char *const file = "mnycnvt.cpp", *const file4 = "mny4cnvt.cpp";
  null(1, file, [&] { return com__mnyfromchar_mb(nullptr, text, 1, 0, nullptr); });
  null(1, file, [&] { return com__mnyfromchar_mb(&m, nullptr, 1, 0, nullptr); });
  null(1, file4, [&] { return com__mny4fromchar_mb(nullptr, text, 1, 0, nullptr); });
  null(1, file, [&] { return com__mny4fromchar_mb(&m4, nullptr, 1, 0, nullptr); });
  null(1, file, [&] { return com__mnytochar(nullptr, text, 32, 0) == nullptr; });
  null(1, file, [&] { return com__mnytochar(&m, nullptr, 32, 0) == nullptr; });
  null(1, file4, [&] { return com__mny4tochar(nullptr, text, 32, 0) == nullptr; });
  null(0, file4, [&] { return com__mny4tomny(nullptr, &m), 0; });
  null(0, file4, [&] { return com__mny4tomny(&m4, nullptr), 0; });
  null(-1, file, [&] { return com__mnytomny4(nullptr, &m4); });
  null(-1, file, [&] { return com__mnytomny4(&m, nullptr); });
  auto both = [&](auto convert, auto value, const char *where, auto integer) {
    null(1, where, [&] { return convert(nullptr, &integer); });
    null(1, where, [&] { return convert(&value, nullptr); });
  };
  both(com__mnytoint, m, file, CS_INT{});
  both(com__mnytoint8, m, file, CS_BIGINT{});
  both(com__mnytouint, m, file, CS_UINT{});
  both(com__mnytouint8, m, file, CS_UBIGINT{});
  both(com__inttomny, m, file, CS_INT{});
  both(com__int8tomny, m, file, CS_BIGINT{});
  both(com__uinttomny, m, file, CS_UINT{});
  both(com__uint8tomny, m, file, CS_UBIGINT{});
  both(com__mny4toint, m4, file4, CS_INT{});
  both(com__mny4toint8, m4, file4, CS_BIGINT{});
  both(com__mny4touint, m4, file4, CS_UINT{});
  both(com__mny4touint8, m4, file4, CS_UBIGINT{});
  both(com__inttomny4, m4, file4, CS_INT{});
  both(com__int8tomny4, m4, file4, CS_BIGINT{});
  both(com__uinttomny4, m4, file4, CS_UINT{});
  both(com__uint8tomny4, m4, file4, CS_UBIGINT{});
  null(-1, file, [&] { return com__flt8tomny(&number, 8, nullptr, 8, 0); });
  null(-1, file, [&] { return com__flt4tomny(&number, 4, nullptr, 8, 0); });
  null(-1, file4, [&] { return com__flt8tomny4(&number, 8, nullptr, 0); });
  null(-1, file4, [&] { return com__flt4tomny4(&number, 4, nullptr, 0); });
  for (auto convert : {com__mnytoflt8, com__mnytoflt4}) {
    null(-1, file, [&] { return convert(nullptr, 8, &number, 8, 0); });
    null(-1, file, [&] { return convert(&m, 8, nullptr, 8, 0); });
  }
  for (auto convert : {com__mny4toflt8, com__mny4toflt4}) {
    null(-1, file4, [&] { return convert(nullptr, &number); });
    null(-1, file4, [&] { return convert(&m4, nullptr); });
  }
}
