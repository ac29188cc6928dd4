// Conversions whose source is a date or time value: to the other value types and to binary.
//
// Between a source and a destination stands a step and what the status of that step means to the
// caller: the rules below. A step is one of the calendar's operations or made of two. Each unit
// instantiates the members of its source.
#ifndef COMN_CONVERT_DATE_VALUE_H
#define COMN_CONVERT_DATE_VALUE_H

#include "calendar.h"
#include "conv_func.h"
#include "datetime.h"
#include "raw_copy.h"

namespace comn::date_value {

// The value types by the short names of the members, with the layout of their text.
template <class Type, CS_INT Code, CS_INT (*Write)(Type *, CS_CHAR *, CS_INT, CS_INT, CS_CHAR **)>
struct Kind {
  using Value = Type;
  static constexpr CS_INT code = Code;
  // The length of the text, 0 when it was cut, -1 for an unknown style, below that for a name that is
  // missing.
  static CS_INT write(const CS_VOID *src, CS_CHAR *text, CS_INT room, CS_INT style,
                      CS_CHAR **shortmonths) noexcept {
    auto value = load<Type>(src);
    return Write(&value, text, room, style, shortmonths);
  }
};
using date = Kind<CS_DATETIME, CS_TYPE_DATETIME, com__datetochar>;
using date4 = Kind<CS_DATETIME4, CS_TYPE_DATETIME4, com__date4tochar>;
using datea = Kind<CS_DATE, CS_TYPE_DATE, com__dateatochar>;
using timea = Kind<CS_TIME, CS_TYPE_TIME, com__timeatochar>;
using bigdatetime = Kind<CS_BIGDATETIME, CS_TYPE_BIGDATETIME, com__bigdatetimetochar>;
using bigtime = Kind<CS_BIGTIME, CS_TYPE_BIGTIME, com__bigtimetochar>;

// What a layout could not write is one of two failures.
inline CS_RETCODE layout_failure(CS_INT length) noexcept {
  return length == -1 ? CS_CONV_DATEBUFFER : CS_CONV_SYNTAX;
}

// What the caller sees of the status of a step: nothing, since it cannot fail or its failure is not
// reported;
inline CS_RETCODE always(int) noexcept {
  return CS_SUCCEED;
}

// that a value is out of range, by a status other than 0;
inline CS_RETCODE in_range(int status) noexcept {
  return status == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// a code of its own. That microseconds were lost is no failure of a conversion.
inline CS_RETCODE narrowed(int status) noexcept {
  return status == CS_CONV_TRUNCATED ? CS_SUCCEED : status;
}

// ---- steps that no operation of the calendar is ----

template <class Value>
int copy(Value *source, Value *dest) noexcept {
  *dest = *source;
  return 0;
}

// By way of a date-time; nothing is stored when the source is out of its range.
template <class Value, int (*Widen)(Value *, CS_DATETIME *), class Dest,
          int (*Narrow)(CS_DATETIME *, Dest *)>
int through_datetime(Value *source, Dest *dest) noexcept {
  CS_DATETIME wide;
  return Widen(source, &wide) != 0 || Narrow(&wide, dest) != 0;
}

// Rounded to a tick, then to the minute. A code of its own comes from the first alone.
inline CS_RETCODE round_twice(CS_BIGTIME *source, CS_DATETIME4 *dest) noexcept {
  CS_DATETIME between;
  const CS_RETCODE status = narrowed(com__bigtimetodate(source, &between));
  return status == CS_SUCCEED ? in_range(com__dttodate4(&between, dest)) : status;
}

// The date is 0001-01-01.
inline int add_first_day(CS_BIGTIME *source, CS_BIGDATETIME *dest) noexcept {
  *dest = *source + calendar::first_bigdatetime;
  return 0;
}

// ---- rules ----

// A step, and what its status means.
template <class Source, class Dest>
struct Rule {
  int (*step)(typename Source::Value *, typename Dest::Value *) noexcept;
  CS_RETCODE (*report)(int) noexcept;
};

template <class Source, class Dest>
constexpr Rule<Source, Dest> rule = nullptr; // there is none but the rows below
template <class Kind>
constexpr Rule<Kind, Kind> rule<Kind, Kind>{copy, always};

#define COMN_DATE_RULE(source, destination, ...)                                                   \
  template <>                                                                                      \
  inline constexpr Rule<source, destination> rule<source, destination> {                           \
    __VA_ARGS__                                                                                    \
  }
// clang-format off
COMN_DATE_RULE(date, date4, com__dttodate4, in_range);
COMN_DATE_RULE(date, datea, com__datetodatea, always);
COMN_DATE_RULE(date, timea, com__datetotimea, always);
COMN_DATE_RULE(date, bigdatetime, com__datetobigdatetime, always);
COMN_DATE_RULE(date, bigtime, com__datetobigtime, always);
COMN_DATE_RULE(date4, date, com__date4todt, always);
COMN_DATE_RULE(date4, datea, through_datetime<CS_DATETIME4, com__date4todt, CS_DATE, com__datetodatea>, always);
COMN_DATE_RULE(date4, timea, through_datetime<CS_DATETIME4, com__date4todt, CS_TIME, com__datetotimea>, always);
COMN_DATE_RULE(date4, bigdatetime, com__date4tobigdatetime, always);
COMN_DATE_RULE(date4, bigtime, through_datetime<CS_DATETIME4, com__date4todt, CS_BIGTIME, com__datetobigtime>, always);
COMN_DATE_RULE(datea, date4, through_datetime<CS_DATE, com__dateatodate, CS_DATETIME4, com__dttodate4>, in_range);
COMN_DATE_RULE(datea, date, com__dateatodate, in_range);
COMN_DATE_RULE(datea, bigdatetime, com__dateatobigdatetime, in_range);
COMN_DATE_RULE(timea, date4, through_datetime<CS_TIME, com__timeatodate, CS_DATETIME4, com__dttodate4>, in_range);
COMN_DATE_RULE(timea, date, com__timeatodate, always);
COMN_DATE_RULE(timea, bigdatetime, com__timeatobigdatetime, always);
COMN_DATE_RULE(timea, bigtime, com__timeatobigtime, always);
COMN_DATE_RULE(bigdatetime, date4, com__bigdttodate4, in_range);
COMN_DATE_RULE(bigdatetime, date, com__bigdatetimetodate, narrowed);
COMN_DATE_RULE(bigdatetime, datea, com__bigdatetimetodatea, always);
COMN_DATE_RULE(bigdatetime, timea, com__bigdatetimetotimea, narrowed);
COMN_DATE_RULE(bigdatetime, bigtime, com__bigdatetimetobigtime, always);
COMN_DATE_RULE(bigtime, date4, round_twice, narrowed);
COMN_DATE_RULE(bigtime, date, com__bigtimetodate, narrowed);
COMN_DATE_RULE(bigtime, timea, com__bigtimetotimea, narrowed);
COMN_DATE_RULE(bigtime, bigdatetime, add_first_day, always);
// clang-format on
#undef COMN_DATE_RULE

// What a step leaves alone stays as it was in the destination.
template <class Source, class Dest>
CS_RETCODE convert(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(typename Dest::Value);
  auto source = load<typename Source::Value>(src);
  auto value = load<typename Dest::Value>(dest);
  const CS_RETCODE status = rule<Source, Dest>.report(rule<Source, Dest>.step(&source, &value));
  store(dest, value);
  return status;
}

template <class Source, class Dest, class Where>
CS_RETCODE checked_convert(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code, destfmt->datatype == Dest::code);
  return convert<Source, Dest>(src, dest, destlen);
}

template <class Source, class Where>
CS_RETCODE to_binary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code,
                  binary_types.contains(destfmt->datatype) && destfmt->maxlength >= 0);
  return fixed_to_binary(COMN_CONV_ARGUMENTS, sizeof(typename Source::Value));
}

template <class Source, class Where>
CS_RETCODE to_varbinary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code,
                  destfmt->datatype == CS_TYPE_VARBINARY && destfmt->maxlength >= 0);
  return fixed_to_varbinary(COMN_CONV_ARGUMENTS, sizeof(typename Source::Value));
}

} // namespace comn::date_value

// The members of a unit, by the short names of their types. A binary member begins with `prefix`,
// which is not always the short name.
#define COMN_DATE_MEMBER(source, destination)                                                      \
  CS_RETCODE comn_##source##to##destination(COMN_CONV_PARAMETERS) noexcept {                       \
    using namespace comn::date_value;                                                              \
    return COMN_TRACE((checked_convert<source, destination>(COMN_CONV_ARGUMENTS, COMN_HERE)));     \
  }
#define COMN_DATE_TO_BIN(prefix, source)                                                           \
  CS_RETCODE comn_##prefix##tobin(COMN_CONV_PARAMETERS) noexcept {                                 \
    using namespace comn;                                                                          \
    return COMN_TRACE(date_value::to_binary<date_value::source>(COMN_CONV_ARGUMENTS, COMN_HERE));  \
  }
#define COMN_DATE_TO_VARBIN(prefix, source)                                                        \
  CS_RETCODE comn_##prefix##tovarbin(COMN_CONV_PARAMETERS) noexcept {                              \
    using namespace comn;                                                                          \
    return COMN_TRACE(                                                                             \
        date_value::to_varbinary<date_value::source>(COMN_CONV_ARGUMENTS, COMN_HERE));             \
  }

#endif
