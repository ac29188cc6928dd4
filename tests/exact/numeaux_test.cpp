// Exact numerics from and to text, doubles, integers and money.
#include <cerrno>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "descriptor.h"
#include "foreign_locale.h"
#include "numeric_operands.h"

using zrvtest::Descriptor;
using zrvtest::GuardedBuffer;
using zrvtest::Natural;
using zrvtest::ParseResult;

namespace {

constexpr int automatic = 255;

// What com__subchartoexctnume did.
struct Parsed {
  int status, precision, scale, length, offset;
  std::string value;
};

Parsed parse(std::string text, int precision, int scale, int flag = 1, int destlen = -1,
             int len = -1) {
  if (destlen < 0)
    destlen = precision >= 1 && precision <= 77 ? comn_num_getlen(precision) : 33;
  GuardedBuffer buffer(static_cast<size_t>(destlen == 0 ? 33 : std::max(destlen, 2)));
  CS_BYTE *dest = buffer.data();
  CS_INT length = destlen;
  CS_BYTE p = static_cast<CS_BYTE>(precision), s = static_cast<CS_BYTE>(scale);
  Parsed result;
  result.status = com__subchartoexctnume(
      text.data(), len >= 0 || len < -1 ? len : static_cast<CS_INT>(text.size()), &dest, &length,
      &p, &s, flag);
  result.precision = p;
  result.scale = s;
  result.length = length;
  result.offset = static_cast<int>(dest - buffer.data());
  EXPECT_GE(result.offset, 0);
  if (result.status == NUME_OK) {
    EXPECT_EQ(result.offset + length, static_cast<int>(buffer.size()));
    result.value = (dest[0] != 0 ? "-" : "") + Natural::from_bytes(dest + 1, length - 1).digits();
  }
  return result;
}

// digits, precision and scale of a text at automatic precision and scale, or its status
std::string parse_automatic(const std::string &text, int flag = 0) {
  const Parsed result = parse(text, automatic, automatic, flag);
  if (result.status != NUME_OK)
    return "status " + std::to_string(result.status);
  return result.value + " (" + std::to_string(result.precision) + "," +
         std::to_string(result.scale) + ")";
}

std::string parse_fixed(const std::string &text, int precision, int scale, int flag = 1) {
  const Parsed result = parse(text, precision, scale, flag);
  return result.status != NUME_OK ? "status " + std::to_string(result.status) : result.value;
}

std::string print(const std::string &digits, int scale, bool negative = false, int room = 80) {
  Descriptor value(33, 77, scale, digits, negative);
  GuardedBuffer buffer(static_cast<size_t>(room));
  const int start = com__subexctnumetochar(value.get(), buffer.text(), room);
  if (start < 0) {
    EXPECT_TRUE(buffer.is_untouched());
    return "no room";
  }
  return buffer.contents().substr(static_cast<size_t>(start));
}

} // namespace

TEST(TextToNumeric, AutomaticShapes) {
  EXPECT_EQ(parse_automatic("12.50"), "1250 (4,2)");
  EXPECT_EQ(parse_automatic(".5"), "5 (1,1)");
  EXPECT_EQ(parse_automatic("0.5"), "5 (2,1)");
  EXPECT_EQ(parse_automatic("007"), "7 (1,0)");
  EXPECT_EQ(parse_automatic(""), "0 (1,0)");
  EXPECT_EQ(parse_automatic("-0"), "0 (1,0)");
  EXPECT_EQ(parse_automatic("0.000"), "0 (4,3)");
  EXPECT_EQ(parse_automatic("-  7."), "-7 (1,0)");
  EXPECT_EQ(parse_automatic("1e5"), "100000 (6,0)"); // never fewer digits than the value has
}

// Deliberate: fraction digits win over an exponent, and a negative exponent without them is stored
// as a byte.
TEST(TextToNumeric, AutomaticScaleWithAnExponent) {
  EXPECT_EQ(parse_automatic("1.5e1"), "15 (2,1)");
  EXPECT_EQ(parse_automatic("5e-2"), "5 (1,254)");
  EXPECT_EQ(parse_automatic("5e-200"), "5 (1,56)");
  EXPECT_EQ(parse_automatic("5e-1000"), "status 6"); // beyond 255 places nothing is stored
}

// Deliberate: the fraction digit that has no more room, at which the scan stops, counts in the
// automatic scale like those that are stored, so that the value comes out a tenth of what the text
// says; nor does it round.
TEST(TextToNumeric, AutomaticScaleCountsTheDroppedDigit) {
  const std::string stored = "1" + std::string(76, '2');
  const std::string text = "1." + std::string(76, '2');
  EXPECT_EQ(parse_automatic(text, 1), stored + " (77,76)");
  EXPECT_EQ(parse_automatic(text + "9", 1), stored + " (77,77)");
  EXPECT_EQ(parse_automatic(text + "987x", 1), stored + " (77,77)");
  EXPECT_EQ(parse_automatic(text + "9", 0), "status 6");
  EXPECT_EQ(parse_automatic("-" + stored + ".9", 1), "-" + stored + " (77,1)");
  // A shorter destination has room for fewer: 4 bytes hold 7 digits.
  const Parsed result = parse("12.345678", 7, automatic, 1, 4);
  EXPECT_EQ(result.value, "1234567");
  EXPECT_EQ(result.scale, 6);
}

TEST(TextToNumeric, AutomaticPrecisionKeepsTheValueAtTheEndOfTheBuffer) {
  const Parsed result = parse("12345", 0, automatic);
  EXPECT_EQ(result.precision, 5);
  EXPECT_EQ(result.length, 4);
  EXPECT_EQ(result.offset, 29);
  EXPECT_EQ(parse("12345", 0, automatic, 1, 0).offset, 29); // a length of 0 is 33
  EXPECT_EQ(parse_automatic("1e76"), "1" + std::string(76, '0') + " (77,0)");
  EXPECT_EQ(parse_automatic("1e77"), "status 1");                      // needs 78 digits
  EXPECT_EQ(parse_automatic("0." + std::string(77, '0')), "status 1"); // 78 digits written
  // The buffer is shorter than the precision needs.
  EXPECT_EQ(parse("0.0000000", automatic, automatic, 1, 4).status, NUME_OVERFLOW);
  EXPECT_EQ(parse("9e2", automatic, automatic, 1, 2).status, NUME_OVERFLOW);
  // A carry makes a digit more.
  EXPECT_EQ(parse("9.9", automatic, 0).precision, 2);
}

TEST(TextToNumeric, SignsAndBlanks) {
  EXPECT_EQ(parse_fixed("  -  42", 5, 0), "-42");
  EXPECT_EQ(parse_fixed("+42 \t\n", 5, 0), "42");
  EXPECT_EQ(parse_fixed("--42", 5, 0), "status 2");
  EXPECT_EQ(parse_fixed("+-42", 5, 0), "status 2");
  EXPECT_EQ(parse_fixed("\t42", 5, 0), "status 2"); // other white space ends the number at once
  EXPECT_EQ(parse_fixed("\t ", 5, 0), "0");
}

TEST(TextToNumeric, SyntaxErrors) {
  EXPECT_EQ(parse_fixed("x", 5, 1), "status 2");
  EXPECT_EQ(parse_fixed("1x", 5, 1), "status 2");
  EXPECT_EQ(parse_fixed("1.2.3", 5, 1), "status 2");
  EXPECT_EQ(parse_fixed("1 2", 5, 1), "status 2");
  EXPECT_EQ(parse_fixed("4-", 5, 1), "status 2");
  EXPECT_EQ(parse_fixed("1e", 5, 1), "10"); // an exponent without digits is 0
  EXPECT_EQ(parse_fixed("1ex", 5, 1), "status 2");
  EXPECT_EQ(parse("1", 5, 0, 1, -1, -2).status, NUME_SYNTAX);
  EXPECT_EQ(parse("1", 5, 0, 1, -1, INT32_MIN).status, NUME_SYNTAX);
}

// Deliberate: white space is taken only behind two characters of exponent.
TEST(TextToNumeric, WhiteSpaceBehindAnExponent) {
  EXPECT_EQ(parse_fixed("1e5", 9, 0), "100000");
  EXPECT_EQ(parse_fixed("1e5 ", 9, 0), "status 2");
  EXPECT_EQ(parse_fixed("1e+5 ", 9, 0), "status 2");
  EXPECT_EQ(parse_fixed("1e05 ", 9, 0), "100000");
  EXPECT_EQ(parse_fixed("1e+05 ", 9, 0), "100000");
  EXPECT_EQ(parse_fixed("1e05  x", 9, 0), "status 2");
  EXPECT_NE(parse_fixed("1e55 ", 77, 0), "status 2");
  // The scan of the exponent runs to the NUL, not to the length.
  EXPECT_EQ(parse("1e5x", 9, 0, 1, -1, 3).status, NUME_SYNTAX);
  EXPECT_EQ(parse("1e05", 9, 0, 1, -1, 3).value, "100000");
  // "e" is looked for before "E".
  EXPECT_EQ(parse_fixed("1E2e3", 9, 0), "1000");
  EXPECT_EQ(parse_fixed("1E2", 9, 0), "100");
}

TEST(TextToNumeric, DroppedDigitsRoundOrFail) {
  EXPECT_EQ(parse_fixed("1.239", 5, 2), "124");
  EXPECT_EQ(parse_fixed("1.234", 5, 2), "123");
  EXPECT_EQ(parse_fixed("1.235", 5, 2), "124");
  EXPECT_EQ(parse_fixed("-1.235", 5, 2), "-124");
  EXPECT_EQ(parse_fixed("9.999", 3, 2), "status 1");
  EXPECT_EQ(parse_fixed("1.239", 5, 2, 0), "status 6");
  EXPECT_EQ(parse_fixed("1.230", 5, 2, 0), "status 6"); // a zero, too, would be dropped
  EXPECT_EQ(parse_fixed("1.23", 5, 2, 0), "123");
  EXPECT_EQ(parse_fixed("0.5", 1, 0), "1");
  EXPECT_EQ(parse_fixed("-0.4", 1, 0), "0");
}

// Deliberate: the scan stops at the first dropped fraction digit, whatever follows.
TEST(TextToNumeric, NothingBehindTheFirstDroppedDigitIsLookedAt) {
  EXPECT_EQ(parse_fixed("1.239x", 5, 2), "124");
  EXPECT_EQ(parse_fixed("1.239x", 5, 4), "status 2");
}

TEST(TextToNumeric, Exponents) {
  EXPECT_EQ(parse_fixed("1.5e3", 9, 2), "150000");
  EXPECT_EQ(parse_fixed("1500.0e-3", 9, 3), "1500");
  EXPECT_EQ(parse_fixed("1.239e-1", 9, 2), "12");
  EXPECT_EQ(parse_fixed("5e-9", 9, 2), "0");
  EXPECT_EQ(parse_fixed("-5e-9", 9, 2), "0");
  EXPECT_EQ(parse_fixed("5e-9", 9, 2, 0), "status 6");
  EXPECT_EQ(parse_fixed("1e77", 77, 0), "status 1");
  EXPECT_EQ(parse_fixed("1e78", 77, 0), "status 2"); // 78 digits of shift are a syntax error
  EXPECT_EQ(parse_fixed("0e78", 77, 0), "status 2");
  EXPECT_EQ(parse_fixed("1e99999999999999999999999999", 77, 0), "status 2");
  EXPECT_EQ(parse_fixed("1e-99999999999999999999999999", 77, 0), "0");
  // Deliberate: an exponent below the scale stores no integer digit, and where the rounding place
  // is the one before the point, each digit of 5 and more rounds up.
  EXPECT_EQ(parse_fixed("15e-1", 5, 0), "10");
  EXPECT_EQ(parse_fixed("1500e-3", 9, 2), "1000");
  EXPECT_EQ(parse_fixed("1500e-4", 9, 2), "0");
}

TEST(TextToNumeric, NegativeZeroHasNoSign) {
  EXPECT_EQ(parse_fixed("-0", 2, 0), "0");
  EXPECT_EQ(parse_fixed("-0.00", 9, 2), "0");
  EXPECT_EQ(parse_fixed("-0.001", 9, 2), "0");
}

TEST(TextToNumeric, PrecisionIsMet) {
  EXPECT_EQ(parse_fixed("99", 2, 0), "99");
  EXPECT_EQ(parse_fixed("100", 2, 0), "status 1");
  EXPECT_EQ(parse_fixed("100", 2, 0, 0), "status 6"); // the third digit does not fit the length
  EXPECT_EQ(parse_fixed(std::string(77, '9'), 77, 0), std::string(77, '9'));
  EXPECT_EQ(parse_fixed(std::string(78, '9'), 77, 0), "status 1");
}

TEST(TextToNumeric, LengthsThatNoValueHas) {
  for (int destlen : {1, -1, 37, INT32_MAX, INT32_MIN}) {
    CS_BYTE room[40] = {7};
    CS_BYTE *dest = room;
    CS_INT length = destlen;
    CS_BYTE precision = 5, scale = 0;
    char text[] = "1";
    EXPECT_EQ(com__subchartoexctnume(text, 1, &dest, &length, &precision, &scale, 1),
              NUME_OVERFLOW);
    EXPECT_EQ(room[0], 7);
  }
  // 34 to 36 bytes take more than 77 digits.
  const std::string digits(79, '9');
  EXPECT_EQ(parse(digits, 77, 0, 1, 34).status, NUME_OVERFLOW);
  EXPECT_EQ(parse(std::string(84, '9') + "x", 77, 0, 1, 36).status, NUME_SYNTAX);
  EXPECT_EQ(parse(std::string(85, '9') + "x", 77, 0, 1, 36).status, NUME_OVERFLOW);
}

// A failure leaves the destination cleared: also the one of the shift, which comes after the scan.
TEST(TextToNumeric, FailuresLeaveTheDestinationCleared) {
  struct {
    const char *text;
    CS_INT len;
    CS_BYTE scale;
    CS_INT flag;
  } const cases[] = {{"12345", 5, 4, 0}, {"12345", 5, 4, 1}, {"1x", 2, 0, 1},  {"1.25", 4, 1, 0},
                     {"7", -1, 0, 1},    {"7e78", 4, 0, 1},  {"7e-9", 4, 0, 0}};
  for (const auto &c : cases) {
    std::string text = c.text;
    GuardedBuffer buffer(4);
    CS_BYTE *dest = buffer.data();
    CS_INT length = 4;
    CS_BYTE precision = 5, scale = c.scale;
    EXPECT_NE(
        com__subchartoexctnume(text.data(), c.len, &dest, &length, &precision, &scale, c.flag),
        NUME_OK);
    EXPECT_EQ(buffer.contents(), std::string(4, '\0')) << text;
  }
}

// 1 alone lets digits be dropped.
TEST(TextToNumeric, OtherFlagsAreLikeZero) {
  for (CS_INT flag : {0, 2, 3, -1, 255, 257, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(parse_fixed("1.239", 5, 2, flag), "status 6") << flag;
    EXPECT_EQ(parse_fixed("1.23", 5, 2, flag), "123") << flag;
    EXPECT_EQ(parse_fixed("5e-9", 9, 2, flag), "status 6") << flag;
    EXPECT_EQ(parse_fixed("15e-1", 5, 0, flag), "status 6") << flag;
  }
}

// With automatic precision the value stands at the end, and the bytes in front of it are cleared.
TEST(TextToNumeric, FrontOfTheBufferIsCleared) {
  CS_BYTE room[33];
  std::memset(room, 0x5C, sizeof room);
  CS_BYTE *dest = room, precision = 0, scale = 255;
  CS_INT length = sizeof room;
  char text[] = "-12.5";
  ASSERT_EQ(com__subchartoexctnume(text, 5, &dest, &length, &precision, &scale, 0), NUME_OK);
  EXPECT_EQ(dest, room + 30);
  for (int i = 0; i < 30; ++i)
    EXPECT_EQ(room[i], 0) << i;
  EXPECT_EQ(room[30], 1);
  EXPECT_EQ(room[31], 0);
  EXPECT_EQ(room[32], 125);
}

TEST(TextToNumeric, NullPointers) {
  CS_BYTE room[33], *dest = room, precision = 5, scale = 0;
  CS_INT length = 4;
  char text[] = "1";
  EXPECT_NULL_POINTER_CHECK(
      "numeaux_text.cpp", NUME_OVERFLOW,
      com__subchartoexctnume(nullptr, 1, &dest, &length, &precision, &scale, 1));
  EXPECT_NULL_POINTER_CHECK("numeaux_text.cpp", NUME_OVERFLOW,
                            com__subchartoexctnume(text, 1, &dest, &length, nullptr, &scale, 1));
}

namespace {

testing::AssertionResult parses_alike(const std::string &text, int len, int destlen, int precision,
                                      int scale, int flag) {
  const Parsed result = parse(text, precision, scale, flag, destlen, len);
  const ParseResult expected = zrvtest::reference_parse(text, len, destlen, precision, scale, flag);
  auto failure = testing::AssertionFailure()
                 << '"' << text << "\" (" << len << ") into " << destlen << " bytes, precision "
                 << precision << ", scale " << scale << ", flag " << flag << ": ";
  if (result.status != expected.status)
    return failure << "status " << result.status << " instead of " << expected.status;
  if (result.status != NUME_OK)
    return testing::AssertionSuccess();
  const std::string value = (expected.negative ? "-" : "") + expected.magnitude.digits();
  if (result.value != value || result.scale != expected.scale || result.length != expected.length ||
      result.offset != expected.offset || result.precision != expected.precision)
    return failure << result.value << " (" << result.precision << "," << result.scale << ") in "
                   << result.length << " instead of " << value << " (" << expected.precision << ","
                   << expected.scale << ") in " << expected.length;
  return testing::AssertionSuccess();
}

} // namespace

TEST(TextToNumeric, RandomTextsAgainstTheRules) {
  std::mt19937 random(21);
  auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
  for (int i = 0; i < zrvtest::random_cases; ++i) {
    std::string text;
    if (below(4) == 0) {
      static const char alphabet[] = "0123456789 +-.eE\tx00005599";
      for (int n = below(14); n > 0; --n)
        text += alphabet[below(sizeof alphabet - 1)];
    } else {
      static const char *const signs[] = {"", "-", "+", " ", " - "};
      text = signs[below(5)];
      text += std::string(static_cast<size_t>(below(3) == 0 ? below(5) : 0), '0');
      for (int n = below(below(3) == 0 ? 90 : 20); n > 0; --n)
        text += static_cast<char>('0' + below(10));
      if (below(2) == 0) {
        text += '.';
        text += std::string(static_cast<size_t>(below(4) == 0 ? below(60) : 0), '0');
        for (int n = below(below(3) == 0 ? 60 : 10); n > 0; --n)
          text += static_cast<char>('0' + below(10));
      }
      if (below(4) == 0)
        text += (below(2) == 0 ? "e" : "E-") + std::to_string(below(below(4) == 0 ? 200 : 12));
      if (below(10) == 0)
        text += below(2) == 0 ? " " : "x";
    }
    const bool given_precision = below(3) != 0, given_scale = below(3) != 0;
    const int precision = given_precision ? 1 + below(77) : below(2) == 0 ? 0 : 255;
    const int scale = given_scale ? below(78) : 255;
    const int destlen = given_precision ? comn_num_getlen(precision)
                        : below(2) == 0 ? 0
                                        : 2 + below(35);
    const int len = below(8) == 0 ? below(static_cast<unsigned>(text.size()) + 1)
                                  : static_cast<int>(text.size());
    ASSERT_TRUE(parses_alike(text, len, destlen, precision, scale, below(2))) << "case " << i;
  }
}

TEST(NumericToText, FullScaleAndLeadingZero) {
  EXPECT_EQ(print("25", 2), "0.25");
  EXPECT_EQ(print("25", 2, true), "-0.25");
  EXPECT_EQ(print("1250", 2), "12.50");
  EXPECT_EQ(print("1250", 0), "1250");
  EXPECT_EQ(print("5", 4), "0.0005");
  EXPECT_EQ(print("0", 0), "0");
  EXPECT_EQ(print("0", 3), "0.000");
}

// A negative zero prints without its sign.
TEST(NumericToText, NegativeZero) {
  EXPECT_EQ(print("0", 0, true), "0");
  EXPECT_EQ(print("0", 2, true), "0.00");
}

TEST(NumericToText, RoomIsMetExactly) {
  EXPECT_EQ(print("25", 2, true, 5), "-0.25");
  EXPECT_EQ(print("25", 2, true, 4), "no room");
  EXPECT_EQ(print("1250", 2, false, 5), "12.50");
  EXPECT_EQ(print("1250", 2, false, 4), "no room");
  EXPECT_EQ(print("0", 0, false, 1), "0");
  EXPECT_EQ(print("0", 0, false, 0), "no room");
  EXPECT_EQ(print("0", 3, false, 5), "0.000");
  EXPECT_EQ(print("0", 3, false, 4), "no room");
}

TEST(NumericToText, LongestTexts) {
  const std::string nines(77, '9');
  EXPECT_EQ(print(nines, 77, true), "-0." + nines);
  EXPECT_EQ(print(nines, 77, true, 79), "no room");
  EXPECT_EQ(print(nines, 0, true), "-" + nines);
  EXPECT_EQ(print("1", 255), "no room");
}

// Leading zeroes may stand in front of what the library reads of a magnitude, and nothing else.
TEST(NumericToText, ValuesOfMoreBytesThanAnyNumericHas) {
  for (const int extra : {48, 49, 60}) {
    std::string bytes(static_cast<size_t>(1 + extra), '\0');
    bytes.back() = 7;
    __CONSTANT descriptor{};
    descriptor.len = 1 + extra;
    descriptor.value = reinterpret_cast<CS_BYTE *>(bytes.data());
    GuardedBuffer buffer(80);
    EXPECT_EQ(com__subexctnumetochar(&descriptor, buffer.text(), 80), 79) << extra;
    EXPECT_EQ(buffer.contents().substr(79), "7");
    bytes[1] = 1;
    if (extra == 48)
      continue;
    GuardedBuffer untouched(80);
    EXPECT_EQ(com__subexctnumetochar(&descriptor, untouched.text(), 80), -1) << extra;
    EXPECT_TRUE(untouched.is_untouched());
  }
}

TEST(NumericToText, RandomValuesThereAndBack) {
  zrvtest::RandomDecimals random(22);
  for (int i = 0; i < zrvtest::random_cases; ++i) {
    const zrvtest::Decimal value = random.any();
    CS_NUMERIC packed = value.pack();
    __CONSTANT descriptor{};
    descriptor.len = comn_num_getlen(packed.precision);
    descriptor.scale = packed.scale;
    descriptor.value = packed.array;
    char text[81];
    const int start = com__subexctnumetochar(&descriptor, text, 80);
    ASSERT_GE(start, 0);
    text[80] = '\0';
    ASSERT_EQ(text + start, zrvtest::reference_text(value));
    if (value.magnitude.digit_count() > value.precision)
      continue; // all bytes 255: more digits than the precision
    CS_NUMERIC back;
    CS_BYTE *dest = back.array, precision = packed.precision, scale = packed.scale;
    CS_INT length = descriptor.len;
    ASSERT_EQ(
        com__subchartoexctnume(text + start, 80 - start, &dest, &length, &precision, &scale, 0),
        NUME_OK)
        << text + start;
    ASSERT_EQ(std::memcmp(back.array + 1, packed.array + 1, static_cast<size_t>(length - 1)), 0);
  }
}

namespace {

double to_double(const std::string &digits, int scale, bool negative = false) {
  Descriptor value(33, 77, scale, digits, negative);
  double result = -1;
  EXPECT_EQ(com__subexctnumetoflt8(value.get(), &result), NUME_OK);
  return result;
}

std::string from_double(double value, int precision, int scale) {
  GuardedBuffer buffer(
      static_cast<size_t>(precision >= 1 && precision <= 77 ? comn_num_getlen(precision) : 33));
  CS_BYTE p = static_cast<CS_BYTE>(precision), s = static_cast<CS_BYTE>(scale);
  const int status =
      com__doubletoexctnume(value, buffer.data(), static_cast<CS_INT>(buffer.size()), &p, &s);
  if (status != NUME_OK)
    return "status " + std::to_string(status);
  return (buffer.data()[0] != 0 ? "-" : "") +
         Natural::from_bytes(buffer.data() + 1, static_cast<int>(buffer.size()) - 1).digits();
}

} // namespace

TEST(NumericToDouble, Values) {
  EXPECT_EQ(to_double("0", 5, true), 0.0);
  EXPECT_FALSE(std::signbit(to_double("0", 5, true)));
  EXPECT_EQ(to_double("25", 2, true), -0.25);
  EXPECT_EQ(to_double("1", 1), 0.1);
  EXPECT_EQ(to_double("1", 77), 1e-77);
  EXPECT_EQ(to_double(std::string(77, '9'), 0), 1e77);
  EXPECT_EQ(to_double(std::string(77, '9'), 77), 1.0);
  // Ties to even at the 53rd bit, and the next digit above the tie.
  EXPECT_EQ(to_double("9007199254740993", 0), 9007199254740992.0);
  EXPECT_EQ(to_double("9007199254740995", 0), 9007199254740996.0);
  EXPECT_EQ(to_double("9007199254740993" + std::string(60, '0') + "1", 61), 9007199254740994.0);
}

TEST(NumericToDouble, NothingStored) {
  __CONSTANT empty{};
  double result = 5.5;
  EXPECT_EQ(com__subexctnumetoflt8(&empty, &result), NUME_OK);
  EXPECT_EQ(result, 5.5);
  Descriptor deep(33, 77, 78, "1");
  EXPECT_EQ(com__subexctnumetoflt8(deep.get(), &result), NUME_OVERFLOW);
  EXPECT_EQ(result, 5.5);
}

// A zero is zero whatever its scale, also one that no valid value has.
TEST(NumericToDouble, ZeroOfAnyScale) {
  EXPECT_EQ(to_double("0", 78), 0.0);
  EXPECT_EQ(to_double("0", 255, true), 0.0);
}

// The closest double is what reading the text gives.
TEST(NumericToDouble, RandomValuesAgainstTheirText) {
  zrvtest::RandomDecimals random(23);
  for (int i = 0; i < zrvtest::random_cases / 2; ++i) {
    const zrvtest::Decimal value = random.any();
    CS_NUMERIC packed = value.pack();
    __CONSTANT descriptor{};
    descriptor.len = comn_num_getlen(packed.precision);
    descriptor.scale = packed.scale;
    descriptor.value = packed.array;
    double result;
    ASSERT_EQ(com__subexctnumetoflt8(&descriptor, &result), NUME_OK);
    ASSERT_EQ(result, std::strtod(zrvtest::reference_text(value).c_str(), nullptr)) << value.text();
  }
}

TEST(DoubleToNumeric, Values) {
  EXPECT_EQ(from_double(0.0, 5, 2), "0");
  EXPECT_EQ(from_double(-0.0, 5, 2), "0");
  EXPECT_EQ(from_double(1.5, 5, 2), "150");
  EXPECT_EQ(from_double(-1.5, 5, 0), "-2");
  EXPECT_EQ(from_double(0.1, 20, 18), "100000000000000010"); // the digits of %.17g
  EXPECT_EQ(from_double(1e20, 30, 2), "10000000000000000000000");
  EXPECT_EQ(from_double(1e-5, 9, 7), "100");
  EXPECT_EQ(from_double(1e76, 77, 0), "1" + std::string(76, '0'));
  EXPECT_EQ(from_double(1e77, 77, 0), "99999999999999998" + std::string(60, '0'));
  EXPECT_EQ(from_double(2e77, 77, 0), "status 1");
  EXPECT_EQ(from_double(1e78, 77, 0), "status 2");
  EXPECT_EQ(from_double(1e300, 77, 0), "status 2");
  EXPECT_EQ(from_double(1234.5, 3, 0), "status 1");
  EXPECT_EQ(from_double(5e-324, 77, 77), "0");
  EXPECT_EQ(from_double(std::numeric_limits<double>::max(), 77, 0), "status 2");
  EXPECT_EQ(from_double(std::numeric_limits<double>::infinity(), 77, 0), "status 2");
  EXPECT_EQ(from_double(-std::numeric_limits<double>::infinity(), 77, 0), "status 2");
  EXPECT_EQ(from_double(std::nan(""), 77, 0), "status 2");
}

TEST(DoubleToNumeric, AutomaticPrecisionIsTheMostAtScaleZero) {
  CS_BYTE room[33], precision = 0, scale = 9;
  EXPECT_EQ(com__doubletoexctnume(12.75, room, 9, &precision, &scale), NUME_OK);
  EXPECT_EQ(precision, 19);
  EXPECT_EQ(scale, 0);
  EXPECT_EQ(room[8], 13);
  for (CS_INT length : {1, 37, -5})
    EXPECT_EQ(com__doubletoexctnume(12.75, room, length, &precision, &scale), NUME_OVERFLOW);
}

// With a scale above 77 the digits set it, as for text.
TEST(DoubleToNumeric, AutomaticScale) {
  const struct {
    double value;
    const char *digits;
    int scale;
  } rows[] = {{12.75, "1275", 2},
              {-0.5, "-5", 1},
              {100.0, "100", 0},
              {1e20, "100000000000000000000", 0},
              {2.5e-5, "25000000000000001", 16},
              {5e-7, "49999999999999998", 16},
              {0.0, "0", 0}};
  for (const auto &row : rows) {
    CS_BYTE room[33], precision = 77, scale = 255;
    EXPECT_EQ(com__doubletoexctnume(row.value, room, 33, &precision, &scale), NUME_OK);
    EXPECT_EQ((room[0] != 0 ? "-" : "") + Natural::from_bytes(room + 1, 32).digits(), row.digits);
    EXPECT_EQ(scale, row.scale) << row.value;
    EXPECT_EQ(precision, 77);
  }
}

TEST(DoubleToNumeric, RandomDoublesThereAndBack) {
  std::mt19937_64 random(24);
  for (int i = 0; i < std::min(zrvtest::random_cases, 100000); ++i) {
    // 17 digits fit where the first one is not above 10^37, nor the last below 10^-39.
    const double value = std::ldexp(static_cast<double>(static_cast<int64_t>(random())),
                                    static_cast<int>(random() % 120) - 120);
    CS_BYTE room[33], precision = 77, scale = 57;
    if (std::fabs(value) > 1e19 || (value != 0 && std::fabs(value) < 1e-38))
      continue;
    ASSERT_EQ(com__doubletoexctnume(value, room, 33, &precision, &scale), NUME_OK) << value;
    __CONSTANT descriptor{};
    descriptor.len = 33;
    descriptor.prec = precision;
    descriptor.scale = scale;
    descriptor.value = room;
    double back;
    ASSERT_EQ(com__subexctnumetoflt8(&descriptor, &back), NUME_OK);
    ASSERT_EQ(back, value);
  }
}

// The application's locale has no say, whatever its decimal point is.
TEST(DoubleToNumeric, IgnoresTheLocale) {
  const zrvtest::ForeignLocale locale;
  if (!locale.is_set())
    GTEST_SKIP() << "no locale can be compiled here";
  EXPECT_EQ(from_double(0.25, 5, 2), "25");
  EXPECT_EQ(to_double("25", 2), 0.25);
}

namespace {

template <class Integer, class Builder>
std::string build(Builder builder, Integer value, int precision, int scale, int destlen = -1) {
  if (destlen < 0)
    destlen = comn_num_getlen(precision);
  GuardedBuffer buffer(static_cast<size_t>(destlen));
  CS_BYTE p = static_cast<CS_BYTE>(precision), s = static_cast<CS_BYTE>(scale);
  const int status = builder(value, buffer.data(), destlen, &p, &s);
  if (status != NUME_OK)
    return "status " + std::to_string(status);
  return (buffer.data()[0] != 0 ? "-" : "") +
         Natural::from_bytes(buffer.data() + 1, destlen - 1).digits() + " (" + std::to_string(p) +
         "," + std::to_string(s) + ")";
}

} // namespace

TEST(IntegerToNumeric, LimitsAndShapes) {
  using std::numeric_limits;
  EXPECT_EQ(build(com__longtoexctnume, numeric_limits<CS_INT>::min(), 10, 0), "-2147483648 (10,0)");
  EXPECT_EQ(build(com__longtoexctnume, -7, 5, 2), "-700 (5,2)");
  EXPECT_EQ(build(com__longtoexctnume, 0, 5, 2), "0 (5,2)");
  EXPECT_EQ(build(com__longtoexctnume, 1000, 3, 0), "status 1");  // the precision
  EXPECT_EQ(build(com__longtoexctnume, 70000, 3, 0), "status 1"); // the bytes
  EXPECT_EQ(build(com__longtoexctnume, 1000, 5, 3), "status 1");
  EXPECT_EQ(build(com__ulongtoexctnume, 4294967295U, 10, 0), "4294967295 (10,0)");
  EXPECT_EQ(build(com__longlongtoexctnume, numeric_limits<CS_BIGINT>::min(), 19, 0),
            "-9223372036854775808 (19,0)");
  EXPECT_EQ(build(com__ulonglongtoexctnume, numeric_limits<CS_UBIGINT>::max(), 20, 0),
            "18446744073709551615 (20,0)");
  EXPECT_EQ(build(com__ulonglongtoexctnume, numeric_limits<CS_UBIGINT>::max(), 77, 57),
            "18446744073709551615" + std::string(57, '0') + " (77,57)");
}

// An overflow leaves the low bytes without a sign where they ran out, or the value before the shift
// that had no room, or the whole value where it only exceeds the precision.
TEST(IntegerToNumeric, WhatAnOverflowLeaves) {
  auto left = [](CS_INT value, int precision, int scale) {
    GuardedBuffer buffer(static_cast<size_t>(comn_num_getlen(precision)));
    CS_BYTE p = static_cast<CS_BYTE>(precision), s = static_cast<CS_BYTE>(scale);
    EXPECT_EQ(com__longtoexctnume(value, buffer.data(), static_cast<CS_INT>(buffer.size()), &p, &s),
              NUME_OVERFLOW);
    EXPECT_EQ(p, precision);
    EXPECT_EQ(s, scale);
    return (buffer.data()[0] != 0 ? "-" : "") +
           Natural::from_bytes(buffer.data() + 1, static_cast<int>(buffer.size()) - 1).digits();
  };
  EXPECT_EQ(left(-70000, 3, 0), "4464"); // 70000 modulo 65536
  EXPECT_EQ(left(-7000, 3, 2), "7000");
  EXPECT_EQ(left(-1000, 3, 0), "-1000");
  EXPECT_EQ(left(-100, 3, 1), "-1000");
}

TEST(IntegerToNumeric, AutomaticPrecision) {
  EXPECT_EQ(build(com__longlongtoexctnume, CS_BIGINT{-5}, 255, 7, 10), "-5 (21,0)");
  EXPECT_EQ(build(com__longtoexctnume, 5, 0, 7, 33), "5 (77,0)");
}

// Deliberate: a scale of 78 or more is the status of the shift, also for zero.
TEST(IntegerToNumeric, ScaleAbove77IsSyntax) {
  EXPECT_EQ(build(com__longtoexctnume, 0, 77, 78), "status 2");
  EXPECT_EQ(build(com__longtoexctnume, 1, 77, 255), "status 2");
}

TEST(NumericToInteger, SignedLimits) {
  auto convert = [](const std::string &digits, int scale, bool negative, CS_BIGINT &result) {
    Descriptor value(33, 77, scale, digits, negative);
    result = 77;
    return com__subexctnumetolonglong(value.get(), &result);
  };
  CS_BIGINT result;
  EXPECT_EQ(convert("9223372036854775807", 0, false, result), NUME_OK);
  EXPECT_EQ(result, INT64_MAX);
  EXPECT_EQ(convert("92233720368547758079", 1, false, result), NUME_OK); // the fraction goes
  EXPECT_EQ(result, INT64_MAX);
  EXPECT_EQ(convert("9223372036854775808", 0, false, result), NUME_OVERFLOW);
  EXPECT_EQ(result, INT64_MAX);
  EXPECT_EQ(convert("9223372036854775808", 0, true, result), NUME_OK);
  EXPECT_EQ(result, INT64_MIN);
  EXPECT_EQ(convert("9223372036854775809", 0, true, result), NUME_UNDERFLOW);
  EXPECT_EQ(result, INT64_MIN);
  EXPECT_EQ(convert(std::string(77, '9'), 0, false, result), NUME_OVERFLOW);
  EXPECT_EQ(convert("5", 1, true, result), NUME_OK);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(convert("5", 200, true, result), NUME_OVERFLOW);
  EXPECT_EQ(result, 77);
  __CONSTANT empty{};
  EXPECT_EQ(com__subexctnumetolonglong(&empty, &result), NUME_OK);
  EXPECT_EQ(result, 77);
  EXPECT_EQ(convert("0", 200, true, result), NUME_OK);
  EXPECT_EQ(result, 0);
}

TEST(NumericToInteger, UnsignedLimits) {
  auto convert = [](const std::string &digits, int scale, bool negative, CS_UBIGINT &result) {
    Descriptor value(33, 77, scale, digits, negative);
    result = 77;
    return com__subexctnumetoulonglong(value.get(), &result);
  };
  CS_UBIGINT result;
  EXPECT_EQ(convert("18446744073709551615", 0, false, result), NUME_OK);
  EXPECT_EQ(result, UINT64_MAX);
  EXPECT_EQ(convert("18446744073709551616", 0, false, result), NUME_OVERFLOW);
  EXPECT_EQ(result, UINT64_MAX);
  EXPECT_EQ(convert("1", 0, true, result), NUME_UNDERFLOW);
  EXPECT_EQ(result, 0U);
  // The sign alone decides, also where only a fraction is left.
  EXPECT_EQ(convert("1", 5, true, result), NUME_UNDERFLOW);
  EXPECT_EQ(convert("0", 5, true, result), NUME_OK);
  EXPECT_EQ(result, 0U);
  EXPECT_EQ(convert("0", 200, true, result), NUME_OK);
  EXPECT_EQ(result, 0U);
}

TEST(NumericToMoney, RoundsAndLimits) {
  auto convert = [](const std::string &digits, int scale, bool negative) {
    Descriptor value(33, 77, scale, digits, negative);
    CS_MONEY money{1, 2};
    if (com__exctnumetomny8(value.get(), &money) == 0) {
      EXPECT_EQ(money.mnyhigh, 1);
      EXPECT_EQ(money.mnylow, 2U);
      return std::string("overflow");
    }
    return std::to_string(static_cast<int64_t>(
        static_cast<uint64_t>(static_cast<uint32_t>(money.mnyhigh)) << 32 | money.mnylow));
  };
  EXPECT_EQ(convert("15", 1, false), "15000");
  EXPECT_EQ(convert("15", 1, true), "-15000");
  EXPECT_EQ(convert("12345", 5, false), "1235");
  EXPECT_EQ(convert("123449", 6, false), "1234"); // one digit decides
  EXPECT_EQ(convert("4", 5, true), "0");
  EXPECT_EQ(convert("9223372036854775807", 4, false), "9223372036854775807");
  EXPECT_EQ(convert("9223372036854775808", 4, false), "overflow");
  EXPECT_EQ(convert("9223372036854775808", 4, true), "-9223372036854775808");
  EXPECT_EQ(convert("9223372036854775809", 4, true), "overflow");
  EXPECT_EQ(convert("92233720368547758074", 5, false), "9223372036854775807");
  EXPECT_EQ(convert("92233720368547758075", 5, false), "overflow");
  EXPECT_EQ(convert("1", 77, true), "0");
  EXPECT_EQ(convert(std::string(77, '9'), 0, false), "overflow");
}

TEST(MoneyToNumeric, ScalesSignsAndLimits) {
  auto convert = [](int64_t count, int precision, int scale, int destlen = -1) {
    CS_MONEY money{static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)};
    auto builder = [](CS_MONEY m, CS_BYTE *dest, CS_INT length, CS_BYTE *p, CS_BYTE *s) {
      return com__mny8toexctnume(&m, dest, length, p, s, 0);
    };
    return build(builder, money, precision, scale, destlen);
  };
  EXPECT_EQ(convert(15000, 9, 4), "15000 (9,4)");
  EXPECT_EQ(convert(-15000, 9, 1), "-15 (9,1)");
  EXPECT_EQ(convert(15550, 9, 2), "156 (9,2)");
  EXPECT_EQ(convert(15549, 9, 2), "155 (9,2)");
  EXPECT_EQ(convert(15000, 9, 6), "1500000 (9,6)");
  EXPECT_EQ(convert(15000, 3, 4), "status 1");
  EXPECT_EQ(convert(-4, 9, 3), "0 (9,3)"); // rounds to nothing, without a sign
  EXPECT_EQ(convert(INT64_MIN, 19, 4), "-9223372036854775808 (19,4)");
  EXPECT_EQ(convert(INT64_MAX, 19, 4), "9223372036854775807 (19,4)");
  EXPECT_EQ(convert(INT64_MAX, 77, 62), "9223372036854775807" + std::string(58, '0') + " (77,62)");
  EXPECT_EQ(convert(INT64_MAX, 77, 63), "status 1");
  EXPECT_EQ(convert(5, 255, 255, 9), "0 (19,0)");
  EXPECT_EQ(convert(5000, 0, 200, 9), "1 (19,0)");
}

TEST(MoneyToNumeric, FlagHasNoEffect) {
  CS_MONEY money{0, 15549};
  for (int flag : {0, 1, 2, -1})
    for (int scale : {2, 4, 6}) {
      CS_BYTE room[5] = {}, precision = 9, s = static_cast<CS_BYTE>(scale);
      EXPECT_EQ(com__mny8toexctnume(&money, room, 5, &precision, &s, flag), NUME_OK);
      EXPECT_EQ(Natural::from_bytes(room + 1, 4).digits(), scale == 2   ? "155"
                                                           : scale == 4 ? "15549"
                                                                        : "1554900");
    }
}

TEST(Zrvatoll, Values) {
  auto read = [](std::string text) {
    errno = 0;
    return zrvatoll(text.data());
  };
  EXPECT_EQ(read("42x"), 42);
  EXPECT_EQ(read("-42.9"), -42);
  EXPECT_EQ(read("+42"), 42);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("-+5"), 5); // deliberate: the plus wins
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("+-5"), 0);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(read(""), 0);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(read(" 1"), 0);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(read("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("9223372036854775808"), INT64_MAX);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(read("-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("-9223372036854775809"), INT64_MIN);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(read("-99999999999999999999999"), INT64_MIN);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_NULL_POINTER_CHECK("numeaux_text.cpp", CS_BIGINT{0}, zrvatoll(nullptr));
}

TEST(Zrvatoull, Values) {
  auto read = [](std::string text) {
    errno = 0;
    return zrvatoull(text.data());
  };
  EXPECT_EQ(read("18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("18446744073709551616"), UINT64_MAX);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(read("+7 "), 7U);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(read("-7"), 0U);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(read("x"), 0U);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_NULL_POINTER_CHECK("numeaux_text.cpp", CS_UBIGINT{0}, zrvatoull(nullptr));
}
