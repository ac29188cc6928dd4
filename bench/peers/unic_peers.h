// The peers of the Unicode converters, in a shared object of their own. Texts end at a NUL; each function
// returns the length of what it wrote and ends the program when it cannot.
#ifndef ZRVBENCH_UNIC_PEERS_H
#define ZRVBENCH_UNIC_PEERS_H

#include <cstddef>

namespace zrvbench {

// A kept descriptor.
void *iconv_peer(const char *to, const char *from);
std::size_t iconv_convert(void *peer, const char *source, std::size_t length, char *dest,
                          std::size_t room);

#ifdef ZRVBENCH_WITH_ICU
// A kept converter.
void *icu_peer(const char *set);
std::size_t icu_to_units(void *peer, const char *source, char16_t *dest, std::size_t room);
std::size_t icu_from_units(void *peer, const char16_t *source, char *dest, std::size_t room);
std::size_t icu_from_utf8(const char *source, char16_t *dest, std::size_t room);
std::size_t icu_to_utf8(const char16_t *source, char *dest, std::size_t room);
#endif

} // namespace zrvbench

#endif
