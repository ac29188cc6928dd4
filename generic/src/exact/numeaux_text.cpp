// Exact numerics from and to text.
//
// The scan follows the rules digit by digit, but the digits enter the magnitude in chunks: those of
// one run that the rules let through one after the other are collected in a word, and the magnitude
// is multiplied by the word's power of ten once. The magnitude cannot run out of the destination on
// the way, since no more digits are let through than always fit it; only lengths that no value has
// (34 to 36) have no such limit, and there every digit from the 78th on enters by itself.
#include <algorithm>
#include <cerrno>
#include <limits>

#include "checks.h"
#include "digits.h"
#include "number.h"
#include "value_text.h"

namespace exact = comn::exact;
using exact::Limb;
using exact::Number;

namespace {

constexpr int unlimited_digits = std::numeric_limits<int>::max();

bool is_space(char c) noexcept {
  return com_isspace(static_cast<CS_BYTE>(c)) != 0;
}

bool only_space(const char *text, const char *end) noexcept {
  while (text < end)
    if (!is_space(*text++))
      return false;
  return true;
}

// Where the first "e" stands, or else the first "E"; null without any.
const char *find_exponent(const char *text, size_t len) noexcept {
  const void *found = std::memchr(text, 'e', len);
  if (found == nullptr)
    found = std::memchr(text, 'E', len);
  return static_cast<const char *>(found);
}

// Reads an exponent up to the NUL behind it. The counter of places decides what may come: a sign in
// the first, digits alone in the second and third, white space to the end from the fourth on. A
// first character that is no sign is looked at in the second place, so white space needs two
// characters of exponent in front of it.
bool read_exponent(const char *text, int64_t &exponent) noexcept {
  // Far beyond every effect of an exponent but the byte that a negative one may leave as a scale.
  constexpr int64_t limit = 1000000000000000;
  bool negative = false;
  int64_t value = 0;
  int place = 2;
  if (*text == '+' || *text == '-')
    negative = *text++ == '-';
  for (; *text != '\0'; ++text, ++place) {
    if (exact::is_digit(*text)) {
      if (value < limit)
        value = value * 10 + (*text - '0');
    } else if (place >= 4 && is_space(*text)) {
      while (*text != '\0')
        if (!is_space(*text++))
          return false;
      break;
    } else {
      return false;
    }
  }
  exponent = negative ? -value : value;
  return true;
}

// The magnitude that a text builds.
class Accumulator {
public:
  explicit Accumulator(int bytes) noexcept : room(bytes) { number.size = 0; }

  void reset() noexcept {
    number.size = 0;
    pending = 0;
    pending_digits = 0;
  }

  void add_digit(int digit) noexcept { add_digits(static_cast<Limb>(digit), 1); }

  void add_digits(Limb value, int count) noexcept {
    if (pending_digits + count > exact::limb_digits)
      flush();
    pending = pending * exact::limb_power(count) + value;
    pending_digits += count;
  }

  // False when the magnitude has run out of its room.
  bool flush() noexcept {
    if (number.size == 0) {
      number.limbs[0] = pending;
      number.size = pending != 0;
      pending = 0;
      pending_digits = 0;
    } else if (pending_digits > 0) {
      const Limb carry = exact::multiply_add(number.limbs, number.size,
                                             exact::limb_power(pending_digits), pending);
      if (carry != 0)
        number.limbs[number.size++] = carry;
      pending = 0;
      pending_digits = 0;
    }
    return exact::fits(number, room);
  }

  bool round_up() noexcept {
    flush();
    exact::increment(number);
    return exact::fits(number, room);
  }

  Number number;

private:
  int room;
  Limb pending = 0;
  int pending_digits = 0;
};

// What the caller asked for, with the length settled.
struct Request {
  int bytes;      // of the destination, sign byte aside
  int max_digits; // that may be stored
  int64_t target; // fraction digits that may be stored
  bool may_drop;  // with rounding
};

// The counters of a scan.
struct Scan {
  bool negative = false;
  int64_t stored = 0;    // digits stored, leading zeroes among them
  int significant = 0;   // and without them
  int64_t fraction = -1; // digits behind the point, -1 before it
  int64_t missed = 0;    // digits dropped
  bool rounded_up = false;
};

// What a plain scan answers where it would have to know whether there is an exponent.
constexpr int not_plain = -1;

// Scans the mantissa: NUME_OK, or why it ends the conversion. A plain scan is one that does not
// know yet whether an exponent follows: it takes a sign, digits and a point to the very end of the
// text, where that is all and every digit is stored.
template <bool Plain>
[[gnu::always_inline]] inline int scan_mantissa(const char *text, const char *end,
                                                const Request &request, Scan &scan,
                                                Accumulator &magnitude) noexcept {
  const char *const begin = text;
  bool signed_already = false;
  for (; text < end; ++text) {
    if (*text == '+' || *text == '-') {
      if (signed_already)
        return NUME_SYNTAX;
      signed_already = true;
      scan.negative = *text == '-';
    } else if (*text != ' ') {
      break;
    }
  }
  while (text < end) {
    const char c = *text;
    if (!exact::is_digit(c)) {
      if (c == '.' && scan.fraction < 0) {
        scan.fraction = 0;
        ++text;
        continue;
      }
      if (Plain)
        return not_plain;
      if (c == 'e' || c == 'E')
        break;
      if (is_space(c) && only_space(text, end))
        break;
      return NUME_SYNTAX;
    }
    // How many digits of this run may be stored: so many by their places, and by their number.
    const bool in_fraction = scan.fraction >= 0;
    const int64_t places = request.target - scan.fraction;
    int room = places <= 0                                 ? 0
               : !in_fraction || places > unlimited_digits ? unlimited_digits
                                                           : static_cast<int>(places);
    const char *const start = text;
    if (scan.significant == 0) {
      while (room > 0 && text < end && *text == '0') {
        ++text;
        --room;
      }
    }
    const char *const first = text;
    room = std::min(room, request.max_digits - scan.significant);
    const char *const stop = end - text > room ? text + room : end;
    if (scan.significant + (stop - text) <= exact::max_power) {
      while (stop - text >= 8) {
        const auto word = comn::load<uint64_t>(text);
        if (exact::non_digits(word) != 0)
          break;
        magnitude.add_digits(exact::eight_digits_value(word), 8);
        text += 8;
      }
      // Fewer than eight digits are left. Behind other text they are the end of a word, too.
      const auto left = static_cast<int>(stop - text);
      if (left > 0 && left < 8 && stop - begin >= 8) {
        uint64_t word;
        std::memcpy(&word, stop - 8, sizeof word);
        const uint64_t before = UINT64_MAX >> 8 * left;
        word = (word & ~before) | (exact::zero_digits & before);
        if (exact::non_digits(word) == 0) {
          magnitude.add_digits(exact::eight_digits_value(word), left);
          text = stop;
        }
      }
      Limb rest = 0;
      const char *const rest_start = text;
      for (; text < stop; ++text) {
        const auto digit = static_cast<unsigned char>(*text - '0');
        if (digit > 9)
          break;
        rest = rest * 10 + digit;
      }
      if (text != rest_start)
        magnitude.add_digits(rest, static_cast<int>(text - rest_start));
      scan.significant += static_cast<int>(text - first);
    } else {
      for (; text < stop && exact::is_digit(*text); ++text) {
        magnitude.add_digit(*text - '0');
        if (++scan.significant > exact::max_power && !magnitude.flush())
          return Plain ? not_plain : NUME_OVERFLOW;
      }
    }
    scan.stored += text - start;
    if (in_fraction)
      scan.fraction += text - start;
    if (text == end || !exact::is_digit(*text))
      continue;

    // A digit that cannot be stored.
    if (Plain)
      return not_plain;
    if (!request.may_drop)
      return NUME_TRUNCATED;
    if (*text >= '5' && scan.fraction == request.target) {
      if (!magnitude.round_up())
        return NUME_OVERFLOW;
      scan.rounded_up = true;
      scan.significant = std::max(scan.significant, 1);
    }
    ++scan.missed;
    ++text;
    if (in_fraction) {
      // Deliberate: the rest of the text is not looked at, whatever it is.
      ++scan.fraction;
      break;
    }
  }
  magnitude.flush();
  return NUME_OK;
}

} // namespace

int com__subchartoexctnume(CS_CHAR *text, CS_INT len, CS_BYTE **dest, CS_INT *destlen,
                           CS_BYTE *precision, CS_BYTE *scale, CS_INT flag) noexcept {
  COMN_CHECK_PTR(text, NUME_OVERFLOW);
  COMN_CHECK_PTR(dest, NUME_OVERFLOW);
  COMN_CHECK_PTR(*dest, NUME_OVERFLOW);
  COMN_CHECK_PTR(destlen, NUME_OVERFLOW);
  COMN_CHECK_PTR(precision, NUME_OVERFLOW);
  COMN_CHECK_PTR(scale, NUME_OVERFLOW);
  constexpr CS_INT longest = sizeof(CS_NUMERIC::array);
  if (*destlen == 0)
    *destlen = longest;
  const CS_INT length = *destlen;
  if (length < 2 || length - 2 >= static_cast<CS_INT>(sizeof Com__Nume_Len_To_Prec))
    return NUME_OVERFLOW;
  CS_BYTE *const field = *dest;
  const bool given_precision = *precision >= CS_MIN_PREC && *precision <= CS_MAX_PREC;
  const bool given_scale = *scale <= CS_MAX_SCALE;
  Request request{length - 1, Com__Nume_Len_To_Prec[length - 2], *scale, flag == 1};
  Scan scan;
  Accumulator magnitude(request.bytes);
  int64_t exponent = 0;
  // The field is written in full at the end, or left cleared.
  const auto clear = [&] { std::memset(field, 0, static_cast<size_t>(length)); };
  if (len < 0) {
    clear();
    return NUME_SYNTAX;
  }
  const char *const end = text + len;
  int status = scan_mantissa<true>(text, end, request, scan, magnitude);
  if (status != NUME_OK || !given_precision)
    clear();
  if (status == not_plain) {
    const char *const letter = find_exponent(text, static_cast<size_t>(len));
    if (letter != nullptr && !read_exponent(letter + 1, exponent))
      return NUME_SYNTAX;
    request.target += exponent;
    scan = Scan();
    magnitude.reset();
    status = scan_mantissa<false>(text, end, request, scan, magnitude);
  }
  if (status != NUME_OK)
    return status;

  Number &number = magnitude.number;
  const int64_t fraction = std::max<int64_t>(scan.fraction, 0);
  const int64_t shift = exponent + scan.missed - fraction;
  bool grown = scan.rounded_up;
  int64_t places = 0;
  if (given_scale) {
    places = *scale + shift;
    if (-places > scan.stored) {
      // Too far down to leave any digit: only an exponent goes there, and the field is cleared.
      if (!request.may_drop)
        return NUME_TRUNCATED;
      number.size = 0;
      places = 0;
    }
  } else if (shift > 0) {
    *scale = 0;
    places = shift;
  } else {
    // Deliberate: the low byte of a negative shift is stored as it is.
    *scale = static_cast<CS_BYTE>(fraction >= 1 ? fraction : shift);
  }
  if (places != 0) {
    const int by = static_cast<int>(std::clamp<int64_t>(places, -1000, 1000));
    status =
        exact::shift_number(number, by, request.bytes, given_precision ? *precision : UINT8_MAX);
    if (status != NUME_OK && !(given_scale && request.may_drop && status == NUME_TRUNCATED)) {
      clear();
      return status;
    }
    grown = true;
  }

  CS_INT used = length;
  if (given_precision) {
    if (exact::reaches_power(number.limbs, number.size, *precision))
      status = NUME_OVERFLOW;
    else
      status = NUME_OK;
  } else {
    if (scan.stored > CS_MAX_PREC)
      return NUME_OVERFLOW;
    int digits = std::max(static_cast<int>(scan.stored), 1);
    if (digits > *scale && digits > scan.significant)
      digits = *scale >= scan.significant ? *scale + 1 : scan.significant;
    // A shift up and a carry have made digits that were not counted.
    if (grown)
      while (digits <= CS_MAX_PREC && exact::reaches_power(number.limbs, number.size, digits))
        ++digits;
    if (digits > CS_MAX_PREC || Com__Nume_Prec_To_Len[digits] > length)
      return NUME_OVERFLOW;
    *precision = static_cast<CS_BYTE>(digits);
    used = Com__Nume_Prec_To_Len[digits];
    *dest = field + length - used;
    *destlen = used;
    status = NUME_OK;
  }
  (*dest)[0] = scan.negative && number.size != 0;
  exact::store_bytes(*dest + 1, used - 1, number.limbs, number.size);
  return status;
}

int com__subexctnumetochar(__CONSTANT *srcconst, CS_CHAR *dest, CS_INT destlen) noexcept {
  COMN_CHECK_PTR(srcconst, -1);
  COMN_CHECK_PTR(dest, -1);
  Number number;
  if (!exact::load_number(number, *srcconst))
    return -1;
  const exact::ValueText text(number.limbs, number.size, srcconst->scale,
                              exact::is_negative(*srcconst));
  if (text.length() > destlen)
    return -1;
  text.write(dest + destlen - text.length());
  return destlen - text.length();
}

namespace {

// Reads digits up to the first other character. False when the number exceeds `limit`.
bool read_digits(const char *text, uint64_t limit, uint64_t &value) noexcept {
  value = 0;
  for (; exact::is_digit(*text); ++text) {
    const auto digit = static_cast<uint64_t>(*text - '0');
    if (value > (limit - digit) / 10)
      return false;
    value = value * 10 + digit;
  }
  return true;
}

} // namespace

CS_BIGINT zrvatoll(CS_CHAR *text) noexcept {
  COMN_CHECK_PTR(text, 0);
  using Bounds = std::numeric_limits<CS_BIGINT>;
  bool negative = false;
  if (*text == '-') {
    negative = true;
    ++text;
  }
  // Deliberate: a "+" is taken behind a "-" as well, and wins.
  if (*text == '+') {
    negative = false;
    ++text;
  }
  if (!exact::is_digit(*text)) {
    errno = EINVAL;
    return 0;
  }
  uint64_t value;
  if (!read_digits(text, static_cast<uint64_t>(Bounds::max()) + negative, value)) {
    errno = ERANGE;
    return negative ? Bounds::min() : Bounds::max();
  }
  return static_cast<CS_BIGINT>(negative ? 0 - value : value);
}

CS_UBIGINT zrvatoull(CS_CHAR *text) noexcept {
  COMN_CHECK_PTR(text, 0);
  if (*text == '-') {
    errno = ERANGE;
    return 0;
  }
  if (*text == '+')
    ++text;
  if (!exact::is_digit(*text)) {
    errno = EINVAL;
    return 0;
  }
  uint64_t value;
  if (!read_digits(text, UINT64_MAX, value)) {
    errno = ERANGE;
    return UINT64_MAX;
  }
  return value;
}
