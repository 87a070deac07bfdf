#include <string>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/FapCores.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"
#include "LoamCounters/QueueCountersPrinter/Labels.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;

constexpr std::size_t ruleWidth = 15 + 1 + 7 + 4 * 18;

/// One run of the command, with the values that are the same for all interfaces.
class DropsTable {
 public:
  DropsTable(tabula::Printer& printer, U32 fmt, const CounterEngineAccessor::PtrConst& accessor,
             const Status::PtrConst& status, QueueCountersAttrs& attrs)
      : printer_(printer),
        fmt_(fmt),
        accessor_(accessor),
        status_(status),
        attrs_(attrs),
        fapCores_(status),
        portDefault_(anyFapUsingEgqPortMode(status)),
        queueDefault_(anyFapUsingEgqQueueMode(status)),
        portNames_(queueNamesByQueuesPerPort(trafficClasses, trafficClasses)) {}

  /// Prints nothing for an interface that dropped no packet.
  void printIntf(Nexo::IntfId intf) {
    usesPort_ = intfUsesEgqPortMode(intf, status_, portDefault_);
    usesQueue_ = intfUsesEgqQueueMode(intf, status_, queueDefault_);
    const EgressCounterKey egressKey{intf, egressKeyEntry};
    const IngressTcCounter ingress =
        accessor_->ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf);
    bool shown = ingress.total.droppedPackets != 0;
    if (usesPort_) {
      egress_ = accessor_->egressCounter(egressKey);
      shown = shown || egress_.total.droppedPackets != 0;
    }
    if (usesQueue_) {
      egressTm_ = accessor_->egressTmCounter(egressKey);
      shown = shown || egressTm_.total.droppedPackets != 0;
    }
    if (!shown) return;

    attrs_.intfAttr.setValue(intf.stringValue());
    printer_.startDictEntry(attrs_.intfAttr);
    printer_.startDict("trafficClasses");
    const bool isSubIntf = Nexo::SubIntfId::isSubIntfId(intf);
    if (isSubIntf && subIntfNames_.size() != status_->subIntfNumVoqs) {
      subIntfNames_ = queueNamesByQueuesPerPort(status_->subIntfNumVoqs, trafficClasses);
    }
    const std::vector<Mote::String>& names = isSubIntf ? subIntfNames_ : portNames_;
    for (U32 tc = 0; tc < names.size(); ++tc) {
      startTrafficClass(intf, names[tc]);
      printer_.startSubmodel("ingressVoqCounters");
      printIngress(intf, tc, ingress[IngressCounterIndex(tc)]);
      printer_.endSubmodel();
      printer_.startSubmodel("egressQueueCounters");
      if (!isSubIntf) printEgress(tc);
      printer_.endSubmodel();
      printer_.endDictEntry();
    }
    if (!isSubIntf && usesQueue_) printSharedPairs(intf);
    printer_.endDict();
    printer_.endDictEntry();
  }

 private:
  void startTrafficClass(Nexo::IntfId intf, const Mote::String& label) {
    attrs_.queueAttr.setValue(label);
    printer_.startDictEntry(attrs_.queueAttr);
    printer_.addFrills<"%-15s %7s %17s %17s %17s %17s\n">(intf.shortName(), label, "", "", "", "");
  }

  void printIngress(Nexo::IntfId intf, U32 tc, const CounterQuad& sum) {
    printer_.addFrills<"%-15s %7s ">(" VOQ", "");
    printer_.startSubmodel("countersSum");
    printCounterColumns(printer_, sum, attrs_);
    printer_.endSubmodel();

    printer_.startDict("sources");
    fapCores_.walk(
        FapCores::Step::afterEveryCore, [&](FapId fap, LocalCoreId core, const Mote::String& source) {
          const IngressCounter counter = accessor_->ingressCounter({intf, fap, core, static_cast<U8>(tc)});
          attrs_.sourceAttr.setValue(source);
          printer_.startDictEntry(attrs_.sourceAttr);
          printer_.addFrills<" - %-12s %7s ">(source, "");
          printCounterColumns(printer_, counter, attrs_);
          printer_.endDictEntry();
        });
    printer_.endDict();
    printer_.ioflush();
  }

  void printEgress(U32 tc) {
    if (usesPort_) {
      const CounterQuad unicast = egress_.quad(U64{tc} * 4);
      printIntfTcEgrQuads(printer_, fmt_, unicast, unicast, CounterQuad(), attrs_);
    }
    if (usesQueue_ && !egressTm_.tcLsbOfAmbiguousTcs[tc % 4]) {
      printIntfTcEgrCounters(printer_, fmt_, tc, egressTm_, attrs_);
    }
  }

  /// Prints the egress counters that two traffic classes share, once for each pair.
  void printSharedPairs(Nexo::IntfId intf) {
    for (U32 tc = 0; tc < fapAmbiguousTcLabel.size(); ++tc) {
      if (!egressTm_.tcLsbOfAmbiguousTcs[tc]) continue;
      startTrafficClass(intf, trafficClassLabel(tc, trafficClasses, trafficClasses, true));
      printer_.startSubmodel("egressQueueCounters");
      printIntfTcEgrCounters(printer_, fmt_, tc, egressTm_, attrs_);
      printer_.endSubmodel();
      printer_.endDictEntry();
    }
  }

  tabula::Printer& printer_;
  U32 fmt_;
  const CounterEngineAccessor::PtrConst& accessor_;
  const Status::PtrConst& status_;
  QueueCountersAttrs& attrs_;
  FapCores fapCores_;
  bool portDefault_;
  bool queueDefault_;
  std::vector<Mote::String> portNames_;
  std::vector<Mote::String> subIntfNames_;  // created again if their number changes

  // State of the interface being printed; a record is set only if its mode applies.
  bool usesPort_ = false;
  bool usesQueue_ = false;
  EgressCounter egress_;
  EgressTmCounter egressTm_;
};

}  // namespace

void printShowInterfacesQueueDropsCounters(tabula::Printer& printer, U32 fmt,
                                           const CounterEngineAccessor::PtrConst& accessor,
                                           const AllIntfList::PtrConst& intfLists,
                                           const Status::PtrConst& status) {
  QueueCountersAttrs attrs(printer);
  printer.addFrills<"%-15s %7s %17s %17s %17s %17s\n">("Port", "Class", "EnqPkts", "EnqOctets", "DropPkts",
                                                       "DropOctets");
  printer.addFrills<"%s\n">(std::string(ruleWidth, '-'));
  printer.start();
  printer.startDict("interfaces");
  if (status != nullptr && accessor != nullptr && intfLists != nullptr && intfLists->intfList() != nullptr) {
    DropsTable table(printer, fmt, accessor, status, attrs);
    const IntfList::Ptr intfList = intfLists->intfList();
    for (const Nexo::IntfId intf : intfList->intfs()) {
      printer.checkInterrupt();
      table.printIntf(intf);
    }
  }
  printer.endDict();
  printer.end();
  printer.addFrills<"\n">();
}

}  // namespace LoamCounters
