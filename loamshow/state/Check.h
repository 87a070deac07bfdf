#pragma once

#include <string>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// Something in a switch's state that is well-formed, but cannot mean what it says.
struct Finding {
  std::string member;  // a JSON pointer into the state file
  std::string problem;

  bool operator==(const Finding&) const = default;
};

/// Everything that is wrong with a switch, in the order of the state file's members: ascending within a
/// collection (numbers as numbers, names by bytes), by place within a list. Linear in the size of the state.
std::vector<Finding> check(const SwitchState& state);

}  // namespace loamshow
