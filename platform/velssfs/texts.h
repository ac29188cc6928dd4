// The forms of texts: keys of records and the files that they name, UTF-8, master keys.
#ifndef VELSSFS_TEXTS_H
#define VELSSFS_TEXTS_H

#include "bytes.h"
#include "velssfs.h"

namespace velssfs {

// Whether a text can be the key of a record, and whether every byte of one is a byte of keys.
bool is_record_key(const char *text) noexcept;
bool is_key_prefix(const char *text) noexcept;

// What the file of a record is called: its key, with a plus for each slash, and ".rec".
constexpr char record_suffix[] = ".rec";
constexpr size_t record_suffix_length = sizeof record_suffix - 1;
struct FileName {
  char text[VELSSFS_MAX_KEY + sizeof record_suffix];
};
FileName file_of_key(const char *key) noexcept;
// The key of a file; false for a file that is no record's.
bool key_of_file(const char *file, char (&key)[VELSSFS_MAX_KEY + 1]) noexcept;

bool is_utf8(const Byte *text, size_t length) noexcept;

constexpr size_t key_size = 32;
static_assert(VELSSFS_CHAR_KEY == 2 * key_size);
// Hexadecimal digits of a master key, into 32 bytes; false for another text.
bool parse_char_key(const char *text, Byte (&bytes)[key_size]) noexcept;
void print_char_key(const Byte (&bytes)[key_size], char (&text)[VELSSFS_CHAR_KEY + 1]) noexcept;

} // namespace velssfs

#endif
