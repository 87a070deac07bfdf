#pragma once

// Warnings about command lines that name something without rows.

#include <string>
#include <vector>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// The warnings about a command line: an interface for which the command never has rows, a counter block or
/// snapshot that the switch does not have; and a silent writer of a region. Throws InputError for unknown
/// interfaces.
std::vector<std::string> warnings(const CommandLine& line, const SwitchState& state);

}  // namespace loamshow
