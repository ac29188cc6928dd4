#include "numeric_reference.h"

#include <cstring>
#include <vector>

namespace zrvtest {

namespace {

constexpr int max_digits = 77;

const Natural &power(int exponent) {
  static const std::vector<Natural> powers = [] {
    std::vector<Natural> table;
    for (int i = 0; i <= 256; ++i)
      table.push_back(Natural::power_of_ten(i));
    return table;
  }();
  return powers[static_cast<size_t>(exponent)];
}

bool exceeds(const Natural &magnitude, int precision) {
  return magnitude >= power(precision);
}

bool fits_bytes(const Natural &magnitude, int bytes) {
  unsigned char scratch[256];
  return magnitude.to_bytes(scratch, bytes);
}

bool bad_shape(const Decimal &a) {
  return a.precision < 1 || a.precision > max_digits || a.scale > max_digits;
}

Outcome failure(CS_RETCODE code) {
  Outcome outcome;
  outcome.code = code;
  return outcome;
}

// A failure after the shape of the result is known.
Outcome failure(CS_RETCODE code, const Decimal &result) {
  Outcome outcome = failure(code);
  outcome.has_shape = true;
  outcome.value = result;
  return outcome;
}

Outcome success(const Decimal &value) {
  Outcome outcome;
  outcome.value = value;
  outcome.value.negative = value.negative && !value.magnitude.is_zero();
  outcome.has_value = outcome.has_shape = true;
  return outcome;
}

} // namespace

int reference_shift(Natural &magnitude, int places, int bytes, int precision) {
  if (places > max_digits || places < -max_digits)
    return NUME_SYNTAX;
  if (places == 0)
    return fits_bytes(magnitude, bytes) ? NUME_OK : NUME_OVERFLOW;
  if (places > 0) {
    magnitude = magnitude * power(places);
    return fits_bytes(magnitude, bytes) ? NUME_OK : NUME_OVERFLOW;
  }
  bool lost = false;
  for (; places < 0; ++places)
    lost |= magnitude.divide_small(10) != 0;
  if (!fits_bytes(magnitude, bytes) || (precision <= max_digits && exceeds(magnitude, precision)))
    return NUME_OVERFLOW;
  return lost ? NUME_TRUNCATED : NUME_OK;
}

int reference_length(int precision) {
  static const std::vector<int> lengths = [] {
    std::vector<int> table;
    for (int i = 0; i <= max_digits; ++i) {
      int bytes = 1;
      while (!fits_bytes(power(i) - Natural(1), bytes))
        ++bytes;
      table.push_back(1 + bytes);
    }
    return table;
  }();
  return lengths.at(static_cast<size_t>(precision));
}

Decimal Decimal::of(const CS_NUMERIC &value) {
  Decimal result;
  result.precision = value.precision;
  result.scale = value.scale;
  result.negative = value.array[0] != 0;
  result.magnitude =
      Natural::from_bytes(value.array + 1, Com__Nume_Prec_To_Len[value.precision] - 1);
  return result;
}

CS_NUMERIC Decimal::pack() const {
  CS_NUMERIC value;
  std::memset(&value, 0xA5, sizeof value);
  value.precision = static_cast<CS_BYTE>(precision);
  value.scale = static_cast<CS_BYTE>(scale);
  value.array[0] = negative;
  magnitude.to_bytes(value.array + 1, Com__Nume_Prec_To_Len[precision] - 1);
  return value;
}

std::string Decimal::text() const {
  return reference_text(*this) + " (" + std::to_string(precision) + "," + std::to_string(scale) +
         ")";
}

std::string reference_text(const Decimal &a) {
  std::string digits = a.magnitude.digits();
  const auto scale = static_cast<size_t>(a.scale);
  while (digits.size() < scale + 1)
    digits = "0" + digits;
  if (a.scale > 0)
    digits.insert(digits.size() - scale, ".");
  return (a.negative && !a.magnitude.is_zero() ? "-" : "") + digits;
}

Outcome reference_convert(const Decimal &a, int precision, int scale) {
  Decimal result = a;
  result.precision = precision;
  result.scale = scale;
  const int bytes = reference_length(precision) - 1;
  if (!fits_bytes(result.magnitude, bytes))
    return failure(CS_CONV_OVERFLOW, result);
  const int status = scale == a.scale
                         ? NUME_OK
                         : reference_shift(result.magnitude, scale - a.scale, bytes, precision);
  if (status == NUME_OVERFLOW || exceeds(result.magnitude, precision))
    return failure(CS_CONV_OVERFLOW, result);
  Outcome outcome = success(result);
  if (status == NUME_TRUNCATED)
    outcome.code = CS_CONV_TRUNCATED;
  return outcome;
}

Outcome reference_add(const Decimal &first, const Decimal &second, bool subtract) {
  if (bad_shape(first) || bad_shape(second))
    return failure(CS_CONV_DOMAIN);
  Decimal a = first, b = second, result;
  if (a.precision != b.precision || a.scale != b.scale) {
    const int integers = std::max(a.precision - a.scale, b.precision - b.scale);
    const int scale = std::max(a.scale, b.scale);
    const int precision = std::min(integers + scale, max_digits);
    for (Decimal *operand : {&a, &b})
      if (operand->precision < precision || operand->scale < scale) {
        const Outcome converted = reference_convert(*operand, precision, scale);
        if (converted.code != CS_SUCCEED) {
          result.precision = std::min(precision + 1, max_digits);
          result.scale = scale;
          return failure(converted.code, result);
        }
        const bool negative = operand->negative;
        *operand = converted.value;
        operand->negative = negative;
      }
  }
  const int integers = std::min(std::max(a.precision - a.scale, b.precision - b.scale), max_digits);
  result.scale = std::min(std::max(a.scale, b.scale), max_digits);
  result.precision =
      integers + result.scale < max_digits ? integers + result.scale + 1 : max_digits;
  result.scale = std::min(result.scale, result.precision - integers);
  if (a.scale != b.scale || a.scale != result.scale)
    std::abort(); // the rules never lead here
  if (a.negative == (b.negative != subtract)) {
    result.magnitude = a.magnitude + b.magnitude;
    result.negative = a.negative;
  } else if (a.magnitude >= b.magnitude) {
    result.magnitude = a.magnitude - b.magnitude;
    result.negative = a.negative;
  } else {
    result.magnitude = b.magnitude - a.magnitude;
    result.negative = b.negative != subtract;
  }
  if (!fits_bytes(result.magnitude, reference_length(result.precision) - 1) ||
      exceeds(result.magnitude, result.precision))
    return failure(CS_CONV_OVERFLOW, result);
  return success(result);
}

Outcome reference_multiply(const Decimal &a, const Decimal &b) {
  if (bad_shape(a) || bad_shape(b))
    return failure(CS_CONV_DOMAIN);
  const int integers = std::min(a.precision - a.scale + b.precision - b.scale + 1, max_digits);
  Decimal result;
  result.scale = std::min(a.scale + b.scale, max_digits);
  result.precision = std::min(result.scale + integers, max_digits);
  result.scale = std::min(result.scale, result.precision - integers);
  if (result.precision < 1)
    return failure(CS_CONV_OVERFLOW);
  result.magnitude = a.magnitude * b.magnitude;
  result.negative = a.negative != b.negative;
  const int bytes = reference_length(result.precision) - 1;
  if (!fits_bytes(result.magnitude, result.precision >= a.precision + b.precision ? bytes : 32))
    return failure(CS_CONV_OVERFLOW, result);
  const int status =
      reference_shift(result.magnitude, result.scale - a.scale - b.scale, bytes, result.precision);
  if (status == NUME_SYNTAX)
    return failure(CS_CONV_SYNTAX, result);
  if (status == NUME_OVERFLOW || exceeds(result.magnitude, result.precision))
    return failure(CS_CONV_OVERFLOW, result);
  Outcome outcome = success(result);
  if (status == NUME_TRUNCATED)
    outcome.code = CS_CONV_OVERFLOW;
  return outcome;
}

Outcome reference_divide(const Decimal &a, const Decimal &b) {
  if (bad_shape(a) || bad_shape(b))
    return failure(CS_CONV_DOMAIN);
  const int integers = std::min(a.precision - a.scale + b.scale, max_digits);
  Decimal result;
  result.scale = a.precision + b.scale < 6 ? 6 : std::min(a.precision + b.scale + 1, max_digits);
  result.precision = std::min(result.scale + integers, max_digits);
  result.scale = std::min(result.scale, result.precision - integers);
  if (result.precision < 1)
    return failure(b.magnitude.is_zero() ? CS_CONV_DIVZERO : CS_CONV_OVERFLOW);
  if (b.magnitude.is_zero())
    return failure(CS_CONV_DIVZERO, result);
  const int k = result.scale + b.scale - a.scale;
  if (k > max_digits || k < -max_digits)
    return failure(CS_CONV_OVERFLOW, result);
  Natural dividend = a.magnitude, divisor = b.magnitude;
  int dividend_length = reference_length(a.precision);
  int divisor_length = reference_length(b.precision);
  int scratch = 0;
  if (k > 0) {
    dividend = dividend * power(k);
    dividend_length += reference_length(k) + 1;
    scratch = dividend_length;
  } else if (k < 0) {
    divisor = divisor * power(-k);
    divisor_length += reference_length(-k) + 1;
    scratch = divisor_length;
  }
  scratch += dividend_length + 1;
  if (scratch + divisor_length >= 133)
    return failure(CS_CONV_OVERFLOW, result);
  Natural remainder;
  result.magnitude = Natural::divide(dividend, divisor, remainder);
  result.negative = a.negative != b.negative;
  if (!fits_bytes(result.magnitude, reference_length(result.precision) - 1) ||
      exceeds(result.magnitude, result.precision))
    return failure(CS_CONV_OVERFLOW, result);
  return success(result);
}

int reference_compare(const Decimal &a, const Decimal &b) {
  if (a.negative != b.negative)
    return a.magnitude.is_zero() && b.magnitude.is_zero() ? 0 : a.negative ? -1 : 1;
  Natural left = a.magnitude, right = b.magnitude;
  if (a.scale != b.scale) {
    Natural &deep = a.scale > b.scale ? left : right;
    Natural &shallow = a.scale > b.scale ? right : left;
    const int deeper = std::max(a.scale, b.scale), difference = std::abs(a.scale - b.scale);
    if ((a.scale > b.scale ? b : a).precision + deeper <= max_digits)
      shallow = shallow * power(difference);
    else
      for (int i = 0; i < difference; ++i)
        deep.divide_small(10);
  }
  const int order = compare(left, right);
  return a.negative ? -order : order;
}

namespace {

bool is_space(char c) {
  return c == ' ' || (c >= 9 && c <= 15);
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

ParseResult stop(int status) {
  ParseResult result;
  result.status = status;
  return result;
}

// The length table by its telling rows, not by the library's own table.
int digits_of_length(int length) {
  if (length > 33)
    return 255;
  int precision = 0;
  while (precision < max_digits && reference_length(precision + 1) <= length)
    ++precision;
  return precision;
}

} // namespace

ParseResult reference_parse(const std::string &text, int len, int destlen, int precision, int scale,
                            int flag) {
  if (destlen == 0)
    destlen = 33;
  const int storable = digits_of_length(destlen);
  const bool given_precision = precision >= 1 && precision <= max_digits;
  const bool given_scale = scale <= max_digits;
  if (len < 0)
    return stop(NUME_SYNTAX);
  const std::string counted = text.substr(0, static_cast<size_t>(len));
  size_t letter = counted.find('e');
  if (letter == std::string::npos)
    letter = counted.find('E');
  const bool scientific = letter != std::string::npos;
  int64_t exponent = 0;
  if (scientific) {
    bool negative = false, tail = false;
    int position = 1;
    for (size_t i = letter + 1; text.c_str()[i] != '\0';) {
      const char c = text[i];
      if (position == 1) {
        if (c == '+' || c == '-') {
          negative = c == '-';
          ++i;
        }
        ++position;
        continue;
      }
      if (tail ? is_space(c) : position >= 4 && is_space(c))
        tail = true;
      else if (!tail && is_digit(c))
        exponent = exponent < 1000000000000000 ? exponent * 10 + (c - '0') : exponent;
      else
        return stop(NUME_SYNTAX);
      ++i;
      ++position;
    }
    if (negative)
      exponent = -exponent;
  }
  const int64_t round_position = scale + exponent;
  const int64_t rounding_place = scientific ? round_position : scale;

  Natural magnitude;
  bool negative = false, signed_already = false, leading = true;
  int64_t count = 0, after_point = -1, missed = 0;
  int significant = 0;
  size_t i = 0;
  for (; i < counted.size(); ++i) {
    const char c = counted[i];
    if (leading) {
      if (c == '+' || c == '-') {
        if (signed_already)
          return stop(NUME_SYNTAX);
        signed_already = true;
        negative = c == '-';
        continue;
      }
      if (c == ' ')
        continue;
      leading = false;
    }
    if (is_digit(c)) {
      const bool may_store = significant < storable &&
                             (scientific ? after_point < round_position : scale > after_point);
      if (may_store) {
        ++count;
        if (after_point >= 0)
          ++after_point;
        if (significant > 0 || c != '0')
          ++significant;
        magnitude.multiply_small(10, static_cast<uint32_t>(c - '0'));
        if (!fits_bytes(magnitude, destlen - 1))
          return stop(NUME_OVERFLOW);
        continue;
      }
      if (flag != 1)
        return stop(NUME_TRUNCATED);
      if (c >= '5' && after_point == rounding_place) {
        magnitude = magnitude + Natural(1);
        if (!fits_bytes(magnitude, destlen - 1))
          return stop(NUME_OVERFLOW);
        if (significant == 0)
          significant = 1;
      }
      ++missed;
      if (after_point < 0)
        continue;
      ++after_point;
      break;
    }
    if (c == '.' && after_point < 0) {
      after_point = 0;
      continue;
    }
    if (c == 'e' || c == 'E')
      break;
    if (is_space(c)) {
      while (i < counted.size())
        if (!is_space(counted[i++]))
          return stop(NUME_SYNTAX);
      break;
    }
    return stop(NUME_SYNTAX);
  }

  after_point = std::max<int64_t>(after_point, 0);
  const int64_t shift_by = exponent + missed - after_point;
  auto shift_value = [&](int64_t places) {
    if (places == 0)
      return NUME_OK;
    if (places > max_digits || places < -max_digits)
      return NUME_SYNTAX;
    return reference_shift(magnitude, static_cast<int>(places), destlen - 1,
                           given_precision ? precision : 200);
  };
  if (given_scale) {
    if (-(scale + shift_by) <= count) {
      const int status = shift_value(scale + shift_by);
      if (status != NUME_OK && !(status == NUME_TRUNCATED && flag == 1))
        return stop(status);
    } else if (flag == 1) {
      magnitude = Natural();
    } else {
      return stop(NUME_TRUNCATED);
    }
  } else if (shift_by > 0) {
    scale = 0;
    const int status = shift_value(shift_by);
    if (status != NUME_OK)
      return stop(status);
  } else {
    scale = static_cast<unsigned char>(after_point >= 1 ? after_point : shift_by);
  }

  ParseResult result;
  result.scale = scale;
  result.magnitude = magnitude;
  result.negative = negative && !magnitude.is_zero();
  result.length = destlen;
  result.precision = precision;
  if (given_precision) {
    if (exceeds(magnitude, precision))
      return stop(NUME_OVERFLOW);
    return result;
  }
  count = std::max<int64_t>(count, 1);
  if (count >= max_digits + 1)
    return stop(NUME_OVERFLOW);
  precision = static_cast<int>(count);
  if (precision > scale && precision > significant)
    precision = scale >= significant ? scale + 1 : significant;
  precision = std::max(precision, magnitude.digit_count());
  if (precision > max_digits || reference_length(precision) > destlen)
    return stop(NUME_OVERFLOW);
  result.precision = precision;
  result.length = reference_length(precision);
  result.offset = destlen - result.length;
  return result;
}

} // namespace zrvtest
