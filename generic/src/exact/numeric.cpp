// The tables of exact numerics.
#include "numeric.h"

#include "table.h"

namespace {

using PrecisionTable = comn::Table<CS_BYTE, CS_MAX_PREC + 1>;

// One more than the bytes that hold 10 to the p minus 1. Precision 0 has one magnitude byte as
// well.
consteval PrecisionTable build_lengths() {
  PrecisionTable lengths{};
  // 10 to the p minus 1, least significant byte first.
  CS_BYTE nines[sizeof(CS_NUMERIC::array)] = {};
  for (size_t precision = 0; precision <= CS_MAX_PREC; ++precision) {
    CS_BYTE bytes = 1;
    for (CS_BYTE i = 0; i < sizeof nines; ++i)
      if (nines[i] != 0)
        bytes = static_cast<CS_BYTE>(i + 1);
    lengths[precision] = static_cast<CS_BYTE>(1 + bytes);
    unsigned carry = 9;
    for (CS_BYTE &byte : nines) {
      carry += byte * 10U;
      byte = static_cast<CS_BYTE>(carry % 256);
      carry /= 256;
    }
  }
  return lengths;
}

} // namespace

COMN_PUBLISH_TABLE(PrecisionTable, CS_BYTE, Com__Nume_Prec_To_Len, [CS_MAX_PREC + 1],
                   build_lengths());
