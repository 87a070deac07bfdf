#pragma once

// Differences of two states of a switch.

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The switch `now` with the counts since `then`, an earlier state. A quad with any count below that of
/// `then` was cleared in between and counts from 0, and so does a record that `then` does not have.
/// Everything else is that of `now`. Differences are computed when they are read, so the counts of both
/// states must not change.
SwitchState since(SwitchState now, const SwitchState& then);

}  // namespace loamshow
