// Conversions whose source is a date or time value: to the other value types and to binary.
//
// Each member names its source, its destination, the step between the two, and what the status of
// that step means to the caller. A step is one of the calendar's operations or a function of the
// unit; each unit instantiates the members of its source.
#ifndef COMN_CONVERT_DATE_VALUE_H
#define COMN_CONVERT_DATE_VALUE_H

#include "conv_func.h"
#include "datetime.h"
#include "raw_copy.h"

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
using Step = int (*)(typename Source::Value *source, typename Dest::Value *dest) noexcept;

// What the caller sees of the status of a step.
using Report = CS_RETCODE (*)(int status) noexcept;

// The step cannot fail, or its failure is not reported.
inline CS_RETCODE always(int) noexcept {
  return CS_SUCCEED;
}

// The step reports a value out of range by a status other than 0.
inline CS_RETCODE in_range(int status) noexcept {
  return status == 0 ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

// The step returns a code of its own. That microseconds were lost is no failure of a conversion.
inline CS_RETCODE narrowed(int status) noexcept {
  return status == CS_CONV_TRUNCATED ? CS_SUCCEED : status;
}

template <class Value>
int copy(Value *source, Value *dest) noexcept {
  *dest = *source;
  return 0;
}

// What a step leaves alone stays as it was in the destination.
template <class Source, class Dest, Step<Source, Dest> step, Report report, class Where>
CS_RETCODE convert(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, srcfmt->datatype == Source::code, destfmt->datatype == Dest::code);
  *destlen = sizeof(typename Dest::Value);
  auto source = load<typename Source::Value>(src);
  auto value = load<typename Dest::Value>(dest);
  const CS_RETCODE status = report(step(&source, &value));
  store(dest, value);
  return status;
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
#define COMN_DATE_MEMBER(source, destination, step, report)                                        \
  CS_RETCODE comn_##source##to##destination(COMN_CONV_PARAMETERS) noexcept {                       \
    using namespace comn::date_value;                                                              \
    return COMN_TRACE(                                                                             \
        (convert<source, destination, step, report>(COMN_CONV_ARGUMENTS, COMN_HERE)));             \
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
