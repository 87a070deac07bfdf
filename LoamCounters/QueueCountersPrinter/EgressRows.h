#pragma once

// Prints the egress queue rows of one interface, from a record of any of the three kinds.

#include "LoamCounters/QueueCountersPrinter/QueueCountersAttrs.h"
#include "platform/CounterAgent.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// The entry byte of every EgressCounterKey that the commands use.
inline constexpr U8 egressKeyEntry = 56;

/// All egress rows of one interface. `useTmCounters` reads the queue-mode record; `lagAmbiguousRows` adds a
/// port channel's four rows of shared traffic classes. In text the two destination types of a traffic class
/// follow each other; in JSON each has its own submodel.
void printEgressCountersPerIntf(Nexo::IntfId intf, tabula::Printer& printer, U32 fmt,
                                const CounterEngineAccessor::PtrConst& accessor, QueueCountersAttrs& attrs,
                                bool useTmCounters, bool lagAmbiguousRows);

/// The rows of the destination types from `firstDestType` to `lastDestType`.
void printEgressCountersPerIntfHelper(Nexo::IntfId intf, tabula::Printer& printer, U32 fmt,
                                      const CounterEngineAccessor::PtrConst& accessor,
                                      QueueCountersAttrs& attrs, U32 firstDestType, U32 lastDestType,
                                      bool useTmCounters, bool lagAmbiguousRows);

/// Prints one row. In JSON the row of traffic class 0 opens the interface's collection, and the row in which
/// `tcCount` is `lastTc` + 1 closes it. A `cpuQueue` row is the interface's only one of its destination type;
/// it has no traffic class and no drop precedence.
void printEgressCounters(tabula::Printer& printer, U32 fmt, Nexo::IntfId intf, U32 tc, U32 lastTc,
                         const Mote::String& tcLabel, U32 tcCount, const Mote::String& dpLabel, U32 destType,
                         bool cpuQueue, const CounterQuad& row, QueueCountersAttrs& attrs);

/// Prints a traffic class of a queue-mode record in the drops table: the sum of both destination types, then
/// each of them.
void printIntfTcEgrCounters(tabula::Printer& printer, U32 fmt, U32 tc, const EgressTmCounter& counter,
                            QueueCountersAttrs& attrs);

/// The same three rows from quads: the sum, then unicast and multicast.
void printIntfTcEgrQuads(tabula::Printer& printer, U32 fmt, const CounterQuad& sum,
                         const CounterQuad& unicast, const CounterQuad& multicast, QueueCountersAttrs& attrs);

/// The four counter columns of an egress or drops row, which end its line.
void printCounterColumns(tabula::Printer& printer, const CounterQuad& counters, QueueCountersAttrs& attrs);

}  // namespace LoamCounters
