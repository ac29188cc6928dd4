// Numbers, bits and bytes for callers without a context.
#include <clocale>
#include <limits>

#include "check_trap.h"
#include "foreign_locale.h"
#include "legacy_shapes_check.h"
#include "zrvcomn/numeric.h"

using zrvtest::bytes_of;
using zrvtest::check_number_text;
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
using namespace std::string_literals;

namespace {

constexpr CS_INT overflow = -1, underflow = -2, domain = -6;

std::string money(long long count) {
  return bytes_of(CS_MONEY{static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)});
}

long long count_of(CS_MONEY value) {
  return static_cast<long long>(static_cast<CS_UBIGINT>(value.mnyhigh) << 32 | value.mnylow);
}

std::string mny4(CS_INT count) {
  return bytes_of(CS_MONEY4{count});
}

} // namespace

// ---- integers ----

TEST(LegacyInteger, NarrowingKeepsTheNearestValue) {
  const auto to_i1 = [](auto value, const char *source) {
    return convert_to<CS_TINYINT>(legacy_member(source, "i1"), bytes_of(value));
  };
  using I1 = Fixed<CS_TINYINT>;
  // Deliberate: below zero is an overflow of the tiny integer, not an underflow.
  EXPECT_EQ(to_i1(CS_SMALLINT{-1}, "i2"), (I1{overflow, 0}));
  EXPECT_EQ(to_i1(CS_SMALLINT{0}, "i2"), (I1{1, 0}));
  EXPECT_EQ(to_i1(CS_SMALLINT{255}, "i2"), (I1{1, 255}));
  EXPECT_EQ(to_i1(CS_SMALLINT{256}, "i2"), (I1{overflow, 255}));
  EXPECT_EQ(to_i1(-1, "i4"), (I1{overflow, 0}));
  EXPECT_EQ(to_i1(0, "i4"), (I1{1, 0}));
  EXPECT_EQ(to_i1(255, "i4"), (I1{1, 255}));
  EXPECT_EQ(to_i1(256, "i4"), (I1{overflow, 255}));
  const auto to_i2 = [](CS_INT value) {
    return convert_to<CS_SMALLINT>(legacy_member("i4", "i2"), bytes_of(value));
  };
  using I2 = Fixed<CS_SMALLINT>;
  // Deliberate: an underflow here, where the matrix has an overflow.
  EXPECT_EQ(to_i2(-32769), (I2{underflow, -32768}));
  EXPECT_EQ(to_i2(-32768), (I2{2, -32768}));
  EXPECT_EQ(to_i2(32767), (I2{2, 32767}));
  EXPECT_EQ(to_i2(32768), (I2{overflow, 32767}));
}

TEST(LegacyInteger, WideningAndCopying) {
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("i1", "i2"), "\xFF"),
            (Fixed<CS_SMALLINT>{2, 255}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("i1", "i4"), "\xFF"), (Fixed<CS_INT>{4, 255}));
  EXPECT_EQ(convert_to<CS_TINYINT>(legacy_member("i1", "i1"), "\xFF"), (Fixed<CS_TINYINT>{1, 255}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("i2", "i4"), bytes_of(CS_SMALLINT{-2})),
            (Fixed<CS_INT>{4, -2}));
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("i2", "i2"), bytes_of(CS_SMALLINT{-2})),
            (Fixed<CS_SMALLINT>{2, -2}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("i4", "i4"), bytes_of(CS_INT{-2})),
            (Fixed<CS_INT>{4, -2}));
}

TEST(LegacyInteger, ToFloatsBitsAndMoney) {
  const std::string i4 = bytes_of(CS_INT{-16777217});
  EXPECT_EQ(convert_to<CS_REAL>(legacy_member("i4", "flt4"), i4),
            (Fixed<CS_REAL>{4, -16777216.0F}));
  EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("i4", "flt8"), i4),
            (Fixed<CS_FLOAT>{8, -16777217.0}));
  EXPECT_EQ(convert_to<CS_BIT>(legacy_member("i4", "bit"), i4), (Fixed<CS_BIT>{1, 1}));
  EXPECT_EQ(convert_to<CS_BIT>(legacy_member("i4", "bit"), "\0\0\0\0"s), (Fixed<CS_BIT>{1, 0}));
  for (const char *money_name : {"money", "mny"}) {
    const auto got = convert_to<long long>(legacy_member("i4", money_name), i4);
    EXPECT_EQ(got.result, 8);
    CS_MONEY value;
    std::memcpy(&value, &got.value, sizeof value);
    EXPECT_EQ(count_of(value), -167772170000);
  }
  const LegacyMember to_mny4 = legacy_member("i4", "mny4");
  using M4 = Fixed<CS_INT>;
  EXPECT_EQ(convert_to<CS_INT>(to_mny4, bytes_of(CS_INT{214748})), (M4{4, 2147480000}));
  EXPECT_EQ(convert_to<CS_INT>(to_mny4, bytes_of(CS_INT{214749})), (M4{overflow, 2147483647}));
  EXPECT_EQ(convert_to<CS_INT>(to_mny4, bytes_of(CS_INT{-214749})),
            (M4{overflow, -2147483647 - 1}));
}

TEST(LegacyInteger, TextIsWholeOrAStar) {
  for (const CS_INT value : {0, 7, -7, 99, 12345, -12345, std::numeric_limits<CS_INT>::max(),
                             std::numeric_limits<CS_INT>::min()})
    check_number_text("i4", bytes_of(value), std::to_string(value));
  for (const CS_SMALLINT value : {CS_SMALLINT{-32768}, CS_SMALLINT{32767}})
    check_number_text("i2", bytes_of(value), std::to_string(value));
  for (const CS_TINYINT value : {CS_TINYINT{0}, CS_TINYINT{200}})
    check_number_text("i1", bytes_of(value), std::to_string(value));
}

TEST(LegacyInteger, TextInEachShape) {
  const std::string value = bytes_of(CS_INT{42});
  EXPECT_EQ(run_member(legacy_member("i4", "char"), value, 4, 5, 5), (Shaped{2, "42   "}));
  EXPECT_EQ(run_member(legacy_member("i4", "string"), value, 4, 5, 5), (Shaped{2, "42  \0"s}));
  EXPECT_EQ(run_member(legacy_member("i4", "ntbstring"), value, 4, 5, 5),
            (Shaped{2, "42\0\xA5\xA5"s}));
  EXPECT_EQ(run_member(legacy_member("i4", "varychar"), value, 4, 5, 7),
            (Shaped{2, "\2\00042\xA5\xA5\xA5"s}));
  // No room for the number: a star, with what ends the text.
  EXPECT_EQ(run_member(legacy_member("i4", "char"), value, 4, 1, 1), (Shaped{overflow, "*"}));
  EXPECT_EQ(run_member(legacy_member("i4", "string"), value, 4, 2, 2), (Shaped{overflow, "*\0"s}));
  EXPECT_EQ(run_member(legacy_member("i4", "varychar"), value, 4, 1, 3),
            (Shaped{overflow, "\1\0*"s}));
  // No room for the star either.
  EXPECT_EQ(run_member(legacy_member("i4", "char"), value, 4, 0, 0), (Shaped{overflow, ""}));
  EXPECT_EQ(run_member(legacy_member("i4", "string"), value, 4, 1, 1), (Shaped{overflow, "\0"s}));
  EXPECT_EQ(run_member(legacy_member("i4", "ntbstring"), value, 4, 1, 1),
            (Shaped{overflow, "\0"s}));
  EXPECT_EQ(run_member(legacy_member("i4", "varychar"), value, 4, 0, 2),
            (Shaped{overflow, "\0\0"s}));
}

// ---- bits ----

TEST(LegacyBit, Values) {
  for (const CS_BIT bit : {CS_BIT{0}, CS_BIT{1}}) {
    const std::string value(1, static_cast<char>(bit));
    EXPECT_EQ(convert_to<CS_BIT>(legacy_member("bit", "bit"), value), (Fixed<CS_BIT>{1, bit}));
    EXPECT_EQ(convert_to<CS_TINYINT>(legacy_member("bit", "i1"), value),
              (Fixed<CS_TINYINT>{1, bit}));
    EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("bit", "i2"), value),
              (Fixed<CS_SMALLINT>{2, bit}));
    EXPECT_EQ(convert_to<CS_INT>(legacy_member("bit", "i4"), value), (Fixed<CS_INT>{4, bit}));
    EXPECT_EQ(convert_to<CS_REAL>(legacy_member("bit", "flt4"), value),
              (Fixed<CS_REAL>{4, static_cast<CS_REAL>(bit)}));
    EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("bit", "flt8"), value),
              (Fixed<CS_FLOAT>{8, static_cast<CS_FLOAT>(bit)}));
    check_number_text("bit", value, bit == 0 ? "0" : "1");
    // The value and not the digit, in the record too.
    EXPECT_EQ(run_member(legacy_member("bit", "binary"), value, 1, 2, 2),
              (Shaped{1, value + '\0'}));
    EXPECT_EQ(run_member(legacy_member("bit", "varybin"), value, 1, 1, 3),
              (Shaped{1, "\1\0"s + value}));
  }
}

TEST(LegacyBit, OthersAreRefused) {
  for (const char *destination : {"bit", "i1", "i2", "i4", "flt4", "flt8", "num", "binary",
                                  "varybin", "char", "string", "ntbstring", "varychar"})
    for (const char value : {'\2', '\xFF'}) {
      GuardedBuffer dest(64);
      EXPECT_EQ(legacy_member("bit", destination)(&value, 1, dest.data(), 64), domain)
          << destination;
      EXPECT_TRUE(dest.is_untouched()) << destination;
    }
}

// ---- floats ----

TEST(LegacyFloat, ToIntegersAsTheMatrix) {
  const auto flt8 = [](const char *destination, CS_FLOAT value) {
    return convert_to<CS_INT>(legacy_member("flt8", destination), bytes_of(value));
  };
  using I4 = Fixed<CS_INT>;
  constexpr CS_INT max = std::numeric_limits<CS_INT>::max(), min = -max - 1;
  EXPECT_EQ(flt8("i4", 2147483647.0), (I4{4, max}));
  EXPECT_EQ(flt8("i4", 2147483647.5), (I4{overflow, max}));
  EXPECT_EQ(flt8("i4", -2147483648.0), (I4{4, min}));
  EXPECT_EQ(flt8("i4", -2147483648.5), (I4{overflow, min}));
  EXPECT_EQ(flt8("i4", -1.9), (I4{4, -1}));
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("flt4", "i2"), bytes_of(-32769.0F)),
            (Fixed<CS_SMALLINT>{overflow, -32768}));
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("flt4", "i2"), bytes_of(32767.0F)),
            (Fixed<CS_SMALLINT>{2, 32767}));
  EXPECT_EQ(convert_to<CS_TINYINT>(legacy_member("flt4", "i1"), bytes_of(255.5F)),
            (Fixed<CS_TINYINT>{overflow, 255}));
  EXPECT_EQ(convert_to<CS_BIT>(legacy_member("flt4", "bit"), bytes_of(0.25F)),
            (Fixed<CS_BIT>{1, 1}));
  EXPECT_EQ(convert_to<CS_REAL>(legacy_member("flt8", "flt4"), bytes_of(1e39)),
            (Fixed<CS_REAL>{overflow, std::numeric_limits<CS_REAL>::max()}));
  EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("flt4", "flt8"), bytes_of(0.1F)),
            (Fixed<CS_FLOAT>{8, static_cast<CS_FLOAT>(0.1F)}));
  EXPECT_EQ(flt8("mny4", 214748.3647), (I4{4, max}));
  // Deliberate: money that does not fit is zero.
  EXPECT_EQ(flt8("mny4", 214748.3648), (I4{overflow, 0}));
  EXPECT_EQ(convert_to<long long>(legacy_member("flt8", "money"), bytes_of(1e300)),
            (Fixed<long long>{overflow, 0}));
}

TEST(LegacyFloat, Text) {
  const auto check = [](CS_FLOAT value, const char *text) {
    check_number_text("flt8", bytes_of(value), text);
  };
  check(1.0, "1.0");
  check(0.5, ".5");
  check(-0.5, "-0.5");
  check(0.0, "0.0");
  // Deliberate: the matrix takes the sign of a zero away, this family shows it.
  check(-0.0, "-0.0");
  check(1e20, "1e+20");
  check(0.1, ".10000000000000001");
  check(1234.5, "1234.5");
  // A single prints the digits of the double that it widens to.
  check_number_text("flt4", bytes_of(0.1F), ".10000000149011612");
  check_number_text("flt4", bytes_of(3.0F), "3.0");
  check_number_text("flt4", bytes_of(-0.0F), "-0.0");
}

TEST(LegacyFloat, TextInAFormatOfTheCaller) {
  const auto check = [](CS_FLOAT value, std::string format, const std::string &text) {
    LegacyOptions options;
    options.fltfmt = format.data();
    check_number_text("flt8", bytes_of(value), text, options);
  };
  check(1.0, "%g", "1"); // nothing is added
  check(0.5, "%g", ".5");
  check(0.25, "%.1f", ".2");
  check(1.0, "%08.2f", "00001.00");
  check(1.0, "%-8.2f", "1.00    ");
  check(0.1, "%.*g", ".10000000000000001");
  check(1.5, "%E", "1.500000E+00");
  check(1.5, "%+g%%", "+1.5%");
  check(1.5, "a %g b", "a 1.5 b");
  check(0.5, "%lf", ".500000");
  check(-0.0, "%g", "-0");
  check(0.1, "%.*lg", ".10000000000000001");
  check(0.5, "%+.*g", "+0.5");
  // Anything but one conversion of a double is not used.
  for (const char *format : {"", "text", "%d", "%s", "%n", "%g %g", "%*g", "%llg", "%l", "%Lg", "%",
                             "%.", "%5", "%'g", "100%%", "%1$g", "%g %n", "%.*g %.*g"}) {
    SCOPED_TRACE(format);
    check(1.0, format, "1");
    check(0.1, format, ".10000000000000001");
  }
}

TEST(LegacyFloat, TextLongerThanItsBuffer) {
  const std::string value = bytes_of(1e300);
  LegacyOptions options;
  std::string format = "%.0f";
  options.fltfmt = format.data(); // 301 digits
  for (const char *shape : zrvtest::text_shapes) {
    const Shaped expected = zrvtest::shape_text(shape, std::string(400, 'x'), 300, true);
    const Shaped got =
        run_member(legacy_member("flt8", shape), value, 8, 300, expected.bytes.size(), options);
    EXPECT_EQ(got, expected) << shape;
  }
  // Not without a limit either.
  EXPECT_EQ(run_member(legacy_member("flt8", "char"), value, 8, -1, 1, options),
            (Shaped{overflow, "*"}));
  EXPECT_EQ(run_member(legacy_member("flt8", "string"), value, 8, 0, 2, options),
            (Shaped{overflow, "*\0"s}));
  format = "%255g";
  EXPECT_EQ(run_member(legacy_member("flt8", "char"), value, 8, 255, 255, options).result, 255);
  format = "%256g";
  EXPECT_EQ(run_member(legacy_member("flt8", "char"), value, 8, 256, 256, options).result,
            overflow);
}

TEST(LegacyFloat, TextKnowsNoLocale) {
  const zrvtest::ForeignLocale locale;
  std::string format = "%.2f";
  LegacyOptions options;
  options.fltfmt = format.data();
  check_number_text("flt8", bytes_of(1.5), "1.50", options);
  check_number_text("flt8", bytes_of(0.5), ".50", options);
  check_number_text("flt8", bytes_of(1.5), "1.5");
  // What stands around the number stays as it is.
  for (const auto &[text, expected] : {std::pair{"a,b %.1f,c", "a,b 1.5,c"}, {"%.0f,c", "2,c"}}) {
    format = text;
    options.fltfmt = format.data();
    check_number_text("flt8", bytes_of(1.5), expected, options);
  }
  format = "%d"; // is not used
  options.fltfmt = format.data();
  check_number_text("flt8", bytes_of(1.5), "1.5", options);
}

// ---- money ----

TEST(LegacyMoney, NumbersAndText) {
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("money", "i4"), money(15000)), (Fixed<CS_INT>{4, 2}));
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("money", "i2"), money(327675000)),
            (Fixed<CS_SMALLINT>{overflow, 32767}));
  EXPECT_EQ(convert_to<CS_SMALLINT>(legacy_member("money", "i2"), money(327674999)),
            (Fixed<CS_SMALLINT>{2, 32767}));
  EXPECT_EQ(convert_to<CS_TINYINT>(legacy_member("mny4", "i1"), mny4(-10000)),
            (Fixed<CS_TINYINT>{overflow, 0}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("mny4", "i4"), mny4(-15000)), (Fixed<CS_INT>{4, -2}));
  EXPECT_EQ(convert_to<CS_FLOAT>(legacy_member("money", "flt8"), money(12500)),
            (Fixed<CS_FLOAT>{8, 1.25}));
  EXPECT_EQ(convert_to<CS_REAL>(legacy_member("mny4", "flt4"), mny4(12500)),
            (Fixed<CS_REAL>{4, 1.25F}));
  EXPECT_EQ(convert_to<CS_BIT>(legacy_member("money", "bit"), money(1)), (Fixed<CS_BIT>{1, 1}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("money", "mny4"), money(2147483648)),
            (Fixed<CS_INT>{overflow, 2147483647}));
  EXPECT_EQ(convert_to<CS_INT>(legacy_member("mny4", "mny4"), mny4(-1)), (Fixed<CS_INT>{4, -1}));
  EXPECT_EQ(run_member(legacy_member("mny4", "money"), mny4(-1), 4, 0, 8), (Shaped{8, money(-1)}));
  EXPECT_EQ(run_member(legacy_member("money", "money"), money(-5), 8, 0, 8),
            (Shaped{8, money(-5)}));
  check_number_text("money", money(12345678), "1234.57");
  check_number_text("money", money(-1), "-0.00");
  check_number_text("money", money(std::numeric_limits<long long>::min()), "-922337203685477.58");
  check_number_text("mny4", mny4(-2147483647 - 1), "-214748.36");
  check_number_text("mny4", mny4(5000), "0.50");
}

// ---- to binary ----

TEST(LegacyBytes, TypesOfOneWidth) {
  const std::string value = "\1\2\3\4\5\6\7\x08";
  for (const char *source : {"i1", "i2", "i4", "flt4", "flt8", "money", "mny4", "date", "date4"})
    for (const char *shape : {"binary", "bin", "varybin"}) {
      const LegacyMember member = legacy_member(source, shape);
      const std::string bytes = value.substr(0, static_cast<size_t>(member.source_width()));
      // The width of the type counts, not what the caller says of the source.
      check_rooms(member, bytes, 1, bytes.size() + 2, [&](std::string as, CS_INT destlen) {
        return zrvtest::shape_bytes(as == "bin" ? "binary" : as, bytes, destlen);
      });
    }
}

TEST(LegacyBytes, AnyToBinary) {
  for (const std::string &bytes : {"a"s, "abcde"s, "\0\0"s})
    for (const char *shape : {"binary", "varybin"})
      check_rooms(legacy_member("any", shape), bytes, static_cast<CS_INT>(bytes.size()),
                  bytes.size() + 2, [&](const std::string &as, CS_INT destlen) {
                    return zrvtest::shape_bytes(as, bytes, destlen);
                  });
  // What is cut is copied all the same.
  EXPECT_EQ(run_member(legacy_member("any", "binary"), "abcde", 5, 3, 3),
            (Shaped{overflow, "abc"}));
  EXPECT_EQ(run_member(legacy_member("any", "binary"), "abc", 3, 5, 5), (Shaped{3, "abc\0\0"s}));
  EXPECT_EQ(run_member(legacy_member("any", "binary"), "abc", 3, 0, 3), (Shaped{3, "abc"}));
  EXPECT_EQ(run_member(legacy_member("any", "varybin"), "abcde", 5, 3, 5),
            (Shaped{overflow, "\3\0abc"s}));
  // A negative length is no bytes.
  EXPECT_EQ(run_member(legacy_member("any", "binary"), "abc", -1, 2, 2), (Shaped{0, "\0\0"s}));
}

// A record cannot say more.
TEST(LegacyBytes, LongestRecord) {
  const std::string most(32767, 'x'), more(32768, 'x');
  for (const CS_INT destlen : {-1, 40000}) {
    GuardedBuffer dest(2 + 32767);
    const LegacyMember member = legacy_member("any", "varybin");
    EXPECT_EQ(member(most.data(), 32767, dest.data(), destlen), 32767);
    EXPECT_EQ(member(more.data(), 32768, dest.data(), destlen), overflow);
    EXPECT_EQ(dest.value<CS_SMALLINT>(), 32767);
  }
}

// ---- from binary ----

TEST(LegacyBinary, ToTypesOfOneWidth) {
  const std::string bytes = "\x81\x82\x83\x84\x85\x86\x87\x88\x89";
  for (const char *destination :
       {"i1", "i2", "i4", "flt4", "flt8", "money", "mny", "mny4", "datetime", "date", "date4"})
    for (size_t length = 1; length <= bytes.size(); ++length) {
      const std::string value = bytes.substr(0, length);
      const LegacyMember plain = legacy_member("bin", destination);
      const auto width = static_cast<size_t>(plain.width());
      std::string expected = value;
      expected.resize(width, '\0');
      EXPECT_EQ(run_member(plain, value, static_cast<CS_INT>(length), 0, width),
                (Shaped{plain.width(), expected}));
      // The header tells, whatever the caller does.
      for (const CS_INT srclen : {-1, 1, 300})
        EXPECT_EQ(
            run_member(legacy_member("varybin", destination), record_of(value), srclen, 0, width),
            (Shaped{plain.width(), expected}));
    }
  // No bytes at all are zeroes.
  EXPECT_EQ(run_member(legacy_member("bin", "i4"), "x", -1, 0, 4), (Shaped{4, "\0\0\0\0"s}));
}

// Deliberate: the byte as it is, where the matrix asks whether it is not 0.
TEST(LegacyBinary, ToBit) {
  const auto to_bit = [](const char *source, const std::string &value, CS_INT srclen) {
    return convert_to<CS_BIT>(legacy_member(source, "bit"), value, srclen);
  };
  using Bit = Fixed<CS_BIT>;
  EXPECT_EQ(to_bit("bin", "\0\xFF"s, 2), (Bit{1, 0}));
  EXPECT_EQ(to_bit("bin", "\xFF", 1), (Bit{1, 255}));
  EXPECT_EQ(to_bit("bin", "\xFF", -1), (Bit{1, 0}));
  EXPECT_EQ(to_bit("varybin", record_of("\2"), 3), (Bit{1, 2}));
  EXPECT_EQ(to_bit("varybin", record_of("\0\2"s), 4), (Bit{1, 0}));
}

TEST(LegacyBinary, ToText) {
  const std::string bytes = "\xAB\x01\x00\xFF"s;
  for (size_t length = 1; length <= bytes.size(); ++length) {
    const std::string value = bytes.substr(0, length);
    for (const char *shape : zrvtest::text_shapes) {
      const auto expect = [&](const std::string &as, CS_INT destlen) {
        return zrvtest::shape_hex(as, value, destlen);
      };
      check_rooms(legacy_member("bin", shape), value, static_cast<CS_INT>(length), 2 * length + 2,
                  expect);
      check_rooms(legacy_member("varybin", shape), record_of(value), 1, 2 * length + 2, expect);
    }
  }
  EXPECT_EQ(run_member(legacy_member("bin", "char"), bytes, 2, 6, 6), (Shaped{4, "ab01  "}));
  // Digits that are cut are whole pairs, and nothing ends them.
  EXPECT_EQ(run_member(legacy_member("bin", "char"), bytes, 2, 3, 3), (Shaped{overflow, "ab\xA5"}));
  EXPECT_EQ(run_member(legacy_member("bin", "string"), bytes, 2, 4, 4),
            (Shaped{overflow, "ab\xA5\xA5"}));
  // Deliberate: the header of such a record is the result.
  EXPECT_EQ(run_member(legacy_member("bin", "varychar"), bytes, 2, 3, 5),
            (Shaped{overflow, "\xFF\xFF"
                              "ab\xA5"}));
  // Deliberate: no room is no limit.
  EXPECT_EQ(run_member(legacy_member("bin", "char"), bytes, 2, 0, 4), (Shaped{4, "ab01"}));
  EXPECT_EQ(run_member(legacy_member("bin", "varychar"), bytes, 2, 0, 6), (Shaped{4, "\4\0ab01"s}));
}

TEST(LegacyBinary, ToBinary) {
  for (const char *shape : {"binary", "bin", "varybin"})
    for (const std::string &value : {"a"s, "abcd"s}) {
      const auto expect = [&](const std::string &as, CS_INT destlen) {
        return zrvtest::shape_bytes(as == "bin" ? "binary" : as, value, destlen);
      };
      check_rooms(legacy_member("bin", shape), value, static_cast<CS_INT>(value.size()),
                  value.size() + 2, expect);
      check_rooms(legacy_member("varybin", shape), record_of(value), 1, value.size() + 2, expect);
    }
}

// ---- hexadecimal digits ----

TEST(LegacyHex, Pairs) {
  for (int byte = 0; byte < 256; ++byte) {
    GuardedBuffer pair(2, 1);
    CS_BYTE value = static_cast<CS_BYTE>(byte);
    com_prhex(&value, pair.data());
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02x", static_cast<unsigned>(byte));
    EXPECT_EQ(pair.contents(), expected);
  }
  CS_BYTE byte = 1;
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, (com_prhex(nullptr, &byte), 0));
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, (com_prhex(&byte, nullptr), 0));
}

TEST(LegacyHex, Runs) {
  CS_BYTE bytes[] = {0x01, 0x23, 0xFE};
  for (CS_INT room = -1; room <= 8; ++room) {
    GuardedBuffer text(room < 1 ? 6 : static_cast<size_t>(room));
    const CS_INT result = com__bin2hex(bytes, 3, text.data(), room);
    const size_t pairs = room < 1 || room >= 6 ? 6 : static_cast<size_t>(room) / 2 * 2;
    EXPECT_EQ(result, pairs == 6 ? 6 : overflow) << room;
    EXPECT_EQ(text.contents(pairs), std::string("0123fe").substr(0, pairs));
    EXPECT_TRUE(text.is_untouched(pairs));
  }
  EXPECT_EQ(com__bin2hex(nullptr, 0, nullptr, 4), 0);
  EXPECT_EQ(com__bin2hex(nullptr, -1, nullptr, 4), 0);
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, com__bin2hex(nullptr, 1, bytes, 2));
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, com__bin2hex(bytes, 1, nullptr, 2));
}

TEST(LegacyHex, TrimsToTheDigits) {
  const auto trimmed = [](std::string text) {
    CS_CHAR *at = text.data();
    auto length = static_cast<CS_INT>(text.size());
    com__hex2binbytes(&at, &length);
    return std::string(at, static_cast<size_t>(length));
  };
  EXPECT_EQ(trimmed(" 0xAB\t"), "AB");
  EXPECT_EQ(trimmed("0X"), "");
  EXPECT_EQ(trimmed("12"), "12");
  EXPECT_EQ(trimmed(""), ""); // no fault here
  CS_INT length = 1;
  EXPECT_NULL_POINTER_CHECK("com_bin.cpp", 0, (com__hex2binbytes(nullptr, &length), 0));
  CS_CHAR *text = nullptr;
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, (com__hex2binbytes(&text, nullptr), 0));
}

TEST(LegacyHex, ShiftsByADigit) {
  GuardedBuffer bytes(3, 1);
  bytes.set<std::array<CS_BYTE, 3>>({0x12, 0x34, 0x56});
  com__shift1(bytes.data(), 3);
  EXPECT_EQ(bytes.contents(), "\x01\x23\x45");
  com__shift1(bytes.data(), 1);
  EXPECT_EQ(bytes.contents(), "\0\x23\x45"s);
  com__shift1(bytes.data(), 0);
  com__shift1(bytes.data(), -1);
  EXPECT_EQ(bytes.contents(), "\0\x23\x45"s);
  com__shift1(nullptr, 0);
  EXPECT_NULL_POINTER_CHECK("oldbin.cpp", 0, (com__shift1(nullptr, 1), 0));
}
