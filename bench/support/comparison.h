// What every benchmark program is made of: comparisons of one of our operations with its peers, on
// the same inputs in the same run. The programs register comparisons; bench_main.cpp runs them and
// prints one table of ratios.
#ifndef ZRVBENCH_COMPARISON_H
#define ZRVBENCH_COMPARISON_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zrvbench {

// One pass over all inputs of a comparison. What it computes must escape
// (benchmark::DoNotOptimize), and it calls what it measures across a library boundary.
using Pass = std::function<void()>;

struct Peer {
  std::string name;
  double goal; // the most that our time may be, as a multiple of the peer's; 0 for none
  Pass pass;
};

struct Comparison {
  std::string
      operation;      // rows of the table with one operation, input and peer show the worst member
  std::string member; // the function
  std::string input;
  std::size_t count; // calls in one pass
  Pass ours;
  std::vector<Peer> peers;
};

// Adds a comparison; called before the run, from register_comparisons.
void compare(Comparison comparison);

// Each program defines it.
void register_comparisons();

} // namespace zrvbench

#endif
