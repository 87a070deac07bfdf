#pragma once

// The parts of the CPU queue command: the rows of a table of CoPP classes, and the counts of a CPU port.

#include <array>

#include "LoamCounters/QueueCountersPrinter/QueueCountersAttrs.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Counts by destination type.
using CpuPortCounters = std::array<CounterQuad, 2>;

/// Prints the rows of one table: all CoPP classes of one set, from one source. Policer classes always have
/// totals. A table of totals has no queue column (`queueColWidth` 0), others have one.
void printCpuIngressCountersPerCoppClass(tabula::Printer& printer,
                                         const CounterEngineAccessor::PtrConst& accessor,
                                         const Hardware::Loam::Status::PtrConst& status, FapId fapId,
                                         LocalCoreId coreId, U32 queueColWidth, bool queueClasses,
                                         bool totalsOnly, bool perInputPortCoppVoqsSupported,
                                         QueueCountersAttrs& attrs);

/// Adds the counts of all traffic classes of an interface. A queue that traffic classes t and t + 4 share is
/// counted once, as that of t.
void addIntfEgrCpuCounters(const CounterEngineAccessor::PtrConst& accessor, CpuPortCounters& cpuPortCounters,
                           Nexo::IntfId intf, bool queueMode);

}  // namespace LoamCounters
