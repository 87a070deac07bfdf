#pragma once

// Runs the plug-in's show commands.

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/state/StateFile.h"
#include "platform/Mote.h"

namespace loamshow {

/// Calls the show operation of the command line's command in the loaded plug-in, which writes to `fd`, after
/// `heading`. Throws InputError before anything is written; exceptions of the operation reach the caller.
void runShowCommand(const CommandLine& line, const SwitchState& state, U32 fd, std::string_view heading = {});

}  // namespace loamshow
