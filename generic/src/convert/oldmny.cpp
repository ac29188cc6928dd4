// Money of both sizes for callers without a context.
#include "legacy.h"
#include "money_family.h"

namespace {

using comn::legacy::write_number;

// Two decimals, whole or as a star; the matrix would cut it.
template <class Shape, class Money>
CS_INT money_text(Money value, CS_BYTE *dest, CS_INT destlen) noexcept {
  CS_CHAR room[24]; // the longest text has 21
  constexpr CS_INT two_decimals = 0;
  const CS_CHAR *start;
  if constexpr (sizeof(Money) == sizeof(CS_MONEY))
    start = com__mnytochar(&value, room, sizeof room, two_decimals);
  else
    start = com__mny4tochar(&value, room, sizeof room, two_decimals);
  return write_number(Shape(dest, destlen), start, static_cast<CS_INT>(room + sizeof room - start));
}

} // namespace

#define COMN_OLD_MONEY_UNIT(source, type)                                                          \
  COMN_OLD_TO_FIXED(source, i1, to_integer<source, comn::money_family::i1>)                        \
  COMN_OLD_TO_FIXED(source, i2, to_integer<source, comn::money_family::i2>)                        \
  COMN_OLD_TO_FIXED(source, i4, to_integer<source, comn::money_family::i4>)                        \
  COMN_OLD_TO_FIXED(source, flt4, to_float<source, CS_REAL>)                                       \
  COMN_OLD_TO_FIXED(source, flt8, to_float<source, CS_FLOAT>)                                      \
  COMN_OLD_TO_FIXED(source, bit, to_bit<source>)                                                   \
  COMN_OLD_TO_FIXED(source, money, to_money<source, money>)                                        \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_TO_FIXED(source, mny4, to_money<source, mny4>)                                          \
  COMN_OLD_TO_TEXT(source, money_text, , (comn::load<type>(src), dest, destlen))                   \
  COMN_OLD_TO_BYTES(source, copy_value<sizeof(type)>, src)

using namespace comn::money_family;
COMN_OLD_MONEY_UNIT(money, CS_MONEY)
COMN_OLD_MONEY_UNIT(mny4, CS_MONEY4)
