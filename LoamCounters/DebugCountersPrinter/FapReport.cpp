#include "LoamCounters/DebugCountersPrinter/FapReport.h"

#include <algorithm>
#include <vector>

#include "LoamCounters/DebugCountersPrinter/CounterLines.h"
#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"

namespace LoamCounters {

namespace {

using Brim::Counters::CounterBlockDescriptorPtrDir;
using Brim::Counters::CounterDescriptor;
using Brim::Counters::CounterDescriptorDir;
using Brim::Counters::ShmemManager;

std::vector<Mote::String> naturallySorted(std::vector<Mote::String> names) {
  std::stable_sort(names.begin(), names.end(), naturalCompare);
  return names;
}

/// The part of a report for one FAP.
struct Report {
  tabula::Printer& printer;
  const Mote::String& snapshot;
  bool drops;

  void printFap(const Mote::String& fapName, const FapDescriptor& descriptor,
                const ShmemManager::PtrConst& shmemMgr, const Vane::Optional<Mote::String>& blockName) const {
    // The descriptor's owner may replace the directory; all blocks of this FAP are read from this one.
    const CounterDescriptorDir::PtrConst directory = descriptor.counterDescriptorDir;
    printFapName(printer, fapName);
    printDebugCountersTitles(printer);
    if (!usable(directory)) {
      printNotValid(fapName);
    } else if (blockName) {
      printBlock(directory, shmemMgr, *blockName);
    } else {
      // The directory's owner may rebuild it while its blocks are printed.
      for (const Mote::String& listed : naturallySorted(directory->blockToDescriptor.keys())) {
        printer.checkInterrupt();
        printBlock(directory, shmemMgr, listed);
        if (!usable(directory)) {
          printNotValid(fapName);
          break;
        }
      }
    }
  }

 private:
  static bool usable(const CounterDescriptorDir::PtrConst& directory) {
    return directory != nullptr && directory->valid() && directory->readiness() != 0;
  }

  // Without a line end: the title of the next FAP begins with one.
  void printNotValid(const Mote::String& fapName) const {
    printer.addFrills<"FapDescriptors are not valid for: %s">(fapName);
  }

  void printBlock(const CounterDescriptorDir::PtrConst& directory, const ShmemManager::PtrConst& shmemMgr,
                  const Mote::String& blockName) const {
    const auto block = directory->blockToDescriptor.get(blockName.lowerCase());
    if (block != nullptr) printDebugCountersBlock(printer, block, shmemMgr, snapshot, drops, blockName);
  }
};

}  // namespace

void printFapName(tabula::Printer& printer, const Mote::String& fapName) {
  printer.addFrills<"\n">();
  const int titleSize = printer.addFrills<"%s Counters (* indicates overflow)">(fapName);
  printer.addFrills<"\n">();
  for (int i = 0; i < titleSize; ++i) printer.addFrills<"-">();
  printer.addFrills<"\n">();
}

void printDebugCountersBlock(tabula::Printer& printer, const CounterBlockDescriptorPtrDir::PtrConst& block,
                             const ShmemManager::PtrConst& shmemMgr, const Mote::String& snapshot, bool drops,
                             const Mote::String& blockName) {
  const Mote::String sectionName = blockName.upperCase();
  const U32 listed = block->counterDescriptors.version();
  auto counters = block->counterDescriptors.entries();
  std::stable_sort(counters.begin(), counters.end(),
                   [](const auto& a, const auto& b) { return naturalCompare(a.first, b.first); });
  bool sectionDue = true;
  for (auto& [name, descriptor] : counters) {
    printer.checkInterrupt();
    // The block may have changed since its counters were listed.
    if (block->counterDescriptors.version() != listed) descriptor = block->counterDescriptors.get(name);
    if (descriptor == nullptr) continue;
    const U32 first =
        descriptor->firstInstance == CounterDescriptor::noFirstInstance ? 0 : descriptor->firstInstance;
    const U32 end = first + descriptor->numInstances;
    for (U32 instance = first; instance < end; ++instance) {
      sectionDue =
          printCounter(printer, descriptor, snapshot, shmemMgr, drops, sectionDue, sectionName, instance, "");
    }
  }
  printer.ioflush();
}

void printFapReport(tabula::Printer& printer, const ShmemMgrMapping::PtrConst& shmemMgrs,
                    const FapDescriptorMapping::PtrConst& fapDescriptors, const Mote::String& snapshot,
                    bool drops, const Vane::Optional<Mote::String>& blockName) {
  if (fapDescriptors == nullptr) return;
  const Report report{printer, snapshot, drops};
  for (const Mote::String& fapName : naturallySorted(fapDescriptors->fapDescriptors().keys())) {
    const FapDescriptor::PtrConst descriptor = fapDescriptors->fapDescriptors().get(fapName);
    if (descriptor == nullptr) continue;  // removed since the FAPs were listed
    const ShmemManager::PtrConst shmemMgr =
        shmemMgrs == nullptr ? nullptr : shmemMgrs->shmemMgrs().get(fapName);
    if (shmemMgr == nullptr) {
      throw Vane::InternalException("no shared-memory manager of debug counters for " + fapName);
    }
    report.printFap(fapName, *descriptor, shmemMgr, blockName);
  }
}

}  // namespace LoamCounters
