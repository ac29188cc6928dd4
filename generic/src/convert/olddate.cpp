// Dates for callers without a context.
#include "date_value.h"
#include "legacy.h"

namespace {

namespace kinds = comn::date_value;
using namespace comn::legacy;

template <class Source, class Dest, kinds::Step<Source, Dest> step>
CS_RETCODE convert(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(typename Dest::Value);
  auto source = comn::load<typename Source::Value>(src);
  typename Dest::Value value;
  const CS_RETCODE status = kinds::in_range(step(&source, &value));
  if (status == CS_SUCCEED)
    comn::store(dest, value);
  return status;
}

// A text that was cut ends as its shape does.
template <class Shape, class Value>
CS_INT date_text(Value value, CS_BYTE *dest, CS_INT destlen, char **shortmonths,
                 CS_INT style) noexcept {
  const Shape shape(dest, destlen);
  char **const names = shortmonths == nullptr ? com__get_shortmonths() : shortmonths;
  CS_INT length;
  if constexpr (sizeof(Value) == sizeof(CS_DATETIME))
    length = com__datetochar(&value, chars(shape.text), shape.room, style, names);
  else
    length = com__date4tochar(&value, chars(shape.text), shape.room, style, names);
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

#define COMN_OLD_DATE_UNIT(source, type)                                                           \
  COMN_OLD_ALIAS(com_##source##todate, com_##source##todatetime)                                   \
  COMN_OLD_TO_TEXT(source, date_text, ,                                                            \
                   (comn::load<type>(src), dest, destlen, shortmonths, with_milliseconds),         \
                   char **shortmonths)                                                             \
  COMN_OLD_TO_BYTES(source, copy_bytes, src, sizeof(type))

COMN_OLD_TO_FIXED(date, datetime, convert<kinds::date, kinds::date, kinds::copy>)
COMN_OLD_TO_FIXED(date, date4, convert<kinds::date, kinds::date4, com__dttodate4>)
COMN_OLD_DATE_UNIT(date, CS_DATETIME)
COMN_OLD_TO_TEXT(date, date_text, _ex,
                 (comn::load<CS_DATETIME>(src), dest, destlen, shortmonths, style),
                 char **shortmonths, CS_INT style)

COMN_OLD_TO_FIXED(date4, datetime, convert<kinds::date4, kinds::date, com__date4todt>)
COMN_OLD_TO_FIXED(date4, date4, convert<kinds::date4, kinds::date4, kinds::copy>)
COMN_OLD_DATE_UNIT(date4, CS_DATETIME4)
