// The transcoders between UTF-8 and UTF-16: ASCII by sixteen characters, all else one by one.
#include <algorithm>
#include <cstdint>

#include "any_address.h"
#include "comfou.h"

namespace {

using comn::load;
using comn::store;

constexpr int unit_size = sizeof(CS_USHORT);

// A text being read, or a room being filled.
template <class Byte>
struct Span {
  Byte *at, *end;

  std::ptrdiff_t left() const { return end - at; }
};

using Source = Span<const CS_BYTE>;
using Room = Span<CS_BYTE>;

template <class Byte>
Span<Byte> span_of(void *text, int length) noexcept {
  Byte *const at = static_cast<Byte *>(text);
  return {at, at + (length > 0 ? length : 0)};
}

// Fixed loops, which the compiler turns into vector instructions.
constexpr int block = 16;

template <int count>
bool is_ascii(const CS_BYTE *text) noexcept {
  std::uint64_t seen = 0;
  for (int i = 0; i < count; i += 8)
    seen |= load<std::uint64_t>(text + i);
  return (seen & 0x8080808080808080) == 0;
}

bool is_ascii_block_of_units(const CS_BYTE *text) noexcept {
  std::uint64_t seen = 0;
  for (int i = 0; i < block * unit_size; i += 8)
    seen |= load<std::uint64_t>(text + i);
  return (seen & 0xFF80FF80FF80FF80) == 0;
}

template <class From, class To, int count = block>
void copy_block(const CS_BYTE *from, CS_BYTE *to) noexcept {
  From in[count];
  To out[count];
  std::memcpy(in, from, sizeof in);
  for (int i = 0; i < count; ++i)
    out[i] = static_cast<To>(in[i]);
  std::memcpy(to, out, sizeof out);
}

// A character and the bytes that it takes of the source; no bytes where it is invalid.
struct Character {
  std::uint32_t value;
  int bytes;
};

constexpr Character invalid = {0, 0};

bool is_continuation(CS_BYTE byte) noexcept {
  return (byte & 0xC0) == 0x80;
}

// Reads a character that is not ASCII. Overlong forms and surrogates pass deliberately.
[[gnu::always_inline]] inline Character read_utf8(const Source &source,
                                                  bool refuses_noncharacters) noexcept {
  const CS_BYTE *const s = source.at;
  const std::ptrdiff_t left = source.left();
  const std::uint32_t lead = s[0];
  if ((lead & 0xE0) == 0xC0) {
    if (left < 2 || !is_continuation(s[1]))
      return invalid;
    return {(lead & 0x1F) << 6 | (s[1] & 0x3Fu), 2};
  }
  if ((lead & 0xF0) == 0xE0) {
    if (left < 3 || !is_continuation(s[1]) || !is_continuation(s[2]))
      return invalid;
    const std::uint32_t value = (lead & 0x0F) << 12 | (s[1] & 0x3Fu) << 6 | (s[2] & 0x3Fu);
    if (refuses_noncharacters && value >= 0xFFFE)
      return invalid;
    return {value, 3};
  }
  if ((lead & 0xF8) == 0xF0) {
    if (left < 4 || !is_continuation(s[1]) || !is_continuation(s[2]) || !is_continuation(s[3]))
      return invalid;
    const std::uint32_t value =
        (lead & 0x07) << 18 | (s[1] & 0x3Fu) << 12 | (s[2] & 0x3Fu) << 6 | (s[3] & 0x3Fu);
    // An overlong form may spell U+FFFE with four bytes.
    if (value > 0x10FFFF || (refuses_noncharacters && (value == 0xFFFE || value == 0xFFFF)))
      return invalid;
    return {value, 4};
  }
  return invalid;
}

// Widens so many characters at once, if they are there, fit and are ASCII.
template <int count>
[[gnu::always_inline]] inline bool widen_ascii(Source &source, Room &room) noexcept {
  if (source.left() < count || room.left() < count * unit_size || !is_ascii<count>(source.at))
    return false;
  copy_block<CS_BYTE, CS_USHORT, count>(source.at, room.at);
  source.at += count;
  room.at += count * unit_size;
  return true;
}

int utf8_to_utf16(Source &source, Room &room, bool refuses_noncharacters) noexcept {
  while (source.left() > 0) {
    if (*source.at < 0x80) {
      while (widen_ascii<block>(source, room)) {
      }
      widen_ascii<8>(source, room); // numbers have no more
      while (source.left() > 0 && *source.at < 0x80) {
        if (room.left() < unit_size)
          return COM_FOU_OVERFLOW;
        store<CS_USHORT>(room.at, *source.at++);
        room.at += unit_size;
      }
      continue;
    }
    const Character character = read_utf8(source, refuses_noncharacters);
    if (character.bytes == 0)
      return COM_FOU_INVALID;
    if (character.value <= 0xFFFF) {
      if (room.left() < unit_size)
        return COM_FOU_OVERFLOW;
      store(room.at, static_cast<CS_USHORT>(character.value));
      room.at += unit_size;
    } else {
      if (room.left() < 2 * unit_size)
        return COM_FOU_OVERFLOW;
      store(room.at, static_cast<CS_USHORT>(0xD7C0 + (character.value >> 10)));
      store(room.at + unit_size, static_cast<CS_USHORT>(0xDC00 | (character.value & 0x3FF)));
      room.at += 2 * unit_size;
    }
    source.at += character.bytes;
  }
  return 0;
}

// Reads a character, whose first unit is there. What stands behind a high surrogate need not be a low
// one, deliberately: the value then exceeds 0x10FFFF by up to 0x2000.
[[gnu::always_inline]] inline Character read_utf16(const Source &source,
                                                   bool refuses_noncharacters) noexcept {
  const std::uint32_t unit = load<CS_USHORT>(source.at);
  if (refuses_noncharacters && unit > 0xFFFD)
    return invalid;
  if (unit >= 0xD800 && unit <= 0xDBFF && source.left() >= 2 * unit_size) {
    const std::uint32_t next = load<CS_USHORT>(source.at + unit_size);
    if (next > 0xDBFF)
      return {0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), 2 * unit_size};
  }
  return {unit, unit_size};
}

template <int bytes>
[[gnu::always_inline]] inline int write_utf8(std::uint32_t value, Room &room) noexcept {
  constexpr CS_BYTE lead = bytes == 1 ? 0 : static_cast<CS_BYTE>(0xF00 >> bytes);
  if (room.left() < bytes)
    return COM_FOU_OVERFLOW;
  room.at[0] = static_cast<CS_BYTE>(lead | value >> 6 * (bytes - 1));
  for (int i = 1; i < bytes; ++i)
    room.at[i] = static_cast<CS_BYTE>(0x80 | (value >> 6 * (bytes - 1 - i) & 0x3F));
  room.at += bytes;
  return 0;
}

[[gnu::always_inline]] inline int write_utf8(std::uint32_t value, Room &room) noexcept {
  if (value < 0x80)
    return write_utf8<1>(value, room);
  if (value < 0x800)
    return write_utf8<2>(value, room);
  if (value < 0x10000)
    return write_utf8<3>(value, room);
  return write_utf8<4>(value, room);
}

int utf16_to_utf8(Source &source, Room &room, bool refuses_noncharacters) noexcept {
  while (source.left() >= unit_size) {
    if (load<CS_USHORT>(source.at) < 0x80) {
      while (source.left() >= block * unit_size && room.left() >= block &&
             is_ascii_block_of_units(source.at)) {
        copy_block<CS_USHORT, CS_BYTE>(source.at, room.at);
        source.at += block * unit_size;
        room.at += block;
      }
      for (; source.left() >= unit_size && load<CS_USHORT>(source.at) < 0x80;
           source.at += unit_size) {
        if (room.left() < 1)
          return COM_FOU_OVERFLOW;
        *room.at++ = static_cast<CS_BYTE>(load<CS_USHORT>(source.at));
      }
      continue;
    }
    const Character character = read_utf16(source, refuses_noncharacters);
    if (character.bytes == 0)
      return COM_FOU_INVALID;
    if (write_utf8(character.value, room) != 0)
      return COM_FOU_OVERFLOW;
    source.at += character.bytes;
  }
  return source.left() == 0 ? 0 : COM_FOU_INVALID;
}

int utf16_to_utf16(Source &source, Room &room, bool) noexcept {
  const std::ptrdiff_t length = std::min(source.left(), room.left()) / unit_size * unit_size;
  if (length > 0)
    std::memcpy(room.at, source.at, static_cast<size_t>(length));
  source.at += length;
  room.at += length;
  if (source.left() == 0)
    return 0;
  return source.left() < unit_size ? COM_FOU_INVALID : COM_FOU_OVERFLOW;
}

void fill_units(Room &room, CS_USHORT unit) noexcept {
  for (; room.left() >= unit_size; room.at += unit_size)
    store(room.at, unit);
}

void fill_bytes(Room &room, CS_USHORT unit) noexcept {
  for (; room.left() > 0; ++room.at)
    *room.at = static_cast<CS_BYTE>(unit);
}

template <int (*convert)(Source &, Room &, bool), void (*fill)(Room &, CS_USHORT)>
int transcode(void *src, int slen, void *dest, int dlen, int *sused, int *dused,
              const CS_USHORT *padbytes, CS_BOOL validity_check) noexcept {
  Source source = span_of<const CS_BYTE>(src, slen);
  Room room = span_of<CS_BYTE>(dest, dlen);
  const CS_BYTE *const source_start = source.at;
  const CS_BYTE *const room_start = room.at;
  const int result = convert(source, room, validity_check != 0);
  if (padbytes != nullptr)
    fill(room, load<CS_USHORT>(padbytes));
  if (sused != nullptr)
    *sused = static_cast<int>(source.at - source_start);
  if (dused != nullptr)
    *dused = static_cast<int>(room.at - room_start);
  return result;
}

} // namespace

int com__fou_utf8_to_utf16(CS_VOID *src, int slen, CS_VOID *dest, int dlen, int *sused, int *dused,
                           CS_USHORT *padbytes, CS_BOOL validity_check) noexcept {
  return transcode<utf8_to_utf16, fill_units>(src, slen, dest, dlen, sused, dused, padbytes,
                                              validity_check);
}

int com__fou_utf16_to_utf16(CS_VOID *src, int slen, CS_VOID *dest, int dlen, int *sused, int *dused,
                            CS_USHORT *padbytes, CS_BOOL validity_check) noexcept {
  return transcode<utf16_to_utf16, fill_units>(src, slen, dest, dlen, sused, dused, padbytes,
                                               validity_check);
}

int com__fou_utf16_to_utf8(CS_VOID *src, int slen, CS_VOID *dest, int dlen, int *sused, int *dused,
                           CS_USHORT *padbytes, CS_BOOL validity_check) noexcept {
  return transcode<utf16_to_utf8, fill_bytes>(src, slen, dest, dlen, sused, dused, padbytes,
                                              validity_check);
}
