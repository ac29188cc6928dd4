// Runs of ASCII, sixteen characters at a time, and the length of Unicode text.
#include <cstring>

#include "sets.h"

namespace zrvunic {

namespace {

using Bytes = uint8_t __attribute__((vector_size(16)));
using Units = uint16_t __attribute__((vector_size(16)));
using Words = uint64_t __attribute__((vector_size(16)));

template <typename Vector>
Vector load(const void *from) noexcept {
  Vector vector;
  std::memcpy(&vector, from, sizeof vector);
  return vector;
}

// Whether any bit of both is set.
template <typename Vector>
bool any(Vector vector, Vector mask) noexcept {
  const Words words = reinterpret_cast<Words>(vector & mask);
  return (words[0] | words[1]) != 0;
}

constexpr size_t step = sizeof(Bytes);

} // namespace

size_t unit_count(const UChar16 *text) noexcept {
  const UChar16 *unit = text;
  while (*unit != 0)
    ++unit;
  return static_cast<size_t>(unit - text);
}

size_t widen_ascii(UChar16 *dest, const UChar8 *source, size_t count) noexcept {
  size_t done = 0;
  for (; count - done >= step; done += step) {
    const Bytes bytes = load<Bytes>(source + done);
    if (any(bytes, Bytes{} + uint8_t{0x80}))
      break;
    const Bytes low = __builtin_shufflevector(bytes, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5,
                                              21, 6, 22, 7, 23);
    const Bytes high = __builtin_shufflevector(bytes, Bytes{}, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28,
                                               13, 29, 14, 30, 15, 31);
    std::memcpy(dest + done, &low, sizeof low);
    std::memcpy(dest + done + step / 2, &high, sizeof high);
  }
  for (; done < count && source[done] < 0x80; ++done)
    dest[done] = source[done];
  return done;
}

size_t narrow_ascii(UChar8 *dest, const UChar16 *source, size_t count) noexcept {
  size_t done = 0;
  for (; count - done >= step; done += step) {
    const Units low = load<Units>(source + done);
    const Units high = load<Units>(source + done + step / 2);
    if (any(low | high, Units{} + uint16_t{0xFF80}))
      break;
    const Bytes bytes =
        __builtin_shufflevector(reinterpret_cast<Bytes>(low), reinterpret_cast<Bytes>(high), 0, 2,
                                4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    std::memcpy(dest + done, &bytes, sizeof bytes);
  }
  for (; done < count && source[done] < 0x80; ++done)
    dest[done] = static_cast<UChar8>(source[done]);
  return done;
}

} // namespace zrvunic
