#pragma once

#include <string>
#include <vector>

#include "loamshow/cli/CommandTable.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// What the last word of a command line, which is being typed, can become.
struct Completion {
  Names kind = Names::none;        // of what is to be named there
  std::vector<std::string> words;  // from the tables: each with a tab and what it means, in a line
  std::string typed;               // of a name: what stands there of it
  std::string before;              // what stands before the name within the word
  CommandLine line;                // the words before
};

Completion completeCommandLine(int argc, const char* const* argv);

/// Adds the names of a switch that are of the completion's kind.
void completeName(Completion& completion, const SwitchState& state);

}  // namespace loamshow
