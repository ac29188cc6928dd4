#include "messages_peers.h"

#ifdef ZRVBENCH_WITH_FMT
#include <fmt/format.h>

namespace zrvbench {

std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin) {
  return fmt::format(fmt::runtime(format), api, layer, origin);
}

std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin, const char *parameter) {
  return fmt::format(fmt::runtime(format), api, layer, origin, parameter);
}

std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin, int number, const char *parameter) {
  return fmt::format(fmt::runtime(format), api, layer, origin, number, parameter);
}

} // namespace zrvbench
#endif
