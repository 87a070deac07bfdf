#pragma once

// Completes the command line for shells.

#include <string>
#include <vector>

#include "loamshow/cli/CommandTable.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// The completions of the last word of a command line.
struct Completion {
  Names kind = Names::none;        // kind of name expected there
  std::vector<std::string> words;  // candidates from the tables: each followed by a tab and its help
  std::string typed;               // the typed part of a name
  std::string before;              // the part of the word before the name
  CommandLine line;                // contents of the words before
};

Completion completeCommandLine(int argc, const char* const* argv);

/// Adds the names of the completion's kind that the switch has.
void completeName(Completion& completion, const SwitchState& state);

}  // namespace loamshow
