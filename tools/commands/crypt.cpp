// zrvcomn crypt: the hexadecimal form of the password cipher. Nothing secret comes from the
// arguments, which any process can read.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <termios.h>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "output.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/netenc.h"

namespace {

using namespace zrvtool;

// A text that is wiped when it goes, and never moves while it grows.
class Secret {
public:
  Secret() = default;
  ~Secret() { com_secure_memset(bytes, 0, sizeof bytes); }
  Secret(const Secret &) = delete;
  Secret &operator=(const Secret &) = delete;

  bool append(char byte) {
    if (used == static_cast<int>(sizeof bytes))
      return false;
    bytes[used++] = byte;
    return true;
  }
  void drop_carriage_return() {
    if (used > 0 && bytes[used - 1] == '\r')
      --used;
  }
  char *data() { return bytes; }
  int size() const { return used; }
  void resize(int size) { used = size; }

private:
  char bytes[1024];
  int used = 0;
};

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

// Reads a line byte by byte, so that nothing secret stays behind in a buffer.
void read_line(Secret &line, const std::string &what) {
  std::optional<WithoutEcho> quiet;
  if (isatty(STDIN_FILENO)) {
    std::fprintf(stderr, "%s: ", what.c_str());
    quiet.emplace();
  }
  bool is_empty = true;
  for (char byte;;) {
    const ssize_t got = read(STDIN_FILENO, &byte, 1);
    if (interrupted)
      throw StreamError("interrupted");
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throw StreamError(std::string("cannot read standard input: ") + std::strerror(errno));
    if (got == 0 && is_empty)
      throw StreamError("standard input ended before the " + what);
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

// "0x" and two digits for each byte is a salt of any bytes; else the salt is what stands there.
void read_salt(Secret &salt) {
  Secret line;
  read_line(line, "salt");
  const std::string_view text(line.data(), static_cast<size_t>(line.size()));
  if (text.size() != 2 + 2 * COM_ENC_SALTLEN || text.substr(0, 2) != "0x" ||
      text.find_first_not_of("0123456789abcdefABCDEF", 2) != std::string_view::npos) {
    for (const char byte : text)
      salt.append(byte);
  } else {
    for (size_t at = 2; at < text.size(); at += 2) {
      unsigned byte = 0;
      for (const char digit : text.substr(at, 2))
        byte =
            byte * 16 + static_cast<unsigned>(digit <= '9' ? digit - '0' : (digit | 32) - 'a' + 10);
      salt.append(static_cast<char>(byte));
    }
  }
  if (salt.size() != COM_ENC_SALTLEN)
    throw StreamError("a salt has 8 bytes: 8 characters, or 0x and 16 hexadecimal digits");
}

int fail(const std::string &what, CS_RETCODE status) {
  std::fprintf(stderr, "zrvcomn crypt: %s: %s\n", what.c_str(), status_name(status).c_str());
  return exit_failure;
}

int encode() {
  Secret salt, text;
  read_salt(salt);
  read_line(text, "text");
  char hex[COM_ENC_HEXLEN];
  int length = 0;
  const CS_RETCODE status =
      com_initialize_hex_strings(salt.data(), salt.size(), text.data(), text.size(), hex, &length);
  if (status != CS_SUCCEED)
    return fail("a text has 1 to 30 bytes, not " + std::to_string(text.size()), status);
  Writer out(STDOUT_FILENO);
  out.text.assign(hex, static_cast<size_t>(length));
  out.text += '\n';
  out.flush();
  return exit_success;
}

int decode() {
  Secret salt, hex, text;
  read_salt(salt);
  read_line(hex, "hexadecimal form");
  int length = 0;
  const CS_RETCODE status = com_uninitialize_hex_strings(salt.data(), salt.size(), hex.data(),
                                                         hex.size(), text.data(), &length);
  if (status != CS_SUCCEED)
    return fail("this is not 0x01 and 66 hexadecimal digits of a block", status);
  text.resize(length);
  const std::string_view bytes(text.data(), static_cast<size_t>(text.size()));
  Writer out(STDOUT_FILENO);
  out.text.reserve(4 * COM_ENC_MAXTEXT + 1); // growing would leave a copy behind
  if (out.is_terminal())
    append_visible(out.text, bytes);
  else
    out.text += bytes;
  out.text += '\n';
  out.flush();
  out.text.resize(out.text.capacity());
  com_secure_memset(out.text.data(), 0, out.text.size());
  out.text.clear();
  return exit_success;
}

struct Options {
  std::string form, action;
  std::vector<std::string> rest;
};

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  app.add_option("form", options->form, "hex: the hexadecimal form of an enciphered text")
      ->required()
      ->type_name("FORM");
  app.add_option("action", options->action, "encode or decode")->required()->type_name("ACTION");
  app.add_option("rest", options->rest)->group(""); // taken, so that it is not repeated
  app.footer(
      "The first line of standard input is the salt, 8 characters or 0x and 16 hexadecimal\n"
      "digits; the second is the text, or its hexadecimal form. On a terminal the command\n"
      "asks for both and does not show them.\n"
      "\nThis cipher serves peers that are deployed; it is not protection by today's standards.\n"
      "\nExamples:\n"
      "  zrvcomn crypt hex encode\n"
      "  zrvcomn crypt hex decode <file-with-salt-and-form");
  return [options](const std::vector<std::string> &more) {
    options->form = lower_case(options->form);
    options->action = lower_case(options->action);
    if (options->form != "hex")
      throw UsageError("there is no such form, only hex");
    if (options->action != "encode" && options->action != "decode")
      throw UsageError("there is no such action, only encode and decode");
    if (!options->rest.empty() || !more.empty())
      throw UsageError("salt and text come from standard input, never from the arguments");
    return options->action == "encode" ? encode() : decode();
  };
}

const Subcommand crypt("crypt", "Encode and decode the hexadecimal form of passwords", add);

} // namespace
