#include "bench/DebugReport.h"

#include "LoamCounters/DebugCountersPrinter/CounterLines.h"
#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"
#include "LoamCounters/DebugCountersPrinter/FapReport.h"
#include "bench/Values.h"

namespace loambench {

using namespace LoamCounters;
using namespace Brim::Counters;

namespace {

constexpr int blocks = 200;
constexpr int counters = 500;
constexpr const char* fap = "Fap0";

}  // namespace

DebugReport::DebugReport()
    : descriptors_(fapDescriptorMappingFactory()), managers_(shmemMgrMappingFactory()) {
  for (int j = 0; j < counters; ++j) names_.emplace_back("Counter of some events " + std::to_string(j));
  const auto directory = Mote::make<CounterDescriptorDir>();
  for (int i = 0; i < blocks; ++i) {
    const auto block = Mote::make<CounterBlockDescriptorPtrDir>();
    for (const Mote::String& name : names_) {
      const auto counter = Mote::make<CounterDescriptor>();
      counter->displayName = name;
      counter->offset = static_cast<U32>(values_.size());
      counter->numInstances = 1;
      block->counterDescriptors.set(name, counter);
      const Vane::Seconds time(1e9 + static_cast<double>(busyCount(values_.size()) % 100'000'000));
      values_.push_back({busyCount(values_.size()), time, time, {}, false});
    }
    directory->blockToDescriptor.set("block" + std::to_string(i), block);
  }
  directory->validIs(true);
  directory->readinessIs(1);
  const auto descriptor = Mote::make<FapDescriptor>();
  descriptor->counterDescriptorDir = directory;
  descriptors_->fapDescriptorIs(fap, descriptor);
  const auto manager = Mote::make<MemoryShmemManager>();
  manager->values.set("current", values_);
  managers_->shmemMgrIs(fap, manager);
}

void DebugReport::answer(int fd) const {
  debugCountersPrinterFactory()->printDebugCountersPerAFap(managers_, descriptors_, static_cast<U32>(fd),
                                                           tabula::formatText, "current", false, {});
}

void DebugReport::printRows(tabula::Printer& printer) const {
  printFapName(printer, fap);
  printDebugCountersTitles(printer);
  const Counter* value = values_.data();
  for (int i = 0; i < blocks; ++i) {
    printer.addFrills<"[BLOCK%d]\n">(i);
    for (const Mote::String& name : names_) printCounterValue(printer, name, 0, 0, *value++);
    printer.ioflush();
  }
}

}  // namespace loambench
