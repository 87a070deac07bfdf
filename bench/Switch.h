#pragma once

#include <functional>
#include <string>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "platform/Mote.h"

namespace loambench {

/// A busy switch: four FAP cores on three FAPs, one of them in EGQ queue mode, and that many Ethernet
/// interfaces.
struct BusySwitch {
  explicit BusySwitch(std::size_t interfaces);

  LoamCounters::CountersPrinter::Ptr printer;
  LoamCounters::IntfList::Ptr intfs;
};

/// The same as a state file's text.
std::string busyStateFile(std::size_t interfaces);

/// A call that writes its whole answer to a descriptor.
using Answer = std::function<void(int fd)>;

/// The command's answer on a switch, in format 1 or 2.
Answer command(const BusySwitch& on, const std::string& name, U32 format);

/// An answer as its writes were.
using Writes = std::vector<std::string>;
Writes writesOf(const Answer& answer);
void writeAll(int fd, const Writes& writes);

}  // namespace loambench
