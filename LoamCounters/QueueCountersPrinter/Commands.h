#pragma once

// The bodies of the six show commands. Each writes its complete output through the given Printer. If the
// status or an accessor is null, a command writes its headings and empty collections (also for each source,
// if the status is there), and reads no counter.

#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Interface queue counters: the aggregate ingress counters, then the egress queues. Nothing without an
/// interface list.
void printShowInterfacesQueueCounters(tabula::Printer& printer, U32 fmt,
                                      const CounterEngineAccessor::PtrConst& accessor,
                                      const AllIntfList::PtrConst& intfLists,
                                      const Hardware::Loam::Status::PtrConst& status, bool internal);

/// The ingress half of the above. Leaves the JSON model open.
void printShowInterfacesQueueCountersOnlyIngress(tabula::Printer& printer,
                                                 const CounterEngineAccessor::PtrConst& accessor,
                                                 const AllIntfList::PtrConst& allIntfList,
                                                 const Hardware::Loam::Status::PtrConst& loamStatus,
                                                 bool internal);

/// Ingress VOQ counters: a table per FAP core. Nothing without an interface list.
void printShowInterfacesQueueIngressCounters(tabula::Printer& printer,
                                             const CounterEngineAccessor::PtrConst& accessor,
                                             const AllIntfList::PtrConst& intfLists,
                                             const Hardware::Loam::Status::PtrConst& status, bool internal);

/// CPU queue counters: the CoPP classes, for the whole switch or per FAP core, then the CPU ports.
void printShowCpuQueueCounters(tabula::Printer& printer, U32 fmt,
                               const CounterEngineAccessor::PtrConst& accessor,
                               const Hardware::Loam::Status::PtrConst& status, bool summary,
                               bool perInputPortCoppVoqsSupported);

/// Queue drop counters: ingress and egress of the interfaces that dropped packets.
void printShowInterfacesQueueDropsCounters(tabula::Printer& printer, U32 fmt,
                                           const CounterEngineAccessor::PtrConst& accessor,
                                           const AllIntfList::PtrConst& intfLists,
                                           const Hardware::Loam::Status::PtrConst& status);

/// Egress ACL drop counters of the listed interfaces. Nothing without an interface list.
void printShowInterfacesEgressAclDropCounters(tabula::Printer& printer, U32 fmt,
                                              const IntfList::PtrConst& intfList,
                                              const EgressAclCountersAccessor::Ptr& accessor,
                                              const Hardware::Loam::Status::PtrConst& status);

/// Egress MTU counters: a row per FAP.
void printShowInterfacesEgressMtuCounters(tabula::Printer& printer, U32 fmt,
                                          const CounterEngineAccessor::PtrConst& accessor,
                                          const EgressAclCountersAccessor::Ptr& aclAccessor,
                                          const Hardware::Loam::Status::PtrConst& status);

}  // namespace LoamCounters
