#include "LoamCounters/QueueCountersPrinter/IngressRows.h"

#include <string>

#include "LoamCounters/QueueCountersPrinter/Labels.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::VoqId;

// The interface column, four counter columns, and the blanks between the columns.
constexpr U32 widthWithoutQueueCol = 26 + 1 + 1 + 4 * 18 + 3;

void printCounters(tabula::Printer& printer, const CounterQuad& counters, QueueCountersAttrs& attrs) {
  printer.startDictEntry(attrs.queueAttr);
  attrs.setCounters(counters);
  printer.addArgs<"%18llu %18llu %18llu %18llu\n">(
      attrs.enqueuedPacketsAttr.getArg(), attrs.enqueuedBytesAttr.getArg(), attrs.droppedPacketsAttr.getArg(),
      attrs.droppedBytesAttr.getArg());
  printer.endDictEntry();
}

}  // namespace

void printIngressQueueCounterHeader(tabula::Printer& printer, const Mote::String& title, bool cpuClassHeader,
                                    U32 queueColWidth, const Mote::String& subtitle) {
  printer.addFrills<"%s\n">(title);
  if (!subtitle.empty()) printer.addFrills<"%s\n">(subtitle);

  const char* queueTop = "";
  const char* queueBottom = "";
  if (queueColWidth > 0) {
    queueTop = cpuClassHeader ? "Queue" : "Traffic";
    queueBottom = cpuClassHeader ? "" : "Class";
  }
  printer.addFrills<"%-26s %-*s %18s %18s %18s %18s\n">(cpuClassHeader ? "CoPP Class" : "Egress",
                                                        queueColWidth, queueTop, "Pkts", "Octets", "DropPkts",
                                                        "DropOctets");
  printer.addFrills<"%-26s %-*s\n">(cpuClassHeader ? "Aggregate" : "Port", queueColWidth, queueBottom);
  printer.addFrills<"%s\n">(std::string(queueColWidth + widthWithoutQueueCol, '-'));
}

void printIngressCounters(tabula::Printer& printer, Nexo::IntfId intf, const Mote::String& intfName,
                          U32 queuesPerPort, const std::vector<Mote::String>& queueNames, U32 queueColWidth,
                          bool totalOnly, bool keyedByPort, const IngressTcCounter& counters,
                          QueueCountersAttrs& attrs) {
  const bool nameless = intf == Nexo::IntfId();
  const Mote::String& rowName = nameless ? intfName : intf.shortName();
  attrs.intfAttr.setValue(nameless ? intfName : intf.stringValue());
  printer.startDictEntry(attrs.intfAttr);
  printer.startDict(keyedByPort ? "ports" : "trafficClasses");
  if (totalOnly) VANE_ASSERT(queuesPerPort == 1);
  IngressCounterIndex index{0};
  for (U32 i = 0; i < queuesPerPort; ++i) {
    if (i > 0) ++index;
    attrs.queueAttr.setValue(queueNames.at(i));
    printer.addFrills<"%-26s ">(rowName);
    printer.addFrills<"%-*s ">(queueColWidth, attrs.queueAttr.getArg());
    printCounters(printer, totalOnly ? counters.total : counters[index], attrs);
  }
  printer.endDict();
  printer.endDictEntry();
  printer.ioflush();
}

void printFabricMcastCounters(tabula::Printer& printer, Nexo::IntfId intf, U32 voqId,
                              const IngressCounter& counter, QueueCountersAttrs& attrs) {
  const U32 first = VoqId::fabricMcastVoqMinVal().value();
  const U32 count = VoqId::fabricMcastVoqMaxVal().value() + 1 - first;
  attrs.intfAttr.setValue(intf.stringValue());
  attrs.queueAttr.setValue(trafficClassLabel(voqId - first, count, trafficClasses, false));
  printer.addFrills<"%-26s ">(intf.stringValue());
  printer.startDictEntry(attrs.intfAttr);
  printer.startDict("trafficClasses");
  printer.addFrills<"%-7s ">(attrs.queueAttr.getArg());
  printCounters(printer, counter, attrs);
  printer.endDict();
  printer.endDictEntry();
  printer.ioflush();
}

IngressTable::IngressTable(tabula::Printer& printer, const CounterEngineAccessor& accessor,
                           const AllIntfList& intfLists, const Hardware::Loam::Status& status,
                           QueueCountersAttrs& attrs)
    : printer_(printer),
      accessor_(accessor),
      intfLists_(intfLists),
      attrs_(attrs),
      portNames_(queueNamesByQueuesPerPort(trafficClasses, trafficClasses)),
      subIntfNames_(queueNamesByQueuesPerPort(status.subIntfNumVoqs, trafficClasses)) {
}

void IngressTable::print(FapId fap, LocalCoreId core, bool internal) {
  const IntfList::Ptr intfList = intfLists_.intfList();
  for (const Nexo::IntfId intf : intfList->intfs()) {
    printInterface(fap, core, intf, Nexo::SubIntfId::isSubIntfId(intf) ? subIntfNames_ : portNames_);
  }
  if (!internal) return;
  for (const auto& [kind, intfs] : intfLists_.specialIngressIntfLists()) {
    for (const Nexo::IntfId intf : intfs->intfs()) printInterface(fap, core, intf, portNames_);
  }
  printFabricMcast(fap, core);
}

void IngressTable::printInterface(FapId fap, LocalCoreId core, Nexo::IntfId intf,
                                  const std::vector<Mote::String>& names) {
  const IngressTcCounter counters = accessor_.ingressTcCounter(fap, core, intf);
  printIngressCounters(printer_, intf, intf.stringValue(), static_cast<U32>(names.size()), names,
                       trafficClassColWidth, false, false, counters, attrs_);
}

void IngressTable::printFabricMcast(FapId fap, LocalCoreId core) {
  const U32 first = VoqId::fabricMcastVoqMinVal().value();
  for (VoqId voq = VoqId::fabricMcastVoqMinVal();; ++voq) {
    const Nexo::IntfId intf("FabricMcast" + std::to_string(static_cast<U8>(voq.value() - first)));
    const IngressCounter counter = accessor_.ingressCounter({intf, fap, core, 0});
    printFabricMcastCounters(printer_, intf, voq.value(), counter, attrs_);
    if (voq == VoqId::fabricMcastVoqMaxVal()) break;
  }
}

}  // namespace LoamCounters
