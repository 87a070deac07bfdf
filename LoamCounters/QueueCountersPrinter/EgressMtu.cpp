#include "LoamCounters/QueueCountersPrinter/Commands.h"

namespace LoamCounters {

namespace {

/// One column of a row.
template <tabula::FixedString textFormat, tabula::FixedString jsonFormat>
void printCount(tabula::Printer& printer, U32 fmt, Keel::MaybeU63 count, tabula::Attr64Info& attr) {
  switch (fmt) {
    case tabula::formatText:
      printer.addArgs<textFormat>(count.null() ? "n/a" : count.stringValue());
      break;
    case tabula::formatJson:
      if (!count.null()) {
        attr.setValue(count.value());
        printer.addArgs<jsonFormat>(attr.getArg());
      }
      break;
    default:
      Vane::fatal("false && \"Invalid data format\"");
  }
}

}  // namespace

void printShowInterfacesEgressMtuCounters(tabula::Printer& printer, U32 fmt,
                                          const CounterEngineAccessor::PtrConst& accessor,
                                          const EgressAclCountersAccessor::Ptr& aclAccessor,
                                          const Hardware::Loam::Status::PtrConst& status) {
  tabula::StringAttrInfo fapAttr("", printer);
  tabula::Attr64Info enqueuedAttr("enqueuedPackets", printer);
  tabula::Attr64Info droppedAttr("droppedPackets", printer);
  tabula::Attr64Info totalAttr("totalPackets", printer);
  printer.addFrills<"Aggregate Egress Mtu Counters\n">();
  printer.addFrills<"%-17s %19s %19s %19s\n">("Switch", "EnqueuePkts", "Discards", "TotalPkts");
  printer.start();
  printer.startDict("destinations");
  if (status != nullptr && accessor != nullptr && aclAccessor != nullptr) {
    for (const auto& [fapId, fapName] : status->fapIdToName) {
      fapAttr.setValue(fapName);
      printer.startDictEntry(fapAttr);
      const EgressMtuCounter mtuCounter = accessor->egressMtuEnqDropCounter(fapId);
      VANE_ASSERT(mtuCounter.totalCounter().null());
      const Keel::MaybeU63 total = aclAccessor->egressMtuTotalCounter(fapId);
      printer.addFrills<"%-17s ">(fapAttr.getArg());
      printCount<"%19s ", "%19llu ">(printer, fmt, mtuCounter.enqueuedPackets(), enqueuedAttr);
      printCount<"%19s ", "%19llu ">(printer, fmt, mtuCounter.droppedPackets(), droppedAttr);
      printCount<"%19s\n", "%19llu\n">(printer, fmt, total, totalAttr);
      printer.endDictEntry();
      printer.ioflush();
    }
  }
  printer.endDict();
  printer.end();
}

}  // namespace LoamCounters
