#pragma once

// Large switches, and commands on them.

#include <functional>
#include <string>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "loamshow/json/JsonWriter.h"
#include "loamshow/state/Switch.h"
#include "platform/Mote.h"

namespace loambench {

/// A busy switch with that many Ethernet interfaces: four FAP cores on three FAPs, one of them in EGQ queue
/// mode, or up to eight cores on five FAPs.
struct BusySwitch {
  explicit BusySwitch(std::size_t interfaces, std::size_t coreCount = 4);

  loamshow::SwitchState state;
  LoamCounters::CountersPrinter::Ptr printer;
  LoamCounters::IntfList::Ptr intfs;
};

/// The state file of a switch.
std::string stateFile(const BusySwitch& of, loamshow::JsonWriter::Layout layout);

/// Writes a complete answer to a descriptor.
using Answer = std::function<void(int fd)>;

/// What `loamshow NAME` makes of a switch that outlives it.
Answer command(const BusySwitch& on, const std::string& name, U32 format);

/// An output as a list of writes.
using Writes = std::vector<std::string>;
Writes writesOf(const Answer& answer);
void writeAll(int fd, const Writes& writes);

/// A descriptor of /dev/null, open as long as the process.
int nullFd();

}  // namespace loambench
