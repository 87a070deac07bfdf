#include "loamshow/state/DebugNames.h"

#include <set>

namespace loamshow {

std::vector<std::string> debugBlocks(const SwitchState& state) {
  std::set<std::string> names;
  for (const DebugFap& fap : state.debugFaps) {
    if (fap.descriptor->counterDescriptorDir == nullptr) continue;
    for (const auto& [name, block] : fap.descriptor->counterDescriptorDir->blockToDescriptor.entries()) {
      if (name == name.lowerCase()) names.emplace(name.view());
    }
  }
  return {names.begin(), names.end()};
}

std::vector<std::string> debugSnapshots(const SwitchState& state) {
  std::set<std::string> names;
  for (const DebugFap& fap : state.debugFaps) {
    if (fap.manager == nullptr) continue;
    for (const auto& snapshot : fap.manager->snapshots()) names.emplace(snapshot.name.view());
  }
  return {names.begin(), names.end()};
}

}  // namespace loamshow
