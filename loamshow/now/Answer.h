#pragma once

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"

namespace loamshow {

/// Runs the command of the command line, `top` or one of the plug-in, on a state: `heading`, then the answer,
/// go to `fd`. Raises InputError before anything is written, and passes on what the command raises.
void answer(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd);

}  // namespace loamshow
