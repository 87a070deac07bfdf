#pragma once

#include <string>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The counter blocks that the switch's FAPs have, each once, in ascending order. A block is asked for by its
/// name in any case, so those whose key is not in lower case, which no command finds, are left out.
std::vector<std::string> debugBlocks(const SwitchState& state);

/// The snapshots that the switch's FAPs have, each once, in ascending order.
std::vector<std::string> debugSnapshots(const SwitchState& state);

}  // namespace loamshow
