// Reading secrets.
#include "secret.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <termios.h>
#include <unistd.h>

#include "errors.h"
#include "zrvcomn/comnlib.h"

namespace zrvtool {

namespace {

volatile std::sig_atomic_t interrupted = 0;

// Turns the echo of the terminal off, also for the time of a signal: reading breaks off, and the
// terminal is as it was before the process ends.
class WithoutEcho {
public:
  WithoutEcho() {
    tcgetattr(STDIN_FILENO, &before);
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    for (size_t i = 0; i < std::size(signals); ++i)
      sigaction(signals[i], &action, &actions[i]);
    termios quiet = before;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
  }
  ~WithoutEcho() {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    for (size_t i = 0; i < std::size(signals); ++i)
      sigaction(signals[i], &actions[i], nullptr);
  }
  WithoutEcho(const WithoutEcho &) = delete;
  WithoutEcho &operator=(const WithoutEcho &) = delete;

private:
  static constexpr int signals[] = {SIGINT, SIGTERM, SIGQUIT, SIGHUP, SIGTSTP};
  struct sigaction actions[std::size(signals)];
  termios before;
};

} // namespace

Secret::~Secret() {
  com_secure_memset(bytes, 0, sizeof bytes);
}

void read_line(Secret &line, const std::string &what, int descriptor, const std::string &source) {
  std::optional<WithoutEcho> quiet;
  if (descriptor == STDIN_FILENO && isatty(STDIN_FILENO)) {
    std::fprintf(stderr, "%s: ", what.c_str());
    quiet.emplace();
  }
  bool is_empty = true;
  for (char byte;;) {
    const ssize_t got = read(descriptor, &byte, 1);
    if (interrupted)
      throw StreamError("interrupted");
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throw StreamError("cannot read " + source + ": " + std::strerror(errno));
    if (got == 0 && is_empty)
      throw StreamError(source + " ended before the " + what);
    is_empty = false;
    if (got == 0 || byte == '\n')
      break;
    if (!line.append(byte))
      throw StreamError("the " + what + " is too long");
  }
  line.drop_carriage_return();
  if (quiet)
    std::fputc('\n', stderr);
}

void read_line(Secret &line, const std::string &what) {
  read_line(line, what, STDIN_FILENO, "standard input");
}

} // namespace zrvtool
