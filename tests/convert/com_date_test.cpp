// Conversions between date and time values, from them to binary, and the time of day.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <set>
#include <string>

#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "conversion.h"
#include "guarded_buffer.h"
#include "test_context.h"
#include "zrvcomn/datetime.h"

using namespace zrvtest;

namespace {

// A value, its datatype code, and its bytes.
struct Value {
  CS_INT type;
  std::string bytes;
};

template <class T>
Value make_value(CS_INT type, T value) {
  return {type, std::string(reinterpret_cast<const char *>(&value), sizeof value)};
}

Value datetime(CS_INT days, CS_INT ticks) {
  return make_value(CS_TYPE_DATETIME, CS_DATETIME{days, ticks});
}
Value date4(CS_USHORT days, CS_USHORT minutes) {
  return make_value(CS_TYPE_DATETIME4, CS_DATETIME4{days, minutes});
}
Value date(CS_DATE days) {
  return make_value(CS_TYPE_DATE, days);
}
Value time_value(CS_TIME ticks) {
  return make_value(CS_TYPE_TIME, ticks);
}
Value big(CS_BIGDATETIME micros) {
  return make_value(CS_TYPE_BIGDATETIME, micros);
}
Value bigtime(CS_BIGTIME micros) {
  return make_value(CS_TYPE_BIGTIME, micros);
}

constexpr CS_UBIGINT year_one = 31622400000000;
constexpr CS_UBIGINT micros_per_day = 86400000000;
constexpr CS_UBIGINT epoch = year_one + 693595 * micros_per_day;

struct Result {
  CS_RETCODE status;
  std::string bytes;
};

// Converts through the matrix, from and to addresses that suit no type.
Result convert(const Value &source, CS_INT dest_type, size_t dest_size) {
  TestContext context;
  const CS_CONV_FUNC function = com_conv_func(context.get(), source.type, dest_type);
  if (function == nullptr)
    return {-9999, ""};
  GuardedBuffer src(source.bytes.size(), 1);
  std::memcpy(src.data(), source.bytes.data(), source.bytes.size());
  GuardedBuffer dest(dest_size, 3);
  CS_DATAFMT from = make_format(source.type, static_cast<CS_INT>(source.bytes.size()));
  CS_DATAFMT to = make_format(dest_type, static_cast<CS_INT>(dest_size));
  CS_INT length = -1;
  const AllocationProbe probe;
  const CS_RETCODE status = function(context.get(), &from, src.data(), &to, dest.data(), &length);
  EXPECT_EQ(probe.allocations(), 0U);
  EXPECT_EQ(length, static_cast<CS_INT>(dest_size));
  return {status, dest.contents()};
}

std::string untouched(size_t size) {
  return std::string(size, static_cast<char>(GuardedBuffer::filler));
}

void expect(const Value &source, CS_RETCODE status, const Value &value) {
  const Result result = convert(source, value.type, value.bytes.size());
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.bytes, value.bytes);
}

void expect_untouched(const Value &source, CS_INT type, CS_RETCODE status) {
  const size_t size = static_cast<size_t>(comn_typelen(type, 0));
  const Result result = convert(source, type, size);
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.bytes, untouched(size));
}

} // namespace

TEST(DateConversions, FromDateTime) {
  expect(datetime(5, 9000), 1, date4(5, 1));
  expect(datetime(5, 25919999), 1, date4(6, 0));
  expect_untouched(datetime(-1, 0), CS_TYPE_DATETIME4, -101);
  expect_untouched(datetime(65536, 0), CS_TYPE_DATETIME4, -101);
  expect_untouched(datetime(65535, 25919999), CS_TYPE_DATETIME4, -101);
  expect(datetime(INT_MIN, INT_MAX), 1, datetime(INT_MIN, INT_MAX));
  expect(datetime(-53690, 7), 1, date(-53690));
  expect(datetime(5, 25919999), 1, time_value(25919999));
  expect(datetime(0, 1), 1, big(epoch + 3000));
  expect(datetime(0, 1), 1, bigtime(3000));
  // A failure of the operator does not show: deliberate.
  expect(datetime(INT_MAX, 0), 1, big(0));
  expect(datetime(0, 25920000), 1, bigtime(0));
}

TEST(DateConversions, FromDate4) {
  expect(date4(65535, 1439), 1, date4(65535, 1439));
  expect(date4(65535, 1439), 1, datetime(65535, 25902000));
  expect(date4(1, 2), 1, big(epoch + micros_per_day + 120000000));
  expect(date4(65535, 1439), 1, date(65535)); // the minutes are lost
  expect(date4(7, 2), 1, time_value(36000));
  expect(date4(7, 2), 1, bigtime(120000000));
}

TEST(DateConversions, FromDate) {
  expect(date(65535), 1, date4(65535, 0));
  expect_untouched(date(65536), CS_TYPE_DATETIME4, -101);
  expect_untouched(date(-1), CS_TYPE_DATETIME4, -101);
  expect_untouched(date(-693595), CS_TYPE_DATETIME4, -101);
  expect(date(-53690), 1, datetime(-53690, 0));
  expect(date(-53691), -101, datetime(0, 0));
  expect(date(-693595), -101, datetime(0, 0));
  expect(date(-693595), 1, big(year_one));
  expect(date(2958464), -101, big(0));
  expect(date(-693596), -101, big(0));
  expect(date(INT_MIN), 1, date(INT_MIN));
}

TEST(DateConversions, FromTime) {
  expect(time_value(9000), 1, date4(0, 1));
  expect(time_value(25919999), 1, date4(1, 0));
  expect_untouched(time_value(25920000), CS_TYPE_DATETIME4, -101);
  expect_untouched(time_value(-1), CS_TYPE_DATETIME4, -101);
  expect(time_value(25919999), 1, datetime(0, 25919999));
  expect(time_value(2), 1, big(year_one + 6000));
  expect(time_value(2), 1, bigtime(6000));
  expect(time_value(-1), 1, time_value(-1));
  // These do not report a time out of range: deliberate.
  expect(time_value(-1), 1, datetime(0, -1));
  expect(time_value(25920000), 1, big(year_one + micros_per_day));
  expect(time_value(25920000), 1, bigtime(micros_per_day));
}

TEST(DateConversions, FromBigDateTime) {
  expect(big(epoch + 30000000), 1, date4(0, 1));
  expect_untouched(big(epoch - 1), CS_TYPE_DATETIME4, -101);
  expect_untouched(big(0), CS_TYPE_DATETIME4, -101);
  expect(big(epoch + 2000), 1, datetime(0, 1));
  expect(big(epoch + 2001), 1, datetime(0, 1)); // the lost microsecond is no failure
  expect(big(epoch - 53691 * micros_per_day), -102, datetime(-53691, 0));
  EXPECT_EQ(convert(big(315569520000000000), CS_TYPE_DATETIME, 8).status, -101);
  EXPECT_EQ(convert(big(year_one - 1), CS_TYPE_DATETIME, 8).status, -101);
  expect(big(year_one), 1, date(-693595));
  expect(big(epoch + 86399999999), 1, date(0));
  expect(big(epoch + 86399999999), 1, time_value(25919999));
  expect(big(epoch + 999), 1, time_value(0));
  expect(big(7), 1, big(7));
  expect(big(epoch + 86399999999), 1, bigtime(86399999999));
}

TEST(DateConversions, FromBigTime) {
  expect(bigtime(29998999), 1, date4(0, 0));
  expect(bigtime(29999000), 1, date4(0, 1)); // rounded twice: to the tick of half a minute, and up
  expect(bigtime(86399999999), 1, date4(1, 0));
  expect_untouched(bigtime(86400000000), CS_TYPE_DATETIME4, -102);
  expect(bigtime(2001), 1, datetime(0, 1));
  expect(bigtime(86400002000), -102, datetime(0, 1));
  expect(bigtime(86399999999), 1, time_value(25919999));
  expect(bigtime(0), 1, big(year_one));
  expect(bigtime(86399999999), 1, big(year_one + 86399999999));
  expect(bigtime(UINT64_MAX), 1, bigtime(UINT64_MAX));
}

TEST(DateConversions, MissingPairs) {
  TestContext context;
  EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_DATE, CS_TYPE_TIME), nullptr);
  EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_DATE, CS_TYPE_BIGTIME), nullptr);
  EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_TIME, CS_TYPE_DATE), nullptr);
  EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_BIGTIME, CS_TYPE_DATE), nullptr);
  EXPECT_EQ(com_conv_func(context.get(), CS_TYPE_DATETIME, CS_TYPE_BINARY), nullptr);
}

namespace {

struct Member {
  CS_CONV_FUNC function;
  CS_INT source, dest;
  CS_INT source_size;
  const char *unit;
};

const Member value_members[] = {
    {comn_datetodate4, 12, 13, 8, "com_date.cpp"},
    {comn_datetodate, 12, 12, 8, "com_date.cpp"},
    {comn_datetodatea, 12, 27, 8, "com_date.cpp"},
    {comn_datetotimea, 12, 28, 8, "com_date.cpp"},
    {comn_datetobigdatetime, 12, 35, 8, "com_date.cpp"},
    {comn_datetobigtime, 12, 36, 8, "com_date.cpp"},
    {comn_date4todate4, 13, 13, 4, "com_dat4.cpp"},
    {comn_date4todate, 13, 12, 4, "com_dat4.cpp"},
    {comn_date4tobigdatetime, 13, 35, 4, "com_dat4.cpp"},
    {comn_date4todatea, 13, 27, 4, "com_dat4.cpp"},
    {comn_date4totimea, 13, 28, 4, "com_dat4.cpp"},
    {comn_date4tobigtime, 13, 36, 4, "com_dat4.cpp"},
    {comn_dateatodate4, 27, 13, 4, "com_date.cpp"},
    {comn_dateatodate, 27, 12, 4, "com_date.cpp"},
    {comn_dateatobigdatetime, 27, 35, 4, "com_date.cpp"},
    {comn_dateatodatea, 27, 27, 4, "com_date.cpp"},
    {comn_timeatodate4, 28, 13, 4, "com_time.cpp"},
    {comn_timeatodate, 28, 12, 4, "com_time.cpp"},
    {comn_timeatobigdatetime, 28, 35, 4, "com_time.cpp"},
    {comn_timeatobigtime, 28, 36, 4, "com_time.cpp"},
    {comn_timeatotimea, 28, 28, 4, "com_time.cpp"},
    {comn_bigdatetimetodate4, 35, 13, 8, "com_bigdatetime.cpp"},
    {comn_bigdatetimetodate, 35, 12, 8, "com_bigdatetime.cpp"},
    {comn_bigdatetimetodatea, 35, 27, 8, "com_bigdatetime.cpp"},
    {comn_bigdatetimetotimea, 35, 28, 8, "com_bigdatetime.cpp"},
    {comn_bigdatetimetobigdatetime, 35, 35, 8, "com_bigdatetime.cpp"},
    {comn_bigdatetimetobigtime, 35, 36, 8, "com_bigdatetime.cpp"},
    {comn_bigtimetodate4, 36, 13, 8, "com_bigtime.cpp"},
    {comn_bigtimetodate, 36, 12, 8, "com_bigtime.cpp"},
    {comn_bigtimetotimea, 36, 28, 8, "com_bigtime.cpp"},
    {comn_bigtimetobigdatetime, 36, 35, 8, "com_bigtime.cpp"},
    {comn_bigtimetobigtime, 36, 36, 8, "com_bigtime.cpp"},
};

const Member binary_members[] = {
    {comn_datetobin, 12, 1, 8, "com_date.cpp"},
    {comn_date4tobin, 13, 3, 4, "com_dat4.cpp"},
    {comn_dateatobin, 27, 5, 4, "com_date.cpp"},
    {comn_timeatobin, 28, 1, 4, "com_time.cpp"},
    {comn_bigdatetobin, 35, 3, 8, "com_bigdatetime.cpp"},
    {comn_bigtimetobin, 36, 5, 8, "com_bigtime.cpp"},
};

const Member varbinary_members[] = {
    {comn_datetovarbin, 12, 19, 8, "com_date.cpp"},
    {comn_date4tovarbin, 13, 19, 4, "com_dat4.cpp"},
    {comn_dateatovarbin, 27, 19, 4, "com_date.cpp"},
    {comn_timeatovarbin, 28, 19, 4, "com_time.cpp"},
    {comn_bigdatetimetovarbin, 35, 19, 8, "com_bigdatetime.cpp"},
    {comn_bigtimetovarbin, 36, 19, 8, "com_bigtime.cpp"},
};

void expect_checks(const Member &member) {
  TestContext context;
  CS_BYTE source[8] = {}, dest[258] = {};
  CS_INT length = -5;
  CS_DATAFMT from = make_format(member.source, member.source_size);
  CS_DATAFMT to = make_format(member.dest, 258);
  expect_null_checks(member.unit, member.function, from, to);
  const auto wrong = [&](CS_DATAFMT &format, CS_INT type) {
    const CS_INT right = format.datatype;
    format.datatype = type;
    EXPECT_ASSERTION(member.unit, CS_FAIL,
                     member.function(context.get(), &from, source, &to, dest, &length));
    format.datatype = right;
  };
  for (const CS_INT type : {0, 8, 19, 40, -1}) {
    wrong(from, type);
    if (type != member.dest)
      wrong(to, type);
  }
  wrong(from, member.source == 12 ? 13 : 12);
  wrong(to, member.dest == 12 ? 13 : 12);
  EXPECT_EQ(length, -5);
}

} // namespace

TEST(DateConversions, Checks) {
  for (const Member &member : value_members)
    expect_checks(member);
  for (const Member &member : binary_members)
    expect_checks(member);
  for (const Member &member : varbinary_members)
    expect_checks(member);
}

namespace {

// What a member traces for a source of bytes 0xFF and so much room, or without a context.
std::string trace_of(const Member &member, CS_INT room, bool has_context = true) {
  TestContext context;
  CS_BYTE source[8], dest[258];
  std::memset(source, 0xFF, sizeof source);
  CS_INT length = 0;
  CS_DATAFMT from = make_format(member.source, member.source_size);
  CS_DATAFMT to = make_format(member.dest, room);
  CS_RETCODE status = -9999;
  com_errset(3);
  const std::string text = capture_stdout([&] {
    catch_check([&] {
      status =
          member.function(has_context ? context.get() : nullptr, &from, source, &to, dest, &length);
    });
  });
  com_errset(1);
  // Last comes a line of the unit, with the name or the number of the status; an operation that the
  // member calls may have its own before it.
  const std::string shown = status == 1   ? "CS_SUCCEED"
                            : status == 0 ? "CS_FAIL"
                                          : std::to_string(status);
  const size_t last = text.rfind('(');
  const std::string line = last != std::string::npos ? text.substr(last) : text;
  const std::string expected = "(" + shown + ") file " + member.unit + ", line ";
  EXPECT_EQ(line.substr(0, expected.size()), expected);
  return shown;
}

} // namespace

// Every exit passes through the trace: success, the failures of data, and those of the checks.
TEST(DateConversions, EveryExitIsTraced) {
  std::set<std::string> shown;
  for (const Member &member : value_members) {
    shown.insert(trace_of(member, 8));
    EXPECT_EQ(trace_of(member, 8, false), "CS_FAIL");
  }
  EXPECT_EQ(shown, (std::set<std::string>{"CS_SUCCEED", "-101", "-102"}));
  for (const Member &member : binary_members) {
    EXPECT_EQ(trace_of(member, 8), "CS_SUCCEED");
    EXPECT_EQ(trace_of(member, 3), "-113");
    EXPECT_EQ(trace_of(member, -1), "CS_FAIL");
  }
  for (const Member &member : varbinary_members) {
    EXPECT_EQ(trace_of(member, 258), "CS_SUCCEED");
    EXPECT_EQ(trace_of(member, -1), "CS_FAIL");
  }
}

TEST(DateToBinary, BytesAsTheyStand) {
  TestContext context;
  const std::string bytes = "\x01\x02\x03\x04\x85\x86\x87\x88";
  for (const Member &member : binary_members)
    for (const CS_INT type : {1, 3, 5})
      for (CS_INT room = 0; room <= 12; ++room)
        for (const CS_INT format : {0, CS_DFMT_PADNULL}) {
          GuardedBuffer dest(static_cast<size_t>(room));
          CS_DATAFMT from = make_format(member.source, member.source_size);
          CS_DATAFMT to = make_format(type, room, format);
          CS_INT length = -1;
          const CS_RETCODE status = member.function(
              context.get(), &from, const_cast<char *>(bytes.data()), &to, dest.data(), &length);
          const CS_INT copied = std::min(room, member.source_size);
          EXPECT_EQ(status, room < member.source_size ? -113 : 1);
          EXPECT_EQ(length, format != 0 && room >= member.source_size ? room : copied);
          EXPECT_EQ(dest.contents(static_cast<size_t>(copied)),
                    bytes.substr(0, static_cast<size_t>(copied)));
          const auto rest = static_cast<size_t>(room - copied);
          EXPECT_EQ(dest.contents().substr(static_cast<size_t>(copied)),
                    format == 0 || room < member.source_size ? untouched(rest)
                                                             : std::string(rest, '\0'));
        }
}

TEST(DateToBinary, Varying) {
  TestContext context;
  const std::string bytes = "\x01\x02\x03\x04\x85\x86\x87\x88";
  for (const Member &member : varbinary_members) {
    GuardedBuffer dest(sizeof(CS_VARBINARY), 1);
    CS_DATAFMT from = make_format(member.source, member.source_size);
    CS_DATAFMT to = make_format(CS_TYPE_VARBINARY, sizeof(CS_VARBINARY));
    CS_INT length = -1;
    EXPECT_EQ(member.function(context.get(), &from, const_cast<char *>(bytes.data()), &to,
                              dest.data(), &length),
              1);
    EXPECT_EQ(length, 258);
    const auto size = static_cast<size_t>(member.source_size);
    const std::string record = {static_cast<char>(size), '\0'};
    EXPECT_EQ(dest.contents(2 + size), record + bytes.substr(0, size));
    EXPECT_TRUE(dest.is_untouched(2 + size));
  }
}

TEST(DateToBinary, NegativeRoomIsFatal) {
  TestContext context;
  CS_BYTE source[8] = {}, dest[258] = {};
  CS_INT length = -5;
  const auto expect_fatal = [&](const Member &member) {
    CS_DATAFMT from = make_format(member.source, member.source_size);
    CS_DATAFMT to = make_format(member.dest, -1);
    EXPECT_ASSERTION(member.unit, CS_FAIL,
                     member.function(context.get(), &from, source, &to, dest, &length));
  };
  for (const Member &member : binary_members)
    expect_fatal(member);
  for (const Member &member : varbinary_members)
    expect_fatal(member);
  EXPECT_EQ(length, -5);
}

TEST(DateText, ForCallersWithoutAContext) {
  CS_DATETIME value{0, 1080000};
  CS_DATETIME4 small{1, 61};
  char text[32];
  EXPECT_EQ(com_cvtdatetochar(&value, text, 32, 140, nullptr), 26);
  EXPECT_EQ(std::string(text, 26), "1900-01-01 01:00:00.000000");
  EXPECT_EQ(com_cvtdatetochar(&value, text, 32, 0, nullptr), -2);
  EXPECT_EQ(com_cvtdate4tochar(&small, text, 32, 0, com__get_shortmonths()), 19);
  EXPECT_EQ(std::string(text, 19), "Jan  2 1900  1:01AM");
  EXPECT_EQ(com_cvtdate4tochar(&small, text, 5, 112, nullptr), 0);
}

namespace {

// The time now, twice the same: `body` runs again if a second ended on the way.
template <class Body>
std::tm at_one_second(Body &&body) {
  for (;;) {
    const std::time_t before = std::time(nullptr);
    body();
    if (std::time(nullptr) == before) {
      std::tm now;
      localtime_r(&before, &now);
      return now;
    }
  }
}

std::string print(const std::tm &now, const char *format) {
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, format, &now));
}

} // namespace

TEST(TimeOfDay, OrdersAndClocks) {
  const char *orders[] = {"%m/%d/%y", "%m/%d/%y", "%d/%m/%y", "%y/%m/%d",
                          "%y/%d/%m", "%m/%y/%d", "%d/%y/%m", "%m/%d/%y"};
  for (CS_INT format = 0; format < 8; ++format)
    for (const CS_BOOL is12hour : {0, 1, 2}) {
      const size_t needed = is12hour == 1 ? 21 : 18;
      GuardedBuffer buffer(needed);
      CS_INT length = 0;
      CS_DATEREC fields;
      std::memset(&fields, 0x5A, sizeof fields);
      const std::tm now = at_one_second([&] {
        ASSERT_EQ(comn_time(format, is12hour, buffer.text(), static_cast<CS_INT>(needed), &length,
                            &fields),
                  1);
      });
      EXPECT_EQ(length, static_cast<CS_INT>(needed));
      std::string expected = print(now, orders[format]) + " ";
      if (is12hour == 1) {
        const int hour = now.tm_hour > 12 ? now.tm_hour - 12 : now.tm_hour;
        char text[16];
        std::snprintf(text, sizeof text, "%02d", hour);
        expected += text + print(now, ":%M:%S ") + (now.tm_hour >= 12 ? "PM" : "AM");
      } else {
        expected += print(now, "%H:%M:%S");
      }
      EXPECT_EQ(buffer.contents(), expected + '\0');
      EXPECT_EQ(fields.dateyear, now.tm_year + 1900);
      EXPECT_EQ(fields.datemonth, now.tm_mon);
      EXPECT_EQ(fields.datedmonth, now.tm_mday);
      EXPECT_EQ(fields.datedyear, now.tm_yday + 1);
      EXPECT_EQ(fields.datedweek, now.tm_wday);
      EXPECT_EQ(fields.datehour, now.tm_hour);
      EXPECT_EQ(fields.dateminute, now.tm_min);
      EXPECT_EQ(fields.datesecond, now.tm_sec);
      EXPECT_EQ(fields.datemsecond, 0x5A5A5A5A);
      EXPECT_EQ(fields.datesecprec, 0x5A5A5A5A);
    }
}

// Whatever hour it is here, some zone has midnight, noon and an afternoon now.
TEST(TimeOfDay, TwelveHourClockInEveryZone) {
  const char *old = std::getenv("TZ");
  const std::string saved = old != nullptr ? old : "";
  for (int zone = -12; zone < 12; ++zone) {
    setenv("TZ", ("XXX" + std::to_string(zone)).c_str(), 1);
    tzset();
    GuardedBuffer buffer(21);
    const std::tm now =
        at_one_second([&] { ASSERT_EQ(comn_time(1, 1, buffer.text(), 21, nullptr, nullptr), 1); });
    char hour[16];
    std::snprintf(hour, sizeof hour, "%02d", now.tm_hour > 12 ? now.tm_hour - 12 : now.tm_hour);
    EXPECT_EQ(buffer.contents().substr(9, 2), hour); // midnight is hour 00
    EXPECT_EQ(buffer.contents().substr(18, 2), now.tm_hour >= 12 ? "PM" : "AM");
  }
  if (old != nullptr)
    setenv("TZ", saved.c_str(), 1);
  else
    unsetenv("TZ");
  tzset();
}

TEST(TimeOfDay, RoomAndNullArguments) {
  for (const CS_BOOL is12hour : {0, 1}) {
    const CS_INT needed = is12hour != 0 ? 21 : 18;
    for (const CS_INT room : {-1, 0, 1, needed - 1}) {
      GuardedBuffer buffer(static_cast<size_t>(needed));
      CS_INT length = 0;
      CS_DATEREC fields{};
      EXPECT_EQ(comn_time(1, is12hour, buffer.text(), room, &length, &fields), 0);
      EXPECT_EQ(length, needed);
      EXPECT_TRUE(buffer.is_untouched());
      EXPECT_EQ(fields.dateyear, 0);
    }
    GuardedBuffer buffer(static_cast<size_t>(needed));
    EXPECT_EQ(comn_time(1, is12hour, buffer.text(), needed, nullptr, nullptr), 1);
  }
  CS_INT length = 77;
  CS_DATEREC fields{};
  EXPECT_EQ(comn_time(1, 0, nullptr, 0, &length, &fields), 1);
  EXPECT_EQ(length, 77);
  EXPECT_GT(fields.dateyear, 2000);
  EXPECT_EQ(comn_time(1, 0, nullptr, 0, nullptr, nullptr), 1);
}

TEST(FileTime, OfAFileAndOfNone) {
  std::string path = ::testing::TempDir() + "/modtime_test_" + std::to_string(getpid());
  std::ofstream(path) << "x";
  const utimbuf times{1000000000, 1234567890};
  ASSERT_EQ(utime(path.c_str(), &times), 0);
  EXPECT_EQ(comn_file_modtime(path.data()), 1234567890);
  // A file past the 32 bits of a plain size.
  ASSERT_EQ(truncate64(path.c_str(), 5000000000), 0);
  ASSERT_EQ(utime(path.c_str(), &times), 0);
  EXPECT_EQ(comn_file_modtime(path.data()), 1234567890);
  ASSERT_EQ(unlink(path.c_str()), 0);
  EXPECT_EQ(comn_file_modtime(path.data()), 0);
  EXPECT_NULL_POINTER_CHECK("com_time.cpp", time_t{0}, comn_file_modtime(nullptr));
}
