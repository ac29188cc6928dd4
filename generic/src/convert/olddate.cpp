// Dates for callers without a context.
#include "date_value.h"
#include "legacy.h"

namespace {

namespace kinds = comn::date_value;
using namespace comn::legacy;

// A text that was cut ends as its shape does. Every negative capacity is none, as to the layouts.
template <class Shape, class Kind>
CS_INT date_text(Kind, const CS_BYTE *src, CS_BYTE *dest, CS_INT destlen, char **shortmonths,
                 CS_INT style) noexcept {
  const Shape shape(dest, std::max(destlen, -1));
  if (shortmonths == nullptr)
    shortmonths = const_cast<char **>(own_Com__Shortmonths);
  const CS_INT length = Kind::write(src, chars(shape.text), shape.room, style, shortmonths);
  constexpr CS_INT cut = 0;
  if (length == cut) {
    shape.finish(shape.room);
    return COM_OLD_OVERFLOW;
  }
  if (length > 0)
    shape.finish(length);
  return length;
}

constexpr CS_INT with_milliseconds = 9;

} // namespace

#define COMN_OLD_DATE_UNIT(source)                                                                 \
  COMN_OLD_TO_FIXED(source, datetime, kinds::convert<kinds::source, kinds::date>)                  \
  COMN_OLD_ALIAS(com_##source##todate, com_##source##todatetime)                                   \
  COMN_OLD_TO_FIXED(source, date4, kinds::convert<kinds::source, kinds::date4>)                    \
  COMN_OLD_TO_TEXT(source, date_text, ,                                                            \
                   (kinds::source{}, src, dest, destlen, shortmonths, with_milliseconds),          \
                   char **shortmonths)                                                             \
  COMN_OLD_TO_BYTES(source, copy_value<sizeof(kinds::source::Value)>, src)

COMN_OLD_DATE_UNIT(date)
COMN_OLD_DATE_UNIT(date4)
COMN_OLD_TO_TEXT(date, date_text, _ex, (kinds::date{}, src, dest, destlen, shortmonths, style),
                 char **shortmonths, CS_INT style)
COMN_OLD_ALIAS(com_date2char, com_datetochar)
COMN_OLD_ALIAS(com_date2char_ex, com_datetochar_ex)
