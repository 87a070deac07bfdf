#pragma once

namespace loambench {

/// Rows rendered in memory, against peers that render the same.
void addRows();
/// Whole commands, against the floor of their writes; growth, memory, start.
void addCommands();
/// Loading a state file, and a call that loads one, against a fast parser on the same text.
void addLoading();
/// A counter region against a state file and against memory.
void addRegions();

}  // namespace loambench
