#pragma once

// The command `check`: findings in a state.

#include <string>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// A well-formed but contradictory part of a switch's state.
struct Finding {
  std::string member;  // a JSON pointer into the state file
  std::string problem;

  bool operator==(const Finding&) const = default;
};

/// All findings in the state of a switch, in the order of the state file's members: ascending within a
/// collection (numbers as numbers, names by bytes), by index within a list. Takes linear time.
std::vector<Finding> check(const SwitchState& state);

}  // namespace loamshow
