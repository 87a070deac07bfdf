#pragma once

// Reads state files.

#include <string>
#include <string_view>

#include "loamshow/json/JsonText.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// Loads a state file; "-" means standard input. Throws InputError, which names the file and the member, for
/// an invalid file.
SwitchState loadStateFile(const std::string& path);
/// The same for a text; `name` is its name in messages.
SwitchState parseState(const std::string& name, std::string_view text);
SwitchState parseState(const std::string& name, JsonText text);

/// Sets the process-wide properties of the switch: its clock and its fabric multicast range.
void mountProcessWide(const SwitchState& state);

}  // namespace loamshow
