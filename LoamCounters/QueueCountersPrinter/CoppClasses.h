#pragma once

#include <set>

#include "platform/HardwareLoam.h"
#include "platform/Nexo.h"

namespace LoamCounters {

/// Orders interfaces by their long names.
struct IntfIdCmp {
  bool operator()(Nexo::IntfId a, Nexo::IntfId b) const { return a.stringValue() < b.stringValue(); }
};

using IntfIdSet = std::set<Nexo::IntfId, IntfIdCmp>;

/// Adds the interfaces of the system ports from `first` to `last`, both inclusive. A port without one adds
/// nothing.
void countersPerCpuClassHelper(U32 first, U32 last, const Hardware::Loam::Status::PtrConst& status,
                               IntfIdSet& set);

/// The interfaces of the CoPP classes, each class set found once per process: the first status that has any
/// decides. Without a lock, and safe in several threads at once.
IntfIdSet coppQueueClasses(const Hardware::Loam::Status::PtrConst& status);
IntfIdSet coppPolicerClasses(const Hardware::Loam::Status::PtrConst& status);

}  // namespace LoamCounters
