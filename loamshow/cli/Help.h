#pragma once

// Help texts, derived from the tables of commands and options.

#include <string>

#include "loamshow/cli/CommandTable.h"

namespace loamshow {

/// The commands and global options.
std::string programHelp();

/// The purpose of a command, its options except the global ones, and an example.
std::string commandHelp(const Command& command);

}  // namespace loamshow
