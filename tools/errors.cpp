// Guesses at misspelled words.
#include "errors.h"

#include <algorithm>
#include <numeric>

namespace zrvtool {

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
