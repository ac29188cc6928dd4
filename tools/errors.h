// How a run of the command ends.
#ifndef ZRVTOOL_ERRORS_H
#define ZRVTOOL_ERRORS_H

#include <stdexcept>
#include <string>
#include <vector>

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

// The word among `candidates` that `word` is most likely a misspelling of, or an empty text.
std::string closest(const std::string &word, const std::vector<std::string> &candidates);

// "; did you mean 'x'?", or an empty text.
std::string suggest(const std::string &word, const std::vector<std::string> &candidates);

} // namespace zrvtool

#endif
