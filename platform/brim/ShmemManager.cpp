#include "platform/brim/ShmemManager.h"

namespace Brim::Counters {

Counter MemoryShmemManager::counter(const Mote::String& snapshot, U32 index) const {
  const std::vector<Counter>* counters = values.find(snapshot);
  return counters == nullptr || index >= counters->size() ? Counter() : (*counters)[index];
}

std::vector<ShmemManager::Snapshot> MemoryShmemManager::snapshots() const {
  std::vector<Snapshot> snapshots;
  for (const auto& [name, counters] : values) snapshots.push_back({name, static_cast<U32>(counters.size())});
  return snapshots;
}

}  // namespace Brim::Counters
