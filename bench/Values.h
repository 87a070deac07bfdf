#pragma once

#include "platform/CounterAgent.h"

namespace loambench {

/// A count as on a busy switch: a third are 0, a few are small, most have 10 to 15 digits. The same for the
/// same n.
U64 busyCount(U64 n);
/// Four such counts.
LoamCounters::CounterQuad busyQuad(U64 n);

}  // namespace loambench
