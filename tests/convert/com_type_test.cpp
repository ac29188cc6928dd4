// The widths of the datatypes.
#include <climits>

#include <gtest/gtest.h>

#include "zrvcomn/comnlib.h"

namespace {

constexpr CS_INT len = 1234; // the length argument, returned for a type without a width
constexpr CS_INT widths[CS_TYPE_COUNT] = {
    len, len, len, len, len, len, // char, binary, longchar, longbinary, text, image
    1,   2,   4,   4,   8,   1,   // tinyint, smallint, int, real, float, bit
    8,   4,   8,   4,   35,  35,  // datetime, datetime4, money, money4, numeric, decimal
    258, 258, len, len, len, len, // varchar, varbinary, long, sensitivity, boundary, void
    len, 2,   len, 4,   4,   len, // ushort, unichar, blob, date, time, unitext
    8,   2,   4,   8,   len, 8,   // bigint, usmallint, uint, ubigint, xml, bigdatetime
    8,   len, len, len,           // bigtime, the three locators
};

} // namespace

// 2 for unichar and the argument for ushort are deliberate, however inconsistent they look.
TEST(TypeLen, EveryBuiltInType) {
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type)
    EXPECT_EQ(comn_typelen(type, len), widths[type]) << "type " << type;
}

TEST(TypeLen, OtherCodesGiveTheArgument) {
  for (const CS_INT type : {CS_TYPE_COUNT, CS_TYPE_COUNT + 1, 100, INT_MAX, -1, -2, INT_MIN})
    for (const CS_INT argument : {12, 0, -9, INT_MAX})
      EXPECT_EQ(comn_typelen(type, argument), argument) << "type " << type;
}
