#pragma once

// The ingress (VOQ) tables: a block's head, an interface's rows, and the row of a fabric multicast VOQ.

#include <vector>

#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "LoamCounters/QueueCountersPrinter/QueueCountersAttrs.h"
#include "platform/CounterAgent.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Width of the queue column of a table by interface and traffic class.
inline constexpr U32 trafficClassColWidth = 7;

/// A block's head, in text only. `queueColWidth` is 0 for a table without a queue column; `subtitle` may be
/// empty.
void printIngressQueueCounterHeader(tabula::Printer& printer, const Mote::String& title, bool cpuClassHeader,
                                    U32 queueColWidth, const Mote::String& subtitle);

/// One row per queue, or with `totalOnly` the total as the one row. `intfName` names an interface without an
/// id. The rows stand under "ports" or "trafficClasses" in JSON. Raises the index's range error after the
/// eightieth row, and std::out_of_range before a row that `queueNames` has no label for.
void printIngressCounters(tabula::Printer& printer, Nexo::IntfId intf, const Mote::String& intfName,
                          U32 queuesPerPort, const std::vector<Mote::String>& queueNames, U32 queueColWidth,
                          bool totalOnly, bool keyedByPort, const IngressTcCounter& counters,
                          QueueCountersAttrs& attrs);

/// The row of one fabric multicast VOQ; `voqId` is within the fabric multicast range.
void printFabricMcastCounters(tabula::Printer& printer, Nexo::IntfId intf, U32 voqId,
                              const IngressCounter& counter, QueueCountersAttrs& attrs);

/// The rows of a command's interfaces, special interfaces and fabric multicast VOQs, from one source.
class IngressTable {
 public:
  /// All must outlive the table. `status` and `accessor` are not null, the interface list is set.
  IngressTable(tabula::Printer& printer, const CounterEngineAccessor& accessor, const AllIntfList& intfLists,
               const Hardware::Loam::Status& status, QueueCountersAttrs& attrs);

  /// The null FAP and the aggregate core stand for all sources. `internal` adds what the user did not name.
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
