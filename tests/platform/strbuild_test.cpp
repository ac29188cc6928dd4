// Arguments put into the text of a message.
#include <climits>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvtest::GuardedBuffer;

// What a message becomes, in a buffer that has just the room for it.
template <class... Arguments>
std::string built(const char *text, const char *format, Arguments... arguments) {
  char wide[4096];
  const int length = intl_strbuild(0, wide, sizeof wide, text, format, arguments...);
  if (length < 0)
    return "status " + std::to_string(length);
  EXPECT_EQ(std::strlen(wide), static_cast<size_t>(length));
  GuardedBuffer exact(static_cast<size_t>(length) + 1);
  EXPECT_EQ(intl_strbuild(0, exact.text(), length + 1, text, format, arguments...), length);
  EXPECT_STREQ(exact.text(), wide);
  if (length > 0) {
    GuardedBuffer narrow(static_cast<size_t>(length));
    EXPECT_EQ(intl_strbuild(0, narrow.text(), length, text, format, arguments...), -10);
    EXPECT_STREQ(narrow.text(), "");
  }
  return wide;
}

TEST(StrBuild, ArgumentsInTurn) {
  EXPECT_EQ(built("<%s>", "%s", "one"), "<one>");
  EXPECT_EQ(built("%s", "%s", ""), "");
  EXPECT_EQ(built("", "%s", "one"), "");
  EXPECT_EQ(built("%s and %s", "%s %s", "one", "two"), "one and two");
  EXPECT_EQ(built("%s%s", "%s%s", "one", "two"), "onetwo");
  EXPECT_EQ(built("line %ld: %s", "%ld %s", 12L, "end"), "line 12: end");
  EXPECT_EQ(built("%d to %ld", "%d, then %ld", 3, 4L), "3 to 4");
}

TEST(StrBuild, ArgumentsByNumber) {
  EXPECT_EQ(built("%2! before %1!", "%s %s", "one", "two"), "two before one");
  EXPECT_EQ(built("%1!%1!", "%s", "ab"), "abab");
  EXPECT_EQ(built("%9!%1!", "%d%d%d%d%d%d%d%d%d", 1, 2, 3, 4, 5, 6, 7, 8, 9), "91");
  // A number takes nothing from the turn.
  EXPECT_EQ(built("%2! %s %s", "%s %s", "one", "two"), "two one two");
}

TEST(StrBuild, TheFormatSaysWhatAnArgumentIs) {
  EXPECT_EQ(built("%s %ld", "%ld %s", 7L, "x"), "7 x");
  EXPECT_EQ(built("%d", "%s", "text"), "text");
  EXPECT_EQ(built("%1!", "%ld", -5L), "-5");
}

TEST(StrBuild, Numbers) {
  EXPECT_EQ(built("%d", "%d", 0), "0");
  EXPECT_EQ(built("%d", "%d", 9), "9");
  EXPECT_EQ(built("%d", "%d", 10), "10");
  EXPECT_EQ(built("%d", "%d", -1), "-1");
  EXPECT_EQ(built("%d", "%d", INT_MAX), "2147483647");
  EXPECT_EQ(built("%d", "%d", INT_MIN), "-2147483648");
  EXPECT_EQ(built("%ld", "%ld", LONG_MAX), std::to_string(LONG_MAX));
  EXPECT_EQ(built("%ld", "%ld", LONG_MIN), std::to_string(LONG_MIN));
}

TEST(StrBuild, PercentSigns) {
  EXPECT_EQ(built("100%%", "%s", "one"), "100%");
  EXPECT_EQ(built("%%s", "%s", "one"), "%s");
  EXPECT_EQ(built("%%%s%%", "%s", "one"), "%one%");
  // An argument is not looked at again.
  EXPECT_EQ(built("%s%s", "%s %s", "%s", "%%"), "%s%%");
}

TEST(StrBuild, WhatIsNoMarkStays) {
  for (const char *text :
       {"%", "a%", "% s", "%l", "%lx", "%x", "%1", "%1?", "%0!", "%12!", "%!", "%S"})
    EXPECT_EQ(built(text, "%s", "one"), text);
  EXPECT_EQ(built("%l%s", "%s", "one"), "%lone");
  EXPECT_EQ(built("%1%s", "%s", "one"), "%1one");
}

TEST(StrBuild, WithoutAnArgumentAMarkStays) {
  EXPECT_EQ(built("%s %s", "%s", "one"), "one %s");
  EXPECT_EQ(built("%s %ld %s", "%s", "one"), "one %ld %s");
  EXPECT_EQ(built("%2!", "%s", "one"), "%2!");
  EXPECT_EQ(built("%s", ""), "%s");
  EXPECT_EQ(built("no mark", "%s", "one"), "no mark");
}

TEST(StrBuild, NothingIsCut) {
  const std::string longest(600, 'x');
  EXPECT_EQ(built("<%s>", "%s", longest.c_str()), "<" + longest + ">");
  GuardedBuffer one(1);
  EXPECT_EQ(intl_strbuild(0, one.text(), 1, "", "%s", "x"), 0);
  EXPECT_EQ(intl_strbuild(0, one.text(), 1, "a", "%s", "x"), -10);
  EXPECT_STREQ(one.text(), "");
  // A later piece that would fit does not make up for one that did not.
  GuardedBuffer four(4);
  EXPECT_EQ(intl_strbuild(0, four.text(), 4, "%sab", "%s", "12345"), -10);
  EXPECT_STREQ(four.text(), "");
}

TEST(StrBuild, BadArguments) {
  GuardedBuffer buffer(10);
  char *const null = nullptr;
  const auto status = [&](int zero, const char *text, const char *format) {
    buffer.text()[0] = 'x';
    const int result =
        intl_strbuild(zero, buffer.text(), 10, text, format, "a", 1, 2, 3, 4, 5, 6, 7, 8, 9);
    EXPECT_EQ(buffer.text()[0], '\0');
    return result;
  };
  EXPECT_EQ(status(1, "t", "%s"), -9);
  EXPECT_EQ(status(0, nullptr, "%s"), -9);
  EXPECT_EQ(status(0, "t", nullptr), -9);
  for (const char *format : {"%x", "%", "%s %", "%l", "%ls", "%%", "%5d", "%s%d%d%d%d%d%d%d%d%d"})
    EXPECT_EQ(status(0, "t", format), -9) << format;
  EXPECT_EQ(
      intl_strbuild(0, buffer.text(), 10, "t", "%s%d%d%d%d%d%d%d%d", "a", 1, 2, 3, 4, 5, 6, 7, 8),
      1);
  EXPECT_EQ(intl_strbuild(0, nullptr, 10, "t", "%s", "a"), -9);
  EXPECT_EQ(intl_strbuild(0, buffer.text(), 10, "t", "%s", null), -9);
  buffer.text()[0] = 'x';
  EXPECT_EQ(intl_strbuild(0, buffer.text(), 0, "", "%s", "a"), -9);
  EXPECT_EQ(intl_strbuild(0, buffer.text(), -1, "", "%s", "a"), -9);
  EXPECT_EQ(buffer.text()[0], 'x');
}

} // namespace
