#include "LoamCounters/QueueCountersPrinter/CpuQueues.h"

#include <string>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/CoppClasses.h"
#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/FapCores.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"
#include "LoamCounters/QueueCountersPrinter/Labels.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;

constexpr U32 voqColWidth = 10;
constexpr U32 noQueueCol = 0;
constexpr U32 firstCpuPort = 2;
constexpr U32 lastCpuPort = 6;

/// The labels of a class's VOQs: the port's name if each input port has its own VOQ, otherwise the traffic
/// class. The ports of the core with the number of the aggregate core count from 0.
std::vector<Mote::String> voqLabels(const Status& status, FapId fapId, LocalCoreId coreId,
                                    bool perInputPort) {
  constexpr U32 portsPerCore = 64;
  const U32 firstPort = coreId == Hardware::Loam::aggregateCore ? 0 : coreId.value() * portsPerCore;
  std::vector<Mote::String> labels;
  for (U32 i = 0; i < status.coppClassNumVoqs; ++i) {
    if (perInputPort) {
      const Hardware::Loam::PortMap place{Hardware::Loam::FapPortId(firstPort + i), fapId, coreId};
      const Nexo::IntfId intf = status.portMapToIntfId.get(place);
      labels.push_back(Nexo::EthIntfId::isEthIntfId(intf) ? intf.shortName() : "Port" + std::to_string(i));
    } else {
      labels.push_back(trafficClassLabel(i, trafficClasses, trafficClasses, false));
    }
  }
  return labels;
}

void printIngressSummary(tabula::Printer& printer, const CounterEngineAccessor::PtrConst& accessor,
                         const Status::PtrConst& status, bool perInputPort, QueueCountersAttrs& attrs) {
  const auto table = [&](bool queueClasses, const char* subtitle) {
    printIngressQueueCounterHeader(printer, "Aggregate CPU counters:", true, noQueueCol, subtitle);
    if (status != nullptr && accessor != nullptr) {
      printCpuIngressCountersPerCoppClass(printer, accessor, status, Hardware::Loam::nullFap,
                                          Hardware::Loam::aggregateCore, noQueueCol, queueClasses, true,
                                          perInputPort, attrs);
    }
    printer.addFrills<"\n">();
  };
  attrs.sourceAttr.setValue("all");
  printer.startDictEntry(attrs.sourceAttr);
  printer.startDict("cpuClasses");
  table(true, "This indicates the sum of port-dependent queue counters across all input ports.");
  table(false, "This indicates the sum of packets permitted and denied by the port-dependent policers.");
  printer.endDict();
  printer.endDictEntry();
}

void printIngressPerFapCore(tabula::Printer& printer, const CounterEngineAccessor::PtrConst& accessor,
                            const Status::PtrConst& status, bool perInputPort, QueueCountersAttrs& attrs) {
  if (status == nullptr) return;
  FapCores(status).walk(FapCores::Step::toAnotherCore, [&](FapId fap, LocalCoreId core,
                                                           const Mote::String& label) {
    const auto table = [&](U32 colWidth, bool queueClasses, const char* subtitle) {
      printIngressQueueCounterHeader(printer, label + ":", true, colWidth, subtitle);
      if (accessor != nullptr) {
        printCpuIngressCountersPerCoppClass(printer, accessor, status, fap, core, colWidth, queueClasses,
                                            !queueClasses, perInputPort, attrs);
      }
      printer.addFrills<"\n">();
    };
    attrs.sourceAttr.setValue(label);
    printer.startDictEntry(attrs.sourceAttr);
    printer.startDict("cpuClasses");
    table(voqColWidth, true, "");
    table(noQueueCol, false,
          "This indicates the sum of per-chip counts of packets permitted and denied by the port-dependent "
          "policers.");
    printer.endDict();
    printer.endDictEntry();
  });
}

void printCpuPorts(tabula::Printer& printer, U32 fmt, const CounterEngineAccessor::PtrConst& accessor,
                   const Status::PtrConst& status, QueueCountersAttrs& attrs) {
  const IntfList::Ptr intfs = intfListFactory();
  for (U32 port = firstCpuPort; port <= lastCpuPort; ++port) intfListEnq(port, intfs, status);
  const bool anyPortMode = anyFapUsingEgqPortMode(status);
  const bool anyQueueMode = anyFapUsingEgqQueueMode(status);
  for (const Nexo::IntfId intf : intfs->intfs()) {
    CpuPortCounters counters{};
    if (intfUsesEgqPortMode(intf, status, anyPortMode)) {
      addIntfEgrCpuCounters(accessor, counters, intf, false);
    }
    if (intfUsesEgqQueueMode(intf, status, anyQueueMode)) {
      addIntfEgrCpuCounters(accessor, counters, intf, true);
    }
    for (const U32 destType : {destTypeUnicast, destTypeMulticast}) {
      printEgressCounters(printer, fmt, intf, 0, trafficClasses - 1, "", 0, "", destType, true,
                          counters[destType], attrs);
    }
  }
}

}  // namespace

void printCpuIngressCountersPerCoppClass(tabula::Printer& printer,
                                         const CounterEngineAccessor::PtrConst& accessor,
                                         const Status::PtrConst& status, FapId fapId, LocalCoreId coreId,
                                         U32 queueColWidth, bool queueClasses, bool totalsOnly,
                                         bool perInputPortCoppVoqsSupported, QueueCountersAttrs& attrs) {
  const IntfIdSet classes = queueClasses ? coppQueueClasses(status) : coppPolicerClasses(status);
  const bool totals = totalsOnly || !queueClasses;
  std::vector<Mote::String> labels;
  if (totals) {
    VANE_ASSERT(queueColWidth == 0);
    labels.emplace_back("");
  } else {
    labels = voqLabels(*status, fapId, coreId, perInputPortCoppVoqsSupported);
    VANE_ASSERT(queueColWidth > 0);
  }
  const Nexo::IntfId trafficManager("CpuTm0");
  const Nexo::IntfId systemDefault("CoppSystemDefault");
  for (const Nexo::IntfId intf : classes) {
    const IngressTcCounter counters = accessor->ingressTcCounter(fapId, coreId, intf);
    const Nexo::IntfId shown = intf == trafficManager ? systemDefault : intf;
    printIngressCounters(printer, shown, shown.stringValue(), static_cast<U32>(labels.size()), labels,
                         queueColWidth, totals, true, counters, attrs);
  }
}

void addIntfEgrCpuCounters(const CounterEngineAccessor::PtrConst& accessor, CpuPortCounters& cpuPortCounters,
                           Nexo::IntfId intf, bool queueMode) {
  const EgressCounterKey key{intf, egressKeyEntry};
  if (!queueMode) {
    const EgressCounter record = accessor->egressCounter(key);
    for (U32 tc = 0; tc < trafficClasses; ++tc) cpuPortCounters[destTypeUnicast] += record.quad(U64{tc} * 4);
    return;
  }
  const EgressTmCounter record = accessor->egressTmCounter(key);
  for (U32 tc = 0; tc < trafficClasses; ++tc) {
    if (tc >= 4 && record.tcLsbOfAmbiguousTcs[tc % 4]) continue;
    cpuPortCounters[destTypeUnicast] += record.quad(U64{tc} * 8);
    cpuPortCounters[destTypeMulticast] += record.quad(U64{tc} * 8 + 4);
  }
}

void printShowCpuQueueCounters(tabula::Printer& printer, U32 fmt,
                               const CounterEngineAccessor::PtrConst& accessor,
                               const Status::PtrConst& status, bool summary,
                               bool perInputPortCoppVoqsSupported) {
  QueueCountersAttrs attrs(printer);
  printer.start();
  printer.startSubmodel("ingressVoqs");
  printer.startDict("sources");
  const auto printIngress = summary ? printIngressSummary : printIngressPerFapCore;
  printIngress(printer, accessor, status, perInputPortCoppVoqsSupported, attrs);
  printer.endDict();
  printer.endSubmodel();

  attrs.sourceAttr.setValue("all");
  printer.addFrills<"Egress Queue Counters\n">();
  printer.addFrills<"%-20s %-10s %17s %17s %17s %17s\n">("Port", "DestType", "OutEnqPkts", "OutEnqOctets",
                                                         "OutDropPkts", "OutDropOctets");
  printer.startSubmodel("egressQueues");
  printer.startDict("sources");
  printer.startDictEntry(attrs.sourceAttr);
  printer.startDict("cpuPorts");
  if (status != nullptr && accessor != nullptr) printCpuPorts(printer, fmt, accessor, status, attrs);
  printer.endDict();
  printer.endDictEntry();
  printer.endDict();
  printer.endSubmodel();
  printer.end();
}

}  // namespace LoamCounters
