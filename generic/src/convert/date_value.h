// Conversions whose source is a date or time value: to the other value types and to binary.
//
// Each member names its source, its destination and an operator between the two; each unit
// instantiates the members of its source.
#ifndef COMN_CONVERT_DATE_VALUE_H
#define COMN_CONVERT_DATE_VALUE_H

#include "conv_func.h"
#include "datetime.h"

namespace comn::date_value {

// The value types by the short names of the members.
template <class Type, CS_INT Code>
struct Kind {
  using Value = Type;
  static constexpr CS_INT code = Code;
};
using date = Kind<CS_DATETIME, CS_TYPE_DATETIME>;
using date4 = Kind<CS_DATETIME4, CS_TYPE_DATETIME4>;
using datea = Kind<CS_DATE, CS_TYPE_DATE>;
using timea = Kind<CS_TIME, CS_TYPE_TIME>;
using bigdatetime = Kind<CS_BIGDATETIME, CS_TYPE_BIGDATETIME>;
using bigtime = Kind<CS_BIGTIME, CS_TYPE_BIGTIME>;

template <class Source, class Dest>
using Operator = CS_RETCODE (*)(Source &source, Dest &dest) noexcept;

// What an operator leaves alone stays as it was in the destination.
template <class Source, class Dest, Operator<typename Source::Value, typename Dest::Value> Operate,
          class Where>
CS_RETCODE convert(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code, destfmt->datatype == Dest::code);
  *destlen = sizeof(typename Dest::Value);
  auto source = load<typename Source::Value>(src);
  auto value = load<typename Dest::Value>(dest);
  const CS_RETCODE status = Operate(source, value);
  store(dest, value);
  return status;
}

template <class Source, class Where>
CS_RETCODE to_binary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code,
                  binary_types.contains(destfmt->datatype) && destfmt->maxlength >= 0);
  return comn_fixedtobin(COMN_CONV_ARGUMENTS, sizeof(typename Source::Value));
}

template <class Source, class Where>
CS_RETCODE to_varbinary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code,
                  destfmt->datatype == CS_TYPE_VARBINARY && destfmt->maxlength >= 0);
  return comn_fixedtovarbin(COMN_CONV_ARGUMENTS, sizeof(typename Source::Value));
}

// The operators.

template <class Value>
CS_RETCODE copy(Value &source, Value &dest) noexcept {
  dest = source;
  return CS_SUCCEED;
}

// An operator whose failure, if it has any, the conversion does not report.
template <auto Step, class Source, class Dest>
CS_RETCODE always(Source &source, Dest &dest) noexcept {
  Step(&source, &dest);
  return CS_SUCCEED;
}

// An operator that reports a value out of range by a status other than 0.
template <auto Step, class Source, class Dest>
CS_RETCODE in_range(Source &source, Dest &dest) noexcept {
  return Step(&source, &dest) == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// An operator that returns a status of its own. That microseconds were lost is no failure of a
// conversion.
template <auto Step, class Source, class Dest>
CS_RETCODE narrowed(Source &source, Dest &dest) noexcept {
  const CS_RETCODE status = Step(&source, &dest);
  return status == CS_CONV_TRUNCATED ? CS_SUCCEED : status;
}

// Two operators, by way of a CS_DATETIME.
template <auto First, auto Second, class Source, class Dest>
CS_RETCODE by_datetime(Source &source, Dest &dest) noexcept {
  CS_DATETIME between;
  const CS_RETCODE status = First(source, between);
  return status == CS_SUCCEED ? Second(between, dest) : status;
}

} // namespace comn::date_value

// The members of a unit, by the short names of their types; the operator comes last. A binary
// member begins with `prefix`, which is not always the short name.
#define COMN_DATE_MEMBER(source, destination, ...)                                                 \
  CS_RETCODE comn_##source##to##destination(COMN_CONV_PARAMETERS) noexcept {                       \
    using namespace comn::date_value;                                                              \
    return convert<source, destination, __VA_ARGS__>(COMN_CONV_ARGUMENTS, COMN_HERE);              \
  }
#define COMN_DATE_TO_BIN(prefix, source)                                                           \
  CS_RETCODE comn_##prefix##tobin(COMN_CONV_PARAMETERS) noexcept {                                 \
    return comn::date_value::to_binary<comn::date_value::source>(COMN_CONV_ARGUMENTS, COMN_HERE);  \
  }
#define COMN_DATE_TO_VARBIN(prefix, source)                                                        \
  CS_RETCODE comn_##prefix##tovarbin(COMN_CONV_PARAMETERS) noexcept {                              \
    return comn::date_value::to_varbinary<comn::date_value::source>(COMN_CONV_ARGUMENTS,           \
                                                                    COMN_HERE);                    \
  }

#endif
