// Default values: the built-in table, a context's copies of it, user defaults, and the conversions
// from void.
#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "zrvcomn/numeric.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::AllocationProbe;
using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::TestContext;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

// The size of a locator grows with the pointers in it; all other sizes are the same everywhere.
constexpr CS_INT locator_size = sizeof(void *) == 4 ? 32 : 48;

struct Default {
  const void *entity;
  CS_INT size;
  CS_INT padtype;
  std::string start; // the first bytes; the rest is zero
};

// Row 1 (binary) and row 2 (longchar) hold one another's kind of entity, rows 18 and 19 too, and
// rows 13 and 15 hold 8 bytes for types of 4: all deliberate.
const Default defaults[CS_TYPE_COUNT] = {
    {Comp_CS_CHAR, 0, COM_PAD_CHAR, ""},                                // 0 char
    {Comp_CS_LONGCHAR, 0, COM_PAD_CHAR, ""},                            // 1 binary
    {Comp_CS_BINARY, 0, COM_PAD_BIN, ""},                               // 2 longchar
    {Comp_CS_LONGBINARY, 0, COM_PAD_BIN, ""},                           // 3 longbinary
    {Comp_CS_TEXT, 0, COM_PAD_CHAR, ""},                                // 4 text
    {Comp_CS_IMAGE, 0, COM_PAD_BIN, ""},                                // 5 image
    {Comv_CS_TINYINT, 1, COM_PAD_NONE, ""},                             // 6 tinyint
    {Comv_CS_SMALLINT, 2, COM_PAD_NONE, ""},                            // 7 smallint
    {Comv_CS_INT, 4, COM_PAD_NONE, ""},                                 // 8 int
    {Comv_CS_REAL, 4, COM_PAD_NONE, ""},                                // 9 real
    {Comv_CS_FLOAT, 8, COM_PAD_NONE, ""},                               // 10 float
    {Comv_CS_BIT, 1, COM_PAD_NONE, ""},                                 // 11 bit
    {Comv_CS_DATETIME, 8, COM_PAD_NONE, ""},                            // 12 datetime
    {Comv_CS_DATETIME4, 8, COM_PAD_NONE, ""},                           // 13 datetime4
    {Comv_CS_MONEY, 8, COM_PAD_NONE, ""},                               // 14 money
    {Comv_CS_MONEY4, 8, COM_PAD_NONE, ""},                              // 15 money4
    {&Comv_CS_NUMERIC, 35, COM_PAD_NONE, "\x12"},                       // 16 numeric
    {&Comv_CS_DECIMAL, 35, COM_PAD_NONE, "\x12"},                       // 17 decimal
    {&Comv_CS_VARBINARY, 258, COM_PAD_NONE, ""},                        // 18 varchar
    {&Comv_CS_VARCHAR, 258, COM_PAD_NONE, ""},                          // 19 varbinary
    {Comv_CS_LONG, 4, COM_PAD_NONE, ""},                                // 20 long
    {Comp_CS_SENSITIVITY, 0, COM_PAD_CHAR, ""},                         // 21 sensitivity
    {Comp_CS_BOUNDARY, 0, COM_PAD_CHAR, ""},                            // 22 boundary
    {Comv_CS_VOID, 4, COM_PAD_NONE, ""},                                // 23 void
    {Comv_CS_USHORT, 2, COM_PAD_NONE, ""},                              // 24 ushort
    {Comp_CS_UNICHAR, 1, COM_PAD_UNICHAR, ""},                          // 25 unichar
    {Comv_CS_BLOB, 4, COM_PAD_NONE, ""},                                // 26 blob
    {Comv_CS_DATE, 4, COM_PAD_NONE, ""},                                // 27 date
    {Comv_CS_TIME, 4, COM_PAD_NONE, ""},                                // 28 time
    {Comp_CS_UNITEXT, 1, COM_PAD_UNICHAR, ""},                          // 29 unitext
    {Comv_CS_BIGINT, 8, COM_PAD_NONE, ""},                              // 30 bigint
    {Comv_CS_USMALLINT, 2, COM_PAD_NONE, ""},                           // 31 usmallint
    {Comv_CS_UINT, 4, COM_PAD_NONE, ""},                                // 32 uint
    {Comv_CS_UBIGINT, 8, COM_PAD_NONE, ""},                             // 33 ubigint
    {Comp_CS_XML, 0, COM_PAD_CHAR, ""},                                 // 34 xml
    {Comv_CS_BIGDATETIME, 8, COM_PAD_NONE, ""},                         // 35 bigdatetime
    {Comv_CS_BIGTIME, 8, COM_PAD_NONE, ""},                             // 36 bigtime
    {&Comv_CS_LOCATOR, locator_size, COM_PAD_NONE, "\xF5\xFC\xFF\xFF"}, // 37 to 39: -779
    {&Comv_CS_LOCATOR, locator_size, COM_PAD_NONE, "\xF5\xFC\xFF\xFF"},
    {&Comv_CS_LOCATOR, locator_size, COM_PAD_NONE, "\xF5\xFC\xFF\xFF"},
};

std::string default_bytes(CS_INT type) {
  std::string bytes = defaults[type].start;
  bytes.resize(static_cast<size_t>(defaults[type].size), '\0');
  return bytes;
}

bool is_numeric(CS_INT type) {
  return type == CS_TYPE_NUMERIC || type == CS_TYPE_DECIMAL;
}

std::string bytes_of(const CsDefVal &value) {
  return {static_cast<const char *>(value.dventity), static_cast<size_t>(value.dvsize)};
}

// What com_null_get delivers into a buffer of `room` bytes, which is one of `destlen` bytes unless
// it says otherwise. The guarded buffer fails the test for a byte written outside it.
struct Delivered {
  CS_RETCODE status;
  CS_INT length;
  std::string bytes; // '\xA5' is a byte that was not written
};

Delivered get(CS_CONTEXT *context, CS_DATAFMT format, CS_INT destlen, CS_INT room = -1) {
  GuardedBuffer buffer(static_cast<size_t>(std::max(room < 0 ? destlen : room, 0)), 1);
  CS_INT length = Conversion::untouched_length;
  const CS_RETCODE status = com_null_get(context, &format, buffer.data(), destlen, &length);
  return {status, length, buffer.contents()};
}

CS_RETCODE set(CS_CONTEXT *context, CS_INT type, const std::string &bytes) {
  return com_null_set(context, type, const_cast<char *>(bytes.data()),
                      static_cast<CS_INT>(bytes.size()));
}

// The types of the user defaults in their order.
std::string user_list(const CS_CONTEXT &context) {
  std::ostringstream text;
  for (const CsUsrNull *record = context.ctxusrnulls; record != nullptr; record = record->nextnull)
    text << record->dttype << ' ';
  return text.str();
}

} // namespace

TEST(NullValues, EveryRowOfTheTable) {
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type) {
    SCOPED_TRACE(type);
    EXPECT_EQ(Comv_values[type].dventity, defaults[type].entity);
    EXPECT_EQ(Comv_values[type].dvsize, defaults[type].size);
    EXPECT_EQ(Comv_values[type].dvpadtype, defaults[type].padtype);
    EXPECT_EQ(bytes_of(Comv_values[type]), default_bytes(type));
  }
}

// A row of the length table is one more than the bytes of 10 to the precision minus 1. The entry
// for precision 10 is 6, as that rule gives.
TEST(NullValues, LengthOfANumeric) {
  const struct {
    int precision, length;
  } rows[] = {{0, 2},   {1, 2},   {2, 2},   {3, 3},   {4, 3},   {5, 4},   {6, 4},
              {7, 4},   {8, 5},   {9, 5},   {10, 6},  {12, 6},  {13, 7},  {14, 7},
              {15, 8},  {16, 8},  {17, 9},  {19, 9},  {20, 10}, {21, 10}, {22, 11},
              {38, 17}, {39, 18}, {74, 32}, {75, 33}, {76, 33}, {77, 33}};
  for (const auto &row : rows)
    EXPECT_EQ(Com__Nume_Prec_To_Len[row.precision], row.length) << row.precision;
  // All rows, with the nines added up byte by byte.
  std::string nines(33, '\0'); // most significant byte first
  for (int precision = 0; precision <= 77; ++precision) {
    const size_t first = nines.find_first_not_of('\0');
    const size_t bytes = first == std::string::npos ? 1 : nines.size() - first;
    EXPECT_EQ(Com__Nume_Prec_To_Len[precision], bytes + 1) << precision;
    int carry = 9;
    for (size_t i = nines.size(); i-- > 0;) {
      carry += static_cast<unsigned char>(nines[i]) * 10;
      nines[i] = static_cast<char>(carry % 256);
      carry /= 256;
    }
  }
}

TEST(NullInit, CopiesEveryRow) {
  CS_CONTEXT context{};
  AllocationProbe probe;
  ASSERT_EQ(com_null_init(&context), CS_SUCCEED);
  EXPECT_EQ(probe.allocations(), 41U); // the table and the bytes of each row, an empty one too
  EXPECT_EQ(context.ctxnulls.nulldim, 40);
  EXPECT_EQ(context.ctxusrnulls, nullptr);
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type) {
    SCOPED_TRACE(type);
    const CsDefVal &value = context.ctxnulls.nullvals[type];
    ASSERT_NE(value.dventity, nullptr);
    EXPECT_NE(value.dventity, Comv_values[type].dventity);
    EXPECT_EQ(value.dvsize, defaults[type].size);
    EXPECT_EQ(value.dvpadtype, defaults[type].padtype);
    EXPECT_EQ(bytes_of(value), default_bytes(type));
  }
  ASSERT_EQ(set(&context, 40, "user"), CS_SUCCEED);
  EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxnulls.nullvals, nullptr);
  EXPECT_EQ(context.ctxnulls.nulldim, 0);
  EXPECT_EQ(context.ctxusrnulls, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
}

// A context may come from anywhere, so nothing that its slots held before is read or released.
TEST(NullInit, ReadsNothingThatTheContextHeld) {
  CS_CONTEXT context;
  std::memset(&context, 0x5A, sizeof context);
  AllocationProbe probe;
  ASSERT_EQ(com_null_init(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxnulls.nulldim, 40);
  EXPECT_EQ(context.ctxusrnulls, nullptr);
  EXPECT_EQ(get(&context, make_format(40, 4), 4).length, 0);
  EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// A context whose start failed is torn down like any other, also one that held rubbish before; then
// it starts anew.
TEST(NullInit, EachAllocationFails) {
  for (const int before : {0, 0x5A}) {
    CS_CONTEXT context;
    const size_t failed =
        zrvtest::fail_each_allocation([&] { std::memset(&context, before, sizeof context); },
                                      [&] {
                                        const CS_RETCODE status = com_null_init(&context);
                                        if (status == CS_SUCCEED)
                                          return false;
                                        EXPECT_EQ(status, CS_MEM_ERROR);
                                        EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
                                        return true;
                                      },
                                      [&] { EXPECT_EQ(com_null_free(&context), CS_SUCCEED); });
    EXPECT_EQ(failed, 2U * 41U);
  }
}

// Without the release in between the second start builds anew, and what the first made is lost.
TEST(NullInit, ASecondStartBuildsAnew) {
  CS_CONTEXT context{};
  AllocationProbe probe;
  probe.fail(3);
  ASSERT_EQ(com_null_init(&context), CS_MEM_ERROR);
  CsDefVal *const first = context.ctxnulls.nullvals;
  ASSERT_EQ(com_null_init(&context), CS_SUCCEED);
  EXPECT_NE(context.ctxnulls.nullvals, first);
  EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 2U); // the first table and the bytes of its first row
  comn_free(first[0].dventity);
  comn_free(first);
}

// Without pads, into more room than needed, exactly enough, and every smaller one down to none.
TEST(NullGet, EveryTypeIntoEveryRoom) {
  TestContext context;
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type)
    for (CS_INT destlen = -1; destlen <= defaults[type].size + 2; ++destlen) {
      CS_DATAFMT format = make_format(type, 1000);
      if (is_numeric(type)) {
        format.precision = 77;
        format.scale = 3;
      }
      const Delivered result = get(context.get(), format, destlen);
      const CS_INT length = std::min(std::max(destlen, 0), defaults[type].size);
      std::string expected = default_bytes(type).substr(0, static_cast<size_t>(length));
      if (is_numeric(type) && length > 0)
        expected[0] = 77;
      if (is_numeric(type) && length > 1)
        expected[1] = 3;
      expected.resize(static_cast<size_t>(std::max(destlen, 0)),
                      static_cast<char>(GuardedBuffer::filler));
      EXPECT_EQ(result.status, CS_SUCCEED) << type << ' ' << destlen;
      EXPECT_EQ(result.length, length) << type << ' ' << destlen;
      EXPECT_EQ(result.bytes, expected) << type << ' ' << destlen;
    }
}

TEST(NullGet, PrecisionAndScaleOfANumeric) {
  struct Row {
    CS_INT precision, scale, destlen, length;
    std::string start; // the rest of the result is zero
  };
  const Row rows[] = {
      {1, 0, 35, 4, "\x01\0"s},
      {2, 1, 35, 4, "\x02\x01"},
      {10, 2, 35, 8, "\x0A\x02"},
      {18, 0, 35, 11, "\x12\0"s},
      {38, 38, 35, 19, "\x26\x26"},
      {77, 77, 35, 35, "\x4D\x4D"},
      // of another precision the whole record is delivered, with the low bytes as they come
      {0, 0, 35, 35, "\0\0"s},
      {78, 78, 35, 35, "\x4E\x4E"},
      {-1, -1, 35, 35, "\xFF\xFF"},
      {CS_DFMT_FROMSOURCE, CS_DFMT_FROMSOURCE, 35, 35, "\xFE\xFE"},
      {256 + 5, 512 + 6, 35, 35, "\x05\x06"},
      {INT_MAX, INT_MIN, 35, 35, "\xFF\0"s},
      // cut to the room; not even the two bytes are written past it
      {10, 2, 8, 8, "\x0A\x02"},
      {10, 2, 7, 7, "\x0A\x02"},
      {10, 2, 2, 2, "\x0A\x02"},
      {10, 2, 1, 1, "\x0A"},
      {10, 2, 0, 0, ""},
      {10, 2, -1, 0, ""},
      {0, 2, 1, 1, "\0"s},
  };
  TestContext context;
  for (const CS_INT type : {CS_TYPE_NUMERIC, CS_TYPE_DECIMAL})
    for (const Row &row : rows) {
      SCOPED_TRACE(testing::Message() << "precision " << row.precision << " scale " << row.scale
                                      << " destlen " << row.destlen);
      CS_DATAFMT format = make_format(type, 35, P | B | N);
      format.precision = row.precision;
      format.scale = row.scale;
      const Delivered result = get(context.get(), format, row.destlen, 35);
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.length, row.length);
      std::string expected = row.start;
      expected.resize(static_cast<size_t>(row.length), '\0');
      expected.resize(35, static_cast<char>(GuardedBuffer::filler));
      EXPECT_EQ(result.bytes, expected);
    }
}

// A numeric default of a user's own length still fills the length that the precision asks for.
TEST(NullGet, ANumericDefaultOfAnotherSize) {
  TestContext context;
  CS_DATAFMT format = make_format(CS_TYPE_NUMERIC, 35);
  format.precision = 5;
  format.scale = 1;
  ASSERT_EQ(set(context.get(), CS_TYPE_NUMERIC, "\x09\x09\x01\x02"), CS_SUCCEED);
  EXPECT_EQ(get(context.get(), format, 35).bytes.substr(0, 6), "\x05\x01\x01\x02\0\0"s);
  EXPECT_EQ(get(context.get(), format, 35).length, 6);
  ASSERT_EQ(set(context.get(), CS_TYPE_NUMERIC, "\x09\x09\x01\x02\x03\x04\x05"), CS_SUCCEED);
  EXPECT_EQ(get(context.get(), format, 35).bytes.substr(0, 7), "\x05\x01\x01\x02\x03\x04\xA5");
}

TEST(NullGet, Pads) {
  struct Row {
    CS_INT type, format, maxlength, destlen;
    CS_RETCODE status;
    CS_INT length;
    std::string bytes;
  };
  const Row rows[] = {
      // text: blanks, NULs, a terminator, a conflict
      {CS_TYPE_CHAR, B, 5, 5, CS_SUCCEED, 5, "     "},
      {CS_TYPE_CHAR, B | N, 5, 5, CS_SUCCEED, 5, "    \0"s},
      {CS_TYPE_CHAR, P, 5, 5, CS_SUCCEED, 5, "\0\0\0\0\0"s},
      {CS_TYPE_CHAR, N, 5, 5, CS_SUCCEED, 1, "\0\xA5\xA5\xA5\xA5"s},
      {CS_TYPE_CHAR, P | B, 5, 5, CS_CONV_PADCONFLICT, 0, "\xA5\xA5\xA5\xA5\xA5"},
      {CS_TYPE_CHAR, N, 0, 0, CS_CONV_OVERFLOW, 0, ""},
      {CS_TYPE_CHAR, 0, -1, 5, CS_CONV_OVERFLOW, 0, "\xA5\xA5\xA5\xA5\xA5"},
      {CS_TYPE_TEXT, B, 3, 3, CS_SUCCEED, 3, "   "},
      {CS_TYPE_XML, B, 3, 3, CS_SUCCEED, 3, "   "},
      {CS_TYPE_SENSITIVITY, B, 3, 3, CS_SUCCEED, 3, "   "},
      {CS_TYPE_BOUNDARY, B, 3, 3, CS_SUCCEED, 3, "   "},
      // crosswise, deliberate: binary pads like text, longchar like binary
      {CS_TYPE_BINARY, B, 3, 3, CS_SUCCEED, 3, "   "},
      {CS_TYPE_BINARY, P | B, 3, 3, CS_CONV_PADCONFLICT, 0, "\xA5\xA5\xA5"},
      {CS_TYPE_LONGCHAR, B, 3, 3, CS_SUCCEED, 0, "\xA5\xA5\xA5"},
      {CS_TYPE_LONGCHAR, P | B, 3, 3, CS_SUCCEED, 3, "\0\0\0"s},
      {CS_TYPE_LONGBINARY, P, 3, 3, CS_SUCCEED, 3, "\0\0\0"s},
      {CS_TYPE_LONGBINARY, N | B, 3, 3, CS_SUCCEED, 0, "\xA5\xA5\xA5"},
      {CS_TYPE_IMAGE, P, 3, 3, CS_SUCCEED, 3, "\0\0\0"s},
      // the default of 16-bit text is one byte, and the units stand behind it
      {CS_TYPE_UNICHAR, 0, 6, 6, CS_SUCCEED, 1, "\0\xA5\xA5\xA5\xA5\xA5"s},
      {CS_TYPE_UNICHAR, B, 6, 6, CS_SUCCEED, 5, "\0 \0 \0\xA5"s},
      {CS_TYPE_UNITEXT, P, 7, 7, CS_SUCCEED, 7, "\0\0\0\0\0\0\0"s},
      {CS_TYPE_UNITEXT, N, 3, 3, CS_SUCCEED, 3, "\0\0\0"s},
      {CS_TYPE_UNITEXT, N, 2, 2, CS_CONV_OVERFLOW, 1, "\0\0"s},
      {CS_TYPE_UNITEXT, 0, 0, 0, CS_SUCCEED, 0, ""},
      // deliberate: `destlen` cuts the copy alone, and the pads fill up to `maxlength`
      {CS_TYPE_CHAR, B, 10, 4, CS_SUCCEED, 10, "          "},
      {CS_TYPE_CHAR, B | N, 6, 1, CS_SUCCEED, 6, "     \0"s},
      {CS_TYPE_CHAR, B, 4, 6, CS_SUCCEED, 4, "    \xA5\xA5"},
      {CS_TYPE_CHAR, N, 3, 0, CS_SUCCEED, 1, "\0\xA5\xA5"s},
      {CS_TYPE_CHAR, N, 3, -3, CS_SUCCEED, 1, "\0\xA5\xA5"s},
      {CS_TYPE_LONGBINARY, P, 10, 4, CS_SUCCEED, 10, "\0\0\0\0\0\0\0\0\0\0"s},
      {CS_TYPE_UNICHAR, B, 8, 2, CS_SUCCEED, 7, "\0 \0 \0 \0\xA5"s},
      {CS_TYPE_UNICHAR, N, 8, 2, CS_SUCCEED, 3, "\0\0\0\xA5\xA5\xA5\xA5\xA5"s},
      {CS_TYPE_UNICHAR, B, 4, 0, CS_SUCCEED, 4, " \0 \0"s},
      // fixed types are never padded
      {CS_TYPE_INT, P | B | N, 10, 10, CS_SUCCEED, 4, "\0\0\0\0\xA5\xA5\xA5\xA5\xA5\xA5"s},
  };
  TestContext context;
  for (const Row &row : rows) {
    SCOPED_TRACE(testing::Message()
                 << "type " << row.type << " format " << row.format << " maxlength "
                 << row.maxlength << " destlen " << row.destlen);
    const Delivered result = get(context.get(), make_format(row.type, row.maxlength, row.format),
                                 row.destlen, std::max(row.maxlength, row.destlen));
    EXPECT_EQ(result.status, row.status);
    EXPECT_EQ(result.length, row.length);
    EXPECT_EQ(result.bytes, row.bytes);
  }
}

TEST(NullGet, Checks) {
  TestContext context;
  CS_CONTEXT bare{};
  CS_DATAFMT format = make_format(CS_TYPE_INT, 4);
  GuardedBuffer dest(4);
  CS_INT length = Conversion::untouched_length;
  for (const auto function : {com_null_get, com__null_usr_get}) {
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              function(nullptr, &format, dest.data(), 4, &length));
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              function(context.get(), nullptr, dest.data(), 4, &length));
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              function(context.get(), &format, nullptr, 4, &length));
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              function(context.get(), &format, dest.data(), 4, nullptr));
  }
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                            com_null_get(&bare, &format, dest.data(), 4, &length));
  for (const CS_INT type : {-1, INT_MIN}) {
    format.datatype = type;
    EXPECT_ASSERTION("com_null.cpp", CS_FAIL,
                     com_null_get(context.get(), &format, dest.data(), 4, &length));
  }
  EXPECT_TRUE(dest.is_untouched());
  EXPECT_EQ(length, Conversion::untouched_length);
}

TEST(NullSet, KeepsACopyAndThePadType) {
  TestContext context, other;
  std::string value = "none";
  ASSERT_EQ(set(context.get(), CS_TYPE_CHAR, value), CS_SUCCEED);
  value.assign("????");
  const CsDefVal &row = context->ctxnulls.nullvals[CS_TYPE_CHAR];
  EXPECT_EQ(row.dvsize, 4);
  EXPECT_EQ(row.dvpadtype, COM_PAD_CHAR);
  const Delivered result = get(context.get(), make_format(CS_TYPE_CHAR, 6, B), 6);
  EXPECT_EQ(result.status, CS_SUCCEED);
  EXPECT_EQ(result.length, 6);
  EXPECT_EQ(result.bytes, "none  ");
  // Cut to the room, which leaves none for a terminator.
  const Delivered cut = get(context.get(), make_format(CS_TYPE_CHAR, 3, N), 3);
  EXPECT_EQ(cut.status, CS_CONV_OVERFLOW);
  EXPECT_EQ(cut.length, 3);
  EXPECT_EQ(cut.bytes, "no\0"s);
  // No other context sees it.
  EXPECT_EQ(get(other.get(), make_format(CS_TYPE_CHAR, 6), 6).length, 0);
}

TEST(NullSet, FromItsOwnOldValue) {
  TestContext context;
  ASSERT_EQ(set(context.get(), CS_TYPE_INT, "abcdef"), CS_SUCCEED);
  CsDefVal &row = context->ctxnulls.nullvals[CS_TYPE_INT];
  EXPECT_EQ(com_null_set(context.get(), CS_TYPE_INT, static_cast<char *>(row.dventity) + 1, 3),
            CS_SUCCEED);
  EXPECT_EQ(bytes_of(row), "bcd");
}

// Deliberate: a row of length 0 has no bytes, and its next use ends the process.
TEST(NullSet, LengthZeroMakesTheNextUseFatal) {
  TestContext context;
  for (const CS_INT type : {CS_TYPE_CHAR, CS_TYPE_INT}) {
    ASSERT_EQ(set(context.get(), type, ""), CS_SUCCEED);
    const CsDefVal &row = context->ctxnulls.nullvals[type];
    EXPECT_EQ(row.dventity, nullptr);
    EXPECT_EQ(row.dvsize, 0);
    GuardedBuffer dest(8);
    CS_INT length = Conversion::untouched_length;
    CS_DATAFMT format = make_format(type, 8, P);
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              com_null_get(context.get(), &format, dest.data(), 8, &length));
    EXPECT_TRUE(dest.is_untouched());
    EXPECT_EQ(length, Conversion::untouched_length);
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_reinstall(context.get(), type));
    EXPECT_EQ(row.dventity, nullptr);
    // Another value brings the row back to life.
    ASSERT_EQ(set(context.get(), type, "12"), CS_SUCCEED);
    EXPECT_EQ(com_null_reinstall(context.get(), type), CS_SUCCEED);
    EXPECT_EQ(bytes_of(row), default_bytes(type));
  }
}

TEST(NullSet, Checks) {
  TestContext context;
  CS_CONTEXT bare{};
  char value[] = "1234";
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_set(nullptr, 8, value, 4));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_set(context.get(), 8, nullptr, 4));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_set(context.get(), 8, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_set(context.get(), 40, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_set(&bare, 8, value, 4));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_set(context.get(), 8, value, -1));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_set(context.get(), 40, value, INT_MIN));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_set(context.get(), -1, value, 4));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_set(context.get(), INT_MIN, value, 0));
  EXPECT_EQ(bytes_of(context->ctxnulls.nullvals[8]), default_bytes(8));
  EXPECT_EQ(context->ctxusrnulls, nullptr);
}

TEST(NullReinstall, EveryType) {
  TestContext context;
  for (const size_t size : {size_t{1}, size_t{3}, size_t{35}, size_t{300}})
    for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type) {
      SCOPED_TRACE(testing::Message() << "type " << type << " size " << size);
      ASSERT_EQ(set(context.get(), type, std::string(size, 'x')), CS_SUCCEED);
      CsDefVal &row = context->ctxnulls.nullvals[type];
      row.dvpadtype = 99;
      const void *const block = row.dventity;
      const bool fits = static_cast<CS_INT>(size) >= defaults[type].size;
      AllocationProbe probe;
      EXPECT_EQ(com_null_reinstall(context.get(), type), CS_SUCCEED);
      // A larger block is used again as it is.
      EXPECT_EQ(probe.allocations(), fits ? 0U : 1U);
      if (fits) {
        EXPECT_EQ(row.dventity, block);
      }
      EXPECT_EQ(row.dvsize, defaults[type].size);
      EXPECT_EQ(row.dvpadtype, defaults[type].padtype);
      EXPECT_EQ(bytes_of(row), default_bytes(type));
    }
}

TEST(NullReinstall, Checks) {
  CS_CONTEXT bare{};
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_reinstall(nullptr, 8));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_reinstall(&bare, 8));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_reinstall(&bare, -1));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com_null_reinstall(&bare, INT_MIN));
}

TEST(NullAllocations, AFailedSetKeepsTheOldValue) {
  TestContext context;
  ASSERT_EQ(set(context.get(), CS_TYPE_INT, "old!"), CS_SUCCEED);
  ASSERT_EQ(set(context.get(), 41, "user"), CS_SUCCEED);
  for (const auto mode : {AllocationProbe::fail_once, AllocationProbe::fail_from_then_on}) {
    AllocationProbe probe;
    probe.fail(1, mode);
    EXPECT_EQ(set(context.get(), CS_TYPE_INT, "new value"), CS_MEM_ERROR);
    EXPECT_EQ(bytes_of(context->ctxnulls.nullvals[CS_TYPE_INT]), "old!");
    probe.fail(1, mode);
    EXPECT_EQ(set(context.get(), 41, "new value"), CS_MEM_ERROR);
    EXPECT_EQ(get(context.get(), make_format(41, 0), 10, 11).bytes.substr(0, 5), "user\0"s);
    // The record of a new type takes two blocks; neither is left behind.
    for (const size_t nth : {size_t{1}, size_t{2}}) {
      probe.fail(nth, mode);
      EXPECT_EQ(set(context.get(), 42, "new value"), CS_MEM_ERROR);
      EXPECT_EQ(user_list(*context.get()), "41 ");
      EXPECT_EQ(probe.live_blocks(), 0U);
    }
    probe.fail(1, mode);
    EXPECT_EQ(set(context.get(), 42, ""), CS_MEM_ERROR);
    EXPECT_EQ(user_list(*context.get()), "41 ");
  }
  EXPECT_EQ(set(context.get(), CS_TYPE_INT, "new value"), CS_SUCCEED);
  EXPECT_EQ(set(context.get(), 41, "new value"), CS_SUCCEED);
  EXPECT_EQ(set(context.get(), 42, "new value"), CS_SUCCEED);
}

TEST(NullAllocations, AFailedReinstallKeepsTheValue) {
  TestContext context;
  ASSERT_EQ(set(context.get(), CS_TYPE_FLOAT, "abc"), CS_SUCCEED);
  for (const auto mode : {AllocationProbe::fail_once, AllocationProbe::fail_from_then_on}) {
    AllocationProbe probe;
    probe.fail(1, mode);
    EXPECT_EQ(com_null_reinstall(context.get(), CS_TYPE_FLOAT), CS_MEM_ERROR);
    EXPECT_EQ(bytes_of(context->ctxnulls.nullvals[CS_TYPE_FLOAT]), "abc");
  }
  EXPECT_EQ(com_null_reinstall(context.get(), CS_TYPE_FLOAT), CS_SUCCEED);
}

// The NUL is written and counted, deliberately also when the value fills `destlen`: one byte past
// it. Nothing is written behind that byte.
TEST(UserDefaults, ATerminatorBehindTheValue) {
  TestContext context;
  ASSERT_EQ(set(context.get(), 40, "abc"), CS_SUCCEED);
  const struct {
    CS_INT destlen, length;
    std::string bytes;
  } rows[] = {
      {5, 4, "abc\0\xA5\xA5"s}, {4, 4, "abc\0\xA5"s}, {3, 4, "abc\0"s},
      {2, 3, "ab\0"s},          {1, 2, "a\0"s},       {0, 1, "\0"s},
  };
  for (const auto &row : rows)
    for (const CS_INT bits : {0, P | B | N}) {
      const Delivered result =
          get(context.get(), make_format(40, 1, bits), row.destlen, row.destlen + 1);
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.length, row.length) << row.destlen;
      EXPECT_EQ(result.bytes, row.bytes) << row.destlen;
    }
  const Delivered negative = get(context.get(), make_format(40, 1), -7, 1);
  EXPECT_EQ(negative.length, 1);
  EXPECT_EQ(negative.bytes, "\0"s);
}

TEST(UserDefaults, AMissGivesLengthZero) {
  TestContext context;
  for (const CS_INT type : {40, 1000, INT_MAX}) {
    const Delivered result = get(context.get(), make_format(type, 4, P), 4);
    EXPECT_EQ(result.status, CS_SUCCEED);
    EXPECT_EQ(result.length, 0);
    EXPECT_EQ(result.bytes, "\xA5\xA5\xA5\xA5");
  }
}

TEST(UserDefaults, LengthZero) {
  TestContext context;
  ASSERT_EQ(set(context.get(), 40, ""), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrnulls->dventity, nullptr);
  const Delivered result = get(context.get(), make_format(40, 4), 4);
  EXPECT_EQ(result.status, CS_SUCCEED);
  EXPECT_EQ(result.length, 1);
  EXPECT_EQ(result.bytes, "\0\xA5\xA5\xA5"s);
  // Reinstalling the default of length 0 removes it: from then on it is a miss.
  EXPECT_EQ(com_null_reinstall(context.get(), 40), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrnulls, nullptr);
  EXPECT_EQ(get(context.get(), make_format(40, 4), 4).length, 0);
  // From something to nothing and back.
  ASSERT_EQ(set(context.get(), 40, "abc"), CS_SUCCEED);
  ASSERT_EQ(set(context.get(), 40, ""), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrnulls->dventity, nullptr);
  EXPECT_EQ(context->ctxusrnulls->dvsize, 0);
}

TEST(UserDefaults, NewRecordsComeFirstAndLeaveFromAnywhere) {
  TestContext context;
  const std::string value = "v";
  for (const CS_INT type : {40, 41, 42, 43})
    ASSERT_EQ(set(context.get(), type, value), CS_SUCCEED);
  EXPECT_EQ(user_list(*context.get()), "43 42 41 40 ");
  // A hit changes its record in place.
  CsUsrNull *const record = context->ctxusrnulls->nextnull;
  ASSERT_EQ(set(context.get(), 42, "longer"), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrnulls->nextnull, record);
  EXPECT_EQ(record->dvsize, 6);
  EXPECT_EQ(user_list(*context.get()), "43 42 41 40 ");

  EXPECT_EQ(com_null_reinstall(context.get(), 42), CS_SUCCEED); // from the middle
  EXPECT_EQ(user_list(*context.get()), "43 41 40 ");
  EXPECT_EQ(com_null_reinstall(context.get(), 40), CS_SUCCEED); // the last
  EXPECT_EQ(user_list(*context.get()), "43 41 ");
  EXPECT_EQ(com_null_reinstall(context.get(), 43), CS_SUCCEED); // the first
  EXPECT_EQ(user_list(*context.get()), "41 ");
  EXPECT_EQ(com_null_reinstall(context.get(), 43), CS_SUCCEED); // a miss
  EXPECT_EQ(com_null_reinstall(context.get(), 41), CS_SUCCEED);
  EXPECT_EQ(context->ctxusrnulls, nullptr);
  EXPECT_EQ(get(context.get(), make_format(41, 4), 4).length, 0);
}

TEST(UserDefaults, NothingIsLeaked) {
  CS_CONTEXT context{};
  AllocationProbe probe;
  for (const CS_INT type : {40, 41, 42, 41, 40})
    ASSERT_EQ(set(&context, type, "value"), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 6U); // three records and their bytes
  EXPECT_EQ(com_null_reinstall(&context, 41), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 4U);
  EXPECT_EQ(com__null_usr_free(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(context.ctxusrnulls, nullptr);
  EXPECT_EQ(com__null_usr_free(&context), CS_SUCCEED);
}

TEST(NullChecks, NullContext) {
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_init(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com_null_free(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com__null_usr_free(nullptr));
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com__null_usr_reinstall(nullptr, 40));
  char value[] = "v";
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL, com__null_usr_set(nullptr, 40, value, 1));
}

TEST(VoidToAny, Examples) {
  TestContext context;
  const auto convert = [&](CS_DATAFMT format, GuardedBuffer &dest, CS_INT &length) {
    // The source and its format are not looked at.
    return com_conv_func(context.get(), CS_TYPE_VOID, format.datatype)(
        context.get(), nullptr, nullptr, &format, dest.data(), &length);
  };
  {
    GuardedBuffer dest(35);
    CS_INT length = 0;
    CS_DATAFMT format = make_format(CS_TYPE_NUMERIC, 35);
    format.precision = 10;
    format.scale = 2;
    EXPECT_EQ(convert(format, dest, length), CS_SUCCEED);
    EXPECT_EQ(length, 8);
    EXPECT_EQ(dest.contents(9), "\x0A\x02\0\0\0\0\0\0\xA5"s);
  }
  {
    GuardedBuffer dest(5);
    CS_INT length = 0;
    EXPECT_EQ(convert(make_format(CS_TYPE_CHAR, 5, B), dest, length), CS_SUCCEED);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(dest.contents(), "     ");
  }
  {
    GuardedBuffer dest(6);
    CS_INT length = 0;
    // The width of the type counts, not maxlength.
    EXPECT_EQ(convert(make_format(CS_TYPE_INT, 1), dest, length), CS_SUCCEED);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(dest.contents(), "\0\0\0\0\xA5\xA5"s);
  }
}

// The oversized rows are cut to the width of their type.
TEST(VoidToAny, EveryTypeByItsWidth) {
  TestContext context;
  for (CS_INT type = 0; type <= CS_TYPE_BIGTIME; ++type) {
    if (type == CS_TYPE_VOID)
      continue;
    constexpr CS_INT maxlength = 3; // counts for the types without a width
    const CS_INT width = comn_typelen(type, maxlength);
    CS_DATAFMT format = make_format(type, maxlength);
    GuardedBuffer dest(static_cast<size_t>(width), 1);
    CS_INT length = -1;
    EXPECT_EQ(comn_voidtoany(context.get(), nullptr, nullptr, &format, dest.data(), &length),
              CS_SUCCEED);
    EXPECT_EQ(length, std::min(width, defaults[type].size)) << type;
    EXPECT_TRUE(dest.is_untouched(static_cast<size_t>(length))) << type;
  }
}

// The bits of the format reach the pads through the matrix, and the room is maxlength for every text
// type, those with a width of their own too.
TEST(VoidToAny, FormatBitsForEveryText) {
  struct Row {
    CS_INT format;
    CS_RETCODE status;
    CS_INT length;
    std::string bytes;
  };
  const Row of_text[] = {
      {0, CS_SUCCEED, 0, "\xA5\xA5\xA5\xA5\xA5\xA5"},
      {N, CS_SUCCEED, 1, "\0\xA5\xA5\xA5\xA5\xA5"s},
      {P, CS_SUCCEED, 6, "\0\0\0\0\0\0"s},
      {B, CS_SUCCEED, 6, "      "},
      {B | N, CS_SUCCEED, 6, "     \0"s},
      {P | B, CS_CONV_PADCONFLICT, 0, "\xA5\xA5\xA5\xA5\xA5\xA5"},
  };
  // The default of 16-bit text is one byte, and the units stand behind it.
  const Row of_unitext[] = {
      {0, CS_SUCCEED, 1, "\0\xA5\xA5\xA5\xA5\xA5"s},
      {N, CS_SUCCEED, 3, "\0\0\0\xA5\xA5\xA5"s},
      {P, CS_SUCCEED, 5, "\0\0\0\0\0\xA5"s},
      {B, CS_SUCCEED, 5, "\0 \0 \0\xA5"s},
      {B | N, CS_SUCCEED, 5, "\0 \0\0\0\xA5"s},
      {P | B, CS_CONV_PADCONFLICT, 1, "\0\xA5\xA5\xA5\xA5\xA5"s},
  };
  TestContext context;
  const auto expect_rows = [&](CS_INT type, const auto &rows) {
    for (const Row &row : rows) {
      SCOPED_TRACE(testing::Message() << "type " << type << " format " << row.format);
      CS_DATAFMT format = make_format(type, 6, row.format);
      GuardedBuffer dest(6);
      CS_INT length = -1;
      EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_VOID, type)(context.get(), nullptr, nullptr,
                                                                 &format, dest.data(), &length),
                row.status);
      EXPECT_EQ(length, row.length);
      EXPECT_EQ(dest.contents(), row.bytes);
    }
  };
  for (const CS_INT type :
       {CS_TYPE_CHAR, CS_TYPE_TEXT, CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY, CS_TYPE_XML})
    expect_rows(type, of_text);
  for (const CS_INT type : {CS_TYPE_UNICHAR, CS_TYPE_UNITEXT})
    expect_rows(type, of_unitext);
}

// Deliberate: unichar has the width of a unit, whatever the format says, and its default a byte of it.
TEST(VoidToAny, ADefaultOf16BitTextLooksAtNoRoom) {
  TestContext context;
  for (const auto &[type, length, bytes] :
       {std::tuple{CS_TYPE_UNICHAR, 1, "\0\xA5"s}, {CS_TYPE_UNITEXT, 0, "\xA5\xA5"s}}) {
    CS_DATAFMT format = make_format(type, 0);
    GuardedBuffer dest(2);
    CS_INT outlen = -1;
    EXPECT_EQ(comn_voidtoany(context.get(), nullptr, nullptr, &format, dest.data(), &outlen),
              length == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW);
    EXPECT_EQ(outlen, length);
    EXPECT_EQ(dest.contents(), bytes);
  }
}

TEST(VoidToAny, AUserType) {
  TestContext context;
  ASSERT_EQ(set(context.get(), 40, "abcdef"), CS_SUCCEED);
  CS_DATAFMT format = make_format(40, 3);
  GuardedBuffer dest(4); // one byte more than maxlength
  CS_INT length = -1;
  EXPECT_EQ(comn_voidtoany(context.get(), nullptr, nullptr, &format, dest.data(), &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(dest.contents(), "abc\0"s);
}

TEST(VoidToAny, Checks) {
  TestContext context;
  CS_DATAFMT format = make_format(CS_TYPE_INT, 4);
  GuardedBuffer dest(4);
  CS_INT length = 0;
  const auto check = [&](CS_CONTEXT *c, CS_DATAFMT *df, void *d, CS_INT *l) {
    EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                              comn_voidtoany(c, nullptr, nullptr, df, d, l));
  };
  check(nullptr, &format, dest.data(), &length);
  check(context.get(), nullptr, dest.data(), &length);
  check(context.get(), &format, nullptr, &length);
  check(context.get(), &format, dest.data(), nullptr);
  EXPECT_TRUE(dest.is_untouched());
}

TEST(VoidToVoid, DoesNothing) {
  CS_INT length = Conversion::untouched_length;
  EXPECT_EQ(comn_voidtovoid(nullptr, nullptr, nullptr, nullptr, nullptr, &length), CS_SUCCEED);
  EXPECT_EQ(length, Conversion::untouched_length);
  EXPECT_EQ(comn_voidtovoid(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), CS_SUCCEED);
}

// The internal operation checks what its public sister has checked already, and stores nothing.
TEST(UserNullSet, ChecksItsArguments) {
  TestContext context;
  CS_BYTE value[] = {1, 2};
  EXPECT_NULL_POINTER_CHECK("com_null.cpp", CS_FAIL,
                            com__null_usr_set(context.get(), 40, nullptr, 1));
  EXPECT_ASSERTION("com_null.cpp", CS_FAIL, com__null_usr_set(context.get(), 40, value, -1));
  EXPECT_EQ(context->ctxusrnulls, nullptr);
  EXPECT_EQ(com__null_usr_set(context.get(), 40, value, 0), CS_SUCCEED);
  ASSERT_NE(context->ctxusrnulls, nullptr);
  EXPECT_EQ(context->ctxusrnulls->dvsize, 0);
}
