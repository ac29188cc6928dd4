// What the fuzzers share: a demand on the result, and the input as one value after another.
#ifndef ZRVFUZZ_FUZZ_INPUT_H
#define ZRVFUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace zrvfuzz {

inline void require(bool condition) {
  if (!condition)
    std::abort();
}

// The bytes of an input, zeroes when they are used up.
class Input {
public:
  Input(const std::uint8_t *bytes, std::size_t count) : next(bytes), end(bytes + count) {}

  bool is_empty() const { return next == end; }
  std::uint8_t byte() { return next != end ? *next++ : std::uint8_t{0}; }
  unsigned word() {
    const unsigned high = byte();
    return high << 8 | byte();
  }

private:
  const std::uint8_t *next, *end;
};

} // namespace zrvfuzz

#endif
