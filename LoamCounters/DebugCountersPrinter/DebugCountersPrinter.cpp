#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"

#include "LoamCounters/Answer.h"
#include "LoamCounters/DebugCountersPrinter/CounterLines.h"
#include "LoamCounters/DebugCountersPrinter/FapReport.h"
#include "platform/Wisp.h"
#include "platform/tabula.h"

// The operations do not use the object, which exists so that the entity framework can call them. They hold
// their own handles to the objects that they read.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

namespace LoamCounters {

bool DebugCountersPrinter::printDebugCounter(U32 fd, U32 fmt, const Descriptor& descriptor,
                                             const Mote::String& snapshot, const Manager& shmemMgr,
                                             bool drops, bool printSectionName, const Mote::String& blockName,
                                             U32 instance, const Mote::String& extraDescription) const {
  Wisp::trace("printDebugCounter");
  const Wisp::BlockTimer timer("printDebugCounter");
  if (descriptor == nullptr || shmemMgr == nullptr) return printSectionName;  // nothing to show
  return answer(fd, fmt, [&, descriptor, shmemMgr](tabula::Printer& printer) {
    return printCounter(printer, descriptor, snapshot, shmemMgr, drops, printSectionName, blockName, instance,
                        extraDescription);
  });
}

void DebugCountersPrinter::printFapName(U32 fd, U32 fmt, const Mote::String& fapName) const {
  answer(fd, fmt, [&](tabula::Printer& printer) { LoamCounters::printFapName(printer, fapName); });
}

void DebugCountersPrinter::printDebugCountersHeader(U32 fd, U32 fmt) const {
  answer(fd, fmt, printDebugCountersTitles);
}

void DebugCountersPrinter::printDebugCountersPerAFap(const ShmemMgrMapping::PtrConst& shmemMgrs,
                                                     const FapDescriptorMapping::PtrConst& fapDescriptors,
                                                     U32 fd, U32 fmt, const Mote::String& snapshot,
                                                     bool drops,
                                                     const Vane::Optional<Mote::String>& blockName) const {
  Wisp::trace("printDebugCountersFap");
  const Wisp::BlockTimer timer("printDebugCountersFap");
  tabula::endingOnInterrupt([&] {
    answer(fd, fmt, [&, shmemMgrs, fapDescriptors](tabula::Printer& printer) {
      printFapReport(printer, shmemMgrs, fapDescriptors, snapshot, drops, blockName);
    });
  });
}

// NOLINTEND(readability-convert-member-functions-to-static)

}  // namespace LoamCounters
