// The peers of messages, in a shared object of their own.
#ifndef ZRVBENCH_MESSAGES_PEERS_H
#define ZRVBENCH_MESSAGES_PEERS_H

#include <string>

namespace zrvbench {

#ifdef ZRVBENCH_WITH_FMT
// The line as {fmt} makes it from a format that is known at run time only: four parts, the last a text
// with none, one or two parameters of its own.
std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin);
std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin, const char *parameter);
std::string fmt_line(const std::string &format, const char *api, const char *layer,
                     const char *origin, int number, const char *parameter);
#endif

} // namespace zrvbench

#endif
