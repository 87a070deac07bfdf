#pragma once

// The rows of a command without the command: what its time is compared with.

#include <functional>
#include <string>

#include "bench/Switch.h"
#include "platform/tabula.h"

namespace loambench {

/// Prints the answer of a command by the plug-in's row functions, from counts that lie in the order of the
/// rows. What the command does beside it is to choose interfaces, find records, and write.
using PrintRows = std::function<void(tabula::Printer&)>;

/// The rows that the command shows of a switch. Names that each row would look up are made here, once.
PrintRows rowsOf(const BusySwitch& on, const std::string& command, U32 format);

}  // namespace loambench
