// The road of one value through the library. What the library cannot do yet is done here, and
// gives way by itself as soon as the matrix has a function for it.
#include "converter.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

#include "errors.h"
#include "status_names.h"
#include "visible.h"
#include "zrvcomn/numeric.h"

namespace zrvtool {

namespace {

// The room for a result whose type has no width and whose length nobody told, unless its source is
// longer.
constexpr CS_INT default_capacity = 256;

// Any fixed type fits, and a number as text.
constexpr size_t scratch_bytes = 512;

bool has_open_length(Layout layout) {
  return layout == Layout::text || layout == Layout::binary || layout == Layout::unitext;
}

template <class Value>
Value load(const char *bytes) {
  Value value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// Reads an integer, by the rules of the library for text: blanks may stand around the sign and the
// digits, a text without digits is 0, and the wide unsigned types take no minus.
template <class Integer>
CS_RETCODE read_integer(std::string_view text, char *dest, bool takes_minus = true) {
  const auto is_blank = [](char c) { return com_isspace(static_cast<CS_BYTE>(c)) != 0; };
  const auto skip_blanks = [&] {
    while (!text.empty() && is_blank(text.front()))
      text.remove_prefix(1);
  };
  skip_blanks();
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    if (negative && !takes_minus)
      return CS_CONV_SYNTAX;
    text.remove_prefix(1);
    skip_blanks();
  }
  CS_UBIGINT magnitude = 0;
  const char *const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, magnitude);
  text.remove_prefix(static_cast<size_t>(rest - text.data()));
  skip_blanks();
  if (!text.empty())
    return CS_CONV_SYNTAX;

  using Limits = std::numeric_limits<Integer>;
  const CS_UBIGINT limit =
      negative ? CS_UBIGINT{0} - static_cast<CS_UBIGINT>(Limits::min()) : CS_UBIGINT{Limits::max()};
  if (error == std::errc::result_out_of_range || magnitude > limit)
    return CS_CONV_OVERFLOW;
  const auto value = static_cast<Integer>(negative ? CS_UBIGINT{0} - magnitude : magnitude);
  std::memcpy(dest, &value, sizeof value);
  return CS_SUCCEED;
}

// The matrix has no way from text to the integers yet, so the command parses them itself.
CS_RETCODE read_integer(CS_INT code, std::string_view text, char *dest) {
  switch (code) {
  case CS_TYPE_TINYINT:
    return read_integer<CS_TINYINT>(text, dest);
  case CS_TYPE_SMALLINT:
    return read_integer<CS_SMALLINT>(text, dest);
  case CS_TYPE_INT:
    return read_integer<CS_INT>(text, dest);
  case CS_TYPE_BIGINT:
    return read_integer<CS_BIGINT>(text, dest);
  case CS_TYPE_USMALLINT:
    return read_integer<CS_USMALLINT>(text, dest);
  case CS_TYPE_UINT:
    return read_integer<CS_UINT>(text, dest, false);
  case CS_TYPE_UBIGINT:
    return read_integer<CS_UBIGINT>(text, dest, false);
  default:
    return CS_FAIL;
  }
}

// Reads a decimal number without an exponent into a numeric of the shape of `type`; blanks may
// stand around it. The matrix has no way from text to the numerics yet either. No digit is dropped.
CS_RETCODE read_numeric(const Type &type, std::string_view text, char *dest) {
  const auto is_blank = [](char c) { return com_isspace(static_cast<CS_BYTE>(c)) != 0; };
  while (!text.empty() && is_blank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back()))
    text.remove_suffix(1);
  CS_NUMERIC value{};
  value.precision = static_cast<CS_BYTE>(type.precision);
  value.scale = static_cast<CS_BYTE>(type.scale);
  const bool negative = !text.empty() && text.front() == '-';
  if (!text.empty() && (text.front() == '-' || text.front() == '+'))
    text.remove_prefix(1);

  // The digits as they would stand at the scale of the type.
  const size_t point = std::min(text.find('.'), text.size());
  std::string digits(text.substr(0, point));
  std::string_view fraction = text.substr(std::min(point + 1, text.size()));
  digits += fraction;
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
    return CS_CONV_SYNTAX;
  if (fraction.size() > static_cast<size_t>(type.scale))
    return CS_CONV_TRUNCATED;
  digits.append(static_cast<size_t>(type.scale) - fraction.size(), '0');
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
  if (digits.size() > static_cast<size_t>(type.precision))
    return CS_CONV_OVERFLOW;

  const CS_INT length = comn_num_getlen(type.precision);
  for (const char digit : digits) {
    int carry = digit - '0';
    for (CS_INT i = length - 1; i > 0; --i) {
      carry += value.array[i] * 10;
      value.array[i] = static_cast<CS_BYTE>(carry);
      carry >>= 8;
    }
  }
  value.array[0] = negative && !digits.empty();
  std::memcpy(dest, &value, sizeof value);
  return CS_SUCCEED;
}

bool is_own_integer(const Type &type) {
  return type.layout() == Layout::integer && type.code() != CS_TYPE_BIT;
}

// The shortest digits that give the same value again.
template <class Float>
void show_float(std::string &out, const char *bytes) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, load<Float>(bytes));
  out.append(digits, end);
}

CS_DATAFMT make_format(const Type &type) {
  CS_DATAFMT format{};
  format.datatype = type.code();
  format.precision = type.precision;
  format.scale = type.scale;
  return format;
}

} // namespace

Converter::Converter(const Type &from_type, const Type &to_type, CS_INT format,
                     std::optional<CS_INT> maxlength)
    : from(from_type), to(to_type), reader(nullptr),
      member(context.conversion(from_type.code(), to_type.code())),
      printer(context.conversion(to_type.code(), CS_TYPE_CHAR)),
      takes_hex(from_type.layout() == Layout::text &&
                (to_type.layout() == Layout::binary || to_type.layout() == Layout::varbinary)),
      capacity(maxlength ? maxlength : to_type.length) {
  if (member == nullptr)
    throw UsageError(std::string("this release has no conversion from ") + from.info->name +
                     " to " + to.info->name);
  if (from.layout() != Layout::text && from.code() != CS_TYPE_VOID) {
    reader = context.conversion(CS_TYPE_CHAR, from.code());
    if (reader == nullptr && !is_own_integer(from) && from.layout() != Layout::exact)
      throw UsageError(std::string("this release reads no text as ") + from.info->name);
  }
  if (!capacity && !has_open_length(to.layout()))
    if (const CS_INT width = comn_typelen(to.code(), 0); width > 0)
      capacity = width;

  text_format.datatype = CS_TYPE_CHAR;
  source_format = make_format(from);
  source_format.maxlength = comn_typelen(from.code(), 0);
  dest_format = make_format(to);
  dest_format.format = format;
  shown_format = make_format(to);
  printed_format.datatype = CS_TYPE_CHAR;
  printed_format.maxlength = scratch_bytes;
  printed_bytes.resize(scratch_bytes);
  source_bytes.resize(scratch_bytes);
}

// Makes the text the source value, and says why it is none.
CS_RETCODE Converter::read(std::string_view value) {
  constexpr auto longest = static_cast<size_t>(std::numeric_limits<CS_INT>::max() / 2);
  if (value.size() > longest)
    return CS_CONV_OVERFLOW;
  const auto length = static_cast<CS_INT>(value.size());
  auto *const text = const_cast<char *>(value.data());
  source = source_bytes.data();
  if (from.code() == CS_TYPE_VOID)
    return CS_SUCCEED;
  if (from.length && length > *from.length && from.layout() == Layout::text)
    return CS_CONV_OVERFLOW;
  if (from.layout() == Layout::text) {
    // No bytes are no hexadecimal number, and no call that the library allows.
    if (length == 0 && takes_hex)
      return CS_CONV_SYNTAX;
    if (length > 0)
      source = text;
    source_format.maxlength = length;
    return CS_SUCCEED;
  }
  if (reader == nullptr && from.layout() == Layout::exact)
    return read_numeric(from, value, source_bytes.data());
  if (reader == nullptr)
    return read_integer(from.code(), value, source_bytes.data());

  const bool is_binary = from.layout() == Layout::binary || from.layout() == Layout::varbinary;
  if (length == 0 && is_binary)
    return CS_CONV_SYNTAX;
  // 16-bit text takes two bytes for a character, and everything else no more than its text.
  const CS_INT room = from.length ? *from.length
                      : has_open_length(from.layout())
                          ? 2 * length
                          : std::max(comn_typelen(from.code(), 0), default_capacity);
  source_bytes.resize(std::max({source_bytes.size(), static_cast<size_t>(room), scratch_bytes}));
  source = source_bytes.data();
  text_format.maxlength = length;
  source_format.maxlength = room;
  CS_INT read_length = 0;
  const CS_RETCODE status =
      reader(context.get(), &text_format, length > 0 ? text : source_bytes.data(), &source_format,
             source, &read_length);
  source_format.maxlength = read_length;
  return status;
}

// The bytes of the destination that belong to the result.
std::string_view Converter::used_bytes(CS_INT length) const {
  const auto reported = std::min(static_cast<size_t>(std::max(length, 0)), dest_bytes.size());
  if (to.layout() != Layout::varchar && to.layout() != Layout::varbinary)
    return {dest_bytes.data(), reported};
  // Of a record, what lies behind its data is no part of the value.
  const auto used = static_cast<size_t>(
      std::clamp<CS_INT>(load<CS_SMALLINT>(dest_bytes.data()), 0, sizeof(CS_VARCHAR::str)));
  return {dest_bytes.data(), std::min(reported, offsetof(CS_VARCHAR, str) + used)};
}

void Converter::show(std::string_view bytes) {
  constexpr size_t head = offsetof(CS_VARCHAR, str);
  shown.clear();
  if (bytes.empty())
    return;
  switch (to.layout()) {
  case Layout::text:
    shown = bytes;
    return;
  case Layout::varchar:
    shown = bytes.substr(std::min(head, bytes.size()));
    return;
  case Layout::binary:
    break;
  case Layout::varbinary:
    bytes.remove_prefix(std::min(head, bytes.size()));
    break;
  default:
    if (printer != nullptr) {
      CS_INT length = 0;
      shown_format.maxlength = static_cast<CS_INT>(bytes.size());
      if (printer(context.get(), &shown_format, dest_bytes.data(), &printed_format,
                  printed_bytes.data(), &length) == CS_SUCCEED) {
        shown.assign(printed_bytes.data(), static_cast<size_t>(length));
        return;
      }
    } else if (to.code() == CS_TYPE_FLOAT) {
      return show_float<CS_FLOAT>(shown, dest_bytes.data());
    } else if (to.code() == CS_TYPE_REAL) {
      return show_float<CS_REAL>(shown, dest_bytes.data());
    } else if (to.code() == CS_TYPE_BIT) {
      shown = dest_bytes[0] != 0 ? "1" : "0";
      return;
    }
  }
  shown = "0x";
  append_hex(shown, bytes);
}

Outcome Converter::convert(std::string_view value) {
  Outcome outcome{read(value), true, 0, {}, {}};
  if (!is_success(outcome.status)) {
    outcome.was_read = false;
    return outcome;
  }
  dest_format.maxlength =
      capacity ? *capacity : std::max(default_capacity, source_format.maxlength);
  // One byte more than the capacity: a default value that a user set is followed by a NUL.
  const size_t needed = std::max(static_cast<size_t>(dest_format.maxlength) + 1, scratch_bytes);
  if (dest_bytes.size() < needed)
    dest_bytes.resize(needed);
  // So that what a failed conversion left unwritten shows as nothing of the value before.
  std::memset(dest_bytes.data(), 0, scratch_bytes);
  outcome.status = member(context.get(), &source_format, source, &dest_format, dest_bytes.data(),
                          &outcome.length);
  outcome.bytes = used_bytes(outcome.length);
  show(outcome.bytes);
  outcome.text = shown;
  return outcome;
}

} // namespace zrvtool
