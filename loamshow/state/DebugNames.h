#pragma once

// Names for the options of `debug`.

#include <string>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The counter blocks of the switch's FAPs, each once, in ascending order. Blocks are looked up by lower-case
/// name, so those with upper-case letters in their key, which no command finds, are omitted.
std::vector<std::string> debugBlocks(const SwitchState& state);

/// The snapshots of the switch's FAPs, each once, in ascending order.
std::vector<std::string> debugSnapshots(const SwitchState& state);

}  // namespace loamshow
