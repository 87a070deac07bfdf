#include "bench/Rounds.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace loambench {

namespace {

using Clock = std::chrono::steady_clock;

struct Line {
  std::string against;
  std::string unit;
  std::string target;
};

/// The lines of the table, by benchmark and figure.
std::map<std::string, std::map<std::string, Line>>& lines() {
  static std::map<std::string, std::map<std::string, Line>> lines;
  return lines;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void compare(benchmark::State& state, const std::string& what, const std::vector<Competitor>& competitors) {
  std::vector<std::vector<double>> ratios(competitors.size());
  for (const Competitor& competitor : competitors) competitor.run();  // warms up
  std::size_t round = 0;
  for (auto _ : state) {
    std::vector<double> times(competitors.size());
    for (std::size_t i = 0; i < competitors.size(); ++i) {
      const std::size_t turn = (round + i) % competitors.size();
      const Clock::time_point begin = Clock::now();
      competitors[turn].run();
      times[turn] = std::chrono::duration<double>(Clock::now() - begin).count();
    }
    for (std::size_t i = 0; i < times.size(); ++i) ratios[i].push_back(times[i] / times[0]);
    state.SetIterationTime(times[0]);
    ++round;
  }
  for (std::size_t i = 1; i < competitors.size(); ++i) {
    const std::string figure = std::to_string(i);
    lines()[what][figure] = {competitors[i].name + " / " + competitors[0].name, "x", competitors[i].target};
    state.counters[figure] = median(ratios[i]);
  }
}

/// One line per figure.
class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override {
    std::printf("%-48s %-34s %12s   %s\n", "what", "ratio", "figure", "target");
    return true;
  }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const std::string what = run.run_name.function_name;
      for (const auto& [figure, value] : run.counters) {
        const Line& line = lines()[what][figure];
        std::printf("%-48s %-34s %9.2f %-2s   %s\n", what.c_str(), line.against.c_str(), value.value,
                    line.unit.c_str(), line.target.c_str());
      }
    }
    std::fflush(stdout);
  }
};

}  // namespace

void addComparison(const std::string& what, int rounds, std::function<std::vector<Competitor>()> prepare) {
  benchmark::RegisterBenchmark(
      what.c_str(),
      [what, prepare = std::move(prepare)](benchmark::State& state) { compare(state, what, prepare()); })
      ->Iterations(rounds)
      ->UseManualTime();
}

void addFigure(const std::string& what, const std::string& unit, const std::string& target,
               std::function<double()> measure) {
  lines()[what][unit] = {"", unit, target};
  benchmark::RegisterBenchmark(what.c_str(), [unit, measure = std::move(measure)](benchmark::State& state) {
    for (auto _ : state) state.counters[unit] = measure();
  })->Iterations(1);
}

int runAll(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

void requireSame(const std::string& what, const std::string& ours, const std::string& theirs) {
  if (ours == theirs) return;
  const auto at = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end()).first - ours.begin();
  std::fprintf(stderr, "%s: the bytes differ at %td\n", what.c_str(), at);
  std::exit(1);  // NOLINT(concurrency-mt-unsafe): one thread
}

}  // namespace loambench
