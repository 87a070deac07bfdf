#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;

void printEgressQueues(tabula::Printer& printer, U32 fmt, const CounterEngineAccessor::PtrConst& accessor,
                       const AllIntfList& intfLists, const Status::PtrConst& status,
                       QueueCountersAttrs& attrs) {
  const bool portModeDefault = anyFapUsingEgqPortMode(status);
  const bool queueModeDefault = anyFapUsingEgqQueueMode(status);
  // An interface without a FAP has both defaults, so it may be printed in both modes.
  const auto printIntf = [&](Nexo::IntfId intf, bool lagAmbiguousRows) {
    if (intfUsesEgqPortMode(intf, status, portModeDefault)) {
      printEgressCountersPerIntf(intf, printer, fmt, accessor, attrs, false, lagAmbiguousRows);
    }
    if (intfUsesEgqQueueMode(intf, status, queueModeDefault)) {
      printEgressCountersPerIntf(intf, printer, fmt, accessor, attrs, true, lagAmbiguousRows);
    }
  };
  const IntfList::Ptr intfList = intfLists.intfList();
  for (const Nexo::IntfId intf : intfList->intfs()) {
    printer.checkInterrupt();
    if (!Nexo::SubIntfId::isSubIntfId(intf)) printIntf(intf, queueModeDefault);
  }
  for (const auto& [kind, intfs] : intfLists.specialEgressIntfLists()) {
    for (const Nexo::IntfId intf : intfs->intfs()) {
      printer.checkInterrupt();
      printIntf(intf, false);
    }
  }
}

}  // namespace

void printShowInterfacesQueueCounters(tabula::Printer& printer, U32 fmt,
                                      const CounterEngineAccessor::PtrConst& accessor,
                                      const AllIntfList::PtrConst& intfLists, const Status::PtrConst& status,
                                      bool internal) {
  if (intfLists == nullptr || intfLists->intfList() == nullptr) return;
  printShowInterfacesQueueCountersOnlyIngress(printer, accessor, intfLists, status, internal);

  QueueCountersAttrs attrs(printer);
  printer.addFrills<"Egress Queue Counters\n">();
  printer.addFrills<"%-20s %-7s %-10s %-10s %17s %17s %17s %17s\n">("Port", "Traffic", "DropPrec", "DestType",
                                                                    "OutEnqPkts", "OutEnqOctets",
                                                                    "OutDropPkts", "OutDropOctets");
  printer.addFrills<"%-20s %-5s\n">("", "Class");
  printer.startSubmodel("egressQueueCounters");
  printer.startDict("interfaces");
  if (status != nullptr && accessor != nullptr) {
    printEgressQueues(printer, fmt, accessor, *intfLists, status, attrs);
  }
  printer.endDict();
  printer.endSubmodel();
  printer.end();
  printer.addFrills<"\n">();
}

void printShowInterfacesQueueCountersOnlyIngress(tabula::Printer& printer,
                                                 const CounterEngineAccessor::PtrConst& accessor,
                                                 const AllIntfList::PtrConst& allIntfList,
                                                 const Status::PtrConst& loamStatus, bool internal) {
  if (allIntfList == nullptr || allIntfList->intfList() == nullptr) return;
  QueueCountersAttrs attrs(printer);
  printIngressQueueCounterHeader(printer, "Aggregate VoQ Counters", false, trafficClassColWidth, "");
  printer.start();
  printer.startSubmodel("ingressVoqCounters");
  printer.startDict("interfaces");
  if (loamStatus != nullptr && accessor != nullptr) {
    IngressTable(printer, *accessor, *allIntfList, *loamStatus, attrs)
        .print(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, internal);
  }
  printer.endDict();
  printer.endSubmodel();
  printer.addFrills<"\n">();
}

}  // namespace LoamCounters
