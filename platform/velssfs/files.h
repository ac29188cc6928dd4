// Files and directories, as a store needs them. What fails gives its errno, and 0 is success.
#ifndef VELSSFS_FILES_H
#define VELSSFS_FILES_H

#include <sys/types.h>

#include "bytes.h"

namespace velssfs {

// An open file, which is closed with it.
class Descriptor {
public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) noexcept : number(descriptor) {}
  ~Descriptor();
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  int open(int directory, const char *path, int flags, mode_t mode = 0) noexcept;
  // What is written may fail as late as here.
  int close() noexcept;
  int get() const noexcept { return number; }
  // Somebody else closes it from now on.
  void forget() noexcept { number = -1; }

private:
  int number = -1;
};

// Makes a directory, and those above it, with the mode 0700; one that is there is left alone. What it
// makes lasts, unless it lies in a directory that cannot be read.
int make_directory(const char *path) noexcept;

// Reads a file. EFBIG for one of more than `most` bytes, and for what is no file.
int read_whole(const char *path, size_t most, Bytes &content, mode_t &mode) noexcept;

// Writes a file under another name and puts it in the place of the one that has its own, so that at
// any moment the old one or the new one is there, whole. The directory is not synchronised. The caller
// has the store to itself.
int replace_file(int directory, const char *name, const Bytes &content) noexcept;

// The lock of a store, which goes with the descriptor of its file; descriptors of one process keep one
// another out as well. ETIMEDOUT after so many milliseconds.
int lock_file(const Descriptor &file, int operation, int milliseconds) noexcept;

// The names of the files of records in a directory, one after another with their NUL bytes, in no
// order; those that begin with `prefix`. `length` gets their bytes: the block may be larger.
int list_record_keys(int directory, const char *prefix, Bytes &names, size_t &length,
                     size_t &count) noexcept;

} // namespace velssfs

#endif
