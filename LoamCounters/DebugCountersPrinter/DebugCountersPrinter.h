#pragma once

#include <string_view>

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/BrimCounters.h"
#include "platform/Vane.h"

namespace LoamCounters {

/// The entity through which the CLI asks for debug counters: the whole report, or one of its pieces for a
/// caller that composes a report. It holds no state. Each operation writes to `fd` in the format `fmt`; in
/// JSON nothing is written. Only the report ends on an interrupt by itself.
class DebugCountersPrinter : public Vane::Entity<DebugCountersPrinter> {
 public:
  using Ptr = Mote::Ptr<DebugCountersPrinter>;
  using Descriptor = Brim::Counters::CounterDescriptor::PtrConst;
  using Manager = Brim::Counters::ShmemManager::PtrConst;
  static constexpr std::string_view vaneName = "LoamCounters::DebugCountersPrinter";

  static Ptr DebugCountersPrinterIs() { return Mote::make<DebugCountersPrinter>(); }
  static const Vane::TypeData& fwkType();

  /// The lines of one instance of a counter. Answers whether the section line is still due: the
  /// `printSectionName` of the block's next counter.
  bool printDebugCounter(U32 fd, U32 fmt, const Descriptor& descriptor, const Mote::String& snapshot,
                         const Manager& shmemMgr, bool drops, bool printSectionName,
                         const Mote::String& blockName, U32 instance,
                         const Mote::String& extraDescription) const;
  void printFapName(U32 fd, U32 fmt, const Mote::String& fapName) const;
  void printDebugCountersHeader(U32 fd, U32 fmt) const;
  /// The report of every FAP. `snapshot` names the values, `drops` selects drop counters, and `blockName`, in
  /// any case, one block of each FAP.
  void printDebugCountersPerAFap(const ShmemMgrMapping::PtrConst& shmemMgrs,
                                 const FapDescriptorMapping::PtrConst& fapDescriptors, U32 fd, U32 fmt,
                                 const Mote::String& snapshot, bool drops,
                                 const Vane::Optional<Mote::String>& blockName) const;
};

inline DebugCountersPrinter::Ptr debugCountersPrinterFactory() {
  return DebugCountersPrinter::DebugCountersPrinterIs();
}

}  // namespace LoamCounters
