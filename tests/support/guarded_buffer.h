// A buffer that fails the test when any byte outside it was written; with sanitized libraries also when
// one is read.
#ifndef ZRVTEST_GUARDED_BUFFER_H
#define ZRVTEST_GUARDED_BUFFER_H

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

extern "C" {
[[gnu::weak]] void __asan_poison_memory_region(const volatile void *begin, size_t size);
[[gnu::weak]] void __asan_unpoison_memory_region(const volatile void *begin, size_t size);
}

namespace zrvtest {

class GuardedBuffer {
public:
  static constexpr unsigned char filler = 0xA5;

  // `size` bytes, filled with `filler`, at an address that is `misalignment` off a 64-byte
  // boundary.
  explicit GuardedBuffer(size_t size, size_t misalignment = 0)
      : bytes(guard + 64 + misalignment + size + guard, filler), length(size) {
    const auto base = reinterpret_cast<uintptr_t>(bytes.data());
    start = static_cast<size_t>((base + guard + 63) / 64 * 64 - base) + misalignment;
    std::fill(bytes.data(), data(), canary);
    std::fill(data() + size, bytes.data() + bytes.size(), canary);
    if (__asan_poison_memory_region != nullptr) {
      __asan_poison_memory_region(bytes.data(), start);
      __asan_poison_memory_region(data() + size, bytes.size() - start - size);
    }
  }

  ~GuardedBuffer() {
    if (__asan_unpoison_memory_region != nullptr)
      __asan_unpoison_memory_region(bytes.data(), bytes.size());
    EXPECT_TRUE(is_intact()) << "a byte outside the buffer was written";
  }
  GuardedBuffer(const GuardedBuffer &) = delete;
  GuardedBuffer &operator=(const GuardedBuffer &) = delete;

  unsigned char *data() { return bytes.data() + start; }
  const unsigned char *data() const { return bytes.data() + start; }
  char *text() { return reinterpret_cast<char *>(data()); }
  size_t size() const { return length; }

  // The first `count` bytes, all by default.
  std::string contents() const { return contents(length); }
  std::string contents(size_t count) const {
    return std::string(reinterpret_cast<const char *>(data()), count);
  }

  // True when the bytes from `first` on are as they were made.
  bool is_untouched(size_t first = 0) const {
    for (size_t i = first; i < length; ++i)
      if (data()[i] != filler)
        return false;
    return true;
  }

  template <class T>
  T value() const {
    T result;
    EXPECT_LE(sizeof result, length);
    std::memcpy(&result, data(), sizeof result);
    return result;
  }

  template <class T>
  void set(T value) {
    ASSERT_LE(sizeof value, length);
    std::memcpy(data(), &value, sizeof value);
  }

  bool is_intact() const {
    for (size_t i = 0; i < bytes.size(); ++i)
      if ((i < start || i >= start + length) && bytes[i] != canary)
        return false;
    return true;
  }

private:
  static constexpr size_t guard = 64;
  static constexpr unsigned char canary = 0x5C;

  std::vector<unsigned char> bytes;
  size_t length;
  size_t start;
};

} // namespace zrvtest

#endif
