// Conversions from bit.
#include <gtest/gtest.h>

#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "numeric_operands.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using namespace std::string_literals;

namespace {

struct Member {
  const char *destination;
  CS_INT code;
  CS_CONV_FUNC function;
  std::string zero, one; // what comes of the two values, without pads
  CS_INT destlen;
};

std::string integer(size_t width, char value) {
  return std::string(1, value) + std::string(width - 1, '\0');
}

const Member members[] = {
    {"bit", CS_TYPE_BIT, comn_bittobit, "\0"s, "\1", 1},
    {"i1", CS_TYPE_TINYINT, comn_bittoi1, integer(1, 0), integer(1, 1), 1},
    {"i2", CS_TYPE_SMALLINT, comn_bittoi2, integer(2, 0), integer(2, 1), 2},
    {"i4", CS_TYPE_INT, comn_bittoi4, integer(4, 0), integer(4, 1), 4},
    {"i8", CS_TYPE_BIGINT, comn_bittoi8, integer(8, 0), integer(8, 1), 8},
    {"ui2", CS_TYPE_USMALLINT, comn_bittoui2, integer(2, 0), integer(2, 1), 2},
    {"ui4", CS_TYPE_UINT, comn_bittoui4, integer(4, 0), integer(4, 1), 4},
    {"ui8", CS_TYPE_UBIGINT, comn_bittoui8, integer(8, 0), integer(8, 1), 8},
    {"flt4", CS_TYPE_REAL, comn_bittoflt4, std::string(4, '\0'), "\0\0\x80\x3F"s, 4},
    {"flt8", CS_TYPE_FLOAT, comn_bittoflt8, std::string(8, '\0'), "\0\0\0\0\0\0\xF0\x3F"s, 8},
    {"char", CS_TYPE_CHAR, comn_bittochar, "0", "1", 1},
    {"bin", CS_TYPE_BINARY, comn_bittobin, "\0"s, "\1", 1},
    {"varchar", CS_TYPE_VARCHAR, comn_bittovarchar, "\1\0000"s, "\1\0001"s, 258},
    // Deliberate: the character, not the value.
    {"varbin", CS_TYPE_VARBINARY, comn_bittovarbin, "\1\0000"s, "\1\0001"s, 258},
};

Conversion conversion_of(const Member &member, CS_INT maxlength = 1, CS_INT format = 0) {
  return {member.function, make_format(CS_TYPE_BIT, 1),
          make_format(member.code, maxlength, format)};
}

} // namespace

TEST(Bit, BothValues) {
  for (const Member &member : members)
    for (const CS_BIT value : {CS_BIT{0}, CS_BIT{1}}) {
      SCOPED_TRACE(member.destination);
      const std::string &expected = value == 0 ? member.zero : member.one;
      Conversion convert = conversion_of(member);
      GuardedBuffer dest(static_cast<size_t>(member.destlen), 1);
      EXPECT_EQ(convert(&value, dest.data()), CS_SUCCEED);
      EXPECT_EQ(convert.destlen, member.destlen);
      EXPECT_EQ(dest.contents(expected.size()), expected);
      EXPECT_TRUE(dest.is_untouched(expected.size()));
    }
}

TEST(Bit, OtherValuesAreNotWrittenAtAll) {
  for (const Member &member : members)
    for (int value = 2; value < 256; ++value) {
      Conversion convert = conversion_of(member);
      GuardedBuffer dest(sizeof(CS_VARCHAR));
      const auto source = static_cast<CS_BIT>(value);
      ASSERT_EQ(convert(&source, dest.data()), CS_CONV_DOMAIN) << member.destination;
      ASSERT_EQ(convert.destlen, Conversion::untouched_length);
      ASSERT_TRUE(dest.is_untouched());
    }
}

TEST(Bit, ToNumeric) {
  for (const CS_BIT value : {CS_BIT{0}, CS_BIT{1}}) {
    Conversion convert(comn_bittonum, make_format(CS_TYPE_BIT, 1),
                       make_format(CS_TYPE_DECIMAL, 35));
    convert.destfmt.precision = 5;
    convert.destfmt.scale = 2;
    GuardedBuffer dest(sizeof(CS_NUMERIC), 1);
    EXPECT_EQ(convert(&value, dest.data()), CS_SUCCEED);
    EXPECT_EQ(convert.destlen, 35);
    EXPECT_EQ(zrvtest::Decimal::of(dest.value<CS_NUMERIC>()).text(),
              value == 0 ? "0.00 (5,2)" : "1.00 (5,2)");
  }
  struct Row {
    CS_INT precision, scale;
    CS_RETCODE status;
  };
  for (const Row &row : {Row{0, 0, CS_CONV_BADPRECISION},
                         {78, 0, CS_CONV_BADPRECISION},
                         {CS_DFMT_FROMSOURCE, 0, CS_CONV_BADPRECISION},
                         {77, 78, CS_CONV_BADSCALE},
                         {3, 3, CS_CONV_OVERFLOW},
                         {77, 76, CS_SUCCEED},
                         {1, 0, CS_SUCCEED}}) {
    Conversion convert(comn_bittonum, make_format(CS_TYPE_BIT, 1),
                       make_format(CS_TYPE_NUMERIC, 35));
    convert.destfmt.precision = row.precision;
    convert.destfmt.scale = row.scale;
    GuardedBuffer dest(sizeof(CS_NUMERIC));
    const CS_BIT one = 1;
    EXPECT_EQ(convert(&one, dest.data()), row.status) << row.precision << ", " << row.scale;
    EXPECT_EQ(convert.destlen, 35);
    if (row.status == CS_CONV_BADPRECISION || row.status == CS_CONV_BADSCALE) {
      EXPECT_TRUE(dest.is_untouched());
    }
    // The source comes before the shape.
    const CS_BIT two = 2;
    EXPECT_EQ(convert(&two, dest.data()), CS_CONV_DOMAIN);
    EXPECT_EQ(convert.destlen, Conversion::untouched_length);
  }
}

TEST(Bit, PadsAndRoom) {
  struct Row {
    CS_CONV_FUNC function;
    CS_INT code, maxlength, format;
    CS_RETCODE status;
    CS_INT destlen;
    std::string bytes;
  };
  const Row rows[] = {
      {comn_bittochar, CS_TYPE_TEXT, 3, CS_DFMT_PADBLANK, CS_SUCCEED, 3, "1  "},
      {comn_bittochar, CS_TYPE_CHAR, 3, CS_DFMT_NULLTERM, CS_SUCCEED, 2, "1\0\xA5"s},
      {comn_bittochar, CS_TYPE_CHAR, 1, CS_DFMT_NULLTERM, CS_CONV_OVERFLOW, 1, "\0"s},
      {comn_bittochar, CS_TYPE_CHAR, 0, 0, CS_CONV_OVERFLOW, 1, ""},
      {comn_bittochar, CS_TYPE_CHAR, 2, CS_DFMT_PADBLANK | CS_DFMT_PADNULL, CS_CONV_PADCONFLICT, 1,
       "1\xA5"},
      {comn_bittobin, CS_TYPE_IMAGE, 3, CS_DFMT_PADNULL, CS_SUCCEED, 3, "\1\0\0"s},
      {comn_bittobin, CS_TYPE_LONGBINARY, 3, 0, CS_SUCCEED, 1, "\1\xA5\xA5"},
      {comn_bittobin, CS_TYPE_BINARY, 0, 0, CS_SUCCEED, 1, ""},
  };
  for (const Row &row : rows) {
    Conversion convert(row.function, make_format(CS_TYPE_BIT, 1),
                       make_format(row.code, row.maxlength, row.format));
    GuardedBuffer dest(static_cast<size_t>(row.maxlength));
    const CS_BIT one = 1;
    EXPECT_EQ(convert(&one, dest.data()), row.status) << row.maxlength << ", " << row.format;
    EXPECT_EQ(convert.destlen, row.destlen);
    EXPECT_EQ(dest.contents(), row.bytes);
  }
}

TEST(Bit, Checks) {
  for (const Member &member : members) {
    SCOPED_TRACE(member.destination);
    zrvtest::expect_null_checks("com_bit.cpp", member.function, make_format(CS_TYPE_BIT, 1),
                                make_format(member.code, 1));
    const CS_BIT one = 1;
    GuardedBuffer dest(sizeof(CS_VARCHAR));
    Conversion convert = conversion_of(member);
    convert.srcfmt.datatype = CS_TYPE_TINYINT;
    EXPECT_ASSERTION("com_bit.cpp", CS_FAIL, convert(&one, dest.data()));
    convert = conversion_of(member);
    convert.destfmt.datatype = CS_TYPE_MONEY;
    EXPECT_ASSERTION("com_bit.cpp", CS_FAIL, convert(&one, dest.data()));
    EXPECT_TRUE(dest.is_untouched());
  }
}
