// Sets of characters of several lengths, with and without shifts.
#include <algorithm>
#include <cstring>

#include "tables.h"

namespace zrvunic {

namespace {

constexpr UChar8 shift_out = 0x0E; // to two bytes
constexpr UChar8 shift_in = 0x0F;  // to one byte

// A character that a table has, what it lacks, or the cut end of the text, with the bytes that it takes.
struct Piece {
  enum Kind { character, pair, lost, cut } kind;
  uint32_t value; // the character, or the index of the pair
  size_t length;
};

// What begins at `source`, of which something is left; the text ends at a NUL, and no node has an
// entry for it.
inline Piece read(const MultiByteTable &table, const UChar8 *source, uint32_t found) noexcept {
  size_t length = 1;
  while ((found & entry::node) != 0)
    found = table.nodes[found & ~entry::node][source[length++]];
  if (found - 1 < last_character) [[likely]]
    return {Piece::character, found, length};
  if ((found & entry::pair) != 0)
    return {Piece::pair, found & ~entry::pair, length};
  if (found == entry::unassigned)
    return {Piece::lost, 0, length};
  if (found == entry::four_byte) {
    const auto digit = [&](size_t at, unsigned first, unsigned count) {
      return source[at] >= first && source[at] < first + count;
    };
    if (!digit(2, 0x81, 126))
      return {source[2] == 0 ? Piece::cut : Piece::lost, 0, 1};
    if (!digit(3, '0', 10))
      return {source[3] == 0 ? Piece::cut : Piece::lost, 0, 1};
    const uint32_t number = ((source[0] - 0x81u) * 10 + (source[1] - '0')) * 1260 +
                            (source[2] - 0x81u) * 10 + (source[3] - '0');
    if (number < linear_basic && table.linear[number] != 0)
      return {Piece::character, table.linear[number], 4};
    if (number >= linear_others && number - linear_others <= last_character - 0x10000)
      return {Piece::character, 0x10000 + (number - linear_others), 4};
    return {Piece::lost, 0, 4};
  }
  // A byte that cannot stand here is looked at again as the first of a character.
  if (length > 1 && source[length - 1] == 0)
    return {Piece::cut, 0, length};
  return {Piece::lost, 0, std::max<size_t>(length - 1, 1)};
}

// Writes a piece and goes behind it; false when the room does not hold it or the text is cut there.
inline bool put_piece(const MultiByteTable &table, const Piece &piece, UChar16 *&dest,
                      const UChar16 *limit, const UChar8 *&source, bool &lost) noexcept {
  const bool two =
      piece.kind == Piece::pair || (piece.kind == Piece::character && piece.value > 0xFFFF);
  if (piece.kind == Piece::cut || limit - dest < (two ? 2 : 1))
    return false;
  if (piece.kind == Piece::pair) {
    dest = put(dest, table.pairs[piece.value].first);
    dest = put(dest, table.pairs[piece.value].second);
  } else if (piece.kind == Piece::lost) {
    *dest++ = replacement;
    lost = true;
  } else {
    dest = put(dest, piece.value);
  }
  source += piece.length;
  return true;
}

inline size_t code_size(uint32_t code) noexcept {
  return code < 0x100 ? 1 : code < 0x10000 ? 2 : code < 0x1000000 ? 3 : 4;
}

inline UChar8 *put_code(UChar8 *dest, uint32_t code) noexcept {
  for (size_t left = code_size(code); left-- > 0;)
    *dest++ = static_cast<UChar8>(code >> (8 * left));
  return dest;
}

// The code for what stands at `source` and the units that it takes; a substitute and `lost` when there
// is none.
inline uint32_t code_of(const MultiByteTable &table, const Substitutes &substitutes,
                        const UChar16 *source, size_t count, size_t &units, bool &lost) noexcept {
  const uint32_t character = take(source, count, units);
  const size_t page = character >> 8;
  uint32_t code = page < table.page_limit ? table.pages[table.page_of[page]][character & 0xFF] : 0;
  if ((code & 0xFF000000) == entry::begins_pair) [[unlikely]] {
    size_t index = code & ~entry::begins_pair;
    code = table.pairs[index].alone;
    for (; count > units && index < table.pair_count; ++index)
      if (table.pairs[index].first == character && table.pairs[index].second == source[units]) {
        ++units;
        return table.pairs[index].code;
      }
  }
  if (code != 0) [[likely]]
    return code;
  if (character > 0xFFFF && table.set->form == Form::gb18030)
    return four_byte_code(linear_others + (character - 0x10000));
  lost = true;
  return character <= 0xFF ? substitutes.single : substitutes.pair;
}

} // namespace

Outcome decode_multi_byte(const MultiByteTable &table, UChar16 *dest, size_t room,
                          const UChar8 *source) noexcept {
  const UChar8 *const end = source + std::strlen(reinterpret_cast<const char *>(source));
  UChar16 *const start = dest;
  UChar16 *const limit = dest + room;
  bool lost = false;
  while (source < end) {
    if (table.ascii) {
      const size_t run = widen_ascii(
          dest, source,
          std::min(static_cast<size_t>(end - source), static_cast<size_t>(limit - dest)));
      source += run;
      dest += run;
    }
    // Other characters one by one, until some ASCII ones stand together.
    for (int ascii = 0; source < end && ascii < ascii_run;) {
      const uint32_t found = table.nodes[0][*source];
      if (found - 1 < 0x7F && dest < limit) {
        *dest++ = static_cast<UChar16>(found);
        ++source;
        ++ascii;
        continue;
      }
      ascii = 0;
      if (!put_piece(table, read(table, source, found), dest, limit, source, lost))
        return {static_cast<size_t>(dest - start), UNICONV_PARTIAL};
    }
  }
  return {static_cast<size_t>(dest - start), lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

Outcome encode_multi_byte(const MultiByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                          size_t room, const UChar16 *source, size_t count) noexcept {
  const UChar16 *const end = source + count;
  UChar8 *const start = dest;
  UChar8 *const limit = dest + room;
  bool lost = false;
  while (source < end) {
    if (table.ascii) {
      const size_t run = narrow_ascii(
          dest, source,
          std::min(static_cast<size_t>(end - source), static_cast<size_t>(limit - dest)));
      source += run;
      dest += run;
    }
    for (int ascii = 0; source < end && limit - dest >= 2 && ascii < ascii_run; ++source) {
      const uint32_t code = table.pages[table.page_of[*source >> 8]][*source & 0xFF];
      if (code - 1 < 0xFF) {
        *dest++ = static_cast<UChar8>(code);
        ascii = code < 0x80 ? ascii + 1 : 0;
      } else if (code - 0x100 < 0xFF00) {
        dest[0] = static_cast<UChar8>(code >> 8);
        dest[1] = static_cast<UChar8>(code);
        dest += 2;
        ascii = 0;
      } else {
        break;
      }
    }
    if (source == end)
      break;
    size_t units = 0;
    bool lacks = false;
    const uint32_t code =
        code_of(table, substitutes, source, static_cast<size_t>(end - source), units, lacks);
    if (code_size(code) > static_cast<size_t>(limit - dest))
      return {static_cast<size_t>(dest - start), UNICONV_FULL};
    lost |= lacks;
    dest = put_code(dest, code);
    source += units;
  }
  return {static_cast<size_t>(dest - start), lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

// A control character, or what else has no two-byte form, is malformed between the shifts.
Outcome decode_shifted(const MultiByteTable &table, UChar16 *dest, size_t room,
                       const UChar8 *source) noexcept {
  constexpr UChar8 lowest = 0x40; // of either byte
  UChar16 *const start = dest;
  UChar16 *const limit = dest + room;
  bool two_bytes = false;
  bool lost = false;
  while (*source != 0) {
    if (*source == shift_out || *source == shift_in) {
      two_bytes = *source++ == shift_out;
      continue;
    }
    Piece piece;
    if (!two_bytes) {
      piece = read(table, source, table.nodes[0][*source]);
    } else if (*source < lowest || (source[1] != 0 && source[1] < lowest)) {
      piece = {Piece::lost, 0, 1};
    } else if (source[1] == 0) {
      piece = {Piece::cut, 0, 1};
    } else {
      piece = read(table, source, table.nodes[1][*source]);
      piece.length = 2;
    }
    if (!put_piece(table, piece, dest, limit, source, lost))
      return {static_cast<size_t>(dest - start), UNICONV_PARTIAL};
  }
  return {static_cast<size_t>(dest - start), lost ? UNICONV_SUBSTITUTED : UNICONV_SUCCEED};
}

Outcome encode_shifted(const MultiByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                       size_t room, const UChar16 *source, size_t count) noexcept {
  const UChar16 *const end = source + count;
  UChar8 *const start = dest;
  UChar8 *const limit = dest + room;
  bool two_bytes = false;
  bool lost = false;
  bool full = false;
  while (source < end) {
    size_t units = 0;
    bool lacks = false;
    const uint32_t code =
        code_of(table, substitutes, source, static_cast<size_t>(end - source), units, lacks);
    const bool two = code > 0xFF;
    // The shift before it, and room for the one that ends the text.
    const size_t needed = (two != two_bytes ? 1 : 0) + (two ? 3 : 1);
    if (needed > static_cast<size_t>(limit - dest)) {
      full = true;
      break;
    }
    lost |= lacks;
    if (two != two_bytes)
      *dest++ = two ? shift_out : shift_in;
    two_bytes = two;
    dest = put_code(dest, code);
    source += units;
  }
  if (two_bytes)
    *dest++ = shift_in;
  return {static_cast<size_t>(dest - start), full   ? UNICONV_FULL
                                             : lost ? UNICONV_SUBSTITUTED
                                                    : UNICONV_SUCCEED};
}

} // namespace zrvunic
