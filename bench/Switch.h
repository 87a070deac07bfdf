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

/// The same, with eight cores, as a state file.
std::string busyStateFile(std::size_t interfaces, loamshow::JsonWriter::Layout layout);

/// A call that writes its complete output to a descriptor.
using Answer = std::function<void(int fd)>;

/// A call of the command on a switch, in format 1 or 2.
Answer command(const BusySwitch& on, const std::string& name, U32 format);

/// An output as a list of writes.
using Writes = std::vector<std::string>;
Writes writesOf(const Answer& answer);
void writeAll(int fd, const Writes& writes);

}  // namespace loambench
