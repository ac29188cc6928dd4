// Conversions from money in both sizes, and to money from numbers.
#include <limits>

#include <gtest/gtest.h>

#include "../exact/money_values.h"
#include "allocation_probe.h"
#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "numeric_operands.h"
#include "pad_reference.h"
#include "value_bytes.h"

using zrvtest::bytes_of;
using zrvtest::Conversion;
using zrvtest::Decimal;
using zrvtest::GuardedBuffer;
using zrvtest::largest_money;
using zrvtest::make_format;
using zrvtest::Natural;
using zrvtest::smallest_money;

namespace {

constexpr CS_RETCODE OK = CS_SUCCEED, OV = CS_CONV_OVERFLOW, UN = CS_CONV_UNDERFLOW;
constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

struct Member {
  CS_INT source;
  const char *destination;
  CS_INT code;
  CS_INT size; // what *destlen says before anything can fail
  CS_CONV_FUNC function;
};

#define ZRVTEST_MONEY_MEMBERS(type, source)                                                        \
  {type, "bit", CS_TYPE_BIT, 1, comn_##source##tobit},                                             \
      {type, "i1", CS_TYPE_TINYINT, 1, comn_##source##toi1},                                       \
      {type, "i2", CS_TYPE_SMALLINT, 2, comn_##source##toi2},                                      \
      {type, "i4", CS_TYPE_INT, 4, comn_##source##toi4},                                           \
      {type, "i8", CS_TYPE_BIGINT, 8, comn_##source##toi8},                                        \
      {type, "ui2", CS_TYPE_USMALLINT, 2, comn_##source##toui2},                                   \
      {type, "ui4", CS_TYPE_UINT, 4, comn_##source##toui4},                                        \
      {type, "ui8", CS_TYPE_UBIGINT, 8, comn_##source##toui8},                                     \
      {type, "flt4", CS_TYPE_REAL, 4, comn_##source##toflt4},                                      \
      {type, "flt8", CS_TYPE_FLOAT, 8, comn_##source##toflt8},                                     \
      {type, "num", CS_TYPE_NUMERIC, 35, comn_##source##tonum},                                    \
      {type, "money", CS_TYPE_MONEY, 8, comn_##source##tomoney},                                   \
      {type, "mny4", CS_TYPE_MONEY4, 4, comn_##source##tomny4},                                    \
      {type, "char", CS_TYPE_CHAR, 0, comn_##source##tochar},                                      \
      {type, "bin", CS_TYPE_BINARY, 0, comn_##source##tobin},                                      \
      {type, "varchar", CS_TYPE_VARCHAR, 258, comn_##source##tovarchar}, {                         \
    type, "varbin", CS_TYPE_VARBINARY, 258, comn_##source##tovarbin                                \
  }

const Member members[] = {ZRVTEST_MONEY_MEMBERS(CS_TYPE_MONEY, money),
                          ZRVTEST_MONEY_MEMBERS(CS_TYPE_MONEY4, mny4)};

constexpr CS_INT both_sources[] = {CS_TYPE_MONEY, CS_TYPE_MONEY4};

const Member &member(CS_INT source, const std::string &destination) {
  for (const Member &candidate : members)
    if (candidate.source == source && destination == candidate.destination)
      return candidate;
  ADD_FAILURE() << destination;
  return members[0];
}

const char *unit_of(const Member &member) {
  return member.source == CS_TYPE_MONEY ? "com_mony.cpp" : "com_mny4.cpp";
}

bool fits(CS_INT type, int64_t count) {
  return type == CS_TYPE_MONEY || static_cast<int32_t>(count) == count;
}

// An amount as the bytes of a size of money, from its count of ten-thousandths.
std::string money_bytes(CS_INT type, int64_t count) {
  EXPECT_TRUE(fits(type, count)) << count;
  return type == CS_TYPE_MONEY ? bytes_of(zrvtest::money(count))
                               : bytes_of(static_cast<int32_t>(count));
}

struct Converted {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes; // the whole destination
  CS_DATAFMT destfmt;

  std::string text() const { return bytes.substr(0, static_cast<size_t>(destlen)); }
  bool is_untouched() const { return bytes.find_first_not_of('\xA5') == std::string::npos; }
  template <class T>
  T value() const {
    T result;
    std::memcpy(&result, bytes.data(), sizeof result);
    return result;
  }
};

// Both ends at addresses that no value stands at.
Converted convert(CS_CONV_FUNC function, CS_INT type, const std::string &source, size_t room,
                  CS_DATAFMT destfmt) {
  Conversion conversion(function, make_format(type, -1), destfmt);
  GuardedBuffer src(source.size(), 1), dest(room, 1);
  std::copy(source.begin(), source.end(), src.data());
  const CS_RETCODE status = conversion(src.data(), dest.data());
  EXPECT_EQ(src.contents(), source);
  return {status, conversion.destlen, dest.contents(), conversion.destfmt};
}

Converted convert(const Member &with, int64_t count, size_t room, CS_DATAFMT destfmt) {
  return convert(with.function, with.source, money_bytes(with.source, count), room, destfmt);
}

Converted to_fixed(CS_INT source, const char *destination, int64_t count) {
  const Member &with = member(source, destination);
  const Converted result =
      convert(with, count, static_cast<size_t>(with.size), make_format(with.code, -1));
  EXPECT_EQ(result.destlen, with.size);
  return result;
}

} // namespace

TEST(MoneyConversions, ChecksOfEveryMember) {
  for (const Member &with : members) {
    SCOPED_TRACE(testing::Message() << "type " << with.source << " to " << with.destination);
    zrvtest::expect_null_checks(unit_of(with), with.function, make_format(with.source, 8),
                                make_format(with.code, 8));
    for (CS_INT code = -1; code <= CS_TYPE_COUNT; ++code)
      for (const bool of_source : {true, false}) {
        const bool text =
            code == 0 || code == 2 || code == 4 || code == 21 || code == 22 || code == 34;
        const bool accepted = of_source                      ? code == with.source
                              : with.code == CS_TYPE_CHAR    ? text
                              : with.code == CS_TYPE_BINARY  ? code == 1 || code == 3 || code == 5
                              : with.code == CS_TYPE_NUMERIC ? code == 16 || code == 17
                                                             : code == with.code;
        Conversion conversion(with.function, make_format(with.source, 8),
                              make_format(with.code, 40));
        conversion.destfmt.precision = 10;
        (of_source ? conversion.srcfmt : conversion.destfmt).datatype = code;
        const CS_MONEY source{};
        GuardedBuffer dest(sizeof(CS_VARCHAR));
        if (accepted) {
          EXPECT_EQ(conversion(&source, dest.data()), CS_SUCCEED) << code;
          continue;
        }
        EXPECT_ASSERTION(unit_of(with), CS_FAIL, conversion(&source, dest.data()));
        EXPECT_EQ(conversion.destlen, Conversion::untouched_length);
        EXPECT_TRUE(dest.is_untouched());
      }
  }
}

TEST(MoneyConversions, AllocateNothing) {
  CS_CONTEXT context{};
  char dest[300];
  CS_INT length;
  for (const Member &with : members) {
    CS_DATAFMT from = make_format(with.source, 8), to = make_format(with.code, 40);
    to.precision = 10;
    CS_MONEY values[] = {{}, {-1, 5}, {0x7FFFFFFF, 0xFFFFFFFF}};
    const zrvtest::AllocationProbe probe;
    for (CS_MONEY &value : values)
      with.function(&context, &from, &value, &to, dest, &length);
    EXPECT_EQ(probe.allocations(), 0U) << with.destination;
  }
}

TEST(MoneyToInteger, RoundsAndClamps) {
  const struct {
    const char *destination;
    int64_t count;
    CS_RETCODE status;
    int64_t stored;
  } rows[] = {
      {"i1", 0, OK, 0},
      {"i1", 4999, OK, 0},
      {"i1", 5000, OK, 1},
      {"i1", -4999, OK, 0}, // unlike the other unsigned types
      {"i1", -5000, OV, 0},
      {"i1", -10000, OV, 0},
      {"i1", 2550000, OK, 255},
      {"i1", 2554999, OK, 255},
      {"i1", 2555000, OV, 255},
      {"i1", largest_money, OV, 255},
      {"i1", smallest_money, OV, 0},
      {"i2", 14999, OK, 1},
      {"i2", 15000, OK, 2},
      {"i2", -14999, OK, -1},
      {"i2", -15000, OK, -2},
      {"i2", 327674999, OK, 32767},
      {"i2", 327675000, OV, 32767},
      {"i2", -327684999, OK, -32768},
      {"i2", -327685000, OV, -32768},
      {"i2", largest_money, OV, 32767},
      {"i2", smallest_money, OV, -32768},
      {"i4", 15000, OK, 2},
      {"i4", -15000, OK, -2},
      {"i4", 2147483647, OK, 214748},
      {"i4", -2147483648, OK, -214748},
      {"i4", 21474836474999, OK, 2147483647},
      {"i4", 21474836475000, OV, 2147483647},
      {"i4", -21474836484999, OK, -2147483648LL},
      {"i4", -21474836485000, OV, -2147483648LL},
      {"i8", 4999, OK, 0},
      {"i8", 5000, OK, 1},
      {"i8", -4999, OK, 0},
      {"i8", -5000, OK, -1}, // the sign is kept although no digit of it is
      {"i8", largest_money, OK, 922337203685478},
      {"i8", smallest_money, OK, -922337203685478},
      {"ui2", 0, OK, 0},
      {"ui2", -1, OV, 0}, // an overflow, but an underflow for ui8
      {"ui2", -10000, OV, 0},
      {"ui2", 5000, OK, 1},
      {"ui2", 655354999, OK, 65535},
      {"ui2", 655355000, OV, 65535},
      {"ui2", smallest_money, OV, 0},
      {"ui4", 0, OK, 0},
      {"ui4", -1, OV, 0},
      {"ui4", -2147483648, OV, 0},
      {"ui4", 42949672954999, OK, 4294967295},
      {"ui4", 42949672955000, OV, 4294967295},
      {"ui8", 0, OK, 0},
      {"ui8", 4999, OK, 0},
      {"ui8", 5000, OK, 1},
      {"ui8", -1, UN, 0},
      {"ui8", -10000, UN, 0},
      {"ui8", largest_money, OK, 922337203685478},
      {"ui8", smallest_money, UN, 0},
  };
  for (const CS_INT source : both_sources)
    for (const auto &row : rows) {
      if (!fits(source, row.count))
        continue;
      const Converted result = to_fixed(source, row.destination, row.count);
      EXPECT_EQ(result.status, row.status) << source << ", " << row.count << row.destination;
      EXPECT_EQ(result.bytes, bytes_of(row.stored).substr(0, result.bytes.size()))
          << source << ", " << row.count << " to " << row.destination;
    }
}

TEST(MoneyToBit, OneUnlessZero) {
  for (const CS_INT source : both_sources) {
    EXPECT_EQ(to_fixed(source, "bit", 0).bytes, std::string(1, '\0'));
    for (const int64_t count : {1LL, -1LL, 10000LL, -2147483648LL, 1LL << 32, -1LL << 32})
      if (fits(source, count)) {
        const Converted result = to_fixed(source, "bit", count);
        EXPECT_EQ(result.status, CS_SUCCEED);
        EXPECT_EQ(result.bytes, "\1") << count;
      }
  }
}

// Deliberate: the sizes compute their doubles in different ways, which shows in the last bits.
TEST(MoneyToFloat, EachSizeInItsOwnWay) {
  const struct {
    CS_INT source;
    int64_t count;
    CS_FLOAT value;
  } rows[] = {
      {CS_TYPE_MONEY, 0, 0.0},
      {CS_TYPE_MONEY4, 0, 0.0},
      {CS_TYPE_MONEY, 15000, 1.5},
      {CS_TYPE_MONEY4, 15000, 1.5},
      {CS_TYPE_MONEY, -15000, -1.5},
      {CS_TYPE_MONEY4, -15000, -1.5},
      {CS_TYPE_MONEY, -1, -0.00010000000474974513},
      {CS_TYPE_MONEY4, -1, -0.0001},
      {CS_TYPE_MONEY, -123456789, -12345.678899999999},
      {CS_TYPE_MONEY4, -123456789, -12345.6789},
      {CS_TYPE_MONEY4, 2147483647, 214748.3647},
      {CS_TYPE_MONEY, largest_money, 922337203685477.6},
      {CS_TYPE_MONEY, smallest_money, -922337203685477.6},
  };
  for (const auto &row : rows) {
    const Converted wide = to_fixed(row.source, "flt8", row.count);
    EXPECT_EQ(wide.status, CS_SUCCEED);
    EXPECT_EQ(wide.value<CS_FLOAT>(), row.value) << row.source << ", " << row.count;
    const Converted single = to_fixed(row.source, "flt4", row.count);
    EXPECT_EQ(single.status, CS_SUCCEED);
    EXPECT_EQ(single.value<CS_REAL>(), static_cast<CS_REAL>(row.value)) << row.count;
  }
}

namespace {

Converted to_num(CS_INT source, int64_t count, CS_INT precision, CS_INT scale,
                 CS_INT code = CS_TYPE_NUMERIC) {
  CS_DATAFMT format = make_format(code, -1);
  format.precision = precision;
  format.scale = scale;
  const Converted result = convert(member(source, "num"), count, sizeof(CS_NUMERIC), format);
  EXPECT_EQ(result.destlen, 35);
  EXPECT_EQ(result.destfmt.precision, precision);
  EXPECT_EQ(result.destfmt.scale, scale);
  return result;
}

std::string num_text(const Converted &result) {
  return Decimal::of(result.value<CS_NUMERIC>()).text();
}

} // namespace

TEST(MoneyToNum, RoundsToTheScale) {
  for (const CS_INT source : both_sources) {
    EXPECT_EQ(to_num(source, 15000, 5, 2).status, CS_SUCCEED);
    EXPECT_EQ(num_text(to_num(source, 15000, 5, 2)), "1.50 (5,2)");
    EXPECT_EQ(num_text(to_num(source, 15000, 5, 0, CS_TYPE_DECIMAL)), "2 (5,0)");
    EXPECT_EQ(num_text(to_num(source, -15000, 5, 0)), "-2 (5,0)");
    EXPECT_EQ(num_text(to_num(source, 12349, 5, 2)), "1.23 (5,2)");
    EXPECT_EQ(num_text(to_num(source, 12350, 5, 2)), "1.24 (5,2)");
    EXPECT_EQ(num_text(to_num(source, -1, 77, 6)), "-0.000100 (77,6)");
    EXPECT_EQ(num_text(to_num(source, -2147483648, 10, 4)), "-214748.3648 (10,4)");
    EXPECT_EQ(to_num(source, 9990000, 3, 0).status, CS_SUCCEED);
    EXPECT_EQ(to_num(source, 9995000, 3, 0).status, CS_CONV_OVERFLOW);
    EXPECT_EQ(to_num(source, 10000, 2, 2).status, CS_CONV_OVERFLOW);
    EXPECT_EQ(to_num(source, 9900, 2, 2).status, CS_SUCCEED);
    const CS_NUMERIC shape = to_num(source, 10000000, 3, 0).value<CS_NUMERIC>();
    EXPECT_EQ(shape.precision, 3);
    EXPECT_EQ(shape.scale, 0);
  }
  EXPECT_EQ(num_text(to_num(CS_TYPE_MONEY, smallest_money, 19, 4)), "-922337203685477.5808 (19,4)");
  EXPECT_EQ(num_text(to_num(CS_TYPE_MONEY, largest_money, 15, 0)), "922337203685478 (15,0)");
  EXPECT_EQ(to_num(CS_TYPE_MONEY, largest_money, 14, 0).status, CS_CONV_OVERFLOW);
}

TEST(MoneyToNum, Shapes) {
  for (const CS_INT source : both_sources) {
    for (const CS_INT precision : {0, -1, 78, 255, CS_INT{CS_DFMT_FROMSOURCE}}) {
      const Converted result = to_num(source, 10000, precision, 78);
      EXPECT_EQ(result.status, CS_CONV_BADPRECISION) << precision;
      EXPECT_TRUE(result.is_untouched());
    }
    for (const CS_INT scale : {78, 255, 1000}) {
      const Converted result = to_num(source, 10000, 5, scale);
      EXPECT_EQ(result.status, CS_CONV_BADSCALE) << scale;
      EXPECT_TRUE(result.is_untouched());
    }
    EXPECT_EQ(to_num(source, 0, 77, 77).status, CS_SUCCEED);
    // Deliberate: a negative scale passes. Its low byte is the scale, or 0 beyond the limit.
    EXPECT_EQ(num_text(to_num(source, 15000, 5, 2 - 256)), "1.50 (5,2)");
    EXPECT_EQ(num_text(to_num(source, 15000, 5, -1)), "2 (5,0)");
    EXPECT_EQ(num_text(to_num(source, 15000, 5, CS_DFMT_FROMSOURCE)), "2 (5,0)");
  }
}

TEST(MoneyToMoney, BetweenTheSizes) {
  const struct {
    CS_INT source;
    const char *destination;
    int64_t count;
    CS_RETCODE status;
    int64_t stored;
  } rows[] = {
      {CS_TYPE_MONEY, "money", largest_money, OK, largest_money},
      {CS_TYPE_MONEY, "money", smallest_money, OK, smallest_money},
      {CS_TYPE_MONEY, "money", -5, OK, -5},
      {CS_TYPE_MONEY4, "mny4", -5, OK, -5},
      {CS_TYPE_MONEY4, "mny4", 2147483647, OK, 2147483647},
      {CS_TYPE_MONEY4, "money", -2147483648, OK, -2147483648},
      {CS_TYPE_MONEY4, "money", -1, OK, -1},
      {CS_TYPE_MONEY4, "money", 2147483647, OK, 2147483647},
      {CS_TYPE_MONEY, "mny4", -1, OK, -1},
      {CS_TYPE_MONEY, "mny4", 2147483647, OK, 2147483647},
      {CS_TYPE_MONEY, "mny4", 2147483648, OV, 2147483647},
      {CS_TYPE_MONEY, "mny4", -2147483648, OK, -2147483648},
      {CS_TYPE_MONEY, "mny4", -2147483649, OV, -2147483648},
      {CS_TYPE_MONEY, "mny4", largest_money, OV, 2147483647},
      {CS_TYPE_MONEY, "mny4", smallest_money, OV, -2147483648},
  };
  for (const auto &row : rows) {
    const Converted result = to_fixed(row.source, row.destination, row.count);
    EXPECT_EQ(result.status, row.status) << row.count << " to " << row.destination;
    EXPECT_EQ(result.bytes, money_bytes(member(row.source, row.destination).code, row.stored))
        << row.count << " to " << row.destination;
  }
}

TEST(MoneyConversions, InPlace) {
  for (const char *destination : {"i8", "ui8", "flt8", "money", "mny4", "i4", "bit"}) {
    const Member &with = member(CS_TYPE_MONEY, destination);
    const Converted apart = to_fixed(CS_TYPE_MONEY, destination, 123456789);
    GuardedBuffer buffer(8, 1);
    buffer.set(zrvtest::money(123456789));
    Conversion conversion(with.function, make_format(CS_TYPE_MONEY, 8), make_format(with.code, 8));
    EXPECT_EQ(conversion(buffer.data(), buffer.data()), apart.status);
    EXPECT_EQ(buffer.contents(apart.bytes.size()), apart.bytes) << destination;
  }
}

namespace {

Converted to_text(CS_INT source, int64_t count, CS_INT maxlength, CS_INT precision = 0,
                  CS_INT format = 0, CS_INT code = CS_TYPE_CHAR) {
  CS_DATAFMT destfmt = make_format(code, maxlength, format);
  destfmt.precision = precision;
  return convert(member(source, "char"), count, static_cast<size_t>(std::max(maxlength, 0)),
                 destfmt);
}

} // namespace

TEST(MoneyToText, DecimalsByThePrecision) {
  const struct {
    int64_t count;
    CS_INT precision;
    const char *text;
  } rows[] = {
      {0, 0, "0.00"},
      {0, 4, "0.0000"},
      {15000, 0, "1.50"},
      {15000, 1, "1.5"},
      {15000, 2, "1.50"},
      {15000, 3, "1.500"},
      {15000, 4, "1.5000"},
      {15000, 5, "1.5000"},
      {15000, std::numeric_limits<CS_INT>::max(), "1.5000"},
      {15000, -1, "1.50"},
      {15000, CS_DFMT_FROMSOURCE, "1.50"},
      {12349, 0, "1.23"},
      {12350, 0, "1.24"},
      {-12350, 0, "-1.24"},
      {9999, 1, "1.0"},
      {-1, 0, "-0.00"}, // the sign stays
      {-1, 4, "-0.0001"},
      {1234567891, 0, "123456.79"}, // no commas
      {2147483647, 4, "214748.3647"},
      {-2147483648, 4, "-214748.3648"},
      {smallest_money, 0, "-922337203685477.58"},
      {smallest_money, 4, "-922337203685477.5808"},
      {largest_money, 4, "922337203685477.5807"},
  };
  for (const CS_INT source : both_sources)
    for (const auto &row : rows) {
      if (!fits(source, row.count))
        continue;
      const Converted result = to_text(source, row.count, 21, row.precision);
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.text(), row.text) << row.count << ", " << row.precision;
      // Deliberate: a negative precision is mended in the caller's record, and no other is touched.
      EXPECT_EQ(result.destfmt.precision, std::max(row.precision, 0));

      Converted record = convert(member(source, "varchar"), row.count, sizeof(CS_VARCHAR), [&] {
        CS_DATAFMT destfmt = make_format(CS_TYPE_VARCHAR, 1, N | B);
        destfmt.precision = row.precision;
        return destfmt;
      }());
      EXPECT_EQ(record.status, CS_SUCCEED);
      EXPECT_EQ(record.destlen, 258);
      const std::string text = row.text;
      EXPECT_EQ(record.value<CS_SMALLINT>(), static_cast<CS_SMALLINT>(text.size()));
      EXPECT_EQ(record.bytes.substr(2, text.size()), text);
      EXPECT_EQ(record.bytes.substr(2 + text.size()).find_first_not_of('\xA5'), std::string::npos);
      EXPECT_EQ(record.destfmt.precision, std::max(row.precision, 0));
    }
  for (const CS_INT code : {0, 2, 4, 21, 22, 34})
    EXPECT_EQ(to_text(CS_TYPE_MONEY, 15000, 8, 0, 0, code).text(), "1.50");
}

// In every room, with every pad: what does not fit is cut, and no star comes.
TEST(MoneyToText, EveryRoom) {
  const std::string text = "-12.50";
  const auto length = static_cast<CS_INT>(text.size());
  for (const CS_INT source : both_sources)
    for (CS_INT maxlength = -1; maxlength <= length + 3; ++maxlength)
      for (CS_INT format = 0; format <= (N | P | B); ++format) {
        const auto room = static_cast<size_t>(std::max(maxlength, 0));
        zrvtest::Padded expected{std::string(room, '\xA5'),
                                 static_cast<CS_INT>(std::min(room, text.size()))};
        expected.bytes.replace(0, std::min(room, text.size()), text, 0, room);
        const CS_RETCODE status =
            zrvtest::reference_pad_text(1, length, format, maxlength, expected);
        const Converted result = to_text(source, -125000, maxlength, 2, format);
        EXPECT_EQ(result.status, status) << "room " << maxlength << ", format " << format;
        EXPECT_EQ(result.destlen, expected.length);
        EXPECT_EQ(result.bytes, expected.bytes);
      }
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 5).status, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 5).text(), "-12.5");
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 6).status, CS_SUCCEED);
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 6, 0, N).status, CS_CONV_OVERFLOW);
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 6, 0, N).bytes, std::string("-12.5\0", 6));
  EXPECT_EQ(to_text(CS_TYPE_MONEY, -125000, 8, 0, P | B).status, CS_CONV_PADCONFLICT);
}

TEST(MoneyToBinary, TheBytesAsTheyStand) {
  for (const CS_INT source : both_sources) {
    const std::string bytes = money_bytes(source, -123456789);
    const auto size = static_cast<CS_INT>(bytes.size());
    for (const CS_INT code : {1, 3, 5})
      for (CS_INT maxlength = 0; maxlength <= size + 2; ++maxlength)
        for (const CS_INT format : {0, P, B}) {
          const auto room = static_cast<size_t>(maxlength);
          const Converted result = convert(member(source, "bin"), -123456789, room,
                                           make_format(code, maxlength, format));
          EXPECT_EQ(result.status, maxlength < size ? CS_CONV_TRUNCATED : CS_SUCCEED);
          EXPECT_EQ(result.destlen, format == P ? maxlength : std::min(maxlength, size));
          std::string expected = bytes.substr(0, room);
          expected.resize(room, format == P ? '\0' : '\xA5');
          EXPECT_EQ(result.bytes, expected);
        }
    const Converted record = convert(member(source, "varbin"), -123456789, sizeof(CS_VARBINARY),
                                     make_format(CS_TYPE_VARBINARY, 0));
    EXPECT_EQ(record.status, CS_SUCCEED);
    EXPECT_EQ(record.destlen, 258);
    EXPECT_EQ(record.value<CS_SMALLINT>(), size);
    EXPECT_EQ(record.bytes.substr(2, bytes.size()), bytes);
    EXPECT_EQ(record.bytes.substr(2 + bytes.size()).find_first_not_of('\xA5'), std::string::npos);
  }
  EXPECT_EQ(money_bytes(CS_TYPE_MONEY, 1LL << 32), std::string("\1\0\0\0\0\0\0\0", 8));
}

// ---- to money ----

namespace {

struct ToMoney {
  CS_RETCODE status;
  int64_t count;
};
bool operator==(const ToMoney &a, const ToMoney &b) {
  return a.status == b.status && a.count == b.count;
}
std::ostream &operator<<(std::ostream &out, const ToMoney &result) {
  return out << result.status << " with " << result.count;
}

// The count that a destination holds; of one that was left alone this.
constexpr int64_t untouched = 0x5A5A5A5A5A5A5A5A;

ToMoney to_money(CS_CONV_FUNC function, CS_INT source_type, const std::string &source,
                 CS_INT type) {
  const CS_INT size = type == CS_TYPE_MONEY ? 8 : 4;
  const Converted result =
      convert(function, source_type, source, static_cast<size_t>(size), make_format(type, -1));
  EXPECT_EQ(result.destlen, size);
  if (result.is_untouched())
    return {result.status, untouched};
  return {result.status, type == CS_TYPE_MONEY ? zrvtest::count_of(result.value<CS_MONEY>())
                                               : int64_t{result.value<CS_INT>()}};
}

// A number, and what both sizes of money become.
template <class Value>
struct Row {
  Value value;
  ToMoney money, mny4;
};

template <class Value>
void check(CS_CONV_FUNC money, CS_CONV_FUNC mny4, CS_INT type,
           std::initializer_list<Row<Value>> rows) {
  for (const Row<Value> &row : rows) {
    const std::string source = bytes_of(row.value);
    EXPECT_EQ(to_money(money, type, source, CS_TYPE_MONEY), row.money)
        << type << ": " << +row.value;
    EXPECT_EQ(to_money(mny4, type, source, CS_TYPE_MONEY4), row.mny4) << type << ": " << +row.value;
  }
}

} // namespace

// Out of range the shorter size holds the nearest value, the longer one the number as a count.
TEST(IntegerToMoney, EveryTypeAtItsLimits) {
  constexpr CS_INT top = std::numeric_limits<CS_INT>::max(),
                   bottom = std::numeric_limits<CS_INT>::min();
  check<CS_TINYINT>(comn_i1tomoney, comn_i1tomny4, CS_TYPE_TINYINT,
                    {{0, {OK, 0}, {OK, 0}}, {255, {OK, 2550000}, {OK, 2550000}}});
  check<CS_SMALLINT>(
      comn_i2tomoney, comn_i2tomny4, CS_TYPE_SMALLINT,
      {{32767, {OK, 327670000}, {OK, 327670000}}, {-32768, {OK, -327680000}, {OK, -327680000}}});
  check<CS_USMALLINT>(comn_ui2tomoney, comn_ui2tomny4, CS_TYPE_USMALLINT,
                      {{65535, {OK, 655350000}, {OK, 655350000}}});
  check<CS_INT>(comn_i4tomoney, comn_i4tomny4, CS_TYPE_INT,
                {{214748, {OK, 2147480000}, {OK, 2147480000}},
                 {214749, {OK, 2147490000}, {OV, top}},
                 {-214748, {OK, -2147480000}, {OK, -2147480000}},
                 {-214749, {OK, -2147490000}, {OV, bottom}},
                 {top, {OK, 21474836470000}, {OV, top}},
                 {bottom, {OK, -21474836480000}, {OV, bottom}}});
  check<CS_UINT>(comn_ui4tomoney, comn_ui4tomny4, CS_TYPE_UINT,
                 {{214748, {OK, 2147480000}, {OK, 2147480000}},
                  {214749, {OK, 2147490000}, {OV, top}},
                  {4294967295, {OK, 42949672950000}, {OV, top}}});
  check<CS_BIGINT>(comn_i8tomoney, comn_i8tomny4, CS_TYPE_BIGINT,
                   {{-1, {OK, -10000}, {OK, -10000}},
                    {214748, {OK, 2147480000}, {OK, 2147480000}},
                    {214749, {OK, 2147490000}, {OV, top}},
                    {-214749, {OK, -2147490000}, {OV, bottom}},
                    {922337203685477, {OK, 9223372036854770000}, {OV, top}},
                    {922337203685478, {OV, 922337203685478}, {OV, top}},
                    {-922337203685477, {OK, -9223372036854770000}, {OV, bottom}},
                    {-922337203685478, {OV, -922337203685478}, {OV, bottom}},
                    {largest_money, {OV, largest_money}, {OV, top}},
                    {smallest_money, {OV, smallest_money}, {OV, bottom}}});
  check<CS_UBIGINT>(comn_ui8tomoney, comn_ui8tomny4, CS_TYPE_UBIGINT,
                    {{214748, {OK, 2147480000}, {OK, 2147480000}},
                     {214749, {OK, 2147490000}, {OV, top}},
                     {922337203685477, {OK, 9223372036854770000}, {OV, top}},
                     {922337203685478, {OV, 922337203685478}, {OV, top}},
                     {9223372036854775808U, {OV, largest_money}, {OV, top}},
                     {18446744073709551615U, {OV, largest_money}, {OV, top}}});
}

// Out of range both sizes hold zero.
TEST(FloatToMoney, RoundsAndRefuses) {
  const double nan_value = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  check<CS_FLOAT>(comn_flt8tomoney, comn_flt8tomny4, CS_TYPE_FLOAT,
                  {{0.0, {OK, 0}, {OK, 0}},
                   {-0.0, {OK, 0}, {OK, 0}},
                   {1.5, {OK, 15000}, {OK, 15000}},
                   {-1.5, {OK, -15000}, {OK, -15000}},
                   {0.00004, {OK, 0}, {OK, 0}},
                   {0.00006, {OK, 1}, {OK, 1}},
                   {-0.00006, {OK, -1}, {OK, -1}},
                   {214748.25, {OK, 2147482500}, {OK, 2147482500}},
                   {214748.5, {OK, 2147485000}, {OV, 0}},
                   {-214748.25, {OK, -2147482500}, {OK, -2147482500}},
                   {-214748.5, {OK, -2147485000}, {OV, 0}},
                   {922337203685477.6, {OK, largest_money}, {OV, 0}},
                   {-922337203685477.6, {OK, -largest_money}, {OV, 0}},
                   {922337203685478.0, {OV, 0}, {OV, 0}},
                   {-1e300, {OV, 0}, {OV, 0}},
                   {infinite, {OV, 0}, {OV, 0}},
                   {-infinite, {OV, 0}, {OV, 0}},
                   {nan_value, {OV, 0}, {OV, 0}}});
  check<CS_REAL>(comn_flt4tomoney, comn_flt4tomny4, CS_TYPE_REAL,
                 {{0.1F, {OK, 1000}, {OK, 1000}},
                  {-1.5F, {OK, -15000}, {OK, -15000}},
                  {214748.25F, {OK, 2147482500}, {OK, 2147482500}},
                  {214748.5F, {OK, 2147485000}, {OV, 0}},
                  {16777216.0F, {OK, 167772160000}, {OV, 0}},
                  {1e15F, {OV, 0}, {OV, 0}},
                  {-std::numeric_limits<float>::infinity(), {OV, 0}, {OV, 0}},
                  {std::numeric_limits<float>::quiet_NaN(), {OV, 0}, {OV, 0}}});
}

// Beyond the longer size nothing is stored, beyond the shorter one alone its nearest value.
TEST(NumToMoney, RoundsAndClamps) {
  constexpr ToMoney left_alone = {OV, untouched};
  const struct {
    int precision, scale;
    const char *digits;
    bool negative;
    ToMoney money, mny4;
  } rows[] = {
      {5, 0, "0", true, {OK, 0}, {OK, 0}},
      {5, 0, "15", false, {OK, 150000}, {OK, 150000}},
      {5, 2, "150", true, {OK, -15000}, {OK, -15000}},
      {5, 5, "12344", false, {OK, 1234}, {OK, 1234}},
      {5, 5, "12345", false, {OK, 1235}, {OK, 1235}},
      {5, 5, "12345", true, {OK, -1235}, {OK, -1235}},
      {77, 77, "1", false, {OK, 0}, {OK, 0}},
      {10, 4, "2147483647", false, {OK, 2147483647}, {OK, 2147483647}},
      {10, 4, "2147483648", false, {OK, 2147483648}, {OV, 2147483647}},
      {10, 4, "2147483648", true, {OK, -2147483648}, {OK, -2147483648}},
      {10, 4, "2147483649", true, {OK, -2147483649}, {OV, -2147483648}},
      {19, 4, "9223372036854775807", false, {OK, largest_money}, {OV, 2147483647}},
      {19, 4, "9223372036854775808", false, left_alone, left_alone},
      {19, 4, "9223372036854775808", true, {OK, smallest_money}, {OV, -2147483648}},
      {19, 4, "9223372036854775809", true, left_alone, left_alone},
      {77, 0, "10000000000000000000000000000000000000000", false, left_alone, left_alone},
  };
  for (const auto &row : rows)
    for (const CS_INT type : {CS_TYPE_NUMERIC, CS_TYPE_DECIMAL}) {
      const Decimal value{row.precision, row.scale, row.negative, Natural::from_digits(row.digits)};
      const std::string source = bytes_of(value.pack());
      EXPECT_EQ(to_money(comn_numtomoney, type, source, CS_TYPE_MONEY), row.money) << row.digits;
      EXPECT_EQ(to_money(comn_numtomny4, type, source, CS_TYPE_MONEY4), row.mny4) << row.digits;
    }
}

// ---- for callers without a context ----

TEST(MoneyText, ForCallersWithoutAContext) {
  CS_MONEY money = zrvtest::money(-12345678914);
  CS_MONEY4 money4{2147483647};
  GuardedBuffer room(16);
  const auto text = [&](const CS_CHAR *start) {
    return start == nullptr ? "no room"
                            : room.contents().substr(static_cast<size_t>(start - room.text()));
  };
  EXPECT_EQ(text(com_cvtmnytochar(&money, room.text(), 16, 0)), "-1234567.89");
  EXPECT_EQ(text(com_cvtmnytochar(&money, room.text(), 16, 1)), "-1,234,567.89");
  EXPECT_EQ(text(com_cvtmnytochar(&money, room.text(), 16, 4 << 8)), "-1234567.8914");
  EXPECT_EQ(text(com_cvtmnytochar(&money, room.text(), 10, 0)), "no room");
  EXPECT_EQ(text(com_cvtmny4tochar(&money4, room.text(), 16, 1)), "214,748.36");
  EXPECT_EQ(text(com_cvtmny4tochar(&money4, room.text(), 16, 3 << 8)), "214748.365");
  EXPECT_EQ(text(com_cvtmny4tochar(&money4, room.text(), 8, 0)), "no room");

  EXPECT_EQ(text(com_precmnytochar(&money, room.text(), 16, 0, 0)), "-1234567.89");
  EXPECT_EQ(text(com_precmnytochar(&money, room.text(), 16, 1, 3)), "-1,234,567.891");
  EXPECT_EQ(text(com_precmnytochar(&money, room.text(), 16, 0, 1)), "-1234567.9");
  // The decimals of the style are still there: 1 and 2 make 3.
  EXPECT_EQ(text(com_precmnytochar(&money, room.text(), 16, 1 << 8, 2)), "-1234567.891");
  EXPECT_EQ(text(com_precmnytochar(&money, room.text(), 16, 0, -1)), "-1234567.8914");
}
