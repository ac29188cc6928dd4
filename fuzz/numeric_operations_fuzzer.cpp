// A sequence of operations on numerics, each on the values of the steps before, compared with the
// rules worked out in long hand. The input is a program: an operation, two operands (a value made
// so far, or a new one from the bytes that follow), a place for the result.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "numeric_reference.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::Input;
using zrvfuzz::require;
using zrvtest::Decimal;
using zrvtest::Outcome;

namespace {

constexpr size_t place_count = 8;

// A new value of any shape and bytes.
CS_NUMERIC make_value(Input &input) {
  CS_NUMERIC value;
  std::memset(&value, 0xA5, sizeof value);
  value.precision = static_cast<CS_BYTE>(input.byte() % CS_MAX_PREC + 1);
  value.scale = static_cast<CS_BYTE>(input.byte() % (CS_MAX_SCALE + 1));
  value.array[0] = input.byte() & 1;
  for (int i = 1; i < Com__Nume_Prec_To_Len[value.precision]; ++i)
    value.array[i] = input.byte();
  return value;
}

CS_RETCODE convert(CS_NUMERIC *from, CS_NUMERIC *to, int precision, int scale) {
  CS_CONTEXT context{};
  CS_DATAFMT srcfmt{}, destfmt{};
  srcfmt.datatype = destfmt.datatype = CS_TYPE_NUMERIC;
  destfmt.precision = precision;
  destfmt.scale = scale;
  CS_INT length = 0;
  const CS_RETCODE code = comn_numtonum(&context, &srcfmt, from, &destfmt, to, &length);
  require(length == zrvtest::reference_length(precision) + 2);
  return code;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size > 4096)
    return 0;
  Input input(data, size);
  CS_NUMERIC places[place_count];
  for (CS_NUMERIC &place : places) {
    place = CS_NUMERIC{};
    place.precision = 1;
  }
  while (!input.is_empty()) {
    const uint8_t operation = input.byte(), operands = input.byte();
    CS_NUMERIC a = operands % 3 == 0 ? make_value(input) : places[operands / 3 % place_count];
    CS_NUMERIC b = operands % 5 == 0 ? make_value(input) : places[operands / 15 % place_count];
    const Decimal x = Decimal::of(a), y = Decimal::of(b);
    struct {
      CS_BYTE front[4];
      CS_NUMERIC value;
      CS_BYTE back[4];
    } room;
    std::memset(&room, 0x5C, sizeof room);
    CS_RETCODE code;
    Outcome expected;
    switch (operation % 6) {
    case 0:
      code = comn_numadd(&a, &b, &room.value);
      expected = zrvtest::reference_add(x, y, false);
      break;
    case 1:
      code = comn_numsub(&a, &b, &room.value);
      expected = zrvtest::reference_add(x, y, true);
      break;
    case 2:
      code = comn_nummul(&a, &b, &room.value);
      expected = zrvtest::reference_multiply(x, y);
      break;
    case 3:
      code = comn_numdivide(&a, &b, &room.value);
      expected = zrvtest::reference_divide(x, y);
      break;
    case 4:
      code = convert(&a, &room.value, y.precision, y.scale);
      expected = zrvtest::reference_convert(x, y.precision, y.scale);
      break;
    default:
      require(comn_numcmp(&a, &b) == zrvtest::reference_compare(x, y));
      continue;
    }
    require(code == expected.code);
    for (int i = 0; i < 4; ++i)
      require(room.front[i] == 0x5C && room.back[i] == 0x5C);
    if (!expected.has_value)
      continue;
    const Decimal result = Decimal::of(room.value);
    require(result.precision == expected.value.precision && result.scale == expected.value.scale);
    require(result.magnitude == expected.value.magnitude);
    // A copy at the same scale keeps the sign byte of a zero.
    require(result.negative == expected.value.negative ||
            (operation % 6 == 4 && x.scale == y.scale && result.magnitude.is_zero()));
    places[operation / 6 % place_count] = room.value;
  }
  return 0;
}
