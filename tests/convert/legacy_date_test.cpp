// Dates and numerics for callers without a context.
#include <array>
#include <cstring>

#include "check_trap.h"
#include "legacy_shapes_check.h"
#include "test_context.h"
#include "zrvcomn/datetime.h"
#include "zrvcomn/numeric.h"

using zrvtest::bytes_of;
using zrvtest::check_rooms;
using zrvtest::GuardedBuffer;
using zrvtest::legacy_member;
using zrvtest::LegacyMember;
using zrvtest::LegacyOptions;
using zrvtest::record_of;
using zrvtest::run_member;
using zrvtest::Shaped;
using namespace std::string_literals;

namespace {

constexpr CS_INT overflow = -1, underflow = -2, syntax = -3, domain = -6, bad_precision = -7,
                 bad_scale = -8;

const std::string untouched_date(8, static_cast<char>(GuardedBuffer::filler));

// 2001-01-05 13:30:15.123
const std::string date = bytes_of(CS_DATETIME{36894, 14584537});
const std::string date_text = "Jan  5 2001  1:30:15:123PM";
// 2001-01-05 13:30
const std::string date4 = bytes_of(CS_DATETIME4{36894, 810});
const std::string date4_text = "Jan  5 2001  1:30:00:000PM";

CS_CHAR *names[12];

} // namespace

// ---- dates to text ----

TEST(LegacyDate, TextInAllShapes) {
  for (const char *shape : zrvtest::text_shapes) {
    const auto expect = [](const std::string &text) {
      return [text](const std::string &as, CS_INT destlen) {
        // Every negative capacity is none here.
        return zrvtest::shape_text(as, text, std::max(destlen, -1), false);
      };
    };
    check_rooms(legacy_member("date", shape), date, 8, date_text.size() + 1, expect(date_text));
    check_rooms(legacy_member("date4", shape), date4, 4, date4_text.size() + 1, expect(date4_text));
    LegacyMember styled = legacy_member("date", shape);
    styled.styled = true;
    LegacyOptions options;
    options.style = 101;
    check_rooms(styled, date, 8, 11, expect("01/05/2001"), options);
    options.style = 112;
    check_rooms(styled, date, 8, 9, expect("20010105"), options);
  }
}

TEST(LegacyDate, NamesAndStyles) {
  std::string january = "Janvier";
  names[0] = january.data();
  LegacyOptions options;
  options.shortmonths = names;
  EXPECT_EQ(run_member(legacy_member("date", "char"), date, 8, 32, 32, options),
            (Shaped{30, "Janvier  5 2001  1:30:15:123PM  "}));
  EXPECT_EQ(run_member(legacy_member("date4", "string"), date4, 4, 31, 31, options),
            (Shaped{30, "Janvier  5 2001  1:30:00:000PM\0"s}));
  // February has no name: the result of the formatter, nothing written.
  const std::string february = bytes_of(CS_DATETIME{36925, 0});
  for (const char *shape : zrvtest::text_shapes) {
    LegacyMember member = legacy_member("date", shape);
    GuardedBuffer dest(64);
    EXPECT_EQ(member(february.data(), 8, dest.data(), 40, options), -2);
    member.styled = true;
    options.style = 99;
    EXPECT_EQ(member(date.data(), 8, dest.data(), 40, options), -1);
    EXPECT_TRUE(dest.is_untouched());
  }
}

// ---- dates to dates ----

TEST(LegacyDate, Values) {
  for (const char *destination : {"datetime", "date"}) {
    EXPECT_EQ(run_member(legacy_member("date", destination), date, 8, 0, 8), (Shaped{8, date}));
    EXPECT_EQ(run_member(legacy_member("date4", destination), date4, 4, 0, 8),
              (Shaped{8, bytes_of(CS_DATETIME{36894, 14580000})}));
  }
  EXPECT_EQ(run_member(legacy_member("date", "date4"), date, 8, 0, 4), (Shaped{4, date4}));
  EXPECT_EQ(run_member(legacy_member("date4", "date4"), date4, 4, 0, 4), (Shaped{4, date4}));
  const auto narrow = [](CS_INT days, CS_INT ticks) {
    return run_member(legacy_member("date", "date4"), bytes_of(CS_DATETIME{days, ticks}), 8, 0, 4);
  };
  const Shaped refused = {overflow, untouched_date.substr(0, 4)};
  EXPECT_EQ(narrow(-1, 25919999).result, overflow);
  EXPECT_EQ(narrow(0, 0), (Shaped{4, bytes_of(CS_DATETIME4{0, 0})}));
  EXPECT_EQ(narrow(65535, 25910999 - 9000 + 8999).result, 4);
  EXPECT_EQ(narrow(65535, 25911000 + 8999), refused);
  EXPECT_EQ(narrow(65536, 0), refused);
}

// ---- text to dates ----

TEST(LegacyDate, FromText) {
  const auto read = [](const char *destination, const std::string &text, size_t size,
                       const LegacyOptions &options = {}) {
    const auto length = static_cast<CS_INT>(text.size());
    const Shaped plain =
        run_member(legacy_member("char", destination), text, length, 0, size, options);
    const LegacyMember record = legacy_member("varychar", destination);
    EXPECT_EQ(run_member(record, record_of(text), length, 0, size, options), plain);
    const std::string first = destination == "date"s ? "datetime" : destination;
    EXPECT_EQ(run_member(legacy_member("char", first, true), text, length, 0, size, options),
              plain);
    EXPECT_EQ(run_member(legacy_member("varychar", first, true), record_of(text), length, 0, size,
                         options),
              plain);
    return plain;
  };
  for (const char *destination : {"datetime", "date"})
    EXPECT_EQ(read(destination, "Jan 5 2001 13:30:15:123", 8), (Shaped{8, date}));
  EXPECT_EQ(read("date4", "january 5 2001 1:30PM", 4), (Shaped{4, date4}));
  EXPECT_EQ(read("datetime", "  ", 8), (Shaped{8, bytes_of(CS_DATETIME{})}));
  // What fails leaves the destination alone.
  EXPECT_EQ(read("datetime", "nonsense", 8), (Shaped{syntax, untouched_date}));
  EXPECT_EQ(read("datetime", "1/5/1752", 8), (Shaped{overflow, untouched_date}));
  EXPECT_EQ(read("datetime", "1/5/1753", 8).result, 8);
  EXPECT_EQ(read("date4", "6/7/2079", 4), (Shaped{overflow, untouched_date.substr(0, 4)}));
  EXPECT_EQ(read("date4", "6/6/2079", 4).result, 4);
  // The order: month first unless the caller says otherwise.
  LegacyOptions options;
  EXPECT_EQ(read("datetime", "1/5/01", 8, options), (Shaped{8, bytes_of(CS_DATETIME{36894, 0})}));
  options.dateorder_id = 2;
  EXPECT_EQ(read("datetime", "5/1/01", 8, options), (Shaped{8, bytes_of(CS_DATETIME{36894, 0})}));
  options.dateorder_id = -99;
  EXPECT_EQ(read("datetime", "1/5/01", 8, options), (Shaped{8, bytes_of(CS_DATETIME{36894, 0})}));
  // Names of the caller's, the long and the short ones on their own.
  std::string full[12], brief[12];
  char *months[12], *shortmonths[12];
  for (size_t i = 0; i < 12; ++i) {
    full[i] = "long" + std::string(1, static_cast<char>('a' + i));
    brief[i] = "sh" + std::string(1, static_cast<char>('a' + i));
    months[i] = full[i].data();
    shortmonths[i] = brief[i].data();
  }
  options = {};
  options.months = months;
  EXPECT_EQ(read("datetime", "longa 5 2001", 8, options).result, 8);
  EXPECT_EQ(read("datetime", "jan 5 2001", 8, options).result, 8);
  EXPECT_EQ(read("datetime", "january 5 2001", 8, options).result, syntax);
  options = {};
  options.shortmonths = shortmonths;
  EXPECT_EQ(read("date4", "sha 5 2001", 4, options).result, 4);
  EXPECT_EQ(read("date4", "january 5 2001", 4, options).result, 4);
  EXPECT_EQ(read("date4", "jan 5 2001", 4, options).result, syntax);
}

// ---- numerics ----

namespace {

std::string numeric(CS_INT precision, CS_INT scale, const std::string &digits) {
  std::string value(35, '\0');
  value[0] = static_cast<char>(precision);
  value[1] = static_cast<char>(scale);
  value.replace(2, digits.size(), digits);
  return value;
}

const std::string from_sources[] = {"i1", "i2", "i4", "flt4", "flt8", "money", "mny4", "bit"};

std::string sample(const std::string &source) {
  if (source == "flt4")
    return bytes_of(7.0F);
  if (source == "flt8")
    return bytes_of(7.0);
  if (source == "money")
    return bytes_of(CS_MONEY{0, 70000});
  if (source == "mny4")
    return bytes_of(CS_MONEY4{70000});
  if (source == "bit")
    return "\1";
  return "\7\0\0\0"s.substr(0, source == "i1" ? 1 : source == "i2" ? 2 : 4);
}

} // namespace

TEST(LegacyNumeric, FromFixedTypes) {
  for (const std::string &source : from_sources) {
    SCOPED_TRACE(source);
    const LegacyMember member = legacy_member(source, "num");
    const std::string value = sample(source);
    const auto run = [&](CS_INT precision, CS_INT scale) {
      LegacyOptions options;
      options.precision = precision;
      options.scale = scale;
      return run_member(member, value, static_cast<CS_INT>(value.size()), 35, 35, options);
    };
    const Shaped done = run(4, 2);
    EXPECT_EQ(done.result, 35);
    const int count = source == "bit" ? 100 : 700;
    EXPECT_EQ(done.bytes.substr(0, 5),
              "\4\2\0"s + static_cast<char>(count / 256) + static_cast<char>(count % 256));
    EXPECT_EQ(run(2, 2).result, overflow);
    EXPECT_EQ(run(0, 0).result, bad_precision);
    EXPECT_EQ(run(78, 0).result, bad_precision);
    EXPECT_EQ(run(77, 78).result, bad_scale);
    EXPECT_EQ(run(77, 0).result, 35);
  }
}

// The numbers of the matrix's own conversion, through every status that it has here.
TEST(LegacyNumeric, FromText) {
  const auto run = [](const std::string &text, CS_INT precision, CS_INT scale) {
    LegacyOptions options;
    options.precision = precision;
    options.scale = scale;
    return run_member(legacy_member("char", "num"), text, static_cast<CS_INT>(text.size()), 35, 35,
                      options);
  };
  EXPECT_EQ(run("12.5", 5, 2).result, 6); // the shape, the sign and three bytes
  EXPECT_EQ(run("12.5", 5, 2).bytes.substr(0, 6), "\5\2\0\0\4\xE2"s); // 1250
  EXPECT_EQ(run("1000", 5, 2).result, overflow);
  EXPECT_EQ(run("x", 5, 2).result, syntax);
  // Deliberate: a code that the family never had comes out as it is.
  EXPECT_EQ(run("12.555", 5, 2).result, CS_CONV_TRUNCATED);
  EXPECT_EQ(run("1", 0, 2).result, bad_precision);
  EXPECT_EQ(run("1", 78, 2).result, bad_precision);
  EXPECT_EQ(run("1", 5, 78).result, bad_scale);
  EXPECT_EQ(run_member(legacy_member("char", "num"), "1", -1, 35, 35).result, syntax);
  // A record is read as the matrix reads one: by its header, and all that is wrong is an overflow.
  const auto run_record = [](const std::string &text, CS_INT srclen) {
    return run_member(legacy_member("varychar", "num"), record_of(text), srclen, 35, 35);
  };
  EXPECT_EQ(run_record("12", 1).result, 35);
  EXPECT_EQ(run_record("12", 1).bytes.substr(2, 9),
            numeric(0, 0, "\0\0\0\0\0\0\1\xD4\xC0"s).substr(2, 9));
  EXPECT_EQ(run_record("x", 1).result, overflow);
}

// A record may be longer than one of the matrix, whose room is 256 bytes.
TEST(LegacyNumeric, FromLongRecords) {
  const auto digits = [](const std::string &text, bool multi_byte) {
    const Shaped done =
        run_member(legacy_member("varychar", "num", multi_byte), record_of(text), 1, 35, 35);
    EXPECT_EQ(done.result, 35) << text.size();
    return done.bytes.substr(2, 9);
  };
  for (const bool multi_byte : {false, true}) {
    EXPECT_EQ(digits(std::string(290, ' ') + "1234567890", multi_byte),
              "\0\0\0\x0B\x3A\x73\xCE\x2B\x20"s);
    EXPECT_EQ(digits(std::string(1022, '0') + "1", multi_byte), "\0\0\0\0\0\0\0\x27\x10"s);
    EXPECT_EQ(run_member(legacy_member("varychar", "num", multi_byte),
                         record_of(std::string(1024, '0')), 1, 35, 35)
                  .result,
              syntax);
  }
}

TEST(LegacyNumeric, FromBinary) {
  std::string digits(33, '\0');
  digits[8] = '\x2A';
  for (const bool is_record : {false, true}) {
    const LegacyMember member = legacy_member(is_record ? "varybin" : "bin", "num");
    const auto run = [&](const std::string &bytes) {
      const auto length = static_cast<CS_INT>(bytes.size());
      return run_member(member, is_record ? record_of(bytes) : bytes, length, 35, 35);
    };
    EXPECT_EQ(run(digits), (Shaped{35, "\x12\4"s + digits}));
    EXPECT_EQ(run(digits.substr(0, 32)).result, underflow);
    EXPECT_EQ(run(digits + "x").result, is_record ? overflow : CS_CONV_TRUNCATED);
  }
}

TEST(LegacyNumeric, ToFixedTypes) {
  const auto run = [](const char *destination, const std::string &value, size_t size) {
    return run_member(legacy_member("num", destination), value, 35, 0, size);
  };
  const std::string seven = numeric(4, 2, "\0\2\xBC"s);            // 7.00
  const std::string negative = numeric(4, 2, "\1\2\xBC"s);         // -7.00
  const std::string large = numeric(12, 0, "\0\2\x54\x0B\xE4\0"s); // 10000000000
  EXPECT_EQ(run("i1", seven, 1), (Shaped{1, "\7"}));
  EXPECT_EQ(run("i1", negative, 1), (Shaped{overflow, "\0"s}));
  EXPECT_EQ(run("i2", seven, 2), (Shaped{2, "\7\0"s}));
  EXPECT_EQ(run("i2", large, 2), (Shaped{overflow, "\xFF\x7F"}));
  EXPECT_EQ(run("i4", negative, 4), (Shaped{4, "\xF9\xFF\xFF\xFF"}));
  EXPECT_EQ(run("i4", large, 4), (Shaped{overflow, "\xFF\xFF\xFF\x7F"}));
  EXPECT_EQ(run("bit", seven, 1), (Shaped{1, "\1"}));
  EXPECT_EQ(run("flt4", negative, 4), (Shaped{4, bytes_of(-7.0F)}));
  EXPECT_EQ(run("flt8", large, 8), (Shaped{8, bytes_of(1e10)}));
  EXPECT_EQ(run("money", seven, 8), (Shaped{8, bytes_of(CS_MONEY{0, 70000})}));
  EXPECT_EQ(run("mny", seven, 8), (Shaped{8, bytes_of(CS_MONEY{0, 70000})}));
  EXPECT_EQ(run("mny4", negative, 4), (Shaped{4, bytes_of(CS_INT{-70000})}));
  EXPECT_EQ(run("mny4", large, 4), (Shaped{overflow, bytes_of(CS_INT{2147483647})}));
  EXPECT_EQ(run("i4", numeric(78, 0, ""), 4).result, domain);
}

TEST(LegacyNumeric, ToNumeric) {
  const std::string value = numeric(5, 2, "\0\0\4\xE2"s); // 12.50
  const auto run = [&](CS_INT precision, CS_INT scale) {
    LegacyOptions options;
    options.precision = precision;
    options.scale = scale;
    return run_member(legacy_member("num", "num"), value, 35, 35, 35, options);
  };
  const Shaped done = run(7, 3);
  EXPECT_EQ(done.result, 2 + comn_num_getlen(7));
  EXPECT_EQ(done.bytes.substr(0, 2), "\7\3");
  EXPECT_EQ(run(3, 2).result, overflow);
  EXPECT_EQ(run(0, 2).result, bad_precision);
  EXPECT_EQ(run(5, 78).result, bad_scale);
}

// Deliberate: a numeric is cut where other numbers become a star.
TEST(LegacyNumeric, Text) {
  const std::string value = numeric(5, 2, "\1\0\4\xE2"s); // -12.50
  for (const char *shape : zrvtest::text_shapes)
    check_rooms(legacy_member("num", shape), value, 35, 7,
                [](const std::string &as, CS_INT destlen) {
                  return zrvtest::shape_text(as, "-12.50", destlen, false);
                });
  EXPECT_EQ(run_member(legacy_member("num", "char"), value, 35, 8, 8), (Shaped{6, "-12.50  "}));
  EXPECT_EQ(run_member(legacy_member("num", "string"), value, 35, 4, 4),
            (Shaped{overflow, "-12\0"s}));
  GuardedBuffer dest(64);
  const std::string bad = numeric(78, 0, "");
  for (const char *shape : zrvtest::text_shapes)
    EXPECT_EQ(legacy_member("num", shape)(bad.data(), 35, dest.data(), 64), domain);
  for (const char *shape : {"binary", "bin", "varybin"})
    EXPECT_EQ(legacy_member("num", shape)(bad.data(), 35, dest.data(), 64), domain);
  EXPECT_TRUE(dest.is_untouched());
}

TEST(LegacyNumeric, Binary) {
  const std::string value = numeric(5, 2, "\1\0\4\xE2"s);
  const std::string digits = value.substr(2);
  for (const char *shape : {"binary", "bin", "varybin"})
    check_rooms(
        legacy_member("num", shape), value, 35, 34, [&](const std::string &as, CS_INT destlen) {
          Shaped shaped = zrvtest::shape_bytes(as == "bin" ? "binary" : as, digits, destlen);
          // Deliberate: the code of the matrix.
          if (as != "varybin" && shaped.result == overflow)
            shaped.result = CS_CONV_TRUNCATED;
          return shaped;
        });
}
