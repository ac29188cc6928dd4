// Subcommands, which register themselves, and how a run of the command ends.
#ifndef ZRVTOOL_SUBCOMMAND_H
#define ZRVTOOL_SUBCOMMAND_H

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace zrvtool {

enum ExitCode {
  exit_success = 0, // every value converted
  exit_failure = 1, // some values failed, or input or output broke off
  exit_usage = 2,   // nothing was done: the command line asks for something that cannot be
};

// Wrong usage: `what` is one line.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Input or output that broke off in the middle: `what` is one line.
struct StreamError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// One subcommand. A file in commands/ holds a static one, and that is all it takes to add it:
// `add` declares options and returns what runs once they are parsed; it is given the words behind
// "--", which are values whatever they look like.
class Subcommand {
public:
  using Run = std::function<int(const std::vector<std::string> &)>;
  using Add = Run (*)(CLI::App &);

  Subcommand(const char *name, const char *description, Add add);

  const char *const name;
  const char *const description;
  const Add add;

  // All of them, by name.
  static std::vector<const Subcommand *> all();

private:
  const Subcommand *const next;
  static inline constinit const Subcommand *first = nullptr;
};

// The word among `candidates` that `word` is most likely a misspelling of, or an empty text.
std::string closest(const std::string &word, const std::vector<std::string> &candidates);

// "; did you mean 'x'?", or an empty text.
std::string suggest(const std::string &word, const std::vector<std::string> &candidates);

} // namespace zrvtool

#endif
