// Conversion between the single-byte sets: one loop over one table for each pair of sets.
#include <algorithm>

#include "comfou.h"
#include "comfou_maps.h"

namespace {

using comn::fou::Map;

constexpr unsigned no_counterpart = 0x100;
constexpr unsigned replacement = '?' | no_counterpart;

// What becomes of each byte, with the bit no_counterpart, so that one load tells both.
struct Conversion {
  CS_USHORT of[256];
};

// What becomes of the bytes from 128 on that a map does not have.
enum class Outside { same, lost };

// `map` holds the bytes from `first` on.
template <int first, Outside outside, size_t count>
consteval Conversion expand(const Map<count> &map) {
  static_assert(first + count <= 256);
  Conversion conversion{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const unsigned entry = byte - first;
    if (byte < 128)
      conversion.of[byte] = static_cast<CS_USHORT>(byte);
    else if (entry >= count)
      conversion.of[byte] = static_cast<CS_USHORT>(outside == Outside::same ? byte : replacement);
    else
      conversion.of[byte] = map[entry] != 0 ? map[entry] : static_cast<CS_USHORT>(replacement);
  }
  return conversion;
}

int convert(const Conversion &conversion, const CS_BYTE *src, int slen, CS_BYTE *dest, int dlen,
            int *sused, int *dused) noexcept {
  const int length = std::min(slen, dlen);
  unsigned seen = 0;
  for (int i = 0; i < length; ++i) {
    const unsigned converted = conversion.of[src[i]];
    dest[i] = static_cast<CS_BYTE>(converted);
    seen |= converted;
  }
  *sused = *dused = length;
  return ((seen & no_counterpart) != 0 ? COM_FOU_BADCHAR : 0) |
         (dlen < slen ? COM_FOU_OVERFLOW : 0);
}

} // namespace

// Publishes the map of a pair of sets and the conversion by it.
#define COMN_FOU_PAIR(pair, count, first, outside)                                                 \
  COMN_PUBLISH_TABLE(Map<count>, CS_BYTE, Hi_##pair, [count], comn::fou::pair);                    \
  int com__fou_##pair(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused,                 \
                      int *dused) noexcept {                                                       \
    static constexpr Conversion conversion = expand<first, Outside::outside>(comn::fou::pair);     \
    return convert(conversion, src, slen, dest, dlen, sused, dused);                               \
  }

COMN_FOU_PAIR(cp437_to_cp850, 101, 155, same)
COMN_FOU_PAIR(cp850_to_cp437, 101, 155, same)

COMN_FOU_PAIR(cp437_to_iso1, 128, 128, lost)
COMN_FOU_PAIR(cp437_to_roman8, 128, 128, lost)
COMN_FOU_PAIR(cp437_to_mac, 128, 128, lost)
COMN_FOU_PAIR(cp850_to_iso1, 128, 128, lost)
COMN_FOU_PAIR(cp850_to_roman8, 128, 128, lost)
COMN_FOU_PAIR(cp850_to_mac, 128, 128, lost)

COMN_FOU_PAIR(iso1_to_cp437, 96, 160, lost)
COMN_FOU_PAIR(iso1_to_cp850, 96, 160, lost)
COMN_FOU_PAIR(iso1_to_roman8, 96, 160, lost)
COMN_FOU_PAIR(iso1_to_mac, 96, 160, lost)
COMN_FOU_PAIR(roman8_to_iso1, 96, 160, lost)
COMN_FOU_PAIR(roman8_to_cp850, 96, 160, lost)
COMN_FOU_PAIR(roman8_to_mac, 96, 160, lost)
COMN_FOU_PAIR(roman8_to_cp437, 80, 176, lost)

COMN_FOU_PAIR(mac_to_iso1, 89, 128, lost)
COMN_FOU_PAIR(mac_to_cp850, 89, 128, lost)
COMN_FOU_PAIR(mac_to_cp437, 89, 128, lost)
COMN_FOU_PAIR(mac_to_roman8, 89, 128, lost)

int com__fou_ascii8_tofrom_1byte(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused,
                                 int *dused) noexcept {
  const int length = std::min(slen, dlen);
  unsigned seen = 0;
  for (int i = 0; i < length; ++i) {
    const CS_BYTE byte = src[i];
    dest[i] = byte < 128 ? byte : '?';
    seen |= byte;
  }
  *sused = *dused = length;
  return (seen >= 128 ? COM_FOU_BADCHAR : 0) | (dlen < slen ? COM_FOU_OVERFLOW : 0);
}

// Deliberately converts nothing, and counts up to the larger of the two lengths.
int com__fou_caseswap(CS_BYTE *src, int slen, CS_BYTE *, int dlen, int *sused,
                      int *dused) noexcept {
  const int limit = std::max(slen, dlen);
  int length = 0;
  while (length < limit && src[length] != 0)
    ++length;
  *sused = *dused = length;
  return dlen < slen ? COM_FOU_OVERFLOW : 0;
}
