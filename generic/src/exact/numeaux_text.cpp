// Exact numerics from and to text.
//
// The rules for digits speak of one at a time. Those of a run that may be stored follow one another,
// so a run is stored at once. The magnitude cannot run out of the destination on the way, since no
// more digits are let through than always fit it; only lengths that no value has (34 to 36) have no
// such limit, and there the end of a run is early enough to see it: between its digits nothing else
// can end the conversion.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <limits>

#include "checks.h"
#include "digits.h"
#include "number.h"
#include "value_text.h"

namespace exact = comn::exact;
using exact::Field;
using exact::Limb;
using exact::Number;

namespace {

bool is_space(char c) noexcept {
  return com_isspace(static_cast<CS_BYTE>(c)) != 0;
}

bool only_space(const char *text, const char *end) noexcept {
  while (text < end)
    if (!is_space(*text++))
      return false;
  return true;
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

// Finds the exponent of a text behind the first "e", or else the first "E". It stays what it was
// without any.
int find_exponent(const char *text, CS_INT len, int64_t &exponent) noexcept {
  const void *letter = std::memchr(text, 'e', static_cast<size_t>(len));
  if (letter == nullptr)
    letter = std::memchr(text, 'E', static_cast<size_t>(len));
  if (letter == nullptr || read_exponent(static_cast<const char *>(letter) + 1, exponent))
    return NUME_OK;
  return NUME_SYNTAX;
}

// The magnitude that a text builds, of at most most_digits digits. They are collected in a word, and
// the magnitude is multiplied by the word's power of ten once.
class Accumulator {
public:
  // 36 bytes, the longest destination, hold 84 digits and some of 85.
  static constexpr int most_digits = 90;

  Accumulator() noexcept { clear(); }

  void clear() noexcept {
    number.size = 0;
    pending = 0;
    pending_digits = 0;
  }

  // Adds a number of `count` digits, at most limb_digits.
  void add(Limb value, int count) noexcept {
    if (pending_digits + count > exact::limb_digits)
      flush();
    pending = pending * exact::limb_power(count) + value;
    pending_digits += count;
  }

  void add_one() noexcept {
    flush();
    exact::increment(number);
  }

  // Brings in what is pending.
  void flush() noexcept {
    const Limb carry =
        exact::multiply_add(number.limbs, number.size, exact::limb_power(pending_digits), pending);
    if (carry != 0)
      number.limbs[number.size++] = carry;
    pending = 0;
    pending_digits = 0;
  }

  bool exceeds(int bytes) noexcept {
    flush();
    return !exact::fits(number, {nullptr, bytes, Field::any_digits});
  }

  Number number;

private:
  Limb pending;
  int pending_digits;
};

// Adds the digits at `text`, up to `stop` or to the first other character, where it returns. The
// text begins at `begin`.
const char *add_digits(Accumulator &magnitude, const char *begin, const char *text,
                       const char *stop) noexcept {
  constexpr int word_digits = 8;
  for (; stop - text >= word_digits; text += word_digits) {
    const auto word = comn::load<uint64_t>(text);
    if (exact::non_digits(word) != 0)
      break;
    magnitude.add(exact::eight_digits_value(word), word_digits);
  }
  // Fewer digits than a word has are the end of one, where there is text enough in front of them.
  const auto left = static_cast<int>(stop - text);
  if (left > 0 && left < word_digits && stop - begin >= word_digits) {
    const uint64_t in_front = UINT64_MAX >> 8 * left;
    const uint64_t word =
        (comn::load<uint64_t>(stop - word_digits) & ~in_front) | (exact::zero_digits & in_front);
    if (exact::non_digits(word) == 0) {
      magnitude.add(exact::eight_digits_value(word), left);
      return stop;
    }
  }
  Limb value = 0;
  int count = 0;
  for (; text < stop && exact::is_digit(*text); ++text, ++count)
    value = value * 10 + static_cast<Limb>(*text - '0');
  if (count > 0)
    magnitude.add(value, count);
  return text;
}

// Which digits of a mantissa may be stored.
struct Limits {
  int bytes;      // of the magnitude
  int digits;     // in all, leading zeroes aside
  int64_t places; // behind the point; below 0, not even digits in front of it
  bool may_drop;  // the others, with rounding
};

// What a scan answers where it would have to know the exponent.
constexpr int exponent_needed = -1;

// What a scan counts.
struct Counts {
  bool negative = false;
  int64_t stored = 0;    // digits stored, leading zeroes among them
  int significant = 0;   // and without them
  int64_t fraction = -1; // digits behind the point, -1 before it
  int64_t missed = 0;    // digits dropped
};

// Scans the mantissa of a text, and counts what the rest of the conversion goes by.
class Mantissa {
public:
  Mantissa(Accumulator &digits, const char *text, CS_INT len, const Limits &what_fits) noexcept
      : magnitude(digits), begin(text), at(text), end(text + len), limits(what_fits) {}

  // NUME_OK, or why the conversion ends here. An exponent changes the limits; while nobody has
  // looked for one, the scan gives up where something would depend on it.
  int scan(bool exponent_known) noexcept {
    if (!skip_front())
      return NUME_SYNTAX;
    while (at < end) {
      if (exact::is_digit(*at)) {
        store_digits();
        // No more digits are let through than always fit, but for lengths that no value has.
        if (counts.significant > exact::max_power && magnitude.exceeds(limits.bytes))
          return exponent_known ? NUME_OVERFLOW : exponent_needed;
        if (at == end || !exact::is_digit(*at))
          continue;
        if (!exponent_known)
          return exponent_needed;
        if (!limits.may_drop)
          return NUME_TRUNCATED;
        if (!drop_digit())
          return NUME_OVERFLOW;
        // Deliberate: the text behind a dropped fraction digit is not looked at, whatever it is.
        if (in_fraction())
          break;
      } else if (*at == '.' && !in_fraction()) {
        counts.fraction = 0;
        ++at;
      } else if (!exponent_known) {
        return exponent_needed;
      } else if (!is_at_end()) {
        return NUME_SYNTAX;
      } else {
        break;
      }
    }
    magnitude.flush();
    return NUME_OK;
  }

  // Begins anew, for the places that an exponent leaves.
  void restart(int64_t places) noexcept {
    magnitude.clear();
    counts = Counts();
    at = begin;
    limits.places = places;
  }

  Counts counts;

private:
  bool in_fraction() const noexcept { return counts.fraction >= 0; }

  // Blanks and one sign; false at a second sign.
  bool skip_front() noexcept {
    bool has_sign = false;
    for (; at < end; ++at) {
      if (*at == '+' || *at == '-') {
        if (has_sign)
          return false;
        has_sign = true;
        counts.negative = *at == '-';
      } else if (*at != ' ') {
        break;
      }
    }
    return true;
  }

  // How many more digits have a place: any number in front of the point.
  int64_t room_by_place() const noexcept {
    const int64_t room = limits.places - counts.fraction;
    return room > 0 && !in_fraction() ? std::numeric_limits<int64_t>::max() : room;
  }

  const char *after(int64_t count) const noexcept { return end - at > count ? at + count : end; }

  // Stores what may be stored of a run of digits. Leading zeroes count by their places alone.
  void store_digits() noexcept {
    const int64_t room = room_by_place();
    if (room <= 0)
      return;
    const char *const start = at, *stop = after(room);
    if (counts.significant == 0)
      while (at < stop && *at == '0')
        ++at;
    const char *const first = at;
    stop = std::min(stop, after(limits.digits - counts.significant));
    at = add_digits(magnitude, begin, at, stop);
    counts.significant += static_cast<int>(at - first);
    counts.stored += at - start;
    if (in_fraction())
      counts.fraction += at - start;
  }

  // Drops a digit: at the rounding place, one of 5 and more adds one to the magnitude. False when
  // that has no room.
  bool drop_digit() noexcept {
    if (*at >= '5' && counts.fraction == limits.places) {
      magnitude.add_one();
      if (magnitude.exceeds(limits.bytes))
        return false;
      counts.significant = std::max(counts.significant, 1);
    }
    ++counts.missed;
    ++at;
    if (in_fraction())
      ++counts.fraction;
    return true;
  }

  // True where a mantissa may end before the text does.
  bool is_at_end() const noexcept { return *at == 'e' || *at == 'E' || only_space(at, end); }

  Accumulator &magnitude;
  const char *begin, *at, *end;
  Limits limits;
};

// Shifts a magnitude by any number of digits.
int shift_far(Number &number, int64_t shift, const Field &field) noexcept {
  constexpr int64_t too_far = exact::max_power + 1;
  return exact::shift_number(number, static_cast<int>(std::clamp(shift, -too_far, too_far)), field);
}

// Brings a scanned magnitude to the scale that is given, or chooses one.
int settle_scale(Number &number, const Counts &counts, int64_t exponent, const Field &field,
                 bool may_drop, CS_BYTE &scale) noexcept {
  const int64_t fraction = std::max<int64_t>(counts.fraction, 0);
  const int64_t shift = exponent + counts.missed - fraction;
  if (scale <= CS_MAX_SCALE) {
    const int64_t places = scale + shift;
    if (-places > counts.stored) {
      // Too far down to leave any digit.
      number.size = 0;
      return may_drop ? NUME_OK : NUME_TRUNCATED;
    }
    const int status = places == 0 ? NUME_OK : shift_far(number, places, field);
    return status == NUME_TRUNCATED && may_drop ? NUME_OK : status;
  }
  if (shift > 0) {
    scale = 0;
    return shift_far(number, shift, field);
  }
  // Deliberate: the low byte of a negative shift is stored as it is.
  scale = static_cast<CS_BYTE>(fraction >= 1 ? fraction : shift);
  return NUME_OK;
}

// The digits written, leading zeroes aside, but one in front of the point, and never fewer than the
// value has; above 77 when there is no such precision.
int choose_precision(const Number &number, const Counts &counts, int scale) noexcept {
  if (counts.stored > CS_MAX_PREC)
    return CS_MAX_PREC + 1;
  int precision = std::max(static_cast<int>(counts.stored), 1);
  if (precision > scale && precision > counts.significant)
    precision = scale >= counts.significant ? scale + 1 : counts.significant;
  // A shift up and a carry have made digits that were not counted.
  while (precision <= CS_MAX_PREC && !exact::fits(number, {nullptr, INT_MAX, precision}))
    ++precision;
  return precision;
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
  if (*destlen == 0)
    *destlen = sizeof(CS_NUMERIC::array);
  const CS_INT length = *destlen;
  if (!exact::is_length(length))
    return NUME_OVERFLOW;
  const bool may_drop = flag == 1, given_precision = !exact::is_automatic(*precision);
  const Field field{*dest, length - 1, given_precision ? *precision : Field::any_digits};

  Accumulator magnitude;
  Mantissa mantissa(magnitude, text, std::max(len, 0),
                    {field.bytes,
                     std::min<int>(own_Com__Nume_Len_To_Prec[length - 2], Accumulator::most_digits),
                     *scale, may_drop});
  int64_t exponent = 0;
  int status = len < 0 ? NUME_SYNTAX : NUME_OK;
  for (bool exponent_known = false; status == NUME_OK; exponent_known = true) {
    status = mantissa.scan(exponent_known);
    if (status != exponent_needed)
      break;
    status = find_exponent(text, len, exponent);
    mantissa.restart(*scale + exponent);
  }
  if (status == NUME_OK)
    status = settle_scale(magnitude.number, mantissa.counts, exponent, field, may_drop, *scale);
  CS_INT used = length;
  if (status == NUME_OK && !given_precision) {
    const int chosen = choose_precision(magnitude.number, mantissa.counts, *scale);
    if (chosen > CS_MAX_PREC || own_Com__Nume_Prec_To_Len[chosen] > length) {
      status = NUME_OVERFLOW;
    } else {
      *precision = static_cast<CS_BYTE>(chosen);
      used = own_Com__Nume_Prec_To_Len[chosen];
    }
  }
  // What the value does not take is cleared: all of it after a failure.
  const CS_INT unused = status == NUME_OK ? length - used : length;
  if (unused > 0)
    std::memset(field.array, 0, static_cast<size_t>(unused));
  if (status != NUME_OK)
    return status;
  *dest = field.array + unused;
  *destlen = used;
  return exact::store_number({*dest, used - 1, field.digits}, magnitude.number,
                             mantissa.counts.negative);
}

int com__subexctnumetochar(__CONSTANT *srcconst, CS_CHAR *dest, CS_INT destlen) noexcept {
  COMN_CHECK_PTR(srcconst, -1);
  COMN_CHECK_PTR(dest, -1);
  Number number;
  if (!exact::load_number(number, *srcconst))
    return -1;
  const exact::ValueText text(number, srcconst->scale, exact::is_negative(*srcconst));
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
