#pragma once

namespace loambench {

/// Rows rendered in memory, compared with other libraries that render the same.
void addRows();
/// Complete commands, compared with the time of their writes; growth, memory, start.
void addCommands();
/// Loading a state file, and a process that loads one, compared with a fast parser on the same text.
void addLoading();
/// A counter region, compared with a state file and with memory.
void addRegions();

}  // namespace loambench
