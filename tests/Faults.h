#pragma once

#include <functional>
#include <string>

#include "platform/Mote.h"

namespace loamtest {

/// A command that answers in so many writes. One that raises by itself, with the text `raised`, does its last
/// write while it does so. `whenSaid` is called when it says on standard output that it is exiting.
struct Command {
  std::string name;
  std::size_t writes;
  std::function<void(U32 fd)> run;
  std::string raised = {};
  std::function<void()> whenSaid = [] {};
};

/// Runs the command many times, each time with another of its writes going wrong in another way, and checks
/// what was written, what was raised and what was said.
void expectEveryFaultHandled(const Command& command);

}  // namespace loamtest
