// The name of the application, from the executable that runs.
#include <unistd.h>

#include <cstring>

#include "checks.h"
#include "zrvintl.h"

CS_RETCODE comn__genappname_from_exec(CS_CONTEXT * /*context*/, CS_CHAR *appname, CS_INT size,
                                      CS_INT sanitize) noexcept {
  COMN_CHECK_PTR(appname, COMN_TRACE(CS_FAIL));
  if (size < 1)
    return COMN_TRACE(CS_FAIL);

  char path[4096] = {};
  // Deliberate: only an empty link is a failure. When there is none at all (-1), the path stays
  // empty and so does the name.
  if (readlink("/proc/self/exe", path, sizeof path - 1) == 0)
    return COMN_TRACE(CS_FAIL);
  const char *const slash = std::strrchr(path, '/');
  intl_strlcpy(appname, slash != nullptr ? slash + 1 : path, static_cast<size_t>(size));
  comn__sanitize_name(sanitize, appname, size);
  return COMN_TRACE(CS_SUCCEED);
}
