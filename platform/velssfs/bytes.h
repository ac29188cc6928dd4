// A block of bytes that is wiped when it goes.
#ifndef VELSSFS_BYTES_H
#define VELSSFS_BYTES_H

#include <cstddef>
#include <cstring>

#include <openssl/crypto.h>

#include "zrvintl.h"

namespace velssfs {

using Byte = unsigned char;

class Bytes {
public:
  Bytes() = default;
  ~Bytes() { release(); }
  Bytes(const Bytes &) = delete;
  Bytes &operator=(const Bytes &) = delete;

  void release() noexcept {
    if (block != nullptr)
      OPENSSL_cleanse(block, length);
    comn_free(block);
    block = nullptr;
    length = 0;
  }

  // Gives up what was there for a block of that size, whose bytes are not set; false without memory.
  bool renew(size_t size) noexcept {
    release();
    block = static_cast<Byte *>(comn_malloc(size));
    if (block == nullptr)
      return false;
    length = size;
    return true;
  }

  // Keeps what was there in a larger block; false without memory.
  bool grow(size_t size) noexcept {
    auto *const larger = static_cast<Byte *>(comn_malloc(size));
    if (larger == nullptr)
      return false;
    const size_t kept = length;
    if (kept > 0)
      std::memcpy(larger, block, kept);
    release();
    block = larger;
    length = size;
    return true;
  }

  Byte *data() noexcept { return block; }
  const Byte *data() const noexcept { return block; }
  size_t size() const noexcept { return length; }
  // Forgets what stands behind that size.
  void cut(size_t size) noexcept {
    OPENSSL_cleanse(block + size, length - size);
    length = size;
  }

private:
  Byte *block = nullptr;
  size_t length = 0;
};

} // namespace velssfs

#endif
