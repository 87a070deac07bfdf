#pragma once

// The entity of the debug counter report.

#include <string_view>

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/BrimCounters.h"
#include "platform/Vane.h"

namespace LoamCounters {

/// The entity with the debug counter operations of the CLI: the complete report, or one of its parts for a
/// caller that composes a report. It has no state. Each operation writes to `fd` in the format `fmt`; for
/// JSON it writes nothing. Only the report handles an interrupt; the other operations let SigIntException
/// pass.
class DebugCountersPrinter : public Vane::Entity<DebugCountersPrinter> {
 public:
  using Ptr = Mote::Ptr<DebugCountersPrinter>;
  using Descriptor = Brim::Counters::CounterDescriptor::PtrConst;
  using Manager = Brim::Counters::ShmemManager::PtrConst;
  static constexpr std::string_view vaneName = "LoamCounters::DebugCountersPrinter";

  static Ptr DebugCountersPrinterIs() { return Mote::make<DebugCountersPrinter>(); }
  static const Vane::TypeData& fwkType();

  /// Prints the lines of one instance of a counter. Returns whether the section line is still to be printed:
  /// the `printSectionName` of the block's next counter.
  bool printDebugCounter(U32 fd, U32 fmt, const Descriptor& descriptor, const Mote::String& snapshot,
                         const Manager& shmemMgr, bool drops, bool printSectionName,
                         const Mote::String& blockName, U32 instance,
                         const Mote::String& extraDescription) const;
  void printFapName(U32 fd, U32 fmt, const Mote::String& fapName) const;
  void printDebugCountersHeader(U32 fd, U32 fmt) const;
  /// Prints the report of all FAPs. `snapshot` is the name of the values, `drops` selects drop counters, and
  /// `blockName` (case-insensitive) one block of each FAP.
  void printDebugCountersPerAFap(const ShmemMgrMapping::PtrConst& shmemMgrs,
                                 const FapDescriptorMapping::PtrConst& fapDescriptors, U32 fd, U32 fmt,
                                 const Mote::String& snapshot, bool drops,
                                 const Vane::Optional<Mote::String>& blockName) const;
};

inline DebugCountersPrinter::Ptr debugCountersPrinterFactory() {
  return DebugCountersPrinter::DebugCountersPrinterIs();
}

}  // namespace LoamCounters
