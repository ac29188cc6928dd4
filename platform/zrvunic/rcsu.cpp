// The standard compression scheme for Unicode: half of the bytes are ASCII, the other half a window of 128
// characters, of which eight can be moved; what no window reaches is written as units, high byte first.
#include <cstring>

#include "sets.h"

namespace zrvunic {

namespace {

constexpr unsigned window_count = 8;
constexpr uint32_t window_size = 0x80;
constexpr uint32_t static_windows[window_count] = {0x0000, 0x0080, 0x0100, 0x0300,
                                                   0x2000, 0x2080, 0x2100, 0x3000};
constexpr uint32_t first_windows[window_count] = {0x0080, 0x00C0, 0x0400, 0x0600,
                                                  0x0900, 0x3040, 0x30A0, 0xFF00};

// Commands. Those with a window add its number.
namespace in_bytes { // among bytes for characters
constexpr UChar8 quote = 0x01;
constexpr UChar8 define_extended = 0x0B;
constexpr UChar8 reserved = 0x0C;
constexpr UChar8 quote_unit = 0x0E;
constexpr UChar8 to_units = 0x0F;
constexpr UChar8 change = 0x10;
constexpr UChar8 define = 0x18;
} // namespace in_bytes
namespace in_units { // among units
constexpr UChar8 change = 0xE0;
constexpr UChar8 define = 0xE8;
constexpr UChar8 quote_unit = 0xF0;
constexpr UChar8 define_extended = 0xF1;
constexpr UChar8 reserved = 0xF2;
} // namespace in_units

// Where a window begins that a command moves; 0 for a reserved number.
constexpr uint32_t special_windows[] = {0x00C0, 0x0250, 0x0370, 0x0530, 0x3040, 0x30A0, 0xFF60};
constexpr UChar8 first_special = 0xF9;
constexpr uint32_t lower_end = 0x3400; // of the windows that lie below the ideographs
constexpr uint32_t upper_start = 0xE000;

constexpr uint32_t window_of(UChar8 number) noexcept {
  if (number >= first_special)
    return special_windows[number - first_special];
  if (number < lower_end / window_size)
    return number * window_size;
  return number < 0xA8 ? number * window_size + (upper_start - lower_end) : 0;
}

constexpr bool is_within(uint32_t character, uint32_t window) noexcept {
  return character - window < window_size;
}

// Bytes below 0x80 that are characters and no commands.
constexpr bool is_plain(uint32_t character) noexcept {
  return character < 0x80 &&
         (character >= 0x20 || character == '\t' || character == '\n' || character == '\r');
}

struct Windows {
  uint32_t start[window_count];
  unsigned active = 0;
  bool units = false;

  Windows() noexcept { std::memcpy(start, first_windows, sizeof start); }

  // The two bytes that define a window above the basic plane.
  void define_extended(UChar8 high, UChar8 low) noexcept {
    active = high >> 5;
    start[active] = 0x10000 + ((high & 0x1Fu) << 8 | low) * window_size;
    units = false;
  }
};

// Writes units, and sees to it that surrogates stand in pairs.
class Units {
public:
  Units(UChar16 *to, size_t size) noexcept : dest(to), room(size) {}

  // False when the room ran out, which then holds whole characters.
  bool add(uint32_t unit) noexcept {
    if (pending && !is_low(unit)) {
      dest[count++] = replacement;
      pending = false;
      lost = true;
    }
    if (pending) {
      dest[count] = high;
      dest[count + 1] = static_cast<UChar16>(unit);
      count += 2;
      pending = false;
      return true;
    }
    if (room - count < (is_high(unit) ? 2 : 1))
      return false;
    if (is_high(unit)) {
      high = static_cast<UChar16>(unit);
      pending = true;
      return true;
    }
    lost |= is_low(unit);
    dest[count++] = is_low(unit) ? replacement : static_cast<UChar16>(unit);
    return true;
  }
  bool add_character(uint32_t character) noexcept {
    UChar16 both[2];
    const UChar16 *const end = put(both, character);
    if (end - both == 2 && room - count < (pending ? 3u : 2u))
      return false;
    for (const UChar16 *unit = both; unit < end; ++unit)
      if (!add(*unit))
        return false;
    return true;
  }
  bool add_lost() noexcept {
    lost = true;
    return add(replacement);
  }
  Outcome end(bool cut) const noexcept {
    return {count, cut || pending ? UNICONV_PARTIAL : lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
  }

private:
  UChar16 *dest;
  size_t room;
  size_t count = 0;
  UChar16 high = 0;
  bool pending = false;
  bool lost = false;
};

// Reads one command or character among bytes; 0 when the text is cut or the room ran out, else the bytes
// that it takes.
size_t read_single(const UChar8 *source, Windows &windows, Units &text) noexcept {
  const UChar8 byte = source[0];
  if (byte >= 0x80)
    return text.add_character(windows.start[windows.active] + byte - 0x80) ? 1 : 0;
  if (is_plain(byte))
    return text.add(byte) ? 1 : 0;
  if (byte >= in_bytes::change) {
    windows.active = byte % window_count;
    if (byte < in_bytes::define)
      return 1;
    if (source[1] == 0)
      return 0;
    const uint32_t start = window_of(source[1]);
    if (start != 0)
      windows.start[windows.active] = start;
    return start != 0 || text.add_lost() ? 2 : 0;
  }
  switch (byte) {
  case in_bytes::define_extended:
    windows.define_extended(source[1], source[2]);
    return 3;
  case in_bytes::reserved:
    return text.add_lost() ? 1 : 0;
  case in_bytes::quote_unit:
    if (source[1] == 0 && source[2] == 0)
      return 0;
    return text.add(static_cast<uint32_t>(source[1] << 8 | source[2])) ? 3 : 0;
  case in_bytes::to_units:
    windows.units = true;
    return 1;
  default: {
    const unsigned window = byte - in_bytes::quote;
    if (source[1] == 0)
      return 0;
    const uint32_t start = source[1] < 0x80 ? static_windows[window] : windows.start[window] - 0x80;
    return text.add_character(start + source[1]) ? 2 : 0;
  }
  }
}

// The same among units.
size_t read_units(const UChar8 *source, Windows &windows, Units &text) noexcept {
  const UChar8 byte = source[0];
  if (byte < in_units::change || byte > in_units::reserved)
    return text.add(static_cast<uint32_t>(byte << 8 | source[1])) ? 2 : 0;
  switch (byte) {
  case in_units::quote_unit:
    if (source[1] == 0 && source[2] == 0)
      return 0;
    return text.add(static_cast<uint32_t>(source[1] << 8 | source[2])) ? 3 : 0;
  case in_units::define_extended:
    windows.define_extended(source[1], source[2]);
    return 3;
  case in_units::reserved:
    return text.add_lost() ? 1 : 0;
  default: {
    // The same commands as among bytes, which go on there.
    const UChar8 command[2] = {static_cast<UChar8>(byte - in_units::change + in_bytes::change),
                               source[1]};
    const size_t length = read_single(command, windows, text);
    windows.units = length == 0;
    return length;
  }
  }
}

// ---- to the scheme ----

// What comes of one character.
struct Bytes {
  UChar8 byte[4];
  size_t count = 0;

  void add(uint32_t value) noexcept { byte[count++] = static_cast<UChar8>(value); }
  void add_unit(uint32_t unit) noexcept {
    add(unit >> 8);
    add(unit & 0xFF);
  }
};

constexpr bool has_window(uint32_t character) noexcept {
  return character < lower_end || character >= upper_start;
}

class Writer {
public:
  // The bytes for a character, whose successor, 0 at the end, says whether a window or the units pay.
  Bytes write(uint32_t character, uint32_t next) noexcept {
    Bytes bytes;
    if (windows.units)
      write_units(character, next, bytes);
    else
      write_single(character, next, bytes);
    return bytes;
  }

private:
  void write_single(uint32_t character, uint32_t next, Bytes &bytes) noexcept {
    if (is_plain(character)) {
      bytes.add(character);
    } else if (is_within(character, windows.start[windows.active])) {
      bytes.add(0x80 + character - windows.start[windows.active]);
    } else if (character < 0x20) {
      bytes.add(in_bytes::quote);
      bytes.add(character);
    } else if (!has_window(character)) {
      // One alone is quoted; a run, of which none begins with a NUL, is written as units.
      const bool run = next != 0 && !has_window(next);
      windows.units = run;
      bytes.add(run ? in_bytes::to_units : in_bytes::quote_unit);
      bytes.add_unit(character);
    } else {
      reach(character, next, in_bytes::change, in_bytes::define, in_bytes::define_extended, bytes);
    }
  }
  void write_units(uint32_t character, uint32_t next, Bytes &bytes) noexcept {
    // Units below U+0100 would begin with a NUL.
    if (character < 0x100 || (has_window(character) && (next == 0 || has_window(next)))) {
      windows.units = false;
      if (character < 0x80) {
        bytes.add(in_units::change + windows.active);
        write_single(character, next, bytes);
      } else {
        reach(character, character, in_units::change, in_units::define, in_units::define_extended,
              bytes);
      }
      return;
    }
    if (character > 0xFFFF) {
      bytes.add_unit(0xD7C0 + (character >> 10));
      bytes.add_unit(0xDC00 + (character & 0x3FF));
      return;
    }
    if (character >> 8 >= in_units::change && character >> 8 <= in_units::reserved)
      bytes.add(in_units::quote_unit);
    bytes.add_unit(character);
  }
  // Through a window: the one that has the character, or one that is moved there.
  void reach(uint32_t character, uint32_t next, UChar8 change, UChar8 define, UChar8 extended,
             Bytes &bytes) noexcept {
    for (unsigned window = 0; window < window_count; ++window) {
      if (!is_within(character, windows.start[window]))
        continue;
      const bool more = is_within(next, windows.start[window]) || change == in_units::change;
      bytes.add((more ? change : in_bytes::quote) + window);
      if (more)
        use(window);
      bytes.add(0x80 + character - windows.start[window]);
      return;
    }
    for (unsigned window = 0; window < window_count; ++window)
      // The first character of a window would be a NUL.
      if (is_within(character, static_windows[window]) && character != static_windows[window] &&
          change == in_bytes::change && !is_within(next, character & ~(window_size - 1))) {
        bytes.add(in_bytes::quote + window);
        bytes.add(character - static_windows[window]);
        return;
      }
    const unsigned window = oldest();
    use(window);
    if (character > 0xFFFF) {
      const uint32_t number = (character - 0x10000) / window_size;
      windows.start[window] = 0x10000 + number * window_size;
      bytes.add(extended);
      bytes.add(window << 5 | number >> 8);
      bytes.add(number & 0xFF);
    } else {
      const uint32_t number =
          (character < lower_end ? character : character - (upper_start - lower_end)) / window_size;
      windows.start[window] = window_of(static_cast<UChar8>(number));
      bytes.add(define + window);
      bytes.add(number);
    }
    bytes.add(0x80 + character - windows.start[window]);
  }
  void use(unsigned window) noexcept {
    windows.active = window;
    used[window] = ++clock;
  }
  unsigned oldest() const noexcept {
    unsigned found = 0;
    for (unsigned window = 1; window < window_count; ++window)
      if (used[window] < used[found])
        found = window;
    return found;
  }

  Windows windows;
  uint64_t used[window_count]{};
  uint64_t clock = 0;
};

} // namespace

Outcome decode_rcsu(UChar16 *dest, size_t room, const UChar8 *source) noexcept {
  Windows windows;
  Units text(dest, room);
  while (*source != 0) {
    const size_t length =
        windows.units ? read_units(source, windows, text) : read_single(source, windows, text);
    if (length == 0)
      return text.end(true);
    source += length;
  }
  return text.end(false);
}

Outcome encode_rcsu(const Substitutes &substitutes, UChar8 *dest, size_t room,
                    const UChar16 *source, size_t count) noexcept {
  Writer writer;
  bool lost = false;
  size_t written = 0;
  for (size_t done = 0; done < count;) {
    size_t units = 0;
    uint32_t character = take(source + done, count - done, units);
    if (is_surrogate(character)) {
      character = substitutes.single;
      lost = true;
    }
    done += units;
    const uint32_t next = done < count ? take(source + done, count - done, units) : 0;
    const Bytes bytes = writer.write(character, next);
    if (bytes.count > room - written)
      return {written, UNICONV_FULL};
    std::memcpy(dest + written, bytes.byte, bytes.count);
    written += bytes.count;
  }
  return {written, lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

} // namespace zrvunic
