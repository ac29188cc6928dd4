// The main program of all benchmarks: runs the comparisons and prints their table.
//
// usage: <subsystem>_bench [--all] [--smoke | --instructions=DUMP [--filter=REGEX] |
// --benchmark_...]
//
// --all shows every member, not the worst of each row alone. --smoke makes one pass of everything
// and measures nothing. --instructions counts instructions instead of time; it needs valgrind
// --tool=callgrind --callgrind-out-file=DUMP around the program.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <utility>

#include <benchmark/benchmark.h>

#include "comparison.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(name)
#define RUNNING_ON_VALGRIND 0
#endif

namespace zrvbench {
namespace {

std::vector<Comparison> comparisons;

// What was measured for one pass of ours or of a peer, per call: the times of all repetitions in
// nanoseconds, or one count of instructions.
std::map<std::string, std::vector<double>> samples;

std::string name_of(const Comparison &comparison) {
  return comparison.member + "/" + comparison.input;
}

// The first quartile: on a machine shared with others a good part of the repetitions is slowed
// down, none is sped up, and a median then tells how often that happened to either side.
double typical(const std::string &name) {
  const auto found = samples.find(name);
  if (found == samples.end())
    return 0;
  std::vector<double> values = found->second;
  const auto quartile = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 4);
  std::nth_element(values.begin(), quartile, values.end());
  return *quartile;
}

// Calls `visit` with the name, the pass and the number of calls in it: ours and each peer's.
template <class Visit>
void for_each_pass(Visit visit) {
  for (const Comparison &comparison : comparisons) {
    visit(name_of(comparison), comparison.ours, comparison.count);
    for (const Peer &peer : comparison.peers)
      visit(name_of(comparison) + "/" + peer.name, peer.pass, comparison.count);
  }
}

// Keeps the samples; the table comes at the end, and the tool's own file has the rest.
class Collector : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context &) override { return true; }
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs)
      if (run.run_type == Run::RT_Iteration && !run.error_occurred)
        samples[run.run_name.function_name].push_back(
            run.cpu_accumulated_time * 1e9 /
            (static_cast<double>(run.iterations) * run.counters.at("calls")));
  }
};

int run_timed(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 2;
  for_each_pass([](const std::string &name, const Pass &pass, size_t count) {
    benchmark::RegisterBenchmark(name.c_str(), [pass, count](benchmark::State &state) {
      for ([[maybe_unused]] auto iteration : state)
        pass();
      state.counters["calls"] = static_cast<double>(count);
    });
  });
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  benchmark::Shutdown();
  return 0;
}

// Each dump of the counter is a file of its own, numbered from 1.
int run_counted(const std::string &dump, const std::regex &wanted) {
  if (!RUNNING_ON_VALGRIND) {
    std::fputs("--instructions needs valgrind --tool=callgrind\n", stderr);
    return 2;
  }
  int number = 0;
  for_each_pass([&](const std::string &name, const Pass &pass, size_t count) {
    if (!std::regex_search(name, wanted))
      return;
    CALLGRIND_ZERO_STATS;
    pass();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    std::ifstream file(dump + "." + std::to_string(++number));
    for (std::string line; std::getline(file, line);)
      if (line.rfind("totals: ", 0) == 0)
        samples[name].push_back(std::stod(line.substr(8)) / static_cast<double>(count));
  });
  return 0;
}

struct Row {
  const Comparison *comparison;
  const Peer *peer; // null without one
  double ours, theirs;
  int members;

  double ratio() const { return ours / theirs; }
};

// One row for each operation, input and peer, with the member that does worst, and one for each member
// that has no peer.
std::vector<Row> build_rows(bool all) {
  std::vector<Row> rows;
  for (const Comparison &comparison : comparisons) {
    if (const double ours = typical(name_of(comparison)); comparison.peers.empty() && ours > 0)
      rows.push_back({&comparison, nullptr, ours, 0, 1});
    for (const Peer &peer : comparison.peers) {
      const Row row{&comparison, &peer, typical(name_of(comparison)),
                    typical(name_of(comparison) + "/" + peer.name), 1};
      if (row.ours <= 0 || row.theirs <= 0)
        continue;
      const auto same = std::find_if(rows.begin(), rows.end(), [&](const Row &other) {
        return !all && other.peer != nullptr &&
               other.comparison->operation == comparison.operation &&
               other.comparison->input == comparison.input && other.peer->name == peer.name;
      });
      if (same == rows.end()) {
        rows.push_back(row);
        continue;
      }
      const int members = same->members + 1;
      if (row.ratio() > same->ratio())
        *same = row;
      same->members = members;
    }
  }
  return rows;
}

void print_table(bool all, const char *unit) {
  std::printf("| operation | input | ours, %s | peer | peer's, %s | ratio | goal | met |\n", unit,
              unit);
  std::printf("|---|---|--:|---|--:|--:|--:|---|\n");
  for (const Row &row : build_rows(all)) {
    std::string operation = all ? row.comparison->member : row.comparison->operation;
    if (row.members > 1)
      operation +=
          ", worst of " + std::to_string(row.members) + ": `" + row.comparison->member + "`";
    else
      operation = std::string("`").append(row.comparison->member).append("`");
    std::printf("| %s | %s | %.2f ", operation.c_str(), row.comparison->input.c_str(), row.ours);
    if (row.peer == nullptr) {
      std::printf("| | | | | |\n");
      continue;
    }
    std::printf("| %s | %.2f | %.2f ", row.peer->name.c_str(), row.theirs, row.ratio());
    if (row.peer->goal > 0)
      std::printf("| %.2f | %s |\n", row.peer->goal, row.ratio() <= row.peer->goal ? "yes" : "NO");
    else
      std::printf("| | |\n");
  }
}

} // namespace

void compare(Comparison comparison) {
  comparisons.push_back(std::move(comparison));
}

} // namespace zrvbench

int main(int argc, char **argv) {
  using namespace zrvbench;
  // Takes our own arguments out and leaves the tool's.
  const auto take = [&](const char *option) -> const char * {
    const size_t length = std::strlen(option);
    for (int i = 1; i < argc; ++i)
      if (std::strncmp(argv[i], option, length) == 0) {
        const char *value = argv[i] + length;
        std::copy(argv + i + 1, argv + argc, argv + i);
        --argc;
        return value;
      }
    return nullptr;
  };
  const bool all = take("--all") != nullptr;
  const bool smoke = take("--smoke") != nullptr;
  const char *const dump = take("--instructions=");
  const char *const filter = take("--filter=");

  register_comparisons();
  if (smoke) {
    for_each_pass([](const std::string &, const Pass &pass, size_t) { pass(); });
    return 0;
  }
  const int status = dump != nullptr
                         ? run_counted(dump, std::regex(filter != nullptr ? filter : "."))
                         : run_timed(argc, argv);
  if (status == 0)
    print_table(all, dump != nullptr ? "instructions" : "ns");
  return status;
}
