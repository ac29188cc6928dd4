// What the text and binary shapes of the conversions for callers without a context leave, worked out
// byte by byte.
#ifndef ZRVTEST_LEGACY_SHAPES_H
#define ZRVTEST_LEGACY_SHAPES_H

#include <cstring>
#include <string>

#include "zrvcomn/comnlib.h"

namespace zrvtest {

constexpr char legacy_filler = static_cast<char>(0xA5);

struct Shaped {
  CS_INT result;
  std::string bytes; // all of the destination
  bool operator==(const Shaped &) const = default;
};

inline std::string legacy_header(CS_INT length) {
  const auto value = static_cast<CS_SMALLINT>(length);
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

// The bytes behind which nothing may be written; without a limit, what the text takes.
inline size_t legacy_size(const std::string &shape, CS_INT destlen, size_t length) {
  const bool is_record = shape == "varychar" || shape == "varybin";
  const bool is_terminated = shape == "string" || shape == "ntbstring";
  const size_t header = is_record ? 2 : 0;
  if (is_terminated ? destlen < 1 : shape == "binary" ? destlen < 1 : destlen == -1)
    return header + length + (is_terminated ? 1 : 0);
  return header + static_cast<size_t>(destlen < 0 ? 0 : destlen);
}

// A text or bytes in a shape: what fits, and how that ends. `kept` is what goes in where all would not:
// the text itself, cut, or a star.
inline Shaped shape_text(const std::string &shape, const std::string &text, CS_INT destlen,
                         bool as_star) {
  Shaped shaped{static_cast<CS_INT>(text.size()),
                std::string(legacy_size(shape, destlen, text.size()), legacy_filler)};
  const bool is_record = shape == "varychar" || shape == "varybin";
  const bool is_terminated = shape == "string" || shape == "ntbstring";
  const size_t begin = is_record ? 2 : 0;
  const size_t room = shaped.bytes.size() - begin - (is_terminated ? 1 : 0);
  std::string kept = text;
  if (text.size() > room) {
    kept = as_star ? std::string(1, '*') : text;
    kept.resize(std::min(kept.size(), room));
    shaped.result = COM_OLD_OVERFLOW;
  }
  shaped.bytes.replace(begin, kept.size(), kept);
  if (is_record)
    shaped.bytes.replace(0, 2, legacy_header(static_cast<CS_INT>(kept.size())));
  if (shape == "char" || shape == "string")
    for (size_t i = kept.size(); i < room; ++i)
      shaped.bytes[i] = ' ';
  if (shape == "binary")
    for (size_t i = kept.size(); i < room; ++i)
      shaped.bytes[i] = '\0';
  if (shape == "string")
    shaped.bytes.back() = '\0';
  if (shape == "ntbstring")
    shaped.bytes[kept.size()] = '\0';
  return shaped;
}

// Hexadecimal digits: whole pairs, and nothing behind them when bytes are left over but the header.
inline Shaped shape_hex(const std::string &shape, const std::string &bytes, CS_INT destlen) {
  std::string digits;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += "0123456789abcdef"[byte / 16];
    digits += "0123456789abcdef"[byte % 16];
  }
  const CS_INT limit = destlen == 0 ? -1 : destlen;
  Shaped shaped = shape_text(shape, digits, limit, false);
  if (shaped.result < 0) {
    const size_t begin = shape == "varychar" ? 2 : 0;
    const size_t room =
        shaped.bytes.size() - begin - (shape == "string" || shape == "ntbstring" ? 1 : 0);
    const size_t pairs = room / 2 * 2;
    std::fill(shaped.bytes.begin() + static_cast<std::ptrdiff_t>(begin + pairs), shaped.bytes.end(),
              legacy_filler);
    if (shape == "varychar")
      shaped.bytes.replace(0, 2, legacy_header(-1));
  }
  return shaped;
}

// Bytes in binary.
inline Shaped shape_bytes(const std::string &shape, const std::string &bytes, CS_INT destlen) {
  return shape_text(shape, bytes, destlen, false);
}

} // namespace zrvtest

#endif
