// Conversions from and to 16-bit text: values, text, bytes and records.
#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../intl/installation.h"
#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "pad_reference.h"
#include "text_world.h"
#include "traced_exit.h"
#include "value_bytes.h"

using zrvtest::AllocationProbe;
using zrvtest::bytes_of;
using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::TextSet;
using zrvtest::TextWorld;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK,
                 Q = CS_DFMT_ESCQUOTE;
constexpr CS_INT any_unit = 64;
constexpr CS_INT both_types[] = {CS_TYPE_UNICHAR, CS_TYPE_UNITEXT};

// The bytes of 16-bit text.
std::string units(const std::u16string &text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// ASCII text in 16-bit units.
std::string wide(const std::string &ascii) {
  return units({ascii.begin(), ascii.end()});
}

// What came of a conversion: the whole destination, of which a fill is what was not written.
struct Result {
  CS_RETCODE status;
  CS_INT length;
  std::string bytes;

  bool operator==(const Result &) const = default;
  bool is_untouched() const { return bytes.find_first_not_of('\xA5') == std::string::npos; }
};

std::ostream &operator<<(std::ostream &out, const Result &result) {
  out << result.status << ", length " << result.length << ", bytes";
  for (const char c : result.bytes)
    out << ' ' << std::hex << (c & 0xFF);
  return out << std::dec;
}

std::string filled(std::string text, size_t room) {
  text.resize(room, '\xA5');
  return text;
}

// The source stands alone at a place `misalignment` off a boundary, as the destination does.
Result convert(CS_CONTEXT *context, CS_CONV_FUNC function, CS_DATAFMT srcfmt,
               const std::string &value, CS_DATAFMT destfmt, size_t room, size_t misalignment = 1) {
  GuardedBuffer source(value.size(), misalignment), dest(room, misalignment);
  std::memcpy(source.data(), value.data(), value.size());
  const CS_DATAFMT srcfmt_before = srcfmt, destfmt_before = destfmt;
  CS_INT length = Conversion::untouched_length;
  const CS_RETCODE status =
      function(context, &srcfmt, source.data(), &destfmt, dest.data(), &length);
  EXPECT_EQ(source.contents(), value) << "the source was written";
  EXPECT_EQ(std::memcmp(&srcfmt, &srcfmt_before, sizeof srcfmt), 0);
  EXPECT_EQ(std::memcmp(&destfmt, &destfmt_before, sizeof destfmt), 0);
  return {status, length, dest.contents()};
}

CS_DATAFMT format_of(CS_INT type, const std::string &value, TextSet *set = nullptr) {
  CS_DATAFMT format = make_format(type, static_cast<CS_INT>(value.size()));
  format.locale = set != nullptr ? &set->locale : nullptr;
  return format;
}

CS_DATAFMT room_of(CS_INT type, size_t room, CS_INT bits = 0, TextSet *set = nullptr) {
  CS_DATAFMT format = make_format(type, static_cast<CS_INT>(room), bits);
  format.locale = set != nullptr ? &set->locale : nullptr;
  return format;
}

// A value: its members from and to 16-bit text and those of text beneath them, an instance with its text,
// and the room between.
struct Value {
  const char *name;
  CS_INT code;
  CS_CONV_FUNC from, to, from_char, to_char;
  std::string bytes, text;
  size_t area;
};

CS_NUMERIC numeric_123() {
  CS_NUMERIC value{9, 2, {}};
  value.array[4] = 0x30;
  value.array[3] = 0;
  value.array[4] = 0x39; // 12345
  value.array[3] = 0x30;
  return value;
}

#define VALUE(name, code, to_char, bytes, text, area)                                              \
  Value {                                                                                          \
#name, code, comn_unicharto##name, comn_##name##tounichar, comn_charto##name, to_char, bytes,  \
        text, area                                                                                 \
  }

constexpr CS_INT ticks = (13 * 3600 + 30 * 60) * 300;

const std::vector<Value> &values() {
  static const std::vector<Value> rows = {
      VALUE(i1, CS_TYPE_TINYINT, comn_i1tochar, bytes_of(CS_TINYINT{200}), "200", 64),
      VALUE(i2, CS_TYPE_SMALLINT, comn_i2tochar, bytes_of(CS_SMALLINT{-12345}), "-12345", 64),
      VALUE(i4, CS_TYPE_INT, comn_i4tochar, bytes_of(CS_INT{-1234567890}), "-1234567890", 64),
      VALUE(i8, CS_TYPE_BIGINT, comn_i8tochar, bytes_of(CS_BIGINT{-1234567890123}),
            "-1234567890123", 64),
      VALUE(ui2, CS_TYPE_USMALLINT, comn_ui2tochar, bytes_of(CS_USMALLINT{65535}), "65535", 64),
      VALUE(ui4, CS_TYPE_UINT, comn_ui4tochar, bytes_of(CS_UINT{4000000000U}), "4000000000", 64),
      VALUE(ui8, CS_TYPE_UBIGINT, comn_ui8tochar, bytes_of(CS_UBIGINT{18446744073709551615U}),
            "18446744073709551615", 64),
      VALUE(flt4, CS_TYPE_REAL, comn_flt4tochar, bytes_of(CS_REAL{0.5F}), ".5", 1024),
      VALUE(flt8, CS_TYPE_FLOAT, comn_flt8tochar, bytes_of(CS_FLOAT{-2.25}), "-2.25", 1024),
      VALUE(num, CS_TYPE_NUMERIC, comn_numtochar, bytes_of(numeric_123()), "123.45", 79),
      VALUE(num, CS_TYPE_DECIMAL, comn_numtochar, bytes_of(numeric_123()), "123.45", 79),
      VALUE(mny4, CS_TYPE_MONEY4, comn_mny4tochar, bytes_of(CS_MONEY4{1234500}), "123.45", 24),
      VALUE(money, CS_TYPE_MONEY, comn_moneytochar, bytes_of(CS_MONEY{0, 1234500}), "123.45", 24),
      VALUE(date4, CS_TYPE_DATETIME4, comn_date4tochar, bytes_of(CS_DATETIME4{59, 810}),
            "Mar  1 1900  1:30PM", 2048),
      VALUE(datetime, CS_TYPE_DATETIME, comn_datetochar, bytes_of(CS_DATETIME{59, ticks}),
            "Mar  1 1900  1:30PM", 2048),
      VALUE(datetime, CS_TYPE_BIGDATETIME, comn_datetochar,
            bytes_of(CS_BIGDATETIME{(CS_UBIGINT{693961} + 59) * 86'400'000'000U +
                                    CS_UBIGINT{48600} * 1'000'000}),
            "Mar  1 1900  1:30PM", 2048),
      VALUE(datea, CS_TYPE_DATE, comn_dateatochar, bytes_of(CS_DATE{59}), "Mar  1 1900", 2048),
      VALUE(timea, CS_TYPE_TIME, comn_timeatochar, bytes_of(CS_TIME{ticks}), " 1:30PM", 2048),
      VALUE(timea, CS_TYPE_BIGTIME, comn_timeatochar,
            bytes_of(CS_BIGTIME{CS_UBIGINT{48600} * 1'000'000}), " 1:30PM", 2048),
      VALUE(bit, CS_TYPE_BIT, comn_bittochar, "\x01", "1", 0),
  };
  return rows;
}

CS_DATAFMT value_format(const Value &value, CS_INT maxlength) {
  CS_DATAFMT format = make_format(value.code, maxlength);
  format.precision = 9;
  format.scale = 2;
  return format;
}

Result from_value(TextWorld &world, const Value &value, CS_DATAFMT destfmt, size_t room,
                  size_t misalignment = 1) {
  return convert(&world.context, value.to,
                 value_format(value, static_cast<CS_INT>(value.bytes.size())), value.bytes, destfmt,
                 room, misalignment);
}

Result to_value(TextWorld &world, const Value &value, const std::string &text16,
                size_t misalignment = 1, CS_INT type = CS_TYPE_UNICHAR) {
  return convert(&world.context, value.from, format_of(type, text16), text16,
                 value_format(value, -1), value.bytes.size(), misalignment);
}

// The same through the member for text, from ASCII.
Result through_text(TextWorld &world, const Value &value, const std::string &text) {
  CS_DATAFMT srcfmt = format_of(CS_TYPE_CHAR, text, &world.utf8);
  return convert(&world.context, value.from_char, srcfmt, text, value_format(value, -1),
                 value.bytes.size());
}

// What 16-bit text of `bytes` becomes in a room: told by the slow pad. Text that was cut keeps what fits.
Result ended(const std::string &bytes, CS_INT format, size_t room) {
  const auto maxlength = static_cast<CS_INT>(room);
  const size_t fitting = std::min(bytes.size(), room / 2 * 2);
  zrvtest::Padded dest{filled(bytes.substr(0, fitting), room), static_cast<CS_INT>(fitting)};
  const CS_RETCODE status =
      zrvtest::reference_pad_text(2, static_cast<CS_INT>(bytes.size()), format, maxlength, dest);
  return {status == CS_CONV_OVERFLOW ? CS_CONV_TRUNCATED : status, dest.length, dest.bytes};
}

} // namespace

// ---- values ----

TEST(UnicharFromValue, InEveryRoomAndPad) {
  TextWorld world;
  for (const Value &value : values()) {
    const std::string text16 = wide(value.text);
    for (size_t room = 0; room <= text16.size() + 5; ++room)
      for (CS_INT format = 0; format < 8; ++format)
        for (const size_t misalignment : {0, 1}) {
          SCOPED_TRACE(testing::Message() << value.name << " in " << room << ", " << format);
          EXPECT_EQ(
              from_value(world, value, room_of(CS_TYPE_UNICHAR, room, format), room, misalignment),
              ended(text16, format, room));
        }
    EXPECT_EQ(from_value(world, value, room_of(CS_TYPE_UNITEXT, 48), 48), ended(text16, 0, 48));
  }
}

// Only what fits the room is told as cut: no star, no failure of the text beneath.
TEST(UnicharFromValue, NumbersAreCut) {
  TextWorld world;
  EXPECT_EQ(from_value(world, values()[2], room_of(CS_TYPE_UNICHAR, 8, N), 8),
            (Result{CS_CONV_TRUNCATED, 8, wide("-12") + "\0\0"s}));
}

// The formats of the text are those of the members beneath, on a format of their own: what destfmt says of
// precision and scale reaches nobody.
TEST(UnicharFromValue, PrecisionIsNotLookedAt) {
  TextWorld world;
  for (const Value &value : values()) {
    CS_DATAFMT destfmt = room_of(CS_TYPE_UNICHAR, 60);
    destfmt.precision = 4;
    destfmt.scale = 3;
    EXPECT_EQ(from_value(world, value, destfmt, 60), ended(wide(value.text), 0, 60)) << value.name;
  }
}

// A failure of the text beneath is the result, and leaves nothing.
TEST(UnicharFromValue, FailuresOfTheTextBeneath) {
  TextWorld world;
  const CS_DATAFMT destfmt = room_of(CS_TYPE_UNICHAR, 40, N);
  Value bit = values().back();
  bit.bytes = "\x02";
  EXPECT_EQ(from_value(world, bit, destfmt, 40), (Result{CS_CONV_DOMAIN, 0, filled("", 40)}));
  Value numeric = values()[9];
  numeric.bytes[0] = 0; // a precision that no numeric has
  EXPECT_EQ(from_value(world, numeric, destfmt, 40), (Result{CS_CONV_DOMAIN, 0, filled("", 40)}));
}

// Numbers with the longest texts there are fit the areas.
TEST(UnicharFromValue, LongestTexts) {
  TextWorld world;
  const auto text_of = [&](CS_CONV_FUNC member, CS_INT code, const std::string &bytes) {
    CS_DATAFMT srcfmt = make_format(code, static_cast<CS_INT>(bytes.size()));
    const Result result =
        convert(&world.context, member, srcfmt, bytes, room_of(CS_TYPE_UNICHAR, 1000), 1000);
    EXPECT_EQ(result.status, CS_SUCCEED);
    std::string text;
    for (CS_INT i = 0; i < result.length; i += 2)
      text += result.bytes[static_cast<size_t>(i)];
    return text;
  };
  EXPECT_EQ(text_of(comn_moneytounichar, CS_TYPE_MONEY,
                    bytes_of(CS_MONEY{std::numeric_limits<CS_INT>::min(), 0})),
            "-922337203685477.58");
  EXPECT_EQ(text_of(comn_mny4tounichar, CS_TYPE_MONEY4,
                    bytes_of(CS_MONEY4{std::numeric_limits<CS_INT>::min()})),
            "-214748.36");
  EXPECT_EQ(
      text_of(comn_i8tounichar, CS_TYPE_BIGINT, bytes_of(std::numeric_limits<CS_BIGINT>::min())),
      "-9223372036854775808");
  EXPECT_EQ(text_of(comn_flt8tounichar, CS_TYPE_FLOAT, bytes_of(CS_FLOAT{-1e300})).substr(0, 4),
            "-1.0");
}

TEST(UnicharToValue, Values) {
  TextWorld world;
  for (const Value &value : values())
    for (const CS_INT type : both_types)
      for (const size_t misalignment : {0, 1}) {
        Result result = to_value(world, value, wide(value.text), misalignment, type);
        EXPECT_EQ(result.status, CS_SUCCEED) << value.name;
        EXPECT_EQ(result, through_text(world, value, value.text)) << value.name;
        if (value.code != CS_TYPE_NUMERIC && value.code != CS_TYPE_DECIMAL) {
          EXPECT_EQ(result.bytes, value.bytes) << value.name;
          EXPECT_EQ(result.length, static_cast<CS_INT>(value.bytes.size())) << value.name;
        } else {
          EXPECT_EQ(result.bytes.substr(0, 7), value.bytes.substr(0, 7));
        }
      }
}

// What the text beneath makes of any text: status, length and bytes.
TEST(UnicharToValue, AsTheTextBeneath) {
  TextWorld world;
  const char *const texts[] = {" ",      "-",        "x",
                               "12x",    "0",        "-0",
                               "  7 ",   "+ 8",      "9999999999999999999999",
                               "-1",     "1e5",      "1.25",
                               "$1,234", "Mar 1 99", "1900-03-01",
                               "13:30"};
  for (const Value &value : values())
    for (const char *const text : texts)
      EXPECT_EQ(to_value(world, value, wide(text)), through_text(world, value, text))
          << value.name << " of '" << text << "'";
}

// Deliberate: the area between fills first, so a long number is cut before it can overflow.
TEST(UnicharToValue, AreaFills) {
  TextWorld world;
  for (const Value &value : values()) {
    if (value.area == 0)
      continue;
    const std::string fits(value.area, ' ');
    EXPECT_EQ(to_value(world, value, wide(fits)), through_text(world, value, fits)) << value.name;
    EXPECT_EQ(to_value(world, value, wide(fits + " ")),
              (Result{CS_CONV_TRUNCATED, 0, filled("", value.bytes.size())}))
        << value.name;
    // Three bytes of UTF-8 for a unit.
    const std::string wides = units(std::u16string(value.area / 3, u'\u20AC'));
    EXPECT_NE(to_value(world, value, wides).status, CS_CONV_TRUNCATED) << value.name;
    EXPECT_EQ(to_value(world, value, wides + wides.substr(0, 2)).status, CS_CONV_TRUNCATED)
        << value.name;
  }
  EXPECT_EQ(to_value(world, values()[2], wide(std::string(70, '9'))).status, CS_CONV_TRUNCATED);
}

TEST(UnicharToValue, BitOfAnyLength) {
  TextWorld world;
  const Value &bit = values().back();
  EXPECT_EQ(to_value(world, bit, wide(std::string(5000, ' ') + "1")),
            (Result{CS_SUCCEED, 1, "\x01"}));
  EXPECT_EQ(to_value(world, bit, wide(std::string(5000, '9'))).status, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_value(world, bit, units(std::u16string(3, u'\u20AC'))),
            (Result{CS_CONV_SYNTAX, 0, "\xA5"}));
}

TEST(UnicharToValue, DigitsOfOtherScripts) {
  TextWorld world;
  EXPECT_EQ(to_value(world, values()[2], units(u"\u0661\u0662\u0663")),
            (Result{CS_SUCCEED, 4, bytes_of(CS_INT{123})}));
}

TEST(UnicharToValue, InvalidText) {
  TextWorld world;
  const std::string invalid[] = {"\x31"s, wide("12") + "3", units(u"1\uFFFE"), units(u"\uFFFF")};
  for (const Value &value : values())
    for (const std::string &text : invalid)
      EXPECT_EQ(to_value(world, value, text),
                (Result{CS_CONV_BADCHAR, 0, filled("", value.bytes.size())}))
          << value.name;
}

TEST(UnicharToValue, Checks) {
  TextWorld world;
  for (const Value &value : values()) {
    zrvtest::expect_null_checks("com_unichar.cpp", value.from, make_format(CS_TYPE_UNICHAR, 2),
                                make_format(value.code, 8));
    const auto refused = [&](CS_INT source_type, CS_INT length, CS_INT dest_type) {
      Conversion call(value.from, make_format(source_type, length), make_format(dest_type, 8));
      call.context = world.context;
      GuardedBuffer dest(64);
      EXPECT_ASSERTION("com_unichar.cpp", CS_FAIL, call("1\0", dest.data()));
      EXPECT_EQ(call.destlen, Conversion::untouched_length);
      EXPECT_TRUE(dest.is_untouched());
    };
    refused(CS_TYPE_CHAR, 2, value.code);
    refused(CS_TYPE_UNICHAR, 0, value.code);
    refused(CS_TYPE_UNICHAR, -1, value.code);
    refused(CS_TYPE_UNICHAR, 2, CS_TYPE_VOID);
  }
}

// Deliberate: it stands in the matrix for long, whose four bytes it would exceed.
TEST(UnicharToValue, LongIsRefused) {
  TextWorld world;
  EXPECT_EQ(Com__cnvrt_array[CS_TYPE_UNICHAR][CS_TYPE_LONG], comn_unichartoi8);
  Conversion call(comn_unichartoi8, make_format(CS_TYPE_UNICHAR, 2), make_format(CS_TYPE_LONG, 4));
  call.context = world.context;
  CS_LONG value = 5;
  EXPECT_ASSERTION("com_unichar.cpp", CS_FAIL, call("1\0", &value));
  EXPECT_EQ(value, 5);
}

TEST(UnicharFromValue, Checks) {
  for (const Value &value : values()) {
    zrvtest::expect_null_checks("com_unichar.cpp", value.to, make_format(value.code, 8),
                                make_format(CS_TYPE_UNICHAR, 8));
    TextWorld world;
    Conversion call(value.to, make_format(value.code, 8), make_format(CS_TYPE_CHAR, 8));
    call.context = world.context;
    GuardedBuffer dest(64);
    EXPECT_ASSERTION("com_unichar.cpp", CS_FAIL, call(value.bytes.data(), dest.data()));
    EXPECT_TRUE(dest.is_untouched());
  }
}

// Without a locale or the shared globals there is no UTF-8 to go through.
TEST(UnicharValues, NeedALocale) {
  for (const bool has_globals : {false, true})
    for (const Value &value : values()) {
      CS_CONTEXT context{};
      CsCtxGlobals globals{};
      context.ctxglobals = has_globals ? &globals : nullptr;
      CS_DATAFMT unichar = make_format(CS_TYPE_UNICHAR, 2), other = make_format(value.code, 8);
      CS_INT length = -1;
      GuardedBuffer dest(64);
      std::string bytes = value.bytes;
      EXPECT_NULL_POINTER_CHECK(
          "com_unitext.cpp", CS_FAIL,
          value.to(&context, &other, bytes.data(), &unichar, dest.data(), &length));
      char one[] = {'1', 0};
      EXPECT_NULL_POINTER_CHECK("com_unitext.cpp", CS_FAIL,
                                value.from(&context, &unichar, one, &other, dest.data(), &length));
      EXPECT_EQ(length, 0);
      EXPECT_TRUE(dest.is_untouched());
    }
}

// All conventions but the character set are the caller's: those of the source's locale from 16-bit text,
// of the destination's to it.
TEST(UnicharValues, ConventionsOfTheLocale) {
  TextWorld world;
  TextSet foreign;
  static CS_CHAR march[] = "Fri";
  foreign.dates.shortmonths[2] = reinterpret_cast<CS_BYTE *>(march);
  const Value &date = values()[13];
  EXPECT_EQ(from_value(world, date, room_of(CS_TYPE_UNICHAR, 60, 0, &foreign), 60),
            ended(wide("Fri  1 1900  1:30PM"), 0, 60));
  const std::string text = wide("Fri  1 1900  1:30PM");
  EXPECT_EQ(convert(&world.context, date.from, format_of(CS_TYPE_UNICHAR, text, &foreign), text,
                    make_format(date.code, 4), 4),
            (Result{CS_SUCCEED, 4, date.bytes}));
  EXPECT_EQ(to_value(world, date, text).status, CS_CONV_SYNTAX);
}

TEST(UnicharValues, EachAllocationFails) {
  TextWorld world;
  size_t to_values = 0, from_values = 0;
  for (const Value &value : values()) {
    const std::string text = wide(value.text);
    to_values += zrvtest::fail_each_allocation([] {},
                                               [&] {
                                                 const Result result = to_value(world, value, text);
                                                 if (result.status == CS_SUCCEED)
                                                   return false;
                                                 EXPECT_EQ(result.status, CS_MEM_ERROR)
                                                     << value.name;
                                                 return true;
                                               },
                                               [] {});
    from_values += zrvtest::fail_each_allocation(
        [] {},
        [&] {
          const Result result = from_value(world, value, room_of(CS_TYPE_UNICHAR, 48), 48);
          if (result.status == CS_SUCCEED)
            return false;
          EXPECT_EQ(result, (Result{CS_MEM_ERROR, 0, filled("", 48)})) << value.name;
          return true;
        },
        [] {});
  }
  EXPECT_GT(to_values, 0U);
  EXPECT_GT(from_values, 0U);
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(to_value(world, values().back(), wide("1")), (Result{CS_MEM_ERROR, 0, "\xA5"}));
}

// Numbers take no memory of the heap.
TEST(UnicharValues, NumbersDoNotAllocate) {
  TextWorld world;
  AllocationProbe probe;
  for (const Value &value : values())
    if (value.area != 0 && value.area != 2048) {
      to_value(world, value, wide(value.text));
      from_value(world, value, room_of(CS_TYPE_UNICHAR, 48), 48);
    }
  EXPECT_EQ(probe.allocations(), 0U);
}

// ---- to text ----

namespace {

Result to_text(TextWorld &world, const std::string &text16, size_t room, CS_INT format = 0,
               TextSet *set = nullptr) {
  return convert(&world.context, comn_unichartochar, format_of(CS_TYPE_UNICHAR, text16), text16,
                 room_of(CS_TYPE_CHAR, room, format, set), room);
}

Result from_text(TextWorld &world, const std::string &text, size_t room, CS_INT format = 0,
                 TextSet *set = nullptr) {
  return convert(&world.context, comn_chartounichar, format_of(CS_TYPE_CHAR, text, set), text,
                 room_of(CS_TYPE_UNICHAR, room, format), room);
}

// One, two, three and four bytes of UTF-8.
const std::u16string mixed16 = u"a\u00E9\u20AC\U0001F600";
const std::string mixed8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";

} // namespace

TEST(UnicharToText, Utf8InEveryRoom) {
  TextWorld world;
  const std::string text16 = units(mixed16);
  const size_t ends[] = {0, 1, 3, 6, 10}; // of the characters
  for (size_t room = 0; room <= mixed8.size() + 2; ++room)
    for (CS_INT format = 0; format < 8; ++format) {
      SCOPED_TRACE(testing::Message() << room << ", format " << format);
      const Result result = to_text(world, text16, room, format, &world.utf8);
      if (room < mixed8.size()) {
        size_t fitting = 0;
        for (const size_t end : ends)
          if (end <= room)
            fitting = end;
        std::string kept = mixed8.substr(0, fitting);
        // Deliberate: the last byte makes way for the terminator, even in the middle of a character.
        if ((format & N) != 0 && fitting > 0)
          kept.back() = '\0';
        EXPECT_EQ(result,
                  (Result{CS_CONV_TRUNCATED, static_cast<CS_INT>(fitting), filled(kept, room)}));
        continue;
      }
      // Deliberate: an exact fit without room for its terminator is the overflow of the pad.
      zrvtest::Padded expected{filled(mixed8, room), static_cast<CS_INT>(mixed8.size())};
      const CS_RETCODE status = zrvtest::reference_pad_text(
          1, static_cast<CS_INT>(mixed8.size()), format, static_cast<CS_INT>(room), expected);
      EXPECT_EQ(result, (Result{status, expected.length, expected.bytes}));
    }
  EXPECT_EQ(to_text(world, text16, 10, N, &world.utf8),
            (Result{CS_CONV_OVERFLOW, 10, mixed8.substr(0, 9) + "\0"s}));
}

TEST(UnicharToText, Surrogates) {
  TextWorld world;
  const struct {
    std::u16string source;
    std::string text;
  } cases[] = {
      {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
      {{0xDBFF, 0xDFFD}, "\xF4\x8F\xBF\xBD"},
      // A surrogate alone is a character of three bytes.
      {{0xD83D}, "\xED\xA0\xBD"},
      {{0xDE00}, "\xED\xB8\x80"},
      {{0xD83D, u'a'}, "\xED\xA0\xBD"s + "a"},
      {{0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"},
  };
  for (const auto &c : cases) {
    const auto length = static_cast<CS_INT>(c.text.size());
    EXPECT_EQ(to_text(world, units(c.source), 12, 0, &world.utf8),
              (Result{CS_SUCCEED, length, filled(c.text, 12)}));
    EXPECT_EQ(from_text(world, c.text, 12, 0, &world.utf8),
              (Result{CS_SUCCEED, static_cast<CS_INT>(2 * c.source.size()),
                      filled(units(c.source), 12)}));
  }
}

// Bit 64 turns the check off. It is not asked for a length.
TEST(UnicharToText, InvalidUnits) {
  TextWorld world;
  for (const char16_t unit : {u'\uFFFE', u'\uFFFF'}) {
    const std::string text16 = units({u'a', unit, u'b'});
    EXPECT_EQ(to_text(world, text16, 8, 0, &world.utf8),
              (Result{CS_CONV_BADCHAR, 1, filled("a", 8)}));
    const std::string text = "a\xEF\xBF"s + static_cast<char>(unit & 0xBF) + "b";
    EXPECT_EQ(to_text(world, text16, 8, any_unit, &world.utf8),
              (Result{CS_SUCCEED, 5, filled(text, 8)}));
    // Through the area the invalid text leaves nothing.
    EXPECT_EQ(to_text(world, text16, 8, Q, &world.utf8),
              (Result{CS_CONV_BADCHAR, 0, filled("", 8)}));
    EXPECT_EQ(to_text(world, text16, 8, Q | any_unit, &world.utf8),
              (Result{CS_SUCCEED, 5, filled(text, 8)}));
    EXPECT_EQ(to_text(world, text16, 8), (Result{CS_CONV_BADCHAR, 0, filled("", 8)}));
    // From text the check is always on.
    EXPECT_EQ(from_text(world, text, 8, any_unit, &world.utf8),
              (Result{CS_CONV_BADCHAR, 2, filled(wide("a"), 8)}));
  }
  for (const CS_INT format : {0, N, any_unit, N | any_unit})
    EXPECT_EQ(to_text(world, wide("ab") + "c", 8, format, &world.utf8),
              (Result{CS_CONV_BADCHAR, 2, filled("ab", 8)}));
  EXPECT_EQ(to_text(world, wide("ab") + "c", 8), (Result{CS_CONV_BADCHAR, 0, filled("", 8)}));
}

TEST(UnicharToText, OneByteSet) {
  TextWorld world;
  const std::string text16 = units(u"caf\u00E9");
  EXPECT_EQ(to_text(world, text16, 6, B), (Result{CS_SUCCEED, 6, "caf\xE9  "}));
  EXPECT_EQ(to_text(world, text16, 4), (Result{CS_SUCCEED, 4, "caf\xE9"}));
  EXPECT_EQ(to_text(world, text16, 3), (Result{CS_CONV_TRUNCATED, 3, "caf"}));
  EXPECT_EQ(to_text(world, text16, 4, N), (Result{CS_CONV_TRUNCATED, 4, "caf\0"s}));
  EXPECT_EQ(to_text(world, text16, 5, N), (Result{CS_SUCCEED, 5, "caf\xE9\0"s}));
}

// By way of UTF-8, which is told by the locale of the source, though the destination has its own.
TEST(UnicharToText, NeedsALocaleOfTheSource) {
  TextWorld world;
  world.context.ctxlocale = nullptr;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_UNICHAR, 2), destfmt = make_format(CS_TYPE_CHAR, 4);
  TextSet one_byte;
  destfmt.locale = &one_byte.locale;
  std::string text16 = wide("a");
  GuardedBuffer dest(4);
  CS_INT length = -1;
  EXPECT_NULL_POINTER_CHECK(
      "com_unitext.cpp", CS_FAIL,
      comn_unichartochar(&world.context, &srcfmt, text16.data(), &destfmt, dest.data(), &length));
  EXPECT_EQ(length, 0);
  EXPECT_TRUE(dest.is_untouched());
}

TEST(UnicharToText, QuotesAreDoubled) {
  TextWorld world;
  const std::string text16 = units(u"\u20AC'n'");
  EXPECT_EQ(to_text(world, text16, 10, Q, &world.utf8),
            (Result{CS_SUCCEED, 8, filled("\xE2\x82\xAC''n''", 10)}));
  EXPECT_EQ(to_text(world, text16, 10, 0, &world.utf8),
            (Result{CS_SUCCEED, 6, filled("\xE2\x82\xAC'n'", 10)}));
  EXPECT_EQ(to_text(world, text16, 4, Q, &world.utf8),
            (Result{CS_CONV_TRUNCATED, 3, filled("\xE2\x82\xAC", 4)}));
}

TEST(UnicharToText, EveryTextType) {
  TextWorld world;
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type) {
    const bool is_text =
        type == 0 || type == 2 || type == 4 || type == 21 || type == 22 || type == 34;
    for (const bool to : {false, true}) {
      Conversion call(to ? comn_chartounichar : comn_unichartochar,
                      make_format(to ? type : CS_TYPE_UNITEXT, 2),
                      make_format(to ? CS_TYPE_UNITEXT : type, 8));
      call.context = world.context;
      GuardedBuffer dest(8);
      const std::string text = to ? "ab" : wide("a");
      if (is_text)
        EXPECT_EQ(call(text.data(), dest.data()), CS_SUCCEED);
      else
        EXPECT_ASSERTION("com_unichar.cpp", CS_FAIL, call(text.data(), dest.data()));
      EXPECT_EQ(dest.is_untouched(), !is_text);
    }
  }
}

TEST(UnicharText, NothingIsNoFault) {
  TextWorld world;
  for (TextSet *set : {&world.utf8, &world.iso_1}) {
    for (const CS_INT length : {0, -1, INT_MIN}) {
      char dest[4];
      CS_INT written = -1;
      CS_DATAFMT unichar = make_format(CS_TYPE_UNICHAR, length),
                 text = make_format(CS_TYPE_CHAR, 4, N);
      text.locale = &set->locale;
      char none = 0;
      EXPECT_EQ(comn_unichartochar(&world.context, &unichar, &none, &text, dest, &written),
                CS_SUCCEED);
      EXPECT_EQ(written, 1);
      std::swap(unichar.maxlength, text.maxlength);
      unichar.format = N;
      text.format = 0;
      EXPECT_EQ(comn_chartounichar(&world.context, &text, &none, &unichar, dest, &written),
                CS_SUCCEED);
      EXPECT_EQ(written, 2);
    }
    // No room at all.
    EXPECT_EQ(to_text(world, wide("a"), 0, N, set).length, 0);
    EXPECT_EQ(from_text(world, "a", 0, N, set), (Result{CS_CONV_TRUNCATED, 0, ""}));
    EXPECT_EQ(from_text(world, "", 0, N, set), (Result{CS_CONV_TRUNCATED, 0, ""}));
    EXPECT_EQ(from_text(world, "", 0, 0, set), (Result{CS_SUCCEED, 0, ""}));
  }
}

// A room whose size has no 32 bits is not asked for.
TEST(UnicharText, SizesBeyondThirtyTwoBits) {
  TextWorld world;
  AllocationProbe probe;
  char text[2] = {'1', 0}, dest[8];
  CS_INT length = -1;
  const auto fails = [&](CS_CONV_FUNC function, CS_INT from, CS_INT source_length, CS_INT to) {
    CS_DATAFMT srcfmt = make_format(from, source_length), destfmt = make_format(to, 8);
    length = -1;
    EXPECT_EQ(function(&world.context, &srcfmt, text, &destfmt, dest, &length), CS_MEM_ERROR);
    EXPECT_EQ(length, 0);
  };
  fails(comn_unichartochar, CS_TYPE_UNICHAR, 1431655766, CS_TYPE_CHAR);
  fails(comn_unichartobit, CS_TYPE_UNICHAR, 1431655766, CS_TYPE_BIT);
  fails(comn_chartounichar, CS_TYPE_CHAR, 715827883, CS_TYPE_UNICHAR);
  fails(comn_unichartochar, CS_TYPE_UNICHAR, INT_MAX, CS_TYPE_CHAR);
  EXPECT_EQ(probe.allocations(), 0U);
}

// ---- from text ----

TEST(UnicharFromText, Utf8InEveryRoom) {
  TextWorld world;
  const std::string text16 = units(mixed16);
  for (size_t room = 0; room <= text16.size() + 3; ++room)
    for (CS_INT format = 0; format < 8; ++format) {
      SCOPED_TRACE(testing::Message() << room << ", format " << format);
      Result expected = ended(text16, format, room);
      // A pair is not split. What the terminator takes is then behind the text.
      if (room / 2 == 4) {
        expected.length = 6;
        expected.bytes.replace(6, 2, (format & N) != 0 ? "\0\0"s : "\xA5\xA5"s);
      }
      EXPECT_EQ(from_text(world, mixed8, room, format, &world.utf8), expected);
    }
}

TEST(UnicharFromText, InvalidUtf8) {
  TextWorld world;
  for (const char *const text : {"ab\x80", "ab\xC3", "ab\xE2\x82", "ab\xF8\x80\x80\x80\x80"})
    for (const CS_INT format : {0, N, B})
      EXPECT_EQ(from_text(world, text, 12, format, &world.utf8),
                (Result{CS_CONV_BADCHAR, 4, filled(wide("ab"), 12)}));
}

TEST(UnicharFromText, OneByteSet) {
  TextWorld world;
  const std::string text16 = units(u"caf\u00E9");
  for (size_t room = 0; room <= 12; ++room)
    for (CS_INT format = 0; format < 8; ++format)
      EXPECT_EQ(from_text(world, "caf\xE9", room, format), ended(text16, format, room))
          << room << ", format " << format;
  // Three bytes of UTF-8 for each byte of the source are room enough for anything.
  const std::string many(1000, '\xE9');
  EXPECT_EQ(from_text(world, many, 2000),
            (Result{CS_SUCCEED, 2000, units(std::u16string(1000, u'\u00E9'))}));
}

TEST(UnicharText, EachAllocationFails) {
  TextWorld world;
  // The first area is this family's, what comes after it belongs to the conversion between the sets.
  const auto fails = [&](const std::function<Result()> &call) {
    bool first = true;
    const size_t failed = zrvtest::fail_each_allocation(
        [] {},
        [&] {
          const Result result = call();
          if (result.status == CS_SUCCEED)
            return false;
          if (first) {
            EXPECT_EQ(result, (Result{CS_MEM_ERROR, 0, filled("", 8)}));
          }
          first = false;
          return true;
        },
        [] {});
    EXPECT_GT(failed, 0U);
  };
  fails([&] { return to_text(world, units(u"caf\u00E9"), 8); });
  fails([&] { return to_text(world, units(u"'\u00E9"), 8, Q, &world.utf8); });
  fails([&] { return from_text(world, "caf\xE9", 8); });
  AllocationProbe probe;
  to_text(world, wide("a"), 8, 0, &world.utf8);
  from_text(world, "a", 8, 0, &world.utf8);
  EXPECT_EQ(probe.allocations(), 0U);
}

// ---- copies ----

namespace {

struct Copy {
  const char *name;
  CS_CONV_FUNC function;
  CS_INT from;
};
const Copy copies[] = {
    {"unichar", comn_unichartounichar, CS_TYPE_UNICHAR},
    {"unitext", comn_unichartounichar, CS_TYPE_UNITEXT},
    {"binary", comn_bintounichar, CS_TYPE_BINARY},
    {"image", comn_imagetounichar, CS_TYPE_IMAGE},
};

} // namespace

TEST(UnicharCopies, InEveryRoomAndPad) {
  TextWorld world;
  // Units that no text has: none is looked at.
  const std::string text16 = units({u'a', 0xFFFE, 0xD800, 0, 0xFFFF});
  for (const Copy &copy : copies)
    for (size_t room = 0; room <= text16.size() + 5; ++room)
      for (CS_INT format = 0; format < 8; ++format)
        for (const size_t misalignment : {0, 1}) {
          SCOPED_TRACE(testing::Message() << copy.name << " in " << room << ", " << format);
          EXPECT_EQ(convert(&world.context, copy.function, format_of(copy.from, text16), text16,
                            room_of(CS_TYPE_UNITEXT, room, format), room, misalignment),
                    ended(text16, format, room));
        }
}

TEST(UnicharCopies, OddLengths) {
  TextWorld world;
  for (const Copy &copy : copies)
    for (const CS_INT format : {0, N, B, any_unit}) {
      const std::string odd = wide("ab") + "c";
      EXPECT_EQ(convert(&world.context, copy.function, format_of(copy.from, odd), odd,
                        room_of(CS_TYPE_UNICHAR, 10, format), 10),
                (Result{CS_CONV_BADCHAR, 4, filled(wide("ab"), 10)}));
      EXPECT_EQ(convert(&world.context, copy.function, format_of(copy.from, "x"), "x",
                        room_of(CS_TYPE_UNICHAR, 10, format), 10),
                (Result{CS_CONV_BADCHAR, 0, filled("", 10)}));
    }
}

TEST(UnicharToBinary, InEveryRoom) {
  TextWorld world;
  const std::string text16 = units({u'a', 0xFFFE, u'b'});
  for (const CS_INT type : {CS_TYPE_BINARY, CS_TYPE_LONGBINARY, CS_TYPE_IMAGE})
    for (size_t room = 0; room <= 10; ++room)
      for (CS_INT format = 0; format < 8; ++format) {
        const size_t fitting = std::min<size_t>(room / 2 * 2, 6);
        zrvtest::Padded dest{filled(text16.substr(0, fitting), room), static_cast<CS_INT>(fitting)};
        const CS_RETCODE status =
            room < 6 ? CS_CONV_TRUNCATED
                     : zrvtest::reference_pad_binary(6, format, static_cast<CS_INT>(room), dest);
        EXPECT_EQ(convert(&world.context, comn_unichartobin, format_of(CS_TYPE_UNICHAR, text16),
                          text16, room_of(type, room, format), room),
                  (Result{status, dest.length, dest.bytes}))
            << room << ", format " << format;
      }
  const std::string odd = wide("a") + "b";
  EXPECT_EQ(convert(&world.context, comn_unichartobin, format_of(CS_TYPE_UNICHAR, odd), odd,
                    room_of(CS_TYPE_BINARY, 8, P), 8),
            (Result{CS_CONV_BADCHAR, 2, filled(wide("a"), 8)}));
}

// Deliberate: maxlength is not looked at, and neither is whether the length is odd.
TEST(UnicharToImage, TrustsTheCaller) {
  TextWorld world;
  for (const std::string &text16 : {""s, "x"s, wide("ab"), wide("ab") + "c"})
    for (const size_t told : {0, 1, 3}) {
      const auto length = static_cast<CS_INT>(text16.size());
      const size_t room = text16.size();
      if (told <= room) {
        EXPECT_EQ(convert(&world.context, comn_unichartoimage, format_of(CS_TYPE_UNICHAR, text16),
                          text16, room_of(CS_TYPE_IMAGE, told, P), room),
                  (Result{CS_SUCCEED, length, text16}));
      }
    }
  EXPECT_EQ(convert(&world.context, comn_unichartoimage, format_of(CS_TYPE_UNITEXT, "xyz"), "xyz",
                    room_of(CS_TYPE_IMAGE, 6, P), 6),
            (Result{CS_SUCCEED, 6, "xyz\0\0\0"s}));
  CS_DATAFMT srcfmt = make_format(CS_TYPE_UNICHAR, -5), destfmt = make_format(CS_TYPE_IMAGE, 2, P);
  char dest[2] = {1, 1};
  CS_INT length = -1;
  EXPECT_EQ(comn_unichartoimage(&world.context, &srcfmt, dest, &destfmt, dest, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 2);
}

TEST(UnicharCopies, Types) {
  TextWorld world;
  const struct {
    CS_CONV_FUNC function;
    std::vector<CS_INT> from, to;
  } rows[] = {
      {comn_unichartounichar, {25, 29}, {25, 29}}, {comn_bintounichar, {1, 3, 5}, {25, 29}},
      {comn_imagetounichar, {5}, {25, 29}},        {comn_unichartobin, {25, 29}, {1, 3, 5}},
      {comn_unichartoimage, {25, 29}, {5}},        {comn_unichartovarchar, {25, 29}, {18}},
      {comn_unichartovarbin, {25, 29}, {19}},      {comn_varchartounichar, {18}, {25, 29}},
      {comn_varbintounichar, {19}, {25, 29}},
  };
  for (const auto &row : rows) {
    zrvtest::expect_null_checks("com_unichar.cpp", row.function, make_format(row.from[0], 2),
                                make_format(row.to[0], 8));
    const auto accepts = [](const std::vector<CS_INT> &types, CS_INT type) {
      return std::find(types.begin(), types.end(), type) != types.end();
    };
    for (CS_INT from = 0; from <= CS_TYPE_COUNT; ++from)
      for (CS_INT to = 0; to <= CS_TYPE_COUNT; ++to) {
        if (from != row.from[0] && to != row.to[0])
          continue;
        Conversion call(row.function, make_format(from, 2), make_format(to, 8));
        call.context = world.context;
        char source[sizeof(CS_VARCHAR)] = {2, 0}, dest[sizeof(CS_VARCHAR)];
        if (accepts(row.from, from) && accepts(row.to, to))
          EXPECT_EQ(call(source, dest), CS_SUCCEED) << from << " to " << to;
        else
          EXPECT_ASSERTION("com_unichar.cpp", CS_FAIL, call(source, dest));
      }
  }
}

// ---- records ----

namespace {

// What a record holds: its length and so many bytes.
std::string record_of(const std::string &bytes, size_t size = sizeof(CS_VARCHAR)) {
  std::string record = bytes_of(static_cast<CS_SMALLINT>(bytes.size())) + bytes;
  return filled(record, size);
}

Result to_record(TextWorld &world, CS_CONV_FUNC function, const std::string &text16,
                 CS_INT format = 0, TextSet *set = nullptr) {
  const CS_INT type = function == comn_unichartovarchar ? CS_TYPE_VARCHAR : CS_TYPE_VARBINARY;
  CS_DATAFMT destfmt = make_format(type, -1, format);
  destfmt.locale = set != nullptr ? &set->locale : nullptr;
  return convert(&world.context, function, format_of(CS_TYPE_UNICHAR, text16), text16, destfmt,
                 sizeof(CS_VARCHAR));
}

} // namespace

// Deliberate: the length that is reported is that of the record, whatever became of the text.
TEST(UnicharToRecord, Varchar) {
  TextWorld world;
  EXPECT_EQ(to_record(world, comn_unichartovarchar, wide("abc")),
            (Result{CS_SUCCEED, 258, record_of("abc")}));
  EXPECT_EQ(to_record(world, comn_unichartovarchar, units(mixed16), B, &world.utf8),
            (Result{CS_SUCCEED, 258, record_of(mixed8 + std::string(246, ' '))}));
  const std::string long_text(257, 'x');
  EXPECT_EQ(to_record(world, comn_unichartovarchar, wide(long_text.substr(0, 256))),
            (Result{CS_SUCCEED, 258, record_of(long_text.substr(0, 256))}));
  for (TextSet *set : {&world.utf8, &world.iso_1}) {
    EXPECT_EQ(to_record(world, comn_unichartovarchar, wide(long_text), 0, set),
              (Result{CS_CONV_TRUNCATED, 258, record_of(long_text.substr(0, 256))}));
    EXPECT_EQ(to_record(world, comn_unichartovarchar, wide(long_text), N, set),
              (Result{CS_CONV_TRUNCATED, 258, record_of(long_text.substr(0, 255) + '\0')}));
  }
  EXPECT_EQ(to_record(world, comn_unichartovarchar, wide("ab") + "c", 0, &world.utf8),
            (Result{CS_CONV_BADCHAR, 258, record_of("ab")}));
  EXPECT_EQ(to_record(world, comn_unichartovarchar, wide("ab") + "c"),
            (Result{CS_CONV_BADCHAR, 258, record_of("")}));
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(to_record(world, comn_unichartovarchar, wide("ab")),
            (Result{CS_MEM_ERROR, 258, record_of("")}));
}

TEST(UnicharToRecord, Varbinary) {
  TextWorld world;
  EXPECT_EQ(to_record(world, comn_unichartovarbin, wide("abc")),
            (Result{CS_SUCCEED, 258, record_of(wide("abc"))}));
  EXPECT_EQ(to_record(world, comn_unichartovarbin, wide("abc"), P),
            (Result{CS_SUCCEED, 258, record_of(wide("abc") + std::string(250, '\0'))}));
  const std::string text16 = wide(std::string(129, 'x'));
  EXPECT_EQ(to_record(world, comn_unichartovarbin, text16.substr(0, 256)),
            (Result{CS_SUCCEED, 258, record_of(text16.substr(0, 256))}));
  EXPECT_EQ(to_record(world, comn_unichartovarbin, text16),
            (Result{CS_CONV_TRUNCATED, 258, record_of(text16.substr(0, 256))}));
  EXPECT_EQ(to_record(world, comn_unichartovarbin, wide("ab") + "c"),
            (Result{CS_CONV_BADCHAR, 258, record_of(wide("ab"))}));
}

namespace {

Result from_record(TextWorld &world, CS_CONV_FUNC function, const std::string &record,
                   CS_INT told_length, size_t room, CS_INT format = 0, TextSet *set = nullptr) {
  const CS_INT type = function == comn_varchartounichar ? CS_TYPE_VARCHAR : CS_TYPE_VARBINARY;
  CS_DATAFMT srcfmt = make_format(type, told_length);
  srcfmt.locale = set != nullptr ? &set->locale : nullptr;
  return convert(&world.context, function, srcfmt, record, room_of(CS_TYPE_UNICHAR, room, format),
                 room);
}

} // namespace

TEST(UnicharFromRecord, VarcharInEveryRoomAndPad) {
  TextWorld world;
  const std::string text16 = units(u"caf\u00E9");
  for (size_t room = 0; room <= 12; ++room)
    for (CS_INT format = 0; format < 8; ++format)
      EXPECT_EQ(from_record(world, comn_varchartounichar, record_of("caf\xE9"), 258, room, format),
                ended(text16, format, room))
          << room << ", format " << format;
  EXPECT_EQ(from_record(world, comn_varchartounichar, record_of(mixed8), 256, 20, 0, &world.utf8),
            ended(units(mixed16), 0, 20));
  EXPECT_EQ(from_record(world, comn_varchartounichar, record_of(std::string(256, 'x')), 256, 512),
            ended(wide(std::string(256, 'x')), 0, 512));
}

// Deliberate: no more of the record comes along than its format tells.
TEST(UnicharFromRecord, VarcharIsCutByItsFormat) {
  TextWorld world;
  for (const CS_INT told : {4, 3, 1, 0}) {
    const Result whole = ended(wide("abcd"s.substr(0, static_cast<size_t>(told))), N, 10);
    // Without any room the member for text does not tell that something is missing.
    const bool is_told = told > 0 && told < 4;
    EXPECT_EQ(from_record(world, comn_varchartounichar, record_of("abcd"), told, 10, N),
              (Result{is_told ? CS_CONV_TRUNCATED : CS_SUCCEED, whole.length, whole.bytes}))
        << told;
  }
  // A failure of the second step stands over the cut.
  EXPECT_EQ(from_record(world, comn_varchartounichar, record_of("abcd"), 3, 10, P | B).status,
            CS_CONV_PADCONFLICT);
  EXPECT_EQ(from_record(world, comn_varchartounichar,
                        record_of("ab\x80"
                                  "d"),
                        3, 10, 0, &world.utf8)
                .status,
            CS_CONV_BADCHAR);
  // More than the record holds is never read.
  std::string record = record_of(std::string(256, 'x'));
  record[0] = record[1] = '\x7F';
  EXPECT_EQ(from_record(world, comn_varchartounichar, record, 1000, 1000).status, CS_SUCCEED);
}

TEST(UnicharFromRecord, VarcharAllocatesTheLargerRoom) {
  TextWorld world;
  for (const auto &[told, room] : {std::pair<CS_INT, size_t>{300, 20}, {4, 100}}) {
    AllocationProbe probe;
    from_record(world, comn_varchartounichar, record_of("ab"), told, room, 0, &world.utf8);
    EXPECT_EQ(probe.allocations(), 1U);
    EXPECT_EQ(probe.last_size(), std::max(static_cast<size_t>(told), room));
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(from_record(world, comn_varchartounichar, record_of("ab"), 256, 20),
            (Result{CS_MEM_ERROR, 0, filled("", 20)}));
  probe.fail(2);
  EXPECT_EQ(from_record(world, comn_varchartounichar, record_of("ab"), 256, 20),
            (Result{CS_MEM_ERROR, 0, filled("", 20)}));
  probe.succeed();
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(UnicharFromRecord, Varbinary) {
  TextWorld world;
  const std::string text16 = wide("abc");
  for (size_t room = 0; room <= 10; ++room)
    for (CS_INT format = 0; format < 8; ++format)
      EXPECT_EQ(from_record(world, comn_varbintounichar, record_of(text16), -1, room, format),
                ended(text16, format, room));
  EXPECT_EQ(from_record(world, comn_varbintounichar, record_of(wide("ab") + "c"), 258, 10),
            (Result{CS_CONV_BADCHAR, 4, filled(wide("ab"), 10)}));
  const std::string full = wide(std::string(128, 'x'));
  EXPECT_EQ(from_record(world, comn_varbintounichar, record_of(full), 258, 256),
            (Result{CS_SUCCEED, 256, full}));
  AllocationProbe probe;
  from_record(world, comn_varbintounichar, record_of(text16), 258, 10);
  EXPECT_EQ(probe.allocations(), 0U);
}

// ---- the parts beneath ----

TEST(Unistrlen, CountsBytes) {
  for (const size_t misalignment : {0, 1}) {
    GuardedBuffer text(6, misalignment);
    const std::string bytes = units({0x0100, 0x0001, 0});
    std::memcpy(text.data(), bytes.data(), bytes.size());
    EXPECT_EQ(comn_unistrlen(reinterpret_cast<CS_UNICHAR *>(text.data())), 4);
    EXPECT_EQ(comn_unistrlen(reinterpret_cast<CS_UNICHAR *>(text.data() + 4)), 0);
  }
  EXPECT_NULL_POINTER_CHECK("com_unitext.cpp", 0, comn_unistrlen(nullptr));
}

TEST(Utf8Format, CopiesTheLocale) {
  TextWorld world;
  CS_DATAFMT format = make_format(5, 6, 7);
  CS_LOCALE locale, own = world.two_bytes.locale;
  own.timeptr = &world.four_bytes.cache;
  for (CS_LOCALE *const user : {static_cast<CS_LOCALE *>(nullptr), &own}) {
    std::memset(&locale, 0x5A, sizeof locale);
    std::memset(&format, 0x5A, sizeof format);
    EXPECT_EQ(comn__init_utf8_datafmt_and_locale(&world.context, user, &format, &locale),
              CS_SUCCEED);
    CS_LOCALE expected = user != nullptr ? own : world.iso_1.locale;
    expected.ctypeptr = &world.utf8.cache;
    EXPECT_EQ(std::memcmp(&locale, &expected, sizeof locale), 0);
    EXPECT_EQ(format.datatype, CS_TYPE_CHAR);
    EXPECT_EQ(format.locale, &locale);
    EXPECT_EQ(format.maxlength | format.format | format.scale | format.precision | format.namelen |
                  format.status | format.count | format.usertype | format.name[0] |
                  format.name[255],
              0);
    EXPECT_NE(charset_in_datafmt_equals_utf8(&world.context, &format), 0);
  }
  constexpr auto *init = comn__init_utf8_datafmt_and_locale;
  const char *const unit = "com_unitext.cpp";
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, init(nullptr, nullptr, &format, &locale));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, init(&world.context, nullptr, nullptr, &locale));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, init(&world.context, nullptr, &format, nullptr));
  world.context.ctxlocale = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, init(&world.context, nullptr, &format, &locale));
  EXPECT_EQ(init(&world.context, &own, &format, &locale), CS_SUCCEED);
  world.context.ctxglobals = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, init(&world.context, &own, &format, &locale));
}

TEST(Utf8Format, IsKnownByTheCharacterSet) {
  TextWorld world;
  CS_DATAFMT format = make_format(CS_TYPE_CHAR, 1);
  EXPECT_EQ(charset_in_datafmt_equals_utf8(&world.context, &format), 0);
  format.locale = &world.utf8.locale;
  EXPECT_EQ(charset_in_datafmt_equals_utf8(&world.context, &format), 1);
  // Another cache with the same set.
  TextSet other;
  other.cache.locchardesc = &world.utf8.charset;
  format.locale = &other.locale;
  EXPECT_EQ(charset_in_datafmt_equals_utf8(&world.context, &format), 1);
  format.locale = nullptr;
  world.context.ctxlocale = &other.locale;
  EXPECT_EQ(charset_in_datafmt_equals_utf8(&world.context, &format), 1);
  const char *const unit = "com_unitext.cpp";
  constexpr auto *equals = charset_in_datafmt_equals_utf8;
  EXPECT_NULL_POINTER_CHECK(unit, CS_BOOL{0}, equals(nullptr, &format));
  EXPECT_NULL_POINTER_CHECK(unit, CS_BOOL{0}, equals(&world.context, nullptr));
  other.locale.ctypeptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_BOOL{0}, equals(&world.context, &format));
  world.context.ctxlocale = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_BOOL{0}, equals(&world.context, &format));
  world.context.ctxlocale = &world.utf8.locale;
  world.context.ctxglobals = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_BOOL{0}, equals(&world.context, &format));
}

TEST(Transcoders, NeitherEndNorPadUtf8) {
  std::string text16 = units(mixed16);
  for (size_t room = 0; room <= 12; ++room) {
    GuardedBuffer dest(room, 1);
    CS_INT length = -1;
    EXPECT_EQ(comn__convert_from_utf16_to_utf8(text16.data(), static_cast<CS_INT>(text16.size()),
                                               dest.data(), static_cast<CS_INT>(room), &length, 1),
              room < 10 ? CS_CONV_TRUNCATED : CS_SUCCEED);
    EXPECT_TRUE(dest.is_untouched(static_cast<size_t>(length)));
    EXPECT_EQ(dest.contents(static_cast<size_t>(length)),
              mixed8.substr(0, static_cast<size_t>(length)));
  }
  std::string invalid = units(u"a\uFFFF");
  char dest[8];
  CS_INT length = -1;
  EXPECT_EQ(comn__convert_from_utf16_to_utf8(invalid.data(), 4, dest, 8, &length, 1),
            CS_CONV_BADCHAR);
  EXPECT_EQ(length, 1);
  EXPECT_EQ(comn__convert_from_utf16_to_utf8(invalid.data(), 4, dest, 8, &length, 0), CS_SUCCEED);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(comn__convert_from_utf16_to_utf8(invalid.data(), 3, dest, 8, &length, 0),
            CS_CONV_BADCHAR);
  EXPECT_EQ(comn__convert_from_utf16_to_utf8(invalid.data(), -3, dest, 8, &length, 1), CS_SUCCEED);
  EXPECT_EQ(length, 0);
}

TEST(Transcoders, EndUtf16) {
  std::string utf8 = mixed8;
  for (size_t room = 0; room <= 14; ++room)
    for (CS_INT format = 0; format < 8; ++format) {
      CS_DATAFMT destfmt = room_of(CS_TYPE_UNICHAR, room, format);
      GuardedBuffer dest(room, 1);
      CS_INT length = -1;
      const CS_RETCODE status =
          comn__convert_from_utf8_to_utf16(utf8.data(), 6, &destfmt, dest.data(), &length, 1);
      EXPECT_EQ((Result{status, length, dest.contents()}),
                ended(units(u"a\u00E9\u20AC"), format, room));
    }
  std::string odd = "\xEF\xBF\xBE";
  CS_DATAFMT destfmt = make_format(CS_TYPE_UNICHAR, 4);
  char dest[4];
  CS_INT length = -1;
  EXPECT_EQ(comn__convert_from_utf8_to_utf16(odd.data(), 3, &destfmt, dest, &length, 1),
            CS_CONV_BADCHAR);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(comn__convert_from_utf8_to_utf16(odd.data(), 3, &destfmt, dest, &length, 0),
            CS_SUCCEED);
  EXPECT_EQ(length, 2);
}

TEST(Transcoders, Checks) {
  char text[4] = {}, dest[4];
  CS_INT length;
  CS_DATAFMT destfmt = make_format(CS_TYPE_UNICHAR, 4);
  const char *const unit = "com_unitext.cpp";
  constexpr auto *to8 = comn__convert_from_utf16_to_utf8;
  constexpr auto *to16 = comn__convert_from_utf8_to_utf16;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to8(nullptr, 2, dest, 4, &length, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to8(text, 2, nullptr, 4, &length, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to8(text, 2, dest, 4, nullptr, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to16(nullptr, 2, &destfmt, dest, &length, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to16(text, 2, nullptr, dest, &length, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to16(text, 2, &destfmt, nullptr, &length, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, to16(text, 2, &destfmt, dest, nullptr, 1));
}

// ---- shipped character sets ----

// Text of the real sets there and back, each with the bytes of its encoding.
TEST(UnicharShippedSets, ThereAndBack) {
  setenv("ZARVEK", ZRVTEST_HOME, 1);
  {
    zrvtest::Family family;
    family.start();
    const struct {
      const char *locale;
      std::string text;
      std::u16string text16;
    } rows[] = {
        {"ru_RU.CP1251", "\xCC\xEE\xF1\xEA\xE2\xE0", u"\u041C\u043E\u0441\u043A\u0432\u0430"},
        {"C", "caf\xE9", u"caf\u00E9"},
        {"C.UTF-8", mixed8, mixed16},
        {"ja_JP.eucJP", "\xC6\xFC\xCB\xDC\x8E\xB1 a", u"\u65E5\u672C\uFF71 a"},
    };
    for (const auto &row : rows) {
      SCOPED_TRACE(row.locale);
      CS_LOCALE locale = zrvtest::Family::locale_of(family.loaded(row.locale));
      const std::string text16 = units(row.text16);
      CS_DATAFMT text_format = format_of(CS_TYPE_CHAR, row.text);
      text_format.locale = &locale;
      for (size_t room = 0; room <= text16.size() + 3; ++room)
        for (const CS_INT format : {0, N, B}) {
          Result expected = ended(text16, format, room);
          if (row.text16 == mixed16 && room / 2 == 4) {
            expected.length = 6;
            expected.bytes.replace(6, 2, format == N ? "\0\0"s : "\xA5\xA5"s);
          }
          EXPECT_EQ(convert(&family.context, comn_chartounichar, text_format, row.text,
                            room_of(CS_TYPE_UNICHAR, room, format), room),
                    expected)
              << room;
        }
      CS_DATAFMT destfmt = room_of(CS_TYPE_TEXT, 20, B);
      destfmt.locale = &locale;
      std::string padded = row.text;
      padded.resize(20, ' ');
      EXPECT_EQ(convert(&family.context, comn_unichartochar, format_of(CS_TYPE_UNICHAR, text16),
                        text16, destfmt, 20),
                (Result{CS_SUCCEED, 20, padded}));
    }
  }
  unsetenv("ZARVEK");
}

// Each exit leaves its line, but those of conversions from integers.
TEST(UnicharTrace, Exits) {
  TextWorld world;
  for (const Value &value : values()) {
    const std::string text = wide(value.text);
    const std::string line =
        zrvtest::exit_of(CS_SUCCEED, [&] { return to_value(world, value, text).status; });
    EXPECT_EQ(line, "(CS_SUCCEED) file com_unichar.cpp") << value.name;
    const bool is_integer = value.area == 64;
    EXPECT_EQ(zrvtest::trace_of(
                  CS_SUCCEED,
                  [&] { return from_value(world, value, room_of(CS_TYPE_UNICHAR, 48), 48).status; })
                  .empty(),
              is_integer)
        << value.name;
  }
}
