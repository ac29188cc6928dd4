// Text to numeric and back, with any text, length, shape and flag, against the rules followed
// character by character. Of the input, the first byte is the flag and where the length is cut, the
// next two are precision and scale, the fourth is the length of the destination; the rest is text.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "fuzz_input.h"
#include "numeric_reference.h"

using zrvfuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  constexpr size_t head = 4;
  constexpr CS_BYTE canary = 0x5C;
  if (size < head || size > 1024)
    return 0;
  std::string text(reinterpret_cast<const char *>(data) + head, size - head);
  const int flag = data[0] & 1;
  const int len =
      (data[0] & 2) != 0 ? static_cast<int>(text.size()) / 2 : static_cast<int>(text.size());
  const bool given = data[1] >= 1 && data[1] <= CS_MAX_PREC;
  const int destlen = given ? Com__Nume_Prec_To_Len[data[1]] : data[3] % 36 == 1 ? 0 : data[3] % 36;
  if (destlen == 1)
    return 0;

  CS_BYTE room[64];
  std::memset(room, canary, sizeof room);
  CS_BYTE *dest = room + 8;
  const CS_INT length_before = destlen == 0 ? CS_INT{33} : destlen;
  CS_INT length = destlen;
  CS_BYTE precision = data[1], scale = data[2];
  const int status =
      com__subchartoexctnume(text.data(), len, &dest, &length, &precision, &scale, flag);
  for (size_t i = 0; i < sizeof room; ++i)
    require((i >= 8 && i < 8 + static_cast<size_t>(length_before)) || room[i] == canary);
  require(dest >= room + 8 && dest + length == room + 8 + length_before);

  const zrvtest::ParseResult expected =
      zrvtest::reference_parse(text, len, destlen, data[1], data[2], flag);
  require(status == expected.status);
  if (status != NUME_OK)
    return 0;
  require(precision == expected.precision && scale == expected.scale);
  require(length == expected.length && dest - (room + 8) == expected.offset);
  require(dest[0] == expected.negative);
  const zrvtest::Natural magnitude = zrvtest::Natural::from_bytes(dest + 1, length - 1);
  require(magnitude == expected.magnitude);

  // Back to text, where such a scale prints at all.
  if (scale > CS_MAX_SCALE)
    return 0;
  __CONSTANT value{};
  value.len = length;
  value.scale = scale;
  value.value = dest;
  char printed[128];
  const int start = com__subexctnumetochar(&value, printed, sizeof printed);
  require(start >= 0);
  const zrvtest::Decimal decimal{precision, scale, dest[0] != 0, magnitude};
  require(std::string(printed + start, sizeof printed - static_cast<size_t>(start)) ==
          zrvtest::reference_text(decimal));
  double number;
  if (com__subexctnumetoflt8(&value, &number) == NUME_OK)
    require(number == std::strtod(zrvtest::reference_text(decimal).c_str(), nullptr));
  return 0;
}
