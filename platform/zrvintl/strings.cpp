// Bounded copy and append.
#include <cstring>

#include "zrvintl.h"

size_t intl_strlcpy(char *dest, const char *source, size_t size) noexcept {
  const size_t wanted = std::strlen(source);
  if (size > 0) {
    const size_t copied = wanted < size ? wanted : size - 1;
    std::memmove(dest, source, copied);
    dest[copied] = '\0';
  }
  return wanted;
}

size_t intl_strlcat(char *dest, const char *source, size_t size) noexcept {
  // Without a terminator there is no room, and nothing is written.
  const size_t held = strnlen(dest, size);
  return held + intl_strlcpy(dest + held, source, size - held);
}
