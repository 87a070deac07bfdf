#include "LoamCounters/QueueCountersPrinter/EgressRows.h"

#include "LoamCounters/QueueCountersPrinter/Labels.h"

namespace LoamCounters {

namespace {

constexpr U32 countsPerQuad = 4;
constexpr U32 destTypes = 2;

/// The rows of one pass over an interface's destination types. A record has these quads of counts (U unicast,
/// M multicast, with the number of the traffic class):
///
///   EgressCounter      U0    U1    ...  U7
///   EgressTmCounter    U0 M0 U1 M1 ...  U7 M7
///   EgressLagCounter   U0 M0 U1 M1 ...  U7 M7, then likewise the shared pairs 0,4 to 3,7
///
/// Text shows both destination types in one pass: all quads in their order. JSON has a pass for each, which
/// reads every other quad (all quads of an EgressCounter). If classes t and t + 4 of an EgressTmCounter share
/// a counter, it is in the quads of t, and those of t + 4 are skipped.
struct Pass {
  Nexo::IntfId intf;
  tabula::Printer& printer;
  U32 fmt;
  QueueCountersAttrs& attrs;
  U32 firstDestType;
  U32 lastDestType;

  template <class Record>
  void print(const Record& record, U32 lastTc) const {
    constexpr bool unicastOnly = std::is_same_v<Record, EgressCounter>;
    constexpr bool hasSharedPairs = std::is_same_v<Record, EgressTmCounter>;
    // A pass over one destination type skips the quad of the other in records that have both.
    const bool skipsOther = !unicastOnly && fmt == tabula::formatJson;
    const U32 stride = skipsOther ? destTypes * countsPerQuad : countsPerQuad;
    U64 index = U64{firstDestType} * countsPerQuad;
    U32 tcCount = 0;
    for (U32 tc = 0; tc <= lastTc; ++tc) {
      const bool ambiguous = isAmbiguous(record, tc);
      if (hasSharedPairs && ambiguous && tc > 3) {
        index += U64{countsPerQuad} * Hardware::Loam::countersPerEntryForQueueEgress();
        continue;
      }
      tcCount += hasSharedPairs && ambiguous ? 2 : 1;
      const Mote::String& tcLabel = (ambiguous ? fapAmbiguousTcLabel : queueLabels).at(tc % trafficClasses);
      for (U32 destType = firstDestType; destType <= lastDestType; ++destType) {
        CounterQuad row{};
        if (destType == destTypeUnicast || !unicastOnly) {
          row = record.quad(index);
          index += stride;
        }
        printEgressCounters(printer, fmt, intf, tc, lastTc, tcLabel, tcCount, allDpLabel, destType, false,
                            row, attrs);
      }
    }
  }

 private:
  static bool isAmbiguous(const EgressCounter&, U32) { return false; }
  static bool isAmbiguous(const EgressTmCounter& record, U32 tc) {
    return record.tcLsbOfAmbiguousTcs[tc % 4];
  }
  static bool isAmbiguous(const EgressLagCounter&, U32 tc) { return isAmbiguousTcForLagCounters(tc); }
};

}  // namespace

void printEgressCountersPerIntf(Nexo::IntfId intf, tabula::Printer& printer, U32 fmt,
                                const CounterEngineAccessor::PtrConst& accessor, QueueCountersAttrs& attrs,
                                bool useTmCounters, bool lagAmbiguousRows) {
  const auto pass = [&](U32 first, U32 last) {
    printEgressCountersPerIntfHelper(intf, printer, fmt, accessor, attrs, first, last, useTmCounters,
                                     lagAmbiguousRows);
  };
  if (fmt == tabula::formatJson) {
    pass(destTypeUnicast, destTypeUnicast);
    pass(destTypeMulticast, destTypeMulticast);
  } else {
    pass(destTypeUnicast, destTypeMulticast);
  }
}

void printEgressCountersPerIntfHelper(Nexo::IntfId intf, tabula::Printer& printer, U32 fmt,
                                      const CounterEngineAccessor::PtrConst& accessor,
                                      QueueCountersAttrs& attrs, U32 firstDestType, U32 lastDestType,
                                      bool useTmCounters, bool lagAmbiguousRows) {
  constexpr U32 lastTc = trafficClasses - 1;
  const Pass pass{intf, printer, fmt, attrs, firstDestType, lastDestType};
  const EgressCounterKey key{intf, egressKeyEntry};
  if (isNonSubIntfPortChannelIntfId(intf)) {
    constexpr U32 sharedPairs = 4;
    pass.print(accessor->egressLagCounter(key), lagAmbiguousRows ? lastTc + sharedPairs : lastTc);
  } else if (useTmCounters) {
    pass.print(accessor->egressTmCounter(key), lastTc);
  } else {
    pass.print(accessor->egressCounter(key), lastTc);
  }
}

void printEgressCounters(tabula::Printer& printer, U32 fmt, Nexo::IntfId intf, U32 tc, U32 lastTc,
                         const Mote::String& tcLabel, U32 tcCount, const Mote::String& dpLabel, U32 destType,
                         bool cpuQueue, const CounterQuad& row, QueueCountersAttrs& attrs) {
  const bool opens = cpuQueue || tc == 0;
  const bool closes = cpuQueue || lastTc == tcCount - 1;
  attrs.destTypeAttr.setValue(destTypeLabel(destType, fmt));
  attrs.intfAttr.setValue(intf.stringValue());
  if (opens) {
    if (destType == destTypeUnicast) printer.startDictEntry(attrs.intfAttr);
    printer.startSubmodel(attrs.destTypeAttr.getArg().text());
    printer.startDict(cpuQueue ? "queues" : "trafficClasses");
  }
  attrs.queueAttr.setValue(cpuQueue ? "0" : tcLabel.view());
  printer.startDictEntry(attrs.queueAttr);
  if (!cpuQueue) {
    attrs.dropPrecAttr.setValue(dpLabel);
    printer.startDict("dropPrecedences");
    printer.startDictEntry(attrs.dropPrecAttr);
  }

  printer.addFrills<"%-20s ">(intf.shortName());
  if (!cpuQueue) {
    printer.addFrills<"%-7s ">(attrs.queueAttr.getArg());
    printer.addFrills<"%-10s ">(attrs.dropPrecAttr.getArg());
  }
  printer.addFrills<"%-10s ">(attrs.destTypeAttr.getArg());
  printCounterColumns(printer, row, attrs);

  if (!cpuQueue) {
    printer.endDictEntry();
    printer.endDict();
  }
  printer.endDictEntry();
  if (closes) {
    printer.endDict();
    printer.endSubmodel();
    if (destType == destTypeMulticast) printer.endDictEntry();
  }
  printer.ioflush();  // a tail call, as nothing is left to destroy: each return from a write is mispredicted
}

void printIntfTcEgrCounters(tabula::Printer& printer, U32 fmt, U32 tc, const EgressTmCounter& counter,
                            QueueCountersAttrs& attrs) {
  const U64 base = U64{tc} * destTypes * countsPerQuad;
  const CounterQuad unicast = counter.quad(base);
  const CounterQuad multicast = counter.quad(base + countsPerQuad);
  printIntfTcEgrQuads(printer, fmt, unicast + multicast, unicast, multicast, attrs);
}

void printIntfTcEgrQuads(tabula::Printer& printer, U32 fmt, const CounterQuad& sum,
                         const CounterQuad& unicast, const CounterQuad& multicast,
                         QueueCountersAttrs& attrs) {
  printer.addFrills<"%-15s %7s ">(" Egress queue", "");
  printer.startSubmodel("countersSum");
  printCounterColumns(printer, sum, attrs);
  printer.endSubmodel();

  printer.startDict("dropPrecedences");
  attrs.dropPrecAttr.setValue(allDpLabel);
  printer.startDictEntry(attrs.dropPrecAttr);
  for (const U32 destType : {destTypeUnicast, destTypeMulticast}) {
    const Mote::String destLabel = destTypeLabel(destType, fmt);
    printer.startSubmodel(destLabel);
    printer.addFrills<" - %s %-6s %7s ">(allDpLabel, destLabel, "");  // the label is 15 columns wide
    printCounterColumns(printer, destType == destTypeUnicast ? unicast : multicast, attrs);
    printer.endSubmodel();
  }
  printer.endDictEntry();
  printer.endDict();
}

void printCounterColumns(tabula::Printer& printer, const CounterQuad& counters, QueueCountersAttrs& attrs) {
  attrs.setCounters(counters);
  printer.addArgs<"%17llu %17llu %17llu %17llu\n">(
      attrs.enqueuedPacketsAttr.getArg(), attrs.enqueuedBytesAttr.getArg(), attrs.droppedPacketsAttr.getArg(),
      attrs.droppedBytesAttr.getArg());
}

}  // namespace LoamCounters
