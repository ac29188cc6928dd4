// The register of subcommands, and guesses at misspelled words.
#include "subcommand.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace zrvtool {

Subcommand::Subcommand(const char *the_name, const char *the_description, Add the_add)
    : name(the_name), description(the_description), add(the_add), next(first) {
  first = this;
}

std::vector<const Subcommand *> Subcommand::all() {
  std::vector<const Subcommand *> result;
  for (const Subcommand *command = first; command != nullptr; command = command->next)
    result.push_back(command);
  std::sort(result.begin(), result.end(), [](const Subcommand *a, const Subcommand *b) {
    return std::string_view(a->name) < b->name;
  });
  return result;
}

namespace {

// The number of letters to insert, remove or change.
size_t edit_distance(const std::string &from, const std::string &to) {
  std::vector<size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < from.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < to.size(); ++j) {
      const size_t changed = diagonal + (from[i] != to[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

} // namespace

std::string closest(const std::string &word, const std::vector<std::string> &candidates) {
  constexpr size_t longest_word = 64;
  if (word.size() > longest_word)
    return {};
  std::string best;
  size_t best_distance = word.size() / 3 + 2;
  for (const std::string &candidate : candidates) {
    const size_t distance = edit_distance(word, candidate);
    if (distance < best_distance) {
      best_distance = distance;
      best = candidate;
    }
  }
  return best;
}

std::string suggest(const std::string &word, const std::vector<std::string> &candidates) {
  const std::string guess = closest(word, candidates);
  return guess.empty() ? std::string() : "; did you mean '" + guess + "'?";
}

} // namespace zrvtool
