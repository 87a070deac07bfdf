#pragma once

#include <string>
#include <vector>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// What a user should know of an answer that leaves out what the command line names: an interface for which
/// the command never has rows, a counter block or snapshot that the switch does not have. Raises InputError
/// for interface arguments that name no interface.
std::vector<std::string> warnings(const CommandLine& line, const SwitchState& state);

}  // namespace loamshow
