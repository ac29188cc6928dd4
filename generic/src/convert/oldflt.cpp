// Floats for callers without a context.
#include <clocale>
#include <cstdio>

#include "floating.h"
#include "legacy.h"

namespace {

using comn::legacy::write_number;

constexpr int significant_digits = 17;

// A format that takes nothing but one double, and for a precision that is a `*` an int in front of it.
struct Format {
  explicit Format(const char *format) noexcept {
    constexpr const char *digits = "0123456789";
    size_t literal = 0; // bytes that print as they stand, since the start or the conversion
    for (const char *at = format; *at != '\0'; ++literal) {
      if (*at++ != '%')
        continue;
      if (*at == '%') {
        ++at;
        continue;
      }
      if (is_usable) { // a second conversion
        is_usable = false;
        return;
      }
      is_usable = true;
      before = literal;
      at += std::strspn(at, "-+ #0");
      at += std::strspn(at, digits);
      if (*at == '.') {
        ++at;
        takes_precision = *at == '*';
        at += takes_precision ? 1 : std::strspn(at, digits);
      }
      if (*at == 'l') // means nothing to a double
        ++at;
      if (*at == '\0' || std::strchr("eEfFgGaA", *at) == nullptr) {
        is_usable = false;
        return;
      }
      ++at;
    }
    behind = is_usable ? literal - before - 1 : 0;
  }

  bool is_usable = false, takes_precision = false;
  size_t before = 0, behind = 0; // bytes of the text that are not of the number
};

// The text of a value in a format of the caller's.
class FormattedFloat {
public:
  FormattedFloat(const char *text, CS_FLOAT value) noexcept {
    const Format format(text);
    if (format.is_usable && !format.takes_precision)
      length_ = std::snprintf(room, sizeof room, text, value);
    else
      length_ = std::snprintf(room, sizeof room, format.is_usable ? text : "%.*g",
                              significant_digits, value);
    if (!fits())
      return;
    if (format.is_usable)
      use_point(room + format.before, room + length_ - format.behind);
    else
      use_point(room, room + length_);
    if (room[0] == '0' && room[1] == '.') {
      ++start;
      --length_;
    }
  }
  FormattedFloat(const FormattedFloat &) = delete;
  FormattedFloat &operator=(const FormattedFloat &) = delete;

  bool fits() const noexcept { return length_ >= 0 && length_ < CS_INT{sizeof room}; }
  const CS_CHAR *data() const noexcept { return start; }
  CS_INT length() const noexcept { return length_; }

private:
  // The number does not depend on the locale that the application has set.
  void use_point(CS_CHAR *begin, CS_CHAR *end) noexcept {
    const char *const mark = std::localeconv()->decimal_point;
    const size_t width = std::strlen(mark);
    CS_CHAR *const found = std::search(begin, end, mark, mark + width);
    if (width == 0 || found == end)
      return;
    *found = '.';
    std::memmove(found + 1, found + width, static_cast<size_t>(room + length_ - found) - width);
    length_ -= static_cast<CS_INT>(width) - 1;
  }

  CS_CHAR room[256];
  const CS_CHAR *start = room;
  CS_INT length_;
};

template <class Shape>
CS_INT float_text(CS_FLOAT value, CS_BYTE *dest, CS_INT destlen, const char *format) noexcept {
  const Shape shape(dest, destlen);
  if (format == nullptr) [[likely]] {
    // Deliberate: a negative zero shows its sign here, which the matrix takes away.
    constexpr bool signs_zero = true;
    const comn::floating::Text text(value, signs_zero);
    return write_number(shape, text.data(), text.length());
  }
  const FormattedFloat text(format, value);
  // What exceeds the buffer is too long for any room.
  return text.fits() ? write_number(shape, text.data(), text.length())
                     : comn::legacy::write_star(shape);
}

} // namespace

#define COMN_OLD_FLOAT_UNIT(source, type)                                                          \
  COMN_OLD_TO_FIXED(source, i1, to_integer<source, comn::floating::i1>)                            \
  COMN_OLD_TO_FIXED(source, i2, to_integer<source, comn::floating::i2>)                            \
  COMN_OLD_TO_FIXED(source, i4, to_integer<source, comn::floating::i4>)                            \
  COMN_OLD_TO_FIXED(source, flt4, to_float<source, CS_REAL>)                                       \
  COMN_OLD_TO_FIXED(source, flt8, to_float<source, CS_FLOAT>)                                      \
  COMN_OLD_TO_FIXED(source, bit, to_bit<source>)                                                   \
  COMN_OLD_TO_FIXED(source, money, to_money<source, CS_MONEY>)                                     \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_TO_FIXED(source, mny4, to_money<source, CS_MONEY4>)                                     \
  COMN_OLD_TO_TEXT(source, float_text, , (comn::load<type>(src), dest, destlen, fltfmt),           \
                   char *fltfmt)                                                                   \
  COMN_OLD_TO_BYTES(source, copy_value<sizeof(type)>, src)

using namespace comn::floating;
COMN_OLD_FLOAT_UNIT(flt4, CS_REAL)
COMN_OLD_FLOAT_UNIT(flt8, CS_FLOAT)
