// Integers for callers without a context.
#include "integer.h"
#include "legacy.h"

namespace {

// Deliberate: what lies below the range is an underflow, which the matrix has as an overflow in places;
// but into the tiny integer it reads as an overflow, since that has no sign.
template <comn::integer::Type S, comn::integer::Type D>
CS_RETCODE to_integer(const CS_VOID *src, CS_VOID *dest, CS_INT *destlen) noexcept {
  const bool negative = comn::load<comn::integer::Value<S>>(src) < 0;
  const CS_RETCODE status = comn::integer::to_integer<S, D>(src, dest, destlen);
  if (D != comn::integer::i1 && status != CS_SUCCEED && negative)
    return CS_CONV_UNDERFLOW;
  return status;
}

} // namespace

#define COMN_OLD_INTEGER_UNIT(source, type)                                                        \
  COMN_OLD_TO_FIXED(source, i1, to_integer<comn::integer::source, comn::integer::i1>)              \
  COMN_OLD_TO_FIXED(source, i2, to_integer<comn::integer::source, comn::integer::i2>)              \
  COMN_OLD_TO_FIXED(source, i4, to_integer<comn::integer::source, comn::integer::i4>)              \
  COMN_OLD_TO_FIXED(source, flt4, comn::integer::to_float<comn::integer::source, CS_REAL>)         \
  COMN_OLD_TO_FIXED(source, flt8, comn::integer::to_float<comn::integer::source, CS_FLOAT>)        \
  COMN_OLD_TO_FIXED(source, bit, comn::integer::to_bit<comn::integer::source>)                     \
  COMN_OLD_TO_FIXED(source, money, comn::integer::to_money<comn::integer::source, CS_MONEY>)       \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_TO_FIXED(source, mny4, comn::integer::to_money<comn::integer::source, CS_MONEY4>)       \
  COMN_OLD_TO_TEXT(source, integer_text, , (comn::load<type>(src), dest, destlen))                 \
  COMN_OLD_TO_BYTES(source, copy_value<sizeof(type)>, src)

COMN_OLD_INTEGER_UNIT(i1, CS_TINYINT)
COMN_OLD_INTEGER_UNIT(i2, CS_SMALLINT)
COMN_OLD_INTEGER_UNIT(i4, CS_INT)
