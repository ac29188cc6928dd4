// CS_MONEY from and to text, integers and doubles.
#include <cmath>

#include "decimal_text.h"
#include "money.h"
#include "text.h"

namespace exact = comn::exact;
using exact::money_decimals;
using exact::money_limit;
using exact::money_unit;

namespace {

constexpr int group_digits = 3;

// ---- text to money ----

template <class Cursor>
class MoneyText {
public:
  explicit MoneyText(const Cursor &text) noexcept : cursor(text) {}

  int read() noexcept {
    int status = read_front();
    if (status == NUME_OK)
      status = read_number();
    return status == NUME_OK ? scale() : status;
  }

  // The count; after a failure the digits that had been read.
  int64_t count() const noexcept { return exact::count_of(magnitude, is_complete && is_negative); }

private:
  // Sign, blanks and currency symbol, in any order.
  int read_front() noexcept {
    bool has_sign = false, has_currency = false;
    for (; cursor.more(); cursor.next()) {
      const CS_BYTE c = cursor.ascii();
      if (c == '+' || c == '-') {
        if (has_sign)
          return NUME_SYNTAX;
        has_sign = true;
        is_negative = c == '-';
      } else if (c != ' ') {
        if (cursor.map().char_lex != CS_LEX_CURRENCY)
          break;
        if (has_currency)
          return NUME_SYNTAX;
        has_currency = true;
      }
    }
    return NUME_OK;
  }

  int read_number() noexcept {
    for (; cursor.more(); cursor.next()) {
      const CS_BYTE c = cursor.ascii();
      if (is_digit(c)) {
        if (!take(c - unsigned{'0'}))
          return NUME_OVERFLOW;
      } else if (c == '.' && decimals < 0) {
        if (has_short_group())
          return NUME_SYNTAX;
        decimals = 0;
      } else if (c == ',' && (group < 0 || group == group_digits)) {
        // Deliberate: the point does not count here, so a fraction may have commas too.
        has_commas = true;
        group = 0;
      } else {
        break;
      }
    }
    if (has_short_group())
      return NUME_SYNTAX;
    for (; cursor.more(); cursor.next())
      if ((cursor.map().char_type & CS_CTYPE_SPACE) == 0)
        return NUME_SYNTAX;
    return NUME_OK;
  }

  // Takes a digit; false when the number becomes too large.
  bool take(unsigned digit) noexcept {
    if (decimals >= money_decimals) [[unlikely]]
      return round(digit);
    ++group;
    decimals += decimals >= 0;
    // 2 to the 63 is reached by the smallest value alone, and has no room for more digits.
    constexpr uint64_t last = money_limit / 10;
    if (magnitude >= last) [[unlikely]]
      if (magnitude > last || digit >= money_limit % 10 + is_negative)
        return false;
    magnitude = magnitude * 10 + digit;
    return true;
  }

  // Deliberate: the fifth decimal alone rounds; those behind it have no effect.
  bool round(unsigned digit) noexcept {
    if (decimals == money_decimals) {
      if (magnitude == money_limit && digit != 0)
        return false;
      magnitude += digit >= 5;
      ++decimals;
    }
    return true;
  }

  int scale() noexcept {
    uint64_t scaled = magnitude;
    if (decimals < money_decimals &&
        __builtin_mul_overflow(magnitude, static_cast<uint64_t>(exact::scales[power()]), &scaled))
      return NUME_OVERFLOW;
    if (scaled >= money_limit + is_negative)
      return NUME_OVERFLOW;
    magnitude = scaled;
    is_complete = true;
    return NUME_OK;
  }

  size_t power() const noexcept { return decimals < 0 ? 0 : static_cast<size_t>(decimals); }
  bool has_short_group() const noexcept { return has_commas && group < group_digits; }
  static bool is_digit(CS_BYTE c) noexcept { return static_cast<CS_BYTE>(c - '0') < 10; }

  Cursor cursor;
  uint64_t magnitude = 0;
  int decimals = -1; // -1 before the point
  // Digits since the last comma. Deliberate: from this start the first comma follows none to three digits,
  // or seven.
  int group = -group_digits - 1;
  bool has_commas = false;
  bool is_negative = false;
  bool is_complete = false;
};

// ---- money to text ----

constexpr uint64_t powers_of_ten[] = {1, 10, 100, 1000, 10000};

// A magnitude with a number of decimals.
struct MoneyParts {
  uint64_t whole;
  unsigned fraction;
};

// Deliberate: the last digit dropped rounds alone.
MoneyParts round_to(uint64_t magnitude, int decimals) noexcept {
  if (decimals < money_decimals) {
    magnitude /= powers_of_ten[money_decimals - decimals - 1];
    magnitude = magnitude / 10 + (magnitude % 10 > 4);
  }
  const uint64_t unit = powers_of_ten[decimals];
  return {magnitude / unit, static_cast<unsigned>(magnitude % unit)};
}

// Writes the last digits of a number in front of `end`; where they begin.
char *write_digits(char *end, unsigned value, int count) noexcept {
  for (; count > 0; --count, value /= 10)
    *--end = static_cast<char>('0' + value % 10);
  return end;
}

// Writes a whole number with a comma in front of each three digits but the first, right-aligned.
char *write_groups(char *end, const char *digits, int count) noexcept {
  for (int i = count; i > 0; --i) {
    if (i != count && (count - i) % group_digits == 0)
      *--end = ',';
    *--end = digits[i - 1];
  }
  return end;
}

constexpr CS_INT with_commas = 1;

CS_CHAR *write_money(int64_t count, CS_CHAR *cp, CS_INT length, CS_INT style) noexcept {
  constexpr unsigned default_decimals = 2;
  const unsigned asked = static_cast<CS_UINT>(style) >> 8;
  const auto decimals =
      static_cast<int>(std::min<unsigned>(asked == 0 ? default_decimals : asked, money_decimals));
  const bool is_negative = count < 0, groups = (style & 0xFF) == with_commas;
  const MoneyParts parts = round_to(exact::magnitude_of(count), decimals);
  const comn::DecimalDigits<uint64_t> whole(parts.whole);
  const int digits = whole.count();
  const int commas = groups ? (digits - 1) / group_digits : 0;
  if (is_negative + digits + commas + 1 + decimals > length)
    return nullptr;
  CS_CHAR *start = write_digits(cp + length, parts.fraction, decimals);
  *--start = '.';
  if (groups) {
    char plain[std::numeric_limits<uint64_t>::digits10 + 1];
    whole.write(plain);
    start = write_groups(start, plain, digits);
    // Deliberate: a comma that would lead leaves a blank in its place, if there is room.
    if (digits % group_digits == 0 && start != cp)
      start[-1] = ' ';
  } else {
    start -= digits;
    whole.write(start);
  }
  if (is_negative)
    *--start = '-';
  return start;
}

// ---- integers ----

// Rounds to a whole number, half away from zero; what does not fit becomes the nearest limit.
template <class Integer>
int to_integer(CS_MONEY *mp, Integer *dest) noexcept {
  using Limits = std::numeric_limits<Integer>;
  const int64_t count = exact::load_count(mp);
  const bool is_negative = count < 0;
  if (is_negative && !Limits::is_signed)
    return NUME_OVERFLOW;
  const uint64_t magnitude = exact::magnitude_of(count);
  const uint64_t whole = magnitude / money_unit + (magnitude % money_unit >= money_unit / 2);
  const uint64_t limit = static_cast<uint64_t>(Limits::max()) + is_negative;
  const uint64_t stored = std::min(whole, limit);
  comn::store(dest, static_cast<Integer>(is_negative ? 0 - stored : stored));
  return stored == whole ? NUME_OK : NUME_OVERFLOW;
}

template <class Integer>
int from_integer(CS_MONEY *mp, const Integer *source) noexcept {
  const auto value = comn::load<Integer>(source);
  int64_t count = std::numeric_limits<int64_t>::max();
  if (!std::is_same_v<Integer, CS_UBIGINT> || value <= static_cast<Integer>(count))
    count = static_cast<int64_t>(value);
  exact::store_count(mp, count);
  return com__mnyscale(mp, money_unit, 0);
}

template <auto Operation, class Where, class... Values>
int run(Where where, Values *...values) noexcept {
  return exact::run_internal<Operation>(where, values...);
}

// ---- doubles ----

// The value of the low bit of the high word.
constexpr double high_word = 429496.7296;

// False, with zero, for what is no money.
bool from_double(double value, int64_t &count) noexcept {
  constexpr double half_tick = 5e-05, limit = 922337203685477.6;
  count = 0;
  double rest = std::fabs(value) + half_tick;
  if (!(rest <= limit)) // not a number either
    return false;
  if (rest == limit) {
    count = std::numeric_limits<int64_t>::max();
  } else {
    // The high word first, so that the fraction keeps its digits. What rounding does to the
    // division shows as a rest below zero, which the sum makes good.
    const auto high = static_cast<int64_t>(rest / high_word);
    rest -= static_cast<double>(high) * high_word;
    count = (high << 32) + static_cast<int64_t>(rest * static_cast<double>(money_unit));
  }
  if (value < 0)
    count = -count;
  return true;
}

double to_double(int64_t count) noexcept {
  return static_cast<double>(static_cast<uint32_t>(count)) / static_cast<double>(money_unit) +
         static_cast<double>(count >> 32) * high_word;
}

} // namespace

// ---- text ----

// All in one piece, so that what is read so far stays in registers.
[[gnu::flatten]] int com__mnyfromchar_mb(CS_MONEY *mp, CS_CHAR *icp, CS_INT ilen, CS_INT,
                                         CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(mp, NUME_OVERFLOW);
  COMN_CHECK_PTR(icp, NUME_OVERFLOW);
  return comn::with_cursor(comn::charset_or_builtin(chatr), reinterpret_cast<CS_BYTE *>(icp), ilen,
                           [mp](const auto &cursor) {
                             MoneyText text(cursor);
                             const int status = text.read();
                             exact::store_count(mp, text.count());
                             return status;
                           });
}

CS_CHAR *com__mnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style) noexcept {
  COMN_CHECK_PTR(mp, nullptr);
  COMN_CHECK_PTR(cp, nullptr);
  return write_money(exact::load_count(mp), cp, len, style);
}

// ---- the two sizes ----

CS_INT com__mnytomny4(CS_MONEY *mp, CS_MONEY4 *m4p) noexcept {
  COMN_CHECK_PTR(mp, -1);
  COMN_CHECK_PTR(m4p, -1);
  int32_t count;
  const bool fits = exact::narrow(exact::load_count(mp), count);
  exact::store_count(m4p, count);
  return fits ? static_cast<CS_INT>(sizeof *m4p) : -1;
}

// ---- integers ----

int com__mnytoint(CS_MONEY *mp, CS_INT *ip) noexcept {
  return run<to_integer<CS_INT>>(COMN_HERE, mp, ip);
}

int com__mnytoint8(CS_MONEY *mp, CS_BIGINT *ip) noexcept {
  return run<to_integer<CS_BIGINT>>(COMN_HERE, mp, ip);
}

int com__mnytouint(CS_MONEY *mp, CS_UINT *ip) noexcept {
  return run<to_integer<CS_UINT>>(COMN_HERE, mp, ip);
}

int com__mnytouint8(CS_MONEY *mp, CS_UBIGINT *ip) noexcept {
  return run<to_integer<CS_UBIGINT>>(COMN_HERE, mp, ip);
}

int com__inttomny(CS_MONEY *mp, CS_INT *ip) noexcept {
  return run<from_integer<CS_INT>>(COMN_HERE, mp, ip);
}

int com__int8tomny(CS_MONEY *mp, CS_BIGINT *ip) noexcept {
  return run<from_integer<CS_BIGINT>>(COMN_HERE, mp, ip);
}

int com__uinttomny(CS_MONEY *mp, CS_UINT *ip) noexcept {
  return run<from_integer<CS_UINT>>(COMN_HERE, mp, ip);
}

int com__uint8tomny(CS_MONEY *mp, CS_UBIGINT *ip) noexcept {
  return run<from_integer<CS_UBIGINT>>(COMN_HERE, mp, ip);
}

// ---- doubles ----

CS_INT com__flt8tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT, CS_INT) noexcept {
  COMN_CHECK_PTR(dest, -1);
  int64_t count = 0;
  const bool fits = src == nullptr || srclen == 0 || from_double(comn::load<CS_FLOAT>(src), count);
  exact::store_count(static_cast<CS_MONEY *>(dest), count);
  return fits ? static_cast<CS_INT>(sizeof(CS_MONEY)) : -1;
}

CS_INT com__flt4tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen,
                      CS_INT style) noexcept {
  const bool is_empty = src == nullptr || srclen == 0;
  CS_FLOAT wide = is_empty ? 0 : CS_FLOAT{comn::load<CS_REAL>(src)};
  return com__flt8tomny(&wide, srclen, dest, destlen, style);
}

CS_INT com__mnytoflt8(CS_VOID *src, CS_INT, CS_VOID *dest, CS_INT, CS_INT) noexcept {
  COMN_CHECK_PTR(src, -1);
  COMN_CHECK_PTR(dest, -1);
  comn::store(dest, to_double(exact::load_count(static_cast<CS_MONEY *>(src))));
  return sizeof(CS_FLOAT);
}

CS_INT com__mnytoflt4(CS_VOID *src, CS_INT, CS_VOID *dest, CS_INT, CS_INT) noexcept {
  COMN_CHECK_PTR(src, -1);
  COMN_CHECK_PTR(dest, -1);
  comn::store(dest,
              static_cast<CS_REAL>(to_double(exact::load_count(static_cast<CS_MONEY *>(src)))));
  return sizeof(CS_REAL);
}
