// Words and numbers of the command line.
#include "arguments.h"

#include <algorithm>
#include <charconv>
#include <map>

#include <CLI/CLI.hpp>

#include "errors.h"
#include "visible.h"

namespace zrvtool {

namespace {

std::map<const CLI::Option *, Words> &completions() {
  static std::map<const CLI::Option *, Words> all;
  return all;
}

// "list, show or matrix"
std::string enumerate(const Words &words) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i)
    text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
  return text;
}

} // namespace

std::string lower_case(std::string_view word) {
  std::string lower(word);
  for (char &c : lower)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

const std::string &choose(const std::string &what, const std::string &word, const Words &words) {
  const auto found = std::find(words.begin(), words.end(), lower_case(word));
  if (found != words.end())
    return *found;
  const std::string guess = suggest(word, words);
  throw UsageError("there is no " + what + " " + in_quotes(word) +
                   (guess.empty() ? ", only " + enumerate(words) : guess));
}

CS_INT decimal(const std::string &what, std::string_view text, CS_INT low, CS_INT high) {
  CS_INT number = 0;
  const char *const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end || number < low || number > high)
    throw UsageError(what + " is " + in_quotes(text) + ", not a whole number from " +
                     std::to_string(low) + " to " + std::to_string(high));
  return number;
}

CLI::Option *add_choice(CLI::App &app, const std::string &name, std::string &value,
                        const std::string &kind, Words words, const std::string &description) {
  CLI::Option *const option = app.add_option_function<std::string>(
      name,
      [&value, words, what = lower_case(kind)](const std::string &word) {
        value = choose(what, word, words);
      },
      description);
  offer(option, std::move(words));
  return option->type_name(kind);
}

CLI::Option *add_number(CLI::App &app, const std::string &name, CS_INT &value, CS_INT low,
                        CS_INT high, const std::string &kind, const std::string &description) {
  return app
      .add_option_function<std::string>(
          name,
          [&value, name, low, high](const std::string &text) {
            value = decimal(name, text, low, high);
          },
          description)
      ->type_name(kind);
}

void take_word(const CLI::Option *option, std::string &value, const Words &behind_dashes,
               const std::string &what) {
  if (option->count() + behind_dashes.size() > 1)
    throw UsageError("one " + what + " at a time");
  if (!behind_dashes.empty())
    value = behind_dashes.front();
}

void offer(const CLI::Option *option, Words words) {
  completions()[option] = std::move(words);
}

const Words &offered(const CLI::Option *option) {
  return completions()[option];
}

} // namespace zrvtool
