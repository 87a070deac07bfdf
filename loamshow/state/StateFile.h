#pragma once

#include <string>
#include <string_view>

#include "loamshow/json/JsonText.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// Loads a state file; "-" is standard input. Raises InputError, which names the file and the member, for
/// anything that is not as it should be.
SwitchState loadStateFile(const std::string& path);
/// The same for a text; `name` stands for the file.
SwitchState parseState(const std::string& name, std::string_view text);
SwitchState parseState(const std::string& name, JsonText text);

/// Makes the state's switch the one that this process runs on: its clock and its fabric multicast range.
void mountProcessWide(const SwitchState& state);

}  // namespace loamshow
