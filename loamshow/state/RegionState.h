#pragma once

#include <string>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// Whether an open file begins as a counter region does.
bool isRegion(int fd);

/// The switch in a counter region, whose counters are read when they are asked for. `name` stands for the
/// region in errors, the descriptor stays the caller's. Raises InputError, and RegionException for a region
/// that is damaged. Reading its counters raises RegionException, too, and RecordException.
SwitchState regionState(const std::string& name, int fd);

/// Makes a region that another process truncates an exception instead of the end of this process. To be
/// called once, before regions are read.
void surviveTruncatedRegions();

}  // namespace loamshow
