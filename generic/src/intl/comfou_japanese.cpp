// Conversion from the Japanese sets: the two-byte characters of the three sets follow from one another
// by arithmetic.
#include <algorithm>

#include "comfou.h"

namespace {

// What is to become of one character.
struct Step {
  int bytes;             // the character's length, and that of what replaces it
  CS_BYTE first, second; // a converted pair
  bool is_lost = false;  // "?" for each byte
};

constexpr Step lost(int bytes) {
  return {bytes, 0, 0, true};
}

constexpr CS_BYTE byte_of(int value) {
  return static_cast<CS_BYTE>(value);
}

// The first and the second bytes of the two-byte characters of deckanji and eucjis.
constexpr bool is_jis(int byte) {
  return byte >= 0xA1 && byte <= 0xFE;
}

// A pair in deckanji and eucjis, which agree on them, and in sjis, which packs two rows into one.
constexpr Step jis_to_jis(int a, int b) {
  return {2, byte_of(a), byte_of(b)};
}

constexpr Step jis_to_sjis(int a, int b) {
  const int half = (a + 1) >> 1;
  const int first = half > 111 ? half + 0x70 : half + 0x30;
  if (a % 2 == 0)
    return {2, byte_of(first), byte_of(b - 2)};
  return {2, byte_of(first), byte_of(b > 223 ? b - 0x60 : b - 0x61)};
}

constexpr Step sjis_to_jis(int a, int b) {
  const int row = a > 223 ? a - 64 : a;
  const int first = 2 * row - 0x60 - (b < 0x9F ? 1 : 0);
  if (b < 0x7F)
    return {2, byte_of(first), byte_of(b + 0x61)};
  return {2, byte_of(first), byte_of(b < 0x9F ? b + 0x60 : b + 2)};
}

constexpr Step pair_is_lost(int, int) {
  return lost(2);
}

// The sets: how many bytes a character above 127 has by its first byte, and whether its bytes make a
// pair that can be converted.
struct Deckanji {
  static constexpr int length(int a) { return is_jis(a) ? 2 : 1; }
  static constexpr bool is_pair(int a, int b) { return is_jis(a) && is_jis(b); }
};

struct Eucjis {
  static constexpr int length(int a) { return a == 0x8F ? 3 : a == 0x8E || is_jis(a) ? 2 : 1; }
  static constexpr bool is_pair(int a, int b) { return is_jis(a) && is_jis(b); }
};

struct Sjis {
  static constexpr int length(int a) {
    return (a >= 0x81 && a <= 0x9F) || (a >= 0xE0 && a <= 0xFC) ? 2 : 1;
  }
  // The rows from 0xF0 on are the user's.
  static constexpr bool is_pair(int a, int b) {
    return a < 0xF0 && b >= 0x40 && b <= 0xFC && b != 0x7F;
  }
};

// How reading goes on behind a character of three bytes. Deliberate, see comfou.h: two functions raise
// the byte behind the first one, and go on from there.
enum class ThreeBytes { skip, raise_in_place };

template <class Source, Step (*convert_pair)(int, int), ThreeBytes three_bytes = ThreeBytes::skip>
int convert(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused, int *dused) noexcept {
  const int length = std::min(slen, dlen);
  int result = dlen < slen ? COM_FOU_OVERFLOW : 0;
  int left = length;
  while (left > 0) {
    const int first = *src;
    if (first < 0x80) {
      *dest++ = *src++;
      --left;
      continue;
    }
    const int bytes = Source::length(first);
    if (bytes > left)
      break;
    const Step step =
        bytes == 2 && Source::is_pair(first, src[1]) ? convert_pair(first, src[1]) : lost(bytes);
    if (step.is_lost) {
      std::fill_n(dest, bytes, CS_BYTE{'?'});
      result |= COM_FOU_BADCHAR;
    } else {
      dest[0] = step.first;
      dest[1] = step.second;
    }
    if (three_bytes == ThreeBytes::raise_in_place && bytes == 3) {
      ++src;
      *src = byte_of(*src + 2);
    } else {
      src += bytes;
    }
    dest += bytes;
    left -= bytes;
  }
  *sused = *dused = length - left;
  return result;
}

} // namespace

#define COMN_FOU_JAPANESE(name, ...)                                                               \
  int name(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused, int *dused) noexcept {     \
    return convert<__VA_ARGS__>(src, slen, dest, dlen, sused, dused);                              \
  }

COMN_FOU_JAPANESE(com__fou_deckanji_to_ascii8, Deckanji, pair_is_lost)
COMN_FOU_JAPANESE(com__fou_deckanji_to_eucjis, Deckanji, jis_to_jis)
COMN_FOU_JAPANESE(com__fou_deckanji_to_sjis, Deckanji, jis_to_sjis)
COMN_FOU_JAPANESE(com__fou_eucjis_to_ascii8, Eucjis, pair_is_lost)
COMN_FOU_JAPANESE(com__fou_eucjis_to_deckanji, Eucjis, jis_to_jis, ThreeBytes::raise_in_place)
COMN_FOU_JAPANESE(com__fou_eucjis_to_sjis, Eucjis, jis_to_sjis, ThreeBytes::raise_in_place)
COMN_FOU_JAPANESE(com__fou_sjis_to_ascii8, Sjis, pair_is_lost)
COMN_FOU_JAPANESE(com__fou_sjis_to_eucjis_deckanj, Sjis, sjis_to_jis)
