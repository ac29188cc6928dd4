// Dates and times as text.
#include <cstring>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "pad_reference.h"
#include "text_world.h"
#include "value_bytes.h"

using zrvtest::bytes_of;
using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::TextSet;
using zrvtest::TextWorld;
using namespace std::string_literals;

namespace {

// One value of each type: 1 March 1900, half past one and two seconds in the afternoon.
struct Source {
  const char *name;
  CS_INT code;
  std::string bytes;
  CS_CONV_FUNC to_text, to_varchar;
  const char *text; // in style 0
};

constexpr CS_INT ticks = (13 * 3600 + 30 * 60 + 2) * 300;
constexpr CS_UBIGINT microseconds = CS_UBIGINT{13 * 3600 + 30 * 60 + 2} * 1'000'000;
constexpr CS_UBIGINT days_to_1900 = 693961; // from the first day of the year 0

const Source sources[] = {
    {"date", CS_TYPE_DATETIME, bytes_of(CS_DATETIME{59, ticks}), comn_datetochar,
     comn_datetovarchar, "Mar  1 1900  1:30PM"},
    {"bigdatetime", CS_TYPE_BIGDATETIME,
     bytes_of(CS_BIGDATETIME{(days_to_1900 + 59) * 86'400'000'000U + microseconds}),
     comn_datetochar, comn_datetovarchar, "Mar  1 1900  1:30PM"},
    {"date4", CS_TYPE_DATETIME4, bytes_of(CS_DATETIME4{59, 13 * 60 + 30}), comn_date4tochar,
     comn_date4tovarchar, "Mar  1 1900  1:30PM"},
    {"datea", CS_TYPE_DATE, bytes_of(CS_DATE{59}), comn_dateatochar, comn_dateatovarchar,
     "Mar  1 1900"},
    {"timea", CS_TYPE_TIME, bytes_of(CS_TIME{ticks}), comn_timeatochar, comn_timeatovarchar,
     " 1:30PM"},
    {"bigtime", CS_TYPE_BIGTIME, bytes_of(CS_BIGTIME{microseconds}), comn_timeatochar,
     comn_timeatovarchar, " 1:30PM"},
};

struct Converted {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes;
};

Converted to_text(TextWorld &world, const Source &source, CS_INT maxlength, CS_INT format = 0,
                  TextSet *set = nullptr) {
  Conversion convert(source.to_text, make_format(source.code, 8),
                     make_format(CS_TYPE_LONGCHAR, maxlength, format));
  convert.context = world.context;
  convert.destfmt.locale = set != nullptr ? &set->locale : nullptr;
  GuardedBuffer dest(static_cast<size_t>(std::max(maxlength, 0)), 1);
  const std::string value = "?" + source.bytes;
  const CS_RETCODE status = convert(value.data() + 1, dest.data());
  return {status, convert.destlen, dest.contents()};
}

Converted to_varchar(TextWorld &world, const Source &source, TextSet *set = nullptr) {
  Conversion convert(source.to_varchar, make_format(source.code, 8),
                     make_format(CS_TYPE_VARCHAR, -1));
  convert.context = world.context;
  convert.destfmt.locale = set != nullptr ? &set->locale : nullptr;
  GuardedBuffer dest(sizeof(CS_VARCHAR), 1);
  const std::string value = "?" + source.bytes;
  const CS_RETCODE status = convert(value.data() + 1, dest.data());
  return {status, convert.destlen, dest.contents()};
}

} // namespace

TEST(DateText, InEveryRoomAndPad) {
  TextWorld world;
  for (const Source &source : sources) {
    const std::string text = source.text;
    const auto length = static_cast<CS_INT>(text.size());
    for (CS_INT maxlength = 0; maxlength <= length + 3; ++maxlength)
      for (CS_INT format = 0; format < 8; ++format) {
        SCOPED_TRACE(testing::Message()
                     << source.name << " in " << maxlength << ", format " << format);
        const Converted result = to_text(world, source, maxlength, format);
        const auto room = static_cast<size_t>(maxlength);
        if (maxlength < length) {
          EXPECT_EQ(result.status, CS_CONV_TRUNCATED);
          EXPECT_EQ(result.destlen, maxlength);
          EXPECT_EQ(result.bytes, text.substr(0, room));
          continue;
        }
        zrvtest::Padded expected{text + std::string(room - text.size(), '\xA5'), length};
        EXPECT_EQ(result.status,
                  zrvtest::reference_pad_text(1, length, format, maxlength, expected));
        EXPECT_EQ(result.destlen, expected.length);
        EXPECT_EQ(result.bytes, expected.bytes);
      }
  }
}

TEST(DateText, Record) {
  TextWorld world;
  for (const Source &source : sources) {
    const Converted result = to_varchar(world, source);
    const std::string text = source.text;
    EXPECT_EQ(result.status, CS_SUCCEED) << source.name;
    EXPECT_EQ(result.destlen, 258);
    EXPECT_EQ(result.bytes, std::string(1, static_cast<char>(text.size())) + "\0"s + text +
                                std::string(256 - text.size(), '\xA5'));
  }
}

// The type of the value is data here: it fails no check.
TEST(DateText, OtherSources) {
  TextWorld world;
  for (const Source &source : sources)
    for (CS_INT code = -1; code <= CS_TYPE_COUNT; ++code) {
      const bool serves =
          code == source.code ||
          (source.to_text == comn_datetochar &&
           (code == CS_TYPE_DATETIME || code == CS_TYPE_BIGDATETIME)) ||
          (source.to_text == comn_timeatochar && (code == CS_TYPE_TIME || code == CS_TYPE_BIGTIME));
      if (serves)
        continue;
      Source other = source;
      other.code = code;
      const Converted result = to_text(world, other, 40);
      EXPECT_EQ(result.status, CS_CONV_SYNTAX) << source.name << ", " << code;
      EXPECT_EQ(result.destlen, 0);
      EXPECT_EQ(result.bytes, std::string(40, '\xA5'));
    }
}

TEST(DateText, StyleAndNamesOfTheLocale) {
  TextWorld world;
  TextSet german;
  char march[] = "M\xC3\xA4r";
  german.dates.shortmonths[2] = reinterpret_cast<CS_BYTE *>(march);
  EXPECT_EQ(to_text(world, sources[0], 32, CS_DFMT_PADBLANK, &german).bytes.substr(0, 19),
            "M\xE4r  1 1900  1:30PM");
  german.charset.char_attrib = world.utf8.charset.char_attrib;
  german.cache.locchardesc = &world.utf8.charset;
  EXPECT_EQ(to_text(world, sources[0], 32, CS_DFMT_PADBLANK, &german).bytes.substr(0, 20),
            "M\xC3\xA4r  1 1900  1:30PM");
  const Converted record = to_varchar(world, sources[3], &german);
  EXPECT_EQ(record.bytes.substr(0, 14), "\x0C\0M\xC3\xA4r  1 1900"s);
  // A missing name.
  german.dates.shortmonths[2] = nullptr;
  const Converted missing = to_text(world, sources[0], 32, 0, &german);
  EXPECT_EQ(missing.status, CS_CONV_SYNTAX);
  EXPECT_EQ(missing.destlen, 0);
  EXPECT_EQ(to_varchar(world, sources[0], &german).status, CS_CONV_SYNTAX);
}

// The big types have a style of their own, where the locale names one.
TEST(DateText, BigTypesHaveTheirOwnStyle) {
  TextWorld world;
  TextSet set;
  set.dates.convertfmt = 3;
  set.dates.bdtconvertfmt = -1;
  const Source &date = sources[0], &bigdatetime = sources[1];
  EXPECT_EQ(to_text(world, date, 8, 0, &set).bytes, "01/03/00");
  EXPECT_EQ(to_text(world, bigdatetime, 8, 0, &set).bytes, "01/03/00");
  set.dates.bdtconvertfmt = 23;
  EXPECT_EQ(to_text(world, date, 8, 0, &set).bytes, "01/03/00");
  EXPECT_EQ(to_text(world, bigdatetime, 10, 0, &set).bytes, "1900-03-01");
}

TEST(DateText, CharactersThatTheSetDoesNotHave) {
  TextWorld world;
  TextSet set;
  char march[] = "M\xE2\x82\xACr";
  set.dates.shortmonths[2] = reinterpret_cast<CS_BYTE *>(march);
  const std::string text = "M?r  1 1900  1:30PM";
  const Converted padded = to_text(world, sources[0], 21, CS_DFMT_PADBLANK, &set);
  EXPECT_EQ(padded.status, CS_SUCCEED);
  EXPECT_EQ(padded.destlen, 21);
  EXPECT_EQ(padded.bytes, text + "  ");
  const Converted record = to_varchar(world, sources[0], &set);
  EXPECT_EQ(record.status, CS_SUCCEED);
  EXPECT_EQ(record.bytes.substr(0, 21), "\x13\0"s + text);
}

namespace {

CS_RETCODE answer;

// An algorithm of a user that delivers three bytes and `answer`.
CS_RETCODE deliver(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *dest,
                   CS_INT *resultlen) {
  std::memcpy(dest, "abc", 3);
  *resultlen = 3;
  return answer;
}

} // namespace

TEST(DateText, WhatAnAlgorithmOfTheUserAnswers) {
  TextWorld world;
  CsUserAlgo algorithm{};
  algorithm.from_oid = &world.utf8.oid;
  algorithm.to_oid = &world.iso_1.oid;
  algorithm.user_conv_func = deliver;
  world.context.usercharconv = &algorithm;
  const struct {
    CS_RETCODE answer, of_text;
    bool is_padded;
    CS_RETCODE of_record;
  } rows[] = {
      {CS_SUCCEED, CS_SUCCEED, true, CS_SUCCEED},
      {CS_CONV_PARTIAL, CS_CONV_PARTIAL, true, CS_SUCCEED},
      {CS_CONV_TRUNCATED, CS_CONV_TRUNCATED, false, CS_CONV_OVERFLOW},
      {CS_CONV_BADCHAR, CS_CONV_BADCHAR, false, CS_CONV_BADCHAR},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.answer);
    answer = row.answer;
    const Converted text = to_text(world, sources[0], 20, CS_DFMT_PADBLANK);
    EXPECT_EQ(text.status, row.of_text);
    EXPECT_EQ(text.bytes, "abc" + std::string(17, row.is_padded ? ' ' : '\xA5'));
    EXPECT_EQ(text.destlen, row.is_padded ? 20 : 3);
    const Converted record = to_varchar(world, sources[0]);
    const bool has_text = row.of_record != CS_CONV_BADCHAR;
    EXPECT_EQ(record.status, row.of_record);
    EXPECT_EQ(record.destlen, has_text ? 258 : 3);
    EXPECT_EQ(record.bytes.substr(0, 5), (has_text ? "\3\0"s : "\xA5\xA5"s) + "abc");
  }
}

TEST(DateText, RoomBeyondTheAreaOfTwoKilobytes) {
  TextWorld world;
  for (const CS_INT maxlength : {2048, 2049, 5000}) {
    const Converted result = to_text(world, sources[0], maxlength, CS_DFMT_PADBLANK);
    EXPECT_EQ(result.status, CS_SUCCEED);
    EXPECT_EQ(result.destlen, maxlength);
    EXPECT_EQ(result.bytes,
              "Mar  1 1900  1:30PM" + std::string(static_cast<size_t>(maxlength) - 19, ' '));
  }
}

TEST(DateText, EachAllocationFails) {
  TextWorld world;
  TextSet other;
  char march[] = "M\xC3\xA4r"; // not ASCII, so that the conversion allocates too
  other.dates.shortmonths[2] = reinterpret_cast<CS_BYTE *>(march);
  for (const bool record : {false, true}) {
    const size_t failed = zrvtest::fail_each_allocation(
        [] {},
        [&] {
          const Converted result = record ? to_varchar(world, sources[0], &other)
                                          : to_text(world, sources[0], 32, 0, &other);
          if (result.status == CS_SUCCEED)
            return false;
          EXPECT_TRUE(result.status == CS_MEM_ERROR || result.status == CS_FAIL) << result.status;
          EXPECT_EQ(result.destlen, 0);
          return true;
        },
        [] {});
    EXPECT_GE(failed, 2U);
  }
}

TEST(DateText, Checks) {
  for (const Source &source : sources) {
    zrvtest::expect_null_checks("date_text.cpp", source.to_text, make_format(source.code, 8),
                                make_format(CS_TYPE_CHAR, 40));
    zrvtest::expect_null_checks("date_text.cpp", source.to_varchar, make_format(source.code, 8),
                                make_format(CS_TYPE_VARCHAR, 40));
    TextWorld world;
    EXPECT_ASSERTION("date_text.cpp", CS_FAIL, to_text(world, source, -1).status);
    Conversion convert(source.to_text, make_format(source.code, 8), make_format(CS_TYPE_INT, 4));
    GuardedBuffer dest(8);
    EXPECT_ASSERTION("date_text.cpp", CS_FAIL, convert(source.bytes.data(), dest.data()));
    convert.function = source.to_varchar;
    EXPECT_ASSERTION("date_text.cpp", CS_FAIL, convert(source.bytes.data(), dest.data()));
    // A context without a locale.
    convert.function = source.to_text;
    convert.destfmt = make_format(CS_TYPE_CHAR, 8);
    EXPECT_NULL_POINTER_CHECK("date_text.cpp", CS_FAIL, convert(source.bytes.data(), dest.data()));
    EXPECT_TRUE(dest.is_untouched());
  }
}
