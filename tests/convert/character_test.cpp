// Conversions from text: bytes on their own and bytes in a record, side by side.
#include <bit>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "foreign_locale.h"
#include "guarded_buffer.h"
#include "numeric_operands.h"
#include "test_scale.h"
#include "text_to_text_reference.h"
#include "text_world.h"
#include "value_bytes.h"

using zrvtest::bytes_of;
using zrvtest::chars;
using zrvtest::FromText;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::text_families;
using zrvtest::text_units;
using zrvtest::TextFamily;
using zrvtest::TextMember;
using zrvtest::TextSet;
using zrvtest::TextWorld;
using zrvtest::varchars;
using namespace std::string_literals;

namespace {

const TextMember flt8 = ZRVTEST_TEXT_MEMBER(flt8, CS_TYPE_FLOAT, 8);
const TextMember flt4 = ZRVTEST_TEXT_MEMBER(flt4, CS_TYPE_REAL, 4);
const TextMember num = ZRVTEST_TEXT_MEMBER(num, CS_TYPE_NUMERIC, 35);
const TextMember money = ZRVTEST_TEXT_MEMBER(money, CS_TYPE_MONEY, 8);
const TextMember mny4 = ZRVTEST_TEXT_MEMBER(mny4, CS_TYPE_MONEY4, 4);
const TextMember text = ZRVTEST_TEXT_MEMBER(char, CS_TYPE_CHAR, 0);
const TextMember varchar = ZRVTEST_TEXT_MEMBER(varchar, CS_TYPE_VARCHAR, sizeof(CS_VARCHAR));
const TextMember binary = ZRVTEST_TEXT_MEMBER(bin, CS_TYPE_BINARY, 0);
const TextMember varbinary = ZRVTEST_TEXT_MEMBER(varbin, CS_TYPE_VARBINARY, sizeof(CS_VARBINARY));

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK,
                 Q = CS_DFMT_ESCQUOTE;
constexpr CS_RETCODE OK = CS_SUCCEED, OV = CS_CONV_OVERFLOW, UN = CS_CONV_UNDERFLOW,
                     SY = CS_CONV_SYNTAX, TR = CS_CONV_TRUNCATED;

const double infinite = std::numeric_limits<double>::infinity();

} // namespace

// ---- to floats ----

TEST(TextToFloat, Double) {
  struct Row {
    const char *text;
    CS_RETCODE status;
    double value; // what is stored
  };
  const Row rows[] = {
      {"", OK, 0.0},
      {"   ", OK, 0.0},
      {"1", OK, 1.0},
      {" \t1.5\v\n", OK, 1.5},
      {"+2", OK, 2.0},
      {"-.5e1", OK, -5.0},
      {"1E3", OK, 1000.0},
      {"0x1.8p3", OK, 12.0},
      {"0x", SY, 0.0},
      {"1 2", SY, 1.0},
      {"x", SY, 0.0},
      {"--1", SY, 0.0},
      {"1,5", SY, 1.0},
      {"4.9e-324", OK, 4.9406564584124654e-324},
      {"1e-999", UN, 0.0},
      {"-1e-999", UN, -0.0},
      {"1e-999x", UN, 0.0}, // a range is told before bad text
      {"1e999", OV, DBL_MAX},
      {"-1e999", OV, -DBL_MAX},
      {"1e999x", OV, DBL_MAX},
      {"1.7976931348623157e308", OK, DBL_MAX},
      {"1.7976931348623159e308", OV, DBL_MAX},
      {"inf", OV, DBL_MAX},
      {"-Infinity", OV, -DBL_MAX},
      {"infx", OV, DBL_MAX},
      {"0e99999999999", OK, 0.0},
  };
  TextWorld world;
  for (const auto family : text_families)
    for (TextSet *set : {static_cast<TextSet *>(nullptr), &world.two_bytes, &world.utf8})
      for (const Row &row : rows) {
        SCOPED_TRACE(testing::Message() << "'" << row.text << "'");
        errno = EDOM;
        const FromText result =
            world.to_fixed(family, flt8, set != nullptr ? set->wide(row.text) : row.text, set);
        EXPECT_EQ(errno,
                  row.status == UN || (row.status == OV && row.text[0] != 'i' && row.text[1] != 'I')
                      ? ERANGE
                      : 0);
        EXPECT_EQ(result.status, row.status);
        EXPECT_EQ(result.destlen, row.status == SY ? 0 : 8);
        EXPECT_EQ(result.bytes, bytes_of(row.value));
      }
  EXPECT_TRUE(std::isnan(world.to_fixed(chars, flt8, "nan").value<double>()));
  EXPECT_EQ(world.to_fixed(chars, flt8, "nan(12)").bytes, bytes_of(std::nan("12")));
}

TEST(TextToFloat, Single) {
  struct Row {
    const char *text;
    CS_RETCODE status;
    uint32_t bits; // what is stored; the filler where nothing is
  };
  constexpr uint32_t nothing = 0xA5A5A5A5;
  const Row rows[] = {
      {"", OK, 0},
      {"0.1", OK, 0x3DCCCCCD},
      {"16777217", OK, 0x4B800000},
      {"1e-60", OK, 0},
      {"-1e-60", OK, 0x80000000},
      {"1e-999", UN, 0},
      {"1e-999x", UN, 0},
      {"1e39", OV, 0x7F7FFFFF},
      {"-1e39", OV, 0xFF7FFFFF},
      {"3.4028234663852886e38", OK, 0x7F7FFFFF},
      {"3.4028234663852887e38", OK, 0x7F7FFFFF}, // the same double
      {"3.402823466385289e38", OV, 0x7F7FFFFF},
      {"1e999", OV, 0x7F7FFFFF},
      {"-1e999x", OV, 0xFF7FFFFF},
      // Deliberate: what is no range of doubles comes after bad text.
      {"1e39x", SY, nothing},
      {"infx", SY, nothing},
      {"inf", OV, 0x7F7FFFFF},
      {"-inf ", OV, 0xFF7FFFFF},
      {"1x", SY, nothing},
  };
  TextWorld world;
  for (const auto family : text_families)
    for (const Row &row : rows) {
      SCOPED_TRACE(testing::Message() << "'" << row.text << "'");
      const FromText result = world.to_fixed(family, flt4, row.text);
      EXPECT_EQ(result.status, row.status);
      EXPECT_EQ(result.destlen, row.status == SY ? 0 : 4);
      EXPECT_EQ(result.value<uint32_t>(), row.bits);
    }
  EXPECT_TRUE(std::isnan(world.to_fixed(chars, flt4, "NAN").value<float>()));
}

TEST(TextToFloat, Lengths) {
  TextWorld world;
  const std::string longest(1023, '0');
  EXPECT_EQ(world.to_fixed(chars, flt8, longest).status, OK);
  for (const TextMember *member : {&flt8, &flt4}) {
    const FromText result = world.to_fixed(chars, *member, longest + "0");
    EXPECT_EQ(result.status, SY);
    EXPECT_EQ(result.destlen, 0);
    EXPECT_TRUE(result.is_untouched());
  }
  // Deliberate: below nothing is bad text on its own and no text in a record.
  for (const auto &[length, status, destlen] :
       {std::tuple{-1, SY, 0}, std::tuple{0, OK, 8}, std::tuple{1024, SY, 0}}) {
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, length), destfmt = make_format(CS_TYPE_FLOAT, 8);
    double value = 1.0;
    CS_INT out = -1;
    char nothing[1024] = "";
    EXPECT_EQ(comn_chartoflt8(&world.context, &srcfmt, nothing, &destfmt, &value, &out), status);
    EXPECT_EQ(out, destlen);
    CS_VARCHAR record{static_cast<CS_SMALLINT>(length), "0"};
    srcfmt.datatype = CS_TYPE_VARCHAR;
    const CS_RETCODE of_record = length == -1 ? CS_RETCODE{OK} : status;
    EXPECT_EQ(comn_varchartoflt8(&world.context, &srcfmt, &record, &destfmt, &value, &out),
              of_record);
    EXPECT_EQ(out, of_record == OK ? 8 : 0);
  }
}

// What strtod makes of a text, for numbers of every kind, and texts that are nearly numbers.
TEST(TextToFloat, AsTheCLibraryReads) {
  TextWorld world;
  std::mt19937_64 random(20261122);
  const std::string alphabet = "0123456789.+-eExXpPaAfFiInNtT() 00011";
  const auto check = [&](const std::string &source) {
    const std::string trimmed = source.substr(0, source.find_last_not_of(" ") + 1);
    char *end;
    errno = 0;
    double expected = std::strtod(trimmed.c_str(), &end);
    const bool ranged = errno == ERANGE;
    CS_RETCODE status = *end == '\0' ? OK : SY;
    if (ranged && expected == 0.0)
      status = UN;
    if (std::isinf(expected)) {
      expected = expected > 0 ? DBL_MAX : -DBL_MAX;
      status = OV;
    }
    const FromText result = world.to_fixed(chars, flt8, source);
    ASSERT_EQ(result.status, status) << '"' << source << '"';
    ASSERT_EQ(result.bytes, bytes_of(expected)) << '"' << source << '"';
  };
  const int count = zrvtest::sanitized ? 20'000 : 400'000;
  for (int round = 0; round < count; ++round) {
    std::string source;
    for (auto left = 1 + random() % 10; left > 0; --left)
      source += alphabet[static_cast<size_t>(random() % alphabet.size())];
    check(source);
    char printed[64];
    const auto value = std::bit_cast<double>(random());
    switch (round % 4) {
    case 0:
      std::snprintf(printed, sizeof printed, "%.17g", value);
      break;
    case 1:
      std::snprintf(printed, sizeof printed, "%a", value);
      break;
    case 2:
      std::snprintf(printed, sizeof printed, "%.*g", static_cast<int>(random() % 20), value);
      break;
    default:
      std::snprintf(printed, sizeof printed, "%u.%ue%d", static_cast<unsigned>(random()),
                    static_cast<unsigned>(random()), static_cast<int>(random() % 700) - 350);
    }
    check(printed);
  }
  for (const char *edge : {"0x1p-1074",
                           "0x1p-1075",
                           "0x1.8p-1075",
                           "0x1.fffffffffffffp1023",
                           "0x1.fffffffffffff8p1023",
                           "0x0.0000000001p99999999999999999999",
                           "0x1p-99999999999999999999",
                           "0x.8",
                           "0x8.",
                           "0x.",
                           "2.4703282292062327e-324",
                           "2.4703282292062328e-324",
                           "0.0001e312",
                           "nan(0x7ff)",
                           "nan(077)",
                           "nan(08)",
                           "nan(abc)",
                           "nan(99999999999999999999)",
                           "nan(",
                           "nan(z)",
                           "nan(Z9_)",
                           "nan(0x)",
                           "nan(0)",
                           "NAN",
                           "InFiNiTy",
                           "0x-1",
                           "0xinf",
                           "infinit"})
    check(edge);
}

// What is out of range is so by the exponent of its first digit that is not 0, however far from the
// point that one stands.
TEST(TextToFloat, ExponentsOfLongTexts) {
  TextWorld world;
  const auto run = [](char digit, size_t count) { return std::string(count, digit); };
  const struct {
    std::string text;
    CS_RETCODE status;
  } rows[] = {
      {'1' + run('0', 400), OV},
      {'1' + run('0', 400) + "e-50", OV},
      {'1' + run('0', 400) + ".5e-50", OV},
      {'1' + run('0', 400) + "e-200", OK},
      {run('9', 200) + "e-600", UN},
      {"1." + run('5', 500) + "e400", OV},
      {"1." + run('5', 500) + "e-400", UN},
      {"0." + run('0', 400) + '1', UN},
      {"0." + run('0', 400) + "1e50", UN},
      {"0." + run('0', 400) + "1e450", OK},
      {"0." + run('0', 100) + "1e450", OV},
      {run('0', 400) + "1e-400", UN},
      {run('0', 400) + "1e+400", OV},
      {run('0', 400) + "e400", OK},
      {run('0', 400) + ".e-400", OK},
      // A hexadecimal digit is four places of the exponent.
      {"0x0." + run('0', 400) + "1p450", UN},
      {"0x0." + run('0', 400) + "1p1600", OK},
      {"0x0." + run('0', 400) + "1p2700", OV},
      {"0x1" + run('0', 400) + "p-500", OV},
      {"0x1" + run('0', 400) + "p-1600", OK},
      {"0xf" + run('0', 400) + "p-3000", UN},
  };
  for (const auto &[text, status] : rows)
    EXPECT_EQ(world.to_fixed(chars, flt8, text).status, status) << text;
}

TEST(TextToFloat, NoLocaleHasASay) {
  zrvtest::ForeignLocale locale;
  TextWorld world;
  EXPECT_EQ(world.to_fixed(chars, flt8, "1.5").value<double>(), 1.5);
  EXPECT_EQ(world.to_fixed(chars, flt8, "1,5").status, SY);
}

// ---- to numeric ----

namespace {

FromText to_num(TextWorld &world, TextFamily family, const std::string &source, CS_INT precision,
                CS_INT scale, CS_INT source_format = 0, TextSet *set = nullptr) {
  CS_DATAFMT format = make_format(CS_TYPE_DECIMAL, -1);
  format.precision = precision;
  format.scale = scale;
  return world.convert(family, num, source, format, 35, set, source_format);
}

std::string num_text(const FromText &result) {
  return zrvtest::Decimal::of(result.value<CS_NUMERIC>()).text();
}

} // namespace

TEST(TextToNum, Values) {
  TextWorld world;
  struct Row {
    const char *text;
    CS_INT precision, scale;
    const char *value;
    CS_INT destlen; // of text on its own; that in a record is always 35
  };
  const Row rows[] = {
      {"12.5", 5, 2, "12.50 (5,2)", 6},
      {" -7 ", 3, 0, "-7 (3,0)", 5},
      {"1e3", 10, 1, "1000.0 (10,1)", 8},
  };
  for (const auto family : text_families)
    for (const Row &row : rows) {
      for (TextSet *set : {static_cast<TextSet *>(nullptr), &world.utf8, &world.two_bytes}) {
        const FromText result =
            to_num(world, family, set != nullptr ? set->wide(row.text) : row.text, row.precision,
                   row.scale, 0, set);
        EXPECT_EQ(result.status, OK) << row.text;
        EXPECT_EQ(result.destlen, family == chars ? row.destlen : 35);
        EXPECT_EQ(num_text(result), row.value);
      }
    }
}

TEST(TextToNum, ShapeFromTheText) {
  TextWorld world;
  const CS_INT from = CS_DFMT_FROMSOURCE;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 5), destfmt = make_format(CS_TYPE_NUMERIC, 35);
  destfmt.precision = destfmt.scale = from;
  GuardedBuffer dest(35, 1);
  CS_INT length = -1;
  char source[] = "12.50";
  EXPECT_EQ(comn_chartonum(&world.context, &srcfmt, source, &destfmt, dest.data(), &length), OK);
  EXPECT_EQ(length, 5);
  EXPECT_EQ(zrvtest::Decimal::of(dest.value<CS_NUMERIC>()).text(), "12.50 (4,2)");
  // The marks are as they were.
  EXPECT_EQ(destfmt.precision, from);
  EXPECT_EQ(destfmt.scale, from);
  // The value stands at the front of the array.
  EXPECT_EQ(dest.contents(5), "\x04\x02\x00\x04\xE2"s);

  EXPECT_EQ(num_text(to_num(world, chars, "-0.25", from, 2)), "-0.25 (3,2)");
  EXPECT_EQ(num_text(to_num(world, chars, "007", 10, from)), "7 (10,0)");
  EXPECT_EQ(to_num(world, chars, std::string(77, '9'), from, from).destlen, 35);
  EXPECT_EQ(to_num(world, chars, std::string(78, '9'), from, from).status, TR);
  // Deliberate: text in a record has no shape of its own.
  EXPECT_EQ(to_num(world, varchars, "12.50", from, 2).status, CS_CONV_BADPRECISION);
  EXPECT_EQ(to_num(world, varchars, "12.50", 5, from).status, CS_CONV_BADSCALE);
}

TEST(TextToNum, Failures) {
  TextWorld world;
  struct Row {
    const char *text;
    CS_INT precision, scale;
    CS_RETCODE status[2]; // by family
    CS_INT destlen;       // of text on its own
  };
  const Row rows[] = {
      {"1", 0, 0, {CS_CONV_BADPRECISION, CS_CONV_BADPRECISION}, -4711},
      {"1", 78, 0, {CS_CONV_BADPRECISION, CS_CONV_BADPRECISION}, -4711},
      {"1", 5, 78, {CS_CONV_BADSCALE, CS_CONV_BADSCALE}, -4711},
      {"1000", 3, 0, {OV, OV}, 5},
      {"1.25", 5, 1, {TR, OV}, 6},
      // Deliberate: in a record all that is wrong is an overflow.
      {"1x", 5, 0, {SY, OV}, 0},
      {"1ex", 5, 0, {SY, OV}, 0},
  };
  for (const auto family : text_families)
    for (const Row &row : rows) {
      const FromText result = to_num(world, family, row.text, row.precision, row.scale);
      EXPECT_EQ(result.status, row.status[family]) << row.text;
      EXPECT_EQ(result.destlen, family == chars ? row.destlen : 35) << row.text;
      if (row.destlen == -4711) {
        EXPECT_TRUE(result.is_untouched());
      }
    }
  EXPECT_EQ(to_num(world, chars, "", 5, 0).status, OK);
  EXPECT_EQ(num_text(to_num(world, chars, "", 5, 0)), "0 (5,0)");
}

// Deliberate: an empty record ends the process.
TEST(TextToNum, EmptyRecordIsFatal) {
  TextWorld world;
  FromText result{};
  EXPECT_ASSERTION("com_varchar.cpp", CS_FAIL, (result = to_num(world, varchars, "", 5, 0)).status);
  EXPECT_EQ(result.destlen, 35);
  EXPECT_TRUE(result.is_untouched());
}

TEST(TextToNum, ANulEndsTheTextWhereTheFormatSaysSo) {
  TextWorld world;
  EXPECT_EQ(num_text(to_num(world, chars, "12\0xyz"s, 5, 0, N)), "12 (5,0)");
  EXPECT_EQ(to_num(world, chars, "12\0xyz"s, 5, 0).status, SY);
  // Deliberate: not in a record.
  EXPECT_EQ(to_num(world, varchars, "12\0xyz"s, 5, 0, N).status, OV);
}

TEST(TextToNum, LongTexts) {
  TextWorld world;
  EXPECT_EQ(num_text(to_num(world, chars, std::string(1020, ' ') + "125", 5, 0)), "125 (5,0)");
  // What does not fit the buffer is no number; wide characters take less there.
  const FromText result = to_num(world, chars, std::string(1020, ' ') + "1250", 5, 0);
  EXPECT_EQ(result.status, SY);
  EXPECT_EQ(result.destlen, 0);
  EXPECT_TRUE(result.is_untouched());
  const std::string wide = world.two_bytes.wide(std::string(900, ' ') + "125");
  ASSERT_GT(wide.size(), 1024U);
  EXPECT_EQ(num_text(to_num(world, chars, wide, 5, 0, 0, &world.two_bytes)), "125 (5,0)");
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, -1), destfmt = make_format(CS_TYPE_NUMERIC, 35);
  destfmt.precision = 5;
  CS_INT length = -1;
  CS_NUMERIC value{};
  char nothing[1] = "";
  EXPECT_EQ(comn_chartonum(&world.context, &srcfmt, nothing, &destfmt, &value, &length), SY);
  EXPECT_EQ(length, 0);
}

// ---- to money ----

TEST(TextToMoney, StatusesAndLengths) {
  TextWorld world;
  struct Row {
    const TextMember *member;
    const char *text;
    CS_RETCODE status;
    CS_INT destlen;
  };
  const Row rows[] = {
      {&money, "12.5", OK, 8},
      {&money, "$-1,234.5678", OK, 8},
      {&money, "", OK, 8},
      {&money, "abc", SY, 0},
      {&money, "922337203685478", OV, 8},
      {&mny4, "214748.3647", OK, 4},
      {&mny4, "214748.3648", OV, 4},
      {&mny4, "1x", SY, 0},
  };
  for (const auto family : text_families)
    for (const Row &row : rows) {
      const FromText result = world.to_fixed(family, *row.member, row.text);
      EXPECT_EQ(result.status, row.status) << row.text;
      EXPECT_EQ(result.destlen, row.destlen) << row.text;
    }
  for (TextSet *set : {&world.iso_1, &world.two_bytes, &world.utf8}) {
    const FromText result = world.to_fixed(chars, mny4, set->wide("12.5"), set);
    EXPECT_EQ(result.value<CS_INT>(), 125000);
  }
}

// ---- to text ----

namespace {

// One-byte text in a given room.
FromText to_text(TextWorld &world, TextFamily family, const std::string &source, CS_INT maxlength,
                 CS_INT format = 0, TextSet *from = nullptr, TextSet *to = nullptr) {
  CS_DATAFMT destfmt = make_format(CS_TYPE_LONGCHAR, maxlength, format);
  destfmt.locale = to != nullptr ? &to->locale : nullptr;
  if (from != nullptr && to == nullptr)
    destfmt.locale = &from->locale;
  return world.convert(family, text, source, destfmt, static_cast<size_t>(std::max(maxlength, 0)),
                       from);
}

} // namespace

TEST(TextToText, Examples) {
  struct Row {
    const char *source;
    CS_INT maxlength, format;
    CS_RETCODE status[2]; // by family
    CS_INT destlen[2];
    std::string bytes[2];
  };
  const Row rows[] = {
      {"abc", 3, 0, {OK, OK}, {3, 3}, {"abc", "abc"}},
      {"abc", 5, 0, {OK, OK}, {3, 3}, {"abc\xA5\xA5", "abc\xA5\xA5"}},
      {"abc", 2, 0, {TR, TR}, {2, 2}, {"ab", "ab"}},
      // Deliberate: without any room nothing is told to be cut.
      {"abc", 0, 0, {OK, OK}, {0, 0}, {"", ""}},
      {"", 2, 0, {OK, OK}, {0, 0}, {"\xA5\xA5", "\xA5\xA5"}},
      {"abc", 5, B, {OK, OK}, {5, 5}, {"abc  ", "abc  "}},
      {"abc", 5, P, {OK, OK}, {5, 5}, {"abc\0\0"s, "abc\0\0"s}},
      {"abc", 5, N, {OK, OK}, {4, 4}, {"abc\0\xA5"s, "abc\0\xA5"s}},
      {"abc",
       5,
       P | B,
       {CS_CONV_PADCONFLICT, CS_CONV_PADCONFLICT},
       {3, 3},
       {"abc\xA5\xA5", "abc\xA5\xA5"}},
      // A full destination loses its last byte to the terminator.
      {"abc", 3, N, {TR, TR}, {3, 3}, {"ab\0"s, "ab\0"s}},
      {"abcd", 3, N, {TR, TR}, {3, 3}, {"ab\0"s, "ab\0"s}},
      {"", 0, N, {TR, TR}, {0, 0}, {"", ""}},
      {"ab", 1, B, {TR, TR}, {1, 1}, {"a", "a"}},
      // Deliberate: text in a record is not quoted.
      {"it's", 8, Q, {OK, OK}, {5, 4}, {"it''s\xA5\xA5\xA5", "it's\xA5\xA5\xA5\xA5"}},
      {"it's", 4, Q, {TR, OK}, {4, 4}, {"it''", "it's"}},
      {"it's", 3, Q, {TR, TR}, {2, 3}, {"it\xA5", "it'"}},
      {"'", 2, Q | N, {TR, OK}, {2, 2}, {"'\0"s, "'\0"s}},
      {"''", 6, Q | B, {OK, OK}, {6, 6}, {"''''  ", "''    "}},
  };
  TextWorld world;
  for (const auto family : text_families)
    for (const Row &row : rows) {
      SCOPED_TRACE(testing::Message() << "family " << family << ", '" << row.source << "' in "
                                      << row.maxlength << ", format " << row.format);
      const FromText result = to_text(world, family, row.source, row.maxlength, row.format);
      EXPECT_EQ(result.status, row.status[family]);
      EXPECT_EQ(result.destlen, row.destlen[family]);
      EXPECT_EQ(result.bytes, row.bytes[family]);
    }
}

TEST(TextToText, ACutNeverSplitsACharacter) {
  TextWorld world;
  const std::string source = world.two_bytes.wide("AB") + "c" + world.two_bytes.wide("D");
  ASSERT_EQ(source.size(), 7U);
  const CS_INT kept[] = {0, 0, 2, 2, 4, 5, 5, 7, 7};
  for (const auto family : text_families)
    for (CS_INT maxlength = 0; maxlength <= 8; ++maxlength) {
      const FromText result = to_text(world, family, source, maxlength, 0, &world.two_bytes);
      const auto count = static_cast<size_t>(kept[maxlength]);
      EXPECT_EQ(result.status, maxlength > 0 && maxlength < 7 ? TR : OK);
      EXPECT_EQ(result.destlen, kept[maxlength]);
      EXPECT_EQ(result.bytes, source.substr(0, count) +
                                  std::string(static_cast<size_t>(maxlength) - count, '\xA5'));
    }
}

// Quotes, terminators and both pads, at every cut of texts with narrow and wide characters.
TEST(TextToText, EveryFormatAtEveryCut) {
  TextWorld world;
  for (TextSet *set : {&world.iso_1, &world.two_bytes, &world.four_bytes, &world.utf8})
    for (const char *ascii : {"", "a", "'", "''", "a'", "'a", "1 '2'", "it's 12"})
      // Every second character is wide, the first of them or not, where there is such a form.
      for (const size_t first_wide : {size_t{0}, size_t{1}, size_t{99}}) {
        zrvtest::Characters source;
        for (const char *c = ascii; *c != '\0'; ++c) {
          const size_t place = source.size();
          const bool is_wide = place >= first_wide && (place - first_wide) % 2 == 0;
          source.push_back({set->tables.spell({c, 1}, [&] { return is_wide; }), *c});
        }
        const std::string bytes = zrvtest::spelled(source);
        for (CS_INT format = 0; format < 16; ++format) {
          const CS_INT bits = (format & 7) | (format >= 8 ? Q : 0);
          for (CS_INT maxlength = 0; maxlength <= 2 * static_cast<CS_INT>(bytes.size()) + 2;
               ++maxlength)
            for (const auto family : text_families) {
              const FromText result = to_text(world, family, bytes, maxlength, bits, set);
              const zrvtest::TextResult expected =
                  zrvtest::slow_text_to_text(source, family == varchars, bits, maxlength, '\xA5');
              ASSERT_TRUE(
                  (zrvtest::TextResult{result.status, result.destlen, result.bytes} == expected))
                  << "family " << family << ", '" << ascii << "' in " << maxlength << " bytes, set "
                  << int{set->tables.get()->cs_maxcharlen} << ", format " << bits << ": status "
                  << result.status << " and not " << expected.status << ", length "
                  << result.destlen << " and not " << expected.destlen;
            }
        }
      }
}

TEST(TextToText, QuotesInLongerCharacters) {
  TextWorld world;
  // The wide quote reduces to a quote and is doubled as it is.
  const std::string quote = world.two_bytes.wide("'");
  ASSERT_EQ(quote.size(), 2U);
  const FromText result = to_text(world, chars, "a" + quote + "'", 16, Q, &world.two_bytes);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.bytes.substr(0, static_cast<size_t>(result.destlen)),
            "a" + quote + quote + "''");
  const FromText cut = to_text(world, chars, "a" + quote, 4, Q, &world.two_bytes);
  EXPECT_EQ(cut.status, TR);
  EXPECT_EQ(cut.destlen, 1);
  EXPECT_EQ(cut.bytes, "a\xA5\xA5\xA5");
  // A NUL ends it where the format asks for one behind the text.
  EXPECT_EQ(to_text(world, chars, "a\0b"s, 8, Q | N).destlen, 2);
  EXPECT_EQ(to_text(world, chars, "a\0b"s, 8, Q).destlen, 3);
}

TEST(TextToText, InPlace) {
  TextWorld world;
  char buffer[8] = "abcdef";
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 6), destfmt = make_format(CS_TYPE_TEXT, 8, B);
  CS_INT length = -1;
  EXPECT_EQ(comn_chartochar(&world.context, &srcfmt, buffer, &destfmt, buffer, &length), OK);
  EXPECT_EQ(std::string(buffer, 8), "abcdef  ");
}

TEST(TextToText, BetweenSets) {
  TextWorld world;
  const std::string latin = "caf\xE9";
  const std::string utf8 = "caf\xC3\xA9";
  for (const auto family : text_families) {
    FromText result = to_text(world, family, latin, 8, B, &world.iso_1, &world.utf8);
    EXPECT_EQ(result.status, OK);
    EXPECT_EQ(result.bytes, utf8 + "   ");
    EXPECT_EQ(result.destlen, 8);
    result = to_text(world, family, utf8, 8, 0, &world.utf8, &world.iso_1);
    EXPECT_EQ(result.status, OK);
    EXPECT_EQ(result.bytes, latin + "\xA5\xA5\xA5\xA5");
    // Deliberate: cut between characters, the room that is left counts, and holds a NUL.
    result = to_text(world, family, latin, 4, 0, &world.iso_1, &world.utf8);
    EXPECT_EQ(result.status, TR);
    EXPECT_EQ(result.destlen, 4);
    EXPECT_EQ(result.bytes, "caf\0"s);
  }
  // Deliberate: quotes are doubled in the text as it came.
  const FromText result = to_text(world, chars, "'\xE9", 8, Q, &world.iso_1, &world.utf8);
  EXPECT_EQ(result.status, OK);
  EXPECT_EQ(result.bytes.substr(0, 3), "''\xE9");
  EXPECT_EQ(result.destlen, 3);
}

// Deliberate: two caches with one character set are one set for text on its own, and two for a record.
TEST(TextToText, CachesWithOneSet) {
  TextWorld world;
  TextSet other;
  other.charset.oid = world.iso_1.charset.oid;
  other.cache.locchardesc = &world.iso_1.charset;
  for (const auto family : text_families) {
    const FromText result = to_text(world, family, "caf\xE9", 3, 0, &world.iso_1, &other);
    EXPECT_EQ(result.destlen, 3);
    // Between the same sets the conversion of the set cuts without a word.
    EXPECT_EQ(result.status, family == chars ? TR : OK);
  }
}

// ---- to varchar ----

TEST(TextToVarchar, CutAt256) {
  TextWorld world;
  for (const auto family : text_families)
    for (const size_t length : {size_t{0}, size_t{1}, size_t{255}, size_t{256}, size_t{257}}) {
      if (family == varchars && length > 256)
        continue;
      const std::string source(length, 'x');
      const FromText result = world.convert(family, varchar, source,
                                            make_format(CS_TYPE_VARCHAR, 0), sizeof(CS_VARCHAR));
      const size_t kept = std::min<size_t>(length, 256);
      EXPECT_EQ(result.status, length > 256 ? TR : OK);
      EXPECT_EQ(result.destlen, 258);
      EXPECT_EQ(result.value<CS_SMALLINT>(), static_cast<CS_SMALLINT>(kept));
      EXPECT_EQ(result.bytes.substr(2), source.substr(0, kept) + std::string(256 - kept, '\xA5'));
    }
  // In whole characters.
  const std::string source = "x" + world.two_bytes.wide(std::string(128, 'A'));
  CS_DATAFMT destfmt = make_format(CS_TYPE_VARCHAR, 0);
  destfmt.locale = &world.two_bytes.locale;
  const FromText result =
      world.convert(chars, varchar, source, destfmt, sizeof(CS_VARCHAR), &world.two_bytes);
  EXPECT_EQ(result.status, TR);
  EXPECT_EQ(result.value<CS_SMALLINT>(), 255);
}

TEST(TextToVarchar, BetweenSets) {
  TextWorld world;
  CS_DATAFMT destfmt = make_format(CS_TYPE_VARCHAR, 0);
  destfmt.locale = &world.utf8.locale;
  for (const auto family : text_families) {
    const FromText whole =
        world.convert(family, varchar, "caf\xE9", destfmt, sizeof(CS_VARCHAR), &world.iso_1);
    EXPECT_EQ(whole.status, OK);
    EXPECT_EQ(whole.destlen, 258);
    EXPECT_EQ(whole.bytes.substr(0, 7), "\5\0caf\xC3\xA9"s);
    // For want of room the record has what was converted.
    const FromText cut = world.convert(family, varchar, std::string(200, '\xE9'), destfmt,
                                       sizeof(CS_VARCHAR), &world.iso_1);
    EXPECT_EQ(cut.status, TR);
    EXPECT_EQ(cut.destlen, 256);
    EXPECT_EQ(cut.bytes.substr(0, 4), "\0\1\xC3\xA9"s);
  }
}

// The length is told before anything can go wrong.
TEST(TextToVarchar, LengthWithoutALocale) {
  CS_CONTEXT context{};
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 300), destfmt = make_format(CS_TYPE_VARCHAR, 258);
  std::string source(300, 'x');
  CS_VARCHAR record{7, "before"};
  CS_INT length = -1;
  EXPECT_NULL_POINTER_CHECK(
      "com_char.cpp", CS_FAIL,
      comn_chartovarchar(&context, &srcfmt, source.data(), &destfmt, &record, &length));
  EXPECT_EQ(length, 256);
  EXPECT_EQ(record.len, 7);
}

// ---- to binary ----

TEST(TextToBinary, Digits) {
  TextWorld world;
  struct Row {
    const char *source;
    CS_INT maxlength, format;
    CS_RETCODE status;
    CS_INT destlen;
    std::string bytes;
  };
  const Row rows[] = {
      {"0xAb01", 2, 0, OK, 2, "\xAB\x01"},
      {" 123 ", 3, P, OK, 3, "\x01\x23\0"s},
      {"1234", 1, 0, TR, 1, "\x12"},
      {"12g4", 2, 0, SY, 0, ""},
      {"1", 0, 0, OV, 0, ""},
  };
  for (const auto family : text_families)
    for (const Row &row : rows) {
      const FromText result = world.convert(family, binary, row.source,
                                            make_format(CS_TYPE_IMAGE, row.maxlength, row.format),
                                            static_cast<size_t>(row.maxlength));
      EXPECT_EQ(result.status, row.status) << row.source;
      EXPECT_EQ(result.destlen, row.destlen);
      EXPECT_EQ(result.bytes.substr(0, row.bytes.size()), row.bytes);
    }
}

TEST(TextToBinary, Record) {
  TextWorld world;
  for (const auto family : text_families) {
    const CS_DATAFMT format = make_format(CS_TYPE_VARBINARY, 0);
    FromText result = world.convert(family, varbinary, "0xABC", format, sizeof(CS_VARBINARY));
    EXPECT_EQ(result.status, OK);
    EXPECT_EQ(result.destlen, 258);
    EXPECT_EQ(result.bytes.substr(0, 5), "\2\0\x0A\xBC\xA5"s);
    result = world.convert(family, varbinary, "12xx", format, sizeof(CS_VARBINARY));
    EXPECT_EQ(result.status, SY);
    EXPECT_EQ(result.destlen, 0);
    EXPECT_EQ(result.value<CS_SMALLINT>(), 0);
  }
  const FromText result = world.convert(chars, varbinary, std::string(514, '7'),
                                        make_format(CS_TYPE_VARBINARY, 0), sizeof(CS_VARBINARY));
  EXPECT_EQ(result.status, TR);
  EXPECT_EQ(result.destlen, 258);
  EXPECT_EQ(result.bytes, "\0\1"s + std::string(256, '\x77'));
  for (const auto family : text_families)
    EXPECT_ASSERTION(
        "com_bin.cpp", CS_FAIL,
        world
            .convert(family, varbinary, "", make_format(CS_TYPE_VARBINARY, 0), sizeof(CS_VARBINARY))
            .status);
}

// ---- steps through text ----

TEST(TextSteps, NullPointers) {
  CS_BYTE bytes[] = "it's";
  CS_CHAR text[] = "it's", room[8];
  CS_DATAFMT format = make_format(CS_TYPE_CHAR, 4);
  CS_INT length;
  zrvtest::expect_null_checks("com_text.cpp", 0, comnb_truncate_chars, nullptr, bytes, 4, 2);
  zrvtest::expect_null_checks("com_text.cpp", CS_FAIL, comn__escchar, text, &format, room, &format,
                              &length, nullptr, '\'');
}

TEST(TextSteps, TruncateChars) {
  TextWorld world;
  CHAR_ATTRIB *const set = world.two_bytes.tables.get();
  std::string source = world.two_bytes.wide("A") + "b" + world.two_bytes.wide("C");
  auto *const bytes = reinterpret_cast<CS_BYTE *>(source.data());
  const CS_INT kept[] = {0, 0, 2, 3, 3, 5};
  for (CS_INT room = 0; room <= 5; ++room)
    EXPECT_EQ(comnb_truncate_chars(set, bytes, 5, room), kept[room]) << room;
  EXPECT_EQ(comnb_truncate_chars(set, bytes, 5, 6), 5);
  EXPECT_EQ(comnb_truncate_chars(set, bytes, 5, -1), 0);
  // A source that ends within a character, shorter than the room, is not looked at.
  EXPECT_EQ(comnb_truncate_chars(set, bytes, 4, 5), 4);
  EXPECT_EQ(comnb_truncate_chars(set, bytes, 4, 4), 3);
  EXPECT_EQ(comnb_truncate_chars(nullptr, bytes, 5, 4), 4);
  // A single byte, which may be half a character; and none, which are not looked for.
  EXPECT_EQ(comnb_truncate_chars(set, bytes, 1, 1), 0);
  EXPECT_EQ(comnb_truncate_chars(nullptr, bytes, 1, 1), 1);
  EXPECT_EQ(comnb_truncate_chars(nullptr, bytes, 1, 0), 0);
  for (const CS_INT none : {0, -1})
    EXPECT_EQ(comnb_truncate_chars(set, nullptr, none, -2), none);
}

TEST(TextSteps, Conv2Ascii) {
  TextWorld world;
  CHAR_ATTRIB *const set = world.two_bytes.tables.get();
  // A wide digit, a character without a form in ASCII, and one that is cut.
  std::string source = world.two_bytes.wide("7") + "\xB0\xB1" + "x\xA3";
  const char *const expected[] = {
      "", "7", "7", "7\xB0\xB1", "7\xB0\xB1x", "7\xB0\xB1x\xA3", "7\xB0\xB1x\xA3"};
  for (CS_INT room = 0; room <= 6; ++room) {
    GuardedBuffer from(source.size()), dest(static_cast<size_t>(room));
    std::memcpy(from.data(), source.data(), source.size());
    const CS_INT written =
        com__conv2ascii(from.data(), static_cast<CS_INT>(source.size()), dest.data(), room, set);
    EXPECT_EQ(dest.contents(static_cast<size_t>(written)), expected[room]) << room;
  }
  CS_BYTE dest[4] = {};
  CS_BYTE upper[] = {'A', 'b'};
  EXPECT_EQ(com__conv2ascii(upper, 2, dest, 4, nullptr), 2);
  EXPECT_EQ(dest[0], 'a'); // the built-in set reduces to lower case
  EXPECT_EQ(com__conv2ascii(upper, -1, dest, 4, nullptr), 0);
  EXPECT_EQ(com__conv2ascii(upper, 2, dest, -1, nullptr), 0);
  // Each byte of the built-in set by itself, in every room.
  CS_BYTE all[256];
  std::string reduced;
  for (int c = 0; c < 256; ++c) {
    all[c] = static_cast<CS_BYTE>(c);
    const CS_BYTE ascii = comn_to_ascii(nullptr, &all[c]);
    reduced += static_cast<char>(ascii != 0 ? ascii : all[c]);
  }
  for (CS_INT room = 0; room <= 257; ++room) {
    GuardedBuffer bytes(static_cast<size_t>(room));
    const CS_INT count = std::min(room, 256);
    EXPECT_EQ(com__conv2ascii(all, 256, bytes.data(), room, nullptr), count);
    EXPECT_EQ(bytes.contents(static_cast<size_t>(count)),
              reduced.substr(0, static_cast<size_t>(count)));
  }
  EXPECT_NULL_POINTER_CHECK("com_text.cpp", 0, com__conv2ascii(nullptr, 1, dest, 4, nullptr));
  EXPECT_NULL_POINTER_CHECK("com_text.cpp", 0, com__conv2ascii(upper, 1, nullptr, 4, nullptr));
}

TEST(TextSteps, EscapeOfNoText) {
  for (const CS_INT none : {0, -1}) {
    GuardedBuffer dest(2);
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, none), destfmt = make_format(CS_TYPE_CHAR, 2);
    CS_CHAR source[] = "''";
    CS_INT length = 99;
    EXPECT_EQ(comn__escchar(source, &srcfmt, dest.text(), &destfmt, &length, nullptr, '\''),
              CS_SUCCEED);
    EXPECT_EQ(length, 0);
    EXPECT_TRUE(dest.is_untouched());
  }
}

TEST(TextSteps, EscapeInEveryRoom) {
  const std::string source = "a'b''";
  const char *const expected[] = {"",     "a",      "a",      "a''",      "a''b",
                                  "a''b", "a''b''", "a''b''", "a''b''''", "a''b''''"};
  for (CS_INT room = -1; room <= 9; ++room) {
    GuardedBuffer dest(static_cast<size_t>(std::max(room, 0)));
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 5), destfmt = make_format(CS_TYPE_CHAR, room);
    CS_INT length = 99; // counting starts anew
    const CS_RETCODE status = comn__escchar(const_cast<char *>(source.data()), &srcfmt, dest.text(),
                                            &destfmt, &length, nullptr, 39);
    const std::string text = room < 0 ? "" : expected[room];
    EXPECT_EQ(status, room < 8 ? TR : OK) << room;
    EXPECT_EQ(length, static_cast<CS_INT>(text.size()));
    EXPECT_EQ(dest.contents(text.size()), text);
    EXPECT_TRUE(dest.is_untouched(text.size()));
  }
}

// ---- dates ----

namespace {

const TextMember datetime = ZRVTEST_TEXT_MEMBER(datetime, CS_TYPE_DATETIME, 8);
const TextMember bigdatetime = {
    "bigdatetime", CS_TYPE_BIGDATETIME, {comn_chartodatetime, comn_varchartodatetime}, 8};
const TextMember date4 = ZRVTEST_TEXT_MEMBER(date4, CS_TYPE_DATETIME4, 4);
const TextMember datea = ZRVTEST_TEXT_MEMBER(datea, CS_TYPE_DATE, 4);
const TextMember timea = ZRVTEST_TEXT_MEMBER(timea, CS_TYPE_TIME, 4);
const TextMember bigtime = {"bigtime", CS_TYPE_BIGTIME, {comn_chartotimea, comn_varchartotimea}, 8};
const TextMember *const date_members[] = {&datetime, &bigdatetime, &date4,
                                          &datea,    &timea,       &bigtime};

} // namespace

TEST(TextToDate, Values) {
  TextWorld world;
  world.two_bytes.cache.locchardesc = &world.iso_1.charset;
  for (const auto family : text_families) {
    FromText result = world.to_fixed(family, datetime, "1900-01-02 00:00:01");
    EXPECT_EQ(result.status, OK);
    EXPECT_EQ(result.destlen, 8);
    EXPECT_EQ(result.bytes, "\1\0\0\0\x2C\1\0\0"s);
    result = world.to_fixed(family, datea, "1900-01-03");
    EXPECT_EQ(result.status, OK);
    EXPECT_EQ(result.destlen, 4);
    EXPECT_EQ(result.value<CS_INT>(), 2);
    EXPECT_EQ(world.to_fixed(family, date4, "1900-01-03 00:05").bytes, "\2\0\5\0"s);
    EXPECT_EQ(world.to_fixed(family, timea, "00:00:02").value<CS_INT>(), 600);
    result = world.to_fixed(family, bigtime, "00:00:00.000007");
    EXPECT_EQ(result.destlen, 8);
    EXPECT_EQ(result.value<uint64_t>(), 7U);
    EXPECT_EQ(world.to_fixed(family, bigdatetime, "0001-01-01").value<uint64_t>(),
              uint64_t{366} * 86'400'000'000U);
  }
}

TEST(TextToDate, Failures) {
  TextWorld world;
  for (const auto family : text_families)
    for (const TextMember *member : date_members) {
      FromText result = world.to_fixed(family, *member, "neither");
      EXPECT_EQ(result.status, SY) << member->destination;
      EXPECT_EQ(result.destlen, 0);
    }
  for (const auto family : text_families) {
    const FromText result = world.to_fixed(family, date4, "1899-12-31");
    EXPECT_EQ(result.status, OV);
    EXPECT_EQ(result.destlen, 4);
  }
}

// The style of the language's tables counts once there are others behind them; short date-times go by
// the first tables of all.
TEST(TextToDate, StyleOfTheTables) {
  TextWorld world;
  CS_DATEINFO behind{}, first{};
  CS_DATEINFO &tables = world.iso_1.dates;
  tables.convertfmt = first.convertfmt = 103; // day before month
  world.globals.cmg_datetime = &first;
  const auto day_of = [&](const TextMember &member) {
    const FromText result = world.to_fixed(chars, member, "02/03/1900");
    return member.code == CS_TYPE_DATETIME4 ? CS_INT{result.value<CS_USMALLINT>()}
                                            : result.value<CS_INT>();
  };
  const CS_INT march_2 = 60, february_3 = 33;
  EXPECT_EQ(day_of(datetime), february_3);
  tables.next = &behind;
  EXPECT_EQ(day_of(datetime), march_2);
  EXPECT_EQ(day_of(datea), march_2);
  // Deliberate: not yet, for these are other tables.
  EXPECT_EQ(day_of(date4), february_3);
  first.next = &tables;
  EXPECT_EQ(day_of(date4), march_2);
}

TEST(TextToDate, EachAllocationFails) {
  TextWorld world;
  for (const auto family : text_families)
    for (const TextMember *member : date_members) {
      const size_t failed = zrvtest::fail_each_allocation(
          [] {},
          [&] {
            const FromText result = world.to_fixed(family, *member, "12:00");
            if (result.status != CS_MEM_ERROR)
              return false;
            EXPECT_EQ(result.destlen, static_cast<CS_INT>(member->width));
            EXPECT_TRUE(result.is_untouched());
            return true;
          },
          [] {});
      EXPECT_GE(failed, 2U) << member->destination;
    }
}

// What the algorithm of a user sees of a source.
namespace {

CS_DATAFMT seen_format;
std::string seen_text;

CS_RETCODE see(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *, CS_VOID *dest,
               CS_INT *resultlen) {
  seen_format = *srcfmt;
  seen_text.assign(static_cast<const char *>(src), static_cast<size_t>(srcfmt->maxlength));
  *resultlen = srcfmt->maxlength;
  std::memcpy(dest, src, seen_text.size());
  return CS_SUCCEED;
}

} // namespace

TEST(TextToDate, AnAlgorithmOfTheUserSeesNoRecord) {
  TextWorld world;
  CsUserAlgo algorithm{};
  algorithm.from_oid = &world.iso_1.oid;
  algorithm.to_oid = &world.utf8.oid;
  algorithm.user_conv_func = see;
  world.context.usercharconv = &algorithm;
  for (const auto family : text_families) {
    seen_format = {};
    seen_text.clear();
    EXPECT_EQ(world.to_fixed(family, timea, "00:00:02").value<CS_INT>(), 600);
    EXPECT_EQ(seen_format.datatype, CS_TYPE_CHAR) << family;
    EXPECT_EQ(seen_text, "00:00:02");
  }
}

TEST(TextToDate, RoomOfARecordGoesByItsFormat) {
  TextWorld world;
  CS_VARCHAR record{5, "12:00"};
  CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, 5), destfmt = make_format(CS_TYPE_TIME, 4);
  CS_INT value = -1, length = -1;
  EXPECT_EQ(comn_varchartotimea(&world.context, &srcfmt, &record, &destfmt, &value, &length), OK);
  EXPECT_EQ(value, 12 * 3600 * 300);
  // Nothing has no room, and too much has none either.
  srcfmt.maxlength = 0;
  EXPECT_EQ(comn_varchartotimea(&world.context, &srcfmt, &record, &destfmt, &value, &length), TR);
  srcfmt.maxlength = 0x7FFFFFFF;
  EXPECT_EQ(comn_varchartotimea(&world.context, &srcfmt, &record, &destfmt, &value, &length),
            CS_MEM_ERROR);
}

// ---- checks ----

TEST(TextChecks, PointersAndDatatypes) {
  const TextMember more[] = {
      ZRVTEST_TEXT_MEMBER(bit, CS_TYPE_BIT, 1),
      ZRVTEST_TEXT_MEMBER(i1, CS_TYPE_TINYINT, 1),
      ZRVTEST_TEXT_MEMBER(i2, CS_TYPE_SMALLINT, 2),
      ZRVTEST_TEXT_MEMBER(i4, CS_TYPE_INT, 4),
      ZRVTEST_TEXT_MEMBER(i8, CS_TYPE_BIGINT, 8),
      ZRVTEST_TEXT_MEMBER(ui2, CS_TYPE_USMALLINT, 2),
      ZRVTEST_TEXT_MEMBER(ui4, CS_TYPE_UINT, 4),
      ZRVTEST_TEXT_MEMBER(ui8, CS_TYPE_UBIGINT, 8),
      flt8,
      flt4,
      num,
      money,
      mny4,
      text,
      varchar,
      binary,
      varbinary,
      datetime,
      date4,
      datea,
      timea,
  };
  TextWorld world;
  for (const TextMember &member : more)
    for (const auto family : text_families) {
      SCOPED_TRACE(testing::Message() << "family " << family << " to " << member.destination);
      const CS_DATAFMT srcfmt = make_format(family == chars ? CS_TYPE_CHAR : CS_TYPE_VARCHAR, 1);
      const CS_DATAFMT destfmt = make_format(member.code, 4);
      zrvtest::expect_null_checks(text_units[family], member.function[family], srcfmt, destfmt);
      zrvtest::Conversion convert(member.function[family], srcfmt, destfmt);
      CS_VARCHAR source{};
      GuardedBuffer dest(sizeof(CS_VARCHAR));
      convert.srcfmt.datatype = family == chars ? CS_TYPE_VARCHAR : CS_TYPE_CHAR;
      EXPECT_ASSERTION(text_units[family], CS_FAIL, convert(&source, dest.data()));
      convert.srcfmt = srcfmt;
      convert.destfmt.datatype = CS_TYPE_VOID;
      EXPECT_ASSERTION(text_units[family], CS_FAIL, convert(&source, dest.data()));
      EXPECT_TRUE(dest.is_untouched());
      EXPECT_EQ(convert.destlen, zrvtest::Conversion::untouched_length);
    }
}

// Of all pairs of types: a member works on its own stack, unless a date is read from text or written as
// text.
TEST(TextChecks, OnlyDatesAsTextAllocate) {
  TextWorld world;
  ASSERT_EQ(com_conv_init(&world.context), OK);
  const std::set<CS_INT> texts = {CS_TYPE_CHAR,        CS_TYPE_LONGCHAR, CS_TYPE_TEXT,
                                  CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY, CS_TYPE_XML,
                                  CS_TYPE_VARCHAR};
  const std::set<CS_INT> dates = {CS_TYPE_DATETIME, CS_TYPE_DATETIME4,   CS_TYPE_DATE,
                                  CS_TYPE_TIME,     CS_TYPE_BIGDATETIME, CS_TYPE_BIGTIME};
  // These have rules of their own.
  const std::set<CS_INT> others = {CS_TYPE_VOID,          CS_TYPE_BLOB,        CS_TYPE_UNICHAR,
                                   CS_TYPE_UNITEXT,       CS_TYPE_TEXTLOCATOR, CS_TYPE_IMAGELOCATOR,
                                   CS_TYPE_UNITEXTLOCATOR};
  int members = 0, allocating = 0;
  for (CS_INT from = 0; from < CS_TYPE_COUNT; ++from)
    for (CS_INT to = 0; to < CS_TYPE_COUNT; ++to) {
      const CS_CONV_FUNC function = com_conv_func(&world.context, from, to);
      if (function == nullptr || others.count(from) != 0 || others.count(to) != 0)
        continue;
      SCOPED_TRACE(testing::Message() << "from " << from << " to " << to);
      // The text "0", the byte 0, the number 0 and the first day.
      std::string source(sizeof(CS_VARCHAR), '\0');
      if (texts.count(from) != 0)
        source[from == CS_TYPE_VARCHAR ? 2 : 0] = '0';
      if (from == CS_TYPE_VARCHAR || from == CS_TYPE_VARBINARY)
        source[0] = 1;
      if (from == CS_TYPE_NUMERIC || from == CS_TYPE_DECIMAL)
        source[0] = 5;
      CS_DATAFMT srcfmt = make_format(from, 1), destfmt = make_format(to, 64);
      destfmt.precision = 5;
      GuardedBuffer dest(sizeof(CS_VARCHAR));
      CS_INT length = 0;
      const zrvtest::AllocationProbe probe;
      function(&world.context, &srcfmt, source.data(), &destfmt, dest.data(), &length);
      const bool allocates = (texts.count(from) != 0 && dates.count(to) != 0) ||
                             (dates.count(from) != 0 && texts.count(to) != 0);
      EXPECT_EQ(probe.allocations() != 0, allocates);
      EXPECT_EQ(probe.live_blocks(), 0U);
      ++members;
      allocating += allocates ? 1 : 0;
    }
  com_conv_free(&world.context);
  EXPECT_EQ(allocating, 2 * 4 * 6); // char, longchar, text and varchar
  EXPECT_GT(members, 600);
}
