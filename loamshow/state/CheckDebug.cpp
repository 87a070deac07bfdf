// Finds debug counters that have no records, or that the report cannot show.

#include "loamshow/state/CheckParts.h"
#include "loamshow/text/NameIndex.h"

namespace loamshow {

namespace {

using Brim::Counters::CounterDescriptor;
using Brim::Counters::CounterDisplayType;
using Brim::Counters::CounterFetchType;

/// The number of records in the longest snapshot of a FAP; 0 without snapshots.
U32 longestSnapshot(const DebugFap& fap) {
  U32 longest = 0;
  if (fap.manager == nullptr) return longest;
  for (const auto& snapshot : fap.manager->snapshots()) longest = std::max(longest, snapshot.counters);
  return longest;
}

/// Checks the counters of one FAP.
class DebugCheck {
 public:
  DebugCheck(const DebugFap& fap, Findings& findings) : records_(longestSnapshot(fap)), findings_(findings) {}

  void counter(const std::string& member, const CounterDescriptor& descriptor) {
    const bool plain = descriptor.fieldDescriptors.size() == 0;
    if (plain) {
      records(member, descriptor, descriptor.offset);
      fetchType(member, descriptor.fetchType);
    }
    displayType(member, descriptor.displayType);
    for (const auto& [name, field] : descriptor.fieldDescriptors) {
      const std::string fieldMember = member + step("fields") + step(name);
      records(fieldMember, descriptor, field->offset);
      fetchType(fieldMember, field->fetchType);
    }
  }

 private:
  /// Checks that the instances have records: index = instance + offset, modulo 2^32.
  void records(const std::string& member, const CounterDescriptor& descriptor, U32 offset) {
    if (descriptor.numInstances == 0) return;
    const bool given = descriptor.firstInstance != CounterDescriptor::noFirstInstance;
    const U32 first = (given ? descriptor.firstInstance : 0) + offset;
    const U64 end = U64{first} + descriptor.numInstances;
    if (end <= records_) return;
    findings_.push_back({member, "needs record " + std::to_string(end - 1) +
                                     ", but the longest snapshot has " + std::to_string(records_)});
  }

  void fetchType(const std::string& member, CounterFetchType type) { kind(member, "fetchType", type, 3); }
  void displayType(const std::string& member, CounterDisplayType type) {
    kind(member, "displayType", type, 0);
  }

  void kind(const std::string& member, std::string_view name, U32 value, U32 highest) {
    if (value <= highest) return;
    findings_.push_back({member + step(name), "unknown kind " + std::to_string(value) +
                                                  " (known: " + (highest == 0 ? "" : "0 to ") +
                                                  std::to_string(highest) + ")"});
  }

  U32 records_;
  Findings& findings_;
};

}  // namespace

void checkDebug(const SwitchState& state, Findings& findings) {
  Vane::OrderedMap<Mote::String, bool> known;
  for (const auto& [id, name] : state.status->fapIdToName) known.set(name, true);
  const std::vector<Mote::String> names = known.keys();
  NameIndex index({names.begin(), names.end()});

  std::vector<DebugFap> faps = state.debugFaps;
  std::sort(faps.begin(), faps.end(), [](const DebugFap& a, const DebugFap& b) { return a.name < b.name; });
  for (const DebugFap& fap : faps) {
    const std::string name(fap.name);
    const std::string fapMember = member("debug", "faps", name);
    if (!known.contains(fap.name)) {
      findings.push_back({fapMember, "the switch has no FAP " + name + index.nearMiss(name)});
    }
    if (fap.descriptor == nullptr || fap.descriptor->counterDescriptorDir == nullptr) continue;
    const auto& directory = fap.descriptor->counterDescriptorDir;
    DebugCheck check(fap, findings);
    for (const Mote::String& blockName : ascending(directory->blockToDescriptor.keys())) {
      const auto block = directory->blockToDescriptor.get(blockName);
      for (const auto& [counterName, descriptor] : block->counterDescriptors) {
        check.counter(fapMember + member("directory", "blocks", blockName, counterName), *descriptor);
      }
    }
  }
}

}  // namespace loamshow
