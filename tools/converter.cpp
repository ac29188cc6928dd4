// The road of one value through the library: from text to its type, to the other type, and to text.
#include "converter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "errors.h"
#include "status_names.h"
#include "visible.h"
#include "zrvcomn/numeric.h"
#include "zrvcomn/zrvstatus.h"

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

bool is_locator(const Type &type) {
  return type.code() >= CS_TYPE_TEXTLOCATOR && type.code() <= CS_TYPE_UNITEXTLOCATOR;
}

// The room for any result of `length` bytes: between text and 16-bit text a byte may become two, and two
// bytes three.
CS_INT open_capacity(CS_INT length) {
  constexpr CS_INT longest = std::numeric_limits<CS_INT>::max() / 2;
  return std::max(default_capacity, 2 * std::min(length, longest));
}

bool takes_any_text(Layout layout) {
  return has_open_length(layout) || layout == Layout::varchar || layout == Layout::varbinary;
}

template <class Value>
Value load(const char *bytes) {
  Value value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
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
                     std::optional<CS_INT> maxlength, const std::string &locale,
                     const std::string &charset)
    : context(locale, charset), from(from_type), to(to_type), reader(nullptr),
      member(context.conversion(from_type.code(), to_type.code())),
      printer(context.conversion(to_type.code(), CS_TYPE_CHAR)),
      takes_hex(from_type.layout() == Layout::text &&
                (to_type.layout() == Layout::binary || to_type.layout() == Layout::varbinary)),
      capacity(maxlength ? maxlength : to_type.length) {
  if (is_locator(from) || is_locator(to))
    throw UsageError("the command converts no locators, which own blocks of the library's memory");
  if (member == nullptr)
    throw UsageError(std::string("this release has no conversion from ") + from.info->name +
                     " to " + to.info->name);
  if (from.layout() != Layout::text && from.code() != CS_TYPE_VOID) {
    reader = context.conversion(CS_TYPE_CHAR, from.code());
    if (reader == nullptr)
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
  // Nor is an empty 16-bit text a value.
  if (from.layout() == Layout::unitext && read_length == 0 && is_success(status) &&
      !takes_any_text(to.layout()))
    return CS_CONV_SYNTAX;
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
      // 16-bit text may be longer than any value; a unit has at most three bytes of UTF-8.
      if (to.layout() == Layout::unitext)
        printed_bytes.resize(std::max(scratch_bytes, 2 * bytes.size()));
      printed_format.maxlength = static_cast<CS_INT>(printed_bytes.size());
      if (printer(context.get(), &shown_format, dest_bytes.data(), &printed_format,
                  printed_bytes.data(), &length) == CS_SUCCEED) {
        shown.assign(printed_bytes.data(), static_cast<size_t>(length));
        return;
      }
    }
  }
  shown = "0x";
  append_hex(shown, bytes);
}

// What a status has left is shown where it means something. Text and binary may be cut. Beyond their
// range, integers and floats have a nearest value, unless it comes from a text, and exact numerics may
// lose decimals, unless they come from one; an amount and a date have nothing.
bool Converter::leaves_result(CS_RETCODE status) const {
  const bool from_text = from.layout() == Layout::text || from.layout() == Layout::varchar ||
                         from.layout() == Layout::unitext;
  if (is_success(status))
    return true;
  if (zrv_status_usable(status) == 0)
    return false;
  switch (to.layout()) {
  case Layout::integer:
  case Layout::floating:
    return !from_text;
  case Layout::exact:
    return !from_text && status == CS_CONV_TRUNCATED;
  case Layout::other:
    return false;
  default:
    return true;
  }
}

Outcome Converter::convert(std::string_view value) {
  Outcome outcome{read(value), true, false, 0, {}, {}};
  if (!is_success(outcome.status)) {
    outcome.was_read = false;
    return outcome;
  }
  dest_format.maxlength = capacity ? *capacity
                          : from.layout() == Layout::unitext || to.layout() == Layout::unitext
                              ? open_capacity(source_format.maxlength)
                              : std::max(default_capacity, source_format.maxlength);
  // One byte more than the capacity: a default value that a user set is followed by a NUL.
  const size_t needed = std::max(static_cast<size_t>(dest_format.maxlength) + 1, scratch_bytes);
  if (dest_bytes.size() < needed)
    dest_bytes.resize(needed);
  // So that what a failed conversion left unwritten shows as nothing of the value before.
  std::memset(dest_bytes.data(), 0, scratch_bytes);
  outcome.status = member(context.get(), &source_format, source, &dest_format, dest_bytes.data(),
                          &outcome.length);
  outcome.is_usable = leaves_result(outcome.status);
  if (!outcome.is_usable)
    return outcome;
  outcome.bytes = used_bytes(outcome.length);
  show(outcome.bytes);
  outcome.text = shown;
  return outcome;
}

} // namespace zrvtool
