// A store: the records of a directory under its master key.
#ifndef VELSSFS_STORE_H
#define VELSSFS_STORE_H

#include "files.h"
#include "report.h"
#include "sealing.h"

namespace velssfs {

// Chooses the directory of the stores that are made from now on; false for one that is too long.
bool configure(const char *directory) noexcept;

class Store {
public:
  Store() noexcept;

  // Reads a record, whose value stands in `file` then.
  RSEC_SSFS_RC get(const char *key, Bytes &file, Record &record) noexcept;
  RSEC_SSFS_RC put(const char *key, const Record &record) noexcept;
  RSEC_SSFS_RC remove(const char *key) noexcept;
  // The keys with a prefix, as list_record_keys gives them.
  RSEC_SSFS_RC list(const char *prefix, Bytes &names, size_t &count) noexcept;
  RSEC_SSFS_RC change_key(const Key &wanted, int milliseconds) noexcept;

  Report report;

private:
  // The directory and its lock, both held while it lives.
  struct Access {
    Descriptor directory, lock;
  };
  struct FilePath {
    char text[VELSSFS_MAX_DIRECTORY + 1 + sizeof(FileName)];
  };
  // The keys of records, one after another with their NUL bytes.
  struct Keys {
    Bytes names;
    size_t length = 0, count = 0;
  };

  FilePath path_of(const char *file) const noexcept;
  RSEC_SSFS_RC need_directory() noexcept;
  RSEC_SSFS_RC begin_write(Access &access, int milliseconds) noexcept;

  RSEC_SSFS_RC read_record(const char *key, Bytes &file, Record &record, Opened &opened) noexcept;
  RSEC_SSFS_RC require_good(Opened opened, const char *key) noexcept;
  // Sets the ring to the master keys; none where the file "key" is missing.
  RSEC_SSFS_RC read_ring() noexcept;

  RSEC_SSFS_RC write_file(const Access &access, const char *name, const Bytes &content) noexcept;
  RSEC_SSFS_RC write_record(const Access &access, const char *key, const Record &record) noexcept;
  RSEC_SSFS_RC write_ring(const Access &access) noexcept;
  RSEC_SSFS_RC synchronise(const Access &access) noexcept;
  RSEC_SSFS_RC list_all(const Access &access, Keys &keys) noexcept;

  RSEC_SSFS_RC make_first_key(const Access &access) noexcept;
  RSEC_SSFS_RC check_records(const Keys &keys, bool is_key_lost) noexcept;
  RSEC_SSFS_RC give_up_old_key(const Access &access, const Keys &keys) noexcept;

  char path[VELSSFS_MAX_DIRECTORY + 1]; // without a slash at its end, unless it is the root
  size_t path_length;                   // 0: there is none
  KeyRing ring;
  Sealer sealer;
};

} // namespace velssfs

#endif
