#pragma once

// The groups of benchmarks.

#include "bench/Table.h"

namespace loambench {

/// Rows rendered into memory, against other libraries that render the same.
void addRows(Measurements& all);
/// Complete commands above the floor of their writes, against their rows rendered into memory.
void addCommands(Measurements& all);
/// How time and memory grow with the number of interfaces.
void addSizes(Measurements& all);
/// State files: loading one, and processes that load one.
void addPrograms(Measurements& all);
/// A counter region against a state file and against memory.
void addRegions(Measurements& all);

}  // namespace loambench
