#pragma once

#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/History.h"
#include "loamshow/state/Source.h"

namespace loamshow {

/// Answers every `line.every` seconds, `line.count` times or until an interrupt, from what the source holds
/// then. A turn that comes due during an answer follows it at once, those before it are left out. Each answer
/// counts from the one before, the first one from `history`. When the source cannot be read, that is said on
/// standard error and the turn left out, unless it is the first. Text on a terminal goes to its alternate
/// screen. An interrupt between two answers ends the program; after one in an answer
/// tabula::operationInterrupted() tells.
void repeat(const CommandLine& line, const Source& source, History history, U32 fd);

}  // namespace loamshow
