// Options and words whose values every subcommand reads alike.
#ifndef ZRVTOOL_ARGUMENTS_H
#define ZRVTOOL_ARGUMENTS_H

#include <string>
#include <string_view>
#include <vector>

#include "zrvcomn/cstypes.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zrvtool {

using Words = std::vector<std::string>;

// The word of the list that `word` is, whatever its case. Throws UsageError, which tells what there is:
// `what` is what the list is of, as "action".
const std::string &choose(const std::string &what, const std::string &word, const Words &words);

// A whole number in decimal, whatever its first digit. Throws UsageError, which begins with `what` and
// tells the range.
CS_INT decimal(const std::string &what, std::string_view text, CS_INT low, CS_INT high);

// An option, or a word in its place, with one of some words as its value. `kind` is what the help
// calls it, in capitals.
CLI::Option *add_choice(CLI::App &app, const std::string &name, std::string &value,
                        const std::string &kind, Words words, const std::string &description);

// An option with a decimal number as its value.
CLI::Option *add_number(CLI::App &app, const std::string &name, CS_INT &value, CS_INT low,
                        CS_INT high, const std::string &kind, const std::string &description);

// The word of an option that stands in its place may stand behind "--" instead. Throws UsageError when
// that makes more than one; `what` is what one of them is, as "set".
void take_word(const CLI::Option *option, std::string &value, const Words &behind_dashes,
               const std::string &what);

// Words that complete the value of an option; what was added as a choice has its own.
void offer(const CLI::Option *option, Words words);
const Words &offered(const CLI::Option *option);

std::string lower_case(std::string_view word);

} // namespace zrvtool

#endif
