#pragma once

// The command `top`.

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"

namespace loamshow {

/// Runs the command `top`: runs other commands, and writes `heading` and the largest losses to `fd`.
/// Exceptions of a command reach the caller, before anything is written.
void showTop(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd);

}  // namespace loamshow
