#include <optional>

#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/FapCores.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"

namespace LoamCounters {

void printShowInterfacesQueueIngressCounters(tabula::Printer& printer,
                                             const CounterEngineAccessor::PtrConst& accessor,
                                             const AllIntfList::PtrConst& intfLists,
                                             const Hardware::Loam::Status::PtrConst& status, bool internal) {
  if (intfLists == nullptr || intfLists->intfList() == nullptr) return;
  QueueCountersAttrs attrs(printer);
  printer.start();
  printer.startDict("sources");
  if (status != nullptr) {
    std::optional<IngressTable> table;
    if (accessor != nullptr) table.emplace(printer, *accessor, *intfLists, *status, attrs);
    FapCores(status).walk(
        FapCores::Step::toAnotherCore, [&](FapId fap, LocalCoreId core, const Mote::String& label) {
          attrs.sourceAttr.setValue(label);
          printIngressQueueCounterHeader(printer, label + ":", false, trafficClassColWidth, "");
          printer.startDictEntry(attrs.sourceAttr);
          printer.startDict("interfaces");
          if (table) table->print(fap, core, internal);
          printer.endDict();
          printer.endDictEntry();
          printer.addFrills<"\n">();
        });
  }
  printer.endDict();
  printer.end();
}

}  // namespace LoamCounters
