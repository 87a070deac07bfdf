#pragma once

// The CoPP classes of the CPU queue command.

#include <set>

#include "platform/HardwareLoam.h"
#include "platform/Nexo.h"

namespace LoamCounters {

/// Orders interfaces by their long names.
struct IntfIdCmp {
  bool operator()(Nexo::IntfId a, Nexo::IntfId b) const { return a.stringValue() < b.stringValue(); }
};

using IntfIdSet = std::set<Nexo::IntfId, IntfIdCmp>;

/// Adds the interfaces of the system ports from `first` to `last`, both inclusive. Ports without an interface
/// are skipped.
void countersPerCpuClassHelper(U32 first, U32 last, const Hardware::Loam::Status::PtrConst& status,
                               IntfIdSet& set);

/// The interfaces of the CoPP classes. Each set is determined once per process, by the first status with such
/// a class. Thread-safe, without a lock.
IntfIdSet coppQueueClasses(const Hardware::Loam::Status::PtrConst& status);
IntfIdSet coppPolicerClasses(const Hardware::Loam::Status::PtrConst& status);

}  // namespace LoamCounters
