#pragma once

// Realistic counts.

#include "platform/CounterAgent.h"

namespace loambench {

/// A count as on a busy switch, determined by n: a third of the counts are 0, a few are small, most have 10
/// to 15 digits.
U64 busyCount(U64 n);
/// Four such counts.
LoamCounters::CounterQuad busyQuad(U64 n);

}  // namespace loambench
