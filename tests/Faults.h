#pragma once

// Fault injection into writes.

#include <functional>
#include <string>

#include "platform/Mote.h"

namespace loamtest {

/// A command with a known number of writes. If it throws, with the text `thrown`, the last write happens
/// during that. `whenSaid` is called when it writes the "exiting" line to standard output.
struct Command {
  std::string name;
  std::size_t writes;
  std::function<void(U32 fd)> run;
  std::string raised = {};
  std::function<void()> whenSaid = [] {};
};

/// Runs the command many times, each time with another fault in another write, and checks the output, the
/// exception and standard output.
void expectEveryFaultHandled(const Command& command);

}  // namespace loamtest
