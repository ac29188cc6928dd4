// The tables of sets in memory, and the converters that read them.
#ifndef ZRVUNIC_TABLES_H
#define ZRVUNIC_TABLES_H

#include "sets.h"

namespace zrvunic {

// A set of one-byte characters, all of them in the basic plane. Page 0 is empty: a code of 0 says that
// the set lacks the character, for no text holds a NUL.
struct OneByteTable : Table {
  bool ascii = false;        // the first half is ASCII
  UChar16 to_unicode[256]{}; // U+FFFD: no character
  uint8_t page_of[256]{};    // by the high byte of a unit
  uint8_t (*pages)[256] = nullptr;
};

Outcome decode_one_byte(const OneByteTable &table, UChar16 *dest, size_t room,
                        const UChar8 *source) noexcept;
Outcome encode_one_byte(const OneByteTable &table, const Substitutes &substitutes, UChar8 *dest,
                        size_t room, const UChar16 *source, size_t count) noexcept;

// ASCII (0) and ISO 8859-1 (1), which need no file.
OneByteTable *built_in(UNICONV_CID cid) noexcept;

} // namespace zrvunic

#endif
