#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/EgressRows.h"

namespace LoamCounters {

void printShowInterfacesEgressAclDropCounters(tabula::Printer& printer, U32 fmt,
                                              const IntfList::PtrConst& intfList,
                                              const EgressAclCountersAccessor::Ptr& accessor,
                                              const Hardware::Loam::Status::PtrConst& /*status*/) {
  if (intfList == nullptr) return;
  tabula::StringAttrInfo intfAttr("", printer);
  tabula::Attr64Info mlagPacketsAttr("mlagPackets", printer);
  intfAttr.setValue("");
  printer.addFrills<"Aggregate Egress Acl Counters\n">();
  printer.addFrills<"%-10s %19s %19s\n">("Port", "Source Pruning", "Mlag");
  printer.start();
  printer.startDict("interfaces");
  if (accessor != nullptr) {
    for (const Nexo::IntfId intf : intfList->intfs()) {
      intfAttr.setValue(intf.stringValue());
      printer.startDictEntry(intfAttr);
      const Keel::MaybeU63 drops = accessor->egressAclCounter({intf, egressKeyEntry});
      printer.addFrills<"%-10s ">(intf.shortName());
      switch (fmt) {
        case tabula::formatText:
          // The chips have no count of source pruning.
          printer.addArgs<"%19s ">("n/a");
          printer.addArgs<"%19s\n">(drops.null() ? "n/a" : drops.stringValue());
          break;
        case tabula::formatJson:
          if (!drops.null()) {
            mlagPacketsAttr.setValue(drops.value());
            printer.addArgs<"%19llu\n">(mlagPacketsAttr.getArg());
          }
          break;
        default:
          printer.ioflush();
          Vane::fatal("false && \"Invalid data format\"");
      }
      printer.endDictEntry();
      printer.ioflush();
    }
  }
  printer.endDict();
  printer.end();
}

}  // namespace LoamCounters
