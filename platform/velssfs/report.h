// How a call went: a code and a line of text about it.
#ifndef VELSSFS_REPORT_H
#define VELSSFS_REPORT_H

#include "velssfs.h"

namespace velssfs {

class Report {
public:
  // Say what went wrong; they return the code.
  [[gnu::format(printf, 3, 4)]] RSEC_SSFS_RC fail(RSEC_SSFS_RC code, const char *format,
                                                  ...) noexcept;
  RSEC_SSFS_RC no_memory() noexcept;
  RSEC_SSFS_RC no_random_bytes() noexcept;
  // A call to the system failed with this errno on a file.
  RSEC_SSFS_RC system_failed(int error, const char *directory, const char *file) noexcept;
  // The same for one that writes.
  RSEC_SSFS_RC write_failed(int error, const char *directory, const char *file) noexcept;
  RSEC_SSFS_RC corrupt(const char *directory, const char *file, const char *how) noexcept;

  const RSecProcessingInfo *finish(RSEC_SSFS_RC code) noexcept;

private:
  RSecProcessingInfo info{};
  // Room for a path of the longest directory, and a sentence.
  char text[VELSSFS_MAX_DIRECTORY + VELSSFS_MAX_KEY + 256];
};

} // namespace velssfs

#endif
