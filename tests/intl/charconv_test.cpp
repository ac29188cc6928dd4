// Conversion between character sets through Unicode, each of its ways.
#include <climits>
#include <random>

#include "allocation_probe.h"
#include "charset_world.h"
#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "charconv.cpp";

std::string wide(const std::u16string &text) {
  return std::string(reinterpret_cast<const char *>(text.data()), 2 * text.size());
}

std::string repeated(const std::string &text, size_t count) {
  std::string all;
  for (size_t i = 0; i < count; ++i)
    all += text;
  return all;
}

// A CS_VARCHAR with a text.
CS_VARCHAR varchar(const std::string &text) {
  CS_VARCHAR record;
  std::memset(&record, 0xA5, sizeof record);
  record.len = static_cast<CS_SMALLINT>(text.size());
  std::memcpy(record.str, text.data(), text.size());
  return record;
}

// The arguments that the user's function was called with last; it writes "user" and returns -7.
struct UserCall {
  CS_CONTEXT *context;
  CS_DATAFMT *srcfmt;
  CS_VOID *src;
  CS_DATAFMT *destfmt;
  CS_VOID *dest;
  CS_INT *length;
  CS_DATAFMT source_format, destination_format;
};
UserCall user_call;

CS_RETCODE user_function(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                         CS_VOID *dest, CS_INT *length) {
  user_call = {context, srcfmt, src, destfmt, dest, length, *srcfmt, *destfmt};
  std::memcpy(dest, "user", 4);
  *length = 4;
  return -7;
}

CsUserAlgo algorithm_for(HandSet &from, HandSet &to) {
  CsUserAlgo algorithm{};
  algorithm.from_oid = &from.oid;
  algorithm.to_oid = &to.oid;
  algorithm.user_conv_func = user_function;
  algorithm.conv_multiplier = 9;
  return algorithm;
}

class CharConv : public testing::Test, protected CharsetWorld {
protected:
  ~CharConv() override { comn_set_persistent_handle(nullptr); }
};

// ---- the ways that need no converter ----

TEST_F(CharConv, SameSetsAreCopiedAndACutIsNotTold) {
  HandSet other(1); // the same number is another set
  other.cache.locchardesc = &iso_1.charset;
  for (HandSet *to : {&iso_1, &other}) {
    EXPECT_EQ(convert(iso_1, *to, "a\xE9\0b", 4), (Converted{CS_SUCCEED, "a\xE9"}));
    const std::string text("a\xE9\0b", 4);
    EXPECT_EQ(convert(iso_1, *to, text, 9), (Converted{CS_SUCCEED, text}));
    EXPECT_EQ(convert(iso_1, *to, text, 3), (Converted{CS_SUCCEED, text.substr(0, 3)}));
    EXPECT_EQ(convert(iso_1, *to, text, 0), (Converted{CS_SUCCEED, ""}));
  }
}

TEST_F(CharConv, PureAsciiIsCopiedWhateverTheSets) {
  // Also where a set has no converter, or is not based on ASCII at all.
  EXPECT_EQ(convert(decmcs, unknown, "abc", 3), (Converted{CS_SUCCEED, "abc"}));
  EXPECT_EQ(convert(iso_1, utf16, "abc", 8), (Converted{CS_SUCCEED, "abc"}));
  EXPECT_EQ(convert(iso_1, ascii_8, "", 8), (Converted{CS_SUCCEED, ""}));
  const std::string with_nul("a\0b", 3);
  EXPECT_EQ(convert(iso_1, ascii_8, with_nul, 3), (Converted{CS_SUCCEED, with_nul}));
  EXPECT_EQ(convert(iso_1, ascii_8, "\x7F", 1), (Converted{CS_SUCCEED, "\x7F"}));
  AllocationProbe probe;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 300), destfmt = srcfmt;
  destfmt.locale = &ascii_8.locale;
  std::string text(300, 'x'), copy(300, '\0');
  CS_INT length = -1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, text.data(), &destfmt, copy.data(), &length),
            CS_SUCCEED);
  EXPECT_EQ(copy, text);
  EXPECT_EQ(probe.allocations(), 0U);
}

TEST_F(CharConv, AsciiLongerThanTheRoomIsCut) {
  EXPECT_EQ(convert(iso_1, ascii_8, "abc", 2), (Converted{CS_CONV_TRUNCATED, "ab"}));
  EXPECT_EQ(convert(iso_1, ascii_8, "abc", 0), (Converted{CS_CONV_TRUNCATED, ""}));
  // That way leads through the converters.
  EXPECT_EQ(convert(iso_1, decmcs, "abc", 2), (Converted{CS_FAIL, ""}));
}

TEST_F(CharConv, CopyAsciiOnly) {
  for (size_t length = 0; length < 50; ++length)
    for (size_t room = 0; room < 50; ++room) {
      GuardedBuffer source(length), destination(room);
      std::fill_n(source.data(), length, CS_BYTE{0x7F});
      CS_INT copied = -1;
      const auto n = static_cast<CS_INT>(std::min(length, room));
      EXPECT_EQ(comn__copy_ascii_only(destination.data(), static_cast<CS_INT>(room), source.data(),
                                      static_cast<CS_INT>(length), &copied),
                room < length ? CS_CONV_TRUNCATED : CS_SUCCEED);
      EXPECT_EQ(copied, n);
      EXPECT_EQ(destination.contents(static_cast<size_t>(n)),
                std::string(static_cast<size_t>(n), '\x7F'));
      EXPECT_TRUE(destination.is_untouched(static_cast<size_t>(n)));
    }
  // Another byte at every position; behind the room nobody looks at it.
  for (size_t length = 1; length < 110; ++length)
    for (size_t position = 0; position < length; ++position) {
      GuardedBuffer source(length), destination(length);
      std::fill_n(source.data(), length, 'a');
      source.data()[position] = 0x80;
      CS_INT copied = -1;
      EXPECT_EQ(comn__copy_ascii_only(destination.data(), static_cast<CS_INT>(length),
                                      source.data(), static_cast<CS_INT>(length), &copied),
                CS_CONV_NOXLATE);
      EXPECT_EQ(copied, 0);
      EXPECT_TRUE(destination.is_untouched(0));
      EXPECT_EQ(comn__copy_ascii_only(destination.data(), static_cast<CS_INT>(position),
                                      source.data(), static_cast<CS_INT>(length), &copied),
                CS_CONV_TRUNCATED);
      EXPECT_EQ(copied, static_cast<CS_INT>(position));
    }
  unsigned char byte = 'a';
  CS_INT copied = -1;
  EXPECT_EQ(comn__copy_ascii_only(&byte, -1, &byte, 1, &copied), CS_CONV_TRUNCATED);
  EXPECT_EQ(copied, 0);
}

TEST_F(CharConv, AnAlgorithmOfTheUsersComesBeforeAscii) {
  CsUserAlgo other = algorithm_for(utf16, iso_1), algorithm = algorithm_for(iso_1, utf16);
  other.next = &algorithm;
  context.usercharconv = &other;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 3), destfmt = make_format(CS_TYPE_CHAR, 8);
  srcfmt.locale = &iso_1.locale;
  destfmt.locale = &utf16.locale;
  char text[] = "abc", result[8];
  CS_INT length = -1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, text, &destfmt, result, &length), -7);
  EXPECT_EQ(user_call.context, &context);
  EXPECT_EQ(user_call.srcfmt, &srcfmt);
  EXPECT_EQ(user_call.src, text);
  EXPECT_EQ(user_call.destfmt, &destfmt);
  EXPECT_EQ(user_call.dest, result);
  EXPECT_EQ(user_call.length, &length);
  // One without a function leaves it to the library.
  algorithm.user_conv_func = nullptr;
  EXPECT_EQ(convert(iso_1, utf16, "a\xE9", 8), (Converted{CS_SUCCEED, wide(u"a\u00E9")}));
  // The same set needs none.
  CsUserAlgo same = algorithm_for(iso_1, iso_1);
  context.usercharconv = &same;
  EXPECT_EQ(convert(iso_1, iso_1, "abc", 3), (Converted{CS_SUCCEED, "abc"}));
}

// ---- through Unicode ----

TEST_F(CharConv, ThroughUnicode) {
  EXPECT_EQ(convert(iso_1, utf16, "a\xE9", 8), (Converted{CS_SUCCEED, wide(u"a\u00E9")}));
  EXPECT_EQ(convert(utf16, iso_1, wide(u"a\u00E9"), 8), (Converted{CS_SUCCEED, "a\xE9"}));
  EXPECT_EQ(convert(iso_1, rcsu, "\xE9", 8), (Converted{CS_SUCCEED, "\xE9"}));
  EXPECT_EQ(convert(utf8, iso_1, "\xC3\xA9", 8), (Converted{CS_SUCCEED, "\xE9"}));
  EXPECT_EQ(convert(utf8, utf16, "\xF0\x9F\x98\x80", 4),
            (Converted{CS_SUCCEED, wide(u"\U0001F600")}));
  // A NUL ends the text on this way.
  EXPECT_EQ(convert(iso_1, utf16, std::string("\xE9\0b", 3), 8),
            (Converted{CS_SUCCEED, wide(u"\u00E9")}));
}

TEST_F(CharConv, WhatHasNoCounterpartIsAQuestionMark) {
  EXPECT_EQ(convert(iso_1, ascii_8, "a\xE9z", 8), (Converted{CS_SUCCEED, "a?z"}));
  // In sets of one-byte characters one, whatever the character.
  EXPECT_EQ(convert(utf8, iso_1, "a\xE2\x82\xACz", 8), (Converted{CS_SUCCEED, "a?z"}));
}

TEST_F(CharConv, RoomFromNoneToEnough) {
  const std::string text = "\xE9x\xE9", all = wide(u"\u00E9x\u00E9");
  for (size_t room = 0; room < 6; ++room) {
    const Converted result = convert(iso_1, utf16, text, room);
    EXPECT_EQ(result.status, CS_CONV_TRUNCATED) << room;
    // The length is the room; an odd byte of it holds nothing.
    EXPECT_EQ(result.text, all.substr(0, room / 2 * 2) + std::string(room % 2, '\0')) << room;
  }
  EXPECT_EQ(convert(iso_1, utf16, text, 6), (Converted{CS_SUCCEED, all}));
  for (size_t room = 0; room < 3; ++room)
    EXPECT_EQ(convert(utf16, iso_1, all, room),
              (Converted{CS_CONV_TRUNCATED, text.substr(0, room)}));
  EXPECT_EQ(convert(utf16, iso_1, all, 3), (Converted{CS_SUCCEED, text}));
}

// A text that ends within a character is cut before it, and that is told; a text that holds no more than
// a part of a character fails.
TEST_F(CharConv, ATextThatEndsWithinACharacter) {
  // An odd byte of UTF-16 is completed by the terminator.
  EXPECT_EQ(convert(utf16, iso_1, wide(u"a\u00E9") + "b", 8), (Converted{CS_SUCCEED, "a\xE9"
                                                                                     "b"}));
  EXPECT_EQ(convert(utf8, iso_1, "a\xC3\xA9\xC3", 8), (Converted{CS_CONV_TRUNCATED, "a\xE9"}));
  EXPECT_EQ(convert(utf8, iso_1, "\xC3", 8), (Converted{CS_FAIL, ""}));
}

TEST_F(CharConv, SetsWithoutAConverter) {
  EXPECT_EQ(convert(decmcs, iso_1, "\xE9", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(convert(iso_1, decmcs, "\xE9", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(convert(unknown, iso_1, "\xE9", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(convert(iso_1, unknown, "\xE9", 8), (Converted{CS_FAIL, ""}));
}

TEST_F(CharConv, EachCategoryHasItsSet) {
  // Only one category of each locale has the set that makes a difference.
  CS_VOID *CsLocale::*const categories[] = {&CsLocale::ctypeptr, &CsLocale::messageptr,
                                            &CsLocale::monetaryptr, &CsLocale::numericptr,
                                            &CsLocale::timeptr};
  for (CS_INT type = CS_LCTYPE_CTYPE; type <= CS_LCTYPE_TIME; ++type) {
    HandSet from(0), to(0);
    to.locale.*categories[type - 2] = &utf16.cache;
    from.locale.*categories[type - 2] = &iso_1.cache;
    for (CS_INT other = CS_LCTYPE_CTYPE; other <= CS_LCTYPE_TIME; ++other) {
      const Converted result = convert(from, to, "\xE9", 8, other);
      EXPECT_EQ(result.text == wide(u"\u00E9"), other == type) << type << ' ' << other;
    }
  }
}

TEST_F(CharConv, AFormatWithoutALocaleHasThatOfTheContext) {
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 1), destfmt = make_format(CS_TYPE_CHAR, 8);
  destfmt.locale = &utf16.locale;
  char text[8] = "\xE9", result[8];
  CS_INT length = -1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, text, &destfmt, result, &length),
            CS_SUCCEED);
  EXPECT_EQ(std::string(result, static_cast<size_t>(length)), wide(u"\u00E9"));
  srcfmt.maxlength = length;
  std::swap(srcfmt.locale, destfmt.locale);
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, result, &destfmt, text, &length),
            CS_SUCCEED);
  EXPECT_EQ(std::string(text, static_cast<size_t>(length)), "\xE9");
}

// ---- CS_VARCHAR ----

TEST_F(CharConv, VarcharOnBothSides) {
  const struct {
    HandSet &from, &to;
    std::string text, expected;
  } rows[] = {
      {iso_1, iso_1, "a\xE9", "a\xE9"},
      {iso_1, utf16, "abc", "abc"}, // ASCII
      {iso_1, utf16, "\xE9", wide(u"\u00E9")},
      {iso_1, iso_1, "", ""},
  };
  for (const auto &row : rows) {
    CS_VARCHAR source = varchar(row.text);
    GuardedBuffer destination(sizeof(CS_VARCHAR), 1);
    CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, 1), destfmt = make_format(CS_TYPE_VARCHAR, 1);
    srcfmt.locale = &row.from.locale;
    destfmt.locale = &row.to.locale;
    CS_INT length = -1;
    EXPECT_EQ(
        comn_charset_convert(&context, 2, &srcfmt, &source, &destfmt, destination.data(), &length),
        CS_SUCCEED);
    const auto n = static_cast<CS_INT>(row.expected.size());
    EXPECT_EQ(length, n);
    const auto record = destination.value<CS_VARCHAR>();
    EXPECT_EQ(record.len, n);
    EXPECT_EQ(std::string(record.str, row.expected.size()), row.expected);
    EXPECT_TRUE(destination.is_untouched(2 + row.expected.size()));
  }
}

TEST_F(CharConv, TheRoomOfAVarcharIs256) {
  const std::string text = repeated("\xE9", 200);
  CS_VARCHAR source = varchar(text);
  GuardedBuffer destination(sizeof(CS_VARCHAR));
  CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, 1), destfmt = make_format(CS_TYPE_VARCHAR, 1);
  destfmt.locale = &utf16.locale;
  CS_INT length = -1;
  EXPECT_EQ(
      comn_charset_convert(&context, 2, &srcfmt, &source, &destfmt, destination.data(), &length),
      CS_CONV_TRUNCATED);
  EXPECT_EQ(length, 256);
  EXPECT_EQ(destination.value<CS_SMALLINT>(), 256);
  EXPECT_EQ(destination.contents().substr(2), repeated(wide(u"\u00E9"), 128));
  // A negative length is an empty text.
  source.len = -3;
  EXPECT_EQ(
      comn_charset_convert(&context, 2, &srcfmt, &source, &destfmt, destination.data(), &length),
      CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(destination.value<CS_SMALLINT>(), 0);
}

// Towards UTF-8 the lengths in front are left alone: the record's first bytes are converted like text,
// and the result stands where the length should. Deployed applications know it so.
TEST_F(CharConv, TowardsUtf8AVarcharIsBytes) {
  CS_VARCHAR source = varchar("\xE9");
  GuardedBuffer destination(sizeof(CS_VARCHAR));
  CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, 3), destfmt = make_format(CS_TYPE_VARCHAR, 1);
  destfmt.locale = &utf8.locale;
  source.len = 0x0101; // no NUL in it; the text is not ASCII
  std::memset(source.str, 0xE9, sizeof source.str);
  CS_INT length = -1;
  EXPECT_EQ(
      comn_charset_convert(&context, 2, &srcfmt, &source, &destfmt, destination.data(), &length),
      CS_SUCCEED);
  EXPECT_EQ(destination.contents(static_cast<size_t>(length)), "\x01\x01\xC3\xA9");
  EXPECT_TRUE(destination.is_untouched(4));
  // But ASCII was copied before.
  CS_VARCHAR ascii = varchar("abc");
  EXPECT_EQ(
      comn_charset_convert(&context, 2, &srcfmt, &ascii, &destfmt, destination.data(), &length),
      CS_SUCCEED);
  EXPECT_EQ(destination.value<CS_SMALLINT>(), 3);
  EXPECT_EQ(destination.contents(5).substr(2), "abc");
}

// ---- UTF-8 ----

TEST_F(CharConv, TowardsUtf8) {
  EXPECT_EQ(convert(iso_1, utf8, "a\xE9", 8), (Converted{CS_SUCCEED, "a\xC3\xA9"}));
  EXPECT_EQ(to_utf8(iso_1, "a\xE9", 8), (Converted{CS_SUCCEED, "a\xC3\xA9"}));
  EXPECT_EQ(to_utf8(iso_1, "abc", 3), (Converted{CS_SUCCEED, "abc"}));
  EXPECT_EQ(to_utf8(decmcs, "abc", 3), (Converted{CS_SUCCEED, "abc"}));
  EXPECT_EQ(to_utf8(iso_1, "", 0), (Converted{CS_SUCCEED, ""}));
  EXPECT_EQ(to_utf8(utf16, wide(u"\U0001F600"), 4), (Converted{CS_SUCCEED, "\xF0\x9F\x98\x80"}));
  // The same set is copied, and a cut is told here.
  EXPECT_EQ(to_utf8(utf8, "\xC3\xA9z", 3), (Converted{CS_SUCCEED, "\xC3\xA9z"}));
  EXPECT_EQ(to_utf8(utf8, "\xC3\xA9z", 1), (Converted{CS_CONV_TRUNCATED, "\xC3"}));
  EXPECT_EQ(to_utf8(utf8, "\xFF", 1), (Converted{CS_SUCCEED, "\xFF"}));
  for (const auto &[room, text] : {std::pair<size_t, std::string>{0, ""},
                                   {1, std::string(1, '\0')},
                                   {2, "\xC3\xA9"},
                                   {3, "\xC3\xA9x"},
                                   {4, std::string("\xC3\xA9x\0", 4)}})
    EXPECT_EQ(to_utf8(iso_1, "\xE9x\xE9", room), (Converted{CS_CONV_TRUNCATED, text})) << room;
  EXPECT_EQ(to_utf8(iso_1, "\xE9x\xE9", 5), (Converted{CS_SUCCEED, "\xC3\xA9x\xC3\xA9"}));
  EXPECT_EQ(to_utf8(iso_1, "ab", 1), (Converted{CS_CONV_TRUNCATED, "a"}));
  // A part of a character fails here.
  HandSet other_utf8(190);
  EXPECT_EQ(to_utf8(other_utf8, "a\xC3\xA9\xC3", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(to_utf8(decmcs, "\xE9", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(to_utf8(unknown, "\xE9", 8), (Converted{CS_FAIL, ""}));
  // A lone surrogate cannot be UTF-8.
  std::string lone = wide(u"\u00E9a");
  lone[3] = '\xD8';
  EXPECT_EQ(to_utf8(utf16, lone, 8), (Converted{CS_FAIL, ""}));
}

TEST_F(CharConv, FromUtf8) {
  EXPECT_EQ(from_utf8(iso_1, "a\xC3\xA9", 8), (Converted{CS_SUCCEED, "a\xE9"}));
  EXPECT_EQ(from_utf8(utf16, "a\xC3\xA9", 8), (Converted{CS_SUCCEED, wide(u"a\u00E9")}));
  EXPECT_EQ(from_utf8(ascii_8, "a\xC3\xA9z", 8), (Converted{CS_SUCCEED, "a?z"}));
  EXPECT_EQ(from_utf8(iso_1, "", 8), (Converted{CS_SUCCEED, ""}));
  EXPECT_EQ(from_utf8(iso_1, "", 0), (Converted{CS_SUCCEED, ""}));
  EXPECT_EQ(from_utf8(iso_1, std::string("a\0b", 3), 8), (Converted{CS_SUCCEED, "a"}));
  // There is no shortcut for ASCII.
  EXPECT_EQ(from_utf8(utf16, "ab", 8), (Converted{CS_SUCCEED, wide(u"ab")}));
  EXPECT_EQ(from_utf8(decmcs, "ab", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(from_utf8(unknown, "ab", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(from_utf8(utf8, "\xC3\xA9z", 2), (Converted{CS_CONV_TRUNCATED, "\xC3\xA9"}));
  EXPECT_EQ(from_utf8(utf8, "\xC3\xA9z", 3), (Converted{CS_SUCCEED, "\xC3\xA9z"}));
  for (size_t room = 0; room < 4; ++room)
    EXPECT_EQ(from_utf8(utf16, "a\xC3\xA9", room),
              (Converted{CS_CONV_TRUNCATED,
                         wide(u"a\u00E9").substr(0, room / 2 * 2) + std::string(room % 2, '\0')}));
  EXPECT_EQ(from_utf8(utf16, "a\xC3\xA9", 4), (Converted{CS_SUCCEED, wide(u"a\u00E9")}));
  for (const char *malformed : {"\xC3", "\xFF", "a\xC0\x80", "\xED\xA0\x80", "\xE2\x82"})
    EXPECT_EQ(from_utf8(iso_1, malformed, 8), (Converted{CS_FAIL, ""})) << malformed;
}

TEST_F(CharConv, FromUtf8OfTooManyBytes) {
  unsigned char byte = 'a', result = 0;
  CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, 1);
  for (const CS_INT length : {0x3FFFFFFF, INT_MAX}) {
    CS_INT written = -1;
    EXPECT_EQ(comn__convt_from_utf8(&context, 1, &byte, length, &destfmt, &iso_1.cache, &result,
                                    &written),
              CS_FAIL);
    EXPECT_EQ(written, 0);
  }
}

// However much room there is, no more memory is taken than the text can need.
TEST_F(CharConv, AHugeRoom) {
  unsigned char text[] = {0xC3, 0xA9}, result[8];
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 1), destfmt = make_format(CS_TYPE_CHAR, INT_MAX);
  srcfmt.locale = &iso_1.locale;
  destfmt.locale = &utf16.locale;
  const AllocationProbe probe;
  CS_INT length = -1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, text, &destfmt, result, &length),
            CS_SUCCEED);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(result), 2), wide(u"\u00C3"));
  EXPECT_EQ(length, 2);
  EXPECT_EQ(probe.last_size(), 3U);
  EXPECT_EQ(comn__convt_to_utf8(&context, 1, &srcfmt, &iso_1.cache, text, result, INT_MAX, &length),
            CS_SUCCEED);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(result), 2), "\xC3\x83");
  EXPECT_EQ(length, 2);
  EXPECT_EQ(probe.last_size(), 4U);
  EXPECT_EQ(comn__convt_from_utf8(&context, 1, text, 2, &destfmt, &utf16.cache, result, &length),
            CS_SUCCEED);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(result), 2), wide(u"\u00E9"));
  EXPECT_EQ(length, 2);
  EXPECT_EQ(probe.last_size(), 3U);
}

TEST_F(CharConv, NegativeLengthsAreNone) {
  unsigned char byte = 0xE9, result = 0x5A;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, -1), destfmt = make_format(CS_TYPE_CHAR, -1);
  srcfmt.locale = &iso_1.locale;
  destfmt.locale = &utf16.locale;
  CS_INT length = -1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, &byte, &destfmt, &result, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 0);
  srcfmt.maxlength = 1;
  EXPECT_EQ(comn_charset_convert(&context, 2, &srcfmt, &byte, &destfmt, &result, &length),
            CS_CONV_TRUNCATED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(comn__convt_to_utf8(&context, 1, &srcfmt, &iso_1.cache, &byte, &result, -5, &length),
            CS_CONV_TRUNCATED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(comn__convt_from_utf8(&context, 1, &byte, -1, &destfmt, &iso_1.cache, &result, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(result, 0x5A);
}

TEST_F(CharConv, AlgorithmsOfTheUsersServeUtf8) {
  CsUserAlgo there = algorithm_for(iso_1, utf8), back = algorithm_for(utf8, iso_1);
  there.next = &back;
  context.usercharconv = &there;
  EXPECT_EQ(to_utf8(iso_1, "abc", 20), (Converted{-7, "user"}));
  EXPECT_EQ(user_call.destination_format.datatype, CS_TYPE_CHAR);
  EXPECT_EQ(user_call.destination_format.maxlength, 20);
  EXPECT_EQ(user_call.destination_format.locale, nullptr);
  EXPECT_EQ(user_call.destination_format.format, 0);
  EXPECT_EQ(user_call.source_format.maxlength, 3);
  EXPECT_EQ(from_utf8(iso_1, "abcde", 20), (Converted{-7, "user"}));
  EXPECT_EQ(user_call.source_format.datatype, CS_TYPE_CHAR);
  EXPECT_EQ(user_call.source_format.maxlength, 5);
  EXPECT_EQ(user_call.source_format.locale, nullptr);
  EXPECT_EQ(user_call.source_format.format, 0);
  EXPECT_EQ(user_call.destination_format.maxlength, 20);
  // Those without a function leave it to the library.
  there.user_conv_func = back.user_conv_func = nullptr;
  EXPECT_EQ(to_utf8(iso_1, "\xE9", 8), (Converted{CS_SUCCEED, "\xC3\xA9"}));
  EXPECT_EQ(from_utf8(iso_1, "\xC3\xA9", 8), (Converted{CS_SUCCEED, "\xE9"}));
  // Not for the same set.
  EXPECT_EQ(to_utf8(utf8, "abc", 3), (Converted{CS_SUCCEED, "abc"}));
}

TEST_F(CharConv, ThePersistentHandleServesAnySet) {
  EXPECT_EQ(comn__get_persistent_handle(), nullptr);
  CVTH handle = nullptr;
  ASSERT_EQ(uniconv_HandleGet(1, &handle), 1);
  ASSERT_EQ(uniconv_SetSubstituteChar(handle, '#'), 1);
  EXPECT_EQ(comn_set_persistent_handle(handle), CS_SUCCEED);
  EXPECT_EQ(comn__get_persistent_handle(), handle);
  EXPECT_EQ(comn__persistent_handle, handle);
  // Even for a set without a converter; and its substitute is its own.
  EXPECT_EQ(to_utf8(unknown, "\xE9", 8), (Converted{CS_SUCCEED, "\xC3\xA9"}));
  EXPECT_EQ(from_utf8(decmcs, "\xC3\xA9\xE2\x82\xAC", 8), (Converted{CS_SUCCEED, "\xE9#"}));
  // The general engine does not look at it.
  EXPECT_EQ(convert(iso_1, utf16, "\xE9", 8), (Converted{CS_SUCCEED, wide(u"\u00E9")}));
  EXPECT_EQ(convert(utf16, iso_1, wide(u"\u20AC"), 8), (Converted{CS_SUCCEED, "?"}));
  comn_set_persistent_handle(nullptr);
  EXPECT_EQ(to_utf8(unknown, "\xE9", 8), (Converted{CS_FAIL, ""}));
  uniconv_HandleFree(handle);
}

// ---- failures ----

TEST_F(CharConv, EachAllocationFails) {
  const auto none = [] {};
  const auto fails = [](const Converted &result, const Converted &expected) {
    if (result.status == CS_MEM_ERROR || result.status == CS_FAIL) {
      EXPECT_EQ(result.text, "");
      return true;
    }
    EXPECT_EQ(result, expected);
    return false;
  };
  EXPECT_GE(fail_each_allocation(
                none,
                [&] {
                  return fails(convert(iso_1, utf16, "a\xE9", 8), {CS_SUCCEED, wide(u"a\u00E9")});
                },
                none),
            3U);
  EXPECT_GE(fail_each_allocation(
                none,
                [&] {
                  return fails(to_utf8(iso_1, "a\xE9", 8), {CS_SUCCEED, "a\xC3\xA9"});
                },
                none),
            3U);
  EXPECT_GE(fail_each_allocation(
                none,
                [&] {
                  return fails(from_utf8(iso_1, "a\xC3\xA9", 8), {CS_SUCCEED, "a\xE9"});
                },
                none),
            3U);
}

// The memory of this library itself, not of the converters.
TEST_F(CharConv, OwnAllocationsAreMemoryErrors) {
  CVTH handle = nullptr;
  ASSERT_EQ(uniconv_HandleGet(1, &handle), 1);
  comn_set_persistent_handle(handle);
  // Two, each failing once and from then on.
  const auto none = [] {};
  EXPECT_EQ(fail_each_allocation(
                none, [&] { return to_utf8(iso_1, "\xE9", 8).status == CS_MEM_ERROR; }, none),
            4U);
  EXPECT_EQ(fail_each_allocation(
                none, [&] { return from_utf8(iso_1, "\xC3\xA9", 8).status == CS_MEM_ERROR; }, none),
            4U);
  comn_set_persistent_handle(nullptr);
  uniconv_HandleFree(handle);
}

TEST_F(CharConv, NothingIsLeftBehind) {
  AllocationProbe probe;
  convert(iso_1, utf16, "a\xE9", 8);
  convert(iso_1, utf16, "a\xE9", 1);
  convert(iso_1, decmcs, "a\xE9", 8);
  convert(decmcs, iso_1, "a\xE9", 8);
  convert(utf16, iso_1, "\xE9", 8);
  to_utf8(iso_1, "\xE9", 1);
  to_utf8(decmcs, "\xE9", 1);
  from_utf8(iso_1, "\xC3", 8);
  from_utf8(decmcs, "a", 8);
  EXPECT_GT(probe.allocations(), 0U);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(CharConv, WrongCallsAreFatal) {
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 1), destfmt = srcfmt;
  char text = 'a', result;
  CS_INT length = -1;
  for (const CS_INT type : {CS_LCTYPE_COLLATE, CS_LCTYPE_ALL, 0, -1})
    EXPECT_ASSERTION(
        unit, CS_FAIL,
        comn_charset_convert(&context, type, &srcfmt, &text, &destfmt, &result, &length));
  const auto null_check = [&](CS_CONTEXT *c, CS_DATAFMT *s, void *t, CS_DATAFMT *d, void *r,
                              CS_INT *l) {
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_charset_convert(c, 2, s, t, d, r, l));
  };
  null_check(nullptr, &srcfmt, &text, &destfmt, &result, &length);
  null_check(&context, nullptr, &text, &destfmt, &result, &length);
  null_check(&context, &srcfmt, nullptr, &destfmt, &result, &length);
  null_check(&context, &srcfmt, &text, nullptr, &result, &length);
  null_check(&context, &srcfmt, &text, &destfmt, nullptr, &length);
  null_check(&context, &srcfmt, &text, &destfmt, &result, nullptr);
  // A locale, a cache, a character set that is not there; first on one side, then on the other.
  for (const bool source_side : {true, false}) {
    HandSet empty(3);
    srcfmt.locale = &iso_1.locale;
    destfmt.locale = &utf16.locale;
    (source_side ? srcfmt : destfmt).locale = &empty.locale;
    text = '\xE9';
    empty.charset.char_attrib = nullptr;
    null_check(&context, &srcfmt, &text, &destfmt, &result, &length);
    empty.cache.locchardesc = nullptr;
    null_check(&context, &srcfmt, &text, &destfmt, &result, &length);
    empty.locale.ctypeptr = nullptr;
    null_check(&context, &srcfmt, &text, &destfmt, &result, &length);
    (source_side ? srcfmt : destfmt).locale = nullptr;
    context.ctxlocale = nullptr;
    null_check(&context, &srcfmt, &text, &destfmt, &result, &length);
    context.ctxlocale = &iso_1.locale;
  }
  CsLocCache no_set{};
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_to_utf8(&context, 1, &srcfmt, &no_set, &text, &result, 1, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_to_utf8(&context, 1, &srcfmt, nullptr, &text, &result, 1, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_to_utf8(nullptr, 1, &srcfmt, &iso_1.cache, &text, &result, 1, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_to_utf8(&context, 1, nullptr, &iso_1.cache, &text, &result, 1, &length));
  unsigned char byte = 'a';
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_from_utf8(&context, 1, &byte, 1, &destfmt, &no_set, &result, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_from_utf8(&context, 1, nullptr, 1, &destfmt, &iso_1.cache, &result, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn__convt_from_utf8(&context, 1, &byte, 1, nullptr, &iso_1.cache, &result, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__copy_ascii_only(nullptr, 1, &byte, 1, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__copy_ascii_only(&byte, 1, nullptr, 1, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__copy_ascii_only(&byte, 1, &byte, 1, nullptr));
}

} // namespace
