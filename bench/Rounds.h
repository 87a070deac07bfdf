#pragma once

// Measuring several ways to do the same work against each other. All times are CPU times, which other work on
// the machine disturbs less than the time of day.

#include <functional>
#include <string>
#include <vector>

namespace loambench {

/// Does its work once; returns the CPU time that it took, in seconds.
using Way = std::function<double()>;

/// A way that works in this thread.
Way here(std::function<void()> work);

/// The times of one way in each round.
using Times = std::vector<double>;

/// Runs every way once a round, in an order that rotates from round to round, because the machine's speed
/// changes for seconds at a time. Returns the times of each way.
std::vector<Times> inRounds(int rounds, const std::vector<Way>& ways);

/// The time that a tenth of the rounds do not exceed: of rounds that nothing disturbed, and steadier than the
/// least one.
double undisturbed(Times times);
/// How much longer one way takes than another.
double ratio(const Times& times, const Times& to);

/// Ends the program when two ways make different bytes.
void requireSame(const std::string& what, const std::string& expected, const std::string& bytes);

}  // namespace loambench
