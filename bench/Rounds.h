#pragma once

#include <functional>
#include <string>
#include <vector>

namespace loambench {

/// One of several ways to do the same work.
struct Competitor {
  std::string name;
  std::function<void()> run;
  std::string target;  // of its ratio to the first one, as the table shows it
};

/// Adds a benchmark of competitors, which `prepare` makes when it is their turn. In each of its rounds every
/// competitor runs once, in an order that rotates from round to round, because the machine's speed changes
/// for seconds at a time. Its figures are the medians over the rounds of how much longer a competitor takes
/// than the first in the same round.
void addComparison(const std::string& what, int rounds, std::function<std::vector<Competitor>()> prepare);

/// Adds a benchmark whose figure is what `measure` answers.
void addFigure(const std::string& what, const std::string& unit, const std::string& target,
               std::function<double()> measure);

/// Runs the benchmarks that the arguments select and prints one table of their figures.
int runAll(int argc, char** argv);

/// Ends the program when two competitors' bytes differ.
void requireSame(const std::string& what, const std::string& ours, const std::string& theirs);

}  // namespace loambench
