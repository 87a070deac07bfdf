#include "LoamCounters/DebugCountersPrinter/CounterLines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Keel.h"

namespace LoamCounters {

namespace {

using Brim::Counters::Counter;
using Brim::Counters::CounterDescriptor;
using Brim::Counters::CounterFieldDescriptor;

constexpr Brim::Counters::CounterFetchType fetchAllTimes = 0;
constexpr Brim::Counters::CounterFetchType highestFetchType = 3;
constexpr Brim::Counters::CounterDisplayType displayNumber = 0;

const Vane::Seconds never;

Mote::String timeText(Vane::Seconds switchTime) {
  return switchTime == never ? "never" : Keel::utcTimestampString(Keel::switchTimeToUtc(switchTime));
}

std::vector<CounterFieldDescriptor::PtrConst> fieldsInOrder(const CounterDescriptor& descriptor) {
  std::vector<CounterFieldDescriptor::PtrConst> fields;
  for (const auto& [name, field] : descriptor.fieldDescriptors) {
    if (field != nullptr) fields.push_back(field);
  }
  std::stable_sort(fields.begin(), fields.end(),
                   [](const auto& left, const auto& right) { return left->order < right->order; });
  return fields;
}

}  // namespace

void printDebugCountersTitles(tabula::Printer& printer) {
  printer.addFrills<"%-53s   %-15s   %-19s   %-19s   %-19s\n">("Counter name", "Value", "First update",
                                                               "Last update", "Last discontinuity");
}

void printCounterValue(tabula::Printer& printer, const Mote::String& name,
                       Brim::Counters::CounterFetchType fetchType,
                       Brim::Counters::CounterDisplayType displayType, const Counter& counter) {
  if (fetchType > highestFetchType) throw Vane::InternalException("unsupported fetch type");
  if (displayType != displayNumber) throw Vane::InternalException("unsupported display type");

  const bool allTimes = fetchType == fetchAllTimes;
  const bool unfetched = !allTimes && counter.lastUpdate == never;
  std::array<char, 20> digits{};
  const std::string_view count(digits.data(), std::to_chars(digits.begin(), digits.end(), counter.value).ptr);
  const std::string_view value = unfetched ? "n/a" : count;
  const Mote::String firstUpdate = allTimes ? timeText(counter.firstUpdate) : "";
  const Mote::String lastUpdate = timeText(counter.lastUpdate);
  // A discontinuity before the first update belongs to an earlier counter, and is not shown; nor is a NaN.
  const bool discontinuity =
      allTimes && counter.lastDiscontinuity != never && counter.lastDiscontinuity >= counter.firstUpdate;

  printer.addFrills<"  ">();
  printer.addFrills<"%s">(counter.overflow ? "*" : " ");
  printer.addFrills<"%-50s : %15s : %-19.19s : %-19.19s">(name, value, firstUpdate, lastUpdate);
  if (discontinuity) {
    printer.addFrills<" : %-.19s\n">(timeText(counter.lastDiscontinuity));
  } else {
    printer.addFrills<"\n">();
  }
}

bool printCounter(tabula::Printer& printer, const CounterDescriptor::PtrConst& descriptor,
                  const Mote::String& snapshot, const Brim::Counters::ShmemManager::PtrConst& shmemMgr,
                  bool drops, bool printSectionName, const Mote::String& blockName, U32 instance,
                  const Mote::String& extraDescription) {
  bool sectionDue = printSectionName;
  // A counter without fields, or one field: both are shown the same way.
  const auto print = [&](const auto& shown) {
    printer.checkInterrupt();
    if (drops && !shown.isDropCounter) return;
    if (sectionDue) printer.addFrills<"[%s]\n">(blockName);
    sectionDue = false;
    Mote::String suffixed;
    const bool hasSuffix = descriptor->numInstances > 1 || !extraDescription.empty();
    if (hasSuffix) {
      suffixed = shown.displayName;
      if (descriptor->numInstances > 1) {
        suffixed += "[";
        suffixed += std::to_string(static_cast<int>(instance));
        suffixed += "]";
      }
      suffixed += extraDescription;
    }
    const Mote::String& name = hasSuffix ? suffixed : shown.displayName;
    const Counter counter = shmemMgr->counter(snapshot, instance + shown.offset);
    printCounterValue(printer, name, shown.fetchType, descriptor->displayType, counter);
  };
  if (descriptor->fieldDescriptors.size() == 0) {
    print(*descriptor);
  } else {
    for (const auto& field : fieldsInOrder(*descriptor)) print(*field);
  }
  return sectionDue;
}

}  // namespace LoamCounters
