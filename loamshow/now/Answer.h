#pragma once

// Runs one show command.

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"

namespace loamshow {

/// Runs the command of the command line, `top` or one of the plug-in, on a state, and writes `heading`, then
/// the output, to `fd`. Throws InputError before anything is written; exceptions of the command reach the
/// caller.
void answer(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd);

}  // namespace loamshow
