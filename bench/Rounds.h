#pragma once

// Benchmarks in rounds, and the table of their figures.

#include <functional>
#include <string>
#include <vector>

namespace loambench {

/// One of several ways to do the same work.
struct Competitor {
  std::string name;
  std::function<void()> run;
  std::string target;  // target for its ratio to the first one, as the table shows it
};

/// Adds a benchmark of competitors, which `prepare` creates when the benchmark begins. Every competitor runs
/// once per round, in an order that rotates from round to round, because the machine's speed may change for
/// seconds. The figures are ratios to the time of the first competitor in the same round, as medians over the
/// rounds.
void addComparison(const std::string& what, int rounds, std::function<std::vector<Competitor>()> prepare);

/// Adds a benchmark whose figure is the result of `measure`.
void addFigure(const std::string& what, const std::string& unit, const std::string& target,
               std::function<double()> measure);

/// Runs the benchmarks that the arguments select and prints one table of their figures.
int runAll(int argc, char** argv);

/// Ends the program if the outputs of two competitors differ.
void requireSame(const std::string& what, const std::string& ours, const std::string& theirs);

}  // namespace loambench
