#pragma once

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The switch `now` with what was counted since `then`, an earlier state of it. A quad of which any count is
/// below that of `then` was cleared in between: it counts from 0, as does what `then` does not have. Whatever
/// is no count is that of `now`. Differences are worked out when they are read, so the counts of both must
/// keep still.
SwitchState since(SwitchState now, const SwitchState& then);

}  // namespace loamshow
