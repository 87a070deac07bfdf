#pragma once

// Copies of live counters.

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The switch with its current counts. Live counts are copied, so that later ones can be compared with them.
/// Throws the exceptions of reading a record.
SwitchState frozen(SwitchState state);

}  // namespace loamshow
