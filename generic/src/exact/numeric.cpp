// The tables of exact numerics, and what reads only them.
#include "numeric.h"

#include "checks.h"
#include "table.h"

namespace {

constexpr size_t precisions = CS_MAX_PREC + 1;
// The sign byte and the magnitude of the longest value.
constexpr size_t longest = sizeof(CS_NUMERIC::array);

using LengthTable = comn::Table<CS_BYTE, precisions>;
using PrecisionTable = comn::Table<CS_BYTE, 35>;
using PowerRow = comn::Table<CS_BYTE, longest + 1>;
using PowerTable = comn::Table<PowerRow, precisions>;

// A magnitude in the making, least significant byte first.
struct Bytes {
  CS_BYTE bytes[longest] = {};

  // bytes * 10 + digit
  constexpr void append(unsigned digit) {
    for (CS_BYTE &byte : bytes) {
      digit += byte * 10U;
      byte = static_cast<CS_BYTE>(digit % 256);
      digit /= 256;
    }
  }
  // The length of the value, sign byte included; a zero has one magnitude byte.
  constexpr CS_BYTE length() const {
    size_t size = longest;
    while (size > 1 && bytes[size - 1] == 0)
      --size;
    return static_cast<CS_BYTE>(1 + size);
  }
};

// One more than the bytes that hold 10 to the p minus 1.
consteval LengthTable build_lengths() {
  LengthTable lengths{};
  Bytes nines;
  for (CS_BYTE &length : lengths.rows) {
    length = nines.length();
    nines.append(9);
  }
  return lengths;
}

// The longest precision of each length. Lengths above that of a value have no precision.
consteval PrecisionTable build_precisions() {
  constexpr CS_BYTE none = 255;
  constexpr LengthTable lengths = build_lengths();
  PrecisionTable table{};
  for (size_t i = 0; i < sizeof table; ++i) {
    table[i] = none;
    if (i + 2 <= longest)
      for (size_t precision = 0; precision < precisions; ++precision)
        if (lengths[precision] <= i + 2)
          table[i] = static_cast<CS_BYTE>(precision);
  }
  return table;
}

consteval PowerTable build_powers() {
  PowerTable table{};
  Bytes power;
  power.append(1);
  for (PowerRow &row : table.rows) {
    row[0] = power.length();
    for (size_t i = 0; i + 1 < row[0]; ++i)
      row[row[0] - i] = power.bytes[i];
    power.append(0);
  }
  return table;
}

} // namespace

COMN_PUBLISH_TABLE(LengthTable, CS_BYTE, Com__Nume_Prec_To_Len, [CS_MAX_PREC + 1], build_lengths());
COMN_PUBLISH_TABLE(PrecisionTable, CS_BYTE, Com__Nume_Len_To_Prec, [35], build_precisions());
COMN_PUBLISH_TABLE(PowerTable, CS_BYTE, Com__Nume_Byte_Power_Array, [CS_MAX_PREC + 1][34],
                   build_powers());

CS_INT comn_num_getlen(CS_INT precision) noexcept {
  COMN_CHECK(precision >= CS_MIN_PREC && precision <= CS_MAX_PREC, 0);
  return own_Com__Nume_Prec_To_Len[precision];
}

CS_INT comn_num_getprec(CS_INT length) noexcept {
  COMN_CHECK(length >= 2 && length <= static_cast<CS_INT>(longest), 0);
  return own_Com__Nume_Len_To_Prec[length - 2];
}
