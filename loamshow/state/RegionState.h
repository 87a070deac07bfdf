#pragma once

// Reads a switch from a counter region.

#include <string>

#include "loamshow/state/Switch.h"
#include "platform/counteragent/RegionWriter.h"

namespace loamshow {

/// Whether an open file begins like a counter region.
bool isRegion(int fd);

/// The switch in a counter region, whose counters are read on demand. `name` is the region's name in errors;
/// the caller keeps ownership of the descriptor. Throws InputError, and RegionException for a damaged region.
/// Reading the counters may throw RegionException and RecordException.
SwitchState regionState(const std::string& name, int fd);

/// Publishes the switch in a region, which replaces the file `path`. Throws the exceptions of
/// CounterRegionWriter's constructor.
LoamCounters::CounterRegionWriter publish(const SwitchState& state, const std::string& path);

/// Installs a SIGBUS handler, so that a region truncated by another process causes an exception instead of
/// ending this process. Call it once, before regions are read.
void surviveTruncatedRegions();

}  // namespace loamshow
