// Text for callers without a context.
#include <cstring>
#include <limits>

#include "allocation_probe.h"
#include "check_trap.h"
#include "legacy_shapes_check.h"
#include "test_charset.h"
#include "zrvcomn/numeric.h"

using zrvtest::check_rooms;
using zrvtest::convert_to;
using zrvtest::Fixed;
using zrvtest::GuardedBuffer;
using zrvtest::legacy_member;
using zrvtest::LegacyMember;
using zrvtest::LegacyOptions;
using zrvtest::record_of;
using zrvtest::run_member;
using zrvtest::Shaped;
using zrvtest::TestCharset;
using zrvtest::untouched;
using namespace std::string_literals;

namespace {

constexpr CS_INT overflow = -1, underflow = -2, syntax = -3;

template <class Value>
Fixed<Value> read(const char *destination, const std::string &text) {
  return convert_to<Value>(legacy_member("char", destination), text);
}

} // namespace

// ---- to integers ----

TEST(LegacyText, Integers) {
  using I4 = Fixed<CS_INT>;
  EXPECT_EQ(read<CS_INT>("i4", "  -  42  "), (I4{4, -42}));
  EXPECT_EQ(read<CS_INT>("i4", "2147483647"), (I4{4, 2147483647}));
  EXPECT_EQ(read<CS_INT>("i4", "2147483648"), (I4{overflow, 2147483640}));
  EXPECT_EQ(read<CS_INT>("i4", "-2147483648"), (I4{4, -2147483647 - 1}));
  EXPECT_EQ(read<CS_INT>("i4", "-2147483649").result, overflow);
  EXPECT_EQ(read<CS_INT>("i4", "+-1"), (I4{syntax, 0}));
  EXPECT_EQ(read<CS_INT>("i4", "12x"), (I4{syntax, 12}));
  EXPECT_EQ(read<CS_INT>("i4", "   "), (I4{4, 0}));
  using I2 = Fixed<CS_SMALLINT>;
  EXPECT_EQ(read<CS_SMALLINT>("i2", "32767"), (I2{2, 32767}));
  EXPECT_EQ(read<CS_SMALLINT>("i2", "32768"), (I2{overflow, -32768}));
  EXPECT_EQ(read<CS_SMALLINT>("i2", "-32768"), (I2{2, -32768}));
  EXPECT_EQ(read<CS_SMALLINT>("i2", "-32769"), (I2{overflow, 32767}));
  using I1 = Fixed<CS_TINYINT>;
  EXPECT_EQ(read<CS_TINYINT>("i1", "255"), (I1{1, 255}));
  EXPECT_EQ(read<CS_TINYINT>("i1", "256"), (I1{overflow, 0}));
  EXPECT_EQ(read<CS_TINYINT>("i1", "-1"), (I1{overflow, 255}));
  EXPECT_EQ(read<CS_TINYINT>("i1", "0"), (I1{1, 0}));
  // A negative length is an empty text.
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("char", "i4"), "12", -1), (I4{4, 0}));
}

// Deliberate: the caller's length is what is parsed, not the header's, longer or shorter.
TEST(LegacyText, RecordsAreParsedWithTheCallersLength) {
  std::string record = record_of("123456");
  for (const bool multi_byte : {false, true}) {
    const auto read_i4 = [&](CS_INT srclen) {
      return convert_to<CS_INT>(legacy_member("varychar", "i4", multi_byte), record, srclen);
    };
    EXPECT_EQ(read_i4(3), (Fixed<CS_INT>{4, 123}));
    EXPECT_EQ(read_i4(6), (Fixed<CS_INT>{4, 123456}));
  }
  record[0] = 1;
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("varychar", "i4"), record, 6),
            (Fixed<CS_INT>{4, 123456}));
  EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("varychar", "flt8"), record, 3),
            (Fixed<CS_FLOAT>{8, 123.0}));
  EXPECT_EQ(convert_to<CS_BIT>(legacy_member("varychar", "bit"), record_of("001"), 2),
            (Fixed<CS_BIT>{1, 0}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("varychar", "mny4"), record, 2),
            (Fixed<CS_INT>{4, 120000}));
  // A numeric is read from the record as the matrix does, and so are copies.
  EXPECT_EQ(run_member(legacy_member("varychar", "char"), record_of("abc"), 1, 5, 5),
            (Shaped{3, "abc  "}));
}

TEST(LegacyText, Bits) {
  using Bit = Fixed<CS_BIT>;
  EXPECT_EQ(read<CS_BIT>("bit", "0"), (Bit{1, 0}));
  EXPECT_EQ(read<CS_BIT>("bit", "1"), (Bit{1, 1}));
  EXPECT_EQ(read<CS_BIT>("bit", "9"), (Bit{1, 1}));
  EXPECT_EQ(read<CS_BIT>("bit", "0100"), (Bit{1, 1}));
  EXPECT_EQ(read<CS_BIT>("bit", "000"), (Bit{1, 0}));
  EXPECT_EQ(read<CS_BIT>("bit", "1  "), (Bit{1, 1}));
  EXPECT_EQ(read<CS_BIT>("bit", "   "), (Bit{1, 0}));
  EXPECT_EQ(read<CS_BIT>("bit", ""), (Bit{0, untouched<CS_BIT>()}));
  // Deliberate: blanks in front are no digits.
  for (const char *text : {" 1", "-1", "1x", "x1", "+0", "0\t", "1.0"})
    EXPECT_EQ(read<CS_BIT>("bit", text), (Bit{syntax, untouched<CS_BIT>()})) << text;
  CS_BYTE text[] = "1", bit = 0;
  EXPECT_ASSERTION("oldchar.cpp", 0, com_chartobit(text, -1, &bit, 1));
  EXPECT_EQ(com_chartobit(nullptr, -1, &bit, 1), 0);
}

// ---- to floats ----

TEST(LegacyText, Floats) {
  using Flt8 = Fixed<CS_FLOAT>;
  constexpr CS_FLOAT max = std::numeric_limits<CS_FLOAT>::max();
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1.5"), (Flt8{8, 1.5}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "-1.5e+2"), (Flt8{8, -150.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", ".5E1"), (Flt8{8, 5.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "  7 "), (Flt8{8, 7.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "7\n\r\v"), (Flt8{8, 7.0})); // white space behind it
  EXPECT_EQ(read<CS_FLOAT>("flt8", "  \t"), (Flt8{8, 0.0}));    // an empty text
  EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("char", "flt8"), "7", -1), (Flt8{8, 0.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1e999"), (Flt8{overflow, max}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "-1e999"), (Flt8{overflow, -max}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1e-999"), (Flt8{underflow, 0.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "0e-999"), (Flt8{8, 0.0}));
  // Deliberate: to strtod a subnormal number is a range error. It is stored all the same.
  EXPECT_EQ(read<CS_FLOAT>("flt8", "2.2250738585072014e-308"), (Flt8{8, 0x1p-1022}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1e-310"), (Flt8{underflow, 1e-310}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "-4.9406564584124654e-324"), (Flt8{underflow, -0x1p-1074}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1.7976931348623157e308"), (Flt8{8, max}));
  // Deliberate: a shape that passes is read as far as strtod reads it.
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1e"), (Flt8{8, 1.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "1e.5"), (Flt8{8, 1.0}));
  EXPECT_EQ(read<CS_FLOAT>("flt8", "12\0junk"s), (Flt8{8, 12.0}));
  for (const std::string &text : {"x"s, "1x"s, "inf"s, "nan"s, "0x10"s, "1 2"s, " -1"s, "--1"s,
                                  "1e1e1"s, "1.2.3"s, "."s, "+"s, "e1"s, "1e+"s,
                                  "\0"s
                                  "1",
                                  "- 5"s})
    EXPECT_EQ(read<CS_FLOAT>("flt8", text), (Flt8{syntax, untouched<CS_FLOAT>()})) << text;
  using Flt4 = Fixed<CS_REAL>;
  constexpr CS_REAL max4 = std::numeric_limits<CS_REAL>::max();
  EXPECT_EQ(read<CS_REAL>("flt4", "1.5"), (Flt4{4, 1.5F}));
  EXPECT_EQ(read<CS_REAL>("flt4", "3.4028234663852886e38"), (Flt4{4, max4}));
  EXPECT_EQ(read<CS_REAL>("flt4", "3.41e38"), (Flt4{overflow, max4}));
  EXPECT_EQ(read<CS_REAL>("flt4", "-1e999"), (Flt4{overflow, -max4}));
  EXPECT_EQ(read<CS_REAL>("flt4", "1e-50"), (Flt4{4, 0.0F}));          // a double yet
  EXPECT_EQ(read<CS_REAL>("flt4", "1e-310"), (Flt4{underflow, 0.0F})); // none any more
  EXPECT_EQ(read<CS_REAL>("flt4", "1e-999"), (Flt4{underflow, 0.0F}));
  EXPECT_EQ(read<CS_REAL>("flt4", "1 1"), (Flt4{syntax, untouched<CS_REAL>()}));
}

TEST(LegacyText, LongFloats) {
  TestCharset set = TestCharset::double_byte();
  LegacyOptions options;
  options.chatr = set.get();
  for (const size_t length : {511U, 512U, 513U, 5000U}) {
    const std::string text = std::string(length - 1, '0') + "7";
    EXPECT_EQ(read<CS_FLOAT>("flt8", text), (Fixed<CS_FLOAT>{8, 7.0}));
    const auto read_in_set = [&] {
      return convert_to<CS_FLOAT>(legacy_member("char", "flt8", true), text, -7, options);
    };
    size_t allocations = 0;
    {
      zrvtest::AllocationProbe probe;
      EXPECT_EQ(read_in_set(), (Fixed<CS_FLOAT>{8, 7.0}));
      EXPECT_EQ(probe.live_blocks(), 0U);
      allocations = probe.allocations();
    }
    EXPECT_EQ(allocations, length > 512 ? 1U : 0U);
    if (length > 512) {
      zrvtest::AllocationProbe probe;
      probe.fail(1);
      EXPECT_EQ(read_in_set(), (Fixed<CS_FLOAT>{CS_MEM_ERROR, untouched<CS_FLOAT>()}));
      EXPECT_EQ(probe.live_blocks(), 0U);
      EXPECT_EQ(read_in_set().result, 8);
    }
  }
}

// ---- floatcheck ----

namespace {

// The rule read as a grammar: [sign] blanks digits-and-point [e [sign] digits-and-point] blanks, with one
// point at most and digits where they must be; a text that starts with a blank has no sign.
bool slow_floatcheck(const std::string &text) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  const auto is_sign = [](char c) { return c == '+' || c == '-'; };
  std::string rest = text;
  if (!rest.empty() && is_sign(rest[0]))
    rest.erase(0, 1);
  while (!rest.empty() && is_blank(rest[0]))
    rest.erase(0, 1);
  while (!rest.empty() && is_blank(rest.back()))
    rest.pop_back();
  if (std::any_of(rest.begin(), rest.end(), is_blank))
    return false;
  if (std::count(rest.begin(), rest.end(), '.') > 1)
    return false;
  const size_t letter = rest.find_first_of("eE");
  const std::string mantissa = rest.substr(0, letter);
  if (std::none_of(mantissa.begin(), mantissa.end(), is_digit))
    return false;
  if (!std::all_of(mantissa.begin(), mantissa.end(),
                   [&](char c) { return is_digit(c) || c == '.'; }))
    return false;
  if (letter == std::string::npos)
    return true;
  std::string exponent = rest.substr(letter + 1);
  exponent.erase(std::remove(exponent.begin(), exponent.end(), '.'), exponent.end());
  if (!exponent.empty() && is_sign(exponent[0])) {
    exponent.erase(0, 1);
    if (exponent.empty())
      return false;
  }
  return std::all_of(exponent.begin(), exponent.end(), is_digit);
}

} // namespace

TEST(LegacyText, FloatcheckOnEveryShortText) {
  const std::string alphabet = "7+-.e \tx";
  std::string text;
  size_t good = 0, failures = 0;
  const std::function<void(size_t)> extend = [&](size_t left) {
    const bool expected = slow_floatcheck(text);
    good += expected;
    if ((floatcheck(text.data(), nullptr) == 0) != expected && ++failures < 10)
      ADD_FAILURE() << "\"" << text << "\" should be " << (expected ? "good" : "bad");
    if (left == 0)
      return;
    for (const char c : alphabet) {
      text.push_back(c);
      extend(left - 1);
      text.pop_back();
    }
  };
  extend(6);
  EXPECT_EQ(failures, 0U);
  EXPECT_GT(good, 2000U);
}

TEST(LegacyText, FloatcheckOnSingleTexts) {
  const auto check = [](std::string text) { return floatcheck(text.data(), nullptr); };
  for (const char *text : {"1", "-1", "+1", "1.", ".1", "1e5", "1E-5", "1e", "1e.5", "1.e5", " 1",
                           "\t1 ", "- 1", "1e+5 \t", "1e5."})
    EXPECT_EQ(check(text), 0) << text;
  for (const char *text :
       {"",    " ",   ".",    "-",    "e",   "e5",  "1e+", "1e5+1", "1e++5", "1ee", "1e5e", "1-",
        "1 1", "1 .", "1 e5", "1. 5", " -1", "+-1", "1..", "1.e.5", ". 1",   "1x",  "\xB2", "1\n"})
    EXPECT_EQ(check(text), 1) << text;
  EXPECT_NULL_POINTER_CHECK("oldchar.cpp", 1, floatcheck(nullptr, nullptr));
}

TEST(LegacyText, FloatcheckKnowsTheDigitsOfATypeMap) {
  const auto map = std::make_unique<CS_TYPE_MAP>();
  map->chmap['x'].char_type = CS_CTYPE_DIGIT | CS_CTYPE_LOWER;
  map->chmap['y'].char_type = static_cast<CS_BYTE>(~CS_CTYPE_DIGIT);
  char good[] = "-x.xxex", bad[] = "1", other[] = "y";
  EXPECT_EQ(floatcheck(good, map.get()), 0);
  EXPECT_EQ(floatcheck(bad, map.get()), 1);
  EXPECT_EQ(floatcheck(other, map.get()), 1);
  EXPECT_EQ(floatcheck(bad, com_get_typemap()), 0);
}

// ---- to money ----

TEST(LegacyText, Money) {
  const auto read_money = [](const std::string &text) {
    const auto got = read<CS_UBIGINT>("money", text);
    CS_MONEY value;
    std::memcpy(&value, &got.value, sizeof value);
    return std::pair{got.result, static_cast<long long>(
                                     static_cast<CS_UBIGINT>(value.mnyhigh) << 32 | value.mnylow)};
  };
  using Money = std::pair<CS_INT, long long>;
  EXPECT_EQ(read_money("$ -1,234.50"), (Money{8, -12345000}));
  EXPECT_EQ(read_money("-922337203685477.5808"), (Money{8, std::numeric_limits<long long>::min()}));
  EXPECT_EQ(read_money("922337203685477.5808").first, overflow);
  EXPECT_EQ(read_money("1.5-").first, syntax);
  EXPECT_EQ(read_money("   "), (Money{8, 0}));
  EXPECT_EQ(read<CS_INT>("mny4", "214748.3647"), (Fixed<CS_INT>{4, 2147483647}));
  EXPECT_EQ(read<CS_INT>("mny4", "214748.3648"), (Fixed<CS_INT>{overflow, 2147483647}));
  EXPECT_EQ(read<CS_INT>("mny4", "$$1").result, syntax);
}

// ---- in a character set ----

TEST(LegacyText, CharacterSets) {
  for (TestCharset set : {TestCharset::one_byte(), TestCharset::double_byte(),
                          TestCharset::four_byte(), TestCharset::utf8()}) {
    LegacyOptions options;
    options.chatr = set.get();
    const auto spell = [&](const std::string &ascii) {
      return set.spell(ascii, [] { return true; });
    };
    const auto run = [&](const char *destination, const std::string &text, size_t size) {
      const auto length = static_cast<CS_INT>(text.size());
      const Shaped plain =
          run_member(legacy_member("char", destination, true), text, length, 0, size, options);
      const Shaped record = run_member(legacy_member("varychar", destination, true),
                                       record_of(text), length, 0, size, options);
      EXPECT_EQ(plain, record) << destination;
      return plain;
    };
    EXPECT_EQ(run("i1", spell(" 200 "), 1), (Shaped{1, "\xC8"}));
    EXPECT_EQ(run("i1", spell("256"), 1).result, overflow);
    EXPECT_EQ(run("i2", spell("513"), 2), (Shaped{2, "\1\2"}));
    EXPECT_EQ(run("i2", spell("1x"), 2).result, syntax);
    EXPECT_EQ(run("i4", spell(" 305419896"), 4), (Shaped{4, "\x78\x56\x34\x12"}));
    EXPECT_EQ(run("flt4", spell("1.5"), 4), (Shaped{4, zrvtest::bytes_of(1.5F)}));
    EXPECT_EQ(run("flt8", spell("15e-1"), 8), (Shaped{8, zrvtest::bytes_of(1.5)}));
    EXPECT_EQ(run("flt8", spell("1x"), 8).result, syntax);
    EXPECT_EQ(run("mny4", spell("1.5"), 4), (Shaped{4, zrvtest::bytes_of(CS_INT{15000})}));
    EXPECT_EQ(run("money", spell("1.5"), 8), (Shaped{8, zrvtest::bytes_of(CS_MONEY{0, 15000})}));
    EXPECT_EQ(run("datetime", spell("1/2/1900 00:01"), 8),
              (Shaped{8, zrvtest::bytes_of(CS_DATETIME{1, 18000})}));
    EXPECT_EQ(run("date4", spell("1/2/1900 00:01"), 4),
              (Shaped{4, zrvtest::bytes_of(CS_DATETIME4{1, 1})}));
    const std::string digits = spell("12.5");
    const auto length = static_cast<CS_INT>(digits.size());
    std::string number = "\x12\4\0\0\0\0\0\0\0\1\xE8\x48"s; // 125000
    const Shaped plain =
        run_member(legacy_member("char", "num", true), digits, length, 35, 35, options);
    EXPECT_EQ(plain.result, 11);
    EXPECT_EQ(plain.bytes.substr(0, 2), "\x12\4");
    const Shaped record = run_member(legacy_member("varychar", "num", true), record_of(digits),
                                     length, 35, 35, options);
    EXPECT_EQ(record.result, 35);
    EXPECT_EQ(record.bytes.substr(0, 11), plain.bytes.substr(0, 11));
  }
  // Without a set it is the built-in one.
  for (const char *destination : {"i1", "i2", "i4", "flt4", "flt8", "money", "mny4", "num"}) {
    const LegacyMember with = legacy_member("char", destination, true);
    const auto size = static_cast<size_t>(with.width());
    for (const char *text : {"12", "x", "1e999", "-1"}) {
      const auto length = static_cast<CS_INT>(std::strlen(text));
      EXPECT_EQ(run_member(with, text, length, 35, size),
                run_member(legacy_member("char", destination), text, length, 35, size));
    }
  }
}

// ---- to text ----

TEST(LegacyText, Shapes) {
  for (const std::string &text : {"abc"s, "a"s, "abcd  "s, "  a"s, "   "s})
    for (const char *shape : zrvtest::text_shapes) {
      const auto expect = [&](const std::string &as, CS_INT destlen) {
        std::string kept = text;
        if (as == "ntbstring")
          kept.erase(kept.find_last_not_of(' ') + 1);
        return zrvtest::shape_text(as, kept, destlen, false);
      };
      check_rooms(legacy_member("char", shape), text, static_cast<CS_INT>(text.size()),
                  text.size() + 2, expect);
      check_rooms(legacy_member("varychar", shape), record_of(text), 1, text.size() + 2, expect);
    }
  const auto run = [](const char *shape, const std::string &text, CS_INT destlen, size_t size) {
    return run_member(legacy_member("char", shape), text, static_cast<CS_INT>(text.size()), destlen,
                      size);
  };
  EXPECT_EQ(run("char", "abc", 5, 5), (Shaped{3, "abc  "}));
  EXPECT_EQ(run("char", "abc", 2, 2), (Shaped{overflow, "ab"}));
  EXPECT_EQ(run("char", "abc", -1, 3), (Shaped{3, "abc"}));
  EXPECT_EQ(run("string", "abc", 3, 3), (Shaped{overflow, "ab\0"s}));
  EXPECT_EQ(run("string", "abc", 6, 6), (Shaped{3, "abc  \0"s}));
  EXPECT_EQ(run("string", "abc", 0, 4), (Shaped{3, "abc\0"s}));
  // Nothing is left of blanks.
  EXPECT_EQ(run("ntbstring", "   ", 2, 2), (Shaped{0, "\0\xA5"s}));
  EXPECT_EQ(run("ntbstring", "ab  ", 3, 3), (Shaped{2, "ab\0"s}));
  EXPECT_EQ(run("varychar", "abc", 2, 4), (Shaped{overflow, "\2\0ab"s}));
  // A negative length is an empty text.
  EXPECT_EQ(run_member(legacy_member("char", "char"), "abc", -1, 2, 2), (Shaped{0, "  "}));
}

TEST(LegacyText, InPlace) {
  GuardedBuffer text(6);
  std::memcpy(text.data(), "abc", 3);
  EXPECT_EQ(com_chartostring(text.data(), 3, text.data(), 6), 3);
  EXPECT_EQ(text.contents(), "abc  \0"s);
  GuardedBuffer record(5);
  std::memcpy(record.data(), "abc", 3);
  EXPECT_EQ(com_chartovarychar(record.data(), 3, record.data(), 3), 3);
  EXPECT_EQ(record.contents(), "\3\0abc"s);
}

TEST(LegacyText, LongestRecord) {
  const std::string text(40000, 'x');
  GuardedBuffer dest(2 + 32767);
  EXPECT_EQ(legacy_member("char", "varychar")(text.data(), 40000, dest.data(), -1), overflow);
  EXPECT_EQ(dest.value<CS_SMALLINT>(), 32767);
}

// ---- to binary ----

TEST(LegacyText, Binary) {
  const auto run = [](const char *shape, const std::string &text, CS_INT destlen, size_t size) {
    const Shaped plain = run_member(legacy_member("char", shape), text,
                                    static_cast<CS_INT>(text.size()), destlen, size);
    EXPECT_EQ(run_member(legacy_member("varychar", shape), record_of(text), 1, destlen, size),
              plain);
    return plain;
  };
  EXPECT_EQ(run("binary", "0xABC", 3, 3), (Shaped{2, "\x0A\xBC\0"s}));
  EXPECT_EQ(run("bin", "0xABC", 3, 3), (Shaped{2, "\x0A\xBC\0"s}));
  EXPECT_EQ(run("binary", "abcdef", 2, 2), (Shaped{overflow, "\xAB\xCD"}));
  EXPECT_EQ(run("binary", " abcd ", 0, 2), (Shaped{2, "\xAB\xCD"}));
  EXPECT_EQ(run("binary", "  ", 2, 2), (Shaped{0, "\0\0"s}));
  EXPECT_EQ(run("binary", "xy", 1, 1).result, syntax);
  EXPECT_EQ(run("varybin", "abcdef", 3, 5), (Shaped{3, "\3\0\xAB\xCD\xEF"s}));
  EXPECT_EQ(run("varybin", "abcdef", 2, 4), (Shaped{overflow, "\2\0\xAB\xCD"s}));
  EXPECT_EQ(run("varybin", "abcdef", -1, 5), (Shaped{3, "\3\0\xAB\xCD\xEF"s}));
  EXPECT_EQ(run("varybin", "a", 0, 2), (Shaped{overflow, "\0\0"s}));
  EXPECT_EQ(run("varybin", "ab", 0, 2), (Shaped{overflow, "\0\0"s}));
  const Shaped bad = run("varybin", "zz", 4, 6);
  EXPECT_EQ(bad.result, syntax);
  EXPECT_EQ(bad.bytes.substr(0, 2), "\0\0"s);
  EXPECT_EQ(run_member(legacy_member("char", "binary"), "ab", -1, 1, 1), (Shaped{0, "\0"s}));
}
