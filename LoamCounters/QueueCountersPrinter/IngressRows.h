#pragma once

// Prints the ingress (VOQ) tables: the heading of a table, the rows of an interface, and the row of a fabric
// multicast VOQ.

#include <vector>

#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "LoamCounters/QueueCountersPrinter/QueueCountersAttrs.h"
#include "platform/CounterAgent.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Width of the queue column of a table by interface and traffic class.
inline constexpr U32 trafficClassColWidth = 7;

/// Prints the heading of a table, in text only. `queueColWidth` is 0 for a table without a queue column;
/// `subtitle` may be empty.
void printIngressQueueCounterHeader(tabula::Printer& printer, const Mote::String& title, bool cpuClassHeader,
                                    U32 queueColWidth, const Mote::String& subtitle);

/// Prints one row per queue, or with `totalOnly` only the total. `intfName` is the name of an interface
/// without an id. In JSON the rows are members of "ports" or "trafficClasses". Throws the index's range error
/// after the eightieth row, and std::out_of_range before a row without a label in `queueNames`.
void printIngressCounters(tabula::Printer& printer, Nexo::IntfId intf, const Mote::String& intfName,
                          U32 queuesPerPort, const std::vector<Mote::String>& queueNames, U32 queueColWidth,
                          bool totalOnly, bool keyedByPort, const IngressTcCounter& counters,
                          QueueCountersAttrs& attrs);

/// Prints the row of one fabric multicast VOQ; `voqId` is in the fabric multicast range.
void printFabricMcastCounters(tabula::Printer& printer, Nexo::IntfId intf, U32 voqId,
                              const IngressCounter& counter, QueueCountersAttrs& attrs);

/// The rows of a command's interfaces, special interfaces and fabric multicast VOQs, from one source.
class IngressTable {
 public:
  /// All arguments must outlive the table. The interface list must be set.
  IngressTable(tabula::Printer& printer, const CounterEngineAccessor& accessor, const AllIntfList& intfLists,
               const Hardware::Loam::Status& status, QueueCountersAttrs& attrs);

  /// The null FAP and the aggregate core mean all sources. `internal` adds special interfaces and fabric
  /// multicast VOQs.
  void print(FapId fap, LocalCoreId core, bool internal);

 private:
  void printInterface(FapId fap, LocalCoreId core, Nexo::IntfId intf, const std::vector<Mote::String>& names);
  void printFabricMcast(FapId fap, LocalCoreId core);

  tabula::Printer& printer_;
  const CounterEngineAccessor& accessor_;
  const AllIntfList& intfLists_;
  QueueCountersAttrs& attrs_;
  std::vector<Mote::String> portNames_;
  std::vector<Mote::String> subIntfNames_;
};

}  // namespace LoamCounters
