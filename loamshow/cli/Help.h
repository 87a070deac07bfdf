#pragma once

#include <string>

#include "loamshow/cli/CommandTable.h"

namespace loamshow {

/// The commands and global options.
std::string programHelp();

/// What a command does, the options that only some commands take, and an example.
std::string commandHelp(const Command& command);

}  // namespace loamshow
