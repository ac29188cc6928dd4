// The emergency printer, for when messages cannot be had.
#include <cstdio>
#include <cstring>

#include "checks.h"

namespace {

constexpr char file_name[] = "zrvinit.err";

void print(FILE *stream, const char *text) noexcept {
  // A format without arguments: "%%" is one sign, and no other conversion has anything to show.
  while (const char *const percent = std::strstr(text, "%%")) {
    std::fwrite(text, 1, static_cast<size_t>(percent + 1 - text), stream);
    text = percent + 2;
  }
  std::fputs(text, stream);
}

} // namespace

void com_perr(CS_CHAR *err_string) noexcept {
  COMN_CHECK_PTR(err_string);
  print(stderr, err_string);
  std::fflush(stderr);
  FILE *const stream = std::fopen(file_name, "ae");
  if (stream == nullptr)
    return;
  print(stream, err_string);
  std::fclose(stream);
}
