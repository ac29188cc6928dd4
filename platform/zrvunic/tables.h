// The tables of sets in memory, and the converters that read them.
#ifndef ZRVUNIC_TABLES_H
#define ZRVUNIC_TABLES_H

#include "sets.h"

namespace zrvunic {

// A set of one-byte characters, all of them in the basic plane. Page 0 is empty: a code of 0 says that
// the set lacks the character, for no text holds a NUL.
struct OneByteTable : Table {
  UChar16 to_unicode[256]{}; // U+FFFD: no character
  uint8_t page_of[256]{};    // by the high byte of a unit
  uint8_t (*pages)[256] = nullptr;
};

// Two characters with one code between them.
struct Pair {
  uint32_t first;
  uint32_t second;
  uint32_t code;
  uint32_t alone; // the code of the first one without the second; 0: none
};

// What a node of a MultiByteTable has for a byte: a character, a pair, another node for the next byte,
// or one of these. 0 is a byte that cannot stand here.
namespace entry {
constexpr uint32_t node = 0x80000000;       // with the index of the node
constexpr uint32_t pair = 0x40000000;       // with the index of the pair
constexpr uint32_t unassigned = 0x20000000; // the form of a character and no character
constexpr uint32_t four_byte = 0x10000000;  // two more bytes of gb18030
// In a page: the character begins a pair, with the index of the first such one. No code looks like it.
constexpr uint32_t begins_pair = 0x01000000;
} // namespace entry

// A set of characters of several lengths. Page 0 is empty, and a code has its bytes in the order in which
// they are written, high ones first.
struct MultiByteTable : Table {
  uint32_t (*nodes)[256] = nullptr; // 0 for the first byte; in shifted sets 1 for that of two bytes
  const uint16_t *page_of = nullptr;
  uint32_t (*pages)[256] = nullptr;
  size_t page_limit = 0; // characters from 256 times this have no page
  Pair *pairs = nullptr;
  size_t pair_count = 0;
  UChar16 *linear = nullptr; // of gb18030: by the count of a four-byte code; 0: no character
};

// The four-byte codes of gb18030 count their second and fourth byte by ten and their third by 126. Those
// of the basic plane come first.
constexpr uint32_t linear_basic = 39420;
constexpr uint32_t linear_others = 189000; // U+10000
constexpr uint32_t four_byte_code(uint32_t number) noexcept {
  return (0x81 + number / 12600) << 24 | (0x30 + number / 1260 % 10) << 16 |
         (0x81 + number / 10 % 126) << 8 | (0x30 + number % 10);
}

// ASCII (0) and ISO 8859-1 (1), which need no file; null for the others.
OneByteTable *built_in(UNICONV_CID cid) noexcept;

Outcome decode_one_byte(const OneByteTable &table, UChar16 *dest, size_t room,
                        const UChar8 *source) noexcept;
Outcome encode_one_byte(const OneByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                        size_t room, const UChar16 *source, size_t count) noexcept;
// For gb18030 as well.
Outcome decode_multi_byte(const MultiByteTable &table, UChar16 *dest, size_t room,
                          const UChar8 *source) noexcept;
Outcome encode_multi_byte(const MultiByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                          size_t room, const UChar16 *source, size_t count) noexcept;
Outcome decode_shifted(const MultiByteTable &table, UChar16 *dest, size_t room,
                       const UChar8 *source) noexcept;
Outcome encode_shifted(const MultiByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                       size_t room, const UChar16 *source, size_t count) noexcept;

// Makes the table of a set from its file in `directory`. One block, to be released with comn_free, or
// null with UNICONV_ENOTABLE, UNICONV_EDAMAGED or UNICONV_ENOMEM in `*code`.
Table *load_table(const Set &set, const char *directory, int *code) noexcept;

} // namespace zrvunic

#endif
