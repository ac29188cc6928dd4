// The transcoders between UTF-8 and UTF-16 on any bytes and any room, against a slow reading of their
// rules.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "utf_reference.h"
#include "zrvcomn/comfou.h"

using zrvfuzz::require;
using zrvtest::Octets;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2)
    return 0;
  const struct {
    decltype(&com__fou_utf8_to_utf16) function;
    zrvtest::Transcoded (*reference)(const Octets &, size_t, bool);
  } directions[] = {{com__fou_utf8_to_utf16, zrvtest::utf8_to_utf16},
                    {com__fou_utf16_to_utf8, zrvtest::utf16_to_utf8},
                    {com__fou_utf16_to_utf16, zrvtest::utf16_to_utf16}};
  const bool check = (data[1] & 1) != 0;
  const Octets text(data + 2, data + size);
  for (const auto &direction : directions)
    for (const size_t room : {size_t{data[0]}, 4 * text.size()}) {
      Octets source = text, destination(room, 0xA5);
      int sused = -1, dused = -1;
      const int result =
          direction.function(source.data(), static_cast<int>(source.size()), destination.data(),
                             static_cast<int>(room), &sused, &dused, nullptr, check ? 1 : 0);
      const zrvtest::Transcoded expected = direction.reference(text, room, check);
      require(result == expected.result && sused == static_cast<int>(expected.taken));
      require(dused == static_cast<int>(expected.text.size()));
      require(std::equal(expected.text.begin(), expected.text.end(), destination.begin()));
      require(std::all_of(destination.begin() + dused, destination.end(),
                          [](unsigned char byte) { return byte == 0xA5; }));
    }
  return 0;
}
