#pragma once

// Writes state files.

#include "loamshow/json/JsonWriter.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// Writes a state file of the switch: every member that is not at its default, in the order of the file, keys
/// ascending. Reading it gives the same switch.
void capture(const SwitchState& state, JsonWriter& out);
/// The same without counters and snapshots: the part that does not change while a switch counts.
void captureDescription(const SwitchState& state, JsonWriter& out);

}  // namespace loamshow
