// What stands in the files of a store, and the cipher that makes and opens it.
//
// All numbers are little-endian. A record:
//
//      0    8  "VELSSFS" and 1, the version of this form
//      8    4  flags: 1 the value is stored as plain text, 2 it is binary; no other
//     12    4  length of the value
//     16   16  which master key it is under: Key::id
//     32   12  nonce, random
//     44    4  length of the record's key
//     48       the record's key, the value, and a tag of 16 bytes
//
// The value is encrypted with AES-256-GCM; what stands before it is authenticated with it, and the
// value itself where it is plain. The record's key binds a file to its name.
//
// The file "key":
//
//      0    8  "VELSSFK" and 1
//      8    4  number of keys, 1 or 2: while the master key is changed, the old one and the new one
//     12    4  0
//     16       the keys, 32 bytes each, the one that is written under last; and the SHA-256 of all
//              that stands before it
#ifndef VELSSFS_SEALING_H
#define VELSSFS_SEALING_H

#include <cstdint>

#include <openssl/evp.h>

#include "bytes.h"
#include "texts.h"
#include "velssfs.h"

namespace velssfs {

// A master key. Its id, under which records name it, is a digest of it.
class Key {
public:
  static constexpr size_t id_size = 16;

  ~Key() { OPENSSL_cleanse(bytes, sizeof bytes); }

  // Sets the id that belongs to `bytes`; false when the digest cannot be had.
  bool identify() noexcept;
  bool has_id(const Byte *other) const noexcept { return std::memcmp(id, other, id_size) == 0; }

  Byte bytes[key_size];
  Byte id[id_size];
};

// The master keys of a store: none, one, or two while a change is under way.
class KeyRing {
public:
  static constexpr int most = 2;

  const Key *find(const Byte *id) const noexcept;
  const Key &current() const noexcept { return keys[count - 1]; }
  void add(const Key &key) noexcept { keys[count++] = key; }
  void keep_current() noexcept;

  // The contents of the file "key"; false without memory or without a digest.
  bool write(Bytes &file) const noexcept;
  // False, the ring empty, for contents that write did not make. A digest that cannot be had counts as
  // one that does not fit.
  bool read(const Bytes &file) noexcept;
  static constexpr size_t largest_file = 16 + most * key_size + 32;

  int count = 0;
  Key keys[most];
};

// What a record holds beside its key.
struct Record {
  bool is_plain;
  bool is_binary;
  const Byte *value;
  size_t length;
};

enum class Sealed { good, no_random_bytes, no_memory };
enum class Opened { good, damaged, unknown_key, no_memory };

// The cipher with its state, which is kept from record to record and wiped with it.
class Sealer {
public:
  Sealer() = default;
  ~Sealer() { EVP_CIPHER_CTX_free(context); }
  Sealer(const Sealer &) = delete;
  Sealer &operator=(const Sealer &) = delete;

  // Makes the contents of a record's file.
  Sealed seal(const Key &key, const char *name, const Record &record, Bytes &file) noexcept;

  // Opens the contents of a record's file in place. A good record's value stands in `file` then, with a
  // NUL byte behind it.
  Opened open(const KeyRing &ring, const char *name, Bytes &file, Record &record) noexcept;

  // Which key a file names that is good, or under an unknown key.
  static const Byte *key_id(const Bytes &file) noexcept { return file.data() + 16; }

  static constexpr size_t header_size = 48;
  static constexpr size_t tag_size = 16;
  static constexpr size_t largest_file =
      header_size + VELSSFS_MAX_KEY + VELSSFS_MAX_VALUE + tag_size;

private:
  bool start(const Key &key, const Byte *nonce, int is_sealing) noexcept;
  bool pass(const Byte *authenticated, size_t authenticated_length, Byte *text,
            size_t length) noexcept;

  EVP_CIPHER_CTX *context = nullptr;
};

// Fills a secret with random bytes; false when there are none.
bool draw(Byte *bytes, size_t size) noexcept;

} // namespace velssfs

#endif
