#pragma once

#include "loamshow/state/Switch.h"

namespace loamshow {

/// The switch with its counts as they are now. Those of a source that goes on counting are copied, so that
/// later counts can be compared with them; it raises what reading a record raises.
SwitchState frozen(SwitchState state);

}  // namespace loamshow
