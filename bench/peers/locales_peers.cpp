// The peers of locales.
#include "locales_peers.h"

#include <string_view>

void *zrvbench::peer_find(const NameMap &map, const char *name, std::size_t length) {
  const auto found = map.find(std::string_view(name, length));
  return found != map.end() ? found->second : nullptr;
}
