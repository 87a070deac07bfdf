#pragma once

#include <string_view>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/state/StateFile.h"
#include "platform/Mote.h"

namespace loamshow {

/// Calls the show operation of the command line's command on the plug-in that is loaded: the answer goes to
/// `fd`, after `heading`. Raises InputError before anything is written, and passes on whatever the operation
/// raises.
void runShowCommand(const CommandLine& line, const SwitchState& state, U32 fd, std::string_view heading = {});

}  // namespace loamshow
