#include "bench/CommandRows.h"

#include <map>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/CoppClasses.h"
#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/FapCores.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"
#include "LoamCounters/QueueCountersPrinter/Labels.h"

namespace loambench {

using namespace LoamCounters;

namespace {

using Names = std::vector<Mote::String>;

/// The counts of an answer, in the order of its rows.
using Counts = std::vector<IngressCounter>;

struct Core {
  FapId fap;
  LocalCoreId core;
  Mote::String label;
};

std::vector<Core> coresOf(const BusySwitch& on) {
  std::vector<Core> cores;
  FapCores(on.state.status)
      .walk(FapCores::Step::toAnotherCore, [&](FapId fap, LocalCoreId core, const Mote::String& label) {
        cores.push_back({fap, core, label});
      });
  return cores;
}

Names queueNames() {
  return queueNamesByQueuesPerPort(trafficClasses, trafficClasses);
}

/// An interface's unicast and multicast quad by traffic class; without multicast in port mode.
struct EgressQuads {
  CounterQuad unicast;
  CounterQuad multicast;
};
std::vector<EgressQuads> egressOf(const BusySwitch& on, Nexo::IntfId intf) {
  const EgressCounter port = on.state.counters->egressCounter({intf, egressKeyEntry});
  const EgressTmCounter queue = on.state.counters->egressTmCounter({intf, egressKeyEntry});
  std::vector<EgressQuads> quads;
  for (U64 t = 0; t < trafficClasses; ++t) {
    quads.push_back({port.quad(4 * t) + queue.quad(8 * t), queue.quad(8 * t + 4)});
  }
  return quads;
}

/// Tables of ingress counters: reading a record from the counts, total first.
class IngressRecords {
 public:
  void add(const IngressTcCounter& record, std::size_t queues) {
    counts_.push_back(record.total);
    for (std::size_t t = 0; t < queues; ++t) counts_.push_back(record[IngressCounterIndex(t)]);
  }
  /// The record at `at`, which then is after it.
  IngressTcCounter take(std::size_t& at, std::size_t queues) const {
    const std::size_t begin = std::exchange(at, at + 1 + queues);
    return {counts_[begin], std::span(counts_).subspan(begin + 1, queues)};
  }

 private:
  Counts counts_;
};

PrintRows ingressRows(const BusySwitch& on, U32 /*format*/) {
  const std::vector<Core> cores = coresOf(on);
  IngressRecords records;
  for (const Core& core : cores) {
    for (const Nexo::IntfId intf : on.state.interfaces) {
      records.add(on.state.counters->ingressTcCounter(core.fap, core.core, intf), trafficClasses);
    }
  }
  return [cores, records, intfs = on.state.interfaces, names = queueNames()](tabula::Printer& printer) {
    QueueCountersAttrs attrs(printer);
    std::size_t at = 0;
    printer.start();
    printer.startDict("sources");
    for (const Core& core : cores) {
      attrs.sourceAttr.setValue(core.label);
      printIngressQueueCounterHeader(printer, core.label + ":", false, trafficClassColWidth, "");
      printer.startDictEntry(attrs.sourceAttr);
      printer.startDict("interfaces");
      for (const Nexo::IntfId intf : intfs) {
        printIngressCounters(printer, intf, intf.stringValue(), trafficClasses, names, trafficClassColWidth,
                             false, false, records.take(at, trafficClasses), attrs);
      }
      printer.endDict();
      printer.endDictEntry();
      printer.addFrills<"\n">();
    }
    printer.endDict();
    printer.end();
  };
}

PrintRows queuesRows(const BusySwitch& on, U32 format) {
  struct EgressRow {
    Nexo::IntfId intf;
    U32 tc;
    U32 destType;
    CounterQuad quad;
  };
  IngressRecords records;
  std::vector<EgressRow> egress;
  for (const Nexo::IntfId intf : on.state.interfaces) {
    records.add(
        on.state.counters->ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf),
        trafficClasses);
    const std::vector<EgressQuads> quads = egressOf(on, intf);
    for (U32 i = 0; i < 2 * trafficClasses; ++i) {
      // In text the destination types alternate, in JSON one follows the other.
      const bool isText = format == tabula::formatText;
      const U32 tc = isText ? i / 2 : i % trafficClasses;
      const U32 destType = isText ? i % 2 : i / trafficClasses;
      egress.push_back(
          {intf, tc, destType, destType == destTypeUnicast ? quads[tc].unicast : quads[tc].multicast});
    }
  }
  return [=, intfs = on.state.interfaces, names = queueNames()](tabula::Printer& printer) {
    QueueCountersAttrs attrs(printer);
    std::size_t at = 0;
    printIngressQueueCounterHeader(printer, "Aggregate VoQ Counters", false, trafficClassColWidth, "");
    printer.start();
    printer.startSubmodel("ingressVoqCounters");
    printer.startDict("interfaces");
    for (const Nexo::IntfId intf : intfs) {
      printIngressCounters(printer, intf, intf.stringValue(), trafficClasses, names, trafficClassColWidth,
                           false, false, records.take(at, trafficClasses), attrs);
    }
    printer.endDict();
    printer.endSubmodel();
    printer.addFrills<"\nEgress Queue Counters\n">();
    printer.addFrills<"%-20s %-7s %-10s %-10s %17s %17s %17s %17s\n">(
        "Port", "Traffic", "DropPrec", "DestType", "OutEnqPkts", "OutEnqOctets", "OutDropPkts",
        "OutDropOctets");
    printer.addFrills<"%-20s %-5s\n">("", "Class");
    printer.startSubmodel("egressQueueCounters");
    printer.startDict("interfaces");
    for (const EgressRow& row : egress) {
      printEgressCounters(printer, format, row.intf, row.tc, trafficClasses - 1, names[row.tc], row.tc + 1,
                          allDpLabel, row.destType, false, row.quad, attrs);
    }
    printer.endDict();
    printer.endSubmodel();
    printer.end();
    printer.addFrills<"\n">();
  };
}

PrintRows dropsRows(const BusySwitch& on, U32 format) {
  const std::vector<Core> cores = coresOf(on);
  std::vector<CounterQuad> quads;  // of a traffic class: the sum, each core, then egress
  for (const Nexo::IntfId intf : on.state.interfaces) {
    const std::vector<EgressQuads> egress = egressOf(on, intf);
    for (U32 t = 0; t < trafficClasses; ++t) {
      const std::size_t sum = quads.size();
      quads.emplace_back();
      for (const Core& core : cores) {
        quads.push_back(on.state.counters->ingressCounter({intf, core.fap, core.core, static_cast<U8>(t)}));
        quads[sum] += quads.back();
      }
      quads.push_back(egress[t].unicast + egress[t].multicast);
      quads.push_back(egress[t].unicast);
      quads.push_back(egress[t].multicast);
    }
  }
  return [=, intfs = on.state.interfaces, names = queueNames()](tabula::Printer& printer) {
    QueueCountersAttrs attrs(printer);
    const CounterQuad* quad = quads.data();
    printer.addFrills<"%-15s %7s %17s %17s %17s %17s\n">("Port", "Class", "EnqPkts", "EnqOctets", "DropPkts",
                                                         "DropOctets");
    printer.addFrills<"%s\n">(std::string(95, '-'));
    printer.start();
    printer.startDict("interfaces");
    for (const Nexo::IntfId intf : intfs) {
      attrs.intfAttr.setValue(intf.stringValue());
      printer.startDictEntry(attrs.intfAttr);
      printer.startDict("trafficClasses");
      for (const Mote::String& name : names) {
        attrs.queueAttr.setValue(name);
        printer.startDictEntry(attrs.queueAttr);
        printer.addFrills<"%-15s %7s %17s %17s %17s %17s\n">(intf.shortName(), name, "", "", "", "");
        printer.startSubmodel("ingressVoqCounters");
        printer.addFrills<"%-15s %7s ">(" VOQ", "");
        printer.startSubmodel("countersSum");
        printCounterColumns(printer, *quad++, attrs);
        printer.endSubmodel();
        printer.startDict("sources");
        for (const Core& core : cores) {
          attrs.sourceAttr.setValue(core.label);
          printer.startDictEntry(attrs.sourceAttr);
          printer.addFrills<" - %-12s %7s ">(core.label, "");
          printCounterColumns(printer, *quad++, attrs);
          printer.endDictEntry();
        }
        printer.endDict();
        printer.ioflush();
        printer.endSubmodel();
        printer.startSubmodel("egressQueueCounters");
        printIntfTcEgrQuads(printer, format, quad[0], quad[1], quad[2], attrs);
        quad += 3;
        printer.endSubmodel();
        printer.endDictEntry();
      }
      printer.endDict();
      printer.endDictEntry();
    }
    printer.endDict();
    printer.end();
    printer.addFrills<"\n">();
  };
}

PrintRows cpuRows(const BusySwitch& on, U32 format) {
  const std::vector<Core> cores = coresOf(on);
  const auto inOrder = [](const IntfIdSet& set) { return std::vector<Nexo::IntfId>(set.begin(), set.end()); };
  const std::vector<Nexo::IntfId> queueClasses = inOrder(coppQueueClasses(on.state.status));
  const std::vector<Nexo::IntfId> policerClasses = inOrder(coppPolicerClasses(on.state.status));
  IngressRecords records;
  for (const Core& core : cores) {
    const auto add = [&](const std::vector<Nexo::IntfId>& classes, std::size_t queues) {
      for (const Nexo::IntfId intf : classes) {
        records.add(on.state.counters->ingressTcCounter(core.fap, core.core, intf), queues);
      }
    };
    add(queueClasses, trafficClasses);
    add(policerClasses, 0);
  }
  std::vector<Nexo::IntfId> cpuPorts;
  for (U64 port = 2; port <= 6; ++port) {
    cpuPorts.push_back(on.state.status->sppidToIntfId.get(Hardware::Loam::SystemPhyPortId(port)));
  }
  return [=, names = queueNames(), noNames = Names{""}](tabula::Printer& printer) {
    QueueCountersAttrs attrs(printer);
    std::size_t at = 0;
    printer.start();
    printer.startSubmodel("ingressVoqs");
    printer.startDict("sources");
    for (const Core& core : cores) {
      constexpr U32 voqColWidth = 10;
      attrs.sourceAttr.setValue(core.label);
      printer.startDictEntry(attrs.sourceAttr);
      printer.startDict("cpuClasses");
      printIngressQueueCounterHeader(printer, core.label + ":", true, voqColWidth, "");
      for (const Nexo::IntfId intf : queueClasses) {
        printIngressCounters(printer, intf, intf.stringValue(), trafficClasses, names, voqColWidth, false,
                             true, records.take(at, trafficClasses), attrs);
      }
      printer.addFrills<"\n">();
      printIngressQueueCounterHeader(
          printer, core.label + ":", true, 0,
          "This indicates the sum of per-chip counts of packets permitted and denied by the port-dependent "
          "policers.");
      for (const Nexo::IntfId intf : policerClasses) {
        printIngressCounters(printer, intf, intf.stringValue(), 1, noNames, 0, true, true,
                             records.take(at, 0), attrs);
      }
      printer.addFrills<"\n">();
      printer.endDict();
      printer.endDictEntry();
    }
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
    for (const Nexo::IntfId intf : cpuPorts) {
      for (const U32 destType : {destTypeUnicast, destTypeMulticast}) {
        printEgressCounters(printer, format, intf, 0, trafficClasses - 1, "", 0, "", destType, true,
                            CounterQuad(), attrs);
      }
    }
    printer.endDict();
    printer.endDictEntry();
    printer.endDict();
    printer.endSubmodel();
    printer.end();
  };
}

}  // namespace

PrintRows rowsOf(const BusySwitch& on, const std::string& command, U32 format) {
  using Make = PrintRows (*)(const BusySwitch&, U32 format);
  static const std::map<std::string, Make> makers = {
      {"queues", queuesRows}, {"ingress", ingressRows}, {"drops", dropsRows}, {"cpu", cpuRows}};
  return makers.at(command)(on, format);
}

}  // namespace loambench
