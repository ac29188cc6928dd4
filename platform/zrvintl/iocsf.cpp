// Files that are read byte by byte: opened by path, read through a block, closed.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "zrvintl.h"

struct intl_iocs {
  int descriptor;
  int failed;       // reading has failed, and fails from then on
  size_t next, end; // the bytes that are not used yet
  char bytes[4096];
};

namespace {

// Reads the next block, when all bytes are used. False at the end of the file and on failure.
[[gnu::noinline]] bool refill(INTL_IOCS &iocs) noexcept {
  if (iocs.failed != 0)
    return false;
  ssize_t count;
  do
    count = read(iocs.descriptor, iocs.bytes, sizeof iocs.bytes);
  while (count < 0 && errno == EINTR);
  iocs.failed = count < 0;
  iocs.next = 0;
  iocs.end = count > 0 ? static_cast<size_t>(count) : 0;
  return count > 0;
}

// Copies up to `wanted` bytes; fewer at the end of the file and on failure.
size_t take(INTL_IOCS &iocs, char *buffer, size_t wanted) noexcept {
  size_t taken = 0;
  while (taken < wanted && (iocs.next < iocs.end || refill(iocs))) {
    const size_t count = std::min(wanted - taken, iocs.end - iocs.next);
    std::memcpy(buffer + taken, iocs.bytes + iocs.next, count);
    iocs.next += count;
    taken += count;
  }
  return taken;
}

[[gnu::noinline]] int read_items(void *buffer, size_t size, size_t count,
                                 INTL_IOCS *iocs) noexcept {
  if (buffer == nullptr || iocs == nullptr)
    return ZRVINTL_EINVAL;
  if (size == 0 || count == 0)
    return 0;
  if (count > INT_MAX / size)
    return ZRVINTL_EINVAL;
  const size_t items = take(*iocs, static_cast<char *>(buffer), size * count) / size;
  return items == 0 && iocs->failed != 0 ? ZRVINTL_EREAD : static_cast<int>(items);
}

} // namespace

INTL_IOCS *intl_iocsfopen(const char *path, int mode) noexcept {
  if (path == nullptr || mode != INTL_IOCS_READ)
    return nullptr;
  auto *const iocs = static_cast<INTL_IOCS *>(comn_malloc(sizeof(INTL_IOCS)));
  if (iocs == nullptr)
    return nullptr;
  iocs->descriptor = open(path, O_RDONLY | O_CLOEXEC);
  if (iocs->descriptor < 0) {
    comn_free(iocs);
    return nullptr;
  }
  iocs->failed = 0;
  iocs->next = iocs->end = 0;
  return iocs;
}

int intl_iocsfread(void *buffer, size_t size, size_t count, INTL_IOCS *iocs) noexcept {
  // A byte at a time is what the reader of configuration files asks for.
  if (size == 1 && count == 1 && buffer != nullptr && iocs != nullptr && iocs->next < iocs->end)
      [[likely]] {
    *static_cast<char *>(buffer) = iocs->bytes[iocs->next++];
    return 1;
  }
  return read_items(buffer, size, count, iocs);
}

int intl_iocsfclose(INTL_IOCS *iocs) noexcept {
  if (iocs == nullptr)
    return ZRVINTL_ECLOSED;
  const int result = close(iocs->descriptor);
  comn_free(iocs);
  return result == 0 ? 0 : ZRVINTL_EREAD;
}
