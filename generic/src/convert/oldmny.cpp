// Money of both sizes for callers without a context.
#include "legacy.h"
#include "money_family.h"

namespace {

using namespace comn::money_family;

// Two decimals, whole or as a star; the matrix would cut it.
template <class Shape>
CS_INT money_text(CS_MONEY value, CS_BYTE *dest, CS_INT destlen) noexcept {
  constexpr CS_INT two_decimals = 0;
  const Text text(value, two_decimals);
  return comn::legacy::write_number(Shape(dest, destlen), text.data(), text.length());
}

} // namespace

#define COMN_OLD_MONEY_UNIT(source)                                                                \
  COMN_OLD_TO_FIXED(source, i1, to_integer<source, comn::money_family::i1>)                        \
  COMN_OLD_TO_FIXED(source, i2, to_integer<source, comn::money_family::i2>)                        \
  COMN_OLD_TO_FIXED(source, i4, to_integer<source, comn::money_family::i4>)                        \
  COMN_OLD_TO_FIXED(source, flt4, to_float<source, CS_REAL>)                                       \
  COMN_OLD_TO_FIXED(source, flt8, to_float<source, CS_FLOAT>)                                      \
  COMN_OLD_TO_FIXED(source, bit, to_bit<source>)                                                   \
  COMN_OLD_TO_FIXED(source, money, to_money<source, money>)                                        \
  COMN_OLD_ALIAS(com_##source##tomny, com_##source##tomoney)                                       \
  COMN_OLD_TO_FIXED(source, mny4, to_money<source, mny4>)                                          \
  COMN_OLD_TO_TEXT(source, money_text, , (widened<source>(src), dest, destlen))                    \
  COMN_OLD_TO_BYTES(source, copy_value<sizeof(source::Value)>, src)

COMN_OLD_MONEY_UNIT(money)
COMN_OLD_MONEY_UNIT(mny4)
