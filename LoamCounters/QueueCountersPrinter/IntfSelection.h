#pragma once

// Selects the interfaces that a command shows, and determines the egress queue mode of an interface's FAP.

#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/LoamTm.h"

namespace LoamCounters {

/// Appends the interface of a system port, unless it has none. Throws the port's range error for an invalid
/// number.
void intfListEnq(U32 systemPhyPortId, const IntfList::Ptr& list,
                 const Hardware::Loam::Status::PtrConst& status);

/// Set the lists of the chip's special interfaces: an entry for every kind, possibly empty, except CPU
/// recirculation if that is not enabled, and except egress ERP. A null status sets nothing.
void appendSpecialIngressInterfaceNames(const AllIntfList::Ptr& allIntfList,
                                        const Hardware::Loam::Status::PtrConst& status);
void appendSpecialEgressInterfaceNames(const AllIntfList::Ptr& allIntfList,
                                       const Hardware::Loam::Status::PtrConst& status);

/// Sets the user's interfaces, translated to those that own queues: the interface of a port that has
/// traffic-manager queues, or, unless `voqPortsOnly`, an interface counted in the LAG table. Order and
/// repetitions are kept. A null `intfList` stays null; with a null status the list is empty.
void appendWithVoqInterfaceNames(const AllIntfList::Ptr& allIntfList, const IntfList::PtrConst& intfList,
                                 const Hardware::Loam::Status::PtrConst& status,
                                 const LoamTm::TmMapping::PtrConst& tmMapping,
                                 const Hardware::Loam::InternalLagClientStatus::PtrConst& internalLagStatus,
                                 bool voqPortsOnly);

/// The FAP of an interface's port; the null FAP for an interface without a port.
FapId fapIdOfIntf(Nexo::IntfId intf, const Hardware::Loam::Status::PtrConst& status);

/// Whether the interface's FAP runs its egress queues in that mode; returns `noFapValue` for an interface
/// without a FAP.
bool intfUsesEgqQueueMode(Nexo::IntfId intf, const Hardware::Loam::Status::PtrConst& status, bool noFapValue);
bool intfUsesEgqPortMode(Nexo::IntfId intf, const Hardware::Loam::Status::PtrConst& status, bool noFapValue);

/// Whether any FAP with a revision runs its egress queues in that mode. Both can be true for one switch.
bool anyFapUsingEgqQueueMode(const Hardware::Loam::Status::PtrConst& status);
bool anyFapUsingEgqPortMode(const Hardware::Loam::Status::PtrConst& status);

}  // namespace LoamCounters
