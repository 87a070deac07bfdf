#pragma once

// Repeated commands.

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"
#include "loamshow/state/Source.h"

namespace loamshow {

/// Runs the command every `line.every` seconds, `line.count` times or until an interrupt, on the current
/// state of the source. If turns come due while the command runs, the last of them follows at once and the
/// others are skipped. Each output has the counts since the previous one, the first those since `history`. If
/// the source cannot be read, reports that on standard error and skips the turn, unless it is the first. Text
/// on a terminal is shown on its alternate screen. An interrupt between two outputs ends the program; after
/// one during an output, tabula::operationInterrupted() is true.
void repeat(const CommandLine& line, const Source& source, History history, U32 fd);

}  // namespace loamshow
