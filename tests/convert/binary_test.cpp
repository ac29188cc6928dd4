// Conversions from binary: bytes on their own and bytes in a record, side by side.
#include <random>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "pad_reference.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using namespace std::string_literals;

namespace {

enum Family { bin, varbin };
constexpr Family families[] = {bin, varbin};

// What a family returns for a source that had to be cut. Deliberate: the two differ everywhere.
constexpr CS_RETCODE cut_status[] = {CS_CONV_TRUNCATED, CS_CONV_OVERFLOW};
const char *const units[] = {"com_bin.cpp", "com_varbin.cpp"};

struct Member {
  const char *destination;
  CS_INT code;
  CS_CONV_FUNC function[2]; // by family
  CS_INT width;             // of a fixed type, else 0
};

#define ZRVTEST_BINARY_MEMBER(destination, code, width)                                            \
  { #destination, code, {comn_binto##destination, comn_varbinto##destination }, width }

const Member fixed_members[] = {
    ZRVTEST_BINARY_MEMBER(i1, CS_TYPE_TINYINT, 1),
    ZRVTEST_BINARY_MEMBER(i2, CS_TYPE_SMALLINT, 2),
    ZRVTEST_BINARY_MEMBER(i4, CS_TYPE_INT, 4),
    ZRVTEST_BINARY_MEMBER(i8, CS_TYPE_BIGINT, 8),
    ZRVTEST_BINARY_MEMBER(ui2, CS_TYPE_USMALLINT, 2),
    ZRVTEST_BINARY_MEMBER(ui4, CS_TYPE_UINT, 4),
    ZRVTEST_BINARY_MEMBER(ui8, CS_TYPE_UBIGINT, 8),
    ZRVTEST_BINARY_MEMBER(flt4, CS_TYPE_REAL, 4),
    ZRVTEST_BINARY_MEMBER(flt8, CS_TYPE_FLOAT, 8),
    ZRVTEST_BINARY_MEMBER(money, CS_TYPE_MONEY, 8),
    ZRVTEST_BINARY_MEMBER(mny4, CS_TYPE_MONEY4, 4),
    ZRVTEST_BINARY_MEMBER(datetime, CS_TYPE_DATETIME, 8),
    ZRVTEST_BINARY_MEMBER(date4, CS_TYPE_DATETIME4, 4),
    ZRVTEST_BINARY_MEMBER(bigdatetime, CS_TYPE_BIGDATETIME, 8),
    ZRVTEST_BINARY_MEMBER(bigtime, CS_TYPE_BIGTIME, 8),
    ZRVTEST_BINARY_MEMBER(datea, CS_TYPE_DATE, 4),
    ZRVTEST_BINARY_MEMBER(timea, CS_TYPE_TIME, 4),
};
const Member num = ZRVTEST_BINARY_MEMBER(num, CS_TYPE_NUMERIC, 33);
const Member bit = ZRVTEST_BINARY_MEMBER(bit, CS_TYPE_BIT, 0);
const Member text = ZRVTEST_BINARY_MEMBER(char, CS_TYPE_CHAR, 0);
const Member varchar = ZRVTEST_BINARY_MEMBER(varchar, CS_TYPE_VARCHAR, 0);
const Member binary = ZRVTEST_BINARY_MEMBER(bin, CS_TYPE_BINARY, 0);
const Member varbinary = ZRVTEST_BINARY_MEMBER(varbin, CS_TYPE_VARBINARY, 0);

CS_DATAFMT source_format(Family family, CS_INT length) {
  // The length of a record stands in it; what its format says is not looked at.
  return family == bin ? make_format(CS_TYPE_BINARY, length) : make_format(CS_TYPE_VARBINARY, -7);
}

// The bytes as the family's source, with nothing behind them for `bin`.
std::string source_of(Family family, const std::string &bytes, CS_INT length) {
  if (family == bin)
    return bytes;
  const auto stored = static_cast<CS_SMALLINT>(length);
  return std::string(reinterpret_cast<const char *>(&stored), sizeof stored) + bytes +
         std::string(256 - bytes.size(), '\xEE');
}

struct Converted {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes;
};

template <class Call>
Converted run(Family family, const std::string &bytes, CS_INT length, size_t room, Call call) {
  const std::string source = source_of(family, bytes, length);
  GuardedBuffer from(source.size(), 1), dest(room, 1);
  std::memcpy(from.data(), source.data(), source.size());
  CS_DATAFMT srcfmt = source_format(family, length);
  CS_INT destlen = Conversion::untouched_length;
  const CS_RETCODE status = call(&srcfmt, from.data(), dest.data(), &destlen);
  return {status, destlen, dest.contents()};
}

Converted convert(Family family, const Member &member, const std::string &bytes, size_t room,
                  CS_DATAFMT destfmt) {
  return run(family, bytes, static_cast<CS_INT>(bytes.size()), room,
             [&](CS_DATAFMT *srcfmt, CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
               CS_CONTEXT context{};
               return member.function[family](&context, srcfmt, src, &destfmt, dest, destlen);
             });
}

Converted to_fixed(Family family, const std::string &bytes, CS_INT length, CS_INT width,
                   size_t room) {
  return run(family, bytes, length, room,
             [&](CS_DATAFMT *srcfmt, CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
               CS_CONTEXT context{};
               CS_DATAFMT destfmt = make_format(-1, -1);
               return (family == bin ? comn_bintofixed : comn_varbintofixed)(
                   &context, srcfmt, src, &destfmt, dest, destlen, width);
             });
}

std::string some_bytes(size_t count) {
  std::string bytes;
  for (size_t i = 0; i < count; ++i)
    bytes += static_cast<char>(i * 37 + 1);
  return bytes;
}

std::string hex(const std::string &bytes) {
  std::string digits;
  for (const char c : bytes) {
    const auto value = static_cast<unsigned char>(c);
    digits += "0123456789abcdef"[value >> 4];
    digits += "0123456789abcdef"[value & 15];
  }
  return digits;
}

} // namespace

TEST(Binary, ToFixedTypes) {
  for (const Family family : families)
    for (const Member &member : fixed_members) {
      SCOPED_TRACE(testing::Message() << "family " << family << " to " << member.destination);
      for (CS_INT length = 0; length <= member.width + 2; ++length) {
        // Zeroes are in the range of every date.
        const std::string bytes = std::string(static_cast<size_t>(length), '\0');
        const Converted result = convert(family, member, bytes, static_cast<size_t>(member.width),
                                         make_format(member.code, -1));
        const CS_INT copied = std::min(length, member.width);
        EXPECT_EQ(result.status, length > member.width   ? cut_status[family]
                                 : length < member.width ? CS_CONV_UNDERFLOW
                                                         : CS_SUCCEED)
            << length;
        EXPECT_EQ(result.destlen, copied);
        EXPECT_EQ(result.bytes,
                  std::string(static_cast<size_t>(copied), '\0') +
                      std::string(static_cast<size_t>(member.width - copied), '\xA5'));
      }
    }
}

TEST(Binary, ToFixedCopiesTheBytes) {
  EXPECT_EQ(convert(bin, fixed_members[2], "\x12\x34\x56", 4, make_format(CS_TYPE_INT, 4)).bytes,
            "\x12\x34\x56\xA5");
  for (const Family family : families) {
    for (const CS_INT width : {0, 1, 5, 33}) {
      const Converted result =
          to_fixed(family, some_bytes(40), 40, width, static_cast<size_t>(width));
      EXPECT_EQ(result.status, cut_status[family]);
      EXPECT_EQ(result.destlen, width);
      EXPECT_EQ(result.bytes, some_bytes(static_cast<size_t>(width)));
    }
    const Converted short_source = to_fixed(family, "ab", 2, 5, 5);
    EXPECT_EQ(short_source.status, CS_CONV_UNDERFLOW);
    EXPECT_EQ(short_source.destlen, 2);
    EXPECT_EQ(short_source.bytes, "ab\xA5\xA5\xA5");
    // Less than nothing copies nothing.
    const Converted negative = to_fixed(family, "", -3, 5, 5);
    EXPECT_EQ(negative.status, CS_CONV_UNDERFLOW);
    EXPECT_EQ(negative.destlen, -3);
    EXPECT_EQ(negative.bytes, std::string(5, '\xA5'));
  }
  // No more of a record is read than it holds.
  const Converted record = to_fixed(varbin, some_bytes(256), 32767, 300, 300);
  EXPECT_EQ(record.status, CS_CONV_UNDERFLOW);
  EXPECT_EQ(record.destlen, 256);
  EXPECT_EQ(record.bytes, some_bytes(256) + std::string(44, '\xA5'));
}

// Deliberate: only bytes on their own are tested, and only when they came whole.
TEST(Binary, DatesOutOfRange) {
  const std::string out = "\xFF\xFF\xFF\x7F";
  for (const Member &member : fixed_members) {
    if (member.code != CS_TYPE_DATE && member.code != CS_TYPE_TIME)
      continue;
    const CS_DATAFMT format = make_format(member.code, 4);
    Converted result = convert(bin, member, out, 4, format);
    EXPECT_EQ(result.status, CS_CONV_DOMAIN);
    EXPECT_EQ(result.destlen, 0);
    EXPECT_EQ(result.bytes, out);
    result = convert(varbin, member, out, 4, format);
    EXPECT_EQ(result.status, CS_SUCCEED);
    EXPECT_EQ(result.destlen, 4);
    EXPECT_EQ(convert(bin, member, out + "\x01", 4, format).status, CS_CONV_TRUNCATED);
    EXPECT_EQ(convert(bin, member, out + "\x01", 4, format).destlen, 4);
    EXPECT_EQ(convert(bin, member, out.substr(0, 3), 4, format).status, CS_CONV_UNDERFLOW);
  }
  // Midnight at the end of the day: the first time out of range, 300 ticks a second.
  const CS_INT last_tick = 25919999;
  const Member &time = fixed_members[16];
  ASSERT_STREQ(time.destination, "timea");
  for (const CS_INT ticks : {last_tick, last_tick + 1}) {
    const std::string bytes(reinterpret_cast<const char *>(&ticks), sizeof ticks);
    EXPECT_EQ(convert(bin, time, bytes, 4, make_format(CS_TYPE_TIME, 4)).status,
              ticks == last_tick ? CS_SUCCEED : CS_CONV_DOMAIN);
  }
}

TEST(Binary, ToNumeric) {
  for (const Family family : families) {
    CS_DATAFMT format = make_format(CS_TYPE_DECIMAL, -1);
    format.precision = 77;
    format.scale = -1; // its low byte
    for (const size_t length : {size_t{0}, size_t{5}, size_t{33}, size_t{34}}) {
      const Converted result = convert(family, num, some_bytes(length), 35, format);
      const size_t copied = std::min<size_t>(length, 33);
      EXPECT_EQ(result.status, length == 33   ? CS_SUCCEED
                               : length == 34 ? cut_status[family]
                                              : CS_CONV_UNDERFLOW);
      EXPECT_EQ(result.destlen, 35);
      EXPECT_EQ(result.bytes, "\x4D\xFF" + some_bytes(copied) + std::string(33 - copied, '\xA5'));
    }
    for (const CS_INT precision : {0, 78, -1, CS_DFMT_FROMSOURCE}) {
      format.precision = precision;
      const Converted result = convert(family, num, some_bytes(33), 35, format);
      EXPECT_EQ(result.status, CS_CONV_BADPRECISION);
      EXPECT_EQ(result.destlen, 35);
      EXPECT_EQ(result.bytes, std::string(35, '\xA5'));
    }
    format.precision = 1;
    format.scale = 77;
    EXPECT_EQ(convert(family, num, some_bytes(33), 35, format).status, CS_SUCCEED);
    format.scale = 78;
    const Converted result = convert(family, num, some_bytes(33), 35, format);
    EXPECT_EQ(result.status, CS_CONV_BADSCALE);
    EXPECT_EQ(result.destlen, 35);
    EXPECT_EQ(result.bytes, std::string(35, '\xA5'));
  }
}

TEST(Binary, ToBitByTheFirstByte) {
  for (const Family family : families)
    for (const auto &[bytes, expected] :
         {std::pair{"\0\xFF"s, "\0"s}, {"\x80"s, "\1"s}, {"\1\0"s, "\1"s}, {"\0"s, "\0"s}}) {
      const Converted result = convert(family, bit, bytes, 1, make_format(CS_TYPE_BIT, 1));
      EXPECT_EQ(result.status, CS_SUCCEED);
      EXPECT_EQ(result.destlen, 1);
      EXPECT_EQ(result.bytes, expected);
    }
  // The length is not tested.
  const Converted result =
      run(bin, "\x01", 0, 1, [&](CS_DATAFMT *srcfmt, CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
        CS_CONTEXT context{};
        CS_DATAFMT destfmt = make_format(CS_TYPE_BIT, 1);
        return comn_bintobit(&context, srcfmt, src, &destfmt, dest, destlen);
      });
  EXPECT_EQ(result.bytes, "\1");
}

TEST(Binary, ToTextInEveryRoom) {
  EXPECT_EQ(convert(bin, text, "\xAB\x01", 4, make_format(CS_TYPE_CHAR, 4)).bytes, "ab01");
  for (const Family family : families)
    for (const size_t length : {size_t{0}, size_t{1}, size_t{5}, size_t{17}}) {
      const std::string digits = hex(some_bytes(length));
      const auto full = static_cast<CS_INT>(digits.size());
      for (CS_INT maxlength = 0; maxlength <= full + 3; ++maxlength)
        for (CS_INT format = 0; format < 8; ++format) {
          SCOPED_TRACE(testing::Message()
                       << length << " bytes in " << maxlength << ", format " << format);
          const Converted result =
              convert(family, text, some_bytes(length), static_cast<size_t>(maxlength),
                      make_format(CS_TYPE_LONGCHAR, maxlength, format));
          const std::string untouched(static_cast<size_t>(maxlength), '\xA5');
          if (maxlength < full) {
            // Deliberate: an odd room counts its last byte, which is not written.
            const size_t written = static_cast<size_t>(maxlength) / 2 * 2;
            EXPECT_EQ(result.status, cut_status[family]);
            EXPECT_EQ(result.destlen, maxlength);
            EXPECT_EQ(result.bytes, digits.substr(0, written) + untouched.substr(written));
            continue;
          }
          zrvtest::Padded expected{untouched, full};
          expected.bytes.replace(0, digits.size(), digits);
          EXPECT_EQ(result.status,
                    zrvtest::reference_pad_text(1, full, format, maxlength, expected));
          EXPECT_EQ(result.destlen, expected.length);
          EXPECT_EQ(result.bytes, expected.bytes);
        }
    }
}

TEST(Binary, ToTextEveryByte) {
  std::string bytes;
  for (int value = 0; value < 256; ++value)
    bytes += static_cast<char>(value);
  for (const Family family : families)
    EXPECT_EQ(convert(family, text, bytes, 512, make_format(CS_TYPE_TEXT, 512)).bytes, hex(bytes));
}

// The digits of two gigabytes are more than a length can say.
TEST(Binary, ToTextOfALongSourceIsCut) {
  for (const CS_INT length : {0x40000000, 0x7FFFFFFF}) {
    const Converted result =
        run(bin, "\xCD", length, 2,
            [&](CS_DATAFMT *srcfmt, CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
              CS_CONTEXT context{};
              CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, 2);
              return comn_bintochar(&context, srcfmt, src, &destfmt, dest, destlen);
            });
    EXPECT_EQ(result.status, CS_CONV_TRUNCATED);
    EXPECT_EQ(result.destlen, 2);
    EXPECT_EQ(result.bytes, "cd");
  }
}

TEST(Binary, ToVarchar) {
  for (const Family family : families)
    for (const size_t length :
         {size_t{0}, size_t{1}, size_t{127}, size_t{128}, size_t{129}, size_t{200}}) {
      const Converted result = convert(family, varchar, some_bytes(length), sizeof(CS_VARCHAR),
                                       make_format(CS_TYPE_VARCHAR, 0));
      const std::string digits = hex(some_bytes(std::min<size_t>(length, 128)));
      EXPECT_EQ(result.status, length > 128 ? cut_status[family] : CS_SUCCEED);
      EXPECT_EQ(result.destlen, 258);
      CS_SMALLINT stored;
      std::memcpy(&stored, result.bytes.data(), sizeof stored);
      EXPECT_EQ(stored, static_cast<CS_SMALLINT>(digits.size()));
      EXPECT_EQ(result.bytes.substr(2), digits + std::string(256 - digits.size(), '\xA5'));
    }
}

TEST(Binary, ToBinaryInEveryRoom) {
  for (const Family family : families)
    for (const size_t length : {size_t{0}, size_t{1}, size_t{6}}) {
      const std::string bytes = some_bytes(length);
      for (CS_INT maxlength = 0; maxlength <= 9; ++maxlength)
        for (const CS_INT format : {0, CS_DFMT_PADNULL}) {
          const Converted result = convert(family, binary, bytes, static_cast<size_t>(maxlength),
                                           make_format(CS_TYPE_IMAGE, maxlength, format));
          const auto room = static_cast<size_t>(maxlength);
          const bool padded = format != 0 && room > length;
          EXPECT_EQ(result.status, room < length ? cut_status[family] : CS_SUCCEED);
          EXPECT_EQ(result.destlen,
                    padded ? maxlength : static_cast<CS_INT>(std::min(room, length)));
          EXPECT_EQ(result.bytes, room < length
                                      ? bytes.substr(0, room)
                                      : bytes + std::string(room - length, padded ? '\0' : '\xA5'));
        }
    }
}

TEST(Binary, ToVarbinary) {
  for (const size_t length : {size_t{0}, size_t{1}, size_t{255}, size_t{256}, size_t{257}})
    for (const Family family : families) {
      if (family == varbin && length > 256)
        continue;
      const Converted result = convert(family, varbinary, some_bytes(length), sizeof(CS_VARBINARY),
                                       make_format(CS_TYPE_VARBINARY, 0));
      const size_t copied = std::min<size_t>(length, 256);
      EXPECT_EQ(result.status, length > 256 ? CS_CONV_TRUNCATED : CS_SUCCEED);
      EXPECT_EQ(result.destlen, 258);
      CS_SMALLINT stored;
      std::memcpy(&stored, result.bytes.data(), sizeof stored);
      EXPECT_EQ(stored, static_cast<CS_SMALLINT>(copied));
      EXPECT_EQ(result.bytes.substr(2), some_bytes(copied) + std::string(256 - copied, '\xA5'));
    }
  // A record whose length is beyond what it holds is copied as far as it goes.
  const Converted result =
      run(varbin, some_bytes(256), 300, sizeof(CS_VARBINARY),
          [&](CS_DATAFMT *srcfmt, CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
            CS_CONTEXT context{};
            CS_DATAFMT destfmt = make_format(CS_TYPE_VARBINARY, 0);
            return comn_varbintovarbin(&context, srcfmt, src, &destfmt, dest, destlen);
          });
  EXPECT_EQ(result.status, CS_SUCCEED);
  EXPECT_EQ(result.bytes, "\0\1"s + some_bytes(256));
}

TEST(Binary, Checks) {
  std::vector<Member> all(std::begin(fixed_members), std::end(fixed_members));
  const size_t forwarding = all.size();
  all.insert(all.end(), {num, bit, text, varchar, binary, varbinary});
  for (size_t i = 0; i < all.size(); ++i)
    for (const Family family : families) {
      const Member &member = all[i];
      SCOPED_TRACE(testing::Message() << "family " << family << " to " << member.destination);
      const CS_DATAFMT srcfmt = source_format(family, 1);
      zrvtest::expect_null_checks(units[family], member.function[family], srcfmt,
                                  make_format(member.code, 4));
      Conversion convert(member.function[family], srcfmt, make_format(member.code, 4));
      convert.destfmt.precision = 5;
      CS_VARBINARY source{};
      GuardedBuffer dest(sizeof(CS_VARCHAR));
      if (i < forwarding) {
        // What only copies looks at no datatype.
        convert.srcfmt.datatype = convert.destfmt.datatype = CS_TYPE_VOID;
        EXPECT_EQ(convert(&source, dest.data()),
                  family == bin && member.width == 1 ? CS_SUCCEED : CS_CONV_UNDERFLOW);
        continue;
      }
      convert.srcfmt.datatype = family == bin ? CS_TYPE_VARBINARY : CS_TYPE_BINARY;
      EXPECT_ASSERTION(units[family], CS_FAIL, convert(&source, dest.data()));
      convert.srcfmt = srcfmt;
      convert.destfmt.datatype = CS_TYPE_MONEY;
      EXPECT_ASSERTION(units[family], CS_FAIL, convert(&source, dest.data()));
      EXPECT_TRUE(dest.is_untouched());
      EXPECT_EQ(convert.destlen, Conversion::untouched_length);
    }
}
