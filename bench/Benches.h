#pragma once

namespace loambench {

/// Rows rendered in memory, against peers that render the same.
void addRows();
/// Whole commands, against the floor of their writes; growth, memory, loading, start.
void addCommands();

}  // namespace loambench
