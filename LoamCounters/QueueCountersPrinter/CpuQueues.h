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

/// The rows of one table: every CoPP class of one set, from one source. Policer classes are always totals; a
/// table of totals has no queue column (`queueColWidth` 0), any other has one.
void printCpuIngressCountersPerCoppClass(tabula::Printer& printer,
                                         const CounterEngineAccessor::PtrConst& accessor,
                                         const Hardware::Loam::Status::PtrConst& status, FapId fapId,
                                         LocalCoreId coreId, U32 queueColWidth, bool queueClasses,
                                         bool totalsOnly, bool perInputPortCoppVoqsSupported,
                                         QueueCountersAttrs& attrs);

/// Adds an interface's counts over its traffic classes. A queue that traffic classes t and t + 4 share counts
/// once, under t.
void addIntfEgrCpuCounters(const CounterEngineAccessor::PtrConst& accessor, CpuPortCounters& cpuPortCounters,
                           Nexo::IntfId intf, bool queueMode);

}  // namespace LoamCounters
