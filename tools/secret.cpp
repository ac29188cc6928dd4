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
#include "output.h"
#include "visible.h"
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

// Wipes a text with all the room that it has.
class Wiping {
public:
  explicit Wiping(std::string &wiped) : text(wiped) {}
  ~Wiping() {
    text.resize(text.capacity());
    com_secure_memset(text.data(), 0, text.size());
    text.clear();
  }
  Wiping(const Wiping &) = delete;
  Wiping &operator=(const Wiping &) = delete;

private:
  std::string &text;
};

} // namespace

Secret::~Secret() {
  com_secure_memset(bytes, 0, sizeof bytes);
}

SecretBuffer::~SecretBuffer() {
  if (!bytes.empty())
    com_secure_memset(bytes.data(), 0, bytes.size());
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
    if (got == 0)
      break;
    if (byte == '\n') {
      line.drop_carriage_return();
      break;
    }
    if (!line.append(byte))
      throw StreamError("the " + what + " is too long");
  }
  if (quiet)
    std::fputc('\n', stderr);
}

void read_line(Secret &line, const std::string &what) {
  read_line(line, what, STDIN_FILENO, "standard input");
}

void write_secret(std::string_view secret, bool is_line) {
  Writer out(STDOUT_FILENO);
  out.text.reserve(4 * secret.size() + 1); // growing would leave a copy behind
  const Wiping wiping(out.text);
  if (out.is_terminal())
    append_visible(out.text, secret);
  else
    out.text += secret;
  if (out.is_terminal() || is_line)
    out.text += '\n';
  out.flush();
}

} // namespace zrvtool
