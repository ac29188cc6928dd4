// The transcoders' rules once more, one character at a time and for clarity alone.
#ifndef ZRVTEST_UTF_REFERENCE_H
#define ZRVTEST_UTF_REFERENCE_H

#include <cstdint>
#include <string>
#include <vector>

namespace zrvtest {

using Octets = std::vector<unsigned char>;

struct Transcoded {
  int result = 0;
  size_t taken = 0; // bytes of the source
  Octets text;

  bool operator==(const Transcoded &) const = default;
};

inline void append_unit(Octets &text, std::uint32_t unit) {
  text.push_back(static_cast<unsigned char>(unit & 0xFF));
  text.push_back(static_cast<unsigned char>(unit >> 8));
}

inline std::uint32_t unit_at(const Octets &text, size_t position) {
  return static_cast<std::uint32_t>(text[position] | text[position + 1] << 8);
}

// The bytes of a character that begins at a position, and its value; 0 bytes for none.
inline size_t read_utf8(const Octets &source, size_t position, bool check, std::uint32_t &value) {
  const unsigned lead = source[position];
  size_t bytes = 0;
  if (lead <= 0x7F) {
    bytes = 1;
    value = lead;
  } else if (lead >= 0xC0 && lead <= 0xDF) {
    bytes = 2;
    value = lead - 0xC0;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    bytes = 3;
    value = lead - 0xE0;
  } else if (lead >= 0xF0 && lead <= 0xF7) {
    bytes = 4;
    value = lead - 0xF0;
  }
  for (size_t i = 1; i < bytes; ++i) {
    if (position + i >= source.size())
      return 0;
    const unsigned next = source[position + i];
    if (next < 0x80 || next > 0xBF)
      return 0;
    value = value * 64 + (next - 0x80);
  }
  if (value > 0x10FFFF || (check && (value == 0xFFFE || value == 0xFFFF)))
    return 0;
  return bytes;
}

inline Transcoded utf8_to_utf16(const Octets &source, size_t room, bool check) {
  Transcoded done;
  while (done.taken < source.size()) {
    std::uint32_t value = 0;
    const size_t bytes = read_utf8(source, done.taken, check, value);
    if (bytes == 0) {
      done.result = 4;
      break;
    }
    Octets units;
    if (value > 0xFFFF) {
      append_unit(units, 0xD800 + (value - 0x10000) / 0x400);
      append_unit(units, 0xDC00 + (value - 0x10000) % 0x400);
    } else {
      append_unit(units, value);
    }
    if (done.text.size() + units.size() > room) {
      done.result = 2;
      break;
    }
    done.text.insert(done.text.end(), units.begin(), units.end());
    done.taken += bytes;
  }
  return done;
}

inline Transcoded utf16_to_utf8(const Octets &source, size_t room, bool check) {
  Transcoded done;
  while (done.taken < source.size()) {
    const size_t left = source.size() - done.taken;
    std::uint32_t value = left >= 2 ? unit_at(source, done.taken) : 0;
    if (left == 1 || (check && value > 0xFFFD)) {
      done.result = 4;
      break;
    }
    size_t bytes = 2;
    if (value >= 0xD800 && value < 0xDC00 && left >= 4 &&
        unit_at(source, done.taken + 2) >= 0xDC00) {
      value = 0x10000 + (value - 0xD800) * 0x400 + (unit_at(source, done.taken + 2) - 0xDC00);
      bytes = 4;
    }
    Octets encoded;
    if (value < 0x80)
      encoded = {static_cast<unsigned char>(value)};
    else if (value < 0x800)
      encoded = {static_cast<unsigned char>(0xC0 + value / 64),
                 static_cast<unsigned char>(0x80 + value % 64)};
    else if (value < 0x10000)
      encoded = {static_cast<unsigned char>(0xE0 + value / 4096),
                 static_cast<unsigned char>(0x80 + value / 64 % 64),
                 static_cast<unsigned char>(0x80 + value % 64)};
    else
      encoded = {static_cast<unsigned char>(0xF0 + value / 262144),
                 static_cast<unsigned char>(0x80 + value / 4096 % 64),
                 static_cast<unsigned char>(0x80 + value / 64 % 64),
                 static_cast<unsigned char>(0x80 + value % 64)};
    if (done.text.size() + encoded.size() > room) {
      done.result = 2;
      break;
    }
    done.text.insert(done.text.end(), encoded.begin(), encoded.end());
    done.taken += bytes;
  }
  return done;
}

inline Transcoded utf16_to_utf16(const Octets &source, size_t room, bool) {
  Transcoded done;
  while (done.taken < source.size()) {
    if (source.size() - done.taken == 1) {
      done.result = 4;
      break;
    }
    if (done.text.size() + 2 > room) {
      done.result = 2;
      break;
    }
    append_unit(done.text, unit_at(source, done.taken));
    done.taken += 2;
  }
  return done;
}

} // namespace zrvtest

#endif
