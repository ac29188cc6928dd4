// The peers of locales, in a shared object of their own.
#ifndef ZRVBENCH_LOCALES_PEERS_H
#define ZRVBENCH_LOCALES_PEERS_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>

namespace zrvbench {

// What somebody keeps who loads locales by name: no copy of the name is made for a look-up.
using NameMap = std::map<std::string, void *, std::less<>>;

void *peer_find(const NameMap &map, const char *name, std::size_t length);

} // namespace zrvbench

#endif
