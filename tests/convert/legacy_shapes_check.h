// A member at every capacity, in a destination that is guarded on both sides.
#ifndef ZRVTEST_LEGACY_SHAPES_CHECK_H
#define ZRVTEST_LEGACY_SHAPES_CHECK_H

#include "guarded_buffer.h"
#include "legacy_members.h"
#include "legacy_shapes.h"
#include "value_bytes.h"

namespace zrvtest {

inline const char *const text_shapes[] = {"char", "string", "ntbstring", "varychar"};

// Calls a member; `size` bytes of destination.
inline Shaped run_member(const LegacyMember &member, const std::string &value, CS_INT srclen,
                         CS_INT destlen, size_t size, const LegacyOptions &options = {}) {
  GuardedBuffer source(value.size(), 1), dest(size, 1);
  std::copy(value.begin(), value.end(), source.text());
  const CS_INT result = member(source.data(), srclen, dest.data(), destlen, options);
  return {result, dest.contents()};
}

// From no room at all to enough and one byte more, and without a limit. `expect` tells what comes of
// (shape, destlen).
template <class Expect>
void check_rooms(const LegacyMember &member, const std::string &value, CS_INT srclen, size_t enough,
                 Expect expect, const LegacyOptions &options = {}) {
  for (CS_INT destlen = -2; destlen <= static_cast<CS_INT>(enough) + 2; ++destlen) {
    const Shaped expected = expect(member.destination, destlen);
    const Shaped got = run_member(member, value, srclen, destlen, expected.bytes.size(), options);
    EXPECT_EQ(got.result, expected.result) << member.name() << " destlen " << destlen;
    EXPECT_EQ(got.bytes, expected.bytes) << member.name() << " destlen " << destlen;
  }
}

// A number as text in all shapes: whole or as a star.
inline void check_number_text(const std::string &source, const std::string &value,
                              const std::string &text, const LegacyOptions &options = {}) {
  for (const char *shape : text_shapes)
    check_rooms(
        legacy_member(source, shape), value, static_cast<CS_INT>(value.size()), text.size() + 1,
        [&](const std::string &as, CS_INT destlen) { return shape_text(as, text, destlen, true); },
        options);
}

inline std::string record_of(const std::string &bytes) {
  return legacy_header(static_cast<CS_INT>(bytes.size())) + bytes;
}

// A member to a type of one width.
template <class Value>
struct Fixed {
  CS_INT result;
  Value value;
  bool operator==(const Fixed &) const = default;
};
template <class Value>
std::ostream &operator<<(std::ostream &out, const Fixed<Value> &fixed) {
  return out << fixed.result << " with " << +fixed.value;
}

// What a member leaves where nothing is written.
template <class Value>
Value untouched() {
  Value value;
  std::memset(&value, GuardedBuffer::filler, sizeof value);
  return value;
}

template <class Value>
Fixed<Value> convert_to(const LegacyMember &member, const std::string &value, CS_INT srclen = -7,
                        const LegacyOptions &options = {}) {
  const CS_INT length = srclen == -7 ? static_cast<CS_INT>(value.size()) : srclen;
  const Shaped got = run_member(member, value, length, 0, sizeof(Value), options);
  Value stored;
  std::memcpy(&stored, got.bytes.data(), sizeof stored);
  return {got.result, stored};
}

} // namespace zrvtest

#endif
