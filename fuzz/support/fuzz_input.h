// What the fuzzers share: a demand on the result, and the input as one value after another.
#ifndef ZRVFUZZ_FUZZ_INPUT_H
#define ZRVFUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace zrvfuzz {

inline void require(bool condition) {
  if (!condition)
    std::abort();
}

// A copy of a text that ends where its block does, so that the sanitizers see a byte read behind it.
class ExactText {
public:
  explicit ExactText(const std::string &text)
      : bytes(new char[text.size() + (text.empty() ? 1 : 0)]),
        length(static_cast<int>(text.size())) {
    std::memcpy(bytes.get(), text.data(), text.size());
  }

  char *data() const { return bytes.get(); }
  int size() const { return length; }

private:
  std::unique_ptr<char[]> bytes;
  int length;
};

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
  // A number, its lowest byte first.
  std::int32_t number() {
    std::uint32_t bits = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
      bits |= std::uint32_t{byte()} << shift;
    return static_cast<std::int32_t>(bits);
  }
  // The bytes up to a NUL, which is passed, or to the end.
  std::string text() {
    std::string bytes;
    while (!is_empty()) {
      const std::uint8_t next_byte = byte();
      if (next_byte == 0)
        break;
      bytes += static_cast<char>(next_byte);
    }
    return bytes;
  }

private:
  const std::uint8_t *next, *end;
};

} // namespace zrvfuzz

#endif
