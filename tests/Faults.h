#pragma once

#include <functional>
#include <string>

#include "platform/Mote.h"

namespace loamtest {

/// Runs a command many times, each time with another of its writes going wrong in another way, and checks
/// what was written, what was raised and what was said. A command that raises by itself writes what it has
/// while it does so; `raised` is then the text.
void expectEveryFaultHandled(const std::string& name, const std::function<void(U32 fd)>& command,
                             const std::string& raised = "");

}  // namespace loamtest
