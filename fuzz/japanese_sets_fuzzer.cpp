// The conversions from the Japanese sets: no read behind the source, no write behind the room, and the
// counts and bits that follow from any text.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/comfou.h"

using zrvfuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr CS_XLATE_FUNC functions[] = {
      com__fou_deckanji_to_ascii8, com__fou_deckanji_to_eucjis,    com__fou_deckanji_to_sjis,
      com__fou_eucjis_to_ascii8,   com__fou_eucjis_to_deckanji,    com__fou_eucjis_to_sjis,
      com__fou_sjis_to_ascii8,     com__fou_sjis_to_eucjis_deckanj};
  if (size < 1)
    return 0;
  const size_t length = size - 1;
  // Heap blocks of exactly the size, for the sanitizers.
  for (const size_t room : {size_t{data[0]}, length, length / 2})
    for (const CS_XLATE_FUNC function : functions) {
      std::vector<CS_BYTE> source(data + 1, data + size), destination(room, 0xA5);
      int sused = -1, dused = -1;
      const int bits = function(source.data(), static_cast<int>(length), destination.data(),
                                static_cast<int>(room), &sused, &dused);
      const auto shorter = static_cast<int>(std::min(length, room));
      require(sused == dused && sused >= 0 && sused <= shorter && sused > shorter - 3);
      require((bits & ~(COM_FOU_BADCHAR | COM_FOU_OVERFLOW)) == 0);
      require(((bits & COM_FOU_OVERFLOW) != 0) == (room < length));
      require(std::all_of(destination.begin() + dused, destination.end(),
                          [](CS_BYTE byte) { return byte == 0xA5; }));
      // What was replaced shows.
      if ((bits & COM_FOU_BADCHAR) != 0)
        require(std::find(destination.begin(), destination.begin() + dused, '?') !=
                destination.begin() + dused);
    }
  return 0;
}
