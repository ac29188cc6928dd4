// The two checks, and how they end the process.
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "checks.h"

int full_abort = 0;

void com__abort() noexcept {
  if (full_abort == 1) {
    std::fclose(stderr);
    std::abort();
  }
  std::fflush(stderr);
  std::raise(SIGABRT);
}

void com_bomb(char *file, int line) noexcept {
  std::fprintf(stderr, "\n\rassertion failed, file '%s' line %d\n\r", file ? file : "", line);
  com__abort();
}

void com_raise_invalid_null_pointer(char *file, int line) noexcept {
  std::fprintf(stderr, "\nInvalid NULL pointer , file '%s' line %d\n", file ? file : "", line);
  com__abort();
}

void com_toggle_abort(CS_INT value) noexcept {
  full_abort = value;
}
