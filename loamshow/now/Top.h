#pragma once

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"

namespace loamshow {

/// Runs the command `top`: runs other commands, and writes `heading` and what lost most to `fd`. Passes on
/// what a command raises, before anything is written.
void showTop(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd);

}  // namespace loamshow
