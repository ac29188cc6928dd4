// What stands for NULL for callers without a context, the small services, and money under its old names.
#include <cstring>
#include <limits>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "legacy_shapes.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/numeric.h"

using zrvtest::GuardedBuffer;
using namespace std::string_literals;

namespace {

constexpr CS_INT null_cut = -5;

using Setter = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);

struct Set {
  CS_INT result;
  std::string bytes;
  bool operator==(const Set &) const = default;
};

Set set_null(Setter setter, size_t size, CS_INT destlen, const std::string &value,
             CS_INT len = -7) {
  GuardedBuffer dest(size, 1), source(value.size(), 1);
  std::copy(value.begin(), value.end(), source.text());
  const CS_INT result = setter(dest.data(), destlen, source.data(),
                               len == -7 ? static_cast<CS_INT>(value.size()) : len);
  return {result, dest.contents()};
}

} // namespace

TEST(LegacyNull, TypesOfOneWidth) {
  const struct {
    Setter setter;
    CS_INT width;
  } setters[] = {{com_seti1null, 1},       {com_seti2null, 2},   {com_seti4null, 4},
                 {com_setbitnull, 1},      {com_setflt4null, 4}, {com_setflt8null, 8},
                 {com_setmoneynull, 8},    {com_setmny4null, 4}, {com_setdatetimenull, 8},
                 {com_setdatetime4null, 4}};
  const std::string value = "\x81\x82\x83\x84\x85\x86\x87\x88\x89";
  for (const auto &[setter, width] : setters) {
    const auto size = static_cast<size_t>(width);
    const std::string zero(size, '\0');
    for (const CS_INT destlen : {-1, 0, 1, 100}) {
      EXPECT_EQ(set_null(setter, size, destlen, ""), (Set{width, zero}));
      EXPECT_EQ(set_null(setter, size, destlen, value, 0), (Set{width, zero}));
      EXPECT_EQ(set_null(setter, size, destlen, value, -1), (Set{width, zero}));
      EXPECT_EQ(set_null(setter, size, destlen, value), (Set{width, value.substr(0, size)}));
      EXPECT_EQ(set_null(setter, size, destlen, value, 1),
                (Set{width, value.substr(0, 1) + zero.substr(1)}));
    }
    GuardedBuffer dest(size);
    EXPECT_EQ(setter(dest.data(), width, nullptr, 5), width);
    EXPECT_EQ(dest.contents(), zero);
    CS_BYTE byte = 1;
    EXPECT_NULL_POINTER_CHECK("oldnull.cpp", 0, setter(nullptr, width, &byte, 1));
  }
}

TEST(LegacyNull, CharAndBinary) {
  EXPECT_EQ(set_null(com_setcharnull, 3, 3, ""), (Set{0, "   "}));
  EXPECT_EQ(set_null(com_setcharnull, 3, 3, "ab"), (Set{2, "ab "}));
  EXPECT_EQ(set_null(com_setcharnull, 3, 3, "abc"), (Set{3, "abc"}));
  EXPECT_EQ(set_null(com_setcharnull, 3, 3, "abcd"), (Set{null_cut, "abc"}));
  EXPECT_EQ(set_null(com_setcharnull, 3, -1, "abc"), (Set{3, "abc"}));
  EXPECT_EQ(set_null(com_setcharnull, 0, 0, "abc"), (Set{null_cut, ""}));
  EXPECT_EQ(set_null(com_setbinarynull, 3, 3, ""), (Set{0, "\0\0\0"s}));
  EXPECT_EQ(set_null(com_setbinarynull, 3, 3, "ab"), (Set{2, "ab\0"s}));
  EXPECT_EQ(set_null(com_setbinarynull, 3, 3, "abcd"), (Set{null_cut, "abc"}));
  EXPECT_EQ(set_null(com_setbinarynull, 3, -1, "abc"), (Set{3, "abc"}));
  EXPECT_EQ(set_null(com_setbinarynull, 0, 0, "abc"), (Set{null_cut, ""}));
  for (const Setter setter : {com_setcharnull, com_setbinarynull, com_setstringnull,
                              com_setntbstringnull, com_setvarycharnull, com_setvarybinnull}) {
    CS_BYTE byte = 1;
    EXPECT_NULL_POINTER_CHECK("oldnull.cpp", 0, setter(nullptr, 4, &byte, 1));
    GuardedBuffer dest(4);
    EXPECT_EQ(setter(dest.data(), 4, nullptr, 3), 0); // the length of no value
  }
}

TEST(LegacyNull, Strings) {
  EXPECT_EQ(set_null(com_setstringnull, 4, 4, ""), (Set{0, "   \0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 4, 4, "ab"), (Set{2, "ab \0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 4, 4, "abc"), (Set{3, "abc\0"s}));
  // Deliberate: what is cut loses one byte more, and that byte stays as it was.
  EXPECT_EQ(set_null(com_setstringnull, 4, 4, "abcd"), (Set{null_cut, "ab\xA5\0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 3, 3, "abcd"), (Set{null_cut, "a\xA5\0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 2, 2, "abcd"), (Set{null_cut, "\xA5\0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 1, 1, "abcd"), (Set{null_cut, "\0"s}));
  EXPECT_EQ(set_null(com_setstringnull, 5, 0, "abcd"), (Set{4, "abcd\0"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 4, 4, ""), (Set{0, "\0\xA5\xA5\xA5"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 4, 4, "ab"), (Set{2, "ab\0\xA5"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 4, 4, "abc"), (Set{3, "abc\0"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 4, 4, "abcd"), (Set{null_cut, "ab\xA5\0"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 1, 1, "abcd"), (Set{null_cut, "\0"s}));
  EXPECT_EQ(set_null(com_setntbstringnull, 5, -1, "abcd"), (Set{4, "abcd\0"s}));
}

TEST(LegacyNull, Records) {
  for (const Setter setter : {com_setvarycharnull, com_setvarybinnull}) {
    // Deliberate: the room is not looked at.
    for (const CS_INT destlen : {-1, 0, 1, 100}) {
      EXPECT_EQ(set_null(setter, 2, destlen, ""), (Set{0, "\0\0"s}));
      EXPECT_EQ(set_null(setter, 5, destlen, "abc"), (Set{3, "\3\0abc"s}));
    }
    GuardedBuffer dest(2 + 32767);
    std::string longest(32768, 'x');
    auto *const bytes = reinterpret_cast<CS_BYTE *>(longest.data());
    EXPECT_EQ(setter(dest.data(), 0, bytes, 32767), 32767);
    EXPECT_EQ(setter(dest.data(), 0, bytes, 32768), null_cut);
    EXPECT_EQ(dest.value<CS_SMALLINT>(), 32767);
  }
}

TEST(LegacyNull, Numerics) {
  const auto set = [](CS_INT precision, CS_INT scale) {
    GuardedBuffer dest(35, 1);
    const CS_INT result = com_setnumnull(dest.data(), 35, nullptr, 0, precision, scale);
    return Set{result, dest.contents()};
  };
  const std::string untouched(35, static_cast<char>(GuardedBuffer::filler));
  const auto zero = [](char precision, char scale) {
    return Set{35, std::string{precision, scale} + std::string(33, '\0')};
  };
  EXPECT_EQ(set(0, 0), (Set{-7, untouched}));
  EXPECT_EQ(set(1, 0), zero(1, 0));
  EXPECT_EQ(set(77, 77), zero(77, 77));
  EXPECT_EQ(set(78, 0), (Set{-7, untouched}));
  EXPECT_EQ(set(10, -1), (Set{-8, untouched}));
  EXPECT_EQ(set(10, 78), (Set{-8, untouched}));
  EXPECT_EQ(set(0, 78), (Set{-7, untouched}));
  // Not even the marks of the matrix for a shape of the source.
  EXPECT_EQ(set(CS_DFMT_FROMSOURCE, 0).result, -7);
  std::string value(35, '\0');
  value.replace(0, 5, "\5\2\0\4\xE2"s); // 12.50 in three bytes of digits' room
  value.replace(2, 4, "\0\0\4\xE2"s);
  GuardedBuffer dest(35, 1);
  auto *const bytes = reinterpret_cast<CS_BYTE *>(value.data());
  EXPECT_EQ(com_setnumnull(dest.data(), 35, bytes, 35, 5, 2), 2 + comn_num_getlen(5));
  EXPECT_EQ(dest.contents(6), value.substr(0, 6));
  EXPECT_EQ(com_setnumnull(dest.data(), 35, bytes, 35, 3, 2), -1);
  EXPECT_EQ(com_setnumnull(dest.data(), 35, bytes, 0, 3, 2), 35);
  EXPECT_EQ(com_setnumnull(dest.data(), 35, bytes, 35, 0, 2), -7);
  EXPECT_NULL_POINTER_CHECK("oldnull.cpp", 0, com_setnumnull(nullptr, 35, bytes, 35, 5, 2));
}

// ---- small services ----

TEST(LegacyServices, Padding) {
  for (CS_INT filled = 0; filled <= 5; ++filled) {
    GuardedBuffer dest(4);
    com__padchar(dest.data(), 4, filled);
    std::string expected(4, static_cast<char>(GuardedBuffer::filler));
    for (auto i = static_cast<size_t>(filled); i < 4; ++i)
      expected[i] = ' ';
    EXPECT_EQ(dest.contents(), expected) << filled;
  }
  GuardedBuffer dest(4);
  com__padchar(dest.data(), -1, 2);
  com__padchar(dest.data(), 0, 0);
  com__padchar(nullptr, 0, 0);
  EXPECT_TRUE(dest.is_untouched());
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, (com__padchar(nullptr, 1, 0), 0));

  const auto padded = [](CS_INT destlen, CS_INT filled) {
    GuardedBuffer bytes(4);
    com__padstring(bytes.data(), destlen, filled);
    return bytes.contents();
  };
  EXPECT_EQ(padded(4, 0), "   \0"s);
  EXPECT_EQ(padded(4, 2), "\xA5\xA5 \0"s);
  EXPECT_EQ(padded(4, 3), "\xA5\xA5\xA5\0"s);
  EXPECT_EQ(padded(4, 9), "\xA5\xA5\xA5\0"s);
  EXPECT_EQ(padded(1, 0), "\0\xA5\xA5\xA5"s);
  EXPECT_EQ(padded(1, 2), "\0\xA5\xA5\xA5"s);
  EXPECT_EQ(padded(0, 2), "\xA5\xA5\0\xA5"s);
  EXPECT_EQ(padded(-1, 0), "\0\xA5\xA5\xA5"s);
  EXPECT_EQ(padded(std::numeric_limits<CS_INT>::min(), 2), "\xA5\xA5\0\xA5"s);
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, (com__padstring(nullptr, 1, 0), 0));

  const auto trimmed = [](const std::string &text) {
    GuardedBuffer bytes(text.size() + 1);
    std::memcpy(bytes.data(), text.data(), text.size());
    const CS_INT length = com__padntbstring(bytes.data(), static_cast<CS_INT>(text.size()));
    EXPECT_EQ(bytes.data()[length], 0);
    return bytes.contents(static_cast<size_t>(length));
  };
  EXPECT_EQ(trimmed("ab  "), "ab");
  EXPECT_EQ(trimmed("a b"), "a b");
  EXPECT_EQ(trimmed("a\t"), "a\t");
  // Deliberate: the first byte stays.
  EXPECT_EQ(trimmed("   "), " ");
  EXPECT_EQ(trimmed(" "), " ");
  EXPECT_EQ(trimmed(""), "");
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, com__padntbstring(nullptr, 0));
}

TEST(LegacyServices, Bytes) {
  char text[] = "abcdef";
  com_bmove(text, text + 2, 4); // overlapping
  EXPECT_STREQ(text, "ababcd");
  com_bmove(text, text + 2, 0);
  com_bmove(text, text + 2, -1);
  com_bmove(nullptr, nullptr, 0);
  EXPECT_STREQ(text, "ababcd");
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, (com_bmove(nullptr, text, 1), 0));
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, (com_bmove(text, nullptr, 1), 0));
  GuardedBuffer bytes(4);
  com__bzero(bytes.data(), 3);
  EXPECT_EQ(bytes.contents(), "\0\0\0\xA5"s);
  com__bzero(bytes.data() + 3, 0);
  com__bzero(bytes.data() + 3, -1);
  com__bzero(nullptr, 0);
  EXPECT_EQ(bytes.contents(), "\0\0\0\xA5"s);
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", 0, (com__bzero(nullptr, 1), 0));
}

// ---- money ----

namespace {

CS_MONEY money(long long count) {
  return {static_cast<CS_INT>(count >> 32), static_cast<CS_UINT>(count)};
}

long long count_of(const CS_MONEY &value) {
  return static_cast<long long>(static_cast<CS_UBIGINT>(value.mnyhigh) << 32 | value.mnylow);
}

constexpr long long largest = std::numeric_limits<long long>::max(), smallest = -largest - 1;
constexpr CS_INT largest4 = 2147483647, smallest4 = -largest4 - 1;

struct Arithmetic {
  int status;
  long long count;
  bool operator==(const Arithmetic &) const = default;
};

Arithmetic combine(int (*operation)(CS_MONEY *, CS_MONEY *, CS_MONEY *), long long a, long long b) {
  CS_MONEY left = money(a), right = money(b), result = money(4711);
  const int status = operation(&left, &right, &result);
  return {status, count_of(result)};
}

Arithmetic combine4(int (*operation)(CS_MONEY4 *, CS_MONEY4 *, CS_MONEY4 *), CS_INT a, CS_INT b) {
  CS_MONEY4 left{a}, right{b}, result{4711};
  const int status = operation(&left, &right, &result);
  return {status, result.mny4};
}

} // namespace

TEST(LegacyMoneyArithmetic, Sums) {
  EXPECT_EQ(combine(com_mnyadd, 5, -7), (Arithmetic{NUME_OK, -2}));
  EXPECT_EQ(combine(com_mnyadd, largest, 1), (Arithmetic{NUME_OVERFLOW, 0}));
  EXPECT_EQ(combine(com_mnysub, 5, 7), (Arithmetic{NUME_OK, -2}));
  EXPECT_EQ(combine(com_mnysub, smallest, 1), (Arithmetic{NUME_OVERFLOW, 0}));
  EXPECT_EQ(combine(com_mnymul, 15000, -20000), (Arithmetic{NUME_OK, -30000}));
  EXPECT_EQ(combine(com_mnymul, 1, 5000), (Arithmetic{NUME_OK, 1})); // rounded
  EXPECT_EQ(combine(com_mnydivide, 1, 20000), (Arithmetic{NUME_OK, 0}));
  EXPECT_EQ(combine(com_mnydivide, 30000, -20000), (Arithmetic{NUME_OK, -15000}));
  EXPECT_EQ(combine(com_mnydivide, 1, 0), (Arithmetic{NUME_DIVZERO, 0}));
  EXPECT_EQ(combine4(com_mny4add, 5, -7), (Arithmetic{NUME_OK, -2}));
  EXPECT_EQ(combine4(com_mny4add, largest4, 1), (Arithmetic{NUME_OVERFLOW, 0}));
  EXPECT_EQ(combine4(com_mny4sub, 5, 7), (Arithmetic{NUME_OK, -2}));
  EXPECT_EQ(combine4(com_mny4sub, smallest4, 1), (Arithmetic{NUME_OVERFLOW, 0}));
  EXPECT_EQ(combine4(com_mny4mul, 15000, -20000), (Arithmetic{NUME_OK, -30000}));
  EXPECT_EQ(combine4(com_mny4divide, 30000, -20000), (Arithmetic{NUME_OK, -15000}));
  EXPECT_EQ(combine4(com_mny4divide, 1, 0), (Arithmetic{NUME_DIVZERO, 0}));
}

TEST(LegacyMoneyArithmetic, SingleValues) {
  CS_MONEY value = money(-5), other = money(0);
  EXPECT_EQ(com_mnycopy(&value, &other), NUME_OK);
  EXPECT_EQ(count_of(other), -5);
  EXPECT_EQ(com_mnyminus(&value, &other), NUME_OK);
  EXPECT_EQ(count_of(other), 5);
  value = money(smallest);
  EXPECT_EQ(com_mnyminus(&value, &other), NUME_OVERFLOW);
  value = money(largest);
  EXPECT_EQ(com_mnyinc(&value), NUME_OVERFLOW);
  EXPECT_EQ(count_of(value), smallest);
  value = money(0x100000000);
  EXPECT_EQ(com_mnydec(&value), NUME_OK);
  EXPECT_EQ(count_of(value), 0); // a step of the high word
  value = money(-12345);
  EXPECT_EQ(com_mnydown(&value, 10), 5);
  EXPECT_EQ(count_of(value), -1234);
  EXPECT_EQ(com_mnyscale(&value, 10, 7), NUME_OK);
  EXPECT_EQ(count_of(value), -12347);
  EXPECT_EQ(com_mnyinit(&value, 2), -1);
  EXPECT_EQ(count_of(value), 123);
  CS_CHAR digit = 0;
  EXPECT_EQ(com_mnyndigit(&value, &digit), 1);
  EXPECT_EQ(digit, '3');
  com_mnymaxpos(&value);
  EXPECT_EQ(count_of(value), largest);
  com_mnymaxneg(&value);
  EXPECT_EQ(count_of(value), smallest);
  EXPECT_EQ(com_mnyzero(&value), NUME_OK);
  EXPECT_EQ(count_of(value), 0);
  CS_MONEY4 small{-5}, small2{0};
  EXPECT_EQ(com_mny4copy(&small, &small2), NUME_OK);
  EXPECT_EQ(small2.mny4, -5);
  EXPECT_EQ(com_mny4minus(&small, &small2), NUME_OK);
  EXPECT_EQ(small2.mny4, 5);
  small = {smallest4};
  EXPECT_EQ(com_mny4minus(&small, &small2), NUME_OVERFLOW);
  EXPECT_EQ(small2.mny4, 5);
  EXPECT_EQ(com_mny4zero(&small), NUME_OK);
  EXPECT_EQ(small.mny4, 0);
}

TEST(LegacyMoneyArithmetic, Order) {
  // The high words are signed, the low ones are not.
  const long long ascending[] = {smallest, -1, 0, 1, 0x7FFFFFFF, 0x80000000, 0x100000000, largest};
  for (const long long a : ascending)
    for (const long long b : ascending) {
      CS_MONEY left = money(a), right = money(b);
      EXPECT_EQ(com_mnycmp(&left, &right), a < b ? -1 : a > b ? 1 : 0) << a << " " << b;
    }
  for (const CS_INT a : {smallest4, -1, 0, 1, largest4})
    for (const CS_INT b : {smallest4, -1, 0, 1, largest4}) {
      CS_MONEY4 left{a}, right{b};
      EXPECT_EQ(com_mny4cmp(&left, &right), a < b ? -1 : a > b ? 1 : 0) << a << " " << b;
    }
}

TEST(LegacyMoneyArithmetic, WideDivision) {
  CS_MONEY number = money(-1000000000000), divisor = money(0x500000003), quotient = money(0);
  com_mnyxdiv(&number, &divisor, &quotient); // by the low word alone
  EXPECT_EQ(count_of(quotient), -333333333333);
  divisor = money(100000);
  com_mnyxdiv(&number, &divisor, &quotient);
  EXPECT_EQ(count_of(quotient), -10000000);
  com__mny16div(&number, 0x10007, &quotient); // by the low 16 bits
  EXPECT_EQ(count_of(quotient), -142857142857);
}

TEST(LegacyMoneyArithmetic, NullPointers) {
  CS_MONEY4 small{1};
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", NUME_OVERFLOW, com_mnyzero(nullptr));
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", NUME_OVERFLOW, com_mny4zero(nullptr));
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", NUME_OVERFLOW, com_mny4copy(nullptr, &small));
  EXPECT_NULL_POINTER_CHECK("oldutil.cpp", NUME_OVERFLOW, com_mny4copy(&small, nullptr));
  EXPECT_NULL_POINTER_CHECK("mnyfuncs.cpp", NUME_OVERFLOW, com_mnyinc(nullptr));
}
